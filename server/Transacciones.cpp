#include "server/Transacciones.h"

#include <random>
#include <vector>

namespace cajaplex::servidor {

using protocolo::ErrorProtocolo;
using Reloj = std::chrono::steady_clock;

namespace {
std::string nuevoId() {
    thread_local std::mt19937_64 generador{std::random_device{}()};
    static constexpr char hex[] = "0123456789abcdef";
    std::string id;
    for (int i = 0; i < 32; ++i) {
        if (i == 8 || i == 12 || i == 16 || i == 20) id += '-';
        id += hex[generador() & 15];
    }
    return id;
}

ErrorProtocolo desconocida() {
    return ErrorProtocolo(404, "transaccion", "La transacción no existe");
}
ErrorProtocolo expirada() {
    return ErrorProtocolo(410, "transaccion",
                          "La transacción expiró por inactividad y se revirtió");
}
} // namespace

Transacciones::Transacciones(PoolConexiones& pool, CerrojoEscritor& escritor,
                             TiemposTransaccion tiempos)
    : pool_(pool), escritor_(escritor), tiempos_(tiempos), vigia_([this] { vigila(); }) {}

Transacciones::~Transacciones() {
    detiene();
}

std::string Transacciones::comienza() {
    auto conexion = pool_.toma();
    if (!escritor_.toma(tiempos_.esperaEscritor))
        throw ErrorProtocolo(503, "ocupado", "Otra transacción tiene la base de datos ocupada");
    try {
        conexion->comienza();
    } catch (...) {
        escritor_.suelta();
        throw;
    }
    auto t = std::make_shared<Transaccion>();
    t->conexion = conexion.suelta();
    t->ultimoUso = Reloj::now();
    std::string id = nuevoId();
    std::lock_guard lock(m_);
    transacciones_[id] = std::move(t);
    return id;
}

std::shared_ptr<Transacciones::Transaccion> Transacciones::busca(const std::string& id) {
    std::lock_guard lock(m_);
    auto it = transacciones_.find(id);
    if (it == transacciones_.end()) throw desconocida();
    return it->second;
}

void Transacciones::termina(Transaccion& t, Estado estado) {
    t.estado = estado;
    t.fin = Reloj::now();
    try {
        if (estado != Estado::Confirmada) t.conexion->revierte();
    } catch (const std::exception&) {
        // La conexión se descarta abajo; el escritor se suelta igual.
        t.conexion.reset();
    }
    escritor_.suelta();
    if (t.conexion) pool_.devuelve(std::move(t.conexion));
}

void Transacciones::usa(const std::string& id, const std::function<void(Conexion&)>& trabajo) {
    auto t = busca(id);
    std::lock_guard lock(t->m);
    if (t->estado == Estado::Expirada) throw expirada();
    if (t->estado != Estado::Activa) throw desconocida();
    struct MarcaUso {
        Transaccion& t;
        ~MarcaUso() { t.ultimoUso = Reloj::now(); }
    } marca{*t};
    try {
        trabajo(*t->conexion);
    } catch (...) {
        // Una sentencia interrumpida por tiempo puede deshacer la transacción entera en SQLite:
        // entonces ya no hay nada abierto y se cierra como revertida.
        if (!t->conexion->enTransaccion()) termina(*t, Estado::Revertida);
        throw;
    }
}

void Transacciones::confirma(const std::string& id,
                             const std::function<void(Conexion&)>& antesDeConfirmar) {
    auto t = busca(id);
    std::lock_guard lock(t->m);
    if (t->estado == Estado::Confirmada) return;
    if (t->estado == Estado::Expirada) throw expirada();
    if (t->estado != Estado::Activa) throw desconocida();
    try {
        antesDeConfirmar(*t->conexion);
        t->conexion->confirma();
    } catch (...) {
        // Un COMMIT fallido deja la transacción deshecha: se cierra como revertida.
        termina(*t, Estado::Revertida);
        throw;
    }
    termina(*t, Estado::Confirmada);
}

void Transacciones::revierte(const std::string& id) {
    auto t = busca(id);
    std::lock_guard lock(t->m);
    if (t->estado == Estado::Revertida) return;
    if (t->estado == Estado::Expirada) throw expirada();
    if (t->estado != Estado::Activa) throw desconocida();
    termina(*t, Estado::Revertida);
}

void Transacciones::detiene() {
    {
        std::lock_guard lock(m_);
        if (deteniendo_) return;
        deteniendo_ = true;
    }
    cvVigia_.notify_all();
    if (vigia_.joinable()) vigia_.join();
    std::vector<std::shared_ptr<Transaccion>> todas;
    {
        std::lock_guard lock(m_);
        for (auto& [id, t] : transacciones_)
            todas.push_back(t);
    }
    for (auto& t : todas) {
        if (t->conexion) t->conexion->interrumpe();
        std::lock_guard lock(t->m);
        if (t->estado == Estado::Activa) termina(*t, Estado::Revertida);
    }
}

// Revierte las transacciones inactivas y olvida las terminadas hace tiempo.
void Transacciones::vigila() {
    std::unique_lock lock(m_);
    while (!deteniendo_) {
        cvVigia_.wait_for(lock, std::chrono::milliseconds(200));
        if (deteniendo_) break;
        const auto ahora = Reloj::now();
        for (auto it = transacciones_.begin(); it != transacciones_.end();) {
            auto& t = it->second;
            std::unique_lock lt(t->m, std::try_to_lock);
            if (!lt.owns_lock()) { // en uso: no está inactiva
                ++it;
                continue;
            }
            if (t->estado == Estado::Activa && ahora - t->ultimoUso > tiempos_.inactividad)
                termina(*t, Estado::Expirada);
            if (t->estado != Estado::Activa && ahora - t->fin > tiempos_.memoria) {
                lt.unlock();
                it = transacciones_.erase(it);
            } else {
                ++it;
            }
        }
    }
}

} // namespace cajaplex::servidor
