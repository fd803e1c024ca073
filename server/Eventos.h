#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace cajaplex::servidor {

// Contadores de cambios por tabla para GET .../eventos. Cada transacción confirmada que cambió
// filas toma el siguiente número de una sola secuencia y lo pone en el contador de cada tabla
// que cambió: así la versión (el mayor de las tablas pedidas) sube con cualquier cambio de
// cualquiera de ellas. Esperar no usa la base: ni conexión ni escritor.
class Eventos {
public:
    Eventos();

    // Las tablas que las estaciones pueden pedir, como las escribe el esquema.
    void defineTablas(const std::vector<std::string>& tablas);
    // Tras un COMMIT (cualquier hilo).
    void publica(const std::set<std::string>& tablas);

    // Contesta el JSON de la solicitud: en cuanto la versión pasa de "desde", o al acabarse la
    // espera, o al detenerse el servicio. Lanza ErrorProtocolo 400 si los parámetros no sirven.
    std::string espera(const std::string& tablas, const std::string& desde,
                       const std::string& espera);

    // Contesta ya a todas las esperas y a las que lleguen después.
    void detiene();
    const std::string& instancia() const { return instancia_; }
    int esperando();

    // Esperas simultáneas; pasado esto se contesta enseguida con la versión actual.
    static constexpr int MaximoEsperando = 512;

private:
    std::string instancia_;
    std::mutex m_;
    std::condition_variable cv_;
    std::unordered_map<std::string, size_t> indice_; // nombre en minúsculas -> posición
    std::vector<std::string> nombres_;
    std::vector<uint64_t> contadores_;
    uint64_t secuencia_ = 0;
    bool deteniendo_ = false;
    int esperando_ = 0;
};

} // namespace cajaplex::servidor
