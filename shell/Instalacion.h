#pragma once

#include <QString>
#include <QStringList>

class QCoreApplication;

namespace cajaplex {

class AjustesEstacion;

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

// Español de México en todo: los textos propios de Qt (menús contextuales, calendarios, botones
// de diálogos) y el formato de fechas y números. Falso si faltan las traducciones de Qt.
bool ponEspanol(QCoreApplication& aplicacion);

} // namespace cajaplex
