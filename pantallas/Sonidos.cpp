#include "pantallas/Sonidos.h"

#include <array>
#include <cstddef>
#include <utility>

#include <QAudioDevice>
#include <QAudioOutput>
#include <QCoreApplication>
#include <QLoggingCategory>
#include <QMediaDevices>
#include <QMediaPlayer>
#include <QPointer>
#include <QUrl>
#include <QtGlobal>

namespace cajaplex {
namespace {

constexpr std::size_t kCuantos = static_cast<std::size_t>(Sonido::FinalizarComanda) + 1;

struct Estado {
    bool activos = false;
    bool prueba = false;
    QList<Sonido> anotados;
    // Uno por sonido, hijos de la aplicación: mueren con ella y QPointer lo nota.
    std::array<QPointer<QMediaPlayer>, kCuantos> reproductores;
    bool multimediaIniciada = false;
    bool avisado = false;
};

Estado& estado() {
    static Estado e;
    return e;
}

// Un solo aviso informativo por proceso; un equipo sin audio es normal en una tienda.
void avisaUnaVez(const QString& texto) {
    if (estado().avisado) return;
    estado().avisado = true;
    qInfo().noquote() << QStringLiteral("Sonidos: ") + texto;
}

// GStreamer reenvía como advertencia cada salida que prueba y no existe (PulseAudio sin servidor,
// por ejemplo) antes de dar con una que sí: en un equipo sin audio serían dos líneas por sonido.
QLoggingCategory::CategoryFilter filtroPrevio = nullptr;

void filtraAdvertenciasDelReproductor(QLoggingCategory* categoria) {
    if (filtroPrevio) filtroPrevio(categoria);
    if (qstrcmp(categoria->categoryName(), "qt.multimedia.player") == 0)
        categoria->setEnabled(QtWarningMsg, false);
}

// Al cargarse, Qt Multimedia advierte si no hay servidor PulseAudio. Lo decimos nosotros, una vez.
QtMessageHandler manejadorPrevio = nullptr;

void callaServidorDeAudio(QtMsgType tipo, const QMessageLogContext& contexto,
                          const QString& mensaje) {
    if (tipo == QtWarningMsg && mensaje.startsWith(QLatin1String("PulseAudioService:"))) return;
    manejadorPrevio(tipo, contexto, mensaje);
}

QMediaPlayer* creaReproductor(Sonido sonido) {
    Estado& e = estado();
    const bool primero = !e.multimediaIniciada;
    if (primero) {
        e.multimediaIniciada = true;
        filtroPrevio = QLoggingCategory::installFilter(filtraAdvertenciasDelReproductor);
        manejadorPrevio = qInstallMessageHandler(callaServidorDeAudio);
    }
    auto* reproductor = new QMediaPlayer(QCoreApplication::instance());
    reproductor->setAudioOutput(new QAudioOutput(reproductor));
    if (primero) {
        qInstallMessageHandler(manejadorPrevio);
        // Sin salidas listadas GStreamer aún puede sonar por ALSA; por eso solo se avisa.
        if (QMediaDevices::audioOutputs().isEmpty())
            avisaUnaVez(
                QStringLiteral("el sistema no reporta salidas de audio; quizá no se oigan."));
    }
    QObject::connect(reproductor, &QMediaPlayer::errorOccurred, reproductor,
                     [](QMediaPlayer::Error, const QString& texto) {
                         avisaUnaVez(QStringLiteral("no se pudo reproducir (%1).").arg(texto));
                     });
    // El recurso se reproduce directo (qrc:): el respaldo GStreamer lo lee con QFile.
    reproductor->setSource(QUrl(QStringLiteral("qrc:/sonidos/") + Sonidos::archivo(sonido)));
    return reproductor;
}

} // namespace

void Sonidos::activa(bool utilizar) {
    estado().activos = utilizar;
}

bool Sonidos::activos() {
    return estado().activos;
}

void Sonidos::reproduce(Sonido sonido) {
    Estado& e = estado();
    if (!e.activos) return;
    if (e.prueba) {
        e.anotados << sonido;
        return;
    }
    if (!QCoreApplication::instance()) return;
    QPointer<QMediaPlayer>& reproductor = e.reproductores[static_cast<std::size_t>(sonido)];
    if (!reproductor) reproductor = creaReproductor(sonido);
    if (!reproductor->isAvailable()) {
        avisaUnaVez(QStringLiteral("Qt Multimedia no tiene reproductor disponible."));
        return;
    }
    // Otra pulsación mientras suena vuelve a empezar, no se encola.
    reproductor->setPosition(0);
    reproductor->play();
}

QString Sonidos::archivo(Sonido sonido) {
    switch (sonido) {
    case Sonido::Click:
        return QStringLiteral("Click.mp3");
    case Sonido::Error:
        return QStringLiteral("Error.mp3");
    case Sonido::Salir:
        return QStringLiteral("Salir.mp3");
    case Sonido::Regresar:
        return QStringLiteral("Regresar.mp3");
    case Sonido::Deslizar:
        return QStringLiteral("Deslizar.mp3");
    case Sonido::MostrarResultados:
        return QStringLiteral("MostrarResultados.mp3");
    case Sonido::Recargar:
        return QStringLiteral("Recargar.mp3");
    case Sonido::ComandaNueva:
        return QStringLiteral("ComandaNueva.mp3");
    case Sonido::FinalizarComanda:
        return QStringLiteral("FinalizarComanda.mp3");
    }
    return {};
}

void Sonidos::modoPrueba(bool activo) {
    estado().prueba = activo;
    estado().anotados.clear();
}

QList<Sonido> Sonidos::reproducidos() {
    return std::exchange(estado().anotados, {});
}

} // namespace cajaplex
