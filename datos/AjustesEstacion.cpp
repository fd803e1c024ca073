#include "datos/AjustesEstacion.h"

#include <utility>

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include "datos/ConexionBD.h"

namespace cajaplex {
namespace {

const QString kSeccion = QStringLiteral("CajaplexOmnivar/");
constexpr int kPuertoOmision = 8080;

QString& carpetaPredeterminada() {
    static QString carpeta;
    return carpeta;
}

QString rutaArchivo(QString carpeta) {
    if (carpeta.isEmpty()) carpeta = carpetaPredeterminada();
    if (carpeta.isEmpty())
        carpeta = QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation);
    return QDir(carpeta).filePath(QStringLiteral("Cajaplex.ini"));
}

} // namespace

void AjustesEstacion::ponCarpetaPredeterminada(const QString& carpeta) {
    carpetaPredeterminada() = carpeta;
}

AjustesEstacion::AjustesEstacion(QString carpeta)
    : ajustes_(rutaArchivo(std::move(carpeta)), QSettings::IniFormat) {}

QString AjustesEstacion::carpeta() const {
    return QFileInfo(ajustes_.fileName()).absolutePath();
}

QString AjustesEstacion::direccionServidor() const {
    return valor(QStringLiteral("DireccionWEBService")).toString().trimmed();
}

void AjustesEstacion::ponDireccionServidor(const QString& direccion) {
    ponValor(QStringLiteral("DireccionWEBService"), direccion.trimmed());
}

int AjustesEstacion::puertoServidor() const {
    bool ok = false;
    const int puerto = valor(QStringLiteral("PuertoWEBService")).toString().trimmed().toInt(&ok);
    // Un archivo editado a mano con un puerto inválido no debe dejar la estación sin servidor.
    if (!ok || puerto < 1 || puerto > 65535) return kPuertoOmision;
    return puerto;
}

void AjustesEstacion::ponPuertoServidor(int puerto) {
    ponValor(QStringLiteral("PuertoWEBService"), puerto);
}

bool AjustesEstacion::utilizarSonidos() const {
    return valor(QStringLiteral("UtilizarSonidos"), true).toBool();
}

void AjustesEstacion::ponUtilizarSonidos(bool utilizar) {
    ponValor(QStringLiteral("UtilizarSonidos"), utilizar);
}

QString AjustesEstacion::usuarioServicio() const {
    return valor(QStringLiteral("UsuarioWEBService")).toString();
}

QString AjustesEstacion::contrasenaServicio() const {
    return valor(QStringLiteral("ContrasenaWEBService")).toString();
}

void AjustesEstacion::ponCredencialesServicio(const QString& usuario, const QString& contrasena) {
    ponValor(QStringLiteral("UsuarioWEBService"), usuario);
    ponValor(QStringLiteral("ContrasenaWEBService"), contrasena);
}

bool AjustesEstacion::usaTls() const {
    return valor(QStringLiteral("TLSWEBService"), false).toBool();
}

QString AjustesEstacion::huellaServidor() const {
    return valor(QStringLiteral("HuellaWEBService")).toString().trimmed();
}

void AjustesEstacion::ponTls(bool usa, const QString& huella) {
    ponValor(QStringLiteral("TLSWEBService"), usa);
    ponValor(QStringLiteral("HuellaWEBService"), usa ? huella.trimmed() : QString());
}

void AjustesEstacion::configuraConexion(ConexionBD& conexion) const {
    conexion.configura(direccionServidor(), puertoServidor(), usuarioServicio(),
                       contrasenaServicio(),
                       usaTls() ? QStringLiteral("https") : QStringLiteral("http"));
    conexion.fijaHuella(huellaServidor());
}

QString AjustesEstacion::contrasenaBaseLocal() const {
    return valor(QStringLiteral("ContrasenaBaseLocal")).toString();
}

void AjustesEstacion::ponContrasenaBaseLocal(const QString& contrasena) {
    ponValor(QStringLiteral("ContrasenaBaseLocal"), contrasena);
}

QString AjustesEstacion::dispositivoID() const {
    return valor(QStringLiteral("DispositivoID")).toString().trimmed();
}

void AjustesEstacion::ponDispositivoID(const QString& id) {
    ponValor(QStringLiteral("DispositivoID"), id.trimmed());
}

QVariant AjustesEstacion::valor(const QString& clave, const QVariant& omision) const {
    return ajustes_.value(kSeccion + clave, omision);
}

void AjustesEstacion::ponValor(const QString& clave, const QVariant& valor) {
    ajustes_.setValue(kSeccion + clave, valor);
}

bool AjustesEstacion::guarda() {
    // QSettings no crea la carpeta de configuración si aún no existe.
    QDir().mkpath(QFileInfo(ajustes_.fileName()).absolutePath());
    ajustes_.sync();
    return ajustes_.status() == QSettings::NoError;
}

} // namespace cajaplex
