// Sonidos, imágenes y hoja de estilo: los recursos existen y sirven, y el modo real no estorba en
// un equipo sin audio.
#include <memory>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QHeaderView>
#include <QImage>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QRegularExpression>
#include <QSoundEffect>
#include <QTableView>
#include <QTest>
#include <QUrl>

#include "pantallas/HojaEstilo.h"
#include "pantallas/Sonidos.h"

namespace cajaplex {
namespace {

const std::pair<Sonido, const char*> kSonidos[] = {
    {Sonido::Click, "Click.mp3"},
    {Sonido::Error, "Error.mp3"},
    {Sonido::Salir, "Salir.mp3"},
    {Sonido::Regresar, "Regresar.mp3"},
    {Sonido::Deslizar, "Deslizar.mp3"},
    {Sonido::MostrarResultados, "MostrarResultados.mp3"},
    {Sonido::Recargar, "Recargar.mp3"},
    {Sonido::ComandaNueva, "ComandaNueva.mp3"},
    {Sonido::FinalizarComanda, "FinalizarComanda.mp3"}};

// El sistema los nombra por su MP3; lo que suena es el WAV de al lado, y debe cargar.
TEST(Sonidos, CadaUnoTieneSuWavEnLosRecursosYCarga) {
    std::vector<std::unique_ptr<QSoundEffect>> efectos;
    for (const auto& [sonido, nombre] : kSonidos) {
        SCOPED_TRACE(nombre);
        EXPECT_EQ(Sonidos::archivo(sonido), QString(nombre));
        const QString wav = QString(nombre).replace(QLatin1String(".mp3"), QLatin1String(".wav"));
        QFile archivo(QStringLiteral(":/sonidos/") + wav);
        ASSERT_TRUE(archivo.open(QIODevice::ReadOnly));
        EXPECT_LT(archivo.size(), 40 * 1024); // pequeños: van dentro del ejecutable
        efectos.push_back(std::make_unique<QSoundEffect>());
        efectos.back()->setSource(QUrl(QStringLiteral("qrc:/sonidos/") + wav));
    }
    for (const auto& efecto : efectos) {
        SCOPED_TRACE(qPrintable(efecto->source().toString()));
        EXPECT_TRUE(QTest::qWaitFor([&] { return efecto->status() != QSoundEffect::Loading; }));
        EXPECT_EQ(efecto->status(), QSoundEffect::Ready);
    }
}

TEST(Sonidos, ModoPruebaAnotaEnOrdenSoloConSonidosActivos) {
    Sonidos::modoPrueba(true);
    Sonidos::activa(false);
    Sonidos::reproduce(Sonido::Click);
    EXPECT_TRUE(Sonidos::reproducidos().isEmpty());

    Sonidos::activa(true);
    Sonidos::reproduce(Sonido::Click);
    Sonidos::reproduce(Sonido::ComandaNueva);
    Sonidos::reproduce(Sonido::Click);
    EXPECT_EQ(Sonidos::reproducidos(),
              (QList<Sonido>{Sonido::Click, Sonido::ComandaNueva, Sonido::Click}));
    EXPECT_TRUE(Sonidos::reproducidos().isEmpty()); // leer vacía lo anotado

    Sonidos::reproduce(Sonido::Salir);
    Sonidos::modoPrueba(true); // reactivar también vacía
    EXPECT_TRUE(Sonidos::reproducidos().isEmpty());
    Sonidos::modoPrueba(false);
    Sonidos::activa(false);
}

// Cuenta los mensajes de Qt mientras vive: sin audio se permite una sola línea informativa.
QtMessageHandler manejadorPrevio = nullptr;
int mensajes = 0;
void cuentaMensajes(QtMsgType tipo, const QMessageLogContext& contexto, const QString& texto) {
    if (tipo != QtDebugMsg) ++mensajes;
    manejadorPrevio(tipo, contexto, texto);
}

// Sonidos de verdad (con o sin dispositivo): todos, dos encimados y la misma tecla otra vez, y el
// sistema de sonido destruido a media reproducción, en distintos momentos (cargando, recién
// cargado, sonando). Es lo que pasa al salir del programa justo después de "Salir".
TEST(Sonidos, DeVerdadEncimadosYDestruidosAMediaReproduccionNiFallanNiLlenanLaBitacora) {
    Sonidos::modoPrueba(false);
    Sonidos::activa(true);
    manejadorPrevio = qInstallMessageHandler(cuentaMensajes);
    for (int vuelta = 0; vuelta < 40; ++vuelta) {
        for (const auto& [sonido, nombre] : kSonidos)
            Sonidos::reproduce(sonido);
        Sonidos::reproduce(Sonido::ComandaNueva); // encima de FinalizarComanda, que sigue
        Sonidos::reproduce(Sonido::Click);        // otra pulsación: vuelve a empezar
        QTest::qWait(vuelta % 8 * 5);
        ASSERT_TRUE(Sonidos::sonando()) << "vuelta " << vuelta;
        Sonidos::libera();
        EXPECT_FALSE(Sonidos::sonando());
    }
    Sonidos::reproduce(Sonido::Salir); // el último queda sonando para ~QApplication
    QTest::qWait(20);
    qInstallMessageHandler(manejadorPrevio);
    Sonidos::activa(false);

    EXPECT_LE(mensajes, 1);
    EXPECT_TRUE(Sonidos::reproducidos().isEmpty()); // fuera del modo de prueba no se anota
}

TEST(Imagenes, CadaNombreSeDibujaAlTamanoPedido) {
    const QStringList nombres =
        QStringLiteral("LogotipoVacio Logo Candado Correo Huella Calendario Usuario Empresa "
                       "Insercion Actualizacion Cancelacion CorteVenta CorteCaja Bonificacion "
                       "Bitacoras Terminos CerrarSesion PuntoVenta Comandas MonitorPreparacion "
                       "AreasComida Productos Lineas Kits Unidades Etiquetas IncrementoPrecios "
                       "ValorInventario Importar Exportar Cotizaciones Compras CajaChica Monedero "
                       "Kardex Configuracion Regresar Buscar Foto Rotar")
            .split(QLatin1Char(' '));
    for (const QString& nombre : nombres) {
        for (const QSize tamano : {QSize(24, 24), QSize(96, 96), QSize(80, 40)}) {
            SCOPED_TRACE(qPrintable(
                QStringLiteral("%1 %2x%3").arg(nombre).arg(tamano.width()).arg(tamano.height())));
            const QImage dibujo = imagen(nombre, tamano).toImage();
            ASSERT_FALSE(dibujo.isNull());
            EXPECT_EQ(dibujo.size(), tamano);
            int visibles = 0;
            for (int y = 0; y < dibujo.height(); ++y)
                for (int x = 0; x < dibujo.width(); ++x)
                    visibles += qAlpha(dibujo.pixel(x, y)) > 128;
            EXPECT_GT(visibles, tamano.height() * tamano.height() / 10);
        }
    }
    EXPECT_TRUE(imagen("NoExiste", QSize(24, 24)).isNull());
}

TEST(HojaEstilo, LasImagenesQueNombraExisten) {
    const QString hoja = hojaEstilo();
    ASSERT_FALSE(hoja.isEmpty());
    auto urls = QRegularExpression(QStringLiteral("url\\((:[^)]+)\\)")).globalMatch(hoja);
    int imagenes = 0;
    while (urls.hasNext()) {
        const QString ruta = urls.next().captured(1);
        EXPECT_TRUE(QFile::exists(ruta)) << qPrintable(ruta);
        ++imagenes;
    }
    EXPECT_GT(imagenes, 0);
}

class HojaAplicada : public ::testing::Test {
protected:
    void SetUp() override { aplicaHojaEstilo(*qApp); }
    void muestra() {
        ventana_.resize(360, 400);
        ventana_.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&ventana_));
    }
    QWidget ventana_;
};

TEST_F(HojaAplicada, PonEstiloDespuesDeMostrarSeVe) {
    auto* boton = new QPushButton(QStringLiteral("Ingresar"), &ventana_);
    boton->setGeometry(10, 10, 160, 48);
    auto* etiqueta = new QLabel(QStringLiteral("Cajaplex"), &ventana_);
    etiqueta->move(10, 70);
    muestra();
    const auto fondo = [&] { return QColor(boton->grab().toImage().pixel(150, 24)).name(); };
    EXPECT_EQ(fondo(), "#ffffff");

    ponEstilo(boton, "primario");
    ponEstilo(etiqueta, "titulo");
    EXPECT_EQ(fondo(), QString(ColorAcento).toLower());
    ponEstilo(boton, "peligro");
    EXPECT_EQ(fondo(), "#ffffff");
}

TEST_F(HojaAplicada, MosaicoConIconoArribaYRenglonesDeToqueSinEncimarse) {
    auto* mosaico = new QPushButton(icono("Kits"), QStringLiteral("Kits"), &ventana_);
    mosaico->setIconSize(QSize(48, 48));
    mosaico->setGeometry(0, 0, 160, 130);
    ponEstilo(mosaico, "mosaico");
    // Llenada antes de mostrarse, como las pantallas que cargan catálogos en su constructor.
    auto* lista = new QListWidget(&ventana_);
    lista->setGeometry(0, 140, 300, 250);
    for (const char* nombre : {"Kits", "Lineas", "Kardex"})
        lista->addItem(new QListWidgetItem(icono(nombre), nombre));
    muestra();

    // El icono va centrado sobre el texto: la columna del centro tiene color en la mitad de arriba.
    const QImage dibujo = mosaico->grab().toImage();
    int pintados = 0;
    for (int y = 10; y < 60; ++y)
        pintados += QColor(dibujo.pixel(80, y)).name() != "#ffffff";
    EXPECT_GT(pintados, 10);

    const QRect primero = lista->visualItemRect(lista->item(0));
    const QRect segundo = lista->visualItemRect(lista->item(1));
    EXPECT_GE(primero.height(), 36);
    EXPECT_GE(segundo.top(), primero.bottom());
    EXPECT_GE(QTableView().verticalHeader()->defaultSectionSize(), 36);
}

} // namespace
} // namespace cajaplex
