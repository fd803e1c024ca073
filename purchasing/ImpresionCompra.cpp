#include "purchasing/ImpresionCompra.h"

#include <QDateTime>
#include <QDir>

#include "catalog/CatalogoProductos.h"
#include "datos/AjustesEstacion.h"
#include "datos/Consulta.h"
#include "datos/ModuloDatos.h"
#include "sales/ListaVentas.h"

namespace cajaplex {

namespace {

// Título impreso y columna del pie en ConfiguraImpresiones de cada clase (el ajuste no tiene).
const char* const kTitulos[] = {"ORDEN DE COMPRA", "RECEPCIÓN DE MERCANCÍA",
                                "DEVOLUCIÓN DE MERCANCÍA", "AJUSTE DE INVENTARIO"};
const char* const kPies[] = {"pieOC", "pieRM", "pieDM", nullptr};

} // namespace

DocumentoImpresion documentoImpresionCompra(const Sesion& sesion, const CompraGuardada& compra) {
    DocumentoImpresion doc;
    QVariantMap& d = doc.datos;
    d[QStringLiteral("empresa")] = sesion.NombreEmpresa;
    d[QStringLiteral("rfc")] = sesion.Rfc;
    QString titulo = QString::fromUtf8(kTitulos[static_cast<int>(compra.tipo)]);
    if (compra.tipo == TipoCompra::Ajuste)
        titulo += compra.entrada ? QStringLiteral(" (ENTRADA)") : QStringLiteral(" (SALIDA)");
    if (compra.cancelada) titulo += QStringLiteral(" - CANCELADO");
    d[QStringLiteral("titulo")] = titulo;
    d[QStringLiteral("folio")] = QString::number(compra.folio);
    d[QStringLiteral("fecha")] = fechaLista(compra.fecha);
    d[QStringLiteral("proveedor")] = compra.proveedor;
    d[QStringLiteral("rfcProveedor")] = compra.rfcProveedor;
    d[QStringLiteral("usuario")] = compra.usuario;
    QVariantList renglones;
    for (const RenglonCompra& r : compra.renglones)
        renglones << QVariantMap{{QStringLiteral("cantidad"), textoCantidad(r.cantidad)},
                                 {QStringLiteral("unidad"), r.unidad},
                                 {QStringLiteral("clave"), r.clave},
                                 {QStringLiteral("descripcion"), r.producto},
                                 {QStringLiteral("precio"), textoPrecio(r.costo)},
                                 {QStringLiteral("importe"), textoPrecio(r.importe)}};
    d[QStringLiteral("renglones")] = renglones;
    d[QStringLiteral("subtotal")] = textoPrecio(compra.subtotal);
    d[QStringLiteral("iva")] = textoPrecio(compra.iva);
    d[QStringLiteral("total")] = textoPrecio(compra.total);
    if (!compra.observaciones.isEmpty()) d[QStringLiteral("adicional")] = compra.observaciones;
    return doc;
}

TrabajoImpresion* imprimeCompra(QWidget* pantalla, const Sesion& sesion,
                                const CompraGuardada& compra, DestinoImpresion destino,
                                const QString& carpetaEstacion) {
    const AjustesEstacion estacion(carpetaEstacion);
    PedidoImpresion pedido;
    pedido.carpeta = QStringLiteral("Compras");
    pedido.ajustes = leeAjustesImpresion(estacion, QStringLiteral("Compras"));
    pedido.destino = destino;
    pedido.archivoPdf = QDir(estacion.carpeta()).filePath(QString::fromUtf8(ArchivoPdfLocal));
    const char* columnaPie = kPies[static_cast<int>(compra.tipo)];
    const int64_t empresa = sesion.EmpresaID;
    // El pie se lee en el hilo de la impresión, no en el de la pantalla.
    return imprimeDocumento(
        pantalla, sesion, pedido,
        [documento = documentoImpresionCompra(sesion, compra), columnaPie, empresa]() mutable {
            if (columnaPie) {
                Consulta pie(ModuloDeDatos.ConexionBD,
                             QStringLiteral("Select ifnull(%1, '') as pie From "
                                            "ConfiguraImpresiones Where empresaID = :EmpresaID")
                                 .arg(QString::fromLatin1(columnaPie)));
                pie.parametro(QStringLiteral("EmpresaID")).entero(empresa);
                pie.abre();
                documento.datos[QStringLiteral("pie")] =
                    pie.campo(QStringLiteral("pie")).comoTexto();
            }
            return documento;
        });
}

} // namespace cajaplex
