#include "sales/CorteCaja.h"

#include <QLocale>
#include <QVariantList>

#include "datos/Auditoria.h"
#include "datos/ConexionBD.h"
#include "datos/Consulta.h"
#include "datos/Transaccion.h"
#include "datos/Utilerias.h"

namespace cajaplex {

namespace {

const char* const SqlCajeros =
    "Select A.usuarioID, ifnull(A.nombre, A.nUsuario) as nombre From Usuarios A, UsuariosEmpresa B "
    "Where B.empresaID = :EmpresaID and B.usuarioID = A.usuarioID Order By 2";

const char* const SqlUltimoCorte =
    "Select fechaFin From CortesCaja Where empresaID = :EmpresaID and "
    "ifnull(dispositivoID, '') = :Dispositivo Order By fechaFin Desc, ID Desc Limit 1";

// Las lecturas del periodo comparten el filtro: empresa, [Desde, Hasta) y cajero (0 = todos).

// Lo aplicado (utilizados) es lo que se quedó en caja: el cambio ya se devolvió.
const char* const SqlVentasPorForma =
    "Select F.id as feMetodoID, F.descripcion, ifnull(F.claveSAT, '') as claveSAT, "
    "count(distinct A.folio) as operaciones, total(P.utilizados) as importe "
    "From Remision A, RemisionPagos P, FEMetodosPago F "
    "Where A.empresaID = :EmpresaID and A.fecha >= :Desde and A.fecha < :Hasta "
    "and (:Cajero = 0 or A.usuarioID = :Cajero) and ifnull(A.cancelada, 0) = 0 "
    "and ifnull(A.plazoPago, 0) = 0 and P.empresaID = A.empresaID and P.remision = A.folio "
    "and F.empresaID = P.empresaID and F.id = P.feMetodoID "
    "Group By F.id, F.descripcion, F.claveSAT Order By F.descripcion";

const char* const SqlTotalesVentas =
    "Select "
    "total(case when ifnull(cancelada, 0) = 0 and ifnull(plazoPago, 0) = 0 then 1 end) "
    "as ventasContado, "
    "total(case when ifnull(cancelada, 0) = 0 and ifnull(plazoPago, 0) = 0 then totalRemision end) "
    "as totalContado, "
    "total(case when ifnull(cancelada, 0) = 0 and ifnull(plazoPago, 0) > 0 then 1 end) "
    "as ventasCredito, "
    "total(case when ifnull(cancelada, 0) = 0 and ifnull(plazoPago, 0) > 0 then totalRemision end) "
    "as totalCredito, "
    "total(case when ifnull(cancelada, 0) <> 0 then 1 end) as ventasCanceladas, "
    "total(case when ifnull(cancelada, 0) <> 0 then totalRemision end) as totalCanceladas "
    "From Remision Where empresaID = :EmpresaID and fecha >= :Desde and fecha < :Hasta "
    "and (:Cajero = 0 or usuarioID = :Cajero)";

// Anticipos de las ventas a crédito y abonos posteriores, vigentes y de ventas no canceladas.
const char* const SqlAnticiposPorForma =
    "Select F.id as feMetodoID, F.descripcion, ifnull(F.claveSAT, '') as claveSAT, "
    "count(*) as operaciones, total(A.importe) as importe "
    "From PagosRemision A, Remision R, FEMetodosPago F "
    "Where A.empresaID = :EmpresaID and A.Fecha >= :Desde and A.Fecha < :Hasta "
    "and (:Cajero = 0 or A.usuarioID = :Cajero) and ifnull(A.cancelada, 0) = 0 "
    "and R.empresaID = A.empresaID and R.ID = A.idRemision and ifnull(R.cancelada, 0) = 0 "
    "and F.empresaID = A.empresaID and F.id = A.feMetodoID "
    "Group By F.id, F.descripcion, F.claveSAT Order By F.descripcion";

const char* const SqlCajaChica =
    "Select total(case when tipoFlujo = 1 then 0 else 1 end) as depositos, "
    "total(case when tipoFlujo = 1 then 0 else importe end) as totalDepositos, "
    "total(case when tipoFlujo = 1 then 1 end) as retiros, "
    "total(case when tipoFlujo = 1 then importe end) as totalRetiros "
    "From FlujoEfectivo Where empresaID = :EmpresaID and fecha >= :Desde and fecha < :Hasta "
    "and (:Cajero = 0 or usuarioID = :Cajero)";

const char* const SqlAltaCorte =
    "Insert Into CortesCaja (empresaID, usuarioID, cajero, dispositivoID, fechaInicio, fechaFin, "
    "ventasContado, ventasCredito, anticipos, ventasCanceladas, depositos, retiros, "
    "efectivoEsperado, efectivoContado, diferencia, observaciones) Values (:EmpresaID, "
    ":UsuarioID, :Cajero, :DispositivoID, :FechaInicio, :FechaFin, :VentasContado, "
    ":VentasCredito, :Anticipos, :VentasCanceladas, :Depositos, :Retiros, :EfectivoEsperado, "
    ":EfectivoContado, :Diferencia, :Observaciones)";

Consulta delPeriodo(const char* sql, int64_t empresaID, int64_t cajero, const QDateTime& desde,
                    const QDateTime& hasta) {
    Consulta c{QString::fromUtf8(sql)};
    c.parametro(QStringLiteral("EmpresaID")).entero(empresaID);
    c.parametro(QStringLiteral("Desde")).fecha(desde);
    c.parametro(QStringLiteral("Hasta")).fecha(hasta);
    c.parametro(QStringLiteral("Cajero")).entero(cajero);
    return c;
}

std::vector<ImporteFormaPago> porForma(const Registros& r, double& total, double& efectivo) {
    std::vector<ImporteFormaPago> formas;
    double suma = 0.0;
    double enEfectivo = 0.0;
    for (const Registro renglon : r) {
        ImporteFormaPago f;
        f.feMetodoID = renglon.campo(QStringLiteral("feMetodoID")).comoEntero();
        f.descripcion = renglon.campo(QStringLiteral("descripcion")).comoTexto();
        f.efectivo = renglon.campo(QStringLiteral("claveSAT")).comoTexto().trimmed() ==
                     QLatin1String(ClaveSatEfectivo);
        f.operaciones = static_cast<int>(renglon.campo(QStringLiteral("operaciones")).comoEntero());
        f.importe = Redondea(renglon.campo(QStringLiteral("importe")).comoReal(), 2);
        suma += f.importe;
        if (f.efectivo) enEfectivo += f.importe;
        formas.push_back(std::move(f));
    }
    total = Redondea(suma, 2);
    efectivo = Redondea(enEfectivo, 2);
    return formas;
}

int cuenta(const Registros& r, const char* columna) {
    return static_cast<int>(r.campo(0, QString::fromUtf8(columna)).comoReal());
}

double importe(const Registros& r, const char* columna) {
    return Redondea(r.campo(0, QString::fromUtf8(columna)).comoReal(), 2);
}

QString texto(double valor) {
    return QLocale::c().toString(valor, 'f', 2);
}

QString textoFecha(const QDateTime& fecha) {
    return fecha.toString(QStringLiteral("dd/MM/yyyy HH:mm:ss"));
}

QVariantList listaFormas(const std::vector<ImporteFormaPago>& formas) {
    QVariantList lista;
    for (const ImporteFormaPago& f : formas)
        lista << QVariantMap{{QStringLiteral("Descripcion"), f.descripcion},
                             {QStringLiteral("Operaciones"), f.operaciones},
                             {QStringLiteral("Importe"), f.importe},
                             {QStringLiteral("Efectivo"), f.efectivo}};
    return lista;
}

void exigeDerecho(const CorteCaja& corte) {
    if (!corte.permitido()) throw ErrorServicio("permiso", 0, MensajeSinPermisoCorte);
}

} // namespace

CorteCaja::CorteCaja(ConexionBD& conexion, const Sesion& sesion)
    : conexion_(conexion), sesion_(sesion) {}

bool CorteCaja::permitido() const {
    return sesion_.puedeVentas(QString::fromUtf8(DerechoCorteCaja));
}

std::vector<CajeroCorte> CorteCaja::cajeros() {
    Consulta c(conexion_, QString::fromUtf8(SqlCajeros));
    c.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    c.abre();
    std::vector<CajeroCorte> lista;
    for (const Registro r : c)
        lista.push_back({r.campo(QStringLiteral("usuarioID")).comoEntero(),
                         r.campo(QStringLiteral("nombre")).comoTexto()});
    return lista;
}

QDateTime CorteCaja::inicioPeriodo(const QString& dispositivo) {
    Consulta c(conexion_, QString::fromUtf8(SqlUltimoCorte));
    c.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    c.parametro(QStringLiteral("Dispositivo")).texto(dispositivo);
    c.abre();
    const QDateTime fin = c.campo(QStringLiteral("fechaFin")).comoFecha();
    return fin.isValid() ? fin : QDate::currentDate().startOfDay();
}

ResumenCorte CorteCaja::calcula(int64_t cajero, const QString& dispositivo, const QDateTime& desde,
                                const QDateTime& hasta) {
    exigeDerecho(*this);
    const int64_t e = sesion_.EmpresaID;
    Lote lote(conexion_);
    lote.agrega(delPeriodo(SqlVentasPorForma, e, cajero, desde, hasta));
    lote.agrega(delPeriodo(SqlTotalesVentas, e, cajero, desde, hasta));
    lote.agrega(delPeriodo(SqlAnticiposPorForma, e, cajero, desde, hasta));
    lote.agrega(delPeriodo(SqlCajaChica, e, cajero, desde, hasta));
    const std::vector<Registros> r = lote.ejecuta();

    ResumenCorte s;
    s.cajero = cajero;
    s.dispositivo = dispositivo;
    s.desde = desde;
    s.hasta = hasta;
    double sumaFormas = 0.0;
    s.ventasPorForma = porForma(r.at(0), sumaFormas, s.efectivoVentas);
    s.ventasContado = cuenta(r.at(1), "ventasContado");
    s.totalContado = importe(r.at(1), "totalContado");
    s.ventasCredito = cuenta(r.at(1), "ventasCredito");
    s.totalCredito = importe(r.at(1), "totalCredito");
    s.ventasCanceladas = cuenta(r.at(1), "ventasCanceladas");
    s.totalCanceladas = importe(r.at(1), "totalCanceladas");
    s.anticiposPorForma = porForma(r.at(2), s.totalAnticipos, s.efectivoAnticipos);
    s.depositos = cuenta(r.at(3), "depositos");
    s.totalDepositos = importe(r.at(3), "totalDepositos");
    s.retiros = cuenta(r.at(3), "retiros");
    s.totalRetiros = importe(r.at(3), "totalRetiros");
    s.efectivoEsperado =
        Redondea(s.efectivoVentas + s.efectivoAnticipos + s.totalDepositos - s.totalRetiros, 2);
    return s;
}

ResultadoCorte CorteCaja::registra(const ResumenCorte& s, double efectivoContado,
                                   const QString& observaciones) {
    ResultadoCorte r;
    if (!permitido()) {
        r.mensaje = QString::fromUtf8(MensajeSinPermisoCorte);
        return r;
    }
    const double contado = Redondea(efectivoContado, 2);
    const double diferencia = diferenciaCorte(s, contado);
    Transaccion t(conexion_);
    Consulta alta{QString::fromUtf8(SqlAltaCorte)};
    alta.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    alta.parametro(QStringLiteral("UsuarioID")).entero(sesion_.UsuarioID);
    alta.parametro(QStringLiteral("Cajero")).entero(s.cajero);
    alta.parametro(QStringLiteral("DispositivoID")).texto(s.dispositivo);
    alta.parametro(QStringLiteral("FechaInicio")).fecha(s.desde);
    alta.parametro(QStringLiteral("FechaFin")).fecha(s.hasta);
    alta.parametro(QStringLiteral("VentasContado")).real(s.totalContado);
    alta.parametro(QStringLiteral("VentasCredito")).real(s.totalCredito);
    alta.parametro(QStringLiteral("Anticipos")).real(s.totalAnticipos);
    alta.parametro(QStringLiteral("VentasCanceladas")).real(s.totalCanceladas);
    alta.parametro(QStringLiteral("Depositos")).real(s.totalDepositos);
    alta.parametro(QStringLiteral("Retiros")).real(s.totalRetiros);
    alta.parametro(QStringLiteral("EfectivoEsperado")).real(s.efectivoEsperado);
    alta.parametro(QStringLiteral("EfectivoContado")).real(contado);
    alta.parametro(QStringLiteral("Diferencia")).real(diferencia);
    if (observaciones.trimmed().isEmpty())
        alta.parametro(QStringLiteral("Observaciones")).nulo();
    else
        alta.parametro(QStringLiteral("Observaciones")).texto(observaciones);
    alta.ejecuta(t);
    r.id = alta.ultimoId();
    Auditoria::registra(t, sesion_,
                        {QString::fromUtf8(tipoAuditoria::Insercion),
                         QString::fromUtf8(ModuloCorteCaja),
                         QStringLiteral("Corte: ") + QString::number(r.id) +
                             QStringLiteral(", Periodo: ") + textoFecha(s.desde) +
                             QStringLiteral(" - ") + textoFecha(s.hasta) +
                             QStringLiteral(", Esperado: ") + texto(s.efectivoEsperado) +
                             QStringLiteral(", Contado: ") + texto(contado) +
                             QStringLiteral(", Diferencia: ") + texto(diferencia),
                         {},
                         observaciones});
    t.confirma();
    r.registrado = true;
    return r;
}

double diferenciaCorte(const ResumenCorte& resumen, double efectivoContado) {
    return Redondea(Redondea(efectivoContado, 2) - resumen.efectivoEsperado, 2);
}

QVariantMap valoresCorte(const Sesion& sesion, int64_t corteID, const QString& nombreCajero,
                         const ResumenCorte& s, double efectivoContado) {
    const double contado = Redondea(efectivoContado, 2);
    return {{QStringLiteral("Corte"), QVariant::fromValue<qint64>(corteID)},
            {QStringLiteral("Empresa"), sesion.NombreEmpresa},
            {QStringLiteral("Usuario"), sesion.NombreDeUsuario},
            {QStringLiteral("Cajero"), nombreCajero},
            {QStringLiteral("Dispositivo"), s.dispositivo},
            {QStringLiteral("Desde"), s.desde},
            {QStringLiteral("Hasta"), s.hasta},
            {QStringLiteral("FormasPago"), listaFormas(s.ventasPorForma)},
            {QStringLiteral("VentasContado"), s.ventasContado},
            {QStringLiteral("TotalContado"), s.totalContado},
            {QStringLiteral("VentasCredito"), s.ventasCredito},
            {QStringLiteral("TotalCredito"), s.totalCredito},
            {QStringLiteral("Anticipos"), listaFormas(s.anticiposPorForma)},
            {QStringLiteral("TotalAnticipos"), s.totalAnticipos},
            {QStringLiteral("VentasCanceladas"), s.ventasCanceladas},
            {QStringLiteral("TotalCanceladas"), s.totalCanceladas},
            {QStringLiteral("Depositos"), s.depositos},
            {QStringLiteral("TotalDepositos"), s.totalDepositos},
            {QStringLiteral("Retiros"), s.retiros},
            {QStringLiteral("TotalRetiros"), s.totalRetiros},
            {QStringLiteral("EfectivoVentas"), s.efectivoVentas},
            {QStringLiteral("EfectivoAnticipos"), s.efectivoAnticipos},
            {QStringLiteral("EfectivoEsperado"), s.efectivoEsperado},
            {QStringLiteral("EfectivoContado"), contado},
            {QStringLiteral("Diferencia"), diferenciaCorte(s, contado)}};
}

} // namespace cajaplex
