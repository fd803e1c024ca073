#include "catalog/RangosPrecios.h"

#include "catalog/CatalogoProductos.h"
#include "datos/Auditoria.h"
#include "datos/ConexionBD.h"
#include "datos/Transaccion.h"
#include "datos/Utilerias.h"

namespace cajaplex {
namespace {

const char* const SqlConsultaProducto =
    "Select A.ID, A.clave, A.producto, B.unidad, A.precio, A.precio2, A.precio3, A.precio4, "
    "A.precio5\n"
    "From Productos A Left Outer Join Unidades B On B.empresaID = A.empresaID and B.id = "
    "A.unidad\n"
    "Where A.empresaID = :EmpresaID\n"
    "And A.ID = :ProductoID";

const char* const SqlConsultaRangos = "Select\t*\n"
                                      "from ProductosRangosPrecios\n"
                                      "Where empresaID = :EmpresaID\n"
                                      "and productoID = :ProductoID\n"
                                      "Order By Rango";

const char* const SqlInsertaRango =
    "Insert Into ProductosRangosPrecios(empresaID, productoID, rango, precioVenta)\n"
    "Values (:empresaID, :productoID, :rango, :precioVenta)";

const char* const SqlActualizaRango = "Update ProductosRangosPrecios\n"
                                      "Set rango = :rango, \n"
                                      "precioVenta = :precioVenta\n"
                                      "Where empresaID = :empresaID\n"
                                      "and productoID = :productoID\n"
                                      "and rango = :rangoAnterior";

QString textoRango(const ProductoRangos& p, const RangoPrecio& r) {
    return QStringLiteral("Producto: ") + p.clave + QLatin1Char(' ') + p.producto +
           QStringLiteral(" Rango: ") + textoCantidad(r.rango) + QStringLiteral(" Precio: ") +
           textoPrecio(r.precioVenta);
}

} // namespace

RangosPrecios::RangosPrecios(ConexionBD& conexion, const Sesion& sesion)
    : ConsultaProducto(conexion, QString::fromUtf8(SqlConsultaProducto)),
      ConsultaRangos(conexion, QString::fromUtf8(SqlConsultaRangos)),
      InsertaRango(conexion, QString::fromUtf8(SqlInsertaRango)),
      ActualizaRango(conexion, QString::fromUtf8(SqlActualizaRango)), conexion_(conexion),
      sesion_(sesion) {}

std::optional<ProductoRangos> RangosPrecios::producto(int64_t productoID) {
    ConsultaProducto.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    ConsultaProducto.parametro(QStringLiteral("ProductoID")).entero(productoID);
    ConsultaProducto.abre();
    if (ConsultaProducto.numeroRegistros() == 0) return std::nullopt;
    ProductoRangos p;
    p.id = ConsultaProducto.campo(QStringLiteral("ID")).comoEntero();
    p.clave = ConsultaProducto.campo(QStringLiteral("clave")).comoTexto();
    p.producto = ConsultaProducto.campo(QStringLiteral("producto")).comoTexto();
    p.unidad = ConsultaProducto.campo(QStringLiteral("unidad")).comoTexto();
    const QString columnas[] = {QStringLiteral("precio"), QStringLiteral("precio2"),
                                QStringLiteral("precio3"), QStringLiteral("precio4"),
                                QStringLiteral("precio5")};
    for (size_t i = 0; i < p.precios.size(); ++i)
        p.precios[i] = ConsultaProducto.campo(columnas[i]).comoReal();
    ConsultaProducto.cierra();
    return p;
}

std::vector<RangoPrecio> RangosPrecios::consulta(int64_t productoID) {
    ConsultaRangos.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    ConsultaRangos.parametro(QStringLiteral("ProductoID")).entero(productoID);
    ConsultaRangos.abre();
    std::vector<RangoPrecio> rangos;
    rangos.reserve(static_cast<size_t>(ConsultaRangos.numeroRegistros()));
    for (const Registro& r : ConsultaRangos)
        rangos.push_back({r.campo(QStringLiteral("rango")).comoReal(),
                          r.campo(QStringLiteral("precioVenta")).comoReal()});
    ConsultaRangos.cierra();
    return rangos;
}

bool RangosPrecios::existe(Transaccion& transaccion, int64_t productoID, double rango) {
    Consulta repetido(
        conexion_, QStringLiteral(" Select Rango From ProductosRangosPrecios Where empresaID = ") +
                       numeroSql(sesion_.EmpresaID) + QStringLiteral(" and productoID = ") +
                       numeroSql(productoID) + QStringLiteral(" and rango = ") + numeroSql(rango));
    repetido.abre(transaccion);
    return repetido.numeroRegistros() > 0;
}

ResultadoRango RangosPrecios::inserta(const ProductoRangos& producto, const RangoPrecio& rango) {
    Transaccion t(conexion_);
    if (existe(t, producto.id, rango.rango)) return ResultadoRango::Repetido;
    InsertaRango.parametro(QStringLiteral("empresaID")).entero(sesion_.EmpresaID);
    InsertaRango.parametro(QStringLiteral("productoID")).entero(producto.id);
    InsertaRango.parametro(QStringLiteral("rango")).real(rango.rango);
    InsertaRango.parametro(QStringLiteral("precioVenta")).real(rango.precioVenta);
    InsertaRango.ejecuta(t);
    Auditoria::registra(t, sesion_,
                        {tipoAuditoria::Insercion,
                         QString::fromUtf8(ModuloRangosPrecios),
                         textoRango(producto, rango),
                         {},
                         {}});
    t.confirma();
    return ResultadoRango::Almacenado;
}

ResultadoRango RangosPrecios::modifica(const ProductoRangos& producto, const RangoPrecio& anterior,
                                       const RangoPrecio& nuevo) {
    Transaccion t(conexion_);
    // Con la misma cantidad el único que la tiene es él mismo.
    if (nuevo.rango != anterior.rango && existe(t, producto.id, nuevo.rango))
        return ResultadoRango::Repetido;
    ActualizaRango.parametro(QStringLiteral("rango")).real(nuevo.rango);
    ActualizaRango.parametro(QStringLiteral("precioVenta")).real(nuevo.precioVenta);
    ActualizaRango.parametro(QStringLiteral("empresaID")).entero(sesion_.EmpresaID);
    ActualizaRango.parametro(QStringLiteral("productoID")).entero(producto.id);
    ActualizaRango.parametro(QStringLiteral("rangoAnterior")).real(anterior.rango);
    ActualizaRango.ejecuta(t);
    Auditoria::registra(t, sesion_,
                        {tipoAuditoria::Actualizacion,
                         QString::fromUtf8(ModuloRangosPrecios),
                         textoRango(producto, nuevo),
                         textoRango(producto, anterior),
                         {}});
    t.confirma();
    return ResultadoRango::Almacenado;
}

void RangosPrecios::elimina(const ProductoRangos& producto, const RangoPrecio& rango) {
    Consulta borra(conexion_,
                   QStringLiteral(" Delete From ProductosRangosPrecios Where empresaID = ") +
                       numeroSql(sesion_.EmpresaID) + QStringLiteral(" and productoID = ") +
                       numeroSql(producto.id) + QStringLiteral(" and rango = ") +
                       numeroSql(rango.rango));
    Lote lote(conexion_);
    lote.agrega(borra);
    Auditoria::agrega(lote, sesion_,
                      {tipoAuditoria::Cancelacion,
                       QString::fromUtf8(ModuloRangosPrecios),
                       textoRango(producto, rango),
                       {},
                       QStringLiteral("Rango eliminado")});
    lote.ejecuta();
}

} // namespace cajaplex
