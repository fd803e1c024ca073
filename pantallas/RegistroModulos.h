#pragma once

#include <functional>
#include <vector>

#include <QString>

#include "datos/Sesion.h"

class QWidget;

namespace cajaplex {

// Una pantalla que el menú (o otra pantalla) puede abrir. `permiso` es el texto de
// PermisosSistema.menú que la autoriza: el título que muestra el menú, salvo que la entrada diga
// otro (el kardex se abre con el permiso del catálogo).
struct EntradaMenu {
    QString grupo;  // el subsistema al que pertenece
    QString nombre; // objectName de su botón: "Modulo" + nombre en el menú
    QString titulo;
    QString imagen;
    std::function<QWidget*(const Sesion&)> fabrica;
    QString permiso = {};
    // Falso para las entradas que no aplican a la empresa (modo restaurante...).
    std::function<bool(const Sesion&)> aplica = [](const Sesion&) { return true; };

    const QString& nombrePermiso() const { return permiso.isEmpty() ? titulo : permiso; }
    // Visible para esta sesión: aplica a la empresa y el perfil la permite.
    bool visible(const Sesion& sesion) const;
};

inline constexpr const char* MensajeSinPermiso = "Su perfil no tiene acceso a: ";

// El registro de las pantallas de todos los módulos. Cada carpeta de módulo agrega las suyas con
// su función registraModulos...(); la aplicación las llama al arrancar.
class RegistroModulos {
public:
    static void registra(EntradaMenu entrada);
    static const std::vector<EntradaMenu>& entradas();
    static const EntradaMenu* busca(const QString& nombre);
    // Los nombres de permiso de todas las entradas, sin repetir, en orden de registro.
    static QStringList permisos();

    // Crea la pantalla si la sesión tiene el permiso; si no, lo dice y devuelve nullptr.
    static QWidget* crea(const EntradaMenu& entrada, const Sesion& sesion, QWidget* padre);
};

// Revisión para una pantalla abierta por otro camino que el menú: verdadero si la sesión tiene
// `permiso`; si no, lo dice con su mensaje.
bool exigePermiso(const Sesion& sesion, const QString& permiso, QWidget* padre);

} // namespace cajaplex
