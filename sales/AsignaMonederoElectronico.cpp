#include "sales/AsignaMonederoElectronico.h"

#include <QDoubleValidator>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QScroller>
#include <QStackedWidget>
#include <QTableView>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <QtDebug>

#include "catalog/IncrementoPrecios.h"
#include "catalog/PreciosProductos.h"
#include "datos/Auditoria.h"
#include "datos/ControlAcceso.h"
#include "datos/ModuloDatos.h"
#include "datos/Utilerias.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/LectorRenglones.h"
#include "pantallas/Leyenda.h"
#include "pantallas/Sonidos.h"

namespace cajaplex {
namespace {

constexpr int kAltoRenglon = 40;
const QString kTodasLasLineas = QStringLiteral("TODAS LAS LÍNEAS");

QString filtroLinea(const QString& columna, int64_t lineaID) {
    if (lineaID == TodasLasLineas) return {};
    return QStringLiteral(" And ") + columna + QStringLiteral(" = ") + numeroSql(lineaID);
}

QString textoPorcentaje(double porcentaje) {
    return QLocale::c().toString(porcentaje, 'f', 2);
}

QString textoPorcentajeMonedero(double porcentaje) {
    return textoPorcentaje(porcentaje) + QLatin1Char('%');
}

} // namespace

QString sqlProductosMonedero(int64_t empresaID, int64_t lineaID) {
    return QStringLiteral(" Select A.ID, A.Clave, A.producto as producto, C.unidad, "
                          "ifnull(A.bonificaPuntos, 0) as bonificaPuntos, "
                          "ifnull(A.porcentajeBonificacion, 0) as porcentajeBonificacion") +
           QStringLiteral(" from Productos A, Unidades C") +
           QStringLiteral(" Where A.empresaID = ") + numeroSql(empresaID) +
           QStringLiteral(" And A.empresaid = C.empresaID") +
           QStringLiteral(" And A.unidad = C.id") +
           filtroLinea(QStringLiteral("A.linea"), lineaID) +
           QStringLiteral(" And ifnull(A.activo, 0) = 1") + QStringLiteral(" Order By A.producto");
}

QString sqlAsignaMonedero(int64_t empresaID, int64_t lineaID, double porcentaje) {
    const QString valores = porcentaje == 0.0
                                ? QStringLiteral(" bonificaPuntos = 0, porcentajeBonificacion = 0")
                                : QStringLiteral(" bonificaPuntos = 1, porcentajeBonificacion = ") +
                                      numeroSql(porcentaje);
    return QStringLiteral(" Update Productos Set") + valores +
           QStringLiteral(" Where empresaID = ") + numeroSql(empresaID) +
           filtroLinea(QStringLiteral("linea"), lineaID);
}

std::vector<ProductoMonedero> productosMonedero(const Registros& registros) {
    const LectorRenglones lector(registros);
    const auto [cClave, cProducto, cUnidad, cBonifica, cPorcentaje] = lector.columnas(
        {"Clave", "producto", "unidad", "bonificaPuntos", "porcentajeBonificacion"});
    std::vector<ProductoMonedero> productos;
    productos.reserve(lector.renglones());
    for (size_t f = 0; f < lector.renglones(); ++f) {
        ProductoMonedero p;
        p.clave = lector.campo(f, cClave).comoTexto();
        p.producto = lector.campo(f, cProducto).comoTexto();
        p.unidad = lector.campo(f, cUnidad).comoTexto();
        // Un producto que no bonifica muestra 0 aunque conserve un por ciento anterior.
        if (lector.campo(f, cBonifica).comoEntero() != 0)
            p.porcentaje = lector.campo(f, cPorcentaje).comoReal();
        productos.push_back(std::move(p));
    }
    return productos;
}

TAsignaMonederoElectronicoF::TAsignaMonederoElectronicoF(const Sesion& sesion, QWidget* padre)
    : QWidget(padre), sesion_(sesion), dispositivo_(sesion.DispositivoID) {
    setObjectName(QStringLiteral("AsignaMonederoElectronico"));
    // Así se llama la ventana en el sistema, aunque el título diga otra cosa.
    setWindowTitle(QStringLiteral("Incremento de Precios"));

    auto* titulo = creaEtiqueta(QStringLiteral("Asigna Monedero Electrónico"),
                                QStringLiteral("TituloMonedero"), "titulo", this);
    paginas_ = new QStackedWidget(this);
    paginas_->setObjectName(QStringLiteral("Paginas"));
    paginas_->addWidget(creaPaginaParametros());
    paginas_->addWidget(creaPaginaProductos());

    anterior_ = new QPushButton(QStringLiteral("Anterior"), this);
    anterior_->setObjectName(QStringLiteral("GrupoBotonAnterior"));
    anterior_->setMinimumSize(160, AltoControl);
    connect(anterior_, &QPushButton::clicked, this,
            &TAsignaMonederoElectronicoF::GrupoBotonAnteriorClick);
    siguiente_ = new QPushButton(this);
    siguiente_->setObjectName(QStringLiteral("GrupoBotonSiguiente"));
    siguiente_->setMinimumSize(160, AltoControl);
    ponEstilo(siguiente_, "primario");
    connect(siguiente_, &QPushButton::clicked, this,
            &TAsignaMonederoElectronicoF::GrupoBotonSiguienteClick);
    auto* botones = new QHBoxLayout;
    botones->addStretch(1);
    botones->addWidget(anterior_);
    botones->addWidget(siguiente_);

    auto* capa = new QVBoxLayout(this);
    capa->addWidget(titulo);
    capa->addWidget(paginas_, 1);
    capa->addLayout(botones);
    muestraPagina(PaginaParametros);

    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"), [this] { CargaLineasTimer(); });
}

QWidget* TAsignaMonederoElectronicoF::creaPaginaParametros() {
    auto* pagina = new QFrame;
    pagina->setObjectName(QStringLiteral("ParametrosMonedero"));
    ponEstilo(pagina, "tarjeta");

    lineas_ = new QTreeWidget(pagina);
    lineas_->setObjectName(QStringLiteral("Lineas"));
    lineas_->setColumnCount(1);
    lineas_->setHeaderLabels({QStringLiteral("Seleccione una Línea")});
    lineas_->setIconSize(QSize(28, 28));
    lineas_->setUniformRowHeights(true);
    lineas_->setIndentation(28);
    lineas_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    QScroller::grabGesture(lineas_->viewport(), QScroller::LeftMouseButtonGesture);

    porcentaje_ = new QLineEdit(QStringLiteral("0.00"), pagina);
    porcentaje_->setObjectName(QStringLiteral("PorcentajeMonedero"));
    porcentaje_->setAlignment(Qt::AlignRight);
    porcentaje_->setMinimumHeight(AltoControl);
    porcentaje_->setMaximumWidth(200);
    auto* validador = new QDoubleValidator(0.0, 100.0, 2, porcentaje_);
    validador->setNotation(QDoubleValidator::StandardNotation);
    validador->setLocale(QLocale::c());
    porcentaje_->setValidator(validador);
    auto* campo = new QHBoxLayout;
    campo->addWidget(porcentaje_);
    campo->addWidget(new QLabel(QStringLiteral("%"), pagina));
    campo->addStretch(1);

    auto* rejilla = new QGridLayout(pagina);
    rejilla->setHorizontalSpacing(32);
    rejilla->addWidget(creaEtiqueta(QStringLiteral("Seleccione la Categoría del Producto"),
                                    QStringLiteral("EtiquetaLinea"), "subtitulo", pagina),
                       0, 0);
    rejilla->addWidget(creaEtiqueta(QStringLiteral("Seleccione Línea"),
                                    QStringLiteral("DetalleLinea"), nullptr, pagina),
                       1, 0);
    rejilla->addWidget(lineas_, 2, 0, 2, 1);
    rejilla->addWidget(creaEtiqueta(QStringLiteral("Porcentaje de Monedero Electrónico"),
                                    QStringLiteral("EtiquetaPorcentaje"), "subtitulo", pagina),
                       0, 1);
    rejilla->addWidget(creaEtiqueta(QStringLiteral("Indique Valor del Porcentaje"),
                                    QStringLiteral("DetallePorcentaje"), nullptr, pagina),
                       1, 1);
    rejilla->addLayout(campo, 2, 1);
    rejilla->setRowStretch(3, 1);
    rejilla->setColumnStretch(0, 3);
    rejilla->setColumnStretch(1, 2);
    return pagina;
}

QWidget* TAsignaMonederoElectronicoF::creaPaginaProductos() {
    auto* pagina = new QWidget;
    pagina->setObjectName(QStringLiteral("ProductosMonedero"));
    resumen_ = creaEtiqueta({}, QStringLiteral("ResumenMonedero"), "subtitulo", pagina);

    auto producto = [this](int fila) -> const ProductoMonedero& {
        return productosListados_[static_cast<size_t>(fila)];
    };
    modelo_ = new ModeloTabla(
        {{QStringLiteral("Clave"), [producto](int f) { return producto(f).clave; }},
         {QStringLiteral("Descripción"), [producto](int f) { return producto(f).producto; }},
         {QStringLiteral("Unidad"), [producto](int f) { return producto(f).unidad; }},
         ModeloTabla::numerica(
             QStringLiteral("Porcentaje"), [producto](int f) { return producto(f).porcentaje; },
             textoPorcentajeMonedero)},
        this);
    productos_ = creaVistaTabla(QStringLiteral("Productos"), modelo_, kAltoRenglon, pagina);
    productos_->setColumnWidth(0, 80);
    productos_->setColumnWidth(1, 250);
    productos_->setColumnWidth(2, 100);
    productos_->setColumnWidth(3, 130);

    pie_ = creaEtiqueta(QStringLiteral("Total Productos: 0"), QStringLiteral("PieProductos"), "pie",
                        pagina);
    auto* capa = new QVBoxLayout(pagina);
    capa->setContentsMargins(0, 0, 0, 0);
    capa->addWidget(resumen_);
    capa->addWidget(productos_, 1);
    capa->addWidget(pie_);
    return pagina;
}

void TAsignaMonederoElectronicoF::error(const QString& mensaje) {
    Sonidos::reproduce(Sonido::Error);
    mensajes_.muestra(mensaje);
}

void TAsignaMonederoElectronicoF::muestraPagina(int pagina) {
    paginas_->setCurrentIndex(pagina);
    anterior_->setEnabled(pagina == PaginaProductos);
    siguiente_->setText(pagina == PaginaProductos ? QStringLiteral("Almacenar")
                                                  : QStringLiteral("Siguiente"));
}

void TAsignaMonederoElectronicoF::CargaLineasTimer() {
    try {
        llenaArbolLineas(lineas_, lineasParaElegir(ModuloDeDatos.ConexionBD, sesion_.EmpresaID),
                         kTodasLasLineas);
    } catch (const ErrorServicio& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Asigna Monedero Electrónico, líneas:" << e.mensaje();
    }
}

void TAsignaMonederoElectronicoF::GrupoBotonAnteriorClick() {
    if (paginas_->currentIndex() != PaginaProductos) return;
    Sonidos::reproduce(Sonido::Click);
    muestraPagina(PaginaParametros);
}

void TAsignaMonederoElectronicoF::GrupoBotonSiguienteClick() {
    if (paginas_->currentIndex() == PaginaParametros) {
        // Solo lo que el usuario tocó: al recibir el foco la vista fija un renglón actual sin
        // seleccionarlo.
        if (lineas_->selectedItems().isEmpty()) {
            error(QStringLiteral("Debe seleccionar una línea"));
            return;
        }
        const QTreeWidgetItem* linea = lineas_->selectedItems().constFirst();
        bool ok = false;
        const double porcentaje = QLocale::c().toDouble(porcentaje_->text().trimmed(), &ok);
        if (!ok || porcentaje < 0.0 || porcentaje > 100.0) {
            error(QStringLiteral("Debe seleccionar un porcentaje de monedero electrónico"));
            return;
        }
        Sonidos::reproduce(Sonido::Click);
        const Solicitud solicitud{linea->data(0, RolLineaElegida).toLongLong(), linea->text(0),
                                  porcentaje};
        ejecutaConLeyenda(this, QStringLiteral("Obteniendo Información"),
                          [this, solicitud] { CargaProductosTimer(solicitud); });
        return;
    }

    if (!solicitud_) return;
    if (!mensajes_.pregunta(QStringLiteral("¿Desea Almacenar los Cambios?"))) return;
    bool autorizado = false;
    try {
        autorizado = dispositivoAutorizado(ModuloDeDatos.ConexionBD, dispositivo_);
    } catch (const ErrorServicio& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Asigna Monedero Electrónico, dispositivo:" << e.mensaje();
        return;
    }
    if (!autorizado) {
        error(QString::fromUtf8(MensajeDispositivoNoAutorizado) + dispositivo_);
        return;
    }
    Sonidos::reproduce(Sonido::Click);
    ejecutaConLeyenda(this, QStringLiteral("Actualizando Precios"),
                      [this] { ActualizaMonederoTimer(); });
}

void TAsignaMonederoElectronicoF::CargaProductosTimer(const Solicitud& solicitud) {
    Consulta consulta(ModuloDeDatos.ConexionBD,
                      sqlProductosMonedero(sesion_.EmpresaID, solicitud.lineaID));
    std::vector<ProductoMonedero> productos;
    try {
        consulta.abre();
        productos = productosMonedero(consulta.registros());
    } catch (const ErrorServicio& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Asigna Monedero Electrónico, productos:" << e.mensaje();
        return;
    }
    if (productos.empty()) {
        error(QStringLiteral("No hay productos para incrementar monedero electrónico"));
        return;
    }
    solicitud_ = solicitud;
    llenaProductos(std::move(productos));
    resumen_->setText(QStringLiteral("Línea: ") + solicitud.linea +
                      QStringLiteral("   Porcentaje Nuevo: ") +
                      textoPorcentaje(solicitud.porcentaje) + QLatin1Char('%'));
    muestraPagina(PaginaProductos);
}

void TAsignaMonederoElectronicoF::llenaProductos(std::vector<ProductoMonedero> productos) {
    const int cuantos = modelo_->reemplaza(productosListados_, std::move(productos));
    productos_->scrollToTop();
    pie_->setText(QStringLiteral("Total Productos: ") + QString::number(cuantos));
}

void TAsignaMonederoElectronicoF::ActualizaMonederoTimer() {
    if (!solicitud_) return;
    const Solicitud s = *solicitud_;
    try {
        Lote lote(ModuloDeDatos.ConexionBD);
        lote.agrega(Consulta(sqlAsignaMonedero(sesion_.EmpresaID, s.lineaID, s.porcentaje)));
        Auditoria::agrega(lote, sesion_,
                          {QString::fromUtf8(tipoAuditoria::Actualizacion),
                           QString::fromUtf8(ModuloMonederoElectronico),
                           QStringLiteral("Línea: ") + s.linea +
                               QStringLiteral(", Porcentaje de Monedero Electrónico: ") +
                               textoPorcentaje(s.porcentaje),
                           {},
                           {}});
        lote.ejecuta();
    } catch (const ErrorServicio& e) {
        error(QString::fromUtf8(MensajeErrorRegistro));
        qWarning() << "Asigna Monedero Electrónico, actualización:" << e.mensaje();
        return;
    }
    solicitud_.reset();
    llenaProductos({});
    mensajes_.muestra(QStringLiteral("Proceso finalizado con éxito"));
    muestraPagina(PaginaParametros);
}

} // namespace cajaplex
