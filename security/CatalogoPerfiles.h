#pragma once

#include <cstdint>
#include <vector>

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include "datos/Consulta.h"
#include "datos/Sesion.h"

namespace cajaplex {

class ConexionBD;

// Módulo con que los perfiles firman la bitácora.
inline constexpr const char* ModuloPerfiles = "Usuarios -> Perfiles";

inline constexpr const char* MensajePerfilSinNombre = "Ingrese el Nombre del Perfil";
inline constexpr const char* MensajePerfilExiste = "El Perfil ya existe";
inline constexpr const char* MensajePerfilEnUso =
    "No puede eliminar un Perfil con Transacciones Registradas";

// Un derecho de un perfil: la columna de su tabla, cómo se muestra y su valor para un perfil nuevo
// (el mismo que la tabla pone por omisión).
struct DefinicionDerecho {
    QString columna;
    QString titulo;
    bool omision = false;
};

// Una tabla de derechos, con un renglón por perfil y una columna booleana por derecho.
struct GrupoDerechos {
    QString tabla; // "PerfilesUsuariosVentas"...
    QString titulo;
    QList<DefinicionDerecho> derechos;
};

// Ventas, compras y cuentas por cobrar, en ese orden.
const QList<GrupoDerechos>& gruposDerechos();

struct Perfil {
    int64_t perfilID = 0;
    QString nombre;
    int64_t usuarios = 0; // cuántos usuarios lo tienen
};

struct PermisoMenu {
    QString menu;
    bool acceso = false;
};

// Lo que se edita de un perfil.
struct DatosPerfil {
    int64_t perfilID = 0; // 0: alta
    QString nombre;
    // Primero las entradas que registran los módulos, en su orden; luego las que el perfil tiene
    // en PermisosSistema y ya no registra ningún módulo.
    QList<PermisoMenu> menus;
    // Paralelo a gruposDerechos(): columna -> valor.
    QList<QHash<QString, bool>> derechos;
};

// Los perfiles de usuario (globales, sin empresa). Cada cambio va en una transacción del servicio
// con su renglón de bitácora.
class CatalogoPerfiles {
public:
    CatalogoPerfiles(ConexionBD& conexion, const Sesion& sesion);

    // Por nombre.
    std::vector<Perfil> consulta();
    // Un perfil nuevo: ningún menú y los derechos por omisión.
    static DatosPerfil nuevo(const QStringList& registrados);
    DatosPerfil lee(const Perfil& perfil, const QStringList& registrados);
    // Vacío si se almacenó (perfil.perfilID queda con la llave); si no, el motivo del rechazo.
    // `anterior` es lo leído antes de editar, para la bitácora (nullptr en un alta).
    QString almacena(DatosPerfil& perfil, const DatosPerfil* anterior);
    // Falso si algún usuario lo tiene: entonces no se toca.
    bool elimina(const Perfil& perfil);

    Consulta ConsultaPerfiles;
    Consulta PerfilRepetido;
    Consulta InsertaPerfil;
    Consulta PerfilInsertado;
    Consulta ActualizaPerfil;
    Consulta ConsultaPermisos;
    Consulta BorraPermisos;
    Consulta InsertaPermiso;
    Consulta UsuariosDelPerfil;
    Consulta BorraPerfil;

private:
    ConexionBD& conexion_;
    const Sesion& sesion_;
};

} // namespace cajaplex
