#include "server/MotorSqlite.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <ctime>
#include <limits>
#include <list>
#include <optional>
#include <regex>
#include <set>
#include <thread>
#include <unordered_map>

#include <malloc.h>
#include <sqlite3.h>

#include "server/Contrasenas.h"
#include "server/SalidaJson.h"

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
           esTablaDeContabilidad(minusculas(t));
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

std::string_view textoDe(sqlite3_value* v) {
    const auto* t = reinterpret_cast<const char*>(sqlite3_value_text(v));
    return {t ? t : "", static_cast<size_t>(sqlite3_value_bytes(v))};
}

// cajaplex_hash(texto): hash Argon2id nuevo; NULL sigue NULL.
void hashContrasena(sqlite3_context* contexto, int, sqlite3_value** argv) {
    if (sqlite3_value_type(argv[0]) == SQLITE_NULL) return sqlite3_result_null(contexto);
    try {
        const std::string hash = cifraContrasena(textoDe(argv[0]));
        sqlite3_result_text(contexto, hash.c_str(), static_cast<int>(hash.size()),
                            SQLITE_TRANSIENT);
    } catch (const std::exception&) {
        sqlite3_result_error_nomem(contexto);
    }
}

// cajaplex_verifica(texto, hash): 1 si corresponde; 0 si no, con NULL o con un hash malformado.
void verificaHash(sqlite3_context* contexto, int, sqlite3_value** argv) {
    if (sqlite3_value_type(argv[0]) == SQLITE_NULL || sqlite3_value_type(argv[1]) == SQLITE_NULL)
        return sqlite3_result_int(contexto, 0);
    try {
        sqlite3_result_int(contexto, verificaContrasena(textoDe(argv[0]), textoDe(argv[1])));
    } catch (const std::exception&) {
        sqlite3_result_error_nomem(contexto);
    }
}

// Largo de un valor de las sentencias del propio servicio (respuestas guardadas por idempotencia).
constexpr int LargoMaximoInterno = 256 << 20;

} // namespace

const std::vector<LimiteSqlite>& limitesSqlite() {
    static const std::vector<LimiteSqlite> limites = {
        {SQLITE_LIMIT_LENGTH, LargoMaximoValor, "SQLITE_LIMIT_LENGTH (valor o fila, bytes)"},
        {SQLITE_LIMIT_SQL_LENGTH, 1 << 20, "SQLITE_LIMIT_SQL_LENGTH (texto SQL, bytes)"},
        {SQLITE_LIMIT_COLUMN, 2000, "SQLITE_LIMIT_COLUMN"},
        {SQLITE_LIMIT_EXPR_DEPTH, 500, "SQLITE_LIMIT_EXPR_DEPTH"},
        {SQLITE_LIMIT_COMPOUND_SELECT, 200, "SQLITE_LIMIT_COMPOUND_SELECT"},
        {SQLITE_LIMIT_VDBE_OP, 4000000, "SQLITE_LIMIT_VDBE_OP"},
        {SQLITE_LIMIT_FUNCTION_ARG, 100, "SQLITE_LIMIT_FUNCTION_ARG"},
        {SQLITE_LIMIT_ATTACHED, 0, "SQLITE_LIMIT_ATTACHED"},
        {SQLITE_LIMIT_LIKE_PATTERN_LENGTH, 10000, "SQLITE_LIMIT_LIKE_PATTERN_LENGTH"},
        {SQLITE_LIMIT_VARIABLE_NUMBER, 10000, "SQLITE_LIMIT_VARIABLE_NUMBER"},
        {SQLITE_LIMIT_TRIGGER_DEPTH, 100, "SQLITE_LIMIT_TRIGGER_DEPTH"},
        {SQLITE_LIMIT_WORKER_THREADS, 0, "SQLITE_LIMIT_WORKER_THREADS"},
    };
    return limites;
}

void fijaMemoriaSqlite(long long bytes) {
    sqlite3_hard_heap_limit64(bytes);
    // Antes del límite duro SQLite suelta páginas de caché por su cuenta.
    sqlite3_soft_heap_limit64(bytes / 4 * 3);
}

namespace {

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
        try {
            configura();
        } catch (...) {
            sqlite3_close_v2(db_);
            throw;
        }
    }

    void configura() {
        sqlite3_extended_result_codes(db_, 1);
        sqlite3_db_config(db_, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
        sqlite3_db_config(db_, SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0, nullptr);
        sqlite3_busy_timeout(db_, opciones_.esperaBloqueoMs);
        for (const auto& l : limitesSqlite())
            sqlite3_limit(db_, l.id, l.valor);
        ejecutaGuion("PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL; PRAGMA foreign_keys=OFF;"
                     "PRAGMA short_column_names=OFF; PRAGMA full_column_names=OFF;"
                     "PRAGMA cache_size=-8000; PRAGMA temp_store=MEMORY;");
        // Lo que el protocolo promete (un 200 ya está en disco) depende de estas dos: sin
        // ellas no se atiende.
        const std::string modo = minusculas(pragma("journal_mode"));
        if (modo != "wal")
            throw std::runtime_error(
                "La base de datos no pudo quedar en modo WAL (journal_mode = " + modo +
                "); el sistema de archivos de la carpeta de datos no lo admite");
        const std::string sincronia = pragma("synchronous");
        if (sincronia != "2" && sincronia != "3")
            throw std::runtime_error("La base de datos no quedó con synchronous = FULL (está en " +
                                     sincronia + ")");
        if (opciones_.paginasMaximas > 0)
            ejecutaGuion("PRAGMA max_page_count = " + std::to_string(opciones_.paginasMaximas));
        sqlite3_create_function(db_, "getdate", 0, SQLITE_UTF8, nullptr, fechaLocalAhora, nullptr,
                                nullptr);
        // Calculan y esperan (el freno de intentos): solo en sentencias, nunca desde el esquema.
        sqlite3_create_function(db_, "cajaplex_hash", 1, SQLITE_UTF8 | SQLITE_DIRECTONLY, nullptr,
                                hashContrasena, nullptr, nullptr);
        sqlite3_create_function(db_, "cajaplex_verifica", 2, SQLITE_UTF8 | SQLITE_DIRECTONLY,
                                nullptr, verificaHash, nullptr, nullptr);
        // printf/format de SQLite 3.40 devuelven NULL en silencio cuando el resultado pasaría
        // el límite de largo (después de gastar hasta 32 MiB): se envuelven para rechazarlo
        // antes, como cualquier otro valor demasiado largo.
        for (const char* nombre : {"printf", "format"})
            sqlite3_create_function(db_, nombre, -1,
                                    SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS, this,
                                    &ConexionSqlite::printfAcotado, nullptr, nullptr);
        sqlite3_set_authorizer(db_, &ConexionSqlite::autoriza, this);
        sqlite3_progress_handler(db_, 4000, &ConexionSqlite::progreso, this);
        sqlite3_update_hook(db_, &ConexionSqlite::alCambiar, this);
        sqlite3_rollback_hook(db_, &ConexionSqlite::alRevertir, this);
    }

    std::string pragma(const std::string& nombre) {
        sqlite3_stmt* s = nullptr;
        std::string valor;
        if (sqlite3_prepare_v2(db_, ("PRAGMA " + nombre).c_str(), -1, &s, nullptr) == SQLITE_OK &&
            sqlite3_step(s) == SQLITE_ROW && sqlite3_column_text(s, 0) != nullptr)
            valor = reinterpret_cast<const char*>(sqlite3_column_text(s, 0));
        sqlite3_finalize(s);
        return valor;
    }

    ~ConexionSqlite() override {
        cache_.clear();
        indice_.clear();
        sqlite3_close_v2(db_);
        for (auto& [n, s] : printfPreparados_)
            sqlite3_finalize(s);
        if (ayudante_) sqlite3_close_v2(ayudante_);
    }

    Resultado ejecuta(const std::string& sql, const std::vector<Parametro>& parametros) override {
        return corre(sql, parametros, false);
    }

    bool soloLee(const std::string& sql) override {
        return sqlite3_stmt_readonly(prepara(sql, false).get()) != 0;
    }

    Resumen ejecutaEnJson(const std::string& sql, const std::vector<Parametro>& parametros,
                          SalidaJson& salida) override {
        return correEnJson(sql, parametros, salida);
    }

    Resultado ejecutaInterna(const std::string& sql,
                             const std::vector<Parametro>& parametros) override {
        LargoInterno largo(*this);
        return corre(sql, parametros, true);
    }

    void ejecutaGuion(const std::string& sql) override {
        Confianza c(*this);
        LargoInterno largo(*this);
        char* error = nullptr;
        if (sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, &error) != SQLITE_OK) {
            std::string mensaje = error ? error : "error desconocido";
            sqlite3_free(error);
            throw errorDeSqlite(sqlite3_extended_errcode(db_), mensaje);
        }
    }

    void comienza() override {
        tocadas_.clear();
        pila_.clear();
        ultimaTocada_ = nullptr;
        controla("BEGIN IMMEDIATE");
    }
    // Un COMMIT que encuentra la base ocupada se reintenta (cada intento ya espera el tiempo de
    // bloqueo); mientras tanto la transacción sigue abierta y nada se pierde.
    void confirma() override {
        const auto limite = Reloj::now() + std::chrono::milliseconds(opciones_.esperaBloqueoMs);
        for (;;) {
            try {
                controla("COMMIT");
                break;
            } catch (const ErrorProtocolo& e) {
                if (e.codigo() != "ocupado" || !enTransaccion() || Reloj::now() > limite) throw;
                std::this_thread::sleep_for(std::chrono::milliseconds(20));
            }
        }
        avisaConfirmacion();
    }
    void revierte() override {
        if (enTransaccion()) controla("ROLLBACK");
        tocadas_.clear();
        pila_.clear();
        ultimaTocada_ = nullptr;
    }
    bool enTransaccion() override { return sqlite3_get_autocommit(db_) == 0; }
    void marca(const std::string& punto) override {
        controla("SAVEPOINT " + punto);
        pila_.push_back(tocadas_);
        ultimaTocada_ = nullptr;
    }
    void regresaA(const std::string& punto) override {
        controla("ROLLBACK TO " + punto);
        controla("RELEASE " + punto);
        if (!pila_.empty()) {
            tocadas_ = std::move(pila_.back());
            pila_.pop_back();
        }
        ultimaTocada_ = nullptr;
    }
    void libera(const std::string& punto) override {
        controla("RELEASE " + punto);
        if (!pila_.empty()) pila_.pop_back();
    }

    void interrumpe() override {
        interrumpida_ = true;
        sqlite3_interrupt(db_);
    }

    void liberaMemoria() override { sqlite3_db_release_memory(db_); }

private:
    // Cota superior del largo de printf(formato, args...): cada conversión puede escribir su
    // ancho, su precisión (en %c, repeticiones del carácter) y su argumento (escapado, el doble).
    static long long cotaPrintf(int argc, sqlite3_value** argv) {
        const auto* f = sqlite3_value_text(argv[0]);
        if (f == nullptr) return 0;
        const std::string_view formato(reinterpret_cast<const char*>(f),
                                       static_cast<size_t>(sqlite3_value_bytes(argv[0])));
        long long cota = static_cast<long long>(formato.size());
        int arg = 1;
        auto entero = [&]() -> long long {
            if (arg >= argc) return 0;
            long long v = sqlite3_value_int64(argv[arg++]);
            if (v < 0) v = v == std::numeric_limits<long long>::min() ? 0 : -v;
            return std::min<long long>(v, std::numeric_limits<int>::max());
        };
        auto numero = [&](size_t& i) -> long long {
            long long v = 0;
            while (i < formato.size() && formato[i] >= '0' && formato[i] <= '9') {
                v = std::min<long long>(v * 10 + (formato[i] - '0'),
                                        std::numeric_limits<int>::max());
                ++i;
            }
            return v;
        };
        for (size_t i = 0; i < formato.size(); ++i) {
            if (formato[i] != '%') continue;
            ++i;
            while (i < formato.size() && std::strchr("-+ #!0,", formato[i]) != nullptr)
                ++i;
            long long ancho = 0, precision = 0;
            if (i < formato.size() && formato[i] == '*') {
                ancho = entero();
                ++i;
            } else {
                ancho = numero(i);
            }
            if (i < formato.size() && formato[i] == '.') {
                ++i;
                if (i < formato.size() && formato[i] == '*') {
                    precision = entero();
                    ++i;
                } else {
                    precision = numero(i);
                }
            }
            while (i < formato.size() && formato[i] == 'l')
                ++i;
            if (i >= formato.size()) break;
            if (formato[i] == '%') {
                cota += 1;
                continue;
            }
            long long argumento = 0;
            if (arg < argc)
                argumento = 2 * static_cast<long long>(sqlite3_value_bytes(argv[arg++]));
            cota += ancho + 4 * precision + argumento + 512;
        }
        return cota;
    }

    static void printfAcotado(sqlite3_context* contexto, int argc, sqlite3_value** argv) {
        auto* self = static_cast<ConexionSqlite*>(sqlite3_user_data(contexto));
        if (argc < 1) return;
        if (cotaPrintf(argc, argv) > sqlite3_limit(self->db_, SQLITE_LIMIT_LENGTH, -1)) {
            sqlite3_result_error_toobig(contexto);
            return;
        }
        // El printf original corre en una base en memoria aparte (aquí "printf" es este).
        sqlite3_stmt* s = self->printfOriginal(argc);
        if (s == nullptr) {
            sqlite3_result_error_nomem(contexto);
            return;
        }
        for (int i = 0; i < argc; ++i)
            sqlite3_bind_value(s, i + 1, argv[i]);
        if (sqlite3_step(s) == SQLITE_ROW)
            sqlite3_result_value(contexto, sqlite3_column_value(s, 0));
        else
            sqlite3_result_error_code(contexto, sqlite3_errcode(self->ayudante_));
        sqlite3_reset(s);
        sqlite3_clear_bindings(s);
    }

    sqlite3_stmt* printfOriginal(int argc) {
        if (auto it = printfPreparados_.find(argc); it != printfPreparados_.end())
            return it->second;
        if (ayudante_ == nullptr) {
            if (sqlite3_open_v2(":memory:", &ayudante_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX,
                                nullptr) != SQLITE_OK)
                return nullptr;
            sqlite3_limit(ayudante_, SQLITE_LIMIT_LENGTH, LargoMaximoValor);
        }
        std::string sql = "SELECT printf(?";
        for (int i = 1; i < argc; ++i)
            sql += ",?";
        sql += ")";
        sqlite3_stmt* s = nullptr;
        if (sqlite3_prepare_v3(ayudante_, sql.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &s,
                               nullptr) != SQLITE_OK)
            return nullptr;
        printfPreparados_[argc] = s;
        return s;
    }

    // Mientras vive, las sentencias del servicio pueden producir valores más largos que las de
    // una estación (una respuesta guardada por idempotencia).
    struct LargoInterno {
        explicit LargoInterno(ConexionSqlite& c)
            : c_(c), antes_(sqlite3_limit(c.db_, SQLITE_LIMIT_LENGTH, LargoMaximoInterno)) {}
        ~LargoInterno() { sqlite3_limit(c_.db_, SQLITE_LIMIT_LENGTH, antes_); }
        ConexionSqlite& c_;
        int antes_;
    };

    // Cambios de filas para los avisos de cambios: se juntan los nombres de tabla y se publican
    // solo al confirmar.
    static void alCambiar(void* datos, int, const char*, const char* tabla, sqlite3_int64) {
        auto* self = static_cast<ConexionSqlite*>(datos);
        if (!self->opciones_.alConfirmar || tabla == nullptr) return;
        if (self->ultimaTocada_ == tabla) return;
        std::string_view t(tabla);
        if (empiezaCon(t, "sqlite_") || empiezaCon(t, "cajaplex_")) return;
        self->tocadas_.insert(std::string(t));
        self->ultimaTocada_ = tabla;
    }
    static void alRevertir(void* datos) {
        auto* self = static_cast<ConexionSqlite*>(datos);
        self->tocadas_.clear();
        self->ultimaTocada_ = nullptr;
    }
    void avisaConfirmacion() {
        ultimaTocada_ = nullptr;
        pila_.clear();
        if (tocadas_.empty()) return;
        std::set<std::string> tablas;
        tablas.swap(tocadas_);
        if (opciones_.alConfirmar) opciones_.alConfirmar(tablas);
    }

    // Mientras vive, las sentencias son del servicio y el arenero no las juzga.
    struct Confianza {
        explicit Confianza(ConexionSqlite& c) : c_(c), antes_(c.confiable_) { c.confiable_ = true; }
        ~Confianza() { c_.confiable_ = antes_; }
        ConexionSqlite& c_;
        bool antes_;
    };

    static int autoriza(void* datos, int accion, const char* a1, const char* a2, const char*,
                        const char* disparador) {
        auto* self = static_cast<ConexionSqlite*>(datos);
        if (self->confiable_) return SQLITE_OK;
        // Los disparadores del esquema (las estaciones no pueden crear ninguno) llevan la
        // contabilidad de existencias en tablas que las estaciones no ven, y borran las
        // credenciales de un dispositivo dado de baja.
        if (disparador != nullptr && empiezaCon(disparador, "tr_") &&
            (accion == SQLITE_READ || accion == SQLITE_INSERT || accion == SQLITE_UPDATE ||
             accion == SQLITE_DELETE) &&
            a1 != nullptr && esTablaDeContabilidad(minusculas(a1)))
            return SQLITE_OK;
        const int decision = decide(accion, a1, a2);
        if (decision == SQLITE_DENY) self->denegada_ = true;
        // IGNORE en un DELETE apaga la optimización de truncar: así cada fila borrada pasa por
        // el aviso de cambios.
        if (decision == SQLITE_OK && accion == SQLITE_DELETE) return SQLITE_IGNORE;
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
        case SQLITE_NOMEM:
            return ErrorProtocolo(503, "ocupado",
                                  "La sentencia necesita más memoria de la que el servicio tiene "
                                  "disponible: " +
                                      mensaje);
        case SQLITE_INTERRUPT:
            return ErrorProtocolo(504, "tiempo",
                                  "La sentencia excedió el tiempo límite y se canceló");
        case SQLITE_TOOBIG:
            // Lo mismo da un valor de más de 32 MiB que un texto SQL de más de 1 MiB.
            return ErrorProtocolo(413, "tamano",
                                  "La sentencia o un valor excede el tamaño máximo (1 MiB de "
                                  "texto SQL, 32 MiB por valor): " +
                                      mensaje);
        case SQLITE_FULL:
        case SQLITE_IOERR:
        case SQLITE_CANTOPEN:
        case SQLITE_READONLY:
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
        case SQLITE_NOLFS:
        case SQLITE_PROTOCOL:
            return ErrorProtocolo(503, "almacenamiento",
                                  "No se pudo escribir la base de datos (disco lleno o error de "
                                  "entrada/salida); no se guardó nada: " +
                                      mensaje);
        case SQLITE_ERROR:
        case SQLITE_RANGE:
        case SQLITE_MISMATCH:
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
                observa(vista, tipo);
            }
            r.filas.push_back(std::move(fila));
        }
        if (rc != SQLITE_DONE) {
            const int codigo = sqlite3_extended_errcode(db_);
            if (!enTransaccion()) alRevertir(this);
            throw errorDeSqlite(codigo, sqlite3_errmsg(db_));
        }
        describeColumnas(preparada, clase, r);
        if (!sqlite3_stmt_readonly(s)) {
            r.filasAfectadas = sqlite3_changes64(db_);
            r.ultimoId = sqlite3_last_insert_rowid(db_);
        }
        if (!enTransaccion() && !tocadas_.empty()) avisaConfirmacion();
        return r;
    }

    // Tipo del protocolo de una columna: el de sus valores o, sin valores, el declarado.
    static Tipo tipoDeColumna(int clase, const char* declaradoTexto) {
        auto declarado = tipoDeclarado(declaradoTexto);
        switch (clase) {
        case SQLITE_INTEGER:
            return declarado == Tipo::Booleano ? Tipo::Booleano : Tipo::Entero;
        case SQLITE_FLOAT:
            return Tipo::Real;
        case SQLITE_TEXT:
            return (declarado == Tipo::Fecha || declarado == Tipo::Guid) ? *declarado : Tipo::Texto;
        case SQLITE_BLOB:
            return Tipo::Blob;
        default:
            return declarado.value_or(Tipo::Texto);
        }
    }

    // Clase que resulta de ver un valor de tipo "tipo" en una columna que ya tenía "vista".
    static void observa(int& vista, int tipo) {
        if (tipo == SQLITE_NULL || vista == tipo) return;
        if (vista == -1)
            vista = tipo;
        else if ((vista == SQLITE_INTEGER && tipo == SQLITE_FLOAT) ||
                 (vista == SQLITE_FLOAT && tipo == SQLITE_INTEGER))
            vista = SQLITE_FLOAT;
        else
            vista = SQLITE_TEXT;
    }

    static void describeColumnas(SentenciaPreparada& preparada, const std::vector<int>& clase,
                                 Resultado& r) {
        sqlite3_stmt* s = preparada.get();
        const auto& nombres = preparada.nombres();
        const int n = sqlite3_column_count(s);
        for (int i = 0; i < n; ++i) {
            const Tipo tipo =
                tipoDeColumna(clase[static_cast<size_t>(i)], sqlite3_column_decltype(s, i));
            if (tipo == Tipo::Real)
                for (auto& fila : r.filas)
                    if (auto* v = std::get_if<int64_t>(&fila[static_cast<size_t>(i)]))
                        fila[static_cast<size_t>(i)] = static_cast<double>(*v);
            r.columnas.push_back({nombres[static_cast<size_t>(i)], tipo});
        }
    }

    // La sentencia de una estación con su respuesta escrita directo como JSON, renglón por
    // renglón y medida en cada valor: una respuesta que pasaría el límite se detiene en cuanto
    // lo pasa, sin haber juntado antes todos sus renglones en memoria.
    Resumen correEnJson(const std::string& sql, const std::vector<Parametro>& parametros,
                        SalidaJson& salida) {
        SentenciaPreparada& preparada = prepara(sql, false);
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

        const int n = sqlite3_column_count(s);
        const auto& nombres = preparada.nombres();
        Resumen resumen;
        resumen.columnas = nombres;
        std::vector<std::string> nombresJson;
        // Los tipos de "columnas" se saben al final: se deja un hueco del tamaño máximo que
        // luego se llena y se recorta.
        size_t hueco = std::string_view("{\"columnas\":[],").size();
        for (const auto& nombre : nombres) {
            nombresJson.push_back(cadenaJson(nombre));
            hueco += std::string_view("{\"nombre\":,\"tipo\":\"booleano\"},").size() +
                     nombresJson.back().size();
        }
        std::string& texto = salida.texto();
        const size_t inicio = texto.size();
        salida.cabe(hueco);
        texto.append(hueco, ' ');
        salida.crudo("\"filas\":");
        const size_t inicioFilas = texto.size();
        salida.caracter('[');

        std::vector<int> clase(static_cast<size_t>(n), -1);
        std::vector<bool> conEnteros(static_cast<size_t>(n), false);
        limite_ = Reloj::now() + std::chrono::milliseconds(opciones_.limiteSentenciaMs);
        int rc;
        bool primera = true;
        while ((rc = sqlite3_step(s)) == SQLITE_ROW) {
            salida.crudo(primera ? "[" : ",[");
            std::vector<Valor>* fila = nullptr;
            if (primera) {
                resumen.primeraFila.emplace();
                fila = &*resumen.primeraFila;
            }
            for (int i = 0; i < n; ++i) {
                if (i > 0) salida.caracter(',');
                const int tipo = sqlite3_column_type(s, i);
                switch (tipo) {
                case SQLITE_INTEGER: {
                    const int64_t v = sqlite3_column_int64(s, i);
                    salida.entero(v);
                    conEnteros[static_cast<size_t>(i)] = true;
                    if (fila) fila->emplace_back(v);
                    break;
                }
                case SQLITE_FLOAT: {
                    const double v = sqlite3_column_double(s, i);
                    salida.real(v);
                    if (fila) fila->emplace_back(v);
                    break;
                }
                case SQLITE_TEXT: {
                    std::string_view v(reinterpret_cast<const char*>(sqlite3_column_text(s, i)),
                                       static_cast<size_t>(sqlite3_column_bytes(s, i)));
                    salida.cadena(v);
                    if (fila) fila->emplace_back(std::string(v));
                    break;
                }
                case SQLITE_BLOB: {
                    const void* datos = sqlite3_column_blob(s, i);
                    std::string_view v(static_cast<const char*>(datos),
                                       static_cast<size_t>(sqlite3_column_bytes(s, i)));
                    salida.base64(v);
                    if (fila) fila->emplace_back(Bytes{std::string(v)});
                    break;
                }
                default:
                    salida.crudo("null");
                    if (fila) fila->emplace_back(std::monostate{});
                    break;
                }
                observa(clase[static_cast<size_t>(i)], tipo);
            }
            salida.caracter(']');
            primera = false;
        }
        if (rc != SQLITE_DONE) {
            const int codigo = sqlite3_extended_errcode(db_);
            if (!enTransaccion()) alRevertir(this);
            throw errorDeSqlite(codigo, sqlite3_errmsg(db_));
        }
        salida.caracter(']');

        // Una columna con enteros y reales es real: sus enteros ya escritos llevan ".0".
        std::vector<bool> aReal(static_cast<size_t>(n), false);
        bool corregir = false;
        for (size_t i = 0; i < aReal.size(); ++i) {
            aReal[i] = clase[i] == SQLITE_FLOAT && conEnteros[i];
            corregir = corregir || aReal[i];
        }
        if (corregir) {
            std::string corregido =
                enterosAReales(std::string_view(texto).substr(inicioFilas), aReal);
            salida.cabe(corregido.size() - (texto.size() - inicioFilas));
            texto.replace(inicioFilas, std::string::npos, corregido);
        }

        if (!sqlite3_stmt_readonly(s)) {
            resumen.filasAfectadas = sqlite3_changes64(db_);
            resumen.ultimoId = sqlite3_last_insert_rowid(db_);
        }
        salida.crudo(",\"filasAfectadas\":");
        salida.entero(resumen.filasAfectadas);
        salida.crudo(",\"ultimoId\":");
        salida.entero(resumen.ultimoId);
        salida.caracter('}');

        std::string columnas = "{\"columnas\":[";
        for (int i = 0; i < n; ++i) {
            if (i > 0) columnas += ',';
            columnas += "{\"nombre\":" + nombresJson[static_cast<size_t>(i)] + ",\"tipo\":\"";
            columnas += protocolo::nombreTipo(
                tipoDeColumna(clase[static_cast<size_t>(i)], sqlite3_column_decltype(s, i)));
            columnas += "\"}";
        }
        columnas += "],";
        const size_t sobra = hueco - columnas.size();
        std::memcpy(texto.data() + inicio + sobra, columnas.data(), columnas.size());
        texto.erase(inicio, sobra);

        if (!enTransaccion() && !tocadas_.empty()) avisaConfirmacion();
        return resumen;
    }

    // Reescribe los renglones JSON ya escritos (texto propio: arreglos de arreglos de valores)
    // con ".0" en los enteros de las columnas marcadas.
    static std::string enterosAReales(std::string_view filas, const std::vector<bool>& aReal) {
        std::string r;
        r.reserve(filas.size() + filas.size() / 8);
        size_t columna = 0;
        int nivel = 0;
        for (size_t i = 0; i < filas.size();) {
            const char c = filas[i];
            if (c == '"') {
                size_t j = i + 1;
                while (j < filas.size() && filas[j] != '"')
                    j += filas[j] == '\\' ? 2 : 1;
                r.append(filas.substr(i, j + 1 - i));
                i = j + 1;
            } else if (c == '[') {
                ++nivel;
                columna = 0;
                r.push_back(c);
                ++i;
            } else if (c == ']') {
                --nivel;
                r.push_back(c);
                ++i;
            } else if (c == ',') {
                if (nivel == 2) ++columna;
                r.push_back(c);
                ++i;
            } else {
                size_t j = i;
                while (j < filas.size() && filas[j] != ',' && filas[j] != ']')
                    ++j;
                std::string_view valor = filas.substr(i, j - i);
                r.append(valor);
                if (columna < aReal.size() && aReal[columna] &&
                    valor.find_first_not_of("-0123456789") == std::string_view::npos)
                    r.append(".0");
                i = j;
            }
        }
        return r;
    }

    OpcionesSqlite opciones_;
    sqlite3* db_ = nullptr;
    bool confiable_ = false;
    bool denegada_ = false; // el autorizador negó algo al preparar
    std::atomic<bool> interrumpida_{false};
    std::optional<Reloj::time_point> limite_;
    std::set<std::string> tocadas_;           // tablas cambiadas en la transacción
    std::vector<std::set<std::string>> pila_; // tocadas_ al abrir cada punto de guardado
    const char* ultimaTocada_ = nullptr;
    sqlite3* ayudante_ = nullptr; // base en memoria donde corre el printf original
    std::unordered_map<int, sqlite3_stmt*> printfPreparados_;
    using Entrada = std::pair<std::string, std::unique_ptr<SentenciaPreparada>>;
    std::list<Entrada> cache_;
    std::unordered_map<std::string, std::list<Entrada>::iterator> indice_;
};

} // namespace

MotorSqlite::MotorSqlite(OpcionesSqlite opciones) : opciones_(std::move(opciones)) {}

std::unique_ptr<Conexion> MotorSqlite::abreConexion() {
    return std::make_unique<ConexionSqlite>(opciones_);
}

void MotorSqlite::liberaMemoria() {
    sqlite3_release_memory(std::numeric_limits<int>::max());
    malloc_trim(0);
}

} // namespace cajaplex::servidor
