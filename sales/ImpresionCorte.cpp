#include "sales/ImpresionCorte.h"

#include <QDateTime>
#include <QDir>

#include "datos/AjustesEstacion.h"
#include "sales/ListaVentas.h"

namespace cajaplex {

namespace {

QString importe(const QVariantMap& v, const char* llave) {
    return importeVenta(v.value(QString::fromLatin1(llave)).toDouble());
}

QString fecha(const QVariantMap& v, const char* llave) {
    return v.value(QString::fromLatin1(llave))
        .toDateTime()
        .toString(QStringLiteral("dd/MM/yyyy HH:mm"));
}

QVariantList formas(const QVariant& lista) {
    QVariantList r;
    for (const QVariant& f : lista.toList()) {
        const QVariantMap m = f.toMap();
        r << QVariantMap{{QStringLiteral("forma"), m.value(QStringLiteral("Descripcion"))},
                         {QStringLiteral("operaciones"), m.value(QStringLiteral("Operaciones"))},
                         {QStringLiteral("importe"), importe(m, "Importe")}};
    }
    return r;
}

} // namespace

DocumentoImpresion documentoCorte(const Sesion& sesion, const QVariantMap& v) {
    DocumentoImpresion d;
    d.datos = v;
    QVariantMap& t = d.datos;
    t[QStringLiteral("folio")] = v.value(QStringLiteral("Corte")).toString();
    t[QStringLiteral("empresa")] = v.value(QStringLiteral("Empresa"));
    t[QStringLiteral("rfc")] = sesion.Rfc;
    t[QStringLiteral("cajero")] = v.value(QStringLiteral("Cajero"));
    t[QStringLiteral("usuario")] = v.value(QStringLiteral("Usuario"));
    t[QStringLiteral("desde")] = fecha(v, "Desde");
    t[QStringLiteral("hasta")] = fecha(v, "Hasta");
    t[QStringLiteral("numeroVentas")] =
        QString::number(v.value(QStringLiteral("VentasContado")).toInt() +
                        v.value(QStringLiteral("VentasCredito")).toInt());
    t[QStringLiteral("pagos")] = formas(v.value(QStringLiteral("FormasPago")));
    t[QStringLiteral("anticipos")] = formas(v.value(QStringLiteral("Anticipos")));
    // El sistema no lleva fondo inicial aparte: lo que entra a la caja es un depósito.
    t[QStringLiteral("fondo")] = importeVenta(0);
    t[QStringLiteral("entradas")] = importe(v, "TotalDepositos");
    t[QStringLiteral("salidas")] = importe(v, "TotalRetiros");
    t[QStringLiteral("efectivoEsperado")] = importe(v, "EfectivoEsperado");
    t[QStringLiteral("efectivoContado")] = importe(v, "EfectivoContado");
    t[QStringLiteral("diferencia")] = importe(v, "Diferencia");
    t[QStringLiteral("total")] = importeVenta(v.value(QStringLiteral("TotalContado")).toDouble() +
                                              v.value(QStringLiteral("TotalCredito")).toDouble());
    return d;
}

TrabajoImpresion* imprimeCorte(QWidget* pantalla, const Sesion& sesion, const QVariantMap& valores,
                               const QString& carpetaEstacion, DestinoImpresion destino) {
    const AjustesEstacion estacion(carpetaEstacion);
    PedidoImpresion pedido;
    pedido.carpeta = QStringLiteral("Corte de Caja");
    pedido.ajustes = leeAjustesImpresion(estacion, QStringLiteral("CorteCaja"));
    pedido.destino = destino;
    pedido.archivoPdf = QDir(estacion.carpeta()).filePath(QString::fromUtf8(ArchivoPdfLocal));
    DocumentoImpresion documento = documentoCorte(sesion, valores);
    return imprimeDocumento(pantalla, sesion, pedido,
                            [documento = std::move(documento)] { return documento; });
}

} // namespace cajaplex
