#pragma once

#include <memory>
#include <string>

#include "server/Servicio.h"

namespace httplib {
class Server;
struct Request;
struct Response;
} // namespace httplib

namespace cajaplex::servidor {

struct OpcionesHttp {
    std::string direccion = "127.0.0.1";
    int puerto = 8080;
    std::string usuario;
    std::string contrasena;
    size_t hilos = 256; // cada conexión keep-alive ocupa un hilo mientras vive
};

// El frente HTTP: autenticación, rutas del protocolo y errores en JSON.
class ServidorHttp {
public:
    ServidorHttp(Servicio& servicio, OpcionesHttp opciones);
    ~ServidorHttp();

    // Abre el puerto (0 elige uno libre) y devuelve el puerto abierto, o -1.
    int abre();
    // Atiende hasta que alguien llame detiene().
    void atiende();
    void detiene();

private:
    // Contesta 401 si la credencial no es la del servicio.
    bool autenticado(const httplib::Request& req, httplib::Response& res) const;

    Servicio& servicio_;
    std::string credencial_;
    OpcionesHttp opciones_;
    std::unique_ptr<httplib::Server> http_;
};

} // namespace cajaplex::servidor
