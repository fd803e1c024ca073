// Redondeo, citas de texto y marcas de una sentencia: sin servicio.
#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "datos/Consulta.h"
#include "datos/Utilerias.h"

namespace cajaplex {
namespace {

TEST(Redondea, MitadSeAlejaDeCeroAunqueElBinarioQuedeAbajo) {
    EXPECT_EQ(Redondea(1.005, 2), 1.01);
    EXPECT_EQ(Redondea(2.675, 2), 2.68);
    EXPECT_EQ(Redondea(-2.5, 0), -3.0);
    EXPECT_EQ(Redondea(2.5, 0), 3.0);
    EXPECT_EQ(Redondea(-1.005, 2), -1.01);
    EXPECT_EQ(Redondea(0.1 + 0.2, 2), 0.3);
    EXPECT_EQ(Redondea(1.0049999999, 2), 1.0);
    EXPECT_EQ(Redondea(9.995, 2), 10.0); // el acarreo agrega una cifra
    EXPECT_EQ(Redondea(0.005, 2), 0.01); // la primera cifra es la que decide
    EXPECT_EQ(Redondea(0.0049, 2), 0.0);
    EXPECT_EQ(Redondea(0.0004, 2), 0.0);
    EXPECT_EQ(Redondea(1250.0, -2), 1300.0);
    EXPECT_EQ(Redondea(116.0 / 1.16, 6), 100.0);
    EXPECT_EQ(Redondea(0.1234565, 6), 0.123457);
    EXPECT_EQ(Redondea(123.456, 3), 123.456); // ya tiene esas cifras
    EXPECT_EQ(Redondea(0.0, 2), 0.0);
}

TEST(CitaSql, DuplicaApostrofosYEscribeNumerosSinIdioma) {
    EXPECT_EQ(citaSql("'; delete from Productos; --"), "'''; delete from Productos; --'");
    EXPECT_EQ(citaSql("O'Higgins"), "'O''Higgins'");
    EXPECT_EQ(citaSql(""), "''");
    EXPECT_EQ(numeroSql(int64_t{-42}), "-42");
    EXPECT_EQ(numeroSql(1234.5), "1234.5");
    EXPECT_EQ(numeroSql(0.1), "0.1");
    EXPECT_THROW(numeroSql(std::nan("")), ErrorProgramacion);
}

TEST(Marcas, SoloCuentanFueraDeLiteralesYComentarios) {
    const std::vector<std::string> esperadas = {"EmpresaID", "clave", "menú"};
    EXPECT_EQ(marcasSql("Select ':no' as a, \":tampoco\", [:ni], `:esta` -- :comentario\n"
                        "From T /* :bloque */ Where empresaID = :EmpresaID and clave=:clave "
                        "and x = 'it''s :dentro' and :empresaid > 0 and m = :menú"),
              esperadas);
}

TEST(Marcas, LaConsultaSoloAceptaSusMarcasYNuncaMandaUnaSinAsignar) {
    Consulta q("Select * From Productos Where empresaID = :EmpresaID and clave = :Clave");
    q.parametro("empresaid").entero(7); // sin distinguir mayúsculas
    EXPECT_THROW(q.parametro("Producto"), ErrorProgramacion);
    EXPECT_EQ(q.marcasSinAsignar(), QStringList{"Clave"});
    // Una marca olvidada no viaja como NULL: es un error de programación, que las pantallas
    // atrapan como cualquier error del acceso a datos.
    EXPECT_THROW(q.sentencia(), ErrorProgramacion);
    EXPECT_THROW(q.sentencia(), ErrorServicio);

    q.parametro("Clave").nulo(); // NULL a propósito
    const auto s = q.sentencia();
    ASSERT_EQ(s.parametros.size(), 2u);
    EXPECT_EQ(s.parametros[0].nombre, "EmpresaID");
    EXPECT_EQ(std::get<int64_t>(s.parametros[0].valor), 7);
    EXPECT_EQ(s.parametros[1].tipo, protocolo::Tipo::Texto);
    EXPECT_TRUE(protocolo::esNulo(s.parametros[1].valor));
    EXPECT_TRUE(q.marcasSinAsignar().isEmpty());

    // Tomarla (lo que hacen abre, ejecuta y Lote::agrega) olvida los valores.
    EXPECT_EQ(q.tomaSentencia().parametros.size(), 2u);
    EXPECT_EQ(q.marcasSinAsignar(), (QStringList{"EmpresaID", "Clave"}));
    // También cuando se rechaza.
    q.parametro("Clave").texto("A");
    EXPECT_THROW(q.tomaSentencia(), ErrorProgramacion);
    EXPECT_EQ(q.marcasSinAsignar(), (QStringList{"EmpresaID", "Clave"}));

    q.asignaSql("Select 1 Where :Otro = 1");
    EXPECT_EQ(q.marcas(), QStringList{"Otro"});
    EXPECT_THROW(q.parametro("EmpresaID"), ErrorProgramacion);
    q.parametro("Otro").entero(1);
    EXPECT_THROW(q.abre(), ErrorProgramacion); // sin conexión
    EXPECT_EQ(q.marcasSinAsignar(), QStringList{"Otro"});
}

TEST(Marcas, UnCampoQueNoExisteEsErrorDeProgramacion) {
    Registros r(protocolo::Resultado{});
    try {
        r.campo(0, "NoExiste");
        FAIL() << "debió lanzar";
    } catch (const ErrorServicio& e) {
        EXPECT_EQ(e.codigo(), CodigoProgramacion);
        EXPECT_NE(e.mensaje().indexOf("NoExiste"), -1);
    }
}

} // namespace
} // namespace cajaplex
