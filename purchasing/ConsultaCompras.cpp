#include "purchasing/ConsultaCompras.h"

#include "datos/ConexionBD.h"
#include "datos/Consulta.h"
#include "datos/Transaccion.h"

namespace cajaplex {

namespace {

// Las columnas que cambian de nombre (o no existen) según la clase; todo texto es fijo.
struct ColumnasClase {
    const char* proveedor;
    const char* subtotal;
    const char* iva;
    const char* total;
    const char* moneda;
    const char* tipoCambio;
    const char* formaPago;
    const char* plazo;
    const char* saldo;
    const char* distintivo; // consolidada, folioRequisicion o esAjusteEntrada
};

const ColumnasClase kColumnas[] = {
    {"A.proveedor", "A.subtotalRequisicion", "A.ivaRequisicion", "A.totalRequisicion", "A.moneda",
     "A.tipoCambio", "null", "0", "0", "A.consolidada"},
    {"A.proveedor", "A.subtotalOrdenCompra", "A.ivaOrdenCompra", "A.totalOrdenCompra", "A.moneda",
     "A.tipoCambio", "A.feMetodoID", "A.plazoPago", "A.saldoPendiente", "A.folioRequisicion"},
    {"A.proveedor", "A.subtotalOrdenCompra", "A.ivaOrdenCompra", "A.totalOrdenCompra", "A.moneda",
     "A.tipoCambio", "A.feMetodoID", "0", "0", "0"},
    {"null", "0", "0", "0", "null", "1", "null", "0", "0", "A.esAjusteEntrada"},
};

QString l(const char* s) {
    return QString::fromUtf8(s);
}

// Encabezado A con su proveedor B y su usuario U.
QString sqlEncabezados(TipoCompra tipo, const QString& columnas) {
    const ColumnasClase& c = kColumnas[static_cast<int>(tipo)];
    return QStringLiteral("Select A.folio, A.fecha, ifnull(B.nombre, '') as proveedor, "
                          "ifnull(B.rfc, '') as rfcProveedor, ifnull(U.nombre, '') as usuario, "
                          "ifnull(%1, 0) as total, ifnull(A.cancelada, 0) as cancelada, "
                          "ifnull(%2, 0) as plazo, ifnull(%3, 0) as distintivo")
               .arg(l(c.total), l(c.plazo), l(c.distintivo)) +
           columnas + QStringLiteral(" From ") + l(datosTipo(tipo).encabezado) +
           QStringLiteral(" A Left Join Proveedores B On B.empresaID = A.empresaID and B.id = ") +
           l(c.proveedor) + QStringLiteral(" Left Join Usuarios U On U.usuarioID = A.usuarioID") +
           QStringLiteral(" Where A.empresaID = :EmpresaID");
}

QString sqlLista(TipoCompra tipo) {
    return sqlEncabezados(tipo, {}) +
           QStringLiteral(" and ((:Folio = 0 and date(A.fecha) between date(:Desde) and "
                          "date(:Hasta)) or A.folio = :Folio) and (:Proveedor = 0 or ") +
           l(kColumnas[static_cast<int>(tipo)].proveedor) +
           QStringLiteral(" = :Proveedor) Order By A.folio desc");
}

QString sqlDocumento(TipoCompra tipo) {
    const ColumnasClase& c = kColumnas[static_cast<int>(tipo)];
    return QStringLiteral("Select X.*, ifnull(M.descripcion, '') as moneda, "
                          "ifnull(F.descripcion, '') as formaPago From (") +
           sqlEncabezados(tipo, QStringLiteral(", ifnull(%1, 0) as subtotal, ifnull(%2, 0) as iva, "
                                               "ifnull(%3, 1) as tipoCambio, ifnull(%4, 0) as "
                                               "saldo, %5 as monedaID, %6 as formaPagoID, "
                                               "ifnull(A.observaciones, '') as observaciones, "
                                               "ifnull(A.fechaCancelacion, '') as "
                                               "fechaCancelacion, ifnull(A.motivoCancelacion, "
                                               "'') as motivoCancelacion")
                                    .arg(l(c.subtotal), l(c.iva), l(c.tipoCambio), l(c.saldo),
                                         l(c.moneda), l(c.formaPago))) +
           QStringLiteral(" and A.folio = :Folio) X Left Join Monedas M On M.empresaID = "
                          ":EmpresaID and M.id = X.monedaID Left Join FEMetodosPago F On "
                          "F.empresaID = :EmpresaID and F.id = X.formaPagoID");
}

// Los renglones van por folio en las compras y por el ID del encabezado en los ajustes; el ajuste
// no guarda costo: se muestra al costo actual del producto.
QString sqlRenglones(TipoCompra tipo) {
    const DatosTipoCompra& d = datosTipo(tipo);
    const bool ajuste = tipo == TipoCompra::Ajuste;
    return QStringLiteral("Select D.clave, ifnull(P.producto, '') as producto, "
                          "ifnull(U.unidad, '') as unidad, ifnull(D.cantidad, 0) as cantidad, ") +
           (ajuste ? QStringLiteral("ifnull(P.pCompra, 0) as costo, 0 as descuento, 0 as "
                                    "porcentajeImpuesto, ifnull(D.cantidad, 0) * "
                                    "ifnull(P.pCompra, 0) as importe")
                   : QStringLiteral("ifnull(D.costo, 0) as costo, ifnull(D.descuento, 0) as "
                                    "descuento, ifnull(D.porcentajeImpuesto, 0) as "
                                    "porcentajeImpuesto, ifnull(D.importe, 0) as importe")) +
           QStringLiteral(" From ") + l(d.detalle) +
           QStringLiteral(" D Left Join Productos P On P.empresaID = D.empresaID and P.clave = "
                          "D.clave Left Join Unidades U On U.empresaID = P.empresaID and U.id = "
                          "P.unidad Where D.empresaID = :EmpresaID and D.") +
           l(d.columnaDetalle) +
           (ajuste ? QStringLiteral(" = (Select H.ID From AjusteProductos H Where H.empresaID = "
                                    ":EmpresaID and H.folio = :Folio)")
                   : QStringLiteral(" = :Folio")) +
           QStringLiteral(" Order By D.posicion");
}

const char* const SqlBitacora =
    "Select B.fechaOperacion, ifnull(U.nombre, ifnull(U.nUsuario, '')) as usuario, "
    "B.tipoAuditoria, B.moduloSistema, ifnull(B.comentarios, '') as comentarios "
    "From AuditoriasSistema B Left Join Usuarios U On U.usuarioID = B.usuarioID "
    "Where B.empresaID = :EmpresaID and B.moduloSistema = :Modulo and B.datoNuevo = :FolioTexto "
    "Order By B.fechaOperacion, B.ID";

void distintivo(TipoCompra tipo, int64_t valor, bool& recibida, bool& entrada) {
    recibida = tipo == TipoCompra::OrdenCompra && valor != 0;
    entrada = tipo == TipoCompra::Ajuste && valor != 0;
}

} // namespace

std::vector<CompraListada> consultaCompras(ConexionBD& conexion, const Sesion& sesion,
                                           const FiltroCompras& filtro) {
    Consulta q(conexion, sqlLista(filtro.tipo));
    q.parametro(QStringLiteral("EmpresaID")).entero(sesion.EmpresaID);
    q.parametro(QStringLiteral("Desde")).texto(filtro.desde.toString(Qt::ISODate));
    q.parametro(QStringLiteral("Hasta")).texto(filtro.hasta.toString(Qt::ISODate));
    q.parametro(QStringLiteral("Proveedor")).entero(filtro.proveedor);
    q.parametro(QStringLiteral("Folio")).entero(filtro.folio);
    q.abre();
    std::vector<CompraListada> compras;
    compras.reserve(static_cast<size_t>(q.numeroRegistros()));
    for (const Registro& r : q) {
        CompraListada c;
        c.folio = r.campo(QStringLiteral("folio")).comoEntero();
        c.fecha = r.campo(QStringLiteral("fecha")).comoTexto();
        c.proveedor = r.campo(QStringLiteral("proveedor")).comoTexto();
        c.usuario = r.campo(QStringLiteral("usuario")).comoTexto();
        c.total = r.campo(QStringLiteral("total")).comoReal();
        c.cancelada = r.campo(QStringLiteral("cancelada")).comoBooleano();
        c.plazo = static_cast<int>(r.campo(QStringLiteral("plazo")).comoEntero());
        distintivo(filtro.tipo, r.campo(QStringLiteral("distintivo")).comoEntero(), c.recibida,
                   c.entrada);
        compras.push_back(std::move(c));
    }
    return compras;
}

CompraGuardada consultaCompra(ConexionBD& conexion, const Sesion& sesion, TipoCompra tipo,
                              int64_t folio) {
    const QString folioTexto = QString::number(folio);
    Lote lote(conexion);
    for (const QString& sql : {sqlDocumento(tipo), sqlRenglones(tipo)}) {
        Consulta q(sql);
        q.parametro(QStringLiteral("EmpresaID")).entero(sesion.EmpresaID);
        q.parametro(QStringLiteral("Folio")).entero(folio);
        lote.agrega(q);
    }
    Consulta bitacora(QString::fromUtf8(SqlBitacora));
    bitacora.parametro(QStringLiteral("EmpresaID")).entero(sesion.EmpresaID);
    bitacora.parametro(QStringLiteral("Modulo")).texto(l(datosTipo(tipo).nombre));
    bitacora.parametro(QStringLiteral("FolioTexto")).texto(folioTexto);
    lote.agrega(bitacora);
    const std::vector<Registros> r = lote.ejecuta();

    const Registros& e = r.at(0);
    if (e.numeroRegistros() == 0)
        throw RegistroInexistente(QStringLiteral("No existe el documento: ") +
                                  l(datosTipo(tipo).documento) + QLatin1Char(' ') + folioTexto);
    auto c = [&e](const char* nombre) { return e.campo(0, QString::fromLatin1(nombre)); };
    CompraGuardada g;
    g.tipo = tipo;
    g.folio = folio;
    g.fecha = c("fecha").comoTexto();
    g.proveedor = c("proveedor").comoTexto();
    g.rfcProveedor = c("rfcProveedor").comoTexto();
    g.usuario = c("usuario").comoTexto();
    g.moneda = c("moneda").comoTexto();
    g.tipoCambio = c("tipoCambio").comoReal();
    g.formaPago = c("formaPago").comoTexto();
    g.plazo = static_cast<int>(c("plazo").comoEntero());
    g.saldo = c("saldo").comoReal();
    g.subtotal = c("subtotal").comoReal();
    g.iva = c("iva").comoReal();
    g.total = c("total").comoReal();
    g.cancelada = c("cancelada").comoBooleano();
    g.fechaCancelacion = c("fechaCancelacion").comoTexto();
    g.motivoCancelacion = c("motivoCancelacion").comoTexto();
    g.observaciones = c("observaciones").comoTexto();
    const int64_t d = c("distintivo").comoEntero();
    distintivo(tipo, d, g.recibida, g.entrada);
    if (tipo == TipoCompra::Recepcion) g.ordenRecibida = d;

    for (const Registro f : r.at(1))
        g.renglones.push_back({f.campo(QStringLiteral("clave")).comoTexto(),
                               f.campo(QStringLiteral("producto")).comoTexto(),
                               f.campo(QStringLiteral("unidad")).comoTexto(),
                               f.campo(QStringLiteral("cantidad")).comoReal(),
                               f.campo(QStringLiteral("costo")).comoReal(),
                               f.campo(QStringLiteral("descuento")).comoReal(),
                               f.campo(QStringLiteral("porcentajeImpuesto")).comoReal(),
                               f.campo(QStringLiteral("importe")).comoReal()});
    for (const Registro f : r.at(2))
        g.bitacora.push_back({f.campo(QStringLiteral("fechaOperacion")).comoTexto(),
                              f.campo(QStringLiteral("usuario")).comoTexto(),
                              f.campo(QStringLiteral("tipoAuditoria")).comoTexto(),
                              f.campo(QStringLiteral("moduloSistema")).comoTexto(),
                              f.campo(QStringLiteral("comentarios")).comoTexto()});
    return g;
}

} // namespace cajaplex
