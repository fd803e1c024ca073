#pragma once

#include <cstdint>
#include <functional>

#include <QPushButton>
#include <QWidget>

#include "pantallas/Mensajes.h"

class QHBoxLayout;
class QLineEdit;
class QLabel;
class QListWidget;
class QListWidgetItem;
class QStackedWidget;
class QVBoxLayout;

namespace cajaplex {

// Lo común de los catálogos sencillos (usuarios, perfiles, clientes): una lista con su página de
// edición.

// Interruptor SÍ/NO: oprimido es SÍ y se ve en el acento. Su texto solo dice SÍ o NO, así que el
// nombre accesible lleva lo que decide.
class InterruptorSiNo : public QPushButton {
    Q_OBJECT
public:
    InterruptorSiNo(const QString& nombre, const QString& titulo, QWidget* padre = nullptr);
};

// Página de edición: título arriba, el contenido de cada pantalla y "Cancelar" / "Almacenar"
// abajo. Almacenar corre tras la leyenda; un rechazo o una falla se avisan y dejan lo tecleado.
class TEdicionCatalogoF : public QWidget {
    Q_OBJECT
public:
    TEdicionCatalogoF(const QString& nombre, const QString& titulo, QWidget* padre);

signals:
    void almacenado(qint64 id);
    void cancelado();

protected:
    // Registra lo capturado; devuelve el motivo del rechazo (vacío si se registró, con `id` la
    // llave). Puede lanzar: la falla se avisa con el mensaje del sistema.
    virtual QString almacena(int64_t& id) = 0;
    void ponContenido(QWidget* contenido);
    void error(const QString& mensaje);

    Mensajes mensajes_{this};
    QLabel* titulo_;         // "TituloEdicion"
    QPushButton* almacenar_; // "BotonAlmacenar"

private slots:
    void BotonAlmacenarClick();
    void BotonCancelarClick();

private:
    void AlmacenaTimer();

    QVBoxLayout* capa_;
};

// Página de lista: los renglones de dos líneas, el pie con el conteo y los botones "Nuevo" y
// "Modificar" (tocar dos veces un renglón también modifica); encima, la página de edición.
class TListaCatalogoF : public QWidget {
    Q_OBJECT
public:
    // `nombre` en plural nombra la pantalla, "Lista..." y "Pie..."; la página de la lista es
    // "Selecciona" + `singular`.
    TListaCatalogoF(const QString& nombre, const QString& singular, const QString& titulo,
                    QWidget* padre);

    // La llave que guarda cada renglón de la lista.
    enum RolLista { RolID = Qt::UserRole + 1 };

protected:
    // Lee y llena la lista, dejando elegido el renglón `seleccion`.
    virtual void CargaTimer(int64_t seleccion) = 0;
    virtual void actualizaAcciones();
    // Pone la edición como segunda página y lee la lista tras la leyenda.
    void arma(TEdicionCatalogoF* edicion);
    void muestraEdicion();
    // La llave del renglón elegido; 0 sin renglón.
    int64_t idElegido() const;
    void error(const QString& mensaje);
    // "Número de Registros: n", o "Registros Filtrados: n" con un filtro escrito.
    void ponConteo(const QString& filtro, int registros);
    // Búsqueda que va al servicio: un campo arriba de la lista que vuelve a leer (CargaTimer) al
    // dejar de teclear o con Enter. Devuelve el campo ("Buscar" + singular).
    QLineEdit* creaBusquedaEnServicio(const QString& indicacion);
    // "Borrar" junto a los botones de abajo ("BotonBorrar"), activo con un renglón elegido.
    QPushButton* creaBotonBorrar();
    // Pregunta, y con la leyenda corre `elimina` (vacío: se borró; si no, el motivo del
    // rechazo); avisa el rechazo o la falla, o vuelve a leer la lista.
    void borraConPregunta(const QString& pregunta, std::function<QString()> elimina);

    Mensajes mensajes_{this};
    QWidget* pagina_;        // la página de la lista, objectName "Selecciona..."
    QVBoxLayout* capaLista_; // encima de la lista caben otros controles
    QHBoxLayout* abajo_;     // el pie y los botones
    QListWidget* lista_;     // "Lista..."
    QLabel* pie_;            // "Pie..."
    QPushButton* modificar_; // "BotonModificar"

protected slots:
    virtual void BotonNuevoClick() = 0;
    virtual void BotonModificarClick() = 0;

private slots:
    void ListaItemActivated(QListWidgetItem* item);

private:
    void muestraLista();

    QStackedWidget* paginas_; // "Paginas"
    QString singular_;
};

} // namespace cajaplex
