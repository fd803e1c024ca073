#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <QDate>
#include <QString>
#include <QWidget>

#include "datos/Sesion.h"
#include "pantallas/Mensajes.h"
#include "purchasing/ConsultaCompras.h"

class QComboBox;
class QDateEdit;
class QLabel;
class QLineEdit;
class QPushButton;
class QStackedWidget;
class QTabWidget;
class QTableView;

namespace cajaplex {

class ModeloTabla;
class TrabajoImpresion;

// "Documentos de Compra": las órdenes de compra, recepciones, devoluciones y ajustes de un
// periodo (hoy por omisión), por clase, proveedor y folio. Abrir uno muestra su encabezado, sus
// renglones y su bitácora; desde ahí se reimprime (impresora o PDF) y se cancela con el derecho
// de su clase.
class TComprasF : public QWidget {
    Q_OBJECT
public:
    // carpetaEstacion: la de Cajaplex.ini; vacía, la de la aplicación.
    explicit TComprasF(const Sesion& sesion, const QString& carpetaEstacion = {},
                       QWidget* padre = nullptr);

    // El documento abierto (0 si ninguno) y la última impresión pedida.
    int64_t folioAbierto() const { return compra_ ? compra_->folio : 0; }
    TrabajoImpresion* ultimaImpresion() const { return impresion_; }

private slots:
    void BotonBuscarClick();
    void BotonAbrirClick();
    void BotonRegresarClick();
    void BotonImprimirClick();
    void BotonPdfClick();
    void BotonCancelarDocumentoClick();

private:
    void CargaProveedoresTimer();
    void CargaComprasTimer(const FiltroCompras& filtro);
    void CargaDocumentoTimer(TipoCompra tipo, int64_t folio);
    void CancelaDocumentoTimer(TipoCompra tipo, int64_t folio, const QString& motivo);
    FiltroCompras filtro() const;
    void llenaDocumento();
    void imprime(bool pdf);
    void error(const QString& mensaje);

    const Sesion& sesion_;
    QString carpetaEstacion_;
    Mensajes mensajes_{this};
    FiltroCompras leido_; // el filtro de lo que está en la lista
    std::vector<CompraListada> compras_;
    std::optional<CompraGuardada> compra_;
    TrabajoImpresion* impresion_ = nullptr;

    QStackedWidget* paginas_; // "Paginas"
    QComboBox* tipo_;         // "TipoDocumento"
    QDateEdit* desde_;        // "DesdeCompras"
    QDateEdit* hasta_;        // "HastaCompras"
    QComboBox* proveedor_;    // "ProveedorCompras"
    QLineEdit* folio_;        // "FolioCompra"
    ModeloTabla* modelo_;
    QTableView* tabla_;    // "TablaCompras"
    QLabel* resumen_;      // "ResumenCompras"
    QPushButton* abrir_;   // "BotonAbrir"
    QLabel* titulo_;       // "TituloDocumento"
    QLabel* estado_;       // "EstadoDocumento"
    QLabel* proveedorDoc_; // "ProveedorDocumento"
    QLabel* fecha_;        // "FechaDocumento"
    QLabel* usuario_;      // "UsuarioDocumento"
    QLabel* condicion_;    // "CondicionDocumento"
    QLabel* importes_;     // "ImportesDocumento"
    QLabel* total_;        // "TotalDocumento"
    QTabWidget* hojas_;    // "HojasDocumento"
    ModeloTabla* renglones_;
    ModeloTabla* bitacora_;
    QPushButton* imprimir_; // "BotonImprimir"
    QPushButton* pdf_;      // "BotonPdf"
    QPushButton* cancelar_; // "BotonCancelarDocumento"
};

} // namespace cajaplex
