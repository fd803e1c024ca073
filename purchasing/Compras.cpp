#include "purchasing/Compras.h"

#include <exception>
#include <iterator>

#include <QComboBox>
#include <QDateEdit>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QStackedWidget>
#include <QTabWidget>
#include <QTableView>
#include <QVBoxLayout>
#include <QtDebug>

#include "catalog/CatalogoProductos.h"
#include "datos/Consulta.h"
#include "datos/MensajesComunes.h"
#include "datos/ModuloDatos.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/ModeloTabla.h"
#include "pantallas/Sonidos.h"
#include "pantallas/TarjetaDatos.h"
#include "purchasing/CancelacionCompra.h"
#include "purchasing/ImpresionCompra.h"

namespace cajaplex {

namespace {

constexpr int kAltoRenglon = 40;
const QString kTodos = QStringLiteral("TODOS LOS PROVEEDORES");

const char* const SqlProveedores =
    "Select id, nombre From Proveedores Where empresaID = :EmpresaID Order by nombre";

// Lo que la lista dice de cada documento además de su total.
QString estadoDe(TipoCompra tipo, const CompraListada& c) {
    if (c.cancelada) return QStringLiteral("CANCELADO");
    switch (tipo) {
    case TipoCompra::OrdenCompra:
        return c.recibida ? QStringLiteral("Recibida") : QStringLiteral("Por Recibir");
    case TipoCompra::Recepcion:
        return c.plazo > 0 ? QStringLiteral("Crédito a %1 días").arg(c.plazo)
                           : QStringLiteral("Contado");
    case TipoCompra::Devolucion:
        return QStringLiteral("Vigente");
    case TipoCompra::Ajuste:
        return c.entrada ? QStringLiteral("Entrada") : QStringLiteral("Salida");
    }
    return {};
}

QString cantidad(double valor) {
    return textoCantidad(valor);
}

QString porCiento(double valor) {
    return QLocale::c().toString(valor, 'f', 2) + QLatin1Char('%');
}

QString nombreDocumento(TipoCompra tipo, int64_t folio) {
    return QString::fromUtf8(datosTipo(tipo).documento) + QLatin1Char(' ') + QString::number(folio);
}

} // namespace

TComprasF::TComprasF(const Sesion& sesion, const QString& carpetaEstacion, QWidget* padre)
    : QWidget(padre), sesion_(sesion), carpetaEstacion_(carpetaEstacion) {
    setObjectName(QStringLiteral("DocumentosCompra"));
    setWindowTitle(QStringLiteral("Documentos de Compra"));

    paginas_ = new QStackedWidget(this);
    paginas_->setObjectName(QStringLiteral("Paginas"));

    // ----- Lista -----
    auto* lista = new QWidget(paginas_);
    lista->setObjectName(QStringLiteral("ListaCompras"));
    auto* tituloLista = creaEtiqueta(QStringLiteral("Documentos de Compra"),
                                     QStringLiteral("TituloCompras"), "titulo", lista);

    auto* filtros = new QFrame(lista);
    ponEstilo(filtros, "tarjeta");
    tipo_ = new QComboBox(filtros);
    tipo_->setObjectName(QStringLiteral("TipoDocumento"));
    for (int i = 0; i < 4; ++i)
        tipo_->addItem(QString::fromUtf8(datosTipo(static_cast<TipoCompra>(i)).plural));
    tipo_->setCurrentIndex(static_cast<int>(TipoCompra::Recepcion));
    desde_ = creaCampoFecha(QStringLiteral("DesdeCompras"), QStringLiteral("Desde"), filtros);
    hasta_ = creaCampoFecha(QStringLiteral("HastaCompras"), QStringLiteral("Hasta"), filtros);
    proveedor_ = new QComboBox(filtros);
    proveedor_->setObjectName(QStringLiteral("ProveedorCompras"));
    proveedor_->addItem(kTodos, QVariant::fromValue<qint64>(0));
    folio_ = new QLineEdit(filtros);
    folio_->setObjectName(QStringLiteral("FolioCompra"));
    folio_->setPlaceholderText(QStringLiteral("Cualquier fecha"));
    folio_->setValidator(
        new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]{0,15}")), folio_));
    folio_->setInputMethodHints(Qt::ImhDigitsOnly);
    folio_->setClearButtonEnabled(true);
    folio_->setMinimumWidth(170);
    auto* buscar = creaBoton(QStringLiteral("Buscar"), QStringLiteral("Buscar"),
                             QStringLiteral("BotonBuscar"), "primario", filtros);
    buscar->setAccessibleName(QStringLiteral("Buscar Documentos"));

    auto* rejilla = new QGridLayout(filtros);
    int columna = 0;
    auto pon = [&](const QString& texto, QWidget* control) {
        control->setAccessibleName(texto);
        control->setMinimumHeight(AltoControl);
        QLabel* l = creaEtiqueta(texto, QStringLiteral("Etiqueta") + control->objectName(), nullptr,
                                 filtros);
        l->setBuddy(control);
        rejilla->addWidget(l, 0, columna);
        rejilla->addWidget(control, 1, columna++);
    };
    pon(QStringLiteral("Tipo de Documento"), tipo_);
    pon(QStringLiteral("Desde"), desde_);
    pon(QStringLiteral("Hasta"), hasta_);
    pon(QStringLiteral("Proveedor"), proveedor_);
    pon(QStringLiteral("Folio"), folio_);
    rejilla->addWidget(buscar, 1, columna);
    rejilla->setColumnStretch(0, 2);
    rejilla->setColumnStretch(3, 3);
    rejilla->setColumnStretch(4, 1);

    // El modelo lee los documentos en su lugar.
    auto compra = [this](int f) -> const CompraListada& { return compras_[size_t(f)]; };
    modelo_ = new ModeloTabla(
        {{QStringLiteral("Folio"), [compra](int f) { return QString::number(compra(f).folio); },
          [compra](int f) { return QVariant::fromValue<qint64>(compra(f).folio); }, Qt::AlignRight},
         {QStringLiteral("Fecha"), [compra](int f) { return fechaLista(compra(f).fecha); }},
         {QStringLiteral("Proveedor"), [compra](int f) { return compra(f).proveedor; }},
         {QStringLiteral("Elaboró"), [compra](int f) { return compra(f).usuario; }},
         ModeloTabla::numerica(
             QStringLiteral("Total"), [compra](int f) { return compra(f).total; }, importeVenta,
             true),
         {QStringLiteral("Estado"),
          [this, compra](int f) { return estadoDe(leido_.tipo, compra(f)); },
          [compra](int f) { return compra(f).cancelada; }}},
        this);
    modelo_->ponCancelado([compra](int f) { return compra(f).cancelada; });
    tabla_ = creaVistaTabla(QStringLiteral("TablaCompras"), modelo_, kAltoRenglon, lista);
    tabla_->setAccessibleName(QStringLiteral("Lista de Documentos de Compra"));
    // Anchos fijos: medir el contenido recorrería todos los documentos del periodo.
    QHeaderView* encabezado = tabla_->horizontalHeader();
    const int anchos[] = {90, 160, 0, 220, 140, 170};
    for (int c = 0; c < static_cast<int>(std::size(anchos)); ++c)
        if (anchos[c] > 0) encabezado->resizeSection(c, anchos[c]);
    encabezado->setSectionResizeMode(2, QHeaderView::Stretch);

    resumen_ = creaEtiqueta({}, QStringLiteral("ResumenCompras"), "pie", lista);
    resumen_->setAccessibleName(QStringLiteral("Resumen de Documentos"));
    abrir_ = creaBoton(QStringLiteral("Compras"), QStringLiteral("Ver Documento"),
                       QStringLiteral("BotonAbrir"), "primario", lista);
    abrir_->setAccessibleName(QStringLiteral("Ver Documento"));
    abrir_->setMinimumWidth(260);
    abrir_->setEnabled(false);
    auto* pie = new QHBoxLayout;
    pie->addWidget(resumen_, 1);
    pie->addWidget(abrir_);

    auto* capaLista = new QVBoxLayout(lista);
    capaLista->addWidget(tituloLista);
    capaLista->addWidget(filtros);
    capaLista->addWidget(tabla_, 1);
    capaLista->addLayout(pie);
    paginas_->addWidget(lista);

    // ----- Documento -----
    auto* documento = new QWidget(paginas_);
    documento->setObjectName(QStringLiteral("DocumentoCompra"));
    titulo_ = creaEtiqueta({}, QStringLiteral("TituloDocumento"), "titulo", documento);
    estado_ = creaEtiqueta({}, QStringLiteral("EstadoDocumento"), "dato", documento);
    estado_->setAccessibleName(QStringLiteral("Estado del Documento"));
    auto* arriba = new QHBoxLayout;
    arriba->addWidget(titulo_, 1);
    arriba->addWidget(estado_);

    auto* tarjeta = new TarjetaDatos(documento);
    auto dato = [tarjeta](const QString& texto, const QString& nombre) {
        return tarjeta->agrega(texto, nombre);
    };

    proveedorDoc_ = dato(QStringLiteral("Proveedor"), QStringLiteral("ProveedorDocumento"));
    fecha_ = dato(QStringLiteral("Fecha"), QStringLiteral("FechaDocumento"));
    usuario_ = dato(QStringLiteral("Elaboró"), QStringLiteral("UsuarioDocumento"));
    condicion_ = dato(QStringLiteral("Condición"), QStringLiteral("CondicionDocumento"));
    importes_ = dato(QStringLiteral("Importes"), QStringLiteral("ImportesDocumento"));
    total_ = dato(QStringLiteral("Total"), QStringLiteral("TotalDocumento"));
    ponEstilo(total_, "dato");

    auto renglon = [this](int f) -> const RenglonCompra& { return compra_->renglones[size_t(f)]; };
    renglones_ = new ModeloTabla(
        {{QStringLiteral("Clave"), [renglon](int f) { return renglon(f).clave; }},
         {QStringLiteral("Artículo"), [renglon](int f) { return renglon(f).producto; }},
         {QStringLiteral("Unidad"), [renglon](int f) { return renglon(f).unidad; }},
         ModeloTabla::numerica(
             QStringLiteral("Cantidad"), [renglon](int f) { return renglon(f).cantidad; },
             cantidad),
         ModeloTabla::numerica(
             QStringLiteral("Costo"), [renglon](int f) { return renglon(f).costo; }, importeVenta),
         ModeloTabla::numerica(
             QStringLiteral("Descuento"), [renglon](int f) { return renglon(f).descuento; },
             porCiento),
         ModeloTabla::numerica(
             QStringLiteral("IVA"), [renglon](int f) { return renglon(f).porcentajeImpuesto; },
             porCiento),
         ModeloTabla::numerica(
             QStringLiteral("Importe"), [renglon](int f) { return renglon(f).importe; },
             importeVenta, true)},
        this);
    auto evento = [this](int f) -> const BitacoraVisor& { return compra_->bitacora[size_t(f)]; };
    bitacora_ = new ModeloTabla(
        {{QStringLiteral("Fecha"), [evento](int f) { return fechaLista(evento(f).fecha); }},
         {QStringLiteral("Usuario"), [evento](int f) { return evento(f).usuario; }},
         {QStringLiteral("Operación"), [evento](int f) { return evento(f).tipo; }},
         {QStringLiteral("Módulo"), [evento](int f) { return evento(f).modulo; }},
         {QStringLiteral("Comentarios"), [evento](int f) { return evento(f).comentarios; }}},
        this);
    hojas_ = new QTabWidget(documento);
    hojas_->setObjectName(QStringLiteral("HojasDocumento"));
    hojas_->setAccessibleName(QStringLiteral("Detalle del Documento"));
    auto hoja = [this](ModeloTabla* modelo, const QString& nombre, const QString& titulo,
                       int estirada) {
        QTableView* t = creaVistaTabla(nombre, modelo, kAltoRenglon, hojas_);
        t->setAccessibleName(titulo);
        t->horizontalHeader()->setSectionResizeMode(estirada, QHeaderView::Stretch);
        hojas_->addTab(t, titulo);
    };
    hoja(renglones_, QStringLiteral("RenglonesDocumento"), QStringLiteral("Artículos"), 1);
    hoja(bitacora_, QStringLiteral("BitacoraDocumento"), QStringLiteral("Bitácora"), 4);

    auto* regresar = creaBoton(QStringLiteral("Regresar"), QStringLiteral("Regresar"),
                               QStringLiteral("BotonRegresar"), nullptr, documento);
    imprimir_ = creaBoton(QStringLiteral("Etiquetas"), QStringLiteral("Imprimir"),
                          QStringLiteral("BotonImprimir"), nullptr, documento);
    pdf_ = creaBoton(QStringLiteral("Exportar"), QStringLiteral("Visualizar PDF"),
                     QStringLiteral("BotonPdf"), nullptr, documento);
    cancelar_ = creaBoton(QStringLiteral("Cancelacion"), QStringLiteral("Cancelar Documento"),
                          QStringLiteral("BotonCancelarDocumento"), "peligro", documento);
    for (QPushButton* b : {regresar, imprimir_, pdf_, cancelar_})
        b->setAccessibleName(b->text());
    auto* abajo = new QHBoxLayout;
    abajo->addWidget(regresar);
    abajo->addStretch(1);
    abajo->addWidget(cancelar_);
    abajo->addWidget(pdf_);
    abajo->addWidget(imprimir_);

    auto* capaDocumento = new QVBoxLayout(documento);
    capaDocumento->addLayout(arriba);
    capaDocumento->addWidget(tarjeta);
    capaDocumento->addWidget(hojas_, 1);
    capaDocumento->addLayout(abajo);
    paginas_->addWidget(documento);

    auto* capa = new QVBoxLayout(this);
    capa->setContentsMargins(0, 0, 0, 0);
    capa->addWidget(paginas_);

    connect(buscar, &QPushButton::clicked, this, &TComprasF::BotonBuscarClick);
    connect(folio_, &QLineEdit::returnPressed, this, &TComprasF::BotonBuscarClick);
    connect(tipo_, &QComboBox::currentIndexChanged, this, &TComprasF::BotonBuscarClick);
    connect(proveedor_, &QComboBox::currentIndexChanged, this, &TComprasF::BotonBuscarClick);
    connect(tabla_, &QTableView::activated, this, &TComprasF::BotonAbrirClick);
    connect(tabla_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this] { abrir_->setEnabled(tabla_->currentIndex().isValid()); });
    connect(abrir_, &QPushButton::clicked, this, &TComprasF::BotonAbrirClick);
    connect(regresar, &QPushButton::clicked, this, &TComprasF::BotonRegresarClick);
    connect(imprimir_, &QPushButton::clicked, this, &TComprasF::BotonImprimirClick);
    connect(pdf_, &QPushButton::clicked, this, &TComprasF::BotonPdfClick);
    connect(cancelar_, &QPushButton::clicked, this, &TComprasF::BotonCancelarDocumentoClick);

    llenaDocumento();
    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"),
                      [this] { CargaProveedoresTimer(); });
}

void TComprasF::error(const QString& mensaje) {
    Sonidos::reproduce(Sonido::Error);
    mensajes_.muestra(mensaje);
}

FiltroCompras TComprasF::filtro() const {
    FiltroCompras f;
    f.tipo = static_cast<TipoCompra>(std::clamp(tipo_->currentIndex(), 0, 3));
    f.desde = desde_->date();
    f.hasta = hasta_->date();
    f.proveedor = proveedor_->currentData().toLongLong();
    f.folio = folio_->text().toLongLong();
    return f;
}

void TComprasF::CargaProveedoresTimer() {
    try {
        Consulta q(ModuloDeDatos.ConexionBD, QString::fromUtf8(SqlProveedores));
        q.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        q.abre();
        const QSignalBlocker bloqueo(proveedor_);
        for (const Registro& r : q)
            proveedor_->addItem(
                r.campo(QStringLiteral("nombre")).comoTexto(),
                QVariant::fromValue<qint64>(r.campo(QStringLiteral("id")).comoEntero()));
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Documentos de compra, proveedores:" << e.what();
        return;
    }
    CargaComprasTimer(filtro());
}

void TComprasF::BotonBuscarClick() {
    const FiltroCompras f = filtro();
    if (f.folio == 0 && f.desde > f.hasta) {
        error(QStringLiteral("La Fecha Inicial debe ser anterior a la Fecha Final"));
        return;
    }
    Sonidos::reproduce(Sonido::Click);
    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"),
                      [this, f] { CargaComprasTimer(f); });
}

void TComprasF::CargaComprasTimer(const FiltroCompras& f) {
    std::vector<CompraListada> leidas;
    try {
        leidas = consultaCompras(ModuloDeDatos.ConexionBD, sesion_, f);
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Documentos de compra, lista:" << e.what();
        return;
    }
    modelo_->cambia([&] {
        leido_ = f;
        compras_ = std::move(leidas);
        return static_cast<int>(compras_.size());
    });
    int cancelados = 0;
    double total = 0;
    for (const CompraListada& c : compras_) {
        if (c.cancelada)
            ++cancelados;
        else
            total += c.total;
    }
    QString resumen =
        QStringLiteral("%1 documentos · %2 cancelados").arg(compras_.size()).arg(cancelados);
    if (f.tipo != TipoCompra::Ajuste)
        resumen += QStringLiteral(" · Total %1").arg(importeVenta(total));
    resumen_->setText(resumen);
    abrir_->setEnabled(tabla_->currentIndex().isValid());
}

void TComprasF::BotonAbrirClick() {
    const QModelIndex actual = tabla_->currentIndex();
    if (!actual.isValid() || actual.row() >= static_cast<int>(compras_.size())) return;
    Sonidos::reproduce(Sonido::Click);
    const TipoCompra tipo = leido_.tipo;
    const int64_t folio = compras_[size_t(actual.row())].folio;
    paginas_->setCurrentIndex(1);
    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"),
                      [this, tipo, folio] { CargaDocumentoTimer(tipo, folio); });
}

void TComprasF::BotonRegresarClick() {
    Sonidos::reproduce(Sonido::Regresar);
    paginas_->setCurrentIndex(0);
}

void TComprasF::CargaDocumentoTimer(TipoCompra tipo, int64_t folio) {
    try {
        compra_ = consultaCompra(ModuloDeDatos.ConexionBD, sesion_, tipo, folio);
    } catch (const RegistroInexistente& e) {
        compra_.reset();
        error(e.mensaje());
    } catch (const std::exception& e) {
        compra_.reset();
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Documentos de compra, documento:" << e.what();
    }
    llenaDocumento();
}

void TComprasF::llenaDocumento() {
    const CompraGuardada* c = compra_ ? &*compra_ : nullptr;
    titulo_->setText(c ? nombreDocumento(c->tipo, c->folio) : QString());
    estado_->setText(c && c->cancelada ? QStringLiteral("CANCELADO") : QString());
    proveedorDoc_->setText(!c ? QString()
                           : c->tipo == TipoCompra::Ajuste
                               ? (c->entrada ? QStringLiteral("Ajuste de Entrada")
                                             : QStringLiteral("Ajuste de Salida"))
                               : c->proveedor);
    fecha_->setText(c ? fechaLista(c->fecha) : QString());
    usuario_->setText(c ? c->usuario : QString());
    QString condicion;
    if (c && c->cancelada)
        condicion = QStringLiteral("Cancelado el %1: %2")
                        .arg(fechaLista(c->fechaCancelacion), c->motivoCancelacion);
    else if (c && c->tipo == TipoCompra::OrdenCompra)
        condicion = c->recibida ? QStringLiteral("Recibida") : QStringLiteral("Por Recibir");
    else if (c && c->tipo == TipoCompra::Recepcion)
        condicion =
            (c->plazo > 0 ? QStringLiteral("Crédito a %1 días, saldo %2")
                                .arg(c->plazo)
                                .arg(importeVenta(c->saldo))
                          : QStringLiteral("Contado")) +
            (c->formaPago.isEmpty() ? QString() : QStringLiteral(" · ") + c->formaPago) +
            (c->ordenRecibida > 0 ? QStringLiteral(" · Órden de Compra %1").arg(c->ordenRecibida)
                                  : QString());
    else if (c && c->tipo == TipoCompra::Devolucion)
        condicion = c->formaPago;
    if (c && !c->observaciones.isEmpty())
        condicion += (condicion.isEmpty() ? QString() : QStringLiteral("\n")) + c->observaciones;
    condicion_->setText(condicion);
    const bool conImportes = c && c->tipo != TipoCompra::Ajuste;
    importes_->setText(conImportes ? QStringLiteral("Subtotal %1 · IVA %2 · %3 (T.C. %4)")
                                         .arg(importeVenta(c->subtotal), importeVenta(c->iva),
                                              c->moneda, QLocale::c().toString(c->tipoCambio))
                                   : QString());
    total_->setText(conImportes ? importeVenta(c->total) : QString());
    renglones_->cambia([c] { return c ? static_cast<int>(c->renglones.size()) : 0; });
    bitacora_->cambia([c] { return c ? static_cast<int>(c->bitacora.size()) : 0; });
    // Ya con el documento en los modelos: cada columna a lo que pide su contenido, una vez.
    for (QTableView* t : hojas_->findChildren<QTableView*>())
        t->resizeColumnsToContents();
    imprimir_->setEnabled(c != nullptr);
    pdf_->setEnabled(c != nullptr);
    cancelar_->setEnabled(c != nullptr && !c->cancelada);
}

void TComprasF::BotonImprimirClick() {
    imprime(false);
}

void TComprasF::BotonPdfClick() {
    imprime(true);
}

void TComprasF::imprime(bool pdf) {
    if (!compra_) return;
    Sonidos::reproduce(Sonido::Click);
    // Imprimir no bloquea ni lanza: lo que falle lo avisa el propio trabajo.
    impresion_ =
        imprimeCompra(this, sesion_, *compra_,
                      pdf ? DestinoImpresion::Pdf : DestinoImpresion::Impresora, carpetaEstacion_);
}

void TComprasF::BotonCancelarDocumentoClick() {
    if (!compra_) return;
    const TipoCompra tipo = compra_->tipo;
    const int64_t folio = compra_->folio;
    if (!puedeCancelarCompra(sesion_, tipo)) {
        error(QString::fromUtf8(MensajeSinPermisoCancelarCompra) +
              QString::fromUtf8(datosTipo(tipo).plural));
        return;
    }
    if (compra_->cancelada) {
        error(QString::fromUtf8(MensajeCompraCancelada) + nombreDocumento(tipo, folio));
        return;
    }
    if (!mensajes_.preguntaSiNo(
            QStringLiteral("¿Desea Cancelar %1?").arg(nombreDocumento(tipo, folio))))
        return;
    const std::optional<QString> motivo =
        mensajes_.pideTexto(QStringLiteral("Motivo de la Cancelación"), {}, 255);
    if (!motivo) return;
    if (motivo->trimmed().isEmpty()) {
        error(QStringLiteral("Debe Indicar el Motivo de la Cancelación"));
        return;
    }
    Sonidos::reproduce(Sonido::Click);
    ejecutaConLeyenda(
        this, QStringLiteral("Registrando Transacción."),
        [this, tipo, folio, m = motivo->trimmed()] { CancelaDocumentoTimer(tipo, folio, m); });
}

void TComprasF::CancelaDocumentoTimer(TipoCompra tipo, int64_t folio, const QString& motivo) {
    const ResultadoCancelacion r =
        CancelacionCompra(ModuloDeDatos.ConexionBD, sesion_).cancela(tipo, folio, motivo);
    if (!r.cancelada) {
        error(r.mensaje);
        return;
    }
    mensajes_.muestra(QStringLiteral("Documento Cancelado: ") + nombreDocumento(tipo, folio));
    CargaDocumentoTimer(tipo, folio);
    // La lista se vuelve a leer con lo que tenía: el documento sale cancelado.
    CargaComprasTimer(leido_);
}

} // namespace cajaplex
