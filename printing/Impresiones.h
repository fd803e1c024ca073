#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include <QHash>
#include <QList>
#include <QString>
#include <QWidget>

#include "datos/AjustesEstacion.h"
#include "datos/Auditoria.h"
#include "datos/Sesion.h"
#include "pantallas/Mensajes.h"
#include "printing/ImpresionDocumentos.h"
#include "printing/Plantillas.h"
#include "printing/PlantillasLocales.h"

class QCheckBox;
class QComboBox;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;
class QSpinBox;
class QTextBrowser;
class QTextDocument;
class QTimer;

namespace cajaplex {

class Transaccion;

// "Impresiones": por carpeta, las plantillas de la empresa con su texto y una vista previa viva
// (con el último documento guardado o uno de ejemplo), la predeterminada de cada carpeta, la
// impresora, el papel y las copias de esta estación por tipo de documento, y las opciones del
// ticket de venta de la empresa (logotipo, QR, adicional y pie).
class TImpresionesF : public QWidget {
    Q_OBJECT
public:
    // `carpetaEstacion`: la de Cajaplex.ini (vacía: la de configuración del usuario).
    explicit TImpresionesF(const Sesion& sesion, QWidget* padre = nullptr,
                           const QString& carpetaEstacion = {});
    ~TImpresionesF() override;

private slots:
    void ListaCarpetasCambio();
    void ListaPlantillasCambio();
    void BotonGuardarClick();
    void BotonNuevaClick();
    void BotonPredeterminadaClick();
    void BotonVisualizarPdfClick();
    void VistaPreviaTimer();

private:
    void CargaCarpetaTimer(const QString& carpeta, const QString& seleccion);
    void CargaPlantillaTimer(const Plantilla& plantilla);
    void AlmacenaPlantillaTimer();
    void AltaPlantillaTimer(const QString& nombre);
    void PredeterminadaTimer(const Plantilla& plantilla);
    void cargaOpcionesEmpresa();
    void muestraAjustesEstacion();
    AjustesImpresion ajustesEnPantalla() const;
    QString carpetaActual() const;
    const Plantilla* plantillaActual() const;
    // Los cambios, su renglón de bitácora y la confirmación en una transacción; después pone al
    // día la copia local. Falso (ya con su mensaje) si no se guardó.
    bool registraCambio(const RenglonAuditoria& renglon,
                        const std::function<void(Transaccion&)>& cambios);
    void error(const QString& mensaje);

    Sesion sesion_;
    AjustesEstacion estacion_;
    Mensajes mensajes_{this};
    QList<Plantilla> plantillas_;
    QHash<QString, DocumentoImpresion> muestras_; // por carpeta
    std::unique_ptr<QTextDocument> vista_;

    QListWidget* carpetas_;        // "ListaCarpetas"
    QListWidget* listaPlantillas_; // "ListaPlantillas"
    QLineEdit* nombre_;            // "NombrePlantilla"
    QPlainTextEdit* texto_;        // "TextoPlantilla"
    QTextBrowser* vistaPrevia_;    // "VistaPrevia"
    QComboBox* impresoras_;        // "ListaImpresoras"
    QComboBox* anchoPapel_;        // "ListaAnchoPapel"
    QCheckBox* continuo_;          // "PapelContinuo"
    QSpinBox* copias_;             // "NumeroCopias"
    QSpinBox* tamanoFuente_;       // "TamanoFuente"
    QCheckBox* logotipo_;          // "ImprimeLogotipo"
    QCheckBox* qr_;                // "ImprimeQR"
    QLineEdit* adicional_;         // "Adicional"
    QLineEdit* pie_;               // "Pie"
    QPushButton* guardar_;         // "BotonGuardar"
    QPushButton* predeterminada_;  // "BotonPredeterminada"
    QTimer* temporizadorVista_;
};

// El tipo de documento de Cajaplex.ini para una carpeta: "Remisión" -> "Remision".
QString tipoAjustesCarpeta(const QString& carpeta);

} // namespace cajaplex
