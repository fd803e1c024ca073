#pragma once

#include <QDate>
#include <QWidget>

#include "Consulta.h"
#include "Mensajes.h"
#include "Sesion.h"

class QDateEdit;
class QLabel;
class QListWidget;
class QPushButton;

namespace cajaplex {

// "Bitácoras del Sistema": los renglones de AuditoriasSistema de la empresa de la sesión en un
// rango de fechas, agrupados por módulo y en orden de tiempo.
class TAuditoriasF : public QWidget {
    Q_OBJECT
public:
    explicit TAuditoriasF(const Sesion& sesion, QWidget* padre = nullptr);

private slots:
    void MostrarResultadosClick();
    void ConsultaBitacorasTimer();

private:
    const Sesion& sesion_;
    Mensajes mensajes_{this};
    Consulta ConsultaBitacoras;
    QDateEdit* fechaInicio_; // objectName "FechaInicio"
    QDateEdit* fechaFin_;    // objectName "FechaFin"
    QPushButton* mostrar_;   // objectName "MostrarResultados"
    QLabel* titulo_;         // objectName "TituloBitacoras"
    QListWidget* lista_;     // objectName "ListaBitacoras"
    QLabel* pie_;            // objectName "PieBitacoras"
};

} // namespace cajaplex
