// Las comandas contra el servicio real de demostración: el mesero abre la mesa 3, envía dos
// secciones, cierra y reabre la cuenta; otro mesero no la toca; una falla a media sección no deja
// nada y el carrito sigue.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include <QDir>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTreeWidget>

#include "datos/AjustesEstacion.h"
#include "datos/ModuloDatos.h"
#include "pantallas/Mensajes.h"
#include "pantallas/RegistroModulos.h"
#include "pantallas/Sonidos.h"
#include "printing/ImpresionDocumentos.h"
#include "printing/PlantillasLocales.h"
#include "restaurant/Comandas.h"
#include "restaurant/ModulosRestaurante.h"
#include "tests/restaurant/PruebaRestaurante.h"

namespace cajaplex {
namespace {

using namespace prueba;

class ComandasTest : public ConRestaurante {
protected:
    void SetUp() override {
        ConRestaurante::SetUp();
        // Los ajustes de la estación van a la carpeta de pruebas de Qt, no a la del usuario.
        QStandardPaths::setTestModeEnabled(true);
        QFile::remove(AjustesEstacion().ruta());
    }
    void TearDown() override {
        ModuloDeDatos.ConexionLocalBD.cierra();
        QFile::remove(AjustesEstacion().ruta());
        QStandardPaths::setTestModeEnabled(false);
        ConRestaurante::TearDown();
    }

    // Toca una línea o un producto del menú por su nombre.
    static void tocaMenu(const QWidget& f, const QString& nombre) {
        auto* menu = control<QListWidget>(f, "MenuProductos");
        for (int i = 0; i < menu->count(); ++i) {
            QListWidgetItem* item = menu->item(i);
            if (item->text() != nombre && item->data(Qt::AccessibleTextRole).toString() != nombre)
                continue;
            menu->scrollToItem(item);
            QTest::mouseClick(menu->viewport(), Qt::LeftButton, {},
                              menu->visualItemRect(item).center());
            esperaLeyenda(f);
            return;
        }
        ADD_FAILURE() << "sin " << nombre.toStdString() << " en el menú";
    }

    // Toca el mosaico de un nodo en cuanto el plano recién leído ya se ve.
    static void tocaNodoPlano(const QWidget& f, const char* nodo) {
        EXPECT_TRUE(esperaHasta([&] {
            const auto* mosaico = f.findChild<QPushButton*>(QString::fromLatin1(nodo));
            return mosaico && mosaico->isVisible();
        }));
        toca(f, nodo);
    }

    // Los renglones del carrito tal como se ven, comensal por comensal.
    static QStringList carrito(const QWidget& f) {
        QStringList textos;
        for (QTreeWidgetItemIterator i(control<QTreeWidget>(f, "CarritoCompra")); *i; ++i)
            textos << (*i)->text(0);
        return textos;
    }

    static void eligeRenglon(const QWidget& f, const QString& inicio) {
        auto* vista = control<QTreeWidget>(f, "CarritoCompra");
        for (QTreeWidgetItemIterator i(vista); *i; ++i)
            if ((*i)->text(0).startsWith(inicio)) {
                vista->setCurrentItem(*i);
                return;
            }
        ADD_FAILURE() << "sin renglón " << inicio.toStdString();
    }

    std::string detalle() {
        return valor("Select group_concat(r, ';') From (Select seccion || '|' || posicion || '|' "
                     "|| numeroComensal || '|' || producto || '|' || cantidad || '|' || "
                     "ifnull(nota, '') as r From ComandaDetalle Where empresaID = 2 Order By "
                     "seccion, posicion)");
    }

    // Abre la mesa 3 para `personas` y pide un guacamole.
    void abreMesa3(const QWidget& f, const QString& personas) {
        tocaNodoPlano(f, "Nodo3");
        ASSERT_EQ(pagina(f), "NuevaComanda");
        escribe(f, "NumeroPersonas", personas);
        toca(f, "BotonSiguiente");
        ASSERT_EQ(pagina(f), "MenuComanda");
        tocaMenu(f, QStringLiteral("Entradas"));
        tocaMenu(f, QStringLiteral("Guacamole con totopos"));
    }
};

TEST_F(ComandasTest, ElMeseroAbreEnviaDosSeccionesCierraYReabreLaCuenta) {
    auto f = abre<TComandasF>(QStringLiteral("mesero"));
    EXPECT_EQ(rotulo(*f, "EncabezadoAreasComida"), "Nodos de Comida: 12    Número de Meseros: 0");
    tocaNodoPlano(*f, "Nodo3");
    ASSERT_EQ(pagina(*f), "NuevaComanda");
    toca(*f, "BotonSiguiente");
    escribe(*f, "NumeroPersonas", "0");
    toca(*f, "BotonSiguiente");
    EXPECT_EQ(Mensajes::ultimos(),
              (QStringList{"Debe introducir un número de personas",
                           "Debe introducir un número de personas mayor a 1"}));
    EXPECT_EQ(pagina(*f), "NuevaComanda");

    escribe(*f, "NumeroPersonas", "4");
    escribe(*f, "ObservacionesComanda", "Aniversario");
    toca(*f, "BotonSiguiente");
    ASSERT_EQ(pagina(*f), "MenuComanda");
    EXPECT_FALSE(control<QPushButton>(*f, "BotonPagar")->isEnabled());
    tocaMenu(*f, QStringLiteral("Entradas"));
    tocaMenu(*f, QStringLiteral("Guacamole con totopos"));
    tocaMenu(*f, QStringLiteral("Guacamole con totopos"));
    tocaMenu(*f, QStringLiteral("Sopa de tortilla"));
    control<QSpinBox>(*f, "NumeroComensal")->setValue(2);
    tocaMenu(*f, QStringLiteral("Queso fundido con chorizo"));
    tocaMenu(*f, QStringLiteral("Caldo tlalpeño"));
    eligeRenglon(*f, QStringLiteral("1 x Sopa"));
    Mensajes::respondeTexto(QStringLiteral("Sin crema"));
    toca(*f, "BotonNota");
    eligeRenglon(*f, QStringLiteral("1 x Caldo"));
    Mensajes::respondeSiguiente(cajaplex::Respuesta::Aceptar);
    toca(*f, "BotonEliminar");
    EXPECT_EQ(Mensajes::ultimos(),
              (QStringList{"Cambiar Nota", "¿Desea eliminar Caldo tlalpeño?"}));
    EXPECT_EQ(carrito(*f),
              (QStringList{"Comensal 1", "2 x Guacamole con totopos", "1 x Sopa de tortilla",
                           "Nota: Sin crema", "Comensal 2", "1 x Queso fundido con chorizo"}));
    EXPECT_EQ(rotulo(*f, "Total"), "Total= $384.00");

    Sonidos::reproducidos();
    toca(*f, "BotonRegistrarTransaccion");
    EXPECT_TRUE(Mensajes::ultimos().isEmpty());
    EXPECT_TRUE(Sonidos::reproducidos().contains(Sonido::ComandaNueva));
    const std::string id = valor("Select id From Comanda Where empresaID = 2");
    EXPECT_EQ(valor("Select folio || '|' || nodoComida || '|' || vendedor || '|' || usuarioID || "
                    "'|' || numeroPersonas || '|' || observaciones From Comanda"),
              id + "|3|3|3|4|Aniversario");
    EXPECT_EQ(valor("Select status From NodosComida Where id = 3"), "1");
    EXPECT_EQ(detalle(), "1|1|1|101|2.0|;1|2|1|103|1.0|Sin crema;1|3|2|102|1.0|");
    EXPECT_EQ(valor("Select count(*) From ComandaDetalle Where id = " + id +
                    " and comanda = " + id + " and servida = 0 and cancelada = 0"),
              "3");
    EXPECT_EQ(valor("Select count(*) From AuditoriasSistema Where moduloSistema = "
                    "'Ventas -> Comandas' and tipoAuditoria = 'Inserción'"),
              "1");

    // Segunda sección: las posiciones siguen.
    tocaMenu(*f, QStringLiteral("Regresar"));
    tocaMenu(*f, QStringLiteral("Postres"));
    tocaMenu(*f, QStringLiteral("Flan napolitano"));
    EXPECT_FALSE(control<QPushButton>(*f, "BotonPagar")->isEnabled());
    toca(*f, "BotonRegistrarTransaccion");
    EXPECT_EQ(detalle(), "1|1|1|101|2.0|;1|2|1|103|1.0|Sin crema;1|3|2|102|1.0|;2|4|2|133|1.0|");

    // En el plano, la mesa dice quién la atiende.
    toca(*f, "BotonAnterior");
    ASSERT_EQ(pagina(*f), "PlanoAreasComida");
    EXPECT_EQ(rotulo(*f, "EncabezadoAreasComida"), "Nodos de Comida: 12    Número de Meseros: 1");
    EXPECT_EQ(control<QPushButton>(*f, "Nodo3")->findChild<QLabel*>("EstadoNodo")->text(),
              "Atiende: Carlos Hernández Vega");

    // Se continúa desde lo registrado y se cierra la cuenta.
    tocaNodoPlano(*f, "Nodo3");
    ASSERT_EQ(pagina(*f), "MenuComanda");
    EXPECT_EQ(rotulo(*f, "Total"), "Total= $439.00");
    Mensajes::respondeSiguiente(cajaplex::Respuesta::Aceptar);
    toca(*f, "BotonPagar");
    EXPECT_EQ(Mensajes::ultimos(), QStringList{"¿Desea Finalizar Cuenta?"});
    EXPECT_EQ(pagina(*f), "PlanoAreasComida");
    EXPECT_EQ(valor("Select N.status || '|' || (C.fechaCierre is not null) From NodosComida N, "
                    "Comanda C Where N.id = 3 and C.nodoComida = 3"),
              "2|1");

    // Cuenta cerrada: se reabre y toma una tercera sección.
    Mensajes::respondeSiguiente(cajaplex::Respuesta::Aceptar);
    tocaNodoPlano(*f, "Nodo3");
    EXPECT_EQ(Mensajes::ultimos(), QStringList{"¿Desea Reaperturarla?"});
    ASSERT_EQ(pagina(*f), "MenuComanda");
    EXPECT_EQ(valor("Select N.status || '|' || (C.fechaCierre is null) From NodosComida N, "
                    "Comanda C Where N.id = 3 and C.nodoComida = 3"),
              "1|1");
    tocaMenu(*f, QStringLiteral("Postres"));
    tocaMenu(*f, QStringLiteral("Arroz con leche"));
    toca(*f, "BotonRegistrarTransaccion");
    EXPECT_EQ(valor("Select seccion || '|' || posicion From ComandaDetalle Where producto = 136"),
              "3|5");
    EXPECT_EQ(valor("Select count(*) From Comanda"), "1");
}

TEST_F(ComandasTest, OtroMeseroNoContinuaNiCierraNiReabreLaMesa) {
    const Sesion mesero = sesion(QStringLiteral("mesero"), EmpresaRestaurante);
    RegistroComanda suya(ModuloDeDatos.ConexionBD, mesero);
    RenglonComanda guacamole;
    guacamole.producto = 101;
    const ComandaAbierta comanda = suya.registraSeccion(3, std::nullopt, {2, {}}, {guacamole});

    auto f = abre<TComandasF>(QStringLiteral("admin"));
    tocaNodoPlano(*f, "Nodo3");
    EXPECT_EQ(Mensajes::ultimos(),
              QStringList{"La Comanda de este Nodo la atiende: Carlos Hernández Vega"});
    EXPECT_EQ(pagina(*f), "PlanoAreasComida");

    // Aunque el plano estuviera viejo, el servicio solo toca las comandas del propio mesero.
    RegistroComanda otro(ModuloDeDatos.ConexionBD, sesion_);
    EXPECT_FALSE(otro.comandaDelMesero(3).has_value());
    EXPECT_FALSE(otro.cierraCuenta(3, comanda.id));
    EXPECT_EQ(valor("Select status From NodosComida Where id = 3"), "1");
    ASSERT_TRUE(suya.cierraCuenta(3, comanda.id));
    EXPECT_FALSE(otro.reabreCuenta(3));
    EXPECT_EQ(valor("Select status From NodosComida Where id = 3"), "2");
    // Ni con la cuenta cerrada se le pregunta si la reabre.
    toca(*f, "GrupoRecargarAreasComida");
    Mensajes::ultimos();
    tocaNodoPlano(*f, "Nodo3");
    EXPECT_EQ(Mensajes::ultimos(),
              QStringList{"La Comanda de este Nodo la atiende: Carlos Hernández Vega"});
}

TEST_F(ComandasTest, LaComandaSeEntregaAOtroMeseroYYaNoEsDelPrimero) {
    auto f = abre<TComandasF>(QStringLiteral("mesero"));
    abreMesa3(*f, QStringLiteral("2"));
    auto* cambiar = control<QPushButton>(*f, "GrupoCambiarMesero");
    EXPECT_FALSE(cambiar->isEnabled()); // con renglones sin enviar no se entrega
    toca(*f, "BotonRegistrarTransaccion");
    ASSERT_TRUE(cambiar->isEnabled());
    const std::string folio = valor("Select folio From Comanda");
    Mensajes::respondeOpcion(0);
    Mensajes::respondeSiguiente(cajaplex::Respuesta::Aceptar);
    toca(*f, "GrupoCambiarMesero");
    EXPECT_EQ(Mensajes::ultimos(),
              (QStringList{"Seleccionar Mesero",
                           QString::fromStdString("¿Desea asignar la Comanda " + folio +
                                                  " al Mesero seleccionado?")}));
    EXPECT_EQ(pagina(*f), "PlanoAreasComida");
    EXPECT_EQ(valor("Select vendedor || '|' || usuarioID From Comanda"), "1|3");

    tocaNodoPlano(*f, "Nodo3");
    EXPECT_EQ(Mensajes::ultimos(),
              QStringList{"La Comanda de este Nodo la atiende: Administrador del Sistema"});
    const Sesion admin = sesion(QStringLiteral("admin"), EmpresaRestaurante);
    EXPECT_TRUE(RegistroComanda(ModuloDeDatos.ConexionBD, admin).comandaDelMesero(3).has_value());
}

TEST_F(ComandasTest, UnaFallaAMediaSeccionNoDejaNadaYElCarritoSigue) {
    auto inyecta = [&](const char* sql) { escribeConServicioDetenido(sql); };
    // El tercer enunciado del alta es la bitácora.
    inyecta("CREATE TRIGGER falla_bitacora BEFORE INSERT ON AuditoriasSistema "
            "BEGIN SELECT RAISE(ABORT, 'falla inyectada'); END;");
    auto f = abre<TComandasF>(QStringLiteral("mesero"));
    abreMesa3(*f, QStringLiteral("2"));
    toca(*f, "BotonRegistrarTransaccion");
    EXPECT_EQ(Mensajes::ultimos(), QStringList{"Error al Registrar la comanda, Intente de nuevo"});
    EXPECT_EQ(valor("Select count(*) From Comanda"), "0");
    EXPECT_EQ(valor("Select count(*) From ComandaDetalle"), "0");
    EXPECT_EQ(valor("Select status From NodosComida Where id = 3"), "0");
    EXPECT_EQ(carrito(*f), (QStringList{"Comensal 1", "1 x Guacamole con totopos"}));
    EXPECT_TRUE(control<QPushButton>(*f, "BotonRegistrarTransaccion")->isEnabled());

    // Sin la falla, el mismo carrito se registra una sola vez.
    inyecta("DROP TRIGGER falla_bitacora;");
    toca(*f, "BotonRegistrarTransaccion");
    EXPECT_TRUE(Mensajes::ultimos().isEmpty());
    EXPECT_EQ(valor("Select count(*) From Comanda Where folio = id and numeroPersonas = 2"), "1");
    EXPECT_EQ(detalle(), "1|1|1|101|1.0|");
}

// La cuadrícula del menú se guarda en la estación; salir con renglones sin enviar pregunta.
TEST_F(ComandasTest, LaCuadriculaSeGuardaYSalirSinEnviarPregunta) {
    auto f = abre<TComandasF>(QStringLiteral("mesero"));
    abreMesa3(*f, QStringLiteral("1"));
    const auto* menu = control<QListWidget>(*f, "MenuProductos");
    const int alto = menu->gridSize().height();
    toca(*f, "MasColumnas");
    toca(*f, "MenosRenglones");
    toca(*f, "MenosRenglones");
    const AjustesEstacion estacion;
    EXPECT_EQ(estacion.valor(QStringLiteral("KioskoComandaColumnas")).toInt(), 4);
    EXPECT_EQ(estacion.valor(QStringLiteral("KioskoComandaRenglones")).toInt(), 2);
    // Con la mitad de renglones, cada celda es casi el doble de alta.
    EXPECT_GT(menu->gridSize().height(), alto * 3 / 2);

    Mensajes::respondeSiguiente(cajaplex::Respuesta::Cancelar);
    toca(*f, "BotonAnterior");
    EXPECT_EQ(Mensajes::ultimos(), QStringList{"¿Aún así desea salir?"});
    EXPECT_EQ(pagina(*f), "MenuComanda");
    EXPECT_EQ(carrito(*f), (QStringList{"Comensal 1", "1 x Guacamole con totopos"}));
    Mensajes::respondeSiguiente(cajaplex::Respuesta::Aceptar);
    toca(*f, "BotonAnterior");
    EXPECT_EQ(pagina(*f), "PlanoAreasComida");
    EXPECT_EQ(valor("Select count(*) From Comanda"), "0");
    EXPECT_EQ(valor("Select status From NodosComida Where id = 3"), "0");
}

// Con las opciones de la empresa, la sección va a cocina impresa y la cuenta al cerrarse; lo
// registrado queda aunque la estación no pueda imprimir.
TEST_F(ComandasTest, ImprimeLaSeccionYLaCuentaConLasPlantillasDeLaEstacion) {
    c.exige("Update Configura Set imprimeComandaAlGrabar = 1, imprimeCuentaAlPagar = 1 Where "
            "empresaID = 2");
    QTemporaryDir local;
    ASSERT_TRUE(local.isValid());
    ModuloDeDatos.ConexionLocalBD.cierra();
    ModuloDeDatos.ArchivoLocalBD = local.filePath(QStringLiteral("Cajaplex.db"));
    ModuloDeDatos.ContrasenaLocalBD = QStringLiteral("clave-local");
    // La estación abrió su base local al entrar, pero aún no tiene copia de las plantillas.
    ModuloDeDatos.ConexionLocalBD.abre();

    auto f = abre<TComandasF>(QStringLiteral("mesero"));
    abreMesa3(*f, QStringLiteral("2"));
    tocaMenu(*f, QStringLiteral("Sopa de tortilla"));
    eligeRenglon(*f, QStringLiteral("1 x Sopa"));
    Mensajes::respondeTexto(QStringLiteral("Sin crema"));
    toca(*f, "BotonNota");
    Mensajes::ultimos();
    // Sin la copia local de las plantillas.
    toca(*f, "BotonRegistrarTransaccion");
    EXPECT_EQ(Mensajes::ultimos(),
              QStringList{"No se localizó la plantilla de Comanda para imprimir."});
    EXPECT_EQ(detalle(), "1|1|1|101|1.0|;1|2|1|103|1.0|Sin crema");

    // Con las plantillas pero sin impresora en la estación.
    ASSERT_GT(actualizaCopiaLocalPlantillas(ModuloDeDatos, sesion_), 0);
    Mensajes::respondeSiguiente(cajaplex::Respuesta::Aceptar);
    toca(*f, "BotonPagar");
    EXPECT_TRUE(esperaHasta([] { return Mensajes::ultimos().contains(MensajeParametrosImpresion); },
                            10000));
    EXPECT_EQ(valor("Select status From NodosComida Where id = 3"), "2");

    // Lo que lleva cada documento, con las plantillas predeterminadas.
    const std::vector<RenglonComanda> renglones =
        RegistroComanda(ModuloDeDatos.ConexionBD, sesion_)
            .renglones(std::stoll(valor("Select id From Comanda")));
    NodoPlano mesa3;
    mesa3.clave = QStringLiteral("3");
    mesa3.descripcion = QStringLiteral("MESA 3");
    mesa3.area = QStringLiteral("Salón Principal");
    const QString comanda =
        rellenaPlantilla(textoPlantillaPredeterminada(QStringLiteral("Comanda")),
                         documentoComanda(mesa3, 7, 2, QStringLiteral("Carlos"),
                                          QStringLiteral("Aniversario"), renglones)
                             .datos);
    for (const char* texto :
         {"COMANDA 7", "Nodo: 3 MESA 3", "Salón Principal - Sección 2", "Mesero: Carlos",
          "Sopa de tortilla (Comensal 1)", "** Sin crema", "Aniversario"})
        EXPECT_TRUE(comanda.contains(QString::fromUtf8(texto))) << texto;
    const CuentaComanda cuenta = RegistroComanda(ModuloDeDatos.ConexionBD, sesion_)
                                     .cuenta(std::stoll(valor("Select id From Comanda")));
    EXPECT_EQ(cuenta.personas, 2);
    EXPECT_EQ(cuenta.mesero, "Carlos Hernández Vega");
    EXPECT_TRUE(cuenta.cierre.isValid());
    EXPECT_DOUBLE_EQ(cuenta.total(), 174.0);
    const QString impresa = rellenaPlantilla(textoPlantillaPredeterminada(QStringLiteral("Cuenta")),
                                             documentoCuenta(sesion_, mesa3, cuenta).datos);
    for (const char* texto : {"Personas: 2", "Guacamole con totopos", "$95.00", "$174.00"})
        EXPECT_TRUE(impresa.contains(QString::fromUtf8(texto))) << texto;
}

// Las dos pantallas solo aparecen en el menú de una empresa con control de restaurantes.
TEST(ModulosRestauranteTest, SoloParaEmpresasConRestaurante) {
    registraModulosRestaurante();
    Sesion tienda;
    tienda.esAdmin = true;
    Sesion restaurante = tienda;
    restaurante.controlRestaurantes = true;
    for (const char* nombre : {"AreasComida", "Comandas"}) {
        const EntradaMenu* entrada = RegistroModulos::busca(QString::fromLatin1(nombre));
        ASSERT_NE(entrada, nullptr) << nombre;
        EXPECT_EQ(entrada->grupo, "Restaurante");
        EXPECT_FALSE(entrada->visible(tienda)) << nombre;
        EXPECT_TRUE(entrada->visible(restaurante)) << nombre;
    }
}

} // namespace
} // namespace cajaplex
