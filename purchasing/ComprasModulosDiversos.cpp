#include "purchasing/ComprasModulosDiversos.h"

#include <algorithm>
#include <exception>

#include <QCloseEvent>
#include <QComboBox>
#include <QDoubleValidator>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QSplitter>
#include <QTableView>
#include <QVBoxLayout>
#include <QtDebug>

#include "catalog/CatalogoProductos.h"
#include "catalog/SelectorProductos.h"
#include "datos/ConexionBD.h"
#include "datos/Consulta.h"
#include "datos/MensajesComunes.h"
#include "datos/ModuloDatos.h"
#include "datos/Utilerias.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/ListaEdicion.h"
#include "pantallas/ModeloTabla.h"
#include "pantallas/Sonidos.h"
#include "purchasing/ImpresionCompra.h"

namespace cajaplex {
namespace {

const char* const SqlProveedores =
    "Select id, nombre From Proveedores Where empresaID = :EmpresaID Order by nombre";
const char* const SqlMonedas = "Select id, descripcion, ifnull(tipoCambioCompra, 1) as "
                               "tipoCambioCompra From Monedas Where empresaID = :EmpresaID "
                               "Order by id";
const char* const SqlFormasPago =
    "Select id, descripcion From FEMetodosPago Where empresaID = :EmpresaID Order by id";

const char* const kOperaciones[] = {"Almacenar y Enviar Impresión", "Almacenar y Visualizar PDF",
                                    "Almacenar Únicamente"};

// El árbol de líneas de la compra: solo productos activos (los únicos que se pueden comprar) y
// con su costo, no su precio de venta.
QString listadoParaCompras(const QString& sqlListado) {
    const QString orden = QStringLiteral(" Order By A.producto");
    const QString precio = QStringLiteral("A.precio as Precio1");
    const auto posicion = sqlListado.lastIndexOf(orden);
    if (posicion < 0 || !sqlListado.contains(precio))
        throw ErrorProgramacion("El listado de productos no es el que se esperaba");
    QString sql = sqlListado;
    sql.insert(posicion, QStringLiteral(" And ifnull(A.activo, 0) = 1"));
    return sql.replace(precio, QStringLiteral("ifnull(A.pCompra, 0) as Precio1"));
}

inline constexpr const char* PreguntaSalir = "Transacción Incompleta\n¿Aún así desea salir?";

// Por cientos con dos decimales; cantidades e importes con los formatos del catálogo.
QString numero(double valor) {
    return QLocale::c().toString(valor, 'f', 2);
}

// Llena un combo con id y texto de una consulta de la empresa; el primer renglón, vacío, es
// "ninguno".
void llena(QComboBox* combo, const char* sql, int64_t empresa, const QString& columna,
           std::vector<double>* tiposCambio = nullptr) {
    Consulta q(ModuloDeDatos.ConexionBD, QString::fromUtf8(sql));
    q.parametro(QStringLiteral("EmpresaID")).entero(empresa);
    q.abre();
    combo->clear();
    combo->addItem(QString(), QVariant::fromValue<qlonglong>(0));
    if (tiposCambio) tiposCambio->assign(1, 1.0);
    for (const Registro& r : q) {
        combo->addItem(r.campo(columna).comoTexto(),
                       QVariant::fromValue<qlonglong>(r.campo(QStringLiteral("id")).comoEntero()));
        if (tiposCambio)
            tiposCambio->push_back(r.campo(QStringLiteral("tipoCambioCompra")).comoReal());
    }
}

void eligeId(QComboBox* combo, int64_t id) {
    const int i = combo->findData(QVariant::fromValue<qlonglong>(id));
    combo->setCurrentIndex(i < 0 ? 0 : i);
}

} // namespace

TComprasModulosDiversosF::TComprasModulosDiversosF(const Sesion& sesion, QWidget* padre)
    : QWidget(padre), sesion_(sesion),
      documento_(std::make_unique<DocumentoCompra>(ModuloDeDatos.ConexionBD, sesion_,
                                                   TipoCompra::OrdenCompra)) {
    setObjectName(QStringLiteral("Compras"));
    setWindowTitle(QStringLiteral("Compras"));
    setAccessibleName(QStringLiteral("Compras"));

    auto* rejilla = new QGridLayout;
    int posicion = 0;
    auto pon = [&](QWidget* c, const char* nombre, const QString& titulo) {
        c->setObjectName(QString::fromLatin1(nombre));
        c->setAccessibleName(titulo);
        c->setMinimumHeight(AltoControl);
        auto* etiqueta =
            creaEtiqueta(titulo, QStringLiteral("Etiqueta") + c->objectName(), "subtitulo", this);
        etiqueta->setBuddy(c);
        rejilla->addWidget(etiqueta, (posicion / 4) * 2, posicion % 4);
        rejilla->addWidget(c, (posicion / 4) * 2 + 1, posicion % 4);
        ++posicion;
    };
    tipo_ = new QComboBox(this);
    for (int i = 0; i < 4; ++i)
        tipo_->addItem(QString::fromUtf8(datosTipo(static_cast<TipoCompra>(i)).nombre));
    pon(tipo_, "TipoDocumento", QStringLiteral("Tipo de Documento"));
    proveedor_ = new QComboBox(this);
    pon(proveedor_, "Proveedor", QStringLiteral("Proveedor"));
    moneda_ = new QComboBox(this);
    pon(moneda_, "Moneda", QStringLiteral("Moneda"));
    tipoCambio_ = new QLineEdit(this);
    tipoCambio_->setValidator(new QDoubleValidator(0, 1e6, 6, tipoCambio_));
    pon(tipoCambio_, "TipoCambio", QStringLiteral("Tipo de Cambio"));
    plazoPago_ = new QLineEdit(QStringLiteral("0"), this);
    plazoPago_->setValidator(new QIntValidator(0, 9999, plazoPago_));
    pon(plazoPago_, "PlazoPago", QStringLiteral("Días de Pago"));
    formaPago_ = new QComboBox(this);
    pon(formaPago_, "FormaPago", QStringLiteral("Forma de Pago"));
    entrada_ = new InterruptorSiNo(QStringLiteral("AjusteEntrada"),
                                   QStringLiteral("Ajuste de Entrada"), this);
    entrada_->setChecked(true);
    pon(entrada_, "AjusteEntrada", QStringLiteral("Ajuste de Entrada"));
    observaciones_ = new QLineEdit(this);
    observaciones_->setMaxLength(255);
    pon(observaciones_, "Observaciones", QStringLiteral("Observaciones"));
    for (int columna = 0; columna < 4; ++columna)
        rejilla->setColumnStretch(columna, 1);

    clave_ = new QLineEdit(this);
    clave_->setObjectName(QStringLiteral("ClaveProducto"));
    clave_->setAccessibleName(QStringLiteral("Clave, código de barras o descripción"));
    clave_->setPlaceholderText(QStringLiteral("Clave ó código de barras (Enter agrega)"));
    clave_->setMinimumHeight(AltoControl);
    auto boton = [this](const char* imagen, const char* texto, const char* nombre) {
        auto* b = creaBoton(QString::fromLatin1(imagen), QString::fromUtf8(texto),
                            QString::fromLatin1(nombre), "secundario", this);
        b->setAccessibleName(QString::fromUtf8(texto));
        return b;
    };
    auto* buscar = boton("Buscar", "Buscar", "BotonBuscar");
    auto* cantidad = boton("Actualizacion", "Cantidad", "BotonCantidad");
    auto* costo = boton("IncrementoPrecios", "Costo", "BotonCosto");
    auto* descuento = boton("Bonificacion", "Descuento", "BotonDescuento");
    auto* global = boton("Bonificacion", "Descuento Global", "BotonDescuentoGlobal");
    auto* eliminar = boton("Cancelacion", "Eliminar", "BotonEliminar");
    ordenes_ = boton("Compras", "Órdenes de Compra", "BotonOrdenes");
    auto* reposicion = boton("Kardex", "Reposición", "BotonReposicion");
    auto* finalizar =
        creaBoton(QStringLiteral("Insercion"), QStringLiteral("Finalizar Transacción"),
                  QStringLiteral("BotonFinalizar"), "primario", this);
    finalizar->setAccessibleName(QStringLiteral("Finalizar Transacción"));

    const auto fila = [this](int f) -> const RenglonVenta& {
        return documento_->TransaccionDetalles()[static_cast<size_t>(f)];
    };
    modelo_ = new ModeloTabla(
        {{QStringLiteral("Clave"), [fila](int f) { return fila(f).clave; }},
         {QStringLiteral("Descripción"), [fila](int f) { return fila(f).Producto; }},
         {QStringLiteral("Unidad"), [fila](int f) { return fila(f).Unidad; }},
         ModeloTabla::numerica(
             QStringLiteral("Cantidad"), [fila](int f) { return fila(f).Cantidad; }, textoCantidad),
         ModeloTabla::numerica(
             QStringLiteral("Costo"), [fila](int f) { return fila(f).PCompra; }, textoPrecio),
         ModeloTabla::numerica(
             QStringLiteral("Descuento %"), [fila](int f) { return fila(f).Descuento; }, numero),
         ModeloTabla::numerica(
             QStringLiteral("IVA %"), [fila](int f) { return fila(f).porcentajeImpuesto; }, numero),
         ModeloTabla::numerica(
             QStringLiteral("IEPS %"), [fila](int f) { return fila(f).ieps; }, numero),
         ModeloTabla::numerica(
             QStringLiteral("Importe"), [fila](int f) { return fila(f).Importe; }, textoPrecio,
             true),
         ModeloTabla::numerica(
             QStringLiteral("Existencia"), [fila](int f) { return fila(f).Existencia; },
             textoCantidad)},
        this);
    tabla_ = creaVistaTabla(QStringLiteral("TransaccionDetalles"), modelo_, 44, this);
    tabla_->setAccessibleName(QStringLiteral("Productos de la transacción"));
    // Vacía aún: cada columna numérica queda a lo que pide su título; la descripción toma el resto.
    tabla_->resizeColumnsToContents();
    tabla_->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
    totales_ = creaEtiqueta({}, QStringLiteral("Totales"), "titulo", this);
    totales_->setAccessibleName(QStringLiteral("Totales"));

    auto* captura = new QHBoxLayout;
    captura->addWidget(clave_, 1);
    for (QPushButton* b : {buscar, reposicion, ordenes_})
        captura->addWidget(b);
    auto* abajo = new QHBoxLayout;
    for (QPushButton* b : {cantidad, costo, descuento, global, eliminar})
        abajo->addWidget(b);
    abajo->addStretch(1);
    abajo->addWidget(finalizar);
    // A la izquierda el árbol de líneas sobre sus productos; a la derecha lo capturado.
    selector_ = new TSelectorProductosF(sesion_, QStringLiteral("Productos por Línea"), this,
                                        &listadoParaCompras);
    selector_->ponOrientacion(Qt::Vertical);
    auto* capturados = new QWidget(this);
    auto* capaCapturados = new QVBoxLayout(capturados);
    capaCapturados->setContentsMargins(0, 0, 0, 0);
    capaCapturados->addLayout(captura);
    capaCapturados->addWidget(tabla_, 1);
    auto* division = new QSplitter(Qt::Horizontal, this);
    division->setObjectName(QStringLiteral("DivisionCompras"));
    division->addWidget(selector_);
    division->addWidget(capturados);
    division->setStretchFactor(0, 1);
    division->setStretchFactor(1, 3);
    division->setSizes({340, 1000});
    auto* capa = new QVBoxLayout(this);
    capa->addLayout(rejilla);
    capa->addWidget(division, 1);
    capa->addWidget(totales_, 0, Qt::AlignRight);
    capa->addLayout(abajo);

    connect(tipo_, &QComboBox::currentIndexChanged, this,
            &TComprasModulosDiversosF::TipoDocumentoChange);
    connect(moneda_, &QComboBox::currentIndexChanged, this,
            &TComprasModulosDiversosF::MonedaChange);
    connect(proveedor_, &QComboBox::currentIndexChanged, this,
            &TComprasModulosDiversosF::ProveedorChange);
    connect(selector_, &TSelectorProductosF::elegido, this,
            &TComprasModulosDiversosF::ProductoElegido);
    connect(clave_, &QLineEdit::returnPressed, this,
            &TComprasModulosDiversosF::ClaveProductoReturn);
    connect(buscar, &QPushButton::clicked, this, &TComprasModulosDiversosF::BotonBuscarClick);
    connect(cantidad, &QPushButton::clicked, this, &TComprasModulosDiversosF::BotonCantidadClick);
    connect(costo, &QPushButton::clicked, this, &TComprasModulosDiversosF::BotonCostoClick);
    connect(descuento, &QPushButton::clicked, this, &TComprasModulosDiversosF::BotonDescuentoClick);
    connect(global, &QPushButton::clicked, this,
            &TComprasModulosDiversosF::BotonDescuentoGlobalClick);
    connect(eliminar, &QPushButton::clicked, this, &TComprasModulosDiversosF::BotonEliminarClick);
    connect(ordenes_, &QPushButton::clicked, this, &TComprasModulosDiversosF::BotonOrdenesClick);
    connect(reposicion, &QPushButton::clicked, this,
            &TComprasModulosDiversosF::BotonReposicionClick);
    connect(finalizar, &QPushButton::clicked, this, &TComprasModulosDiversosF::BotonFinalizarClick);

    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"), [this] { CargaTimer(); });
}

TComprasModulosDiversosF::~TComprasModulosDiversosF() = default;

void TComprasModulosDiversosF::error(const QString& mensaje) {
    Sonidos::reproduce(Sonido::Error);
    mensajes_.muestra(mensaje);
}

void TComprasModulosDiversosF::CargaTimer() {
    try {
        {
            const QSignalBlocker bloqueoProveedor(proveedor_);
            llena(proveedor_, SqlProveedores, sesion_.EmpresaID, QStringLiteral("nombre"));
        }
        selector_->cargaLineas();
        const QSignalBlocker bloqueo(moneda_);
        llena(moneda_, SqlMonedas, sesion_.EmpresaID, QStringLiteral("descripcion"), &tiposCambio_);
        llena(formaPago_, SqlFormasPago, sesion_.EmpresaID, QStringLiteral("descripcion"));
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorLectura) + QLatin1Char('\n') +
              QString::fromUtf8(e.what()));
        qWarning() << "Compras, carga:" << e.what();
        return;
    }
    TipoDocumentoChange(tipo_->currentIndex());
    eligeId(moneda_, documento_->monedaDefault());
    MonedaChange(moneda_->currentIndex());
    eligeId(formaPago_, documento_->formaPagoDefault());
}

void TComprasModulosDiversosF::MonedaChange(int indice) {
    // La moneda trae su tipo de cambio de compra; "ninguna" deja lo tecleado.
    if (indice > 0 && static_cast<size_t>(indice) < tiposCambio_.size())
        tipoCambio_->setText(QLocale::c().toString(tiposCambio_[static_cast<size_t>(indice)]));
}

void TComprasModulosDiversosF::ProveedorChange(int indice) {
    // El proveedor trae sus días de crédito (los días de pago que se proponen) y su modo de IVA,
    // con el que se recalculan los costos capturados.
    const int64_t id = indice > 0 ? proveedor_->itemData(indice).toLongLong() : 0;
    int dias = 0;
    cambia([&] {
        dias = documento_->ponProveedor(id);
        return DocumentoCompra::Rechazo{};
    });
    plazoPago_->setText(QString::number(dias));
}

void TComprasModulosDiversosF::ProductoElegido(int64_t, const QString& clave) {
    cambia([&] { return documento_->agrega(clave); });
    tabla_->selectRow(modelo_->rowCount() - 1);
}

void TComprasModulosDiversosF::TipoDocumentoChange(int indice) {
    const auto tipo = static_cast<TipoCompra>(std::clamp(indice, 0, 3));
    // Cada clase es un documento nuevo (sin renglones: la clase solo cambia sin ellos).
    auto nuevo = std::make_unique<DocumentoCompra>(ModuloDeDatos.ConexionBD, sesion_, tipo);
    try {
        nuevo->abre();
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorLectura) + QLatin1Char('\n') +
              QString::fromUtf8(e.what()));
        return;
    }
    modelo_->cambia([&] {
        documento_ = std::move(nuevo);
        ordenOrigen_ = 0;
        return 0;
    });
    ProveedorChange(proveedor_->currentIndex());
    const bool ajuste = tipo == TipoCompra::Ajuste;
    for (QWidget* w : std::initializer_list<QWidget*>{proveedor_, moneda_, tipoCambio_, plazoPago_})
        w->setEnabled(!ajuste);
    formaPago_->setEnabled(tipo == TipoCompra::Recepcion || tipo == TipoCompra::Devolucion);
    entrada_->setEnabled(ajuste);
    ordenes_->setVisible(tipo == TipoCompra::Recepcion);
    muestra();
}

void TComprasModulosDiversosF::muestra() {
    const TotalesVenta t = documento_->totales();
    totales_->setText(
        QStringLiteral("Subtotal %1   IVA %2   Total %3")
            .arg(textoPrecio(t.total - t.iva), textoPrecio(t.iva), textoPrecio(t.total)));
    // La clase queda fija mientras haya renglones.
    tipo_->setEnabled(documento_->TransaccionDetalles().empty());
}

void TComprasModulosDiversosF::cambia(const std::function<DocumentoCompra::Rechazo()>& cambio) {
    // El modelo se reinicia con cada cambio: el renglón elegido se vuelve a elegir.
    const int elegido = filaElegida();
    const auto vuelveAElegir = [this, elegido] {
        const int total = modelo_->rowCount();
        if (elegido >= 0 && total > 0) tabla_->selectRow(std::min(elegido, total - 1));
    };
    DocumentoCompra::Rechazo rechazo;
    try {
        modelo_->cambia([&] {
            rechazo = cambio();
            return static_cast<int>(documento_->TransaccionDetalles().size());
        });
    } catch (const std::exception& e) {
        modelo_->cambia([&] { return static_cast<int>(documento_->TransaccionDetalles().size()); });
        error(QString::fromUtf8(MensajeErrorLectura) + QLatin1Char('\n') +
              QString::fromUtf8(e.what()));
        qWarning() << "Compras:" << e.what();
        vuelveAElegir();
        return;
    }
    vuelveAElegir();
    muestra();
    if (rechazo) error(*rechazo);
}

int TComprasModulosDiversosF::filaElegida() const {
    const QModelIndex i = tabla_->currentIndex();
    return i.isValid() ? i.row() : -1;
}

void TComprasModulosDiversosF::ClaveProductoReturn() {
    const QString clave = clave_->text().trimmed();
    if (clave.isEmpty()) return;
    cambia([&] { return documento_->agrega(clave); });
    clave_->clear();
    tabla_->selectRow(modelo_->rowCount() - 1);
}

void TComprasModulosDiversosF::BotonBuscarClick() {
    std::vector<ProductoCompra> productos;
    try {
        productos = documento_->busca(clave_->text());
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorLectura) + QLatin1Char('\n') +
              QString::fromUtf8(e.what()));
        return;
    }
    if (productos.empty()) {
        error(QString::fromUtf8(MensajeBusquedaVacia));
        return;
    }
    QStringList opciones;
    for (const ProductoCompra& p : productos)
        opciones << p.clave + QStringLiteral(" - ") + p.descripcion;
    const int elegido = mensajes_.eligeOpcion(QStringLiteral("Seleccione el Producto"), opciones);
    if (elegido < 0) return;
    const QString clave = productos[static_cast<size_t>(elegido)].clave;
    cambia([&] { return documento_->agrega(clave); });
    clave_->clear();
    tabla_->selectRow(modelo_->rowCount() - 1);
}

void TComprasModulosDiversosF::editaRenglon(const QString& titulo, double RenglonVenta::*campo,
                                            int decimales, CambioRenglon cambio) {
    const int f = filaElegida();
    if (f < 0) return;
    const auto fila = static_cast<size_t>(f);
    const double actual = documento_->TransaccionDetalles()[fila].*campo;
    const auto valor = mensajes_.pideDecimal(titulo, actual, decimales);
    if (!valor) return;
    cambia([&] { return (documento_.get()->*cambio)(fila, *valor); });
}

void TComprasModulosDiversosF::BotonCantidadClick() {
    editaRenglon(QStringLiteral("Cantidad"), &RenglonVenta::Cantidad, 3,
                 &DocumentoCompra::cambiaCantidad);
}

void TComprasModulosDiversosF::BotonCostoClick() {
    editaRenglon(QStringLiteral("Costo"), &RenglonVenta::PCompra, 6, &DocumentoCompra::cambiaCosto);
}

void TComprasModulosDiversosF::BotonDescuentoClick() {
    editaRenglon(QStringLiteral("Descuento"), &RenglonVenta::Descuento, 2,
                 &DocumentoCompra::cambiaDescuento);
}

void TComprasModulosDiversosF::BotonDescuentoGlobalClick() {
    if (documento_->TransaccionDetalles().empty()) return;
    const auto valor =
        mensajes_.pideDecimal(QStringLiteral("Escriba el Porcentaje de Descuento"), 0, 2);
    if (!valor) return;
    cambia([&] { return documento_->descuentoGlobal(*valor); });
}

void TComprasModulosDiversosF::BotonEliminarClick() {
    const int f = filaElegida();
    if (f < 0) return;
    cambia([&] {
        documento_->elimina(static_cast<size_t>(f));
        return DocumentoCompra::Rechazo{};
    });
}

void TComprasModulosDiversosF::BotonOrdenesClick() {
    std::vector<OrdenAbierta> ordenes;
    try {
        ordenes = documento_->ordenesAbiertas();
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorLectura) + QLatin1Char('\n') +
              QString::fromUtf8(e.what()));
        return;
    }
    if (ordenes.empty()) {
        error(QString::fromUtf8(MensajeSinOrdenes));
        return;
    }
    QStringList opciones;
    for (const OrdenAbierta& o : ordenes)
        opciones << QStringLiteral("Folio: %1 | %2 | %3 %4")
                        .arg(QString::number(o.folio), o.proveedor, textoPrecio(o.total), o.moneda);
    const int elegida =
        mensajes_.eligeOpcion(QStringLiteral("Seleccione la Órden de Compra"), opciones);
    if (elegida < 0) return;
    const OrdenAbierta orden = ordenes[static_cast<size_t>(elegida)];
    cambia([&] {
        documento_->cargaOrden(orden.folio);
        return DocumentoCompra::Rechazo{};
    });
    ordenOrigen_ = orden.folio;
    eligeId(proveedor_, orden.proveedorID);
}

void TComprasModulosDiversosF::BotonReposicionClick() {
    QStringList opciones;
    for (const char* o : OpcionesReposicion)
        opciones << QString::fromUtf8(o);
    const int opcion = mensajes_.eligeOpcion(QString::fromUtf8(TituloReposicion), opciones);
    if (opcion < 0) {
        error(QString::fromUtf8(MensajeSinOpcionReposicion));
        return;
    }
    cambia([&] {
        auto rechazo = documento_->reposicion(static_cast<Reposicion>(opcion));
        // Los renglones ya no son los de la orden que se recibía.
        if (!rechazo) ordenOrigen_ = 0;
        return rechazo;
    });
}

EncabezadoCompra TComprasModulosDiversosF::encabezado() const {
    EncabezadoCompra e;
    e.proveedor = proveedor_->currentData().toLongLong();
    e.moneda = moneda_->currentData().toLongLong();
    e.tipoCambio = tipoCambio_->text();
    e.plazoPago = plazoPago_->text();
    e.formaPago = formaPago_->currentData().toLongLong();
    e.observaciones = observaciones_->text().trimmed();
    e.ajusteEntrada = entrada_->isChecked();
    e.ordenOrigen = ordenOrigen_;
    return e;
}

void TComprasModulosDiversosF::BotonFinalizarClick() {
    Sonidos::reproduce(Sonido::Click);
    DocumentoCompra::Rechazo rechazo;
    try {
        rechazo = documento_->revisa(encabezado());
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorLectura) + QLatin1Char('\n') +
              QString::fromUtf8(e.what()));
        return;
    }
    if (rechazo) {
        error(*rechazo);
        return;
    }
    QStringList opciones;
    for (const char* o : kOperaciones)
        opciones << QString::fromUtf8(o);
    const int operacion =
        mensajes_.eligeOpcion(QStringLiteral("Seleccione el Tipo de Operación"), opciones);
    if (operacion < 0) return;
    ejecutaConLeyenda(this, QStringLiteral("Registrando Transacción."),
                      [this, operacion] { FinalizaTimer(operacion); });
}

void TComprasModulosDiversosF::FinalizaTimer(int operacion) {
    int64_t folio = 0;
    try {
        folio = documento_->registra(encabezado());
    } catch (const std::exception& e) {
        // Los renglones se quedan para intentar de nuevo.
        error(QString::fromUtf8(MensajeErrorRegistro) + QLatin1Char('\n') +
              QString::fromUtf8(e.what()));
        qWarning() << "Compras, registro:" << e.what();
        return;
    }
    if (operacion < 2)
        imprimeCompra(this, sesion_, registrada(folio),
                      operacion == 0 ? DestinoImpresion::Impresora : DestinoImpresion::Pdf,
                      carpetaEstacion_);
    cambia([&] {
        documento_->limpia();
        return DocumentoCompra::Rechazo{};
    });
    ordenOrigen_ = 0;
    observaciones_->clear();
}

CompraGuardada TComprasModulosDiversosF::registrada(int64_t folio) const {
    const TotalesVenta t = documento_->totales();
    CompraGuardada c;
    c.tipo = documento_->tipo();
    c.folio = folio;
    c.fecha = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    c.proveedor = proveedor_->isEnabled() ? proveedor_->currentText() : QString();
    c.usuario = sesion_.NombreDeUsuario;
    c.entrada = entrada_->isChecked();
    c.observaciones = observaciones_->text().trimmed();
    for (const RenglonVenta& r : documento_->TransaccionDetalles())
        c.renglones.push_back({r.clave, r.Producto, r.Unidad, r.Cantidad, r.PCompra, r.Descuento,
                               r.porcentajeImpuesto, r.Importe});
    // Como se almacenó: el subtotal lleva el IEPS para que subtotal + IVA dé el total.
    c.subtotal = Redondea(t.total - t.iva, 2);
    c.iva = t.iva;
    c.total = t.total;
    return c;
}

void TComprasModulosDiversosF::closeEvent(QCloseEvent* evento) {
    if (!documento_->TransaccionDetalles().empty() &&
        !mensajes_.pregunta(QString::fromUtf8(PreguntaSalir))) {
        evento->ignore();
        return;
    }
    Sonidos::reproduce(Sonido::Salir);
    QWidget::closeEvent(evento);
}

} // namespace cajaplex
