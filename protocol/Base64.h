#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace cajaplex::protocolo {

std::string codificaBase64(std::string_view bytes);
// nullopt si el texto no es base64 válido.
std::optional<std::string> decodificaBase64(std::string_view texto);

} // namespace cajaplex::protocolo
