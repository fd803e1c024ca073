// cajaplex-carga-cliente: cuánto cuesta registrar una venta de 10 renglones (encabezado,
// renglones, 2 pagos, puntos del cliente y bitácora) con las altas del módulo de datos, en un solo
// lote contra sentencia por sentencia dentro de una transacción, con 1 y 16 estaciones (hilos con
// su propia conexión). Solo imprime cifras; nunca falla por tiempos.
//
// Uso: cajaplex-carga-cliente [segundos por corrida, 3 por omisión]
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <latch>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <QDateTime>
#include <QString>

#include "datos/ModuloDatos.h"
#include "tests/fixtures/ServicioPrueba.h"

namespace {

using cajaplex::Consulta;
using cajaplex::ErrorServicio;
using cajaplex::Lote;
using cajaplex::TModuloDeDatos;
using cajaplex::Transaccion;
using Reloj = std::chrono::steady_clock;

constexpr int64_t EmpresaID = 1;
constexpr int64_t ClienteID = 1;
constexpr int64_t UsuarioID = 1;
constexpr int Productos = 200;
constexpr int Renglones = 10;

void apunta(TModuloDeDatos& m, const cajaplex::prueba::ServicioPrueba& servicio) {
    m.ConexionBD.configura("127.0.0.1", servicio.puerto(),
                           QString::fromStdString(cajaplex::prueba::kUsuarioPrueba),
                           QString::fromStdString(cajaplex::prueba::kContrasenaPrueba));
}

QString clave(int i) {
    return QStringLiteral("P%1").arg(i, 5, 10, QLatin1Char('0'));
}

void siembra(TModuloDeDatos& m) {
    Lote lote(m.ConexionBD);
    lote.agrega(cajaplex::protocolo::Sentencia{
        "Insert Into Empresa (empresaID, nombreEmpresaCorto) Values (1, 'Carga')", {}});
    lote.agrega(cajaplex::protocolo::Sentencia{"Insert Into Configura (empresaID) Values (1)", {}});
    lote.agrega(cajaplex::protocolo::Sentencia{
        "Insert Into Clientes (id, empresaID, nombre, puntos) Values (1, 1, 'Público', 0)", {}});
    Consulta producto(
        m.ConexionBD,
        "Insert Into Productos (empresaID, clave, producto, existencia, precio, "
        "pCompra, porcentajeImpuesto, manejaInventarios) "
        "Values (:empresaID, :clave, :producto, 1000000000, :precio, :pCompra, 16, 1)");
    for (int i = 0; i < Productos; ++i) {
        producto.parametro("empresaID").entero(EmpresaID);
        producto.parametro("clave").texto(clave(i));
        producto.parametro("producto").texto("Producto " + clave(i));
        producto.parametro("precio").real(10.0 + i);
        producto.parametro("pCompra").real(6.0 + i);
        lote.agrega(producto);
    }
    lote.ejecuta();
}

// Asigna lo de una venta de contado; el folio e ID llegan de `folio` e `id` (literal o del lote).
struct Venta {
    int semilla;

    void encabezado(TModuloDeDatos& m) const {
        auto& q = m.Remision;
        const QDateTime ahora = QDateTime::currentDateTime();
        q.parametro("empresaID").entero(EmpresaID);
        q.parametro("fecha").fecha(ahora);
        q.parametro("fechaCaptura").fecha(ahora);
        q.parametro("fechaPago").fecha(ahora);
        q.parametro("usuarioID").entero(UsuarioID);
        q.parametro("vendedor").entero(UsuarioID);
        q.parametro("cliente").entero(ClienteID);
        q.parametro("moneda").entero(1);
        q.parametro("tipoCambio").real(1);
        q.parametro("totalEnvio").real(0);
        q.parametro("subtotalRemision").real(1000);
        q.parametro("ivaRemision").real(160);
        q.parametro("iepsRemision").real(0);
        q.parametro("descuento").real(0);
        q.parametro("totalRemision").real(1160);
        q.parametro("observaciones").texto("carga");
        q.parametro("descontoExistencias").booleano(true);
        q.parametro("costoRemision").real(600);
        q.parametro("puntosRemision").real(11.6);
        q.parametro("pagoMixto").booleano(true);
        q.parametro("calificacion").entero(0);
        q.parametro("entregaDomicilio").booleano(false);
        q.parametro("cancelada").booleano(false);
        q.parametro("enviada").booleano(false);
        q.parametro("entregada").booleano(true);
        q.parametro("totalPropina").real(0);
        q.parametro("pagada").entero(1);
        q.parametro("saldoPendiente").real(0);
        q.parametro("plazoPago").entero(0);
        q.parametro("montoPagado").real(1160);
    }
    void pago(TModuloDeDatos& m, int forma) const {
        auto& q = m.RemisionPagos;
        q.parametro("empresaID").entero(EmpresaID);
        q.parametro("feMetodoID").entero(forma);
        q.parametro("importe").real(580);
        q.parametro("moneda").entero(1);
        q.parametro("utilizados").real(580);
    }
    void renglon(TModuloDeDatos& m, int posicion) const {
        auto& q = m.RemisionDetalle;
        const int p = (semilla * 7 + posicion * 13) % Productos;
        q.parametro("producto").entero(p + 1);
        q.parametro("empresaID").entero(EmpresaID);
        q.parametro("cantidad").real(1);
        q.parametro("precio").real(10.0 + p);
        q.parametro("descuento").real(0);
        q.parametro("importe").real(10.0 + p);
        q.parametro("pCompra").real(6.0 + p);
        q.parametro("porcentajeImpuesto").real(16);
        q.parametro("clave").texto(clave(p));
        q.parametro("posicion").entero(posicion);
        q.parametro("ieps").real(0);
        q.parametro("nota").nulo();
        q.parametro("pLista").entero(1);
        q.parametro("moneda").entero(1);
        q.parametro("mesPagado").entero(0);
    }
    void auditoria(TModuloDeDatos& m) const {
        auto& q = m.AuditoriasSistema;
        q.parametro("tipoAuditoria").texto("Inserción");
        q.parametro("usuarioID").entero(UsuarioID);
        q.parametro("empresaID").entero(EmpresaID);
        q.parametro("datoAnterior").texto("");
        q.parametro("comentarios").texto("Venta de carga");
        q.parametro("moduloSistema").texto("Ventas -> Punto de Venta");
    }
};

struct Estacion {
    TModuloDeDatos m;
    Consulta puntos{m.ConexionBD, "Update Clientes Set Puntos = Puntos + :puntos "
                                  "Where empresaID = :empresaID and id = :cliente"};

    void preparaPuntos() {
        puntos.parametro("puntos").real(11.6);
        puntos.parametro("empresaID").entero(EmpresaID);
        puntos.parametro("cliente").entero(ClienteID);
    }

    // Un viaje: el folio se lee dentro del lote y las sentencias siguientes lo toman de ahí.
    void enLote(const Venta& v) {
        Lote lote(m.ConexionBD);
        m.Configuracion.parametro("empresaID").entero(EmpresaID);
        lote.agrega(m.Configuracion);
        v.encabezado(m);
        m.Remision.parametro("folio").de(0, "folioRem");
        m.Remision.parametro("feMetodoID").entero(1);
        lote.agrega(m.Remision);
        for (int forma : {1, 2}) {
            v.pago(m, forma);
            m.RemisionPagos.parametro("remision").de(0, "folioRem");
            lote.agrega(m.RemisionPagos);
        }
        for (int i = 1; i <= Renglones; ++i) {
            v.renglon(m, i);
            m.RemisionDetalle.parametro("id").de(1, "ultimoId");
            m.RemisionDetalle.parametro("remision").de(0, "folioRem");
            lote.agrega(m.RemisionDetalle);
        }
        preparaPuntos();
        lote.agrega(puntos);
        v.auditoria(m);
        m.AuditoriasSistema.parametro("datoNuevo")
            .de(0, "folioRem", cajaplex::protocolo::Tipo::Texto);
        lote.agrega(m.AuditoriasSistema);
        lote.ejecuta();
    }

    // Como lo haría una pantalla sentencia por sentencia: 16 viajes más comenzar y confirmar.
    void enTransaccion(const Venta& v) {
        Transaccion t(m.ConexionBD);
        m.Configuracion.parametro("empresaID").entero(EmpresaID);
        m.Configuracion.abre(t);
        const int64_t folio = m.Configuracion.campo("folioRem").comoEntero();
        v.encabezado(m);
        m.Remision.parametro("folio").entero(folio);
        m.Remision.parametro("feMetodoID").entero(1);
        m.Remision.ejecuta(t);
        const int64_t id = m.Remision.ultimoId();
        for (int forma : {1, 2}) {
            v.pago(m, forma);
            m.RemisionPagos.parametro("remision").entero(folio);
            m.RemisionPagos.ejecuta(t);
        }
        for (int i = 1; i <= Renglones; ++i) {
            v.renglon(m, i);
            m.RemisionDetalle.parametro("id").entero(id);
            m.RemisionDetalle.parametro("remision").entero(folio);
            m.RemisionDetalle.ejecuta(t);
        }
        preparaPuntos();
        puntos.ejecuta(t);
        v.auditoria(m);
        m.AuditoriasSistema.parametro("datoNuevo").texto(QString::number(folio));
        m.AuditoriasSistema.ejecuta(t);
        t.confirma();
    }
};

struct Medida {
    std::vector<double> ms;
    long errores = 0;
    std::string primerError;
    double segundos = 0;
};

Medida corre(const cajaplex::prueba::ServicioPrueba& servicio, bool lote, int estaciones,
             std::chrono::seconds duracion) {
    Medida total;
    std::mutex mutex;
    std::latch listos(estaciones + 1);
    std::atomic<bool> alto{false};
    std::vector<std::thread> hilos;
    for (int e = 0; e < estaciones; ++e) {
        hilos.emplace_back([&, e] {
            Estacion estacion;
            apunta(estacion.m, servicio);
            Medida propia;
            try {
                estacion.m.ConexionBD.conecta();
            } catch (const std::exception& ex) {
                propia.errores++;
                propia.primerError = ex.what();
            }
            listos.arrive_and_wait();
            for (int i = 0; !alto.load(std::memory_order_relaxed); ++i) {
                const auto inicio = Reloj::now();
                try {
                    const Venta v{e * 1000 + i};
                    lote ? estacion.enLote(v) : estacion.enTransaccion(v);
                    propia.ms.push_back(
                        std::chrono::duration<double, std::milli>(Reloj::now() - inicio).count());
                } catch (const ErrorServicio& ex) {
                    if (propia.errores++ == 0) propia.primerError = ex.what();
                }
            }
            std::lock_guard bloqueo(mutex);
            total.ms.insert(total.ms.end(), propia.ms.begin(), propia.ms.end());
            total.errores += propia.errores;
            if (total.primerError.empty()) total.primerError = propia.primerError;
        });
    }
    listos.arrive_and_wait();
    const auto inicio = Reloj::now();
    std::this_thread::sleep_for(duracion);
    alto = true;
    for (auto& h : hilos)
        h.join();
    total.segundos = std::chrono::duration<double>(Reloj::now() - inicio).count();
    return total;
}

double percentil(std::vector<double>& v, double p) {
    if (v.empty()) return 0;
    const auto k = static_cast<size_t>(p * static_cast<double>(v.size() - 1));
    std::nth_element(v.begin(), v.begin() + static_cast<std::ptrdiff_t>(k), v.end());
    return v[k];
}

} // namespace

int main(int argc, char** argv) {
    const std::chrono::seconds duracion(argc > 1 ? std::max(1, std::atoi(argv[1])) : 3);
    try {
        cajaplex::prueba::ServicioPrueba servicio;
        {
            TModuloDeDatos m;
            apunta(m, servicio);
            siembra(m);
        }
        std::printf("Venta de %d renglones: encabezado, renglones, 2 pagos, puntos y bitácora "
                    "(%d sentencias); %lld s por corrida, servicio en 127.0.0.1:%d\n",
                    Renglones, Renglones + 6, static_cast<long long>(duracion.count()),
                    servicio.puerto());
        std::printf("%-12s %7s %10s %8s %10s %8s %8s %8s\n", "modo", "viajes", "estaciones",
                    "ventas", "ventas/s", "p50 ms", "p99 ms", "errores");
        for (int estaciones : {1, 16}) {
            for (bool lote : {true, false}) {
                Medida m = corre(servicio, lote, estaciones, duracion);
                const size_t n = m.ms.size();
                // "transacción" lleva un carácter de dos bytes: el relleno se ajusta a mano.
                std::printf("%s %7d %10d %8zu %10.1f %8.2f %8.2f %8ld\n",
                            lote ? "lote        " : "transacción ", lote ? 1 : Renglones + 8,
                            estaciones, n, static_cast<double>(n) / m.segundos,
                            percentil(m.ms, 0.50), percentil(m.ms, 0.99), m.errores);
                if (m.errores) std::printf("  primer error: %s\n", m.primerError.c_str());
                std::fflush(stdout);
            }
        }
        const auto ventas = servicio.cliente().cuenta("Remision");
        std::printf("Remisiones registradas en total: %lld\n", ventas);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "cajaplex-carga-cliente: %s\n", e.what());
        return 1;
    }
    return 0;
}
