// La pantalla de perfiles contra el servicio real de demostración: lo marcado es lo que la sesión
// recibe al entrar, y un perfil con usuarios no se borra.
#include <gtest/gtest.h>

#include <memory>

#include <QListWidget>
#include <QScrollArea>
#include <QStackedWidget>
#include <QTabWidget>

#include "datos/ModuloDatos.h"
#include "pantallas/Mensajes.h"
#include "pantallas/RegistroModulos.h"
#include "pantallas/RolesRenglon.h"
#include "security/ModulosSeguridad.h"
#include "security/Perfiles.h"
#include "tests/fixtures/Toques.h"

namespace cajaplex {
namespace {

using namespace prueba;

class PerfilesTest : public ConPantallas {
protected:
    void SetUp() override {
        ConPantallas::SetUp();
        registraModulosSeguridad();
        // Un módulo que ningún perfil de la demostración conoce aparece solo.
        RegistroModulos::registra({QStringLiteral("Pruebas"), QStringLiteral("Inventario"),
                                   QStringLiteral("Inventario Físico"), QString(),
                                   [](const Sesion&) -> QWidget* { return nullptr; }});
    }

    std::unique_ptr<TPerfilesF> abre() {
        sesion_ = sesion(QStringLiteral("admin"), 1);
        auto f = std::make_unique<TPerfilesF>(sesion_);
        f->resize(1200, 800);
        f->show();
        esperaLeyenda(*f);
        Mensajes::ultimos();
        return f;
    }

    static QListWidgetItem* menu(const QWidget& f, const QString& texto) {
        const auto items =
            control<QListWidget>(f, "MenusPerfil")->findItems(texto, Qt::MatchExactly);
        EXPECT_EQ(items.size(), 1) << texto.toStdString();
        return items.value(0);
    }

    // Como el dedo: abre la pestaña del interruptor, lo trae a la vista y lo toca.
    static void interruptor(const QWidget& f, const char* nombre) {
        auto* boton = control<QPushButton>(f, nombre);
        auto* paginas = control<QTabWidget>(f, "PaginasPerfil");
        for (int i = 0; i < paginas->count(); ++i)
            if (paginas->widget(i)->isAncestorOf(boton)) {
                paginas->setCurrentIndex(i);
                qobject_cast<QScrollArea*>(paginas->widget(i))->ensureWidgetVisible(boton);
            }
        QTest::mouseClick(boton, Qt::LeftButton);
    }

    Sesion sesion_;
};

TEST_F(PerfilesTest, LoMarcadoEnUnPerfilNuevoEsLoQueRecibeLaSesionAlEntrar) {
    auto f = abre();
    EXPECT_EQ(renglones(*f, "ListaPerfiles", RolPrimeraLinea),
              (QStringList{"Administrador", "Cajero", "Mesero"}));
    toca(*f, "BotonNuevo");
    EXPECT_EQ(renglones(*f, "MenusPerfil", Qt::DisplayRole),
              (QStringList{"Usuarios", "Perfiles de Usuario", "Bitácoras del Sistema",
                           "Dispositivos", "Inventario Físico"}));
    EXPECT_EQ(control<QPushButton>(*f, "PerfilesUsuariosVentas.precio1")->text(), "SÍ");

    toca(*f, "BotonAlmacenar");
    EXPECT_EQ(Mensajes::ultimos(), QStringList{MensajePerfilSinNombre});
    escribe(*f, "NombrePerfil", "Almacenista");
    menu(*f, "Inventario Físico")->setCheckState(Qt::Checked);
    menu(*f, "Bitácoras del Sistema")->setCheckState(Qt::Checked);
    interruptor(*f, "PerfilesUsuariosVentas.precio1");
    interruptor(*f, "PerfilesUsuariosVentas.descuento");
    interruptor(*f, "PerfilesUsuariosCompras.cancelarRM");
    interruptor(*f, "PerfilesUsuariosCxC.bloquearCredito");
    toca(*f, "BotonAlmacenar");
    EXPECT_EQ(Mensajes::ultimos(), QStringList{});
    EXPECT_EQ(control<QListWidget>(*f, "ListaPerfiles")->currentItem()->text(), "Almacenista");

    const long long perfilID =
        c.valor("Select perfilID From PerfilesUsuarios Where Nombre = 'Almacenista'")
            .get<long long>();
    c.exige("Update Usuarios Set perfilID = :p Where nUsuario = 'cajero'",
            {{"p", entero(perfilID)}});
    int64_t leido = 0;
    const DerechosPerfil d = leeDerechosUsuario(ModuloDeDatos.ConexionBD, 2, leido);
    EXPECT_EQ(leido, perfilID);
    EXPECT_EQ(d.menus, (QSet<QString>{"Inventario Físico", "Bitácoras del Sistema"}));
    auto permitidos = [](const QHash<QString, bool>& derechos) {
        QStringList si;
        for (auto it = derechos.cbegin(); it != derechos.cend(); ++it)
            if (it.value()) si << it.key();
        return si;
    };
    EXPECT_EQ(d.ventas.size(), 13);
    EXPECT_EQ(permitidos(d.ventas), QStringList{"descuento"});
    EXPECT_EQ(d.compras.size(), 7);
    EXPECT_EQ(permitidos(d.compras), QStringList{"cancelarRM"});
    EXPECT_EQ(permitidos(d.cuentasPorCobrar), QStringList{"bloquearCredito"});
    EXPECT_EQ(c.cuenta("AuditoriasSistema Where moduloSistema = 'Usuarios -> Perfiles' and "
                       "tipoAuditoria = 'Inserción' and datoNuevo like 'Perfil: Almacenista%'"),
              1);

    // Al modificarlo se ve como se guardó.
    tocaRenglon(*f, "ListaPerfiles", RolPrimeraLinea, "Almacenista");
    toca(*f, "BotonModificar");
    EXPECT_EQ(menu(*f, "Inventario Físico")->checkState(), Qt::Checked);
    EXPECT_EQ(menu(*f, "Usuarios")->checkState(), Qt::Unchecked);
    EXPECT_EQ(control<QPushButton>(*f, "PerfilesUsuariosVentas.precio1")->text(), "NO");
    EXPECT_EQ(control<QPushButton>(*f, "PerfilesUsuariosCompras.cancelarRM")->text(), "SÍ");
}

TEST_F(PerfilesTest, PerfilConUsuariosNoSeBorraYUnoSinUsuariosSeVaCompleto) {
    auto f = abre();
    tocaRenglon(*f, "ListaPerfiles", RolPrimeraLinea, "Cajero");
    Mensajes::respondeSiguiente(cajaplex::Respuesta::Si);
    toca(*f, "BotonBorrar");
    EXPECT_EQ(Mensajes::ultimos(),
              (QStringList{"¿Desea Eliminar el Perfil Cajero?", MensajePerfilEnUso}));
    EXPECT_EQ(c.cuenta("PerfilesUsuarios Where perfilID = 2"), 1);
    EXPECT_EQ(c.cuenta("PermisosSistema Where perfilID = 2"), 27);
    EXPECT_EQ(c.cuenta("PerfilesUsuariosVentas Where perfilID = 2"), 1);

    // Sin usuarios ya se puede, con todos sus renglones de derechos.
    c.exige("Update Usuarios Set perfilID = 3 Where perfilID = 2");
    Mensajes::respondeSiguiente(cajaplex::Respuesta::Si);
    toca(*f, "BotonBorrar");
    EXPECT_EQ(renglones(*f, "ListaPerfiles", RolPrimeraLinea),
              (QStringList{"Administrador", "Mesero"}));
    for (const char* tabla : {"PerfilesUsuarios", "PermisosSistema", "PerfilesUsuariosVentas",
                              "PerfilesUsuariosCompras", "PerfilesUsuariosCxC"})
        EXPECT_EQ(c.cuenta(std::string(tabla) + " Where perfilID = 2"), 0) << tabla;
    EXPECT_EQ(c.cuenta("AuditoriasSistema Where moduloSistema = 'Usuarios -> Perfiles' and "
                       "tipoAuditoria = 'Cancelación'"),
              1);
}

} // namespace
} // namespace cajaplex
