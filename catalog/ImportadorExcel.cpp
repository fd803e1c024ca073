#include "catalog/ImportadorExcel.h"

#include <QButtonGroup>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFrame>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QStandardPaths>
#include <QTableView>
#include <QTimer>
#include <QVBoxLayout>
#include <QtDebug>

#include "datos/ModuloDatos.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/Sonidos.h"

namespace cajaplex {
namespace {

constexpr int kAltoRenglon = 36;

QFrame* creaTarjeta(const QString& nombre, QWidget* padre) {
    auto* tarjeta = new QFrame(padre);
    tarjeta->setObjectName(nombre);
    ponEstilo(tarjeta, "tarjeta");
    return tarjeta;
}

} // namespace

TImportadorExcelF::TImportadorExcelF(const Sesion& sesion, QWidget* padre)
    : QWidget(padre), sesion_(sesion) {
    setObjectName(QStringLiteral("ImportadorExcel"));
    setWindowTitle(QStringLiteral("Importador de Excel"));

    abrir_ = creaBoton(QStringLiteral("Importar"), QStringLiteral("Abrir Archivo"),
                       QStringLiteral("BotonAbrirArchivo"), nullptr, this);
    connect(abrir_, &QPushButton::clicked, this, &TImportadorExcelF::BotonAbrirArchivoClick);
    nombreArchivo_ =
        creaEtiqueta(QStringLiteral("Seleccione un archivo de Excel (.xls, .xlsx) o .csv"),
                     QStringLiteral("NombreArchivo"), "subtitulo", this);

    tipos_ = new QGroupBox(QStringLiteral("Tipo de Importación"), this);
    tipos_->setObjectName(QStringLiteral("TipoImportacion"));
    grupoTipos_ = new QButtonGroup(this);
    auto* capaTipos = new QHBoxLayout(tipos_);
    const TipoImportacion tipos[] = {TipoImportacion::Clientes, TipoImportacion::Productos,
                                     TipoImportacion::Proveedores};
    for (int i = 0; i < 3; ++i) {
        const QString& nombre = nombresTiposImportacion().at(i);
        auto* opcion = new QRadioButton(nombre, tipos_);
        opcion->setObjectName(QStringLiteral("Tipo") + nombre);
        opcion->setMinimumHeight(AltoControl);
        grupoTipos_->addButton(opcion, static_cast<int>(tipos[i]));
        capaTipos->addWidget(opcion);
    }

    importar_ = creaBoton(QStringLiteral("Actualizacion"), QStringLiteral("Importar"),
                          QStringLiteral("BotonImportar"), "primario", this);
    importar_->setEnabled(false);
    connect(importar_, &QPushButton::clicked, this, &TImportadorExcelF::BotonImportarClick);

    auto* arriba = new QHBoxLayout;
    arriba->addWidget(abrir_);
    arriba->addWidget(nombreArchivo_, 1);
    arriba->addWidget(tipos_);
    arriba->addWidget(importar_);

    rejilla_ = creaVistaTabla(QStringLiteral("RejillaHoja"), nullptr, kAltoRenglon, this);
    rejilla_->setAccessibleName(QStringLiteral("Hoja cargada"));
    pie_ = creaEtiqueta(QStringLiteral("Renglones: 0"), QStringLiteral("PieHoja"), "pie", this);

    // El avance de la importación, con su "Cancelar", en lugar del resumen mientras corre.
    avance_ = creaTarjeta(QStringLiteral("AvanceImportacion"), this);
    auto* tituloAvance = creaEtiqueta(QStringLiteral("Importando Archivo XLS"),
                                      QStringLiteral("TituloAvance"), "subtitulo", avance_);
    leyendaAvance_ = creaEtiqueta({}, QStringLiteral("LeyendaAvance"), nullptr, avance_);
    barra_ = new QProgressBar(avance_);
    barra_->setObjectName(QStringLiteral("BarraAvance"));
    barra_->setAccessibleName(QStringLiteral("Avance de la importación"));
    barra_->setMinimumHeight(32);
    cancelar_ = creaBoton(QStringLiteral("Cancelacion"), QStringLiteral("Cancelar"),
                          QStringLiteral("BotonCancelar"), "peligro", avance_);
    connect(cancelar_, &QPushButton::clicked, this, &TImportadorExcelF::BotonCancelarClick);
    auto* capaAvance = new QGridLayout(avance_);
    capaAvance->addWidget(tituloAvance, 0, 0);
    capaAvance->addWidget(leyendaAvance_, 0, 1);
    capaAvance->addWidget(barra_, 1, 0, 1, 2);
    capaAvance->addWidget(cancelar_, 0, 2, 2, 1);
    capaAvance->setColumnStretch(1, 1);
    avance_->hide();

    resumenPanel_ = creaTarjeta(QStringLiteral("ResumenImportacion"), this);
    textoResumen_ = creaEtiqueta({}, QStringLiteral("TextoResumen"), nullptr, resumenPanel_);
    textoResumen_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    modeloRechazados_ = new ModeloTabla(
        {{QStringLiteral("Renglón"),
          [this](int f) {
              return QString::number(resumen_.rechazados[static_cast<size_t>(f)].renglon);
          },
          {},
          Qt::AlignRight},
         {QStringLiteral("Motivo del Rechazo"),
          [this](int f) { return resumen_.rechazados[static_cast<size_t>(f)].motivo; }}},
        this);
    rechazados_ = creaVistaTabla(QStringLiteral("RenglonesRechazados"), modeloRechazados_,
                                 kAltoRenglon, resumenPanel_);
    rechazados_->setAccessibleName(QStringLiteral("Renglones rechazados"));
    rechazados_->setColumnWidth(0, 90);
    rechazados_->horizontalHeader()->setStretchLastSection(true);
    guardarRechazados_ =
        creaBoton(QStringLiteral("Exportar"), QStringLiteral("Guardar Rechazados"),
                  QStringLiteral("BotonGuardarRechazados"), nullptr, resumenPanel_);
    connect(guardarRechazados_, &QPushButton::clicked, this,
            &TImportadorExcelF::BotonGuardarRechazadosClick);
    auto* capaResumen = new QHBoxLayout(resumenPanel_);
    auto* izquierda = new QVBoxLayout;
    izquierda->addWidget(textoResumen_, 1);
    izquierda->addWidget(guardarRechazados_);
    capaResumen->addLayout(izquierda);
    capaResumen->addWidget(rechazados_, 1);
    resumenPanel_->setMaximumHeight(240);
    resumenPanel_->hide();

    auto* capa = new QVBoxLayout(this);
    capa->setContentsMargins(16, 12, 16, 12);
    capa->addLayout(arriba);
    capa->addWidget(rejilla_, 1);
    capa->addWidget(pie_);
    capa->addWidget(avance_);
    capa->addWidget(resumenPanel_);
}

TImportadorExcelF::~TImportadorExcelF() = default;

TipoImportacion TImportadorExcelF::tipoElegido() const {
    const int id = grupoTipos_->checkedId();
    return id < 0 ? TipoImportacion::Ninguno : static_cast<TipoImportacion>(id);
}

void TImportadorExcelF::BotonAbrirArchivoClick() {
    Sonidos::reproduce(Sonido::Click);
    const QString ruta = QFileDialog::getOpenFileName(
        this, QStringLiteral("Abrir Archivo"),
        QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation),
        QStringLiteral("Hojas de cálculo (*.xls *.xlsx *.csv)"));
    if (!ruta.isEmpty()) abreArchivo(ruta);
}

void TImportadorExcelF::abreArchivo(const QString& ruta) {
    ejecutaConLeyenda(this, QStringLiteral("Obteniendo Información"),
                      [this, ruta] { CargaArchivoTimer(ruta); });
}

void TImportadorExcelF::CargaArchivoTimer(const QString& ruta) {
    Hoja hoja;
    try {
        hoja = leeHoja(ruta);
    } catch (const ErrorHoja& e) {
        Sonidos::reproduce(Sonido::Error);
        mensajes_.muestra(e.mensaje());
        return;
    }
    archivo_ = ruta;
    nombreArchivo_->setText(QFileInfo(ruta).fileName());
    resumenPanel_->hide();
    llenaRejilla(std::move(hoja));
    mensajes_.muestra(QStringLiteral("Archivo XLS cargado Exitosamente"));
}

void TImportadorExcelF::llenaRejilla(Hoja hoja) {
    // Las columnas cambian con cada archivo: un modelo nuevo por hoja.
    std::vector<ModeloTabla::Columna> columnas;
    for (int c = 0; c < hoja.encabezados.size(); ++c)
        columnas.push_back(
            {hoja.encabezados.at(c), [this, c](int f) {
                 return textoCelda(
                     hoja_.renglones[static_cast<size_t>(f)].celdas[static_cast<size_t>(c)]);
             }});
    auto* modelo = new ModeloTabla(std::move(columnas), this);
    rejilla_->setModel(modelo);
    delete modeloHoja_;
    modeloHoja_ = modelo;
    modeloHoja_->cambia([&] {
        hoja_ = std::move(hoja);
        return static_cast<int>(hoja_.renglones.size());
    });
    rejilla_->resizeColumnsToContents();
    pie_->setText(QStringLiteral("Renglones: ") + QString::number(hoja_.renglones.size()));
    importar_->setEnabled(true);
}

void TImportadorExcelF::BotonImportarClick() {
    const TipoImportacion tipo = tipoElegido();
    if (const std::optional<QString> rechazo = revisaImportacion(tipo, hoja_)) {
        Sonidos::reproduce(Sonido::Error);
        mensajes_.muestra(*rechazo);
        return;
    }
    QString pregunta = QStringLiteral("¿Desea importar los %1 registros del archivo a %2?")
                           .arg(hoja_.renglones.size())
                           .arg(grupoTipos_->checkedButton()->text());
    if (tipo == TipoImportacion::Productos)
        pregunta += QStringLiteral(
            "\nLa existencia de los productos que ya existen se reemplaza por la del archivo, "
            "aunque otras estaciones estén vendiendo en este momento.");
    if (!mensajes_.pregunta(pregunta)) return;
    Sonidos::reproduce(Sonido::Click);
    ejecutaConLeyenda(this, QStringLiteral("Importando Archivo XLS"),
                      [this, tipo] { ComienzaImportacionTimer(tipo); });
}

void TImportadorExcelF::ComienzaImportacionTimer(TipoImportacion tipo) {
    importacion_ =
        std::make_unique<ImportacionCatalogo>(ModuloDeDatos.ConexionBD, sesion_, tipo, hoja_);
    importacion_->renglonesPorLote(porLote_);
    try {
        importacion_->preparaCatalogos();
    } catch (const ErrorServicio& e) {
        importacion_.reset();
        Sonidos::reproduce(Sonido::Error);
        mensajes_.muestra(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Importador de Excel:" << e.mensaje();
        return;
    }
    cancelada_ = false;
    habilita(false);
    resumenPanel_->hide();
    barra_->setRange(0, importacion_->total());
    barra_->setValue(0);
    cancelar_->setEnabled(true);
    muestraAvance();
    avance_->show();
    QTimer::singleShot(0, this, &TImportadorExcelF::ImportaLoteTimer);
}

void TImportadorExcelF::muestraAvance() {
    const int numero = importacion_->numeroSiguiente();
    const int ultimo = hoja_.renglones.empty() ? 0 : hoja_.renglones.back().numero;
    leyendaAvance_->setText(QStringLiteral("Importando ") + QString::number(numero) +
                            QStringLiteral(" de ") + QString::number(ultimo));
    barra_->setValue(importacion_->resumen().procesados);
}

void TImportadorExcelF::ImportaLoteTimer() {
    if (!importacion_) return;
    if (cancelada_) {
        termina(Fin::Cancelada);
        return;
    }
    bool quedan = false;
    try {
        quedan = importacion_->importaLote();
    } catch (const ErrorServicio& e) {
        qWarning() << "Importador de Excel:" << e.mensaje();
        termina(Fin::Error);
        return;
    }
    emit loteRegistrado(importacion_->resumen().procesados);
    if (!quedan) {
        termina(Fin::Concluida);
        return;
    }
    muestraAvance();
    QTimer::singleShot(0, this, &TImportadorExcelF::ImportaLoteTimer);
}

void TImportadorExcelF::BotonCancelarClick() {
    Sonidos::reproduce(Sonido::Click);
    cancelada_ = true;
    cancelar_->setEnabled(false);
    leyendaAvance_->setText(QStringLiteral("Cancelando..."));
}

void TImportadorExcelF::termina(Fin fin) {
    modeloRechazados_->cambia([&] {
        resumen_ = importacion_->resumen();
        return static_cast<int>(resumen_.rechazados.size());
    });
    importacion_.reset();
    avance_->hide();
    habilita(true);
    textoResumen_->setText(resumen_.texto().join(QLatin1Char('\n')));
    guardarRechazados_->setEnabled(!resumen_.rechazados.empty());
    resumenPanel_->show();
    switch (fin) {
    case Fin::Concluida:
        mensajes_.muestra(QStringLiteral("Proceso concluido con Éxito"));
        break;
    case Fin::Cancelada:
        mensajes_.muestra(QStringLiteral("Operación Cancelada"));
        break;
    case Fin::Error:
        Sonidos::reproduce(Sonido::Error);
        mensajes_.muestra(QString::fromUtf8(MensajeErrorRegistro));
        break;
    }
}

void TImportadorExcelF::habilita(bool habilitar) {
    abrir_->setEnabled(habilitar);
    tipos_->setEnabled(habilitar);
    importar_->setEnabled(habilitar);
}

void TImportadorExcelF::BotonGuardarRechazadosClick() {
    Sonidos::reproduce(Sonido::Click);
    const QString carpeta =
        archivo_.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)
                           : QFileInfo(archivo_).absolutePath();
    QString ruta =
        QFileDialog::getSaveFileName(this, QStringLiteral("Guardar Rechazados"),
                                     QDir(carpeta).filePath(QFileInfo(archivo_).completeBaseName() +
                                                            QStringLiteral("-rechazados.csv")),
                                     QStringLiteral("Texto separado por comas (*.csv)"));
    if (ruta.isEmpty()) return;
    if (QFileInfo(ruta).suffix().compare(QStringLiteral("csv"), Qt::CaseInsensitive) != 0)
        ruta += QStringLiteral(".csv");
    guardaRechazadosA(ruta);
}

bool TImportadorExcelF::guardaRechazadosA(const QString& ruta) {
    const QString causa = guardaRechazados(hoja_, resumen_, ruta);
    if (!causa.isEmpty()) {
        Sonidos::reproduce(Sonido::Error);
        mensajes_.muestra(QStringLiteral("No se pudo generar el archivo: ") + ruta);
        qWarning() << "Importador de Excel, rechazados:" << ruta << causa;
        return false;
    }
    mensajes_.muestra(QStringLiteral("Archivo generado: ") + ruta);
    return true;
}

} // namespace cajaplex
