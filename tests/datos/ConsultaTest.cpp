// Datasets contra el servicio real: tipos de ida y vuelta, campos por nombre, renglones y textos
// tecleados que parecen SQL.
#include <stdexcept>

#include <gtest/gtest.h>

#include <QByteArray>
#include <QDate>
#include <QDateTime>
#include <QUuid>

#include "datos/Consulta.h"
#include "datos/Transaccion.h"
#include "datos/Utilerias.h"
#include "tests/datos/ServicioDatos.h"
#include "tests/fixtures/DatosPrueba.h"

namespace cajaplex {
namespace {

class ConsultaTest : public prueba::ConServicio {
protected:
    void SetUp() override {
        prueba::apunta(conexion, servicio);
        datos.empresa(1, "Abarrotes");
    }
    ConexionBD conexion;
};

TEST_F(ConsultaTest, CadaTipoDeParametroVaYRegresa) {
    QByteArray binario;
    for (int i = 0; i < 256; ++i)
        binario.append(static_cast<char>(i));
    const QDateTime fecha(QDate(2024, 2, 29), QTime(23, 59, 58));
    const QUuid guid = QUuid::createUuid();

    Consulta q(conexion, "Select :Entero as Entero, :Real as Real, :Texto as Texto, "
                         ":Bandera as Bandera, :Fecha as Fecha, :Dia as Dia, :Bytes as Bytes, "
                         ":Vacio as Vacio, :Guid as Guid, :Nulo as Nulo");
    q.parametro("Entero").entero(-9007199254740993LL); // no cabe exacto en un double
    q.parametro("Real").real(-1234.5678);
    q.parametro("Texto").texto("Café «jalapeño» 🌶 \"comillas\" y 'apóstrofos'");
    q.parametro("Bandera").booleano(true);
    q.parametro("Fecha").fecha(fecha);
    q.parametro("Dia").fecha(QDate(2024, 1, 2));
    q.parametro("Bytes").blob(binario);
    q.parametro("Vacio").blob(QByteArray());
    q.parametro("Guid").guid(guid);
    q.parametro("Nulo").real(1.0);
    q.parametro("Nulo").nulo();
    q.abre();

    ASSERT_EQ(q.numeroRegistros(), 1);
    EXPECT_EQ(q.campo("ENTERO").comoEntero(), -9007199254740993LL);
    EXPECT_EQ(q.campo("real").comoReal(), -1234.5678);
    EXPECT_EQ(q.campo("texto").comoTexto(),
              "Café «jalapeño» 🌶 \"comillas\" y 'apóstrofos'");
    EXPECT_TRUE(q.campo("Bandera").comoBooleano());
    EXPECT_EQ(q.campo("Bandera").comoEntero(), 1);
    EXPECT_EQ(q.campo("fecha").comoFecha(), fecha);
    EXPECT_EQ(q.campo("fecha").comoTexto(), "2024-02-29 23:59:58");
    EXPECT_EQ(q.campo("dia").comoTexto(), "2024-01-02 00:00:00");
    EXPECT_EQ(q.campo("bytes").comoBlob(), binario);
    EXPECT_FALSE(q.campo("Vacio").esNulo());
    EXPECT_TRUE(q.campo("Vacio").comoBlob().isEmpty());
    EXPECT_EQ(QUuid::fromString(q.campo("guid").comoTexto()), guid);
    EXPECT_TRUE(q.campo("Nulo").esNulo());
    EXPECT_EQ(q.campo("Nulo").comoEntero(), 0);
    EXPECT_EQ(q.campo("Nulo").comoTexto(), "");
    EXPECT_FALSE(q.campo("Nulo").comoFecha().isValid());
    EXPECT_THROW(q.campo("NoExiste"), ErrorProgramacion);
}

TEST_F(ConsultaTest, UnaMarcaSinAsignarSeRechazaSinMandarNada) {
    Consulta alta(conexion, "Insert Into Productos (empresaID, clave, producto, existencia) "
                            "Values (1, :clave, :producto, :existencia)");
    alta.parametro("clave").texto("A");
    alta.parametro("producto").texto("Azúcar");
    try {
        alta.ejecuta();
        FAIL() << "la existencia no se asignó";
    } catch (const ErrorServicio& e) {
        EXPECT_EQ(e.codigo(), CodigoProgramacion);
        EXPECT_NE(e.mensaje().indexOf(":existencia"), -1) << e.mensaje().toStdString();
    }
    EXPECT_EQ(c.cuenta("Productos"), 0);

    // Los valores de una ejecución no pasan a la siguiente, ni tras el rechazo ni tras el éxito.
    alta.parametro("existencia").real(5);
    EXPECT_THROW(alta.ejecuta(), ErrorProgramacion);
    EXPECT_EQ(c.cuenta("Productos"), 0);
    alta.parametro("clave").texto("A");
    alta.parametro("producto").texto("Azúcar");
    alta.parametro("existencia").nulo(); // NULL solo a propósito
    alta.ejecuta();
    EXPECT_EQ(alta.filasAfectadas(), 1);
    EXPECT_EQ(alta.marcasSinAsignar(), (QStringList{"clave", "producto", "existencia"}));
    alta.parametro("clave").texto("B");
    EXPECT_THROW(alta.ejecuta(), ErrorProgramacion);
    EXPECT_EQ(c.cuenta("Productos"), 1);
    EXPECT_TRUE(c.valor("Select existencia From Productos Where clave = 'A'").is_null());

    // Igual al agregarla a un lote: la sentencia rechazada no entra.
    Lote lote(conexion);
    alta.parametro("clave").texto("C");
    alta.parametro("producto").texto("Café");
    EXPECT_THROW(lote.agrega(alta), ErrorProgramacion);
    EXPECT_EQ(lote.tamano(), 0u);
}

TEST_F(ConsultaTest, RenglonesSeRecorrenYSinRenglonesLosCamposSonNulos) {
    for (const char* clave : {"A", "B", "C"})
        datos.producto(1, clave, 1);
    Consulta q(conexion, "Select clave, existencia From Productos Where empresaID = :EmpresaID "
                         "Order by clave");
    q.parametro("EmpresaID").entero(1);
    q.abre();
    QStringList claves;
    for (const Registro& r : q)
        claves << r.campo("Clave").comoTexto();
    EXPECT_EQ(claves, (QStringList{"A", "B", "C"}));
    q.siguiente();
    q.siguiente();
    EXPECT_EQ(q.campo("CLAVE").comoTexto(), "C");
    q.siguiente();
    EXPECT_TRUE(q.fin());

    q.parametro("EmpresaID").entero(2);
    q.abre();
    EXPECT_EQ(q.numeroRegistros(), 0);
    EXPECT_TRUE(q.campo("clave").esNulo());
    EXPECT_EQ(q.campo("existencia").comoReal(), 0.0);
}

TEST_F(ConsultaTest, TextoConSqlSeGuardaYSeBuscaComoTexto) {
    const QString tecleado = "'; delete from Productos; --";
    datos.producto(1, "X1", 3);
    Consulta alta(conexion, "Insert Into Productos (empresaID, clave, producto) "
                            "Values (1, :clave, :producto)");
    alta.parametro("clave").texto("INY");
    alta.parametro("producto").texto(tecleado);
    alta.ejecuta();

    Consulta ligada(conexion, "Select clave, producto From Productos Where producto = :texto");
    ligada.parametro("texto").texto(tecleado);
    ligada.abre();
    ASSERT_EQ(ligada.numeroRegistros(), 1);
    EXPECT_EQ(ligada.campo("clave").comoTexto(), "INY");
    EXPECT_EQ(ligada.campo("producto").comoTexto(), tecleado);

    // La misma búsqueda armada en código, como las pantallas que concatenan fragmentos.
    Consulta armada(conexion,
                    "Select clave From Productos Where empresaID = " + numeroSql(int64_t{1}) +
                        " and producto like " + citaSql("%" + tecleado + "%"));
    armada.abre();
    ASSERT_EQ(armada.numeroRegistros(), 1);
    EXPECT_EQ(armada.campo("clave").comoTexto(), "INY");

    Consulta nada(conexion, "Select count(*) as n From Productos Where producto = " +
                                citaSql("x' or '1'='1"));
    nada.abre();
    EXPECT_EQ(nada.campo("n").comoEntero(), 0);
    EXPECT_EQ(c.cuenta("Productos"), 2);
}

} // namespace
} // namespace cajaplex
