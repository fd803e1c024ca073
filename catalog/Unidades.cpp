#include "catalog/Unidades.h"

#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScroller>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <QtDebug>

#include "datos/ModuloDatos.h"
#include "pantallas/DelegadoRenglon.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/RolesRenglon.h"
#include "pantallas/Sonidos.h"

namespace cajaplex {
namespace {

enum Pagina { PaginaLista, PaginaEdicion };

constexpr int kAnchoTarjeta = 760; // los campos no se estiran a lo ancho de la pantalla
constexpr int kLargoTexto = 255;

// La tarjeta de campos a la izquierda, hasta su ancho máximo.
QHBoxLayout* alaIzquierda(QWidget* tarjeta) {
    auto* fila = new QHBoxLayout;
    fila->addWidget(tarjeta, 3);
    fila->addStretch(1);
    return fila;
}

} // namespace

// ---------------------------------------------------------------------------------------------
// Edición
// ---------------------------------------------------------------------------------------------

TUnidadesEditaF::TUnidadesEditaF(const Sesion& sesion, QWidget* padre)
    : QWidget(padre), catalogo_(ModuloDeDatos.ConexionBD, sesion) {
    setObjectName(QStringLiteral("UnidadesEdita"));
    setWindowTitle(QStringLiteral("Unidades de Medida"));
    titulo_ = creaEtiqueta({}, QStringLiteral("TituloEdicion"), "titulo", this);

    auto* tarjeta = new QFrame(this);
    ponEstilo(tarjeta, "tarjeta");
    tarjeta->setMaximumWidth(kAnchoTarjeta);
    auto* rejilla = new QGridLayout(tarjeta);
    auto campo = [&](const QString& nombre, const QString& texto, int renglon) {
        auto* titulo =
            creaEtiqueta(texto, QStringLiteral("Etiqueta") + nombre, "subtitulo", tarjeta);
        auto* c = new QLineEdit(tarjeta);
        c->setObjectName(nombre);
        c->setMaxLength(kLargoTexto);
        c->setMinimumHeight(AltoControl);
        titulo->setBuddy(c);
        rejilla->addWidget(titulo, renglon, 0);
        rejilla->addWidget(c, renglon + 1, 0);
        return c;
    };
    nombre_ =
        campo(QStringLiteral("NombreUnidad"), QStringLiteral("Unidad de Medida (Requerido)"), 0);
    claveSAT_ = campo(QStringLiteral("ClaveSAT"), QStringLiteral("Clave SAT (Requerido)"), 2);
    claveSAT_->setPlaceholderText(QStringLiteral("H87, KGM, LTR..."));

    almacenar_ = creaBoton(QStringLiteral("Insercion"), QStringLiteral("Almacenar"),
                           QStringLiteral("BotonAlmacenar"), "primario", this);
    auto* cancelar = creaBoton(QStringLiteral("Regresar"), QStringLiteral("Cancelar"),
                               QStringLiteral("BotonCancelar"), nullptr, this);
    connect(almacenar_, &QPushButton::clicked, this, &TUnidadesEditaF::BotonAlmacenarClick);
    connect(cancelar, &QPushButton::clicked, this, &TUnidadesEditaF::BotonCancelarClick);
    connect(claveSAT_, &QLineEdit::returnPressed, this, &TUnidadesEditaF::BotonAlmacenarClick);

    auto* abajo = new QHBoxLayout;
    abajo->addStretch(1);
    abajo->addWidget(cancelar);
    abajo->addWidget(almacenar_);

    auto* capa = new QVBoxLayout(this);
    capa->addWidget(titulo_);
    capa->addLayout(alaIzquierda(tarjeta));
    capa->addStretch(1);
    capa->addLayout(abajo);
}

void TUnidadesEditaF::nueva() {
    anterior_.reset();
    titulo_->setText(QStringLiteral("Alta Unidad de Medida"));
    nombre_->clear();
    claveSAT_->clear();
    almacenar_->setEnabled(true);
    nombre_->setFocus();
}

void TUnidadesEditaF::edita(const UnidadMedida& unidad) {
    anterior_ = unidad;
    titulo_->setText(QStringLiteral("Modifica Unidad de Medida"));
    nombre_->setText(unidad.unidad);
    claveSAT_->setText(unidad.claveSAT);
    almacenar_->setEnabled(true);
    nombre_->setFocus();
}

void TUnidadesEditaF::error(const QString& mensaje) {
    Sonidos::reproduce(Sonido::Error);
    mensajes_.muestra(mensaje);
}

void TUnidadesEditaF::BotonAlmacenarClick() {
    if (!almacenar_->isEnabled()) return;
    const UnidadMedida unidad{anterior_ ? anterior_->id : 0, nombre_->text().trimmed(),
                              claveSAT_->text().trimmed()};
    if (unidad.unidad.isEmpty()) {
        error(QStringLiteral("No especificó el Nombre de la Unidad de Medida"));
        return;
    }
    if (unidad.claveSAT.isEmpty()) {
        error(QStringLiteral("No especificó la Clave SAT"));
        return;
    }
    Sonidos::reproduce(Sonido::Click);
    almacenar_->setEnabled(false); // un segundo toque no duplica el alta
    ejecutaConLeyenda(this,
                      anterior_ ? QStringLiteral("Modificando Unidad")
                                : QStringLiteral("Insertando Unidad"),
                      [this, unidad] { AlmacenaUnidadTimer(unidad); });
}

void TUnidadesEditaF::AlmacenaUnidadTimer(const UnidadMedida& unidad) {
    int64_t id = unidad.id;
    try {
        if (anterior_)
            catalogo_.modifica(unidad, *anterior_);
        else
            id = catalogo_.inserta(unidad.unidad, unidad.claveSAT);
    } catch (const ErrorServicio& e) {
        almacenar_->setEnabled(true);
        error(QString::fromUtf8(MensajeErrorRegistro));
        qWarning() << "Unidades de Medida, almacenar:" << e.mensaje();
        return;
    }
    almacenar_->setEnabled(true);
    emit almacenada(id);
}

void TUnidadesEditaF::BotonCancelarClick() {
    Sonidos::reproduce(Sonido::Regresar);
    emit cancelada();
}

// ---------------------------------------------------------------------------------------------
// Lista
// ---------------------------------------------------------------------------------------------

TUnidadesF::TUnidadesF(const Sesion& sesion, QWidget* padre)
    : QWidget(padre), catalogo_(ModuloDeDatos.ConexionBD, sesion) {
    setObjectName(QStringLiteral("Unidades"));
    setWindowTitle(QStringLiteral("Unidades de Medida"));

    auto* pagina = new QWidget(this);
    pagina->setObjectName(QStringLiteral("SeleccionaUnidad"));
    lista_ = new QListWidget(pagina);
    lista_->setObjectName(QStringLiteral("ListaUnidades"));
    lista_->setItemDelegate(new DelegadoRenglon(0, lista_));
    lista_->setUniformItemSizes(true);
    lista_->setAlternatingRowColors(true);
    lista_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    lista_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    QScroller::grabGesture(lista_->viewport(), QScroller::LeftMouseButtonGesture);
    connect(lista_, &QListWidget::currentItemChanged, this, &TUnidadesF::actualizaAcciones);
    connect(lista_, &QListWidget::itemActivated, this, &TUnidadesF::ListaUnidadesItemActivated);

    pie_ = creaEtiqueta(QStringLiteral("Número de Registros: 0"), QStringLiteral("PieUnidades"),
                        "pie", pagina);
    auto* nuevo = creaBoton(QStringLiteral("Insercion"), QStringLiteral("Nueva"),
                            QStringLiteral("BotonNuevo"), "primario", pagina);
    modificar_ = creaBoton(QStringLiteral("Actualizacion"), QStringLiteral("Modificar"),
                           QStringLiteral("BotonModificar"), nullptr, pagina);
    borrar_ = creaBoton(QStringLiteral("Cancelacion"), QStringLiteral("Borrar"),
                        QStringLiteral("BotonBorrar"), "peligro", pagina);
    connect(nuevo, &QPushButton::clicked, this, &TUnidadesF::BotonNuevoClick);
    connect(modificar_, &QPushButton::clicked, this, &TUnidadesF::BotonModificarClick);
    connect(borrar_, &QPushButton::clicked, this, &TUnidadesF::BotonBorrarClick);

    auto* abajo = new QHBoxLayout;
    abajo->addWidget(pie_, 1);
    abajo->addWidget(borrar_);
    abajo->addWidget(modificar_);
    abajo->addWidget(nuevo);
    auto* capaLista = new QVBoxLayout(pagina);
    capaLista->addWidget(creaEtiqueta(QStringLiteral("Toque dos veces una Unidad para modificarla"),
                                      QStringLiteral("IndicacionUnidades"), "subtitulo", pagina));
    capaLista->addWidget(lista_, 1);
    capaLista->addLayout(abajo);

    edicion_ = new TUnidadesEditaF(sesion, this);
    connect(edicion_, &TUnidadesEditaF::almacenada, this, [this](qint64 id) {
        muestraLista();
        ejecutaConLeyenda(this, QStringLiteral("Cargando Información"),
                          [this, id] { CargaUnidadesTimer(id); });
    });
    connect(edicion_, &TUnidadesEditaF::cancelada, this, &TUnidadesF::muestraLista);

    paginas_ = new QStackedWidget(this);
    paginas_->setObjectName(QStringLiteral("Paginas"));
    paginas_->addWidget(pagina);
    paginas_->addWidget(edicion_);

    auto* capa = new QVBoxLayout(this);
    capa->setContentsMargins(0, 0, 0, 0);
    capa->addWidget(paginas_);
    actualizaAcciones();

    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"),
                      [this] { CargaUnidadesTimer(0); });
}

void TUnidadesF::error(const QString& mensaje) {
    Sonidos::reproduce(Sonido::Error);
    mensajes_.muestra(mensaje);
}

void TUnidadesF::CargaUnidadesTimer(int64_t seleccion) {
    try {
        unidades_ = catalogo_.consulta();
    } catch (const ErrorServicio& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Unidades de Medida, lista:" << e.mensaje();
        return;
    }
    lista_->clear();
    for (const UnidadMedida& u : unidades_) {
        auto* item = new QListWidgetItem(u.unidad, lista_);
        item->setData(RolPrimeraLinea, u.unidad);
        item->setData(RolSegundaLinea, QStringLiteral("Clave SAT: ") + u.claveSAT);
        item->setData(RolUnidadID, QVariant::fromValue<qlonglong>(u.id));
        if (u.id == seleccion) {
            lista_->setCurrentItem(item);
            lista_->scrollToItem(item);
        }
    }
    pie_->setText(QStringLiteral("Número de Registros: ") + QString::number(lista_->count()));
    actualizaAcciones();
}

std::optional<UnidadMedida> TUnidadesF::unidadElegida() const {
    const QListWidgetItem* item = lista_->currentItem();
    if (!item) return std::nullopt;
    const int64_t id = item->data(RolUnidadID).toLongLong();
    for (const UnidadMedida& u : unidades_)
        if (u.id == id) return u;
    return std::nullopt;
}

void TUnidadesF::actualizaAcciones() {
    const bool hay = lista_->currentItem() != nullptr;
    modificar_->setEnabled(hay);
    borrar_->setEnabled(hay);
}

void TUnidadesF::muestraLista() {
    paginas_->setCurrentIndex(PaginaLista);
}

void TUnidadesF::BotonNuevoClick() {
    Sonidos::reproduce(Sonido::Click);
    edicion_->nueva();
    paginas_->setCurrentIndex(PaginaEdicion);
}

void TUnidadesF::BotonModificarClick() {
    const std::optional<UnidadMedida> u = unidadElegida();
    if (!u) return;
    Sonidos::reproduce(Sonido::Click);
    edicion_->edita(*u);
    paginas_->setCurrentIndex(PaginaEdicion);
}

void TUnidadesF::ListaUnidadesItemActivated(QListWidgetItem* item) {
    if (!item) return;
    lista_->setCurrentItem(item);
    BotonModificarClick();
}

void TUnidadesF::BotonBorrarClick() {
    const std::optional<UnidadMedida> u = unidadElegida();
    if (!u) return;
    if (!mensajes_.preguntaSiNo(QStringLiteral("¿Desea Eliminar la Unidad de Medida ") + u->unidad +
                                QLatin1Char('?')))
        return;
    Sonidos::reproduce(Sonido::Click);
    const UnidadMedida unidad = *u;
    ejecutaConLeyenda(this, QStringLiteral("Registrando Transacción."),
                      [this, unidad] { EliminaUnidadTimer(unidad); });
}

void TUnidadesF::EliminaUnidadTimer(const UnidadMedida& unidad) {
    bool eliminada = false;
    try {
        eliminada = catalogo_.elimina(unidad);
    } catch (const ErrorServicio& e) {
        error(QString::fromUtf8(MensajeErrorRegistro));
        qWarning() << "Unidades de Medida, borrar:" << e.mensaje();
        return;
    }
    if (!eliminada) {
        error(
            QStringLiteral("No puede eliminar la Unidad de Medida con Transacciones Registradas"));
        return;
    }
    for (int i = 0; i < lista_->count(); ++i) {
        if (lista_->item(i)->data(RolUnidadID).toLongLong() != unidad.id) continue;
        delete lista_->takeItem(i);
        break;
    }
    std::erase_if(unidades_, [&](const UnidadMedida& u) { return u.id == unidad.id; });
    pie_->setText(QStringLiteral("Número de Registros: ") + QString::number(lista_->count()));
    actualizaAcciones();
}

} // namespace cajaplex
