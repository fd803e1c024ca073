#pragma once

#include <cstdint>
#include <vector>

#include <QPointer>
#include <QString>
#include <QWidget>

#include "datos/Sesion.h"
#include "pantallas/Mensajes.h"

class QLabel;
class QLineEdit;
class QListView;
class QModelIndex;
class QTimer;

namespace cajaplex {

class TPuntoVentaF;

inline constexpr const char* MensajeSinComandasPorPagar = "No hay Comandas por Pagar";

// Una cuenta cerrada que espera su cobro, con el nodo que ocupa.
struct ComandaPorPagar {
    int64_t comanda = 0; // Comanda.id
    int64_t folio = 0;
    QString area;
    QString clave;
    QString descripcion;
    int tipo = 0; // la forma del nodo
    QString mesero;
    int minutos = 0; // de la apertura al cierre de la cuenta
};

// "Comandas a Pagar": las cuentas cerradas de los nodos activos. Tocar una la carga como la venta
// del punto de venta que abrió el selector, y el selector se cierra.
class TComandasPagarF : public QWidget {
    Q_OBJECT
public:
    TComandasPagarF(const Sesion& sesion, TPuntoVentaF& venta, QWidget* padre = nullptr);

    enum Rol { RolComanda = Qt::UserRole + 1 };

private slots:
    void ListaComandasPagarItemClick(const QModelIndex& indice);
    void BuscarTextoChange();
    void FiltrarTexto();
    void BotonAnteriorClick();

private:
    class Modelo;

    void CargaComandasTimer();
    void CargaComandaDetallesTimer(const ComandaPorPagar& comanda);
    void error(const QString& mensaje);

    const Sesion& sesion_;
    QPointer<TPuntoVentaF> venta_;
    Mensajes mensajes_{this};
    Modelo* modelo_;
    QLineEdit* buscar_; // "BuscarTexto"
    QListView* lista_;  // "ListaComandasPagar"
    QLabel* pie_;       // "PieComandasPagar"
    QTimer* filtro_;    // "TemporizadorFiltro"
};

} // namespace cajaplex
