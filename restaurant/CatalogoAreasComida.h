#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <QString>
#include <QStringList>

#include "datos/Consulta.h"
#include "datos/Sesion.h"

namespace cajaplex {

class ConexionBD;

// Un renglón de AreasComida.
struct AreaComida {
    int64_t id = 0;
    int64_t padre = 0; // 0 en un área de primer nivel
    QString area;
};

// Un punto de servicio (mesa, barra...) de NodosComida.
struct NodoComida {
    int64_t id = 0; // 0 mientras no se ha dado de alta
    int64_t area = 0;
    QString clave;
    QString descripcion;
    int numeroPersonas = 1;
    int tipo = 0; // forma: 0 redonda ... 6 discapacitados
    bool activo = true;
    int status = 0; // 0 libre, 1 comanda abierta, 2 cuenta cerrada
};

// Un producto bajo su línea en el árbol de productos de un área.
struct ProductoArea {
    int64_t id = 0;
    QString producto;
    bool asignado = false; // su AreaComida es el área elegida
};

inline constexpr int NumeroTiposNodo = 7;
// Nombre de la imagen de la forma (assets/imagenes/<nombre>.svg) y su texto en la lista.
QString imagenTipoNodo(int tipo);
QString textoTipoNodo(int tipo);

// Motivo por el que "Eliminar Área" no procede, en el orden en que se revisa.
enum class RechazoEliminarArea { Ninguno, UnicaArea, ConSubAreas, ConNodos };
QString mensajeRechazo(RechazoEliminarArea rechazo);

inline constexpr const char* ModuloAreasComida = "Catálogos -> Áreas de Comida";
inline constexpr const char* ModuloNodosComida = "Catálogos -> Nodos de Comida";
inline constexpr const char* MensajeNodoConTransacciones =
    "No puede eliminar un Nodo de Comida con Transacciones Registradas";

// El catálogo de áreas de comida, sus puntos de servicio y los productos que prepara cada área,
// para la empresa de la sesión. Cada cambio va en una transacción con su renglón de bitácora.
// Los errores del servicio salen como ErrorServicio.
class CatalogoAreasComida {
public:
    CatalogoAreasComida(ConexionBD& conexion, const Sesion& sesion);

    std::vector<AreaComida> consultaAreas();
    // Devuelve el ID del área nueva.
    int64_t insertaArea(int64_t padre, const QString& nombre);
    void renombraArea(int64_t areaID, const QString& nombre, const QString& anterior);
    // Revisa dentro de la transacción que borra: otra estación no cuela una subárea o un nodo.
    RechazoEliminarArea eliminaArea(int64_t areaID, const QString& nombre);

    // Los nodos del área; con `busqueda`, los de todas las áreas cuya clave o descripción la
    // contienen.
    std::vector<NodoComida> nodos(int64_t areaID, const QString& busqueda);
    std::optional<NodoComida> consultaNodo(int64_t nodoID);
    // La clave que se propone a un nodo nuevo: cuántos hay más uno.
    int64_t siguienteClave();
    bool existeClave(const QString& clave);
    // Alta (id 0) o cambio; devuelve el ID.
    int64_t guardaNodo(const NodoComida& nodo);
    // Falso si el nodo tiene comandas: entonces no se borra.
    bool eliminaNodo(int64_t nodoID, const QString& clave);

    std::vector<ProductoArea> productosDeLinea(int64_t lineaID, int64_t areaID);
    // Reemplaza de una vez lo asignado al área: primero la quita de todos sus productos.
    void asignaProductos(int64_t areaID, const QString& area,
                         const std::vector<int64_t>& productos);

    Consulta ConsultaAreasComida;
    Consulta NumeroNodosXArea;
    Consulta EliminaAreaSeleccionada;
    Consulta InsertaArea;
    Consulta AreaIDInsertada;
    Consulta EditaArea;
    Consulta ConsultarNodo;
    Consulta ValidaClaveNodo;

private:
    ConexionBD& conexion_;
    const Sesion& sesion_;
};

} // namespace cajaplex
