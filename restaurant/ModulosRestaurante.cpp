#include "restaurant/ModulosRestaurante.h"

#include "pantallas/RegistroModulos.h"
#include "restaurant/AreasComida.h"
#include "restaurant/Comandas.h"
#include "restaurant/ComandasPagar.h"
#include "restaurant/MonitorPreparacion.h"
#include "sales/PuntoVenta.h"

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
    EntradaMenu monitor{restaurante, QStringLiteral("MonitorPreparacion"),
                        QStringLiteral("Monitor de Preparación"),
                        QStringLiteral("MonitorPreparacion"),
                        [](const Sesion& s) -> QWidget* { return new TMonitorPreparacionF(s); }};
    monitor.aplica = soloRestaurantes;
    RegistroModulos::registra(std::move(monitor));
    // "Cobrar Comanda" del punto de venta: el selector queda dentro de la ventana de la venta.
    registraSelectorComandas([](const Sesion& s, TPuntoVentaF& venta) -> QWidget* {
        return new TComandasPagarF(s, venta, &venta);
    });
}

} // namespace cajaplex
