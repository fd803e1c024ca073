// cajaplex-listados: las pantallas cuyos listados crecen con los datos, reales (plataforma
// offscreen) contra un servicio recién sembrado con 20,000 productos y 50,000 renglones de
// bitácora en un mes:
//   Bitácoras del Sistema      del toque en "Mostrar Resultados" a la lista llena y pintada;
//                              luego saltar al final de la lista y repintar
//   Valor de Inventario        de abrir la pantalla a la lista y sus totales pintados
//   Incremento de Precios      de "Siguiente" en los porcentajes a la vista previa pintada
//                              (todos los productos)
//   Asigna Monedero            de "Siguiente" a la lista de productos pintada (todas las líneas)
// Cada medida termina cuando la leyenda de progreso se oculta y la cola de eventos se vacía
// (el repintado incluido). Solo imprime cifras; nunca falla por tiempos.
//
// Uso: cajaplex-listados [repeticiones por operación, 10 por omisión]
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <memory>
#include <vector>

#include <QAbstractItemView>
#include <QApplication>
#include <QDateEdit>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QStackedWidget>
#include <QTest>
#include <QTreeWidget>

#include "bench/Percentil.h"
#include "catalog/IncrementoPrecios.h"
#include "catalog/InventarioValorizado.h"
#include "catalog/PreciosProductos.h"
#include "catalog/ValorInventario.h"
#include "datos/ModuloDatos.h"
#include "pantallas/Mensajes.h"
#include "pantallas/Sonidos.h"
#include "sales/AsignaMonederoElectronico.h"
#include "security/Auditorias.h"
#include "tests/fixtures/ServicioPrueba.h"

namespace {

using namespace cajaplex;

constexpr int kProductos = 20000;
constexpr int kLineas = 20;
constexpr int kBitacorasDelMes = 50000;
constexpr int kBitacorasFuera = 5000; // el mes anterior: la consulta debe descartarlas
constexpr int kPorLote = 1000;
const QDate kInicioMes(2026, 10, 1);

const char* const kModulos[] = {"Ventas -> Punto de Venta",
                                "Ventas -> Caja Chica",
                                "Ventas -> Corte de Caja",
                                "Catálogos -> Productos",
                                "Catálogos -> Clientes",
                                "Compras -> Órdenes de Compra",
                                "Restaurante -> Comandas",
                                "Ventas -> Monedero Electrónico",
                                "Catálogos -> Incremento de Precios",
                                "Seguridad -> Usuarios"};
const char* const kTipos[] = {"Inserción",      "Actualización", "Cancelación",
                              "Corte de Venta", "Corte de Caja", "Bonificación Puntos",
                              "Traspaso"};

// Manda `total` altas de a kPorLote; `llena` pone los parámetros del renglón i.
void siembraEnLotes(const QString& sql, int total,
                    const std::function<void(Consulta&, int)>& llena) {
    Consulta alta(ModuloDeDatos.ConexionBD, sql);
    for (int inicio = 0; inicio < total; inicio += kPorLote) {
        Lote lote(ModuloDeDatos.ConexionBD);
        for (int i = inicio; i < std::min(total, inicio + kPorLote); ++i) {
            llena(alta, i);
            lote.agrega(alta);
        }
        lote.ejecuta();
    }
}

void siembra() {
    Lote base(ModuloDeDatos.ConexionBD);
    for (const char* sql :
         {"Insert Into Empresa (empresaID, nombreEmpresaCorto) Values (1, 'Listados')",
          "Insert Into Configura (empresaID) Values (1)",
          "Insert Into Unidades (id, empresaID, unidad) Values (1, 1, 'Pieza')",
          "Insert Into Usuarios (usuarioID, nUsuario, nombre) Values (1, 'admin', 'Ana Torres')",
          "Insert Into Usuarios (usuarioID, nUsuario, nombre) Values (2, 'caja', 'Luis Peña')"})
        base.agrega(protocolo::Sentencia{sql, {}});
    base.ejecuta();
    siembraEnLotes(QStringLiteral("Insert Into Lineas (id, empresaID, linea, padre) "
                                  "Values (:id, 1, :linea, 0)"),
                   kLineas, [](Consulta& c, int i) {
                       c.parametro(QStringLiteral("id")).entero(i + 1);
                       c.parametro(QStringLiteral("linea"))
                           .texto(QStringLiteral("Línea %1").arg(i + 1, 2, 10, QLatin1Char('0')));
                   });
    siembraEnLotes(
        QStringLiteral("Insert Into Productos (empresaID, linea, clave, producto, unidad, "
                       "existencia, pCompra, precio, precio2, precio3, precio4, precio5, "
                       "bonificaPuntos, porcentajeBonificacion) Values (1, :linea, :clave, "
                       ":producto, 1, :existencia, :costo, :p1, :p2, :p3, :p4, :p5, :bonifica, "
                       ":porcentaje)"),
        kProductos, [](Consulta& c, int i) {
            const double costo = 5.0 + i % 200;
            c.parametro(QStringLiteral("linea")).entero(1 + i % kLineas);
            c.parametro(QStringLiteral("clave"))
                .texto(QStringLiteral("P%1").arg(i + 1, 5, 10, QLatin1Char('0')));
            c.parametro(QStringLiteral("producto"))
                .texto(QStringLiteral("Artículo de prueba número %1").arg(i + 1));
            // Uno de cada diez sin existencia: el valor de inventario lo descarta.
            c.parametro(QStringLiteral("existencia")).real(i % 10 == 0 ? 0.0 : 1.0 + i % 97);
            c.parametro(QStringLiteral("costo")).real(costo);
            for (int n = 1; n <= 5; ++n)
                c.parametro(QStringLiteral("p%1").arg(n)).real(costo * (1.1 + 0.1 * n));
            c.parametro(QStringLiteral("bonifica")).booleano(i % 3 == 0);
            c.parametro(QStringLiteral("porcentaje")).real(i % 3 == 0 ? 2.5 : 0.0);
        });
    const int modulos = static_cast<int>(std::size(kModulos));
    const int tipos = static_cast<int>(std::size(kTipos));
    siembraEnLotes(
        QStringLiteral("Insert Into AuditoriasSistema (empresaID, usuarioID, tipoAuditoria, "
                       "moduloSistema, datoNuevo, comentarios, fechaOperacion) Values (1, :u, :t, "
                       ":m, :d, :n, :f)"),
        kBitacorasDelMes + kBitacorasFuera, [&](Consulta& c, int i) {
            // Repartidas en el mes (y las de fuera en el anterior), sin orden de alta.
            const QDate mes = i < kBitacorasDelMes ? kInicioMes : kInicioMes.addMonths(-1);
            const long long segundo =
                (static_cast<long long>(i) * 7919) % (mes.daysInMonth() * 86400LL);
            c.parametro(QStringLiteral("u")).entero(1 + i % 2);
            c.parametro(QStringLiteral("t")).texto(QString::fromUtf8(kTipos[i % tipos]));
            c.parametro(QStringLiteral("m")).texto(QString::fromUtf8(kModulos[(i / 7) % modulos]));
            c.parametro(QStringLiteral("d"))
                .texto(QStringLiteral("Folio %1, importe $%2.50").arg(i + 1).arg(i % 900));
            c.parametro(QStringLiteral("n"))
                .texto(i % 4 == 0 ? QString() : QStringLiteral("Autorizó el encargado de turno"));
            c.parametro(QStringLiteral("f"))
                .texto(mes.startOfDay().addSecs(segundo).toString(
                    QStringLiteral("yyyy-MM-dd HH:mm:ss")));
        });
}

struct Muestras {
    std::vector<double> ms;
    int renglones = 0;

    double percentil(double p) const { return carga::percentil(ms, p); }
};

void reporta(const char* que, const Muestras& m) {
    std::printf("%-52s %9d %10.1f %8.1f\n", que, m.renglones, m.percentil(0.5), m.percentil(0.95));
    std::fflush(stdout);
}

// Hasta que ninguna leyenda de progreso se ve y la cola de eventos queda vacía (el repintado de
// la vista, incluido).
void esperaPantalla(const QWidget& f) {
    QElapsedTimer limite;
    limite.start();
    auto leyendaVisible = [&] {
        for (const QLabel* l : f.findChildren<QLabel*>(QStringLiteral("Leyenda")))
            if (!l->isHidden()) return true;
        return false;
    };
    while (leyendaVisible() && limite.elapsed() < 600000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
    QCoreApplication::processEvents();
}

// `veces` medidas tras una de calentamiento; `prepara` corre fuera del reloj. `accion` devuelve
// los renglones listados.
Muestras mide(
    int veces, const std::function<int()>& accion, const std::function<void()>& prepara = [] {}) {
    Muestras m;
    for (int i = 0; i <= veces; ++i) {
        prepara();
        QElapsedTimer reloj;
        reloj.start();
        m.renglones = accion();
        const double ms = static_cast<double>(reloj.nsecsElapsed()) / 1e6;
        if (i > 0) m.ms.push_back(ms);
    }
    return m;
}

int renglones(const QWidget& f, const char* vista) {
    auto* v = f.findChild<QAbstractItemView*>(QString::fromLatin1(vista));
    return v && v->model() ? v->model()->rowCount() : -1;
}

void oprime(const QWidget& f, const char* boton) {
    QTest::mouseClick(f.findChild<QPushButton*>(QString::fromLatin1(boton)), Qt::LeftButton);
}

// Del toque en "Siguiente" a la lista de productos pintada. Entre medidas se vuelve un paso
// desde la página de resultados (la de calentamiento empieza un paso antes).
Muestras mideSiguiente(const QWidget& f, const char* resultados, int veces) {
    auto* paginas = f.findChild<QStackedWidget*>(QStringLiteral("Paginas"));
    return mide(
        veces,
        [&] {
            oprime(f, "GrupoBotonSiguiente");
            esperaPantalla(f);
            return renglones(f, "Productos");
        },
        [&] {
            if (paginas->currentWidget()->objectName() != QLatin1String(resultados)) return;
            oprime(f, "GrupoBotonAnterior");
            QCoreApplication::processEvents();
        });
}

// Elige el primer nodo del árbol de líneas (el que abarca todas).
void eligeTodas(const QWidget& f) {
    auto* arbol = f.findChild<QTreeWidget*>(QStringLiteral("Lineas"));
    QTest::mouseClick(arbol->viewport(), Qt::LeftButton, {},
                      arbol->visualItemRect(arbol->topLevelItem(0)).center());
}

template <typename Pantalla> std::unique_ptr<Pantalla> abre(const Sesion& sesion) {
    auto f = std::make_unique<Pantalla>(sesion);
    f->resize(1366, 698);
    f->show();
    esperaPantalla(*f);
    return f;
}

void bitacoras(const Sesion& sesion, int veces) {
    auto f = abre<TAuditoriasF>(sesion);
    f->findChild<QDateEdit*>(QStringLiteral("FechaInicio"))->setDate(kInicioMes);
    f->findChild<QDateEdit*>(QStringLiteral("FechaFin"))
        ->setDate(kInicioMes.addDays(kInicioMes.daysInMonth() - 1));
    auto* boton = f->findChild<QPushButton*>(QStringLiteral("MostrarResultados"));
    reporta("Bitácoras: Mostrar Resultados de un mes", mide(veces, [&] {
                oprime(*f, "MostrarResultados");
                esperaPantalla(*f);
                while (!boton->isEnabled())
                    QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
                return renglones(*f, "ListaBitacoras");
            }));
    auto* lista = f->findChild<QAbstractItemView*>(QStringLiteral("ListaBitacoras"));
    reporta("Bitácoras: saltar al final y repintar", mide(
                                                         veces,
                                                         [&] {
                                                             lista->scrollToBottom();
                                                             lista->viewport()->repaint();
                                                             return renglones(*f, "ListaBitacoras");
                                                         },
                                                         [&] { lista->scrollToTop(); }));
}

void valorInventario(const Sesion& sesion, int veces) {
    std::unique_ptr<TValorInventarioF> f;
    reporta("Valor de Inventario: abrir la pantalla",
            mide(
                veces,
                [&] {
                    f = abre<TValorInventarioF>(sesion);
                    return renglones(*f, "ListaValorInventario");
                },
                [&] { f.reset(); }));
}

void incrementoPrecios(const Sesion& sesion, int veces) {
    auto f = abre<TIncrementoPreciosF>(sesion);
    eligeTodas(*f);
    oprime(*f, "GrupoBotonSiguiente");
    auto* referencias = f->findChild<QListWidget*>(QStringLiteral("ValoresReferencia"));
    QTest::mouseClick(referencias->viewport(), Qt::LeftButton, {},
                      referencias->visualItemRect(referencias->item(0)).center());
    oprime(*f, "GrupoBotonSiguiente");
    f->findChild<QLineEdit*>(QStringLiteral("PorcentajePrecio1"))->setText(QStringLiteral("10"));
    reporta("Incremento de Precios: vista previa de todos",
            mideSiguiente(*f, "VistaPrevia", veces));
}

void monedero(const Sesion& sesion, int veces) {
    auto f = abre<TAsignaMonederoElectronicoF>(sesion);
    eligeTodas(*f);
    f->findChild<QLineEdit*>(QStringLiteral("PorcentajeMonedero"))->setText(QStringLiteral("3.5"));
    reporta("Asigna Monedero: productos de todas las líneas",
            mideSiguiente(*f, "ProductosMonedero", veces));
}

// Lo mismo sin widgets: la consulta al servicio y el armado de los renglones por separado, para
// saber qué parte de lo de arriba es del servicio.
void datos(int veces) {
    Consulta vista(ModuloDeDatos.ConexionBD, sqlVistaPreviaIncremento(1, TodasLasLineas));
    reporta("  Incremento, datos: solo la consulta al servicio", mide(veces, [&] {
                vista.abre();
                return vista.numeroRegistros();
            }));
    const PorcentajesIncremento porcentajes{10.0, 0.0, 0.0, 0.0, 0.0};
    reporta("  Incremento, datos: solo el armado de renglones", mide(veces, [&] {
                return static_cast<int>(
                    vistaPreviaIncremento(vista.registros(), ReferenciaPrecio::Costo, porcentajes)
                        .size());
            }));
    Consulta monedero(ModuloDeDatos.ConexionBD, sqlProductosMonedero(1, TodasLasLineas));
    reporta("  Monedero, datos: solo la consulta al servicio", mide(veces, [&] {
                monedero.abre();
                return monedero.numeroRegistros();
            }));
    reporta("  Monedero, datos: solo el armado de renglones", mide(veces, [&] {
                return static_cast<int>(productosMonedero(monedero.registros()).size());
            }));
    reporta("  Valor de Inventario, datos: consulta y armado", mide(veces, [&] {
                return static_cast<int>(
                    consultaValorInventario(ModuloDeDatos.ConexionBD, 1).renglones.size());
            }));
}

// Todo lo medido, contra un servicio propio recién sembrado.
void corre(int veces) {
    Mensajes::modoPrueba(true);
    Sonidos::modoPrueba(true);
    const prueba::ServicioPrueba servicio;
    ModuloDeDatos.ConexionBD.configura(QStringLiteral("127.0.0.1"), servicio.puerto(),
                                       QString::fromStdString(prueba::kUsuarioPrueba),
                                       QString::fromStdString(prueba::kContrasenaPrueba));
    QElapsedTimer reloj;
    reloj.start();
    siembra();
    std::printf("%d productos, %d bitácoras en el mes (y %d fuera) sembrados en %.1f s; "
                "%d repeticiones por operación\n\n",
                kProductos, kBitacorasDelMes, kBitacorasFuera,
                static_cast<double>(reloj.elapsed()) / 1000.0, veces);
    std::printf("%-52s %9s %10s %8s\n", "operación", "renglones", "mediana ms", "p95 ms");

    Sesion sesion;
    sesion.EmpresaID = 1;
    sesion.UsuarioID = 1;
    bitacoras(sesion, veces);
    valorInventario(sesion, veces);
    incrementoPrecios(sesion, veces);
    monedero(sesion, veces);
    datos(veces);
    const QStringList mensajes = Mensajes::ultimos();
    if (!mensajes.isEmpty())
        std::printf("\nMensajes de las pantallas: %s\n",
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
        std::fprintf(stderr, "cajaplex-listados: %s\n", e.what());
        return 1;
    }
    return 0;
}
