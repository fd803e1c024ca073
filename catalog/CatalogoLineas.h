#pragma once

#include <cstdint>
#include <vector>

#include <QByteArray>
#include <QString>

#include "datos/Consulta.h"
#include "datos/Sesion.h"

namespace cajaplex {

class ConexionBD;
class Registros;

// Un renglón de ConsultaLineas.
struct LineaProducto {
    int64_t id = 0;
    int64_t padre = 0; // 0 (o nulo) en la raíz
    QString linea;
    QByteArray miniatura;
};

// Una línea en el orden en que se arma el árbol: cada una después de su padre.
struct NodoArbolLineas {
    LineaProducto linea;
    int padre = -1; // índice en el mismo arreglo; -1 en la raíz
};

// Ordena los renglones (que llegan "Order By Padre, linea") para armar el árbol de una pasada:
// recorrido en profundidad, los hermanos en el orden en que llegaron. Una línea cuyo padre no
// existe, o que forma un ciclo, cuelga de la raíz para que nunca se pierda de vista.
std::vector<NodoArbolLineas> ordenaArbolLineas(const std::vector<LineaProducto>& renglones);

// Motivo por el que "Eliminar Nodo" no procede, en el orden en que se revisa.
enum class RechazoEliminarLinea { Ninguno, UnicaLinea, ConSubLineas, ConProductos };

// Las líneas de productos de la empresa de la sesión: consulta y mantenimiento del árbol. Cada
// cambio va en una transacción del servicio con su renglón de bitácora.
class CatalogoLineas {
public:
    CatalogoLineas(ConexionBD& conexion, const Sesion& sesion);

    std::vector<LineaProducto> consulta();
    // Devuelve el ID de la línea nueva.
    int64_t inserta(int64_t padre, const QString& nombre);
    void renombra(int64_t lineaID, const QString& nombre, const QString& anterior);
    // Revisa en la misma transacción que borra, así otra estación no cuela una sublínea o un
    // producto entre la revisión y el borrado.
    RechazoEliminarLinea elimina(int64_t lineaID, const QString& nombre);

    Consulta ConsultaLineas;
    Consulta NumeroProductosXLinea;
    Consulta InsertaLinea;
    Consulta LineaIDInsertada;
    Consulta EditaLinea;
    Consulta EliminaLineaSeleccionada;

private:
    ConexionBD& conexion_;
    const Sesion& sesion_;
    Consulta cuentaLineas_;
};

// Módulo con que las líneas y los productos firman la bitácora.
inline constexpr const char* ModuloCatalogoProductos = "Catálogos -> Productos";

} // namespace cajaplex
