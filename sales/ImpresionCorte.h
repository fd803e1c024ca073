#pragma once

#include <QString>
#include <QVariantMap>

#include "datos/Sesion.h"
#include "printing/ImpresionDocumentos.h"

class QWidget;

namespace cajaplex {

// El corte para su plantilla "Corte de Caja": los valores de valoresCorte() tal cual más los
// marcadores de la plantilla predeterminada (folio, cajero, pagos, efectivoEsperado...) ya con
// formato de importe y fecha.
DocumentoImpresion documentoCorte(const Sesion& sesion, const QVariantMap& valores);

// Imprime el corte con los ajustes "CorteCaja" de la estación: a su impresora o, con destino PDF,
// a ArchivoCajaplexLocal.pdf en la carpeta de la estación. No bloquea ni lanza.
TrabajoImpresion* imprimeCorte(QWidget* pantalla, const Sesion& sesion, const QVariantMap& valores,
                               const QString& carpetaEstacion, DestinoImpresion destino);

} // namespace cajaplex
