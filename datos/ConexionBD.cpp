#include "datos/ConexionBD.h"

#include <algorithm>
#include <thread>
#include <utility>

#include <QtDebug>
#include <httplib.h>

namespace cajaplex {

using nlohmann::json;
using protocolo::ErrorProtocolo;
using protocolo::Resultado;
using protocolo::Sentencia;

struct ConexionBD::Cliente {
    explicit Cliente(const std::string& servidor) : http(servidor) {}
    httplib::Client http;
};

namespace {

std::string describe(httplib::Error error) {
    switch (error) {
    case httplib::Error::Connection:
        return "no se pudo conectar";
    case httplib::Error::Read:
        return "no llegó la respuesta (conexión cerrada o tiempo de espera agotado)";
    case httplib::Error::Write:
        return "no se pudo enviar la solicitud";
    case httplib::Error::ConnectionTimeout:
        return "se agotó el tiempo para conectar";
    default:
        return httplib::to_string(error);
    }
}

ErrorServicio traduce(const ErrorProtocolo& e) {
    return ErrorServicio(e.codigo(), e.estadoHttp(), e.what(), e.sentencia);
}

json leeJson(const std::string& cuerpo) {
    json j = json::parse(cuerpo, nullptr, false);
    if (j.is_discarded() || !j.is_object())
        throw ErrorServicio("respuesta", 200, "El servicio de datos contestó algo que no es JSON");
    return j;
}

Resultado resultadoDe(const json& j) {
    try {
        return protocolo::resultadoDesdeJson(j);
    } catch (const ErrorProtocolo& e) {
        throw traduce(e);
    }
}

std::string cadena(const QString& texto) {
    return texto.toUtf8().toStdString();
}

} // namespace

ErrorProgramacion::ErrorProgramacion(const std::string& mensaje)
    : ErrorServicio(CodigoProgramacion, 0, "Error de programación: " + mensaje) {
    qWarning().noquote() << QString::fromUtf8(what());
}

ConexionBD::ConexionBD() = default;
ConexionBD::~ConexionBD() = default;

void ConexionBD::configura(const QString& direccion, int puerto, const QString& usuario,
                           const QString& contrasena, const QString& esquema) {
    std::lock_guard bloqueo(mutex_);
    cliente_.reset();
    direccion_ = cadena(direccion.trimmed());
    puerto_ = puerto;
    usuario_ = cadena(usuario);
    contrasena_ = cadena(contrasena);
    esquema_ = cadena(esquema.trimmed().toLower());
}

void ConexionBD::tiempos(std::chrono::milliseconds conexion, std::chrono::milliseconds lectura) {
    std::lock_guard bloqueo(mutex_);
    cliente_.reset();
    esperaConexion_ = conexion;
    esperaLectura_ = lectura;
}

QString ConexionBD::servidor() const {
    return QString::fromStdString(esquema_ + "://" + direccion_ + ":" + std::to_string(puerto_) +
                                  std::string(protocolo::RutaBase));
}

void ConexionBD::conecta() {
    ejecuta(Sentencia{"Select 1 as conectado", {}});
}

void ConexionBD::desconecta() {
    std::lock_guard bloqueo(mutex_);
    cliente_.reset();
}

void ConexionBD::esperaReintento(EsperaReintento espera) {
    std::lock_guard bloqueo(mutex_);
    esperaReintento_ = std::move(espera);
}

void ConexionBD::limiteReintentos(std::chrono::milliseconds limite) {
    std::lock_guard bloqueo(mutex_);
    limiteReintentos_ = limite;
}

ConexionBD::RespuestaHttp ConexionBD::intenta(const std::string& ruta, const std::string& cuerpo,
                                              const std::vector<Encabezado>& encabezados) {
    std::lock_guard bloqueo(mutex_);
    const std::string origen = esquema_ + "://" + direccion_ + ":" + std::to_string(puerto_);
    if (direccion_.empty() || puerto_ <= 0)
        throw ErrorServicio(CodigoConexion, 0,
                            "La conexión con el servicio de datos no está configurada");
    if (!cliente_) {
        cliente_ = std::make_unique<Cliente>(origen);
        auto& http = cliente_->http;
        http.set_keep_alive(true);
        http.set_tcp_nodelay(true);
        http.set_connection_timeout(esperaConexion_);
        http.set_read_timeout(esperaLectura_);
        http.set_write_timeout(esperaLectura_);
        http.set_basic_auth(usuario_, contrasena_);
    }
    httplib::Headers cabeceras;
    for (const auto& e : encabezados)
        cabeceras.emplace(e.nombre, e.valor);
    const std::string destino = std::string(protocolo::RutaBase) + ruta;
    // httplib manda Content-Length aun con cuerpo vacío ("Content-Length: 0").
    auto res = cliente_->http.Post(destino, cabeceras, cuerpo, "application/json");
    if (!res)
        throw ErrorServicio(CodigoConexion, 0,
                            "Sin respuesta del servicio de datos en " + origen + destino + ": " +
                                describe(res.error()));
    return {res->status, std::move(res->body)};
}

namespace {
[[noreturn]] void lanzaError(int estado, const std::string& cuerpo) {
    throw traduce(protocolo::errorDesdeJson(estado, json::parse(cuerpo, nullptr, false)));
}
} // namespace

std::string ConexionBD::post(const std::string& ruta, const std::string& cuerpo,
                             const std::vector<Encabezado>& encabezados) {
    auto r = intenta(ruta, cuerpo, encabezados);
    if (r.estado != 200) lanzaError(r.estado, r.cuerpo);
    return std::move(r.cuerpo);
}

std::string ConexionBD::postHastaRespuesta(const char* operacion, const std::string& ruta,
                                           const std::string& cuerpo,
                                           const std::vector<Encabezado>& encabezados) {
    using std::chrono::milliseconds;
    const auto inicio = std::chrono::steady_clock::now();
    milliseconds espera = EsperaInicialReintento;
    for (int intento = 1;; ++intento) {
        std::string detalle;
        try {
            auto r = intenta(ruta, cuerpo, encabezados);
            if (r.estado == 200) return std::move(r.cuerpo);
            // 503: el servicio no hizo nada (ocupado, sin disco); con la misma clave se puede
            // preguntar otra vez. Cualquier otra respuesta es definitiva.
            if (r.estado != 503) lanzaError(r.estado, r.cuerpo);
            detalle = "el servicio contestó 503: " + r.cuerpo;
        } catch (const ErrorServicio& e) {
            if (!e.esDeConexion()) throw;
            detalle = e.what();
        }
        EsperaReintento esperaPantalla;
        milliseconds limite{};
        {
            std::lock_guard bloqueo(mutex_);
            esperaPantalla = esperaReintento_;
            limite = limiteReintentos_;
        }
        const auto transcurrido =
            std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - inicio);
        const ReintentoEscritura r{operacion, intento, espera, transcurrido, detalle};
        bool sigue = false;
        if (esperaPantalla) {
            sigue = esperaPantalla(r);
        } else if (transcurrido + espera <= limite) {
            qWarning().noquote() << QStringLiteral("Sin respuesta definitiva a «%1» (intento %2, "
                                                   "%3 ms): se pregunta otra vez en %4 ms. %5")
                                        .arg(QString::fromLatin1(operacion))
                                        .arg(intento)
                                        .arg(transcurrido.count())
                                        .arg(espera.count())
                                        .arg(QString::fromStdString(detalle));
            std::this_thread::sleep_for(espera);
            sigue = true;
        }
        if (!sigue)
            throw ErrorServicio(CodigoIncierto, 0,
                                std::string("No se supo si el servicio registró «") + operacion +
                                    "» tras " + std::to_string(intento) + " intentos: " + detalle);
        espera = std::min(espera * 2, EsperaMaximaReintento);
    }
}

Resultado ConexionBD::ejecuta(const Sentencia& sentencia) {
    return resultadoDe(leeJson(post("", protocolo::aJson(sentencia).dump(), {})));
}

Resultado ConexionBD::ejecuta(const Sentencia& sentencia, const std::string& transaccion) {
    return resultadoDe(
        leeJson(post("", protocolo::aJson(sentencia).dump(), {{"X-Transaccion", transaccion}})));
}

std::string ConexionBD::comienzaTransaccion() {
    // Sin reintento: una transacción huérfana retendría al escritor hasta que el servicio la
    // expire.
    json j = leeJson(post("transaccion", "", {}));
    if (!j.contains("transaccion") || !j["transaccion"].is_string())
        throw ErrorServicio("respuesta", 200, "El servicio no devolvió el id de la transacción");
    return j["transaccion"].get<std::string>();
}

void ConexionBD::confirmaTransaccion(const std::string& id, const std::string& clave) {
    // La misma clave en cada intento: si la primera confirmación sí llegó, el servicio contesta
    // "confirmada" aunque ya no recuerde el id. 404 y 410 dicen que no se confirmó.
    std::vector<Encabezado> encabezados;
    if (!clave.empty()) encabezados.push_back({"Idempotencia", clave});
    json j = leeJson(
        postHastaRespuesta("confirmar", "transaccion/" + id + "/confirmar", "", encabezados));
    const std::string estado = j.value("estado", std::string());
    if (estado != "confirmada")
        throw ErrorServicio("transaccion", 200,
                            "El servicio no confirmó la transacción " + id + " (estado «" + estado +
                                "»)");
}

void ConexionBD::revierteTransaccion(const std::string& id) {
    // Sin reintento: si no contesta, el servicio la revierte solo al expirar.
    post("transaccion/" + id + "/revertir", "", {});
}

std::vector<Resultado> ConexionBD::ejecutaLote(const std::vector<Sentencia>& lote,
                                               const std::string& transaccion,
                                               const std::string& clave) {
    json sentencias = json::array();
    for (const auto& s : lote)
        sentencias.push_back(protocolo::aJson(s));
    std::vector<Encabezado> encabezados;
    if (!clave.empty()) encabezados.push_back({"Idempotencia", clave});
    if (!transaccion.empty()) encabezados.push_back({"X-Transaccion", transaccion});
    // El cuerpo se arma una sola vez: el reintento debe ser idéntico para que la clave case.
    const std::string cuerpo = json{{"sentencias", std::move(sentencias)}}.dump();
    json j = leeJson(clave.empty() ? post("lote", cuerpo, encabezados)
                                   : postHastaRespuesta("lote", "lote", cuerpo, encabezados));
    if (!j.contains("resultados") || !j["resultados"].is_array())
        throw ErrorServicio("respuesta", 200, "El servicio no devolvió los resultados del lote");
    std::vector<Resultado> resultados;
    resultados.reserve(j["resultados"].size());
    for (const auto& r : j["resultados"])
        resultados.push_back(resultadoDe(r));
    return resultados;
}

} // namespace cajaplex
