#pragma once

#include <vector>

#include <QString>
#include <QWidget>

#include "datos/Consulta.h"
#include "datos/Sesion.h"
#include "pantallas/Mensajes.h"
#include "pantallas/ModeloTabla.h"

class QLabel;
class QPushButton;
class QTableView;

namespace cajaplex {

inline constexpr const char* ModuloDispositivos = "Seguridad -> Dispositivos";

// "Dispositivos": las estaciones autorizadas (DispositivosRED) con su descripción y la fecha en
// que recibieron sus credenciales. Revocar una borra su renglón: el servicio rechaza su siguiente
// solicitud y la estación tendrá que instalarse otra vez con un administrador.
class TDispositivosF : public QWidget {
    Q_OBJECT
public:
    explicit TDispositivosF(const Sesion& sesion, QWidget* padre = nullptr);

private slots:
    void BotonRevocarClick();
    void BotonRecargarClick();

private:
    struct Dispositivo {
        QString referencia;
        QString descripcion;
        QString emitida; // ya con formato; vacía si se dio de alta a mano
    };

    void ConsultaDispositivosTimer();
    void RevocaDispositivoTimer(const Dispositivo& dispositivo);

    const Sesion& sesion_;
    Mensajes mensajes_{this};
    Consulta ConsultaDispositivos;
    Consulta EliminaDispositivo;
    std::vector<Dispositivo> dispositivos_;
    ModeloTabla* modelo_;
    QTableView* lista_;     // "ListaDispositivos"
    QLabel* pie_;           // "PieDispositivos"
    QPushButton* revocar_;  // "BotonRevocar"
    QPushButton* recargar_; // "BotonRecargar"
};

} // namespace cajaplex
