#include "sales/CancelacionVenta.h"

#include "datos/Auditoria.h"
#include "datos/Consulta.h"
#include "datos/MensajesComunes.h"
#include "datos/Transaccion.h"
#include "sales/RegistroVenta.h"

namespace cajaplex {

namespace {

const char* const SqlVenta =
    "Select ifnull(cancelada, 0) as cancelada, ifnull(cliente, 0) as cliente, "
    "ifnull(puntosRemision, 0) as puntosRemision From Remision "
    "Where empresaID = :EmpresaID and folio = :Folio";

// Lo que la venta gastó del monedero: lo aplicado en los pagos de contado y los anticipos vigentes
// de una venta a crédito.
const char* const SqlMonedero =
    "Select (Select ifnull(sum(P.utilizados), 0) From RemisionPagos P, FEMetodosPago F "
    "Where P.empresaID = :EmpresaID and P.remision = :Folio and F.empresaID = P.empresaID "
    "and F.id = P.feMetodoID and F.descripcion like :Monedero) + "
    "(Select ifnull(sum(A.importe), 0) From PagosRemision A, FEMetodosPago F "
    "Where A.empresaID = :EmpresaID and A.folioRemision = :Folio and ifnull(A.cancelada, 0) = 0 "
    "and F.empresaID = A.empresaID and F.id = A.feMetodoID and F.descripcion like :Monedero) "
    "as monedero";

const char* const SqlCancela =
    "Update Remision Set cancelada = 1, fechaCancelacion = datetime('now','localtime'), "
    "usuarioIDCancelacion = :UsuarioID, motivoCancelacion = :Motivo "
    "Where empresaID = :EmpresaID and folio = :Folio";

// Una sola actualización: devolver lo gastado antes de quitar lo ganado no pasa por un saldo
// negativo que el servicio rechazaría.
const char* const SqlPuntos = "Update Clientes Set Puntos = Puntos + :Devuelto - :Retirado "
                              "Where empresaID = :EmpresaID and id = :Cliente";

} // namespace

CancelacionVenta::CancelacionVenta(ConexionBD& conexion, const Sesion& sesion)
    : conexion_(conexion), sesion_(sesion) {}

ResultadoCancelacion CancelacionVenta::cancela(int64_t folio, const QString& motivo) {
    ResultadoCancelacion r;
    if (!sesion_.puedeVentas(QStringLiteral("cancelarRemision"))) {
        r.mensaje = QString::fromUtf8(MensajeSinPermisoCancelar);
        return r;
    }
    const QString folioTexto = QString::number(folio);
    try {
        Transaccion t(conexion_);
        Consulta venta(SqlVenta);
        venta.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        venta.parametro(QStringLiteral("Folio")).entero(folio);
        venta.abre(t);
        if (venta.numeroRegistros() == 0) {
            r.mensaje = QString::fromUtf8(MensajeRemisionInexistente) + folioTexto;
            return r;
        }
        if (venta.campo(QStringLiteral("cancelada")).comoBooleano()) {
            r.mensaje = QString::fromUtf8(MensajeRemisionCancelada) + folioTexto;
            return r;
        }
        const int64_t cliente = venta.campo(QStringLiteral("cliente")).comoEntero();
        const double ganados = venta.campo(QStringLiteral("puntosRemision")).comoReal();
        Consulta gastado(SqlMonedero);
        gastado.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        gastado.parametro(QStringLiteral("Folio")).entero(folio);
        gastado.parametro(QStringLiteral("Monedero"))
            .texto(QLatin1Char('%') + QString::fromUtf8(FormaPagoMonedero) + QLatin1Char('%'));
        gastado.abre(t);
        const double monedero = gastado.campo(QStringLiteral("monedero")).comoReal();

        Lote lote(conexion_);
        Consulta cancela(SqlCancela);
        cancela.parametro(QStringLiteral("UsuarioID")).entero(sesion_.UsuarioID);
        cancela.parametro(QStringLiteral("Motivo")).texto(motivo);
        cancela.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        cancela.parametro(QStringLiteral("Folio")).entero(folio);
        lote.agrega(cancela);
        if (ganados > 0 || monedero > 0) {
            Consulta puntos(SqlPuntos);
            puntos.parametro(QStringLiteral("Devuelto")).real(monedero);
            puntos.parametro(QStringLiteral("Retirado")).real(ganados);
            puntos.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
            puntos.parametro(QStringLiteral("Cliente")).entero(cliente);
            lote.agrega(puntos);
        }
        Auditoria::agrega(lote, sesion_,
                          {QString::fromUtf8(tipoAuditoria::Cancelacion),
                           QString::fromUtf8(ModuloRemisiones),
                           folioTexto,
                           {},
                           motivo});
        lote.ejecuta(t);
        t.confirma();
        r.cancelada = true;
    } catch (const ErrorServicio& e) {
        r.mensaje = e.mensaje().contains(QString::fromUtf8(MensajeSaldoMonedero))
                        ? QString::fromUtf8(MensajeSaldoMonedero)
                        : QString::fromUtf8(MensajeErrorRegistro) + QLatin1Char('\n') + e.mensaje();
    }
    return r;
}

} // namespace cajaplex
