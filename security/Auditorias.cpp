#include "security/Auditorias.h"

#include <algorithm>

#include <QAbstractItemView>
#include <QAbstractTextDocumentLayout>
#include <QCalendarWidget>
#include <QDateEdit>
#include <QDateTime>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QScroller>
#include <QStyledItemDelegate>
#include <QTextDocument>
#include <QVBoxLayout>
#include <QtDebug>

#include "datos/Auditoria.h"
#include "datos/ModuloDatos.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/Sonidos.h"

namespace cajaplex {
namespace {

const char* const SqlConsultaBitacoras =
    "Select A.fechaOperacion, A.tipoAuditoria, B.nombre as Usuario, A.datoNuevo, A.comentarios, "
    "A.moduloSistema From AuditoriasSistema A, Usuarios B Where A.empresaID = :EmpresaID And "
    "A.usuarioID = B.UsuarioID And date(A.fechaOperacion) between date(:fechaInicio) and "
    "date(:fechaFin) Order by A.moduloSistema, A.fechaOperacion";

const QString kFormatoFecha = QStringLiteral("dd/MM/yyyy");

// Lo que viene de la base se muestra tal cual, nunca como marcas.
QString comoHtml(const QString& texto) {
    return texto.toHtmlEscaped().replace(QLatin1Char('\n'), QStringLiteral("<br>"));
}

// Pinta cada renglón como texto enriquecido con la imagen de su tipo a la izquierda. Renglones
// altos y de todo el ancho para que se lean y se deslicen con el dedo.
class DelegadoBitacora final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* pintor, const QStyleOptionViewItem& opcion,
               const QModelIndex& indice) const override {
        QStyleOptionViewItem o = opcion;
        initStyleOption(&o, indice);
        const QWidget* vista = o.widget;
        QStyle* estilo = vista ? vista->style() : nullptr;
        if (estilo) estilo->drawPrimitive(QStyle::PE_PanelItemViewItem, &o, pintor, vista);

        const bool elegido = o.state.testFlag(QStyle::State_Selected);
        const QRect rectIcono(o.rect.left() + kMargen,
                              o.rect.top() + (o.rect.height() - kIcono) / 2, kIcono, kIcono);
        o.icon.paint(pintor, rectIcono, Qt::AlignCenter, elegido ? QIcon::Selected : QIcon::Normal);

        QTextDocument documento;
        prepara(documento, o, indice, o.rect.width());
        QAbstractTextDocumentLayout::PaintContext contexto;
        contexto.palette = o.palette;
        contexto.palette.setColor(
            QPalette::Text, o.palette.color(elegido ? QPalette::HighlightedText : QPalette::Text));
        const int arriba =
            std::max(kMargen, (o.rect.height() - static_cast<int>(documento.size().height())) / 2);
        pintor->save();
        pintor->translate(o.rect.left() + kIcono + 2 * kMargen, o.rect.top() + arriba);
        contexto.clip = QRectF(0, 0, documento.textWidth(), o.rect.height() - arriba);
        pintor->setClipRect(contexto.clip);
        documento.documentLayout()->draw(pintor, contexto);
        pintor->restore();
    }

    QSize sizeHint(const QStyleOptionViewItem& opcion, const QModelIndex& indice) const override {
        const auto* vista = qobject_cast<const QAbstractItemView*>(opcion.widget);
        const int ancho = vista ? vista->viewport()->width() : 480;
        QTextDocument documento;
        prepara(documento, opcion, indice, ancho);
        const int alto = static_cast<int>(documento.size().height()) + 2 * kMargen;
        return {ancho, std::max(kAltoMinimo, alto)};
    }

private:
    static constexpr int kIcono = 48;
    static constexpr int kMargen = 10;
    static constexpr int kAltoMinimo = 72;

    static void prepara(QTextDocument& documento, const QStyleOptionViewItem& opcion,
                        const QModelIndex& indice, int ancho) {
        documento.setDefaultFont(opcion.font);
        documento.setHtml(indice.data(TAuditoriasF::RolTexto).toString());
        documento.setTextWidth(std::max(80, ancho - kIcono - 3 * kMargen));
    }
};

} // namespace

TAuditoriasF::TAuditoriasF(const Sesion& sesion, QWidget* padre)
    : QWidget(padre), sesion_(sesion),
      ConsultaBitacoras(ModuloDeDatos.ConexionBD, QString::fromUtf8(SqlConsultaBitacoras)) {
    setObjectName(QStringLiteral("Auditorias"));
    setWindowTitle(QStringLiteral("Bitácoras del Sistema"));

    titulo_ = new QLabel(this);
    titulo_->setObjectName(QStringLiteral("TituloBitacoras"));
    titulo_->setTextFormat(Qt::PlainText);
    ponEstilo(titulo_, "titulo");

    lista_ = new QListWidget(this);
    lista_->setObjectName(QStringLiteral("ListaBitacoras"));
    lista_->setItemDelegate(new DelegadoBitacora(lista_));
    lista_->setIconSize(QSize(48, 48));
    lista_->setResizeMode(QListView::Adjust); // la altura de cada renglón depende del ancho
    lista_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    lista_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    QScroller::grabGesture(lista_->viewport(), QScroller::LeftMouseButtonGesture);

    pie_ = new QLabel(this);
    pie_->setObjectName(QStringLiteral("PieBitacoras"));
    pie_->setTextFormat(Qt::PlainText);
    ponEstilo(pie_, "pie");

    auto* capa = new QVBoxLayout(this);
    capa->addWidget(creaRango());
    capa->addWidget(titulo_);
    capa->addWidget(lista_, 1);
    capa->addWidget(pie_);

    connect(mostrar_, &QPushButton::clicked, this, &TAuditoriasF::MostrarResultadosClick);
}

QWidget* TAuditoriasF::creaRango() {
    auto* tarjeta = new QFrame(this);
    ponEstilo(tarjeta, "tarjeta");
    auto* rejilla = new QGridLayout(tarjeta);

    auto* indicacion = new QLabel(QStringLiteral("Seleccione Rango de Fechas"), tarjeta);
    indicacion->setObjectName(QStringLiteral("EtiquetaRango"));
    ponEstilo(indicacion, "subtitulo");
    rejilla->addWidget(indicacion, 0, 0, 1, 3);

    // Cada fecha con su nombre arriba y la ayuda abajo; el calendario es grande para el dedo.
    auto creaFecha = [&](const QString& nombre, const QString& etiqueta, int columna) {
        auto* titulo = new QLabel(etiqueta, tarjeta);
        titulo->setObjectName(QStringLiteral("Etiqueta") + nombre);
        auto* fecha = new QDateEdit(QDate::currentDate(), tarjeta);
        fecha->setObjectName(nombre);
        fecha->setCalendarPopup(true);
        fecha->setDisplayFormat(kFormatoFecha);
        fecha->setMinimumHeight(48);
        fecha->calendarWidget()->setMinimumSize(380, 300);
        const QString textoAyuda = QStringLiteral("Presione aquí para modificar fecha");
        fecha->setToolTip(textoAyuda);
        auto* ayuda = new QLabel(textoAyuda, tarjeta);
        ayuda->setObjectName(QStringLiteral("Ayuda") + nombre);
        titulo->setBuddy(fecha);
        rejilla->addWidget(titulo, 1, columna);
        rejilla->addWidget(fecha, 2, columna);
        rejilla->addWidget(ayuda, 3, columna);
        return fecha;
    };
    fechaInicio_ = creaFecha(QStringLiteral("FechaInicio"), QStringLiteral("Fecha de Inicio"), 0);
    fechaFin_ = creaFecha(QStringLiteral("FechaFin"), QStringLiteral("Fecha de Fin"), 1);

    mostrar_ = new QPushButton(QStringLiteral("Mostrar Resultados"), tarjeta);
    mostrar_->setObjectName(QStringLiteral("MostrarResultados"));
    mostrar_->setMinimumHeight(48);
    ponEstilo(mostrar_, "primario");
    rejilla->addWidget(mostrar_, 2, 2);
    rejilla->setColumnStretch(3, 1);
    return tarjeta;
}

void TAuditoriasF::MostrarResultadosClick() {
    const QDate inicio = fechaInicio_->date();
    const QDate fin = fechaFin_->date();
    if (inicio > fin) {
        Sonidos::reproduce(Sonido::Error);
        mensajes_.muestra(
            QStringLiteral("La Fecha de Inicio debe ser igual o menor a la Fecha de Fin"));
        return;
    }
    inicio_ = inicio;
    fin_ = fin;
    // Una sola lectura a la vez: otro toque mientras se lee no la duplica.
    mostrar_->setEnabled(false);
    ejecutaConLeyenda(this, QStringLiteral("Obteniendo Información"),
                      [this] { ConsultaBitacorasTimer(); });
}

void TAuditoriasF::ConsultaBitacorasTimer() {
    mostrar_->setEnabled(true);
    try {
        ConsultaBitacoras.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        ConsultaBitacoras.parametro(QStringLiteral("fechaInicio"))
            .texto(inicio_.toString(QStringLiteral("yyyy-MM-dd")));
        ConsultaBitacoras.parametro(QStringLiteral("fechaFin"))
            .texto(fin_.toString(QStringLiteral("yyyy-MM-dd")));
        ConsultaBitacoras.abre();
    } catch (const ErrorServicio& e) {
        // Lo listado antes y las fechas se quedan como estaban, para intentar de nuevo.
        Sonidos::reproduce(Sonido::Error);
        mensajes_.muestra(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Bitácoras del Sistema:" << e.mensaje();
        return;
    }
    llenaLista();
}

void TAuditoriasF::llenaLista() {
    lista_->clear();
    for (const Registro& renglon : ConsultaBitacoras) {
        const QString modulo = renglon.campo(QStringLiteral("moduloSistema")).comoTexto();
        const QString tipo = renglon.campo(QStringLiteral("tipoAuditoria")).comoTexto();
        const Campo campoFecha = renglon.campo(QStringLiteral("fechaOperacion"));
        const QDateTime fecha = campoFecha.comoFecha();
        const QString textoFecha = fecha.isValid()
                                       ? fecha.toString(kFormatoFecha + QStringLiteral(" HH:mm:ss"))
                                       : campoFecha.comoTexto();
        const QString texto =
            QStringLiteral(
                "<b>%1</b><br>Usuario: %2<br>%3<b><br><font color=\"#1E90FF\">%4</font></b>"
                "<br>Nota: %5")
                .arg(comoHtml(modulo),
                     comoHtml(renglon.campo(QStringLiteral("Usuario")).comoTexto()),
                     comoHtml(renglon.campo(QStringLiteral("datoNuevo")).comoTexto()),
                     comoHtml(textoFecha),
                     comoHtml(renglon.campo(QStringLiteral("comentarios")).comoTexto()));
        const QString imagenTipo = Auditoria::imagenDeTipo(tipo);
        auto* item = new QListWidgetItem(icono(imagenTipo), QString(), lista_);
        item->setData(RolModulo, modulo);
        item->setData(RolTipo, tipo);
        item->setData(RolImagen, imagenTipo);
        item->setData(RolFecha, fecha);
        item->setData(RolTexto, texto);
    }

    titulo_->setText(QStringLiteral("Bitácoras ") + inicio_.toString(kFormatoFecha) +
                     QStringLiteral(" al ") + fin_.toString(kFormatoFecha));
    pie_->setText(QStringLiteral("Número de Registros: ") + QString::number(lista_->count()));
    if (lista_->count() == 0) {
        Sonidos::reproduce(Sonido::Error);
        mensajes_.muestra(QStringLiteral("No hubo resultados con esa información"));
        return;
    }
    Sonidos::reproduce(Sonido::MostrarResultados);
}

} // namespace cajaplex
