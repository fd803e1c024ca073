#include "bench/Medicion.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include <sys/vfs.h>
#include <unistd.h>

namespace cajaplex::carga {

namespace fs = std::filesystem;

Proceso leeProceso(pid_t pid) {
    Proceso m;
    const std::string raiz = "/proc/" + std::to_string(pid);
    std::ifstream estado(raiz + "/status");
    std::string linea;
    while (std::getline(estado, linea)) {
        const double kb = std::strtod(linea.c_str() + linea.find(':') + 1, nullptr);
        if (linea.starts_with("VmRSS:")) m.rssMb = kb / 1024;
        if (linea.starts_with("VmHWM:")) m.hwmMb = kb / 1024;
    }
    // utime y stime son los campos 14 y 15; el nombre entre paréntesis puede tener espacios.
    std::ifstream stat(raiz + "/stat");
    std::getline(stat, linea);
    std::istringstream campos(linea.substr(linea.rfind(')') + 2));
    std::string campo;
    double ticks = 0;
    for (int i = 3; i <= 15 && campos >> campo; ++i)
        if (i >= 14) ticks += std::strtod(campo.c_str(), nullptr);
    m.cpuSeg = ticks / static_cast<double>(sysconf(_SC_CLK_TCK));
    return m;
}

const char* tipoDeDisco(const fs::path& p) {
    struct statfs s {};
    if (statfs(p.c_str(), &s) != 0) return "desconocido";
    return s.f_type == 0x01021994 ? "tmpfs (sin disco: fsync no cuesta)" : "disco";
}

CarpetaTemporal::CarpetaTemporal() {
    std::string plantilla = (fs::temp_directory_path() / "cajaplex-carga-XXXXXX").string();
    if (!mkdtemp(plantilla.data())) throw std::runtime_error("mkdtemp falló");
    ruta = plantilla;
}

CarpetaTemporal::~CarpetaTemporal() {
    std::error_code ec;
    fs::remove_all(ruta, ec);
}

} // namespace cajaplex::carga
