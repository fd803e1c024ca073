#pragma once

#include <cstddef>

#include <QString>

#include "datos/Sesion.h"

namespace cajaplex {

class Lote;
class Transaccion;

// Tipos de operación que la bitácora conoce, con sus acentos.
namespace tipoAuditoria {
inline constexpr const char* Insercion = "Inserción";
inline constexpr const char* Cancelacion = "Cancelación";
inline constexpr const char* CorteVenta = "Corte de Venta";
inline constexpr const char* CorteCaja = "Corte de Caja";
inline constexpr const char* BonificacionPuntos = "Bonificación Puntos";
inline constexpr const char* Actualizacion = "Actualización";
inline constexpr const char* Eliminacion = "Eliminación";
} // namespace tipoAuditoria

// Un renglón de AuditoriasSistema por cada operación que cambia dinero o existencias, escrito con
// el dataset compartido del módulo de datos dentro de la misma transacción que la operación.
// Usuario y empresa salen de la sesión; fechaOperacion la pone la base.
struct RenglonAuditoria {
    QString tipo;   // tipoAuditoria::...
    QString modulo; // "Catálogos -> Productos", "Ventas -> Comandas"...
    QString datoNuevo;
    QString datoAnterior;
    QString comentarios;
};

class Auditoria {
public:
    static void registra(Transaccion& transaccion, const Sesion& sesion,
                         const RenglonAuditoria& renglon);
    // Para las operaciones que viajan en un lote; devuelve el índice de la sentencia.
    static size_t agrega(Lote& lote, const Sesion& sesion, const RenglonAuditoria& renglon);

    // Nombre de la imagen con que el listado marca un tipo ("Insercion"...); vacío si no lo
    // conoce.
    static QString imagenDeTipo(const QString& tipo);
};

} // namespace cajaplex
