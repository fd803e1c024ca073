#pragma once

#include <cstdint>
#include <optional>

#include <QDate>
#include <QStringList>
#include <QWidget>

#include "catalog/CatalogoLineas.h"
#include "catalog/CatalogoProductos.h"
#include "catalog/KardexProducto.h"
#include "datos/Consulta.h"
#include "datos/Sesion.h"
#include "pantallas/Mensajes.h"

class QDateEdit;
class QLabel;
class QLineEdit;
class QListView;
class QListWidget;
class QModelIndex;
class QPushButton;
class QStackedWidget;
class QTabWidget;
class QTreeWidget;
class QTreeWidgetItem;

namespace cajaplex {

// "Catálogo de Productos": el árbol de líneas y su mantenimiento, los productos de una línea o de
// una búsqueda en toda la empresa con su filtro local, el borrado de productos sin documentos y
// el kardex de un producto entre dos fechas. Cuatro páginas: SeleccionaLinea,
// SeleccionaProducto, ConsultaFechaKardex y ResultadoKardex. El editor de un producto
// (TProductosEditaF) se abre en lugar del catálogo, bajo la misma barra con "Regresar"; al volver
// se recarga el listado.
class TProductosF : public QWidget {
    Q_OBJECT
public:
    explicit TProductosF(const Sesion& sesion, QWidget* padre = nullptr);

    // Lo que guarda cada nodo del árbol "Lineas".
    enum RolLinea {
        RolLineaID = Qt::UserRole,
        RolPadre,
        RolImagenLinea, // "miniatura" si trae la suya, si no el nombre de la imagen por omisión
    };
    // Lo que guarda cada renglón de "ListaDetalle" además de lo que se pinta.
    enum RolKardex {
        RolModuloKardex = Qt::UserRole + 1,
        RolTipoKardex, // 1 sale, 0 entra
        RolCantidadKardex,
        RolImagenKardex, // "Insercion" o "Cancelacion"
        RolFolioKardex,
        RolPaqueteKardex,
    };

    // Las opciones de "Opciones sobre Líneas", en su orden.
    static const QStringList& opcionesMenuArbol();

protected:
    // Con el editor abierto, "Regresar" es del editor: se vuelve al catálogo, no al menú.
    void closeEvent(QCloseEvent* evento) override;

private slots:
    void LineasItemClick(QTreeWidgetItem* item);
    void CrearPrimeraLineaClick();
    void BuscarProductoReturnPressed();
    void BuscarTextoChange(const QString& texto);
    void BotonKardexClick();
    void BotonBorrarClick();
    void BotonModificarClick();
    void BotonNuevoProductoClick();
    void ProductosItemActivated(const QModelIndex& indice);
    void MostrarResultadosClick();

private:
    QWidget* creaPaginaLineas();
    QWidget* creaPaginaProductos();
    QWidget* creaPaginaFechas();
    QWidget* creaPaginaKardex();

    // Acciones del menú del árbol.
    void pideNodoNuevo(int64_t padre);
    void renombraNodo(QTreeWidgetItem* item);
    void eliminaNodo(QTreeWidgetItem* item);
    void asignaFoto(QTreeWidgetItem* item);
    void verProductos(QTreeWidgetItem* item);

    // Lo que corre tras la leyenda.
    void CargaLineasTimer();
    void InsertaLineaTimer(int64_t padre, const QString& nombre);
    void EditaLineaTimer(int64_t lineaID, const QString& nombre, const QString& anterior);
    void EliminaLineaTimer(int64_t lineaID, const QString& nombre);
    // lineaID 0: el listado es de una búsqueda.
    void CargaProductosTimer(const QString& sql, const QString& titulo, int64_t lineaID);
    void FiltraProductosTimer();
    void BorraProductoTimer(const ProductoListado& producto);
    void ConsultaKardexTimer();

    // Abre el editor (productoID 0: alta en la línea) y, al cerrarse, vuelve al catálogo.
    void abreEditor(int64_t productoID, int64_t lineaID);

    QTreeWidgetItem* itemDeLinea(int64_t lineaID) const;
    int numeroLineas() const;
    std::optional<ProductoListado> productoElegido() const;
    void actualizaPie();
    void actualizaAcciones();
    void error(const QString& mensaje);

    const Sesion& sesion_;
    Mensajes mensajes_{this};
    CatalogoLineas catalogo_;
    KardexProducto kardex_;
    Consulta ListadoProductos;
    ModeloProductos* modelo_;
    FiltroProductos* filtro_;
    int secuenciaFiltro_ = 0; // solo el último filtro tecleado se aplica
    // El listado cargado, para recargarlo al volver del editor; lineaListado_ 0 en una búsqueda.
    QString sqlListado_;
    QString tituloListado_;
    int64_t lineaListado_ = 0;
    std::optional<ProductoListado> productoKardex_;
    QDate inicioKardex_;
    QDate finKardex_;

    QStackedWidget* contenido_;   // "ContenidoProductos": el catálogo o el editor
    QLineEdit* buscarProducto_;   // "BuscarProducto"
    QTabWidget* paginas_;         // "Paginas"
    QTreeWidget* lineas_;         // "Lineas"
    QPushButton* primeraLinea_;   // "CrearPrimeraLinea"
    QLabel* tituloProductos_;     // "TituloProductos"
    QLineEdit* buscarTexto_;      // "BuscarTexto"
    QListView* productos_;        // "Productos"
    QLabel* pieProductos_;        // "PieProductos"
    QPushButton* botonModificar_; // "BotonModificar"
    QPushButton* botonNuevo_;     // "BotonNuevoProducto"
    QPushButton* botonKardex_;    // "BotonKardex"
    QPushButton* botonBorrar_;    // "BotonBorrar"
    QLabel* productoFechas_;      // "ProductoKardex"
    QDateEdit* fechaInicio_;      // "FechaInicio"
    QDateEdit* fechaFin_;         // "FechaFin"
    QPushButton* mostrar_;        // "MostrarResultadosKardex"
    QLabel* tituloKardex_;        // "TituloKardex"
    QListWidget* listaDetalle_;   // "ListaDetalle"
    QLabel* existenciaActual_;    // "ExistenciaActual"
    QLabel* pieKardex_;           // "PieKardex"
};

} // namespace cajaplex
