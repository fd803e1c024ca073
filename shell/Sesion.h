#pragma once

#include <cstdint>

#include <QByteArray>
#include <QString>

namespace cajaplex {

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
    // Identificador de la estación (Cajaplex.ini), para las pantallas que revisan su autorización.
    QString DispositivoID;
};

} // namespace cajaplex
