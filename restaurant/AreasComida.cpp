#include "restaurant/AreasComida.h"

#include <exception>
#include <vector>

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScroller>
#include <QStackedWidget>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <QtDebug>

#include "catalog/ArbolLineas.h"
#include "catalog/CatalogoLineas.h"
#include "datos/ConexionBD.h"
#include "datos/MensajesComunes.h"
#include "datos/ModuloDatos.h"
#include "pantallas/DelegadoRenglon.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/RolesRenglon.h"
#include "pantallas/Sonidos.h"
#include "restaurant/AreasComidaEdita.h"

namespace cajaplex {
namespace {

enum Pagina { PaginaAreas, PaginaNodos, PaginaProductos, PaginaEdicion };

const char* const kTituloCatalogo = "Catálogo de Áreas de Comida";
const int kLargoNombreArea = 60;

QTreeWidget* creaArbol(const QString& nombre, const QString& encabezado, QWidget* padre) {
    auto* arbol = new QTreeWidget(padre);
    arbol->setObjectName(nombre);
    arbol->setAccessibleName(encabezado);
    arbol->setHeaderLabels({encabezado});
    arbol->setIndentation(28);
    // Renglones a la medida del dedo.
    arbol->setStyleSheet(QStringLiteral("QTreeView::item { min-height: %1px; }").arg(AltoControl));
    arbol->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    QScroller::grabGesture(arbol->viewport(), QScroller::LeftMouseButtonGesture);
    return arbol;
}

int64_t idDe(const QTreeWidgetItem* item, int rol) {
    return item->data(0, rol).toLongLong();
}

} // namespace

const QStringList& TAreasComidaF::opcionesMenuArbol() {
    static const QStringList opciones = {
        QStringLiteral("Crear Área"),        QStringLiteral("Crear SubÁrea"),
        QStringLiteral("Renombrar Área"),    QStringLiteral("Eliminar Área"),
        QStringLiteral("Asociar Productos"), QStringLiteral("Ver Nodos de Comida")};
    return opciones;
}

TAreasComidaF::TAreasComidaF(const Sesion& sesion, QWidget* padre)
    : QWidget(padre), sesion_(sesion), catalogo_(ModuloDeDatos.ConexionBD, sesion) {
    setObjectName(QStringLiteral("AreasComida"));
    setWindowTitle(QString::fromUtf8(kTituloCatalogo));

    titulo_ =
        creaEtiqueta(QString::fromUtf8(kTituloCatalogo), QStringLiteral("Titulo"), "titulo", this);
    anterior_ = creaBoton(QStringLiteral("Regresar"), QStringLiteral("Regresar"),
                          QStringLiteral("BotonAnterior"), nullptr, this);
    nuevo_ = creaBoton(QStringLiteral("Insercion"), QStringLiteral("Nuevo Nodo"),
                       QStringLiteral("BotonProductoNuevo"), "primario", this);
    siguiente_ = creaBoton(QStringLiteral("Insercion"), QStringLiteral("Almacenar"),
                           QStringLiteral("GrupoBotonSiguiente"), "primario", this);
    connect(anterior_, &QPushButton::clicked, this, &TAreasComidaF::BotonAnteriorClick);
    connect(nuevo_, &QPushButton::clicked, this, &TAreasComidaF::BotonProductoNuevoClick);
    connect(siguiente_, &QPushButton::clicked, this, &TAreasComidaF::GrupoBotonSiguienteClick);
    auto* barra = new QHBoxLayout;
    barra->addWidget(anterior_);
    barra->addWidget(titulo_, 1);
    barra->addWidget(nuevo_);
    barra->addWidget(siguiente_);

    // Página de áreas.
    auto* paginaAreas = new QWidget;
    paginaAreas->setObjectName(QStringLiteral("SeleccionaAreaComida"));
    buscar_ = new QLineEdit(paginaAreas);
    buscar_->setObjectName(QStringLiteral("BuscarNodoComida"));
    buscar_->setAccessibleName(QStringLiteral("Buscar Nodo de Comida"));
    buscar_->setPlaceholderText(QStringLiteral("Clave ó Descripción del Nodo de Comida"));
    buscar_->setClearButtonEnabled(true);
    buscar_->setMinimumHeight(AltoControl);
    buscar_->addAction(icono(QStringLiteral("Buscar")), QLineEdit::LeadingPosition);
    connect(buscar_, &QLineEdit::returnPressed, this,
            &TAreasComidaF::BuscarNodoComidaReturnPressed);
    areas_ =
        creaArbol(QStringLiteral("AreasComida"), QStringLiteral("Áreas de Comida"), paginaAreas);
    connect(areas_, &QTreeWidget::itemClicked, this, &TAreasComidaF::AreasComidaItemClick);
    auto* capaAreas = new QVBoxLayout(paginaAreas);
    capaAreas->addWidget(buscar_);
    capaAreas->addWidget(creaEtiqueta(QStringLiteral("Toque una Área para ver sus opciones"),
                                      QStringLiteral("IndicacionAreas"), "subtitulo", paginaAreas));
    capaAreas->addWidget(areas_, 1);

    // Página de nodos.
    auto* paginaNodos = new QWidget;
    paginaNodos->setObjectName(QStringLiteral("SeleccionaNodoComida"));
    nodos_ = new QListWidget(paginaNodos);
    nodos_->setObjectName(QStringLiteral("NodosComida"));
    nodos_->setAccessibleName(QStringLiteral("Nodos de Comida"));
    nodos_->setItemDelegate(new DelegadoRenglon(40, nodos_));
    nodos_->setIconSize(QSize(40, 40));
    nodos_->setUniformItemSizes(true);
    nodos_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    QScroller::grabGesture(nodos_->viewport(), QScroller::LeftMouseButtonGesture);
    connect(nodos_, &QListWidget::itemActivated, this, &TAreasComidaF::BotonModificarClick);
    pieNodos_ = creaEtiqueta(QStringLiteral("Total Registros: 0"), QStringLiteral("PieNodosComida"),
                             "pie", paginaNodos);
    auto* modificar = creaBoton(QStringLiteral("Actualizacion"), QStringLiteral("Modificar"),
                                QStringLiteral("BotonModificar"), nullptr, paginaNodos);
    auto* borrar = creaBoton(QStringLiteral("Cancelacion"), QStringLiteral("Borrar"),
                             QStringLiteral("BotonBorrar"), "peligro", paginaNodos);
    connect(modificar, &QPushButton::clicked, this, &TAreasComidaF::BotonModificarClick);
    connect(borrar, &QPushButton::clicked, this, &TAreasComidaF::BotonBorrarClick);
    auto* pie = new QHBoxLayout;
    pie->addWidget(pieNodos_, 1);
    pie->addWidget(borrar);
    pie->addWidget(modificar);
    auto* capaNodos = new QVBoxLayout(paginaNodos);
    capaNodos->addWidget(creaEtiqueta(QStringLiteral("Presione la LUPA para filtrar"),
                                      QStringLiteral("EncabezadoNodosComida"), "subtitulo",
                                      paginaNodos));
    capaNodos->addWidget(nodos_, 1);
    capaNodos->addLayout(pie);

    // Página de productos del área.
    auto* paginaProductos = new QWidget;
    paginaProductos->setObjectName(QStringLiteral("SeleccionaProductos"));
    productos_ = creaArbol(QStringLiteral("ArbolProductos"), QStringLiteral("Líneas y Productos"),
                           paginaProductos);
    connect(productos_, &QTreeWidget::itemChanged, this, &TAreasComidaF::ArbolProductosItemChanged);
    asignados_ = creaEtiqueta(QStringLiteral("Total Asignados= 0"),
                              QStringLiteral("TotalAsignados"), "pie", paginaProductos);
    auto* capaProductos = new QVBoxLayout(paginaProductos);
    capaProductos->addWidget(productos_, 1);
    capaProductos->addWidget(asignados_);

    paginas_ = new QStackedWidget(this);
    paginas_->setObjectName(QStringLiteral("PaginadorDatos"));
    paginas_->addWidget(paginaAreas);
    paginas_->addWidget(paginaNodos);
    paginas_->addWidget(paginaProductos);

    auto* capa = new QVBoxLayout(this);
    capa->addLayout(barra);
    capa->addWidget(paginas_, 1);
    muestraPagina(PaginaAreas, QString::fromUtf8(kTituloCatalogo));

    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"),
                      [this] { TemporizadorInicialTimer(); });
}

void TAreasComidaF::error(const QString& mensaje) {
    Sonidos::reproduce(Sonido::Error);
    mensajes_.muestra(mensaje);
}

void TAreasComidaF::muestraPagina(int pagina, const QString& titulo) {
    paginas_->setCurrentIndex(pagina);
    titulo_->setText(titulo);
    nuevo_->setVisible(pagina == PaginaNodos && busqueda_.isEmpty());
    siguiente_->setVisible(pagina == PaginaProductos);
    anterior_->setVisible(pagina != PaginaEdicion);
}

// ---------------------------------------------------------------------------------------------
// Árbol de áreas
// ---------------------------------------------------------------------------------------------

void TAreasComidaF::TemporizadorInicialTimer() {
    std::vector<LineaProducto> areas;
    try {
        // El árbol de áreas se arma igual que el de líneas: cada una bajo su padre.
        for (const AreaComida& a : catalogo_.consultaAreas())
            areas.push_back({a.id, a.padre, a.area, {}});
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Áreas de Comida:" << e.what();
        return;
    }
    areas_->clear();
    agregaLineas(*areas_, areas, [](const LineaProducto& l) {
        auto* item = new QTreeWidgetItem(QStringList{l.linea});
        item->setIcon(0, icono(QStringLiteral("AreasComida")));
        item->setData(0, RolAreaID, QVariant::fromValue<qlonglong>(l.id));
        return item;
    });
}

void TAreasComidaF::AreasComidaItemClick(QTreeWidgetItem* item) {
    if (!item) return;
    Sonidos::reproduce(Sonido::Click);
    const int opcion = mensajes_.eligeOpcion(QStringLiteral("Opciones sobre Áreas de Comida"),
                                             opcionesMenuArbol());
    switch (opcion) {
    case 0:
    case 1:
    case 2:
        pideNombre(item, opcion);
        break;
    case 3:
        eliminaArea(item);
        break;
    case 4:
        areaID_ = idDe(item, RolAreaID);
        area_ = item->text(0);
        muestraPagina(PaginaProductos, QStringLiteral("Asocia Productos a ") + area_);
        ejecutaConLeyenda(this, QStringLiteral("Cargando Información"),
                          [this] { CargaProductosTimer(); });
        break;
    case 5:
        areaID_ = idDe(item, RolAreaID);
        area_ = item->text(0);
        busqueda_.clear();
        muestraPagina(PaginaNodos, QStringLiteral("Nodos de Comida"));
        ejecutaConLeyenda(this, QStringLiteral("Cargando Nodos de Comida"),
                          [this] { CargaNodosComidaTimer(); });
        break;
    default:
        break;
    }
}

void TAreasComidaF::pideNombre(QTreeWidgetItem* item, int opcion) {
    const bool renombra = opcion == 2;
    const std::optional<QString> nombre =
        mensajes_.pideTexto(QStringLiteral("Introduzca el Nombre del Área de Comida"),
                            renombra ? item->text(0) : QString(), kLargoNombreArea);
    if (!nombre) return;
    const QString limpio = nombre->trimmed();
    if (limpio.isEmpty()) {
        error(QStringLiteral("Debe introducir el Nombre del Nodo"));
        return;
    }
    const int64_t id = idDe(item, RolAreaID);
    ejecutaConLeyenda(this, QStringLiteral("Registrando Transacción."), [=, this] {
        try {
            if (renombra) {
                catalogo_.renombraArea(id, limpio, item->text(0));
                item->setText(0, limpio);
                return;
            }
            const int64_t padre = opcion == 0 ? 0 : id;
            const int64_t nueva = catalogo_.insertaArea(padre, limpio);
            auto* hijo = new QTreeWidgetItem(QStringList{limpio});
            hijo->setIcon(0, icono(QStringLiteral("AreasComida")));
            hijo->setData(0, RolAreaID, QVariant::fromValue<qlonglong>(nueva));
            if (padre == 0) {
                areas_->addTopLevelItem(hijo);
            } else {
                item->addChild(hijo);
                item->setExpanded(true);
            }
            areas_->setCurrentItem(hijo);
        } catch (const std::exception& e) {
            error(QString::fromUtf8(MensajeErrorRegistro));
            qWarning() << "Áreas de Comida, nombre:" << e.what();
        }
    });
}

void TAreasComidaF::eliminaArea(QTreeWidgetItem* item) {
    // Lo que el árbol ya sabe se revisa sin ir al servicio; el resto, al borrar.
    int total = 0;
    for (QTreeWidgetItemIterator i(areas_); *i; ++i)
        ++total;
    if (total == 1) {
        error(mensajeRechazo(RechazoEliminarArea::UnicaArea));
        return;
    }
    if (item->childCount() > 0) {
        error(mensajeRechazo(RechazoEliminarArea::ConSubAreas));
        return;
    }
    const int64_t id = idDe(item, RolAreaID);
    const QString nombre = item->text(0);
    ejecutaConLeyenda(this, QStringLiteral("Verificando Información"), [=, this] {
        try {
            const RechazoEliminarArea rechazo = catalogo_.eliminaArea(id, nombre);
            if (rechazo != RechazoEliminarArea::Ninguno) {
                error(mensajeRechazo(rechazo));
                return;
            }
        } catch (const std::exception& e) {
            error(QString::fromUtf8(MensajeErrorRegistro));
            qWarning() << "Áreas de Comida, baja:" << e.what();
            return;
        }
        delete item;
    });
}

// ---------------------------------------------------------------------------------------------
// Nodos de comida
// ---------------------------------------------------------------------------------------------

void TAreasComidaF::BuscarNodoComidaReturnPressed() {
    busqueda_ = buscar_->text().trimmed();
    if (busqueda_.isEmpty()) return;
    Sonidos::reproduce(Sonido::MostrarResultados);
    muestraPagina(PaginaNodos, QStringLiteral("Nodos de Comida"));
    ejecutaConLeyenda(this, QStringLiteral("Cargando Nodos de Comida"),
                      [this] { CargaNodosComidaTimer(); });
}

void TAreasComidaF::CargaNodosComidaTimer() {
    std::vector<NodoComida> nodos;
    try {
        nodos = catalogo_.nodos(areaID_, busqueda_);
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Áreas de Comida, nodos:" << e.what();
        return;
    }
    nodos_->clear();
    for (const NodoComida& n : nodos) {
        auto* item = new QListWidgetItem(icono(imagenTipoNodo(n.tipo)), n.descripcion, nodos_);
        item->setData(RolNodoID, QVariant::fromValue<qlonglong>(n.id));
        item->setData(RolPrimeraLinea, n.clave + QStringLiteral("  ") + n.descripcion);
        item->setData(RolSegundaLinea,
                      QStringLiteral("Número de Personas: ") + QString::number(n.numeroPersonas));
        item->setData(RolColorSegundaLinea, QString::fromLatin1(ColorAcento));
        item->setData(RolDatoDerecha, n.activo ? QString() : QStringLiteral("Inactivo"));
    }
    pieNodos_->setText(QStringLiteral("Número de Registros: ") + QString::number(nodos_->count()));
}

void TAreasComidaF::BotonProductoNuevoClick() {
    Sonidos::reproduce(Sonido::Click);
    abreEdicion(0);
}

void TAreasComidaF::BotonModificarClick() {
    QListWidgetItem* item = nodos_->currentItem();
    if (!item) return;
    Sonidos::reproduce(Sonido::Click);
    abreEdicion(item->data(RolNodoID).toLongLong());
}

void TAreasComidaF::abreEdicion(int64_t nodoID) {
    cierraEdicion();
    edicion_ = new TAreasComidaEditaF(sesion_, areaID_, nodoID, paginas_);
    paginas_->addWidget(edicion_);
    connect(edicion_, &TAreasComidaEditaF::almacenado, this, [this] {
        cierraEdicion();
        ejecutaConLeyenda(this, QStringLiteral("Cargando Nodos de Comida"),
                          [this] { CargaNodosComidaTimer(); });
    });
    connect(edicion_, &TAreasComidaEditaF::cancelado, this, &TAreasComidaF::cierraEdicion);
    muestraPagina(PaginaEdicion, edicion_->windowTitle());
}

void TAreasComidaF::cierraEdicion() {
    if (!edicion_) return;
    paginas_->removeWidget(edicion_);
    edicion_->deleteLater();
    edicion_ = nullptr;
    muestraPagina(PaginaNodos, QStringLiteral("Nodos de Comida"));
}

void TAreasComidaF::BotonBorrarClick() {
    QListWidgetItem* item = nodos_->currentItem();
    if (!item) return;
    Sonidos::reproduce(Sonido::Deslizar);
    if (!mensajes_.preguntaSiNo(QStringLiteral("¿Desea eliminar el Nodo de Comida ") +
                                item->text() + QStringLiteral("?")))
        return;
    const int64_t id = item->data(RolNodoID).toLongLong();
    const QString clave = item->data(RolPrimeraLinea).toString();
    ejecutaConLeyenda(this, QStringLiteral("Borrando Nodo de Comida"),
                      [=, this] { BorrarRenglonTimer(id, clave); });
}

void TAreasComidaF::BorrarRenglonTimer(int64_t nodoID, const QString& clave) {
    try {
        if (!catalogo_.eliminaNodo(nodoID, clave)) {
            error(QString::fromUtf8(MensajeNodoConTransacciones));
            return;
        }
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorRegistro));
        qWarning() << "Áreas de Comida, baja de nodo:" << e.what();
        return;
    }
    for (int i = 0; i < nodos_->count(); ++i)
        if (nodos_->item(i)->data(RolNodoID).toLongLong() == nodoID) delete nodos_->takeItem(i);
    pieNodos_->setText(QStringLiteral("Número de Registros: ") + QString::number(nodos_->count()));
}

// ---------------------------------------------------------------------------------------------
// Productos del área
// ---------------------------------------------------------------------------------------------

void TAreasComidaF::CargaProductosTimer() {
    const QSignalBlocker bloqueo(productos_);
    productos_->clear();
    try {
        CatalogoLineas lineas(ModuloDeDatos.ConexionBD, sesion_);
        std::vector<QTreeWidgetItem*> nodosLinea;
        agregaLineas(*productos_, lineas.consulta(), [&](const LineaProducto& l) {
            auto* item = new QTreeWidgetItem(QStringList{l.linea});
            item->setIcon(0, icono(QStringLiteral("Lineas")));
            item->setData(0, RolAreaID, QVariant::fromValue<qlonglong>(l.id));
            nodosLinea.push_back(item);
            return item;
        });
        for (QTreeWidgetItem* linea : nodosLinea)
            for (const ProductoArea& p :
                 catalogo_.productosDeLinea(idDe(linea, RolAreaID), areaID_)) {
                auto* item = new QTreeWidgetItem(QStringList{p.producto});
                item->setData(0, RolProductoID, QVariant::fromValue<qlonglong>(p.id));
                item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
                item->setCheckState(0, p.asignado ? Qt::Checked : Qt::Unchecked);
                linea->addChild(item);
            }
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Áreas de Comida, productos:" << e.what();
    }
    productos_->expandAll();
    cuentaAsignados();
}

void TAreasComidaF::cuentaAsignados() {
    int total = 0;
    for (QTreeWidgetItemIterator i(productos_, QTreeWidgetItemIterator::Checked); *i; ++i)
        ++total;
    asignados_->setText(QStringLiteral("Total Asignados= ") + QString::number(total));
}

void TAreasComidaF::ArbolProductosItemChanged(QTreeWidgetItem* item, int columna) {
    if (columna == 0 && item->data(0, RolProductoID).isValid()) cuentaAsignados();
}

void TAreasComidaF::GrupoBotonSiguienteClick() {
    Sonidos::reproduce(Sonido::Click);
    bool alguno = false;
    for (QTreeWidgetItemIterator i(productos_, QTreeWidgetItemIterator::Checked); *i && !alguno;
         ++i)
        alguno = (*i)->data(0, RolProductoID).isValid();
    if (!alguno) {
        error(QStringLiteral("No hay Productos seleccionados"));
        return;
    }
    ejecutaConLeyenda(this, QStringLiteral("Actualizando Productos"),
                      [this] { ActualizaProductosAreaComidaTimer(); });
}

void TAreasComidaF::ActualizaProductosAreaComidaTimer() {
    std::vector<int64_t> ids;
    for (QTreeWidgetItemIterator i(productos_, QTreeWidgetItemIterator::Checked); *i; ++i)
        if ((*i)->data(0, RolProductoID).isValid())
            ids.push_back((*i)->data(0, RolProductoID).toLongLong());
    try {
        catalogo_.asignaProductos(areaID_, area_, ids);
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorRegistro));
        qWarning() << "Áreas de Comida, productos del área:" << e.what();
        return;
    }
    Sonidos::reproduce(Sonido::FinalizarComanda);
    muestraPagina(PaginaAreas, QString::fromUtf8(kTituloCatalogo));
}

void TAreasComidaF::BotonAnteriorClick() {
    Sonidos::reproduce(Sonido::Regresar);
    if (paginas_->currentIndex() == PaginaAreas) {
        close();
        return;
    }
    busqueda_.clear();
    muestraPagina(PaginaAreas, QString::fromUtf8(kTituloCatalogo));
}

} // namespace cajaplex
