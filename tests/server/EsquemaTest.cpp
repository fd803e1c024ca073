// Esquema, nombres y tipos de columna, parámetros y procedimientos, contra el servicio real.
#include <regex>

#include "tests/fixtures/DatosPrueba.h"

using namespace cajaplex::prueba;

namespace {

using Textos = std::vector<std::string>;

Textos columnas(const Respuesta& r, const char* campo) {
    Textos v;
    for (const auto& col : r.cuerpo.at("columnas"))
        v.push_back(col.at(campo));
    return v;
}
Textos nombres(const Respuesta& r) {
    return columnas(r, "nombre");
}
Textos tipos(const Respuesta& r) {
    return columnas(r, "tipo");
}

} // namespace

class Esquema : public ConServicio {};

TEST_F(Esquema, ColumnasSinDistinguirMayusculasConElNombreComoSeEscribe) {
    datos.empresa(1, "Abarrotes Uno");
    auto v = datos.venta(1, {});
    auto r = c.exige("Select A.Folio, a.FOLIO as FolioAlias, \"folio\", B.nombreEmpresaCorto as "
                     "NombreEmpresa From Remision A, Empresa B Where A.EmpresaID = B.empresaid "
                     "and A.ID = :id",
                     {{"id", entero(v.id)}});
    EXPECT_EQ(nombres(r), (Textos{"Folio", "FolioAlias", "folio", "NombreEmpresa"}));
    EXPECT_EQ(r.filas(), Json::parse(R"([[1, 1, 1, "Abarrotes Uno"]])"));

    auto todo = c.exige("Select * From Empresa Where EMPRESAID = 1");
    auto n = nombres(todo);
    EXPECT_NE(std::find(n.begin(), n.end(), "nombreEmpresaCorto"), n.end()) << todo;
    EXPECT_NE(std::find(n.begin(), n.end(), "empresaID"), n.end()) << todo;

    c.exige("Update remision Set OBSERVACIONES = 'x' Where EmpresaId = 1 and Folio = 1");
    EXPECT_EQ(c.cuenta("Remision Where empresaID = 1 and observaciones = 'x'"), 1);
}

TEST_F(Esquema, TiposDeColumnaSalenDeLosValoresODelTipoDeclarado) {
    auto r = c.exige("Select 7 as e, 2.5 as r, 'x' as t, X'00FF' as b, null as n");
    EXPECT_EQ(tipos(r), (Textos{"entero", "real", "texto", "blob", "texto"}));
    EXPECT_EQ(r.filas(), Json::parse(R"([[7, 2.5, "x", "AP8=", null]])"));

    EXPECT_EQ(tipos(c.exige("Select 1 as v Union All Select 2.5")), Textos{"real"});

    auto vacia = c.exige("Select P.existencia, P.clave, P.esPaquete, R.fecha, R.folio From "
                         "Productos P, Remision R Where 1 = 0");
    EXPECT_EQ(tipos(vacia), (Textos{"real", "texto", "booleano", "fecha", "entero"}));
}

TEST_F(Esquema, CadaTipoDeParametroVaYRegresa) {
    auto r = c.exige("Select :e as e, :grande as grande, :r as r, :t as t, :si as si, :no as no, "
                     ":uno as uno, :f as f, :g as g, :bl as bl, :n as n",
                     {{"e", entero(-42)},
                      {"grande", entero(9007199254740993LL)},
                      {"r", real(0.1)},
                      {"t", texto("Niño's \"café\" ñ")},
                      {"si", booleano(true)},
                      {"no", booleano(false)},
                      {"uno", parametro("booleano", 1)},
                      {"f", parametro("fecha", "2024-02-29 23:59:58")},
                      {"g", parametro("guid", "6f1c2a9e-0b7d-4c1e-9a51-3f2d8e7b6c10")},
                      {"bl", parametro("blob", "AAEC/w==")},
                      {"n", parametro("texto", nullptr)}});
    EXPECT_EQ(r.filas(), Json::parse(R"([[-42, 9007199254740993, 0.1, "Niño's \"café\" ñ", 1, 0,
        1, "2024-02-29 23:59:58", "6f1c2a9e-0b7d-4c1e-9a51-3f2d8e7b6c10", "AAEC/w==", null]])"));
    EXPECT_EQ(r.cuerpo["columnas"][9]["tipo"], "blob");

    // Un blob guardado en una tabla regresa igual y con su tipo.
    datos.empresa(1, "Uno");
    auto ins = c.exige("Insert Into Lineas (empresaID, linea, padre, foto) Values (1, 'L', 0, :f)",
                       {{"f", parametro("blob", "iVBORw0KGgoAAAANSUhEUgAAAAE=")}});
    auto foto =
        c.exige("Select foto From Lineas Where id = :id", {{"id", entero(ins.cuerpo["ultimoId"])}});
    EXPECT_EQ(foto.filas()[0][0], "iVBORw0KGgoAAAANSUhEUgAAAAE=");
    EXPECT_EQ(tipos(foto), Textos{"blob"});
}

TEST_F(Esquema, GetdateYSubstring) {
    auto r = c.exige("Select Getdate() as ahora, substring('Cajaplex', 2, 3) as parte, "
                     "abs(julianday(Getdate()) - julianday('now', 'localtime')) * 86400 < 5 as "
                     "local");
    EXPECT_TRUE(std::regex_match(r.filas()[0][0].get<std::string>(),
                                 std::regex(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d)")))
        << r;
    EXPECT_EQ(r.filas()[0][1], "aja");
    EXPECT_EQ(r.filas()[0][2], 1);
}

TEST_F(Esquema, DosEmpresasConLosMismosFoliosNoMezclanRenglones) {
    datos.empresa(1, "Uno");
    datos.empresa(2, "Dos");
    datos.producto(1, "P1", 10);
    datos.producto(2, "P1", 10);
    auto v1 = datos.venta(1, {{"P1", 1}});
    auto v2 = datos.venta(2, {{"P1", 2}, {"P1", 3}});
    ASSERT_EQ(v1.folio, 1);
    ASSERT_EQ(v2.folio, 1);
    auto r = c.exige("Select B.cantidad From Remision A, RemisionDetalle B Where A.Folio = "
                     "B.Remision and A.empresaID = B.empresaID and A.empresaID = :EmpresaID "
                     "and A.folio = 1 Order By B.posicion",
                     {{"EmpresaID", entero(2)}});
    EXPECT_EQ(r.filas(), Json::parse("[[2.0], [3.0]]"));

    // El folio se repite entre empresas y entre tipos de documento, no dentro de uno.
    EXPECT_TRUE(
        es(c.ejecuta("Insert Into Remision (empresaID, folio) Values (1, 1)"), 409, "restriccion"));
    EXPECT_TRUE(es(c.ejecuta("Insert Into Cotizacion (empresaID, folio) Values (1, 1)"), 200));
}

class Procedimientos : public ConServicio {
protected:
    Procedimientos() : ConServicio(true) {}

    Respuesta valida(const std::string& usuario, const std::string& contrasena) {
        return c.exige("EXEC DBO.ValidaUsuarioMoviles :Usuario, :Contrasena",
                       {{"Usuario", texto(usuario)}, {"Contrasena", texto(contrasena)}});
    }
};

TEST_F(Procedimientos, ValidaUsuarioMovilesSoloConUsuarioActivoYSuContrasena) {
    auto admin = valida("admin", "admin");
    ASSERT_EQ(admin.filas().size(), 1u) << admin;
    auto n = nombres(admin);
    for (const auto* col : {"UsuarioID", "nombre", "esAdmin", "perfilID"})
        EXPECT_NE(std::find(n.begin(), n.end(), col), n.end()) << col << " " << admin;
    EXPECT_TRUE(valida("inactivo", "inactivo").filas().empty());
    EXPECT_TRUE(valida("admin", "otra").filas().empty());
    EXPECT_TRUE(valida("nadie", "admin").filas().empty());

    // Con --demo las credenciales del servicio son las de demostración.
    EXPECT_TRUE(
        es(Cliente(servicio.puerto(), kUsuarioPrueba, kContrasenaPrueba).ejecuta("Select 1"), 401,
           "autenticacion"));
}

TEST_F(Procedimientos, ComandasActivasComoElMonitorYActualizaComandasDetalles) {
    auto lote = c.lote(
        {sentencia("Insert Into Comanda (empresaID, folio, nodoComida, vendedor, usuarioID, "
                   "cancelada, fechaApertura, numeroPersonas) Values (2, -1, (Select min(id) From "
                   "NodosComida Where empresaID = 2 and activo = 1), (Select usuarioID From "
                   "Usuarios Where nUsuario = 'mesero'), 1, 0, datetime('now','localtime'), 2)"),
         sentencia("Update Comanda Set folio = id Where id = :id", {{"id", de(0, "ultimoId")}}),
         sentencia("Insert Into ComandaDetalle (id, comanda, producto, empresaID, cantidad, "
                   "descuento, posicion, numeroComensal, nota, seccion, servida, fechaCaptura, "
                   "cancelada, extra) Values (:id, :id, (Select min(P.id) From Productos P, "
                   "AreasComida F, Lineas G Where P.empresaID = 2 and F.empresaID = 2 and "
                   "G.empresaID = 2 and P.areaComida = F.id and P.linea = G.id), 2, 1, 0, 1, "
                   "1, 'sin cebolla', 1, 0, datetime('now','localtime'), 0, 0)",
                   {{"id", de(0, "ultimoId")}})});
    ASSERT_TRUE(es(lote, 200));
    long long comanda = lote.cuerpo["resultados"][0]["ultimoId"];

    const std::string monitor =
        "Select A.comanda, A.seccion, A.cantidad, A.nota, D.producto, C.descripcion, E.nombre, "
        "A.fechaCaptura, F.area, G.linea, F.id as areaID, A.posicion, A.servida, A.extra, "
        "A.numeroComensal, ifnull(D.esPaquete, 0) esPaquete, A.producto as productoID, C.id as "
        "NodoComida From ComandaDetalle A, Comanda B, NodosComida C, Productos D, Usuarios E, "
        "AreasComida F, Lineas G Where A.empresaID = 2 and A.servida <= 1 and A.cancelada = 0 "
        "and A.id = B.id and A.comanda = B.folio and A.empresaID = B.empresaID and B.cancelada "
        "= 0 and B.fechaApertura is not null and B.fechaCierre is null and B.fechaPago is null "
        "and B.nodoComida = C.id and B.empresaID = C.empresaID and C.activo = 1 and A.producto "
        "= D.id and A.empresaID = D.empresaID and B.vendedor = E.UsuarioID and D.areaComida = "
        "F.id and D.empresaID = F.empresaID and D.linea = G.id and D.empresaID = G.empresaID "
        "order by A.fechaCaptura, A.comanda, A.seccion, A.NumeroComensal, F.Area, A.producto";
    auto esperado = c.exige(monitor);
    ASSERT_FALSE(esperado.filas().empty()) << esperado;
    long long area = esperado.filas()[0][10];

    const Json idMonitor = parametro("guid", "0d5e7c1a-4b2f-4e8a-9c3d-1a2b3c4d5e6f");
    auto activas = [&](long long areaID) {
        return c.exige("exec dbo.ConsultaComandasActivas :ID, :EmpresaID, :AreaID",
                       {{"ID", idMonitor}, {"EmpresaID", entero(2)}, {"AreaID", entero(areaID)}});
    };
    auto todas = activas(0);
    EXPECT_EQ(nombres(todas), nombres(esperado));
    EXPECT_EQ(todas.filas(), esperado.filas());
    EXPECT_EQ(activas(area).filas().size(),
              c.cuenta("(" + monitor + ") Where areaID = " + std::to_string(area)));
    EXPECT_TRUE(activas(-5).filas().empty());

    auto actualiza = [&](int servida) {
        return c.exige("exec dbo.ActualizaComandasDetalles :ID, :EmpresaID, :Comanda, :Seccion, "
                       ":Servida, :Posicion",
                       {{"ID", idMonitor},
                        {"EmpresaID", entero(2)},
                        {"Comanda", entero(comanda)},
                        {"Seccion", entero(1)},
                        {"Servida", entero(servida)},
                        {"Posicion", entero(1)}});
    };
    const std::string linea =
        "ComandaDetalle Where empresaID = 2 and comanda = " + std::to_string(comanda) +
        " and seccion = 1 and posicion = 1";
    auto r1 = actualiza(1);
    ASSERT_EQ(r1.filas().size(), 1u) << r1;
    EXPECT_EQ(c.cuenta(linea + " and servida = 1 and fechaPreparada is not null and "
                               "fechaServida is null"),
              1);
    actualiza(2);
    EXPECT_EQ(c.cuenta(linea + " and servida = 2 and fechaServida is not null"), 1);
    const auto restantes = activas(0);
    for (const auto& fila : restantes.filas())
        EXPECT_NE(fila[0], comanda);
}
