#include "CodigoBarras.h"

#include <QDir>

namespace cajaplex {

const QList<Simbologia>& simbologias() {
    static const QList<Simbologia> lista;
    return lista;
}

QImage imagenCodigoBarras(const QString&, int, double) {
    throw ErrorCodigoBarras("sin implementar");
}

void generaEtiquetasPdf(const ParametrosEtiqueta&, const QString&) {
    throw ErrorCodigoBarras("sin implementar");
}

QString archivoPdfLocal() {
    return QDir::temp().filePath(QStringLiteral("ArchivoCajaplexLocal.pdf"));
}

} // namespace cajaplex
