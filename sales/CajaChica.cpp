#include "sales/CajaChica.h"

#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>
#include <QtDebug>

#include "datos/Auditoria.h"
#include "datos/ModuloDatos.h"
#include "datos/Utilerias.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/Sonidos.h"
#include "sales/ControlesCaja.h"

namespace cajaplex {

namespace {

constexpr int kAltoRenglon = 72;
const QString kSi = QStringLiteral("SÍ");
const QString kNo = QStringLiteral("NO");

QTableWidgetItem* renglonFijo(const QString& texto) {
    auto* item = new QTableWidgetItem(texto);
    item->setFlags(Qt::ItemIsEnabled);
    return item;
}

} // namespace

TCajaChicaF::TCajaChicaF(const Sesion& sesion, QWidget* padre)
    : QWidget(padre), sesion_(sesion), dispositivo_(sesion.DispositivoID),
      FlujoEfectivo_(ModuloDeDatos.ConexionBD,
                     QStringLiteral("Insert Into FlujoEfectivo (tipoFlujo, usuarioID, empresaID, "
                                    "importe, comentarios) Values (:tipoFlujo, :usuarioID, "
                                    ":empresaID, :importe, :comentarios)")) {
    setObjectName(QStringLiteral("CajaChica"));
    setWindowTitle(QStringLiteral("Caja Chica"));

    auto* titulo = creaEtiqueta(QStringLiteral("Caja Chica"), QStringLiteral("TituloCajaChica"),
                                "titulo", this);

    tabla_ = new QTableWidget(3, 2, this);
    tabla_->setObjectName(QStringLiteral("TablaCajaChica"));
    tabla_->setAccessibleName(QStringLiteral("Caja Chica"));
    tabla_->horizontalHeader()->hide();
    tabla_->verticalHeader()->hide();
    tabla_->verticalHeader()->setDefaultSectionSize(kAltoRenglon);
    tabla_->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    tabla_->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
    tabla_->setSelectionMode(QAbstractItemView::NoSelection);
    tabla_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    tabla_->setShowGrid(false);
    tabla_->setItem(RenglonCantidad, 0,
                    renglonFijo(QStringLiteral("Cantidad\nEspecifique el Monto en Efectivo")));
    tabla_->setItem(RenglonNota, 0, renglonFijo(QStringLiteral("Nota\nIntroduzca el Motivo")));
    tabla_->setItem(RenglonRetiro, 0,
                    renglonFijo(QStringLiteral("¿Es Retiro?\nTipo de Movimiento")));

    cantidad_ =
        creaCampoImporte(QStringLiteral("CantidadCajaChica"), QStringLiteral("Cantidad"), tabla_);
    cantidad_->setText(QStringLiteral("0.00"));
    tabla_->setCellWidget(RenglonCantidad, 1, cantidad_);

    nota_ = new QLineEdit(tabla_);
    nota_->setObjectName(QStringLiteral("NotaCajaChica"));
    nota_->setAccessibleName(QStringLiteral("Nota"));
    nota_->setMinimumHeight(AltoControl);
    tabla_->setCellWidget(RenglonNota, 1, nota_);

    retiro_ = renglonFijo(kNo);
    retiro_->setTextAlignment(Qt::AlignCenter);
    tabla_->setItem(RenglonRetiro, 1, retiro_);
    connect(tabla_, &QTableWidget::cellClicked, this, &TCajaChicaF::TablaCajaChicaClick);

    auto* pie = pieConBoton(QStringLiteral("CajaChica"), QStringLiteral("Registrar"),
                            QStringLiteral("BotonSiguiente"), this, siguiente_);
    connect(siguiente_, &QPushButton::clicked, this, &TCajaChicaF::BotonSiguienteClick);

    auto* capa = new QVBoxLayout(this);
    capa->addWidget(titulo);
    capa->addWidget(tabla_, 1);
    capa->addLayout(pie);
}

bool TCajaChicaF::esRetiro() const {
    return retiro_->text() == kSi;
}

void TCajaChicaF::TablaCajaChicaClick(int fila, int /*columna*/) {
    if (fila != RenglonRetiro) return;
    Sonidos::reproduce(Sonido::Click);
    retiro_->setText(esRetiro() ? kNo : kSi);
}

void TCajaChicaF::error(const QString& mensaje) {
    Sonidos::reproduce(Sonido::Error);
    mensajes_.muestra(mensaje);
}

void TCajaChicaF::BotonSiguienteClick() {
    const QString monto = cantidad_->text().trimmed();
    if (monto.isEmpty()) {
        error(QStringLiteral("Debe Introducir un Monto para el Ingreso/Retiro de Efectivo"));
        return;
    }
    // Un texto que no es número vale cero, como un monto vacío de cifras.
    if (!(QLocale::c().toDouble(monto) > 0.0)) {
        error(QStringLiteral("Debe Introducir un Monto superior a CERO"));
        return;
    }
    if (nota_->text().trimmed().isEmpty()) {
        error(QStringLiteral("Debe Introducir un Motivo para el Ingreso/Retiro de Efectivo"));
        return;
    }
    Sonidos::reproduce(Sonido::Click);
    ejecutaConLeyenda(this, QStringLiteral("Registrando Transacción."),
                      [this] { AlmacenaCajaChicaTimer(); });
}

void TCajaChicaF::AlmacenaCajaChicaTimer() {
    const QString rechazo = rechazoDispositivo(dispositivo_);
    if (!rechazo.isEmpty()) {
        error(rechazo);
        return;
    }

    const double importe = Redondea(QLocale::c().toDouble(cantidad_->text().trimmed()), 2);
    const bool retiro = esRetiro();
    const QString motivo = nota_->text();
    try {
        Transaccion t(ModuloDeDatos.ConexionBD);
        FlujoEfectivo_.parametro(QStringLiteral("usuarioID")).entero(sesion_.UsuarioID);
        FlujoEfectivo_.parametro(QStringLiteral("empresaID")).entero(sesion_.EmpresaID);
        FlujoEfectivo_.parametro(QStringLiteral("importe")).real(importe);
        FlujoEfectivo_.parametro(QStringLiteral("tipoFlujo")).entero(retiro ? 1 : 0);
        FlujoEfectivo_.parametro(QStringLiteral("comentarios")).texto(motivo);
        FlujoEfectivo_.ejecuta(t);
        const int64_t id = FlujoEfectivo_.ultimoId();
        Auditoria::registra(
            t, sesion_,
            {QString::fromUtf8(tipoAuditoria::Insercion),
             QString::fromUtf8(ModuloCajaChica),
             QStringLiteral("Movimiento: ") + QString::number(id) +
                 (retiro ? QStringLiteral(", Retiro: ") : QStringLiteral(", Depósito: ")) +
                 QLocale::c().toString(importe, 'f', 2),
             {},
             motivo});
        t.confirma();
    } catch (const ErrorServicio& e) {
        // Lo tecleado se queda para intentar de nuevo.
        error(QString::fromUtf8(MensajeErrorRegistro) + QStringLiteral(": ") + e.mensaje());
        qWarning() << "Caja Chica, registro:" << e.mensaje();
        return;
    }
    limpia();
    mensajes_.muestra(QStringLiteral("Proceso finalizado con éxito"));
}

void TCajaChicaF::limpia() {
    cantidad_->setText(QStringLiteral("0.00"));
    nota_->clear();
    retiro_->setText(kNo);
}

} // namespace cajaplex
