// Cancelar una venta contra el servicio real: regresa existencias, quita los puntos ganados y
// devuelve lo gastado del monedero en una sola transacción; no se cancela dos veces ni sin derecho.
#include <gtest/gtest.h>

#include "sales/CancelacionVenta.h"
#include "tests/sales/VentaPrueba.h"

namespace cajaplex {
namespace {

using namespace prueba;

class CancelacionVentaTest : public ConServicio {
protected:
    void SetUp() override {
        apunta(conexion, servicio);
        empresaVenta(c, 1);
        articulo(c, {"P", 116, 16, 0, 100, 1, 10});
    }

    // Vende 2 P al cliente con puntos: gana 20.88 y paga `monedero` con el monedero.
    int64_t vende(double monedero = 30) {
        DocumentoVenta v(conexion, sesion);
        v.abre();
        v.asignaCliente(ConPuntos);
        EXPECT_FALSE(v.agrega(QStringLiteral("P")));
        EXPECT_FALSE(v.cambiaCantidad(0, 2));
        CierreVenta cierre = contado(v);
        const double total = v.totales().total;
        cierre.pagos = {
            {Efectivo, QStringLiteral("EFECTIVO"), total - monedero, float(total - monedero)},
            {Monedero, QStringLiteral("MONEDERO ELECTRONICO"), monedero, float(monedero)}};
        const ResultadoRegistro r = RegistroVenta(conexion, sesion).registra(v, cierre);
        EXPECT_TRUE(r.registrada) << r.mensaje.toStdString();
        return r.folio;
    }

    double puntos() { return c.valor("Select puntos From Clientes Where id = 2").get<double>(); }

    ConexionBD conexion;
    Sesion sesion = sesionVenta();
};

TEST_F(CancelacionVentaTest, RegresaExistenciasPuntosYMonederoUnaSolaVez) {
    const int64_t folio = vende();
    EXPECT_NEAR(puntos(), 50 + 20.88 - 30, 1e-9);
    EXPECT_EQ(datos.existencia(1, "P"), 98.0);

    CancelacionVenta cancelacion(conexion, sesion);
    const ResultadoCancelacion r = cancelacion.cancela(folio, QStringLiteral("Error de captura"));
    ASSERT_TRUE(r.cancelada) << r.mensaje.toStdString();
    EXPECT_NEAR(puntos(), 50.0, 1e-9);
    EXPECT_EQ(datos.existencia(1, "P"), 100.0);
    EXPECT_EQ(c.exige("Select cancelada, usuarioIDCancelacion, motivoCancelacion, "
                      "fechaCancelacion is not null From Remision")
                  .filas(),
              Json({{1, 1, "Error de captura", 1}}));
    EXPECT_EQ(c.cuenta("AuditoriasSistema Where tipoAuditoria = 'Cancelación' and "
                       "moduloSistema = 'Ventas -> Remisiones' and datoNuevo = '1'"),
              1);

    const ResultadoCancelacion otra = cancelacion.cancela(folio, QStringLiteral("otra vez"));
    EXPECT_FALSE(otra.cancelada);
    EXPECT_EQ(otra.mensaje, QStringLiteral("La Remisión ya está cancelada: 1"));
    EXPECT_EQ(cancelacion.cancela(99, {}).mensaje, QStringLiteral("No existe la Remisión: 99"));
    EXPECT_NEAR(puntos(), 50.0, 1e-9);
    EXPECT_EQ(datos.existencia(1, "P"), 100.0);
    EXPECT_EQ(c.cuenta("AuditoriasSistema Where tipoAuditoria = 'Cancelación'"), 1);
}

TEST_F(CancelacionVentaTest, SinDerechoOSinPuntosQueQuitarNoCancela) {
    const int64_t folio = vende(0);
    Sesion sinDerecho = sesionVenta();
    sinDerecho.derechos.ventas.remove(QStringLiteral("cancelarRemision"));
    EXPECT_EQ(CancelacionVenta(conexion, sinDerecho).cancela(folio, {}).mensaje,
              QString::fromUtf8(MensajeSinPermisoCancelar));

    // El cliente ya gastó casi todo lo ganado: quitarlo dejaría el monedero en negativo.
    c.exige("Update Clientes Set puntos = 5 Where id = 2");
    const ResultadoCancelacion r = CancelacionVenta(conexion, sesion).cancela(folio, {});
    EXPECT_FALSE(r.cancelada);
    EXPECT_EQ(r.mensaje, QStringLiteral("Saldo insuficiente en Monedero Electrónico"));
    EXPECT_EQ(c.valor("Select cancelada From Remision"), Json(0));
    EXPECT_EQ(datos.existencia(1, "P"), 98.0);
}

} // namespace
} // namespace cajaplex
