#include "sales/ModulosVentas.h"

#include "pantallas/RegistroModulos.h"
#include "sales/AsignaMonederoElectronico.h"
#include "sales/CajaChica.h"
#include "sales/Clientes.h"
#include "sales/CorteCajaF.h"
#include "sales/PuntoVenta.h"
#include "sales/Ventas.h"

namespace cajaplex {

void registraModulosVentas() {
    RegistroModulos::registra({QStringLiteral("Punto de Venta"), QStringLiteral("PuntoVenta"),
                               QStringLiteral("Punto de Venta"), QStringLiteral("PuntoVenta"),
                               [](const Sesion& s) -> QWidget* { return new TPuntoVentaF(s); }});
    RegistroModulos::registra(
        {QStringLiteral("Punto de Venta"), QStringLiteral("AsignaMonedero"),
         QStringLiteral("Asigna Monedero Electrónico"), QStringLiteral("Monedero"),
         [](const Sesion& s) -> QWidget* { return new TAsignaMonederoElectronicoF(s); }});
    // El punto de venta abre la caja chica desde su menú lateral por esta misma entrada.
    RegistroModulos::registra({QStringLiteral("Punto de Venta"), QStringLiteral("CajaChica"),
                               QStringLiteral("Caja Chica"), QStringLiteral("CajaChica"),
                               [](const Sesion& s) -> QWidget* { return new TCajaChicaF(s); }});
    RegistroModulos::registra({QStringLiteral("Punto de Venta"), QStringLiteral("CorteCaja"),
                               QStringLiteral("Corte de Caja"), QStringLiteral("CorteCaja"),
                               [](const Sesion& s) -> QWidget* { return new TCorteCajaF(s); }});
    RegistroModulos::registra({QStringLiteral("Punto de Venta"), QStringLiteral("Ventas"),
                               QStringLiteral("Ventas"), QStringLiteral("CorteVenta"),
                               [](const Sesion& s) -> QWidget* { return new TVentasF(s); }});
    RegistroModulos::registra({QStringLiteral("Clientes y Catálogos"), QStringLiteral("Clientes"),
                               QStringLiteral("Clientes"), QStringLiteral("Clientes"),
                               [](const Sesion& s) -> QWidget* { return new TClientesF(s); }});
}

} // namespace cajaplex
