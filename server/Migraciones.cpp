#include "server/Migraciones.h"

#include <algorithm>
#include <set>

#include "schema/Esquema.h"
#include "server/Idempotencia.h"

namespace cajaplex::servidor {

using protocolo::Parametro;
using protocolo::Tipo;

namespace {
int64_t entero(const Resultado& r) {
    if (r.filas.empty()) return 0;
    if (auto* v = std::get_if<int64_t>(&r.filas[0][0])) return *v;
    return 0;
}

// Corre trabajo en una transacción de escritura; si falla, no queda nada a medias.
template <typename F> void enTransaccion(Conexion& c, F&& trabajo) {
    c.comienza();
    try {
        trabajo();
        c.confirma();
    } catch (...) {
        c.revierte();
        throw;
    }
}
} // namespace

int preparaBase(Conexion& c, bool cargarDemo, int hasta) {
    c.ejecutaGuion(std::string("CREATE TABLE IF NOT EXISTS ") + TablaVersionEsquema +
                   " (version INTEGER PRIMARY KEY, nombre TEXT NOT NULL,"
                   "  aplicada TEXT NOT NULL DEFAULT (datetime('now','localtime')));"
                   "CREATE TABLE IF NOT EXISTS " +
                   TablaIdempotencia +
                   " (clave TEXT PRIMARY KEY, huella TEXT NOT NULL, respuesta TEXT NOT NULL,"
                   "  creada INTEGER NOT NULL);");
    // Se aplica toda migración que falte, aunque su número sea menor que el de otra ya aplicada
    // (dos ramas que agregaron migraciones a la vez).
    std::set<int64_t> aplicadas;
    for (const auto& fila :
         c.ejecutaInterna(std::string("Select version From ") + TablaVersionEsquema).filas)
        if (auto* v = std::get_if<int64_t>(&fila.at(0))) aplicadas.insert(*v);
    int version = aplicadas.empty() ? 0 : static_cast<int>(*aplicadas.rbegin());
    for (const auto& m : esquema::migraciones()) {
        if (aplicadas.count(m.version) || m.version > hasta) continue;
        enTransaccion(c, [&] {
            c.ejecutaGuion(m.sql);
            c.ejecutaInterna(std::string("Insert Into ") + TablaVersionEsquema +
                                 " (version, nombre) Values (:version, :nombre)",
                             {Parametro{"version", Tipo::Entero, int64_t{m.version}, {}},
                              Parametro{"nombre", Tipo::Texto, std::string(m.nombre), {}}});
        });
        version = std::max(version, m.version);
    }
    if (cargarDemo) {
        enTransaccion(c, [&] {
            if (entero(c.ejecutaInterna("Select count(*) From Empresa")) == 0)
                c.ejecutaGuion(esquema::datosDemo());
        });
    }
    // Una base de una versión anterior, y la demostración, traen contraseñas en claro.
    if (version >= 1)
        enTransaccion(c, [&] {
            c.ejecutaInterna("Update Usuarios Set contrasena = cajaplex_hash(contrasena)"
                             " Where contrasena is not null"
                             " and substr(contrasena, 1, 10) <> '$argon2id$'");
        });
    enTransaccion(c, [&] { purgaIdempotencia(c); });
    return version;
}

} // namespace cajaplex::servidor
