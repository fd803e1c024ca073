#include "shell/FrameLogeo.h"

#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPixmap>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "pantallas/HojaEstilo.h"
#include "security/InicioSesion.h"

namespace cajaplex {
namespace {

QLineEdit* campo(QWidget* padre, const char* nombre, const QString& indicacion) {
    auto* c = new QLineEdit(padre);
    c->setObjectName(QString::fromLatin1(nombre));
    c->setPlaceholderText(indicacion);
    return c;
}

QLabel* figura(QWidget* padre, const char* nombre, const QString& imagenNombre, int lado) {
    auto* f = new QLabel(padre);
    f->setObjectName(QString::fromLatin1(nombre));
    f->setPixmap(imagen(imagenNombre, QSize(lado, lado)));
    f->setFixedSize(lado, lado);
    return f;
}

// Un renglón con su icono a la izquierda, para usuario y contraseña.
QHBoxLayout* conIcono(QLabel* icono, QWidget* control) {
    auto* renglon = new QHBoxLayout;
    renglon->addWidget(icono);
    renglon->addWidget(control, 1);
    return renglon;
}

// La tarjeta centrada en la pantalla, de ancho fijo para que se lea igual a cualquier resolución.
QWidget* centrada(QFrame* tarjeta) {
    auto* fondo = new QWidget;
    auto* capa = new QGridLayout(fondo);
    capa->addWidget(tarjeta, 1, 1);
    capa->setRowStretch(0, 1);
    capa->setRowStretch(2, 1);
    capa->setColumnStretch(0, 1);
    capa->setColumnStretch(2, 1);
    return fondo;
}

} // namespace

TCuadroLogeo::TCuadroLogeo(QWidget* padre) : QWidget(padre) {
    setObjectName(QStringLiteral("VentanaDeLogeo"));
    paginas_ = new QStackedWidget(this);
    paginas_->addWidget(creaPaginaAcceso());
    paginas_->addWidget(creaPaginaEmpresas());
    auto* capa = new QVBoxLayout(this);
    capa->setContentsMargins(0, 0, 0, 0);
    capa->addWidget(paginas_);
}

QWidget* TCuadroLogeo::creaPaginaAcceso() {
    auto* tarjeta = new QFrame;
    ponEstilo(tarjeta, "tarjeta");
    tarjeta->setFixedWidth(440);

    auto* titulo = new QLabel(QStringLiteral("Cajaplex"), tarjeta);
    ponEstilo(titulo, "titulo");
    version_ = new QLabel(tarjeta);
    version_->setObjectName(QStringLiteral("ExperienceText"));
    ponEstilo(version_, "subtitulo");

    servidorUsuario_ =
        campo(tarjeta, "ServidorUsuario", QStringLiteral("Dominio ó IP del servidor"));
    servidorPuerto_ = campo(tarjeta, "ServidorPuerto", QStringLiteral("Puerto"));
    servidorPuerto_->setValidator(new QIntValidator(1, 65535, servidorPuerto_));
    servidorPuerto_->setMaximumWidth(110);
    nombreUsuario_ = campo(tarjeta, "NombreUsuario", QStringLiteral("Usuario"));
    contrasenaUsuario_ = campo(tarjeta, "ContrasenaUsuario", QStringLiteral("Contraseña"));
    contrasenaUsuario_->setEchoMode(QLineEdit::Password);
    dispositivoID_ = campo(tarjeta, "DispositivoID", {});
    dispositivoID_->setReadOnly(true);
    dispositivoID_->setFocusPolicy(Qt::NoFocus);

    ingresar_ = new QPushButton(QStringLiteral("Ingresar"), tarjeta);
    ingresar_->setObjectName(QStringLiteral("AuthenticateRectBTN"));
    ingresar_->setDefault(true);
    ponEstilo(ingresar_, "primario");
    auto* terminos = new QPushButton(QStringLiteral("Términos y Condiciones"), tarjeta);
    terminos->setObjectName(QStringLiteral("EtiquetaTerminosYCondiciones"));
    terminos->setFocusPolicy(Qt::NoFocus);
    ponEstilo(terminos, "enlace");

    auto* servidor = new QHBoxLayout;
    servidor->addWidget(servidorUsuario_, 1);
    servidor->addWidget(servidorPuerto_);

    auto* capa = new QVBoxLayout(tarjeta);
    capa->setSpacing(12);
    capa->addWidget(figura(tarjeta, "LogoImage", QStringLiteral("Logo"), 96), 0, Qt::AlignHCenter);
    capa->addWidget(titulo, 0, Qt::AlignHCenter);
    capa->addWidget(version_, 0, Qt::AlignHCenter);
    capa->addSpacing(8);
    // Cada campo lleva el texto de su etiqueta como nombre accesible (lectores de pantalla).
    auto etiqueta = [tarjeta](const QString& texto, QLineEdit* campoDe) {
        auto* e = new QLabel(texto, tarjeta);
        e->setBuddy(campoDe);
        campoDe->setAccessibleName(texto);
        return e;
    };
    servidorPuerto_->setAccessibleName(QStringLiteral("Puerto"));
    capa->addWidget(etiqueta(QStringLiteral("Servidor"), servidorUsuario_));
    capa->addLayout(servidor);
    capa->addWidget(etiqueta(QStringLiteral("Usuario"), nombreUsuario_));
    capa->addLayout(
        conIcono(figura(tarjeta, "MailImage", QStringLiteral("Correo"), 32), nombreUsuario_));
    capa->addWidget(etiqueta(QStringLiteral("Contraseña"), contrasenaUsuario_));
    capa->addLayout(
        conIcono(figura(tarjeta, "LockImage", QStringLiteral("Candado"), 32), contrasenaUsuario_));
    capa->addSpacing(8);
    capa->addWidget(ingresar_);
    capa->addWidget(etiqueta(QStringLiteral("Dispositivo"), dispositivoID_));
    capa->addWidget(dispositivoID_);
    capa->addWidget(terminos, 0, Qt::AlignHCenter);

    connect(ingresar_, &QPushButton::clicked, this, &TCuadroLogeo::ingresar);
    connect(terminos, &QPushButton::clicked, this, &TCuadroLogeo::terminosYCondiciones);
    connect(nombreUsuario_, &QLineEdit::returnPressed, contrasenaUsuario_,
            qOverload<>(&QWidget::setFocus));
    // Enter en el servidor o el puerto ingresa, como el botón.
    for (QLineEdit* c : {servidorUsuario_, servidorPuerto_})
        connect(c, &QLineEdit::returnPressed, ingresar_, &QPushButton::click);
    connect(contrasenaUsuario_, &QLineEdit::returnPressed, this,
            &TCuadroLogeo::ContrasenaUsuarioReturn);
    return centrada(tarjeta);
}

QWidget* TCuadroLogeo::creaPaginaEmpresas() {
    auto* tarjeta = new QFrame;
    ponEstilo(tarjeta, "tarjeta");
    tarjeta->setFixedWidth(520);

    auto* titulo = new QLabel(QStringLiteral("Seleccione la Empresa"), tarjeta);
    ponEstilo(titulo, "titulo");
    empresas_ = new QListWidget(tarjeta);
    empresas_->setObjectName(QStringLiteral("ListaEmpresas"));
    empresas_->setIconSize(QSize(48, 48));
    empresas_->setMinimumHeight(260);
    entrarEmpresa_ = new QPushButton(QStringLiteral("Ingresar a la Empresa"), tarjeta);
    entrarEmpresa_->setObjectName(QStringLiteral("BotonEmpresa"));
    ponEstilo(entrarEmpresa_, "primario");
    auto* regresar = new QPushButton(QStringLiteral("Regresar"), tarjeta);
    regresar->setObjectName(QStringLiteral("BotonRegresarEmpresas"));

    auto* botones = new QHBoxLayout;
    botones->addWidget(regresar);
    botones->addWidget(entrarEmpresa_, 1);
    auto* capa = new QVBoxLayout(tarjeta);
    capa->setSpacing(12);
    capa->addWidget(titulo);
    capa->addWidget(empresas_, 1);
    capa->addLayout(botones);

    auto acepta = [this] {
        if (empresas_->currentRow() >= 0) emit empresaAceptada(empresas_->currentRow());
    };
    connect(entrarEmpresa_, &QPushButton::clicked, this, acepta);
    connect(empresas_, &QListWidget::itemActivated, this, acepta);
    connect(regresar, &QPushButton::clicked, this, [this] {
        muestraAcceso();
        limpiaContrasena();
    });
    return centrada(tarjeta);
}

void TCuadroLogeo::ContrasenaUsuarioReturn() {
    if (nombreUsuario_->text().isEmpty() || contrasenaUsuario_->text().isEmpty()) return;
    focusNextChild();
    ingresar_->click();
}

DatosAcceso TCuadroLogeo::datos() const {
    return {servidorUsuario_->text(), servidorPuerto_->text(), nombreUsuario_->text(),
            contrasenaUsuario_->text()};
}

void TCuadroLogeo::ponServidor(const QString& direccion, int puerto) {
    servidorUsuario_->setText(direccion);
    servidorPuerto_->setText(QString::number(puerto));
}

void TCuadroLogeo::ponVersion(const QString& texto) {
    version_->setText(texto);
}

void TCuadroLogeo::ponDispositivo(const QString& id) {
    dispositivoID_->setText(id);
}

void TCuadroLogeo::limpiaContrasena() {
    contrasenaUsuario_->clear();
    posicionaCursorUsuario();
}

void TCuadroLogeo::posicionaCursorUsuario() {
    nombreUsuario_->setFocus();
    nombreUsuario_->selectAll();
}

void TCuadroLogeo::habilita(bool habilitado) {
    ingresar_->setEnabled(habilitado);
    entrarEmpresa_->setEnabled(habilitado);
}

void TCuadroLogeo::muestraEmpresas(const QList<Sesion>& empresas) {
    empresas_->clear();
    for (const Sesion& s : empresas) {
        auto* renglon = new QListWidgetItem(empresas_);
        renglon->setData(Qt::UserRole, QVariant::fromValue(s.EmpresaID));
        QPixmap logo;
        if (s.Logotipo1.isEmpty() || !logo.loadFromData(s.Logotipo1))
            logo = imagen(QStringLiteral("LogotipoVacio"), QSize(48, 48));
        renglon->setIcon(QIcon(logo));
        auto* etiqueta =
            new QLabel(QStringLiteral("%1<br><font color=\"%2\">%3</font></b>")
                           .arg(s.Rfc.toHtmlEscaped(), QString::fromLatin1(ColorAcento),
                                s.NombreEmpresa.toHtmlEscaped()));
        etiqueta->setTextFormat(Qt::RichText);
        etiqueta->setContentsMargins(52, 4, 8, 4); // a la derecha del logotipo
        etiqueta->setAttribute(Qt::WA_TransparentForMouseEvents);
        renglon->setSizeHint(QSize(0, 64));
        renglon->setToolTip(s.NombreEmpresa);
        empresas_->setItemWidget(renglon, etiqueta);
    }
    empresas_->setCurrentRow(0);
    paginas_->setCurrentIndex(1);
    empresas_->setFocus();
}

void TCuadroLogeo::muestraAcceso() {
    paginas_->setCurrentIndex(0);
}

int TCuadroLogeo::empresaElegida() const {
    return empresas_->currentRow();
}

} // namespace cajaplex
