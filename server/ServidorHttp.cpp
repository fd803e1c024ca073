#include "server/ServidorHttp.h"

#include <httplib.h>

#include "protocol/Base64.h"

#ifndef CAJAPLEX_VERSION
#define CAJAPLEX_VERSION "0"
#endif

namespace cajaplex::servidor {

using nlohmann::json;

namespace {

const std::string base(protocolo::RutaBase);
constexpr const char* tipoJson = "application/json; charset=utf-8";

void contestaError(httplib::Response& res, int estado, const std::string& codigo,
                   const std::string& mensaje) {
    res.status = estado;
    res.set_content(json{{"error", mensaje}, {"codigo", codigo}}.dump(), tipoJson);
}

void contesta(httplib::Response& res, const Respuesta& r) {
    res.status = r.estado;
    res.set_content(r.cuerpo, tipoJson);
}

Solicitud solicitudDe(const httplib::Request& req) {
    Solicitud s{req.path, req.body, req.get_header_value("X-Transaccion"),
                req.get_header_value("Idempotencia"), req.has_header("Idempotencia")};
    return s;
}

} // namespace

ServidorHttp::ServidorHttp(Servicio& servicio, OpcionesHttp opciones)
    : servicio_(servicio), opciones_(std::move(opciones)),
      http_(std::make_unique<httplib::Server>()) {
    auto& http = *http_;
    const size_t hilos = opciones_.hilos;
    http.new_task_queue = [hilos] { return new httplib::ThreadPool(hilos); };
    http.set_tcp_nodelay(true);
    http.set_keep_alive_max_count(100000);
    http.set_keep_alive_timeout(15);
    http.set_read_timeout(30, 0);
    http.set_payload_max_length(protocolo::LimiteCuerpo);

    // La credencial se revisa ya leído el cuerpo: contestar antes dejaría el cuerpo sin leer en
    // una conexión keep-alive y la siguiente solicitud se leería corrida.
    credencial_ =
        "Basic " + protocolo::codificaBase64(opciones_.usuario + ":" + opciones_.contrasena);
    auto protegido = [this](auto manejador) {
        return [this, manejador](const httplib::Request& req, httplib::Response& res) {
            if (!autenticado(req, res)) return;
            manejador(req, res);
        };
    };

    http.Get(base + "salud", [](const httplib::Request&, httplib::Response& res) {
        res.set_content(json{{"estado", "ok"}, {"version", CAJAPLEX_VERSION}}.dump(), tipoJson);
    });
    http.Post(base, protegido([this](const httplib::Request& req, httplib::Response& res) {
                  contesta(res, servicio_.sentencia(solicitudDe(req)));
              }));
    http.Post(base + "lote", protegido([this](const httplib::Request& req, httplib::Response& res) {
                  contesta(res, servicio_.lote(solicitudDe(req)));
              }));
    http.Post(base + "transaccion",
              protegido([this](const httplib::Request&, httplib::Response& res) {
                  contesta(res, servicio_.comienzaTransaccion());
              }));
    http.Post(base + R"(transaccion/([^/]+)/(confirmar|revertir))",
              protegido([this](const httplib::Request& req, httplib::Response& res) {
                  const std::string id = req.matches[1];
                  contesta(res, req.matches[2] == "confirmar"
                                    ? servicio_.confirmaTransaccion(id, solicitudDe(req))
                                    : servicio_.revierteTransaccion(id));
              }));

    // Lo que httplib contesta por su cuenta (ruta desconocida, cuerpo enorme) también va en JSON.
    http.set_error_handler(httplib::Server::HandlerWithResponse(
        [this](const httplib::Request& req, httplib::Response& res) {
            if (!res.body.empty()) return httplib::Server::HandlerResponse::Unhandled;
            if (res.status == 404 && !autenticado(req, res))
                return httplib::Server::HandlerResponse::Handled;
            if (res.status == 413)
                contestaError(res, 413, "tamano", "La solicitud excede el tamaño máximo de 32 MiB");
            else if (res.status == 404)
                contestaError(res, 404, "solicitud", "Ruta desconocida");
            else
                contestaError(res, res.status, "solicitud", "Solicitud no válida");
            return httplib::Server::HandlerResponse::Handled;
        }));
    http.set_exception_handler(
        [](const httplib::Request&, httplib::Response& res, std::exception_ptr ep) {
            std::string mensaje = "Error interno";
            try {
                std::rethrow_exception(ep);
            } catch (const std::exception& e) {
                mensaje = e.what();
            } catch (...) {
            }
            contestaError(res, 500, "interno", mensaje);
        });
}

ServidorHttp::~ServidorHttp() = default;

bool ServidorHttp::autenticado(const httplib::Request& req, httplib::Response& res) const {
    if (req.get_header_value("Authorization") == credencial_) return true;
    res.set_header("WWW-Authenticate", "Basic realm=\"Cajaplex\"");
    contestaError(res, 401, "autenticacion", "Usuario o contraseña del servicio incorrectos");
    return false;
}

int ServidorHttp::abre() {
    if (opciones_.puerto == 0) return http_->bind_to_any_port(opciones_.direccion);
    return http_->bind_to_port(opciones_.direccion, opciones_.puerto) ? opciones_.puerto : -1;
}

void ServidorHttp::atiende() {
    http_->listen_after_bind();
}

void ServidorHttp::detiene() {
    http_->stop();
}

} // namespace cajaplex::servidor
