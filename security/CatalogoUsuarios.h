#pragma once

#include <cstdint>
#include <vector>

#include <QList>
#include <QString>

#include "datos/Consulta.h"
#include "datos/Sesion.h"

namespace cajaplex {

class ConexionBD;

// Módulo con que los usuarios firman la bitácora.
inline constexpr const char* ModuloUsuarios = "Usuarios -> Usuarios";

// Los rechazos al almacenar, en el orden en que se revisan.
inline constexpr const char* MensajeUsuarioVacio = "Ingrese el Usuario";
inline constexpr const char* MensajeUsuarioExiste = "El Usuario ya existe";
inline constexpr const char* MensajeNombreVacio = "Ingrese el Nombre del Usuario";
inline constexpr const char* MensajeContrasenaVacia = "Ingrese la Contraseña";
inline constexpr const char* MensajeContrasenasDistintas = "Las contraseñas no coinciden";
inline constexpr const char* MensajePerfilVacio = "Seleccione el Perfil del Usuario";
inline constexpr const char* MensajeUltimoAdministrador =
    "No puede quitar al último Administrador activo";
inline constexpr const char* MensajeDesactivarseASiMismo = "No puede desactivar su propio Usuario";

// El valor con que se guarda la contraseña: su hash, calculado en el servicio. El inicio de
// sesión lo compara con cajaplex_verifica.
inline constexpr const char* SqlValorContrasena = "cajaplex_hash(:Contrasena)";

struct DatosUsuario {
    int64_t usuarioID = 0; // 0: alta
    QString nUsuario;
    QString nombre;
    int64_t perfilID = 0;
    QString perfil; // nombre del perfil, para la lista y la bitácora
    bool activo = true;
    // Sin acceso móvil la consulta del inicio de sesión no lo deja entrar.
    bool accesaMovil = true;
    bool esAdmin = false;
    // Empresas activas a las que puede entrar (UsuariosEmpresa).
    QList<int64_t> empresas;
};

struct EmpresaUsuario {
    int64_t empresaID = 0;
    QString nombre;
};

// Los usuarios del sistema (globales, sin empresa) y las empresas a las que entran. Cada cambio
// va en una transacción del servicio con su renglón de bitácora, que nunca lleva la contraseña.
class CatalogoUsuarios {
public:
    CatalogoUsuarios(ConexionBD& conexion, const Sesion& sesion);

    // Por nombre, sin empresas.
    std::vector<DatosUsuario> consulta();
    std::vector<EmpresaUsuario> empresasActivas();
    // Las empresas activas del usuario.
    QList<int64_t> empresasDe(int64_t usuarioID);
    // Vacío si se almacenó (usuario.usuarioID queda con la llave); si no, el primer motivo de
    // rechazo. En un cambio, contraseña y confirmación vacías conservan la contraseña actual.
    // `anterior` es lo leído antes de editar, para la bitácora (nullptr en un alta).
    QString almacena(DatosUsuario& usuario, const QString& contrasena, const QString& confirmacion,
                     const DatosUsuario* anterior);

    Consulta ConsultaUsuarios;
    Consulta ConsultaEmpresas;
    Consulta EmpresasUsuario;
    Consulta UsuarioRepetido;
    Consulta EstadoUsuario;
    Consulta OtrosAdministradores;
    Consulta InsertaUsuario;
    Consulta UsuarioInsertado;
    Consulta ActualizaUsuario;
    Consulta ActualizaContrasena;
    Consulta BorraEmpresasUsuario;
    Consulta InsertaEmpresaUsuario;

private:
    QString rechazo(Transaccion& t, const DatosUsuario& usuario, const QString& contrasena,
                    const QString& confirmacion);

    ConexionBD& conexion_;
    const Sesion& sesion_;
};

} // namespace cajaplex
