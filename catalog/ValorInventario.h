#pragma once

#include <vector>

#include <QString>
#include <QWidget>

#include "catalog/InventarioValorizado.h"
#include "datos/Sesion.h"
#include "pantallas/Mensajes.h"
#include "pantallas/ModeloTabla.h"

class QLabel;
class QPushButton;
class QTableView;

namespace cajaplex {

// "Valor de Inventario": por producto con existencia y costo, su valor a costo y a cada precio,
// con los totales por columna siempre a la vista y la exportación a hoja de cálculo.
class TValorInventarioF : public QWidget {
    Q_OBJECT
public:
    explicit TValorInventarioF(const Sesion& sesion, QWidget* padre = nullptr);

    // Escribe lo listado en `ruta` (.xlsx); el botón la pide con el diálogo de guardar.
    // Verdadero si el archivo quedó escrito.
    bool exportaA(const QString& ruta);

private slots:
    void BotonExportarClick();

private:
    void CargaInventarioTimer();
    void llenaListado(ValorInventario inventario);
    std::vector<ModeloTabla::Columna> columnasProductos();
    std::vector<ModeloTabla::Columna> columnasTotales();

    const Sesion& sesion_;
    Mensajes mensajes_{this};
    ValorInventario inventario_;

    // Leen inventario_: uno por producto y uno con los totales.
    ModeloTabla* modelo_;
    ModeloTabla* modeloTotales_;

    QLabel* titulo_;        // "TituloValorInventario"
    QTableView* lista_;     // "ListaValorInventario"
    QTableView* totales_;   // "TotalesValorInventario"
    QLabel* pie_;           // "PieValorInventario"
    QPushButton* exportar_; // "BotonExportar"
};

} // namespace cajaplex
