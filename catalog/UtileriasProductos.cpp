#include "catalog/UtileriasProductos.h"

#include <QGridLayout>
#include <QLabel>
#include <QMetaMethod>
#include <QPushButton>
#include <QVBoxLayout>

#include "pantallas/HojaEstilo.h"
#include "pantallas/RegistroModulos.h"
#include "pantallas/Sonidos.h"

namespace cajaplex {
namespace {

// Mosaicos como los del menú principal: grandes para el dedo.
constexpr int kColumnas = 3;
const QSize kMosaico(220, 150);

} // namespace

const QStringList& TUtileriasProductosF::nombresEntradas() {
    // El monedero electrónico lo registra ventas; aparece aquí también, como en el sistema.
    static const QStringList nombres = {
        QStringLiteral("IncrementoPrecios"), QStringLiteral("KardexMovimientos"),
        QStringLiteral("ValorInventario"), QStringLiteral("ExportarCatalogo"),
        QStringLiteral("AsignaMonedero")};
    return nombres;
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
    for (const QString& nombre : nombresEntradas()) {
        const EntradaMenu* entrada = RegistroModulos::busca(nombre);
        if (entrada == nullptr || !entrada->visible(sesion_)) continue;
        const EntradaMenu& e = *entrada;
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

void TUtileriasProductosF::abre(const EntradaMenu& entrada) {
    Sonidos::reproduce(Sonido::Click);
    QWidget* pantalla = RegistroModulos::crea(entrada, sesion_, this);
    if (pantalla == nullptr) return;
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
