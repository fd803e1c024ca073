// Utilerías de productos contra el servicio real de demostración: el menú, el incremento de
// precios por línea o de toda la empresa y el valor de inventario con su exportación.
#include <gtest/gtest.h>

#include <array>
#include <map>
#include <memory>
#include <string>

#include <QFile>
#include <QFont>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProcess>
#include <QPushButton>
#include <QStackedWidget>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>

#include "catalog/CatalogoProductos.h"
#include "catalog/IncrementoPrecios.h"
#include "catalog/ModulosCatalogo.h"
#include "catalog/Productos.h"
#include "catalog/UtileriasProductos.h"
#include "catalog/ValorInventario.h"
#include "pantallas/Mensajes.h"
#include "pantallas/Sonidos.h"
#include "sales/AsignaMonederoElectronico.h"
#include "sales/ModulosVentas.h"
#include "tests/fixtures/PruebaPantallas.h"

namespace cajaplex {
namespace {

using namespace prueba;
using Precios = std::array<double, 6>; // costo y los cinco precios

class UtileriasProductosTest : public ConPantallas {
protected:
    template <typename T> std::unique_ptr<T> abre() {
        sesion_ = sesion(QStringLiteral("admin"), 1);
        auto f = std::make_unique<T>(sesion_);
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

    static void eligeLinea(const QWidget& f, const QString& texto) {
        auto* arbol = control<QTreeWidget>(f, "Lineas");
        QTreeWidgetItem* item =
            arbol->findItems(texto, Qt::MatchExactly | Qt::MatchRecursive).value(0);
        ASSERT_NE(item, nullptr) << texto.toStdString();
        arbol->scrollToItem(item);
        QTest::mouseClick(arbol->viewport(), Qt::LeftButton, {},
                          arbol->visualItemRect(item).center());
    }

    static void eligeReferencia(const QWidget& f, int fila) {
        auto* lista = control<QListWidget>(f, "ValoresReferencia");
        QTest::mouseClick(lista->viewport(), Qt::LeftButton, {},
                          lista->visualItemRect(lista->item(fila)).center());
    }

    static void porcentaje(const QWidget& f, int nivel, const QString& texto) {
        control<QLineEdit>(f, ("PorcentajePrecio" + std::to_string(nivel)).c_str())->setText(texto);
    }

    // Lo que la tabla muestra o guarda (Qt::UserRole) en una celda.
    static QVariant celda(const QWidget& f, const char* tabla, int renglon, int columna,
                          int rol = Qt::DisplayRole) {
        return control<QTableView>(f, tabla)->model()->index(renglon, columna).data(rol);
    }

    static int renglones(const QWidget& f, const char* tabla) {
        return control<QTableView>(f, tabla)->model()->rowCount();
    }

    // Los cinco precios nuevos de la vista previa, por clave.
    static std::map<QString, std::array<double, 5>> vistaPrevia(const QWidget& f) {
        std::map<QString, std::array<double, 5>> nuevos;
        for (int r = 0; r < renglones(f, "Productos"); ++r)
            for (int i = 0; i < 5; ++i)
                nuevos[celda(f, "Productos", r, 0).toString()][static_cast<size_t>(i)] =
                    celda(f, "Productos", r, 5 + 2 * i, Qt::UserRole).toDouble();
        return nuevos;
    }

    Precios precios(long long empresa, const std::string& clave) {
        const Json f = c.exige("Select pCompra, precio, precio2, precio3, precio4, precio5 From "
                               "Productos Where empresaID = :e and clave = :c",
                               {{"e", entero(empresa)}, {"c", texto(clave)}})
                           .filas()
                           .at(0);
        Precios p{};
        for (size_t i = 0; i < p.size(); ++i)
            p[i] = f.at(i).get<double>();
        return p;
    }

    // Todos los precios fuera de un alcance, para ver que nada más cambió.
    std::string preciosFuera(const std::string& condicion) {
        return c
            .valor("Select group_concat(empresaID || clave || ':' || precio || ',' || precio2 || "
                   "',' || precio3 || ',' || precio4 || ',' || precio5, ';') From Productos "
                   "Where not (" +
                   condicion + ")")
            .get<std::string>();
    }

    Sesion sesion_;
};

TEST_F(UtileriasProductosTest, MenuConSusUtileriasEnOrdenYCadaUnaAbreSuPantalla) {
    registraModulosCatalogo();
    registraModulosVentas();
    auto f = abre<TUtileriasProductosF>();
    QStringList titulos;
    for (const QPushButton* b : f->findChildren<QPushButton*>())
        if (b->objectName().startsWith(QStringLiteral("Boton"))) titulos << b->text();
    EXPECT_EQ(titulos,
              (QStringList{"Incremento de Precios", "Kardex de Movimientos", "Valor de Inventario",
                           "Exportar Catálogo", "Asigna Monedero Electrónico"}));

    QWidget* abierta = nullptr;
    QString titulo;
    QObject::connect(f.get(), &TUtileriasProductosF::abreModulo, [&](QWidget* w, const QString& t) {
        abierta = w;
        titulo = t;
    });
    auto oprime = [&](const char* boton) {
        QTest::mouseClick(control<QPushButton>(*f, boton), Qt::LeftButton);
        std::unique_ptr<QWidget> pantalla(abierta);
        abierta = nullptr;
        return pantalla;
    };
    EXPECT_NE(dynamic_cast<TIncrementoPreciosF*>(oprime("BotonIncrementoPrecios").get()), nullptr);
    EXPECT_NE(dynamic_cast<TProductosF*>(oprime("BotonKardexMovimientos").get()), nullptr);
    EXPECT_NE(dynamic_cast<TValorInventarioF*>(oprime("BotonValorInventario").get()), nullptr);
    auto monedero = oprime("BotonAsignaMonedero");
    EXPECT_NE(dynamic_cast<TAsignaMonederoElectronicoF*>(monedero.get()), nullptr);
    EXPECT_EQ(titulo, "Asigna Monedero Electrónico");
    EXPECT_EQ(monedero->windowTitle(), "Incremento de Precios");
}

TEST_F(UtileriasProductosTest, IncrementoDesdeCostoRepreciaLaLineaConInactivosYAuditoria) {
    c.exige("Update Productos Set activo = 0 Where empresaID = 1 and clave = '1003'");
    // La otra empresa con un producto en una línea del mismo ID: no debe tocarse.
    c.exige("Insert Into Productos (empresaID, clave, producto, unidad, linea, pCompra, precio, "
            "precio2, precio3, precio4, precio5) Values (2, 'AJ6', 'Ajeno', 11, 6, 10, 20, 20, 20, "
            "20, 20)");
    const std::string fuera = preciosFuera("empresaID = 1 and linea = 6");
    const Precios lenteja = precios(1, "1004");
    auto f = abre<TIncrementoPreciosF>();

    siguiente(*f);
    eligeLinea(*f, "Granos y Semillas");
    siguiente(*f);
    siguiente(*f);
    eligeReferencia(*f, 0);
    siguiente(*f);
    porcentaje(*f, 2, QString());
    siguiente(*f);
    EXPECT_EQ(Mensajes::ultimos(),
              (QStringList{"Debe seleccionar una línea", "Debe seleccionar un valor de referencia",
                           "Debe introducir al menos un porcentaje de "
                           "incremento"}));
    EXPECT_EQ(Sonidos::reproducidos(), (QList<Sonido>{Sonido::Error, Sonido::Click, Sonido::Error,
                                                      Sonido::Click, Sonido::Error}));
    EXPECT_EQ(pagina(*f), "EstablecePorcentajes");

    porcentaje(*f, 1, QStringLiteral("10"));
    porcentaje(*f, 4, QStringLiteral("2.5"));
    siguiente(*f);
    ASSERT_EQ(pagina(*f), "VistaPrevia");
    const QAbstractItemModel* tabla = control<QTableView>(*f, "Productos")->model();
    QStringList columnas;
    for (int i = 0; i < tabla->columnCount(); ++i)
        columnas << tabla->headerData(i, Qt::Horizontal).toString();
    EXPECT_EQ(columnas, (QStringList{"Clave", "Descripción", "Unidad", "Costo", "Precio 1",
                                     "Nuevo 1", "Precio 2", "Nuevo 2", "Precio 3", "Nuevo 3",
                                     "Precio 4", "Nuevo 4", "Precio 5", "Nuevo 5"}));
    const auto nuevos = vistaPrevia(*f);
    ASSERT_EQ(nuevos.size(), 3u); // el inactivo no se lista
    EXPECT_EQ(control<QLabel>(*f, "PieProductos")->text(), "Total Productos: 3");
    EXPECT_EQ(celda(*f, "Productos", 2, 0).toString(), "1004");
    EXPECT_EQ(celda(*f, "Productos", 2, 5).toString(), "$19.80");
    // Los precios nuevos resaltan junto a los de hoy.
    EXPECT_TRUE(qvariant_cast<QFont>(celda(*f, "Productos", 2, 5, Qt::FontRole)).bold());
    EXPECT_FALSE(qvariant_cast<QFont>(celda(*f, "Productos", 2, 4, Qt::FontRole)).bold());

    Mensajes::respondeSiguiente(cajaplex::Respuesta::Aceptar);
    siguiente(*f);
    EXPECT_EQ(Mensajes::ultimos(),
              (QStringList{"¿Desea Almacenar los Cambios?", "Proceso finalizado con Éxito"}));
    EXPECT_EQ(pagina(*f), "SeleccionaLinea");

    for (const auto& [clave, esperados] : nuevos) {
        const Precios p = precios(1, clave.toStdString());
        for (size_t i = 0; i < esperados.size(); ++i)
            EXPECT_EQ(p[i + 1], esperados[i]) << clave.toStdString() << " nivel " << i + 1;
    }
    // Nivel 1: costo más 10 % sin importar el precio anterior; los niveles en 0 o vacíos quedan
    // en el costo.
    const Precios l = precios(1, "1004");
    EXPECT_DOUBLE_EQ(l[1], lenteja[0] * 1.10);
    EXPECT_EQ(l[2], lenteja[0]);
    EXPECT_EQ(l[3], lenteja[0]);
    EXPECT_DOUBLE_EQ(l[4], lenteja[0] * 1.025);
    const Precios inactivo = precios(1, "1003");
    EXPECT_DOUBLE_EQ(inactivo[1], inactivo[0] * 1.10);
    EXPECT_EQ(inactivo[5], inactivo[0]);
    EXPECT_EQ(preciosFuera("empresaID = 1 and linea = 6"), fuera);
    EXPECT_EQ(c.cuenta("AuditoriasSistema Where empresaID = 1 and tipoAuditoria = "
                       "'Actualización' and moduloSistema = 'Catálogos -> Incremento de Precios' "
                       "and datoNuevo = 'Línea: Granos y Semillas, Referencia: COSTO, "
                       "Porcentajes: 10.00, 0.00, 0.00, 2.50, 0.00'"),
              1);
}

TEST_F(UtileriasProductosTest, TodosLosProductosRepreciaLaEmpresaYUnaLineaVaciaSeRechaza) {
    c.exige("Insert Into Lineas (empresaID, linea, padre) Values (1, 'Vacía', 0)");
    c.exige("Update Productos Set activo = 0 Where empresaID = 1 and clave = '1005'");
    const std::string otraEmpresa = preciosFuera("empresaID = 1");
    auto f = abre<TIncrementoPreciosF>();

    eligeLinea(*f, "Vacía");
    siguiente(*f);
    eligeReferencia(*f, 1);
    siguiente(*f);
    porcentaje(*f, 5, QStringLiteral("5"));
    siguiente(*f);
    EXPECT_EQ(Mensajes::ultimos(), QStringList{"No hay productos para incrementar precios"});
    EXPECT_EQ(pagina(*f), "EstablecePorcentajes");

    QTest::mouseClick(control<QPushButton>(*f, "GrupoBotonAnterior"), Qt::LeftButton);
    QTest::mouseClick(control<QPushButton>(*f, "GrupoBotonAnterior"), Qt::LeftButton);
    eligeLinea(*f, "TODOS LOS PRODUCTOS");
    siguiente(*f);
    siguiente(*f); // la referencia y los porcentajes siguen elegidos
    siguiente(*f);
    ASSERT_EQ(pagina(*f), "VistaPrevia");
    EXPECT_EQ(static_cast<long long>(vistaPrevia(*f).size()),
              c.cuenta("Productos Where empresaID = 1 and activo = 1"));

    Mensajes::respondeSiguiente(cajaplex::Respuesta::Cancelar);
    siguiente(*f);
    const long long sinCambio = c.cuenta("Productos Where empresaID = 1 and precio5 = precio");
    EXPECT_EQ(sinCambio, 0);

    Mensajes::respondeSiguiente(cajaplex::Respuesta::Aceptar);
    siguiente(*f);
    EXPECT_EQ(Mensajes::ultimos().last(), "Proceso finalizado con Éxito");
    // Desde "PRECIO 1": los niveles en 0 quedan igual al precio 1 y el 5 sube 5 %, incluso el
    // producto inactivo.
    EXPECT_EQ(c.cuenta("Productos Where empresaID = 1 and (precio2 <> precio or precio3 <> precio "
                       "or precio4 <> precio or abs(precio5 - precio * 1.05) > 1e-9)"),
              0);
    EXPECT_EQ(preciosFuera("empresaID = 1"), otraEmpresa);
}

TEST_F(UtileriasProductosTest, ValorInventarioSoloConExistenciaYCostoConTotalesYExportacion) {
    c.exige("Update Productos Set pCompra = 0 Where empresaID = 1 and clave = '1001'");
    c.exige("Update Productos Set existencia = 0 Where empresaID = 1 and clave = '1005'");
    c.exige("Update Productos Set existencia = -3 Where empresaID = 1 and clave = '1002'");
    auto f = abre<TValorInventarioF>();
    EXPECT_TRUE(Mensajes::ultimos().isEmpty());

    const int listados = renglones(*f, "ListaValorInventario");
    QStringList claves;
    for (int r = 0; r < listados; ++r)
        claves << celda(*f, "ListaValorInventario", r, 0).toString();
    for (const char* fuera : {"1001", "1002", "1005", "9001", "PAQ01", "E01"})
        EXPECT_FALSE(claves.contains(QString::fromLatin1(fuera))) << fuera;
    EXPECT_TRUE(claves.contains("1003"));
    const long long productos = c.cuenta("Productos Where empresaID = 1 and existencia > 0 and "
                                         "pCompra > 0");
    EXPECT_EQ(listados, productos);
    EXPECT_EQ(control<QLabel>(*f, "PieValorInventario")->text(),
              QStringLiteral("Total Productos: ") + QString::number(productos));

    // Cada total es la suma de su columna, y el de costo coincide con la base.
    auto total = [&](int columna) {
        return celda(*f, "TotalesValorInventario", 0, columna, Qt::UserRole).toDouble();
    };
    for (int columna = 6; columna < 12; ++columna) {
        double suma = 0.0;
        for (int r = 0; r < listados; ++r)
            suma += celda(*f, "ListaValorInventario", r, columna, Qt::UserRole).toDouble();
        EXPECT_NEAR(total(columna), suma, 1e-6);
    }
    EXPECT_EQ(celda(*f, "TotalesValorInventario", 0, 1).toString(), "TOTALES");
    EXPECT_EQ(celda(*f, "TotalesValorInventario", 0, 6).toString(), textoPrecio(total(6)));
    EXPECT_NEAR(total(6),
                c.valor("Select sum(pCompra * existencia) From Productos Where empresaID = 1 "
                        "and existencia > 0 and pCompra > 0")
                    .get<double>(),
                1e-6);
    EXPECT_NEAR(total(11),
                c.valor("Select sum(precio5 * existencia) From Productos Where empresaID = 1 "
                        "and existencia > 0 and pCompra > 0")
                    .get<double>(),
                1e-6);

    QTemporaryDir carpeta;
    const QString archivo = carpeta.filePath(QStringLiteral("valor.xlsx"));
    ASSERT_TRUE(f->exportaA(archivo));
    EXPECT_EQ(Mensajes::ultimos(), QStringList{"Archivo generado: " + archivo});
    auto descomprime = [&](const char* parte) {
        QProcess unzip;
        unzip.start(QStringLiteral("unzip"), {QStringLiteral("-p"), archivo, parte});
        EXPECT_TRUE(unzip.waitForFinished(10000));
        EXPECT_EQ(unzip.exitCode(), 0) << parte;
        return QString::fromUtf8(unzip.readAllStandardOutput());
    };
    // Encabezado, un renglón por producto y los totales.
    EXPECT_EQ(descomprime("xl/worksheets/sheet1.xml").count(QStringLiteral("<row ")),
              productos + 2);
    const QString textos = descomprime("xl/sharedStrings.xml");
    EXPECT_TRUE(textos.contains("Valor Precio 5"));
    EXPECT_TRUE(textos.contains("TOTALES"));
    EXPECT_TRUE(textos.contains("Frijol pinto 1 kg"));

    const QString imposible = carpeta.filePath(QStringLiteral("no/existe/valor.xlsx"));
    EXPECT_FALSE(f->exportaA(imposible));
    EXPECT_EQ(Mensajes::ultimos(), QStringList{"No se pudo generar el archivo: " + imposible});
    EXPECT_EQ(Sonidos::reproducidos(), QList<Sonido>{Sonido::Error});

    // Servicio caído: el mensaje de lectura y nada que exportar.
    servicio.detiene();
    TValorInventarioF otra(sesion_);
    otra.show();
    esperaLeyenda(otra);
    EXPECT_EQ(Mensajes::ultimos(), QStringList{MensajeErrorLectura});
    EXPECT_EQ(renglones(otra, "ListaValorInventario"), 0);
    EXPECT_EQ(renglones(otra, "TotalesValorInventario"), 0);
    EXPECT_FALSE(control<QPushButton>(otra, "BotonExportar")->isEnabled());
}

} // namespace
} // namespace cajaplex
