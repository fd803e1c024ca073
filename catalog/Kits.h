#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <QWidget>

#include "catalog/CatalogoLineas.h"
#include "catalog/ComposicionKits.h"
#include "datos/Consulta.h"
#include "datos/Sesion.h"
#include "pantallas/Mensajes.h"

class QCloseEvent;
class QLabel;
class QLineEdit;
class QListView;
class QListWidget;
class QListWidgetItem;
class QPushButton;
class QTabWidget;

namespace cajaplex {

class TSelectorProductosF;

// "Artículos Compuestos (Kits)": la lista de kits con su filtro local y la composición del kit
// elegido, con los productos "Disponibles" (por línea o por búsqueda, nunca otro kit) y los
// "Seleccionados" (la lista de trabajo KitDetalles) con su costo. Almacenar reemplaza la
// composición entera. Salir con cambios sin almacenar pregunta primero.
class TKitsF : public QWidget {
    Q_OBJECT
public:
    explicit TKitsF(const Sesion& sesion, QWidget* padre = nullptr);

    // Lo que guarda cada renglón de "ListaKits".
    enum Rol { RolKitID = Qt::UserRole + 1 };

    // Las opciones de "Seleccione el Tipo de Operación", en su orden.
    static const QStringList& tiposOperacion();
    // La pregunta al salir con cambios sin almacenar.
    static QString preguntaSalir();

protected:
    void closeEvent(QCloseEvent* evento) override;

private slots:
    void FiltroKitsChange(const QString& texto);
    void ListaKitsItemClick(QListWidgetItem* item);
    void ClaveProductoReturnPressed();
    void ProductoDisponibleElegido(int64_t productoID);
    void BotonCantidadClick();
    void BotonSubirClick();
    void BotonBajarClick();
    void BotonBorrarClick();
    void BotonAlmacenarClick();
    void BotonSalirClick();

private:
    QWidget* creaPaginaKits();
    QWidget* creaPaginaComposicion();

    void CargaInformacionTimer();
    void CargaComponentesTimer(const KitListado& kit);
    void AgregaProductoTimer(int64_t productoID);
    void AgregaClaveTimer(const QString& clave);
    void AlmacenaKitTimer(int tipoOperacion);
    void agrega(const ComponenteKit& componente);
    void entregaDocumento(int tipoOperacion);
    int filaElegida() const;
    void actualizaPies();
    void actualizaAcciones();
    void error(const QString& mensaje);

    const Sesion& sesion_;
    Mensajes mensajes_{this};
    CatalogoKits catalogo_;
    CatalogoLineas lineas_;
    std::vector<KitListado> kits_;
    std::optional<KitListado> kit_;
    std::vector<ComponenteKit> anteriores_; // la composición como está almacenada
    KitDetalles* detalles_;
    bool saliendo_ = false; // ya se preguntó

    QTabWidget* paginas_;      // "Paginas"
    QLineEdit* filtroKits_;    // "FiltroKits"
    QListWidget* listaKits_;   // "ListaKits"
    QLabel* pieKits_;          // "PieKits"
    QLabel* kitSeleccionado_;  // "KitSeleccionado"
    QLineEdit* claveProducto_; // "ClaveProducto"
    // Sin los kits: un kit no se compone de kits.
    TSelectorProductosF* disponibles_; // "SelectorProductos"
    QListView* listaDetalles_;         // "KitDetalles"
    QLabel* total_;                    // "TotalKit"
    QPushButton* cantidad_;            // "BotonCantidad"
    QPushButton* subir_;               // "BotonSubir"
    QPushButton* bajar_;               // "BotonBajar"
    QPushButton* borrar_;              // "BotonBorrar"
};

} // namespace cajaplex
