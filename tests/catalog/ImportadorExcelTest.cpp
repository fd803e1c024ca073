// Importador de Excel y Exportar Catálogo contra el servicio real de demostración, con hojas
// reales: las revisiones y sus mensajes en orden, altas y cambios por la llave natural, nombres
// creados una sola vez, renglones rechazados con su motivo, la cancelación a media importación y
// lo exportado que se importa de vuelta sin cambiar nada.
#include <gtest/gtest.h>

#include <memory>

#include <QFrame>
#include <QRadioButton>
#include <QTableView>
#include <QTemporaryDir>
#include <QTreeWidget>

#include "catalog/ExportarCatalogoProductos.h"
#include "catalog/ImportadorExcel.h"
#include "pantallas/Mensajes.h"
#include "tests/catalog/LectorHojasPrueba.h"
#include "tests/fixtures/Toques.h"

namespace cajaplex {
namespace {

using namespace prueba;

const QStringList kColumnasProductos = {
    "LINEA",     "CLAVE",         "DESCRIPCION", "UNIDAD",   "CLAVESAT", "EXISTENCIA",
    "COSTO",     "INVENTARIABLE", "AUTORIZABLE", "SERIABLE", "KIT",      "MENSUAL",
    "CADUCA",    "KIOSKO",        "ORDEN",       "BASCULA",  "PRECIO1",  "PRECIO2",
    "PRECIO3",   "PRECIO4",       "PRECIO5",     "ABIERTO",  "IVA",      "IEPS",
    "ADICIONAL", "CODIGOBARRA",   "MAXIMO",      "MINIMO"};
const QStringList kDomicilio = {"CODIGOALTERNO",
                                "NOMBRE",
                                "CALLE",
                                "NUMEROEXTERIOR",
                                "NUMEROINTERIOR",
                                "COLONIA",
                                "REFERENCIADOMICILIO",
                                "CP",
                                "MUNICIPIO",
                                "LOCALIDAD",
                                "ESTADO",
                                "RAZONSOCIAL",
                                "RFC",
                                "TELEFONO"};
const QStringList kColumnasClientes =
    kDomicilio + QStringList{"TELEFONOCELULAR", "CONTACTO",   "LIMITECREDITO", "PRECIOVENTA",
                             "ATENCIONVENTAS",  "DEFINIBLE1", "DEFINIBLE2",    "DEFINIBLE3",
                             "DEFINIBLE4",      "DEFINIBLE5", "EMAIL"};
const QStringList kColumnasProveedores =
    kDomicilio + QStringList{"CONTACTO", "LIMITECREDITO", "EMAIL", "ATENCIONCOMPRAS"};

Celdas encabezado(const QStringList& columnas) {
    return Celdas(columnas.begin(), columnas.end());
}

// Un producto de la hoja con sus 28 columnas; lo que no se da va vacío.
Celdas producto(const QString& linea, const QString& clave, const QString& unidad,
                const QVariant& sat, double existencia, const QVariant& precio1,
                const QVariant& inventariable) {
    return {linea,
            clave,
            QStringLiteral("Producto ") + clave,
            unidad,
            sat,
            existencia,
            10.5,
            inventariable,
            "NO",
            0,
            0,
            QVariant(),
            QVariant(),
            "X",
            3,
            QVariant(),
            precio1,
            20,
            19,
            18,
            17,
            0,
            16,
            8,
            "Nota",
            "75010000" + clave,
            100,
            5};
}

// El .csv más simple: textos separados por comas.
QByteArray csv(const QStringList& columnas, const QList<QStringList>& renglones = {}) {
    QStringList lineas = {columnas.join(QLatin1Char(','))};
    for (const QStringList& r : renglones)
        lineas << r.join(QLatin1Char(','));
    return lineas.join(QLatin1Char('\n')).toUtf8();
}

class ImportadorExcelTest : public ConPantallas {
protected:
    std::unique_ptr<TImportadorExcelF> abre() {
        sesion_ = sesion(QStringLiteral("admin"), 1);
        auto f = std::make_unique<TImportadorExcelF>(sesion_);
        f->resize(1280, 720);
        f->show();
        Mensajes::ultimos();
        return f;
    }

    // Carga el archivo, elige el tipo (si se da) y oprime "Importar" aceptando la pregunta;
    // devuelve lo que la pantalla dijo desde la carga, cuando ya terminó.
    QStringList importa(TImportadorExcelF& f, const QString& ruta, const char* tipo) {
        f.abreArchivo(ruta);
        esperaLeyenda(f);
        EXPECT_EQ(Mensajes::ultimos(), QStringList{"Archivo XLS cargado Exitosamente"});
        if (tipo) control<QRadioButton>(f, tipo)->setChecked(true);
        Mensajes::respondeSiguiente(cajaplex::Respuesta::Aceptar);
        toca(f, "BotonImportar");
        EXPECT_TRUE(esperaHasta(
            [&] { return !control<QFrame>(f, "AvanceImportacion")->isVisible(); }, 60000));
        const QStringList dichos = Mensajes::ultimos();
        // Si se rechazó antes de preguntar, la respuesta preparada sobra.
        if (Mensajes::respuestasPendientes() > 0) Mensajes::modoPrueba(true);
        return dichos;
    }

    // La primera columna de una tabla de la pantalla.
    static QStringList primeraColumna(const QWidget& f, const char* tabla) {
        const QAbstractItemModel* modelo = control<QTableView>(f, tabla)->model();
        QStringList valores;
        for (int i = 0; i < modelo->rowCount(); ++i)
            valores << modelo->index(i, 0).data().toString();
        return valores;
    }

    QString archivo(const char* nombre) const { return dir_.filePath(QString::fromLatin1(nombre)); }

    long long cuenta(const std::string& desde) { return c.cuenta(desde); }
    std::string texto(const std::string& sql) {
        const Json v = c.valor(sql);
        return v.is_null() ? "<nulo>" : v.is_string() ? v.get<std::string>() : v.dump();
    }

    Sesion sesion_;
    QTemporaryDir dir_;
};

TEST_F(ImportadorExcelTest, RevisionesEnSuOrdenConSusMensajesYNadaSeEscribe) {
    auto f = abre();
    const long long productos = cuenta("Productos");
    const long long clientes = cuenta("Clientes");
    auto sin = [](QStringList columnas, const QString& falta) {
        columnas.removeAll(falta);
        return columnas;
    };
    struct Caso {
        QByteArray contenido;
        const char* tipo;
        const char* mensaje;
    };
    const QStringList fila = {"x"};
    const Caso casos[] = {
        {csv(kColumnasProductos, {fila}), nullptr, "Debe seleccionar un tipo de importación"},
        {csv(sin(kColumnasProductos, "DESCRIPCION"), {fila}), "TipoProductos",
         "No existe la primera llamada DESCRIPCION"},
        // Faltan varias: se nombra la primera en el orden del sistema.
        {csv(sin(sin(kColumnasProductos, "MINIMO"), "LINEA"), {fila}), "TipoProductos",
         "No existe la columna llamada LINEA"},
        {csv(sin(kColumnasClientes, "CALLE"), {fila}), "TipoClientes",
         "No existe la primera llamada CALLE"},
        {csv(sin(kColumnasClientes, "DEFINIBLE4"), {fila}), "TipoClientes",
         "No existe la columna llamada DEFINIBLE4"},
        {csv(sin(kColumnasProveedores, "CALLE"), {fila}), "TipoProveedores",
         "No existe la primera llamada CALLE"},
        // Una hoja de clientes no sirve para proveedores.
        {csv(kColumnasClientes, {fila}), "TipoProveedores",
         "No existe la columna llamada ATENCIONCOMPRAS"},
        {csv(kColumnasProductos), "TipoProductos", "No hay registros por introducir"}};
    for (const Caso& caso : casos) {
        const QString ruta = archivo("revision.csv");
        escribeArchivo(ruta, caso.contenido);
        EXPECT_EQ(importa(*f, ruta, caso.tipo), QStringList{caso.mensaje});
    }
    EXPECT_EQ(cuenta("Productos"), productos);
    EXPECT_EQ(cuenta("Clientes"), clientes);
}

TEST_F(ImportadorExcelTest, ProductosDeXlsAltasCambiosNombresNuevosUnaVezYRechazados) {
    const QString ruta = archivo("productos.xls");
    const QString larga(51, QLatin1Char('L'));
    escribeXls(ruta, {encabezado(kColumnasProductos),
                      producto("Bebidas Energéticas", "EN-1", "Lata", "50202306", 24, 28, "SI"),
                      // La misma línea y unidad en otras mayúsculas; clave SAT numérica sin su
                      // cero y otra vacía (la de la empresa).
                      producto("BEBIDAS ENERGÉTICAS", "EN-2", "LATA", 1010101, 12, 30, 1),
                      producto("Abarrotes", "EN-3", "Pieza", QVariant(), 5, "$1,035.50", "x"),
                      producto("Abarrotes", "EN-4", "Pieza", QVariant(), 5, "doce", 1),
                      producto("Abarrotes", "EN-5", "Pieza", QVariant(), 5, 1, "quizá"),
                      producto("Abarrotes", larga, "Pieza", QVariant(), 5, 1, 1),
                      // Existe: se actualiza todo, existencia incluida.
                      producto("Botanas y Dulces", "1001", "Caja", "50221101", 7, 33, 0)});
    const long long lineas = cuenta("Lineas Where empresaID = 1");
    const long long unidades = cuenta("Unidades Where empresaID = 1");

    auto f = abre();
    const QStringList mensajes = importa(*f, ruta, "TipoProductos");
    ASSERT_EQ(mensajes.size(), 2);
    EXPECT_TRUE(mensajes[0].startsWith("¿Desea importar los 7 registros del archivo a Productos?"));
    EXPECT_TRUE(mensajes[0].contains("existencia")) << mensajes[0].toStdString();
    EXPECT_EQ(mensajes[1], "Proceso concluido con Éxito");
    EXPECT_EQ(rotulo(*f, "TextoResumen"),
              "Registros insertados: 3\nRegistros actualizados: 1\n"
              "Nombres creados: 2 (Línea Bebidas Energéticas, Unidad Lata)\n"
              "Renglones rechazados: 3");
    EXPECT_EQ(cuenta("Lineas Where empresaID = 1"), lineas + 1);
    EXPECT_EQ(cuenta("Unidades Where empresaID = 1"), unidades + 1);
    EXPECT_EQ(cuenta("Productos Where clave in ('EN-4', 'EN-5') or length(clave) > 50"), 0);
    EXPECT_EQ(cuenta("Productos A, Lineas B, Unidades C Where A.empresaID = 1 and A.clave in "
                     "('EN-1', 'EN-2') and B.id = A.linea and B.linea = 'Bebidas Energéticas' "
                     "and C.id = A.unidad and C.unidad = 'Lata' and A.moneda = 1"),
              2);
    EXPECT_EQ(texto("Select claveSAT || '|' || precio || '|' || manejaInventarios || '|' || "
                    "MostrarKioskoPV || '|' || OrdenKiosko || '|' || activo From Productos Where "
                    "clave = 'EN-2'"),
              "01010101|30.0|1|1|3|1");
    EXPECT_EQ(texto("Select claveSAT || '|' || precio From Productos Where clave = 'EN-3'"),
              texto("Select claveSATProductos From Configura Where empresaID = 1") + "|1035.5");
    EXPECT_EQ(texto("Select B.linea || '|' || existencia || '|' || precio || '|' || "
                    "manejaInventarios || '|' || producto From Productos A, Lineas B Where "
                    "A.empresaID = 1 and A.clave = '1001' and B.id = A.linea"),
              "Botanas y Dulces|7.0|33.0|0|Producto 1001");
    // La otra empresa no se toca.
    EXPECT_EQ(cuenta("Productos Where empresaID = 2 and clave like 'EN-%'"), 0);

    EXPECT_EQ(primeraColumna(*f, "RenglonesRechazados"), (QStringList{"5", "6", "7"}));
    ASSERT_TRUE(f->guardaRechazadosA(archivo("rechazados.csv")));
    EXPECT_EQ(Mensajes::ultimos(), QStringList{"Archivo generado: " + archivo("rechazados.csv")});
    const Hoja rechazados = leeHoja(archivo("rechazados.csv"));
    ASSERT_EQ(rechazados.renglones.size(), 3u);
    EXPECT_EQ(rechazados.encabezados.mid(0, 3), (QStringList{"RENGLON", "MOTIVO", "LINEA"}));
    QStringList motivos;
    for (const RenglonHoja& r : rechazados.renglones)
        motivos << textoCelda(r.celdas[0]) + ": " + textoCelda(r.celdas[1]);
    EXPECT_EQ(motivos, (QStringList{"5: PRECIO1 no es un número: doce",
                                    "6: INVENTARIABLE no es 1/0, SI/NO, TRUE/FALSE ni X: quizá",
                                    "7: CLAVE pasa de 50 caracteres: " + larga}));
    EXPECT_EQ(textoCelda(rechazados.renglones[0].celdas[3]), "EN-4");

    // Otra vez el mismo archivo: solo cambios, ningún nombre nuevo.
    EXPECT_EQ(importa(*f, ruta, nullptr).last(), "Proceso concluido con Éxito");
    EXPECT_EQ(rotulo(*f, "TextoResumen"),
              "Registros insertados: 0\nRegistros actualizados: 4\nNombres creados: 0\n"
              "Renglones rechazados: 3");
    EXPECT_EQ(cuenta("Lineas Where empresaID = 1"), lineas + 1);
    EXPECT_EQ(cuenta("Unidades Where empresaID = 1"), unidades + 1);
    EXPECT_EQ(cuenta("AuditoriasSistema Where moduloSistema = 'Catálogos -> Importador de "
                     "Excel' and datoNuevo = 'Productos: renglones 2 a 8'"),
              2);
}

TEST_F(ImportadorExcelTest, ClientesDeCsvPorNombreYRfcConEstadoNuevoUnaSolaVez) {
    const QString ruta = archivo("clientes.csv");
    auto cliente = [](const QString& nombre, const QString& rfc, const QString& estado,
                      const QString& telefono, const QString& nivel) {
        return QStringList{"C9",
                           nombre,
                           "Av. Vallarta",
                           "100",
                           "",
                           "Centro",
                           "",
                           "44100",
                           "Guadalajara",
                           "Guadalajara",
                           estado,
                           nombre,
                           rfc,
                           telefono,
                           "",
                           "",
                           "500",
                           nivel,
                           "Mostrador",
                           "",
                           "",
                           "",
                           "",
                           "",
                           ""};
    };
    escribeArchivo(
        ruta, csv(kColumnasClientes,
                  {cliente("María Guadalupe Hernández López", "HELG850312QK4", "Jalisco",
                           "33 0000 0001", "2"),
                   // Mismo nombre, otro RFC: es otro cliente.
                   cliente("María Guadalupe Hernández López", "HELG850312QK5", "Jalisco", "", ""),
                   cliente("Abarrotes El Güero", "gue-010101-ab1", "Estado Nuevo", "", "1"),
                   cliente("Tienda La Esquina", "", "estado nuevo", "", "5"),
                   cliente("Nivel Malo", "", "Jalisco", "", "7")}));
    const long long clientes = cuenta("Clientes Where empresaID = 1");

    auto f = abre();
    EXPECT_EQ(importa(*f, ruta, "TipoClientes").last(), "Proceso concluido con Éxito");
    EXPECT_EQ(rotulo(*f, "TextoResumen"),
              "Registros insertados: 3\nRegistros actualizados: 1\n"
              "Nombres creados: 1 (Estado Estado Nuevo)\nRenglones rechazados: 1");
    EXPECT_EQ(primeraColumna(*f, "RenglonesRechazados"), QStringList{"6"});
    EXPECT_EQ(cuenta("Clientes Where empresaID = 1"), clientes + 3);
    EXPECT_EQ(texto("Select telefono || '|' || precioVenta || '|' || puntos || '|' || "
                    "atencionVentas From Clientes Where id = 2"),
              "33 0000 0001|2|42.5|Mostrador");
    EXPECT_EQ(cuenta("Clientes Where empresaID = 1 and rfc = 'HELG850312QK5' and pais = 'MÉXICO'"),
              1);
    EXPECT_EQ(cuenta("Clientes A, Estados B Where A.empresaID = 1 and A.rfc = 'GUE010101AB1' and "
                     "B.id = A.estado and B.estado = 'Estado Nuevo'"),
              1);
    EXPECT_EQ(cuenta("Estados Where estado like 'estado nuevo'"), 1);

    EXPECT_EQ(importa(*f, ruta, nullptr).last(), "Proceso concluido con Éxito");
    EXPECT_EQ(rotulo(*f, "TextoResumen").section('\n', 0, 2),
              "Registros insertados: 0\nRegistros actualizados: 4\nNombres creados: 0");
    EXPECT_EQ(cuenta("Clientes Where empresaID = 1"), clientes + 3);
}

TEST_F(ImportadorExcelTest, ProveedoresDeXlsxConCodigoPostalNumerico) {
    const QString ruta = archivo("proveedores.xlsx");
    auto proveedor = [](const QString& nombre, const QString& rfc, const QVariant& cp) {
        return Celdas{"P9",
                      nombre,
                      "Calle 8",
                      "1",
                      QVariant(),
                      "Industrial",
                      QVariant(),
                      cp,
                      "Guadalajara",
                      "Guadalajara",
                      "Jalisco",
                      nombre,
                      rfc,
                      "33 1111 2222",
                      "Raúl",
                      2500,
                      "ventas@correo.mx",
                      "Lunes a viernes"};
    };
    escribeXlsx(ruta, {encabezado(kColumnasProveedores),
                       proveedor("Productos de Limpieza Tapatíos", "PLT120717AB3", 44940),
                       proveedor("Papelera del Centro", "PCE990101AA1", 1000)});
    auto f = abre();
    EXPECT_EQ(importa(*f, ruta, "TipoProveedores").last(), "Proceso concluido con Éxito");
    EXPECT_EQ(rotulo(*f, "TextoResumen").section('\n', 0, 1),
              "Registros insertados: 1\nRegistros actualizados: 1");
    EXPECT_EQ(texto("Select limiteCredito || '|' || atencionCompras || '|' || contacto From "
                    "Proveedores Where id = 3"),
              "2500.0|Lunes a viernes|Raúl");
    EXPECT_EQ(texto("Select cp || '|' || pais || '|' || estado From Proveedores Where nombre = "
                    "'Papelera del Centro' and empresaID = 1"),
              "01000|MÉXICO|14");
    EXPECT_EQ(importa(*f, ruta, nullptr).last(), "Proceso concluido con Éxito");
    EXPECT_EQ(cuenta("Proveedores Where nombre = 'Papelera del Centro'"), 1);
}

TEST_F(ImportadorExcelTest, CancelarAMediaImportacionDejaLoRegistrado) {
    QList<QStringList> filas;
    for (int i = 1; i <= 35; ++i) {
        QStringList r(kColumnasProductos.size());
        r[0] = "Abarrotes";
        r[1] = QStringLiteral("CAN-%1").arg(i);
        r[2] = "Cancelable";
        r[3] = "Pieza";
        filas << r;
    }
    const QString ruta = archivo("cancelar.csv");
    escribeArchivo(ruta, csv(kColumnasProductos, filas));

    auto f = abre();
    f->renglonesPorLote(10);
    int lotes = 0;
    QObject::connect(f.get(), &TImportadorExcelF::loteRegistrado, f.get(), [&](int procesados) {
        ++lotes;
        EXPECT_EQ(procesados, 10);
        EXPECT_TRUE(control<QFrame>(*f, "AvanceImportacion")->isVisible());
        QTest::mouseClick(control<QPushButton>(*f, "BotonCancelar"), Qt::LeftButton);
    });
    EXPECT_EQ(importa(*f, ruta, "TipoProductos").last(), "Operación Cancelada");
    EXPECT_EQ(lotes, 1);
    EXPECT_EQ(cuenta("Productos Where clave like 'CAN-%'"), 10);
    EXPECT_EQ(cuenta("Productos Where clave in ('CAN-10', 'CAN-11')"), 1);
    EXPECT_TRUE(rotulo(*f, "TextoResumen").startsWith("Registros insertados: 10\n"));
    EXPECT_TRUE(control<QPushButton>(*f, "BotonImportar")->isEnabled());
}

TEST_F(ImportadorExcelTest, LoExportadoSeImportaDeVueltaSinCambiarNadaYUnaLineaSola) {
    const std::string todo = "Select * From Productos Where empresaID = 1 Order By id";
    const Json antes = c.exige(todo).filas();
    const long long lineas = cuenta("Lineas");
    const long long unidades = cuenta("Unidades");
    const long long productos = cuenta("Productos Where empresaID = 1");

    Sesion s = sesion(QStringLiteral("admin"), 1);
    TExportarCatalogoProductosF exportar(s);
    exportar.show();
    esperaLeyenda(exportar);
    const QString ruta = archivo("catalogo.xlsx");
    ASSERT_TRUE(exportar.exportaA(ruta));
    EXPECT_EQ(Mensajes::ultimos(), QStringList{QStringLiteral("Archivo generado: %1\nProductos "
                                                              "exportados: %2")
                                                   .arg(ruta)
                                                   .arg(productos)});

    auto f = abre();
    EXPECT_EQ(importa(*f, ruta, "TipoProductos").last(), "Proceso concluido con Éxito");
    EXPECT_EQ(rotulo(*f, "TextoResumen"),
              QStringLiteral("Registros insertados: 0\nRegistros actualizados: %1\nNombres "
                             "creados: 0\nRenglones rechazados: 0")
                  .arg(productos));
    EXPECT_EQ(c.exige(todo).filas(), antes);
    EXPECT_EQ(cuenta("Lineas"), lineas);
    EXPECT_EQ(cuenta("Unidades"), unidades);

    // Solo "Refrescos".
    auto* arbol = control<QTreeWidget>(exportar, "Lineas");
    const auto refrescos = arbol->findItems("Refrescos", Qt::MatchExactly | Qt::MatchRecursive);
    ASSERT_EQ(refrescos.size(), 1);
    arbol->setCurrentItem(refrescos.first());
    ASSERT_TRUE(exportar.exportaA(archivo("refrescos.xlsx")));
    const Hoja hoja = leeHoja(archivo("refrescos.xlsx"));
    EXPECT_EQ(hoja.encabezados, kColumnasProductos);
    EXPECT_EQ(static_cast<long long>(hoja.renglones.size()),
              cuenta("Productos Where empresaID = 1 and linea = 9"));
    EXPECT_GT(hoja.renglones.size(), 0u);
    for (const RenglonHoja& r : hoja.renglones)
        EXPECT_EQ(textoCelda(r.celdas[0]), "Refrescos");
}

} // namespace
} // namespace cajaplex
