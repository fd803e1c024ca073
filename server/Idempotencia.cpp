#include "server/Idempotencia.h"

#include <cstdint>
#include <cstdio>

namespace cajaplex::servidor {

using protocolo::Parametro;
using protocolo::Tipo;

namespace {
Parametro texto(const char* nombre, const std::string& valor) {
    return Parametro{nombre, Tipo::Texto, valor, std::nullopt};
}

// FNV-1a de 64 bits en dos pasadas con semillas distintas: basta para distinguir solicitudes.
uint64_t fnv1a(const std::string& datos, uint64_t semilla) {
    uint64_t h = semilla;
    for (unsigned char c : datos) {
        h ^= c;
        h *= 1099511628211ull;
    }
    return h;
}
} // namespace

void validaClaveIdempotencia(const std::string& clave) {
    if (clave.empty() || clave.size() > 255)
        throw protocolo::errorSolicitud(
            "La clave de idempotencia debe tener de 1 a 255 caracteres");
}

std::string huellaSolicitud(const std::string& ruta, const std::string& cuerpo) {
    const std::string todo = ruta + '\n' + cuerpo;
    char texto[64];
    std::snprintf(texto, sizeof texto, "%016llx%016llx-%zu",
                  static_cast<unsigned long long>(fnv1a(todo, 14695981039346656037ull)),
                  static_cast<unsigned long long>(fnv1a(todo, 0x9e3779b97f4a7c15ull)), todo.size());
    return texto;
}

std::optional<RespuestaGuardada> buscaIdempotencia(Conexion& c, const std::string& clave) {
    auto r = c.ejecutaInterna(std::string("Select huella, respuesta From ") + TablaIdempotencia +
                                  " Where clave = :clave",
                              {texto("clave", clave)});
    if (r.filas.empty()) return std::nullopt;
    return RespuestaGuardada{std::get<std::string>(r.filas[0][0]),
                             std::get<std::string>(r.filas[0][1])};
}

void guardaIdempotencia(Conexion& c, const std::string& clave, const std::string& huella,
                        const std::string& respuesta) {
    c.ejecutaInterna(
        std::string("Insert Into ") + TablaIdempotencia +
            " (clave, huella, respuesta, creada)"
            " Values (:clave, :huella, :respuesta, strftime('%s','now'))",
        {texto("clave", clave), texto("huella", huella), texto("respuesta", respuesta)});
}

void purgaIdempotencia(Conexion& c) {
    c.ejecutaInterna(std::string("Delete From ") + TablaIdempotencia +
                     " Where creada < strftime('%s','now') - 172800");
}

} // namespace cajaplex::servidor
