// El cobro y la cancelación de las comandas contra el servicio real de demostración: la mesa 3 del
// mesero a la caja, la cuenta que otra estación cobra entre listar y elegir, un solo selector por
// venta, y la cancelación con y sin el derecho, que libera el nodo o no deja nada.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include <QListWidget>
#include <QPlainTextEdit>
#include <QPointer>
#include <QSpinBox>
#include <QStandardPaths>
#include <QTableWidget>
#include <QTemporaryDir>

#include "datos/AjustesEstacion.h"
#include "datos/ModuloDatos.h"
#include "pantallas/Mensajes.h"
#include "pantallas/RolesRenglon.h"
#include "restaurant/CancelacionComanda.h"
#include "restaurant/Comandas.h"
#include "restaurant/ComandasPagar.h"
#include "restaurant/ModulosRestaurante.h"
#include "sales/DocumentoClonado.h"
#include "sales/PuntoVenta.h"
#include "sales/RegistroVenta.h"
#include "tests/restaurant/PruebaRestaurante.h"

namespace cajaplex {
namespace {

using namespace prueba;

class ComandasPagarTest : public ConRestaurante {
protected:
    void SetUp() override {
        ConRestaurante::SetUp();
        QStandardPaths::setTestModeEnabled(true);
        QFile::remove(AjustesEstacion().ruta());
        registraModulosRestaurante();
        // La cajera también cobra en el restaurante.
        c.exige("Insert Into UsuariosEmpresa (usuarioID, empresaID, acceso) Values (2, 2, 1)");
    }
    void TearDown() override {
        QFile::remove(AjustesEstacion().ruta());
        QStandardPaths::setTestModeEnabled(false);
        ConRestaurante::TearDown();
    }

    // Una sesión con los derechos de su perfil, como la arma el inicio de sesión.
    Sesion conDerechos(const QString& usuario) {
        Sesion s = sesion(usuario, EmpresaRestaurante);
        s.derechos = leeDerechosUsuario(ModuloDeDatos.ConexionBD, s.UsuarioID, s.perfilID);
        return s;
    }

    std::unique_ptr<TPuntoVentaF> puntoVenta(const Sesion& s) {
        cajera_ = s;
        auto f = std::make_unique<TPuntoVentaF>(cajera_, nullptr, carpeta_.path());
        f->resize(1366, 768);
        f->show();
        EXPECT_TRUE(esperaHasta(
            [&] { return control<QTableWidget>(*f, "ListaFormaPago")->rowCount() > 0; }));
        esperaLeyenda(*f);
        Mensajes::ultimos();
        return f;
    }

    // "Cobrar Comanda": el selector abierto y ya cargado.
    static TComandasPagarF* abreSelector(const TPuntoVentaF& pv) {
        toca(pv, "BotonCobrarComanda");
        auto* selector = pv.findChild<TComandasPagarF*>();
        EXPECT_NE(selector, nullptr);
        if (selector) esperaLeyenda(*selector);
        return selector;
    }

    // Una cuenta cerrada del mesero en el nodo, con un renglón por producto.
    int64_t cuentaCerrada(int64_t nodo, std::initializer_list<int64_t> productos) {
        const Sesion mesero = sesion(QStringLiteral("mesero"), EmpresaRestaurante);
        RegistroComanda registro(ModuloDeDatos.ConexionBD, mesero);
        std::vector<RenglonComanda> carrito;
        for (int64_t p : productos) {
            RenglonComanda r;
            r.producto = p;
            carrito.push_back(r);
        }
        const ComandaAbierta comanda =
            registro.registraSeccion(nodo, std::nullopt, {2, {}}, carrito);
        EXPECT_TRUE(registro.cierraCuenta(nodo, comanda.id));
        return comanda.id;
    }

    static void tocaMenu(const QWidget& f, const QString& nombre) {
        auto* menu = control<QListWidget>(f, "MenuProductos");
        const auto items = menu->findItems(nombre, Qt::MatchStartsWith);
        ASSERT_FALSE(items.isEmpty()) << nombre.toStdString();
        QTest::mouseClick(menu->viewport(), Qt::LeftButton, {},
                          menu->visualItemRect(items.first()).center());
        esperaLeyenda(f);
    }

    static void tocaNodoPlano(const QWidget& f, const char* nodo) {
        EXPECT_TRUE(esperaHasta([&] {
            const auto* mosaico = f.findChild<QPushButton*>(QString::fromLatin1(nodo));
            return mosaico && mosaico->isVisible();
        }));
        toca(f, nodo);
    }

    static QStringList productos(const TPuntoVentaF& pv) {
        QStringList nombres;
        for (const RenglonVenta& r : pv.venta().RemisionDetalles())
            nombres << QStringLiteral("%1 x %2").arg(r.Cantidad).arg(r.Producto);
        return nombres;
    }

    QTemporaryDir carpeta_;
    Sesion cajera_;
};

TEST_F(ComandasPagarTest, DeLaMesaDelMeseroALaCaja) {
    // El mesero abre la mesa 3 para 4 personas y envía dos secciones.
    auto comandas = abre<TComandasF>(QStringLiteral("mesero"));
    tocaNodoPlano(*comandas, "Nodo3");
    escribe(*comandas, "NumeroPersonas", QStringLiteral("4"));
    escribe(*comandas, "ObservacionesComanda", QStringLiteral("Aniversario"));
    toca(*comandas, "BotonSiguiente");
    ASSERT_EQ(pagina(*comandas), "MenuComanda");
    tocaMenu(*comandas, QStringLiteral("Entradas"));
    tocaMenu(*comandas, QStringLiteral("Guacamole con totopos"));
    control<QSpinBox>(*comandas, "NumeroComensal")->setValue(2);
    tocaMenu(*comandas, QStringLiteral("Queso fundido con chorizo"));
    tocaMenu(*comandas, QStringLiteral("Sopa de tortilla"));
    toca(*comandas, "BotonRegistrarTransaccion");
    tocaMenu(*comandas, QStringLiteral("Regresar"));
    tocaMenu(*comandas, QStringLiteral("Postres"));
    tocaMenu(*comandas, QStringLiteral("Flan napolitano"));
    toca(*comandas, "BotonRegistrarTransaccion");
    ASSERT_TRUE(Mensajes::ultimos().isEmpty());
    // Una sopa enviada que la cocina no sirvió: el renglón queda cancelado y no se cobra.
    c.exige("Update ComandaDetalle Set cancelada = 1 Where producto = 103");
    Mensajes::respondeSiguiente(cajaplex::Respuesta::Aceptar);
    toca(*comandas, "BotonPagar");
    ASSERT_EQ(valor("Select status From NodosComida Where id = 3"), "2");
    const std::string id = valor("Select id From Comanda");

    // La cajera la cobra desde el punto de venta.
    auto pv = puntoVenta(conDerechos(QStringLiteral("cajero")));
    TComandasPagarF* selector = abreSelector(*pv);
    ASSERT_NE(selector, nullptr);
    EXPECT_EQ(renglones(*selector, "ListaComandasPagar", RolPrimeraLinea),
              QStringList{"Nodo: 3  MESA 3"});
    EXPECT_EQ(renglones(*selector, "ListaComandasPagar", RolSegundaLinea),
              QStringList{QString::fromStdString("Salón Principal · Comanda " + id +
                                                 " · Atiende: Carlos Hernández Vega")});
    EXPECT_EQ(rotulo(*selector, "PieComandasPagar"), "Número de Comandas: 1");
    EXPECT_TRUE(Mensajes::ultimos().isEmpty());
    // Con el selector abierto no se abre otro.
    toca(*pv, "BotonCobrarComanda");
    EXPECT_EQ(Mensajes::ultimos(), QStringList{MensajeSelectorComandasAbierto});
    EXPECT_EQ(pv->findChildren<TComandasPagarF*>().size(), 1);

    // Elegida, el selector se cierra y se destruye: se espera a que desaparezca, no a su leyenda.
    QPointer<TComandasPagarF> abierto(selector);
    auto* lista = control<QListView>(*selector, "ListaComandasPagar");
    QTest::mouseClick(lista->viewport(), Qt::LeftButton, {},
                      lista->visualRect(lista->model()->index(0, 0)).center());
    EXPECT_TRUE(esperaHasta([&] { return abierto.isNull(); }));
    EXPECT_EQ(productos(*pv),
              (QStringList{"1 x Guacamole con totopos", "1 x Queso fundido con chorizo",
                           "1 x Flan napolitano"}));
    EXPECT_EQ(control<QPlainTextEdit>(*pv, "Observaciones")->toPlainText(), "Aniversario");

    toca(*pv, "GrupoBotonSiguiente");
    control<QTableWidget>(*pv, "ListaFormaPago")->setCurrentCell(0, 0);
    escribe(*pv, "ImportePago", QStringLiteral("500"));
    Mensajes::respondeOpcion(static_cast<int>(TipoOperacion::SoloAlmacenar));
    toca(*pv, "GrupoBotonSiguiente");
    esperaLeyenda(*pv);
    EXPECT_EQ(Mensajes::ultimos(), QStringList{QString::fromUtf8(PreguntaTipoOperacion)});
    ASSERT_EQ(c.cuenta("Remision Where empresaID = 2"), 1);
    EXPECT_EQ(valor("Select (C.remision = R.folio) || '|' || (C.fechaPago is not null) || '|' || "
                    "N.status From Comanda C, Remision R, NodosComida N Where R.empresaID = 2 "
                    "and N.id = 3"),
              "1|1|0");
    // El vendedor de la venta es el mesero que atendió, no quien cobra.
    EXPECT_EQ(valor("Select (R.vendedor = C.vendedor) || '|' || (R.vendedor <> R.usuarioID) "
                    "From Comanda C Join Remision R On R.empresaID = C.empresaID "
                    "And R.folio = C.remision"),
              "1|1");
    EXPECT_EQ(valor("Select group_concat(producto) From (Select producto From RemisionDetalle "
                    "Where empresaID = 2 Order By posicion)"),
              "101,102,133");

    // Cobrada, ya no se ofrece.
    selector = abreSelector(*pv);
    EXPECT_EQ(Mensajes::ultimos(), QStringList{MensajeSinComandasPorPagar});
    EXPECT_EQ(rotulo(*selector, "PieComandasPagar"), "Número de Comandas: 0");
}

TEST_F(ComandasPagarTest, FiltroYCuentaCobradaEnOtraEstacionEntreListarYElegir) {
    const int64_t mesa3 = cuentaCerrada(3, {101, 102});
    const int64_t mesa7 = cuentaCerrada(7, {120});
    auto pv = puntoVenta(conDerechos(QStringLiteral("cajero")));
    TComandasPagarF* selector = abreSelector(*pv);
    ASSERT_NE(selector, nullptr);
    EXPECT_EQ(renglones(*selector, "ListaComandasPagar", RolPrimeraLinea),
              (QStringList{"Nodo: 3  MESA 3", "Nodo: 7  MESA 7"}));

    escribe(*selector, "BuscarTexto", QStringLiteral("terraza"));
    EXPECT_TRUE(esperaHasta(
        [&] { return rotulo(*selector, "PieComandasPagar") == "Registros Filtrados: 1"; }));
    EXPECT_EQ(renglones(*selector, "ListaComandasPagar", RolPrimeraLinea),
              QStringList{"Nodo: 7  MESA 7"});
    escribe(*selector, "BuscarTexto", QString());
    EXPECT_TRUE(esperaHasta(
        [&] { return rotulo(*selector, "PieComandasPagar") == "Número de Comandas: 2"; }));

    // Otra caja cobra la mesa 3 mientras esta lista sigue a la vista.
    c.exige("Update Comanda Set fechaPago = datetime('now','localtime'), remision = 99 "
            "Where id = " +
            std::to_string(mesa3));
    tocaRenglon(*selector, "ListaComandasPagar", TComandasPagarF::RolComanda,
                QString::number(mesa3));
    EXPECT_EQ(Mensajes::ultimos(), QStringList{QString::fromUtf8(MensajeComandaNoPorCobrar) +
                                               QStringLiteral(": ") + QString::number(mesa3)});
    EXPECT_TRUE(pv->venta().RemisionDetalles().empty());
    ASSERT_EQ(pv->findChild<TComandasPagarF*>(), selector);
    EXPECT_EQ(renglones(*selector, "ListaComandasPagar", RolPrimeraLinea),
              QStringList{"Nodo: 7  MESA 7"});

    // Lo que se cobra por tiempo lleva las horas que estuvo ocupado el nodo.
    c.exige("Update Productos Set Recurrente = 1 Where id = 120");
    c.exige("Update Comanda Set fechaApertura = datetime(fechaCierre, '-90 minutes', '-30 "
            "seconds') Where id = " +
            std::to_string(mesa7));
    const DocumentoClonado d =
        cargaDocumentoClonar(ModuloDeDatos.ConexionBD, cajera_, mesa7,
                             QString::fromLatin1(TipoClonarComanda), PrecioActual);
    EXPECT_EQ(d.minutosTranscurridos, 90);
    ASSERT_EQ(d.renglones.size(), 1u);
    EXPECT_DOUBLE_EQ(d.renglones[0].Cantidad, 1.5);
}

TEST_F(ComandasPagarTest, CancelarDesdeElPlanoExigeElDerechoYLiberaElNodo) {
    const int64_t comanda = cuentaCerrada(3, {101});
    // Con los derechos del perfil de cajero, que no cancela comandas.
    Sesion cajera = conDerechos(QStringLiteral("cajero"));
    auto f = std::make_unique<TComandasF>(cajera);
    f->resize(1280, 800);
    f->show();
    esperaLeyenda(*f);
    Mensajes::ultimos();
    toca(*f, "BotonCancelarComanda");
    EXPECT_EQ(Mensajes::ultimos(), QStringList{MensajeSinPermisoCancelarComanda});
    EXPECT_EQ(valor("Select cancelada From Comanda"), "0");

    c.exige("Update PerfilesUsuariosVentas Set cancelarComanda = 1 Where perfilID = 2");
    cajera.derechos =
        leeDerechosUsuario(ModuloDeDatos.ConexionBD, cajera.UsuarioID, cajera.perfilID);
    Mensajes::respondeOpcion(0);
    Mensajes::respondeTexto(QStringLiteral("  "));
    toca(*f, "BotonCancelarComanda");
    EXPECT_EQ(Mensajes::ultimos(),
              (QStringList{"Seleccione la Comanda a Cancelar", "Motivo de la Cancelación",
                           "Debe Indicar el Motivo de la Cancelación"}));
    EXPECT_EQ(valor("Select cancelada From Comanda"), "0");

    Mensajes::respondeOpcion(0);
    Mensajes::respondeTexto(QStringLiteral("El cliente se retiró"));
    Mensajes::respondeSiguiente(cajaplex::Respuesta::Si);
    toca(*f, "BotonCancelarComanda");
    EXPECT_EQ(Mensajes::ultimos(),
              (QStringList{"Seleccione la Comanda a Cancelar", "Motivo de la Cancelación",
                           "¿Desea Cancelar la Comanda del Nodo: 3 MESA 3?",
                           QStringLiteral("Comanda Cancelada: %1").arg(comanda)}));
    EXPECT_EQ(valor("Select cancelada || '|' || motivoCancelacion || '|' || usuarioIDCancelacion "
                    "|| '|' || (fechaCancelacion is not null) || '|' || (fechaPago is null) "
                    "From Comanda"),
              "1|El cliente se retiró|2|1|1");
    EXPECT_EQ(valor("Select status From NodosComida Where id = 3"), "0");
    EXPECT_EQ(valor("Select count(*) From AuditoriasSistema Where tipoAuditoria = 'Cancelación' "
                    "and moduloSistema = 'Ventas -> Comanda'"),
              "1");
    EXPECT_TRUE(esperaHasta([&] {
        const auto* mosaico = f->findChild<QPushButton*>(QStringLiteral("Nodo3"));
        return mosaico && mosaico->findChild<QLabel*>("EstadoNodo")->text() == "Libre";
    }));

    // Ya no está por cobrar.
    auto pv = puntoVenta(cajera);
    abreSelector(*pv);
    EXPECT_EQ(Mensajes::ultimos(), QStringList{MensajeSinComandasPorPagar});
}

TEST_F(ComandasPagarTest, NoSeCancelaLoPagadoNiLoCanceladoYUnaFallaNoDejaNada) {
    const int64_t pagada = cuentaCerrada(3, {101});
    const int64_t abierta = cuentaCerrada(7, {102});
    c.exige("Update Comanda Set fechaPago = datetime('now','localtime'), remision = 5 Where id = " +
            std::to_string(pagada));
    const Sesion admin = sesion(QStringLiteral("admin"), EmpresaRestaurante);
    CancelacionComanda cancelacion(ModuloDeDatos.ConexionBD, admin);
    EXPECT_EQ(cancelacion.comandaDelNodo(3), 0);
    EXPECT_EQ(cancelacion.comandaDelNodo(7), abierta);
    ResultadoCancelacion r = cancelacion.cancela(pagada, QStringLiteral("tarde"));
    EXPECT_FALSE(r.cancelada);
    EXPECT_EQ(r.mensaje, QString::fromUtf8(MensajeComandaPagada) + QString::number(pagada));
    EXPECT_EQ(cancelacion.cancela(999, QStringLiteral("x")).mensaje,
              QString::fromUtf8(MensajeComandaInexistente) + "999");

    // La bitácora falla: ni la comanda ni el nodo cambian.
    escribeConServicioDetenido("CREATE TRIGGER falla_bitacora BEFORE INSERT ON AuditoriasSistema "
                               "BEGIN SELECT RAISE(ABORT, 'falla inyectada'); END;");
    EXPECT_ANY_THROW(cancelacion.cancela(abierta, QStringLiteral("error de captura")));
    EXPECT_EQ(valor("Select cancelada || '|' || ifnull(motivoCancelacion, '') From Comanda Where "
                    "id = " +
                    std::to_string(abierta)),
              "0|");
    EXPECT_EQ(valor("Select status From NodosComida Where id = 7"), "2");

    escribeConServicioDetenido("DROP TRIGGER falla_bitacora;");
    EXPECT_TRUE(cancelacion.cancela(abierta, QStringLiteral("error de captura")).cancelada);
    r = cancelacion.cancela(abierta, QStringLiteral("otra vez"));
    EXPECT_EQ(r.mensaje, QString::fromUtf8(MensajeComandaCancelada) + QString::number(abierta));
    EXPECT_EQ(valor("Select count(*) From AuditoriasSistema Where moduloSistema = "
                    "'Ventas -> Comanda'"),
              "1");
}

} // namespace
} // namespace cajaplex
