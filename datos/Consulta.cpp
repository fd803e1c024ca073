#include "datos/Consulta.h"

#include <algorithm>
#include <cctype>

#include "datos/Transaccion.h"

namespace cajaplex {

namespace {

// Como el tokenizador de SQLite: letras, dígitos, '_', '$' y cualquier byte no ASCII.
bool esDeIdentificador(char c) {
    const auto u = static_cast<unsigned char>(c);
    return std::isalnum(u) || c == '_' || c == '$' || u >= 0x80;
}

// El servicio compara nombres con tolower byte a byte: solo ASCII.
std::string minusculas(std::string s) {
    std::transform(s.begin(), s.end(), s.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return s;
}

size_t despuesDe(const std::string& sql, size_t desde, const std::string& cierre) {
    const size_t i = sql.find(cierre, desde);
    return i == std::string::npos ? sql.size() : i + cierre.size();
}

} // namespace

std::vector<std::string> marcasSql(const std::string& sql) {
    std::vector<std::string> marcas;
    std::vector<std::string> vistas;
    const size_t n = sql.size();
    size_t i = 0;
    while (i < n) {
        const char c = sql[i];
        if (c == '-' && i + 1 < n && sql[i + 1] == '-') {
            i = despuesDe(sql, i + 2, "\n");
        } else if (c == '/' && i + 1 < n && sql[i + 1] == '*') {
            i = despuesDe(sql, i + 2, "*/");
        } else if (c == '\'' || c == '"' || c == '`') {
            // Literal o identificador entre comillas; la comilla duplicada es parte del texto.
            for (++i; i < n; ++i) {
                if (sql[i] != c) continue;
                if (i + 1 < n && sql[i + 1] == c)
                    ++i;
                else
                    break;
            }
            ++i;
        } else if (c == '[') {
            i = despuesDe(sql, i + 1, "]");
        } else if (c == ':' && i + 1 < n && esDeIdentificador(sql[i + 1])) {
            size_t fin = i + 1;
            while (fin < n && esDeIdentificador(sql[fin]))
                ++fin;
            std::string nombre = sql.substr(i + 1, fin - i - 1);
            std::string clave = minusculas(nombre);
            if (std::find(vistas.begin(), vistas.end(), clave) == vistas.end()) {
                vistas.push_back(std::move(clave));
                marcas.push_back(std::move(nombre));
            }
            i = fin;
        } else {
            ++i;
        }
    }
    return marcas;
}

void ParametroConsulta::texto(const QString& valor) {
    pon(protocolo::Tipo::Texto, valor.toUtf8().toStdString());
}

void ParametroConsulta::fecha(const QDateTime& valor) {
    if (!valor.isValid()) {
        pon(protocolo::Tipo::Fecha, std::monostate{});
        return;
    }
    pon(protocolo::Tipo::Fecha,
        valor.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")).toUtf8().toStdString());
}

void ParametroConsulta::fecha(const QDate& valor) {
    fecha(valor.isValid() ? valor.startOfDay() : QDateTime());
}

void ParametroConsulta::blob(const QByteArray& valor) {
    pon(protocolo::Tipo::Blob,
        protocolo::Bytes{std::string(valor.constData(), static_cast<size_t>(valor.size()))});
}

void ParametroConsulta::guid(const QUuid& valor) {
    pon(protocolo::Tipo::Guid, valor.toString(QUuid::WithoutBraces).toStdString());
}

void ParametroConsulta::nulo() {
    pon(p_.tipo, std::monostate{});
}

void ParametroConsulta::de(size_t sentencia, const QString& columna, protocolo::Tipo tipo) {
    pon(tipo, std::monostate{});
    p_.de = protocolo::Referencia{sentencia, columna.toUtf8().toStdString()};
}

Consulta::Consulta(QString sql) {
    asignaSql(std::move(sql));
}

Consulta::Consulta(ConexionDatos& conexion, QString sql) : conexion_(&conexion) {
    asignaSql(std::move(sql));
}

void Consulta::asignaSql(QString sql) {
    sql_ = std::move(sql);
    sqlUtf8_ = sql_.toUtf8().toStdString();
    claves_.clear();
    parametros_.clear();
    for (auto& marca : marcasSql(sqlUtf8_)) {
        claves_.push_back(minusculas(marca));
        parametros_.emplace_back(std::move(marca));
    }
    cierra();
}

QStringList Consulta::marcas() const {
    QStringList lista;
    for (const auto& p : parametros_)
        lista << QString::fromStdString(p.valor().nombre);
    return lista;
}

ParametroConsulta& Consulta::parametro(const QString& nombre) {
    const std::string clave = minusculas(nombre.toUtf8().toStdString());
    auto it = std::find(claves_.begin(), claves_.end(), clave);
    if (it == claves_.end())
        throw ErrorProgramacion("La sentencia no tiene la marca :" + nombre.toStdString() + " («" +
                                sqlUtf8_ + "»)");
    return parametros_[static_cast<size_t>(it - claves_.begin())];
}

void Consulta::limpiaParametros() {
    for (auto& p : parametros_)
        p = ParametroConsulta(p.valor().nombre);
}

QStringList Consulta::marcasSinAsignar() const {
    QStringList lista;
    for (const auto& p : parametros_)
        if (!p.asignado()) lista << QString::fromStdString(p.valor().nombre);
    return lista;
}

protocolo::Sentencia Consulta::sentencia() const {
    const QStringList faltan = marcasSinAsignar();
    if (!faltan.isEmpty())
        throw ErrorProgramacion(
            "Sin valor asignado para :" + faltan.join(QStringLiteral(", :")).toStdString() +
            " en esta ejecución; no se mandó nada («" + sqlUtf8_ + "»)");
    protocolo::Sentencia s{sqlUtf8_, {}};
    s.parametros.reserve(parametros_.size());
    for (const auto& p : parametros_)
        s.parametros.push_back(p.valor());
    return s;
}

protocolo::Sentencia Consulta::tomaSentencia() {
    struct Olvida {
        Consulta& c;
        ~Olvida() { c.limpiaParametros(); }
    } olvida{*this};
    return sentencia();
}

namespace {
protocolo::Sentencia sinReferencias(protocolo::Sentencia s) {
    for (const auto& p : s.parametros)
        if (p.de)
            throw ErrorProgramacion(
                "El parámetro :" + p.nombre +
                " toma su valor de otra sentencia: solo vale dentro de un lote");
    return s;
}
} // namespace

void Consulta::abre() {
    if (conexion_ == nullptr) {
        limpiaParametros();
        throw ErrorProgramacion("La consulta no tiene conexión asignada: «" + sqlUtf8_ + "»");
    }
    guarda(conexion_->ejecuta(sinReferencias(tomaSentencia())));
}

void Consulta::abre(Transaccion& transaccion) {
    guarda(transaccion.ejecuta(sinReferencias(tomaSentencia())));
}

void Consulta::ejecuta() {
    abre();
}

void Consulta::ejecuta(Transaccion& transaccion) {
    abre(transaccion);
}

void Consulta::cierra() {
    registros_ = Registros();
    actual_ = 0;
}

void Consulta::guarda(protocolo::Resultado resultado) {
    registros_ = Registros(std::move(resultado));
    actual_ = 0;
}

} // namespace cajaplex
