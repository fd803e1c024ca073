// cajaplex-importacion-productos: cuánto tarda el Importador de Excel con 10,000 productos (50
// líneas y 10 unidades nuevas) en una empresa vacía, y otra vez el mismo archivo, ya como cambios:
// leer el .csv, preparar y registrar por lotes con ImportacionCatalogo (la biblioteca de la
// estación, por HTTP al servicio), y al lado los mismos lotes corridos en proceso sobre SQLite con
// la biblioteca del servicio, sin HTTP. Solo imprime cifras; nunca falla por tiempos.
//
// Como cajaplex-registro-venta, este archivo arma dos programas: la estación (SQLCipher por el
// módulo de datos) y, con CAJAPLEX_IMPORTACION_LOCAL, la referencia en proceso (el SQLite del
// sistema); la estación le pasa los lotes exactos que envió y una copia de la base de antes.
//
// Uso: cajaplex-importacion-productos [productos, 10000 por omisión]
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "bench/Medicion.h"

namespace {

using Reloj = std::chrono::steady_clock;
namespace fs = std::filesystem;

double segundosDesde(Reloj::time_point inicio) {
    return std::chrono::duration<double>(Reloj::now() - inicio).count();
}

} // namespace

#ifdef CAJAPLEX_IMPORTACION_LOCAL

#include "server/Migraciones.h"
#include "server/MotorSqlite.h"
#include "server/Servicio.h"

// cajaplex-importacion-productos-local BASE ALTAS.json CAMBIOS.json: imprime "segundos segundos".
int main(int argc, char** argv) {
    using namespace cajaplex::servidor;
    if (argc != 4) return 2;
    try {
        MotorSqlite motor({argv[1]});
        preparaBase(*motor.abreConexion(), false);
        Servicio servicio(motor, TiemposTransaccion{});
        long clave = 0;
        for (int i = 2; i < 4; ++i) {
            std::ifstream archivo(argv[i]);
            const nlohmann::json lotes = nlohmann::json::parse(archivo);
            const auto inicio = Reloj::now();
            for (const auto& lote : lotes) {
                Solicitud s{"lote", lote.dump(), "", "local-" + std::to_string(clave++), true};
                const Respuesta r = servicio.lote(s);
                if (r.estado != 200) throw std::runtime_error(r.cuerpo.substr(0, 300));
            }
            std::printf("%.3f ", segundosDesde(inicio));
        }
        std::printf("\n");
    } catch (const std::exception& e) {
        std::fprintf(stderr, "cajaplex-importacion-productos-local: %s\n", e.what());
        return 1;
    }
    return 0;
}

#else

#include <QFile>
#include <QString>

#include "catalog/ImportacionCatalogo.h"
#include "catalog/LectorHojas.h"
#include "datos/ConexionBD.h"
#include "protocol/Protocolo.h"
#include "tests/fixtures/DatosPrueba.h"

namespace {

using namespace cajaplex;
using namespace cajaplex::prueba;

constexpr int LineasNuevas = 50;
constexpr int UnidadesNuevas = 10;

// El archivo como lo guardaría Excel: encabezado y un producto por renglón.
void escribeCsv(const fs::path& ruta, int productos) {
    std::ofstream csv(ruta);
    csv << columnasImportacion(TipoImportacion::Productos).join(QLatin1Char(',')).toStdString()
        << "\n";
    for (int i = 0; i < productos; ++i)
        csv << "Línea " << i % LineasNuevas << ",P" << 100000 + i << ",Producto de prueba " << i
            << ",Unidad " << i % UnidadesNuevas << ",50202306," << i % 97 << "," << 10 + i % 50
            << ".25,SI,NO,0,0,0,0,X," << i % 10 << ",0," << 20 + i % 50 << ".5,19,18,17,16,NO,16,"
            << (i % 5 == 0 ? 8 : 0) << ",,750" << 1000000000 + i << ",100,5\n";
}

struct Corrida {
    double lectura = 0, importacion = 0;
    ResumenImportacion resumen;
    nlohmann::json lotes = nlohmann::json::array();
};

Corrida importa(ConexionBD& conexion, const Sesion& sesion, const fs::path& csv) {
    Corrida c;
    auto inicio = Reloj::now();
    const Hoja hoja = leeHoja(QString::fromStdString(csv.string()));
    c.lectura = segundosDesde(inicio);
    inicio = Reloj::now();
    ImportacionCatalogo importacion(conexion, sesion, TipoImportacion::Productos, hoja);
    // Se copian los lotes; pasarlos a JSON para la referencia queda fuera de la medida.
    std::vector<std::vector<protocolo::Sentencia>> enviados;
    importacion.observaLotes(
        [&](const std::vector<protocolo::Sentencia>& lote) { enviados.push_back(lote); });
    importacion.preparaCatalogos();
    while (importacion.importaLote()) {
    }
    c.importacion = segundosDesde(inicio);
    c.resumen = importacion.resumen();
    for (const auto& lote : enviados) {
        nlohmann::json sentencias = nlohmann::json::array();
        for (const auto& s : lote)
            sentencias.push_back(protocolo::aJson(s));
        c.lotes.push_back({{"sentencias", sentencias}});
    }
    return c;
}

int corre(int productos) {
    ServicioPrueba servicio;
    {
        Cliente c = servicio.cliente();
        Datos(c).empresa(1, "Importadora");
    }
    cajaplex::carga::CarpetaTemporal carpeta;
    const fs::path csv = carpeta.ruta / "productos.csv";
    escribeCsv(csv, productos);
    // La referencia parte de la misma base vacía: se copia con el servicio detenido.
    servicio.detiene();
    fs::copy_file(fs::path(servicio.carpeta()) / "cajaplex.db", carpeta.ruta / "cajaplex.db");
    servicio.reinicia();

    ConexionBD conexion;
    conexion.configura(QStringLiteral("127.0.0.1"), servicio.puerto(),
                       QString::fromStdString(kUsuarioPrueba),
                       QString::fromStdString(kContrasenaPrueba));
    Sesion sesion;
    sesion.EmpresaID = 1;
    sesion.UsuarioID = 1;
    const Corrida altas = importa(conexion, sesion, csv);
    const Corrida cambios = importa(conexion, sesion, csv);

    std::ofstream(carpeta.ruta / "altas.json") << altas.lotes.dump();
    std::ofstream(carpeta.ruta / "cambios.json") << cambios.lotes.dump();
    const std::string orden = std::string(CAJAPLEX_IMPORTACION_LOCAL_RUTA) + " " +
                              (carpeta.ruta / "cajaplex.db").string() + " " +
                              (carpeta.ruta / "altas.json").string() + " " +
                              (carpeta.ruta / "cambios.json").string();
    double local[2] = {0, 0};
    int leidos = 0;
    if (FILE* f = popen(orden.c_str(), "r")) {
        leidos = std::fscanf(f, "%lf %lf", &local[0], &local[1]);
        pclose(f);
    }

    std::printf("Importación de %d productos (%d líneas y %d unidades nuevas), lotes de %d "
                "renglones; datos en %s\n",
                productos, LineasNuevas, UnidadesNuevas, ImportacionCatalogo::RenglonesPorLote,
                cajaplex::carga::tipoDeDisco(servicio.carpeta()));
    std::printf("%-9s | %7s %7s %7s %6s | %8s %9s %8s | %8s %9s\n", "corrida", "altas", "cambios",
                "nombres", "lotes", "leer s", "importa s", "reng/s", "local s", "reng/s");
    const std::pair<const char*, const Corrida*> corridas[] = {{"empresa vacía", &altas},
                                                               {"de nuevo", &cambios}};
    for (size_t i = 0; i < 2; ++i) {
        const Corrida& c = *corridas[i].second;
        std::printf("%-9s | %7d %7d %7lld %6zu | %8.2f %9.2f %8.0f | %8.2f %9.0f\n",
                    corridas[i].first, c.resumen.insertados, c.resumen.actualizados,
                    static_cast<long long>(c.resumen.nombresCreados.size()), c.lotes.size(),
                    c.lectura, c.importacion, productos / c.importacion, local[i],
                    leidos == 2 && local[i] > 0 ? productos / local[i] : 0.0);
    }
    if (leidos != 2) std::printf("La referencia en proceso no contestó.\n");
    std::printf("Meta (informativa): menos de 10 s por corrida.\n");
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return corre(argc > 1 ? std::max(1, std::atoi(argv[1])) : 10000);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "cajaplex-importacion-productos: %s\n", e.what());
        return 1;
    }
}

#endif
