#include "shell/Instalacion.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLibrary>
#include <QLibraryInfo>
#include <QLocale>
#include <QRandomGenerator>
#include <QTranslator>
#include <QUuid>

#include "datos/AjustesEstacion.h"
#include "datos/ConexionBD.h"
#include "datos/ModuloDatos.h"

namespace cajaplex {

QStringList bibliotecasRequeridas() {
    return {QStringLiteral(CAJAPLEX_BIBLIOTECA_PDF), QStringLiteral(CAJAPLEX_BIBLIOTECA_CODIGOS)};
}

bool bibliotecaDisponible(const QString& archivo) {
    // Cargarla de verdad: un archivo presente pero incompleto tampoco sirve.
    QLibrary biblioteca(archivo);
    return biblioteca.load();
}

QString buscaBaseLocal(const QString& carpeta) {
    const QDir dir(carpeta);
    for (const char* nombre : {ArchivoBaseLocalNueva, ArchivoBaseLocal}) {
        const QString ruta = dir.filePath(QString::fromLatin1(nombre));
        if (QFileInfo(ruta).isFile()) return ruta;
    }
    return {};
}

QStringList archivosFaltantes(const QString& carpeta, const QStringList& bibliotecas) {
    QStringList avisos;
    if (buscaBaseLocal(carpeta).isEmpty())
        avisos << QString::fromUtf8(MensajeArchivoFaltante) + QString::fromLatin1(ArchivoBaseLocal);
    for (const QString& biblioteca : bibliotecas)
        if (!bibliotecaDisponible(biblioteca))
            avisos << QString::fromUtf8(MensajeArchivoFaltante) + biblioteca;
    return avisos;
}

QString versionPrograma() {
    return QStringLiteral(CAJAPLEX_VERSION);
}

QString dispositivoDeLaEstacion(AjustesEstacion& ajustes) {
    QString id = ajustes.dispositivoID();
    if (id.isEmpty()) {
        id = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
        ajustes.ponDispositivoID(id);
        ajustes.guarda();
    }
    return id;
}

void preparaEstacion(AjustesEstacion& ajustes, const QString& direccion, int puerto,
                     const QString& usuarioServicio, const QString& contrasenaServicio) {
    ajustes.ponDireccionServidor(direccion);
    ajustes.ponPuertoServidor(puerto);
    ajustes.ponCredencialesServicio(usuarioServicio, contrasenaServicio);
    if (ajustes.contrasenaBaseLocal().isEmpty()) {
        const quint64 partes[2] = {QRandomGenerator::system()->generate64(),
                                   QRandomGenerator::system()->generate64()};
        ajustes.ponContrasenaBaseLocal(QString::fromLatin1(
            QByteArray(reinterpret_cast<const char*>(partes), sizeof partes).toHex()));
    }
    dispositivoDeLaEstacion(ajustes);
    if (!ajustes.guarda())
        throw ErrorServicio("base_local", 0, "no se pudo escribir " + ajustes.ruta().toStdString());

    // Abrir la base con su contraseña la crea cifrada, con sus tablas, si aún no existe.
    TModuloDeDatos modulo;
    modulo.ArchivoLocalBD = buscaBaseLocal(ajustes.carpeta());
    if (modulo.ArchivoLocalBD.isEmpty())
        modulo.ArchivoLocalBD =
            QDir(ajustes.carpeta()).filePath(QString::fromLatin1(ArchivoBaseLocal));
    modulo.ContrasenaLocalBD = ajustes.contrasenaBaseLocal();
    modulo.ConexionLocalBD.abre();
    modulo.ConexionLocalBD.cierra();
    // Credenciales y base cifrada: solo las lee el dueño, aunque se hayan creado con otra umask.
    for (const QString& archivo : {ajustes.ruta(), modulo.ArchivoLocalBD})
        QFile::setPermissions(archivo, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
}

namespace {

bool esDireccionLocal(const QString& direccion) {
    const QString d = direccion.trimmed().toLower();
    return d == QStringLiteral("localhost") || d == QStringLiteral("::1") ||
           d.startsWith(QStringLiteral("127."));
}

} // namespace

ServicioEncontrado exploraServicio(const QString& direccion, int puerto) {
    ServicioEncontrado encontrado;
    encontrado.huella = ConexionBD::huellaServicio(direccion, puerto);
    encontrado.tls = !encontrado.huella.isEmpty();
    if (!encontrado.tls && !esDireccionLocal(direccion))
        throw ErrorServicio(CodigoConexion, 0, MensajeSinCifrado);
    return encontrado;
}

void instalaEstacion(AjustesEstacion& ajustes, const DatosInstalacion& datos) {
    const QString esquema = datos.servicio.tls ? QStringLiteral("https") : QStringLiteral("http");
    const QString dispositivo = dispositivoDeLaEstacion(ajustes);
    CredencialesEstacion credenciales;
    {
        ConexionBD administrador;
        administrador.configura(datos.direccion, datos.puerto, datos.administrador,
                                datos.contrasena, esquema);
        administrador.fijaHuella(datos.servicio.huella);
        credenciales = administrador.solicitaCredencialesEstacion(dispositivo, datos.descripcion);
    }
    ajustes.ponTls(datos.servicio.tls, datos.servicio.huella);
    preparaEstacion(ajustes, datos.direccion, datos.puerto, credenciales.usuario,
                    credenciales.contrasena);
    ConexionBD estacion;
    ajustes.configuraConexion(estacion);
    estacion.conecta();
}

QString mensajeInstalacion(const ErrorServicio& error) {
    if (error.codigo() == CodigoCertificado) return QString::fromUtf8(MensajeCertificadoCambio);
    if (error.estadoHttp() == 401) return QString::fromUtf8(MensajeAdministradorErroneo);
    if (error.mensaje() == QString::fromUtf8(MensajeSinCifrado)) return error.mensaje();
    return QString::fromUtf8(MensajeErrorConexionInstalacion);
}

bool ponEspanol(QCoreApplication& aplicacion) {
    QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Mexico));
    auto* traductor = new QTranslator(&aplicacion);
    if (!traductor->load(QLocale(), QStringLiteral("qtbase"), QStringLiteral("_"),
                         QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        delete traductor;
        return false;
    }
    return QCoreApplication::installTranslator(traductor);
}

} // namespace cajaplex
