#include "printing/VisorPdf.h"

#include <algorithm>

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPdfDocument>
#include <QPdfDocumentRenderOptions>
#include <QPdfView>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QScroller>
#include <QVBoxLayout>
#include <QtDebug>

#include "pantallas/HojaEstilo.h"
#include "pantallas/Sonidos.h"

namespace cajaplex {
namespace {

constexpr int kAltoControl = 48; // cómodo para el dedo
constexpr double kPasoZoom = 1.25;
constexpr double kZoomMinimo = 0.1;
constexpr double kZoomMaximo = 8.0;
// Una etiqueta o un ticket ajustados al ancho de la pantalla se ven enormes: las hojas más
// angostas que esto abren al doble de su tamaño.
constexpr double kAnchoMinimoAjustePt = 300.0;
constexpr double kZoomHojaAngosta = 2.0;
// Una hoja carta a 1200 ppp son cientos de MB: se dibuja por franjas de este alto.
constexpr int kAltoFranja = 1024;

// Tamaño de la página en pixeles de un dispositivo de `resolucion` ppp.
QSize pixelesDePagina(const QSizeF& puntos, int resolucion) {
    return (puntos * resolucion / 72.0).toSize();
}

void imprimePagina(QPdfDocument& documento, int pagina, QPainter& pintor, const QSize& espacio,
                   int resolucion) {
    QSize tamano = pixelesDePagina(documento.pagePointSize(pagina), resolucion);
    if (tamano.isEmpty()) return;
    if (tamano.width() > espacio.width() || tamano.height() > espacio.height())
        tamano.scale(espacio, Qt::KeepAspectRatio);
    QPdfDocumentRenderOptions opciones;
    opciones.setScaledSize(tamano);
    for (int y = 0; y < tamano.height(); y += kAltoFranja) {
        const QRect franja(0, y, tamano.width(), std::min(kAltoFranja, tamano.height() - y));
        opciones.setScaledClipRect(franja);
        // La biblioteca entrega fondo transparente; la impresora recibe la hoja blanca, sin
        // máscara de transparencia.
        QImage imagen(franja.size(), QImage::Format_RGB32);
        imagen.fill(Qt::white);
        QPainter fondo(&imagen);
        fondo.drawImage(0, 0, documento.render(pagina, franja.size(), opciones));
        fondo.end();
        pintor.drawImage(franja.topLeft(), imagen);
    }
}

} // namespace

TVisorPdfF::TVisorPdfF(const QString& archivo, QWidget* padre) : QWidget(padre) {
    setObjectName(QStringLiteral("VisorPdf"));
    setWindowTitle(QStringLiteral("Visor de Documentos"));

    documento_ = new QPdfDocument(this);
    vista_ = new QPdfView(this);
    vista_->setObjectName(QStringLiteral("VistaDocumento"));
    vista_->setPageMode(QPdfView::PageMode::MultiPage);
    vista_->setZoomMode(QPdfView::ZoomMode::FitToWidth);
    vista_->setPageSpacing(12);
    QScroller::grabGesture(vista_->viewport(), QScroller::LeftMouseButtonGesture);

    numeroPaginas_ = new QLabel(this);
    numeroPaginas_->setObjectName(QStringLiteral("NumeroPaginas"));
    ponEstilo(numeroPaginas_, "pie");
    alejar_ = boton(QStringLiteral("BotonAlejar"), QStringLiteral("Alejar"));
    acercar_ = boton(QStringLiteral("BotonAcercar"), QStringLiteral("Acercar"));
    ajustarAncho_ = boton(QStringLiteral("BotonAjustarAncho"), QStringLiteral("Ajustar al Ancho"));
    imprimir_ = boton(QStringLiteral("BotonImprimir"), QStringLiteral("Imprimir"));
    ponEstilo(imprimir_, "primario");
    connect(alejar_, &QPushButton::clicked, this, &TVisorPdfF::BotonAlejarClick);
    connect(acercar_, &QPushButton::clicked, this, &TVisorPdfF::BotonAcercarClick);
    connect(ajustarAncho_, &QPushButton::clicked, this, &TVisorPdfF::BotonAjustarAnchoClick);
    connect(imprimir_, &QPushButton::clicked, this, &TVisorPdfF::BotonImprimirClick);

    auto* barra = new QHBoxLayout;
    barra->addWidget(numeroPaginas_, 1);
    barra->addWidget(alejar_);
    barra->addWidget(acercar_);
    barra->addWidget(ajustarAncho_);
    barra->addSpacing(24);
    barra->addWidget(imprimir_);
    auto* capa = new QVBoxLayout(this);
    capa->addLayout(barra);
    capa->addWidget(vista_, 1);

    const QPdfDocument::Error error = documento_->load(archivo);
    const bool cargado = error == QPdfDocument::Error::None && documento_->pageCount() > 0;
    for (QPushButton* b : {alejar_, acercar_, ajustarAncho_, imprimir_})
        b->setEnabled(cargado);
    if (!cargado) {
        qWarning() << "No se pudo abrir" << archivo << error;
        numeroPaginas_->setText(QStringLiteral("Páginas: 0"));
        Sonidos::reproduce(Sonido::Error);
        mensajes_.muestra(QStringLiteral("Error al mostrar el documento"));
        return;
    }
    vista_->setDocument(documento_);
    if (documento_->pagePointSize(0).width() < kAnchoMinimoAjustePt) ponZoom(kZoomHojaAngosta);
    numeroPaginas_->setText(QStringLiteral("Páginas: %1").arg(documento_->pageCount()));
}

QPushButton* TVisorPdfF::boton(const QString& nombre, const QString& texto) {
    auto* b = new QPushButton(texto, this);
    b->setObjectName(nombre);
    b->setMinimumHeight(kAltoControl);
    b->setMinimumWidth(kAltoControl * 2);
    return b;
}

// Con "Ajustar al Ancho" la vista calcula su propio factor: se deduce del ancho de la primera
// página para que acercar o alejar parta de lo que se ve.
double TVisorPdfF::zoomActual() const {
    if (vista_->zoomMode() == QPdfView::ZoomMode::Custom) return vista_->zoomFactor();
    const double anchoPagina = documento_->pagePointSize(0).width() * vista_->logicalDpiX() / 72.0;
    const QMargins margenes = vista_->documentMargins();
    const double ancho = vista_->viewport()->width() - margenes.left() - margenes.right();
    return anchoPagina > 0 ? ancho / anchoPagina : 1.0;
}

void TVisorPdfF::ponZoom(double factor) {
    vista_->setZoomMode(QPdfView::ZoomMode::Custom);
    vista_->setZoomFactor(std::clamp(factor, kZoomMinimo, kZoomMaximo));
}

void TVisorPdfF::BotonAcercarClick() {
    Sonidos::reproduce(Sonido::Click);
    ponZoom(zoomActual() * kPasoZoom);
}

void TVisorPdfF::BotonAlejarClick() {
    Sonidos::reproduce(Sonido::Click);
    ponZoom(zoomActual() / kPasoZoom);
}

void TVisorPdfF::BotonAjustarAnchoClick() {
    Sonidos::reproduce(Sonido::Click);
    vista_->setZoomMode(QPdfView::ZoomMode::FitToWidth);
}

void TVisorPdfF::BotonImprimirClick() {
    Sonidos::reproduce(Sonido::Click);
    QPrinter impresora(QPrinter::HighResolution);
    // La hoja propuesta es la del documento (una etiqueta no es carta); el usuario la cambia.
    proponHojaDelDocumento(*documento_, impresora);
    impresora.setFromTo(1, documento_->pageCount());
    QPrintDialog dialogo(&impresora, this);
    dialogo.setMinMax(1, documento_->pageCount());
    if (dialogo.exec() != QDialog::Accepted) return;
    if (!imprimePdf(*documento_, impresora)) {
        Sonidos::reproduce(Sonido::Error);
        mensajes_.muestra(QStringLiteral("Error al imprimir el documento"));
    }
}

void proponHojaDelDocumento(QPdfDocument& documento, QPrinter& impresora) {
    // La hoja se da vertical y la orientación la gira; si no, una etiqueta apaisada se giraría
    // dos veces.
    const QSizeF puntos = documento.pagePointSize(0);
    const bool apaisada = puntos.width() > puntos.height();
    impresora.setPageSize(QPageSize(apaisada ? puntos.transposed() : puntos, QPageSize::Point,
                                    QString(), QPageSize::ExactMatch));
    impresora.setPageOrientation(apaisada ? QPageLayout::Landscape : QPageLayout::Portrait);
}

bool imprimePdf(QPdfDocument& documento, QPrinter& impresora) {
    int primera = 0;
    int ultima = documento.pageCount() - 1;
    if (impresora.printRange() == QPrinter::PageRange && impresora.fromPage() > 0) {
        primera = std::max(0, impresora.fromPage() - 1);
        ultima = std::min(ultima, impresora.toPage() - 1);
    }
    if (ultima < primera) return true;
    // Si el controlador no repite las copias, se mandan las páginas tantas veces como se pidió.
    const int copias = impresora.supportsMultipleCopies() ? 1 : std::max(1, impresora.copyCount());

    // Las páginas del documento ya traen sus márgenes: se dibujan desde la esquina de la hoja.
    impresora.setFullPage(true);
    QPainter pintor;
    if (!pintor.begin(&impresora)) {
        qWarning() << "No se pudo abrir la impresora" << impresora.printerName();
        return false;
    }
    // Sin compresión con pérdida: el JPEG emborrona los bordes de las barras.
    pintor.setRenderHint(QPainter::LosslessImageRendering);
    const QSize espacio = impresora.paperRect(QPrinter::DevicePixel).size().toSize();
    bool primeraHoja = true;
    for (int copia = 0; copia < copias; ++copia) {
        for (int pagina = primera; pagina <= ultima; ++pagina) {
            if (!primeraHoja) impresora.newPage();
            primeraHoja = false;
            imprimePagina(documento, pagina, pintor, espacio, impresora.resolution());
        }
    }
    return pintor.end();
}

} // namespace cajaplex
