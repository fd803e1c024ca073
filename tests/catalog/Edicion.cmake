cajaplex_prueba(EdicionProductoTest FUENTES EdicionProductoTest.cpp ETIQUETA servicio
                LIBRERIAS cajaplex_catalogo_edicion cajaplex_fixture_servicio)
# QPdfDocument cuenta las páginas de las etiquetas.
find_package(Qt6 REQUIRED COMPONENTS Pdf)
cajaplex_prueba(ProductosEditaTest FUENTES ProductosEditaTest.cpp ETIQUETA gui
                LIBRERIAS cajaplex_catalogo_pantallas cajaplex_fixture_pantallas Qt6::Pdf)
