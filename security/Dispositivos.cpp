#include "security/Dispositivos.h"

#include <QDateTime>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>
#include <QtDebug>

#include "datos/Auditoria.h"
#include "datos/ModuloDatos.h"
#include "datos/Transaccion.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/Sonidos.h"

namespace cajaplex {
namespace {

const char* const SqlConsultaDispositivos =
    "Select ReferenciaID, ifnull(descripcion, '') as descripcion, fechaEmision"
    " From DispositivosRED Order by descripcion, ReferenciaID";
const char* const SqlEliminaDispositivo =
    "Delete From DispositivosRED Where ReferenciaID = :ReferenciaID";

constexpr int kAltoRenglon = 48;

} // namespace

TDispositivosF::TDispositivosF(const Sesion& sesion, QWidget* padre)
    : QWidget(padre), sesion_(sesion),
      ConsultaDispositivos(ModuloDeDatos.ConexionBD, QString::fromUtf8(SqlConsultaDispositivos)),
      EliminaDispositivo(ModuloDeDatos.ConexionBD, QString::fromUtf8(SqlEliminaDispositivo)) {
    setObjectName(QStringLiteral("Dispositivos"));
    setWindowTitle(QStringLiteral("Dispositivos"));

    auto* titulo = creaEtiqueta(QStringLiteral("Estaciones Autorizadas"),
                                QStringLiteral("TituloDispositivos"), "titulo", this);
    recargar_ = creaBoton(QStringLiteral("Rotar"), QStringLiteral("Recargar"),
                          QStringLiteral("BotonRecargar"), nullptr, this);
    revocar_ = creaBoton(QStringLiteral("Cancelacion"), QStringLiteral("Revocar"),
                         QStringLiteral("BotonRevocar"), "peligro", this);
    auto* arriba = new QHBoxLayout;
    arriba->addWidget(titulo, 1);
    arriba->addWidget(recargar_);
    arriba->addWidget(revocar_);

    auto texto = [this](QString Dispositivo::*campo) {
        return [this, campo](int f) { return dispositivos_[static_cast<size_t>(f)].*campo; };
    };
    modelo_ =
        new ModeloTabla({{QStringLiteral("Descripción"), texto(&Dispositivo::descripcion)},
                         {QStringLiteral("Dispositivo"), texto(&Dispositivo::referencia)},
                         {QStringLiteral("Credenciales Emitidas"), texto(&Dispositivo::emitida)}},
                        this);
    lista_ = creaVistaTabla(QStringLiteral("ListaDispositivos"), modelo_, kAltoRenglon, this);
    lista_->setAccessibleName(QStringLiteral("Estaciones Autorizadas"));
    lista_->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    // Las otras columnas se ajustan a su contenido una vez por carga (ajustarlas en cada pintado
    // consulta renglones que, al cerrarse la pantalla, ya no existen).

    pie_ = creaEtiqueta(QStringLiteral("Número de Registros: 0"), QStringLiteral("PieDispositivos"),
                        "pie", this);

    auto* capa = new QVBoxLayout(this);
    capa->addLayout(arriba);
    capa->addWidget(lista_, 1);
    capa->addWidget(pie_);

    connect(revocar_, &QPushButton::clicked, this, &TDispositivosF::BotonRevocarClick);
    connect(recargar_, &QPushButton::clicked, this, &TDispositivosF::BotonRecargarClick);
    BotonRecargarClick();
}

void TDispositivosF::BotonRecargarClick() {
    ejecutaConLeyenda(this, QStringLiteral("Obteniendo Información"),
                      [this] { ConsultaDispositivosTimer(); });
}

void TDispositivosF::ConsultaDispositivosTimer() {
    std::vector<Dispositivo> leidos;
    try {
        ConsultaDispositivos.abre();
        for (const Registro& r : ConsultaDispositivos) {
            const QDateTime emitida = r.campo(QStringLiteral("fechaEmision")).comoFecha();
            leidos.push_back({r.campo(QStringLiteral("ReferenciaID")).comoTexto(),
                              r.campo(QStringLiteral("descripcion")).comoTexto(),
                              emitida.isValid()
                                  ? emitida.toString(QStringLiteral("dd/MM/yyyy HH:mm"))
                                  : QString()});
        }
        ConsultaDispositivos.cierra();
    } catch (const ErrorServicio& e) {
        Sonidos::reproduce(Sonido::Error);
        mensajes_.muestra(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Dispositivos:" << e.mensaje();
        return;
    }
    const int n = modelo_->reemplaza(dispositivos_, std::move(leidos));
    lista_->resizeColumnToContents(1);
    lista_->resizeColumnToContents(2);
    pie_->setText(QStringLiteral("Número de Registros: ") + QString::number(n));
}

void TDispositivosF::BotonRevocarClick() {
    const QModelIndexList elegidos = lista_->selectionModel()->selectedRows();
    if (elegidos.isEmpty()) {
        Sonidos::reproduce(Sonido::Error);
        mensajes_.muestra(QStringLiteral("Seleccione un Dispositivo"));
        return;
    }
    const Dispositivo dispositivo = dispositivos_.at(static_cast<size_t>(elegidos.first().row()));
    QString pregunta = QStringLiteral("¿Desea revocar el dispositivo %1 (%2)? Dejará de "
                                      "conectarse al servicio hasta instalarlo de nuevo.")
                           .arg(dispositivo.descripcion, dispositivo.referencia);
    if (dispositivo.referencia == sesion_.DispositivoID)
        pregunta += QStringLiteral(" Es esta misma estación.");
    if (!mensajes_.pregunta(pregunta)) return;
    Sonidos::reproduce(Sonido::Click);
    ejecutaConLeyenda(this, QStringLiteral("Registrando Transacción."),
                      [this, dispositivo] { RevocaDispositivoTimer(dispositivo); });
}

void TDispositivosF::RevocaDispositivoTimer(const Dispositivo& dispositivo) {
    try {
        Transaccion t(ModuloDeDatos.ConexionBD);
        EliminaDispositivo.parametro(QStringLiteral("ReferenciaID")).texto(dispositivo.referencia);
        EliminaDispositivo.ejecuta(t);
        // Otra estación ya lo revocó: no hay nada que anotar.
        if (EliminaDispositivo.filasAfectadas() > 0) {
            Auditoria::registra(t, sesion_,
                                {QString::fromUtf8(tipoAuditoria::Eliminacion),
                                 QString::fromUtf8(ModuloDispositivos),
                                 dispositivo.referencia,
                                 {},
                                 dispositivo.descripcion});
            t.confirma();
        }
    } catch (const ErrorServicio& e) {
        Sonidos::reproduce(Sonido::Error);
        mensajes_.muestra(QStringLiteral("Error al Registrar la transacción, Intente de nuevo"));
        qWarning() << "Revocar dispositivo:" << e.mensaje();
        return;
    }
    mensajes_.muestra(QStringLiteral("Dispositivo revocado"));
    ConsultaDispositivosTimer();
}

} // namespace cajaplex
