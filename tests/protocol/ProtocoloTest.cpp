#include <gtest/gtest.h>

#include "protocol/Base64.h"
#include "protocol/Protocolo.h"

using namespace cajaplex::protocolo;
using nlohmann::json;

namespace {
int estadoDe(const json& j) {
    try {
        sentenciaDesdeJson(j);
    } catch (const ErrorProtocolo& e) {
        EXPECT_EQ(e.codigo(), "solicitud");
        return e.estadoHttp();
    }
    return 200;
}
} // namespace

TEST(Base64, IdaYVueltaConTodosLosRellenos) {
    std::string bytes;
    for (int i = 0; i < 256; ++i)
        bytes += static_cast<char>(i);
    for (size_t largo : {0u, 1u, 2u, 3u, 4u, 255u, 256u}) {
        auto original = bytes.substr(0, largo);
        auto texto = codificaBase64(original);
        EXPECT_EQ(texto.size() % 4, 0u);
        EXPECT_EQ(decodificaBase64(texto), original) << largo;
    }
    EXPECT_EQ(codificaBase64("Cajaplex"), "Q2FqYXBsZXg=");
    EXPECT_FALSE(decodificaBase64("no es*base64"));
    EXPECT_FALSE(decodificaBase64("QUJDR"));
}

TEST(Parametros, CadaTipoSeLeeDeSuFormaJson) {
    auto s = sentenciaDesdeJson(json::parse(R"({"sql": "x", "parametros": {
        "e": {"tipo": "entero", "valor": 7}, "r": {"tipo": "real", "valor": 2},
        "t": {"tipo": "texto", "valor": "ñandú"}, "b": {"tipo": "booleano", "valor": true},
        "b0": {"tipo": "booleano", "valor": 0}, "f": {"tipo": "fecha", "valor": "2026-11-23 10:15:00"},
        "x": {"tipo": "blob", "valor": "AAEC"}, "g": {"tipo": "guid", "valor": "a-b"},
        "n": {"tipo": "entero", "valor": null}}})"));
    std::map<std::string, Valor> v;
    for (auto& p : s.parametros)
        v[p.nombre] = p.valor;
    EXPECT_EQ(std::get<int64_t>(v["e"]), 7);
    EXPECT_EQ(std::get<double>(v["r"]), 2.0);
    EXPECT_EQ(std::get<std::string>(v["t"]), "ñandú");
    EXPECT_EQ(std::get<int64_t>(v["b"]), 1);
    EXPECT_EQ(std::get<int64_t>(v["b0"]), 0);
    EXPECT_EQ(std::get<Bytes>(v["x"]).datos, std::string("\0\1\2", 3));
    EXPECT_TRUE(esNulo(v["n"]));
}

TEST(Parametros, FormasIncorrectasSonErrorDeSolicitud) {
    EXPECT_EQ(estadoDe(json::array()), 400);
    EXPECT_EQ(estadoDe(json{{"sql", 5}}), 400);
    EXPECT_EQ(estadoDe(json::parse(R"({"sql": "x", "parametros": []})")), 400);
    EXPECT_EQ(estadoDe(json::parse(R"({"sql": "x", "parametros": {"a": {"valor": 1}}})")), 400);
    EXPECT_EQ(estadoDe(json::parse(
                  R"({"sql": "x", "parametros": {"a": {"tipo": "dinero", "valor": 1}}})")),
              400);
    EXPECT_EQ(estadoDe(json::parse(
                  R"({"sql": "x", "parametros": {"a": {"tipo": "entero", "valor": "1"}}})")),
              400);
    EXPECT_EQ(estadoDe(json::parse(
                  R"({"sql": "x", "parametros": {"a": {"tipo": "entero", "valor": 1.5}}})")),
              400);
    EXPECT_EQ(estadoDe(json::parse(
                  R"({"sql": "x", "parametros": {"a": {"tipo": "booleano", "valor": 2}}})")),
              400);
    EXPECT_EQ(
        estadoDe(json::parse(
            R"({"sql": "x", "parametros": {"a": {"tipo": "fecha", "valor": "23/11/2026"}}})")),
        400);
    EXPECT_EQ(estadoDe(json::parse(
                  R"({"sql": "x", "parametros": {"a": {"tipo": "blob", "valor": "%%"}}})")),
              400);
    EXPECT_EQ(
        estadoDe(json::parse(
            R"({"sql": "x", "parametros": {"a": {"tipo": "entero", "de": {"sentencia": -1, "columna": "c"}}}})")),
        400);
}

TEST(Lote, MasDeMilSentenciasSeRechazanYElErrorDiceCual) {
    json lote{{"sentencias", json::array()}};
    for (int i = 0; i < 1001; ++i)
        lote["sentencias"].push_back({{"sql", "select 1"}});
    EXPECT_THROW(loteDesdeJson(lote), ErrorProtocolo);
    lote["sentencias"].erase(lote["sentencias"].begin());
    EXPECT_EQ(loteDesdeJson(lote).size(), 1000u);

    json malo{{"sentencias", {{{"sql", "select 1"}}, {{"sql", 2}}}}};
    try {
        loteDesdeJson(malo);
        FAIL() << "debió rechazarse";
    } catch (const ErrorProtocolo& e) {
        EXPECT_EQ(e.sentencia, 1u);
        EXPECT_EQ(aJson(e)["sentencia"], 1);
    }
}

TEST(Resultado, SeLeeComoSeEscribeConBlobsYNulos) {
    Resultado r;
    r.columnas = {
        {"ID", Tipo::Entero}, {"foto", Tipo::Blob}, {"precio", Tipo::Real}, {"n", Tipo::Texto}};
    r.filas = {{int64_t{3}, Bytes{std::string("\xff\0a", 3)}, 12.5, std::monostate{}}};
    r.filasAfectadas = 2;
    r.ultimoId = 9;
    auto leido = resultadoDesdeJson(json::parse(aJson(r).dump()));
    ASSERT_EQ(leido.filas.size(), 1u);
    EXPECT_EQ(leido.filas[0], r.filas[0]);
    EXPECT_EQ(leido.columnas[1].tipo, Tipo::Blob);
    EXPECT_EQ(leido.filasAfectadas, 2);
    EXPECT_EQ(leido.ultimoId, 9);
}
