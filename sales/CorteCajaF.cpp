#include "sales/CorteCajaF.h"

#include <cmath>

#include <QComboBox>
#include <QDateTimeEdit>
#include <QFrame>
#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>
#include <QtDebug>

#include "datos/ModuloDatos.h"
#include "datos/Utilerias.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/Sonidos.h"
#include "sales/ControlesCaja.h"
#include "sales/ImpresionCorte.h"

namespace cajaplex {

namespace {

const QString kTodos = QStringLiteral("TODOS LOS CAJEROS");
const QString kFormatoFecha = QStringLiteral("dd/MM/yyyy HH:mm:ss");

QString dinero(double valor) {
    static const QLocale mexico(QLocale::Spanish, QLocale::Mexico);
    return (valor < 0 ? QStringLiteral("-$") : QStringLiteral("$")) +
           mexico.toString(Redondea(std::abs(valor), 2), 'f', 2);
}

// Todo lo sellado hasta este segundo entra; el siguiente corte empieza aquí.
QDateTime ahora() {
    const QDateTime t = QDateTime::currentDateTime();
    return t.addMSecs(-t.time().msec()).addSecs(1);
}

QDateTimeEdit* creaFecha(const QString& nombre, const QString& accesible, QWidget* padre) {
    auto* f = new QDateTimeEdit(padre);
    f->setObjectName(nombre);
    f->setAccessibleName(accesible);
    f->setDisplayFormat(kFormatoFecha);
    f->setCalendarPopup(true);
    f->setMinimumHeight(AltoControl);
    return f;
}

} // namespace

TCorteCajaF::TCorteCajaF(const Sesion& sesion, QWidget* padre)
    : QWidget(padre), sesion_(sesion), corte_(ModuloDeDatos.ConexionBD, sesion),
      dispositivo_(sesion.DispositivoID) {
    setObjectName(QStringLiteral("CorteCaja"));
    setWindowTitle(QStringLiteral("Corte de Caja"));

    auto* titulo = creaEtiqueta(QStringLiteral("Corte de Caja"), QStringLiteral("TituloCorte"),
                                "titulo", this);

    auto* filtros = new QFrame(this);
    ponEstilo(filtros, "tarjeta");
    cajero_ = new QComboBox(filtros);
    cajero_->setObjectName(QStringLiteral("CajeroCorte"));
    cajero_->setMinimumHeight(AltoControl);
    desde_ = creaFecha(QStringLiteral("DesdeCorte"), QStringLiteral("Desde"), filtros);
    hasta_ = creaFecha(QStringLiteral("HastaCorte"), QStringLiteral("Hasta"), filtros);
    connect(hasta_, &QDateTimeEdit::editingFinished, this, [this] { hastaManual_ = true; });
    calcular_ = creaBoton(QStringLiteral("Buscar"), QStringLiteral("Calcular"),
                          QStringLiteral("BotonCalcular"), nullptr, filtros);
    calcular_->setAccessibleName(QStringLiteral("Calcular"));
    connect(calcular_, &QPushButton::clicked, this, &TCorteCajaF::BotonCalcularClick);

    auto* rejilla = new QGridLayout(filtros);
    auto etiqueta = [&](const QString& texto, const QString& nombre, QWidget* control, int col) {
        QLabel* l = creaEtiqueta(texto, nombre, nullptr, filtros);
        l->setBuddy(control);
        rejilla->addWidget(l, 0, col);
        rejilla->addWidget(control, 1, col);
    };
    etiqueta(QStringLiteral("Cajero"), QStringLiteral("EtiquetaCajero"), cajero_, 0);
    etiqueta(QStringLiteral("Desde"), QStringLiteral("EtiquetaDesde"), desde_, 1);
    etiqueta(QStringLiteral("Hasta"), QStringLiteral("EtiquetaHasta"), hasta_, 2);
    rejilla->addWidget(calcular_, 1, 3);
    rejilla->setColumnStretch(0, 2);
    rejilla->setColumnStretch(1, 1);
    rejilla->setColumnStretch(2, 1);

    tabla_ = new QTableWidget(0, 3, this);
    tabla_->setObjectName(QStringLiteral("ResumenCorte"));
    tabla_->setAccessibleName(QStringLiteral("Resumen del Corte"));
    tabla_->setHorizontalHeaderLabels(
        {QStringLiteral("Concepto"), QStringLiteral("Operaciones"), QStringLiteral("Importe")});
    tabla_->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    tabla_->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    tabla_->verticalHeader()->hide();
    tabla_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    tabla_->setSelectionMode(QAbstractItemView::NoSelection);

    esperado_ = creaEtiqueta(dinero(0), QStringLiteral("EfectivoEsperado"), "dato", this);
    contado_ = creaCampoImporte(QStringLiteral("EfectivoContado"),
                                QStringLiteral("Efectivo Contado"), this);
    connect(contado_, &QLineEdit::textChanged, this, &TCorteCajaF::EfectivoContadoChange);
    diferencia_ = creaEtiqueta(dinero(0), QStringLiteral("DiferenciaCorte"), "dato", this);
    observaciones_ = new QLineEdit(this);
    observaciones_->setObjectName(QStringLiteral("ObservacionesCorte"));
    observaciones_->setMinimumHeight(AltoControl);

    auto* cuadre = new QGridLayout;
    auto renglon = [&](int fila, const QString& texto, const QString& nombre, QWidget* control) {
        QLabel* l = creaEtiqueta(texto, nombre, "subtitulo", this);
        l->setBuddy(control);
        if (control->accessibleName().isEmpty()) control->setAccessibleName(texto);
        cuadre->addWidget(l, fila, 0);
        cuadre->addWidget(control, fila, 1);
    };
    renglon(0, QStringLiteral("Efectivo Esperado en Caja"), QStringLiteral("EtiquetaEsperado"),
            esperado_);
    renglon(1, QStringLiteral("Efectivo Contado"), QStringLiteral("EtiquetaContado"), contado_);
    renglon(2, QStringLiteral("Diferencia"), QStringLiteral("EtiquetaDiferencia"), diferencia_);
    renglon(3, QStringLiteral("Observaciones"), QStringLiteral("EtiquetaObservaciones"),
            observaciones_);

    auto* pie = pieConBoton(QStringLiteral("CorteCaja"), QStringLiteral("Registrar Corte"),
                            QStringLiteral("BotonAlmacenar"), this, almacenar_);
    connect(almacenar_, &QPushButton::clicked, this, &TCorteCajaF::BotonAlmacenarClick);
    imprimir_ = creaBoton(QStringLiteral("Etiquetas"), QStringLiteral("Imprimir"),
                          QStringLiteral("BotonImprimir"), nullptr, this);
    pdf_ = creaBoton(QStringLiteral("Exportar"), QStringLiteral("Visualizar PDF"),
                     QStringLiteral("BotonPdf"), nullptr, this);
    for (QPushButton* b : {imprimir_, pdf_}) {
        b->setAccessibleName(b->text());
        b->setEnabled(false); // hasta registrar un corte
        pie->insertWidget(0, b);
    }
    connect(imprimir_, &QPushButton::clicked, this, &TCorteCajaF::BotonImprimirClick);
    connect(pdf_, &QPushButton::clicked, this, &TCorteCajaF::BotonPdfClick);

    auto* capa = new QVBoxLayout(this);
    capa->addWidget(titulo);
    capa->addWidget(filtros);
    capa->addWidget(tabla_, 1);
    capa->addLayout(cuadre);
    capa->addLayout(pie);

    // Sin el derecho no se ve ni se calcula nada: solo el rechazo.
    setEnabled(corte_.permitido());
    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"),
                      [this] { CargaInformacionTimer(); });
}

void TCorteCajaF::error(const QString& mensaje) {
    Sonidos::reproduce(Sonido::Error);
    mensajes_.muestra(mensaje);
}

void TCorteCajaF::ponDispositivo(const QString& dispositivoID) {
    dispositivo_ = dispositivoID;
    if (!corte_.permitido()) return;
    try {
        desde_->setDateTime(corte_.inicioPeriodo(dispositivo_));
    } catch (const ErrorServicio& e) {
        error(QString::fromUtf8(MensajeErrorLectura) + QStringLiteral(": ") + e.mensaje());
        qWarning() << "Corte de Caja, último corte:" << e.mensaje();
    }
    olvidaResumen();
}

void TCorteCajaF::CargaInformacionTimer() {
    if (!corte_.permitido()) {
        error(QString::fromUtf8(MensajeSinPermisoCorte));
        return;
    }
    try {
        cajero_->clear();
        cajero_->addItem(kTodos, QVariant::fromValue<qint64>(TodosLosCajeros));
        for (const CajeroCorte& c : corte_.cajeros())
            cajero_->addItem(c.nombre, QVariant::fromValue<qint64>(c.usuarioID));
        const int propio = cajero_->findData(QVariant::fromValue<qint64>(sesion_.UsuarioID));
        cajero_->setCurrentIndex(propio < 0 ? 0 : propio);
        desde_->setDateTime(corte_.inicioPeriodo(dispositivo_));
    } catch (const ErrorServicio& e) {
        error(QString::fromUtf8(MensajeErrorLectura) + QStringLiteral(": ") + e.mensaje());
        qWarning() << "Corte de Caja, carga:" << e.mensaje();
        return;
    }
    hasta_->setDateTime(ahora());
    hastaManual_ = false;
}

void TCorteCajaF::BotonCalcularClick() {
    if (!corte_.permitido()) {
        error(QString::fromUtf8(MensajeSinPermisoCorte));
        return;
    }
    if (!hastaManual_) hasta_->setDateTime(ahora());
    const QDateTime desde = desde_->dateTime();
    const QDateTime hasta = hasta_->dateTime();
    if (desde >= hasta) {
        error(QStringLiteral("La Fecha Inicial debe ser anterior a la Fecha Final"));
        return;
    }
    Sonidos::reproduce(Sonido::Click);
    const int64_t cajero = cajero_->currentData().toLongLong();
    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"),
                      [this, cajero, desde, hasta] { CalculaCorteTimer(cajero, desde, hasta); });
}

void TCorteCajaF::CalculaCorteTimer(int64_t cajero, const QDateTime& desde,
                                    const QDateTime& hasta) {
    try {
        const ResumenCorte r = corte_.calcula(cajero, dispositivo_, desde, hasta);
        resumen_ = r;
        llenaResumen(r);
    } catch (const ErrorServicio& e) {
        olvidaResumen();
        error(QString::fromUtf8(MensajeErrorLectura) + QStringLiteral(": ") + e.mensaje());
        qWarning() << "Corte de Caja, cálculo:" << e.mensaje();
    }
}

void TCorteCajaF::llenaResumen(const ResumenCorte& r) {
    tabla_->setRowCount(0);
    auto agrega = [this](const QString& concepto, int operaciones, double importe, bool total) {
        const int fila = tabla_->rowCount();
        tabla_->insertRow(fila);
        auto* c = new QTableWidgetItem(total ? concepto : QStringLiteral("    ") + concepto);
        auto* o = new QTableWidgetItem(operaciones < 0 ? QString() : QString::number(operaciones));
        auto* i = new QTableWidgetItem(dinero(importe));
        o->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        i->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        i->setData(Qt::UserRole, importe);
        if (total) {
            QFont negritas = c->font();
            negritas.setBold(true);
            c->setFont(negritas);
            i->setFont(negritas);
        }
        tabla_->setItem(fila, 0, c);
        tabla_->setItem(fila, 1, o);
        tabla_->setItem(fila, 2, i);
    };
    agrega(QStringLiteral("Ventas de Contado"), r.ventasContado, r.totalContado, true);
    for (const ImporteFormaPago& f : r.ventasPorForma)
        agrega(f.descripcion, f.operaciones, f.importe, false);
    agrega(QStringLiteral("Ventas a Crédito"), r.ventasCredito, r.totalCredito, true);
    agrega(QStringLiteral("Anticipos y Abonos Recibidos"), -1, r.totalAnticipos, true);
    for (const ImporteFormaPago& f : r.anticiposPorForma)
        agrega(f.descripcion, f.operaciones, f.importe, false);
    agrega(QStringLiteral("Ventas Canceladas"), r.ventasCanceladas, r.totalCanceladas, true);
    agrega(QStringLiteral("Depósitos de Caja Chica"), r.depositos, r.totalDepositos, true);
    agrega(QStringLiteral("Retiros de Caja Chica"), r.retiros, r.totalRetiros, true);
    agrega(QStringLiteral("Efectivo Esperado en Caja"), -1, r.efectivoEsperado, true);
    esperado_->setText(dinero(r.efectivoEsperado));
    EfectivoContadoChange();
}

void TCorteCajaF::olvidaResumen() {
    resumen_.reset();
    tabla_->setRowCount(0);
    esperado_->setText(dinero(0));
    EfectivoContadoChange();
}

void TCorteCajaF::EfectivoContadoChange() {
    const QString texto = contado_->text().trimmed();
    if (!resumen_ || texto.isEmpty()) {
        diferencia_->setText(dinero(0));
        return;
    }
    diferencia_->setText(dinero(diferenciaCorte(*resumen_, QLocale::c().toDouble(texto))));
}

void TCorteCajaF::BotonAlmacenarClick() {
    if (!corte_.permitido()) {
        error(QString::fromUtf8(MensajeSinPermisoCorte));
        return;
    }
    if (!resumen_) {
        error(QStringLiteral("Debe Calcular el Corte de Caja antes de Registrarlo"));
        return;
    }
    const QString texto = contado_->text().trimmed();
    bool ok = false;
    const double contado = QLocale::c().toDouble(texto, &ok);
    if (texto.isEmpty() || !ok || contado < 0.0) {
        error(QStringLiteral("Debe Introducir el Efectivo Contado en Caja"));
        return;
    }
    if (!mensajes_.pregunta(QStringLiteral("¿Desea Registrar el Corte de Caja?"))) return;
    Sonidos::reproduce(Sonido::Click);
    ejecutaConLeyenda(this, QStringLiteral("Registrando Transacción."),
                      [this, contado] { AlmacenaCorteTimer(contado); });
}

void TCorteCajaF::AlmacenaCorteTimer(double contado) {
    if (!resumen_) return;
    const QString rechazo = rechazoDispositivo(dispositivo_);
    if (!rechazo.isEmpty()) {
        error(rechazo);
        return;
    }
    ResultadoCorte r;
    try {
        r = corte_.registra(*resumen_, contado, observaciones_->text());
    } catch (const ErrorServicio& e) {
        // Lo tecleado se queda para intentar de nuevo.
        error(QString::fromUtf8(MensajeErrorRegistro) + QStringLiteral(": ") + e.mensaje());
        qWarning() << "Corte de Caja, registro:" << e.mensaje();
        return;
    }
    if (!r.registrado) {
        error(r.mensaje);
        return;
    }
    impresion_ = valoresCorte(sesion_, r.id, cajero_->currentText(), *resumen_, contado);
    imprimir_->setEnabled(true);
    pdf_->setEnabled(true);
    // El siguiente corte de la estación empieza donde terminó este.
    desde_->setDateTime(resumen_->hasta);
    hasta_->setDateTime(ahora());
    hastaManual_ = false;
    contado_->clear();
    observaciones_->clear();
    olvidaResumen();
    mensajes_.muestra(QStringLiteral("Corte de Caja Registrado: ") + QString::number(r.id));
}

void TCorteCajaF::BotonImprimirClick() {
    if (impresion_.isEmpty()) return;
    Sonidos::reproduce(Sonido::Click);
    imprimeCorte(this, sesion_, impresion_, carpetaEstacion_, DestinoImpresion::Impresora);
}

void TCorteCajaF::BotonPdfClick() {
    if (impresion_.isEmpty()) return;
    Sonidos::reproduce(Sonido::Click);
    imprimeCorte(this, sesion_, impresion_, carpetaEstacion_, DestinoImpresion::Pdf);
}

} // namespace cajaplex
