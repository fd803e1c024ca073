#include "server/Servicio.h"

#include <chrono>

#include "server/Arenero.h"
#include "server/Idempotencia.h"
#include "server/Procedimientos.h"

namespace cajaplex::servidor {

using nlohmann::json;
using protocolo::ErrorProtocolo;
using protocolo::Sentencia;

namespace {

constexpr const char* PuntoSentencia = "cajaplex_sentencia";
constexpr const char* PuntoLote = "cajaplex_lote";

std::string volcado(const json& j) {
    return j.dump(-1, ' ', false, json::error_handler_t::replace);
}

Respuesta respuestaDeError(const ErrorProtocolo& e) {
    return {e.estadoHttp(), volcado(aJson(e))};
}

json leeJson(const std::string& cuerpo) {
    json j = json::parse(cuerpo, nullptr, false);
    if (j.is_discarded()) throw protocolo::errorSolicitud("El cuerpo no es JSON válido");
    return j;
}

// Sentencia ya revisada por el arenero; "llamada" dice si es un procedimiento.
Resultado ejecutaRevisada(Conexion& c, const std::string& sql, const std::vector<Parametro>& params,
                          const std::optional<LlamadaProcedimiento>& llamada) {
    return llamada ? ejecutaProcedimiento(c, *llamada) : c.ejecuta(sql, params);
}

Resultado ejecutaUna(Conexion& c, const std::string& sql, const std::vector<Parametro>& params) {
    revisaTextoDeEstacion(sql);
    return ejecutaRevisada(c, sql, params, reconoceProcedimiento(sql, params));
}

// El valor al que apunta una referencia "de" de un lote.
protocolo::Valor valorReferido(const protocolo::Referencia& ref, size_t actual,
                               const std::vector<Resultado>& previos) {
    if (ref.sentencia >= actual)
        throw protocolo::errorSolicitud("Una referencia solo puede nombrar una sentencia anterior");
    const Resultado& r = previos[ref.sentencia];
    auto igual = [](const std::string& a, const std::string& b) {
        return a.size() == b.size() &&
               std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
                   return std::tolower(static_cast<unsigned char>(x)) ==
                          std::tolower(static_cast<unsigned char>(y));
               });
    };
    for (size_t i = 0; i < r.columnas.size(); ++i) {
        if (!igual(r.columnas[i].nombre, ref.columna)) continue;
        if (r.filas.empty())
            throw protocolo::errorSolicitud("La sentencia " + std::to_string(ref.sentencia) +
                                            " no devolvió renglones");
        return r.filas[0][i];
    }
    if (igual(ref.columna, "ultimoId")) return r.ultimoId;
    if (igual(ref.columna, "filasAfectadas")) return r.filasAfectadas;
    throw protocolo::errorSolicitud("La sentencia " + std::to_string(ref.sentencia) +
                                    " no tiene la columna '" + ref.columna + "'");
}

// Corre las sentencias de un lote en orden; un error lleva el índice de la que falló.
json ejecutaLote(Conexion& c, const std::vector<Sentencia>& sentencias) {
    std::vector<Resultado> resultados;
    resultados.reserve(sentencias.size());
    json lista = json::array();
    for (size_t i = 0; i < sentencias.size(); ++i) {
        try {
            std::vector<Parametro> params = sentencias[i].parametros;
            for (auto& p : params) {
                if (!p.de) continue;
                p.valor = valorReferido(*p.de, i, resultados);
                p.de.reset();
            }
            resultados.push_back(ejecutaUna(c, sentencias[i].sql, params));
            lista.push_back(aJson(resultados.back()));
        } catch (ErrorProtocolo& e) {
            e.sentencia = i;
            throw;
        }
    }
    return json{{"resultados", std::move(lista)}};
}

// Respuesta ya guardada para la clave, o 422 si la clave vino con otra solicitud.
std::optional<Respuesta> repeticion(Conexion& c, const Solicitud& s, const std::string& huella) {
    auto guardada = buscaIdempotencia(c, s.idempotencia);
    if (!guardada) return std::nullopt;
    if (guardada->huella != huella)
        throw ErrorProtocolo(422, "idempotencia",
                             "La clave de idempotencia ya se usó con otra solicitud");
    return Respuesta{200, guardada->respuesta};
}

long long segundosAhora() {
    return std::chrono::duration_cast<std::chrono::seconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

} // namespace

// Cuenta la solicitud en curso y convierte los errores del protocolo, y cualquier otro como error
// interno, en su respuesta JSON.
template <typename F> Respuesta Servicio::atiende(F&& trabajo) {
    {
        std::lock_guard lock(mEnCurso_);
        if (deteniendo_)
            return respuestaDeError(
                ErrorProtocolo(503, "ocupado", "El servicio se está deteniendo"));
        ++enCurso_;
    }
    struct Termina {
        Servicio& s;
        ~Termina() {
            std::lock_guard lock(s.mEnCurso_);
            if (--s.enCurso_ == 0) s.cvEnCurso_.notify_all();
        }
    } termina{*this};
    try {
        return trabajo();
    } catch (const ErrorProtocolo& e) {
        return respuestaDeError(e);
    } catch (const std::exception& e) {
        return respuestaDeError(ErrorProtocolo(500, "interno", e.what()));
    }
}

Servicio::Servicio(Motor& motor, TiemposTransaccion tiempos)
    : pool_(motor, 48), tiempos_(tiempos), transacciones_(pool_, escritor_, tiempos),
      ultimaPurga_(segundosAhora()) {}

Respuesta Servicio::sentencia(const Solicitud& s) {
    return atiende([&]() -> Respuesta {
        const Sentencia sentencia = protocolo::sentenciaDesdeJson(leeJson(s.cuerpo));
        Resultado r;
        if (!s.transaccion.empty()) {
            transacciones_.usa(s.transaccion, [&](Conexion& c) {
                c.marca(PuntoSentencia);
                try {
                    r = ejecutaUna(c, sentencia.sql, sentencia.parametros);
                } catch (...) {
                    if (c.enTransaccion()) c.regresaA(PuntoSentencia);
                    throw;
                }
                c.libera(PuntoSentencia);
            });
            return {200, volcado(aJson(r))};
        }
        revisaTextoDeEstacion(sentencia.sql);
        auto c = pool_.toma();
        auto llamada = reconoceProcedimiento(sentencia.sql, sentencia.parametros);
        const bool escribe = llamada ? llamada->escribe : !c->soloLee(sentencia.sql);
        if (!escribe) {
            r = ejecutaRevisada(*c, sentencia.sql, sentencia.parametros, llamada);
            return {200, volcado(aJson(r))};
        }
        if (!escritor_.toma(tiempos_.esperaEscritor))
            throw ErrorProtocolo(503, "ocupado",
                                 "La base de datos está ocupada por otra escritura");
        EscrituraTomada escritura(escritor_);
        c->comienza();
        try {
            r = ejecutaRevisada(*c, sentencia.sql, sentencia.parametros, llamada);
            c->confirma();
        } catch (...) {
            c->revierte();
            throw;
        }
        return {200, volcado(aJson(r))};
    });
}

Respuesta Servicio::lote(const Solicitud& s) {
    return atiende([&]() -> Respuesta {
        if (s.traeIdempotencia) validaClaveIdempotencia(s.idempotencia);
        return s.transaccion.empty() ? loteConTransaccionPropia(s) : loteEnTransaccion(s);
    });
}

Respuesta Servicio::loteEnTransaccion(const Solicitud& s) {
    const auto sentencias = protocolo::loteDesdeJson(leeJson(s.cuerpo));
    const std::string huella = huellaSolicitud(s.ruta, s.cuerpo);
    Respuesta respuesta;
    transacciones_.usa(s.transaccion, [&](Conexion& c) {
        if (s.traeIdempotencia) {
            if (auto previa = repeticion(c, s, huella)) {
                respuesta = *previa;
                return;
            }
        }
        c.marca(PuntoLote);
        try {
            respuesta = {200, volcado(ejecutaLote(c, sentencias))};
            if (s.traeIdempotencia) guardaIdempotencia(c, s.idempotencia, huella, respuesta.cuerpo);
        } catch (...) {
            if (c.enTransaccion()) c.regresaA(PuntoLote);
            throw;
        }
        c.libera(PuntoLote);
    });
    return respuesta;
}

Respuesta Servicio::loteConTransaccionPropia(const Solicitud& s) {
    const auto sentencias = protocolo::loteDesdeJson(leeJson(s.cuerpo));
    const std::string huella = huellaSolicitud(s.ruta, s.cuerpo);
    auto c = pool_.toma();
    if (s.traeIdempotencia) {
        if (auto previa = repeticion(*c, s, huella)) return *previa;
    }
    if (!escritor_.toma(tiempos_.esperaEscritor))
        throw ErrorProtocolo(503, "ocupado", "La base de datos está ocupada por otra escritura");
    EscrituraTomada escritura(escritor_);
    c->comienza();
    try {
        // Dentro del escritor nadie más pudo guardar la clave: esta lectura es la que vale.
        if (s.traeIdempotencia) {
            if (auto previa = repeticion(*c, s, huella)) {
                c->revierte();
                return *previa;
            }
        }
        Respuesta respuesta{200, volcado(ejecutaLote(*c, sentencias))};
        if (s.traeIdempotencia) guardaIdempotencia(*c, s.idempotencia, huella, respuesta.cuerpo);
        const long long ahora = segundosAhora();
        if (ahora - ultimaPurga_.load() > 3600) {
            ultimaPurga_ = ahora;
            purgaIdempotencia(*c);
        }
        c->confirma();
        return respuesta;
    } catch (...) {
        c->revierte();
        throw;
    }
}

Respuesta Servicio::comienzaTransaccion() {
    return atiende([&]() -> Respuesta {
        return {200, volcado(json{{"transaccion", transacciones_.comienza()}})};
    });
}

Respuesta Servicio::confirmaTransaccion(const std::string& id, const Solicitud& s) {
    return atiende([&]() -> Respuesta {
        const std::string respuesta = volcado(json{{"transaccion", id}, {"estado", "confirmada"}});
        if (!s.traeIdempotencia) {
            transacciones_.confirma(id, [](Conexion&) {});
            return {200, respuesta};
        }
        validaClaveIdempotencia(s.idempotencia);
        const std::string huella = huellaSolicitud(s.ruta, s.cuerpo);
        {
            auto c = pool_.toma();
            if (auto previa = repeticion(*c, s, huella)) return *previa;
        }
        transacciones_.confirma(
            id, [&](Conexion& c) { guardaIdempotencia(c, s.idempotencia, huella, respuesta); });
        return {200, respuesta};
    });
}

Respuesta Servicio::revierteTransaccion(const std::string& id) {
    return atiende([&]() -> Respuesta {
        transacciones_.revierte(id);
        return {200, volcado(json{{"transaccion", id}, {"estado", "revertida"}})};
    });
}

void Servicio::detiene(std::chrono::milliseconds espera) {
    {
        std::unique_lock lock(mEnCurso_);
        deteniendo_ = true;
        cvEnCurso_.wait_for(lock, espera, [&] { return enCurso_ == 0; });
    }
    transacciones_.detiene();
    pool_.cierra();
}

} // namespace cajaplex::servidor
