#pragma once

#include <QDate>
#include <QWidget>

#include "datos/Consulta.h"
#include "datos/Sesion.h"
#include "pantallas/Mensajes.h"

class QDateEdit;
class QLabel;
class QListView;
class QPushButton;

namespace cajaplex {

// "Bitácoras del Sistema": los renglones de AuditoriasSistema de la empresa de la sesión en un
// rango de fechas, agrupados por módulo y en orden de tiempo.
class TAuditoriasF : public QWidget {
    Q_OBJECT
public:
    explicit TAuditoriasF(const Sesion& sesion, QWidget* padre = nullptr);

    // Lo que cada renglón de "ListaBitacoras" guarda además de lo que se ve (RolesRenglon.h:
    // módulo, fecha a la derecha; usuario, dato y nota debajo). La imagen está también como
    // icono del renglón (nulo si la imagen no existe).
    enum RolBitacora {
        RolModulo = Qt::UserRole, // moduloSistema
        RolTipo,                  // tipoAuditoria, con acentos
        RolImagen,                // nombre de la imagen del tipo ("Insercion"...)
        RolFecha,                 // fechaOperacion (QDateTime)
    };

private slots:
    void MostrarResultadosClick();
    void ConsultaBitacorasTimer();

private:
    QWidget* creaRango();
    void llenaLista();

    class Modelo;

    const Sesion& sesion_;
    Mensajes mensajes_{this};
    Consulta ConsultaBitacoras;
    // El rango que se pidió al presionar el botón, el que lee el temporizador.
    QDate inicio_;
    QDate fin_;
    QDateEdit* fechaInicio_; // objectName "FechaInicio"
    QDateEdit* fechaFin_;    // objectName "FechaFin"
    QPushButton* mostrar_;   // objectName "MostrarResultados"
    QLabel* titulo_;         // objectName "TituloBitacoras"
    Modelo* modelo_;
    QListView* lista_; // objectName "ListaBitacoras"
    QLabel* pie_;      // objectName "PieBitacoras"
};

} // namespace cajaplex
