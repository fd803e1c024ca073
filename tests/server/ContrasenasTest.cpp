// Contraseñas de los usuarios: el servicio solo guarda hashes Argon2id, los verifica con
// cajaplex_verifica y frena a quien prueba contraseñas una tras otra.
#include <chrono>
#include <filesystem>
#include <functional>

#include <sqlite3.h>

#include "tests/fixtures/DatosPrueba.h"

using namespace cajaplex::prueba;
using Reloj = std::chrono::steady_clock;
using namespace std::chrono_literals;

namespace {

const std::string PrefijoHash = "$argon2id$";

Json nulo() {
    return parametro("texto", nullptr);
}

Reloj::duration tarda(const std::function<void()>& trabajo) {
    const auto inicio = Reloj::now();
    trabajo();
    return Reloj::now() - inicio;
}

class Contrasenas : public ConServicio {
protected:
    Contrasenas() : ConServicio(true) {}

    long long verifica(const Json& contrasena, const Json& hash) {
        return c.valor("Select cajaplex_verifica(:c, :h)", {{"c", contrasena}, {"h", hash}})
            .get<long long>();
    }

    std::string guardada(const std::string& nUsuario) {
        return c
            .valor("Select contrasena From Usuarios Where nUsuario = :u", {{"u", texto(nUsuario)}})
            .get<std::string>();
    }

    // Lo que tarda el acceso móvil con esas credenciales; falla si no entra o entra de más.
    Reloj::duration intenta(const std::string& usuario, const std::string& contrasena, bool entra) {
        Respuesta r;
        const auto t = tarda([&] {
            r = c.exige("exec dbo.ValidaUsuarioMoviles :Usuario, :Contrasena",
                        {{"Usuario", texto(usuario)}, {"Contrasena", texto(contrasena)}});
        });
        EXPECT_EQ(r.filas().size(), entra ? 1u : 0u) << usuario << " / " << contrasena;
        return t;
    }
};

TEST_F(Contrasenas, AlArrancarSeCifranLasEnClaroTambienLasDeUnaBaseAnterior) {
    // La demostración trae sus contraseñas en claro (cada usuario la suya): ya quedaron cifradas.
    const Json demo = c.exige("Select nUsuario, contrasena From Usuarios").filas();
    ASSERT_EQ(demo.size(), 4u);
    for (const Json& fila : demo) {
        const std::string guardada = fila[1].get<std::string>();
        EXPECT_TRUE(guardada.starts_with(PrefijoHash)) << guardada;
        EXPECT_EQ(verifica(texto(fila[0].get<std::string>()), texto(guardada)), 1) << fila;
    }
    const std::string admin = guardada("admin");

    // Como la dejó una versión anterior: en claro (con comilla, vacía) y sin contraseña.
    ASSERT_EQ(servicio.detiene(), 0);
    sqlite3* db = nullptr;
    ASSERT_EQ(
        sqlite3_open((std::filesystem::path(servicio.carpeta()) / "cajaplex.db").c_str(), &db),
        SQLITE_OK);
    const int rc = sqlite3_exec(
        db,
        "Update Usuarios Set contrasena = 'vieja''1' Where nUsuario = 'cajero';"
        "Update Usuarios Set contrasena = '' Where nUsuario = 'mesero';"
        "Insert Into Usuarios (usuarioID, nUsuario, nombre) Values (9, 'sinclave', 'Sin Clave');",
        nullptr, nullptr, nullptr);
    sqlite3_close(db);
    ASSERT_EQ(rc, SQLITE_OK);
    servicio.reinicia();
    c = servicio.cliente();

    for (const Json& fila : c.exige("Select nUsuario, contrasena From Usuarios").filas()) {
        if (fila[0] == "sinclave") {
            EXPECT_TRUE(fila[1].is_null()) << "sin contraseña sigue sin contraseña";
            continue;
        }
        EXPECT_TRUE(fila[1].get<std::string>().starts_with(PrefijoHash)) << fila;
    }
    EXPECT_EQ(guardada("admin"), admin) << "un hash no se vuelve a cifrar";
    EXPECT_EQ(verifica(texto(""), texto(guardada("mesero"))), 1);
    intenta("cajero", "vieja'1", true);
}

TEST_F(Contrasenas, VerificaSoloLaContrasenaConUnHashBienFormado) {
    const std::string hash = c.valor("Select cajaplex_hash('Se''creta 1')").get<std::string>();
    ASSERT_TRUE(hash.starts_with(PrefijoHash)) << hash;
    EXPECT_NE(c.valor("Select cajaplex_hash('Se''creta 1')"), hash) << "cada hash con su sal";
    EXPECT_TRUE(c.valor("Select cajaplex_hash(null)").is_null());
    EXPECT_EQ(verifica(texto("Se'creta 1"), texto(hash)), 1);
    EXPECT_EQ(verifica(texto("se'creta 1"), texto(hash)), 0);
    EXPECT_EQ(verifica(nulo(), texto(hash)), 0);
    EXPECT_EQ(verifica(texto("Se'creta 1"), nulo()), 0);

    // Malformados, y uno bien escrito que pediría 4 GiB: 0 sin calcular nada.
    std::string costoso = hash;
    costoso.replace(costoso.find("m=65536"), 7, "m=4194304");
    const auto normal = tarda([&] { EXPECT_EQ(verifica(texto("otra"), texto(hash)), 0); });
    for (const std::string& malo :
         {std::string("Se'creta 1"), std::string(), "$argon2i$" + hash.substr(PrefijoHash.size()),
          hash.substr(0, hash.rfind('$')), hash + "$x", costoso}) {
        const auto t =
            tarda([&] { EXPECT_EQ(verifica(texto("Se'creta 1"), texto(malo)), 0) << malo; });
        EXPECT_LT(t, normal / 2) << malo;
    }
}

TEST_F(Contrasenas, LosIntentosFallidosSeguidosDeUnUsuarioSeFrenan) {
    const auto primero = intenta("cajero", "mala-1", false);
    Reloj::duration sexto{};
    for (int i = 2; i <= 6; ++i)
        sexto = intenta("cajero", "mala-" + std::to_string(i), false);
    EXPECT_GT(sexto, 4 * primero);

    // Los intentos de otro usuario no esperan por los del cajero.
    EXPECT_LT(intenta("mesero", "mala", false), sexto - 1s);
    // Con la correcta también se espera, se entra y la cuenta vuelve a empezar.
    EXPECT_GT(intenta("cajero", "cajero", true), 2 * primero);
    EXPECT_LT(intenta("cajero", "mala-7", false), sexto - 1s);
}

} // namespace
