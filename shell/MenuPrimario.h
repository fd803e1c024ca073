#pragma once

#include <functional>
#include <vector>

#include <QString>
#include <QWidget>

#include "Sesion.h"

namespace cajaplex {

// Un módulo que el menú puede abrir. Agregar una pantalla al menú es agregar su renglón en
// MenuPrimario.cpp.
struct ModuloMenu {
    QString grupo;  // el subsistema al que pertenece
    QString nombre; // objectName del botón: "Modulo" + nombre
    QString titulo;
    QString imagen;
    std::function<QWidget*(const Sesion&)> crea;
    // Verdadero si se muestra a esta sesión (modo restaurante, administrador...).
    std::function<bool(const Sesion&)> visible = [](const Sesion&) { return true; };
};

const std::vector<ModuloMenu>& modulosDelMenu();

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
