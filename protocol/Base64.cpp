#include "protocol/Base64.h"

#include <array>
#include <cstdint>

namespace cajaplex::protocolo {

namespace {
constexpr char alfabeto[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::array<int8_t, 256> tablaInversa() {
    std::array<int8_t, 256> t{};
    for (auto& v : t)
        v = -1;
    for (int i = 0; i < 64; ++i)
        t[static_cast<unsigned char>(alfabeto[i])] = static_cast<int8_t>(i);
    return t;
}
constexpr auto inversa = tablaInversa();
} // namespace

std::string codificaBase64(std::string_view bytes) {
    std::string salida;
    salida.reserve((bytes.size() + 2) / 3 * 4);
    size_t i = 0;
    for (; i + 2 < bytes.size(); i += 3) {
        uint32_t n = (uint32_t(uint8_t(bytes[i])) << 16) | (uint32_t(uint8_t(bytes[i + 1])) << 8) |
                     uint8_t(bytes[i + 2]);
        salida += alfabeto[(n >> 18) & 63];
        salida += alfabeto[(n >> 12) & 63];
        salida += alfabeto[(n >> 6) & 63];
        salida += alfabeto[n & 63];
    }
    if (i < bytes.size()) {
        uint32_t n = uint32_t(uint8_t(bytes[i])) << 16;
        if (i + 1 < bytes.size()) n |= uint32_t(uint8_t(bytes[i + 1])) << 8;
        salida += alfabeto[(n >> 18) & 63];
        salida += alfabeto[(n >> 12) & 63];
        salida += i + 1 < bytes.size() ? alfabeto[(n >> 6) & 63] : '=';
        salida += '=';
    }
    return salida;
}

std::optional<std::string> decodificaBase64(std::string_view texto) {
    while (!texto.empty() && texto.back() == '=')
        texto.remove_suffix(1);
    if (texto.size() % 4 == 1) return std::nullopt;
    std::string salida;
    salida.reserve(texto.size() * 3 / 4);
    uint32_t acumulado = 0;
    int bits = 0;
    for (char c : texto) {
        int8_t v = inversa[static_cast<unsigned char>(c)];
        if (v < 0) return std::nullopt;
        acumulado = (acumulado << 6) | uint32_t(v);
        bits += 6;
        if (bits >= 8) {
            bits -= 8;
            salida += static_cast<char>((acumulado >> bits) & 0xFF);
        }
    }
    return salida;
}

} // namespace cajaplex::protocolo
