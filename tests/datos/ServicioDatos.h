#pragma once

#include <QString>

#include "datos/ConexionBD.h"
#include "tests/fixtures/ServicioPrueba.h"

namespace cajaplex::prueba {

// Apunta una conexión de la estación al servicio de la prueba.
inline void apunta(ConexionBD& conexion, const ServicioPrueba& servicio) {
    conexion.configura(QStringLiteral("127.0.0.1"), servicio.puerto(),
                       QString::fromStdString(kUsuarioPrueba),
                       QString::fromStdString(kContrasenaPrueba));
}

} // namespace cajaplex::prueba
