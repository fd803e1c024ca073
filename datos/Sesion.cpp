#include "datos/Sesion.h"

#include "datos/Consulta.h"

namespace cajaplex {
namespace {

// Los renglones de derechos de un perfil: cada columna booleana (menos perfilID) a su valor.
QHash<QString, bool> leeRenglonDerechos(ConexionBD& conexion, const char* tabla, int64_t perfilID) {
    Consulta consulta(conexion, QStringLiteral("Select * From %1 Where perfilID = :perfilID")
                                    .arg(QString::fromLatin1(tabla)));
    consulta.parametro(QStringLiteral("perfilID")).entero(perfilID);
    consulta.abre();
    QHash<QString, bool> derechos;
    if (consulta.fin()) return derechos;
    for (const QString& nombre : consulta.registros().columnas()) {
        if (nombre.compare(QStringLiteral("perfilID"), Qt::CaseInsensitive) == 0) continue;
        derechos.insert(nombre, consulta.campo(nombre).comoEntero() != 0);
    }
    return derechos;
}

} // namespace

DerechosPerfil leeDerechosUsuario(ConexionBD& conexion, int64_t usuarioID, int64_t& perfilID) {
    Consulta usuario(conexion, QStringLiteral("Select ifnull(perfilID, 0) as perfilID From Usuarios"
                                              " Where usuarioID = :UsuarioID"));
    usuario.parametro(QStringLiteral("UsuarioID")).entero(usuarioID);
    usuario.abre();
    perfilID = usuario.fin() ? 0 : usuario.campo(QStringLiteral("perfilID")).comoEntero();
    DerechosPerfil d;
    Consulta menus(conexion,
                   QStringLiteral("Select B.menú as Menu From PermisosSistema B"
                                  " Where B.perfilID = :perfilID and ifnull(B.acceso,0) = 1"));
    menus.parametro(QStringLiteral("perfilID")).entero(perfilID);
    menus.abre();
    for (const Registro& r : menus)
        d.menus.insert(r.campo(QStringLiteral("Menu")).comoTexto());
    d.ventas = leeRenglonDerechos(conexion, "PerfilesUsuariosVentas", perfilID);
    d.compras = leeRenglonDerechos(conexion, "PerfilesUsuariosCompras", perfilID);
    d.cuentasPorCobrar = leeRenglonDerechos(conexion, "PerfilesUsuariosCxC", perfilID);
    return d;
}

} // namespace cajaplex
