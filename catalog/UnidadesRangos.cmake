# Unidades de medida, rangos de precios y kits.
#   cajaplex_unidades_rangos            unidades, rangos y composición de kits sin widgets; solo
#                                       Qt Core (lo enlazan las pruebas de servicio)
#   cajaplex_unidades_rangos_pantallas  TUnidadesF, TRangosF y TKitsF con sus ediciones
add_library(cajaplex_unidades_rangos STATIC
    CatalogoUnidades.cpp CatalogoUnidades.h
    RangosPrecios.cpp RangosPrecios.h
    ComposicionKits.cpp ComposicionKits.h)
target_link_libraries(cajaplex_unidades_rangos PUBLIC cajaplex_catalogo)

# PrintSupport: la hoja del kit va a la impresora predeterminada.
find_package(Qt6 REQUIRED COMPONENTS Widgets PrintSupport)
add_library(cajaplex_unidades_rangos_pantallas STATIC
    Unidades.cpp Unidades.h
    Rangos.cpp Rangos.h
    Kits.cpp Kits.h)
target_link_libraries(cajaplex_unidades_rangos_pantallas
    PUBLIC cajaplex_unidades_rangos cajaplex_catalogo_pantallas
    PRIVATE cajaplex_impresion Qt6::PrintSupport)
