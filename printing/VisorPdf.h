#pragma once

#include <QString>
#include <QWidget>

#include "pantallas/Mensajes.h"

class QLabel;
class QPdfDocument;
class QPdfView;
class QPrinter;
class QPushButton;

namespace cajaplex {

// Muestra un PDF con la biblioteca de PDF (sin programas externos) y lo manda a una impresora
// del sistema con "Imprimir".
class TVisorPdfF : public QWidget {
    Q_OBJECT
public:
    explicit TVisorPdfF(const QString& archivo, QWidget* padre = nullptr);

private slots:
    void BotonAcercarClick();
    void BotonAlejarClick();
    void BotonAjustarAnchoClick();
    void BotonImprimirClick();

private:
    QPushButton* boton(const QString& nombre, const QString& texto);
    void ponZoom(double factor);
    double zoomActual() const;

    Mensajes mensajes_{this};
    QPdfDocument* documento_;
    QPdfView* vista_;
    QLabel* numeroPaginas_;
    QPushButton* acercar_;
    QPushButton* alejar_;
    QPushButton* ajustarAncho_;
    QPushButton* imprimir_;
};

// Propone a la impresora la hoja de la primera página del documento, con su orientación.
void proponHojaDelDocumento(QPdfDocument& documento, QPrinter& impresora);

// Dibuja las páginas del documento en la impresora a la resolución de ésta, cada una a su tamaño
// real (reducida si no cabe en la hoja). Respeta el intervalo de páginas y las copias pedidas.
// Falso si la impresora no se pudo abrir.
bool imprimePdf(QPdfDocument& documento, QPrinter& impresora);

} // namespace cajaplex
