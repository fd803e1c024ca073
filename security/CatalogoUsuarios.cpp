#include "security/CatalogoUsuarios.h"

#include "datos/Auditoria.h"
#include "datos/ConexionBD.h"
#include "datos/Transaccion.h"

namespace cajaplex {
namespace {

const char* const SqlConsultaUsuarios =
    "Select A.usuarioID, A.nUsuario, A.nombre, ifnull(A.perfilID,0) as perfilID,\n"
    "B.Nombre as Perfil, ifnull(A.esAdmin,0) as esAdmin, ifnull(A.activo,0) as activo,\n"
    "ifnull(A.accesaMovil,0) as accesaMovil\n"
    "From Usuarios A Left Join PerfilesUsuarios B On B.perfilID = A.perfilID\n"
    "Order By A.nombre, A.nUsuario";

const char* const SqlConsultaEmpresas = "Select empresaID, nombreEmpresaCorto From Empresa\n"
                                        "Where ifnull(activo,0) = 1\n"
                                        "Order By empresaID";

const char* const SqlEmpresasUsuario =
    "Select A.empresaID From UsuariosEmpresa A, Empresa B\n"
    "Where A.usuarioID = :UsuarioID and A.empresaID = B.empresaID and ifnull(B.activo,0) = 1\n"
    "Order By A.empresaID";

// El inicio de sesión compara el nombre tal cual; aquí se evita también el mismo nombre con otras
// mayúsculas, que confundiría a quien entra.
const char* const SqlUsuarioRepetido = "Select Count(*) as Veces From Usuarios\n"
                                       "Where lower(nUsuario) = lower(:nUsuario)\n"
                                       "and usuarioID <> :UsuarioID";

const char* const SqlEstadoUsuario =
    "Select ifnull(esAdmin,0) as esAdmin, ifnull(activo,0) as activo,\n"
    "ifnull(accesaMovil,0) as accesaMovil From Usuarios Where usuarioID = :UsuarioID";

// Administradores que aún pueden entrar: activos y con acceso, como lo pide el inicio de sesión.
const char* const SqlOtrosAdministradores =
    "Select Count(*) as Veces From Usuarios\n"
    "Where ifnull(esAdmin,0) = 1 and ifnull(activo,0) = 1 and ifnull(accesaMovil,0) = 1\n"
    "and usuarioID <> :UsuarioID";

const char* const SqlUsuarioInsertado = "select last_insert_rowid() as id";

const char* const SqlActualizaUsuario =
    "Update Usuarios Set nUsuario = :nUsuario, nombre = :nombre, perfilID = :perfilID,\n"
    "esAdmin = :esAdmin, activo = :activo, accesaMovil = :accesaMovil\n"
    "Where usuarioID = :UsuarioID";

// Las filas de empresas inactivas no se ven en la pantalla y se conservan.
const char* const SqlBorraEmpresasUsuario =
    "Delete From UsuariosEmpresa Where usuarioID = :UsuarioID\n"
    "and empresaID in (Select empresaID From Empresa Where ifnull(activo,0) = 1)";

const char* const SqlInsertaEmpresaUsuario =
    "Insert Into UsuariosEmpresa (usuarioID, empresaID, acceso)\n"
    "Values (:UsuarioID, :EmpresaID, 1)";

QString sqlInsertaUsuario() {
    return QStringLiteral("Insert Into Usuarios (nUsuario, contrasena, nombre, perfilID, esAdmin, "
                          "activo, accesaMovil)\nValues (:nUsuario, ") +
           QString::fromUtf8(SqlValorContrasena) +
           QStringLiteral(", :nombre, :perfilID, :esAdmin, :activo, :accesaMovil)");
}

QString sqlActualizaContrasena() {
    return QStringLiteral("Update Usuarios Set contrasena = ") +
           QString::fromUtf8(SqlValorContrasena) + QStringLiteral("\nWhere usuarioID = :UsuarioID");
}

bool administradorActivo(bool esAdmin, bool activo, bool accesaMovil) {
    return esAdmin && activo && accesaMovil;
}

QString siNo(bool valor) {
    return valor ? QStringLiteral("SÍ") : QStringLiteral("NO");
}

// Lo que la bitácora guarda de un usuario; nunca la contraseña.
QString textoUsuario(const DatosUsuario& u) {
    QStringList empresas;
    for (int64_t e : u.empresas)
        empresas << QString::number(e);
    return QStringLiteral("Usuario: %1 Nombre: %2 Perfil: %3 Activo: %4 Acceso Móvil: %5 "
                          "Administrador: %6 Empresas: %7")
        .arg(u.nUsuario, u.nombre, u.perfil, siNo(u.activo), siNo(u.accesaMovil), siNo(u.esAdmin),
             empresas.join(QStringLiteral(", ")));
}

} // namespace

CatalogoUsuarios::CatalogoUsuarios(ConexionBD& conexion, const Sesion& sesion)
    : ConsultaUsuarios(conexion, QString::fromUtf8(SqlConsultaUsuarios)),
      ConsultaEmpresas(conexion, QString::fromUtf8(SqlConsultaEmpresas)),
      EmpresasUsuario(conexion, QString::fromUtf8(SqlEmpresasUsuario)),
      UsuarioRepetido(conexion, QString::fromUtf8(SqlUsuarioRepetido)),
      EstadoUsuario(conexion, QString::fromUtf8(SqlEstadoUsuario)),
      OtrosAdministradores(conexion, QString::fromUtf8(SqlOtrosAdministradores)),
      InsertaUsuario(conexion, sqlInsertaUsuario()),
      UsuarioInsertado(conexion, QString::fromUtf8(SqlUsuarioInsertado)),
      ActualizaUsuario(conexion, QString::fromUtf8(SqlActualizaUsuario)),
      ActualizaContrasena(conexion, sqlActualizaContrasena()),
      BorraEmpresasUsuario(conexion, QString::fromUtf8(SqlBorraEmpresasUsuario)),
      InsertaEmpresaUsuario(conexion, QString::fromUtf8(SqlInsertaEmpresaUsuario)),
      conexion_(conexion), sesion_(sesion) {}

std::vector<DatosUsuario> CatalogoUsuarios::consulta() {
    ConsultaUsuarios.abre();
    std::vector<DatosUsuario> usuarios;
    usuarios.reserve(static_cast<size_t>(ConsultaUsuarios.numeroRegistros()));
    for (const Registro& r : ConsultaUsuarios) {
        DatosUsuario u;
        u.usuarioID = r.campo(QStringLiteral("usuarioID")).comoEntero();
        u.nUsuario = r.campo(QStringLiteral("nUsuario")).comoTexto();
        u.nombre = r.campo(QStringLiteral("nombre")).comoTexto();
        u.perfilID = r.campo(QStringLiteral("perfilID")).comoEntero();
        u.perfil = r.campo(QStringLiteral("Perfil")).comoTexto();
        u.esAdmin = r.campo(QStringLiteral("esAdmin")).comoEntero() == 1;
        u.activo = r.campo(QStringLiteral("activo")).comoEntero() == 1;
        u.accesaMovil = r.campo(QStringLiteral("accesaMovil")).comoEntero() == 1;
        usuarios.push_back(u);
    }
    ConsultaUsuarios.cierra();
    return usuarios;
}

std::vector<EmpresaUsuario> CatalogoUsuarios::empresasActivas() {
    ConsultaEmpresas.abre();
    std::vector<EmpresaUsuario> empresas;
    for (const Registro& r : ConsultaEmpresas)
        empresas.push_back({r.campo(QStringLiteral("empresaID")).comoEntero(),
                            r.campo(QStringLiteral("nombreEmpresaCorto")).comoTexto()});
    ConsultaEmpresas.cierra();
    return empresas;
}

QList<int64_t> CatalogoUsuarios::empresasDe(int64_t usuarioID) {
    EmpresasUsuario.parametro(QStringLiteral("UsuarioID")).entero(usuarioID);
    EmpresasUsuario.abre();
    QList<int64_t> empresas;
    for (const Registro& r : EmpresasUsuario)
        empresas << r.campo(QStringLiteral("empresaID")).comoEntero();
    EmpresasUsuario.cierra();
    return empresas;
}

QString CatalogoUsuarios::rechazo(Transaccion& t, const DatosUsuario& usuario,
                                  const QString& contrasena, const QString& confirmacion) {
    UsuarioRepetido.parametro(QStringLiteral("nUsuario")).texto(usuario.nUsuario);
    UsuarioRepetido.parametro(QStringLiteral("UsuarioID")).entero(usuario.usuarioID);
    UsuarioRepetido.abre(t);
    if (UsuarioRepetido.campo(QStringLiteral("Veces")).comoEntero() > 0)
        return QString::fromUtf8(MensajeUsuarioExiste);
    if (usuario.nombre.isEmpty()) return QString::fromUtf8(MensajeNombreVacio);
    const bool alta = usuario.usuarioID == 0;
    if (alta && contrasena.isEmpty() && confirmacion.isEmpty())
        return QString::fromUtf8(MensajeContrasenaVacia);
    if (contrasena != confirmacion) return QString::fromUtf8(MensajeContrasenasDistintas);
    if (usuario.perfilID == 0) return QString::fromUtf8(MensajePerfilVacio);
    if (alta) return {};

    // Sin ningún administrador que pueda entrar nadie podría volver a dar permisos.
    EstadoUsuario.parametro(QStringLiteral("UsuarioID")).entero(usuario.usuarioID);
    EstadoUsuario.abre(t);
    const bool eraAdministrador =
        !EstadoUsuario.fin() &&
        administradorActivo(EstadoUsuario.campo(QStringLiteral("esAdmin")).comoEntero() == 1,
                            EstadoUsuario.campo(QStringLiteral("activo")).comoEntero() == 1,
                            EstadoUsuario.campo(QStringLiteral("accesaMovil")).comoEntero() == 1);
    if (eraAdministrador &&
        !administradorActivo(usuario.esAdmin, usuario.activo, usuario.accesaMovil)) {
        OtrosAdministradores.parametro(QStringLiteral("UsuarioID")).entero(usuario.usuarioID);
        OtrosAdministradores.abre(t);
        if (OtrosAdministradores.campo(QStringLiteral("Veces")).comoEntero() == 0)
            return QString::fromUtf8(MensajeUltimoAdministrador);
    }
    if (usuario.usuarioID == sesion_.UsuarioID && !usuario.activo)
        return QString::fromUtf8(MensajeDesactivarseASiMismo);
    return {};
}

QString CatalogoUsuarios::almacena(DatosUsuario& usuario, const QString& contrasena,
                                   const QString& confirmacion, const DatosUsuario* anterior) {
    usuario.nUsuario = usuario.nUsuario.trimmed();
    usuario.nombre = usuario.nombre.trimmed();
    if (usuario.nUsuario.isEmpty()) return QString::fromUtf8(MensajeUsuarioVacio);

    // Las revisiones que leen la base van en la transacción del registro: otra estación no puede
    // tomar el nombre ni quitar otro administrador entre la revisión y el registro.
    Transaccion t(conexion_);
    const QString motivo = rechazo(t, usuario, contrasena, confirmacion);
    if (!motivo.isEmpty()) return motivo;

    auto liga = [&](Consulta& c) {
        c.parametro(QStringLiteral("nUsuario")).texto(usuario.nUsuario);
        c.parametro(QStringLiteral("nombre")).texto(usuario.nombre);
        c.parametro(QStringLiteral("perfilID")).entero(usuario.perfilID);
        c.parametro(QStringLiteral("esAdmin")).booleano(usuario.esAdmin);
        c.parametro(QStringLiteral("activo")).booleano(usuario.activo);
        c.parametro(QStringLiteral("accesaMovil")).booleano(usuario.accesaMovil);
    };
    const bool alta = usuario.usuarioID == 0;
    int64_t usuarioID = usuario.usuarioID;
    const bool cambiaContrasena = !alta && !contrasena.isEmpty();
    if (alta) {
        liga(InsertaUsuario);
        InsertaUsuario.parametro(QStringLiteral("Contrasena")).texto(contrasena);
        InsertaUsuario.ejecuta(t);
        UsuarioInsertado.abre(t);
        usuarioID = UsuarioInsertado.campo(QStringLiteral("id")).comoEntero();
    }

    Lote lote(conexion_);
    if (!alta) {
        liga(ActualizaUsuario);
        ActualizaUsuario.parametro(QStringLiteral("UsuarioID")).entero(usuarioID);
        lote.agrega(ActualizaUsuario);
        if (cambiaContrasena) {
            ActualizaContrasena.parametro(QStringLiteral("Contrasena")).texto(contrasena);
            ActualizaContrasena.parametro(QStringLiteral("UsuarioID")).entero(usuarioID);
            lote.agrega(ActualizaContrasena);
        }
    }
    BorraEmpresasUsuario.parametro(QStringLiteral("UsuarioID")).entero(usuarioID);
    lote.agrega(BorraEmpresasUsuario);
    for (int64_t empresa : usuario.empresas) {
        InsertaEmpresaUsuario.parametro(QStringLiteral("UsuarioID")).entero(usuarioID);
        InsertaEmpresaUsuario.parametro(QStringLiteral("EmpresaID")).entero(empresa);
        lote.agrega(InsertaEmpresaUsuario);
    }
    Auditoria::agrega(lote, sesion_,
                      {alta ? tipoAuditoria::Insercion : tipoAuditoria::Actualizacion,
                       QString::fromUtf8(ModuloUsuarios), textoUsuario(usuario),
                       anterior ? textoUsuario(*anterior) : QString(),
                       cambiaContrasena ? QStringLiteral("Se cambió la contraseña") : QString()});
    lote.ejecuta(t);
    t.confirma();
    usuario.usuarioID = usuarioID;
    return {};
}

} // namespace cajaplex
