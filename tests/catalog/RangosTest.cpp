// Rangos de Precios contra el servicio real de demostración: búsqueda del producto, alta, cambio
// y borrado con su bitácora, y cantidades que chocan, al dar de alta y al cambiar.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include <QListWidget>
#include <QStackedWidget>

#include "catalog/CatalogoProductos.h"
#include "catalog/Rangos.h"
#include "pantallas/Mensajes.h"
#include "pantallas/RolesRenglon.h"
#include "tests/fixtures/Toques.h"

namespace cajaplex {
namespace {

using namespace prueba;

const std::string kModulo = "moduloSistema = 'Catálogos -> Productos -> Rangos de Precios'";

class RangosTest : public ConPantallas {
protected:
    template <typename... Producto>
    std::unique_ptr<TRangosF> abre(long long empresa, Producto... producto) {
        sesion_ = sesion(QStringLiteral("admin"), empresa);
        auto f = std::make_unique<TRangosF>(sesion_, producto...);
        f->resize(1200, 700);
        f->show();
        esperaLeyenda(*f);
        return f;
    }

    static QString pagina(const TRangosF& f) {
        return control<QStackedWidget>(f, "Paginas")->currentWidget()->objectName();
    }

    // Cantidad:precio de la base, por cantidad.
    std::string rangos(long long productoID) {
        const prueba::Respuesta r =
            c.exige("Select rango, precioVenta From ProductosRangosPrecios "
                    "Where empresaID = 1 and productoID = :p Order By rango",
                    {{"p", entero(productoID)}});
        std::string texto;
        for (const auto& fila : r.filas())
            texto += fila.at(0).dump() + ":" + fila.at(1).dump() + " ";
        return texto;
    }

    long long bitacora(const std::string& tipo, const std::string& condicion = "1 = 1") {
        return c.cuenta("AuditoriasSistema Where tipoAuditoria = '" + tipo + "' and " + kModulo +
                        " and " + condicion);
    }

    Sesion sesion_;
};

TEST_F(RangosTest, DesdeElMenuSeEligeElProductoYSeMantienenSusRangosSinRepetirCantidad) {
    auto f = abre(1);
    EXPECT_TRUE(control<QLineEdit>(*f, "BuscarProducto")->isVisible());
    EXPECT_FALSE(control<QPushButton>(*f, "BotonNuevo")->isEnabled());
    enter(*f, "BuscarProducto", "refresco de cola");
    EXPECT_EQ(pagina(*f), "BuscaProducto");
    tocaRenglon(*f, "ProductosEncontrados", ModeloProductos::RolClave, "2001");
    EXPECT_EQ(rotulo(*f, "ProductoRangos"), "Rangos de Precios: 2001 - Refresco de cola 600 ml");
    EXPECT_EQ(renglones(*f, "ListaRangos", RolPrimeraLinea),
              (QStringList{"A partir de 12 Pieza", "A partir de 24 Pieza"}));
    EXPECT_EQ(renglones(*f, "ListaRangos", RolDatoDerecha), (QStringList{"$16.50", "$15.50"}));
    EXPECT_EQ(rotulo(*f, "PieRangos"), "Número de Registros: 2");

    // Alta: lo que falta se rechaza en su orden y lo tecleado se queda.
    toca(*f, "BotonNuevo");
    EXPECT_EQ(pagina(*f), "RangosEdita");
    toca(*f, "BotonAlmacenar");
    escribe(*f, "Cantidad", "48");
    toca(*f, "BotonAlmacenar");
    Mensajes::respondeOpcion(2);
    toca(*f, "BotonSeleccionaPrecio");
    EXPECT_EQ(Mensajes::ultimos(),
              (QStringList{"No especificar la cantidad", "No especificó el Precio de Venta",
                           "Seleccione el Precio de Venta"}));
    EXPECT_EQ(control<QLineEdit>(*f, "Cantidad")->text(), "48");
    EXPECT_EQ(control<QLineEdit>(*f, "PrecioVenta")->text(), "17.10"); // Precio 3
    toca(*f, "BotonAlmacenar");
    EXPECT_EQ(pagina(*f), "SeleccionaRango");
    EXPECT_EQ(rangos(14), "12.0:16.5 24.0:15.5 48.0:17.1 ");
    EXPECT_EQ(bitacora("Inserción", "datoNuevo like '%2001%Rango: 48%$17.10'"), 1);
    EXPECT_EQ(control<QListWidget>(*f, "ListaRangos")->currentItem()->text(),
              "A partir de 48 Pieza");

    // Una cantidad que ya tiene otro rango: ni al dar de alta ni al cambiar.
    toca(*f, "BotonNuevo");
    escribe(*f, "Cantidad", "12");
    escribe(*f, "PrecioVenta", "1");
    toca(*f, "BotonAlmacenar");
    EXPECT_EQ(Mensajes::ultimos(), QStringList{"Ya existe el rango: 12"});
    EXPECT_EQ(pagina(*f), "RangosEdita");
    EXPECT_EQ(control<QLineEdit>(*f, "PrecioVenta")->text(), "1");
    toca(*f, "BotonCancelar");

    tocaRenglon(*f, "ListaRangos", RolPrimeraLinea, "A partir de 48 Pieza");
    toca(*f, "BotonModificar");
    EXPECT_EQ(control<QLineEdit>(*f, "Cantidad")->text(), "48");
    escribe(*f, "Cantidad", "24");
    toca(*f, "BotonAlmacenar");
    EXPECT_EQ(Mensajes::ultimos(), QStringList{"Ya existe el rango: 24"});
    EXPECT_EQ(control<QLineEdit>(*f, "Cantidad")->text(), "24");
    EXPECT_EQ(rangos(14), "12.0:16.5 24.0:15.5 48.0:17.1 ");

    escribe(*f, "Cantidad", "36");
    escribe(*f, "PrecioVenta", "16.25");
    toca(*f, "BotonAlmacenar");
    EXPECT_EQ(rangos(14), "12.0:16.5 24.0:15.5 36.0:16.25 ");
    EXPECT_EQ(bitacora("Actualización",
                       "datoNuevo like '%Rango: 36%' and datoAnterior like '%Rango: 48%'"),
              1);
    // Solo el precio: la cantidad es la suya, no choca consigo.
    toca(*f, "BotonModificar");
    escribe(*f, "PrecioVenta", "16");
    toca(*f, "BotonAlmacenar");
    EXPECT_EQ(Mensajes::ultimos(), QStringList{});
    EXPECT_EQ(rangos(14), "12.0:16.5 24.0:15.5 36.0:16.0 ");

    Mensajes::respondeSiguiente(cajaplex::Respuesta::Si);
    toca(*f, "BotonBorrar");
    EXPECT_EQ(rangos(14), "12.0:16.5 24.0:15.5 ");
    EXPECT_EQ(rotulo(*f, "PieRangos"), "Número de Registros: 2");
    EXPECT_EQ(bitacora("Cancelación", "datoNuevo like '%Rango: 36%'"), 1);
}

TEST_F(RangosTest, AbiertoParaUnProductoSoloLoDeSuEmpresa) {
    auto f = abre(2, qint64{131});
    EXPECT_FALSE(control<QLineEdit>(*f, "BuscarProducto")->isVisible());
    EXPECT_EQ(renglones(*f, "ListaRangos", RolPrimeraLinea),
              (QStringList{"A partir de 6 Pieza", "A partir de 12 Pieza"}));

    f.reset();
    auto otra = abre(1, qint64{131});
    EXPECT_EQ(Mensajes::ultimos(), QStringList{"No hubo registros con esa información"});
    EXPECT_FALSE(control<QPushButton>(*otra, "BotonNuevo")->isEnabled());
}

} // namespace
} // namespace cajaplex
