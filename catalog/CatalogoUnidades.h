#pragma once

#include <cstdint>
#include <vector>

#include <QString>

#include "datos/Consulta.h"
#include "datos/Sesion.h"

namespace cajaplex {

class ConexionBD;

// Módulo con que las unidades firman la bitácora.
inline constexpr const char* ModuloUnidadesMedida = "Catálogos -> Unidades de Medida";

struct UnidadMedida {
    int64_t id = 0;
    QString unidad;
    QString claveSAT;
};

// Las unidades de medida de la empresa de la sesión. Cada cambio va en una transacción del
// servicio con su renglón de bitácora.
class CatalogoUnidades {
public:
    CatalogoUnidades(ConexionBD& conexion, const Sesion& sesion);

    // Por nombre.
    std::vector<UnidadMedida> consulta();
    // Devuelve el ID de la unidad nueva.
    int64_t inserta(const QString& unidad, const QString& claveSAT);
    void modifica(const UnidadMedida& nueva, const UnidadMedida& anterior);
    // Falso si algún producto la usa: entonces no se toca. La revisión va en la misma
    // transacción que el borrado, así otra estación no cuela un producto entre ambos.
    bool elimina(const UnidadMedida& unidad);

    Consulta ConsultaUnidades;
    Consulta InsertaUnidad;
    Consulta UnidadInsertada;
    Consulta ActualizaUnidad;

private:
    ConexionBD& conexion_;
    const Sesion& sesion_;
};

} // namespace cajaplex
