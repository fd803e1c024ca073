// Recorre la aplicación como un usuario y guarda una captura PNG de cada pantalla: acceso,
// términos, elección de empresa, menú y cada módulo del menú como admin, y el menú del cajero y el
// del mesero. Con --mensaje-conexion solo intenta entrar (con el servicio ya detenido) y captura
// la pantalla completa con el mensaje abierto. Lo usa scripts/capturas bajo Xvfb.
//   cajaplex-capturas --configuracion DIR --salida DIR [--ancho 1366 --alto 768]
//                     [--mensaje-conexion | --solo-restaurante]
#include <cmath>
#include <cstdio>
#include <functional>
#include <span>
#include <utility>
#include <vector>

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QCommandLineParser>
#include <QDialog>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFrame>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QPixmap>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QSpinBox>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>

#include "catalog/ImportadorExcel.h"
#include "catalog/ProductosEdita.h"
#include "datos/AjustesEstacion.h"
#include "datos/Auditoria.h"
#include "datos/Consulta.h"
#include "datos/ModuloDatos.h"
#include "datos/Transaccion.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Mensajes.h"
#include "pantallas/RegistroModulos.h"
#include "pantallas/Sonidos.h"
#include "restaurant/ComandasPagar.h"
#include "restaurant/RegistroComanda.h"
#include "sales/PuntoVenta.h"
#include "shell/Instalacion.h"
#include "shell/InstalacionEstacion.h"
#include "shell/MenuPrimario.h"
#include "shell/Principal.h"

using namespace cajaplex;

namespace {

bool espera(const std::function<bool()>& condicion) {
    QElapsedTimer reloj;
    reloj.start();
    while (!condicion()) {
        if (reloj.elapsed() > 10000) return false;
        QTest::qWait(20);
    }
    return true;
}

class Fotografo {
public:
    Fotografo(QWidget& ventana, QString carpeta, QString sufijo)
        : ventana_(ventana), carpeta_(std::move(carpeta)), sufijo_(std::move(sufijo)) {}

    void toma(const QString& nombre) {
        QTest::qWait(300); // que terminen la leyenda y el pintado
        guarda(ventana_.grab(), nombre);
    }

    // Otra ventana (un selector abierto aparte de la principal).
    void tomaDe(QWidget& otra, const QString& nombre) {
        QTest::qWait(300);
        guarda(otra.grab(), nombre);
    }

    // La pantalla entera, con los diálogos que haya encima de la ventana.
    void tomaPantalla(const QString& nombre) {
        QTest::qWait(300);
        guarda(QGuiApplication::primaryScreen()->grabWindow(0), nombre);
    }

private:
    void guarda(const QPixmap& imagen, const QString& nombre) {
        const QString ruta = QDir(carpeta_).filePath(QStringLiteral("%1-%2-%3.png")
                                                         .arg(++numero_, 2, 10, QLatin1Char('0'))
                                                         .arg(nombre, sufijo_));
        imagen.save(ruta);
        std::printf("%s\n", qPrintable(ruta));
    }

    QWidget& ventana_;
    QString carpeta_;
    QString sufijo_;
    int numero_ = 0;
};

template <typename T> T* control(QWidget& v, const char* nombre) {
    auto* c = v.findChild<T*>(QString::fromLatin1(nombre));
    if (!c) std::fprintf(stderr, "No se encontró %s\n", nombre);
    return c;
}

// Unos renglones de bitácora para que su listado no salga vacío.
void registraEjemplos(const Sesion& sesion) {
    Transaccion t(ModuloDeDatos.ConexionBD);
    Auditoria::registra(t, sesion,
                        {tipoAuditoria::Insercion,
                         QStringLiteral("Catálogos -> Productos"),
                         QStringLiteral("Producto 7501000111111"),
                         {},
                         QStringLiteral("Alta")});
    Auditoria::registra(t, sesion,
                        {tipoAuditoria::Actualizacion, QStringLiteral("Catálogos -> Productos"),
                         QStringLiteral("Precio 1: 18.50"), QStringLiteral("Precio 1: 17.00"),
                         QStringLiteral("Ajuste de precio")});
    Auditoria::registra(t, sesion,
                        {tipoAuditoria::CorteCaja,
                         QStringLiteral("Ventas -> Caja Chica"),
                         QStringLiteral("Corte 12"),
                         {},
                         {}});
    t.confirma();
}

// Escribe usuario y contraseña y pulsa Ingresar.
void ingresa(QWidget& ventana, const QString& usuario, const QString& contrasena) {
    control<QLineEdit>(ventana, "NombreUsuario")->setText(usuario);
    control<QLineEdit>(ventana, "ContrasenaUsuario")->setText(contrasena);
    QTest::mouseClick(control<QPushButton>(ventana, "AuthenticateRectBTN"), Qt::LeftButton);
}

// Cierra la sesión (contestando que sí) y entra con otro usuario; con varias empresas toma la
// primera. Fotografía su menú.
bool menuDe(TCajaplexF& ventana, Fotografo& foto, const QString& usuario) {
    Mensajes::respondeSiguiente(Respuesta::Aceptar);
    QTest::mouseClick(control<QPushButton>(ventana, "BotonCerrarSesion"), Qt::LeftButton);
    if (!espera([&] { return !ventana.sesionAbierta(); })) return false;
    ingresa(ventana, usuario, usuario);
    auto* empresas = control<QListWidget>(ventana, "ListaEmpresas");
    if (!espera([&] { return ventana.sesionAbierta() || empresas->isVisible(); })) {
        std::fprintf(stderr, "No entró %s: %s\n", qPrintable(usuario),
                     qPrintable(Mensajes::ultimos().join(QStringLiteral(" | "))));
        return false;
    }
    if (!ventana.sesionAbierta()) {
        QTest::mouseClick(control<QPushButton>(ventana, "BotonEmpresa"), Qt::LeftButton);
        if (!espera([&] { return ventana.sesionAbierta(); })) return false;
    }
    foto.toma(QStringLiteral("menu-") + usuario);
    return true;
}

// Con el servicio detenido: el intento de entrar termina en el mensaje de error de conexión, que
// se fotografía abierto sobre la ventana (diálogo real, no el modo de prueba).
int mensajeDeConexion(QWidget& ventana, Fotografo& foto) {
    bool visto = false;
    Mensajes::modoPrueba(false);
    Mensajes::revisaDialogos([&](QDialog& dialogo) {
        if (!QTest::qWaitForWindowExposed(&dialogo))
            std::fprintf(stderr, "El mensaje no llegó a verse\n");
        foto.tomaPantalla(QStringLiteral("mensaje-conexion"));
        visto = true;
    });
    ingresa(ventana, QStringLiteral("admin"), QStringLiteral("admin"));
    const bool llego = espera([&] { return visto; });
    Mensajes::revisaDialogos({});
    if (!llego) std::fprintf(stderr, "No apareció el mensaje de conexión\n");
    return llego ? 0 : 1;
}

// Una foto hecha aquí para el arroz (producto 1), guardada con la edición del producto como la
// guardaría el usuario: los detalles del punto de venta la muestran.
void fotoDeEjemplo(const Sesion& sesion) {
    QImage imagen(800, 600, QImage::Format_RGB32);
    imagen.fill(QColor(0xF5, 0xE6, 0xC8));
    {
        QPainter pintor(&imagen);
        pintor.setRenderHint(QPainter::Antialiasing);
        const QRect bolsa(250, 100, 300, 420);
        pintor.setPen(Qt::NoPen);
        pintor.setBrush(QColor(0x1E, 0x90, 0xFF));
        pintor.drawRoundedRect(bolsa, 40, 40);
        QFont letra = pintor.font();
        letra.setPixelSize(64);
        letra.setBold(true);
        pintor.setFont(letra);
        pintor.setPen(Qt::white);
        pintor.drawText(bolsa, Qt::AlignCenter, QStringLiteral("ARROZ\n1 kg"));
    }
    QTemporaryDir carpeta;
    const QString ruta = carpeta.filePath(QStringLiteral("arroz.png"));
    imagen.save(ruta);
    TProductosEditaF editor(sesion, 1, 0);
    editor.resize(1024, 700);
    editor.show();
    espera(
        [&] { return !editor.findChild<QLineEdit*>(QStringLiteral("clave"))->text().isEmpty(); });
    editor.cargaArchivoFoto(ruta);
    if (auto* almacenar = control<QPushButton>(editor, "BotonSiguiente")) almacenar->click();
    if (!espera([&] { return !editor.isVisible(); }))
        std::fprintf(stderr, "No se guardó la foto: %s\n",
                     qPrintable(Mensajes::ultimos().join(QStringLiteral(" | "))));
}

// Un diálogo real (sin el modo de prueba) abierto por `abre`: se fotografía la pantalla entera
// con él encima y, si se pide, se elige en él antes de cerrarlo.
void dialogoReal(Fotografo& foto, const QString& nombre, const std::function<void()>& abre,
                 const std::function<void(QDialog&)>& elige = {}) {
    Mensajes::modoPrueba(false);
    Mensajes::revisaDialogos([&](QDialog& dialogo) {
        if (!QTest::qWaitForWindowExposed(&dialogo))
            std::fprintf(stderr, "El diálogo %s no llegó a verse\n", qPrintable(nombre));
        foto.tomaPantalla(nombre);
        if (elige) elige(dialogo);
    });
    abre();
    Mensajes::revisaDialogos({});
    Mensajes::modoPrueba(true);
}

void alMenu(TCajaplexF& ventana); // más abajo

void toca(QWidget& ventana, const char* boton) {
    if (auto* b = control<QPushButton>(ventana, boton)) QTest::mouseClick(b, Qt::LeftButton);
    QTest::qWait(100);
}

// El Importador de Excel con una hoja de productos cargada (dos renglones con errores) y el
// resumen al terminar.
// El cuadro de instalación como lo ve quien instala una segunda caja en la red del negocio.
void instalacionDeEjemplo(Fotografo& foto) {
    QTemporaryDir carpeta;
    AjustesEstacion ajustes(carpeta.path());
    DatosInstalacion datos;
    datos.direccion = QStringLiteral("192.168.1.10");
    datos.puerto = 8443;
    datos.servicio = {true, QStringLiteral("65:18:44:84:C8:8B:DB:11:F9:3F:A7:2B:9E:15:DF:1E:AA:D1:"
                                           "1A:FC:C7:61:A7:45:99:D0:9D:58:2C:B5:9F:76")};
    datos.descripcion = QStringLiteral("Caja 2");
    TInstalacionEstacionF cuadro(ajustes, datos);
    cuadro.show();
    control<QLineEdit>(cuadro, "UsuarioAdministrador")->setText(QStringLiteral("admin"));
    control<QLineEdit>(cuadro, "ContrasenaAdministrador")->setText(QStringLiteral("admin"));
    foto.tomaDe(cuadro, QStringLiteral("InstalacionEstacion"));
}

void importacionDeEjemplo(TCajaplexF& ventana, Fotografo& foto) {
    QTemporaryDir carpeta;
    const QString ruta = carpeta.filePath(QStringLiteral("productos.csv"));
    QFile archivo(ruta);
    if (!archivo.open(QIODevice::WriteOnly)) return;
    archivo.write("LINEA,CLAVE,DESCRIPCION,UNIDAD,CLAVESAT,EXISTENCIA,COSTO,INVENTARIABLE,"
                  "AUTORIZABLE,SERIABLE,KIT,MENSUAL,CADUCA,KIOSKO,ORDEN,BASCULA,PRECIO1,PRECIO2,"
                  "PRECIO3,PRECIO4,PRECIO5,ABIERTO,IVA,IEPS,ADICIONAL,CODIGOBARRA,MAXIMO,MINIMO\n"
                  "Importados,IMP-01,Café soluble 200 g,Pieza,50201708,24,62.5,SI,NO,NO,NO,NO,NO,"
                  "SI,1,NO,89.9,87,85,83,80,NO,16,0,,7501000000101,48,6\n"
                  "Importados,IMP-02,Galletas surtidas 500 g,Paquete,50181900,36,31,SI,NO,NO,NO,"
                  "NO,SI,SI,2,NO,45.5,44,43,42,40,NO,16,8,,7501000000102,60,12\n"
                  "Importados,IMP-03,Queso fresco,Kilogramo,50131700,12.5,98,SI,NO,NO,NO,NO,SI,"
                  "NO,0,SI,doce,128,126,124,120,NO,0,0,,,20,4\n"
                  "Abarrotes,1001,Arroz súper extra 1 kg,Pieza,50221101,48,24.5,SI,NO,NO,NO,NO,"
                  "NO,SI,1,NO,32,31.04,30.4,29.76,28.8,NO,0,0,,7501058000118,60,12\n"
                  "Importados,IMP-04,Vela aromática,Pieza,39112604,8,35,quizá,NO,NO,NO,NO,NO,NO,"
                  "0,NO,59,57,55,53,50,NO,16,0,,,16,2\n");
    archivo.close();
    auto* boton = ventana.findChild<QPushButton*>(QStringLiteral("ModuloImportadorExcel"));
    if (!boton) return;
    QTest::mouseClick(boton, Qt::LeftButton);
    auto* importador = ventana.findChild<TImportadorExcelF*>();
    if (!importador) return;
    importador->abreArchivo(ruta);
    espera([&] { return importador->hoja().renglones.size() == 5; });
    control<QRadioButton>(*importador, "TipoProductos")->setChecked(true);
    foto.toma(QStringLiteral("ImportadorExcel-hoja"));
    Mensajes::respondeSiguiente(Respuesta::Aceptar);
    QTest::mouseClick(control<QPushButton>(*importador, "BotonImportar"), Qt::LeftButton);
    espera([&] { return control<QWidget>(*importador, "ResumenImportacion")->isVisible(); });
    foto.toma(QStringLiteral("ImportadorExcel-resumen"));
    for (int i = 0;
         i < 5 && !ventana.findChild<QWidget*>(QStringLiteral("MenuPrimario"))->isVisible(); ++i) {
        ventana.regresa();
        QTest::qWait(50);
    }
}

// Una venta de verdad como admin, cada pestaña con la venta en curso: el carrito con tres
// renglones, el catálogo filtrado, los detalles del arroz con su foto, las ventas en espera, el
// cierre con dos formas de pago y su cambio, la pregunta del tipo de operación, el ticket en el
// visor de PDF y la venta en la lista y en el visor de ventas.
void ventaDeEjemplo(TCajaplexF& ventana, Fotografo& foto) {
    fotoDeEjemplo(ventana.sesion());
    auto* modulo = ventana.findChild<QPushButton*>(QStringLiteral("ModuloPuntoVenta"));
    if (!modulo) return;
    QTest::mouseClick(modulo, Qt::LeftButton);
    auto* pv = ventana.findChild<TPuntoVentaF*>();
    auto* buscar = control<QLineEdit>(ventana, "BuscarProducto");
    if (!pv || !buscar) return;
    espera([&] { return control<QTableWidget>(*pv, "ListaFormaPago")->rowCount() > 0; });
    for (const char* codigo : {"7501058000118", "3*1002", "7501058000354"}) {
        buscar->setText(QString::fromLatin1(codigo));
        QTest::keyClick(buscar, Qt::Key_Return);
        QTest::qWait(100);
    }
    foto.toma(QStringLiteral("PuntoVenta-carrito"));

    toca(*pv, "BotonConsultarTodaBD");
    if (auto* filtro = control<QLineEdit>(*pv, "BuscarTextoProducto")) {
        filtro->setText(QStringLiteral("refresco"));
        QTest::keyClick(filtro, Qt::Key_Return);
    }
    foto.toma(QStringLiteral("PuntoVenta-consulta"));
    toca(*pv, "GrupoBotonAnterior");

    auto* carrito = control<QAbstractItemView>(*pv, "ProductosUsuario");
    carrito->setCurrentIndex(carrito->model()->index(0, 0));
    toca(*pv, "BotonDetalles");
    foto.toma(QStringLiteral("PuntoVenta-detalles"));
    toca(*pv, "GrupoBotonAnterior");

    // Otra venta en espera (en su propia ventana, aquí oculta) para que la lista tenga qué elegir.
    Mensajes::respondeOpcion(0); // "Venta Nueva"
    toca(*pv, "VentaEnEspera");
    QTest::qWait(300);
    for (QWidget* w : QApplication::topLevelWidgets())
        if (qobject_cast<TPuntoVentaF*>(w)) w->hide();
    dialogoReal(foto, QStringLiteral("PuntoVenta-espera"), [&] { toca(*pv, "VentaEnEspera"); });
    for (QWidget* w : QApplication::topLevelWidgets())
        if (qobject_cast<TPuntoVentaF*>(w)) w->close();

    // Un cliente con correo, que llega escrito al cierre. Dos formas de pago: 100 con tarjeta y
    // el resto en efectivo, redondeado, con cambio.
    Mensajes::respondeOpcion(3); // María Guadalupe
    toca(*pv, "BotonSeleccionaCliente");
    QTest::qWait(300);
    toca(*pv, "GrupoBotonSiguiente");
    const double total = pv->venta().totales().total;
    auto* formas = control<QTableWidget>(*pv, "ListaFormaPago");
    auto* importe = control<QLineEdit>(*pv, "ImportePago");
    formas->setCurrentCell(2, 0);
    importe->setText(QStringLiteral("100"));
    formas->setCurrentCell(0, 0);
    importe->setText(QString::number(std::ceil((total - 100) / 50) * 50 + 50, 'f', 0));
    foto.toma(QStringLiteral("PuntoVenta-cierre"));
    dialogoReal(
        foto, QStringLiteral("PuntoVenta-tipo-operacion"),
        [&] { toca(*pv, "GrupoBotonSiguiente"); },
        [](QDialog& dialogo) {
            for (auto* opcion : dialogo.findChildren<QRadioButton*>())
                if (opcion->text() == QStringLiteral("Almacenar y Visualizar PDF"))
                    opcion->setChecked(true);
            dialogo.accept();
        });
    QTest::qWait(2000); // se registra y el ticket se dibuja en otro hilo
    foto.tomaPantalla(QStringLiteral("ticket"));
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w != &ventana && w->isVisible()) w->close();
    alMenu(ventana);

    auto* ventas = ventana.findChild<QPushButton*>(QStringLiteral("ModuloVentas"));
    if (!ventas) return;
    QTest::mouseClick(ventas, Qt::LeftButton);
    auto* lista = ventana.findChild<QAbstractItemView*>(QStringLiteral("TablaVentas"));
    espera([&] { return lista && lista->model() && lista->model()->rowCount() > 0; });
    foto.toma(QStringLiteral("Ventas-del-dia"));
    if (lista && lista->model() && lista->model()->rowCount() > 0) {
        lista->setCurrentIndex(lista->model()->index(0, 0));
        if (auto* abrir = control<QPushButton>(ventana, "BotonAbrir"))
            QTest::mouseClick(abrir, Qt::LeftButton);
        foto.toma(QStringLiteral("Visor"));
    }
    alMenu(ventana);

    // Los clientes: la lista y uno abierto en su edición.
    auto* clientes = ventana.findChild<QPushButton*>(QStringLiteral("ModuloClientes"));
    if (!clientes) return;
    QTest::mouseClick(clientes, Qt::LeftButton);
    auto* listaClientes = ventana.findChild<QAbstractItemView*>(QStringLiteral("ListaClientes"));
    espera([&] {
        return listaClientes && listaClientes->model() && listaClientes->model()->rowCount() > 1;
    });
    foto.toma(QStringLiteral("Clientes-lista"));
    if (listaClientes && listaClientes->model() && listaClientes->model()->rowCount() > 1) {
        listaClientes->setCurrentIndex(listaClientes->model()->index(1, 0));
        toca(ventana, "BotonModificar");
        foto.toma(QStringLiteral("Clientes-edita"));
    }
    for (int i = 0;
         i < 5 && !ventana.findChild<QWidget*>(QStringLiteral("MenuPrimario"))->isVisible(); ++i) {
        ventana.regresa();
        QTest::qWait(50);
    }
}

// Regresa hasta el menú (una pantalla puede tener páginas propias encima).
void alMenu(TCajaplexF& ventana) {
    for (int i = 0;
         i < 5 && !ventana.findChild<QWidget*>(QStringLiteral("MenuPrimario"))->isVisible(); ++i) {
        ventana.regresa();
        QTest::qWait(50);
    }
}

// Compras como admin: cada clase de documento con renglones (y registrada), el diálogo de
// reposición, la edición de un proveedor y la lista de documentos con uno abierto.
void comprasDeEjemplo(TCajaplexF& ventana, Fotografo& foto) {
    auto* modulo = ventana.findChild<QPushButton*>(QStringLiteral("ModuloCompras"));
    if (!modulo) return;
    QTest::mouseClick(modulo, Qt::LeftButton);
    QTest::qWait(300);
    auto* tipo = control<QComboBox>(ventana, "TipoDocumento");
    auto* proveedor = control<QComboBox>(ventana, "Proveedor");
    auto* clave = control<QLineEdit>(ventana, "ClaveProducto");
    if (!tipo || !proveedor || !clave) return;
    const char* nombres[] = {"Compras-orden", "Compras-recepcion", "Compras-devolucion",
                             "Compras-ajuste"};
    for (int i = 0; i < 4; ++i) {
        tipo->setCurrentIndex(i);
        proveedor->setCurrentIndex(proveedor->findText(QStringLiteral("Bebidas y Refrescos del "
                                                                      "Centro")));
        for (const char* codigo : {"2001", "2002", "1001"}) {
            clave->setText(QString::fromLatin1(codigo));
            QTest::keyClick(clave, Qt::Key_Return);
            QTest::qWait(100);
        }
        if (i == 1) {
            // La línea "Refrescos" abierta en el árbol de productos.
            auto* arbol = control<QTreeWidget>(ventana, "Lineas");
            const auto refrescos = arbol->findItems(QStringLiteral("Refrescos"),
                                                    Qt::MatchExactly | Qt::MatchRecursive);
            if (!refrescos.isEmpty()) {
                arbol->scrollToItem(refrescos.first());
                QTest::mouseClick(arbol->viewport(), Qt::LeftButton, {},
                                  arbol->visualItemRect(refrescos.first()).center());
            }
        }
        foto.toma(QString::fromLatin1(nombres[i]));
        Mensajes::respondeOpcion(2); // "Almacenar Únicamente"
        toca(ventana, "BotonFinalizar");
        QTest::qWait(500);
    }
    dialogoReal(
        foto, QStringLiteral("Compras-reposicion"), [&] { toca(ventana, "BotonReposicion"); },
        [](QDialog& dialogo) { dialogo.reject(); });
    alMenu(ventana);

    if (auto* proveedores = ventana.findChild<QPushButton*>(QStringLiteral("ModuloProveedores"))) {
        QTest::mouseClick(proveedores, Qt::LeftButton);
        auto* lista = ventana.findChild<QAbstractItemView*>(QStringLiteral("ListaProveedores"));
        espera([&] { return lista && lista->model() && lista->model()->rowCount() > 0; });
        if (lista && lista->model() && lista->model()->rowCount() > 0) {
            lista->setCurrentIndex(lista->model()->index(0, 0));
            toca(ventana, "BotonModificar");
            foto.toma(QStringLiteral("Proveedores-edita"));
        }
        alMenu(ventana);
    }

    auto* documentos = ventana.findChild<QPushButton*>(QStringLiteral("ModuloDocumentosCompra"));
    if (!documentos) return;
    QTest::mouseClick(documentos, Qt::LeftButton);
    auto* tabla = ventana.findChild<QAbstractItemView*>(QStringLiteral("TablaCompras"));
    espera([&] { return tabla && tabla->model() && tabla->model()->rowCount() > 0; });
    foto.toma(QStringLiteral("DocumentosCompra-lista"));
    if (tabla && tabla->model() && tabla->model()->rowCount() > 0) {
        tabla->setCurrentIndex(tabla->model()->index(0, 0));
        toca(ventana, "BotonAbrir");
        QTest::qWait(300);
        foto.toma(QStringLiteral("DocumentosCompra-documento"));
    }
    alMenu(ventana);
}

// Toca el renglón de una lista cuyo texto empieza así.
void tocaEnLista(QListWidget* lista, const QString& texto) {
    if (!lista) return;
    const auto items = lista->findItems(texto, Qt::MatchStartsWith);
    if (items.isEmpty()) {
        std::fprintf(stderr, "Sin %s en %s\n", qPrintable(texto), qPrintable(lista->objectName()));
        return;
    }
    lista->scrollToItem(items.first());
    QTest::mouseClick(lista->viewport(), Qt::LeftButton, {},
                      lista->visualItemRect(items.first()).center());
    QTest::qWait(200);
}

// Mesas del mesero de la demostración: la 1 abierta y la 3 y la 7 con la cuenta cerrada. Solo si el
// plano está libre: la segunda corrida (otro tamaño) usa las mismas.
void comandasDeEjemplo(const Sesion& admin) {
    Sesion mesero = admin;
    mesero.UsuarioID = 3;
    mesero.esAdmin = false;
    RegistroComanda registro(ModuloDeDatos.ConexionBD, mesero);
    for (const NodoPlano& n : registro.plano().nodos)
        if (n.status != 0) return;
    const struct {
        int64_t nodo;
        std::vector<int64_t> productos;
        bool cerrada;
    } mesas[] = {
        {1, {101, 106, 120}, false}, {3, {102, 111, 111, 120}, true}, {7, {114, 120}, true}};
    for (const auto& m : mesas) {
        std::vector<RenglonComanda> carrito;
        int comensal = 0;
        for (int64_t p : m.productos) {
            RenglonComanda r;
            r.producto = p;
            r.comensal = ++comensal;
            carrito.push_back(r);
        }
        const ComandaAbierta c =
            registro.registraSeccion(m.nodo, std::nullopt, {comensal, {}}, carrito);
        if (m.cerrada) registro.cierraCuenta(m.nodo, c.id);
    }
}

// El monitor de preparación con tarjetas en los tres colores (recién llegadas, de 18 y de 27
// minutos) y un renglón en preparación, normal y en pantalla completa.
void monitorDeEjemplo(TCajaplexF& ventana, Fotografo& foto) {
    Sesion mesero = ventana.sesion();
    mesero.UsuarioID = 3;
    mesero.esAdmin = false;
    RegistroComanda registro(ModuloDeDatos.ConexionBD, mesero);
    const struct {
        int64_t nodo;
        std::vector<std::pair<int64_t, const char*>> productos;
        int minutos;
    } mesas[] = {{4, {{110, ""}, {113, "Sin rábano"}, {139, ""}}, 27},
                 {5, {{111, "Término medio"}, {107, ""}}, 18},
                 {8, {{114, ""}, {117, "Sin cebolla"}, {121, ""}}, 3}};
    bool libres = true;
    for (const NodoPlano& n : registro.plano().nodos)
        if ((n.id == 4 || n.id == 5 || n.id == 8) && n.status != 0) libres = false;
    for (const auto& m : libres ? std::span(mesas) : std::span(mesas, 0)) {
        std::vector<RenglonComanda> carrito;
        for (const auto& [producto, nota] : m.productos) {
            RenglonComanda r;
            r.producto = producto;
            r.comensal = static_cast<int>(carrito.size() % 2) + 1;
            r.nota = QString::fromUtf8(nota);
            carrito.push_back(r);
        }
        const ComandaAbierta c = registro.registraSeccion(m.nodo, std::nullopt, {2, {}}, carrito);
        Consulta atrasa(ModuloDeDatos.ConexionBD,
                        QStringLiteral("Update ComandaDetalle Set fechaCaptura = "
                                       "datetime('now', 'localtime', :Desfase) Where empresaID = "
                                       ":EmpresaID and id = :ID"));
        atrasa.parametro(QStringLiteral("Desfase"))
            .texto(QStringLiteral("-%1 minutes").arg(m.minutos));
        atrasa.parametro(QStringLiteral("EmpresaID")).entero(mesero.EmpresaID);
        atrasa.parametro(QStringLiteral("ID")).entero(c.id);
        atrasa.ejecuta();
    }
    toca(ventana, "ModuloMonitorPreparacion");
    auto* monitor = ventana.findChild<QWidget*>(QStringLiteral("MonitorPreparacion"));
    if (!monitor || !espera([&] {
            return monitor->findChildren<QFrame*>(QStringLiteral("EncabezadoComanda")).size() >= 4;
        })) {
        std::fprintf(stderr, "El monitor no mostró las comandas\n");
        return;
    }
    if (auto* renglon = monitor->findChild<QPushButton*>(QStringLiteral("Renglon2")))
        if (renglon->findChild<QLabel*>()->text().contains(QStringLiteral("Pozole")))
            QTest::mouseClick(renglon, Qt::LeftButton);
    foto.toma(QStringLiteral("MonitorPreparacion"));
    toca(*monitor, "PantallaCompleta");
    foto.tomaPantalla(QStringLiteral("MonitorPreparacion-completa"));
    toca(*monitor, "PantallaCompleta");
    alMenu(ventana);
}

// El restaurante (admin en "Restaurante El Portal"): el plano con mesas libres, abiertas y con la
// cuenta cerrada, una comanda nueva, el menú con su carrito, las áreas de comida con sus nodos y
// su edición, y en el punto de venta el selector de comandas por cobrar y la comanda cargada.
int restaurante(TCajaplexF& ventana, Fotografo& foto) {
    ingresa(ventana, QStringLiteral("admin"), QStringLiteral("admin"));
    auto* empresas = control<QListWidget>(ventana, "ListaEmpresas");
    if (!espera([&] { return empresas->isVisible(); })) {
        std::fprintf(stderr, "No se llegó a la lista de empresas: %s\n",
                     qPrintable(Mensajes::ultimos().join(QStringLiteral(" | "))));
        return 1;
    }
    // Los renglones guardan su empresa; la del restaurante es la 2 de la demostración.
    for (int i = 0; i < empresas->count(); ++i)
        if (empresas->item(i)->data(Qt::UserRole).toLongLong() == 2) empresas->setCurrentRow(i);
    toca(ventana, "BotonEmpresa");
    if (!espera([&] { return ventana.sesionAbierta(); })) {
        std::fprintf(stderr, "No entró al restaurante\n");
        return 1;
    }
    comandasDeEjemplo(ventana.sesion());
    monitorDeEjemplo(ventana, foto);

    toca(ventana, "ModuloComandas");
    espera([&] {
        auto* mesa = ventana.findChild<QPushButton*>(QStringLiteral("Nodo1"));
        return mesa && mesa->isVisible();
    });
    foto.toma(QStringLiteral("Comandas-plano"));
    toca(ventana, "Nodo2");
    control<QLineEdit>(ventana, "NumeroPersonas")->setText(QStringLiteral("4"));
    control<QLineEdit>(ventana, "ObservacionesComanda")->setText(QStringLiteral("Cumpleaños"));
    foto.toma(QStringLiteral("Comandas-nueva"));
    toca(ventana, "BotonSiguiente");
    auto* menu = control<QListWidget>(ventana, "MenuProductos");
    espera([&] { return menu && menu->count() > 0; });
    tocaEnLista(menu, QStringLiteral("Entradas"));
    tocaEnLista(menu, QStringLiteral("Guacamole"));
    tocaEnLista(menu, QStringLiteral("Sopa de tortilla"));
    if (auto* comensal = ventana.findChild<QSpinBox*>(QStringLiteral("NumeroComensal")))
        comensal->setValue(2);
    tocaEnLista(menu, QStringLiteral("Queso fundido"));
    foto.toma(QStringLiteral("Comandas-menu"));
    Mensajes::respondeSiguiente(Respuesta::Aceptar); // "¿Aún así desea salir?"
    toca(ventana, "BotonAnterior");
    alMenu(ventana);

    toca(ventana, "ModuloAreasComida");
    auto* areas = ventana.findChild<QTreeWidget*>(QStringLiteral("AreasComida"));
    espera([&] { return areas && areas->topLevelItemCount() > 0; });
    foto.toma(QStringLiteral("AreasComida"));
    if (areas) {
        areas->expandAll();
        const auto salon = areas->findItems(QStringLiteral("Salón Principal"),
                                            Qt::MatchExactly | Qt::MatchRecursive);
        if (!salon.isEmpty()) {
            Mensajes::respondeOpcion(5); // "Ver Nodos de Comida"
            QTest::mouseClick(areas->viewport(), Qt::LeftButton, {},
                              areas->visualItemRect(salon.first()).center());
            auto* nodos = ventana.findChild<QListWidget*>(QStringLiteral("NodosComida"));
            espera([&] { return nodos && nodos->count() > 0; });
            foto.toma(QStringLiteral("AreasComida-nodos"));
            if (nodos && nodos->count() > 0) {
                nodos->setCurrentRow(0);
                toca(ventana, "BotonModificar");
                foto.toma(QStringLiteral("AreasComida-edita"));
            }
        }
    }
    alMenu(ventana);

    toca(ventana, "ModuloPuntoVenta");
    auto* pv = ventana.findChild<TPuntoVentaF*>();
    espera([&] {
        return pv && pv->findChild<QTableWidget*>(QStringLiteral("ListaFormaPago"))->rowCount() > 0;
    });
    toca(ventana, "BotonCobrarComanda");
    auto* selector = ventana.findChild<TComandasPagarF*>();
    if (!selector) {
        std::fprintf(stderr, "No se abrió el selector de comandas\n");
        return 1;
    }
    selector->resize(ventana.size());
    auto* lista = selector->findChild<QAbstractItemView*>(QStringLiteral("ListaComandasPagar"));
    espera([&] { return lista->model()->rowCount() > 0; });
    foto.tomaDe(*selector, QStringLiteral("ComandasPagar"));
    const QModelIndex primera = lista->model()->index(0, 0);
    QTest::mouseClick(lista->viewport(), Qt::LeftButton, {}, lista->visualRect(primera).center());
    espera([&] { return pv->venta().RemisionDetalles().size() > 0; });
    foto.toma(QStringLiteral("PuntoVenta-comanda"));
    Mensajes::respondeSiguiente(Respuesta::Aceptar); // "¿Aún así desea salir?"
    alMenu(ventana);
    const QStringList mensajes = Mensajes::ultimos();
    if (!mensajes.isEmpty())
        std::printf("Mensajes mostrados: %s\n", qPrintable(mensajes.join(QStringLiteral(" | "))));
    return 0;
}

} // namespace

int main(int argc, char* argv[]) {
    QApplication aplicacion(argc, argv);
    QCommandLineParser opciones;
    const QCommandLineOption configuracion(QStringLiteral("configuracion"), {},
                                           QStringLiteral("DIR"));
    const QCommandLineOption salida(QStringLiteral("salida"), {}, QStringLiteral("DIR"));
    const QCommandLineOption ancho(QStringLiteral("ancho"), {}, QStringLiteral("N"),
                                   QStringLiteral("1366"));
    const QCommandLineOption alto(QStringLiteral("alto"), {}, QStringLiteral("N"),
                                  QStringLiteral("768"));
    const QCommandLineOption conexion(QStringLiteral("mensaje-conexion"));
    const QCommandLineOption soloRestaurante(QStringLiteral("solo-restaurante"));
    opciones.addOptions({configuracion, salida, ancho, alto, conexion, soloRestaurante});
    opciones.process(aplicacion);

    aplicaHojaEstilo(aplicacion);
    Mensajes::modoPrueba(true); // ningún diálogo modal detiene el recorrido
    TCajaplexF ventana({opciones.value(configuracion), bibliotecasRequeridas()});
    Sonidos::activa(false);
    ventana.resize(opciones.value(ancho).toInt(), opciones.value(alto).toInt());
    ventana.show();
    Fotografo foto(ventana, opciones.value(salida),
                   opciones.value(ancho) + QLatin1Char('x') + opciones.value(alto));

    if (opciones.isSet(conexion)) return mensajeDeConexion(ventana, foto);
    if (opciones.isSet(soloRestaurante)) return restaurante(ventana, foto);

    foto.toma(QStringLiteral("acceso"));
    QTest::mouseClick(control<QPushButton>(ventana, "EtiquetaTerminosYCondiciones"),
                      Qt::LeftButton);
    foto.toma(QStringLiteral("terminos"));
    ventana.regresa();

    ingresa(ventana, QStringLiteral("admin"), QStringLiteral("admin"));
    if (!espera([&] { return control<QListWidget>(ventana, "ListaEmpresas")->isVisible(); })) {
        std::fprintf(stderr, "No se llegó a la lista de empresas: %s\n",
                     qPrintable(Mensajes::ultimos().join(QStringLiteral(" | "))));
        return 1;
    }
    foto.toma(QStringLiteral("empresas"));
    QTest::mouseClick(control<QPushButton>(ventana, "BotonEmpresa"), Qt::LeftButton);
    espera([&] { return ventana.sesionAbierta(); });
    registraEjemplos(ventana.sesion());
    foto.toma(QStringLiteral("menu"));

    for (const EntradaMenu& m : RegistroModulos::entradas()) {
        if (!m.visible(ventana.sesion())) continue;
        auto* boton = ventana.findChild<QPushButton*>(QStringLiteral("Modulo") + m.nombre);
        if (!boton) continue;
        QTest::mouseClick(boton, Qt::LeftButton);
        // Las pantallas de consulta se fotografían con resultados.
        if (auto* mostrar = ventana.findChild<QPushButton*>(QStringLiteral("MostrarResultados")))
            QTest::mouseClick(mostrar, Qt::LeftButton);
        foto.toma(m.nombre);
        // Las pantallas con búsqueda, también con una lista llena.
        if (auto* buscar = ventana.findChild<QLineEdit*>(QStringLiteral("BuscarProducto"))) {
            buscar->setText(QStringLiteral("a"));
            QTest::keyClick(buscar, Qt::Key_Return);
            foto.toma(m.nombre + QStringLiteral("-busqueda"));
        }
        // Una pantalla que es menú (mosaicos): cada una de las suyas.
        const auto mosaicos = ventana.findChildren<QPushButton*>();
        for (QPushButton* sub : mosaicos) {
            if (sub->property("estilo") != QStringLiteral("mosaico") || !sub->isVisible() ||
                sub->objectName().startsWith(QStringLiteral("Modulo")))
                continue;
            const QString nombre = sub->objectName();
            QTest::mouseClick(sub, Qt::LeftButton);
            foto.toma(m.nombre + QLatin1Char('-') + nombre);
            ventana.regresa();
            QTest::qWait(50);
        }
        // Y el primer renglón abierto para modificarlo, donde se puede.
        auto* lista = ventana.findChild<QAbstractItemView*>(QStringLiteral("Productos"));
        auto* modificar = ventana.findChild<QPushButton*>(QStringLiteral("BotonModificar"));
        if (lista && modificar && lista->model() && lista->model()->rowCount() > 0) {
            lista->setCurrentIndex(lista->model()->index(0, 0));
            QTest::mouseClick(modificar, Qt::LeftButton);
            foto.toma(m.nombre + QStringLiteral("-modifica"));
        }
        // "Regresar" hasta el menú (una pantalla puede tener páginas propias encima).
        for (int i = 0;
             i < 5 && !ventana.findChild<QWidget*>(QStringLiteral("MenuPrimario"))->isVisible();
             ++i) {
            ventana.regresa();
            QTest::qWait(50);
        }
    }
    const QStringList mensajes = Mensajes::ultimos();
    if (!mensajes.isEmpty())
        std::printf("Mensajes mostrados: %s\n", qPrintable(mensajes.join(QStringLiteral(" | "))));
    instalacionDeEjemplo(foto);
    importacionDeEjemplo(ventana, foto);
    ventaDeEjemplo(ventana, foto);
    comprasDeEjemplo(ventana, foto);
    // El menú depende de los derechos del perfil: también el del cajero y el del mesero.
    const bool otros = menuDe(ventana, foto, QStringLiteral("cajero")) &&
                       menuDe(ventana, foto, QStringLiteral("mesero"));
    return otros ? 0 : 1;
}
