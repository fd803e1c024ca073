#pragma once

namespace cajaplex {

// Los mensajes de falla comunes a todas las pantallas y a la lógica que las respalda.
inline constexpr const char* MensajeErrorLectura = "Error al obtener los datos, Intente de nuevo";
inline constexpr const char* MensajeErrorRegistro =
    "Error al Registrar la transacción, Intente de nuevo";

} // namespace cajaplex
