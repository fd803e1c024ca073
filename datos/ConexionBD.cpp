#include "datos/ConexionBD.h"

#include <utility>

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

std::string ConexionBD::post(const std::string& ruta, const std::string& cuerpo,
                             const std::vector<Encabezado>& encabezados, bool reintentable) {
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
    if (!res && reintentable)
        res = cliente_->http.Post(destino, cabeceras, cuerpo, "application/json");
    if (!res)
        throw ErrorServicio(CodigoConexion, 0,
                            "Sin respuesta del servicio de datos en " + origen + destino + ": " +
                                describe(res.error()));
    if (res->status == 200) return std::move(res->body);
    throw traduce(protocolo::errorDesdeJson(res->status, json::parse(res->body, nullptr, false)));
}

Resultado ConexionBD::ejecuta(const Sentencia& sentencia) {
    return resultadoDe(leeJson(post("", protocolo::aJson(sentencia).dump(), {}, false)));
}

Resultado ConexionBD::ejecuta(const Sentencia& sentencia, const std::string& transaccion) {
    return resultadoDe(leeJson(
        post("", protocolo::aJson(sentencia).dump(), {{"X-Transaccion", transaccion}}, false)));
}

std::string ConexionBD::comienzaTransaccion() {
    // Sin reintento: una transacción huérfana retendría al escritor hasta que el servicio la
    // expire.
    json j = leeJson(post("transaccion", "", {}, false));
    if (!j.contains("transaccion") || !j["transaccion"].is_string())
        throw ErrorServicio("respuesta", 200, "El servicio no devolvió el id de la transacción");
    return j["transaccion"].get<std::string>();
}

void ConexionBD::confirmaTransaccion(const std::string& id, const std::string& clave) {
    post("transaccion/" + id + "/confirmar", "", {{"Idempotencia", clave}}, true);
}

void ConexionBD::revierteTransaccion(const std::string& id) {
    // Sin reintento: si no contesta, el servicio la revierte solo al expirar.
    post("transaccion/" + id + "/revertir", "", {}, false);
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
    json j = leeJson(post("lote", cuerpo, encabezados, !clave.empty()));
    if (!j.contains("resultados") || !j["resultados"].is_array())
        throw ErrorServicio("respuesta", 200, "El servicio no devolvió los resultados del lote");
    std::vector<Resultado> resultados;
    resultados.reserve(j["resultados"].size());
    for (const auto& r : j["resultados"])
        resultados.push_back(resultadoDe(r));
    return resultados;
}

} // namespace cajaplex
