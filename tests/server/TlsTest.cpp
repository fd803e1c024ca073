// La estación habla con el servicio por HTTPS y acepta solo el certificado fijado al instalarla:
// otro se rechaza en el saludo, antes de enviar una sola solicitud.
#include <atomic>
#include <filesystem>
#include <thread>

#include <QString>

#include "datos/ConexionBD.h"
#include "tests/fixtures/ServicioPrueba.h"

namespace cajaplex {
namespace {

using namespace prueba;
namespace fs = std::filesystem;

const std::vector<std::string> kTls = {"--tls"};

// Una estación apuntada al servicio con HTTPS, el usuario dado y la huella fijada.
void apunta(ConexionBD& conexion, const ServicioPrueba& servicio, const std::string& huella,
            const std::string& usuario = kUsuarioDemo,
            const std::string& contrasena = kUsuarioDemo) {
    conexion.configura(QStringLiteral("127.0.0.1"), servicio.puerto(),
                       QString::fromStdString(usuario), QString::fromStdString(contrasena),
                       QStringLiteral("https"));
    conexion.fijaHuella(QString::fromStdString(huella));
}

protocolo::Sentencia alta(const std::string& referencia) {
    return {"Insert Into DispositivosRED (ReferenciaID) Values (:r)",
            {{"r", protocolo::Tipo::Texto, referencia, std::nullopt}}};
}

TEST(Tls, UnaEstacionInstaladaHablaConElServicioCifradoConSusCredenciales) {
    ServicioPrueba servicio(true, kTls);
    ASSERT_TRUE(servicio.tls());
    ASSERT_EQ(servicio.huella().size(), 95u) << servicio.huella();
    // Lo que ve la estación antes de instalarse es la huella que imprimió el servicio.
    EXPECT_EQ(ConexionBD::huellaServicio(QStringLiteral("127.0.0.1"), servicio.puerto()),
              QString::fromStdString(servicio.huella()));

    ConexionBD administrador;
    apunta(administrador, servicio, servicio.huella(), "admin", "admin");
    const CredencialesEstacion cr = administrador.solicitaCredencialesEstacion(
        QStringLiteral("CAJA-TLS"), QStringLiteral("Caja cifrada"));
    ConexionBD estacion;
    // Con la huella escrita en minúsculas y sin separadores también se reconoce.
    QString huella = QString::fromStdString(servicio.huella()).toLower();
    huella.remove(QLatin1Char(':'));
    apunta(estacion, servicio, huella.toStdString(), cr.usuario.toStdString(),
           cr.contrasena.toStdString());
    EXPECT_EQ(estacion.ejecuta(protocolo::Sentencia{"Select descripcion From DispositivosRED", {}})
                  .filas.at(0)
                  .at(0),
              protocolo::Valor(std::string("Caja cifrada")));

    // Reiniciado, el servicio reusa su certificado: la estación sigue.
    const std::string antes = servicio.huella();
    servicio.reinicia();
    EXPECT_EQ(servicio.huella(), antes);
    apunta(estacion, servicio, huella.toStdString(), cr.usuario.toStdString(),
           cr.contrasena.toStdString());
    EXPECT_NO_THROW(estacion.conecta());
}

TEST(Tls, OtroCertificadoSeRechazaAntesDeEnviarNada) {
    ServicioPrueba fijado(true, kTls);
    ServicioPrueba impostor(true, kTls);
    ASSERT_NE(fijado.huella(), impostor.huella());

    ConexionBD estacion;
    apunta(estacion, impostor, fijado.huella());
    try {
        estacion.ejecuta(alta("NO-DEBE-LLEGAR"));
        FAIL() << "aceptó otro certificado";
    } catch (const ErrorServicio& e) {
        EXPECT_EQ(e.codigo(), CodigoCertificado);
        EXPECT_EQ(e.mensaje(), QString::fromUtf8(MensajeCertificadoCambio));
    }
    EXPECT_EQ(impostor.cliente().cuenta("DispositivosRED"), 0);

    // Un servidor HTTPS cualquiera con ese certificado cuenta lo que le llega: nada, ni siquiera
    // la solicitud de una escritura que se reintentaría.
    const fs::path tls = fs::path(impostor.carpeta()) / "tls";
    httplib::SSLServer espia((tls / "certificado.pem").c_str(), (tls / "clave.pem").c_str());
    ASSERT_TRUE(espia.is_valid());
    std::atomic<int> recibidas{0};
    espia.Post(".*", [&](const httplib::Request&, httplib::Response& res) {
        ++recibidas;
        res.set_content("{}", "application/json");
    });
    const int puerto = espia.bind_to_any_port("127.0.0.1");
    std::thread hilo([&] { espia.listen_after_bind(); });
    estacion.configura(QStringLiteral("127.0.0.1"), puerto, QStringLiteral("x"),
                       QStringLiteral("y"), QStringLiteral("https"));
    estacion.fijaHuella(QString::fromStdString(fijado.huella()));
    EXPECT_THROW(estacion.ejecutaLote({alta("TAMPOCO")}, {}, "clave-1"), ErrorServicio);
    // Con la huella correcta el mismo espía sí recibe: el conteo de arriba no es un cero fijo.
    estacion.fijaHuella(QString::fromStdString(impostor.huella()));
    EXPECT_THROW(estacion.ejecuta(alta("ESTA-SI-LLEGA")), ErrorServicio);
    espia.stop();
    hilo.join();
    EXPECT_EQ(recibidas.load(), 1);
}

TEST(Tls, ElPuertoCifradoNoAtiendeHttpYFueraDeEstaMaquinaSiempreCifra) {
    ServicioPrueba servicio(true, kTls);
    Cliente plano("http://127.0.0.1:" + std::to_string(servicio.puerto()), kUsuarioDemo,
                  kUsuarioDemo);
    const Respuesta r = plano.get(kRutaBase + "salud");
    EXPECT_NE(r.estado, 200) << r;
    EXPECT_TRUE(es(servicio.cliente().get(kRutaBase + "salud"), 200));
    // Sin cifrado, la estación no confunde un servicio HTTP con uno HTTPS.
    ServicioPrueba sinTls(true);
    EXPECT_FALSE(sinTls.tls());
    EXPECT_TRUE(ConexionBD::huellaServicio(QStringLiteral("127.0.0.1"), sinTls.puerto()).isEmpty());

    // En cualquier dirección que no sea de esta máquina el servicio cifra aunque no se pida.
    ServicioPrueba red(true, {"--direccion", "0.0.0.0"});
    EXPECT_TRUE(red.tls());
    EXPECT_TRUE(es(red.cliente().get(kRutaBase + "salud"), 200));
}

TEST(Tls, ConCertificadoYClavePropiosImprimeSuHuella) {
    ServicioPrueba origen(true, kTls);
    const fs::path tls = fs::path(origen.carpeta()) / "tls";
    EXPECT_EQ(fs::status(tls / "clave.pem").permissions() & fs::perms::all,
              fs::perms::owner_read | fs::perms::owner_write);
    ServicioPrueba propio(true, {"--certificado", (tls / "certificado.pem").string(), "--clave",
                                 (tls / "clave.pem").string()});
    EXPECT_TRUE(propio.tls());
    EXPECT_EQ(propio.huella(), origen.huella());
    EXPECT_FALSE(fs::exists(fs::path(propio.carpeta()) / "tls"));
}

} // namespace
} // namespace cajaplex
