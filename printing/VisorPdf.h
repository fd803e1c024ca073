#pragma once

#include <QString>
#include <QWidget>

namespace cajaplex {

// Muestra un PDF con la biblioteca de PDF (sin programas externos) y lo manda a una impresora
// del sistema con "Imprimir".
class TVisorPdfF : public QWidget {
    Q_OBJECT
public:
    explicit TVisorPdfF(const QString& archivo, QWidget* padre = nullptr);
};

} // namespace cajaplex
