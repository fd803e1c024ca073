#include "sales/ModulosVentas.h"

#include "pantallas/RegistroModulos.h"
#include "sales/AsignaMonederoElectronico.h"

namespace cajaplex {

void registraModulosVentas() {
    RegistroModulos::registra(
        {QStringLiteral("Punto de Venta"), QStringLiteral("AsignaMonedero"),
         QStringLiteral("Asigna Monedero Electrónico"), QStringLiteral("Monedero"),
         [](const Sesion& s) -> QWidget* { return new TAsignaMonederoElectronicoF(s); }});
}

} // namespace cajaplex
