// Corte de caja contra el servicio real de demostración. Las ventas se escriben aquí con SQL, con
// las columnas que deja una venta registrada (encabezado, pagos de contado, anticipos), para que
// las cifras esperadas salgan a mano.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include <QComboBox>
#include <QDateTimeEdit>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>

#include "datos/ConexionBD.h"
#include "datos/ModuloDatos.h"
#include "pantallas/Mensajes.h"
#include "pantallas/Sonidos.h"
#include "sales/CorteCaja.h"
#include "sales/CorteCajaF.h"
#include "tests/fixtures/PruebaPantallas.h"

namespace cajaplex {
namespace {

using namespace prueba;

// Formas de pago de la demostración (empresa 1).
constexpr long long Efectivo = 1;
constexpr long long Tarjeta = 2;
constexpr long long Debito = 5;
constexpr long long Cajero = 2;
constexpr long long Administrador = 1;

QDateTime fecha(const std::string& texto) {
    return QDateTime::fromString(QString::fromStdString(texto),
                                 QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}
const QDateTime kDesde = fecha("2026-01-10 08:00:00");
const QDateTime kHasta = fecha("2026-01-10 20:00:00");

struct Venta {
    long long folio;
    long long usuario;
    std::string fecha;
    double total;
    int plazo = 0;
    bool cancelada = false;
};

class CorteCajaTest : public ConPantallas {
protected:
    // Como la deja el registro de una venta: de contado pagada, a crédito con saldo.
    long long venta(const Venta& v) {
        c.exige("Insert Into Remision (empresaID, folio, fecha, usuarioID, vendedor, cliente, "
                "moneda, tipoCambio, totalEnvio, subtotalRemision, ivaRemision, iepsRemision, "
                "descuento, totalRemision, descontoExistencias, fechaCaptura, costoRemision, "
                "puntosRemision, pagoMixto, calificacion, entregaDomicilio, cancelada, enviada, "
                "entregada, totalPropina, pagada, saldoPendiente, plazoPago, montoPagado, "
                "fechaPago) Values (1, :folio, :fecha, :usuario, :usuario, 1, 1, 1, 0, "
                ":total / 1.16, :total - :total / 1.16, 0, 0, :total, 1, :fecha, :total / 2, 0, "
                "0, 0, 0, :cancelada, 0, 1, 0, :pagada, :saldo, :plazo, :pagado, "
                "case when :plazo > 0 then null else :fecha end)",
                {{"folio", entero(v.folio)},
                 {"fecha", texto(v.fecha)},
                 {"usuario", entero(v.usuario)},
                 {"total", real(v.total)},
                 {"cancelada", booleano(v.cancelada)},
                 {"pagada", entero(v.plazo > 0 ? 0 : 1)},
                 {"saldo", real(v.plazo > 0 ? v.total : 0)},
                 {"plazo", entero(v.plazo)},
                 {"pagado", real(v.plazo > 0 ? 0 : v.total)}});
        return c
            .valor("Select ID From Remision Where empresaID = 1 and folio = :f",
                   {{"f", entero(v.folio)}})
            .get<long long>();
    }

    void pago(long long folio, long long forma, double entregado, double aplicado) {
        c.exige("Insert Into RemisionPagos (remision, empresaID, feMetodoID, importe, moneda, "
                "utilizados) Values (:folio, 1, :forma, :importe, 1, :utilizados)",
                {{"folio", entero(folio)},
                 {"forma", entero(forma)},
                 {"importe", real(entregado)},
                 {"utilizados", real(aplicado)}});
    }

    void anticipo(long long id, long long folio, long long forma, double importe, long long usuario,
                  const std::string& fecha) {
        c.exige("Insert Into PagosRemision (empresaID, folio, Fecha, importe, idRemision, "
                "folioRemision, observaciones, cliente, feMetodoID, usuarioID, moneda, tipoCambio, "
                "descripcion, importeAplicado, factorAplicado) Values (1, 1, :fecha, :importe, "
                ":id, :folio, 'Anticipo a Remisión: ' || :folio, 1, :forma, :usuario, 1, 1, "
                "'Pago a remisión ' || :folio, :importe, 1)",
                {{"fecha", texto(fecha)},
                 {"importe", real(importe)},
                 {"id", entero(id)},
                 {"folio", entero(folio)},
                 {"forma", entero(forma)},
                 {"usuario", entero(usuario)}});
        c.exige("Update Remision Set saldoPendiente = saldoPendiente - :importe Where empresaID = "
                "1 and folio = :folio",
                {{"importe", real(importe)}, {"folio", entero(folio)}});
    }

    void flujo(int tipo, double importe, long long usuario, const std::string& fecha) {
        c.exige("Insert Into FlujoEfectivo (tipoFlujo, usuarioID, empresaID, importe, "
                "comentarios, fecha) Values (:tipo, :usuario, 1, :importe, 'Prueba', :fecha)",
                {{"tipo", entero(tipo)},
                 {"usuario", entero(usuario)},
                 {"importe", real(importe)},
                 {"fecha", texto(fecha)}});
    }

    // El día del 10 de enero: contado en efectivo (con cambio), tarjeta y mixto, una venta a
    // crédito con anticipo en efectivo, dos canceladas, fondo y retiro de caja chica; además una
    // venta de otro cajero y una del día anterior.
    void dia() {
        venta({1, Cajero, "2026-01-10 09:00:00", 150});
        pago(1, Efectivo, 200, 150);
        venta({2, Cajero, "2026-01-10 10:00:00", 320.50});
        pago(2, Tarjeta, 320.50, 320.50);
        venta({3, Cajero, "2026-01-10 11:00:00", 100});
        pago(3, Efectivo, 60, 60);
        pago(3, Debito, 40, 40);
        const long long credito = venta({4, Cajero, "2026-01-10 12:00:00", 500, 30});
        anticipo(credito, 4, Efectivo, 200, Cajero, "2026-01-10 12:00:00");
        venta({5, Cajero, "2026-01-10 13:00:00", 80, 0, true});
        pago(5, Efectivo, 80, 80);
        // Cancelada a crédito: su anticipo se devolvió.
        const long long devuelta = venta({8, Cajero, "2026-01-10 13:30:00", 300, 15, true});
        anticipo(devuelta, 8, Efectivo, 50, Cajero, "2026-01-10 13:30:00");
        venta({6, Administrador, "2026-01-10 14:00:00", 1000});
        pago(6, Efectivo, 1000, 1000);
        venta({7, Cajero, "2026-01-09 18:00:00", 999});
        pago(7, Efectivo, 999, 999);
        flujo(0, 500, Cajero, "2026-01-10 08:00:00");
        flujo(1, 120.25, Cajero, "2026-01-10 16:00:00");
        flujo(0, 300, Administrador, "2026-01-10 08:30:00");
        flujo(0, 700, Cajero, "2026-01-10 20:00:00"); // ya es del periodo siguiente
    }

    Sesion sesionCajero(bool corteCaja) {
        Sesion s = sesion(QStringLiteral("cajero"), 1);
        s.derechos.ventas.insert(QString::fromLatin1(DerechoCorteCaja), corteCaja);
        s.DispositivoID = QStringLiteral("CAJA-1");
        return s;
    }

    std::string ventas() {
        return c
            .valor("Select group_concat(folio || cancelada || pagada || saldoPendiente || "
                   "totalRemision, ';') From Remision")
            .get<std::string>();
    }
};

TEST_F(CorteCajaTest, ElDiaDaElEfectivoEsperadoCalculadoAMano) {
    dia();
    const Sesion s = sesionCajero(true);
    CorteCaja corte(ModuloDeDatos.ConexionBD, s);
    const ResumenCorte r = corte.calcula(Cajero, QStringLiteral("CAJA-1"), kDesde, kHasta);

    ASSERT_EQ(r.ventasPorForma.size(), 3u);
    EXPECT_EQ(r.ventasPorForma[0].descripcion, "EFECTIVO");
    EXPECT_TRUE(r.ventasPorForma[0].efectivo);
    EXPECT_EQ(r.ventasPorForma[0].operaciones, 2);
    EXPECT_DOUBLE_EQ(r.ventasPorForma[0].importe, 210); // 150 aplicados de 200 + 60
    EXPECT_EQ(r.ventasPorForma[1].descripcion, "TARJETA DE CRÉDITO");
    EXPECT_FALSE(r.ventasPorForma[1].efectivo);
    EXPECT_DOUBLE_EQ(r.ventasPorForma[1].importe, 320.50);
    EXPECT_EQ(r.ventasPorForma[2].descripcion, "TARJETA DE DÉBITO");
    EXPECT_DOUBLE_EQ(r.ventasPorForma[2].importe, 40);
    EXPECT_EQ(r.ventasContado, 3);
    EXPECT_DOUBLE_EQ(r.totalContado, 570.50);
    EXPECT_EQ(r.ventasCredito, 1);
    EXPECT_DOUBLE_EQ(r.totalCredito, 500);
    ASSERT_EQ(r.anticiposPorForma.size(), 1u);
    EXPECT_DOUBLE_EQ(r.totalAnticipos, 200);
    EXPECT_EQ(r.ventasCanceladas, 2);
    EXPECT_DOUBLE_EQ(r.totalCanceladas, 380);
    EXPECT_EQ(r.depositos, 1);
    EXPECT_DOUBLE_EQ(r.totalDepositos, 500);
    EXPECT_EQ(r.retiros, 1);
    EXPECT_DOUBLE_EQ(r.totalRetiros, 120.25);
    // 210 de ventas + 200 de anticipo + 500 de fondo - 120.25 de retiro.
    EXPECT_DOUBLE_EQ(r.efectivoEsperado, 789.75);

    // Todos los cajeros: más la venta de 1000 y el fondo de 300 del administrador.
    const ResumenCorte todos =
        corte.calcula(TodosLosCajeros, QStringLiteral("CAJA-1"), kDesde, kHasta);
    EXPECT_EQ(todos.ventasContado, 4);
    EXPECT_DOUBLE_EQ(todos.efectivoEsperado, 2089.75);
}

TEST_F(CorteCajaTest, ElCorteQuedaConSuBitacoraSinTocarLasVentas) {
    dia();
    const std::string antes = ventas();
    const Sesion s = sesionCajero(true);
    CorteCaja corte(ModuloDeDatos.ConexionBD, s);
    const ResumenCorte r = corte.calcula(Cajero, QStringLiteral("CAJA-1"), kDesde, kHasta);
    const ResultadoCorte hecho = corte.registra(r, 780, QStringLiteral("Faltó cambio"));
    ASSERT_TRUE(hecho.registrado) << hecho.mensaje.toStdString();
    EXPECT_EQ(diferenciaCorte(r, 780), -9.75);

    EXPECT_EQ(c.cuenta("CortesCaja Where ID = " + std::to_string(hecho.id) +
                       " and empresaID = 1 and usuarioID = 2 and cajero = 2 and dispositivoID = "
                       "'CAJA-1' and fechaInicio = '2026-01-10 08:00:00' and fechaFin = "
                       "'2026-01-10 20:00:00' and ventasContado = 570.5 and ventasCredito = 500 "
                       "and anticipos = 200 and ventasCanceladas = 380 and depositos = 500 and "
                       "retiros = 120.25 and efectivoEsperado = 789.75 and efectivoContado = 780 "
                       "and diferencia = -9.75 and observaciones = 'Faltó cambio'"),
              1);
    EXPECT_EQ(
        c.cuenta("AuditoriasSistema Where empresaID = 1 and usuarioID = 2 and "
                 "tipoAuditoria = 'Inserción' and moduloSistema = 'Ventas -> Corte de Caja' "
                 "and datoNuevo like '%Esperado: 789.75, Contado: 780.00, Diferencia: -9.75'"),
        1);
    EXPECT_EQ(ventas(), antes);
    // El siguiente periodo de la estación empieza donde terminó este; otra estación no cambia.
    EXPECT_EQ(corte.inicioPeriodo(QStringLiteral("CAJA-1")), kHasta);
    EXPECT_EQ(corte.inicioPeriodo(QStringLiteral("CAJA-2")), QDate::currentDate().startOfDay());

    const QVariantMap valores = valoresCorte(s, hecho.id, QStringLiteral("Laura"), r, 780);
    EXPECT_EQ(valores.value(QStringLiteral("Corte")).toLongLong(), hecho.id);
    EXPECT_EQ(valores.value(QStringLiteral("Diferencia")).toDouble(), -9.75);
    EXPECT_EQ(valores.value(QStringLiteral("FormasPago")).toList().size(), 3);
}

TEST_F(CorteCajaTest, SinElDerechoNoCalculaNiRegistra) {
    dia();
    const Sesion sinDerecho = sesionCajero(false);
    CorteCaja corte(ModuloDeDatos.ConexionBD, sinDerecho);
    EXPECT_THROW(corte.calcula(Cajero, QStringLiteral("CAJA-1"), kDesde, kHasta), ErrorServicio);
    const ResultadoCorte r = corte.registra(ResumenCorte{}, 100, {});
    EXPECT_FALSE(r.registrado);
    EXPECT_EQ(r.mensaje, MensajeSinPermisoCorte);

    TCorteCajaF f(sinDerecho);
    f.show();
    esperaLeyenda(f);
    EXPECT_EQ(Mensajes::ultimos(), QStringList{MensajeSinPermisoCorte});
    EXPECT_FALSE(control<QPushButton>(f, "BotonAlmacenar")->isEnabled());
    EXPECT_EQ(c.cuenta("CortesCaja"), 0);
}

TEST_F(CorteCajaTest, LaPantallaCuadraDesdeElUltimoCorteDeLaEstacion) {
    // Ventas de hoy: la fecha la pone la base.
    c.exige("Insert Into Remision (empresaID, folio, usuarioID, totalRemision, pagada, "
            "montoPagado, entregada) Values (1, 1, 2, 250, 1, 250, 1)");
    pago(1, Efectivo, 300, 250);
    c.exige("Insert Into FlujoEfectivo (tipoFlujo, usuarioID, empresaID, importe) Values "
            "(0, 2, 1, 100)");
    const Sesion s = sesionCajero(true);
    auto f = std::make_unique<TCorteCajaF>(s);
    f->resize(1200, 800);
    f->show();
    esperaLeyenda(*f);
    EXPECT_EQ(control<QComboBox>(*f, "CajeroCorte")->currentText(), "Laura Méndez Ríos");
    EXPECT_EQ(control<QDateTimeEdit>(*f, "DesdeCorte")->dateTime(),
              QDate::currentDate().startOfDay());

    auto* contado = control<QLineEdit>(*f, "EfectivoContado");
    QTest::mouseClick(control<QPushButton>(*f, "BotonAlmacenar"), Qt::LeftButton);
    QTest::mouseClick(control<QPushButton>(*f, "BotonCalcular"), Qt::LeftButton);
    esperaLeyenda(*f);
    EXPECT_EQ(control<QLabel>(*f, "EfectivoEsperado")->text(), "$350.00");
    QTest::mouseClick(control<QPushButton>(*f, "BotonAlmacenar"), Qt::LeftButton);
    contado->setText(QStringLiteral("360"));
    EXPECT_EQ(control<QLabel>(*f, "DiferenciaCorte")->text(), "$10.00");
    EXPECT_EQ(Mensajes::ultimos(),
              (QStringList{"Debe Calcular el Corte de Caja antes de Registrarlo",
                           "Debe Introducir el Efectivo Contado en Caja"}));

    Mensajes::respondeSiguiente(cajaplex::Respuesta::Aceptar);
    QTest::mouseClick(control<QPushButton>(*f, "BotonAlmacenar"), Qt::LeftButton);
    esperaLeyenda(*f);
    const long long id = c.valor("Select max(ID) From CortesCaja").get<long long>();
    EXPECT_EQ(Mensajes::ultimos(),
              (QStringList{"¿Desea Registrar el Corte de Caja?",
                           "Corte de Caja Registrado: " + QString::number(id)}));
    EXPECT_EQ(c.cuenta("CortesCaja Where cajero = 2 and dispositivoID = 'CAJA-1' and "
                       "efectivoEsperado = 350 and efectivoContado = 360 and diferencia = 10"),
              1);
    EXPECT_EQ(f->valoresImpresion().value(QStringLiteral("EfectivoContado")).toDouble(), 360);

    // Otra vez la pantalla: empieza donde terminó el corte.
    const QDateTime fin = fecha(c.valor("Select fechaFin From CortesCaja").get<std::string>());
    EXPECT_EQ(control<QDateTimeEdit>(*f, "DesdeCorte")->dateTime(), fin);
    TCorteCajaF otra(s);
    otra.show();
    esperaLeyenda(otra);
    EXPECT_EQ(control<QDateTimeEdit>(otra, "DesdeCorte")->dateTime(), fin);
}

} // namespace
} // namespace cajaplex
