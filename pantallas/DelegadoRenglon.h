#pragma once

#include <QStyledItemDelegate>

namespace cajaplex {

// Pinta un renglón de dos líneas con los roles de RolesRenglon.h: icono a la izquierda (si el
// renglón trae), primera línea en negritas con un dato alineado a la derecha y segunda línea con
// su color. Pinta directo con QPainter y todos los renglones miden lo mismo, así una lista de
// miles de renglones se llena y se desliza sin esperar.
class DelegadoRenglon : public QStyledItemDelegate {
public:
    // tamanoIcono 0: renglones sin icono.
    explicit DelegadoRenglon(int tamanoIcono, QObject* padre = nullptr);

    void paint(QPainter* pintor, const QStyleOptionViewItem& opcion,
               const QModelIndex& indice) const override;
    QSize sizeHint(const QStyleOptionViewItem& opcion, const QModelIndex& indice) const override;

private:
    int tamanoIcono_;
};

} // namespace cajaplex
