#pragma once

#include <QWidget>

namespace cajaplex {

// Términos y condiciones de uso, para leer desde el cuadro de acceso. Leerlos no se registra:
// el uso del programa es la aceptación.
class TTerminosYCondicionesF : public QWidget {
    Q_OBJECT
public:
    explicit TTerminosYCondicionesF(QWidget* padre = nullptr);
};

} // namespace cajaplex
