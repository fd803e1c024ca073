#include "printing/ImpresionDocumentos.h"

#include <exception>
#include <memory>

#include <QDir>
#include <QFutureWatcher>
#include <QPointer>
#include <QPrinter>
#include <QPrinterInfo>
#include <QScreen>
#include <QStyle>
#include <QTextDocument>
#include <QWidget>
#include <QtConcurrent/QtConcurrentRun>
#include <QtDebug>

#include "datos/AjustesEstacion.h"
#include "datos/ConexionBD.h"
#include "datos/MensajesComunes.h"
#include "datos/ModuloDatos.h"
#include "pantallas/Mensajes.h"
#include "pantallas/Sonidos.h"
#include "printing/PlantillasLocales.h"
#include "printing/TicketVenta.h"
#include "printing/VisorPdf.h"

namespace cajaplex {
namespace {

enum class Falla { Ninguna, Parametros, Datos };

struct Resultado {
    Falla falla = Falla::Ninguna;
    QString detalle;
};

bool esSi(const QString& valor) {
    const QString v = valor.trimmed().toUpper();
    return v == QStringLiteral("SÍ") || v == QStringLiteral("SI") || v == QStringLiteral("1") ||
           v == QStringLiteral("TRUE");
}

Resultado imprime(const PedidoImpresion& pedido, const QString& plantilla,
                  const std::function<DocumentoImpresion()>& datos) {
    DocumentoImpresion documento;
    try {
        documento = datos();
    } catch (const std::exception& e) {
        return {Falla::Datos, QString::fromUtf8(e.what())};
    }
    try {
        if (pedido.destino == DestinoImpresion::Pdf) {
            generaPdfDocumento(plantilla, documento, pedido.ajustes.formato, pedido.archivoPdf);
            return {};
        }
        const QPrinterInfo info = QPrinterInfo::printerInfo(pedido.ajustes.impresora);
        if (pedido.ajustes.impresora.isEmpty() || info.isNull())
            return {Falla::Parametros,
                    QStringLiteral("Impresora no disponible: ") + pedido.ajustes.impresora};
        auto doc = componeDocumento(plantilla, documento, pedido.ajustes.formato);
        QPrinter impresora(info, QPrinter::HighResolution);
        impresora.setCopyCount(std::max(1, pedido.ajustes.copias));
        impresora.setDocName(pedido.carpeta);
        pintaDocumento(*doc, impresora, pedido.ajustes.formato);
        return {};
    } catch (const std::exception& e) {
        return {Falla::Parametros, QString::fromUtf8(e.what())};
    }
}

} // namespace

AjustesImpresion leeAjustesImpresion(const AjustesEstacion& estacion, const QString& tipo) {
    AjustesImpresion a;
    a.impresora = estacion.valor(QStringLiteral("Impresora") + tipo).toString();
    a.plantilla = estacion.valor(QStringLiteral("Plantilla") + tipo).toString();
    a.formato.continuo = esSi(
        estacion.valor(QStringLiteral("PapelContinuo") + tipo, QStringLiteral("SÍ")).toString());
    a.copias = std::max(1, estacion.valor(QStringLiteral("NumeroCopias") + tipo, 1).toInt());
    const QString ancho =
        estacion.valor(QStringLiteral("AnchoTicket") + tipo, QStringLiteral("80")).toString();
    a.formato.anchoMm = ancho == QStringLiteral("58")   ? 58.0
                        : ancho == QStringLiteral("80") ? 80.0
                                                        : AnchoCartaMm;
    const int fuentePorOmision = a.formato.anchoMm < 60 ? 7 : a.formato.anchoMm < 100 ? 8 : 10;
    a.formato.tamanoFuente = std::clamp(
        estacion.valor(QStringLiteral("TamanoFuente") + tipo, fuentePorOmision).toInt(), 5, 24);
    return a;
}

void guardaAjustesImpresion(AjustesEstacion& estacion, const QString& tipo,
                            const AjustesImpresion& a) {
    estacion.ponValor(QStringLiteral("Impresora") + tipo, a.impresora);
    estacion.ponValor(QStringLiteral("Plantilla") + tipo, a.plantilla);
    estacion.ponValor(QStringLiteral("PapelContinuo") + tipo,
                      a.formato.continuo ? QStringLiteral("SÍ") : QStringLiteral("NO"));
    estacion.ponValor(QStringLiteral("NumeroCopias") + tipo, a.copias);
    estacion.ponValor(QStringLiteral("AnchoTicket") + tipo,
                      a.formato.anchoMm < 60    ? QStringLiteral("58")
                      : a.formato.anchoMm < 100 ? QStringLiteral("80")
                                                : QStringLiteral("Carta"));
    estacion.ponValor(QStringLiteral("TamanoFuente") + tipo, a.formato.tamanoFuente);
}

TrabajoImpresion* imprimeDocumento(QWidget* pantalla, const Sesion& sesion,
                                   const PedidoImpresion& pedido,
                                   std::function<DocumentoImpresion()> datos) {
    auto* trabajo = new TrabajoImpresion(pantalla);
    QPointer<QWidget> destino(pantalla);
    const auto falla = [trabajo, destino](const QString& mensaje, const QString& detalle) {
        qWarning() << "Impresión:" << detalle;
        Sonidos::reproduce(Sonido::Error);
        Mensajes(destino).muestra(mensaje);
        emit trabajo->terminado(false);
        trabajo->deleteLater();
    };
    // La plantilla se lee aquí, de la base local: el otro hilo no toca la conexión local.
    QString plantilla = pedido.plantilla;
    if (plantilla.isEmpty()) {
        try {
            plantilla = plantillaLocal(ModuloDeDatos.ConexionLocalBD, sesion.EmpresaID,
                                       pedido.carpeta, pedido.ajustes.plantilla)
                            .texto;
        } catch (const std::exception& e) {
            // Se avisa después, como cualquier otro final: quien llama ya puede estar escuchando.
            QMetaObject::invokeMethod(
                trabajo,
                [falla, detalle = QString::fromUtf8(e.what())] {
                    falla(QString::fromUtf8(MensajeParametrosImpresion), detalle);
                },
                Qt::QueuedConnection);
            return trabajo;
        }
    }
    auto* vigilante = new QFutureWatcher<Resultado>(trabajo);
    QObject::connect(vigilante, &QFutureWatcher<Resultado>::finished, trabajo,
                     [vigilante, trabajo, destino, pedido, falla] {
                         const Resultado r = vigilante->result();
                         if (r.falla == Falla::Datos)
                             return falla(QString::fromUtf8(MensajeErrorLectura), r.detalle);
                         if (r.falla == Falla::Parametros)
                             return falla(QString::fromUtf8(MensajeParametrosImpresion), r.detalle);
                         if (pedido.destino == DestinoImpresion::Pdf && destino) {
                             auto* visor = new TVisorPdfF(pedido.archivoPdf, destino);
                             visor->setWindowFlag(Qt::Window);
                             visor->setAttribute(Qt::WA_DeleteOnClose);
                             // Una hoja a la vista: la mitad del ancho y casi todo el alto de
                             // la pantalla donde está la caja.
                             const QRect area = destino->screen()->availableGeometry();
                             visor->setGeometry(QStyle::alignedRect(
                                 Qt::LeftToRight, Qt::AlignCenter,
                                 QSize(area.width() / 2, area.height() * 9 / 10), area));
                             visor->show();
                         }
                         emit trabajo->terminado(true);
                         trabajo->deleteLater();
                     });
    vigilante->setFuture(QtConcurrent::run([pedido, plantilla, datos = std::move(datos)] {
        return imprime(pedido, plantilla, datos);
    }));
    return trabajo;
}

TrabajoImpresion* imprimeVenta(QWidget* pantalla, const Sesion& sesion, int64_t folio,
                               const AjustesEstacion& estacion, DestinoImpresion destino) {
    PedidoImpresion pedido;
    pedido.carpeta = QStringLiteral("Remisión");
    pedido.ajustes = leeAjustesImpresion(estacion, QStringLiteral("Remision"));
    pedido.destino = destino;
    pedido.archivoPdf = QDir(estacion.carpeta()).filePath(QString::fromUtf8(ArchivoPdfLocal));
    const int64_t empresa = sesion.EmpresaID;
    // La conexión remota atiende a un hilo a la vez; los datasets son propios de este trabajo.
    return imprimeDocumento(pantalla, sesion, pedido, [empresa, folio] {
        return datosTicketVenta(ModuloDeDatos.ConexionBD, empresa, folio);
    });
}

} // namespace cajaplex
