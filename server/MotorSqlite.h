#pragma once

#include <string>

#include "server/Motor.h"

namespace cajaplex::servidor {

struct OpcionesSqlite {
    std::string archivo;
    int limiteSentenciaMs = 10000;
    int esperaBloqueoMs = 15000;
};

class MotorSqlite : public Motor {
public:
    explicit MotorSqlite(OpcionesSqlite opciones);
    std::unique_ptr<Conexion> abreConexion() override;

private:
    OpcionesSqlite opciones_;
};

} // namespace cajaplex::servidor
