#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <QWidget>

#include "catalog/CatalogoUnidades.h"
#include "datos/Sesion.h"
#include "pantallas/Mensajes.h"

class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QPushButton;
class QStackedWidget;

namespace cajaplex {

// Alta o cambio de una unidad de medida: nombre y clave SAT, ambos requeridos.
class TUnidadesEditaF : public QWidget {
    Q_OBJECT
public:
    explicit TUnidadesEditaF(const Sesion& sesion, QWidget* padre = nullptr);

    void nueva();
    void edita(const UnidadMedida& unidad);

signals:
    void almacenada(qint64 unidadID);
    void cancelada();

private slots:
    void BotonAlmacenarClick();
    void BotonCancelarClick();

private:
    void AlmacenaUnidadTimer(const UnidadMedida& unidad);
    void error(const QString& mensaje);

    Mensajes mensajes_{this};
    CatalogoUnidades catalogo_;
    std::optional<UnidadMedida> anterior_; // vacío: alta

    QLabel* titulo_;         // "TituloEdicion"
    QLineEdit* nombre_;      // "NombreUnidad"
    QLineEdit* claveSAT_;    // "ClaveSAT"
    QPushButton* almacenar_; // "BotonAlmacenar"
};

// "Unidades de Medida": la lista por nombre con alta, cambio y borrado. Una unidad que usa algún
// producto no se borra.
class TUnidadesF : public QWidget {
    Q_OBJECT
public:
    explicit TUnidadesF(const Sesion& sesion, QWidget* padre = nullptr);

    // Lo que guarda cada renglón de "ListaUnidades".
    enum RolUnidad { RolUnidadID = Qt::UserRole + 1 };

private slots:
    void BotonNuevoClick();
    void BotonModificarClick();
    void BotonBorrarClick();
    void ListaUnidadesItemActivated(QListWidgetItem* item);

private:
    void CargaUnidadesTimer(int64_t seleccion);
    void EliminaUnidadTimer(const UnidadMedida& unidad);
    std::optional<UnidadMedida> unidadElegida() const;
    void actualizaAcciones();
    void muestraLista();
    void error(const QString& mensaje);

    Mensajes mensajes_{this};
    CatalogoUnidades catalogo_;
    std::vector<UnidadMedida> unidades_;

    QStackedWidget* paginas_;  // "Paginas"
    QListWidget* lista_;       // "ListaUnidades"
    QLabel* pie_;              // "PieUnidades"
    QPushButton* modificar_;   // "BotonModificar"
    QPushButton* borrar_;      // "BotonBorrar"
    TUnidadesEditaF* edicion_; // "UnidadesEdita"
};

} // namespace cajaplex
