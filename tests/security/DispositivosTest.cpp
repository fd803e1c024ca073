// "Dispositivos": las estaciones autorizadas y su revocación, contra el servicio real.
#include <memory>

#include <gtest/gtest.h>

#include <QTableView>

#include "datos/ModuloDatos.h"
#include "pantallas/Mensajes.h"
#include "pantallas/RegistroModulos.h"
#include "security/Dispositivos.h"
#include "security/ModulosSeguridad.h"
#include "tests/fixtures/Toques.h"

namespace cajaplex {
namespace {

using namespace prueba;

class DispositivosTest : public ConPantallas {
protected:
    // Credenciales de estación emitidas por el administrador, como al instalar una caja.
    Cliente instala(const std::string& dispositivo, const std::string& descripcion) {
        const prueba::Respuesta r =
            servicio.clienteCon("admin", "admin")
                .post(kRutaBase + "estaciones",
                      Json{{"dispositivoID", dispositivo}, {"descripcion", descripcion}}.dump());
        EXPECT_TRUE(es(r, 200));
        return servicio.clienteCon(r.cuerpo.value("usuario", ""), r.cuerpo.value("contrasena", ""));
    }

    std::unique_ptr<TDispositivosF> abre() {
        sesion_ = sesion(QStringLiteral("admin"), 1);
        auto f = std::make_unique<TDispositivosF>(sesion_);
        f->resize(1024, 600);
        f->show();
        esperaLeyenda(*f);
        return f;
    }

    // Las celdas de una columna, en orden.
    static QStringList columna(const QWidget& f, int c) {
        const auto* modelo = control<QTableView>(f, "ListaDispositivos")->model();
        QStringList celdas;
        for (int i = 0; i < modelo->rowCount(); ++i)
            celdas << modelo->index(i, c).data().toString();
        return celdas;
    }

    static void elige(const QWidget& f, const QString& dispositivo) {
        const int renglon = static_cast<int>(columna(f, 1).indexOf(dispositivo));
        ASSERT_GE(renglon, 0) << dispositivo.toStdString();
        control<QTableView>(f, "ListaDispositivos")->selectRow(renglon);
    }

    Sesion sesion_;
};

TEST_F(DispositivosTest, ListaLasEstacionesConSuFechaDeEmisionYSoloParaAdministradores) {
    instala("CAJA-A", "Caja de la entrada");
    instala("CAJA-B", "Barra");
    c.exige("Insert Into DispositivosRED (ReferenciaID, descripcion) Values ('VIEJA', 'Alta a "
            "mano')");
    auto f = abre();
    EXPECT_EQ(columna(*f, 0), (QStringList{"Alta a mano", "Barra", "Caja de la entrada"}));
    EXPECT_EQ(columna(*f, 1), (QStringList{"VIEJA", "CAJA-B", "CAJA-A"}));
    const QStringList emitidas = columna(*f, 2);
    EXPECT_TRUE(emitidas[0].isEmpty());
    EXPECT_EQ(emitidas[1].size(), 16) << emitidas[1].toStdString(); // dd/MM/yyyy HH:mm
    EXPECT_EQ(rotulo(*f, "PieDispositivos"), QStringLiteral("Número de Registros: 3"));

    registraModulosSeguridad();
    const EntradaMenu* entrada = RegistroModulos::busca(QStringLiteral("Dispositivos"));
    ASSERT_NE(entrada, nullptr);
    EXPECT_EQ(entrada->grupo, QStringLiteral("Usuarios y Bitácoras"));
    EXPECT_TRUE(entrada->visible(sesion(QStringLiteral("admin"), 1)));
    Sesion cajero = sesion(QStringLiteral("cajero"), 1);
    int64_t perfil = 0;
    cajero.derechos = leeDerechosUsuario(ModuloDeDatos.ConexionBD, cajero.UsuarioID, perfil);
    EXPECT_FALSE(entrada->visible(cajero));
}

TEST_F(DispositivosTest, RevocarPreguntaBorraAnotaYLaEstacionQuedaFuera) {
    Cliente entrada = instala("CAJA-A", "Caja de la entrada");
    Cliente barra = instala("CAJA-B", "Barra");
    auto f = abre();

    toca(*f, "BotonRevocar");
    EXPECT_EQ(Mensajes::ultimos(), QStringList{"Seleccione un Dispositivo"});

    // Cancelar no toca nada.
    elige(*f, QStringLiteral("CAJA-B"));
    Mensajes::respondeSiguiente(cajaplex::Respuesta::Cancelar);
    toca(*f, "BotonRevocar");
    EXPECT_EQ(Mensajes::ultimos().size(), 1);
    EXPECT_EQ(c.cuenta("DispositivosRED"), 2);
    EXPECT_TRUE(es(barra.ejecuta("Select 1"), 200));

    Mensajes::respondeSiguiente(cajaplex::Respuesta::Aceptar);
    toca(*f, "BotonRevocar");
    const QStringList mensajes = Mensajes::ultimos();
    ASSERT_EQ(mensajes.size(), 2);
    EXPECT_TRUE(mensajes[0].contains(QStringLiteral("Barra (CAJA-B)")))
        << mensajes[0].toStdString();
    EXPECT_EQ(mensajes[1], QStringLiteral("Dispositivo revocado"));
    EXPECT_EQ(columna(*f, 1), QStringList{"CAJA-A"});
    EXPECT_TRUE(es(barra.ejecuta("Select 1"), 401, "autenticacion"));
    EXPECT_TRUE(es(entrada.ejecuta("Select 1"), 200));
    EXPECT_EQ(c.valor("Select tipoAuditoria || '|' || moduloSistema || '|' || datoNuevo || '|' || "
                      "comentarios From AuditoriasSistema Where empresaID = 1"),
              "Eliminación|Seguridad -> Dispositivos|CAJA-B|Barra");
}

} // namespace
} // namespace cajaplex
