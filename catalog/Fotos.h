#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

class QWidget;

namespace cajaplex {

// Lo común a las fotos del catálogo (líneas y productos): elegir el archivo, leerlo, girarlo y
// preparar lo que se guarda, una foto reducida y su miniatura.

// El diálogo de archivos en la carpeta de imágenes; vacío si se cancela.
QString eligeArchivoImagen(QWidget* padre);

// La imagen del archivo con la orientación con que la tomó la cámara; nula si no es una imagen
// (entonces `error` dice por qué).
QImage leeImagen(const QString& ruta, QString* error = nullptr);

// 90 grados a la derecha: cuatro giros la dejan como estaba.
QImage giraImagen(const QImage& imagen);

// La foto con su lado mayor a lo más en `ladoMaximo` (una foto de teléfono pesa varios MB y viaja
// en cada consulta): JPEG, o PNG si tiene transparencia, que JPEG perdería.
QByteArray fotoParaGuardar(const QImage& imagen, int ladoMaximo);

// Copia reducida que cabe en un cuadro de `lado`, en PNG.
QByteArray miniaturaDe(const QImage& imagen, int lado);

} // namespace cajaplex
