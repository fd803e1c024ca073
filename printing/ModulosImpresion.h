#pragma once

namespace cajaplex {

// Registra las pantallas de impresión en el menú ("Impresión y Estadísticas").
void registraModulosImpresion();

} // namespace cajaplex
