// Unidades de Medida contra el servicio real de demostración: alta, cambio y borrado con su
// bitácora, lo que se rechaza y lo que no se borra.
#include <gtest/gtest.h>

#include <memory>

#include <QListWidget>
#include <QStackedWidget>

#include "catalog/Unidades.h"
#include "pantallas/Mensajes.h"
#include "pantallas/RolesRenglon.h"
#include "pantallas/Sonidos.h"
#include "tests/fixtures/Toques.h"

namespace cajaplex {
namespace {

using namespace prueba;

const char* const kModulo = "moduloSistema = 'Catálogos -> Unidades de Medida'";

class UnidadesTest : public ConPantallas {
protected:
    std::unique_ptr<TUnidadesF> abre() {
        sesion_ = sesion(QStringLiteral("admin"), 1);
        auto f = std::make_unique<TUnidadesF>(sesion_);
        f->resize(1200, 700);
        f->show();
        esperaLeyenda(*f);
        Mensajes::ultimos();
        Sonidos::reproducidos();
        return f;
    }

    static void elige(const TUnidadesF& f, const QString& unidad) {
        tocaRenglon(f, "ListaUnidades", RolPrimeraLinea, unidad);
    }

    static QString pagina(const TUnidadesF& f) {
        return control<QStackedWidget>(f, "Paginas")->currentWidget()->objectName();
    }

    Sesion sesion_;
};

TEST_F(UnidadesTest, AltaCambioYBorradoConSuBitacoraYLoQueFaltaSeRechaza) {
    auto f = abre();
    EXPECT_EQ(renglones(*f, "ListaUnidades", RolPrimeraLinea),
              (QStringList{"Caja", "Kilogramo", "Litro", "Paquete", "Pieza", "Servicio"}));
    EXPECT_EQ(rotulo(*f, "PieUnidades"), "Número de Registros: 6");

    toca(*f, "BotonNuevo");
    EXPECT_EQ(pagina(*f), "UnidadesEdita");
    escribe(*f, "NombreUnidad", "Docena");
    toca(*f, "BotonAlmacenar");
    escribe(*f, "NombreUnidad", "  ");
    escribe(*f, "ClaveSAT", "DZN");
    toca(*f, "BotonAlmacenar");
    EXPECT_EQ(Mensajes::ultimos(), (QStringList{"No especificó la Clave SAT",
                                                "No especificó el Nombre de la Unidad de Medida"}));
    EXPECT_EQ(Sonidos::reproducidos(),
              (QList<Sonido>{Sonido::Click, Sonido::Error, Sonido::Error}));
    EXPECT_EQ(control<QLineEdit>(*f, "ClaveSAT")->text(), "DZN");
    EXPECT_EQ(c.cuenta("Unidades Where unidad like 'Docena%'"), 0);

    escribe(*f, "NombreUnidad", "Docena");
    toca(*f, "BotonAlmacenar");
    EXPECT_EQ(Mensajes::ultimos(), QStringList{});
    EXPECT_EQ(pagina(*f), "SeleccionaUnidad");
    const long long id = c.valor("Select id From Unidades Where empresaID = 1 and unidad = "
                                 "'Docena' and claveSAT = 'DZN' and usuarioID = 1")
                             .get<long long>();
    EXPECT_EQ(control<QListWidget>(*f, "ListaUnidades")->currentItem()->text(), "Docena");
    EXPECT_EQ(rotulo(*f, "PieUnidades"), "Número de Registros: 7");
    EXPECT_EQ(c.cuenta(std::string("AuditoriasSistema Where tipoAuditoria = 'Inserción' and ") +
                       kModulo + " and datoNuevo like '%Docena%DZN%'"),
              1);

    toca(*f, "BotonModificar");
    EXPECT_EQ(control<QLineEdit>(*f, "NombreUnidad")->text(), "Docena");
    escribe(*f, "NombreUnidad", "Docena de piezas");
    toca(*f, "BotonAlmacenar");
    EXPECT_EQ(c.cuenta("Unidades Where id = " + std::to_string(id) +
                       " and unidad = 'Docena de piezas' and claveSAT = 'DZN'"),
              1);
    EXPECT_EQ(c.cuenta(std::string("AuditoriasSistema Where tipoAuditoria = 'Actualización' and ") +
                       kModulo +
                       " and datoNuevo like '%Docena de piezas%' and datoAnterior like "
                       "'Unidad: Docena Clave%'"),
              1);

    elige(*f, "Docena de piezas");
    Mensajes::respondeSiguiente(cajaplex::Respuesta::Si);
    toca(*f, "BotonBorrar");
    EXPECT_EQ(c.cuenta("Unidades Where id = " + std::to_string(id)), 0);
    EXPECT_FALSE(renglones(*f, "ListaUnidades", RolPrimeraLinea).contains("Docena de piezas"));
    EXPECT_EQ(rotulo(*f, "PieUnidades"), "Número de Registros: 6");
    EXPECT_EQ(c.cuenta(std::string("AuditoriasSistema Where tipoAuditoria = 'Cancelación' and ") +
                       kModulo + " and datoNuevo like '%Docena de piezas%'"),
              1);
}

TEST_F(UnidadesTest, UnidadQueUsaUnProductoNoSeBorra) {
    // "Litro" no la usa ningún producto de la empresa 1; se la damos a uno.
    c.exige("Update Productos Set unidad = 3 Where empresaID = 1 and clave = '2005'");
    auto f = abre();
    elige(*f, "Litro");
    Mensajes::respondeSiguiente(cajaplex::Respuesta::Si);
    toca(*f, "BotonBorrar");
    EXPECT_EQ(Mensajes::ultimos(),
              (QStringList{"¿Desea Eliminar la Unidad de Medida Litro?",
                           "No puede eliminar la Unidad de Medida con Transacciones Registradas"}));
    EXPECT_EQ(c.cuenta("Unidades Where id = 3"), 1);
    EXPECT_TRUE(renglones(*f, "ListaUnidades", RolPrimeraLinea).contains("Litro"));
    EXPECT_EQ(c.cuenta(std::string("AuditoriasSistema Where ") + kModulo), 0);

    // Sin el producto ya se puede.
    c.exige("Update Productos Set unidad = 1 Where empresaID = 1 and clave = '2005'");
    Mensajes::respondeSiguiente(cajaplex::Respuesta::Si);
    toca(*f, "BotonBorrar");
    EXPECT_EQ(c.cuenta("Unidades Where id = 3"), 0);
}

} // namespace
} // namespace cajaplex
