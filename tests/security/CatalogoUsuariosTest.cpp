// Usuarios y perfiles sin pantallas, contra el servicio real de demostración: las reglas que
// protegen el acceso (el último administrador, nombres repetidos, contraseñas) y lo que se guarda.
#include <gtest/gtest.h>

#include <functional>

#include "datos/ConexionBD.h"
#include "security/CatalogoPerfiles.h"
#include "security/CatalogoUsuarios.h"
#include "tests/fixtures/DatosPrueba.h"
#include "tests/security/AccesoPrueba.h"

namespace cajaplex {
namespace {

using namespace prueba;

class CatalogoUsuariosTest : public ConServicio {
protected:
    CatalogoUsuariosTest() : ConServicio(true) {}

    void SetUp() override {
        conexion.configura(QStringLiteral("127.0.0.1"), servicio.puerto(),
                           QString::fromStdString(kUsuarioDemo),
                           QString::fromStdString(kUsuarioDemo));
        sesion.UsuarioID = 1;
        sesion.EmpresaID = 1;
        sesion.esAdmin = true;
    }

    // El usuario de la demostración como lo lista el catálogo, con sus empresas.
    DatosUsuario usuario(const QString& nUsuario) {
        for (DatosUsuario& u : usuarios.consulta())
            if (u.nUsuario == nUsuario) {
                u.empresas = usuarios.empresasDe(u.usuarioID);
                return u;
            }
        ADD_FAILURE() << "sin usuario " << nUsuario.toStdString();
        return {};
    }

    // Cambia al usuario sin tocar su contraseña; devuelve el rechazo.
    QString cambia(const QString& nUsuario, const std::function<void(DatosUsuario&)>& cambio) {
        const DatosUsuario anterior = usuario(nUsuario);
        DatosUsuario nuevo = anterior;
        cambio(nuevo);
        return usuarios.almacena(nuevo, {}, {}, &anterior);
    }

    std::string contrasena(const std::string& nUsuario) {
        return c
            .valor("Select contrasena From Usuarios Where nUsuario = :u", {{"u", texto(nUsuario)}})
            .get<std::string>();
    }

    // Con un módulo de datos propio, como otra estación.
    QList<int64_t> empresasAlEntrar(const QString& usuario, const QString& contrasena) {
        TModuloDeDatos modulo;
        return prueba::empresasAlEntrar(modulo, servicio.puerto(), usuario, contrasena);
    }

    ConexionBD conexion;
    Sesion sesion;
    CatalogoUsuarios usuarios{conexion, sesion};
    CatalogoPerfiles perfiles{conexion, sesion};
};

TEST_F(CatalogoUsuariosTest, SiempreQuedaUnAdministradorQuePuedaEntrar) {
    const QString ultimo = QString::fromUtf8(MensajeUltimoAdministrador);
    EXPECT_EQ(cambia("admin", [](DatosUsuario& u) { u.esAdmin = false; }), ultimo);
    EXPECT_EQ(cambia("admin", [](DatosUsuario& u) { u.activo = false; }), ultimo);
    EXPECT_EQ(cambia("admin", [](DatosUsuario& u) { u.accesaMovil = false; }), ultimo);
    EXPECT_EQ(c.cuenta("Usuarios Where usuarioID = 1 and esAdmin = 1 and activo = 1 and "
                       "accesaMovil = 1"),
              1);

    // Un administrador inactivo no cuenta; uno activo sí.
    c.exige("Update Usuarios Set esAdmin = 1 Where nUsuario = 'inactivo'");
    EXPECT_EQ(cambia("admin", [](DatosUsuario& u) { u.esAdmin = false; }), ultimo);
    c.exige("Update Usuarios Set esAdmin = 1 Where nUsuario = 'mesero'");
    EXPECT_EQ(cambia("admin", [](DatosUsuario& u) { u.esAdmin = false; }), QString());
    EXPECT_EQ(cambia("mesero", [](DatosUsuario& u) { u.activo = false; }),
              ultimo); // ahora el mesero es el último
    // Quien entró no puede desactivarse aunque haya otro administrador.
    EXPECT_EQ(cambia("admin", [](DatosUsuario& u) { u.esAdmin = true; }), QString());
    EXPECT_EQ(cambia("admin", [](DatosUsuario& u) { u.activo = false; }),
              QString::fromUtf8(MensajeDesactivarseASiMismo));
    EXPECT_EQ(cambia("mesero", [](DatosUsuario& u) { u.activo = false; }), QString());
}

TEST_F(CatalogoUsuariosTest, NombreUnicoSinDistinguirMayusculasYContrasenaSoloSiSeTeclea) {
    DatosUsuario nuevo;
    nuevo.nUsuario = QStringLiteral(" CAJERO ");
    nuevo.nombre = QStringLiteral("Otra Cajera");
    nuevo.perfilID = 2;
    EXPECT_EQ(usuarios.almacena(nuevo, QStringLiteral("x"), QStringLiteral("x"), nullptr),
              QString::fromUtf8(MensajeUsuarioExiste));
    // Conservar su propio nombre no es repetirlo; sin teclear contraseña se conserva la suya.
    const std::string guardada = contrasena("cajero");
    EXPECT_EQ(cambia("cajero", [](DatosUsuario& u) { u.nombre = QStringLiteral("Laura M."); }),
              QString());
    EXPECT_EQ(contrasena("cajero"), guardada);

    const DatosUsuario anterior = usuario("cajero");
    DatosUsuario cambio = anterior;
    EXPECT_EQ(usuarios.almacena(cambio, QStringLiteral("n1"), {}, &anterior),
              QString::fromUtf8(MensajeContrasenasDistintas));
    EXPECT_EQ(
        usuarios.almacena(cambio, QStringLiteral("Nueva'1"), QStringLiteral("Nueva'1"), &anterior),
        QString());
    EXPECT_TRUE(contrasena("cajero").starts_with("$argon2id$")) << contrasena("cajero");
    EXPECT_EQ(empresasAlEntrar(QStringLiteral("cajero"), QStringLiteral("cajero")),
              QList<int64_t>{});
    EXPECT_EQ(empresasAlEntrar(QStringLiteral("cajero"), QStringLiteral("Nueva'1")),
              QList<int64_t>{1});
    EXPECT_EQ(c.cuenta("AuditoriasSistema Where moduloSistema = 'Usuarios -> Usuarios' and "
                       "tipoAuditoria = 'Actualización' and comentarios = 'Se cambió la "
                       "contraseña'"),
              1);
    // La bitácora no lleva la contraseña ni su hash.
    for (const char* oculto : {"%Nueva''1%", "%argon2id%"})
        EXPECT_EQ(c.cuenta(std::string("AuditoriasSistema Where datoNuevo like '") + oculto +
                           "' or datoAnterior like '" + oculto + "' or comentarios like '" +
                           oculto + "'"),
                  0)
            << oculto;
}

TEST_F(CatalogoUsuariosTest, LasEmpresasInactivasDelUsuarioSeConservan) {
    c.exige("Update Empresa Set activo = 0 Where empresaID = 2");
    EXPECT_EQ(usuarios.empresasDe(1), QList<int64_t>{1});
    EXPECT_EQ(cambia("admin", [](DatosUsuario& u) { u.empresas.clear(); }), QString());
    EXPECT_EQ(c.cuenta("UsuariosEmpresa Where usuarioID = 1 and empresaID = 1"), 0);
    EXPECT_EQ(c.cuenta("UsuariosEmpresa Where usuarioID = 1 and empresaID = 2"), 1);
}

TEST_F(CatalogoUsuariosTest, PerfilConservaLosPermisosQueNingunModuloRegistra) {
    const Perfil cajero{2, QStringLiteral("Cajero"), 2};
    const QStringList registrados{QStringLiteral("Usuarios"), QStringLiteral("Módulo Nuevo")};
    const DatosPerfil leido = perfiles.lee(cajero, registrados);
    ASSERT_EQ(leido.menus.size(), 28); // 2 registrados + 26 que solo están en la base
    EXPECT_EQ(leido.menus.at(0).menu, "Usuarios");
    EXPECT_FALSE(leido.menus.at(0).acceso);
    EXPECT_EQ(leido.menus.at(1).menu, "Módulo Nuevo");
    EXPECT_EQ(leido.derechos.at(0).value("precio2"), true);
    EXPECT_EQ(leido.derechos.at(0).value("precio3"), false);

    DatosPerfil cambio = leido;
    cambio.menus[1].acceso = true;
    EXPECT_EQ(perfiles.almacena(cambio, &leido), QString());
    EXPECT_EQ(c.cuenta("PermisosSistema Where perfilID = 2"), 28);
    EXPECT_EQ(c.cuenta("PermisosSistema Where perfilID = 2 and acceso = 1"), 8);
    EXPECT_EQ(perfiles.lee(cajero, registrados).derechos, leido.derechos);

    DatosPerfil repetido = CatalogoPerfiles::nuevo(registrados);
    repetido.nombre = QStringLiteral("cajero");
    EXPECT_EQ(perfiles.almacena(repetido, nullptr), QString::fromUtf8(MensajePerfilExiste));
    EXPECT_EQ(c.cuenta("PerfilesUsuarios"), 3);
}

} // namespace
} // namespace cajaplex
