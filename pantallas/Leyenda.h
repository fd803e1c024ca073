#pragma once

#include <functional>

#include <QString>

class QWidget;

namespace cajaplex {

// Muestra la leyenda de progreso sobre la pantalla y corre el trabajo 5 ms después, para que la
// leyenda se pinte antes. Si la pantalla se destruye antes, el trabajo no corre. Una excepción
// del trabajo no puede cruzar el ciclo de eventos: se anota con qWarning y la leyenda se oculta.
void ejecutaConLeyenda(QWidget* pantalla, const QString& leyenda, std::function<void()> trabajo);

} // namespace cajaplex
