#include "restaurant/Comandas.h"

#include <algorithm>
#include <exception>
#include <map>

#include <QCloseEvent>
#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QScroller>
#include <QSpinBox>
#include <QStackedWidget>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <QtDebug>

#include "datos/ConexionBD.h"
#include "datos/ControlAcceso.h"
#include "datos/EscuchaEventos.h"
#include "datos/MensajesComunes.h"
#include "datos/ModuloDatos.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/Sonidos.h"
#include "printing/ImpresionDocumentos.h"
#include "printing/PlantillasLocales.h"
#include "restaurant/CancelacionComanda.h"
#include "restaurant/CatalogoAreasComida.h"
#include "restaurant/CuadriculaKiosko.h"

namespace cajaplex {
namespace {

enum Pagina { PaginaPlano, PaginaNueva, PaginaMenu };

const char* const kAjusteRenglones = "KioskoComandaRenglones";
const char* const kAjusteColumnas = "KioskoComandaColumnas";
const char* const kMensajeOtroMesero = "La Comanda de este Nodo la atiende: ";
const char* const kColorCerrada = "#FF0000";
const int kColumnasPlano = 5;
const int kMaximoCuadricula = 8;

QString dinero(double valor) {
    return QStringLiteral("$") + QString::number(valor, 'f', 2);
}

QLabel* etiquetaTransparente(const QString& texto, QWidget* padre) {
    auto* etiqueta = new QLabel(texto, padre);
    etiqueta->setTextFormat(Qt::PlainText);
    etiqueta->setAlignment(Qt::AlignCenter);
    etiqueta->setWordWrap(true);
    // El dedo toca el mosaico entero, no la etiqueta.
    etiqueta->setAttribute(Qt::WA_TransparentForMouseEvents);
    return etiqueta;
}

// El mosaico de un nodo: "Nodo: " en negritas, la descripción, la forma y su estado.
QPushButton* creaMosaico(const NodoPlano& n, QWidget* padre) {
    auto* mosaico = new QPushButton(padre);
    mosaico->setObjectName(QStringLiteral("Nodo") + n.clave);
    ponEstilo(mosaico, "mosaico");
    // La hoja de estilo fija el alto mínimo de los botones y ganaría a setMinimumSize: el mosaico
    // pide el suyo ahí mismo para que quepan sus cuatro renglones.
    mosaico->setStyleSheet(QStringLiteral("QPushButton { min-width: 200px; min-height: 150px; }"));
    auto* nombre = etiquetaTransparente(QStringLiteral("Nodo: ") + n.clave, mosaico);
    QFont negritas = nombre->font();
    negritas.setBold(true);
    nombre->setFont(negritas);
    auto* forma = new QLabel(mosaico);
    forma->setPixmap(imagen(imagenTipoNodo(n.tipo), QSize(48, 48)));
    forma->setAlignment(Qt::AlignCenter);
    forma->setAttribute(Qt::WA_TransparentForMouseEvents);
    QString estado = QStringLiteral("Libre");
    QString color;
    if (n.status == 1) {
        estado = QStringLiteral("Atiende: ") + n.mesero;
        color = QString::fromLatin1(ColorAcento);
    } else if (n.status == 2) {
        estado = QStringLiteral("Cuenta Cerrada - ") + n.mesero;
        color = QString::fromLatin1(kColorCerrada);
    }
    auto* linea = etiquetaTransparente(estado, mosaico);
    linea->setObjectName(QStringLiteral("EstadoNodo"));
    if (!color.isEmpty()) linea->setStyleSheet(QStringLiteral("color: ") + color);
    auto* capa = new QVBoxLayout(mosaico);
    capa->addWidget(nombre);
    capa->addWidget(etiquetaTransparente(n.descripcion, mosaico));
    capa->addWidget(forma);
    capa->addWidget(linea);
    mosaico->setAccessibleName(
        QStringLiteral("Nodo: %1 %2 %3").arg(n.clave, n.descripcion, estado));
    return mosaico;
}

QString cantidadTexto(double cantidad) {
    return QString::number(cantidad, 'g', 10);
}

QString fechaTexto(const QDateTime& fecha) {
    return fecha.toString(QStringLiteral("dd/MM/yyyy HH:mm"));
}

} // namespace

DocumentoImpresion documentoComanda(const NodoPlano& nodo, int64_t folio, int seccion,
                                    const QString& mesero, const QString& observaciones,
                                    const std::vector<RenglonComanda>& renglones) {
    DocumentoImpresion doc;
    QVariantMap& d = doc.datos;
    d[QStringLiteral("folio")] = QString::number(folio);
    d[QStringLiteral("mesa")] =
        QStringLiteral("Nodo: ") + nodo.clave + QStringLiteral(" ") + nodo.descripcion;
    d[QStringLiteral("seccion")] =
        nodo.area + QStringLiteral(" - Sección ") + QString::number(seccion);
    d[QStringLiteral("mesero")] = mesero;
    d[QStringLiteral("fecha")] = fechaTexto(QDateTime::currentDateTime());
    d[QStringLiteral("observaciones")] = observaciones;
    QVariantList lista;
    for (const RenglonComanda& r : renglones)
        lista << QVariantMap{
            {QStringLiteral("cantidad"), cantidadTexto(r.cantidad)},
            {QStringLiteral("descripcion"),
             QStringLiteral("%1 (Comensal %2)").arg(r.descripcion).arg(r.comensal)},
            {QStringLiteral("nota"), r.nota}};
    d[QStringLiteral("renglones")] = lista;
    return doc;
}

DocumentoImpresion documentoCuenta(const Sesion& sesion, const NodoPlano& nodo,
                                   const CuentaComanda& cuenta) {
    DocumentoImpresion doc;
    QVariantMap& d = doc.datos;
    d[QStringLiteral("empresa")] = sesion.NombreEmpresa;
    d[QStringLiteral("rfc")] = sesion.Rfc;
    d[QStringLiteral("folio")] = QString::number(cuenta.folio);
    d[QStringLiteral("mesa")] =
        QStringLiteral("Nodo: ") + nodo.clave + QStringLiteral(" ") + nodo.descripcion;
    d[QStringLiteral("personas")] = QString::number(cuenta.personas);
    d[QStringLiteral("mesero")] = cuenta.mesero;
    d[QStringLiteral("apertura")] = fechaTexto(cuenta.apertura);
    d[QStringLiteral("cierre")] = fechaTexto(cuenta.cierre);
    QVariantList lista;
    for (const CuentaComanda::Renglon& r : cuenta.renglones)
        lista << QVariantMap{{QStringLiteral("cantidad"), cantidadTexto(r.cantidad)},
                             {QStringLiteral("descripcion"), r.producto},
                             {QStringLiteral("importe"), dinero(r.importe)}};
    d[QStringLiteral("renglones")] = lista;
    d[QStringLiteral("total")] = dinero(cuenta.total());
    return doc;
}

TComandasF::TComandasF(const Sesion& sesion, QWidget* padre)
    : QWidget(padre), sesion_(sesion), registro_(ModuloDeDatos.ConexionBD, sesion) {
    setObjectName(QStringLiteral("Comandas"));
    setWindowTitle(QStringLiteral("Comandas"));
    renglones_ = std::clamp(estacion_.valor(QString::fromLatin1(kAjusteRenglones), 4).toInt(), 1,
                            kMaximoCuadricula);
    columnas_ = std::clamp(estacion_.valor(QString::fromLatin1(kAjusteColumnas), 3).toInt(), 1,
                           kMaximoCuadricula);

    titulo_ = creaEtiqueta(QStringLiteral("Comandas"), QStringLiteral("Titulo"), "titulo", this);
    anterior_ = creaBoton(QStringLiteral("Regresar"), QStringLiteral("Regresar"),
                          QStringLiteral("BotonAnterior"), nullptr, this);
    recargar_ = creaBoton(QStringLiteral("Rotar"), QStringLiteral("Recargar"),
                          QStringLiteral("GrupoRecargarAreasComida"), nullptr, this);
    connect(anterior_, &QPushButton::clicked, this, &TComandasF::BotonAnteriorClick);
    connect(recargar_, &QPushButton::clicked, this, &TComandasF::GrupoRecargarAreasComidaClick);
    auto* barra = new QHBoxLayout;
    barra->addWidget(anterior_);
    barra->addWidget(titulo_, 1);
    cancelarComanda_ = creaBoton(QStringLiteral("Cancelacion"), QStringLiteral("Cancelar Comanda"),
                                 QStringLiteral("BotonCancelarComanda"), "peligro", this);
    connect(cancelarComanda_, &QPushButton::clicked, this, &TComandasF::BotonCancelarComandaClick);
    barra->addWidget(cancelarComanda_);
    barra->addWidget(recargar_);

    // Plano de nodos.
    auto* paginaPlano = new QWidget;
    paginaPlano->setObjectName(QStringLiteral("PlanoAreasComida"));
    encabezado_ = creaEtiqueta(QStringLiteral("Nodos de Comida: 0    Número de Meseros: 0"),
                               QStringLiteral("EncabezadoAreasComida"), "subtitulo", paginaPlano);
    auto* desliza = new QScrollArea(paginaPlano);
    desliza->setObjectName(QStringLiteral("AreasComida"));
    desliza->setAccessibleName(QStringLiteral("Nodos de Comida por Área"));
    desliza->setWidgetResizable(true);
    contenidoPlano_ = new QWidget;
    capaPlano_ = new QVBoxLayout(contenidoPlano_);
    desliza->setWidget(contenidoPlano_);
    QScroller::grabGesture(desliza->viewport(), QScroller::LeftMouseButtonGesture);
    auto* capaPlano = new QVBoxLayout(paginaPlano);
    capaPlano->addWidget(encabezado_);
    capaPlano->addWidget(desliza, 1);

    // Comanda nueva.
    auto* paginaNueva = new QWidget;
    paginaNueva->setObjectName(QStringLiteral("NuevaComanda"));
    personas_ = new QLineEdit(paginaNueva);
    personas_->setObjectName(QStringLiteral("NumeroPersonas"));
    personas_->setAccessibleName(QStringLiteral("Número de Personas"));
    personas_->setValidator(new QIntValidator(0, 999, personas_));
    personas_->setInputMethodHints(Qt::ImhDigitsOnly);
    personas_->setMinimumHeight(AltoControl);
    observaciones_ = new QLineEdit(paginaNueva);
    observaciones_->setObjectName(QStringLiteral("ObservacionesComanda"));
    observaciones_->setAccessibleName(QStringLiteral("Observaciones"));
    observaciones_->setMaxLength(250);
    observaciones_->setMinimumHeight(AltoControl);
    auto* siguiente = creaBoton(QStringLiteral("Comandas"), QStringLiteral("Siguiente"),
                                QStringLiteral("BotonSiguiente"), "primario", paginaNueva);
    connect(siguiente, &QPushButton::clicked, this, &TComandasF::BotonSiguienteClick);
    auto* capaNueva = new QVBoxLayout(paginaNueva);
    capaNueva->addWidget(
        creaEtiqueta(QStringLiteral("Número de Personas"), {}, nullptr, paginaNueva));
    capaNueva->addWidget(personas_);
    capaNueva->addWidget(creaEtiqueta(QStringLiteral("Observaciones"), {}, nullptr, paginaNueva));
    capaNueva->addWidget(observaciones_);
    capaNueva->addWidget(siguiente, 0, Qt::AlignRight);
    capaNueva->addStretch(1);

    // Menú y carrito.
    auto* paginaMenu = new QWidget;
    paginaMenu->setObjectName(QStringLiteral("MenuComanda"));
    menu_ = new QListWidget(paginaMenu);
    menu_->setObjectName(QStringLiteral("MenuProductos"));
    menu_->setAccessibleName(QStringLiteral("Menú de Líneas y Productos"));
    menu_->setViewMode(QListView::IconMode);
    menu_->setMovement(QListView::Static);
    menu_->setResizeMode(QListView::Adjust);
    menu_->setWordWrap(true);
    menu_->setIconSize(QSize(40, 40));
    menu_->setSpacing(0);
    menu_->setUniformItemSizes(true);
    // Cada celda se ve como un botón: el dedo sabe dónde tocar.
    menu_->setStyleSheet(QStringLiteral("QListWidget::item { border: 1px solid #C8CDD2; "
                                        "border-radius: 6px; margin: 3px; }"));
    menu_->viewport()->installEventFilter(this);
    QScroller::grabGesture(menu_->viewport(), QScroller::LeftMouseButtonGesture);
    connect(menu_, &QListWidget::itemClicked, this, &TComandasF::MenuProductosItemClick);
    auto* botonesCuadricula = creaBotonesCuadricula(
        paginaMenu, [this](int dr, int dc) { cambiaCuadricula(renglones_ + dr, columnas_ + dc); });
    auto* izquierda = new QVBoxLayout;
    izquierda->addWidget(menu_, 1);
    izquierda->addLayout(botonesCuadricula);

    carritoVista_ = new QTreeWidget(paginaMenu);
    carritoVista_->setObjectName(QStringLiteral("CarritoCompra"));
    carritoVista_->setAccessibleName(QStringLiteral("Carrito de la Comanda"));
    carritoVista_->setColumnCount(2);
    carritoVista_->setHeaderLabels({QStringLiteral("Producto"), QStringLiteral("Importe")});
    carritoVista_->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    carritoVista_->header()->setStretchLastSection(false);
    carritoVista_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    carritoVista_->setStyleSheet(
        QStringLiteral("QTreeView::item { min-height: %1px; }").arg(AltoControl - 8));
    QScroller::grabGesture(carritoVista_->viewport(), QScroller::LeftMouseButtonGesture);
    comensal_ = new QSpinBox(paginaMenu);
    comensal_->setObjectName(QStringLiteral("NumeroComensal"));
    comensal_->setAccessibleName(QStringLiteral("Número de Comensal"));
    comensal_->setRange(1, 99);
    comensal_->setPrefix(QStringLiteral("Comensal "));
    comensal_->setMinimumHeight(AltoControl);
    comensal_->setMinimumWidth(160);
    auto* nota = creaBoton(QStringLiteral("Actualizacion"), QStringLiteral("Nota"),
                           QStringLiteral("BotonNota"), nullptr, paginaMenu);
    auto* descuento = creaBoton(QStringLiteral("Bonificacion"), QStringLiteral("Descuento"),
                                QStringLiteral("BotonDescuento"), nullptr, paginaMenu);
    auto* eliminar = creaBoton(QStringLiteral("Cancelacion"), QStringLiteral("Eliminar"),
                               QStringLiteral("BotonEliminar"), "peligro", paginaMenu);
    connect(nota, &QPushButton::clicked, this, &TComandasF::BotonNotaClick);
    connect(descuento, &QPushButton::clicked, this, &TComandasF::BotonDescuentoClick);
    connect(eliminar, &QPushButton::clicked, this, &TComandasF::BotonEliminarClick);
    total_ =
        creaEtiqueta(QStringLiteral("Total= $0.00"), QStringLiteral("Total"), "dato", paginaMenu);
    registrar_ = creaBoton(QStringLiteral("Insercion"), QStringLiteral("Enviar a Cocina"),
                           QStringLiteral("BotonRegistrarTransaccion"), "primario", paginaMenu);
    pagar_ = creaBoton(QStringLiteral("CorteVenta"), QStringLiteral("Finalizar Cuenta"),
                       QStringLiteral("BotonPagar"), nullptr, paginaMenu);
    cambiarMesero_ = creaBoton(QStringLiteral("Usuario"), QStringLiteral("Cambiar Mesero"),
                               QStringLiteral("GrupoCambiarMesero"), nullptr, paginaMenu);
    connect(cambiarMesero_, &QPushButton::clicked, this, &TComandasF::GrupoCambiarMeseroClick);
    connect(registrar_, &QPushButton::clicked, this, &TComandasF::BotonRegistrarTransaccionClick);
    connect(pagar_, &QPushButton::clicked, this, &TComandasF::BotonPagarClick);
    auto* acciones = new QHBoxLayout;
    acciones->addWidget(comensal_);
    acciones->addWidget(nota);
    acciones->addWidget(descuento);
    acciones->addWidget(eliminar);
    auto* envio = new QHBoxLayout;
    envio->addWidget(cambiarMesero_);
    envio->addWidget(pagar_);
    envio->addWidget(registrar_);
    auto* derecha = new QVBoxLayout;
    derecha->addWidget(carritoVista_, 1);
    derecha->addLayout(acciones);
    derecha->addWidget(total_);
    derecha->addLayout(envio);
    auto* capaMenu = new QHBoxLayout(paginaMenu);
    capaMenu->addLayout(izquierda, 3);
    capaMenu->addLayout(derecha, 2);

    paginas_ = new QStackedWidget(this);
    paginas_->setObjectName(QStringLiteral("PaginadorDatos"));
    paginas_->addWidget(paginaPlano);
    paginas_->addWidget(paginaNueva);
    paginas_->addWidget(paginaMenu);
    auto* capa = new QVBoxLayout(this);
    capa->addLayout(barra);
    capa->addWidget(paginas_, 1);

    recarga_ = new QTimer(this);
    recarga_->setObjectName(QStringLiteral("TemporizadorRecarga"));
    recarga_->setInterval(IntervaloRecarga);
    connect(recarga_, &QTimer::timeout, this, &TComandasF::TemporizadorRecargaTimer);
    recarga_->start();
    // El plano se vuelve a leer cuando otra estación ocupa, cierra o libera un nodo; la recarga
    // periódica solo corre mientras el servicio no avisa.
    escucha_ = new EscuchaEventos(ModuloDeDatos.ConexionBD,
                                  {QStringLiteral("NodosComida"), QStringLiteral("Comanda")}, this);
    connect(escucha_, &EscuchaEventos::cambiaron, this, &TComandasF::TemporizadorRecargaTimer);
    connect(escucha_, &EscuchaEventos::reiniciado, this, &TComandasF::TemporizadorRecargaTimer);
    connect(escucha_, &EscuchaEventos::enVivo, recarga_, &QTimer::stop);
    connect(escucha_, &EscuchaEventos::sinEventos, recarga_, qOverload<>(&QTimer::start));
    escucha_->inicia();

    muestraPagina(PaginaPlano);
    ejecutaConLeyenda(this, QStringLiteral("Cargando Nodos de Comida."),
                      [this] { CargaAreasComidaTimer(false); });
}

void TComandasF::error(const QString& mensaje) {
    Sonidos::reproduce(Sonido::Error);
    mensajes_.muestra(mensaje);
}

void TComandasF::muestraPagina(int pagina) {
    paginas_->setCurrentIndex(pagina);
    // En el plano, "Regresar" y el título son los del marco de la aplicación; en las páginas del
    // nodo, los propios llevan de vuelta al plano.
    anterior_->setVisible(pagina != PaginaPlano);
    titulo_->setVisible(pagina != PaginaPlano);
    recargar_->setVisible(pagina == PaginaPlano);
    cancelarComanda_->setVisible(pagina == PaginaPlano);
    if (pagina == PaginaPlano)
        titulo_->setText(QStringLiteral("Comandas"));
    else
        titulo_->setText(QStringLiteral("Nodo: ") + nodo_.clave + QStringLiteral("  ") +
                         nodo_.descripcion);
}

// ---------------------------------------------------------------------------------------------
// Plano
// ---------------------------------------------------------------------------------------------

void TComandasF::GrupoRecargarAreasComidaClick() {
    Sonidos::reproduce(Sonido::Recargar);
    ejecutaConLeyenda(this, QStringLiteral("Cargando Nodos de Comida."),
                      [this] { CargaAreasComidaTimer(false); });
}

void TComandasF::TemporizadorRecargaTimer() {
    if (paginas_->currentIndex() == PaginaPlano && isVisible()) CargaAreasComidaTimer(true);
}

void TComandasF::CargaAreasComidaTimer(bool silencioso) {
    try {
        plano_ = registro_.plano();
    } catch (const std::exception& e) {
        // La recarga periódica no interrumpe al mesero con un mensaje por cada intento.
        if (!silencioso) error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Comandas, plano:" << e.what();
        return;
    }
    // Nunca corre desde el clic de un mosaico, así que los viejos se borran de una vez.
    while (QLayoutItem* item = capaPlano_->takeAt(0)) {
        if (item->layout()) {
            while (QLayoutItem* hijo = item->layout()->takeAt(0)) {
                delete hijo->widget();
                delete hijo;
            }
        }
        delete item->widget();
        delete item;
    }
    int64_t area = -1;
    QGridLayout* cuadricula = nullptr;
    int posicion = 0;
    for (const NodoPlano& n : plano_.nodos) {
        if (n.areaID != area) {
            area = n.areaID;
            capaPlano_->addWidget(creaEtiqueta(n.area,
                                               QStringLiteral("Area") + QString::number(area),
                                               "subtitulo", contenidoPlano_));
            cuadricula = new QGridLayout;
            capaPlano_->addLayout(cuadricula);
            posicion = 0;
        }
        QPushButton* mosaico = creaMosaico(n, contenidoPlano_);
        const NodoPlano copia = n;
        connect(mosaico, &QPushButton::clicked, this, [this, copia] { NodoClick(copia); });
        cuadricula->addWidget(mosaico, posicion / kColumnasPlano, posicion % kColumnasPlano);
        ++posicion;
    }
    capaPlano_->addStretch(1);
    encabezado_->setText(QStringLiteral("Nodos de Comida: %1    Número de Meseros: %2")
                             .arg(plano_.nodos.size())
                             .arg(plano_.numeroMeseros()));
}

void TComandasF::NodoClick(const NodoPlano& nodo) {
    Sonidos::reproduce(Sonido::Click);
    nodo_ = nodo;
    abierta_.reset();
    guardados_.clear();
    carrito_.clear();
    if (nodo.status == 0) {
        personas_->clear();
        observaciones_->clear();
        muestraPagina(PaginaNueva);
        personas_->setFocus();
        return;
    }
    // Solo el mesero que la atiende continúa, cierra o reabre la comanda.
    if (nodo.meseroID != sesion_.UsuarioID) {
        error(QString::fromUtf8(kMensajeOtroMesero) + nodo.mesero);
        return;
    }
    if (nodo.status == 2) {
        if (!mensajes_.pregunta(QStringLiteral("¿Desea Reaperturarla?"))) return;
        ejecutaConLeyenda(this, QStringLiteral("Cargando Menú"), [this, nodo] {
            try {
                if (!registro_.reabreCuenta(nodo.id)) {
                    error(QString::fromUtf8(kMensajeOtroMesero) + nodo.mesero);
                    return;
                }
            } catch (const std::exception& e) {
                error(QString::fromUtf8(MensajeErrorRegistro));
                qWarning() << "Comandas, reabrir cuenta:" << e.what();
                return;
            }
            continuaComanda(nodo);
        });
        return;
    }
    ejecutaConLeyenda(this, QStringLiteral("Cargando Menú"),
                      [this, nodo] { continuaComanda(nodo); });
}

void TComandasF::continuaComanda(const NodoPlano& nodo) {
    try {
        abierta_ = registro_.comandaDelMesero(nodo.id);
        if (!abierta_) {
            error(QString::fromUtf8(kMensajeOtroMesero) + nodo.mesero);
            return;
        }
        guardados_ = registro_.renglones(abierta_->id);
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Comandas, continuar:" << e.what();
        return;
    }
    CargaMenuTimer();
}

void TComandasF::BotonSiguienteClick() {
    Sonidos::reproduce(Sonido::Click);
    const QString texto = personas_->text().trimmed();
    if (texto.isEmpty()) {
        error(QStringLiteral("Debe introducir un número de personas"));
        return;
    }
    // El texto dice "mayor a 1" aunque una persona se acepta.
    if (texto.toInt() <= 0) {
        error(QStringLiteral("Debe introducir un número de personas mayor a 1"));
        return;
    }
    try {
        if (!dispositivoAutorizado(ModuloDeDatos.ConexionBD, sesion_.DispositivoID)) {
            error(QString::fromUtf8(MensajeDispositivoNoAutorizado) + sesion_.DispositivoID);
            return;
        }
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Comandas, autorización:" << e.what();
        return;
    }
    apertura_ = {texto.toInt(), observaciones_->text().trimmed()};
    ejecutaConLeyenda(this, QStringLiteral("Cargando Menú"), [this] { CargaMenuTimer(); });
}

// ---------------------------------------------------------------------------------------------
// Menú
// ---------------------------------------------------------------------------------------------

void TComandasF::CargaMenuTimer() {
    try {
        lineas_ = CatalogoLineas(ModuloDeDatos.ConexionBD, sesion_).consulta();
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Comandas, menú:" << e.what();
        return;
    }
    comensal_->setValue(1);
    muestraPagina(PaginaMenu);
    muestraMenu(0);
    pintaCarrito();
}

void TComandasF::muestraMenu(int64_t linea) {
    std::vector<ProductoMenu> productos;
    if (linea != 0) {
        try {
            productos = registro_.productosMenu(linea);
        } catch (const std::exception& e) {
            error(QString::fromUtf8(MensajeErrorLectura));
            qWarning() << "Comandas, productos del menú:" << e.what();
            return;
        }
    }
    lineaActual_ = linea;
    menu_->clear();
    if (linea != 0) {
        int64_t padre = 0;
        for (const LineaProducto& l : lineas_)
            if (l.id == linea) padre = l.padre;
        auto* regresar = new QListWidgetItem(icono(QStringLiteral("Regresar")),
                                             QStringLiteral("Regresar"), menu_);
        regresar->setData(RolLinea, QVariant::fromValue<qlonglong>(padre));
    }
    for (const LineaProducto& l : lineas_) {
        if (l.padre != linea) continue;
        auto* item = new QListWidgetItem(icono(QStringLiteral("Lineas")), l.linea, menu_);
        item->setData(RolLinea, QVariant::fromValue<qlonglong>(l.id));
    }
    for (const ProductoMenu& p : productos) {
        auto* item = new QListWidgetItem(icono(QStringLiteral("Comandas")),
                                         p.producto + QLatin1Char('\n') + dinero(p.precio), menu_);
        item->setData(RolProducto, QVariant::fromValue<qlonglong>(p.id));
        item->setData(Qt::AccessibleTextRole, p.producto);
        item->setData(Qt::UserRole, p.precio);
        item->setToolTip(p.clave);
    }
    ajustaCuadricula();
}

void TComandasF::cambiaCuadricula(int renglones, int columnas) {
    renglones_ = std::clamp(renglones, 1, kMaximoCuadricula);
    columnas_ = std::clamp(columnas, 1, kMaximoCuadricula);
    estacion_.ponValor(QString::fromLatin1(kAjusteRenglones), renglones_);
    estacion_.ponValor(QString::fromLatin1(kAjusteColumnas), columnas_);
    if (!estacion_.guarda()) qWarning() << "Comandas: no se guardó la cuadrícula del menú";
    ajustaCuadricula();
}

void TComandasF::ajustaCuadricula() {
    const QSize area = menu_->viewport()->size();
    // Con el ancho exacto la vista pasa la última columna abajo: se deja holgura.
    const QSize celda(std::max(AltoControl * 2, area.width() / columnas_ - 12),
                      std::max(AltoControl * 2, area.height() / renglones_ - 12));
    menu_->setGridSize(celda);
    // El mosaico llena su celda: todo él responde al dedo.
    for (int i = 0; i < menu_->count(); ++i)
        menu_->item(i)->setSizeHint(celda - QSize(6, 6));
}

bool TComandasF::eventFilter(QObject* objeto, QEvent* evento) {
    if (objeto == menu_->viewport() && evento->type() == QEvent::Resize) ajustaCuadricula();
    return QWidget::eventFilter(objeto, evento);
}

void TComandasF::MenuProductosItemClick(QListWidgetItem* item) {
    if (!item) return;
    Sonidos::reproduce(Sonido::Click);
    if (item->data(RolLinea).isValid()) {
        muestraMenu(item->data(RolLinea).toLongLong());
        return;
    }
    const int64_t producto = item->data(RolProducto).toLongLong();
    const int comensal = comensal_->value();
    // Otro toque del mismo platillo para el mismo comensal suma uno al renglón sin nota.
    auto igual = std::find_if(carrito_.begin(), carrito_.end(), [&](const RenglonComanda& r) {
        return r.producto == producto && r.comensal == comensal && r.nota.isEmpty() &&
               r.descuento == 0.0;
    });
    if (igual != carrito_.end()) {
        igual->cantidad += 1.0;
    } else {
        RenglonComanda r;
        r.producto = producto;
        r.descripcion = item->data(Qt::AccessibleTextRole).toString();
        r.precio = item->data(Qt::UserRole).toDouble();
        r.comensal = comensal;
        carrito_.push_back(r);
    }
    pintaCarrito();
}

// ---------------------------------------------------------------------------------------------
// Carrito
// ---------------------------------------------------------------------------------------------

void TComandasF::pintaCarrito() {
    carritoVista_->clear();
    std::map<int, QTreeWidgetItem*> comensales;
    double total = 0.0;
    auto agrega = [&](const RenglonComanda& r, int indice) {
        QTreeWidgetItem*& comensal = comensales[r.comensal];
        if (!comensal) {
            comensal = new QTreeWidgetItem(
                QStringList{QStringLiteral("Comensal ") + QString::number(r.comensal)});
            QFont negritas = comensal->font(0);
            negritas.setBold(true);
            comensal->setFont(0, negritas);
        }
        QString texto = QStringLiteral("%1 x %2").arg(r.cantidad).arg(r.descripcion);
        if (r.descuento > 0.0) texto += QStringLiteral(" (-%1%)").arg(r.descuento);
        if (indice < 0) texto += QStringLiteral("  [Sección %1]").arg(r.seccion);
        auto* item = new QTreeWidgetItem(comensal, QStringList{texto, dinero(r.importe())});
        item->setData(0, RolIndice, indice);
        item->setTextAlignment(1, Qt::AlignRight | Qt::AlignVCenter);
        if (indice < 0) item->setForeground(0, palette().brush(QPalette::Disabled, QPalette::Text));
        if (!r.nota.isEmpty()) {
            auto* nota = new QTreeWidgetItem(item, QStringList{QStringLiteral("Nota: ") + r.nota});
            nota->setData(0, RolIndice, indice);
        }
        total += r.importe();
    };
    for (const RenglonComanda& r : guardados_)
        agrega(r, -1);
    for (size_t i = 0; i < carrito_.size(); ++i)
        agrega(carrito_[i], static_cast<int>(i));
    for (auto& [numero, item] : comensales)
        carritoVista_->addTopLevelItem(item);
    carritoVista_->expandAll();
    total_->setText(QStringLiteral("Total= ") + dinero(total));
    registrar_->setEnabled(!carrito_.empty());
    // La cuenta se cierra con todo enviado a cocina.
    pagar_->setEnabled(abierta_.has_value() && carrito_.empty());
    cambiarMesero_->setVisible(plano_.permiteCambiarVendedorComanda);
    cambiarMesero_->setEnabled(abierta_.has_value() && carrito_.empty());
}

int TComandasF::renglonElegido() const {
    const QTreeWidgetItem* item = carritoVista_->currentItem();
    if (!item || !item->data(0, RolIndice).isValid()) return -1;
    const int indice = item->data(0, RolIndice).toInt();
    return indice >= 0 && indice < static_cast<int>(carrito_.size()) ? indice : -1;
}

void TComandasF::BotonEliminarClick() {
    const int indice = renglonElegido();
    if (indice < 0) return;
    Sonidos::reproduce(Sonido::Click);
    if (!mensajes_.pregunta(QStringLiteral("¿Desea eliminar ") +
                            carrito_[static_cast<size_t>(indice)].descripcion +
                            QStringLiteral("?")))
        return;
    carrito_.erase(carrito_.begin() + indice);
    pintaCarrito();
}

void TComandasF::BotonNotaClick() {
    const int indice = renglonElegido();
    if (indice < 0) return;
    Sonidos::reproduce(Sonido::Click);
    RenglonComanda& r = carrito_[static_cast<size_t>(indice)];
    const std::optional<QString> nota =
        mensajes_.pideTexto(QStringLiteral("Cambiar Nota"), r.nota, 250);
    if (!nota) return;
    r.nota = nota->trimmed();
    pintaCarrito();
}

void TComandasF::BotonDescuentoClick() {
    const int indice = renglonElegido();
    if (indice < 0) return;
    Sonidos::reproduce(Sonido::Click);
    RenglonComanda& r = carrito_[static_cast<size_t>(indice)];
    const std::optional<double> descuento =
        mensajes_.pideDecimal(QStringLiteral("Descuento (%)"), r.descuento, 2);
    if (!descuento) return;
    r.descuento = std::clamp(*descuento, 0.0, 100.0);
    pintaCarrito();
}

// ---------------------------------------------------------------------------------------------
// Registro y cierre
// ---------------------------------------------------------------------------------------------

void TComandasF::BotonRegistrarTransaccionClick() {
    if (carrito_.empty()) return;
    Sonidos::reproduce(Sonido::Click);
    ejecutaConLeyenda(this, QStringLiteral("Registrando Comanda"),
                      [this] { RegistraComandaTimer(); });
}

void TComandasF::RegistraComandaTimer() {
    const bool nueva = !abierta_.has_value();
    ComandaAbierta comanda;
    try {
        comanda = registro_.registraSeccion(nodo_.id, abierta_, apertura_, carrito_);
    } catch (const std::exception& e) {
        // Nada quedó registrado: el carrito sigue para intentarlo de nuevo.
        error(QString::fromUtf8(MensajeErrorComanda));
        qWarning() << "Comandas, registro:" << e.what();
        return;
    }
    const std::vector<RenglonComanda> enviados = carrito_;
    int posicion = abierta_ ? abierta_->posicion : 0;
    for (RenglonComanda& r : carrito_) {
        r.seccion = comanda.seccion;
        r.posicion = ++posicion;
        guardados_.push_back(r);
    }
    carrito_.clear();
    abierta_ = comanda;
    if (nueva) {
        nodo_.status = 1;
        nodo_.meseroID = sesion_.UsuarioID;
        nodo_.mesero = sesion_.NombreDeUsuario;
    }
    Sonidos::reproduce(Sonido::ComandaNueva);
    pintaCarrito();
    if (plano_.imprimeComandaAlGrabar)
        imprime(QStringLiteral("Comanda"),
                documentoComanda(nodo_, comanda.folio, comanda.seccion, sesion_.NombreDeUsuario,
                                 apertura_.observaciones, enviados));
}

void TComandasF::imprime(const QString& carpeta, const DocumentoImpresion& documento) {
    PedidoImpresion pedido;
    pedido.carpeta = carpeta;
    pedido.ajustes = leeAjustesImpresion(estacion_, carpeta);
    try {
        pedido.plantilla = plantillaLocal(ModuloDeDatos.ConexionLocalBD, sesion_.EmpresaID, carpeta,
                                          pedido.ajustes.plantilla)
                               .texto;
    } catch (const RegistroInexistente& e) {
        // "No se localizó la plantilla de ... para imprimir."
        error(e.mensaje());
        return;
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeParametrosImpresion));
        qWarning() << "Comandas, plantilla de" << carpeta << ":" << e.what();
        return;
    }
    // Lo registrado ya quedó: la impresión corre aparte y solo avisa si falla.
    imprimeDocumento(this, sesion_, pedido, [documento] { return documento; });
}

void TComandasF::BotonPagarClick() {
    if (!abierta_ || !carrito_.empty()) return;
    Sonidos::reproduce(Sonido::Click);
    if (!mensajes_.pregunta(QStringLiteral("¿Desea Finalizar Cuenta?"))) return;
    ejecutaConLeyenda(this, QStringLiteral("Registrando Transacción."),
                      [this] { CierraCuentaTimer(); });
}

void TComandasF::GrupoCambiarMeseroClick() {
    if (!abierta_ || !carrito_.empty()) return;
    Sonidos::reproduce(Sonido::Click);
    std::vector<Mesero> meseros;
    try {
        meseros = registro_.meseros();
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Comandas, meseros:" << e.what();
        return;
    }
    QStringList nombres;
    for (const Mesero& m : meseros)
        nombres << m.nombre;
    const int elegido = mensajes_.eligeOpcion(QStringLiteral("Seleccionar Mesero"), nombres);
    if (elegido < 0) return;
    if (!mensajes_.pregunta(QStringLiteral("¿Desea asignar la Comanda %1 al Mesero seleccionado?")
                                .arg(abierta_->folio)))
        return;
    const Mesero mesero = meseros[static_cast<size_t>(elegido)];
    ejecutaConLeyenda(this, QStringLiteral("Registrando Transacción."), [this, mesero] {
        try {
            if (!registro_.cambiaMesero(*abierta_, mesero)) {
                error(QString::fromUtf8(kMensajeOtroMesero) + nodo_.mesero);
                return;
            }
        } catch (const std::exception& e) {
            error(QString::fromUtf8(MensajeErrorRegistro));
            qWarning() << "Comandas, cambio de mesero:" << e.what();
            return;
        }
        // La comanda ya es del otro mesero: aquí no se sigue.
        abierta_.reset();
        guardados_.clear();
        muestraPagina(PaginaPlano);
        CargaAreasComidaTimer(false);
    });
}

void TComandasF::CierraCuentaTimer() {
    try {
        if (!registro_.cierraCuenta(nodo_.id, abierta_->id)) {
            error(QString::fromUtf8(kMensajeOtroMesero) + nodo_.mesero);
            return;
        }
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorRegistro));
        qWarning() << "Comandas, cierre de cuenta:" << e.what();
        return;
    }
    Sonidos::reproduce(Sonido::FinalizarComanda);
    if (plano_.imprimeCuentaAlPagar) {
        try {
            imprime(QStringLiteral("Cuenta"),
                    documentoCuenta(sesion_, nodo_, registro_.cuenta(abierta_->id)));
        } catch (const std::exception& e) {
            error(QString::fromUtf8(MensajeErrorLectura));
            qWarning() << "Comandas, cuenta:" << e.what();
        }
    }
    abierta_.reset();
    guardados_.clear();
    muestraPagina(PaginaPlano);
    CargaAreasComidaTimer(false);
}

// ---------------------------------------------------------------------------------------------
// Cancelación
// ---------------------------------------------------------------------------------------------

// Cualquier comanda activa del plano, de cualquier mesero, con el derecho cancelarComanda.
void TComandasF::BotonCancelarComandaClick() {
    Sonidos::reproduce(Sonido::Click);
    if (!CancelacionComanda(ModuloDeDatos.ConexionBD, sesion_).permitida()) {
        error(QString::fromUtf8(MensajeSinPermisoCancelarComanda));
        return;
    }
    std::vector<NodoPlano> ocupados;
    QStringList opciones;
    for (const NodoPlano& n : plano_.nodos) {
        if (n.status == 0) continue;
        ocupados.push_back(n);
        opciones << QStringLiteral("Nodo: %1  %2 - %3").arg(n.clave, n.descripcion, n.mesero);
    }
    if (ocupados.empty()) {
        error(QStringLiteral("No hay Comandas por Cancelar"));
        return;
    }
    const int elegido =
        mensajes_.eligeOpcion(QStringLiteral("Seleccione la Comanda a Cancelar"), opciones);
    if (elegido < 0) return;
    const NodoPlano nodo = ocupados[static_cast<size_t>(elegido)];
    const std::optional<QString> motivo =
        mensajes_.pideTexto(QStringLiteral("Motivo de la Cancelación"), {}, 255);
    if (!motivo) return;
    if (motivo->trimmed().isEmpty()) {
        error(QStringLiteral("Debe Indicar el Motivo de la Cancelación"));
        return;
    }
    if (!mensajes_.preguntaSiNo(QStringLiteral("¿Desea Cancelar la Comanda del Nodo: %1 %2?")
                                    .arg(nodo.clave, nodo.descripcion)))
        return;
    ejecutaConLeyenda(this, QStringLiteral("Registrando Transacción."),
                      [this, nodo, m = motivo->trimmed()] { CancelaComandaTimer(nodo, m); });
}

void TComandasF::CancelaComandaTimer(const NodoPlano& nodo, const QString& motivo) {
    try {
        CancelacionComanda cancelacion(ModuloDeDatos.ConexionBD, sesion_);
        // El plano pudo quedar viejo: la comanda se busca de nuevo por su nodo.
        const int64_t comanda = cancelacion.comandaDelNodo(nodo.id);
        if (comanda == 0) {
            error(QStringLiteral("El Nodo ya no tiene Comanda por cancelar: ") + nodo.clave);
        } else if (const ResultadoCancelacion r = cancelacion.cancela(comanda, motivo);
                   !r.cancelada) {
            error(r.mensaje);
        } else {
            mensajes_.muestra(QStringLiteral("Comanda Cancelada: %1").arg(comanda));
        }
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorRegistro));
        qWarning() << "Comandas, cancelación:" << e.what();
    }
    CargaAreasComidaTimer(false);
}

// ---------------------------------------------------------------------------------------------
// Salida
// ---------------------------------------------------------------------------------------------

void TComandasF::BotonAnteriorClick() {
    Sonidos::reproduce(Sonido::Regresar);
    switch (paginas_->currentIndex()) {
    case PaginaPlano:
        close();
        return;
    case PaginaMenu:
        if (!carrito_.empty() && !mensajes_.pregunta(QStringLiteral("¿Aún así desea salir?")))
            return;
        break;
    default:
        break;
    }
    carrito_.clear();
    guardados_.clear();
    abierta_.reset();
    muestraPagina(PaginaPlano);
    ejecutaConLeyenda(this, QStringLiteral("Cargando Nodos de Comida."),
                      [this] { CargaAreasComidaTimer(false); });
}

void TComandasF::closeEvent(QCloseEvent* evento) {
    if (!carrito_.empty() && !mensajes_.pregunta(QStringLiteral("¿Aún así desea salir?"))) {
        evento->ignore();
        return;
    }
    Sonidos::reproduce(Sonido::Salir);
    evento->accept();
}

} // namespace cajaplex
