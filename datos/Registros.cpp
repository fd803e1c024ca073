#include "datos/Registros.h"

#include <cmath>
#include <variant>

#include <QLocale>

#include "datos/ConexionBD.h"

namespace cajaplex {

using protocolo::Bytes;

namespace {

QDateTime fechaDesdeTexto(const QString& texto) {
    // El servicio manda 'yyyy-MM-dd HH:mm:ss'; se aceptan también milisegundos, la 'T' y la
    // fecha sola.
    QString t = texto.trimmed();
    t.replace(QLatin1Char('T'), QLatin1Char(' '));
    for (const char* formato :
         {"yyyy-MM-dd HH:mm:ss", "yyyy-MM-dd HH:mm:ss.zzz", "yyyy-MM-dd HH:mm"}) {
        QDateTime f = QDateTime::fromString(t, QLatin1String(formato));
        if (f.isValid()) return f;
    }
    QDate d = QDate::fromString(t, QStringLiteral("yyyy-MM-dd"));
    return d.isValid() ? d.startOfDay() : QDateTime();
}

} // namespace

bool Campo::esNulo() const {
    return v_ == nullptr || protocolo::esNulo(*v_);
}

int64_t Campo::comoEntero() const {
    if (esNulo()) return 0;
    if (auto* i = std::get_if<int64_t>(v_)) return *i;
    if (auto* d = std::get_if<double>(v_)) return static_cast<int64_t>(std::llround(*d));
    if (auto* s = std::get_if<std::string>(v_)) {
        const QString t = QString::fromUtf8(s->data(), static_cast<qsizetype>(s->size())).trimmed();
        bool ok = false;
        const qlonglong n = t.toLongLong(&ok);
        if (ok) return n;
        const double d = t.toDouble(&ok);
        return ok ? static_cast<int64_t>(std::llround(d)) : 0;
    }
    return 0;
}

double Campo::comoReal() const {
    if (esNulo()) return 0.0;
    if (auto* d = std::get_if<double>(v_)) return *d;
    if (auto* i = std::get_if<int64_t>(v_)) return static_cast<double>(*i);
    if (auto* s = std::get_if<std::string>(v_))
        return QString::fromUtf8(s->data(), static_cast<qsizetype>(s->size())).trimmed().toDouble();
    return 0.0;
}

QString Campo::comoTexto() const {
    if (esNulo()) return {};
    if (auto* s = std::get_if<std::string>(v_))
        return QString::fromUtf8(s->data(), static_cast<qsizetype>(s->size()));
    if (auto* i = std::get_if<int64_t>(v_)) return QString::number(*i);
    if (auto* d = std::get_if<double>(v_))
        return QString::number(*d, 'g', QLocale::FloatingPointShortest);
    const auto& b = std::get<Bytes>(*v_).datos;
    return QString::fromUtf8(b.data(), static_cast<qsizetype>(b.size()));
}

QDateTime Campo::comoFecha() const {
    if (auto* s = std::get_if<std::string>(v_)) return fechaDesdeTexto(QString::fromUtf8(*s));
    return {};
}

QByteArray Campo::comoBlob() const {
    if (esNulo()) return {};
    if (auto* b = std::get_if<Bytes>(v_))
        return QByteArray(b->datos.data(), static_cast<qsizetype>(b->datos.size()));
    if (auto* s = std::get_if<std::string>(v_))
        return QByteArray(s->data(), static_cast<qsizetype>(s->size()));
    return comoTexto().toUtf8();
}

bool Campo::comoBooleano() const {
    if (esNulo()) return false;
    if (auto* s = std::get_if<std::string>(v_)) {
        const QString t = QString::fromUtf8(*s).trimmed();
        if (t.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0) return true;
        return t.toDouble() != 0.0;
    }
    return comoReal() != 0.0;
}

Campo Registro::campo(const QString& nombre) const {
    return r_->campo(fila_, nombre);
}

Registros::Registros(protocolo::Resultado resultado) : r_(std::move(resultado)) {
    for (int i = 0; i < static_cast<int>(r_.columnas.size()); ++i) {
        const QString clave =
            QString::fromUtf8(r_.columnas[static_cast<size_t>(i)].nombre).toLower();
        if (!indice_.contains(clave)) indice_.insert(clave, i);
    }
}

QStringList Registros::columnas() const {
    QStringList lista;
    for (const auto& c : r_.columnas)
        lista << QString::fromUtf8(c.nombre);
    return lista;
}

bool Registros::tieneColumna(const QString& nombre) const {
    return indice_.contains(nombre.toLower());
}

Campo Registros::campo(size_t fila, const QString& nombre) const {
    auto it = indice_.constFind(nombre.toLower());
    if (it == indice_.constEnd())
        throw ErrorProgramacion(
            "El resultado no tiene el campo '" + nombre.toStdString() +
            "' (columnas: " + columnas().join(QStringLiteral(", ")).toStdString() + ")");
    const size_t columna = static_cast<size_t>(it.value());
    if (fila >= r_.filas.size() || columna >= r_.filas[fila].size())
        return {QString::fromUtf8(r_.columnas[columna].nombre), nullptr};
    return {QString::fromUtf8(r_.columnas[columna].nombre), &r_.filas[fila][columna]};
}

} // namespace cajaplex
