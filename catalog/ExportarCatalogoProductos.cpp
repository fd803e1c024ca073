#include "catalog/ExportarCatalogoProductos.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScroller>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <QtDebug>

#include "catalog/ImportacionCatalogo.h"
#include "catalog/IncrementoPrecios.h"
#include "datos/ModuloDatos.h"
#include "pantallas/ArchivoExcel.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/Sonidos.h"

namespace cajaplex {

TExportarCatalogoProductosF::TExportarCatalogoProductosF(const Sesion& sesion, QWidget* padre)
    : QWidget(padre), sesion_(sesion) {
    setObjectName(QStringLiteral("ExportarCatalogoProductos"));
    setWindowTitle(QStringLiteral("Exportar Catálogo"));

    auto* titulo = creaEtiqueta(QStringLiteral("Exportar Catálogo de Productos"),
                                QStringLiteral("TituloExportar"), "titulo", this);
    auto* indicacion = creaEtiqueta(
        QStringLiteral("Elija una línea o todos los productos. El libro lleva las columnas del "
                       "Importador de Excel: corríjalo en la hoja e impórtelo de vuelta."),
        QStringLiteral("IndicacionExportar"), "subtitulo", this);
    indicacion->setWordWrap(true);

    lineas_ = new QTreeWidget(this);
    lineas_->setObjectName(QStringLiteral("Lineas"));
    lineas_->setAccessibleName(QStringLiteral("Línea a exportar"));
    lineas_->setColumnCount(1);
    lineas_->setHeaderLabels({QStringLiteral("Seleccione una Línea")});
    lineas_->setIconSize(QSize(28, 28));
    lineas_->setUniformRowHeights(true);
    lineas_->setIndentation(28);
    QScroller::grabGesture(lineas_->viewport(), QScroller::LeftMouseButtonGesture);

    exportar_ = creaBoton(QStringLiteral("Exportar"), QStringLiteral("Exportar a Excel"),
                          QStringLiteral("BotonExportar"), "primario", this);
    exportar_->setEnabled(false);
    connect(exportar_, &QPushButton::clicked, this,
            &TExportarCatalogoProductosF::BotonExportarClick);
    connect(lineas_, &QTreeWidget::currentItemChanged, this,
            [this](QTreeWidgetItem* actual) { exportar_->setEnabled(actual != nullptr); });

    auto* abajo = new QHBoxLayout;
    abajo->addStretch(1);
    abajo->addWidget(exportar_);
    auto* capa = new QVBoxLayout(this);
    capa->setContentsMargins(24, 16, 24, 16);
    capa->addWidget(titulo);
    capa->addWidget(indicacion);
    capa->addWidget(lineas_, 1);
    capa->addLayout(abajo);

    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"), [this] { CargaLineasTimer(); });
}

void TExportarCatalogoProductosF::CargaLineasTimer() {
    try {
        llenaArbolLineas(lineas_, lineasParaElegir(ModuloDeDatos.ConexionBD, sesion_.EmpresaID),
                         QStringLiteral("TODOS LOS PRODUCTOS"));
        lineas_->setCurrentItem(lineas_->topLevelItem(0));
    } catch (const ErrorServicio& e) {
        Sonidos::reproduce(Sonido::Error);
        mensajes_.muestra(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Exportar Catálogo, líneas:" << e.mensaje();
    }
}

void TExportarCatalogoProductosF::BotonExportarClick() {
    Sonidos::reproduce(Sonido::Click);
    const QString ruta = pideArchivoExcelNuevo(this, QStringLiteral("Exportar Catálogo"),
                                               QStringLiteral("CatalogoProductos.xlsx"));
    if (ruta.isEmpty()) return;
    ejecutaConLeyenda(this, QStringLiteral("Exportando Información"),
                      [this, ruta] { exportaA(ruta); });
}

bool TExportarCatalogoProductosF::exportaA(const QString& ruta) {
    const QTreeWidgetItem* elegida = lineas_->currentItem();
    if (elegida == nullptr) return false;
    const int64_t lineaID = elegida->data(0, RolLineaElegida).toLongLong();
    try {
        const int productos =
            exportaCatalogoProductos(ModuloDeDatos.ConexionBD, sesion_.EmpresaID, lineaID, ruta);
        mensajes_.muestra(QStringLiteral("Archivo generado: %1\nProductos exportados: %2")
                              .arg(ruta)
                              .arg(productos));
        return true;
    } catch (const ErrorServicio& e) {
        Sonidos::reproduce(Sonido::Error);
        mensajes_.muestra(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Exportar Catálogo:" << e.mensaje();
    } catch (const ErrorHoja& e) {
        Sonidos::reproduce(Sonido::Error);
        mensajes_.muestra(QStringLiteral("No se pudo generar el archivo: ") + ruta);
        qWarning() << "Exportar Catálogo:" << e.mensaje();
    }
    return false;
}

} // namespace cajaplex
