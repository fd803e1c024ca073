#pragma once

#include <string>

#include <QImage>
#include <QString>

class QPdfDocument;

namespace cajaplex::prueba {

// Lo que un lector independiente encontró; texto vacío si nada.
struct Lectura {
    std::string texto;
    int orientacion = 0; // grados en que vio girado el código
};
Lectura leeCodigo(const QImage& imagen);

// La página como la vería un escáner: a `ppp` puntos por pulgada, sobre papel blanco.
QImage paginaPdf(QPdfDocument& documento, int pagina, int ppp = 300);

// El número de la simbología ofrecida con ese nombre (falla la prueba si no se ofrece).
int simbologia(const QString& nombre);

} // namespace cajaplex::prueba
