#include "printing/CodigoBarras.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include <zint.h>

#include <QDir>
#include <QFontMetricsF>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QPolygonF>
#include <QSaveFile>
#include <QtMath>

namespace cajaplex {
namespace {

// Resolución del PDF: las barras son vectores; solo la ubicación se redondea a este paso.
constexpr int kPuntosPorPulgada = 1200;
constexpr double kMmPorPulgada = 25.4;
constexpr double kSeparacionTextoMm = 1.0;

using Simbolo = std::unique_ptr<zint_symbol, decltype(&ZBarcode_Delete)>;

[[noreturn]] void fallaZint(const zint_symbol& simbolo) {
    throw ErrorCodigoBarras(QString::fromUtf8(simbolo.errtxt).toStdString());
}

// Codifica el valor; lo que la biblioteca rechaza llega con su propio texto de error.
Simbolo codifica(const QString& valor, int simbologia, double escala) {
    if (!ZBarcode_ValidID(simbologia))
        throw ErrorCodigoBarras(
            QStringLiteral("Simbología desconocida: %1").arg(simbologia).toStdString());
    Simbolo simbolo(ZBarcode_Create(), &ZBarcode_Delete);
    if (!simbolo) throw ErrorCodigoBarras("Sin memoria para el código de barra");
    simbolo->symbology = simbologia;
    simbolo->input_mode = UNICODE_MODE;
    simbolo->show_hrt = 0;
    // Con zonas de silencio el lector encuentra el código aunque la etiqueta no tenga margen.
    simbolo->output_options = BARCODE_QUIET_ZONES;
    simbolo->scale = static_cast<float>(escala > 0.0 ? escala : 1.0);
    const QByteArray datos = valor.toUtf8();
    if (ZBarcode_Encode(simbolo.get(), reinterpret_cast<const unsigned char*>(datos.constData()),
                        static_cast<int>(datos.size())) >= ZINT_ERROR)
        fallaZint(*simbolo);
    return simbolo;
}

// Ángulo normalizado a 0, 90, 180 o 270.
int rotacionNormal(int grados) {
    const int cuarto = static_cast<int>(std::lround(grados / 90.0));
    return ((cuarto % 4) + 4) % 4 * 90;
}

// Dibuja el vector del código ocupando `caja`; los códigos de una fila se estiran en cada eje,
// los de matriz o de varias filas conservan su proporción.
void dibujaCodigo(QPainter& pintor, const zint_symbol& simbolo, const QRectF& caja, int rotacion) {
    const zint_vector& vector = *simbolo.vector;
    const bool girado = rotacion == 90 || rotacion == 270;
    const double ancho = girado ? caja.height() : caja.width();
    const double alto = girado ? caja.width() : caja.height();
    double sx = ancho / vector.width;
    double sy = alto / vector.height;
    if (simbolo.rows > 1 || ZBarcode_Cap(simbolo.symbology, ZINT_CAP_FIXED_RATIO))
        sx = sy = std::min(sx, sy);

    pintor.save();
    pintor.translate(caja.center());
    pintor.rotate(rotacion);
    pintor.scale(sx, sy);
    pintor.translate(-vector.width / 2.0, -vector.height / 2.0);
    pintor.setPen(Qt::NoPen);
    pintor.setBrush(Qt::black);
    for (const zint_vector_rect* r = vector.rectangles; r; r = r->next)
        pintor.drawRect(QRectF(r->x, r->y, r->width, r->height));
    for (const zint_vector_hexagon* h = vector.hexagons; h; h = h->next) {
        QPolygonF hexagono;
        const double radio = h->diameter / 2.0;
        for (int i = 0; i < 6; ++i) {
            const double angulo = qDegreesToRadians(60.0 * i + 30.0 + h->rotation);
            hexagono << QPointF(h->x + radio * std::cos(angulo), h->y + radio * std::sin(angulo));
        }
        pintor.drawPolygon(hexagono);
    }
    for (const zint_vector_circle* c = vector.circles; c; c = c->next) {
        const double radio = c->diameter / 2.0;
        pintor.setBrush(c->colour ? Qt::white : Qt::black);
        pintor.drawEllipse(QPointF(c->x, c->y), radio, radio);
    }
    pintor.restore();
}

} // namespace

const QList<Simbologia>& simbologias() {
    // EAN-13 y EAN-8 son la misma simbología de la biblioteca: el largo del valor decide.
    static const QList<Simbologia> lista = {
        {QStringLiteral("EAN-13"), BARCODE_EANX},
        {QStringLiteral("EAN-8"), BARCODE_EANX},
        {QStringLiteral("UPC-A"), BARCODE_UPCA},
        {QStringLiteral("UPC-E"), BARCODE_UPCE},
        {QStringLiteral("Code 128"), BARCODE_CODE128},
        {QStringLiteral("Code 39"), BARCODE_CODE39},
        {QStringLiteral("Interleaved 2 of 5"), BARCODE_C25INTER},
        {QStringLiteral("Codabar"), BARCODE_CODABAR},
        {QStringLiteral("QR Code"), BARCODE_QRCODE},
        {QStringLiteral("Data Matrix"), BARCODE_DATAMATRIX},
        {QStringLiteral("PDF417"), BARCODE_PDF417},
    };
    return lista;
}

QImage imagenCodigoBarras(const QString& valor, int simbologia, double escala) {
    Simbolo simbolo = codifica(valor, simbologia, escala);
    if (ZBarcode_Buffer(simbolo.get(), 0) >= ZINT_ERROR) fallaZint(*simbolo);
    // El mapa de la biblioteca es RGB de 3 bytes, negro sobre blanco: basta un canal.
    const int ancho = simbolo->bitmap_width;
    const int alto = simbolo->bitmap_height;
    QImage imagen(ancho, alto, QImage::Format_Grayscale8);
    for (int y = 0; y < alto; ++y) {
        const unsigned char* origen = simbolo->bitmap + 3 * y * ancho;
        uchar* destino = imagen.scanLine(y);
        for (int x = 0; x < ancho; ++x)
            destino[x] = origen[3 * x];
    }
    return imagen;
}

void generaEtiquetasPdf(const ParametrosEtiqueta& p, const QString& archivo) {
    if (p.copias < 1) throw ErrorCodigoBarras("El número de copias debe ser mayor a cero");
    // Se codifica antes de tocar el archivo: un valor rechazado no deja nada a medias.
    Simbolo simbolo = codifica(p.valor, p.simbologia, 1.0);
    if (ZBarcode_Buffer_Vector(simbolo.get(), 0) >= ZINT_ERROR) fallaZint(*simbolo);

    const double borde = std::max(0, p.borde);
    const double margen = borde + std::max(0, p.espaciado);
    const QSizeF paginaMm(p.anchuraMm + 2 * borde, p.alturaMm + 2 * borde);
    if (p.anchuraMm <= 0 || p.alturaMm <= 0 || paginaMm.width() <= 2 * margen ||
        paginaMm.height() <= 2 * margen)
        throw ErrorCodigoBarras("Las medidas de la etiqueta no dejan espacio para el código");

    QSaveFile salida(archivo);
    if (!salida.open(QIODevice::WriteOnly))
        throw ErrorCodigoBarras(QStringLiteral("No se puede escribir el archivo %1: %2")
                                    .arg(archivo, salida.errorString())
                                    .toStdString());
    QPdfWriter pdf(&salida);
    pdf.setResolution(kPuntosPorPulgada);
    pdf.setCreator(QStringLiteral("Cajaplex"));
    pdf.setTitle(p.valor);
    pdf.setPageLayout(
        QPageLayout(QPageSize(paginaMm, QPageSize::Millimeter, QString(), QPageSize::ExactMatch),
                    QPageLayout::Portrait, QMarginsF(), QPageLayout::Millimeter));

    const auto unidades = [](double mm) { return mm / kMmPorPulgada * kPuntosPorPulgada; };
    QPainter pintor;
    if (!pintor.begin(&pdf)) throw ErrorCodigoBarras("No se pudo iniciar el documento PDF");

    QFont letra = pintor.font();
    letra.setPointSizeF(std::max(1, p.tamanoLetra));
    pintor.setFont(letra);
    QStringList renglones;
    for (const QString& texto : {p.descripcion, p.precio, p.existencias})
        if (!texto.trimmed().isEmpty()) renglones << texto.trimmed();

    const QRectF contenido(
        QPointF(unidades(margen), unidades(margen)),
        QPointF(unidades(paginaMm.width() - margen), unidades(paginaMm.height() - margen)));
    const QFontMetricsF medidas(letra, &pdf);
    const double altoTexto = renglones.isEmpty()
                                 ? 0.0
                                 : static_cast<double>(renglones.size()) * medidas.lineSpacing() +
                                       unidades(kSeparacionTextoMm);
    QRectF areaCodigo = contenido.adjusted(0, 0, 0, -altoTexto);
    if (areaCodigo.height() <= 0) {
        pintor.end();
        throw ErrorCodigoBarras("El texto de la etiqueta no deja espacio para el código");
    }
    // La escala reduce el código dentro de su espacio; nunca lo saca de la etiqueta.
    const double factor = p.escala > 0.0 ? std::min(p.escala, 1.0) : 1.0;
    const QSizeF tamanoCodigo = areaCodigo.size() * factor;
    const QRectF cajaCodigo(areaCodigo.center() -
                                QPointF(tamanoCodigo.width() / 2.0, tamanoCodigo.height() / 2.0),
                            tamanoCodigo);
    const int rotacion = rotacionNormal(p.rotacion);

    for (int copia = 0; copia < p.copias; ++copia) {
        if (copia > 0) pdf.newPage();
        dibujaCodigo(pintor, *simbolo, cajaCodigo, rotacion);
        pintor.setPen(Qt::black);
        double y = areaCodigo.bottom() + unidades(kSeparacionTextoMm);
        for (const QString& renglon : renglones) {
            const QRectF linea(contenido.left(), y, contenido.width(), medidas.lineSpacing());
            pintor.drawText(linea, Qt::AlignHCenter | Qt::AlignVCenter,
                            medidas.elidedText(renglon, Qt::ElideRight, contenido.width()));
            y += medidas.lineSpacing();
        }
    }
    pintor.end();
    if (!salida.commit())
        throw ErrorCodigoBarras(QStringLiteral("No se pudo guardar el archivo %1: %2")
                                    .arg(archivo, salida.errorString())
                                    .toStdString());
}

QString archivoPdfLocal() {
    return QDir::temp().filePath(QStringLiteral("ArchivoCajaplexLocal.pdf"));
}

} // namespace cajaplex
