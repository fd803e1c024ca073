#pragma once

#include <functional>
#include <optional>

#include <QString>
#include <QStringList>

#include "datos/MensajesComunes.h"

class QDialog;
class QWidget;

namespace cajaplex {

enum class Respuesta { Aceptar, Cancelar, Si, No };

// Único camino de los mensajes y preguntas de las pantallas ("Centro de Mensajes"). El texto se
// muestra completo: los renglones largos se parten sin pasar del 60 % del ancho de la pantalla y
// el diálogo crece a lo alto. Mientras hay un diálogo abierto, la leyenda de progreso se oculta.
// En modo de prueba no se abre nada modal: se anota cada texto y las respuestas salen de una cola.
class Mensajes {
public:
    explicit Mensajes(QWidget* padre = nullptr) : padre_(padre) {}

    void muestra(const QString& texto) const;
    bool pregunta(const QString& texto) const;     // Aceptar / Cancelar
    bool preguntaSiNo(const QString& texto) const; // Sí / No
    // Índice de la opción elegida, o -1 si se cancela. La opción `preseleccion` llega marcada
    // (una fuera de la lista marca la primera).
    int eligeOpcion(const QString& titulo, const QStringList& opciones, int preseleccion = 0) const;
    std::optional<QString> pideTexto(const QString& titulo, const QString& inicial = {},
                                     int maximo = 32767) const;
    std::optional<double> pideDecimal(const QString& titulo, double inicial = 0.0,
                                      int decimales = 2) const;

    // Ganchos de prueba. Activar el modo vacía la cola y lo anotado.
    static void modoPrueba(bool activo);
    static void respondeSiguiente(Respuesta respuesta);
    static void respondeOpcion(int indice);
    static void respondeTexto(const QString& texto);
    static void respondeDecimal(double valor);
    static int respuestasPendientes();
    // La opción que llegó marcada en la última elección preguntada (-1 si no hubo ninguna).
    static int ultimaPreseleccion();
    // Lo mostrado o preguntado desde la última llamada, en orden.
    static QStringList ultimos();
    // Con el modo de prueba apagado, recibe cada diálogo real ya visible, desde su propio ciclo de
    // eventos; al volver, el diálogo se cierra (como Cancelar) si sigue abierto. Vacío lo quita.
    static void revisaDialogos(std::function<void(QDialog&)> revision);

private:
    QWidget* padre_;
};

} // namespace cajaplex
