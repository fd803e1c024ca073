#pragma once

#include <QList>
#include <QString>

#include "datos/Sesion.h"

namespace cajaplex {

class AjustesEstacion;
class TModuloDeDatos;

// Lo que el cuadro de acceso tiene escrito al pedir entrar.
struct DatosAcceso {
    QString direccion;
    QString puerto;
    QString usuario;
    QString contrasena;
};

// Resultado de un intento: el mensaje que lo detuvo, o las empresas a las que el usuario puede
// entrar (una sesión lista por empresa, la de empresaID menor primero).
struct ResultadoAcceso {
    QString mensaje;
    QList<Sesion> empresas;
    bool aceptado() const { return mensaje.isEmpty(); }
};

// La validación del acceso, sin widgets. Vive lo que vive la ventana principal: tres intentos
// fallidos bloquean el acceso hasta reiniciar el programa.
class InicioSesion {
public:
    static constexpr int IntentosPermitidos = 3;

    InicioSesion(TModuloDeDatos& modulo, AjustesEstacion& ajustes, QString dispositivoID);

    // Revisa, en orden: campos vacíos, intentos, guarda servidor y puerto en los ajustes,
    // conecta, autorización del dispositivo y usuario con sus empresas.
    ResultadoAcceso valida(const DatosAcceso& datos);

    int intentosFallidos() const { return intentosFallidos_; }
    // Usuario y contraseña del último acceso aceptado.
    const QString& usuarioAceptado() const { return usuarioAceptado_; }

private:
    bool consultaEsAdmin(const DatosAcceso& datos);
    QList<Sesion> consultaEmpresas(const DatosAcceso& datos, bool esAdmin);

    TModuloDeDatos& modulo_;
    AjustesEstacion& ajustes_;
    QString dispositivoID_;
    int intentosFallidos_ = 0;
    QString usuarioAceptado_;
};

} // namespace cajaplex
