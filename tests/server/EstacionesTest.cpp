// Credenciales propias de cada estación: las pide un administrador, valen mientras exista el
// renglón de su dispositivo y se guardan solo como hash.
#include <filesystem>
#include <fstream>
#include <iterator>

#include "protocol/Base64.h"
#include "tests/fixtures/DatosPrueba.h"

using namespace cajaplex::prueba;

namespace {

const std::string RutaEstaciones = kRutaBase + "estaciones";

struct Credenciales {
    std::string usuario;
    std::string contrasena;
};

class Estaciones : public ConServicio {
protected:
    Estaciones() : ConServicio(true) {}

    Respuesta pide(const std::string& usuario, const std::string& contrasena, const Json& cuerpo) {
        return servicio.clienteCon(usuario, contrasena).post(RutaEstaciones, cuerpo.dump());
    }

    Credenciales emite(const std::string& dispositivo, const std::string& descripcion = "") {
        Json cuerpo = {{"dispositivoID", dispositivo}};
        if (!descripcion.empty()) cuerpo["descripcion"] = descripcion;
        const Respuesta r = pide("admin", "admin", cuerpo);
        EXPECT_TRUE(es(r, 200));
        return {r.cuerpo.value("usuario", ""), r.cuerpo.value("contrasena", "")};
    }

    Cliente estacion(const Credenciales& cr) {
        return servicio.clienteCon(cr.usuario, cr.contrasena);
    }

    long long dispositivos() { return c.cuenta("DispositivosRED"); }
};

TEST_F(Estaciones, UnAdministradorObtieneCredencialesQueCorrenSentenciasLotesYTransacciones) {
    const Credenciales cr = emite("CAJA-2", "Caja 2");
    EXPECT_FALSE(cr.usuario.empty());
    EXPECT_EQ(cr.usuario.find(':'), std::string::npos);
    const auto secreto = cajaplex::protocolo::decodificaBase64(cr.contrasena);
    ASSERT_TRUE(secreto.has_value()) << cr.contrasena;
    EXPECT_GE(secreto->size(), 32u);

    const Json renglon =
        c.exige("Select descripcion, fechaEmision From DispositivosRED Where ReferenciaID = "
                "'CAJA-2'")
            .filas();
    ASSERT_EQ(renglon.size(), 1u);
    EXPECT_EQ(renglon[0][0], "Caja 2");
    EXPECT_TRUE(renglon[0][1].is_string()) << renglon;

    Cliente caja = estacion(cr);
    EXPECT_GT(caja.cuenta("Productos Where empresaID = 1"), 0);
    EXPECT_TRUE(es(caja.lote(Json::array({sentencia("Insert Into Lineas (empresaID, linea) Values "
                                                    "(1, 'Desde la caja 2')"),
                                          sentencia("Select count(*) From Lineas")})),
                   200));
    const std::string t = caja.comienzaTransaccion();
    EXPECT_TRUE(
        es(caja.ejecuta("Delete From Lineas Where linea = 'Desde la caja 2'", {}, enTransaccion(t)),
           200));
    EXPECT_TRUE(es(caja.confirma(t), 200));
    // Las credenciales del servicio (guiones, integraciones) siguen valiendo.
    EXPECT_EQ(c.cuenta("Lineas Where linea = 'Desde la caja 2'"), 0);
}

TEST_F(Estaciones, QuienNoEsAdministradorActivoNoObtieneNadaYNadaSeCrea) {
    const Json cuerpo = {{"dispositivoID", "CAJA-X"}};
    EXPECT_TRUE(es(pide("cajero", "cajero", cuerpo), 401, "autenticacion"));
    EXPECT_TRUE(es(pide("admin", "otra", cuerpo), 401, "autenticacion"));
    EXPECT_TRUE(es(pide("inactivo", "inactivo", cuerpo), 401, "autenticacion"));
    EXPECT_TRUE(es(pide(kUsuarioDemo, kUsuarioDemo, cuerpo), 401, "autenticacion"));
    EXPECT_TRUE(es(pide("", "", cuerpo), 401, "autenticacion"));
    // Un administrador con la solicitud mal formada tampoco crea nada.
    EXPECT_TRUE(es(pide("admin", "admin", Json{{"dispositivoID", ""}}), 400, "solicitud"));
    EXPECT_TRUE(es(pide("admin", "admin", Json{{"dispositivoID", 7}}), 400, "solicitud"));
    EXPECT_EQ(dispositivos(), 0);
    // Un usuario del sistema no es una credencial de estación.
    EXPECT_TRUE(es(servicio.clienteCon("admin", "admin").ejecuta("Select 1"), 401));
}

TEST_F(Estaciones, BorrarElDispositivoRechazaLaSiguienteSolicitudParaSiempre) {
    const Credenciales cr = emite("CAJA-3");
    Cliente caja = estacion(cr);
    ASSERT_TRUE(es(caja.ejecuta("Select 1"), 200));
    // Otra estación (la pantalla de dispositivos) lo da de baja; la misma conexión de la caja
    // queda rechazada en la solicitud siguiente.
    Cliente otra = estacion(emite("CAJA-4"));
    ASSERT_TRUE(es(otra.ejecuta("Delete From DispositivosRED Where ReferenciaID = 'CAJA-3'"), 200));
    EXPECT_TRUE(es(caja.ejecuta("Select 1"), 401, "autenticacion"));
    EXPECT_TRUE(es(caja.lote(Json::array({sentencia("Select 1")})), 401, "autenticacion"));
    EXPECT_TRUE(es(otra.ejecuta("Select 1"), 200));
    // Darlo de alta otra vez a mano no revive el secreto viejo.
    c.exige("Insert Into DispositivosRED (ReferenciaID) Values ('CAJA-3')");
    EXPECT_TRUE(es(caja.ejecuta("Select 1"), 401, "autenticacion"));
    // Ni cambiarle el identificador a otro que lo tenga.
    c.exige("Update DispositivosRED Set ReferenciaID = 'CAJA-4B' Where ReferenciaID = 'CAJA-4'");
    EXPECT_TRUE(es(otra.ejecuta("Select 1"), 401, "autenticacion"));
}

TEST_F(Estaciones, PedirOtraVezRevocaElSecretoAnteriorYConservaElRenglon) {
    const Credenciales vieja = emite("CAJA-5", "Caja de la entrada");
    const Credenciales nueva = emite("CAJA-5");
    EXPECT_NE(vieja.contrasena, nueva.contrasena);
    EXPECT_TRUE(es(estacion(vieja).ejecuta("Select 1"), 401, "autenticacion"));
    EXPECT_TRUE(es(estacion(nueva).ejecuta("Select 1"), 200));
    // El secreto vigente con otro usuario tampoco entra.
    EXPECT_TRUE(es(servicio.clienteCon(vieja.usuario, nueva.contrasena).ejecuta("Select 1"), 401));
    EXPECT_EQ(dispositivos(), 1);
    EXPECT_EQ(c.valor("Select descripcion From DispositivosRED"), "Caja de la entrada");
}

TEST_F(Estaciones, ElSecretoNoSeGuardaEnClaroYLasEstacionesNoVenLaTabla) {
    const Credenciales cr = emite("CAJA-6");
    EXPECT_TRUE(es(estacion(cr).ejecuta("Select * From cajaplex_estaciones"), 403, "prohibido"));
    EXPECT_TRUE(es(c.ejecuta("Select * From cajaplex_estaciones"), 403, "prohibido"));
    // Ni en la base ni en su bitácora de escritura aparece el secreto (en texto o en binario).
    ASSERT_EQ(servicio.detiene(), 0);
    const auto secreto = *cajaplex::protocolo::decodificaBase64(cr.contrasena);
    size_t revisados = 0;
    for (const auto& archivo : std::filesystem::directory_iterator(servicio.carpeta())) {
        if (!archivo.is_regular_file()) continue;
        std::ifstream f(archivo.path(), std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(f), {}};
        EXPECT_EQ(bytes.find(cr.contrasena), std::string::npos) << archivo.path();
        EXPECT_EQ(bytes.find(secreto), std::string::npos) << archivo.path();
        // El usuario sí se guarda: prueba que se revisó el archivo correcto.
        if (bytes.find(cr.usuario) != std::string::npos) ++revisados;
    }
    EXPECT_GE(revisados, 1u);
}

} // namespace
