// Cancelar documentos de compras contra el servicio real de demostración: lo que movió cada
// documento regresa exactamente (aunque otra estación haya movido la existencia entre tanto), la
// recepción vuelve a abrir su orden de compra, la bitácora anota la cancelación, no se cancela dos
// veces ni sin el derecho de la clase, y una cancelación que falla a la mitad no deja nada.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "datos/MensajesComunes.h"
#include "datos/ModuloDatos.h"
#include "purchasing/CancelacionCompra.h"
#include "tests/fixtures/PruebaPantallas.h"

namespace cajaplex {
namespace {

using namespace prueba;

constexpr int64_t kBebidas = 2; // proveedor de la demostración, de contado

class CancelacionCompraTest : public ConPantallas {
protected:
    void SetUp() override {
        ConPantallas::SetUp();
        admin_ = conDerechos(QStringLiteral("admin"));
    }

    Sesion conDerechos(const QString& usuario) {
        Sesion s = sesion(usuario, 1);
        s.derechos = leeDerechosUsuario(ModuloDeDatos.ConexionBD, s.UsuarioID, s.perfilID);
        return s;
    }

    // Registra como la pantalla: un renglón por clave con su cantidad, al costo del producto.
    int64_t registra(TipoCompra tipo, const std::vector<Renglon>& renglones, bool entrada = true,
                     int64_t ordenOrigen = 0) {
        DocumentoCompra d(ModuloDeDatos.ConexionBD, admin_, tipo);
        d.abre();
        if (ordenOrigen > 0) {
            d.cargaOrden(ordenOrigen);
        } else {
            for (const Renglon& r : renglones) {
                EXPECT_FALSE(d.agrega(QString::fromStdString(r.clave)));
                EXPECT_FALSE(d.cambiaCantidad(d.TransaccionDetalles().size() - 1, r.cantidad));
            }
        }
        EncabezadoCompra e;
        e.proveedor = kBebidas;
        e.moneda = 1;
        e.tipoCambio = QStringLiteral("1");
        e.plazoPago = QStringLiteral("0");
        e.formaPago = 1;
        e.ajusteEntrada = entrada;
        e.ordenOrigen = ordenOrigen;
        return d.registra(e);
    }

    ResultadoCancelacion cancela(TipoCompra tipo, int64_t folio, const Sesion& s) {
        return CancelacionCompra(ModuloDeDatos.ConexionBD, s)
            .cancela(tipo, folio, QStringLiteral("Error de captura"));
    }

    std::string valor(const std::string& sql) { return c.valor(sql).dump(); }
    long long cancelaciones() {
        return c.cuenta("AuditoriasSistema Where tipoAuditoria = 'Cancelación'");
    }
    bool ordenAbierta(int64_t folio) {
        DocumentoCompra d(ModuloDeDatos.ConexionBD, admin_, TipoCompra::Recepcion);
        for (const OrdenAbierta& o : d.ordenesAbiertas())
            if (o.folio == folio) return true;
        return false;
    }

    Sesion admin_;
};

TEST_F(CancelacionCompraTest, LaRecepcionRegresaLoQueMetioYReabreSuOrdenUnaSolaVez) {
    const int64_t orden = registra(TipoCompra::OrdenCompra, {{"1003", 4}, {"1001", 2}});
    const double pinto = datos.existencia(1, "1003"), arroz = datos.existencia(1, "1001");
    const int64_t recepcion = registra(TipoCompra::Recepcion, {}, true, orden);
    EXPECT_FALSE(ordenAbierta(orden));
    EXPECT_DOUBLE_EQ(datos.existencia(1, "1003"), pinto + 4);
    // Otra estación vende uno mientras tanto: la cancelación resta lo que entró, no reescribe.
    c.exige("Update Productos Set existencia = existencia - 1 Where empresaID = 1 and clave = "
            "'1003'");

    const ResultadoCancelacion r = cancela(TipoCompra::Recepcion, recepcion, admin_);
    ASSERT_TRUE(r.cancelada) << r.mensaje.toStdString();
    EXPECT_DOUBLE_EQ(datos.existencia(1, "1003"), pinto - 1);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "1001"), arroz);
    EXPECT_TRUE(ordenAbierta(orden));
    EXPECT_EQ(valor("Select cancelada || '|' || usuarioIDCancelacion || '|' || motivoCancelacion "
                    "|| '|' || (fechaCancelacion is not null) From OrdenCompra Where folio = " +
                    std::to_string(recepcion)),
              "\"1|1|Error de captura|1\"");
    EXPECT_EQ(c.cuenta("AuditoriasSistema Where tipoAuditoria = 'Cancelación' and moduloSistema = "
                       "'Recepción de Mercancía' and datoNuevo = '" +
                       std::to_string(recepcion) + "' and comentarios = 'Error de captura'"),
              1);

    // La segunda vez se rechaza y nada se mueve.
    const ResultadoCancelacion otra = cancela(TipoCompra::Recepcion, recepcion, admin_);
    EXPECT_FALSE(otra.cancelada);
    EXPECT_EQ(otra.mensaje, QStringLiteral("El documento ya está cancelado: Recepción de "
                                           "Mercancía %1")
                                .arg(recepcion));
    EXPECT_EQ(cancela(TipoCompra::Recepcion, 999, admin_).mensaje,
              QStringLiteral("No existe el documento: Recepción de Mercancía 999"));
    EXPECT_DOUBLE_EQ(datos.existencia(1, "1003"), pinto - 1);
    EXPECT_EQ(cancelaciones(), 1);

    // La orden reabierta se recibe de nuevo y vuelve a meter lo suyo.
    registra(TipoCompra::Recepcion, {}, true, orden);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "1003"), pinto + 3);
    EXPECT_FALSE(ordenAbierta(orden));
}

TEST_F(CancelacionCompraTest, DevolucionYAjustesRegresanExactamenteLoQueMovieron) {
    struct Caso {
        TipoCompra tipo;
        bool entrada;
        double cambio;
    };
    for (const Caso& caso :
         {Caso{TipoCompra::Devolucion, true, -3}, Caso{TipoCompra::Ajuste, true, 3},
          Caso{TipoCompra::Ajuste, false, -3}}) {
        SCOPED_TRACE(static_cast<int>(caso.tipo) * 10 + caso.entrada);
        const double antes = datos.existencia(1, "1002");
        const int64_t folio = registra(caso.tipo, {{"1002", 3}}, caso.entrada);
        EXPECT_DOUBLE_EQ(datos.existencia(1, "1002"), antes + caso.cambio);
        const ResultadoCancelacion r = cancela(caso.tipo, folio, admin_);
        ASSERT_TRUE(r.cancelada) << r.mensaje.toStdString();
        EXPECT_DOUBLE_EQ(datos.existencia(1, "1002"), antes);
        EXPECT_FALSE(cancela(caso.tipo, folio, admin_).cancelada);
        EXPECT_DOUBLE_EQ(datos.existencia(1, "1002"), antes);
    }
    EXPECT_EQ(cancelaciones(), 3);
    EXPECT_EQ(c.cuenta("AuditoriasSistema Where tipoAuditoria = 'Cancelación' and moduloSistema = "
                       "'Ajustes'"),
              2);
}

TEST_F(CancelacionCompraTest, SinElDerechoDeSuClaseYConLaOrdenRecibidaNoSeCancelaNada) {
    const int64_t orden = registra(TipoCompra::OrdenCompra, {{"1001", 5}});
    const int64_t recepcion = registra(TipoCompra::Recepcion, {}, true, orden);
    const int64_t ajuste = registra(TipoCompra::Ajuste, {{"1001", 1}}, false);
    const double antes = datos.existencia(1, "1001");

    const Sesion cajero = conDerechos(QStringLiteral("cajero"));
    EXPECT_EQ(cancela(TipoCompra::Recepcion, recepcion, cajero).mensaje,
              QStringLiteral("No tiene permiso para cancelar Recepciones de Mercancía"));
    EXPECT_EQ(cancela(TipoCompra::Ajuste, ajuste, cajero).mensaje,
              QStringLiteral("No tiene permiso para cancelar Ajustes de Inventario"));
    // Con el derecho de ajustes, no el de recepciones.
    c.exige("Update PerfilesUsuariosCompras Set cancelarAjuste = 1 Where perfilID = 2");
    const Sesion conAjustes = conDerechos(QStringLiteral("cajero"));
    EXPECT_FALSE(cancela(TipoCompra::Recepcion, recepcion, conAjustes).cancelada);
    // La orden ya recibida no se cancela mientras su recepción siga vigente.
    EXPECT_EQ(cancela(TipoCompra::OrdenCompra, orden, admin_).mensaje,
              QString::fromUtf8(MensajeOrdenRecibida));
    EXPECT_DOUBLE_EQ(datos.existencia(1, "1001"), antes);
    EXPECT_EQ(valor("Select (Select sum(cancelada) From OrdenCompra) + (Select sum(cancelada) "
                    "From AjusteProductos) + (Select sum(cancelada) From Requisicion)"),
              "0");
    EXPECT_EQ(cancelaciones(), 0);

    EXPECT_TRUE(cancela(TipoCompra::Ajuste, ajuste, conAjustes).cancelada);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "1001"), antes + 1);
    // Una orden sin recibir se cancela y ya no se ofrece para recibir.
    const int64_t otraOrden = registra(TipoCompra::OrdenCompra, {{"1002", 2}});
    EXPECT_TRUE(cancela(TipoCompra::OrdenCompra, otraOrden, admin_).cancelada);
    EXPECT_FALSE(ordenAbierta(otraOrden));
}

// La bitácora de la cancelación (la última sentencia) falla: la recepción sigue vigente, con su
// existencia y su orden recibida.
TEST_F(CancelacionCompraTest, UnaCancelacionQueFallaALaMitadNoDejaNada) {
    escribeConServicioDetenido("CREATE TRIGGER falla_cancelacion BEFORE INSERT ON "
                               "AuditoriasSistema WHEN NEW.tipoAuditoria = 'Cancelación' "
                               "BEGIN SELECT RAISE(ABORT, 'falla inyectada'); END;");
    const int64_t orden = registra(TipoCompra::OrdenCompra, {{"1001", 6}});
    const int64_t recepcion = registra(TipoCompra::Recepcion, {}, true, orden);
    const double antes = datos.existencia(1, "1001");

    const ResultadoCancelacion r = cancela(TipoCompra::Recepcion, recepcion, admin_);
    EXPECT_FALSE(r.cancelada);
    EXPECT_TRUE(r.mensaje.startsWith(QString::fromUtf8(MensajeErrorRegistro)))
        << r.mensaje.toStdString();
    EXPECT_DOUBLE_EQ(datos.existencia(1, "1001"), antes);
    EXPECT_EQ(valor("Select ifnull(cancelada, 0) || '|' || (motivoCancelacion is null) From "
                    "OrdenCompra Where folio = " +
                    std::to_string(recepcion)),
              "\"0|1\"");
    EXPECT_FALSE(ordenAbierta(orden));
    EXPECT_EQ(cancelaciones(), 0);

    // Sin la falla se cancela como si nada hubiera pasado: lo que entró sale una sola vez.
    escribeConServicioDetenido("DROP TRIGGER falla_cancelacion;");
    ASSERT_TRUE(cancela(TipoCompra::Recepcion, recepcion, admin_).cancelada);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "1001"), antes - 6);
    EXPECT_TRUE(ordenAbierta(orden));
}

} // namespace
} // namespace cajaplex
