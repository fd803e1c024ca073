#include "purchasing/DocumentoCompra.h"

#include <utility>

#include <QLocale>

#include "datos/Auditoria.h"
#include "datos/ConexionBD.h"
#include "datos/Consulta.h"
#include "datos/ControlAcceso.h"
#include "datos/ModuloDatos.h"
#include "datos/Transaccion.h"
#include "datos/Utilerias.h"

namespace cajaplex {
namespace {

// Una orden de compra que no se ha recibido la cancela quien puede cancelar recepciones.
const DatosTipoCompra kTipos[] = {
    {"Compras -> Órden de Compra", "Requisicion", "RequisicionDetalle", "requisicion", "folioOC",
     "Órden de Compra", "Órdenes de Compra", "cancelarRM"},
    {"Recepción de Mercancía", "OrdenCompra", "OrdenCompraDetalle", "ordenCompra", "folioRM",
     "Recepción de Mercancía", "Recepciones de Mercancía", "cancelarRM"},
    {"Devolución de Mercancía", "DevolucionOrdenCompra", "DevolucionOrdenCompraDetalle",
     "devolucionOrdenCompra", "folioDevolucionOC", "Devolución de Mercancía",
     "Devoluciones de Mercancía", "cancelarDM"},
    {"Ajustes", "AjusteProductos", "AjusteProductosDetalle", "id", "folioAjustes",
     "Ajuste de Inventario", "Ajustes de Inventario", "cancelarAjuste"},
};

const char* const SqlConfiguracion =
    "Select ifnull(desglosaRM, 2) as desglosaRM, ifnull(monedaIDRM, 0) as MonedaDefaultCompras, "
    "ifnull(feMetodoIDRM, 0) as TipoPagoDefaultCompras From Configura Where empresaID = "
    ":EmpresaID";

const char* const SqlColumnasProducto =
    "Select A.clave, A.producto, ifnull(U.unidad, '') as unidad, ifnull(A.pCompra, 0) as "
    "pCompra, ifnull(A.porcentajeImpuesto, 0) as porcentajeImpuesto, ifnull(A.ieps, 0) as ieps, "
    "case when ifnull(A.existencia, 0) <= 0 then 0 else A.existencia end as existencia, "
    "ifnull(A.manejaInventarios, 0) as manejaInventarios, ifnull(A.esPaquete, 0) as esPaquete ";

const char* const SqlProductoPorClave =
    "From Productos A Left Join Unidades U On U.empresaID = A.empresaID And U.id = A.unidad "
    "Where A.empresaID = :EmpresaID And (A.clave = :ClaveProducto Or A.codigoBarra = "
    ":ClaveProducto) And ifnull(A.activo, 0) = 1 "
    "Order By case when A.clave = :ClaveProducto then 0 else 1 end Limit 1";

// La cantidad sugerida es siempre el máximo menos la existencia, también en "Mínimos" y "Debajo
// del Mínimo": un producto con mínimo y sin máximo sale con cantidad cero o negativa.
const char* const SqlReposicion =
    ", ifnull(A.maximo, 0.000000) - ifnull(A.existencia, 0.000000) as cantidad "
    "From Productos A Left Join Unidades U On U.empresaID = A.empresaID And U.id = A.unidad "
    "Where A.empresaID = :EmpresaID And ifnull(A.activo, 0) = 1";
const char* const kFiltrosReposicion[][2] = {
    {" And ifnull(A.maximo, 0.000000) > 0",
     " And ifnull(A.maximo, 0.000000) - ifnull(A.existencia, 0.000000) > 0"},
    {" And ifnull(A.minimo,0) > 0", " And ifnull(A.minimo,0) - ifnull(A.existencia,0) > 0"},
    {" And ifnull(A.minimo,0) > 0", " And ifnull(A.existencia,0) < ifnull(A.minimo,0)"},
};

const char* const SqlBuscaProductos =
    "Select A.clave, A.producto, case when ifnull(A.existencia, 0) <= 0 then 0 else "
    "A.existencia end as existencia From Productos A Where A.empresaID = :EmpresaID And "
    "(A.clave like :Texto Or A.producto like :Texto Or A.codigoBarra like :Texto) "
    "And ifnull(A.activo, 0) = 1 Order By A.producto";

const char* const SqlOrdenesCompra =
    "Select A.id, A.folio, A.fecha, ifnull(A.totalRequisicion, 0) as totalRequisicion, "
    "B.nombre, B.id as ProveedorID, ifnull(C.abreviacionPAC, '') as abreviacionPAC "
    "from Requisicion A, Proveedores B, Monedas C "
    "Where A.empresaID = :EmpresaID and B.empresaID = A.empresaID and B.id = A.proveedor "
    "and C.empresaID = A.empresaID and C.id = A.moneda "
    "and Ifnull(A.cancelada, 0) = 0 and Ifnull(A.consolidada, 0) = 0 order by A.folio";

const char* const SqlOrdenesDetallePagar =
    "Select P.clave, P.producto, ifnull(U.unidad, '') as unidad, B.costo as pCompra, "
    "ifnull(B.porcentajeImpuesto, 0) as porcentajeImpuesto, ifnull(P.ieps, 0) as ieps, "
    "case when ifnull(P.existencia, 0) <= 0 then 0 else P.existencia end as existencia, "
    "ifnull(P.manejaInventarios, 0) as manejaInventarios, ifnull(P.esPaquete, 0) as esPaquete, "
    "B.cantidad, ifnull(B.descuento, 0) as descuento "
    "From Requisicion A, RequisicionDetalle B, Productos P "
    "Left Join Unidades U On U.empresaID = P.empresaID And U.id = P.unidad "
    "Where A.empresaID = :EmpresaID and A.folio = :OrdenCompra and A.Cancelada = 0 "
    "and B.empresaID = A.empresaID and B.requisicion = A.folio "
    "and P.empresaID = A.empresaID and P.clave = B.clave Order By B.posicion";

const char* const SqlSaldoPendienteProveedor =
    "Select Ifnull(SUM(SaldoPendiente * tipoCambio), 0) as SaldoPendiente From OrdenCompra "
    "Where empresaID = :EmpresaID And proveedor= :proveedorID And cancelada = 0 And Pagada = 0 "
    "And saldoPendiente > 0";

const char* const SqlCreditoProveedor =
    "Select ifnull(diasCredito, 0) as diasCredito, ifnull(desglosaRM, 0) as desglosaRM From "
    "Proveedores Where empresaID = :EmpresaID and id = :ID";

const char* const SqlLimiteProveedor = "Select ifnull(limiteCredito, 0) as limiteCredito From "
                                       "Proveedores Where empresaID = :EmpresaID and id = :ID";

// El folio se lee dentro del lote, bajo el escritor del servicio: dos estaciones que registran a
// la vez reciben folios distintos.
const char* const SqlFolios = "Select * from Configura Where empresaID = :EmpresaID";
constexpr size_t SentenciaFolios = 0;
constexpr size_t SentenciaEncabezado = 1;

const char* const SqlOrdenConsolidada =
    "Update Requisicion Set consolidada = 1 where empresaID = :EmpresaID and folio = :Folio";
// La recepción anota la orden que recibió: cancelarla la vuelve a abrir.
const char* const SqlOrdenDeRecepcion = "Update OrdenCompra Set folioRequisicion = :Orden "
                                        "Where empresaID = :EmpresaID and folio = :Folio";

int modoValido(int64_t modo) {
    return modo >= 1 && modo <= 4 ? static_cast<int>(modo) : 0;
}

QString texto(const char* s) {
    return QString::fromUtf8(s);
}

} // namespace

const DatosTipoCompra& datosTipo(TipoCompra tipo) {
    return kTipos[static_cast<int>(tipo)];
}

DocumentoCompra::DocumentoCompra(ConexionBD& conexion, const Sesion& sesion, TipoCompra tipo)
    : conexion_(conexion), sesion_(sesion), tipo_(tipo) {}

void DocumentoCompra::abre() {
    Consulta q(conexion_, texto(SqlConfiguracion));
    q.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    q.abre();
    const int modo = modoValido(q.campo(QStringLiteral("desglosaRM")).comoEntero());
    desglosaEmpresa_ = desglosaRM_ = modo > 0 ? modo : 2;
    monedaDefault_ = q.campo(QStringLiteral("MonedaDefaultCompras")).comoEntero();
    formaPagoDefault_ = q.campo(QStringLiteral("TipoPagoDefaultCompras")).comoEntero();
}

int DocumentoCompra::ponProveedor(int64_t proveedorID) {
    int dias = 0;
    int modo = 0;
    if (proveedorID > 0) {
        Consulta q(conexion_, texto(SqlCreditoProveedor));
        q.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        q.parametro(QStringLiteral("ID")).entero(proveedorID);
        q.abre();
        if (q.numeroRegistros() > 0) {
            dias = static_cast<int>(q.campo(QStringLiteral("diasCredito")).comoEntero());
            modo = modoValido(q.campo(QStringLiteral("desglosaRM")).comoEntero());
        }
    }
    desglosaRM_ = modo > 0 ? modo : desglosaEmpresa_;
    for (RenglonVenta& r : renglones_)
        recalcula(r);
    return dias;
}

RenglonVenta DocumentoCompra::renglonDe(const Registro& r) const {
    RenglonVenta v;
    v.clave = r.campo(QStringLiteral("clave")).comoTexto();
    v.Producto = r.campo(QStringLiteral("producto")).comoTexto();
    v.Unidad = r.campo(QStringLiteral("unidad")).comoTexto();
    v.PCompra = r.campo(QStringLiteral("pCompra")).comoReal();
    v.Precio = v.PCompra;
    v.porcentajeImpuesto = r.campo(QStringLiteral("porcentajeImpuesto")).comoReal();
    v.ieps = r.campo(QStringLiteral("ieps")).comoReal();
    v.Existencia = r.campo(QStringLiteral("existencia")).comoReal();
    v.ManejaInventarios = r.campo(QStringLiteral("manejaInventarios")).comoBooleano();
    v.EsPaquete = r.campo(QStringLiteral("esPaquete")).comoBooleano();
    v.Cantidad = 1;
    return v;
}

void DocumentoCompra::recalcula(RenglonVenta& r) const {
    r.Precio = r.PCompra;
    r.Importe = importeNeto(r, desglosaRM_);
}

DocumentoCompra::Rechazo DocumentoCompra::agrega(const QString& claveOCodigo) {
    const QString clave = claveOCodigo.trimmed();
    Consulta q(conexion_, texto(SqlColumnasProducto) + texto(SqlProductoPorClave));
    q.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    q.parametro(QStringLiteral("ClaveProducto")).texto(clave);
    q.abre();
    if (q.numeroRegistros() == 0) return texto(MensajeProductoNoLocalizado) + clave;
    RenglonVenta r = renglonDe(q.registros().registro(0));
    r.posicion = static_cast<int>(renglones_.size()) + 1;
    recalcula(r);
    renglones_.push_back(std::move(r));
    return std::nullopt;
}

std::vector<ProductoCompra> DocumentoCompra::busca(const QString& buscado) {
    Consulta q(conexion_, texto(SqlBuscaProductos));
    q.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    q.parametro(QStringLiteral("Texto"))
        .texto(QLatin1Char('%') + buscado.trimmed() + QLatin1Char('%'));
    q.abre();
    std::vector<ProductoCompra> productos;
    for (const Registro& r : q)
        productos.push_back({r.campo(QStringLiteral("clave")).comoTexto(),
                             r.campo(QStringLiteral("producto")).comoTexto(),
                             r.campo(QStringLiteral("existencia")).comoReal()});
    return productos;
}

DocumentoCompra::Rechazo DocumentoCompra::cambiaCantidad(size_t fila, double cantidad) {
    if (fila >= renglones_.size()) return std::nullopt;
    if (cantidad <= 0) return texto(MensajeCantidadCero);
    renglones_[fila].Cantidad = cantidad;
    recalcula(renglones_[fila]);
    return std::nullopt;
}

DocumentoCompra::Rechazo DocumentoCompra::cambiaCosto(size_t fila, double costo) {
    if (fila >= renglones_.size() || costo < 0) return std::nullopt;
    renglones_[fila].PCompra = costo;
    recalcula(renglones_[fila]);
    return std::nullopt;
}

DocumentoCompra::Rechazo DocumentoCompra::cambiaDescuento(size_t fila, double porcentaje) {
    if (fila >= renglones_.size()) return std::nullopt;
    if (!sesion_.puedeCompras(QStringLiteral("descuento")))
        return texto(MensajeSinPermisoDescuento);
    if (porcentaje < 0 || porcentaje > 100) return texto(MensajeDescuentoInvalido);
    renglones_[fila].Descuento = porcentaje;
    recalcula(renglones_[fila]);
    return std::nullopt;
}

DocumentoCompra::Rechazo DocumentoCompra::descuentoGlobal(double porcentaje) {
    if (!sesion_.puedeCompras(QStringLiteral("descuento")))
        return texto(MensajeSinPermisoDescuento);
    if (porcentaje < 0 || porcentaje > 100) return texto(MensajeDescuentoInvalido);
    for (RenglonVenta& r : renglones_) {
        r.Descuento = porcentaje;
        recalcula(r);
    }
    return std::nullopt;
}

void DocumentoCompra::elimina(size_t fila) {
    if (fila >= renglones_.size()) return;
    renglones_.erase(renglones_.begin() + static_cast<std::ptrdiff_t>(fila));
    for (size_t i = 0; i < renglones_.size(); ++i)
        renglones_[i].posicion = static_cast<int>(i) + 1;
}

void DocumentoCompra::limpia() {
    renglones_.clear();
}

DocumentoCompra::Rechazo DocumentoCompra::reposicion(Reposicion opcion) {
    const auto& filtros = kFiltrosReposicion[static_cast<int>(opcion)];
    Consulta q(conexion_, texto(SqlColumnasProducto) + texto(SqlReposicion) + texto(filtros[0]) +
                              texto(filtros[1]) + QStringLiteral(" Order By A.producto"));
    q.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    q.abre();
    if (q.numeroRegistros() == 0) return texto(MensajeSinReposicion);
    std::vector<RenglonVenta> renglones;
    for (const Registro& reg : q) {
        RenglonVenta r = renglonDe(reg);
        r.Cantidad = reg.campo(QStringLiteral("cantidad")).comoReal();
        r.posicion = static_cast<int>(renglones.size()) + 1;
        recalcula(r);
        renglones.push_back(std::move(r));
    }
    renglones_ = std::move(renglones);
    return std::nullopt;
}

std::vector<OrdenAbierta> DocumentoCompra::ordenesAbiertas() {
    Consulta q(conexion_, texto(SqlOrdenesCompra));
    q.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    q.abre();
    std::vector<OrdenAbierta> ordenes;
    for (const Registro& r : q)
        ordenes.push_back({r.campo(QStringLiteral("id")).comoEntero(),
                           r.campo(QStringLiteral("folio")).comoEntero(),
                           r.campo(QStringLiteral("fecha")).comoFecha(),
                           r.campo(QStringLiteral("totalRequisicion")).comoReal(),
                           r.campo(QStringLiteral("nombre")).comoTexto(),
                           r.campo(QStringLiteral("ProveedorID")).comoEntero(),
                           r.campo(QStringLiteral("abreviacionPAC")).comoTexto()});
    return ordenes;
}

void DocumentoCompra::cargaOrden(int64_t folio) {
    Consulta q(conexion_, texto(SqlOrdenesDetallePagar));
    q.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    q.parametro(QStringLiteral("OrdenCompra")).entero(folio);
    q.abre();
    std::vector<RenglonVenta> renglones;
    for (const Registro& reg : q) {
        RenglonVenta r = renglonDe(reg);
        r.Cantidad = reg.campo(QStringLiteral("cantidad")).comoReal();
        r.Descuento = reg.campo(QStringLiteral("descuento")).comoReal();
        r.posicion = static_cast<int>(renglones.size()) + 1;
        recalcula(r);
        renglones.push_back(std::move(r));
    }
    renglones_ = std::move(renglones);
}

TotalesVenta DocumentoCompra::totales() const {
    // Todos los renglones van en la moneda del documento: sin conversión.
    return calculaTotales(renglones_, desglosaRM_, 0, {});
}

DocumentoCompra::Rechazo DocumentoCompra::revisa(const EncabezadoCompra& e) {
    if (renglones_.empty()) return texto(MensajeSinRenglones);
    for (const RenglonVenta& r : renglones_)
        if (r.PCompra <= 0) return texto(MensajeCostoCero);
    if (tipo_ != TipoCompra::Ajuste) {
        if (e.proveedor <= 0) return texto(MensajeSinProveedor);
        if (e.moneda <= 0) return texto(MensajeSinMoneda);
        if (e.tipoCambio.trimmed().isEmpty()) return texto(MensajeSinTipoCambio);
        bool ok = false;
        const double tc = QLocale::c().toDouble(e.tipoCambio.trimmed(), &ok);
        // El texto dice "mayor o igual", pero el cero también se rechaza.
        if (!ok || tc <= 0) return texto(MensajeTipoCambioCero);
        if (e.plazoPago.trimmed().isEmpty()) return texto(MensajeSinDiasPago);
        if (tipo_ == TipoCompra::Recepcion) {
            if (e.formaPago <= 0) return texto(MensajeSinFormaPago);
            if (e.plazoPago.trimmed().toInt() > 0) {
                Consulta limite(conexion_, texto(SqlLimiteProveedor));
                limite.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
                limite.parametro(QStringLiteral("ID")).entero(e.proveedor);
                limite.abre();
                const double limiteCredito =
                    limite.campo(QStringLiteral("limiteCredito")).comoReal();
                Consulta saldo(conexion_, texto(SqlSaldoPendienteProveedor));
                saldo.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
                saldo.parametro(QStringLiteral("proveedorID")).entero(e.proveedor);
                saldo.abre();
                const double pendiente = saldo.campo(QStringLiteral("SaldoPendiente")).comoReal();
                // En centavos: el total igual a lo disponible pasa, un centavo más no.
                if (Redondea(totales().total * tc, 2) > Redondea(limiteCredito - pendiente, 2))
                    return texto(MensajeLimiteCredito) +
                           QLocale::c().toString(limiteCredito, 'f', 2);
            }
        }
    }
    if (!dispositivoAutorizado(conexion_, sesion_.DispositivoID))
        return texto(MensajeDispositivoNoAutorizado) + sesion_.DispositivoID;
    return std::nullopt;
}

int64_t DocumentoCompra::registra(const EncabezadoCompra& e) {
    const DatosTipoCompra& d = datosTipo(tipo_);
    const QString columnaFolio = texto(d.folio);
    const QDateTime ahora = QDateTime::currentDateTime();
    const TotalesVenta t = totales();
    const double tc =
        tipo_ == TipoCompra::Ajuste ? 1 : QLocale::c().toDouble(e.tipoCambio.trimmed());
    const int plazo = e.plazoPago.trimmed().toInt();
    Lote lote(conexion_);

    Consulta folios(SqlFolios);
    folios.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    lote.agrega(folios);

    Consulta encabezado(tipo_ == TipoCompra::OrdenCompra ? ModuloDeDatos.Requisicion.sql()
                        : tipo_ == TipoCompra::Recepcion ? ModuloDeDatos.OrdenCompra.sql()
                        : tipo_ == TipoCompra::Devolucion
                            ? ModuloDeDatos.DevolucionOrdenCompra.sql()
                            : ModuloDeDatos.AjusteProductos.sql());
    auto p = [&encabezado](const char* marca) -> ParametroConsulta& {
        return encabezado.parametro(texto(marca));
    };
    p("empresaID").entero(sesion_.EmpresaID);
    p("folio").de(SentenciaFolios, columnaFolio);
    p("fecha").fecha(ahora);
    p("observaciones").texto(e.observaciones);
    p("cancelada").booleano(false);
    p("usuarioID").entero(sesion_.UsuarioID);
    // El subtotal lleva el IEPS para que subtotal + IVA dé el total.
    const double subtotal = Redondea(t.total - t.iva, 2);
    if (tipo_ == TipoCompra::Ajuste) {
        p("esAjusteEntrada").booleano(e.ajusteEntrada);
    } else {
        p("proveedor").entero(e.proveedor);
        p("moneda").entero(e.moneda);
        p("tipoCambio").real(tc);
        const QString sufijo = tipo_ == TipoCompra::OrdenCompra ? QStringLiteral("Requisicion")
                                                                : QStringLiteral("OrdenCompra");
        encabezado.parametro(QStringLiteral("subtotal") + sufijo).real(subtotal);
        encabezado.parametro(QStringLiteral("iva") + sufijo).real(t.iva);
        encabezado.parametro(QStringLiteral("total") + sufijo).real(t.total);
    }
    if (tipo_ == TipoCompra::OrdenCompra) p("consolidada").entero(0);
    if (tipo_ == TipoCompra::Devolucion) {
        if (e.formaPago > 0)
            p("feMetodoID").entero(e.formaPago);
        else
            p("feMetodoID").nulo();
    }
    if (tipo_ == TipoCompra::Recepcion) {
        // A crédito queda el total por pagar y la fecha de pago es el vencimiento; de contado
        // queda pagada.
        const bool credito = plazo > 0;
        p("feMetodoID").entero(e.formaPago);
        p("plazoPago").entero(plazo);
        p("pagada").entero(credito ? 0 : 1);
        p("saldoPendiente").real(credito ? t.total : 0);
        p("fechaPago").fecha(ahora.addDays(plazo));
    }
    lote.agrega(encabezado);

    const Consulta& plantilla = tipo_ == TipoCompra::OrdenCompra ? ModuloDeDatos.RequisicionDetalle
                                : tipo_ == TipoCompra::Recepcion ? ModuloDeDatos.OrdenCompraDetalle
                                : tipo_ == TipoCompra::Devolucion
                                    ? ModuloDeDatos.DevolucionOrdenCompraDetalle
                                    : ModuloDeDatos.AjusteProductosDetalle;
    for (const RenglonVenta& r : renglones_) {
        Consulta q(plantilla.sql());
        q.parametro(QStringLiteral("id")).de(SentenciaEncabezado, QStringLiteral("ultimoId"));
        if (tipo_ != TipoCompra::Ajuste) {
            q.parametro(texto(d.columnaDetalle)).de(SentenciaFolios, columnaFolio);
            q.parametro(QStringLiteral("costo")).real(r.PCompra);
            q.parametro(QStringLiteral("descuento")).real(r.Descuento);
            q.parametro(QStringLiteral("importe")).real(importeNeto(r, desglosaRM_));
            q.parametro(QStringLiteral("porcentajeImpuesto")).real(r.porcentajeImpuesto);
        }
        q.parametro(QStringLiteral("clave")).texto(r.clave);
        q.parametro(QStringLiteral("empresaID")).entero(sesion_.EmpresaID);
        q.parametro(QStringLiteral("cantidad")).real(r.Cantidad);
        q.parametro(QStringLiteral("posicion")).entero(r.posicion);
        lote.agrega(q);
    }

    if (tipo_ == TipoCompra::Recepcion && e.ordenOrigen > 0) {
        Consulta q(SqlOrdenConsolidada);
        q.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        q.parametro(QStringLiteral("Folio")).entero(e.ordenOrigen);
        lote.agrega(q);
        Consulta origen(SqlOrdenDeRecepcion);
        origen.parametro(QStringLiteral("Orden")).entero(e.ordenOrigen);
        origen.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        origen.parametro(QStringLiteral("Folio")).de(SentenciaFolios, columnaFolio);
        lote.agrega(origen);
    }

    // La bitácora lleva el folio, que se conoce hasta que corre el lote.
    Consulta bitacora(ModuloDeDatos.AuditoriasSistema.sql());
    bitacora.parametro(QStringLiteral("tipoAuditoria")).texto(texto(tipoAuditoria::Insercion));
    bitacora.parametro(QStringLiteral("moduloSistema")).texto(texto(d.nombre));
    bitacora.parametro(QStringLiteral("datoAnterior")).texto({});
    bitacora.parametro(QStringLiteral("datoNuevo"))
        .de(SentenciaFolios, columnaFolio, protocolo::Tipo::Texto);
    bitacora.parametro(QStringLiteral("comentarios"))
        .texto(QStringLiteral("Total: %1, %2 renglones")
                   .arg(QLocale::c().toString(t.total, 'f', 2))
                   .arg(renglones_.size()));
    bitacora.parametro(QStringLiteral("usuarioID")).entero(sesion_.UsuarioID);
    bitacora.parametro(QStringLiteral("empresaID")).entero(sesion_.EmpresaID);
    lote.agrega(bitacora);

    const std::vector<Registros> resultados = lote.ejecuta();
    return resultados.at(SentenciaFolios).campo(0, columnaFolio).comoEntero();
}

} // namespace cajaplex
