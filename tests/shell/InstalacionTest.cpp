// Instalación de una estación con un administrador: por la terminal (guiones) y con su cuadro, y
// lo que ve al entrar una estación revocada o ante otro certificado.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QFile>
#include <QFileDevice>
#include <QLineEdit>
#include <QProcess>
#include <QTemporaryDir>

#include "datos/AjustesEstacion.h"
#include "datos/ControlAcceso.h"
#include "datos/ModuloDatos.h"
#include "pantallas/Mensajes.h"
#include "security/InicioSesion.h"
#include "shell/Instalacion.h"
#include "shell/InstalacionEstacion.h"
#include "tests/fixtures/Toques.h"

namespace cajaplex {
namespace {

using namespace prueba;

struct Corrida {
    int salida = -1;
    QString texto; // salida estándar y de errores
};

class InstalacionTest : public ConPantallas {
protected:
    // La aplicación real con --instala ... --administrador; la contraseña llega por la entrada.
    Corrida instalaPorTerminal(const QString& carpeta, const QString& administrador,
                               const QString& contrasena, const QString& huella) {
        QProcess proceso;
        proceso.setProcessChannelMode(QProcess::MergedChannels);
        QStringList argumentos{
            QStringLiteral("--configuracion"), carpeta,
            QStringLiteral("--instala"),       QStringLiteral("127.0.0.1:%1").arg(cifrado.puerto()),
            QStringLiteral("--administrador"), administrador,
            QStringLiteral("--descripcion"),   QStringLiteral("Caja 2")};
        if (!huella.isEmpty()) argumentos << QStringLiteral("--huella") << huella;
        proceso.start(QStringLiteral(CAJAPLEX_RUTA), argumentos);
        EXPECT_TRUE(proceso.waitForStarted());
        proceso.write((contrasena + QLatin1Char('\n')).toUtf8());
        proceso.closeWriteChannel();
        EXPECT_TRUE(proceso.waitForFinished(60000));
        return {proceso.exitCode(), QString::fromUtf8(proceso.readAll())};
    }

    QString huella() const { return QString::fromStdString(cifrado.huella()); }

    ServicioPrueba cifrado{true, {"--tls"}};
    Cliente enCifrado = cifrado.cliente();
    QTemporaryDir carpeta_;
};

TEST_F(InstalacionTest, PorTerminalGuardaSoloLasCredencialesDeLaEstacionYLaHuella) {
    // Un cajero no instala, y una huella que no es la del servicio detiene todo antes de pedir
    // nada: en ningún caso quedan credenciales.
    const Corrida cajero = instalaPorTerminal(carpeta_.path(), QStringLiteral("cajero"),
                                              QStringLiteral("cajero"), huella());
    EXPECT_EQ(cajero.salida, 1);
    EXPECT_TRUE(cajero.texto.contains(QString::fromUtf8(MensajeAdministradorErroneo)))
        << cajero.texto.toStdString();
    QString otra = huella();
    otra.replace(
        0, 2, otra.startsWith(QStringLiteral("00")) ? QStringLiteral("11") : QStringLiteral("00"));
    const Corrida impostor =
        instalaPorTerminal(carpeta_.path(), QStringLiteral("admin"), QStringLiteral("admin"), otra);
    EXPECT_EQ(impostor.salida, 1);
    EXPECT_TRUE(AjustesEstacion(carpeta_.path()).usuarioServicio().isEmpty());
    EXPECT_EQ(enCifrado.cuenta("DispositivosRED"), 0);

    const Corrida bien = instalaPorTerminal(carpeta_.path(), QStringLiteral("admin"),
                                            QStringLiteral("admin"), huella().toLower());
    ASSERT_EQ(bien.salida, 0) << bien.texto.toStdString();
    EXPECT_TRUE(bien.texto.contains(QStringLiteral("Huella SHA-256 del servicio: ") + huella()));

    AjustesEstacion ajustes(carpeta_.path());
    EXPECT_TRUE(ajustes.usuarioServicio().startsWith(QStringLiteral("estacion-")));
    EXPECT_TRUE(ajustes.usaTls());
    EXPECT_EQ(ajustes.huellaServidor(), huella());
    EXPECT_EQ(QFile::permissions(ajustes.ruta()) & 0x7777,
              QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadUser |
                  QFileDevice::WriteUser);
    QFile archivo(ajustes.ruta());
    ASSERT_TRUE(archivo.open(QIODevice::ReadOnly));
    const QByteArray contenido = archivo.readAll();
    EXPECT_FALSE(contenido.contains("admin")) << contenido.toStdString();
    EXPECT_FALSE(contenido.contains(QByteArray::fromStdString(kUsuarioDemo)));
    EXPECT_EQ(enCifrado.valor("Select descripcion From DispositivosRED Where ReferenciaID = :r",
                              {{"r", texto(ajustes.dispositivoID().toStdString())}}),
              "Caja 2");

    // La estación instalada entra con sus credenciales.
    ConexionBD estacion;
    ajustes.configuraConexion(estacion);
    EXPECT_NO_THROW(estacion.conecta());
}

TEST_F(InstalacionTest, ElCuadroPideConfirmarLaHuellaYConservaLoEscritoSiNoEsAdministrador) {
    AjustesEstacion ajustes(carpeta_.path());
    DatosInstalacion instalacion;
    instalacion.direccion = QStringLiteral("127.0.0.1");
    instalacion.puerto = cifrado.puerto();
    instalacion.servicio = exploraServicio(instalacion.direccion, instalacion.puerto);
    ASSERT_TRUE(instalacion.servicio.tls);
    EXPECT_EQ(instalacion.servicio.huella, huella());
    instalacion.descripcion = QStringLiteral("Mostrador");
    TInstalacionEstacionF cuadro(ajustes, instalacion);
    cuadro.show();
    EXPECT_EQ(rotulo(cuadro, "HuellaServicio").remove(QLatin1Char('\n')), huella().remove(47, 1));

    toca(cuadro, "BotonInstalar");
    escribe(cuadro, "UsuarioAdministrador", QStringLiteral("cajero"));
    toca(cuadro, "BotonInstalar");
    escribe(cuadro, "ContrasenaAdministrador", QStringLiteral("cajero"));
    toca(cuadro, "BotonInstalar");
    EXPECT_EQ(Mensajes::ultimos(),
              (QStringList{"Ingrese Usuario", "Ingrese Contraseña",
                           "Confirme que la huella coincide con la que mostró el servicio"}));

    control<QCheckBox>(cuadro, "ConfirmaHuella")->setChecked(true);
    toca(cuadro, "BotonInstalar");
    EXPECT_EQ(Mensajes::ultimos(), QStringList{QString::fromUtf8(MensajeAdministradorErroneo)});
    EXPECT_EQ(control<QLineEdit>(cuadro, "UsuarioAdministrador")->text(), "cajero");
    EXPECT_EQ(control<QLineEdit>(cuadro, "ContrasenaAdministrador")->text(), "cajero");
    EXPECT_EQ(control<QLineEdit>(cuadro, "DescripcionEstacion")->text(), "Mostrador");
    EXPECT_EQ(cuadro.result(), 0);

    escribe(cuadro, "UsuarioAdministrador", QStringLiteral("admin"));
    escribe(cuadro, "ContrasenaAdministrador", QStringLiteral("admin"));
    toca(cuadro, "BotonInstalar");
    EXPECT_EQ(Mensajes::ultimos(), QStringList{"Estación instalada"});
    EXPECT_EQ(cuadro.result(), QDialog::Accepted);
    AjustesEstacion guardados(carpeta_.path());
    EXPECT_TRUE(guardados.usuarioServicio().startsWith(QStringLiteral("estacion-")));
    EXPECT_EQ(enCifrado.valor("Select descripcion From DispositivosRED"), "Mostrador");
}

TEST_F(InstalacionTest, AlEntrarUnaEstacionRevocadaYUnCertificadoDistintoTienenSuMensaje) {
    AjustesEstacion ajustes(carpeta_.path());
    DatosInstalacion instalacion{
        QStringLiteral("127.0.0.1"), cifrado.puerto(),        ServicioEncontrado{true, huella()},
        QStringLiteral("admin"),     QStringLiteral("admin"), QStringLiteral("Caja 3")};
    instalaEstacion(ajustes, instalacion);
    const QString id = ajustes.dispositivoID();
    const DatosAcceso acceso{QStringLiteral("127.0.0.1"), QString::number(cifrado.puerto()),
                             QStringLiteral("cajero"), QStringLiteral("cajero")};
    InicioSesion inicio(ModuloDeDatos, ajustes, id);
    EXPECT_TRUE(inicio.valida(acceso).aceptado());

    enCifrado.exige("Delete From DispositivosRED");
    EXPECT_EQ(inicio.valida(acceso).mensaje,
              QString::fromUtf8(MensajeDispositivoNoAutorizado) + id);

    // Otro servicio en la misma dirección con su propio certificado: nada sale de la estación.
    ServicioPrueba impostor(true, {"--tls"});
    const DatosAcceso otro{QStringLiteral("127.0.0.1"), QString::number(impostor.puerto()),
                           QStringLiteral("admin"), QStringLiteral("admin")};
    EXPECT_EQ(inicio.valida(otro).mensaje, QString::fromUtf8(MensajeCertificadoCambio));
}

} // namespace
} // namespace cajaplex
