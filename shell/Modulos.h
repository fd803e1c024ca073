#pragma once

namespace cajaplex {

// Registra las pantallas de todos los módulos (una vez; llamarla de nuevo no cambia nada).
void registraModulos();

} // namespace cajaplex
