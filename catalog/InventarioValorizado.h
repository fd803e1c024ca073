#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include <QString>
#include <QStringList>

namespace cajaplex {

class ConexionDatos;

// Valor de la existencia a costo y a cada uno de los cinco precios.
inline constexpr int ValoresInventario = 6;

struct RenglonValorInventario {
    QString clave;
    QString producto;
    QString unidad;
    QString linea;
    double costo = 0.0;
    double existencia = 0.0;
    std::array<double, ValoresInventario> valores{};
};

struct ValorInventario {
    std::vector<RenglonValorInventario> renglones;
    std::array<double, ValoresInventario> totales{};
};

// "Clave", "Descripción", "Unidad", "Línea", "Costo", "Existencia" y los seis valores.
const QStringList& encabezadosValorInventario();

// Solo productos con existencia y costo positivos, por línea y descripción.
ValorInventario consultaValorInventario(ConexionDatos& conexion, int64_t empresaID);

// Escribe el listado con sus totales en una hoja de cálculo (.xlsx). Devuelve vacío si lo
// escribió, o la causa si no.
QString exportaValorInventario(const ValorInventario& inventario, const QString& ruta);

} // namespace cajaplex
