// Transacciones por los puntos de entrada del protocolo, con varias estaciones a la vez.
#include <set>
#include <thread>

#include "tests/fixtures/DatosPrueba.h"

using namespace cajaplex::prueba;

class Transacciones : public ConServicio {
protected:
    void SetUp() override { datos.empresa(1, "Uno"); }

    Respuesta insertaRemision(long long folio, const Encabezados& en = {}) {
        return c.ejecuta("Insert Into Remision (empresaID, folio) Values (1, :folio)",
                         {{"folio", entero(folio)}}, en);
    }
    long long remisiones() { return c.cuenta("Remision Where empresaID = 1"); }
};

TEST_F(Transacciones, ConfirmarYRevertir) {
    auto t = c.comienzaTransaccion();
    auto ins = insertaRemision(1, enTransaccion(t));
    ASSERT_TRUE(es(ins, 200));
    EXPECT_EQ(ins.cuerpo["filasAfectadas"], 1);
    EXPECT_EQ(c.valor("select last_insert_rowid() as id", {}, enTransaccion(t)),
              ins.cuerpo["ultimoId"]);
    EXPECT_EQ(c.cuenta("Remision", {}, enTransaccion(t)), 1);
    EXPECT_EQ(remisiones(), 0) << "fuera de la transacción no se ve lo no confirmado";

    EXPECT_EQ(c.confirma(t).cuerpo, (Json{{"transaccion", t}, {"estado", "confirmada"}}));
    EXPECT_EQ(remisiones(), 1);
    // Confirmar otra vez (conexión caída durante el commit) contesta lo mismo sin duplicar.
    EXPECT_EQ(c.confirma(t).cuerpo, (Json{{"transaccion", t}, {"estado", "confirmada"}}));
    EXPECT_EQ(remisiones(), 1);

    auto r = c.comienzaTransaccion();
    ASSERT_TRUE(es(insertaRemision(2, enTransaccion(r)), 200));
    EXPECT_EQ(c.revierte(r).cuerpo, (Json{{"transaccion", r}, {"estado", "revertida"}}));
    EXPECT_EQ(c.revierte(r).cuerpo, (Json{{"transaccion", r}, {"estado", "revertida"}}));
    EXPECT_EQ(remisiones(), 1);
    EXPECT_EQ(datos.contador(1, "folioRem"), 2);

    EXPECT_TRUE(es(c.confirma("no-existe"), 404, "transaccion"));
    EXPECT_TRUE(es(c.revierte("no-existe"), 404, "transaccion"));
    EXPECT_TRUE(es(insertaRemision(3, enTransaccion("no-existe")), 404, "transaccion"));
    EXPECT_EQ(remisiones(), 1);
}

TEST_F(Transacciones, SentenciaFallidaDejaLaTransaccionAbiertaSinSuEfecto) {
    auto t = c.comienzaTransaccion();
    auto en = enTransaccion(t);
    ASSERT_TRUE(es(insertaRemision(1, en), 200));
    // Varias filas de una sentencia y la última choca: no queda ninguna ni avanza el contador.
    EXPECT_TRUE(es(c.ejecuta("Insert Into Remision (empresaID, folio) Values (1, 100), (1, 101), "
                             "(1, 1)",
                             {}, en),
                   409, "restriccion"));
    EXPECT_TRUE(es(c.ejecuta("Insert Into NoExiste (a) Values (1)", {}, en), 400, "sql"));
    EXPECT_EQ(c.cuenta("Remision", {}, en), 1);
    EXPECT_EQ(datos.contador(1, "folioRem"), 1) << "lo no confirmado no se ve afuera";
    ASSERT_TRUE(es(insertaRemision(2, en), 200));
    ASSERT_TRUE(es(c.confirma(t), 200));
    EXPECT_EQ(c.valor("Select group_concat(folio) From (Select folio From Remision Order By "
                      "folio)"),
              "1,2");
    EXPECT_EQ(datos.contador(1, "folioRem"), 3);
}

// El protocolo fija la expiración en 10 s de inactividad, contados desde la última petición.
TEST_F(Transacciones, InactivaMasDeDiezSegundosSeRevierteYContesta410) {
    auto t = c.comienzaTransaccion();
    auto en = enTransaccion(t);
    ASSERT_TRUE(es(insertaRemision(1, en), 200));
    for (int i = 0; i < 2; ++i) {
        std::this_thread::sleep_for(std::chrono::seconds(6));
        ASSERT_TRUE(es(c.ejecuta("Select 1", {}, en), 200)) << "cada petición reinicia la espera";
    }
    std::this_thread::sleep_for(std::chrono::seconds(11));
    EXPECT_TRUE(es(c.ejecuta("Select 1", {}, en), 410, "transaccion"));
    EXPECT_TRUE(es(c.confirma(t), 410, "transaccion"));
    EXPECT_TRUE(es(c.revierte(t), 410, "transaccion"));
    EXPECT_EQ(remisiones(), 0);
    // El escritor quedó libre.
    auto otra = c.comienzaTransaccion();
    EXPECT_TRUE(es(c.confirma(otra), 200));
}

TEST_F(Transacciones, OchoEstacionesTomanFoliosDistintos) {
    const int estaciones = 8;
    std::vector<Respuesta> confirmaciones(estaciones);
    std::vector<long long> folios(estaciones, -1);
    std::vector<std::thread> hilos;
    for (int i = 0; i < estaciones; ++i)
        hilos.emplace_back([&, i] {
            auto cli = servicio.cliente();
            try {
                auto t = cli.comienzaTransaccion();
                auto en = enTransaccion(t);
                folios[i] = cli.valor("Select folioRem From Configura Where empresaID = 1", {}, en)
                                .get<long long>();
                cli.exige("Insert Into Remision (empresaID, folio) Values (1, :folio)",
                          {{"folio", entero(folios[i])}}, en);
                confirmaciones[i] = cli.confirma(t);
            } catch (const std::exception& e) {
                confirmaciones[i].crudo = e.what();
            }
        });
    for (auto& h : hilos)
        h.join();
    for (const auto& r : confirmaciones)
        EXPECT_TRUE(es(r, 200));
    EXPECT_EQ(std::set<long long>(folios.begin(), folios.end()).size(), size_t{estaciones});
    EXPECT_EQ(remisiones(), estaciones);
    EXPECT_EQ(datos.contador(1, "folioRem"), estaciones + 1);
}

TEST_F(Transacciones, LecturasNoEsperanAlEscritor) {
    ASSERT_TRUE(es(insertaRemision(1), 200));
    auto t = c.comienzaTransaccion();
    ASSERT_TRUE(es(insertaRemision(2, enTransaccion(t)), 200));
    // Si la lectura esperara al escritor, la transacción expiraría antes y no confirmaría.
    auto lector = servicio.cliente();
    for (int i = 0; i < 20; ++i)
        ASSERT_EQ(lector.cuenta("Remision Where empresaID = 1"), 1);
    EXPECT_TRUE(es(c.confirma(t), 200));
    EXPECT_EQ(lector.cuenta("Remision Where empresaID = 1"), 2);
}
