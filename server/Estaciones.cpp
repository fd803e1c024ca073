#include "server/Estaciones.h"

#include <stdexcept>

#include <sodium.h>

#include "protocol/Base64.h"

namespace cajaplex::servidor {

using protocolo::Parametro;
using protocolo::Tipo;

namespace {

constexpr size_t BytesSecreto = 32;
constexpr size_t BytesUsuario = 12;

Parametro texto(const char* nombre, const std::string& valor) {
    return Parametro{nombre, Tipo::Texto, valor, std::nullopt};
}

void iniciaSodium() {
    static const bool listo = sodium_init() >= 0;
    if (!listo) throw std::runtime_error("No se pudo iniciar libsodium");
}

std::string hexadecimal(const unsigned char* datos, size_t largo) {
    std::string hex(largo * 2 + 1, '\0');
    sodium_bin2hex(hex.data(), hex.size(), datos, largo);
    hex.pop_back();
    return hex;
}

// El secreto tiene 256 bits aleatorios: su SHA-256 no se puede invertir ni probar por fuerza
// bruta, y revisarlo en cada solicitud cuesta microsegundos (un hash lento costaría 100 ms).
std::string hashSecreto(const std::string& secreto) {
    unsigned char hash[crypto_hash_sha256_BYTES];
    crypto_hash_sha256(hash, reinterpret_cast<const unsigned char*>(secreto.data()),
                       secreto.size());
    return hexadecimal(hash, sizeof hash);
}

std::string aleatorio(size_t bytes) {
    std::string datos(bytes, '\0');
    randombytes_buf(datos.data(), datos.size());
    return datos;
}

} // namespace

bool estacionVigente(Conexion& c, const std::string& usuario, const std::string& secreto) {
    iniciaSodium();
    auto r = c.ejecutaInterna(std::string("Select E.secreto From ") + TablaEstaciones +
                                  " E Join DispositivosRED D On D.ReferenciaID = E.dispositivoID"
                                  " Where E.usuario = :usuario",
                              {texto("usuario", usuario)});
    if (r.filas.empty()) return false;
    const auto* guardado = std::get_if<std::string>(&r.filas[0][0]);
    const std::string calculado = hashSecreto(secreto);
    return guardado && guardado->size() == calculado.size() &&
           sodium_memcmp(guardado->data(), calculado.data(), calculado.size()) == 0;
}

bool esAdministrador(Conexion& c, const std::string& usuario, const std::string& contrasena) {
    if (usuario.empty() || contrasena.empty()) return false;
    auto r = c.ejecutaInterna("Select count(*) From Usuarios Where nUsuario = :usuario"
                              " and ifnull(activo, 0) = 1 and ifnull(esAdmin, 0) = 1"
                              " and cajaplex_verifica(:contrasena, contrasena) = 1",
                              {texto("usuario", usuario), texto("contrasena", contrasena)});
    const auto* n = r.filas.empty() ? nullptr : std::get_if<int64_t>(&r.filas[0][0]);
    return n && *n > 0;
}

CredencialesEstacion emiteCredenciales(Conexion& c, const std::string& dispositivoID,
                                       const std::optional<std::string>& descripcion) {
    iniciaSodium();
    const std::string bytesUsuario = aleatorio(BytesUsuario);
    CredencialesEstacion nuevas{
        std::string(PrefijoUsuarioEstacion) +
            hexadecimal(reinterpret_cast<const unsigned char*>(bytesUsuario.data()),
                        bytesUsuario.size()),
        protocolo::codificaBase64(aleatorio(BytesSecreto))};
    c.ejecutaInterna(std::string("Delete From ") + TablaEstaciones +
                         " Where dispositivoID = :dispositivo",
                     {texto("dispositivo", dispositivoID)});
    c.ejecutaInterna(std::string("Insert Into ") + TablaEstaciones +
                         " (usuario, dispositivoID, secreto) Values (:usuario, :dispositivo,"
                         " :secreto)",
                     {texto("usuario", nuevas.usuario), texto("dispositivo", dispositivoID),
                      texto("secreto", hashSecreto(nuevas.contrasena))});
    Parametro desc{"descripcion", Tipo::Texto, std::monostate{}, std::nullopt};
    if (descripcion) desc.valor = *descripcion;
    c.ejecutaInterna("Insert Into DispositivosRED (ReferenciaID, descripcion, fechaEmision)"
                     " Values (:dispositivo, :descripcion, datetime('now', 'localtime'))"
                     " On Conflict (ReferenciaID) Do Update Set"
                     " descripcion = coalesce(excluded.descripcion, DispositivosRED.descripcion),"
                     " fechaEmision = excluded.fechaEmision",
                     {texto("dispositivo", dispositivoID), desc});
    return nuevas;
}

} // namespace cajaplex::servidor
