// El visor muestra el PDF de etiquetas y lo imprime; lo impreso se lee de vuelta.
#include <cstdlib>

#include <QFile>
#include <QLabel>
#include <QPdfDocument>
#include <QPdfView>
#include <QPrinter>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include "pantallas/Mensajes.h"
#include "pantallas/Sonidos.h"
#include "printing/CodigoBarras.h"
#include "printing/VisorPdf.h"
#include "tests/printing/LecturaCodigos.h"

namespace cajaplex {
namespace {

// Diferencia media (0 a 255) de dos imágenes en bloques de 32 pixeles: tolera el suavizado de
// los bordes, no un margen agregado ni una franja fuera de lugar.
double diferenciaPorBloques(const QImage& a, const QImage& b) {
    if (a.size() != b.size()) return 255.0;
    const auto reduce = [](const QImage& i) {
        return i.convertToFormat(QImage::Format_Grayscale8)
            .scaled(i.size() / 32, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    };
    const QImage ra = reduce(a), rb = reduce(b);
    double suma = 0;
    for (int y = 0; y < ra.height(); ++y)
        for (int x = 0; x < ra.width(); ++x)
            suma += std::abs(ra.constScanLine(y)[x] - rb.constScanLine(y)[x]);
    return suma / (ra.width() * ra.height());
}

class VisorPdf : public ::testing::Test {
protected:
    void SetUp() override {
        Mensajes::modoPrueba(true);
        Sonidos::modoPrueba(true);
        Sonidos::activa(true);
        ParametrosEtiqueta p;
        p.valor = QStringLiteral("ARZ-0001");
        p.simbologia = prueba::simbologia(QStringLiteral("Code 128"));
        p.descripcion = QStringLiteral("Arroz Morelos 1 kg");
        p.copias = 4;
        generaEtiquetasPdf(p, etiquetas_);
    }
    void TearDown() override {
        Sonidos::activa(false);
        Sonidos::modoPrueba(false);
        Mensajes::modoPrueba(false);
    }
    static void toca(const TVisorPdfF& visor, const char* boton) {
        QTest::mouseClick(visor.findChild<QPushButton*>(boton), Qt::LeftButton);
    }

    QTemporaryDir dir_;
    const QString etiquetas_ = dir_.filePath(QStringLiteral("etiquetas.pdf"));
};

TEST_F(VisorPdf, MuestraTodasLasPaginasYCambiaElZoom) {
    TVisorPdfF visor(etiquetas_);
    visor.resize(1366, 700);
    visor.show();
    auto* vista = visor.findChild<QPdfView*>("VistaDocumento");
    ASSERT_TRUE(vista && vista->document());
    EXPECT_EQ(vista->document()->status(), QPdfDocument::Status::Ready);
    EXPECT_EQ(vista->pageMode(), QPdfView::PageMode::MultiPage);
    EXPECT_EQ(visor.findChild<QLabel*>("NumeroPaginas")->text(), "Páginas: 4");
    EXPECT_TRUE(visor.findChild<QPushButton*>("BotonImprimir")->isEnabled());
    EXPECT_TRUE(Mensajes::ultimos().isEmpty());

    const double inicial = vista->zoomFactor();
    toca(visor, "BotonAcercar");
    EXPECT_GT(vista->zoomFactor(), inicial);
    toca(visor, "BotonAjustarAncho");
    EXPECT_EQ(vista->zoomMode(), QPdfView::ZoomMode::FitToWidth);
    // Alejar parte de la etiqueta ajustada al ancho (~1300 px), no del último factor guardado.
    toca(visor, "BotonAlejar");
    EXPECT_GT(vista->zoomFactor(), 2 * inicial);
}

TEST_F(VisorPdf, ArchivoFaltanteOInvalidoAvisa) {
    QFile basura(dir_.filePath(QStringLiteral("basura.pdf")));
    ASSERT_TRUE(basura.open(QIODevice::WriteOnly));
    basura.write("esto no es un documento");
    basura.close();
    for (const QString& ruta :
         {dir_.filePath(QStringLiteral("no-existe.pdf")), basura.fileName()}) {
        TVisorPdfF visor(ruta);
        EXPECT_EQ(Mensajes::ultimos(), QStringList{"Error al mostrar el documento"});
        EXPECT_EQ(Sonidos::reproducidos(), QList<Sonido>{Sonido::Error});
        EXPECT_FALSE(visor.findChild<QPushButton*>("BotonImprimir")->isEnabled());
    }
}

TEST_F(VisorPdf, ImprimeLasPaginasPedidasTalCual) {
    QPdfDocument documento;
    ASSERT_EQ(documento.load(etiquetas_), QPdfDocument::Error::None);
    const auto imprime = [&](const QString& nombre, int desde, int hasta) {
        QPrinter impresora(QPrinter::HighResolution);
        impresora.setOutputFormat(QPrinter::PdfFormat);
        impresora.setOutputFileName(dir_.filePath(nombre));
        proponHojaDelDocumento(documento, impresora);
        if (desde > 0) {
            impresora.setPrintRange(QPrinter::PageRange);
            impresora.setFromTo(desde, hasta);
        }
        EXPECT_TRUE(imprimePdf(documento, impresora));
        return impresora.outputFileName();
    };

    QPdfDocument todas;
    ASSERT_EQ(todas.load(imprime("todas.pdf", 0, 0)), QPdfDocument::Error::None);
    EXPECT_EQ(todas.pageCount(), 4);
    EXPECT_EQ(prueba::leeCodigo(prueba::paginaPdf(todas, 3)).texto, "ARZ-0001");
    // A su tamaño y sin márgenes de impresora.
    EXPECT_LT(diferenciaPorBloques(prueba::paginaPdf(documento, 0, 600),
                                   prueba::paginaPdf(todas, 0, 600)),
              6.0);

    QPdfDocument dos;
    ASSERT_EQ(dos.load(imprime("dos.pdf", 2, 3)), QPdfDocument::Error::None);
    EXPECT_EQ(dos.pageCount(), 2);
}

} // namespace
} // namespace cajaplex
