#include "sales/Clientes.h"

#include <exception>

#include <QComboBox>
#include <QDoubleValidator>
#include <QFrame>
#include <QGridLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QLocale>
#include <QtDebug>

#include "datos/ModuloDatos.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/RolesRenglon.h"
#include "pantallas/Sonidos.h"

namespace cajaplex {
namespace {

constexpr int kLargoTexto = 255;
const QString kColorBloqueado = QStringLiteral("#C0392B");

// Los campos de texto en el orden de la pantalla: objectName (la columna), título y largo.
struct CampoTexto {
    const char* nombre;
    const char* titulo;
    QString DatosCliente::*valor;
    int largo;
};
const CampoTexto kCamposTexto[] = {
    {"nombre", "Nombre (Requerido)", &DatosCliente::nombre, kLargoTexto},
    {"razonSocial", "Razón Social", &DatosCliente::razonSocial, kLargoTexto},
    {"rfc", "RFC", &DatosCliente::rfc, 15},
    {"calle", "Calle", &DatosCliente::calle, kLargoTexto},
    {"numeroExterior", "Número Exterior", &DatosCliente::numeroExterior, 30},
    {"numeroInterior", "Número Interior", &DatosCliente::numeroInterior, 30},
    {"colonia", "Colonia", &DatosCliente::colonia, kLargoTexto},
    {"cp", "Código Postal", &DatosCliente::cp, 5},
    {"localidad", "Localidad", &DatosCliente::localidad, kLargoTexto},
    {"telefono", "Teléfono", &DatosCliente::telefono, 30},
    {"telefonoCelular", "Teléfono Celular", &DatosCliente::telefonoCelular, 30},
    {"email", "Correo Electrónico", &DatosCliente::email, kLargoTexto},
};

QString dinero(double valor) {
    return QLocale::c().toString(valor, 'f', 2);
}

} // namespace

// ---------------------------------------------------------------------------------------------
// Edición
// ---------------------------------------------------------------------------------------------

TClientesEditaF::TClientesEditaF(const Sesion& sesion, QWidget* padre)
    : TEdicionCatalogoF(QStringLiteral("ClientesEdita"), QStringLiteral("Clientes"), padre),
      catalogo_(ModuloDeDatos.ConexionBD, sesion) {
    auto* tarjeta = new QFrame(this);
    ponEstilo(tarjeta, "tarjeta");
    auto* rejilla = new QGridLayout(tarjeta);
    constexpr int kColumnas = 3;
    int posicion = 0;
    // Cada control con su título arriba, que también lo nombra para la accesibilidad.
    auto pon = [&](QWidget* c, const QString& texto) {
        auto* titulo =
            creaEtiqueta(texto, QStringLiteral("Etiqueta") + c->objectName(), "subtitulo", tarjeta);
        titulo->setBuddy(c);
        c->setAccessibleName(texto);
        c->setMinimumHeight(AltoControl);
        const int renglon = (posicion / kColumnas) * 2;
        const int columna = posicion % kColumnas;
        rejilla->addWidget(titulo, renglon, columna);
        rejilla->addWidget(c, renglon + 1, columna);
        ++posicion;
    };
    auto linea = [&](const QString& nombre, const QString& titulo, int largo) {
        auto* c = new QLineEdit(tarjeta);
        c->setObjectName(nombre);
        c->setMaxLength(largo);
        pon(c, titulo);
        return c;
    };
    for (const CampoTexto& campo : kCamposTexto)
        textos_ << linea(QString::fromLatin1(campo.nombre), QString::fromUtf8(campo.titulo),
                         campo.largo);
    textos_.at(2)->setInputMethodHints(Qt::ImhUppercaseOnly);
    textos_.at(11)->setInputMethodHints(Qt::ImhEmailCharactersOnly);

    precioVenta_ = new QComboBox(tarjeta);
    precioVenta_->setObjectName(QStringLiteral("precioVenta"));
    for (int nivel = 1; nivel <= 5; ++nivel)
        precioVenta_->addItem(QStringLiteral("Precio %1").arg(nivel), nivel);
    pon(precioVenta_, QStringLiteral("Nivel de Precio"));
    limiteCredito_ =
        linea(QStringLiteral("limiteCredito"), QStringLiteral("Límite de Crédito"), 15);
    limiteCredito_->setValidator(new QDoubleValidator(0, 1e12, 2, limiteCredito_));
    diasCredito_ = linea(QStringLiteral("diasCredito"), QStringLiteral("Días de Crédito"), 4);
    diasCredito_->setValidator(new QIntValidator(0, 9999, diasCredito_));
    bloquear_ = new InterruptorSiNo(QStringLiteral("bloquearCredito"),
                                    QStringLiteral("Bloquear Crédito"), tarjeta);
    pon(bloquear_, QStringLiteral("Bloquear Crédito"));
    puntos_ = linea(QStringLiteral("puntos"), QStringLiteral("Saldo en Monedero Electrónico"), 20);
    puntos_->setReadOnly(true);
    puntos_->setFocusPolicy(Qt::NoFocus);
    for (int c = 0; c < kColumnas; ++c)
        rejilla->setColumnStretch(c, 1);
    // En una pantalla alta los campos se quedan arriba, cada uno junto a su título.
    rejilla->setRowStretch(rejilla->rowCount(), 1);
    ponContenido(tarjeta);
}

void TClientesEditaF::muestra(const DatosCliente& cliente) {
    for (int i = 0; i < textos_.size(); ++i)
        textos_.at(i)->setText(cliente.*kCamposTexto[i].valor);
    precioVenta_->setCurrentIndex(std::clamp(cliente.precioVenta, 1, 5) - 1);
    limiteCredito_->setText(dinero(cliente.limiteCredito));
    diasCredito_->setText(QString::number(cliente.diasCredito));
    bloquear_->setChecked(cliente.bloquearCredito);
    puntos_->setText(dinero(cliente.puntos));
    almacenar_->setEnabled(true);
    textos_.first()->setFocus();
}

void TClientesEditaF::nuevo() {
    anterior_.reset();
    titulo_->setText(QStringLiteral("Alta de Cliente"));
    muestra(DatosCliente{});
}

void TClientesEditaF::edita(const DatosCliente& cliente) {
    anterior_ = cliente;
    titulo_->setText(QStringLiteral("Modifica Cliente"));
    muestra(cliente);
}

DatosCliente TClientesEditaF::capturado() const {
    DatosCliente c = anterior_.value_or(DatosCliente{});
    for (int i = 0; i < textos_.size(); ++i)
        c.*kCamposTexto[i].valor = textos_.at(i)->text();
    c.precioVenta = precioVenta_->currentData().toInt();
    c.limiteCredito = QLocale::c().toDouble(limiteCredito_->text().trimmed());
    c.diasCredito = diasCredito_->text().trimmed().toInt();
    c.bloquearCredito = bloquear_->isChecked();
    return c;
}

QString TClientesEditaF::almacena(int64_t& id) {
    DatosCliente cliente = capturado();
    const QString rechazo = catalogo_.almacena(cliente, anterior_ ? &*anterior_ : nullptr);
    if (!rechazo.isEmpty()) return rechazo;
    id = cliente.id;
    almacenado_ = cliente;
    return {};
}

// ---------------------------------------------------------------------------------------------
// Lista
// ---------------------------------------------------------------------------------------------

TClientesF::TClientesF(const Sesion& sesion, QWidget* padre)
    : TListaCatalogoF(QStringLiteral("Clientes"), QStringLiteral("Cliente"),
                      QStringLiteral("Clientes"), padre),
      sesion_(sesion), catalogo_(ModuloDeDatos.ConexionBD, sesion) {
    buscar_ = creaBusquedaEnServicio(QStringLiteral("Nombre, Razón Social, RFC ó Teléfono"));
    nuevo_ = findChild<QPushButton*>(QStringLiteral("BotonNuevo"));
    connect(creaBotonBorrar(), &QPushButton::clicked, this, &TClientesF::BotonBorrarClick);

    edicion_ = new TClientesEditaF(sesion, this);
    arma(edicion_);
}

void TClientesF::CargaTimer(int64_t seleccion) {
    try {
        clientes_ = catalogo_.consulta(buscar_->text());
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Clientes, lista:" << e.what();
        return;
    }
    lista_->clear();
    for (const DatosCliente& c : clientes_) {
        auto* item = new QListWidgetItem(c.nombre, lista_);
        QStringList detalle;
        if (!c.rfc.isEmpty()) detalle << QStringLiteral("RFC: ") + c.rfc;
        if (!c.telefono.isEmpty()) detalle << QStringLiteral("Tel. ") + c.telefono;
        detalle << QStringLiteral("Precio %1").arg(c.precioVenta);
        if (c.limiteCredito > 0)
            detalle << QStringLiteral("Crédito $") + dinero(c.limiteCredito) +
                           QStringLiteral(" a %1 días").arg(c.diasCredito);
        if (c.bloquearCredito) detalle << QStringLiteral("Crédito Bloqueado");
        item->setData(RolPrimeraLinea, c.nombre);
        item->setData(RolDatoDerecha, QStringLiteral("Monedero $") + dinero(c.puntos));
        item->setData(RolSegundaLinea, detalle.join(QStringLiteral(" · ")));
        if (c.bloquearCredito) item->setData(RolColorSegundaLinea, kColorBloqueado);
        item->setData(RolID, QVariant::fromValue<qlonglong>(c.id));
        if (c.id == seleccion) lista_->setCurrentItem(item);
    }
    if (lista_->currentItem()) lista_->scrollToItem(lista_->currentItem());
    ponConteo(buscar_->text().trimmed(), lista_->count());
    actualizaAcciones();
}

std::optional<DatosCliente> TClientesF::clienteElegido() const {
    const int64_t id = idElegido();
    for (const DatosCliente& c : clientes_)
        if (c.id == id) return c;
    return std::nullopt;
}

void TClientesF::actualizaAcciones() {
    TListaCatalogoF::actualizaAcciones();
    if (nuevo_) nuevo_->setEnabled(sesion_.puedeVentas(QStringLiteral("clienteNuevo")));
}

void TClientesF::BotonNuevoClick() {
    if (!sesion_.puedeVentas(QStringLiteral("clienteNuevo"))) return;
    Sonidos::reproduce(Sonido::Click);
    edicion_->nuevo();
    muestraEdicion();
}

void TClientesF::BotonModificarClick() {
    const std::optional<DatosCliente> c = clienteElegido();
    if (!c) return;
    Sonidos::reproduce(Sonido::Click);
    edicion_->edita(*c);
    muestraEdicion();
}

void TClientesF::BotonBorrarClick() {
    const std::optional<DatosCliente> c = clienteElegido();
    if (!c) return;
    const DatosCliente cliente = *c;
    borraConPregunta(QStringLiteral("¿Desea Eliminar el Cliente ") + cliente.nombre +
                         QLatin1Char('?'),
                     [this, cliente] { return catalogo_.elimina(cliente); });
}

} // namespace cajaplex
