#include "security/Perfiles.h"

#include <exception>

#include <QColor>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QScroller>
#include <QTabWidget>
#include <QVBoxLayout>
#include <QtDebug>

#include "datos/ModuloDatos.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/RegistroModulos.h"
#include "pantallas/RolesRenglon.h"
#include "pantallas/Sonidos.h"

namespace cajaplex {
namespace {

constexpr int kLargoTexto = 255;
const QString kColorSinModulo = QStringLiteral("#7B8794");

} // namespace

// ---------------------------------------------------------------------------------------------
// Edición
// ---------------------------------------------------------------------------------------------

TPerfilesEditaF::TPerfilesEditaF(const Sesion& sesion, QWidget* padre)
    : TEdicionCatalogoF(QStringLiteral("PerfilesEdita"), QStringLiteral("Perfiles de Usuario"),
                        padre),
      catalogo_(ModuloDeDatos.ConexionBD, sesion) {
    auto* contenido = new QWidget(this);
    nombre_ = new QLineEdit(contenido);
    nombre_->setObjectName(QStringLiteral("NombrePerfil"));
    nombre_->setMaxLength(kLargoTexto);
    nombre_->setMinimumHeight(AltoControl);
    auto* tituloNombre =
        creaEtiqueta(QStringLiteral("Nombre del Perfil (Requerido)"),
                     QStringLiteral("EtiquetaNombrePerfil"), "subtitulo", contenido);
    tituloNombre->setBuddy(nombre_);

    auto* paginas = new QTabWidget(contenido);
    paginas->setObjectName(QStringLiteral("PaginasPerfil"));
    auto* paginaMenus = new QWidget;
    paginaMenus->setObjectName(QStringLiteral("PaginaMenus"));
    menus_ = new QListWidget(paginaMenus);
    menus_->setObjectName(QStringLiteral("MenusPerfil"));
    menus_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    QScroller::grabGesture(menus_->viewport(), QScroller::LeftMouseButtonGesture);
    auto* indicacion =
        creaEtiqueta(QStringLiteral("Marque las opciones del menú que el perfil puede abrir"),
                     QStringLiteral("EtiquetaMenusPerfil"), "subtitulo", paginaMenus);
    indicacion->setBuddy(menus_);
    auto* capaMenus = new QVBoxLayout(paginaMenus);
    capaMenus->addWidget(indicacion);
    capaMenus->addWidget(menus_, 1);
    paginas->addTab(paginaMenus, QStringLiteral("Menú"));
    const QList<GrupoDerechos>& grupos = gruposDerechos();
    for (int i = 0; i < grupos.size(); ++i)
        paginas->addTab(creaDerechos(i), grupos[i].titulo);

    auto* capa = new QVBoxLayout(contenido);
    capa->setContentsMargins(0, 0, 0, 0);
    capa->addWidget(tituloNombre);
    capa->addWidget(nombre_);
    capa->addWidget(paginas, 1);
    ponContenido(contenido);
}

QWidget* TPerfilesEditaF::creaDerechos(int grupo) {
    const GrupoDerechos& g = gruposDerechos().at(grupo);
    auto* contenido = new QWidget;
    auto* rejilla = new QGridLayout(contenido);
    QHash<QString, InterruptorSiNo*> interruptores;
    int renglon = 0;
    for (const DefinicionDerecho& d : g.derechos) {
        auto* b = new InterruptorSiNo(g.tabla + QLatin1Char('.') + d.columna, d.titulo, contenido);
        auto* etiqueta = creaEtiqueta(d.titulo, QStringLiteral("Etiqueta") + b->objectName(),
                                      nullptr, contenido);
        etiqueta->setBuddy(b);
        rejilla->addWidget(etiqueta, renglon, 0);
        rejilla->addWidget(b, renglon, 1);
        interruptores.insert(d.columna, b);
        ++renglon;
    }
    rejilla->setColumnStretch(2, 1);
    rejilla->setRowStretch(renglon, 1);
    derechos_.append(interruptores);

    auto* desliza = new QScrollArea;
    desliza->setObjectName(QStringLiteral("Pagina") + g.tabla);
    desliza->setWidgetResizable(true);
    desliza->setFrameShape(QFrame::NoFrame);
    desliza->setWidget(contenido);
    QScroller::grabGesture(desliza->viewport(), QScroller::LeftMouseButtonGesture);
    return desliza;
}

void TPerfilesEditaF::muestra(const DatosPerfil& perfil) {
    nombre_->setText(perfil.nombre);
    const QStringList registrados = RegistroModulos::permisos();
    menus_->clear();
    for (const PermisoMenu& m : perfil.menus) {
        auto* item = new QListWidgetItem(m.menu, menus_);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable);
        item->setCheckState(m.acceso ? Qt::Checked : Qt::Unchecked);
        const bool sinModulo = !registrados.contains(m.menu);
        item->setData(RolSinModulo, sinModulo);
        // Se conserva aunque ya no haya pantalla que lo pida; se ve atenuado.
        if (sinModulo) {
            item->setForeground(QColor(kColorSinModulo));
            item->setToolTip(QStringLiteral("Ningún módulo instalado usa este permiso"));
        }
    }
    for (qsizetype i = 0; i < derechos_.size(); ++i)
        for (auto it = derechos_[i].cbegin(); it != derechos_[i].cend(); ++it)
            it.value()->setChecked(perfil.derechos.value(i).value(it.key()));
    almacenar_->setEnabled(true);
    nombre_->setFocus();
}

void TPerfilesEditaF::nuevo() {
    anterior_.reset();
    titulo_->setText(QStringLiteral("Alta de Perfil de Usuario"));
    muestra(CatalogoPerfiles::nuevo(RegistroModulos::permisos()));
}

bool TPerfilesEditaF::edita(const Perfil& perfil) {
    DatosPerfil leido;
    try {
        leido = catalogo_.lee(perfil, RegistroModulos::permisos());
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Perfiles de Usuario, permisos:" << e.what();
        return false;
    }
    anterior_ = leido;
    titulo_->setText(QStringLiteral("Modifica Perfil de Usuario"));
    muestra(leido);
    return true;
}

DatosPerfil TPerfilesEditaF::capturado() const {
    DatosPerfil p;
    p.perfilID = anterior_ ? anterior_->perfilID : 0;
    p.nombre = nombre_->text();
    for (int i = 0; i < menus_->count(); ++i)
        p.menus.append({menus_->item(i)->text(), menus_->item(i)->checkState() == Qt::Checked});
    for (const QHash<QString, InterruptorSiNo*>& grupo : derechos_) {
        QHash<QString, bool> valores;
        for (auto it = grupo.cbegin(); it != grupo.cend(); ++it)
            valores.insert(it.key(), it.value()->isChecked());
        p.derechos.append(valores);
    }
    return p;
}

QString TPerfilesEditaF::almacena(int64_t& id) {
    DatosPerfil perfil = capturado();
    const QString rechazo = catalogo_.almacena(perfil, anterior_ ? &*anterior_ : nullptr);
    id = perfil.perfilID;
    return rechazo;
}

// ---------------------------------------------------------------------------------------------
// Lista
// ---------------------------------------------------------------------------------------------

TPerfilesF::TPerfilesF(const Sesion& sesion, QWidget* padre)
    : TListaCatalogoF(QStringLiteral("Perfiles"), QStringLiteral("Perfil"),
                      QStringLiteral("Perfiles de Usuario"), padre),
      catalogo_(ModuloDeDatos.ConexionBD, sesion) {
    capaLista_->insertWidget(
        0, creaEtiqueta(QStringLiteral("Toque dos veces un Perfil para modificarlo"),
                        QStringLiteral("IndicacionPerfiles"), "subtitulo", pagina_));
    borrar_ = creaBoton(QStringLiteral("Cancelacion"), QStringLiteral("Borrar"),
                        QStringLiteral("BotonBorrar"), "peligro", pagina_);
    connect(borrar_, &QPushButton::clicked, this, &TPerfilesF::BotonBorrarClick);
    abajo_->insertWidget(1, borrar_);

    edicion_ = new TPerfilesEditaF(sesion, this);
    arma(edicion_);
}

void TPerfilesF::CargaTimer(int64_t seleccion) {
    try {
        perfiles_ = catalogo_.consulta();
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Perfiles de Usuario, lista:" << e.what();
        return;
    }
    lista_->clear();
    for (const Perfil& p : perfiles_) {
        auto* item = new QListWidgetItem(p.nombre, lista_);
        item->setData(RolPrimeraLinea, p.nombre);
        item->setData(RolSegundaLinea, QStringLiteral("Usuarios: ") + QString::number(p.usuarios));
        item->setData(RolID, QVariant::fromValue<qlonglong>(p.perfilID));
        if (p.perfilID == seleccion) {
            lista_->setCurrentItem(item);
            lista_->scrollToItem(item);
        }
    }
    ponConteo({}, lista_->count());
    actualizaAcciones();
}

std::optional<Perfil> TPerfilesF::perfilElegido() const {
    const int64_t id = idElegido();
    for (const Perfil& p : perfiles_)
        if (p.perfilID == id) return p;
    return std::nullopt;
}

void TPerfilesF::actualizaAcciones() {
    TListaCatalogoF::actualizaAcciones();
    borrar_->setEnabled(lista_->currentItem() != nullptr);
}

void TPerfilesF::BotonNuevoClick() {
    Sonidos::reproduce(Sonido::Click);
    edicion_->nuevo();
    muestraEdicion();
}

void TPerfilesF::BotonModificarClick() {
    const std::optional<Perfil> p = perfilElegido();
    if (!p) return;
    Sonidos::reproduce(Sonido::Click);
    const Perfil perfil = *p;
    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"), [this, perfil] {
        if (edicion_->edita(perfil)) muestraEdicion();
    });
}

void TPerfilesF::BotonBorrarClick() {
    const std::optional<Perfil> p = perfilElegido();
    if (!p) return;
    if (!mensajes_.preguntaSiNo(QStringLiteral("¿Desea Eliminar el Perfil ") + p->nombre +
                                QLatin1Char('?')))
        return;
    Sonidos::reproduce(Sonido::Click);
    const Perfil perfil = *p;
    ejecutaConLeyenda(this, QStringLiteral("Registrando Transacción."),
                      [this, perfil] { EliminaPerfilTimer(perfil); });
}

void TPerfilesF::EliminaPerfilTimer(const Perfil& perfil) {
    bool eliminado = false;
    try {
        eliminado = catalogo_.elimina(perfil);
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorRegistro));
        qWarning() << "Perfiles de Usuario, borrar:" << e.what();
        return;
    }
    if (!eliminado) {
        error(QString::fromUtf8(MensajePerfilEnUso));
        return;
    }
    for (int i = 0; i < lista_->count(); ++i) {
        if (lista_->item(i)->data(RolID).toLongLong() != perfil.perfilID) continue;
        delete lista_->takeItem(i);
        break;
    }
    std::erase_if(perfiles_, [&](const Perfil& x) { return x.perfilID == perfil.perfilID; });
    ponConteo({}, lista_->count());
    actualizaAcciones();
}

} // namespace cajaplex
