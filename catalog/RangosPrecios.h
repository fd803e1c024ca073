#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include <QString>

#include "datos/Consulta.h"
#include "datos/Sesion.h"

namespace cajaplex {

class ConexionBD;

// Módulo con que los rangos firman la bitácora.
inline constexpr const char* ModuloRangosPrecios = "Catálogos -> Productos -> Rangos de Precios";

// Lo que la pantalla de rangos necesita del producto: su nombre, su unidad y los cinco precios
// para "Seleccione el Precio de Venta".
struct ProductoRangos {
    int64_t id = 0;
    QString clave;
    QString producto;
    QString unidad;
    std::array<double, 5> precios{};
};

// Desde `rango` piezas el precio es `precioVenta`.
struct RangoPrecio {
    double rango = 0.0;
    double precioVenta = 0.0;
};

enum class ResultadoRango { Almacenado, Repetido };

// Los precios por volumen de un producto de la empresa de la sesión. Un producto no repite
// cantidad: la revisión va en la misma transacción que el alta o el cambio, con su bitácora.
class RangosPrecios {
public:
    RangosPrecios(ConexionBD& conexion, const Sesion& sesion);

    std::optional<ProductoRangos> producto(int64_t productoID);
    // Por cantidad.
    std::vector<RangoPrecio> consulta(int64_t productoID);
    ResultadoRango inserta(const ProductoRangos& producto, const RangoPrecio& rango);
    // El rango se localiza por su cantidad anterior.
    ResultadoRango modifica(const ProductoRangos& producto, const RangoPrecio& anterior,
                            const RangoPrecio& nuevo);
    void elimina(const ProductoRangos& producto, const RangoPrecio& rango);

    Consulta ConsultaProducto;
    Consulta ConsultaRangos;
    Consulta InsertaRango;
    Consulta ActualizaRango;

private:
    bool existe(Transaccion& transaccion, int64_t productoID, double rango);

    ConexionBD& conexion_;
    const Sesion& sesion_;
};

} // namespace cajaplex
