#pragma once

#include <cstdint>

#include <QWidget>

#include "datos/Sesion.h"
#include "pantallas/Mensajes.h"
#include "restaurant/CatalogoAreasComida.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QTableWidget;

namespace cajaplex {

class InterruptorSiNo;

// Alta o cambio de un nodo de comida (mesa, barra...) de un área. Sin nodo es alta.
class TAreasComidaEditaF : public QWidget {
    Q_OBJECT
public:
    TAreasComidaEditaF(const Sesion& sesion, int64_t areaID, int64_t nodoID = 0,
                       QWidget* padre = nullptr);

signals:
    void almacenado(qint64 nodoID);
    void cancelado();

private slots:
    void BotonSiguienteClick();
    void BotonAnteriorClick();

private:
    void TemporizadorInicialTimer();
    void AlmacenaDatosTimer();
    void error(const QString& mensaje);

    const Sesion& sesion_;
    CatalogoAreasComida catalogo_;
    Mensajes mensajes_{this};
    int64_t areaID_;
    int64_t nodoID_;
    QLabel* titulo_;          // "TituloNodo"
    QTableWidget* nodo_;      // "NodoComida": los cinco renglones
    QLineEdit* clave_;        // "Clave"
    QLineEdit* descripcion_;  // "Descripcion"
    QLineEdit* personas_;     // "CantidadSinDecimal"
    QComboBox* tipos_;        // "ListaTiposNodo"
    InterruptorSiNo* activo_; // "Activo"
};

} // namespace cajaplex
