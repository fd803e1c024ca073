// El monitor de preparación contra el servicio real de demostración: lo que el mesero envía
// aparece sin esperar la revisión de 30 s, el cocinero avanza cada renglón hasta servirlo, lo
// cancelado o cerrado en otra estación sale, los colores siguen a los minutos, el área y la
// cuadrícula se recuerdan, y sin eventos del servicio se revisa cada 30 s hasta que vuelven.
// También el plano de Comandas, que escucha los mismos eventos.
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QStandardPaths>
#include <QTimer>

#include "datos/AjustesEstacion.h"
#include "datos/ModuloDatos.h"
#include "pantallas/Sonidos.h"
#include "restaurant/Comandas.h"
#include "restaurant/MonitorPreparacion.h"
#include "restaurant/RegistroComanda.h"
#include "tests/restaurant/PruebaRestaurante.h"

namespace cajaplex {
namespace {

using namespace prueba;

const char* const kAvisoSinEventos = "Sin avisos del servicio: se revisa cada 30 s";

RenglonComanda renglon(int64_t producto, int comensal, const QString& nota = {}) {
    RenglonComanda r;
    r.producto = producto;
    r.comensal = comensal;
    r.nota = nota;
    return r;
}

class MonitorPreparacionTest : public ConRestaurante {
protected:
    void SetUp() override {
        ConRestaurante::SetUp();
        QStandardPaths::setTestModeEnabled(true);
        QFile::remove(AjustesEstacion().ruta());
    }
    void TearDown() override {
        QFile::remove(AjustesEstacion().ruta());
        QStandardPaths::setTestModeEnabled(false);
        ConRestaurante::TearDown();
    }

    // El monitor abierto y ya escuchando los eventos del servicio.
    std::unique_ptr<TMonitorPreparacionF> abreMonitor() {
        auto f = abre<TMonitorPreparacionF>(QStringLiteral("mesero"));
        EXPECT_TRUE(enVivo(*f));
        return f;
    }
    static bool enVivo(const QWidget& f) {
        return esperaHasta([&] { return !control<QTimer>(f, "ComandasNuevas")->isActive(); });
    }

    // Una sección enviada por el mesero desde otra tableta, con la lógica de las comandas.
    ComandaAbierta envia(int64_t nodo, const std::vector<RenglonComanda>& renglones,
                         const std::optional<ComandaAbierta>& abierta = std::nullopt) {
        return RegistroComanda(ModuloDeDatos.ConexionBD, sesion_)
            .registraSeccion(nodo, abierta, AperturaComanda{2, {}}, renglones);
    }

    static QFrame* tarjeta(const QWidget& f, const ComandaAbierta& c) {
        return f.findChild<QFrame*>(QStringLiteral("Comanda%1_%2").arg(c.folio).arg(c.seccion));
    }
    static bool aparece(const QWidget& f, const ComandaAbierta& c, int ms = 1000) {
        return esperaHasta([&] { return tarjeta(f, c) != nullptr; }, ms);
    }
    static bool desaparece(const QWidget& f, const ComandaAbierta& c) {
        return esperaHasta([&] { return tarjeta(f, c) == nullptr; });
    }
    static QStringList textos(const QFrame* t, const char* nombre) {
        QStringList lista;
        for (const QLabel* l : t->findChildren<QLabel*>(QString::fromLatin1(nombre)))
            lista << l->text();
        return lista;
    }
    static void tocaRenglon(const QFrame* t, int posicion) {
        auto* b = t->findChild<QPushButton*>(QStringLiteral("Renglon%1").arg(posicion));
        ASSERT_NE(b, nullptr) << posicion;
        QTest::mouseClick(b, Qt::LeftButton);
    }
    static QString estado(const QFrame* t, int posicion) {
        auto* b = t->findChild<QPushButton*>(QStringLiteral("Renglon%1").arg(posicion));
        return b ? b->findChild<QLabel*>(QStringLiteral("EstadoRenglon"))->text() : QString();
    }
    // El minutero, n veces, sin esperar sus 60 s.
    static void minutos(const QWidget& f, int n) {
        for (int i = 0; i < n; ++i)
            QMetaObject::invokeMethod(control<QTimer>(f, "IncrementarMinutos"), "timeout");
    }
    // El color que se ve en el encabezado de la tarjeta, arriba al centro.
    static QString colorEncabezado(const QFrame* t) {
        auto* e = t->findChild<QFrame*>(QStringLiteral("EncabezadoComanda"));
        const QImage imagen = e->grab().toImage();
        return imagen.pixelColor(imagen.width() / 2, 2).name().toUpper();
    }
};

TEST_F(MonitorPreparacionTest, LoEnviadoApareceEnVivoYSeAvanzaHastaServirse) {
    auto f = abreMonitor();
    EXPECT_EQ(rotulo(*f, "Pendientes"), "Pendientes 0");
    EXPECT_TRUE(control<QLabel>(*f, "SinComandas")->isVisible());
    Sonidos::reproducidos();

    const ComandaAbierta mesa =
        envia(3, {renglon(101, 1), renglon(103, 1, QStringLiteral("Sin crema")), renglon(131, 2)});
    // Sin esperar la revisión de 30 s.
    ASSERT_TRUE(aparece(*f, mesa));
    const QFrame* t = tarjeta(*f, mesa);
    EXPECT_EQ(textos(t, "TituloComanda"),
              QStringList{QStringLiteral("Comanda %1  MESA 3").arg(mesa.folio)});
    EXPECT_EQ(textos(t, "MeseroComanda"), QStringList{"Carlos Hernández Vega"});
    EXPECT_EQ(textos(t, "Comensal1") + textos(t, "Comensal2"),
              (QStringList{"Comensal 1", "Comensal 2"}));
    EXPECT_EQ(textos(t, "TextoRenglon"),
              (QStringList{"1 x Guacamole con totopos", "1 x Sopa de tortilla\nNota: Sin crema",
                           "1 x Cerveza clara 355 ml"}));
    EXPECT_EQ(textos(t, "PieComanda"), QStringList{"3 Producto(s)"});
    EXPECT_EQ(rotulo(*f, "Pendientes"), "Pendientes 1");
    EXPECT_TRUE(Sonidos::reproducidos().contains(Sonido::ComandaNueva));

    // Pendiente -> Preparando -> Servida, cada paso con su fecha.
    const std::string renglon1 =
        "From ComandaDetalle Where comanda = " + std::to_string(mesa.folio) +
        " and seccion = 1 and posicion = 1";
    tocaRenglon(t, 1);
    EXPECT_EQ(valor("Select servida || '|' || (fechaPreparada is not null) || '|' || "
                    "(fechaServida is null) " +
                    renglon1),
              "1|1|1");
    EXPECT_EQ(estado(t, 1), "Preparando");
    tocaRenglon(t, 1);
    EXPECT_EQ(valor("Select servida || '|' || (fechaServida is not null) " + renglon1), "2|1");
    // Lo servido sale de la tarjeta con la relectura que su propio cambio provoca.
    ASSERT_TRUE(
        esperaHasta([&] { return textos(t, "PieComanda") == QStringList{"2 Producto(s)"}; }));
    for (int posicion : {2, 3}) {
        tocaRenglon(t, posicion);
        tocaRenglon(t, posicion);
    }
    ASSERT_TRUE(desaparece(*f, mesa));
    EXPECT_EQ(rotulo(*f, "Pendientes"), "Pendientes 0");
    EXPECT_EQ(valor("Select count(*) From ComandaDetalle Where servida = 2 and fechaServida is not "
                    "null and comanda = " +
                    std::to_string(mesa.folio)),
              "3");
    EXPECT_TRUE(Mensajes::ultimos().isEmpty());
}

TEST_F(MonitorPreparacionTest, LoCanceladoOCerradoEnOtraEstacionSale) {
    auto f = abreMonitor();
    const ComandaAbierta mesa3 = envia(3, {renglon(101, 1)});
    const ComandaAbierta mesa4 = envia(4, {renglon(106, 1), renglon(139, 2)});
    ASSERT_TRUE(aparece(*f, mesa3));
    ASSERT_TRUE(aparece(*f, mesa4));

    // Los componentes de un paquete, a petición.
    EXPECT_TRUE(textos(tarjeta(*f, mesa4), "Ingredientes").isEmpty());
    auto* ver = tarjeta(*f, mesa4)->findChild<QPushButton*>("MostrarIngredientes");
    ASSERT_TRUE(esperaHasta([&] { return ver->isVisible(); }));
    // El toque directo al botón: con el gesto de deslizar, un clic sintético inmediato se pierde.
    ver->click();
    esperaLeyenda(*f);
    EXPECT_TRUE(Mensajes::ultimos().isEmpty());
    EXPECT_EQ(
        textos(tarjeta(*f, mesa4), "Ingredientes"),
        QStringList{"• 1 x Tacos al pastor (orden de 5)\n• 1 x Agua fresca de horchata 500 ml"});

    c.exige("Update Comanda Set Cancelada = 1, fechaCancelacion = Getdate(), "
            "motivoCancelacion = 'Se fueron' Where id = " +
            std::to_string(mesa3.id));
    EXPECT_TRUE(desaparece(*f, mesa3));
    ASSERT_TRUE(RegistroComanda(ModuloDeDatos.ConexionBD, sesion_).cierraCuenta(4, mesa4.id));
    EXPECT_TRUE(desaparece(*f, mesa4));
    EXPECT_EQ(rotulo(*f, "Pendientes"), "Pendientes 0");
}

TEST_F(MonitorPreparacionTest, ElAreaYLaCuadriculaSeRecuerdanYSinAreaNoSeVe) {
    // El queso fundido se quedó sin área de preparación.
    c.exige("Update Productos Set areaComida = Null Where empresaID = 2 and id = 102");
    {
        auto f = abreMonitor();
        const ComandaAbierta mesa = envia(5, {renglon(101, 1), renglon(102, 1), renglon(131, 1)});
        ASSERT_TRUE(aparece(*f, mesa));
        // Dentro del comensal, en el orden de la consulta: por área y producto.
        EXPECT_EQ(textos(tarjeta(*f, mesa), "TextoRenglon"),
                  (QStringList{"1 x Cerveza clara 355 ml", "1 x Guacamole con totopos"}));
        const int ancho = tarjeta(*f, mesa)->width();
        toca(*f, "MasColumnas");
        EXPECT_LT(tarjeta(*f, mesa)->width(), ancho);

        toca(*f, "Area4"); // Cocina: la cerveza es de la barra
        ASSERT_TRUE(aparece(*f, mesa));
        EXPECT_EQ(textos(tarjeta(*f, mesa), "TextoRenglon"),
                  QStringList{"1 x Guacamole con totopos"});
    }
    AjustesEstacion ajustes;
    EXPECT_EQ(ajustes.valor("MonitorListaAreasPreparacionID").toInt(), 4);
    EXPECT_EQ(ajustes.valor("KioskoMonitorPreparacionColumnas").toInt(), 5);
    auto f = abreMonitor();
    EXPECT_TRUE(control<QPushButton>(*f, "Area4")->isChecked());
    EXPECT_EQ(rotulo(*f, "Pendientes"), "Pendientes 1");
}

TEST_F(MonitorPreparacionTest, ElColorSigueALosMinutosQueSoloCreceConElMinutero) {
    auto f = abreMonitor();
    const ComandaAbierta mesa = envia(6, {renglon(110, 1)});
    ASSERT_TRUE(aparece(*f, mesa));
    const QDateTime captura = QDateTime::fromString(
        QString::fromStdString(valor("Select fechaCaptura From ComandaDetalle")),
        QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    ASSERT_TRUE(captura.isValid());

    // Los minutos iniciales salen de la captura; luego solo el minutero los sube.
    f->ponReloj([captura] { return captura.addSecs(14 * 60 + 30); });
    toca(*f, "GrupoRecargarComandas");
    const QFrame* t = tarjeta(*f, mesa);
    ASSERT_NE(t, nullptr);
    EXPECT_EQ(textos(t, "MinutosComanda"), QStringList{"14 min"});
    EXPECT_EQ(colorEncabezado(t), "#1E90FF");
    minutos(*f, 1);
    EXPECT_EQ(textos(t, "MinutosComanda"), QStringList{"15 min"});
    EXPECT_EQ(colorEncabezado(t), "#FFD700");
    minutos(*f, 9);
    EXPECT_EQ(colorEncabezado(t), "#FFD700");
    minutos(*f, 1);
    EXPECT_EQ(textos(t, "MinutosComanda"), QStringList{"25 min"});
    EXPECT_EQ(colorEncabezado(t), "#FF0000");

    // Una relectura por otra sección no cambia los minutos de la que ya se veía.
    const ComandaAbierta otra = envia(6, {renglon(133, 1)}, mesa);
    ASSERT_TRUE(aparece(*f, otra));
    EXPECT_EQ(textos(t, "MinutosComanda"), QStringList{"25 min"});
    EXPECT_EQ(textos(tarjeta(*f, otra), "MinutosComanda"), QStringList{"14 min"});
}

TEST_F(MonitorPreparacionTest, SinEventosRevisaCada30SegundosHastaQueVuelven) {
    auto f = abreMonitor();
    EXPECT_EQ(rotulo(*f, "ModoActualizacion"), "");
    servicio.detiene();
    ASSERT_TRUE(esperaHasta([&] { return rotulo(*f, "ModoActualizacion") == kAvisoSinEventos; }));
    EXPECT_TRUE(control<QTimer>(*f, "ComandasNuevas")->isActive());
    EXPECT_EQ(control<QTimer>(*f, "ComandasNuevas")->interval(), 30000);
    EXPECT_TRUE(f->windowTitle().endsWith(kAvisoSinEventos));

    servicio.reinicia();
    c = servicio.cliente();
    ModuloDeDatos.ConexionBD.configura(QStringLiteral("127.0.0.1"), servicio.puerto(),
                                       QString::fromStdString(kUsuarioDemo),
                                       QString::fromStdString(kUsuarioDemo));
    ASSERT_TRUE(esperaHasta([&] { return rotulo(*f, "ModoActualizacion").isEmpty(); }, 10000));
    EXPECT_TRUE(enVivo(*f));
    const ComandaAbierta mesa = envia(7, {renglon(114, 1)});
    EXPECT_TRUE(aparece(*f, mesa));
    EXPECT_TRUE(Mensajes::ultimos().isEmpty());
}

TEST_F(MonitorPreparacionTest, ElPlanoDeComandasSeEnteraSinEsperar) {
    auto f = abre<TComandasF>(QStringLiteral("mesero"));
    ASSERT_TRUE(
        esperaHasta([&] { return !control<QTimer>(*f, "TemporizadorRecarga")->isActive(); }));
    const Sesion admin = sesion(QStringLiteral("admin"), EmpresaRestaurante);
    RegistroComanda(ModuloDeDatos.ConexionBD, admin)
        .registraSeccion(8, std::nullopt, AperturaComanda{2, {}}, {renglon(101, 1)});
    EXPECT_TRUE(esperaHasta(
        [&] {
            auto* nodo = f->findChild<QPushButton*>(QStringLiteral("Nodo8"));
            return nodo && nodo->findChild<QLabel*>(QStringLiteral("EstadoNodo"))->text() ==
                               QStringLiteral("Atiende: ") + admin.NombreDeUsuario;
        },
        1000));
}

} // namespace
} // namespace cajaplex
