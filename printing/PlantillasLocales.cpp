#include "printing/PlantillasLocales.h"

#include <QFile>
#include <QHash>
#include <QSet>

#include "datos/Auditoria.h"
#include "datos/ConexionLocalBD.h"
#include "datos/Consulta.h"
#include "datos/ModuloDatos.h"
#include "datos/Sesion.h"
#include "datos/Transaccion.h"

namespace cajaplex {
namespace {

// Junto a la tabla Reportes de la base local: la carpeta, la bandera de predeterminada y la
// versión del servicio de cada plantilla copiada, para saber cuáles cambiaron.
constexpr const char* SqlCreaEstadoLocal =
    "Create Table If Not Exists PlantillasEstacion ("
    " empresaID INTEGER NOT NULL, reporteID INTEGER NOT NULL, carpeta TEXT,"
    " predeterminada INTEGER, version TEXT, PRIMARY KEY (empresaID, reporteID))";
constexpr const char* SqlEstadoLocal =
    "Select reporteID, version From PlantillasEstacion Where empresaID = :empresaID";
constexpr const char* SqlGuardaEstadoLocal =
    "Insert or Replace Into PlantillasEstacion (empresaID, reporteID, carpeta, predeterminada, "
    "version) Values (:empresaID, :reporteID, :carpeta, :predeterminada, :version)";
constexpr const char* SqlBorraEstadoLocal =
    "Delete From PlantillasEstacion Where empresaID = :empresaID and reporteID = :reporteID";
constexpr const char* SqlBorraPlantillaLocal =
    "Delete From Reportes Where empresaID = :empresaID and reporteID = :reporteID";
constexpr const char* SqlBuscaLocal =
    "Select R.reporteID From Reportes R, PlantillasEstacion E "
    "Where R.empresaID = :empresaID and E.empresaID = R.empresaID "
    "and E.reporteID = R.reporteID and E.carpeta = :carpeta "
    "and (R.Nombre = :nombre or :nombre = '') "
    "Order by E.predeterminada desc, R.Nombre Limit 1";

// La versión de cada plantilla en el servicio; la fecha distingue una plantilla borrada de otra
// nueva que reutilizó su llave.
constexpr const char* SqlVersiones =
    "Select A.reporteID, A.carpetaID, A.Nombre, B.nombre as carpeta, "
    "ifnull(A.predeterminada,0) as predeterminada, "
    "A.version || '|' || ifnull(A.fechaModificacion,'') as version "
    "From Reportes A, ReportesCarpetas B Where A.empresaID = :EmpresaID "
    "and B.empresaID = A.empresaID and B.carpetaID = A.carpetaID";
constexpr const char* SqlTextoPlantilla =
    "Select plantilla From Reportes Where empresaID = :EmpresaID and reporteID = :ReporteID";
constexpr const char* SqlPlantillasCarpeta =
    "Select A.reporteID, A.carpetaID, A.Nombre, B.nombre as carpeta, "
    "ifnull(A.predeterminada,0) as predeterminada "
    "From Reportes A, ReportesCarpetas B Where A.empresaID = :EmpresaID "
    "and A.empresaID = B.empresaID and A.carpetaID = B.carpetaID and B.nombre = :Modulo "
    "Order by A.Nombre";

constexpr const char* SqlCarpetas =
    "Select carpetaID, nombre From ReportesCarpetas Where empresaID = :EmpresaID";
constexpr const char* SqlCuentaPlantillas =
    "Select count(*) as n From Reportes Where empresaID = :EmpresaID and carpetaID = :CarpetaID";
constexpr const char* SqlAltaCarpeta =
    "Insert Into ReportesCarpetas (empresaID, nombre) Values (:EmpresaID, :Nombre)";
constexpr const char* SqlAltaPlantilla =
    "Insert Into Reportes (empresaID, carpetaID, Nombre, plantilla, predeterminada) "
    "Values (:EmpresaID, :CarpetaID, :Nombre, :Plantilla, 1)";

struct Predeterminada {
    const char* carpeta;
    const char* nombre;
    const char* archivo;
};

// Ventas usa el mismo ticket que Remisión: son los mismos datos de una venta.
constexpr Predeterminada kPredeterminadas[] = {
    {"Remisión", "Ticket de Venta", ":/plantillas/Remision.html"},
    {"Ventas", "Ticket de Venta", ":/plantillas/Remision.html"},
    {"Comanda", "Comanda", ":/plantillas/Comanda.html"},
    {"Cuenta", "Cuenta", ":/plantillas/Cuenta.html"},
    {"Cotizaciones", "Cotización", ":/plantillas/Cotizaciones.html"},
    {"Compras", "Orden de Compra", ":/plantillas/Compras.html"},
    {"Corte de Caja", "Corte de Caja", ":/plantillas/CorteCaja.html"},
};

const Predeterminada* predeterminada(const QString& carpeta) {
    for (const auto& p : kPredeterminadas)
        if (carpeta == QString::fromUtf8(p.carpeta)) return &p;
    return nullptr;
}

void preparaLocal(ConexionLocalBD& local) {
    Consulta(local, QString::fromUtf8(SqlCreaEstadoLocal)).ejecuta();
}

} // namespace

const QStringList& carpetasPlantillas() {
    static const QStringList carpetas = [] {
        QStringList l;
        for (const auto& p : kPredeterminadas)
            l << QString::fromUtf8(p.carpeta);
        return l;
    }();
    return carpetas;
}

QString nombrePlantillaPredeterminada(const QString& carpeta) {
    const Predeterminada* p = predeterminada(carpeta);
    return p ? QString::fromUtf8(p->nombre) : QString();
}

QString textoPlantillaPredeterminada(const QString& carpeta) {
    const Predeterminada* p = predeterminada(carpeta);
    if (!p) return {};
    QFile archivo(QString::fromUtf8(p->archivo));
    if (!archivo.open(QIODevice::ReadOnly)) return {};
    return QString::fromUtf8(archivo.readAll());
}

int agregaPlantillasPredeterminadas(ConexionBD& conexion, const Sesion& sesion) {
    // Primero una lectura sin transacción: lo normal es que no falte nada.
    Consulta carpetas(conexion, QString::fromUtf8(SqlCarpetas));
    Consulta cuenta(conexion, QString::fromUtf8(SqlCuentaPlantillas));
    const auto faltantes = [&](Transaccion* t) {
        QHash<QString, int64_t> ids;
        carpetas.parametro(QStringLiteral("EmpresaID")).entero(sesion.EmpresaID);
        t ? carpetas.abre(*t) : carpetas.abre();
        for (const Registro r : carpetas)
            ids.insert(r.campo(QStringLiteral("nombre")).comoTexto(),
                       r.campo(QStringLiteral("carpetaID")).comoEntero());
        QHash<QString, int64_t> faltan; // carpeta -> carpetaID (0: falta la carpeta)
        for (const QString& c : carpetasPlantillas()) {
            const int64_t id = ids.value(c, 0);
            if (id != 0) {
                cuenta.parametro(QStringLiteral("EmpresaID")).entero(sesion.EmpresaID);
                cuenta.parametro(QStringLiteral("CarpetaID")).entero(id);
                t ? cuenta.abre(*t) : cuenta.abre();
                if (cuenta.campo(QStringLiteral("n")).comoEntero() > 0) continue;
            }
            faltan.insert(c, id);
        }
        return faltan;
    };
    if (faltantes(nullptr).isEmpty()) return 0;

    Transaccion t(conexion);
    // Otra estación pudo agregarlas mientras: se revisa de nuevo dentro de la transacción.
    const QHash<QString, int64_t> faltan = faltantes(&t);
    if (faltan.isEmpty()) return 0;
    Consulta altaCarpeta(QString::fromUtf8(SqlAltaCarpeta));
    Consulta altaPlantilla(QString::fromUtf8(SqlAltaPlantilla));
    QStringList agregadas;
    for (const QString& carpeta : carpetasPlantillas()) {
        if (!faltan.contains(carpeta)) continue;
        int64_t carpetaID = faltan.value(carpeta);
        if (carpetaID == 0) {
            altaCarpeta.parametro(QStringLiteral("EmpresaID")).entero(sesion.EmpresaID);
            altaCarpeta.parametro(QStringLiteral("Nombre")).texto(carpeta);
            altaCarpeta.ejecuta(t);
            carpetaID = altaCarpeta.ultimoId();
        }
        altaPlantilla.parametro(QStringLiteral("EmpresaID")).entero(sesion.EmpresaID);
        altaPlantilla.parametro(QStringLiteral("CarpetaID")).entero(carpetaID);
        altaPlantilla.parametro(QStringLiteral("Nombre"))
            .texto(nombrePlantillaPredeterminada(carpeta));
        altaPlantilla.parametro(QStringLiteral("Plantilla"))
            .blob(textoPlantillaPredeterminada(carpeta).toUtf8());
        altaPlantilla.ejecuta(t);
        agregadas << carpeta;
    }
    Auditoria::registra(
        t, sesion,
        {QString::fromUtf8(tipoAuditoria::Insercion), QString::fromUtf8(ModuloAuditoriaPlantillas),
         QStringLiteral("Plantillas predeterminadas: ") + agregadas.join(QStringLiteral(", ")),
         QString(), QString()});
    t.confirma();
    return static_cast<int>(agregadas.size());
}

int actualizaCopiaLocalPlantillas(TModuloDeDatos& modulo, const Sesion& sesion) {
    agregaPlantillasPredeterminadas(modulo.ConexionBD, sesion);
    ConexionLocalBD& local = modulo.ConexionLocalBD;
    if (!local.abierta()) local.abre();
    preparaLocal(local);

    Consulta estado(local, QString::fromUtf8(SqlEstadoLocal));
    estado.parametro(QStringLiteral("empresaID")).entero(sesion.EmpresaID);
    estado.abre();
    QHash<int64_t, QString> versionesLocales;
    for (const Registro r : estado)
        versionesLocales.insert(r.campo(QStringLiteral("reporteID")).comoEntero(),
                                r.campo(QStringLiteral("version")).comoTexto());

    Consulta versiones(modulo.ConexionBD, QString::fromUtf8(SqlVersiones));
    versiones.parametro(QStringLiteral("EmpresaID")).entero(sesion.EmpresaID);
    versiones.abre();
    Consulta texto(modulo.ConexionBD, QString::fromUtf8(SqlTextoPlantilla));
    Consulta guarda(local, QString::fromUtf8(SqlGuardaPlantillaLocal));
    Consulta guardaEstado(local, QString::fromUtf8(SqlGuardaEstadoLocal));
    int copiadas = 0;
    QSet<int64_t> vigentes;
    for (const Registro r : versiones) {
        const int64_t id = r.campo(QStringLiteral("reporteID")).comoEntero();
        const QString version = r.campo(QStringLiteral("version")).comoTexto();
        vigentes.insert(id);
        if (versionesLocales.value(id) == version) continue;
        texto.parametro(QStringLiteral("EmpresaID")).entero(sesion.EmpresaID);
        texto.parametro(QStringLiteral("ReporteID")).entero(id);
        texto.abre();
        guarda.parametro(QStringLiteral("empresaID")).entero(sesion.EmpresaID);
        guarda.parametro(QStringLiteral("reporteID")).entero(id);
        guarda.parametro(QStringLiteral("carpetaID"))
            .entero(r.campo(QStringLiteral("carpetaID")).comoEntero());
        guarda.parametro(QStringLiteral("Nombre"))
            .texto(r.campo(QStringLiteral("Nombre")).comoTexto());
        guarda.parametro(QStringLiteral("plantilla"))
            .blob(texto.campo(QStringLiteral("plantilla")).comoBlob());
        guarda.ejecuta();
        guardaEstado.parametro(QStringLiteral("empresaID")).entero(sesion.EmpresaID);
        guardaEstado.parametro(QStringLiteral("reporteID")).entero(id);
        guardaEstado.parametro(QStringLiteral("carpeta"))
            .texto(r.campo(QStringLiteral("carpeta")).comoTexto());
        guardaEstado.parametro(QStringLiteral("predeterminada"))
            .entero(r.campo(QStringLiteral("predeterminada")).comoBooleano() ? 1 : 0);
        guardaEstado.parametro(QStringLiteral("version")).texto(version);
        guardaEstado.ejecuta();
        ++copiadas;
    }
    Consulta borra(local, QString::fromUtf8(SqlBorraPlantillaLocal));
    Consulta borraEstado(local, QString::fromUtf8(SqlBorraEstadoLocal));
    for (auto it = versionesLocales.cbegin(); it != versionesLocales.cend(); ++it) {
        if (vigentes.contains(it.key())) continue;
        for (Consulta* c : {&borra, &borraEstado}) {
            c->parametro(QStringLiteral("empresaID")).entero(sesion.EmpresaID);
            c->parametro(QStringLiteral("reporteID")).entero(it.key());
            c->ejecuta();
        }
    }
    return copiadas;
}

Plantilla plantillaLocal(ConexionLocalBD& local, int64_t empresaID, const QString& carpeta,
                         const QString& nombre) {
    preparaLocal(local);
    Consulta busca(local, QString::fromUtf8(SqlBuscaLocal));
    busca.parametro(QStringLiteral("empresaID")).entero(empresaID);
    busca.parametro(QStringLiteral("carpeta")).texto(carpeta);
    busca.parametro(QStringLiteral("nombre")).texto(nombre);
    busca.abre();
    if (busca.numeroRegistros() == 0)
        throw RegistroInexistente(
            QStringLiteral("No se localizó la plantilla de %1 para imprimir.").arg(carpeta));
    // La consulta de la pantalla de impresión: lee la plantilla por su llave.
    Consulta plantillas(local, QString::fromUtf8(SqlPlantillasLocal));
    plantillas.parametro(QStringLiteral("empresaID")).entero(empresaID);
    plantillas.parametro(QStringLiteral("reporteID"))
        .entero(busca.campo(QStringLiteral("reporteID")).comoEntero());
    plantillas.abre();
    Plantilla p;
    p.reporteID = plantillas.campo(QStringLiteral("reporteID")).comoEntero();
    p.carpetaID = plantillas.campo(QStringLiteral("carpetaID")).comoEntero();
    p.carpeta = carpeta;
    p.nombre = plantillas.campo(QStringLiteral("Nombre")).comoTexto();
    p.texto = plantillas.campo(QStringLiteral("plantilla")).comoTexto();
    return p;
}

QList<Plantilla> plantillasCarpeta(ConexionDatos& conexion, int64_t empresaID,
                                   const QString& carpeta) {
    Consulta lista(conexion, QString::fromUtf8(SqlPlantillasCarpeta));
    lista.parametro(QStringLiteral("EmpresaID")).entero(empresaID);
    lista.parametro(QStringLiteral("Modulo")).texto(carpeta);
    lista.abre();
    QList<Plantilla> plantillas;
    for (const Registro r : lista) {
        Plantilla p;
        p.reporteID = r.campo(QStringLiteral("reporteID")).comoEntero();
        p.carpetaID = r.campo(QStringLiteral("carpetaID")).comoEntero();
        p.carpeta = r.campo(QStringLiteral("carpeta")).comoTexto();
        p.nombre = r.campo(QStringLiteral("Nombre")).comoTexto();
        p.predeterminada = r.campo(QStringLiteral("predeterminada")).comoBooleano();
        plantillas << p;
    }
    return plantillas;
}

} // namespace cajaplex
