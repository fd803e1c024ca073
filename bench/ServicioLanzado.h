#pragma once

#include <filesystem>
#include <string>

#include <sys/types.h>

// El servicio recién compilado como proceso hijo, para medirlo desde fuera.
namespace cajaplex::carga {

struct Credenciales {
    std::string usuario;
    std::string contrasena;
};

class ServicioLanzado {
public:
    // Arranca en 127.0.0.1 con puerto libre y espera «Escuchando en ...»; lanza si no lo dice.
    ServicioLanzado(const std::filesystem::path& datos, const Credenciales& c);
    ~ServicioLanzado() { detiene(); }
    ServicioLanzado(const ServicioLanzado&) = delete;
    ServicioLanzado& operator=(const ServicioLanzado&) = delete;

    int puerto() const { return puerto_; }
    pid_t pid() const { return pid_; }
    // SIGTERM y espera; devuelve el código de salida (-1 si hubo que matarlo o ya no estaba).
    int detiene();

private:
    int esperaPuerto();

    pid_t pid_ = -1;
    int salida_ = -1;
    int puerto_ = 0;
};

// Memoria y CPU acumulada de un proceso según /proc.
struct Proceso {
    double rssMb = 0, hwmMb = 0, cpuSeg = 0;
};
Proceso leeProceso(pid_t pid);

// "tmpfs" avisa que el fsync no cuesta y las escrituras salen irrealmente rápidas.
const char* tipoDeDisco(const std::filesystem::path& p);

// Carpeta temporal propia que se borra pase lo que pase.
struct CarpetaTemporal {
    std::filesystem::path ruta;
    CarpetaTemporal();
    ~CarpetaTemporal();
    CarpetaTemporal(const CarpetaTemporal&) = delete;
    CarpetaTemporal& operator=(const CarpetaTemporal&) = delete;
};

} // namespace cajaplex::carga
