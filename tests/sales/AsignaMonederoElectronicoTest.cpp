// Asignación del monedero electrónico por línea contra el servicio real de demostración: las
// revisiones en orden, el 0 % que apaga la bonificación, todas las líneas (también inactivos) y
// la estación no autorizada.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QTableView>
#include <QTest>
#include <QTreeWidget>

#include "pantallas/Mensajes.h"
#include "pantallas/Sonidos.h"
#include "sales/AsignaMonederoElectronico.h"
#include "tests/fixtures/PruebaPantallas.h"

namespace cajaplex {
namespace {

using namespace prueba;

class AsignaMonederoElectronicoTest : public ConPantallas {
protected:
    std::unique_ptr<TAsignaMonederoElectronicoF> abre() {
        sesion_ = sesion(QStringLiteral("admin"), 1);
        auto f = std::make_unique<TAsignaMonederoElectronicoF>(sesion_);
        f->resize(1366, 768);
        f->show();
        esperaLeyenda(*f);
        Mensajes::ultimos();
        Sonidos::reproducidos();
        return f;
    }

    static QString pagina(const QWidget& f) {
        return control<QStackedWidget>(f, "Paginas")->currentWidget()->objectName();
    }

    static void siguiente(const QWidget& f) {
        QTest::mouseClick(control<QPushButton>(f, "GrupoBotonSiguiente"), Qt::LeftButton);
        esperaLeyenda(f);
    }

    static void parametros(const QWidget& f, const QString& linea, const QString& porcentaje) {
        auto* arbol = control<QTreeWidget>(f, "Lineas");
        QTreeWidgetItem* item =
            arbol->findItems(linea, Qt::MatchExactly | Qt::MatchRecursive).value(0);
        ASSERT_NE(item, nullptr) << linea.toStdString();
        arbol->scrollToItem(item);
        QTest::mouseClick(arbol->viewport(), Qt::LeftButton, {},
                          arbol->visualItemRect(item).center());
        control<QLineEdit>(f, "PorcentajeMonedero")->setText(porcentaje);
    }

    std::string bonificaciones(const std::string& condicion) {
        return c
            .valor("Select group_concat(clave || ':' || ifnull(bonificaPuntos, 'n') || '/' || "
                   "ifnull(porcentajeBonificacion, 'n'), ';') From Productos Where " +
                   condicion)
            .get<std::string>();
    }

    Sesion sesion_;
};

TEST_F(AsignaMonederoElectronicoTest, RevisaEnOrdenYConCeroApagaLaBonificacionDeLaLinea) {
    c.exige("Insert Into Lineas (empresaID, linea, padre) Values (1, 'Vacía', 0)");
    const std::string otrasLineas = bonificaciones("not (empresaID = 1 and linea = 4)");
    auto f = abre();
    EXPECT_EQ(f->windowTitle(), "Incremento de Precios");
    EXPECT_EQ(control<QLineEdit>(*f, "PorcentajeMonedero")->text(), "0.00");

    siguiente(*f);
    parametros(*f, "Lácteos y Salchichonería", QString());
    siguiente(*f);
    parametros(*f, "Vacía", QStringLiteral("0.00"));
    siguiente(*f);
    EXPECT_EQ(Mensajes::ultimos(),
              (QStringList{"Debe seleccionar una línea",
                           "Debe seleccionar un porcentaje de monedero electrónico",
                           "No hay productos para incrementar monedero electrónico"}));
    EXPECT_EQ(Sonidos::reproducidos(),
              (QList<Sonido>{Sonido::Error, Sonido::Error, Sonido::Click, Sonido::Error}));
    EXPECT_EQ(pagina(*f), "ParametrosMonedero");

    parametros(*f, "Lácteos y Salchichonería", QStringLiteral("0"));
    siguiente(*f);
    ASSERT_EQ(pagina(*f), "ProductosMonedero");
    auto* tabla = control<QTableView>(*f, "Productos");
    const QAbstractItemModel* modelo = tabla->model();
    QStringList columnas;
    for (int i = 0; i < modelo->columnCount(); ++i)
        columnas << modelo->headerData(i, Qt::Horizontal).toString();
    EXPECT_EQ(columnas, (QStringList{"Clave", "Descripción", "Unidad", "Porcentaje"}));
    EXPECT_EQ(tabla->columnWidth(0), 80);
    EXPECT_EQ(tabla->columnWidth(1), 250);
    EXPECT_EQ(tabla->columnWidth(2), 100);
    EXPECT_EQ(modelo->rowCount(), 5);
    EXPECT_EQ(control<QLabel>(*f, "PieProductos")->text(), "Total Productos: 5");
    const QModelIndex huevo = modelo
                                  ->match(modelo->index(0, 0), Qt::DisplayRole,
                                          QStringLiteral("4002"), 1, Qt::MatchExactly)
                                  .value(0);
    ASSERT_TRUE(huevo.isValid());
    EXPECT_EQ(modelo->index(huevo.row(), 3).data().toString(), "2.00%");
    EXPECT_EQ(modelo->index(huevo.row(), 3).data(Qt::UserRole).toDouble(), 2.0);

    Mensajes::respondeSiguiente(cajaplex::Respuesta::Aceptar);
    siguiente(*f);
    EXPECT_EQ(Mensajes::ultimos(),
              (QStringList{"¿Desea Almacenar los Cambios?", "Proceso finalizado con éxito"}));
    EXPECT_EQ(pagina(*f), "ParametrosMonedero");
    // Ambas columnas en 0, no un 0 % con la bonificación encendida.
    EXPECT_EQ(c.cuenta("Productos Where empresaID = 1 and linea = 4"), 5);
    EXPECT_EQ(c.cuenta("Productos Where empresaID = 1 and linea = 4 and bonificaPuntos = 0 and "
                       "porcentajeBonificacion = 0"),
              5);
    EXPECT_EQ(bonificaciones("not (empresaID = 1 and linea = 4)"), otrasLineas);
    EXPECT_EQ(c.cuenta("AuditoriasSistema Where empresaID = 1 and tipoAuditoria = "
                       "'Actualización' and moduloSistema = 'Catálogos -> Asigna Monedero "
                       "Electrónico' and datoNuevo = 'Línea: Lácteos y Salchichonería, "
                       "Porcentaje de Monedero Electrónico: 0.00'"),
              1);
}

TEST_F(AsignaMonederoElectronicoTest, TodasLasLineasIncluyeInactivosSoloEnUnaEstacionAutorizada) {
    c.exige("Update Productos Set activo = 0 Where empresaID = 1 and clave = '1001'");
    c.exige("Insert Into DispositivosRED (ReferenciaID, descripcion) Values ('OTRA-CAJA', 'Caja')");
    const std::string otraEmpresa = bonificaciones("empresaID <> 1");
    const std::string antes = bonificaciones("empresaID = 1");
    auto f = abre();
    f->ponDispositivo(QStringLiteral("CAJA-3"));

    parametros(*f, "TODAS LAS LÍNEAS", QStringLiteral("3.5"));
    siguiente(*f);
    ASSERT_EQ(pagina(*f), "ProductosMonedero");
    EXPECT_EQ(control<QTableView>(*f, "Productos")->model()->rowCount(),
              c.cuenta("Productos Where empresaID = 1 and activo = 1"));

    Mensajes::respondeSiguiente(cajaplex::Respuesta::Aceptar);
    Mensajes::ultimos();
    siguiente(*f);
    EXPECT_EQ(Mensajes::ultimos(),
              (QStringList{"¿Desea Almacenar los Cambios?", "Dispositivo NO Autorizado: CAJA-3"}));
    EXPECT_EQ(bonificaciones("empresaID = 1"), antes);
    EXPECT_EQ(pagina(*f), "ProductosMonedero");

    c.exige("Insert Into DispositivosRED (ReferenciaID) Values ('CAJA-3')");
    Mensajes::respondeSiguiente(cajaplex::Respuesta::Aceptar);
    siguiente(*f);
    EXPECT_EQ(Mensajes::ultimos().last(), "Proceso finalizado con éxito");
    EXPECT_EQ(c.cuenta("Productos Where empresaID = 1 and not (bonificaPuntos = 1 and "
                       "porcentajeBonificacion = 3.5)"),
              0);
    EXPECT_EQ(c.cuenta("Productos Where empresaID = 1 and clave = '1001' and bonificaPuntos = 1"),
              1);
    EXPECT_EQ(bonificaciones("empresaID <> 1"), otraEmpresa);
}

} // namespace
} // namespace cajaplex
