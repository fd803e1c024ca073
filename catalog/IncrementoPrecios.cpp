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
#include <QTableView>
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

ModeloTabla::Columna importe(const QString& titulo, std::function<double(int)> valor,
                             bool destacado = false) {
    return ModeloTabla::numerica(titulo, std::move(valor), textoPrecio, destacado);
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

    auto producto = [this](int fila) -> const ProductoIncremento& {
        return vista_[static_cast<size_t>(fila)];
    };
    std::vector<ModeloTabla::Columna> columnas = {
        {QStringLiteral("Clave"), [producto](int f) { return producto(f).clave; }},
        {QStringLiteral("Descripción"), [producto](int f) { return producto(f).producto; }},
        {QStringLiteral("Unidad"), [producto](int f) { return producto(f).unidad; }},
        importe(QStringLiteral("Costo"), [producto](int f) { return producto(f).costo; })};
    for (size_t i = 0; i < NivelesPrecio; ++i) {
        const QString nivel = QString::number(i + 1);
        columnas.push_back(importe(QStringLiteral("Precio ") + nivel,
                                   [producto, i](int f) { return producto(f).precios[i]; }));
        columnas.push_back(importe(
            QStringLiteral("Nuevo ") + nivel,
            [producto, i](int f) { return producto(f).nuevos[i]; }, true));
    }
    modelo_ = new ModeloTabla(std::move(columnas), this);
    productos_ = creaVistaTabla(QStringLiteral("Productos"), modelo_, kAltoRenglon, pagina);
    QHeaderView* encabezado = productos_->horizontalHeader();
    encabezado->setSectionResizeMode(QHeaderView::Fixed);
    encabezado->setSectionResizeMode(1, QHeaderView::Stretch);
    productos_->setColumnWidth(0, 70);
    productos_->setColumnWidth(2, 80);
    for (int c = 3; c < modelo_->columnCount(); ++c)
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
    std::vector<ProductoIncremento> productos;
    try {
        vista.abre();
        productos =
            vistaPreviaIncremento(vista.registros(), solicitud.referencia, solicitud.porcentajes);
    } catch (const ErrorServicio& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Incremento de Precios, vista previa:" << e.mensaje();
        return;
    }
    if (productos.empty()) {
        error(QStringLiteral("No hay productos para incrementar precios"));
        return;
    }
    solicitud_ = solicitud;
    llenaVistaPrevia(std::move(productos));
    QStringList textos;
    for (const double p : solicitud.porcentajes)
        textos << QLocale::c().toString(p, 'f', 2) + QLatin1Char('%');
    resumen_->setText(QStringLiteral("Línea: ") + solicitud.linea +
                      QStringLiteral("   Referencia: ") +
                      nombresReferencia().at(static_cast<int>(solicitud.referencia)) +
                      QStringLiteral("   Porcentajes: ") + textos.join(QStringLiteral(", ")));
    muestraPagina(PaginaVistaPrevia);
}

void TIncrementoPreciosF::llenaVistaPrevia(std::vector<ProductoIncremento> productos) {
    const int cuantos = modelo_->reemplaza(vista_, std::move(productos));
    productos_->scrollToTop();
    pie_->setText(QStringLiteral("Total Productos: ") + QString::number(cuantos));
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
    llenaVistaPrevia({});
    mensajes_.muestra(QStringLiteral("Proceso finalizado con Éxito"));
    muestraPagina(PaginaLinea);
}

} // namespace cajaplex
