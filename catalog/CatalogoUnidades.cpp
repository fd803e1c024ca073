#include "catalog/CatalogoUnidades.h"

#include "datos/Auditoria.h"
#include "datos/ConexionBD.h"
#include "datos/Transaccion.h"
#include "datos/Utilerias.h"

namespace cajaplex {
namespace {

const char* const SqlConsultaUnidades = "Select id, unidad, claveSAT\n"
                                        "From Unidades\n"
                                        "Where empresaID = :EmpresaID\n"
                                        "Order By unidad";

const char* const SqlInsertaUnidad =
    "Insert Into Unidades (empresaID, usuarioID, unidad, claveSAT)\n"
    "Values (:empresaID, :usuarioID, :unidad, :claveSAT)";

const char* const SqlUnidadInsertada = "select last_insert_rowid() as id";

const char* const SqlActualizaUnidad = "Update Unidades \n"
                                       "Set unidad = :unidad, \n"
                                       "claveSAT = :claveSAT\n"
                                       "Where empresaID = :empresaID\n"
                                       "and id = :unidadID";

QString textoUnidad(const UnidadMedida& u) {
    return QStringLiteral("Unidad: ") + u.unidad + QStringLiteral(" Clave SAT: ") + u.claveSAT;
}

} // namespace

CatalogoUnidades::CatalogoUnidades(ConexionBD& conexion, const Sesion& sesion)
    : ConsultaUnidades(conexion, QString::fromUtf8(SqlConsultaUnidades)),
      InsertaUnidad(conexion, QString::fromUtf8(SqlInsertaUnidad)),
      UnidadInsertada(conexion, QString::fromUtf8(SqlUnidadInsertada)),
      ActualizaUnidad(conexion, QString::fromUtf8(SqlActualizaUnidad)), conexion_(conexion),
      sesion_(sesion) {}

std::vector<UnidadMedida> CatalogoUnidades::consulta() {
    ConsultaUnidades.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    ConsultaUnidades.abre();
    std::vector<UnidadMedida> unidades;
    unidades.reserve(static_cast<size_t>(ConsultaUnidades.numeroRegistros()));
    for (const Registro& r : ConsultaUnidades)
        unidades.push_back({r.campo(QStringLiteral("id")).comoEntero(),
                            r.campo(QStringLiteral("unidad")).comoTexto(),
                            r.campo(QStringLiteral("claveSAT")).comoTexto()});
    ConsultaUnidades.cierra();
    return unidades;
}

int64_t CatalogoUnidades::inserta(const QString& unidad, const QString& claveSAT) {
    InsertaUnidad.parametro(QStringLiteral("empresaID")).entero(sesion_.EmpresaID);
    InsertaUnidad.parametro(QStringLiteral("usuarioID")).entero(sesion_.UsuarioID);
    InsertaUnidad.parametro(QStringLiteral("unidad")).texto(unidad);
    InsertaUnidad.parametro(QStringLiteral("claveSAT")).texto(claveSAT);
    // La llave se lee en la misma transacción que el alta: es la de esta unidad.
    Lote lote(conexion_);
    lote.agrega(InsertaUnidad);
    const size_t lectura = lote.agrega(UnidadInsertada);
    Auditoria::agrega(lote, sesion_,
                      {tipoAuditoria::Insercion,
                       QString::fromUtf8(ModuloUnidadesMedida),
                       textoUnidad({0, unidad, claveSAT}),
                       {},
                       {}});
    const std::vector<Registros> resultados = lote.ejecuta();
    return resultados.at(lectura).campo(0, QStringLiteral("id")).comoEntero();
}

void CatalogoUnidades::modifica(const UnidadMedida& nueva, const UnidadMedida& anterior) {
    ActualizaUnidad.parametro(QStringLiteral("unidad")).texto(nueva.unidad);
    ActualizaUnidad.parametro(QStringLiteral("claveSAT")).texto(nueva.claveSAT);
    ActualizaUnidad.parametro(QStringLiteral("empresaID")).entero(sesion_.EmpresaID);
    ActualizaUnidad.parametro(QStringLiteral("unidadID")).entero(nueva.id);
    Lote lote(conexion_);
    lote.agrega(ActualizaUnidad);
    Auditoria::agrega(lote, sesion_,
                      {tipoAuditoria::Actualizacion,
                       QString::fromUtf8(ModuloUnidadesMedida),
                       textoUnidad(nueva),
                       textoUnidad(anterior),
                       {}});
    lote.ejecuta();
}

bool CatalogoUnidades::elimina(const UnidadMedida& unidad) {
    const QString empresa = numeroSql(sesion_.EmpresaID);
    const QString id = numeroSql(unidad.id);
    Transaccion t(conexion_);
    Consulta usos(conexion_,
                  QStringLiteral(" Select Count(*) as Veces From Productos Where empresaID = ") +
                      empresa + QStringLiteral(" and unidad = ") + id);
    usos.abre(t);
    if (usos.campo(QStringLiteral("Veces")).comoEntero() > 0) return false;

    Consulta borra(conexion_, QStringLiteral(" Delete From Unidades Where empresaID = ") + empresa +
                                  QStringLiteral(" and id = ") + id);
    borra.ejecuta(t);
    Auditoria::registra(t, sesion_,
                        {tipoAuditoria::Cancelacion,
                         QString::fromUtf8(ModuloUnidadesMedida),
                         textoUnidad(unidad),
                         {},
                         QStringLiteral("Unidad de Medida eliminada")});
    t.confirma();
    return true;
}

} // namespace cajaplex
