#pragma once

#include <cstdint>
#include <vector>

#include <QDate>
#include <QString>
#include <QWidget>

#include "datos/Sesion.h"
#include "pantallas/Mensajes.h"
#include "sales/ListaVentas.h"

class QComboBox;
class QDateEdit;
class QLabel;
class QLineEdit;
class QPushButton;
class QStackedWidget;
class QTableView;

namespace cajaplex {

class ModeloTabla;
class TVisorF;

// "Ventas": las remisiones de un periodo (hoy por omisión) con lo recibido por forma de pago al
// pie. El periodo se lee del servicio; folio, cliente y cajero filtran lo ya leído. Abrir una
// venta la muestra en el visor.
class TVentasF : public QWidget {
    Q_OBJECT
public:
    // carpetaEstacion: la de Cajaplex.ini; vacía, la de la aplicación.
    explicit TVentasF(const Sesion& sesion, const QString& carpetaEstacion = {},
                      QWidget* padre = nullptr);

    TVisorF* visor() const { return visor_; }

private slots:
    void BotonBuscarClick();
    void BotonAbrirClick();
    void FiltroChange();

private:
    void CargaVentasTimer(const QDate& desde, const QDate& hasta);
    void llenaCajeros();
    void error(const QString& mensaje);

    const Sesion& sesion_;
    Mensajes mensajes_{this};
    VentasPeriodo periodo_;
    std::vector<int> visibles_; // índices en periodo_.ventas
    TotalesVentas totales_;

    QStackedWidget* paginas_; // "Paginas"
    QDateEdit* desde_;        // "DesdeVentas"
    QDateEdit* hasta_;        // "HastaVentas"
    QLineEdit* folio_;        // "FolioVenta"
    QLineEdit* cliente_;      // "ClienteVenta"
    QComboBox* cajero_;       // "CajeroVenta"
    ModeloTabla* modelo_;
    QTableView* tabla_; // "TablaVentas"
    ModeloTabla* formas_;
    QTableView* tablaFormas_; // "TotalesFormas"
    QLabel* resumen_;         // "ResumenVentas"
    QPushButton* abrir_;      // "BotonAbrir"
    TVisorF* visor_;          // "Visor"
};

} // namespace cajaplex
