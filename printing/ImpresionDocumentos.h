#pragma once

#include <cstdint>
#include <functional>

#include <QObject>
#include <QString>

#include "datos/Sesion.h"
#include "printing/Plantillas.h"

class QWidget;

namespace cajaplex {

class AjustesEstacion;

inline constexpr const char* MensajeParametrosImpresion =
    "No se puede Imprimir por sus parámetros de impresión, revíselos nuevamente.";
inline constexpr const char* ArchivoPdfLocal = "ArchivoCajaplexLocal.pdf";

// Lo que la estación guarda por tipo de documento en Cajaplex.ini: Impresora<tipo>,
// Plantilla<tipo>, PapelContinuo<tipo> ("SÍ"/"NO"), NumeroCopias<tipo>, AnchoTicket<tipo> ("58",
// "80" o "Carta") y TamanoFuente<tipo>. El tipo es "Remision", "Comanda", "Cuenta"...
struct AjustesImpresion {
    QString impresora;
    QString plantilla; // vacío: la predeterminada de la carpeta
    FormatoPapel formato;
    int copias = 1;
};
AjustesImpresion leeAjustesImpresion(const AjustesEstacion& estacion, const QString& tipo);
void guardaAjustesImpresion(AjustesEstacion& estacion, const QString& tipo,
                            const AjustesImpresion& ajustes);

enum class DestinoImpresion { Impresora, Pdf };

struct PedidoImpresion {
    QString carpeta; // "Remisión", "Comanda"...
    AjustesImpresion ajustes;
    DestinoImpresion destino = DestinoImpresion::Impresora;
    QString archivoPdf; // con destino Pdf
    // Vacío: la de la copia local según los ajustes. Con texto, ésa (la vista previa de la
    // pantalla de plantillas, aún sin guardar).
    QString plantilla;
};

// Avisa, ya en el hilo de la pantalla, cómo terminó una impresión.
class TrabajoImpresion : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;
signals:
    void terminado(bool exito);
};

// La plantilla sale de la copia local de la estación; `datos` (que puede leer del servicio), la
// composición y la impresión corren en otro hilo: la pantalla nunca espera a la impresora. Al
// terminar, en el hilo de la pantalla: con PDF abre el visor; sin impresora o plantilla que
// sirvan, el mensaje de parámetros de impresión (lo ya almacenado no se toca). Nunca lanza.
TrabajoImpresion* imprimeDocumento(QWidget* pantalla, const Sesion& sesion,
                                   const PedidoImpresion& pedido,
                                   std::function<DocumentoImpresion()> datos);

// El ticket de una venta ya almacenada con los ajustes "Remision" de la estación: a su
// impresora o, con destino PDF, a ArchivoCajaplexLocal.pdf en la carpeta de la estación.
TrabajoImpresion* imprimeVenta(QWidget* pantalla, const Sesion& sesion, int64_t folio,
                               const AjustesEstacion& estacion,
                               DestinoImpresion destino = DestinoImpresion::Impresora);

} // namespace cajaplex
