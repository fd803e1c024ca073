// Recorre la aplicación como un usuario y guarda una captura PNG de cada pantalla: acceso,
// términos, elección de empresa, menú y cada módulo del menú. Lo usa scripts/capturas bajo Xvfb.
//   cajaplex-capturas --configuracion DIR --salida DIR [--ancho 1366 --alto 768]
#include <cstdio>
#include <functional>

#include <QAbstractItemView>
#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
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
        const QString ruta = QDir(carpeta_).filePath(QStringLiteral("%1-%2-%3.png")
                                                         .arg(++numero_, 2, 10, QLatin1Char('0'))
                                                         .arg(nombre, sufijo_));
        ventana_.grab().save(ruta);
        std::printf("%s\n", qPrintable(ruta));
    }

private:
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
    opciones.addOptions({configuracion, salida, ancho, alto});
    opciones.process(aplicacion);

    aplicaHojaEstilo(aplicacion);
    Mensajes::modoPrueba(true); // ningún diálogo modal detiene el recorrido
    TCajaplexF ventana({opciones.value(configuracion), bibliotecasRequeridas()});
    Sonidos::activa(false);
    ventana.resize(opciones.value(ancho).toInt(), opciones.value(alto).toInt());
    ventana.show();
    Fotografo foto(ventana, opciones.value(salida),
                   opciones.value(ancho) + QLatin1Char('x') + opciones.value(alto));

    foto.toma(QStringLiteral("acceso"));
    QTest::mouseClick(control<QPushButton>(ventana, "EtiquetaTerminosYCondiciones"),
                      Qt::LeftButton);
    foto.toma(QStringLiteral("terminos"));
    ventana.regresa();

    control<QLineEdit>(ventana, "NombreUsuario")->setText(QStringLiteral("admin"));
    control<QLineEdit>(ventana, "ContrasenaUsuario")->setText(QStringLiteral("admin"));
    QTest::mouseClick(control<QPushButton>(ventana, "AuthenticateRectBTN"), Qt::LeftButton);
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
    return 0;
}
