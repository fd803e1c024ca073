#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "server/CerrojoEscritor.h"
#include "server/PoolConexiones.h"

namespace cajaplex::servidor {

struct TiemposTransaccion {
    std::chrono::milliseconds esperaEscritor{15000};
    std::chrono::milliseconds inactividad{10000};
    std::chrono::minutes memoria{15}; // cuánto se recuerda cómo terminó una transacción
};

// Transacciones interactivas: cada una tiene su conexión y al escritor desde que empieza hasta
// que se confirma, se revierte o expira por inactividad.
class Transacciones {
public:
    Transacciones(PoolConexiones& pool, CerrojoEscritor& escritor, TiemposTransaccion tiempos);
    ~Transacciones();

    std::string comienza();
    // Corre trabajo dentro de la transacción; 404/410 si no está activa.
    void usa(const std::string& id, const std::function<void(Conexion&)>& trabajo);
    // antesDeConfirmar corre dentro de la transacción justo antes del COMMIT.
    void confirma(const std::string& id, const std::function<void(Conexion&)>& antesDeConfirmar);
    void revierte(const std::string& id);
    // Revierte todo lo abierto (al detener el servicio).
    void detiene();

private:
    enum class Estado { Activa, Confirmada, Revertida, Expirada };
    struct Transaccion {
        std::mutex m; // se toma para todo uso de la transacción
        // Protege solo el puntero "conexion" para interrumpirla desde otro hilo sin esperar a
        // m (que tiene quien corre la sentencia). Orden: m antes que mConexion.
        std::mutex mConexion;
        Estado estado = Estado::Activa;
        std::unique_ptr<Conexion> conexion;
        std::chrono::steady_clock::time_point ultimoUso;
        std::chrono::steady_clock::time_point fin;
    };

    std::shared_ptr<Transaccion> busca(const std::string& id);
    // Con t->m tomado: cierra la transacción, suelta al escritor y devuelve la conexión.
    void termina(Transaccion& t, Estado estado);
    // Con t->m tomado, tras un error: si la conexión ya no tiene la transacción abierta (SQLite
    // la deshizo), la cierra como revertida.
    void cierraSiSeDeshizo(Transaccion& t);
    void vigila();

    PoolConexiones& pool_;
    CerrojoEscritor& escritor_;
    TiemposTransaccion tiempos_;
    std::mutex m_;
    std::map<std::string, std::shared_ptr<Transaccion>> transacciones_;
    std::condition_variable cvVigia_;
    bool deteniendo_ = false;
    std::thread vigia_;
};

} // namespace cajaplex::servidor
