#pragma once

#include <cstdint>

#include <QString>

#include "datos/Sesion.h"
#include "sales/CancelacionVenta.h"

namespace cajaplex {

class ConexionBD;

inline constexpr const char* ModuloCancelacionComanda = "Ventas -> Comanda";
inline constexpr const char* MensajeSinPermisoCancelarComanda =
    "No tiene permiso para cancelar Comandas";
inline constexpr const char* MensajeComandaInexistente = "No existe la Comanda: ";
inline constexpr const char* MensajeComandaCancelada = "La Comanda ya está cancelada: ";
inline constexpr const char* MensajeComandaPagada =
    "La Comanda ya fue pagada, no se puede cancelar: ";

// Cancela una comanda abierta o con la cuenta cerrada que aún no se cobra: la marca cancelada con
// la fecha, el motivo y quien la cancela, libera su nodo y deja su renglón de bitácora, todo en
// una transacción. La revisión y la cancelación van en la misma transacción: si otra estación la
// cobra o la cancela antes, aquí no se toca. Lanza ErrorServicio si el servicio falla.
class CancelacionComanda {
public:
    CancelacionComanda(ConexionBD& conexion, const Sesion& sesion);

    // El derecho cancelarComanda del perfil.
    bool permitida() const;
    // La comanda sin pagar ni cancelar que ocupa el nodo; 0 si no hay.
    int64_t comandaDelNodo(int64_t nodoID);
    ResultadoCancelacion cancela(int64_t comandaID, const QString& motivo);

private:
    ConexionBD& conexion_;
    const Sesion& sesion_;
};

} // namespace cajaplex
