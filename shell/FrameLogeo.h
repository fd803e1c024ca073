#pragma once

#include <QList>
#include <QWidget>

#include "datos/Sesion.h"

class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QStackedWidget;

namespace cajaplex {

struct DatosAcceso;

// El cuadro de acceso: servidor, usuario y contraseña, y la lista de empresas cuando el usuario
// puede entrar a varias. Solo junta lo escrito y avisa; la validación es de la ventana principal.
class TCuadroLogeo : public QWidget {
    Q_OBJECT
public:
    explicit TCuadroLogeo(QWidget* padre = nullptr);

    DatosAcceso datos() const;
    void ponServidor(const QString& direccion, int puerto);
    void ponVersion(const QString& texto);
    void ponDispositivo(const QString& id);
    // Deja el cuadro como al arrancar, sin la contraseña y con el cursor en el usuario.
    void limpiaContrasena();
    void posicionaCursorUsuario();
    void habilita(bool habilitado);

    // Muestra las empresas (la primera elegida) o regresa a los datos de acceso.
    void muestraEmpresas(const QList<Sesion>& empresas);
    void muestraAcceso();
    int empresaElegida() const;

signals:
    void ingresar();
    void empresaAceptada(int indice);
    void terminosYCondiciones();

private:
    QWidget* creaPaginaAcceso();
    QWidget* creaPaginaEmpresas();
    void ContrasenaUsuarioReturn();

    QStackedWidget* paginas_;
    QLineEdit* servidorUsuario_;   // "ServidorUsuario"
    QLineEdit* servidorPuerto_;    // "ServidorPuerto"
    QLineEdit* nombreUsuario_;     // "NombreUsuario"
    QLineEdit* contrasenaUsuario_; // "ContrasenaUsuario"
    QLineEdit* dispositivoID_;     // "DispositivoID"
    QPushButton* ingresar_;        // "AuthenticateRectBTN"
    QLabel* version_;              // "ExperienceText"
    QListWidget* empresas_;        // "ListaEmpresas"
    QPushButton* entrarEmpresa_;   // "BotonEmpresa"
};

} // namespace cajaplex
