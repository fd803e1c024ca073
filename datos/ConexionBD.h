#pragma once

#include <chrono>
#include <cstddef>
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
    QString servidor() const;

    // Comprueba que el servicio contesta y acepta las credenciales.
    void conecta();
    // Cierra la conexión persistente; la siguiente solicitud abre otra.
    void desconecta();

    protocolo::Resultado ejecuta(const protocolo::Sentencia& sentencia) override;
    protocolo::Resultado ejecuta(const protocolo::Sentencia& sentencia,
                                 const std::string& transaccion);

    // Para Transaccion y Lote. Las que llevan clave de idempotencia se reintentan una vez, con la
    // misma clave y el mismo cuerpo, si la respuesta se perdió: el servicio contesta lo ya hecho.
    std::string comienzaTransaccion();
    void confirmaTransaccion(const std::string& id, const std::string& clave);
    void revierteTransaccion(const std::string& id);
    std::vector<protocolo::Resultado> ejecutaLote(const std::vector<protocolo::Sentencia>& lote,
                                                  const std::string& transaccion,
                                                  const std::string& clave);

private:
    struct Encabezado {
        std::string nombre;
        std::string valor;
    };
    std::string post(const std::string& ruta, const std::string& cuerpo,
                     const std::vector<Encabezado>& encabezados, bool reintentable);

    struct Cliente;
    mutable std::mutex mutex_; // un cliente HTTP no se usa desde dos hilos a la vez
    std::unique_ptr<Cliente> cliente_;
    std::string esquema_ = "http";
    std::string direccion_;
    int puerto_ = 0;
    std::string usuario_;
    std::string contrasena_;
    std::chrono::milliseconds esperaConexion_ = EsperaConexion;
    std::chrono::milliseconds esperaLectura_ = EsperaLectura;
};

} // namespace cajaplex
