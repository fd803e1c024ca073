#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include <QString>
#include <QWidget>

#include "catalog/CatalogoLineas.h"
#include "catalog/PreciosProductos.h"
#include "datos/Sesion.h"
#include "pantallas/Mensajes.h"
#include "pantallas/ModeloTabla.h"

class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QStackedWidget;
class QTableView;
class QTreeWidget;

namespace cajaplex {

// Lo que guarda cada nodo de un árbol de líneas para elegir: el ID de la línea, o TodasLasLineas
// en el nodo que abarca a todas.
inline constexpr int RolLineaElegida = Qt::UserRole;

// Llena un árbol para elegir línea: primero el nodo `todas` y luego las líneas de la empresa
// en su jerarquía. Lo comparten las pantallas que actúan sobre una línea o sobre todas.
void llenaArbolLineas(QTreeWidget* arbol, const std::vector<LineaProducto>& lineas,
                      const QString& todas);

// "Incremento de Precios": eleva los cinco precios de los productos de una línea (o de todos)
// con un por ciento por nivel sobre un valor de referencia. Tres pasos (línea, referencia,
// porcentajes), la vista previa con los precios nuevos y una sola sentencia al almacenar.
class TIncrementoPreciosF : public QWidget {
    Q_OBJECT
public:
    explicit TIncrementoPreciosF(const Sesion& sesion, QWidget* padre = nullptr);

    enum Pagina { PaginaLinea, PaginaReferencia, PaginaPorcentajes, PaginaVistaPrevia };

private slots:
    void GrupoBotonSiguienteClick();
    void GrupoBotonAnteriorClick();

private:
    // Lo que se previsualizó es lo que se aplica, aunque después se toquen los controles.
    struct Solicitud {
        int64_t lineaID = 0;
        QString linea;
        ReferenciaPrecio referencia = ReferenciaPrecio::Costo;
        PorcentajesIncremento porcentajes{};
    };

    QWidget* creaPaginaLinea();
    QWidget* creaPaginaReferencia();
    QWidget* creaPaginaPorcentajes();
    QWidget* creaPaginaVistaPrevia();

    void CargaLineasTimer();
    void CargaVistaPreviaTimer(const Solicitud& solicitud);
    void ActualizaPreciosTimer();

    // Vacío si ningún nivel trae un por ciento distinto de cero.
    std::optional<PorcentajesIncremento> porcentajesTecleados() const;
    void muestraPagina(int pagina);
    void llenaVistaPrevia(std::vector<ProductoIncremento> productos);
    void error(const QString& mensaje);

    const Sesion& sesion_;
    Mensajes mensajes_{this};
    std::optional<Solicitud> solicitud_;
    std::vector<ProductoIncremento> vista_; // lo que lee modelo_
    ModeloTabla* modelo_ = nullptr;

    QLabel* tituloPaso_;                                  // "TituloPaso"
    QLabel* numeroPaso_;                                  // "NumeroPaso"
    QStackedWidget* paginas_;                             // "Paginas"
    QTreeWidget* lineas_;                                 // "Lineas"
    QListWidget* referencias_;                            // "ValoresReferencia"
    std::array<QLineEdit*, NivelesPrecio> porcentajes_{}; // "PorcentajePrecio1" ...
    QLabel* resumen_;                                     // "ResumenIncremento"
    QTableView* productos_;                               // "Productos"
    QLabel* pie_;                                         // "PieProductos"
    QPushButton* anterior_;                               // "GrupoBotonAnterior"
    QPushButton* siguiente_;                              // "GrupoBotonSiguiente"
};

} // namespace cajaplex
