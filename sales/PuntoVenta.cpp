#include "sales/PuntoVenta.h"

#include <algorithm>
#include <cmath>
#include <exception>

#include <QAbstractListModel>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QDoubleValidator>
#include <QFormLayout>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QIntValidator>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QLocale>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPrinterInfo>
#include <QPushButton>
#include <QRegularExpression>
#include <QScroller>
#include <QShortcut>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>
#include <QTableWidget>
#include <QTimer>
#include <QVBoxLayout>
#include <QtDebug>

#include "datos/Consulta.h"
#include "datos/ModuloDatos.h"
#include "datos/Utilerias.h"
#include "pantallas/DelegadoRenglon.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/ModeloTabla.h"
#include "pantallas/RegistroModulos.h"
#include "pantallas/RolesRenglon.h"
#include "pantallas/Sonidos.h"
#include "printing/ImpresionDocumentos.h"
#include "printing/PlantillasLocales.h"
#include "sales/CatalogoClientes.h"
#include "sales/Clientes.h"
#include "sales/ControlesCaja.h"
#include "sales/DocumentoClonado.h"

namespace cajaplex {

namespace {

const char* const SqlConfigura =
    "Select ifnull(clienteDefaultRem, 0) as ClienteDefaultRemision, ifnull(feMetodoIDRem, 0) as "
    "TipoPagoDefaultRemision, ifnull(permiteCambiarVendedorRem, 0) as "
    "PermisoCambiarVendedorRemision, ifnull(DecimalesCantKioskoPV, 2) as DecimalesCantKioskoPV "
    "From Configura Where empresaID = :EmpresaID";
const char* const SqlFormasPago = "Select id, descripcion From FEMetodosPago "
                                  "Where empresaID = :EmpresaID Order By ClaveSAT";
const char* const SqlMonedas = "Select id, descripcion, ifnull(tipoCambioVenta, 1) as "
                               "tipoCambioVenta From Monedas Where empresaID = :EmpresaID "
                               "Order By id";
const char* const SqlVendedores =
    "Select A.usuarioID, A.nombre From Usuarios A Join UsuariosEmpresa B On B.usuarioID = "
    "A.usuarioID And B.empresaID = :EmpresaID And B.acceso = 1 Where ifnull(A.activo, 0) = 1 "
    "Order By A.nombre";
const char* const SqlCliente =
    "Select ID, nombre, ifnull(limiteCredito, 0) as limiteCredito, ifnull(diasCredito, 0) as "
    "diasCredito, ifnull(Email, '') as Email From Clientes Where empresaID = :EmpresaID "
    "And id = :ClienteID";
const char* const SqlSaldoCliente =
    "Select Ifnull(SUM(A.SaldoPendiente * A.tipoCambio), 0) as SaldoPendiente, "
    "ifnull(C.BloquearCredito, 0) as BloquearCredito, ifnull(C.limiteCredito, 0) as "
    "limiteCredito From Clientes C Left Join Remision A On A.empresaID = C.empresaID And "
    "A.cliente = C.id And A.cancelada = 0 And A.Pagada = 0 And A.saldoPendiente > 0 "
    "Where C.empresaID = :EmpresaID And C.id = :ClienteID";
const char* const SqlBuscaProductos =
    "Select A.clave, A.producto, ifnull(A.precio, 0) as precio1, ifnull(A.precio2, 0) as precio2, "
    "ifnull(A.precio3, 0) as precio3, ifnull(A.precio4, 0) as precio4, ifnull(A.precio5, 0) as "
    "precio5, ifnull(A.precioAbierto, 0) as precioAbierto, ifnull(A.manejaInventarios, 0) as "
    "manejaInventarios, ifnull(A.porcentajeImpuesto, 0) as porcentajeImpuesto, "
    "case when ifnull(A.existencia, 0) <= 0 then 0 else A.existencia end as existencia "
    "From Productos A Where A.empresaID = :EmpresaID And ifnull(A.activo, 0) = 1 And "
    "(A.clave like :Texto Or A.producto like :Texto Or A.codigoBarra like :Texto) "
    "Order By A.producto";

// Las fotos del producto en su orden; solo las de un producto de la empresa.
const char* const SqlFotosProducto =
    "Select B.Foto From ProductosFotos B Join Productos A On A.id = B.id "
    "Where A.empresaID = :EmpresaID And B.id = :ProductoID Order By B.Posicion";

// El cuadro de la foto en detalles: cabe junto a los precios a 1366 de ancho.
constexpr int kLadoFoto = 300;

const QStringList kOperaciones = {QStringLiteral("Almacenar y Enviar Impresión"),
                                  QStringLiteral("Almacenar y Visualizar PDF"),
                                  QStringLiteral("Almacenar Únicamente")};

QString texto(const char* s) {
    return QString::fromUtf8(s);
}

// Las pantallas de venta abiertas en la estación: cada una es una venta en espera de las otras.
std::vector<QPointer<TPuntoVentaF>>& puntosVenta() {
    static std::vector<QPointer<TPuntoVentaF>> abiertos;
    return abiertos;
}

QString dinero(double valor) {
    return QStringLiteral("$") + QLocale(QLocale::English).toString(valor, 'f', 2);
}

double numero(const QString& t, bool* ok = nullptr) {
    return QLocale::c().toDouble(t.trimmed().remove(QLatin1Char(',')), ok);
}

// Lo que el cliente paga por una unidad del renglón (impuestos y descuento incluidos, en la
// moneda de la venta), con las mismas cuentas que el total. Se mide sobre mil unidades para que
// el redondeo del total a centavos no pese en el precio de una.
double precioUnitarioAPagar(const DocumentoVenta& venta, const RenglonVenta& r) {
    constexpr double kMuestra = 1000;
    RenglonVenta muestra = r;
    muestra.Cantidad = kMuestra;
    return calculaTotales({muestra}, venta.ivaRemision(), venta.moneda(), venta.monedas()).total /
           kMuestra;
}

template <typename T> T* nombra(T* control, const char* nombre, const QString& accesible) {
    control->setObjectName(QString::fromLatin1(nombre));
    control->setAccessibleName(accesible);
    return control;
}

QPushButton* boton(const QString& imagen, const QString& titulo, const char* nombre,
                   const char* estilo, QWidget* padre) {
    QPushButton* b = imagen.isEmpty() ? new QPushButton(titulo, padre)
                                      : creaBoton(imagen, titulo, QString(), estilo, padre);
    b->setMinimumHeight(AltoControl);
    if (estilo && imagen.isEmpty()) ponEstilo(b, estilo);
    QString accesible = titulo;
    accesible.remove(QRegularExpression(QStringLiteral("\\s*\\(.*\\)")));
    return nombra(b, nombre, accesible);
}

QLineEdit* campoNumero(const char* nombre, const QString& accesible, int decimales,
                       QWidget* padre) {
    auto* c = nombra(new QLineEdit(padre), nombre, accesible);
    c->setMinimumHeight(AltoControl);
    c->setAlignment(Qt::AlignRight);
    auto* v = new QDoubleValidator(c);
    v->setLocale(QLocale::c());
    v->setNotation(QDoubleValidator::StandardNotation);
    v->setDecimals(decimales);
    c->setValidator(v);
    return c;
}

// Lo registra el restaurante al arrancar (registraSelectorComandas).
FabricaSelectorComandas& fabricaSelectorComandas() {
    static FabricaSelectorComandas fabrica;
    return fabrica;
}

} // namespace

// Los renglones de la venta para la lista del carrito: producto y su importe arriba; cantidad,
// unidad y nota abajo, en el color de acento.
class ModeloCarrito : public QAbstractListModel {
public:
    ModeloCarrito(const DocumentoVenta& venta, QObject* padre)
        : QAbstractListModel(padre), venta_(venta) {}

    void ponDecimales(int decimales) { decimales_ = decimales; }
    void refresca() {
        beginResetModel();
        endResetModel();
    }

    int rowCount(const QModelIndex& padre = {}) const override {
        return padre.isValid() ? 0 : static_cast<int>(venta_.RemisionDetalles().size());
    }

    QVariant data(const QModelIndex& indice, int rol) const override {
        if (!indice.isValid() || indice.row() >= rowCount()) return {};
        const RenglonVenta& r = venta_.RemisionDetalles()[static_cast<size_t>(indice.row())];
        switch (rol) {
        case Qt::DisplayRole:
        case RolPrimeraLinea:
            return QStringLiteral("%1. %2").arg(r.posicion).arg(r.Producto);
        case RolSegundaLinea: {
            QString s = QLocale::c().toString(r.Cantidad, 'f', decimales_) + QLatin1Char(' ') +
                        r.Unidad + QStringLiteral(" × ") + dinero(r.Precio);
            if (r.Descuento > 0)
                s += QStringLiteral("  Desc. ") + QLocale::c().toString(r.Descuento, 'f', 2) +
                     QLatin1Char('%');
            if (!r.Nota.isEmpty()) s += QStringLiteral("  ") + r.Nota;
            return s;
        }
        case RolColorSegundaLinea:
            return QString::fromLatin1(ColorAcento);
        case RolDatoDerecha:
            return dinero(r.Importe);
        case Qt::AccessibleTextRole:
            return r.Producto;
        default:
            return {};
        }
    }

private:
    const DocumentoVenta& venta_;
    int decimales_ = 2;
};

TPuntoVentaF::TPuntoVentaF(const Sesion& sesion, QWidget* padre, const QString& carpetaAjustes)
    : QWidget(padre), sesion_(sesion), ajustes_(carpetaAjustes),
      venta_(ModuloDeDatos.ConexionBD, sesion), registro_(ModuloDeDatos.ConexionBD, sesion) {
    setObjectName(QStringLiteral("PuntoVenta"));
    auto& abiertos = puntosVenta();
    std::erase_if(abiertos, [](const QPointer<TPuntoVentaF>& p) { return p.isNull(); });
    while (std::any_of(abiertos.begin(), abiertos.end(),
                       [this](const QPointer<TPuntoVentaF>& p) { return p->numero_ == numero_; }))
        ++numero_;
    abiertos.push_back(this);
    setWindowTitle(QStringLiteral("Punto de Venta ") + QString::number(numero_));
    setAccessibleName(QStringLiteral("Punto de Venta"));

    auto* titulo = creaEtiqueta(windowTitle(), QStringLiteral("TituloPuntoVenta"), "titulo", this);
    etiquetaCliente_ = creaEtiqueta(texto(ClientePublicoGeneral), QStringLiteral("EtiquetaCliente"),
                                    "subtitulo", this);
    etiquetaCliente_->setAccessibleName(QStringLiteral("Cliente"));
    auto* opciones =
        boton(QString(), QStringLiteral("Opciones (F9)"), "BotonOpciones", nullptr, this);
    auto* barra = new QHBoxLayout;
    barra->addWidget(titulo);
    barra->addStretch(1);
    barra->addWidget(etiquetaCliente_);
    barra->addWidget(opciones);

    paginador_ =
        nombra(new QTabWidget(this), "PaginadorDatos", QStringLiteral("Pasos de la venta"));
    paginador_->addTab(creaCarrito(), QStringLiteral("Carrito"));
    paginador_->addTab(creaConsulta(), QStringLiteral("Consulta de Productos"));
    paginador_->addTab(creaDetalles(), QStringLiteral("Detalles"));
    paginador_->addTab(creaFinalizar(), QStringLiteral("Finalizar Transacción"));
    // Los pasos se recorren con los botones y las teclas, no con las pestañas.
    paginador_->tabBar()->hide();

    anterior_ =
        boton(QString(), QStringLiteral("Carrito (F3)"), "GrupoBotonAnterior", nullptr, this);
    siguiente_ =
        boton(QString(), QStringLiteral("Cobrar (F10)"), "GrupoBotonSiguiente", "primario", this);
    connect(anterior_, &QPushButton::clicked, this, &TPuntoVentaF::GrupoBotonAnteriorClick);
    connect(siguiente_, &QPushButton::clicked, this, &TPuntoVentaF::GrupoBotonSiguienteClick);
    auto* botones = new QHBoxLayout;
    botones->addWidget(anterior_);
    botones->addStretch(1);
    botones->addWidget(siguiente_);

    auto* izquierda = new QVBoxLayout;
    izquierda->addLayout(barra);
    izquierda->addWidget(paginador_, 1);
    izquierda->addLayout(botones);
    auto* capa = new QHBoxLayout(this);
    capa->addLayout(izquierda, 1);
    capa->addWidget(creaMenuLateral());
    connect(opciones, &QPushButton::clicked, this,
            [this] { menuLateral_->setVisible(!menuLateral_->isVisible()); });

    creaAtajos();
    muestraPestana(PCarrito);
    setMinimumSize(1024, 600);
    QTimer* inicial = new QTimer(this);
    inicial->setObjectName(QStringLiteral("TemporizadorInicial"));
    inicial->setSingleShot(true);
    connect(inicial, &QTimer::timeout, this, [this] {
        ejecutaConLeyenda(this, QStringLiteral("Cargando Información"),
                          [this] { TemporizadorInicialTimer(); });
    });
    inicial->start(100);
}

TPuntoVentaF::~TPuntoVentaF() {
    // Al destruir los controles, el que tiene el foco avisa que terminó su edición; para entonces
    // la venta ya no existe.
    for (QLineEdit* campo : {cantidad_, cantidadAbierta_, descuento_})
        campo->disconnect(this);
    std::erase_if(puntosVenta(),
                  [this](const QPointer<TPuntoVentaF>& p) { return p.isNull() || p == this; });
}

QWidget* TPuntoVentaF::creaCarrito() {
    auto* p = nombra(new QWidget, "CarritoCompra", QStringLiteral("Carrito"));
    buscarProducto_ =
        nombra(new QLineEdit(p), "BuscarProducto", QStringLiteral("Clave o código de barras"));
    buscarProducto_->setPlaceholderText(QStringLiteral("Clave, código de barras o 3*clave"));
    buscarProducto_->setMinimumHeight(AltoControl);
    buscarProducto_->installEventFilter(this);
    connect(buscarProducto_, &QLineEdit::returnPressed, this, &TPuntoVentaF::BuscarProductoKeyDown);

    auto* escaner =
        boton(QStringLiteral("Foto"), QStringLiteral("Cámara"), "BotonEscaner", nullptr, p);
    // La lectura con cámara aún no tiene pantalla en esta estación.
    escaner->hide();
    auto* consultar = boton(QStringLiteral("Buscar"), QStringLiteral("Catálogo (F2)"),
                            "BotonConsultarTodaBD", nullptr, p);
    connect(consultar, &QPushButton::clicked, this, &TPuntoVentaF::BotonConsultarTodaBDClick);
    auto* espera = boton(QString(), QStringLiteral("En Espera (F11)"), "VentaEnEspera", nullptr, p);
    connect(espera, &QPushButton::clicked, this, &TPuntoVentaF::BotonVentaEnEsperaClick);

    modeloCarrito_ = new ModeloCarrito(venta_, this);
    carrito_ =
        nombra(new QListView(p), "ProductosUsuario", QStringLiteral("Productos de la venta"));
    carrito_->setModel(modeloCarrito_);
    carrito_->setItemDelegate(new DelegadoRenglon(0, carrito_));
    carrito_->setUniformItemSizes(true);
    carrito_->setSelectionMode(QAbstractItemView::SingleSelection);
    carrito_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    carrito_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    carrito_->installEventFilter(this);
    QScroller::grabGesture(carrito_->viewport(), QScroller::LeftMouseButtonGesture);
    connect(carrito_, &QListView::activated, this, &TPuntoVentaF::BotonDetallesClick);

    auto* detalles = boton(QString(), QStringLiteral("Detalles (F4)"), "BotonDetalles", nullptr, p);
    auto* quitar =
        boton(QString(), QStringLiteral("Quitar (Supr)"), "BotonBorrarRenglon", "peligro", p);
    connect(detalles, &QPushButton::clicked, this, &TPuntoVentaF::BotonDetallesClick);
    connect(quitar, &QPushButton::clicked, this, &TPuntoVentaF::BotonBorrarRenglonClick);

    totalVenta_ = creaEtiqueta(QStringLiteral("Total= $0.00"), QStringLiteral("EtiquetaTotalVenta"),
                               "titulo", p);
    totalVenta_->setAccessibleName(QStringLiteral("Total de la venta"));
    totalVenta_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);

    auto* arriba = new QHBoxLayout;
    arriba->addWidget(buscarProducto_, 1);
    arriba->addWidget(escaner);
    arriba->addWidget(consultar);
    arriba->addWidget(espera);
    auto* abajo = new QHBoxLayout;
    abajo->addWidget(detalles);
    abajo->addWidget(quitar);
    abajo->addStretch(1);
    abajo->addWidget(totalVenta_);
    auto* capa = new QVBoxLayout(p);
    capa->addLayout(arriba);
    capa->addWidget(carrito_, 1);
    capa->addLayout(abajo);
    return p;
}

QWidget* TPuntoVentaF::creaConsulta() {
    auto* p = nombra(new QWidget, "ConsultaProductos", QStringLiteral("Consulta de productos"));
    buscarTexto_ =
        nombra(new QLineEdit(p), "BuscarTextoProducto", QStringLiteral("Buscar en el catálogo"));
    buscarTexto_->setPlaceholderText(QStringLiteral("Clave, descripción o código (Enter filtra)"));
    buscarTexto_->setMinimumHeight(AltoControl);
    buscarTexto_->installEventFilter(this);
    connect(buscarTexto_, &QLineEdit::returnPressed, this, &TPuntoVentaF::FiltrarTexto);

    auto fila = [this](int f) -> const ProductoConsulta& {
        return consulta_[static_cast<size_t>(f)];
    };
    modeloProductos_ = new ModeloTabla(
        {{QStringLiteral("Clave"), [fila](int f) { return fila(f).clave; }},
         {QStringLiteral("Producto"), [fila](int f) { return fila(f).producto; }},
         ModeloTabla::numerica(
             QStringLiteral("Precio"),
             [this, fila](int f) {
                 return fila(f).precio[std::clamp(venta_.nivelCliente(), 1, 5) - 1];
             },
             dinero),
         ModeloTabla::numerica(
             QStringLiteral("Existencia"), [fila](int f) { return fila(f).existencia; },
             [](double v) { return QLocale::c().toString(v, 'f', 2); })},
        this);
    productos_ = creaVistaTabla(QStringLiteral("Productos"), modeloProductos_, 44, p);
    productos_->setAccessibleName(QStringLiteral("Productos del catálogo"));
    productos_->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
    productos_->installEventFilter(this);
    connect(productos_, &QTableView::activated, this, &TPuntoVentaF::ProductosItemClick);
    connect(productos_, &QTableView::clicked, this, &TPuntoVentaF::ProductosItemClick);
    registros_ = creaEtiqueta(QStringLiteral("Número de Registros: 0"),
                              QStringLiteral("EtiquetaRegistros"), "pie", p);

    auto* capa = new QVBoxLayout(p);
    capa->addWidget(buscarTexto_);
    capa->addWidget(productos_, 1);
    capa->addWidget(registros_);
    return p;
}

QWidget* TPuntoVentaF::creaDetalles() {
    auto* p = nombra(new QWidget, "ConsultaProductosDetalles", QStringLiteral("Detalles"));
    datosGenerales_ = creaEtiqueta({}, QStringLiteral("DatosGeneralesProducto"), "subtitulo", p);
    datosGenerales_->setAccessibleName(QStringLiteral("Datos generales del producto"));
    datosGenerales_->setWordWrap(true);

    tablaPrecios_ =
        nombra(new QTableWidget(5, 2, p), "TablaPrecios", QStringLiteral("Niveles de precio"));
    tablaPrecios_->setHorizontalHeaderLabels({QStringLiteral("Nivel"), QStringLiteral("Precio")});
    tablaPrecios_->verticalHeader()->hide();
    tablaPrecios_->verticalHeader()->setDefaultSectionSize(44);
    tablaPrecios_->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    tablaPrecios_->setSelectionBehavior(QAbstractItemView::SelectRows);
    tablaPrecios_->setSelectionMode(QAbstractItemView::SingleSelection);
    tablaPrecios_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    // Tan alta como sus cinco niveles: sin un hueco blanco debajo.
    tablaPrecios_->setSizeAdjustPolicy(QAbstractScrollArea::AdjustToContents);
    tablaPrecios_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    tablaPrecios_->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
    connect(tablaPrecios_, &QTableWidget::cellClicked, this,
            [this](int f, int) { TablaPreciosClick(f); });
    connect(tablaPrecios_, &QTableWidget::cellActivated, this,
            [this](int f, int) { TablaPreciosClick(f); });

    // La foto con sus flechas; un producto sin fotos muestra la figura de foto en el cuadro.
    imagen_ = nombra(new QLabel(p), "ImagenProducto", QStringLiteral("Foto del producto"));
    ponEstilo(imagen_, "tarjeta");
    imagen_->setAlignment(Qt::AlignCenter);
    imagen_->setFixedSize(kLadoFoto, kLadoFoto);
    fotoAnterior_ =
        boton(QString(), QStringLiteral("\u25C0"), "BotonFotoAnterior", nullptr, p); // ◀
    fotoAnterior_->setAccessibleName(QStringLiteral("Foto anterior"));
    fotoSiguiente_ =
        boton(QString(), QStringLiteral("\u25B6"), "BotonFotoSiguiente", nullptr, p); // ▶
    fotoSiguiente_->setAccessibleName(QStringLiteral("Foto siguiente"));
    for (QPushButton* b : {fotoAnterior_, fotoSiguiente_})
        b->setFixedWidth(2 * AltoControl);
    etiquetaFoto_ = creaEtiqueta(QString(), QStringLiteral("EtiquetaFoto"), "pie", p);
    etiquetaFoto_->setAccessibleName(QStringLiteral("Número de foto"));
    etiquetaFoto_->setAlignment(Qt::AlignCenter);
    connect(fotoAnterior_, &QPushButton::clicked, this, &TPuntoVentaF::FotoAnteriorClick);
    connect(fotoSiguiente_, &QPushButton::clicked, this, &TPuntoVentaF::FotoSiguienteClick);

    cantidad_ = campoNumero("Cantidad", QStringLiteral("Cantidad"), 3, p);
    // A granel o por importe: sin revisar existencia ni rangos. Con "Es dinero" lo tecleado es
    // lo que el cliente quiere pagar y la cantidad sale de su precio.
    cantidadAbierta_ = campoNumero("CantidadAbierta", QStringLiteral("Cantidad abierta"), 3, p);
    esDinero_ = nombra(new QCheckBox(QStringLiteral("Es dinero ($)"), p), "EsDinero",
                       QStringLiteral("Es dinero"));
    esDinero_->setMinimumHeight(AltoControl);
    connect(cantidadAbierta_, &QLineEdit::editingFinished, this,
            &TPuntoVentaF::CantidadAbiertaChange);
    connect(esDinero_, &QCheckBox::toggled, this, &TPuntoVentaF::EsDineroClick);
    descuento_ = campoNumero("Descuento", QStringLiteral("Descuento por ciento"), 2, p);
    nota_ = nombra(new QLineEdit(p), "NotaProductoDetalle", QStringLiteral("Nota del producto"));
    nota_->setMinimumHeight(AltoControl);
    connect(cantidad_, &QLineEdit::editingFinished, this, &TPuntoVentaF::CantidadChange);
    connect(descuento_, &QLineEdit::editingFinished, this, &TPuntoVentaF::DescuentoChange);
    connect(nota_, &QLineEdit::textChanged, this, &TPuntoVentaF::NotaProductoDetalleChange);

    auto* quitar =
        boton(QString(), QStringLiteral("Quitar del Carrito"), "BotonBorrarDetalle", "peligro", p);
    connect(quitar, &QPushButton::clicked, this, &TPuntoVentaF::BotonBorrarRenglonClick);

    auto* abierta = new QHBoxLayout;
    abierta->addWidget(cantidadAbierta_, 1);
    abierta->addWidget(esDinero_);
    auto* forma = new QFormLayout;
    forma->addRow(QStringLiteral("Cantidad"), cantidad_);
    forma->addRow(QStringLiteral("Cantidad abierta"), abierta);
    forma->addRow(QStringLiteral("Descuento %"), descuento_);
    forma->addRow(QStringLiteral("Nota"), nota_);
    forma->addRow(QString(), quitar);

    auto* flechas = new QHBoxLayout;
    flechas->addWidget(fotoAnterior_);
    flechas->addWidget(etiquetaFoto_, 1);
    flechas->addWidget(fotoSiguiente_);
    auto* foto = new QVBoxLayout;
    foto->addWidget(imagen_);
    foto->addLayout(flechas);
    foto->addStretch(1);

    auto* capa = new QGridLayout(p);
    capa->addLayout(foto, 0, 0, 2, 1);
    capa->addWidget(datosGenerales_, 0, 1, 1, 2);
    capa->addWidget(tablaPrecios_, 1, 1, Qt::AlignTop);
    capa->addLayout(forma, 1, 2, Qt::AlignTop);
    capa->setColumnStretch(1, 2);
    capa->setColumnStretch(2, 3);
    capa->setRowStretch(1, 1);
    return p;
}

QWidget* TPuntoVentaF::creaFinalizar() {
    auto* p = nombra(new QWidget, "FinalizarTransaccion", QStringLiteral("Finalizar Transacción"));
    auto* titulo = creaEtiqueta(QStringLiteral("Finalizar Transacción"),
                                QStringLiteral("TituloFinalizar"), "subtitulo", p);
    resumen_ = nombra(new QTableWidget(5, 2, p), "TablaFinalizarTransaccion",
                      QStringLiteral("Resumen de la venta"));
    resumen_->horizontalHeader()->hide();
    resumen_->verticalHeader()->hide();
    resumen_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    resumen_->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    const QStringList conceptos = {QStringLiteral("Subtotal"), QStringLiteral("Descuento"),
                                   QStringLiteral("IEPS"), QStringLiteral("IVA"),
                                   QStringLiteral("Total")};
    for (int i = 0; i < conceptos.size(); ++i) {
        resumen_->setItem(i, 0, new QTableWidgetItem(conceptos[i]));
        auto* valor = new QTableWidgetItem(dinero(0));
        valor->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        resumen_->setItem(i, 1, valor);
    }

    formas_ = nombra(new QTableWidget(0, 2, p), "ListaFormaPago", QStringLiteral("Formas de pago"));
    formas_->setHorizontalHeaderLabels(
        {QStringLiteral("Forma de Pago"), QStringLiteral("Importe")});
    formas_->verticalHeader()->hide();
    formas_->verticalHeader()->setDefaultSectionSize(44);
    formas_->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    formas_->setSelectionBehavior(QAbstractItemView::SelectRows);
    formas_->setSelectionMode(QAbstractItemView::SingleSelection);
    formas_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    connect(formas_, &QTableWidget::currentCellChanged, this, &TPuntoVentaF::ListaFormaPagoChange);
    importePago_ = campoNumero("ImportePago", QStringLiteral("Importe de la forma de pago"), 2, p);
    connect(importePago_, &QLineEdit::textChanged, this, &TPuntoVentaF::ImportePagoChange);

    monedas_ = nombra(new QComboBox(p), "ListaMoneda", QStringLiteral("Moneda"));
    tipoCambio_ = campoNumero("TipoCambio", QStringLiteral("Tipo de cambio"), 4, p);
    plazoPago_ = nombra(new QLineEdit(QStringLiteral("0"), p), "PlazoPago",
                        QStringLiteral("Días de crédito"));
    plazoPago_->setValidator(new QIntValidator(0, 3650, plazoPago_));
    plazoPago_->setMinimumHeight(AltoControl);
    connect(monedas_, &QComboBox::currentIndexChanged, this, &TPuntoVentaF::ListaMonedaChange);
    connect(tipoCambio_, &QLineEdit::textChanged, this, &TPuntoVentaF::TipoCambioChange);
    connect(plazoPago_, &QLineEdit::textChanged, this, &TPuntoVentaF::RecalculaCambio);

    email_ = nombra(new QComboBox(p), "ListaEmail", QStringLiteral("Correo electrónico"));
    email_->setEditable(true);
    observaciones_ =
        nombra(new QPlainTextEdit(p), "Observaciones", QStringLiteral("Observaciones"));
    observaciones_->setMaximumHeight(80);
    observaciones_->setTabChangesFocus(true);
    vendedores_ = nombra(new QComboBox(p), "ListaUsuarios", QStringLiteral("Vendedor"));
    impresoras_ = nombra(new QComboBox(p), "ListaImpresoras", QStringLiteral("Impresora"));
    plantillas_ = nombra(new QComboBox(p), "ListaPlantillaImpresion",
                         QStringLiteral("Plantilla de impresión"));
    papelContinuo_ = nombra(new QComboBox(p), "PapelContinuo", QStringLiteral("Papel continuo"));
    papelContinuo_->addItems({QStringLiteral("SÍ"), QStringLiteral("NO")});
    copias_ = nombra(new QSpinBox(p), "NumeroCopias", QStringLiteral("Número de copias"));
    copias_->setRange(1, 10);
    for (QWidget* w : std::initializer_list<QWidget*>{monedas_, email_, vendedores_, impresoras_,
                                                      plantillas_, papelContinuo_, copias_})
        w->setMinimumHeight(AltoControl);

    totalRemision_ = creaEtiqueta(QStringLiteral("Total= $0.00"),
                                  QStringLiteral("EtiquetaTotalRemision"), "titulo", p);
    totalRemision_->setAccessibleName(QStringLiteral("Total de la remisión"));
    cambio_ =
        creaEtiqueta(QStringLiteral("Cambio= $0.00"), QStringLiteral("EtiquetaCambio"), "dato", p);
    cambio_->setAccessibleName(QStringLiteral("Cambio"));

    auto* izquierda = new QVBoxLayout;
    izquierda->addWidget(titulo);
    izquierda->addWidget(resumen_);
    izquierda->addWidget(formas_, 1);
    auto* importe = new QFormLayout;
    importe->addRow(QStringLiteral("Importe"), importePago_);
    izquierda->addLayout(importe);
    izquierda->addWidget(totalRemision_);
    izquierda->addWidget(cambio_);

    auto* derecha = new QFormLayout;
    derecha->addRow(QStringLiteral("Moneda"), monedas_);
    derecha->addRow(QStringLiteral("Tipo de Cambio"), tipoCambio_);
    derecha->addRow(QStringLiteral("Días de Crédito"), plazoPago_);
    derecha->addRow(QStringLiteral("Correo"), email_);
    derecha->addRow(QStringLiteral("Observaciones"), observaciones_);
    derecha->addRow(QStringLiteral("Vendedor"), vendedores_);
    derecha->addRow(QStringLiteral("Impresora"), impresoras_);
    derecha->addRow(QStringLiteral("Plantilla"), plantillas_);
    derecha->addRow(QStringLiteral("¿Es papel continuo?"), papelContinuo_);
    derecha->addRow(QStringLiteral("Copias"), copias_);

    // En una pantalla alta los campos se quedan juntos arriba.
    auto* columnaDerecha = new QVBoxLayout;
    columnaDerecha->addLayout(derecha);
    columnaDerecha->addStretch(1);
    auto* capa = new QHBoxLayout(p);
    capa->addLayout(izquierda, 3);
    capa->addLayout(columnaDerecha, 2);
    return p;
}

QFrame* TPuntoVentaF::creaMenuLateral() {
    menuLateral_ = nombra(new QFrame(this), "MenuLateral", QStringLiteral("Opciones Adicionales"));
    ponEstilo(menuLateral_, "tarjeta");
    // Tan ancho como pida el texto más largo de sus botones (y la letra grande del estilo).
    menuLateral_->setMinimumWidth(240);
    menuLateral_->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
    auto* capa = new QVBoxLayout(menuLateral_);
    capa->addWidget(creaEtiqueta(QStringLiteral("Opciones Adicionales"),
                                 QStringLiteral("TituloMenuLateral"), "subtitulo", menuLateral_));
    struct Opcion {
        const char* titulo;
        const char* nombre;
        const char* estilo;
        void (TPuntoVentaF::*accion)();
        bool visible;
    };
    const Opcion opciones[] = {
        {"Cancelar Venta Actual (F7)", "BotonCancelarVenta", "peligro",
         &TPuntoVentaF::BotonCancelarVentaClick, true},
        {"Venta en Espera (F11)", "BotonVentaEnEspera", nullptr,
         &TPuntoVentaF::BotonVentaEnEsperaClick, true},
        {"Asigna Cliente (F5)", "BotonSeleccionaCliente", nullptr,
         &TPuntoVentaF::BotonSeleccionaClienteClick, true},
        {"Descuento Global (F6)", "BotonDescuentoGlobal", nullptr,
         &TPuntoVentaF::BotonDescuentoGlobalClick, true},
        {"Caja Chica (F8)", "BotonCajaChica", nullptr, &TPuntoVentaF::BotonCajaChicaClick,
         RegistroModulos::busca(QStringLiteral("CajaChica")) != nullptr},
        {"Cobrar Comanda", "BotonCobrarComanda", nullptr, &TPuntoVentaF::BotonCobrarComandaClick,
         fabricaSelectorComandas() && sesion_.controlRestaurantes},
    };
    for (const Opcion& o : opciones) {
        auto* b = boton(QString(), QString::fromUtf8(o.titulo), o.nombre, o.estilo, menuLateral_);
        b->setVisible(o.visible);
        if (o.accion) connect(b, &QPushButton::clicked, this, o.accion);
        capa->addWidget(b);
    }
    capa->addStretch(1);
    return menuLateral_;
}

void TPuntoVentaF::creaAtajos() {
    auto atajo = [this](QKeySequence teclas, auto accion) {
        auto* a = new QShortcut(teclas, this);
        a->setContext(Qt::WidgetWithChildrenShortcut);
        connect(a, &QShortcut::activated, this, accion);
    };
    atajo(Qt::Key_F2, &TPuntoVentaF::BotonConsultarTodaBDClick);
    atajo(Qt::Key_F3, &TPuntoVentaF::GrupoBotonAnteriorClick);
    atajo(Qt::Key_F4, &TPuntoVentaF::BotonDetallesClick);
    atajo(Qt::Key_F5, &TPuntoVentaF::BotonSeleccionaClienteClick);
    atajo(Qt::Key_F6, &TPuntoVentaF::BotonDescuentoGlobalClick);
    atajo(Qt::Key_F7, &TPuntoVentaF::BotonCancelarVentaClick);
    atajo(Qt::Key_F8, &TPuntoVentaF::BotonCajaChicaClick);
    atajo(Qt::Key_F9, [this] { menuLateral_->setVisible(!menuLateral_->isVisible()); });
    atajo(Qt::Key_F10, &TPuntoVentaF::GrupoBotonSiguienteClick);
    atajo(Qt::Key_F11, &TPuntoVentaF::BotonVentaEnEsperaClick);
}

bool TPuntoVentaF::eventFilter(QObject* objeto, QEvent* evento) {
    if (evento->type() != QEvent::KeyPress) return QWidget::eventFilter(objeto, evento);
    const int tecla = static_cast<QKeyEvent*>(evento)->key();
    if (objeto == buscarProducto_ && (tecla == Qt::Key_Up || tecla == Qt::Key_Down)) {
        // Con el lector en la mano, las flechas mueven el renglón elegido sin dejar la búsqueda.
        const int filas = modeloCarrito_->rowCount();
        if (filas == 0) return true;
        const int actual = renglonActual() < 0 ? filas : renglonActual();
        const int nueva = std::clamp(actual + (tecla == Qt::Key_Up ? -1 : 1), 0, filas - 1);
        carrito_->setCurrentIndex(modeloCarrito_->index(nueva));
        return true;
    }
    if (tecla == Qt::Key_Delete &&
        (objeto == carrito_ || (objeto == buscarProducto_ && buscarProducto_->text().isEmpty()))) {
        BotonBorrarRenglonClick();
        return true;
    }
    if (objeto == buscarTexto_ && tecla == Qt::Key_Down) {
        productos_->setFocus();
        productos_->selectRow(0);
        return true;
    }
    return QWidget::eventFilter(objeto, evento);
}

void TPuntoVentaF::error(const QString& mensaje) {
    Sonidos::reproduce(Sonido::Error);
    mensajes_.muestra(mensaje);
}

void TPuntoVentaF::errorLectura(const std::exception& e, const char* donde) {
    error(texto(MensajeErrorLectura) + QLatin1Char('\n') + QString::fromUtf8(e.what()));
    qWarning() << "Punto de Venta," << donde << e.what();
}

void TPuntoVentaF::TemporizadorInicialTimer() {
    try {
        venta_.abre();
        auto& conexion = ModuloDeDatos.ConexionBD;
        Consulta configura(conexion, texto(SqlConfigura));
        configura.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        configura.abre();
        clienteDefault_ = configura.campo(QStringLiteral("ClienteDefaultRemision")).comoEntero();
        formaPagoDefault_ = configura.campo(QStringLiteral("TipoPagoDefaultRemision")).comoEntero();
        cambiaVendedor_ =
            configura.campo(QStringLiteral("PermisoCambiarVendedorRemision")).comoBooleano();
        decimalesCantidad_ = std::clamp(
            static_cast<int>(configura.campo(QStringLiteral("DecimalesCantKioskoPV")).comoEntero()),
            0, 6);
        modeloCarrito_->ponDecimales(decimalesCantidad_);

        Consulta formas(conexion, texto(SqlFormasPago));
        formas.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        formas.abre();
        formasPago_.clear();
        for (const Registro f : formas)
            formasPago_.push_back({f.campo(QStringLiteral("id")).comoEntero(),
                                   f.campo(QStringLiteral("descripcion")).comoTexto(), 0});

        Consulta monedas(conexion, texto(SqlMonedas));
        monedas.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        monedas.abre();
        {
            const QSignalBlocker bloqueo(monedas_);
            monedas_->clear();
            for (const Registro m : monedas)
                monedas_->addItem(
                    m.campo(QStringLiteral("descripcion")).comoTexto(),
                    QVariant(static_cast<qlonglong>(m.campo(QStringLiteral("id")).comoEntero())));
            monedas_->setCurrentIndex(
                monedas_->findData(QVariant(static_cast<qlonglong>(venta_.moneda()))));
        }
        tipoCambio_->setText(QLocale::c().toString(venta_.TipoCambio(), 'f', 4));

        Consulta vendedores(conexion, texto(SqlVendedores));
        vendedores.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        vendedores.abre();
        vendedores_->clear();
        for (const Registro u : vendedores)
            vendedores_->addItem(u.campo(QStringLiteral("nombre")).comoTexto(),
                                 QVariant(static_cast<qlonglong>(
                                     u.campo(QStringLiteral("usuarioID")).comoEntero())));
        eligeVendedor(sesion_.UsuarioID);
        vendedores_->setEnabled(cambiaVendedor_);

        const AjustesImpresion impresion =
            leeAjustesImpresion(ajustes_, QStringLiteral("Remision"));
        impresoras_->clear();
        impresoras_->addItems(QPrinterInfo::availablePrinterNames());
        if (!impresion.impresora.isEmpty() && impresoras_->findText(impresion.impresora) < 0)
            impresoras_->addItem(impresion.impresora);
        impresoras_->setCurrentText(impresion.impresora);
        plantillas_->clear();
        for (const Plantilla& pl :
             plantillasCarpeta(conexion, sesion_.EmpresaID, QStringLiteral("Remisión")))
            plantillas_->addItem(pl.nombre);
        if (!impresion.plantilla.isEmpty()) plantillas_->setCurrentText(impresion.plantilla);
        papelContinuo_->setCurrentIndex(impresion.formato.continuo ? 0 : 1);
        copias_->setValue(impresion.copias);

        leeCliente(clienteDefault_);
        llenaFormasPago();
    } catch (const std::exception& e) {
        errorLectura(e, "inicio");
    }
    actualizaCarrito();
    buscarProducto_->setFocus();
}

void TPuntoVentaF::leeCliente(int64_t id) {
    Consulta q(ModuloDeDatos.ConexionBD, texto(SqlCliente));
    q.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    q.parametro(QStringLiteral("ClienteID")).entero(id);
    q.abre();
    if (q.numeroRegistros() == 0) {
        cliente_ = {};
        etiquetaCliente_->setText(QString());
        return;
    }
    venta_.asignaCliente(id);
    cliente_.id = id;
    cliente_.nombre = q.campo(QStringLiteral("nombre")).comoTexto();
    cliente_.limiteCredito = q.campo(QStringLiteral("limiteCredito")).comoReal();
    cliente_.diasCredito = static_cast<int>(q.campo(QStringLiteral("diasCredito")).comoEntero());
    cliente_.email = q.campo(QStringLiteral("Email")).comoTexto();
    etiquetaCliente_->setText(cliente_.nombre);
    llenaCorreos();
}

// El correo del cliente, ya escrito; el cajero puede teclear otro para esta venta.
void TPuntoVentaF::llenaCorreos() {
    email_->clear();
    if (!cliente_.email.isEmpty()) email_->addItem(cliente_.email);
    email_->setCurrentIndex(cliente_.email.isEmpty() ? -1 : 0);
    email_->lineEdit()->setCursorPosition(0); // un correo largo se lee desde su inicio
}

bool TPuntoVentaF::revisaCorreo() {
    const QString correo = email_->currentText().trimmed();
    if (correo.isEmpty() || correoValido(correo)) return true;
    error(texto(MensajeCorreoInvalido));
    email_->setFocus();
    return false;
}

int TPuntoVentaF::renglonActual() const {
    const QModelIndex i = carrito_->currentIndex();
    return i.isValid() ? i.row() : -1;
}

void TPuntoVentaF::muestraPestana(Pestana pestana) {
    paginador_->setCurrentIndex(pestana);
    anterior_->setVisible(pestana != PCarrito);
    siguiente_->setVisible(pestana == PCarrito || pestana == PFinalizar);
    siguiente_->setText(pestana == PFinalizar ? QStringLiteral("Finalizar (F10)")
                                              : QStringLiteral("Cobrar (F10)"));
    siguiente_->setAccessibleName(pestana == PFinalizar ? QStringLiteral("Finalizar")
                                                        : QStringLiteral("Cobrar"));
}

void TPuntoVentaF::actualizaCarrito(int seleccion) {
    modeloCarrito_->refresca();
    const int filas = modeloCarrito_->rowCount();
    if (seleccion >= filas) seleccion = filas - 1;
    if (seleccion >= 0) {
        carrito_->setCurrentIndex(modeloCarrito_->index(seleccion));
        carrito_->scrollTo(modeloCarrito_->index(seleccion));
    }
    actualizaTotales();
}

void TPuntoVentaF::actualizaTotales() {
    const TotalesVenta& t = venta_.totales();
    totalVenta_->setText(QStringLiteral("Total= ") + dinero(t.total));
    totalRemision_->setText(QStringLiteral("Total= ") + dinero(t.total));
    const double valores[] = {t.subtotalRegistrado, t.descuento, t.ieps, t.iva, t.total};
    for (int i = 0; i < 5; ++i)
        resumen_->item(i, 1)->setText(dinero(valores[i]));
    RecalculaCambio();
}

void TPuntoVentaF::llenaFormasPago() {
    const QSignalBlocker bloqueo(formas_);
    formas_->setRowCount(static_cast<int>(formasPago_.size()));
    for (int i = 0; i < formas_->rowCount(); ++i) {
        const FormaPago& f = formasPago_[static_cast<size_t>(i)];
        formas_->setItem(i, 0, new QTableWidgetItem(f.descripcion));
        auto* importe = new QTableWidgetItem(dinero(f.importe));
        importe->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        formas_->setItem(i, 1, importe);
    }
}

// --- Carrito -------------------------------------------------------------------------------

void TPuntoVentaF::BuscarProductoKeyDown() {
    const QString leido = buscarProducto_->text().trimmed();
    if (leido.isEmpty()) return;
    const qsizetype cotizacion = leido.indexOf(texto(PrefijoCotizacionQR), 0, Qt::CaseInsensitive);
    if (cotizacion >= 0) {
        bool ok = false;
        const int64_t folio = leido.mid(cotizacion + qstrlen(PrefijoCotizacionQR)).toLongLong(&ok);
        buscarProducto_->clear();
        if (!ok) {
            error(texto(MensajeProductoNoLocalizado) + leido);
            return;
        }
        ejecutaConLeyenda(this, QStringLiteral("Cargando Información"), [this, folio] {
            CargaDocumentoClonar(folio, texto(TipoClonarCotizacion), PrecioCotizado);
        });
        return;
    }
    // "3*clave": primero la cantidad.
    static const QRegularExpression multiplica(
        QStringLiteral("^(\\d+(?:\\.\\d+)?)\\s*\\*\\s*(\\S.*)$"));
    double cantidad = 1;
    QString clave = leido;
    if (const auto m = multiplica.match(leido); m.hasMatch()) {
        cantidad = QLocale::c().toDouble(m.captured(1));
        clave = m.captured(2).trimmed();
    }
    ejecutaConLeyenda(this, QStringLiteral("Cargando Productos"),
                      [this, clave, cantidad] { AgregaProductoTimer(clave, cantidad); });
}

void TPuntoVentaF::AgregaProductoTimer(const QString& clave, double cantidad) {
    try {
        if (agrega(clave, cantidad)) Sonidos::reproduce(Sonido::MostrarResultados);
    } catch (const std::exception& e) {
        errorLectura(e, "producto");
    }
    buscarProducto_->clear();
    buscarProducto_->setFocus();
}

bool TPuntoVentaF::agrega(const QString& clave, double cantidad) {
    const auto& renglones = venta_.RemisionDetalles();
    const int ultimo = static_cast<int>(renglones.size()) - 1;
    // Dos lecturas seguidas del mismo producto suman al mismo renglón.
    if (clave == ultimaLectura_ && ultimo >= 0 && ultimo == filaUltimaLectura_) {
        const size_t f = static_cast<size_t>(ultimo);
        if (auto rechazo = venta_.cambiaCantidad(f, renglones[f].Cantidad + cantidad)) {
            error(*rechazo);
            return false;
        }
        actualizaCarrito(ultimo);
        return true;
    }
    if (auto rechazo = venta_.agrega(clave)) {
        error(*rechazo);
        return false;
    }
    const size_t nuevo = venta_.RemisionDetalles().size() - 1;
    if (cantidad != 1) {
        if (auto rechazo = venta_.cambiaCantidad(nuevo, cantidad)) {
            venta_.elimina(nuevo);
            actualizaCarrito();
            error(*rechazo);
            return false;
        }
    }
    ultimaLectura_ = clave;
    filaUltimaLectura_ = static_cast<int>(nuevo);
    actualizaCarrito(static_cast<int>(nuevo));
    return true;
}

void TPuntoVentaF::CargaDocumentoClonar(int64_t documento, const QString& tipo, int modoPrecio) {
    try {
        DocumentoClonado d =
            cargaDocumentoClonar(ModuloDeDatos.ConexionBD, sesion_, documento, tipo, modoPrecio);
        if (d.renglones.empty()) {
            error(texto(MensajeDocumentoNoLocalizado) + QString::number(documento));
            return;
        }
        venta_.limpia();
        if (d.cliente > 0 && d.cliente != cliente_.id) leeCliente(d.cliente);
        for (RenglonVenta& r : d.renglones)
            venta_.agregaRenglon(std::move(r));
        observaciones_->setPlainText(d.observaciones);
        origen_ = d.origen;
        // El vendedor es quien cobra, salvo en una comanda: su mesero.
        if (d.vendedor > 0) eligeVendedor(d.vendedor);
        ultimaLectura_.clear();
        Sonidos::reproduce(Sonido::MostrarResultados);
    } catch (const std::exception& e) {
        errorLectura(e, "documento");
    }
    actualizaCarrito(0);
    muestraPestana(PCarrito);
    buscarProducto_->setFocus();
}

void TPuntoVentaF::BotonBorrarRenglonClick() {
    const int fila = paginador_->currentIndex() == PDetalles ? detalle_ : renglonActual();
    if (fila < 0 || fila >= static_cast<int>(venta_.RemisionDetalles().size())) return;
    BorrarRenglonTimer(fila);
}

void TPuntoVentaF::BorrarRenglonTimer(int fila) {
    venta_.elimina(static_cast<size_t>(fila));
    ultimaLectura_.clear();
    Sonidos::reproduce(Sonido::Click);
    actualizaCarrito(fila);
    muestraPestana(PCarrito);
    buscarProducto_->setFocus();
}

// --- Consulta del catálogo -----------------------------------------------------------------

void TPuntoVentaF::BotonConsultarTodaBDClick() {
    Sonidos::reproduce(Sonido::Click);
    muestraPestana(PConsulta);
    buscarTexto_->setFocus();
    if (consulta_.empty())
        ejecutaConLeyenda(this, QStringLiteral("Cargando Productos"),
                          [this] { CargaProductosTimer(QString()); });
}

void TPuntoVentaF::FiltrarTexto() {
    const QString t = buscarTexto_->text().trimmed();
    ejecutaConLeyenda(this,
                      t.isEmpty() ? QStringLiteral("Eliminando Filtros")
                                  : QStringLiteral("Filtrando Información"),
                      [this, t] { CargaProductosTimer(t); });
}

void TPuntoVentaF::CargaProductosTimer(const QString& filtro) {
    try {
        Consulta q(ModuloDeDatos.ConexionBD, texto(SqlBuscaProductos));
        q.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        q.parametro(QStringLiteral("Texto")).texto(QLatin1Char('%') + filtro + QLatin1Char('%'));
        q.abre();
        std::vector<ProductoConsulta> lista;
        lista.reserve(static_cast<size_t>(q.numeroRegistros()));
        for (const Registro r : q) {
            ProductoConsulta p;
            p.clave = r.campo(QStringLiteral("clave")).comoTexto();
            p.producto = r.campo(QStringLiteral("producto")).comoTexto();
            for (int i = 0; i < 5; ++i)
                p.precio[i] = r.campo(QStringLiteral("precio%1").arg(i + 1)).comoReal();
            p.existencia = r.campo(QStringLiteral("existencia")).comoReal();
            p.manejaInventarios = r.campo(QStringLiteral("manejaInventarios")).comoBooleano();
            lista.push_back(std::move(p));
        }
        const int n = modeloProductos_->reemplaza(consulta_, std::move(lista));
        registros_->setText((filtro.isEmpty() ? QStringLiteral("Número de Registros: ")
                                              : QStringLiteral("Registros Filtrados: ")) +
                            QString::number(n));
    } catch (const std::exception& e) {
        errorLectura(e, "catálogo");
    }
}

void TPuntoVentaF::ProductosItemClick() {
    const QModelIndex i = productos_->currentIndex();
    if (!i.isValid() || i.row() >= static_cast<int>(consulta_.size())) return;
    const ProductoConsulta& p = consulta_[static_cast<size_t>(i.row())];
    if (p.precio[std::clamp(venta_.nivelCliente(), 1, 5) - 1] <= 0) {
        error(texto(MensajePrecioCero));
        return;
    }
    const QString clave = p.clave;
    ejecutaConLeyenda(this, QStringLiteral("Agregando Producto"), [this, clave] {
        ultimaLectura_.clear();
        AgregaProductoTimer(clave, 1);
        muestraPestana(PCarrito);
    });
}

// --- Detalles de un renglón ----------------------------------------------------------------

void TPuntoVentaF::BotonDetallesClick() {
    const int fila = renglonActual();
    if (fila < 0 || paginador_->currentIndex() != PCarrito) return;
    Sonidos::reproduce(Sonido::Click);
    detalle_ = fila;
    fotos_.clear();
    foto_ = 0;
    muestraDetalles();
    muestraFoto();
    muestraPestana(PDetalles);
    cantidad_->setFocus();
    cantidad_->selectAll();
    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"),
                      [this] { CargaDetallesProductoTimer(); });
}

void TPuntoVentaF::CargaDetallesProductoTimer() {
    if (detalle_ < 0 || detalle_ >= static_cast<int>(venta_.RemisionDetalles().size())) return;
    try {
        Consulta q(ModuloDeDatos.ConexionBD, texto(SqlFotosProducto));
        q.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        q.parametro(QStringLiteral("ProductoID"))
            .entero(venta_.RemisionDetalles()[static_cast<size_t>(detalle_)].ID);
        q.abre();
        fotos_.clear();
        for (const Registro r : q) {
            // Una foto que no se puede leer no deja un hueco entre las demás.
            QImage foto;
            if (foto.loadFromData(r.campo(QStringLiteral("Foto")).comoBlob()))
                fotos_.push_back(std::move(foto));
        }
    } catch (const std::exception& e) {
        errorLectura(e, "fotos");
    }
    foto_ = 0;
    muestraFoto();
}

void TPuntoVentaF::muestraFoto() {
    const bool varias = fotos_.size() > 1;
    fotoAnterior_->setEnabled(varias);
    fotoSiguiente_->setEnabled(varias);
    if (fotos_.empty()) {
        imagen_->setPixmap(imagen(QStringLiteral("Foto"), QSize(128, 128)));
        etiquetaFoto_->setText(QStringLiteral("Sin foto"));
        return;
    }
    const QSize espacio = imagen_->contentsRect().size();
    imagen_->setPixmap(QPixmap::fromImage(
        fotos_[foto_].scaled(espacio, Qt::KeepAspectRatio, Qt::SmoothTransformation)));
    etiquetaFoto_->setText(QStringLiteral("Foto %1/%2").arg(foto_ + 1).arg(fotos_.size()));
}

// De la última se pasa a la primera y al revés.
void TPuntoVentaF::cambiaFoto(int paso) {
    if (fotos_.size() < 2) return;
    const auto n = static_cast<int>(fotos_.size());
    foto_ = static_cast<size_t>((static_cast<int>(foto_) + paso + n) % n);
    Sonidos::reproduce(Sonido::Deslizar);
    muestraFoto();
}

void TPuntoVentaF::FotoAnteriorClick() {
    cambiaFoto(-1);
}

void TPuntoVentaF::FotoSiguienteClick() {
    cambiaFoto(1);
}

void TPuntoVentaF::muestraDetalles() {
    if (detalle_ < 0 || detalle_ >= static_cast<int>(venta_.RemisionDetalles().size())) return;
    const RenglonVenta& r = venta_.RemisionDetalles()[static_cast<size_t>(detalle_)];
    datosGenerales_->setText(r.clave + QStringLiteral("  ") + r.Producto + QStringLiteral("\n") +
                             r.Unidad + QStringLiteral("   Existencia: ") +
                             QLocale::c().toString(r.Existencia, 'f', 2) +
                             QStringLiteral("   Precio: ") + dinero(r.Precio) +
                             QStringLiteral("   Importe: ") + dinero(r.Importe));
    const double precios[] = {r.Precio1, r.Precio2, r.Precio3, r.Precio4, r.Precio5};
    for (int i = 0; i < 5; ++i) {
        const bool permitido = sesion_.puedeVentas(QStringLiteral("precio%1").arg(i + 1));
        auto* nivel = new QTableWidgetItem(QStringLiteral("Precio %1").arg(i + 1));
        auto* precio = new QTableWidgetItem(dinero(precios[i]));
        precio->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        if (!permitido)
            for (auto* c : {nivel, precio}) {
                c->setForeground(palette().color(QPalette::Disabled, QPalette::Text));
                c->setToolTip(QStringLiteral("Sin permiso"));
            }
        tablaPrecios_->setItem(i, 0, nivel);
        tablaPrecios_->setItem(i, 1, precio);
    }
    {
        const QSignalBlocker b(tablaPrecios_);
        tablaPrecios_->selectRow(r.PLista - 1);
    }
    cantidad_->setText(QLocale::c().toString(r.Cantidad, 'f', decimalesCantidad_));
    muestraCantidadAbierta();
    descuento_->setText(QLocale::c().toString(r.Descuento, 'f', 2));
    descuento_->setEnabled(sesion_.puedeVentas(QStringLiteral("descuento")));
    const QSignalBlocker b(nota_);
    nota_->setText(r.Nota);
}

void TPuntoVentaF::CantidadChange() {
    if (detalle_ < 0 || paginador_->currentIndex() != PDetalles) return;
    const size_t f = static_cast<size_t>(detalle_);
    bool ok = false;
    const double cantidad = numero(cantidad_->text(), &ok);
    if (!ok || cantidad == venta_.RemisionDetalles()[f].Cantidad) return;
    try {
        if (auto rechazo = venta_.cambiaCantidad(f, cantidad)) error(*rechazo);
    } catch (const std::exception& e) {
        errorLectura(e, "rangos");
    }
    actualizaCarrito(detalle_);
    muestraDetalles();
}

// La cantidad del renglón o, con "Es dinero", lo que se paga por él.
void TPuntoVentaF::muestraCantidadAbierta() {
    if (detalle_ < 0 || detalle_ >= static_cast<int>(venta_.RemisionDetalles().size())) return;
    const RenglonVenta& r = venta_.RemisionDetalles()[static_cast<size_t>(detalle_)];
    const QSignalBlocker b(cantidadAbierta_);
    cantidadAbierta_->setText(
        esDinero_->isChecked()
            ? QLocale::c().toString(Redondea(precioUnitarioAPagar(venta_, r) * r.Cantidad, 2), 'f',
                                    2)
            : QLocale::c().toString(r.Cantidad, 'f', decimalesCantidad_));
}

void TPuntoVentaF::EsDineroClick() {
    muestraCantidadAbierta();
    cantidadAbierta_->setFocus();
    cantidadAbierta_->selectAll();
}

void TPuntoVentaF::CantidadAbiertaChange() {
    if (detalle_ < 0 || paginador_->currentIndex() != PDetalles) return;
    const size_t f = static_cast<size_t>(detalle_);
    bool ok = false;
    const double valor = numero(cantidadAbierta_->text(), &ok);
    if (!ok) return;
    double cantidad = valor;
    if (esDinero_->isChecked()) {
        const double unitario = precioUnitarioAPagar(venta_, venta_.RemisionDetalles()[f]);
        if (unitario <= 0) {
            error(texto(MensajePrecioCero));
            return;
        }
        // Ya es lo que paga: no se vuelve a calcular (ni a redondear la cantidad).
        if (Redondea(unitario * venta_.RemisionDetalles()[f].Cantidad, 2) == Redondea(valor, 2))
            return;
        cantidad = valor / unitario;
    } else if (cantidad == venta_.RemisionDetalles()[f].Cantidad) {
        return;
    }
    // Rechazada, lo tecleado se queda en el campo para corregirlo.
    if (auto rechazo = venta_.cambiaCantidadAbierta(f, cantidad)) {
        error(*rechazo);
        return;
    }
    actualizaCarrito(detalle_);
    muestraDetalles();
}

void TPuntoVentaF::DescuentoChange() {
    if (detalle_ < 0 || paginador_->currentIndex() != PDetalles) return;
    const size_t f = static_cast<size_t>(detalle_);
    bool ok = false;
    const double d = numero(descuento_->text(), &ok);
    if (!ok || d == venta_.RemisionDetalles()[f].Descuento) return;
    if (auto rechazo = venta_.cambiaDescuento(f, d)) error(*rechazo);
    actualizaCarrito(detalle_);
    muestraDetalles();
}

void TPuntoVentaF::NotaProductoDetalleChange() {
    if (detalle_ < 0 || detalle_ >= static_cast<int>(venta_.RemisionDetalles().size())) return;
    venta_.cambiaNota(static_cast<size_t>(detalle_), nota_->text());
    modeloCarrito_->refresca();
}

void TPuntoVentaF::TablaPreciosClick(int fila) {
    if (detalle_ < 0) return;
    const size_t f = static_cast<size_t>(detalle_);
    if (venta_.RemisionDetalles()[f].PLista == fila + 1 &&
        venta_.RemisionDetalles()[f].PrecioElegido)
        return;
    if (auto rechazo = venta_.eligePrecio(f, fila + 1)) error(*rechazo);
    actualizaCarrito(detalle_);
    muestraDetalles();
}

// --- Opciones adicionales ------------------------------------------------------------------

void TPuntoVentaF::BotonDescuentoGlobalClick() {
    const auto p = mensajes_.pideDecimal(QStringLiteral("Escriba el Porcentaje de Descuento"));
    if (!p) return;
    if (auto rechazo = venta_.descuentoGlobal(*p)) {
        error(*rechazo);
        return;
    }
    Sonidos::reproduce(Sonido::Click);
    actualizaCarrito(renglonActual());
}

void TPuntoVentaF::BotonSeleccionaClienteClick() {
    Sonidos::reproduce(Sonido::Click);
    ejecutaConLeyenda(this, QStringLiteral("Cargando Clientes"), [this] {
        std::vector<DatosCliente> clientes;
        try {
            clientes = CatalogoClientes(ModuloDeDatos.ConexionBD, sesion_).consulta();
        } catch (const std::exception& e) {
            errorLectura(e, "clientes");
            return;
        }
        QStringList nombres;
        for (const DatosCliente& c : clientes)
            nombres << c.nombre;
        // Con el derecho clienteNuevo, la última opción da de alta al cliente sin dejar la venta.
        const bool alta = sesion_.puedeVentas(QStringLiteral("clienteNuevo"));
        if (alta) nombres << texto(OpcionClienteNuevo);
        const int elegido =
            mensajes_.eligeOpcion(QStringLiteral("Seleccione de la Lista"), nombres);
        if (elegido < 0) return;
        if (alta && elegido == nombres.size() - 1) return abreClienteNuevo();
        const int64_t id = clientes[static_cast<size_t>(elegido)].id;
        ejecutaConLeyenda(this, QStringLiteral("Cargando Clientes"),
                          [this, id] { DevuelveSeleccionClientesTimer(id); });
    });
}

void TPuntoVentaF::abreClienteNuevo() {
    auto* alta = new TClientesEditaF(sesion_, this);
    alta->setWindowFlag(Qt::Window);
    alta->setAttribute(Qt::WA_DeleteOnClose);
    alta->setWindowTitle(texto(OpcionClienteNuevo));
    alta->nuevo();
    connect(alta, &TEdicionCatalogoF::almacenado, this, [this, alta](qint64 id) {
        alta->close();
        ejecutaConLeyenda(this, QStringLiteral("Cargando Clientes"),
                          [this, id] { DevuelveSeleccionClientesTimer(id); });
    });
    connect(alta, &TEdicionCatalogoF::cancelado, alta, &QWidget::close);
    alta->show();
}

void TPuntoVentaF::DevuelveSeleccionClientesTimer(int64_t cliente) {
    try {
        leeCliente(cliente);
    } catch (const std::exception& e) {
        errorLectura(e, "cliente");
    }
    modeloProductos_->cambia([this] { return static_cast<int>(consulta_.size()); });
    actualizaCarrito(renglonActual());
    buscarProducto_->setFocus();
}

void TPuntoVentaF::BotonCancelarVentaClick() {
    Sonidos::reproduce(Sonido::Recargar);
    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"),
                      [this] { ReiniciarVentasTimer(); });
}

// Un usuario que no vende en la empresa deja al de la sesión.
void TPuntoVentaF::eligeVendedor(int64_t usuario) {
    int elegido = vendedores_->findData(QVariant(static_cast<qlonglong>(usuario)));
    if (elegido < 0)
        elegido = vendedores_->findData(QVariant(static_cast<qlonglong>(sesion_.UsuarioID)));
    vendedores_->setCurrentIndex(elegido);
}

void TPuntoVentaF::ReiniciarVentasTimer() {
    venta_.limpia();
    origen_.reset();
    eligeVendedor(sesion_.UsuarioID);
    ultimaLectura_.clear();
    detalle_ = -1;
    for (FormaPago& f : formasPago_)
        f.importe = 0;
    pagosTecleados_ = false;
    llenaFormasPago();
    observaciones_->clear();
    plazoPago_->setText(QStringLiteral("0"));
    try {
        if (cliente_.id != clienteDefault_ || cliente_.id == 0)
            leeCliente(clienteDefault_);
        else
            llenaCorreos(); // lo tecleado para la venta anterior no pasa a la siguiente
    } catch (const std::exception& e) {
        errorLectura(e, "cliente");
    }
    actualizaCarrito();
    muestraPestana(PCarrito);
    buscarProducto_->setFocus();
}

void TPuntoVentaF::BotonVentaEnEsperaClick() {
    QStringList opciones;
    std::vector<QPointer<TPuntoVentaF>> otros;
    for (const QPointer<TPuntoVentaF>& p : puntosVenta())
        if (p && p != this) {
            opciones << p->windowTitle();
            otros.push_back(p);
        }
    opciones << texto(OpcionVentaNueva);
    const int elegido = mensajes_.eligeOpcion(QStringLiteral("Seleccione de la Lista"), opciones);
    if (elegido < 0) return;
    Sonidos::reproduce(Sonido::Click);
    if (elegido == opciones.size() - 1) {
        ejecutaConLeyenda(this, QStringLiteral("Creando Nuevo Punto de Venta"),
                          [this] { CrearPuntoVentaTimer(); });
        return;
    }
    const QPointer<TPuntoVentaF> otro = otros[static_cast<size_t>(elegido)];
    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"), [otro] {
        if (!otro) return;
        otro->show();
        otro->raise();
        otro->activateWindow();
        otro->buscarProducto_->setFocus();
    });
}

// La venta actual se queda como está en esta pantalla; la nueva es otra ventana.
void TPuntoVentaF::CrearPuntoVentaTimer() {
    auto* nuevo = new TPuntoVentaF(sesion_, window(), ajustes_.carpeta());
    nuevo->setWindowFlag(Qt::Window);
    nuevo->setAttribute(Qt::WA_DeleteOnClose);
    nuevo->resize(size());
    nuevo->show();
    nuevo->activateWindow();
}

void TPuntoVentaF::BotonCajaChicaClick() {
    const EntradaMenu* entrada = RegistroModulos::busca(QStringLiteral("CajaChica"));
    if (!entrada) return;
    Sonidos::reproduce(Sonido::Click);
    try {
        if (QWidget* caja = RegistroModulos::crea(*entrada, sesion_, this)) {
            caja->setWindowFlag(Qt::Window);
            caja->setAttribute(Qt::WA_DeleteOnClose);
            caja->show();
        }
    } catch (const std::exception& e) {
        errorLectura(e, "caja chica");
    }
}

void registraSelectorComandas(FabricaSelectorComandas fabrica) {
    fabricaSelectorComandas() = std::move(fabrica);
}

// Un solo selector por venta: la comanda elegida se carga en esta venta.
void TPuntoVentaF::BotonCobrarComandaClick() {
    if (!fabricaSelectorComandas() || !sesion_.controlRestaurantes) return;
    if (selectorComandas_) {
        error(texto(MensajeSelectorComandasAbierto));
        selectorComandas_->raise();
        selectorComandas_->activateWindow();
        return;
    }
    Sonidos::reproduce(Sonido::Click);
    try {
        selectorComandas_ = fabricaSelectorComandas()(sesion_, *this);
    } catch (const std::exception& e) {
        errorLectura(e, "comandas");
        return;
    }
    if (!selectorComandas_) return;
    selectorComandas_->setWindowFlag(Qt::Window);
    selectorComandas_->setAttribute(Qt::WA_DeleteOnClose);
    selectorComandas_->show();
}

// --- Cierre --------------------------------------------------------------------------------

void TPuntoVentaF::GrupoBotonAnteriorClick() {
    if (paginador_->currentIndex() == PCarrito) return;
    Sonidos::reproduce(Sonido::Click);
    muestraPestana(PCarrito);
    buscarProducto_->setFocus();
}

double TPuntoVentaF::totalPagado() const {
    double suma = 0;
    for (const FormaPago& f : formasPago_)
        suma += f.importe;
    return suma;
}

int TPuntoVentaF::filaMonedero() const {
    for (size_t i = 0; i < formasPago_.size(); ++i)
        if (formasPago_[i].descripcion.contains(texto(FormaPagoMonedero)))
            return static_cast<int>(i);
    return -1;
}

void TPuntoVentaF::RecalculaCambio() {
    const double cambio = std::max(0.0, totalPagado() - venta_.totales().total);
    cambio_->setText(QStringLiteral("Cambio= ") + dinero(Redondea(cambio, 2)));
}

void TPuntoVentaF::TipoCambioChange() {
    bool ok = false;
    const double tc = numero(tipoCambio_->text(), &ok);
    if (!ok || tc <= 0 || monedas_->currentIndex() < 0) return;
    venta_.asignaMoneda(monedas_->currentData().toLongLong(), tc);
    actualizaTotales();
}

void TPuntoVentaF::ListaMonedaChange() {
    if (monedas_->currentIndex() < 0) return;
    const int64_t moneda = monedas_->currentData().toLongLong();
    const double tc = venta_.monedas().value(moneda).tipoCambioVenta;
    venta_.asignaMoneda(moneda, tc);
    const QSignalBlocker b(tipoCambio_);
    tipoCambio_->setText(QLocale::c().toString(tc, 'f', 4));
    actualizaTotales();
}

void TPuntoVentaF::ListaFormaPagoChange() {
    const int fila = formas_->currentRow();
    if (fila < 0) return;
    const QSignalBlocker b(importePago_);
    importePago_->setText(
        QLocale::c().toString(formasPago_[static_cast<size_t>(fila)].importe, 'f', 2));
    importePago_->selectAll();
}

void TPuntoVentaF::ImportePagoChange() {
    const int fila = formas_->currentRow();
    if (fila < 0) return;
    FormaPago& forma = formasPago_[static_cast<size_t>(fila)];
    const double importe =
        importePago_->text().trimmed().isEmpty() ? 0 : numero(importePago_->text());
    // El monedero paga con los puntos del cliente y no puede pasar de ellos.
    if (fila == filaMonedero() && importe > venta_.puntosCliente() + 1e-9) {
        error(texto(MensajeSaldoMonedero) + QStringLiteral(": ") + dinero(venta_.puntosCliente()));
        const QSignalBlocker b(importePago_);
        importePago_->setText(QLocale::c().toString(forma.importe, 'f', 2));
        return;
    }
    forma.importe = std::max(0.0, importe);
    pagosTecleados_ = true;
    formas_->item(fila, 1)->setText(dinero(forma.importe));
    RecalculaCambio();
}

std::vector<FormaPagoVenta> TPuntoVentaF::pagosAplicados() const {
    std::vector<FormaPagoVenta> pagos;
    for (const FormaPago& f : formasPago_)
        pagos.push_back({f.id, f.descripcion, f.importe, 0.0f});
    // El efectivo se aplica al final: de él sale el cambio.
    double restante = venta_.totales().total;
    for (bool efectivo : {false, true})
        for (FormaPagoVenta& p : pagos) {
            if (p.descripcion.contains(QStringLiteral("EFECTIVO")) != efectivo) continue;
            const double aplicado = std::clamp(p.importe, 0.0, std::max(0.0, restante));
            p.utilizados = static_cast<float>(aplicado);
            restante -= aplicado;
        }
    return pagos;
}

CierreVenta TPuntoVentaF::cierre() const {
    CierreVenta c;
    c.pagos = pagosAplicados();
    c.formaPagoDefault = formaPagoDefault_;
    c.plazoPago = plazoPago_->text().toInt();
    c.observaciones = observaciones_->toPlainText();
    c.vendedor = vendedores_->currentIndex() >= 0 ? vendedores_->currentData().toLongLong()
                                                  : sesion_.UsuarioID;
    if (origen_) c.origen = *origen_;
    return c;
}

bool TPuntoVentaF::rechaza(const char* mensaje) {
    error(texto(mensaje));
    return false;
}

// Las revisiones del cierre, en su orden; la primera que falla lo dice y detiene.
bool TPuntoVentaF::revisaCierre() {
    if (cliente_.id == 0) return rechaza(MensajeSinCliente);
    if (monedas_->currentIndex() < 0) return rechaza(MensajeSinMoneda);
    if (tipoCambio_->text().trimmed().isEmpty()) return rechaza(MensajeSinTipoCambio);
    if (numero(tipoCambio_->text()) < 0) return rechaza(MensajeTipoCambioNegativo);
    if (plazoPago_->text().trimmed().isEmpty()) return rechaza(MensajeSinDiasPago);
    const double total = venta_.totales().total;
    if (plazoPago_->text().toInt() > 0) {
        try {
            Consulta q(ModuloDeDatos.ConexionBD, texto(SqlSaldoCliente));
            q.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
            q.parametro(QStringLiteral("ClienteID")).entero(cliente_.id);
            q.abre();
            const double saldo = q.campo(QStringLiteral("SaldoPendiente")).comoReal();
            const double limite = q.campo(QStringLiteral("limiteCredito")).comoReal();
            // Lo que ya debe más esta venta no puede pasar del límite; bloqueado, ni un peso.
            if (q.campo(QStringLiteral("BloquearCredito")).comoBooleano() ||
                Redondea(saldo + total, 2) > Redondea(limite, 2)) {
                error(texto(MensajeLimiteCredito) + dinero(limite));
                return false;
            }
        } catch (const std::exception& e) {
            errorLectura(e, "saldo del cliente");
            return false;
        }
    } else if (Redondea(totalPagado(), 2) < total) {
        error(texto(MensajePagoInsuficiente));
        return false;
    }
    for (const RenglonVenta& r : venta_.RemisionDetalles())
        if (r.Precio <= 0) return rechaza(MensajeRenglonPrecioCero);
    return true;
}

void TPuntoVentaF::GrupoBotonSiguienteClick() {
    const int pestana = paginador_->currentIndex();
    if (pestana != PCarrito && pestana != PFinalizar) return;
    if (venta_.RemisionDetalles().empty()) {
        Sonidos::reproduce(Sonido::Error);
        buscarProducto_->setFocus();
        return;
    }
    if (pestana == PCarrito) {
        // Mientras el cajero no teclee importes, la forma de pago por omisión cubre el total.
        if (!pagosTecleados_)
            for (FormaPago& f : formasPago_)
                f.importe = f.id == formaPagoDefault_ ? venta_.totales().total : 0;
        llenaFormasPago();
        if (!revisaCierre()) return;
        Sonidos::reproduce(Sonido::Click);
        muestraPestana(PFinalizar);
        actualizaTotales();
        formas_->setCurrentCell(0, 0);
        importePago_->setFocus();
        return;
    }
    if (!revisaCierre() || !revisaCorreo()) return;
    // Llega marcada la misma que la vez anterior en esta estación.
    const int opcion = mensajes_.eligeOpcion(
        texto(PreguntaTipoOperacion), kOperaciones,
        ajustes_.valor(QStringLiteral("IndiceFinalizarTransaccion"), 0).toInt());
    if (opcion < 0) return;
    const auto operacion = static_cast<TipoOperacion>(opcion);
    guardaAjustes(operacion);
    Sonidos::reproduce(Sonido::Click);
    ejecutaConLeyenda(this, QStringLiteral("Registrando Transacción."),
                      [this, operacion] { AlmacenaDatosTimer(operacion); });
}

void TPuntoVentaF::guardaAjustes(TipoOperacion operacion) {
    ajustes_.ponValor(QStringLiteral("IndiceFinalizarTransaccion"), static_cast<int>(operacion));
    AjustesImpresion a = leeAjustesImpresion(ajustes_, QStringLiteral("Remision"));
    a.impresora = impresoras_->currentText();
    a.plantilla = plantillas_->currentText();
    a.formato.continuo = papelContinuo_->currentIndex() == 0;
    a.copias = copias_->value();
    guardaAjustesImpresion(ajustes_, QStringLiteral("Remision"), a);
    if (!ajustes_.guarda()) qWarning() << "Punto de Venta: no se guardaron los ajustes";
}

void TPuntoVentaF::AlmacenaDatosTimer(TipoOperacion operacion) {
    // Lo primero: una estación no autorizada no guarda nada. Un lote pendiente (sin respuesta) ya
    // pasó la revisión antes de mandarse y se reintenta tal cual.
    if (!registro_.pendiente()) {
        if (const QString rechazo = rechazoDispositivo(sesion_.DispositivoID); !rechazo.isEmpty()) {
            error(rechazo);
            return;
        }
    }
    // Un reintento manda el mismo lote con la misma clave: el servicio no la guarda dos veces.
    ResultadoRegistro r;
    try {
        r = registro_.registra(venta_, cierre());
    } catch (const std::exception& e) {
        r.mensaje = texto(MensajeErrorRegistro) + QLatin1Char('\n') + QString::fromUtf8(e.what());
    }
    if (!r.registrada) {
        error(r.mensaje);
        return;
    }
    if (operacion != TipoOperacion::SoloAlmacenar)
        imprimeVenta(this, sesion_, r.folio, ajustes_,
                     operacion == TipoOperacion::PdfYAlmacenar ? DestinoImpresion::Pdf
                                                               : DestinoImpresion::Impresora);
    ReiniciarVentasTimer();
}

void TPuntoVentaF::closeEvent(QCloseEvent* evento) {
    if (!venta_.RemisionDetalles().empty() && !mensajes_.pregunta(texto(PreguntaSalirVenta))) {
        evento->ignore();
        return;
    }
    Sonidos::reproduce(Sonido::Regresar);
    QWidget::closeEvent(evento);
}

} // namespace cajaplex
