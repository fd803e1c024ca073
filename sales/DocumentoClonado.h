#pragma once

#include <cstdint>
#include <vector>

#include <QString>

#include "datos/Sesion.h"
#include "sales/DocumentoVenta.h"
#include "sales/RegistroVenta.h"

namespace cajaplex {

class ConexionDatos;

// Tipos de documento que llegan a una venta y modos de precio de los selectores.
inline constexpr const char* TipoClonarComanda = "0";
inline constexpr const char* TipoClonarCotizacion = "1";
inline constexpr int PrecioCotizado = 0;
inline constexpr int PrecioActual = 100;
inline constexpr int PrecioCotizacionVencida = 101;

inline constexpr const char* PrefijoCotizacionQR = "CXCotizacion@";
inline constexpr const char* MensajeDocumentoNoLocalizado =
    "No se localizó el documento o ya fue cobrado: ";

// Lo que trae un documento de origen: sus renglones listos para la venta, sus observaciones
// (ObservacionesDocumentoClonado) y el origen que el registro actualiza al cobrar.
struct DocumentoClonado {
    std::vector<RenglonVenta> renglones;
    QString observaciones;
    OrigenVenta origen;
    int64_t cliente = 0;  // 0: el documento no lo dice
    int64_t vendedor = 0; // de una comanda, su mesero: el vendedor de la venta
    // De una comanda: lo que estuvo ocupado el nodo, de la apertura al cierre de la cuenta.
    int minutosTranscurridos = 0;
};

// CargaDocumentoClonar: una comanda cerrada sin pagar (tipo "0", por su id) o una cotización sin
// cancelar (tipo "1", por su folio). Con PrecioActual cada renglón toma el precio vigente de su
// nivel; con los otros modos, el precio del documento (la comanda no guarda precio: el vigente).
// Sin renglones, el documento no existe o ya no se puede cobrar. Lanza ErrorServicio.
DocumentoClonado cargaDocumentoClonar(ConexionDatos& conexion, const Sesion& sesion,
                                      int64_t documento, const QString& tipo, int modoPrecio);

} // namespace cajaplex
