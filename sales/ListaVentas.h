#pragma once

#include <cstdint>
#include <vector>

#include <QDate>
#include <QString>

#include "datos/Sesion.h"

namespace cajaplex {

class ConexionBD;

// Una venta de la lista. Sus pagos son pagos[primerPago, primerPago + numeroPagos).
struct VentaLista {
    int64_t folio = 0;
    QString fecha; // como la guarda el servicio: yyyy-MM-dd HH:mm:ss
    int64_t clienteID = 0;
    QString cliente;
    int64_t usuarioID = 0;
    QString cajero;
    double total = 0.0;
    bool credito = false;
    bool cancelada = false;
    int primerPago = 0;
    int numeroPagos = 0;
};

// Lo que una venta recibió en una forma de pago: lo aplicado de contado o un anticipo vigente.
struct PagoLista {
    int forma = 0; // índice en formas
    double importe = 0.0;
};

struct FormaLista {
    int64_t feMetodoID = 0;
    QString descripcion;
};

// Las ventas de un periodo con sus pagos, de una sola lectura.
struct VentasPeriodo {
    std::vector<VentaLista> ventas; // por fecha y folio
    std::vector<PagoLista> pagos;
    std::vector<FormaLista> formas; // las que aparecen, por descripción
};

// Los filtros locales. Vacíos o en cero no filtran.
struct FiltroVentas {
    int64_t folio = 0;
    QString cliente; // parte del nombre, sin distinguir mayúsculas
    int64_t cajero = 0;
};

struct TotalForma {
    QString descripcion;
    int ventas = 0;
    double importe = 0.0;
};

// Los pies de la lista: lo recibido por forma de pago y el total vendido, sin las canceladas.
struct TotalesVentas {
    std::vector<TotalForma> formas; // solo las que recibieron algo
    int ventas = 0;
    int canceladas = 0;
    double total = 0.0;
};

// Las ventas de [desde, hasta] (días completos) en dos lecturas de un solo viaje. Lanza
// ErrorServicio.
VentasPeriodo consultaVentas(ConexionBD& conexion, const Sesion& sesion, const QDate& desde,
                             const QDate& hasta);

// Los índices de las ventas que pasan el filtro, en su orden.
std::vector<int> filtraVentas(const VentasPeriodo& periodo, const FiltroVentas& filtro);

TotalesVentas totalizaVentas(const VentasPeriodo& periodo, const std::vector<int>& indices);

// Una venta completa para el visor.
struct RenglonVisor {
    QString clave;
    QString producto;
    double cantidad = 0.0;
    double precio = 0.0;
    double descuento = 0.0; // por ciento
    double importe = 0.0;
    QString nota;
};

struct PagoVisor {
    QString forma;
    double entregado = 0.0;
    double aplicado = 0.0;
};

struct AnticipoVisor {
    int64_t folio = 0;
    QString fecha;
    QString forma;
    double importe = 0.0;
    bool cancelado = false;
};

struct BitacoraVisor {
    QString fecha;
    QString usuario;
    QString tipo;
    QString modulo;
    QString comentarios;
};

struct VentaVisor {
    int64_t folio = 0;
    QString fecha;
    QString cliente;
    QString cajero;
    QString vendedor;
    double subtotal = 0.0;
    double descuento = 0.0;
    double ieps = 0.0;
    double iva = 0.0;
    double total = 0.0;
    double saldo = 0.0;
    double puntos = 0.0;
    int plazo = 0;
    bool cancelada = false;
    QString fechaCancelacion;
    QString motivoCancelacion;
    QString observaciones;
    std::vector<RenglonVisor> renglones;
    std::vector<PagoVisor> pagos;
    std::vector<AnticipoVisor> anticipos;
    std::vector<BitacoraVisor> bitacora; // alta, anticipos y cancelación, por fecha
};

// La venta de ese folio con todo lo suyo, de un solo viaje. Lanza RegistroInexistente si no
// existe y ErrorServicio si falla la lectura.
VentaVisor consultaVenta(ConexionBD& conexion, const Sesion& sesion, int64_t folio);

// "$1,234.50"; negativos "-$1,234.50".
QString importeVenta(double valor);
// "2026-11-20 13:45:00" -> "20/11/2026 13:45".
QString fechaLista(const QString& fecha);

} // namespace cajaplex
