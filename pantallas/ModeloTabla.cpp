#include "pantallas/ModeloTabla.h"

#include <QBrush>
#include <QColor>
#include <QFont>
#include <QHeaderView>
#include <QScroller>
#include <QTableView>

namespace cajaplex {

ModeloTabla::Columna ModeloTabla::numerica(const QString& titulo,
                                           std::function<double(int fila)> valor,
                                           QString (*formato)(double), bool negritas) {
    return {titulo, [valor, formato](int fila) { return formato(valor(fila)); },
            [valor](int fila) { return QVariant(valor(fila)); }, Qt::AlignRight, negritas};
}

ModeloTabla::ModeloTabla(std::vector<Columna> columnas, QObject* padre)
    : QAbstractTableModel(padre), columnas_(std::move(columnas)) {}

void ModeloTabla::cambia(const std::function<int()>& cambio) {
    beginResetModel();
    renglones_ = cambio();
    endResetModel();
}

int ModeloTabla::rowCount(const QModelIndex& padre) const {
    return padre.isValid() ? 0 : renglones_;
}

int ModeloTabla::columnCount(const QModelIndex& padre) const {
    return padre.isValid() ? 0 : static_cast<int>(columnas_.size());
}

QVariant ModeloTabla::data(const QModelIndex& indice, int rol) const {
    if (!indice.isValid() || indice.row() >= renglones_ || indice.column() >= columnCount())
        return {};
    const Columna& c = columnas_[static_cast<size_t>(indice.column())];
    switch (rol) {
    case Qt::DisplayRole:
        return c.texto ? c.texto(indice.row()) : QVariant();
    case Qt::UserRole:
        return c.valor ? c.valor(indice.row()) : QVariant();
    case Qt::TextAlignmentRole:
        return static_cast<int>((c.alineacion | Qt::AlignVCenter).toInt());
    case Qt::FontRole:
        if (!c.negritas) return {};
        {
            // Solo las negritas: lo demás lo toma de la letra de la vista.
            QFont letra;
            letra.setBold(true);
            return letra;
        }
    case Qt::ForegroundRole:
        if (cancelado_ && cancelado_(indice.row())) return QBrush(QColor(0xC0, 0x39, 0x2B));
        return {};
    default:
        return {};
    }
}

QVariant ModeloTabla::headerData(int seccion, Qt::Orientation orientacion, int rol) const {
    if (orientacion != Qt::Horizontal || rol != Qt::DisplayRole || seccion < 0 ||
        seccion >= columnCount())
        return QAbstractTableModel::headerData(seccion, orientacion, rol);
    return columnas_[static_cast<size_t>(seccion)].titulo;
}

Qt::ItemFlags ModeloTabla::flags(const QModelIndex& indice) const {
    return indice.isValid() ? Qt::ItemIsEnabled | Qt::ItemIsSelectable : Qt::NoItemFlags;
}

QTableView* creaVistaTabla(const QString& nombre, ModeloTabla* modelo, int altoRenglon,
                           QWidget* padre) {
    auto* tabla = new QTableView(padre);
    tabla->setObjectName(nombre);
    tabla->setModel(modelo);
    tabla->setEditTriggers(QAbstractItemView::NoEditTriggers);
    tabla->setSelectionBehavior(QAbstractItemView::SelectRows);
    tabla->setSelectionMode(QAbstractItemView::SingleSelection);
    tabla->setAlternatingRowColors(true);
    tabla->setWordWrap(false);
    // Alto fijo: la vista no mide renglón por renglón.
    tabla->verticalHeader()->hide();
    tabla->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    tabla->verticalHeader()->setDefaultSectionSize(altoRenglon);
    tabla->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    QScroller::grabGesture(tabla->viewport(), QScroller::LeftMouseButtonGesture);
    return tabla;
}

} // namespace cajaplex
