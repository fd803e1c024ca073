// Caja Chica contra el servicio real de demostración: las revisiones en orden con su sonido, el
// redondeo, el retiro guardado en positivo, la estación no autorizada y la bitácora que va en la
// misma transacción que el movimiento.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>

#include "datos/ModuloDatos.h"
#include "pantallas/Mensajes.h"
#include "pantallas/Sonidos.h"
#include "sales/CajaChica.h"
#include "tests/fixtures/PruebaPantallas.h"

namespace cajaplex {
namespace {

using namespace prueba;

const std::string kBitacora = "AuditoriasSistema Where empresaID = 1 and usuarioID = 2 and "
                              "tipoAuditoria = 'Inserción' and moduloSistema = 'Ventas -> Caja "
                              "Chica'";

class CajaChicaTest : public ConPantallas {
protected:
    std::unique_ptr<TCajaChicaF> abre() {
        sesion_ = sesion(QStringLiteral("cajero"), 1);
        auto f = std::make_unique<TCajaChicaF>(sesion_);
        f->resize(1024, 600);
        f->show();
        return f;
    }

    static void captura(const QWidget& f, const QString& cantidad, const QString& nota) {
        control<QLineEdit>(f, "CantidadCajaChica")->setText(cantidad);
        control<QLineEdit>(f, "NotaCajaChica")->setText(nota);
    }

    static void siguiente(const QWidget& f) {
        QTest::mouseClick(control<QPushButton>(f, "BotonSiguiente"), Qt::LeftButton);
        esperaLeyenda(f);
    }

    static QTableWidgetItem* retiro(const QWidget& f) {
        return control<QTableWidget>(f, "TablaCajaChica")->item(TCajaChicaF::RenglonRetiro, 1);
    }

    static void tocaRetiro(const QWidget& f) {
        auto* tabla = control<QTableWidget>(f, "TablaCajaChica");
        QTest::mouseClick(tabla->viewport(), Qt::LeftButton, {},
                          tabla->visualItemRect(retiro(f)).center());
    }

    std::string movimientos() {
        return c
            .valor("Select ifnull(group_concat(tipoFlujo || '|' || importe || '|' || comentarios "
                   "|| '|' || usuarioID || '|' || empresaID, ';'), '') From FlujoEfectivo")
            .get<std::string>();
    }

    Sesion sesion_;
};

TEST_F(CajaChicaTest, RevisaEnOrdenConSuSonidoYNoGuardaNada) {
    auto f = abre();
    EXPECT_EQ(control<QLineEdit>(*f, "CantidadCajaChica")->text(), "0.00");
    EXPECT_EQ(retiro(*f)->text(), "NO");

    captura(*f, QString(), QStringLiteral("Fondo"));
    siguiente(*f);
    captura(*f, QStringLiteral("0.00"), QStringLiteral("Fondo"));
    siguiente(*f);
    captura(*f, QStringLiteral("-5"), QStringLiteral("Fondo"));
    siguiente(*f);
    captura(*f, QStringLiteral("25"), QStringLiteral("   "));
    siguiente(*f);
    EXPECT_EQ(Mensajes::ultimos(),
              (QStringList{"Debe Introducir un Monto para el Ingreso/Retiro de Efectivo",
                           "Debe Introducir un Monto superior a CERO",
                           "Debe Introducir un Monto superior a CERO",
                           "Debe Introducir un Motivo para el Ingreso/Retiro de Efectivo"}));
    EXPECT_EQ(Sonidos::reproducidos(),
              (QList<Sonido>{Sonido::Error, Sonido::Error, Sonido::Error, Sonido::Error}));
    EXPECT_EQ(movimientos(), "");
    EXPECT_EQ(c.cuenta(kBitacora), 0);
    EXPECT_EQ(control<QLineEdit>(*f, "CantidadCajaChica")->text(), "25");
}

TEST_F(CajaChicaTest, DepositoRedondeadoYRetiroEnPositivoConSuBitacora) {
    auto f = abre();
    captura(*f, QStringLiteral("10.005"), QStringLiteral("Fondo de caja"));
    siguiente(*f);
    EXPECT_EQ(Mensajes::ultimos(), QStringList{"Proceso finalizado con éxito"});
    EXPECT_EQ(Sonidos::reproducidos(), QList<Sonido>{Sonido::Click});
    EXPECT_EQ(movimientos(), "0|10.01|Fondo de caja|2|1");
    EXPECT_EQ(c.cuenta(kBitacora + " and comentarios = 'Fondo de caja' and datoNuevo like "
                                   "'%Depósito: 10.01'"),
              1);
    // Lista para el siguiente movimiento.
    EXPECT_EQ(control<QLineEdit>(*f, "CantidadCajaChica")->text(), "0.00");
    EXPECT_EQ(control<QLineEdit>(*f, "NotaCajaChica")->text(), "");

    tocaRetiro(*f);
    EXPECT_EQ(retiro(*f)->text(), "SÍ");
    tocaRetiro(*f);
    EXPECT_EQ(retiro(*f)->text(), "NO");
    tocaRetiro(*f);
    captura(*f, QStringLiteral("50"), QStringLiteral("Pago de garrafones"));
    siguiente(*f);
    EXPECT_EQ(movimientos(), "0|10.01|Fondo de caja|2|1;1|50.0|Pago de garrafones|2|1");
    EXPECT_EQ(c.cuenta(kBitacora + " and datoNuevo like '%Retiro: 50.00'"), 1);
    EXPECT_EQ(retiro(*f)->text(), "NO");
}

TEST_F(CajaChicaTest, EstacionNoAutorizadaNoGuardaYConservaLoTecleado) {
    c.exige("Insert Into DispositivosRED (ReferenciaID) Values ('CAJA-1')");
    auto f = abre();
    f->ponDispositivo(QStringLiteral("CAJA-9"));
    tocaRetiro(*f);
    captura(*f, QStringLiteral("75.5"), QStringLiteral("Compra de hielo"));
    Sonidos::reproducidos();
    siguiente(*f);
    EXPECT_EQ(Mensajes::ultimos(), QStringList{"Dispositivo NO Autorizado: CAJA-9"});
    EXPECT_EQ(Sonidos::reproducidos(), (QList<Sonido>{Sonido::Click, Sonido::Error}));
    EXPECT_EQ(movimientos(), "");
    EXPECT_EQ(control<QLineEdit>(*f, "CantidadCajaChica")->text(), "75.5");
    EXPECT_EQ(retiro(*f)->text(), "SÍ");

    f->ponDispositivo(QStringLiteral("CAJA-1"));
    siguiente(*f);
    EXPECT_EQ(movimientos(), "1|75.5|Compra de hielo|2|1");
}

// La bitácora falla: el movimiento tampoco queda.
TEST_F(CajaChicaTest, SiLaBitacoraFallaNoQuedaElMovimiento) {
    escribeConServicioDetenido("CREATE TRIGGER falla_bitacora BEFORE INSERT ON AuditoriasSistema "
                               "BEGIN SELECT RAISE(ABORT, 'falla inyectada'); END;");

    auto f = abre();
    captura(*f, QStringLiteral("20"), QStringLiteral("Cambio"));
    siguiente(*f);
    const QStringList mensajes = Mensajes::ultimos();
    ASSERT_EQ(mensajes.size(), 1);
    EXPECT_TRUE(mensajes[0].startsWith(QString::fromUtf8(MensajeErrorRegistro)))
        << mensajes[0].toStdString();
    EXPECT_EQ(movimientos(), "");
    EXPECT_EQ(control<QLineEdit>(*f, "CantidadCajaChica")->text(), "20");
    EXPECT_EQ(control<QLineEdit>(*f, "NotaCajaChica")->text(), "Cambio");
}

} // namespace
} // namespace cajaplex
