#pragma once

#include <functional>
#include <vector>

#include <QString>
#include <QWidget>

#include "Sesion.h"

namespace cajaplex {

// "Utilerías de Productos": el menú de las utilerías del catálogo, en el orden del sistema. Solo
// aparecen las entradas cuya pantalla existe.
class TUtileriasProductosF : public QWidget {
    Q_OBJECT
public:
    explicit TUtileriasProductosF(const Sesion& sesion, QWidget* padre = nullptr);

    struct Entrada {
        QString nombre; // objectName del botón: "Boton" + nombre
        QString titulo;
        QString imagen;
        std::function<QWidget*(const Sesion&)> crea;
    };
    static const std::vector<Entrada>& entradas();

signals:
    // La ventana principal la pone encima del menú con su barra de título y "Regresar". Si nadie
    // la atiende, la pantalla se abre en su propia ventana.
    void abreModulo(QWidget* pantalla, const QString& titulo);

private:
    void abre(const Entrada& entrada);

    const Sesion& sesion_;
};

} // namespace cajaplex
