#pragma once

#include <QString>

#include "printing/Plantillas.h"

namespace cajaplex {

// Un documento inventado con todos los marcadores de la carpeta, para ver una plantilla cuando la
// empresa aún no tiene documentos de ese tipo. Lleva el nombre y el RFC de la empresa.
DocumentoImpresion documentoEjemplo(const QString& carpeta, const QString& empresa,
                                    const QString& rfc);

} // namespace cajaplex
