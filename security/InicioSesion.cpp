#include "security/InicioSesion.h"

#include <utility>

#include <QtDebug>

#include "datos/AjustesEstacion.h"
#include "datos/ControlAcceso.h"
#include "datos/MensajesComunes.h"
#include "datos/ModuloDatos.h"

namespace cajaplex {
namespace {

const char* const SqlEsAdmin = " Select ifnull(esAdmin,0) as esAdmin from Usuarios"
                               " Where nUsuario = :Usuario"
                               " and cajaplex_verifica(:Contrasena, Contrasena) = 1"
                               " and ifnull(activo,0) = 1";

// Empresas de un usuario según UsuariosEmpresa.
const char* const SqlEmpresasUsuario =
    "Select A.usuarioID as UsuarioID, Nombre, B.empresaID, B.nombreEmpresaCorto as NombreEmpresa, "
    "A.usuarioID as ID, 0 as ID2, B.Rfc, ifnull(B.esHombre, 1) as esHombre, "
    "D.controlRestaurantes, B.Logotipo1, A.nombre as NombreDeUsuario "
    "From Usuarios A, Empresa B, UsuariosEmpresa C, Configura D "
    "Where A.nUsuario = :Usuario and cajaplex_verifica(:Contrasena, A.Contrasena) = 1 "
    "and ifnull(A.activo,0) = 1 and ifnull(A.accesaMovil,0) = 1 and ifnull(B.activo,0) = 1 "
    "and A.UsuarioID = C.usuarioID and C.empresaID = B.empresaID and B.empresaID = D.empresaID "
    "order by B.empresaID";

// Un administrador entra a toda empresa activa.
const char* const SqlEmpresasAdmin =
    "Select A.usuarioID as UsuarioID, Nombre, B.empresaID, B.nombreEmpresaCorto as NombreEmpresa, "
    "A.usuarioID as ID, 1 as ID2, B.Rfc, ifnull(B.esHombre, 1) as esHombre, "
    "C.controlRestaurantes, B.Logotipo1, A.nombre as NombreDeUsuario "
    "From Usuarios A, Empresa B, Configura C "
    "Where A.nUsuario = :Usuario and cajaplex_verifica(:Contrasena, A.Contrasena) = 1 "
    "and ifnull(A.activo,0) = 1 and ifnull(A.accesaMovil,0) = 1 and ifnull(B.activo,0) = 1 "
    "and B.empresaID = C.empresaID "
    "order by B.empresaID";

} // namespace

InicioSesion::InicioSesion(TModuloDeDatos& modulo, AjustesEstacion& ajustes, QString dispositivoID)
    : modulo_(modulo), ajustes_(ajustes), dispositivoID_(std::move(dispositivoID)) {}

ResultadoAcceso InicioSesion::valida(const DatosAcceso& datos) {
    const QString direccion = datos.direccion.trimmed();
    bool puertoValido = false;
    const int puerto = datos.puerto.trimmed().toInt(&puertoValido);
    if (direccion.isEmpty()) return {QStringLiteral("Ingrese el Dominio ó IP"), {}};
    if (!puertoValido || puerto < 1 || puerto > 65535)
        return {QStringLiteral("Ingrese el Puerto"), {}};
    if (datos.usuario.isEmpty()) return {QStringLiteral("Ingrese Usuario"), {}};
    if (datos.contrasena.isEmpty()) return {QStringLiteral("Ingrese Contraseña"), {}};
    if (intentosFallidos_ >= IntentosPermitidos)
        return {QStringLiteral("Rebasó intentos permitidos."), {}};

    ajustes_.ponDireccionServidor(direccion);
    ajustes_.ponPuertoServidor(puerto);
    ajustes_.guarda();

    auto& conexion = modulo_.ConexionBD;
    try {
        conexion.desconecta();
        ajustes_.configuraConexion(conexion);
        conexion.conecta();
    } catch (const ErrorServicio& e) {
        qWarning() << "Conexión con el servicio:" << e.mensaje();
        // Otro certificado que el fijado al instalar: no se envió nada.
        if (e.codigo() == CodigoCertificado)
            return {QString::fromUtf8(MensajeCertificadoCambio), {}};
        // El servicio rechaza las credenciales de la estación: la dieron de baja.
        if (e.estadoHttp() == 401)
            return {QString::fromUtf8(MensajeDispositivoNoAutorizado) + dispositivoID_, {}};
        return {QStringLiteral("Error de conexión, verifique los datos introducidos."), {}};
    }

    QList<Sesion> empresas;
    try {
        if (!dispositivoAutorizado(conexion, dispositivoID_))
            return {QString::fromUtf8(MensajeDispositivoNoAutorizado) + dispositivoID_, {}};
        const bool esAdmin = consultaEsAdmin(datos);
        // Sin renglón la contraseña no es la suya (o el usuario no está activo): la consulta de
        // empresas verificaría en balde otra vez, y contaría otro intento fallido en el freno.
        if (esAdmin || !modulo_.TablaLogeoLocalBD.fin())
            empresas = consultaEmpresas(datos, esAdmin);
    } catch (const ErrorServicio& e) {
        qWarning() << "Validación del usuario:" << e.mensaje();
        return {QString::fromUtf8(MensajeErrorLectura), {}};
    }
    if (empresas.isEmpty()) {
        ++intentosFallidos_;
        return {QStringLiteral("Usuario y/o Contraseña erróneas"), {}};
    }
    // Solo el usuario: la contraseña no se conserva en la estación.
    usuarioAceptado_ = datos.usuario;
    return {{}, empresas};
}

bool InicioSesion::consultaEsAdmin(const DatosAcceso& datos) {
    Consulta& consulta = modulo_.TablaLogeoLocalBD;
    consulta.asignaSql(QString::fromUtf8(SqlEsAdmin));
    consulta.parametro(QStringLiteral("Usuario")).texto(datos.usuario);
    consulta.parametro(QStringLiteral("Contrasena")).texto(datos.contrasena);
    consulta.abre();
    return !consulta.fin() && consulta.campo(QStringLiteral("esAdmin")).comoEntero() == 1;
}

QList<Sesion> InicioSesion::consultaEmpresas(const DatosAcceso& datos, bool esAdmin) {
    Consulta& consulta = modulo_.TablaLogeoLocalBD;
    consulta.asignaSql(QString::fromUtf8(esAdmin ? SqlEmpresasAdmin : SqlEmpresasUsuario));
    consulta.parametro(QStringLiteral("Usuario")).texto(datos.usuario);
    consulta.parametro(QStringLiteral("Contrasena")).texto(datos.contrasena);
    consulta.abre();
    QList<Sesion> empresas;
    for (const Registro& r : consulta) {
        Sesion s;
        s.UsuarioID = r.campo(QStringLiteral("UsuarioID")).comoEntero();
        s.EmpresaID = r.campo(QStringLiteral("empresaID")).comoEntero();
        s.NombreEmpresa = r.campo(QStringLiteral("NombreEmpresa")).comoTexto();
        s.NombreDeUsuario = r.campo(QStringLiteral("NombreDeUsuario")).comoTexto();
        s.Rfc = r.campo(QStringLiteral("Rfc")).comoTexto();
        s.esHombre = r.campo(QStringLiteral("esHombre")).comoEntero() != 0;
        s.controlRestaurantes = r.campo(QStringLiteral("controlRestaurantes")).comoBooleano();
        s.Logotipo1 = r.campo(QStringLiteral("Logotipo1")).comoBlob();
        s.esAdmin = esAdmin;
        empresas << s;
    }
    // El perfil y sus derechos son del usuario, iguales en cada empresa.
    if (!empresas.isEmpty()) {
        int64_t perfilID = 0;
        const DerechosPerfil derechos =
            leeDerechosUsuario(modulo_.ConexionBD, empresas.first().UsuarioID, perfilID);
        for (Sesion& s : empresas) {
            s.perfilID = perfilID;
            s.derechos = derechos;
        }
    }
    return empresas;
}

} // namespace cajaplex
