#pragma once

#include <memory>
#include <stdexcept>

#include <QHash>
#include <QImage>
#include <QString>
#include <QVariantMap>

class QPagedPaintDevice;
class QTextDocument;

namespace cajaplex {

// Una plantilla que no se puede leer (marcadores mal cerrados) o un documento que no se pudo
// dibujar o escribir.
class ErrorPlantilla : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Lo que recibe una plantilla: textos, banderas y listas de renglones (QVariantList de
// QVariantMap). Un texto vacío cuenta como ausente, así {{#pie}}...{{/pie}} desaparece solo. Las
// imágenes se nombran en el HTML por su clave: <img src="logotipo">.
struct DocumentoImpresion {
    QVariantMap datos;
    QHash<QString, QImage> imagenes;
};

inline constexpr double AnchoCartaMm = 215.9;
inline constexpr double AltoCartaMm = 279.4;

// El papel de la estación para un tipo de documento.
struct FormatoPapel {
    double anchoMm = 80.0; // 58, 80 o AnchoCartaMm
    // Rollo: una sola hoja tan alta como el documento. Si no, hojas del alto de una carta.
    bool continuo = true;
    int tamanoFuente = 8; // puntos
};

// Margen alrededor del contenido: poco en un rollo, el de una hoja en carta.
double margenMm(const FormatoPapel& formato);

// La plantilla con sus marcadores {{...}} sustituidos (con escape de HTML).
QString rellenaPlantilla(const QString& plantilla, const QVariantMap& datos);

// El documento listo para dibujarse: HTML ya relleno, fuente del formato e imágenes cargadas.
std::unique_ptr<QTextDocument> componeDocumento(const QString& plantilla,
                                                const DocumentoImpresion& documento,
                                                const FormatoPapel& formato);

// Ajusta la hoja de una impresora o un escritor de PDF (aún sin pintar) al formato y dibuja en
// ella el documento, partido en hojas salvo en papel continuo.
void pintaDocumento(QTextDocument& documento, QPagedPaintDevice& dispositivo,
                    const FormatoPapel& formato);

// Todo junto hacia un PDF; lo escribe completo o no lo deja a medias.
void generaPdfDocumento(const QString& plantilla, const DocumentoImpresion& documento,
                        const FormatoPapel& formato, const QString& archivo);

} // namespace cajaplex
