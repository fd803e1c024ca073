#include "pantallas/ListaEdicion.h"

#include <exception>

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QScroller>
#include <QStackedWidget>
#include <QTimer>
#include <QVBoxLayout>
#include <QtDebug>

#include "pantallas/DelegadoRenglon.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/Sonidos.h"

namespace cajaplex {
namespace {

enum Pagina { PaginaLista, PaginaEdicion };

} // namespace

InterruptorSiNo::InterruptorSiNo(const QString& nombre, const QString& titulo, QWidget* padre)
    : QPushButton(QStringLiteral("NO"), padre) {
    setObjectName(nombre);
    setAccessibleName(titulo);
    setCheckable(true);
    setMinimumHeight(AltoControl);
    setMinimumWidth(120);
    connect(this, &QPushButton::toggled, this, [this](bool si) {
        setText(si ? QStringLiteral("SÍ") : QStringLiteral("NO"));
        ponEstilo(this, si ? "primario" : "");
    });
}

// ---------------------------------------------------------------------------------------------
// Edición
// ---------------------------------------------------------------------------------------------

TEdicionCatalogoF::TEdicionCatalogoF(const QString& nombre, const QString& titulo, QWidget* padre)
    : QWidget(padre) {
    setObjectName(nombre);
    setWindowTitle(titulo);
    titulo_ = creaEtiqueta({}, QStringLiteral("TituloEdicion"), "titulo", this);
    almacenar_ = creaBoton(QStringLiteral("Insercion"), QStringLiteral("Almacenar"),
                           QStringLiteral("BotonAlmacenar"), "primario", this);
    auto* cancelar = creaBoton(QStringLiteral("Regresar"), QStringLiteral("Cancelar"),
                               QStringLiteral("BotonCancelar"), nullptr, this);
    connect(almacenar_, &QPushButton::clicked, this, &TEdicionCatalogoF::BotonAlmacenarClick);
    connect(cancelar, &QPushButton::clicked, this, &TEdicionCatalogoF::BotonCancelarClick);

    auto* abajo = new QHBoxLayout;
    abajo->addStretch(1);
    abajo->addWidget(cancelar);
    abajo->addWidget(almacenar_);
    capa_ = new QVBoxLayout(this);
    capa_->addWidget(titulo_);
    capa_->addLayout(abajo);
}

void TEdicionCatalogoF::ponContenido(QWidget* contenido) {
    capa_->insertWidget(1, contenido, 1);
}

void TEdicionCatalogoF::error(const QString& mensaje) {
    Sonidos::reproduce(Sonido::Error);
    mensajes_.muestra(mensaje);
}

void TEdicionCatalogoF::BotonAlmacenarClick() {
    if (!almacenar_->isEnabled()) return;
    Sonidos::reproduce(Sonido::Click);
    almacenar_->setEnabled(false); // un segundo toque no duplica el alta
    // Las revisiones que leen la base corren con el registro, tras la leyenda.
    ejecutaConLeyenda(this, QStringLiteral("Registrando Transacción."),
                      [this] { AlmacenaTimer(); });
}

void TEdicionCatalogoF::AlmacenaTimer() {
    almacenar_->setEnabled(true);
    int64_t id = 0;
    QString rechazo;
    try {
        rechazo = almacena(id);
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorRegistro));
        qWarning() << windowTitle() << "almacenar:" << e.what();
        return;
    }
    // Rechazado: todo lo tecleado se queda para corregirlo.
    if (!rechazo.isEmpty()) {
        error(rechazo);
        return;
    }
    emit almacenado(id);
}

void TEdicionCatalogoF::BotonCancelarClick() {
    Sonidos::reproduce(Sonido::Regresar);
    emit cancelado();
}

// ---------------------------------------------------------------------------------------------
// Lista
// ---------------------------------------------------------------------------------------------

TListaCatalogoF::TListaCatalogoF(const QString& nombre, const QString& singular,
                                 const QString& titulo, QWidget* padre)
    : QWidget(padre), singular_(singular) {
    setObjectName(nombre);
    setWindowTitle(titulo);

    pagina_ = new QWidget(this);
    pagina_->setObjectName(QStringLiteral("Selecciona") + singular);
    lista_ = new QListWidget(pagina_);
    lista_->setObjectName(QStringLiteral("Lista") + nombre);
    lista_->setAccessibleName(titulo);
    lista_->setItemDelegate(new DelegadoRenglon(0, lista_));
    lista_->setUniformItemSizes(true);
    lista_->setAlternatingRowColors(true);
    lista_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    lista_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    QScroller::grabGesture(lista_->viewport(), QScroller::LeftMouseButtonGesture);
    connect(lista_, &QListWidget::currentItemChanged, this, &TListaCatalogoF::actualizaAcciones);
    connect(lista_, &QListWidget::itemActivated, this, &TListaCatalogoF::ListaItemActivated);

    pie_ = creaEtiqueta({}, QStringLiteral("Pie") + nombre, "pie", pagina_);
    auto* nuevo = creaBoton(QStringLiteral("Insercion"), QStringLiteral("Nuevo"),
                            QStringLiteral("BotonNuevo"), "primario", pagina_);
    modificar_ = creaBoton(QStringLiteral("Actualizacion"), QStringLiteral("Modificar"),
                           QStringLiteral("BotonModificar"), nullptr, pagina_);
    connect(nuevo, &QPushButton::clicked, this, &TListaCatalogoF::BotonNuevoClick);
    connect(modificar_, &QPushButton::clicked, this, &TListaCatalogoF::BotonModificarClick);

    abajo_ = new QHBoxLayout;
    abajo_->addWidget(pie_, 1);
    abajo_->addWidget(modificar_);
    abajo_->addWidget(nuevo);
    capaLista_ = new QVBoxLayout(pagina_);
    capaLista_->addWidget(lista_, 1);
    capaLista_->addLayout(abajo_);
    ponConteo({}, 0);
}

void TListaCatalogoF::arma(TEdicionCatalogoF* edicion) {
    connect(edicion, &TEdicionCatalogoF::almacenado, this, [this](qint64 id) {
        muestraLista();
        ejecutaConLeyenda(this, QStringLiteral("Cargando Información"),
                          [this, id] { CargaTimer(id); });
    });
    connect(edicion, &TEdicionCatalogoF::cancelado, this, &TListaCatalogoF::muestraLista);

    paginas_ = new QStackedWidget(this);
    paginas_->setObjectName(QStringLiteral("Paginas"));
    paginas_->addWidget(pagina_);
    paginas_->addWidget(edicion);
    auto* capa = new QVBoxLayout(this);
    capa->setContentsMargins(0, 0, 0, 0);
    capa->addWidget(paginas_);
    actualizaAcciones();
    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"), [this] { CargaTimer(0); });
}

void TListaCatalogoF::actualizaAcciones() {
    modificar_->setEnabled(lista_->currentItem() != nullptr);
}

void TListaCatalogoF::error(const QString& mensaje) {
    Sonidos::reproduce(Sonido::Error);
    mensajes_.muestra(mensaje);
}

void TListaCatalogoF::ponConteo(const QString& filtro, int registros) {
    pie_->setText((filtro.isEmpty() ? QStringLiteral("Número de Registros: ")
                                    : QStringLiteral("Registros Filtrados: ")) +
                  QString::number(registros));
}

QLineEdit* TListaCatalogoF::creaBusquedaEnServicio(const QString& indicacion) {
    auto* buscar = new QLineEdit(pagina_);
    buscar->setObjectName(QStringLiteral("Buscar") + singular_);
    buscar->setPlaceholderText(indicacion);
    buscar->setAccessibleName(QStringLiteral("Buscar ") + singular_);
    buscar->setClearButtonEnabled(true);
    buscar->setMinimumHeight(AltoControl);
    buscar->addAction(icono(QStringLiteral("Buscar")), QLineEdit::LeadingPosition);
    capaLista_->insertWidget(0, buscar);
    auto* pausa = new QTimer(this);
    pausa->setSingleShot(true);
    pausa->setInterval(300);
    connect(buscar, &QLineEdit::textChanged, pausa, qOverload<>(&QTimer::start));
    connect(buscar, &QLineEdit::returnPressed, pausa, [this, pausa] {
        pausa->stop();
        CargaTimer(idElegido());
    });
    connect(pausa, &QTimer::timeout, this, [this] { CargaTimer(idElegido()); });
    return buscar;
}

QPushButton* TListaCatalogoF::creaBotonBorrar() {
    auto* borrar = creaBoton(QStringLiteral("Cancelacion"), QStringLiteral("Borrar"),
                             QStringLiteral("BotonBorrar"), "peligro", pagina_);
    borrar->setAccessibleName(QStringLiteral("Borrar ") + singular_);
    abajo_->insertWidget(1, borrar);
    connect(lista_, &QListWidget::currentItemChanged, borrar,
            [this, borrar] { borrar->setEnabled(lista_->currentItem() != nullptr); });
    borrar->setEnabled(false);
    return borrar;
}

void TListaCatalogoF::borraConPregunta(const QString& pregunta, std::function<QString()> elimina) {
    if (!mensajes_.preguntaSiNo(pregunta)) return;
    Sonidos::reproduce(Sonido::Click);
    ejecutaConLeyenda(this, QStringLiteral("Registrando Transacción."),
                      [this, elimina = std::move(elimina)] {
                          QString rechazo;
                          try {
                              rechazo = elimina();
                          } catch (const std::exception& e) {
                              error(QString::fromUtf8(MensajeErrorRegistro) + QStringLiteral("\n") +
                                    QString::fromUtf8(e.what()));
                              qWarning() << windowTitle() << "borrar:" << e.what();
                              return;
                          }
                          if (!rechazo.isEmpty()) {
                              error(rechazo);
                              return;
                          }
                          CargaTimer(0);
                      });
}

void TListaCatalogoF::muestraLista() {
    paginas_->setCurrentIndex(PaginaLista);
}

void TListaCatalogoF::muestraEdicion() {
    paginas_->setCurrentIndex(PaginaEdicion);
}

int64_t TListaCatalogoF::idElegido() const {
    const QListWidgetItem* item = lista_->currentItem();
    return item ? item->data(RolID).toLongLong() : 0;
}

void TListaCatalogoF::ListaItemActivated(QListWidgetItem* item) {
    if (!item) return;
    lista_->setCurrentItem(item);
    BotonModificarClick();
}

} // namespace cajaplex
