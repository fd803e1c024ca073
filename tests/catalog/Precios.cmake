cajaplex_prueba(UtileriasProductosTest FUENTES UtileriasProductosTest.cpp ETIQUETA gui
                LIBRERIAS cajaplex_utilerias_productos cajaplex_fixture_pantallas)
