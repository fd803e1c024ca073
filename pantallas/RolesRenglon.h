#pragma once

#include <Qt>

namespace cajaplex {

// Lo que un modelo entrega para pintar un renglón de dos líneas (DelegadoRenglon): la primera en
// negritas con un dato a la derecha, la segunda con su color opcional. El icono va en
// Qt::DecorationRole. Van en un encabezado sin widgets para que los modelos de lógica los usen.
enum RolRenglon {
    RolPrimeraLinea = Qt::UserRole + 100,
    RolSegundaLinea,
    RolColorSegundaLinea, // "#RRGGBB" o vacío (color normal del texto)
    RolDatoDerecha,
};

} // namespace cajaplex
