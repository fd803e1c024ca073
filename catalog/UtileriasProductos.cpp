#include "UtileriasProductos.h"

#include <QGridLayout>
#include <QLabel>
#include <QMetaMethod>
#include <QPushButton>
#include <QVBoxLayout>

#include "AsignaMonederoElectronico.h"
#include "HojaEstilo.h"
#include "IncrementoPrecios.h"
#include "Productos.h"
#include "Sonidos.h"
#include "ValorInventario.h"

namespace cajaplex {
namespace {

// Mosaicos como los del menú principal: grandes para el dedo.
constexpr int kColumnas = 3;
const QSize kMosaico(220, 150);

} // namespace

const std::vector<TUtileriasProductosF::Entrada>& TUtileriasProductosF::entradas() {
    // El kardex de un producto se consulta desde el catálogo, donde se elige el producto.
    static const std::vector<Entrada> lista = {
        {QStringLiteral("IncrementoPrecios"), QStringLiteral("Incremento de Precios"),
         QStringLiteral("IncrementoPrecios"),
         [](const Sesion& s) -> QWidget* { return new TIncrementoPreciosF(s); }},
        {QStringLiteral("KardexMovimientos"), QStringLiteral("Kardex de Movimientos"),
         QStringLiteral("Kardex"), [](const Sesion& s) -> QWidget* { return new TProductosF(s); }},
        {QStringLiteral("ValorInventario"), QStringLiteral("Valor de Inventario"),
         QStringLiteral("ValorInventario"),
         [](const Sesion& s) -> QWidget* { return new TValorInventarioF(s); }},
        {QStringLiteral("AsignaMonedero"), QStringLiteral("Asigna Monedero Electrónico"),
         QStringLiteral("Monedero"),
         [](const Sesion& s) -> QWidget* { return new TAsignaMonederoElectronicoF(s); }},
    };
    return lista;
}

TUtileriasProductosF::TUtileriasProductosF(const Sesion& sesion, QWidget* padre)
    : QWidget(padre), sesion_(sesion) {
    setObjectName(QStringLiteral("UtileriasProductos"));
    setWindowTitle(QStringLiteral("Utilerías de Productos"));

    auto* indicacion = new QLabel(QStringLiteral("Seleccione una Utilería"), this);
    ponEstilo(indicacion, "subtitulo");
    auto* rejilla = new QGridLayout;
    rejilla->setSpacing(16);
    int i = 0;
    for (const Entrada& e : entradas()) {
        auto* boton = new QPushButton(icono(e.imagen), e.titulo, this);
        boton->setObjectName(QStringLiteral("Boton") + e.nombre);
        boton->setIconSize(QSize(56, 56));
        boton->setFixedSize(kMosaico);
        ponEstilo(boton, "mosaico");
        connect(boton, &QPushButton::clicked, this, [this, &e] { abre(e); });
        rejilla->addWidget(boton, i / kColumnas, i % kColumnas);
        ++i;
    }
    rejilla->setColumnStretch(kColumnas, 1);

    auto* capa = new QVBoxLayout(this);
    capa->setContentsMargins(24, 16, 24, 24);
    capa->setSpacing(12);
    capa->addWidget(indicacion);
    capa->addLayout(rejilla);
    capa->addStretch(1);
}

void TUtileriasProductosF::abre(const Entrada& entrada) {
    Sonidos::reproduce(Sonido::Click);
    QWidget* pantalla = entrada.crea(sesion_);
    if (isSignalConnected(QMetaMethod::fromSignal(&TUtileriasProductosF::abreModulo))) {
        emit abreModulo(pantalla, entrada.titulo);
        return;
    }
    pantalla->setParent(this, Qt::Window);
    pantalla->setAttribute(Qt::WA_DeleteOnClose);
    pantalla->resize(1280, 720);
    pantalla->show();
}

} // namespace cajaplex
