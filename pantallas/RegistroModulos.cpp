#include "pantallas/RegistroModulos.h"

#include <QStringList>

#include "pantallas/Mensajes.h"
#include "pantallas/Sonidos.h"

namespace cajaplex {
namespace {

std::vector<EntradaMenu>& lista() {
    static std::vector<EntradaMenu> entradas;
    return entradas;
}

} // namespace

bool EntradaMenu::visible(const Sesion& sesion) const {
    return aplica(sesion) && sesion.puede(nombrePermiso());
}

void RegistroModulos::registra(EntradaMenu entrada) {
    for (EntradaMenu& e : lista())
        if (e.nombre == entrada.nombre) {
            e = std::move(entrada);
            return;
        }
    lista().push_back(std::move(entrada));
}

const std::vector<EntradaMenu>& RegistroModulos::entradas() {
    return lista();
}

const EntradaMenu* RegistroModulos::busca(const QString& nombre) {
    for (const EntradaMenu& e : lista())
        if (e.nombre == nombre) return &e;
    return nullptr;
}

QStringList RegistroModulos::permisos() {
    QStringList nombres;
    for (const EntradaMenu& e : lista())
        if (!nombres.contains(e.nombrePermiso())) nombres << e.nombrePermiso();
    return nombres;
}

QWidget* RegistroModulos::crea(const EntradaMenu& entrada, const Sesion& sesion, QWidget* padre) {
    if (!exigePermiso(sesion, entrada.nombrePermiso(), padre)) return nullptr;
    return entrada.fabrica(sesion);
}

bool exigePermiso(const Sesion& sesion, const QString& permiso, QWidget* padre) {
    if (sesion.puede(permiso)) return true;
    Sonidos::reproduce(Sonido::Error);
    Mensajes(padre).muestra(QString::fromUtf8(MensajeSinPermiso) + permiso);
    return false;
}

} // namespace cajaplex
