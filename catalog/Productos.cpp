#include "catalog/Productos.h"

#include <memory>

#include <QCalendarWidget>
#include <QCloseEvent>
#include <QDateEdit>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QPixmap>
#include <QPointer>
#include <QPushButton>
#include <QScroller>
#include <QStackedWidget>
#include <QTabWidget>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QVBoxLayout>
#include <QtDebug>

#include "catalog/ArbolLineas.h"
#include "catalog/AsignaFotoLinea.h"
#include "catalog/ProductosEdita.h"
#include "datos/ModuloDatos.h"
#include "pantallas/DelegadoRenglon.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/RolesRenglon.h"
#include "pantallas/Sonidos.h"

namespace cajaplex {
namespace {

enum Pagina { PaginaLineas, PaginaProductos, PaginaFechas, PaginaKardex };

const QString kFormatoFecha = QStringLiteral("dd/MM/yyyy");
const QString kImagenLineaVacia = QStringLiteral("Lineas");
constexpr int kIconoLinea = 32;
constexpr int kIconoKardex = 40;

const QString kTituloNodo = QStringLiteral("Introduzca el Nombre del Nodo");
constexpr int kLargoNombreNodo = 255;

QIcon iconoLinea(const QByteArray& miniatura, QString& imagen) {
    QPixmap pixmap;
    if (!miniatura.isEmpty() && pixmap.loadFromData(miniatura)) {
        imagen = QStringLiteral("miniatura");
        return QIcon(pixmap);
    }
    imagen = kImagenLineaVacia;
    return icono(kImagenLineaVacia);
}

void ponIconoLinea(QTreeWidgetItem* item, const QByteArray& miniatura) {
    QString imagen;
    item->setIcon(0, iconoLinea(miniatura, imagen));
    item->setData(0, TProductosF::RolImagenLinea, imagen);
}

QTreeWidgetItem* creaNodo(int64_t id, int64_t padre, const QString& nombre,
                          const QByteArray& miniatura) {
    auto* item = new QTreeWidgetItem(QStringList{nombre});
    item->setData(0, TProductosF::RolLineaID, QVariant::fromValue<qlonglong>(id));
    item->setData(0, TProductosF::RolPadre, QVariant::fromValue<qlonglong>(padre));
    ponIconoLinea(item, miniatura);
    return item;
}

int64_t idDe(const QTreeWidgetItem* item, int rol = TProductosF::RolLineaID) {
    return item->data(0, rol).toLongLong();
}

// "Abarrotes / Granos y Semillas": el título de los productos de una línea.
QString rutaDe(const QTreeWidgetItem* item) {
    QStringList partes;
    for (const QTreeWidgetItem* i = item; i; i = i->parent())
        partes.prepend(i->text(0));
    return partes.join(QStringLiteral(" / "));
}

} // namespace

const QStringList& TProductosF::opcionesMenuArbol() {
    static const QStringList opciones = {
        QStringLiteral("Crear Nodo"),     QStringLiteral("Crear SubNodo"),
        QStringLiteral("Renombrar Nodo"), QStringLiteral("Eliminar Nodo"),
        QStringLiteral("Asignar Foto"),   QStringLiteral("Ver Productos")};
    return opciones;
}

TProductosF::TProductosF(const Sesion& sesion, QWidget* padre)
    : QWidget(padre), sesion_(sesion), catalogo_(ModuloDeDatos.ConexionBD, sesion),
      kardex_(ModuloDeDatos.ConexionBD), ListadoProductos(ModuloDeDatos.ConexionBD, QString()) {
    setObjectName(QStringLiteral("Productos"));
    setWindowTitle(QStringLiteral("Catálogo de Productos"));

    modelo_ = new ModeloProductos(this);
    filtro_ = new FiltroProductos(modelo_, this);

    buscarProducto_ = new QLineEdit(this);
    buscarProducto_->setObjectName(QStringLiteral("BuscarProducto"));
    buscarProducto_->setPlaceholderText(QStringLiteral("Clave, Descripción ó Código de Barra"));
    buscarProducto_->setClearButtonEnabled(true);
    buscarProducto_->setMinimumHeight(AltoControl);
    buscarProducto_->addAction(icono(QStringLiteral("Buscar")), QLineEdit::LeadingPosition);
    connect(buscarProducto_, &QLineEdit::returnPressed, this,
            &TProductosF::BuscarProductoReturnPressed);

    paginas_ = new QTabWidget(this);
    paginas_->setObjectName(QStringLiteral("Paginas"));
    paginas_->addTab(creaPaginaLineas(), icono(QStringLiteral("Lineas")), QStringLiteral("Líneas"));
    paginas_->addTab(creaPaginaProductos(), icono(QStringLiteral("Productos")),
                     QStringLiteral("Productos"));
    paginas_->addTab(creaPaginaFechas(), icono(QStringLiteral("Kardex")), QStringLiteral("Kardex"));
    paginas_->addTab(creaPaginaKardex(), icono(QStringLiteral("Kardex")),
                     QStringLiteral("Movimientos"));
    // El kardex es de un producto: se abre desde el listado.
    paginas_->setTabEnabled(PaginaFechas, false);
    paginas_->setTabEnabled(PaginaKardex, false);

    auto* catalogo = new QWidget;
    catalogo->setObjectName(QStringLiteral("CatalogoProductos"));
    auto* capaCatalogo = new QVBoxLayout(catalogo);
    capaCatalogo->setContentsMargins(0, 0, 0, 0);
    capaCatalogo->addWidget(buscarProducto_);
    capaCatalogo->addWidget(paginas_, 1);
    contenido_ = new QStackedWidget(this);
    contenido_->setObjectName(QStringLiteral("ContenidoProductos"));
    contenido_->addWidget(catalogo);

    auto* capa = new QVBoxLayout(this);
    capa->addWidget(contenido_);

    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"), [this] { CargaLineasTimer(); });
}

QWidget* TProductosF::creaPaginaLineas() {
    auto* pagina = new QWidget;
    pagina->setObjectName(QStringLiteral("SeleccionaLinea"));
    lineas_ = new QTreeWidget(pagina);
    lineas_->setObjectName(QStringLiteral("Lineas"));
    lineas_->setColumnCount(1);
    lineas_->setHeaderLabels({QStringLiteral("Líneas")});
    lineas_->setIconSize(QSize(kIconoLinea, kIconoLinea));
    lineas_->setUniformRowHeights(true);
    lineas_->setIndentation(28);
    lineas_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    QScroller::grabGesture(lineas_->viewport(), QScroller::LeftMouseButtonGesture);
    connect(lineas_, &QTreeWidget::itemClicked, this, &TProductosF::LineasItemClick);

    // Una empresa sin líneas no tendría nodo que tocar para crear la primera.
    primeraLinea_ =
        new QPushButton(icono(QStringLiteral("Lineas")), QStringLiteral("Crear Línea"), pagina);
    primeraLinea_->setObjectName(QStringLiteral("CrearPrimeraLinea"));
    primeraLinea_->setMinimumHeight(AltoControl);
    ponEstilo(primeraLinea_, "primario");
    primeraLinea_->hide();
    connect(primeraLinea_, &QPushButton::clicked, this, &TProductosF::CrearPrimeraLineaClick);

    auto* capa = new QVBoxLayout(pagina);
    capa->addWidget(creaEtiqueta(QStringLiteral("Toque una Línea para ver sus opciones"),
                                 QStringLiteral("IndicacionLineas"), "subtitulo", pagina));
    capa->addWidget(lineas_, 1);
    capa->addWidget(primeraLinea_, 0, Qt::AlignLeft);
    return pagina;
}

QWidget* TProductosF::creaPaginaProductos() {
    auto* pagina = new QWidget;
    pagina->setObjectName(QStringLiteral("SeleccionaProducto"));
    tituloProductos_ = creaEtiqueta({}, QStringLiteral("TituloProductos"), "titulo", pagina);

    buscarTexto_ = new QLineEdit(pagina);
    buscarTexto_->setObjectName(QStringLiteral("BuscarTexto"));
    buscarTexto_->setPlaceholderText(QStringLiteral("Filtrar los productos listados"));
    buscarTexto_->setClearButtonEnabled(true);
    buscarTexto_->setMinimumHeight(AltoControl);
    connect(buscarTexto_, &QLineEdit::textChanged, this, &TProductosF::BuscarTextoChange);

    productos_ = new QListView(pagina);
    productos_->setObjectName(QStringLiteral("Productos"));
    productos_->setModel(filtro_);
    productos_->setItemDelegate(new DelegadoRenglon(0, productos_));
    // Todos los renglones miden lo mismo: la vista no mide miles de renglones uno por uno.
    productos_->setUniformItemSizes(true);
    productos_->setAlternatingRowColors(true);
    productos_->setSelectionMode(QAbstractItemView::SingleSelection);
    productos_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    productos_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    productos_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    QScroller::grabGesture(productos_->viewport(), QScroller::LeftMouseButtonGesture);
    connect(productos_->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &TProductosF::actualizaAcciones);
    connect(productos_, &QListView::activated, this, &TProductosF::ProductosItemActivated);

    pieProductos_ = creaEtiqueta(QStringLiteral("Total Registros: 0"),
                                 QStringLiteral("PieProductos"), "pie", pagina);
    botonModificar_ = new QPushButton(icono(QStringLiteral("Actualizacion")),
                                      QStringLiteral("Modificar"), pagina);
    botonModificar_->setObjectName(QStringLiteral("BotonModificar"));
    botonModificar_->setMinimumHeight(AltoControl);
    ponEstilo(botonModificar_, "primario");
    connect(botonModificar_, &QPushButton::clicked, this, &TProductosF::BotonModificarClick);
    botonNuevo_ = new QPushButton(icono(QStringLiteral("Insercion")),
                                  QStringLiteral("Nuevo Producto"), pagina);
    botonNuevo_->setObjectName(QStringLiteral("BotonNuevoProducto"));
    botonNuevo_->setMinimumHeight(AltoControl);
    connect(botonNuevo_, &QPushButton::clicked, this, &TProductosF::BotonNuevoProductoClick);
    botonKardex_ =
        new QPushButton(icono(QStringLiteral("Kardex")), QStringLiteral("Kardex"), pagina);
    botonKardex_->setObjectName(QStringLiteral("BotonKardex"));
    botonKardex_->setMinimumHeight(AltoControl);
    connect(botonKardex_, &QPushButton::clicked, this, &TProductosF::BotonKardexClick);
    botonBorrar_ =
        new QPushButton(icono(QStringLiteral("Cancelacion")), QStringLiteral("Borrar"), pagina);
    botonBorrar_->setObjectName(QStringLiteral("BotonBorrar"));
    botonBorrar_->setMinimumHeight(AltoControl);
    ponEstilo(botonBorrar_, "peligro");
    connect(botonBorrar_, &QPushButton::clicked, this, &TProductosF::BotonBorrarClick);

    auto* abajo = new QHBoxLayout;
    abajo->addWidget(pieProductos_, 1);
    abajo->addWidget(botonNuevo_);
    abajo->addWidget(botonModificar_);
    abajo->addWidget(botonKardex_);
    abajo->addWidget(botonBorrar_);

    auto* capa = new QVBoxLayout(pagina);
    capa->addWidget(tituloProductos_);
    capa->addWidget(buscarTexto_);
    capa->addWidget(productos_, 1);
    capa->addLayout(abajo);
    actualizaAcciones();
    return pagina;
}

QWidget* TProductosF::creaPaginaFechas() {
    auto* pagina = new QWidget;
    pagina->setObjectName(QStringLiteral("ConsultaFechaKardex"));
    productoFechas_ = creaEtiqueta({}, QStringLiteral("ProductoKardex"), "titulo", pagina);

    auto* tarjeta = new QFrame(pagina);
    ponEstilo(tarjeta, "tarjeta");
    auto* rejilla = new QGridLayout(tarjeta);
    // Cada elemento con su nombre arriba y su ayuda abajo; el calendario, grande para el dedo.
    auto creaFecha = [&](const QString& nombre, const QString& texto, QDate fecha, int columna) {
        auto* titulo =
            creaEtiqueta(texto, QStringLiteral("Etiqueta") + nombre, "subtitulo", tarjeta);
        auto* campo = new QDateEdit(fecha, tarjeta);
        campo->setObjectName(nombre);
        campo->setCalendarPopup(true);
        campo->setDisplayFormat(kFormatoFecha);
        campo->setMinimumHeight(AltoControl);
        campo->calendarWidget()->setMinimumSize(380, 300);
        const QString ayuda = QStringLiteral("Presione aquí para modificar fecha");
        campo->setToolTip(ayuda);
        titulo->setBuddy(campo);
        rejilla->addWidget(titulo, 0, columna);
        rejilla->addWidget(campo, 1, columna);
        rejilla->addWidget(creaEtiqueta(ayuda, QStringLiteral("Ayuda") + nombre, nullptr, tarjeta),
                           2, columna);
        return campo;
    };
    const QDate hoy = QDate::currentDate();
    fechaInicio_ = creaFecha(QStringLiteral("FechaInicio"), QStringLiteral("Fecha de Inicio"),
                             QDate(hoy.year(), hoy.month(), 1), 0);
    fechaFin_ = creaFecha(QStringLiteral("FechaFin"), QStringLiteral("Fecha de Fin"), hoy, 1);

    mostrar_ = new QPushButton(icono(QStringLiteral("Kardex")),
                               QStringLiteral("Mostrar Resultados"), tarjeta);
    mostrar_->setObjectName(QStringLiteral("MostrarResultadosKardex"));
    mostrar_->setMinimumHeight(AltoControl);
    mostrar_->setToolTip(QStringLiteral("Presione aquí para Consultar"));
    ponEstilo(mostrar_, "primario");
    connect(mostrar_, &QPushButton::clicked, this, &TProductosF::MostrarResultadosClick);
    rejilla->addWidget(mostrar_, 1, 2);
    rejilla->addWidget(creaEtiqueta(QStringLiteral("Presione aquí para Consultar"),
                                    QStringLiteral("AyudaMostrarResultados"), nullptr, tarjeta),
                       2, 2);
    rejilla->setColumnStretch(3, 1);

    auto* capa = new QVBoxLayout(pagina);
    capa->addWidget(productoFechas_);
    capa->addWidget(tarjeta);
    capa->addStretch(1);
    return pagina;
}

QWidget* TProductosF::creaPaginaKardex() {
    auto* pagina = new QWidget;
    pagina->setObjectName(QStringLiteral("ResultadoKardex"));
    tituloKardex_ = creaEtiqueta({}, QStringLiteral("TituloKardex"), "titulo", pagina);
    tituloKardex_->setWordWrap(true);

    listaDetalle_ = new QListWidget(pagina);
    listaDetalle_->setObjectName(QStringLiteral("ListaDetalle"));
    listaDetalle_->setItemDelegate(new DelegadoRenglon(kIconoKardex, listaDetalle_));
    listaDetalle_->setIconSize(QSize(kIconoKardex, kIconoKardex));
    listaDetalle_->setUniformItemSizes(true);
    listaDetalle_->setAlternatingRowColors(true);
    listaDetalle_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    listaDetalle_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    QScroller::grabGesture(listaDetalle_->viewport(), QScroller::LeftMouseButtonGesture);

    existenciaActual_ = creaEtiqueta(QStringLiteral("Existencia Actual:"),
                                     QStringLiteral("ExistenciaActual"), "dato", pagina);
    pieKardex_ = creaEtiqueta({}, QStringLiteral("PieKardex"), "pie", pagina);

    auto* abajo = new QHBoxLayout;
    abajo->addWidget(pieKardex_, 1);
    abajo->addWidget(existenciaActual_);

    auto* capa = new QVBoxLayout(pagina);
    capa->addWidget(tituloKardex_);
    capa->addWidget(listaDetalle_, 1);
    capa->addLayout(abajo);
    return pagina;
}

void TProductosF::error(const QString& mensaje) {
    Sonidos::reproduce(Sonido::Error);
    mensajes_.muestra(mensaje);
}

// ---------------------------------------------------------------------------------------------
// Árbol de líneas
// ---------------------------------------------------------------------------------------------

void TProductosF::CargaLineasTimer() {
    std::vector<LineaProducto> lineas;
    try {
        lineas = catalogo_.consulta();
    } catch (const ErrorServicio& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Catálogo de Productos, líneas:" << e.mensaje();
        return;
    }
    lineas_->clear();
    const size_t puestas = agregaLineas(*lineas_, lineas, [](const LineaProducto& l) {
        return creaNodo(l.id, l.padre, l.linea, l.miniatura);
    });
    primeraLinea_->setVisible(puestas == 0);
}

void TProductosF::LineasItemClick(QTreeWidgetItem* item) {
    if (!item) return;
    Sonidos::reproduce(Sonido::Click);
    switch (mensajes_.eligeOpcion(QStringLiteral("Opciones sobre Líneas"), opcionesMenuArbol())) {
    case 0:
        pideNodoNuevo(idDe(item, RolPadre));
        break;
    case 1:
        pideNodoNuevo(idDe(item));
        break;
    case 2:
        renombraNodo(item);
        break;
    case 3:
        eliminaNodo(item);
        break;
    case 4:
        asignaFoto(item);
        break;
    case 5:
        verProductos(item);
        break;
    default:
        break;
    }
}

void TProductosF::CrearPrimeraLineaClick() {
    Sonidos::reproduce(Sonido::Click);
    pideNodoNuevo(0);
}

void TProductosF::pideNodoNuevo(int64_t padre) {
    const std::optional<QString> nombre = mensajes_.pideTexto(kTituloNodo, {}, kLargoNombreNodo);
    if (!nombre) return;
    if (nombre->trimmed().isEmpty()) {
        error(QStringLiteral("Debe introducir el Nombre del Nodo"));
        return;
    }
    const QString limpio = nombre->trimmed();
    ejecutaConLeyenda(this, QStringLiteral("Registrando Transacción."),
                      [this, padre, limpio] { InsertaLineaTimer(padre, limpio); });
}

void TProductosF::InsertaLineaTimer(int64_t padre, const QString& nombre) {
    int64_t id = 0;
    try {
        id = catalogo_.inserta(padre, nombre);
    } catch (const ErrorServicio& e) {
        error(QString::fromUtf8(MensajeErrorRegistro));
        qWarning() << "Catálogo de Productos, alta de línea:" << e.mensaje();
        return;
    }
    // Sin recargar el árbol: el nodo entra entre sus hermanos en el orden de la consulta.
    QTreeWidgetItem* item = creaNodo(id, padre, nombre, {});
    QTreeWidgetItem* contenedor = padre == 0 ? nullptr : itemDeLinea(padre);
    const int hermanos = contenedor ? contenedor->childCount() : lineas_->topLevelItemCount();
    int posicion = 0;
    while (posicion < hermanos) {
        const QTreeWidgetItem* h =
            contenedor ? contenedor->child(posicion) : lineas_->topLevelItem(posicion);
        if (QString::compare(h->text(0), nombre, Qt::CaseSensitive) > 0) break;
        ++posicion;
    }
    if (contenedor) {
        contenedor->insertChild(posicion, item);
        contenedor->setExpanded(true);
    } else {
        lineas_->insertTopLevelItem(posicion, item);
    }
    lineas_->setCurrentItem(item);
    lineas_->scrollToItem(item);
    primeraLinea_->hide();
}

void TProductosF::renombraNodo(QTreeWidgetItem* item) {
    const QString anterior = item->text(0);
    const std::optional<QString> nombre =
        mensajes_.pideTexto(kTituloNodo, anterior, kLargoNombreNodo);
    if (!nombre) return;
    if (nombre->trimmed().isEmpty()) {
        error(QStringLiteral("Debe introducir el Nombre del Nodo"));
        return;
    }
    const QString limpio = nombre->trimmed();
    const int64_t id = idDe(item);
    ejecutaConLeyenda(this, QStringLiteral("Registrando Transacción."),
                      [this, id, limpio, anterior] { EditaLineaTimer(id, limpio, anterior); });
}

void TProductosF::EditaLineaTimer(int64_t lineaID, const QString& nombre, const QString& anterior) {
    try {
        catalogo_.renombra(lineaID, nombre, anterior);
    } catch (const ErrorServicio& e) {
        error(QString::fromUtf8(MensajeErrorRegistro));
        qWarning() << "Catálogo de Productos, cambio de nombre de línea:" << e.mensaje();
        return;
    }
    if (QTreeWidgetItem* item = itemDeLinea(lineaID)) item->setText(0, nombre);
}

void TProductosF::eliminaNodo(QTreeWidgetItem* item) {
    if (numeroLineas() == 1) {
        error(QStringLiteral("No puede Eliminar la única Línea de Productos."));
        return;
    }
    if (item->childCount() > 0) {
        error(QStringLiteral("No puede Eliminar un Nodo con SubLíneas Asociadas."));
        return;
    }
    const int64_t id = idDe(item);
    const QString nombre = item->text(0);
    ejecutaConLeyenda(this, QStringLiteral("Verificando Información"),
                      [this, id, nombre] { EliminaLineaTimer(id, nombre); });
}

void TProductosF::EliminaLineaTimer(int64_t lineaID, const QString& nombre) {
    RechazoEliminarLinea rechazo = RechazoEliminarLinea::Ninguno;
    try {
        rechazo = catalogo_.elimina(lineaID, nombre);
    } catch (const ErrorServicio& e) {
        error(QString::fromUtf8(MensajeErrorRegistro));
        qWarning() << "Catálogo de Productos, baja de línea:" << e.mensaje();
        return;
    }
    switch (rechazo) {
    case RechazoEliminarLinea::UnicaLinea:
        error(QStringLiteral("No puede Eliminar la única Línea de Productos."));
        return;
    case RechazoEliminarLinea::ConSubLineas:
        error(QStringLiteral("No puede Eliminar un Nodo con SubLíneas Asociadas."));
        return;
    case RechazoEliminarLinea::ConProductos:
        error(QStringLiteral("No puede Eliminar una Línea con Productos Asociados."));
        return;
    case RechazoEliminarLinea::Ninguno:
        break;
    }
    delete itemDeLinea(lineaID);
    primeraLinea_->setVisible(lineas_->topLevelItemCount() == 0);
}

void TProductosF::asignaFoto(QTreeWidgetItem* item) {
    const int64_t id = idDe(item);
    auto* pantalla = new TAsignaFotoLineaF(sesion_, id, item->text(0), this);
    pantalla->setAttribute(Qt::WA_DeleteOnClose);
    QPointer<TAsignaFotoLineaF> guardia(pantalla);
    connect(pantalla, &QDialog::finished, this, [this, guardia, id] {
        if (!guardia || !guardia->fotoCambiada()) return;
        if (QTreeWidgetItem* nodo = itemDeLinea(id)) ponIconoLinea(nodo, guardia->miniatura());
    });
    pantalla->open();
}

void TProductosF::verProductos(QTreeWidgetItem* item) {
    const int64_t linea = idDe(item);
    const QString sql = sqlProductosXLinea(sesion_.EmpresaID, linea);
    const QString titulo = rutaDe(item);
    ejecutaConLeyenda(this, QStringLiteral("Cargando Productos"),
                      [this, sql, titulo, linea] { CargaProductosTimer(sql, titulo, linea); });
}

QTreeWidgetItem* TProductosF::itemDeLinea(int64_t lineaID) const {
    for (QTreeWidgetItemIterator it(lineas_); *it; ++it)
        if (idDe(*it) == lineaID) return *it;
    return nullptr;
}

int TProductosF::numeroLineas() const {
    int total = 0;
    for (QTreeWidgetItemIterator it(lineas_); *it; ++it)
        ++total;
    return total;
}

// ---------------------------------------------------------------------------------------------
// Productos
// ---------------------------------------------------------------------------------------------

void TProductosF::BuscarProductoReturnPressed() {
    Sonidos::reproduce(Sonido::Click);
    const QString texto = buscarProducto_->text().trimmed();
    const QString sql = sqlBusquedaProductos(sesion_.EmpresaID, texto);
    const QString titulo = QStringLiteral("Búsqueda: ") + texto;
    ejecutaConLeyenda(this, QStringLiteral("Cargando Productos"),
                      [this, sql, titulo] { CargaProductosTimer(sql, titulo, 0); });
}

void TProductosF::CargaProductosTimer(const QString& sql, const QString& titulo, int64_t lineaID) {
    ListadoProductos.asignaSql(sql);
    try {
        ListadoProductos.abre();
        // Dentro del try: si al listado le falta una columna es ErrorProgramacion.
        modelo_->asigna(ListadoProductos.registros());
    } catch (const ErrorServicio& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Catálogo de Productos, listado:" << e.mensaje();
        return;
    }
    {
        // Un listado nuevo llega sin filtro local.
        const QSignalBlocker bloqueo(buscarTexto_);
        buscarTexto_->clear();
    }
    ++secuenciaFiltro_;
    filtro_->filtra({});
    ListadoProductos.cierra(); // los renglones ya viven en el modelo
    sqlListado_ = sql;
    tituloListado_ = titulo;
    lineaListado_ = lineaID;
    tituloProductos_->setText(titulo);
    actualizaPie();
    actualizaAcciones();
    paginas_->setCurrentIndex(PaginaProductos);
    if (modelo_->rowCount() == 0) error(QStringLiteral("No hubo registros con esa información"));
}

void TProductosF::BuscarTextoChange(const QString& texto) {
    const int solicitud = ++secuenciaFiltro_;
    ejecutaConLeyenda(this,
                      texto.isEmpty() ? QStringLiteral("Eliminando Filtros")
                                      : QStringLiteral("Filtrando Información"),
                      [this, solicitud] {
                          // Al teclear rápido solo cuenta el último texto.
                          if (solicitud == secuenciaFiltro_) FiltraProductosTimer();
                      });
}

void TProductosF::FiltraProductosTimer() {
    filtro_->filtra(buscarTexto_->text());
    actualizaPie();
    actualizaAcciones();
}

void TProductosF::actualizaPie() {
    if (filtro_->texto().isEmpty())
        pieProductos_->setText(QStringLiteral("Número de Registros: ") +
                               QString::number(modelo_->rowCount()));
    else
        pieProductos_->setText(QStringLiteral("Registros Filtrados: ") +
                               QString::number(filtro_->rowCount()));
}

void TProductosF::actualizaAcciones() {
    const bool hay = productoElegido().has_value();
    botonModificar_->setEnabled(hay);
    botonNuevo_->setEnabled(lineaListado_ != 0);
    botonKardex_->setEnabled(hay);
    botonBorrar_->setEnabled(hay);
}

std::optional<ProductoListado> TProductosF::productoElegido() const {
    const QModelIndex actual = productos_->currentIndex();
    if (!actual.isValid()) return std::nullopt;
    const QModelIndex fuente = filtro_->mapToSource(actual);
    if (!fuente.isValid()) return std::nullopt;
    return modelo_->producto(fuente.row());
}

void TProductosF::BotonModificarClick() {
    const std::optional<ProductoListado> p = productoElegido();
    if (!p) return;
    Sonidos::reproduce(Sonido::Click);
    abreEditor(p->id, 0);
}

void TProductosF::ProductosItemActivated(const QModelIndex& indice) {
    if (!indice.isValid()) return;
    productos_->setCurrentIndex(indice);
    BotonModificarClick();
}

void TProductosF::BotonNuevoProductoClick() {
    if (lineaListado_ == 0) return;
    Sonidos::reproduce(Sonido::Click);
    abreEditor(0, lineaListado_);
}

void TProductosF::abreEditor(int64_t productoID, int64_t lineaID) {
    auto* editor = new TProductosEditaF(sesion_, productoID, lineaID, contenido_);
    editor->setAttribute(Qt::WA_DeleteOnClose);
    auto almacenado = std::make_shared<int64_t>(0);
    connect(editor, &TProductosEditaF::productoAlmacenado, this,
            [almacenado](qint64 id) { *almacenado = id; });
    // Al cerrarse (Regresar o después de almacenar) vuelve el catálogo; si se guardó, con el
    // listado recargado y el producto elegido.
    connect(editor, &TProductosEditaF::cerrado, this, [this, almacenado] {
        contenido_->setCurrentIndex(0);
        if (*almacenado == 0 || sqlListado_.isEmpty()) return;
        const int64_t id = *almacenado;
        const QString sql = sqlListado_;
        const QString titulo = tituloListado_;
        const int64_t linea = lineaListado_;
        ejecutaConLeyenda(
            this, QStringLiteral("Cargando Productos"), [this, sql, titulo, linea, id] {
                CargaProductosTimer(sql, titulo, linea);
                for (int fila = 0; fila < filtro_->rowCount(); ++fila) {
                    const QModelIndex indice = filtro_->index(fila, 0);
                    if (indice.data(ModeloProductos::RolProductoID).toLongLong() != id) continue;
                    productos_->setCurrentIndex(indice);
                    productos_->scrollTo(indice);
                    break;
                }
            });
    });
    contenido_->addWidget(editor);
    contenido_->setCurrentWidget(editor);
}

void TProductosF::closeEvent(QCloseEvent* evento) {
    if (auto* editor = qobject_cast<TProductosEditaF*>(contenido_->currentWidget())) {
        evento->ignore();
        editor->close();
        return;
    }
    QWidget::closeEvent(evento);
}

void TProductosF::BotonBorrarClick() {
    const std::optional<ProductoListado> p = productoElegido();
    if (!p) return;
    if (!mensajes_.preguntaSiNo(QStringLiteral("¿Desea Eliminar el Producto ") + p->clave +
                                QStringLiteral(" - ") + p->producto + QLatin1Char('?')))
        return;
    Sonidos::reproduce(Sonido::Click);
    const ProductoListado producto = *p;
    ejecutaConLeyenda(this, QStringLiteral("Registrando Transacción."),
                      [this, producto] { BorraProductoTimer(producto); });
}

void TProductosF::BorraProductoTimer(const ProductoListado& producto) {
    ResultadoBorrarProducto resultado = ResultadoBorrarProducto::Eliminado;
    try {
        resultado = borraProducto(ModuloDeDatos.ConexionBD, sesion_, producto);
    } catch (const ErrorServicio& e) {
        error(QString::fromUtf8(MensajeErrorRegistro));
        qWarning() << "Catálogo de Productos, baja de producto:" << e.mensaje();
        return;
    }
    if (resultado == ResultadoBorrarProducto::ConTransacciones) {
        error(QStringLiteral("No puede eliminar un Producto con Transacciones Registradas"));
        return;
    }
    modelo_->quita(producto.id);
    if (productoKardex_ && productoKardex_->id == producto.id) {
        productoKardex_.reset();
        paginas_->setTabEnabled(PaginaFechas, false);
        paginas_->setTabEnabled(PaginaKardex, false);
    }
    actualizaPie();
    actualizaAcciones();
}

// ---------------------------------------------------------------------------------------------
// Kardex
// ---------------------------------------------------------------------------------------------

void TProductosF::BotonKardexClick() {
    const std::optional<ProductoListado> p = productoElegido();
    if (!p) return;
    Sonidos::reproduce(Sonido::Click);
    if (!productoKardex_ || productoKardex_->id != p->id) {
        listaDetalle_->clear();
        paginas_->setTabEnabled(PaginaKardex, false);
    }
    productoKardex_ = p;
    productoFechas_->setText(QStringLiteral("Kardex ") + p->clave + QStringLiteral(" - ") +
                             p->producto);
    paginas_->setTabEnabled(PaginaFechas, true);
    paginas_->setCurrentIndex(PaginaFechas);
}

void TProductosF::MostrarResultadosClick() {
    if (!productoKardex_) return;
    const QDate inicio = fechaInicio_->date();
    const QDate fin = fechaFin_->date();
    if (inicio > fin) {
        error(QStringLiteral("La Fecha de Inicio debe ser igual o menor a la Fecha de Fin"));
        return;
    }
    inicioKardex_ = inicio;
    finKardex_ = fin;
    // Una sola consulta a la vez: otro toque mientras se lee no la duplica.
    mostrar_->setEnabled(false);
    ejecutaConLeyenda(this, QStringLiteral("Obteniendo Información"),
                      [this] { ConsultaKardexTimer(); });
}

void TProductosF::ConsultaKardexTimer() {
    mostrar_->setEnabled(true);
    if (!productoKardex_) return;
    const ProductoListado p = *productoKardex_;
    std::vector<MovimientoKardex> movimientos;
    double existencia = 0.0;
    try {
        movimientos = kardex_.consulta(sesion_.EmpresaID, p.clave, inicioKardex_, finKardex_);
        existencia = kardex_.existenciaActual(sesion_.EmpresaID, p.id);
    } catch (const ErrorServicio& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Catálogo de Productos, kardex:" << e.mensaje();
        return;
    }
    if (movimientos.empty()) {
        error(QStringLiteral("No hubo resultados con esa información"));
        return;
    }

    listaDetalle_->clear();
    for (const MovimientoKardex& m : movimientos) {
        const QString imagen =
            m.esEntrada() ? QStringLiteral("Insercion") : QStringLiteral("Cancelacion");
        auto* item = new QListWidgetItem(icono(imagen), QString(), listaDetalle_);
        QString primera = m.moduloSistema + QStringLiteral(" Folio ") + QString::number(m.folio);
        if (!m.paquete.isEmpty())
            primera += QStringLiteral(" (Kit ") + m.paquete + QLatin1Char(')');
        QStringList segunda{m.fecha.toString(kFormatoFecha + QStringLiteral(" HH:mm:ss"))};
        if (!m.usuario.isEmpty()) segunda << QStringLiteral("Usuario: ") + m.usuario;
        if (!m.cliente.isEmpty()) segunda << QStringLiteral("Cliente: ") + m.cliente;
        item->setData(RolPrimeraLinea, primera);
        item->setData(RolSegundaLinea, segunda.join(QStringLiteral("   ")));
        item->setData(RolDatoDerecha, (m.esEntrada() ? QStringLiteral("+") : QStringLiteral("-")) +
                                          textoCantidad(m.cantidad) + QLatin1Char(' ') + p.unidad);
        item->setData(RolModuloKardex, m.moduloSistema);
        item->setData(RolTipoKardex, m.tipoTransaccion);
        item->setData(RolCantidadKardex, m.cantidad);
        item->setData(RolImagenKardex, imagen);
        item->setData(RolFolioKardex, QVariant::fromValue<qlonglong>(m.folio));
        item->setData(RolPaqueteKardex, m.paquete);
    }
    tituloKardex_->setText(QStringLiteral("Kardex ") + p.clave + QStringLiteral(" - ") +
                           p.producto + QStringLiteral(" del ") +
                           inicioKardex_.toString(kFormatoFecha) + QStringLiteral(" al ") +
                           finKardex_.toString(kFormatoFecha));
    existenciaActual_->setText(QStringLiteral("Existencia Actual: ") + textoCantidad(existencia) +
                               QLatin1Char(' ') + p.unidad);
    pieKardex_->setText(QStringLiteral("Número de Registros: ") +
                        QString::number(listaDetalle_->count()));
    paginas_->setTabEnabled(PaginaKardex, true);
    paginas_->setCurrentIndex(PaginaKardex);
    Sonidos::reproduce(Sonido::MostrarResultados);
}

} // namespace cajaplex
