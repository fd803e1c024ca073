// Kardex y borrado de productos contra el servicio real: el kardex debe cuadrar con la
// existencia que mueve el servicio, y un producto nombrado por cualquier documento no se borra.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include <QDate>

#include "catalog/CatalogoProductos.h"
#include "catalog/KardexProducto.h"
#include "datos/ConexionBD.h"
#include "tests/fixtures/DatosPrueba.h"

namespace cajaplex {
namespace {

using namespace prueba;

class CatalogoProductosTest : public ConServicio {
protected:
    void SetUp() override {
        conexion.configura(QStringLiteral("127.0.0.1"), servicio.puerto(),
                           QString::fromStdString(kUsuarioPrueba),
                           QString::fromStdString(kContrasenaPrueba));
        datos.empresa(1, "Uno");
        datos.empresa(2, "Dos");
        sesion.EmpresaID = 1;
        sesion.UsuarioID = 1;
    }

    long long idDe(long long empresa, const std::string& clave) {
        return c
            .valor("Select ID From Productos Where empresaID = :e and clave = :c",
                   {{"e", entero(empresa)}, {"c", texto(clave)}})
            .get<long long>();
    }

    // Entradas menos salidas de todo el kardex, por módulo.
    std::map<QString, double> movimientos(long long empresa, const std::string& clave) {
        KardexProducto kardex(conexion);
        std::map<QString, double> porModulo;
        for (const MovimientoKardex& m : kardex.consulta(empresa, QString::fromStdString(clave),
                                                         QDate(2000, 1, 1), QDate(2100, 1, 1)))
            porModulo[m.moduloSistema] += m.esEntrada() ? m.cantidad : -m.cantidad;
        return porModulo;
    }

    static double suma(const std::map<QString, double>& m) {
        double total = 0;
        for (const auto& [modulo, cantidad] : m)
            total += cantidad;
        return total;
    }

    ConexionBD conexion;
    Sesion sesion;
};

TEST_F(CatalogoProductosTest, KardexCuadraConLaExistenciaQueMueveElServicio) {
    datos.producto(1, "A", 10);
    datos.producto(1, "B", 5);
    datos.paquete(1, "K", {{"A", 2}, {"B", 1}});
    datos.producto(2, "A", 50); // otra empresa, misma clave

    datos.venta(1, {{"A", 3}, {"K", 2}});
    datos.venta(1, {{"A", 1}}, false); // no descuenta existencias
    datos.recepcion(1, {{"A", 10}, {"K", 1}});
    datos.devolucion(1, {{"A", 2}});
    datos.ajuste(1, {{"A", 4}}, true);
    datos.ajuste(1, {{"A", 1}, {"K", 1}}, false);
    datos.cancela("Remision", 1, datos.venta(1, {{"A", 5}}).folio);
    datos.cancela("OrdenCompra", 1, datos.recepcion(1, {{"A", 7}}).folio);
    datos.cancela("DevolucionOrdenCompra", 1, datos.devolucion(1, {{"B", 1}}).folio);
    datos.cancela("AjusteProductos", 1, datos.ajuste(1, {{"B", 2}}, false).folio);
    datos.venta(2, {{"A", 20}});
    datos.recepcion(2, {{"A", 9}});

    // Cada fuente con su signo; los kits repartidos a sus componentes.
    const auto a = movimientos(1, "A");
    EXPECT_DOUBLE_EQ(a.at("Remisión"), -3.0 - 2 * 2);
    EXPECT_DOUBLE_EQ(a.at("Recepción de Mercancía"), 10.0 + 1 * 2);
    EXPECT_DOUBLE_EQ(a.at("Devolución de Mercancía"), -2.0);
    EXPECT_DOUBLE_EQ(a.at("Ajuste de Entrada"), 4.0);
    EXPECT_DOUBLE_EQ(a.at("Ajuste de Salida"), -1.0 - 1 * 2);
    EXPECT_DOUBLE_EQ(10 + suma(a), datos.existencia(1, "A"));
    EXPECT_DOUBLE_EQ(5 + suma(movimientos(1, "B")), datos.existencia(1, "B"));
    EXPECT_DOUBLE_EQ(50 + suma(movimientos(2, "A")), datos.existencia(2, "A"));
    EXPECT_EQ(movimientos(2, "A").size(), 2u);
}

TEST_F(CatalogoProductosTest, KardexOrdenaPorFuenteYFechaYRespetaElRango) {
    datos.producto(1, "A", 0);
    c.exige("Insert Into Usuarios (usuarioID, nUsuario, nombre) Values (7, 'ana', 'Ana'), "
            "(8, 'beto', 'Beto')");
    auto fecha = [&](const std::string& tabla, long long folio, const std::string& f) {
        c.exige("Update " + tabla +
                    " Set fecha = :f, usuarioID = 7, vendedor = 8 Where empresaID = 1 and folio = "
                    ":folio",
                {{"f", texto(f)}, {"folio", entero(folio)}});
    };
    auto fechaCompra = [&](const std::string& tabla, long long folio, const std::string& f) {
        c.exige("Update " + tabla +
                    " Set fecha = :f, usuarioID = 7 Where empresaID = 1 and folio = :folio",
                {{"f", texto(f)}, {"folio", entero(folio)}});
    };
    fechaCompra("AjusteProductos", datos.ajuste(1, {{"A", 1}}, true).folio, "2024-03-09 10:00:00");
    fecha("Remision", datos.venta(1, {{"A", 1}}).folio, "2024-03-08 23:59:59");
    fecha("Remision", datos.venta(1, {{"A", 2}}).folio, "2024-03-05 08:00:00");
    fechaCompra("OrdenCompra", datos.recepcion(1, {{"A", 4}}).folio, "2024-03-01 00:00:00");
    fechaCompra("DevolucionOrdenCompra", datos.devolucion(1, {{"A", 1}}).folio,
                "2024-03-10 12:00:00");
    fechaCompra("AjusteProductos", datos.ajuste(1, {{"A", 1}}, false).folio, "2024-03-02 09:00:00");
    fecha("Remision", datos.venta(1, {{"A", 9}}).folio, "2024-03-11 00:00:00"); // fuera

    KardexProducto kardex(conexion);
    const auto filas =
        kardex.consulta(1, QStringLiteral("A"), QDate(2024, 3, 1), QDate(2024, 3, 10));
    QStringList vistas;
    for (const auto& m : filas)
        vistas << QStringLiteral("%1 %2 %3 %4")
                      .arg(m.moduloSistema, m.fecha.toString(QStringLiteral("dd")),
                           QString::number(m.cantidad), m.usuario);
    EXPECT_EQ(vistas,
              (QStringList{"Remisión 05 2 Beto", "Remisión 08 1 Beto", "Ajuste de Salida 02 1 Ana",
                           "Devolución de Mercancía 10 1 Ana", "Recepción de Mercancía 01 4 Ana",
                           "Ajuste de Entrada 09 1 Ana"}));
}

TEST_F(CatalogoProductosTest, BorrarRechazaCualquierDocumentoYSeLlevaLoPropio) {
    // Cada renglón nombra al producto como lo guarda su tabla: por clave, por ID o por ambos.
    const std::vector<std::string> referencias = {
        "Insert Into RemisionDetalle (id, empresaID, remision, clave) Values (1, 1, 1, :c)",
        "Insert Into RemisionDetalle (id, empresaID, remision, producto) Values (1, 1, 1, :p)",
        "Insert Into CotizacionDetalle (id, empresaID, cotizacion, producto) Values (1, 1, 1, :p)",
        "Insert Into ComandaDetalle (id, empresaID, comanda, producto) Values (1, 1, 1, :p)",
        "Insert Into ComandaDetallePaquetes (empresaID, comanda, clave) Values (1, 1, :c)",
        "Insert Into RequisicionDetalle (id, empresaID, requisicion, clave) Values (1, 1, 1, :c)",
        "Insert Into OrdenCompraDetalle (id, empresaID, ordenCompra, clave) Values (1, 1, 1, :c)",
        "Insert Into DevolucionOrdenCompraDetalle (id, empresaID, devolucionOrdenCompra, clave) "
        "Values (1, 1, 1, :c)",
        "Insert Into AjusteProductosDetalle (id, empresaID, clave) Values (1, 1, :c)",
        "Insert Into FacturaDetalle (id, empresaID, factura, producto) Values (1, 1, 1, :p)",
        "Insert Into NotaCreditoDetalle (id, empresaID, notaCredito, clave) Values (1, 1, 1, :c)",
        "Insert Into ProductosPaquetes (id, empresaID, clave) Values (999, 1, :c)",
    };
    int n = 0;
    for (const std::string& sql : referencias) {
        const std::string clave = "R" + std::to_string(++n);
        datos.producto(1, clave, 1);
        const long long id = idDe(1, clave);
        Json p = {{"c", texto(clave)}, {"p", entero(id)}};
        if (sql.find(":p") == std::string::npos) p.erase("p");
        if (sql.find(":c") == std::string::npos) p.erase("c");
        c.exige(sql, p);
        ProductoListado producto;
        producto.id = id;
        producto.clave = QString::fromStdString(clave);
        EXPECT_EQ(borraProducto(conexion, sesion, producto),
                  ResultadoBorrarProducto::ConTransacciones)
            << sql;
        EXPECT_EQ(c.cuenta("Productos Where ID = :p", {{"p", entero(id)}}), 1) << sql;
    }
    // Un documento de otra empresa con la misma clave no estorba.
    datos.producto(1, "LIBRE", 1);
    datos.producto(2, "LIBRE", 1);
    datos.venta(2, {{"LIBRE", 1}});
    const long long libre = idDe(1, "LIBRE");
    c.exige("Insert Into ProductosRangosPrecios (empresaID, productoID, rango, precioVenta) "
            "Values (1, :p, 10, 5)",
            {{"p", entero(libre)}});
    c.exige("Insert Into ProductosFotos (id, Posicion, empresaID, Foto) Values (:p, 1, 1, x'00')",
            {{"p", entero(libre)}});
    ProductoListado producto;
    producto.id = libre;
    producto.clave = QStringLiteral("LIBRE");
    producto.producto = QStringLiteral("Libre");
    EXPECT_EQ(borraProducto(conexion, sesion, producto), ResultadoBorrarProducto::Eliminado);
    EXPECT_EQ(c.cuenta("Productos Where ID = :p", {{"p", entero(libre)}}), 0);
    EXPECT_EQ(c.cuenta("ProductosRangosPrecios Where productoID = :p", {{"p", entero(libre)}}), 0);
    EXPECT_EQ(c.cuenta("ProductosFotos Where id = :p", {{"p", entero(libre)}}), 0);
    EXPECT_EQ(c.cuenta("Productos Where empresaID = 2 and clave = 'LIBRE'"), 1);
    // La bitácora nombra al producto como estaba al borrarlo, no como lo trajo el listado.
    EXPECT_EQ(c.cuenta("AuditoriasSistema Where tipoAuditoria = 'Cancelación' and empresaID = 1 "
                       "and moduloSistema = 'Catálogos -> Productos' and datoNuevo = "
                       "'Producto: LIBRE LIBRE'"),
              1);

    // Un kit sin documentos se va con su composición; sus componentes se quedan.
    datos.paquete(1, "KIT", {{"R1", 1}});
    const long long kit = idDe(1, "KIT");
    producto.id = kit;
    producto.clave = QStringLiteral("KIT");
    EXPECT_EQ(borraProducto(conexion, sesion, producto), ResultadoBorrarProducto::Eliminado);
    EXPECT_EQ(c.cuenta("ProductosPaquetes Where id = :p", {{"p", entero(kit)}}), 0);
    EXPECT_EQ(c.cuenta("Productos Where empresaID = 1 and clave = 'R1'"), 1);
}

// El listado se cargó con la clave "VIEJA"; otra estación la cambió a "NUEVA" y vendió con ella.
// La revisión usa la clave de ahora, leída dentro de la transacción del borrado: no se borra.
TEST_F(CatalogoProductosTest, BorrarRevisaLaClaveActualNoLaDelListado) {
    datos.producto(1, "VIEJA", 5);
    const long long id = idDe(1, "VIEJA");
    ProductoListado listado;
    listado.id = id;
    listado.clave = QStringLiteral("VIEJA");
    listado.producto = QStringLiteral("Vieja");

    c.exige("Update Productos Set clave = 'NUEVA' Where id = :p", {{"p", entero(id)}});
    datos.venta(1, {{"NUEVA", 1}});
    EXPECT_EQ(borraProducto(conexion, sesion, listado), ResultadoBorrarProducto::ConTransacciones);
    EXPECT_EQ(c.cuenta("Productos Where ID = :p", {{"p", entero(id)}}), 1);
    EXPECT_EQ(c.cuenta("AuditoriasSistema"), 0);

    // Ya borrado por otra estación: nada que hacer, nada en la bitácora.
    datos.producto(1, "OTRO", 1);
    listado.id = idDe(1, "OTRO");
    listado.clave = QStringLiteral("OTRO");
    c.exige("Delete From Productos Where id = :p", {{"p", entero(listado.id)}});
    EXPECT_EQ(borraProducto(conexion, sesion, listado), ResultadoBorrarProducto::Eliminado);
    EXPECT_EQ(c.cuenta("AuditoriasSistema"), 0);
}

} // namespace
} // namespace cajaplex
