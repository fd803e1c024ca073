#include "pantallas/Sonidos.h"

#include <array>
#include <cstddef>
#include <utility>

#include <QAudioDevice>
#include <QCoreApplication>
#include <QMediaDevices>
#include <QMetaObject>
#include <QPointer>
#include <QSoundEffect>
#include <QThread>
#include <QUrl>
#include <QtGlobal>

namespace cajaplex {
namespace {

constexpr std::size_t kCuantos = static_cast<std::size_t>(Sonido::FinalizarComanda) + 1;

struct Estado {
    bool activos = false;
    bool prueba = false;
    QList<Sonido> anotados;
    // Uno por sonido y sin padre: mueren cuando el programa lo dice (libera), con la aplicación
    // viva, y nunca a medias dentro de ~QApplication.
    std::array<QSoundEffect*, kCuantos> efectos{};
    QPointer<QCoreApplication> enganchada; // la aplicación que nos avisa al salir
    bool iniciado = false;
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

// Qt Multimedia advierte al cargarse si no hay servidor PulseAudio y, por cada sonido, si no hay
// dispositivo de salida. Sin bocinas eso es normal: lo decimos nosotros, una vez.
QtMessageHandler manejadorPrevio = nullptr;

void callaAvisosDeAudio(QtMsgType tipo, const QMessageLogContext& contexto,
                        const QString& mensaje) {
    if (tipo == QtWarningMsg && (mensaje.startsWith(QLatin1String("PulseAudioService:")) ||
                                 mensaje == QLatin1String("No audio device detected")))
        return;
    manejadorPrevio(tipo, contexto, mensaje);
}

void alSalir() {
    Sonidos::libera();
}

void inicia() {
    Estado& e = estado();
    if (!e.iniciado) {
        e.iniciado = true;
        manejadorPrevio = qInstallMessageHandler(callaAvisosDeAudio);
        if (QMediaDevices::audioOutputs().isEmpty())
            avisaUnaVez(QStringLiteral("el sistema no reporta salidas de audio; no se oirán."));
    }
    // Al terminar el ciclo de eventos o, si no lo hubo (pruebas), al empezar a destruirse la
    // aplicación: en ambos casos antes de que muera.
    QCoreApplication* aplicacion = QCoreApplication::instance();
    if (e.enganchada != aplicacion) {
        e.enganchada = aplicacion;
        QObject::connect(aplicacion, &QCoreApplication::aboutToQuit, aplicacion, alSalir);
        qAddPostRoutine(alSalir);
    }
}

QSoundEffect* creaEfecto(Sonido sonido) {
    auto* efecto = new QSoundEffect;
    QObject::connect(efecto, &QSoundEffect::statusChanged, efecto, [efecto] {
        if (efecto->status() == QSoundEffect::Error)
            avisaUnaVez(QStringLiteral("no se pudo cargar %1.").arg(efecto->source().toString()));
    });
    QString wav = Sonidos::archivo(sonido);
    wav.chop(4); // ".mp3"
    efecto->setSource(QUrl(QStringLiteral("qrc:/sonidos/%1.wav").arg(wav)));
    return efecto;
}

} // namespace

void Sonidos::activa(bool utilizar) {
    estado().activos = utilizar;
}

bool Sonidos::activos() {
    return estado().activos;
}

void Sonidos::reproduce(Sonido sonido) {
    QCoreApplication* aplicacion = QCoreApplication::instance();
    if (aplicacion && QThread::currentThread() != aplicacion->thread()) {
        QMetaObject::invokeMethod(
            aplicacion, [sonido] { reproduce(sonido); }, Qt::QueuedConnection);
        return;
    }
    Estado& e = estado();
    if (!e.activos) return;
    if (e.prueba) {
        e.anotados << sonido;
        return;
    }
    // Mientras se destruye la aplicación ya no se crea nada.
    if (!aplicacion || QCoreApplication::closingDown()) return;
    inicia();
    QSoundEffect*& efecto = e.efectos[static_cast<std::size_t>(sonido)];
    if (!efecto) efecto = creaEfecto(sonido);
    // Otra pulsación mientras suena vuelve a empezar, no se encola.
    efecto->play();
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

void Sonidos::libera() {
    for (QSoundEffect*& efecto : estado().efectos) {
        if (!efecto) continue;
        efecto->stop();
        delete std::exchange(efecto, nullptr);
    }
}

bool Sonidos::sonando() {
    for (const QSoundEffect* efecto : estado().efectos)
        if (efecto && efecto->isPlaying()) return true;
    return false;
}

void Sonidos::modoPrueba(bool activo) {
    estado().prueba = activo;
    estado().anotados.clear();
}

QList<Sonido> Sonidos::reproducidos() {
    return std::exchange(estado().anotados, {});
}

} // namespace cajaplex
