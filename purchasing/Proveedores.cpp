#include "purchasing/Proveedores.h"

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

#include "catalog/CatalogoProductos.h"
#include "datos/MensajesComunes.h"
#include "datos/ModuloDatos.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/RolesRenglon.h"
#include "pantallas/Sonidos.h"

namespace cajaplex {
namespace {

constexpr int kLargoTexto = 255;

// Los campos de texto en el orden de la pantalla: objectName (la columna), título y largo.
struct CampoTexto {
    const char* nombre;
    const char* titulo;
    QString DatosProveedor::*valor;
    int largo;
};
const CampoTexto kCamposTexto[] = {
    {"nombre", "Nombre (Requerido)", &DatosProveedor::nombre, kLargoTexto},
    {"razonSocial", "Razón Social", &DatosProveedor::razonSocial, kLargoTexto},
    {"rfc", "RFC", &DatosProveedor::rfc, 15},
    {"calle", "Calle", &DatosProveedor::calle, kLargoTexto},
    {"numeroExterior", "Número Exterior", &DatosProveedor::numeroExterior, 30},
    {"numeroInterior", "Número Interior", &DatosProveedor::numeroInterior, 30},
    {"colonia", "Colonia", &DatosProveedor::colonia, kLargoTexto},
    {"cp", "Código Postal", &DatosProveedor::cp, 5},
    {"localidad", "Localidad", &DatosProveedor::localidad, kLargoTexto},
    {"contacto", "Contacto", &DatosProveedor::contacto, kLargoTexto},
    {"telefono", "Teléfono", &DatosProveedor::telefono, 30},
    {"email", "Correo Electrónico", &DatosProveedor::email, kLargoTexto},
};

// El campo editable sin separadores de miles, para leerlo de vuelta igual.
QString dinero(double valor) {
    return QLocale::c().toString(valor, 'f', 2);
}

} // namespace

// ---------------------------------------------------------------------------------------------
// Edición
// ---------------------------------------------------------------------------------------------

TProveedoresEditaF::TProveedoresEditaF(const Sesion& sesion, QWidget* padre)
    : TEdicionCatalogoF(QStringLiteral("ProveedoresEdita"), QStringLiteral("Proveedores"), padre),
      catalogo_(ModuloDeDatos.ConexionBD, sesion) {
    auto* tarjeta = new QFrame(this);
    ponEstilo(tarjeta, "tarjeta");
    auto* rejilla = new QGridLayout(tarjeta);
    constexpr int kColumnas = 3;
    int posicion = 0;
    // Cada control con su título arriba, que también lo nombra para la accesibilidad.
    auto pon = [&](QWidget* c, const QString& nombre, const QString& texto) {
        c->setObjectName(nombre);
        auto* titulo =
            creaEtiqueta(texto, QStringLiteral("Etiqueta") + nombre, "subtitulo", tarjeta);
        titulo->setBuddy(c);
        c->setAccessibleName(texto);
        c->setMinimumHeight(AltoControl);
        const int renglon = (posicion / kColumnas) * 2;
        const int columna = posicion % kColumnas;
        rejilla->addWidget(titulo, renglon, columna);
        rejilla->addWidget(c, renglon + 1, columna);
        ++posicion;
    };
    auto linea = [&](const QString& nombre, const QString& texto, int largo) {
        auto* c = new QLineEdit(tarjeta);
        c->setMaxLength(largo);
        pon(c, nombre, texto);
        return c;
    };
    for (const CampoTexto& campo : kCamposTexto)
        textos_ << linea(QString::fromLatin1(campo.nombre), QString::fromUtf8(campo.titulo),
                         campo.largo);
    textos_.at(2)->setInputMethodHints(Qt::ImhUppercaseOnly);
    textos_.at(11)->setInputMethodHints(Qt::ImhEmailCharactersOnly);
    limiteCredito_ =
        linea(QStringLiteral("limiteCredito"), QStringLiteral("Límite de Crédito"), 15);
    limiteCredito_->setValidator(new QDoubleValidator(0, 1e12, 2, limiteCredito_));
    diasCredito_ = linea(QStringLiteral("diasCredito"), QStringLiteral("Días de Crédito"), 4);
    diasCredito_->setValidator(new QIntValidator(0, 9999, diasCredito_));
    diasCredito_->setInputMethodHints(Qt::ImhDigitsOnly);
    // El dato guarda el modo; el combo, su texto.
    desglosaRM_ = new QComboBox(tarjeta);
    desglosaRM_->addItem(QStringLiteral("Como la Empresa"), 0);
    desglosaRM_->addItem(QStringLiteral("Costos con IVA Incluido"), 1);
    desglosaRM_->addItem(QStringLiteral("Costos más IVA (Desglosado)"), 2);
    pon(desglosaRM_, QStringLiteral("desglosaRM"), QStringLiteral("IVA en sus Costos"));
    for (int c = 0; c < kColumnas; ++c)
        rejilla->setColumnStretch(c, 1);
    ponContenido(tarjeta);
}

void TProveedoresEditaF::muestra(const DatosProveedor& proveedor) {
    for (int i = 0; i < textos_.size(); ++i)
        textos_.at(i)->setText(proveedor.*kCamposTexto[i].valor);
    limiteCredito_->setText(dinero(proveedor.limiteCredito));
    diasCredito_->setText(QString::number(proveedor.diasCredito));
    // Los modos 3 y 4 calculan el costo como el 2 (sin IVA): se muestran y se guardan como él.
    const int modo = desglosaRM_->findData(proveedor.desglosaRM);
    desglosaRM_->setCurrentIndex(modo >= 0 ? modo : 2);
    almacenar_->setEnabled(true);
    textos_.first()->setFocus();
}

void TProveedoresEditaF::nuevo() {
    anterior_.reset();
    titulo_->setText(QStringLiteral("Alta de Proveedor"));
    muestra(DatosProveedor{});
}

void TProveedoresEditaF::edita(const DatosProveedor& proveedor) {
    anterior_ = proveedor;
    titulo_->setText(QStringLiteral("Modifica Proveedor"));
    muestra(proveedor);
}

DatosProveedor TProveedoresEditaF::capturado() const {
    DatosProveedor p = anterior_.value_or(DatosProveedor{});
    for (int i = 0; i < textos_.size(); ++i)
        p.*kCamposTexto[i].valor = textos_.at(i)->text();
    p.limiteCredito = QLocale::c().toDouble(limiteCredito_->text().trimmed());
    p.diasCredito = diasCredito_->text().trimmed().toInt();
    p.desglosaRM = desglosaRM_->currentData().toInt();
    return p;
}

QString TProveedoresEditaF::almacena(int64_t& id) {
    DatosProveedor proveedor = capturado();
    const QString rechazo = catalogo_.almacena(proveedor, anterior_ ? &*anterior_ : nullptr);
    if (!rechazo.isEmpty()) return rechazo;
    id = proveedor.id;
    return {};
}

// ---------------------------------------------------------------------------------------------
// Lista
// ---------------------------------------------------------------------------------------------

TProveedoresF::TProveedoresF(const Sesion& sesion, QWidget* padre)
    : TListaCatalogoF(QStringLiteral("Proveedores"), QStringLiteral("Proveedor"),
                      QStringLiteral("Proveedores"), padre),
      sesion_(sesion), catalogo_(ModuloDeDatos.ConexionBD, sesion) {
    buscar_ =
        creaBusquedaEnServicio(QStringLiteral("Nombre, Razón Social, RFC, Contacto ó Teléfono"));
    nuevo_ = findChild<QPushButton*>(QStringLiteral("BotonNuevo"));
    connect(creaBotonBorrar(), &QPushButton::clicked, this, &TProveedoresF::BotonBorrarClick);

    edicion_ = new TProveedoresEditaF(sesion, this);
    arma(edicion_);
}

void TProveedoresF::CargaTimer(int64_t seleccion) {
    try {
        proveedores_ = catalogo_.consulta(buscar_->text());
    } catch (const std::exception& e) {
        error(QString::fromUtf8(MensajeErrorLectura) + QStringLiteral("\n") +
              QString::fromUtf8(e.what()));
        qWarning() << "Proveedores, lista:" << e.what();
        return;
    }
    lista_->clear();
    for (const DatosProveedor& p : proveedores_) {
        auto* item = new QListWidgetItem(p.nombre, lista_);
        QStringList detalle;
        if (!p.rfc.isEmpty()) detalle << QStringLiteral("RFC: ") + p.rfc;
        if (!p.contacto.isEmpty()) detalle << p.contacto;
        if (!p.telefono.isEmpty()) detalle << QStringLiteral("Tel. ") + p.telefono;
        item->setData(RolPrimeraLinea, p.nombre);
        item->setData(RolDatoDerecha, p.diasCredito > 0 ? QStringLiteral("Crédito %1 a %2 días")
                                                              .arg(textoPrecio(p.limiteCredito))
                                                              .arg(p.diasCredito)
                                                        : QStringLiteral("Crédito ") +
                                                              textoPrecio(p.limiteCredito));
        item->setData(RolSegundaLinea, detalle.join(QStringLiteral(" · ")));
        item->setData(RolID, QVariant::fromValue<qlonglong>(p.id));
        if (p.id == seleccion) lista_->setCurrentItem(item);
    }
    if (lista_->currentItem()) lista_->scrollToItem(lista_->currentItem());
    ponConteo(buscar_->text().trimmed(), lista_->count());
    actualizaAcciones();
}

std::optional<DatosProveedor> TProveedoresF::proveedorElegido() const {
    const int64_t id = idElegido();
    for (const DatosProveedor& p : proveedores_)
        if (p.id == id) return p;
    return std::nullopt;
}

void TProveedoresF::actualizaAcciones() {
    TListaCatalogoF::actualizaAcciones();
    if (nuevo_) nuevo_->setEnabled(sesion_.puedeCompras(QStringLiteral("ProveedorNuevo")));
}

void TProveedoresF::BotonNuevoClick() {
    if (!sesion_.puedeCompras(QStringLiteral("ProveedorNuevo"))) return;
    Sonidos::reproduce(Sonido::Click);
    edicion_->nuevo();
    muestraEdicion();
}

void TProveedoresF::BotonModificarClick() {
    const std::optional<DatosProveedor> p = proveedorElegido();
    if (!p) return;
    Sonidos::reproduce(Sonido::Click);
    edicion_->edita(*p);
    muestraEdicion();
}

void TProveedoresF::BotonBorrarClick() {
    const std::optional<DatosProveedor> p = proveedorElegido();
    if (!p) return;
    const DatosProveedor proveedor = *p;
    borraConPregunta(QStringLiteral("¿Desea Eliminar el Proveedor ") + proveedor.nombre +
                         QLatin1Char('?'),
                     [this, proveedor] { return catalogo_.elimina(proveedor); });
}

} // namespace cajaplex
