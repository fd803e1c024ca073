// El ticket de una venta guardada: lo que dice el PDF, su QR, el papel, el logotipo, la copia
// local de plantillas sin servicio y la impresión sin impresora.
#include <QBuffer>
#include <QColor>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QPdfDocument>
#include <QPdfSelection>
#include <QSignalSpy>
#include <QTest>
#include <QWidget>

#include <gtest/gtest.h>

#include "datos/AjustesEstacion.h"
#include "datos/ModuloDatos.h"
#include "pantallas/Mensajes.h"
#include "printing/ImpresionDocumentos.h"
#include "printing/PlantillasLocales.h"
#include "printing/TicketVenta.h"
#include "tests/printing/LecturaCodigos.h"
#include "tests/printing/PruebaImpresion.h"

namespace cajaplex {
namespace {

using prueba::entero;
using prueba::Json;
using prueba::texto;

class TicketVenta : public prueba::ConCopiaLocal {
protected:
    // Una venta de contado como la deja el registro: dos renglones (uno con nota), dos formas de
    // pago con cambio y puntos para la clienta. Devuelve su folio.
    long long guardaVenta() {
        const long long folio =
            c.valor("Select FolioRem From Configura Where empresaID = 1").get<long long>();
        c.exige("Insert Into Remision (empresaID, folio, fecha, usuarioID, vendedor, cliente, "
                "moneda, tipoCambio, subtotalRemision, descuento, iepsRemision, ivaRemision, "
                "totalRemision, puntosRemision, pagada, saldoPendiente, plazoPago, montoPagado, "
                "pagoMixto, descontoExistencias, entregada) Values (1, :folio, "
                "'2026-11-20 13:45:00', 2, 2, 2, 1, 1, 95.26, 0, 0, 15.24, 110.50, 5.25, 1, 0, 0, "
                "110.50, 1, 1, 1)",
                {{"folio", entero(folio)}});
        const long long id = c.valor("Select ID From Remision Where empresaID = 1 and folio = :f",
                                     {{"f", entero(folio)}})
                                 .get<long long>();
        const char* detalle =
            "Insert Into RemisionDetalle (id, empresaID, remision, posicion, producto, clave, "
            "cantidad, precio, pLista, descuento, importe, pCompra, porcentajeImpuesto, ieps, "
            "moneda, mesPagado, nota) Values (:id, 1, :folio, :pos, :producto, :clave, :cantidad, "
            ":precio, 1, 0, :importe, 20, 0, 0, 1, 0, :nota)";
        c.exige(detalle, {{"id", entero(id)},
                          {"folio", entero(folio)},
                          {"pos", entero(1)},
                          {"producto", entero(1)},
                          {"clave", texto("1001")},
                          {"cantidad", prueba::real(2)},
                          {"precio", prueba::real(32)},
                          {"importe", prueba::real(64)},
                          {"nota", texto("")}});
        c.exige(detalle, {{"id", entero(id)},
                          {"folio", entero(folio)},
                          {"pos", entero(2)},
                          {"producto", entero(6)},
                          {"clave", texto("1006")},
                          {"cantidad", prueba::real(1)},
                          {"precio", prueba::real(46.5)},
                          {"importe", prueba::real(46.5)},
                          {"nota", texto("Sin abrir")}});
        const char* pago = "Insert Into RemisionPagos (empresaID, remision, feMetodoID, importe, "
                           "moneda, utilizados) Values (1, :folio, :forma, :importe, 1, :usado)";
        c.exige(pago, {{"folio", entero(folio)},
                       {"forma", entero(5)},
                       {"importe", prueba::real(50)},
                       {"usado", prueba::real(50)}});
        c.exige(pago, {{"folio", entero(folio)},
                       {"forma", entero(1)},
                       {"importe", prueba::real(100)},
                       {"usado", prueba::real(60.5)}});
        return folio;
    }

    // Logotipo rojo sólido: fácil de encontrar en la página.
    void ponLogotipo() {
        QImage logo(60, 60, QImage::Format_RGB32);
        logo.fill(Qt::red);
        QByteArray png;
        QBuffer b(&png);
        b.open(QIODevice::WriteOnly);
        logo.save(&b, "PNG");
        c.exige("Update Empresa Set Logotipo1 = :logo Where empresaID = 1",
                {{"logo", prueba::parametro("blob", png.toBase64().toStdString())}});
    }

    QString pdf(const QString& plantilla, const DocumentoImpresion& d, const FormatoPapel& f,
                const QString& nombre = QStringLiteral("ticket.pdf")) {
        const QString archivo = carpeta_.filePath(nombre);
        generaPdfDocumento(plantilla, d, f, archivo);
        return archivo;
    }

    QString ticketRemision() {
        actualizaCopiaLocalPlantillas(ModuloDeDatos, sesion_);
        return plantillaLocal(ModuloDeDatos.ConexionLocalBD, 1, QStringLiteral("Remisión")).texto;
    }
};

int pixelesRojos(const QImage& imagen) {
    int n = 0;
    for (int y = 0; y < imagen.height(); ++y)
        for (int x = 0; x < imagen.width(); ++x) {
            const QColor c = imagen.pixelColor(x, y);
            if (c.red() > 200 && c.green() < 60 && c.blue() < 60) ++n;
        }
    return n;
}

TEST_F(TicketVenta, ElPdfDiceLoGuardadoYSuQrLlevaLaReferencia) {
    c.exige("Update ConfiguraImpresiones Set imprimeQRRemision = 1 Where empresaID = 1");
    const long long folio = guardaVenta();
    const QString plantilla = ticketRemision();
    const DocumentoImpresion venta = datosTicketVenta(ModuloDeDatos.ConexionBD, 1, folio);

    QPdfDocument documento;
    ASSERT_EQ(documento.load(pdf(plantilla, venta, FormatoPapel{80.0, true, 8})),
              QPdfDocument::Error::None);
    ASSERT_EQ(documento.pageCount(), 1);
    const QString texto = documento.getAllText(0).text().simplified();
    for (const QString& esperado : {QStringLiteral("Folio: %1").arg(folio),
                                    QStringLiteral("Abarrotes La Esperanza"),
                                    QStringLiteral("GOER700512JD4"),
                                    QStringLiteral("20/11/2026 13:45"),
                                    QStringLiteral("Laura Méndez Ríos"),
                                    QStringLiteral("María Guadalupe Hernández López"),
                                    QStringLiteral("Arroz súper extra 1 kg"),
                                    QStringLiteral("$64.00"),
                                    QStringLiteral("Aceite vegetal comestible 900 ml"),
                                    QStringLiteral("$46.50"),
                                    QStringLiteral("Sin abrir"),
                                    QStringLiteral("$95.26"),
                                    QStringLiteral("$15.24"),
                                    QStringLiteral("$110.50"),
                                    QStringLiteral("TARJETA DE DÉBITO"),
                                    QStringLiteral("$50.00"),
                                    QStringLiteral("EFECTIVO"),
                                    QStringLiteral("$100.00"),
                                    QStringLiteral("Cambio: $39.50"),
                                    QStringLiteral("$5.25"),
                                    QStringLiteral("$42.50"),
                                    QStringLiteral("Precios con IVA incluido"),
                                    QStringLiteral("¡Gracias por su compra! Vuelva pronto.")})
        EXPECT_TRUE(texto.contains(esperado)) << esperado.toStdString() << "\n"
                                              << texto.toStdString();
    // Sin descuento ni IEPS guardados, esos renglones no aparecen.
    EXPECT_FALSE(texto.contains(QStringLiteral("Descuento:")));
    EXPECT_FALSE(texto.contains(QStringLiteral("IEPS:")));

    const QImage pagina = prueba::paginaPdf(documento, 0, 300);
    // Para mirar el ticket: CAJAPLEX_CAPTURA_TICKET=/ruta/ticket.png
    if (const QString ruta = qEnvironmentVariable("CAJAPLEX_CAPTURA_TICKET"); !ruta.isEmpty())
        pagina.save(ruta);
    const auto lectura = prueba::leeCodigo(pagina);
    EXPECT_EQ(lectura.texto, "GOER700512JD4|" + std::to_string(folio) + "|110.50");

    EXPECT_THROW(datosTicketVenta(ModuloDeDatos.ConexionBD, 1, folio + 100), RegistroInexistente);
    // Otra empresa no ve la venta.
    EXPECT_THROW(datosTicketVenta(ModuloDeDatos.ConexionBD, 2, folio), RegistroInexistente);
}

TEST_F(TicketVenta, AnchosDePapelYPapelContinuo) {
    const long long folio = guardaVenta();
    const QString plantilla = ticketRemision();
    const DocumentoImpresion venta = datosTicketVenta(ModuloDeDatos.ConexionBD, 1, folio);
    struct Caso {
        FormatoPapel formato;
        double anchoPt;
    };
    for (const Caso& caso :
         {Caso{{58.0, true, 7}, 58 / 25.4 * 72}, Caso{{80.0, true, 8}, 80 / 25.4 * 72},
          Caso{{AnchoCartaMm, false, 10}, 612.0}}) {
        QPdfDocument documento;
        ASSERT_EQ(documento.load(pdf(plantilla, venta, caso.formato)), QPdfDocument::Error::None);
        const QSizeF hoja = documento.pagePointSize(0);
        EXPECT_NEAR(hoja.width(), caso.anchoPt, 1.0) << caso.formato.anchoMm;
        EXPECT_TRUE(documento.getAllText(0).text().contains(QStringLiteral("$110.50")));
        if (caso.formato.continuo) {
            // Una sola hoja tan alta como el ticket: más alta que ancha, menos que una carta.
            EXPECT_EQ(documento.pageCount(), 1);
            EXPECT_GT(hoja.height(), hoja.width());
            EXPECT_LT(hoja.height(), 792.0);
        } else {
            EXPECT_NEAR(hoja.height(), 792.0, 1.0);
        }
    }
    // Papel cortado angosto: un ticket largo se parte en hojas; el continuo sigue en una.
    QVariantList muchos;
    for (int i = 0; i < 120; ++i)
        muchos << QVariantMap{{QStringLiteral("cantidad"), QStringLiteral("1")},
                              {QStringLiteral("descripcion"), QStringLiteral("Renglón %1").arg(i)},
                              {QStringLiteral("importe"), QStringLiteral("$1.00")}};
    DocumentoImpresion largo = venta;
    largo.datos[QStringLiteral("renglones")] = muchos;
    QPdfDocument cortado, continuo;
    ASSERT_EQ(cortado.load(pdf(plantilla, largo, {58.0, false, 7}, QStringLiteral("c.pdf"))),
              QPdfDocument::Error::None);
    ASSERT_EQ(continuo.load(pdf(plantilla, largo, {58.0, true, 7}, QStringLiteral("l.pdf"))),
              QPdfDocument::Error::None);
    EXPECT_GT(cortado.pageCount(), 1);
    EXPECT_EQ(continuo.pageCount(), 1);
    EXPECT_GT(continuo.pagePointSize(0).height(), 792.0);
    EXPECT_TRUE(continuo.getAllText(0).text().contains(QStringLiteral("Renglón 119")));
}

TEST_F(TicketVenta, ElLogotipoSaleSoloConSuOpcion) {
    ponLogotipo();
    const long long folio = guardaVenta();
    const QString plantilla = ticketRemision();
    QPdfDocument con, sin;
    ASSERT_EQ(con.load(pdf(plantilla, datosTicketVenta(ModuloDeDatos.ConexionBD, 1, folio),
                           {80.0, true, 8}, QStringLiteral("con.pdf"))),
              QPdfDocument::Error::None);
    c.exige("Update ConfiguraImpresiones Set imprimeLogotipoRemision = 0 Where empresaID = 1");
    ASSERT_EQ(sin.load(pdf(plantilla, datosTicketVenta(ModuloDeDatos.ConexionBD, 1, folio),
                           {80.0, true, 8}, QStringLiteral("sin.pdf"))),
              QPdfDocument::Error::None);
    EXPECT_GT(pixelesRojos(prueba::paginaPdf(con, 0, 100)), 500);
    EXPECT_EQ(pixelesRojos(prueba::paginaPdf(sin, 0, 100)), 0);
}

TEST_F(TicketVenta, LaCopiaLocalSirveSinServicioYSoloTraeLoQueCambio) {
    const long long folio = guardaVenta();
    // La demostración no trae plantillas: el primer inicio de sesión agrega las predeterminadas.
    EXPECT_EQ(actualizaCopiaLocalPlantillas(ModuloDeDatos, sesion_), carpetasPlantillas().size());
    EXPECT_EQ(c.cuenta("Reportes Where empresaID = 1 and predeterminada = 1"),
              carpetasPlantillas().size());
    EXPECT_EQ(c.cuenta("AuditoriasSistema Where empresaID = 1 and "
                       "moduloSistema = 'Impresión -> Plantillas' and tipoAuditoria = 'Inserción'"),
              1);
    EXPECT_EQ(actualizaCopiaLocalPlantillas(ModuloDeDatos, sesion_), 0);
    EXPECT_EQ(c.cuenta("Reportes Where empresaID = 1"), carpetasPlantillas().size());
    EXPECT_EQ(c.cuenta("Reportes Where empresaID = 2"), 0);

    // Otra estación cambia el ticket: solo ése viaja.
    c.exige("Update Reportes Set plantilla = :t Where empresaID = 1 and carpetaID = (Select "
            "carpetaID From ReportesCarpetas Where empresaID = 1 and nombre = 'Remisión')",
            {{"t", texto("<p>TICKET LOCAL {{folio}} por {{total}}</p>")}});
    EXPECT_EQ(actualizaCopiaLocalPlantillas(ModuloDeDatos, sesion_), 1);

    const DocumentoImpresion venta = datosTicketVenta(ModuloDeDatos.ConexionBD, 1, folio);
    servicio.detiene();
    const Plantilla local =
        plantillaLocal(ModuloDeDatos.ConexionLocalBD, 1, QStringLiteral("Remisión"));
    EXPECT_EQ(local.nombre, QStringLiteral("Ticket de Venta"));
    QPdfDocument documento;
    ASSERT_EQ(documento.load(pdf(local.texto, venta, {58.0, true, 7})), QPdfDocument::Error::None);
    EXPECT_TRUE(documento.getAllText(0).text().contains(
        QStringLiteral("TICKET LOCAL %1 por $110.50").arg(folio)));
    EXPECT_THROW(plantillaLocal(ModuloDeDatos.ConexionLocalBD, 1, QStringLiteral("Remisión"),
                                QStringLiteral("No Existe")),
                 RegistroInexistente);
}

TEST_F(TicketVenta, SinImpresoraElMensajeYLaVentaQuedaGuardada) {
    const long long folio = guardaVenta();
    actualizaCopiaLocalPlantillas(ModuloDeDatos, sesion_);
    QWidget pantalla;
    AjustesEstacion estacion(carpeta_.path());
    const auto espera = [&](TrabajoImpresion* trabajo) {
        QSignalSpy fin(trabajo, &TrabajoImpresion::terminado);
        EXPECT_TRUE(fin.wait(20000));
        return fin.isEmpty() ? false : fin.first().first().toBool();
    };
    Mensajes::ultimos();
    EXPECT_FALSE(espera(imprimeVenta(&pantalla, sesion_, folio, estacion)));
    EXPECT_EQ(Mensajes::ultimos(), QStringList{QString::fromUtf8(MensajeParametrosImpresion)});

    estacion.ponValor(QStringLiteral("ImpresoraRemision"),
                      QStringLiteral("Impresora Que No Existe"));
    EXPECT_FALSE(espera(imprimeVenta(&pantalla, sesion_, folio, estacion)));
    EXPECT_EQ(Mensajes::ultimos(), QStringList{QString::fromUtf8(MensajeParametrosImpresion)});

    // Una plantilla elegida que no existe tampoco imprime.
    estacion.ponValor(QStringLiteral("PlantillaRemision"), QStringLiteral("Borrada"));
    EXPECT_FALSE(espera(imprimeVenta(&pantalla, sesion_, folio, estacion, DestinoImpresion::Pdf)));
    EXPECT_EQ(Mensajes::ultimos(), QStringList{QString::fromUtf8(MensajeParametrosImpresion)});
    EXPECT_EQ(c.cuenta("Remision Where empresaID = 1 and folio = " + std::to_string(folio)), 1);

    // "Visualizar PDF" deja el archivo en la carpeta de la estación, sin mensajes.
    estacion.ponValor(QStringLiteral("PlantillaRemision"), QString());
    estacion.ponValor(QStringLiteral("AnchoTicketRemision"), QStringLiteral("58"));
    EXPECT_TRUE(espera(imprimeVenta(&pantalla, sesion_, folio, estacion, DestinoImpresion::Pdf)));
    EXPECT_TRUE(Mensajes::ultimos().isEmpty());
    QPdfDocument documento;
    ASSERT_EQ(documento.load(carpeta_.filePath(QStringLiteral("ArchivoCajaplexLocal.pdf"))),
              QPdfDocument::Error::None);
    EXPECT_NEAR(documento.pagePointSize(0).width(), 58 / 25.4 * 72, 1.0);
    EXPECT_TRUE(documento.getAllText(0).text().contains(QStringLiteral("Folio: %1").arg(folio)));
}

} // namespace
} // namespace cajaplex
