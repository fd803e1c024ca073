#include "catalog/Fotos.h"

#include <algorithm>

#include <QBuffer>
#include <QFileDialog>
#include <QImageReader>
#include <QStandardPaths>
#include <QTransform>

namespace cajaplex {
namespace {

QByteArray codifica(const QImage& imagen, const char* formato, int calidad = -1) {
    QByteArray bytes;
    QBuffer bufer(&bytes);
    bufer.open(QIODevice::WriteOnly);
    imagen.save(&bufer, formato, calidad);
    return bytes;
}

} // namespace

QString eligeArchivoImagen(QWidget* padre) {
    return QFileDialog::getOpenFileName(
        padre, QStringLiteral("Seleccione la Foto"),
        QStandardPaths::writableLocation(QStandardPaths::PicturesLocation),
        QStringLiteral("Imágenes (*.png *.jpg *.jpeg *.bmp *.gif *.webp *.svg);;Todos (*)"));
}

QImage leeImagen(const QString& ruta, QString* error) {
    QImageReader lector(ruta);
    lector.setAutoTransform(true);
    QImage imagen = lector.read();
    if (imagen.isNull() && error) *error = lector.errorString();
    return imagen;
}

QImage giraImagen(const QImage& imagen) {
    return imagen.transformed(QTransform().rotate(90), Qt::SmoothTransformation);
}

QByteArray fotoParaGuardar(const QImage& imagen, int ladoMaximo) {
    QImage reducida = imagen;
    if (std::max(reducida.width(), reducida.height()) > ladoMaximo)
        reducida =
            reducida.scaled(ladoMaximo, ladoMaximo, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    return reducida.hasAlphaChannel() ? codifica(reducida, "PNG") : codifica(reducida, "JPG", 85);
}

QByteArray miniaturaDe(const QImage& imagen, int lado) {
    return codifica(imagen.scaled(lado, lado, Qt::KeepAspectRatio, Qt::SmoothTransformation),
                    "PNG");
}

} // namespace cajaplex
