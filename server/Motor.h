#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "protocol/Protocolo.h"

// Frontera con el motor de base de datos. Todo lo propio de SQLite vive detrás de estas dos
// clases, para que otro motor sea un archivo nuevo y no una reescritura.
namespace cajaplex::servidor {

using protocolo::Parametro;
using protocolo::Resultado;

// Tablas de contabilidad del servicio: ninguna estación las ve.
inline constexpr const char* TablaVersionEsquema = "cajaplex_version_esquema";
inline constexpr const char* TablaIdempotencia = "cajaplex_idempotencia";
// Movimiento de existencias de cada renglón de documento, tal como se hizo al escribirlo: la
// cancelación revierte exactamente esto.
inline constexpr const char* TablaMovimientos = "cajaplex_movimientos";
// Credenciales de las estaciones: usuario, dispositivo y SHA-256 del secreto.
inline constexpr const char* TablaEstaciones = "cajaplex_estaciones";

// Nombre (en minúsculas) de una tabla de contabilidad del servicio.
inline bool esTablaDeContabilidad(std::string_view nombre) {
    return nombre == TablaVersionEsquema || nombre == TablaIdempotencia ||
           nombre == TablaMovimientos || nombre == TablaEstaciones;
}

class SalidaJson;

// Lo que queda de una sentencia ya escrita como JSON: lo que una referencia "de" de un lote
// puede pedir.
struct Resumen {
    std::vector<std::string> columnas;
    std::optional<std::vector<protocolo::Valor>> primeraFila;
    int64_t filasAfectadas = 0;
    int64_t ultimoId = 0;
};

// Una conexión la usa un solo hilo a la vez (el pool o la transacción lo garantizan).
class Conexion {
public:
    virtual ~Conexion() = default;

    // Sentencia de una estación: pasa por el arenero (solo lo permitido) y el límite de tiempo.
    // Lanza ErrorProtocolo con el código que corresponde.
    virtual Resultado ejecuta(const std::string& sql, const std::vector<Parametro>& parametros) = 0;
    // Igual, pero escribe la respuesta JSON en salida mientras recorre los renglones (medida:
    // 413 si pasa el límite) y devuelve solo su resumen.
    virtual Resumen ejecutaEnJson(const std::string& sql, const std::vector<Parametro>& parametros,
                                  SalidaJson& salida) = 0;
    // Verdadero si la sentencia de estación no escribe (no necesita al escritor).
    virtual bool soloLee(const std::string& sql) = 0;

    // Sentencias del propio servicio (procedimientos, bitácora): sin arenero, parámetros por
    // nombre.
    virtual Resultado ejecutaInterna(const std::string& sql,
                                     const std::vector<Parametro>& parametros = {}) = 0;
    // Varias sentencias de confianza seguidas (migraciones, datos de demostración).
    virtual void ejecutaGuion(const std::string& sql) = 0;

    virtual void comienza() = 0; // toma la escritura de inmediato
    virtual void confirma() = 0;
    virtual void revierte() = 0;
    virtual bool enTransaccion() = 0;
    virtual void marca(const std::string& punto) = 0;
    virtual void regresaA(const std::string& punto) = 0; // deshace hasta la marca y la libera
    virtual void libera(const std::string& punto) = 0;

    // Detiene la sentencia en curso desde otro hilo.
    virtual void interrumpe() = 0;
    // Devuelve la memoria que el motor guarda en caché para esta conexión.
    virtual void liberaMemoria() = 0;
};

class Motor {
public:
    virtual ~Motor() = default;
    virtual std::unique_ptr<Conexion> abreConexion() = 0;
    // Devuelve al sistema la memoria que el motor y el proceso ya no usan.
    virtual void liberaMemoria() {}
};

} // namespace cajaplex::servidor
