#include "sales/DocumentoClonado.h"

#include <algorithm>

#include "datos/Consulta.h"
#include "datos/Utilerias.h"

namespace cajaplex {

namespace {

// Los campos del producto de cada renglón, como los arma el alta por clave de la venta.
#define CAMPOS_PRODUCTO                                                                            \
    "P.ID, P.clave, P.producto, ifnull(U.unidad, '') as unidad, ifnull(P.moneda, 0) as moneda, "   \
    "ifnull(M.tipoCambioVenta, 1) as tipoCambioVenta, ifnull(M.abreviacionPAC, '') as "            \
    "abreviacionPAC, ifnull(P.pCompra, 0) as pCompra, ifnull(P.porcentajeImpuesto, 0) as "         \
    "porcentajeImpuesto, ifnull(P.ieps, 0) as ieps, ifnull(P.precioAbierto, 0) as precioAbierto, " \
    "case when ifnull(P.existencia, 0) <= 0 then 0 else P.existencia end as existencia, "          \
    "ifnull(P.precio, 0) as VPrecioVenta1, ifnull(P.precio2, 0) as VPrecioVenta2, "                \
    "ifnull(P.precio3, 0) as "                                                                     \
    "VPrecioVenta3, ifnull(P.precio4, 0) as VPrecioVenta4, ifnull(P.precio5, 0) as "               \
    "VPrecioVenta5, "                                                                              \
    "ifnull(P.manejaInventarios, 0) as manejaInventarios, ifnull(P.manejaSeries, 0) as "           \
    "manejaSeries, ifnull(P.caduca, 0) as caduca, ifnull(P.esPaquete, 0) as esPaquete, "           \
    "ifnull(P.requiereAutorizacionVenta, 0) as requiereAutorizacionVenta, "                        \
    "ifnull(P.bonificaPuntos, 0) as bonificaPuntos, ifnull(P.porcentajeBonificacion, 0) as "       \
    "porcentajeBonificacion, ifnull(P.Recurrente, 0) as Recurrente "

#define UNIONES_PRODUCTO                                                                           \
    "Join Productos P On P.empresaID = B.empresaID And P.id = B.producto "                         \
    "Left Join Unidades U On U.empresaID = P.empresaID And U.id = P.unidad "                       \
    "Left Join Monedas M On M.empresaID = P.empresaID And M.id = P.moneda "

const char* const SqlComanda =
    "Select " CAMPOS_PRODUCTO ", B.cantidad, ifnull(B.descuento, 0) as descuento, "
    "cast(ifnull(B.nota, '') as text) as nota, 0 as pLista, 0 as precioDocumento, A.id as origen, "
    "0 as cliente, ifnull(A.vendedor, 0) as vendedor, "
    "ifnull(A.observaciones, '') as ObservacionesDocumentoClonado, "
    "Cast ((JulianDay(Ifnull(A.fechaCierre, datetime('now','localtime'))) - "
    "JulianDay(A.fechaApertura)) * 24 * 60 As Integer) as MinutosTranscurridos "
    "From Comanda A Join ComandaDetalle B On B.empresaID = A.empresaID And B.id = A.id "
    "And B.comanda = A.folio " UNIONES_PRODUCTO
    "Where A.empresaID = :EmpresaID And A.id = :Documento And A.fechaApertura is not null "
    "And A.fechaCierre is not null And A.fechaPago is null And A.Cancelada = 0 "
    "And B.Cancelada = 0 Order By B.seccion, B.posicion";

const char* const SqlCotizacion =
    "Select " CAMPOS_PRODUCTO ", B.cantidad, ifnull(B.descuento, 0) as descuento, "
    "cast(ifnull(B.nota, '') as text) as nota, ifnull(B.pLista, 0) as pLista, ifnull(B.precio, 0) "
    "as "
    "precioDocumento, A.folio as origen, ifnull(A.cliente, 0) as cliente, 0 as vendedor, "
    "ifnull(A.observaciones, '') as ObservacionesDocumentoClonado "
    "From Cotizacion A Join CotizacionDetalle B On B.empresaID = A.empresaID And B.id = A.ID "
    "And B.cotizacion = A.folio " UNIONES_PRODUCTO
    "Where A.empresaID = :EmpresaID And A.folio = :Documento And A.cancelada = 0 "
    "Order By B.posicion";

#undef CAMPOS_PRODUCTO
#undef UNIONES_PRODUCTO

} // namespace

DocumentoClonado cargaDocumentoClonar(ConexionDatos& conexion, const Sesion& sesion,
                                      int64_t documento, const QString& tipo, int modoPrecio) {
    const bool esComanda = tipo == QLatin1String(TipoClonarComanda);
    Consulta q(conexion, QString::fromUtf8(esComanda ? SqlComanda : SqlCotizacion));
    q.parametro(QStringLiteral("EmpresaID")).entero(sesion.EmpresaID);
    q.parametro(QStringLiteral("Documento")).entero(documento);
    q.abre();

    DocumentoClonado d;
    for (const Registro f : q) {
        auto c = [&f](const char* nombre) { return f.campo(QString::fromLatin1(nombre)); };
        RenglonVenta r = renglonDeProducto(f);
        r.Cantidad = c("cantidad").comoReal();
        r.Descuento = c("descuento").comoReal();
        r.Nota = c("nota").comoTexto();
        if (esComanda) {
            d.minutosTranscurridos = static_cast<int>(c("MinutosTranscurridos").comoEntero());
            // Lo que se cobra por tiempo lleva las horas que estuvo ocupado el nodo (al menos
            // un minuto) por cada unidad pedida.
            if (c("Recurrente").comoBooleano())
                r.Cantidad = Redondea(r.Cantidad * std::max(d.minutosTranscurridos, 1) / 60.0, 2);
        }
        const int nivel = static_cast<int>(c("pLista").comoEntero());
        r.PLista = nivel >= 1 && nivel <= 5 ? nivel : 1;
        // El precio cotizado se respeta como elegido: un rango no lo sustituye.
        const bool cotizado = !esComanda && modoPrecio != PrecioActual;
        r.Precio = cotizado ? c("precioDocumento").comoReal() : precioDeNivel(r, r.PLista);
        r.PrecioElegido = cotizado;
        d.observaciones = c("ObservacionesDocumentoClonado").comoTexto();
        d.cliente = c("cliente").comoEntero();
        d.vendedor = c("vendedor").comoEntero();
        if (esComanda) {
            d.origen.tipo = OrigenVenta::Tipo::Comanda;
            d.origen.comandaID = c("origen").comoEntero();
        } else {
            d.origen.tipo = OrigenVenta::Tipo::Cotizacion;
            d.origen.folioCotizacion = c("origen").comoEntero();
        }
        d.renglones.push_back(std::move(r));
    }
    return d;
}

} // namespace cajaplex
