#include "restaurant/CancelacionComanda.h"

#include "datos/Auditoria.h"
#include "datos/Consulta.h"
#include "datos/Transaccion.h"

namespace cajaplex {
namespace {

const char* const SqlComanda =
    "Select folio, ifnull(cancelada, 0) as cancelada, (fechaPago is not null) as pagada, "
    "ifnull(nodoComida, 0) as nodoComidaComanda From Comanda "
    "Where empresaID = :EmpresaID and id = :IDComanda";

const char* const SqlComandaDelNodo =
    "Select id From Comanda Where empresaID = :EmpresaID and nodoComida = :NodoComida "
    "and fechaApertura is not null and fechaPago is null and cancelada = 0 "
    "Order By id desc limit 1";

const char* const SqlCancela =
    "Update Comanda Set Cancelada = 1, fechaCancelacion = Getdate(), motivoCancelacion = "
    ":Motivo, usuarioIDCancelacion = :UsuarioID Where empresaID = :EmpresaID and id = :IDComanda "
    "and cancelada = 0 and fechaPago is null";

const char* const SqlLiberaNodo =
    " Update NodosComida Set Status = 0 Where empresaID = :EmpresaID And id = :NodoComida";

} // namespace

CancelacionComanda::CancelacionComanda(ConexionBD& conexion, const Sesion& sesion)
    : conexion_(conexion), sesion_(sesion) {}

bool CancelacionComanda::permitida() const {
    return sesion_.puedeVentas(QStringLiteral("cancelarComanda"));
}

int64_t CancelacionComanda::comandaDelNodo(int64_t nodoID) {
    Consulta consulta(conexion_, QString::fromUtf8(SqlComandaDelNodo));
    consulta.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    consulta.parametro(QStringLiteral("NodoComida")).entero(nodoID);
    consulta.abre();
    return consulta.numeroRegistros() == 0 ? 0 : consulta.campo(QStringLiteral("id")).comoEntero();
}

ResultadoCancelacion CancelacionComanda::cancela(int64_t comandaID, const QString& motivo) {
    ResultadoCancelacion r;
    if (!permitida()) {
        r.mensaje = QString::fromUtf8(MensajeSinPermisoCancelarComanda);
        return r;
    }
    Transaccion t(conexion_);
    Consulta comanda(conexion_, QString::fromUtf8(SqlComanda));
    comanda.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    comanda.parametro(QStringLiteral("IDComanda")).entero(comandaID);
    comanda.abre(t);
    if (comanda.numeroRegistros() == 0) {
        r.mensaje = QString::fromUtf8(MensajeComandaInexistente) + QString::number(comandaID);
        return r;
    }
    const QString folio = QString::number(comanda.campo(QStringLiteral("folio")).comoEntero());
    if (comanda.campo(QStringLiteral("cancelada")).comoBooleano()) {
        r.mensaje = QString::fromUtf8(MensajeComandaCancelada) + folio;
        return r;
    }
    if (comanda.campo(QStringLiteral("pagada")).comoBooleano()) {
        r.mensaje = QString::fromUtf8(MensajeComandaPagada) + folio;
        return r;
    }
    const int64_t nodo = comanda.campo(QStringLiteral("nodoComidaComanda")).comoEntero();

    Consulta cancela(conexion_, QString::fromUtf8(SqlCancela));
    cancela.parametro(QStringLiteral("Motivo")).texto(motivo);
    cancela.parametro(QStringLiteral("UsuarioID")).entero(sesion_.UsuarioID);
    cancela.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    cancela.parametro(QStringLiteral("IDComanda")).entero(comandaID);
    cancela.ejecuta(t);
    if (nodo != 0) {
        Consulta libera(conexion_, QString::fromUtf8(SqlLiberaNodo));
        libera.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        libera.parametro(QStringLiteral("NodoComida")).entero(nodo);
        libera.ejecuta(t);
    }
    Auditoria::registra(t, sesion_,
                        {QString::fromUtf8(tipoAuditoria::Cancelacion),
                         QString::fromUtf8(ModuloCancelacionComanda),
                         QStringLiteral("Comanda: %1 Nodo: %2").arg(folio).arg(nodo),
                         {},
                         motivo});
    t.confirma();
    r.cancelada = true;
    return r;
}

} // namespace cajaplex
