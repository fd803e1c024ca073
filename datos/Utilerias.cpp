#include "datos/Utilerias.h"

#include "datos/ConexionBD.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include <QDate>
#include <QLocale>
#include <QRegularExpression>

namespace cajaplex {

QString citaSql(const QString& texto) {
    QString cuerpo = texto;
    cuerpo.replace(QLatin1Char('\''), QLatin1String("''"));
    return QLatin1Char('\'') + cuerpo + QLatin1Char('\'');
}

QString numeroSql(int64_t valor) {
    return QString::number(valor);
}

QString numeroSql(double valor) {
    if (!std::isfinite(valor))
        throw ErrorProgramacion("numeroSql: el valor no es un número finito");
    return QString::number(valor, 'g', QLocale::FloatingPointShortest);
}

double Redondea(double valor, int decimales) {
    if (!std::isfinite(valor) || valor == 0.0) return valor;
    // Forma científica más corta: "d.ddddde±XX"; la cifra i vale 10^(exponente - i).
    char bufer[64];
    auto [fin, error] =
        std::to_chars(bufer, bufer + sizeof bufer, std::abs(valor), std::chars_format::scientific);
    if (error != std::errc()) return valor;
    const std::string texto(bufer, fin);
    const size_t e = texto.find('e');
    std::string cifras = texto.substr(0, e);
    if (cifras.size() > 1) cifras.erase(1, 1); // quita el punto
    const int exponente = std::stoi(texto.substr(e + 1));

    // Cifras que sobreviven: de la primera hasta la posición 10^-decimales.
    const long conserva = static_cast<long>(exponente) + 1 + decimales;
    if (conserva >= static_cast<long>(cifras.size())) return valor;
    std::string entero = conserva > 0 ? cifras.substr(0, static_cast<size_t>(conserva)) : "0";
    const char siguiente = conserva >= 0 ? cifras[static_cast<size_t>(conserva)] : '0';
    if (siguiente >= '5') {
        size_t i = entero.size();
        while (i > 0 && entero[i - 1] == '9')
            entero[--i] = '0';
        if (i == 0)
            entero.insert(entero.begin(), '1');
        else
            ++entero[i - 1];
    }
    const std::string resultado = entero + "e" + std::to_string(-decimales);
    const double absoluto = std::strtod(resultado.c_str(), nullptr);
    if (absoluto == 0.0) return 0.0;
    return valor < 0 ? -absoluto : absoluto;
}

QString rfcNormalizado(const QString& rfc) {
    QString r = rfc.toUpper();
    r.remove(QRegularExpression(QStringLiteral("[\\s-]")));
    return r;
}

bool rfcValido(const QString& rfc) {
    static const QRegularExpression forma(
        QStringLiteral("^([A-ZÑ&]{3,4})([0-9]{2})([0-9]{2})([0-9]{2})([A-Z0-9]{3})$"));
    const QRegularExpressionMatch m = forma.match(rfcNormalizado(rfc));
    if (!m.hasMatch()) return false;
    // El siglo no viene en el RFC; cualquiera de los dos da una fecha válida o ninguno.
    return QDate(2000 + m.captured(2).toInt(), m.captured(3).toInt(), m.captured(4).toInt())
        .isValid();
}

} // namespace cajaplex
