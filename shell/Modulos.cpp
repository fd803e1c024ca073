#include "shell/Modulos.h"

#include "catalog/ModulosCatalogo.h"
#include "sales/ModulosVentas.h"
#include "security/ModulosSeguridad.h"

namespace cajaplex {

void registraModulos() {
    static const bool registrados = [] {
        registraModulosVentas();
        registraModulosCatalogo();
        registraModulosSeguridad();
        return true;
    }();
    (void)registrados;
}

} // namespace cajaplex
