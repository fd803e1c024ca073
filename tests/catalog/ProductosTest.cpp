// Catálogo de Productos contra el servicio real de demostración: árbol de líneas y su menú,
// listados por línea y por búsqueda, filtro local, borrado de productos y kardex.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>

#include <QBuffer>
#include <QDateEdit>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QRegularExpression>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>

#include "catalog/AsignaFotoLinea.h"
#include "catalog/CatalogoProductos.h"
#include "catalog/Productos.h"
#include "pantallas/Mensajes.h"
#include "pantallas/RolesRenglon.h"
#include "pantallas/Sonidos.h"
#include "tests/fixtures/PruebaPantallas.h"

namespace cajaplex {
namespace {

using namespace prueba;

enum Opcion { CrearNodo, CrearSubNodo, RenombrarNodo, EliminarNodo, AsignarFoto, VerProductos };
const QString kOpciones = QStringLiteral("Opciones sobre Líneas");
const QString kNombreNodo = QStringLiteral("Introduzca el Nombre del Nodo");
const QString kSinRegistros = QStringLiteral("No hubo registros con esa información");

QByteArray png(int ancho, int alto) {
    QImage imagen(ancho, alto, QImage::Format_RGB32);
    imagen.fill(Qt::darkGreen);
    QByteArray bytes;
    QBuffer bufer(&bytes);
    bufer.open(QIODevice::WriteOnly);
    imagen.save(&bufer, "PNG");
    return bytes;
}

class ProductosTest : public ConPantallas {
protected:
    std::unique_ptr<TProductosF> abre(long long empresa = 1) {
        sesion_ = sesion(QStringLiteral("admin"), empresa);
        auto f = std::make_unique<TProductosF>(sesion_);
        f->resize(1200, 760);
        f->show();
        esperaLeyenda(*f);
        Mensajes::ultimos();
        Sonidos::reproducidos();
        return f;
    }

    static QTreeWidgetItem* nodo(const QWidget& f, const QString& texto) {
        return control<QTreeWidget>(f, "Lineas")
            ->findItems(texto, Qt::MatchExactly | Qt::MatchRecursive)
            .value(0);
    }

    // Toca el nodo y elige la opción del menú del árbol; si se da, contesta el nombre del nodo.
    static void opcion(const QWidget& f, const QString& texto, Opcion eleccion,
                       std::optional<QString> nombre = std::nullopt) {
        auto* arbol = control<QTreeWidget>(f, "Lineas");
        QTreeWidgetItem* item = nodo(f, texto);
        ASSERT_NE(item, nullptr) << texto.toStdString();
        arbol->scrollToItem(item);
        Mensajes::respondeOpcion(eleccion);
        if (nombre) Mensajes::respondeTexto(*nombre);
        QTest::mouseClick(arbol->viewport(), Qt::LeftButton, {},
                          arbol->visualItemRect(item).center());
        esperaLeyenda(f);
    }

    // El árbol como esquema: dos espacios por nivel.
    static QStringList esquema(const QWidget& f) {
        QStringList lineas;
        std::function<void(QTreeWidgetItem*, int)> recorre = [&](QTreeWidgetItem* i, int nivel) {
            lineas << QString(nivel * 2, QLatin1Char(' ')) + i->text(0);
            for (int h = 0; h < i->childCount(); ++h)
                recorre(i->child(h), nivel + 1);
        };
        auto* arbol = control<QTreeWidget>(f, "Lineas");
        for (int i = 0; i < arbol->topLevelItemCount(); ++i)
            recorre(arbol->topLevelItem(i), 0);
        return lineas;
    }

    static void busca(const QWidget& f, const QString& texto) {
        auto* campo = control<QLineEdit>(f, "BuscarProducto");
        campo->setText(texto);
        QTest::keyClick(campo, Qt::Key_Return);
        esperaLeyenda(f);
    }

    static QStringList listado(const QWidget& f, int rol) {
        const QAbstractItemModel* modelo = control<QListView>(f, "Productos")->model();
        QStringList valores;
        for (int i = 0; i < modelo->rowCount(); ++i)
            valores << modelo->index(i, 0).data(rol).toString();
        return valores;
    }

    static void elige(const QWidget& f, const QString& clave) {
        auto* vista = control<QListView>(f, "Productos");
        const auto fila = static_cast<int>(listado(f, ModeloProductos::RolClave).indexOf(clave));
        ASSERT_GE(fila, 0) << clave.toStdString();
        const QModelIndex indice = vista->model()->index(fila, 0);
        vista->scrollTo(indice);
        QTest::mouseClick(vista->viewport(), Qt::LeftButton, {},
                          vista->visualRect(indice).center());
    }

    static QString rotulo(const QWidget& f, const char* nombre) {
        return control<QLabel>(f, nombre)->text();
    }

    static QString pagina(const QWidget& f) {
        return control<QTabWidget>(f, "Paginas")->currentWidget()->objectName();
    }

    void producto(long long empresa, const std::string& clave, const std::string& descripcion,
                  double existencia, long long linea, long long unidad) {
        c.exige("Insert Into Productos (empresaID, clave, producto, existencia, linea, unidad, "
                "manejaInventarios, esPaquete, precio) Values (:e, :c, :d, :x, :l, :u, 1, 0, 10)",
                {{"e", entero(empresa)},
                 {"c", texto(clave)},
                 {"d", texto(descripcion)},
                 {"x", real(existencia)},
                 {"l", entero(linea)},
                 {"u", entero(unidad)}});
    }

    long long lineaID(long long empresa, const std::string& nombre) {
        return c
            .valor("Select ID From Lineas Where empresaID = :e and linea = :l",
                   {{"e", entero(empresa)}, {"l", texto(nombre)}})
            .get<long long>();
    }

    Sesion sesion_;
};

TEST_F(ProductosTest, ArbolDeVariosNivelesConSusMiniaturasYSinOtraEmpresa) {
    ASSERT_EQ(TProductosF::opcionesMenuArbol(),
              (QStringList{"Crear Nodo", "Crear SubNodo", "Renombrar Nodo", "Eliminar Nodo",
                           "Asignar Foto", "Ver Productos"}));
    datos.empresa(3, "Tres");
    // Llaves a propósito fuera de orden: un hijo con ID menor que su padre, y un huérfano.
    c.exige("Insert Into Lineas (id, empresaID, linea, padre) Values (70, 3, 'Ropa', 0), "
            "(60, 3, 'Caballero', 70), (50, 3, 'Camisas', 60), (72, 3, 'Dama', 70), "
            "(73, 3, 'Huérfana', 999)");
    c.exige("Insert Into Lineas (id, empresaID, linea, padre, miniatura) Values "
            "(71, 3, 'Calzado', 0, :m)",
            {{"m", parametro("blob", png(16, 16).toBase64().toStdString())}});

    auto f = abre(3);
    EXPECT_EQ(f->windowTitle(), "Catálogo de Productos");
    EXPECT_EQ(control<QTreeWidget>(*f, "Lineas")->headerItem()->text(0), "Líneas");
    EXPECT_EQ(esquema(*f),
              (QStringList{"Calzado", "Ropa", "  Caballero", "    Camisas", "  Dama", "Huérfana"}));
    EXPECT_EQ(nodo(*f, "Calzado")->data(0, TProductosF::RolImagenLinea), "miniatura");
    EXPECT_FALSE(nodo(*f, "Calzado")->icon(0).isNull());
    EXPECT_EQ(nodo(*f, "Camisas")->data(0, TProductosF::RolImagenLinea), "Lineas");
    EXPECT_EQ(nodo(*f, "Camisas")->data(0, TProductosF::RolPadre).toLongLong(), 60);
    EXPECT_TRUE(control<QPushButton>(*f, "CrearPrimeraLinea")->isHidden());
}

TEST_F(ProductosTest, EliminarNodoRevisaEnOrdenYSoloBorraUnaHojaVacia) {
    datos.empresa(3, "Tres");
    c.exige("Insert Into Lineas (empresaID, linea, padre) Values (3, 'Única', 0)");
    {
        auto f = abre(3);
        opcion(*f, "Única", EliminarNodo);
        EXPECT_EQ(Mensajes::ultimos(),
                  (QStringList{kOpciones, "No puede Eliminar la única Línea de Productos."}));
        EXPECT_EQ(Sonidos::reproducidos(), (QList<Sonido>{Sonido::Click, Sonido::Error}));
        EXPECT_EQ(c.cuenta("Lineas Where empresaID = 3"), 1);
    }

    c.exige("Insert Into Lineas (empresaID, linea, padre) Values (1, 'Temporada', 0)");
    auto f = abre(1);
    // Abarrotes tiene sublíneas y productos: primero las sublíneas.
    opcion(*f, "Abarrotes", EliminarNodo);
    EXPECT_EQ(Mensajes::ultimos(),
              (QStringList{kOpciones, "No puede Eliminar un Nodo con SubLíneas Asociadas."}));
    opcion(*f, "Refrescos", EliminarNodo);
    EXPECT_EQ(Mensajes::ultimos(),
              (QStringList{kOpciones, "No puede Eliminar una Línea con Productos Asociados."}));
    EXPECT_EQ(Sonidos::reproducidos(),
              (QList<Sonido>{Sonido::Click, Sonido::Error, Sonido::Click, Sonido::Error}));
    EXPECT_NE(nodo(*f, "Refrescos"), nullptr);

    // Otra estación le agregó una sublínea después de cargar el árbol: la base lo sabe.
    c.exige("Insert Into Lineas (empresaID, linea, padre) Values (1, 'Ofertas', :p)",
            {{"p", entero(lineaID(1, "Temporada"))}});
    opcion(*f, "Temporada", EliminarNodo);
    EXPECT_EQ(Mensajes::ultimos(),
              (QStringList{kOpciones, "No puede Eliminar un Nodo con SubLíneas Asociadas."}));
    EXPECT_EQ(c.cuenta("Lineas Where empresaID = 1 and linea = 'Temporada'"), 1);

    opcion(*f, "Bebidas", CrearSubNodo, QStringLiteral("Jugos Naturales"));
    ASSERT_NE(nodo(*f, "Jugos Naturales"), nullptr);
    const long long lineas = c.cuenta("Lineas");
    opcion(*f, "Jugos Naturales", EliminarNodo);
    EXPECT_EQ(Mensajes::ultimos(), (QStringList{kOpciones, kNombreNodo, kOpciones}));
    EXPECT_EQ(nodo(*f, "Jugos Naturales"), nullptr);
    EXPECT_EQ(c.cuenta("Lineas"), lineas - 1);
    EXPECT_EQ(c.cuenta("AuditoriasSistema Where empresaID = 1 and moduloSistema = "
                       "'Catálogos -> Productos' and datoNuevo = 'Línea: Jugos Naturales' and "
                       "tipoAuditoria in ('Inserción', 'Cancelación')"),
              2);
}

TEST_F(ProductosTest, CrearYRenombrarNodosSinRecargarElArbol) {
    auto f = abre();
    QTreeWidgetItem* abarrotes = nodo(*f, "Abarrotes");

    // Hermano de "Granos y Semillas": queda bajo Abarrotes en su lugar alfabético.
    opcion(*f, "Granos y Semillas", CrearNodo, QStringLiteral("  Harinas  "));
    QStringList hijos;
    for (int i = 0; i < abarrotes->childCount(); ++i)
        hijos << abarrotes->child(i)->text(0);
    EXPECT_EQ(hijos, (QStringList{"Aceites y Condimentos", "Enlatados y Conservas",
                                  "Granos y Semillas", "Harinas"}));
    EXPECT_EQ(nodo(*f, "Abarrotes"), abarrotes); // el mismo árbol, no uno recargado
    const Json fila =
        c.exige("Select ID, padre, usuarioID From Lineas Where empresaID = 1 and linea = "
                "'Harinas'")
            .filas();
    ASSERT_EQ(fila.size(), 1u);
    EXPECT_EQ(fila[0][1], 1);
    EXPECT_EQ(fila[0][2], sesion_.UsuarioID);
    EXPECT_EQ(nodo(*f, "Harinas")->data(0, TProductosF::RolLineaID).toLongLong(),
              fila[0][0].get<long long>());

    // Hermano de una raíz: otra raíz; el apóstrofo se guarda tal cual.
    opcion(*f, "Bebidas", CrearNodo, QStringLiteral("Abarrotes D'Lupita"));
    EXPECT_EQ(esquema(*f).filter(QRegularExpression("^\\S")).mid(0, 3),
              (QStringList{"Abarrotes", "Abarrotes D'Lupita", "Bebidas"}));
    EXPECT_EQ(
        c.cuenta("Lineas Where empresaID = 1 and padre = 0 and linea = 'Abarrotes D''Lupita'"), 1);

    // Nombre vacío o diálogo cancelado: nada cambia.
    const long long lineas = c.cuenta("Lineas");
    Mensajes::ultimos();
    opcion(*f, "Bebidas", CrearSubNodo, QStringLiteral("   "));
    opcion(*f, "Bebidas", CrearSubNodo);
    EXPECT_EQ(Mensajes::ultimos(),
              (QStringList{kOpciones, kNombreNodo, "Debe introducir el Nombre del Nodo", kOpciones,
                           kNombreNodo}));
    EXPECT_EQ(c.cuenta("Lineas"), lineas);

    opcion(*f, "Harinas", RenombrarNodo, QStringLiteral("Harinas y Pastas"));
    EXPECT_NE(nodo(*f, "Harinas y Pastas"), nullptr);
    EXPECT_EQ(c.cuenta("Lineas Where linea = 'Harinas y Pastas' and padre = 1"), 1);
    EXPECT_EQ(c.cuenta("AuditoriasSistema Where tipoAuditoria = 'Actualización' and "
                       "datoNuevo = 'Línea: Harinas y Pastas' and datoAnterior = 'Línea: Harinas'"),
              1);
    opcion(*f, "Harinas y Pastas", RenombrarNodo, QString());
    EXPECT_TRUE(Mensajes::ultimos().contains("Debe introducir el Nombre del Nodo"));
    EXPECT_EQ(c.cuenta("Lineas Where linea = 'Harinas y Pastas'"), 1);
}

TEST_F(ProductosTest, AsignarFotoGuardaFotoReducidaYMiniaturaYSePuedeQuitar) {
    QTemporaryDir carpeta;
    const QString noImagen = carpeta.filePath(QStringLiteral("notas.png"));
    const QString foto = carpeta.filePath(QStringLiteral("anaquel.png"));
    {
        QFile archivo(noImagen);
        ASSERT_TRUE(archivo.open(QIODevice::WriteOnly));
        archivo.write("no soy una imagen");
        QFile imagen(foto);
        ASSERT_TRUE(imagen.open(QIODevice::WriteOnly));
        imagen.write(png(2000, 500));
    }
    auto f = abre();
    opcion(*f, "Bebidas", AsignarFoto);
    QPointer<TAsignaFotoLineaF> pantalla = f->findChild<TAsignaFotoLineaF*>();
    ASSERT_TRUE(pantalla);
    esperaLeyenda(*pantalla);
    EXPECT_FALSE(control<QPushButton>(*pantalla, "BotonEliminarFoto")->isEnabled());

    Mensajes::ultimos();
    pantalla->cargaArchivo(noImagen);
    EXPECT_EQ(Mensajes::ultimos(), QStringList{"No seleccionó un archivo de Imagen válido"});
    EXPECT_FALSE(control<QPushButton>(*pantalla, "BotonAlmacenarFoto")->isEnabled());

    pantalla->cargaArchivo(foto);
    QTest::mouseClick(control<QPushButton>(*pantalla, "BotonRotarFoto"), Qt::LeftButton);
    esperaLeyenda(*pantalla);
    QTest::mouseClick(control<QPushButton>(*pantalla, "BotonAlmacenarFoto"), Qt::LeftButton);
    ASSERT_TRUE(esperaHasta([&] { return pantalla.isNull(); }));

    auto imagenDe = [&](const char* columna) {
        const Json v = c.valor(std::string("Select ") + columna +
                               " From Lineas Where empresaID = 1 and linea = 'Bebidas'");
        return v.is_null() ? QImage()
                           : QImage::fromData(QByteArray::fromBase64(
                                 QByteArray::fromStdString(v.get<std::string>())));
    };
    // Girada y con su lado mayor en el límite; la miniatura cabe en su cuadro.
    EXPECT_EQ(imagenDe("Foto").size(), QSize(256, 1024));
    EXPECT_EQ(imagenDe("miniatura").size(), QSize(16, 64));
    EXPECT_EQ(nodo(*f, "Bebidas")->data(0, TProductosF::RolImagenLinea), "miniatura");
    EXPECT_EQ(c.cuenta("AuditoriasSistema Where datoNuevo = 'Foto de la Línea: Bebidas' and "
                       "tipoAuditoria = 'Actualización'"),
              1);

    opcion(*f, "Bebidas", AsignarFoto);
    pantalla = f->findChild<TAsignaFotoLineaF*>();
    ASSERT_TRUE(pantalla);
    esperaLeyenda(*pantalla);
    QTest::mouseClick(control<QPushButton>(*pantalla, "BotonEliminarFoto"), Qt::LeftButton);
    ASSERT_TRUE(esperaHasta([&] { return pantalla.isNull(); }));
    EXPECT_TRUE(imagenDe("Foto").isNull());
    EXPECT_TRUE(imagenDe("miniatura").isNull());
    EXPECT_EQ(nodo(*f, "Bebidas")->data(0, TProductosF::RolImagenLinea), "Lineas");
}

TEST_F(ProductosTest, BuscaPorClaveDescripcionOCodigoDeBarraSinDejarPasarSql) {
    auto f = abre();
    busca(*f, "REFRESCO"); // la otra empresa también vende refrescos; el kit lo lleva en su nombre
    EXPECT_EQ(pagina(*f), "SeleccionaProducto");
    EXPECT_EQ(listado(*f, ModeloProductos::RolClave),
              (QStringList{"PAQ02", "2002", "2001", "2004", "2003"}));
    EXPECT_EQ(rotulo(*f, "TituloProductos"), "Búsqueda: REFRESCO");
    EXPECT_EQ(rotulo(*f, "PieProductos"), "Número de Registros: 5");
    busca(*f, "1002");
    EXPECT_EQ(listado(*f, RolPrimeraLinea), QStringList{"1002 - Frijol negro 1 kg"});
    busca(*f, "7501058000354");
    EXPECT_EQ(listado(*f, ModeloProductos::RolClave), QStringList{"1003"});
    EXPECT_TRUE(Mensajes::ultimos().isEmpty());

    const long long productos = c.cuenta("Productos");
    for (const char* malicioso : {"'; delete from Productos; --", "x' or '1'='1", "%' --"}) {
        busca(*f, QString::fromUtf8(malicioso));
        EXPECT_EQ(listado(*f, ModeloProductos::RolClave), QStringList{}) << malicioso;
        EXPECT_EQ(Mensajes::ultimos(), QStringList{kSinRegistros}) << malicioso;
        EXPECT_EQ(rotulo(*f, "PieProductos"), "Número de Registros: 0");
    }
    EXPECT_EQ(c.cuenta("Productos"), productos);
    EXPECT_EQ(control<QLineEdit>(*f, "BuscarProducto")->text(), "%' --");

    // Servicio caído: mensaje de lectura; lo listado y lo tecleado se quedan.
    busca(*f, "1002");
    servicio.detiene();
    busca(*f, "frijol");
    EXPECT_EQ(Mensajes::ultimos(), QStringList{MensajeErrorLectura});
    EXPECT_EQ(listado(*f, ModeloProductos::RolClave), QStringList{"1002"});
    EXPECT_EQ(rotulo(*f, "TituloProductos"), "Búsqueda: 1002");
    EXPECT_EQ(control<QLineEdit>(*f, "BuscarProducto")->text(), "frijol");
}

TEST_F(ProductosTest, ListaPorLineaConExistenciaEnVerdeORojoYFiltraLocalmente) {
    c.exige("Update Productos Set existencia = -5 Where empresaID = 1 and clave = '1002'");
    c.exige("Update Productos Set manejaInventarios = 0 Where empresaID = 1 and clave = '1004'");
    c.exige("Insert Into Lineas (empresaID, linea, padre) Values (1, 'Vacía', 0)");
    auto f = abre();
    EXPECT_EQ(rotulo(*f, "PieProductos"), "Total Registros: 0");

    opcion(*f, "Granos y Semillas", VerProductos);
    EXPECT_EQ(pagina(*f), "SeleccionaProducto");
    EXPECT_EQ(rotulo(*f, "TituloProductos"), "Abarrotes / Granos y Semillas");
    EXPECT_EQ(listado(*f, ModeloProductos::RolClave),
              (QStringList{"1001", "1002", "1003", "1004"}));
    EXPECT_EQ(
        listado(*f, RolSegundaLinea),
        (QStringList{"Existencia: 48 Pieza", "Existencia: 0 Pieza", "Existencia: 30 Pieza", ""}));
    EXPECT_EQ(listado(*f, RolColorSegundaLinea),
              (QStringList{"#008000", "#FF0000", "#008000", ""}));
    EXPECT_EQ(rotulo(*f, "PieProductos"), "Número de Registros: 4");
    EXPECT_EQ(Mensajes::ultimos(), QStringList{kOpciones});

    auto* filtro = control<QLineEdit>(*f, "BuscarTexto");
    QTest::keyClicks(filtro, "FRIJOL");
    esperaLeyenda(*f);
    EXPECT_EQ(listado(*f, ModeloProductos::RolClave), (QStringList{"1002", "1003"}));
    EXPECT_EQ(rotulo(*f, "PieProductos"), "Registros Filtrados: 2");
    filtro->clear();
    esperaLeyenda(*f);
    EXPECT_EQ(rotulo(*f, "PieProductos"), "Número de Registros: 4");

    // Sin acentos ni mayúsculas encuentra "Azúcar" y "Café".
    opcion(*f, "Abarrotes", VerProductos);
    QTest::keyClicks(filtro, "azucar");
    esperaLeyenda(*f);
    EXPECT_EQ(listado(*f, ModeloProductos::RolClave), QStringList{"1005"});
    filtro->setText(QStringLiteral("CAFE"));
    esperaLeyenda(*f);
    EXPECT_EQ(listado(*f, ModeloProductos::RolClave), QStringList{"1013"});
    // Otro listado llega sin filtro.
    opcion(*f, "Vacía", VerProductos);
    EXPECT_EQ(filtro->text(), "");
    EXPECT_EQ(rotulo(*f, "PieProductos"), "Número de Registros: 0");
    EXPECT_EQ(Mensajes::ultimos(), (QStringList{kOpciones, kOpciones, kSinRegistros}));
    EXPECT_EQ(Sonidos::reproducidos().last(), Sonido::Error);
}

TEST_F(ProductosTest, BorraSoloUnProductoSinDocumentos) {
    producto(1, "ZZ-VENDIDO", "Producto vendido", 3, 6, 1);
    producto(1, "ZZ-SUELTO", "Producto suelto", 3, 6, 1);
    datos.venta(1, {{"ZZ-VENDIDO", 1}});
    auto f = abre();
    busca(*f, "ZZ-");
    ASSERT_EQ(listado(*f, ModeloProductos::RolClave), (QStringList{"ZZ-SUELTO", "ZZ-VENDIDO"}));
    auto* borrar = control<QPushButton>(*f, "BotonBorrar");
    EXPECT_FALSE(borrar->isEnabled());

    elige(*f, "ZZ-VENDIDO");
    Mensajes::respondeSiguiente(cajaplex::Respuesta::Si);
    QTest::mouseClick(borrar, Qt::LeftButton);
    esperaLeyenda(*f);
    EXPECT_EQ(Mensajes::ultimos(),
              (QStringList{"¿Desea Eliminar el Producto ZZ-VENDIDO - Producto vendido?",
                           "No puede eliminar un Producto con Transacciones Registradas"}));
    EXPECT_EQ(c.cuenta("Productos Where clave = 'ZZ-VENDIDO'"), 1);
    EXPECT_EQ(listado(*f, ModeloProductos::RolClave).size(), 2);

    elige(*f, "ZZ-SUELTO");
    Mensajes::respondeSiguiente(cajaplex::Respuesta::No);
    QTest::mouseClick(borrar, Qt::LeftButton);
    esperaLeyenda(*f);
    EXPECT_EQ(c.cuenta("Productos Where clave = 'ZZ-SUELTO'"), 1);

    Mensajes::respondeSiguiente(cajaplex::Respuesta::Si);
    QTest::mouseClick(borrar, Qt::LeftButton);
    esperaLeyenda(*f);
    EXPECT_EQ(c.cuenta("Productos Where clave = 'ZZ-SUELTO'"), 0);
    EXPECT_EQ(listado(*f, ModeloProductos::RolClave), QStringList{"ZZ-VENDIDO"});
    EXPECT_EQ(rotulo(*f, "PieProductos"), "Número de Registros: 1");
    EXPECT_EQ(c.cuenta("AuditoriasSistema Where tipoAuditoria = 'Cancelación' and "
                       "datoNuevo = 'Producto: ZZ-SUELTO Producto suelto'"),
              1);
}

TEST_F(ProductosTest, KardexDeCadaFuenteEntreDosFechasSoloDeLaEmpresa) {
    producto(1, "KX", "Producto con kardex", 100, 6, 1);
    producto(2, "KX", "Mismo código, otra empresa", 100, 21, 11);
    auto fecha = [&](const std::string& tabla, long long empresa, long long folio,
                     const std::string& cuando) {
        c.exige("Update " + tabla + " Set fecha = :f Where empresaID = :e and folio = :folio",
                {{"f", texto(cuando)}, {"e", entero(empresa)}, {"folio", entero(folio)}});
    };
    const Documento venta = datos.venta(1, {{"KX", 2}});
    fecha("Remision", 1, venta.folio, "2024-03-05 10:00:00");
    c.exige("Update Remision Set vendedor = 2, usuarioID = 1 Where ID = :id",
            {{"id", entero(venta.id)}});
    fecha("AjusteProductos", 1, datos.ajuste(1, {{"KX", 1}}, false).folio, "2024-03-06 10:00:00");
    fecha("DevolucionOrdenCompra", 1, datos.devolucion(1, {{"KX", 3}}).folio,
          "2024-03-07 10:00:00");
    fecha("OrdenCompra", 1, datos.recepcion(1, {{"KX", 10}}).folio, "2024-03-08 10:00:00");
    fecha("AjusteProductos", 1, datos.ajuste(1, {{"KX", 4}}, true).folio, "2024-03-09 10:00:00");
    fecha("Remision", 1, datos.venta(1, {{"KX", 7}}).folio, "2024-03-20 10:00:00");
    fecha("Remision", 2, datos.venta(2, {{"KX", 5}}).folio, "2024-03-05 10:00:00");

    auto f = abre();
    busca(*f, "KX");
    elige(*f, "KX");
    QTest::mouseClick(control<QPushButton>(*f, "BotonKardex"), Qt::LeftButton);
    EXPECT_EQ(pagina(*f), "ConsultaFechaKardex");
    EXPECT_EQ(rotulo(*f, "ProductoKardex"), "Kardex KX - Producto con kardex");
    auto* paginas = control<QTabWidget>(*f, "Paginas");
    auto muestra = [&](QDate inicio, QDate fin) {
        Mensajes::ultimos();
        Sonidos::reproducidos();
        control<QDateEdit>(*f, "FechaInicio")->setDate(inicio);
        control<QDateEdit>(*f, "FechaFin")->setDate(fin);
        QTest::mouseClick(control<QPushButton>(*f, "MostrarResultadosKardex"), Qt::LeftButton);
        esperaLeyenda(*f);
    };

    muestra(QDate(2024, 3, 10), QDate(2024, 3, 1));
    EXPECT_EQ(Mensajes::ultimos(),
              QStringList{"La Fecha de Inicio debe ser igual o menor a la Fecha de Fin"});
    EXPECT_EQ(Sonidos::reproducidos(), QList<Sonido>{Sonido::Error});
    EXPECT_FALSE(paginas->isTabEnabled(3));
    muestra(QDate(2024, 4, 1), QDate(2024, 4, 30));
    EXPECT_EQ(Mensajes::ultimos(), QStringList{"No hubo resultados con esa información"});
    EXPECT_EQ(pagina(*f), "ConsultaFechaKardex");

    muestra(QDate(2024, 3, 1), QDate(2024, 3, 10));
    ASSERT_EQ(pagina(*f), "ResultadoKardex");
    auto* lista = control<QListWidget>(*f, "ListaDetalle");
    QStringList filas;
    for (int i = 0; i < lista->count(); ++i) {
        const QListWidgetItem* r = lista->item(i);
        filas << QStringLiteral("%1 %2 %3 %4")
                     .arg(r->data(TProductosF::RolModuloKardex).toString())
                     .arg(r->data(TProductosF::RolTipoKardex).toInt())
                     .arg(r->data(TProductosF::RolCantidadKardex).toDouble())
                     .arg(r->data(TProductosF::RolImagenKardex).toString());
    }
    EXPECT_EQ(filas, (QStringList{"Remisión 1 2 Cancelacion", "Ajuste de Salida 1 1 Cancelacion",
                                  "Devolución de Mercancía 1 3 Cancelacion",
                                  "Recepción de Mercancía 0 10 Insercion",
                                  "Ajuste de Entrada 0 4 Insercion"}));
    EXPECT_TRUE(lista->item(0)
                    ->data(RolSegundaLinea)
                    .toString()
                    .contains("05/03/2024 10:00:00   Usuario: Laura Méndez Ríos"));
    EXPECT_DOUBLE_EQ(datos.existencia(1, "KX"), 101.0);
    EXPECT_EQ(rotulo(*f, "ExistenciaActual"), "Existencia Actual: 101 Pieza");
    EXPECT_EQ(rotulo(*f, "PieKardex"), "Número de Registros: 5");
    EXPECT_EQ(Sonidos::reproducidos(), QList<Sonido>{Sonido::MostrarResultados});
    EXPECT_TRUE(Mensajes::ultimos().isEmpty());
}

} // namespace
} // namespace cajaplex
