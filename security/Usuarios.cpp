#include "security/Usuarios.h"

#include <exception>

#include <QComboBox>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QScroller>
#include <QtDebug>

#include "datos/ModuloDatos.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/RolesRenglon.h"
#include "pantallas/Sonidos.h"

namespace cajaplex {
namespace {

constexpr int kLargoTexto = 255;
const QString kColorInactivo = QStringLiteral("#C0392B");

} // namespace

// ---------------------------------------------------------------------------------------------
// Edición
// ---------------------------------------------------------------------------------------------

TUsuariosEditaF::TUsuariosEditaF(const Sesion& sesion, QWidget* padre)
    : TEdicionCatalogoF(QStringLiteral("UsuariosEdita"), QStringLiteral("Usuarios"), padre),
      catalogo_(ModuloDeDatos.ConexionBD, sesion), perfiles_(ModuloDeDatos.ConexionBD, sesion) {
    auto* tarjeta = new QFrame(this);
    ponEstilo(tarjeta, "tarjeta");
    auto* rejilla = new QGridLayout(tarjeta);
    // Cada control con su título arriba, que también lo nombra para la accesibilidad.
    auto pon = [&](QWidget* c, const QString& texto, int renglon, int columna) {
        auto* titulo =
            creaEtiqueta(texto, QStringLiteral("Etiqueta") + c->objectName(), "subtitulo", tarjeta);
        titulo->setBuddy(c);
        rejilla->addWidget(titulo, renglon, columna);
        rejilla->addWidget(c, renglon + 1, columna);
    };
    auto texto = [&](const QString& nombre, const QString& titulo, int renglon) {
        auto* c = new QLineEdit(tarjeta);
        c->setObjectName(nombre);
        c->setMaxLength(kLargoTexto);
        c->setMinimumHeight(AltoControl);
        pon(c, titulo, renglon, 0);
        return c;
    };
    usuario_ = texto(QStringLiteral("NombreUsuario"), QStringLiteral("Usuario (Requerido)"), 0);
    nombre_ =
        texto(QStringLiteral("NombreCompleto"), QStringLiteral("Nombre Completo (Requerido)"), 2);
    contrasena_ = texto(QStringLiteral("Contrasena"), QStringLiteral("Contraseña"), 4);
    confirmacion_ =
        texto(QStringLiteral("ConfirmaContrasena"), QStringLiteral("Confirme la Contraseña"), 6);
    for (QLineEdit* c : {contrasena_, confirmacion_}) {
        c->setEchoMode(QLineEdit::Password);
        c->setInputMethodHints(Qt::ImhHiddenText | Qt::ImhNoPredictiveText);
    }
    perfil_ = new QComboBox(tarjeta);
    perfil_->setObjectName(QStringLiteral("PerfilUsuario"));
    perfil_->setMinimumHeight(AltoControl);
    pon(perfil_, QStringLiteral("Perfil (Requerido)"), 8, 0);

    auto* banderas = new QGridLayout;
    auto interruptor = [&](const QString& nombre, const QString& titulo, int renglon) {
        auto* b = new InterruptorSiNo(nombre, titulo, tarjeta);
        auto* etiqueta =
            creaEtiqueta(titulo, QStringLiteral("Etiqueta") + nombre, "subtitulo", tarjeta);
        etiqueta->setBuddy(b);
        banderas->addWidget(etiqueta, renglon, 0);
        banderas->addWidget(b, renglon, 1);
        return b;
    };
    activo_ = interruptor(QStringLiteral("Activo"), QStringLiteral("Activo"), 0);
    accesaMovil_ = interruptor(QStringLiteral("AccesaMovil"), QStringLiteral("Acceso Móvil"), 1);
    esAdmin_ = interruptor(QStringLiteral("EsAdmin"), QStringLiteral("Administrador"), 2);
    banderas->setColumnStretch(2, 1);
    rejilla->addLayout(banderas, 0, 1, 3, 1);

    empresas_ = new QListWidget(tarjeta);
    empresas_->setObjectName(QStringLiteral("EmpresasUsuario"));
    empresas_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    QScroller::grabGesture(empresas_->viewport(), QScroller::LeftMouseButtonGesture);
    auto* tituloEmpresas =
        creaEtiqueta(QStringLiteral("Empresas a las que puede entrar"),
                     QStringLiteral("EtiquetaEmpresasUsuario"), "subtitulo", tarjeta);
    tituloEmpresas->setBuddy(empresas_);
    rejilla->addWidget(tituloEmpresas, 3, 1);
    rejilla->addWidget(empresas_, 4, 1, 6, 1);
    rejilla->setColumnStretch(0, 1);
    rejilla->setColumnStretch(1, 1);

    ponContenido(tarjeta);
}

bool TUsuariosEditaF::cargaListas(const QList<int64_t>& empresasUsuario) {
    std::vector<Perfil> perfiles;
    std::vector<EmpresaUsuario> empresas;
    try {
        perfiles = perfiles_.consulta();
        empresas = catalogo_.empresasActivas();
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Usuarios, perfiles y empresas:" << e.what();
        return false;
    }
    perfil_->clear();
    for (const Perfil& p : perfiles)
        perfil_->addItem(p.nombre, QVariant::fromValue<qlonglong>(p.perfilID));
    empresas_->clear();
    for (const EmpresaUsuario& e : empresas) {
        auto* item = new QListWidgetItem(e.nombre, empresas_);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable);
        item->setCheckState(empresasUsuario.contains(e.empresaID) ? Qt::Checked : Qt::Unchecked);
        item->setData(RolEmpresaID, QVariant::fromValue<qlonglong>(e.empresaID));
    }
    return true;
}

void TUsuariosEditaF::muestra(const DatosUsuario& usuario) {
    usuario_->setText(usuario.nUsuario);
    nombre_->setText(usuario.nombre);
    contrasena_->clear();
    confirmacion_->clear();
    perfil_->setCurrentIndex(perfil_->findData(QVariant::fromValue<qlonglong>(usuario.perfilID)));
    activo_->setChecked(usuario.activo);
    accesaMovil_->setChecked(usuario.accesaMovil);
    esAdmin_->setChecked(usuario.esAdmin);
    almacenar_->setEnabled(true);
    usuario_->setFocus();
}

bool TUsuariosEditaF::nuevo() {
    if (!cargaListas({})) return false;
    anterior_.reset();
    titulo_->setText(QStringLiteral("Alta de Usuario"));
    contrasena_->setPlaceholderText({});
    confirmacion_->setPlaceholderText({});
    muestra(DatosUsuario{});
    return true;
}

bool TUsuariosEditaF::edita(const DatosUsuario& usuario) {
    DatosUsuario leido = usuario;
    try {
        leido.empresas = catalogo_.empresasDe(usuario.usuarioID);
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Usuarios, empresas del usuario:" << e.what();
        return false;
    }
    if (!cargaListas(leido.empresas)) return false;
    anterior_ = leido;
    titulo_->setText(QStringLiteral("Modifica Usuario"));
    const QString sinCambio = QStringLiteral("Vacía: conserva la contraseña actual");
    contrasena_->setPlaceholderText(sinCambio);
    confirmacion_->setPlaceholderText(sinCambio);
    muestra(leido);
    return true;
}

DatosUsuario TUsuariosEditaF::capturado() const {
    DatosUsuario u;
    u.usuarioID = anterior_ ? anterior_->usuarioID : 0;
    u.nUsuario = usuario_->text();
    u.nombre = nombre_->text();
    u.perfilID = perfil_->currentIndex() < 0 ? 0 : perfil_->currentData().toLongLong();
    u.perfil = perfil_->currentText();
    u.activo = activo_->isChecked();
    u.accesaMovil = accesaMovil_->isChecked();
    u.esAdmin = esAdmin_->isChecked();
    for (int i = 0; i < empresas_->count(); ++i)
        if (empresas_->item(i)->checkState() == Qt::Checked)
            u.empresas << empresas_->item(i)->data(RolEmpresaID).toLongLong();
    return u;
}

QString TUsuariosEditaF::almacena(int64_t& id) {
    DatosUsuario usuario = capturado();
    const QString rechazo = catalogo_.almacena(usuario, contrasena_->text(), confirmacion_->text(),
                                               anterior_ ? &*anterior_ : nullptr);
    id = usuario.usuarioID;
    // Registrada, la contraseña no se queda escrita en la página oculta.
    if (rechazo.isEmpty()) {
        contrasena_->clear();
        confirmacion_->clear();
    }
    return rechazo;
}

// ---------------------------------------------------------------------------------------------
// Lista
// ---------------------------------------------------------------------------------------------

TUsuariosF::TUsuariosF(const Sesion& sesion, QWidget* padre)
    : TListaCatalogoF(QStringLiteral("Usuarios"), QStringLiteral("Usuario"),
                      QStringLiteral("Usuarios"), padre),
      catalogo_(ModuloDeDatos.ConexionBD, sesion) {
    buscar_ = new QLineEdit(pagina_);
    buscar_->setObjectName(QStringLiteral("BuscarUsuario"));
    buscar_->setPlaceholderText(QStringLiteral("Usuario, Nombre ó Perfil"));
    buscar_->setAccessibleName(QStringLiteral("Buscar Usuario"));
    buscar_->setClearButtonEnabled(true);
    buscar_->setMinimumHeight(AltoControl);
    buscar_->addAction(icono(QStringLiteral("Buscar")), QLineEdit::LeadingPosition);
    connect(buscar_, &QLineEdit::textChanged, this, &TUsuariosF::BuscarUsuarioChange);
    capaLista_->insertWidget(0, buscar_);

    edicion_ = new TUsuariosEditaF(sesion, this);
    arma(edicion_);
}

void TUsuariosF::CargaTimer(int64_t seleccion) {
    try {
        usuarios_ = catalogo_.consulta();
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Usuarios, lista:" << e.what();
        return;
    }
    lista_->clear();
    for (const DatosUsuario& u : usuarios_) {
        auto* item = new QListWidgetItem(u.nombre, lista_);
        QStringList detalle{QStringLiteral("Perfil: ") + u.perfil};
        if (u.esAdmin) detalle << QStringLiteral("Administrador");
        if (!u.activo) detalle << QStringLiteral("Inactivo");
        item->setData(RolPrimeraLinea, u.nombre);
        item->setData(RolDatoDerecha, u.nUsuario);
        item->setData(RolSegundaLinea, detalle.join(QStringLiteral(" · ")));
        if (!u.activo) item->setData(RolColorSegundaLinea, kColorInactivo);
        item->setData(RolID, QVariant::fromValue<qlonglong>(u.usuarioID));
        if (u.usuarioID == seleccion) lista_->setCurrentItem(item);
    }
    BuscarUsuarioChange();
    if (lista_->currentItem()) lista_->scrollToItem(lista_->currentItem());
}

// Filtra lo ya leído, sin volver a la base: los usuarios son pocos.
void TUsuariosF::BuscarUsuarioChange() {
    const QString texto = buscar_->text().trimmed();
    int visibles = 0;
    for (int i = 0; i < lista_->count(); ++i) {
        QListWidgetItem* item = lista_->item(i);
        bool coincide = texto.isEmpty();
        for (int rol : {RolPrimeraLinea, RolDatoDerecha, RolSegundaLinea})
            coincide = coincide || item->data(rol).toString().contains(texto, Qt::CaseInsensitive);
        item->setHidden(!coincide);
        if (coincide) ++visibles;
    }
    if (lista_->currentItem() && lista_->currentItem()->isHidden()) lista_->setCurrentItem(nullptr);
    ponConteo(texto, visibles);
    actualizaAcciones();
}

std::optional<DatosUsuario> TUsuariosF::usuarioElegido() const {
    const int64_t id = idElegido();
    for (const DatosUsuario& u : usuarios_)
        if (u.usuarioID == id) return u;
    return std::nullopt;
}

void TUsuariosF::BotonNuevoClick() {
    Sonidos::reproduce(Sonido::Click);
    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"), [this] {
        if (edicion_->nuevo()) muestraEdicion();
    });
}

void TUsuariosF::BotonModificarClick() {
    const std::optional<DatosUsuario> u = usuarioElegido();
    if (!u) return;
    Sonidos::reproduce(Sonido::Click);
    const DatosUsuario usuario = *u;
    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"), [this, usuario] {
        if (edicion_->edita(usuario)) muestraEdicion();
    });
}

} // namespace cajaplex
