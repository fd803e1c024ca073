#include "pantallas/Leyenda.h"

#include <exception>
#include <utility>

#include <QLabel>
#include <QPointer>
#include <QTimer>
#include <QWidget>
#include <QtGlobal>

namespace cajaplex {
namespace {

// Trabajos en espera por leyenda: la primera en terminar no debe ocultar la de la siguiente.
const char* const kPendientes = "cajaplexPendientes";

QLabel* leyendaDe(QWidget* pantalla) {
    auto* etiqueta =
        pantalla->findChild<QLabel*>(QStringLiteral("Leyenda"), Qt::FindDirectChildrenOnly);
    if (etiqueta) return etiqueta;
    etiqueta = new QLabel(pantalla);
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
    etiqueta->setProperty(kPendientes, etiqueta->property(kPendientes).toInt() + 1);
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
        const int quedan = guardiaLeyenda->property(kPendientes).toInt() - 1;
        guardiaLeyenda->setProperty(kPendientes, quedan);
        if (quedan <= 0) guardiaLeyenda->hide();
    });
}

} // namespace cajaplex
