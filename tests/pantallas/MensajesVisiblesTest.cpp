// Los diálogos reales de Mensajes, ya visibles y con la hoja de estilo: el texto se ve completo
// en una pantalla de 1366x768 y en una de 1920x1080, y la leyenda no se asoma detrás.
#include <functional>
#include <optional>

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QByteArray>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QFontMetrics>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QScreen>
#include <QTemporaryFile>
#include <QTest>
#include <QWidget>

#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/Mensajes.h"

namespace cajaplex {
namespace {

// Dos pantallas lado a lado para el complemento offscreen; se fija antes de crear la aplicación.
const bool kDosPantallas = [] {
    const QByteArray plataforma = qgetenv("QT_QPA_PLATFORM");
    if (!plataforma.isEmpty() && plataforma != "offscreen") return false;
    static QTemporaryFile archivo(QDir::temp().filePath(QStringLiteral("pantallas-XXXXXX.json")));
    if (!archivo.open()) return false;
    archivo.write(R"({"screens": [
        {"name": "Caja", "x": 0, "y": 0, "width": 1366, "height": 768,
         "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1},
        {"name": "Grande", "x": 1366, "y": 0, "width": 1920, "height": 1080,
         "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})");
    archivo.flush();
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + QFile::encodeName(archivo.fileName()));
    return true;
}();

QString trescientos() {
    QString texto;
    while (texto.size() < 300)
        texto += QStringLiteral("No se pudo registrar la venta porque el servicio no respondió a "
                                "tiempo; revise la conexión de la estación e inténtelo de nuevo. ");
    return texto.left(300);
}

// Lo que la revisión vio del diálogo abierto.
struct Visto {
    bool abierto = false;
    QString texto;       // el de la etiqueta, sin los cortes invisibles
    bool cabe = false;   // el alto que el texto necesita cabe en la etiqueta
    bool dentro = false; // el texto trazado cae dentro de la etiqueta, y ésta dentro del diálogo
    bool enPantalla = false;
    int ancho = 0;
    bool letraGrande = false;
    QStringList sinNombre; // controles sin nombre accesible
};

Visto revisa(QDialog& d) {
    Visto v;
    v.abierto = QTest::qWaitForWindowExposed(&d);
    auto* etiqueta = d.findChild<QLabel*>(QStringLiteral("TextoMensaje"));
    if (!etiqueta || !etiqueta->isVisible()) return v;
    v.texto = etiqueta->text().remove(QChar(0x200B));
    v.cabe = etiqueta->heightForWidth(etiqueta->width()) <= etiqueta->height();
    const QRect caja = etiqueta->contentsRect();
    const QRect trazo =
        QFontMetrics(etiqueta->font())
            .boundingRect(caja, Qt::TextWordWrap | Qt::AlignLeft | Qt::AlignTop, etiqueta->text());
    const QRect enDialogo(etiqueta->mapTo(&d, QPoint(0, 0)), etiqueta->size());
    v.dentro = caja.contains(trazo) && d.rect().contains(enDialogo);
    v.enPantalla = d.screen()->availableGeometry().contains(d.frameGeometry());
    v.ancho = d.width();
    v.letraGrande = etiqueta->font().pointSizeF() > QApplication::font().pointSizeF();
    for (QWidget* control : d.findChildren<QWidget*>())
        if ((qobject_cast<QAbstractButton*>(control) || qobject_cast<QLabel*>(control) ||
             qobject_cast<QLineEdit*>(control)) &&
            control->accessibleName().isEmpty())
            v.sinNombre << control->objectName() + QLatin1Char(' ') +
                               control->metaObject()->className();
    return v;
}

class MensajesVisibles : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(kDosPantallas);
        ASSERT_EQ(QGuiApplication::screens().size(), 2);
        aplicaHojaEstilo(*qApp);
        Mensajes::modoPrueba(false);
        Mensajes::revisaDialogos([this](QDialog& d) { visto_ = revisa(d); });
    }
    void TearDown() override { Mensajes::revisaDialogos({}); }

    // Una ventana que llena la pantalla, como la de la aplicación.
    void muestraVentanaEn(QScreen* pantalla) {
        ventana_.setGeometry(pantalla->availableGeometry());
        ventana_.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&ventana_));
    }

    void esperaCompleto(const QString& texto, const QScreen* pantalla) {
        ASSERT_TRUE(visto_) << "no se abrió el diálogo";
        EXPECT_TRUE(visto_->abierto);
        EXPECT_EQ(visto_->texto, texto);
        EXPECT_TRUE(visto_->cabe);
        EXPECT_TRUE(visto_->dentro);
        EXPECT_TRUE(visto_->enPantalla);
        EXPECT_LE(visto_->ancho, pantalla->availableGeometry().width() * 6 / 10);
        EXPECT_TRUE(visto_->letraGrande); // como en la aplicación, con la letra de la hoja
        EXPECT_TRUE(visto_->sinNombre.isEmpty()) << qPrintable(visto_->sinNombre.join(", "));
        visto_.reset();
    }

    QWidget ventana_;
    std::optional<Visto> visto_;
};

TEST_F(MensajesVisibles, LosTextosLargosSeVenCompletosEnAmbasPantallas) {
    const QString palabraLarga = QStringLiteral("No se encontró el archivo ") +
                                 QStringLiteral("respaldos/").repeated(30) +
                                 QStringLiteral("Cajaplex.ini");
    const QStringList textos{
        QStringLiteral("No se puede Imprimir por sus parámetros de impresión, revíselos "
                       "nuevamente."),
        QStringLiteral("Error de conexión, verifique los datos introducidos."),
        QStringLiteral("No se permite introducir Productos con Precio <= 0"), trescientos(),
        palabraLarga};
    for (QScreen* pantalla : QGuiApplication::screens()) {
        muestraVentanaEn(pantalla);
        for (const QString& texto : textos) {
            SCOPED_TRACE(qPrintable(pantalla->name() + QStringLiteral(": ") + texto.left(40)));
            Mensajes(&ventana_).muestra(texto);
            esperaCompleto(texto, pantalla);
        }
    }
}

TEST_F(MensajesVisibles, PreguntasYCapturasTambienYCerrarEsCancelar) {
    QScreen* pantalla = QGuiApplication::screens().first();
    muestraVentanaEn(pantalla);
    const Mensajes mensajes(&ventana_);
    EXPECT_FALSE(mensajes.preguntaSiNo(trescientos()));
    esperaCompleto(trescientos(), pantalla);
    EXPECT_FALSE(mensajes.pregunta(trescientos()));
    esperaCompleto(trescientos(), pantalla);
    EXPECT_EQ(mensajes.pideTexto(trescientos(), QStringLiteral("Caja 1")), std::nullopt);
    esperaCompleto(trescientos(), pantalla);
}

TEST_F(MensajesVisibles, LaLeyendaSeOcultaMientrasHayMensajeYVuelveSiSigueElTrabajo) {
    muestraVentanaEn(QGuiApplication::screens().first());
    const auto leyenda = [&] { return ventana_.findChild<QLabel*>(QStringLiteral("Leyenda")); };
    int dialogos = 0;
    int conLeyenda = 0;
    bool leyendaAlSeguir = false;
    bool termino = false;
    Mensajes::revisaDialogos([&](QDialog& d) {
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&d));
        ++dialogos;
        conLeyenda += leyenda()->isVisible();
    });
    ejecutaConLeyenda(&ventana_, QStringLiteral("Validando Credenciales de Acceso"), [&] {
        Mensajes(&ventana_).muestra(QStringLiteral("Error de conexión, verifique los datos "
                                                   "introducidos."));
        leyendaAlSeguir = leyenda()->isVisible(); // el trabajo sigue tras el mensaje
        Mensajes(&ventana_).muestra(QStringLiteral("Debe Introducir una Nota"));
        termino = true;
    });
    ASSERT_TRUE(leyenda()->isVisible());
    ASSERT_TRUE(QTest::qWaitFor([&] { return termino; }, 5000));
    EXPECT_EQ(dialogos, 2);
    EXPECT_EQ(conLeyenda, 0);
    EXPECT_TRUE(leyendaAlSeguir);
    EXPECT_TRUE(leyenda()->isHidden()); // terminado el trabajo ya no vuelve
}

TEST_F(MensajesVisibles, LaEleccionLlegaConLaOpcionRecordadaMarcadaYEnterLaAcepta) {
    muestraVentanaEn(QGuiApplication::screens().first());
    const QStringList opciones{QStringLiteral("Almacenar y Enviar Impresión"),
                               QStringLiteral("Almacenar y Visualizar PDF"),
                               QStringLiteral("Almacenar Únicamente")};
    QStringList marcadas;
    Mensajes::revisaDialogos([&](QDialog& d) {
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&d));
        for (auto* opcion : d.findChildren<QRadioButton*>())
            if (opcion->isChecked()) marcadas << opcion->text();
        // Enter sin tocar nada: acepta la que ya venía marcada.
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    });
    const Mensajes mensajes(&ventana_);
    const QString titulo = QStringLiteral("Seleccione el Tipo de Operación");
    EXPECT_EQ(mensajes.eligeOpcion(titulo, opciones, 2), 2);
    EXPECT_EQ(mensajes.eligeOpcion(titulo, opciones), 0);
    // Un índice que ya no existe (un ajuste viejo) marca la primera.
    EXPECT_EQ(mensajes.eligeOpcion(titulo, opciones, 7), 0);
    EXPECT_EQ(marcadas, (QStringList{opciones[2], opciones[0], opciones[0]}));
}

} // namespace
} // namespace cajaplex
