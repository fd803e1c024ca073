#pragma once

#include <limits>

#include "server/Motor.h"

namespace cajaplex::servidor {

// Crea la contabilidad del servicio, aplica las migraciones pendientes (cada una en su
// transacción) y, si se pide, carga la demostración en una base sin empresas.
// Devuelve la versión de esquema resultante. "hasta" limita las migraciones (para reproducir
// una base de una versión anterior).
int preparaBase(Conexion& c, bool cargarDemo, int hasta = std::numeric_limits<int>::max());

} // namespace cajaplex::servidor
