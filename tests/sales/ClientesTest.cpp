// El catálogo de clientes contra el servicio real de demostración: los rechazos en su orden sin
// borrar lo tecleado, el RFC, el monedero que no se pisa, el borrado y el derecho de alta.
#include <gtest/gtest.h>

#include <memory>

#include <QLineEdit>
#include <QPushButton>
#include <QStackedWidget>

#include "pantallas/Mensajes.h"
#include "pantallas/RolesRenglon.h"
#include "sales/CatalogoClientes.h"
#include "sales/Clientes.h"
#include "tests/fixtures/Toques.h"

namespace cajaplex {
namespace {

using namespace prueba;

class ClientesTest : public ConPantallas {
protected:
    std::unique_ptr<TClientesF> abre(const QString& usuario = QStringLiteral("admin")) {
        sesion_ = sesion(usuario, 1);
        auto f = std::make_unique<TClientesF>(sesion_);
        f->resize(1200, 800);
        f->show();
        esperaLeyenda(*f);
        Mensajes::ultimos();
        return f;
    }

    static QString pagina(const TClientesF& f) {
        return control<QStackedWidget>(f, "Paginas")->currentWidget()->objectName();
    }

    static QStringList almacena(const QWidget& f) {
        Mensajes::ultimos();
        toca(f, "BotonAlmacenar");
        esperaLeyenda(f);
        return Mensajes::ultimos();
    }

    std::string valor(const std::string& sql) { return c.valor(sql).dump(); }

    Sesion sesion_;
};

TEST(RfcTest, FormaYFechaDelSat) {
    for (const char* bueno : {"XAXX010101000", "GODE561231GR8", "ABC000229AB1", "ñam-920315-ab1",
                              " GODE 561231 GR8 ", "A&C850101XY9"})
        EXPECT_TRUE(rfcValido(QString::fromUtf8(bueno))) << bueno;
    for (const char* malo : {"", "GODE561231GR", "GODE561331GR8", "GODE560230GR8", "ABC010229AB1",
                             "G0DE561231GR8", "GODE561231GR8X", "ABCDE010101AB1"})
        EXPECT_FALSE(rfcValido(QString::fromUtf8(malo))) << malo;
    EXPECT_EQ(rfcNormalizado(QStringLiteral(" gode-561231 gr8")), "GODE561231GR8");
}

TEST_F(ClientesTest, RechazosEnOrdenDejanLoTecleadoYElAltaQuedaConSuBitacora) {
    auto f = abre();
    toca(*f, "BotonNuevo");
    ASSERT_EQ(pagina(*f), "ClientesEdita");
    escribe(*f, "rfc", "GODE561331GR8");
    escribe(*f, "email", "sin-arroba");
    escribe(*f, "limiteCredito", "1500");
    EXPECT_EQ(almacena(*f), QStringList{MensajeClienteSinNombre});
    escribe(*f, "nombre", "Dulcería O'Hara");
    EXPECT_EQ(almacena(*f), QStringList{MensajeRfcInvalido});
    escribe(*f, "rfc", "gode561231gr8");
    EXPECT_EQ(almacena(*f), QStringList{MensajeCorreoInvalido});
    // Cada rechazo dejó todo como se tecleó.
    EXPECT_EQ(control<QLineEdit>(*f, "nombre")->text(), "Dulcería O'Hara");
    EXPECT_EQ(control<QLineEdit>(*f, "limiteCredito")->text(), "1500");
    escribe(*f, "email", "ventas@ohara.mx");
    EXPECT_TRUE(almacena(*f).isEmpty());
    EXPECT_EQ(pagina(*f), "SeleccionaCliente");

    EXPECT_EQ(valor("Select rfc || '|' || email || '|' || limiteCredito || '|' || puntos From "
                    "Clientes Where empresaID = 1 and nombre = 'Dulcería O''Hara'"),
              "\"GODE561231GR8|ventas@ohara.mx|1500.0|0.0\"");
    EXPECT_EQ(valor("Select count(*) From AuditoriasSistema Where moduloSistema = "
                    "'Catálogos -> Clientes' and tipoAuditoria = 'Inserción' and "
                    "datoNuevo like 'Dulcería O''Hara%'"),
              "1");
    EXPECT_TRUE(renglones(*f, "ListaClientes", RolPrimeraLinea).contains("Dulcería O'Hara"));
}

TEST_F(ClientesTest, ElCambioNoPisaElMonederoYUnClienteBorradoEnOtraEstacionNoSeEscribe) {
    c.exige("Insert Into Clientes (id, empresaID, nombre, puntos) Values (900, 1, 'Abarrotes "
            "Mena', 40)");
    auto f = abre();
    tocaRenglon(*f, "ListaClientes", RolPrimeraLinea, "Abarrotes Mena");
    toca(*f, "BotonModificar");
    EXPECT_EQ(control<QLineEdit>(*f, "puntos")->text(), "40.00");
    // Mientras se edita, otra estación vende y el cliente gana puntos.
    c.exige("Update Clientes Set puntos = puntos + 12.5 Where id = 900");
    escribe(*f, "telefono", "5512345678");
    EXPECT_TRUE(almacena(*f).isEmpty());
    EXPECT_EQ(valor("Select telefono || '|' || puntos From Clientes Where id = 900"),
              "\"5512345678|52.5\"");

    tocaRenglon(*f, "ListaClientes", RolPrimeraLinea, "Abarrotes Mena");
    toca(*f, "BotonModificar");
    c.exige("Delete From Clientes Where id = 900");
    const std::string bitacoras = valor("Select count(*) From AuditoriasSistema");
    escribe(*f, "telefono", "5599999999");
    EXPECT_EQ(almacena(*f), QStringList{MensajeClienteNoExiste});
    EXPECT_EQ(valor("Select count(*) From Clientes Where id = 900"), "0");
    EXPECT_EQ(valor("Select count(*) From AuditoriasSistema"), bitacoras);
}

TEST_F(ClientesTest, BorradoRechazadoConDocumentosOPredeterminadoYPermitidoSinEllos) {
    c.exige("Insert Into Clientes (id, empresaID, nombre) Values (901, 1, 'Con Cotización'), "
            "(902, 1, 'Sin Documentos')");
    c.exige("Insert Into Cotizacion (empresaID, folio, cliente) Values (1, 77, 901)");
    const std::string predeterminado =
        c.valor("Select C.nombre From Configura F, Clientes C Where F.empresaID = 1 and "
                "C.id = F.clienteDefaultRem")
            .get<std::string>();
    auto f = abre();
    auto borra = [&](const QString& nombre) {
        tocaRenglon(*f, "ListaClientes", RolPrimeraLinea, nombre);
        Mensajes::respondeSiguiente(cajaplex::Respuesta::Si);
        toca(*f, "BotonBorrar");
        esperaLeyenda(*f);
        return Mensajes::ultimos().mid(1); // sin la pregunta
    };
    EXPECT_EQ(borra("Con Cotización"), QStringList{MensajeClienteConTransacciones});
    EXPECT_EQ(borra(QString::fromStdString(predeterminado)),
              QStringList{MensajeClientePredeterminado});
    EXPECT_TRUE(borra("Sin Documentos").isEmpty());
    EXPECT_EQ(valor("Select count(*) From Clientes Where id in (901, 902)"), "1");
    EXPECT_EQ(valor("Select count(*) From AuditoriasSistema Where tipoAuditoria = "
                    "'Cancelación' and comentarios = 'Cliente 902'"),
              "1");
}

TEST_F(ClientesTest, SinElDerechoClienteNuevoNoHayAltaYLaBusquedaVaAlServicio) {
    c.exige("Update PermisosSistema Set acceso = 1 Where perfilID = 2 and menú = 'Clientes'");
    c.exige("Update PerfilesUsuariosVentas Set clienteNuevo = 0 Where perfilID = 2");
    c.exige("Insert Into Clientes (empresaID, nombre, rfc, telefono) Values (1, 'Tlapalería "
            "Ruiz', 'RUIZ800101AB1', '3331112233')");
    auto f = abre(QStringLiteral("cajero"));
    EXPECT_FALSE(control<QPushButton>(*f, "BotonNuevo")->isEnabled());
    for (const char* busqueda : {"tlapal", "ruiz800101", "3331112"}) {
        enter(*f, "BuscarCliente", QString::fromUtf8(busqueda));
        EXPECT_EQ(renglones(*f, "ListaClientes", RolPrimeraLinea), QStringList{"Tlapalería Ruiz"})
            << busqueda;
    }
    enter(*f, "BuscarCliente", QStringLiteral("'; delete from Clientes; --"));
    EXPECT_TRUE(renglones(*f, "ListaClientes", RolPrimeraLinea).isEmpty());
    EXPECT_NE(valor("Select count(*) From Clientes Where empresaID = 1"), "0");
}

} // namespace
} // namespace cajaplex
