#include "catalog/SelectorProductos.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPixmap>
#include <QScroller>
#include <QSplitter>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <QtDebug>

#include "catalog/ArbolLineas.h"
#include "catalog/CatalogoProductos.h"
#include "datos/MensajesComunes.h"
#include "datos/ModuloDatos.h"
#include "pantallas/DelegadoRenglon.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/Sonidos.h"

namespace cajaplex {

namespace {

constexpr int kIconoLinea = 28;
const QString kSinRegistros = QStringLiteral("No se localizaron registros con esa Información");

} // namespace

TSelectorProductosF::TSelectorProductosF(const Sesion& sesion, const QString& titulo,
                                         QWidget* padre,
                                         std::function<QString(const QString&)> ajustaListado)
    : QWidget(padre), sesion_(sesion), ajustaListado_(std::move(ajustaListado)),
      ListadoProductos(ModuloDeDatos.ConexionBD, QString()) {
    setObjectName(QStringLiteral("SelectorProductos"));
    productos_ = new ModeloProductos(this);

    buscar_ = new QLineEdit(this);
    buscar_->setObjectName(QStringLiteral("BuscarProducto"));
    buscar_->setPlaceholderText(QStringLiteral("Clave, Descripción ó Código de Barra"));
    buscar_->setAccessibleName(QStringLiteral("Buscar Producto"));
    buscar_->setClearButtonEnabled(true);
    buscar_->setMinimumHeight(AltoControl);
    buscar_->addAction(icono(QStringLiteral("Buscar")), QLineEdit::LeadingPosition);
    connect(buscar_, &QLineEdit::returnPressed, this,
            &TSelectorProductosF::BuscarProductoReturnPressed);

    arbol_ = new QTreeWidget(this);
    arbol_->setObjectName(QStringLiteral("Lineas"));
    arbol_->setAccessibleName(QStringLiteral("Líneas"));
    arbol_->setColumnCount(1);
    arbol_->setHeaderLabels({QStringLiteral("Líneas")});
    arbol_->setIconSize(QSize(kIconoLinea, kIconoLinea));
    arbol_->setUniformRowHeights(true);
    arbol_->setIndentation(20);
    arbol_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    QScroller::grabGesture(arbol_->viewport(), QScroller::LeftMouseButtonGesture);
    connect(arbol_, &QTreeWidget::itemClicked, this, &TSelectorProductosF::LineasItemClick);

    titulo_ = creaEtiqueta(QStringLiteral("Toque una Línea o busque un Producto"),
                           QStringLiteral("TituloDisponibles"), nullptr, this);
    titulo_->setWordWrap(true);
    lista_ = new QListView(this);
    lista_->setObjectName(QStringLiteral("ProductosDisponibles"));
    lista_->setAccessibleName(QStringLiteral("Productos Disponibles"));
    lista_->setModel(productos_);
    lista_->setItemDelegate(new DelegadoRenglon(0, lista_));
    lista_->setUniformItemSizes(true);
    lista_->setAlternatingRowColors(true);
    lista_->setSelectionMode(QAbstractItemView::SingleSelection);
    lista_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    lista_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    lista_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    QScroller::grabGesture(lista_->viewport(), QScroller::LeftMouseButtonGesture);
    connect(lista_, &QListView::clicked, this, &TSelectorProductosF::ProductosDisponiblesClick);

    auto* productos = new QWidget(this);
    auto* capaProductos = new QVBoxLayout(productos);
    capaProductos->setContentsMargins(0, 0, 0, 0);
    capaProductos->addWidget(titulo_);
    capaProductos->addWidget(lista_, 1);
    division_ = new QSplitter(Qt::Horizontal, this);
    division_->addWidget(arbol_);
    division_->addWidget(productos);
    division_->setStretchFactor(0, 2);
    division_->setStretchFactor(1, 3);

    busquedas_ = new QHBoxLayout;
    busquedas_->addWidget(buscar_, 3);
    auto* capa = new QVBoxLayout(this);
    capa->setContentsMargins(0, 0, 0, 0);
    capa->addWidget(creaEtiqueta(titulo, QStringLiteral("Disponibles"), "subtitulo", this));
    capa->addLayout(busquedas_);
    capa->addWidget(division_, 1);
}

void TSelectorProductosF::agregaABusqueda(QWidget* control, int estiramiento) {
    busquedas_->insertWidget(0, control, estiramiento);
}

void TSelectorProductosF::ponOrientacion(Qt::Orientation orientacion) {
    division_->setOrientation(orientacion);
    // Apilados, el árbol y los productos se reparten el alto por igual.
    division_->setStretchFactor(0, orientacion == Qt::Vertical ? 1 : 2);
}

void TSelectorProductosF::ponLineas(const std::vector<LineaProducto>& lineas) {
    arbol_->clear();
    agregaLineas(*arbol_, lineas, [](const LineaProducto& l) {
        auto* item = new QTreeWidgetItem(QStringList{l.linea});
        item->setData(0, RolLineaID, QVariant::fromValue<qlonglong>(l.id));
        QPixmap miniatura;
        if (!l.miniatura.isEmpty() && miniatura.loadFromData(l.miniatura))
            item->setIcon(0, QIcon(miniatura));
        else
            item->setIcon(0, icono(QStringLiteral("Lineas")));
        return item;
    });
}

void TSelectorProductosF::cargaLineas() {
    ponLineas(CatalogoLineas(ModuloDeDatos.ConexionBD, sesion_).consulta());
}

void TSelectorProductosF::error(const QString& mensaje) {
    Sonidos::reproduce(Sonido::Error);
    mensajes_.muestra(mensaje);
}

void TSelectorProductosF::LineasItemClick(QTreeWidgetItem* item) {
    if (!item) return;
    Sonidos::reproduce(Sonido::Click);
    titulo_->setText(item->text(0));
    const QString sql =
        sqlProductosXLinea(sesion_.EmpresaID, item->data(0, RolLineaID).toLongLong());
    ejecutaConLeyenda(this, QStringLiteral("Cargando Productos"),
                      [this, sql] { CargaDisponiblesTimer(sql); });
}

void TSelectorProductosF::BuscarProductoReturnPressed() {
    Sonidos::reproduce(Sonido::Click);
    const QString texto = buscar_->text().trimmed();
    titulo_->setText(QStringLiteral("Búsqueda: ") + texto);
    const QString sql = sqlBusquedaProductos(sesion_.EmpresaID, texto);
    ejecutaConLeyenda(this, QStringLiteral("Cargando Productos"),
                      [this, sql] { CargaDisponiblesTimer(sql); });
}

void TSelectorProductosF::CargaDisponiblesTimer(const QString& sql) {
    try {
        // Dentro del try: un ajuste que no entiende el listado es un error de programación, que
        // se muestra como falla de lectura.
        ListadoProductos.asignaSql(ajustaListado_ ? ajustaListado_(sql) : sql);
        ListadoProductos.abre();
        // También lanza (ErrorProgramacion) si al listado le falta una columna.
        productos_->asigna(ListadoProductos.registros());
    } catch (const ErrorServicio& e) {
        ListadoProductos.cierra();
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Productos disponibles:" << e.mensaje();
        return;
    }
    ListadoProductos.cierra();
    if (productos_->rowCount() == 0) error(kSinRegistros);
}

void TSelectorProductosF::ProductosDisponiblesClick(const QModelIndex& indice) {
    if (!indice.isValid()) return;
    Sonidos::reproduce(Sonido::Click);
    const ProductoListado& p = productos_->producto(indice.row());
    emit elegido(p.id, p.clave);
}

} // namespace cajaplex
