#pragma once

#include <cstdint>

#include <QWidget>

#include "datos/Sesion.h"
#include "pantallas/Mensajes.h"
#include "restaurant/CatalogoAreasComida.h"

class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QStackedWidget;
class QTreeWidget;
class QTreeWidgetItem;

namespace cajaplex {

class TAreasComidaEditaF;

// Catálogo de áreas de comida: el árbol de áreas, los nodos de cada una y los productos que
// prepara cada área.
class TAreasComidaF : public QWidget {
    Q_OBJECT
public:
    explicit TAreasComidaF(const Sesion& sesion, QWidget* padre = nullptr);

    enum Rol { RolAreaID = Qt::UserRole + 1, RolNodoID, RolProductoID };
    static const QStringList& opcionesMenuArbol();

private slots:
    void AreasComidaItemClick(QTreeWidgetItem* item);
    void BuscarNodoComidaReturnPressed();
    void BotonAnteriorClick();
    void BotonProductoNuevoClick();
    void GrupoBotonSiguienteClick();
    void BotonModificarClick();
    void BotonBorrarClick();
    void ArbolProductosItemChanged(QTreeWidgetItem* item, int columna);

private:
    void TemporizadorInicialTimer();
    void CargaNodosComidaTimer();
    void CargaProductosTimer();
    void ActualizaProductosAreaComidaTimer();
    void BorrarRenglonTimer(int64_t nodoID, const QString& clave);
    void pideNombre(QTreeWidgetItem* item, int opcion);
    void eliminaArea(QTreeWidgetItem* item);
    void abreEdicion(int64_t nodoID);
    void cierraEdicion();
    void muestraPagina(int pagina, const QString& titulo);
    void cuentaAsignados();
    void error(const QString& mensaje);

    const Sesion& sesion_;
    CatalogoAreasComida catalogo_;
    Mensajes mensajes_{this};
    int64_t areaID_ = 0;
    QString area_;
    QString busqueda_;
    QLabel* titulo_;          // "Titulo"
    QStackedWidget* paginas_; // "PaginadorDatos"
    QTreeWidget* areas_;      // "AreasComida"
    QLineEdit* buscar_;       // "BuscarNodoComida"
    QListWidget* nodos_;      // "NodosComida"
    QLabel* pieNodos_;        // "PieNodosComida"
    QTreeWidget* productos_;  // "ArbolProductos"
    QLabel* asignados_;       // "TotalAsignados"
    QPushButton* anterior_;   // "BotonAnterior"
    QPushButton* nuevo_;      // "BotonProductoNuevo"
    QPushButton* siguiente_;  // "GrupoBotonSiguiente"
    TAreasComidaEditaF* edicion_ = nullptr;
};

} // namespace cajaplex
