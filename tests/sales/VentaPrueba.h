#pragma once

#include <string>

#include "datos/ConexionBD.h"
#include "datos/Sesion.h"
#include "sales/DocumentoVenta.h"
#include "sales/RegistroVenta.h"
#include "tests/datos/ServicioDatos.h"
#include "tests/fixtures/DatosPrueba.h"

namespace cajaplex::prueba {

// Formas de pago y clientes de la empresa de venta.
inline constexpr int64_t Efectivo = 1;
inline constexpr int64_t Tarjeta = 2;
inline constexpr int64_t Monedero = 3;
inline constexpr int64_t Publico = 1;
inline constexpr int64_t ConPuntos = 2; // 50 puntos, precio 2

struct Articulo {
    std::string clave;
    double precio = 0;
    double iva = 16;
    double ieps = 0;
    double existencia = 100;
    long long moneda = 1;
    double bonificacion = 0;
};

// Empresa 1 con el modo de IVA dado: pesos y dólares (20, multiplica), efectivo, tarjeta y
// monedero, el público en general y un cliente con puntos.
inline void empresaVenta(Cliente& c, int modoIva) {
    Datos(c).empresa(1, "Abarrotes");
    auto e = entero(1);
    c.exige("Update Configura Set desglosaRem = :m, monedaIDRem = 1, feMetodoIDRem = 1 "
            "Where empresaID = :e",
            {{"m", entero(modoIva)}, {"e", e}});
    c.exige("Insert Into Monedas (id, empresaID, descripcion, abreviacionPAC, multiplica, "
            "tipoCambioVenta) Values (1, :e, 'Pesos', 'MXN', 1, 1), (2, :e, 'Dólares', 'USD', 1, "
            "20)",
            {{"e", e}});
    c.exige("Insert Into FEMetodosPago (id, empresaID, descripcion) Values (1, :e, 'EFECTIVO'), "
            "(2, :e, 'TARJETA DE CRÉDITO'), (3, :e, 'MONEDERO ELECTRONICO')",
            {{"e", e}});
    c.exige("Insert Into Clientes (id, empresaID, nombre, puntos, precioVenta) Values "
            "(1, :e, 'Venta al Público en General', 0, 1), (2, :e, 'Cliente Frecuente', 50, 2)",
            {{"e", e}});
}

inline void articulo(Cliente& c, const Articulo& a) {
    c.exige("Insert Into Productos (empresaID, clave, producto, codigoBarra, existencia, "
            "manejaInventarios, precio, precio2, precio3, precio4, precio5, pCompra, "
            "porcentajeImpuesto, ieps, moneda, bonificaPuntos, porcentajeBonificacion, activo) "
            "Values (1, :clave, :clave, '750' || :clave, :existencia, 1, :precio, :precio * 0.9, "
            ":precio * 0.8, :precio * 0.7, :precio * 0.6, :precio / 2, :iva, :ieps, :moneda, "
            ":bonifica, :porcentaje, 1)",
            {{"clave", texto(a.clave)},
             {"existencia", real(a.existencia)},
             {"precio", real(a.precio)},
             {"iva", real(a.iva)},
             {"ieps", real(a.ieps)},
             {"moneda", entero(a.moneda)},
             {"bonifica", booleano(a.bonificacion > 0)},
             {"porcentaje", real(a.bonificacion)}});
}

inline Sesion sesionVenta() {
    Sesion s;
    s.EmpresaID = 1;
    s.UsuarioID = 1;
    for (const char* d : {"precio1", "precio2", "precio3", "descuento", "cancelarRemision"})
        s.derechos.ventas.insert(QString::fromLatin1(d), true);
    return s;
}

// Contado: efectivo por todo el total.
inline CierreVenta contado(const DocumentoVenta& v) {
    CierreVenta c;
    c.formaPagoDefault = Efectivo;
    c.vendedor = 1;
    const double total = v.totales().total;
    c.pagos = {{Efectivo, QStringLiteral("EFECTIVO"), total, static_cast<float>(total)}};
    return c;
}

} // namespace cajaplex::prueba
