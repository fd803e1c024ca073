#pragma once

#include <QString>
#include <QWidget>

#include "datos/Sesion.h"
#include "pantallas/Mensajes.h"

class QPushButton;
class QTreeWidget;

namespace cajaplex {

// "Exportar Catálogo": escribe los productos de una línea, o todos, en un libro de Excel (.xlsx)
// con las columnas que lee "Importador de Excel"; lo exportado se corrige en la hoja y se importa
// de vuelta.
class TExportarCatalogoProductosF : public QWidget {
    Q_OBJECT
public:
    explicit TExportarCatalogoProductosF(const Sesion& sesion, QWidget* padre = nullptr);

    // Escribe la línea elegida en `ruta`; el botón la pide con el diálogo de guardar. Verdadero si
    // el archivo quedó escrito.
    bool exportaA(const QString& ruta);

private slots:
    void BotonExportarClick();

private:
    void CargaLineasTimer();

    const Sesion& sesion_;
    Mensajes mensajes_{this};
    QTreeWidget* lineas_;   // "Lineas"
    QPushButton* exportar_; // "BotonExportar"
};

} // namespace cajaplex
