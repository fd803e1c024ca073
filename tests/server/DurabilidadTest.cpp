// Lo confirmado sobrevive a reinicios, a SIGTERM y a SIGKILL; lo no confirmado no.
#include "tests/fixtures/DatosPrueba.h"

using namespace cajaplex::prueba;

class Durabilidad : public ConServicio {
protected:
    void SetUp() override {
        datos.empresa(1, "Uno");
        datos.producto(1, "A", 100);
    }
};

TEST_F(Durabilidad, SigtermConTransaccionAbiertaPierdeSoloEsa) {
    datos.venta(1, {{"A", 5}});
    auto t = c.comienzaTransaccion();
    c.exige("Insert Into Remision (empresaID, folio) Values (1, 2)", {}, enTransaccion(t));
    ASSERT_TRUE(es(c.confirma(t), 200));
    auto abierta = c.comienzaTransaccion();
    c.exige("Insert Into Remision (empresaID, folio) Values (1, 50)", {}, enTransaccion(abierta));

    EXPECT_EQ(servicio.detiene(), 0);
    servicio.reinicia();
    auto nuevo = servicio.cliente();
    Datos d(nuevo);
    EXPECT_EQ(nuevo.valor("Select group_concat(folio) From Remision"), "1,2");
    EXPECT_DOUBLE_EQ(d.existencia(1, "A"), 95);
    EXPECT_EQ(d.contador(1, "folioRem"), 3);
    // El escritor quedó libre y los folios siguen donde iban.
    EXPECT_EQ(d.venta(1, {{"A", 1}}).folio, 3);
}

TEST_F(Durabilidad, SigkillDespuesDeUn200NoPierdeNada) {
    for (int i = 0; i < 30; ++i)
        datos.venta(1, {{"A", 1}});
    auto t = c.comienzaTransaccion();
    c.exige("Insert Into Remision (empresaID, folio) Values (1, 100)", {}, enTransaccion(t));
    ASSERT_TRUE(es(c.confirma(t), 200));
    auto abierta = c.comienzaTransaccion();
    c.exige("Insert Into Remision (empresaID, folio) Values (1, 200)", {}, enTransaccion(abierta));

    servicio.mata();
    servicio.reinicia();
    auto nuevo = servicio.cliente();
    EXPECT_EQ(nuevo.cuenta("Remision Where empresaID = 1"), 31);
    EXPECT_EQ(nuevo.cuenta("Remision Where folio = 100"), 1);
    EXPECT_EQ(nuevo.cuenta("Remision Where folio = 200"), 0);
    EXPECT_DOUBLE_EQ(Datos(nuevo).existencia(1, "A"), 70);
}

class DemoDurabilidad : public ConServicio {
protected:
    DemoDurabilidad() : ConServicio(true) {}
};

TEST_F(DemoDurabilidad, CargarLaDemoDosVecesNoCambiaNada) {
    const std::string resumen =
        "Select (Select count(*) From Empresa) || '/' || (Select count(*) From Productos) || '/' "
        "|| (Select count(*) From Usuarios) || '/' || (Select sum(existencia) From Productos)";
    auto antes = c.valor(resumen);
    EXPECT_EQ(c.valor("Select group_concat(empresaID) From (Select empresaID From Empresa Order "
                      "By empresaID)"),
              "1,2");
    EXPECT_EQ(servicio.detiene(), 0);
    servicio.reinicia();
    EXPECT_EQ(servicio.cliente().valor(resumen), antes);
}
