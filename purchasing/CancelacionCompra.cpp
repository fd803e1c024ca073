#include "purchasing/CancelacionCompra.h"

#include "datos/Auditoria.h"
#include "datos/Consulta.h"
#include "datos/MensajesComunes.h"
#include "datos/Transaccion.h"

namespace cajaplex {

namespace {

// Lo que decide si se puede cancelar: la orden recibida no, la recepción con pagos vigentes no.
QString sqlEstado(TipoCompra tipo) {
    QString columnas = QStringLiteral("ifnull(A.cancelada, 0) as cancelada");
    if (tipo == TipoCompra::OrdenCompra)
        columnas += QStringLiteral(", ifnull(A.consolidada, 0) as consolidada");
    if (tipo == TipoCompra::Recepcion)
        columnas += QStringLiteral(
            ", ifnull(A.folioRequisicion, 0) as folioRequisicion, (Select count(*) From "
            "PagosOrdenCompra P Where P.empresaID = A.empresaID and P.folioOrdenCompra = A.folio "
            "and ifnull(P.cancelada, 0) = 0) as pagos");
    return QStringLiteral("Select ") + columnas + QStringLiteral(" From ") +
           QString::fromLatin1(datosTipo(tipo).encabezado) +
           QStringLiteral(" A Where A.empresaID = :EmpresaID and A.folio = :Folio");
}

QString sqlCancela(TipoCompra tipo) {
    return QStringLiteral("Update ") + QString::fromLatin1(datosTipo(tipo).encabezado) +
           QStringLiteral(" Set cancelada = 1, fechaCancelacion = datetime('now','localtime'), "
                          "usuarioIDCancelacion = :UsuarioID, motivoCancelacion = :Motivo "
                          "Where empresaID = :EmpresaID and folio = :Folio");
}

const char* const SqlReabreOrden =
    "Update Requisicion Set consolidada = 0 Where empresaID = :EmpresaID and folio = :Orden";

} // namespace

bool puedeCancelarCompra(const Sesion& sesion, TipoCompra tipo) {
    return sesion.puedeCompras(QString::fromLatin1(datosTipo(tipo).derechoCancelar));
}

CancelacionCompra::CancelacionCompra(ConexionBD& conexion, const Sesion& sesion)
    : conexion_(conexion), sesion_(sesion) {}

ResultadoCancelacion CancelacionCompra::cancela(TipoCompra tipo, int64_t folio,
                                                const QString& motivo) {
    const DatosTipoCompra& d = datosTipo(tipo);
    ResultadoCancelacion r;
    if (!puedeCancelarCompra(sesion_, tipo)) {
        r.mensaje =
            QString::fromUtf8(MensajeSinPermisoCancelarCompra) + QString::fromUtf8(d.plural);
        return r;
    }
    const QString folioTexto = QString::number(folio);
    const QString documento = QString::fromUtf8(d.documento) + QLatin1Char(' ') + folioTexto;
    try {
        Transaccion t(conexion_);
        Consulta estado(sqlEstado(tipo));
        estado.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        estado.parametro(QStringLiteral("Folio")).entero(folio);
        estado.abre(t);
        if (estado.numeroRegistros() == 0) {
            r.mensaje = QString::fromUtf8(MensajeCompraInexistente) + documento;
            return r;
        }
        if (estado.campo(QStringLiteral("cancelada")).comoBooleano()) {
            r.mensaje = QString::fromUtf8(MensajeCompraCancelada) + documento;
            return r;
        }
        int64_t ordenRecibida = 0;
        if (tipo == TipoCompra::OrdenCompra &&
            estado.campo(QStringLiteral("consolidada")).comoEntero() != 0) {
            r.mensaje = QString::fromUtf8(MensajeOrdenRecibida);
            return r;
        }
        if (tipo == TipoCompra::Recepcion) {
            if (estado.campo(QStringLiteral("pagos")).comoEntero() > 0) {
                r.mensaje = QString::fromUtf8(MensajeRecepcionConPagos);
                return r;
            }
            ordenRecibida = estado.campo(QStringLiteral("folioRequisicion")).comoEntero();
        }

        Lote lote(conexion_);
        Consulta cancela(sqlCancela(tipo));
        cancela.parametro(QStringLiteral("UsuarioID")).entero(sesion_.UsuarioID);
        cancela.parametro(QStringLiteral("Motivo")).texto(motivo);
        cancela.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        cancela.parametro(QStringLiteral("Folio")).entero(folio);
        lote.agrega(cancela);
        if (ordenRecibida > 0) {
            Consulta reabre(SqlReabreOrden);
            reabre.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
            reabre.parametro(QStringLiteral("Orden")).entero(ordenRecibida);
            lote.agrega(reabre);
        }
        Auditoria::agrega(lote, sesion_,
                          {QString::fromUtf8(tipoAuditoria::Cancelacion),
                           QString::fromUtf8(d.nombre),
                           folioTexto,
                           {},
                           motivo});
        lote.ejecuta(t);
        t.confirma();
        r.cancelada = true;
    } catch (const ErrorServicio& e) {
        r.mensaje = QString::fromUtf8(MensajeErrorRegistro) + QLatin1Char('\n') + e.mensaje();
    }
    return r;
}

} // namespace cajaplex
