#pragma once

#include <cstdint>
#include <vector>

#include <QDate>
#include <QDateTime>
#include <QString>

#include "datos/Consulta.h"

namespace cajaplex {

class ConexionDatos;

// Un movimiento de existencias de un producto. TipoTransaccion: 1 sale, 0 entra.
struct MovimientoKardex {
    QDateTime fecha;
    double cantidad = 0.0;
    int tipoTransaccion = 0;
    QString moduloSistema; // "Remisión", "Ajuste de Salida"...
    QString usuario;
    int64_t folio = 0;
    QString cliente; // solo en las remisiones
    QString paquete; // clave del kit cuando el movimiento llegó por él

    bool esEntrada() const { return tipoTransaccion == 0; }
};

// El kardex de un producto entre dos fechas: remisiones, ajustes de salida, devoluciones al
// proveedor, recepciones de mercancía y ajustes de entrada, cada fuente en orden de fecha.
//
// Cuenta lo mismo que el servicio cuando mueve existencias: documentos no cancelados, remisiones
// que descuentan existencias, y los renglones de un kit repartidos a sus componentes (cantidad
// del renglón por la del componente, con la composición vigente). Así entradas menos salidas
// cuadran con la existencia guardada.
class KardexProducto {
public:
    explicit KardexProducto(ConexionDatos& conexion);

    std::vector<MovimientoKardex> consulta(int64_t empresaID, const QString& clave,
                                           const QDate& inicio, const QDate& fin);
    // La existencia como la muestran las pantallas: una negativa se ve como 0.
    double existenciaActual(int64_t empresaID, int64_t productoID);

    Consulta ConsultaKardex;
    Consulta ExistenciaActual;
};

} // namespace cajaplex
