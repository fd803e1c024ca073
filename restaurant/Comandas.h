#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <QWidget>

#include "catalog/CatalogoLineas.h"
#include "datos/AjustesEstacion.h"
#include "datos/Sesion.h"
#include "pantallas/Mensajes.h"
#include "printing/Plantillas.h"
#include "restaurant/RegistroComanda.h"

class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QPushButton;
class QSpinBox;
class QStackedWidget;
class QTimer;
class QTreeWidget;
class QVBoxLayout;

namespace cajaplex {

class EscuchaEventos;

// Lo que llevan impreso la sección enviada a cocina ("Comanda") y la cuenta ("Cuenta").
DocumentoImpresion documentoComanda(const NodoPlano& nodo, int64_t folio, int seccion,
                                    const QString& mesero, const QString& observaciones,
                                    const std::vector<RenglonComanda>& renglones);
DocumentoImpresion documentoCuenta(const Sesion& sesion, const NodoPlano& nodo,
                                   const CuentaComanda& cuenta);

// Comandas del restaurante: el plano de nodos por área, la apertura de una comanda, el menú, el
// carrito por comensal, el envío de cada sección a cocina y el cierre de la cuenta.
class TComandasF : public QWidget {
    Q_OBJECT
public:
    explicit TComandasF(const Sesion& sesion, QWidget* padre = nullptr);

    enum Rol { RolLinea = Qt::UserRole + 1, RolProducto, RolIndice };
    // Cada cuánto se vuelve a leer el plano por su cuenta cuando el servicio no avisa de cambios.
    static constexpr int IntervaloRecarga = 30000;

protected:
    void closeEvent(QCloseEvent* evento) override;
    bool eventFilter(QObject* objeto, QEvent* evento) override;

private slots:
    void GrupoRecargarAreasComidaClick();
    void TemporizadorRecargaTimer();
    void BotonAnteriorClick();
    void BotonSiguienteClick();
    void MenuProductosItemClick(QListWidgetItem* item);
    void BotonRegistrarTransaccionClick();
    void BotonPagarClick();
    void BotonEliminarClick();
    void BotonNotaClick();
    void BotonDescuentoClick();
    void GrupoCambiarMeseroClick();
    void BotonCancelarComandaClick();

private:
    void CargaAreasComidaTimer(bool silencioso);
    void NodoClick(const NodoPlano& nodo);
    void continuaComanda(const NodoPlano& nodo);
    void CargaMenuTimer();
    void muestraMenu(int64_t linea);
    void cambiaCuadricula(int renglones, int columnas);
    void ajustaCuadricula();
    void RegistraComandaTimer();
    void CierraCuentaTimer();
    void CancelaComandaTimer(const NodoPlano& nodo, const QString& motivo);
    void pintaCarrito();
    // Manda el documento a la impresora de la estación con la plantilla de la carpeta.
    void imprime(const QString& carpeta, const DocumentoImpresion& documento);
    // El renglón del carrito elegido; -1 si no hay o si ya está registrado.
    int renglonElegido() const;
    void muestraPagina(int pagina);
    void error(const QString& mensaje);

    const Sesion& sesion_;
    RegistroComanda registro_;
    Mensajes mensajes_{this};
    AjustesEstacion estacion_;
    PlanoComedor plano_;
    NodoPlano nodo_;
    std::optional<ComandaAbierta> abierta_;
    AperturaComanda apertura_;
    std::vector<LineaProducto> lineas_;
    int64_t lineaActual_ = 0;
    std::vector<RenglonComanda> guardados_;
    std::vector<RenglonComanda> carrito_;
    int renglones_ = 4;
    int columnas_ = 3;

    QLabel* titulo_;               // "Titulo"
    QPushButton* anterior_;        // "BotonAnterior"
    QPushButton* recargar_;        // "GrupoRecargarAreasComida"
    QPushButton* cancelarComanda_; // "BotonCancelarComanda"
    QStackedWidget* paginas_;      // "PaginadorDatos"
    QLabel* encabezado_;           // "EncabezadoAreasComida"
    QWidget* contenidoPlano_;      // lo que desliza "AreasComida"
    QVBoxLayout* capaPlano_;
    QLineEdit* personas_;        // "NumeroPersonas"
    QLineEdit* observaciones_;   // "ObservacionesComanda"
    QListWidget* menu_;          // "MenuProductos"
    QTreeWidget* carritoVista_;  // "CarritoCompra"
    QSpinBox* comensal_;         // "NumeroComensal"
    QLabel* total_;              // "Total"
    QPushButton* registrar_;     // "BotonRegistrarTransaccion"
    QPushButton* pagar_;         // "BotonPagar"
    QPushButton* cambiarMesero_; // "GrupoCambiarMesero"
    QTimer* recarga_;            // "TemporizadorRecarga"
    EscuchaEventos* escucha_;    // cambios de NodosComida y Comanda
};

} // namespace cajaplex
