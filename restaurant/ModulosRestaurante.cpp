#include "restaurant/ModulosRestaurante.h"

#include "pantallas/RegistroModulos.h"
#include "restaurant/AreasComida.h"
#include "restaurant/Comandas.h"

namespace cajaplex {

void registraModulosRestaurante() {
    const QString restaurante = QStringLiteral("Restaurante");
    const auto soloRestaurantes = [](const Sesion& s) { return s.controlRestaurantes; };
    EntradaMenu areas{restaurante, QStringLiteral("AreasComida"), QStringLiteral("Áreas de Comida"),
                      QStringLiteral("AreasComida"),
                      [](const Sesion& s) -> QWidget* { return new TAreasComidaF(s); }};
    areas.aplica = soloRestaurantes;
    RegistroModulos::registra(std::move(areas));
    EntradaMenu comandas{restaurante, QStringLiteral("Comandas"), QStringLiteral("Comandas"),
                         QStringLiteral("Comandas"),
                         [](const Sesion& s) -> QWidget* { return new TComandasF(s); }};
    comandas.aplica = soloRestaurantes;
    RegistroModulos::registra(std::move(comandas));
}

} // namespace cajaplex
