#include "catalog/LectorHojas.h"

#include <cmath>
#include <memory>
#include <optional>

#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QLocale>
#include <QStringDecoder>
#include <QXmlStreamReader>

#include <freexl.h>
#include <zip.h>

namespace cajaplex {
namespace {

using Filas = std::vector<std::vector<QVariant>>;

bool vacia(const QVariant& celda) {
    if (!celda.isValid() || celda.isNull()) return true;
    return celda.typeId() == QMetaType::QString && celda.toString().trimmed().isEmpty();
}

void ponCelda(Filas& filas, size_t fila, size_t columna, QVariant valor) {
    if (vacia(valor)) return;
    if (filas.size() <= fila) filas.resize(fila + 1);
    auto& celdas = filas[fila];
    if (celdas.size() <= columna) celdas.resize(columna + 1);
    celdas[columna] = std::move(valor);
}

// filas[i] es el renglón i + 1 de la hoja.
Hoja armaHoja(const Filas& filas) {
    Hoja hoja;
    size_t f = 0;
    auto conDatos = [](const std::vector<QVariant>& celdas) {
        for (const QVariant& c : celdas)
            if (!vacia(c)) return true;
        return false;
    };
    while (f < filas.size() && !conDatos(filas[f]))
        ++f;
    if (f == filas.size()) return hoja;
    for (const QVariant& c : filas[f])
        hoja.encabezados << textoCelda(c).trimmed();
    // Las columnas sin nombre al final no cuentan.
    while (!hoja.encabezados.isEmpty() && hoja.encabezados.constLast().isEmpty())
        hoja.encabezados.removeLast();
    const size_t columnas = static_cast<size_t>(hoja.encabezados.size());
    for (++f; f < filas.size(); ++f) {
        if (!conDatos(filas[f])) continue;
        RenglonHoja renglon;
        renglon.numero = static_cast<int>(f) + 1;
        renglon.celdas = filas[f];
        renglon.celdas.resize(columnas);
        if (conDatos(renglon.celdas)) hoja.renglones.push_back(std::move(renglon));
    }
    return hoja;
}

QString nombreArchivo(const QString& ruta) {
    return QFileInfo(ruta).fileName();
}

// ----- .xlsx: un zip con XML -----

struct CierraZip {
    void operator()(zip_t* z) const { zip_discard(z); }
};
using Zip = std::unique_ptr<zip_t, CierraZip>;

std::optional<QByteArray> entrada(zip_t* zip, const QString& nombre) {
    const QByteArray n = nombre.toUtf8();
    zip_stat_t estado;
    zip_stat_init(&estado);
    if (zip_stat(zip, n.constData(), 0, &estado) != 0) return std::nullopt;
    zip_file_t* archivo = zip_fopen(zip, n.constData(), 0);
    if (!archivo) return std::nullopt;
    QByteArray datos;
    datos.resize(static_cast<qsizetype>(estado.size));
    const zip_int64_t leidos = zip_fread(archivo, datos.data(), estado.size);
    zip_fclose(archivo);
    if (leidos < 0 || static_cast<zip_uint64_t>(leidos) != estado.size) return std::nullopt;
    return datos;
}

QString atributo(const QXmlStreamReader& xml, QStringView nombre) {
    for (const QXmlStreamAttribute& a : xml.attributes())
        if (a.name() == nombre) return a.value().toString();
    return {};
}

// La ruta dentro del zip de la primera hoja del libro (por su relación en workbook.xml.rels).
QString rutaPrimeraHoja(zip_t* zip) {
    const QString predeterminada = QStringLiteral("xl/worksheets/sheet1.xml");
    const auto libro = entrada(zip, QStringLiteral("xl/workbook.xml"));
    const auto relaciones = entrada(zip, QStringLiteral("xl/_rels/workbook.xml.rels"));
    if (!libro || !relaciones) return predeterminada;
    QString id;
    for (QXmlStreamReader xml(*libro); !xml.atEnd() && id.isEmpty();)
        if (xml.readNext() == QXmlStreamReader::StartElement && xml.name() == u"sheet")
            id = atributo(xml, u"id");
    for (QXmlStreamReader xml(*relaciones); !xml.atEnd();) {
        if (xml.readNext() != QXmlStreamReader::StartElement || xml.name() != u"Relationship")
            continue;
        if (atributo(xml, u"Id") != id) continue;
        const QString destino = atributo(xml, u"Target");
        if (destino.startsWith(QLatin1Char('/'))) return destino.mid(1);
        return QStringLiteral("xl/") + destino;
    }
    return predeterminada;
}

// Cada <si> es un texto; el texto enriquecido viene en varios <t>. Las guías fonéticas (<rPh>)
// no son parte del texto.
QStringList textosCompartidos(zip_t* zip) {
    QStringList textos;
    const auto datos = entrada(zip, QStringLiteral("xl/sharedStrings.xml"));
    if (!datos) return textos;
    QString actual;
    int fonetica = 0;
    for (QXmlStreamReader xml(*datos); !xml.atEnd();) {
        const auto token = xml.readNext();
        if (token == QXmlStreamReader::StartElement) {
            if (xml.name() == u"si")
                actual.clear();
            else if (xml.name() == u"rPh")
                ++fonetica;
            else if (xml.name() == u"t" && fonetica == 0)
                actual += xml.readElementText();
        } else if (token == QXmlStreamReader::EndElement) {
            if (xml.name() == u"si")
                textos << actual;
            else if (xml.name() == u"rPh")
                --fonetica;
        }
    }
    return textos;
}

// "AB12" -> columna 27 (base 0).
int columnaDeReferencia(const QString& referencia) {
    int columna = 0;
    for (const QChar c : referencia) {
        if (!c.isLetter()) break;
        columna = columna * 26 + (c.toUpper().unicode() - 'A' + 1);
    }
    return columna - 1;
}

QVariant valorXlsx(const QString& tipo, const QString& valor, const QStringList& compartidos) {
    if (tipo == u"s") {
        bool ok = false;
        const int i = valor.toInt(&ok);
        return ok && i >= 0 && i < compartidos.size() ? QVariant(compartidos.at(i)) : QVariant();
    }
    if (tipo == u"b") return QVariant(valor.trimmed() == u"1");
    if (tipo == u"str" || tipo == u"inlineStr" || tipo == u"e" || tipo == u"d")
        return QVariant(valor);
    bool ok = false;
    const double numero = valor.toDouble(&ok);
    return ok ? QVariant(numero) : QVariant(valor);
}

} // namespace

QString textoCelda(const QVariant& celda) {
    if (!celda.isValid() || celda.isNull()) return {};
    switch (celda.typeId()) {
    case QMetaType::Bool:
        return celda.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    case QMetaType::Double: {
        const double v = celda.toDouble();
        if (std::isfinite(v) && v == std::trunc(v) && std::abs(v) < 1e15)
            return QString::number(static_cast<long long>(v));
        return QString::number(v, 'g', QLocale::FloatingPointShortest);
    }
    default:
        return celda.toString();
    }
}

Hoja leeXls(const QString& ruta) {
    const QByteArray archivo = QFile::encodeName(ruta);
    const void* libro = nullptr;
    if (freexl_open(archivo.constData(), &libro) != FREEXL_OK) {
        if (libro) freexl_close(libro);
        throw ErrorHoja(QStringLiteral("El archivo %1 no es un libro de Excel (.xls) válido")
                            .arg(nombreArchivo(ruta)));
    }
    struct Cierra {
        const void* l;
        ~Cierra() { freexl_close(l); }
    } cierra{libro};
    unsigned int renglones = 0;
    unsigned short columnas = 0;
    if (freexl_select_active_worksheet(libro, 0) != FREEXL_OK ||
        freexl_worksheet_dimensions(libro, &renglones, &columnas) != FREEXL_OK)
        throw ErrorHoja(QStringLiteral("El archivo %1 no tiene hojas").arg(nombreArchivo(ruta)));
    Filas filas;
    for (unsigned int f = 0; f < renglones; ++f) {
        for (unsigned short c = 0; c < columnas; ++c) {
            FreeXL_CellValue celda;
            if (freexl_get_cell_value(libro, f, c, &celda) != FREEXL_OK) continue;
            QVariant valor;
            switch (celda.type) {
            case FREEXL_CELL_INT:
                valor = static_cast<double>(celda.value.int_value);
                break;
            case FREEXL_CELL_DOUBLE:
                valor = celda.value.double_value;
                break;
            case FREEXL_CELL_TEXT:
            case FREEXL_CELL_SST_TEXT:
            case FREEXL_CELL_DATE:
            case FREEXL_CELL_DATETIME:
            case FREEXL_CELL_TIME:
                valor = QString::fromUtf8(celda.value.text_value);
                break;
            default:
                break;
            }
            ponCelda(filas, f, c, std::move(valor));
        }
    }
    return armaHoja(filas);
}

Hoja leeXlsx(const QString& ruta) {
    const QByteArray archivo = QFile::encodeName(ruta);
    int error = 0;
    Zip zip(zip_open(archivo.constData(), ZIP_RDONLY, &error));
    const QString invalido = QStringLiteral("El archivo %1 no es un libro de Excel (.xlsx) válido")
                                 .arg(nombreArchivo(ruta));
    if (!zip) throw ErrorHoja(invalido);
    const QStringList compartidos = textosCompartidos(zip.get());
    const auto datos = entrada(zip.get(), rutaPrimeraHoja(zip.get()));
    if (!datos) throw ErrorHoja(invalido);

    Filas filas;
    QXmlStreamReader xml(*datos);
    int fila = -1;
    int columna = -1;
    QString tipo;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement) continue;
        const QStringView nombre = xml.name();
        if (nombre == u"row") {
            bool ok = false;
            const int r = atributo(xml, u"r").toInt(&ok);
            fila = ok ? r - 1 : fila + 1;
            columna = -1;
        } else if (nombre == u"c") {
            const QString referencia = atributo(xml, u"r");
            columna = referencia.isEmpty() ? columna + 1 : columnaDeReferencia(referencia);
            tipo = atributo(xml, u"t");
        } else if ((nombre == u"v" || (nombre == u"t" && tipo == u"inlineStr")) && fila >= 0 &&
                   columna >= 0) {
            ponCelda(filas, static_cast<size_t>(fila), static_cast<size_t>(columna),
                     valorXlsx(tipo, xml.readElementText(), compartidos));
        }
    }
    if (xml.hasError()) throw ErrorHoja(invalido);
    return armaHoja(filas);
}

Hoja leeCsv(const QByteArray& contenido) {
    QString texto;
    {
        QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
        texto = utf8.decode(contenido);
        if (utf8.hasError()) texto = QString::fromLatin1(contenido);
    }
    if (texto.startsWith(QChar(0xFEFF))) texto.remove(0, 1);

    // El separador: el que más aparece fuera de comillas en el primer renglón.
    QChar separador = QLatin1Char(',');
    {
        int comas = 0;
        int puntoYComa = 0;
        bool comillas = false;
        for (const QChar c : texto) {
            if (c == QLatin1Char('"'))
                comillas = !comillas;
            else if (!comillas && (c == QLatin1Char('\n') || c == QLatin1Char('\r')))
                break;
            else if (!comillas && c == QLatin1Char(','))
                ++comas;
            else if (!comillas && c == QLatin1Char(';'))
                ++puntoYComa;
        }
        if (puntoYComa > comas) separador = QLatin1Char(';');
    }

    Filas filas(1);
    QString campo;
    bool comillas = false;
    auto cierraCampo = [&] {
        filas.back().push_back(campo.isEmpty() ? QVariant() : QVariant(campo));
        campo.clear();
    };
    for (qsizetype i = 0; i < texto.size(); ++i) {
        const QChar c = texto.at(i);
        if (comillas) {
            if (c != QLatin1Char('"'))
                campo += c;
            else if (i + 1 < texto.size() && texto.at(i + 1) == QLatin1Char('"'))
                campo += texto.at(++i);
            else
                comillas = false;
        } else if (c == QLatin1Char('"')) {
            comillas = true;
        } else if (c == separador) {
            cierraCampo();
        } else if (c == QLatin1Char('\r') || c == QLatin1Char('\n')) {
            if (c == QLatin1Char('\r') && i + 1 < texto.size() &&
                texto.at(i + 1) == QLatin1Char('\n'))
                ++i;
            cierraCampo();
            filas.emplace_back();
        } else {
            campo += c;
        }
    }
    if (!campo.isEmpty() || !filas.back().empty()) cierraCampo();
    return armaHoja(filas);
}

Hoja leeHoja(const QString& ruta) {
    const QString extension = QFileInfo(ruta).suffix().toLower();
    if (!QFileInfo::exists(ruta))
        throw ErrorHoja(QStringLiteral("No existe el archivo %1").arg(ruta));
    if (extension == u"xls") return leeXls(ruta);
    if (extension == u"xlsx") return leeXlsx(ruta);
    if (extension == u"csv") {
        QFile archivo(ruta);
        if (!archivo.open(QIODevice::ReadOnly))
            throw ErrorHoja(
                QStringLiteral("No se pudo abrir el archivo %1").arg(nombreArchivo(ruta)));
        return leeCsv(archivo.readAll());
    }
    throw ErrorHoja(QStringLiteral(
        "Solo se importan archivos de Excel (.xls, .xlsx) o de texto separado por comas (.csv)"));
}

} // namespace cajaplex
