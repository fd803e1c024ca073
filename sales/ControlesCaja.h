#pragma once

#include <QString>

class QHBoxLayout;
class QLineEdit;
class QPushButton;
class QWidget;

namespace cajaplex {

// Lo común a las pantallas de efectivo (caja chica y corte de caja).

// Campo de un importe en efectivo: alineado a la derecha, sin negativos, con punto decimal.
QLineEdit* creaCampoImporte(const QString& nombre, const QString& accesible, QWidget* padre);

// El botón de la acción principal, al pie y a la derecha; el renglón va al final de la capa.
QHBoxLayout* pieConBoton(const QString& imagen, const QString& texto, const QString& nombre,
                         QWidget* padre, QPushButton*& boton);

// La revisión de la estación antes de registrar: vacío si está autorizada; si no (o si no se pudo
// leer), el mensaje para el usuario. Nunca lanza.
QString rechazoDispositivo(const QString& dispositivo);

} // namespace cajaplex
