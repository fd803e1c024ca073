#!/usr/bin/env python3
"""Escribe un libro de Excel 97-2003 (.xls) para las pruebas del importador.

Uso: hoja_xls.py SALIDA.xls < renglones.json
El JSON es una lista de renglones; cada celda es texto, número, verdadero/falso o null (vacía).
"""
import json
import sys

import xlwt

libro = xlwt.Workbook(encoding="utf-8")
hoja = libro.add_sheet("Hoja1")
for f, renglon in enumerate(json.load(sys.stdin)):
    for c, celda in enumerate(renglon):
        if celda is not None:
            hoja.write(f, c, celda)
libro.save(sys.argv[1])
