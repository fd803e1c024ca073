#include "server/ServidorHttp.h"

#include <deque>
#include <sys/socket.h>
#include <thread>

#include <httplib.h>

#include "protocol/Base64.h"
#include "server/Estaciones.h"

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

// Hilos para las conexiones: empieza con pocos y crea otro cuando llega trabajo y no hay uno
// libre, hasta un máximo (httplib::ThreadPool los crea todos al empezar).
class PoolHilos : public httplib::TaskQueue {
public:
    PoolHilos(size_t iniciales, size_t maximo) : maximo_(maximo) {
        std::lock_guard lock(m_);
        for (size_t i = 0; i < iniciales && i < maximo; ++i)
            hilos_.emplace_back([this] { trabaja(); });
    }

    void enqueue(std::function<void()> fn) override {
        {
            std::lock_guard lock(m_);
            trabajos_.push_back(std::move(fn));
            if (trabajos_.size() > libres_ && hilos_.size() < maximo_)
                hilos_.emplace_back([this] { trabaja(); });
        }
        cv_.notify_one();
    }

    void shutdown() override {
        std::vector<std::thread> hilos;
        {
            std::lock_guard lock(m_);
            terminar_ = true;
        }
        cv_.notify_all();
        {
            std::lock_guard lock(m_);
            hilos.swap(hilos_);
        }
        for (auto& h : hilos)
            h.join();
    }

private:
    void trabaja() {
        for (;;) {
            std::function<void()> fn;
            {
                std::unique_lock lock(m_);
                ++libres_;
                cv_.wait(lock, [&] { return !trabajos_.empty() || terminar_; });
                --libres_;
                if (trabajos_.empty()) return;
                fn = std::move(trabajos_.front());
                trabajos_.pop_front();
            }
            fn();
        }
    }

    size_t maximo_;
    std::mutex m_;
    std::condition_variable cv_;
    std::deque<std::function<void()>> trabajos_;
    std::vector<std::thread> hilos_;
    size_t libres_ = 0;
    bool terminar_ = false;
};

// Usuario y contraseña de un encabezado "Authorization: Basic ..."; nullopt si no lo es.
std::optional<std::pair<std::string, std::string>> basica(const httplib::Request& req) {
    const std::string encabezado = req.get_header_value("Authorization");
    constexpr std::string_view prefijo = "Basic ";
    if (!encabezado.starts_with(prefijo)) return std::nullopt;
    auto texto = protocolo::decodificaBase64(std::string_view(encabezado).substr(prefijo.size()));
    if (!texto) return std::nullopt;
    const size_t dos = texto->find(':');
    if (dos == std::string::npos) return std::nullopt;
    return std::make_pair(texto->substr(0, dos), texto->substr(dos + 1));
}

void pideCredenciales(httplib::Response& res, const std::string& mensaje) {
    res.set_header("WWW-Authenticate", "Basic realm=\"Cajaplex\"");
    contestaError(res, 401, "autenticacion", mensaje);
}

std::unique_ptr<httplib::Server> creaServidor(const OpcionesHttp& o) {
    if (o.certificado.empty()) return std::make_unique<httplib::Server>();
    return std::make_unique<httplib::SSLServer>(o.certificado.c_str(), o.clave.c_str());
}

Solicitud solicitudDe(const httplib::Request& req) {
    Solicitud s{req.path, req.body, req.get_header_value("X-Transaccion"),
                req.get_header_value("Idempotencia"), req.has_header("Idempotencia")};
    return s;
}

} // namespace

ServidorHttp::ServidorHttp(Servicio& servicio, OpcionesHttp opciones, Eventos* eventos)
    : servicio_(servicio), eventos_(eventos), opciones_(std::move(opciones)),
      http_(creaServidor(opciones_)) {
    auto& http = *http_;
    const size_t iniciales = opciones_.hilosIniciales;
    const size_t hilos = opciones_.hilos;
    http.new_task_queue = [iniciales, hilos] { return new PoolHilos(iniciales, hilos); };
    http.set_tcp_nodelay(true);
    // Se guarda el socket que escucha para ampliar después su cola de conexiones pendientes.
    http.set_socket_options([this](socket_t sock) {
        int si = 1;
        setsockopt(sock, SOL_SOCKET, SO_REUSEADDR, &si, sizeof si);
        escucha_ = sock;
    });
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
    if (eventos_) {
        http.Get(base + "eventos",
                 protegido([this](const httplib::Request& req, httplib::Response& res) {
                     ++eventosPendientes_;
                     std::string cuerpo;
                     try {
                         cuerpo = eventos_->espera(req.get_param_value("tablas"),
                                                   req.get_param_value("desde"),
                                                   req.get_param_value("espera"));
                     } catch (const protocolo::ErrorProtocolo& e) {
                         res.status = e.estadoHttp();
                         cuerpo = aJson(e).dump();
                     }
                     // Se cuenta como pendiente hasta que httplib terminó de enviarla.
                     auto texto = std::make_shared<std::string>(std::move(cuerpo));
                     res.set_content_provider(
                         texto->size(), tipoJson,
                         [texto](size_t desde, size_t largo, httplib::DataSink& sink) {
                             return sink.write(texto->data() + desde, largo);
                         },
                         [this](bool) { --eventosPendientes_; });
                 }));
    }
    http.Post(base + "estaciones", [this](const httplib::Request& req, httplib::Response& res) {
        emiteEstacion(req, res);
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

void ServidorHttp::contesta(httplib::Response& res, Respuesta r) {
    res.status = r.estado;
    if (!r.grande) {
        res.body = std::move(r.cuerpo);
        res.set_header("Content-Type", tipoJson);
        return;
    }
    // Una respuesta grande se envía sin copiarla y, enviada, su memoria vuelve al sistema.
    auto texto = std::make_shared<std::string>(std::move(r.cuerpo));
    res.set_content_provider(
        texto->size(), tipoJson,
        [texto](size_t desde, size_t largo, httplib::DataSink& sink) {
            return sink.write(texto->data() + desde, largo);
        },
        [this, texto](bool) {
            std::string().swap(*texto);
            servicio_.devuelveMemoria();
        });
}

void ServidorHttp::despideEsperas(std::chrono::milliseconds plazo) {
    if (!eventos_) return;
    eventos_->detiene();
    const auto limite = std::chrono::steady_clock::now() + plazo;
    while (eventosPendientes_.load() > 0 && std::chrono::steady_clock::now() < limite)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
}

bool ServidorHttp::autenticado(const httplib::Request& req, httplib::Response& res) const {
    if (req.get_header_value("Authorization") == credencial_) return true;
    const auto credencial = basica(req);
    if (credencial && esUsuarioEstacion(credencial->first)) {
        try {
            if (servicio_.autenticaEstacion(credencial->first, credencial->second)) return true;
        } catch (const protocolo::ErrorProtocolo& e) {
            res.status = e.estadoHttp();
            res.set_content(aJson(e).dump(), tipoJson);
            return false;
        } catch (const std::exception& e) {
            contestaError(res, 503, "ocupado", e.what());
            return false;
        }
        pideCredenciales(res, "Estación no autorizada o credenciales revocadas");
        return false;
    }
    pideCredenciales(res, "Usuario o contraseña del servicio incorrectos");
    return false;
}

void ServidorHttp::emiteEstacion(const httplib::Request& req, httplib::Response& res) {
    const auto credencial = basica(req);
    if (!credencial) {
        pideCredenciales(res, "Se requiere un administrador activo del sistema");
        return;
    }
    contesta(res, servicio_.emiteEstacion(credencial->first, credencial->second, req.body));
    if (res.status == 401) res.set_header("WWW-Authenticate", "Basic realm=\"Cajaplex\"");
}

bool ServidorHttp::valido() const {
    return http_->is_valid();
}

int ServidorHttp::abre() {
    const int puerto =
        opciones_.puerto == 0
            ? http_->bind_to_any_port(opciones_.direccion)
            : (http_->bind_to_port(opciones_.direccion, opciones_.puerto) ? opciones_.puerto : -1);
    // httplib escucha con una cola de 5: cientos de estaciones (o esperas de eventos) que se
    // conectan a la vez desbordarían la cola y el núcleo descartaría conexiones. Volver a
    // llamar listen() sobre el mismo socket solo amplía la cola.
    if (puerto > 0 && escucha_ >= 0) ::listen(escucha_, 1024);
    return puerto;
}

void ServidorHttp::atiende() {
    http_->listen_after_bind();
}

void ServidorHttp::detiene() {
    http_->stop();
}

} // namespace cajaplex::servidor
