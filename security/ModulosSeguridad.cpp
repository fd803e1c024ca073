#include "security/ModulosSeguridad.h"

#include "pantallas/RegistroModulos.h"
#include "security/Auditorias.h"
#include "security/Dispositivos.h"
#include "security/Perfiles.h"
#include "security/Usuarios.h"

namespace cajaplex {

void registraModulosSeguridad() {
    const QString grupo = QStringLiteral("Usuarios y Bitácoras");
    RegistroModulos::registra({grupo, QStringLiteral("Usuarios"), QStringLiteral("Usuarios"),
                               QStringLiteral("Usuario"),
                               [](const Sesion& s) -> QWidget* { return new TUsuariosF(s); }});
    RegistroModulos::registra({grupo, QStringLiteral("Perfiles"),
                               QStringLiteral("Perfiles de Usuario"), QStringLiteral("Candado"),
                               [](const Sesion& s) -> QWidget* { return new TPerfilesF(s); }});
    RegistroModulos::registra({grupo, QStringLiteral("Auditorias"),
                               QStringLiteral("Bitácoras del Sistema"), QStringLiteral("Bitacoras"),
                               [](const Sesion& s) -> QWidget* { return new TAuditoriasF(s); }});
    RegistroModulos::registra({grupo, QStringLiteral("Dispositivos"),
                               QStringLiteral("Dispositivos"), QStringLiteral("Huella"),
                               [](const Sesion& s) -> QWidget* { return new TDispositivosF(s); }});
}

} // namespace cajaplex
