#pragma once

#include <QString>
#include <QStringList>

class QCoreApplication;

namespace cajaplex {

class AjustesEstacion;
class ErrorServicio;

inline constexpr const char* ArchivoBaseLocalNueva = "CajaplexNueva.db";
inline constexpr const char* ArchivoBaseLocal = "Cajaplex.db";
inline constexpr const char* MensajeArchivoFaltante = "No existe el Archivo: ";

// Lo que el arranque revisa de la instalación de la estación. Las pruebas cambian las
// bibliotecas para simular una que falta.
struct Instalacion {
    QString carpeta; // la de Cajaplex.ini y la base local; vacía: la del usuario
    QStringList bibliotecas;
};

// Los archivos de las bibliotecas de PDF y de códigos de barras con que se compiló el programa.
QStringList bibliotecasRequeridas();
bool bibliotecaDisponible(const QString& archivo);

// La base local de la estación: primero CajaplexNueva.db (copia recién instalada), luego
// Cajaplex.db; vacío si no hay ninguna.
QString buscaBaseLocal(const QString& carpeta);

// Los avisos del arranque, en orden: base local y luego cada biblioteca que falte.
QStringList archivosFaltantes(const QString& carpeta, const QStringList& bibliotecas);

QString versionPrograma();

// El identificador de la estación; la primera vez se genera y se guarda en los ajustes.
QString dispositivoDeLaEstacion(AjustesEstacion& ajustes);

// Deja una estación lista para conectarse a un servicio: dirección, puerto y credenciales del
// servicio en Cajaplex.ini y la base local cifrada (con su contraseña, generada una vez).
// Lanza ErrorServicio si no pudo crear la base o escribir los ajustes.
void preparaEstacion(AjustesEstacion& ajustes, const QString& direccion, int puerto,
                     const QString& usuarioServicio, const QString& contrasenaServicio);

// Lo que la estación sabe del servicio antes de instalarse: si habla HTTPS y la huella SHA-256 de
// su certificado, que quien instala compara con la que el servicio mostró al arrancar.
struct ServicioEncontrado {
    bool tls = false;
    QString huella;
};

inline constexpr const char* MensajeSinCifrado =
    "El servicio no contesta HTTPS; fuera de esta máquina solo se instala con cifrado";
inline constexpr const char* MensajeAdministradorErroneo =
    "Usuario y/o Contraseña erróneas, o el usuario no es Administrador";
inline constexpr const char* MensajeErrorConexionInstalacion =
    "Error de conexión, verifique los datos introducidos.";

// HTTPS si el servicio lo contesta; sin él, solo se acepta una dirección de esta máquina (el
// servicio cifra siempre fuera de ella, así que lo contrario sería otro equipo haciéndose pasar
// por él). Lanza ErrorServicio con MensajeSinCifrado.
ServicioEncontrado exploraServicio(const QString& direccion, int puerto);

// Lo que la instalación pide a quien instala.
struct DatosInstalacion {
    QString direccion;
    int puerto = 0;
    ServicioEncontrado servicio; // con la huella ya confirmada
    QString administrador;
    QString contrasena;
    QString descripcion;
};

// Con el usuario y la contraseña de un administrador pide al servicio las credenciales propias de
// esta estación (ligadas a su DispositivoID) y deja en Cajaplex.ini solo esas y la huella; prepara
// la base local y prueba las credenciales nuevas. La contraseña del administrador no se guarda.
// Lanza ErrorServicio (401: no es administrador; CodigoCertificado: otro certificado).
void instalaEstacion(AjustesEstacion& ajustes, const DatosInstalacion& datos);

// El mensaje para quien instala de un error de instalaEstacion.
QString mensajeInstalacion(const ErrorServicio& error);

// Español de México en todo: los textos propios de Qt (menús contextuales, calendarios, botones
// de diálogos) y el formato de fechas y números. Falso si faltan las traducciones de Qt.
bool ponEspanol(QCoreApplication& aplicacion);

} // namespace cajaplex
