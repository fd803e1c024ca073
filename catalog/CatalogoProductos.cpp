#include "catalog/CatalogoProductos.h"

#include <cmath>

#include <QLocale>

#include "catalog/CatalogoLineas.h"
#include "datos/Auditoria.h"
#include "datos/ConexionBD.h"
#include "datos/Consulta.h"
#include "datos/Registros.h"
#include "datos/Transaccion.h"
#include "datos/Utilerias.h"
#include "pantallas/RolesRenglon.h"

namespace cajaplex {
namespace {

QString columnasListado() {
    return QStringLiteral(
               " Select A.ID, A.Clave, A.producto as producto, case when Ifnull(A.existencia,0) "
               "<= 0 then 0 Else A.Existencia End as Existencia, C.unidad, "
               "Ifnull(A.precioAbierto, 0) as precioAbierto,") +
           QStringLiteral(" A.precio as Precio1, A.precio2 as Precio2, A.precio3 as Precio3, "
                          "A.Precio4 as Precio4, A.Precio5 as Precio5, A.manejaInventarios, "
                          "A.pCompra, A.Clave") +
           QStringLiteral(" from Productos A, Unidades C");
}

const QLocale& localeMexico() {
    static const QLocale mexico(QLocale::Spanish, QLocale::Mexico);
    return mexico;
}

const char* const SqlTieneTransacciones =
    "Select Case When "
    "Exists (Select 1 From RemisionDetalle Where empresaID = :EmpresaID and clave = :Clave) "
    "or Exists (Select 1 From RemisionDetalle Where empresaID = :EmpresaID and producto = "
    ":ProductoID) "
    "or Exists (Select 1 From CotizacionDetalle Where empresaID = :EmpresaID and clave = :Clave) "
    "or Exists (Select 1 From CotizacionDetalle Where empresaID = :EmpresaID and producto = "
    ":ProductoID) "
    "or Exists (Select 1 From ComandaDetalle Where empresaID = :EmpresaID and producto = "
    ":ProductoID) "
    "or Exists (Select 1 From ComandaDetallePaquetes Where empresaID = :EmpresaID and "
    "(clave = :Clave or producto = :ProductoID)) "
    "or Exists (Select 1 From RequisicionDetalle Where empresaID = :EmpresaID and clave = :Clave) "
    "or Exists (Select 1 From OrdenCompraDetalle Where empresaID = :EmpresaID and clave = :Clave) "
    "or Exists (Select 1 From DevolucionOrdenCompraDetalle Where empresaID = :EmpresaID and "
    "clave = :Clave) "
    "or Exists (Select 1 From AjusteProductosDetalle Where empresaID = :EmpresaID and clave = "
    ":Clave) "
    "or Exists (Select 1 From FacturaDetalle Where empresaID = :EmpresaID and "
    "(clave = :Clave or producto = :ProductoID)) "
    "or Exists (Select 1 From NotaCreditoDetalle Where empresaID = :EmpresaID and "
    "(clave = :Clave or producto = :ProductoID)) "
    "or Exists (Select 1 From ProductosPaquetes Where empresaID = :EmpresaID and clave = :Clave) "
    "Then 1 Else 0 End as TieneTransacciones";

const char* const SqlClaveActual = "Select clave, producto From Productos "
                                   "Where empresaID = :EmpresaID and ID = :ProductoID";

// Lo que se va con el producto. Primero el producto: si otra estación ya lo borró no se toca
// nada más.
const char* const SqlBorraProducto =
    "Delete From Productos Where empresaID = :EmpresaID and ID = :ProductoID";
const char* const SqlBorraComposicion =
    "Delete From ProductosPaquetes Where empresaID = :EmpresaID and id = :ProductoID";
const char* const SqlBorraRangos =
    "Delete From ProductosRangosPrecios Where empresaID = :EmpresaID and productoID = :ProductoID";
const char* const SqlBorraFotos = "Delete From ProductosFotos Where id = :ProductoID and "
                                  "Ifnull(empresaID, :EmpresaID) = :EmpresaID";

// Índice de la primera columna con ese nombre (sin distinguir mayúsculas), o -1.
int columna(const QStringList& columnas, const QString& nombre) {
    for (int i = 0; i < columnas.size(); ++i)
        if (columnas.at(i).compare(nombre, Qt::CaseInsensitive) == 0) return i;
    return -1;
}

} // namespace

QString sqlProductosXLinea(int64_t empresaID, int64_t lineaID) {
    return columnasListado() + QStringLiteral(" Where A.linea =") + numeroSql(lineaID) +
           QStringLiteral(" And A.empresaID =") + numeroSql(empresaID) +
           QStringLiteral(" And A.empresaid = C.empresaID") +
           QStringLiteral(" And A.unidad = C.id") + QStringLiteral(" Order By A.producto");
}

QString sqlBusquedaProductos(int64_t empresaID, const QString& texto) {
    const QString patron = citaSql(QLatin1Char('%') + texto + QLatin1Char('%'));
    return columnasListado() + QStringLiteral(" Where A.empresaID =") + numeroSql(empresaID) +
           QStringLiteral(" And A.empresaid = C.empresaID") +
           QStringLiteral(" And A.unidad = C.id") + QStringLiteral(" And (A.clave like") + patron +
           QStringLiteral(" or A.producto like") + patron +
           QStringLiteral(" or A.codigoBarra like") + patron + QStringLiteral(")") +
           QStringLiteral(" Order By A.producto");
}

QString textoCantidad(double cantidad) {
    const double redondeada = Redondea(cantidad, 3);
    int decimales = 0;
    while (decimales < 3 && std::abs(Redondea(redondeada, decimales) - redondeada) > 1e-9)
        ++decimales;
    return localeMexico().toString(redondeada, 'f', decimales);
}

QString textoPrecio(double precio) {
    return QLatin1Char('$') + localeMexico().toString(Redondea(precio, 2), 'f', 2);
}

QString plegadoBusqueda(const QString& texto) {
    const QString descompuesto = texto.normalized(QString::NormalizationForm_D);
    QString plegado;
    plegado.reserve(descompuesto.size());
    for (const QChar c : descompuesto)
        if (!c.isMark()) plegado.append(c);
    return plegado.toCaseFolded();
}

void ModeloProductos::asigna(const Registros& registros) {
    const QStringList columnas = registros.columnas();
    const int cID = columna(columnas, QStringLiteral("ID"));
    const int cClave = columna(columnas, QStringLiteral("Clave"));
    const int cProducto = columna(columnas, QStringLiteral("producto"));
    const int cExistencia = columna(columnas, QStringLiteral("Existencia"));
    const int cUnidad = columna(columnas, QStringLiteral("unidad"));
    const int cManeja = columna(columnas, QStringLiteral("manejaInventarios"));
    const int cPrecio = columna(columnas, QStringLiteral("Precio1"));
    for (int c : {cID, cClave, cProducto, cExistencia, cUnidad, cManeja, cPrecio})
        if (c < 0) throw ErrorProgramacion("El listado de productos no trae todas sus columnas");

    std::vector<ProductoListado> productos;
    productos.reserve(static_cast<size_t>(registros.numeroRegistros()));
    // Por índice de columna: con miles de renglones buscar cada campo por nombre ya se nota.
    for (const auto& fila : registros.resultado().filas) {
        auto campo = [&fila](int c) { return Campo(QString(), &fila.at(static_cast<size_t>(c))); };
        ProductoListado p;
        p.id = campo(cID).comoEntero();
        p.clave = campo(cClave).comoTexto();
        p.producto = campo(cProducto).comoTexto();
        p.existencia = campo(cExistencia).comoReal();
        p.unidad = campo(cUnidad).comoTexto();
        p.manejaInventarios = campo(cManeja).comoBooleano();
        p.precio1 = campo(cPrecio).comoReal();
        p.plegado = plegadoBusqueda(p.clave + QLatin1Char(' ') + p.producto);
        productos.push_back(std::move(p));
    }
    beginResetModel();
    productos_ = std::move(productos);
    endResetModel();
}

void ModeloProductos::limpia() {
    beginResetModel();
    productos_.clear();
    endResetModel();
}

bool ModeloProductos::quita(int64_t productoID) {
    for (size_t i = 0; i < productos_.size(); ++i) {
        if (productos_[i].id != productoID) continue;
        const int fila = static_cast<int>(i);
        beginRemoveRows({}, fila, fila);
        productos_.erase(productos_.begin() + fila);
        endRemoveRows();
        return true;
    }
    return false;
}

int ModeloProductos::rowCount(const QModelIndex& padre) const {
    return padre.isValid() ? 0 : static_cast<int>(productos_.size());
}

QVariant ModeloProductos::data(const QModelIndex& indice, int rol) const {
    if (!indice.isValid() || indice.row() >= rowCount()) return {};
    const ProductoListado& p = productos_[static_cast<size_t>(indice.row())];
    switch (rol) {
    case Qt::DisplayRole:
    case RolPrimeraLinea:
        return QString(p.clave + QStringLiteral(" - ") + p.producto);
    case RolSegundaLinea:
        if (!p.manejaInventarios) return QString();
        return QString(QStringLiteral("Existencia: ") + textoCantidad(p.existencia) +
                       QLatin1Char(' ') + p.unidad);
    case RolColorSegundaLinea:
        if (!p.manejaInventarios) return QString();
        return QString::fromLatin1(p.existencia > 0 ? ColorConExistencia : ColorSinExistencia);
    case RolDatoDerecha:
        return textoPrecio(p.precio1);
    case RolProductoID:
        return QVariant::fromValue<qlonglong>(p.id);
    case RolClave:
        return p.clave;
    case RolExistencia:
        return p.existencia;
    case RolManejaInventarios:
        return p.manejaInventarios;
    default:
        return {};
    }
}

FiltroProductos::FiltroProductos(ModeloProductos* modelo, QObject* padre)
    : QSortFilterProxyModel(padre), modelo_(modelo) {
    setSourceModel(modelo);
}

void FiltroProductos::filtra(const QString& texto) {
    texto_ = texto;
    plegado_ = plegadoBusqueda(texto.trimmed());
    invalidateFilter();
}

bool FiltroProductos::filterAcceptsRow(int fila, const QModelIndex&) const {
    if (plegado_.isEmpty()) return true;
    return modelo_->producto(fila).plegado.contains(plegado_);
}

ResultadoBorrarProducto borraProducto(ConexionBD& conexion, const Sesion& sesion,
                                      const ProductoListado& producto) {
    auto asigna = [&](Consulta& c) {
        c.parametro(QStringLiteral("EmpresaID")).entero(sesion.EmpresaID);
        c.parametro(QStringLiteral("ProductoID")).entero(producto.id);
    };
    Transaccion t(conexion);
    // La clave actual, no la del listado: otra estación pudo cambiarla después de cargarlo y los
    // documentos la nombran por la de ahora. Dentro de la transacción ya nadie la cambia.
    Consulta actual(conexion, QString::fromUtf8(SqlClaveActual));
    asigna(actual);
    actual.abre(t);
    if (actual.numeroRegistros() == 0) return ResultadoBorrarProducto::Eliminado; // ya no estaba
    ProductoListado vigente = producto;
    vigente.clave = actual.campo(QStringLiteral("clave")).comoTexto();
    vigente.producto = actual.campo(QStringLiteral("producto")).comoTexto();

    Consulta revisa(conexion, QString::fromUtf8(SqlTieneTransacciones));
    asigna(revisa);
    revisa.parametro(QStringLiteral("Clave")).texto(vigente.clave);
    revisa.abre(t);
    if (revisa.campo(QStringLiteral("TieneTransacciones")).comoEntero() != 0)
        return ResultadoBorrarProducto::ConTransacciones;

    Consulta borra(conexion, QString::fromUtf8(SqlBorraProducto));
    asigna(borra);
    borra.ejecuta(t);
    if (borra.filasAfectadas() == 0) return ResultadoBorrarProducto::Eliminado; // ya no estaba

    Lote lote(conexion);
    for (const char* sql : {SqlBorraComposicion, SqlBorraRangos, SqlBorraFotos}) {
        Consulta c(conexion, QString::fromUtf8(sql));
        asigna(c);
        lote.agrega(c);
    }
    Auditoria::agrega(
        lote, sesion,
        {tipoAuditoria::Cancelacion,
         QString::fromUtf8(ModuloCatalogoProductos),
         QStringLiteral("Producto: ") + vigente.clave + QLatin1Char(' ') + vigente.producto,
         {},
         QStringLiteral("Producto eliminado")});
    lote.ejecuta(t);
    t.confirma();
    return ResultadoBorrarProducto::Eliminado;
}

} // namespace cajaplex
