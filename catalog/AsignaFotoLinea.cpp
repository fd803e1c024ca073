#include "catalog/AsignaFotoLinea.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <QtDebug>

#include "catalog/CatalogoLineas.h"
#include "catalog/Fotos.h"
#include "datos/Auditoria.h"
#include "datos/ModuloDatos.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/Sonidos.h"

namespace cajaplex {
namespace {

const char* const SqlConsultaFoto =
    "Select Foto From Lineas Where empresaID = :EmpresaID and ID = :LineaID";
const char* const SqlModificaFoto = "Update Lineas Set Foto = :Foto, miniatura = :Miniatura "
                                    "Where empresaID = :EmpresaID and ID = :LineaID";
const char* const SqlEliminaFoto = "Update Lineas Set Foto = Null, miniatura = Null "
                                   "Where empresaID = :EmpresaID and ID = :LineaID";

constexpr int kAltoBoton = 48;
const QSize kVistaPrevia(420, 320);

QPushButton* boton(const QString& nombre, const QString& texto, const QString& imagen,
                   QWidget* padre) {
    auto* b = new QPushButton(icono(imagen), texto, padre);
    b->setObjectName(nombre);
    b->setMinimumHeight(kAltoBoton);
    return b;
}

} // namespace

TAsignaFotoLineaF::TAsignaFotoLineaF(const Sesion& sesion, int64_t lineaID,
                                     const QString& nombreLinea, QWidget* padre)
    : QDialog(padre), sesion_(sesion), lineaID_(lineaID), nombreLinea_(nombreLinea),
      ConsultaFoto(ModuloDeDatos.ConexionBD, QString::fromUtf8(SqlConsultaFoto)),
      ModificaFoto(ModuloDeDatos.ConexionBD, QString::fromUtf8(SqlModificaFoto)),
      EliminaFoto(ModuloDeDatos.ConexionBD, QString::fromUtf8(SqlEliminaFoto)) {
    setObjectName(QStringLiteral("AsignaFotoLinea"));
    setWindowTitle(QStringLiteral("Foto de la Línea"));

    auto* titulo = new QLabel(QStringLiteral("Foto de la Línea: ") + nombreLinea, this);
    titulo->setObjectName(QStringLiteral("TituloFotoLinea"));
    titulo->setTextFormat(Qt::PlainText);
    ponEstilo(titulo, "titulo");

    foto_ = new QLabel(this);
    foto_->setObjectName(QStringLiteral("FotoLinea"));
    foto_->setAlignment(Qt::AlignCenter);
    foto_->setMinimumSize(kVistaPrevia);
    ponEstilo(foto_, "tarjeta");

    seleccionar_ = boton(QStringLiteral("BotonSeleccionarFoto"), QStringLiteral("Seleccionar Foto"),
                         QStringLiteral("Foto"), this);
    rotar_ = boton(QStringLiteral("BotonRotarFoto"), QStringLiteral("Rotar"),
                   QStringLiteral("Rotar"), this);
    almacenar_ = boton(QStringLiteral("BotonAlmacenarFoto"), QStringLiteral("Almacenar Foto"),
                       QStringLiteral("Actualizacion"), this);
    ponEstilo(almacenar_, "primario");
    eliminar_ = boton(QStringLiteral("BotonEliminarFoto"), QStringLiteral("Eliminar Foto"),
                      QStringLiteral("Cancelacion"), this);
    ponEstilo(eliminar_, "peligro");
    cerrar_ = boton(QStringLiteral("BotonCerrar"), QStringLiteral("Cerrar"),
                    QStringLiteral("Regresar"), this);

    connect(seleccionar_, &QPushButton::clicked, this, &TAsignaFotoLineaF::SeleccionarFotoClick);
    connect(rotar_, &QPushButton::clicked, this, &TAsignaFotoLineaF::RotarFotoClick);
    connect(almacenar_, &QPushButton::clicked, this, &TAsignaFotoLineaF::AlmacenarFotoClick);
    connect(eliminar_, &QPushButton::clicked, this, &TAsignaFotoLineaF::EliminarFotoClick);
    connect(cerrar_, &QPushButton::clicked, this, [this] {
        Sonidos::reproduce(Sonido::Regresar);
        reject();
    });

    auto* botones = new QVBoxLayout;
    for (QPushButton* b : {seleccionar_, rotar_, almacenar_, eliminar_})
        botones->addWidget(b);
    botones->addStretch(1);
    botones->addWidget(cerrar_);
    auto* centro = new QHBoxLayout;
    centro->addWidget(foto_, 1);
    centro->addLayout(botones);
    auto* capa = new QVBoxLayout(this);
    capa->addWidget(titulo);
    capa->addLayout(centro, 1);

    muestraImagen();
    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"), [this] { CargaFotoTimer(); });
}

void TAsignaFotoLineaF::error(const QString& mensaje) {
    Sonidos::reproduce(Sonido::Error);
    mensajes_.muestra(mensaje);
}

void TAsignaFotoLineaF::muestraImagen() {
    if (imagen_.isNull()) {
        foto_->setPixmap(imagen(QStringLiteral("Lineas"), QSize(128, 128)));
    } else {
        const QSize espacio = foto_->size().expandedTo(kVistaPrevia);
        foto_->setPixmap(QPixmap::fromImage(
            imagen_.scaled(espacio, Qt::KeepAspectRatio, Qt::SmoothTransformation)));
    }
    rotar_->setEnabled(!imagen_.isNull());
    almacenar_->setEnabled(pendiente_);
    eliminar_->setEnabled(tieneFotoGuardada_);
}

void TAsignaFotoLineaF::CargaFotoTimer() {
    try {
        ConsultaFoto.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        ConsultaFoto.parametro(QStringLiteral("LineaID")).entero(lineaID_);
        ConsultaFoto.abre();
    } catch (const ErrorServicio& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Foto de la Línea:" << e.mensaje();
        return;
    }
    const QByteArray guardada = ConsultaFoto.campo(QStringLiteral("Foto")).comoBlob();
    ConsultaFoto.cierra();
    // Si mientras tanto ya se eligió un archivo, ese manda.
    if (!guardada.isEmpty() && !pendiente_) imagen_.loadFromData(guardada);
    tieneFotoGuardada_ = !guardada.isEmpty();
    muestraImagen();
}

void TAsignaFotoLineaF::SeleccionarFotoClick() {
    Sonidos::reproduce(Sonido::Click);
    const QString ruta = eligeArchivoImagen(this);
    if (!ruta.isEmpty()) cargaArchivo(ruta);
}

void TAsignaFotoLineaF::cargaArchivo(const QString& ruta) {
    QString motivo;
    const QImage leida = leeImagen(ruta, &motivo);
    if (leida.isNull()) {
        // Lo que se veía antes se queda.
        error(QStringLiteral("No seleccionó un archivo de Imagen válido"));
        qWarning() << "Foto de la Línea:" << ruta << motivo;
        return;
    }
    imagen_ = leida;
    pendiente_ = true;
    muestraImagen();
}

void TAsignaFotoLineaF::RotarFotoClick() {
    if (imagen_.isNull()) return;
    Sonidos::reproduce(Sonido::Click);
    ejecutaConLeyenda(this, QStringLiteral("Rotando Fotografía"), [this] { RotaFotoTimer(); });
}

void TAsignaFotoLineaF::RotaFotoTimer() {
    imagen_ = giraImagen(imagen_);
    pendiente_ = true;
    muestraImagen();
}

void TAsignaFotoLineaF::AlmacenarFotoClick() {
    if (!pendiente_ || imagen_.isNull()) return;
    Sonidos::reproduce(Sonido::Click);
    ejecutaConLeyenda(this, QStringLiteral("Modificando Foto"), [this] { ModificaFotoTimer(); });
}

void TAsignaFotoLineaF::ModificaFotoTimer() {
    const QByteArray foto = fotoParaGuardar(imagen_, LadoMaximoFoto);
    const QByteArray miniatura = miniaturaDe(imagen_, TamanoMiniatura);
    try {
        ModificaFoto.parametro(QStringLiteral("Foto")).blob(foto);
        ModificaFoto.parametro(QStringLiteral("Miniatura")).blob(miniatura);
        ModificaFoto.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        ModificaFoto.parametro(QStringLiteral("LineaID")).entero(lineaID_);
        Lote lote(ModuloDeDatos.ConexionBD);
        lote.agrega(ModificaFoto);
        Auditoria::agrega(lote, sesion_,
                          {tipoAuditoria::Actualizacion,
                           QString::fromUtf8(ModuloCatalogoProductos),
                           QStringLiteral("Foto de la Línea: ") + nombreLinea_,
                           {},
                           QStringLiteral("Foto asignada")});
        lote.ejecuta();
    } catch (const ErrorServicio& e) {
        // La imagen elegida se queda para intentar de nuevo.
        error(QString::fromUtf8(MensajeErrorRegistro));
        qWarning() << "Foto de la Línea, al guardar:" << e.mensaje();
        return;
    }
    miniatura_ = miniatura;
    cambiada_ = true;
    accept();
}

void TAsignaFotoLineaF::EliminarFotoClick() {
    if (!tieneFotoGuardada_) return;
    Sonidos::reproduce(Sonido::Click);
    ejecutaConLeyenda(this, QStringLiteral("Eliminando Foto"), [this] { EliminaFotoTimer(); });
}

void TAsignaFotoLineaF::EliminaFotoTimer() {
    try {
        EliminaFoto.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        EliminaFoto.parametro(QStringLiteral("LineaID")).entero(lineaID_);
        Lote lote(ModuloDeDatos.ConexionBD);
        lote.agrega(EliminaFoto);
        Auditoria::agrega(lote, sesion_,
                          {tipoAuditoria::Actualizacion,
                           QString::fromUtf8(ModuloCatalogoProductos),
                           QStringLiteral("Foto de la Línea: ") + nombreLinea_,
                           {},
                           QStringLiteral("Foto eliminada")});
        lote.ejecuta();
    } catch (const ErrorServicio& e) {
        error(QString::fromUtf8(MensajeErrorRegistro));
        qWarning() << "Foto de la Línea, al eliminar:" << e.mensaje();
        return;
    }
    miniatura_.clear();
    cambiada_ = true;
    accept();
}

} // namespace cajaplex
