#pragma once

#include <stdexcept>
#include <vector>

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace cajaplex {

// Un renglón de datos con su número en la hoja (el encabezado es el 1), para que el usuario
// encuentre en su archivo el renglón que se rechazó.
struct RenglonHoja {
    int numero = 0;
    // Una celda por columna del encabezado: QString, double, bool o nula (vacía).
    std::vector<QVariant> celdas;
};

// La primera hoja de un libro: el primer renglón con algo escrito son los nombres de columna y
// cada renglón posterior con algún dato es un registro. Los renglones vacíos se saltan.
struct Hoja {
    QStringList encabezados;
    std::vector<RenglonHoja> renglones;

    // -1 si no hay columna con ese nombre exacto.
    int columna(const QString& nombre) const {
        return static_cast<int>(encabezados.indexOf(nombre));
    }
};

// El archivo no se pudo leer; el texto es para el usuario.
class ErrorHoja : public std::runtime_error {
public:
    explicit ErrorHoja(const QString& mensaje) : std::runtime_error(mensaje.toStdString()) {}
    QString mensaje() const { return QString::fromStdString(what()); }
};

// Lee .xls (Excel 97-2003), .xlsx o .csv según la extensión. Lanza ErrorHoja.
Hoja leeHoja(const QString& ruta);
Hoja leeXls(const QString& ruta);
Hoja leeXlsx(const QString& ruta);
// Texto en UTF-8 (con o sin BOM) o, si no lo es, Latin-1; separado por comas o por punto y coma
// (el que más aparezca en el primer renglón); campos entre comillas con "" por comilla.
Hoja leeCsv(const QByteArray& contenido);

// Una celda como texto: los números enteros sin decimales (una clave 1001 guardada como número es
// "1001", no "1001.0") y los demás con los dígitos que necesitan.
QString textoCelda(const QVariant& celda);

} // namespace cajaplex
