#include "datos/Auditoria.h"

#include <utility>

#include "datos/Consulta.h"
#include "datos/ModuloDatos.h"
#include "datos/Transaccion.h"

namespace cajaplex {
namespace {

// Copia local del alta compartida: dos escritores nunca comparten parámetros asignados.
Consulta altaAuditoria(const Sesion& sesion, const RenglonAuditoria& renglon) {
    Consulta alta(ModuloDeDatos.AuditoriasSistema.sql());
    alta.parametro(QStringLiteral("tipoAuditoria")).texto(renglon.tipo);
    alta.parametro(QStringLiteral("usuarioID")).entero(sesion.UsuarioID);
    alta.parametro(QStringLiteral("empresaID")).entero(sesion.EmpresaID);
    alta.parametro(QStringLiteral("datoAnterior")).texto(renglon.datoAnterior);
    alta.parametro(QStringLiteral("datoNuevo")).texto(renglon.datoNuevo);
    alta.parametro(QStringLiteral("comentarios")).texto(renglon.comentarios);
    alta.parametro(QStringLiteral("moduloSistema")).texto(renglon.modulo);
    return alta;
}

} // namespace

void Auditoria::registra(Transaccion& transaccion, const Sesion& sesion,
                         const RenglonAuditoria& renglon) {
    altaAuditoria(sesion, renglon).ejecuta(transaccion);
}

size_t Auditoria::agrega(Lote& lote, const Sesion& sesion, const RenglonAuditoria& renglon) {
    return lote.agrega(altaAuditoria(sesion, renglon));
}

QString Auditoria::imagenDeTipo(const QString& tipo) {
    static const std::pair<const char*, const char*> imagenes[] = {
        {tipoAuditoria::Insercion, "Insercion"},
        {tipoAuditoria::Cancelacion, "Cancelacion"},
        {tipoAuditoria::CorteVenta, "CorteVenta"},
        {tipoAuditoria::CorteCaja, "CorteCaja"},
        {tipoAuditoria::BonificacionPuntos, "Bonificacion"},
        {tipoAuditoria::Actualizacion, "Actualizacion"},
        {tipoAuditoria::Eliminacion, "Cancelacion"},
    };
    for (const auto& [nombre, imagen] : imagenes)
        if (tipo == QString::fromUtf8(nombre)) return QString::fromLatin1(imagen);
    return {};
}

} // namespace cajaplex
