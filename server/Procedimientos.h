#pragma once

#include <optional>
#include <string>
#include <vector>

#include "server/Motor.h"

namespace cajaplex::servidor {

// Los tres procedimientos del servicio, llamados como "exec dbo.Nombre :A, :B";
// los argumentos se enlazan por posición.
struct LlamadaProcedimiento {
    std::string nombre;
    std::vector<Parametro> argumentos; // en el orden de la llamada
    bool escribe = false;
};

// nullopt si la sentencia no es una llamada; ErrorProtocolo 400 si lo es pero está mal formada.
std::optional<LlamadaProcedimiento> reconoceProcedimiento(const std::string& sql,
                                                          const std::vector<Parametro>& parametros);

// Corre la llamada en la conexión; si escribe, quien llama ya tiene al escritor y la transacción.
Resultado ejecutaProcedimiento(Conexion& conexion, const LlamadaProcedimiento& llamada);

} // namespace cajaplex::servidor
