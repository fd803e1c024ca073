#pragma once

#include <cstdint>

#include <QByteArray>
#include <QHash>
#include <QSet>
#include <QString>

namespace cajaplex {

class ConexionBD;

// Los derechos del perfil del usuario, leídos una vez al entrar. Los de ventas, compras y
// cuentas por cobrar llevan el nombre de su columna (precio1, descuento, corteCaja, cancelarRM...).
struct DerechosPerfil {
    QSet<QString> menus; // PermisosSistema.menú con acceso = 1
    QHash<QString, bool> ventas;
    QHash<QString, bool> compras;
    QHash<QString, bool> cuentasPorCobrar;
};

// Valores que fija el inicio de sesión, con los nombres de las columnas de la consulta de
// empresas. Viven mientras la sesión está abierta.
struct Sesion {
    int64_t UsuarioID = 0;
    int64_t EmpresaID = 0;
    QString NombreEmpresa;
    QString NombreDeUsuario;
    QString Rfc;
    bool esHombre = true;
    bool controlRestaurantes = false;
    QByteArray Logotipo1;
    bool esAdmin = false;
    int64_t perfilID = 0;
    DerechosPerfil derechos;
    // Identificador de la estación (Cajaplex.ini), para las pantallas que revisan su autorización.
    QString DispositivoID;

    // El único lugar que responde "¿puede esta sesión...?". Un administrador puede todo.
    bool puede(const QString& menu) const { return esAdmin || derechos.menus.contains(menu); }
    bool puedeVentas(const QString& derecho) const {
        return esAdmin || derechos.ventas.value(derecho, false);
    }
    bool puedeCompras(const QString& derecho) const {
        return esAdmin || derechos.compras.value(derecho, false);
    }
    bool puedeCuentasPorCobrar(const QString& derecho) const {
        return esAdmin || derechos.cuentasPorCobrar.value(derecho, false);
    }
};

// Lee el perfil del usuario y sus derechos: las entradas del menú permitidas y los renglones de
// PerfilesUsuariosVentas, PerfilesUsuariosCompras y PerfilesUsuariosCxC. Lanza ErrorServicio.
DerechosPerfil leeDerechosUsuario(ConexionBD& conexion, int64_t usuarioID, int64_t& perfilID);

} // namespace cajaplex
