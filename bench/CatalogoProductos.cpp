// cajaplex-catalogo: el Catálogo de Productos con 20,000 productos en un servicio recién sembrado.
// Mide cargar una línea (1,000 productos), buscar en toda la empresa (selectiva y amplia) y el
// filtro local sobre 20,000 renglones cargados, de dos formas:
//   datos     los mismos textos SQL, el mismo modelo y el mismo filtro que usa la pantalla
//             (consulta al servicio, llenado del modelo, filtrado), sin widgets;
//   pantalla  TProductosF real (plataforma offscreen), de la acción del usuario a la leyenda
//             oculta y la vista repintada, con el temporizador de 5 ms incluido.
// Solo imprime cifras; nunca falla por tiempos. No hay línea base de SQLite en proceso: este
// programa enlaza el módulo de datos, que trae SQLCipher (ver cajaplex-carga-cliente).
//
// Uso: cajaplex-catalogo [repeticiones por operación, 15 por omisión]
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <string>
#include <vector>

#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QTest>
#include <QTreeWidget>

#include "bench/Percentil.h"
#include "catalog/CatalogoProductos.h"
#include "catalog/Productos.h"
#include "datos/ModuloDatos.h"
#include "pantallas/Mensajes.h"
#include "pantallas/Sonidos.h"
#include "tests/fixtures/ServicioPrueba.h"

namespace {

using cajaplex::carga::percentil;

using namespace cajaplex;
using Reloj = std::chrono::steady_clock;

constexpr int64_t EmpresaID = 1;
constexpr int Productos = 20000;
constexpr int Lineas = 20; // 1,000 productos cada una
constexpr int PorLote = 1000;

const char* const kArticulos[] = {
    "Refresco de cola",    "Agua purificada",     "Jugo de mango",  "Galletas de avena",
    "Arroz blanco",        "Frijol negro",        "Aceite vegetal", "Jabón de barra",
    "Detergente en polvo", "Papel higiénico",     "Leche entera",   "Queso fresco",
    "Café molido",         "Azúcar morena",       "Sal de mesa",    "Atún en agua",
    "Chiles en lata",      "Tortillas de harina", "Pan de caja",    "Cereal de maíz",
    "Chocolate en polvo",  "Yogur natural",       "Huevo blanco",   "Mayonesa",
    "Salsa picante"};
const char* const kPresentaciones[] = {"250 ml",    "500 ml", "600 ml", "1 L",  "2 L",
                                       "100 g",     "250 g",  "500 g",  "1 kg", "6 piezas",
                                       "12 piezas", "caja",   "bolsa",  "lata", "frasco"};

void siembra(ConexionBD& conexion) {
    Lote base(conexion);
    base.agrega(protocolo::Sentencia{
        "Insert Into Empresa (empresaID, nombreEmpresaCorto) Values (1, 'Catálogo')", {}});
    base.agrega(protocolo::Sentencia{"Insert Into Configura (empresaID) Values (1)", {}});
    base.agrega(protocolo::Sentencia{
        "Insert Into Unidades (id, empresaID, unidad) Values (1, 1, 'Pieza')", {}});
    Consulta linea(conexion, QStringLiteral("Insert Into Lineas (id, empresaID, linea, padre) "
                                            "Values (:id, 1, :linea, 0)"));
    for (int l = 1; l <= Lineas; ++l) {
        linea.parametro(QStringLiteral("id")).entero(l);
        linea.parametro(QStringLiteral("linea"))
            .texto(QStringLiteral("Línea %1").arg(l, 2, 10, QLatin1Char('0')));
        base.agrega(linea);
    }
    base.ejecuta();

    const int articulos = static_cast<int>(std::size(kArticulos));
    const int presentaciones = static_cast<int>(std::size(kPresentaciones));
    Consulta alta(conexion, QStringLiteral(
                                "Insert Into Productos (empresaID, linea, clave, producto, unidad, "
                                "codigoBarra, existencia, precio, pCompra, manejaInventarios) "
                                "Values (1, :linea, :clave, :producto, 1, :barra, :existencia, "
                                ":precio, :pCompra, :maneja)"));
    for (int inicio = 0; inicio < Productos; inicio += PorLote) {
        Lote lote(conexion);
        for (int i = inicio; i < std::min(Productos, inicio + PorLote); ++i) {
            alta.parametro(QStringLiteral("linea")).entero(1 + i % Lineas);
            alta.parametro(QStringLiteral("clave"))
                .texto(QStringLiteral("P%1").arg(i + 1, 5, 10, QLatin1Char('0')));
            alta.parametro(QStringLiteral("producto"))
                .texto(
                    QStringLiteral("%1 %2 %3")
                        .arg(QString::fromUtf8(kArticulos[i % articulos]),
                             QString::fromUtf8(kPresentaciones[(i / articulos) % presentaciones]))
                        .arg(i + 1));
            alta.parametro(QStringLiteral("barra"))
                .texto(QStringLiteral("750%1").arg(1000000000LL + i * 7919LL));
            alta.parametro(QStringLiteral("existencia")).real(static_cast<double>(i % 211) - 10);
            alta.parametro(QStringLiteral("precio")).real(10.0 + i % 300);
            alta.parametro(QStringLiteral("pCompra")).real(6.0 + i % 200);
            alta.parametro(QStringLiteral("maneja")).booleano(i % 17 != 0);
            lote.agrega(alta);
        }
        lote.ejecuta();
    }
}

struct Cifras {
    std::vector<double> ms;
    int renglones = 0;
};

void imprime(const char* operacion, const Cifras& c) {
    std::printf("%-46s %9d %10.1f %8.1f\n", operacion, c.renglones, percentil(c.ms, 0.5),
                percentil(c.ms, 0.95));
    std::fflush(stdout);
}

// Una vuelta de calentamiento que no cuenta y `veces` medidas; `antes` corre fuera del reloj.
Cifras mide(
    int veces, const std::function<int()>& operacion, const std::function<void()>& antes = [] {}) {
    Cifras c;
    antes();
    operacion();
    for (int i = 0; i < veces; ++i) {
        antes();
        const auto t0 = Reloj::now();
        c.renglones = operacion();
        c.ms.push_back(std::chrono::duration<double, std::milli>(Reloj::now() - t0).count());
    }
    return c;
}

// Lo que hace la pantalla al listar: consulta y llenado del modelo.
int lista(ModeloProductos& modelo, const QString& sql) {
    Consulta consulta(ModuloDeDatos.ConexionBD, sql);
    consulta.abre();
    modelo.asigna(consulta.registros());
    return modelo.rowCount();
}

// Hasta que la leyenda de progreso se oculta y la vista se repinta.
void esperaPantalla(QWidget& f) {
    auto* leyenda = f.findChild<QLabel*>(QStringLiteral("Leyenda"), Qt::FindDirectChildrenOnly);
    QElapsedTimer limite;
    limite.start();
    while (leyenda && !leyenda->isHidden() && limite.elapsed() < 30000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
    QCoreApplication::processEvents();
}

} // namespace

int main(int argc, char** argv) {
    const int veces = argc > 1 ? std::max(1, std::atoi(argv[1])) : 15;
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    int argcQt = 1;
    QApplication app(argcQt, argv);
    Mensajes::modoPrueba(true);
    Sonidos::modoPrueba(true);
    try {
        prueba::ServicioPrueba servicio;
        ModuloDeDatos.ConexionBD.configura(QStringLiteral("127.0.0.1"), servicio.puerto(),
                                           QString::fromStdString(prueba::kUsuarioPrueba),
                                           QString::fromStdString(prueba::kContrasenaPrueba));
        const auto t0 = Reloj::now();
        siembra(ModuloDeDatos.ConexionBD);
        std::printf("%d productos en %d líneas sembrados en %.1f s; servicio en 127.0.0.1:%d; "
                    "%d repeticiones por operación\n\n",
                    Productos, Lineas, std::chrono::duration<double>(Reloj::now() - t0).count(),
                    servicio.puerto(), veces);
        std::printf("%-46s %9s %10s %8s\n", "operación", "renglones", "mediana ms", "p95 ms");

        // Datos: mismos textos, mismo modelo, mismo filtro.
        ModeloProductos modelo;
        FiltroProductos filtro(&modelo);
        imprime("datos: cargar una línea",
                mide(veces, [&] { return lista(modelo, sqlProductosXLinea(EmpresaID, 7)); }));
        imprime("datos: buscar en la empresa \"mango\"", mide(veces, [&] {
                    return lista(modelo, sqlBusquedaProductos(EmpresaID, QStringLiteral("mango")));
                }));
        imprime("datos: buscar en la empresa \"a\" (casi todo)", mide(veces, [&] {
                    return lista(modelo, sqlBusquedaProductos(EmpresaID, QStringLiteral("a")));
                }));
        {
            Consulta sola(ModuloDeDatos.ConexionBD,
                          sqlBusquedaProductos(EmpresaID, QStringLiteral("a")));
            imprime("  de ello, solo la consulta al servicio", mide(veces, [&] {
                        sola.abre();
                        return sola.numeroRegistros();
                    }));
            imprime("  de ello, solo el llenado del modelo", mide(veces, [&] {
                        modelo.asigna(sola.registros());
                        return modelo.rowCount();
                    }));
        }
        lista(modelo, sqlBusquedaProductos(EmpresaID, QString()));
        imprime("datos: filtro local \"cola\" sobre todo",
                mide(
                    veces,
                    [&] {
                        filtro.filtra(QStringLiteral("cola"));
                        return filtro.rowCount();
                    },
                    [&] { filtro.filtra({}); }));
        imprime("datos: quitar el filtro local",
                mide(
                    veces,
                    [&] {
                        filtro.filtra({});
                        return filtro.rowCount();
                    },
                    [&] { filtro.filtra(QStringLiteral("cola")); }));

        // Pantalla real.
        Sesion sesion;
        sesion.EmpresaID = EmpresaID;
        sesion.UsuarioID = 1;
        TProductosF f(sesion);
        f.resize(1366, 698);
        f.show();
        esperaPantalla(f);
        auto* arbol = f.findChild<QTreeWidget*>(QStringLiteral("Lineas"));
        auto* busca = f.findChild<QLineEdit*>(QStringLiteral("BuscarProducto"));
        auto* filtra = f.findChild<QLineEdit*>(QStringLiteral("BuscarTexto"));
        auto* vista = f.findChild<QListView*>(QStringLiteral("Productos"));
        auto renglones = [&] { return vista->model()->rowCount(); };
        imprime("pantalla: \"Ver Productos\" de una línea", mide(veces, [&] {
                    Mensajes::respondeOpcion(5);
                    QTreeWidgetItem* item = arbol->topLevelItem(6);
                    f.findChild<QTabWidget*>()->setCurrentIndex(0);
                    QTest::mouseClick(arbol->viewport(), Qt::LeftButton, {},
                                      arbol->visualItemRect(item).center());
                    esperaPantalla(f);
                    return renglones();
                }));
        auto buscaEnPantalla = [&](const QString& texto) {
            busca->setText(texto);
            QTest::keyClick(busca, Qt::Key_Return);
            esperaPantalla(f);
            return renglones();
        };
        imprime("pantalla: buscar \"mango\"",
                mide(veces, [&] { return buscaEnPantalla(QStringLiteral("mango")); }));
        imprime("pantalla: buscar \"a\" (casi todo)",
                mide(veces, [&] { return buscaEnPantalla(QStringLiteral("a")); }));
        auto filtraEnPantalla = [&](const QString& texto) {
            filtra->setText(texto);
            esperaPantalla(f);
            return renglones();
        };
        imprime("pantalla: filtro local \"cola\" sobre todo",
                mide(
                    veces, [&] { return filtraEnPantalla(QStringLiteral("cola")); },
                    [&] { filtraEnPantalla({}); }));
        imprime("pantalla: quitar el filtro local",
                mide(
                    veces, [&] { return filtraEnPantalla({}); },
                    [&] { filtraEnPantalla(QStringLiteral("cola")); }));
        if (!Mensajes::ultimos().filter(QStringLiteral("Error")).isEmpty())
            std::printf("Hubo mensajes de error en la pantalla\n");
    } catch (const std::exception& e) {
        std::fprintf(stderr, "cajaplex-catalogo: %s\n", e.what());
        return 1;
    }
    return 0;
}
