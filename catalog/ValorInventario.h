#pragma once

#include <QString>
#include <QWidget>

#include "catalog/InventarioValorizado.h"
#include "datos/Sesion.h"
#include "pantallas/Mensajes.h"

class QLabel;
class QPushButton;
class QTableWidget;

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
    void llenaListado();

    const Sesion& sesion_;
    Mensajes mensajes_{this};
    ValorInventario inventario_;

    QLabel* titulo_;        // "TituloValorInventario"
    QTableWidget* lista_;   // "ListaValorInventario"
    QTableWidget* totales_; // "TotalesValorInventario"
    QLabel* pie_;           // "PieValorInventario"
    QPushButton* exportar_; // "BotonExportar"
};

} // namespace cajaplex
