#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <vector>

namespace cajaplex::servidor {

// El único escritor de la base. A diferencia de un mutex, lo puede soltar otro hilo: una
// transacción interactiva lo toma en una solicitud y lo suelta en otra. Esperar aquí, en orden
// de llegada, evita los reintentos a ciegas del bloqueo de SQLite.
class CerrojoEscritor {
public:
    bool toma(std::chrono::milliseconds espera) {
        std::unique_lock lock(m_);
        const unsigned long long turno = siguiente_++;
        bool libre = cv_.wait_for(lock, espera, [&] { return !ocupado_ && atendido_ == turno; });
        if (!libre) {
            // Se cede el turno para no detener a los que esperan detrás.
            cedidos_.push_back(turno);
            avanza();
            cv_.notify_all();
            return false;
        }
        ocupado_ = true;
        ++atendido_;
        avanza();
        return true;
    }

    void suelta() {
        {
            std::lock_guard lock(m_);
            ocupado_ = false;
        }
        cv_.notify_all();
    }

private:
    // Salta los turnos de quienes ya se fueron por tiempo.
    void avanza() {
        bool movido = true;
        while (movido) {
            movido = false;
            for (auto it = cedidos_.begin(); it != cedidos_.end(); ++it) {
                if (*it == atendido_) {
                    ++atendido_;
                    cedidos_.erase(it);
                    movido = true;
                    break;
                }
            }
        }
    }

    std::mutex m_;
    std::condition_variable cv_;
    bool ocupado_ = false;
    unsigned long long siguiente_ = 0;
    unsigned long long atendido_ = 0;
    std::vector<unsigned long long> cedidos_;
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
