#pragma once

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>

namespace cajaplex::servidor {

// El único escritor de la base. A diferencia de un mutex, lo puede soltar otro hilo: una
// transacción interactiva lo toma en una solicitud y lo suelta en otra. Se entrega en orden de
// llegada y se despierta solo al siguiente de la fila, sin los reintentos a ciegas del bloqueo
// de SQLite ni el despertar de todos los que esperan.
class CerrojoEscritor {
public:
    bool toma(std::chrono::milliseconds espera) {
        std::unique_lock lock(m_);
        if (!ocupado_ && fila_.empty()) {
            ocupado_ = true;
            return true;
        }
        Turno turno;
        fila_.push_back(&turno);
        if (turno.cv.wait_for(lock, espera, [&] { return turno.concedido; })) return true;
        fila_.erase(std::find(fila_.begin(), fila_.end(), &turno));
        return false;
    }

    // Pasa el escritor al siguiente de la fila (sigue ocupado) o lo deja libre.
    void suelta() {
        std::lock_guard lock(m_);
        if (fila_.empty()) {
            ocupado_ = false;
            return;
        }
        Turno* siguiente = fila_.front();
        fila_.pop_front();
        siguiente->concedido = true;
        siguiente->cv.notify_one();
    }

private:
    struct Turno {
        std::condition_variable cv;
        bool concedido = false;
    };

    std::mutex m_;
    bool ocupado_ = false;
    std::deque<Turno*> fila_;
};

// Toma el escritor por un ámbito.
class EscrituraTomada {
public:
    explicit EscrituraTomada(CerrojoEscritor& c) : c_(&c) {}
    EscrituraTomada(const EscrituraTomada&) = delete;
    EscrituraTomada& operator=(const EscrituraTomada&) = delete;
    ~EscrituraTomada() {
        if (c_) c_->suelta();
    }

private:
    CerrojoEscritor* c_;
};

} // namespace cajaplex::servidor
