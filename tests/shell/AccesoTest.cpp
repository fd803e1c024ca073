// Arranque, acceso y menú de la estación contra el servicio real de demostración.
#include <memory>

#include <gtest/gtest.h>

#include <QCloseEvent>
#include <QCoreApplication>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QLocale>
#include <QPointer>
#include <QPushButton>
#include <QStackedWidget>
#include <QTemporaryDir>
#include <QTest>

#include "datos/AjustesEstacion.h"
#include "datos/ModuloDatos.h"
#include "pantallas/Mensajes.h"
#include "pantallas/RegistroModulos.h"
#include "pantallas/Sonidos.h"
#include "security/Auditorias.h"
#include "shell/FrameLogeo.h"
#include "shell/Instalacion.h"
#include "shell/MenuPrimario.h"
#include "shell/Modulos.h"
#include "shell/Principal.h"
#include "tests/fixtures/PruebaPantallas.h"

namespace cajaplex {
namespace {

using namespace prueba;

const QString kCredencialesMal = QStringLiteral("Usuario y/o Contraseña erróneas");
const QString kBloqueo = QStringLiteral("Rebasó intentos permitidos.");

class AccesoTest : public ConPantallas {
protected:
    void SetUp() override {
        ConPantallas::SetUp();
        ASSERT_TRUE(carpeta_.isValid());
        AjustesEstacion ajustes(carpeta_.path());
        preparaEstacion(ajustes, QStringLiteral("127.0.0.1"), servicio.puerto(),
                        QString::fromStdString(kUsuarioDemo), QString::fromStdString(kUsuarioDemo));
    }

    std::unique_ptr<TCajaplexF> abreVentana(QStringList bibliotecas = bibliotecasRequeridas()) {
        auto v = std::make_unique<TCajaplexF>(Instalacion{carpeta_.path(), bibliotecas});
        v->resize(1366, 768);
        v->show();
        return v;
    }

    // Escribe usuario y contraseña, oprime "Ingresar" y espera a que termine la validación.
    QStringList ingresa(TCajaplexF& v, const QString& usuario, const QString& contrasena) {
        control<QLineEdit>(v, "NombreUsuario")->setText(usuario);
        control<QLineEdit>(v, "ContrasenaUsuario")->setText(contrasena);
        Mensajes::ultimos();
        auto* boton = control<QPushButton>(v, "AuthenticateRectBTN");
        QTest::mouseClick(boton, Qt::LeftButton);
        EXPECT_TRUE(esperaHasta([&] { return boton->isEnabled(); }));
        return Mensajes::ultimos();
    }

    QTemporaryDir carpeta_;
};

TEST_F(AccesoTest, ArranqueAvisaCadaArchivoQueFaltaYMuestraLaVentanaIgual) {
    QTemporaryDir vacia;
    {
        TCajaplexF v({vacia.path(), bibliotecasRequeridas()});
        EXPECT_EQ(Mensajes::ultimos(), QStringList{"No existe el Archivo: Cajaplex.db"});
    }
    Mensajes::ultimos();
    auto v = abreVentana({QStringLiteral("libpdf-ausente.so.1"), bibliotecasRequeridas().at(1),
                          QStringLiteral("libcodigos-ausente.so.2")});
    EXPECT_EQ(Mensajes::ultimos(), (QStringList{"No existe el Archivo: libpdf-ausente.so.1",
                                                "No existe el Archivo: libcodigos-ausente.so.2"}));
    EXPECT_TRUE(v->isVisible());
    EXPECT_TRUE(ModuloDeDatos.ArchivoLocalBD.endsWith("/Cajaplex.db"));

    // Una copia recién instalada tiene preferencia.
    QFile::copy(ModuloDeDatos.ArchivoLocalBD, carpeta_.filePath("CajaplexNueva.db"));
    v = abreVentana();
    EXPECT_TRUE(Mensajes::ultimos().isEmpty());
    EXPECT_TRUE(ModuloDeDatos.ArchivoLocalBD.endsWith("/CajaplexNueva.db"));
}

TEST_F(AccesoTest, VersionDispositivoServidorYCursorEnElUsuario) {
    auto v = abreVentana();
    EXPECT_EQ(control<QLabel>(*v, "ExperienceText")->text(),
              QStringLiteral("Versión Omnivar ") + versionPrograma());
    const QString id = control<QLineEdit>(*v, "DispositivoID")->text();
    EXPECT_FALSE(id.isEmpty());
    EXPECT_EQ(control<QLineEdit>(*v, "ServidorPuerto")->text().toInt(), servicio.puerto());
    EXPECT_TRUE(esperaHasta([&] { return control<QLineEdit>(*v, "NombreUsuario")->hasFocus(); }));
    v.reset();
    EXPECT_EQ(control<QLineEdit>(*abreVentana(), "DispositivoID")->text(), id); // se conserva
}

TEST_F(AccesoTest, CadaCampoVacioTieneSuMensajeEnOrden) {
    auto v = abreVentana();
    auto* direccion = control<QLineEdit>(*v, "ServidorUsuario");
    auto* puerto = control<QLineEdit>(*v, "ServidorPuerto");
    direccion->clear();
    puerto->clear();
    EXPECT_EQ(ingresa(*v, {}, {}), QStringList{"Ingrese el Dominio ó IP"});
    direccion->setText("127.0.0.1");
    EXPECT_EQ(ingresa(*v, {}, {}), QStringList{"Ingrese el Puerto"});
    puerto->setText(QString::number(servicio.puerto()));
    EXPECT_EQ(ingresa(*v, {}, "cajero"), QStringList{"Ingrese Usuario"});
    EXPECT_EQ(ingresa(*v, "cajero", {}), QStringList{"Ingrese Contraseña"});
    EXPECT_EQ(Sonidos::reproducidos(),
              (QList<Sonido>{Sonido::Click, Sonido::Error, Sonido::Click, Sonido::Error,
                             Sonido::Click, Sonido::Error, Sonido::Click, Sonido::Error}));
    EXPECT_FALSE(v->sesionAbierta());
}

TEST_F(AccesoTest, TresFallasBloqueanSinVolverAlServicio) {
    auto v = abreVentana();
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(ingresa(*v, "cajero", "equivocada"), QStringList{kCredencialesMal});
    servicio.detiene(); // si se intentara conectar, el mensaje sería el de conexión
    EXPECT_EQ(ingresa(*v, "cajero", "cajero"), QStringList{kBloqueo});
    EXPECT_FALSE(v->sesionAbierta());
}

TEST_F(AccesoTest, InactivoSinAccesoMovilYEmpresaInactivaCuentanComoFalla) {
    c.exige("Update Usuarios set accesaMovil = 0 where nUsuario = 'cajero'");
    c.exige("Update Empresa set activo = 0 where empresaID = 2");
    auto v = abreVentana();
    EXPECT_EQ(ingresa(*v, "inactivo", "inactivo"), QStringList{kCredencialesMal});
    EXPECT_EQ(ingresa(*v, "cajero", "cajero"), QStringList{kCredencialesMal});
    EXPECT_EQ(ingresa(*v, "mesero", "mesero"), QStringList{kCredencialesMal});
    EXPECT_EQ(ingresa(*v, "admin", "admin"), QStringList{kBloqueo});
}

TEST_F(AccesoTest, AdministradorEligeEntreTodaEmpresaActivaYTomaSusValores) {
    c.exige("Delete from UsuariosEmpresa where usuarioID = 1");
    c.exige("Insert into Empresa (empresaID, nombreEmpresaCorto, activo) values (3, 'Cerrada', 0)");
    c.exige("Insert into Configura (empresaID) values (3)");
    auto v = abreVentana();
    EXPECT_TRUE(ingresa(*v, "admin", "admin").isEmpty());
    auto* lista = control<QListWidget>(*v, "ListaEmpresas");
    ASSERT_EQ(lista->count(), 2);
    EXPECT_EQ(lista->currentRow(), 0);
    EXPECT_EQ(lista->item(1)->data(Qt::UserRole).toLongLong(), 2);
    EXPECT_FALSE(v->sesionAbierta());

    lista->setCurrentRow(1);
    QTest::mouseClick(control<QPushButton>(*v, "BotonEmpresa"), Qt::LeftButton);
    ASSERT_TRUE(v->sesionAbierta());
    const Sesion& s = v->sesion();
    EXPECT_EQ(s.UsuarioID, 1);
    EXPECT_EQ(s.EmpresaID, 2);
    EXPECT_EQ(s.NombreEmpresa, "Restaurante El Portal");
    EXPECT_EQ(s.NombreDeUsuario, "Administrador del Sistema");
    EXPECT_EQ(s.Rfc.toStdString(), c.valor("Select rfc from Empresa where empresaID = 2"));
    EXPECT_TRUE(s.controlRestaurantes);
    EXPECT_TRUE(s.esAdmin);
    EXPECT_EQ(control<QLabel>(*v, "NombreEmpresa")->text(), "Restaurante El Portal");
    EXPECT_EQ(control<QLabel>(*v, "LogotipoEmpresa")->property("imagen"), "LogotipoVacio");
}

TEST_F(AccesoTest, CajeroEntraDirectoGuardaElServidorYCierraSesion) {
    auto v = abreVentana();
    control<QLineEdit>(*v, "ServidorUsuario")->setText(" 127.0.0.1 ");
    EXPECT_TRUE(ingresa(*v, "cajero", "cajero").isEmpty());
    ASSERT_TRUE(v->sesionAbierta());
    EXPECT_EQ(v->sesion().EmpresaID, 1);
    EXPECT_FALSE(v->sesion().esAdmin);
    EXPECT_FALSE(v->sesion().controlRestaurantes);
    EXPECT_TRUE(control<TMenuPrimarioF>(*v, "MenuPrimario")->isVisible());
    AjustesEstacion releidos(carpeta_.path());
    EXPECT_EQ(releidos.direccionServidor(), "127.0.0.1");
    EXPECT_EQ(releidos.puertoServidor(), servicio.puerto());

    // El cajero no ve lo que su perfil no tiene: bitácoras, catálogo, utilerías de precios.
    for (const char* modulo : {"ModuloAuditorias", "ModuloProductos", "ModuloUtileriasProductos"})
        EXPECT_EQ(v->findChild<QPushButton*>(modulo), nullptr) << modulo;

    Mensajes::respondeSiguiente(cajaplex::Respuesta::Aceptar);
    QTest::mouseClick(control<QPushButton>(*v, "BotonCerrarSesion"), Qt::LeftButton);
    EXPECT_FALSE(v->sesionAbierta());
    EXPECT_TRUE(v->cuadroLogeo()->isVisible());
    EXPECT_TRUE(control<QLineEdit>(*v, "ContrasenaUsuario")->text().isEmpty());
    EXPECT_TRUE(esperaHasta([&] { return v->findChild<TMenuPrimarioF*>() == nullptr; }));
}

// Los botones de módulo visibles en el menú de la ventana.
QStringList modulosVisibles(QWidget& v) {
    QStringList nombres;
    for (const QPushButton* b : v.findChildren<QPushButton*>())
        if (b->objectName().startsWith(QStringLiteral("Modulo"))) nombres << b->objectName();
    nombres.sort();
    return nombres;
}

TEST_F(AccesoTest, CadaPerfilVeSoloSusModulosYNoAbreOtrosPorNingunCamino) {
    registraModulos();
    auto admin = abreVentana();
    EXPECT_TRUE(ingresa(*admin, "admin", "admin").isEmpty());
    QTest::mouseClick(control<QPushButton>(*admin, "BotonEmpresa"), Qt::LeftButton);
    ASSERT_TRUE(admin->sesionAbierta());
    const QStringList todos = modulosVisibles(*admin);
    for (const char* m : {"ModuloAuditorias", "ModuloProductos", "ModuloKits",
                          "ModuloUtileriasProductos", "ModuloAsignaMonedero"})
        EXPECT_TRUE(todos.contains(QLatin1String(m))) << m;

    auto mesero = abreVentana();
    EXPECT_TRUE(ingresa(*mesero, "mesero", "mesero").isEmpty());
    ASSERT_TRUE(mesero->sesionAbierta());
    EXPECT_EQ(mesero->sesion().EmpresaID, 2);
    for (const QString& m : todos)
        EXPECT_FALSE(modulosVisibles(*mesero).contains(m)) << qPrintable(m);

    // El perfil del cajero gana bitácoras y utilerías (no el incremento de precios): toma efecto
    // al siguiente acceso.
    c.exige("Update PermisosSistema set acceso = 1 where perfilID = 2 and menú in "
            "('Bitácoras del Sistema', 'Utilerías de Productos')");
    auto cajero = abreVentana();
    EXPECT_TRUE(ingresa(*cajero, "cajero", "cajero").isEmpty());
    const QStringList delCajero = modulosVisibles(*cajero);
    for (const char* m : {"ModuloAuditorias", "ModuloUtileriasProductos", "ModuloCajaChica",
                          "ModuloClientes", "ModuloCorteCaja"})
        EXPECT_TRUE(delCajero.contains(QLatin1String(m))) << m;
    for (const char* m : {"ModuloProductos", "ModuloKits", "ModuloUnidades", "ModuloRangos",
                          "ModuloAsignaMonedero", "ModuloUsuarios", "ModuloPerfiles"})
        EXPECT_FALSE(delCajero.contains(QLatin1String(m))) << m;
    EXPECT_TRUE(cajero->sesion().puedeVentas(QStringLiteral("corteCaja")));
    EXPECT_FALSE(cajero->sesion().puedeVentas(QStringLiteral("cancelarRemision")));

    // Un módulo se abre encima del menú; Esc regresa como "Regresar".
    QTest::mouseClick(control<QPushButton>(*cajero, "ModuloAuditorias"), Qt::LeftButton);
    ASSERT_NE(cajero->findChild<TAuditoriasF*>(), nullptr);
    EXPECT_TRUE(cajero->findChild<TAuditoriasF*>()->isVisible());
    QTest::keyClick(cajero->findChild<TAuditoriasF*>(), Qt::Key_Escape);
    EXPECT_TRUE(esperaHasta([&] { return cajero->findChild<TAuditoriasF*>() == nullptr; }));

    // En las utilerías solo aparece lo permitido, y abrir lo demás por código lo rechaza.
    QTest::mouseClick(control<QPushButton>(*cajero, "ModuloUtileriasProductos"), Qt::LeftButton);
    EXPECT_EQ(cajero->findChild<QPushButton*>("BotonIncrementoPrecios"), nullptr);
    EXPECT_EQ(cajero->findChild<QPushButton*>("BotonValorInventario"), nullptr);
    Mensajes::ultimos();
    const EntradaMenu* incremento = RegistroModulos::busca(QStringLiteral("IncrementoPrecios"));
    ASSERT_NE(incremento, nullptr);
    EXPECT_EQ(RegistroModulos::crea(*incremento, cajero->sesion(), cajero.get()), nullptr);
    EXPECT_EQ(Mensajes::ultimos(),
              QStringList{QString::fromUtf8(MensajeSinPermiso) + "Incremento de Precios"});
    EXPECT_FALSE(exigePermiso(cajero->sesion(), QStringLiteral("Catálogo de Productos"), nullptr));
}

// Una pantalla con cambios sin guardar puede negarse a cerrar.
class PantallaRenuente : public QWidget {
public:
    bool permite = false;

protected:
    void closeEvent(QCloseEvent* evento) override { evento->setAccepted(permite); }
};

TEST_F(AccesoTest, RegresarRespetaLaPantallaYUnCloseDeLaPantallaRegresa) {
    auto v = abreVentana();
    EXPECT_TRUE(ingresa(*v, "cajero", "cajero").isEmpty());
    auto* renuente = new PantallaRenuente;
    QPointer<PantallaRenuente> vigia(renuente);
    v->abrePantalla(renuente, "Con cambios");
    QTest::mouseClick(control<QPushButton>(*v, "BotonRegresar"), Qt::LeftButton);
    QTest::qWait(30);
    ASSERT_TRUE(vigia);
    EXPECT_TRUE(renuente->isVisible()); // se negó: sigue a la vista

    renuente->permite = true;
    QTest::mouseClick(control<QPushButton>(*v, "BotonRegresar"), Qt::LeftButton);
    EXPECT_TRUE(esperaHasta([&] { return vigia.isNull(); }));
    EXPECT_TRUE(control<TMenuPrimarioF>(*v, "MenuPrimario")->isVisible());

    auto* sola = new QWidget;
    QPointer<QWidget> vigiaSola(sola);
    v->abrePantalla(sola, "Se cierra sola");
    sola->close();
    EXPECT_TRUE(esperaHasta([&] { return vigiaSola.isNull(); }));
    EXPECT_TRUE(control<TMenuPrimarioF>(*v, "MenuPrimario")->isVisible());

    // Cerrar la ventana principal también le pregunta primero a la pantalla abierta.
    auto* otra = new PantallaRenuente;
    QPointer<PantallaRenuente> vigiaOtra(otra);
    v->abrePantalla(otra, "Con cambios");
    EXPECT_FALSE(v->close());
    EXPECT_TRUE(v->isVisible());
    ASSERT_TRUE(vigiaOtra);
    EXPECT_TRUE(otra->isVisible());
    otra->permite = true;
    v->close(); // ahora sí: la pantalla se cierra y la ventana termina (tras sonar "Salir")
    EXPECT_TRUE(esperaHasta([&] { return vigiaOtra.isNull() && !v->isVisible(); }));
}

TEST_F(AccesoTest, ComillasEnUsuarioYContrasenaNoLleganAlSql) {
    c.exige("Insert into Usuarios (usuarioID, nUsuario, contrasena, nombre, activo, accesaMovil) "
            "values (9, :u, cajaplex_hash(:c), 'Ana O''Brien', 1, 1)",
            {{"u", texto("o'brien")}, {"c", texto("x' or '1'='1")}});
    c.exige("Insert into UsuariosEmpresa (usuarioID, empresaID) values (9, 1)");
    auto v = abreVentana();
    EXPECT_EQ(ingresa(*v, "' or '1'='1", "' or '1'='1"), QStringList{kCredencialesMal});
    EXPECT_EQ(ingresa(*v, "o'brien", "x"), QStringList{kCredencialesMal});
    EXPECT_TRUE(ingresa(*v, "o'brien", "x' or '1'='1").isEmpty());
    EXPECT_EQ(v->sesion().NombreDeUsuario, "Ana O'Brien");
}

TEST_F(AccesoTest, EnterEnElServidorIngresaYLosCamposTienenNombreAccesible) {
    auto v = abreVentana();
    for (const char* campo : {"ServidorUsuario", "ServidorPuerto", "NombreUsuario",
                              "ContrasenaUsuario", "DispositivoID"})
        EXPECT_FALSE(control<QLineEdit>(*v, campo)->accessibleName().isEmpty()) << campo;
    control<QLineEdit>(*v, "NombreUsuario")->setText("cajero");
    control<QLineEdit>(*v, "ContrasenaUsuario")->setText("cajero");
    QTest::keyClick(control<QLineEdit>(*v, "ServidorPuerto"), Qt::Key_Return);
    EXPECT_TRUE(esperaHasta([&] { return v->sesionAbierta(); }));
}

TEST_F(AccesoTest, QtHablaEspanolYLosArchivosDeLaEstacionSoloLosLeeSuDueno) {
    ASSERT_TRUE(ponEspanol(*QCoreApplication::instance()));
    EXPECT_EQ(QLocale().name(), "es_MX");
    EXPECT_EQ(QCoreApplication::translate("QPlatformTheme", "Cancel"), "Cancelar");
    AjustesEstacion ajustes(carpeta_.path());
    const auto ajenos = QFileDevice::ReadGroup | QFileDevice::WriteGroup | QFileDevice::ReadOther |
                        QFileDevice::WriteOther;
    for (const QString& archivo : {ajustes.ruta(), carpeta_.filePath("Cajaplex.db")}) {
        EXPECT_TRUE(QFile::permissions(archivo) & QFileDevice::ReadOwner) << qPrintable(archivo);
        EXPECT_FALSE(QFile::permissions(archivo) & ajenos) << qPrintable(archivo);
    }
}

TEST_F(AccesoTest, EnterEnLaContrasenaIngresa) {
    auto v = abreVentana();
    control<QLineEdit>(*v, "NombreUsuario")->setText("cajero");
    auto* contrasena = control<QLineEdit>(*v, "ContrasenaUsuario");
    QTest::keyClick(contrasena, Qt::Key_Return); // sin contraseña no hace nada
    QTest::qWait(30);
    EXPECT_TRUE(Mensajes::ultimos().isEmpty());
    contrasena->setText("cajero");
    QTest::keyClick(contrasena, Qt::Key_Return);
    EXPECT_TRUE(esperaHasta([&] { return v->sesionAbierta(); }));
}

TEST_F(AccesoTest, DispositivoNoRegistradoNoEntraYErrorDeConexion) {
    auto v = abreVentana();
    const QString id = control<QLineEdit>(*v, "DispositivoID")->text();
    c.exige(
        "Insert into DispositivosRED (ReferenciaID, descripcion) values ('OTRA-CAJA', 'Caja 2')");
    EXPECT_EQ(ingresa(*v, "cajero", "cajero"), QStringList{"Dispositivo NO Autorizado: " + id});
    c.exige("Insert into DispositivosRED (ReferenciaID) values (:id)",
            {{"id", texto(id.toStdString())}});
    EXPECT_TRUE(ingresa(*v, "cajero", "cajero").isEmpty());
    EXPECT_TRUE(v->sesionAbierta());

    auto otra = abreVentana();
    control<QLineEdit>(*otra, "ServidorPuerto")->setText("1");
    EXPECT_EQ(ingresa(*otra, "cajero", "cajero"),
              QStringList{"Error de conexión, verifique los datos introducidos."});
}

} // namespace
} // namespace cajaplex
