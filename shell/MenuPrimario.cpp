#include "shell/MenuPrimario.h"

#include <QDate>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include "pantallas/HojaEstilo.h"
#include "pantallas/RegistroModulos.h"
#include "pantallas/Sonidos.h"

namespace cajaplex {
namespace {

// Los grupos, en el orden en que se muestran.
const QStringList kGrupos = {
    QStringLiteral("Punto de Venta"),       QStringLiteral("Restaurante"),
    QStringLiteral("Cotizaciones"),         QStringLiteral("Catálogos e Inventarios"),
    QStringLiteral("Compras y Cuentas"),    QStringLiteral("Usuarios y Bitácoras"),
    QStringLiteral("Clientes y Catálogos"), QStringLiteral("Impresión y Estadísticas")};

// Mosaicos de tamaño fijo: cinco caben a 1366 de ancho y se tocan con el dedo sin fallar.
constexpr int kColumnas = 5;
const QSize kMosaico(200, 140);

} // namespace

TMenuPrimarioF::TMenuPrimarioF(const Sesion& sesion, QWidget* padre)
    : QWidget(padre), sesion_(sesion) {
    setObjectName(QStringLiteral("MenuPrimario"));
    auto* capa = new QVBoxLayout(this);
    capa->setContentsMargins(0, 0, 0, 0);
    capa->setSpacing(0);
    capa->addWidget(creaEncabezado());
    auto* desplazable = new QScrollArea(this);
    desplazable->setWidgetResizable(true);
    desplazable->setFrameShape(QFrame::NoFrame);
    desplazable->setWidget(creaModulos());
    capa->addWidget(desplazable, 1);
}

QWidget* TMenuPrimarioF::creaEncabezado() {
    auto* barra = new QFrame(this);
    ponEstilo(barra, "barra");

    auto* logo = new QLabel(barra);
    logo->setObjectName(QStringLiteral("LogotipoEmpresa"));
    QPixmap pixmap;
    if (sesion_.Logotipo1.isEmpty() || !pixmap.loadFromData(sesion_.Logotipo1)) {
        pixmap = imagen(QStringLiteral("LogotipoVacio"), QSize(56, 56));
        logo->setProperty("imagen", QStringLiteral("LogotipoVacio"));
    } else {
        pixmap = pixmap.scaled(56, 56, Qt::KeepAspectRatio, Qt::SmoothTransformation);
        logo->setProperty("imagen", QStringLiteral("Logotipo1"));
    }
    logo->setPixmap(pixmap);
    logo->setFixedSize(56, 56);

    auto* empresa = new QLabel(sesion_.NombreEmpresa, barra);
    empresa->setObjectName(QStringLiteral("NombreEmpresa"));
    ponEstilo(empresa, "titulo");
    auto* rfc = new QLabel(sesion_.Rfc, barra);
    rfc->setObjectName(QStringLiteral("RfcEmpresa"));
    auto* usuario = new QLabel(sesion_.NombreDeUsuario, barra);
    usuario->setObjectName(QStringLiteral("NombreDeUsuario"));
    ponEstilo(usuario, "subtitulo");
    auto* fecha = new QLabel(
        QLocale(QLocale::Spanish, QLocale::Mexico)
            .toString(QDate::currentDate(), QStringLiteral("dddd d 'de' MMMM 'de' yyyy")),
        barra);
    auto* salir = new QPushButton(icono(QStringLiteral("CerrarSesion")),
                                  QStringLiteral("Cerrar Sesión"), barra);
    salir->setObjectName(QStringLiteral("BotonCerrarSesion"));
    ponEstilo(salir, "peligro");
    connect(salir, &QPushButton::clicked, this, &TMenuPrimarioF::cerrarSesion);

    auto* datosEmpresa = new QVBoxLayout;
    datosEmpresa->addWidget(empresa);
    datosEmpresa->addWidget(rfc);
    auto* datosUsuario = new QVBoxLayout;
    datosUsuario->addWidget(usuario, 0, Qt::AlignRight);
    datosUsuario->addWidget(fecha, 0, Qt::AlignRight);

    auto* capa = new QHBoxLayout(barra);
    capa->addWidget(logo);
    capa->addLayout(datosEmpresa, 1);
    capa->addLayout(datosUsuario);
    capa->addSpacing(16);
    capa->addWidget(salir);
    return barra;
}

QWidget* TMenuPrimarioF::creaModulos() {
    auto* contenido = new QWidget;
    auto* capa = new QVBoxLayout(contenido);
    capa->setContentsMargins(24, 16, 24, 24);
    capa->setSpacing(12);
    bool hayModulos = false;
    for (const QString& grupo : kGrupos) {
        QList<const EntradaMenu*> delGrupo;
        for (const EntradaMenu& m : RegistroModulos::entradas())
            if (m.grupo == grupo && m.visible(sesion_)) delGrupo << &m;
        if (delGrupo.isEmpty()) continue;
        hayModulos = true;

        auto* encabezado = new QLabel(grupo, contenido);
        ponEstilo(encabezado, "subtitulo");
        capa->addWidget(encabezado);
        auto* rejilla = new QGridLayout;
        rejilla->setSpacing(12);
        for (int i = 0; i < delGrupo.size(); ++i) {
            const EntradaMenu* m = delGrupo[i];
            auto* boton = new QPushButton(icono(m->imagen), m->titulo, contenido);
            boton->setObjectName(QStringLiteral("Modulo") + m->nombre);
            boton->setIconSize(QSize(48, 48));
            boton->setFixedSize(kMosaico);
            ponEstilo(boton, "mosaico");
            connect(boton, &QPushButton::clicked, this, [this, m] {
                Sonidos::reproduce(Sonido::Click);
                if (QWidget* pantalla = RegistroModulos::crea(*m, sesion_, this))
                    emit abreModulo(pantalla, m->titulo);
            });
            rejilla->addWidget(boton, i / kColumnas, i % kColumnas);
        }
        rejilla->setColumnStretch(kColumnas, 1);
        capa->addLayout(rejilla);
    }
    if (!hayModulos) {
        auto* aviso = new QLabel(QStringLiteral("Su perfil no tiene módulos asignados en esta "
                                                "empresa; consulte al administrador del sistema."),
                                 contenido);
        aviso->setObjectName(QStringLiteral("SinModulos"));
        aviso->setWordWrap(true);
        ponEstilo(aviso, "subtitulo");
        capa->addWidget(aviso);
    }
    capa->addStretch(1);
    return contenido;
}

} // namespace cajaplex
