// Fallas del camino de los datos: claves de idempotencia repetidas al confirmar, referencias
// "de" fuera de un lote, disco lleno y cancelaciones que revierten lo que de verdad se movió.
#include <atomic>
#include <filesystem>
#include <iostream>
#include <thread>

#include "tests/fixtures/DatosPrueba.h"

using namespace cajaplex::prueba;

class Fallas : public ConServicio {
protected:
    void SetUp() override {
        datos.empresa(1, "Uno");
        datos.producto(1, "A", 100);
    }
    static Json venta(long long folio) {
        return {sentencia("Insert Into Remision (empresaID, folio, descontoExistencias) Values "
                          "(1, :folio, 1)",
                          {{"folio", entero(folio)}}),
                sentencia("Insert Into RemisionDetalle (id, remision, empresaID, posicion, clave, "
                          "cantidad) Values (:id, :folio, 1, 1, 'A', 2)",
                          {{"id", de(0, "ultimoId")}, {"folio", entero(folio)}})};
    }
};

TEST_F(Fallas, ConfirmarConLaClaveDeUnLoteDeLaMismaTransaccionEs422YLaDejaAbierta) {
    auto t = c.comienzaTransaccion();
    ASSERT_TRUE(es(c.lote(venta(1), conIdempotencia("clave-1", t)), 200));
    auto r = c.confirma(t, conIdempotencia("clave-1"));
    EXPECT_TRUE(es(r, 422, "idempotencia"));
    // La transacción sigue abierta y como estaba.
    EXPECT_EQ(c.cuenta("Remision", {}, enTransaccion(t)), 1);
    EXPECT_EQ(c.cuenta("RemisionDetalle", {}, enTransaccion(t)), 1);
    EXPECT_EQ(c.cuenta("Remision"), 0) << "aún no se confirma";
    auto confirmada = c.confirma(t);
    ASSERT_TRUE(es(confirmada, 200));
    EXPECT_EQ(confirmada.cuerpo["estado"], "confirmada");
    EXPECT_EQ(c.cuenta("Remision"), 1);
    EXPECT_EQ(c.cuenta("RemisionDetalle"), 1);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "A"), 98);

    // La clave de un lote ya confirmado en otra transacción tampoco sirve para confirmar, y
    // tampoco revierte: se confirma con una clave propia.
    auto u = c.comienzaTransaccion();
    ASSERT_TRUE(es(c.lote(venta(2), enTransaccion(u)), 200));
    EXPECT_TRUE(es(c.confirma(u, conIdempotencia("clave-1")), 422, "idempotencia"));
    EXPECT_EQ(c.cuenta("Remision", {}, enTransaccion(u)), 2);
    auto propia = c.confirma(u, conIdempotencia("clave-2"));
    ASSERT_TRUE(es(propia, 200));
    EXPECT_EQ(c.confirma(u, conIdempotencia("clave-2")).cuerpo, propia.cuerpo);
    EXPECT_EQ(c.cuenta("Remision"), 2);

    // Una clave mal formada tampoco revierte.
    auto v = c.comienzaTransaccion();
    ASSERT_TRUE(es(c.lote(venta(3), enTransaccion(v)), 200));
    EXPECT_TRUE(es(c.confirma(v, conIdempotencia(std::string(300, 'x'))), 400, "solicitud"));
    ASSERT_TRUE(es(c.confirma(v), 200));
    EXPECT_EQ(c.cuenta("Remision"), 3);
}

TEST_F(Fallas, UnaSentenciaSolaConReferenciaDeEs400) {
    auto r = c.post(kRutaBase, sentencia("Insert Into Remision (empresaID, folio) Values (1, :f)",
                                         {{"f", de(0, "folio")}})
                                   .dump());
    EXPECT_TRUE(es(r, 400, "solicitud"));
    auto t = c.comienzaTransaccion();
    EXPECT_TRUE(es(c.post(kRutaBase, sentencia("Select :f as f", {{"f", de(0, "ultimoId")}}).dump(),
                          enTransaccion(t)),
                   400, "solicitud"));
    EXPECT_TRUE(es(c.confirma(t), 200)) << "la transacción siguió abierta";
    EXPECT_EQ(c.cuenta("Remision"), 0);
}

TEST_F(Fallas, LaTablaDeMovimientosEsInvisibleParaLasEstaciones) {
    for (const std::string sql :
         {"Select * From cajaplex_movimientos", "Delete From CAJAPLEX_MOVIMIENTOS",
          "Update cajaplex_movimientos Set cantidad = 0",
          "Insert Into cajaplex_movimientos (documento, empresaID, encabezado, renglon, "
          "productoID, cantidad) Values ('Remision', 1, 1, 1, 1, 1)",
          "Select count(*) From Productos Where id In (Select productoID From "
          "\"cajaplex_movimientos\")"})
        EXPECT_TRUE(es(c.ejecuta(sql), 403, "prohibido")) << sql;
}

class DiscoLleno : public ConServicio {
protected:
    // Unas 600 páginas ocupa el esquema; 1500 dejan ~3.5 MiB para datos.
    DiscoLleno() : ConServicio(false, {"--paginas-maximas", "1500"}) {}
};

TEST_F(DiscoLleno, Es503AlmacenamientoSinNadaAMedias) {
    datos.empresa(1, "Uno");
    Respuesta r;
    int guardadas = 0;
    for (int i = 0; i < 100; ++i) {
        r = c.ejecuta("Insert Into Lineas (empresaID, linea) Values (1, randomblob(200000))");
        if (r.estado != 200) break;
        ++guardadas;
    }
    ASSERT_TRUE(es(r, 503, "almacenamiento"));
    ASSERT_GT(guardadas, 0);
    EXPECT_EQ(c.cuenta("Lineas"), guardadas) << "la inserción que no cupo no dejó nada";

    // Lote: la primera sentencia cabe, la segunda no; no queda ninguna.
    auto lote = c.lote({sentencia("Insert Into Remision (empresaID, folio) Values (1, 1)"),
                        sentencia("Insert Into Lineas (empresaID, linea) Values (1, "
                                  "randomblob(2000000))")});
    EXPECT_TRUE(es(lote, 503, "almacenamiento"));
    EXPECT_EQ(lote.cuerpo.value("sentencia", -1), 1) << lote;
    EXPECT_EQ(c.cuenta("Remision"), 0);
    EXPECT_EQ(datos.contador(1, "folioRem"), 1);

    // Transacción: la sentencia que no cupo no deja nada; lo de antes se puede confirmar (o,
    // si SQLite la deshizo entera, la transacción ya no existe y nada quedó a medias).
    auto t = c.comienzaTransaccion();
    ASSERT_TRUE(
        es(c.ejecuta("Insert Into Remision (empresaID, folio) Values (1, 7)", {}, enTransaccion(t)),
           200));
    EXPECT_TRUE(es(c.ejecuta("Insert Into Lineas (empresaID, linea) Values (1, "
                             "randomblob(2000000))",
                             {}, enTransaccion(t)),
                   503, "almacenamiento"));
    auto confirma = c.confirma(t);
    if (confirma.estado == 200) {
        EXPECT_EQ(c.cuenta("Remision"), 1);
    } else {
        EXPECT_TRUE(es(confirma, 404, "transaccion"));
        EXPECT_EQ(c.cuenta("Remision"), 0);
    }
    EXPECT_EQ(c.cuenta("Lineas"), guardadas);

    // Liberado el espacio, todo sigue.
    c.exige("Delete From Lineas");
    EXPECT_TRUE(
        es(c.ejecuta("Insert Into Lineas (empresaID, linea) Values (1, randomblob(200000))"), 200));
    EXPECT_EQ(c.cuenta("Lineas"), 1);
}

// La cancelación revierte exactamente lo que movieron los renglones al escribirse, aunque
// después cambien el kit, la bandera de existencias, la de kit o la clave del producto.
class Cancelaciones : public ConServicio {
protected:
    void SetUp() override {
        datos.empresa(1, "Uno");
        datos.producto(1, "A", 100);
        datos.producto(1, "B", 100);
        datos.producto(1, "C", 100);
        datos.paquete(1, "KIT", {{"A", 2}, {"B", 0.5}});
    }
    void recompone() {
        c.exige("Delete From ProductosPaquetes Where id = (Select id From Productos Where clave = "
                "'KIT')");
        c.exige("Insert Into ProductosPaquetes (id, clave, empresaID, cantidad) Select id, 'C', "
                "1, 7 From Productos Where clave = 'KIT'");
    }
    void todasEn(double a, double b, double c2) {
        EXPECT_DOUBLE_EQ(datos.existencia(1, "A"), a);
        EXPECT_DOUBLE_EQ(datos.existencia(1, "B"), b);
        EXPECT_DOUBLE_EQ(datos.existencia(1, "C"), c2);
    }
};

TEST_F(Cancelaciones, VentaDeKitRecompuesto) {
    auto v = datos.venta(1, {{"KIT", 4}, {"C", 1}});
    todasEn(92, 98, 99);
    recompone();
    datos.cancela("Remision", 1, v.folio);
    todasEn(100, 100, 100);
    datos.cancela("Remision", 1, v.folio);
    c.exige("Update Remision Set cancelada = 0 Where folio = :f", {{"f", entero(v.folio)}});
    datos.cancela("Remision", 1, v.folio);
    todasEn(100, 100, 100);
}

TEST_F(Cancelaciones, VentaDeProductoQueDejoDeLlevarExistenciasOCambioDeClave) {
    auto v = datos.venta(1, {{"A", 3}, {"B", 2}, {"KIT", 1}});
    todasEn(95, 97.5, 100);
    c.exige("Update Productos Set manejaInventarios = 0 Where clave = 'A'");
    c.exige("Update Productos Set clave = 'B-NUEVA' Where clave = 'B'");
    c.exige("Update Productos Set esPaquete = 0 Where clave = 'KIT'");
    c.exige("Update Productos Set manejaInventarios = 1 Where clave = 'KIT'");
    datos.cancela("Remision", 1, v.folio);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "A"), 100);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "B-NUEVA"), 100);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "KIT"), 0);
}

TEST_F(Cancelaciones, VentaQueNoDescontoNoDevuelveNada) {
    auto v = datos.venta(1, {{"A", 3}}, false);
    c.exige("Update Remision Set descontoExistencias = 1 Where folio = :f",
            {{"f", entero(v.folio)}});
    datos.cancela("Remision", 1, v.folio);
    todasEn(100, 100, 100);
}

TEST_F(Cancelaciones, RecepcionDevolucionYAjustes) {
    auto rec = datos.recepcion(1, {{"KIT", 2}, {"C", 5}});
    auto dev = datos.devolucion(1, {{"KIT", 1}, {"C", 1}});
    auto ent = datos.ajuste(1, {{"KIT", 1}, {"C", 2}}, true);
    auto sal = datos.ajuste(1, {{"KIT", 3}, {"C", 3}}, false);
    // A: +4 -2 +2 -6 = -2; B: +1 -0.5 +0.5 -1.5 = -0.5; C: +5 -1 +2 -3 = +3
    todasEn(98, 99.5, 103);
    recompone();
    c.exige("Update Productos Set clave = 'C2' Where clave = 'C'");
    c.exige("Update Productos Set manejaInventarios = 0 Where clave = 'A'");
    datos.cancela("AjusteProductos", 1, sal.folio);
    datos.cancela("AjusteProductos", 1, ent.folio);
    datos.cancela("DevolucionOrdenCompra", 1, dev.folio);
    datos.cancela("OrdenCompra", 1, rec.folio);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "A"), 100);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "B"), 100);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "C2"), 100);
    // Cancelar otra vez no mueve nada.
    for (const auto* tabla : {"OrdenCompra", "DevolucionOrdenCompra", "AjusteProductos"})
        c.exige(std::string("Update ") + tabla + " Set cancelada = 1 Where empresaID = 1");
    EXPECT_DOUBLE_EQ(datos.existencia(1, "A"), 100);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "C2"), 100);
}

// Muchas estaciones a la vez no abren una conexión a la base por cada una: el pool tiene tope
// (32) y las demás esperan su turno sin error.
TEST_F(Fallas, MuchasEstacionesAlaVezConPoolAcotado) {
    constexpr int estaciones = 80;
    std::atomic<int> errores{0};
    std::atomic<int> maximoAbiertas{0};
    std::atomic<bool> listo{false};
    auto cuentaArchivosDeLaBase = [&] {
        int n = 0;
        const std::string base = servicio.carpeta() + "/cajaplex.db";
        std::error_code ec;
        for (const auto& fd : std::filesystem::directory_iterator(
                 "/proc/" + std::to_string(servicio.pid()) + "/fd", ec)) {
            std::error_code ec2;
            if (std::filesystem::read_symlink(fd.path(), ec2).string() == base) ++n;
        }
        return n;
    };
    std::thread vigia([&] {
        while (!listo) {
            maximoAbiertas = std::max(maximoAbiertas.load(), cuentaArchivosDeLaBase());
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    });
    std::vector<std::thread> hilos;
    for (int i = 0; i < estaciones; ++i)
        hilos.emplace_back([&, i] {
            auto cli = servicio.cliente();
            for (int k = 0; k < 6; ++k) {
                auto r = (k % 3 == 0)
                             ? cli.ejecuta("Insert Into Lineas (empresaID, linea) Values (1, :l)",
                                           {{"l", texto(std::to_string(i))}})
                             : cli.ejecuta("With Recursive n(x) As (Select 1 Union All Select "
                                           "x + 1 From n Where x < 60000) Select count(*) as n, "
                                           "(Select count(*) From Lineas) as l From n");
                if (r.estado != 200) ++errores;
            }
        });
    for (auto& h : hilos)
        h.join();
    listo = true;
    vigia.join();
    EXPECT_EQ(errores.load(), 0);
    EXPECT_EQ(c.cuenta("Lineas"), estaciones * 2);
    std::cout << "conexiones a la base abiertas a lo más: " << maximoAbiertas.load() << "\n";
    EXPECT_LE(maximoAbiertas.load(), 33);
}
