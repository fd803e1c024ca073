// cajaplex-lista-ventas: un año de 100,000 ventas (contado, crédito con anticipo y canceladas)
// sembrado con SQL en un servicio propio, y lo que cuesta:
//   la lectura del año (consultaVentas), filtrar y totalizar en memoria, y en TVentasF real
//   (offscreen) del toque en "Buscar" a la lista pintada, teclear un folio o un cliente hasta la
//   lista y el pie repintados, y saltar al final de la lista.
// Solo imprime cifras (mediana y p95); nunca falla por tiempos.
//
// Uso: cajaplex-lista-ventas [repeticiones por operación, 10 por omisión]
#include <algorithm>
#include <cstdio>
#include <exception>
#include <functional>
#include <vector>

#include <QApplication>
#include <QDateEdit>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTableView>
#include <QTest>

#include "bench/Percentil.h"
#include "datos/ModuloDatos.h"
#include "datos/Transaccion.h"
#include "pantallas/Mensajes.h"
#include "pantallas/Sonidos.h"
#include "sales/ListaVentas.h"
#include "sales/Ventas.h"
#include "tests/fixtures/ServicioPrueba.h"

namespace {

using cajaplex::carga::percentil;

using namespace cajaplex;

constexpr int kVentas = 100000;
const QDate kInicio(2025, 11, 24);
const QDate kFin(2026, 11, 23);

// Una venta cada 315 s cubre el año; una de cada 20 a crédito (con anticipo en efectivo), una de
// cada 50 cancelada, una de cada 5 pagada con tarjeta y efectivo. 3 cajeros y 500 clientes.
const char* const kSiembra[] = {
    "Insert Into Empresa (empresaID, nombreEmpresaCorto) Values (1, 'Ventas')",
    "Insert Into Configura (empresaID) Values (1)",
    "Insert Into Usuarios (usuarioID, nUsuario, nombre) Values (1, 'admin', 'Ana Torres'), "
    "(2, 'caja1', 'Luis Peña'), (3, 'caja2', 'Rosa Díaz')",
    "Insert Into FEMetodosPago (id, empresaID, descripcion) Values (1, 1, 'EFECTIVO'), "
    "(2, 1, 'TARJETA DE CRÉDITO'), (3, 1, 'TARJETA DE DÉBITO')",
    "Insert Into Clientes (id, empresaID, nombre) With Recursive n(i) As (Select 1 Union All "
    "Select i + 1 From n Where i < 500) Select i, 1, 'Cliente de prueba ' || i From n",
    "Insert Into Remision (empresaID, folio, fecha, usuarioID, vendedor, cliente, moneda, "
    "totalRemision, plazoPago, pagada, saldoPendiente, montoPagado, cancelada, entregada) "
    "With Recursive n(i) As (Select 1 Union All Select i + 1 From n Where i < 100000) "
    "Select 1, i, datetime('2025-11-24 08:00:00', '+' || (i * 315) || ' seconds'), 1 + i % 3, "
    "1 + i % 3, 1 + i % 500, 1, 50 + (i % 997) * 1.5, case when i % 20 = 0 then 30 else 0 end, "
    "case when i % 20 = 0 then 0 else 1 end, case when i % 20 = 0 then 20 + (i % 997) * 1.5 "
    "else 0 end, case when i % 20 = 0 then 0 else 50 + (i % 997) * 1.5 end, "
    "case when i % 50 = 0 then 1 else 0 end, 1 From n",
    "Insert Into RemisionPagos (empresaID, remision, feMetodoID, importe, moneda, utilizados) "
    "Select 1, folio, case when folio % 5 = 0 then 2 else 1 end, case when folio % 5 = 0 then "
    "totalRemision - 20 else totalRemision + 10 end, 1, case when folio % 5 = 0 then "
    "totalRemision - 20 else totalRemision end From Remision Where plazoPago = 0",
    "Insert Into RemisionPagos (empresaID, remision, feMetodoID, importe, moneda, utilizados) "
    "Select 1, folio, 1, 20, 1, 20 From Remision Where plazoPago = 0 and folio % 5 = 0",
    "Insert Into PagosRemision (empresaID, folio, Fecha, importe, idRemision, folioRemision, "
    "cliente, feMetodoID, usuarioID, moneda) Select 1, folio, fecha, 30, ID, folio, cliente, 1, "
    "usuarioID, 1 From Remision Where plazoPago > 0",
};

// Lo calculado y no usado no debe desaparecer al optimizar.
volatile double sumidero = 0.0;

struct Cifras {
    std::vector<double> ms;
    int renglones = 0;
};

void imprime(const char* que, const Cifras& c) {
    std::printf("%-56s %9d %10.1f %8.1f\n", que, c.renglones, percentil(c.ms, 0.5),
                percentil(c.ms, 0.95));
    std::fflush(stdout);
}

// Una corrida de calentamiento y `veces` medidas; `antes` queda fuera del reloj.
Cifras cronometra(
    int veces, const std::function<int()>& accion, const std::function<void()>& antes = [] {}) {
    Cifras c;
    for (int i = 0; i <= veces; ++i) {
        antes();
        QElapsedTimer reloj;
        reloj.start();
        c.renglones = accion();
        if (i > 0) c.ms.push_back(static_cast<double>(reloj.nsecsElapsed()) / 1e6);
    }
    return c;
}

// Hasta que la leyenda de progreso se oculta y la cola de eventos (el repintado) se vacía.
void asienta(const QWidget& f) {
    QElapsedTimer limite;
    limite.start();
    const auto trabajando = [&f] {
        const QList<QLabel*> leyendas = f.findChildren<QLabel*>(QStringLiteral("Leyenda"));
        return std::any_of(leyendas.begin(), leyendas.end(),
                           [](const QLabel* l) { return !l->isHidden(); });
    };
    while (trabajando() && limite.elapsed() < 600000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
    QCoreApplication::processEvents();
}

void logica(const Sesion& sesion, int veces) {
    VentasPeriodo periodo;
    imprime("consultaVentas, un año", cronometra(veces, [&] {
                periodo = consultaVentas(ModuloDeDatos.ConexionBD, sesion, kInicio, kFin);
                return static_cast<int>(periodo.ventas.size());
            }));
    const auto filtra = [&](const FiltroVentas& filtro) {
        return [&periodo, filtro] {
            const std::vector<int> visibles = filtraVentas(periodo, filtro);
            sumidero = totalizaVentas(periodo, visibles).total;
            return static_cast<int>(visibles.size());
        };
    };
    imprime("filtra y totaliza: sin filtro", cronometra(veces, filtra({})));
    imprime("filtra y totaliza: cliente 'prueba 12'",
            cronometra(veces, filtra({0, QStringLiteral("prueba 12"), 0})));
    imprime("filtra y totaliza: folio", cronometra(veces, filtra({54321, {}, 0})));
    imprime("filtra y totaliza: cajero", cronometra(veces, filtra({0, {}, 2})));
}

void pantalla(const Sesion& sesion, int veces) {
    TVentasF f(sesion);
    f.resize(1366, 698);
    f.show();
    asienta(f);
    auto* tabla = f.findChild<QTableView*>(QStringLiteral("TablaVentas"));
    const auto filas = [tabla] { return tabla->model()->rowCount(); };
    f.findChild<QDateEdit*>(QStringLiteral("DesdeVentas"))->setDate(kInicio);
    f.findChild<QDateEdit*>(QStringLiteral("HastaVentas"))->setDate(kFin);
    auto* buscar = f.findChild<QPushButton*>(QStringLiteral("BotonBuscar"));
    imprime("TVentasF: Buscar un año hasta pintar", cronometra(veces, [&] {
                QTest::mouseClick(buscar, Qt::LeftButton);
                asienta(f);
                return filas();
            }));

    auto* cliente = f.findChild<QLineEdit*>(QStringLiteral("ClienteVenta"));
    const auto teclea = [&](QLineEdit* campo, const QString& texto) {
        return cronometra(
            veces,
            [&] {
                QTest::keyClicks(campo, texto);
                QCoreApplication::processEvents();
                return filas();
            },
            [&] {
                campo->clear();
                QCoreApplication::processEvents();
            });
    };
    imprime("TVentasF: teclear cliente 'prueba 12' (10 teclas)",
            teclea(cliente, QStringLiteral("prueba 12")));
    cliente->clear();
    imprime("TVentasF: teclear folio '54321' (5 teclas)",
            teclea(f.findChild<QLineEdit*>(QStringLiteral("FolioVenta")), QStringLiteral("54321")));
    f.findChild<QLineEdit*>(QStringLiteral("FolioVenta"))->clear();
    QCoreApplication::processEvents();

    QScrollBar* barra = tabla->verticalScrollBar();
    imprime("TVentasF: saltar al final de la lista y repintar",
            cronometra(
                veces,
                [&] {
                    barra->setValue(barra->maximum());
                    tabla->viewport()->repaint();
                    return filas();
                },
                [&] { barra->setValue(0); }));
}

void corre(int veces) {
    Mensajes::modoPrueba(true);
    Sonidos::modoPrueba(true);
    const prueba::ServicioPrueba servicio;
    ModuloDeDatos.ConexionBD.configura(QStringLiteral("127.0.0.1"), servicio.puerto(),
                                       QString::fromStdString(prueba::kUsuarioPrueba),
                                       QString::fromStdString(prueba::kContrasenaPrueba));
    QElapsedTimer reloj;
    reloj.start();
    Lote siembra(ModuloDeDatos.ConexionBD);
    for (const char* sql : kSiembra)
        siembra.agrega(protocolo::Sentencia{sql, {}});
    siembra.ejecuta();
    std::printf("%d ventas en un año sembradas en %.1f s; %d repeticiones por operación\n\n",
                kVentas, static_cast<double>(reloj.elapsed()) / 1000.0, veces);
    std::printf("%-56s %9s %10s %8s\n", "operación", "renglones", "mediana ms", "p95 ms");

    Sesion sesion;
    sesion.EmpresaID = 1;
    sesion.UsuarioID = 1;
    sesion.esAdmin = true;
    logica(sesion, veces);
    pantalla(sesion, veces);
    const QStringList mensajes = Mensajes::ultimos();
    if (!mensajes.isEmpty())
        std::printf("\nMensajes de la pantalla: %s\n",
                    mensajes.join(QStringLiteral(" | ")).toUtf8().constData());
}

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const QStringList argumentos = QCoreApplication::arguments();
    try {
        corre(argumentos.size() > 1 ? std::max(1, argumentos.at(1).toInt()) : 10);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "cajaplex-lista-ventas: %s\n", e.what());
        return 1;
    }
    return 0;
}
