#include "restaurant/CatalogoAreasComida.h"

#include "datos/Auditoria.h"
#include "datos/ConexionBD.h"
#include "datos/Transaccion.h"
#include "datos/Utilerias.h"

namespace cajaplex {
namespace {

const char* const SqlConsultaAreasComida =
    "Select ID, area, Padre from AreasComida Where empresaID = :EmpresaID Order By Padre, area";

const char* const SqlNumeroNodosXArea = "Select Count(B.ID) as NumeroNodosXArea\n"
                                        "from AreasComida A, NodosComida B\n"
                                        "Where A.empresaID = :EmpresaID\n"
                                        "and A.ID = :AreaID\n"
                                        "and A.empresaID = B.empresaID\n"
                                        "and A.ID = B.Area";

const char* const SqlEliminaAreaSeleccionada =
    "Delete From AreasComida Where empresaID = :EmpresaID and ID = :AreaID";

const char* const SqlInsertaArea = "Insert Into AreasComida (empresaID, area, padre, usuarioID) "
                                   "Values (:EmpresaID, :NombreArea, :LineaIDPadre, :UsuarioID)";

const char* const SqlAreaIDInsertada =
    "Select Max(ID) as AreaIDInsertada From AreasComida Where EmpresaID = :EmpresaID";

const char* const SqlEditaArea =
    "Update AreasComida Set Area = :NombreArea Where EmpresaID = :EmpresaID and ID = :AreaID";

const char* const SqlConsultarNodo =
    "Select A.* From NodosComida A Where A.empresaID = :EmpresaID And A.ID = :NodoID";

const char* const SqlValidaClaveNodo =
    "Select Clave From NodosComida Where Clave = :clave And EmpresaID = :EmpresaID";

const char* const SqlInsertaNodo =
    "Insert into NodosComida (empresaID, area, clave, descripcion, numeroPersonas, tipo, activo) "
    "Values (:empresaID, :area, :clave, :descripcion, :numeroPersonas, :tipo, :activo)";

const char* const SqlModificaNodo =
    "Update NodosComida Set clave = :clave, descripcion = :descripcion, numeroPersonas = "
    ":numeroPersonas, tipo = :tipo, activo = :activo Where empresaID = :empresaID and id = :NodoID";

// Las dos primeras revisiones de "Eliminar Área", repetidas dentro de la transacción.
const char* const SqlCuentaAreas =
    "Select (Select Count(*) From AreasComida Where empresaID = :EmpresaID) as Areas, "
    "(Select Count(*) From AreasComida Where empresaID = :EmpresaID and Padre = :AreaID) as "
    "SubAreas";

NodoComida leeNodo(const Registro& r) {
    NodoComida n;
    n.id = r.campo(QStringLiteral("id")).comoEntero();
    n.area = r.campo(QStringLiteral("area")).comoEntero();
    n.clave = r.campo(QStringLiteral("clave")).comoTexto();
    n.descripcion = r.campo(QStringLiteral("descripcion")).comoTexto();
    n.numeroPersonas = static_cast<int>(r.campo(QStringLiteral("numeroPersonas")).comoEntero());
    n.tipo = static_cast<int>(r.campo(QStringLiteral("tipo")).comoEntero());
    n.activo = r.campo(QStringLiteral("activo")).comoEntero() != 0;
    n.status = static_cast<int>(r.campo(QStringLiteral("status")).comoEntero());
    return n;
}

QString textoNodo(const NodoComida& n) {
    return QStringLiteral("Nodo: %1 %2 Personas: %3 Tipo: %4 Activo: %5")
        .arg(n.clave, n.descripcion)
        .arg(n.numeroPersonas)
        .arg(textoTipoNodo(n.tipo), n.activo ? QStringLiteral("SÍ") : QStringLiteral("NO"));
}

} // namespace

QString imagenTipoNodo(int tipo) {
    static const char* const imagenes[NumeroTiposNodo] = {
        "Redonda", "Cuadrada", "Rectangular", "Ovalada", "Imperial", "FormaU", "Discapacitada"};
    return tipo >= 0 && tipo < NumeroTiposNodo ? QString::fromLatin1(imagenes[tipo]) : QString();
}

QString textoTipoNodo(int tipo) {
    static const char* const textos[NumeroTiposNodo] = {
        "Redonda",  "Cuadrada",      "Rectangular",   "Ovalada",
        "Imperial", "En forma de U", "Discapacitados"};
    return tipo >= 0 && tipo < NumeroTiposNodo ? QString::fromUtf8(textos[tipo]) : QString();
}

QString mensajeRechazo(RechazoEliminarArea rechazo) {
    switch (rechazo) {
    case RechazoEliminarArea::UnicaArea:
        return QStringLiteral("No puede Eliminar la única Área de Comida.");
    case RechazoEliminarArea::ConSubAreas:
        return QStringLiteral("No puede Eliminar una Área de Comida con SubLíneas Asociadas.");
    case RechazoEliminarArea::ConNodos:
        return QStringLiteral("No puede Eliminar una Área de Comida con Nodos.");
    case RechazoEliminarArea::Ninguno:
        break;
    }
    return {};
}

CatalogoAreasComida::CatalogoAreasComida(ConexionBD& conexion, const Sesion& sesion)
    : ConsultaAreasComida(conexion, QString::fromUtf8(SqlConsultaAreasComida)),
      NumeroNodosXArea(conexion, QString::fromUtf8(SqlNumeroNodosXArea)),
      EliminaAreaSeleccionada(conexion, QString::fromUtf8(SqlEliminaAreaSeleccionada)),
      InsertaArea(conexion, QString::fromUtf8(SqlInsertaArea)),
      AreaIDInsertada(conexion, QString::fromUtf8(SqlAreaIDInsertada)),
      EditaArea(conexion, QString::fromUtf8(SqlEditaArea)),
      ConsultarNodo(conexion, QString::fromUtf8(SqlConsultarNodo)),
      ValidaClaveNodo(conexion, QString::fromUtf8(SqlValidaClaveNodo)), conexion_(conexion),
      sesion_(sesion) {}

std::vector<AreaComida> CatalogoAreasComida::consultaAreas() {
    ConsultaAreasComida.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    ConsultaAreasComida.abre();
    std::vector<AreaComida> areas;
    for (const Registro& r : ConsultaAreasComida)
        areas.push_back({r.campo(QStringLiteral("ID")).comoEntero(),
                         r.campo(QStringLiteral("Padre")).comoEntero(),
                         r.campo(QStringLiteral("area")).comoTexto()});
    return areas;
}

int64_t CatalogoAreasComida::insertaArea(int64_t padre, const QString& nombre) {
    InsertaArea.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    InsertaArea.parametro(QStringLiteral("NombreArea")).texto(nombre);
    InsertaArea.parametro(QStringLiteral("LineaIDPadre")).entero(padre);
    InsertaArea.parametro(QStringLiteral("UsuarioID")).entero(sesion_.UsuarioID);
    AreaIDInsertada.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    // Alta, llave y bitácora en un viaje: el Max(ID) se lee con el escritor tomado.
    Lote lote(conexion_);
    lote.agrega(InsertaArea);
    const size_t lectura = lote.agrega(AreaIDInsertada);
    Auditoria::agrega(lote, sesion_,
                      {tipoAuditoria::Insercion,
                       QString::fromUtf8(ModuloAreasComida),
                       QStringLiteral("Área: ") + nombre,
                       {},
                       {}});
    return lote.ejecuta().at(lectura).campo(0, QStringLiteral("AreaIDInsertada")).comoEntero();
}

void CatalogoAreasComida::renombraArea(int64_t areaID, const QString& nombre,
                                       const QString& anterior) {
    EditaArea.parametro(QStringLiteral("NombreArea")).texto(nombre);
    EditaArea.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    EditaArea.parametro(QStringLiteral("AreaID")).entero(areaID);
    Lote lote(conexion_);
    lote.agrega(EditaArea);
    Auditoria::agrega(lote, sesion_,
                      {tipoAuditoria::Actualizacion,
                       QString::fromUtf8(ModuloAreasComida),
                       QStringLiteral("Área: ") + nombre,
                       QStringLiteral("Área: ") + anterior,
                       {}});
    lote.ejecuta();
}

RechazoEliminarArea CatalogoAreasComida::eliminaArea(int64_t areaID, const QString& nombre) {
    Transaccion t(conexion_);
    Consulta cuenta(conexion_, QString::fromUtf8(SqlCuentaAreas));
    cuenta.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    cuenta.parametro(QStringLiteral("AreaID")).entero(areaID);
    cuenta.abre(t);
    if (cuenta.campo(QStringLiteral("Areas")).comoEntero() <= 1)
        return RechazoEliminarArea::UnicaArea;
    if (cuenta.campo(QStringLiteral("SubAreas")).comoEntero() > 0)
        return RechazoEliminarArea::ConSubAreas;
    NumeroNodosXArea.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    NumeroNodosXArea.parametro(QStringLiteral("AreaID")).entero(areaID);
    NumeroNodosXArea.abre(t);
    if (NumeroNodosXArea.campo(QStringLiteral("NumeroNodosXArea")).comoEntero() > 0)
        return RechazoEliminarArea::ConNodos;
    EliminaAreaSeleccionada.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    EliminaAreaSeleccionada.parametro(QStringLiteral("AreaID")).entero(areaID);
    EliminaAreaSeleccionada.ejecuta(t);
    Auditoria::registra(t, sesion_,
                        {tipoAuditoria::Cancelacion,
                         QString::fromUtf8(ModuloAreasComida),
                         QStringLiteral("Área: ") + nombre,
                         {},
                         QStringLiteral("Área de Comida eliminada")});
    t.confirma();
    return RechazoEliminarArea::Ninguno;
}

std::vector<NodoComida> CatalogoAreasComida::nodos(int64_t areaID, const QString& busqueda) {
    const QString empresa = numeroSql(sesion_.EmpresaID);
    QString sql;
    if (busqueda.trimmed().isEmpty()) {
        sql = QStringLiteral(" Select * from NodosComida") + QStringLiteral(" Where area = ") +
              numeroSql(areaID) + QStringLiteral(" And empresaID = ") + empresa;
    } else {
        const QString patron = citaSql(QLatin1Char('%') + busqueda.trimmed() + QLatin1Char('%'));
        sql = QStringLiteral(" Select *") + QStringLiteral(" from NodosComida") +
              QStringLiteral(" Where empresaID = ") + empresa +
              QStringLiteral(" And (clave like ") + patron +
              QStringLiteral(" or descripcion like ") + patron + QStringLiteral(")") +
              QStringLiteral(" Order By id");
    }
    Consulta consulta(conexion_, sql);
    consulta.abre();
    std::vector<NodoComida> nodos;
    for (const Registro& r : consulta)
        nodos.push_back(leeNodo(r));
    return nodos;
}

std::optional<NodoComida> CatalogoAreasComida::consultaNodo(int64_t nodoID) {
    ConsultarNodo.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    ConsultarNodo.parametro(QStringLiteral("NodoID")).entero(nodoID);
    ConsultarNodo.abre();
    if (ConsultarNodo.numeroRegistros() == 0) return std::nullopt;
    return leeNodo(*ConsultarNodo.begin());
}

int64_t CatalogoAreasComida::siguienteClave() {
    Consulta consulta(conexion_,
                      QStringLiteral(" Select ifnull(count(*), 0) + 1 as idNodo From NodosComida "
                                     "Where empresaID = ") +
                          numeroSql(sesion_.EmpresaID));
    consulta.abre();
    return consulta.campo(QStringLiteral("idNodo")).comoEntero();
}

bool CatalogoAreasComida::existeClave(const QString& clave) {
    ValidaClaveNodo.parametro(QStringLiteral("clave")).texto(clave);
    ValidaClaveNodo.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    ValidaClaveNodo.abre();
    return ValidaClaveNodo.numeroRegistros() > 0;
}

int64_t CatalogoAreasComida::guardaNodo(const NodoComida& nodo) {
    const bool alta = nodo.id == 0;
    Consulta guarda(conexion_, QString::fromUtf8(alta ? SqlInsertaNodo : SqlModificaNodo));
    guarda.parametro(QStringLiteral("empresaID")).entero(sesion_.EmpresaID);
    guarda.parametro(QStringLiteral("clave")).texto(nodo.clave);
    guarda.parametro(QStringLiteral("descripcion")).texto(nodo.descripcion);
    guarda.parametro(QStringLiteral("numeroPersonas")).entero(nodo.numeroPersonas);
    guarda.parametro(QStringLiteral("tipo")).entero(nodo.tipo);
    guarda.parametro(QStringLiteral("activo")).booleano(nodo.activo);
    if (alta)
        guarda.parametro(QStringLiteral("area")).entero(nodo.area);
    else
        guarda.parametro(QStringLiteral("NodoID")).entero(nodo.id);

    Transaccion t(conexion_);
    guarda.ejecuta(t);
    int64_t id = nodo.id;
    if (alta) {
        Consulta llave(conexion_, QStringLiteral("select last_insert_rowid() as id"));
        llave.abre(t);
        id = llave.campo(QStringLiteral("id")).comoEntero();
    }
    Auditoria::registra(t, sesion_,
                        {alta ? tipoAuditoria::Insercion : tipoAuditoria::Actualizacion,
                         QString::fromUtf8(ModuloNodosComida),
                         textoNodo(nodo),
                         {},
                         {}});
    t.confirma();
    return id;
}

bool CatalogoAreasComida::eliminaNodo(int64_t nodoID, const QString& clave) {
    const QString empresa = numeroSql(sesion_.EmpresaID);
    const QString nodo = numeroSql(nodoID);
    Transaccion t(conexion_);
    Consulta veces(conexion_,
                   QStringLiteral(" Select Count(*) as Veces From Comanda Where empresaID = ") +
                       empresa + QStringLiteral(" and nodoComida = ") + nodo);
    veces.abre(t);
    if (veces.campo(QStringLiteral("Veces")).comoEntero() > 0) return false;
    Consulta borra(conexion_, QStringLiteral(" Delete From NodosComida Where empresaID = ") +
                                  empresa + QStringLiteral(" and id = ") + nodo);
    borra.ejecuta(t);
    Auditoria::registra(t, sesion_,
                        {tipoAuditoria::Cancelacion,
                         QString::fromUtf8(ModuloNodosComida),
                         QStringLiteral("Nodo: ") + clave,
                         {},
                         QStringLiteral("Nodo de Comida eliminado")});
    t.confirma();
    return true;
}

std::vector<ProductoArea> CatalogoAreasComida::productosDeLinea(int64_t lineaID, int64_t areaID) {
    Consulta consulta(conexion_, QStringLiteral(" Select ID, Producto, ifNull(AreaComida, 0) as "
                                                "AreaComida from Productos Where empresaID = ") +
                                     numeroSql(sesion_.EmpresaID) +
                                     QStringLiteral(" and linea = ") + numeroSql(lineaID) +
                                     QStringLiteral(" Order by Producto"));
    consulta.abre();
    std::vector<ProductoArea> productos;
    for (const Registro& r : consulta)
        productos.push_back({r.campo(QStringLiteral("ID")).comoEntero(),
                             r.campo(QStringLiteral("Producto")).comoTexto(),
                             r.campo(QStringLiteral("AreaComida")).comoEntero() == areaID});
    return productos;
}

void CatalogoAreasComida::asignaProductos(int64_t areaID, const QString& area,
                                          const std::vector<int64_t>& productos) {
    const QString empresa = numeroSql(sesion_.EmpresaID);
    QStringList ids;
    for (int64_t id : productos)
        ids << numeroSql(id);
    Transaccion t(conexion_);
    Consulta(conexion_,
             QStringLiteral(" Update Productos Set AreaComida = Null Where empresaID = ") +
                 empresa + QStringLiteral(" and AreaComida = ") + numeroSql(areaID))
        .ejecuta(t);
    Consulta(conexion_, QStringLiteral(" Update Productos Set AreaComida = ") + numeroSql(areaID) +
                            QStringLiteral(" Where empresaID = ") + empresa +
                            QStringLiteral(" and ID in (") + ids.join(QLatin1Char(',')) +
                            QStringLiteral(")"))
        .ejecuta(t);
    Auditoria::registra(t, sesion_,
                        {tipoAuditoria::Actualizacion,
                         QString::fromUtf8(ModuloAreasComida),
                         QStringLiteral("Área: %1 Productos: %2").arg(area).arg(productos.size()),
                         {},
                         QStringLiteral("Productos asociados al Área de Comida")});
    t.confirma();
}

} // namespace cajaplex
