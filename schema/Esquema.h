#pragma once

#include <vector>

namespace cajaplex::esquema {

// Una migración: se aplica una sola vez, en orden de versión, dentro de una transacción.
struct Migracion {
    int version;
    const char* nombre;
    const char* sql;
};

const std::vector<Migracion>& migraciones();

// Datos de demostración; solo se cargan en una base sin empresas.
const char* datosDemo();

} // namespace cajaplex::esquema
