// GET .../eventos: contadores de cambios por tabla, solo por lo confirmado; las esperas no usan
// la base y el servicio atiende cientos a la vez sin descuidar lo ordinario.
#include <atomic>
#include <chrono>
#include <future>
#include <iostream>
#include <thread>

#include "tests/fixtures/DatosPrueba.h"

using namespace cajaplex::prueba;
using Reloj = std::chrono::steady_clock;
using std::chrono::milliseconds;

namespace {
std::string ruta(const std::string& tablas, long long desde, int espera) {
    return kRutaBase + "eventos?tablas=" + tablas + "&desde=" + std::to_string(desde) +
           "&espera=" + std::to_string(espera);
}
long long ms(Reloj::duration d) {
    return std::chrono::duration_cast<milliseconds>(d).count();
}
} // namespace

class Eventos : public ConServicio {
protected:
    void SetUp() override { datos.empresa(1, "Uno"); }

    Respuesta consulta(const std::string& tablas, long long desde = 0, int espera = 0) {
        return c.get(ruta(tablas, desde, espera));
    }
    long long version(const std::string& tablas) {
        auto r = consulta(tablas);
        EXPECT_TRUE(es(r, 200));
        return r.cuerpo.value("version", -1LL);
    }
    // Espera en otro hilo; devuelve la respuesta y cuánto tardó.
    std::future<std::pair<Respuesta, Reloj::duration>> espera(const std::string& tablas,
                                                              long long desde, int segundos) {
        return std::async(std::launch::async, [this, tablas, desde, segundos] {
            auto cli = servicio.cliente();
            const auto inicio = Reloj::now();
            auto r = cli.get(ruta(tablas, desde, segundos));
            return std::make_pair(r, Reloj::now() - inicio);
        });
    }
};

TEST_F(Eventos, FormaDeLaRespuestaYErrores) {
    auto r = consulta("Remision,comanda, COMANDADETALLE");
    ASSERT_TRUE(es(r, 200));
    EXPECT_TRUE(r.cuerpo["instancia"].is_string());
    EXPECT_FALSE(r.cuerpo["instancia"].get<std::string>().empty());
    EXPECT_TRUE(r.cuerpo["version"].is_number_integer());
    EXPECT_EQ(r.cuerpo["tablas"].size(), 3u) << r;
    EXPECT_TRUE(r.cuerpo["tablas"].contains("Remision")) << r;
    EXPECT_TRUE(r.cuerpo["tablas"].contains("Comanda")) << "con la escritura del esquema: " << r;

    EXPECT_TRUE(es(consulta("NoExiste"), 400, "solicitud"));
    EXPECT_TRUE(es(consulta("Remision,cajaplex_idempotencia"), 400, "solicitud"));
    EXPECT_TRUE(es(consulta("sqlite_master"), 400, "solicitud"));
    EXPECT_TRUE(es(consulta(""), 400, "solicitud"));
    EXPECT_TRUE(es(c.get(kRutaBase + "eventos?tablas=Remision&espera=31"), 400, "solicitud"));
    EXPECT_TRUE(es(c.get(kRutaBase + "eventos?tablas=Remision&desde=-1"), 400, "solicitud"));
    EXPECT_TRUE(es(c.get(kRutaBase + "eventos?tablas=Remision&desde=x"), 400, "solicitud"));
    Cliente anonimo(servicio.puerto(), "", "");
    EXPECT_TRUE(es(anonimo.get(ruta("Remision", 0, 0)), 401, "autenticacion"));
}

TEST_F(Eventos, SoloLoConfirmadoSubeLosContadores) {
    const long long v0 = version("Remision");
    // Sentencia sola.
    c.exige("Insert Into Remision (empresaID, folio) Values (1, 1)");
    const long long v1 = version("Remision");
    EXPECT_GT(v1, v0);
    // Los disparadores también cuentan: el folio avanzó en Configura.
    EXPECT_GE(version("Configura"), v1);
    // Revertida: nada.
    auto t = c.comienzaTransaccion();
    c.exige("Insert Into Remision (empresaID, folio) Values (1, 2)", {}, enTransaccion(t));
    ASSERT_TRUE(es(c.revierte(t), 200));
    EXPECT_EQ(version("Remision"), v1);
    // Lote que falla: nada.
    EXPECT_TRUE(es(c.lote({sentencia("Insert Into Remision (empresaID, folio) Values (1, 3)"),
                           sentencia("Insert Into Remision (empresaID, folio) Values (1, 1)")}),
                   409));
    EXPECT_EQ(version("Remision"), v1);
    // Dentro de una transacción que se confirma, la sentencia que falló y se deshizo no cuenta.
    const long long lineas = version("Lineas");
    auto u = c.comienzaTransaccion();
    EXPECT_TRUE(es(c.lote({sentencia("Insert Into Lineas (empresaID, linea) Values (1, 'x')"),
                           sentencia("Insert Into Remision (empresaID, folio) Values (1, 1)")},
                          enTransaccion(u)),
                   409));
    c.exige("Update Remision Set observaciones = 'y' Where folio = 1", {}, enTransaccion(u));
    EXPECT_EQ(version("Remision"), v1) << "aún no se confirma";
    ASSERT_TRUE(es(c.confirma(u), 200));
    const long long v2 = version("Remision");
    EXPECT_GT(v2, v1);
    EXPECT_EQ(version("Lineas"), lineas);
    // Lote confirmado y borrado sin WHERE (sin la optimización de truncar, también cuenta).
    ASSERT_TRUE(es(c.lote(Json::array({sentencia("Insert Into Lineas (empresaID, linea) Values "
                                                 "(1, 'x')")})),
                   200));
    const long long l1 = version("Lineas");
    EXPECT_GT(l1, lineas);
    c.exige("Delete From Lineas");
    EXPECT_GT(version("Lineas"), l1);
    // Una lectura no cuenta.
    const long long v3 = version("Remision,Lineas");
    c.exige("Select * From Remision");
    EXPECT_EQ(version("Remision,Lineas"), v3);
}

TEST_F(Eventos, UnaEscrituraConfirmadaDespiertaALaEsperaEnMenosDeUnSegundo) {
    const long long v = version("Remision,Lineas");
    auto f = espera("Remision,Lineas", v, 20);
    std::this_thread::sleep_for(milliseconds(300));
    const auto escrito = Reloj::now();
    c.exige("Insert Into Remision (empresaID, folio) Values (1, 1)");
    auto [r, tardo] = f.get();
    ASSERT_TRUE(es(r, 200));
    EXPECT_GT(r.cuerpo["version"].get<long long>(), v);
    EXPECT_LT(ms(Reloj::now() - escrito), 1000);
    EXPECT_EQ(r.cuerpo["tablas"]["Remision"], r.cuerpo["version"]);

    // Ya por encima de "desde": contesta enseguida.
    const auto inicio = Reloj::now();
    EXPECT_TRUE(es(consulta("Remision", 0, 20), 200));
    EXPECT_LT(ms(Reloj::now() - inicio), 1000);
}

TEST_F(Eventos, RevertidaUOtraTablaNoDespiertanYLaEsperaSeAcaba) {
    const long long v = version("Remision");
    auto f = espera("Remision", v, 2);
    std::this_thread::sleep_for(milliseconds(200));
    auto t = c.comienzaTransaccion();
    c.exige("Insert Into Remision (empresaID, folio) Values (1, 1)", {}, enTransaccion(t));
    ASSERT_TRUE(es(c.revierte(t), 200));
    c.exige("Insert Into Lineas (empresaID, linea) Values (1, 'otra tabla')");
    auto [r, tardo] = f.get();
    ASSERT_TRUE(es(r, 200));
    EXPECT_EQ(r.cuerpo["version"], v);
    EXPECT_GE(ms(tardo), 1900);
    EXPECT_LT(ms(tardo), 4000);
}

TEST_F(Eventos, ReiniciarDaOtraInstancia) {
    auto antes = consulta("Remision");
    ASSERT_TRUE(es(antes, 200));
    servicio.reinicia();
    auto nuevo = servicio.cliente();
    auto despues = nuevo.get(ruta("Remision", 0, 0));
    ASSERT_TRUE(es(despues, 200));
    EXPECT_NE(antes.cuerpo["instancia"], despues.cuerpo["instancia"]);
    EXPECT_EQ(despues.cuerpo["version"], 0);
}

TEST_F(Eventos, DoscientasEsperasYLoOrdinarioALaVez) {
    const long long v = version("Comanda");
    constexpr int n = 200;
    std::vector<std::future<std::pair<Respuesta, Reloj::duration>>> esperas;
    for (int i = 0; i < n; ++i)
        esperas.push_back(espera("Comanda", v, 25));
    std::this_thread::sleep_for(milliseconds(1000));
    // Lo ordinario no espera: lecturas, escrituras y transacciones.
    for (int i = 0; i < 30; ++i) {
        const auto inicio = Reloj::now();
        ASSERT_TRUE(es(c.ejecuta("Select count(*) From Remision"), 200));
        ASSERT_TRUE(es(c.ejecuta("Insert Into Lineas (empresaID, linea) Values (1, 'x')"), 200));
        auto t = c.comienzaTransaccion();
        ASSERT_TRUE(es(c.confirma(t), 200));
        EXPECT_LT(ms(Reloj::now() - inicio), 1000);
    }
    for (auto& f : esperas)
        EXPECT_EQ(f.wait_for(milliseconds(0)), std::future_status::timeout)
            << "nadie despertó por escrituras de otras tablas";
    const auto escrito = Reloj::now();
    c.exige("Insert Into Comanda (empresaID, folio) Values (1, -1)");
    int despiertas = 0;
    for (auto& f : esperas) {
        auto [r, tardo] = f.get();
        if (r.estado == 200 && r.cuerpo["version"].get<long long>() > v) ++despiertas;
    }
    EXPECT_EQ(despiertas, n);
    const auto todas = ms(Reloj::now() - escrito);
    std::cout << n << " esperas despertaron en " << todas << " ms\n";
    EXPECT_LT(todas, 3000);
}

TEST_F(Eventos, SigtermContestaALasEsperasEnseguida) {
    const long long v = version("Remision");
    std::vector<std::future<std::pair<Respuesta, Reloj::duration>>> esperas;
    for (int i = 0; i < 5; ++i)
        esperas.push_back(espera("Remision", v, 30));
    std::this_thread::sleep_for(milliseconds(500));
    const auto inicio = Reloj::now();
    EXPECT_EQ(servicio.detiene(), 0);
    EXPECT_LT(ms(Reloj::now() - inicio), 5000);
    for (auto& f : esperas) {
        auto [r, tardo] = f.get();
        EXPECT_TRUE(es(r, 200));
        EXPECT_LT(ms(tardo), 6000);
    }
    servicio.reinicia();
}
