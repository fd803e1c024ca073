// Mensajes con respuestas de prueba, leyenda con su temporizador y el archivo Cajaplex.ini.
#include <functional>
#include <memory>
#include <stdexcept>

#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QPointer>
#include <QTemporaryDir>
#include <QTest>
#include <QWidget>

#include "datos/AjustesEstacion.h"
#include "pantallas/Leyenda.h"
#include "pantallas/Mensajes.h"

namespace cajaplex {
namespace {

// Espera acotada: nunca cuelga la prueba si el temporizador no llega.
bool esperaHasta(const std::function<bool()>& condicion, int milisegundos = 2000) {
    QElapsedTimer reloj;
    reloj.start();
    while (!condicion()) {
        if (reloj.elapsed() > milisegundos) return false;
        QTest::qWait(5);
    }
    return true;
}

class MensajesTest : public ::testing::Test {
protected:
    void SetUp() override { Mensajes::modoPrueba(true); }
    void TearDown() override { Mensajes::modoPrueba(false); }
    Mensajes mensajes_;
};

TEST_F(MensajesTest, AnotaEnOrdenYRespondeDesdeLaCola) {
    Mensajes::respondeSiguiente(Respuesta::Aceptar);
    Mensajes::respondeSiguiente(Respuesta::No);
    Mensajes::respondeSiguiente(Respuesta::Cancelar);
    Mensajes::respondeSiguiente(Respuesta::Si);

    mensajes_.muestra("Debe Introducir una Nota");
    EXPECT_TRUE(mensajes_.pregunta("¿Desea Almacenar los Cambios?"));
    EXPECT_FALSE(mensajes_.preguntaSiNo("¿Desea Imprimir?"));
    EXPECT_FALSE(mensajes_.pregunta("¿Desea Cancelar la Venta?"));
    EXPECT_TRUE(mensajes_.preguntaSiNo("¿Desea Salir?"));

    EXPECT_EQ(Mensajes::ultimos(),
              (QStringList{"Debe Introducir una Nota", "¿Desea Almacenar los Cambios?",
                           "¿Desea Imprimir?", "¿Desea Cancelar la Venta?", "¿Desea Salir?"}));
    EXPECT_TRUE(Mensajes::ultimos().isEmpty()); // leer vacía lo anotado
    EXPECT_EQ(Mensajes::respuestasPendientes(), 0);
}

TEST_F(MensajesTest, ColaVaciaContestaNegativoSinBloquear) {
    EXPECT_FALSE(mensajes_.pregunta("¿Desea Almacenar los Cambios?"));
    EXPECT_FALSE(mensajes_.preguntaSiNo("¿Desea Salir?"));
    EXPECT_EQ(mensajes_.eligeOpcion("Seleccione el Tipo de Operación", {"A", "B"}), -1);
    EXPECT_EQ(mensajes_.pideTexto("Nombre", "inicial", 10), std::nullopt);
    EXPECT_EQ(mensajes_.pideDecimal("Cantidad", 1.0, 2), std::nullopt);
    EXPECT_EQ(Mensajes::ultimos(),
              (QStringList{"¿Desea Almacenar los Cambios?", "¿Desea Salir?",
                           "Seleccione el Tipo de Operación", "Nombre", "Cantidad"}));
}

TEST_F(MensajesTest, OpcionTextoYDecimalSeAjustanComoElCampoReal) {
    const QStringList tipos{"Almacenar y Enviar Impresión", "Almacenar y Visualizar PDF",
                            "Almacenar Únicamente"};
    Mensajes::respondeOpcion(2);
    Mensajes::respondeOpcion(3); // fuera de rango: como cancelar
    Mensajes::respondeTexto("Mostrador Norte");
    Mensajes::respondeDecimal(12.3456);
    Mensajes::respondeDecimal(-0.5);

    EXPECT_EQ(mensajes_.eligeOpcion("Seleccione el Tipo de Operación", tipos), 2);
    EXPECT_EQ(mensajes_.eligeOpcion("Seleccione el Tipo de Operación", tipos), -1);
    EXPECT_EQ(mensajes_.pideTexto("Nombre de la Caja", {}, 9), QString("Mostrador"));
    EXPECT_EQ(mensajes_.pideDecimal("Cantidad", 0.0, 2), 12.35);
    EXPECT_EQ(mensajes_.pideDecimal("Cantidad", 0.0, 0), -1.0);
}

TEST_F(MensajesTest, RespuestaDeOtroTipoSeQuedaEnLaCola) {
    Mensajes::respondeTexto("Cocina");
    EXPECT_FALSE(mensajes_.pregunta("¿Desea Continuar?"));
    EXPECT_EQ(Mensajes::respuestasPendientes(), 1);
    EXPECT_EQ(mensajes_.pideTexto("Área"), QString("Cocina"));

    Mensajes::respondeSiguiente(Respuesta::Aceptar);
    Mensajes::modoPrueba(true); // reactivar descarta lo que quedó
    EXPECT_EQ(Mensajes::respuestasPendientes(), 0);
    EXPECT_TRUE(Mensajes::ultimos().isEmpty());
}

class LeyendaTest : public ::testing::Test {
protected:
    void SetUp() override {
        pantalla_.resize(400, 300);
        pantalla_.show();
    }
    QLabel* leyenda() { return pantalla_.findChild<QLabel*>("Leyenda"); }
    QWidget pantalla_;
};

TEST_F(LeyendaTest, SeVeAntesDelTrabajoYSeOcultaDespues) {
    bool corrio = false;
    bool visibleDuranteTrabajo = false;
    ejecutaConLeyenda(&pantalla_, "Registrando Transacción.", [&] {
        corrio = true;
        visibleDuranteTrabajo = leyenda()->isVisible();
    });

    ASSERT_NE(leyenda(), nullptr);
    EXPECT_FALSE(corrio); // el trabajo espera al temporizador
    EXPECT_TRUE(leyenda()->isVisible());
    EXPECT_EQ(leyenda()->text(), "Registrando Transacción.");
    EXPECT_LE((leyenda()->geometry().center() - pantalla_.rect().center()).manhattanLength(), 2);

    ASSERT_TRUE(esperaHasta([&] { return corrio; }));
    EXPECT_TRUE(visibleDuranteTrabajo);
    EXPECT_TRUE(leyenda()->isHidden());

    ejecutaConLeyenda(&pantalla_, "Consultando Existencias.", [] {});
    EXPECT_EQ(pantalla_.findChildren<QLabel*>("Leyenda").size(), 1); // se reutiliza
}

TEST_F(LeyendaTest, DosTrabajosSeguidosNoApaganLaLeyendaAntesDeTiempo) {
    bool visibleEnElSegundo = false;
    bool terminoSegundo = false;
    ejecutaConLeyenda(&pantalla_, "Primero.", [] {});
    ejecutaConLeyenda(&pantalla_, "Segundo.", [&] {
        visibleEnElSegundo = leyenda()->isVisible();
        terminoSegundo = true;
    });
    ASSERT_TRUE(esperaHasta([&] { return terminoSegundo; }));
    EXPECT_TRUE(visibleEnElSegundo);
    EXPECT_TRUE(leyenda()->isHidden());
}

TEST_F(LeyendaTest, TrabajoQueLanzaSeAnotaYOcultaLaLeyenda) {
    static QStringList avisos;
    avisos.clear();
    const QtMessageHandler anterior =
        qInstallMessageHandler([](QtMsgType tipo, const QMessageLogContext&, const QString& m) {
            if (tipo == QtWarningMsg) avisos << m;
        });
    bool corrio = false;
    ejecutaConLeyenda(&pantalla_, "Registrando Transacción.", [&] {
        corrio = true;
        throw std::runtime_error("sin conexión al servidor");
    });
    const bool llego = esperaHasta([&] { return corrio; });
    QTest::qWait(20);
    qInstallMessageHandler(anterior);

    ASSERT_TRUE(llego);
    EXPECT_TRUE(leyenda()->isHidden());
    ASSERT_EQ(avisos.size(), 1);
    EXPECT_TRUE(avisos.first().contains("sin conexión al servidor"));
}

TEST(LeyendaPantallaDestruida, ElTrabajoNoCorre) {
    bool corrio = false;
    auto* pantalla = new QWidget;
    pantalla->show();
    ejecutaConLeyenda(pantalla, "Registrando Transacción.", [&] { corrio = true; });
    delete pantalla;
    QTest::qWait(50);
    EXPECT_FALSE(corrio);
}

TEST(AjustesEstacion, EscribeLaSeccionYLasClavesYLasReleeOtraInstancia) {
    QTemporaryDir carpeta;
    ASSERT_TRUE(carpeta.isValid());
    const QString subcarpeta = carpeta.filePath("estacion"); // aún no existe
    {
        AjustesEstacion ajustes(subcarpeta);
        ajustes.ponDireccionServidor(" 192.168.1.20 ");
        ajustes.ponPuertoServidor(9090);
        ajustes.ponUtilizarSonidos(false);
        ajustes.ponValor("ImpresoraTickets", "Caja Ñandú");
        ASSERT_TRUE(ajustes.guarda());
    }
    QFile archivo(subcarpeta + "/Cajaplex.ini");
    ASSERT_TRUE(archivo.open(QIODevice::ReadOnly));
    const QString texto = QString::fromUtf8(archivo.readAll());
    EXPECT_TRUE(texto.startsWith("[CajaplexOmnivar]")) << texto.toStdString();
    EXPECT_TRUE(texto.contains("DireccionWEBService=192.168.1.20\n")) << texto.toStdString();
    EXPECT_TRUE(texto.contains("PuertoWEBService=9090\n")) << texto.toStdString();
    EXPECT_TRUE(texto.contains("UtilizarSonidos=false\n")) << texto.toStdString();

    const AjustesEstacion leidos(subcarpeta);
    EXPECT_EQ(leidos.direccionServidor(), "192.168.1.20");
    EXPECT_EQ(leidos.puertoServidor(), 9090);
    EXPECT_FALSE(leidos.utilizarSonidos());
    EXPECT_EQ(leidos.valor("ImpresoraTickets").toString(), "Caja Ñandú");
    EXPECT_EQ(leidos.valor("NoExiste", "omisión").toString(), "omisión");
}

TEST(AjustesEstacion, OmisionesYArchivoEditadoAMano) {
    QTemporaryDir carpeta;
    ASSERT_TRUE(carpeta.isValid());
    {
        const AjustesEstacion vacios(carpeta.path());
        EXPECT_EQ(vacios.direccionServidor(), "");
        EXPECT_EQ(vacios.puertoServidor(), 8080);
        EXPECT_TRUE(vacios.utilizarSonidos());
    }
    QFile archivo(carpeta.filePath("Cajaplex.ini"));
    ASSERT_TRUE(archivo.open(QIODevice::WriteOnly));
    archivo.write("[Otra]\nPuertoWEBService=7000\n"
                  "[CajaplexOmnivar]\nDireccionWEBService=servidor.local\n"
                  "PuertoWEBService=abc\nUtilizarSonidos=0\n");
    archivo.close();

    const AjustesEstacion aMano(carpeta.path());
    EXPECT_EQ(aMano.direccionServidor(), "servidor.local");
    EXPECT_EQ(aMano.puertoServidor(), 8080); // inválido: el de omisión, no el de otra sección
    EXPECT_FALSE(aMano.utilizarSonidos());
}

} // namespace
} // namespace cajaplex
