// La conexión remota ante fallas: transacciones a medias, respuestas perdidas, servicio caído o
// mudo, credenciales malas.
#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "datos/Consulta.h"
#include "datos/Transaccion.h"
#include "tests/datos/ServicioDatos.h"
#include "tests/fixtures/DatosPrueba.h"

namespace cajaplex {
namespace {

using Reloj = std::chrono::steady_clock;

int escuchaEnLoopback(int& puerto) {
    int s = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in dir{};
    dir.sin_family = AF_INET;
    dir.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t largo = sizeof dir;
    if (bind(s, reinterpret_cast<sockaddr*>(&dir), largo) != 0 || listen(s, 16) != 0 ||
        getsockname(s, reinterpret_cast<sockaddr*>(&dir), &largo) != 0)
        throw std::runtime_error("no se pudo escuchar en loopback");
    puerto = ntohs(dir.sin_port);
    return s;
}

bool enviaTodo(int fd, const char* datos, size_t n) {
    while (n > 0) {
        ssize_t k = send(fd, datos, n, MSG_NOSIGNAL);
        if (k <= 0) return false;
        datos += k;
        n -= static_cast<size_t>(k);
    }
    return true;
}

// Reenvía al servicio por loopback y, `veces` veces, cierra la conexión en lugar de entregar la
// respuesta de una solicitud cuya línea lleva `marca`: el servicio ya la atendió (y confirmó)
// pero la estación no se entera.
class ProxyQueCorta {
public:
    ProxyQueCorta(int destino, std::string marca, int veces = 1)
        : destino_(destino), marca_(std::move(marca)), pendientes_(veces) {
        escucha_ = escuchaEnLoopback(puerto_);
        aceptador_ = std::thread([this] { acepta(); });
    }
    ~ProxyQueCorta() {
        fin_ = true;
        aceptador_.join();
        for (auto& h : hilos_)
            h.join();
        close(escucha_);
    }
    int puerto() const { return puerto_; }
    int cortes() const { return cortes_; }

private:
    void acepta() {
        while (!fin_) {
            pollfd p{escucha_, POLLIN, 0};
            if (poll(&p, 1, 50) <= 0) continue;
            int cliente = accept(escucha_, nullptr, nullptr);
            if (cliente >= 0) hilos_.emplace_back([this, cliente] { atiende(cliente); });
        }
    }

    void atiende(int cliente) {
        int servicio = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in dir{};
        dir.sin_family = AF_INET;
        dir.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        dir.sin_port = htons(static_cast<uint16_t>(destino_));
        bool cortar = false;
        if (connect(servicio, reinterpret_cast<sockaddr*>(&dir), sizeof dir) == 0) {
            char bufer[65536];
            while (!fin_) {
                pollfd p[2] = {{cliente, POLLIN, 0}, {servicio, POLLIN, 0}};
                if (poll(p, 2, 50) <= 0) continue;
                if (p[0].revents) {
                    ssize_t n = recv(cliente, bufer, sizeof bufer, 0);
                    if (n <= 0) break;
                    const std::string trozo(bufer, static_cast<size_t>(n));
                    if (trozo.find(marca_) != std::string::npos && tomaCorte()) cortar = true;
                    if (!enviaTodo(servicio, bufer, static_cast<size_t>(n))) break;
                }
                if (p[1].revents) {
                    ssize_t n = recv(servicio, bufer, sizeof bufer, 0);
                    if (n <= 0) break;
                    if (cortar) {
                        ++cortes_;
                        break;
                    }
                    if (!enviaTodo(cliente, bufer, static_cast<size_t>(n))) break;
                }
            }
        }
        close(servicio);
        close(cliente);
    }

    bool tomaCorte() {
        int quedan = pendientes_.load();
        while (quedan > 0)
            if (pendientes_.compare_exchange_weak(quedan, quedan - 1)) return true;
        return false;
    }

    int destino_;
    std::string marca_;
    int escucha_ = -1;
    int puerto_ = 0;
    std::atomic<bool> fin_{false};
    std::atomic<int> pendientes_;
    std::atomic<int> cortes_{0};
    std::thread aceptador_;
    std::vector<std::thread> hilos_;
};

class ConexionBDTest : public prueba::ConServicio {
protected:
    void SetUp() override {
        prueba::apunta(conexion, servicio);
        datos.empresa(1, "Abarrotes");
        datos.producto(1, "A", 10);
    }

    void porProxy(const ProxyQueCorta& proxy) {
        conexion.configura("127.0.0.1", proxy.puerto(),
                           QString::fromStdString(prueba::kUsuarioPrueba),
                           QString::fromStdString(prueba::kContrasenaPrueba));
    }

    // Venta de 2 piezas de A con el folio de Configura, como lote o dentro de una transacción.
    void agregaVenta(Lote& lote) {
        Consulta folio(conexion, "Select folioRem From Configura Where empresaID = :e");
        folio.parametro("e").entero(1);
        Consulta encabezado(conexion, "Insert Into Remision (empresaID, folio, descontoExistencias)"
                                      " Values (:e, :folio, :descuenta)");
        encabezado.parametro("e").entero(1);
        encabezado.parametro("folio").de(0, "folioRem");
        encabezado.parametro("descuenta").booleano(true);
        Consulta renglon(conexion, "Insert Into RemisionDetalle (id, empresaID, remision, clave, "
                                   "cantidad) Values (:id, :e, :remision, :clave, :cantidad)");
        renglon.parametro("id").de(1, "ultimoId");
        renglon.parametro("e").entero(1);
        renglon.parametro("remision").de(0, "folioRem");
        renglon.parametro("clave").texto("A");
        renglon.parametro("cantidad").real(2);
        lote.agrega(folio);
        lote.agrega(encabezado);
        lote.agrega(renglon);
    }

    void exigeUnaVenta() {
        EXPECT_EQ(c.cuenta("Remision"), 1);
        EXPECT_EQ(c.cuenta("RemisionDetalle"), 1);
        EXPECT_EQ(datos.existencia(1, "A"), 8.0);
        EXPECT_EQ(datos.contador(1, "folioRem"), 2);
    }

    ConexionBD conexion;
};

TEST_F(ConexionBDTest, TransaccionQueFallaAMitadNoDejaNada) {
    Consulta encabezado(conexion, "Insert Into Remision (empresaID, folio, descontoExistencias) "
                                  "Values (1, 1, 1)");
    Consulta renglon(conexion, "Insert Into RemisionDetalle (id, empresaID, remision, clave, "
                               "cantidad) Values (:id, 1, :remision, 'A', 2)");
    try {
        Transaccion t(conexion);
        encabezado.ejecuta(t);
        renglon.parametro("id").entero(encabezado.ultimoId());
        renglon.parametro("remision").entero(1);
        renglon.ejecuta(t);
        renglon.parametro("id").entero(encabezado.ultimoId());
        renglon.parametro("remision").nulo(); // NOT NULL: el segundo renglón falla
        renglon.ejecuta(t);
        t.confirma();
        FAIL() << "el segundo renglón debió fallar";
    } catch (const ErrorServicio& e) {
        EXPECT_EQ(e.codigo(), "restriccion");
    }
    EXPECT_EQ(c.cuenta("Remision"), 0);
    EXPECT_EQ(c.cuenta("RemisionDetalle"), 0);
    EXPECT_EQ(datos.existencia(1, "A"), 10.0);
    EXPECT_EQ(datos.contador(1, "folioRem"), 1);
}

TEST_F(ConexionBDTest, LoteCuyaRespuestaSePierdeSeReintentaConSuClave) {
    ProxyQueCorta proxy(servicio.puerto(), "/lote HTTP/1.1");
    porProxy(proxy);
    Lote lote(conexion);
    agregaVenta(lote);
    const auto resultados = lote.ejecuta();
    EXPECT_EQ(proxy.cortes(), 1);
    ASSERT_EQ(resultados.size(), 3u);
    EXPECT_EQ(resultados[0].campo(0, "FOLIOREM").comoEntero(), 1);
    EXPECT_GT(resultados[1].ultimoId(), 0);
    exigeUnaVenta();

    // Otra vez el mismo lote (la pantalla reintenta): el servicio contesta lo ya hecho.
    EXPECT_EQ(lote.ejecuta()[1].ultimoId(), resultados[1].ultimoId());
    exigeUnaVenta();
}

TEST_F(ConexionBDTest, LoteDentroDeTransaccionYConfirmarPerdidoNoDuplican) {
    ProxyQueCorta proxy(servicio.puerto(), "/confirmar HTTP/1.1");
    porProxy(proxy);
    {
        Transaccion t(conexion);
        Lote lote(conexion);
        agregaVenta(lote);
        lote.ejecuta(t);
        t.confirma();
        EXPECT_FALSE(t.activa());
    }
    EXPECT_EQ(proxy.cortes(), 1);
    exigeUnaVenta();
}

// Lo que una pantalla ve mientras se pregunta otra vez: aquí solo se anota.
struct AvisosDeReintento {
    std::vector<std::string> operaciones;
    std::vector<int> intentos;
    ConexionBD::EsperaReintento espera(bool seguir = true) {
        return [this, seguir](const ReintentoEscritura& r) {
            operaciones.emplace_back(r.operacion);
            intentos.push_back(r.intento);
            EXPECT_GT(r.espera.count(), 0);
            EXPECT_LE(r.espera, ConexionBD::EsperaMaximaReintento);
            EXPECT_FALSE(r.detalle.empty());
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            return seguir;
        };
    }
};

// La respuesta de `confirmar` se pierde dos veces: la estación sigue preguntando con el mismo id
// y la misma clave, el servicio contesta "confirmada" y la venta queda una sola vez, informada
// como guardada (antes: un reintento, falla informada, el usuario guardaba otra vez).
TEST_F(ConexionBDTest, ConfirmarPerdidoDosVecesEsUnaSolaVentaYSeInformaGuardada) {
    ProxyQueCorta proxy(servicio.puerto(), "/confirmar HTTP/1.1", 2);
    porProxy(proxy);
    AvisosDeReintento avisos;
    conexion.esperaReintento(avisos.espera());
    {
        Transaccion t(conexion);
        Consulta encabezado(conexion, "Insert Into Remision (empresaID, folio, "
                                      "descontoExistencias) Values (:e, :folio, :descuenta)");
        encabezado.parametro("e").entero(1);
        encabezado.parametro("folio").entero(1);
        encabezado.parametro("descuenta").booleano(true);
        encabezado.ejecuta(t);
        Consulta renglon(conexion, "Insert Into RemisionDetalle (id, empresaID, remision, clave, "
                                   "cantidad) Values (:id, :e, :remision, :clave, :cantidad)");
        renglon.parametro("id").entero(encabezado.ultimoId());
        renglon.parametro("e").entero(1);
        renglon.parametro("remision").entero(1);
        renglon.parametro("clave").texto("A");
        renglon.parametro("cantidad").real(2);
        renglon.ejecuta(t);
        EXPECT_NO_THROW(t.confirma());
        EXPECT_FALSE(t.activa());
    }
    EXPECT_EQ(proxy.cortes(), 2);
    EXPECT_EQ(avisos.intentos, (std::vector<int>{1, 2}));
    EXPECT_EQ(avisos.operaciones, (std::vector<std::string>{"confirmar", "confirmar"}));
    exigeUnaVenta();
}

// Igual con un lote en su propia transacción: misma clave y mismo cuerpo hasta la respuesta.
TEST_F(ConexionBDTest, LotePerdidoVariasVecesSePreguntaConSuClaveHastaLaRespuesta) {
    ProxyQueCorta proxy(servicio.puerto(), "/lote HTTP/1.1", 3);
    porProxy(proxy);
    AvisosDeReintento avisos;
    conexion.esperaReintento(avisos.espera());
    Lote lote(conexion);
    agregaVenta(lote);
    const auto resultados = lote.ejecuta();
    EXPECT_EQ(proxy.cortes(), 3);
    EXPECT_EQ(avisos.intentos, (std::vector<int>{1, 2, 3}));
    ASSERT_EQ(resultados.size(), 3u);
    EXPECT_GT(resultados[1].ultimoId(), 0);
    exigeUnaVenta();
}

// Sin aviso de la pantalla también sigue preguntando (con retroceso acotado) y avisa por la
// bitácora.
TEST_F(ConexionBDTest, SinAvisoDeLaPantallaTambienSePreguntaHastaLaRespuesta) {
    ProxyQueCorta proxy(servicio.puerto(), "/confirmar HTTP/1.1", 2);
    porProxy(proxy);
    {
        Transaccion t(conexion);
        Lote lote(conexion);
        agregaVenta(lote);
        lote.ejecuta(t);
        t.confirma();
    }
    EXPECT_EQ(proxy.cortes(), 2);
    exigeUnaVenta();
}

// Una respuesta definitiva de que no se confirmó (404: id desconocido) no se pregunta otra vez.
TEST_F(ConexionBDTest, ConfirmarConRespuestaDefinitivaNoSeReintenta) {
    AvisosDeReintento avisos;
    conexion.esperaReintento(avisos.espera());
    try {
        conexion.confirmaTransaccion("no-existe", "clave-de-prueba");
        FAIL() << "el id no existe";
    } catch (const ErrorServicio& e) {
        EXPECT_EQ(e.estadoHttp(), 404);
        EXPECT_EQ(e.codigo(), "transaccion");
    }
    EXPECT_TRUE(avisos.intentos.empty());
}

// La pantalla puede dejar de esperar: entonces no se sabe si se registró (CodigoIncierto), nunca
// "falló".
TEST_F(ConexionBDTest, SiLaPantallaDejaDeEsperarElResultadoEsIncierto) {
    ProxyQueCorta proxy(servicio.puerto(), "/confirmar HTTP/1.1", 5);
    porProxy(proxy);
    AvisosDeReintento avisos;
    conexion.esperaReintento(avisos.espera(false));
    Transaccion t(conexion);
    Lote lote(conexion);
    agregaVenta(lote);
    lote.ejecuta(t);
    try {
        t.confirma();
        FAIL() << "se dejó de esperar";
    } catch (const ErrorServicio& e) {
        EXPECT_EQ(e.codigo(), CodigoIncierto) << e.what();
    }
    EXPECT_EQ(avisos.intentos, std::vector<int>{1});
    // El primer `confirmar` sí llegó: la venta está, una vez.
    exigeUnaVenta();
}

TEST_F(ConexionBDTest, ServicioCaidoFallaProntoConErrorDeConexion) {
    conexion.conecta();
    servicio.detiene();
    const auto inicio = Reloj::now();
    try {
        Transaccion t(conexion);
        FAIL() << "no hay servicio";
    } catch (const ErrorServicio& e) {
        EXPECT_TRUE(e.esDeConexion()) << e.what();
        EXPECT_EQ(e.estadoHttp(), 0);
    }
    Consulta q(conexion, "Select 1 as uno");
    EXPECT_THROW(q.abre(), ErrorServicio);
    EXPECT_LT(Reloj::now() - inicio, ConexionBD::EsperaConexion);
}

TEST_F(ConexionBDTest, ServicioQueNoContestaSeCortaPorTiempo) {
    int puerto = 0;
    const int mudo = escuchaEnLoopback(puerto); // acepta conexiones y nunca contesta
    conexion.configura("127.0.0.1", puerto, "x", "y");
    conexion.tiempos(std::chrono::milliseconds(500), std::chrono::milliseconds(800));
    const auto inicio = Reloj::now();
    Consulta q(conexion, "Select 1 as uno");
    try {
        q.abre();
        ADD_FAILURE() << "nadie contestó";
    } catch (const ErrorServicio& e) {
        EXPECT_TRUE(e.esDeConexion()) << e.what();
    }
    const auto tardo = Reloj::now() - inicio;
    EXPECT_GE(tardo, std::chrono::milliseconds(700));
    EXPECT_LT(tardo, std::chrono::seconds(5));
    close(mudo);
}

// Clave, estado y sentencia del servicio en el único tipo de error.
ErrorServicio errorDe(const std::function<void()>& accion) {
    try {
        accion();
    } catch (const ErrorServicio& e) {
        return e;
    }
    throw std::runtime_error("se esperaba un ErrorServicio");
}

TEST_F(ConexionBDTest, ErroresDelServicioLleganConSuClave) {
    Consulta mala(conexion, "Select nada From TablaQueNoExiste");
    const auto sql = errorDe([&] { mala.abre(); });
    EXPECT_EQ(sql.codigo(), "sql");
    EXPECT_EQ(sql.estadoHttp(), 400);

    Lote lote(conexion);
    agregaVenta(lote);
    lote.agrega(protocolo::Sentencia{"Insert Into RemisionDetalle (id, empresaID, remision) "
                                     "Values (1, 1, null)",
                                     {}});
    const auto restriccion = errorDe([&] { lote.ejecuta(); });
    EXPECT_EQ(restriccion.codigo(), "restriccion");
    EXPECT_EQ(restriccion.estadoHttp(), 409);
    EXPECT_EQ(restriccion.sentencia(), 3u);
    EXPECT_EQ(c.cuenta("Remision"), 0); // el lote se deshizo entero

    conexion.configura("127.0.0.1", servicio.puerto(),
                       QString::fromStdString(prueba::kUsuarioPrueba), "otra");
    const auto credencial = errorDe([&] { conexion.conecta(); });
    EXPECT_EQ(credencial.codigo(), "autenticacion");
    EXPECT_EQ(credencial.estadoHttp(), 401);
}

} // namespace
} // namespace cajaplex
