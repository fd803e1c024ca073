#include "shell/TerminosYCondiciones.h"

#include <QLabel>
#include <QTextBrowser>
#include <QVBoxLayout>

#include "pantallas/HojaEstilo.h"

namespace cajaplex {
namespace {

const char* const kTerminos = R"(
<h2>Términos y Condiciones de Uso</h2>
<p>Cajaplex es un programa de punto de venta y administración para comercios y restaurantes.
Al utilizarlo, usted acepta los términos siguientes.</p>
<h3>1. Uso del programa</h3>
<p>El programa se entrega para registrar las operaciones de su negocio: ventas, comandas,
cotizaciones, compras, inventarios, caja chica y monedero electrónico de sus clientes. Cada
usuario es responsable de las operaciones que registra con su nombre de usuario y contraseña;
no comparta su contraseña.</p>
<h3>2. Información del negocio</h3>
<p>La información que captura (productos, precios, clientes, proveedores y documentos) pertenece
a su empresa y se guarda en el servidor de datos que usted administra. Conserve respaldos
periódicos del archivo de datos del servidor; el programa no los hace por usted.</p>
<h3>3. Impuestos y documentos fiscales</h3>
<p>El programa calcula el IVA y el IEPS con las tasas que usted asigna a cada producto. Revise que
las tasas, claves SAT, RFC y demás datos fiscales sean correctos: la responsabilidad fiscal de los
documentos que emite es de su empresa.</p>
<h3>4. Bitácora</h3>
<p>Las operaciones que cambian dinero o existencias quedan registradas en la bitácora del sistema
con el usuario, la empresa y la fecha en que se hicieron.</p>
<h3>5. Datos personales</h3>
<p>Los datos personales de sus clientes deben tratarse conforme a la Ley Federal de Protección de
Datos Personales en Posesión de los Particulares; su empresa es la responsable de su tratamiento
y de darles a conocer su aviso de privacidad.</p>
<h3>6. Garantía</h3>
<p>El programa se entrega tal como está. Verifique los totales de sus cortes de caja y reporte
cualquier diferencia a su administrador del sistema.</p>
)";

} // namespace

TTerminosYCondicionesF::TTerminosYCondicionesF(QWidget* padre) : QWidget(padre) {
    setObjectName(QStringLiteral("TerminosYCondiciones"));
    setWindowTitle(QStringLiteral("Términos y Condiciones"));
    auto* texto = new QTextBrowser(this);
    texto->setObjectName(QStringLiteral("TextoTerminos"));
    texto->setHtml(QString::fromUtf8(kTerminos));
    // Renglones de largo cómodo de leer aun en pantallas anchas.
    texto->setMaximumWidth(960);
    auto* capa = new QVBoxLayout(this);
    capa->setContentsMargins(24, 16, 24, 24);
    capa->addWidget(texto, 1, Qt::AlignHCenter);
}

} // namespace cajaplex
