// Una base creada por una versión anterior del servicio se actualiza al abrirla.
#include <filesystem>

#include <gtest/gtest.h>

#include "schema/Esquema.h"
#include "server/Migraciones.h"
#include "server/MotorSqlite.h"

using namespace cajaplex::servidor;

namespace {
int64_t cuenta(Conexion& c, const std::string& sql) {
    auto r = c.ejecutaInterna(sql);
    return std::get<int64_t>(r.filas.at(0).at(0));
}

class Migraciones : public ::testing::Test {
protected:
    void SetUp() override {
        carpeta_ = std::filesystem::temp_directory_path() /
                   ("cajaplex-migraciones-" + std::to_string(::getpid()));
        std::filesystem::create_directories(carpeta_);
    }
    void TearDown() override { std::filesystem::remove_all(carpeta_); }
    std::unique_ptr<Conexion> abre() {
        return MotorSqlite({(carpeta_ / "cajaplex.db").string()}).abreConexion();
    }
    std::filesystem::path carpeta_;
};
} // namespace

TEST_F(Migraciones, UnaBaseAnteriorRecibeLasMigracionesQueLeFaltan) {
    {
        auto c = abre();
        EXPECT_EQ(preparaBase(*c, false, 2), 2);
        EXPECT_EQ(cuenta(*c, "Select count(*) From Estados"), 0);
        c->ejecutaInterna(
            "Insert Into Empresa (empresaID, nombreEmpresaCorto) Values (7, 'Vieja')");
    }
    auto c = abre();
    const int version = preparaBase(*c, false);
    EXPECT_GE(version, 3);
    EXPECT_EQ(cuenta(*c, "Select count(*) From Estados"), 32);
    EXPECT_EQ(cuenta(*c, "Select count(*) From Empresa Where empresaID = 7"), 1)
        << "los datos de la versión anterior se conservan";
    // Abrir otra vez no vuelve a aplicar nada.
    EXPECT_EQ(preparaBase(*c, false), version);
    EXPECT_EQ(cuenta(*c, "Select count(*) From Estados"), 32);
    EXPECT_EQ(cuenta(*c, "Select count(*) From cajaplex_version_esquema"),
              static_cast<int64_t>(cajaplex::esquema::migraciones().size()));
}

TEST_F(Migraciones, LaDemostracionSoloEntraEnUnaBaseSinEmpresas) {
    auto c = abre();
    preparaBase(*c, true);
    const auto productos = cuenta(*c, "Select count(*) From Productos");
    EXPECT_GT(productos, 60);
    EXPECT_EQ(cuenta(*c, "Select count(*) From Empresa Where activo = 1"), 2);
    preparaBase(*c, true);
    EXPECT_EQ(cuenta(*c, "Select count(*) From Productos"), productos);

    auto otra = std::filesystem::path(carpeta_) / "otra";
    std::filesystem::create_directories(otra);
    auto c2 = MotorSqlite({(otra / "cajaplex.db").string()}).abreConexion();
    preparaBase(*c2, false);
    c2->ejecutaInterna("Insert Into Empresa (empresaID, nombreEmpresaCorto) Values (1, 'Propia')");
    preparaBase(*c2, true);
    EXPECT_EQ(cuenta(*c2, "Select count(*) From Productos"), 0)
        << "una base con empresas propias no recibe la demostración";
}
