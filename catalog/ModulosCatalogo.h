#pragma once

namespace cajaplex {

// Agrega al registro las pantallas del catálogo.
void registraModulosCatalogo();

} // namespace cajaplex
