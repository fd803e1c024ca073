#pragma once

#include <QString>
#include <QWidget>

#include "datos/Sesion.h"

namespace cajaplex {

struct EntradaMenu;

// El grupo del registro cuyas entradas muestra "Utilerías de Productos" (no el menú principal).
inline constexpr const char* GrupoUtileriasProductos = "Utilerías de Productos";

// "Utilerías de Productos": el menú de las utilerías del catálogo, en el orden del sistema. Solo
// aparecen las entradas registradas que el perfil puede abrir.
class TUtileriasProductosF : public QWidget {
    Q_OBJECT
public:
    explicit TUtileriasProductosF(const Sesion& sesion, QWidget* padre = nullptr);

    // Los nombres de las entradas del registro, en el orden en que se muestran.
    static const QStringList& nombresEntradas();

signals:
    // La ventana principal la pone encima del menú con su barra de título y "Regresar". Si nadie
    // la atiende, la pantalla se abre en su propia ventana.
    void abreModulo(QWidget* pantalla, const QString& titulo);

private:
    void abre(const EntradaMenu& entrada);

    const Sesion& sesion_;
};

} // namespace cajaplex
