#include "datos/ConexionBD.h"

#include <algorithm>
#include <thread>
#include <utility>

#include <QByteArray>
#include <QRegularExpression>
#include <QtDebug>
#include <httplib.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>

namespace cajaplex {

using nlohmann::json;
using protocolo::ErrorProtocolo;
using protocolo::Resultado;
using protocolo::Sentencia;

namespace {

// El certificado que el servicio debe presentar, fijado por su huella SHA-256 al instalar la
// estación: uno distinto corta el saludo TLS antes de que salga cualquier solicitud.
struct Huellas {
    std::string fijada;     // "AA:BB:..."; vacía: solo se consulta (consulta = true)
    bool consulta = false;  // anota la huella presentada y rechaza siempre
    std::string presentada; // la del último certificado recibido
    bool rechazada = false; // el último saludo se cortó por la huella
};

std::string huellaDe(X509* certificado) {
    unsigned char md[EVP_MAX_MD_SIZE];
    unsigned int largo = 0;
    if (!certificado || !X509_digest(certificado, EVP_sha256(), md, &largo)) return {};
    return QByteArray(reinterpret_cast<const char*>(md), static_cast<qsizetype>(largo))
        .toHex(':')
        .toUpper()
        .toStdString();
}

int verificaHuella(X509_STORE_CTX* almacen, void* datos) {
    auto* h = static_cast<Huellas*>(datos);
    h->presentada = huellaDe(X509_STORE_CTX_get0_cert(almacen));
    const bool coincide = !h->consulta && !h->presentada.empty() && h->presentada == h->fijada;
    h->rechazada = !coincide;
    if (!coincide) X509_STORE_CTX_set_error(almacen, X509_V_ERR_CERT_REJECTED);
    return coincide ? 1 : 0;
}

// Con huella (o para consultarla) se acepta solo ese certificado, sin autoridades ni nombre;
// sin ella, httplib verifica con las autoridades del sistema y el nombre del servidor.
void fijaCertificado(httplib::Client& http, Huellas& huellas) {
    if (huellas.fijada.empty() && !huellas.consulta) return;
    http.enable_server_certificate_verification(false);
    SSL_CTX* contexto = http.ssl_context();
    SSL_CTX_set_verify(contexto, SSL_VERIFY_PEER, nullptr);
    SSL_CTX_set_cert_verify_callback(contexto, verificaHuella, &huellas);
}

} // namespace

struct ConexionBD::Cliente {
    explicit Cliente(const std::string& servidor) : http(servidor) {}
    httplib::Client http;
    Huellas huellas;
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
    if (!cliente_) cliente_ = creaCliente();
    httplib::Headers cabeceras;
    for (const auto& e : encabezados)
        cabeceras.emplace(e.nombre, e.valor);
    const std::string destino = std::string(protocolo::RutaBase) + ruta;
    // httplib manda Content-Length aun con cuerpo vacío ("Content-Length: 0").
    cliente_->huellas.rechazada = false;
    auto res = cliente_->http.Post(destino, cabeceras, cuerpo, "application/json");
    if (!res && cliente_->huellas.rechazada) {
        qWarning().noquote() << QStringLiteral("El servicio en %1 presentó el certificado %2; la "
                                               "estación espera %3")
                                    .arg(QString::fromStdString(origen),
                                         QString::fromStdString(cliente_->huellas.presentada),
                                         QString::fromStdString(cliente_->huellas.fijada));
        cliente_.reset();
        throw ErrorServicio(CodigoCertificado, 0, MensajeCertificadoCambio);
    }
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

std::unique_ptr<ConexionBD::Cliente> ConexionBD::creaCliente() const {
    auto cliente =
        std::make_unique<Cliente>(esquema_ + "://" + direccion_ + ":" + std::to_string(puerto_));
    auto& http = cliente->http;
    http.set_keep_alive(true);
    http.set_tcp_nodelay(true);
    http.set_connection_timeout(esperaConexion_);
    http.set_read_timeout(esperaLectura_);
    http.set_write_timeout(esperaLectura_);
    http.set_basic_auth(usuario_, contrasena_);
    if (esquema_ == "https") {
        cliente->huellas.fijada = huella_;
        fijaCertificado(http, cliente->huellas);
    }
    return cliente;
}

void ConexionBD::fijaHuella(const QString& huella) {
    std::lock_guard bloqueo(mutex_);
    cliente_.reset();
    huella_ = cadena(normalizaHuella(huella));
}

QString ConexionBD::normalizaHuella(const QString& huella) {
    QString hex = huella.toUpper();
    hex.remove(QRegularExpression(QStringLiteral("[^0-9A-F]")));
    if (hex.size() != 64) return {};
    return QString::fromLatin1(QByteArray::fromHex(hex.toLatin1()).toHex(':').toUpper());
}

QString ConexionBD::huellaServicio(const QString& direccion, int puerto,
                                   std::chrono::milliseconds espera) {
    Huellas huellas;
    huellas.consulta = true;
    httplib::Client http("https://" + cadena(direccion.trimmed()) + ":" + std::to_string(puerto));
    http.set_connection_timeout(espera);
    http.set_read_timeout(espera);
    fijaCertificado(http, huellas);
    // El saludo se corta al ver el certificado: la solicitud nunca sale.
    http.Get(std::string(protocolo::RutaBase) + "salud");
    return QString::fromStdString(huellas.presentada);
}

CredencialesEstacion ConexionBD::solicitaCredencialesEstacion(const QString& dispositivoID,
                                                              const QString& descripcion) {
    json cuerpo{{"dispositivoID", cadena(dispositivoID.trimmed())}};
    if (!descripcion.trimmed().isEmpty()) cuerpo["descripcion"] = cadena(descripcion.trimmed());
    const json j = leeJson(post("estaciones", cuerpo.dump(), {}));
    const auto usuario = j.find("usuario");
    const auto contrasena = j.find("contrasena");
    if (usuario == j.end() || !usuario->is_string() || contrasena == j.end() ||
        !contrasena->is_string())
        throw ErrorServicio("respuesta", 200, "El servicio no devolvió las credenciales");
    return {QString::fromStdString(usuario->get<std::string>()),
            QString::fromStdString(contrasena->get<std::string>())};
}

std::unique_ptr<ConexionBD::EsperaEventos> ConexionBD::esperaEventos() const {
    std::lock_guard bloqueo(mutex_);
    if (direccion_.empty() || puerto_ <= 0)
        throw ErrorServicio(CodigoConexion, 0,
                            "La conexión con el servicio de datos no está configurada");
    return std::make_unique<EsperaEventos>(creaCliente());
}

ConexionBD::EsperaEventos::EsperaEventos(std::unique_ptr<Cliente> cliente)
    : cliente_(std::move(cliente)) {}

ConexionBD::EsperaEventos::~EsperaEventos() = default;

std::string ConexionBD::EsperaEventos::espera(const std::string& consulta, int segundos) {
    auto& http = cliente_->http;
    // La respuesta puede tardar lo pedido: se le da holgura antes de darla por perdida.
    http.set_read_timeout(std::chrono::seconds(segundos + 10));
    const std::string destino = std::string(protocolo::RutaBase) + "eventos?" + consulta;
    auto res = http.Get(destino);
    if (!res)
        throw ErrorServicio(CodigoConexion, 0,
                            "Sin respuesta del servicio de datos a " + destino + ": " +
                                describe(res.error()));
    if (res->status != 200) lanzaError(res->status, res->body);
    return std::move(res->body);
}

void ConexionBD::EsperaEventos::interrumpe() {
    cliente_->http.stop();
}

} // namespace cajaplex
