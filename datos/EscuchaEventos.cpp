#include "datos/EscuchaEventos.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <utility>

#include <QMetaObject>
#include <QtDebug>

namespace cajaplex {

using nlohmann::json;

namespace {

// Lo que contesta el servicio a una espera.
struct Respuesta {
    std::string instancia;
    int64_t version = 0;
    std::map<std::string, int64_t> tablas;
};

Respuesta lee(const std::string& cuerpo) {
    const json j = json::parse(cuerpo, nullptr, false);
    if (j.is_discarded() || !j.is_object() || !j.contains("instancia") ||
        !j["instancia"].is_string() || !j.contains("version") ||
        !j["version"].is_number_integer() || !j.contains("tablas") || !j["tablas"].is_object())
        throw ErrorServicio("respuesta", 200, "El servicio contestó eventos sin la forma esperada");
    Respuesta r;
    r.instancia = j["instancia"].get<std::string>();
    r.version = j["version"].get<int64_t>();
    for (const auto& [tabla, contador] : j["tablas"].items())
        if (contador.is_number_integer()) r.tablas[tabla] = contador.get<int64_t>();
    return r;
}

} // namespace

EscuchaEventos::EscuchaEventos(ConexionBD& conexion, QStringList tablas, QObject* padre)
    : QObject(padre), conexion_(conexion), tablas_(std::move(tablas)) {}

EscuchaEventos::~EscuchaEventos() {
    detiene();
}

void EscuchaEventos::inicia() {
    std::lock_guard bloqueo(mutex_);
    if (hilo_.joinable() || detener_) return;
    hilo_ = std::thread([this] { escucha(); });
}

void EscuchaEventos::detiene() {
    std::unique_lock bloqueo(mutex_);
    detener_ = true;
    cambio_.notify_all();
    // La espera pudo empezar justo después de revisar detener_: se interrumpe hasta que el hilo
    // avise que terminó.
    while (hilo_.joinable() && !terminado_) {
        if (enCurso_) enCurso_->interrumpe();
        cambio_.wait_for(bloqueo, std::chrono::milliseconds(20));
    }
    bloqueo.unlock();
    if (hilo_.joinable()) hilo_.join();
}

template <typename F> void EscuchaEventos::avisa(F&& aviso) {
    // Si el objeto se destruye antes, Qt descarta el aviso pendiente.
    QMetaObject::invokeMethod(this, std::forward<F>(aviso), Qt::QueuedConnection);
}

bool EscuchaEventos::pausa(std::chrono::milliseconds lapso) {
    std::unique_lock bloqueo(mutex_);
    return !cambio_.wait_for(bloqueo, lapso, [this] { return detener_; });
}

void EscuchaEventos::escucha() {
    const std::string consulta = "tablas=" + tablas_.join(QLatin1Char(',')).toStdString();
    std::unique_ptr<ConexionBD::EsperaEventos> espera;
    std::string instancia;
    int64_t desde = 0;
    std::map<std::string, int64_t> versiones;
    int estado = -1; // -1 aún no se sabe, 0 sin eventos, 1 en vivo
    // Al (re)conectar se pregunta sin esperar: el servicio contesta al momento y se sabe ya que
    // la escucha funciona; después, la espera larga.
    int segundos = 0;
    auto reintento = PrimerReintento;
    for (;;) {
        std::string motivo;
        try {
            {
                std::lock_guard bloqueo(mutex_);
                if (detener_) break;
                // Una espera nueva toma la dirección y credenciales vigentes de la conexión.
                if (!espera) espera = conexion_.esperaEventos();
                enCurso_ = espera.get();
            }
            const Respuesta r = lee(espera->espera(consulta + "&desde=" + std::to_string(desde) +
                                                       "&espera=" + std::to_string(segundos),
                                                   segundos));
            segundos = EsperaServicio;
            if (estado != 1) {
                estado = 1;
                avisa([this] {
                    vivo_ = true;
                    emit enVivo();
                });
            }
            if (!instancia.empty() && r.instancia != instancia) {
                avisa([this] { emit reiniciado(); });
            } else {
                QStringList cambiadas;
                for (const auto& [tabla, contador] : r.tablas)
                    if (instancia.empty() || contador > versiones[tabla])
                        cambiadas << QString::fromStdString(tabla);
                if (!cambiadas.isEmpty()) avisa([this, cambiadas] { emit cambiaron(cambiadas); });
            }
            instancia = r.instancia;
            desde = r.version;
            versiones = r.tablas;
            reintento = PrimerReintento;
            continue;
        } catch (const ErrorServicio& e) {
            motivo = e.what();
        }
        {
            std::lock_guard bloqueo(mutex_);
            enCurso_ = nullptr;
            if (detener_) break;
        }
        // La siguiente vez con un cliente nuevo: la conexión pudo cambiar de dirección.
        espera.reset();
        segundos = 0;
        if (estado != 0) {
            estado = 0;
            qWarning().noquote() << QStringLiteral("Sin eventos del servicio (%1): %2")
                                        .arg(tablas_.join(QLatin1Char(',')),
                                             QString::fromStdString(motivo));
            const QString texto = QString::fromStdString(motivo);
            avisa([this, texto] {
                vivo_ = false;
                emit sinEventos(texto);
            });
        }
        if (!pausa(reintento)) break;
        reintento = std::min(reintento * 2, MaximoReintento);
    }
    std::lock_guard bloqueo(mutex_);
    enCurso_ = nullptr;
    terminado_ = true;
    cambio_.notify_all();
}

} // namespace cajaplex
