#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>

#include "server/CerrojoEscritor.h"
#include "server/Motor.h"
#include "server/PoolConexiones.h"
#include "server/Transacciones.h"

namespace cajaplex::servidor {

// Lo que el frente HTTP entrega de una solicitud, ya autenticada.
struct Solicitud {
    std::string ruta;
    std::string cuerpo;
    std::string transaccion;  // encabezado X-Transaccion
    std::string idempotencia; // encabezado Idempotencia
    bool traeIdempotencia = false;
};

struct Respuesta {
    int estado = 200;
    std::string cuerpo;  // JSON
    bool grande = false; // después de enviarla conviene devolver la memoria al sistema
};

// Las operaciones del protocolo, sin HTTP: cada una contesta un JSON, de éxito o de error.
class Servicio {
public:
    // conexiones: cuántas conexiones a la base puede tener abiertas a la vez.
    Servicio(Motor& motor, TiemposTransaccion tiempos, size_t conexiones = 32);

    Respuesta sentencia(const Solicitud& s);
    Respuesta lote(const Solicitud& s);
    Respuesta comienzaTransaccion();
    Respuesta confirmaTransaccion(const std::string& id, const Solicitud& s);
    Respuesta revierteTransaccion(const std::string& id);

    // Verdadero si son las credenciales vigentes de una estación (su dispositivo sigue en
    // DispositivosRED). Lanza ErrorProtocolo si no se pudo revisar.
    bool autenticaEstacion(const std::string& usuario, const std::string& secreto);
    // POST .../estaciones: usuario y contraseña son los de un administrador del sistema.
    Respuesta emiteEstacion(const std::string& usuario, const std::string& contrasena,
                            const std::string& cuerpo);

    // Deja de aceptar trabajo nuevo (503), espera lo que está en curso hasta "espera", revierte
    // las transacciones abiertas y cierra las conexiones libres.
    void detiene(std::chrono::milliseconds espera);

    // Devuelve al sistema la memoria libre del motor y del proceso (tras una respuesta grande o
    // una que no cupo).
    void devuelveMemoria();

private:
    Respuesta loteEnTransaccion(const Solicitud& s);
    Respuesta loteConTransaccionPropia(const Solicitud& s);
    template <typename F> Respuesta atiende(F&& trabajo);

    Motor& motor_;
    PoolConexiones pool_;
    CerrojoEscritor escritor_;
    TiemposTransaccion tiempos_;
    Transacciones transacciones_;
    std::atomic<long long> ultimaPurga_;
    std::mutex mEnCurso_;
    std::condition_variable cvEnCurso_;
    int enCurso_ = 0;
    bool deteniendo_ = false;
};

} // namespace cajaplex::servidor
