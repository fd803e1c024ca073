#include "protocol/Protocolo.h"

#include <array>
#include <cmath>
#include <regex>

#include "protocol/Base64.h"

namespace cajaplex::protocolo {

using nlohmann::json;

namespace {
constexpr std::array<std::pair<Tipo, std::string_view>, 7> nombres = {{
    {Tipo::Entero, "entero"},
    {Tipo::Real, "real"},
    {Tipo::Texto, "texto"},
    {Tipo::Booleano, "booleano"},
    {Tipo::Fecha, "fecha"},
    {Tipo::Blob, "blob"},
    {Tipo::Guid, "guid"},
}};

bool esFechaValida(const std::string& texto) {
    static const std::regex forma(R"(\d{4}-\d{2}-\d{2}( \d{2}:\d{2}:\d{2}(\.\d{1,3})?)?)");
    return std::regex_match(texto, forma);
}

// Valor literal de un parámetro según su tipo declarado.
Valor valorDesdeJson(Tipo tipo, const json& v, const std::string& nombre) {
    if (v.is_null()) return std::monostate{};
    auto falla = [&] {
        return errorSolicitud("El parámetro '" + nombre + "' no tiene un valor de tipo " +
                              std::string(nombreTipo(tipo)));
    };
    switch (tipo) {
    case Tipo::Entero:
        if (v.is_number_integer()) return v.get<int64_t>();
        if (v.is_number_float()) {
            double d = v.get<double>();
            if (std::trunc(d) == d && std::abs(d) < 9.2e18) return static_cast<int64_t>(d);
        }
        throw falla();
    case Tipo::Real:
        if (v.is_number()) return v.get<double>();
        throw falla();
    case Tipo::Booleano:
        if (v.is_boolean()) return int64_t{v.get<bool>() ? 1 : 0};
        if (v.is_number_integer() && (v.get<int64_t>() == 0 || v.get<int64_t>() == 1))
            return v.get<int64_t>();
        throw falla();
    case Tipo::Fecha:
        if (v.is_string() && esFechaValida(v.get<std::string>())) return v.get<std::string>();
        throw falla();
    case Tipo::Texto:
    case Tipo::Guid:
        if (v.is_string()) return v.get<std::string>();
        throw falla();
    case Tipo::Blob:
        if (v.is_string()) {
            if (auto bytes = decodificaBase64(v.get_ref<const std::string&>()))
                return Bytes{*bytes};
        }
        throw falla();
    }
    throw falla();
}

Tipo tipoRequerido(const json& j, const std::string& contexto) {
    if (!j.is_object() || !j.contains("tipo") || !j["tipo"].is_string())
        throw errorSolicitud(contexto + " no indica su tipo");
    auto tipo = tipoDesdeNombre(j["tipo"].get<std::string>());
    if (!tipo) throw errorSolicitud(contexto + " tiene un tipo desconocido");
    return *tipo;
}
} // namespace

std::string_view nombreTipo(Tipo tipo) {
    for (const auto& [t, n] : nombres)
        if (t == tipo) return n;
    return "texto";
}

std::optional<Tipo> tipoDesdeNombre(std::string_view nombre) {
    for (const auto& [t, n] : nombres)
        if (n == nombre) return t;
    return std::nullopt;
}

ErrorProtocolo errorSolicitud(const std::string& mensaje) {
    return ErrorProtocolo(400, "solicitud", mensaje);
}

Valor conviertePara(Tipo tipo, const Valor& valor) {
    if (esNulo(valor)) return valor;
    switch (tipo) {
    case Tipo::Entero:
    case Tipo::Booleano:
        if (auto* d = std::get_if<double>(&valor)) return static_cast<int64_t>(*d);
        if (auto* s = std::get_if<std::string>(&valor)) {
            try {
                return static_cast<int64_t>(std::stoll(*s));
            } catch (const std::exception&) {
                return valor;
            }
        }
        return valor;
    case Tipo::Real:
        if (auto* i = std::get_if<int64_t>(&valor)) return static_cast<double>(*i);
        return valor;
    case Tipo::Texto:
    case Tipo::Fecha:
    case Tipo::Guid:
        if (auto* i = std::get_if<int64_t>(&valor)) return std::to_string(*i);
        if (auto* b = std::get_if<Bytes>(&valor)) return b->datos;
        return valor;
    case Tipo::Blob:
        if (auto* s = std::get_if<std::string>(&valor)) return Bytes{*s};
        return valor;
    }
    return valor;
}

json valorAJson(Tipo, const Valor& valor) {
    return std::visit(
        [](const auto& v) -> json {
            using T = std::decay_t<decltype(v)>;
            if constexpr (std::is_same_v<T, std::monostate>)
                return nullptr;
            else if constexpr (std::is_same_v<T, Bytes>)
                return codificaBase64(v.datos);
            else
                return v;
        },
        valor);
}

json aJson(const Sentencia& sentencia) {
    json j{{"sql", sentencia.sql}};
    if (sentencia.parametros.empty()) return j;
    json parametros = json::object();
    for (const auto& p : sentencia.parametros) {
        json par{{"tipo", nombreTipo(p.tipo)}};
        if (p.de)
            par["de"] = {{"sentencia", p.de->sentencia}, {"columna", p.de->columna}};
        else
            par["valor"] = valorAJson(p.tipo, p.valor);
        parametros[p.nombre] = std::move(par);
    }
    j["parametros"] = std::move(parametros);
    return j;
}

json aJson(const Resultado& r) {
    json columnas = json::array();
    for (const auto& c : r.columnas)
        columnas.push_back({{"nombre", c.nombre}, {"tipo", nombreTipo(c.tipo)}});
    json filas = json::array();
    for (const auto& fila : r.filas) {
        json f = json::array();
        for (size_t i = 0; i < fila.size(); ++i)
            f.push_back(valorAJson(r.columnas[i].tipo, fila[i]));
        filas.push_back(std::move(f));
    }
    return {{"columnas", std::move(columnas)},
            {"filas", std::move(filas)},
            {"filasAfectadas", r.filasAfectadas},
            {"ultimoId", r.ultimoId}};
}

json aJson(const ErrorProtocolo& error) {
    json j{{"error", error.what()}, {"codigo", error.codigo()}};
    if (error.sentencia) j["sentencia"] = *error.sentencia;
    return j;
}

Sentencia sentenciaDesdeJson(const json& j) {
    if (!j.is_object()) throw errorSolicitud("La solicitud debe ser un objeto JSON");
    if (!j.contains("sql") || !j["sql"].is_string())
        throw errorSolicitud("Falta el texto SQL de la sentencia");
    Sentencia s{j["sql"].get<std::string>(), {}};
    if (!j.contains("parametros") || j["parametros"].is_null()) return s;
    const auto& parametros = j["parametros"];
    if (!parametros.is_object()) throw errorSolicitud("'parametros' debe ser un objeto");
    for (const auto& [nombre, p] : parametros.items()) {
        const std::string contexto = "El parámetro '" + nombre + "'";
        Parametro par{nombre, tipoRequerido(p, contexto), {}, {}};
        if (p.contains("de")) {
            const auto& de = p["de"];
            if (!de.is_object() || !de.contains("sentencia") ||
                !de["sentencia"].is_number_unsigned() || !de.contains("columna") ||
                !de["columna"].is_string())
                throw errorSolicitud(contexto + " tiene una referencia mal formada");
            par.de = Referencia{de["sentencia"].get<size_t>(), de["columna"].get<std::string>()};
        } else if (p.contains("valor")) {
            par.valor = valorDesdeJson(par.tipo, p["valor"], nombre);
        } else {
            throw errorSolicitud(contexto + " no tiene valor");
        }
        s.parametros.push_back(std::move(par));
    }
    return s;
}

std::vector<Sentencia> loteDesdeJson(const json& j) {
    if (!j.is_object() || !j.contains("sentencias") || !j["sentencias"].is_array())
        throw errorSolicitud("El lote debe traer la lista 'sentencias'");
    const auto& lista = j["sentencias"];
    if (lista.size() > MaximoSentenciasLote)
        throw errorSolicitud("Un lote admite a lo más 1000 sentencias");
    std::vector<Sentencia> sentencias;
    sentencias.reserve(lista.size());
    for (size_t i = 0; i < lista.size(); ++i) {
        try {
            sentencias.push_back(sentenciaDesdeJson(lista[i]));
        } catch (ErrorProtocolo& e) {
            e.sentencia = i;
            throw;
        }
    }
    return sentencias;
}

Resultado resultadoDesdeJson(const json& j) {
    Resultado r;
    try {
        for (const auto& c : j.at("columnas")) {
            auto tipo = tipoDesdeNombre(c.at("tipo").get<std::string>());
            r.columnas.push_back({c.at("nombre").get<std::string>(), tipo.value_or(Tipo::Texto)});
        }
        for (const auto& f : j.at("filas")) {
            std::vector<Valor> fila;
            fila.reserve(r.columnas.size());
            for (size_t i = 0; i < f.size() && i < r.columnas.size(); ++i) {
                const auto& v = f[i];
                if (v.is_null())
                    fila.emplace_back(std::monostate{});
                else if (v.is_number_integer())
                    fila.emplace_back(v.get<int64_t>());
                else if (v.is_number())
                    fila.emplace_back(v.get<double>());
                else if (v.is_boolean())
                    fila.emplace_back(int64_t{v.get<bool>() ? 1 : 0});
                else if (r.columnas[i].tipo == Tipo::Blob)
                    fila.emplace_back(Bytes{decodificaBase64(v.get<std::string>()).value_or("")});
                else
                    fila.emplace_back(v.get<std::string>());
            }
            r.filas.push_back(std::move(fila));
        }
        r.filasAfectadas = j.value("filasAfectadas", int64_t{0});
        r.ultimoId = j.value("ultimoId", int64_t{0});
    } catch (const json::exception& e) {
        throw ErrorProtocolo(502, "respuesta", std::string("Respuesta mal formada: ") + e.what());
    }
    return r;
}

ErrorProtocolo errorDesdeJson(int estadoHttp, const json& j) {
    std::string mensaje = j.is_object() ? j.value("error", std::string{}) : std::string{};
    std::string codigo = j.is_object() ? j.value("codigo", std::string{}) : std::string{};
    ErrorProtocolo e(estadoHttp, codigo.empty() ? "desconocido" : codigo,
                     mensaje.empty() ? "Error " + std::to_string(estadoHttp) : mensaje);
    if (j.is_object() && j.contains("sentencia") && j["sentencia"].is_number_unsigned())
        e.sentencia = j["sentencia"].get<size_t>();
    return e;
}

} // namespace cajaplex::protocolo
