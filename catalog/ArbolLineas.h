#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "catalog/CatalogoLineas.h"

class QTreeWidget;
class QTreeWidgetItem;

namespace cajaplex {

// Pone las líneas en el árbol, cada una bajo su padre, con el nodo que arma `creaNodo`, y lo deja
// expandido. Lo comparten las pantallas que eligen una línea. Devuelve cuántas puso.
size_t agregaLineas(QTreeWidget& arbol, const std::vector<LineaProducto>& lineas,
                    const std::function<QTreeWidgetItem*(const LineaProducto&)>& creaNodo);

} // namespace cajaplex
