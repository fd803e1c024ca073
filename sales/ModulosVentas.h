#pragma once

namespace cajaplex {

// Agrega al registro las pantallas de ventas.
void registraModulosVentas();

} // namespace cajaplex
