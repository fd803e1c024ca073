#pragma once

#include <QTemporaryDir>

#include "datos/Sesion.h"
#include "tests/fixtures/PruebaPantallas.h"

namespace cajaplex::prueba {

// Servicio de demostración más una base local de la estación en una carpeta temporal (la que
// recibe la copia de plantillas) y la sesión del administrador en la empresa 1.
class ConCopiaLocal : public ConPantallas {
protected:
    void SetUp() override;
    void TearDown() override;

    QTemporaryDir carpeta_;
    Sesion sesion_;
};

} // namespace cajaplex::prueba
