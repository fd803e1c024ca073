#pragma once

#include <memory>
#include <vector>

#include <QString>
#include <QWidget>

#include "catalog/ImportacionCatalogo.h"
#include "catalog/LectorHojas.h"
#include "datos/Sesion.h"
#include "pantallas/Mensajes.h"
#include "pantallas/ModeloTabla.h"

class QButtonGroup;
class QFrame;
class QGroupBox;
class QLabel;
class QProgressBar;
class QPushButton;
class QTableView;

namespace cajaplex {

// "Importador de Excel": carga una hoja (.xls, .xlsx o .csv) en la rejilla y la importa a
// clientes, productos o proveedores. La importación corre por lotes, uno por vuelta del ciclo de
// eventos, así la pantalla sigue atendiendo y "Cancelar" se nota al terminar el lote en curso; lo
// ya registrado se queda. Al final muestra el resumen y los renglones rechazados, que se pueden
// guardar en un .csv para corregirlos.
class TImportadorExcelF : public QWidget {
    Q_OBJECT
public:
    explicit TImportadorExcelF(const Sesion& sesion, QWidget* padre = nullptr);
    ~TImportadorExcelF() override;

    // Carga el archivo como si se hubiera elegido en el diálogo de abrir.
    void abreArchivo(const QString& ruta);
    // Escribe los renglones rechazados en `ruta`; verdadero si quedó escrito.
    bool guardaRechazadosA(const QString& ruta);
    void renglonesPorLote(int renglones) { porLote_ = renglones; }
    const Hoja& hoja() const { return hoja_; }

signals:
    // Tras registrar cada lote, con los renglones de la hoja ya atendidos.
    void loteRegistrado(int procesados);

private slots:
    void BotonAbrirArchivoClick();
    void BotonImportarClick();
    void BotonCancelarClick();
    void BotonGuardarRechazadosClick();

private:
    enum class Fin { Concluida, Cancelada, Error };

    void CargaArchivoTimer(const QString& ruta);
    void ComienzaImportacionTimer(TipoImportacion tipo);
    void ImportaLoteTimer();
    void muestraAvance();
    void termina(Fin fin);
    void llenaRejilla(Hoja hoja);
    void habilita(bool habilitar);
    TipoImportacion tipoElegido() const;

    const Sesion& sesion_;
    Mensajes mensajes_{this};
    Hoja hoja_;
    QString archivo_;
    std::unique_ptr<ImportacionCatalogo> importacion_;
    ResumenImportacion resumen_; // el de la última importación; lo lee modeloRechazados_
    int porLote_ = ImportacionCatalogo::RenglonesPorLote;
    bool cancelada_ = false;

    ModeloTabla* modeloHoja_ = nullptr;
    ModeloTabla* modeloRechazados_;

    QPushButton* abrir_;             // "BotonAbrirArchivo"
    QLabel* nombreArchivo_;          // "NombreArchivo"
    QGroupBox* tipos_;               // "TipoImportacion"
    QButtonGroup* grupoTipos_;       // "TipoClientes", "TipoProductos", "TipoProveedores"
    QPushButton* importar_;          // "BotonImportar"
    QTableView* rejilla_;            // "RejillaHoja"
    QLabel* pie_;                    // "PieHoja"
    QFrame* avance_;                 // "AvanceImportacion"
    QLabel* leyendaAvance_;          // "LeyendaAvance"
    QProgressBar* barra_;            // "BarraAvance"
    QPushButton* cancelar_;          // "BotonCancelar"
    QFrame* resumenPanel_;           // "ResumenImportacion"
    QLabel* textoResumen_;           // "TextoResumen"
    QTableView* rechazados_;         // "RenglonesRechazados"
    QPushButton* guardarRechazados_; // "BotonGuardarRechazados"
};

} // namespace cajaplex
