#include "ServicioLanzado.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/vfs.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace cajaplex::carga {

namespace fs = std::filesystem;
using Reloj = std::chrono::steady_clock;

ServicioLanzado::ServicioLanzado(const fs::path& datos, const Credenciales& c) {
    int tubo[2];
    if (pipe2(tubo, O_CLOEXEC) != 0) throw std::runtime_error("pipe2 falló");
    std::vector<std::string> args = {CAJAPLEX_SERVIDOR_RUTA,
                                     "--datos",
                                     datos.string(),
                                     "--direccion",
                                     "127.0.0.1",
                                     "--puerto",
                                     "0"};
    // Las credenciales van solo por el entorno del hijo; las de quien corre la carga no cuentan.
    std::vector<std::string> entorno;
    for (char** e = environ; *e; ++e) {
        std::string v = *e;
        if (!v.starts_with("CAJAPLEX_USUARIO=") && !v.starts_with("CAJAPLEX_CONTRASENA="))
            entorno.push_back(std::move(v));
    }
    entorno.push_back("CAJAPLEX_USUARIO=" + c.usuario);
    entorno.push_back("CAJAPLEX_CONTRASENA=" + c.contrasena);
    auto punteros = [](std::vector<std::string>& v) {
        std::vector<char*> p;
        for (auto& s : v)
            p.push_back(s.data());
        p.push_back(nullptr);
        return p;
    };
    auto argv = punteros(args);
    auto envp = punteros(entorno);
    posix_spawn_file_actions_t acciones;
    posix_spawn_file_actions_init(&acciones);
    posix_spawn_file_actions_adddup2(&acciones, tubo[1], STDOUT_FILENO);
    const int error = posix_spawn(&pid_, argv[0], &acciones, nullptr, argv.data(), envp.data());
    posix_spawn_file_actions_destroy(&acciones);
    close(tubo[1]);
    salida_ = tubo[0];
    if (error != 0) {
        pid_ = -1;
        close(salida_);
        throw std::runtime_error(std::string("no se pudo ejecutar ") + CAJAPLEX_SERVIDOR_RUTA);
    }
    puerto_ = esperaPuerto();
}

// Lee la salida hasta «Escuchando en http://ADDR:PORT»; el tubo queda abierto después.
int ServicioLanzado::esperaPuerto() {
    const std::string marca = "Escuchando en http://";
    const auto limite = Reloj::now() + std::chrono::seconds(30);
    std::string leido;
    while (Reloj::now() < limite) {
        pollfd p{salida_, POLLIN, 0};
        if (poll(&p, 1, 200) < 0 && errno != EINTR) break;
        if (p.revents == 0) continue;
        char bufer[512];
        const ssize_t n = read(salida_, bufer, sizeof bufer);
        if (n <= 0) break;
        leido.append(bufer, static_cast<size_t>(n));
        const auto pos = leido.find(marca);
        const auto fin = pos == std::string::npos ? pos : leido.find('\n', pos);
        if (fin == std::string::npos) continue;
        const std::string direccion = leido.substr(pos + marca.size(), fin - pos - marca.size());
        return std::atoi(direccion.substr(direccion.rfind(':') + 1).c_str());
    }
    detiene();
    throw std::runtime_error("el servicio no anunció su puerto; dijo: " + leido);
}

int ServicioLanzado::detiene() {
    int codigo = -1;
    if (pid_ > 0) {
        kill(pid_, SIGTERM);
        int estado = 0;
        pid_t r = 0;
        const auto limite = Reloj::now() + std::chrono::seconds(20);
        while ((r = waitpid(pid_, &estado, WNOHANG)) == 0 && Reloj::now() < limite)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        if (r == 0) { // no atendió SIGTERM a tiempo
            kill(pid_, SIGKILL);
            waitpid(pid_, &estado, 0);
        } else if (r == pid_ && WIFEXITED(estado)) {
            codigo = WEXITSTATUS(estado);
        }
        pid_ = -1;
    }
    if (salida_ >= 0) close(salida_);
    salida_ = -1;
    return codigo;
}

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
