#pragma once

#include <memory>

#include <QList>
#include <QString>
#include <QWidget>

#include "datos/AjustesEstacion.h"
#include "datos/Sesion.h"
#include "pantallas/Mensajes.h"
#include "shell/Instalacion.h"

class QStackedWidget;

namespace cajaplex {

class InicioSesion;
class TCuadroLogeo;
class TMenuPrimarioF;

// La ventana principal: revisa la instalación al arrancar, muestra el cuadro de acceso, valida
// al usuario y abre el menú con la sesión. Las pantallas de los módulos se abren encima del menú,
// cada una con su barra de título y el botón "Regresar".
class TCajaplexF : public QWidget {
    Q_OBJECT
public:
    explicit TCajaplexF(Instalacion instalacion, QWidget* padre = nullptr);
    ~TCajaplexF() override;

    bool sesionAbierta() const { return sesionAbierta_; }
    const Sesion& sesion() const { return sesion_; }
    AjustesEstacion& ajustes() { return ajustes_; }
    TCuadroLogeo* cuadroLogeo() const { return VentanaDeLogeo; }

public slots:
    // Pone una pantalla encima de la actual; la ventana se queda con ella.
    void abrePantalla(QWidget* pantalla, const QString& titulo);
    // Pide cerrar la pantalla de encima (puede negarse) y vuelve a la anterior; nunca quita el
    // acceso ni el menú.
    void regresa();

private slots:
    void BotonIngresarClick();
    void ConectarTimer();
    void EtiquetaTerminosYCondicionesClick();
    void EmpresaAceptada(int indice);
    void CerrarSesionClick();

protected:
    void closeEvent(QCloseEvent* evento) override;
    bool eventFilter(QObject* objeto, QEvent* evento) override;

private:
    void FormCreate();
    void abreSesion(const Sesion& sesion);
    void cierraPantallasSobre(QWidget* pagina);
    // Pide cerrar cada pantalla abierta; falso si una se negó (y queda a la vista).
    bool cierraPantallasAbiertas();

    Instalacion instalacion_;
    AjustesEstacion ajustes_;
    Mensajes mensajes_{this};
    std::unique_ptr<InicioSesion> inicioSesion_;
    QList<Sesion> empresas_;
    Sesion sesion_;
    bool sesionAbierta_ = false;
    bool validando_ = false;
    bool cerrando_ = false;
    bool regresando_ = false;
    QStackedWidget* paginas_;
    TCuadroLogeo* VentanaDeLogeo;
    TMenuPrimarioF* menu_ = nullptr;
};

} // namespace cajaplex
