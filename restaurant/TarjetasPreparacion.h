#pragma once

#include <cstdint>
#include <vector>

#include <QDateTime>
#include <QString>
#include <QUuid>

#include "datos/Sesion.h"
#include "restaurant/CatalogoAreasComida.h"

namespace cajaplex {

class ConexionBD;

// Estado de preparación de un renglón de comanda (ComandaDetalle.servida).
enum EstadoPreparacion { Pendiente = 0, Preparando = 1, Servida = 2 };
QString textoEstado(int servida);

// Un renglón por preparar o servir, como lo trae la consulta del monitor.
struct RenglonPreparacion {
    int64_t comanda = 0; // folio
    int seccion = 0;
    int posicion = 0;
    double cantidad = 0.0;
    QString nota;
    QString producto;
    QString nodo; // descripción del punto de servicio
    QString mesero;
    QDateTime fechaCaptura;
    QString area;
    QString linea;
    int64_t areaID = 0;
    int servida = Pendiente;
    bool extra = false;
    int comensal = 1;
    bool esPaquete = false;
    int64_t productoID = 0;
    int64_t nodoComida = 0;
};

// Una tarjeta del monitor: una sección de una comanda con sus renglones por comensal.
struct TarjetaPreparacion {
    int64_t comanda = 0;
    int seccion = 0;
    QString nodo;
    QString mesero;
    QDateTime captura; // la del primer renglón de la sección
    int minutos = 0;
    std::vector<RenglonPreparacion> renglones; // por comensal y en el orden de la consulta

    // "Comanda 12|3": identifica la tarjeta entre lecturas.
    QString clave() const;
    bool todoServido() const;
    // "N Producto(s)"
    QString pie() const;
};

// Color del encabezado según la espera: azul antes de 15 minutos, oro desde 15, rojo desde 25.
struct ColorEspera {
    const char* fondo;
    const char* texto;
};
ColorEspera colorEspera(int minutos);
// Minutos completos entre la captura y ahora (nunca negativos).
int minutosDesde(const QDateTime& captura, const QDateTime& ahora);

// Las tarjetas del monitor y su envejecimiento. Cada lectura se funde con lo que ya se ve: una
// tarjeta conocida conserva sus minutos (solo crecen con el minutero) y la de una sección nueva
// empieza con los minutos desde su captura; lo que la lectura ya no trae (servido, cancelado,
// cuenta cerrada) sale.
class TarjetasPreparacion {
public:
    struct Cambios {
        std::vector<QString> nuevas;    // claves, en orden
        std::vector<QString> quitadas;  // claves
        std::vector<QString> cambiadas; // conocidas cuyos renglones cambiaron
        bool renglonesNuevos = false;   // algún renglón que no se veía (suena la comanda nueva)
        bool hayCambios() const {
            return !nuevas.empty() || !quitadas.empty() || !cambiadas.empty();
        }
    };

    // Reemplaza el contenido con una lectura completa (filas en el orden de la consulta).
    Cambios funde(const std::vector<RenglonPreparacion>& filas, const QDateTime& ahora);
    void limpia() { tarjetas_.clear(); }
    // El minutero: un minuto más a cada tarjeta.
    void incrementaMinutos();
    // Anota el nuevo estado de un renglón; devuelve la tarjeta o nullptr si ya no está.
    TarjetaPreparacion* ponEstado(int64_t comanda, int seccion, int posicion, int servida);
    // Quita la tarjeta si todos sus renglones están servidos; verdadero si la quitó.
    bool quitaServida(const QString& clave);

    const std::vector<TarjetaPreparacion>& tarjetas() const { return tarjetas_; }
    const TarjetaPreparacion* busca(const QString& clave) const;

private:
    std::vector<TarjetaPreparacion> tarjetas_; // en orden de captura
};

// Lo que el monitor lee y escribe en el servicio, para la empresa de la sesión. Lanza
// ErrorServicio.
class ComandasPreparacion {
public:
    ComandasPreparacion(ConexionBD& conexion, const Sesion& sesion);

    // Las áreas que preparan algo: las que tienen productos asignados.
    std::vector<AreaComida> areasPreparacion();
    // Renglones abiertos del área (0: todas) por el procedimiento del servicio.
    std::vector<RenglonPreparacion> comandasActivas(int64_t areaID);
    // Pasa el renglón al estado siguiente con su fecha; devuelve el estado guardado.
    int avanza(const RenglonPreparacion& renglon);

    // Identifica a este monitor ante el procedimiento.
    const QUuid& id() const { return id_; }

private:
    ConexionBD& conexion_;
    const Sesion& sesion_;
    QUuid id_ = QUuid::createUuid();
};

} // namespace cajaplex
