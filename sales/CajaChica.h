#pragma once

#include <QString>
#include <QWidget>

#include "datos/Consulta.h"
#include "datos/Sesion.h"
#include "pantallas/Mensajes.h"

class QLineEdit;
class QPushButton;
class QTableWidget;
class QTableWidgetItem;

namespace cajaplex {

inline constexpr const char* ModuloCajaChica = "Ventas -> Caja Chica";

// "Caja Chica": un ingreso o retiro de efectivo que no es venta. El importe se guarda siempre
// positivo; la dirección va en tipoFlujo (1 retiro, 0 depósito).
class TCajaChicaF : public QWidget {
    Q_OBJECT
public:
    explicit TCajaChicaF(const Sesion& sesion, QWidget* padre = nullptr);

    // La estación que se revisa antes de registrar; por omisión, la de la sesión.
    void ponDispositivo(const QString& dispositivoID) { dispositivo_ = dispositivoID; }

    enum Renglon { RenglonCantidad, RenglonNota, RenglonRetiro };

private slots:
    void BotonSiguienteClick();
    void TablaCajaChicaClick(int fila, int columna);

private:
    void AlmacenaCajaChicaTimer();
    void error(const QString& mensaje);
    bool esRetiro() const;
    void limpia();

    const Sesion& sesion_;
    Mensajes mensajes_{this};
    QString dispositivo_;
    Consulta FlujoEfectivo_;

    QTableWidget* tabla_;      // "TablaCajaChica"
    QLineEdit* cantidad_;      // "CantidadCajaChica"
    QLineEdit* nota_;          // "NotaCajaChica"
    QTableWidgetItem* retiro_; // valor de "¿Es Retiro?"
    QPushButton* siguiente_;   // "BotonSiguiente"
};

} // namespace cajaplex
