#pragma once

#include <cstdint>
#include <vector>

#include <QAbstractListModel>
#include <QSortFilterProxyModel>
#include <QString>

#include "datos/Sesion.h"

namespace cajaplex {

class ConexionBD;
class Registros;

// Listado de productos: por línea o por búsqueda en toda la empresa. Los textos se arman en
// código con fragmentos fijos; la empresa y la línea se escriben desde el número y lo tecleado
// va siempre citado.
QString sqlProductosXLinea(int64_t empresaID, int64_t lineaID);
QString sqlBusquedaProductos(int64_t empresaID, const QString& texto);

// Cantidades sin ceros de más (hasta tres decimales) y precios con dos, con los separadores de
// México.
QString textoCantidad(double cantidad);
QString textoPrecio(double precio);
// Sin acentos y sin distinguir mayúsculas: "azucar" encuentra "Azúcar".
QString plegadoBusqueda(const QString& texto);

struct ProductoListado {
    int64_t id = 0;
    QString clave;
    QString producto;
    double existencia = 0.0; // ya viene en 0 si es negativa
    QString unidad;
    bool manejaInventarios = false;
    double precio1 = 0.0;
    QString plegado; // clave y descripción para el filtro local
};

// Los renglones del listado, con lo que pinta el renglón de dos líneas (RolesRenglon.h): clave y
// descripción con el precio a la derecha; debajo la existencia con su unidad, en verde si hay y
// en rojo si no. Un producto que no maneja inventarios no muestra existencia.
class ModeloProductos : public QAbstractListModel {
    Q_OBJECT
public:
    static constexpr const char* ColorConExistencia = "#008000";
    static constexpr const char* ColorSinExistencia = "#FF0000";

    enum Rol {
        RolProductoID = Qt::UserRole + 1,
        RolClave,
        RolExistencia,
        RolManejaInventarios,
    };

    using QAbstractListModel::QAbstractListModel;

    void asigna(const Registros& registros);
    void limpia();
    // Quita el renglón del producto; falso si no estaba.
    bool quita(int64_t productoID);
    const ProductoListado& producto(int fila) const {
        return productos_.at(static_cast<size_t>(fila));
    }

    int rowCount(const QModelIndex& padre = {}) const override;
    QVariant data(const QModelIndex& indice, int rol = Qt::DisplayRole) const override;

private:
    std::vector<ProductoListado> productos_;
};

// Filtro local sobre lo ya cargado: clave o descripción contienen el texto.
class FiltroProductos : public QSortFilterProxyModel {
    Q_OBJECT
public:
    explicit FiltroProductos(ModeloProductos* modelo, QObject* padre = nullptr);

    void filtra(const QString& texto);
    const QString& texto() const { return texto_; }

protected:
    bool filterAcceptsRow(int fila, const QModelIndex& padre) const override;

private:
    ModeloProductos* modelo_;
    QString texto_;
    QString plegado_;
};

enum class ResultadoBorrarProducto { Eliminado, ConTransacciones };

// Borra el producto solo si ningún documento lo nombra (ventas, cotizaciones, comandas, compras,
// recepciones, devoluciones, ajustes, facturas, notas de crédito) ni es componente de un kit. Con
// él se van sus fotos, sus rangos de precio y, si es kit, su composición. Revisión, borrado y
// bitácora en una sola transacción.
ResultadoBorrarProducto borraProducto(ConexionBD& conexion, const Sesion& sesion,
                                      const ProductoListado& producto);

} // namespace cajaplex
