#pragma once

#include <cstdint>
#include <optional>

#include <QString>
#include <QWidget>

#include "datos/Sesion.h"
#include "pantallas/Mensajes.h"
#include "sales/ListaVentas.h"

class QLabel;
class QPushButton;
class QTabWidget;

namespace cajaplex {

class ModeloTabla;
class TrabajoImpresion;

// Una venta guardada: encabezado, artículos, pagos, anticipos y su bitácora; reimprime el ticket
// (impresora o PDF) y cancela la venta con el derecho cancelarRemision.
class TVisorF : public QWidget {
    Q_OBJECT
public:
    // carpetaEstacion: la de Cajaplex.ini; vacía, la de la aplicación.
    explicit TVisorF(const Sesion& sesion, const QString& carpetaEstacion = {},
                     QWidget* padre = nullptr);

    // Lee la venta (con la leyenda de progreso) y la muestra.
    void muestra(int64_t folio);
    int64_t folio() const { return venta_ ? venta_->folio : 0; }
    // La última impresión pedida (para esperar a que termine).
    TrabajoImpresion* ultimaImpresion() const { return impresion_; }

signals:
    void regresa();
    void cancelada(int64_t folio);

private slots:
    void BotonImprimirClick();
    void BotonPdfClick();
    void BotonCancelarVentaClick();

private:
    void CargaVentaTimer(int64_t folio);
    void CancelaVentaTimer(int64_t folio, const QString& motivo);
    void llena();
    void imprime(bool pdf);
    void error(const QString& mensaje);

    const Sesion& sesion_;
    QString carpetaEstacion_;
    Mensajes mensajes_{this};
    std::optional<VentaVisor> venta_;
    TrabajoImpresion* impresion_ = nullptr;

    QLabel* titulo_;    // "TituloVisor"
    QLabel* estado_;    // "EstadoVisor"
    QLabel* cliente_;   // "ClienteVisor"
    QLabel* fecha_;     // "FechaVisor"
    QLabel* cajero_;    // "CajeroVisor"
    QLabel* condicion_; // "CondicionVisor": contado o crédito con su saldo
    QLabel* importes_;  // "ImportesVisor": subtotal, descuento, impuestos
    QLabel* total_;     // "TotalVisor"
    QTabWidget* hojas_; // "HojasVisor"
    ModeloTabla* renglones_;
    ModeloTabla* pagos_;
    ModeloTabla* anticipos_;
    ModeloTabla* bitacora_;
    QPushButton* imprimir_; // "BotonImprimir"
    QPushButton* pdf_;      // "BotonPdf"
    QPushButton* cancelar_; // "BotonCancelarVenta"
};

} // namespace cajaplex
