#include "catalog/IncrementoPrecios.h"

#include <QDoubleValidator>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QLocale>
#include <QPushButton>
#include <QScroller>
#include <QStackedWidget>
#include <QTableWidget>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <QtDebug>

#include "catalog/ArbolLineas.h"
#include "catalog/CatalogoProductos.h"
#include "datos/ModuloDatos.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/Sonidos.h"

namespace cajaplex {
namespace {

constexpr int kAltoRenglon = 44;
const QString kTodosLosProductos = QStringLiteral("TODOS LOS PRODUCTOS");

const QStringList kTitulosPaso = {
    QStringLiteral("Seleccione Línea"), QStringLiteral("Indique Valor de Referencia"),
    QStringLiteral("Establezca Porcentajes de Incremento"), QStringLiteral("Vista Previa")};

QTableWidgetItem* celda(const QString& texto, Qt::Alignment alineacion = Qt::AlignLeft) {
    auto* item = new QTableWidgetItem(texto);
    item->setTextAlignment(alineacion | Qt::AlignVCenter);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    return item;
}

// El importe con dos decimales a la vista; el valor completo en Qt::UserRole.
QTableWidgetItem* celdaImporte(double valor, bool destacado = false) {
    QTableWidgetItem* item = celda(textoPrecio(valor), Qt::AlignRight);
    item->setData(Qt::UserRole, valor);
    if (destacado) {
        QFont letra = item->font();
        letra.setBold(true);
        item->setFont(letra);
    }
    return item;
}

} // namespace

void llenaArbolLineas(QTreeWidget* arbol, const std::vector<LineaProducto>& lineas,
                      const QString& todas) {
    arbol->clear();
    auto* primero = new QTreeWidgetItem(QStringList{todas});
    primero->setData(0, RolLineaElegida, QVariant::fromValue<qlonglong>(TodasLasLineas));
    primero->setIcon(0, icono(QStringLiteral("Productos")));
    arbol->addTopLevelItem(primero);
    agregaLineas(*arbol, lineas, [](const LineaProducto& l) {
        auto* item = new QTreeWidgetItem(QStringList{l.linea});
        item->setData(0, RolLineaElegida, QVariant::fromValue<qlonglong>(l.id));
        item->setIcon(0, icono(QStringLiteral("Lineas")));
        return item;
    });
}

TIncrementoPreciosF::TIncrementoPreciosF(const Sesion& sesion, QWidget* padre)
    : QWidget(padre), sesion_(sesion) {
    setObjectName(QStringLiteral("IncrementoPrecios"));
    setWindowTitle(QStringLiteral("Incremento de Precios"));

    tituloPaso_ = creaEtiqueta({}, QStringLiteral("TituloPaso"), "titulo", this);
    numeroPaso_ = creaEtiqueta({}, QStringLiteral("NumeroPaso"), "subtitulo", this);
    auto* encabezado = new QHBoxLayout;
    encabezado->addWidget(tituloPaso_, 1);
    encabezado->addWidget(numeroPaso_);

    paginas_ = new QStackedWidget(this);
    paginas_->setObjectName(QStringLiteral("Paginas"));
    paginas_->addWidget(creaPaginaLinea());
    paginas_->addWidget(creaPaginaReferencia());
    paginas_->addWidget(creaPaginaPorcentajes());
    paginas_->addWidget(creaPaginaVistaPrevia());

    anterior_ = new QPushButton(QStringLiteral("Anterior"), this);
    anterior_->setObjectName(QStringLiteral("GrupoBotonAnterior"));
    anterior_->setMinimumSize(160, AltoControl);
    connect(anterior_, &QPushButton::clicked, this, &TIncrementoPreciosF::GrupoBotonAnteriorClick);
    siguiente_ = new QPushButton(this);
    siguiente_->setObjectName(QStringLiteral("GrupoBotonSiguiente"));
    siguiente_->setMinimumSize(160, AltoControl);
    ponEstilo(siguiente_, "primario");
    connect(siguiente_, &QPushButton::clicked, this,
            &TIncrementoPreciosF::GrupoBotonSiguienteClick);
    auto* botones = new QHBoxLayout;
    botones->addStretch(1);
    botones->addWidget(anterior_);
    botones->addWidget(siguiente_);

    auto* capa = new QVBoxLayout(this);
    capa->addLayout(encabezado);
    capa->addWidget(paginas_, 1);
    capa->addLayout(botones);
    muestraPagina(PaginaLinea);

    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"), [this] { CargaLineasTimer(); });
}

QWidget* TIncrementoPreciosF::creaPaginaLinea() {
    auto* pagina = new QWidget;
    pagina->setObjectName(QStringLiteral("SeleccionaLinea"));
    lineas_ = new QTreeWidget(pagina);
    lineas_->setObjectName(QStringLiteral("Lineas"));
    lineas_->setColumnCount(1);
    lineas_->setHeaderLabels({QStringLiteral("Seleccione una Línea")});
    lineas_->setIconSize(QSize(28, 28));
    lineas_->setUniformRowHeights(true);
    lineas_->setIndentation(28);
    lineas_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    QScroller::grabGesture(lineas_->viewport(), QScroller::LeftMouseButtonGesture);
    auto* capa = new QVBoxLayout(pagina);
    capa->setContentsMargins(0, 0, 0, 0);
    capa->addWidget(lineas_);
    return pagina;
}

QWidget* TIncrementoPreciosF::creaPaginaReferencia() {
    auto* pagina = new QWidget;
    pagina->setObjectName(QStringLiteral("SeleccionaReferencia"));
    referencias_ = new QListWidget(pagina);
    referencias_->setObjectName(QStringLiteral("ValoresReferencia"));
    QFont letra = referencias_->font();
    letra.setPointSize(14);
    for (const QString& nombre : nombresReferencia()) {
        auto* item = new QListWidgetItem(nombre, referencias_);
        item->setSizeHint(QSize(0, 56));
        item->setFont(letra);
    }
    referencias_->setMaximumWidth(480);
    auto* capa = new QVBoxLayout(pagina);
    capa->setContentsMargins(0, 0, 0, 0);
    capa->addWidget(creaEtiqueta(QStringLiteral("Seleccione un Valor de Referencia"),
                                 QStringLiteral("IndicacionReferencia"), "subtitulo", pagina));
    capa->addWidget(referencias_, 1);
    return pagina;
}

QWidget* TIncrementoPreciosF::creaPaginaPorcentajes() {
    auto* pagina = new QWidget;
    pagina->setObjectName(QStringLiteral("EstablecePorcentajes"));
    auto* tarjeta = new QFrame(pagina);
    ponEstilo(tarjeta, "tarjeta");
    auto* rejilla = new QGridLayout(tarjeta);
    rejilla->setHorizontalSpacing(16);
    rejilla->setVerticalSpacing(12);
    rejilla->addWidget(creaEtiqueta(QStringLiteral("Introduzca el Porcentaje"),
                                    QStringLiteral("IndicacionPorcentajes"), "subtitulo", tarjeta),
                       0, 0, 1, 3);
    // El punto decimal siempre, como se muestra "0.00"; un precio puede también bajar.
    auto* validador = new QDoubleValidator(-100.0, 1000.0, 2, pagina);
    validador->setNotation(QDoubleValidator::StandardNotation);
    validador->setLocale(QLocale::c());
    for (int i = 0; i < NivelesPrecio; ++i) {
        const QString nivel = QStringLiteral("Precio ") + QString::number(i + 1);
        auto* campo = new QLineEdit(QStringLiteral("0.00"), tarjeta);
        campo->setObjectName(QStringLiteral("PorcentajePrecio") + QString::number(i + 1));
        campo->setPlaceholderText(QStringLiteral("Introduzca el Porcentaje"));
        campo->setValidator(validador);
        campo->setAlignment(Qt::AlignRight);
        campo->setMinimumHeight(AltoControl);
        campo->setMaximumWidth(200);
        auto* titulo =
            creaEtiqueta(nivel, QStringLiteral("Etiqueta") + campo->objectName(), nullptr, tarjeta);
        titulo->setBuddy(campo);
        rejilla->addWidget(titulo, i + 1, 0);
        rejilla->addWidget(campo, i + 1, 1);
        rejilla->addWidget(new QLabel(QStringLiteral("%"), tarjeta), i + 1, 2);
        porcentajes_[static_cast<size_t>(i)] = campo;
    }
    rejilla->setColumnStretch(3, 1);
    auto* capa = new QVBoxLayout(pagina);
    capa->setContentsMargins(0, 0, 0, 0);
    capa->addWidget(tarjeta);
    capa->addStretch(1);
    return pagina;
}

QWidget* TIncrementoPreciosF::creaPaginaVistaPrevia() {
    auto* pagina = new QWidget;
    pagina->setObjectName(QStringLiteral("VistaPrevia"));
    resumen_ = creaEtiqueta({}, QStringLiteral("ResumenIncremento"), "subtitulo", pagina);

    QStringList columnas{QStringLiteral("Clave"), QStringLiteral("Descripción"),
                         QStringLiteral("Unidad"), QStringLiteral("Costo")};
    for (int i = 1; i <= NivelesPrecio; ++i)
        columnas << QStringLiteral("Precio ") + QString::number(i)
                 << QStringLiteral("Nuevo ") + QString::number(i);
    productos_ = new QTableWidget(0, static_cast<int>(columnas.size()), pagina);
    productos_->setObjectName(QStringLiteral("Productos"));
    productos_->setHorizontalHeaderLabels(columnas);
    productos_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    productos_->setSelectionBehavior(QAbstractItemView::SelectRows);
    productos_->setSelectionMode(QAbstractItemView::SingleSelection);
    productos_->setAlternatingRowColors(true);
    productos_->setWordWrap(false);
    productos_->verticalHeader()->hide();
    productos_->verticalHeader()->setDefaultSectionSize(kAltoRenglon);
    productos_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    QScroller::grabGesture(productos_->viewport(), QScroller::LeftMouseButtonGesture);
    QHeaderView* encabezado = productos_->horizontalHeader();
    encabezado->setSectionResizeMode(QHeaderView::Fixed);
    encabezado->setSectionResizeMode(1, QHeaderView::Stretch);
    productos_->setColumnWidth(0, 70);
    productos_->setColumnWidth(2, 80);
    for (int c = 3; c < productos_->columnCount(); ++c)
        productos_->setColumnWidth(c, 82);

    pie_ = creaEtiqueta(QStringLiteral("Total Productos: 0"), QStringLiteral("PieProductos"), "pie",
                        pagina);
    auto* capa = new QVBoxLayout(pagina);
    capa->setContentsMargins(0, 0, 0, 0);
    capa->addWidget(resumen_);
    capa->addWidget(productos_, 1);
    capa->addWidget(pie_);
    return pagina;
}

void TIncrementoPreciosF::error(const QString& mensaje) {
    Sonidos::reproduce(Sonido::Error);
    mensajes_.muestra(mensaje);
}

void TIncrementoPreciosF::muestraPagina(int pagina) {
    paginas_->setCurrentIndex(pagina);
    tituloPaso_->setText(kTitulosPaso.at(pagina));
    numeroPaso_->setText(QStringLiteral("Paso ") + QString::number(pagina + 1) +
                         QStringLiteral(" de ") + QString::number(paginas_->count()));
    anterior_->setEnabled(pagina > PaginaLinea);
    siguiente_->setText(pagina == PaginaVistaPrevia ? QStringLiteral("Almacenar")
                                                    : QStringLiteral("Siguiente"));
}

void TIncrementoPreciosF::CargaLineasTimer() {
    try {
        llenaArbolLineas(lineas_, lineasParaElegir(ModuloDeDatos.ConexionBD, sesion_.EmpresaID),
                         kTodosLosProductos);
    } catch (const ErrorServicio& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Incremento de Precios, líneas:" << e.mensaje();
    }
}

std::optional<PorcentajesIncremento> TIncrementoPreciosF::porcentajesTecleados() const {
    PorcentajesIncremento valores{};
    bool alguno = false;
    for (size_t i = 0; i < porcentajes_.size(); ++i) {
        // Lo que el validador deja a medias ("-", ".") cuenta como vacío.
        bool ok = false;
        const double v = QLocale::c().toDouble(porcentajes_[i]->text().trimmed(), &ok);
        valores[i] = ok ? v : 0.0;
        alguno = alguno || valores[i] != 0.0;
    }
    if (!alguno) return std::nullopt;
    return valores;
}

void TIncrementoPreciosF::GrupoBotonAnteriorClick() {
    const int actual = paginas_->currentIndex();
    if (actual == PaginaLinea) return;
    Sonidos::reproduce(Sonido::Click);
    muestraPagina(actual - 1);
}

void TIncrementoPreciosF::GrupoBotonSiguienteClick() {
    // Se revisa la selección y no el renglón actual: al recibir el foco una vista fija un renglón
    // actual que nadie eligió.
    switch (paginas_->currentIndex()) {
    case PaginaLinea:
        if (lineas_->selectedItems().isEmpty()) {
            error(QStringLiteral("Debe seleccionar una línea"));
            return;
        }
        Sonidos::reproduce(Sonido::Click);
        muestraPagina(PaginaReferencia);
        return;
    case PaginaReferencia:
        if (referencias_->selectedItems().isEmpty()) {
            error(QStringLiteral("Debe seleccionar un valor de referencia"));
            return;
        }
        Sonidos::reproduce(Sonido::Click);
        muestraPagina(PaginaPorcentajes);
        return;
    case PaginaPorcentajes: {
        const std::optional<PorcentajesIncremento> porcentajes = porcentajesTecleados();
        if (!porcentajes) {
            error(QStringLiteral("Debe introducir al menos un porcentaje de incremento"));
            return;
        }
        Sonidos::reproduce(Sonido::Click);
        const QTreeWidgetItem* linea = lineas_->selectedItems().constFirst();
        const int referencia = referencias_->row(referencias_->selectedItems().constFirst());
        const Solicitud solicitud{linea->data(0, RolLineaElegida).toLongLong(), linea->text(0),
                                  static_cast<ReferenciaPrecio>(referencia), *porcentajes};
        ejecutaConLeyenda(this, QStringLiteral("Obteniendo Información"),
                          [this, solicitud] { CargaVistaPreviaTimer(solicitud); });
        return;
    }
    case PaginaVistaPrevia:
        if (!solicitud_) return;
        if (!mensajes_.pregunta(QStringLiteral("¿Desea Almacenar los Cambios?"))) return;
        Sonidos::reproduce(Sonido::Click);
        ejecutaConLeyenda(this, QStringLiteral("Actualizando Precios"),
                          [this] { ActualizaPreciosTimer(); });
        return;
    default:
        return;
    }
}

void TIncrementoPreciosF::CargaVistaPreviaTimer(const Solicitud& solicitud) {
    Consulta vista(ModuloDeDatos.ConexionBD,
                   sqlVistaPreviaIncremento(sesion_.EmpresaID, solicitud.lineaID));
    try {
        vista.abre();
    } catch (const ErrorServicio& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Incremento de Precios, vista previa:" << e.mensaje();
        return;
    }
    if (vista.numeroRegistros() == 0) {
        error(QStringLiteral("No hay productos para incrementar precios"));
        return;
    }
    solicitud_ = solicitud;
    llenaVistaPrevia(
        vistaPreviaIncremento(vista.registros(), solicitud.referencia, solicitud.porcentajes));
    QStringList textos;
    for (const double p : solicitud.porcentajes)
        textos << QLocale::c().toString(p, 'f', 2) + QLatin1Char('%');
    resumen_->setText(QStringLiteral("Línea: ") + solicitud.linea +
                      QStringLiteral("   Referencia: ") +
                      nombresReferencia().at(static_cast<int>(solicitud.referencia)) +
                      QStringLiteral("   Porcentajes: ") + textos.join(QStringLiteral(", ")));
    muestraPagina(PaginaVistaPrevia);
}

void TIncrementoPreciosF::llenaVistaPrevia(const std::vector<ProductoIncremento>& productos) {
    productos_->clearContents();
    productos_->setRowCount(static_cast<int>(productos.size()));
    int fila = 0;
    for (const ProductoIncremento& p : productos) {
        productos_->setItem(fila, 0, celda(p.clave));
        productos_->setItem(fila, 1, celda(p.producto));
        productos_->setItem(fila, 2, celda(p.unidad));
        productos_->setItem(fila, 3, celdaImporte(p.costo));
        for (size_t i = 0; i < p.precios.size(); ++i) {
            const int columna = 4 + 2 * static_cast<int>(i);
            productos_->setItem(fila, columna, celdaImporte(p.precios[i]));
            productos_->setItem(fila, columna + 1, celdaImporte(p.nuevos[i], true));
        }
        ++fila;
    }
    productos_->scrollToTop();
    pie_->setText(QStringLiteral("Total Productos: ") + QString::number(productos.size()));
}

void TIncrementoPreciosF::ActualizaPreciosTimer() {
    if (!solicitud_) return;
    const Solicitud s = *solicitud_;
    try {
        aplicaIncrementoPrecios(ModuloDeDatos.ConexionBD, sesion_, s.lineaID, s.linea, s.referencia,
                                s.porcentajes);
    } catch (const ErrorServicio& e) {
        error(QString::fromUtf8(MensajeErrorRegistro));
        qWarning() << "Incremento de Precios, actualización:" << e.mensaje();
        return;
    }
    solicitud_.reset();
    productos_->setRowCount(0);
    pie_->setText(QStringLiteral("Total Productos: 0"));
    mensajes_.muestra(QStringLiteral("Proceso finalizado con Éxito"));
    muestraPagina(PaginaLinea);
}

} // namespace cajaplex
