#pragma once

#include <cstdint>

#include <QString>

#include "datos/Sesion.h"

namespace cajaplex {

class ConexionBD;

inline constexpr const char* MensajeSinPermisoCancelar =
    "No tiene permiso para cancelar Remisiones";
inline constexpr const char* MensajeRemisionInexistente = "No existe la Remisión: ";
inline constexpr const char* MensajeRemisionCancelada = "La Remisión ya está cancelada: ";

struct ResultadoCancelacion {
    bool cancelada = false;
    QString mensaje; // si no se canceló
};

// Cancela una remisión: la marca cancelada (el servicio regresa las existencias), le quita al
// cliente los puntos que ganó y le devuelve lo que gastó del monedero, con su renglón de bitácora,
// todo en una transacción. Leer y cancelar van bajo el mismo escritor: dos cajas que cancelan la
// misma remisión no la cancelan dos veces.
class CancelacionVenta {
public:
    CancelacionVenta(ConexionBD& conexion, const Sesion& sesion);

    ResultadoCancelacion cancela(int64_t folio, const QString& motivo);

private:
    ConexionBD& conexion_;
    const Sesion& sesion_;
};

} // namespace cajaplex
