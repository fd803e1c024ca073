#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include <QDateTime>
#include <QHash>
#include <QString>

#include "datos/Sesion.h"

namespace cajaplex {

class ConexionDatos;
class Registro;

// Un renglón de RemisionDetalles, con sus campos en el orden de la tabla de la venta.
struct RenglonVenta {
    int64_t ID = 0;
    double Cantidad = 0;
    double Precio = 0;
    double Descuento = 0;
    double Importe = 0;
    double PCompra = 0;
    QString Producto;
    QString Unidad;
    double porcentajeImpuesto = 0;
    int posicion = 0;
    double ieps = 0;
    QString clave;
    int precioAbierto = 0;
    int64_t Moneda = 0;
    double Existencia = 0;
    double TipoCambioVenta = 1;
    QString AbreviacionPAC;
    double Precio1 = 0;
    double Precio2 = 0;
    double Precio3 = 0;
    double Precio4 = 0;
    double Precio5 = 0;
    bool ManejaInventarios = false;
    QString Nota;
    bool EsPaquete = false;
    int MesPagado = 0;
    int64_t AutorizadorID = 0;
    bool RequiereAutorizacionVenta = false;
    int PLista = 1;
    QString NumeroSerie;
    bool ManejaSeries = false;
    bool Caduca = false;
    QString NumeroLote;
    QDateTime FechaCaducidad;
    int64_t OrdenCompra = 0;
    bool bonificaPuntos = false;
    double porcentajeBonificacion = 0;
    // Propio de la estación, no se registra: el cajero eligió el nivel de precio a mano, y un
    // cambio de cantidad ya no lo sustituye por el de un rango.
    bool PrecioElegido = false;
};

struct MonedaVenta {
    int64_t id = 0;
    QString abreviacionPAC;
    double tipoCambioVenta = 1;
    bool multiplica = true;
};

struct TotalesVenta {
    double descuento = 0;
    double subtotal = 0;
    double ieps = 0;
    double iva = 0;
    double total = 0;
    double subtotalRegistrado = 0;
};

// Precio por volumen: desde `rango` piezas el precio es `precioVenta`.
struct RangoPrecio {
    double rango = 0;
    double precioVenta = 0;
};

// Precio unitario sin IVA según el modo ivaRemision: en el modo 1 el precio de pantalla lleva
// IVA; en 2, 3 y 4 no; otro modo no vale nada.
double precioNeto(const RenglonVenta& r, int ivaRemision);
// Cantidad por precio neto menos su descuento: el Importe del renglón y lo que se registra.
double importeNeto(const RenglonVenta& r, int ivaRemision);
// Puntos que gana el renglón, sobre el precio de pantalla y sin redondeo.
double puntosRenglon(const RenglonVenta& r);
// Siempre desde cero sobre todos los renglones; `monedas` da `multiplica` de cada moneda (una
// desconocida multiplica, como el valor por omisión de Monedas).
TotalesVenta calculaTotales(const std::vector<RenglonVenta>& renglones, int ivaRemision,
                            int64_t monedaVenta, const QHash<int64_t, MonedaVenta>& monedas);
// Los datos del producto de un renglón nuevo, de una fila con las columnas de la consulta de
// producto de la venta (ID, clave, producto, unidad, moneda, VPrecioVenta1..5, banderas...);
// también la usan los documentos clonados. Cantidad, descuento y precio quedan para quien llama.
RenglonVenta renglonDeProducto(const Registro& fila);
// El precio de lista del nivel (1 a 5; otro nivel, el 1).
double precioDeNivel(const RenglonVenta& r, int nivel);
// El rango con el Rango más grande que no pasa de la cantidad; ninguno si la cantidad no llega.
std::optional<double> precioPorRango(const std::vector<RangoPrecio>& rangos, double cantidad);

inline constexpr const char* MensajeProductoNoLocalizado =
    "No se localizaron Productos con el identificador: ";
inline constexpr const char* MensajeSinExistencias = "No se permite vender SIN existencias";
inline constexpr const char* MensajeCantidadCero = "La cantidad debe ser mayor a CERO";
inline constexpr const char* MensajeSinPermisoPrecio = "No tiene permiso para utilizar el Precio ";
inline constexpr const char* MensajeSinPermisoDescuento =
    "No tiene permiso para otorgar Descuentos";
inline constexpr const char* MensajeDescuentoInvalido = "El descuento debe estar entre 0 y 100";

// La venta que se arma en el punto de venta: la tabla de renglones, la moneda y los totales, que
// se recalculan desde cero con cada cambio. Lee la configuración una vez al abrirse. Las
// operaciones que el usuario puede ver rechazadas devuelven el mensaje; nullopt si se aplicó.
class DocumentoVenta {
public:
    using Rechazo = std::optional<QString>;

    DocumentoVenta(ConexionDatos& conexion, const Sesion& sesion);

    // Modo de IVA, moneda por omisión, venta sin existencias y las monedas de la empresa.
    // Lanza ErrorServicio.
    void abre();

    // Por clave o código de barras; cantidad 1, sin descuento, siguiente posición, al nivel de
    // precio del cliente (o al del rango de la cantidad). Lanza ErrorServicio.
    Rechazo agrega(const QString& claveOCodigo);
    Rechazo cambiaCantidad(size_t fila, double cantidad);
    // La cantidad abierta (a granel, o la que da un importe): solo pide que sea mayor que cero;
    // no revisa existencia ni cambia el precio por rango.
    Rechazo cambiaCantidadAbierta(size_t fila, double cantidad);
    Rechazo eligePrecio(size_t fila, int nivel);
    Rechazo cambiaDescuento(size_t fila, double porcentaje);
    Rechazo descuentoGlobal(double porcentaje);
    void cambiaNota(size_t fila, const QString& nota);
    void elimina(size_t fila);
    void limpia();

    // Cliente elegido: lee su nivel de precio y sus puntos y vuelve a poner precio a cada
    // renglón. Lanza ErrorServicio.
    void asignaCliente(int64_t clienteID);
    void asignaMoneda(int64_t moneda, double tipoCambio);

    const std::vector<RenglonVenta>& RemisionDetalles() const { return renglones_; }
    const TotalesVenta& totales() const { return totales_; }
    int ivaRemision() const { return ivaRemision_; }
    int64_t moneda() const { return moneda_; }
    double TipoCambio() const { return tipoCambio_; }
    int64_t cliente() const { return cliente_; }
    int nivelCliente() const { return nivelCliente_; }
    double puntosCliente() const { return puntosCliente_; }
    double puntosRemision() const;
    double costoRemision() const;
    const QHash<int64_t, MonedaVenta>& monedas() const { return monedas_; }

    // Para cargar una configuración sin leerla (pruebas y documentos clonados).
    void asignaModoIva(int ivaRemision);
    void asignaMonedas(QHash<int64_t, MonedaVenta> monedas);
    // Agrega un renglón ya armado en la siguiente posición.
    void agregaRenglon(RenglonVenta renglon);

private:
    Rechazo revisaExistencia(const RenglonVenta& r, double cantidad) const;
    const std::vector<RangoPrecio>& rangos(int64_t productoID);
    void ponPrecio(RenglonVenta& r);
    void recalcula();

    ConexionDatos& conexion_;
    const Sesion& sesion_;
    std::vector<RenglonVenta> renglones_;
    QHash<int64_t, MonedaVenta> monedas_;
    QHash<int64_t, std::vector<RangoPrecio>> rangos_;
    TotalesVenta totales_;
    int ivaRemision_ = 1;
    bool sinExistencia_ = false;
    int64_t moneda_ = 0;
    double tipoCambio_ = 1;
    int64_t cliente_ = 0;
    int nivelCliente_ = 1;
    double puntosCliente_ = 0;
};

} // namespace cajaplex
