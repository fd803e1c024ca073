// La escucha de cambios contra el servicio real: despierta en cuanto se confirma una escritura de
// sus tablas (y no por otras ni por lo revertido), avisa cuando el servicio se va, vuelve sola con
// la instancia nueva y se destruye sin esperar la respuesta pendiente.
#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QTest>

#include "datos/EscuchaEventos.h"
#include "datos/ModuloDatos.h"
#include "tests/fixtures/PruebaPantallas.h"

namespace cajaplex {
namespace {

using namespace prueba;

class EscuchaEventosTest : public ConPantallas {
protected:
    // Anota cada aviso en el orden en que llega al hilo de la prueba.
    void anota(EscuchaEventos& e) {
        QObject::connect(&e, &EscuchaEventos::enVivo, [this] { avisos << "enVivo"; });
        QObject::connect(&e, &EscuchaEventos::reiniciado, [this] { avisos << "reiniciado"; });
        QObject::connect(&e, &EscuchaEventos::sinEventos, [this] { avisos << "sinEventos"; });
        QObject::connect(&e, &EscuchaEventos::cambiaron, [this](const QStringList& tablas) {
            avisos << QStringLiteral("cambiaron:") + tablas.join(QLatin1Char(','));
        });
    }
    bool llego(const QString& aviso, int ms = 3000) {
        return esperaHasta([&] { return avisos.contains(aviso); }, ms);
    }
    void abreComanda() {
        c.exige("Insert into Comanda (empresaID, folio, nodoComida, vendedor, cancelada, "
                "usuarioID, numeroPersonas) Values (2, -1, 1, 3, 0, 3, 2)");
    }

    QStringList avisos;
};

TEST_F(EscuchaEventosTest, DespiertaConLoConfirmadoDeSusTablasYSeDetieneSinEsperar) {
    auto e = std::make_unique<EscuchaEventos>(ModuloDeDatos.ConexionBD,
                                              QStringList{"Comanda", "ComandaDetalle"});
    anota(*e);
    e->inicia();
    // La primera respuesta trae todas: la pantalla pudo perderse algo antes de escuchar.
    ASSERT_TRUE(llego("cambiaron:Comanda,ComandaDetalle"));
    EXPECT_EQ(avisos, (QStringList{"enVivo", "cambiaron:Comanda,ComandaDetalle"}));
    EXPECT_TRUE(e->vivo());
    avisos.clear();

    // Otra tabla y una escritura revertida no la despiertan.
    c.exige("Update Productos Set existencia = existencia + 1 Where id = 101");
    const std::string id = c.comienzaTransaccion();
    c.exige("Insert into Comanda (empresaID, folio, nodoComida, vendedor, cancelada) "
            "Values (2, -1, 1, 3, 0)",
            {}, enTransaccion(id));
    ASSERT_TRUE(es(c.revierte(id), 200));
    QTest::qWait(300);
    EXPECT_TRUE(avisos.isEmpty()) << avisos.join(' ').toStdString();

    QElapsedTimer reloj;
    reloj.start();
    abreComanda();
    ASSERT_TRUE(llego("cambiaron:Comanda", 1000));
    EXPECT_LT(reloj.elapsed(), 1000);
    EXPECT_EQ(avisos, QStringList{"cambiaron:Comanda"});

    // Destruirla corta la espera de 25 s que el servicio tiene abierta.
    reloj.restart();
    e.reset();
    EXPECT_LT(reloj.elapsed(), 1000);
}

TEST_F(EscuchaEventosTest, SinServicioAvisaYAlVolverSigueConLaInstanciaNueva) {
    EscuchaEventos e(ModuloDeDatos.ConexionBD, {"Comanda"});
    anota(e);
    e.inicia();
    ASSERT_TRUE(llego("enVivo"));
    avisos.clear();

    servicio.detiene();
    ASSERT_TRUE(llego("sinEventos"));
    EXPECT_FALSE(e.vivo());

    // El servicio vuelve en otro puerto: la escucha toma la dirección nueva de la conexión.
    servicio.reinicia();
    c = servicio.cliente();
    ModuloDeDatos.ConexionBD.configura(QStringLiteral("127.0.0.1"), servicio.puerto(),
                                       QString::fromStdString(kUsuarioDemo),
                                       QString::fromStdString(kUsuarioDemo));
    ASSERT_TRUE(llego("reiniciado", 10000));
    EXPECT_EQ(avisos, (QStringList{"sinEventos", "enVivo", "reiniciado"}));
    EXPECT_TRUE(e.vivo());

    avisos.clear();
    abreComanda();
    EXPECT_TRUE(llego("cambiaron:Comanda", 1000)) << avisos.join(' ').toStdString();
}

TEST_F(EscuchaEventosTest, UnaTablaQueElServicioNoConoceEsSinEventos) {
    EscuchaEventos e(ModuloDeDatos.ConexionBD, {"NoExiste"});
    anota(e);
    e.inicia();
    ASSERT_TRUE(llego("sinEventos"));
    QTest::qWait(600);
    // Sigue intentando en segundo plano, pero no repite el aviso.
    EXPECT_EQ(avisos, QStringList{"sinEventos"});
}

} // namespace
} // namespace cajaplex
