#pragma once

#include <QSettings>
#include <QString>
#include <QVariant>

namespace cajaplex {

// Ajustes de la estación en Cajaplex.ini, sección "CajaplexOmnivar". Sin carpeta se usa la de
// configuración del usuario. Los cambios llegan al archivo con guarda().
class AjustesEstacion {
public:
    explicit AjustesEstacion(QString carpeta = {});

    QString ruta() const { return ajustes_.fileName(); }

    QString direccionServidor() const;
    void ponDireccionServidor(const QString& direccion);
    int puertoServidor() const;
    void ponPuertoServidor(int puerto);
    bool utilizarSonidos() const;
    void ponUtilizarSonidos(bool utilizar);

    QVariant valor(const QString& clave, const QVariant& omision = {}) const;
    void ponValor(const QString& clave, const QVariant& valor);

    // Escribe al archivo; falso si no se pudo.
    bool guarda();

private:
    QSettings ajustes_;
};

} // namespace cajaplex
