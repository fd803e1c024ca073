// Las altas compartidas del módulo de datos contra el esquema real: cada una liga todas sus
// columnas por nombre, el renglón guardado trae lo asignado y el servicio mueve folios y
// existencias como corresponde a cada tipo de documento.
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <QByteArray>
#include <QDateTime>
#include <QHash>

#include "datos/ModuloDatos.h"
#include "tests/datos/ServicioDatos.h"
#include "tests/fixtures/DatosPrueba.h"

namespace cajaplex {
namespace {

using protocolo::Sentencia;
using protocolo::Tipo;

// Tipo de cada columna que ligan las altas, según el vocabulario del esquema.
Tipo tipoDeColumna(const QString& marca) {
    static const std::map<std::string, Tipo> tipos = [] {
        std::map<std::string, Tipo> t;
        const std::pair<Tipo, const char*> listas[] = {
            {Tipo::Entero, "empresaid folio usuarioid vendedor cliente moneda femetodoid "
                           "calificacion pagada plazopago id remision producto posicion plista "
                           "mespagado cotizacion vigencia idremision folioremision proveedor "
                           "consolidada requisicion ordencompra devolucionordencompra"},
            {Tipo::Real, "tipocambio totalenvio subtotalremision ivaremision iepsremision "
                         "descuento totalremision costoremision puntosremision saldopendiente "
                         "montopagado totalpropina cantidad precio importe pcompra "
                         "porcentajeimpuesto ieps utilizados subtotalcotizacion iepscotizacion "
                         "ivacotizacion totalcotizacion subtotalrequisicion ivarequisicion "
                         "totalrequisicion costo subtotalordencompra ivaordencompra "
                         "totalordencompra"},
            {Tipo::Texto, "observaciones clave tipoauditoria datoanterior datonuevo comentarios "
                          "modulosistema"},
            {Tipo::Booleano, "cancelada descontoexistencias pagomixto entregadomicilio enviada "
                             "entregada esajusteentrada"},
            {Tipo::Fecha, "fecha fechacaptura fechapago"},
            {Tipo::Blob, "nota"}};
        for (const auto& [tipo, nombres] : listas) {
            std::istringstream palabras(nombres);
            for (std::string n; palabras >> n;)
                t[n] = tipo;
        }
        return t;
    }();
    auto it = tipos.find(marca.toLower().toStdString());
    if (it == tipos.end()) throw std::runtime_error("columna desconocida: " + marca.toStdString());
    return it->second;
}

// Asigna a las marcas que siguen sin valor una muestra del tipo de su columna, distinta por
// columna para que dos columnas cruzadas no pasen inadvertidas.
void completa(Consulta& q, const QString& excepto = {}) {
    for (const QString& n : q.marcasSinAsignar()) {
        if (n == excepto) continue;
        const int semilla = static_cast<int>(qHash(n.toLower(), 0) % 900);
        auto& par = q.parametro(n);
        switch (tipoDeColumna(n)) {
        case Tipo::Entero:
            par.entero(100 + semilla);
            break;
        case Tipo::Real:
            par.real(100 + semilla + 0.25);
            break;
        case Tipo::Booleano:
            par.booleano(semilla % 2 == 0);
            break;
        case Tipo::Fecha:
            par.fecha(QDateTime(QDate(2024, 3, 1), QTime(8, 0)).addSecs(semilla));
            break;
        case Tipo::Blob:
            par.blob(QByteArray("\0nota\xff", 6) + n.toUtf8());
            break;
        default:
            par.texto("muestra de " + n + " con 'apóstrofo'");
        }
    }
}

// Cada parámetro con valor propio se lee igual en la columna de su mismo nombre.
void verifica(const Sentencia& s, const Registro& r) {
    for (const auto& p : s.parametros) {
        if (p.de) continue;
        const Campo c = r.campo(QString::fromStdString(p.nombre));
        SCOPED_TRACE(p.nombre);
        if (protocolo::esNulo(p.valor)) {
            EXPECT_TRUE(c.esNulo());
        } else if (auto* i = std::get_if<int64_t>(&p.valor)) {
            EXPECT_EQ(c.comoEntero(), *i);
        } else if (auto* d = std::get_if<double>(&p.valor)) {
            EXPECT_EQ(c.comoReal(), *d);
        } else if (auto* b = std::get_if<protocolo::Bytes>(&p.valor)) {
            EXPECT_EQ(c.comoBlob().toStdString(), b->datos);
        } else {
            EXPECT_EQ(c.comoTexto().toStdString(), std::get<std::string>(p.valor));
        }
    }
}

class ModuloDatosTest : public prueba::ConServicio {
protected:
    void SetUp() override {
        // El módulo es global: ninguna prueba depende de lo que otra dejó asignado.
        M.limpiaParametros();
        prueba::apunta(M.ConexionBD, servicio);
        datos.empresa(1, "Abarrotes");
        datos.producto(1, "A", 10);
        datos.producto(1, "B", 5);
        c.exige("Insert Into Clientes (id, empresaID, nombre, puntos) Values (7, 1, 'Ana', 1)");
    }

    Registros lee(const QString& desde) {
        Consulta q(M.ConexionBD, "Select * From " + desde);
        q.abre();
        return q.registros();
    }

    void TearDown() override { M.limpiaParametros(); }

    // Completa y agrega al lote (que olvida los valores); devuelve lo que viajó para revisarlo
    // después.
    Sentencia agrega(Lote& lote, Consulta& q) {
        completa(q);
        Sentencia viaja = q.sentencia();
        lote.agrega(q);
        return viaja;
    }

    // Completa y ejecuta en la transacción; devuelve lo que viajó.
    Sentencia ejecuta(Transaccion& t, Consulta& q) {
        completa(q);
        Sentencia viaja = q.sentencia();
        q.ejecuta(t);
        return viaja;
    }

    // Lote que lee los folios de la empresa como sentencia 0.
    Lote loteConFolios() {
        Lote lote(M.ConexionBD);
        M.Configuracion.parametro("EMPRESAID").entero(1);
        lote.agrega(M.Configuracion);
        return lote;
    }

    // Encabezado con el folio de `contador` y renglones de A y B (id = ID del encabezado; la
    // liga, si la hay, el folio); revisa lo guardado.
    void documento(Consulta& encabezado, Consulta& detalle, const QString& tabla,
                   const QString& contador, const QString& liga) {
        Lote lote = loteConFolios();
        encabezado.parametro("empresaID").entero(1);
        encabezado.parametro("folio").de(0, contador);
        encabezado.parametro("cancelada").booleano(false);
        const Sentencia alta = agrega(lote, encabezado);
        std::vector<Sentencia> renglones;
        for (const auto& [clave, posicion] : {std::pair{"A", 1}, std::pair{"B", 2}}) {
            detalle.parametro("id").de(1, "ultimoId");
            detalle.parametro("empresaID").entero(1);
            detalle.parametro("clave").texto(clave);
            detalle.parametro("posicion").entero(posicion);
            detalle.parametro("cantidad").real(3);
            if (!liga.isEmpty()) detalle.parametro(liga).de(0, contador);
            renglones.push_back(agrega(lote, detalle));
        }
        const int64_t id = lote.ejecuta()[1].ultimoId();

        const auto guardado = lee(tabla + " Where empresaID = 1");
        ASSERT_EQ(guardado.numeroRegistros(), 1);
        verifica(alta, guardado.registro(0));
        EXPECT_EQ(guardado.campo(0, "ID").comoEntero(), id);
        EXPECT_EQ(guardado.campo(0, "Folio").comoEntero(), 1);
        const auto lineas =
            lee(tabla + "Detalle Where empresaID = 1 and id = " + QString::number(id) +
                " Order by posicion");
        ASSERT_EQ(lineas.numeroRegistros(), 2);
        for (size_t i = 0; i < 2; ++i)
            verifica(renglones[i], lineas.registro(i));
        if (!liga.isEmpty()) {
            EXPECT_EQ(lineas.campo(1, liga).comoEntero(), 1);
        }
        EXPECT_EQ(datos.contador(1, contador.toStdString()), 2);
    }

    TModuloDeDatos& M = ModuloDeDatos;
};

TEST_F(ModuloDatosTest, VentaDeContadoEnUnLote) {
    M.Remision.parametro("descontoExistencias").booleano(true);
    documento(M.Remision, M.RemisionDetalle, "Remision", "folioRem", "remision");
    EXPECT_EQ(datos.existencia(1, "A"), 7.0);
    EXPECT_EQ(datos.existencia(1, "B"), 2.0);

    // La otra copia del renglón, los pagos, los puntos y la bitácora de una segunda venta: cada
    // documento asigna todo lo suyo, nada se hereda del anterior.
    EXPECT_EQ(M.Remision.marcasSinAsignar().size(), M.Remision.marcas().size());
    Lote lote = loteConFolios();
    M.Remision.parametro("empresaID").entero(1);
    M.Remision.parametro("folio").de(0, "folioRem");
    M.Remision.parametro("cancelada").booleano(false);
    M.Remision.parametro("descontoExistencias").booleano(false);
    agrega(lote, M.Remision);
    M.RemisionDetalle2.parametro("id").de(1, "ultimoId");
    M.RemisionDetalle2.parametro("remision").de(0, "folioRem");
    M.RemisionDetalle2.parametro("empresaID").entero(1);
    M.RemisionDetalle2.parametro("clave").texto("A");
    M.RemisionDetalle2.parametro("nota").nulo();
    const Sentencia renglon = agrega(lote, M.RemisionDetalle2);
    M.RemisionPagos.parametro("remision").de(0, "folioRem");
    M.RemisionPagos.parametro("empresaID").entero(1);
    const Sentencia pago = agrega(lote, M.RemisionPagos);
    Consulta puntos(M.ConexionBD, "Update Clientes Set Puntos = Puntos + :puntos "
                                  "Where empresaID = 1 and id = :cliente");
    puntos.parametro("puntos").real(2.5);
    puntos.parametro("cliente").entero(7);
    lote.agrega(puntos);
    M.AuditoriasSistema.parametro("empresaID").entero(1);
    M.AuditoriasSistema.parametro("tipoAuditoria").texto("Inserción");
    const Sentencia auditoria = agrega(lote, M.AuditoriasSistema);
    lote.ejecuta();

    verifica(renglon, lee("RemisionDetalle Where remision = 2").registro(0));
    verifica(pago, lee("RemisionPagos Where remision = 2").registro(0));
    const auto bitacora = lee("AuditoriasSistema");
    verifica(auditoria, bitacora.registro(0));
    EXPECT_TRUE(bitacora.campo(0, "fechaOperacion").comoFecha().isValid());
    EXPECT_EQ(c.valor("Select puntos From Clientes Where id = 7").get<double>(), 3.5);
    EXPECT_EQ(datos.contador(1, "folioRem"), 3);
}

TEST_F(ModuloDatosTest, VentaACreditoConAnticiposPorAmbasCopiasDelAltaDePago) {
    Transaccion t(M.ConexionBD);
    M.Configuracion.parametro("empresaID").entero(1);
    M.Configuracion.abre(t);
    const int64_t folio = M.Configuracion.campo("FolioRem").comoEntero();
    const int64_t folioPago = M.Configuracion.campo("folioPagosRemision").comoEntero();
    M.Remision.parametro("empresaID").entero(1);
    M.Remision.parametro("folio").entero(folio);
    M.Remision.parametro("fechaPago").nulo();
    M.Remision.parametro("descontoExistencias").booleano(true);
    const Sentencia encabezado = ejecuta(t, M.Remision);

    std::vector<Sentencia> pagos;
    for (Consulta* q : {&M.RegistraPago, &M.Clientes}) {
        q->parametro("empresaID").entero(1);
        q->parametro("folio").entero(folioPago);
        q->parametro("idRemision").entero(M.Remision.ultimoId());
        q->parametro("folioRemision").entero(folio);
        pagos.push_back(ejecuta(t, *q));
    }
    t.confirma();

    verifica(encabezado, lee("Remision").registro(0));
    const auto abonos = lee("PagosRemision Order by ID");
    ASSERT_EQ(abonos.numeroRegistros(), 2);
    for (size_t i = 0; i < 2; ++i) {
        verifica(pagos[i], abonos.registro(i));
        EXPECT_EQ(abonos.campo(i, "descripcion").comoTexto(), "Pago a remisión 1");
        EXPECT_EQ(abonos.campo(i, "importeAplicado").comoReal(),
                  abonos.campo(i, "importe").comoReal());
        EXPECT_EQ(abonos.campo(i, "factorAplicado").comoReal(), 1.0);
    }
    EXPECT_EQ(datos.contador(1, "folioPagosRemision"), 2);
}

// Una venta cuyo encabezado olvidó descontoExistencias: antes viajaba como NULL y la venta se
// guardaba sin mover existencias. Ahora la estación la rechaza sin mandarla (el error es de
// programación, no de conexión ni del servicio) y no se guarda nada.
TEST_F(ModuloDatosTest, VentaConUnaMarcaSinAsignarSeRechazaYNoSeGuardaNada) {
    // Directa, dentro de una transacción.
    {
        Transaccion t(M.ConexionBD);
        M.Remision.parametro("empresaID").entero(1);
        M.Remision.parametro("folio").entero(1);
        M.Remision.parametro("cancelada").booleano(false);
        completa(M.Remision, "descontoExistencias");
        EXPECT_EQ(M.Remision.marcasSinAsignar(), QStringList{"descontoExistencias"});
        try {
            M.Remision.ejecuta(t);
            FAIL() << "descontoExistencias no se asignó";
        } catch (const ErrorServicio& e) {
            EXPECT_EQ(e.codigo(), CodigoProgramacion);
            EXPECT_FALSE(e.esDeConexion());
            EXPECT_NE(e.mensaje().indexOf("descontoExistencias"), -1);
        }
        // Nada quedó asignado para la siguiente ejecución.
        EXPECT_EQ(M.Remision.marcasSinAsignar().size(), M.Remision.marcas().size());
        t.confirma();
    }
    EXPECT_EQ(c.cuenta("Remision"), 0);

    // En un lote: la venta entera no se manda.
    Lote lote = loteConFolios();
    M.Remision.parametro("empresaID").entero(1);
    M.Remision.parametro("folio").de(0, "folioRem");
    EXPECT_THROW(lote.agrega(M.Remision), ErrorProgramacion);
    EXPECT_EQ(lote.tamano(), 1u);
    M.RemisionDetalle.parametro("id").de(1, "ultimoId");
    M.RemisionDetalle.parametro("remision").de(0, "folioRem");
    M.RemisionDetalle.parametro("empresaID").entero(1);
    M.RemisionDetalle.parametro("clave").texto("A");
    M.RemisionDetalle.parametro("cantidad").real(3);
    EXPECT_THROW(lote.agrega(M.RemisionDetalle), ErrorProgramacion);
    EXPECT_EQ(lote.tamano(), 1u);

    EXPECT_EQ(c.cuenta("Remision"), 0);
    EXPECT_EQ(c.cuenta("RemisionDetalle"), 0);
    EXPECT_EQ(datos.existencia(1, "A"), 10.0);
    EXPECT_EQ(datos.contador(1, "folioRem"), 1);
}

TEST_F(ModuloDatosTest, CotizacionYComprasMuevenSuFolioYSusExistencias) {
    documento(M.Cotizacion, M.CotizacionDetalle, "Cotizacion", "folioCot", "cotizacion");
    documento(M.Requisicion, M.RequisicionDetalle, "Requisicion", "folioOC", "requisicion");
    EXPECT_EQ(datos.existencia(1, "A"), 10.0);
    documento(M.OrdenCompra, M.OrdenCompraDetalle, "OrdenCompra", "folioRM", "ordenCompra");
    EXPECT_EQ(datos.existencia(1, "A"), 13.0);
    documento(M.DevolucionOrdenCompra, M.DevolucionOrdenCompraDetalle, "DevolucionOrdenCompra",
              "folioDevolucionOC", "devolucionOrdenCompra");
    EXPECT_EQ(datos.existencia(1, "A"), 10.0);
    M.AjusteProductos.parametro("esAjusteEntrada").booleano(false);
    documento(M.AjusteProductos, M.AjusteProductosDetalle, "AjusteProductos", "folioAjustes", "");
    EXPECT_EQ(datos.existencia(1, "A"), 7.0);
    EXPECT_EQ(datos.existencia(1, "B"), 2.0);
}

} // namespace
} // namespace cajaplex
