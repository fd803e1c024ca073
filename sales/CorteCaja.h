#pragma once

#include <cstdint>
#include <vector>

#include <QDateTime>
#include <QString>
#include <QVariantMap>

#include "datos/Sesion.h"

namespace cajaplex {

class ConexionBD;

inline constexpr const char* ModuloCorteCaja = "Ventas -> Corte de Caja";
inline constexpr const char* DerechoCorteCaja = "corteCaja";
inline constexpr const char* MensajeSinPermisoCorte =
    "Su perfil no tiene permiso para realizar el Corte de Caja";
// Clave SAT de la forma de pago en efectivo: lo único que entra al cajón.
inline constexpr const char* ClaveSatEfectivo = "01";
// cajero = TodosLosCajeros: el corte de todos.
inline constexpr int64_t TodosLosCajeros = 0;

struct CajeroCorte {
    int64_t usuarioID = 0;
    QString nombre;
};

// Lo cobrado en una forma de pago.
struct ImporteFormaPago {
    int64_t feMetodoID = 0;
    QString descripcion;
    bool efectivo = false;
    int operaciones = 0;
    double importe = 0.0;
};

// Lo que el sistema sabe del periodo [desde, hasta) de un cajero (o de todos). Los importes van
// redondeados a 2 decimales. Una venta cancelada no cuenta en contado, crédito ni anticipos: su
// dinero se devolvió.
struct ResumenCorte {
    int64_t cajero = TodosLosCajeros;
    QString dispositivo;
    QDateTime desde;
    QDateTime hasta;

    std::vector<ImporteFormaPago> ventasPorForma; // lo aplicado a las ventas de contado
    int ventasContado = 0;
    double totalContado = 0.0;
    int ventasCredito = 0;
    double totalCredito = 0.0;
    std::vector<ImporteFormaPago> anticiposPorForma; // anticipos y abonos a ventas a crédito
    double totalAnticipos = 0.0;
    int ventasCanceladas = 0;
    double totalCanceladas = 0.0;
    int depositos = 0;
    double totalDepositos = 0.0;
    int retiros = 0;
    double totalRetiros = 0.0;

    double efectivoVentas = 0.0;
    double efectivoAnticipos = 0.0;
    // efectivoVentas + efectivoAnticipos + depósitos - retiros.
    double efectivoEsperado = 0.0;
};

struct ResultadoCorte {
    bool registrado = false;
    int64_t id = 0;
    QString mensaje; // sin registrar: el motivo para el usuario
};

// Corte de caja: lo que debería haber en el cajón de un cajero en un periodo y el registro de lo
// que se contó. Solo lee ventas, abonos y caja chica; nunca las cambia.
class CorteCaja {
public:
    CorteCaja(ConexionBD& conexion, const Sesion& sesion);

    bool permitido() const;

    // Los usuarios de la empresa, por nombre. Lanza ErrorServicio.
    std::vector<CajeroCorte> cajeros();
    // Donde terminó el último corte de la estación; sin cortes, hoy a las 00:00. Lanza
    // ErrorServicio.
    QDateTime inicioPeriodo(const QString& dispositivo);
    // Todas las lecturas en un solo viaje y una sola transacción: cifras de un mismo momento.
    // Lanza ErrorServicio; sin el derecho, con código "permiso" y MensajeSinPermisoCorte.
    ResumenCorte calcula(int64_t cajero, const QString& dispositivo, const QDateTime& desde,
                         const QDateTime& hasta);
    // El corte y su renglón de bitácora en una transacción. Sin el derecho no escribe nada; una
    // falla del servicio sale como ErrorServicio y no deja nada escrito.
    ResultadoCorte registra(const ResumenCorte& resumen, double efectivoContado,
                            const QString& observaciones);

private:
    ConexionBD& conexion_;
    const Sesion& sesion_;
};

// Contado - esperado, a 2 decimales: positivo sobra, negativo falta.
double diferenciaCorte(const ResumenCorte& resumen, double efectivoContado);

// Los valores del corte para su plantilla de impresión: único punto de entrada de la impresión.
// Llaves: Corte (su ID), Empresa, Usuario, Cajero, Dispositivo, Desde, Hasta, VentasContado,
// TotalContado, VentasCredito, TotalCredito, TotalAnticipos, VentasCanceladas, TotalCanceladas,
// Depositos, TotalDepositos, Retiros, TotalRetiros, EfectivoVentas, EfectivoAnticipos,
// EfectivoEsperado, EfectivoContado, Diferencia, y las listas FormasPago y Anticipos (mapas con
// Descripcion, Operaciones, Importe, Efectivo).
QVariantMap valoresCorte(const Sesion& sesion, int64_t corteID, const QString& nombreCajero,
                         const ResumenCorte& resumen, double efectivoContado);

} // namespace cajaplex
