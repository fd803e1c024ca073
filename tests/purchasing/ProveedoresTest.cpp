// El catálogo de proveedores contra el servicio real de demostración: los rechazos en su orden sin
// borrar lo tecleado, el borrado rechazado con documentos de compras y el derecho de alta.
#include <gtest/gtest.h>

#include <memory>

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QStackedWidget>

#include "datos/ModuloDatos.h"
#include "pantallas/Mensajes.h"
#include "pantallas/RolesRenglon.h"
#include "purchasing/CatalogoProveedores.h"
#include "purchasing/Proveedores.h"
#include "sales/CatalogoClientes.h"
#include "tests/fixtures/Toques.h"

namespace cajaplex {
namespace {

using namespace prueba;

class ProveedoresTest : public ConPantallas {
protected:
    std::unique_ptr<TProveedoresF> abre(const QString& usuario = QStringLiteral("admin")) {
        sesion_ = sesion(usuario, 1);
        // Los derechos del perfil, como los lee el inicio de sesión.
        sesion_.derechos =
            leeDerechosUsuario(ModuloDeDatos.ConexionBD, sesion_.UsuarioID, sesion_.perfilID);
        auto f = std::make_unique<TProveedoresF>(sesion_);
        f->resize(1200, 800);
        f->show();
        esperaLeyenda(*f);
        Mensajes::ultimos();
        return f;
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

TEST_F(ProveedoresTest, RechazosEnOrdenDejanLoTecleadoYElAltaQuedaConSuBitacora) {
    auto f = abre();
    toca(*f, "BotonNuevo");
    ASSERT_EQ(control<QStackedWidget>(*f, "Paginas")->currentWidget()->objectName(),
              "ProveedoresEdita");
    escribe(*f, "rfc", "ABC010230AB1");
    escribe(*f, "email", "sin-arroba");
    escribe(*f, "contacto", "Rosa Íñiguez");
    escribe(*f, "limiteCredito", "-5");
    EXPECT_EQ(almacena(*f), QStringList{MensajeProveedorSinNombre});
    escribe(*f, "nombre", "Granos O'Brien");
    EXPECT_EQ(almacena(*f), QStringList{MensajeRfcInvalido});
    escribe(*f, "rfc", "abc-010228-ab1");
    EXPECT_EQ(almacena(*f), QStringList{MensajeCorreoInvalido});
    escribe(*f, "email", "ventas@obrien.mx");
    EXPECT_EQ(almacena(*f), QStringList{MensajeLimiteNegativo});
    EXPECT_EQ(control<QLineEdit>(*f, "contacto")->text(), "Rosa Íñiguez");
    escribe(*f, "limiteCredito", "2500");
    EXPECT_TRUE(almacena(*f).isEmpty());

    EXPECT_EQ(valor("Select rfc || '|' || email || '|' || contacto || '|' || limiteCredito From "
                    "Proveedores Where empresaID = 1 and nombre = 'Granos O''Brien'"),
              "\"ABC010228AB1|ventas@obrien.mx|Rosa Íñiguez|2500.0\"");
    EXPECT_EQ(valor("Select count(*) From AuditoriasSistema Where moduloSistema = "
                    "'Catálogos -> Proveedores' and tipoAuditoria = 'Inserción' and "
                    "datoNuevo like 'Granos O''Brien%'"),
              "1");
    EXPECT_TRUE(renglones(*f, "ListaProveedores", RolPrimeraLinea).contains("Granos O'Brien"));

    // El cambio escribe sobre el mismo renglón y anota lo anterior.
    tocaRenglon(*f, "ListaProveedores", RolPrimeraLinea, "Granos O'Brien");
    toca(*f, "BotonModificar");
    escribe(*f, "telefono", "3312345678");
    escribe(*f, "diasCredito", "-5");
    EXPECT_EQ(almacena(*f), QStringList{MensajeDiasCreditoNegativos});
    EXPECT_EQ(control<QLineEdit>(*f, "telefono")->text(), "3312345678");
    escribe(*f, "diasCredito", "45");
    auto* iva = control<QComboBox>(*f, "desglosaRM");
    iva->setCurrentIndex(iva->findText(QStringLiteral("Costos con IVA Incluido")));
    EXPECT_TRUE(almacena(*f).isEmpty());
    EXPECT_EQ(valor("Select count(*) || '|' || max(telefono) || '|' || max(diasCredito) || '|' || "
                    "max(desglosaRM) From Proveedores Where nombre = 'Granos O''Brien'"),
              "\"1|3312345678|45|1\"");
    // Al volver a editarlo se ven como se guardaron.
    tocaRenglon(*f, "ListaProveedores", RolPrimeraLinea, "Granos O'Brien");
    toca(*f, "BotonModificar");
    EXPECT_EQ(control<QLineEdit>(*f, "diasCredito")->text(), "45");
    EXPECT_EQ(control<QComboBox>(*f, "desglosaRM")->currentText(), "Costos con IVA Incluido");
    EXPECT_EQ(valor("Select count(*) From AuditoriasSistema Where moduloSistema = "
                    "'Catálogos -> Proveedores' and tipoAuditoria = 'Actualización' and "
                    "datoAnterior like 'Granos O''Brien%'"),
              "1");
}

TEST_F(ProveedoresTest, BorradoRechazadoConCualquierDocumentoDeComprasYPermitidoSinEllos) {
    c.exige("Insert Into Proveedores (id, empresaID, nombre) Values (901, 1, 'Con Orden'), "
            "(902, 1, 'Con Recepción'), (903, 1, 'Con Devolución'), (904, 1, 'Sin Documentos')");
    c.exige("Insert Into Requisicion (empresaID, folio, proveedor, cancelada) Values (1, 501, 901, "
            "1)");
    c.exige("Insert Into OrdenCompra (empresaID, folio, proveedor) Values (1, 501, 902)");
    c.exige("Insert Into DevolucionOrdenCompra (empresaID, folio, proveedor) Values (1, 501, 903)");
    auto f = abre();
    auto borra = [&](const QString& nombre) {
        tocaRenglon(*f, "ListaProveedores", RolPrimeraLinea, nombre);
        Mensajes::respondeSiguiente(cajaplex::Respuesta::Si);
        toca(*f, "BotonBorrar");
        esperaLeyenda(*f);
        return Mensajes::ultimos().mid(1); // sin la pregunta
    };
    // Una orden cancelada también cuenta.
    for (const char* nombre : {"Con Orden", "Con Recepción", "Con Devolución"})
        EXPECT_EQ(borra(QString::fromUtf8(nombre)), QStringList{MensajeProveedorConTransacciones})
            << nombre;
    EXPECT_TRUE(borra(QStringLiteral("Sin Documentos")).isEmpty());
    EXPECT_EQ(valor("Select count(*) From Proveedores Where id between 901 and 904"), "3");
    EXPECT_EQ(valor("Select count(*) From AuditoriasSistema Where tipoAuditoria = "
                    "'Cancelación' and comentarios = 'Proveedor 904'"),
              "1");
}

TEST_F(ProveedoresTest, SinElDerechoProveedorNuevoNoHayAltaYLaBusquedaNoSeInyecta) {
    c.exige("Update PerfilesUsuariosCompras Set ProveedorNuevo = 0 Where perfilID = 2");
    auto f = abre(QStringLiteral("cajero"));
    EXPECT_FALSE(control<QPushButton>(*f, "BotonNuevo")->isEnabled());
    c.exige("Update PerfilesUsuariosCompras Set ProveedorNuevo = 1 Where perfilID = 2");
    auto g = abre(QStringLiteral("cajero"));
    EXPECT_TRUE(control<QPushButton>(*g, "BotonNuevo")->isEnabled());

    for (const char* busqueda : {"limpieza", "plt120717", "raúl", "3145 77"}) {
        enter(*g, "BuscarProveedor", QString::fromUtf8(busqueda));
        EXPECT_EQ(renglones(*g, "ListaProveedores", RolPrimeraLinea),
                  QStringList{"Productos de Limpieza Tapatíos"})
            << busqueda;
    }
    enter(*g, "BuscarProveedor", QStringLiteral("'; delete from Proveedores; --"));
    EXPECT_TRUE(renglones(*g, "ListaProveedores", RolPrimeraLinea).isEmpty());
    EXPECT_EQ(valor("Select count(*) From Proveedores Where empresaID = 1"), "3");
}

} // namespace
} // namespace cajaplex
