// La base local cifrada de la estación: plantillas guardadas y leídas con la contraseña, y un
// archivo que sin ella no se puede leer.
#include <gtest/gtest.h>

#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>

#include "datos/ModuloDatos.h"

namespace cajaplex {
namespace {

class ConexionLocalBDTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(carpeta.isValid());
        modulo.ArchivoLocalBD = carpeta.filePath("Cajaplex.db");
        modulo.ContrasenaLocalBD = "clave 'de' la estación";
    }

    QByteArray plantilla(int64_t reporteID) {
        Consulta q(modulo.ConexionLocalBD, SqlPlantillasLocal);
        q.parametro("EMPRESAID").entero(1);
        q.parametro("reporteid").entero(reporteID);
        q.abre();
        return q.numeroRegistros() == 1 ? q.campo("Plantilla").comoBlob() : QByteArray();
    }

    QTemporaryDir carpeta;
    TModuloDeDatos modulo;
    const QByteArray contenido = QByteArray("Ticket de venta\0{encabezado}", 28);
};

TEST_F(ConexionLocalBDTest, PlantillaCifradaSoloSeLeeConSuContrasena) {
    modulo.ConexionLocalBD.abre();
    EXPECT_EQ(modulo.ConexionLocalBD.nombresParametros(),
              (QStringList{"Encrypt", "DriverID", "Password", "Database"}));
    EXPECT_EQ(modulo.ConexionLocalBD.parametro("Encrypt"), "aes-ctr-256");
    Consulta guarda(modulo.ConexionLocalBD, SqlGuardaPlantillaLocal);
    guarda.parametro("empresaID").entero(1);
    guarda.parametro("reporteID").entero(4);
    guarda.parametro("carpetaID").entero(2);
    guarda.parametro("Nombre").texto("Ticket 58 mm");
    guarda.parametro("plantilla").blob(contenido);
    guarda.ejecuta();
    EXPECT_EQ(guarda.filasAfectadas(), 1);
    EXPECT_EQ(plantilla(4), contenido);
    EXPECT_TRUE(plantilla(5).isEmpty());
    modulo.ConexionLocalBD.cierra();

    QFile archivo(modulo.ArchivoLocalBD);
    ASSERT_TRUE(archivo.open(QIODevice::ReadOnly));
    const QByteArray crudo = archivo.readAll();
    EXPECT_GT(crudo.size(), 0);
    EXPECT_FALSE(crudo.startsWith("SQLite format 3"));
    EXPECT_FALSE(crudo.contains("Ticket de venta"));
    EXPECT_FALSE(crudo.contains("Reportes"));

    for (const QString& otra : {QStringLiteral("otra"), QString()}) {
        ConexionLocalBD ajena;
        ajena.asignaParametro("DriverID", "SQLite");
        ajena.asignaParametro("Password", otra);
        ajena.asignaParametro("Database", modulo.ArchivoLocalBD);
        try {
            ajena.abre();
            ADD_FAILURE() << "abrió con la contraseña «" << otra.toStdString() << "»";
        } catch (const ErrorServicio& e) {
            EXPECT_EQ(e.codigo(), "base_local");
            EXPECT_TRUE(e.mensaje().contains("contraseña")) << e.what();
        }
        EXPECT_FALSE(ajena.abierta());
    }

    modulo.ConexionLocalBD.abre(); // el manejador vuelve a poner la contraseña buena
    EXPECT_EQ(plantilla(4), contenido);
}

} // namespace
} // namespace cajaplex
