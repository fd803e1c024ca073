#include "pantallas/DelegadoRenglon.h"

#include <algorithm>

#include <QApplication>
#include <QColor>
#include <QFontMetrics>
#include <QPainter>

#include "pantallas/RolesRenglon.h"

namespace cajaplex {
namespace {

constexpr int kMargen = 10;
constexpr int kEntreLineas = 4;
constexpr int kAltoMinimo = 56; // cómodo para el dedo

QFont negritas(const QFont& base) {
    QFont f = base;
    f.setBold(true);
    return f;
}

} // namespace

DelegadoRenglon::DelegadoRenglon(int tamanoIcono, QObject* padre)
    : QStyledItemDelegate(padre), tamanoIcono_(tamanoIcono) {}

void DelegadoRenglon::paint(QPainter* pintor, const QStyleOptionViewItem& opcion,
                            const QModelIndex& indice) const {
    QStyleOptionViewItem o = opcion;
    initStyleOption(&o, indice);
    const QWidget* vista = o.widget;
    QStyle* estilo = vista ? vista->style() : QApplication::style();
    // Solo el fondo (selección, renglón alterno): el texto y el icono se pintan aquí.
    o.text.clear();
    o.icon = QIcon();
    estilo->drawPrimitive(QStyle::PE_PanelItemViewItem, &o, pintor, vista);

    const bool elegido = o.state.testFlag(QStyle::State_Selected);
    const QColor colorTexto = o.palette.color(elegido ? QPalette::HighlightedText : QPalette::Text);
    QRect area = o.rect.adjusted(kMargen, 0, -kMargen, 0);

    pintor->save();
    if (tamanoIcono_ > 0) {
        const QIcon icono = qvariant_cast<QIcon>(indice.data(Qt::DecorationRole));
        const QRect rectIcono(area.left(), area.top() + (area.height() - tamanoIcono_) / 2,
                              tamanoIcono_, tamanoIcono_);
        if (!icono.isNull())
            icono.paint(pintor, rectIcono, Qt::AlignCenter,
                        elegido ? QIcon::Selected : QIcon::Normal);
        area.setLeft(rectIcono.right() + kMargen + 1);
    }

    const QFont fuente1 = negritas(o.font);
    const QFontMetrics medida1(fuente1);
    const QFontMetrics medida2(o.font);
    const int alto = medida1.height() + kEntreLineas + medida2.height();
    const int arriba = area.top() + (area.height() - alto) / 2;

    // Primera línea: el dato de la derecha completo y el texto recortado con "…".
    const QString derecha = indice.data(RolDatoDerecha).toString();
    const int anchoDerecha = derecha.isEmpty() ? 0 : medida1.horizontalAdvance(derecha);
    const QRect linea1(area.left(), arriba, area.width(), medida1.height());
    pintor->setFont(fuente1);
    pintor->setPen(colorTexto);
    if (!derecha.isEmpty()) pintor->drawText(linea1, Qt::AlignRight | Qt::AlignVCenter, derecha);
    const int anchoTexto = std::max(0, area.width() - anchoDerecha - (anchoDerecha ? kMargen : 0));
    pintor->drawText(
        QRect(linea1.left(), linea1.top(), anchoTexto, linea1.height()),
        Qt::AlignLeft | Qt::AlignVCenter,
        medida1.elidedText(indice.data(RolPrimeraLinea).toString(), Qt::ElideRight, anchoTexto));

    // Segunda línea con su color también en el renglón elegido: el color es el dato (verde hay
    // existencia, rojo no) y la selección de la hoja de estilo es clara.
    const QString segunda = indice.data(RolSegundaLinea).toString();
    if (!segunda.isEmpty()) {
        const QString color = indice.data(RolColorSegundaLinea).toString();
        pintor->setFont(o.font);
        pintor->setPen(color.isEmpty() ? colorTexto : QColor(color));
        const QRect linea2(area.left(), linea1.bottom() + 1 + kEntreLineas, area.width(),
                           medida2.height());
        pintor->drawText(linea2, Qt::AlignLeft | Qt::AlignVCenter,
                         medida2.elidedText(segunda, Qt::ElideRight, area.width()));
    }
    pintor->restore();
}

QSize DelegadoRenglon::sizeHint(const QStyleOptionViewItem& opcion, const QModelIndex&) const {
    const int alto = QFontMetrics(negritas(opcion.font)).height() + kEntreLineas +
                     QFontMetrics(opcion.font).height() + 2 * kMargen;
    return {std::max(opcion.rect.width(), 200),
            std::max({kAltoMinimo, alto, tamanoIcono_ + kMargen})};
}

} // namespace cajaplex
