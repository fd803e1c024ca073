// cajaplex-registro-venta: cuánto tarda registrar una venta de contado de 10 renglones con dos
// formas de pago por RegistroVenta (la biblioteca de la estación, por HTTP al servicio), con 1 y
// 16 cajas (hilos con su propia conexión), y al lado el mismo lote corrido en proceso sobre
// SQLite con la biblioteca del servicio, sin HTTP. Solo imprime cifras; nunca falla por tiempos.
//
// Este archivo arma dos programas: la estación (enlaza SQLCipher por el módulo de datos) y, con
// CAJAPLEX_REGISTRO_LOCAL, la referencia en proceso (enlaza el SQLite del sistema). No pueden ir
// en un mismo ejecutable; la estación le pasa a la referencia el lote exacto y una copia de la
// base sembrada.
//
// Uso: cajaplex-registro-venta [segundos por corrida, 3 por omisión]
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <latch>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <nlohmann/json.hpp>

#include "bench/Medicion.h"

namespace {

using Reloj = std::chrono::steady_clock;
namespace fs = std::filesystem;

struct Medida {
    std::vector<double> ms;
    long errores = 0;
    std::string primerError;
};

// Corre `operacion` en `cajas` hilos durante `duracion`; cada hilo prepara la suya primero.
// La operación devuelve el error ("" si salió bien).
Medida mide(int cajas, std::chrono::seconds duracion,
            const std::function<std::function<std::string()>()>& prepara) {
    Medida total;
    std::mutex mutex;
    std::latch listos(cajas + 1);
    std::atomic<bool> alto{false};
    std::vector<std::thread> hilos;
    for (int i = 0; i < cajas; ++i)
        hilos.emplace_back([&] {
            auto operacion = prepara();
            Medida propia;
            listos.arrive_and_wait();
            while (!alto.load(std::memory_order_relaxed)) {
                const auto inicio = Reloj::now();
                const std::string error = operacion();
                if (!error.empty()) {
                    if (propia.errores++ == 0) propia.primerError = error;
                    continue;
                }
                propia.ms.push_back(
                    std::chrono::duration<double, std::milli>(Reloj::now() - inicio).count());
            }
            std::lock_guard bloqueo(mutex);
            total.ms.insert(total.ms.end(), propia.ms.begin(), propia.ms.end());
            total.errores += propia.errores;
            if (total.primerError.empty()) total.primerError = propia.primerError;
        });
    listos.arrive_and_wait();
    std::this_thread::sleep_for(duracion);
    alto = true;
    for (auto& h : hilos)
        h.join();
    return total;
}

double percentil(std::vector<double> v, double p) {
    if (v.empty()) return 0;
    std::sort(v.begin(), v.end());
    return v[std::min(v.size() - 1, static_cast<size_t>(p * static_cast<double>(v.size())))];
}

constexpr int Cajas[] = {1, 16};

} // namespace

#ifdef CAJAPLEX_REGISTRO_LOCAL

#include "server/Migraciones.h"
#include "server/MotorSqlite.h"
#include "server/Servicio.h"

// cajaplex-registro-venta-local BASE LOTE SEGUNDOS: imprime "cajas ventas p50 p99 errores".
int main(int argc, char** argv) {
    using namespace cajaplex::servidor;
    if (argc != 4) return 2;
    try {
        MotorSqlite motor({argv[1]});
        preparaBase(*motor.abreConexion(), false);
        Servicio servicio(motor, TiemposTransaccion{});
        std::ifstream archivo(argv[2]);
        const std::string cuerpo((std::istreambuf_iterator<char>(archivo)), {});
        std::atomic<long> clave{0};
        for (int cajas : Cajas) {
            // Con clave de idempotencia, como la estación: el servicio guarda la respuesta.
            Medida m = mide(cajas, std::chrono::seconds(std::atoi(argv[3])), [&] {
                return [&]() -> std::string {
                    Solicitud s{"lote", cuerpo, "", "local-" + std::to_string(clave++), true};
                    const Respuesta r = servicio.lote(s);
                    return r.estado == 200 ? "" : r.cuerpo;
                };
            });
            std::printf("%d %zu %.3f %.3f %ld %s\n", cajas, m.ms.size(), percentil(m.ms, 0.5),
                        percentil(m.ms, 0.99), m.errores, m.primerError.substr(0, 200).c_str());
        }
    } catch (const std::exception& e) {
        std::fprintf(stderr, "cajaplex-registro-venta-local: %s\n", e.what());
        return 1;
    }
    return 0;
}

#else

#include <QString>

#include "datos/MensajesComunes.h"
#include "sales/DocumentoVenta.h"
#include "sales/RegistroVenta.h"
#include "tests/sales/VentaPrueba.h"

namespace {

using namespace cajaplex;
using namespace cajaplex::prueba;

constexpr int Productos = 50;
constexpr int Renglones = 10;

std::string clave(int i) {
    char s[8];
    std::snprintf(s, sizeof s, "P%03d", i);
    return s;
}

// Lo que imprimió la referencia en proceso, una línea por número de cajas.
std::vector<std::string> referenciaLocal(const fs::path& base, const fs::path& lote, int segundos) {
    const std::string orden = std::string(CAJAPLEX_REGISTRO_LOCAL_RUTA) + " " + base.string() +
                              " " + lote.string() + " " + std::to_string(segundos);
    std::vector<std::string> lineas;
    if (FILE* f = popen(orden.c_str(), "r")) {
        char bufer[512];
        while (std::fgets(bufer, sizeof bufer, f))
            lineas.emplace_back(bufer);
        pclose(f);
    }
    return lineas;
}

int corre(int segundos) {
    ServicioPrueba servicio;
    {
        Cliente c = servicio.cliente();
        empresaVenta(c, 1);
        c.exige("Update Clientes Set puntos = 1000000 Where id = 2");
        for (int i = 0; i < Productos; ++i)
            articulo(c, {clave(i), 10.0 + i, 16, i % 5 == 0 ? 8.0 : 0.0, 1e9, 1, 1});
    }
    Sesion sesion = sesionVenta();
    ConexionBD conexion;
    apunta(conexion, servicio);
    DocumentoVenta venta(conexion, sesion);
    venta.abre();
    venta.asignaCliente(ConPuntos);
    for (int i = 0; i < Renglones; ++i)
        if (auto rechazo = venta.agrega(QString::fromStdString(clave(i * 3))))
            throw std::runtime_error(rechazo->toStdString());
    CierreVenta cierre = contado(venta);
    const double total = venta.totales().total;
    const double efectivo = std::floor(total / 2);
    cierre.pagos = {
        {Efectivo, QStringLiteral("EFECTIVO"), efectivo, float(efectivo)},
        {Tarjeta, QStringLiteral("TARJETA DE CRÉDITO"), total - efectivo, float(total - efectivo)}};
    const auto sentencias = RegistroVenta::sentencias(sesion, venta, cierre);

    // La referencia parte de la misma base sembrada: se copia con el servicio detenido.
    cajaplex::carga::CarpetaTemporal carpeta;
    servicio.detiene();
    fs::copy_file(fs::path(servicio.carpeta()) / "cajaplex.db", carpeta.ruta / "cajaplex.db");
    servicio.reinicia();
    apunta(conexion, servicio);
    nlohmann::json lote = nlohmann::json::array();
    for (const auto& s : sentencias)
        lote.push_back(protocolo::aJson(s));
    std::ofstream(carpeta.ruta / "lote.json") << nlohmann::json{{"sentencias", lote}}.dump();
    const auto local =
        referenciaLocal(carpeta.ruta / "cajaplex.db", carpeta.ruta / "lote.json", segundos);

    std::printf("Venta de contado de %d renglones, 2 formas de pago y puntos: %zu sentencias en un "
                "lote; %d s por corrida; datos en %s\n",
                Renglones, sentencias.size(), segundos,
                cajaplex::carga::tipoDeDisco(servicio.carpeta()));
    std::printf("%6s | %8s %8s %8s %7s | %8s %8s %8s %7s\n", "cajas", "ventas", "p50 ms", "p99 ms",
                "errores", "ventas", "p50 ms", "p99 ms", "errores");
    std::printf("%6s | %-35s | %-35s\n", "", "RegistroVenta por HTTP",
                "mismo lote en proceso (SQLite)");
    for (size_t k = 0; k < std::size(Cajas); ++k) {
        const Medida m = mide(Cajas[k], std::chrono::seconds(segundos), [&] {
            auto propia = std::make_shared<ConexionBD>();
            apunta(*propia, servicio);
            auto registro = std::make_shared<RegistroVenta>(*propia, sesion);
            return [propia, registro, &venta, &cierre]() -> std::string {
                const ResultadoRegistro r = registro->registra(venta, cierre);
                return r.registrada ? "" : r.mensaje.toStdString();
            };
        });
        long ventasLocal = 0, erroresLocal = 0;
        double p50Local = 0, p99Local = 0;
        if (k < local.size())
            std::sscanf(local[k].c_str(), "%*d %ld %lf %lf %ld", &ventasLocal, &p50Local, &p99Local,
                        &erroresLocal);
        std::printf("%6d | %8zu %8.2f %8.2f %7ld | %8ld %8.2f %8.2f %7ld\n", Cajas[k], m.ms.size(),
                    percentil(m.ms, 0.5), percentil(m.ms, 0.99), m.errores, ventasLocal, p50Local,
                    p99Local, erroresLocal);
        if (m.errores) std::printf("  primer error: %s\n", m.primerError.c_str());
        std::fflush(stdout);
    }
    if (local.size() < std::size(Cajas)) std::printf("La referencia en proceso no contestó.\n");
    std::printf("Metas (informativas): p99 <= 20 ms con 1 caja, <= 100 ms con 16.\n");
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return corre(argc > 1 ? std::max(1, std::atoi(argv[1])) : 3);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "cajaplex-registro-venta: %s\n", e.what());
        return 1;
    }
}

#endif
