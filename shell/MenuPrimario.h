#pragma once

#include <QString>
#include <QWidget>

#include "datos/Sesion.h"

namespace cajaplex {

// El menú principal: la empresa y el usuario de la sesión y los módulos agrupados. Pide abrir un
// módulo o cerrar la sesión; la ventana principal hace ambas cosas.
class TMenuPrimarioF : public QWidget {
    Q_OBJECT
public:
    explicit TMenuPrimarioF(const Sesion& sesion, QWidget* padre = nullptr);

signals:
    void abreModulo(QWidget* pantalla, const QString& titulo);
    void cerrarSesion();

private:
    QWidget* creaEncabezado();
    QWidget* creaModulos();

    const Sesion& sesion_;
};

} // namespace cajaplex
