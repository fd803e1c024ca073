#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include <QImage>
#include <QPointer>
#include <QString>
#include <QWidget>

#include "datos/AjustesEstacion.h"
#include "datos/Sesion.h"
#include "pantallas/Mensajes.h"
#include "sales/DocumentoVenta.h"
#include "sales/RegistroVenta.h"

class QCheckBox;
class QCloseEvent;
class QComboBox;
class QFrame;
class QLabel;
class QLineEdit;
class QListView;
class QPlainTextEdit;
class QPushButton;
class QSpinBox;
class QTabWidget;
class QTableView;
class QTableWidget;

namespace cajaplex {

class ModeloCarrito;
class ModeloTabla;

inline constexpr const char* MensajePrecioCero =
    "No se permite introducir Productos con Precio <= 0";
inline constexpr const char* MensajeSinCliente = "Debe Seleccionar un Cliente por Default";
inline constexpr const char* MensajeSinMoneda = "Debe Seleccionar una Moneda";
inline constexpr const char* MensajeSinTipoCambio = "Debe Introducir un Tipo de Cambio";
inline constexpr const char* MensajeTipoCambioNegativo =
    "El Tipo de Cambio debe ser mayor o igual que cero";
inline constexpr const char* MensajeSinDiasPago = "Debe introducir los días de pago";
inline constexpr const char* MensajeLimiteCredito = "El límite de crédito es: ";
inline constexpr const char* MensajePagoInsuficiente =
    "No se cubre el Total de la Remisión con la(s) forma(s) de pago";
inline constexpr const char* MensajeRenglonPrecioCero =
    "Hay productos con Precio Cero, No podrá continuar";
inline constexpr const char* PreguntaTipoOperacion = "Seleccione el Tipo de Operación";
inline constexpr const char* PreguntaSalirVenta = "¿Aún así desea salir?";
inline constexpr const char* ClientePublicoGeneral = "Venta al Público en General";
inline constexpr const char* OpcionClienteNuevo = "Cliente Nuevo";
inline constexpr const char* OpcionVentaNueva = "Venta Nueva";

// Las opciones con que termina la venta, en el orden de la pregunta.
enum class TipoOperacion { ImprimirYAlmacenar, PdfYAlmacenar, SoloAlmacenar };

// "Punto de Venta ": el carrito (clave, código de barras o "3*clave"), la consulta del
// catálogo, los detalles de un renglón y el cierre con sus formas de pago. El documento de venta
// hace las cuentas y el registro guarda la venta en un solo lote.
class TPuntoVentaF : public QWidget {
    Q_OBJECT
public:
    // `carpetaAjustes` vacía: los ajustes de la estación del usuario.
    explicit TPuntoVentaF(const Sesion& sesion, QWidget* padre = nullptr,
                          const QString& carpetaAjustes = {});
    ~TPuntoVentaF() override;

    enum Pestana { PCarrito, PConsulta, PDetalles, PFinalizar };

    // Carga en la venta una comanda (tipo "0") o una cotización (tipo "1"); lo llaman los
    // selectores de comandas y cotizaciones y la lectura de un QR de cotización.
    void CargaDocumentoClonar(int64_t documento, const QString& tipo, int modoPrecio);

    const DocumentoVenta& venta() const { return venta_; }

protected:
    void closeEvent(QCloseEvent* evento) override;
    bool eventFilter(QObject* objeto, QEvent* evento) override;

private slots:
    void BuscarProductoKeyDown();
    void BotonConsultarTodaBDClick();
    void ProductosItemClick();
    void FiltrarTexto();
    void BotonDetallesClick();
    void BotonBorrarRenglonClick();
    void CantidadChange();
    void CantidadAbiertaChange();
    void EsDineroClick();
    void FotoAnteriorClick();
    void FotoSiguienteClick();
    void DescuentoChange();
    void NotaProductoDetalleChange();
    void TablaPreciosClick(int fila);
    void GrupoBotonSiguienteClick();
    void GrupoBotonAnteriorClick();
    void BotonCancelarVentaClick();
    void BotonSeleccionaClienteClick();
    void BotonDescuentoGlobalClick();
    void BotonCajaChicaClick();
    void BotonCobrarComandaClick();
    void BotonVentaEnEsperaClick();
    void ListaFormaPagoChange();
    void ImportePagoChange();
    void ListaMonedaChange();
    void TipoCambioChange();
    void RecalculaCambio();

private:
    struct FormaPago {
        int64_t id = 0;
        QString descripcion;
        double importe = 0;
    };
    struct ClienteVenta {
        int64_t id = 0;
        QString nombre;
        double limiteCredito = 0;
        int diasCredito = 0;
        QString email;
    };

    QWidget* creaCarrito();
    QWidget* creaConsulta();
    QWidget* creaDetalles();
    QWidget* creaFinalizar();
    QFrame* creaMenuLateral();
    void creaAtajos();

    void TemporizadorInicialTimer();
    void CargaProductosTimer(const QString& texto);
    void AgregaProductoTimer(const QString& clave, double cantidad);
    void BorrarRenglonTimer(int fila);
    void CargaDetallesProductoTimer();
    void DevuelveSeleccionClientesTimer(int64_t cliente);
    void AlmacenaDatosTimer(TipoOperacion operacion);
    void eligeVendedor(int64_t usuario);
    void ReiniciarVentasTimer();
    void CrearPuntoVentaTimer();

    // Agrega (o suma al último renglón si es el mismo producto); falso si se rechazó.
    bool agrega(const QString& clave, double cantidad);
    void leeCliente(int64_t id);
    void abreClienteNuevo();
    bool revisaCierre();
    bool rechaza(const char* mensaje);
    CierreVenta cierre() const;
    std::vector<FormaPagoVenta> pagosAplicados() const;
    double totalPagado() const;
    int filaMonedero() const;
    void muestraPestana(Pestana pestana);
    void muestraDetalles();
    void muestraCantidadAbierta();
    void muestraFoto();
    void cambiaFoto(int paso);
    void llenaCorreos();
    bool revisaCorreo();
    void actualizaCarrito(int seleccion = -1);
    void actualizaTotales();
    void llenaFormasPago();
    void guardaAjustes(TipoOperacion operacion);
    int renglonActual() const;
    void error(const QString& mensaje);
    void errorLectura(const std::exception& e, const char* donde);

    const Sesion& sesion_;
    Mensajes mensajes_{this};
    AjustesEstacion ajustes_;
    DocumentoVenta venta_;
    RegistroVenta registro_;
    std::optional<OrigenVenta> origen_;
    ClienteVenta cliente_;
    int numero_ = 1; // "Punto de Venta N"
    int64_t clienteDefault_ = 0;
    int64_t formaPagoDefault_ = 0;
    int decimalesCantidad_ = 2;
    bool cambiaVendedor_ = false;
    std::vector<FormaPago> formasPago_;
    bool pagosTecleados_ = false;
    // El último texto leído y la fila que produjo, para sumar una segunda lectura igual.
    QString ultimaLectura_;
    int filaUltimaLectura_ = -1;
    int detalle_ = -1;                   // renglón en la pestaña de detalles
    QPointer<QWidget> selectorComandas_; // abierto desde "Cobrar Comanda"
    // Las fotos del producto del renglón en detalles, por su Posicion, y la que se ve.
    std::vector<QImage> fotos_;
    size_t foto_ = 0;

    struct ProductoConsulta {
        QString clave;
        QString producto;
        double precio[5] = {};
        double existencia = 0;
        bool manejaInventarios = false;
    };
    std::vector<ProductoConsulta> consulta_;

    QTabWidget* paginador_;     // "PaginadorDatos"
    QLabel* etiquetaCliente_;   // "EtiquetaCliente"
    QFrame* menuLateral_;       // "MenuLateral"
    QLineEdit* buscarProducto_; // "BuscarProducto"
    QListView* carrito_;        // "ProductosUsuario"
    ModeloCarrito* modeloCarrito_;
    QLabel* totalVenta_;     // "EtiquetaTotalVenta"
    QLineEdit* buscarTexto_; // "BuscarTextoProducto"
    QTableView* productos_;  // "Productos"
    ModeloTabla* modeloProductos_;
    QLabel* registros_;             // "EtiquetaRegistros"
    QLabel* datosGenerales_;        // "DatosGeneralesProducto"
    QTableWidget* tablaPrecios_;    // "TablaPrecios"
    QLabel* imagen_;                // "ImagenProducto"
    QLabel* etiquetaFoto_;          // "EtiquetaFoto"
    QPushButton* fotoAnterior_;     // "BotonFotoAnterior"
    QPushButton* fotoSiguiente_;    // "BotonFotoSiguiente"
    QLineEdit* cantidad_;           // "Cantidad"
    QLineEdit* cantidadAbierta_;    // "CantidadAbierta"
    QCheckBox* esDinero_;           // "EsDinero"
    QLineEdit* descuento_;          // "Descuento"
    QLineEdit* nota_;               // "NotaProductoDetalle"
    QTableWidget* resumen_;         // "TablaFinalizarTransaccion"
    QTableWidget* formas_;          // "ListaFormaPago"
    QLineEdit* importePago_;        // "ImportePago"
    QComboBox* monedas_;            // "ListaMoneda"
    QLineEdit* tipoCambio_;         // "TipoCambio"
    QLineEdit* plazoPago_;          // "PlazoPago"
    QComboBox* email_;              // "ListaEmail"
    QPlainTextEdit* observaciones_; // "Observaciones"
    QComboBox* vendedores_;         // "ListaUsuarios"
    QComboBox* impresoras_;         // "ListaImpresoras"
    QComboBox* plantillas_;         // "ListaPlantillaImpresion"
    QComboBox* papelContinuo_;      // "PapelContinuo"
    QSpinBox* copias_;              // "NumeroCopias"
    QLabel* totalRemision_;         // "EtiquetaTotalRemision"
    QLabel* cambio_;                // "EtiquetaCambio"
    QPushButton* siguiente_;        // "GrupoBotonSiguiente"
    QPushButton* anterior_;         // "GrupoBotonAnterior"
};

inline constexpr const char* MensajeSelectorComandasAbierto =
    "Debe cerrar la ventana de Consulta de Comandas";

// El selector de comandas por cobrar es del restaurante, que ventas no conoce: el restaurante
// registra aquí cómo crearlo para una venta. Sin registro, o en una empresa sin control de
// restaurantes, el menú lateral no ofrece "Cobrar Comanda".
using FabricaSelectorComandas = std::function<QWidget*(const Sesion&, TPuntoVentaF& venta)>;
void registraSelectorComandas(FabricaSelectorComandas fabrica);

} // namespace cajaplex
