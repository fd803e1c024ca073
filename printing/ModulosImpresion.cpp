#include "printing/ModulosImpresion.h"

#include "pantallas/RegistroModulos.h"
#include "printing/Impresiones.h"

namespace cajaplex {

void registraModulosImpresion() {
    RegistroModulos::registra({QStringLiteral("Impresión y Estadísticas"),
                               QStringLiteral("Impresiones"), QStringLiteral("Impresiones"),
                               QStringLiteral("Etiquetas"),
                               [](const Sesion& s) -> QWidget* { return new TImpresionesF(s); }});
}

} // namespace cajaplex
