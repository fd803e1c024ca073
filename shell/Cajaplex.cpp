// La aplicación de la estación.
//   cajaplex [--configuracion DIR]
//   cajaplex [--configuracion DIR] --instala DIRECCION:PUERTO
// --instala deja la estación apuntando a un servicio (con las credenciales del servicio de
// CAJAPLEX_USUARIO y CAJAPLEX_CONTRASENA, o las de demostración) y crea su base local.
#include <cstdio>
#include <exception>

#include <sys/stat.h>

#include <QApplication>
#include <QByteArray>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QProcessEnvironment>
#include <QtDebug>

#include "datos/AjustesEstacion.h"
#include "datos/ConexionBD.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Mensajes.h"
#include "shell/Instalacion.h"
#include "shell/Principal.h"

namespace {

int instala(const QString& carpeta, const QString& servidor) {
    const qsizetype separador = servidor.lastIndexOf(QLatin1Char(':'));
    bool ok = false;
    const int puerto = servidor.mid(separador + 1).toInt(&ok);
    if (separador <= 0 || !ok || puerto < 1 || puerto > 65535) {
        std::fprintf(stderr, "--instala espera DIRECCION:PUERTO, por ejemplo 192.168.1.10:8080\n");
        return 2;
    }
    const auto entorno = QProcessEnvironment::systemEnvironment();
    cajaplex::AjustesEstacion ajustes(carpeta);
    try {
        cajaplex::preparaEstacion(
            ajustes, servidor.left(separador), puerto,
            entorno.value(QStringLiteral("CAJAPLEX_USUARIO"), QStringLiteral("cajaplex")),
            entorno.value(QStringLiteral("CAJAPLEX_CONTRASENA"), QStringLiteral("cajaplex")));
    } catch (const cajaplex::ErrorServicio& e) {
        std::fprintf(stderr, "No se pudo preparar la estación: %s\n", e.what());
        return 1;
    }
    std::printf("Estación lista en %s\n", qPrintable(ajustes.ruta()));
    return 0;
}

struct Opciones {
    QString carpeta;
    QString instala; // vacío: abrir la aplicación
};

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
    opciones.addOption(configuracion);
    opciones.addOption(instalacion);
    opciones.process(aplicacion);
    return {opciones.value(configuracion), opciones.value(instalacion)};
}

// --instala corre sin pantalla (en un servidor o por ssh): no debe exigir una sesión gráfica.
bool pideInstalar(int argc, char* argv[]) {
    for (int i = 1; i < argc; ++i)
        if (QByteArray(argv[i]).startsWith("--instala")) return true;
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
    if (pideInstalar(argc, argv)) {
        QCoreApplication aplicacion(argc, argv);
        nombraAplicacion();
        const Opciones opciones = leeOpciones(aplicacion);
        return instala(opciones.carpeta, opciones.instala);
    }
    AplicacionCajaplex aplicacion(argc, argv);
    nombraAplicacion();
    cajaplex::ponEspanol(aplicacion);
    const Opciones opciones = leeOpciones(aplicacion);
    cajaplex::aplicaHojaEstilo(aplicacion);
    cajaplex::TCajaplexF ventana({opciones.carpeta, cajaplex::bibliotecasRequeridas()});
    ventana.showMaximized();
    return QApplication::exec();
}
