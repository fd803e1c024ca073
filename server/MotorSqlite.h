#pragma once

#include <functional>
#include <set>
#include <string>

#include "server/Motor.h"

namespace cajaplex::servidor {

// Tablas (como las nombra el esquema) que una transacción confirmada cambió.
using AvisoConfirmacion = std::function<void(const std::set<std::string>& tablas)>;

struct OpcionesSqlite {
    std::string archivo;
    int limiteSentenciaMs = 10000;
    int esperaBloqueoMs = 15000;
    // PRAGMA max_page_count de cada conexión; 0 lo deja como está (solo para pruebas: simula un
    // disco lleno).
    long long paginasMaximas = 0;
    // Se llama después de cada COMMIT que cambió filas de alguna tabla de las estaciones.
    AvisoConfirmacion alConfirmar{};
};

// Límites de SQLite de cada conexión (sqlite3_limit).
struct LimiteSqlite {
    int id;
    int valor;
    const char* nombre;
};
const std::vector<LimiteSqlite>& limitesSqlite();
// Largo máximo de un valor (texto o blob) que una sentencia de estación puede producir.
inline constexpr int LargoMaximoValor = 32 << 20;

// Memoria del montículo de SQLite para todo el proceso: con el límite duro, una sentencia que lo
// pasaría falla con SQLITE_NOMEM (503 "ocupado") en vez de terminar el proceso.
void fijaMemoriaSqlite(long long bytes);

class MotorSqlite : public Motor {
public:
    explicit MotorSqlite(OpcionesSqlite opciones);
    std::unique_ptr<Conexion> abreConexion() override;
    void liberaMemoria() override;

private:
    OpcionesSqlite opciones_;
};

} // namespace cajaplex::servidor
