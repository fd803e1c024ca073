#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <QAbstractListModel>
#include <QString>

#include "datos/Consulta.h"
#include "datos/Sesion.h"

namespace cajaplex {

class ConexionBD;

// Módulo con que la composición de los kits firma la bitácora.
inline constexpr const char* ModuloKits = "Catálogos -> Kits";
// Lo que ve el usuario cuando otra estación eliminó el kit (o dejó de ser kit) mientras lo
// componía.
inline constexpr const char* MensajeKitEliminado =
    "El Kit ya no existe; otra estación lo eliminó. No se guardó nada.";

// Un renglón de la lista de trabajo KitDetalles: un componente del kit con lo que se muestra de
// él. ID es el del producto componente; Producto, su descripción.
struct ComponenteKit {
    int64_t ID = 0;
    double Cantidad = 1.0;
    double PCompra = 0.0;
    QString Producto;
    QString Unidad;
    int posicion = 0;
    QString clave;
    double Existencia = 0.0;
    bool ManejaInventarios = false;
    bool EsPaquete = false;
    bool Caduca = false;
    // Un componente agregado aquí es parte fija del kit y va elegido; las pantallas de venta
    // deciden qué hacer con ambas banderas.
    bool compuestoBase = true;
    bool seleccionado = true;
};

struct KitListado {
    int64_t id = 0;
    QString clave;
    QString producto;
};

// La lista de trabajo de la composición (la tabla en memoria KitDetalles), con lo que pinta el
// renglón de dos líneas (RolesRenglon.h). El orden de la lista es el orden en que se guarda.
class KitDetalles : public QAbstractListModel {
    Q_OBJECT
public:
    enum Rol { RolClave = Qt::UserRole + 1, RolCantidad };

    using QAbstractListModel::QAbstractListModel;

    // Una composición recién leída: sin cambios pendientes.
    void asigna(std::vector<ComponenteKit> componentes);
    // Un producto que ya está suma su cantidad en vez de repetirse. Devuelve su fila.
    int agrega(const ComponenteKit& componente);
    void quita(int fila);
    void asignaCantidad(int fila, double cantidad);
    // Sube o baja un renglón un lugar; falso si ya está en la orilla.
    bool mueve(int fila, int destino);

    const std::vector<ComponenteKit>& componentes() const { return componentes_; }
    const ComponenteKit& componente(int fila) const {
        return componentes_.at(static_cast<size_t>(fila));
    }
    // Costo del kit: suma de cantidad por costo de cada componente.
    double total() const;
    bool modificado() const { return modificado_; }
    void marcaAlmacenado() { modificado_ = false; }

    int rowCount(const QModelIndex& padre = {}) const override;
    QVariant data(const QModelIndex& indice, int rol = Qt::DisplayRole) const override;

signals:
    void cambio();

private:
    void cambia();

    std::vector<ComponenteKit> componentes_;
    bool modificado_ = false;
};

// Los kits de la empresa de la sesión y su composición. Los componentes se ligan por clave: un
// componente cuya clave ya no es de ningún producto no se lista.
class CatalogoKits {
public:
    CatalogoKits(ConexionBD& conexion, const Sesion& sesion);

    // Por descripción.
    std::vector<KitListado> kits();
    // En el orden de su posición.
    std::vector<ComponenteKit> componentes(int64_t kitID);
    // Un producto que puede ser componente (no es kit), por su ID o por su clave o código de
    // barra.
    std::optional<ComponenteKit> producto(int64_t productoID);
    std::optional<ComponenteKit> productoPorClave(const QString& clave);
    // Reemplaza la composición entera: borra la del kit y da de alta la lista en su orden, con
    // su bitácora, en una sola transacción. Si el kit ya no existe (o ya no es kit) lanza
    // RegistroInexistente (MensajeKitEliminado) y no guarda nada.
    void guarda(const KitListado& kit, const std::vector<ComponenteKit>& componentes,
                const std::vector<ComponenteKit>& anteriores);

    // Un listado de productos (CatalogoProductos.h) sin los kits: un kit no se compone de kits.
    static QString sinKits(const QString& sqlListado);

private:
    std::optional<ComponenteKit> disponible(Consulta& consulta);

    ConexionBD& conexion_;
    const Sesion& sesion_;
    Consulta ConsultaKits;
    Consulta ConsultaComponentes;
    Consulta ProductoXID;
    Consulta ProductoXClave;
};

} // namespace cajaplex
