#pragma once

#include <cstdint>

#include <QByteArray>
#include <QDialog>
#include <QImage>

#include "datos/Consulta.h"
#include "datos/Sesion.h"
#include "pantallas/Mensajes.h"

class QLabel;
class QPushButton;

namespace cajaplex {

// La foto de una línea de productos: se elige un archivo de imagen, se gira si hace falta y se
// guarda en Lineas.Foto con una copia reducida en Lineas.miniatura (el icono del árbol). También
// se puede quitar la foto. Se cierra sola al guardar o al quitar.
class TAsignaFotoLineaF : public QDialog {
    Q_OBJECT
public:
    // La foto se guarda con su lado mayor a lo más en LadoMaximoFoto (una foto de teléfono pesa
    // varios MB y viaja en cada consulta de la línea); la miniatura cabe en TamanoMiniatura.
    static constexpr int LadoMaximoFoto = 1024;
    static constexpr int TamanoMiniatura = 64;

    TAsignaFotoLineaF(const Sesion& sesion, int64_t lineaID, const QString& nombreLinea,
                      QWidget* padre = nullptr);

    // El archivo elegido con "Seleccionar Foto" llega aquí desde el diálogo de archivos.
    void cargaArchivo(const QString& ruta);

    // Verdadero si se guardó o se quitó la foto; miniatura() es la nueva (vacía si se quitó).
    bool fotoCambiada() const { return cambiada_; }
    const QByteArray& miniatura() const { return miniatura_; }

private slots:
    void SeleccionarFotoClick();
    void RotarFotoClick();
    void AlmacenarFotoClick();
    void EliminarFotoClick();

private:
    void CargaFotoTimer();
    void RotaFotoTimer();
    void ModificaFotoTimer();
    void EliminaFotoTimer();
    void muestraImagen();
    void error(const QString& mensaje);

    const Sesion& sesion_;
    const int64_t lineaID_;
    const QString nombreLinea_;
    Mensajes mensajes_{this};
    Consulta ConsultaFoto;
    Consulta ModificaFoto;
    Consulta EliminaFoto;

    QImage imagen_;
    bool tieneFotoGuardada_ = false;
    bool pendiente_ = false; // hay una imagen nueva o girada sin guardar
    bool cambiada_ = false;
    QByteArray miniatura_;

    QLabel* foto_;             // "FotoLinea"
    QPushButton* seleccionar_; // "BotonSeleccionarFoto"
    QPushButton* rotar_;       // "BotonRotarFoto"
    QPushButton* almacenar_;   // "BotonAlmacenarFoto"
    QPushButton* eliminar_;    // "BotonEliminarFoto"
    QPushButton* cerrar_;      // "BotonCerrar"
};

} // namespace cajaplex
