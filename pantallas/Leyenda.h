#pragma once

#include <functional>
#include <vector>

#include <QPointer>
#include <QString>

class QLabel;
class QWidget;

namespace cajaplex {

class ConexionBD;

// El aviso de las leyendas mientras una escritura ya enviada espera su respuesta.
inline constexpr const char* AvisoReintentoEscritura =
    "Error de conexión, verifique los datos introducidos. Esperando la respuesta del servicio";

// Mientras el servicio no contesta una escritura ya enviada (confirmar o un lote con su clave),
// las leyendas visibles dicen AvisoReintentoEscritura y la ventana se sigue pintando, sin atender
// al usuario, hasta la respuesta definitiva: así nadie vuelve a registrar la venta creyendo que
// falló. Desde otro hilo solo se espera.
void avisaReintentosEscritura(ConexionBD& conexion);

// Muestra la leyenda de progreso sobre la pantalla y corre el trabajo 5 ms después, para que la
// leyenda se pinte antes. Si la pantalla se destruye antes, el trabajo no corre. Una excepción
// del trabajo no puede cruzar el ciclo de eventos: se anota con qWarning y la leyenda se oculta.
void ejecutaConLeyenda(QWidget* pantalla, const QString& leyenda, std::function<void()> trabajo);

// Mientras vive, las leyendas visibles se ocultan: un mensaje abierto a media tarea no debe dejar
// ver detrás "Validando..." como si aún se trabajara. Al terminar vuelven solo las que aún
// esperan su trabajo. Mensajes la pone alrededor de cada diálogo.
class PausaLeyendas {
public:
    PausaLeyendas();
    ~PausaLeyendas();
    PausaLeyendas(const PausaLeyendas&) = delete;
    PausaLeyendas& operator=(const PausaLeyendas&) = delete;

private:
    std::vector<QPointer<QLabel>> ocultas_;
};

} // namespace cajaplex
