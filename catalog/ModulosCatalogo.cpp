#include "catalog/ModulosCatalogo.h"

#include "catalog/ExportarCatalogoProductos.h"
#include "catalog/ImportadorExcel.h"
#include "catalog/IncrementoPrecios.h"
#include "catalog/Kits.h"
#include "catalog/Productos.h"
#include "catalog/Rangos.h"
#include "catalog/Unidades.h"
#include "catalog/UtileriasProductos.h"
#include "catalog/ValorInventario.h"
#include "pantallas/RegistroModulos.h"

namespace cajaplex {

void registraModulosCatalogo() {
    const QString catalogos = QStringLiteral("Catálogos e Inventarios");
    const QString utilerias = QString::fromUtf8(GrupoUtileriasProductos);
    RegistroModulos::registra({catalogos, QStringLiteral("Productos"),
                               QStringLiteral("Catálogo de Productos"), QStringLiteral("Productos"),
                               [](const Sesion& s) -> QWidget* { return new TProductosF(s); }});
    RegistroModulos::registra({catalogos, QStringLiteral("Unidades"),
                               QStringLiteral("Unidades de Medida"), QStringLiteral("Unidades"),
                               [](const Sesion& s) -> QWidget* { return new TUnidadesF(s); }});
    RegistroModulos::registra({catalogos, QStringLiteral("Rangos"),
                               QStringLiteral("Rangos de Precios"),
                               QStringLiteral("IncrementoPrecios"),
                               [](const Sesion& s) -> QWidget* { return new TRangosF(s); }});
    RegistroModulos::registra(
        {catalogos, QStringLiteral("Kits"), QStringLiteral("Artículos Compuestos (Kits)"),
         QStringLiteral("Kits"), [](const Sesion& s) -> QWidget* { return new TKitsF(s); }});
    RegistroModulos::registra(
        {catalogos, QStringLiteral("UtileriasProductos"), QStringLiteral("Utilerías de Productos"),
         QStringLiteral("Configuracion"),
         [](const Sesion& s) -> QWidget* { return new TUtileriasProductosF(s); }});
    // Las utilerías: no van en el menú principal sino en "Utilerías de Productos".
    RegistroModulos::registra(
        {utilerias, QStringLiteral("IncrementoPrecios"), QStringLiteral("Incremento de Precios"),
         QStringLiteral("IncrementoPrecios"),
         [](const Sesion& s) -> QWidget* { return new TIncrementoPreciosF(s); }});
    // El kardex de un producto se consulta desde el catálogo, donde se elige el producto.
    RegistroModulos::registra({utilerias, QStringLiteral("KardexMovimientos"),
                               QStringLiteral("Kardex de Movimientos"), QStringLiteral("Kardex"),
                               [](const Sesion& s) -> QWidget* { return new TProductosF(s); },
                               QStringLiteral("Catálogo de Productos")});
    RegistroModulos::registra(
        {utilerias, QStringLiteral("ValorInventario"), QStringLiteral("Valor de Inventario"),
         QStringLiteral("ValorInventario"),
         [](const Sesion& s) -> QWidget* { return new TValorInventarioF(s); }});
    RegistroModulos::registra(
        {utilerias, QStringLiteral("ExportarCatalogo"), QStringLiteral("Exportar Catálogo"),
         QStringLiteral("Exportar"),
         [](const Sesion& s) -> QWidget* { return new TExportarCatalogoProductosF(s); }});
    RegistroModulos::registra(
        {catalogos, QStringLiteral("ImportadorExcel"), QStringLiteral("Importador de Excel"),
         QStringLiteral("Importar"),
         [](const Sesion& s) -> QWidget* { return new TImportadorExcelF(s); }});
}

} // namespace cajaplex
