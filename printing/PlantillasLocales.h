#pragma once

#include <cstdint>

#include <QList>
#include <QString>
#include <QStringList>

namespace cajaplex {

class ConexionBD;
class ConexionDatos;
class ConexionLocalBD;
class TModuloDeDatos;
struct Sesion;

// Módulo de la bitácora para todo cambio de plantillas.
inline constexpr const char* ModuloAuditoriaPlantillas = "Impresión -> Plantillas";

// Una plantilla de Reportes con el nombre de su carpeta.
struct Plantilla {
    int64_t reporteID = 0;
    int64_t carpetaID = 0;
    QString carpeta;
    QString nombre;
    QString texto;
    bool predeterminada = false;
};

// Las carpetas que el sistema imprime, cada una con su plantilla predeterminada en los recursos
// (:/plantillas/*.html).
const QStringList& carpetasPlantillas();
QString nombrePlantillaPredeterminada(const QString& carpeta);
// El HTML que viaja con la aplicación para la carpeta (vacío si no la conoce).
QString textoPlantillaPredeterminada(const QString& carpeta);

// Da de alta en el servicio las carpetas y plantillas predeterminadas que le falten a la empresa
// de la sesión, en una transacción con su renglón de bitácora. Devuelve cuántas plantillas
// agregó. Lanza ErrorServicio.
int agregaPlantillasPredeterminadas(ConexionBD& conexion, const Sesion& sesion);

// Al iniciar sesión (y tras cambiar plantillas): agrega las predeterminadas que falten y trae a
// la base local de la estación solo las plantillas cuya versión cambió en el servicio; borra las
// que ya no existen. Abre la base local si está cerrada. Así imprimir no lee plantillas del
// servicio. Devuelve cuántas plantillas copió. Lanza ErrorServicio.
int actualizaCopiaLocalPlantillas(TModuloDeDatos& modulo, const Sesion& sesion);

// De la copia local: la plantilla de ese nombre en la carpeta; sin nombre, la predeterminada de
// la carpeta (o la primera por nombre si ninguna lo es). Lanza RegistroInexistente si no hay.
Plantilla plantillaLocal(ConexionLocalBD& local, int64_t empresaID, const QString& carpeta,
                         const QString& nombre = {});

// Del servicio: las plantillas de la carpeta (sin su texto), por nombre.
QList<Plantilla> plantillasCarpeta(ConexionDatos& conexion, int64_t empresaID,
                                   const QString& carpeta);

} // namespace cajaplex
