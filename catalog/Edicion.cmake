# Edición de productos.
#   cajaplex_catalogo_edicion  lectura, revisiones y guardado de un producto; solo Qt Core
# TProductosEditaF y las fotos del catálogo (Fotos, también de TAsignaFotoLineaF) van dentro de
# cajaplex_catalogo_pantallas, porque TProductosF abre el editor. El editor hospeda TRangosF, y
# cajaplex_unidades_rangos_pantallas enlaza a su vez cajaplex_catalogo_pantallas: CMake admite el
# ciclo entre bibliotecas estáticas y repite ambas al enlazar.
add_library(cajaplex_catalogo_edicion STATIC EdicionProducto.cpp EdicionProducto.h)
target_link_libraries(cajaplex_catalogo_edicion PUBLIC cajaplex_catalogo)

target_sources(cajaplex_catalogo_pantallas PRIVATE
    ProductosEdita.cpp ProductosEdita.h
    Fotos.cpp Fotos.h)
target_link_libraries(cajaplex_catalogo_pantallas
    PUBLIC cajaplex_catalogo_edicion cajaplex_impresion cajaplex_unidades_rangos_pantallas)
