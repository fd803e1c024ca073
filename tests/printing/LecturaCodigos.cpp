#define ZX_USE_UTF8
#include "tests/printing/LecturaCodigos.h"

#include <memory>

#include <gtest/gtest.h>

#include <ZXing/ReadBarcode.h>

#include <QApplication>
#include <QPainter>
#include <QPdfDocument>

#include "printing/CodigoBarras.h"

namespace cajaplex::prueba {
namespace {} // namespace

Lectura leeCodigo(const QImage& imagen) {
    const QImage gris = imagen.convertToFormat(QImage::Format_Grayscale8);
    const ZXing::ImageView vista(gris.constBits(), gris.width(), gris.height(),
                                 ZXing::ImageFormat::Lum, static_cast<int>(gris.bytesPerLine()));
    const ZXing::Result r = ZXing::ReadBarcode(
        vista, ZXing::DecodeHints().setTryHarder(true).setReturnCodabarStartEnd(true));
    return r.isValid() ? Lectura{r.text(), r.orientation()} : Lectura{};
}

QImage paginaPdf(QPdfDocument& documento, int pagina, int ppp) {
    const QSize tamano = (documento.pagePointSize(pagina) * ppp / 72.0).toSize();
    QImage hoja(tamano, QImage::Format_RGB32);
    hoja.fill(Qt::white);
    QPainter(&hoja).drawImage(0, 0, documento.render(pagina, tamano));
    return hoja;
}

int simbologia(const QString& nombre) {
    for (const Simbologia& s : simbologias())
        if (s.nombre == nombre) return s.codigo;
    ADD_FAILURE() << "No se ofrece " << nombre.toStdString();
    return 0;
}

} // namespace cajaplex::prueba
