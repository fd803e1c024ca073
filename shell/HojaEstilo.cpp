#include "HojaEstilo.h"

#include <QApplication>
#include <QWidget>

namespace cajaplex {

QString hojaEstilo() {
    return {};
}
void aplicaHojaEstilo(QApplication&) {}
void ponEstilo(QWidget* control, const char* estilo) {
    control->setProperty("estilo", QString::fromLatin1(estilo));
}
QIcon icono(const QString&) {
    return {};
}
QPixmap imagen(const QString&, const QSize&) {
    return {};
}

} // namespace cajaplex
