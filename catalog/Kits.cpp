#include "catalog/Kits.h"

#include <algorithm>

#include <QAction>
#include <QCloseEvent>
#include <QDir>
#include <QFrame>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QPageSize>
#include <QPdfWriter>
#include <QPrinter>
#include <QPrinterInfo>
#include <QPushButton>
#include <QScroller>
#include <QSplitter>
#include <QTabWidget>
#include <QTextDocument>
#include <QVBoxLayout>
#include <QtDebug>

#include "catalog/CatalogoProductos.h"
#include "catalog/SelectorProductos.h"
#include "datos/ControlAcceso.h"
#include "datos/ModuloDatos.h"
#include "pantallas/DelegadoRenglon.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/RolesRenglon.h"
#include "pantallas/Sonidos.h"
#include "printing/VisorPdf.h"

namespace cajaplex {
namespace {

enum Pagina { PaginaKits, PaginaComposicion };
enum TipoOperacion { EnviarImpresion, VisualizarPdf, AlmacenarUnicamente };

constexpr int kIconoKit = 32;
const QString kSinRegistros = QStringLiteral("No se localizaron registros con esa Información");

QLineEdit* campoBusqueda(const QString& nombre, const QString& ayuda, QWidget* padre) {
    auto* campo = new QLineEdit(padre);
    campo->setObjectName(nombre);
    campo->setPlaceholderText(ayuda);
    campo->setClearButtonEnabled(true);
    campo->setMinimumHeight(AltoControl);
    return campo;
}

template <typename Vista> void preparaLista(Vista* vista, int tamanoIcono) {
    vista->setItemDelegate(new DelegadoRenglon(tamanoIcono, vista));
    vista->setUniformItemSizes(true);
    vista->setAlternatingRowColors(true);
    vista->setSelectionMode(QAbstractItemView::SingleSelection);
    vista->setEditTriggers(QAbstractItemView::NoEditTriggers);
    vista->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    vista->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    QScroller::grabGesture(vista->viewport(), QScroller::LeftMouseButtonGesture);
}

QString nombreKit(const KitListado& kit) {
    return kit.clave + QStringLiteral(" - ") + kit.producto;
}

// La hoja de la composición para imprimir o ver en PDF.
QString documentoKit(const Sesion& sesion, const KitListado& kit,
                     const std::vector<ComponenteKit>& componentes, double total) {
    QString html = QStringLiteral("<h2>") + sesion.NombreEmpresa.toHtmlEscaped() +
                   QStringLiteral("</h2><h3>Artículos Compuestos (Kits)</h3><p><b>") +
                   nombreKit(kit).toHtmlEscaped() +
                   QStringLiteral("</b></p><table border='1' cellspacing='0' cellpadding='4' "
                                  "width='100%'><tr><th>Clave</th><th>Descripción</th>"
                                  "<th>Cantidad</th><th>Unidad</th><th>Costo</th>"
                                  "<th>Importe</th></tr>");
    for (const ComponenteKit& c : componentes)
        html += QStringLiteral("<tr><td>") + c.clave.toHtmlEscaped() + QStringLiteral("</td><td>") +
                c.Producto.toHtmlEscaped() + QStringLiteral("</td><td align='right'>") +
                textoCantidad(c.Cantidad) + QStringLiteral("</td><td>") + c.Unidad.toHtmlEscaped() +
                QStringLiteral("</td><td align='right'>") + textoPrecio(c.PCompra) +
                QStringLiteral("</td><td align='right'>") + textoPrecio(c.Cantidad * c.PCompra) +
                QStringLiteral("</td></tr>");
    return html + QStringLiteral("</table><p align='right'><b>Total= ") + textoPrecio(total) +
           QStringLiteral("</b></p>");
}

} // namespace

const QStringList& TKitsF::tiposOperacion() {
    static const QStringList tipos = {QStringLiteral("Almacenar y Enviar Impresión"),
                                      QStringLiteral("Almacenar y Visualizar PDF"),
                                      QStringLiteral("Almacenar Únicamente")};
    return tipos;
}

QString TKitsF::preguntaSalir() {
    return QStringLiteral("Transacción Incompleta\nLa composición del Kit tiene cambios sin "
                          "almacenar. Aún así desea salir?");
}

TKitsF::TKitsF(const Sesion& sesion, QWidget* padre)
    : QWidget(padre), sesion_(sesion), catalogo_(ModuloDeDatos.ConexionBD, sesion),
      lineas_(ModuloDeDatos.ConexionBD, sesion) {
    setObjectName(QStringLiteral("Kits"));
    setWindowTitle(QStringLiteral("Artículos Compuestos (Kits)"));

    detalles_ = new KitDetalles(this);
    connect(detalles_, &KitDetalles::cambio, this, &TKitsF::actualizaPies);

    paginas_ = new QTabWidget(this);
    paginas_->setObjectName(QStringLiteral("Paginas"));
    paginas_->addTab(creaPaginaKits(), icono(QStringLiteral("Kits")), QStringLiteral("Kits"));
    paginas_->addTab(creaPaginaComposicion(), icono(QStringLiteral("Productos")),
                     QStringLiteral("Composición"));
    // La composición es de un kit: se abre eligiéndolo.
    paginas_->setTabEnabled(PaginaComposicion, false);

    auto* salir = creaBoton(QStringLiteral("Regresar"), QStringLiteral("Salir"),
                            QStringLiteral("BotonSalir"), nullptr, this);
    auto* almacenar = creaBoton(QStringLiteral("Insercion"), QStringLiteral("Almacenar"),
                                QStringLiteral("BotonAlmacenar"), "primario", this);
    connect(salir, &QPushButton::clicked, this, &TKitsF::BotonSalirClick);
    connect(almacenar, &QPushButton::clicked, this, &TKitsF::BotonAlmacenarClick);
    auto* abajo = new QHBoxLayout;
    abajo->addWidget(salir);
    abajo->addStretch(1);
    abajo->addWidget(almacenar);

    auto* capa = new QVBoxLayout(this);
    capa->addWidget(paginas_, 1);
    capa->addLayout(abajo);
    actualizaPies();
    actualizaAcciones();

    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"),
                      [this] { CargaInformacionTimer(); });
}

QWidget* TKitsF::creaPaginaKits() {
    auto* pagina = new QWidget;
    pagina->setObjectName(QStringLiteral("SeleccionaKit"));
    filtroKits_ = campoBusqueda(QStringLiteral("FiltroKits"),
                                QStringLiteral("Presione la LUPA para filtrar"), pagina);
    QAction* lupa =
        filtroKits_->addAction(icono(QStringLiteral("Buscar")), QLineEdit::TrailingPosition);
    connect(lupa, &QAction::triggered, this, [this] { FiltroKitsChange(filtroKits_->text()); });
    connect(filtroKits_, &QLineEdit::textChanged, this, &TKitsF::FiltroKitsChange);

    listaKits_ = new QListWidget(pagina);
    listaKits_->setObjectName(QStringLiteral("ListaKits"));
    listaKits_->setIconSize(QSize(kIconoKit, kIconoKit));
    preparaLista(listaKits_, kIconoKit);
    connect(listaKits_, &QListWidget::itemClicked, this, &TKitsF::ListaKitsItemClick);

    pieKits_ = creaEtiqueta(QStringLiteral("Número de Registros: 0"), QStringLiteral("PieKits"),
                            "pie", pagina);
    auto* capa = new QVBoxLayout(pagina);
    capa->addWidget(filtroKits_);
    capa->addWidget(listaKits_, 1);
    capa->addWidget(pieKits_);
    return pagina;
}

QWidget* TKitsF::creaPaginaComposicion() {
    auto* pagina = new QWidget;
    pagina->setObjectName(QStringLiteral("Composicion"));
    kitSeleccionado_ = creaEtiqueta({}, QStringLiteral("KitSeleccionado"), "titulo", pagina);

    // Disponibles: el árbol de líneas y los productos de la línea o de la búsqueda, sin kits; al
    // frente de la búsqueda, la captura por clave.
    disponibles_ = new TSelectorProductosF(sesion_, QStringLiteral("Disponibles"), pagina,
                                           &CatalogoKits::sinKits);
    claveProducto_ = campoBusqueda(QStringLiteral("ClaveProducto"),
                                   QStringLiteral("Clave ó Código de Barra"), disponibles_);
    claveProducto_->addAction(icono(QStringLiteral("Etiquetas")), QLineEdit::LeadingPosition);
    connect(claveProducto_, &QLineEdit::returnPressed, this, &TKitsF::ClaveProductoReturnPressed);
    disponibles_->agregaABusqueda(claveProducto_, 2);
    connect(disponibles_, &TSelectorProductosF::elegido, this,
            [this](int64_t id) { ProductoDisponibleElegido(id); });

    // Seleccionados: la lista de trabajo con sus acciones y el costo del kit.
    auto* seleccionados = new QWidget(pagina);
    listaDetalles_ = new QListView(seleccionados);
    listaDetalles_->setObjectName(QStringLiteral("KitDetalles"));
    listaDetalles_->setModel(detalles_);
    preparaLista(listaDetalles_, 0);
    connect(listaDetalles_->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &TKitsF::actualizaAcciones);
    connect(detalles_, &KitDetalles::cambio, this, &TKitsF::actualizaAcciones);

    cantidad_ = creaBoton(QStringLiteral("Actualizacion"), QStringLiteral("Cantidad"),
                          QStringLiteral("BotonCantidad"), nullptr, seleccionados);
    subir_ = creaBoton(QStringLiteral("FlechaArriba"), QString(), QStringLiteral("BotonSubir"),
                       nullptr, seleccionados);
    subir_->setToolTip(QStringLiteral("Subir"));
    bajar_ = creaBoton(QStringLiteral("FlechaAbajo"), QString(), QStringLiteral("BotonBajar"),
                       nullptr, seleccionados);
    bajar_->setToolTip(QStringLiteral("Bajar"));
    borrar_ = creaBoton(QStringLiteral("Cancelacion"), QStringLiteral("Borrar"),
                        QStringLiteral("BotonBorrar"), "peligro", seleccionados);
    connect(cantidad_, &QPushButton::clicked, this, &TKitsF::BotonCantidadClick);
    connect(subir_, &QPushButton::clicked, this, &TKitsF::BotonSubirClick);
    connect(bajar_, &QPushButton::clicked, this, &TKitsF::BotonBajarClick);
    connect(borrar_, &QPushButton::clicked, this, &TKitsF::BotonBorrarClick);

    total_ = creaEtiqueta(QStringLiteral("Total= $0.00"), QStringLiteral("TotalKit"), "pie",
                          seleccionados);
    auto* acciones = new QHBoxLayout;
    acciones->addWidget(cantidad_);
    acciones->addWidget(subir_);
    acciones->addWidget(bajar_);
    acciones->addStretch(1);
    acciones->addWidget(borrar_);
    auto* capaSeleccionados = new QVBoxLayout(seleccionados);
    capaSeleccionados->setContentsMargins(0, 0, 0, 0);
    capaSeleccionados->addWidget(creaEtiqueta(QStringLiteral("Seleccionados"),
                                              QStringLiteral("Seleccionados"), "subtitulo",
                                              seleccionados));
    capaSeleccionados->addWidget(listaDetalles_, 1);
    capaSeleccionados->addLayout(acciones);
    capaSeleccionados->addWidget(total_, 0, Qt::AlignRight);

    auto* division = new QSplitter(Qt::Horizontal, pagina);
    division->addWidget(disponibles_);
    division->addWidget(seleccionados);
    division->setStretchFactor(0, 5);
    division->setStretchFactor(1, 4);
    division->setChildrenCollapsible(false);

    auto* capa = new QVBoxLayout(pagina);
    capa->addWidget(kitSeleccionado_);
    capa->addWidget(division, 1);
    return pagina;
}

void TKitsF::error(const QString& mensaje) {
    Sonidos::reproduce(Sonido::Error);
    mensajes_.muestra(mensaje);
}

// ---------------------------------------------------------------------------------------------
// Kits
// ---------------------------------------------------------------------------------------------

void TKitsF::CargaInformacionTimer() {
    std::vector<LineaProducto> lineas;
    try {
        kits_ = catalogo_.kits();
        lineas = lineas_.consulta();
    } catch (const ErrorServicio& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Kits, lista:" << e.mensaje();
        return;
    }
    listaKits_->clear();
    for (const KitListado& k : kits_) {
        auto* item = new QListWidgetItem(icono(QStringLiteral("Kits")), nombreKit(k), listaKits_);
        item->setData(RolPrimeraLinea, k.producto);
        item->setData(RolSegundaLinea, QStringLiteral("Clave: ") + k.clave);
        item->setData(RolKitID, QVariant::fromValue<qlonglong>(k.id));
    }

    disponibles_->ponLineas(lineas);
    FiltroKitsChange(filtroKits_->text());
}

void TKitsF::FiltroKitsChange(const QString& texto) {
    const QString buscado = plegadoBusqueda(texto.trimmed());
    for (int i = 0; i < listaKits_->count(); ++i) {
        QListWidgetItem* item = listaKits_->item(i);
        item->setHidden(!buscado.isEmpty() && !plegadoBusqueda(item->text()).contains(buscado));
    }
    actualizaPies();
}

void TKitsF::ListaKitsItemClick(QListWidgetItem* item) {
    if (!item) return;
    const int64_t id = item->data(RolKitID).toLongLong();
    const auto k = std::find_if(kits_.begin(), kits_.end(),
                                [id](const KitListado& kit) { return kit.id == id; });
    if (k == kits_.end()) return;
    // Elegir un kit (aun el mismo, que se vuelve a leer) deja la composición en curso: se
    // pregunta como al salir.
    if (detalles_->modificado() && !mensajes_.preguntaSiNo(preguntaSalir())) return;
    Sonidos::reproduce(Sonido::Click);
    const KitListado kit = *k;
    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"),
                      [this, kit] { CargaComponentesTimer(kit); });
}

void TKitsF::CargaComponentesTimer(const KitListado& kit) {
    std::vector<ComponenteKit> componentes;
    try {
        componentes = catalogo_.componentes(kit.id);
    } catch (const ErrorServicio& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Kits, componentes:" << e.mensaje();
        return;
    }
    kit_ = kit;
    anteriores_ = componentes;
    detalles_->asigna(std::move(componentes));
    kitSeleccionado_->setText(nombreKit(kit));
    paginas_->setTabEnabled(PaginaComposicion, true);
    paginas_->setCurrentIndex(PaginaComposicion);
}

// ---------------------------------------------------------------------------------------------
// Disponibles
// ---------------------------------------------------------------------------------------------

void TKitsF::ProductoDisponibleElegido(int64_t productoID) {
    if (!kit_) return;
    ejecutaConLeyenda(this, QStringLiteral("Agregando Producto"),
                      [this, productoID] { AgregaProductoTimer(productoID); });
}

void TKitsF::ClaveProductoReturnPressed() {
    const QString clave = claveProducto_->text().trimmed();
    if (clave.isEmpty() || !kit_) return;
    Sonidos::reproduce(Sonido::Click);
    ejecutaConLeyenda(this, QStringLiteral("Agregando Producto"),
                      [this, clave] { AgregaClaveTimer(clave); });
}

void TKitsF::AgregaProductoTimer(int64_t productoID) {
    std::optional<ComponenteKit> componente;
    try {
        componente = catalogo_.producto(productoID);
    } catch (const ErrorServicio& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Kits, agregar producto:" << e.mensaje();
        return;
    }
    // Otra estación pudo borrarlo o volverlo kit desde que se listó.
    if (!componente) {
        error(kSinRegistros);
        return;
    }
    agrega(*componente);
}

void TKitsF::AgregaClaveTimer(const QString& clave) {
    std::optional<ComponenteKit> componente;
    try {
        componente = catalogo_.productoPorClave(clave);
    } catch (const ErrorServicio& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Kits, agregar por clave:" << e.mensaje();
        return;
    }
    if (!componente) {
        error(QStringLiteral("No se localizaron Productos con el identificador: ") + clave);
        return;
    }
    claveProducto_->clear();
    agrega(*componente);
}

void TKitsF::agrega(const ComponenteKit& componente) {
    const int fila = detalles_->agrega(componente);
    const QModelIndex indice = detalles_->index(fila);
    listaDetalles_->setCurrentIndex(indice);
    listaDetalles_->scrollTo(indice);
}

// ---------------------------------------------------------------------------------------------
// Seleccionados
// ---------------------------------------------------------------------------------------------

int TKitsF::filaElegida() const {
    const QModelIndex actual = listaDetalles_->currentIndex();
    return actual.isValid() ? actual.row() : -1;
}

void TKitsF::BotonCantidadClick() {
    const int fila = filaElegida();
    if (fila < 0) return;
    Sonidos::reproduce(Sonido::Click);
    const ComponenteKit& c = detalles_->componente(fila);
    const std::optional<double> cantidad = mensajes_.pideDecimal(
        QStringLiteral("Cantidad de ") + c.clave + QStringLiteral(" - ") + c.Producto, c.Cantidad,
        3);
    if (!cantidad) return;
    if (*cantidad <= 0) {
        error(QStringLiteral("La Cantidad debe ser mayor a cero"));
        return;
    }
    detalles_->asignaCantidad(fila, *cantidad);
}

void TKitsF::BotonSubirClick() {
    const int fila = filaElegida();
    if (!detalles_->mueve(fila, fila - 1)) return;
    Sonidos::reproduce(Sonido::Click);
    listaDetalles_->setCurrentIndex(detalles_->index(fila - 1));
}

void TKitsF::BotonBajarClick() {
    const int fila = filaElegida();
    if (!detalles_->mueve(fila, fila + 1)) return;
    Sonidos::reproduce(Sonido::Click);
    listaDetalles_->setCurrentIndex(detalles_->index(fila + 1));
}

void TKitsF::BotonBorrarClick() {
    const int fila = filaElegida();
    if (fila < 0) return;
    Sonidos::reproduce(Sonido::Click);
    detalles_->quita(fila);
}

void TKitsF::actualizaPies() {
    int visibles = 0;
    for (int i = 0; i < listaKits_->count(); ++i)
        if (!listaKits_->item(i)->isHidden()) ++visibles;
    pieKits_->setText(filtroKits_->text().trimmed().isEmpty()
                          ? QStringLiteral("Número de Registros: ") +
                                QString::number(listaKits_->count())
                          : QStringLiteral("Registros Filtrados: ") + QString::number(visibles));
    total_->setText(QStringLiteral("Total= ") + textoPrecio(detalles_->total()));
}

void TKitsF::actualizaAcciones() {
    const int fila = filaElegida();
    cantidad_->setEnabled(fila >= 0);
    borrar_->setEnabled(fila >= 0);
    subir_->setEnabled(fila > 0);
    bajar_->setEnabled(fila >= 0 && fila < detalles_->rowCount() - 1);
}

// ---------------------------------------------------------------------------------------------
// Almacenar y salir
// ---------------------------------------------------------------------------------------------

void TKitsF::BotonAlmacenarClick() {
    if (!kit_) {
        error(QStringLiteral("Debe Seleccionar un KIT"));
        return;
    }
    if (detalles_->rowCount() == 0) {
        error(QStringLiteral("No existen Insumos/Productos por Asignar"));
        return;
    }
    const int tipo =
        mensajes_.eligeOpcion(QStringLiteral("Seleccione el Tipo de Operación"), tiposOperacion());
    if (tipo < 0) return;
    Sonidos::reproduce(Sonido::Click);
    ejecutaConLeyenda(this, QStringLiteral("Registrando Transacción."),
                      [this, tipo] { AlmacenaKitTimer(tipo); });
}

void TKitsF::AlmacenaKitTimer(int tipoOperacion) {
    if (!kit_) return;
    // Como el editor de productos y el monedero: solo una estación autorizada guarda.
    bool autorizado = false;
    try {
        autorizado = dispositivoAutorizado(ModuloDeDatos.ConexionBD, sesion_.DispositivoID);
    } catch (const ErrorServicio& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Kits, dispositivo:" << e.mensaje();
        return;
    }
    if (!autorizado) {
        error(QString::fromUtf8(MensajeDispositivoNoAutorizado) + sesion_.DispositivoID);
        return;
    }
    try {
        catalogo_.guarda(*kit_, detalles_->componentes(), anteriores_);
    } catch (const RegistroInexistente& e) {
        // Otra estación eliminó el kit: no se guardó nada; la lista de trabajo se queda.
        error(e.mensaje());
        qWarning() << "Kits, almacenar:" << e.mensaje() << kit_->id;
        return;
    } catch (const ErrorServicio& e) {
        // La lista de trabajo se queda para reintentar.
        error(QString::fromUtf8(MensajeErrorRegistro));
        qWarning() << "Kits, almacenar:" << e.mensaje();
        return;
    }
    anteriores_ = detalles_->componentes();
    detalles_->marcaAlmacenado();
    entregaDocumento(tipoOperacion);
}

void TKitsF::entregaDocumento(int tipoOperacion) {
    if (tipoOperacion != EnviarImpresion && tipoOperacion != VisualizarPdf) return;
    QTextDocument documento;
    documento.setHtml(documentoKit(sesion_, *kit_, detalles_->componentes(), detalles_->total()));
    if (tipoOperacion == VisualizarPdf) {
        const QString archivo =
            QDir(QDir::tempPath()).filePath(QStringLiteral("ArchivoCajaplexLocal.pdf"));
        {
            QPdfWriter pdf(archivo);
            pdf.setPageSize(QPageSize(QPageSize::Letter));
            pdf.setTitle(nombreKit(*kit_));
            documento.print(&pdf);
        }
        auto* visor = new TVisorPdfF(archivo);
        visor->setAttribute(Qt::WA_DeleteOnClose);
        visor->setWindowTitle(windowTitle() + QStringLiteral(": ") + nombreKit(*kit_));
        visor->resize(900, 700);
        visor->show();
        return;
    }
    const QPrinterInfo impresora = QPrinterInfo::defaultPrinter();
    if (impresora.isNull()) {
        error(QStringLiteral("No se localizó una Impresora Predeterminada"));
        return;
    }
    QPrinter hoja(impresora, QPrinter::HighResolution);
    hoja.setDocName(nombreKit(*kit_));
    documento.print(&hoja);
}

void TKitsF::BotonSalirClick() {
    // Se pregunta aquí y no solo al cerrar: quien aloja la pantalla puede retirarla en cuanto
    // recibe el cierre, aunque la pantalla lo rechace.
    if (detalles_->modificado() && !mensajes_.preguntaSiNo(preguntaSalir())) return;
    saliendo_ = true;
    Sonidos::reproduce(Sonido::Salir);
    close();
}

void TKitsF::closeEvent(QCloseEvent* evento) {
    if (!saliendo_ && detalles_->modificado() && !mensajes_.preguntaSiNo(preguntaSalir())) {
        evento->ignore();
        return;
    }
    saliendo_ = true;
    QWidget::closeEvent(evento);
}

} // namespace cajaplex
