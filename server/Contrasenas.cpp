#include "server/Contrasenas.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <mutex>
#include <new>
#include <optional>
#include <semaphore>
#include <stdexcept>
#include <thread>
#include <unordered_map>

#include <sodium.h>

namespace cajaplex::servidor {

namespace {

using Reloj = std::chrono::steady_clock;
using namespace std::chrono_literals;

// Los costos "interactivos" de libsodium: unos 100 ms y 64 MiB por cálculo en una PC de dos
// núcleos; el inicio de sesión verifica dos veces.
constexpr unsigned long long Operaciones = crypto_pwhash_OPSLIMIT_INTERACTIVE;
constexpr size_t Memoria = crypto_pwhash_MEMLIMIT_INTERACTIVE;
// Se verifica un hash con costos desde los propios hasta cuatro veces más: menos haría barato
// llenar el freno con hashes inventados; más dejaría a cualquiera pedir gigas de memoria.
constexpr unsigned long MemoriaMinimaKiB = Memoria / 1024;
constexpr unsigned long MemoriaMaximaKiB = 4 * MemoriaMinimaKiB;
constexpr unsigned long OperacionesMaximas = 4 * Operaciones;

constexpr int IntentosLibres = 3;
constexpr auto Ventana = 15min;
constexpr auto EsperaInicial = 500ms;
constexpr auto EsperaMaxima = 4s;
constexpr auto FilaMaxima = 5s;
// Pasado este número de hashes con intentos se olvidan los que ya salieron de la ventana.
constexpr size_t HashesRecordados = 10000;

void iniciaSodium() {
    static const bool listo = sodium_init() >= 0;
    if (!listo) throw std::runtime_error("No se pudo iniciar libsodium");
}

// Cada cálculo ocupa un núcleo y 64 MiB: a lo más uno por núcleo a la vez.
class Calculo {
public:
    Calculo() { cupo().acquire(); }
    ~Calculo() { cupo().release(); }
    Calculo(const Calculo&) = delete;
    Calculo& operator=(const Calculo&) = delete;

private:
    static std::counting_semaphore<>& cupo() {
        static std::counting_semaphore<> s(
            static_cast<std::ptrdiff_t>(std::clamp(std::thread::hardware_concurrency(), 1u, 8u)));
        return s;
    }
};

// "$argon2id$v=19$m=65536,t=2,p=1$sal$hash", bien formado y con un costo aceptable.
bool hashAceptable(std::string_view hash) {
    if (!hash.starts_with(PrefijoHashContrasena) || hash.size() >= crypto_pwhash_STRBYTES ||
        hash.find('\0') != std::string_view::npos)
        return false;
    std::string_view resto = hash.substr(PrefijoHashContrasena.size());
    auto lee = [&](std::string_view clave, char fin, unsigned long& valor) {
        if (!resto.starts_with(clave)) return false;
        resto.remove_prefix(clave.size());
        const char* final = resto.data() + resto.size();
        auto [p, ec] = std::from_chars(resto.data(), final, valor);
        if (ec != std::errc() || p == final || *p != fin) return false;
        resto.remove_prefix(static_cast<size_t>(p - resto.data()) + 1);
        return true;
    };
    unsigned long version = 0, memoria = 0, operaciones = 0, hilos = 0;
    if (!lee("v=", '$', version) || !lee("m=", ',', memoria) || !lee("t=", ',', operaciones) ||
        !lee("p=", '$', hilos))
        return false;
    if (memoria < MemoriaMinimaKiB || memoria > MemoriaMaximaKiB || operaciones < Operaciones ||
        operaciones > OperacionesMaximas)
        return false;
    // Revisa todo lo demás (sal y hash en base64, largos) sin calcular nada.
    iniciaSodium();
    return crypto_pwhash_str_needs_rehash(std::string(hash).c_str(), Operaciones, Memoria) >= 0;
}

class Freno {
public:
    // Cuándo puede verificarse un intento con este hash; nada si la fila ya es muy larga.
    std::optional<Reloj::time_point> turno(const std::string& hash) {
        std::lock_guard lock(m_);
        const auto ahora = Reloj::now();
        if (intentos_.size() >= HashesRecordados)
            std::erase_if(intentos_, [&](const auto& e) { return vencido(e.second, ahora); });
        Intentos& e = intentos_[hash];
        if (vencido(e, ahora)) e = {};
        auto cuando = ahora;
        if (e.sinExito >= IntentosLibres) {
            const int duplica = std::min(e.sinExito - IntentosLibres, 3);
            const Reloj::duration espera =
                std::min<Reloj::duration>(EsperaInicial * (1 << duplica), EsperaMaxima);
            cuando = std::max(ahora, e.libre) + espera;
            if (cuando - ahora > FilaMaxima) return std::nullopt;
            e.libre = cuando;
        }
        // Cuenta desde antes de verificar: los intentos simultáneos también se frenan.
        ++e.sinExito;
        e.ultimo = ahora;
        return cuando;
    }

    void acierto(const std::string& hash) {
        std::lock_guard lock(m_);
        intentos_.erase(hash);
    }

private:
    struct Intentos {
        int sinExito = 0;
        Reloj::time_point ultimo{};
        Reloj::time_point libre{}; // turno del último intento formado
    };

    static bool vencido(const Intentos& e, Reloj::time_point ahora) {
        return ahora - e.ultimo > Ventana && e.libre <= ahora;
    }

    std::mutex m_;
    std::unordered_map<std::string, Intentos> intentos_;
};

Freno& freno() {
    static Freno f;
    return f;
}

const char* datos(std::string_view texto) {
    return texto.empty() ? "" : texto.data();
}

} // namespace

std::string cifraContrasena(std::string_view contrasena) {
    iniciaSodium();
    char hash[crypto_pwhash_STRBYTES];
    int rc;
    {
        Calculo c;
        rc = crypto_pwhash_str_alg(hash, datos(contrasena), contrasena.size(), Operaciones, Memoria,
                                   crypto_pwhash_ALG_ARGON2ID13);
    }
    if (rc != 0) throw std::bad_alloc();
    return hash;
}

bool verificaContrasena(std::string_view contrasena, std::string_view hash) {
    if (!hashAceptable(hash)) return false;
    const std::string texto(hash);
    const auto cuando = freno().turno(texto);
    if (!cuando) return false;
    std::this_thread::sleep_until(*cuando);
    int rc;
    int error;
    {
        Calculo c;
        errno = 0;
        rc = crypto_pwhash_str_verify(texto.c_str(), datos(contrasena), contrasena.size());
        error = errno;
    }
    if (rc == 0) {
        freno().acierto(texto);
        return true;
    }
    if (error == ENOMEM) throw std::bad_alloc();
    return false;
}

} // namespace cajaplex::servidor
