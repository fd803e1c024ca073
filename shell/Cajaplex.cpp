// La aplicación de la estación.
//   cajaplex [--configuracion DIR]
//   cajaplex [--configuracion DIR] --instala DIRECCION:PUERTO [--descripcion TEXTO]
//            [--administrador USUARIO [--huella SHA256]]
// --instala deja la estación apuntando a un servicio con credenciales propias (las pide un
// administrador; se revocan en Dispositivos) y crea su base local. Sin --administrador abre el
// cuadro de instalación; con él es para guiones: la contraseña se teclea sin eco (o llega por la
// entrada estándar) y la huella del certificado se confirma en la terminal o con --huella.
#include <cstdio>
#include <exception>
#include <iostream>
#include <string>

#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <QApplication>
#include <QByteArray>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QSysInfo>
#include <QtDebug>

#include "datos/AjustesEstacion.h"
#include "datos/ConexionBD.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Mensajes.h"
#include "shell/Instalacion.h"
#include "shell/InstalacionEstacion.h"
#include "shell/Principal.h"

namespace {

struct Opciones {
    QString carpeta;
    QString instala; // vacío: abrir la aplicación
    QString administrador;
    QString huella;
    QString descripcion;
};

// Un renglón de la entrada estándar; en una terminal, sin eco (una contraseña).
std::string leeRenglon(bool sinEco) {
    termios antes{};
    const bool terminal = sinEco && isatty(STDIN_FILENO) && tcgetattr(STDIN_FILENO, &antes) == 0;
    if (terminal) {
        termios callado = antes;
        callado.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &callado);
    }
    std::string renglon;
    std::getline(std::cin, renglon);
    if (terminal) {
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &antes);
        std::fprintf(stderr, "\n");
    }
    return renglon;
}

// La huella del servicio, confirmada: igual a --huella o aceptada en la terminal.
bool confirmaHuella(const QString& huella, const QString& indicada) {
    std::printf("Huella SHA-256 del servicio: %s\n", qPrintable(huella));
    std::fflush(stdout);
    if (!indicada.isEmpty()) {
        if (cajaplex::ConexionBD::normalizaHuella(indicada) == huella) return true;
        std::fprintf(stderr, "La huella del servicio no coincide con --huella %s\n",
                     qPrintable(indicada));
        return false;
    }
    if (!isatty(STDIN_FILENO)) {
        std::fprintf(stderr, "Sin terminal para confirmarla: indíquela con --huella\n");
        return false;
    }
    std::fprintf(stderr, "¿Coincide con la que mostró el servicio al arrancar? (s/n): ");
    const std::string respuesta = leeRenglon(false);
    return respuesta == "s" || respuesta == "S";
}

int instala(const Opciones& opciones, bool conPantalla) {
    const QString& servidor = opciones.instala;
    const qsizetype separador = servidor.lastIndexOf(QLatin1Char(':'));
    bool ok = false;
    const int puerto = servidor.mid(separador + 1).toInt(&ok);
    if (separador <= 0 || !ok || puerto < 1 || puerto > 65535) {
        std::fprintf(stderr, "--instala espera DIRECCION:PUERTO, por ejemplo 192.168.1.10:8443\n");
        return 2;
    }
    cajaplex::DatosInstalacion datos;
    datos.direccion = servidor.left(separador);
    datos.puerto = puerto;
    datos.descripcion =
        opciones.descripcion.isEmpty() ? QSysInfo::machineHostName() : opciones.descripcion;
    cajaplex::AjustesEstacion ajustes(opciones.carpeta);
    try {
        datos.servicio = cajaplex::exploraServicio(datos.direccion, puerto);
    } catch (const cajaplex::ErrorServicio& e) {
        if (conPantalla) cajaplex::Mensajes().muestra(e.mensaje());
        std::fprintf(stderr, "%s\n", e.what());
        return 1;
    }
    if (conPantalla) {
        cajaplex::TInstalacionEstacionF cuadro(ajustes, datos);
        return cuadro.exec() == QDialog::Accepted ? 0 : 1;
    }
    if (datos.servicio.tls && !confirmaHuella(datos.servicio.huella, opciones.huella)) return 1;
    if (isatty(STDIN_FILENO))
        std::fprintf(stderr, "Contraseña de %s: ", qPrintable(opciones.administrador));
    datos.administrador = opciones.administrador;
    datos.contrasena = QString::fromStdString(leeRenglon(true));
    try {
        cajaplex::instalaEstacion(ajustes, datos);
    } catch (const cajaplex::ErrorServicio& e) {
        std::fprintf(stderr, "%s\n(%s)\n", qPrintable(cajaplex::mensajeInstalacion(e)), e.what());
        return 1;
    }
    std::printf("Estación lista en %s\n", qPrintable(ajustes.ruta()));
    return 0;
}

Opciones leeOpciones(const QCoreApplication& aplicacion) {
    QCommandLineParser opciones;
    opciones.setApplicationDescription(QStringLiteral("Cajaplex, punto de venta"));
    opciones.addHelpOption();
    const QCommandLineOption configuracion(
        QStringLiteral("configuracion"),
        QStringLiteral("Carpeta de Cajaplex.ini y de la base local de la estación."),
        QStringLiteral("DIR"));
    const QCommandLineOption instalacion(
        QStringLiteral("instala"),
        QStringLiteral("Prepara la estación para el servicio indicado y termina."),
        QStringLiteral("DIRECCION:PUERTO"));
    const QCommandLineOption administrador(
        QStringLiteral("administrador"),
        QStringLiteral("Instala sin cuadro con este administrador (contraseña por la terminal)."),
        QStringLiteral("USUARIO"));
    const QCommandLineOption huella(
        QStringLiteral("huella"),
        QStringLiteral("Huella SHA-256 esperada del certificado del servicio."),
        QStringLiteral("SHA256"));
    const QCommandLineOption descripcion(
        QStringLiteral("descripcion"),
        QStringLiteral("Cómo se verá la estación en Dispositivos (omisión: el nombre del equipo)."),
        QStringLiteral("TEXTO"));
    opciones.addOptions({configuracion, instalacion, administrador, huella, descripcion});
    opciones.process(aplicacion);
    return {opciones.value(configuracion), opciones.value(instalacion),
            opciones.value(administrador), opciones.value(huella), opciones.value(descripcion)};
}

// --instala con --administrador corre sin pantalla (en un servidor o por ssh): no debe exigir
// una sesión gráfica.
bool pideOpcion(int argc, char* argv[], const char* opcion) {
    for (int i = 1; i < argc; ++i)
        if (QByteArray(argv[i]).startsWith(opcion)) return true;
    return false;
}

void nombraAplicacion() {
    QCoreApplication::setOrganizationName(QString());
    QCoreApplication::setApplicationName(QStringLiteral("Cajaplex"));
    QCoreApplication::setApplicationVersion(cajaplex::versionPrograma());
}

// Última red: una excepción que una pantalla no atendió se vuelve el mensaje de falla y el
// programa sigue; nunca termina la venta en curso de golpe.
class AplicacionCajaplex : public QApplication {
public:
    using QApplication::QApplication;

    bool notify(QObject* receptor, QEvent* evento) override {
        try {
            return QApplication::notify(receptor, evento);
        } catch (const std::exception& e) {
            qWarning() << "Excepción no atendida:" << e.what();
        } catch (...) {
            qWarning() << "Excepción no atendida";
        }
        cajaplex::Mensajes(activeWindow())
            .muestra(QString::fromUtf8(cajaplex::MensajeErrorLectura));
        return false;
    }
};

} // namespace

int main(int argc, char* argv[]) {
    // Cajaplex.ini guarda las credenciales de la estación y la base local va cifrada: lo que el
    // programa crea solo lo lee su dueño.
    umask(077);
    if (pideOpcion(argc, argv, "--instala") && pideOpcion(argc, argv, "--administrador")) {
        QCoreApplication aplicacion(argc, argv);
        nombraAplicacion();
        return instala(leeOpciones(aplicacion), false);
    }
    AplicacionCajaplex aplicacion(argc, argv);
    nombraAplicacion();
    cajaplex::ponEspanol(aplicacion);
    const Opciones opciones = leeOpciones(aplicacion);
    cajaplex::aplicaHojaEstilo(aplicacion);
    if (!opciones.instala.isEmpty()) return instala(opciones, true);
    cajaplex::TCajaplexF ventana({opciones.carpeta, cajaplex::bibliotecasRequeridas()});
    ventana.showMaximized();
    return QApplication::exec();
}
