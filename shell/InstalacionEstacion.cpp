#include "shell/InstalacionEstacion.h"

#include <utility>

#include <QCheckBox>
#include <QFontDatabase>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <QtDebug>

#include "datos/ConexionBD.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/Sonidos.h"

namespace cajaplex {

TInstalacionEstacionF::TInstalacionEstacionF(AjustesEstacion& ajustes, DatosInstalacion datos,
                                             QWidget* padre)
    : QDialog(padre), ajustes_(ajustes), datos_(std::move(datos)) {
    setObjectName(QStringLiteral("InstalacionEstacion"));
    setWindowTitle(QStringLiteral("Instalación de la Estación"));
    setMinimumWidth(620);

    auto* capa = new QVBoxLayout(this);
    capa->addWidget(creaEtiqueta(QStringLiteral("Instalación de la Estación"),
                                 QStringLiteral("TituloInstalacion"), "titulo", this));

    auto* tarjeta = new QFrame(this);
    ponEstilo(tarjeta, "tarjeta");
    auto* rejilla = new QGridLayout(tarjeta);
    int renglon = 0;
    auto fila = [&](const QString& texto, const QString& nombre, QWidget* control) {
        auto* etiqueta = creaEtiqueta(texto, QStringLiteral("Etiqueta") + nombre, nullptr, tarjeta);
        etiqueta->setBuddy(control);
        rejilla->addWidget(etiqueta, renglon, 0);
        rejilla->addWidget(control, renglon++, 1);
    };

    const QString servidor =
        QStringLiteral("%1:%2 (%3)")
            .arg(datos_.direccion, QString::number(datos_.puerto),
                 datos_.servicio.tls ? QStringLiteral("HTTPS")
                                     : QStringLiteral("sin cifrado, esta máquina"));
    fila(QStringLiteral("Servicio"), QStringLiteral("ServicioInstalacion"),
         creaEtiqueta(servidor, QStringLiteral("ServicioInstalacion"), "dato", tarjeta));

    // En dos renglones de 16 bytes, como se comparan a ojo contra la salida del servicio.
    const QString& texto = datos_.servicio.huella;
    auto* huella =
        creaEtiqueta(datos_.servicio.tls ? texto.left(47) + QLatin1Char('\n') + texto.mid(48)
                                         : QStringLiteral("—"),
                     QStringLiteral("HuellaServicio"), nullptr, tarjeta);
    QFont fija = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    fija.setPointSizeF(fija.pointSizeF() * 1.2);
    huella->setFont(fija);
    huella->setTextInteractionFlags(Qt::TextSelectableByMouse);
    fila(QStringLiteral("Huella SHA-256"), QStringLiteral("HuellaServicio"), huella);

    confirmaHuella_ = new QCheckBox(
        QStringLiteral("La huella coincide con la que mostró el servicio al arrancar"), tarjeta);
    confirmaHuella_->setObjectName(QStringLiteral("ConfirmaHuella"));
    confirmaHuella_->setAccessibleName(confirmaHuella_->text());
    confirmaHuella_->setMinimumHeight(AltoControl);
    confirmaHuella_->setVisible(datos_.servicio.tls);
    rejilla->addWidget(confirmaHuella_, renglon++, 1);

    auto campo = [&](const QString& nombre) {
        auto* c = new QLineEdit(tarjeta);
        c->setObjectName(nombre);
        c->setMinimumHeight(AltoControl);
        return c;
    };
    administrador_ = campo(QStringLiteral("UsuarioAdministrador"));
    fila(QStringLiteral("Usuario Administrador"), QStringLiteral("UsuarioAdministrador"),
         administrador_);
    contrasena_ = campo(QStringLiteral("ContrasenaAdministrador"));
    contrasena_->setEchoMode(QLineEdit::Password);
    fila(QStringLiteral("Contraseña"), QStringLiteral("ContrasenaAdministrador"), contrasena_);
    descripcion_ = campo(QStringLiteral("DescripcionEstacion"));
    descripcion_->setText(datos_.descripcion);
    descripcion_->setMaxLength(100);
    fila(QStringLiteral("Descripción de la Estación"), QStringLiteral("DescripcionEstacion"),
         descripcion_);
    rejilla->setColumnStretch(1, 1);
    capa->addWidget(tarjeta);

    auto* ayuda = creaEtiqueta(
        QStringLiteral("La contraseña del administrador no se guarda: la estación recibe "
                       "credenciales propias que se pueden revocar en Dispositivos."),
        QStringLiteral("AyudaInstalacion"), nullptr, this);
    ayuda->setWordWrap(true);
    capa->addWidget(ayuda);

    auto* botones = new QHBoxLayout;
    botones->addStretch(1);
    auto* cancelar = new QPushButton(QStringLiteral("Cancelar"), this);
    cancelar->setObjectName(QStringLiteral("BotonCancelar"));
    cancelar->setMinimumHeight(AltoControl);
    instalar_ = new QPushButton(QStringLiteral("Instalar"), this);
    instalar_->setObjectName(QStringLiteral("BotonInstalar"));
    instalar_->setMinimumHeight(AltoControl);
    instalar_->setDefault(true);
    ponEstilo(instalar_, "primario");
    botones->addWidget(cancelar);
    botones->addWidget(instalar_);
    capa->addLayout(botones);

    connect(cancelar, &QPushButton::clicked, this, &QDialog::reject);
    connect(instalar_, &QPushButton::clicked, this, &TInstalacionEstacionF::BotonInstalarClick);
    administrador_->setFocus();
}

void TInstalacionEstacionF::BotonInstalarClick() {
    QString rechazo;
    if (administrador_->text().trimmed().isEmpty())
        rechazo = QStringLiteral("Ingrese Usuario");
    else if (contrasena_->text().isEmpty())
        rechazo = QStringLiteral("Ingrese Contraseña");
    else if (datos_.servicio.tls && !confirmaHuella_->isChecked())
        rechazo = QStringLiteral("Confirme que la huella coincide con la que mostró el servicio");
    if (!rechazo.isEmpty()) {
        Sonidos::reproduce(Sonido::Error);
        mensajes_.muestra(rechazo);
        return;
    }
    instalar_->setEnabled(false);
    ejecutaConLeyenda(this, QStringLiteral("Instalando Estación"),
                      [this] { InstalaEstacionTimer(); });
}

void TInstalacionEstacionF::InstalaEstacionTimer() {
    instalar_->setEnabled(true);
    DatosInstalacion datos = datos_;
    datos.administrador = administrador_->text().trimmed();
    datos.contrasena = contrasena_->text();
    datos.descripcion = descripcion_->text().trimmed();
    try {
        instalaEstacion(ajustes_, datos);
    } catch (const ErrorServicio& e) {
        // Lo escrito se queda para corregirlo e intentar de nuevo.
        qWarning() << "Instalación de la estación:" << e.mensaje();
        Sonidos::reproduce(Sonido::Error);
        mensajes_.muestra(mensajeInstalacion(e));
        return;
    }
    contrasena_->clear();
    mensajes_.muestra(QStringLiteral("Estación instalada"));
    accept();
}

} // namespace cajaplex
