#include "sales/Visor.h"

#include <exception>

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <QVBoxLayout>
#include <QtDebug>

#include "datos/AjustesEstacion.h"
#include "datos/MensajesComunes.h"
#include "datos/ModuloDatos.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/ModeloTabla.h"
#include "pantallas/Sonidos.h"
#include "pantallas/TarjetaDatos.h"
#include "printing/ImpresionDocumentos.h"
#include "sales/CancelacionVenta.h"

namespace cajaplex {

namespace {

constexpr int kAltoRenglon = 40;

QString cantidad(double valor) {
    return QLocale::c().toString(valor, 'f', 3);
}

QString porCiento(double valor) {
    return QLocale::c().toString(valor, 'f', 2) + QLatin1Char('%');
}

} // namespace

TVisorF::TVisorF(const Sesion& sesion, const QString& carpetaEstacion, QWidget* padre)
    : QWidget(padre), sesion_(sesion), carpetaEstacion_(carpetaEstacion) {
    setObjectName(QStringLiteral("Visor"));
    setWindowTitle(QStringLiteral("Remisión"));

    titulo_ =
        creaEtiqueta(QStringLiteral("Remisión"), QStringLiteral("TituloVisor"), "titulo", this);
    estado_ = creaEtiqueta({}, QStringLiteral("EstadoVisor"), "dato", this);
    estado_->setAccessibleName(QStringLiteral("Estado de la Remisión"));
    auto* arriba = new QHBoxLayout;
    arriba->addWidget(titulo_, 1);
    arriba->addWidget(estado_);

    auto* tarjeta = new TarjetaDatos(this);
    auto dato = [tarjeta](const QString& texto, const QString& nombre) {
        return tarjeta->agrega(texto, nombre);
    };

    cliente_ = dato(QStringLiteral("Cliente"), QStringLiteral("ClienteVisor"));
    fecha_ = dato(QStringLiteral("Fecha"), QStringLiteral("FechaVisor"));
    cajero_ = dato(QStringLiteral("Cajero y Vendedor"), QStringLiteral("CajeroVisor"));
    condicion_ = dato(QStringLiteral("Condición de Pago"), QStringLiteral("CondicionVisor"));
    importes_ = dato(QStringLiteral("Importes"), QStringLiteral("ImportesVisor"));
    total_ = dato(QStringLiteral("Total"), QStringLiteral("TotalVisor"));
    ponEstilo(total_, "dato");

    renglones_ = new ModeloTabla(
        {{QStringLiteral("Clave"), [this](int f) { return venta_->renglones[size_t(f)].clave; }},
         {QStringLiteral("Artículo"),
          [this](int f) { return venta_->renglones[size_t(f)].producto; }},
         ModeloTabla::numerica(
             QStringLiteral("Cantidad"),
             [this](int f) { return venta_->renglones[size_t(f)].cantidad; }, cantidad),
         ModeloTabla::numerica(
             QStringLiteral("Precio"),
             [this](int f) { return venta_->renglones[size_t(f)].precio; }, importeVenta),
         ModeloTabla::numerica(
             QStringLiteral("Descuento"),
             [this](int f) { return venta_->renglones[size_t(f)].descuento; }, porCiento),
         ModeloTabla::numerica(
             QStringLiteral("Importe"),
             [this](int f) { return venta_->renglones[size_t(f)].importe; }, importeVenta, true),
         {QStringLiteral("Nota"), [this](int f) { return venta_->renglones[size_t(f)].nota; }}},
        this);
    pagos_ = new ModeloTabla(
        {{QStringLiteral("Forma de Pago"),
          [this](int f) { return venta_->pagos[size_t(f)].forma; }},
         ModeloTabla::numerica(
             QStringLiteral("Entregado"),
             [this](int f) { return venta_->pagos[size_t(f)].entregado; }, importeVenta),
         ModeloTabla::numerica(
             QStringLiteral("Aplicado"),
             [this](int f) { return venta_->pagos[size_t(f)].aplicado; }, importeVenta, true)},
        this);
    anticipos_ = new ModeloTabla(
        {{QStringLiteral("Folio"),
          [this](int f) { return QString::number(venta_->anticipos[size_t(f)].folio); }},
         {QStringLiteral("Fecha"),
          [this](int f) { return fechaLista(venta_->anticipos[size_t(f)].fecha); }},
         {QStringLiteral("Forma de Pago"),
          [this](int f) { return venta_->anticipos[size_t(f)].forma; }},
         ModeloTabla::numerica(
             QStringLiteral("Importe"),
             [this](int f) { return venta_->anticipos[size_t(f)].importe; }, importeVenta, true),
         {QStringLiteral("Estado"),
          [this](int f) {
              return venta_->anticipos[size_t(f)].cancelado ? QStringLiteral("CANCELADO")
                                                            : QString();
          }}},
        this);
    bitacora_ = new ModeloTabla(
        {{QStringLiteral("Fecha"),
          [this](int f) { return fechaLista(venta_->bitacora[size_t(f)].fecha); }},
         {QStringLiteral("Usuario"), [this](int f) { return venta_->bitacora[size_t(f)].usuario; }},
         {QStringLiteral("Operación"), [this](int f) { return venta_->bitacora[size_t(f)].tipo; }},
         {QStringLiteral("Módulo"), [this](int f) { return venta_->bitacora[size_t(f)].modulo; }},
         {QStringLiteral("Comentarios"),
          [this](int f) { return venta_->bitacora[size_t(f)].comentarios; }}},
        this);

    hojas_ = new QTabWidget(this);
    hojas_->setObjectName(QStringLiteral("HojasVisor"));
    hojas_->setAccessibleName(QStringLiteral("Detalle de la Remisión"));
    auto hoja = [this](ModeloTabla* modelo, const QString& nombre, const QString& titulo) {
        QTableView* t = creaVistaTabla(nombre, modelo, kAltoRenglon, hojas_);
        t->setAccessibleName(titulo);
        t->horizontalHeader()->setStretchLastSection(true);
        hojas_->addTab(t, titulo);
    };
    hoja(renglones_, QStringLiteral("RenglonesVisor"), QStringLiteral("Artículos"));
    hoja(pagos_, QStringLiteral("PagosVisor"), QStringLiteral("Pagos"));
    hoja(anticipos_, QStringLiteral("AnticiposVisor"), QStringLiteral("Anticipos y Abonos"));
    hoja(bitacora_, QStringLiteral("BitacoraVisor"), QStringLiteral("Bitácora"));

    auto* regresar = creaBoton(QStringLiteral("Regresar"), QStringLiteral("Regresar"),
                               QStringLiteral("BotonRegresar"), nullptr, this);
    connect(regresar, &QPushButton::clicked, this, [this] {
        Sonidos::reproduce(Sonido::Regresar);
        emit regresa();
    });
    imprimir_ = creaBoton(QStringLiteral("Etiquetas"), QStringLiteral("Imprimir"),
                          QStringLiteral("BotonImprimir"), nullptr, this);
    connect(imprimir_, &QPushButton::clicked, this, &TVisorF::BotonImprimirClick);
    pdf_ = creaBoton(QStringLiteral("Exportar"), QStringLiteral("Visualizar PDF"),
                     QStringLiteral("BotonPdf"), nullptr, this);
    connect(pdf_, &QPushButton::clicked, this, &TVisorF::BotonPdfClick);
    cancelar_ = creaBoton(QStringLiteral("Cancelacion"), QStringLiteral("Cancelar Venta"),
                          QStringLiteral("BotonCancelarVenta"), "peligro", this);
    connect(cancelar_, &QPushButton::clicked, this, &TVisorF::BotonCancelarVentaClick);
    for (QPushButton* b : {regresar, imprimir_, pdf_, cancelar_})
        b->setAccessibleName(b->text());
    auto* abajo = new QHBoxLayout;
    abajo->addWidget(regresar);
    abajo->addStretch(1);
    abajo->addWidget(cancelar_);
    abajo->addWidget(pdf_);
    abajo->addWidget(imprimir_);

    auto* capa = new QVBoxLayout(this);
    capa->addLayout(arriba);
    capa->addWidget(tarjeta);
    capa->addWidget(hojas_, 1);
    capa->addLayout(abajo);
    llena();
}

void TVisorF::error(const QString& mensaje) {
    Sonidos::reproduce(Sonido::Error);
    mensajes_.muestra(mensaje);
}

void TVisorF::muestra(int64_t folio) {
    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"),
                      [this, folio] { CargaVentaTimer(folio); });
}

void TVisorF::CargaVentaTimer(int64_t folio) {
    try {
        venta_ = consultaVenta(ModuloDeDatos.ConexionBD, sesion_, folio);
    } catch (const std::exception& e) {
        venta_.reset();
        error(QString::fromUtf8(MensajeErrorLectura) + QStringLiteral(": ") +
              QString::fromUtf8(e.what()));
        qWarning() << "Visor de ventas, carga:" << e.what();
    }
    llena();
}

void TVisorF::llena() {
    const VentaVisor* v = venta_ ? &*venta_ : nullptr;
    titulo_->setText(v ? QStringLiteral("Remisión %1").arg(v->folio) : QStringLiteral("Remisión"));
    estado_->setText(!v ? QString() : v->cancelada ? QStringLiteral("CANCELADA") : QString());
    cliente_->setText(v ? v->cliente : QString());
    fecha_->setText(v ? fechaLista(v->fecha) : QString());
    cajero_->setText(v ? v->cajero + QStringLiteral(" / ") + v->vendedor : QString());
    QString condicion;
    if (v && v->cancelada)
        condicion = QStringLiteral("Cancelada el %1: %2")
                        .arg(fechaLista(v->fechaCancelacion), v->motivoCancelacion);
    else if (v && v->plazo > 0)
        condicion =
            QStringLiteral("Crédito a %1 días, saldo %2").arg(v->plazo).arg(importeVenta(v->saldo));
    else if (v)
        condicion = QStringLiteral("Contado");
    condicion_->setText(condicion);
    importes_->setText(v ? QStringLiteral("Subtotal %1 · Descuento %2 · IEPS %3 · IVA %4")
                               .arg(importeVenta(v->subtotal), importeVenta(v->descuento),
                                    importeVenta(v->ieps), importeVenta(v->iva))
                         : QString());
    total_->setText(v ? importeVenta(v->total) : QString());
    renglones_->cambia([v] { return v ? static_cast<int>(v->renglones.size()) : 0; });
    pagos_->cambia([v] { return v ? static_cast<int>(v->pagos.size()) : 0; });
    anticipos_->cambia([v] { return v ? static_cast<int>(v->anticipos.size()) : 0; });
    bitacora_->cambia([v] { return v ? static_cast<int>(v->bitacora.size()) : 0; });
    // Ya con la venta en los modelos: cada columna a lo que pide su contenido, una vez.
    for (QTableView* t : hojas_->findChildren<QTableView*>())
        t->resizeColumnsToContents();
    imprimir_->setEnabled(v != nullptr);
    pdf_->setEnabled(v != nullptr);
    cancelar_->setEnabled(v != nullptr && !v->cancelada);
}

void TVisorF::BotonImprimirClick() {
    imprime(false);
}

void TVisorF::BotonPdfClick() {
    imprime(true);
}

void TVisorF::imprime(bool pdf) {
    if (!venta_) return;
    Sonidos::reproduce(Sonido::Click);
    // Imprimir no bloquea ni lanza: lo que falle lo avisa el propio trabajo.
    const AjustesEstacion estacion(carpetaEstacion_);
    impresion_ = imprimeVenta(this, sesion_, venta_->folio, estacion,
                              pdf ? DestinoImpresion::Pdf : DestinoImpresion::Impresora);
}

void TVisorF::BotonCancelarVentaClick() {
    if (!venta_) return;
    if (!sesion_.puedeVentas(QStringLiteral("cancelarRemision"))) {
        error(QString::fromUtf8(MensajeSinPermisoCancelar));
        return;
    }
    const int64_t folio = venta_->folio;
    if (venta_->cancelada) {
        error(QString::fromUtf8(MensajeRemisionCancelada) + QString::number(folio));
        return;
    }
    if (!mensajes_.preguntaSiNo(QStringLiteral("¿Desea Cancelar la Remisión %1 por %2?")
                                    .arg(folio)
                                    .arg(importeVenta(venta_->total))))
        return;
    const std::optional<QString> motivo =
        mensajes_.pideTexto(QStringLiteral("Motivo de la Cancelación"), {}, 255);
    if (!motivo) return;
    if (motivo->trimmed().isEmpty()) {
        error(QStringLiteral("Debe Indicar el Motivo de la Cancelación"));
        return;
    }
    Sonidos::reproduce(Sonido::Click);
    ejecutaConLeyenda(this, QStringLiteral("Registrando Transacción."),
                      [this, folio, m = motivo->trimmed()] { CancelaVentaTimer(folio, m); });
}

void TVisorF::CancelaVentaTimer(int64_t folio, const QString& motivo) {
    ResultadoCancelacion r;
    try {
        r = CancelacionVenta(ModuloDeDatos.ConexionBD, sesion_).cancela(folio, motivo);
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorRegistro) + QStringLiteral(": ") +
              QString::fromUtf8(e.what()));
        qWarning() << "Visor de ventas, cancelación:" << e.what();
        return;
    }
    if (!r.cancelada) {
        error(r.mensaje);
        return;
    }
    mensajes_.muestra(QStringLiteral("Remisión Cancelada: %1").arg(folio));
    CargaVentaTimer(folio);
    emit cancelada(folio);
}

} // namespace cajaplex
