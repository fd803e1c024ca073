#include "catalog/ArbolLineas.h"

#include <QTreeWidget>
#include <QTreeWidgetItem>

namespace cajaplex {

size_t agregaLineas(QTreeWidget& arbol, const std::vector<LineaProducto>& lineas,
                    const std::function<QTreeWidgetItem*(const LineaProducto&)>& creaNodo) {
    std::vector<QTreeWidgetItem*> nodos;
    nodos.reserve(lineas.size());
    for (const NodoArbolLineas& nodo : ordenaArbolLineas(lineas)) {
        QTreeWidgetItem* item = creaNodo(nodo.linea);
        if (nodo.padre < 0)
            arbol.addTopLevelItem(item);
        else
            nodos[static_cast<size_t>(nodo.padre)]->addChild(item);
        nodos.push_back(item);
    }
    arbol.expandAll();
    return nodos.size();
}

} // namespace cajaplex
