#include "pantallas/ArchivoExcel.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QStandardPaths>

namespace cajaplex {

QString pideArchivoExcelNuevo(QWidget* padre, const QString& titulo, const QString& nombre) {
    const QString carpeta = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    QString ruta = QFileDialog::getSaveFileName(padre, titulo, QDir(carpeta).filePath(nombre),
                                                QStringLiteral("Libro de Excel (*.xlsx)"));
    if (ruta.isEmpty()) return ruta;
    if (QFileInfo(ruta).suffix().compare(QStringLiteral("xlsx"), Qt::CaseInsensitive) != 0)
        ruta += QStringLiteral(".xlsx");
    return ruta;
}

} // namespace cajaplex
