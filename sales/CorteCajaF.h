#pragma once

#include <optional>

#include <QString>
#include <QVariantMap>
#include <QWidget>

#include "datos/Sesion.h"
#include "pantallas/Mensajes.h"
#include "sales/CorteCaja.h"

class QComboBox;
class QDateTimeEdit;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableWidget;

namespace cajaplex {

// "Corte de Caja": lo que debería haber en el cajón de un cajero (o de todos) en un periodo, lo
// que el cajero contó y la diferencia. Sin el derecho corteCaja solo muestra el rechazo.
class TCorteCajaF : public QWidget {
    Q_OBJECT
public:
    explicit TCorteCajaF(const Sesion& sesion, QWidget* padre = nullptr);

    // La estación del corte; por omisión, la de la sesión. Vuelve a tomar el inicio del periodo.
    void ponDispositivo(const QString& dispositivoID);

    // Lo que imprime la plantilla del corte recién registrado; vacío si aún no hay uno.
    QVariantMap valoresImpresion() const { return impresion_; }
    // La carpeta de Cajaplex.ini para imprimir; vacía, la de la aplicación.
    void ponCarpetaEstacion(const QString& carpeta) { carpetaEstacion_ = carpeta; }

private slots:
    void BotonCalcularClick();
    void BotonAlmacenarClick();
    void EfectivoContadoChange();
    void BotonImprimirClick();
    void BotonPdfClick();

private:
    void CargaInformacionTimer();
    void CalculaCorteTimer(int64_t cajero, const QDateTime& desde, const QDateTime& hasta);
    void AlmacenaCorteTimer(double contado);
    void llenaResumen(const ResumenCorte& r);
    void olvidaResumen();
    void error(const QString& mensaje);

    const Sesion& sesion_;
    Mensajes mensajes_{this};
    CorteCaja corte_;
    QString dispositivo_;
    std::optional<ResumenCorte> resumen_;
    QVariantMap impresion_;
    QString carpetaEstacion_;
    bool hastaManual_ = false; // sin tocar, "hasta" es el momento de calcular

    QComboBox* cajero_;        // "CajeroCorte"
    QDateTimeEdit* desde_;     // "DesdeCorte"
    QDateTimeEdit* hasta_;     // "HastaCorte"
    QPushButton* calcular_;    // "BotonCalcular"
    QTableWidget* tabla_;      // "ResumenCorte"
    QLabel* esperado_;         // "EfectivoEsperado"
    QLineEdit* contado_;       // "EfectivoContado"
    QLabel* diferencia_;       // "DiferenciaCorte"
    QLineEdit* observaciones_; // "ObservacionesCorte"
    QPushButton* almacenar_;   // "BotonAlmacenar"
    QPushButton* imprimir_;    // "BotonImprimir": el último corte registrado
    QPushButton* pdf_;         // "BotonPdf"
};

} // namespace cajaplex
