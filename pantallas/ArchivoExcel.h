#pragma once

#include <QString>

class QWidget;

namespace cajaplex {

// Pregunta dónde guardar un libro de Excel (.xlsx), empezando en Documentos con `nombre`.
// Devuelve la ruta con la extensión .xlsx asegurada, o vacío si el usuario cancela.
QString pideArchivoExcelNuevo(QWidget* padre, const QString& titulo, const QString& nombre);

} // namespace cajaplex
