#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "datos/ConexionBD.h"
#include "datos/Registros.h"
#include "protocol/Protocolo.h"

namespace cajaplex {

class Consulta;

// Una transacción del servicio: comienza al construirse y se revierte al destruirse salvo que se
// haya confirmado. El destructor nunca lanza.
class Transaccion {
public:
    explicit Transaccion(ConexionBD& conexion);
    ~Transaccion();
    Transaccion(const Transaccion&) = delete;
    Transaccion& operator=(const Transaccion&) = delete;

    // Confirmar lleva su clave de idempotencia: si se perdió la respuesta se pregunta de nuevo,
    // con el mismo id y la misma clave, hasta que el servicio diga "confirmada" (vuelve), o que no
    // se confirmó (404, 410, "revertida": lanza ErrorServicio); así nunca se informa como fallida
    // una transacción confirmada ni se guarda dos veces. Mientras, ConexionBD::esperaReintento.
    void confirma();
    void revierte();
    bool activa() const { return activa_; }

    ConexionBD& conexion() const { return conexion_; }
    const std::string& id() const { return id_; }
    protocolo::Resultado ejecuta(const protocolo::Sentencia& sentencia);

private:
    void exigeActiva() const;

    ConexionBD& conexion_;
    std::string id_;
    std::string clave_;
    bool activa_ = true;
};

// Varias sentencias en un solo viaje, en orden y en una transacción, con una clave de
// idempotencia por operación. Si la respuesta se pierde se pregunta otra vez con la misma clave y
// el mismo cuerpo hasta tener respuesta definitiva (ConexionBD::esperaReintento): el servicio
// contesta lo ya registrado en vez de registrarlo otra vez. Quien reintenta por su cuenta tras un
// error de conexión debe reusar el mismo Lote.
class Lote {
public:
    explicit Lote(ConexionBD& conexion);

    // Copia el texto y los parámetros asignados (incluidas las referencias "de") y los olvida en
    // la consulta; una marca sin asignar es ErrorProgramacion y no agrega nada. Devuelve su
    // índice, el que usan las referencias de las sentencias siguientes.
    size_t agrega(Consulta& consulta);
    size_t agrega(Consulta&& consulta);
    size_t agrega(protocolo::Sentencia sentencia);
    size_t tamano() const { return sentencias_.size(); }
    const std::string& clave() const { return clave_; }

    // En su propia transacción, o dentro de una abierta (sus sentencias se deshacen si falla).
    std::vector<Registros> ejecuta();
    std::vector<Registros> ejecuta(Transaccion& transaccion);
    // Vacía el lote y estrena clave: lo siguiente es otra operación.
    void limpia();

private:
    std::vector<Registros> corre(ConexionBD& conexion, const std::string& transaccion);

    ConexionBD& conexion_;
    std::vector<protocolo::Sentencia> sentencias_;
    std::string clave_;
};

} // namespace cajaplex
