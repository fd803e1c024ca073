#pragma once

namespace cajaplex {

// Agrega al registro las pantallas del restaurante (solo para empresas con control de
// restaurantes).
void registraModulosRestaurante();

} // namespace cajaplex
