#include "datos/ConexionLocalBD.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

#include <sqlcipher/sqlite3.h>

namespace cajaplex {

using protocolo::Bytes;
using protocolo::Resultado;
using protocolo::Tipo;
using protocolo::Valor;

namespace {

constexpr const char* CodigoLocal = "base_local";

ErrorServicio errorLocal(const std::string& mensaje) {
    return ErrorServicio(CodigoLocal, 0, mensaje);
}

std::string minusculas(std::string s) {
    std::transform(s.begin(), s.end(), s.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return s;
}

std::string citaLiteral(const std::string& texto) {
    std::string r = "'";
    for (char c : texto) {
        r += c;
        if (c == '\'') r += '\'';
    }
    return r + "'";
}

Tipo tipoDeClase(int clase) {
    switch (clase) {
    case SQLITE_INTEGER:
        return Tipo::Entero;
    case SQLITE_FLOAT:
        return Tipo::Real;
    case SQLITE_BLOB:
        return Tipo::Blob;
    default:
        return Tipo::Texto;
    }
}

struct Preparada {
    sqlite3_stmt* s = nullptr;
    ~Preparada() { sqlite3_finalize(s); }
};

} // namespace

ConexionLocalBD::~ConexionLocalBD() {
    cierra();
}

void ConexionLocalBD::asignaParametro(const QString& nombre, const QString& valor) {
    for (auto& p : parametros_) {
        if (p.first.compare(nombre, Qt::CaseInsensitive) == 0) {
            p.second = valor;
            return;
        }
    }
    parametros_.append({nombre, valor});
}

QString ConexionLocalBD::parametro(const QString& nombre) const {
    for (const auto& p : parametros_)
        if (p.first.compare(nombre, Qt::CaseInsensitive) == 0) return p.second;
    return {};
}

QStringList ConexionLocalBD::nombresParametros() const {
    QStringList nombres;
    for (const auto& p : parametros_)
        nombres << p.first;
    return nombres;
}

void ConexionLocalBD::abre() {
    cierra();
    if (antesDeConectar) antesDeConectar(*this);
    // Encrypt queda registrado como parámetro; el cifrado de SQLCipher lo pone PRAGMA key con
    // el algoritmo propio de la biblioteca.
    const QString controlador = parametro(QStringLiteral("DriverID"));
    if (!controlador.isEmpty() && controlador.compare(QLatin1String("SQLite"), Qt::CaseInsensitive))
        throw errorLocal("Controlador de base local no soportado: " + controlador.toStdString());
    const std::string archivo = parametro(QStringLiteral("Database")).toUtf8().toStdString();
    const std::string contrasena = parametro(QStringLiteral("Password")).toUtf8().toStdString();
    if (archivo.empty()) throw errorLocal("No se indicó el archivo de la base de datos local");
    // Sin contraseña el archivo quedaría en claro: no se permite.
    if (contrasena.empty())
        throw errorLocal("No se indicó la contraseña de la base de datos local «" + archivo + "»");

    if (sqlite3_open_v2(archivo.c_str(), &db_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
                        nullptr) != SQLITE_OK) {
        const std::string detalle = db_ ? sqlite3_errmsg(db_) : "sin memoria";
        cierra();
        throw errorLocal("No se pudo abrir la base de datos local «" + archivo + "»: " + detalle);
    }
    try {
        ejecutaGuion(("PRAGMA key = " + citaLiteral(contrasena)).c_str());
        // La llave no se valida hasta leer: una contraseña equivocada falla aquí.
        ejecutaGuion("Select count(*) From sqlite_master");
    } catch (const ErrorServicio&) {
        cierra();
        throw errorLocal("No se pudo abrir la base de datos local «" + archivo +
                         "»: la contraseña no corresponde o el archivo está dañado");
    }
    try {
        ejecutaGuion("Create Table If Not Exists Reportes ("
                     " empresaID INTEGER NOT NULL, reporteID INTEGER NOT NULL,"
                     " carpetaID INTEGER, Nombre TEXT, plantilla BLOB,"
                     " PRIMARY KEY (empresaID, reporteID))");
    } catch (...) {
        cierra();
        throw;
    }
}

void ConexionLocalBD::cierra() {
    if (db_ != nullptr) sqlite3_close(db_);
    db_ = nullptr;
}

void ConexionLocalBD::ejecutaGuion(const char* sql) {
    char* error = nullptr;
    if (sqlite3_exec(db_, sql, nullptr, nullptr, &error) != SQLITE_OK) {
        const std::string mensaje = error ? error : "error desconocido";
        sqlite3_free(error);
        throw errorLocal("Error de la base de datos local: " + mensaje);
    }
}

Resultado ConexionLocalBD::ejecuta(const protocolo::Sentencia& sentencia) {
    if (db_ == nullptr) throw errorLocal("La base de datos local no está abierta");
    Preparada p;
    if (sqlite3_prepare_v2(db_, sentencia.sql.c_str(), static_cast<int>(sentencia.sql.size()), &p.s,
                           nullptr) != SQLITE_OK)
        throw errorLocal("La base de datos local rechazó la sentencia: " +
                         std::string(sqlite3_errmsg(db_)));
    if (p.s == nullptr) throw errorLocal("La sentencia está vacía");

    for (int i = 1; i <= sqlite3_bind_parameter_count(p.s); ++i) {
        const char* marca = sqlite3_bind_parameter_name(p.s, i);
        const std::string nombre = marca ? minusculas(marca + 1) : "";
        auto it = std::find_if(
            sentencia.parametros.begin(), sentencia.parametros.end(),
            [&](const protocolo::Parametro& par) { return minusculas(par.nombre) == nombre; });
        if (it == sentencia.parametros.end() || it->de)
            throw ErrorProgramacion("La marca " + std::string(marca ? marca : "?") +
                                    " no tiene valor para la base local");
        const Valor& v = it->valor;
        int rc = SQLITE_OK;
        if (auto* n = std::get_if<int64_t>(&v))
            rc = sqlite3_bind_int64(p.s, i, *n);
        else if (auto* d = std::get_if<double>(&v))
            rc = sqlite3_bind_double(p.s, i, *d);
        else if (auto* s = std::get_if<std::string>(&v))
            rc =
                sqlite3_bind_text(p.s, i, s->data(), static_cast<int>(s->size()), SQLITE_TRANSIENT);
        else if (auto* b = std::get_if<Bytes>(&v))
            rc = sqlite3_bind_blob(p.s, i, b->datos.data(), static_cast<int>(b->datos.size()),
                                   SQLITE_TRANSIENT);
        else
            rc = sqlite3_bind_null(p.s, i);
        if (rc != SQLITE_OK) throw errorLocal("No se pudo asignar el parámetro " + nombre);
    }

    Resultado r;
    const int n = sqlite3_column_count(p.s);
    std::vector<int> clase(static_cast<size_t>(n), SQLITE_NULL);
    int rc;
    while ((rc = sqlite3_step(p.s)) == SQLITE_ROW) {
        std::vector<Valor> fila;
        for (int i = 0; i < n; ++i) {
            const int tipo = sqlite3_column_type(p.s, i);
            if (clase[static_cast<size_t>(i)] == SQLITE_NULL) clase[static_cast<size_t>(i)] = tipo;
            switch (tipo) {
            case SQLITE_INTEGER:
                fila.emplace_back(static_cast<int64_t>(sqlite3_column_int64(p.s, i)));
                break;
            case SQLITE_FLOAT:
                fila.emplace_back(sqlite3_column_double(p.s, i));
                break;
            case SQLITE_TEXT:
                fila.emplace_back(
                    std::string(reinterpret_cast<const char*>(sqlite3_column_text(p.s, i)),
                                static_cast<size_t>(sqlite3_column_bytes(p.s, i))));
                break;
            case SQLITE_BLOB: {
                const auto* datos = static_cast<const char*>(sqlite3_column_blob(p.s, i));
                const auto largo = static_cast<size_t>(sqlite3_column_bytes(p.s, i));
                fila.emplace_back(Bytes{datos ? std::string(datos, largo) : std::string()});
                break;
            }
            default:
                fila.emplace_back(std::monostate{});
            }
        }
        r.filas.push_back(std::move(fila));
    }
    if (rc != SQLITE_DONE)
        throw errorLocal("Error de la base de datos local: " + std::string(sqlite3_errmsg(db_)));
    for (int i = 0; i < n; ++i)
        r.columnas.push_back(
            {sqlite3_column_name(p.s, i), tipoDeClase(clase[static_cast<size_t>(i)])});
    if (!sqlite3_stmt_readonly(p.s)) {
        r.filasAfectadas = sqlite3_changes(db_);
        r.ultimoId = sqlite3_last_insert_rowid(db_);
    }
    return r;
}

} // namespace cajaplex
