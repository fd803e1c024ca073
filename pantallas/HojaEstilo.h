#pragma once

#include <QIcon>
#include <QPixmap>
#include <QSize>
#include <QString>

class QApplication;
class QLabel;
class QPushButton;
class QWidget;

class QDateEdit;

namespace cajaplex {

// Color de acento del sistema.
inline constexpr const char* ColorAcento = "#1E90FF";

// La hoja de estilo única de la aplicación (recurso :/estilo/Cajaplex.qss) y su fuente base.
// Las pantallas no ponen colores propios: marcan sus controles con la propiedad "estilo" y la
// hoja decide cómo se ven:
//   QPushButton  "primario" (acción principal, acento), "peligro" (borrar, cancelar),
//                "mosaico" (lanzador del menú: icono grande arriba, texto abajo),
//                "enlace" (texto subrayado sin marco)
//   QLabel       "titulo", "subtitulo", "pie" (renglón de totales o conteo), "dato" (valor
//                destacado en acento)
//   QFrame       "tarjeta" (bloque blanco con borde redondeado), "barra" (barra superior de una
//                pantalla, en acento)
QString hojaEstilo();
void aplicaHojaEstilo(QApplication& aplicacion);
// Marca un control para la hoja de estilo y lo vuelve a pulir si ya estaba visible.
void ponEstilo(QWidget* control, const char* estilo);

// Alto mínimo de botones y campos: cómodo para el dedo.
inline constexpr int AltoControl = 48;

// Una etiqueta de texto simple (nunca interpreta marcas) con su objectName y su estilo (o nullptr).
QLabel* creaEtiqueta(const QString& texto, const QString& nombre, const char* estilo,
                     QWidget* padre);
// Una fecha de filtro (hoy, dd/MM/yyyy, con calendario) de alto de control y ancho para leerla.
QDateEdit* creaCampoFecha(const QString& nombre, const QString& accesible, QWidget* padre);
// Un botón con imagen del proyecto, su objectName, su estilo (o nullptr) y el alto de control.
QPushButton* creaBoton(const QString& imagen, const QString& texto, const QString& nombre,
                       const char* estilo, QWidget* padre);

// Imágenes del proyecto por nombre ("LogotipoVacio", "Insercion"...), de :/imagenes/<nombre>.svg.
QIcon icono(const QString& nombre);
QPixmap imagen(const QString& nombre, const QSize& tamano);

} // namespace cajaplex
