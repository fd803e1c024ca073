// Artículos Compuestos (Kits) contra el servicio real de demostración: la composición se guarda
// entera y en su orden, lo vacío se rechaza, un kit nunca es componente y un componente cuya
// clave cambió deja de listarse.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include <QTabWidget>
#include <QTreeWidget>

#include "catalog/CatalogoProductos.h"
#include "catalog/ComposicionKits.h"
#include "catalog/Kits.h"
#include "datos/ModuloDatos.h"
#include "pantallas/Mensajes.h"
#include "pantallas/RolesRenglon.h"
#include "tests/fixtures/Toques.h"

namespace cajaplex {
namespace {

using namespace prueba;

const QString kSinRegistros = QStringLiteral("No se localizaron registros con esa Información");

class KitsTest : public ConPantallas {
protected:
    std::unique_ptr<TKitsF> abre() {
        sesion_ = sesion(QStringLiteral("admin"), 1);
        auto f = std::make_unique<TKitsF>(sesion_);
        f->resize(1366, 700);
        f->show();
        esperaLeyenda(*f);
        return f;
    }

    // PAQ02 (id 45) con su componente 3002 quitado, sin almacenar.
    std::unique_ptr<TKitsF> abreConCambioPendiente() {
        auto f = abre();
        eligeKit(*f, "PAQ02 - Paquete botana y refresco");
        eligeComponente(*f, "3002");
        toca(*f, "BotonBorrar");
        Mensajes::ultimos();
        return f;
    }

    static void eligeKit(const TKitsF& f, const QString& kit) {
        tocaRenglon(f, "ListaKits", Qt::DisplayRole, kit);
    }

    static QStringList claves(const TKitsF& f) {
        return renglones(f, "KitDetalles", KitDetalles::RolClave);
    }

    static void eligeComponente(const TKitsF& f, const QString& clave) {
        tocaRenglon(f, "KitDetalles", KitDetalles::RolClave, clave);
    }

    static void tocaLinea(const TKitsF& f, const QString& linea) {
        auto* arbol = control<QTreeWidget>(f, "Lineas");
        QTreeWidgetItem* item =
            arbol->findItems(linea, Qt::MatchExactly | Qt::MatchRecursive).value(0);
        ASSERT_NE(item, nullptr) << linea.toStdString();
        arbol->scrollToItem(item);
        QTest::mouseClick(arbol->viewport(), Qt::LeftButton, {},
                          arbol->visualItemRect(item).center());
        esperaLeyenda(f);
    }

    // "clave x cantidad" de la base, por posición.
    std::string almacenado(long long kitID) {
        const prueba::Respuesta r =
            c.exige("Select posicion, clave, cantidad From ProductosPaquetes "
                    "Where empresaID = 1 and id = :k Order By posicion",
                    {{"k", entero(kitID)}});
        std::string texto;
        for (const auto& fila : r.filas())
            texto += fila.at(0).dump() + "." + fila.at(1).get<std::string>() + "x" +
                     fila.at(2).dump() + " ";
        return texto;
    }

    Sesion sesion_;
};

TEST_F(KitsTest, ComposicionSeGuardaEnteraEnSuOrdenYSeRecarga) {
    auto f = abre();
    EXPECT_EQ(
        renglones(*f, "ListaKits", Qt::DisplayRole),
        (QStringList{"PAQ02 - Paquete botana y refresco", "PAQ01 - Paquete despensa básica"}));
    EXPECT_EQ(rotulo(*f, "PieKits"), "Número de Registros: 2");
    escribe(*f, "FiltroKits", "DESPENSA");
    EXPECT_EQ(renglones(*f, "ListaKits", Qt::DisplayRole),
              QStringList{"PAQ01 - Paquete despensa básica"});
    EXPECT_EQ(rotulo(*f, "PieKits"), "Registros Filtrados: 1");

    eligeKit(*f, "PAQ01 - Paquete despensa básica");
    EXPECT_EQ(control<QTabWidget>(*f, "Paginas")->currentWidget()->objectName(), "Composicion");
    EXPECT_EQ(claves(*f), (QStringList{"1001", "1002", "1005", "1006", "1012"}));
    // 24.50 + 31.00 + 27.00 + 35.00 + 3 x 6.00
    EXPECT_EQ(rotulo(*f, "TotalKit"), "Total= $135.50");

    eligeComponente(*f, "1001");
    toca(*f, "BotonBorrar");
    enter(*f, "ClaveProducto", "7501055000197"); // código de barra del 2001
    enter(*f, "ClaveProducto", "2001");          // otra vez: suma, no se repite
    EXPECT_EQ(claves(*f), (QStringList{"1002", "1005", "1006", "1012", "2001"}));
    Mensajes::respondeDecimal(2.5);
    toca(*f, "BotonCantidad");
    for (int i = 0; i < 4; ++i)
        toca(*f, "BotonSubir");
    // Por la línea: un producto que ya está suma uno.
    tocaLinea(*f, "Granos y Semillas");
    tocaRenglon(*f, "ProductosDisponibles", ModeloProductos::RolClave, "1002");
    EXPECT_EQ(claves(*f), (QStringList{"2001", "1002", "1005", "1006", "1012"}));
    EXPECT_EQ(renglones(*f, "KitDetalles", RolDatoDerecha),
              (QStringList{"$32.00", "$62.00", "$27.00", "$35.00", "$18.00"}));
    EXPECT_EQ(rotulo(*f, "TotalKit"), "Total= $174.00");

    Mensajes::respondeOpcion(2);
    toca(*f, "BotonAlmacenar");
    EXPECT_EQ(Mensajes::ultimos(), (QStringList{"Cantidad de 2001 - Refresco de cola 600 ml",
                                                "Seleccione el Tipo de Operación"}));
    EXPECT_EQ(almacenado(44), "1.2001x2.5 2.1002x2.0 3.1005x1.0 4.1006x1.0 5.1012x3.0 ");
    EXPECT_EQ(c.cuenta("AuditoriasSistema Where tipoAuditoria = 'Actualización' and "
                       "moduloSistema = 'Catálogos -> Kits' and datoNuevo like "
                       "'Kit: PAQ01%2001 x 2.5, 1002 x 2,%' and datoAnterior like '%1001 x 1,%'"),
              1);

    // Guardado, salir no pregunta; otra pantalla lo lee en el mismo orden.
    toca(*f, "BotonSalir");
    EXPECT_FALSE(f->isVisible());
    EXPECT_EQ(Mensajes::ultimos(), QStringList{});
    auto otra = abre();
    eligeKit(*otra, "PAQ01 - Paquete despensa básica");
    EXPECT_EQ(claves(*otra), (QStringList{"2001", "1002", "1005", "1006", "1012"}));
    EXPECT_EQ(rotulo(*otra, "TotalKit"), "Total= $174.00");
}

TEST_F(KitsTest, LoVacioSeRechazaYUnKitNoSeOfreceComoComponente) {
    auto f = abre();
    toca(*f, "BotonAlmacenar");
    EXPECT_EQ(Mensajes::ultimos(), QStringList{"Debe Seleccionar un KIT"});

    eligeKit(*f, "PAQ02 - Paquete botana y refresco");
    for (const QString& clave : claves(*f)) {
        eligeComponente(*f, clave);
        toca(*f, "BotonBorrar");
    }
    EXPECT_EQ(rotulo(*f, "TotalKit"), "Total= $0.00");
    toca(*f, "BotonAlmacenar");
    EXPECT_EQ(Mensajes::ultimos(), QStringList{"No existen Insumos/Productos por Asignar"});
    EXPECT_EQ(almacenado(45), "1.2002x1.0 2.3001x2.0 3.3002x1.0 ");

    // Ni por su línea, ni por búsqueda, ni por su clave.
    tocaLinea(*f, "Paquetes");
    enter(*f, "BuscarProducto", "paquete");
    enter(*f, "ClaveProducto", "PAQ01");
    EXPECT_EQ(Mensajes::ultimos(),
              (QStringList{kSinRegistros, kSinRegistros,
                           "No se localizaron Productos con el identificador: PAQ01"}));
    tocaLinea(*f, "Refrescos");
    EXPECT_EQ(renglones(*f, "ProductosDisponibles", ModeloProductos::RolClave),
              (QStringList{"2002", "2001", "2004", "2003"}));

    // Con cambios sin almacenar salir pregunta; "No" se queda.
    Mensajes::respondeSiguiente(cajaplex::Respuesta::No);
    toca(*f, "BotonSalir");
    EXPECT_TRUE(f->isVisible());
    Mensajes::respondeSiguiente(cajaplex::Respuesta::Si);
    f->close();
    EXPECT_FALSE(f->isVisible());
    EXPECT_EQ(Mensajes::ultimos(), (QStringList{TKitsF::preguntaSalir(), TKitsF::preguntaSalir()}));
    EXPECT_TRUE(TKitsF::preguntaSalir().endsWith(" Aún así desea salir?"));
}

TEST_F(KitsTest, ComponenteConOtraClaveDejaDeListarse) {
    c.exige("Update Productos Set clave = '1002-B' Where empresaID = 1 and id = 2");
    auto f = abre();
    eligeKit(*f, "PAQ01 - Paquete despensa básica");
    EXPECT_EQ(claves(*f), (QStringList{"1001", "1005", "1006", "1012"}));
    EXPECT_EQ(rotulo(*f, "TotalKit"), "Total= $104.50");
}

TEST_F(KitsTest, UnaFallaAlAlmacenarConservaLaListaParaReintentar) {
    auto f = abreConCambioPendiente();

    servicio.detiene();
    Mensajes::respondeOpcion(2);
    toca(*f, "BotonAlmacenar");
    // Sin servicio falla ya la revisión de la estación (una lectura).
    EXPECT_EQ(Mensajes::ultimos(), (QStringList{"Seleccione el Tipo de Operación",
                                                "Error al obtener los datos, Intente de nuevo"}));
    EXPECT_EQ(claves(*f), (QStringList{"2002", "3001"}));

    servicio.reinicia();
    ModuloDeDatos.ConexionBD.configura(QStringLiteral("127.0.0.1"), servicio.puerto(),
                                       QString::fromStdString(kUsuarioDemo),
                                       QString::fromStdString(kUsuarioDemo));
    c = servicio.cliente();
    EXPECT_EQ(almacenado(45), "1.2002x1.0 2.3001x2.0 3.3002x1.0 ");
    Mensajes::respondeOpcion(2);
    toca(*f, "BotonAlmacenar");
    EXPECT_EQ(almacenado(45), "1.2002x1.0 2.3001x2.0 ");
}

// Otra estación eliminó el kit mientras se componía: se dice claro y no se guarda nada (ni
// renglones huérfanos de la composición ni bitácora).
TEST_F(KitsTest, AlmacenarUnKitQueOtraEstacionEliminoNoGuardaNada) {
    auto f = abreConCambioPendiente();

    c.exige("Delete From ProductosPaquetes Where empresaID = 1 and id = 45"); // otra estación
    c.exige("Delete From Productos Where empresaID = 1 and id = 45");
    const long long bitacora = c.cuenta("AuditoriasSistema");
    Mensajes::respondeOpcion(2);
    toca(*f, "BotonAlmacenar");
    EXPECT_EQ(Mensajes::ultimos(), (QStringList{"Seleccione el Tipo de Operación",
                                                QString::fromUtf8(MensajeKitEliminado)}));
    EXPECT_EQ(almacenado(45), "");
    EXPECT_EQ(c.cuenta("AuditoriasSistema"), bitacora);
    EXPECT_EQ(claves(*f), (QStringList{"2002", "3001"})); // la lista de trabajo se queda
}

// Como el editor de productos y el monedero: con estaciones dadas de alta, solo ellas guardan.
TEST_F(KitsTest, SoloUnaEstacionAutorizadaAlmacena) {
    auto f = abreConCambioPendiente();
    sesion_.DispositivoID = QStringLiteral("CAJA-9");

    c.exige("Insert Into DispositivosRED (ReferenciaID) Values ('CAJA-1')");
    Mensajes::respondeOpcion(2);
    toca(*f, "BotonAlmacenar");
    EXPECT_EQ(Mensajes::ultimos(), (QStringList{"Seleccione el Tipo de Operación",
                                                "Dispositivo NO Autorizado: CAJA-9"}));
    EXPECT_EQ(almacenado(45), "1.2002x1.0 2.3001x2.0 3.3002x1.0 ");

    c.exige("Insert Into DispositivosRED (ReferenciaID) Values ('CAJA-9')");
    Mensajes::respondeOpcion(2);
    toca(*f, "BotonAlmacenar");
    EXPECT_EQ(Mensajes::ultimos(), QStringList{"Seleccione el Tipo de Operación"});
    EXPECT_EQ(almacenado(45), "1.2002x1.0 2.3001x2.0 ");
}

} // namespace
} // namespace cajaplex
