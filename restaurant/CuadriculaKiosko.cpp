#include "restaurant/CuadriculaKiosko.h"

#include <algorithm>

#include <QHBoxLayout>
#include <QPushButton>

#include "datos/AjustesEstacion.h"
#include "pantallas/HojaEstilo.h"

namespace cajaplex {

void CuadriculaKiosko::lee(const AjustesEstacion& ajustes, const QString& claveRenglones,
                           const QString& claveColumnas) {
    renglones = std::clamp(ajustes.valor(claveRenglones, renglones).toInt(), 1, maximo);
    columnas = std::clamp(ajustes.valor(claveColumnas, columnas).toInt(), 1, maximo);
}

bool CuadriculaKiosko::cambia(AjustesEstacion& ajustes, const QString& claveRenglones,
                              const QString& claveColumnas, int nuevosRenglones,
                              int nuevasColumnas) {
    renglones = std::clamp(nuevosRenglones, 1, maximo);
    columnas = std::clamp(nuevasColumnas, 1, maximo);
    ajustes.ponValor(claveRenglones, renglones);
    ajustes.ponValor(claveColumnas, columnas);
    return ajustes.guarda();
}

QHBoxLayout* creaBotonesCuadricula(QWidget* padre, const std::function<void(int, int)>& cambio) {
    auto* capa = new QHBoxLayout;
    const struct {
        const char* nombre;
        const char* texto;
        int renglones;
        int columnas;
    } cambios[] = {{"MenosRenglones", "- Renglones", -1, 0},
                   {"MasRenglones", "+ Renglones", 1, 0},
                   {"MenosColumnas", "- Columnas", 0, -1},
                   {"MasColumnas", "+ Columnas", 0, 1}};
    for (const auto& c : cambios) {
        auto* boton = new QPushButton(QString::fromUtf8(c.texto), padre);
        boton->setObjectName(QString::fromLatin1(c.nombre));
        boton->setMinimumHeight(AltoControl);
        const int dr = c.renglones;
        const int dc = c.columnas;
        QObject::connect(boton, &QPushButton::clicked, padre, [cambio, dr, dc] { cambio(dr, dc); });
        capa->addWidget(boton);
    }
    return capa;
}

} // namespace cajaplex
