// cajaplex-servidor: la base de datos de Cajaplex servida como SQL sobre HTTP.
#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <malloc.h>
#include <pthread.h>
#include <string>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

#include "server/Certificados.h"
#include "server/Eventos.h"
#include "server/Migraciones.h"
#include "server/MotorSqlite.h"
#include "server/SalidaJson.h"
#include "server/Servicio.h"
#include "server/ServidorHttp.h"

using namespace cajaplex::servidor;

namespace {

struct Opciones {
    std::string datos;
    std::string direccion = "127.0.0.1";
    int puerto = 8080;
    bool demo = false;
    bool tls = false;
    std::string certificado;
    std::string clave;
    long long memoriaMiB = 512;
    long long paginasMaximas = 0;
};

[[noreturn]] void uso(const std::string& problema) {
    std::cerr
        << problema << "\n"
        << "Uso: cajaplex-servidor --datos DIR [--direccion 127.0.0.1] [--puerto 8080] "
           "[--demo] [--tls [--certificado ARCHIVO --clave ARCHIVO]] [--memoria MiB] "
           "[--paginas-maximas N]\n"
           "  --tls                  HTTPS (siempre que --direccion no sea de esta máquina);\n"
           "                         sin --certificado/--clave usa uno autofirmado en DIR/tls\n"
           "  --memoria MiB          límite de memoria de SQLite para todo el proceso "
           "(512)\n"
           "  --paginas-maximas N    tope de páginas del archivo (pruebas: disco lleno)\n";
    std::exit(2);
}

Opciones leeOpciones(int argc, char** argv) {
    Opciones o;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        auto siguiente = [&]() -> std::string {
            if (i + 1 >= argc) uso("Falta el valor de " + arg);
            return argv[++i];
        };
        if (arg == "--datos")
            o.datos = siguiente();
        else if (arg == "--direccion")
            o.direccion = siguiente();
        else if (arg == "--puerto") {
            const std::string valor = siguiente();
            char* fin = nullptr;
            long p = std::strtol(valor.c_str(), &fin, 10);
            if (*fin != '\0' || p < 0 || p > 65535) uso("Puerto no válido: " + valor);
            o.puerto = static_cast<int>(p);
        } else if (arg == "--demo") {
            o.demo = true;
        } else if (arg == "--tls") {
            o.tls = true;
        } else if (arg == "--certificado") {
            o.certificado = siguiente();
        } else if (arg == "--clave") {
            o.clave = siguiente();
        } else if (arg == "--memoria" || arg == "--paginas-maximas") {
            const std::string valor = siguiente();
            char* fin = nullptr;
            long long n = std::strtoll(valor.c_str(), &fin, 10);
            const long long minimo = arg == "--memoria" ? 16 : 1;
            if (valor.empty() || *fin != '\0' || n < minimo || n > (1LL << 40))
                uso("Valor no válido para " + arg + ": " + valor);
            (arg == "--memoria" ? o.memoriaMiB : o.paginasMaximas) = n;
        } else {
            uso("Opción desconocida: " + arg);
        }
    }
    if (o.datos.empty()) uso("Falta --datos DIR");
    if (o.certificado.empty() != o.clave.empty()) uso("--certificado y --clave van juntos");
    // La red del negocio no es de confianza: fuera de esta máquina solo se habla HTTPS.
    if (!o.certificado.empty() || !esDireccionLocal(o.direccion)) o.tls = true;
    return o;
}

} // namespace

int main(int argc, char** argv) {
    const Opciones opciones = leeOpciones(argc, argv);

    OpcionesHttp http;
    http.direccion = opciones.direccion;
    if (opciones.demo) {
        http.usuario = "cajaplex";
        http.contrasena = "cajaplex";
        std::cout << "Modo demostración: credenciales del servicio cajaplex / cajaplex"
                  << std::endl;
    } else {
        const char* usuario = std::getenv("CAJAPLEX_USUARIO");
        const char* contrasena = std::getenv("CAJAPLEX_CONTRASENA");
        if (!usuario || !*usuario || !contrasena || !*contrasena) {
            std::cerr << "Defina CAJAPLEX_USUARIO y CAJAPLEX_CONTRASENA (o use --demo)\n";
            return 2;
        }
        http.usuario = usuario;
        http.contrasena = contrasena;
    }

    // Las señales se esperan en un hilo propio; ningún otro hilo las recibe.
    sigset_t senales;
    sigemptyset(&senales);
    sigaddset(&senales, SIGINT);
    sigaddset(&senales, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &senales, nullptr);
    std::signal(SIGPIPE, SIG_IGN);

    // Memoria acotada: el montículo de SQLite tiene límite duro, las respuestas en construcción
    // el suyo, y pocas arenas de malloc para tantos hilos.
    const long long memoria = opciones.memoriaMiB << 20;
    fijaMemoriaSqlite(memoria);
    fijaMemoriaRespuestas(std::max<size_t>(2 * LimiteRespuesta, static_cast<size_t>(memoria / 2)));
    mallopt(M_ARENA_MAX, 4);
    // Cada conexión de una estación (y cada espera de eventos) es un descriptor.
    rlimit archivos{};
    if (getrlimit(RLIMIT_NOFILE, &archivos) == 0 && archivos.rlim_cur < archivos.rlim_max) {
        archivos.rlim_cur = std::min<rlim_t>(archivos.rlim_max, 65536);
        setrlimit(RLIMIT_NOFILE, &archivos);
    }

    Eventos eventos;
    std::error_code ec;
    std::filesystem::create_directories(opciones.datos, ec);
    OpcionesSqlite sqlite;
    sqlite.archivo = (std::filesystem::path(opciones.datos) / "cajaplex.db").string();
    sqlite.paginasMaximas = opciones.paginasMaximas;
    MotorSqlite motor(sqlite);
    try {
        auto conexion = motor.abreConexion();
        preparaBase(*conexion, opciones.demo);
        std::vector<std::string> tablas;
        for (const auto& fila :
             conexion
                 ->ejecutaInterna("Select name From sqlite_master Where type = 'table' And "
                                  "substr(name, 1, 7) <> 'sqlite_' And "
                                  "substr(name, 1, 9) <> 'cajaplex_'")
                 .filas)
            tablas.push_back(std::get<std::string>(fila.at(0)));
        eventos.defineTablas(tablas);
    } catch (const std::exception& e) {
        std::cerr << "No se pudo preparar la base de datos: " << e.what() << "\n";
        return 1;
    }
    // Desde aquí cada COMMIT de las estaciones sube los contadores de eventos.
    sqlite.alConfirmar = [&eventos](const std::set<std::string>& t) { eventos.publica(t); };
    MotorSqlite motorServicio(sqlite);

    std::string huella;
    if (opciones.tls) {
        try {
            const auto par = preparaCertificado(opciones.datos, opciones.direccion,
                                                opciones.certificado, opciones.clave);
            http.certificado = par.certificado;
            http.clave = par.clave;
            huella = par.huella;
        } catch (const std::exception& e) {
            std::cerr << "Certificado del servicio: " << e.what() << "\n";
            return 1;
        }
    }

    Servicio servicio(motorServicio, TiemposTransaccion{});
    http.puerto = opciones.puerto;
    ServidorHttp servidor(servicio, http, &eventos);
    if (!servidor.valido()) {
        std::cerr << "No se pudo cargar el certificado " << http.certificado << " con la clave "
                  << http.clave << "\n";
        return 1;
    }
    const int puerto = servidor.abre();
    if (puerto <= 0) {
        std::cerr << "No se pudo abrir " << opciones.direccion << ":" << opciones.puerto << "\n";
        return 1;
    }

    // Al recibir la señal: deja de aceptar, espera lo que está en curso, revierte lo abierto y
    // cierra la base. No se espera a las conexiones keep-alive ociosas: sus hilos quedarían
    // hasta 15 s esperando una solicitud que ya no llegará.
    std::thread vigiaSenales([&] {
        int senal = 0;
        sigwait(&senales, &senal);
        servidor.despideEsperas(std::chrono::seconds(2));
        servidor.detiene();
        servicio.detiene(std::chrono::seconds(20));
        std::cout << "Servicio detenido" << std::endl;
        std::_Exit(0);
    });
    vigiaSenales.detach();

    if (opciones.tls) std::cout << "Huella SHA-256: " << huella << std::endl;
    std::cout << "Escuchando en " << (opciones.tls ? "https" : "http") << "://"
              << opciones.direccion << ":" << puerto << std::endl;
    servidor.atiende();
    // Solo se llega aquí si el servidor dejó de escuchar sin señal: el hilo de señales termina.
    std::raise(SIGTERM);
    pause();
    return 0;
}
