#pragma once

#include <memory>
#include <string>
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

// Una conexión la usa un solo hilo a la vez (el pool o la transacción lo garantizan).
class Conexion {
public:
    virtual ~Conexion() = default;

    // Sentencia de una estación: pasa por el arenero (solo lo permitido) y el límite de tiempo.
    // Lanza ErrorProtocolo con el código que corresponde.
    virtual Resultado ejecuta(const std::string& sql, const std::vector<Parametro>& parametros) = 0;
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
};

class Motor {
public:
    virtual ~Motor() = default;
    virtual std::unique_ptr<Conexion> abreConexion() = 0;
};

} // namespace cajaplex::servidor
