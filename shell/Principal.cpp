#include "shell/Principal.h"

#include <exception>
#include <utility>

#include <QCloseEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScopeGuard>
#include <QShortcut>
#include <QStackedWidget>
#include <QTimer>
#include <QVBoxLayout>
#include <QtDebug>

#include "datos/ModuloDatos.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/Sonidos.h"
#include "printing/PlantillasLocales.h"
#include "security/InicioSesion.h"
#include "shell/FrameLogeo.h"
#include "shell/MenuPrimario.h"
#include "shell/Modulos.h"
#include "shell/TerminosYCondiciones.h"

namespace cajaplex {
namespace {

const char* const kPantalla = "cajaplexPantalla"; // la pantalla que lleva cada marco
constexpr int kDuracionSalir = 700;               // ms; lo que dura Salir.mp3

// Marco de una pantalla abierta: barra con "Regresar" y el título, y la pantalla debajo.
QWidget* marcoDe(QWidget* pantalla, const QString& titulo, QPushButton*& regresar) {
    auto* marco = new QWidget;
    auto* barra = new QFrame(marco);
    ponEstilo(barra, "barra");
    regresar =
        new QPushButton(icono(QStringLiteral("Regresar")), QStringLiteral("Regresar"), barra);
    regresar->setObjectName(QStringLiteral("BotonRegresar"));
    auto* etiqueta = new QLabel(titulo, barra);
    etiqueta->setObjectName(QStringLiteral("TituloPantalla"));
    ponEstilo(etiqueta, "titulo");
    auto* capaBarra = new QHBoxLayout(barra);
    capaBarra->addWidget(regresar);
    capaBarra->addSpacing(12);
    capaBarra->addWidget(etiqueta, 1);

    auto* capa = new QVBoxLayout(marco);
    capa->setContentsMargins(0, 0, 0, 0);
    capa->setSpacing(0);
    capa->addWidget(barra);
    capa->addWidget(pantalla, 1);
    marco->setProperty(kPantalla, QVariant::fromValue(static_cast<QObject*>(pantalla)));
    return marco;
}

} // namespace

TCajaplexF::TCajaplexF(Instalacion instalacion, QWidget* padre)
    : QWidget(padre), instalacion_(std::move(instalacion)), ajustes_(instalacion_.carpeta) {
    AjustesEstacion::ponCarpetaPredeterminada(ajustes_.carpeta());
    setObjectName(QStringLiteral("Cajaplex"));
    setWindowTitle(QStringLiteral("Cajaplex"));
    registraModulos();
    avisaReintentosEscritura(ModuloDeDatos.ConexionBD);
    // Esc es "Regresar" en toda pantalla abierta (no en el acceso ni en el menú).
    auto* escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    connect(escape, &QShortcut::activated, this, [this] {
        QWidget* tope = paginas_->widget(paginas_->count() - 1);
        if (tope == VentanaDeLogeo || tope == menu_) return;
        Sonidos::reproduce(Sonido::Regresar);
        regresa();
    });
    setMinimumSize(1024, 700);
    paginas_ = new QStackedWidget(this);
    VentanaDeLogeo = new TCuadroLogeo(paginas_);
    paginas_->addWidget(VentanaDeLogeo);
    auto* capa = new QVBoxLayout(this);
    capa->setContentsMargins(0, 0, 0, 0);
    capa->addWidget(paginas_);

    connect(VentanaDeLogeo, &TCuadroLogeo::ingresar, this, &TCajaplexF::BotonIngresarClick);
    connect(VentanaDeLogeo, &TCuadroLogeo::empresaAceptada, this, &TCajaplexF::EmpresaAceptada);
    connect(VentanaDeLogeo, &TCuadroLogeo::terminosYCondiciones, this,
            &TCajaplexF::EtiquetaTerminosYCondicionesClick);
    FormCreate();
}

TCajaplexF::~TCajaplexF() = default;

void TCajaplexF::FormCreate() {
    // Los ajustes ya están abiertos (ajustes_) y se leen una sola vez.
    Sonidos::activa(ajustes_.utilizarSonidos());

    // La base local es la de esta instalación: una abierta antes (otra carpeta) se cierra.
    ModuloDeDatos.ConexionLocalBD.cierra();
    ModuloDeDatos.ArchivoLocalBD = buscaBaseLocal(ajustes_.carpeta());
    ModuloDeDatos.ContrasenaLocalBD = ajustes_.contrasenaBaseLocal();
    // Lo que falta se avisa, pero la ventana se muestra igual.
    for (const QString& aviso : archivosFaltantes(ajustes_.carpeta(), instalacion_.bibliotecas))
        mensajes_.muestra(aviso);

    const QString dispositivo = dispositivoDeLaEstacion(ajustes_);
    VentanaDeLogeo->ponVersion(QStringLiteral("Versión Omnivar ") + versionPrograma());
    VentanaDeLogeo->ponDispositivo(dispositivo);
    VentanaDeLogeo->ponServidor(ajustes_.direccionServidor(), ajustes_.puertoServidor());
    inicioSesion_ = std::make_unique<InicioSesion>(ModuloDeDatos, ajustes_, dispositivo);

    VentanaDeLogeo->posicionaCursorUsuario();
    // PosicionarCursorUsuario: al mostrarse la ventana el foco se pierde; se devuelve después.
    QTimer::singleShot(0, VentanaDeLogeo, &TCuadroLogeo::posicionaCursorUsuario);
}

void TCajaplexF::BotonIngresarClick() {
    if (validando_) return;
    validando_ = true;
    Sonidos::reproduce(Sonido::Click);
    VentanaDeLogeo->habilita(false);
    ejecutaConLeyenda(this, QStringLiteral("Validando Credenciales de Acceso"),
                      [this] { ConectarTimer(); });
}

void TCajaplexF::ConectarTimer() {
    const auto rehabilita = qScopeGuard([this] {
        validando_ = false;
        VentanaDeLogeo->habilita(true);
    });
    const ResultadoAcceso resultado = inicioSesion_->valida(VentanaDeLogeo->datos());
    if (!resultado.aceptado()) {
        Sonidos::reproduce(Sonido::Error);
        mensajes_.muestra(resultado.mensaje);
        return;
    }
    empresas_ = resultado.empresas;
    if (empresas_.size() == 1)
        abreSesion(empresas_.first());
    else
        VentanaDeLogeo->muestraEmpresas(empresas_);
}

void TCajaplexF::EmpresaAceptada(int indice) {
    if (indice < 0 || indice >= empresas_.size()) return;
    Sonidos::reproduce(Sonido::Click);
    abreSesion(empresas_.at(indice));
}

void TCajaplexF::abreSesion(const Sesion& sesion) {
    sesion_ = sesion;
    sesion_.DispositivoID = ajustes_.dispositivoID();
    sesionAbierta_ = true;
    setWindowTitle(QStringLiteral("Cajaplex - ") + sesion_.NombreEmpresa);
    menu_ = new TMenuPrimarioF(sesion_, paginas_);
    connect(menu_, &TMenuPrimarioF::abreModulo, this, &TCajaplexF::abrePantalla);
    connect(menu_, &TMenuPrimarioF::cerrarSesion, this, &TCajaplexF::CerrarSesionClick);
    paginas_->addWidget(menu_);
    paginas_->setCurrentWidget(menu_);
    VentanaDeLogeo->muestraAcceso();
    VentanaDeLogeo->limpiaContrasena();
    // Imprimir un ticket no debe esperar al servicio por su plantilla: la estación trae al entrar
    // las que cambiaron. Si no puede, imprime con la copia que ya tenía.
    try {
        actualizaCopiaLocalPlantillas(ModuloDeDatos, sesion_);
    } catch (const std::exception& e) {
        qWarning() << "Copia local de plantillas:" << e.what();
    }
}

void TCajaplexF::CerrarSesionClick() {
    if (!mensajes_.pregunta(QStringLiteral("¿Desea Cerrar la Sesión?"))) return;
    Sonidos::reproduce(Sonido::Salir);
    cierraPantallasSobre(VentanaDeLogeo);
    menu_ = nullptr;
    sesionAbierta_ = false;
    empresas_.clear();
    setWindowTitle(QStringLiteral("Cajaplex"));
    VentanaDeLogeo->limpiaContrasena();
}

void TCajaplexF::EtiquetaTerminosYCondicionesClick() {
    Sonidos::reproduce(Sonido::Click);
    abrePantalla(new TTerminosYCondicionesF, QStringLiteral("Términos y Condiciones"));
}

void TCajaplexF::abrePantalla(QWidget* pantalla, const QString& titulo) {
    QPushButton* regresar = nullptr;
    QWidget* marco = marcoDe(pantalla, titulo, regresar);
    connect(regresar, &QPushButton::clicked, this, [this] {
        Sonidos::reproduce(Sonido::Regresar);
        regresa();
    });
    pantalla->installEventFilter(this);
    // Una pantalla que es a su vez un menú (utilerías) abre las suyas igual que el menú principal.
    if (pantalla->metaObject()->indexOfSignal("abreModulo(QWidget*,QString)") >= 0)
        connect(pantalla, SIGNAL(abreModulo(QWidget*, QString)), this,
                SLOT(abrePantalla(QWidget*, QString)));
    paginas_->addWidget(marco);
    paginas_->setCurrentWidget(marco);
}

void TCajaplexF::regresa() {
    const int tope = paginas_->count() - 1;
    QWidget* marco = paginas_->widget(tope);
    if (marco == VentanaDeLogeo || marco == menu_) return;
    // La pantalla decide si se puede cerrar (cambios sin guardar): se le pide como a una ventana.
    auto* pantalla = qobject_cast<QWidget*>(marco->property(kPantalla).value<QObject*>());
    if (pantalla && !pantalla->isHidden()) {
        regresando_ = true;
        const bool cerrada = pantalla->close();
        regresando_ = false;
        if (!cerrada) return;
    }
    cierraPantallasSobre(paginas_->widget(tope - 1));
}

bool TCajaplexF::cierraPantallasAbiertas() {
    for (;;) {
        QWidget* tope = paginas_->widget(paginas_->count() - 1);
        if (tope == VentanaDeLogeo || tope == menu_) return true;
        regresa();
        if (paginas_->widget(paginas_->count() - 1) == tope) return false;
    }
}

// Quita (y destruye después) todas las páginas por encima de `pagina`.
void TCajaplexF::cierraPantallasSobre(QWidget* pagina) {
    paginas_->setCurrentWidget(pagina);
    while (paginas_->count() > 0 && paginas_->widget(paginas_->count() - 1) != pagina) {
        QWidget* tope = paginas_->widget(paginas_->count() - 1);
        paginas_->removeWidget(tope);
        if (auto* pantalla = tope->property(kPantalla).value<QObject*>())
            pantalla->removeEventFilter(this);
        // Puede venir de un botón de la misma página: se destruye al volver al ciclo de eventos.
        tope->hide();
        tope->deleteLater();
    }
}

bool TCajaplexF::eventFilter(QObject* objeto, QEvent* evento) {
    // Una pantalla que se cierra sola (close() aceptado la oculta) vuelve a la anterior como con
    // "Regresar". Ocultarse porque otra página la tapa no cuenta: ahí no queda oculta ella misma.
    if (evento->type() == QEvent::Hide && !regresando_ && paginas_->count() > 0) {
        QWidget* tope = paginas_->widget(paginas_->count() - 1);
        auto* pantalla = qobject_cast<QWidget*>(objeto);
        if (pantalla && pantalla->isHidden() &&
            tope->property(kPantalla).value<QObject*>() == objeto)
            QTimer::singleShot(0, this, &TCajaplexF::regresa);
    }
    return QWidget::eventFilter(objeto, evento);
}

void TCajaplexF::closeEvent(QCloseEvent* evento) {
    // Cada pantalla abierta decide antes (cambios sin guardar), de la de encima hacia abajo; si
    // una se niega, el programa sigue abierto.
    if (!cerrando_ && !cierraPantallasAbiertas()) {
        evento->ignore();
        return;
    }
    // Cerrar la ventana termina el programa: se oculta y espera a que suene "Salir".
    if (!cerrando_ && Sonidos::activos()) {
        cerrando_ = true;
        Sonidos::reproduce(Sonido::Salir);
        evento->ignore();
        hide();
        QTimer::singleShot(kDuracionSalir, this, &QWidget::close);
        return;
    }
    QWidget::closeEvent(evento);
}

} // namespace cajaplex
