// Ventas y visor contra el servicio real de demostración: los totales por forma de pago contra lo
// guardado, las canceladas, los filtros, cancelar desde el visor (con y sin derecho) y lo que
// dicen los PDF del ticket reimpreso y del corte de caja.
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>

#include <QBrush>
#include <QComboBox>
#include <QDateEdit>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPdfDocument>
#include <QPdfSelection>
#include <QPushButton>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>

#include "datos/ModuloDatos.h"
#include "pantallas/Mensajes.h"
#include "printing/ImpresionDocumentos.h"
#include "printing/PlantillasLocales.h"
#include "sales/CancelacionVenta.h"
#include "sales/CorteCaja.h"
#include "sales/CorteCajaF.h"
#include "sales/DocumentoVenta.h"
#include "sales/RegistroVenta.h"
#include "sales/Ventas.h"
#include "sales/Visor.h"
#include "tests/fixtures/PruebaPantallas.h"

namespace cajaplex {
namespace {

using namespace prueba;

// De la demostración (empresa 1).
constexpr long long Efectivo = 1;
constexpr long long Tarjeta = 2;
constexpr long long Debito = 5;
constexpr long long Administrador = 1;
constexpr long long Cajero = 2; // Laura Méndez Ríos, sin cancelarRemision
constexpr long long Maria = 2;
constexpr long long Fonda = 3;
constexpr long long Bajio = 4;

// Columnas de la lista.
constexpr int ColFolio = 0;
constexpr int ColEstado = 7;

class VentasTest : public ConPantallas {
protected:
    void TearDown() override {
        ModuloDeDatos.ConexionLocalBD.cierra();
        ConPantallas::TearDown();
    }

    // Encabezado como lo deja el registro; `dias` mueve la fecha desde ahora.
    void venta(long long folio, long long usuario, long long cliente, double total, int dias = 0,
               int plazo = 0, bool cancelada = false) {
        c.exige("Insert Into Remision (empresaID, folio, fecha, usuarioID, vendedor, cliente, "
                "moneda, tipoCambio, subtotalRemision, ivaRemision, totalRemision, pagada, "
                "saldoPendiente, plazoPago, montoPagado, cancelada, entregada) Values (1, :folio, "
                "datetime('now', 'localtime', :dias || ' days'), :usuario, :usuario, :cliente, 1, "
                "1, :total / 1.16, :total - :total / 1.16, :total, :pagada, :saldo, :plazo, "
                ":pagado, :cancelada, 1)",
                {{"folio", entero(folio)},
                 {"dias", entero(dias)},
                 {"usuario", entero(usuario)},
                 {"cliente", entero(cliente)},
                 {"total", real(total)},
                 {"pagada", entero(plazo > 0 ? 0 : 1)},
                 {"saldo", real(plazo > 0 ? total : 0)},
                 {"plazo", entero(plazo)},
                 {"pagado", real(plazo > 0 ? 0 : total)},
                 {"cancelada", booleano(cancelada)}});
    }

    void pago(long long folio, long long forma, double entregado, double aplicado) {
        c.exige("Insert Into RemisionPagos (remision, empresaID, feMetodoID, importe, moneda, "
                "utilizados) Values (:folio, 1, :forma, :importe, 1, :aplicado)",
                {{"folio", entero(folio)},
                 {"forma", entero(forma)},
                 {"importe", real(entregado)},
                 {"aplicado", real(aplicado)}});
    }

    void anticipo(long long folio, long long forma, double importe, bool cancelado = false) {
        c.exige("Insert Into PagosRemision (empresaID, folio, importe, idRemision, folioRemision, "
                "cliente, feMetodoID, usuarioID, moneda, cancelada) Select 1, 1, :importe, ID, "
                "folio, cliente, :forma, usuarioID, 1, :cancelado From Remision Where empresaID = "
                "1 and folio = :folio",
                {{"importe", real(importe)},
                 {"forma", entero(forma)},
                 {"cancelado", booleano(cancelado)},
                 {"folio", entero(folio)}});
    }

    // La pantalla guarda la sesión por referencia: vive en la prueba.
    std::unique_ptr<TVentasF> abre(const Sesion& s) {
        auto f = std::make_unique<TVentasF>(s, carpeta_.path());
        f->resize(1280, 800);
        f->show();
        esperaLeyenda(*f);
        return f;
    }

    static QStringList columna(const QWidget& f, const char* tabla, int col,
                               int rol = Qt::DisplayRole) {
        const QAbstractItemModel* m = control<QTableView>(f, tabla)->model();
        QStringList r;
        for (int i = 0; i < m->rowCount(); ++i)
            r << m->index(i, col).data(rol).toString();
        return r;
    }

    // Forma -> importe completo del pie de la lista.
    static std::map<QString, double> pie(const QWidget& f) {
        const QAbstractItemModel* m = control<QTableView>(f, "TotalesFormas")->model();
        std::map<QString, double> r;
        for (int i = 0; i < m->rowCount(); ++i)
            r[m->index(i, 0).data().toString()] = m->index(i, 2).data(Qt::UserRole).toDouble();
        return r;
    }

    // Elige el renglón del folio y lo abre con Enter.
    static TVisorF* abreVenta(TVentasF& f, long long folio) {
        auto* tabla = control<QTableView>(f, "TablaVentas");
        const int fila =
            static_cast<int>(columna(f, "TablaVentas", ColFolio).indexOf(QString::number(folio)));
        EXPECT_GE(fila, 0) << folio;
        tabla->setFocus();
        tabla->setCurrentIndex(tabla->model()->index(fila, 0));
        QTest::keyClick(tabla, Qt::Key_Return);
        esperaLeyenda(f);
        EXPECT_EQ(control<QStackedWidget>(f, "Paginas")->currentWidget(), f.visor());
        return f.visor();
    }

    // La base local con las plantillas predeterminadas, como la deja el inicio de sesión.
    void copiaLocal(const Sesion& s) {
        ModuloDeDatos.ConexionLocalBD.cierra();
        ModuloDeDatos.ArchivoLocalBD = carpeta_.filePath(QStringLiteral("Cajaplex.db"));
        ModuloDeDatos.ContrasenaLocalBD = QStringLiteral("clave-local");
        actualizaCopiaLocalPlantillas(ModuloDeDatos, s);
    }

    QString textoPdf() {
        QPdfDocument pdf;
        EXPECT_EQ(pdf.load(carpeta_.filePath(QString::fromUtf8(ArchivoPdfLocal))),
                  QPdfDocument::Error::None);
        QString texto;
        for (int i = 0; i < pdf.pageCount(); ++i)
            texto += pdf.getAllText(i).text().simplified() + QLatin1Char(' ');
        return texto;
    }

    QTemporaryDir carpeta_;
};

TEST_F(VentasTest, ElDiaSumaLoRecibidoPorFormaMarcaCanceladasYFiltra) {
    venta(9001, Cajero, Maria, 100);
    pago(9001, Efectivo, 150, 100); // el cambio no cuenta
    venta(9002, Administrador, Fonda, 100);
    pago(9002, Tarjeta, 60, 60);
    pago(9002, Efectivo, 40, 40);
    venta(9003, Cajero, Bajio, 80, 0, 30);
    anticipo(9003, Efectivo, 30);
    anticipo(9003, Debito, 20, true); // cancelado: no cuenta
    venta(9004, Cajero, Maria, 50, 0, 0, true);
    pago(9004, Efectivo, 50, 50);
    venta(9005, Cajero, Maria, 70, -1); // ayer
    pago(9005, Efectivo, 70, 70);

    const Sesion admin = sesion(QStringLiteral("admin"), 1);
    auto f = abre(admin);
    EXPECT_EQ(columna(*f, "TablaVentas", ColFolio), (QStringList{"9001", "9002", "9003", "9004"}));
    EXPECT_EQ(columna(*f, "TablaVentas", ColEstado), (QStringList{"", "", "", "CANCELADA"}));
    const QAbstractItemModel* m = control<QTableView>(*f, "TablaVentas")->model();
    EXPECT_NE(m->index(3, 2).data(Qt::ForegroundRole), QVariant());
    EXPECT_EQ(m->index(0, 2).data(Qt::ForegroundRole), QVariant());

    // Lo guardado del día sin canceladas, sumado por la base: lo aplicado de contado más los
    // anticipos vigentes.
    std::map<QString, double> guardado;
    for (const char* sql :
         {"Select F.descripcion, total(P.utilizados) From RemisionPagos P, Remision R, "
          "FEMetodosPago F Where R.empresaID = 1 and P.empresaID = 1 and P.remision = R.folio "
          "and F.id = P.feMetodoID and R.cancelada = 0 and date(R.fecha) = date('now', "
          "'localtime') Group By F.descripcion",
          "Select F.descripcion, total(A.importe) From PagosRemision A, Remision R, FEMetodosPago "
          "F Where R.empresaID = 1 and A.empresaID = 1 and A.folioRemision = R.folio and F.id = "
          "A.feMetodoID and A.cancelada = 0 and R.cancelada = 0 and date(R.fecha) = "
          "date('now', 'localtime') Group By F.descripcion"})
        // La respuesta vive mientras se recorren sus filas.
        for (const auto respuesta = c.exige(sql); const Json& fila : respuesta.filas())
            guardado[QString::fromStdString(fila.at(0).get<std::string>())] +=
                fila.at(1).get<double>();
    EXPECT_EQ(pie(*f), guardado);
    EXPECT_EQ(pie(*f), (std::map<QString, double>{{"EFECTIVO", 170}, {"TARJETA DE CRÉDITO", 60}}));
    EXPECT_EQ(control<QLabel>(*f, "ResumenVentas")->text(),
              "3 ventas · 1 canceladas · Total $280.00");
    // Para mirar la pantalla: CAJAPLEX_CAPTURA_VENTAS=/ruta/ventas.png
    if (const QString ruta = qEnvironmentVariable("CAJAPLEX_CAPTURA_VENTAS"); !ruta.isEmpty())
        f->grab().save(ruta);

    control<QLineEdit>(*f, "FolioVenta")->setText(QStringLiteral("9002"));
    EXPECT_EQ(columna(*f, "TablaVentas", ColFolio), QStringList{"9002"});
    EXPECT_EQ(pie(*f), (std::map<QString, double>{{"EFECTIVO", 40}, {"TARJETA DE CRÉDITO", 60}}));
    control<QLineEdit>(*f, "FolioVenta")->clear();

    control<QLineEdit>(*f, "ClienteVenta")->setText(QStringLiteral("maría"));
    EXPECT_EQ(columna(*f, "TablaVentas", ColFolio), (QStringList{"9001", "9004"}));
    EXPECT_EQ(pie(*f), (std::map<QString, double>{{"EFECTIVO", 100}}));
    control<QLineEdit>(*f, "ClienteVenta")->clear();

    auto* cajero = control<QComboBox>(*f, "CajeroVenta");
    cajero->setCurrentIndex(cajero->findText(QStringLiteral("Laura Méndez Ríos")));
    EXPECT_EQ(columna(*f, "TablaVentas", ColFolio), (QStringList{"9001", "9003", "9004"}));
    EXPECT_EQ(pie(*f), (std::map<QString, double>{{"EFECTIVO", 130}}));

    // Desde ayer entra la venta de ayer; el cajero elegido se conserva.
    control<QDateEdit>(*f, "DesdeVentas")->setDate(QDate::currentDate().addDays(-1));
    QTest::mouseClick(control<QPushButton>(*f, "BotonBuscar"), Qt::LeftButton);
    esperaLeyenda(*f);
    EXPECT_EQ(cajero->currentText(), "Laura Méndez Ríos");
    EXPECT_EQ(columna(*f, "TablaVentas", ColFolio), (QStringList{"9005", "9001", "9003", "9004"}));
    EXPECT_TRUE(Mensajes::ultimos().isEmpty());
}

TEST_F(VentasTest, CancelarDesdeElVisorRegresaExistenciaYPuntosYSinDerechoSeRechaza) {
    c.exige("Insert Into Productos (empresaID, clave, producto, codigoBarra, existencia, "
            "manejaInventarios, precio, precio2, precio3, precio4, precio5, pCompra, "
            "porcentajeImpuesto, ieps, moneda, bonificaPuntos, porcentajeBonificacion, activo) "
            "Values (1, 'VT1', 'Vela aromática', '7509990001', 100, 1, 116, 116, 116, 116, 116, "
            "58, 16, 0, 1, 1, 10, 1)");
    c.exige("Update Clientes Set puntos = 50 Where empresaID = 1 and id = 2");
    const Sesion admin = sesion(QStringLiteral("admin"), 1);
    DocumentoVenta documento(ModuloDeDatos.ConexionBD, admin);
    documento.abre();
    documento.asignaCliente(Maria);
    ASSERT_FALSE(documento.agrega(QStringLiteral("VT1")));
    ASSERT_FALSE(documento.cambiaCantidad(0, 2));
    CierreVenta cierre;
    cierre.formaPagoDefault = Efectivo;
    cierre.vendedor = Administrador;
    const double total = documento.totales().total;
    cierre.pagos = {{Efectivo, QStringLiteral("EFECTIVO"), total, static_cast<float>(total)}};
    const ResultadoRegistro r =
        RegistroVenta(ModuloDeDatos.ConexionBD, admin).registra(documento, cierre);
    ASSERT_TRUE(r.registrada) << r.mensaje.toStdString();
    const std::string donde =
        " From Remision Where empresaID = 1 and folio = " + std::to_string(r.folio);
    const double ganados = c.valor("Select puntosRemision" + donde).get<double>();
    ASSERT_GT(ganados, 0);
    auto existencia = [this] {
        return c.valor("Select existencia From Productos Where empresaID = 1 and clave = 'VT1'")
            .get<double>();
    };
    auto puntos = [this] {
        return c.valor("Select puntos From Clientes Where empresaID = 1 and id = 2").get<double>();
    };
    ASSERT_EQ(existencia(), 98.0);
    ASSERT_NEAR(puntos(), 50 + ganados, 1e-9);

    // El cajero ve la venta completa pero no puede cancelarla.
    const Sesion cajero = sesion(QStringLiteral("cajero"), 1);
    {
        auto f = abre(cajero);
        TVisorF* visor = abreVenta(*f, r.folio);
        EXPECT_EQ(control<QLabel>(*visor, "TituloVisor")->text(),
                  QStringLiteral("Remisión %1").arg(r.folio));
        EXPECT_EQ(control<QLabel>(*visor, "ClienteVisor")->text(),
                  "María Guadalupe Hernández López");
        EXPECT_EQ(columna(*visor, "RenglonesVisor", 0), QStringList{"VT1"});
        EXPECT_EQ(columna(*visor, "RenglonesVisor", 1), QStringList{"Vela aromática"});
        EXPECT_EQ(columna(*visor, "PagosVisor", 0), QStringList{"EFECTIVO"});
        EXPECT_EQ(columna(*visor, "BitacoraVisor", 2), QStringList{"Inserción"});
        // Para mirar el visor: CAJAPLEX_CAPTURA_VISOR=/ruta/visor.png
        if (const QString ruta = qEnvironmentVariable("CAJAPLEX_CAPTURA_VISOR"); !ruta.isEmpty())
            f->grab().save(ruta);
        Mensajes::ultimos();
        QTest::mouseClick(control<QPushButton>(*visor, "BotonCancelarVenta"), Qt::LeftButton);
        esperaLeyenda(*f);
        EXPECT_EQ(Mensajes::ultimos(), QStringList{MensajeSinPermisoCancelar});
        EXPECT_EQ(c.valor("Select cancelada" + donde), Json(0));
    }

    auto f = abre(admin);
    TVisorF* visor = abreVenta(*f, r.folio);
    // Quien se arrepiente en la pregunta no cancela nada.
    Mensajes::respondeSiguiente(cajaplex::Respuesta::No);
    QTest::mouseClick(control<QPushButton>(*visor, "BotonCancelarVenta"), Qt::LeftButton);
    esperaLeyenda(*f);
    EXPECT_EQ(c.valor("Select cancelada" + donde), Json(0));

    Mensajes::ultimos();
    Mensajes::respondeSiguiente(cajaplex::Respuesta::Si);
    Mensajes::respondeTexto(QStringLiteral("Error de captura"));
    QTest::mouseClick(control<QPushButton>(*visor, "BotonCancelarVenta"), Qt::LeftButton);
    esperaLeyenda(*f);
    const QStringList vistos = Mensajes::ultimos();
    ASSERT_FALSE(vistos.isEmpty());
    EXPECT_EQ(vistos.last(), QStringLiteral("Remisión Cancelada: %1").arg(r.folio));
    EXPECT_EQ(existencia(), 100.0);
    EXPECT_NEAR(puntos(), 50.0, 1e-9);
    EXPECT_EQ(c.valor("Select cancelada || '|' || motivoCancelacion" + donde),
              Json("1|Error de captura"));
    EXPECT_EQ(control<QLabel>(*visor, "EstadoVisor")->text(), "CANCELADA");
    EXPECT_EQ(columna(*visor, "BitacoraVisor", 2), (QStringList{"Inserción", "Cancelación"}));
    EXPECT_FALSE(control<QPushButton>(*visor, "BotonCancelarVenta")->isEnabled());

    // De vuelta en la lista, la venta ya sale cancelada y fuera de los totales.
    QTest::mouseClick(control<QPushButton>(*visor, "BotonRegresar"), Qt::LeftButton);
    EXPECT_EQ(columna(*f, "TablaVentas", ColEstado), QStringList{"CANCELADA"});
    EXPECT_TRUE(pie(*f).empty());
}

TEST_F(VentasTest, ElTicketReimpresoEnPdfLlevaElFolio) {
    venta(9101, Cajero, Fonda, 232);
    pago(9101, Efectivo, 300, 232);
    const Sesion s = sesion(QStringLiteral("admin"), 1);
    copiaLocal(s);
    auto f = abre(s);
    TVisorF* visor = abreVenta(*f, 9101);
    QTest::mouseClick(control<QPushButton>(*visor, "BotonPdf"), Qt::LeftButton);
    ASSERT_NE(visor->ultimaImpresion(), nullptr);
    QSignalSpy fin(visor->ultimaImpresion(), &TrabajoImpresion::terminado);
    ASSERT_TRUE(fin.wait(15000));
    EXPECT_TRUE(fin.at(0).at(0).toBool());
    const QString texto = textoPdf();
    EXPECT_TRUE(texto.contains(QStringLiteral("Folio: 9101"))) << texto.toStdString();
    EXPECT_TRUE(texto.contains(QStringLiteral("$232.00"))) << texto.toStdString();
}

TEST_F(VentasTest, ElCorteRegistradoSeImprimeEnPdfConSuEfectivoEsperado) {
    venta(9201, Cajero, Maria, 250);
    pago(9201, Efectivo, 300, 250);
    c.exige("Insert Into FlujoEfectivo (tipoFlujo, usuarioID, empresaID, importe) Values "
            "(0, 2, 1, 100)");
    Sesion s = sesion(QStringLiteral("cajero"), 1);
    s.derechos.ventas.insert(QString::fromLatin1(DerechoCorteCaja), true);
    s.DispositivoID = QStringLiteral("CAJA-1");
    copiaLocal(s);

    TCorteCajaF f(s);
    f.ponCarpetaEstacion(carpeta_.path());
    f.resize(1200, 800);
    f.show();
    esperaLeyenda(f);
    EXPECT_FALSE(control<QPushButton>(f, "BotonPdf")->isEnabled());
    QTest::mouseClick(control<QPushButton>(f, "BotonCalcular"), Qt::LeftButton);
    esperaLeyenda(f);
    control<QLineEdit>(f, "EfectivoContado")->setText(QStringLiteral("345.5"));
    Mensajes::respondeSiguiente(cajaplex::Respuesta::Aceptar);
    QTest::mouseClick(control<QPushButton>(f, "BotonAlmacenar"), Qt::LeftButton);
    esperaLeyenda(f);
    const long long corte = c.valor("Select max(ID) From CortesCaja").get<long long>();
    ASSERT_TRUE(control<QPushButton>(f, "BotonPdf")->isEnabled());

    const QString archivo = carpeta_.filePath(QString::fromUtf8(ArchivoPdfLocal));
    QTest::mouseClick(control<QPushButton>(f, "BotonPdf"), Qt::LeftButton);
    ASSERT_TRUE(esperaHasta([&] { return QFile::exists(archivo); }, 15000));
    const QString texto = textoPdf();
    for (const QString& esperado :
         {QStringLiteral("CORTE DE CAJA"), QStringLiteral("Folio: %1").arg(corte),
          QStringLiteral("Laura Méndez Ríos"), QStringLiteral("Efectivo esperado: $350.00"),
          QStringLiteral("EFECTIVO $250.00")})
        EXPECT_TRUE(texto.contains(esperado)) << esperado.toStdString() << "\n"
                                              << texto.toStdString();
}

} // namespace
} // namespace cajaplex
