# Unidades de medida, rangos de precios y kits: pantallas contra el servicio real.
foreach(prueba UnidadesTest RangosTest KitsTest)
    cajaplex_prueba(${prueba} FUENTES ${prueba}.cpp PruebaUnidadesRangos.h ETIQUETA gui
                    LIBRERIAS cajaplex_unidades_rangos_pantallas cajaplex_fixture_pantallas)
endforeach()
