#include "server/Servicio.h"

#include <chrono>
#include <new>
#include <optional>

#include "server/Arenero.h"
#include "server/Estaciones.h"
#include "server/Idempotencia.h"
#include "server/Procedimientos.h"
#include "server/SalidaJson.h"

namespace cajaplex::servidor {

using nlohmann::json;
using protocolo::ErrorProtocolo;
using protocolo::Sentencia;

namespace {

constexpr const char* PuntoSentencia = "cajaplex_sentencia";
constexpr const char* PuntoLote = "cajaplex_lote";
constexpr const char* PuntoClave = "cajaplex_clave";
// Pasada una respuesta de este tamaño, la memoria que dejó se devuelve al sistema.
constexpr size_t RespuestaGrande = size_t{8} << 20;

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

// Sentencia ya revisada por el arenero; "llamada" dice si es un procedimiento. La respuesta se
// escribe en salida.
Resumen ejecutaRevisada(Conexion& c, const std::string& sql, const std::vector<Parametro>& params,
                        const std::optional<LlamadaProcedimiento>& llamada, SalidaJson& salida) {
    if (!llamada) return c.ejecutaEnJson(sql, params, salida);
    Resultado r = ejecutaProcedimiento(c, *llamada);
    salida.crudo(volcado(aJson(r)));
    Resumen resumen;
    for (const auto& col : r.columnas)
        resumen.columnas.push_back(col.nombre);
    if (!r.filas.empty()) resumen.primeraFila = std::move(r.filas[0]);
    resumen.filasAfectadas = r.filasAfectadas;
    resumen.ultimoId = r.ultimoId;
    return resumen;
}

Resumen ejecutaUna(Conexion& c, const std::string& sql, const std::vector<Parametro>& params,
                   SalidaJson& salida) {
    revisaTextoDeEstacion(sql);
    return ejecutaRevisada(c, sql, params, reconoceProcedimiento(sql, params), salida);
}

// El valor al que apunta una referencia "de" de un lote.
protocolo::Valor valorReferido(const protocolo::Referencia& ref, size_t actual,
                               const std::vector<Resumen>& previos) {
    if (ref.sentencia >= actual)
        throw protocolo::errorSolicitud("Una referencia solo puede nombrar una sentencia anterior");
    const Resumen& r = previos[ref.sentencia];
    auto igual = [](const std::string& a, const std::string& b) {
        return a.size() == b.size() &&
               std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
                   return std::tolower(static_cast<unsigned char>(x)) ==
                          std::tolower(static_cast<unsigned char>(y));
               });
    };
    for (size_t i = 0; i < r.columnas.size(); ++i) {
        if (!igual(r.columnas[i], ref.columna)) continue;
        if (!r.primeraFila || i >= r.primeraFila->size())
            throw protocolo::errorSolicitud("La sentencia " + std::to_string(ref.sentencia) +
                                            " no devolvió renglones");
        return (*r.primeraFila)[i];
    }
    if (igual(ref.columna, "ultimoId")) return r.ultimoId;
    if (igual(ref.columna, "filasAfectadas")) return r.filasAfectadas;
    throw protocolo::errorSolicitud("La sentencia " + std::to_string(ref.sentencia) +
                                    " no tiene la columna '" + ref.columna + "'");
}

// Corre las sentencias de un lote en orden y escribe {"resultados": [...]}; un error lleva el
// índice de la que falló.
void ejecutaLote(Conexion& c, const std::vector<Sentencia>& sentencias, SalidaJson& salida) {
    std::vector<Resumen> resumenes;
    resumenes.reserve(sentencias.size());
    salida.crudo("{\"resultados\":[");
    for (size_t i = 0; i < sentencias.size(); ++i) {
        try {
            std::vector<Parametro> params = sentencias[i].parametros;
            for (auto& p : params) {
                if (!p.de) continue;
                p.valor = valorReferido(*p.de, i, resumenes);
                p.de.reset();
            }
            if (i > 0) salida.caracter(',');
            resumenes.push_back(ejecutaUna(c, sentencias[i].sql, params, salida));
        } catch (ErrorProtocolo& e) {
            e.sentencia = i;
            throw;
        }
    }
    salida.crudo("]}");
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
        Respuesta r = trabajo();
        r.grande = r.cuerpo.size() >= RespuestaGrande;
        return r;
    } catch (const ErrorProtocolo& e) {
        // Una respuesta o una sentencia que no cupo dejó memoria libre: se devuelve.
        if (e.estadoHttp() == 413 || e.estadoHttp() == 503) devuelveMemoria();
        return respuestaDeError(e);
    } catch (const std::bad_alloc&) {
        devuelveMemoria();
        return respuestaDeError(
            ErrorProtocolo(503, "ocupado", "El servicio no tiene memoria para esta solicitud"));
    } catch (const std::exception& e) {
        return respuestaDeError(ErrorProtocolo(500, "interno", e.what()));
    }
}

Servicio::Servicio(Motor& motor, TiemposTransaccion tiempos, size_t conexiones)
    : motor_(motor), pool_(motor, conexiones, conexiones, tiempos.esperaEscritor),
      tiempos_(tiempos), transacciones_(pool_, escritor_, tiempos), ultimaPurga_(segundosAhora()) {}

void Servicio::devuelveMemoria() {
    motor_.liberaMemoria();
}

Respuesta Servicio::sentencia(const Solicitud& s) {
    return atiende([&]() -> Respuesta {
        const Sentencia sentencia = protocolo::sentenciaDesdeJson(leeJson(s.cuerpo));
        for (const auto& p : sentencia.parametros)
            if (p.de)
                throw protocolo::errorSolicitud(
                    "El parámetro '" + p.nombre +
                    "' toma su valor de otra sentencia: eso solo vale dentro de un lote");
        SalidaJson salida;
        if (!s.transaccion.empty()) {
            transacciones_.usa(s.transaccion, [&](Conexion& c) {
                c.marca(PuntoSentencia);
                try {
                    ejecutaUna(c, sentencia.sql, sentencia.parametros, salida);
                } catch (...) {
                    if (c.enTransaccion()) c.regresaA(PuntoSentencia);
                    throw;
                }
                c.libera(PuntoSentencia);
            });
            return {200, salida.suelta()};
        }
        revisaTextoDeEstacion(sentencia.sql);
        std::optional<PoolConexiones::Prestada> c(pool_.toma());
        auto llamada = reconoceProcedimiento(sentencia.sql, sentencia.parametros);
        const bool escribe = llamada ? llamada->escribe : !(*c)->soloLee(sentencia.sql);
        if (!escribe) {
            ejecutaRevisada(**c, sentencia.sql, sentencia.parametros, llamada, salida);
            return {200, salida.suelta()};
        }
        // Mientras espera al escritor no retiene una conexión que otro podría usar.
        c.reset();
        if (!escritor_.toma(tiempos_.esperaEscritor))
            throw ErrorProtocolo(503, "ocupado",
                                 "La base de datos está ocupada por otra escritura");
        EscrituraTomada escritura(escritor_);
        c.emplace(pool_.toma());
        Conexion& con = **c;
        con.comienza();
        try {
            ejecutaRevisada(con, sentencia.sql, sentencia.parametros, llamada, salida);
            con.confirma();
        } catch (...) {
            con.revierte();
            throw;
        }
        return {200, salida.suelta()};
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
            SalidaJson salida;
            ejecutaLote(c, sentencias, salida);
            if (s.traeIdempotencia) guardaIdempotencia(c, s.idempotencia, huella, salida.texto());
            respuesta = {200, salida.suelta()};
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
    if (s.traeIdempotencia) {
        auto c = pool_.toma();
        if (auto previa = repeticion(*c, s, huella)) return *previa;
    }
    if (!escritor_.toma(tiempos_.esperaEscritor))
        throw ErrorProtocolo(503, "ocupado", "La base de datos está ocupada por otra escritura");
    EscrituraTomada escritura(escritor_);
    auto c = pool_.toma();
    c->comienza();
    try {
        // Dentro del escritor nadie más pudo guardar la clave: esta lectura es la que vale.
        if (s.traeIdempotencia) {
            if (auto previa = repeticion(*c, s, huella)) {
                c->revierte();
                return *previa;
            }
        }
        SalidaJson salida;
        ejecutaLote(*c, sentencias, salida);
        if (s.traeIdempotencia) guardaIdempotencia(*c, s.idempotencia, huella, salida.texto());
        const long long ahora = segundosAhora();
        if (ahora - ultimaPurga_.load() > 3600) {
            ultimaPurga_ = ahora;
            purgaIdempotencia(*c);
        }
        c->confirma();
        return {200, salida.suelta()};
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
        transacciones_.confirma(id, [&](Conexion& c) {
            // La clave pudo usarla ya un lote de esta misma transacción: es otra solicitud (422)
            // y la transacción queda como estaba, sin revertirse.
            if (auto guardada = buscaIdempotencia(c, s.idempotencia)) {
                if (guardada->huella != huella)
                    throw ErrorProtocolo(422, "idempotencia",
                                         "La clave de idempotencia ya se usó con otra solicitud");
                return;
            }
            c.marca(PuntoClave);
            try {
                guardaIdempotencia(c, s.idempotencia, huella, respuesta);
            } catch (...) {
                if (c.enTransaccion()) c.regresaA(PuntoClave);
                throw;
            }
            c.libera(PuntoClave);
        });
        return {200, respuesta};
    });
}

Respuesta Servicio::revierteTransaccion(const std::string& id) {
    return atiende([&]() -> Respuesta {
        transacciones_.revierte(id);
        return {200, volcado(json{{"transaccion", id}, {"estado", "revertida"}})};
    });
}

bool Servicio::autenticaEstacion(const std::string& usuario, const std::string& secreto) {
    auto c = pool_.toma();
    return estacionVigente(*c, usuario, secreto);
}

Respuesta Servicio::emiteEstacion(const std::string& usuario, const std::string& contrasena,
                                  const std::string& cuerpo) {
    return atiende([&]() -> Respuesta {
        {
            auto c = pool_.toma();
            if (!esAdministrador(*c, usuario, contrasena))
                throw ErrorProtocolo(401, "autenticacion",
                                     "Se requiere un administrador activo del sistema");
        }
        const json j = leeJson(cuerpo);
        const auto dispositivo = j.find("dispositivoID");
        if (!j.is_object() || dispositivo == j.end() || !dispositivo->is_string() ||
            dispositivo->get<std::string>().empty())
            throw protocolo::errorSolicitud("Falta \"dispositivoID\" (texto)");
        std::optional<std::string> descripcion;
        if (const auto d = j.find("descripcion"); d != j.end() && !d->is_null()) {
            if (!d->is_string()) throw protocolo::errorSolicitud("\"descripcion\" debe ser texto");
            descripcion = d->get<std::string>();
        }
        if (!escritor_.toma(tiempos_.esperaEscritor))
            throw ErrorProtocolo(503, "ocupado",
                                 "La base de datos está ocupada por otra escritura");
        EscrituraTomada escritura(escritor_);
        auto c = pool_.toma();
        c->comienza();
        try {
            const CredencialesEstacion nuevas =
                emiteCredenciales(*c, dispositivo->get<std::string>(), descripcion);
            c->confirma();
            return {200,
                    volcado(json{{"usuario", nuevas.usuario}, {"contrasena", nuevas.contrasena}})};
        } catch (...) {
            c->revierte();
            throw;
        }
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
