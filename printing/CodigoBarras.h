#pragma once

#include <stdexcept>

#include <QImage>
#include <QList>
#include <QString>

namespace cajaplex {

// Un valor que la simbología no puede codificar (o una falla de la biblioteca de códigos).
class ErrorCodigoBarras : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Las simbologías que se ofrecen en una tienda, con su número de la biblioteca de códigos.
struct Simbologia {
    QString nombre; // "EAN-13", "UPC-A", "Code 128", "Code 39", "QR Code"...
    int codigo;
};
const QList<Simbologia>& simbologias();

// Imagen en blanco y negro del código, sin texto; `escala` multiplica el tamaño del módulo.
QImage imagenCodigoBarras(const QString& valor, int simbologia, double escala = 1.0);

// Parámetros de la página "Parámetros de Impresión" de una etiqueta.
struct ParametrosEtiqueta {
    QString valor; // lo que se codifica (clave o código de barra)
    int simbologia = 0;
    int rotacion = 0;  // 0, 90, 180 o 270 grados
    int borde = 0;     // mm alrededor del código
    int espaciado = 0; // mm entre etiquetas
    double escala = 1.0;
    double alturaMm = 25.0;
    double anchuraMm = 50.0;
    int tamanoLetra = 8;
    QString descripcion; // renglón de texto bajo el código
    QString precio;      // ya con formato; vacío: no se imprime
    QString existencias; // vacío: no se imprime
    int copias = 1;
};

// Dibuja `copias` etiquetas en un PDF. Lanza ErrorCodigoBarras si el valor no se puede codificar
// o el archivo no se puede escribir.
void generaEtiquetasPdf(const ParametrosEtiqueta& parametros, const QString& archivo);

// El archivo local donde se dejan los documentos para verlos o imprimirlos:
// "ArchivoCajaplexLocal.pdf" en la carpeta temporal del usuario.
QString archivoPdfLocal();

} // namespace cajaplex
