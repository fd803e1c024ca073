#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include <nlohmann/json.hpp>

// Tipos y formato JSON del protocolo de la base de datos (SQL sobre HTTP).
namespace cajaplex::protocolo {

inline constexpr std::string_view RutaBase = "/ReglasNegocio/Cajaplex/";
inline constexpr size_t MaximoSentenciasLote = 1000;
inline constexpr size_t LimiteCuerpo = 32u * 1024u * 1024u;

enum class Tipo { Entero, Real, Texto, Booleano, Fecha, Blob, Guid };

std::string_view nombreTipo(Tipo tipo);
std::optional<Tipo> tipoDesdeNombre(std::string_view nombre);

// Bytes de un blob; distinto de un texto aunque ambos sean std::string.
struct Bytes {
    std::string datos;
    bool operator==(const Bytes&) const = default;
};

// Un valor de columna o de parámetro: NULL, entero, real, texto o bytes.
using Valor = std::variant<std::monostate, int64_t, double, std::string, Bytes>;

inline bool esNulo(const Valor& v) {
    return std::holds_alternative<std::monostate>(v);
}

// Un parámetro toma su valor literal o, dentro de un lote, de una sentencia anterior.
struct Referencia {
    size_t sentencia = 0;
    std::string columna;
};

struct Parametro {
    std::string nombre;
    Tipo tipo = Tipo::Texto;
    Valor valor;
    std::optional<Referencia> de;
};

struct Sentencia {
    std::string sql;
    std::vector<Parametro> parametros;
};

struct Columna {
    std::string nombre;
    Tipo tipo = Tipo::Texto;
};

struct Resultado {
    std::vector<Columna> columnas;
    std::vector<std::vector<Valor>> filas;
    int64_t filasAfectadas = 0;
    int64_t ultimoId = 0;
};

// Error con su estado HTTP y su clave; toda respuesta de error lleva ambos.
class ErrorProtocolo : public std::runtime_error {
public:
    ErrorProtocolo(int estadoHttp, std::string codigo, const std::string& mensaje)
        : std::runtime_error(mensaje), estadoHttp_(estadoHttp), codigo_(std::move(codigo)) {}
    int estadoHttp() const { return estadoHttp_; }
    const std::string& codigo() const { return codigo_; }
    std::optional<size_t> sentencia;

private:
    int estadoHttp_;
    std::string codigo_;
};

ErrorProtocolo errorSolicitud(const std::string& mensaje);

// Convierte un valor al tipo declarado del parámetro (p. ej. texto "5" a entero).
Valor conviertePara(Tipo tipo, const Valor& valor);

nlohmann::json aJson(const Sentencia& sentencia);
nlohmann::json aJson(const Resultado& resultado);
nlohmann::json aJson(const ErrorProtocolo& error);
nlohmann::json valorAJson(Tipo tipo, const Valor& valor);

// Lectores: lanzan ErrorProtocolo 400 "solicitud" si el JSON no tiene la forma del protocolo.
Sentencia sentenciaDesdeJson(const nlohmann::json& j);
std::vector<Sentencia> loteDesdeJson(const nlohmann::json& j);
Resultado resultadoDesdeJson(const nlohmann::json& j);
ErrorProtocolo errorDesdeJson(int estadoHttp, const nlohmann::json& j);

} // namespace cajaplex::protocolo
