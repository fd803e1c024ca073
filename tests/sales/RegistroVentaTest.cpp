// Registrar una venta contra el servicio real: lo que queda guardado (contado, crédito, monedero,
// documento de origen), todo o nada con una falla inyectada en cada escritura, la respuesta
// perdida, 16 cajas a la vez y dos cajas que gastan los mismos puntos.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <latch>
#include <string>
#include <thread>
#include <vector>

#include <httplib.h>
#include <sqlcipher/sqlite3.h>

#include "datos/MensajesComunes.h"
#include "tests/sales/VentaPrueba.h"

namespace cajaplex {
namespace {

using namespace prueba;

class RegistroVentaTest : public ConServicio {
protected:
    void SetUp() override {
        apunta(conexion, servicio);
        empresaVenta(c, 1);
        articulo(c, {"A", 116});
        articulo(c, {"P", 116, 16, 0, 100, 1, 10});
    }

    DocumentoVenta venta(int64_t cliente = Publico) {
        DocumentoVenta v(conexion, sesion);
        v.abre();
        v.asignaCliente(cliente);
        return v;
    }

    // Cajas con su propia conexión que registran la misma venta al mismo tiempo.
    std::vector<ResultadoRegistro> aLaVez(int cajas, const DocumentoVenta& v,
                                          const CierreVenta& cierre) {
        std::vector<ResultadoRegistro> resultados(cajas);
        std::latch salida(cajas);
        std::vector<std::thread> hilos;
        for (int i = 0; i < cajas; ++i)
            hilos.emplace_back([&, i] {
                ConexionBD propia;
                apunta(propia, servicio);
                RegistroVenta registro(propia, sesion);
                salida.arrive_and_wait();
                resultados[i] = registro.registra(v, cierre);
            });
        for (auto& h : hilos)
            h.join();
        return resultados;
    }

    Json fila(const std::string& sql) { return c.exige(sql).filas().at(0); }
    double puntos(int64_t cliente) {
        return c.valor("Select puntos From Clientes Where id = :id", {{"id", entero(cliente)}})
            .get<double>();
    }

    ConexionBD conexion;
    Sesion sesion = sesionVenta();
};

TEST_F(RegistroVentaTest, ContadoGuardaEncabezadoRenglonesPagosYBitacora) {
    DocumentoVenta v = venta();
    ASSERT_FALSE(v.agrega(QStringLiteral("A")));
    ASSERT_FALSE(v.cambiaCantidad(0, 2));
    CierreVenta cierre = contado(v);
    cierre.pagos = {{Efectivo, QStringLiteral("EFECTIVO"), 300, 200},
                    {Tarjeta, QStringLiteral("TARJETA DE CRÉDITO"), 32, 32}};
    cierre.formaPagoDefault = Tarjeta; // no es la primera: se guarda
    RegistroVenta registro(conexion, sesion);
    const ResultadoRegistro r = registro.registra(v, cierre);
    ASSERT_TRUE(r.registrada) << r.mensaje.toStdString();
    EXPECT_EQ(r.folio, 1);

    EXPECT_EQ(fila("Select folio, feMetodoID, subtotalRemision, ivaRemision, totalRemision, "
                   "montoPagado, saldoPendiente, pagada, plazoPago, pagoMixto, entregada, "
                   "descontoExistencias, cancelada, costoRemision, fechaPago is not null "
                   "From Remision"),
              Json({1, 2, 200.0, 32.0, 232.0, 232.0, 0.0, 1, 0, 1, 1, 1, 0, 116.0, 1}));
    // Modo 1: el precio con IVA se guarda sin él.
    EXPECT_EQ(fila("Select D.id = R.ID, D.remision, D.precio, D.importe, D.cantidad, D.posicion, "
                   "D.pLista From RemisionDetalle D, Remision R"),
              Json({1, 1, 100.0, 200.0, 2.0, 1, 1}));
    EXPECT_EQ(
        c.exige("Select feMetodoID, importe, utilizados From RemisionPagos Order By 1").filas(),
        Json({{1, 300.0, 200.0}, {2, 32.0, 32.0}}));
    EXPECT_EQ(fila("Select tipoAuditoria, moduloSistema, datoNuevo From AuditoriasSistema"),
              Json({"Inserción", "Ventas -> Remisiones", "1"}));
    EXPECT_EQ(datos.existencia(1, "A"), 98.0);
    EXPECT_EQ(datos.contador(1, "folioRem"), 2);

    // La forma por omisión es la primera: no se manda. Una forma entregada sin aplicar no hace
    // pago mixto, pero su renglón sí se guarda.
    cierre.formaPagoDefault = Efectivo;
    cierre.pagos[1].utilizados = 0;
    ASSERT_EQ(registro.registra(v, cierre).folio, 2);
    EXPECT_EQ(fila("Select feMetodoID is null, pagoMixto From Remision Where folio = 2"),
              Json({1, 0}));
    EXPECT_EQ(c.cuenta("RemisionPagos Where remision = 2"), 2);
}

TEST_F(RegistroVentaTest, CreditoConAnticiposYSaldo) {
    DocumentoVenta v = venta();
    ASSERT_FALSE(v.agrega(QStringLiteral("A")));
    CierreVenta cierre = contado(v);
    cierre.plazoPago = 15;
    cierre.pagos = {{Efectivo, QStringLiteral("EFECTIVO"), 115.995, 115.995f}};
    RegistroVenta registro(conexion, sesion);
    ASSERT_TRUE(registro.registra(v, cierre).registrada);
    cierre.pagos = {{Efectivo, QStringLiteral("EFECTIVO"), 50, 50}};
    ASSERT_TRUE(registro.registra(v, cierre).registrada);

    // Lo que falta no pasa de 0.01: saldada, con fecha de pago de la base.
    EXPECT_EQ(c.exige("Select folio, pagada, plazoPago, montoPagado, saldoPendiente, fechaPago is "
                      "not null From Remision Order By folio")
                  .filas(),
              Json({{1, 0, 15, 0.0, 0.0, 1}, {2, 0, 15, 0.0, 66.0, 0}}));
    EXPECT_EQ(c.exige("Select P.folio, P.idRemision = R.ID, P.folioRemision, P.descripcion, "
                      "P.observaciones, P.importeAplicado, P.cliente From PagosRemision P, "
                      "Remision R Where R.folio = P.folioRemision Order By P.folio")
                  .filas(),
              Json({{1, 1, 1, "Pago a remisión 1", "Anticipo a Remisión: 1", 115.995, 1},
                    {2, 1, 2, "Pago a remisión 2", "Anticipo a Remisión: 2", 50.0, 1}}));
    EXPECT_EQ(c.cuenta("AuditoriasSistema Where moduloSistema = 'CxC -> Pagos Remisión' and "
                       "comentarios like 'Anticipo a Remisión: %'"),
              2);
    EXPECT_EQ(c.cuenta("RemisionPagos"), 0);
    EXPECT_EQ(datos.contador(1, "folioPagosRemision"), 3);
}

TEST_F(RegistroVentaTest, MonederoGastaYGanaEnLaMismaVentaSinQuedarEnNegativo) {
    articulo(c, {"Q", 50, 16, 0, 100, 1, 10});
    DocumentoVenta v = venta(ConPuntos); // nivel 2: P a 104.40
    ASSERT_FALSE(v.agrega(QStringLiteral("P")));
    ASSERT_FALSE(v.agrega(QStringLiteral("Q")));
    ASSERT_FALSE(v.cambiaDescuento(1, 100)); // regalo: importe 0 y sin puntos
    CierreVenta cierre = contado(v);
    const double total = v.totales().total;
    cierre.pagos = {{Efectivo, QStringLiteral("EFECTIVO"), total - 30, float(total - 30)},
                    {Monedero, QStringLiteral("MONEDERO ELECTRONICO"), 30, 30}};
    RegistroVenta registro(conexion, sesion);
    ASSERT_TRUE(registro.registra(v, cierre).registrada);
    EXPECT_NEAR(puntos(ConPuntos), 50 + 10.44 - 30, 1e-9);
    EXPECT_NEAR(fila("Select puntosRemision From Remision")[0].get<double>(), 10.44, 1e-9);
    EXPECT_EQ(fila("Select importe From RemisionDetalle Where clave = 'Q'"), Json({0.0}));

    // Gastar más de lo que queda aun con lo que gana esta venta (30.44 + 10.44): nada se guarda
    // y la venta queda igual para reintentar.
    cierre.pagos[1].importe = 45;
    cierre.pagos[1].utilizados = 45;
    const ResultadoRegistro r = registro.registra(v, cierre);
    EXPECT_FALSE(r.registrada);
    EXPECT_FALSE(registro.pendiente());
    EXPECT_EQ(r.mensaje, QStringLiteral("Saldo insuficiente en Monedero Electrónico"));
    EXPECT_EQ(c.cuenta("Remision"), 1);
    EXPECT_NEAR(puntos(ConPuntos), 30.44, 1e-9);
    EXPECT_EQ(datos.existencia(1, "P"), 99.0);
    EXPECT_EQ(v.RemisionDetalles().size(), 2u);
    EXPECT_DOUBLE_EQ(v.totales().total, total);
}

TEST_F(RegistroVentaTest, MarcaLaComandaPagadaYLaCotizacionRemisionada) {
    c.exige("Insert Into NodosComida (id, empresaID, clave, status) Values (7, 1, 'M7', 2)");
    c.exige("Insert Into Comanda (id, empresaID, folio, nodoComida, fechaCierre) Values "
            "(5, 1, 5, 7, datetime('now'))");
    c.exige("Insert Into Cotizacion (empresaID, folio) Values (1, 3)");
    DocumentoVenta v = venta();
    ASSERT_FALSE(v.agrega(QStringLiteral("A")));
    CierreVenta cierre = contado(v);
    cierre.origen = {OrigenVenta::Tipo::Comanda, 5, 0};
    RegistroVenta registro(conexion, sesion);
    ASSERT_TRUE(registro.registra(v, cierre).registrada);
    cierre.origen = {OrigenVenta::Tipo::Cotizacion, 0, 3};
    ASSERT_TRUE(registro.registra(v, cierre).registrada);

    EXPECT_EQ(fila("Select remision, fechaPago is not null From Comanda"), Json({1, 1}));
    EXPECT_EQ(fila("Select status From NodosComida"), Json({0}));
    EXPECT_EQ(fila("Select Remision From Cotizacion"), Json({2}));

    // La misma comanda otra vez (ya cobrada), una cancelada y una reabierta: la venta entera se
    // rechaza y nada queda guardado.
    c.exige("Insert Into Comanda (id, empresaID, folio, nodoComida, fechaCierre, cancelada) "
            "Values (6, 1, 6, 7, datetime('now'), 1), (8, 1, 8, 7, null, 0)");
    const auto remisiones = c.cuenta("Remision");
    for (int comanda : {5, 6, 8}) {
        cierre.origen = {OrigenVenta::Tipo::Comanda, comanda, 0};
        const auto r = registro.registra(v, cierre);
        EXPECT_FALSE(r.registrada) << comanda;
        EXPECT_TRUE(r.mensaje.startsWith(QStringLiteral("La Comanda ya no está por cobrar")))
            << r.mensaje.toStdString();
    }
    EXPECT_EQ(c.cuenta("Remision"), remisiones);
    EXPECT_EQ(fila("Select remision From Comanda Where id = 5"), Json({1}));
}

// Un disparador de prueba por tabla que la venta escribe: cuenta las escrituras y aborta la
// número `objetivo` (0 lo apaga). Se agrega con el servicio detenido.
void instalaFalla(const std::string& archivo) {
    std::string sql = "CREATE TABLE FallaPrueba (objetivo INTEGER, cuenta INTEGER);"
                      "INSERT INTO FallaPrueba VALUES (0, 0);";
    for (const char* tabla : {"Remision", "RemisionDetalle", "RemisionPagos", "PagosRemision",
                              "Clientes", "Cotizacion", "AuditoriasSistema"})
        for (const char* op : {"INSERT", "UPDATE"})
            sql += std::string("CREATE TRIGGER falla_") + tabla + "_" + op + " BEFORE " + op +
                   " ON " + tabla +
                   " WHEN (SELECT objetivo FROM FallaPrueba) > 0 BEGIN"
                   " UPDATE FallaPrueba SET cuenta = cuenta + 1;"
                   " SELECT RAISE(ABORT, 'falla inyectada') FROM FallaPrueba"
                   " WHERE cuenta = objetivo; END;";
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(archivo.c_str(), &db), SQLITE_OK);
    char* error = nullptr;
    const int rc = sqlite3_exec(db, sql.c_str(), nullptr, nullptr, &error);
    const std::string detalle = error ? error : "";
    sqlite3_free(error);
    sqlite3_close(db);
    ASSERT_EQ(rc, SQLITE_OK) << detalle;
}

TEST_F(RegistroVentaTest, FallaEnCualquierEscrituraNoDejaNada) {
    c.exige("Insert Into Cotizacion (empresaID, folio) Values (1, 3)");
    servicio.detiene();
    instalaFalla(servicio.carpeta() + "/cajaplex.db");
    servicio.reinicia();
    apunta(conexion, servicio);
    Cliente c2 = servicio.cliente();
    Datos d2(c2);

    DocumentoVenta v = venta(ConPuntos);
    ASSERT_FALSE(v.agrega(QStringLiteral("P")));
    ASSERT_FALSE(v.agrega(QStringLiteral("A")));
    const double total = v.totales().total;
    CierreVenta contadoMonedero = contado(v);
    contadoMonedero.pagos = {{Efectivo, QStringLiteral("EFECTIVO"), total - 10, float(total - 10)},
                             {Monedero, QStringLiteral("MONEDERO ELECTRONICO"), 10, 10}};
    contadoMonedero.origen = {OrigenVenta::Tipo::Cotizacion, 0, 3};
    CierreVenta credito = contadoMonedero;
    credito.plazoPago = 30;
    credito.pagos.pop_back();
    credito.pagos[0].importe = credito.pagos[0].utilizados = 20;

    // Contado: encabezado, 2 pagos, 2 renglones, cotización, 2 de puntos y bitácora. Crédito:
    // encabezado, anticipo con su saldo y su bitácora, 2 renglones, cotización, puntos y bitácora.
    const std::pair<const CierreVenta*, int> casos[] = {{&contadoMonedero, 9}, {&credito, 9}};
    for (const auto& [cierre, escrituras] : casos) {
        RegistroVenta registro(conexion, sesion);
        int falla = 1;
        for (;; ++falla) {
            c2.exige("Update FallaPrueba Set objetivo = :k, cuenta = 0", {{"k", entero(falla)}});
            const ResultadoRegistro r = registro.registra(v, *cierre);
            if (r.registrada) break;
            ASSERT_TRUE(r.mensaje.startsWith(QString::fromUtf8(MensajeErrorRegistro)));
            ASSERT_TRUE(r.mensaje.contains(QStringLiteral("falla inyectada"))) << falla;
            for (const char* tabla : {"Remision", "RemisionDetalle", "RemisionPagos",
                                      "PagosRemision", "AuditoriasSistema"})
                ASSERT_EQ(c2.cuenta(tabla), 0) << tabla << " con la falla en " << falla;
            ASSERT_EQ(c2.valor("Select Remision From Cotizacion"), Json());
            ASSERT_EQ(d2.existencia(1, "P"), 100.0);
            ASSERT_EQ(d2.contador(1, "folioRem"), 1);
            ASSERT_EQ(c2.valor("Select puntos From Clientes Where id = 2"), Json(50.0));
            ASSERT_EQ(v.RemisionDetalles().size(), 2u);
            ASSERT_EQ(v.totales().total, total);
        }
        EXPECT_EQ(falla - 1, escrituras);
        for (const char* sql : {"Update FallaPrueba Set objetivo = 0",
                                "Delete From RemisionDetalle", "Delete From RemisionPagos",
                                "Delete From PagosRemision", "Delete From AuditoriasSistema",
                                "Delete From Remision", "Update Cotizacion Set Remision = null",
                                "Update Configura Set folioRem = 1, folioPagosRemision = 1",
                                "Update Productos Set existencia = 100",
                                "Update Clientes Set puntos = 50 Where id = 2"})
            c2.exige(sql);
    }
}

// Reenvía al servicio y se tarda con la primera respuesta de un lote, más de lo que la estación
// espera: el servicio ya lo guardó pero la estación no se entera.
class ProxyLento {
public:
    ProxyLento(int destino, std::chrono::milliseconds retraso) {
        servidor_.set_keep_alive_max_count(1);
        servidor_.Post(".*", [=, this](const httplib::Request& req, httplib::Response& res) {
            httplib::Client cliente("127.0.0.1", destino);
            httplib::Headers h;
            for (const char* n : {"Authorization", "Idempotencia", "X-Transaccion"})
                if (req.has_header(n)) h.emplace(n, req.get_header_value(n));
            auto r = cliente.Post(req.path, h, req.body, "application/json");
            if (req.path.ends_with("/lote") && lotes_++ == 0) std::this_thread::sleep_for(retraso);
            res.status = r ? r->status : 502;
            if (r) res.set_content(r->body, "application/json");
        });
        puerto_ = servidor_.bind_to_any_port("127.0.0.1");
        hilo_ = std::thread([this] { servidor_.listen_after_bind(); });
    }
    ~ProxyLento() {
        servidor_.stop();
        hilo_.join();
    }
    int puerto() const { return puerto_; }
    int lotes() const { return lotes_; }

private:
    httplib::Server servidor_;
    std::atomic<int> lotes_{0};
    int puerto_ = 0;
    std::thread hilo_;
};

TEST_F(RegistroVentaTest, RespuestaPerdidaSeReintentaYQuedaUnaVenta) {
    DocumentoVenta v = venta();
    ASSERT_FALSE(v.agrega(QStringLiteral("A")));
    ProxyLento proxy(servicio.puerto(), std::chrono::milliseconds(1500));
    conexion.configura(QStringLiteral("127.0.0.1"), proxy.puerto(),
                       QString::fromStdString(kUsuarioPrueba),
                       QString::fromStdString(kContrasenaPrueba));
    conexion.tiempos(std::chrono::milliseconds(1000), std::chrono::milliseconds(300));
    RegistroVenta registro(conexion, sesion);
    const ResultadoRegistro r = registro.registra(v, contado(v));
    EXPECT_TRUE(r.registrada) << r.mensaje.toStdString();
    EXPECT_EQ(r.folio, 1);
    EXPECT_GE(proxy.lotes(), 2);
    EXPECT_EQ(c.cuenta("Remision"), 1);
    EXPECT_EQ(c.cuenta("AuditoriasSistema"), 1);
    EXPECT_EQ(datos.existencia(1, "A"), 99.0);
}

TEST_F(RegistroVentaTest, DieciseisCajasALaVezTomanFoliosDistintos) {
    DocumentoVenta v = venta();
    ASSERT_FALSE(v.agrega(QStringLiteral("A")));
    const CierreVenta cierre = contado(v);
    constexpr int Cajas = 16;
    const auto resultados = aLaVez(Cajas, v, cierre);
    std::vector<int64_t> folios;
    for (const auto& r : resultados) {
        EXPECT_TRUE(r.registrada) << r.mensaje.toStdString();
        folios.push_back(r.folio);
    }
    std::sort(folios.begin(), folios.end());
    for (int i = 0; i < Cajas; ++i)
        EXPECT_EQ(folios[i], i + 1);
    EXPECT_EQ(c.cuenta("Remision"), Cajas);
    EXPECT_EQ(datos.existencia(1, "A"), 100.0 - Cajas);
}

TEST_F(RegistroVentaTest, DosCajasGastanLosUltimosPuntosYSoloUnaPasa) {
    DocumentoVenta v = venta(ConPuntos);
    ASSERT_FALSE(v.agrega(QStringLiteral("A")));
    CierreVenta cierre = contado(v);
    const double total = v.totales().total;
    cierre.pagos = {{Efectivo, QStringLiteral("EFECTIVO"), total - 50, float(total - 50)},
                    {Monedero, QStringLiteral("MONEDERO ELECTRONICO"), 50, 50}};
    const auto resultados = aLaVez(2, v, cierre);
    EXPECT_NE(resultados[0].registrada, resultados[1].registrada);
    const auto& rechazada = resultados[0].registrada ? resultados[1] : resultados[0];
    EXPECT_EQ(rechazada.mensaje, QStringLiteral("Saldo insuficiente en Monedero Electrónico"));
    EXPECT_EQ(puntos(ConPuntos), 0.0);
    EXPECT_EQ(c.cuenta("Remision"), 1);
}

} // namespace
} // namespace cajaplex
