#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <string>

#include "server/Eventos.h"
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
    // Cada conexión keep-alive (y cada espera de eventos) ocupa un hilo mientras vive: se
    // empieza con pocos y se crean más según hagan falta, hasta el máximo.
    size_t hilosIniciales = 16;
    size_t hilos = 1024;
    // Con ambos archivos (PEM) se atiende HTTPS y solo HTTPS en el puerto.
    std::string certificado;
    std::string clave;
};

// El frente HTTP: autenticación, rutas del protocolo y errores en JSON.
class ServidorHttp {
public:
    // Sin eventos, GET .../eventos no existe (404).
    ServidorHttp(Servicio& servicio, OpcionesHttp opciones, Eventos* eventos = nullptr);
    ~ServidorHttp();

    // Falso si no pudo cargar el certificado o la clave.
    bool valido() const;
    // Abre el puerto (0 elige uno libre) y devuelve el puerto abierto, o -1.
    int abre();
    // Atiende hasta que alguien llame detiene().
    void atiende();
    void detiene();
    // Contesta ya a las esperas de eventos y espera (hasta "plazo") a que sus respuestas se
    // hayan enviado.
    void despideEsperas(std::chrono::milliseconds plazo);

private:
    // Contesta 401 si la credencial no es la del servicio ni la vigente de una estación.
    bool autenticado(const httplib::Request& req, httplib::Response& res) const;
    void emiteEstacion(const httplib::Request& req, httplib::Response& res);

    void contesta(httplib::Response& res, Respuesta r);

    Servicio& servicio_;
    Eventos* eventos_;
    std::atomic<int> eventosPendientes_{0};
    std::string credencial_;
    OpcionesHttp opciones_;
    std::unique_ptr<httplib::Server> http_;
    int escucha_ = -1; // socket que escucha, para ampliar su cola
};

} // namespace cajaplex::servidor
