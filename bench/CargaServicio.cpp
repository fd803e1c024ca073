// cajaplex-carga: varias cajas simuladas contra cajaplex-servidor por loopback y, en la misma
// corrida, el mismo trabajo directo sobre SQLite en proceso, para leer el costo del servicio como
// razón. Solo imprime cifras: nunca falla por tiempos.
#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <latch>
#include <memory>
#include <mutex>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <httplib.h>

#include "bench/Medicion.h"
#include "protocol/Protocolo.h"
#include "server/Migraciones.h"
#include "server/MotorSqlite.h"
#include "tests/fixtures/ServicioPrueba.h"

namespace {

struct Credenciales {
    std::string usuario;
    std::string contrasena;
};

using cajaplex::carga::CarpetaTemporal;
using cajaplex::carga::leeProceso;
using cajaplex::carga::Proceso;
using cajaplex::carga::tipoDeDisco;
namespace fs = std::filesystem;
using cajaplex::protocolo::Parametro;
using cajaplex::protocolo::Referencia;
using cajaplex::protocolo::Resultado;
using cajaplex::protocolo::Sentencia;
using cajaplex::protocolo::Tipo;
using cajaplex::protocolo::Valor;
using nlohmann::json;
using Reloj = std::chrono::steady_clock;

constexpr int64_t EmpresaID = 1;
constexpr int64_t ClienteID = 1;
constexpr int Productos = 2000;
constexpr size_t RenglonesVenta = 10;
constexpr size_t LoteSiembra = 250;
// Tope de operaciones por corrida, además del tiempo: la carga siempre termina.
constexpr size_t MaximoOperaciones = 2'000'000;
const std::string Base(cajaplex::protocolo::RutaBase);

Parametro entero(std::string nombre, int64_t v) {
    return {std::move(nombre), Tipo::Entero, v, {}};
}
Parametro real(std::string nombre, double v) {
    return {std::move(nombre), Tipo::Real, v, {}};
}
Parametro texto(std::string nombre, std::string v) {
    return {std::move(nombre), Tipo::Texto, std::move(v), {}};
}
Parametro de(std::string nombre, Tipo tipo, size_t sentencia, std::string columna) {
    return {std::move(nombre), tipo, {}, Referencia{sentencia, std::move(columna)}};
}

// El catálogo sembrado es determinista: el producto i se reconstruye sin consultarlo.
std::string claveProducto(int i) {
    char s[16];
    std::snprintf(s, sizeof s, "P%05d", i);
    return s;
}
std::string barraProducto(int i) {
    char s[20];
    std::snprintf(s, sizeof s, "750%010d", i * 7 + 3);
    return s;
}
double precioProducto(int i) {
    return 5.0 + (i % 200) * 0.5;
}

int64_t primerEntero(const Resultado& r) {
    if (r.filas.empty() || r.filas[0].empty())
        throw std::runtime_error("la consulta no devolvió renglones");
    if (auto* v = std::get_if<int64_t>(&r.filas[0][0])) return *v;
    throw std::runtime_error("la consulta no devolvió un entero");
}

// Una caja: su propia conexión, con las operaciones que hacen las pantallas.
class Estacion {
public:
    virtual ~Estacion() = default;
    // Dentro de la transacción abierta, si la hay.
    virtual Resultado consulta(const Sentencia& s) = 0;
    virtual std::vector<Resultado> lote(const std::vector<Sentencia>& s,
                                        const std::string& clave) = 0;
    virtual void comienza() = 0;
    virtual void confirma() = 0;
    virtual void revierte() noexcept = 0;
};

class EstacionHttp final : public Estacion {
public:
    EstacionHttp(int puerto, const Credenciales& c) : cliente_("127.0.0.1", puerto) {
        cliente_.set_keep_alive(true);
        cliente_.set_tcp_nodelay(true);
        cliente_.set_basic_auth(c.usuario, c.contrasena);
        cliente_.set_connection_timeout(5, 0);
        cliente_.set_read_timeout(30, 0);
        cliente_.set_write_timeout(30, 0);
        // Se abre la conexión aquí para que la primera medición no incluya el connect.
        auto r = cliente_.Get(Base + "salud");
        if (!r || r->status != 200) throw std::runtime_error("el servicio no contesta /salud");
    }

    Resultado consulta(const Sentencia& s) override {
        httplib::Headers h;
        if (!transaccion_.empty()) h.emplace("X-Transaccion", transaccion_);
        return cajaplex::protocolo::resultadoDesdeJson(post(Base, aJson(s).dump(), h));
    }

    std::vector<Resultado> lote(const std::vector<Sentencia>& s,
                                const std::string& clave) override {
        json lista = json::array();
        for (const auto& x : s)
            lista.push_back(aJson(x));
        httplib::Headers h;
        if (!clave.empty()) h.emplace("Idempotencia", clave);
        json r = post(Base + "lote", json{{"sentencias", std::move(lista)}}.dump(), h);
        std::vector<Resultado> resultados;
        for (const auto& x : r.at("resultados"))
            resultados.push_back(cajaplex::protocolo::resultadoDesdeJson(x));
        return resultados;
    }

    void comienza() override {
        transaccion_ = post(Base + "transaccion", "", {}).at("transaccion").get<std::string>();
    }

    void confirma() override {
        post(Base + "transaccion/" + transaccion_ + "/confirmar", "", {});
        transaccion_.clear();
    }

    void revierte() noexcept override {
        if (transaccion_.empty()) return;
        try {
            post(Base + "transaccion/" + transaccion_ + "/revertir", "", {});
        } catch (const std::exception&) {
            // El servicio la expira solo si no contesta.
        }
        transaccion_.clear();
    }

private:
    json post(const std::string& ruta, const std::string& cuerpo, const httplib::Headers& h) {
        auto r = cliente_.Post(ruta, h, cuerpo, "application/json");
        if (!r) throw std::runtime_error("sin respuesta HTTP: " + httplib::to_string(r.error()));
        json j = json::parse(r->body, nullptr, false);
        if (r->status != 200) throw cajaplex::protocolo::errorDesdeJson(r->status, j);
        if (j.is_discarded()) throw std::runtime_error("respuesta que no es JSON");
        return j;
    }

    httplib::Client cliente_;
    std::string transaccion_;
};

// Lo mismo sin red: la conexión de la biblioteca del servicio. Las escrituras pasan por un solo
// mutex, como el escritor único del servicio.
class EstacionLocal final : public Estacion {
public:
    EstacionLocal(cajaplex::servidor::Motor& motor, std::mutex& escritor)
        : c_(motor.abreConexion()), escritor_(escritor) {}

    Resultado consulta(const Sentencia& s) override { return c_->ejecuta(s.sql, s.parametros); }

    std::vector<Resultado> lote(const std::vector<Sentencia>& s, const std::string&) override {
        std::vector<Resultado> resultados;
        comienza();
        try {
            for (const auto& x : s) {
                auto params = x.parametros;
                for (auto& p : params)
                    if (p.de) p.valor = referido(*p.de, resultados);
                for (auto& p : params)
                    p.de.reset();
                resultados.push_back(c_->ejecuta(x.sql, params));
            }
            confirma();
        } catch (...) {
            revierte();
            throw;
        }
        return resultados;
    }

    void comienza() override {
        cerrojo_ = std::unique_lock(escritor_);
        c_->comienza();
    }

    void confirma() override {
        c_->confirma();
        cerrojo_.unlock();
    }

    void revierte() noexcept override {
        try {
            c_->revierte();
        } catch (const std::exception&) {
        }
        if (cerrojo_.owns_lock()) cerrojo_.unlock();
    }

private:
    static Valor referido(const Referencia& ref, const std::vector<Resultado>& previos) {
        if (ref.sentencia >= previos.size()) throw std::runtime_error("referencia adelantada");
        const Resultado& r = previos[ref.sentencia];
        for (size_t i = 0; i < r.columnas.size(); ++i)
            if (r.columnas[i].nombre == ref.columna && !r.filas.empty()) return r.filas[0][i];
        if (ref.columna == "ultimoId") return r.ultimoId;
        throw std::runtime_error("referencia a una columna que no existe: " + ref.columna);
    }

    std::unique_ptr<cajaplex::servidor::Conexion> c_;
    std::mutex& escritor_;
    std::unique_lock<std::mutex> cerrojo_;
};

// ---- Las operaciones medidas ----

Sentencia busquedaPorBarra(int producto) {
    return {"Select ID, clave, producto, precio, existencia, porcentajeImpuesto From Productos "
            "Where empresaID = :EmpresaID and codigoBarra = :codigoBarra",
            {entero("EmpresaID", EmpresaID), texto("codigoBarra", barraProducto(producto))}};
}

struct Venta {
    std::array<int, RenglonesVenta> productos{};
    std::array<double, RenglonesVenta> cantidades{};
    double subtotal = 0, iva = 0, total = 0;
};

Venta nuevaVenta(std::mt19937_64& g) {
    std::uniform_int_distribution<int> producto(0, Productos - 1);
    std::uniform_int_distribution<int> cantidad(1, 5);
    Venta v;
    for (size_t k = 0; k < RenglonesVenta; ++k) {
        v.productos[k] = producto(g);
        v.cantidades[k] = cantidad(g);
        v.subtotal += v.cantidades[k] * precioProducto(v.productos[k]);
    }
    v.iva = std::round(v.subtotal * 16.0) / 100.0;
    v.total = v.subtotal + v.iva;
    return v;
}

Sentencia leeFolio() {
    return {"Select folioRem From Configura Where empresaID = :EmpresaID",
            {entero("EmpresaID", EmpresaID)}};
}

Sentencia encabezado(const Venta& v, Parametro folio) {
    return {"Insert Into Remision (empresaID, folio, usuarioID, vendedor, cliente, moneda, "
            "feMetodoID, subtotalRemision, ivaRemision, totalRemision, montoPagado, pagada, "
            "pagoMixto, descontoExistencias, puntosRemision) Values (:EmpresaID, :folio, 1, 1, "
            ":cliente, 1, 1, :subtotal, :iva, :total, :total, 1, 1, :descontoExistencias, "
            ":puntos)",
            {entero("EmpresaID", EmpresaID),
             std::move(folio),
             entero("cliente", ClienteID),
             real("subtotal", v.subtotal),
             real("iva", v.iva),
             real("total", v.total),
             {"descontoExistencias", Tipo::Booleano, int64_t{1}, {}},
             real("puntos", std::floor(v.total) / 100.0)}};
}

Sentencia renglon(const Venta& v, size_t k, Parametro id, Parametro remision) {
    const int p = v.productos[k];
    return {"Insert Into RemisionDetalle (id, empresaID, remision, posicion, producto, clave, "
            "cantidad, precio, importe, porcentajeImpuesto) Values (:id, :EmpresaID, :remision, "
            ":posicion, :producto, :clave, :cantidad, :precio, :importe, :porcentajeImpuesto)",
            {std::move(id), entero("EmpresaID", EmpresaID), std::move(remision),
             entero("posicion", static_cast<int64_t>(k + 1)), entero("producto", p + 1),
             texto("clave", claveProducto(p)), real("cantidad", v.cantidades[k]),
             real("precio", precioProducto(p)),
             real("importe", v.cantidades[k] * precioProducto(p)),
             real("porcentajeImpuesto", 16.0)}};
}

Sentencia pago(int64_t forma, double importe, Parametro remision) {
    return {"Insert Into RemisionPagos (empresaID, remision, feMetodoID, importe, moneda) "
            "Values (:EmpresaID, :remision, :feMetodoID, :importe, 1)",
            {entero("EmpresaID", EmpresaID), std::move(remision), entero("feMetodoID", forma),
             real("importe", importe)}};
}

Sentencia sumaPuntos(const Venta& v) {
    return {"Update Clientes Set Puntos = Puntos + :puntos Where empresaID = :EmpresaID and id = "
            ":cliente",
            {real("puntos", std::floor(v.total) / 100.0), entero("EmpresaID", EmpresaID),
             entero("cliente", ClienteID)}};
}

Sentencia auditoria(Parametro datoNuevo) {
    return {"Insert Into AuditoriasSistema (empresaID, usuarioID, tipoAuditoria, moduloSistema, "
            "datoNuevo) Values (:EmpresaID, 1, 'ALTA', 'Remisiones', :datoNuevo)",
            {entero("EmpresaID", EmpresaID), std::move(datoNuevo)}};
}

// La venta entera en un viaje: el folio y el ID del encabezado se toman dentro del lote.
std::vector<Sentencia> ventaEnLote(const Venta& v) {
    auto folio = [](const char* nombre) { return de(nombre, Tipo::Entero, 0, "folioRem"); };
    std::vector<Sentencia> s{leeFolio(), encabezado(v, folio("folio"))};
    for (size_t k = 0; k < RenglonesVenta; ++k)
        s.push_back(renglon(v, k, de("id", Tipo::Entero, 1, "ultimoId"), folio("remision")));
    const double efectivo = std::floor(v.total / 2.0);
    s.push_back(pago(1, efectivo, folio("remision")));
    s.push_back(pago(4, v.total - efectivo, folio("remision")));
    s.push_back(sumaPuntos(v));
    s.push_back(auditoria(de("datoNuevo", Tipo::Texto, 0, "folioRem")));
    return s;
}

std::string claveIdempotencia(std::mt19937_64& g) {
    static constexpr char hex[] = "0123456789abcdef";
    const uint64_t a = g(), b = g();
    std::string s;
    for (unsigned i = 0; i < 32; ++i) {
        if (i == 8 || i == 12 || i == 16 || i == 20) s += '-';
        s += hex[((i < 16 ? a >> (4 * i) : b >> (4 * (i - 16)))) & 15];
    }
    return s;
}

// La misma venta sentencia por sentencia, como una pantalla que guarda paso a paso.
void ventaInteractiva(Estacion& e, const Venta& v) {
    e.comienza();
    try {
        const int64_t folio = primerEntero(e.consulta(leeFolio()));
        e.consulta(encabezado(v, entero("folio", folio)));
        const int64_t id = primerEntero(e.consulta({"select last_insert_rowid() as id", {}}));
        for (size_t k = 0; k < RenglonesVenta; ++k)
            e.consulta(renglon(v, k, entero("id", id), entero("remision", folio)));
        const double efectivo = std::floor(v.total / 2.0);
        e.consulta(pago(1, efectivo, entero("remision", folio)));
        e.consulta(pago(4, v.total - efectivo, entero("remision", folio)));
        e.consulta(sumaPuntos(v));
        e.consulta(auditoria(texto("datoNuevo", std::to_string(folio))));
        e.confirma();
    } catch (...) {
        e.revierte();
        throw;
    }
}

// Una empresa con sus folios, el cliente de mostrador y el catálogo, en lotes.
void siembra(Estacion& e) {
    std::vector<Sentencia> lote{
        {"Insert Into Empresa (empresaID, nombreEmpresaCorto, razonSocial, rfc, activo) Values "
         "(:EmpresaID, :nombre, :nombre, 'XAXX010101000', 1)",
         {entero("EmpresaID", EmpresaID), texto("nombre", "Abarrotes de carga")}},
        {"Insert Into Configura (empresaID, folioRem, folioPagosRemision, folioCot, folioComanda, "
         "clienteDefaultRem, monedaIDRem, feMetodoIDRem) Values (:EmpresaID, 1, 1, 1, 1, "
         ":cliente, 1, 1)",
         {entero("EmpresaID", EmpresaID), entero("cliente", ClienteID)}},
        {"Insert Into Clientes (id, empresaID, nombre, puntos) Values (:cliente, :EmpresaID, "
         "'Venta al Público en General', 0)",
         {entero("EmpresaID", EmpresaID), entero("cliente", ClienteID)}}};
    for (int i = 0; i < Productos; ++i) {
        lote.push_back(
            {"Insert Into Productos (id, empresaID, clave, producto, codigoBarra, unidad, moneda, "
             "existencia, pCompra, precio, porcentajeImpuesto, manejaInventarios, activo) Values "
             "(:id, :EmpresaID, :clave, :producto, :codigoBarra, 1, 1, 1000000000, :pCompra, "
             ":precio, 16, 1, 1)",
             {entero("id", i + 1), entero("EmpresaID", EmpresaID), texto("clave", claveProducto(i)),
              texto("producto", "Producto de carga " + std::to_string(i)),
              texto("codigoBarra", barraProducto(i)), real("pCompra", precioProducto(i) * 0.7),
              real("precio", precioProducto(i))}});
        if (lote.size() >= LoteSiembra || i + 1 == Productos) {
            e.lote(lote, "");
            lote.clear();
        }
    }
}

// ---- Medición ----

struct Medicion {
    size_t ops = 0;
    size_t errores = 0;
    double porSegundo = 0, p50 = 0, p99 = 0;
    std::string primerError;
};

using Fabrica = std::function<std::unique_ptr<Estacion>()>;
using Operacion = std::function<void(Estacion&, std::mt19937_64&)>;

double percentil(const std::vector<float>& ordenadas, double p) {
    if (ordenadas.empty()) return 0;
    const auto n = static_cast<double>(ordenadas.size());
    const auto i = static_cast<size_t>(std::max(1.0, std::ceil(p * n)) - 1);
    return ordenadas[std::min(i, ordenadas.size() - 1)];
}

Medicion mide(int estaciones, std::chrono::milliseconds duracion, const Fabrica& fabrica,
              const Operacion& operacion) {
    const auto n = static_cast<size_t>(estaciones);
    std::vector<std::vector<float>> latencias(n);
    std::vector<size_t> errores(n, 0);
    std::mutex mError;
    std::string primerError;
    auto anota = [&](size_t i, const char* que) {
        ++errores[i];
        std::lock_guard l(mError);
        if (primerError.empty()) primerError = que;
    };
    const size_t tope = MaximoOperaciones / n;
    // Semilla nueva en cada corrida: una clave de idempotencia repetida contestaría sin escribir.
    const uint64_t semilla = (uint64_t{std::random_device{}()} << 32) | std::random_device{}();
    std::latch listos(estaciones + 1);
    std::vector<std::thread> hilos;
    for (size_t i = 0; i < n; ++i) {
        hilos.emplace_back([&, i] {
            std::unique_ptr<Estacion> e;
            try {
                e = fabrica();
            } catch (const std::exception& ex) {
                anota(i, ex.what());
            }
            std::mt19937_64 g(semilla + i * 7919);
            listos.arrive_and_wait();
            if (!e) return;
            auto& lat = latencias[i];
            lat.reserve(1 << 14);
            const auto fin = Reloj::now() + duracion;
            while (lat.size() + errores[i] < tope) {
                const auto t0 = Reloj::now();
                if (t0 >= fin) break;
                try {
                    operacion(*e, g);
                    lat.push_back(
                        std::chrono::duration<float, std::milli>(Reloj::now() - t0).count());
                } catch (const std::exception& ex) {
                    anota(i, ex.what());
                }
            }
        });
    }
    listos.arrive_and_wait();
    const auto inicio = Reloj::now();
    for (auto& h : hilos)
        h.join();
    const double segundos = std::chrono::duration<double>(Reloj::now() - inicio).count();

    Medicion m;
    std::vector<float> todas;
    for (size_t i = 0; i < n; ++i) {
        todas.insert(todas.end(), latencias[i].begin(), latencias[i].end());
        m.errores += errores[i];
    }
    std::sort(todas.begin(), todas.end());
    m.ops = todas.size();
    m.porSegundo = segundos > 0 ? static_cast<double>(m.ops) / segundos : 0;
    m.p50 = percentil(todas, 0.50);
    m.p99 = percentil(todas, 0.99);
    m.primerError = primerError;
    return m;
}

// printf rellena por bytes; los acentos ocupan dos y descuadran la tabla.
std::string ajusta(std::string_view texto, size_t ancho) {
    const auto letras = static_cast<size_t>(
        std::count_if(texto.begin(), texto.end(), [](char c) { return (c & 0xC0) != 0x80; }));
    return std::string(texto) + std::string(ancho > letras ? ancho - letras : 0, ' ');
}

void fila(const char* escenario, int estaciones, const Medicion& s, double cpuPorOp,
          const Medicion& l, const Proceso& mem) {
    const double razon = s.porSegundo > 0 ? l.porSegundo / s.porSegundo : 0;
    std::printf("%s %4d | %9.0f %7.2f %7.2f %6zu %8.0f | %9.0f %7.2f %7.2f %6zu | %6.1fx | %7.1f "
                "%7.1f\n",
                ajusta(escenario, 22).c_str(), estaciones, s.porSegundo, s.p50, s.p99, s.errores,
                cpuPorOp, l.porSegundo, l.p50, l.p99, l.errores, razon, mem.rssMb, mem.hwmMb);
    std::fflush(stdout);
    if (!s.primerError.empty())
        std::fprintf(stderr, "  servicio, primer error: %s\n", s.primerError.c_str());
    if (!l.primerError.empty())
        std::fprintf(stderr, "  local, primer error: %s\n", l.primerError.c_str());
}

int corre(int segundos) {
    const Credenciales cred{cajaplex::prueba::kUsuarioPrueba, cajaplex::prueba::kContrasenaPrueba};
    CarpetaTemporal carpeta;
    std::unique_ptr<cajaplex::prueba::ServicioPrueba> servicio;
    try {
        servicio = std::make_unique<cajaplex::prueba::ServicioPrueba>();
    } catch (const std::exception& e) {
        std::fprintf(stderr, "No arrancó el servicio: %s\n", e.what());
        return 1;
    }

    // La referencia: la misma biblioteca del servicio sobre su propio archivo, sin HTTP.
    fs::create_directories(carpeta.ruta / "local");
    cajaplex::servidor::MotorSqlite motor({(carpeta.ruta / "local" / "cajaplex.db").string()});
    std::mutex escritorLocal;
    try {
        auto c = motor.abreConexion();
        cajaplex::servidor::preparaBase(*c, false);
        EstacionHttp remota(servicio->puerto(), cred);
        siembra(remota);
        EstacionLocal local(motor, escritorLocal);
        siembra(local);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "No se pudo sembrar la base: %s\n", e.what());
        return 1;
    }

    const Fabrica http = [&] { return std::make_unique<EstacionHttp>(servicio->puerto(), cred); };
    const Fabrica enProceso = [&] { return std::make_unique<EstacionLocal>(motor, escritorLocal); };
    struct Escenario {
        const char* nombre;
        Operacion operacion;
    };
    const std::vector<Escenario> escenarios = {
        {"(a) busca por código",
         [](Estacion& e, std::mt19937_64& g) {
             const int p = std::uniform_int_distribution<int>(0, Productos - 1)(g);
             if (e.consulta(busquedaPorBarra(p)).filas.size() != 1)
                 throw std::runtime_error("el código de barras no encontró su producto");
         }},
        {"(b) venta en lote",
         [](Estacion& e, std::mt19937_64& g) {
             const auto r = e.lote(ventaEnLote(nuevaVenta(g)), claveIdempotencia(g));
             if (r.size() != 16) throw std::runtime_error("el lote no contestó 16 resultados");
         }},
        {"(c) venta interactiva",
         [](Estacion& e, std::mt19937_64& g) { ventaInteractiva(e, nuevaVenta(g)); }}};

    std::printf("cajaplex-carga: %d s por medición, %d productos, %u CPU, datos en %s\n", segundos,
                Productos, std::thread::hardware_concurrency(), tipoDeDisco(servicio->carpeta()));
    std::printf("Servicio: pid %d, puerto %d. Local: la biblioteca del servicio sobre SQLite "
                "(WAL, synchronous=FULL), mismos hilos.\n\n",
                servicio->pid(), servicio->puerto());
    std::printf("%-22s %4s | %-41s | %-32s | %7s | %s\n", "", "", "Servicio por HTTP",
                "SQLite en proceso", "Local/", "Memoria serv. MB");
    // "µs CPU" lleva un carácter de dos bytes: su ancho de printf es uno más.
    std::printf("%-22s %4s | %9s %7s %7s %6s %9s | %9s %7s %7s %6s | %7s | %7s %7s\n", "Escenario",
                "Est.", "ops/s", "p50 ms", "p99 ms", "errs", "µs CPU", "ops/s", "p50 ms", "p99 ms",
                "errs", "serv.", "VmRSS", "VmHWM");
    std::printf("%s\n", std::string(134, '-').c_str());

    const auto duracion = std::chrono::milliseconds(segundos * 1000);
    Medicion busca16, lote16;
    double picoMemoria = 0;
    size_t ventasServicio = 0, ventasLocal = 0;
    for (size_t e = 0; e < escenarios.size(); ++e) {
        for (int n : {1, 4, 16}) {
            const double cpuAntes = leeProceso(servicio->pid()).cpuSeg;
            const Medicion s = mide(n, duracion, http, escenarios[e].operacion);
            const Proceso mem = leeProceso(servicio->pid());
            const double cpuPorOp =
                s.ops > 0 ? (mem.cpuSeg - cpuAntes) * 1e6 / static_cast<double>(s.ops) : 0;
            const Medicion l = mide(n, duracion, enProceso, escenarios[e].operacion);
            fila(escenarios[e].nombre, n, s, cpuPorOp, l, mem);
            picoMemoria = std::max(picoMemoria, mem.hwmMb);
            if (n == 16 && e == 0) busca16 = s;
            if (n == 16 && e == 1) lote16 = s;
            if (e > 0) ventasServicio += s.ops, ventasLocal += l.ops;
        }
    }

    // Cada venta contestada con éxito debe estar escrita una vez: una repetición por
    // idempotencia o un folio perdido se notan aquí.
    const Sentencia cuenta{"Select count(*) as n From Remision Where empresaID = :EmpresaID",
                           {entero("EmpresaID", EmpresaID)}};
    try {
        std::printf("\nVentas escritas: servicio %lld de %zu contestadas, local %lld de %zu\n",
                    static_cast<long long>(primerEntero(http()->consulta(cuenta))), ventasServicio,
                    static_cast<long long>(primerEntero(enProceso()->consulta(cuenta))),
                    ventasLocal);
    } catch (const std::exception& ex) {
        std::printf("\nNo se pudieron contar las ventas escritas: %s\n", ex.what());
    }

    auto si = [](bool b) { return b ? "SÍ" : "NO"; };
    const bool metaBusca = busca16.porSegundo >= 5000 && busca16.p99 <= 5 && busca16.errores == 0;
    const bool metaLote = lote16.porSegundo >= 200 && lote16.p99 <= 50 && lote16.errores == 0;
    std::printf("µs CPU: tiempo de CPU del servicio (usuario + sistema) por operación. "
                "Local/serv.: ops/s en proceso entre ops/s del servicio.\n");
    std::printf("Metas (informativas): búsquedas a 16 est. >= 5000/s y p99 <= 5 ms: %s "
                "(%.0f/s, %.2f ms); ventas en lote a 16 est. >= 200/s y p99 <= 50 ms: %s "
                "(%.0f/s, %.2f ms); memoria del servicio < 200 MB: %s (pico VmHWM %.1f MB)\n",
                si(metaBusca), busca16.porSegundo, busca16.p99, si(metaLote), lote16.porSegundo,
                lote16.p99, si(picoMemoria < 200), picoMemoria);
    // El protocolo pide salir con 0 ante SIGTERM; si no, se avisa (la medición ya se hizo).
    if (const int codigo = servicio->detiene(); codigo != 0)
        std::fprintf(stderr, "Aviso: el servicio terminó con código %d tras SIGTERM\n", codigo);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    int segundos = 5;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--segundos" && i + 1 < argc) {
            segundos = std::atoi(argv[++i]);
        } else {
            std::fprintf(stderr, "Uso: cajaplex-carga [--segundos N]  (N de 1 a 120, 5 si no)\n");
            return 2;
        }
    }
    std::signal(SIGPIPE, SIG_IGN);
    try {
        return corre(std::clamp(segundos, 1, 120));
    } catch (const std::exception& e) {
        std::fprintf(stderr, "cajaplex-carga: %s\n", e.what());
        return 1;
    }
}
