#pragma once

#include <functional>

#include <QString>

class QHBoxLayout;
class QWidget;

namespace cajaplex {

class AjustesEstacion;

// La cuadrícula de mosaicos de las pantallas de kiosco del restaurante (el menú de las comandas,
// las tarjetas del monitor de preparación): renglones y columnas que se cambian con cuatro botones
// y que la estación recuerda.
struct CuadriculaKiosko {
    int renglones;
    int columnas;
    int maximo;

    // Lee las claves de la estación, acotadas de 1 al máximo.
    void lee(const AjustesEstacion& ajustes, const QString& claveRenglones,
             const QString& claveColumnas);
    // Cambia (acotado) y guarda; falso si no se pudo escribir el archivo.
    bool cambia(AjustesEstacion& ajustes, const QString& claveRenglones,
                const QString& claveColumnas, int nuevosRenglones, int nuevasColumnas);
};

// Los botones "- Renglones", "+ Renglones", "- Columnas" y "+ Columnas" (MenosRenglones,
// MasRenglones, MenosColumnas, MasColumnas); cada uno llama a `cambio` con lo que suma a los
// renglones y a las columnas.
QHBoxLayout* creaBotonesCuadricula(QWidget* padre, const std::function<void(int, int)>& cambio);

} // namespace cajaplex
