#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "server/Motor.h"

// Credenciales propias de cada estación: las pide un administrador al instalarla y valen mientras
// exista el renglón de DispositivosRED de su dispositivo.
namespace cajaplex::servidor {

inline constexpr std::string_view PrefijoUsuarioEstacion = "estacion-";

inline bool esUsuarioEstacion(std::string_view usuario) {
    return usuario.starts_with(PrefijoUsuarioEstacion);
}

struct CredencialesEstacion {
    std::string usuario;
    std::string contrasena;
};

// Verdadero si el secreto es el vigente de ese usuario y su dispositivo sigue autorizado. Se
// consulta la base en cada solicitud: borrar el dispositivo rechaza la siguiente al instante.
bool estacionVigente(Conexion& c, const std::string& usuario, const std::string& secreto);

// Un administrador activo con esa contraseña, verificada como la verifica el inicio de sesión
// (con el mismo freno de intentos fallidos).
bool esAdministrador(Conexion& c, const std::string& usuario, const std::string& contrasena);

// Dentro de una transacción de escritura: revoca las credenciales anteriores del dispositivo,
// emite unas nuevas y da de alta (o conserva) su renglón de DispositivosRED con la fecha de
// emisión. La descripción solo se cambia si viene.
CredencialesEstacion emiteCredenciales(Conexion& c, const std::string& dispositivoID,
                                       const std::optional<std::string>& descripcion);

} // namespace cajaplex::servidor
