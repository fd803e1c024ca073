#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace cajaplex::servidor {

// Una respuesta cuyo JSON pasaría de esto se detiene y contesta 413 "tamano".
inline constexpr size_t LimiteRespuesta = size_t{64} << 20;

// Memoria que todas las respuestas en construcción pueden ocupar a la vez (todo el proceso).
// Pasarla contesta 503 "ocupado" en vez de agotar la memoria.
void fijaMemoriaRespuestas(size_t bytes);
size_t memoriaRespuestasEnUso();

// El texto JSON de una respuesta, medido mientras se escribe: cada escritura pregunta antes si
// cabe, así que la memoria no se gasta antes de rechazar.
class SalidaJson {
public:
    explicit SalidaJson(size_t limite = LimiteRespuesta);
    ~SalidaJson();
    SalidaJson(const SalidaJson&) = delete;
    SalidaJson& operator=(const SalidaJson&) = delete;

    // Lanza ErrorProtocolo 413 si n bytes más pasarían el límite de la respuesta, o 503 si el
    // proceso no tiene memoria de respuestas para ellos.
    void cabe(size_t n);

    void crudo(std::string_view s) {
        cabe(s.size());
        texto_.append(s);
    }
    void caracter(char c) {
        cabe(1);
        texto_.push_back(c);
    }
    // Cadena JSON (con comillas), escapada como la escribe nlohmann::json (UTF-8 inválido se
    // reemplaza por U+FFFD).
    void cadena(std::string_view s);
    void base64(std::string_view bytes);
    void entero(int64_t v);
    // Como nlohmann::json: "2.0" para enteros, null para infinito o NaN.
    void real(double v);

    std::string& texto() { return texto_; }
    size_t tamano() const { return texto_.size(); }
    // Entrega el texto y suelta la memoria reservada.
    std::string suelta();

private:
    void reserva(size_t total);

    std::string texto_;
    size_t limite_;
    size_t reservado_ = 0;
};

// Cadena JSON (con comillas) de s.
std::string cadenaJson(std::string_view s);

// Texto de un número real como lo escribe nlohmann::json.
std::string textoReal(double v);

} // namespace cajaplex::servidor
