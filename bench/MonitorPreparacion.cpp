// cajaplex-monitor-preparacion: cuánto tarda una sección que el mesero registra (RegistroComanda)
// en verse en cuatro monitores de cocina, cada uno como el de la pantalla pero sin ella: su hilo,
// su conexión, su EscuchaEventos y, a cada aviso, la lectura por el procedimiento del servicio y
// el acomodo en tarjetas (TarjetasPreparacion). Mediana y p99 sobre N secciones. Después, lo que
// gasta el servicio (CPU y memoria residente, de /proc) con 256 monitores esperando sin cambios.
// Solo imprime cifras; nunca falla por tiempos.
//
// Uso: cajaplex-monitor-preparacion [secciones, 200 por omisión] [segundos en reposo, 30]
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>
#include <unistd.h>

#include "bench/Percentil.h"
#include "datos/ConexionBD.h"
#include "datos/EscuchaEventos.h"
#include "restaurant/RegistroComanda.h"
#include "restaurant/TarjetasPreparacion.h"
#include "tests/fixtures/ServicioPrueba.h"

namespace {

using namespace cajaplex;
using Reloj = std::chrono::steady_clock;

constexpr int64_t Empresa = 2;  // "Restaurante El Portal"
constexpr int64_t MeseroID = 3; // mesero de la demostración
constexpr int64_t Nodo = 3;     // MESA 3
constexpr int64_t Guacamole = 101;
constexpr int64_t Cerveza = 131;

void apunta(ConexionBD& conexion, const prueba::ServicioPrueba& servicio) {
    const QString demo = QString::fromStdString(prueba::kUsuarioDemo);
    conexion.configura(QStringLiteral("127.0.0.1"), servicio.puerto(), demo, demo);
}

// Un monitor sin pantalla en su propio hilo: escucha, relee y anota cuándo vio cada tarjeta.
class MonitorSinPantalla : public QObject {
public:
    MonitorSinPantalla(const prueba::ServicioPrueba& servicio, const Sesion& sesion)
        : datos_(conexion_, sesion) {
        apunta(conexion_, servicio);
        escucha_ = new EscuchaEventos(
            conexion_, {QStringLiteral("ComandaDetalle"), QStringLiteral("Comanda")}, this);
        connect(escucha_, &EscuchaEventos::cambiaron, this, [this] { relee(); });
        connect(escucha_, &EscuchaEventos::enVivo, this, [this] {
            std::lock_guard bloqueo(mutex_);
            vivo_ = true;
        });
        moveToThread(&hilo_);
        hilo_.start();
        QMetaObject::invokeMethod(escucha_, [this] { escucha_->inicia(); });
    }
    ~MonitorSinPantalla() override {
        QMetaObject::invokeMethod(
            this, [this] { escucha_->detiene(); }, Qt::BlockingQueuedConnection);
        hilo_.quit();
        hilo_.wait();
    }

    bool vivo() {
        std::lock_guard bloqueo(mutex_);
        return vivo_;
    }
    // Cuándo vio la tarjeta por primera vez, si ya la vio.
    bool vio(const QString& clave, Reloj::time_point& cuando) {
        std::lock_guard bloqueo(mutex_);
        auto it = vistas_.find(clave);
        if (it == vistas_.end()) return false;
        cuando = it->second;
        return true;
    }
    long lecturas() {
        std::lock_guard bloqueo(mutex_);
        return lecturas_;
    }

private:
    void relee() {
        try {
            const auto cambios =
                tarjetas_.funde(datos_.comandasActivas(0), QDateTime::currentDateTime());
            const auto ahora = Reloj::now();
            std::lock_guard bloqueo(mutex_);
            ++lecturas_;
            for (const QString& clave : cambios.nuevas)
                vistas_.emplace(clave, ahora);
        } catch (const std::exception& e) {
            std::fprintf(stderr, "monitor: %s\n", e.what());
        }
    }

    QThread hilo_;
    ConexionBD conexion_;
    ComandasPreparacion datos_;
    TarjetasPreparacion tarjetas_;
    EscuchaEventos* escucha_;
    std::mutex mutex_;
    bool vivo_ = false;
    long lecturas_ = 0;
    std::map<QString, Reloj::time_point> vistas_;
};

struct Proceso {
    double cpuSegundos = 0;
    long rssKiB = 0;
};

// utime + stime (campos 14 y 15 de /proc/PID/stat) y VmRSS de /proc/PID/status.
Proceso mideProceso(pid_t pid) {
    Proceso p;
    std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
    std::string linea;
    std::getline(stat, linea);
    std::istringstream campos(linea.substr(linea.rfind(')') + 2));
    std::string campo;
    long utime = 0;
    long stime = 0;
    for (int i = 3; i <= 15 && campos >> campo; ++i) {
        if (i == 14) utime = std::stol(campo);
        if (i == 15) stime = std::stol(campo);
    }
    p.cpuSegundos = static_cast<double>(utime + stime) / static_cast<double>(sysconf(_SC_CLK_TCK));
    std::ifstream status("/proc/" + std::to_string(pid) + "/status");
    while (std::getline(status, linea))
        if (linea.rfind("VmRSS:", 0) == 0) p.rssKiB = std::stol(linea.substr(6));
    return p;
}

bool espera(const std::function<bool()>& condicion, int ms) {
    QElapsedTimer reloj;
    reloj.start();
    while (!condicion()) {
        if (reloj.elapsed() > ms) return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 2);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

} // namespace

int main(int argc, char* argv[]) {
    QCoreApplication aplicacion(argc, argv);
    const int secciones = argc > 1 ? std::atoi(argv[1]) : 200;
    const int reposo = argc > 2 ? std::atoi(argv[2]) : 30;
    prueba::ServicioPrueba servicio(true);
    auto cliente = servicio.cliente();

    Sesion mesero;
    mesero.UsuarioID = MeseroID;
    mesero.EmpresaID = Empresa;
    mesero.controlRestaurantes = true;

    // --- Del registro del mesero a la tarjeta en cuatro monitores ---
    std::vector<std::unique_ptr<MonitorSinPantalla>> monitores;
    for (int i = 0; i < 4; ++i)
        monitores.push_back(std::make_unique<MonitorSinPantalla>(servicio, mesero));
    if (!espera(
            [&] {
                for (auto& m : monitores)
                    if (!m->vivo()) return false;
                return true;
            },
            10000)) {
        std::fprintf(stderr, "los monitores no quedaron escuchando\n");
        return 1;
    }
    ConexionBD conexion;
    apunta(conexion, servicio);
    RegistroComanda registro(conexion, mesero);
    std::optional<ComandaAbierta> abierta;
    std::vector<double> ms;
    std::vector<double> msRegistro;
    RenglonComanda guacamole;
    guacamole.producto = Guacamole;
    RenglonComanda cerveza;
    cerveza.producto = Cerveza;
    cerveza.comensal = 2;
    long perdidas = 0;
    for (int i = 0; i < secciones; ++i) {
        const auto inicio = Reloj::now();
        abierta =
            registro.registraSeccion(Nodo, abierta, AperturaComanda{2, {}}, {guacamole, cerveza});
        msRegistro.push_back(
            std::chrono::duration<double, std::milli>(Reloj::now() - inicio).count());
        const QString clave = QStringLiteral("%1|%2").arg(abierta->folio).arg(abierta->seccion);
        for (auto& m : monitores) {
            Reloj::time_point visto;
            if (!espera([&] { return m->vio(clave, visto); }, 5000)) {
                ++perdidas;
                continue;
            }
            ms.push_back(std::chrono::duration<double, std::milli>(visto - inicio).count());
        }
        // La cocina la sirve: el monitor no acumula cientos de tarjetas.
        cliente.exige("Update ComandaDetalle Set servida = 2 Where empresaID = 2 and comanda = " +
                      std::to_string(abierta->folio) +
                      " and seccion = " + std::to_string(abierta->seccion));
    }
    long lecturas = 0;
    for (auto& m : monitores)
        lecturas += m->lecturas();
    monitores.clear();
    std::printf("Sección del mesero -> tarjeta en 4 monitores (%d secciones, %zu medidas, %ld sin "
                "llegar en 5 s, %ld relecturas):\n",
                secciones, ms.size(), perdidas, lecturas);
    std::printf("  registrar la sección: mediana %.1f ms  p99 %.1f ms\n",
                carga::percentil(msRegistro, 0.5), carga::percentil(msRegistro, 0.99));
    std::printf("  hasta verla:          mediana %.1f ms  p99 %.1f ms  máximo %.1f ms\n",
                carga::percentil(ms, 0.5), carga::percentil(ms, 0.99), carga::percentil(ms, 1.0));

    // --- 256 monitores esperando sin cambios ---
    const Proceso antes = mideProceso(servicio.pid());
    ConexionBD compartida;
    apunta(compartida, servicio);
    std::vector<std::unique_ptr<EscuchaEventos>> esperando;
    int vivos = 0;
    for (int i = 0; i < 256; ++i) {
        auto e = std::make_unique<EscuchaEventos>(
            compartida, QStringList{QStringLiteral("ComandaDetalle"), QStringLiteral("Comanda")});
        QObject::connect(e.get(), &EscuchaEventos::enVivo, [&vivos] { ++vivos; });
        e->inicia();
        esperando.push_back(std::move(e));
    }
    espera([&] { return vivos == 256; }, 20000);
    const Proceso conectados = mideProceso(servicio.pid());
    espera([] { return false; }, reposo * 1000);
    const Proceso despues = mideProceso(servicio.pid());
    esperando.clear();
    std::printf("Servicio con %d monitores esperando, %d s en reposo:\n", vivos, reposo);
    std::printf("  CPU %.2f s en el reposo (%.2f %% de un núcleo)\n",
                despues.cpuSegundos - conectados.cpuSegundos,
                100.0 * (despues.cpuSegundos - conectados.cpuSegundos) / reposo);
    std::printf(
        "  memoria residente: %ld KiB sin monitores, %ld KiB con ellos (%ld KiB al final)\n",
        antes.rssKiB, conectados.rssKiB, despues.rssKiB);
    return 0;
}
