#include "pantallas/HojaEstilo.h"

#include <algorithm>

#include <QApplication>
#include <QColor>
#include <QDate>
#include <QDateEdit>
#include <QEvent>
#include <QFile>
#include <QFont>
#include <QLabel>
#include <QPainter>
#include <QPalette>
#include <QPointer>
#include <QProxyStyle>
#include <QPushButton>
#include <QStyle>
#include <QStyleFactory>
#include <QStyleOptionButton>
#include <QStylePainter>
#include <QWidget>

namespace cajaplex {
namespace {

// Fusion con medidas de pantalla táctil que la hoja de estilo no alcanza: renglones de 36 px en
// tablas, listas y árboles, e iconos de 24 px en botones y pestañas (los de 16 se pierden en un
// botón de 44 px). La altura de los renglones va aquí y no en la hoja porque una lista llenada
// antes de mostrarse acomoda sus renglones antes de leer la hoja y luego se enciman.
class EstiloCajaplex : public QProxyStyle {
public:
    static constexpr int AltoRenglon = 36;

    EstiloCajaplex() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

    QSize sizeFromContents(ContentsType tipo, const QStyleOption* opcion, const QSize& contenido,
                           const QWidget* control) const override {
        QSize tamano = QProxyStyle::sizeFromContents(tipo, opcion, contenido, control);
        if (tipo == CT_ItemViewItem) tamano.setHeight(std::max(tamano.height(), AltoRenglon));
        return tamano;
    }

    int pixelMetric(PixelMetric metrica, const QStyleOption* opcion,
                    const QWidget* control) const override {
        switch (metrica) {
        case PM_HeaderDefaultSectionSizeVertical:
            return AltoRenglon;
        case PM_ButtonIconSize:
        case PM_TabBarIconSize:
            return 24;
        default:
            return QProxyStyle::pixelMetric(metrica, opcion, control);
        }
    }
};

// La paleta repite los colores de la hoja para lo que la hoja no pinta (menús nativos,
// calendario emergente, texto de ayuda).
QPalette paleta() {
    const QColor texto(0x1F, 0x29, 0x33);
    const QColor tenue(0x9A, 0xA5, 0xB1);
    const QColor acento(ColorAcento);
    QPalette p;
    p.setColor(QPalette::Window, QColor(0xF4, 0xF6, 0xF9));
    p.setColor(QPalette::WindowText, texto);
    p.setColor(QPalette::Base, Qt::white);
    p.setColor(QPalette::AlternateBase, QColor(0xF7, 0xF9, 0xFC));
    p.setColor(QPalette::Text, texto);
    p.setColor(QPalette::Button, Qt::white);
    p.setColor(QPalette::ButtonText, texto);
    p.setColor(QPalette::Highlight, acento);
    p.setColor(QPalette::HighlightedText, Qt::white);
    p.setColor(QPalette::ToolTipBase, texto);
    p.setColor(QPalette::ToolTipText, Qt::white);
    p.setColor(QPalette::PlaceholderText, tenue);
    p.setColor(QPalette::Link, acento);
    p.setColor(QPalette::LinkVisited, QColor(0x0B, 0x5C, 0xAD));
    for (auto rol : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        p.setColor(QPalette::Disabled, rol, tenue);
    return p;
}

// QPushButton siempre pone el icono a la izquierda y la hoja de estilo no lo cambia (tampoco un
// estilo propio: la hoja dibuja el texto por su cuenta). El mosaico se pinta aquí: el marco lo
// pone la hoja y encima va el icono centrado con el texto debajo, en dos renglones si no cabe.
class PintorMosaico : public QObject {
public:
    using QObject::QObject;

    bool eventFilter(QObject* objeto, QEvent* evento) override {
        auto* boton = qobject_cast<QPushButton*>(objeto);
        if (evento->type() != QEvent::Paint || !boton ||
            boton->property("estilo").toString() != QLatin1String("mosaico"))
            return false;
        pinta(boton);
        return true;
    }

private:
    static void pinta(QPushButton* boton) {
        QStyleOptionButton opcion;
        opcion.initFrom(boton);
        opcion.state |= boton->isDown() ? QStyle::State_Sunken : QStyle::State_Raised;
        if (boton->isChecked()) opcion.state |= QStyle::State_On;
        opcion.text = boton->text();
        opcion.icon = boton->icon();
        opcion.iconSize = boton->icon().isNull() ? QSize() : boton->iconSize();

        QStylePainter pintor(boton);
        pintor.drawControl(QStyle::CE_PushButtonBevel, opcion);
        const QRect area =
            boton->style()->subElementRect(QStyle::SE_PushButtonContents, &opcion, boton);
        constexpr int separacion = 8;
        const int flags = Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap;
        const QRect texto = pintor.fontMetrics().boundingRect(area, flags, opcion.text);
        const int alto = opcion.iconSize.height() + separacion + texto.height();
        int y = area.top() + std::max(0, (area.height() - alto) / 2);
        const bool activo = opcion.state & QStyle::State_Enabled;
        if (!opcion.iconSize.isEmpty()) {
            pintor.drawPixmap(area.left() + (area.width() - opcion.iconSize.width()) / 2, y,
                              opcion.icon.pixmap(opcion.iconSize, boton->devicePixelRatio(),
                                                 activo ? QIcon::Normal : QIcon::Disabled));
            y += opcion.iconSize.height() + separacion;
        }
        boton->style()->drawItemText(
            &pintor, QRect(area.left(), y, area.width(), area.bottom() - y + 1), flags,
            opcion.palette, activo, opcion.text, QPalette::ButtonText);
    }
};

QObject* pintorMosaico() {
    static QPointer<PintorMosaico> pintor;
    if (!pintor) pintor = new PintorMosaico(QCoreApplication::instance());
    return pintor;
}

} // namespace

QString hojaEstilo() {
    QFile archivo(QStringLiteral(":/estilo/Cajaplex.qss"));
    if (!archivo.open(QIODevice::ReadOnly | QIODevice::Text)) return {};
    return QString::fromUtf8(archivo.readAll());
}

void aplicaHojaEstilo(QApplication& aplicacion) {
    QApplication::setStyle(new EstiloCajaplex);
    QApplication::setPalette(paleta());
    QFont fuente(QStringLiteral("DejaVu Sans"));
    fuente.setStyleHint(QFont::SansSerif);
    fuente.setPointSize(11);
    QApplication::setFont(fuente);
    aplicacion.setStyleSheet(hojaEstilo());
}

void ponEstilo(QWidget* control, const char* estilo) {
    control->setProperty("estilo", QString::fromLatin1(estilo));
    if (qobject_cast<QPushButton*>(control) && qstrcmp(estilo, "mosaico") == 0)
        control->installEventFilter(pintorMosaico());
    // Qt solo evalúa los selectores de propiedad al pulir el control.
    if (control->testAttribute(Qt::WA_WState_Polished)) {
        control->style()->unpolish(control);
        control->style()->polish(control);
        control->update();
    }
}

QIcon icono(const QString& nombre) {
    const QString ruta = QStringLiteral(":/imagenes/%1.svg").arg(nombre);
    // Un nombre sin imagen da un icono nulo, sin las advertencias del motor SVG.
    if (!QFile::exists(ruta)) return {};
    return QIcon(ruta);
}

QPixmap imagen(const QString& nombre, const QSize& tamano) {
    QPixmap dibujo = icono(nombre).pixmap(tamano, 1.0);
    if (dibujo.isNull() || dibujo.size() == tamano) return dibujo;
    // QIcon conserva la proporción; quien pide otra forma recibe la imagen centrada.
    QPixmap lienzo(tamano);
    lienzo.fill(Qt::transparent);
    QPainter pintor(&lienzo);
    pintor.drawPixmap((tamano.width() - dibujo.width()) / 2,
                      (tamano.height() - dibujo.height()) / 2, dibujo);
    return lienzo;
}

QLabel* creaEtiqueta(const QString& texto, const QString& nombre, const char* estilo,
                     QWidget* padre) {
    auto* l = new QLabel(texto, padre);
    l->setObjectName(nombre);
    l->setTextFormat(Qt::PlainText);
    if (estilo) ponEstilo(l, estilo);
    return l;
}

QPushButton* creaBoton(const QString& imagen, const QString& texto, const QString& nombre,
                       const char* estilo, QWidget* padre) {
    auto* b = new QPushButton(icono(imagen), texto, padre);
    b->setObjectName(nombre);
    b->setMinimumHeight(AltoControl);
    if (estilo) ponEstilo(b, estilo);
    return b;
}

QDateEdit* creaCampoFecha(const QString& nombre, const QString& accesible, QWidget* padre) {
    auto* f = new QDateEdit(QDate::currentDate(), padre);
    f->setObjectName(nombre);
    f->setAccessibleName(accesible);
    f->setDisplayFormat(QStringLiteral("dd/MM/yyyy"));
    f->setCalendarPopup(true);
    f->setMinimumHeight(AltoControl);
    f->setMinimumWidth(170);
    return f;
}

} // namespace cajaplex
