// Fuzz acotado del protocolo: sentencias mutadas, parámetros de todo tipo equivocado, lotes con
// referencias malas, ids de transacción, bytes crudos y valores enormes. El servicio sigue
// arriba, toda respuesta es JSON con un código de la tabla de errores (nunca 500) y al final una
// sentencia ordinaria funciona. La semilla sale en pantalla; CAJAPLEX_SEMILLA la repite.
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <map>
#include <random>
#include <set>

#include <csignal>

#include "tests/fixtures/DatosPrueba.h"

using namespace cajaplex::prueba;

namespace {

const std::map<int, std::set<std::string>> kErrores = {{400, {"solicitud", "sql"}},
                                                       {401, {"autenticacion"}},
                                                       {403, {"prohibido"}},
                                                       {404, {"transaccion", "solicitud"}},
                                                       {409, {"restriccion"}},
                                                       {410, {"transaccion"}},
                                                       {413, {"tamano"}},
                                                       {422, {"idempotencia"}},
                                                       {503, {"ocupado", "almacenamiento"}},
                                                       {504, {"tiempo"}}};

const std::vector<std::string> kBase = {
    "Select folioRem From Configura Where empresaID = :EmpresaID",
    "Insert Into Remision (empresaID, folio, observaciones) Values (:EmpresaID, :folio, :obs)",
    "Update Productos Set precio = :precio Where empresaID = :EmpresaID and clave = :clave",
    "Select A.ID, A.folio, B.nombreEmpresaCorto From Remision A, Empresa B Where A.empresaID = "
    "B.empresaID and A.folio > :folio",
    "Insert Into Lineas (empresaID, linea) Values (:EmpresaID, :linea)",
    "Delete From Lineas Where linea = :linea",
    "Select count(*) as n, sum(existencia) as s From Productos Where clave Like :clave",
    "Select :a as a, :b as b, typeof(:c) as c",
    "exec dbo.ValidaUsuarioMoviles :Usuario, :Contrasena",
    "exec dbo.ConsultaComandasActivas :ID, :EmpresaID, :AreaID",
    "Select zeroblob(:n) as z",
    "Select printf('%.*c', :n, 'x') as t",
    "Select substring(:texto, :inicio, :largo) as s, Getdate() as hoy",
    "Update Remision Set cancelada = 1 Where folio = :folio",
    "Insert Into RemisionDetalle (id, remision, empresaID, clave, cantidad) Values (:id, :folio, "
    ":EmpresaID, :clave, :cantidad)"};

const std::vector<std::string> kFragmentos = {" ; ",
                                              "'",
                                              "\"",
                                              "--",
                                              "/*",
                                              "*/",
                                              ":x",
                                              ":",
                                              "?",
                                              "?999",
                                              "@a",
                                              "$b",
                                              "(",
                                              ")",
                                              ",",
                                              " union all select 1",
                                              " PRAGMA ",
                                              "sqlite_master",
                                              "cajaplex_idempotencia",
                                              "cajaplex_movimientos",
                                              "load_extension",
                                              " ATTACH ",
                                              " BEGIN ",
                                              " ROLLBACK ",
                                              " Returning *",
                                              "\xff\xfe",
                                              "\x00",
                                              "ñ",
                                              " order by 1",
                                              " limit -1",
                                              " where 1=1",
                                              "randomblob(1000)",
                                              "zeroblob(99999999999)",
                                              "(((((((((((((((",
                                              "1e999",
                                              "x'zz'",
                                              "NULL",
                                              " exec "};

const std::vector<std::string> kTipos = {"entero", "real",   "texto",   "booleano", "fecha", "blob",
                                         "guid",   "ENTERO", "decimal", "",         "numero"};

class Fuzz {
public:
    explicit Fuzz(unsigned semilla) : azar_(semilla) {}

    int entre(int a, int b) { return std::uniform_int_distribution<int>(a, b)(azar_); }
    bool moneda(int de = 2) { return entre(1, de) == 1; }
    template <typename T> const T& uno(const std::vector<T>& v) {
        return v[static_cast<size_t>(entre(0, static_cast<int>(v.size()) - 1))];
    }

    std::string bytes(int maximo) {
        std::string s(static_cast<size_t>(entre(0, maximo)), '\0');
        for (auto& c : s)
            c = static_cast<char>(entre(0, 255));
        return s;
    }

    std::string muta(std::string sql) {
        for (int n = entre(0, 4); n > 0; --n) {
            const size_t p = sql.empty() ? 0 : static_cast<size_t>(entre(0, int(sql.size())));
            switch (entre(0, 5)) {
            case 0:
                sql.insert(p, uno(kFragmentos));
                break;
            case 1:
                if (p < sql.size()) sql.erase(p, static_cast<size_t>(entre(1, 8)));
                break;
            case 2:
                if (p < sql.size()) sql[p] = static_cast<char>(entre(1, 255));
                break;
            case 3:
                sql = sql.substr(0, p);
                break;
            case 4:
                sql += uno(kFragmentos);
                break;
            default:
                break;
            }
        }
        return sql;
    }

    Json valor() {
        switch (entre(0, 13)) {
        case 0:
            return nullptr;
        case 1:
            return moneda();
        case 2:
            return entre(-5, 50);
        case 3:
            return std::numeric_limits<long long>::max();
        case 4:
            return std::numeric_limits<long long>::min();
        case 5:
            return 1e300 * (moneda() ? 1 : -1);
        case 6:
            return 2.5;
        case 7:
            return "7501";
        case 8:
            return "2024-01-31 10:11:12";
        case 9:
            return "AP8=";
        case 10:
            return "no es base64!";
        case 11:
            return Json::array({1, 2});
        case 12:
            return Json::object({{"a", 1}});
        default:
            return std::string(static_cast<size_t>(entre(0, 3000)), 'x');
        }
    }

    Json parametro() {
        Json p = Json::object();
        switch (entre(0, 9)) {
        case 0:
            return valor(); // no es objeto
        case 1:
            p["tipo"] = entre(0, 3);
            break;
        case 2:
            break; // sin tipo
        default:
            p["tipo"] = uno(kTipos);
        }
        switch (entre(0, 6)) {
        case 0:
            break; // sin valor
        case 1:
            p["de"] = {{"sentencia", entre(-2, 6)},
                       {"columna",
                        moneda() ? "ultimoId"
                                 : uno(std::vector<std::string>{"folioRem", "n", "filasAfectadas",
                                                                "noExiste", ""})}};
            break;
        case 2:
            p["de"] = valor();
            break;
        default:
            p["valor"] = valor();
        }
        return p;
    }

    Json parametros(const std::string& sql) {
        Json ps = Json::object();
        // Los nombres de las marcas del texto, a veces con otra capitalización o de más.
        for (size_t i = sql.find(':'); i != std::string::npos; i = sql.find(':', i + 1)) {
            size_t j = i + 1;
            while (j < sql.size() &&
                   (std::isalnum(static_cast<unsigned char>(sql[j])) || sql[j] == '_'))
                ++j;
            std::string nombre = sql.substr(i + 1, j - i - 1);
            if (nombre.empty() || moneda(8)) continue;
            if (moneda(10)) nombre[0] = static_cast<char>(std::toupper(nombre[0]));
            ps[nombre] = moneda(3) ? parametro() : bueno(nombre);
        }
        if (moneda(8)) ps["sobrante"] = parametro();
        return ps;
    }

    Json bueno(const std::string& nombre) {
        if (nombre == "n") return {{"tipo", "entero"}, {"valor", moneda() ? 10 : 2000000000}};
        if (nombre == "obs" || nombre == "linea" || nombre == "clave" || nombre == "texto" ||
            nombre == "Usuario" || nombre == "Contrasena")
            return {{"tipo", "texto"}, {"valor", moneda() ? "A" : bytes(20)}};
        if (nombre == "precio" || nombre == "cantidad") return {{"tipo", "real"}, {"valor", 1.5}};
        return {{"tipo", "entero"}, {"valor", entre(0, 40)}};
    }

    Json sentenciaAlAzar() {
        std::string sql = uno(kBase);
        if (moneda(3)) sql = muta(sql);
        Json s = {{"sql", sql}};
        if (moneda(10)) s["sql"] = valor();
        if (!moneda(10)) s["parametros"] = parametros(sql);
        if (moneda(15)) s["parametros"] = valor();
        return s;
    }

private:
    std::mt19937 azar_;
};

unsigned semillaDeLaPrueba() {
    if (const char* s = std::getenv("CAJAPLEX_SEMILLA"))
        return static_cast<unsigned>(std::stoul(s));
    return std::random_device{}();
}

} // namespace

class FuzzProtocolo : public ConServicio {
protected:
    void SetUp() override {
        datos.empresa(1, "Uno");
        datos.producto(1, "A", 10);
    }

    void revisa(const Respuesta& r, const std::string& que) {
        ++solicitudes_;
        const auto ahora = std::chrono::steady_clock::now();
        if (ahora - anterior_ > std::chrono::seconds(1))
            std::cout
                << "lenta ("
                << std::chrono::duration_cast<std::chrono::milliseconds>(ahora - anterior_).count()
                << " ms): " << que.substr(0, 200) << " -> " << r.estado << " "
                << r.crudo.substr(0, 200) << "\n";
        anterior_ = ahora;
        ASSERT_NE(r.estado, 0) << "el servicio no contestó a " << que << ": " << r.crudo;
        ASSERT_NE(r.estado, 500) << que << " -> " << r;
        ASSERT_TRUE(r.cuerpo.is_object()) << "no es un objeto JSON: " << que << " -> " << r;
        if (r.estado == 200) return;
        auto it = kErrores.find(r.estado);
        ASSERT_NE(it, kErrores.end()) << "estado fuera de la tabla: " << que << " -> " << r;
        EXPECT_TRUE(it->second.count(r.codigo()))
            << "código fuera de la tabla: " << que << " -> " << r;
        EXPECT_TRUE(r.cuerpo.contains("error") && r.cuerpo["error"].is_string()) << r;
    }

    int solicitudes_ = 0;
    std::chrono::steady_clock::time_point anterior_ = std::chrono::steady_clock::now();
};

TEST_F(FuzzProtocolo, NadaTumbaAlServicioNiContesta500) {
    const unsigned semilla = semillaDeLaPrueba();
    std::cout << "semilla: " << semilla << " (repetir con CAJAPLEX_SEMILLA=" << semilla << ")\n";
    SCOPED_TRACE("semilla " + std::to_string(semilla));
    Fuzz f(semilla);
    const auto fin = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    int ronda = 0;
    while (std::chrono::steady_clock::now() < fin && ronda < 1500 && !HasFatalFailure()) {
        ++ronda;
        const int caso = f.entre(0, 9);
        std::string que = "ronda " + std::to_string(ronda) + " caso " + std::to_string(caso);
        switch (caso) {
        case 0:
        case 1:
        case 2: {
            Json s = f.sentenciaAlAzar();
            revisa(c.post(kRutaBase, s.dump(-1, ' ', false, Json::error_handler_t::replace)),
                   que + " " +
                       s.dump(-1, ' ', false, Json::error_handler_t::replace).substr(0, 300));
            break;
        }
        case 3: {
            Json lista = Json::array();
            for (int n = f.entre(0, 6); n > 0; --n)
                lista.push_back(f.sentenciaAlAzar());
            Encabezados en;
            if (f.moneda(4))
                en.emplace("Idempotencia", f.moneda() ? "k" + std::to_string(f.entre(0, 5))
                                                      : std::string(f.entre(0, 300), 'k'));
            revisa(c.post(kRutaBase + "lote",
                          Json{{"sentencias", lista}}.dump(-1, ' ', false,
                                                           Json::error_handler_t::replace),
                          en),
                   que + " lote " +
                       lista.dump(-1, ' ', false, Json::error_handler_t::replace).substr(0, 300));
            break;
        }
        case 4: {
            // Bytes crudos a cualquier ruta.
            const std::vector<std::string> rutas = {kRutaBase,
                                                    kRutaBase + "lote",
                                                    kRutaBase + "transaccion",
                                                    kRutaBase + "transaccion/x/confirmar",
                                                    kRutaBase + "eventos",
                                                    kRutaBase + "nada"};
            auto r = c.post(f.uno(rutas), f.bytes(400));
            revisa(r, que + " bytes");
            // POST .../transaccion no lee el cuerpo: abrió una transacción de verdad.
            if (r.estado == 200 && r.cuerpo.contains("transaccion"))
                revisa(c.revierte(r.cuerpo["transaccion"]), que + " revierte");
            break;
        }
        case 5: {
            // Ids de transacción que no existen o mal formados.
            std::string id =
                f.moneda() ? f.bytes(40) : "no-existe-" + std::to_string(f.entre(0, 9));
            std::string limpio;
            for (char ch : id)
                if (std::isalnum(static_cast<unsigned char>(ch)) || ch == '-') limpio += ch;
            if (limpio.empty()) limpio = "x";
            revisa(c.ejecuta("Select 1 as uno", {}, enTransaccion(limpio)), que + " id " + limpio);
            revisa(c.post(kRutaBase + "transaccion/" + limpio +
                              (f.moneda() ? "/confirmar" : "/revertir"),
                          ""),
                   que + " fin " + limpio);
            break;
        }
        case 6: {
            // Una transacción real con unas cuantas sentencias al azar; siempre se cierra.
            auto r = c.post(kRutaBase + "transaccion", "");
            revisa(r, que + " comienza");
            if (r.estado != 200) break;
            const std::string id = r.cuerpo["transaccion"];
            for (int n = f.entre(0, 3); n > 0; --n) {
                Json s = f.sentenciaAlAzar();
                revisa(c.post(kRutaBase, s.dump(-1, ' ', false, Json::error_handler_t::replace),
                              enTransaccion(id)),
                       que + " en transacción " +
                           s.dump(-1, ' ', false, Json::error_handler_t::replace).substr(0, 300));
            }
            if (f.moneda(3)) {
                Json lista = {f.sentenciaAlAzar(), f.sentenciaAlAzar()};
                revisa(c.post(kRutaBase + "lote",
                              Json{{"sentencias", lista}}.dump(-1, ' ', false,
                                                               Json::error_handler_t::replace),
                              conIdempotencia("t" + std::to_string(f.entre(0, 3)), id)),
                       que + " lote en transacción");
            }
            Encabezados en;
            if (f.moneda(3)) en.emplace("Idempotencia", "t" + std::to_string(f.entre(0, 3)));
            auto fin2 = f.moneda() ? c.confirma(id, en) : c.revierte(id);
            revisa(fin2, que + " termina");
            if (fin2.estado != 200) revisa(c.revierte(id), que + " revierte");
            break;
        }
        case 7: {
            // Valores enormes: de parámetro (cerca del límite del cuerpo) o producidos.
            if (f.moneda(4)) {
                const size_t n = f.moneda() ? (33u << 20) : (20u << 20);
                revisa(c.post(kRutaBase, Json{{"sql", "Select length(:t) as n"},
                                              {"parametros", {{"t", texto(std::string(n, 'x'))}}}}
                                             .dump()),
                       que + " texto de " + std::to_string(n));
            } else {
                const std::vector<std::string> enormes = {
                    "Select zeroblob(1000000000) as b", "Select printf('%.*c', 100000000, 'x')",
                    "Select hex(randomblob(20000000)) as h",
                    "Select replace(hex(zeroblob(10000000)), '0', 'ab') as r"};
                revisa(c.ejecuta(f.uno(enormes)), que + " enorme");
            }
            break;
        }
        case 8: {
            // Forma del JSON equivocada.
            const std::vector<std::string> cuerpos = {
                "{\"sql\": null}",
                "{\"sentencias\": {}}",
                "[1,2,3]",
                "\"texto\"",
                "{\"sql\": \"Select 1\", \"parametros\": [1]}",
                "{\"sentencias\": [{\"sql\": \"Select 1\"}, 5]}",
                "{",
                "{\"sql\": \"Select :a\", \"parametros\": {\"a\": {\"tipo\": \"entero\", "
                "\"valor\": 1, \"de\": {\"sentencia\": 0, \"columna\": \"x\"}}}}"};
            revisa(c.post(kRutaBase + (f.moneda() ? "" : "lote"), f.uno(cuerpos)), que + " forma");
            break;
        }
        default: {
            // Muchas sentencias en un lote con referencias en cadena, algunas rotas.
            Json lista = {sentencia("Select folioRem as f From Configura Where empresaID = 1")};
            for (int i = 1; i < f.entre(2, 40); ++i)
                lista.push_back(
                    sentencia("Select :v + 1 as f",
                              {{"v", de(f.entre(0, i + 1), f.moneda(12) ? "g" : "f")}}));
            revisa(c.lote(lista), que + " cadena");
        }
        }
        // Cada tanto, que lo ordinario siga respondiendo.
        if (ronda % 50 == 0) {
            auto r = c.ejecuta("Select count(*) as n From Productos");
            ASSERT_TRUE(es(r, 200)) << que;
        }
    }
    std::cout << solicitudes_ << " solicitudes en " << ronda << " rondas\n";
    ASSERT_EQ(kill(servicio.pid(), 0), 0) << "el proceso del servicio sigue vivo";
    auto r = c.ejecuta("Select clave, existencia From Productos Where empresaID = :e",
                       {{"e", entero(1)}});
    ASSERT_TRUE(es(r, 200));
    EXPECT_EQ(r.filas()[0][0], "A");
    auto t = c.comienzaTransaccion();
    EXPECT_TRUE(es(
        c.ejecuta("Insert Into Lineas (empresaID, linea) Values (1, 'fin')", {}, enTransaccion(t)),
        200));
    EXPECT_TRUE(es(c.confirma(t), 200));
}
