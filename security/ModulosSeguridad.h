#pragma once

namespace cajaplex {

// Agrega al registro las pantallas de usuarios, perfiles y bitácoras.
void registraModulosSeguridad();

} // namespace cajaplex
