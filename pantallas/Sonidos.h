#pragma once

#include <QList>
#include <QString>

namespace cajaplex {

// Los sonidos del sistema. El sistema los nombra por su MP3 (assets/sonidos/<nombre>.mp3); lo que
// suena es el WAV del mismo nombre, hecho por scripts/sonidos junto al MP3.
enum class Sonido {
    Click,
    Error,
    Salir,
    Regresar,
    Deslizar,
    MostrarResultados,
    Recargar,
    ComandaNueva,
    FinalizarComanda
};

// Reproduce los sonidos cuando la estación tiene "UtilizarSonidos". Un equipo sin dispositivo de
// audio no es un error: simplemente no se oye nada. En modo de prueba no suena nada y se anota
// lo que habría sonado.
class Sonidos {
public:
    // Lo fija el arranque con el ajuste de la estación (se lee una sola vez).
    static void activa(bool utilizar);
    static bool activos();

    // Nunca bloquea ni lanza. Llamado desde otro hilo, se encarga al hilo de la aplicación.
    static void reproduce(Sonido sonido);
    // "Click.mp3", "Error.mp3"...
    static QString archivo(Sonido sonido);

    // Detiene y destruye los reproductores (el siguiente reproduce los vuelve a crear). Se llama
    // sola al salir del programa, con la aplicación aún viva.
    static void libera();
    // Si alguno está sonando (o esperando para sonar).
    static bool sonando();

    // Ganchos de prueba. Activar el modo vacía lo anotado.
    static void modoPrueba(bool activo);
    // Lo que habría sonado desde la última llamada, en orden (solo con los sonidos activos).
    static QList<Sonido> reproducidos();
};

} // namespace cajaplex
