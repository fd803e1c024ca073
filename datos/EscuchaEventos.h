#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

#include <QObject>
#include <QString>
#include <QStringList>

#include "datos/ConexionBD.h"

namespace cajaplex {

// Escucha los cambios de unas tablas en el servicio (GET .../eventos) desde un hilo propio y con
// su propio cliente HTTP, para que una pantalla con datos vivos (el monitor de cocina, el plano de
// mesas) vuelva a leer en cuanto algo se confirma, en vez de preguntar cada tanto.
//
// Las señales salen siempre en el hilo del objeto (el de la pantalla):
//   enVivo        la escucha funciona (la primera vez y cada vez que vuelve)
//   cambiaron     subió la versión de esas tablas; la primera respuesta las trae todas, porque
//                 antes de escuchar pudo cambiar algo que la pantalla no leyó
//   reiniciado    el servicio arrancó de nuevo (instancia nueva): hay que leer todo
//   sinEventos    no se puede escuchar (servicio caído, sin la ruta, conexión perdida): la
//                 pantalla pasa a su recarga periódica; aquí se sigue intentando en segundo plano
// Al destruirse corta la espera en curso y termina su hilo sin esperar al servicio.
class EscuchaEventos : public QObject {
    Q_OBJECT
public:
    // Lo que se pide esperar al servicio en cada solicitud (s).
    static constexpr int EsperaServicio = 25;
    // Entre intentos sin servicio: empieza así y dobla hasta el máximo.
    static constexpr std::chrono::milliseconds PrimerReintento{250};
    static constexpr std::chrono::milliseconds MaximoReintento{4000};

    EscuchaEventos(ConexionBD& conexion, QStringList tablas, QObject* padre = nullptr);
    ~EscuchaEventos() override;
    EscuchaEventos(const EscuchaEventos&) = delete;
    EscuchaEventos& operator=(const EscuchaEventos&) = delete;

    // Arranca el hilo (una sola vez).
    void inicia();
    // Corta la espera y termina el hilo; no vuelve a emitir nada.
    void detiene();
    // Lo último que se supo, en el hilo del objeto.
    bool vivo() const { return vivo_; }

signals:
    void enVivo();
    void cambiaron(const QStringList& tablas);
    void reiniciado();
    void sinEventos(const QString& motivo);

private:
    void escucha();
    // Espera `lapso` o hasta que se pida detener; verdadero si hay que seguir.
    bool pausa(std::chrono::milliseconds lapso);
    // Encarga la señal al hilo del objeto.
    template <typename F> void avisa(F&& aviso);

    ConexionBD& conexion_;
    const QStringList tablas_;
    bool vivo_ = false;
    std::thread hilo_;
    std::mutex mutex_;
    std::condition_variable cambio_;
    bool detener_ = false;
    bool terminado_ = false;
    ConexionBD::EsperaEventos* enCurso_ = nullptr; // la espera que detiene() interrumpe
};

} // namespace cajaplex
