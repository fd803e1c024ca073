#include "purchasing/ModulosCompras.h"

#include "pantallas/RegistroModulos.h"
#include "purchasing/Compras.h"
#include "purchasing/ComprasModulosDiversos.h"
#include "purchasing/Proveedores.h"

namespace cajaplex {

void registraModulosCompras() {
    const QString grupo = QStringLiteral("Compras y Cuentas");
    RegistroModulos::registra(
        {grupo, QStringLiteral("Compras"), QStringLiteral("Compras"), QStringLiteral("Compras"),
         [](const Sesion& s) -> QWidget* { return new TComprasModulosDiversosF(s); }});
    RegistroModulos::registra({grupo, QStringLiteral("DocumentosCompra"),
                               QStringLiteral("Documentos de Compra"), QStringLiteral("Kardex"),
                               [](const Sesion& s) -> QWidget* { return new TComprasF(s); }});
    RegistroModulos::registra({grupo, QStringLiteral("Proveedores"), QStringLiteral("Proveedores"),
                               QStringLiteral("Proveedores"),
                               [](const Sesion& s) -> QWidget* { return new TProveedoresF(s); }});
}

} // namespace cajaplex
