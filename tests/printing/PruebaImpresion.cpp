#include "tests/printing/PruebaImpresion.h"

#include "datos/ModuloDatos.h"

namespace cajaplex::prueba {

void ConCopiaLocal::SetUp() {
    ConPantallas::SetUp();
    ASSERT_TRUE(carpeta_.isValid());
    ModuloDeDatos.ConexionLocalBD.cierra();
    ModuloDeDatos.ArchivoLocalBD = carpeta_.filePath(QStringLiteral("Cajaplex.db"));
    ModuloDeDatos.ContrasenaLocalBD = QStringLiteral("clave-local");
    sesion_ = sesion(QStringLiteral("admin"), 1);
}

void ConCopiaLocal::TearDown() {
    ModuloDeDatos.ConexionLocalBD.cierra();
    ConPantallas::TearDown();
}

} // namespace cajaplex::prueba
