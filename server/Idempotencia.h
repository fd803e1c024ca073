#pragma once

#include <optional>
#include <string>

#include "server/Motor.h"

namespace cajaplex::servidor {

// Claves "Idempotencia": la respuesta de un lote o de una confirmación se guarda con la clave,
// en la misma transacción que sus escrituras, para contestar igual a un reintento.
struct RespuestaGuardada {
    std::string huella;
    std::string respuesta;
};

void validaClaveIdempotencia(const std::string& clave);
std::string huellaSolicitud(const std::string& ruta, const std::string& cuerpo);
std::optional<RespuestaGuardada> buscaIdempotencia(Conexion& c, const std::string& clave);
void guardaIdempotencia(Conexion& c, const std::string& clave, const std::string& huella,
                        const std::string& respuesta);
// Olvida las claves de más de dos días (se garantizan 24 horas).
void purgaIdempotencia(Conexion& c);

} // namespace cajaplex::servidor
