#include "sales/RegistroVenta.h"

#include <utility>

#include <QDateTime>

#include "datos/Auditoria.h"
#include "datos/MensajesComunes.h"
#include "datos/ModuloDatos.h"
#include "sales/DocumentoVenta.h"

namespace cajaplex {

namespace {

// Los folios se leen dentro del lote, bajo el escritor del servicio: dos cajas que registran a la
// vez reciben folios distintos sin reintentos. El texto del anticipo también sale de aquí porque
// lleva el folio.
const char* const SqlFolios =
    "Select folioRem, folioPagosRemision, 'Anticipo a Remisión: ' || folioRem as anticipoRemision "
    "From Configura Where empresaID = :EmpresaID";
constexpr size_t SentenciaFolios = 0;
constexpr size_t SentenciaEncabezado = 1;

const char* const SqlRestaSaldo = " Update Remision Set saldoPendiente = Ifnull(saldoPendiente,0) "
                                  "- :Aplicado Where empresaID = :EmpresaID and folio = :Folio";
const char* const SqlSaldoCubierto = " Update Remision Set saldoPendiente = 0, fechaPago = "
                                     "(CURRENT_TIMESTAMP) Where empresaID = :EmpresaID and folio = "
                                     ":Folio";
const char* const SqlComandaPagada = " Update Comanda Set fechaPago = datetime('now','localtime'), "
                                     "Remision = :Remision Where empresaID = :EmpresaID And id = "
                                     ":ComandaID";
const char* const SqlNodoComanda =
    " Select ifnull(nodoComida, 0) as nodoComidaComanda From Comanda "
    "Where empresaID = :EmpresaID and id = :ComandaID";
const char* const SqlLiberaNodo =
    " Update NodosComida Set Status = 0 Where empresaID = :EmpresaID And id = :NodoComida";
const char* const SqlCotizacionRemisionada =
    " Update Cotizacion Set Remision = :Remision Where empresaID = :EmpresaID and Folio = :Folio";
const char* const SqlSumaPuntos =
    " Update Clientes Set Puntos = Puntos + :Puntos Where empresaID = :EmpresaID and id = :Cliente";
const char* const SqlRestaPuntos =
    " Update Clientes Set Puntos = Puntos - :Puntos Where empresaID = :EmpresaID and id = :Cliente";

QString texto(const char* s) {
    return QString::fromUtf8(s);
}

// Un renglón de bitácora de lote. datos/Auditoria solo asigna textos fijos, y aquí el folio se
// conoce hasta que corre el lote: quien llama cambia el campo que lo lleva por una referencia.
Consulta auditoria(const Sesion& sesion, const RenglonAuditoria& r) {
    Consulta alta(ModuloDeDatos.AuditoriasSistema.sql());
    const std::pair<const char*, const QString*> textos[] = {{"tipoAuditoria", &r.tipo},
                                                             {"moduloSistema", &r.modulo},
                                                             {"datoAnterior", &r.datoAnterior},
                                                             {"datoNuevo", &r.datoNuevo},
                                                             {"comentarios", &r.comentarios}};
    for (const auto& [marca, valor] : textos)
        alta.parametro(texto(marca)).texto(*valor);
    alta.parametro(QStringLiteral("usuarioID")).entero(sesion.UsuarioID);
    alta.parametro(QStringLiteral("empresaID")).entero(sesion.EmpresaID);
    return alta;
}

// Solo se manda si no es la primera de la lista: así lo hace el sistema y se conserva. Si es la
// primera, o no está, el encabezado queda sin forma de pago (nulo).
std::optional<int64_t> formaPagoEncabezado(const CierreVenta& cierre) {
    for (size_t i = 0; i < cierre.pagos.size(); ++i)
        if (cierre.pagos[i].feMetodoID == cierre.formaPagoDefault)
            return i > 0 ? std::optional<int64_t>(cierre.pagos[i].feMetodoID) : std::nullopt;
    return std::nullopt;
}

bool esMonedero(const FormaPagoVenta& pago) {
    return pago.descripcion.contains(texto(FormaPagoMonedero)) && pago.utilizados > 0;
}

class ArmadoVenta {
public:
    ArmadoVenta(const Sesion& sesion, const DocumentoVenta& venta, const CierreVenta& cierre)
        : sesion_(sesion), venta_(venta), cierre_(cierre) {}

    std::vector<protocolo::Sentencia> arma() {
        Consulta folios(SqlFolios);
        folios.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        agrega(folios);
        encabezado();
        if (cierre_.plazoPago > 0)
            anticipos();
        else
            pagosContado();
        renglones();
        origen();
        puntos();
        RenglonAuditoria r{texto(tipoAuditoria::Insercion),
                           texto(ModuloRemisiones),
                           {},
                           {},
                           QStringLiteral("Total: %1").arg(venta_.totales().total, 0, 'f', 2)};
        Consulta alta = auditoria(sesion_, r);
        alta.parametro(QStringLiteral("datoNuevo"))
            .de(SentenciaFolios, QStringLiteral("folioRem"), protocolo::Tipo::Texto);
        agrega(alta);
        return std::move(sentencias_);
    }

private:
    size_t agrega(const Consulta& q) {
        sentencias_.push_back(q.sentencia());
        return sentencias_.size() - 1;
    }

    void empresa(Consulta& q, const char* marca = "EmpresaID") {
        q.parametro(texto(marca)).entero(sesion_.EmpresaID);
    }
    static void folio(Consulta& q, const char* marca) {
        q.parametro(texto(marca)).de(SentenciaFolios, QStringLiteral("folioRem"));
    }

    void encabezado() {
        const TotalesVenta& t = venta_.totales();
        const QDateTime ahora = QDateTime::currentDateTime();
        Consulta q(ModuloDeDatos.Remision.sql());
        auto p = [&q](const char* marca) -> ParametroConsulta& {
            return q.parametro(texto(marca));
        };
        empresa(q, "empresaID");
        folio(q, "folio");
        p("fecha").fecha(ahora);
        p("usuarioID").entero(sesion_.UsuarioID);
        p("vendedor").entero(cierre_.vendedor);
        p("cliente").entero(venta_.cliente());
        p("moneda").entero(venta_.moneda());
        if (const auto forma = formaPagoEncabezado(cierre_))
            p("feMetodoID").entero(*forma);
        else
            p("feMetodoID").nulo();
        p("tipoCambio").real(venta_.TipoCambio());
        p("totalEnvio").real(0);
        p("subtotalRemision").real(t.subtotalRegistrado);
        p("ivaRemision").real(t.iva);
        p("iepsRemision").real(t.ieps);
        p("descuento").real(t.descuento);
        p("totalRemision").real(t.total);
        p("observaciones").texto(cierre_.observaciones);
        p("descontoExistencias").booleano(true);
        p("fechaCaptura").fecha(ahora);
        p("costoRemision").real(venta_.costoRemision());
        p("puntosRemision").real(venta_.puntosRemision());
        int aplicados = 0;
        for (const FormaPagoVenta& pago : cierre_.pagos)
            if (pago.utilizados > 0) ++aplicados;
        p("pagoMixto").booleano(aplicados > 1);
        p("calificacion").entero(0);
        p("entregaDomicilio").booleano(false);
        p("cancelada").booleano(false);
        p("enviada").booleano(false);
        // Una venta de mostrador se guarda ya entregada, a propósito.
        p("entregada").booleano(true);
        p("totalPropina").real(0);
        const bool credito = cierre_.plazoPago > 0;
        p("pagada").entero(credito ? 0 : 1);
        p("saldoPendiente").real(credito ? t.total : 0);
        p("plazoPago").entero(credito ? cierre_.plazoPago : 0);
        p("montoPagado").real(credito ? 0 : t.total);
        if (credito)
            p("fechaPago").nulo();
        else
            p("fechaPago").fecha(ahora);
        agrega(q);
    }

    void pagosContado() {
        for (const FormaPagoVenta& pago : cierre_.pagos) {
            if (pago.importe <= 0) continue;
            Consulta q(ModuloDeDatos.RemisionPagos.sql());
            folio(q, "remision");
            empresa(q, "empresaID");
            q.parametro(QStringLiteral("feMetodoID")).entero(pago.feMetodoID);
            q.parametro(QStringLiteral("importe")).real(pago.importe);
            q.parametro(QStringLiteral("moneda")).entero(venta_.moneda());
            q.parametro(QStringLiteral("utilizados")).real(pago.utilizados);
            agrega(q);
            if (esMonedero(pago)) monedero_ = pago.utilizados;
        }
    }

    void anticipos() {
        double restante = venta_.totales().total;
        for (const FormaPagoVenta& pago : cierre_.pagos) {
            if (pago.importe <= 0) continue;
            Consulta q(ModuloDeDatos.RegistraPago.sql());
            auto p = [&q](const char* marca) -> ParametroConsulta& {
                return q.parametro(texto(marca));
            };
            empresa(q, "empresaID");
            p("folio").de(SentenciaFolios, QStringLiteral("folioPagosRemision"));
            p("importe").real(pago.importe);
            p("idRemision").de(SentenciaEncabezado, QStringLiteral("ultimoId"));
            folio(q, "folioRemision");
            p("observaciones")
                .de(SentenciaFolios, QStringLiteral("anticipoRemision"), protocolo::Tipo::Texto);
            p("cliente").entero(venta_.cliente());
            p("feMetodoID").entero(pago.feMetodoID);
            p("usuarioID").entero(sesion_.UsuarioID);
            p("moneda").entero(venta_.moneda());
            p("tipoCambio").real(venta_.TipoCambio());
            agrega(q);
            if (esMonedero(pago)) monedero_ = pago.utilizados;

            restante -= pago.utilizados;
            Consulta saldo(restante > 0.01 ? SqlRestaSaldo : SqlSaldoCubierto);
            if (restante > 0.01) saldo.parametro(QStringLiteral("Aplicado")).real(pago.utilizados);
            empresa(saldo);
            folio(saldo, "Folio");
            agrega(saldo);

            RenglonAuditoria r{texto(tipoAuditoria::Insercion),
                               texto(ModuloPagosRemision),
                               QString::number(pago.importe, 'f', 2),
                               {},
                               {}};
            Consulta alta = auditoria(sesion_, r);
            alta.parametro(QStringLiteral("comentarios"))
                .de(SentenciaFolios, QStringLiteral("anticipoRemision"), protocolo::Tipo::Texto);
            agrega(alta);
        }
    }

    void renglones() {
        const int modo = venta_.ivaRemision();
        for (const RenglonVenta& r : venta_.RemisionDetalles()) {
            Consulta q(ModuloDeDatos.RemisionDetalle.sql());
            auto p = [&q](const char* marca) -> ParametroConsulta& {
                return q.parametro(texto(marca));
            };
            p("id").de(SentenciaEncabezado, QStringLiteral("ultimoId"));
            folio(q, "remision");
            p("producto").entero(r.ID);
            empresa(q, "empresaID");
            p("cantidad").real(r.Cantidad);
            // En el modo 1 el precio de pantalla lleva IVA y se guarda sin él. Con un modo fuera
            // de 1 a 4 no se asignan, y el acceso a datos rechaza el lote.
            if (modo >= 1 && modo <= 4) {
                p("precio").real(precioNeto(r, modo));
                p("importe").real(importeNeto(r, modo));
            }
            p("descuento").real(r.Descuento);
            p("pCompra").real(r.PCompra);
            p("porcentajeImpuesto").real(r.porcentajeImpuesto);
            p("clave").texto(r.clave);
            p("ieps").real(r.ieps);
            p("pLista").entero(r.PLista);
            p("posicion").entero(r.posicion);
            p("nota").blob(r.Nota.toUtf8());
            p("moneda").entero(r.Moneda);
            p("mesPagado").entero(r.MesPagado);
            agrega(q);
        }
    }

    void origen() {
        const OrigenVenta& o = cierre_.origen;
        if (o.tipo == OrigenVenta::Tipo::Comanda) {
            Consulta pagada(SqlComandaPagada);
            folio(pagada, "Remision");
            empresa(pagada);
            pagada.parametro(QStringLiteral("ComandaID")).entero(o.comandaID);
            agrega(pagada);
            Consulta nodo(SqlNodoComanda);
            empresa(nodo);
            nodo.parametro(QStringLiteral("ComandaID")).entero(o.comandaID);
            const size_t leido = agrega(nodo);
            Consulta libera(SqlLiberaNodo);
            empresa(libera);
            libera.parametro(QStringLiteral("NodoComida"))
                .de(leido, QStringLiteral("nodoComidaComanda"));
            agrega(libera);
        } else if (o.tipo == OrigenVenta::Tipo::Cotizacion) {
            Consulta q(SqlCotizacionRemisionada);
            folio(q, "Remision");
            empresa(q);
            q.parametro(QStringLiteral("Folio")).entero(o.folioCotizacion);
            agrega(q);
        }
    }

    // Primero lo ganado y luego lo gastado, en el mismo lote. El servicio rechaza la resta que
    // dejaría el monedero en negativo, aunque otra caja gaste los mismos puntos a la vez.
    void puntos() {
        const double ganados = venta_.puntosRemision();
        for (const auto& [sql, cantidad] :
             {std::pair{SqlSumaPuntos, ganados}, std::pair{SqlRestaPuntos, monedero_}}) {
            if (cantidad <= 0) continue;
            Consulta q(sql);
            q.parametro(QStringLiteral("Puntos")).real(cantidad);
            empresa(q);
            q.parametro(QStringLiteral("Cliente")).entero(venta_.cliente());
            agrega(q);
        }
    }

    std::vector<protocolo::Sentencia> sentencias_;
    const Sesion& sesion_;
    const DocumentoVenta& venta_;
    const CierreVenta& cierre_;
    double monedero_ = 0;
};

} // namespace

RegistroVenta::RegistroVenta(ConexionBD& conexion, const Sesion& sesion)
    : conexion_(conexion), sesion_(sesion) {}

std::vector<protocolo::Sentencia> RegistroVenta::sentencias(const Sesion& sesion,
                                                            const DocumentoVenta& venta,
                                                            const CierreVenta& cierre) {
    return ArmadoVenta(sesion, venta, cierre).arma();
}

void RegistroVenta::confirma(const DocumentoVenta& venta, const CierreVenta& cierre) {
    lote_.reset();
    Lote lote(conexion_);
    for (auto& s : sentencias(sesion_, venta, cierre))
        lote.agrega(std::move(s));
    lote_.emplace(std::move(lote));
}

ResultadoRegistro RegistroVenta::registra() {
    ResultadoRegistro r;
    if (!lote_) {
        r.mensaje = texto(MensajeErrorRegistro);
        return r;
    }
    try {
        const auto resultados = lote_->ejecuta();
        r.registrada = true;
        r.folio = resultados.at(SentenciaFolios).campo(0, QStringLiteral("folioRem")).comoEntero();
        r.id = resultados.at(SentenciaEncabezado).ultimoId();
        lote_.reset();
    } catch (const ErrorServicio& e) {
        r.sinRespuesta = e.esDeConexion() || e.codigo() == CodigoIncierto;
        if (!r.sinRespuesta) lote_.reset();
        // Los rechazos propios de la base se dicen tal cual; cualquier otro, con su causa.
        r.mensaje = texto(MensajeErrorRegistro) + QLatin1Char('\n') + e.mensaje();
        for (const char* propio : {MensajeSaldoMonedero, MensajeComandaNoPorCobrar})
            if (e.mensaje().contains(texto(propio))) r.mensaje = texto(propio);
    }
    return r;
}

ResultadoRegistro RegistroVenta::registra(const DocumentoVenta& venta, const CierreVenta& cierre) {
    if (!lote_) {
        try {
            confirma(venta, cierre);
        } catch (const ErrorServicio& e) {
            ResultadoRegistro r;
            r.mensaje = texto(MensajeErrorRegistro) + QLatin1Char('\n') + e.mensaje();
            return r;
        }
    }
    return registra();
}

} // namespace cajaplex
