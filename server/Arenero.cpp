#include "server/Arenero.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>

#include "server/Motor.h"

namespace cajaplex::servidor {

namespace {

bool esInicioPalabra(char c) {
    return std::isalpha(static_cast<unsigned char>(c)) || c == '_';
}
bool esPalabra(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '$';
}

std::string minusculas(std::string_view texto) {
    std::string s(texto);
    std::transform(s.begin(), s.end(), s.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return s;
}

bool nombreProhibido(const std::string& nombre) {
    return nombre.starts_with("sqlite_") || nombre.starts_with("pragma_") ||
           nombre == "load_extension" || esTablaDeContabilidad(nombre);
}

[[noreturn]] void prohibe(const std::string& que) {
    throw protocolo::ErrorProtocolo(403, "prohibido", "Sentencia no permitida: " + que);
}

} // namespace

void revisaTextoDeEstacion(const std::string& sql) {
    // Lo que no es ninguna de estas ni de las permitidas lo rechaza el motor como error de SQL.
    static constexpr std::array<std::string_view, 16> vedadas = {
        "attach", "detach", "pragma", "create",   "drop",      "alter",   "vacuum",  "reindex",
        "begin",  "commit", "end",    "rollback", "savepoint", "release", "analyze", "explain"};
    bool primera = true;
    size_t i = 0;
    const size_t n = sql.size();
    while (i < n) {
        const char c = sql[i];
        if (std::isspace(static_cast<unsigned char>(c)) || (primera && c == '(')) {
            ++i;
        } else if (c == '-' && i + 1 < n && sql[i + 1] == '-') {
            i = sql.find('\n', i);
            if (i == std::string::npos) i = n;
        } else if (c == '/' && i + 1 < n && sql[i + 1] == '*') {
            i = sql.find("*/", i + 2);
            i = i == std::string::npos ? n : i + 2;
        } else if (c == '\'') { // literal de texto: su contenido no cuenta
            for (++i; i < n; ++i) {
                if (sql[i] != '\'') continue;
                if (i + 1 < n && sql[i + 1] == '\'')
                    ++i;
                else
                    break;
            }
            ++i;
            primera = false;
        } else if (c == '"' || c == '`' || c == '[' || esInicioPalabra(c)) {
            std::string nombre;
            if (esInicioPalabra(c)) {
                size_t fin = i;
                while (fin < n && esPalabra(sql[fin]))
                    ++fin;
                nombre = sql.substr(i, fin - i);
                i = fin;
            } else {
                const char cierre = c == '[' ? ']' : c;
                size_t fin = sql.find(cierre, i + 1);
                if (fin == std::string::npos) fin = n;
                nombre = sql.substr(i + 1, fin - i - 1);
                i = fin + 1;
            }
            nombre = minusculas(nombre);
            if (primera && std::find(vedadas.begin(), vedadas.end(), nombre) != vedadas.end())
                prohibe("solo se admiten SELECT, INSERT, UPDATE, DELETE y los procedimientos");
            primera = false;
            if (nombreProhibido(nombre)) prohibe(nombre);
        } else {
            ++i;
            primera = false;
        }
    }
}

} // namespace cajaplex::servidor
