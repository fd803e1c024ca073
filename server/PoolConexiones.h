#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "server/Motor.h"

namespace cajaplex::servidor {

// Conexiones abiertas y libres; se abren más cuando hacen falta y se guardan hasta un máximo.
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
        std::unique_ptr<Conexion> suelta() { return std::move(c_); }

    private:
        PoolConexiones* pool_;
        std::unique_ptr<Conexion> c_;
    };

    PoolConexiones(Motor& motor, size_t guardadas) : motor_(motor), guardadas_(guardadas) {}

    Prestada toma() {
        {
            std::lock_guard lock(m_);
            if (!libres_.empty()) {
                auto c = std::move(libres_.back());
                libres_.pop_back();
                return Prestada(*this, std::move(c));
            }
        }
        return Prestada(*this, motor_.abreConexion());
    }

    void devuelve(std::unique_ptr<Conexion> c) {
        try {
            if (c->enTransaccion()) c->revierte();
        } catch (const std::exception&) {
            return; // una conexión que no pudo revertir no se vuelve a prestar
        }
        std::lock_guard lock(m_);
        if (libres_.size() < guardadas_) libres_.push_back(std::move(c));
    }

    // Cierra las conexiones libres; las prestadas se cierran al volver.
    void cierra() {
        std::lock_guard lock(m_);
        guardadas_ = 0;
        libres_.clear();
    }

private:
    Motor& motor_;
    size_t guardadas_;
    std::mutex m_;
    std::vector<std::unique_ptr<Conexion>> libres_;
};

} // namespace cajaplex::servidor
