#include "catalog/ComposicionKits.h"

#include <utility>

#include <QStringList>

#include "catalog/CatalogoProductos.h"
#include "datos/Auditoria.h"
#include "datos/ConexionBD.h"
#include "datos/Transaccion.h"
#include "datos/Utilerias.h"
#include "pantallas/RolesRenglon.h"

namespace cajaplex {
namespace {

const char* const SqlInsertaComponente =
    " Insert into ProductosPaquetes (id, posicion, clave, empresaID, cantidad, compuestoBase, "
    "seleccionado)"
    " Values (:id, :posicion, :clave, :empresaID, :cantidad, :compuestoBase, :seleccionado)";

const char* const SqlKitVigente = "Select ID From Productos Where empresaID = :EmpresaID "
                                  "and ID = :KitID and ifnull(esPaquete, 0) = 1";

// Lo mismo que trae un renglón de la composición, para un producto que se agrega.
const char* const SqlProductoDisponible =
    " Select A.ID, A.clave, A.producto, D.Unidad as Unidad, A.pCompra, A.manejaInventarios,"
    " case when Ifnull(A.existencia,0) <= 0 then 0 Else A.Existencia End as Existencia,"
    " A.esPaquete, A.caduca"
    " from Productos A, Unidades D"
    " Where A.empresaID = :EmpresaID"
    " And ifnull(A.esPaquete,0) = 0"
    " And A.EmpresaID = D.EmpresaID"
    " And A.Unidad = D.ID";

const QString kFiltroSinKits = QStringLiteral(" And ifnull(A.esPaquete,0) = 0");
const QString kOrdenListado = QStringLiteral(" Order By A.producto");

QString textoComposicion(const KitListado& kit, const std::vector<ComponenteKit>& componentes) {
    QStringList renglones;
    for (const ComponenteKit& c : componentes)
        renglones << c.clave + QStringLiteral(" x ") + textoCantidad(c.Cantidad);
    return QStringLiteral("Kit: ") + kit.clave + QLatin1Char(' ') + kit.producto +
           QStringLiteral(" Componentes: ") + renglones.join(QStringLiteral(", "));
}

} // namespace

// ---------------------------------------------------------------------------------------------
// KitDetalles
// ---------------------------------------------------------------------------------------------

void KitDetalles::asigna(std::vector<ComponenteKit> componentes) {
    beginResetModel();
    componentes_ = std::move(componentes);
    endResetModel();
    modificado_ = false;
    emit cambio();
}

int KitDetalles::agrega(const ComponenteKit& componente) {
    for (size_t i = 0; i < componentes_.size(); ++i) {
        if (componentes_[i].clave != componente.clave) continue;
        const int fila = static_cast<int>(i);
        asignaCantidad(fila, componentes_[i].Cantidad + componente.Cantidad);
        return fila;
    }
    const int fila = rowCount();
    beginInsertRows({}, fila, fila);
    componentes_.push_back(componente);
    endInsertRows();
    cambia();
    return fila;
}

void KitDetalles::quita(int fila) {
    if (fila < 0 || fila >= rowCount()) return;
    beginRemoveRows({}, fila, fila);
    componentes_.erase(componentes_.begin() + fila);
    endRemoveRows();
    cambia();
}

void KitDetalles::asignaCantidad(int fila, double cantidad) {
    if (fila < 0 || fila >= rowCount()) return;
    componentes_[static_cast<size_t>(fila)].Cantidad = cantidad;
    emit dataChanged(index(fila), index(fila));
    cambia();
}

bool KitDetalles::mueve(int fila, int destino) {
    if (fila < 0 || fila >= rowCount() || destino < 0 || destino >= rowCount() || fila == destino)
        return false;
    // beginMoveRows cuenta el destino antes de quitar el renglón.
    beginMoveRows({}, fila, fila, {}, destino > fila ? destino + 1 : destino);
    std::swap(componentes_[static_cast<size_t>(fila)], componentes_[static_cast<size_t>(destino)]);
    endMoveRows();
    cambia();
    return true;
}

double KitDetalles::total() const {
    double suma = 0.0;
    for (const ComponenteKit& c : componentes_)
        suma += c.Cantidad * c.PCompra;
    return suma;
}

void KitDetalles::cambia() {
    modificado_ = true;
    emit cambio();
}

int KitDetalles::rowCount(const QModelIndex& padre) const {
    return padre.isValid() ? 0 : static_cast<int>(componentes_.size());
}

QVariant KitDetalles::data(const QModelIndex& indice, int rol) const {
    if (!indice.isValid() || indice.row() >= rowCount()) return {};
    const ComponenteKit& c = componentes_[static_cast<size_t>(indice.row())];
    switch (rol) {
    case Qt::DisplayRole:
    case RolPrimeraLinea:
        return QString(c.clave + QStringLiteral(" - ") + c.Producto);
    case RolSegundaLinea:
        return QString(QStringLiteral("Cantidad: ") + textoCantidad(c.Cantidad) + QLatin1Char(' ') +
                       c.Unidad + QStringLiteral("   Costo: ") + textoPrecio(c.PCompra));
    case RolDatoDerecha:
        return textoPrecio(c.Cantidad * c.PCompra);
    case RolClave:
        return c.clave;
    case RolCantidad:
        return c.Cantidad;
    default:
        return {};
    }
}

// ---------------------------------------------------------------------------------------------
// CatalogoKits
// ---------------------------------------------------------------------------------------------

CatalogoKits::CatalogoKits(ConexionBD& conexion, const Sesion& sesion)
    : conexion_(conexion), sesion_(sesion), ConsultaKits(conexion, QString()),
      ConsultaComponentes(conexion, QString()),
      ProductoXID(conexion, QString::fromUtf8(SqlProductoDisponible) +
                                QStringLiteral(" And A.ID = :ProductoID")),
      ProductoXClave(conexion,
                     QString::fromUtf8(SqlProductoDisponible) +
                         QStringLiteral(" And (A.clave = :Clave or A.codigoBarra = :Clave)"
                                        " Order By case when A.clave = :Clave then 0 "
                                        "else 1 end Limit 1")) {}

QString CatalogoKits::sinKits(const QString& sqlListado) {
    const auto orden = sqlListado.lastIndexOf(kOrdenListado);
    if (orden < 0) throw ErrorProgramacion("El listado de productos no termina en su orden");
    QString sql = sqlListado;
    sql.insert(orden, kFiltroSinKits);
    return sql;
}

std::vector<KitListado> CatalogoKits::kits() {
    ConsultaKits.asignaSql(
        QStringLiteral(" Select\tID, producto, clave") + QStringLiteral(" from Productos") +
        QStringLiteral(" Where empresaID = ") + numeroSql(sesion_.EmpresaID) +
        QStringLiteral(" And ifnull(esPaquete, 0) = 1") + QStringLiteral(" Order By producto"));
    ConsultaKits.abre();
    std::vector<KitListado> kits;
    kits.reserve(static_cast<size_t>(ConsultaKits.numeroRegistros()));
    for (const Registro& r : ConsultaKits)
        kits.push_back({r.campo(QStringLiteral("ID")).comoEntero(),
                        r.campo(QStringLiteral("clave")).comoTexto(),
                        r.campo(QStringLiteral("producto")).comoTexto()});
    ConsultaKits.cierra();
    return kits;
}

std::vector<ComponenteKit> CatalogoKits::componentes(int64_t kitID) {
    ConsultaComponentes.asignaSql(
        QStringLiteral(" Select A.ID, C.ID as Producto, A.Cantidad, A.Posicion, C.producto as "
                       "descripcion, C.clave, D.Unidad as Unidad,") +
        QStringLiteral(" C.utilizaBascula, C.Existencia, C.esPaquete, C.manejaInventarios, "
                       "C.pCompra, C.manejaSeries, C.caduca, A.compuestoBase, A.seleccionado") +
        QStringLiteral(" from ProductosPaquetes A, Productos C, Unidades D") +
        QStringLiteral(" Where A.empresaID = ") + numeroSql(sesion_.EmpresaID) +
        QStringLiteral(" And A.id = ") + numeroSql(kitID) +
        QStringLiteral(" And A.EmpresaID = C.EmpresaID") +
        QStringLiteral(" And A.Clave = C.Clave") +
        QStringLiteral(" And C.EmpresaID = D.EmpresaID") + QStringLiteral(" And C.Unidad = D.ID") +
        QStringLiteral(" Order By A.Posicion"));
    ConsultaComponentes.abre();
    std::vector<ComponenteKit> componentes;
    componentes.reserve(static_cast<size_t>(ConsultaComponentes.numeroRegistros()));
    for (const Registro& r : ConsultaComponentes) {
        ComponenteKit c;
        c.ID = r.campo(QStringLiteral("Producto")).comoEntero();
        c.Cantidad = r.campo(QStringLiteral("Cantidad")).comoReal();
        c.PCompra = r.campo(QStringLiteral("pCompra")).comoReal();
        c.Producto = r.campo(QStringLiteral("descripcion")).comoTexto();
        c.Unidad = r.campo(QStringLiteral("Unidad")).comoTexto();
        c.posicion = static_cast<int>(r.campo(QStringLiteral("Posicion")).comoEntero());
        c.clave = r.campo(QStringLiteral("clave")).comoTexto();
        c.Existencia = r.campo(QStringLiteral("Existencia")).comoReal();
        c.ManejaInventarios = r.campo(QStringLiteral("manejaInventarios")).comoBooleano();
        c.EsPaquete = r.campo(QStringLiteral("esPaquete")).comoBooleano();
        c.Caduca = r.campo(QStringLiteral("caduca")).comoBooleano();
        c.compuestoBase = r.campo(QStringLiteral("compuestoBase")).comoBooleano();
        c.seleccionado = r.campo(QStringLiteral("seleccionado")).comoBooleano();
        componentes.push_back(std::move(c));
    }
    ConsultaComponentes.cierra();
    return componentes;
}

std::optional<ComponenteKit> CatalogoKits::disponible(Consulta& consulta) {
    consulta.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    consulta.abre();
    if (consulta.numeroRegistros() == 0) return std::nullopt;
    ComponenteKit c;
    c.ID = consulta.campo(QStringLiteral("ID")).comoEntero();
    c.PCompra = consulta.campo(QStringLiteral("pCompra")).comoReal();
    c.Producto = consulta.campo(QStringLiteral("producto")).comoTexto();
    c.Unidad = consulta.campo(QStringLiteral("Unidad")).comoTexto();
    c.clave = consulta.campo(QStringLiteral("clave")).comoTexto();
    c.Existencia = consulta.campo(QStringLiteral("Existencia")).comoReal();
    c.ManejaInventarios = consulta.campo(QStringLiteral("manejaInventarios")).comoBooleano();
    c.EsPaquete = consulta.campo(QStringLiteral("esPaquete")).comoBooleano();
    c.Caduca = consulta.campo(QStringLiteral("caduca")).comoBooleano();
    consulta.cierra();
    return c;
}

std::optional<ComponenteKit> CatalogoKits::producto(int64_t productoID) {
    ProductoXID.parametro(QStringLiteral("ProductoID")).entero(productoID);
    return disponible(ProductoXID);
}

std::optional<ComponenteKit> CatalogoKits::productoPorClave(const QString& clave) {
    ProductoXClave.parametro(QStringLiteral("Clave")).texto(clave);
    return disponible(ProductoXClave);
}

void CatalogoKits::guarda(const KitListado& kit, const std::vector<ComponenteKit>& componentes,
                          const std::vector<ComponenteKit>& anteriores) {
    // Otra estación pudo eliminar el kit (con su composición) mientras se armaba la lista: se
    // revisa dentro de la misma transacción que escribe, para no dejar renglones huérfanos.
    Transaccion t(conexion_);
    Consulta existe(conexion_, QString::fromUtf8(SqlKitVigente));
    existe.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    existe.parametro(QStringLiteral("KitID")).entero(kit.id);
    existe.abre(t);
    if (existe.numeroRegistros() == 0)
        throw RegistroInexistente(QString::fromUtf8(MensajeKitEliminado));

    Lote lote(conexion_);
    lote.agrega(Consulta(conexion_, QStringLiteral(" Delete From ProductosPaquetes") +
                                        QStringLiteral(" Where empresaID =") +
                                        numeroSql(sesion_.EmpresaID) +
                                        QStringLiteral(" And id = ") + numeroSql(kit.id)));
    Consulta inserta(conexion_, QString::fromUtf8(SqlInsertaComponente));
    int posicion = 0;
    for (const ComponenteKit& c : componentes) {
        inserta.parametro(QStringLiteral("id")).entero(kit.id);
        inserta.parametro(QStringLiteral("posicion")).entero(++posicion);
        inserta.parametro(QStringLiteral("clave")).texto(c.clave);
        inserta.parametro(QStringLiteral("empresaID")).entero(sesion_.EmpresaID);
        inserta.parametro(QStringLiteral("cantidad")).real(c.Cantidad);
        inserta.parametro(QStringLiteral("compuestoBase")).booleano(c.compuestoBase);
        inserta.parametro(QStringLiteral("seleccionado")).booleano(c.seleccionado);
        lote.agrega(inserta);
    }
    Auditoria::agrega(lote, sesion_,
                      {anteriores.empty() ? tipoAuditoria::Insercion : tipoAuditoria::Actualizacion,
                       QString::fromUtf8(ModuloKits),
                       textoComposicion(kit, componentes),
                       anteriores.empty() ? QString() : textoComposicion(kit, anteriores),
                       {}});
    lote.ejecuta(t);
    t.confirma();
}

} // namespace cajaplex
