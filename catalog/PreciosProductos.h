#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include <QString>
#include <QStringList>

#include "catalog/CatalogoLineas.h"
#include "datos/Sesion.h"

namespace cajaplex {

class ConexionBD;
class ConexionDatos;
class Registros;

// Línea elegida que abarca a todos los productos de la empresa.
inline constexpr int64_t TodasLasLineas = -1;

// Las líneas de la empresa para elegir una: "Order By Padre, linea", sin fotos.
std::vector<LineaProducto> lineasParaElegir(ConexionDatos& conexion, int64_t empresaID);

// El valor del que parten los cinco precios nuevos, en el orden en que se ofrece.
enum class ReferenciaPrecio { Costo, Precio1, Precio2, Precio3, Precio4, Precio5 };
inline constexpr int NivelesPrecio = 5;

// "COSTO", "PRECIO 1" ... "PRECIO 5".
const QStringList& nombresReferencia();
// La columna de Productos que se toma como referencia: "PCompra", "Precio", "Precio2"...
QString columnaReferencia(ReferenciaPrecio referencia);

// Por ciento tecleado por nivel; un nivel vacío vale 0 (queda igual a la referencia).
using PorcentajesIncremento = std::array<double, NivelesPrecio>;

// El factor que lleva la sentencia: el por ciento entre cien.
double factorIncremento(double porcentaje);
// Lo que la sentencia guardará: R + (R * factor), con las mismas operaciones que hace la base.
double precioIncrementado(double referencia, double porcentaje);

// Vista previa: productos activos de la línea (o de la empresa) con su costo y sus precios.
QString sqlVistaPreviaIncremento(int64_t empresaID, int64_t lineaID);
// Una sola sentencia para los cinco niveles; filtra por línea, no por activo.
QString sqlIncrementoPrecios(int64_t empresaID, int64_t lineaID, ReferenciaPrecio referencia,
                             const PorcentajesIncremento& porcentajes);

struct ProductoIncremento {
    int64_t id = 0;
    QString clave;
    QString producto;
    QString unidad;
    double costo = 0.0;
    std::array<double, NivelesPrecio> precios{};
    std::array<double, NivelesPrecio> nuevos{};
};

std::vector<ProductoIncremento> vistaPreviaIncremento(const Registros& registros,
                                                      ReferenciaPrecio referencia,
                                                      const PorcentajesIncremento& porcentajes);

// Aplica el incremento y su renglón de bitácora en un solo lote. `nombreLinea` solo va a la
// bitácora.
void aplicaIncrementoPrecios(ConexionBD& conexion, const Sesion& sesion, int64_t lineaID,
                             const QString& nombreLinea, ReferenciaPrecio referencia,
                             const PorcentajesIncremento& porcentajes);

inline constexpr const char* ModuloIncrementoPrecios = "Catálogos -> Incremento de Precios";

} // namespace cajaplex
