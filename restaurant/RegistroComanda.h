#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <QDateTime>
#include <QString>

#include "datos/Sesion.h"

namespace cajaplex {

class ConexionBD;
class Consulta;

// Un punto de servicio en el plano, con quien lo atiende si tiene comanda activa.
struct NodoPlano {
    int64_t areaID = 0;
    QString area;
    int64_t id = 0;
    QString clave;
    QString descripcion;
    int numeroPersonas = 0;
    int status = 0; // 0 libre, 1 comanda abierta, 2 cuenta cerrada
    int tipo = 0;
    int64_t meseroID = 0; // 0 sin comanda activa
    QString mesero;
};

// El plano de la empresa y las opciones de Configura que lo acompañan.
struct PlanoComedor {
    std::vector<NodoPlano> nodos; // por área y descripción
    bool imprimeComandaAlGrabar = false;
    bool imprimeCuentaAlPagar = false;
    bool permiteCambiarVendedorComanda = false;
    int numeroMeseros() const;
};

// La comanda abierta del mesero en un nodo: de dónde siguen la sección y la posición.
struct ComandaAbierta {
    int64_t id = 0;
    int64_t folio = 0;
    int seccion = 0;  // última sección registrada
    int posicion = 0; // última posición registrada
};

// Un renglón del carrito o ya registrado en la comanda.
struct RenglonComanda {
    int64_t producto = 0;
    QString descripcion;
    double precio = 0.0;
    double cantidad = 1.0;
    double descuento = 0.0; // por ciento
    int comensal = 1;
    QString nota;
    bool extra = false;
    int seccion = 0; // 0: aún en el carrito
    int posicion = 0;

    double importe() const;
};

// Un mesero que puede recibir una comanda.
struct Mesero {
    int64_t id = 0;
    QString nombre;
};

// Un producto del menú de una línea.
struct ProductoMenu {
    int64_t id = 0;
    QString clave;
    QString producto;
    double precio = 0.0;
};

// La cuenta de una comanda, para imprimirla al cerrarla.
struct CuentaComanda {
    struct Renglon {
        int comensal = 1;
        double cantidad = 0.0;
        QString producto;
        double importe = 0.0;
    };
    int64_t folio = 0;
    QDateTime apertura;
    QDateTime cierre;
    QString observaciones;
    int personas = 0;
    QString mesero;
    std::vector<Renglon> renglones; // por comensal y producto
    double total() const;
};

// Los datos de una comanda nueva; sin ellos se continúa la abierta.
struct AperturaComanda {
    int numeroPersonas = 1;
    QString observaciones;
};

inline constexpr const char* ModuloComandas = "Ventas -> Comandas";
inline constexpr const char* MensajeErrorComanda =
    "Error al Registrar la comanda, Intente de nuevo";

// Abrir, continuar, cerrar y reabrir las comandas del mesero de la sesión. Cada escritura va en
// una sola transacción con su bitácora: si algo falla, nada queda. Lanza ErrorServicio.
class RegistroComanda {
public:
    RegistroComanda(ConexionBD& conexion, const Sesion& sesion);

    PlanoComedor plano();
    // La comanda del mesero de la sesión en el nodo, sin cerrar; nada si no la atiende él.
    std::optional<ComandaAbierta> comandaDelMesero(int64_t nodoID);
    std::vector<RenglonComanda> renglones(int64_t comandaID);
    // Los productos activos y visibles en el kiosco de una línea.
    std::vector<ProductoMenu> productosMenu(int64_t lineaID);

    // Registra los renglones como la sección siguiente. Sin `abierta` da de alta la comanda con
    // `apertura` y ocupa el nodo. Devuelve la comanda con su nueva sección y posición.
    ComandaAbierta registraSeccion(int64_t nodoID, const std::optional<ComandaAbierta>& abierta,
                                   const AperturaComanda& apertura,
                                   const std::vector<RenglonComanda>& carrito);
    // Falso si el nodo no tiene una comanda de este mesero que cerrar / reabrir.
    bool cierraCuenta(int64_t nodoID, int64_t comandaID);
    bool reabreCuenta(int64_t nodoID);
    CuentaComanda cuenta(int64_t comandaID);
    // Los demás meseros activos con acceso móvil a la empresa, por nombre.
    std::vector<Mesero> meseros();
    // Entrega la comanda propia a otro mesero; falso si ya no es de este mesero.
    bool cambiaMesero(const ComandaAbierta& comanda, const Mesero& mesero);

private:
    // Cambia la cuenta del mesero en el nodo y el status del nodo, con su bitácora.
    bool cambiaCuenta(Consulta& cambio, int64_t nodoID, int status, const QString& bitacora);

    ConexionBD& conexion_;
    const Sesion& sesion_;
};

} // namespace cajaplex
