#include "server/MotorSqlite.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <ctime>
#include <list>
#include <optional>
#include <regex>
#include <unordered_map>

#include <sqlite3.h>

namespace cajaplex::servidor {

using protocolo::Bytes;
using protocolo::ErrorProtocolo;
using protocolo::Tipo;
using protocolo::Valor;
using Reloj = std::chrono::steady_clock;

namespace {

std::string minusculas(std::string_view texto) {
    std::string s(texto);
    std::transform(s.begin(), s.end(), s.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return s;
}

bool empiezaCon(std::string_view texto, std::string_view prefijo) {
    return texto.size() >= prefijo.size() && minusculas(texto.substr(0, prefijo.size())) == prefijo;
}

bool tablaProhibida(const char* tabla) {
    if (tabla == nullptr) return false;
    std::string_view t(tabla);
    return empiezaCon(t, "sqlite_") || empiezaCon(t, "pragma_") ||
           minusculas(t) == TablaVersionEsquema || minusculas(t) == TablaIdempotencia;
}

// Tipo del protocolo según el tipo declarado de la columna (si lo hay).
std::optional<Tipo> tipoDeclarado(const char* declarado) {
    if (declarado == nullptr) return std::nullopt;
    std::string d = minusculas(declarado);
    if (d.find("bool") != std::string::npos) return Tipo::Booleano;
    if (d.find("int") != std::string::npos) return Tipo::Entero;
    if (d.find("real") != std::string::npos || d.find("floa") != std::string::npos ||
        d.find("doub") != std::string::npos)
        return Tipo::Real;
    if (d.find("blob") != std::string::npos) return Tipo::Blob;
    if (d.find("date") != std::string::npos || d.find("time") != std::string::npos)
        return Tipo::Fecha;
    if (d.find("guid") != std::string::npos || d.find("uuid") != std::string::npos)
        return Tipo::Guid;
    return Tipo::Texto;
}

// "A.Folio" -> "Folio", "\"A\".\"Folio\"" -> "Folio": una referencia a columna se nombra como se
// escribió, sin calificador ni comillas. Una expresión cualquiera conserva su texto.
std::string sinCalificador(const std::string& nombre) {
    static const std::regex referencia(
        R"(^(?:(?:"[^"]+"|\[[^\]]+\]|`[^`]+`|[A-Za-z_][\w$]*)\s*\.\s*)*)"
        R"(("[^"]+"|\[[^\]]+\]|`[^`]+`|[A-Za-z_][\w$]*)$)");
    std::smatch m;
    if (!std::regex_match(nombre, m, referencia)) return nombre;
    std::string s = m[1].str();
    if (s.front() == '"' || s.front() == '[' || s.front() == '`') s = s.substr(1, s.size() - 2);
    return s;
}

void fechaLocalAhora(sqlite3_context* contexto, int, sqlite3_value**) {
    std::time_t ahora = std::time(nullptr);
    std::tm local{};
    localtime_r(&ahora, &local);
    char texto[32];
    std::strftime(texto, sizeof texto, "%Y-%m-%d %H:%M:%S", &local);
    sqlite3_result_text(contexto, texto, -1, SQLITE_TRANSIENT);
}

class SentenciaPreparada {
public:
    explicit SentenciaPreparada(sqlite3_stmt* s) : s_(s) {}
    SentenciaPreparada(const SentenciaPreparada&) = delete;
    SentenciaPreparada& operator=(const SentenciaPreparada&) = delete;
    ~SentenciaPreparada() { sqlite3_finalize(s_); }
    sqlite3_stmt* get() const { return s_; }

    // Los nombres de columna no cambian entre ejecuciones: se calculan una vez.
    const std::vector<std::string>& nombres() {
        if (nombres_.empty()) {
            const int n = sqlite3_column_count(s_);
            for (int i = 0; i < n; ++i) {
                std::string nombre = sqlite3_column_name(s_, i);
                if (sqlite3_column_table_name(s_, i) != nullptr ||
                    nombre.find('.') != std::string::npos)
                    nombre = sinCalificador(nombre);
                nombres_.push_back(std::move(nombre));
            }
        }
        return nombres_;
    }

private:
    sqlite3_stmt* s_;
    std::vector<std::string> nombres_;
};

class ConexionSqlite : public Conexion {
public:
    explicit ConexionSqlite(const OpcionesSqlite& opciones) : opciones_(opciones) {
        int rc = sqlite3_open_v2(opciones.archivo.c_str(), &db_,
                                 SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX,
                                 nullptr);
        if (rc != SQLITE_OK) {
            std::string mensaje = db_ ? sqlite3_errmsg(db_) : sqlite3_errstr(rc);
            sqlite3_close(db_);
            throw std::runtime_error("No se pudo abrir la base de datos: " + mensaje);
        }
        sqlite3_extended_result_codes(db_, 1);
        sqlite3_db_config(db_, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
        sqlite3_db_config(db_, SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0, nullptr);
        sqlite3_busy_timeout(db_, opciones.esperaBloqueoMs);
        ejecutaGuion("PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL; PRAGMA foreign_keys=OFF;"
                     "PRAGMA short_column_names=OFF; PRAGMA full_column_names=OFF;"
                     "PRAGMA cache_size=-8000; PRAGMA temp_store=MEMORY;");
        sqlite3_create_function(db_, "getdate", 0, SQLITE_UTF8, nullptr, fechaLocalAhora, nullptr,
                                nullptr);
        sqlite3_set_authorizer(db_, &ConexionSqlite::autoriza, this);
        sqlite3_progress_handler(db_, 4000, &ConexionSqlite::progreso, this);
    }

    ~ConexionSqlite() override {
        cache_.clear();
        indice_.clear();
        sqlite3_close_v2(db_);
    }

    Resultado ejecuta(const std::string& sql, const std::vector<Parametro>& parametros) override {
        return corre(sql, parametros, false);
    }

    bool soloLee(const std::string& sql) override {
        return sqlite3_stmt_readonly(prepara(sql, false).get()) != 0;
    }

    Resultado ejecutaInterna(const std::string& sql,
                             const std::vector<Parametro>& parametros) override {
        return corre(sql, parametros, true);
    }

    void ejecutaGuion(const std::string& sql) override {
        Confianza c(*this);
        char* error = nullptr;
        if (sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, &error) != SQLITE_OK) {
            std::string mensaje = error ? error : "error desconocido";
            sqlite3_free(error);
            throw errorDeSqlite(sqlite3_extended_errcode(db_), mensaje);
        }
    }

    void comienza() override { controla("BEGIN IMMEDIATE"); }
    void confirma() override { controla("COMMIT"); }
    void revierte() override {
        if (enTransaccion()) controla("ROLLBACK");
    }
    bool enTransaccion() override { return sqlite3_get_autocommit(db_) == 0; }
    void marca(const std::string& punto) override { controla("SAVEPOINT " + punto); }
    void regresaA(const std::string& punto) override {
        controla("ROLLBACK TO " + punto);
        controla("RELEASE " + punto);
    }
    void libera(const std::string& punto) override { controla("RELEASE " + punto); }

    void interrumpe() override {
        interrumpida_ = true;
        sqlite3_interrupt(db_);
    }

private:
    // Mientras vive, las sentencias son del servicio y el arenero no las juzga.
    struct Confianza {
        explicit Confianza(ConexionSqlite& c) : c_(c), antes_(c.confiable_) { c.confiable_ = true; }
        ~Confianza() { c_.confiable_ = antes_; }
        ConexionSqlite& c_;
        bool antes_;
    };

    static int autoriza(void* datos, int accion, const char* a1, const char* a2, const char*,
                        const char*) {
        auto* self = static_cast<ConexionSqlite*>(datos);
        if (self->confiable_) return SQLITE_OK;
        const int decision = decide(accion, a1, a2);
        if (decision == SQLITE_DENY) self->denegada_ = true;
        return decision;
    }

    static int decide(int accion, const char* a1, const char* a2) {
        switch (accion) {
        case SQLITE_SELECT:
        case SQLITE_RECURSIVE:
            return SQLITE_OK;
        case SQLITE_READ:
        case SQLITE_INSERT:
        case SQLITE_UPDATE:
        case SQLITE_DELETE:
            return tablaProhibida(a1) ? SQLITE_DENY : SQLITE_OK;
        case SQLITE_FUNCTION:
            return (a2 && minusculas(a2) == "load_extension") ? SQLITE_DENY : SQLITE_OK;
        default:
            return SQLITE_DENY;
        }
    }

    static int progreso(void* datos) {
        auto* self = static_cast<ConexionSqlite*>(datos);
        if (self->interrumpida_) return 1;
        return (self->limite_ && Reloj::now() > *self->limite_) ? 1 : 0;
    }

    ErrorProtocolo errorDeSqlite(int codigo, const std::string& mensaje) const {
        switch (codigo & 0xFF) {
        case SQLITE_AUTH:
            return ErrorProtocolo(403, "prohibido", "Sentencia no permitida: " + mensaje);
        case SQLITE_CONSTRAINT:
            return ErrorProtocolo(409, "restriccion", "Restricción violada: " + mensaje);
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return ErrorProtocolo(503, "ocupado", "La base de datos está ocupada: " + mensaje);
        case SQLITE_INTERRUPT:
            return ErrorProtocolo(504, "tiempo",
                                  "La sentencia excedió el tiempo límite y se canceló");
        case SQLITE_ERROR:
        case SQLITE_RANGE:
        case SQLITE_TOOBIG:
        case SQLITE_MISMATCH:
        case SQLITE_READONLY:
            return ErrorProtocolo(400, "sql", "La base de datos rechazó la sentencia: " + mensaje);
        default:
            return ErrorProtocolo(500, "interno", "Error de la base de datos: " + mensaje);
        }
    }

    void controla(const std::string& sql) { ejecutaGuion(sql); }

    // Prepara (o toma del caché) una sola sentencia; el arenero juzga al preparar.
    SentenciaPreparada& prepara(const std::string& sql, bool confiable) {
        std::string clave = (confiable ? "I:" : "E:") + sql;
        if (auto it = indice_.find(clave); it != indice_.end()) {
            cache_.splice(cache_.begin(), cache_, it->second);
            return *it->second->second;
        }
        Confianza c(*this);
        confiable_ = confiable;
        sqlite3_stmt* s = nullptr;
        const char* resto = nullptr;
        denegada_ = false;
        int rc = sqlite3_prepare_v3(db_, sql.c_str(), static_cast<int>(sql.size()),
                                    SQLITE_PREPARE_PERSISTENT, &s, &resto);
        if (rc != SQLITE_OK) throw errorDeSqlite(denegada_ ? SQLITE_AUTH : rc, sqlite3_errmsg(db_));
        auto preparada = std::make_unique<SentenciaPreparada>(s);
        if (s == nullptr) throw protocolo::errorSolicitud("La sentencia está vacía");
        if (resto && *resto) {
            sqlite3_stmt* otra = nullptr;
            int rcResto = sqlite3_prepare_v2(db_, resto, -1, &otra, nullptr);
            bool haySegunda = otra != nullptr || rcResto != SQLITE_OK;
            sqlite3_finalize(otra);
            if (haySegunda)
                throw protocolo::errorSolicitud("Solo se admite una sentencia por solicitud");
        }
        SentenciaPreparada& lista = *preparada;
        cache_.emplace_front(clave, std::move(preparada));
        indice_[clave] = cache_.begin();
        if (cache_.size() > 96) {
            indice_.erase(cache_.back().first);
            cache_.pop_back();
        }
        return lista;
    }

    void enlaza(sqlite3_stmt* s, int indice, const Parametro& p) {
        Valor v = protocolo::conviertePara(p.tipo, p.valor);
        int rc = std::visit(
            [&](const auto& x) -> int {
                using T = std::decay_t<decltype(x)>;
                if constexpr (std::is_same_v<T, std::monostate>)
                    return sqlite3_bind_null(s, indice);
                else if constexpr (std::is_same_v<T, int64_t>)
                    return sqlite3_bind_int64(s, indice, x);
                else if constexpr (std::is_same_v<T, double>)
                    return sqlite3_bind_double(s, indice, x);
                else if constexpr (std::is_same_v<T, std::string>)
                    return sqlite3_bind_text64(s, indice, x.data(), x.size(), SQLITE_TRANSIENT,
                                               SQLITE_UTF8);
                else
                    return sqlite3_bind_blob64(s, indice, x.datos.data(), x.datos.size(),
                                               SQLITE_TRANSIENT);
            },
            v);
        if (rc != SQLITE_OK) throw errorDeSqlite(rc, sqlite3_errmsg(db_));
    }

    // Casa las marcas :Nombre con los parámetros sin distinguir mayúsculas.
    void enlazaTodos(sqlite3_stmt* s, const std::vector<Parametro>& parametros) {
        std::unordered_map<std::string, size_t> porNombre;
        for (size_t i = 0; i < parametros.size(); ++i) {
            if (!porNombre.emplace(minusculas(parametros[i].nombre), i).second)
                throw protocolo::errorSolicitud("Dos parámetros se llaman igual: '" +
                                                parametros[i].nombre + "'");
        }
        std::vector<bool> usados(parametros.size(), false);
        int marcas = sqlite3_bind_parameter_count(s);
        for (int i = 1; i <= marcas; ++i) {
            const char* nombre = sqlite3_bind_parameter_name(s, i);
            if (nombre == nullptr || nombre[0] != ':')
                throw protocolo::errorSolicitud("Solo se admiten marcas de la forma :Nombre");
            auto it = porNombre.find(minusculas(nombre + 1));
            if (it == porNombre.end())
                throw protocolo::errorSolicitud(std::string("La marca ") + nombre +
                                                " no tiene parámetro");
            usados[it->second] = true;
            enlaza(s, i, parametros[it->second]);
        }
        for (size_t i = 0; i < parametros.size(); ++i)
            if (!usados[i])
                throw protocolo::errorSolicitud("El parámetro '" + parametros[i].nombre +
                                                "' no tiene marca en la sentencia");
    }

    Resultado corre(const std::string& sql, const std::vector<Parametro>& parametros,
                    bool confiable) {
        SentenciaPreparada& preparada = prepara(sql, confiable);
        sqlite3_stmt* s = preparada.get();
        struct Limpieza {
            sqlite3_stmt* s;
            ConexionSqlite& c;
            ~Limpieza() {
                sqlite3_reset(s);
                sqlite3_clear_bindings(s);
                c.limite_.reset();
            }
        } limpieza{s, *this};
        enlazaTodos(s, parametros);

        Resultado r;
        const int n = sqlite3_column_count(s);
        // Clase observada en los valores de cada columna: -1 ninguna, o SQLITE_INTEGER/FLOAT/...
        std::vector<int> clase(static_cast<size_t>(n), -1);
        limite_ = Reloj::now() + std::chrono::milliseconds(opciones_.limiteSentenciaMs);
        Confianza c(*this);
        confiable_ = confiable;
        int rc;
        while ((rc = sqlite3_step(s)) == SQLITE_ROW) {
            std::vector<Valor> fila;
            fila.reserve(static_cast<size_t>(n));
            for (int i = 0; i < n; ++i) {
                const int tipo = sqlite3_column_type(s, i);
                auto& vista = clase[static_cast<size_t>(i)];
                switch (tipo) {
                case SQLITE_INTEGER:
                    fila.emplace_back(static_cast<int64_t>(sqlite3_column_int64(s, i)));
                    break;
                case SQLITE_FLOAT:
                    fila.emplace_back(sqlite3_column_double(s, i));
                    break;
                case SQLITE_TEXT:
                    fila.emplace_back(
                        std::string(reinterpret_cast<const char*>(sqlite3_column_text(s, i)),
                                    static_cast<size_t>(sqlite3_column_bytes(s, i))));
                    break;
                case SQLITE_BLOB: {
                    const void* datos = sqlite3_column_blob(s, i);
                    size_t largo = static_cast<size_t>(sqlite3_column_bytes(s, i));
                    fila.emplace_back(Bytes{std::string(static_cast<const char*>(datos), largo)});
                    break;
                }
                default:
                    fila.emplace_back(std::monostate{});
                    break;
                }
                if (tipo == SQLITE_NULL || vista == tipo) continue;
                if (vista == -1)
                    vista = tipo;
                else if ((vista == SQLITE_INTEGER && tipo == SQLITE_FLOAT) ||
                         (vista == SQLITE_FLOAT && tipo == SQLITE_INTEGER))
                    vista = SQLITE_FLOAT;
                else
                    vista = SQLITE_TEXT;
            }
            r.filas.push_back(std::move(fila));
        }
        if (rc != SQLITE_DONE) {
            throw errorDeSqlite(sqlite3_extended_errcode(db_), sqlite3_errmsg(db_));
        }
        describeColumnas(preparada, clase, r);
        if (!sqlite3_stmt_readonly(s)) {
            r.filasAfectadas = sqlite3_changes64(db_);
            r.ultimoId = sqlite3_last_insert_rowid(db_);
        }
        return r;
    }

    static void describeColumnas(SentenciaPreparada& preparada, const std::vector<int>& clase,
                                 Resultado& r) {
        sqlite3_stmt* s = preparada.get();
        const auto& nombres = preparada.nombres();
        const int n = sqlite3_column_count(s);
        for (int i = 0; i < n; ++i) {
            std::string nombre = nombres[static_cast<size_t>(i)];
            auto declarado = tipoDeclarado(sqlite3_column_decltype(s, i));
            Tipo tipo;
            switch (clase[static_cast<size_t>(i)]) {
            case SQLITE_INTEGER:
                tipo = declarado == Tipo::Booleano ? Tipo::Booleano : Tipo::Entero;
                break;
            case SQLITE_FLOAT:
                tipo = Tipo::Real;
                for (auto& fila : r.filas)
                    if (auto* v = std::get_if<int64_t>(&fila[static_cast<size_t>(i)]))
                        fila[static_cast<size_t>(i)] = static_cast<double>(*v);
                break;
            case SQLITE_TEXT:
                tipo = (declarado == Tipo::Fecha || declarado == Tipo::Guid) ? *declarado
                                                                             : Tipo::Texto;
                break;
            case SQLITE_BLOB:
                tipo = Tipo::Blob;
                break;
            default:
                tipo = declarado.value_or(Tipo::Texto);
                break;
            }
            r.columnas.push_back({std::move(nombre), tipo});
        }
    }

    OpcionesSqlite opciones_;
    sqlite3* db_ = nullptr;
    bool confiable_ = false;
    bool denegada_ = false; // el autorizador negó algo al preparar
    std::atomic<bool> interrumpida_{false};
    std::optional<Reloj::time_point> limite_;
    using Entrada = std::pair<std::string, std::unique_ptr<SentenciaPreparada>>;
    std::list<Entrada> cache_;
    std::unordered_map<std::string, std::list<Entrada>::iterator> indice_;
};

} // namespace

MotorSqlite::MotorSqlite(OpcionesSqlite opciones) : opciones_(std::move(opciones)) {}

std::unique_ptr<Conexion> MotorSqlite::abreConexion() {
    return std::make_unique<ConexionSqlite>(opciones_);
}

} // namespace cajaplex::servidor
