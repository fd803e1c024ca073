#pragma once

#include <QSettings>
#include <QString>
#include <QVariant>

namespace cajaplex {

class ConexionBD;

// Ajustes de la estación en Cajaplex.ini, sección "CajaplexOmnivar". Sin carpeta se usa la de la
// instalación (ponCarpetaPredeterminada) o, sin ella, la de configuración del usuario. Los
// cambios llegan al archivo con guarda().
class AjustesEstacion {
public:
    explicit AjustesEstacion(QString carpeta = {});

    // La carpeta de esta instalación (--configuracion): la usan todas las pantallas que leen sus
    // ajustes sin nombrar carpeta.
    static void ponCarpetaPredeterminada(const QString& carpeta);

    QString ruta() const { return ajustes_.fileName(); }
    // Carpeta del archivo; ahí vive también la base local de la estación.
    QString carpeta() const;

    QString direccionServidor() const;
    void ponDireccionServidor(const QString& direccion);
    int puertoServidor() const;
    void ponPuertoServidor(int puerto);
    bool utilizarSonidos() const;
    void ponUtilizarSonidos(bool utilizar);
    // Credenciales con que la estación se presenta ante el servicio (no las del usuario).
    QString usuarioServicio() const;
    QString contrasenaServicio() const;
    void ponCredencialesServicio(const QString& usuario, const QString& contrasena);
    // HTTPS con el certificado fijado por su huella SHA-256 al instalar (vacía: el de una
    // autoridad del sistema).
    bool usaTls() const;
    QString huellaServidor() const;
    void ponTls(bool usa, const QString& huella);
    // Deja la conexión lista con la dirección, el puerto, las credenciales y el cifrado de
    // estos ajustes: el único lugar que los traduce a la conexión.
    void configuraConexion(ConexionBD& conexion) const;
    QString contrasenaBaseLocal() const;
    void ponContrasenaBaseLocal(const QString& contrasena);
    QString dispositivoID() const;
    void ponDispositivoID(const QString& id);

    QVariant valor(const QString& clave, const QVariant& omision = {}) const;
    void ponValor(const QString& clave, const QVariant& valor);

    // Escribe al archivo; falso si no se pudo.
    bool guarda();

private:
    QSettings ajustes_;
};

} // namespace cajaplex
