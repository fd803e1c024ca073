#pragma once

#include <QFrame>
#include <QString>

class QGridLayout;
class QLabel;

namespace cajaplex {

// La tarjeta de datos de un documento abierto: pares título/valor en tres columnas, el título
// como compañero del valor (su nombre accesible) y el valor seleccionable para copiarlo.
class TarjetaDatos : public QFrame {
public:
    explicit TarjetaDatos(QWidget* padre);

    // Agrega un dato; el valor se llama `nombre` y su título "Etiqueta" + nombre.
    QLabel* agrega(const QString& titulo, const QString& nombre);

private:
    QGridLayout* rejilla_;
    int posicion_ = 0;
};

} // namespace cajaplex
