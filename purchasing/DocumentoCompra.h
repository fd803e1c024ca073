#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include <QDateTime>
#include <QString>

#include "datos/Registros.h"
#include "datos/Sesion.h"
#include "sales/DocumentoVenta.h"

namespace cajaplex {

class ConexionBD;

// Las cuatro clases de documento, en el orden del índice de la pantalla.
enum class TipoCompra { OrdenCompra = 0, Recepcion = 1, Devolucion = 2, Ajuste = 3 };

// Lo fijo de cada clase: su nombre en pantalla (también su módulo en la bitácora), sus tablas,
// la columna de su folio en Configura, cómo se nombra en los mensajes y el derecho de compras con
// que se cancela.
struct DatosTipoCompra {
    const char* nombre;
    const char* encabezado;
    const char* detalle;
    const char* columnaDetalle; // la que liga el renglón con su encabezado
    const char* folio;
    const char* documento; // "Recepción de Mercancía"
    const char* plural;    // "Recepciones de Mercancía"
    const char* derechoCancelar;
};
const DatosTipoCompra& datosTipo(TipoCompra tipo);

inline constexpr const char* MensajeCostoCero = "Hay productos con Costo Cero, No podrá continuar";
inline constexpr const char* MensajeSinProveedor = "Debe Seleccionar un Proveedor por Default";
inline constexpr const char* MensajeSinMoneda = "Debe Seleccionar una Moneda";
inline constexpr const char* MensajeSinTipoCambio = "Debe Introducir un Tipo de Cambio";
inline constexpr const char* MensajeTipoCambioCero =
    "El Tipo de Cambio debe ser mayor o igual que cero";
inline constexpr const char* MensajeSinDiasPago = "Debe introducir los días de pago";
inline constexpr const char* MensajeSinFormaPago = "Debe Seleccionar una Forma de Pago";
inline constexpr const char* MensajeLimiteCredito = "El límite de crédito es: ";
inline constexpr const char* MensajeSinRenglones = "No hay Productos en la Transacción";
inline constexpr const char* MensajeBusquedaVacia =
    "No se localizaron registros con esa Información";
inline constexpr const char* MensajeSinOrdenes = "No hay Órdenes de Compra";
inline constexpr const char* TituloReposicion = "Seleccione el Tipo de Reposición de Inventario";
inline constexpr const char* MensajeSinOpcionReposicion =
    "Debe seleccionar una Opción de Reposición de Inventario";
inline constexpr const char* MensajeSinReposicion =
    "No se hay Información relacionada para la reposición de inventario";

// Las opciones de reposición, en el orden del diálogo.
enum class Reposicion { Maximos = 0, Minimos = 1, DebajoMinimo = 2 };
inline constexpr const char* OpcionesReposicion[] = {"Máximos", "Mínimos", "Debajo del Mínimo"};

// Lo que el usuario capturó en el encabezado. Tipo de cambio y días de pago van como se
// teclearon: vacío se distingue de cero.
struct EncabezadoCompra {
    int64_t proveedor = 0;
    int64_t moneda = 0;
    QString tipoCambio;
    QString plazoPago;
    int64_t formaPago = 0;
    QString observaciones;
    bool ajusteEntrada = true;
    // Folio de la orden de compra que se recibe (solo recepción); 0 si no viene de una.
    int64_t ordenOrigen = 0;
};

// Un producto hallado por la búsqueda.
struct ProductoCompra {
    QString clave;
    QString descripcion;
    double existencia = 0;
};

// Una orden de compra abierta, para recibirla.
struct OrdenAbierta {
    int64_t id = 0;
    int64_t folio = 0;
    QDateTime fecha;
    double total = 0;
    QString proveedor;
    int64_t proveedorID = 0;
    QString moneda;
};

// Un documento de compras en captura. Los renglones (TransaccionDetalles) son renglones de venta
// con el costo en Precio y en PCompra: así el importe y los totales salen de la misma aritmética
// que la venta, con el modo desglosaRM de la empresa.
class DocumentoCompra {
public:
    using Rechazo = std::optional<QString>;

    DocumentoCompra(ConexionBD& conexion, const Sesion& sesion, TipoCompra tipo);

    // Modo de IVA, moneda y forma de pago por omisión de la empresa. Lanza ErrorServicio.
    void abre();
    // El proveedor elegido: sus costos se calculan con su modo de IVA (o el de la empresa si no
    // tiene) y los renglones se recalculan. Devuelve sus días de crédito, los días de pago que
    // se proponen; 0 sin proveedor. Lanza ErrorServicio.
    int ponProveedor(int64_t proveedorID);

    TipoCompra tipo() const { return tipo_; }
    int desglosaRM() const { return desglosaRM_; }
    int64_t monedaDefault() const { return monedaDefault_; }
    int64_t formaPagoDefault() const { return formaPagoDefault_; }

    // Por clave o código de barras, solo productos activos; cantidad 1 al costo del producto.
    Rechazo agrega(const QString& claveOCodigo);
    // Clave, descripción o código de barras que contienen el texto, solo activos.
    std::vector<ProductoCompra> busca(const QString& texto);
    Rechazo cambiaCantidad(size_t fila, double cantidad);
    Rechazo cambiaCosto(size_t fila, double costo);
    Rechazo cambiaDescuento(size_t fila, double porcentaje);
    // Requiere el derecho de compras "descuento".
    Rechazo descuentoGlobal(double porcentaje);
    void elimina(size_t fila);
    void limpia();

    // Reemplaza los renglones por los productos activos que faltan según la opción, en orden de
    // descripción, con el máximo menos la existencia como cantidad. Lanza ErrorServicio.
    Rechazo reposicion(Reposicion opcion);

    // Órdenes de compra sin cancelar ni recibir; y cargar una reemplaza los renglones por los
    // suyos con sus costos. Lanzan ErrorServicio.
    std::vector<OrdenAbierta> ordenesAbiertas();
    void cargaOrden(int64_t folio);

    const std::vector<RenglonVenta>& TransaccionDetalles() const { return renglones_; }
    TotalesVenta totales() const;

    // Las revisiones de "Finalizar Transacción" en su orden, incluida la autorización de la
    // estación. Lanza ErrorServicio si no puede leer.
    Rechazo revisa(const EncabezadoCompra& encabezado);
    // Registra todo en un lote: folio leído dentro de él, encabezado, renglones, la orden
    // recibida y la bitácora. Devuelve el folio. Lanza; si falla no queda nada y los renglones
    // siguen.
    int64_t registra(const EncabezadoCompra& encabezado);

private:
    RenglonVenta renglonDe(const Registro& r) const;
    void recalcula(RenglonVenta& r) const;

    ConexionBD& conexion_;
    const Sesion& sesion_;
    TipoCompra tipo_;
    std::vector<RenglonVenta> renglones_;
    int desglosaRM_ = 2;
    int desglosaEmpresa_ = 2;
    int64_t monedaDefault_ = 0;
    int64_t formaPagoDefault_ = 0;
};

} // namespace cajaplex
