# Utilerías de precios del catálogo.
#   cajaplex_catalogo_precios            incremento de precios y valor de inventario, sin widgets
#                                        (con la hoja de cálculo de la exportación)
#   cajaplex_catalogo_precios_pantallas  TIncrementoPreciosF, TValorInventarioF
#   cajaplex_utilerias_productos         TUtileriasProductosF, que abre también pantallas de
#                                        sales/ (el objetivo se resuelve al generar)
if(NOT TARGET PkgConfig::XLSXWRITER)
    pkg_check_modules(XLSXWRITER REQUIRED IMPORTED_TARGET xlsxwriter)
endif()

add_library(cajaplex_catalogo_precios STATIC
    PreciosProductos.cpp PreciosProductos.h
    InventarioValorizado.cpp InventarioValorizado.h)
target_include_directories(cajaplex_catalogo_precios PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(cajaplex_catalogo_precios
    PUBLIC cajaplex_catalogo
    PRIVATE PkgConfig::XLSXWRITER)

add_library(cajaplex_catalogo_precios_pantallas STATIC
    IncrementoPrecios.cpp IncrementoPrecios.h
    ValorInventario.cpp ValorInventario.h)
target_link_libraries(cajaplex_catalogo_precios_pantallas
    PUBLIC cajaplex_catalogo_precios cajaplex_catalogo_pantallas)

add_library(cajaplex_utilerias_productos STATIC UtileriasProductos.cpp UtileriasProductos.h)
target_link_libraries(cajaplex_utilerias_productos
    PUBLIC cajaplex_catalogo_precios_pantallas cajaplex_ventas_pantallas)
