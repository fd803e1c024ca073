// cajaplex-punto-venta: TPuntoVentaF real (plataforma offscreen) contra un servicio de
// demostración con 20,000 productos más. Mide:
//   lectura   de Enter en BuscarProducto con un código de barras al renglón nuevo pintado en
//             la lista (con el temporizador de 5 ms incluido);
//   registro  de "Aceptar" en la pregunta del tipo de operación, con una venta de 10 renglones
//             y el ticket en PDF, a la pantalla lista para la siguiente venta; aparte, hasta que
//             el visor muestra el PDF (el ticket se compone en otro hilo).
// Solo imprime cifras; nunca falla por tiempos. No hay línea base de SQLite en proceso: este
// programa enlaza el módulo de datos, que trae SQLCipher (ver cajaplex-carga-cliente).
//
// Uso: cajaplex-punto-venta [lecturas, 300 por omisión] [ventas, 60 por omisión]
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <vector>

#include <QApplication>
#include <QCoreApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QTabWidget>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>

#include "bench/Percentil.h"
#include "datos/ModuloDatos.h"
#include "datos/Transaccion.h"
#include "pantallas/Mensajes.h"
#include "pantallas/Sonidos.h"
#include "printing/PlantillasLocales.h"
#include "sales/PuntoVenta.h"
#include "tests/fixtures/ServicioPrueba.h"

namespace {

using cajaplex::carga::percentil;

using namespace cajaplex;
using Reloj = std::chrono::steady_clock;

constexpr int Productos = 20000;
constexpr int PorLote = 1000;
constexpr int RenglonesVenta = 10;

QString codigo(int i) {
    return QStringLiteral("880%1").arg(1000000000LL + i * 7919LL);
}

void siembra(ConexionBD& conexion) {
    Consulta alta(conexion, QStringLiteral(
                                "Insert Into Productos (empresaID, linea, clave, producto, unidad, "
                                "codigoBarra, existencia, precio, precio2, pCompra, "
                                "porcentajeImpuesto, manejaInventarios, activo) Values (1, 1, "
                                ":clave, :producto, 1, :barra, 1000000, :precio, :precio, "
                                ":pCompra, 16, 1, 1)"));
    for (int inicio = 0; inicio < Productos; inicio += PorLote) {
        Lote lote(conexion);
        for (int i = inicio; i < std::min(Productos, inicio + PorLote); ++i) {
            alta.parametro(QStringLiteral("clave"))
                .texto(QStringLiteral("B%1").arg(i, 5, 10, QLatin1Char('0')));
            alta.parametro(QStringLiteral("producto")).texto(QStringLiteral("Artículo %1").arg(i));
            alta.parametro(QStringLiteral("barra")).texto(codigo(i));
            alta.parametro(QStringLiteral("precio")).real(10.0 + i % 300);
            alta.parametro(QStringLiteral("pCompra")).real(6.0 + i % 200);
            lote.agrega(alta);
        }
        lote.ejecuta();
    }
}

void imprime(const char* operacion, const std::vector<double>& ms) {
    std::printf("%-52s %6zu %10.1f %8.1f %8.1f\n", operacion, ms.size(), percentil(ms, 0.5),
                percentil(ms, 0.99), percentil(ms, 1.0));
    std::fflush(stdout);
}

double desde(Reloj::time_point t0) {
    return std::chrono::duration<double, std::milli>(Reloj::now() - t0).count();
}

// Atiende eventos sin dormir hasta que se cumpla; falso pasados 30 s.
bool hasta(const std::function<bool()>& condicion) {
    const auto t0 = Reloj::now();
    while (!condicion()) {
        if (desde(t0) > 30000) return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
    }
    return true;
}

bool sinLeyenda(const QWidget& pantalla) {
    for (const QLabel* l : pantalla.findChildren<QLabel*>(QStringLiteral("Leyenda")))
        if (!l->isHidden()) return false;
    return true;
}

QWidget* visorAbierto() {
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w->objectName() == QLatin1String("VisorPdf") && w->isVisible()) return w;
    return nullptr;
}

class Banco {
public:
    explicit Banco(TPuntoVentaF& pv)
        : pv_(pv), buscar_(pv.findChild<QLineEdit*>(QStringLiteral("BuscarProducto"))),
          lista_(pv.findChild<QListView*>(QStringLiteral("ProductosUsuario"))),
          siguiente_(pv.findChild<QPushButton*>(QStringLiteral("GrupoBotonSiguiente"))),
          cancelar_(pv.findChild<QPushButton*>(QStringLiteral("BotonCancelarVenta"))) {}

    int renglones() const { return static_cast<int>(pv_.venta().RemisionDetalles().size()); }

    // Lee un código y espera el renglón nuevo; devuelve los ms hasta pintarlo.
    double lee(int producto) {
        const int antes = renglones();
        buscar_->setText(codigo(producto));
        const auto t0 = Reloj::now();
        QTest::keyClick(buscar_, Qt::Key_Return);
        if (!hasta([&] { return renglones() > antes && sinLeyenda(pv_); }))
            throw std::runtime_error("el renglón no llegó");
        lista_->viewport()->repaint();
        return desde(t0);
    }

    void cancela() {
        QTest::mouseClick(cancelar_, Qt::LeftButton);
        if (!hasta([&] { return renglones() == 0 && sinLeyenda(pv_); }))
            throw std::runtime_error("la venta no se canceló");
    }

    // Venta de contado de 10 renglones con el ticket en PDF: ms hasta la pantalla lista y hasta
    // el visor con el documento.
    std::pair<double, double> registra(int primero) {
        for (int i = 0; i < RenglonesVenta; ++i)
            lee(primero + i);
        QTest::mouseClick(siguiente_, Qt::LeftButton);
        auto* paginas = pv_.findChild<QTabWidget*>(QStringLiteral("PaginadorDatos"));
        if (paginas->currentWidget()->objectName() != QLatin1String("FinalizarTransaccion"))
            throw std::runtime_error("no pasó al cierre: " +
                                     Mensajes::ultimos().join(QLatin1Char('|')).toStdString());
        Mensajes::respondeOpcion(static_cast<int>(TipoOperacion::PdfYAlmacenar));
        const auto t0 = Reloj::now();
        QTest::mouseClick(siguiente_, Qt::LeftButton);
        if (!hasta([&] { return renglones() == 0 && sinLeyenda(pv_); }))
            throw std::runtime_error("no quedó lista: " +
                                     Mensajes::ultimos().join(QLatin1Char('|')).toStdString());
        pv_.repaint();
        const double lista = desde(t0);
        if (!hasta([] { return visorAbierto() != nullptr; }))
            throw std::runtime_error("sin visor del PDF: " +
                                     Mensajes::ultimos().join(QLatin1Char('|')).toStdString());
        const double pdf = desde(t0);
        delete visorAbierto();
        return {lista, pdf};
    }

private:
    TPuntoVentaF& pv_;
    QLineEdit* buscar_;
    QListView* lista_;
    QPushButton* siguiente_;
    QPushButton* cancelar_;
};

} // namespace

int main(int argc, char** argv) {
    const int lecturas = argc > 1 ? std::max(1, std::atoi(argv[1])) : 300;
    const int ventas = argc > 2 ? std::max(1, std::atoi(argv[2])) : 60;
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    int argcQt = 1;
    QApplication app(argcQt, argv);
    Mensajes::modoPrueba(true);
    Sonidos::modoPrueba(true);
    try {
        prueba::ServicioPrueba servicio(true);
        ModuloDeDatos.ConexionBD.configura(QStringLiteral("127.0.0.1"), servicio.puerto(),
                                           QString::fromStdString(prueba::kUsuarioDemo),
                                           QString::fromStdString(prueba::kUsuarioDemo));
        QTemporaryDir carpeta;
        ModuloDeDatos.ArchivoLocalBD = carpeta.filePath(QStringLiteral("Cajaplex.db"));
        ModuloDeDatos.ContrasenaLocalBD = QStringLiteral("clave-local");
        const auto t0 = Reloj::now();
        siembra(ModuloDeDatos.ConexionBD);
        Sesion sesion;
        sesion.EmpresaID = 1;
        sesion.UsuarioID = 1;
        sesion.esAdmin = true;
        actualizaCopiaLocalPlantillas(ModuloDeDatos, sesion);
        std::printf("%d productos sembrados en %.1f s; servicio en 127.0.0.1:%d\n\n", Productos,
                    std::chrono::duration<double>(Reloj::now() - t0).count(), servicio.puerto());
        std::printf("%-52s %6s %10s %8s %8s\n", "operación", "veces", "mediana ms", "p99 ms",
                    "máx ms");

        TPuntoVentaF pv(sesion, nullptr, carpeta.path());
        pv.resize(1366, 768);
        pv.show();
        auto* formas = pv.findChild<QTableWidget*>(QStringLiteral("ListaFormaPago"));
        if (!hasta([&] { return formas->rowCount() > 0 && sinLeyenda(pv); }))
            throw std::runtime_error("la pantalla no abrió");
        Banco banco(pv);

        // Lecturas de productos distintos; cada 20 renglones la venta se cancela fuera del reloj.
        std::vector<double> lectura;
        banco.lee(0);
        banco.cancela();
        for (int i = 0; i < lecturas; ++i) {
            lectura.push_back(banco.lee(1 + (i * 37) % (Productos - 1)));
            if (banco.renglones() == 20) banco.cancela();
        }
        banco.cancela();
        imprime("lectura: Enter -> renglón pintado", lectura);

        std::vector<double> lista, pdf;
        banco.registra(0);
        for (int v = 0; v < ventas; ++v) {
            const auto [l, p] = banco.registra(100 + v * RenglonesVenta);
            lista.push_back(l);
            pdf.push_back(p);
        }
        imprime("registro: Aceptar -> lista para otra venta (10 ren.)", lista);
        imprime("registro: Aceptar -> visor con el ticket PDF", pdf);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "cajaplex-punto-venta: %s\n", e.what());
        return 1;
    }
    return 0;
}
