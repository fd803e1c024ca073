#include "catalog/ProductosEdita.h"

#include <algorithm>
#include <cmath>

#include <QCloseEvent>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QScrollArea>
#include <QScroller>
#include <QSpinBox>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <QtDebug>

#include "catalog/CatalogoProductos.h"
#include "catalog/Fotos.h"
#include "catalog/Rangos.h"
#include "datos/ControlAcceso.h"
#include "datos/ModuloDatos.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/Sonidos.h"
#include "printing/VisorPdf.h"

namespace cajaplex {
namespace {

constexpr int kAnchoContenido = 980;
constexpr int kAnchoEtiqueta = 330;
const QSize kVistaFoto(480, 360);

const QString kSi = QStringLiteral("SÍ");
const QString kNo = QStringLiteral("NO");
const QString kErrorCodigo = QStringLiteral("Error al mostrar el código de barra");

// Tasas en por ciento, como las usa el cálculo de la venta.
const QStringList kTasasIva = {QStringLiteral("16.00"), QStringLiteral("8.00"),
                               QStringLiteral("0.00")};
const QStringList kTasasIeps = {
    QStringLiteral("0.00"),  QStringLiteral("3.00"),  QStringLiteral("6.00"),
    QStringLiteral("7.00"),  QStringLiteral("8.00"),  QStringLiteral("9.00"),
    QStringLiteral("25.00"), QStringLiteral("26.50"), QStringLiteral("30.00"),
    QStringLiteral("53.00"), QStringLiteral("160.00")};

QPushButton* boton(const QString& nombre, const QString& texto, const QString& imagen,
                   QWidget* padre) {
    auto* b = new QPushButton(icono(imagen), texto, padre);
    b->setObjectName(nombre);
    b->setMinimumHeight(AltoControl);
    return b;
}

// Interruptor SÍ/NO: oprimido es SÍ y se ve en el acento.
QPushButton* bandera() {
    auto* b = new QPushButton(kNo);
    b->setCheckable(true);
    b->setMinimumWidth(120);
    QObject::connect(b, &QPushButton::toggled, b, [b](bool si) {
        b->setText(si ? kSi : kNo);
        ponEstilo(b, si ? "primario" : "");
    });
    return b;
}

// Decimales: lo tecleado se queda tal cual hasta guardar.
QLineEdit* decimal(bool negativos = false) {
    auto* e = new QLineEdit(QStringLiteral("0.00"));
    const QString patron =
        negativos ? QStringLiteral("-?[0-9,]*\\.?[0-9]*") : QStringLiteral("[0-9,]*\\.?[0-9]*");
    e->setValidator(new QRegularExpressionValidator(QRegularExpression(patron), e));
    e->setInputMethodHints(Qt::ImhFormattedNumbersOnly);
    return e;
}

QComboBox* tasas(const QStringList& opciones) {
    auto* c = new QComboBox;
    c->setEditable(true);
    c->addItems(opciones);
    c->setInsertPolicy(QComboBox::NoInsert);
    c->lineEdit()->setValidator(
        new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]*\\.?[0-9]*")), c));
    c->setCurrentText(QStringLiteral("0.00"));
    return c;
}

void eligeDato(QComboBox* combo, int64_t id) {
    combo->setCurrentIndex(combo->findData(QVariant::fromValue<qlonglong>(id)));
}

// Una página que se desliza con el dedo, con su contenido centrado y de ancho legible.
QScrollArea* deslizable(QWidget* contenido, const QString& nombre) {
    contenido->setMaximumWidth(kAnchoContenido);
    auto* centro = new QWidget;
    auto* capa = new QHBoxLayout(centro);
    capa->addStretch(1);
    capa->addWidget(contenido, 100);
    capa->addStretch(1);
    auto* desliza = new QScrollArea;
    desliza->setObjectName(nombre);
    desliza->setWidgetResizable(true);
    desliza->setFrameShape(QFrame::NoFrame);
    desliza->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    desliza->setWidget(centro);
    QScroller::grabGesture(desliza->viewport(), QScroller::LeftMouseButtonGesture);
    return desliza;
}

int64_t datoElegido(const QComboBox* combo) {
    return combo->currentIndex() < 0 ? 0 : combo->currentData().toLongLong();
}

} // namespace

TProductosEditaF::TProductosEditaF(const Sesion& sesion, int64_t productoID, int64_t lineaID,
                                   QWidget* padre)
    : QWidget(padre), sesion_(sesion), productoID_(productoID), lineaID_(lineaID),
      edicion_(ModuloDeDatos.ConexionBD, sesion) {
    setObjectName(QStringLiteral("ProductosEdita"));
    setWindowTitle(QStringLiteral("Edición de Producto"));

    auto* barra = new QFrame(this);
    barra->setObjectName(QStringLiteral("BarraEdicion"));
    ponEstilo(barra, "tarjeta");
    titulo_ = creaEtiqueta(esNuevo() ? QStringLiteral("Alta Producto")
                                     : QStringLiteral("Modifica Producto"),
                           QStringLiteral("TituloPagina"), "titulo", barra);
    siguiente_ = boton(QStringLiteral("BotonSiguiente"), QStringLiteral("Almacenar"),
                       QStringLiteral("Actualizacion"), barra);
    ponEstilo(siguiente_, "primario");
    siguiente_->setEnabled(false); // hasta que termine de cargar
    imprimir_ = boton(QStringLiteral("BotonImprimirEtiqueta"), QStringLiteral("Imprimir"),
                      QStringLiteral("Etiquetas"), barra);
    ponEstilo(imprimir_, "primario");
    imprimir_->hide();
    connect(imprimir_, &QPushButton::clicked, this, &TProductosEditaF::ImprimirEtiquetaClick);
    connect(siguiente_, &QPushButton::clicked, this, &TProductosEditaF::BotonSiguienteClick);
    auto* capaBarra = new QHBoxLayout(barra);
    capaBarra->addWidget(titulo_, 1);
    capaBarra->addWidget(siguiente_);
    capaBarra->addWidget(imprimir_);

    paginas_ = new QStackedWidget(this);
    paginas_->setObjectName(QStringLiteral("PaginasEdicion"));
    paginaDatos_ = creaPaginaDatos();
    paginaFoto_ = creaPaginaFoto();
    paginaEtiqueta_ = creaPaginaEtiqueta();
    paginaVisor_ = new QWidget;
    paginaVisor_->setObjectName(QStringLiteral("VisorEtiquetas"));
    paginaRangos_ = new QWidget;
    paginaRangos_->setObjectName(QStringLiteral("RangosProducto"));
    for (QWidget* p : {paginaVisor_, paginaRangos_})
        new QVBoxLayout(p);
    for (QWidget* p : {paginaDatos_, paginaFoto_, paginaEtiqueta_, paginaVisor_, paginaRangos_})
        paginas_->addWidget(p);

    auto* capa = new QVBoxLayout(this);
    capa->addWidget(barra);
    capa->addWidget(paginas_, 1);

    muestraFoto();
    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"),
                      [this] { CargaInformacionTimer(); });
}

QWidget* TProductosEditaF::creaPaginaDatos() {
    auto* contenido = new QWidget;
    contenido->setObjectName(QStringLiteral("ListaEdicion"));
    auto* columna = new QVBoxLayout(contenido);

    QFrame* tarjeta = nullptr;
    QGridLayout* rejilla = nullptr;
    int fila = 0;
    auto grupo = [&](const QString& titulo) {
        QString nombre = titulo;
        nombre.remove(QLatin1Char(' '));
        columna->addSpacing(6);
        columna->addWidget(
            creaEtiqueta(titulo, QStringLiteral("Grupo") + nombre, "subtitulo", contenido));
        tarjeta = new QFrame(contenido);
        ponEstilo(tarjeta, "tarjeta");
        rejilla = new QGridLayout(tarjeta);
        rejilla->setColumnMinimumWidth(0, kAnchoEtiqueta);
        rejilla->setColumnStretch(1, 1);
        columna->addWidget(tarjeta);
        fila = 0;
    };
    // Cada elemento con su leyenda; el editor lleva el nombre de su columna.
    auto item = [&](const QString& leyenda, QWidget* editor, const QString& nombreColumna) {
        editor->setObjectName(nombreColumna);
        editor->setMinimumHeight(AltoControl);
        auto* l =
            creaEtiqueta(leyenda, QStringLiteral("Etiqueta") + nombreColumna, nullptr, tarjeta);
        l->setBuddy(editor);
        l->setProperty("columna", nombreColumna);
        rejilla->addWidget(l, fila, 0);
        const bool angosto =
            qobject_cast<QPushButton*>(editor) && static_cast<QPushButton*>(editor)->isCheckable();
        rejilla->addWidget(editor, fila, 1, angosto ? Qt::AlignLeft : Qt::Alignment());
        ++fila;
    };
    auto texto = [] { return new QLineEdit; };

    grupo(QStringLiteral("Datos Requeridos"));
    item(QStringLiteral("Clave de Identificación"), clave_ = texto(), QStringLiteral("clave"));
    item(QStringLiteral("Descripción"), producto_ = texto(), QStringLiteral("producto"));
    unidad_ = new QComboBox;
    unidad_->setPlaceholderText(QStringLiteral("Seleccione la Unidad de Medida"));
    item(QStringLiteral("Unidad de Medida "), unidad_, QStringLiteral("unidad"));
    moneda_ = new QComboBox;
    moneda_->setPlaceholderText(QStringLiteral("Seleccione una Moneda"));
    item(QStringLiteral("Moneda"), moneda_, QStringLiteral("moneda"));
    item(QStringLiteral("Clave SAT"), claveSAT_ = texto(), QStringLiteral("claveSAT"));
    claveSAT_->setPlaceholderText(QStringLiteral("8 caracteres"));

    grupo(QStringLiteral("Operativos"));
    item(QStringLiteral("Existencia"), existencia_ = decimal(true), QStringLiteral("existencia"));
    if (!esNuevo()) {
        // Otra estación puede vender mientras el editor está abierto: lo tecleado aquí no
        // reemplaza la existencia, se suma o resta como ajuste a la que haya al guardar.
        auto* nota = creaEtiqueta(QString::fromUtf8(LeyendaAjusteExistencia),
                                  QStringLiteral("NotaExistencia"), nullptr, tarjeta);
        nota->setWordWrap(true);
        rejilla->addWidget(nota, fila, 1);
        ++fila;
    }
    item(QStringLiteral("Costo"), pCompra_ = decimal(), QStringLiteral("pCompra"));

    grupo(QStringLiteral("Banderas"));
    item(QStringLiteral("¿Maneja Inventarios?"), manejaInventarios_ = bandera(),
         QStringLiteral("manejaInventarios"));
    item(QStringLiteral("¿Requiere Autorización de Venta?"), requiereAutorizacionVenta_ = bandera(),
         QStringLiteral("requiereAutorizacionVenta"));
    item(QStringLiteral("¿Utiliza Números de Serie?"), manejaSeries_ = bandera(),
         QStringLiteral("manejaSeries"));
    item(QStringLiteral("¿Es un Kit?"), esPaquete_ = bandera(), QStringLiteral("esPaquete"));
    item(QStringLiteral("¿Se cobra por Tiempo?"), recurrente_ = bandera(),
         QStringLiteral("Recurrente"));
    item(QStringLiteral("¿Maneja Lotes y Caducidades?"), caduca_ = bandera(),
         QStringLiteral("caduca"));
    item(QStringLiteral("¿Se despliega en Kiosko de Venta?"), mostrarKioskoPV_ = bandera(),
         QStringLiteral("MostrarKioskoPV"));
    item(QStringLiteral("¿Maneja Báscula?"), utilizaBascula_ = bandera(),
         QStringLiteral("utilizaBascula"));

    grupo(QStringLiteral("Precios de Venta"));
    const QStringList columnasPrecio = {QStringLiteral("precio"), QStringLiteral("precio2"),
                                        QStringLiteral("precio3"), QStringLiteral("precio4"),
                                        QStringLiteral("precio5")};
    for (size_t i = 0; i < precios_.size(); ++i)
        item(QStringLiteral("Precio %1").arg(i + 1), precios_[i] = decimal(),
             columnasPrecio.at(static_cast<qsizetype>(i)));
    item(QStringLiteral("¿Permite Modificar el Precio?"), precioAbierto_ = bandera(),
         QStringLiteral("precioAbierto"));

    grupo(QStringLiteral("Impuestos"));
    item(QStringLiteral("IVA"), iva_ = tasas(kTasasIva), QStringLiteral("porcentajeImpuesto"));
    item(QStringLiteral("IEPS"), ieps_ = tasas(kTasasIeps), QStringLiteral("IEPS"));

    grupo(QStringLiteral("Opcionales"));
    item(QStringLiteral("Dato Adicional"), datoAdicional1_ = texto(),
         QStringLiteral("datoAdicional1"));
    item(QStringLiteral("Código de Barra"), codigoBarra_ = texto(), QStringLiteral("codigoBarra"));
    item(QStringLiteral("¿Ofrece Puntos?"), bonificaPuntos_ = bandera(),
         QStringLiteral("bonificaPuntos"));
    item(QStringLiteral("% de Bonificación"), porcentajeBonificacion_ = decimal(),
         QStringLiteral("porcentajeBonificacion"));
    item(QStringLiteral("Máximo en Almacén"), maximo_ = decimal(), QStringLiteral("maximo"));
    item(QStringLiteral("Mínimo en Almacén"), minimo_ = decimal(), QStringLiteral("minimo"));
    item(QStringLiteral("Peso"), peso_ = decimal(), QStringLiteral("Peso"));

    grupo(QStringLiteral("Diversos"));
    fotoItem_ = new QPushButton(QStringLiteral("Presione Aquí para Asignarla"));
    fotoItem_->setIconSize(QSize(64, 64));
    item(QStringLiteral("Foto"), fotoItem_, QStringLiteral("Foto"));
    // La hoja de estilo fija la altura de los botones; la miniatura necesita más.
    fotoItem_->setStyleSheet(QStringLiteral("QPushButton { min-height: 72px; }"));
    item(QStringLiteral("¿Activo?"), activo_ = bandera(), QStringLiteral("activo"));
    activo_->setChecked(true);
    imprimeEtiqueta_ = new QPushButton(icono(QStringLiteral("Etiquetas")),
                                       QStringLiteral("Genera Código de Barras"));
    item(QStringLiteral("Imprime Etiqueta"), imprimeEtiqueta_, QStringLiteral("ImprimeEtiqueta"));
    rangosPrecios_ = new QPushButton(icono(QStringLiteral("IncrementoPrecios")),
                                     QStringLiteral("Define Precios de Venta por Volumen"));
    item(QStringLiteral("Rangos de Precios"), rangosPrecios_, QStringLiteral("RangosPrecios"));
    // Los rangos son de un producto ya guardado.
    rangosPrecios_->setEnabled(!esNuevo());
    columna->addStretch(1);

    connect(fotoItem_, &QPushButton::clicked, this, &TProductosEditaF::FotoClick);
    connect(imprimeEtiqueta_, &QPushButton::clicked, this, &TProductosEditaF::ImprimeEtiquetaClick);
    connect(rangosPrecios_, &QPushButton::clicked, this, &TProductosEditaF::RangosPreciosClick);

    return deslizable(contenido, QStringLiteral("DatosProducto"));
}

QWidget* TProductosEditaF::creaPaginaFoto() {
    auto* pagina = new QWidget;
    pagina->setObjectName(QStringLiteral("FotoProducto"));
    vistaFoto_ = new QLabel(pagina);
    vistaFoto_->setObjectName(QStringLiteral("VistaFoto"));
    vistaFoto_->setAlignment(Qt::AlignCenter);
    vistaFoto_->setMinimumSize(kVistaFoto);
    ponEstilo(vistaFoto_, "tarjeta");

    seleccionarFoto_ = boton(QStringLiteral("BotonSeleccionarFoto"),
                             QStringLiteral("Seleccionar Foto"), QStringLiteral("Foto"), pagina);
    rotarFoto_ = boton(QStringLiteral("BotonRotarFoto"), QStringLiteral("Rotar"),
                       QStringLiteral("Rotar"), pagina);
    eliminarFoto_ = boton(QStringLiteral("BotonEliminarFoto"), QStringLiteral("Eliminar Foto"),
                          QStringLiteral("Cancelacion"), pagina);
    ponEstilo(eliminarFoto_, "peligro");
    connect(seleccionarFoto_, &QPushButton::clicked, this, &TProductosEditaF::SeleccionarFotoClick);
    connect(rotarFoto_, &QPushButton::clicked, this, &TProductosEditaF::RotarFotoClick);
    connect(eliminarFoto_, &QPushButton::clicked, this, &TProductosEditaF::EliminarFotoClick);

    auto* botones = new QVBoxLayout;
    for (QPushButton* b : {seleccionarFoto_, rotarFoto_, eliminarFoto_})
        botones->addWidget(b);
    botones->addStretch(1);
    botones->addWidget(creaEtiqueta(QStringLiteral("La foto se guarda al almacenar el producto."),
                                    QStringLiteral("AyudaFoto"), nullptr, pagina));
    auto* capa = new QHBoxLayout(pagina);
    capa->addWidget(vistaFoto_, 1);
    capa->addLayout(botones);
    return pagina;
}

QWidget* TProductosEditaF::creaPaginaEtiqueta() {
    auto* pagina = new QWidget;
    auto* tarjeta = new QFrame(pagina);
    ponEstilo(tarjeta, "tarjeta");
    auto* rejilla = new QGridLayout(tarjeta);
    rejilla->setColumnMinimumWidth(0, kAnchoEtiqueta);
    rejilla->setColumnStretch(1, 1);
    int fila = 0;
    auto item = [&](const QString& leyenda, QWidget* editor, const QString& nombre) {
        editor->setObjectName(nombre);
        editor->setMinimumHeight(AltoControl);
        auto* l = creaEtiqueta(leyenda, QStringLiteral("Etiqueta") + nombre, nullptr, tarjeta);
        l->setBuddy(editor);
        rejilla->addWidget(l, fila, 0);
        rejilla->addWidget(editor, fila, 1);
        ++fila;
    };
    auto entero = [](int minimo, int maximo, int valor) {
        auto* s = new QSpinBox;
        s->setRange(minimo, maximo);
        s->setValue(valor);
        return s;
    };
    auto real = [](double minimo, double maximo, double valor, double paso) {
        auto* s = new QDoubleSpinBox;
        s->setRange(minimo, maximo);
        s->setDecimals(1);
        s->setSingleStep(paso);
        s->setValue(valor);
        return s;
    };

    const ParametrosEtiqueta omision;
    campoEtiqueta_ = new QComboBox;
    campoEtiqueta_->addItems({QStringLiteral("Clave"), QStringLiteral("Código de Barra")});
    item(QStringLiteral("Campo (Requerido)"), campoEtiqueta_, QStringLiteral("CampoEtiqueta"));
    simbologia_ = new QComboBox;
    for (const Simbologia& s : simbologias())
        simbologia_->addItem(s.nombre, s.codigo);
    simbologia_->setCurrentIndex(std::max(0, simbologia_->findText(QStringLiteral("Code 128"))));
    item(QStringLiteral("Simbología (Requerido)"), simbologia_,
         QStringLiteral("SimbologiaEtiqueta"));
    rotacion_ = new QComboBox;
    rotacion_->addItems({QStringLiteral("0 Grados"), QStringLiteral("90 Grados"),
                         QStringLiteral("180 Grados"), QStringLiteral("270 Grados")});
    item(QStringLiteral("Rotación"), rotacion_, QStringLiteral("RotacionEtiqueta"));
    item(QStringLiteral("Borde"), borde_ = entero(0, 20, 1), QStringLiteral("BordeEtiqueta"));
    item(QStringLiteral("Espaciado"), espaciado_ = entero(0, 20, 2),
         QStringLiteral("EspaciadoEtiqueta"));
    item(QStringLiteral("Escala"), escala_ = real(0.1, 1.0, omision.escala, 0.1),
         QStringLiteral("EscalaEtiqueta"));
    item(QStringLiteral("Altura (mm)"), altura_ = real(5.0, 300.0, omision.alturaMm, 1.0),
         QStringLiteral("AlturaEtiqueta"));
    item(QStringLiteral("Anchura (mm)"), anchura_ = real(10.0, 300.0, omision.anchuraMm, 1.0),
         QStringLiteral("AnchuraEtiqueta"));
    item(QStringLiteral("Tamaño de Letra"), tamanoLetra_ = entero(4, 48, omision.tamanoLetra),
         QStringLiteral("TamanoLetraEtiqueta"));
    precioEtiqueta_ = new QComboBox;
    for (size_t i = 1; i <= precios_.size(); ++i)
        precioEtiqueta_->addItem(QStringLiteral("Precio %1").arg(i));
    precioEtiqueta_->addItem(QStringLiteral("No Imprimir"));
    item(QStringLiteral("Precio de Venta"), precioEtiqueta_, QStringLiteral("PrecioEtiqueta"));
    item(QStringLiteral("Número de Copias (Existencias)"), copias_ = entero(0, 100000, 0),
         QStringLiteral("CopiasEtiqueta"));
    imprimeExistencias_ = bandera();
    item(QStringLiteral("Imprimir Existencias"), imprimeExistencias_,
         QStringLiteral("ImprimirExistencias"));
    rejilla->setAlignment(imprimeExistencias_, Qt::AlignLeft);

    auto* capa = new QVBoxLayout(pagina);
    capa->addWidget(tarjeta);
    capa->addStretch(1);
    return deslizable(pagina, QStringLiteral("ParametrosImpresion"));
}

void TProductosEditaF::error(const QString& mensaje) {
    Sonidos::reproduce(Sonido::Error);
    mensajes_.muestra(mensaje);
}

void TProductosEditaF::muestraPagina(QWidget* pagina) {
    paginas_->setCurrentWidget(pagina);
    if (pagina == paginaDatos_)
        titulo_->setText(esNuevo() ? QStringLiteral("Alta Producto")
                                   : QStringLiteral("Modifica Producto"));
    else if (pagina == paginaFoto_)
        titulo_->setText(QStringLiteral("Foto del Producto"));
    else if (pagina == paginaEtiqueta_)
        titulo_->setText(QStringLiteral("Parámetros de Impresión"));
    else if (pagina == paginaRangos_)
        titulo_->setText(QStringLiteral("Rangos de Precios"));
    else
        titulo_->setText(QStringLiteral("Etiquetas"));
    siguiente_->setVisible(pagina == paginaDatos_);
    imprimir_->setVisible(pagina == paginaEtiqueta_);
}

void TProductosEditaF::closeEvent(QCloseEvent* evento) {
    // "Regresar" pide cerrar: desde una página interna solo se vuelve a la anterior.
    if (regresaPagina()) {
        evento->ignore();
        return;
    }
    QWidget::closeEvent(evento);
    emit cerrado();
}

bool TProductosEditaF::regresaPagina() {
    QWidget* actual = paginas_->currentWidget();
    if (actual == paginaDatos_) return false;
    if (actual == paginaVisor_) {
        muestraPagina(paginaEtiqueta_);
        return true;
    }
    if (actual == paginaRangos_) {
        // Se abre de nuevo cada vez, con los rangos como estén entonces.
        rangos_->deleteLater();
        rangos_ = nullptr;
    }
    muestraPagina(paginaDatos_);
    return true;
}

// ---------------------------------------------------------------------------------------------
// Carga
// ---------------------------------------------------------------------------------------------

void TProductosEditaF::CargaInformacionTimer() {
    std::vector<UnidadMedida> unidades;
    std::vector<MonedaProducto> monedas;
    std::optional<ProductoConsultado> consultado;
    try {
        unidades = edicion_.unidades();
        monedas = edicion_.monedas();
        if (!esNuevo()) consultado = edicion_.consulta(productoID_);
    } catch (const ErrorServicio& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Edición de Producto, carga:" << e.mensaje();
        return;
    }
    for (const UnidadMedida& u : unidades)
        unidad_->addItem(u.claveSAT.isEmpty()
                             ? u.unidad
                             : u.unidad + QStringLiteral(" (") + u.claveSAT + QLatin1Char(')'),
                         QVariant::fromValue<qlonglong>(u.id));
    for (const MonedaProducto& m : monedas)
        moneda_->addItem(m.abreviacion.isEmpty() ? m.descripcion
                                                 : m.descripcion + QStringLiteral(" (") +
                                                       m.abreviacion + QLatin1Char(')'),
                         QVariant::fromValue<qlonglong>(m.id));

    if (esNuevo()) {
        const ValoresEmpresa& v = edicion_.valores();
        eligeDato(unidad_, v.unidad);
        eligeDato(moneda_, v.moneda);
        claveSAT_->setText(v.claveSAT);
        if (v.autoNumera) clave_->setText(QString::number(v.idProducto));
    } else {
        if (!consultado) {
            // Otra estación lo borró: no hay nada que editar.
            error(QString::fromUtf8(MensajeErrorLectura));
            qWarning() << "Edición de Producto: no existe el producto" << productoID_;
            return;
        }
        leido_ = consultado->producto;
        muestraProducto(leido_);
        existenciaMostrada_ = existencia_->text();
        fotoGuardada_ = !consultado->foto.isEmpty();
        if (fotoGuardada_) foto_.loadFromData(consultado->foto);
        muestraFoto();
    }
    cargado_ = true;
    siguiente_->setEnabled(true);
}

void TProductosEditaF::muestraProducto(const ProductoEditado& p) {
    clave_->setText(p.clave);
    producto_->setText(p.producto);
    eligeDato(unidad_, p.unidad);
    eligeDato(moneda_, p.moneda);
    claveSAT_->setText(p.claveSAT);
    existencia_->setText(textoDecimal(p.existencia));
    pCompra_->setText(textoDecimal(p.pCompra));
    manejaInventarios_->setChecked(p.manejaInventarios);
    requiereAutorizacionVenta_->setChecked(p.requiereAutorizacionVenta);
    manejaSeries_->setChecked(p.manejaSeries);
    esPaquete_->setChecked(p.esPaquete);
    recurrente_->setChecked(p.recurrente);
    caduca_->setChecked(p.caduca);
    mostrarKioskoPV_->setChecked(p.mostrarKioskoPV);
    utilizaBascula_->setChecked(p.utilizaBascula);
    for (size_t i = 0; i < precios_.size(); ++i)
        precios_[i]->setText(textoDecimal(p.precios[i]));
    precioAbierto_->setChecked(p.precioAbierto);
    iva_->setCurrentText(textoDecimal(p.porcentajeImpuesto));
    ieps_->setCurrentText(textoDecimal(p.ieps));
    datoAdicional1_->setText(p.datoAdicional1);
    codigoBarra_->setText(p.codigoBarra);
    bonificaPuntos_->setChecked(p.bonificaPuntos);
    porcentajeBonificacion_->setText(textoDecimal(p.porcentajeBonificacion));
    maximo_->setText(textoDecimal(p.maximo));
    minimo_->setText(textoDecimal(p.minimo));
    peso_->setText(textoDecimal(p.peso));
    activo_->setChecked(p.activo);
}

ProductoEditado TProductosEditaF::productoCapturado() const {
    ProductoEditado p;
    p.id = productoID_;
    p.linea = esNuevo() ? lineaID_ : leido_.linea;
    p.clave = clave_->text();
    p.producto = producto_->text();
    p.unidad = datoElegido(unidad_);
    p.moneda = datoElegido(moneda_);
    p.claveSAT = claveSAT_->text();
    // Sin tocar el campo, la existencia es la leída: no hay ajuste que guardar.
    p.existencia = !esNuevo() && existencia_->text() == existenciaMostrada_
                       ? leido_.existencia
                       : decimalDeTexto(existencia_->text());
    p.pCompra = decimalDeTexto(pCompra_->text());
    p.manejaInventarios = manejaInventarios_->isChecked();
    p.requiereAutorizacionVenta = requiereAutorizacionVenta_->isChecked();
    p.manejaSeries = manejaSeries_->isChecked();
    p.esPaquete = esPaquete_->isChecked();
    p.recurrente = recurrente_->isChecked();
    p.caduca = caduca_->isChecked();
    p.mostrarKioskoPV = mostrarKioskoPV_->isChecked();
    p.utilizaBascula = utilizaBascula_->isChecked();
    for (size_t i = 0; i < precios_.size(); ++i)
        p.precios[i] = decimalDeTexto(precios_[i]->text());
    p.precioAbierto = precioAbierto_->isChecked();
    p.porcentajeImpuesto = decimalDeTexto(iva_->currentText());
    p.ieps = decimalDeTexto(ieps_->currentText());
    p.datoAdicional1 = datoAdicional1_->text();
    p.codigoBarra = codigoBarra_->text();
    p.bonificaPuntos = bonificaPuntos_->isChecked();
    p.porcentajeBonificacion = decimalDeTexto(porcentajeBonificacion_->text());
    p.maximo = decimalDeTexto(maximo_->text());
    p.minimo = decimalDeTexto(minimo_->text());
    p.peso = decimalDeTexto(peso_->text());
    p.activo = activo_->isChecked();
    return p;
}

// ---------------------------------------------------------------------------------------------
// Guardado
// ---------------------------------------------------------------------------------------------

void TProductosEditaF::BotonSiguienteClick() {
    if (!cargado_) return;
    // Un segundo toque mientras se revisa o se guarda no duplica el alta.
    siguiente_->setEnabled(false);
    ejecutaConLeyenda(this, QStringLiteral("Verificando Información"),
                      [this] { RevisaProductoTimer(); });
}

void TProductosEditaF::RevisaProductoTimer() {
    std::optional<QString> rechazo;
    try {
        rechazo = edicion_.revisa(productoCapturado());
        if (!rechazo && !dispositivoAutorizado(ModuloDeDatos.ConexionBD, sesion_.DispositivoID))
            rechazo = QString::fromUtf8(MensajeDispositivoNoAutorizado) + sesion_.DispositivoID;
    } catch (const ErrorServicio& e) {
        siguiente_->setEnabled(true);
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Edición de Producto, revisión:" << e.mensaje();
        return;
    }
    if (rechazo) {
        // Lo tecleado se queda para corregirlo.
        siguiente_->setEnabled(true);
        error(*rechazo);
        return;
    }
    Sonidos::reproduce(Sonido::Click);
    ejecutaConLeyenda(this, QStringLiteral("Modificando Producto"),
                      [this] { ModificaProductoTimer(); });
}

void TProductosEditaF::ModificaProductoTimer() {
    const ProductoEditado p = productoCapturado();
    FotoEditada foto;
    foto.guardada = fotoGuardada_;
    // Elegir una foto y quitarla antes de guardar no cambia nada.
    foto.cambiada = fotoCambiada_ && (fotoGuardada_ || !foto_.isNull());
    if (foto.cambiada && !foto_.isNull()) {
        foto.foto = fotoParaGuardar(foto_, LadoMaximoFoto);
        foto.miniatura = miniaturaDe(foto_, TamanoMiniatura);
    }
    int64_t id = 0;
    try {
        id = edicion_.guarda(p, foto, leido_);
    } catch (const RegistroInexistente& e) {
        // Otra estación lo eliminó: no hay a dónde guardar; el editor se queda para copiarlo.
        error(e.mensaje());
        qWarning() << "Edición de Producto, al guardar:" << e.mensaje() << productoID_;
        return;
    } catch (const ErrorServicio& e) {
        siguiente_->setEnabled(true);
        error(QString::fromUtf8(MensajeErrorRegistro));
        qWarning() << "Edición de Producto, al guardar:" << e.mensaje();
        return;
    }
    productoID_ = id;
    emit productoAlmacenado(id);
    close();
}

// ---------------------------------------------------------------------------------------------
// Foto
// ---------------------------------------------------------------------------------------------

void TProductosEditaF::muestraFoto() {
    if (foto_.isNull()) {
        vistaFoto_->setPixmap(imagen(QStringLiteral("Foto"), QSize(128, 128)));
        fotoItem_->setIcon(icono(QStringLiteral("Foto")));
    } else {
        const QSize espacio = vistaFoto_->size().expandedTo(kVistaFoto);
        vistaFoto_->setPixmap(QPixmap::fromImage(
            foto_.scaled(espacio, Qt::KeepAspectRatio, Qt::SmoothTransformation)));
        fotoItem_->setIcon(QIcon(QPixmap::fromImage(
            foto_.scaled(fotoItem_->iconSize(), Qt::KeepAspectRatio, Qt::SmoothTransformation))));
    }
    rotarFoto_->setEnabled(!foto_.isNull());
    eliminarFoto_->setEnabled(!foto_.isNull());
}

void TProductosEditaF::FotoClick() {
    Sonidos::reproduce(Sonido::Click);
    muestraPagina(paginaFoto_);
    muestraFoto();
}

void TProductosEditaF::SeleccionarFotoClick() {
    Sonidos::reproduce(Sonido::Click);
    const QString ruta = eligeArchivoImagen(this);
    if (!ruta.isEmpty()) cargaArchivoFoto(ruta);
}

void TProductosEditaF::cargaArchivoFoto(const QString& ruta) {
    QString motivo;
    const QImage leida = leeImagen(ruta, &motivo);
    if (leida.isNull()) {
        // La foto que había se queda.
        error(QStringLiteral("No seleccionó un archivo de Imagen válido"));
        qWarning() << "Edición de Producto, foto:" << ruta << motivo;
        return;
    }
    foto_ = leida;
    fotoCambiada_ = true;
    muestraFoto();
}

void TProductosEditaF::RotarFotoClick() {
    if (foto_.isNull()) return;
    Sonidos::reproduce(Sonido::Click);
    ejecutaConLeyenda(this, QStringLiteral("Rotando Fotografía"), [this] { RotaFotoTimer(); });
}

void TProductosEditaF::RotaFotoTimer() {
    foto_ = giraImagen(foto_);
    fotoCambiada_ = true;
    muestraFoto();
}

void TProductosEditaF::EliminarFotoClick() {
    if (foto_.isNull()) return;
    Sonidos::reproduce(Sonido::Click);
    foto_ = QImage();
    fotoCambiada_ = true;
    muestraFoto();
}

// ---------------------------------------------------------------------------------------------
// Etiquetas
// ---------------------------------------------------------------------------------------------

void TProductosEditaF::ImprimeEtiquetaClick() {
    Sonidos::reproduce(Sonido::Click);
    // Una etiqueta por pieza en existencia, con lo tecleado en este momento.
    const double existencia = decimalDeTexto(existencia_->text());
    copias_->setValue(static_cast<int>(
        std::clamp(std::floor(existencia), 0.0, static_cast<double>(copias_->maximum()))));
    muestraPagina(paginaEtiqueta_);
}

void TProductosEditaF::ImprimirEtiquetaClick() {
    const int copias = copias_->value();
    if (copias <= 0) {
        error(QStringLiteral("Debe especificar un número de copias mayor a cero"));
        return;
    }
    if (!mensajes_.pregunta(QStringLiteral("Desea Imprimir ") + QString::number(copias) +
                            QStringLiteral(" Etiquetas?")))
        return;
    Sonidos::reproduce(Sonido::Click);

    ParametrosEtiqueta p;
    p.valor =
        (campoEtiqueta_->currentIndex() == 0 ? clave_->text() : codigoBarra_->text()).trimmed();
    p.simbologia = simbologia_->currentIndex() < 0 ? -1 : simbologia_->currentData().toInt();
    p.rotacion = rotacion_->currentIndex() * 90;
    p.borde = borde_->value();
    p.espaciado = espaciado_->value();
    p.escala = escala_->value();
    p.alturaMm = altura_->value();
    p.anchuraMm = anchura_->value();
    p.tamanoLetra = tamanoLetra_->value();
    p.descripcion = producto_->text().trimmed();
    const int nivel = precioEtiqueta_->currentIndex();
    if (nivel >= 0 && nivel < static_cast<int>(precios_.size()))
        p.precio = textoPrecio(decimalDeTexto(precios_[static_cast<size_t>(nivel)]->text()));
    if (imprimeExistencias_->isChecked()) {
        p.existencias =
            QStringLiteral("Existencia: ") + textoCantidad(decimalDeTexto(existencia_->text()));
        if (unidad_->currentIndex() >= 0)
            p.existencias +=
                QLatin1Char(' ') + unidad_->currentText().section(QStringLiteral(" ("), 0, 0);
    }
    p.copias = copias;
    ejecutaConLeyenda(this, QStringLiteral("Generando Etiquetas"),
                      [this, p] { GeneraEtiquetasTimer(p); });
}

void TProductosEditaF::GeneraEtiquetasTimer(const ParametrosEtiqueta& parametros) {
    // El visor anterior suelta el archivo antes de reescribirlo.
    delete visor_;
    visor_ = nullptr;
    if (parametros.valor.isEmpty() || parametros.simbologia < 0) {
        error(kErrorCodigo);
        qWarning() << "Edición de Producto, etiquetas: sin valor que codificar o sin simbología";
        return;
    }
    const QString archivo = archivoPdfLocal();
    try {
        generaEtiquetasPdf(parametros, archivo);
    } catch (const ErrorCodigoBarras& e) {
        error(kErrorCodigo);
        qWarning() << "Edición de Producto, etiquetas:" << e.what();
        return;
    }
    visor_ = new TVisorPdfF(archivo, paginaVisor_);
    paginaVisor_->layout()->addWidget(visor_);
    muestraPagina(paginaVisor_);
}

void TProductosEditaF::RangosPreciosClick() {
    if (esNuevo()) return;
    Sonidos::reproduce(Sonido::Click);
    rangos_ = new TRangosF(sesion_, productoID_, paginaRangos_);
    paginaRangos_->layout()->addWidget(rangos_);
    muestraPagina(paginaRangos_);
}

} // namespace cajaplex
