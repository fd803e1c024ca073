#pragma once

#include <cstdint>

#include <QString>

#include "printing/Plantillas.h"

namespace cajaplex {

class ConexionDatos;

// Lo que codifica el QR del ticket: RFC de la empresa, folio y total con dos decimales,
// separados por "|" ("GOER700512JD4|15|116.00"). Con eso la venta se localiza y se comprueba.
QString referenciaQRVenta(const QString& rfcEmpresa, int64_t folio, double total);

// Los datos del ticket de una venta ya almacenada, leídos del servicio: empresa (con logotipo y
// QR según ConfiguraImpresiones), encabezado, renglones, totales, pagos y cambio, monedero del
// cliente, adicional y pie. Lo llaman el punto de venta al registrar y el visor de ventas.
// Lanza RegistroInexistente si la venta no existe en la empresa; ErrorServicio si falla la lectura.
DocumentoImpresion datosTicketVenta(ConexionDatos& conexion, int64_t empresaID, int64_t folio);

// Marcadores que ofrece el ticket, para el texto de ayuda de la pantalla de plantillas.
QString marcadoresTicketVenta();

} // namespace cajaplex
