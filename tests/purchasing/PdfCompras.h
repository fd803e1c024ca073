// Lo que comparten las pruebas de compras que imprimen a PDF: la base local de la estación con
// las plantillas predeterminadas y el texto del PDF que quedó en su carpeta.
#pragma once

#include <QFile>
#include <QPdfDocument>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "datos/ModuloDatos.h"
#include "printing/ImpresionDocumentos.h"
#include "printing/PlantillasLocales.h"
#include "tests/fixtures/PruebaPantallas.h"

namespace cajaplex::prueba {

// La base local en `carpeta` con las plantillas predeterminadas, como la deja el inicio de sesión.
inline void preparaPlantillasLocales(const QTemporaryDir& carpeta, const Sesion& sesion) {
    ModuloDeDatos.ConexionLocalBD.cierra();
    ModuloDeDatos.ArchivoLocalBD = carpeta.filePath(QStringLiteral("Cajaplex.db"));
    ModuloDeDatos.ContrasenaLocalBD = QStringLiteral("clave-local");
    actualizaCopiaLocalPlantillas(ModuloDeDatos, sesion);
}

// Espera el PDF de la estación y devuelve su texto sin espacios (las columnas angostas parten las
// palabras en renglones); vacío si no llegó o no se pudo leer.
inline QString textoPdfLocal(const QTemporaryDir& carpeta) {
    const QString archivo = carpeta.filePath(QString::fromUtf8(ArchivoPdfLocal));
    if (!esperaHasta([&] { return QFile::exists(archivo); }, 15000)) return {};
    QPdfDocument pdf;
    if (pdf.load(archivo) != QPdfDocument::Error::None) return {};
    QString texto;
    for (int i = 0; i < pdf.pageCount(); ++i)
        texto += pdf.getAllText(i).text();
    return texto.remove(QRegularExpression(QStringLiteral("\\s")));
}

} // namespace cajaplex::prueba
