#include "restaurant/AreasComidaEdita.h"

#include <exception>

#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>
#include <QtDebug>

#include "datos/ConexionBD.h"
#include "datos/ControlAcceso.h"
#include "datos/MensajesComunes.h"
#include "datos/ModuloDatos.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/ListaEdicion.h"
#include "pantallas/Sonidos.h"

namespace cajaplex {

TAreasComidaEditaF::TAreasComidaEditaF(const Sesion& sesion, int64_t areaID, int64_t nodoID,
                                       QWidget* padre)
    : QWidget(padre), sesion_(sesion), catalogo_(ModuloDeDatos.ConexionBD, sesion), areaID_(areaID),
      nodoID_(nodoID) {
    setObjectName(QStringLiteral("AreasComidaEdita"));
    setWindowTitle(QStringLiteral("Edición de Nodo Comida"));
    titulo_ =
        creaEtiqueta(nodoID == 0 ? QStringLiteral("Alta Nodo") : QStringLiteral("Modifica Nodo"),
                     QStringLiteral("TituloNodo"), "titulo", this);

    clave_ = new QLineEdit(this);
    clave_->setObjectName(QStringLiteral("Clave"));
    clave_->setMaxLength(20);
    descripcion_ = new QLineEdit(this);
    descripcion_->setObjectName(QStringLiteral("Descripcion"));
    descripcion_->setMaxLength(100);
    personas_ = new QLineEdit(this);
    personas_->setObjectName(QStringLiteral("CantidadSinDecimal"));
    personas_->setValidator(new QIntValidator(1, 999, personas_));
    personas_->setInputMethodHints(Qt::ImhDigitsOnly);
    tipos_ = new QComboBox(this);
    tipos_->setObjectName(QStringLiteral("ListaTiposNodo"));
    tipos_->setIconSize(QSize(36, 36));
    for (int tipo = 0; tipo < NumeroTiposNodo; ++tipo)
        tipos_->addItem(icono(imagenTipoNodo(tipo)), textoTipoNodo(tipo), tipo);
    tipos_->setCurrentIndex(-1);
    activo_ = new InterruptorSiNo(QStringLiteral("Activo"), QStringLiteral("¿Activo?"), this);

    const QStringList titulos = {QStringLiteral("Clave de Identificación"),
                                 QStringLiteral("Descripción"),
                                 QStringLiteral("Número de Personas"),
                                 QStringLiteral("Tipo de Nodo"), QStringLiteral("¿Activo?")};
    const QList<QWidget*> editores = {clave_, descripcion_, personas_, tipos_, activo_};
    nodo_ = new QTableWidget(static_cast<int>(titulos.size()), 2, this);
    nodo_->setObjectName(QStringLiteral("NodoComida"));
    nodo_->setAccessibleName(QStringLiteral("Datos del Nodo de Comida"));
    nodo_->horizontalHeader()->hide();
    nodo_->verticalHeader()->hide();
    nodo_->horizontalHeader()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    nodo_->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
    nodo_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    nodo_->setSelectionMode(QAbstractItemView::NoSelection);
    for (int i = 0; i < titulos.size(); ++i) {
        nodo_->setItem(i, 0, new QTableWidgetItem(titulos[i]));
        editores[i]->setAccessibleName(titulos[i]);
        editores[i]->setMinimumHeight(AltoControl);
        nodo_->setCellWidget(i, 1, editores[i]);
        nodo_->setRowHeight(i, AltoControl + 16);
    }
    tipos_->setAccessibleName(QStringLiteral("Seleccione un Tipo de Nodo"));

    auto* anterior = creaBoton(QStringLiteral("Regresar"), QStringLiteral("Cancelar"),
                               QStringLiteral("BotonAnterior"), nullptr, this);
    auto* siguiente = creaBoton(QStringLiteral("Insercion"), QStringLiteral("Almacenar"),
                                QStringLiteral("BotonSiguiente"), "primario", this);
    connect(anterior, &QPushButton::clicked, this, &TAreasComidaEditaF::BotonAnteriorClick);
    connect(siguiente, &QPushButton::clicked, this, &TAreasComidaEditaF::BotonSiguienteClick);
    auto* abajo = new QHBoxLayout;
    abajo->addStretch(1);
    abajo->addWidget(anterior);
    abajo->addWidget(siguiente);
    auto* capa = new QVBoxLayout(this);
    capa->addWidget(titulo_);
    capa->addWidget(nodo_, 1);
    capa->addLayout(abajo);

    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"),
                      [this] { TemporizadorInicialTimer(); });
}

void TAreasComidaEditaF::error(const QString& mensaje) {
    Sonidos::reproduce(Sonido::Error);
    mensajes_.muestra(mensaje);
}

void TAreasComidaEditaF::TemporizadorInicialTimer() {
    try {
        if (nodoID_ == 0) {
            const QString clave = QString::number(catalogo_.siguienteClave());
            clave_->setText(clave);
            descripcion_->setText(QStringLiteral("MESA ") + clave);
            personas_->setText(QStringLiteral("1"));
            tipos_->setCurrentIndex(0);
            activo_->setChecked(true);
            return;
        }
        const std::optional<NodoComida> nodo = catalogo_.consultaNodo(nodoID_);
        if (!nodo) {
            error(QString::fromUtf8(MensajeErrorLectura));
            return;
        }
        clave_->setText(nodo->clave);
        descripcion_->setText(nodo->descripcion);
        personas_->setText(QString::number(nodo->numeroPersonas));
        tipos_->setCurrentIndex(tipos_->findData(nodo->tipo));
        activo_->setChecked(nodo->activo);
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Edición de Nodo Comida:" << e.what();
    }
}

void TAreasComidaEditaF::BotonSiguienteClick() {
    Sonidos::reproduce(Sonido::Click);
    try {
        if (clave_->text().trimmed().isEmpty()) {
            error(QStringLiteral("No especificó la Clave del Nodo de Comida"));
            return;
        }
        // La clave solo se revisa en el alta: un cambio no la compara con las demás.
        if (nodoID_ == 0 && catalogo_.existeClave(clave_->text().trimmed())) {
            error(QStringLiteral("Ya existe esa Clave del Nodo de Comida"));
            return;
        }
        if (descripcion_->text().trimmed().isEmpty()) {
            error(QStringLiteral("No especificó la Descripción del Nodo de Comida"));
            return;
        }
        if (personas_->text().trimmed().isEmpty()) {
            error(QStringLiteral("No especificó el Número de Personas"));
            return;
        }
        if (tipos_->currentIndex() < 0) {
            error(QStringLiteral("No especificó el Tipo de Nodo"));
            return;
        }
        if (!dispositivoAutorizado(ModuloDeDatos.ConexionBD, sesion_.DispositivoID)) {
            error(QString::fromUtf8(MensajeDispositivoNoAutorizado) + sesion_.DispositivoID);
            return;
        }
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Edición de Nodo Comida, revisión:" << e.what();
        return;
    }
    ejecutaConLeyenda(this,
                      nodoID_ == 0 ? QStringLiteral("Insertando Nodo Comida")
                                   : QStringLiteral("Modificando Nodo Comida"),
                      [this] { AlmacenaDatosTimer(); });
}

void TAreasComidaEditaF::AlmacenaDatosTimer() {
    NodoComida nodo;
    nodo.id = nodoID_;
    nodo.area = areaID_;
    nodo.clave = clave_->text().trimmed();
    nodo.descripcion = descripcion_->text().trimmed();
    nodo.numeroPersonas = personas_->text().toInt();
    nodo.tipo = tipos_->currentData().toInt();
    nodo.activo = activo_->isChecked();
    try {
        nodoID_ = catalogo_.guardaNodo(nodo);
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorRegistro));
        qWarning() << "Edición de Nodo Comida, registro:" << e.what();
        return;
    }
    emit almacenado(nodoID_);
}

void TAreasComidaEditaF::BotonAnteriorClick() {
    Sonidos::reproduce(Sonido::Regresar);
    emit cancelado();
}

} // namespace cajaplex
