// Lo que el servicio rechaza: sentencias fuera de lo permitido, peticiones mal formadas,
// credenciales, tamaño y tiempo.
#include <filesystem>

#include "tests/fixtures/DatosPrueba.h"

using namespace cajaplex::prueba;

class Seguridad : public ConServicio {
protected:
    void SetUp() override { datos.empresa(1, "Uno"); }
};

TEST_F(Seguridad, SentenciasFueraDeLoPermitidoSon403AntesDeCorrer) {
    const std::string fuera = servicio.carpeta() + "/otra.db";
    const std::vector<std::string> prohibidas = {
        "ATTACH DATABASE '" + fuera + "' AS otra",
        "detach database main",
        "PRAGMA journal_mode = DELETE",
        "  pragma table_info(Remision)",
        "/* comentario */ PRAGMA synchronous = OFF",
        "CREATE TABLE Intrusa (a)",
        "create index Ix On Remision (observaciones)",
        "Create View V As Select 1",
        "DROP TABLE Remision",
        "Alter Table Remision Add Column intrusa",
        "VACUUM",
        "REINDEX",
        "BEGIN",
        "begin immediate transaction",
        "COMMIT",
        "end transaction",
        "ROLLBACK",
        "SAVEPOINT s",
        "release s",
        "Select load_extension('/tmp/x.so')",
        "Select * From sqlite_master",
        "select name from SQLITE_SCHEMA",
        "Select * From main.sqlite_master",
        "Select * From sqlite_temp_master",
        "Select count(*) From Remision Where folio In (Select rootpage From sqlite_master)",
        "Insert Into Remision (empresaID, folio) Select 1, count(*) From sqlite_master",
        "With x As (Select name From sqlite_schema) Select * From x",
        "Select * From sqlite_sequence",
        "Select * From cajaplex_version_esquema",
        "Delete From CAJAPLEX_IDEMPOTENCIA",
        "Select count(*) From Remision, cajaplex_idempotencia"};
    for (const auto& sql : prohibidas)
        EXPECT_TRUE(es(c.ejecuta(sql), 403, "prohibido")) << sql;

    EXPECT_FALSE(std::filesystem::exists(fuera));
    EXPECT_EQ(c.cuenta("Remision"), 0);
    EXPECT_TRUE(es(c.ejecuta("Insert Into Remision (empresaID, folio) Values (1, 1)"), 200))
        << "Remision y sus disparadores siguen en su lugar";
    EXPECT_EQ(datos.contador(1, "folioRem"), 2);

    // También dentro de un lote y de una transacción, que siguen abiertos.
    auto t = c.comienzaTransaccion();
    auto r = c.lote({sentencia("Select 1"), sentencia("COMMIT")}, enTransaccion(t));
    EXPECT_TRUE(es(r, 403, "prohibido"));
    EXPECT_EQ(r.cuerpo.value("sentencia", -1), 1) << r;
    EXPECT_TRUE(es(c.ejecuta("ROLLBACK", {}, enTransaccion(t)), 403, "prohibido"));
    EXPECT_TRUE(es(c.confirma(t), 200));
}

TEST_F(Seguridad, UnaSentenciaPorPeticionYErroresDeLaBase) {
    EXPECT_TRUE(es(c.ejecuta("Select 1; Select 2"), 400, "solicitud"));
    EXPECT_TRUE(es(c.ejecuta("Select 1; Delete From Configura"), 400, "solicitud"));
    EXPECT_EQ(c.cuenta("Configura"), 1);
    EXPECT_TRUE(es(c.ejecuta("Select 1 ;  \n"), 200));
    // Ni ';' ni ':marca' dentro de literales o comentarios cuentan.
    auto r = c.ejecuta("Select ';' as a, ':nombre' as b -- :otro ; Select 2\n");
    ASSERT_TRUE(es(r, 200));
    EXPECT_EQ(r.filas(), Json::parse(R"([[";", ":nombre"]])"));

    EXPECT_TRUE(es(c.ejecuta("Select * From TablaQueNoExiste"), 400, "sql"));
    EXPECT_TRUE(es(c.ejecuta("Select * From"), 400, "sql"));
    EXPECT_TRUE(es(c.ejecuta("Insert Into Remision (empresaID, folio) Values (1, 1)"), 200));
    EXPECT_TRUE(
        es(c.ejecuta("Insert Into Remision (empresaID, folio) Values (1, 1)"), 409, "restriccion"));
}

TEST_F(Seguridad, SentenciaDeMasDeDiezSegundosEs504) {
    auto r = c.ejecuta("With Recursive n(x) As (Select 1 Union All Select x + 1 From n Where x < "
                       "10000000000) Select count(*) From n");
    EXPECT_TRUE(es(r, 504, "tiempo"));
    EXPECT_TRUE(es(c.ejecuta("Select 1"), 200));
    auto t = c.comienzaTransaccion();
    EXPECT_TRUE(es(c.confirma(t), 200)) << "el escritor no quedó tomado";
}

TEST_F(Seguridad, PeticionesMalFormadasSon400Solicitud) {
    const std::vector<std::string> cuerpos = {
        "esto no es json",
        "",
        "[]",
        R"({})",
        R"({"sql": 5})",
        R"({"sql": "Select 1", "parametros": []})",
        R"({"sql": "Select :a", "parametros": {"a": 5}})",
        R"({"sql": "Select :a", "parametros": {"a": {"tipo": "decimal", "valor": 1}}})",
        R"({"sql": "Select :a", "parametros": {"a": {"tipo": "entero", "valor": "uno"}}})",
        R"({"sql": "Select :a", "parametros": {"a": {"valor": 1}}})",
        R"({"sql": "Select :a", "parametros": {"a": {"tipo": "blob", "valor": "no es base64!"}}})",
        R"({"sql": "Select :a"})",
        R"({"sql": "Select :a, :b", "parametros": {"a": {"tipo": "entero", "valor": 1}}})",
        R"({"sql": "Select 1", "parametros": {"a": {"tipo": "entero", "valor": 1}}})",
        R"({"sql": "Select :a", "parametros": {"a": {"tipo": "entero", "valor": 1},
                                               "A": {"tipo": "entero", "valor": 1}}})"};
    for (const auto& cuerpo : cuerpos)
        EXPECT_TRUE(es(c.post(kRutaBase, cuerpo), 400, "solicitud")) << cuerpo;
    for (const auto& cuerpo : {R"({"sentencias": 3})", R"({})", R"({"sentencias": [{"sq": 1}]})"})
        EXPECT_TRUE(es(c.post(kRutaBase + "lote", cuerpo), 400, "solicitud")) << cuerpo;

    auto r = c.ejecuta("Select :EmpresaID as e", {{"empresaid", entero(3)}});
    EXPECT_TRUE(es(r, 200));
    EXPECT_EQ(r.filas(), Json::parse("[[3]]"));
}

TEST_F(Seguridad, CuerpoDeMasDe32MiBEs413) {
    const size_t limite = 32u << 20;
    auto conTexto = [](size_t n) {
        return Json{{"sql", "Select length(:t)"},
                    {"parametros", {{"t", texto(std::string(n, 'x'))}}}}
            .dump();
    };
    auto r = c.post(kRutaBase, conTexto(limite - 1024));
    EXPECT_TRUE(es(r, 200));
    EXPECT_TRUE(es(c.post(kRutaBase, conTexto(limite + 1024)), 413, "tamano"));
}

TEST_F(Seguridad, CredencialesRutasYSalud) {
    const auto p = servicio.puerto();
    for (auto [usuario, contrasena] : {std::pair<std::string, std::string>{"", ""},
                                       {kUsuarioPrueba, "otra"},
                                       {"otro", kContrasenaPrueba},
                                       {kUsuarioPrueba, ""}}) {
        Cliente cli(p, usuario, contrasena);
        EXPECT_TRUE(es(cli.ejecuta("Select 1"), 401, "autenticacion")) << usuario;
        EXPECT_TRUE(es(cli.lote({sentencia("Select 1")}), 401, "autenticacion"));
        EXPECT_TRUE(es(cli.post(kRutaBase + "transaccion", ""), 401, "autenticacion"));
    }

    Cliente anonimo(p, "", "");
    auto salud = anonimo.get(kRutaBase + "salud");
    ASSERT_TRUE(es(salud, 200));
    EXPECT_EQ(salud.cuerpo["estado"], "ok");
    EXPECT_TRUE(salud.cuerpo["version"].is_string()) << salud;

    EXPECT_TRUE(es(c.post(kRutaBase + "noExiste", "{}"), 404, "solicitud"));
    EXPECT_TRUE(es(c.post("/otra/ruta", "{}"), 404, "solicitud"));
}
