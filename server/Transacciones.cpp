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
    // Primero el escritor y luego la conexión: quien espera turno no retiene una conexión.
    if (!escritor_.toma(tiempos_.esperaEscritor))
        throw ErrorProtocolo(503, "ocupado", "Otra transacción tiene la base de datos ocupada");
    auto t = std::make_shared<Transaccion>();
    try {
        auto conexion = pool_.toma();
        conexion->comienza();
        t->conexion = conexion.suelta();
    } catch (...) {
        escritor_.suelta();
        throw;
    }
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
    std::unique_ptr<Conexion> conexion;
    {
        std::lock_guard lc(t.mConexion);
        conexion = std::move(t.conexion);
    }
    try {
        if (estado != Estado::Confirmada) conexion->revierte();
    } catch (const std::exception&) {
        // La conexión se descarta; el escritor se suelta igual.
        conexion.reset();
        pool_.olvida();
    }
    escritor_.suelta();
    if (conexion) pool_.devuelve(std::move(conexion));
}

void Transacciones::cierraSiSeDeshizo(Transaccion& t) {
    if (t.estado == Estado::Activa && t.conexion && !t.conexion->enTransaccion())
        termina(t, Estado::Revertida);
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
        cierraSiSeDeshizo(*t);
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
        // Lo que falla antes del COMMIT (una clave rechazada) o un COMMIT que no pudo (base
        // ocupada aun tras reintentar) deja la transacción abierta tal como estaba: el cliente
        // puede confirmar otra vez o revertir. Solo si SQLite ya la deshizo se cierra.
        t->ultimoUso = Reloj::now();
        cierraSiSeDeshizo(*t);
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
        {
            std::lock_guard lc(t->mConexion);
            if (t->conexion) t->conexion->interrumpe();
        }
        std::lock_guard lock(t->m);
        if (t->estado == Estado::Activa) termina(*t, Estado::Revertida);
    }
}

// Revierte las transacciones inactivas y olvida las terminadas hace tiempo. El mapa se lee con
// m_ tomado, pero los ROLLBACK corren sin él: nadie espera a la base para buscar un id.
void Transacciones::vigila() {
    std::unique_lock lock(m_);
    while (!deteniendo_) {
        cvVigia_.wait_for(lock, std::chrono::milliseconds(200));
        if (deteniendo_) break;
        std::vector<std::pair<std::string, std::shared_ptr<Transaccion>>> todas(
            transacciones_.begin(), transacciones_.end());
        lock.unlock();
        const auto ahora = Reloj::now();
        std::vector<std::string> olvidar;
        for (auto& [id, t] : todas) {
            std::unique_lock lt(t->m, std::try_to_lock);
            if (!lt.owns_lock()) continue; // en uso: no está inactiva
            if (t->estado == Estado::Activa && ahora - t->ultimoUso > tiempos_.inactividad)
                termina(*t, Estado::Expirada);
            if (t->estado != Estado::Activa && ahora - t->fin > tiempos_.memoria)
                olvidar.push_back(id);
        }
        todas.clear();
        lock.lock();
        for (const auto& id : olvidar)
            transacciones_.erase(id);
    }
}

} // namespace cajaplex::servidor
