#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <QString>

#include "datos/Sesion.h"
#include "datos/Transaccion.h"
#include "protocol/Protocolo.h"

namespace cajaplex {

class ConexionBD;
class DocumentoVenta;

inline constexpr const char* ModuloRemisiones = "Ventas -> Remisiones";
inline constexpr const char* ModuloPagosRemision = "CxC -> Pagos Remisión";
inline constexpr const char* MensajeSaldoMonedero = "Saldo insuficiente en Monedero Electrónico";
// El rechazo de la base cuando la comanda cargada ya no está por cobrar al registrar la venta.
inline constexpr const char* MensajeComandaNoPorCobrar =
    "La Comanda ya no está por cobrar (se cobró, se canceló o se reabrió en otra estación)";
// Forma de pago que gasta el monedero del cliente (se busca dentro de la descripción).
inline constexpr const char* FormaPagoMonedero = "MONEDERO ELECTRONICO";

// Una forma de pago de la página de cierre: lo entregado (doble precisión) y lo aplicado a la
// venta (precisión sencilla, como se guarda en utilizados).
struct FormaPagoVenta {
    int64_t feMetodoID = 0;
    QString descripcion;
    double importe = 0;
    float utilizados = 0;
};

// El documento de origen de la venta, si se cargó de una comanda o de una cotización.
struct OrigenVenta {
    enum class Tipo { Ninguno, Comanda, Cotizacion };
    Tipo tipo = Tipo::Ninguno;
    int64_t comandaID = 0;
    int64_t folioCotizacion = 0;
};

// Lo que la página de cierre añade a la venta.
struct CierreVenta {
    std::vector<FormaPagoVenta> pagos; // en el orden de la lista de la pantalla
    // Configura.feMetodoIDRem, la forma de pago por omisión de las ventas.
    int64_t formaPagoDefault = 0;
    int plazoPago = 0; // días; mayor que cero es venta a crédito
    QString observaciones;
    int64_t vendedor = 0;
    OrigenVenta origen;
};

struct ResultadoRegistro {
    bool registrada = false;
    int64_t folio = 0;
    int64_t id = 0;
    // Sin registrar: el mensaje para el usuario.
    QString mensaje;
    // No se supo si el servicio la guardó: registra() otra vez manda el mismo lote y la misma
    // clave, y el servicio contesta lo ya hecho en vez de guardarla dos veces.
    bool sinRespuesta = false;
};

// Registra una venta confirmada en un solo lote: todo o nada. No lee nada antes: los folios se
// toman dentro del lote de Configura, y cada valor va asignado en el lote, así que podría
// encolarse sin conexión. El documento de venta no se toca; si el servicio rechaza, queda igual
// para intentar de nuevo.
class RegistroVenta {
public:
    RegistroVenta(ConexionBD& conexion, const Sesion& sesion);

    // Arma el lote de la venta con una clave de idempotencia nueva; reemplaza uno pendiente.
    // Lanza ErrorServicio si falta un valor (un modo de IVA fuera de 1 a 4 no asigna precios).
    void confirma(const DocumentoVenta& venta, const CierreVenta& cierre);
    // Manda el lote confirmado. Se conserva (con su clave) mientras no se sepa la respuesta.
    ResultadoRegistro registra();
    bool pendiente() const { return lote_.has_value(); }

    // confirma() y registra() juntos; con un lote pendiente, lo reintenta tal cual.
    ResultadoRegistro registra(const DocumentoVenta& venta, const CierreVenta& cierre);

    // Las sentencias del lote, autosuficientes (valores asignados, folios por referencia): lo que
    // se encolaría sin conexión. Lanza ErrorServicio si falta un valor.
    static std::vector<protocolo::Sentencia>
    sentencias(const Sesion& sesion, const DocumentoVenta& venta, const CierreVenta& cierre);

private:
    ConexionBD& conexion_;
    const Sesion& sesion_;
    std::optional<Lote> lote_;
};

} // namespace cajaplex
