// Códigos y etiquetas: lo que se dibuja se lee de vuelta con un lector independiente.
#include <QFile>
#include <QPdfDocument>
#include <QPdfSelection>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "printing/CodigoBarras.h"
#include "tests/printing/LecturaCodigos.h"

namespace cajaplex {
namespace {

using prueba::leeCodigo;
using prueba::paginaPdf;
using prueba::simbologia;

TEST(CodigoBarras, CadaSimbologiaDeTiendaSeLeeDeVuelta) {
    // El lector agrega el dígito verificador donde lo hay.
    const char* casos[][3] = {
        {"EAN-13", "750100000001", "7501000000012"},
        {"EAN-13", "7501000000012", "7501000000012"},
        {"EAN-8", "1234567", "12345670"},
        {"UPC-A", "03600029145", "036000291452"},
        {"UPC-E", "0123456", "01234565"},
        {"Code 128", "Caja-128 abc", "Caja-128 abc"},
        {"Code 39", "CAJA 39", "CAJA 39"},
        {"Interleaved 2 of 5", "12345678", "12345678"},
        {"Codabar", "A40156B", "A40156B"},
        {"QR Code", "Café con leche ñ", "Café con leche ñ"},
        {"Data Matrix", "Lote 2024-07", "Lote 2024-07"},
        {"PDF417", "Cajaplex PDF417", "Cajaplex PDF417"},
    };
    for (const auto& [nombre, valor, leido] : casos)
        EXPECT_EQ(
            leeCodigo(imagenCodigoBarras(QString::fromUtf8(valor), simbologia(nombre), 2.0)).texto,
            leido)
            << nombre;
    const int ean13 = simbologia("EAN-13");
    EXPECT_EQ(imagenCodigoBarras("750100000001", ean13, 2.0).width(),
              2 * imagenCodigoBarras("750100000001", ean13, 1.0).width());
}

TEST(CodigoBarras, RechazaLoQueLaSimbologiaNoCodifica) {
    const int ean13 = simbologia("EAN-13");
    for (const char* valor : {"7501000000019", "75010000ABC", "12345678901234", ""})
        EXPECT_THROW(imagenCodigoBarras(valor, ean13), ErrorCodigoBarras) << valor;
    EXPECT_THROW(imagenCodigoBarras("123456", simbologia("Codabar")), ErrorCodigoBarras);
    EXPECT_THROW(imagenCodigoBarras("123", 9999), ErrorCodigoBarras);
}

class Etiquetas : public ::testing::Test {
protected:
    ParametrosEtiqueta etiqueta(const char* nombre, const QString& valor) const {
        ParametrosEtiqueta p;
        p.valor = valor;
        p.simbologia = simbologia(nombre);
        p.descripcion = QStringLiteral("Arroz Morelos 1 kg");
        p.precio = QStringLiteral("$ 32.50");
        p.copias = 3;
        return p;
    }
    QTemporaryDir dir_;
    const QString ruta_ = dir_.filePath(QStringLiteral("etiqueta.pdf"));
};

TEST_F(Etiquetas, UnaPaginaPorCopiaConElCodigoYSusRenglones) {
    for (const char* nombre : {"EAN-13", "Code 128", "QR Code"}) {
        ParametrosEtiqueta p = etiqueta(nombre, QStringLiteral("7501000000012"));
        const bool conExistencias = QString(nombre) == "QR Code";
        if (conExistencias) p.existencias = QStringLiteral("Existencias: 14");
        generaEtiquetasPdf(p, ruta_);

        QPdfDocument pdf;
        ASSERT_EQ(pdf.load(ruta_), QPdfDocument::Error::None) << nombre;
        EXPECT_EQ(pdf.pageCount(), 3) << nombre;
        EXPECT_NEAR(pdf.pagePointSize(0).width() * 25.4 / 72.0, 50.0, 0.5);
        EXPECT_NEAR(pdf.pagePointSize(0).height() * 25.4 / 72.0, 25.0, 0.5);
        EXPECT_EQ(leeCodigo(paginaPdf(pdf, 0)).texto, "7501000000012") << nombre;
        EXPECT_EQ(leeCodigo(paginaPdf(pdf, 2)).texto, "7501000000012") << nombre;
        const QString texto = pdf.getAllText(0).text();
        EXPECT_TRUE(texto.contains("Arroz Morelos 1 kg") && texto.contains("$ 32.50")) << nombre;
        EXPECT_EQ(texto.contains("Existencias: 14"), conExistencias) << nombre;
    }
}

TEST_F(Etiquetas, LaRotacionGiraElCodigoYSeSigueLeyendo) {
    for (const int rotacion : {0, 90, 180, 270}) {
        ParametrosEtiqueta p = etiqueta("Code 128", QStringLiteral("ARZ-0001"));
        p.rotacion = rotacion;
        p.borde = 2;
        p.espaciado = 1;
        generaEtiquetasPdf(p, ruta_);
        QPdfDocument pdf;
        ASSERT_EQ(pdf.load(ruta_), QPdfDocument::Error::None);
        EXPECT_NEAR(pdf.pagePointSize(0).width() * 25.4 / 72.0, 54.0, 0.5); // el borde agranda
        const prueba::Lectura lectura = leeCodigo(paginaPdf(pdf, 0, 600));
        EXPECT_EQ(lectura.texto, "ARZ-0001") << rotacion;
        EXPECT_EQ((lectura.orientacion + 360) % 180, rotacion % 180) << rotacion;
    }
}

TEST_F(Etiquetas, UnaFallaNoDejaArchivoAMedias) {
    EXPECT_THROW(generaEtiquetasPdf(etiqueta("EAN-13", "75010000ABC"), ruta_), ErrorCodigoBarras);
    EXPECT_FALSE(QFile::exists(ruta_));

    // Lo que ya había queda entero.
    generaEtiquetasPdf(etiqueta("EAN-13", "7501000000012"), ruta_);
    EXPECT_THROW(generaEtiquetasPdf(etiqueta("EAN-13", "75010000ABC"), ruta_), ErrorCodigoBarras);
    ParametrosEtiqueta sinCopias = etiqueta("EAN-13", "7501000000012");
    sinCopias.copias = 0;
    EXPECT_THROW(generaEtiquetasPdf(sinCopias, ruta_), ErrorCodigoBarras);
    QPdfDocument pdf;
    ASSERT_EQ(pdf.load(ruta_), QPdfDocument::Error::None);
    EXPECT_EQ(pdf.pageCount(), 3);

    EXPECT_THROW(generaEtiquetasPdf(etiqueta("EAN-13", "7501000000012"),
                                    dir_.filePath(QStringLiteral("no-existe/etiqueta.pdf"))),
                 ErrorCodigoBarras);
}

} // namespace
} // namespace cajaplex
