#pragma once

#include <array>
#include <cstdint>

#include <QImage>
#include <QWidget>

#include "catalog/EdicionProducto.h"
#include "datos/Sesion.h"
#include "pantallas/Mensajes.h"
#include "printing/CodigoBarras.h"

class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;
class QStackedWidget;

namespace cajaplex {

class TRangosF;
class TVisorPdfF;

// "Edición de Producto": todas las columnas de un producto en una lista agrupada ("Datos
// Requeridos", "Operativos", "Banderas", "Precios de Venta", "Impuestos", "Opcionales",
// "Diversos"), su foto principal, la página de etiquetas con código de barras y los rangos de
// precios del producto (TRangosF). Cada editor lleva como objectName su columna (`clave`,
// `precio2`, `manejaInventarios`...). Al almacenar avisa con productoAlmacenado() y se cierra. El
// "Regresar" de la ventana (close()) vuelve de una página interna a los datos y, desde los datos,
// cierra.
// Leyenda bajo la existencia al modificar un producto.
inline constexpr const char* LeyendaAjusteExistencia =
    "Se guarda como ajuste sobre la existencia actual";

class TProductosEditaF : public QWidget {
    Q_OBJECT
public:
    // La foto se guarda con su lado mayor a lo más en LadoMaximoFoto; la miniatura cabe en
    // TamanoMiniatura.
    static constexpr int LadoMaximoFoto = 1024;
    static constexpr int TamanoMiniatura = 96;

    // productoID 0: alta de un producto nuevo en la línea `lineaID`.
    TProductosEditaF(const Sesion& sesion, int64_t productoID, int64_t lineaID,
                     QWidget* padre = nullptr);

    bool esNuevo() const { return productoID_ == 0; }
    int64_t productoID() const { return productoID_; }

    // Lo que lee y guarda el producto, con sus consultas como componentes del formulario.
    EdicionProducto& edicion() { return edicion_; }

    // El archivo elegido con "Seleccionar Foto" llega aquí desde el diálogo de archivos.
    void cargaArchivoFoto(const QString& ruta);

signals:
    void productoAlmacenado(qint64 productoID);
    // Se cerró (Regresar desde los datos o después de almacenar): quien lo hospeda vuelve a lo
    // suyo.
    void cerrado();

protected:
    void closeEvent(QCloseEvent* evento) override;

private slots:
    void BotonSiguienteClick();
    void FotoClick();
    void SeleccionarFotoClick();
    void RotarFotoClick();
    void EliminarFotoClick();
    void ImprimeEtiquetaClick();
    void ImprimirEtiquetaClick();
    void RangosPreciosClick();

private:
    QWidget* creaPaginaDatos();
    QWidget* creaPaginaFoto();
    QWidget* creaPaginaEtiqueta();

    // Lo que corre tras la leyenda.
    void CargaInformacionTimer();
    void RevisaProductoTimer();
    void ModificaProductoTimer();
    void RotaFotoTimer();
    void GeneraEtiquetasTimer(const ParametrosEtiqueta& parametros);

    void muestraProducto(const ProductoEditado& p);
    ProductoEditado productoCapturado() const;
    void muestraFoto();
    void muestraPagina(QWidget* pagina);
    // Vuelve de una página interna (foto, etiquetas, visor, rangos); falso en los datos.
    bool regresaPagina();
    void error(const QString& mensaje);

    const Sesion& sesion_;
    int64_t productoID_;
    const int64_t lineaID_;
    Mensajes mensajes_{this};
    EdicionProducto edicion_;
    ProductoEditado leido_;      // como se leyó (para la bitácora y el ajuste de existencia)
    QString existenciaMostrada_; // el texto de la existencia leída, tal como se mostró
    bool cargado_ = false;

    QImage foto_;
    bool fotoGuardada_ = false;
    bool fotoCambiada_ = false;

    QLabel* titulo_;          // "TituloPagina": "Alta Producto" / "Modifica Producto"
    QPushButton* siguiente_;  // "BotonSiguiente"
    QStackedWidget* paginas_; // "PaginasEdicion"
    QWidget* paginaDatos_;    // "DatosProducto"
    QWidget* paginaFoto_;     // "FotoProducto"
    QWidget* paginaEtiqueta_; // "ParametrosImpresion"
    QWidget* paginaVisor_;    // "VisorEtiquetas"
    QWidget* paginaRangos_;   // "RangosProducto"
    TVisorPdfF* visor_ = nullptr;
    TRangosF* rangos_ = nullptr;

    // Datos Requeridos
    QLineEdit* clave_;
    QLineEdit* producto_;
    QComboBox* unidad_;
    QComboBox* moneda_;
    QLineEdit* claveSAT_;
    // Operativos
    QLineEdit* existencia_;
    QLineEdit* pCompra_;
    // Banderas
    QPushButton* manejaInventarios_;
    QPushButton* requiereAutorizacionVenta_;
    QPushButton* manejaSeries_;
    QPushButton* esPaquete_;
    QPushButton* recurrente_;
    QPushButton* caduca_;
    QPushButton* mostrarKioskoPV_;
    QPushButton* utilizaBascula_;
    // Precios de Venta
    std::array<QLineEdit*, 5> precios_{};
    QPushButton* precioAbierto_;
    // Impuestos
    QComboBox* iva_;
    QComboBox* ieps_;
    // Opcionales
    QLineEdit* datoAdicional1_;
    QLineEdit* codigoBarra_;
    QPushButton* bonificaPuntos_;
    QLineEdit* porcentajeBonificacion_;
    QLineEdit* maximo_;
    QLineEdit* minimo_;
    QLineEdit* peso_;
    // Diversos
    QPushButton* fotoItem_; // "Foto"
    QPushButton* activo_;
    QPushButton* imprimeEtiqueta_; // "ImprimeEtiqueta"
    QPushButton* rangosPrecios_;   // "RangosPrecios"

    // Foto
    QLabel* vistaFoto_;            // "VistaFoto"
    QPushButton* seleccionarFoto_; // "BotonSeleccionarFoto"
    QPushButton* rotarFoto_;       // "BotonRotarFoto"
    QPushButton* eliminarFoto_;    // "BotonEliminarFoto"

    // Parámetros de Impresión
    QComboBox* campoEtiqueta_;        // "CampoEtiqueta"
    QComboBox* simbologia_;           // "SimbologiaEtiqueta"
    QComboBox* rotacion_;             // "RotacionEtiqueta"
    QSpinBox* borde_;                 // "BordeEtiqueta"
    QSpinBox* espaciado_;             // "EspaciadoEtiqueta"
    QDoubleSpinBox* escala_;          // "EscalaEtiqueta"
    QDoubleSpinBox* altura_;          // "AlturaEtiqueta"
    QDoubleSpinBox* anchura_;         // "AnchuraEtiqueta"
    QSpinBox* tamanoLetra_;           // "TamanoLetraEtiqueta"
    QComboBox* precioEtiqueta_;       // "PrecioEtiqueta"
    QSpinBox* copias_;                // "CopiasEtiqueta"
    QPushButton* imprimeExistencias_; // "ImprimirExistencias"
    QPushButton* imprimir_;           // "BotonImprimirEtiqueta"
};

} // namespace cajaplex
