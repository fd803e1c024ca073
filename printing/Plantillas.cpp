#include "printing/Plantillas.h"

#include <algorithm>
#include <cmath>
#include <string>

#include <kainjow/mustache.hpp>

#include <QAbstractTextDocumentLayout>
#include <QFont>
#include <QPageLayout>
#include <QPageSize>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>
#include <QTextDocument>
#include <QUrl>

namespace cajaplex {
namespace {

namespace mu = kainjow::mustache;

constexpr double kMmPorPulgada = 25.4;
// Resolución del PDF: de sobra para que el QR se lea con un escáner.
constexpr int kPuntosPorPulgadaPdf = 600;

mu::data aMustache(const QVariant& valor) {
    switch (valor.typeId()) {
    case QMetaType::Bool:
        return mu::data(valor.toBool());
    case QMetaType::QVariantMap: {
        mu::data objeto(mu::data::type::object);
        const QVariantMap mapa = valor.toMap();
        for (auto it = mapa.cbegin(); it != mapa.cend(); ++it) {
            // Un texto vacío o nulo no se agrega: así su sección se omite.
            if (it.value().isNull() ||
                (it.value().typeId() == QMetaType::QString && it.value().toString().isEmpty()))
                continue;
            objeto.set(it.key().toStdString(), aMustache(it.value()));
        }
        return objeto;
    }
    case QMetaType::QVariantList: {
        mu::data lista(mu::data::type::list);
        for (const QVariant& v : valor.toList())
            lista.push_back(aMustache(v));
        return lista;
    }
    default:
        return mu::data(valor.toString().toStdString());
    }
}

} // namespace

double margenMm(const FormatoPapel& formato) {
    return formato.anchoMm > 100.0 ? 12.0 : 2.0;
}

QString rellenaPlantilla(const QString& plantilla, const QVariantMap& datos) {
    mu::mustache m(plantilla.toStdString());
    if (!m.is_valid())
        throw ErrorPlantilla("Plantilla con marcadores mal formados: " + m.error_message());
    const std::string texto = m.render(aMustache(datos));
    if (!m.is_valid()) throw ErrorPlantilla("Plantilla no válida: " + m.error_message());
    return QString::fromStdString(texto);
}

std::unique_ptr<QTextDocument> componeDocumento(const QString& plantilla,
                                                const DocumentoImpresion& documento,
                                                const FormatoPapel& formato) {
    auto doc = std::make_unique<QTextDocument>();
    QFont fuente(QStringLiteral("DejaVu Sans"));
    fuente.setPointSizeF(std::max(5, formato.tamanoFuente));
    doc->setDefaultFont(fuente);
    doc->setDocumentMargin(0);
    for (auto it = documento.imagenes.cbegin(); it != documento.imagenes.cend(); ++it)
        doc->addResource(QTextDocument::ImageResource, QUrl(it.key()), it.value());
    doc->setHtml(rellenaPlantilla(plantilla, documento.datos));
    return doc;
}

void pintaDocumento(QTextDocument& documento, QPagedPaintDevice& dispositivo,
                    const FormatoPapel& formato) {
    const double margen = margenMm(formato);
    // El documento se acomoda a la resolución del dispositivo: letras e imágenes a su tamaño real.
    documento.documentLayout()->setPaintDevice(&dispositivo);
    const double pixelesPorMm = dispositivo.logicalDpiX() / kMmPorPulgada;
    const double anchoUtil = (formato.anchoMm - 2 * margen) * pixelesPorMm;
    double altoMm = AltoCartaMm;
    if (formato.continuo) {
        documento.setPageSize(QSizeF(anchoUtil, 1e9));
        documento.setTextWidth(anchoUtil);
        const double altoContenido = documento.documentLayout()->documentSize().height();
        // Nunca más ancha que alta: la hoja no debe tomarse por apaisada.
        altoMm = std::max(std::ceil(altoContenido / pixelesPorMm) + 2 * margen + 2.0,
                          formato.anchoMm + 1.0);
    }
    const double altoUtil = (altoMm - 2 * margen) * pixelesPorMm;
    documento.setPageSize(QSizeF(anchoUtil, altoUtil));

    const QPageLayout hoja(QPageSize(QSizeF(formato.anchoMm, altoMm), QPageSize::Millimeter,
                                     QString(), QPageSize::ExactMatch),
                           QPageLayout::Portrait, QMarginsF(margen, margen, margen, margen),
                           QPageLayout::Millimeter);
    if (!dispositivo.setPageLayout(hoja)) {
        // Una impresora con márgenes mínimos mayores: se respeta su hoja con sus márgenes.
        dispositivo.setPageSize(hoja.pageSize());
        dispositivo.setPageMargins(QMarginsF(margen, margen, margen, margen),
                                   QPageLayout::Millimeter);
    }

    QPainter pintor;
    if (!pintor.begin(&dispositivo)) throw ErrorPlantilla("No se pudo abrir el dispositivo");
    const int paginas = std::max(1, documento.pageCount());
    for (int i = 0; i < paginas; ++i) {
        if (i > 0) dispositivo.newPage();
        pintor.save();
        pintor.translate(0, -i * altoUtil);
        documento.drawContents(&pintor, QRectF(0, i * altoUtil, anchoUtil, altoUtil));
        pintor.restore();
    }
    if (!pintor.end()) throw ErrorPlantilla("No se pudo terminar el documento");
}

void generaPdfDocumento(const QString& plantilla, const DocumentoImpresion& documento,
                        const FormatoPapel& formato, const QString& archivo) {
    auto doc = componeDocumento(plantilla, documento, formato);
    QSaveFile salida(archivo);
    if (!salida.open(QIODevice::WriteOnly))
        throw ErrorPlantilla("No se pudo escribir " + archivo.toStdString());
    {
        QPdfWriter pdf(&salida);
        pdf.setResolution(kPuntosPorPulgadaPdf);
        pdf.setCreator(QStringLiteral("Cajaplex"));
        pintaDocumento(*doc, pdf, formato);
    }
    if (!salida.commit()) throw ErrorPlantilla("No se pudo escribir " + archivo.toStdString());
}

} // namespace cajaplex
