#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "server/Motor.h"

namespace cajaplex::servidor {

// Conexiones abiertas y libres. Se abren más cuando hacen falta, hasta un máximo de abiertas a
// la vez (prestadas más libres); pasado el máximo se espera a que alguna vuelva y, si no vuelve
// a tiempo, 503 "ocupado". Cada conexión guarda caché de páginas y sentencias: sin tope, una
// ráfaga de solicitudes agotaría la memoria.
class PoolConexiones {
public:
    class Prestada {
    public:
        Prestada(PoolConexiones& pool, std::unique_ptr<Conexion> c)
            : pool_(&pool), c_(std::move(c)) {}
        Prestada(Prestada&& otra) noexcept = default;
        Prestada& operator=(Prestada&&) = delete;
        ~Prestada() {
            if (c_) pool_->devuelve(std::move(c_));
        }
        Conexion& operator*() const { return *c_; }
        Conexion* operator->() const { return c_.get(); }
        // La conexión sigue contando como abierta: vuelve con devuelve() u olvida().
        std::unique_ptr<Conexion> suelta() { return std::move(c_); }

    private:
        PoolConexiones* pool_;
        std::unique_ptr<Conexion> c_;
    };

    PoolConexiones(Motor& motor, size_t guardadas, size_t maximo, std::chrono::milliseconds espera)
        : motor_(motor), guardadas_(guardadas), maximo_(maximo), espera_(espera) {}

    Prestada toma() {
        {
            std::unique_lock lock(m_);
            const bool hay = cv_.wait_for(lock, espera_,
                                          [&] { return !libres_.empty() || abiertas_ < maximo_; });
            if (!hay)
                throw protocolo::ErrorProtocolo(
                    503, "ocupado", "Todas las conexiones a la base de datos están ocupadas");
            if (!libres_.empty()) {
                auto c = std::move(libres_.back());
                libres_.pop_back();
                return Prestada(*this, std::move(c));
            }
            ++abiertas_;
        }
        try {
            return Prestada(*this, motor_.abreConexion());
        } catch (const protocolo::ErrorProtocolo&) {
            olvida();
            throw;
        } catch (const std::exception& e) {
            // Sin archivo, sin descriptores o sin WAL: la base no se puede usar.
            olvida();
            throw protocolo::ErrorProtocolo(503, "almacenamiento",
                                            std::string("No se pudo abrir la base de datos: ") +
                                                e.what());
        }
    }

    void devuelve(std::unique_ptr<Conexion> c) {
        try {
            if (c->enTransaccion()) c->revierte();
        } catch (const std::exception&) {
            c.reset(); // una conexión que no pudo revertir no se vuelve a prestar
            olvida();
            return;
        }
        std::unique_lock lock(m_);
        if (libres_.size() < guardadas_) {
            libres_.push_back(std::move(c));
            lock.unlock();
            cv_.notify_one();
            return;
        }
        lock.unlock();
        c.reset();
        olvida();
    }

    // Una conexión prestada que se cerró sin volver.
    void olvida() {
        {
            std::lock_guard lock(m_);
            --abiertas_;
        }
        cv_.notify_one();
    }

    // Cierra las conexiones libres; las prestadas se cierran al volver.
    void cierra() {
        std::vector<std::unique_ptr<Conexion>> cerrar;
        {
            std::lock_guard lock(m_);
            guardadas_ = 0;
            cerrar.swap(libres_);
            abiertas_ -= cerrar.size();
        }
    }

private:
    Motor& motor_;
    size_t guardadas_;
    size_t maximo_;
    std::chrono::milliseconds espera_;
    std::mutex m_;
    std::condition_variable cv_;
    size_t abiertas_ = 0;
    std::vector<std::unique_ptr<Conexion>> libres_;
};

} // namespace cajaplex::servidor
