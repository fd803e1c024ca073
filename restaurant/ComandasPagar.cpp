#include "restaurant/ComandasPagar.h"

#include <exception>

#include <QAbstractListModel>
#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QScroller>
#include <QTimer>
#include <QVBoxLayout>
#include <QtDebug>

#include "datos/Consulta.h"
#include "datos/MensajesComunes.h"
#include "datos/ModuloDatos.h"
#include "pantallas/DelegadoRenglon.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/RolesRenglon.h"
#include "pantallas/Sonidos.h"
#include "restaurant/CatalogoAreasComida.h"
#include "sales/DocumentoClonado.h"
#include "sales/PuntoVenta.h"
#include "sales/RegistroVenta.h"

namespace cajaplex {
namespace {

const char* const SqlConsultaComandasPagar =
    "Select A.area, B.clave, B.descripcion, B.tipo, C.id as Comanda, C.folio, "
    "ifnull(D.nombre, '') as Usuario, "
    "Cast ((JulianDay(C.fechaCierre) - JulianDay(C.fechaApertura)) * 24 * 60 As Integer) as "
    "MinutosTranscurridos "
    "From AreasComida A Join NodosComida B On B.empresaID = A.empresaID And B.area = A.ID "
    "Join Comanda C On C.empresaID = A.empresaID And C.nodoComida = B.id "
    "Left Join Usuarios D On D.UsuarioID = C.vendedor "
    "Where A.empresaID = :EmpresaID and B.status = 2 and Ifnull(B.activo, 0) = 1 "
    "and C.fechaApertura is not null and C.fechaCierre is not null and C.fechaPago is null "
    "and C.Cancelada = 0 order by A.area, B.descripcion";

// La misma condición con que el punto de venta la carga: cerrada, sin pagar y sin cancelar.
const char* const SqlComandaPorPagar =
    "Select count(*) as porPagar From Comanda Where empresaID = :EmpresaID and id = :IDComanda "
    "and fechaApertura is not null and fechaCierre is not null and fechaPago is null "
    "and Cancelada = 0";

const int kIconoNodo = 40;
const int kEsperaFiltro = 300;

QString tiempoTexto(int minutos) {
    if (minutos < 60) return QStringLiteral("%1 min").arg(minutos);
    return QStringLiteral("%1 h %2 min").arg(minutos / 60).arg(minutos % 60);
}

} // namespace

// Las cuentas leídas, pintadas por DelegadoRenglon: el nodo en negritas con el tiempo que estuvo
// ocupado a la derecha, y abajo, en el acento, el área, la comanda y el mesero.
class TComandasPagarF::Modelo final : public QAbstractListModel {
public:
    using QAbstractListModel::QAbstractListModel;

    void asigna(std::vector<ComandaPorPagar> comandas) {
        beginResetModel();
        comandas_ = std::move(comandas);
        endResetModel();
    }
    const ComandaPorPagar& comanda(int fila) const {
        return comandas_.at(static_cast<size_t>(fila));
    }

    int rowCount(const QModelIndex& padre = {}) const override {
        return padre.isValid() ? 0 : static_cast<int>(comandas_.size());
    }

    QVariant data(const QModelIndex& indice, int rol) const override {
        if (!indice.isValid() || indice.row() >= rowCount()) return {};
        const ComandaPorPagar& c = comanda(indice.row());
        switch (rol) {
        case Qt::DisplayRole:
        case Qt::AccessibleTextRole:
            return primeraLinea(c) + QStringLiteral(" ") + segundaLinea(c);
        case RolPrimeraLinea:
            return primeraLinea(c);
        case RolSegundaLinea:
            return segundaLinea(c);
        case RolColorSegundaLinea:
            return QString::fromLatin1(ColorAcento);
        case RolDatoDerecha:
            return tiempoTexto(c.minutos);
        case Qt::DecorationRole:
            return icono(imagenTipoNodo(c.tipo));
        case RolComanda:
            return QVariant::fromValue<qlonglong>(c.comanda);
        default:
            return {};
        }
    }

    static QString primeraLinea(const ComandaPorPagar& c) {
        return QStringLiteral("Nodo: ") + c.clave + QStringLiteral("  ") + c.descripcion;
    }
    static QString segundaLinea(const ComandaPorPagar& c) {
        return QStringLiteral("%1 · Comanda %2 · Atiende: %3")
            .arg(c.area)
            .arg(c.folio)
            .arg(c.mesero);
    }

private:
    std::vector<ComandaPorPagar> comandas_;
};

TComandasPagarF::TComandasPagarF(const Sesion& sesion, TPuntoVentaF& venta, QWidget* padre)
    : QWidget(padre), sesion_(sesion), venta_(&venta) {
    setObjectName(QStringLiteral("ComandasPagar"));
    setWindowTitle(QStringLiteral("Comandas a Pagar"));

    auto* anterior = creaBoton(QStringLiteral("Regresar"), QStringLiteral("Regresar"),
                               QStringLiteral("BotonAnterior"), nullptr, this);
    connect(anterior, &QPushButton::clicked, this, &TComandasPagarF::BotonAnteriorClick);
    auto* barra = new QHBoxLayout;
    barra->addWidget(anterior);
    barra->addWidget(
        creaEtiqueta(QStringLiteral("Comandas a Pagar"), QStringLiteral("Titulo"), "titulo", this),
        1);

    buscar_ = new QLineEdit(this);
    buscar_->setObjectName(QStringLiteral("BuscarTexto"));
    buscar_->setAccessibleName(QStringLiteral("Filtrar Comandas"));
    buscar_->setPlaceholderText(QStringLiteral("Nodo, área o mesero"));
    buscar_->setClearButtonEnabled(true);
    buscar_->setMinimumHeight(AltoControl);
    QAction* lupa =
        buscar_->addAction(icono(QStringLiteral("Buscar")), QLineEdit::TrailingPosition);
    connect(lupa, &QAction::triggered, this, &TComandasPagarF::FiltrarTexto);
    connect(buscar_, &QLineEdit::returnPressed, this, &TComandasPagarF::FiltrarTexto);
    connect(buscar_, &QLineEdit::textChanged, this, &TComandasPagarF::BuscarTextoChange);
    filtro_ = new QTimer(this);
    filtro_->setObjectName(QStringLiteral("TemporizadorFiltro"));
    filtro_->setSingleShot(true);
    filtro_->setInterval(kEsperaFiltro);
    connect(filtro_, &QTimer::timeout, this, &TComandasPagarF::FiltrarTexto);

    auto* encabezado = creaEtiqueta(QStringLiteral("Presione la LUPA para filtrar"),
                                    QStringLiteral("EncabezadoComandasPagar"), "subtitulo", this);
    modelo_ = new Modelo(this);
    lista_ = new QListView(this);
    lista_->setObjectName(QStringLiteral("ListaComandasPagar"));
    lista_->setAccessibleName(QStringLiteral("Comandas por Pagar"));
    lista_->setModel(modelo_);
    lista_->setItemDelegate(new DelegadoRenglon(kIconoNodo, lista_));
    lista_->setIconSize(QSize(kIconoNodo, kIconoNodo));
    lista_->setUniformItemSizes(true);
    lista_->setSelectionMode(QAbstractItemView::SingleSelection);
    lista_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    lista_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    lista_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    QScroller::grabGesture(lista_->viewport(), QScroller::LeftMouseButtonGesture);
    connect(lista_, &QListView::clicked, this, &TComandasPagarF::ListaComandasPagarItemClick);
    pie_ = creaEtiqueta(QStringLiteral("Número de Registros: 0"),
                        QStringLiteral("PieComandasPagar"), "pie", this);

    auto* capa = new QVBoxLayout(this);
    capa->addLayout(barra);
    capa->addWidget(buscar_);
    capa->addWidget(encabezado);
    capa->addWidget(lista_, 1);
    capa->addWidget(pie_);

    ejecutaConLeyenda(this, QStringLiteral("Consultando Comandas Cerradas"),
                      [this] { CargaComandasTimer(); });
}

void TComandasPagarF::error(const QString& mensaje) {
    Sonidos::reproduce(Sonido::Error);
    mensajes_.muestra(mensaje);
}

void TComandasPagarF::CargaComandasTimer() {
    std::vector<ComandaPorPagar> comandas;
    try {
        Consulta consulta(ModuloDeDatos.ConexionBD, QString::fromUtf8(SqlConsultaComandasPagar));
        consulta.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        consulta.abre();
        for (const Registro& r : consulta) {
            ComandaPorPagar c;
            c.comanda = r.campo(QStringLiteral("Comanda")).comoEntero();
            c.folio = r.campo(QStringLiteral("folio")).comoEntero();
            c.area = r.campo(QStringLiteral("area")).comoTexto();
            c.clave = r.campo(QStringLiteral("clave")).comoTexto();
            c.descripcion = r.campo(QStringLiteral("descripcion")).comoTexto();
            c.tipo = static_cast<int>(r.campo(QStringLiteral("tipo")).comoEntero());
            c.mesero = r.campo(QStringLiteral("Usuario")).comoTexto();
            c.minutos =
                static_cast<int>(r.campo(QStringLiteral("MinutosTranscurridos")).comoEntero());
            comandas.push_back(std::move(c));
        }
    } catch (const std::exception& e) {
        // La lista queda vacía: nada que cobrar de una lectura a medias.
        modelo_->asigna({});
        FiltrarTexto();
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Comandas a pagar:" << e.what();
        return;
    }
    modelo_->asigna(std::move(comandas));
    FiltrarTexto();
    if (modelo_->rowCount() == 0) mensajes_.muestra(QString::fromUtf8(MensajeSinComandasPorPagar));
}

void TComandasPagarF::BuscarTextoChange() {
    filtro_->start();
}

void TComandasPagarF::FiltrarTexto() {
    filtro_->stop();
    const QString texto = buscar_->text().trimmed();
    int visibles = 0;
    for (int fila = 0; fila < modelo_->rowCount(); ++fila) {
        const bool visible = texto.isEmpty() || modelo_->index(fila)
                                                    .data(Qt::DisplayRole)
                                                    .toString()
                                                    .contains(texto, Qt::CaseInsensitive);
        lista_->setRowHidden(fila, !visible);
        if (visible) ++visibles;
    }
    pie_->setText(texto.isEmpty()
                      ? QStringLiteral("Número de Comandas: ") +
                            QString::number(modelo_->rowCount())
                      : QStringLiteral("Registros Filtrados: ") + QString::number(visibles));
}

void TComandasPagarF::ListaComandasPagarItemClick(const QModelIndex& indice) {
    if (!indice.isValid()) return;
    Sonidos::reproduce(Sonido::Click);
    const ComandaPorPagar comanda = modelo_->comanda(indice.row());
    ejecutaConLeyenda(this, QStringLiteral("Cargando Comanda Detalles"),
                      [this, comanda] { CargaComandaDetallesTimer(comanda); });
}

void TComandasPagarF::CargaComandaDetallesTimer(const ComandaPorPagar& comanda) {
    if (!venta_) {
        close();
        return;
    }
    // Otra estación pudo cobrarla, cancelarla o reabrirla desde que se listó: entonces no se
    // carga nada y la lista se lee de nuevo.
    try {
        Consulta porPagar(ModuloDeDatos.ConexionBD, QString::fromUtf8(SqlComandaPorPagar));
        porPagar.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        porPagar.parametro(QStringLiteral("IDComanda")).entero(comanda.comanda);
        porPagar.abre();
        if (porPagar.campo(QStringLiteral("porPagar")).comoEntero() == 0) {
            error(QString::fromUtf8(MensajeComandaNoPorCobrar) + QStringLiteral(": ") +
                  QString::number(comanda.folio));
            CargaComandasTimer();
            return;
        }
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Comandas a pagar, revisión:" << e.what();
        return;
    }
    venta_->CargaDocumentoClonar(comanda.comanda, QString::fromLatin1(TipoClonarComanda),
                                 PrecioActual);
    close();
}

void TComandasPagarF::BotonAnteriorClick() {
    Sonidos::reproduce(Sonido::Regresar);
    close();
}

} // namespace cajaplex
