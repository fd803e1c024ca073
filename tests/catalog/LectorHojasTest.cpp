// Lectura de hojas reales (.xls de xlwt, .xlsx de libxlsxwriter, .csv en UTF-8 y Latin-1) y
// conversión de las celdas que el importador interpreta.
#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "catalog/ImportacionCatalogo.h"
#include "catalog/LectorHojas.h"
#include "tests/catalog/LectorHojasPrueba.h"

namespace cajaplex {
namespace {

using namespace prueba;

QStringList textos(const RenglonHoja& r) {
    QStringList t;
    for (const QVariant& c : r.celdas)
        t << textoCelda(c);
    return t;
}

// Lo mismo en los tres formatos: encabezado recortado, celdas vacías, un renglón vacío que se
// salta sin perder la numeración, números que son claves y textos con acentos.
const Renglones kHoja = {
    {QStringLiteral(" CLAVE "), QStringLiteral("DESCRIPCION"), QStringLiteral("PRECIO1"),
     QStringLiteral("KIT")},
    {1001, QStringLiteral("Azúcar estándar, 1 kg"), 24.5, QStringLiteral("SÍ")},
    {},
    {7501234567890.0, QStringLiteral("Piña \"miel\""), QVariant(), QStringLiteral("no")}};

void revisaHoja(const Hoja& hoja) {
    EXPECT_EQ(hoja.encabezados, (QStringList{"CLAVE", "DESCRIPCION", "PRECIO1", "KIT"}));
    ASSERT_EQ(hoja.renglones.size(), 2u);
    EXPECT_EQ(hoja.renglones[0].numero, 2);
    EXPECT_EQ(hoja.renglones[1].numero, 4);
    EXPECT_EQ(textos(hoja.renglones[0]),
              (QStringList{"1001", "Azúcar estándar, 1 kg", "24.5", "SÍ"}));
    EXPECT_EQ(textos(hoja.renglones[1]), (QStringList{"7501234567890", "Piña \"miel\"", "", "no"}));
}

TEST(LectorHojasTest, XlsXlsxYCsvSeLeenIgual) {
    QTemporaryDir dir;
    const QString xls = dir.filePath(QStringLiteral("hoja.xls"));
    escribeXls(xls, kHoja);
    revisaHoja(leeHoja(xls));

    for (bool enLinea : {false, true}) {
        const QString xlsx = dir.filePath(QStringLiteral("hoja%1.xlsx").arg(enLinea));
        escribeXlsx(xlsx, kHoja, enLinea);
        revisaHoja(leeHoja(xlsx));
    }

    // UTF-8 con BOM y comas, con comillas, comillas dobladas y fin de renglón de Windows.
    const QString utf8 = dir.filePath(QStringLiteral("utf8.csv"));
    escribeArchivo(utf8, "\xEF\xBB\xBF CLAVE ,DESCRIPCION,PRECIO1,KIT\r\n"
                         "1001,\"Azúcar estándar, 1 kg\",24.5,SÍ\r\n"
                         ",,,\r\n"
                         "7501234567890,\"Piña \"\"miel\"\"\",,no\r\n");
    revisaHoja(leeHoja(utf8));

    // Latin-1 con punto y coma, como lo guarda Excel en otro idioma.
    const QString latin1 = dir.filePath(QStringLiteral("latin1.csv"));
    escribeArchivo(latin1, QStringLiteral("CLAVE;DESCRIPCION;PRECIO1;KIT\n"
                                          "1001;Azúcar estándar, 1 kg;24.5;SÍ\n\n"
                                          "7501234567890;\"Piña \"\"miel\"\"\";;no")
                               .toLatin1());
    revisaHoja(leeHoja(latin1));
}

TEST(LectorHojasTest, ArchivosQueNoSonHojasSeRechazanConSuMensaje) {
    QTemporaryDir dir;
    const QString falso = dir.filePath(QStringLiteral("falso.xlsx"));
    escribeArchivo(falso, "esto no es un zip");
    const QString falsoXls = dir.filePath(QStringLiteral("falso.xls"));
    escribeArchivo(falsoXls, "tampoco");
    const QString texto = dir.filePath(QStringLiteral("notas.txt"));
    escribeArchivo(texto, "a,b");
    const std::pair<QString, QString> casos[] = {
        {falso, "El archivo falso.xlsx no es un libro de Excel (.xlsx) válido"},
        {falsoXls, "El archivo falso.xls no es un libro de Excel (.xls) válido"},
        {texto, "Solo se importan archivos de Excel (.xls, .xlsx) o de texto separado por comas "
                "(.csv)"}};
    for (const auto& [ruta, mensaje] : casos) {
        try {
            leeHoja(ruta);
            ADD_FAILURE() << ruta.toStdString();
        } catch (const ErrorHoja& e) {
            EXPECT_EQ(e.mensaje(), mensaje);
        }
    }
}

TEST(LectorHojasTest, BanderasYNumerosDeLasCeldas) {
    for (const QVariant& si : {QVariant(1.0), QVariant(true), QVariant("si"), QVariant(" Sí "),
                               QVariant("TRUE"), QVariant("Verdadero"), QVariant("x")})
        EXPECT_EQ(banderaDeCelda(si), true) << si.toString().toStdString();
    for (const QVariant& no : {QVariant(), QVariant(0.0), QVariant(false), QVariant(""),
                               QVariant("NO"), QVariant("false"), QVariant("Falso")})
        EXPECT_EQ(banderaDeCelda(no), false) << no.toString().toStdString();
    for (const QVariant& mala : {QVariant(2.0), QVariant("quizá"), QVariant("S")})
        EXPECT_EQ(banderaDeCelda(mala), std::nullopt) << mala.toString().toStdString();

    EXPECT_EQ(numeroDeCelda(QVariant()), 0.0);
    EXPECT_EQ(numeroDeCelda(QVariant(" ")), 0.0);
    EXPECT_EQ(numeroDeCelda(QVariant(12.75)), 12.75);
    EXPECT_EQ(numeroDeCelda(QVariant("$1,234.50")), 1234.5);
    EXPECT_EQ(numeroDeCelda(QVariant("1,250")), 1250.0);
    EXPECT_EQ(numeroDeCelda(QVariant("12,5")), 12.5);
    EXPECT_EQ(numeroDeCelda(QVariant("doce")), std::nullopt);
    EXPECT_EQ(numeroDeCelda(QVariant(true)), std::nullopt);
}

} // namespace
} // namespace cajaplex
