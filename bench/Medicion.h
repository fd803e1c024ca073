#pragma once

#include <filesystem>
#include <string>

#include <sys/types.h>

// Lo que la carga mide del proceso del servicio y de su disco.
namespace cajaplex::carga {

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
