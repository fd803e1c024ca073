#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <QString>

#include "protocol/Protocolo.h"

namespace cajaplex {

// Clave de ErrorServicio cuando no hubo respuesta del servicio (caído, red, tiempo agotado).
inline constexpr const char* CodigoConexion = "conexion";
// Clave de ErrorProgramacion: el código pidió algo que no existe (columna, marca...).
inline constexpr const char* CodigoProgramacion = "programacion";
// Clave de RegistroInexistente: otra estación eliminó lo que se modificaba.
inline constexpr const char* CodigoInexistente = "inexistente";
// Se dejó de preguntar por una escritura cuyo resultado no se supo (ver ConexionBD::reintentos).
inline constexpr const char* CodigoIncierto = "incierto";
// Clave de ErrorServicio cuando el servicio presentó otro certificado que el fijado; no se envió
// nada. Su mensaje es MensajeCertificadoCambio.
inline constexpr const char* CodigoCertificado = "certificado";
inline constexpr const char* MensajeCertificadoCambio =
    "El certificado del servicio cambió; contacte al Administrador";

// El único error del acceso a datos. Lleva la clave del servicio ("sql", "restriccion",
// "ocupado"...) o CodigoConexion, el estado HTTP (0 sin respuesta) y el detalle para la bitácora;
// la pantalla muestra su propio mensaje ("Error al obtener los datos, Intente de nuevo").
class ErrorServicio : public std::runtime_error {
public:
    ErrorServicio(std::string codigo, int estadoHttp, const std::string& mensaje,
                  std::optional<size_t> sentencia = std::nullopt)
        : std::runtime_error(mensaje), codigo_(std::move(codigo)), estadoHttp_(estadoHttp),
          sentencia_(sentencia) {}

    const std::string& codigo() const { return codigo_; }
    int estadoHttp() const { return estadoHttp_; }
    // En un lote, el índice de la sentencia que falló.
    std::optional<size_t> sentencia() const { return sentencia_; }
    bool esDeConexion() const { return codigo_ == CodigoConexion; }
    QString mensaje() const { return QString::fromUtf8(what()); }

private:
    std::string codigo_;
    int estadoHttp_;
    std::optional<size_t> sentencia_;
};

// Un error de programación: una columna o una marca que la sentencia no tiene, una marca sin valor
// para esta ejecución, una transacción ya terminada, un número no finito... Es un ErrorServicio
// para que toda pantalla que atrapa los errores del acceso a datos lo atrape también: muestra su
// mensaje de falla ("Error al obtener los datos...") y sigue corriendo; nunca sale de un slot de
// Qt. Se anota con qWarning al crearse, con el detalle para quien lo corrija.
class ErrorProgramacion : public ErrorServicio {
public:
    explicit ErrorProgramacion(const std::string& mensaje);
};

// Lo que se iba a modificar ya no existe (otra estación lo eliminó); no se guardó nada. mensaje()
// es el texto para el usuario.
class RegistroInexistente : public ErrorServicio {
public:
    explicit RegistroInexistente(const QString& mensaje)
        : ErrorServicio(CodigoInexistente, 0, mensaje.toStdString()) {}
};

// Una escritura de resultado incierto (la respuesta de `confirmar` o de un lote con clave no
// llegó) que se va a preguntar otra vez con el mismo id, la misma clave y el mismo cuerpo.
struct ReintentoEscritura {
    const char* operacion = "";          // "confirmar" o "lote"
    int intento = 0;                     // 1: el primero sin respuesta
    std::chrono::milliseconds espera{0}; // lo que toca esperar antes de preguntar otra vez
    std::chrono::milliseconds transcurrido{0};
    std::string detalle; // por qué no hubo respuesta, para la bitácora
};

// Las credenciales propias de una estación (POST .../estaciones).
struct CredencialesEstacion {
    QString usuario;
    QString contrasena;
};

// Lo que un dataset necesita de su conexión: correr una sentencia fuera de transacción.
// La implementan la conexión remota y la local.
class ConexionDatos {
public:
    virtual ~ConexionDatos() = default;
    virtual protocolo::Resultado ejecuta(const protocolo::Sentencia& sentencia) = 0;
};

// Conexión con cajaplex-servidor: SQL con parámetros sobre HTTP, conexión persistente con
// TCP_NODELAY. Una por estación (o por hilo); no conecta nada hasta la primera solicitud.
class ConexionBD : public ConexionDatos {
public:
    static constexpr std::chrono::milliseconds EsperaConexion{3000};
    // Más que los 15 s que el servicio puede esperar al escritor más los 10 s de una sentencia.
    static constexpr std::chrono::milliseconds EsperaLectura{30000};

    ConexionBD();
    ~ConexionBD() override;
    ConexionBD(const ConexionBD&) = delete;
    ConexionBD& operator=(const ConexionBD&) = delete;

    // El servidor es esquema://direccion:puerto seguido siempre de la ruta del servicio.
    void configura(const QString& direccion, int puerto, const QString& usuario,
                   const QString& contrasena, const QString& esquema = QStringLiteral("http"));
    void tiempos(std::chrono::milliseconds conexion, std::chrono::milliseconds lectura);
    // Con https, el único certificado que se acepta es el de esta huella SHA-256 ("AA:BB:...",
    // sin importar mayúsculas ni separadores); otro sale como ErrorServicio con
    // CodigoCertificado antes de enviar nada. Vacía: se verifica con las autoridades del sistema.
    void fijaHuella(const QString& huella);
    QString servidor() const;

    // "AA:BB:..." (64 dígitos) de una huella escrita de cualquier forma; vacío si no lo es.
    static QString normalizaHuella(const QString& huella);
    // La huella del certificado que presenta el servicio en esa dirección, sin enviarle nada;
    // vacío si no contesta HTTPS.
    static QString huellaServicio(const QString& direccion, int puerto,
                                  std::chrono::milliseconds espera = EsperaConexion);
    // POST .../estaciones: la conexión va configurada con el usuario y la contraseña de un
    // administrador del sistema. Lanza ErrorServicio (401 si no lo es).
    CredencialesEstacion solicitaCredencialesEstacion(const QString& dispositivoID,
                                                      const QString& descripcion);

    // Comprueba que el servicio contesta y acepta las credenciales.
    void conecta();
    // Cierra la conexión persistente; la siguiente solicitud abre otra.
    void desconecta();

    // Una espera de cambios (GET .../eventos) con su propio cliente HTTP, armado con la misma
    // dirección, credenciales y cifrado que las sentencias: una espera larga no detiene a nadie.
    // Se pide una nueva para tomar los ajustes vigentes (p. ej. tras reconfigurar).
    class EsperaEventos;
    std::unique_ptr<EsperaEventos> esperaEventos() const;

    protocolo::Resultado ejecuta(const protocolo::Sentencia& sentencia) override;
    protocolo::Resultado ejecuta(const protocolo::Sentencia& sentencia,
                                 const std::string& transaccion);

    // Para Transaccion y Lote. `confirmar` y los lotes con clave de idempotencia se preguntan otra
    // vez, con el mismo id, la misma clave y el mismo cuerpo, mientras no llegue una respuesta
    // definitiva (cualquier respuesta del servicio salvo 503): el servicio contesta lo ya hecho,
    // así que nunca se duplica ni se informa como fallida una escritura que sí se registró.
    // Entre intentos se espera con retroceso acotado (EsperaInicialReintento, doblando hasta
    // EsperaMaximaReintento) por medio de esperaReintento.
    std::string comienzaTransaccion();
    void confirmaTransaccion(const std::string& id, const std::string& clave);
    void revierteTransaccion(const std::string& id);
    std::vector<protocolo::Resultado> ejecutaLote(const std::vector<protocolo::Sentencia>& lote,
                                                  const std::string& transaccion,
                                                  const std::string& clave);

    static constexpr std::chrono::milliseconds EsperaInicialReintento{200};
    static constexpr std::chrono::milliseconds EsperaMaximaReintento{3000};
    // Mientras el servicio recuerda el id de una transacción terminada; la clave de idempotencia
    // dura 24 h.
    static constexpr std::chrono::milliseconds LimiteReintentos{std::chrono::minutes(10)};

    // Lo que hace la estación mientras espera para preguntar otra vez por una escritura incierta.
    // Se llama sin el candado de la conexión tomado; debe esperar más o menos r.espera (una
    // pantalla puede mostrar "Error de conexión..." y atender eventos, sin correr otras
    // operaciones de datos) y devolver true para preguntar otra vez, false para dejar de esperar:
    // entonces la operación lanza ErrorServicio con CodigoIncierto (no se supo si se registró). Sin
    // asignar: duerme r.espera, avisa con qWarning y sigue hasta LimiteReintentos.
    using EsperaReintento = std::function<bool(const ReintentoEscritura&)>;
    void esperaReintento(EsperaReintento espera);
    void limiteReintentos(std::chrono::milliseconds limite);

private:
    struct Encabezado {
        std::string nombre;
        std::string valor;
    };
    struct RespuestaHttp {
        int estado = 0;
        std::string cuerpo;
    };
    // Un solo intento. Sin respuesta: ErrorServicio con CodigoConexion.
    RespuestaHttp intenta(const std::string& ruta, const std::string& cuerpo,
                          const std::vector<Encabezado>& encabezados);
    // Un solo intento; lo que no es 200 sale como ErrorServicio.
    std::string post(const std::string& ruta, const std::string& cuerpo,
                     const std::vector<Encabezado>& encabezados);
    // Intenta hasta tener una respuesta definitiva (ver arriba); devuelve el cuerpo del 200.
    std::string postHastaRespuesta(const char* operacion, const std::string& ruta,
                                   const std::string& cuerpo,
                                   const std::vector<Encabezado>& encabezados);

    struct Cliente;
    // El cliente HTTP con los ajustes actuales; se llama con mutex_ tomado.
    std::unique_ptr<Cliente> creaCliente() const;
    mutable std::mutex mutex_; // un cliente HTTP no se usa desde dos hilos a la vez
    std::unique_ptr<Cliente> cliente_;
    std::string esquema_ = "http";
    std::string direccion_;
    int puerto_ = 0;
    std::string usuario_;
    std::string contrasena_;
    std::string huella_;
    std::chrono::milliseconds esperaConexion_ = EsperaConexion;
    std::chrono::milliseconds esperaLectura_ = EsperaLectura;
    EsperaReintento esperaReintento_;
    std::chrono::milliseconds limiteReintentos_ = LimiteReintentos;
};

// Ver ConexionBD::esperaEventos. Un solo hilo espera; otro puede interrumpirla.
class ConexionBD::EsperaEventos {
public:
    explicit EsperaEventos(std::unique_ptr<Cliente> cliente);
    ~EsperaEventos();
    EsperaEventos(const EsperaEventos&) = delete;
    EsperaEventos& operator=(const EsperaEventos&) = delete;

    // GET .../eventos?`consulta` esperando hasta `segundos` (lo que se pide al servicio); devuelve
    // el cuerpo del 200. Otro estado, o sin respuesta, lanza ErrorServicio.
    std::string espera(const std::string& consulta, int segundos);
    // Desde otro hilo: corta la espera en curso, que sale con ErrorServicio de conexión.
    void interrumpe();

private:
    std::unique_ptr<Cliente> cliente_;
};

} // namespace cajaplex
