#include "printing/TicketVenta.h"

#include <algorithm>
#include <cmath>

#include <zint.h>

#include <QDateTime>
#include <QLocale>
#include <QVariantList>

#include "datos/Consulta.h"
#include "printing/CodigoBarras.h"

namespace cajaplex {
namespace {

constexpr const char* SqlEncabezado =
    "Select A.folio, A.fecha, A.subtotalRemision, A.descuento, A.iepsRemision, A.ivaRemision, "
    "A.totalRemision, A.puntosRemision, A.plazoPago, A.saldoPendiente, A.observaciones, "
    "A.cancelada, ifnull(B.nombre,'') as nombreCajero, ifnull(C.nombre,'') as nombreVendedor, "
    "ifnull(D.nombre,'') as nombreCliente, ifnull(D.rfc,'') as rfcCliente, "
    "ifnull(D.puntos,0) as saldoPuntos, ifnull(M.abreviacionPAC,'') as abreviacionMoneda "
    "From Remision A "
    "Left Join Usuarios B On B.usuarioID = A.usuarioID "
    "Left Join Usuarios C On C.usuarioID = A.vendedor "
    "Left Join Clientes D On D.empresaID = A.empresaID and D.id = A.cliente "
    "Left Join Monedas M On M.empresaID = A.empresaID and M.id = A.moneda "
    "Where A.empresaID = :EmpresaID and A.folio = :Folio";

constexpr const char* SqlRenglones =
    "Select A.cantidad, A.precio, A.descuento, A.importe, A.clave, A.nota, "
    "ifnull(P.producto,'') as descripcion, ifnull(U.unidad,'') as unidad "
    "From RemisionDetalle A "
    "Left Join Productos P On P.empresaID = A.empresaID and P.id = A.producto "
    "Left Join Unidades U On U.empresaID = P.empresaID and U.id = P.unidad "
    "Where A.empresaID = :EmpresaID and A.remision = :Folio Order by A.posicion";

// Contado: el reparto por forma de pago. Crédito: los anticipos vigentes.
constexpr const char* SqlPagos =
    "Select ifnull(B.descripcion,'') as formaPago, A.importe From RemisionPagos A "
    "Left Join FEMetodosPago B On B.empresaID = A.empresaID and B.id = A.feMetodoID "
    "Where A.empresaID = :EmpresaID and A.remision = :Folio "
    "Union All "
    "Select ifnull(B.descripcion,'') as formaPago, A.importe From PagosRemision A "
    "Left Join FEMetodosPago B On B.empresaID = A.empresaID and B.id = A.feMetodoID "
    "Where A.empresaID = :EmpresaID and A.folioRemision = :Folio and ifnull(A.cancelada,0) = 0";

constexpr const char* SqlEmpresa = "Select * From Empresa Where empresaID = :EmpresaID";
constexpr const char* SqlOpciones =
    "Select * From ConfiguraImpresiones Where empresaID = :EmpresaID";

const QLocale& mexico() {
    static const QLocale l(QLocale::Spanish, QLocale::Mexico);
    return l;
}

QString dinero(double valor) {
    return QStringLiteral("$") + mexico().toString(valor, 'f', 2);
}

// Hasta tres decimales, sin ceros de sobra: "2", "1.5", "0.375".
QString cantidad(double valor) {
    QString t = QString::number(valor, 'f', 3);
    while (t.endsWith(QLatin1Char('0')))
        t.chop(1);
    if (t.endsWith(QLatin1Char('.'))) t.chop(1);
    return t;
}

QString domicilio(const Campo& calle, const Campo& exterior, const Campo& interior,
                  const Campo& colonia, const Campo& cp, const Campo& municipio,
                  const Campo& estado) {
    QString linea = calle.comoTexto().trimmed();
    if (!exterior.comoTexto().trimmed().isEmpty())
        linea += QStringLiteral(" ") + exterior.comoTexto().trimmed();
    if (!interior.comoTexto().trimmed().isEmpty())
        linea += QStringLiteral(" Int. ") + interior.comoTexto().trimmed();
    QStringList partes{linea};
    if (!colonia.comoTexto().trimmed().isEmpty())
        partes << QStringLiteral("Col. ") + colonia.comoTexto().trimmed();
    if (!cp.comoTexto().trimmed().isEmpty())
        partes << QStringLiteral("C.P. ") + cp.comoTexto().trimmed();
    QStringList lugar;
    for (const Campo* c : {&municipio, &estado})
        if (!c->comoTexto().trimmed().isEmpty()) lugar << c->comoTexto().trimmed();
    if (!lugar.isEmpty()) partes << lugar.join(QStringLiteral(", "));
    partes.removeAll(QString());
    return partes.join(QStringLiteral(", "));
}

// Toda lectura de la venta se filtra por su empresa y su folio.
void abreDeVenta(Consulta& consulta, int64_t empresaID, int64_t folio) {
    consulta.parametro(QStringLiteral("EmpresaID")).entero(empresaID);
    consulta.parametro(QStringLiteral("Folio")).entero(folio);
    consulta.abre();
}

} // namespace

QString referenciaQRVenta(const QString& rfcEmpresa, int64_t folio, double total) {
    return rfcEmpresa.trimmed().toUpper() + QLatin1Char('|') + QString::number(folio) +
           QLatin1Char('|') + QString::number(total, 'f', 2);
}

DocumentoImpresion datosTicketVenta(ConexionDatos& conexion, int64_t empresaID, int64_t folio) {
    DocumentoImpresion doc;
    QVariantMap& d = doc.datos;

    Consulta encabezado(conexion, QString::fromUtf8(SqlEncabezado));
    abreDeVenta(encabezado, empresaID, folio);
    if (encabezado.numeroRegistros() == 0)
        throw RegistroInexistente(QStringLiteral("No existe la venta con folio %1").arg(folio));
    const auto campo = [&](const char* nombre) {
        return encabezado.campo(QString::fromUtf8(nombre));
    };
    const double total = campo("totalRemision").comoReal();
    d[QStringLiteral("folio")] = QString::number(campo("folio").comoEntero());
    d[QStringLiteral("fecha")] =
        campo("fecha").comoFecha().toString(QStringLiteral("dd/MM/yyyy HH:mm"));
    d[QStringLiteral("cajero")] = campo("nombreCajero").comoTexto();
    d[QStringLiteral("vendedor")] = campo("nombreVendedor").comoTexto();
    d[QStringLiteral("cliente")] = campo("nombreCliente").comoTexto();
    d[QStringLiteral("rfcCliente")] = campo("rfcCliente").comoTexto();
    d[QStringLiteral("moneda")] = campo("abreviacionMoneda").comoTexto();
    d[QStringLiteral("subtotal")] = dinero(campo("subtotalRemision").comoReal());
    const double descuento = campo("descuento").comoReal();
    if (std::abs(descuento) >= 0.005) d[QStringLiteral("descuento")] = dinero(descuento);
    const double ieps = campo("iepsRemision").comoReal();
    if (std::abs(ieps) >= 0.005) d[QStringLiteral("ieps")] = dinero(ieps);
    d[QStringLiteral("iva")] = dinero(campo("ivaRemision").comoReal());
    d[QStringLiteral("total")] = dinero(total);
    d[QStringLiteral("observaciones")] = campo("observaciones").comoTexto();
    d[QStringLiteral("cancelada")] = campo("cancelada").comoBooleano();
    const bool credito = campo("plazoPago").comoEntero() > 0;
    d[QStringLiteral("credito")] = credito;
    if (credito) {
        d[QStringLiteral("plazo")] = QString::number(campo("plazoPago").comoEntero());
        d[QStringLiteral("saldoPendiente")] = dinero(campo("saldoPendiente").comoReal());
    }
    const double puntos = campo("puntosRemision").comoReal();
    if (puntos >= 0.005) d[QStringLiteral("puntosGanados")] = dinero(puntos);
    // El saldo solo tiene sentido con un cliente que junta puntos.
    if (puntos >= 0.005 || campo("saldoPuntos").comoReal() >= 0.005)
        d[QStringLiteral("saldoPuntos")] = dinero(campo("saldoPuntos").comoReal());

    Consulta renglones(conexion, QString::fromUtf8(SqlRenglones));
    abreDeVenta(renglones, empresaID, folio);
    QVariantList lista;
    double articulos = 0;
    for (const Registro r : renglones) {
        articulos += r.campo(QStringLiteral("cantidad")).comoReal();
        QVariantMap renglon;
        renglon[QStringLiteral("cantidad")] =
            cantidad(r.campo(QStringLiteral("cantidad")).comoReal());
        renglon[QStringLiteral("unidad")] = r.campo(QStringLiteral("unidad")).comoTexto();
        renglon[QStringLiteral("clave")] = r.campo(QStringLiteral("clave")).comoTexto();
        renglon[QStringLiteral("descripcion")] = r.campo(QStringLiteral("descripcion")).comoTexto();
        renglon[QStringLiteral("precio")] = dinero(r.campo(QStringLiteral("precio")).comoReal());
        const double desc = r.campo(QStringLiteral("descuento")).comoReal();
        if (desc > 0)
            renglon[QStringLiteral("porcentajeDescuento")] = cantidad(desc) + QLatin1Char('%');
        renglon[QStringLiteral("importe")] = dinero(r.campo(QStringLiteral("importe")).comoReal());
        renglon[QStringLiteral("nota")] = r.campo(QStringLiteral("nota")).comoTexto().trimmed();
        lista << renglon;
    }
    d[QStringLiteral("renglones")] = lista;
    d[QStringLiteral("numeroArticulos")] = cantidad(articulos);

    Consulta pagos(conexion, QString::fromUtf8(SqlPagos));
    abreDeVenta(pagos, empresaID, folio);
    QVariantList formas;
    double pagado = 0;
    for (const Registro r : pagos) {
        const double importe = r.campo(QStringLiteral("importe")).comoReal();
        pagado += importe;
        formas << QVariantMap{
            {QStringLiteral("forma"), r.campo(QStringLiteral("formaPago")).comoTexto()},
            {QStringLiteral("importe"), dinero(importe)}};
    }
    d[QStringLiteral("pagos")] = formas;
    // El cambio es lo entregado de más sobre el total (en crédito no hay cambio).
    if (!credito && pagado - total >= 0.005) d[QStringLiteral("cambio")] = dinero(pagado - total);

    Consulta empresa(conexion, QString::fromUtf8(SqlEmpresa));
    empresa.parametro(QStringLiteral("EmpresaID")).entero(empresaID);
    empresa.abre();
    const auto e = [&](const char* nombre) { return empresa.campo(QString::fromUtf8(nombre)); };
    const QString rfc = e("rfc").comoTexto();
    d[QStringLiteral("empresa")] = e("nombreEmpresaLargo").comoTexto().isEmpty()
                                       ? e("nombreEmpresaCorto").comoTexto()
                                       : e("nombreEmpresaLargo").comoTexto();
    d[QStringLiteral("razonSocial")] = e("razonSocial").comoTexto();
    d[QStringLiteral("rfc")] = rfc;
    d[QStringLiteral("domicilio")] =
        domicilio(e("calleDomicilio"), e("numeroExterior"), e("numeroInterior"), e("colonia"),
                  e("codigoPostal"), e("municipio"), e("estado"));
    d[QStringLiteral("telefono")] = e("telefono").comoTexto();
    d[QStringLiteral("email")] = e("email").comoTexto();

    Consulta opciones(conexion, QString::fromUtf8(SqlOpciones));
    opciones.parametro(QStringLiteral("EmpresaID")).entero(empresaID);
    opciones.abre();
    const auto o = [&](const char* nombre) { return opciones.campo(QString::fromUtf8(nombre)); };
    d[QStringLiteral("adicional")] = o("adicionalRemision").comoTexto().trimmed();
    d[QStringLiteral("pie")] = o("pieRemision").comoTexto().trimmed();
    if (!o("imprimeEmailRemision").comoBooleano()) d.remove(QStringLiteral("email"));

    if (o("imprimeLogotipoRemision").comoBooleano()) {
        QImage logotipo;
        if (logotipo.loadFromData(e("Logotipo1").comoBlob())) {
            doc.imagenes.insert(QStringLiteral("logotipo"), logotipo);
            d[QStringLiteral("logotipo")] = QStringLiteral("logotipo");
        }
    }
    if (o("imprimeQRRemision").comoBooleano()) {
        const QString referencia = referenciaQRVenta(rfc, folio, total);
        doc.imagenes.insert(QStringLiteral("qr"),
                            imagenCodigoBarras(referencia, BARCODE_QRCODE, 8.0));
        d[QStringLiteral("qr")] = QStringLiteral("qr");
        d[QStringLiteral("referencia")] = referencia;
    }
    return doc;
}

QString marcadoresTicketVenta() {
    return QStringLiteral(
        "{{empresa}} {{razonSocial}} {{rfc}} {{domicilio}} {{telefono}} {{email}} "
        "{{#logotipo}}<img src=\"{{logotipo}}\">{{/logotipo}} {{folio}} {{fecha}} {{cajero}} "
        "{{vendedor}} {{cliente}} {{rfcCliente}} {{#renglones}}{{cantidad}} {{unidad}} {{clave}} "
        "{{descripcion}} {{precio}} {{porcentajeDescuento}} {{importe}} {{nota}}{{/renglones}} "
        "{{numeroArticulos}} {{subtotal}} {{descuento}} {{ieps}} {{iva}} {{total}} {{moneda}} "
        "{{#pagos}}{{forma}} {{importe}}{{/pagos}} {{cambio}} {{#credito}}{{plazo}} "
        "{{saldoPendiente}}{{/credito}} {{puntosGanados}} {{saldoPuntos}} {{observaciones}} "
        "{{adicional}} {{pie}} {{#qr}}<img src=\"{{qr}}\"> {{referencia}}{{/qr}}");
}

} // namespace cajaplex
