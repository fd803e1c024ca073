#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVariant>

#include "catalog/LectorHojas.h"
#include "datos/Sesion.h"
#include "protocol/Protocolo.h"

namespace cajaplex {

class ConexionBD;
class ConexionDatos;

// El catálogo que recibe los renglones de la hoja.
enum class TipoImportacion { Ninguno, Clientes, Productos, Proveedores };

inline constexpr const char* MensajeSinTipoImportacion = "Debe seleccionar un tipo de importación";
inline constexpr const char* MensajeSinRegistros = "No hay registros por introducir";
inline constexpr const char* ModuloImportador = "Catálogos -> Importador de Excel";
// La clave de un producto y el nombre de un cliente o proveedor no pasan de aquí.
inline constexpr int LargoClaveProducto = 50;
inline constexpr int LargoNombre = 255;
inline constexpr int LargoRfc = 13;

// "Clientes", "Productos", "Proveedores", en el orden en que se ofrecen.
const QStringList& nombresTiposImportacion();
// Las columnas que la hoja debe traer, en el orden en que se buscan.
QStringList columnasImportacion(TipoImportacion tipo);
// Lo que impide importar, con el mensaje del sistema y en su orden: sin tipo, la primera columna
// que falta, sin renglones de datos. nullopt si se puede importar.
std::optional<QString> revisaImportacion(TipoImportacion tipo, const Hoja& hoja);

// Una celda de bandera: 1/0, SI/NO, SÍ/NO, TRUE/FALSE, VERDADERO/FALSO, X/vacía (sin distinguir
// mayúsculas). nullopt si no es ninguna.
std::optional<bool> banderaDeCelda(const QVariant& celda);
// Una celda numérica: número, o texto con separadores de miles y signo de pesos; vacía es 0.
std::optional<double> numeroDeCelda(const QVariant& celda);

struct RenglonRechazado {
    int renglon = 0; // número en la hoja
    QString motivo;
};

struct ResumenImportacion {
    int insertados = 0;
    int actualizados = 0;
    QStringList nombresCreados; // "Línea BEBIDAS", "Unidad CAJA", "Estado JALISCO"
    std::vector<RenglonRechazado> rechazados;
    int procesados = 0; // renglones de la hoja ya atendidos (escritos o rechazados)

    // Los renglones del resumen, para mostrarlo.
    QStringList texto() const;
};

// Importa los renglones de una hoja al catálogo elegido de la empresa de la sesión, por lotes:
// cada lote es un viaje y una transacción, así un renglón nunca queda escrito a medias y los
// lotes ya registrados se quedan si se cancela. Un renglón existente (clave del producto; nombre
// más RFC del cliente o proveedor) se actualiza; los demás se insertan. Las líneas, unidades y
// estados que la hoja nombra y faltan se crean una sola vez: los renglones siguientes los
// encuentran.
class ImportacionCatalogo {
public:
    // Renglones por lote: con 2 sentencias por renglón y las altas de nombres cabe en el límite
    // de 1000 del servicio, y un lote tarda poco para atender a tiempo "Cancelar".
    static constexpr int RenglonesPorLote = 250;

    ImportacionCatalogo(ConexionBD& conexion, const Sesion& sesion, TipoImportacion tipo,
                        const Hoja& hoja);

    void renglonesPorLote(int renglones) { porLote_ = renglones > 0 ? renglones : 1; }
    // Lee una sola vez las líneas, unidades y estados, y la moneda y clave SAT de la empresa.
    // Lanza ErrorServicio.
    void preparaCatalogos();
    // Registra el lote siguiente; falso cuando ya no quedan renglones. Un renglón que la base
    // rechaza se aparta con su motivo y el lote se repite sin él. Un error del servicio que no es
    // de un renglón sale como ErrorServicio: lo registrado hasta ahí se queda.
    bool importaLote();
    bool terminada() const { return siguiente_ >= renglones_.size(); }
    int total() const { return static_cast<int>(renglones_.size()); }
    // El número en la hoja del siguiente renglón por importar (0 al terminar).
    int numeroSiguiente() const;
    const ResumenImportacion& resumen() const { return resumen_; }
    // Recibe las sentencias de cada lote antes de enviarlo, sin la de la bitácora (para medir la
    // misma escritura en proceso).
    void observaLotes(std::function<void(const std::vector<protocolo::Sentencia>&)> observa) {
        observa_ = std::move(observa);
    }

private:
    enum class Catalogo { Lineas, Unidades, Estados };
    struct Nombre {
        Catalogo catalogo;
        QString nombre;
    };
    struct Preparado {
        std::vector<protocolo::Parametro> parametros;   // los de las columnas, en orden
        std::vector<std::pair<size_t, Nombre>> nombres; // columna que lleva el ID de un nombre
        QString motivo;                                 // no vacío: rechazado
    };
    struct Pendiente {
        Nombre nombre;
        size_t alta;     // sentencia que lo inserta si falta
        size_t consulta; // sentencia que devuelve su ID
    };

    Preparado prepara(const RenglonHoja& renglon) const;
    QHash<QString, int64_t>& mapa(Catalogo catalogo);
    void leeCatalogo(Catalogo catalogo);
    size_t agregaAltaNombre(std::vector<protocolo::Sentencia>& lote, const Nombre& nombre);

    ConexionBD& conexion_;
    const Sesion& sesion_;
    TipoImportacion tipo_;
    const Hoja& hoja_;
    int porLote_ = RenglonesPorLote;
    std::vector<int> columnas_; // índice en la hoja de cada columna del tipo
    std::vector<Preparado> renglones_;
    size_t siguiente_ = 0;
    QHash<QString, int64_t> lineas_;
    QHash<QString, int64_t> unidades_;
    QHash<QString, int64_t> estados_;
    int64_t moneda_ = 0;
    QString claveSatEmpresa_;
    std::string sqlActualiza_;
    std::string sqlInserta_;
    ResumenImportacion resumen_;
    std::function<void(const std::vector<protocolo::Sentencia>&)> observa_;
};

// Los rechazados con su número de renglón y su motivo, más sus celdas, en un .csv (UTF-8, comas)
// que se puede corregir e importar otra vez. Vacío si lo escribió; si no, la causa.
QString guardaRechazados(const Hoja& hoja, const ResumenImportacion& resumen, const QString& ruta);

// Escribe el catálogo de productos (o los de una línea; TodasLasLineas: todos) en un .xlsx con las
// mismas columnas que lee la importación de productos, así lo exportado se importa sin cambios.
// Devuelve cuántos productos escribió; lanza ErrorServicio si no pudo leerlos y ErrorHoja si no
// pudo escribir.
int exportaCatalogoProductos(ConexionDatos& conexion, int64_t empresaID, int64_t lineaID,
                             const QString& ruta);

} // namespace cajaplex
