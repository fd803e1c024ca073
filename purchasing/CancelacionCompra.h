#pragma once

#include <cstdint>

#include <QString>

#include "datos/Sesion.h"
#include "purchasing/DocumentoCompra.h"
#include "sales/CancelacionVenta.h"

namespace cajaplex {

class ConexionBD;

inline constexpr const char* MensajeSinPermisoCancelarCompra = "No tiene permiso para cancelar ";
inline constexpr const char* MensajeCompraInexistente = "No existe el documento: ";
inline constexpr const char* MensajeCompraCancelada = "El documento ya está cancelado: ";
inline constexpr const char* MensajeOrdenRecibida =
    "La Órden de Compra ya fue recibida; cancele primero su Recepción de Mercancía";
inline constexpr const char* MensajeRecepcionConPagos =
    "No puede cancelar una Recepción de Mercancía con Pagos Registrados";

// ¿Puede la sesión cancelar esta clase de documento? (cancelarRM, cancelarDM, cancelarAjuste).
bool puedeCancelarCompra(const Sesion& sesion, TipoCompra tipo);

// Cancela un documento de compras: lo marca cancelado (el servicio regresa exactamente lo que
// movió en existencias), vuelve a abrir la orden de compra de una recepción y anota la
// cancelación en la bitácora con el módulo de la clase, todo en una transacción. Leer y cancelar
// van bajo el mismo escritor: dos estaciones no cancelan dos veces el mismo documento.
class CancelacionCompra {
public:
    CancelacionCompra(ConexionBD& conexion, const Sesion& sesion);

    // Los rechazos vuelven en el resultado; una falla del servicio también (nada queda a medias).
    ResultadoCancelacion cancela(TipoCompra tipo, int64_t folio, const QString& motivo);

private:
    ConexionBD& conexion_;
    const Sesion& sesion_;
};

} // namespace cajaplex
