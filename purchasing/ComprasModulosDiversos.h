#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <QWidget>

#include "datos/Sesion.h"
#include "pantallas/Mensajes.h"
#include "purchasing/ConsultaCompras.h"
#include "purchasing/DocumentoCompra.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableView;

namespace cajaplex {

class InterruptorSiNo;
class ModeloTabla;
class TSelectorProductosF;

// "Compras": captura de órdenes de compra, recepciones de mercancía, devoluciones al proveedor y
// ajustes de inventario. La clase se elige al abrir (TipoDocumento) y queda fija mientras haya
// renglones capturados. Los productos se agregan por clave, por búsqueda o navegando el árbol de
// líneas. Al registrar se elige imprimir, ver el PDF o solo almacenar.
class TComprasModulosDiversosF : public QWidget {
    Q_OBJECT
public:
    explicit TComprasModulosDiversosF(const Sesion& sesion, QWidget* padre = nullptr);
    ~TComprasModulosDiversosF() override;

    const DocumentoCompra& documento() const { return *documento_; }
    // La estación que se revisa antes de registrar; por omisión, la de la sesión.
    void ponDispositivo(const QString& dispositivoID) { sesion_.DispositivoID = dispositivoID; }
    // Carpeta de Cajaplex.ini (ajustes de impresión y PDF); vacía, la de la aplicación.
    void ponCarpetaEstacion(const QString& carpeta) { carpetaEstacion_ = carpeta; }

protected:
    void closeEvent(QCloseEvent* evento) override;

private slots:
    void TipoDocumentoChange(int indice);
    void ClaveProductoReturn();
    void BotonBuscarClick();
    void BotonCantidadClick();
    void BotonCostoClick();
    void BotonDescuentoClick();
    void BotonDescuentoGlobalClick();
    void BotonEliminarClick();
    void BotonOrdenesClick();
    void BotonReposicionClick();
    void BotonFinalizarClick();
    void MonedaChange(int indice);
    void ProveedorChange(int indice);
    void ProductoElegido(int64_t productoID, const QString& clave);

private:
    void CargaTimer();
    void FinalizaTimer(int operacion);
    // El documento recién registrado, como lo imprime la plantilla "Compras".
    CompraGuardada registrada(int64_t folio) const;
    void muestra();
    void error(const QString& mensaje);
    int filaElegida() const;
    EncabezadoCompra encabezado() const;
    // Pide el nuevo valor de un campo del renglón elegido y lo aplica con `cambio`.
    using CambioRenglon = DocumentoCompra::Rechazo (DocumentoCompra::*)(size_t, double);
    void editaRenglon(const QString& titulo, double RenglonVenta::*campo, int decimales,
                      CambioRenglon cambio);
    // Cada cambio a los renglones pasa por aquí: la vista se entera antes y después.
    void cambia(const std::function<DocumentoCompra::Rechazo()>& cambio);

    Sesion sesion_;
    Mensajes mensajes_{this};
    std::unique_ptr<DocumentoCompra> documento_;
    int64_t ordenOrigen_ = 0;
    QString carpetaEstacion_;

    QComboBox* tipo_;          // "TipoDocumento"
    QComboBox* proveedor_;     // "Proveedor"
    QComboBox* moneda_;        // "Moneda"
    QLineEdit* tipoCambio_;    // "TipoCambio"
    QLineEdit* plazoPago_;     // "PlazoPago"
    QComboBox* formaPago_;     // "FormaPago"
    InterruptorSiNo* entrada_; // "AjusteEntrada"
    QLineEdit* observaciones_; // "Observaciones"
    QLineEdit* clave_;         // "ClaveProducto"
    QPushButton* ordenes_;     // "BotonOrdenes"
    QTableView* tabla_;        // "TransaccionDetalles"
    ModeloTabla* modelo_;
    QLabel* totales_;                 // "Totales"
    TSelectorProductosF* selector_;   // "SelectorProductos"
    std::vector<double> tiposCambio_; // tipoCambioCompra de cada moneda del combo
};

} // namespace cajaplex
