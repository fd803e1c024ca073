#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include <QWidget>

#include "catalog/CatalogoLineas.h"
#include "datos/Consulta.h"
#include "datos/Sesion.h"
#include "pantallas/Mensajes.h"

class QHBoxLayout;
class QLabel;
class QLineEdit;
class QListView;
class QModelIndex;
class QSplitter;
class QTreeWidget;
class QTreeWidgetItem;

namespace cajaplex {

class ModeloProductos;

// Elegir productos navegando el árbol de líneas o buscando por clave, descripción o código de
// barras: el árbol "Lineas", la búsqueda "BuscarProducto" y la lista "ProductosDisponibles" con
// su título "TituloDisponibles". Tocar un producto lo entrega con `elegido`; quien lo usa decide
// qué hacer con él (agregarlo a un kit, a una compra...).
class TSelectorProductosF : public QWidget {
    Q_OBJECT
public:
    // `titulo`: el rótulo del panel. `ajustaListado` recibe el listado que se va a leer
    // (sqlProductosXLinea o sqlBusquedaProductos) y devuelve el que se lee de verdad, p. ej. sin
    // los kits; vacío, se lee tal cual.
    TSelectorProductosF(const Sesion& sesion, const QString& titulo, QWidget* padre = nullptr,
                        std::function<QString(const QString&)> ajustaListado = {});

    // Las líneas en el árbol, cada una bajo su padre.
    void ponLineas(const std::vector<LineaProducto>& lineas);
    // Las lee del servicio y las pone. Lanza ErrorServicio.
    void cargaLineas();
    // Un control más en el renglón de la búsqueda, antes de ella (p. ej. la captura por clave).
    void agregaABusqueda(QWidget* control, int estiramiento);
    // Árbol y productos lado a lado (por omisión) o el árbol arriba, para un panel angosto.
    void ponOrientacion(Qt::Orientation orientacion);
    const ModeloProductos& productos() const { return *productos_; }

    // Lo que guarda cada nodo del árbol.
    static constexpr int RolLineaID = Qt::UserRole + 2;

signals:
    void elegido(int64_t productoID, const QString& clave);

private slots:
    void LineasItemClick(QTreeWidgetItem* item);
    void BuscarProductoReturnPressed();
    void ProductosDisponiblesClick(const QModelIndex& indice);

private:
    void CargaDisponiblesTimer(const QString& sql);
    void error(const QString& mensaje);

    const Sesion& sesion_;
    std::function<QString(const QString&)> ajustaListado_;
    Mensajes mensajes_{this};
    Consulta ListadoProductos;
    ModeloProductos* productos_;
    QHBoxLayout* busquedas_;
    QLineEdit* buscar_;  // "BuscarProducto"
    QTreeWidget* arbol_; // "Lineas"
    QLabel* titulo_;     // "TituloDisponibles"
    QListView* lista_;   // "ProductosDisponibles"
    QSplitter* division_;
};

} // namespace cajaplex
