// Recorre la aplicación como un usuario y guarda una captura PNG de cada pantalla: acceso,
// términos, elección de empresa, menú y cada módulo del menú como admin, y el menú del cajero y el
// del mesero. Con --mensaje-conexion solo intenta entrar (con el servicio ya detenido) y captura
// la pantalla completa con el mensaje abierto. Lo usa scripts/capturas bajo Xvfb.
//   cajaplex-capturas --configuracion DIR --salida DIR [--ancho 1366 --alto 768]
//                     [--mensaje-conexion]
#include <cstdio>
#include <functional>

#include <QAbstractItemView>
#include <QApplication>
#include <QCommandLineParser>
#include <QDialog>
#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QLineEdit>
#include <QListWidget>
#include <QPixmap>
#include <QPushButton>
#include <QScreen>
#include <QTest>

#include "datos/Auditoria.h"
#include "datos/ModuloDatos.h"
#include "datos/Transaccion.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Mensajes.h"
#include "pantallas/RegistroModulos.h"
#include "pantallas/Sonidos.h"
#include "shell/Instalacion.h"
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

// Una venta de verdad como admin: el carrito con tres renglones, la pestaña de cierre, el ticket
// en el visor de PDF y la venta en la lista y en el visor de ventas.
void ventaDeEjemplo(TCajaplexF& ventana, Fotografo& foto) {
    auto* modulo = ventana.findChild<QPushButton*>(QStringLiteral("ModuloPuntoVenta"));
    if (!modulo) return;
    QTest::mouseClick(modulo, Qt::LeftButton);
    auto* buscar = control<QLineEdit>(ventana, "BuscarProducto");
    if (!buscar) return;
    for (const char* codigo : {"7501058000118", "3*1002", "7501058000354"}) {
        buscar->setText(QString::fromLatin1(codigo));
        QTest::keyClick(buscar, Qt::Key_Return);
        QTest::qWait(100);
    }
    foto.toma(QStringLiteral("PuntoVenta-carrito"));
    auto* siguiente = control<QPushButton>(ventana, "GrupoBotonSiguiente");
    if (!siguiente) return;
    QTest::mouseClick(siguiente, Qt::LeftButton);
    foto.toma(QStringLiteral("PuntoVenta-cierre"));
    Mensajes::respondeOpcion(1); // "Almacenar y Visualizar PDF"
    QTest::mouseClick(siguiente, Qt::LeftButton);
    QTest::qWait(2000); // se registra y el ticket se dibuja en otro hilo
    foto.tomaPantalla(QStringLiteral("ticket"));
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w != &ventana && w->isVisible()) w->close();
    for (int i = 0;
         i < 5 && !ventana.findChild<QWidget*>(QStringLiteral("MenuPrimario"))->isVisible(); ++i) {
        ventana.regresa();
        QTest::qWait(50);
    }

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
    for (int i = 0;
         i < 5 && !ventana.findChild<QWidget*>(QStringLiteral("MenuPrimario"))->isVisible(); ++i) {
        ventana.regresa();
        QTest::qWait(50);
    }
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
    opciones.addOptions({configuracion, salida, ancho, alto, conexion});
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
    ventaDeEjemplo(ventana, foto);
    // El menú depende de los derechos del perfil: también el del cajero y el del mesero.
    const bool otros = menuDe(ventana, foto, QStringLiteral("cajero")) &&
                       menuDe(ventana, foto, QStringLiteral("mesero"));
    return otros ? 0 : 1;
}
