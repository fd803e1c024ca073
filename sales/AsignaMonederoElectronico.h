#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <QString>
#include <QWidget>

#include "datos/Sesion.h"
#include "pantallas/Mensajes.h"
#include "pantallas/ModeloTabla.h"

class QLabel;
class QLineEdit;
class QPushButton;
class QStackedWidget;
class QTableView;
class QTreeWidget;

namespace cajaplex {

class Registros;

// Productos activos de una línea (o de todas, con TodasLasLineas) con su bonificación actual.
QString sqlProductosMonedero(int64_t empresaID, int64_t lineaID);
// Una sola sentencia: con 0 % los productos dejan de bonificar; sin filtro de activo.
QString sqlAsignaMonedero(int64_t empresaID, int64_t lineaID, double porcentaje);

struct ProductoMonedero {
    QString clave;
    QString producto;
    QString unidad;
    double porcentaje = 0.0; // el que bonifica hoy; 0 si no bonifica
};
// Los renglones de sqlProductosMonedero como se listan.
std::vector<ProductoMonedero> productosMonedero(const Registros& registros);

inline constexpr const char* ModuloMonederoElectronico = "Catálogos -> Asigna Monedero Electrónico";

// "Asigna Monedero Electrónico": fija si los productos de una línea (o de todas) bonifican
// puntos al cliente y con qué por ciento. Página de parámetros, página de productos y una sola
// actualización al almacenar.
class TAsignaMonederoElectronicoF : public QWidget {
    Q_OBJECT
public:
    explicit TAsignaMonederoElectronicoF(const Sesion& sesion, QWidget* padre = nullptr);

    enum Pagina { PaginaParametros, PaginaProductos };

    // La estación que se revisa antes de almacenar; por omisión, la de los ajustes de la
    // estación.
    void ponDispositivo(const QString& dispositivoID) { dispositivo_ = dispositivoID; }

private slots:
    void GrupoBotonSiguienteClick();
    void GrupoBotonAnteriorClick();

private:
    // Lo listado es lo que se almacena, aunque después se toquen los parámetros.
    struct Solicitud {
        int64_t lineaID = 0;
        QString linea;
        double porcentaje = 0.0;
    };

    QWidget* creaPaginaParametros();
    QWidget* creaPaginaProductos();

    void CargaLineasTimer();
    void CargaProductosTimer(const Solicitud& solicitud);
    void ActualizaMonederoTimer();

    void llenaProductos(std::vector<ProductoMonedero> productos);
    void muestraPagina(int pagina);
    void error(const QString& mensaje);

    const Sesion& sesion_;
    Mensajes mensajes_{this};
    QString dispositivo_;
    std::optional<Solicitud> solicitud_;
    std::vector<ProductoMonedero> productosListados_; // lo que lee modelo_
    ModeloTabla* modelo_ = nullptr;

    QStackedWidget* paginas_; // "Paginas"
    QTreeWidget* lineas_;     // "Lineas"
    QLineEdit* porcentaje_;   // "PorcentajeMonedero"
    QLabel* resumen_;         // "ResumenMonedero"
    QTableView* productos_;   // "Productos"
    QLabel* pie_;             // "PieProductos"
    QPushButton* anterior_;   // "GrupoBotonAnterior"
    QPushButton* siguiente_;  // "GrupoBotonSiguiente"
};

} // namespace cajaplex
