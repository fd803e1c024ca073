#include "printing/DocumentosEjemplo.h"

#include <QDateTime>
#include <QVariantList>

namespace cajaplex {
namespace {

QVariantMap renglon(const char* cantidad, const char* unidad, const char* clave,
                    const QString& descripcion, const char* precio, const char* importe) {
    return {{QStringLiteral("cantidad"), QString::fromUtf8(cantidad)},
            {QStringLiteral("unidad"), QString::fromUtf8(unidad)},
            {QStringLiteral("clave"), QString::fromUtf8(clave)},
            {QStringLiteral("descripcion"), descripcion},
            {QStringLiteral("precio"), QString::fromUtf8(precio)},
            {QStringLiteral("importe"), QString::fromUtf8(importe)}};
}

QVariantMap pago(const QString& forma, const char* importe) {
    return {{QStringLiteral("forma"), forma},
            {QStringLiteral("importe"), QString::fromUtf8(importe)}};
}

} // namespace

DocumentoImpresion documentoEjemplo(const QString& carpeta, const QString& empresa,
                                    const QString& rfc) {
    DocumentoImpresion doc;
    QVariantMap& d = doc.datos;
    const QString ahora = QDateTime::currentDateTime().toString(QStringLiteral("dd/MM/yyyy HH:mm"));
    d[QStringLiteral("empresa")] = empresa;
    d[QStringLiteral("razonSocial")] = empresa;
    d[QStringLiteral("rfc")] = rfc;
    d[QStringLiteral("domicilio")] = QStringLiteral("Av. Juárez 100, Col. Centro, C.P. 44100");
    d[QStringLiteral("telefono")] = QStringLiteral("33 1234 5678");
    d[QStringLiteral("folio")] = QStringLiteral("1");
    d[QStringLiteral("fecha")] = ahora;
    d[QStringLiteral("cajero")] = QStringLiteral("Cajero de Ejemplo");
    d[QStringLiteral("vendedor")] = QStringLiteral("Vendedor de Ejemplo");
    d[QStringLiteral("usuario")] = QStringLiteral("Usuario de Ejemplo");
    d[QStringLiteral("cliente")] = QStringLiteral("Venta al Público en General");
    d[QStringLiteral("rfcCliente")] = QStringLiteral("XAXX010101000");
    d[QStringLiteral("renglones")] =
        QVariantList{renglon("2", "Pieza", "REF-600", QStringLiteral("Refresco de cola 600 ml"),
                             "$15.52", "$31.03"),
                     renglon("1", "Kilogramo", "FRJ-1K", QStringLiteral("Frijol negro a granel"),
                             "$36.00", "$36.00"),
                     renglon("3", "Pieza", "PAN-BL", QStringLiteral("Bolillo"), "$2.50", "$7.50")};
    d[QStringLiteral("numeroArticulos")] = QStringLiteral("3");
    d[QStringLiteral("subtotal")] = QStringLiteral("$74.53");
    d[QStringLiteral("iva")] = QStringLiteral("$4.97");
    d[QStringLiteral("total")] = QStringLiteral("$79.50");
    d[QStringLiteral("pagos")] = QVariantList{pago(QStringLiteral("EFECTIVO"), "$100.00")};
    d[QStringLiteral("cambio")] = QStringLiteral("$20.50");
    d[QStringLiteral("pie")] = QStringLiteral("¡Gracias por su compra!");
    if (carpeta == QStringLiteral("Comanda") || carpeta == QStringLiteral("Cuenta")) {
        d[QStringLiteral("mesa")] = QStringLiteral("Mesa 4");
        d[QStringLiteral("seccion")] = QStringLiteral("Terraza");
        d[QStringLiteral("mesero")] = QStringLiteral("Mesero de Ejemplo");
        d[QStringLiteral("personas")] = QStringLiteral("2");
        d[QStringLiteral("apertura")] = ahora;
        d[QStringLiteral("cierre")] = ahora;
        d[QStringLiteral("observaciones")] = QStringLiteral("Sin cebolla");
    } else if (carpeta == QStringLiteral("Cotizaciones")) {
        d[QStringLiteral("vigencia")] = QStringLiteral("15");
    } else if (carpeta == QStringLiteral("Compras")) {
        d[QStringLiteral("titulo")] = QStringLiteral("ORDEN DE COMPRA");
        d[QStringLiteral("proveedor")] = QStringLiteral("Distribuidora de Ejemplo");
        d[QStringLiteral("rfcProveedor")] = QStringLiteral("DEJ010101AAA");
    } else if (carpeta == QStringLiteral("Corte de Caja")) {
        d[QStringLiteral("desde")] = ahora;
        d[QStringLiteral("hasta")] = ahora;
        d[QStringLiteral("numeroVentas")] = QStringLiteral("12");
        d[QStringLiteral("pagos")] =
            QVariantList{pago(QStringLiteral("EFECTIVO"), "$1,250.00"),
                         pago(QStringLiteral("TARJETA DE DÉBITO"), "$480.00")};
        d[QStringLiteral("fondo")] = QStringLiteral("$500.00");
        d[QStringLiteral("entradas")] = QStringLiteral("$0.00");
        d[QStringLiteral("salidas")] = QStringLiteral("$150.00");
        d[QStringLiteral("efectivoEsperado")] = QStringLiteral("$1,600.00");
        d[QStringLiteral("total")] = QStringLiteral("$1,730.00");
    }
    return doc;
}

} // namespace cajaplex
