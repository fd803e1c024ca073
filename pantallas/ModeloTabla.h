#pragma once

#include <functional>
#include <vector>

#include <QAbstractTableModel>
#include <QString>

class QTableView;
class QWidget;

namespace cajaplex {

// Tabla de solo lectura sobre renglones que la pantalla ya tiene en memoria: el modelo no copia
// nada, cada columna sabe leer su celda por número de renglón. Los textos se arman cuando la vista
// los pide, solo para lo visible: listar 20,000 productos no crea un objeto por celda.
class ModeloTabla : public QAbstractTableModel {
public:
    struct Columna {
        QString titulo;
        std::function<QString(int fila)> texto; // vacío: la celda no muestra nada
        // Lo que la celda guarda en Qt::UserRole (el importe completo de un texto redondeado);
        // vacío si no guarda nada.
        std::function<QVariant(int fila)> valor = {};
        Qt::Alignment alineacion = Qt::AlignLeft;
        bool negritas = false;
    };

    // Un número alineado a la derecha: a la vista con su formato (importe, cantidad, por ciento)
    // y completo en Qt::UserRole.
    static Columna numerica(const QString& titulo, std::function<double(int fila)> valor,
                            QString (*formato)(double), bool negritas = false);

    explicit ModeloTabla(std::vector<Columna> columnas, QObject* padre = nullptr);

    // Los datos de la pantalla cambian dentro de `cambio`, que devuelve cuántos renglones quedan;
    // las vistas se enteran antes y después.
    void cambia(const std::function<int()>& cambio);
    // Lo más común: la pantalla guarda sus renglones en un vector. Devuelve cuántos quedan.
    template <typename Renglon>
    int reemplaza(std::vector<Renglon>& renglones, std::vector<Renglon> nuevos) {
        cambia([&] {
            renglones = std::move(nuevos);
            return static_cast<int>(renglones.size());
        });
        return renglones_;
    }

    int rowCount(const QModelIndex& padre = {}) const override;
    int columnCount(const QModelIndex& padre = {}) const override;
    QVariant data(const QModelIndex& indice, int rol = Qt::DisplayRole) const override;
    QVariant headerData(int seccion, Qt::Orientation orientacion,
                        int rol = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& indice) const override;

    // Los documentos cancelados se ven en rojo sin dejar de listarse.
    void ponCancelado(std::function<bool(int fila)> cancelado) {
        cancelado_ = std::move(cancelado);
    }

private:
    std::vector<Columna> columnas_;
    std::function<bool(int fila)> cancelado_;
    int renglones_ = 0;
};

// La vista de un listado de consulta: renglones de alto fijo y cómodos para el dedo, selección
// de un renglón completo, sin edición, deslizable.
QTableView* creaVistaTabla(const QString& nombre, ModeloTabla* modelo, int altoRenglon,
                           QWidget* padre);

} // namespace cajaplex
