#pragma once

#include <string>

namespace cajaplex::servidor {

// Primera barrera de lo que una estación puede correr, sobre el texto y antes de prepararlo:
// solo SELECT/INSERT/UPDATE/DELETE (o WITH/VALUES/REPLACE) y los procedimientos; nada que nombre
// tablas internas del motor o del servicio, ni load_extension. Lanza ErrorProtocolo 403.
// La segunda barrera es el autorizador del motor, que juzga lo que la sentencia toca de verdad.
void revisaTextoDeEstacion(const std::string& sql);

} // namespace cajaplex::servidor
