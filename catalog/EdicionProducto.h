#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include <QByteArray>
#include <QString>

#include "catalog/CatalogoUnidades.h"
#include "datos/Consulta.h"
#include "datos/Sesion.h"

namespace cajaplex {

class ConexionBD;

// Lo que ve el usuario cuando otra estación eliminó el producto que editaba.
inline constexpr const char* MensajeProductoEliminado =
    "El Producto ya no existe; otra estación lo eliminó. No se guardó nada.";

// Un renglón de Productos como lo captura el editor. id 0: producto nuevo.
struct ProductoEditado {
    int64_t id = 0;
    int64_t linea = 0; // solo se escribe al dar de alta
    QString clave;
    QString producto;
    int64_t unidad = 0; // 0: sin elegir
    int64_t moneda = 0; // 0: sin elegir
    QString claveSAT;
    // En un alta, la existencia inicial. En un cambio nunca se escribe tal cual: se guarda la
    // diferencia con la que se leyó al abrir (diferenciaExistencia) sobre la existencia actual.
    double existencia = 0.0;
    double pCompra = 0.0;
    bool manejaInventarios = false;
    bool requiereAutorizacionVenta = false;
    bool manejaSeries = false;
    bool esPaquete = false;
    bool recurrente = false;
    bool caduca = false;
    bool mostrarKioskoPV = false;
    bool utilizaBascula = false;
    std::array<double, 5> precios{}; // precio, precio2 ... precio5
    bool precioAbierto = false;
    double porcentajeImpuesto = 0.0; // por ciento: 16 es 16 %
    double ieps = 0.0;               // por ciento
    QString datoAdicional1;
    QString codigoBarra;
    bool bonificaPuntos = false;
    double porcentajeBonificacion = 0.0;
    double maximo = 0.0;
    double minimo = 0.0;
    double peso = 0.0;
    bool activo = true;

    bool esNuevo() const { return id == 0; }
};

// La foto principal (posición 1) tal como queda al guardar.
struct FotoEditada {
    bool guardada = false; // el producto ya tenía foto al abrirlo
    bool cambiada = false; // se eligió otra, se giró o se quitó
    QByteArray foto;       // vacía con `cambiada`: se quitó
    QByteArray miniatura;
};

struct MonedaProducto {
    int64_t id = 0;
    QString descripcion;
    QString abreviacion;
};

// Lo que la empresa propone para un producto nuevo (Configura).
struct ValoresEmpresa {
    int64_t unidad = 0;
    int64_t moneda = 0;
    QString claveSAT;
    bool autoNumera = false;
    int64_t idProducto = 1; // el siguiente número: el ID más alto de la empresa más uno
};

// Un producto leído con ConsultarProducto, con su foto si tiene.
struct ProductoConsultado {
    ProductoEditado producto;
    QByteArray foto;
};

// Lectura, revisión y guardado de un producto de la empresa de la sesión, sin widgets.
class EdicionProducto {
public:
    EdicionProducto(ConexionBD& conexion, const Sesion& sesion);

    std::vector<UnidadMedida> unidades();  // también fija valores().unidad
    std::vector<MonedaProducto> monedas(); // también fija el resto de valores()
    const ValoresEmpresa& valores() const { return valores_; }
    // nullopt si el producto no existe en la empresa.
    std::optional<ProductoConsultado> consulta(int64_t productoID);

    // Las revisiones antes de guardar, en su orden; el mensaje de la primera que no pasa.
    std::optional<QString> revisa(const ProductoEditado& producto);

    // Alta o cambio del producto, su foto y su bitácora en una sola transacción. `anterior` es el
    // producto como se leyó: para la bitácora y para la existencia, que en un cambio se guarda
    // como ajuste (existencia = existencia + diferencia) solo si el usuario la cambió; así no
    // deshace lo que otra estación vendió o recibió mientras el editor estaba abierto. Si otra
    // estación eliminó el producto lanza RegistroInexistente (MensajeProductoEliminado) y no
    // guarda nada. Devuelve el ID del producto.
    int64_t guarda(const ProductoEditado& producto, const FotoEditada& foto,
                   const ProductoEditado& anterior = {});

    Consulta ConsultarProducto;
    Consulta ConsultaUnidadesMedida;
    Consulta ConsultaMonedas;
    Consulta ValidaClaveProducto;
    Consulta RegistraProducto;
    Consulta ActualizaProducto;
    Consulta AjustaExistencia;
    Consulta ProductoIDInsertado;
    Consulta RegistrarFotoProducto;
    Consulta ActualizaFoto;
    Consulta EliminaFoto;

private:
    void asignaColumnas(Consulta& consulta, const ProductoEditado& p);

    ConexionBD& conexion_;
    const Sesion& sesion_;
    ValoresEmpresa valores_;
};

// Lo que el usuario cambió la existencia de un producto que ya existía: 0 en un alta, sin cambio
// o si `leido` no es ese mismo producto como se leyó.
double diferenciaExistencia(const ProductoEditado& capturado, const ProductoEditado& leido);

// Lo tecleado en un campo decimal, como se guarda: vacío es 0; acepta separadores de miles.
double decimalDeTexto(const QString& texto);
// Un número para su campo: dos decimales como mínimo, hasta seis si los trae ("0.00", "26.50",
// "1.375").
QString textoDecimal(double valor);

} // namespace cajaplex
