#include "security/Auditorias.h"

#include <vector>

#include <QAbstractListModel>
#include <QCalendarWidget>
#include <QDateEdit>
#include <QDateTime>
#include <QFrame>
#include <QGridLayout>
#include <QHash>
#include <QIcon>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QScroller>
#include <QVBoxLayout>
#include <QtDebug>

#include "datos/Auditoria.h"
#include "datos/ModuloDatos.h"
#include "pantallas/DelegadoRenglon.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/LectorRenglones.h"
#include "pantallas/Leyenda.h"
#include "pantallas/RolesRenglon.h"
#include "pantallas/Sonidos.h"

namespace cajaplex {
namespace {

const char* const SqlConsultaBitacoras =
    "Select A.fechaOperacion, A.tipoAuditoria, B.nombre as Usuario, A.datoNuevo, A.comentarios, "
    "A.moduloSistema From AuditoriasSistema A, Usuarios B Where A.empresaID = :EmpresaID And "
    "A.usuarioID = B.UsuarioID And date(A.fechaOperacion) between date(:fechaInicio) and "
    "date(:fechaFin) Order by A.moduloSistema, A.fechaOperacion";

const QString kFormatoFecha = QStringLiteral("dd/MM/yyyy");
constexpr int kIcono = 48;

} // namespace

// Los renglones de la bitácora ya leídos, pintados por DelegadoRenglon: todos miden lo mismo y se
// pintan con texto simple, así un mes de decenas de miles se lista y se desliza sin esperar. Lo que
// cuesta (fecha, textos, icono) se arma solo para los renglones que la vista pide.
class TAuditoriasF::Modelo final : public QAbstractListModel {
public:
    using QAbstractListModel::QAbstractListModel;

    void asigna(const Registros& registros) {
        const LectorRenglones lector(registros);
        const auto [cModulo, cTipo, cUsuario, cDato, cNota, cFecha] =
            lector.columnas({"moduloSistema", "tipoAuditoria", "Usuario", "datoNuevo",
                             "comentarios", "fechaOperacion"});
        std::vector<Bitacora> bitacoras;
        bitacoras.reserve(lector.renglones());
        for (size_t f = 0; f < lector.renglones(); ++f) {
            auto texto = [&](size_t c) { return lector.campo(f, c).comoTexto(); };
            bitacoras.push_back({texto(cModulo), texto(cTipo), texto(cUsuario), texto(cDato),
                                 texto(cNota), lector.valor(f, cFecha)});
        }
        beginResetModel();
        bitacoras_ = std::move(bitacoras);
        endResetModel();
    }

    int rowCount(const QModelIndex& padre = {}) const override {
        return padre.isValid() ? 0 : static_cast<int>(bitacoras_.size());
    }

    QVariant data(const QModelIndex& indice, int rol) const override {
        if (!indice.isValid() || indice.row() >= rowCount()) return {};
        const Bitacora& b = bitacoras_[static_cast<size_t>(indice.row())];
        switch (rol) {
        case RolPrimeraLinea:
        case RolModulo:
            return b.modulo;
        case RolDatoDerecha:
            return textoFecha(b);
        case RolSegundaLinea:
            return segundaLinea(b);
        case Qt::ToolTipRole:
            return QStringList{b.modulo, QStringLiteral("Usuario: ") + b.usuario, b.dato,
                               textoFecha(b), QStringLiteral("Nota: ") + b.nota}
                .join(QLatin1Char('\n'));
        case Qt::DecorationRole:
            return iconoDe(Auditoria::imagenDeTipo(b.tipo));
        case RolTipo:
            return b.tipo;
        case RolImagen:
            return Auditoria::imagenDeTipo(b.tipo);
        case RolFecha:
            return fecha(b);
        default:
            return {};
        }
    }

private:
    struct Bitacora {
        QString modulo;
        QString tipo;
        QString usuario;
        QString dato;
        QString nota;
        protocolo::Valor fecha; // se interpreta al pintarse
    };

    static QDateTime fecha(const Bitacora& b) { return Campo(QString(), &b.fecha).comoFecha(); }

    static QString textoFecha(const Bitacora& b) {
        const QDateTime f = fecha(b);
        return f.isValid() ? f.toString(kFormatoFecha + QStringLiteral(" HH:mm:ss"))
                           : Campo(QString(), &b.fecha).comoTexto();
    }

    // Una sola línea: lo guardado en varias se junta con espacios.
    static QString segundaLinea(const Bitacora& b) {
        QStringList partes{QStringLiteral("Usuario: ") + b.usuario};
        if (!b.dato.isEmpty()) partes << b.dato.simplified();
        if (!b.nota.isEmpty()) partes << QStringLiteral("Nota: ") + b.nota.simplified();
        return partes.join(QStringLiteral("   "));
    }

    // Pocas imágenes distintas para muchos renglones: cada una se carga una vez.
    QIcon iconoDe(const QString& imagen) const {
        auto it = iconos_.constFind(imagen);
        if (it == iconos_.constEnd()) it = iconos_.insert(imagen, icono(imagen));
        return it.value();
    }

    std::vector<Bitacora> bitacoras_;
    mutable QHash<QString, QIcon> iconos_;
};

TAuditoriasF::TAuditoriasF(const Sesion& sesion, QWidget* padre)
    : QWidget(padre), sesion_(sesion),
      ConsultaBitacoras(ModuloDeDatos.ConexionBD, QString::fromUtf8(SqlConsultaBitacoras)) {
    setObjectName(QStringLiteral("Auditorias"));
    setWindowTitle(QStringLiteral("Bitácoras del Sistema"));

    titulo_ = new QLabel(this);
    titulo_->setObjectName(QStringLiteral("TituloBitacoras"));
    titulo_->setTextFormat(Qt::PlainText);
    ponEstilo(titulo_, "titulo");

    modelo_ = new Modelo(this);
    lista_ = new QListView(this);
    lista_->setObjectName(QStringLiteral("ListaBitacoras"));
    lista_->setModel(modelo_);
    lista_->setItemDelegate(new DelegadoRenglon(kIcono, lista_));
    lista_->setIconSize(QSize(kIcono, kIcono));
    // Todos los renglones miden lo mismo: la vista no mide miles de renglones uno por uno.
    lista_->setUniformItemSizes(true);
    lista_->setSelectionMode(QAbstractItemView::SingleSelection);
    lista_->setEditTriggers(QAbstractItemView::NoEditTriggers);
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
        modelo_->asigna(ConsultaBitacoras.registros());
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
    // Lo leído ya está en el modelo: no se guarda dos veces.
    ConsultaBitacoras.cierra();
    titulo_->setText(QStringLiteral("Bitácoras ") + inicio_.toString(kFormatoFecha) +
                     QStringLiteral(" al ") + fin_.toString(kFormatoFecha));
    pie_->setText(QStringLiteral("Número de Registros: ") + QString::number(modelo_->rowCount()));
    if (modelo_->rowCount() == 0) {
        Sonidos::reproduce(Sonido::Error);
        mensajes_.muestra(QStringLiteral("No hubo resultados con esa información"));
        return;
    }
    Sonidos::reproduce(Sonido::MostrarResultados);
}

} // namespace cajaplex
