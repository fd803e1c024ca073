#include "pantallas/Leyenda.h"

#include <exception>
#include <utility>
#include <vector>

#include <QCoreApplication>
#include <QEventLoop>
#include <QLabel>
#include <QPointer>
#include <QThread>
#include <QTimer>
#include <QWidget>
#include <QtGlobal>

#include "datos/ConexionBD.h"

namespace cajaplex {
namespace {

// Trabajos en espera por leyenda: la primera en terminar no debe ocultar la de la siguiente.
const char* const kPendientes = "cajaplexPendientes";

// Todas las leyendas creadas, para poder ocultarlas mientras hay un diálogo abierto.
std::vector<QPointer<QLabel>>& leyendas() {
    static std::vector<QPointer<QLabel>> todas;
    return todas;
}

int pendientes(const QLabel* etiqueta) {
    return etiqueta->property(kPendientes).toInt();
}

QLabel* leyendaDe(QWidget* pantalla) {
    auto* etiqueta =
        pantalla->findChild<QLabel*>(QStringLiteral("Leyenda"), Qt::FindDirectChildrenOnly);
    if (etiqueta) return etiqueta;
    etiqueta = new QLabel(pantalla);
    auto& todas = leyendas();
    std::erase_if(todas, [](const QPointer<QLabel>& l) { return l.isNull(); });
    todas.emplace_back(etiqueta);
    etiqueta->setObjectName(QStringLiteral("Leyenda"));
    etiqueta->setAlignment(Qt::AlignCenter);
    etiqueta->setStyleSheet(QStringLiteral(
        "QLabel { background-color: #FFFFE1; color: #000000; border: 2px solid #404040; "
        "padding: 12px 24px; font-size: 14pt; font-weight: bold; }"));
    return etiqueta;
}

void centra(QLabel* etiqueta, const QWidget* pantalla) {
    etiqueta->adjustSize();
    etiqueta->move((pantalla->width() - etiqueta->width()) / 2,
                   (pantalla->height() - etiqueta->height()) / 2);
}

} // namespace

void ejecutaConLeyenda(QWidget* pantalla, const QString& leyenda, std::function<void()> trabajo) {
    Q_ASSERT(pantalla);
    QLabel* etiqueta = leyendaDe(pantalla);
    etiqueta->setText(leyenda);
    etiqueta->setProperty(kPendientes, pendientes(etiqueta) + 1);
    centra(etiqueta, pantalla);
    etiqueta->raise();
    etiqueta->show();
    if (pantalla->isVisible()) etiqueta->repaint();

    QPointer<QWidget> guardia(pantalla);
    QPointer<QLabel> guardiaLeyenda(etiqueta);
    // La pantalla como contexto: destruida, Qt descarta el disparo.
    QTimer::singleShot(5, pantalla, [guardia, guardiaLeyenda, trabajo = std::move(trabajo)] {
        if (!guardia) return;
        try {
            trabajo();
        } catch (const std::exception& e) {
            qWarning("Error no atendido en el trabajo con leyenda: %s", e.what());
        } catch (...) {
            qWarning("Error no atendido en el trabajo con leyenda");
        }
        // El trabajo pudo cerrar y destruir la pantalla.
        if (!guardiaLeyenda) return;
        const int quedan = pendientes(guardiaLeyenda) - 1;
        guardiaLeyenda->setProperty(kPendientes, quedan);
        if (quedan <= 0) guardiaLeyenda->hide();
    });
}

PausaLeyendas::PausaLeyendas() {
    for (const QPointer<QLabel>& etiqueta : leyendas()) {
        if (!etiqueta || etiqueta->isHidden()) continue;
        etiqueta->hide();
        ocultas_.push_back(etiqueta);
    }
}

PausaLeyendas::~PausaLeyendas() {
    for (const QPointer<QLabel>& etiqueta : ocultas_) {
        if (!etiqueta || pendientes(etiqueta) <= 0) continue;
        etiqueta->raise();
        etiqueta->show();
        // El trabajo sigue sin volver al ciclo de eventos: se pinta ya o no se vería.
        if (etiqueta->isVisible()) etiqueta->repaint();
    }
}

void avisaReintentosEscritura(ConexionBD& conexion) {
    conexion.esperaReintento([](const ReintentoEscritura& r) {
        const bool sigue = r.transcurrido + r.espera <= ConexionBD::LimiteReintentos;
        if (QThread::currentThread() != QCoreApplication::instance()->thread()) {
            QThread::msleep(static_cast<unsigned long>(r.espera.count()));
            return sigue;
        }
        std::vector<std::pair<QPointer<QLabel>, QString>> cambiadas;
        for (const QPointer<QLabel>& etiqueta : leyendas()) {
            if (!etiqueta || etiqueta->isHidden()) continue;
            cambiadas.emplace_back(etiqueta, etiqueta->text());
            etiqueta->setText(QString::fromUtf8(AvisoReintentoEscritura) +
                              QStringLiteral(" (intento %1)").arg(r.intento));
            if (etiqueta->parentWidget()) centra(etiqueta, etiqueta->parentWidget());
            etiqueta->repaint();
        }
        QEventLoop ciclo;
        QTimer::singleShot(r.espera, &ciclo, &QEventLoop::quit);
        ciclo.exec(QEventLoop::ExcludeUserInputEvents);
        for (const auto& [etiqueta, texto] : cambiadas)
            if (etiqueta) etiqueta->setText(texto);
        return sigue;
    });
}

} // namespace cajaplex
