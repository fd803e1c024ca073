#include "pantallas/TarjetaDatos.h"

#include <QGridLayout>
#include <QLabel>

#include "pantallas/HojaEstilo.h"

namespace cajaplex {

namespace {
constexpr int kColumnas = 3;
}

TarjetaDatos::TarjetaDatos(QWidget* padre) : QFrame(padre), rejilla_(new QGridLayout(this)) {
    ponEstilo(this, "tarjeta");
    for (int c = 0; c < kColumnas; ++c)
        rejilla_->setColumnStretch(c, 1);
}

QLabel* TarjetaDatos::agrega(const QString& titulo, const QString& nombre) {
    QLabel* t = creaEtiqueta(titulo, QStringLiteral("Etiqueta") + nombre, "subtitulo", this);
    QLabel* v = creaEtiqueta({}, nombre, nullptr, this);
    v->setAccessibleName(titulo);
    v->setWordWrap(true);
    v->setTextInteractionFlags(Qt::TextSelectableByMouse);
    t->setBuddy(v);
    const int renglon = (posicion_ / kColumnas) * 2;
    rejilla_->addWidget(t, renglon, posicion_ % kColumnas);
    rejilla_->addWidget(v, renglon + 1, posicion_ % kColumnas);
    ++posicion_;
    return v;
}

} // namespace cajaplex
