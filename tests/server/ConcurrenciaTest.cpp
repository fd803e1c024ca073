// Varias estaciones a la vez en dos empresas: ventas, recepciones, devoluciones, ajustes,
// cancelaciones y kits recompuestos entre una venta y su cancelación. Al final la existencia de
// cada producto es la inicial más lo que movieron sus documentos no cancelados, y los folios no
// se repiten. La semilla se imprime para repetir una corrida (CAJAPLEX_SEMILLA).
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <mutex>
#include <random>
#include <shared_mutex>
#include <string>
#include <thread>
#include <vector>

#include "tests/fixtures/DatosPrueba.h"

namespace cajaplex::prueba {
namespace {

constexpr double kInicial = 1000;
const std::vector<std::string> kSimples = {"P1", "P2", "P3", "P4"};
constexpr int kEstaciones = 6;
constexpr int kOperaciones = 30;

// Lo que un documento movió de cada producto simple, con el signo de su tipo.
using Movimiento = std::map<std::string, double>;

struct Escrito {
    std::string tabla;
    long long empresa;
    long long folio;
    Movimiento movimiento;
    bool cancelado = false;
};

class ConcurrenciaTest : public ConServicio {
protected:
    void SetUp() override {
        for (long long e : {1, 2}) {
            datos.empresa(e, "Empresa " + std::to_string(e));
            for (const auto& clave : kSimples)
                datos.producto(e, clave, kInicial);
            datos.paquete(e, "K", {{"P1", 2}, {"P2", 1}});
            composicion_[e] = {{"P1", 2}, {"P2", 1}};
        }
    }

    // Lo que un renglón mueve de cada producto simple con la composición de este momento.
    Movimiento mueve(long long empresa, const std::vector<Renglon>& renglones, double signo) {
        Movimiento m;
        for (const Renglon& r : renglones) {
            if (r.clave != "K") {
                m[r.clave] += signo * r.cantidad;
                continue;
            }
            for (const auto& [componente, cantidad] : composicion_.at(empresa))
                m[componente] += signo * cantidad * r.cantidad;
        }
        return m;
    }

    void estacion(unsigned semilla, std::vector<Escrito>& escritos) {
        Cliente cliente = servicio.cliente();
        Datos d{cliente};
        std::mt19937 azar(semilla);
        auto entre = [&](int a, int b) { return std::uniform_int_distribution<int>(a, b)(azar); };
        for (int i = 0; i < kOperaciones; ++i) {
            const long long empresa = entre(1, 2);
            std::vector<Renglon> renglones;
            for (int n = entre(1, 3); n > 0; --n) {
                const int p = entre(0, 4);
                renglones.push_back({p == 4 ? "K" : kSimples[static_cast<size_t>(p)],
                                     static_cast<double>(entre(1, 3))});
            }
            const int operacion = entre(0, 6);
            if (operacion == 6) {
                // Recompone el kit: ninguna escritura con kit corre a la vez, así la composición
                // de cada documento se sabe.
                std::unique_lock exclusivo(composicionCandado_);
                const double nueva = entre(1, 4);
                cliente.exige("Update ProductosPaquetes Set cantidad = :q Where empresaID = :e "
                              "and clave = 'P1' and id = (Select ID From Productos Where "
                              "empresaID = :e and clave = 'K')",
                              {{"q", real(nueva)}, {"e", entero(empresa)}});
                composicion_[empresa]["P1"] = nueva;
                continue;
            }
            if (operacion == 5) {
                // Cancela uno de los suyos, quizá con el kit ya recompuesto.
                std::vector<Escrito*> vivos;
                for (Escrito& x : escritos)
                    if (!x.cancelado) vivos.push_back(&x);
                if (vivos.empty()) continue;
                Escrito* x =
                    vivos[static_cast<size_t>(entre(0, static_cast<int>(vivos.size()) - 1))];
                d.cancela(x->tabla, x->empresa, x->folio);
                x->cancelado = true;
                continue;
            }
            std::shared_lock compartido(composicionCandado_);
            Escrito x;
            x.empresa = empresa;
            switch (operacion) {
            case 0:
                x.tabla = "Remision";
                x.folio = d.venta(empresa, renglones).folio;
                x.movimiento = mueve(empresa, renglones, -1);
                break;
            case 1:
                x.tabla = "OrdenCompra";
                x.folio = d.recepcion(empresa, renglones).folio;
                x.movimiento = mueve(empresa, renglones, +1);
                break;
            case 2:
                x.tabla = "DevolucionOrdenCompra";
                x.folio = d.devolucion(empresa, renglones).folio;
                x.movimiento = mueve(empresa, renglones, -1);
                break;
            default:
                x.tabla = "AjusteProductos";
                x.folio = d.ajuste(empresa, renglones, operacion == 3).folio;
                x.movimiento = mueve(empresa, renglones, operacion == 3 ? +1 : -1);
                break;
            }
            escritos.push_back(std::move(x));
        }
    }

    std::map<long long, std::map<std::string, double>> composicion_;
    std::shared_mutex composicionCandado_;
};

TEST_F(ConcurrenciaTest, EstacionesALaVezDejanLaExistenciaQueMovieronSusDocumentosYFoliosUnicos) {
    const char* fija = std::getenv("CAJAPLEX_SEMILLA");
    const unsigned semilla =
        fija ? static_cast<unsigned>(std::strtoul(fija, nullptr, 10)) : std::random_device{}();
    SCOPED_TRACE("CAJAPLEX_SEMILLA=" + std::to_string(semilla));

    std::vector<std::vector<Escrito>> porEstacion(kEstaciones);
    std::vector<std::thread> hilos;
    std::mutex fallas;
    std::vector<std::string> errores;
    for (int i = 0; i < kEstaciones; ++i)
        hilos.emplace_back([&, i] {
            try {
                estacion(semilla + static_cast<unsigned>(i), porEstacion[static_cast<size_t>(i)]);
            } catch (const std::exception& e) {
                std::lock_guard bloqueo(fallas);
                errores.push_back(e.what());
            }
        });
    for (auto& h : hilos)
        h.join();
    ASSERT_TRUE(errores.empty()) << errores.front();

    std::map<long long, Movimiento> esperado;
    size_t documentos = 0;
    for (const auto& escritos : porEstacion)
        for (const Escrito& x : escritos) {
            ++documentos;
            if (x.cancelado) continue;
            for (const auto& [clave, cantidad] : x.movimiento)
                esperado[x.empresa][clave] += cantidad;
        }
    ASSERT_GT(documentos, 0u);
    for (long long e : {1, 2}) {
        for (const auto& clave : kSimples)
            EXPECT_NEAR(datos.existencia(e, clave), kInicial + esperado[e][clave], 1e-6)
                << "empresa " << e << ", " << clave;
        EXPECT_EQ(datos.existencia(e, "K"), 0) << "un kit mueve sus componentes, no a sí mismo";
        for (const char* tabla :
             {"Remision", "OrdenCompra", "DevolucionOrdenCompra", "AjusteProductos"})
            EXPECT_EQ(c.cuenta(std::string(tabla) + " Where empresaID = :e", {{"e", entero(e)}}),
                      c.valor("Select count(distinct folio) From " + std::string(tabla) +
                                  " Where empresaID = :e",
                              {{"e", entero(e)}})
                          .get<long long>())
                << tabla << ", empresa " << e;
    }
}

} // namespace
} // namespace cajaplex::prueba
