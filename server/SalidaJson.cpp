#include "server/SalidaJson.h"

#include <atomic>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <nlohmann/json.hpp>

#include "protocol/Base64.h"
#include "protocol/Protocolo.h"

namespace cajaplex::servidor {

namespace {

std::atomic<size_t> memoriaMaxima{size_t{256} << 20};
std::atomic<size_t> memoriaEnUso{0};
constexpr size_t Bloque = size_t{1} << 20;

// Largo de s escapado como cadena JSON (sin comillas); false si s no es UTF-8 válido
// (sobrelargos, sustitutos y más allá de U+10FFFF también son inválidos, como en nlohmann).
bool largoEscapado(std::string_view s, size_t& largo) {
    largo = 0;
    const auto* p = reinterpret_cast<const unsigned char*>(s.data());
    const size_t n = s.size();
    size_t i = 0;
    while (i < n) {
        const unsigned char c = p[i];
        if (c < 0x80) {
            if (c == '"' || c == '\\' || c == '\b' || c == '\f' || c == '\n' || c == '\r' ||
                c == '\t')
                largo += 2;
            else if (c < 0x20)
                largo += 6;
            else
                largo += 1;
            ++i;
            continue;
        }
        size_t extra;
        unsigned char min = 0x80, max = 0xBF;
        if (c >= 0xC2 && c <= 0xDF) {
            extra = 1;
        } else if (c >= 0xE0 && c <= 0xEF) {
            extra = 2;
            if (c == 0xE0) min = 0xA0;
            if (c == 0xED) max = 0x9F;
        } else if (c >= 0xF0 && c <= 0xF4) {
            extra = 3;
            if (c == 0xF0) min = 0x90;
            if (c == 0xF4) max = 0x8F;
        } else {
            return false;
        }
        if (i + extra >= n) return false;
        if (p[i + 1] < min || p[i + 1] > max) return false;
        for (size_t k = 2; k <= extra; ++k)
            if (p[i + k] < 0x80 || p[i + k] > 0xBF) return false;
        largo += extra + 1;
        i += extra + 1;
    }
    return true;
}

} // namespace

void fijaMemoriaRespuestas(size_t bytes) {
    memoriaMaxima = bytes;
}

size_t memoriaRespuestasEnUso() {
    return memoriaEnUso.load();
}

SalidaJson::SalidaJson(size_t limite) : limite_(limite) {}

SalidaJson::~SalidaJson() {
    if (reservado_) memoriaEnUso -= reservado_;
}

std::string SalidaJson::suelta() {
    std::string t = std::move(texto_);
    texto_.clear();
    if (reservado_) memoriaEnUso -= reservado_;
    reservado_ = 0;
    return t;
}

void SalidaJson::reserva(size_t total) {
    const size_t nuevo = (total + Bloque - 1) / Bloque * Bloque;
    const size_t falta = nuevo - reservado_;
    size_t actual = memoriaEnUso.load();
    do {
        if (actual + falta > memoriaMaxima.load())
            throw protocolo::ErrorProtocolo(
                503, "ocupado", "El servicio no tiene memoria para más respuestas en este momento");
    } while (!memoriaEnUso.compare_exchange_weak(actual, actual + falta));
    reservado_ = nuevo;
}

void SalidaJson::cabe(size_t n) {
    const size_t total = texto_.size() + n;
    if (total > limite_ || total < n)
        throw protocolo::ErrorProtocolo(413, "tamano",
                                        "La respuesta excede el tamaño máximo de 64 MiB");
    if (total > reservado_) reserva(total);
}

void SalidaJson::cadena(std::string_view s) {
    size_t largo = 0;
    if (!largoEscapado(s, largo)) {
        // Raro: texto que no es UTF-8. Se deja a nlohmann el reemplazo, igual que antes.
        cabe(s.size() * 3 + 2);
        crudo(nlohmann::json(std::string(s))
                  .dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
        return;
    }
    cabe(largo + 2);
    texto_.push_back('"');
    if (largo == s.size()) {
        texto_.append(s);
    } else {
        static constexpr char hex[] = "0123456789abcdef";
        for (char ch : s) {
            const auto c = static_cast<unsigned char>(ch);
            switch (c) {
            case '"':
                texto_.append("\\\"");
                break;
            case '\\':
                texto_.append("\\\\");
                break;
            case '\b':
                texto_.append("\\b");
                break;
            case '\f':
                texto_.append("\\f");
                break;
            case '\n':
                texto_.append("\\n");
                break;
            case '\r':
                texto_.append("\\r");
                break;
            case '\t':
                texto_.append("\\t");
                break;
            default:
                if (c < 0x20) {
                    const char u[] = {'\\', 'u', '0', '0', hex[c >> 4], hex[c & 15]};
                    texto_.append(u, sizeof u);
                } else {
                    texto_.push_back(ch);
                }
            }
        }
    }
    texto_.push_back('"');
}

std::string cadenaJson(std::string_view s) {
    SalidaJson salida(static_cast<size_t>(-1));
    salida.cadena(s);
    return salida.suelta();
}

void SalidaJson::base64(std::string_view bytes) {
    cabe((bytes.size() + 2) / 3 * 4 + 2);
    texto_.push_back('"');
    texto_.append(protocolo::codificaBase64(bytes));
    texto_.push_back('"');
}

void SalidaJson::entero(int64_t v) {
    char b[24];
    auto r = std::to_chars(b, b + sizeof b, v);
    crudo(std::string_view(b, static_cast<size_t>(r.ptr - b)));
}

void SalidaJson::real(double v) {
    crudo(textoReal(v));
}

// nlohmann escribe los dígitos más cortos que regresan al mismo valor, en notación decimal si
// el exponente decimal n cumple -4 < n <= 15 (con ".0" si no hay fracción) y si no en
// notación científica con al menos dos dígitos de exponente.
std::string textoReal(double v) {
    if (!std::isfinite(v)) return "null";
    if (v == 0) return std::signbit(v) ? "-0.0" : "0.0";
    char b[64];
    auto r = std::to_chars(b, b + sizeof b, v, std::chars_format::scientific);
    std::string_view cientifico(b, static_cast<size_t>(r.ptr - b));
    std::string signo;
    if (cientifico.front() == '-') {
        signo = "-";
        cientifico.remove_prefix(1);
    }
    const size_t e = cientifico.find('e');
    std::string digitos;
    for (char c : cientifico.substr(0, e))
        if (c != '.') digitos.push_back(c);
    const int exponente = std::atoi(std::string(cientifico.substr(e + 1)).c_str());
    const int k = static_cast<int>(digitos.size());
    const int n = exponente + 1; // posición del punto decimal
    std::string s;
    if (k <= n && n <= 15) {
        s = digitos + std::string(static_cast<size_t>(n - k), '0') + ".0";
    } else if (0 < n && n <= 15) {
        s = digitos.substr(0, static_cast<size_t>(n)) + "." +
            digitos.substr(static_cast<size_t>(n));
    } else if (-4 < n && n <= 0) {
        s = "0." + std::string(static_cast<size_t>(-n), '0') + digitos;
    } else {
        s = digitos.substr(0, 1);
        if (k > 1) s += "." + digitos.substr(1);
        const int x = n - 1;
        char ex[16];
        std::snprintf(ex, sizeof ex, "e%c%02d", x < 0 ? '-' : '+', x < 0 ? -x : x);
        s += ex;
    }
    return signo + s;
}

} // namespace cajaplex::servidor
