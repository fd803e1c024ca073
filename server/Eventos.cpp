#include "server/Eventos.h"

#include <algorithm>
#include <random>

#include <nlohmann/json.hpp>

#include "protocol/Protocolo.h"

namespace cajaplex::servidor {

namespace {

std::string minusculas(std::string s) {
    std::transform(s.begin(), s.end(), s.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return s;
}

// Entero sin signo de todo el texto, o falla.
bool leeEntero(const std::string& texto, long long maximo, long long& valor) {
    if (texto.empty() || texto.size() > 19) return false;
    valor = 0;
    for (char c : texto) {
        if (c < '0' || c > '9') return false;
        valor = valor * 10 + (c - '0');
    }
    return valor <= maximo;
}

} // namespace

Eventos::Eventos() {
    std::random_device azar;
    static constexpr char hex[] = "0123456789abcdef";
    for (int i = 0; i < 32; ++i)
        instancia_ += hex[azar() & 15];
}

void Eventos::defineTablas(const std::vector<std::string>& tablas) {
    std::lock_guard lock(m_);
    for (const auto& t : tablas) {
        if (!indice_.emplace(minusculas(t), nombres_.size()).second) continue;
        nombres_.push_back(t);
        contadores_.push_back(0);
    }
}

void Eventos::publica(const std::set<std::string>& tablas) {
    {
        std::lock_guard lock(m_);
        bool alguna = false;
        for (const auto& t : tablas) {
            auto it = indice_.find(minusculas(t));
            if (it == indice_.end()) continue;
            if (!alguna) ++secuencia_;
            alguna = true;
            contadores_[it->second] = secuencia_;
        }
        if (!alguna) return;
    }
    cv_.notify_all();
}

std::string Eventos::espera(const std::string& tablas, const std::string& desde,
                            const std::string& espera) {
    long long minimo = 0;
    if (!desde.empty() && !leeEntero(desde, 999999999999999999LL, minimo))
        throw protocolo::errorSolicitud("'desde' debe ser un entero no negativo");
    long long segundos = 25;
    if (!espera.empty() && !leeEntero(espera, 30, segundos))
        throw protocolo::errorSolicitud("'espera' debe ser un entero de 0 a 30");

    std::vector<size_t> pedidas;
    {
        std::lock_guard lock(m_);
        size_t inicio = 0;
        while (inicio <= tablas.size()) {
            size_t fin = tablas.find(',', inicio);
            if (fin == std::string::npos) fin = tablas.size();
            std::string nombre = tablas.substr(inicio, fin - inicio);
            nombre.erase(0, nombre.find_first_not_of(' '));
            nombre.erase(nombre.find_last_not_of(' ') + 1);
            inicio = fin + 1;
            if (nombre.empty()) continue;
            auto it = indice_.find(minusculas(nombre));
            if (it == indice_.end())
                throw protocolo::errorSolicitud("Tabla desconocida: '" + nombre + "'");
            if (std::find(pedidas.begin(), pedidas.end(), it->second) == pedidas.end())
                pedidas.push_back(it->second);
        }
    }
    if (pedidas.empty()) throw protocolo::errorSolicitud("Falta 'tablas'");

    std::unique_lock lock(m_);
    auto version = [&] {
        uint64_t v = 0;
        for (size_t i : pedidas)
            v = std::max(v, contadores_[i]);
        return v;
    };
    const auto limite = std::chrono::steady_clock::now() + std::chrono::seconds(segundos);
    const uint64_t visto = static_cast<uint64_t>(minimo);
    if (version() <= visto && !deteniendo_ && esperando_ < MaximoEsperando) {
        ++esperando_;
        cv_.wait_until(lock, limite, [&] { return deteniendo_ || version() > visto; });
        --esperando_;
    }
    nlohmann::json porTabla = nlohmann::json::object();
    for (size_t i : pedidas)
        porTabla[nombres_[i]] = contadores_[i];
    const nlohmann::json respuesta = {
        {"instancia", instancia_}, {"version", version()}, {"tablas", std::move(porTabla)}};
    return respuesta.dump();
}

void Eventos::detiene() {
    {
        std::lock_guard lock(m_);
        deteniendo_ = true;
    }
    cv_.notify_all();
}

int Eventos::esperando() {
    std::lock_guard lock(m_);
    return esperando_;
}

} // namespace cajaplex::servidor
