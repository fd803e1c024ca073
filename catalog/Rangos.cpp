#include "catalog/Rangos.h"

#include <QDoubleValidator>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QLocale>
#include <QPushButton>
#include <QScroller>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <QtDebug>

#include "catalog/CatalogoProductos.h"
#include "datos/ModuloDatos.h"
#include "pantallas/DelegadoRenglon.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/RolesRenglon.h"
#include "pantallas/Sonidos.h"

namespace cajaplex {
namespace {

enum Pagina { PaginaBusqueda, PaginaRangos, PaginaEdicion };

constexpr int kAnchoTarjeta = 760; // los campos no se estiran a lo ancho de la pantalla
const QString kSinRegistros = QStringLiteral("No hubo registros con esa información");

// La tarjeta de campos a la izquierda, hasta su ancho máximo.
QHBoxLayout* alaIzquierda(QWidget* tarjeta) {
    auto* fila = new QHBoxLayout;
    fila->addWidget(tarjeta, 3);
    fila->addStretch(1);
    return fila;
}

// Cantidades y precios se teclean con punto decimal, sin separador de miles.
QLineEdit* campoNumerico(const QString& nombre, int decimales, QWidget* padre) {
    auto* campo = new QLineEdit(padre);
    campo->setObjectName(nombre);
    campo->setMinimumHeight(AltoControl);
    auto* validador = new QDoubleValidator(0.0, 1e12, decimales, campo);
    validador->setNotation(QDoubleValidator::StandardNotation);
    validador->setLocale(QLocale::c());
    campo->setValidator(validador);
    return campo;
}

std::optional<double> numeroDe(const QLineEdit* campo) {
    bool ok = false;
    const double valor = QLocale::c().toDouble(campo->text().trimmed(), &ok);
    if (!ok) return std::nullopt;
    return valor;
}

QString textoCampo(double valor, int decimales) {
    QString texto = QLocale::c().toString(valor, 'f', decimales);
    // Sin ceros de más en la cantidad: "12", "2.5".
    if (texto.contains(QLatin1Char('.')) && decimales > 2) {
        while (texto.endsWith(QLatin1Char('0')))
            texto.chop(1);
        if (texto.endsWith(QLatin1Char('.'))) texto.chop(1);
    }
    return texto;
}

QString nombreProducto(const ProductoRangos& p) {
    return p.clave + QStringLiteral(" - ") + p.producto;
}

} // namespace

// ---------------------------------------------------------------------------------------------
// Edición de Rangos
// ---------------------------------------------------------------------------------------------

TRangosEditaF::TRangosEditaF(const Sesion& sesion, QWidget* padre)
    : QWidget(padre), rangos_(ModuloDeDatos.ConexionBD, sesion) {
    setObjectName(QStringLiteral("RangosEdita"));
    setWindowTitle(QStringLiteral("Edición de Rangos"));
    titulo_ = creaEtiqueta({}, QStringLiteral("TituloEdicion"), "subtitulo", this);

    auto* tarjeta = new QFrame(this);
    ponEstilo(tarjeta, "tarjeta");
    tarjeta->setMaximumWidth(kAnchoTarjeta);
    auto* rejilla = new QGridLayout(tarjeta);
    cantidad_ = campoNumerico(QStringLiteral("Cantidad"), 6, tarjeta);
    precio_ = campoNumerico(QStringLiteral("PrecioVenta"), 6, tarjeta);
    auto* tituloCantidad = creaEtiqueta(QStringLiteral("Cantidad (Requerido)"),
                                        QStringLiteral("EtiquetaCantidad"), "subtitulo", tarjeta);
    tituloCantidad->setBuddy(cantidad_);
    auto* tituloPrecio = creaEtiqueta(QStringLiteral("Precio de Venta (Requerido)"),
                                      QStringLiteral("EtiquetaPrecioVenta"), "subtitulo", tarjeta);
    tituloPrecio->setBuddy(precio_);
    auto* seleccionaPrecio =
        creaBoton(QStringLiteral("Productos"), QStringLiteral("Seleccione el Precio de Venta"),
                  QStringLiteral("BotonSeleccionaPrecio"), nullptr, tarjeta);
    rejilla->addWidget(tituloCantidad, 0, 0);
    rejilla->addWidget(cantidad_, 1, 0);
    rejilla->addWidget(tituloPrecio, 2, 0);
    rejilla->addWidget(precio_, 3, 0);
    rejilla->addWidget(seleccionaPrecio, 3, 1);
    rejilla->setColumnStretch(0, 1);

    almacenar_ = creaBoton(QStringLiteral("Insercion"), QStringLiteral("Almacenar"),
                           QStringLiteral("BotonAlmacenar"), "primario", this);
    auto* cancelar = creaBoton(QStringLiteral("Regresar"), QStringLiteral("Cancelar"),
                               QStringLiteral("BotonCancelar"), nullptr, this);
    connect(almacenar_, &QPushButton::clicked, this, &TRangosEditaF::BotonAlmacenarClick);
    connect(cancelar, &QPushButton::clicked, this, &TRangosEditaF::BotonCancelarClick);
    connect(seleccionaPrecio, &QPushButton::clicked, this,
            &TRangosEditaF::BotonSeleccionaPrecioClick);

    auto* abajo = new QHBoxLayout;
    abajo->addStretch(1);
    abajo->addWidget(cancelar);
    abajo->addWidget(almacenar_);

    auto* capa = new QVBoxLayout(this);
    capa->setContentsMargins(0, 0, 0, 0);
    capa->addWidget(titulo_);
    capa->addLayout(alaIzquierda(tarjeta));
    capa->addStretch(1);
    capa->addLayout(abajo);
}

void TRangosEditaF::muestra(const ProductoRangos& producto) {
    producto_ = producto;
    titulo_->setText(anterior_ ? QStringLiteral("Modifica Rango") : QStringLiteral("Alta Rango"));
    almacenar_->setEnabled(true);
    cantidad_->setFocus();
}

void TRangosEditaF::nuevo(const ProductoRangos& producto) {
    anterior_.reset();
    cantidad_->clear();
    precio_->clear();
    muestra(producto);
}

void TRangosEditaF::edita(const ProductoRangos& producto, const RangoPrecio& rango) {
    anterior_ = rango;
    cantidad_->setText(textoCampo(rango.rango, 6));
    precio_->setText(textoCampo(rango.precioVenta, 2));
    muestra(producto);
}

void TRangosEditaF::error(const QString& mensaje) {
    Sonidos::reproduce(Sonido::Error);
    mensajes_.muestra(mensaje);
}

void TRangosEditaF::BotonSeleccionaPrecioClick() {
    Sonidos::reproduce(Sonido::Click);
    QStringList opciones;
    for (size_t i = 0; i < producto_.precios.size(); ++i)
        opciones << QStringLiteral("Precio ") + QString::number(i + 1) + QStringLiteral(": ") +
                        textoPrecio(producto_.precios[i]);
    const int elegido =
        mensajes_.eligeOpcion(QStringLiteral("Seleccione el Precio de Venta"), opciones);
    if (elegido < 0) return;
    precio_->setText(textoCampo(producto_.precios[static_cast<size_t>(elegido)], 2));
}

void TRangosEditaF::BotonAlmacenarClick() {
    if (!almacenar_->isEnabled()) return;
    const std::optional<double> cantidad = numeroDe(cantidad_);
    if (!cantidad) {
        error(QStringLiteral("No especificar la cantidad"));
        return;
    }
    const std::optional<double> precio = numeroDe(precio_);
    if (!precio) {
        error(QStringLiteral("No especificó el Precio de Venta"));
        return;
    }
    Sonidos::reproduce(Sonido::Click);
    almacenar_->setEnabled(false); // un segundo toque no duplica el alta
    const RangoPrecio rango{*cantidad, *precio};
    ejecutaConLeyenda(
        this, anterior_ ? QStringLiteral("Modificando Rango") : QStringLiteral("Insertando Rango"),
        [this, rango] { AlmacenaRangoTimer(rango); });
}

void TRangosEditaF::AlmacenaRangoTimer(const RangoPrecio& rango) {
    ResultadoRango resultado = ResultadoRango::Almacenado;
    try {
        resultado = anterior_ ? rangos_.modifica(producto_, *anterior_, rango)
                              : rangos_.inserta(producto_, rango);
    } catch (const ErrorServicio& e) {
        almacenar_->setEnabled(true);
        error(QString::fromUtf8(MensajeErrorRegistro));
        qWarning() << "Rangos de Precios, almacenar:" << e.mensaje();
        return;
    }
    almacenar_->setEnabled(true);
    if (resultado == ResultadoRango::Repetido) {
        error(QStringLiteral("Ya existe el rango: ") + textoCantidad(rango.rango));
        return;
    }
    emit almacenado(rango.rango);
}

void TRangosEditaF::BotonCancelarClick() {
    Sonidos::reproduce(Sonido::Regresar);
    emit cancelado();
}

// ---------------------------------------------------------------------------------------------
// Rangos de Precios
// ---------------------------------------------------------------------------------------------

TRangosF::TRangosF(const Sesion& sesion, QWidget* padre) : TRangosF(sesion, 0, padre) {}

TRangosF::TRangosF(const Sesion& sesion, qint64 productoID, QWidget* padre)
    : QWidget(padre), sesion_(sesion), rangos_(ModuloDeDatos.ConexionBD, sesion),
      ListadoProductos(ModuloDeDatos.ConexionBD, QString()) {
    setObjectName(QStringLiteral("Rangos"));
    setWindowTitle(QStringLiteral("Rangos de Precios"));

    buscar_ = new QLineEdit(this);
    buscar_->setObjectName(QStringLiteral("BuscarProducto"));
    buscar_->setPlaceholderText(QStringLiteral("Clave, Descripción ó Código de Barra"));
    buscar_->setClearButtonEnabled(true);
    buscar_->setMinimumHeight(AltoControl);
    buscar_->addAction(icono(QStringLiteral("Buscar")), QLineEdit::LeadingPosition);
    connect(buscar_, &QLineEdit::returnPressed, this, &TRangosF::BuscarProductoReturnPressed);
    // Abierta para un producto no hay nada que buscar.
    buscar_->setVisible(productoID == 0);

    tituloProducto_ = creaEtiqueta({}, QStringLiteral("ProductoRangos"), "titulo", this);
    tituloProducto_->setWordWrap(true);

    edicion_ = new TRangosEditaF(sesion, this);
    connect(edicion_, &TRangosEditaF::almacenado, this, [this](double rango) {
        muestraRangos();
        ejecutaConLeyenda(this, QStringLiteral("Cargando Información"),
                          [this, rango] { CargaRangosTimer(rango); });
    });
    connect(edicion_, &TRangosEditaF::cancelado, this, &TRangosF::muestraRangos);

    paginas_ = new QStackedWidget(this);
    paginas_->setObjectName(QStringLiteral("Paginas"));
    paginas_->addWidget(creaPaginaBusqueda());
    paginas_->addWidget(creaPaginaRangos());
    paginas_->addWidget(edicion_);

    auto* capa = new QVBoxLayout(this);
    capa->addWidget(buscar_);
    capa->addWidget(tituloProducto_);
    capa->addWidget(paginas_, 1);
    actualizaAcciones();

    if (productoID != 0) {
        paginas_->setCurrentIndex(PaginaRangos);
        ejecutaConLeyenda(this, QStringLiteral("Cargando Información"),
                          [this, productoID] { CargaProductoTimer(productoID); });
    } else {
        tituloProducto_->setText(QStringLiteral("Seleccione el Producto"));
    }
}

QWidget* TRangosF::creaPaginaBusqueda() {
    auto* pagina = new QWidget;
    pagina->setObjectName(QStringLiteral("BuscaProducto"));
    encontrados_ = new ModeloProductos(this);
    listaEncontrados_ = new QListView(pagina);
    listaEncontrados_->setObjectName(QStringLiteral("ProductosEncontrados"));
    listaEncontrados_->setModel(encontrados_);
    listaEncontrados_->setItemDelegate(new DelegadoRenglon(0, listaEncontrados_));
    listaEncontrados_->setUniformItemSizes(true);
    listaEncontrados_->setAlternatingRowColors(true);
    listaEncontrados_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    listaEncontrados_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    listaEncontrados_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    QScroller::grabGesture(listaEncontrados_->viewport(), QScroller::LeftMouseButtonGesture);
    connect(listaEncontrados_, &QListView::clicked, this, &TRangosF::ProductosEncontradosClick);

    auto* capa = new QVBoxLayout(pagina);
    capa->setContentsMargins(0, 0, 0, 0);
    capa->addWidget(creaEtiqueta(QStringLiteral("Busque el Producto por su Clave, Descripción ó "
                                                "Código de Barra y tóquelo para ver sus Rangos"),
                                 QStringLiteral("IndicacionBusqueda"), "subtitulo", pagina));
    capa->addWidget(listaEncontrados_, 1);
    return pagina;
}

QWidget* TRangosF::creaPaginaRangos() {
    auto* pagina = new QWidget;
    pagina->setObjectName(QStringLiteral("SeleccionaRango"));
    lista_ = new QListWidget(pagina);
    lista_->setObjectName(QStringLiteral("ListaRangos"));
    lista_->setItemDelegate(new DelegadoRenglon(0, lista_));
    lista_->setUniformItemSizes(true);
    lista_->setAlternatingRowColors(true);
    lista_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    lista_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    QScroller::grabGesture(lista_->viewport(), QScroller::LeftMouseButtonGesture);
    connect(lista_, &QListWidget::currentItemChanged, this, &TRangosF::actualizaAcciones);
    connect(lista_, &QListWidget::itemActivated, this, &TRangosF::ListaRangosItemActivated);

    pie_ = creaEtiqueta(QStringLiteral("Número de Registros: 0"), QStringLiteral("PieRangos"),
                        "pie", pagina);
    nuevo_ = creaBoton(QStringLiteral("Insercion"), QStringLiteral("Nuevo"),
                       QStringLiteral("BotonNuevo"), "primario", pagina);
    modificar_ = creaBoton(QStringLiteral("Actualizacion"), QStringLiteral("Modificar"),
                           QStringLiteral("BotonModificar"), nullptr, pagina);
    borrar_ = creaBoton(QStringLiteral("Cancelacion"), QStringLiteral("Borrar"),
                        QStringLiteral("BotonBorrar"), "peligro", pagina);
    connect(nuevo_, &QPushButton::clicked, this, &TRangosF::BotonNuevoClick);
    connect(modificar_, &QPushButton::clicked, this, &TRangosF::BotonModificarClick);
    connect(borrar_, &QPushButton::clicked, this, &TRangosF::BotonBorrarClick);

    auto* abajo = new QHBoxLayout;
    abajo->addWidget(pie_, 1);
    abajo->addWidget(borrar_);
    abajo->addWidget(modificar_);
    abajo->addWidget(nuevo_);
    auto* capa = new QVBoxLayout(pagina);
    capa->setContentsMargins(0, 0, 0, 0);
    capa->addWidget(lista_, 1);
    capa->addLayout(abajo);
    return pagina;
}

void TRangosF::error(const QString& mensaje) {
    Sonidos::reproduce(Sonido::Error);
    mensajes_.muestra(mensaje);
}

void TRangosF::BuscarProductoReturnPressed() {
    Sonidos::reproduce(Sonido::Click);
    const QString texto = buscar_->text().trimmed();
    ejecutaConLeyenda(this, QStringLiteral("Cargando Productos"),
                      [this, texto] { BuscaProductoTimer(texto); });
}

void TRangosF::BuscaProductoTimer(const QString& texto) {
    ListadoProductos.asignaSql(sqlBusquedaProductos(sesion_.EmpresaID, texto));
    try {
        ListadoProductos.abre();
        // Dentro del try: si al listado le falta una columna es ErrorProgramacion.
        encontrados_->asigna(ListadoProductos.registros());
    } catch (const ErrorServicio& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Rangos de Precios, búsqueda:" << e.mensaje();
        return;
    }
    ListadoProductos.cierra();
    if (encontrados_->rowCount() == 0) {
        error(kSinRegistros);
        return;
    }
    // Un solo producto no necesita elegirse.
    if (encontrados_->rowCount() == 1) {
        CargaProductoTimer(encontrados_->producto(0).id);
        return;
    }
    paginas_->setCurrentIndex(PaginaBusqueda);
}

void TRangosF::ProductosEncontradosClick(const QModelIndex& indice) {
    if (!indice.isValid()) return;
    Sonidos::reproduce(Sonido::Click);
    const int64_t id = encontrados_->producto(indice.row()).id;
    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"),
                      [this, id] { CargaProductoTimer(id); });
}

void TRangosF::CargaProductoTimer(int64_t productoID) {
    std::optional<ProductoRangos> producto;
    try {
        producto = rangos_.producto(productoID);
    } catch (const ErrorServicio& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Rangos de Precios, producto:" << e.mensaje();
        return;
    }
    if (!producto) {
        error(kSinRegistros);
        return;
    }
    producto_ = producto;
    tituloProducto_->setText(QStringLiteral("Rangos de Precios: ") + nombreProducto(*producto));
    lista_->clear();
    paginas_->setCurrentIndex(PaginaRangos);
    CargaRangosTimer(std::nullopt);
}

void TRangosF::CargaRangosTimer(std::optional<double> seleccion) {
    if (!producto_) return;
    std::vector<RangoPrecio> rangos;
    try {
        rangos = rangos_.consulta(producto_->id);
    } catch (const ErrorServicio& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Rangos de Precios, lista:" << e.mensaje();
        return;
    }
    lista_->clear();
    for (const RangoPrecio& r : rangos) {
        const QString primera = QStringLiteral("A partir de ") + textoCantidad(r.rango) +
                                QLatin1Char(' ') + producto_->unidad;
        auto* item = new QListWidgetItem(primera, lista_);
        item->setData(RolPrimeraLinea, primera);
        item->setData(RolDatoDerecha, textoPrecio(r.precioVenta));
        item->setData(RolSegundaLinea,
                      QStringLiteral("Precio 1: ") + textoPrecio(producto_->precios[0]));
        item->setData(RolCantidadRango, r.rango);
        item->setData(RolPrecioRango, r.precioVenta);
        if (seleccion && *seleccion == r.rango) {
            lista_->setCurrentItem(item);
            lista_->scrollToItem(item);
        }
    }
    pie_->setText(QStringLiteral("Número de Registros: ") + QString::number(lista_->count()));
    actualizaAcciones();
}

std::optional<RangoPrecio> TRangosF::rangoElegido() const {
    const QListWidgetItem* item = lista_->currentItem();
    if (!item) return std::nullopt;
    return RangoPrecio{item->data(RolCantidadRango).toDouble(),
                       item->data(RolPrecioRango).toDouble()};
}

void TRangosF::actualizaAcciones() {
    const bool hay = lista_->currentItem() != nullptr;
    nuevo_->setEnabled(producto_.has_value());
    modificar_->setEnabled(hay);
    borrar_->setEnabled(hay);
}

void TRangosF::muestraRangos() {
    paginas_->setCurrentIndex(PaginaRangos);
    buscar_->setEnabled(true);
}

void TRangosF::BotonNuevoClick() {
    if (!producto_) return;
    Sonidos::reproduce(Sonido::Click);
    edicion_->nuevo(*producto_);
    paginas_->setCurrentIndex(PaginaEdicion);
    // Mientras se edita no se cambia de producto.
    buscar_->setEnabled(false);
}

void TRangosF::BotonModificarClick() {
    const std::optional<RangoPrecio> r = rangoElegido();
    if (!producto_ || !r) return;
    Sonidos::reproduce(Sonido::Click);
    edicion_->edita(*producto_, *r);
    paginas_->setCurrentIndex(PaginaEdicion);
    buscar_->setEnabled(false);
}

void TRangosF::ListaRangosItemActivated(QListWidgetItem* item) {
    if (!item) return;
    lista_->setCurrentItem(item);
    BotonModificarClick();
}

void TRangosF::BotonBorrarClick() {
    const std::optional<RangoPrecio> r = rangoElegido();
    if (!producto_ || !r) return;
    if (!mensajes_.preguntaSiNo(QStringLiteral("¿Desea Eliminar el Rango de ") +
                                textoCantidad(r->rango) + QLatin1Char(' ') + producto_->unidad +
                                QLatin1Char('?')))
        return;
    Sonidos::reproduce(Sonido::Click);
    const RangoPrecio rango = *r;
    ejecutaConLeyenda(this, QStringLiteral("Registrando Transacción."),
                      [this, rango] { EliminaRangoTimer(rango); });
}

void TRangosF::EliminaRangoTimer(const RangoPrecio& rango) {
    if (!producto_) return;
    try {
        rangos_.elimina(*producto_, rango);
    } catch (const ErrorServicio& e) {
        error(QString::fromUtf8(MensajeErrorRegistro));
        qWarning() << "Rangos de Precios, borrar:" << e.mensaje();
        return;
    }
    CargaRangosTimer(std::nullopt);
}

} // namespace cajaplex
