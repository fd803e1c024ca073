#pragma once

#include <functional>
#include <utility>

#include <QList>
#include <QString>
#include <QStringList>

#include "datos/ConexionBD.h"
#include "protocol/Protocolo.h"

struct sqlite3;

namespace cajaplex {

// Plantillas de impresión guardadas en la estación (lo que lee la pantalla de impresión).
inline constexpr const char* SqlPlantillasLocal =
    "Select * from Reportes where empresaID = :empresaID and reporteID = :reporteID";
inline constexpr const char* SqlGuardaPlantillaLocal =
    "Insert or Replace Into Reportes (empresaID, reporteID, carpetaID, Nombre, plantilla) "
    "Values (:empresaID, :reporteID, :carpetaID, :Nombre, :plantilla)";

// El archivo SQLite cifrado de la estación. Se configura con parámetros por nombre (DriverID,
// Encrypt, Password, Database) que el manejador antesDeConectar fija antes de cada apertura.
// Los errores salen como ErrorServicio con clave "base_local".
class ConexionLocalBD : public ConexionDatos {
public:
    ConexionLocalBD() = default;
    ~ConexionLocalBD() override;
    ConexionLocalBD(const ConexionLocalBD&) = delete;
    ConexionLocalBD& operator=(const ConexionLocalBD&) = delete;

    void asignaParametro(const QString& nombre, const QString& valor);
    QString parametro(const QString& nombre) const;
    // En el orden en que se asignaron por primera vez.
    QStringList nombresParametros() const;

    std::function<void(ConexionLocalBD&)> antesDeConectar;

    // Abre con la contraseña y crea la tabla Reportes si falta. Una contraseña que no
    // corresponde deja la conexión cerrada y lanza.
    void abre();
    void cierra();
    bool abierta() const { return db_ != nullptr; }

    protocolo::Resultado ejecuta(const protocolo::Sentencia& sentencia) override;

private:
    void ejecutaGuion(const char* sql);

    QList<std::pair<QString, QString>> parametros_;
    sqlite3* db_ = nullptr;
};

} // namespace cajaplex
