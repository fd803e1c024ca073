#pragma once

#include <string>
#include <string_view>

// Contraseñas de los usuarios: Argon2id en su forma de texto ("$argon2id$v=19$m=...,t=...,p=...$
// sal$hash"). Sin nada del motor: otro motor registra las mismas dos funciones SQL con esto.
namespace cajaplex::servidor {

inline constexpr std::string_view PrefijoHashContrasena = "$argon2id$";

// Hash nuevo, con sal aleatoria. Lanza std::bad_alloc si no hay memoria para calcularlo.
std::string cifraContrasena(std::string_view contrasena);

// Verdadero si la contraseña corresponde al hash. Un hash malformado, o con un costo mayor que
// el que este servicio acepta calcular, es falso sin calcular nada.
//
// Freno contra quien prueba contraseñas: cada hash (un usuario) lleva la cuenta de sus intentos
// sin éxito; desde el tercero en 15 minutos, cada intento espera antes de verificarse 0.5 s,
// luego 1, 2 y 4 s (tope). Los intentos simultáneos del mismo hash se forman uno tras otro; si
// el turno quedaría a más de 5 s, el intento es falso sin verificarse. Un acierto borra la
// cuenta. Lanza std::bad_alloc si no hay memoria para verificar.
bool verificaContrasena(std::string_view contrasena, std::string_view hash);

} // namespace cajaplex::servidor
