#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <set>

#include <QDateTime>
#include <QWidget>

#include "datos/AjustesEstacion.h"
#include "datos/Sesion.h"
#include "pantallas/Mensajes.h"
#include "restaurant/CuadriculaKiosko.h"
#include "restaurant/TarjetasPreparacion.h"

class QButtonGroup;
class QFrame;
class QGridLayout;
class QHBoxLayout;
class QLabel;
class QPushButton;
class QScrollArea;
class QTimer;
class QVBoxLayout;

namespace cajaplex {

class EscuchaEventos;

// Monitor de Preparación: en la cocina o la barra, las secciones de comanda por preparar del área
// elegida, como tarjetas que envejecen minuto a minuto; el cocinero toca cada renglón para
// pasarlo de pendiente a preparando y a servido. Se entera de lo nuevo por los eventos del
// servicio y, sin ellos, revisando cada 30 s.
class TMonitorPreparacionF : public QWidget {
    Q_OBJECT
public:
    using Reloj = std::function<QDateTime()>;

    explicit TMonitorPreparacionF(const Sesion& sesion, QWidget* padre = nullptr);
    ~TMonitorPreparacionF() override;

    static constexpr int IntervaloMinutos = 60000;
    static constexpr int IntervaloComandasNuevas = 30000;
    // Lo que se ve "Servida" la última tarjeta antes de quitarse.
    static constexpr int EsperaBorrar = 600;

    // La hora de la que salen los minutos iniciales y el reloj (las pruebas la fijan).
    void ponReloj(Reloj reloj);

protected:
    void resizeEvent(QResizeEvent* evento) override;
    void closeEvent(QCloseEvent* evento) override;

private slots:
    void GrupoRecargarComandasClick();
    void IncrementarMinutosTimer();
    void ComandasNuevasTimer();
    void BorrarComandaTimer();
    void PantallaCompletaClick();

private:
    // Lo que se ve de una tarjeta, para actualizarla sin volver a crearla.
    struct VistaTarjeta {
        QFrame* marco = nullptr;
        QFrame* encabezado = nullptr;
        QLabel* minutos = nullptr;
        QVBoxLayout* cuerpo = nullptr;
        QLabel* pie = nullptr;
        std::map<int, QWidget*> renglones; // por posición
        std::map<int, QLabel*> ingredientes;
        std::map<int, QLabel*> comensales;
    };

    void CargaInicialTimer();
    void cargaAreas();
    // Lee las comandas activas y las funde con lo que se ve; `todo` empieza de cero (sin sonido).
    void recarga(bool todo, bool silencioso);
    void recargaPorEventos();
    void cambiaArea(int64_t areaID);
    void cambiaCuadricula(int renglones, int columnas);
    void acomodaTarjetas();
    void creaVista(const TarjetaPreparacion& t);
    void pintaRenglones(const TarjetaPreparacion& t, VistaTarjeta& v);
    void pintaEncabezado(const TarjetaPreparacion& t, VistaTarjeta& v);
    void pintaRenglon(const RenglonPreparacion& r, QWidget* boton);
    void ajustaAlto(VistaTarjeta& v);
    void quitaVista(const QString& clave);
    void RenglonClick(const QString& clave, int posicion);
    void MostrarIngredientesClick(const QString& clave, int posicion);
    void ConsultaIngredientesTimer(const QString& clave, int posicion);
    void pintaTitulo();
    void ponModoEnVivo(bool enVivo);
    void saleDePantallaCompleta();
    void error(const QString& mensaje);

    const Sesion& sesion_;
    ComandasPreparacion datos_;
    TarjetasPreparacion tarjetas_;
    Mensajes mensajes_{this};
    AjustesEstacion estacion_;
    Reloj reloj_;
    int64_t areaID_ = 0;
    CuadriculaKiosko tamano_{2, 4, 6};
    int altoTarjeta_ = 0; // el de una celda de la cuadrícula
    bool cargado_ = false;
    Qt::WindowStates estadoVentana_;
    std::map<QString, VistaTarjeta> vistas_;
    std::set<QString> porBorrar_;

    QLabel* pendientes_;    // "Pendientes"
    QLabel* hora_;          // "Hora"
    QLabel* modo_;          // "ModoActualizacion"
    QPushButton* completa_; // "PantallaCompleta"
    QWidget* barraAreas_;   // "ListaAreasPreparacion"
    QHBoxLayout* capaAreas_;
    QButtonGroup* grupoAreas_;
    QScrollArea* desliza_; // "Comandas"
    QWidget* contenido_;
    QGridLayout* cuadricula_;
    QLabel* vacio_;          // "SinComandas"
    QTimer* minutero_;       // "IncrementarMinutos"
    QTimer* nuevas_;         // "ComandasNuevas"
    QTimer* borrar_;         // "BorrarComanda"
    QTimer* recargaEventos_; // junta en una lectura los avisos seguidos
    EscuchaEventos* escucha_;
};

} // namespace cajaplex
