// Lo que el servicio hace al insertar documentos: contadores de folio y existencias.
#include <iostream>
#include <map>
#include <random>

#include "tests/fixtures/DatosPrueba.h"

using namespace cajaplex::prueba;

class Disparadores : public ConServicio {
protected:
    void SetUp() override {
        datos.empresa(1, "Uno");
        datos.empresa(2, "Dos");
    }
};

TEST_F(Disparadores, ContadorDeFolioQuedaUnoAdelanteYNuncaRetrocede) {
    const std::vector<std::pair<std::string, std::string>> tipos = {
        {"Remision", "folioRem"},           {"PagosRemision", "folioPagosRemision"},
        {"Cotizacion", "folioCot"},         {"Requisicion", "folioOC"},
        {"OrdenCompra", "folioRM"},         {"DevolucionOrdenCompra", "folioDevolucionOC"},
        {"AjusteProductos", "folioAjustes"}};
    for (const auto& [tabla, contador] : tipos) {
        SCOPED_TRACE(tabla);
        auto inserta = [&](long long folio) {
            return c.ejecuta("Insert Into " + tabla + " (empresaID, folio) Values (1, :folio)",
                             {{"folio", entero(folio)}});
        };
        EXPECT_TRUE(es(inserta(5), 200));
        EXPECT_EQ(datos.contador(1, contador), 6);
        EXPECT_TRUE(es(inserta(3), 200));
        EXPECT_EQ(datos.contador(1, contador), 6);
        EXPECT_EQ(datos.contador(2, contador), 1);
    }
    // Un pago con varias formas de pago son varias filas con el mismo folio.
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(es(c.ejecuta("Insert Into PagosRemision (empresaID, folio, importe) Values "
                                 "(1, 6, 10)"),
                       200));
    EXPECT_EQ(c.cuenta("PagosRemision Where empresaID = 1 and folio = 6"), 3);
    EXPECT_EQ(datos.contador(1, "folioPagosRemision"), 7);
}

TEST_F(Disparadores, VentaDescuentaSoloConDescontoExistenciasYCancelarDevuelve) {
    datos.producto(1, "A", 100);
    datos.producto(1, "S", 50, false);
    datos.producto(2, "A", 100);

    auto descuenta = datos.venta(1, {{"A", 3}, {"S", 2}, {"A", 1.5}});
    EXPECT_DOUBLE_EQ(datos.existencia(1, "A"), 95.5);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "S"), 50);
    EXPECT_DOUBLE_EQ(datos.existencia(2, "A"), 100);

    auto sinDescontar = datos.venta(1, {{"A", 7}}, false);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "A"), 95.5);

    datos.cancela("Remision", 1, descuenta.folio);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "A"), 100);
    // Cancelar de nuevo, o una venta que no descontó, no mueve nada.
    datos.cancela("Remision", 1, descuenta.folio);
    datos.cancela("Remision", 1, sinDescontar.folio);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "A"), 100);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "S"), 50);
    EXPECT_DOUBLE_EQ(datos.existencia(2, "A"), 100);
}

TEST_F(Disparadores, RecepcionDevolucionYAjustesMuevenYSuCancelacionRevierte) {
    datos.producto(1, "A", 10);
    datos.producto(1, "S", 10, false);
    auto rec = datos.recepcion(1, {{"A", 20}, {"S", 20}});
    EXPECT_DOUBLE_EQ(datos.existencia(1, "A"), 30);
    auto dev = datos.devolucion(1, {{"A", 4}, {"S", 4}});
    EXPECT_DOUBLE_EQ(datos.existencia(1, "A"), 26);
    auto ent = datos.ajuste(1, {{"A", 2.25}}, true);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "A"), 28.25);
    auto sal = datos.ajuste(1, {{"A", 30}}, false);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "A"), -1.75);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "S"), 10);

    datos.cancela("AjusteProductos", 1, sal.folio);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "A"), 28.25);
    datos.cancela("AjusteProductos", 1, ent.folio);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "A"), 26);
    datos.cancela("DevolucionOrdenCompra", 1, dev.folio);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "A"), 30);
    datos.cancela("OrdenCompra", 1, rec.folio);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "A"), 10);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "S"), 10);
    // Cancelar lo ya cancelado no mueve nada.
    for (const auto* tabla : {"OrdenCompra", "DevolucionOrdenCompra", "AjusteProductos"})
        c.exige(std::string("Update ") + tabla + " Set cancelada = 1 Where empresaID = 1");
    EXPECT_DOUBLE_EQ(datos.existencia(1, "A"), 10);
}

TEST_F(Disparadores, KitMueveSusComponentesYNoASiMismo) {
    datos.producto(1, "A", 100);
    datos.producto(1, "C", 100);
    datos.producto(1, "S", 100, false);
    datos.paquete(1, "KIT", {{"A", 2}, {"C", 0.5}, {"S", 3}});

    auto v = datos.venta(1, {{"KIT", 4}});
    EXPECT_DOUBLE_EQ(datos.existencia(1, "A"), 92);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "C"), 98);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "S"), 100);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "KIT"), 0);

    datos.ajuste(1, {{"KIT", 1}}, true);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "A"), 94);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "KIT"), 0);

    datos.cancela("Remision", 1, v.folio);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "A"), 102);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "C"), 100.5);
}

// Existencia = inicial + entradas - salidas del kárdex (unión de las cinco fuentes), tras una
// secuencia aleatoria de documentos en dos empresas con las mismas claves.
TEST_F(Disparadores, KardexCuadraConLaExistencia) {
    const unsigned semilla = 20240611;
    std::cout << "semilla: " << semilla << "\n";
    std::mt19937 azar(semilla);
    auto entre = [&](int a, int b) { return std::uniform_int_distribution<int>(a, b)(azar); };

    const std::vector<std::string> claves = {"A1", "A2", "A3", "A4", "S1"};
    const std::map<std::string, double> inicial = {
        {"A1", 1000}, {"A2", 50}, {"A3", 0}, {"A4", 12.5}, {"S1", 7}};
    datos.empresa(3, "Tres");
    for (long long e : {1, 2, 3})
        for (const auto& clave : claves)
            datos.producto(e, clave, inicial.at(clave), clave != "S1");

    std::map<std::pair<long long, std::string>, double> modelo;
    std::map<long long, std::vector<std::pair<long long, std::vector<Renglon>>>> ventasVigentes;
    for (int i = 0; i < 200; ++i) {
        long long e = entre(1, 2);
        std::vector<Renglon> renglones;
        for (int n = entre(1, 3); n > 0; --n)
            renglones.push_back({claves[static_cast<size_t>(entre(0, 4))], entre(1, 10) / 2.0});
        int signo = 0;
        switch (entre(0, 5)) {
        case 0:
        case 1: {
            bool descuenta = entre(0, 4) > 0;
            auto v = datos.venta(e, renglones, descuenta);
            if (descuenta) {
                ventasVigentes[e].push_back({v.folio, renglones});
                signo = -1;
            }
            break;
        }
        case 2:
            datos.recepcion(e, renglones);
            signo = 1;
            break;
        case 3:
            datos.devolucion(e, renglones);
            signo = -1;
            break;
        default: {
            bool entrada = entre(0, 1) == 1;
            datos.ajuste(e, renglones, entrada);
            signo = entrada ? 1 : -1;
        }
        }
        for (const auto& r : renglones)
            modelo[{e, r.clave}] += signo * r.cantidad;

        auto& vigentes = ventasVigentes[e];
        if (!vigentes.empty() && entre(0, 6) == 0) {
            auto cual = vigentes.begin() + entre(0, static_cast<int>(vigentes.size()) - 1);
            datos.cancela("Remision", e, cual->first);
            for (const auto& r : cual->second)
                modelo[{e, r.clave}] += r.cantidad;
            vigentes.erase(cual);
        }
    }

    const std::string kardex =
        "Select ifnull(sum(case when tipo = 0 then cantidad else -cantidad end), 0) From ("
        " Select A.cantidad, 1 as tipo From RemisionDetalle A, Remision B Where A.remision = "
        "B.folio and A.empresaID = B.empresaID and B.Cancelada = 0 and B.DescontoExistencias = "
        "1 and A.empresaID = :e and A.clave = :clave"
        " Union All Select A.cantidad, 1 From AjusteProductosDetalle A, AjusteProductos B Where "
        "A.ID = B.ID and A.empresaID = B.empresaID and B.esAjusteEntrada = 0 and A.empresaID = "
        ":e and A.clave = :clave"
        " Union All Select A.cantidad, 1 From DevolucionOrdenCompraDetalle A, "
        "DevolucionOrdenCompra B Where A.devolucionOrdenCompra = B.folio and A.empresaID = "
        "B.empresaID and A.empresaID = :e and A.clave = :clave"
        " Union All Select A.cantidad, 0 From OrdenCompraDetalle A, OrdenCompra B Where "
        "A.ordenCompra = B.folio and A.empresaID = B.empresaID and A.empresaID = :e and A.clave "
        "= :clave"
        " Union All Select A.cantidad, 0 From AjusteProductosDetalle A, AjusteProductos B Where "
        "A.ID = B.ID and A.empresaID = B.empresaID and B.esAjusteEntrada = 1 and A.empresaID = "
        ":e and A.clave = :clave)";
    for (long long e : {1, 2, 3})
        for (const auto& clave : claves) {
            SCOPED_TRACE("empresa " + std::to_string(e) + " clave " + clave);
            double existencia = datos.existencia(e, clave);
            if (clave == "S1" || e == 3) {
                EXPECT_DOUBLE_EQ(existencia, inicial.at(clave));
                continue;
            }
            double neto =
                c.valor(kardex, {{"e", entero(e)}, {"clave", texto(clave)}}).get<double>();
            EXPECT_DOUBLE_EQ(existencia, inicial.at(clave) + neto);
            EXPECT_DOUBLE_EQ(existencia, inicial.at(clave) + (modelo[{e, clave}]));
        }
}
