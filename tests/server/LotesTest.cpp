// Lotes: referencias entre sentencias, todo o nada, límite de tamaño e idempotencia.
#include "tests/fixtures/DatosPrueba.h"

using namespace cajaplex::prueba;

class Lotes : public ConServicio {
protected:
    void SetUp() override {
        datos.empresa(1, "Uno");
        datos.producto(1, "A", 10);
        datos.producto(1, "B", 10);
    }

    // Una venta como la guarda una estación: folio leído, encabezado, renglón con su ID.
    static Json venta(const std::string& columnaFolio = "folioRem") {
        Json e = {{"EmpresaID", entero(1)}};
        return {sentencia("Select folioRem From Configura Where empresaID = :EmpresaID", e),
                sentencia("Insert Into Remision (empresaID, folio, descontoExistencias) Values "
                          "(:EmpresaID, :folio, 1)",
                          {{"EmpresaID", entero(1)}, {"folio", de(0, columnaFolio)}}),
                sentencia("Insert Into RemisionDetalle (id, remision, empresaID, posicion, "
                          "clave, cantidad) Values (:id, :remision, :EmpresaID, 1, 'A', 2)",
                          {{"id", de(1, "ultimoId")},
                           {"remision", de(0, columnaFolio)},
                           {"EmpresaID", entero(1)}})};
    }
    long long remisiones() { return c.cuenta("Remision"); }
};

TEST_F(Lotes, ReferenciasAColumnaUltimoIdYFilasAfectadas) {
    Json s = venta("FOLIOREM");
    s.push_back(sentencia("Update Productos Set precio = precio + 1 Where empresaID = 1"));
    s.push_back(sentencia("Select :n as n, :id as id",
                          {{"n", de(3, "filasAfectadas")}, {"id", de(1, "ultimoId")}}));
    auto r = c.lote(s);
    ASSERT_TRUE(es(r, 200));
    const auto& res = r.cuerpo["resultados"];
    ASSERT_EQ(res.size(), 5u);
    long long id = res[1]["ultimoId"];
    EXPECT_EQ(res[4]["filas"], (Json{{2, id}}));
    EXPECT_EQ(c.cuenta("RemisionDetalle Where id = :id and remision = 1", {{"id", entero(id)}}), 1);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "A"), 8);
    EXPECT_EQ(datos.contador(1, "folioRem"), 2);
}

TEST_F(Lotes, ReferenciaInvalidaEs400ConLaSentenciaYNoEscribeNada) {
    const auto inserta50 = sentencia("Insert Into Remision (empresaID, folio) Values (1, 50)");
    const auto insertaDe = [](Json ref) {
        return sentencia("Insert Into Remision (empresaID, folio) Values (1, :f)", {{"f", ref}});
    };
    const std::vector<std::pair<std::string, Json>> casos = {
        {"a una sentencia posterior",
         {inserta50, insertaDe(de(2, "x")), sentencia("Select 51 as x")}},
        {"a una columna que no existe",
         {sentencia("Select folioRem From Configura"), inserta50, insertaDe(de(0, "folioNo"))}},
        {"a una sentencia sin filas",
         {inserta50, sentencia("Select folio From Remision Where folio < 0"),
          insertaDe(de(1, "folio"))}}};
    for (const auto& [que, lote] : casos) {
        SCOPED_TRACE(que);
        auto r = c.lote(lote);
        EXPECT_TRUE(es(r, 400, "solicitud"));
        EXPECT_EQ(r.cuerpo.value("sentencia", -1), que == casos[0].first ? 1 : 2) << r;
        EXPECT_EQ(remisiones(), 0);
    }
}

TEST_F(Lotes, FallaEnUnPasoDeshaceElLoteYRespetaLaTransaccionExterna) {
    // La última sentencia repite el folio recién insertado.
    Json s = venta();
    s.push_back(sentencia("Insert Into Remision (empresaID, folio) Values (1, :f)",
                          {{"f", de(0, "folioRem")}}));
    auto r = c.lote(s);
    EXPECT_TRUE(es(r, 409, "restriccion"));
    EXPECT_EQ(r.cuerpo.value("sentencia", -1), 3) << r;
    EXPECT_EQ(remisiones(), 0);
    EXPECT_EQ(c.cuenta("RemisionDetalle"), 0);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "A"), 10);
    EXPECT_EQ(datos.contador(1, "folioRem"), 1);

    auto t = c.comienzaTransaccion();
    auto en = enTransaccion(t);
    ASSERT_TRUE(
        es(c.ejecuta("Insert Into Remision (empresaID, folio) Values (1, 7)", {}, en), 200));
    EXPECT_TRUE(es(c.lote(s, en), 409, "restriccion"));
    EXPECT_EQ(c.cuenta("Remision", {}, en), 1) << "queda lo de antes del lote";
    EXPECT_EQ(c.cuenta("RemisionDetalle", {}, en), 0);
    ASSERT_TRUE(es(c.lote(venta(), en), 200)) << "la transacción sigue abierta";
    ASSERT_TRUE(es(c.confirma(t), 200));
    EXPECT_EQ(c.valor("Select group_concat(folio) From (Select folio From Remision Order By "
                      "folio)"),
              "7,8");
    EXPECT_DOUBLE_EQ(datos.existencia(1, "A"), 8);
}

TEST_F(Lotes, MilSentenciasSiMilUnaNo) {
    Json s = Json::array();
    for (int i = 0; i < 1000; ++i)
        s.push_back(sentencia("Insert Into Lineas (empresaID, linea) Values (1, 'x')"));
    auto r = c.lote(s);
    ASSERT_TRUE(es(r, 200));
    EXPECT_EQ(r.cuerpo["resultados"].size(), 1000u);
    s.push_back(s[0]);
    EXPECT_TRUE(es(c.lote(s), 400, "solicitud"));
    EXPECT_EQ(c.cuenta("Lineas"), 1000);
}

TEST_F(Lotes, IdempotenciaRepiteLaRespuestaSinVolverAEscribir) {
    auto primera = c.lote(venta(), conIdempotencia("venta-1"));
    ASSERT_TRUE(es(primera, 200));
    auto repetida = c.lote(venta(), conIdempotencia("venta-1"));
    EXPECT_TRUE(es(repetida, 200));
    EXPECT_EQ(repetida.cuerpo, primera.cuerpo);
    EXPECT_EQ(remisiones(), 1);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "A"), 8);

    Json otra = venta();
    otra[2]["sql"] = "Insert Into RemisionDetalle (id, remision, empresaID, posicion, clave, "
                     "cantidad) Values (:id, :remision, :EmpresaID, 1, 'B', 2)";
    EXPECT_TRUE(es(c.lote(otra, conIdempotencia("venta-1")), 422, "idempotencia"));
    EXPECT_EQ(remisiones(), 1);

    // Un error no se guarda: corregida la causa, la misma petición sí corre.
    Json choca = {sentencia("Insert Into Remision (empresaID, folio) Values (1, 90)")};
    c.exige("Insert Into Remision (empresaID, folio) Values (1, 90)");
    EXPECT_TRUE(es(c.lote(choca, conIdempotencia("venta-2")), 409, "restriccion"));
    c.exige("Delete From Remision Where folio = 90");
    EXPECT_TRUE(es(c.lote(choca, conIdempotencia("venta-2")), 200));
    EXPECT_EQ(c.cuenta("Remision Where folio = 90"), 1);

    // La clave se guarda con las escrituras: si la transacción se revierte, no queda.
    auto t = c.comienzaTransaccion();
    Json tercera = {sentencia("Insert Into Remision (empresaID, folio) Values (1, 91)")};
    ASSERT_TRUE(es(c.lote(tercera, conIdempotencia("venta-3", t)), 200));
    ASSERT_TRUE(es(c.revierte(t), 200));
    EXPECT_TRUE(es(c.lote(tercera, conIdempotencia("venta-3")), 200));
    EXPECT_EQ(c.cuenta("Remision Where folio = 91"), 1);

    // Confirmar con clave: la segunda vez contesta lo guardado.
    auto u = c.comienzaTransaccion();
    ASSERT_TRUE(es(c.lote(venta(), enTransaccion(u)), 200));
    auto confirmada = c.confirma(u, conIdempotencia("confirma-1"));
    ASSERT_TRUE(es(confirmada, 200));
    EXPECT_EQ(c.confirma(u, conIdempotencia("confirma-1")).cuerpo, confirmada.cuerpo);
    EXPECT_EQ(remisiones(), 4);
}
