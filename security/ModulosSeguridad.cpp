#include "security/ModulosSeguridad.h"

#include "pantallas/RegistroModulos.h"
#include "security/Auditorias.h"

namespace cajaplex {

void registraModulosSeguridad() {
    RegistroModulos::registra({QStringLiteral("Usuarios y Bitácoras"), QStringLiteral("Auditorias"),
                               QStringLiteral("Bitácoras del Sistema"), QStringLiteral("Bitacoras"),
                               [](const Sesion& s) -> QWidget* { return new TAuditoriasF(s); }});
}

} // namespace cajaplex
