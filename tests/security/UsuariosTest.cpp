// La pantalla de usuarios contra el servicio real de demostración: los rechazos en su orden sin
// borrar lo tecleado, el último administrador y el acceso a las empresas marcadas.
#include <gtest/gtest.h>

#include <memory>

#include <QComboBox>
#include <QListWidget>
#include <QStackedWidget>

#include "datos/ModuloDatos.h"
#include "pantallas/Mensajes.h"
#include "pantallas/RolesRenglon.h"
#include "pantallas/Sonidos.h"
#include "security/Usuarios.h"
#include "tests/fixtures/Toques.h"
#include "tests/security/AccesoPrueba.h"

namespace cajaplex {
namespace {

using namespace prueba;

class UsuariosTest : public ConPantallas {
protected:
    std::unique_ptr<TUsuariosF> abre() {
        sesion_ = sesion(QStringLiteral("admin"), 1);
        auto f = std::make_unique<TUsuariosF>(sesion_);
        f->resize(1200, 800);
        f->show();
        esperaLeyenda(*f);
        Mensajes::ultimos();
        Sonidos::reproducidos();
        return f;
    }

    static void modifica(const TUsuariosF& f, const QString& nombre) {
        tocaRenglon(f, "ListaUsuarios", RolPrimeraLinea, nombre);
        toca(f, "BotonModificar");
        ASSERT_EQ(pagina(f), "UsuariosEdita");
    }

    static QString pagina(const TUsuariosF& f) {
        return control<QStackedWidget>(f, "Paginas")->currentWidget()->objectName();
    }

    static QString texto(const QWidget& f, const char* campo) {
        return control<QLineEdit>(f, campo)->text();
    }

    static void eligePerfil(const QWidget& f, const QString& perfil) {
        auto* combo = control<QComboBox>(f, "PerfilUsuario");
        combo->setCurrentIndex(combo->findText(perfil));
    }

    static void marcaEmpresa(const QWidget& f, const QString& empresa, bool marcada) {
        const auto items =
            control<QListWidget>(f, "EmpresasUsuario")->findItems(empresa, Qt::MatchExactly);
        ASSERT_EQ(items.size(), 1) << empresa.toStdString();
        items.first()->setCheckState(marcada ? Qt::Checked : Qt::Unchecked);
    }

    // Almacena y devuelve lo que dijo la pantalla.
    static QStringList almacena(const QWidget& f) {
        Mensajes::ultimos();
        toca(f, "BotonAlmacenar");
        return Mensajes::ultimos();
    }

    QList<int64_t> empresasAlEntrar(const QString& usuario, const QString& contrasena) {
        return prueba::empresasAlEntrar(ModuloDeDatos, servicio.puerto(), usuario, contrasena);
    }

    Sesion sesion_;
};

TEST_F(UsuariosTest, CadaRechazoEnSuOrdenDejaLoTecleado) {
    auto f = abre();
    toca(*f, "BotonNuevo");
    ASSERT_EQ(pagina(*f), "UsuariosEdita");
    EXPECT_EQ(control<QPushButton>(*f, "Activo")->text(), "SÍ");
    EXPECT_EQ(control<QPushButton>(*f, "EsAdmin")->text(), "NO");

    EXPECT_EQ(almacena(*f), QStringList{MensajeUsuarioVacio});
    escribe(*f, "NombreUsuario", "Cajero");
    escribe(*f, "Contrasena", "uno");
    escribe(*f, "ConfirmaContrasena", "dos");
    EXPECT_EQ(almacena(*f), QStringList{MensajeUsuarioExiste});
    escribe(*f, "NombreUsuario", "rocio");
    EXPECT_EQ(almacena(*f), QStringList{MensajeNombreVacio});
    escribe(*f, "NombreCompleto", "Rocío Ávila");
    EXPECT_EQ(almacena(*f), QStringList{MensajeContrasenasDistintas});
    escribe(*f, "ConfirmaContrasena", "uno");
    EXPECT_EQ(almacena(*f), QStringList{MensajePerfilVacio});
    EXPECT_EQ(Sonidos::reproducidos().count(Sonido::Error), 5);

    // Nada se registró y todo sigue escrito.
    EXPECT_EQ(c.cuenta("Usuarios Where nUsuario = 'rocio'"), 0);
    EXPECT_EQ(c.cuenta("AuditoriasSistema"), 0);
    EXPECT_EQ(pagina(*f), "UsuariosEdita");
    EXPECT_EQ(texto(*f, "NombreUsuario"), "rocio");
    EXPECT_EQ(texto(*f, "NombreCompleto"), "Rocío Ávila");
    EXPECT_EQ(texto(*f, "Contrasena"), "uno");
    EXPECT_EQ(texto(*f, "ConfirmaContrasena"), "uno");

    // El administrador de la sesión es el único: ni deja de serlo ni se desactiva.
    toca(*f, "BotonCancelar");
    modifica(*f, "Administrador del Sistema");
    QTest::mouseClick(control<QPushButton>(*f, "EsAdmin"), Qt::LeftButton);
    escribe(*f, "NombreCompleto", "Admin General");
    EXPECT_EQ(almacena(*f), QStringList{MensajeUltimoAdministrador});
    QTest::mouseClick(control<QPushButton>(*f, "EsAdmin"), Qt::LeftButton);
    QTest::mouseClick(control<QPushButton>(*f, "Activo"), Qt::LeftButton);
    EXPECT_EQ(almacena(*f), QStringList{MensajeUltimoAdministrador});
    c.exige("Update Usuarios Set esAdmin = 1 Where nUsuario = 'cajero'");
    EXPECT_EQ(almacena(*f), QStringList{MensajeDesactivarseASiMismo});
    EXPECT_EQ(texto(*f, "NombreCompleto"), "Admin General");
    EXPECT_EQ(control<QPushButton>(*f, "Activo")->text(), "NO");
    EXPECT_EQ(c.cuenta("Usuarios Where usuarioID = 1 and nombre = 'Administrador del Sistema' "
                       "and activo = 1 and esAdmin = 1"),
              1);
}

TEST_F(UsuariosTest, UsuarioNuevoEntraSoloALasEmpresasMarcadasYSinContrasenaEnLaBitacora) {
    auto f = abre();
    toca(*f, "BotonNuevo");
    escribe(*f, "NombreUsuario", "rocio");
    escribe(*f, "NombreCompleto", "Rocío Ávila");
    escribe(*f, "Contrasena", "Clave#7");
    escribe(*f, "ConfirmaContrasena", "Clave#7");
    eligePerfil(*f, "Mesero");
    marcaEmpresa(*f, "Restaurante El Portal", true);
    EXPECT_EQ(almacena(*f), QStringList{});
    EXPECT_EQ(pagina(*f), "SeleccionaUsuario");
    EXPECT_EQ(control<QListWidget>(*f, "ListaUsuarios")->currentItem()->text(), "Rocío Ávila");
    EXPECT_EQ(empresasAlEntrar("rocio", "Clave#7"), QList<int64_t>{2});
    EXPECT_EQ(c.cuenta("Usuarios Where nUsuario = 'rocio' and perfilID = 3 and esAdmin = 0 and "
                       "contrasena like '$argon2id$%'"),
              1);

    // La búsqueda la encuentra; al cambiar de empresas sin teclear contraseña, la conserva.
    escribe(*f, "BuscarUsuario", "ROCÍO");
    EXPECT_EQ(renglones(*f, "ListaUsuarios", RolPrimeraLinea), QStringList{"Rocío Ávila"});
    EXPECT_EQ(rotulo(*f, "PieUsuarios"), "Registros Filtrados: 1");
    modifica(*f, "Rocío Ávila");
    EXPECT_EQ(texto(*f, "Contrasena"), "");
    marcaEmpresa(*f, "Abarrotes La Esperanza", true);
    marcaEmpresa(*f, "Restaurante El Portal", false);
    EXPECT_EQ(almacena(*f), QStringList{});
    EXPECT_EQ(empresasAlEntrar("rocio", "Clave#7"), QList<int64_t>{1});

    modifica(*f, "Rocío Ávila");
    escribe(*f, "Contrasena", "Otra$9");
    escribe(*f, "ConfirmaContrasena", "Otra$9");
    marcaEmpresa(*f, "Restaurante El Portal", true);
    EXPECT_EQ(almacena(*f), QStringList{});
    EXPECT_EQ(empresasAlEntrar("rocio", "Clave#7"), QList<int64_t>{});
    EXPECT_EQ(empresasAlEntrar("rocio", "Otra$9"), (QList<int64_t>{1, 2}));

    const std::string modulo = "moduloSistema = 'Usuarios -> Usuarios' and ";
    EXPECT_EQ(c.cuenta("AuditoriasSistema Where " + modulo +
                       "tipoAuditoria = 'Inserción' and datoNuevo like '%rocio%'"),
              1);
    EXPECT_EQ(c.cuenta("AuditoriasSistema Where " + modulo + "tipoAuditoria = 'Actualización'"), 2);
    EXPECT_EQ(c.cuenta("AuditoriasSistema Where ifnull(datoNuevo,'') || ifnull(datoAnterior,'') "
                       "|| ifnull(comentarios,'') like '%Clave#7%' or ifnull(datoNuevo,'') || "
                       "ifnull(datoAnterior,'') || ifnull(comentarios,'') like '%Otra$9%'"),
              0);
}

} // namespace
} // namespace cajaplex
