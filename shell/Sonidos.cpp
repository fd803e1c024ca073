#include "Sonidos.h"

namespace cajaplex {

void Sonidos::activa(bool) {}
bool Sonidos::activos() {
    return false;
}
void Sonidos::reproduce(Sonido) {}
QString Sonidos::archivo(Sonido) {
    return {};
}
void Sonidos::modoPrueba(bool) {}
QList<Sonido> Sonidos::reproducidos() {
    return {};
}

} // namespace cajaplex
