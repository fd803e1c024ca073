// Revisiones y guardado de un producto contra el servicio real de demostración: el orden de los
// mensajes, lo que queda en Productos y ProductosFotos, la bitácora y que todo va en una sola
// transacción.
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "catalog/EdicionProducto.h"
#include "datos/ConexionBD.h"
#include "tests/fixtures/DatosPrueba.h"

namespace cajaplex {
namespace {

using namespace prueba;

// Lo que escribe el editor, en el orden del alta.
const std::string kColumnas =
    "empresaID, linea, clave, producto, unidad, moneda, claveSAT, existencia, pCompra, "
    "manejaInventarios, requiereAutorizacionVenta, manejaSeries, esPaquete, Recurrente, caduca, "
    "MostrarKioskoPV, utilizaBascula, precio, precio2, precio3, precio4, precio5, precioAbierto, "
    "porcentajeImpuesto, IEPS, datoAdicional1, codigoBarra, bonificaPuntos, "
    "porcentajeBonificacion, maximo, minimo, Peso, usuarioID, activo";

class EdicionProductoTest : public ConServicio {
protected:
    EdicionProductoTest() : ConServicio(true) {}

    void SetUp() override {
        conexion.configura(QStringLiteral("127.0.0.1"), servicio.puerto(),
                           QString::fromStdString(kUsuarioDemo),
                           QString::fromStdString(kUsuarioDemo));
        sesion.EmpresaID = 1;
        sesion.UsuarioID = 2;
    }

    // Un producto que pasa todas las revisiones.
    static ProductoEditado valido() {
        ProductoEditado p;
        p.linea = 6;
        p.clave = QStringLiteral("ZZ-100");
        p.producto = QStringLiteral("Galleta de avena 400 g");
        p.unidad = 1;
        p.moneda = 1;
        p.claveSAT = QStringLiteral("50181900");
        return p;
    }

    Json fila(long long id) {
        return c
            .exige("Select " + kColumnas + " From Productos Where id = :id", {{"id", entero(id)}})
            .filas()
            .at(0);
    }

    long long auditorias(const std::string& tipo) {
        return c.cuenta("AuditoriasSistema Where moduloSistema = 'Catálogos -> Productos' and "
                        "tipoAuditoria = :t",
                        {{"t", texto(tipo)}});
    }

    static QByteArray bytesDe(const Json& v) {
        return v.is_null()
                   ? QByteArray()
                   : QByteArray::fromBase64(QByteArray::fromStdString(v.get<std::string>()));
    }

    ConexionBD conexion;
    Sesion sesion;
    EdicionProducto edicion{conexion, sesion};
};

TEST_F(EdicionProductoTest, RevisaEnOrdenConSusMensajes) {
    ProductoEditado p;
    auto revisa = [&] { return edicion.revisa(p).value_or(QStringLiteral("(pasa)")); };
    EXPECT_EQ(revisa(), "No especificó la Clave del Producto");
    p.clave = QStringLiteral("   ");
    EXPECT_EQ(revisa(), "No especificó la Clave del Producto");
    // La clave repetida se revisa antes que la descripción.
    p.clave = QStringLiteral("1001");
    EXPECT_EQ(revisa(), "Ya existe esa Clave del Producto");
    p.clave = QStringLiteral(" 1001 ");
    EXPECT_EQ(revisa(), "Ya existe esa Clave del Producto");
    p.clave = QStringLiteral("ZZ-100");
    EXPECT_EQ(revisa(), "No especificó la Descripción del Producto");
    p.producto = QStringLiteral("Galleta");
    EXPECT_EQ(revisa(), "No especificó la Unidad de Medida del Producto");
    p.unidad = 1;
    EXPECT_EQ(revisa(), "No especificó la Moneda del Producto");
    p.moneda = 1;
    EXPECT_EQ(revisa(), "No especificó la Clave del SAT del Producto");
    for (const char* corta : {"5018190", "501819001", "ABCDEFG", "ABCDEFGHI"}) {
        p.claveSAT = QString::fromLatin1(corta);
        EXPECT_EQ(revisa(), "La Clave del SAT debe contener 8 dígitos") << corta;
    }
    // Solo se cuenta la longitud: ocho letras pasan.
    p.claveSAT = QStringLiteral("ABCDEFGH");
    EXPECT_EQ(revisa(), "(pasa)");

    // La clave de otra empresa no estorba.
    sesion.EmpresaID = 2;
    p.clave = QStringLiteral("1001");
    EXPECT_EQ(revisa(), "(pasa)");
    sesion.EmpresaID = 1;

    // Un producto guardado nunca choca con su propia clave, aunque no cambie nada.
    p.id = 1;
    EXPECT_EQ(revisa(), "(pasa)");
}

TEST_F(EdicionProductoTest, AltaGuardaLoCapturadoConFotoYBitacoraEnUnaTransaccion) {
    ProductoEditado p = valido();
    p.existencia = 12.5;
    p.pCompra = 20.25;
    p.manejaInventarios = p.requiereAutorizacionVenta = p.manejaSeries = p.esPaquete = true;
    p.recurrente = p.caduca = p.mostrarKioskoPV = p.utilizaBascula = true;
    p.precios = {30.0, 29.5, 0.0, 27.0, 26.75};
    p.precioAbierto = true;
    p.porcentajeImpuesto = 16;
    p.ieps = 8;
    p.datoAdicional1 = QStringLiteral("Marca D'Lupita");
    p.codigoBarra = QStringLiteral("7501000000017");
    p.bonificaPuntos = true;
    p.porcentajeBonificacion = 2.5;
    p.maximo = 40;
    p.minimo = 5;
    p.peso = 0.4;
    p.activo = false;
    const FotoEditada foto{false, true, QByteArray("foto"), QByteArray("mini")};

    const long long maximo = c.valor("Select Max(id) From Productos").get<long long>();
    const int64_t id = edicion.guarda(p, foto);
    EXPECT_EQ(id, maximo + 1);
    EXPECT_EQ(fila(id), Json::parse(R"([1, 6, "ZZ-100", "Galleta de avena 400 g", 1, 1,
        "50181900", 12.5, 20.25, 1, 1, 1, 1, 1, 1, 1, 1, 30.0, 29.5, 0.0, 27.0, 26.75, 1, 16.0,
        8.0, "Marca D'Lupita", "7501000000017", 1, 2.5, 40.0, 5.0, 0.4, 2, 0])"));
    const Json fotos =
        c.exige("Select Posicion, Foto, Miniatura From ProductosFotos Where id = :id",
                {{"id", entero(id)}})
            .filas();
    ASSERT_EQ(fotos.size(), 1u);
    EXPECT_EQ(fotos[0][0], 1);
    EXPECT_EQ(bytesDe(fotos[0][1]), "foto");
    EXPECT_EQ(bytesDe(fotos[0][2]), "mini");
    EXPECT_EQ(c.cuenta("AuditoriasSistema Where tipoAuditoria = 'Inserción' and usuarioID = 2 "
                       "and empresaID = 1 and moduloSistema = 'Catálogos -> Productos' and "
                       "datoNuevo = 'Producto: ZZ-100 Galleta de avena 400 g'"),
              1);

    // Una foto huérfana ocupa el ID que tocaría al siguiente producto: su alta falla y con ella
    // el producto y su bitácora.
    c.exige("Insert Into ProductosFotos (id, Posicion, Foto) Values (:id, 1, x'00')",
            {{"id", entero(id + 1)}});
    ProductoEditado otro = valido();
    otro.clave = QStringLiteral("ZZ-101");
    const long long productos = c.cuenta("Productos");
    EXPECT_THROW(edicion.guarda(otro, foto), ErrorServicio);
    EXPECT_EQ(c.cuenta("Productos"), productos);
    EXPECT_EQ(auditorias("Inserción"), 1);
    // Sin foto entra.
    EXPECT_EQ(edicion.guarda(otro, {}), id + 1);
    EXPECT_EQ(auditorias("Inserción"), 2);
}

TEST_F(EdicionProductoTest, CambioActualizaSinTocarLineaNiAutorYReemplazaOQuitaLaFoto) {
    std::optional<ProductoConsultado> leido = edicion.consulta(1);
    ASSERT_TRUE(leido);
    EXPECT_EQ(leido->producto.clave, "1001");
    EXPECT_EQ(leido->producto.codigoBarra, "7501058000118");
    EXPECT_TRUE(leido->foto.isEmpty());
    EXPECT_FALSE(edicion.consulta(101)); // de la otra empresa

    ProductoEditado p = leido->producto;
    p.producto = QStringLiteral("Arroz morelos 1 kg");
    p.precios[1] = 0.0;
    p.linea = 1; // el cambio no mueve de línea
    const Json antes = fila(1);
    edicion.guarda(p, {false, true, QByteArray("uno"), QByteArray("u")}, leido->producto);
    Json despues = fila(1);
    EXPECT_EQ(despues[3], "Arroz morelos 1 kg");
    EXPECT_EQ(despues[18], 0.0);
    EXPECT_EQ(despues[25], ""); // el dato adicional nulo vuelve vacío
    for (size_t i : {3, 18, 25})
        despues[i] = antes[i];
    EXPECT_EQ(despues, antes); // línea, autor y lo demás como estaban
    EXPECT_EQ(c.cuenta("AuditoriasSistema Where tipoAuditoria = 'Actualización' and "
                       "datoNuevo = 'Producto: 1001 Arroz morelos 1 kg' and "
                       "datoAnterior = 'Producto: 1001 Arroz súper extra 1 kg'"),
              1);

    auto fotos = [&] { return c.exige("Select Foto From ProductosFotos Where id = 1").filas(); };
    ASSERT_EQ(fotos().size(), 1u);
    edicion.guarda(p, {true, true, QByteArray("dos"), QByteArray("d")}, p);
    ASSERT_EQ(fotos().size(), 1u);
    EXPECT_EQ(bytesDe(fotos()[0][0]), "dos");
    EXPECT_EQ(edicion.consulta(1)->foto, "dos");
    // Sin cambio de foto, la foto se queda.
    edicion.guarda(p, {true, false, {}, {}}, p);
    EXPECT_EQ(bytesDe(fotos()[0][0]), "dos");
    edicion.guarda(p, {true, true, {}, {}}, p);
    EXPECT_TRUE(fotos().empty());
    // Abierto cuando tenía foto y otra estación la quitó: la nueva se da de alta.
    edicion.guarda(p, {true, true, QByteArray("tres"), QByteArray("t")}, p);
    ASSERT_EQ(fotos().size(), 1u);
    EXPECT_EQ(bytesDe(fotos()[0][0]), "tres");
    EXPECT_EQ(auditorias("Actualización"), 5);

    // Renombrar sobre la clave de otro producto no lo detecta la revisión; el índice único lo
    // rechaza y nada cambia.
    p.clave = QStringLiteral("1002");
    EXPECT_FALSE(edicion.revisa(p));
    EXPECT_THROW(edicion.guarda(p, {}, p), ErrorServicio);
    EXPECT_EQ(c.cuenta("Productos Where empresaID = 1 and clave = '1001'"), 1);
    EXPECT_EQ(auditorias("Actualización"), 5);
}

// El editor se abre, otra estación vende 2 piezas y el editor guarda: la venta se queda. La
// existencia solo se toca si el usuario la cambió, y entonces como ajuste sobre la actual.
TEST_F(EdicionProductoTest, GuardarNoDeshaceLoQueOtraEstacionVendioMientrasEstabaAbierto) {
    c.exige("Update Productos Set manejaInventarios = 1, existencia = 50 Where id = 1");
    std::optional<ProductoConsultado> leido = edicion.consulta(1);
    ASSERT_TRUE(leido);
    EXPECT_EQ(leido->producto.existencia, 50.0);

    datos.venta(1, {{"1001", 2}}); // otra estación
    EXPECT_EQ(datos.existencia(1, "1001"), 48.0);

    ProductoEditado p = leido->producto;
    p.producto = QStringLiteral("Arroz morelos 1 kg");
    edicion.guarda(p, {}, leido->producto);
    EXPECT_EQ(datos.existencia(1, "1001"), 48.0);
    EXPECT_EQ(c.valor("Select producto From Productos Where id = 1"), "Arroz morelos 1 kg");

    // Cambiada en el editor de 50 a 55 mientras otra estación vendía 3 más: +5 sobre lo actual.
    datos.venta(1, {{"1001", 3}});
    p.existencia = 55;
    edicion.guarda(p, {}, leido->producto);
    EXPECT_EQ(datos.existencia(1, "1001"), 50.0);
    EXPECT_EQ(c.cuenta("AuditoriasSistema Where tipoAuditoria = 'Actualización' and "
                       "comentarios = 'Producto modificado, existencia ajustada en +5.00'"),
              1);
    EXPECT_EQ(diferenciaExistencia(p, leido->producto), 5.0);
    EXPECT_EQ(diferenciaExistencia(p, {}), 0.0); // sin lo leído, la existencia no se toca
    ProductoEditado nuevo = valido();
    nuevo.existencia = 7;
    EXPECT_EQ(diferenciaExistencia(nuevo, {}), 0.0); // un alta guarda su existencia inicial
}

// Otra estación eliminó el producto mientras el editor estaba abierto: nada se guarda (ni la
// foto huérfana ni la bitácora de un cambio que no ocurrió) y se dice por qué.
TEST_F(EdicionProductoTest, CambioDeUnProductoQueOtraEstacionEliminoNoGuardaNada) {
    std::optional<ProductoConsultado> leido = edicion.consulta(1);
    ASSERT_TRUE(leido);
    c.exige("Delete From Productos Where empresaID = 1 and id = 1"); // otra estación
    const long long bitacora = c.cuenta("AuditoriasSistema");

    ProductoEditado p = leido->producto;
    p.existencia += 4;
    try {
        edicion.guarda(p, {false, true, QByteArray("foto"), QByteArray("mini")}, leido->producto);
        FAIL() << "el producto ya no existe";
    } catch (const RegistroInexistente& e) {
        EXPECT_EQ(e.mensaje(), QString::fromUtf8(MensajeProductoEliminado));
    }
    EXPECT_EQ(c.cuenta("ProductosFotos Where id = 1"), 0);
    EXPECT_EQ(c.cuenta("Productos Where id = 1"), 0);
    EXPECT_EQ(c.cuenta("AuditoriasSistema"), bitacora);
}

TEST_F(EdicionProductoTest, ValoresDeLaEmpresaParaUnProductoNuevo) {
    std::vector<UnidadMedida> unidades = edicion.unidades();
    QStringList nombres;
    for (const UnidadMedida& u : unidades)
        nombres << u.unidad;
    EXPECT_EQ(nombres, (QStringList{"Caja", "Kilogramo", "Litro", "Paquete", "Pieza", "Servicio"}));
    ASSERT_EQ(edicion.monedas().size(), 2u);
    EXPECT_EQ(edicion.valores().unidad, 1);
    EXPECT_EQ(edicion.valores().moneda, 1);
    EXPECT_EQ(edicion.valores().claveSAT, "01010101");
    EXPECT_FALSE(edicion.valores().autoNumera);
    EXPECT_EQ(edicion.valores().idProducto, 46);

    c.exige("Update Configura Set AutoNumeraCatalogosProductos = 1, unidadIDProductos = 12 "
            "Where empresaID = 2");
    sesion.EmpresaID = 2;
    edicion.unidades();
    edicion.monedas();
    EXPECT_EQ(edicion.valores().unidad, 12);
    EXPECT_EQ(edicion.valores().moneda, 3);
    EXPECT_TRUE(edicion.valores().autoNumera);
    EXPECT_EQ(edicion.valores().idProducto, 141);

    // Empresa sin productos: empieza en 1.
    datos.empresa(3, "Tres");
    c.exige("Insert Into Monedas (empresaID, descripcion) Values (3, 'Peso')");
    sesion.EmpresaID = 3;
    ASSERT_EQ(edicion.monedas().size(), 1u);
    EXPECT_EQ(edicion.valores().idProducto, 1);
}

} // namespace
} // namespace cajaplex
