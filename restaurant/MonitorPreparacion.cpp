#include "restaurant/MonitorPreparacion.h"

#include <algorithm>
#include <exception>

#include <QButtonGroup>
#include <QCloseEvent>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeySequence>
#include <QLabel>
#include <QPushButton>
#include <QResizeEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QScroller>
#include <QShortcut>
#include <QStyle>
#include <QTimer>
#include <QVBoxLayout>
#include <QtDebug>

#include "catalog/ComposicionKits.h"
#include "datos/EscuchaEventos.h"
#include "datos/MensajesComunes.h"
#include "datos/ModuloDatos.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/Sonidos.h"
#include "restaurant/CuadriculaKiosko.h"

namespace cajaplex {
namespace {

const char* const kAjusteRenglones = "KioskoMonitorPreparacionRenglones";
const char* const kAjusteColumnas = "KioskoMonitorPreparacionColumnas";
const char* const kAjusteArea = "MonitorListaAreasPreparacionID";
const char* const kTitulo = "Monitor de Preparación";
const char* const kAvisoSinEventos = "Sin avisos del servicio: se revisa cada 30 s";
// Renglones y letra pensados para leerse a dos metros y tocarse con los dedos mojados.
const int kAltoRenglon = 64;
const int kLetraRenglon = 16;
const int kLetraEncabezado = 15;

// Colores de cocina: el renglón dice su estado también por su color.
const char* const kEstiloMonitor =
    "QPushButton[renglon=\"true\"] { text-align: left; padding: 4px 10px; }"
    "QPushButton[renglon=\"true\"][servida=\"1\"] { background-color: #FFF4CC; "
    "border: 2px solid #E0A800; }"
    "QPushButton[renglon=\"true\"][servida=\"2\"] { background-color: #E6F4EA; "
    "border-color: #9CCFAA; }";

void letra(QWidget* w, int puntos, bool negritas) {
    QFont f = w->font();
    f.setPointSize(puntos);
    f.setBold(negritas);
    w->setFont(f);
}

QLabel* etiqueta(const QString& texto, const QString& nombre, int puntos, bool negritas,
                 QWidget* padre) {
    QLabel* l = creaEtiqueta(texto, nombre, nullptr, padre);
    letra(l, puntos, negritas);
    l->setWordWrap(true);
    return l;
}

QString nombreTarjeta(const QString& clave) {
    return QStringLiteral("Comanda") + QString(clave).replace(QLatin1Char('|'), QLatin1Char('_'));
}

QString cantidadTexto(double cantidad) {
    return QString::number(cantidad, 'g', 10);
}

} // namespace

TMonitorPreparacionF::TMonitorPreparacionF(const Sesion& sesion, QWidget* padre)
    : QWidget(padre), sesion_(sesion), datos_(ModuloDeDatos.ConexionBD, sesion),
      reloj_([] { return QDateTime::currentDateTime(); }) {
    setObjectName(QStringLiteral("MonitorPreparacion"));
    setWindowTitle(QString::fromUtf8(kTitulo));
    setStyleSheet(QString::fromLatin1(kEstiloMonitor));
    tamano_.lee(estacion_, QString::fromLatin1(kAjusteRenglones),
                QString::fromLatin1(kAjusteColumnas));
    areaID_ = estacion_.valor(QString::fromLatin1(kAjusteArea), 0).toLongLong();

    // Barra: aviso de modo, pendientes, hora, recargar y pantalla completa. "Regresar" y el
    // título los pone el marco de la aplicación, que sigue visible en pantalla completa.
    auto* barra = new QFrame(this);
    ponEstilo(barra, "barra");
    modo_ = creaEtiqueta({}, QStringLiteral("ModoActualizacion"), "subtitulo", barra);
    modo_->setAccessibleName(QStringLiteral("Modo de Actualización"));
    pendientes_ =
        creaEtiqueta(QStringLiteral("Pendientes 0"), QStringLiteral("Pendientes"), "dato", barra);
    pendientes_->setAccessibleName(QStringLiteral("Comandas Pendientes"));
    hora_ = creaEtiqueta({}, QStringLiteral("Hora"), "dato", barra);
    hora_->setAccessibleName(QStringLiteral("Hora"));
    letra(pendientes_, 20, true);
    letra(hora_, 20, true);
    auto* recargar = creaBoton(QStringLiteral("Rotar"), QStringLiteral("Recargar"),
                               QStringLiteral("GrupoRecargarComandas"), nullptr, barra);
    completa_ = creaBoton(QStringLiteral("MonitorPreparacion"), QStringLiteral("Pantalla Completa"),
                          QStringLiteral("PantallaCompleta"), nullptr, barra);
    completa_->setToolTip(QStringLiteral("F11"));
    connect(recargar, &QPushButton::clicked, this,
            &TMonitorPreparacionF::GrupoRecargarComandasClick);
    connect(completa_, &QPushButton::clicked, this, &TMonitorPreparacionF::PantallaCompletaClick);
    auto* capaBarra = new QHBoxLayout(barra);
    capaBarra->addWidget(modo_, 1);
    capaBarra->addWidget(pendientes_);
    capaBarra->addSpacing(24);
    capaBarra->addWidget(hora_);
    capaBarra->addSpacing(24);
    capaBarra->addWidget(recargar);
    capaBarra->addWidget(completa_);
    auto* f11 = new QShortcut(QKeySequence(Qt::Key_F11), this);
    connect(f11, &QShortcut::activated, this, &TMonitorPreparacionF::PantallaCompletaClick);

    // Barra de segmentos con las áreas de preparación.
    barraAreas_ = new QWidget(this);
    barraAreas_->setObjectName(QStringLiteral("ListaAreasPreparacion"));
    barraAreas_->setAccessibleName(QStringLiteral("Áreas de Preparación"));
    capaAreas_ = new QHBoxLayout(barraAreas_);
    capaAreas_->setContentsMargins(0, 0, 0, 0);
    grupoAreas_ = new QButtonGroup(this);
    grupoAreas_->setExclusive(true);
    connect(grupoAreas_, &QButtonGroup::idClicked, this, [this](int id) { cambiaArea(id); });

    // Las tarjetas.
    desliza_ = new QScrollArea(this);
    desliza_->setObjectName(QStringLiteral("Comandas"));
    desliza_->setAccessibleName(QStringLiteral("Comandas por Preparar"));
    desliza_->setWidgetResizable(true);
    desliza_->setFrameShape(QFrame::NoFrame);
    desliza_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    contenido_ = new QWidget;
    cuadricula_ = new QGridLayout(contenido_);
    cuadricula_->setSpacing(10);
    cuadricula_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    desliza_->setWidget(contenido_);
    QScroller::grabGesture(desliza_->viewport(), QScroller::LeftMouseButtonGesture);
    vacio_ = etiqueta(QStringLiteral("Sin Comandas Pendientes"), QStringLiteral("SinComandas"), 18,
                      true, this);
    vacio_->setAlignment(Qt::AlignCenter);

    // Tamaño de la cuadrícula.
    auto* botonesCuadricula = creaBotonesCuadricula(this, [this](int dr, int dc) {
        cambiaCuadricula(tamano_.renglones + dr, tamano_.columnas + dc);
    });
    botonesCuadricula->insertStretch(0, 1);

    auto* capa = new QVBoxLayout(this);
    capa->setContentsMargins(0, 0, 0, 6);
    capa->addWidget(barra);
    auto* medio = new QVBoxLayout;
    medio->setContentsMargins(10, 4, 10, 0);
    medio->addWidget(barraAreas_);
    medio->addWidget(vacio_, 1);
    medio->addWidget(desliza_, 1);
    medio->addLayout(botonesCuadricula);
    capa->addLayout(medio, 1);

    minutero_ = new QTimer(this);
    minutero_->setObjectName(QStringLiteral("IncrementarMinutos"));
    minutero_->setInterval(IntervaloMinutos);
    connect(minutero_, &QTimer::timeout, this, &TMonitorPreparacionF::IncrementarMinutosTimer);
    nuevas_ = new QTimer(this);
    nuevas_->setObjectName(QStringLiteral("ComandasNuevas"));
    nuevas_->setInterval(IntervaloComandasNuevas);
    connect(nuevas_, &QTimer::timeout, this, &TMonitorPreparacionF::ComandasNuevasTimer);
    borrar_ = new QTimer(this);
    borrar_->setObjectName(QStringLiteral("BorrarComanda"));
    borrar_->setSingleShot(true);
    borrar_->setInterval(EsperaBorrar);
    connect(borrar_, &QTimer::timeout, this, &TMonitorPreparacionF::BorrarComandaTimer);
    recargaEventos_ = new QTimer(this);
    recargaEventos_->setSingleShot(true);
    recargaEventos_->setInterval(0);
    connect(recargaEventos_, &QTimer::timeout, this, &TMonitorPreparacionF::recargaPorEventos);

    // Mientras la escucha no diga que funciona, se revisa como si no la hubiera.
    escucha_ =
        new EscuchaEventos(ModuloDeDatos.ConexionBD,
                           {QStringLiteral("ComandaDetalle"), QStringLiteral("Comanda")}, this);
    connect(escucha_, &EscuchaEventos::cambiaron, recargaEventos_, qOverload<>(&QTimer::start));
    connect(escucha_, &EscuchaEventos::reiniciado, this, [this] {
        if (cargado_) recarga(true, true);
    });
    connect(escucha_, &EscuchaEventos::enVivo, this, [this] { ponModoEnVivo(true); });
    connect(escucha_, &EscuchaEventos::sinEventos, this, [this] { ponModoEnVivo(false); });
    nuevas_->start();
    minutero_->start();
    escucha_->inicia();
    pintaTitulo();

    ejecutaConLeyenda(this, QStringLiteral("Cargando Comandas."), [this] { CargaInicialTimer(); });
}

TMonitorPreparacionF::~TMonitorPreparacionF() = default;

void TMonitorPreparacionF::ponReloj(Reloj reloj) {
    reloj_ = std::move(reloj);
    pintaTitulo();
}

void TMonitorPreparacionF::error(const QString& mensaje) {
    Sonidos::reproduce(Sonido::Error);
    mensajes_.muestra(mensaje);
}

void TMonitorPreparacionF::CargaInicialTimer() {
    cargaAreas();
    recarga(true, false);
}

void TMonitorPreparacionF::cargaAreas() {
    std::vector<AreaComida> areas;
    try {
        areas = datos_.areasPreparacion();
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Monitor de Preparación, áreas:" << e.what();
        return;
    }
    for (QAbstractButton* b : grupoAreas_->buttons()) {
        grupoAreas_->removeButton(b);
        delete b;
    }
    areas.insert(areas.begin(), AreaComida{0, 0, QStringLiteral("Todas")});
    if (std::none_of(areas.begin(), areas.end(),
                     [this](const AreaComida& a) { return a.id == areaID_; }))
        areaID_ = 0;
    for (const AreaComida& a : areas) {
        auto* boton = new QPushButton(a.area, barraAreas_);
        boton->setObjectName(QStringLiteral("Area") + QString::number(a.id));
        boton->setCheckable(true);
        boton->setMinimumHeight(AltoControl);
        boton->setChecked(a.id == areaID_);
        if (a.id == areaID_) ponEstilo(boton, "primario");
        grupoAreas_->addButton(boton, static_cast<int>(a.id));
        capaAreas_->addWidget(boton);
    }
    capaAreas_->addStretch(1);
}

void TMonitorPreparacionF::cambiaArea(int64_t areaID) {
    if (areaID == areaID_) return;
    Sonidos::reproduce(Sonido::Click);
    for (QAbstractButton* b : grupoAreas_->buttons())
        ponEstilo(b, grupoAreas_->id(b) == areaID ? "primario" : "");
    areaID_ = areaID;
    estacion_.ponValor(QString::fromLatin1(kAjusteArea), QVariant::fromValue<qlonglong>(areaID));
    if (!estacion_.guarda()) qWarning() << "Monitor de Preparación: no se guardó el área";
    ejecutaConLeyenda(this, QStringLiteral("Cargando Comandas."), [this] { recarga(true, false); });
}

// ---------------------------------------------------------------------------------------------
// Lectura y tarjetas
// ---------------------------------------------------------------------------------------------

void TMonitorPreparacionF::recarga(bool todo, bool silencioso) {
    std::vector<RenglonPreparacion> filas;
    try {
        filas = datos_.comandasActivas(areaID_);
    } catch (const std::exception& e) {
        // Lo que corre solo (eventos, revisión periódica) no llena la cocina de mensajes.
        if (!silencioso) error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Monitor de Preparación, comandas:" << e.what();
        return;
    }
    if (todo) {
        while (!vistas_.empty())
            quitaVista(vistas_.begin()->first);
        tarjetas_.limpia();
        porBorrar_.clear();
    }
    const bool avisar = cargado_ && !todo;
    const TarjetasPreparacion::Cambios cambios = tarjetas_.funde(filas, reloj_());
    for (const QString& clave : cambios.quitadas) {
        quitaVista(clave);
        porBorrar_.erase(clave);
    }
    for (const QString& clave : cambios.nuevas)
        creaVista(*tarjetas_.busca(clave));
    for (const QString& clave : cambios.cambiadas)
        pintaRenglones(*tarjetas_.busca(clave), vistas_.at(clave));
    if (todo || !cambios.nuevas.empty() || !cambios.quitadas.empty()) acomodaTarjetas();
    for (const TarjetaPreparacion& t : tarjetas_.tarjetas())
        pintaEncabezado(t, vistas_.at(t.clave()));
    cargado_ = true;
    pintaTitulo();
    if (avisar && cambios.renglonesNuevos) Sonidos::reproduce(Sonido::ComandaNueva);
}

void TMonitorPreparacionF::recargaPorEventos() {
    if (cargado_) recarga(false, true);
}

void TMonitorPreparacionF::creaVista(const TarjetaPreparacion& t) {
    VistaTarjeta v;
    v.marco = new QFrame(contenido_);
    v.marco->setObjectName(nombreTarjeta(t.clave()));
    v.marco->setAccessibleName(
        QStringLiteral("Comanda %1 Sección %2 %3").arg(t.comanda).arg(t.seccion).arg(t.nodo));
    ponEstilo(v.marco, "tarjeta");
    auto* capa = new QVBoxLayout(v.marco);
    capa->setContentsMargins(0, 0, 0, 0);
    capa->setSpacing(6);

    v.encabezado = new QFrame(v.marco);
    v.encabezado->setObjectName(QStringLiteral("EncabezadoComanda"));
    auto* capaEncabezado = new QGridLayout(v.encabezado);
    capaEncabezado->setContentsMargins(10, 6, 10, 6);
    capaEncabezado->setVerticalSpacing(0);
    auto* comanda =
        etiqueta(QStringLiteral("Comanda %1  %2").arg(t.comanda).arg(t.nodo),
                 QStringLiteral("TituloComanda"), kLetraEncabezado + 2, true, v.encabezado);
    v.minutos =
        etiqueta({}, QStringLiteral("MinutosComanda"), kLetraEncabezado + 2, true, v.encabezado);
    v.minutos->setWordWrap(false);
    auto* mesero =
        etiqueta(t.mesero, QStringLiteral("MeseroComanda"), kLetraEncabezado, false, v.encabezado);
    auto* hora = etiqueta(t.captura.toString(QStringLiteral("hh:mm")),
                          QStringLiteral("HoraComanda"), kLetraEncabezado, false, v.encabezado);
    hora->setWordWrap(false);
    capaEncabezado->addWidget(comanda, 0, 0);
    capaEncabezado->addWidget(v.minutos, 0, 1, Qt::AlignRight);
    capaEncabezado->addWidget(mesero, 1, 0);
    capaEncabezado->addWidget(hora, 1, 1, Qt::AlignRight);
    capaEncabezado->setColumnStretch(0, 1);
    capa->addWidget(v.encabezado);

    v.cuerpo = new QVBoxLayout;
    v.cuerpo->setContentsMargins(8, 0, 8, 0);
    v.cuerpo->setSpacing(6);
    capa->addLayout(v.cuerpo);
    capa->addStretch(1);
    v.pie = creaEtiqueta({}, QStringLiteral("PieComanda"), "pie", v.marco);
    capa->addWidget(v.pie);

    VistaTarjeta& guardada = vistas_[t.clave()] = v;
    pintaRenglones(t, guardada);
    pintaEncabezado(t, guardada);
}

void TMonitorPreparacionF::pintaEncabezado(const TarjetaPreparacion& t, VistaTarjeta& v) {
    const ColorEspera color = colorEspera(t.minutos);
    v.encabezado->setStyleSheet(
        QStringLiteral("QFrame#EncabezadoComanda { background-color: %1; border-radius: 8px; } "
                       "QFrame#EncabezadoComanda QLabel { color: %2; background: transparent; }")
            .arg(QString::fromLatin1(color.fondo), QString::fromLatin1(color.texto)));
    v.minutos->setText(QStringLiteral("%1 min").arg(t.minutos));
}

void TMonitorPreparacionF::pintaRenglones(const TarjetaPreparacion& t, VistaTarjeta& v) {
    // Se sacan del cuerpo sin destruir los renglones que siguen: el dedo que está tocando uno no
    // pierde su toque porque otra estación cambió algo.
    while (QLayoutItem* item = v.cuerpo->takeAt(0))
        delete item;
    std::set<int> siguen;
    std::set<int> comensalesVistos;
    int comensal = -1;
    const QString clave = t.clave();
    for (const RenglonPreparacion& r : t.renglones) {
        if (r.comensal != comensal) {
            comensal = r.comensal;
            QLabel*& titulo = v.comensales[comensal];
            if (!titulo) {
                titulo = etiqueta(QStringLiteral("Comensal %1").arg(comensal),
                                  QStringLiteral("Comensal%1").arg(comensal), 12, true, v.marco);
                titulo->setStyleSheet(QStringLiteral("color: #616E7C;"));
            }
            v.cuerpo->addWidget(titulo);
            comensalesVistos.insert(comensal);
        }
        QWidget*& fila = v.renglones[r.posicion];
        if (!fila) {
            fila = new QWidget(v.marco);
            // El botón de ingredientes de un paquete va debajo del renglón, no a su lado: en una
            // tarjeta angosta le quitaría el ancho al nombre y al estado.
            auto* capaFila = new QVBoxLayout(fila);
            capaFila->setContentsMargins(0, 0, 0, 0);
            capaFila->setSpacing(4);
            auto* boton = new QPushButton(fila);
            boton->setObjectName(QStringLiteral("Renglon%1").arg(r.posicion));
            boton->setProperty("renglon", true);
            boton->setMinimumHeight(kAltoRenglon);
            boton->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
            auto* capaBoton = new QHBoxLayout(boton);
            capaBoton->setContentsMargins(10, 4, 10, 4);
            auto* texto = etiqueta({}, QStringLiteral("TextoRenglon"), kLetraRenglon, true, boton);
            texto->setAttribute(Qt::WA_TransparentForMouseEvents);
            auto* estado =
                etiqueta({}, QStringLiteral("EstadoRenglon"), kLetraRenglon - 3, true, boton);
            estado->setWordWrap(false);
            estado->setAttribute(Qt::WA_TransparentForMouseEvents);
            capaBoton->addWidget(texto, 1);
            capaBoton->addWidget(estado, 0, Qt::AlignRight | Qt::AlignVCenter);
            const int posicion = r.posicion;
            connect(boton, &QPushButton::clicked, this,
                    [this, clave, posicion] { RenglonClick(clave, posicion); });
            capaFila->addWidget(boton);
            if (r.esPaquete) {
                auto* ingredientes = new QPushButton(QStringLiteral("Ver Ingredientes"), fila);
                ingredientes->setObjectName(QStringLiteral("MostrarIngredientes"));
                ingredientes->setAccessibleName(QStringLiteral("Mostrar Ingredientes"));
                ingredientes->setCheckable(true);
                ingredientes->setMinimumSize(kAltoRenglon, kAltoRenglon);
                connect(ingredientes, &QPushButton::clicked, this,
                        [this, clave, posicion] { MostrarIngredientesClick(clave, posicion); });
                capaFila->addWidget(ingredientes, 0, Qt::AlignRight);
            }
        }
        pintaRenglon(r, fila);
        v.cuerpo->addWidget(fila);
        if (auto it = v.ingredientes.find(r.posicion); it != v.ingredientes.end())
            v.cuerpo->addWidget(it->second);
        siguen.insert(r.posicion);
    }
    for (auto it = v.renglones.begin(); it != v.renglones.end();) {
        if (siguen.count(it->first)) {
            ++it;
            continue;
        }
        if (auto ing = v.ingredientes.find(it->first); ing != v.ingredientes.end()) {
            ing->second->deleteLater();
            v.ingredientes.erase(ing);
        }
        it->second->deleteLater();
        it = v.renglones.erase(it);
    }
    for (auto it = v.comensales.begin(); it != v.comensales.end();) {
        if (comensalesVistos.count(it->first)) {
            ++it;
            continue;
        }
        it->second->deleteLater();
        it = v.comensales.erase(it);
    }
    v.pie->setText(t.pie());
    ajustaAlto(v);
    // Otra vez ya pulidos los controles nuevos (su letra final cambia lo que miden).
    QTimer::singleShot(0, v.marco, [this, clave] {
        if (auto it = vistas_.find(clave); it != vistas_.end()) ajustaAlto(it->second);
    });
}

void TMonitorPreparacionF::ajustaAlto(VistaTarjeta& v) {
    // Los textos que se parten en varios renglones no se recortan: cada renglón y la tarjeta
    // toman el alto que su texto necesita con el ancho de la columna.
    const int ancho = v.marco->maximumWidth();
    if (ancho >= QWIDGETSIZE_MAX) return;
    const QMargins cuerpo = v.cuerpo->contentsMargins();
    for (auto& [posicion, fila] : v.renglones) {
        auto* boton = fila->findChild<QPushButton*>(QStringLiteral("Renglon%1").arg(posicion));
        auto* texto = boton->findChild<QLabel*>(QStringLiteral("TextoRenglon"));
        auto* estado = boton->findChild<QLabel*>(QStringLiteral("EstadoRenglon"));
        const QMargins margenes = boton->layout()->contentsMargins();
        int disponible = ancho - cuerpo.left() - cuerpo.right() - margenes.left() -
                         margenes.right() - estado->sizeHint().width() -
                         boton->layout()->spacing() - 4;
        if (auto* ver = fila->findChild<QPushButton*>(QStringLiteral("MostrarIngredientes")))
            disponible -=
                std::max(ver->minimumWidth(), ver->sizeHint().width()) + fila->layout()->spacing();
        boton->setMinimumHeight(std::max(kAltoRenglon, texto->heightForWidth(disponible) +
                                                           margenes.top() + margenes.bottom() + 4));
    }
    v.marco->setMinimumHeight(
        std::max(altoTarjeta_, v.marco->layout()->totalHeightForWidth(ancho)));
}

void TMonitorPreparacionF::pintaRenglon(const RenglonPreparacion& r, QWidget* fila) {
    auto* boton = fila->findChild<QPushButton*>(QStringLiteral("Renglon%1").arg(r.posicion));
    QString texto = QStringLiteral("%1 x %2").arg(cantidadTexto(r.cantidad), r.producto);
    if (r.extra) texto += QStringLiteral(" (Extra)");
    if (!r.nota.isEmpty()) texto += QStringLiteral("\nNota: ") + r.nota;
    boton->findChild<QLabel*>(QStringLiteral("TextoRenglon"))->setText(texto);
    boton->findChild<QLabel*>(QStringLiteral("EstadoRenglon"))->setText(textoEstado(r.servida));
    boton->setAccessibleName(texto + QLatin1Char(' ') + textoEstado(r.servida));
    if (boton->property("servida").toInt() != r.servida || !boton->property("servida").isValid()) {
        boton->setProperty("servida", r.servida);
        boton->style()->unpolish(boton);
        boton->style()->polish(boton);
    }
    boton->setEnabled(r.servida < Servida);
}

void TMonitorPreparacionF::quitaVista(const QString& clave) {
    auto it = vistas_.find(clave);
    if (it == vistas_.end()) return;
    cuadricula_->removeWidget(it->second.marco);
    it->second.marco->hide();
    it->second.marco->deleteLater();
    vistas_.erase(it);
}

void TMonitorPreparacionF::acomodaTarjetas() {
    while (QLayoutItem* item = cuadricula_->takeAt(0))
        delete item;
    const QSize area = desliza_->viewport()->size();
    const int espacio = cuadricula_->spacing();
    const QMargins margenes = cuadricula_->contentsMargins();
    const int ancho = std::max(220, (area.width() - margenes.left() - margenes.right() -
                                     espacio * (tamano_.columnas - 1)) /
                                        tamano_.columnas);
    const int alto = std::max(160, (area.height() - margenes.top() - margenes.bottom() -
                                    espacio * (tamano_.renglones - 1)) /
                                       tamano_.renglones);
    altoTarjeta_ = alto;
    int i = 0;
    for (const TarjetaPreparacion& t : tarjetas_.tarjetas()) {
        VistaTarjeta& v = vistas_.at(t.clave());
        QFrame* marco = v.marco;
        marco->setFixedWidth(ancho);
        ajustaAlto(v);
        cuadricula_->addWidget(marco, i / tamano_.columnas, i % tamano_.columnas, Qt::AlignTop);
        marco->show();
        ++i;
    }
    const bool hay = i > 0;
    desliza_->setVisible(hay);
    vacio_->setVisible(!hay);
}

void TMonitorPreparacionF::pintaTitulo() {
    pendientes_->setText(QStringLiteral("Pendientes %1").arg(tarjetas_.tarjetas().size()));
    hora_->setText(reloj_().toString(QStringLiteral("hh:mm")));
}

void TMonitorPreparacionF::ponModoEnVivo(bool enVivo) {
    // En vivo no se pregunta cada 30 s; sin eventos sí, y se dice con discreción.
    if (enVivo) {
        nuevas_->stop();
        modo_->clear();
        setWindowTitle(QString::fromUtf8(kTitulo));
        // Lo que pasó mientras no se escuchaba llega como cambio.
        return;
    }
    if (!nuevas_->isActive()) nuevas_->start();
    modo_->setText(QString::fromUtf8(kAvisoSinEventos));
    setWindowTitle(QString::fromUtf8(kTitulo) + QStringLiteral(" - ") +
                   QString::fromUtf8(kAvisoSinEventos));
}

// ---------------------------------------------------------------------------------------------
// Temporizadores y botones
// ---------------------------------------------------------------------------------------------

void TMonitorPreparacionF::IncrementarMinutosTimer() {
    tarjetas_.incrementaMinutos();
    for (const TarjetaPreparacion& t : tarjetas_.tarjetas())
        pintaEncabezado(t, vistas_.at(t.clave()));
    pintaTitulo();
}

void TMonitorPreparacionF::ComandasNuevasTimer() {
    if (cargado_) recarga(false, true);
}

void TMonitorPreparacionF::GrupoRecargarComandasClick() {
    Sonidos::reproduce(Sonido::Recargar);
    ejecutaConLeyenda(this, QStringLiteral("Cargando Comandas."), [this] {
        if (!cargado_) cargaAreas();
        recarga(true, false);
    });
}

void TMonitorPreparacionF::RenglonClick(const QString& clave, int posicion) {
    const TarjetaPreparacion* t = tarjetas_.busca(clave);
    if (!t) return;
    auto r =
        std::find_if(t->renglones.begin(), t->renglones.end(),
                     [posicion](const RenglonPreparacion& x) { return x.posicion == posicion; });
    if (r == t->renglones.end() || r->servida >= Servida) return;
    Sonidos::reproduce(Sonido::Click);
    RenglonPreparacion renglon = *r;
    try {
        renglon.servida = datos_.avanza(renglon);
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorRegistro));
        qWarning() << "Monitor de Preparación, avance del renglón:" << e.what();
        return;
    }
    TarjetaPreparacion* cambiada =
        tarjetas_.ponEstado(renglon.comanda, renglon.seccion, renglon.posicion, renglon.servida);
    VistaTarjeta& v = vistas_.at(clave);
    pintaRenglon(renglon, v.renglones.at(posicion));
    ajustaAlto(v);
    if (cambiada && cambiada->todoServido()) {
        Sonidos::reproduce(Sonido::FinalizarComanda);
        porBorrar_.insert(clave);
        borrar_->start();
    }
}

void TMonitorPreparacionF::BorrarComandaTimer() {
    bool quitada = false;
    for (const QString& clave : porBorrar_)
        if (tarjetas_.quitaServida(clave)) {
            quitaVista(clave);
            quitada = true;
        }
    porBorrar_.clear();
    if (quitada) acomodaTarjetas();
    pintaTitulo();
}

void TMonitorPreparacionF::MostrarIngredientesClick(const QString& clave, int posicion) {
    auto v = vistas_.find(clave);
    if (v == vistas_.end()) return;
    Sonidos::reproduce(Sonido::Click);
    if (auto it = v->second.ingredientes.find(posicion); it != v->second.ingredientes.end()) {
        it->second->deleteLater();
        v->second.ingredientes.erase(it);
        return;
    }
    ejecutaConLeyenda(this, QStringLiteral("Consultando Ingredientes."),
                      [this, clave, posicion] { ConsultaIngredientesTimer(clave, posicion); });
}

void TMonitorPreparacionF::ConsultaIngredientesTimer(const QString& clave, int posicion) {
    const TarjetaPreparacion* t = tarjetas_.busca(clave);
    auto v = vistas_.find(clave);
    if (!t || v == vistas_.end()) return;
    auto r =
        std::find_if(t->renglones.begin(), t->renglones.end(),
                     [posicion](const RenglonPreparacion& x) { return x.posicion == posicion; });
    if (r == t->renglones.end()) return;
    std::vector<ComponenteKit> componentes;
    try {
        componentes = CatalogoKits(ModuloDeDatos.ConexionBD, sesion_).componentes(r->productoID);
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Monitor de Preparación, ingredientes:" << e.what();
        return;
    }
    QStringList lineas;
    for (const ComponenteKit& c : componentes)
        lineas
            << QStringLiteral("• %1 x %2").arg(cantidadTexto(c.Cantidad * r->cantidad), c.Producto);
    auto* lista = etiqueta(lineas.join(QLatin1Char('\n')), QStringLiteral("Ingredientes"),
                           kLetraRenglon - 2, false, v->second.marco);
    lista->setContentsMargins(24, 0, 0, 0);
    v->second.ingredientes[posicion] = lista;
    pintaRenglones(*t, v->second);
}

void TMonitorPreparacionF::PantallaCompletaClick() {
    Sonidos::reproduce(Sonido::Click);
    QWidget* ventana = window();
    if (ventana->isFullScreen()) {
        saleDePantallaCompleta();
        return;
    }
    estadoVentana_ = ventana->windowState();
    ventana->showFullScreen();
    completa_->setText(QStringLiteral("Salir de Pantalla Completa"));
}

void TMonitorPreparacionF::saleDePantallaCompleta() {
    QWidget* ventana = window();
    if (!ventana->isFullScreen()) return;
    // Vuelve como estaba (la ventana principal suele estar maximizada).
    ventana->setWindowState(estadoVentana_ & ~Qt::WindowFullScreen);
    completa_->setText(QStringLiteral("Pantalla Completa"));
}

void TMonitorPreparacionF::cambiaCuadricula(int renglones, int columnas) {
    Sonidos::reproduce(Sonido::Click);
    if (!tamano_.cambia(estacion_, QString::fromLatin1(kAjusteRenglones),
                        QString::fromLatin1(kAjusteColumnas), renglones, columnas))
        qWarning() << "Monitor de Preparación: no se guardó la cuadrícula";
    acomodaTarjetas();
}

void TMonitorPreparacionF::resizeEvent(QResizeEvent* evento) {
    QWidget::resizeEvent(evento);
    // Tras el reacomodo del diseño, con el nuevo tamaño del área de tarjetas.
    QTimer::singleShot(0, this, [this] { acomodaTarjetas(); });
}

void TMonitorPreparacionF::closeEvent(QCloseEvent* evento) {
    // Quien vuelva al menú no se queda sin los bordes de la ventana.
    saleDePantallaCompleta();
    Sonidos::reproduce(Sonido::Salir);
    evento->accept();
}

} // namespace cajaplex
