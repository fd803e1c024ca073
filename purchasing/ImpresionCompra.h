#pragma once

#include <QString>

#include "datos/Sesion.h"
#include "printing/ImpresionDocumentos.h"
#include "purchasing/ConsultaCompras.h"

class QWidget;

namespace cajaplex {

// Lo que lleva la plantilla "Compras" de un documento: título de su clase (con la marca de
// cancelado), folio, proveedor, renglones y totales.
DocumentoImpresion documentoImpresionCompra(const Sesion& sesion, const CompraGuardada& compra);

// Imprime (o deja en ArchivoCajaplexLocal.pdf de la carpeta de la estación y lo abre) un
// documento de compras con los ajustes "Compras" de la estación y el pie de su clase de
// ConfiguraImpresiones. La usan la captura al registrar y la lista al reimprimir. Nunca lanza.
TrabajoImpresion* imprimeCompra(QWidget* pantalla, const Sesion& sesion,
                                const CompraGuardada& compra, DestinoImpresion destino,
                                const QString& carpetaEstacion);

} // namespace cajaplex
