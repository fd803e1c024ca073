#pragma once

#include <QString>

namespace cajaplex {

class ConexionDatos;

inline constexpr const char* MensajeDispositivoNoAutorizado = "Dispositivo NO Autorizado: ";

// Autorización de la estación: una instalación sin renglones en DispositivosRED autoriza a
// todas; con renglones, solo a las que aparecen por su identificador (ReferenciaID). Un error
// de lectura sale como ErrorServicio.
bool dispositivoAutorizado(ConexionDatos& conexion, const QString& dispositivoID);

} // namespace cajaplex
