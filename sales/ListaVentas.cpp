#include "sales/ListaVentas.h"

#include <cmath>

#include <QHash>
#include <QLocale>

#include "datos/Consulta.h"
#include "datos/Transaccion.h"
#include "datos/Utilerias.h"
#include "sales/RegistroVenta.h"

namespace cajaplex {

namespace {

// Los nombres viajan una vez por cliente y por cajero, no una por venta: con un año de ventas,
// repetirlos es la mayor parte de la respuesta.
const char* const SqlVentas =
    "Select folio, fecha, ifnull(cliente, 0) as cliente, ifnull(usuarioID, 0) as usuarioID, "
    "ifnull(totalRemision, 0) as total, ifnull(plazoPago, 0) as plazo, ifnull(cancelada, 0) as "
    "cancelada From Remision Where empresaID = :EmpresaID and fecha >= :Desde and fecha < :Hasta "
    "Order By fecha, folio";

const char* const SqlClientes =
    "Select id, nombre From Clientes Where empresaID = :EmpresaID and id in (Select cliente From "
    "Remision Where empresaID = :EmpresaID and fecha >= :Desde and fecha < :Hasta)";

const char* const SqlCajeros =
    "Select usuarioID as id, ifnull(nombre, nUsuario) as nombre From Usuarios Where usuarioID in "
    "(Select usuarioID From Remision Where empresaID = :EmpresaID and fecha >= :Desde and "
    "fecha < :Hasta)";

// Lo que recibió cada venta: lo aplicado de contado (sin el cambio) y los anticipos y abonos
// vigentes de las de crédito.
const char* const SqlPagos =
    "Select P.remision as folio, P.feMetodoID, ifnull(P.utilizados, 0) as importe "
    "From Remision R, RemisionPagos P Where R.empresaID = :EmpresaID and R.fecha >= :Desde "
    "and R.fecha < :Hasta and P.empresaID = R.empresaID and P.remision = R.folio "
    "Union All "
    "Select A.folioRemision, A.feMetodoID, ifnull(A.importe, 0) From Remision R, PagosRemision A "
    "Where R.empresaID = :EmpresaID and R.fecha >= :Desde and R.fecha < :Hasta "
    "and A.empresaID = R.empresaID and A.folioRemision = R.folio and ifnull(A.cancelada, 0) = 0";

const char* const SqlFormas =
    "Select id, descripcion From FEMetodosPago Where empresaID = :EmpresaID Order By descripcion";

const char* const SqlVenta =
    "Select R.folio, R.fecha, ifnull(C.nombre, '') as cliente, "
    "ifnull(U.nombre, ifnull(U.nUsuario, '')) as cajero, "
    "ifnull(V.nombre, ifnull(V.nUsuario, '')) as vendedor, ifnull(R.subtotalRemision, 0) as "
    "subtotal, ifnull(R.descuento, 0) as descuento, ifnull(R.iepsRemision, 0) as ieps, "
    "ifnull(R.ivaRemision, 0) as iva, ifnull(R.totalRemision, 0) as total, "
    "ifnull(R.saldoPendiente, 0) as saldo, ifnull(R.puntosRemision, 0) as puntos, "
    "ifnull(R.plazoPago, 0) as plazo, ifnull(R.cancelada, 0) as cancelada, R.fechaCancelacion, "
    "ifnull(R.motivoCancelacion, '') as motivoCancelacion, "
    "ifnull(R.observaciones, '') as observaciones From Remision R "
    "Left Join Clientes C On C.empresaID = R.empresaID and C.id = R.cliente "
    "Left Join Usuarios U On U.usuarioID = R.usuarioID "
    "Left Join Usuarios V On V.usuarioID = R.vendedor "
    "Where R.empresaID = :EmpresaID and R.folio = :Folio";

const char* const SqlRenglones =
    "Select D.clave, ifnull(P.producto, '') as producto, D.cantidad, D.precio, D.descuento, "
    "D.importe, ifnull(D.nota, '') as nota From RemisionDetalle D "
    "Left Join Productos P On P.empresaID = D.empresaID and P.id = D.producto "
    "Where D.empresaID = :EmpresaID and D.remision = :Folio Order By D.posicion";

const char* const SqlPagosVenta =
    "Select ifnull(F.descripcion, '') as forma, P.importe, P.utilizados From RemisionPagos P "
    "Left Join FEMetodosPago F On F.empresaID = P.empresaID and F.id = P.feMetodoID "
    "Where P.empresaID = :EmpresaID and P.remision = :Folio";

const char* const SqlAnticipos =
    "Select A.folio, A.Fecha, ifnull(F.descripcion, '') as forma, A.importe, "
    "ifnull(A.cancelada, 0) as cancelada From PagosRemision A "
    "Left Join FEMetodosPago F On F.empresaID = A.empresaID and F.id = A.feMetodoID "
    "Where A.empresaID = :EmpresaID and A.folioRemision = :Folio Order By A.Fecha, A.ID";

// El alta y la cancelación llevan el folio en datoNuevo; los anticipos, en sus comentarios.
const char* const SqlBitacora =
    "Select B.fechaOperacion, ifnull(U.nombre, ifnull(U.nUsuario, '')) as usuario, "
    "B.tipoAuditoria, B.moduloSistema, ifnull(B.comentarios, '') as comentarios "
    "From AuditoriasSistema B Left Join Usuarios U On U.usuarioID = B.usuarioID "
    "Where B.empresaID = :EmpresaID and ((B.moduloSistema = :ModuloVentas and B.datoNuevo = "
    ":FolioTexto) or (B.moduloSistema = :ModuloPagos and B.comentarios = :Anticipo)) "
    "Order By B.fechaOperacion, B.ID";

// Lectura por posición: con cien mil renglones, buscar cada columna por nombre se nota.
class Lector {
public:
    explicit Lector(const Registros& r) : r_(r.resultado()) {
        const QStringList nombres = r.columnas();
        for (int i = 0; i < nombres.size(); ++i)
            columnas_.insert(nombres.at(i).toLower(), i);
    }
    int columna(const char* nombre) const {
        return columnas_.value(QString::fromLatin1(nombre).toLower(), -1);
    }
    size_t renglones() const { return r_.filas.size(); }
    Campo campo(size_t fila, int columna) const {
        return {{}, &r_.filas[fila][static_cast<size_t>(columna)]};
    }

private:
    const protocolo::Resultado& r_;
    QHash<QString, int> columnas_;
};

void periodo(Consulta& q, const Sesion& sesion, const QDate& desde, const QDate& hasta) {
    q.parametro(QStringLiteral("EmpresaID")).entero(sesion.EmpresaID);
    q.parametro(QStringLiteral("Desde")).fecha(desde.startOfDay());
    q.parametro(QStringLiteral("Hasta")).fecha(hasta.addDays(1).startOfDay());
}

} // namespace

VentasPeriodo consultaVentas(ConexionBD& conexion, const Sesion& sesion, const QDate& desde,
                             const QDate& hasta) {
    Consulta ventas(SqlVentas);
    periodo(ventas, sesion, desde, hasta);
    Consulta pagos(SqlPagos);
    periodo(pagos, sesion, desde, hasta);
    Consulta formas(SqlFormas);
    formas.parametro(QStringLiteral("EmpresaID")).entero(sesion.EmpresaID);
    Consulta clientes(SqlClientes);
    periodo(clientes, sesion, desde, hasta);
    Consulta cajeros(SqlCajeros);
    periodo(cajeros, sesion, desde, hasta);
    Lote lote(conexion);
    lote.agrega(ventas);
    lote.agrega(pagos);
    lote.agrega(formas);
    lote.agrega(clientes);
    lote.agrega(cajeros);
    const std::vector<Registros> r = lote.ejecuta();
    const auto nombres = [](const Registros& registros) {
        QHash<int64_t, QString> n;
        for (const Registro f : registros)
            n.insert(f.campo(QStringLiteral("id")).comoEntero(),
                     f.campo(QStringLiteral("nombre")).comoTexto());
        return n;
    };
    const QHash<int64_t, QString> nombreCliente = nombres(r.at(3));
    const QHash<int64_t, QString> nombreCajero = nombres(r.at(4));

    VentasPeriodo p;
    QHash<int64_t, int> indiceForma;
    for (const Registro f : r.at(2)) {
        indiceForma.insert(f.campo(QStringLiteral("id")).comoEntero(),
                           static_cast<int>(p.formas.size()));
        p.formas.push_back({f.campo(QStringLiteral("id")).comoEntero(),
                            f.campo(QStringLiteral("descripcion")).comoTexto()});
    }

    const Lector v(r.at(0));
    const int cFolio = v.columna("folio"), cFecha = v.columna("fecha"),
              cCliente = v.columna("cliente"), cUsuario = v.columna("usuarioID"),
              cTotal = v.columna("total"), cPlazo = v.columna("plazo"),
              cCancelada = v.columna("cancelada");
    QHash<int64_t, int> indiceVenta;
    p.ventas.reserve(v.renglones());
    indiceVenta.reserve(static_cast<qsizetype>(v.renglones()));
    for (size_t i = 0; i < v.renglones(); ++i) {
        VentaLista x;
        x.folio = v.campo(i, cFolio).comoEntero();
        x.fecha = v.campo(i, cFecha).comoTexto();
        x.clienteID = v.campo(i, cCliente).comoEntero();
        x.cliente = nombreCliente.value(x.clienteID); // una sola copia compartida por nombre
        x.usuarioID = v.campo(i, cUsuario).comoEntero();
        x.cajero = nombreCajero.value(x.usuarioID);
        x.total = v.campo(i, cTotal).comoReal();
        x.credito = v.campo(i, cPlazo).comoEntero() > 0;
        x.cancelada = v.campo(i, cCancelada).comoBooleano();
        indiceVenta.insert(x.folio, static_cast<int>(p.ventas.size()));
        p.ventas.push_back(std::move(x));
    }

    // Los pagos llegan en cualquier orden: se agrupan por venta contando primero.
    const Lector g(r.at(1));
    const int gFolio = g.columna("folio"), gForma = g.columna("feMetodoID"),
              gImporte = g.columna("importe");
    std::vector<int> deVenta(g.renglones(), -1);
    for (size_t i = 0; i < g.renglones(); ++i) {
        const int venta = indiceVenta.value(g.campo(i, gFolio).comoEntero(), -1);
        deVenta[i] = venta;
        if (venta >= 0) ++p.ventas[static_cast<size_t>(venta)].numeroPagos;
    }
    int inicio = 0;
    for (VentaLista& x : p.ventas) {
        x.primerPago = inicio;
        inicio += x.numeroPagos;
        x.numeroPagos = 0;
    }
    p.pagos.resize(static_cast<size_t>(inicio));
    for (size_t i = 0; i < g.renglones(); ++i) {
        if (deVenta[i] < 0) continue;
        VentaLista& x = p.ventas[static_cast<size_t>(deVenta[i])];
        const int64_t forma = g.campo(i, gForma).comoEntero();
        auto f = indiceForma.find(forma);
        if (f == indiceForma.end()) {
            // Una forma de pago ya borrada del catálogo sigue contando.
            f = indiceForma.insert(forma, static_cast<int>(p.formas.size()));
            p.formas.push_back({forma, QStringLiteral("Forma de Pago %1").arg(forma)});
        }
        p.pagos[static_cast<size_t>(x.primerPago + x.numeroPagos++)] = {
            *f, g.campo(i, gImporte).comoReal()};
    }
    return p;
}

std::vector<int> filtraVentas(const VentasPeriodo& periodo, const FiltroVentas& filtro) {
    const QString cliente = filtro.cliente.trimmed();
    // El nombre se compara una vez por cliente, no una por venta.
    QHash<int64_t, bool> clienteCoincide;
    std::vector<int> indices;
    indices.reserve(periodo.ventas.size());
    for (size_t i = 0; i < periodo.ventas.size(); ++i) {
        const VentaLista& v = periodo.ventas[i];
        if (filtro.folio != 0 && v.folio != filtro.folio) continue;
        if (filtro.cajero != 0 && v.usuarioID != filtro.cajero) continue;
        if (!cliente.isEmpty()) {
            auto c = clienteCoincide.find(v.clienteID);
            if (c == clienteCoincide.end())
                c = clienteCoincide.insert(v.clienteID,
                                           v.cliente.contains(cliente, Qt::CaseInsensitive));
            if (!*c) continue;
        }
        indices.push_back(static_cast<int>(i));
    }
    return indices;
}

TotalesVentas totalizaVentas(const VentasPeriodo& periodo, const std::vector<int>& indices) {
    TotalesVentas t;
    std::vector<TotalForma> porForma(periodo.formas.size());
    std::vector<int64_t> ultimaVenta(periodo.formas.size(), -1);
    for (const int i : indices) {
        const VentaLista& v = periodo.ventas[static_cast<size_t>(i)];
        // Una cancelada devolvió su dinero: se ve en la lista, no en los totales.
        if (v.cancelada) {
            ++t.canceladas;
            continue;
        }
        ++t.ventas;
        t.total += v.total;
        for (int k = v.primerPago; k < v.primerPago + v.numeroPagos; ++k) {
            const PagoLista& pago = periodo.pagos[static_cast<size_t>(k)];
            const auto forma = static_cast<size_t>(pago.forma);
            porForma[forma].importe += pago.importe;
            if (ultimaVenta[forma] != i) {
                ultimaVenta[forma] = i;
                ++porForma[forma].ventas;
            }
        }
    }
    for (size_t f = 0; f < porForma.size(); ++f) {
        if (porForma[f].ventas == 0) continue;
        porForma[f].descripcion = periodo.formas[f].descripcion;
        t.formas.push_back(porForma[f]);
    }
    return t;
}

QString importeVenta(double valor) {
    static const QLocale mexico(QLocale::Spanish, QLocale::Mexico);
    return (valor < 0 ? QStringLiteral("-$") : QStringLiteral("$")) +
           mexico.toString(Redondea(std::abs(valor), 2), 'f', 2);
}

QString fechaLista(const QString& fecha) {
    if (fecha.size() < 16) return fecha;
    return fecha.mid(8, 2) + QLatin1Char('/') + fecha.mid(5, 2) + QLatin1Char('/') + fecha.left(4) +
           QLatin1Char(' ') + fecha.mid(11, 5);
}

VentaVisor consultaVenta(ConexionBD& conexion, const Sesion& sesion, int64_t folio) {
    const QString folioTexto = QString::number(folio);
    auto empresaFolio = [&](Consulta& q) {
        q.parametro(QStringLiteral("EmpresaID")).entero(sesion.EmpresaID);
        q.parametro(QStringLiteral("Folio")).entero(folio);
    };
    Lote lote(conexion);
    for (const char* sql : {SqlVenta, SqlRenglones, SqlPagosVenta, SqlAnticipos}) {
        Consulta q(QString::fromUtf8(sql));
        empresaFolio(q);
        lote.agrega(q);
    }
    Consulta bitacora(QString::fromUtf8(SqlBitacora));
    bitacora.parametro(QStringLiteral("EmpresaID")).entero(sesion.EmpresaID);
    bitacora.parametro(QStringLiteral("ModuloVentas")).texto(QString::fromUtf8(ModuloRemisiones));
    bitacora.parametro(QStringLiteral("FolioTexto")).texto(folioTexto);
    bitacora.parametro(QStringLiteral("ModuloPagos")).texto(QString::fromUtf8(ModuloPagosRemision));
    bitacora.parametro(QStringLiteral("Anticipo"))
        .texto(QStringLiteral("Anticipo a Remisión: ") + folioTexto);
    lote.agrega(bitacora);
    const std::vector<Registros> r = lote.ejecuta();

    const Registros& e = r.at(0);
    if (e.numeroRegistros() == 0)
        throw RegistroInexistente(QStringLiteral("No existe la Remisión: ") + folioTexto);
    auto c = [&e](const char* nombre) { return e.campo(0, QString::fromLatin1(nombre)); };
    VentaVisor v;
    v.folio = folio;
    v.fecha = c("fecha").comoTexto();
    v.cliente = c("cliente").comoTexto();
    v.cajero = c("cajero").comoTexto();
    v.vendedor = c("vendedor").comoTexto();
    v.subtotal = c("subtotal").comoReal();
    v.descuento = c("descuento").comoReal();
    v.ieps = c("ieps").comoReal();
    v.iva = c("iva").comoReal();
    v.total = c("total").comoReal();
    v.saldo = c("saldo").comoReal();
    v.puntos = c("puntos").comoReal();
    v.plazo = static_cast<int>(c("plazo").comoEntero());
    v.cancelada = c("cancelada").comoBooleano();
    v.fechaCancelacion = c("fechaCancelacion").comoTexto();
    v.motivoCancelacion = c("motivoCancelacion").comoTexto();
    v.observaciones = c("observaciones").comoTexto();

    for (const Registro f : r.at(1))
        v.renglones.push_back({f.campo(QStringLiteral("clave")).comoTexto(),
                               f.campo(QStringLiteral("producto")).comoTexto(),
                               f.campo(QStringLiteral("cantidad")).comoReal(),
                               f.campo(QStringLiteral("precio")).comoReal(),
                               f.campo(QStringLiteral("descuento")).comoReal(),
                               f.campo(QStringLiteral("importe")).comoReal(),
                               f.campo(QStringLiteral("nota")).comoTexto()});
    for (const Registro f : r.at(2))
        v.pagos.push_back({f.campo(QStringLiteral("forma")).comoTexto(),
                           f.campo(QStringLiteral("importe")).comoReal(),
                           f.campo(QStringLiteral("utilizados")).comoReal()});
    for (const Registro f : r.at(3))
        v.anticipos.push_back({f.campo(QStringLiteral("folio")).comoEntero(),
                               f.campo(QStringLiteral("Fecha")).comoTexto(),
                               f.campo(QStringLiteral("forma")).comoTexto(),
                               f.campo(QStringLiteral("importe")).comoReal(),
                               f.campo(QStringLiteral("cancelada")).comoBooleano()});
    for (const Registro f : r.at(4))
        v.bitacora.push_back({f.campo(QStringLiteral("fechaOperacion")).comoTexto(),
                              f.campo(QStringLiteral("usuario")).comoTexto(),
                              f.campo(QStringLiteral("tipoAuditoria")).comoTexto(),
                              f.campo(QStringLiteral("moduloSistema")).comoTexto(),
                              f.campo(QStringLiteral("comentarios")).comoTexto()});
    return v;
}

} // namespace cajaplex
