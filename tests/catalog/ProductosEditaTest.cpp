// Edición de Producto contra el servicio real de demostración: valores de la empresa, revisiones
// que dejan lo tecleado, lo que se guarda, la foto, las etiquetas y la vuelta al catálogo.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <utility>

#include <QBuffer>
#include <QComboBox>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPdfDocument>
#include <QPointer>
#include <QPushButton>
#include <QScrollArea>
#include <QSignalSpy>
#include <QSpinBox>
#include <QStackedWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>

#include "catalog/CatalogoProductos.h"
#include "catalog/Productos.h"
#include "catalog/ProductosEdita.h"
#include "catalog/Rangos.h"
#include "pantallas/Mensajes.h"
#include "pantallas/RolesRenglon.h"
#include "pantallas/Sonidos.h"
#include "printing/CodigoBarras.h"
#include "printing/VisorPdf.h"
#include "tests/fixtures/PruebaPantallas.h"

namespace cajaplex {
namespace {

using namespace prueba;

// Cabe en la pantalla virtual de las pruebas: un toque diferido por el deslizar con el dedo se
// entrega buscando el control bajo su posición en la pantalla.
const QSize kVentana(800, 600);

QByteArray png(int ancho, int alto) {
    QImage imagen(ancho, alto, QImage::Format_RGB32);
    imagen.fill(Qt::darkCyan);
    QByteArray bytes;
    QBuffer bufer(&bytes);
    bufer.open(QIODevice::WriteOnly);
    imagen.save(&bufer, "PNG");
    return bytes;
}

class ProductosEditaTest : public ConPantallas {
protected:
    void SetUp() override {
        ConPantallas::SetUp();
        sesion_ = sesion(QStringLiteral("admin"), 1);
        sesion_.DispositivoID = QStringLiteral("CAJA-9");
    }

    std::unique_ptr<TProductosEditaF> abre(long long productoID, long long linea = 0) {
        auto f = std::make_unique<TProductosEditaF>(sesion_, productoID, linea);
        f->resize(kVentana);
        f->show();
        esperaLeyenda(*f);
        Mensajes::ultimos();
        Sonidos::reproducidos();
        return f;
    }

    static QString texto(const QWidget& f, const char* nombre) {
        return control<QLineEdit>(f, nombre)->text();
    }
    static void teclea(const QWidget& f, const char* nombre, const QString& valor) {
        control<QLineEdit>(f, nombre)->setText(valor);
    }
    // Como el dedo: se desliza la lista hasta el botón y se toca. Dentro de una lista que se
    // desliza con el dedo el toque llega un momento después (puede ser el inicio de un deslizar).
    static void toca(const QWidget& f, const char* nombre) {
        QPushButton* b = control<QPushButton>(f, nombre);
        for (QWidget* w = b->parentWidget(); w; w = w->parentWidget())
            if (auto* lista = qobject_cast<QScrollArea*>(w)) lista->ensureWidgetVisible(b);
        QSignalSpy tocado(b, &QPushButton::clicked);
        QTest::mouseClick(b, Qt::LeftButton);
        EXPECT_TRUE(esperaHasta([&] { return !tocado.isEmpty(); })) << nombre;
        esperaLeyenda(f);
    }
    // El "Regresar" de la ventana le pide a la pantalla cerrarse.
    static void regresa(QWidget& f) {
        f.close();
        esperaLeyenda(f);
    }
    static QString pagina(const QWidget& f) {
        return control<QStackedWidget>(f, "PaginasEdicion")->currentWidget()->objectName();
    }

    Json fila(const std::string& columnas, const std::string& clave) {
        return c
            .exige("Select " + columnas + " From Productos Where empresaID = 1 and clave = :c",
                   {{"c", prueba::texto(clave)}})
            .filas()
            .at(0);
    }

    QImage imagenDe(const char* columna, long long productoID) {
        const Json v = c.valor(std::string("Select ") + columna +
                                   " From ProductosFotos Where id = :id and Posicion = 1",
                               {{"id", entero(productoID)}});
        return v.is_null() ? QImage()
                           : QImage::fromData(QByteArray::fromBase64(
                                 QByteArray::fromStdString(v.get<std::string>())));
    }

    Sesion sesion_;
};

TEST_F(ProductosEditaTest, AltaConValoresDeLaEmpresaRevisaEnOrdenYConservaLoTecleado) {
    c.exige("Update Configura Set AutoNumeraCatalogosProductos = 1 Where empresaID = 1");
    auto f = abre(0, 6);
    EXPECT_EQ(f->windowTitle(), "Edición de Producto");
    EXPECT_EQ(control<QLabel>(*f, "TituloPagina")->text(), "Alta Producto");

    // Cada grupo y cada elemento en el orden en que se ven, de arriba abajo.
    QList<std::pair<int, QString>> vistos;
    for (QLabel* l : control<QWidget>(*f, "ListaEdicion")->findChildren<QLabel*>()) {
        const bool grupo = l->objectName().startsWith(QStringLiteral("Grupo"));
        if (!grupo && !l->property("columna").isValid()) continue;
        vistos.append({l->mapTo(f.get(), QPoint()).y(),
                       grupo ? l->text() : l->property("columna").toString()});
    }
    std::sort(vistos.begin(), vistos.end());
    QStringList orden;
    for (const auto& [y, nombre] : vistos)
        orden << nombre;
    EXPECT_EQ(orden.join(QLatin1Char(' ')),
              "Datos Requeridos clave producto unidad moneda claveSAT Operativos existencia "
              "pCompra Banderas manejaInventarios requiereAutorizacionVenta manejaSeries "
              "esPaquete Recurrente caduca MostrarKioskoPV utilizaBascula Precios de Venta precio "
              "precio2 precio3 precio4 precio5 precioAbierto Impuestos porcentajeImpuesto IEPS "
              "Opcionales datoAdicional1 codigoBarra bonificaPuntos porcentajeBonificacion maximo "
              "minimo Peso Diversos Foto activo ImprimeEtiqueta RangosPrecios");

    // Lo que propone la empresa.
    EXPECT_EQ(texto(*f, "clave"), "46");
    EXPECT_EQ(control<QComboBox>(*f, "unidad")->currentData().toLongLong(), 1);
    EXPECT_EQ(control<QComboBox>(*f, "moneda")->currentData().toLongLong(), 1);
    EXPECT_EQ(texto(*f, "claveSAT"), "01010101");
    EXPECT_EQ(texto(*f, "precio3"), "0.00");
    EXPECT_EQ(control<QComboBox>(*f, "porcentajeImpuesto")->currentText(), "0.00");
    EXPECT_TRUE(control<QPushButton>(*f, "activo")->isChecked());
    EXPECT_FALSE(control<QPushButton>(*f, "RangosPrecios")->isEnabled());

    const long long productos = c.cuenta("Productos");
    auto almacena = [&](const QString& mensaje) {
        toca(*f, "BotonSiguiente");
        EXPECT_EQ(Mensajes::ultimos(), QStringList{mensaje});
        EXPECT_EQ(Sonidos::reproducidos(), QList<Sonido>{Sonido::Error});
        EXPECT_TRUE(f->isVisible());
    };
    teclea(*f, "clave", QString());
    teclea(*f, "existencia", QStringLiteral("12.5"));
    teclea(*f, "precio2", QStringLiteral("19.5"));
    teclea(*f, "datoAdicional1", QStringLiteral("Marca D'Lupita"));
    toca(*f, "manejaInventarios");
    almacena(QStringLiteral("No especificó la Clave del Producto"));
    teclea(*f, "clave", QStringLiteral("1001"));
    almacena(QStringLiteral("Ya existe esa Clave del Producto"));
    teclea(*f, "clave", QStringLiteral("ZZ-01"));
    teclea(*f, "producto", QStringLiteral("Galleta de avena"));
    control<QComboBox>(*f, "unidad")->setCurrentIndex(0); // Caja
    teclea(*f, "claveSAT", QStringLiteral("ABCDEFG"));
    almacena(QStringLiteral("La Clave del SAT debe contener 8 dígitos"));
    EXPECT_EQ(c.cuenta("Productos"), productos);
    // Nada de lo tecleado se perdió en los rechazos.
    EXPECT_EQ(texto(*f, "clave"), "ZZ-01");
    EXPECT_EQ(texto(*f, "producto"), "Galleta de avena");
    EXPECT_EQ(texto(*f, "existencia"), "12.5");
    EXPECT_EQ(texto(*f, "precio2"), "19.5");
    EXPECT_EQ(texto(*f, "claveSAT"), "ABCDEFG");
    EXPECT_EQ(texto(*f, "datoAdicional1"), "Marca D'Lupita");
    EXPECT_EQ(control<QPushButton>(*f, "manejaInventarios")->text(), "SÍ");

    teclea(*f, "claveSAT", QStringLiteral("ABCDEFGH"));
    // Con estaciones dadas de alta, solo ellas guardan.
    c.exige("Insert Into DispositivosRED (ReferenciaID) Values ('CAJA-1')");
    almacena(QStringLiteral("Dispositivo NO Autorizado: CAJA-9"));
    c.exige("Insert Into DispositivosRED (ReferenciaID) Values ('CAJA-9')");
    teclea(*f, "precio", QString());
    control<QComboBox>(*f, "porcentajeImpuesto")->setCurrentText(QStringLiteral("16"));
    control<QComboBox>(*f, "IEPS")->setCurrentText(QStringLiteral("26.5"));
    toca(*f, "BotonSiguiente");
    EXPECT_TRUE(Mensajes::ultimos().isEmpty());
    EXPECT_FALSE(f->isVisible());
    EXPECT_EQ(fila("linea, producto, unidad, moneda, claveSAT, existencia, manejaInventarios, "
                   "precio, precio2, porcentajeImpuesto, IEPS, datoAdicional1, activo, usuarioID",
                   "ZZ-01"),
              Json::parse(R"([6, "Galleta de avena", 4, 1, "ABCDEFGH", 12.5, 1, 0.0, 19.5,
                  16.0, 26.5, "Marca D'Lupita", 1, )" +
                          std::to_string(sesion_.UsuarioID) + "]"));
    EXPECT_EQ(f->productoID(), fila("id", "ZZ-01")[0].get<long long>());
    EXPECT_EQ(c.cuenta("AuditoriasSistema Where tipoAuditoria = 'Inserción' and "
                       "datoNuevo = 'Producto: ZZ-01 Galleta de avena'"),
              1);
}

// Editor abierto, otra estación vende, el editor guarda: la venta se queda. Lo que el usuario
// cambie en la existencia se guarda como ajuste sobre la de ese momento, y la pantalla lo dice.
TEST_F(ProductosEditaTest, GuardarNoDeshaceUnaVentaHechaMientrasElEditorEstabaAbierto) {
    c.exige("Update Productos Set manejaInventarios = 1 Where empresaID = 1 and clave = '1001'");
    auto f = abre(1);
    EXPECT_EQ(texto(*f, "existencia"), "48.00");
    EXPECT_EQ(control<QLabel>(*f, "NotaExistencia")->text(),
              "Se guarda como ajuste sobre la existencia actual");
    datos.venta(1, {{"1001", 2}}); // otra estación
    teclea(*f, "producto", QStringLiteral("Arroz morelos 1 kg"));
    toca(*f, "BotonSiguiente");
    EXPECT_TRUE(Mensajes::ultimos().isEmpty());
    EXPECT_FALSE(f->isVisible());
    EXPECT_EQ(fila("producto, existencia", "1001"), Json::parse(R"(["Arroz morelos 1 kg", 46.0])"));

    // Cambiada de 46 a 50 (+4) mientras se vendían 3: queda 43 + 4.
    f = abre(1);
    EXPECT_EQ(texto(*f, "existencia"), "46.00");
    datos.venta(1, {{"1001", 3}});
    teclea(*f, "existencia", QStringLiteral("50"));
    toca(*f, "BotonSiguiente");
    EXPECT_TRUE(Mensajes::ultimos().isEmpty());
    EXPECT_EQ(fila("existencia", "1001"), Json::parse("[47.0]"));
    EXPECT_EQ(c.cuenta("AuditoriasSistema Where tipoAuditoria = 'Actualización' and comentarios = "
                       "'Producto modificado, existencia ajustada en +4.00'"),
              1);

    // Un alta no lleva la leyenda: su existencia es la inicial.
    auto alta = abre(0, 6);
    EXPECT_EQ(alta->findChild<QLabel*>(QStringLiteral("NotaExistencia")), nullptr);
}

// Otra estación eliminó el producto mientras se editaba: se dice claro y no queda nada (ni foto
// huérfana ni bitácora de un cambio que no ocurrió).
TEST_F(ProductosEditaTest, GuardarUnProductoQueOtraEstacionEliminoNoGuardaNada) {
    QTemporaryDir carpeta;
    const QString foto = carpeta.filePath(QStringLiteral("arroz.png"));
    {
        QFile imagen(foto);
        ASSERT_TRUE(imagen.open(QIODevice::WriteOnly));
        imagen.write(png(30, 30));
    }
    auto f = abre(1);
    f->cargaArchivoFoto(foto);
    c.exige("Delete From Productos Where empresaID = 1 and clave = '1001'"); // otra estación
    const long long bitacora = c.cuenta("AuditoriasSistema");
    toca(*f, "BotonSiguiente");
    EXPECT_EQ(Mensajes::ultimos(), QStringList{QString::fromUtf8(MensajeProductoEliminado)});
    EXPECT_TRUE(f->isVisible());
    EXPECT_EQ(c.cuenta("ProductosFotos Where id = 1"), 0);
    EXPECT_EQ(c.cuenta("AuditoriasSistema"), bitacora);
}

// Un error de programación al leer (una columna que la consulta no trae) ya no termina el
// programa desde el slot: la pantalla muestra el mensaje de falla de lectura y todo sigue.
TEST_F(ProductosEditaTest, UnaColumnaDesconocidaMuestraElErrorDeLecturaYElProgramaSigue) {
    auto f = std::make_unique<TProductosEditaF>(sesion_, 1, 0);
    // Antes de que corra la carga (tras la leyenda): la consulta ya no trae "linea" ni las demás.
    f->edicion().ConsultarProducto.asignaSql(
        QStringLiteral("Select A.ID From Productos A Where A.empresaID = :EmpresaID "
                       "And A.ID = :ProductoID"));
    f->resize(kVentana);
    f->show();
    esperaLeyenda(*f);
    EXPECT_EQ(Mensajes::ultimos(), QStringList{"Error al obtener los datos, Intente de nuevo"});
    EXPECT_EQ(Sonidos::reproducidos(), QList<Sonido>{Sonido::Error});
    EXPECT_TRUE(f->isVisible());
    EXPECT_FALSE(control<QPushButton>(*f, "BotonSiguiente")->isEnabled());
    f->close();

    // El programa sigue: otro editor carga y guarda como siempre.
    auto otro = abre(1);
    EXPECT_EQ(texto(*otro, "clave"), "1001");
    toca(*otro, "BotonSiguiente");
    EXPECT_TRUE(Mensajes::ultimos().isEmpty());
    EXPECT_FALSE(otro->isVisible());
}

TEST_F(ProductosEditaTest, ModificaMuestraLoGuardadoYSuFotoSeGiraReemplazaYQuita) {
    QTemporaryDir carpeta;
    const QString noImagen = carpeta.filePath(QStringLiteral("notas.png"));
    const QString foto = carpeta.filePath(QStringLiteral("arroz.png"));
    {
        QFile archivo(noImagen);
        ASSERT_TRUE(archivo.open(QIODevice::WriteOnly));
        archivo.write("no soy una imagen");
        QFile imagen(foto);
        ASSERT_TRUE(imagen.open(QIODevice::WriteOnly));
        imagen.write(png(300, 100));
    }
    c.exige("Insert Into ProductosFotos (id, Posicion, Foto, Miniatura) Values (1, 1, :f, :f)",
            {{"f", parametro("blob", png(40, 20).toBase64().toStdString())}});

    auto f = abre(1);
    EXPECT_EQ(control<QLabel>(*f, "TituloPagina")->text(), "Modifica Producto");
    EXPECT_EQ(texto(*f, "clave"), "1001");
    EXPECT_EQ(texto(*f, "producto"), "Arroz súper extra 1 kg");
    EXPECT_EQ(texto(*f, "precio2"), "31.04");
    EXPECT_EQ(texto(*f, "existencia"), "48.00");
    EXPECT_EQ(texto(*f, "codigoBarra"), "7501058000118");
    EXPECT_EQ(control<QPushButton>(*f, "MostrarKioskoPV")->text(), "SÍ");
    EXPECT_EQ(control<QPushButton>(*f, "requiereAutorizacionVenta")->text(), "NO");
    EXPECT_TRUE(control<QPushButton>(*f, "RangosPrecios")->isEnabled());

    // Los rangos de precios del producto se abren dentro del editor.
    toca(*f, "RangosPrecios");
    EXPECT_EQ(pagina(*f), "RangosProducto");
    EXPECT_NE(f->findChild<TRangosF*>(), nullptr);
    regresa(*f);
    EXPECT_EQ(pagina(*f), "DatosProducto");

    toca(*f, "Foto");
    EXPECT_EQ(pagina(*f), "FotoProducto");
    EXPECT_TRUE(control<QPushButton>(*f, "BotonEliminarFoto")->isEnabled());
    f->cargaArchivoFoto(noImagen);
    EXPECT_EQ(Mensajes::ultimos(), QStringList{"No seleccionó un archivo de Imagen válido"});
    f->cargaArchivoFoto(foto);
    toca(*f, "BotonRotarFoto");
    regresa(*f);
    EXPECT_EQ(pagina(*f), "DatosProducto");
    // La foto se guarda con el producto; la clave propia nunca es un duplicado.
    EXPECT_EQ(imagenDe("Foto", 1).size(), QSize(40, 20));
    toca(*f, "BotonSiguiente");
    EXPECT_TRUE(Mensajes::ultimos().isEmpty());
    EXPECT_FALSE(f->isVisible());
    EXPECT_EQ(imagenDe("Foto", 1).size(), QSize(100, 300));
    EXPECT_EQ(imagenDe("Miniatura", 1).size(), QSize(32, 96));
    EXPECT_EQ(c.cuenta("ProductosFotos Where id = 1"), 1);

    f = abre(1);
    toca(*f, "Foto");
    toca(*f, "BotonEliminarFoto");
    EXPECT_FALSE(control<QPushButton>(*f, "BotonRotarFoto")->isEnabled());
    regresa(*f);
    toca(*f, "BotonSiguiente");
    EXPECT_EQ(c.cuenta("ProductosFotos Where id = 1"), 0);
    EXPECT_EQ(c.cuenta("AuditoriasSistema Where tipoAuditoria = 'Actualización' and "
                       "datoNuevo = 'Producto: 1001 Arroz súper extra 1 kg'"),
              2);
}

TEST_F(ProductosEditaTest, EtiquetasPidenCopiasPreguntanYDanUnaPaginaPorEtiqueta) {
    QFile::remove(archivoPdfLocal());
    auto f = abre(1);
    toca(*f, "ImprimeEtiqueta");
    EXPECT_EQ(pagina(*f), "ParametrosImpresion");
    EXPECT_EQ(control<QLabel>(*f, "TituloPagina")->text(), "Parámetros de Impresión");
    auto* copias = control<QSpinBox>(*f, "CopiasEtiqueta");
    EXPECT_EQ(copias->value(), 48); // la existencia

    copias->setValue(0);
    toca(*f, "BotonImprimirEtiqueta");
    EXPECT_EQ(Mensajes::ultimos(),
              QStringList{"Debe especificar un número de copias mayor a cero"});
    copias->setValue(3);
    Mensajes::respondeSiguiente(cajaplex::Respuesta::Cancelar);
    toca(*f, "BotonImprimirEtiqueta");
    EXPECT_EQ(Mensajes::ultimos(), QStringList{"Desea Imprimir 3 Etiquetas?"});
    EXPECT_FALSE(QFile::exists(archivoPdfLocal()));

    Mensajes::respondeSiguiente(cajaplex::Respuesta::Aceptar);
    toca(*f, "BotonImprimirEtiqueta");
    EXPECT_EQ(Mensajes::ultimos(), QStringList{"Desea Imprimir 3 Etiquetas?"});
    EXPECT_EQ(pagina(*f), "VisorEtiquetas");
    EXPECT_NE(f->findChild<TVisorPdfF*>(), nullptr);
    {
        QPdfDocument pdf;
        ASSERT_EQ(pdf.load(archivoPdfLocal()), QPdfDocument::Error::None);
        EXPECT_EQ(pdf.pageCount(), 3);
    }

    // Un código de barra que EAN-13 no puede codificar.
    regresa(*f);
    regresa(*f);
    teclea(*f, "codigoBarra", QStringLiteral("ABC"));
    toca(*f, "ImprimeEtiqueta");
    control<QComboBox>(*f, "CampoEtiqueta")->setCurrentIndex(1);
    auto* simbologia = control<QComboBox>(*f, "SimbologiaEtiqueta");
    simbologia->setCurrentIndex(simbologia->findText(QStringLiteral("EAN-13")));
    copias->setValue(1);
    Mensajes::respondeSiguiente(cajaplex::Respuesta::Aceptar);
    toca(*f, "BotonImprimirEtiqueta");
    EXPECT_EQ(Mensajes::ultimos(),
              (QStringList{"Desea Imprimir 1 Etiquetas?", "Error al mostrar el código de barra"}));
    EXPECT_EQ(pagina(*f), "ParametrosImpresion");
}

TEST_F(ProductosEditaTest, ElCatalogoAbreElEditorYMuestraLoAlmacenadoAlVolver) {
    TProductosF f(sesion_);
    f.resize(kVentana);
    f.show();
    esperaLeyenda(f);
    auto* arbol = control<QTreeWidget>(f, "Lineas");
    QTreeWidgetItem* granos =
        arbol->findItems(QStringLiteral("Granos y Semillas"), Qt::MatchExactly | Qt::MatchRecursive)
            .value(0);
    ASSERT_NE(granos, nullptr);
    arbol->scrollToItem(granos);
    Mensajes::respondeOpcion(5); // "Ver Productos"
    QTest::mouseClick(arbol->viewport(), Qt::LeftButton, {},
                      arbol->visualItemRect(granos).center());
    esperaLeyenda(f);

    auto* vista = control<QListView>(f, "Productos");
    auto renglones = [&] {
        QStringList r;
        for (int i = 0; i < vista->model()->rowCount(); ++i)
            r << vista->model()->index(i, 0).data(RolPrimeraLinea).toString();
        return r;
    };
    auto* contenido = control<QStackedWidget>(f, "ContenidoProductos");
    // Abre el editor en la misma ventana y espera a que vuelva el catálogo.
    auto edita = [&](const char* boton) -> QPointer<TProductosEditaF> {
        QTest::mouseClick(control<QPushButton>(f, boton), Qt::LeftButton);
        QPointer<TProductosEditaF> editor =
            qobject_cast<TProductosEditaF*>(contenido->currentWidget());
        EXPECT_TRUE(editor);
        if (editor) esperaLeyenda(*editor);
        return editor;
    };
    // Almacena, o con nullptr usa el "Regresar" de la ventana, que es de la pantalla de encima.
    auto vuelve = [&](const QPointer<TProductosEditaF>& editor, const char* boton) {
        if (boton)
            QTest::mouseClick(control<QPushButton>(*editor, boton), Qt::LeftButton);
        else
            EXPECT_FALSE(f.close());
        EXPECT_TRUE(esperaHasta([&] { return editor.isNull(); }, 10000));
        EXPECT_TRUE(f.isVisible());
        esperaLeyenda(f);
        EXPECT_EQ(contenido->currentIndex(), 0);
    };

    vista->setCurrentIndex(vista->model()->index(1, 0)); // 1002
    QPointer<TProductosEditaF> editor = edita("BotonModificar");
    ASSERT_TRUE(editor);
    EXPECT_EQ(texto(*editor, "clave"), "1002");
    teclea(*editor, "producto", QStringLiteral("Frijol negro a granel"));
    vuelve(editor, "BotonSiguiente");
    EXPECT_TRUE(renglones().contains("1002 - Frijol negro a granel"));
    EXPECT_EQ(vista->currentIndex().data(ModeloProductos::RolClave), "1002");

    // Regresar sin almacenar no cambia nada.
    editor = edita("BotonModificar");
    ASSERT_TRUE(editor);
    teclea(*editor, "producto", QStringLiteral("Otro nombre"));
    vuelve(editor, nullptr);
    EXPECT_EQ(fila("producto", "1002")[0], "Frijol negro a granel");

    editor = edita("BotonNuevoProducto");
    ASSERT_TRUE(editor);
    teclea(*editor, "clave", QStringLiteral("ZZ-LENTEJA"));
    teclea(*editor, "producto", QStringLiteral("Lenteja roja 1 kg"));
    vuelve(editor, "BotonSiguiente");
    EXPECT_TRUE(renglones().contains("ZZ-LENTEJA - Lenteja roja 1 kg"));
    EXPECT_EQ(fila("linea", "ZZ-LENTEJA")[0], 6);

    // Una búsqueda no es una línea: no hay dónde dar de alta.
    auto* buscar = control<QLineEdit>(f, "BuscarProducto");
    buscar->setText(QStringLiteral("frijol"));
    QTest::keyClick(buscar, Qt::Key_Return);
    esperaLeyenda(f);
    EXPECT_FALSE(control<QPushButton>(f, "BotonNuevoProducto")->isEnabled());
}

} // namespace
} // namespace cajaplex
