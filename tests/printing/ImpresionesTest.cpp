// La pantalla de plantillas: vista previa con la última venta, guardado con su bitácora y la
// copia local al día, plantilla mal formada rechazada y la predeterminada de una carpeta.
#include <QCheckBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QTextBrowser>

#include <gtest/gtest.h>

#include "datos/AjustesEstacion.h"
#include "datos/ModuloDatos.h"
#include "pantallas/Mensajes.h"
#include "printing/Impresiones.h"
#include "printing/PlantillasLocales.h"
#include "tests/fixtures/PruebaPantallas.h"
#include "tests/printing/PruebaImpresion.h"

namespace cajaplex {
namespace {

using prueba::control;
using prueba::entero;
using prueba::esperaHasta;
using prueba::esperaLeyenda;

class Impresiones : public prueba::ConCopiaLocal {
protected:
    void SetUp() override {
        ConCopiaLocal::SetUp();
        actualizaCopiaLocalPlantillas(ModuloDeDatos, sesion_);
        folio_ = c.valor("Select FolioRem From Configura Where empresaID = 1").get<long long>();
        c.exige("Insert Into Remision (empresaID, folio, usuarioID, vendedor, cliente, moneda, "
                "subtotalRemision, ivaRemision, totalRemision, pagada) "
                "Values (1, :folio, 2, 2, 1, 1, 100, 16, 116, 1)",
                {{"folio", entero(folio_)}});
    }

    long long auditorias(const char* tipo) {
        return c.cuenta(std::string("AuditoriasSistema Where empresaID = 1 and moduloSistema = "
                                    "'Impresión -> Plantillas' and tipoAuditoria = '") +
                        tipo + "'");
    }

    long long folio_ = 0;
};

TEST_F(Impresiones, GuardaLaPlantillaConSuBitacoraYLaVistaPreviaSigueAlTexto) {
    TImpresionesF pantalla(sesion_, nullptr, carpeta_.path());
    esperaLeyenda(pantalla);
    auto* lista = control<QListWidget>(pantalla, "ListaPlantillas");
    auto* texto = control<QPlainTextEdit>(pantalla, "TextoPlantilla");
    auto* vista = control<QTextBrowser>(pantalla, "VistaPrevia");
    ASSERT_EQ(lista->count(), 1);
    EXPECT_EQ(lista->item(0)->text(), QStringLiteral("Ticket de Venta (predeterminada)"));
    // La vista previa es la última venta guardada, no un ejemplo.
    EXPECT_TRUE(vista->toPlainText().contains(QStringLiteral("Folio: %1").arg(folio_)));
    EXPECT_TRUE(vista->toPlainText().contains(QStringLiteral("$116.00")));

    texto->moveCursor(QTextCursor::End);
    QTest::keyClicks(texto, QStringLiteral("<p>PROMOCION {{total}}</p>"));
    EXPECT_TRUE(esperaHasta(
        [&] { return vista->toPlainText().contains(QStringLiteral("PROMOCION $116.00")); }));
    // Para mirar la pantalla: CAJAPLEX_CAPTURA_IMPRESIONES=/ruta/impresiones.png
    if (const QString ruta = qEnvironmentVariable("CAJAPLEX_CAPTURA_IMPRESIONES");
        !ruta.isEmpty()) {
        pantalla.resize(1366, 768);
        pantalla.show();
        QTest::qWait(50);
        pantalla.grab().save(ruta);
    }
    control<QCheckBox>(pantalla, "ImprimeQR")->setChecked(true);
    control<QLineEdit>(pantalla, "Pie")->setText(QStringLiteral("Vuelva el martes"));

    Mensajes::respondeSiguiente(Respuesta::Aceptar);
    QTest::mouseClick(control<QPushButton>(pantalla, "BotonGuardar"), Qt::LeftButton);
    esperaLeyenda(pantalla);
    EXPECT_EQ(Mensajes::ultimos(), QStringList{QStringLiteral("¿Desea Almacenar los Cambios?")});
    EXPECT_EQ(c.cuenta("Reportes Where empresaID = 1 and Nombre = 'Ticket de Venta' and "
                       "cast(plantilla as text) like '%PROMOCION {{total}}%'"),
              1);
    EXPECT_EQ(auditorias("Actualización"), 1);
    EXPECT_EQ(c.cuenta("ConfiguraImpresiones Where empresaID = 1 and imprimeQRRemision = 1 and "
                       "pieRemision = 'Vuelva el martes'"),
              1);
    // La copia local ya tiene lo guardado.
    EXPECT_TRUE(plantillaLocal(ModuloDeDatos.ConexionLocalBD, 1, QStringLiteral("Remisión"))
                    .texto.contains(QStringLiteral("PROMOCION {{total}}")));
    EXPECT_EQ(
        AjustesEstacion(carpeta_.path()).valor(QStringLiteral("NumeroCopiasRemision")).toInt(), 1);
}

TEST_F(Impresiones, UnaPlantillaMalFormadaNoSeGuarda) {
    TImpresionesF pantalla(sesion_, nullptr, carpeta_.path());
    esperaLeyenda(pantalla);
    auto* texto = control<QPlainTextEdit>(pantalla, "TextoPlantilla");
    texto->setPlainText(QStringLiteral("<p>{{#renglones}}{{cantidad}}</p>"));
    EXPECT_TRUE(esperaHasta([&] {
        return control<QTextBrowser>(pantalla, "VistaPrevia")
            ->toPlainText()
            .contains(QStringLiteral("renglones"));
    }));
    QTest::mouseClick(control<QPushButton>(pantalla, "BotonGuardar"), Qt::LeftButton);
    const QStringList mostrados = Mensajes::ultimos();
    ASSERT_EQ(mostrados.size(), 1);
    EXPECT_TRUE(mostrados.first().startsWith(QStringLiteral("La plantilla no es válida")));
    EXPECT_EQ(auditorias("Actualización"), 0);
    EXPECT_EQ(c.cuenta("Reportes Where empresaID = 1 and cast(plantilla as text) like "
                       "'%{{#renglones}}{{cantidad}}</p>'"),
              0);
}

TEST_F(Impresiones, UnaNuevaPlantillaSeVuelveLaPredeterminadaDeSuCarpeta) {
    TImpresionesF pantalla(sesion_, nullptr, carpeta_.path());
    esperaLeyenda(pantalla);
    Mensajes::respondeTexto(QStringLiteral("Ticket Chico"));
    QTest::mouseClick(control<QPushButton>(pantalla, "BotonNueva"), Qt::LeftButton);
    esperaLeyenda(pantalla);
    auto* lista = control<QListWidget>(pantalla, "ListaPlantillas");
    ASSERT_EQ(lista->count(), 2);
    EXPECT_EQ(lista->currentItem()->text(), QStringLiteral("Ticket Chico"));
    EXPECT_EQ(auditorias("Inserción"), 2); // las predeterminadas y la nueva

    QTest::mouseClick(control<QPushButton>(pantalla, "BotonPredeterminada"), Qt::LeftButton);
    esperaLeyenda(pantalla);
    EXPECT_EQ(c.cuenta("Reportes A, ReportesCarpetas B Where A.empresaID = 1 and "
                       "B.carpetaID = A.carpetaID and B.nombre = 'Remisión' and "
                       "A.predeterminada = 1 and A.Nombre = 'Ticket Chico'"),
              1);
    EXPECT_EQ(c.cuenta("Reportes A, ReportesCarpetas B Where A.empresaID = 1 and "
                       "B.carpetaID = A.carpetaID and B.nombre = 'Remisión' and "
                       "A.predeterminada = 1"),
              1);
    EXPECT_EQ(auditorias("Actualización"), 1);
    // La estación imprime ya con la nueva predeterminada.
    EXPECT_EQ(plantillaLocal(ModuloDeDatos.ConexionLocalBD, 1, QStringLiteral("Remisión")).nombre,
              QStringLiteral("Ticket Chico"));
}

} // namespace
} // namespace cajaplex
