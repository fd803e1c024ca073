#include "printing/Impresiones.h"

#include <exception>
#include <functional>

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPrinterInfo>
#include <QPushButton>
#include <QSpinBox>
#include <QTextBrowser>
#include <QTextDocument>
#include <QTimer>
#include <QVBoxLayout>
#include <QtDebug>

#include "datos/Auditoria.h"
#include "datos/ConexionBD.h"
#include "datos/Consulta.h"
#include "datos/MensajesComunes.h"
#include "datos/ModuloDatos.h"
#include "datos/Transaccion.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/Sonidos.h"
#include "printing/DocumentosEjemplo.h"
#include "printing/TicketVenta.h"

namespace cajaplex {
namespace {

constexpr const char* SqlTexto =
    "Select plantilla From Reportes Where empresaID = :EmpresaID and reporteID = :ReporteID";
constexpr const char* SqlActualiza = "Update Reportes Set Nombre = :Nombre, plantilla = :Plantilla "
                                     "Where empresaID = :EmpresaID and reporteID = :ReporteID";
constexpr const char* SqlOpciones =
    "Select imprimeLogotipoRemision, imprimeQRRemision, adicionalRemision, pieRemision "
    "From ConfiguraImpresiones Where empresaID = :EmpresaID";
constexpr const char* SqlActualizaOpciones =
    "Update ConfiguraImpresiones Set imprimeLogotipoRemision = :Logotipo, "
    "imprimeQRRemision = :QR, adicionalRemision = :Adicional, pieRemision = :Pie "
    "Where empresaID = :EmpresaID";
constexpr const char* SqlAltaOpciones =
    "Insert Into ConfiguraImpresiones (empresaID, imprimeLogotipoRemision, imprimeQRRemision, "
    "adicionalRemision, pieRemision) Values (:EmpresaID, :Logotipo, :QR, :Adicional, :Pie)";
constexpr const char* SqlCarpeta =
    "Select carpetaID From ReportesCarpetas Where empresaID = :EmpresaID and nombre = :Nombre";
constexpr const char* SqlAltaPlantilla =
    "Insert Into Reportes (empresaID, carpetaID, Nombre, plantilla, predeterminada) "
    "Values (:EmpresaID, :CarpetaID, :Nombre, :Plantilla, 0)";
constexpr const char* SqlQuitaPredeterminada =
    "Update Reportes Set predeterminada = 0 Where empresaID = :EmpresaID and carpetaID = "
    ":CarpetaID "
    "and reporteID <> :ReporteID and ifnull(predeterminada,0) <> 0";
constexpr const char* SqlPonPredeterminada = "Update Reportes Set predeterminada = 1 Where "
                                             "empresaID = :EmpresaID and reporteID = :ReporteID";
constexpr const char* SqlUltimaVenta =
    "Select ifnull(max(folio),0) as folio From Remision Where empresaID = :EmpresaID";

constexpr double kMmPorPulgada = 25.4;

template <typename T> T* nombra(T* control, const char* nombre, const QString& accesible) {
    control->setObjectName(QString::fromLatin1(nombre));
    control->setAccessibleName(accesible);
    return control;
}

bool esTicketVenta(const QString& carpeta) {
    return carpeta == QStringLiteral("Remisión") || carpeta == QStringLiteral("Ventas");
}

RenglonAuditoria renglonAuditoria(const char* tipo, const QString& nuevo,
                                  const QString& anterior = {}) {
    return {QString::fromUtf8(tipo), QString::fromUtf8(ModuloAuditoriaPlantillas), nuevo, anterior,
            QString()};
}

} // namespace

QString tipoAjustesCarpeta(const QString& carpeta) {
    if (carpeta == QStringLiteral("Remisión")) return QStringLiteral("Remision");
    if (carpeta == QStringLiteral("Cotizaciones")) return QStringLiteral("Cotizacion");
    if (carpeta == QStringLiteral("Corte de Caja")) return QStringLiteral("CorteCaja");
    return carpeta;
}

TImpresionesF::TImpresionesF(const Sesion& sesion, QWidget* padre, const QString& carpetaEstacion)
    : QWidget(padre), sesion_(sesion), estacion_(carpetaEstacion) {
    setObjectName(QStringLiteral("TImpresionesF"));
    setWindowTitle(QStringLiteral("Impresiones"));

    carpetas_ = nombra(new QListWidget(this), "ListaCarpetas", QStringLiteral("Carpetas"));
    carpetas_->addItems(carpetasPlantillas());
    listaPlantillas_ = nombra(new QListWidget(this), "ListaPlantillas",
                              QStringLiteral("Plantillas de la carpeta"));
    auto* nueva = creaBoton(QStringLiteral("Insercion"), QStringLiteral("Nueva"),
                            QStringLiteral("BotonNueva"), nullptr, this);
    nueva->setAccessibleName(QStringLiteral("Nueva plantilla"));
    predeterminada_ = creaBoton(QStringLiteral("Actualizacion"), QStringLiteral("Predeterminada"),
                                QStringLiteral("BotonPredeterminada"), nullptr, this);
    predeterminada_->setAccessibleName(QStringLiteral("Marcar como predeterminada"));
    auto* izquierda = new QVBoxLayout;
    izquierda->addWidget(creaEtiqueta(QStringLiteral("Carpetas"),
                                      QStringLiteral("EtiquetaCarpetas"), "subtitulo", this));
    izquierda->addWidget(carpetas_, 1);
    izquierda->addWidget(creaEtiqueta(QStringLiteral("Plantillas"),
                                      QStringLiteral("EtiquetaPlantillas"), "subtitulo", this));
    izquierda->addWidget(listaPlantillas_, 1);
    izquierda->addWidget(nueva);
    izquierda->addWidget(predeterminada_);

    nombre_ =
        nombra(new QLineEdit(this), "NombrePlantilla", QStringLiteral("Nombre de la plantilla"));
    nombre_->setMinimumHeight(AltoControl);
    nombre_->setMaxLength(100);
    texto_ =
        nombra(new QPlainTextEdit(this), "TextoPlantilla", QStringLiteral("Texto de la plantilla"));
    texto_->setLineWrapMode(QPlainTextEdit::NoWrap);
    QFont mono(QStringLiteral("DejaVu Sans Mono"));
    mono.setStyleHint(QFont::Monospace);
    texto_->setFont(mono);
    auto* ayuda = creaEtiqueta(QStringLiteral("HTML con marcadores {{...}}. Del ticket: ") +
                                   marcadoresTicketVenta(),
                               QStringLiteral("AyudaMarcadores"), "pie", this);
    ayuda->setWordWrap(true);
    ayuda->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* centro = new QVBoxLayout;
    centro->addWidget(creaEtiqueta(QStringLiteral("Nombre"), QStringLiteral("EtiquetaNombre"),
                                   "subtitulo", this));
    centro->addWidget(nombre_);
    centro->addWidget(texto_, 1);
    centro->addWidget(ayuda);

    vistaPrevia_ = nombra(new QTextBrowser(this), "VistaPrevia", QStringLiteral("Vista previa"));
    vistaPrevia_->setOpenLinks(false);

    impresoras_ = nombra(new QComboBox(this), "ListaImpresoras", QStringLiteral("Impresora"));
    impresoras_->addItem(QString());
    impresoras_->addItems(QPrinterInfo::availablePrinterNames());
    anchoPapel_ = nombra(new QComboBox(this), "ListaAnchoPapel", QStringLiteral("Ancho del papel"));
    anchoPapel_->addItem(QStringLiteral("58 mm"), 58.0);
    anchoPapel_->addItem(QStringLiteral("80 mm"), 80.0);
    anchoPapel_->addItem(QStringLiteral("Carta"), AnchoCartaMm);
    continuo_ = nombra(new QCheckBox(QStringLiteral("¿Es papel continuo?"), this), "PapelContinuo",
                       QStringLiteral("¿Es papel continuo?"));
    copias_ = nombra(new QSpinBox(this), "NumeroCopias", QStringLiteral("Número de copias"));
    copias_->setRange(1, 10);
    tamanoFuente_ = nombra(new QSpinBox(this), "TamanoFuente", QStringLiteral("Tamaño de letra"));
    tamanoFuente_->setRange(5, 24);
    auto* estacion = new QGroupBox(QStringLiteral("Esta estación"), this);
    auto* formaEstacion = new QFormLayout(estacion);
    formaEstacion->addRow(QStringLiteral("Impresora"), impresoras_);
    formaEstacion->addRow(QStringLiteral("Papel"), anchoPapel_);
    formaEstacion->addRow(QString(), continuo_);
    formaEstacion->addRow(QStringLiteral("Copias"), copias_);
    formaEstacion->addRow(QStringLiteral("Tamaño de letra"), tamanoFuente_);

    logotipo_ = nombra(new QCheckBox(QStringLiteral("Imprimir logotipo"), this), "ImprimeLogotipo",
                       QStringLiteral("Imprimir logotipo"));
    qr_ = nombra(new QCheckBox(QStringLiteral("Imprimir código QR"), this), "ImprimeQR",
                 QStringLiteral("Imprimir código QR"));
    adicional_ = nombra(new QLineEdit(this), "Adicional", QStringLiteral("Texto adicional"));
    pie_ = nombra(new QLineEdit(this), "Pie", QStringLiteral("Pie del ticket"));
    auto* empresa = new QGroupBox(QStringLiteral("Ticket de venta de la empresa"), this);
    auto* formaEmpresa = new QFormLayout(empresa);
    formaEmpresa->addRow(QString(), logotipo_);
    formaEmpresa->addRow(QString(), qr_);
    formaEmpresa->addRow(QStringLiteral("Adicional"), adicional_);
    formaEmpresa->addRow(QStringLiteral("Pie"), pie_);

    guardar_ = creaBoton(QStringLiteral("Insercion"), QStringLiteral("Guardar"),
                         QStringLiteral("BotonGuardar"), "primario", this);
    guardar_->setAccessibleName(QStringLiteral("Guardar"));
    auto* pdf = creaBoton(QStringLiteral("Exportar"), QStringLiteral("Visualizar PDF"),
                          QStringLiteral("BotonVisualizarPdf"), nullptr, this);
    pdf->setAccessibleName(QStringLiteral("Visualizar PDF"));
    auto* derecha = new QVBoxLayout;
    derecha->addWidget(creaEtiqueta(QStringLiteral("Vista previa"), QStringLiteral("EtiquetaVista"),
                                    "subtitulo", this));
    derecha->addWidget(vistaPrevia_, 1);
    derecha->addWidget(estacion);
    derecha->addWidget(empresa);
    auto* botones = new QHBoxLayout;
    botones->addWidget(pdf);
    botones->addWidget(guardar_);
    derecha->addLayout(botones);

    auto* principal = new QHBoxLayout(this);
    principal->addLayout(izquierda, 2);
    principal->addLayout(centro, 4);
    principal->addLayout(derecha, 3);

    temporizadorVista_ = new QTimer(this);
    temporizadorVista_->setSingleShot(true);
    temporizadorVista_->setInterval(300);
    connect(temporizadorVista_, &QTimer::timeout, this, &TImpresionesF::VistaPreviaTimer);
    connect(texto_, &QPlainTextEdit::textChanged, temporizadorVista_, qOverload<>(&QTimer::start));
    for (QSpinBox* s : {tamanoFuente_})
        connect(s, &QSpinBox::valueChanged, temporizadorVista_, qOverload<>(&QTimer::start));
    for (QCheckBox* c : {logotipo_, qr_})
        connect(c, &QCheckBox::toggled, temporizadorVista_, qOverload<>(&QTimer::start));
    connect(anchoPapel_, &QComboBox::currentIndexChanged, temporizadorVista_,
            qOverload<>(&QTimer::start));
    connect(carpetas_, &QListWidget::currentRowChanged, this, &TImpresionesF::ListaCarpetasCambio);
    connect(listaPlantillas_, &QListWidget::currentRowChanged, this,
            &TImpresionesF::ListaPlantillasCambio);
    connect(guardar_, &QPushButton::clicked, this, &TImpresionesF::BotonGuardarClick);
    connect(nueva, &QPushButton::clicked, this, &TImpresionesF::BotonNuevaClick);
    connect(predeterminada_, &QPushButton::clicked, this, &TImpresionesF::BotonPredeterminadaClick);
    connect(pdf, &QPushButton::clicked, this, &TImpresionesF::BotonVisualizarPdfClick);

    cargaOpcionesEmpresa();
    carpetas_->setCurrentRow(0);
}

TImpresionesF::~TImpresionesF() {
    // La vista no es dueña del documento: se suelta antes de destruirlo.
    vistaPrevia_->setDocument(nullptr);
}

QString TImpresionesF::carpetaActual() const {
    return carpetas_->currentItem() ? carpetas_->currentItem()->text() : QString();
}

const Plantilla* TImpresionesF::plantillaActual() const {
    const int fila = listaPlantillas_->currentRow();
    return fila >= 0 && fila < plantillas_.size() ? &plantillas_[fila] : nullptr;
}

void TImpresionesF::error(const QString& mensaje) {
    Sonidos::reproduce(Sonido::Error);
    mensajes_.muestra(mensaje);
}

void TImpresionesF::cargaOpcionesEmpresa() {
    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"), [this] {
        try {
            Consulta opciones(ModuloDeDatos.ConexionBD, QString::fromUtf8(SqlOpciones));
            opciones.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
            opciones.abre();
            const QSignalBlocker b1(logotipo_), b2(qr_);
            logotipo_->setChecked(
                opciones.campo(QStringLiteral("imprimeLogotipoRemision")).comoBooleano());
            qr_->setChecked(opciones.campo(QStringLiteral("imprimeQRRemision")).comoBooleano());
            adicional_->setText(opciones.campo(QStringLiteral("adicionalRemision")).comoTexto());
            pie_->setText(opciones.campo(QStringLiteral("pieRemision")).comoTexto());
        } catch (const std::exception& e) {
            qWarning() << "Impresiones:" << e.what();
            error(QString::fromUtf8(MensajeErrorLectura));
        }
    });
}

void TImpresionesF::muestraAjustesEstacion() {
    const AjustesImpresion a = leeAjustesImpresion(estacion_, tipoAjustesCarpeta(carpetaActual()));
    const QSignalBlocker b1(anchoPapel_), b2(tamanoFuente_);
    if (impresoras_->findText(a.impresora) < 0) impresoras_->addItem(a.impresora);
    impresoras_->setCurrentText(a.impresora);
    anchoPapel_->setCurrentIndex(a.formato.anchoMm < 60 ? 0 : a.formato.anchoMm < 100 ? 1 : 2);
    continuo_->setChecked(a.formato.continuo);
    copias_->setValue(a.copias);
    tamanoFuente_->setValue(a.formato.tamanoFuente);
}

AjustesImpresion TImpresionesF::ajustesEnPantalla() const {
    AjustesImpresion a = leeAjustesImpresion(estacion_, tipoAjustesCarpeta(carpetaActual()));
    a.impresora = impresoras_->currentText();
    a.formato.anchoMm = anchoPapel_->currentData().toDouble();
    a.formato.continuo = continuo_->isChecked();
    a.formato.tamanoFuente = tamanoFuente_->value();
    a.copias = copias_->value();
    return a;
}

void TImpresionesF::ListaCarpetasCambio() {
    const QString carpeta = carpetaActual();
    if (carpeta.isEmpty()) return;
    muestraAjustesEstacion();
    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"),
                      [this, carpeta] { CargaCarpetaTimer(carpeta, {}); });
}

void TImpresionesF::CargaCarpetaTimer(const QString& carpeta, const QString& seleccion) {
    try {
        plantillas_ = plantillasCarpeta(ModuloDeDatos.ConexionBD, sesion_.EmpresaID, carpeta);
        if (!muestras_.contains(carpeta)) {
            // La vista previa usa la última venta guardada; sin ventas, un ticket de ejemplo.
            int64_t folio = 0;
            if (esTicketVenta(carpeta)) {
                Consulta ultima(ModuloDeDatos.ConexionBD, QString::fromUtf8(SqlUltimaVenta));
                ultima.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
                ultima.abre();
                folio = ultima.campo(QStringLiteral("folio")).comoEntero();
            }
            muestras_.insert(
                carpeta, folio > 0
                             ? datosTicketVenta(ModuloDeDatos.ConexionBD, sesion_.EmpresaID, folio)
                             : documentoEjemplo(carpeta, sesion_.NombreEmpresa, sesion_.Rfc));
        }
    } catch (const std::exception& e) {
        qWarning() << "Impresiones:" << e.what();
        plantillas_.clear();
        error(QString::fromUtf8(MensajeErrorLectura));
    }
    const QSignalBlocker bloqueo(listaPlantillas_);
    listaPlantillas_->clear();
    int elegida = plantillas_.isEmpty() ? -1 : 0;
    for (int i = 0; i < plantillas_.size(); ++i) {
        const Plantilla& p = plantillas_[i];
        listaPlantillas_->addItem(p.predeterminada ? p.nombre + QStringLiteral(" (predeterminada)")
                                                   : p.nombre);
        if (seleccion.isEmpty() ? p.predeterminada : p.nombre == seleccion) elegida = i;
    }
    listaPlantillas_->setCurrentRow(elegida);
    ListaPlantillasCambio();
}

void TImpresionesF::ListaPlantillasCambio() {
    const Plantilla* p = plantillaActual();
    guardar_->setEnabled(p != nullptr);
    predeterminada_->setEnabled(p != nullptr && !p->predeterminada);
    if (!p) {
        nombre_->clear();
        texto_->clear();
        return;
    }
    const Plantilla elegida = *p;
    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"),
                      [this, elegida] { CargaPlantillaTimer(elegida); });
}

void TImpresionesF::CargaPlantillaTimer(const Plantilla& plantilla) {
    try {
        Consulta texto(ModuloDeDatos.ConexionBD, QString::fromUtf8(SqlTexto));
        texto.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        texto.parametro(QStringLiteral("ReporteID")).entero(plantilla.reporteID);
        texto.abre();
        nombre_->setText(plantilla.nombre);
        texto_->setPlainText(texto.campo(QStringLiteral("plantilla")).comoTexto());
        VistaPreviaTimer();
    } catch (const std::exception& e) {
        qWarning() << "Impresiones:" << e.what();
        error(QString::fromUtf8(MensajeErrorLectura));
    }
}

void TImpresionesF::VistaPreviaTimer() {
    temporizadorVista_->stop();
    DocumentoImpresion muestra = muestras_.value(carpetaActual());
    // Las opciones del ticket se ven al momento, sin guardar.
    if (esTicketVenta(carpetaActual())) {
        if (!logotipo_->isChecked()) muestra.datos.remove(QStringLiteral("logotipo"));
        if (!qr_->isChecked()) muestra.datos.remove(QStringLiteral("qr"));
        muestra.datos[QStringLiteral("adicional")] = adicional_->text().trimmed();
        muestra.datos[QStringLiteral("pie")] = pie_->text().trimmed();
    }
    FormatoPapel formato = ajustesEnPantalla().formato;
    try {
        auto doc = componeDocumento(texto_->toPlainText(), muestra, formato);
        doc->setTextWidth((formato.anchoMm - 2 * margenMm(formato)) * logicalDpiX() /
                          kMmPorPulgada);
        vistaPrevia_->setDocument(doc.get());
        vista_ = std::move(doc);
    } catch (const std::exception& e) {
        // La plantilla a medio escribir: la vista dice por qué no se puede mostrar.
        auto doc = std::make_unique<QTextDocument>();
        doc->setPlainText(QString::fromUtf8(e.what()));
        vistaPrevia_->setDocument(doc.get());
        vista_ = std::move(doc);
    }
}

void TImpresionesF::BotonGuardarClick() {
    Sonidos::reproduce(Sonido::Click);
    if (!plantillaActual()) return;
    if (nombre_->text().trimmed().isEmpty())
        return error(QStringLiteral("Debe Introducir el Nombre de la Plantilla"));
    try {
        rellenaPlantilla(texto_->toPlainText(), {});
    } catch (const ErrorPlantilla& e) {
        return error(QStringLiteral("La plantilla no es válida: ") + QString::fromUtf8(e.what()));
    }
    if (!mensajes_.pregunta(QStringLiteral("¿Desea Almacenar los Cambios?"))) return;
    ejecutaConLeyenda(this, QStringLiteral("Registrando Transacción."),
                      [this] { AlmacenaPlantillaTimer(); });
}

bool TImpresionesF::registraCambio(const RenglonAuditoria& renglon,
                                   const std::function<void(Transaccion&)>& cambios) {
    try {
        Transaccion t(ModuloDeDatos.ConexionBD);
        cambios(t);
        Auditoria::registra(t, sesion_, renglon);
        t.confirma();
    } catch (const RegistroInexistente& e) {
        error(e.mensaje());
        return false;
    } catch (const std::exception& e) {
        qWarning() << "Impresiones:" << e.what();
        error(QString::fromUtf8(MensajeErrorRegistro));
        return false;
    }
    // Lo guardado ya está en el servicio; una copia local que no se pudo poner al día se repone
    // al siguiente inicio de sesión.
    try {
        actualizaCopiaLocalPlantillas(ModuloDeDatos, sesion_);
    } catch (const std::exception& e) {
        qWarning() << "Impresiones: copia local sin actualizar:" << e.what();
    }
    return true;
}

void TImpresionesF::AlmacenaPlantillaTimer() {
    const Plantilla* actual = plantillaActual();
    if (!actual) return;
    const Plantilla anterior = *actual;
    const QString nombre = nombre_->text().trimmed();
    const auto cambios = [&](Transaccion& t) {
        Consulta actualiza{QString::fromUtf8(SqlActualiza)};
        actualiza.parametro(QStringLiteral("Nombre")).texto(nombre);
        actualiza.parametro(QStringLiteral("Plantilla")).blob(texto_->toPlainText().toUtf8());
        actualiza.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        actualiza.parametro(QStringLiteral("ReporteID")).entero(anterior.reporteID);
        actualiza.ejecuta(t);
        if (actualiza.filasAfectadas() != 1)
            throw RegistroInexistente(QStringLiteral("La plantilla ya no existe"));
        Consulta opciones{QString::fromUtf8(SqlActualizaOpciones)};
        Consulta altaOpciones{QString::fromUtf8(SqlAltaOpciones)};
        Consulta* escribe = &opciones;
        for (int intento = 0; intento < 2; ++intento) {
            escribe->parametro(QStringLiteral("Logotipo")).booleano(logotipo_->isChecked());
            escribe->parametro(QStringLiteral("QR")).booleano(qr_->isChecked());
            escribe->parametro(QStringLiteral("Adicional")).texto(adicional_->text().trimmed());
            escribe->parametro(QStringLiteral("Pie")).texto(pie_->text().trimmed());
            escribe->parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
            escribe->ejecuta(t);
            // Una empresa sin renglón de opciones lo recibe aquí.
            if (escribe->filasAfectadas() > 0) break;
            escribe = &altaOpciones;
        }
    };
    if (!registraCambio(
            renglonAuditoria(tipoAuditoria::Actualizacion,
                             anterior.carpeta + QStringLiteral(" / ") + nombre,
                             anterior.carpeta + QStringLiteral(" / ") + anterior.nombre),
            cambios))
        return;
    guardaAjustesImpresion(estacion_, tipoAjustesCarpeta(anterior.carpeta), ajustesEnPantalla());
    estacion_.guarda();
    CargaCarpetaTimer(anterior.carpeta, nombre);
}

void TImpresionesF::BotonNuevaClick() {
    Sonidos::reproduce(Sonido::Click);
    const auto nombre =
        mensajes_.pideTexto(QStringLiteral("Nombre de la Nueva Plantilla"), {}, 100);
    if (!nombre || nombre->trimmed().isEmpty()) return;
    const QString n = nombre->trimmed();
    for (const Plantilla& p : plantillas_)
        if (p.nombre.compare(n, Qt::CaseInsensitive) == 0)
            return error(QStringLiteral("Ya existe una plantilla con ese nombre"));
    ejecutaConLeyenda(this, QStringLiteral("Registrando Transacción."),
                      [this, n] { AltaPlantillaTimer(n); });
}

void TImpresionesF::AltaPlantillaTimer(const QString& nombre) {
    const QString carpeta = carpetaActual();
    const auto cambios = [&](Transaccion& t) {
        Consulta busca{QString::fromUtf8(SqlCarpeta)};
        busca.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        busca.parametro(QStringLiteral("Nombre")).texto(carpeta);
        busca.abre(t);
        if (busca.numeroRegistros() == 0)
            throw RegistroInexistente(QStringLiteral("La carpeta ya no existe"));
        // La nueva parte del texto a la vista (o de la predeterminada del sistema).
        const QString texto = texto_->toPlainText().trimmed().isEmpty()
                                  ? textoPlantillaPredeterminada(carpeta)
                                  : texto_->toPlainText();
        Consulta alta{QString::fromUtf8(SqlAltaPlantilla)};
        alta.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        alta.parametro(QStringLiteral("CarpetaID"))
            .entero(busca.campo(QStringLiteral("carpetaID")).comoEntero());
        alta.parametro(QStringLiteral("Nombre")).texto(nombre);
        alta.parametro(QStringLiteral("Plantilla")).blob(texto.toUtf8());
        alta.ejecuta(t);
    };
    if (registraCambio(
            renglonAuditoria(tipoAuditoria::Insercion, carpeta + QStringLiteral(" / ") + nombre),
            cambios))
        CargaCarpetaTimer(carpeta, nombre);
}

void TImpresionesF::BotonPredeterminadaClick() {
    Sonidos::reproduce(Sonido::Click);
    const Plantilla* p = plantillaActual();
    if (!p || p->predeterminada) return;
    const Plantilla elegida = *p;
    ejecutaConLeyenda(this, QStringLiteral("Registrando Transacción."),
                      [this, elegida] { PredeterminadaTimer(elegida); });
}

void TImpresionesF::PredeterminadaTimer(const Plantilla& plantilla) {
    const auto cambios = [&](Transaccion& t) {
        Consulta quita{QString::fromUtf8(SqlQuitaPredeterminada)};
        quita.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        quita.parametro(QStringLiteral("CarpetaID")).entero(plantilla.carpetaID);
        quita.parametro(QStringLiteral("ReporteID")).entero(plantilla.reporteID);
        quita.ejecuta(t);
        Consulta pon{QString::fromUtf8(SqlPonPredeterminada)};
        pon.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        pon.parametro(QStringLiteral("ReporteID")).entero(plantilla.reporteID);
        pon.ejecuta(t);
        if (pon.filasAfectadas() != 1)
            throw RegistroInexistente(QStringLiteral("La plantilla ya no existe"));
    };
    if (registraCambio(renglonAuditoria(tipoAuditoria::Actualizacion,
                                        QStringLiteral("Predeterminada: ") + plantilla.carpeta +
                                            QStringLiteral(" / ") + plantilla.nombre),
                       cambios))
        CargaCarpetaTimer(plantilla.carpeta, plantilla.nombre);
}

void TImpresionesF::BotonVisualizarPdfClick() {
    Sonidos::reproduce(Sonido::Click);
    const Plantilla* p = plantillaActual();
    if (!p) return;
    // Lo que está en pantalla, aunque no se haya guardado: para probar antes de guardar.
    PedidoImpresion pedido;
    pedido.carpeta = carpetaActual();
    pedido.plantilla = texto_->toPlainText();
    pedido.ajustes = ajustesEnPantalla();
    pedido.destino = DestinoImpresion::Pdf;
    pedido.archivoPdf = QDir(estacion_.carpeta()).filePath(QString::fromUtf8(ArchivoPdfLocal));
    const DocumentoImpresion muestra = muestras_.value(carpetaActual());
    imprimeDocumento(this, sesion_, pedido, [muestra] { return muestra; });
}

} // namespace cajaplex
