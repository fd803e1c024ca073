#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <QWidget>

#include "catalog/RangosPrecios.h"
#include "datos/Sesion.h"
#include "pantallas/Mensajes.h"

class QLabel;
class QLineEdit;
class QListView;
class QListWidget;
class QListWidgetItem;
class QModelIndex;
class QPushButton;
class QStackedWidget;

namespace cajaplex {

class ModeloProductos;

// "Edición de Rangos": cantidad y precio de venta de un rango, ambos requeridos. El precio se
// teclea o se toma de uno de los cinco precios del producto.
class TRangosEditaF : public QWidget {
    Q_OBJECT
public:
    explicit TRangosEditaF(const Sesion& sesion, QWidget* padre = nullptr);

    void nuevo(const ProductoRangos& producto);
    void edita(const ProductoRangos& producto, const RangoPrecio& rango);

signals:
    void almacenado(double rango);
    void cancelado();

private slots:
    void BotonAlmacenarClick();
    void BotonCancelarClick();
    void BotonSeleccionaPrecioClick();

private:
    void muestra(const ProductoRangos& producto);
    void AlmacenaRangoTimer(const RangoPrecio& rango);
    void error(const QString& mensaje);

    Mensajes mensajes_{this};
    RangosPrecios rangos_;
    ProductoRangos producto_;
    std::optional<RangoPrecio> anterior_; // vacío: alta

    QLabel* titulo_;         // "TituloEdicion"
    QLineEdit* cantidad_;    // "Cantidad"
    QLineEdit* precio_;      // "PrecioVenta"
    QPushButton* almacenar_; // "BotonAlmacenar"
};

// "Rangos de Precios" de un producto: la lista por cantidad con alta, cambio y borrado. Abierta
// sin producto (desde el menú) muestra arriba la búsqueda para elegirlo.
class TRangosF : public QWidget {
    Q_OBJECT
public:
    explicit TRangosF(const Sesion& sesion, QWidget* padre = nullptr);
    TRangosF(const Sesion& sesion, qint64 productoID, QWidget* padre = nullptr);

    // Lo que guarda cada renglón de "ListaRangos".
    enum RolRango { RolCantidadRango = Qt::UserRole + 1, RolPrecioRango };

private slots:
    void BuscarProductoReturnPressed();
    void ProductosEncontradosClick(const QModelIndex& indice);
    void BotonNuevoClick();
    void BotonModificarClick();
    void BotonBorrarClick();
    void ListaRangosItemActivated(QListWidgetItem* item);

private:
    QWidget* creaPaginaBusqueda();
    QWidget* creaPaginaRangos();

    void BuscaProductoTimer(const QString& texto);
    void CargaProductoTimer(int64_t productoID);
    void CargaRangosTimer(std::optional<double> seleccion);
    void EliminaRangoTimer(const RangoPrecio& rango);
    std::optional<RangoPrecio> rangoElegido() const;
    void actualizaAcciones();
    void muestraRangos();
    void error(const QString& mensaje);

    const Sesion& sesion_;
    Mensajes mensajes_{this};
    RangosPrecios rangos_;
    Consulta ListadoProductos;
    std::optional<ProductoRangos> producto_;

    QLineEdit* buscar_;            // "BuscarProducto"
    QLabel* tituloProducto_;       // "ProductoRangos"
    QStackedWidget* paginas_;      // "Paginas"
    ModeloProductos* encontrados_; // modelo de "ProductosEncontrados"
    QListView* listaEncontrados_;  // "ProductosEncontrados"
    QListWidget* lista_;           // "ListaRangos"
    QLabel* pie_;                  // "PieRangos"
    QPushButton* nuevo_;           // "BotonNuevo"
    QPushButton* modificar_;       // "BotonModificar"
    QPushButton* borrar_;          // "BotonBorrar"
    TRangosEditaF* edicion_;       // "RangosEdita"
};

} // namespace cajaplex
