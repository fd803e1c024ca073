// Sonidos, imágenes y hoja de estilo: los recursos existen y sirven, y el modo real no estorba en
// un equipo sin audio.
#include <memory>
#include <utility>

#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QHeaderView>
#include <QImage>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QRegularExpression>
#include <QTableView>
#include <QTest>

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

TEST(Sonidos, CadaUnoTieneSuMp3EnLosRecursos) {
    for (const auto& [sonido, nombre] : kSonidos) {
        SCOPED_TRACE(nombre);
        EXPECT_EQ(Sonidos::archivo(sonido), QString(nombre));
        QFile archivo(QStringLiteral(":/sonidos/") + Sonidos::archivo(sonido));
        ASSERT_TRUE(archivo.open(QIODevice::ReadOnly));
        const QByteArray datos = archivo.readAll();
        EXPECT_GT(datos.size(), 500);
        EXPECT_LT(datos.size(), 40 * 1024);
        qsizetype inicio = 0;
        if (datos.startsWith("ID3") && datos.size() > 10) // se salta la etiqueta ID3v2
            inicio = 10 + ((datos[6] & 0x7F) << 21 | (datos[7] & 0x7F) << 14 |
                           (datos[8] & 0x7F) << 7 | (datos[9] & 0x7F));
        ASSERT_LT(inicio + 4, datos.size());
        const auto byte = [&](qsizetype i) {
            return static_cast<unsigned char>(datos[inicio + i]);
        };
        EXPECT_EQ(byte(0), 0xFF);            // sincronía de cuadro
        EXPECT_EQ(byte(1) & 0xFE, 0xFA);     // MPEG-1 capa III
        EXPECT_EQ((byte(2) >> 2) & 0x03, 0); // 44.1 kHz
        EXPECT_EQ(byte(3) >> 6, 3);          // mono
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

TEST(Sonidos, DeVerdadSinDispositivoNiFallaNiBloqueaNiLlenaLaBitacora) {
    Sonidos::modoPrueba(false);
    Sonidos::activa(true);
    manejadorPrevio = qInstallMessageHandler(cuentaMensajes);
    QElapsedTimer reloj;
    reloj.start();
    for (const auto& [sonido, nombre] : kSonidos)
        Sonidos::reproduce(sonido);
    Sonidos::reproduce(Sonido::Click); // otra pulsación mientras suena: vuelve a empezar
    const qint64 enLlamadas = reloj.elapsed();
    QTest::qWait(200);
    Sonidos::reproduce(Sonido::Click); // reutiliza el reproductor ya terminado
    QTest::qWait(50);
    qInstallMessageHandler(manejadorPrevio);
    Sonidos::activa(false);

    EXPECT_LT(enLlamadas, 2000); // incluye cargar el respaldo de Qt Multimedia una vez
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

TEST(HojaEstilo, TieneAcentoVocabularioEImagenesQueExisten) {
    const QString hoja = hojaEstilo();
    ASSERT_FALSE(hoja.isEmpty());
    EXPECT_TRUE(hoja.contains(QString(ColorAcento), Qt::CaseInsensitive));
    for (const char* regla :
         {"QPushButton[estilo=\"primario\"]", "QPushButton[estilo=\"peligro\"]",
          "QPushButton[estilo=\"mosaico\"]", "QPushButton[estilo=\"enlace\"]",
          "QLabel[estilo=\"titulo\"]", "QLabel[estilo=\"subtitulo\"]", "QLabel[estilo=\"pie\"]",
          "QLabel[estilo=\"dato\"]", "QFrame[estilo=\"tarjeta\"]", "QFrame[estilo=\"barra\"]"})
        EXPECT_TRUE(hoja.contains(QString(regla))) << regla;
    auto urls = QRegularExpression(QStringLiteral("url\\((:[^)]+)\\)")).globalMatch(hoja);
    while (urls.hasNext()) {
        const QString ruta = urls.next().captured(1);
        EXPECT_TRUE(QFile::exists(ruta)) << qPrintable(ruta);
    }
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
    EXPECT_EQ(QApplication::font().pointSize(), 11);
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
    EXPECT_EQ(etiqueta->font().pointSize(), 18);
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
