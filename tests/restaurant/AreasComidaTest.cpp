// El catálogo de áreas de comida contra el servicio real de demostración: los rechazos del árbol
// y del nodo en su orden, el borrado de nodos con comandas, la búsqueda entre áreas y los
// productos que quedan en un área.
#include <gtest/gtest.h>

#include <memory>

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>

#include "pantallas/Mensajes.h"
#include "pantallas/RolesRenglon.h"
#include "restaurant/AreasComida.h"
#include "tests/restaurant/PruebaRestaurante.h"

namespace cajaplex {
namespace {

using namespace prueba;

class AreasComidaTest : public ConRestaurante {
protected:
    // Elige una opción del menú del área y devuelve el último mensaje.
    QString opcion(const QWidget& f, const QString& area, int opcion, const QString& nombre = {}) {
        Mensajes::respondeOpcion(opcion);
        if (opcion <= 2) Mensajes::respondeTexto(nombre);
        tocaNodo(f, "AreasComida", area);
        esperaLeyenda(f);
        const QStringList mensajes = Mensajes::ultimos();
        return mensajes.isEmpty() ? QString() : mensajes.last();
    }

    // Almacena el nodo en edición; devuelve lo mostrado.
    static QStringList almacena(const QWidget& f) {
        Mensajes::ultimos();
        toca(f, "BotonSiguiente");
        esperaLeyenda(f);
        return Mensajes::ultimos();
    }
};

TEST_F(AreasComidaTest, ElArbolRechazaEnOrdenYCreaRenombraYBorra) {
    auto f = abre<TAreasComidaF>(QStringLiteral("admin"));
    EXPECT_EQ(opcion(*f, "Comedor", 3),
              "No puede Eliminar una Área de Comida con SubLíneas Asociadas.");
    EXPECT_EQ(opcion(*f, "Barra", 3), "No puede Eliminar una Área de Comida con Nodos.");
    EXPECT_EQ(opcion(*f, "Comedor", 0, QStringLiteral("   ")),
              "Debe introducir el Nombre del Nodo");
    EXPECT_EQ(valor("Select count(*) From AreasComida Where empresaID = 2"), "5");

    opcion(*f, "Comedor", 0, QStringLiteral("Patio"));
    opcion(*f, "Patio", 1, QStringLiteral("Bar O'Neill"));
    EXPECT_EQ(valor("Select B.area || '|' || A.area || '|' || B.usuarioID From AreasComida A, "
                    "AreasComida B Where B.padre = A.id and A.empresaID = 2 and A.padre = 0 "
                    "and A.area = 'Patio'"),
              "Bar O'Neill|Patio|1");
    opcion(*f, "Bar O'Neill", 2, QStringLiteral("Bar del Patio"));
    EXPECT_EQ(control<QTreeWidget>(*f, "AreasComida")
                  ->findItems("Bar del Patio", Qt::MatchExactly | Qt::MatchRecursive)
                  .size(),
              1);
    EXPECT_EQ(valor("Select count(*) From AreasComida Where area = 'Bar del Patio'"), "1");

    // Sin subáreas ni nodos se borra; el padre se puede borrar después.
    EXPECT_EQ(opcion(*f, "Bar del Patio", 3), "Opciones sobre Áreas de Comida");
    EXPECT_EQ(opcion(*f, "Patio", 3), "Opciones sobre Áreas de Comida");
    EXPECT_EQ(valor("Select count(*) From AreasComida Where empresaID = 2"), "5");
    EXPECT_EQ(valor("Select group_concat(tipoAuditoria, ',') From AuditoriasSistema Where "
                    "moduloSistema = 'Catálogos -> Áreas de Comida'"),
              "Inserción,Inserción,Actualización,Cancelación,Cancelación");
}

TEST_F(AreasComidaTest, LaUnicaAreaNoSeBorra) {
    c.exige("Delete From AreasComida Where empresaID = 2 and id <> 4");
    auto f = abre<TAreasComidaF>(QStringLiteral("admin"));
    EXPECT_EQ(opcion(*f, "Cocina", 3), "No puede Eliminar la única Área de Comida.");
    EXPECT_EQ(valor("Select count(*) From AreasComida Where empresaID = 2"), "1");
}

TEST_F(AreasComidaTest, NodoNuevoRechazaEnOrdenYSoloElAltaRevisaLaClave) {
    auto f = abre<TAreasComidaF>(QStringLiteral("admin"));
    opcion(*f, "Terraza", 5);
    ASSERT_EQ(pagina(*f), "SeleccionaNodoComida");
    EXPECT_EQ(renglones(*f, "NodosComida", RolPrimeraLinea),
              (QStringList{"7  MESA 7", "8  MESA 8", "9  MESA 9", "10  MESA 10"}));
    EXPECT_EQ(rotulo(*f, "PieNodosComida"), "Número de Registros: 4");

    toca(*f, "BotonProductoNuevo");
    ASSERT_EQ(pagina(*f), "AreasComidaEdita");
    EXPECT_EQ(rotulo(*f, "TituloNodo"), "Alta Nodo");
    // La propuesta cuenta los nodos de la empresa: 12 + 1.
    EXPECT_EQ(control<QLineEdit>(*f, "Clave")->text(), "13");
    EXPECT_EQ(control<QLineEdit>(*f, "Descripcion")->text(), "MESA 13");
    EXPECT_EQ(control<QLineEdit>(*f, "CantidadSinDecimal")->text(), "1");
    EXPECT_EQ(control<QComboBox>(*f, "ListaTiposNodo")->currentText(), "Redonda");
    EXPECT_TRUE(control<QPushButton>(*f, "Activo")->isChecked());

    escribe(*f, "Clave", "");
    EXPECT_EQ(almacena(*f), QStringList{"No especificó la Clave del Nodo de Comida"});
    escribe(*f, "Clave", "7");
    EXPECT_EQ(almacena(*f), QStringList{"Ya existe esa Clave del Nodo de Comida"});
    escribe(*f, "Clave", "T1");
    escribe(*f, "Descripcion", "");
    EXPECT_EQ(almacena(*f), QStringList{"No especificó la Descripción del Nodo de Comida"});
    escribe(*f, "Descripcion", "Mesa Jardín");
    escribe(*f, "CantidadSinDecimal", "");
    EXPECT_EQ(almacena(*f), QStringList{"No especificó el Número de Personas"});
    escribe(*f, "CantidadSinDecimal", "6");
    control<QComboBox>(*f, "ListaTiposNodo")->setCurrentIndex(-1);
    EXPECT_EQ(almacena(*f), QStringList{"No especificó el Tipo de Nodo"});
    control<QComboBox>(*f, "ListaTiposNodo")->setCurrentIndex(5);
    c.exige("Insert Into DispositivosRED (ReferenciaID, descripcion) Values ('CAJA-9', 'Caja')");
    EXPECT_EQ(almacena(*f), QStringList{"Dispositivo NO Autorizado: "});
    EXPECT_EQ(valor("Select count(*) From NodosComida Where clave = 'T1'"), "0");
    c.exige("Delete From DispositivosRED");

    EXPECT_TRUE(almacena(*f).isEmpty());
    EXPECT_EQ(pagina(*f), "SeleccionaNodoComida");
    EXPECT_EQ(valor("Select area || '|' || descripcion || '|' || numeroPersonas || '|' || tipo "
                    "|| '|' || activo || '|' || status From NodosComida Where clave = 'T1'"),
              "3|Mesa Jardín|6|5|1|0");
    EXPECT_EQ(rotulo(*f, "PieNodosComida"), "Número de Registros: 5");

    // El cambio no compara la clave con las demás.
    tocaRenglon(*f, "NodosComida", RolPrimeraLinea, "8  MESA 8");
    toca(*f, "BotonModificar");
    EXPECT_EQ(rotulo(*f, "TituloNodo"), "Modifica Nodo");
    EXPECT_EQ(control<QComboBox>(*f, "ListaTiposNodo")->currentText(), "Redonda");
    escribe(*f, "Clave", "7");
    control<QPushButton>(*f, "Activo")->setChecked(false);
    EXPECT_TRUE(almacena(*f).isEmpty());
    EXPECT_EQ(valor("Select count(*) From NodosComida Where empresaID = 2 and clave = '7' and "
                    "activo = 0"),
              "1");
    EXPECT_EQ(valor("Select group_concat(tipoAuditoria, ',') From AuditoriasSistema Where "
                    "moduloSistema = 'Catálogos -> Nodos de Comida'"),
              "Inserción,Actualización");
}

TEST_F(AreasComidaTest, UnNodoConComandasNoSeBorraYLaBusquedaCruzaAreas) {
    // Una comanda cancelada también cuenta.
    c.exige("Insert Into Comanda (empresaID, folio, nodoComida, vendedor, cancelada) Values "
            "(2, 50, 10, 3, 1)");
    auto f = abre<TAreasComidaF>(QStringLiteral("admin"));
    enter(*f, "BuscarNodoComida", QStringLiteral("mesa 1"));
    ASSERT_EQ(pagina(*f), "SeleccionaNodoComida");
    EXPECT_EQ(renglones(*f, "NodosComida", RolPrimeraLinea),
              (QStringList{"1  MESA 1", "10  MESA 10"}));

    auto borra = [&](const QString& renglon) {
        tocaRenglon(*f, "NodosComida", RolPrimeraLinea, renglon);
        Mensajes::respondeSiguiente(cajaplex::Respuesta::Si);
        toca(*f, "BotonBorrar");
        esperaLeyenda(*f);
        return Mensajes::ultimos().mid(1); // sin la pregunta
    };
    EXPECT_EQ(borra("10  MESA 10"),
              QStringList{"No puede eliminar un Nodo de Comida con Transacciones Registradas"});
    EXPECT_TRUE(borra("1  MESA 1").isEmpty());
    EXPECT_EQ(renglones(*f, "NodosComida", RolPrimeraLinea), QStringList{"10  MESA 10"});
    EXPECT_EQ(rotulo(*f, "PieNodosComida"), "Número de Registros: 1");
    EXPECT_EQ(valor("Select group_concat(id) From NodosComida Where id in (1, 10)"), "10");

    toca(*f, "BotonAnterior");
    enter(*f, "BuscarNodoComida", QStringLiteral("'; delete from NodosComida; --"));
    EXPECT_TRUE(renglones(*f, "NodosComida", RolPrimeraLinea).isEmpty());
    EXPECT_EQ(valor("Select count(*) From NodosComida Where empresaID = 2"), "11");
}

TEST_F(AreasComidaTest, ElAreaQuedaConExactamenteLosProductosMarcados) {
    auto f = abre<TAreasComidaF>(QStringLiteral("admin"));
    const std::string enBarra =
        valor("Select count(*) From Productos Where empresaID = 2 and areaComida = 5");
    ASSERT_NE(enBarra, "0");
    opcion(*f, "Barra", 4);
    ASSERT_EQ(pagina(*f), "SeleccionaProductos");
    EXPECT_EQ(rotulo(*f, "Titulo"), "Asocia Productos a Barra");
    EXPECT_EQ(rotulo(*f, "TotalAsignados"), QString::fromStdString("Total Asignados= " + enBarra));

    auto* arbol = control<QTreeWidget>(*f, "ArbolProductos");
    for (QTreeWidgetItemIterator i(arbol, QTreeWidgetItemIterator::Checked); *i; ++i)
        (*i)->setCheckState(0, Qt::Unchecked);
    Mensajes::ultimos();
    toca(*f, "GrupoBotonSiguiente");
    EXPECT_EQ(Mensajes::ultimos(), QStringList{"No hay Productos seleccionados"});
    EXPECT_EQ(valor("Select count(*) From Productos Where empresaID = 2 and areaComida = 5"),
              enBarra);

    // Uno que era de la barra y uno que era de la cocina.
    for (const char* producto : {"Café de olla", "Flan napolitano"})
        arbol->findItems(QString::fromUtf8(producto), Qt::MatchExactly | Qt::MatchRecursive)
            .first()
            ->setCheckState(0, Qt::Checked);
    EXPECT_EQ(rotulo(*f, "TotalAsignados"), "Total Asignados= 2");
    toca(*f, "GrupoBotonSiguiente");
    EXPECT_EQ(pagina(*f), "SeleccionaAreaComida");
    EXPECT_EQ(valor("Select group_concat(clave, ',') From (Select clave From Productos Where "
                    "empresaID = 2 and areaComida = 5 Order By clave)"),
              "C01,D01");
    EXPECT_EQ(valor("Select count(*) From AuditoriasSistema Where moduloSistema = "
                    "'Catálogos -> Áreas de Comida' and tipoAuditoria = 'Actualización'"),
              "1");
}

} // namespace
} // namespace cajaplex
