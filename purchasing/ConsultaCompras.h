#pragma once

#include <cstdint>
#include <vector>

#include <QDate>
#include <QString>

#include "datos/Sesion.h"
#include "purchasing/DocumentoCompra.h"
#include "sales/ListaVentas.h"

namespace cajaplex {

class ConexionBD;

// Qué documentos de compras listar. Proveedor y folio en cero no filtran; con folio se busca ese
// folio en cualquier fecha (quien lo teclea ya sabe cuál quiere).
struct FiltroCompras {
    TipoCompra tipo = TipoCompra::Recepcion;
    QDate desde;
    QDate hasta;
    int64_t proveedor = 0;
    int64_t folio = 0;
};

// Un documento de la lista.
struct CompraListada {
    int64_t folio = 0;
    QString fecha; // como la guarda el servicio: yyyy-MM-dd HH:mm:ss
    QString proveedor;
    QString usuario;
    double total = 0.0;
    bool cancelada = false;
    // Según la clase: la orden ya recibida, la recepción a crédito, el ajuste de entrada.
    bool recibida = false;
    int plazo = 0;
    bool entrada = false;
};

// Los documentos de una clase que pasan el filtro, del folio más reciente al más antiguo. Lanza
// ErrorServicio.
std::vector<CompraListada> consultaCompras(ConexionBD& conexion, const Sesion& sesion,
                                           const FiltroCompras& filtro);

struct RenglonCompra {
    QString clave;
    QString producto;
    QString unidad;
    double cantidad = 0.0;
    double costo = 0.0;
    double descuento = 0.0; // por ciento
    double porcentajeImpuesto = 0.0;
    double importe = 0.0;
};

// Un documento de compras completo: encabezado, renglones y su bitácora.
struct CompraGuardada {
    TipoCompra tipo = TipoCompra::OrdenCompra;
    int64_t folio = 0;
    QString fecha;
    QString proveedor;
    QString rfcProveedor;
    QString usuario;
    QString moneda;
    double tipoCambio = 1.0;
    QString formaPago;
    int plazo = 0;
    double saldo = 0.0;
    double subtotal = 0.0;
    double iva = 0.0;
    double total = 0.0;
    bool cancelada = false;
    QString fechaCancelacion;
    QString motivoCancelacion;
    QString observaciones;
    bool recibida = false;     // orden de compra ya recibida
    int64_t ordenRecibida = 0; // recepción: el folio de la orden que recibió
    bool entrada = false;      // ajuste de entrada
    std::vector<RenglonCompra> renglones;
    std::vector<BitacoraVisor> bitacora; // alta y cancelación, por fecha
};

// El documento de esa clase y folio, de un solo viaje. Lanza RegistroInexistente si no existe y
// ErrorServicio si falla la lectura.
CompraGuardada consultaCompra(ConexionBD& conexion, const Sesion& sesion, TipoCompra tipo,
                              int64_t folio);

} // namespace cajaplex
