#pragma once

#include <QDialog>

#include "pantallas/Mensajes.h"
#include "shell/Instalacion.h"

class QCheckBox;
class QLineEdit;
class QPushButton;

namespace cajaplex {

class AjustesEstacion;

// "Instalación de la Estación": muestra la huella del certificado del servicio para compararla
// con la que el servicio mostró al arrancar y pide un administrador para obtener las credenciales
// propias de la estación. Se acepta cuando la estación quedó instalada.
class TInstalacionEstacionF : public QDialog {
    Q_OBJECT
public:
    // datos trae la dirección, el puerto, lo explorado del servicio y la descripción sugerida.
    TInstalacionEstacionF(AjustesEstacion& ajustes, DatosInstalacion datos,
                          QWidget* padre = nullptr);

private slots:
    void BotonInstalarClick();
    void InstalaEstacionTimer();

private:
    AjustesEstacion& ajustes_;
    DatosInstalacion datos_;
    Mensajes mensajes_{this};
    QCheckBox* confirmaHuella_; // objectName "ConfirmaHuella"
    QLineEdit* administrador_;  // objectName "UsuarioAdministrador"
    QLineEdit* contrasena_;     // objectName "ContrasenaAdministrador"
    QLineEdit* descripcion_;    // objectName "DescripcionEstacion"
    QPushButton* instalar_;     // objectName "BotonInstalar"
};

} // namespace cajaplex
