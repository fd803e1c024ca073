#include "datos/ModuloDatos.h"

namespace cajaplex {

namespace {

const char* const SqlValidaUsuario = "exec dbo.ValidaUsuarioMoviles :Usuario, :Contrasena";

const char* const SqlRemision =
    "Insert Into Remision (empresaID, folio, fecha, usuarioID, vendedor, cliente, moneda, "
    "feMetodoID, tipoCambio, totalEnvio, subtotalRemision, ivaRemision, iepsRemision, descuento, "
    "totalRemision, observaciones, descontoExistencias, fechaCaptura, costoRemision, "
    "puntosRemision, pagoMixto, calificacion, entregaDomicilio, cancelada, enviada, entregada, "
    "totalPropina, pagada, saldoPendiente, plazoPago, montoPagado, fechaPago) "
    "Values (:empresaID, :folio, :fecha, :usuarioID, :vendedor, :cliente, :moneda, "
    ":feMetodoID, :tipoCambio, :totalEnvio, :subtotalRemision, :ivaRemision, :iepsRemision, "
    ":descuento, :totalRemision, :observaciones, :descontoExistencias, :fechaCaptura, "
    ":costoRemision, :puntosRemision, :pagoMixto, :calificacion, :entregaDomicilio, :cancelada, "
    ":enviada, :entregada, :totalPropina, :pagada, :saldoPendiente, :plazoPago, :montoPagado, "
    ":fechaPago)";

const char* const SqlRemisionDetalle =
    "Insert Into RemisionDetalle (id, remision, producto, empresaID, cantidad, precio, descuento, "
    "importe, pCompra, porcentajeImpuesto, clave, posicion, ieps, nota, pLista, moneda, "
    "mesPagado) "
    "Values (:id, :remision, :producto, :empresaID, :cantidad, :precio, :descuento, :importe, "
    ":pCompra, :porcentajeImpuesto, :clave, :posicion, :ieps, :nota, :pLista, :moneda, "
    ":mesPagado)";

const char* const SqlRemisionPagos =
    "Insert Into RemisionPagos (remision, empresaID, feMetodoID, importe, moneda, utilizados) "
    "Values (:remision, :empresaID, :feMetodoID, :importe, :moneda, :utilizados)";

const char* const SqlEmpresa = "select * from Empresa where empresaID = :empresaID";
const char* const SqlConfiguracion = "select * from configura where empresaID = :empresaID";

const char* const SqlAuditoriasSistema =
    "Insert Into AuditoriasSistema (tipoAuditoria, usuarioID, empresaID, datoAnterior, "
    "datoNuevo, comentarios, moduloSistema) "
    "Values (:tipoAuditoria, :usuarioID, :empresaID, :datoAnterior, :datoNuevo, :comentarios, "
    ":moduloSistema)";

const char* const SqlCotizacion =
    "Insert Into Cotizacion (empresaID, folio, fecha, fechaCaptura, usuarioID, vendedor, cliente, "
    "moneda, tipoCambio, vigencia, subtotalCotizacion, descuento, iepsCotizacion, "
    "ivaCotizacion, totalCotizacion, observaciones, cancelada) "
    "Values (:empresaID, :folio, :fecha, :fechaCaptura, :usuarioID, :vendedor, :cliente, "
    ":moneda, :tipoCambio, :vigencia, :subtotalCotizacion, :descuento, :iepsCotizacion, "
    ":ivaCotizacion, :totalCotizacion, :observaciones, :cancelada)";

const char* const SqlCotizacionDetalle =
    "Insert Into CotizacionDetalle (id, cotizacion, producto, empresaID, cantidad, precio, "
    "descuento, importe, pCompra, porcentajeImpuesto, clave, posicion, ieps, nota, pLista, "
    "moneda) "
    "Values (:id, :cotizacion, :producto, :empresaID, :cantidad, :precio, :descuento, :importe, "
    ":pCompra, :porcentajeImpuesto, :clave, :posicion, :ieps, :nota, :pLista, :moneda)";

// La descripción y el importe aplicado los arma la sentencia; el factor siempre es 1.
const char* const SqlPagoRemision =
    "Insert Into PagosRemision (empresaID, folio, importe, idRemision, folioRemision, "
    "observaciones, cliente, feMetodoID, usuarioID, moneda, tipoCambio, descripcion, "
    "importeAplicado, factorAplicado) "
    "Values (:empresaID, :folio, :importe, :idRemision, :folioRemision, :observaciones, "
    ":cliente, :feMetodoID, :usuarioID, :moneda, :tipoCambio, "
    "'Pago a remisión ' || :folioRemision, :importe, 1)";

const char* const SqlRequisicion =
    "Insert Into Requisicion (empresaID, folio, fecha, proveedor, observaciones, cancelada, "
    "moneda, tipoCambio, usuarioID, consolidada, subtotalRequisicion, ivaRequisicion, "
    "totalRequisicion) "
    "Values (:empresaID, :folio, :fecha, :proveedor, :observaciones, :cancelada, :moneda, "
    ":tipoCambio, :usuarioID, :consolidada, :subtotalRequisicion, :ivaRequisicion, "
    ":totalRequisicion)";

const char* const SqlRequisicionDetalle =
    "Insert Into RequisicionDetalle (id, requisicion, clave, empresaID, cantidad, costo, "
    "descuento, importe, porcentajeImpuesto, posicion) "
    "Values (:id, :requisicion, :clave, :empresaID, :cantidad, :costo, :descuento, :importe, "
    ":porcentajeImpuesto, :posicion)";

const char* const SqlOrdenCompra =
    "Insert Into OrdenCompra (empresaID, folio, fecha, proveedor, observaciones, "
    "subtotalOrdenCompra, ivaOrdenCompra, totalOrdenCompra, cancelada, pagada, saldoPendiente, "
    "plazoPago, moneda, tipoCambio, feMetodoID, usuarioID, fechaPago) "
    "Values (:empresaID, :folio, :fecha, :proveedor, :observaciones, :subtotalOrdenCompra, "
    ":ivaOrdenCompra, :totalOrdenCompra, :cancelada, :pagada, :saldoPendiente, :plazoPago, "
    ":moneda, :tipoCambio, :feMetodoID, :usuarioID, :fechaPago)";

const char* const SqlOrdenCompraDetalle =
    "Insert Into OrdenCompraDetalle (id, ordenCompra, clave, empresaID, cantidad, costo, "
    "descuento, importe, porcentajeImpuesto, posicion) "
    "Values (:id, :ordenCompra, :clave, :empresaID, :cantidad, :costo, :descuento, :importe, "
    ":porcentajeImpuesto, :posicion)";

const char* const SqlDevolucionOrdenCompra =
    "Insert Into DevolucionOrdenCompra (empresaID, folio, fecha, proveedor, observaciones, "
    "subtotalOrdenCompra, ivaOrdenCompra, totalOrdenCompra, cancelada, moneda, tipoCambio, "
    "usuarioID, feMetodoID) "
    "Values (:empresaID, :folio, :fecha, :proveedor, :observaciones, :subtotalOrdenCompra, "
    ":ivaOrdenCompra, :totalOrdenCompra, :cancelada, :moneda, :tipoCambio, :usuarioID, "
    ":feMetodoID)";

// devolucionOrdenCompra lleva el folio del encabezado; id, su ID.
const char* const SqlDevolucionOrdenCompraDetalle =
    "Insert Into DevolucionOrdenCompraDetalle (id, devolucionOrdenCompra, clave, empresaID, "
    "cantidad, costo, descuento, importe, porcentajeImpuesto, posicion) "
    "Values (:id, :devolucionOrdenCompra, :clave, :empresaID, :cantidad, :costo, :descuento, "
    ":importe, :porcentajeImpuesto, :posicion)";

const char* const SqlAjusteProductos =
    "Insert into AjusteProductos (empresaID, folio, esAjusteEntrada, fecha, observaciones, "
    "cancelada, usuarioID) "
    "Values (:empresaID, :folio, :esAjusteEntrada, :fecha, :observaciones, :cancelada, "
    ":usuarioID)";

// id lleva el ID del encabezado (no su folio).
const char* const SqlAjusteProductosDetalle =
    "Insert into AjusteProductosDetalle (id, posicion, clave, empresaID, cantidad) "
    "Values (:id, :posicion, :clave, :empresaID, :cantidad)";

} // namespace

TModuloDeDatos::TModuloDeDatos()
    : TablaLogeoLocalBD(SqlValidaUsuario),
      ValidaReferenciaID(ConexionBD, "Select ReferenciaID from DispositivosRED where ReferenciaID "
                                     "= :ReferenciaID"),
      Remision(ConexionBD, SqlRemision), RemisionDetalle(ConexionBD, SqlRemisionDetalle),
      RemisionDetalle2(ConexionBD, SqlRemisionDetalle), RemisionPagos(ConexionBD, SqlRemisionPagos),
      Empresa(ConexionBD, SqlEmpresa), DatosEmpresa(ConexionBD, SqlEmpresa),
      Configuracion(ConexionBD, SqlConfiguracion),
      AuditoriasSistema(ConexionBD, SqlAuditoriasSistema), Cotizacion(ConexionBD, SqlCotizacion),
      CotizacionDetalle(ConexionBD, SqlCotizacionDetalle),
      RegistraPago(ConexionBD, SqlPagoRemision), Clientes(ConexionBD, SqlPagoRemision),
      ConsultaConexionLocal(ConexionBD, SqlValidaUsuario),
      ConsultaConexionLocal2(ConexionBD, SqlValidaUsuario), Requisicion(ConexionBD, SqlRequisicion),
      RequisicionDetalle(ConexionBD, SqlRequisicionDetalle),
      OrdenCompra(ConexionBD, SqlOrdenCompra),
      OrdenCompraDetalle(ConexionBD, SqlOrdenCompraDetalle),
      DevolucionOrdenCompra(ConexionBD, SqlDevolucionOrdenCompra),
      DevolucionOrdenCompraDetalle(ConexionBD, SqlDevolucionOrdenCompraDetalle),
      AjusteProductos(ConexionBD, SqlAjusteProductos),
      AjusteProductosDetalle(ConexionBD, SqlAjusteProductosDetalle) {
    // Se declara antes que la conexión: se le asigna ya construida.
    TablaLogeoLocalBD.asignaConexion(ConexionBD);
    ConexionLocalBD.antesDeConectar = [this](cajaplex::ConexionLocalBD& conexion) {
        ConexionLocalBDBeforeConnect(conexion);
    };
}

void TModuloDeDatos::limpiaParametros() {
    for (Consulta* c : {&TablaLogeoLocalBD,
                        &ValidaReferenciaID,
                        &Remision,
                        &RemisionDetalle,
                        &RemisionDetalle2,
                        &RemisionPagos,
                        &Empresa,
                        &DatosEmpresa,
                        &Configuracion,
                        &AuditoriasSistema,
                        &Cotizacion,
                        &CotizacionDetalle,
                        &RegistraPago,
                        &Clientes,
                        &ConsultaConexionLocal,
                        &ConsultaConexionLocal2,
                        &Requisicion,
                        &RequisicionDetalle,
                        &OrdenCompra,
                        &OrdenCompraDetalle,
                        &DevolucionOrdenCompra,
                        &DevolucionOrdenCompraDetalle,
                        &AjusteProductos,
                        &AjusteProductosDetalle})
        c->limpiaParametros();
}

void TModuloDeDatos::ConexionLocalBDBeforeConnect(cajaplex::ConexionLocalBD& conexion) {
    conexion.asignaParametro(QStringLiteral("Encrypt"), QStringLiteral("aes-ctr-256"));
    conexion.asignaParametro(QStringLiteral("DriverID"), QStringLiteral("SQLite"));
    conexion.asignaParametro(QStringLiteral("Password"), ContrasenaLocalBD);
    conexion.asignaParametro(QStringLiteral("Database"), ArchivoLocalBD);
}

TModuloDeDatos& instanciaModuloDeDatos() {
    static TModuloDeDatos modulo;
    return modulo;
}

TModuloDeDatos& ModuloDeDatos = instanciaModuloDeDatos();

} // namespace cajaplex
