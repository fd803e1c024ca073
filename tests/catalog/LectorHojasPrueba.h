// Hojas reales para las pruebas: .xls escrito por xlwt (python), .xlsx por libxlsxwriter y .csv.
#pragma once

#include <gtest/gtest.h>

#include <vector>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <xlsxwriter.h>

namespace cajaplex::prueba {

using Celdas = std::vector<QVariant>;
using Renglones = std::vector<Celdas>;

inline void escribeXls(const QString& ruta, const Renglones& renglones) {
    QJsonArray hoja;
    for (const Celdas& r : renglones) {
        QJsonArray celdas;
        for (const QVariant& c : r)
            celdas.append(QJsonValue::fromVariant(c));
        hoja.append(celdas);
    }
    QProcess python;
    python.start(QStringLiteral(CAJAPLEX_PYTHON), {QStringLiteral(CAJAPLEX_HOJA_XLS), ruta});
    ASSERT_TRUE(python.waitForStarted());
    python.write(QJsonDocument(hoja).toJson());
    python.closeWriteChannel();
    ASSERT_TRUE(python.waitForFinished(30000));
    ASSERT_EQ(python.exitCode(), 0) << python.readAllStandardError().toStdString();
}

// Con `enLinea`, libxlsxwriter escribe los textos dentro de la celda (inlineStr) en vez de en la
// tabla de textos compartidos.
inline void escribeXlsx(const QString& ruta, const Renglones& renglones, bool enLinea = false) {
    lxw_workbook_options opciones{};
    opciones.constant_memory = enLinea ? LXW_TRUE : LXW_FALSE;
    const QByteArray archivo = QFile::encodeName(ruta);
    lxw_workbook* libro = workbook_new_opt(archivo.constData(), &opciones);
    lxw_worksheet* hoja = workbook_add_worksheet(libro, "Hoja1");
    for (size_t f = 0; f < renglones.size(); ++f)
        for (size_t c = 0; c < renglones[f].size(); ++c) {
            const QVariant& v = renglones[f][c];
            const auto fila = static_cast<lxw_row_t>(f);
            const auto col = static_cast<lxw_col_t>(c);
            if (v.typeId() == QMetaType::Bool)
                worksheet_write_boolean(hoja, fila, col, v.toBool(), nullptr);
            else if (v.typeId() == QMetaType::Int || v.typeId() == QMetaType::Double)
                worksheet_write_number(hoja, fila, col, v.toDouble(), nullptr);
            else if (v.isValid())
                worksheet_write_string(hoja, fila, col, v.toString().toUtf8().constData(), nullptr);
        }
    ASSERT_EQ(workbook_close(libro), LXW_NO_ERROR);
}

inline void escribeArchivo(const QString& ruta, const QByteArray& contenido) {
    QFile f(ruta);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(contenido);
}

} // namespace cajaplex::prueba
