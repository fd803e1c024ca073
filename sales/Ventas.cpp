#include "sales/Ventas.h"

#include <exception>
#include <iterator>
#include <map>

#include <QComboBox>
#include <QDateEdit>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QStackedWidget>
#include <QTableView>
#include <QVBoxLayout>
#include <QtDebug>

#include "datos/MensajesComunes.h"
#include "datos/ModuloDatos.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/ModeloTabla.h"
#include "pantallas/Sonidos.h"
#include "sales/Visor.h"

namespace cajaplex {

namespace {

constexpr int kAltoRenglon = 40;
const QString kTodos = QStringLiteral("TODOS LOS CAJEROS");

} // namespace

TVentasF::TVentasF(const Sesion& sesion, const QString& carpetaEstacion, QWidget* padre)
    : QWidget(padre), sesion_(sesion) {
    setObjectName(QStringLiteral("Ventas"));
    setWindowTitle(QStringLiteral("Ventas"));

    paginas_ = new QStackedWidget(this);
    paginas_->setObjectName(QStringLiteral("Paginas"));
    auto* lista = new QWidget(paginas_);
    lista->setObjectName(QStringLiteral("ListaVentas"));

    auto* titulo =
        creaEtiqueta(QStringLiteral("Ventas"), QStringLiteral("TituloVentas"), "titulo", lista);

    auto* filtros = new QFrame(lista);
    ponEstilo(filtros, "tarjeta");
    desde_ = creaCampoFecha(QStringLiteral("DesdeVentas"), QStringLiteral("Desde"), filtros);
    hasta_ = creaCampoFecha(QStringLiteral("HastaVentas"), QStringLiteral("Hasta"), filtros);
    auto* buscar = creaBoton(QStringLiteral("Buscar"), QStringLiteral("Buscar"),
                             QStringLiteral("BotonBuscar"), nullptr, filtros);
    buscar->setAccessibleName(QStringLiteral("Buscar Ventas del Periodo"));
    connect(buscar, &QPushButton::clicked, this, &TVentasF::BotonBuscarClick);
    folio_ = new QLineEdit(filtros);
    folio_->setObjectName(QStringLiteral("FolioVenta"));
    folio_->setAccessibleName(QStringLiteral("Folio"));
    folio_->setValidator(
        new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]{0,15}")), folio_));
    folio_->setInputMethodHints(Qt::ImhDigitsOnly);
    cliente_ = new QLineEdit(filtros);
    cliente_->setObjectName(QStringLiteral("ClienteVenta"));
    cliente_->setAccessibleName(QStringLiteral("Cliente"));
    cliente_->setPlaceholderText(QStringLiteral("Nombre del Cliente"));
    for (QLineEdit* e : {folio_, cliente_}) {
        e->setClearButtonEnabled(true);
        e->setMinimumHeight(AltoControl);
        connect(e, &QLineEdit::textChanged, this, &TVentasF::FiltroChange);
    }
    cajero_ = new QComboBox(filtros);
    cajero_->setObjectName(QStringLiteral("CajeroVenta"));
    cajero_->setAccessibleName(QStringLiteral("Cajero"));
    cajero_->setMinimumHeight(AltoControl);
    cajero_->addItem(kTodos, QVariant::fromValue<qint64>(0));
    connect(cajero_, &QComboBox::currentIndexChanged, this, &TVentasF::FiltroChange);

    auto* rejilla = new QGridLayout(filtros);
    int columna = 0;
    auto pon = [&](const QString& texto, QWidget* control) {
        QLabel* l = creaEtiqueta(texto, QStringLiteral("Etiqueta") + control->objectName(), nullptr,
                                 filtros);
        l->setBuddy(control);
        rejilla->addWidget(l, 0, columna);
        rejilla->addWidget(control, 1, columna++);
    };
    pon(QStringLiteral("Desde"), desde_);
    pon(QStringLiteral("Hasta"), hasta_);
    rejilla->addWidget(buscar, 1, columna++);
    pon(QStringLiteral("Folio"), folio_);
    pon(QStringLiteral("Cliente"), cliente_);
    pon(QStringLiteral("Cajero"), cajero_);
    rejilla->setColumnStretch(4, 2);
    rejilla->setColumnStretch(5, 1);

    // El modelo lee las ventas en su lugar: filtrar solo cambia la lista de índices.
    auto venta = [this](int fila) -> const VentaLista& {
        return periodo_.ventas[static_cast<size_t>(visibles_[static_cast<size_t>(fila)])];
    };
    modelo_ = new ModeloTabla(
        {{QStringLiteral("Folio"), [venta](int f) { return QString::number(venta(f).folio); },
          [venta](int f) { return QVariant::fromValue<qint64>(venta(f).folio); }, Qt::AlignRight},
         {QStringLiteral("Fecha"), [venta](int f) { return fechaLista(venta(f).fecha); }},
         {QStringLiteral("Cliente"), [venta](int f) { return venta(f).cliente; }},
         {QStringLiteral("Cajero"), [venta](int f) { return venta(f).cajero; }},
         {QStringLiteral("Condición"),
          [venta](int f) {
              return venta(f).credito ? QStringLiteral("Crédito") : QStringLiteral("Contado");
          }},
         ModeloTabla::numerica(
             QStringLiteral("Total"), [venta](int f) { return venta(f).total; }, importeVenta,
             true),
         {QStringLiteral("Formas de Pago"),
          [this, venta](int f) {
              const VentaLista& v = venta(f);
              QStringList partes;
              for (int k = v.primerPago; k < v.primerPago + v.numeroPagos; ++k) {
                  const PagoLista& p = periodo_.pagos[static_cast<size_t>(k)];
                  partes << periodo_.formas[static_cast<size_t>(p.forma)].descripcion +
                                QLatin1Char(' ') + importeVenta(p.importe);
              }
              return partes.join(QStringLiteral(", "));
          }},
         {QStringLiteral("Estado"),
          [venta](int f) { return venta(f).cancelada ? QStringLiteral("CANCELADA") : QString(); },
          [venta](int f) { return venta(f).cancelada; }}},
        this);
    modelo_->ponCancelado([venta](int f) { return venta(f).cancelada; });
    tabla_ = creaVistaTabla(QStringLiteral("TablaVentas"), modelo_, kAltoRenglon, lista);
    tabla_->setAccessibleName(QStringLiteral("Lista de Ventas"));
    // Anchos fijos: medir el contenido recorrería todas las ventas del periodo.
    QHeaderView* encabezado = tabla_->horizontalHeader();
    const int anchos[] = {90, 150, 0, 200, 100, 120, 300, 120};
    for (int c = 0; c < static_cast<int>(std::size(anchos)); ++c)
        if (anchos[c] > 0) encabezado->resizeSection(c, anchos[c]);
    encabezado->setSectionResizeMode(2, QHeaderView::Stretch);
    connect(tabla_, &QTableView::activated, this, &TVentasF::BotonAbrirClick);

    formas_ = new ModeloTabla(
        {{QStringLiteral("Forma de Pago"),
          [this](int f) { return totales_.formas[static_cast<size_t>(f)].descripcion; }},
         {QStringLiteral("Ventas"),
          [this](int f) { return QString::number(totales_.formas[static_cast<size_t>(f)].ventas); },
          {},
          Qt::AlignRight},
         ModeloTabla::numerica(
             QStringLiteral("Importe"),
             [this](int f) { return totales_.formas[static_cast<size_t>(f)].importe; },
             importeVenta, true)},
        this);
    tablaFormas_ = creaVistaTabla(QStringLiteral("TotalesFormas"), formas_, kAltoRenglon, lista);
    tablaFormas_->setAccessibleName(QStringLiteral("Totales por Forma de Pago"));
    tablaFormas_->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    tablaFormas_->setMaximumHeight(kAltoRenglon * 5);
    resumen_ = creaEtiqueta({}, QStringLiteral("ResumenVentas"), "pie", lista);
    resumen_->setAccessibleName(QStringLiteral("Resumen de Ventas"));
    resumen_->setWordWrap(true);

    abrir_ = creaBoton(QStringLiteral("CorteVenta"), QStringLiteral("Ver Venta"),
                       QStringLiteral("BotonAbrir"), "primario", lista);
    abrir_->setAccessibleName(QStringLiteral("Ver Venta"));
    abrir_->setMinimumWidth(300);
    abrir_->setEnabled(false);
    connect(abrir_, &QPushButton::clicked, this, &TVentasF::BotonAbrirClick);
    connect(tabla_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this] { abrir_->setEnabled(tabla_->currentIndex().isValid()); });

    auto* pie = new QHBoxLayout;
    pie->addWidget(tablaFormas_, 1);
    auto* derecha = new QVBoxLayout;
    derecha->addWidget(resumen_);
    derecha->addStretch(1);
    derecha->addWidget(abrir_);
    pie->addLayout(derecha);

    auto* capaLista = new QVBoxLayout(lista);
    capaLista->addWidget(titulo);
    capaLista->addWidget(filtros);
    capaLista->addWidget(tabla_, 1);
    capaLista->addLayout(pie);
    paginas_->addWidget(lista);

    visor_ = new TVisorF(sesion, carpetaEstacion, paginas_);
    paginas_->addWidget(visor_);
    connect(visor_, &TVisorF::regresa, this, [this] { paginas_->setCurrentIndex(0); });
    // Una cancelación cambia los totales: el periodo se vuelve a leer al regresar.
    connect(visor_, &TVisorF::cancelada, this, [this] {
        const QDate desde = desde_->date(), hasta = hasta_->date();
        CargaVentasTimer(desde, hasta);
    });

    auto* capa = new QVBoxLayout(this);
    capa->setContentsMargins(0, 0, 0, 0);
    capa->addWidget(paginas_);

    const QDate hoy = QDate::currentDate();
    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"),
                      [this, hoy] { CargaVentasTimer(hoy, hoy); });
}

void TVentasF::error(const QString& mensaje) {
    Sonidos::reproduce(Sonido::Error);
    mensajes_.muestra(mensaje);
}

void TVentasF::BotonBuscarClick() {
    const QDate desde = desde_->date(), hasta = hasta_->date();
    if (desde > hasta) {
        error(QStringLiteral("La Fecha Inicial debe ser anterior a la Fecha Final"));
        return;
    }
    Sonidos::reproduce(Sonido::Click);
    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"),
                      [this, desde, hasta] { CargaVentasTimer(desde, hasta); });
}

void TVentasF::CargaVentasTimer(const QDate& desde, const QDate& hasta) {
    VentasPeriodo leido;
    try {
        leido = consultaVentas(ModuloDeDatos.ConexionBD, sesion_, desde, hasta);
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorLectura) + QStringLiteral(": ") +
              QString::fromUtf8(e.what()));
        qWarning() << "Ventas, lista:" << e.what();
        return;
    }
    modelo_->cambia([this, &leido] {
        periodo_ = std::move(leido);
        visibles_.clear();
        return 0;
    });
    llenaCajeros();
    FiltroChange();
}

void TVentasF::llenaCajeros() {
    const qint64 elegido = cajero_->currentData().toLongLong();
    std::map<QString, int64_t> cajeros;
    int64_t ultimo = -1;
    for (const VentaLista& v : periodo_.ventas) {
        if (v.usuarioID == ultimo) continue;
        ultimo = v.usuarioID;
        cajeros.emplace(v.cajero, v.usuarioID);
    }
    const QSignalBlocker bloqueo(cajero_);
    cajero_->clear();
    cajero_->addItem(kTodos, QVariant::fromValue<qint64>(0));
    for (const auto& [nombre, id] : cajeros)
        cajero_->addItem(nombre, QVariant::fromValue<qint64>(id));
    const int indice = cajero_->findData(QVariant::fromValue<qint64>(elegido));
    cajero_->setCurrentIndex(indice < 0 ? 0 : indice);
}

void TVentasF::FiltroChange() {
    FiltroVentas filtro;
    filtro.folio = folio_->text().toLongLong();
    filtro.cliente = cliente_->text();
    filtro.cajero = cajero_->currentData().toLongLong();
    modelo_->reemplaza(visibles_, filtraVentas(periodo_, filtro));
    totales_ = totalizaVentas(periodo_, visibles_);
    formas_->cambia([this] { return static_cast<int>(totales_.formas.size()); });
    resumen_->setText(QStringLiteral("%1 ventas · %2 canceladas · Total %3")
                          .arg(totales_.ventas)
                          .arg(totales_.canceladas)
                          .arg(importeVenta(totales_.total)));
    abrir_->setEnabled(tabla_->currentIndex().isValid());
}

void TVentasF::BotonAbrirClick() {
    const QModelIndex actual = tabla_->currentIndex();
    if (!actual.isValid() || actual.row() >= static_cast<int>(visibles_.size())) return;
    Sonidos::reproduce(Sonido::Click);
    const int64_t folio =
        periodo_.ventas[static_cast<size_t>(visibles_[static_cast<size_t>(actual.row())])].folio;
    paginas_->setCurrentWidget(visor_);
    visor_->muestra(folio);
}

} // namespace cajaplex
