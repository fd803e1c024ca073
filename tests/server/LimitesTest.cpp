// Límites: un valor de más de 32 MiB o una respuesta de más de 64 MiB se rechazan con 413
// enseguida y sin gastar la memoria; el montículo de SQLite tiene tope (503 en vez de morir); nada
// de eso cambia datos ni impide lo ordinario.
#include <chrono>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>

#include <unistd.h>

#include "tests/fixtures/DatosPrueba.h"

using namespace cajaplex::prueba;
using Reloj = std::chrono::steady_clock;

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kConSanitizadores = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool kConSanitizadores = true;
#else
constexpr bool kConSanitizadores = false;
#endif
#else
constexpr bool kConSanitizadores = false;
#endif

// Con ASan todo es varias veces más lento. "Rápido" se mide en tiempo de CPU del servicio (no
// depende de cuánto trabajo más tenga la máquina) y, con holgura, en tiempo de reloj.
const auto kRapido = std::chrono::milliseconds(kConSanitizadores ? 5000 : 2000);
const auto kRapidoReloj = std::chrono::milliseconds(kConSanitizadores ? 20000 : 10000);

// Tiempo de CPU (usuario + sistema) que lleva el proceso, de /proc/<pid>/stat.
std::chrono::milliseconds cpu(pid_t pid) {
    std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
    std::string todo((std::istreambuf_iterator<char>(stat)), std::istreambuf_iterator<char>());
    std::istringstream campos(todo.substr(todo.rfind(')') + 2));
    std::string campo;
    long long utime = 0, stime = 0;
    for (int i = 3; i <= 15 && campos >> campo; ++i) {
        if (i == 14) utime = std::stoll(campo);
        if (i == 15) stime = std::stoll(campo);
    }
    return std::chrono::milliseconds((utime + stime) * 1000 / sysconf(_SC_CLK_TCK));
}

// Un campo de /proc/<pid>/status en kB (VmRSS, VmHWM).
long long memoriaKb(pid_t pid, const std::string& campo) {
    std::ifstream status("/proc/" + std::to_string(pid) + "/status");
    std::string linea;
    while (std::getline(status, linea))
        if (linea.rfind(campo + ":", 0) == 0) return std::stoll(linea.substr(campo.size() + 1));
    return -1;
}

// 3 millones de renglones de unos 260 bytes de JSON cada uno: ~780 MB de respuesta (se detiene
// en 64 MiB, a los ~260 000 renglones).
const std::string kTresMillones =
    "With Recursive n(x) As (Select 1 Union All Select x + 1 From n Where x < 3000000) "
    "Select x, 'renglon numero ' || x as texto, x * 1.5 as r, '" +
    std::string(200, 'r') + "' as relleno From n";

// INSERT de 300 000 filas cuyo RETURNING pesa ~85 MB de JSON.
const std::string kInsertaConRespuestaEnorme =
    "With Recursive n(x) As (Select 1 Union All Select x + 1 From n Where x < 300000) "
    "Insert Into Lineas (empresaID, linea) Select 1, 'linea ' || x From n "
    "Returning id, linea, printf('%.*c', 250, 'z') as relleno";

} // namespace

class Limites : public ConServicio {
protected:
    void SetUp() override {
        datos.empresa(1, "Uno");
        datos.producto(1, "A", 10);
    }

    // La sentencia contesta 413 "tamano" y pronto.
    void esRechazoRapido(const std::string& sql, const Encabezados& en = {}) {
        const auto inicio = Reloj::now();
        const auto cpuAntes = cpu(servicio.pid());
        auto r = c.ejecuta(sql, {}, en);
        const auto tardo = Reloj::now() - inicio;
        const auto cpuGastado = cpu(servicio.pid()) - cpuAntes;
        EXPECT_TRUE(es(r, 413, "tamano")) << sql;
        EXPECT_LT(cpuGastado, kRapido) << sql;
        EXPECT_LT(tardo, kRapidoReloj) << sql;
        std::cout << "  " << sql.substr(0, 50)
                  << "...: " << std::chrono::duration_cast<std::chrono::milliseconds>(tardo).count()
                  << " ms (" << cpuGastado.count() << " ms de CPU), VmRSS "
                  << memoriaKb(servicio.pid(), "VmRSS") << " kB\n";
    }
};

TEST_F(Limites, ValoresYRespuestasEnormesSon413RapidoYConMemoriaAcotada) {
    esRechazoRapido("select zeroblob(1000000000) as b");
    esRechazoRapido("select printf('%.*c', 100000000, 'x') as t");
    esRechazoRapido("select length(randomblob(40000000)) as n");
    esRechazoRapido(kTresMillones);
    // Lote: la respuesta se mide entera, sumando sus sentencias.
    {
        auto r = c.lote({sentencia("Select 1 as uno"), sentencia(kTresMillones)});
        EXPECT_TRUE(es(r, 413, "tamano"));
        EXPECT_EQ(r.cuerpo.value("sentencia", -1), 1) << r;
    }

    const long long pico = memoriaKb(servicio.pid(), "VmHWM");
    std::cout << "VmHWM del servicio tras los rechazos: " << pico << " kB\n";
    if (!kConSanitizadores) {
        EXPECT_LT(pico, 300 * 1024);
    }

    // Lo ordinario sigue.
    EXPECT_TRUE(es(c.ejecuta("Select 1 as uno"), 200));
    EXPECT_DOUBLE_EQ(datos.existencia(1, "A"), 10);
}

TEST_F(Limites, RechazoDentroDeUnaTransaccionLaDejaComoEstaba) {
    auto t = c.comienzaTransaccion();
    auto en = enTransaccion(t);
    ASSERT_TRUE(
        es(c.ejecuta("Insert Into Remision (empresaID, folio) Values (1, 1)", {}, en), 200));
    // Una escritura que produce un valor enorme y otra con respuesta enorme (RETURNING).
    EXPECT_TRUE(es(c.ejecuta("Update Productos Set producto = zeroblob(100000000)", {}, en), 413,
                   "tamano"));
    esRechazoRapido(kInsertaConRespuestaEnorme, en);
    EXPECT_EQ(c.cuenta("Lineas", {}, en), 0) << "el INSERT rechazado no dejó filas";
    EXPECT_EQ(c.cuenta("Remision", {}, en), 1) << "lo de antes sigue";
    ASSERT_TRUE(es(c.confirma(t), 200));
    EXPECT_EQ(c.cuenta("Remision"), 1);
    EXPECT_EQ(c.cuenta("Lineas"), 0);
    EXPECT_EQ(c.valor("Select producto From Productos Where clave = 'A'"), "A");

    // Fuera de transacción tampoco queda nada.
    esRechazoRapido(kInsertaConRespuestaEnorme);
    EXPECT_EQ(c.cuenta("Lineas"), 0);
}

TEST_F(Limites, UnaRespuestaGrandeLegalSiSale) {
    c.exige("With Recursive n(x) As (Select 1 Union All Select x + 1 From n Where x < 20000) "
            "Insert Into Productos (empresaID, clave, producto, codigoBarra, existencia, precio, "
            "manejaInventarios, esPaquete) Select 1, 'P' || x, 'Producto de prueba numero ' || x, "
            "'750' || (1000000 + x), x, x * 1.25, 1, 0 From n");
    const auto inicio = Reloj::now();
    auto r = c.ejecuta("Select * From Productos Where empresaID = 1 Order By id");
    const auto tardo = Reloj::now() - inicio;
    ASSERT_TRUE(es(r, 200));
    ASSERT_EQ(r.filas().size(), 20001u);
    std::cout << "20 001 productos: " << r.crudo.size() / 1024 << " kB de JSON en "
              << std::chrono::duration_cast<std::chrono::milliseconds>(tardo).count() << " ms\n";
    // Tipos y valores como siempre: existencia es real aunque todos los valores sean enteros.
    size_t existencia = 0;
    const auto& columnas = r.cuerpo["columnas"];
    for (size_t i = 0; i < columnas.size(); ++i)
        if (columnas[i]["nombre"] == "existencia") existencia = i;
    EXPECT_EQ(columnas[existencia]["tipo"], "real");
    EXPECT_TRUE(r.filas()[20000][existencia].is_number_float()) << r.filas()[20000];
    EXPECT_EQ(r.filas()[20000][existencia].get<double>(), 20000.0);

    // Una respuesta de ~16 MB (un blob de 12 MB en base64: pasa de 8 MiB, se envía sin copiarla
    // y después se devuelve la memoria) también sale, entera.
    auto blob = c.ejecuta("Select zeroblob(12000000) as b, 'fin' as f");
    ASSERT_TRUE(es(blob, 200));
    EXPECT_EQ(blob.filas()[0][0].get<std::string>().size(), 16000000u);
    EXPECT_EQ(blob.filas()[0][1], "fin");

    const long long pico = memoriaKb(servicio.pid(), "VmHWM");
    std::cout << "VmHWM del servicio: " << pico << " kB\n";
    if (!kConSanitizadores) {
        EXPECT_LT(pico, 300 * 1024);
    }
}

TEST_F(Limites, EnterosYRealesMezcladosSalenComoReales) {
    auto r = c.exige("Select 1 as v, 'a\"b\\c\nd' as t Union All Select 2.5, 'ñ' Union All "
                     "Select 3, null");
    EXPECT_EQ(r.cuerpo["columnas"][0]["tipo"], "real");
    EXPECT_EQ(r.filas(), Json::parse(R"([[1.0, "a\"b\\c\nd"], [2.5, "ñ"], [3.0, null]])"));
    EXPECT_NE(r.crudo.find("[1.0,"), std::string::npos) << r.crudo;
    EXPECT_NE(r.crudo.find("[3.0,"), std::string::npos) << r.crudo;
    auto reales = c.exige("Select 0.1 as a, 1e20 as b, -2.5e-7 as c, 1e308 * 10 as d, 100.0 as e");
    EXPECT_EQ(reales.filas(), Json::parse(R"([[0.1, 1e20, -2.5e-7, null, 100.0]])"));
}

TEST_F(Limites, PrintfOrdinarioSigueIgual) {
    auto r = c.exige("Select printf('%05d-%s-%.2f', 42, 'x', 2.5) as a, format('%3c|%-4s|', 'yz', "
                     "'q') as b, printf('%.*c', 5, 'w') as c, printf('%d%%', 7) as d, printf(null) "
                     "as e, printf('%s') as f");
    EXPECT_EQ(r.filas(),
              Json::parse(R"([["00042-x-2.50", "  y|q   |", "wwwww", "7%", null, ""]])"));
}

class LimiteDeMemoria : public ConServicio {
protected:
    LimiteDeMemoria() : ConServicio(false, {"--memoria", "48"}) {}
};

TEST_F(LimiteDeMemoria, SentenciaQuePasaElTopeEs503YElServicioSigue) {
    datos.empresa(1, "Uno");
    // DISTINCT sobre 200 000 blobs distintos de 4 kB: el índice temporal (en memoria) pasa de
    // 48 MiB en cuanto lleva unos 12 000.
    auto r = c.ejecuta("With Recursive n(x) As (Select 1 Union All Select x + 1 From n Where x "
                       "< 200000) Select count(*) From (Select Distinct randomblob(4000) From n)");
    EXPECT_TRUE(es(r, 503, "ocupado"));
    EXPECT_TRUE(es(c.ejecuta("Select 1 as uno"), 200));
    auto t = c.comienzaTransaccion();
    ASSERT_TRUE(
        es(c.ejecuta("Insert Into Remision (empresaID, folio) Values (1, 1)", {}, enTransaccion(t)),
           200));
    EXPECT_TRUE(es(c.confirma(t), 200));
    EXPECT_EQ(c.cuenta("Remision"), 1);
}
