#include "shell/Modulos.h"

#include "catalog/ModulosCatalogo.h"
#include "printing/ModulosImpresion.h"
#include "purchasing/ModulosCompras.h"
#include "restaurant/ModulosRestaurante.h"
#include "sales/ModulosVentas.h"
#include "security/ModulosSeguridad.h"

namespace cajaplex {

void registraModulos() {
    static const bool registrados = [] {
        registraModulosVentas();
        registraModulosCatalogo();
        registraModulosSeguridad();
        registraModulosImpresion();
        registraModulosRestaurante();
        registraModulosCompras();
        return true;
    }();
    (void)registrados;
}

} // namespace cajaplex
