// La venta en memoria: los totales con sus redondeos y sus rarezas (IEPS reescalado por moneda,
// IVA del renglón a 6 decimales), y los renglones armados desde el servicio real: precio según el
// modo de IVA, rangos por cantidad, niveles y derechos, descuentos y posiciones.
#include <gtest/gtest.h>

#include "sales/DocumentoVenta.h"
#include "tests/sales/VentaPrueba.h"

namespace cajaplex {
namespace {

using namespace prueba;

RenglonVenta linea(double cantidad, double precio, double iva, double ieps = 0,
                   int64_t moneda = 1) {
    RenglonVenta r;
    r.Cantidad = cantidad;
    r.Precio = precio;
    r.porcentajeImpuesto = iva;
    r.ieps = ieps;
    r.Moneda = moneda;
    r.TipoCambioVenta = moneda == 1 ? 1 : 20;
    return r;
}

const QHash<int64_t, MonedaVenta> Monedas = {{1, {1, "MXN", 1, true}}, {2, {2, "USD", 20, true}}};

TotalesVenta totales(const std::vector<RenglonVenta>& r, int modo,
                     const QHash<int64_t, MonedaVenta>& monedas = Monedas) {
    return calculaTotales(r, modo, 1, monedas);
}

TEST(TotalesVenta, ModosDeIva) {
    const TotalesVenta vacia = totales({}, 1);
    EXPECT_EQ(vacia.total + vacia.subtotal + vacia.iva + vacia.ieps + vacia.descuento, 0.0);

    const TotalesVenta m1 = totales({linea(1, 116, 16)}, 1);
    EXPECT_DOUBLE_EQ(m1.subtotal, 100.0);
    EXPECT_DOUBLE_EQ(m1.subtotalRegistrado, 100.0);
    EXPECT_DOUBLE_EQ(m1.iva, 16.0);
    EXPECT_DOUBLE_EQ(m1.total, 116.0);
    for (int modo : {2, 3})
        EXPECT_DOUBLE_EQ(totales({linea(1, 100, 16)}, modo).total, 116.0) << modo;
    const TotalesVenta m4 = totales({linea(1, 100, 16)}, 4);
    EXPECT_DOUBLE_EQ(m4.iva, 0.0);
    EXPECT_DOUBLE_EQ(m4.total, 100.0);
    EXPECT_DOUBLE_EQ(totales({linea(1, 100, 16)}, 7).total, 0.0);
}

TEST(TotalesVenta, IvaSobreIepsYRedondeos) {
    for (int modo : {1, 2, 3}) {
        const TotalesVenta t = totales({linea(1, modo == 1 ? 116 : 100, 16, 8)}, modo);
        EXPECT_DOUBLE_EQ(t.ieps, 8.0) << modo;
        EXPECT_DOUBLE_EQ(t.iva, 17.28) << modo;
        EXPECT_DOUBLE_EQ(t.total, 125.28) << modo;
    }
    // El IVA del renglón (0.0049996) se redondea a 6 decimales antes de sumarse: 0.005 → 0.01.
    EXPECT_DOUBLE_EQ(totales({linea(1, 0.0312475, 16)}, 2).iva, 0.01);
    EXPECT_DOUBLE_EQ(totales({linea(1, 10.005, 0)}, 2).subtotal, 10.01);
}

TEST(TotalesVenta, MonedaExtranjeraReescalaElIepsAcumulado) {
    const RenglonVenta pesos = linea(1, 100, 0, 8);
    const RenglonVenta dolares = linea(1, 10, 16, 0, 2);
    const TotalesVenta antes = totales({pesos, dolares}, 2);
    const TotalesVenta despues = totales({dolares, pesos}, 2);
    EXPECT_DOUBLE_EQ(antes.subtotal, 300.0);
    EXPECT_DOUBLE_EQ(despues.subtotal, 300.0);
    EXPECT_DOUBLE_EQ(antes.ieps, 160.0); // los 8 pesos de IEPS multiplicados por 20
    EXPECT_DOUBLE_EQ(despues.ieps, 8.0);
    EXPECT_DOUBLE_EQ(antes.iva, 32.0); // 1.60 dólares de IVA a 20

    QHash<int64_t, MonedaVenta> divide = Monedas;
    divide[2].multiplica = false;
    EXPECT_DOUBLE_EQ(totales({linea(1, 100, 16, 0, 2)}, 2, divide).total, 5.8);
}

TEST(TotalesVenta, DescuentoCompletoPuntosYCosto) {
    RenglonVenta regalo = linea(2, 116, 16);
    regalo.Descuento = 100;
    regalo.bonificaPuntos = true;
    regalo.porcentajeBonificacion = 10;
    EXPECT_EQ(importeNeto(regalo, 1), 0.0);
    EXPECT_EQ(puntosRenglon(regalo), 0.0);
    const TotalesVenta t = totales({regalo}, 1);
    EXPECT_DOUBLE_EQ(t.descuento, 200.0);
    EXPECT_DOUBLE_EQ(t.total, 0.0);

    // Los puntos van sobre el precio de pantalla (con IVA en el modo 1), no sobre el neto.
    regalo.Descuento = 50;
    EXPECT_DOUBLE_EQ(puntosRenglon(regalo), 11.6);
}

class DocumentoVentaTest : public ConServicio {
protected:
    void SetUp() override {
        apunta(conexion, servicio);
        empresaVenta(c, 2);
        articulo(c, {"N", 100});
        articulo(c, {"B", 116});
        articulo(c, {"R", 10});
        articulo(c, {"S", 5, 16, 0, 100, 2});
        c.exige("Insert Into ProductosRangosPrecios (empresaID, productoID, rango, precioVenta) "
                "Select 1, id, 10, 8 From Productos Where clave = 'R' Union All "
                "Select 1, id, 50, 6 From Productos Where clave = 'R'");
    }

    ConexionBD conexion;
    Sesion sesion = sesionVenta();
};

TEST_F(DocumentoVentaTest, ProductoDe100Mas16TerminaEn116EnCadaModo) {
    // En el modo 1 el precio guardado ya lleva el IVA; en los demás no.
    for (int modo : {1, 2, 3, 4}) {
        c.exige("Update Configura Set desglosaRem = :m", {{"m", entero(modo)}});
        DocumentoVenta venta(conexion, sesion);
        venta.abre();
        ASSERT_FALSE(venta.agrega(QString::fromLatin1(modo == 1 ? "B" : "N")));
        EXPECT_DOUBLE_EQ(venta.totales().total, modo == 4 ? 100.0 : 116.0) << modo;
        EXPECT_DOUBLE_EQ(venta.RemisionDetalles()[0].Importe, 100.0) << modo;
    }
}

TEST_F(DocumentoVentaTest, AgregaPorCodigoDeBarrasYRechazaLoQueNoSePuedeVender) {
    articulo(c, {"V", 10});
    DocumentoVenta venta(conexion, sesion);
    venta.abre();
    EXPECT_FALSE(venta.agrega(QStringLiteral("750S")));
    const RenglonVenta& s = venta.RemisionDetalles()[0];
    EXPECT_EQ(s.clave, QStringLiteral("S"));
    EXPECT_EQ(s.Moneda, 2);
    EXPECT_EQ(s.TipoCambioVenta, 20.0);
    EXPECT_DOUBLE_EQ(venta.totales().total, 116.0); // 5 dólares a 20, más IVA

    EXPECT_EQ(venta.agrega(QStringLiteral("nada")),
              QStringLiteral("No se localizaron Productos con el identificador: nada"));
    EXPECT_EQ(venta.cambiaCantidad(0, 101), QString::fromUtf8(MensajeSinExistencias));
    EXPECT_EQ(venta.cambiaCantidad(0, 0), QString::fromUtf8(MensajeCantidadCero));
    EXPECT_EQ(venta.RemisionDetalles()[0].Cantidad, 1.0);
    c.exige("Update Productos Set existencia = -3 Where clave = 'V'");
    EXPECT_EQ(venta.agrega(QStringLiteral("V")), QString::fromUtf8(MensajeSinExistencias));
    c.exige("Update Configura Set remSinExistencia = 1");
    venta.abre();
    EXPECT_FALSE(venta.agrega(QStringLiteral("V")));
    EXPECT_EQ(venta.RemisionDetalles()[1].Existencia, 0.0); // negativa se ve como cero
}

TEST_F(DocumentoVentaTest, RangosPorCantidadNivelesYCliente) {
    DocumentoVenta venta(conexion, sesion);
    venta.abre();
    ASSERT_FALSE(venta.agrega(QStringLiteral("R")));
    auto precio = [&] { return venta.RemisionDetalles()[0].Precio; };
    const std::pair<double, double> casos[] = {{9, 10}, {10, 8}, {49.5, 8}, {50, 6}, {3, 10}};
    for (const auto& [cantidad, esperado] : casos) {
        ASSERT_FALSE(venta.cambiaCantidad(0, cantidad));
        EXPECT_DOUBLE_EQ(precio(), esperado) << cantidad;
    }

    EXPECT_EQ(venta.eligePrecio(0, 4),
              QStringLiteral("No tiene permiso para utilizar el Precio 4"));
    EXPECT_EQ(venta.RemisionDetalles()[0].PLista, 1);
    ASSERT_FALSE(venta.eligePrecio(0, 2));
    ASSERT_FALSE(venta.cambiaCantidad(0, 60)); // el nivel elegido a mano gana al rango
    EXPECT_DOUBLE_EQ(precio(), 9.0);
    EXPECT_DOUBLE_EQ(venta.totales().subtotal, 540.0);

    ASSERT_FALSE(venta.cambiaCantidad(0, 2));
    venta.asignaCliente(ConPuntos); // nivel 2 del cliente; el rango vuelve a contar
    EXPECT_EQ(venta.puntosCliente(), 50.0);
    EXPECT_EQ(venta.RemisionDetalles()[0].PLista, 2);
    EXPECT_DOUBLE_EQ(precio(), 9.0);
    ASSERT_FALSE(venta.cambiaCantidad(0, 10));
    EXPECT_DOUBLE_EQ(precio(), 8.0);
    ASSERT_FALSE(venta.agrega(QStringLiteral("N")));
    EXPECT_DOUBLE_EQ(venta.RemisionDetalles()[1].Precio, 90.0);
}

TEST_F(DocumentoVentaTest, DescuentosDerechosYPosiciones) {
    DocumentoVenta venta(conexion, sesion);
    venta.abre();
    for (const char* clave : {"N", "R", "B"})
        ASSERT_FALSE(venta.agrega(QString::fromLatin1(clave)));
    venta.elimina(1);
    ASSERT_EQ(venta.RemisionDetalles().size(), 2u);
    EXPECT_EQ(venta.RemisionDetalles()[1].clave, QStringLiteral("B"));
    EXPECT_EQ(venta.RemisionDetalles()[1].posicion, 2);
    ASSERT_FALSE(venta.agrega(QStringLiteral("R")));
    EXPECT_EQ(venta.RemisionDetalles()[2].posicion, 3);

    EXPECT_EQ(venta.descuentoGlobal(101), QString::fromUtf8(MensajeDescuentoInvalido));
    ASSERT_FALSE(venta.descuentoGlobal(10));
    for (const RenglonVenta& r : venta.RemisionDetalles())
        EXPECT_EQ(r.Descuento, 10.0);
    EXPECT_DOUBLE_EQ(venta.totales().descuento, 22.6);
    EXPECT_DOUBLE_EQ(venta.totales().total, 235.94); // 203.40 + IVA de cada renglón

    Sesion sinDescuento = sesionVenta();
    sinDescuento.derechos.ventas.remove(QStringLiteral("descuento"));
    DocumentoVenta otra(conexion, sinDescuento);
    otra.abre();
    ASSERT_FALSE(otra.agrega(QStringLiteral("N")));
    EXPECT_EQ(otra.cambiaDescuento(0, 5), QString::fromUtf8(MensajeSinPermisoDescuento));
    EXPECT_EQ(otra.RemisionDetalles()[0].Descuento, 0.0);
}

} // namespace
} // namespace cajaplex
