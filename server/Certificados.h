#pragma once

#include <string>

// El certificado con que el servicio atiende HTTPS y su huella SHA-256, la que cada estación fija
// al instalarse.
namespace cajaplex::servidor {

struct CertificadoServicio {
    std::string certificado; // archivo PEM
    std::string clave;       // archivo PEM de la clave privada
    std::string huella;      // "AA:BB:..." del certificado (DER)
};

// El par dado por archivos o, sin ellos, uno autofirmado en carpetaDatos/tls/ que se genera la
// primera vez (válido para la dirección de escucha, 127.0.0.1 y localhost) y se reusa después.
// Lanza std::runtime_error si no puede leerlo o crearlo.
CertificadoServicio preparaCertificado(const std::string& carpetaDatos,
                                       const std::string& direccion,
                                       const std::string& certificado = {},
                                       const std::string& clave = {});

// Verdadero para 127.0.0.0/8, ::1 y localhost: lo único que no cruza la red del negocio.
bool esDireccionLocal(const std::string& direccion);

} // namespace cajaplex::servidor
