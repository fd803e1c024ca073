#include "pantallas/Mensajes.h"

#include <algorithm>
#include <deque>
#include <exception>
#include <mutex>
#include <utility>
#include <variant>

#include <QAbstractButton>
#include <QButtonGroup>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyle>
#include <QTextBoundaryFinder>
#include <QTimer>
#include <QVBoxLayout>
#include <QWidget>

#include "datos/Utilerias.h"
#include "pantallas/Leyenda.h"

namespace cajaplex {
namespace {

const QString kTitulo = QStringLiteral("Centro de Mensajes");

using RespuestaEnCola = std::variant<Respuesta, int, QString, double>;

struct EstadoPrueba {
    std::mutex candado;
    bool activo = false;
    std::deque<RespuestaEnCola> cola;
    QStringList anotados;
    int preseleccion = -1;
    std::function<void(QDialog&)> revision;
};

EstadoPrueba& estado() {
    static EstadoPrueba e;
    return e;
}

// En modo de prueba anota el texto y toma la siguiente respuesta si es del tipo que se pide;
// una de otro tipo se queda en la cola para que la prueba falle a la vista y no en silencio.
template <typename T> std::optional<std::optional<T>> respuestaDePrueba(const QString& texto) {
    auto& e = estado();
    std::lock_guard<std::mutex> g(e.candado);
    if (!e.activo) return std::nullopt;
    e.anotados << texto;
    if (e.cola.empty() || !std::holds_alternative<T>(e.cola.front())) return std::optional<T>{};
    T valor = std::get<T>(e.cola.front());
    e.cola.pop_front();
    return std::optional<T>{valor};
}

void encola(RespuestaEnCola r) {
    auto& e = estado();
    std::lock_guard<std::mutex> g(e.candado);
    e.cola.push_back(std::move(r));
}

// El texto de un diálogo no pasa del 60 % del ancho ni del 70 % del alto de su pantalla.
QSize limiteDelTexto(const QWidget* padre) {
    const QScreen* pantalla = padre ? padre->screen() : QGuiApplication::primaryScreen();
    const QRect area = pantalla ? pantalla->availableGeometry() : QRect(0, 0, 1024, 768);
    return {area.width() * 6 / 10, area.height() * 7 / 10};
}

// Una palabra más ancha que el renglón (una ruta, un folio) se deja cortar en cualquier letra con
// espacios de ancho cero; si no, saldría del diálogo.
QString partePalabrasLargas(const QString& texto, const QFontMetrics& medida, int ancho) {
    QString resultado;
    QString palabra;
    const auto cierraPalabra = [&] {
        if (medida.horizontalAdvance(palabra) > ancho) {
            // Entre letras completas: un acento combinado o un emoji no se parten.
            QTextBoundaryFinder letras(QTextBoundaryFinder::Grapheme, palabra);
            qsizetype desde = 0;
            for (qsizetype hasta = letras.toNextBoundary(); hasta > 0;
                 hasta = letras.toNextBoundary()) {
                if (desde > 0) resultado += QChar(0x200B);
                resultado += palabra.mid(desde, hasta - desde);
                desde = hasta;
            }
            palabra.clear();
        }
        resultado += std::exchange(palabra, {});
    };
    for (const QChar c : texto) {
        if (c.isSpace()) {
            cierraPalabra();
            resultado += c;
        } else {
            palabra += c;
        }
    }
    cierraPalabra();
    return resultado;
}

// La etiqueta con el texto de un diálogo, de tamaño fijo. Se mide ya pulida porque la hoja de
// estilo le agranda la fuente al pulirse; y el tamaño se fija porque una QLabel con ajuste de
// línea no le informa su alto al diálogo, que entonces la recorta. Un texto más alto que el
// límite va en un área con desplazamiento.
QWidget* textoDelDialogo(const QString& texto, QDialog& dialogo, int anchoMaximo, int altoMaximo) {
    constexpr int kAnchoMinimo = 320;
    auto* etiqueta = new QLabel(texto, &dialogo);
    etiqueta->setObjectName(QStringLiteral("TextoMensaje"));
    etiqueta->setAccessibleName(texto);
    etiqueta->setTextFormat(Qt::PlainText);
    etiqueta->setTextInteractionFlags(Qt::TextSelectableByMouse); // para copiar un error
    etiqueta->ensurePolished();
    const QFontMetrics medida(etiqueta->font());
    const int natural = etiqueta->sizeHint().width(); // sin ajuste: el renglón más largo
    int mayorRenglon = 0;
    for (const QString& renglon : texto.split(QLatin1Char('\n')))
        mayorRenglon = std::max(mayorRenglon, medida.horizontalAdvance(renglon));
    const int orillas = natural - mayorRenglon; // márgenes y relleno de la hoja
    // Dos píxeles de holgura: el ancho medido y el del trazo pueden diferir por redondeo.
    const int ancho = std::clamp(natural + 2, kAnchoMinimo, std::max(kAnchoMinimo, anchoMaximo));
    etiqueta->setText(partePalabrasLargas(texto, medida, ancho - orillas - 2));
    etiqueta->setWordWrap(true);
    const int alto = etiqueta->heightForWidth(ancho);
    etiqueta->setFixedSize(ancho, alto);
    if (alto <= altoMaximo) return etiqueta;

    auto* area = new QScrollArea(&dialogo);
    area->setObjectName(QStringLiteral("DesplazaMensaje"));
    area->setAccessibleName(QStringLiteral("Texto del mensaje"));
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    area->setWidget(etiqueta);
    area->ensurePolished();
    area->setFixedSize(
        ancho + area->verticalScrollBar()->sizeHint().width() + 2 * area->frameWidth(), altoMaximo);
    return area;
}

// Ancho para el texto en un diálogo cuya capa lleva además `ocupado` píxeles a lo ancho.
int anchoParaTexto(const QDialog& dialogo, const QLayout& capa, int ocupado) {
    const QMargins margen = capa.contentsMargins();
    return limiteDelTexto(dialogo.parentWidget()).width() - margen.left() - margen.right() -
           ocupado;
}

void preparaDialogo(QDialog& dialogo) {
    dialogo.setObjectName(QStringLiteral("CentroMensajes"));
    dialogo.setWindowTitle(kTitulo);
    dialogo.setAccessibleName(kTitulo);
}

QPushButton* agregaBoton(QDialogButtonBox* botones, const QString& texto,
                         QDialogButtonBox::ButtonRole rol) {
    QPushButton* boton = botones->addButton(texto, rol);
    boton->setAccessibleName(texto);
    return boton;
}

// Diálogo con Aceptar/Cancelar en español; el contenido lo pone quien llama.
QDialogButtonBox* botonesAceptarCancelar(QDialog& dialogo) {
    auto* botones = new QDialogButtonBox(&dialogo);
    agregaBoton(botones, QStringLiteral("Aceptar"), QDialogButtonBox::AcceptRole);
    agregaBoton(botones, QStringLiteral("Cancelar"), QDialogButtonBox::RejectRole);
    QObject::connect(botones, &QDialogButtonBox::accepted, &dialogo, &QDialog::accept);
    QObject::connect(botones, &QDialogButtonBox::rejected, &dialogo, &QDialog::reject);
    return botones;
}

// Diálogo de elección o captura: el título arriba, completo; debajo los campos de quien llama.
QVBoxLayout* columnaConTitulo(QDialog& dialogo, const QString& titulo) {
    preparaDialogo(dialogo);
    auto* columna = new QVBoxLayout(&dialogo);
    columna->addWidget(textoDelDialogo(titulo, dialogo, anchoParaTexto(dialogo, *columna, 0),
                                       limiteDelTexto(dialogo.parentWidget()).height()));
    return columna;
}

// Todo diálogo real pasa por aquí: la leyenda se oculta mientras está abierto y una prueba puede
// revisarlo ya visible.
int ejecuta(QDialog& dialogo) {
    const PausaLeyendas pausa;
    std::function<void(QDialog&)> revision;
    {
        auto& e = estado();
        std::lock_guard<std::mutex> g(e.candado);
        revision = e.revision;
    }
    if (revision)
        QTimer::singleShot(0, &dialogo, [&dialogo, revision] {
            try {
                revision(dialogo);
            } catch (const std::exception& e) {
                qWarning("Error al revisar el diálogo: %s", e.what());
            } catch (...) {
                qWarning("Error al revisar el diálogo");
            }
            if (dialogo.isVisible()) dialogo.reject();
        });
    return dialogo.exec();
}

// Mensaje o pregunta: icono, el texto completo y los botones. El primero es el predeterminado; Esc
// o cerrar la ventana cuentan como el último. Devuelve si se eligió el primero.
bool dialogoConBotones(QWidget* padre, QStyle::StandardPixmap tipo, const QString& texto,
                       const QStringList& opciones) {
    QDialog dialogo(padre);
    preparaDialogo(dialogo);
    auto* columna = new QVBoxLayout(&dialogo);
    columna->setSizeConstraint(QLayout::SetFixedSize);
    auto* fila = new QHBoxLayout;
    columna->addLayout(fila);

    constexpr int kIcono = 48;
    constexpr int kSeparacion = 16;
    auto* icono = new QLabel(&dialogo);
    icono->setObjectName(QStringLiteral("IconoMensaje"));
    icono->setAccessibleName(tipo == QStyle::SP_MessageBoxQuestion ? QStringLiteral("Pregunta")
                                                                   : QStringLiteral("Aviso"));
    icono->setPixmap(dialogo.style()->standardIcon(tipo, nullptr, &dialogo).pixmap(kIcono));
    icono->setFixedSize(kIcono, kIcono);
    fila->setSpacing(kSeparacion);
    fila->addWidget(icono, 0, Qt::AlignTop);
    fila->addWidget(textoDelDialogo(texto, dialogo,
                                    anchoParaTexto(dialogo, *columna, kIcono + kSeparacion),
                                    limiteDelTexto(padre).height()));

    auto* botones = new QDialogButtonBox(&dialogo);
    for (qsizetype i = 0; i < opciones.size(); ++i) {
        QPushButton* boton =
            agregaBoton(botones, opciones.at(i),
                        i == 0 ? QDialogButtonBox::AcceptRole : QDialogButtonBox::RejectRole);
        boton->setDefault(i == 0);
    }
    QObject::connect(botones, &QDialogButtonBox::accepted, &dialogo, &QDialog::accept);
    QObject::connect(botones, &QDialogButtonBox::rejected, &dialogo, &QDialog::reject);
    columna->addWidget(botones);
    return ejecuta(dialogo) == QDialog::Accepted;
}

} // namespace

void Mensajes::muestra(const QString& texto) const {
    {
        auto& e = estado();
        std::lock_guard<std::mutex> g(e.candado);
        if (e.activo) {
            e.anotados << texto;
            return;
        }
    }
    dialogoConBotones(padre_, QStyle::SP_MessageBoxInformation, texto, {QStringLiteral("Aceptar")});
}

bool Mensajes::pregunta(const QString& texto) const {
    if (auto r = respuestaDePrueba<Respuesta>(texto)) return *r == Respuesta::Aceptar;
    return dialogoConBotones(padre_, QStyle::SP_MessageBoxQuestion, texto,
                             {QStringLiteral("Aceptar"), QStringLiteral("Cancelar")});
}

bool Mensajes::preguntaSiNo(const QString& texto) const {
    if (auto r = respuestaDePrueba<Respuesta>(texto)) return *r == Respuesta::Si;
    return dialogoConBotones(padre_, QStyle::SP_MessageBoxQuestion, texto,
                             {QStringLiteral("Sí"), QStringLiteral("No")});
}

int Mensajes::eligeOpcion(const QString& titulo, const QStringList& opciones,
                          int preseleccion) const {
    if (preseleccion < 0 || preseleccion >= opciones.size()) preseleccion = 0;
    {
        auto& e = estado();
        std::lock_guard<std::mutex> g(e.candado);
        if (e.activo) e.preseleccion = preseleccion;
    }
    if (auto r = respuestaDePrueba<int>(titulo)) {
        if (!*r || **r < 0 || **r >= opciones.size()) return -1;
        return **r;
    }
    QDialog dialogo(padre_);
    QVBoxLayout* columna = columnaConTitulo(dialogo, titulo);
    auto* grupo = new QButtonGroup(&dialogo);
    for (int i = 0; i < opciones.size(); ++i) {
        auto* opcion = new QRadioButton(opciones.at(i), &dialogo);
        opcion->setAccessibleName(opciones.at(i));
        opcion->setChecked(i == preseleccion);
        grupo->addButton(opcion, i);
        columna->addWidget(opcion);
    }
    // Con el foco en la marcada, Enter la acepta y las flechas se mueven desde ahí.
    if (QAbstractButton* marcada = grupo->button(preseleccion)) marcada->setFocus();
    columna->addWidget(botonesAceptarCancelar(dialogo));
    if (ejecuta(dialogo) != QDialog::Accepted) return -1;
    return grupo->checkedId();
}

std::optional<QString> Mensajes::pideTexto(const QString& titulo, const QString& inicial,
                                           int maximo) const {
    if (auto r = respuestaDePrueba<QString>(titulo)) {
        // Igual que el campo real, que no deja teclear más del máximo.
        if (*r) return (*r)->left(maximo);
        return std::nullopt;
    }
    QDialog dialogo(padre_);
    QVBoxLayout* columna = columnaConTitulo(dialogo, titulo);
    auto* campo = new QLineEdit(&dialogo);
    campo->setObjectName(QStringLiteral("CampoTexto"));
    campo->setAccessibleName(titulo);
    campo->setMaxLength(maximo);
    campo->setText(inicial);
    campo->selectAll();
    columna->addWidget(campo);
    columna->addWidget(botonesAceptarCancelar(dialogo));
    if (ejecuta(dialogo) != QDialog::Accepted) return std::nullopt;
    return campo->text();
}

std::optional<double> Mensajes::pideDecimal(const QString& titulo, double inicial,
                                            int decimales) const {
    if (auto r = respuestaDePrueba<double>(titulo)) {
        // El campo real redondea a sus decimales; la prueba ve lo mismo.
        if (*r) return Redondea(**r, decimales);
        return std::nullopt;
    }
    QDialog dialogo(padre_);
    QVBoxLayout* columna = columnaConTitulo(dialogo, titulo);
    auto* campo = new QDoubleSpinBox(&dialogo);
    campo->setObjectName(QStringLiteral("CampoDecimal"));
    campo->setAccessibleName(titulo);
    campo->setDecimals(decimales);
    campo->setRange(-1e12, 1e12);
    campo->setValue(inicial);
    campo->selectAll();
    columna->addWidget(campo);
    columna->addWidget(botonesAceptarCancelar(dialogo));
    if (ejecuta(dialogo) != QDialog::Accepted) return std::nullopt;
    return campo->value();
}

void Mensajes::modoPrueba(bool activo) {
    auto& e = estado();
    std::lock_guard<std::mutex> g(e.candado);
    e.activo = activo;
    e.cola.clear();
    e.anotados.clear();
    e.preseleccion = -1;
}

void Mensajes::respondeSiguiente(Respuesta respuesta) {
    encola(respuesta);
}

void Mensajes::respondeOpcion(int indice) {
    encola(indice);
}

void Mensajes::respondeTexto(const QString& texto) {
    encola(texto);
}

void Mensajes::respondeDecimal(double valor) {
    encola(valor);
}

int Mensajes::respuestasPendientes() {
    auto& e = estado();
    std::lock_guard<std::mutex> g(e.candado);
    return static_cast<int>(e.cola.size());
}

int Mensajes::ultimaPreseleccion() {
    auto& e = estado();
    std::lock_guard<std::mutex> g(e.candado);
    return e.preseleccion;
}

void Mensajes::revisaDialogos(std::function<void(QDialog&)> revision) {
    auto& e = estado();
    std::lock_guard<std::mutex> g(e.candado);
    e.revision = std::move(revision);
}

QStringList Mensajes::ultimos() {
    auto& e = estado();
    std::lock_guard<std::mutex> g(e.candado);
    QStringList lista;
    lista.swap(e.anotados);
    return lista;
}

} // namespace cajaplex
