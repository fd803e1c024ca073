#include "sales/DocumentoVenta.h"

#include <utility>

#include "datos/Consulta.h"
#include "datos/Utilerias.h"

namespace cajaplex {

namespace {

// La lista de precios guarda los precios tal como están en Productos (los "V" de la consulta
// original), no los ajustados al modo. En los modos 1 y 4 ambos juegos son iguales; en 2 y 3 el
// ajustado ya trae el IVA, y como los totales suman el IVA sobre Precio, tomarlo lo cobraría dos
// veces. El ajustado solo sirve para mostrar.
const char* const SqlProducto =
    "Select A.ID, A.clave, A.producto, ifnull(U.unidad, '') as unidad, ifnull(A.moneda, 0) as "
    "moneda, ifnull(M.tipoCambioVenta, 1) as tipoCambioVenta, ifnull(M.abreviacionPAC, '') as "
    "abreviacionPAC, ifnull(A.pCompra, 0) as pCompra, ifnull(A.porcentajeImpuesto, 0) as "
    "porcentajeImpuesto, ifnull(A.ieps, 0) as ieps, ifnull(A.precioAbierto, 0) as precioAbierto, "
    "case when ifnull(A.existencia, 0) <= 0 then 0 else A.existencia end as existencia, "
    "ifnull(A.precio, 0) as VPrecioVenta1, ifnull(A.precio2, 0) as VPrecioVenta2, "
    "ifnull(A.precio3, 0) as VPrecioVenta3, ifnull(A.precio4, 0) as VPrecioVenta4, "
    "ifnull(A.precio5, 0) as VPrecioVenta5, ifnull(A.manejaInventarios, 0) as manejaInventarios, "
    "ifnull(A.manejaSeries, 0) as manejaSeries, ifnull(A.caduca, 0) as caduca, "
    "ifnull(A.esPaquete, 0) as esPaquete, ifnull(A.requiereAutorizacionVenta, 0) as "
    "requiereAutorizacionVenta, ifnull(A.bonificaPuntos, 0) as bonificaPuntos, "
    "ifnull(A.porcentajeBonificacion, 0) as porcentajeBonificacion "
    "From Productos A "
    "Left Join Unidades U On U.empresaID = A.empresaID And U.id = A.unidad "
    "Left Join Monedas M On M.empresaID = A.empresaID And M.id = A.moneda "
    "Where A.empresaID = :EmpresaID And (A.clave = :ClaveProducto Or A.codigoBarra = "
    ":CodigoBarra) And ifnull(A.activo, 0) = 1 "
    "Order By case when A.clave = :ClaveProducto then 0 else 1 end";

const char* const SqlRangos = "Select * From ProductosRangosPrecios Where productoID = :ProductoID "
                              "and empresaID = :EmpresaID order by Rango desc";

// Sin redondeo, en el orden de los renglones.
template <typename Valor> double suma(const std::vector<RenglonVenta>& renglones, Valor valor) {
    double total = 0;
    for (const RenglonVenta& r : renglones)
        total += valor(r);
    return total;
}

int nivelValido(int64_t nivel) {
    return nivel >= 1 && nivel <= 5 ? static_cast<int>(nivel) : 1;
}

} // namespace

double precioNeto(const RenglonVenta& r, int ivaRemision) {
    switch (ivaRemision) {
    case 1:
        return r.Precio / (1 + r.porcentajeImpuesto / 100);
    case 2:
    case 3:
    case 4:
        return r.Precio;
    default:
        return 0;
    }
}

double importeNeto(const RenglonVenta& r, int ivaRemision) {
    const double q = r.Cantidad;
    const double p = precioNeto(r, ivaRemision);
    return q * p - q * p * r.Descuento / 100;
}

double puntosRenglon(const RenglonVenta& r) {
    if (!r.bonificaPuntos) return 0;
    return r.Cantidad * (r.Precio - r.Precio * r.Descuento / 100) * r.porcentajeBonificacion / 100;
}

TotalesVenta calculaTotales(const std::vector<RenglonVenta>& renglones, int ivaRemision,
                            int64_t monedaVenta, const QHash<int64_t, MonedaVenta>& monedas) {
    double descuento = 0, subtotal = 0, iva = 0, ieps = 0;
    for (const RenglonVenta& r : renglones) {
        const double q = r.Cantidad;
        const double p = precioNeto(r, ivaRemision);
        const double n = importeNeto(r, ivaRemision);
        ieps += n * r.ieps / 100;
        double t = r.porcentajeImpuesto > 0 ? n * r.ieps / 100 * r.porcentajeImpuesto / 100 : 0;
        double v = ivaRemision >= 1 && ivaRemision <= 3 ? n * r.porcentajeImpuesto / 100 : 0;
        if (r.Moneda != monedaVenta) {
            const double tc = r.TipoCambioVenta;
            const auto moneda = monedas.constFind(r.Moneda);
            const bool multiplica = moneda == monedas.constEnd() || moneda->multiplica;
            const double base = multiplica ? q * p * tc : q * p / tc;
            subtotal += base;
            descuento += base * r.Descuento / 100;
            // Se reescala todo el IEPS acumulado, no solo el de este renglón: así lo hace el
            // sistema y el orden de los renglones cambia el total con monedas mezcladas.
            ieps = multiplica ? ieps * tc : ieps / tc;
            if (r.porcentajeImpuesto > 0) t = multiplica ? t * tc : t / tc;
            v = multiplica ? v * tc : v / tc;
        } else {
            subtotal += q * p;
            descuento += q * p * r.Descuento / 100;
        }
        // El IVA del renglón se redondea a 6 decimales; el del IEPS se suma tal cual.
        iva += Redondea(v, 6);
        if (t > 0) iva += t;
    }
    TotalesVenta tv;
    tv.descuento = Redondea(descuento, 2);
    tv.subtotal = Redondea(subtotal, 2);
    tv.subtotalRegistrado = Redondea(tv.subtotal, 2);
    tv.ieps = Redondea(ieps, 2);
    tv.iva = Redondea(iva, 2);
    tv.total = Redondea(tv.subtotalRegistrado - tv.descuento + tv.ieps + tv.iva, 2);
    return tv;
}

RenglonVenta renglonDeProducto(const Registro& fila) {
    auto c = [&fila](const char* nombre) { return fila.campo(QString::fromLatin1(nombre)); };
    RenglonVenta r;
    r.ID = c("ID").comoEntero();
    r.PCompra = c("pCompra").comoReal();
    r.Producto = c("producto").comoTexto();
    r.Unidad = c("unidad").comoTexto();
    r.porcentajeImpuesto = c("porcentajeImpuesto").comoReal();
    r.ieps = c("ieps").comoReal();
    r.clave = c("clave").comoTexto();
    r.precioAbierto = static_cast<int>(c("precioAbierto").comoEntero());
    r.Moneda = c("moneda").comoEntero();
    r.Existencia = c("existencia").comoReal();
    r.TipoCambioVenta = c("tipoCambioVenta").comoReal();
    r.AbreviacionPAC = c("abreviacionPAC").comoTexto();
    r.Precio1 = c("VPrecioVenta1").comoReal();
    r.Precio2 = c("VPrecioVenta2").comoReal();
    r.Precio3 = c("VPrecioVenta3").comoReal();
    r.Precio4 = c("VPrecioVenta4").comoReal();
    r.Precio5 = c("VPrecioVenta5").comoReal();
    r.ManejaInventarios = c("manejaInventarios").comoBooleano();
    r.EsPaquete = c("esPaquete").comoBooleano();
    r.RequiereAutorizacionVenta = c("requiereAutorizacionVenta").comoBooleano();
    r.ManejaSeries = c("manejaSeries").comoBooleano();
    r.Caduca = c("caduca").comoBooleano();
    r.bonificaPuntos = c("bonificaPuntos").comoBooleano();
    r.porcentajeBonificacion = c("porcentajeBonificacion").comoReal();
    return r;
}

double precioDeNivel(const RenglonVenta& r, int nivel) {
    switch (nivel) {
    case 2:
        return r.Precio2;
    case 3:
        return r.Precio3;
    case 4:
        return r.Precio4;
    case 5:
        return r.Precio5;
    default:
        return r.Precio1;
    }
}

std::optional<double> precioPorRango(const std::vector<RangoPrecio>& rangos, double cantidad) {
    std::optional<double> precio;
    double mejor = 0;
    for (const RangoPrecio& r : rangos)
        if (r.rango <= cantidad && (!precio || r.rango > mejor)) {
            precio = r.precioVenta;
            mejor = r.rango;
        }
    return precio;
}

DocumentoVenta::DocumentoVenta(ConexionDatos& conexion, const Sesion& sesion)
    : conexion_(conexion), sesion_(sesion) {}

void DocumentoVenta::abre() {
    Consulta configura(conexion_, "Select desglosarem as ivaRemision, ifnull(monedaIDRem, 0) as "
                                  "monedaIDRem, ifnull(remSinExistencia, 0) as remSinExistencia "
                                  "From Configura Where empresaID = :EmpresaID");
    configura.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    configura.abre();
    Consulta monedas(conexion_, "Select id, ifnull(abreviacionPAC, '') as abreviacionPAC, "
                                "ifnull(tipoCambioVenta, 1) as tipoCambioVenta, "
                                "ifnull(multiplica, 1) as multiplica "
                                "From Monedas Where empresaID = :EmpresaID");
    monedas.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    monedas.abre();

    QHash<int64_t, MonedaVenta> lista;
    for (const Registro m : monedas) {
        MonedaVenta mv;
        mv.id = m.campo(QStringLiteral("id")).comoEntero();
        mv.abreviacionPAC = m.campo(QStringLiteral("abreviacionPAC")).comoTexto();
        mv.tipoCambioVenta = m.campo(QStringLiteral("tipoCambioVenta")).comoReal();
        mv.multiplica = m.campo(QStringLiteral("multiplica")).comoBooleano();
        lista.insert(mv.id, mv);
    }
    ivaRemision_ = static_cast<int>(configura.campo(QStringLiteral("ivaRemision")).comoEntero());
    sinExistencia_ = configura.campo(QStringLiteral("remSinExistencia")).comoBooleano();
    const int64_t moneda = configura.campo(QStringLiteral("monedaIDRem")).comoEntero();
    monedas_ = std::move(lista);
    asignaMoneda(moneda, monedas_.value(moneda).tipoCambioVenta);
}

void DocumentoVenta::asignaModoIva(int ivaRemision) {
    ivaRemision_ = ivaRemision;
    recalcula();
}

void DocumentoVenta::asignaMonedas(QHash<int64_t, MonedaVenta> monedas) {
    monedas_ = std::move(monedas);
    recalcula();
}

void DocumentoVenta::asignaMoneda(int64_t moneda, double tipoCambio) {
    moneda_ = moneda;
    tipoCambio_ = tipoCambio;
    recalcula();
}

const std::vector<RangoPrecio>& DocumentoVenta::rangos(int64_t productoID) {
    auto it = rangos_.find(productoID);
    if (it != rangos_.end()) return *it;
    Consulta q(conexion_, SqlRangos);
    q.parametro(QStringLiteral("ProductoID")).entero(productoID);
    q.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    q.abre();
    std::vector<RangoPrecio> lista;
    for (const Registro r : q)
        lista.push_back({r.campo(QStringLiteral("rango")).comoReal(),
                         r.campo(QStringLiteral("precioVenta")).comoReal()});
    return *rangos_.insert(productoID, std::move(lista));
}

// El nivel elegido a mano gana; si no, el rango de la cantidad y, sin rango, el nivel del
// renglón. El precio abierto lo teclea el cajero y no se toca.
void DocumentoVenta::ponPrecio(RenglonVenta& r) {
    if (r.precioAbierto == 1) return;
    std::optional<double> porRango;
    if (!r.PrecioElegido) porRango = precioPorRango(rangos(r.ID), r.Cantidad);
    r.Precio = porRango.value_or(precioDeNivel(r, r.PLista));
}

void DocumentoVenta::recalcula() {
    for (RenglonVenta& r : renglones_)
        r.Importe = importeNeto(r, ivaRemision_);
    totales_ = calculaTotales(renglones_, ivaRemision_, moneda_, monedas_);
}

DocumentoVenta::Rechazo DocumentoVenta::revisaExistencia(const RenglonVenta& r,
                                                         double cantidad) const {
    if (cantidad <= 0) return QString::fromUtf8(MensajeCantidadCero);
    if (r.ManejaInventarios && !sinExistencia_ && cantidad > r.Existencia)
        return QString::fromUtf8(MensajeSinExistencias);
    return std::nullopt;
}

DocumentoVenta::Rechazo DocumentoVenta::agrega(const QString& claveOCodigo) {
    Consulta q(conexion_, SqlProducto);
    q.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    q.parametro(QStringLiteral("ClaveProducto")).texto(claveOCodigo);
    q.parametro(QStringLiteral("CodigoBarra")).texto(claveOCodigo);
    q.abre();
    if (q.numeroRegistros() == 0)
        return QString::fromUtf8(MensajeProductoNoLocalizado) + claveOCodigo;

    RenglonVenta r = renglonDeProducto(*q.begin());
    r.Cantidad = 1;
    r.PLista = nivelCliente_;
    if (auto rechazo = revisaExistencia(r, r.Cantidad)) return rechazo;
    ponPrecio(r);
    agregaRenglon(std::move(r));
    return std::nullopt;
}

void DocumentoVenta::agregaRenglon(RenglonVenta renglon) {
    renglon.posicion = static_cast<int>(renglones_.size()) + 1;
    renglones_.push_back(std::move(renglon));
    recalcula();
}

DocumentoVenta::Rechazo DocumentoVenta::cambiaCantidad(size_t fila, double cantidad) {
    RenglonVenta& r = renglones_.at(fila);
    if (auto rechazo = revisaExistencia(r, cantidad)) return rechazo;
    r.Cantidad = cantidad;
    ponPrecio(r);
    recalcula();
    return std::nullopt;
}

DocumentoVenta::Rechazo DocumentoVenta::cambiaCantidadAbierta(size_t fila, double cantidad) {
    RenglonVenta& r = renglones_.at(fila);
    if (!(cantidad > 0)) return QString::fromUtf8(MensajeCantidadCero);
    r.Cantidad = cantidad;
    recalcula();
    return std::nullopt;
}

DocumentoVenta::Rechazo DocumentoVenta::eligePrecio(size_t fila, int nivel) {
    RenglonVenta& r = renglones_.at(fila);
    if (nivel < 1 || nivel > 5 || !sesion_.puedeVentas(QStringLiteral("precio%1").arg(nivel)))
        return QString::fromUtf8(MensajeSinPermisoPrecio) + QString::number(nivel);
    r.PLista = nivel;
    r.PrecioElegido = true;
    r.Precio = precioDeNivel(r, nivel);
    recalcula();
    return std::nullopt;
}

DocumentoVenta::Rechazo DocumentoVenta::cambiaDescuento(size_t fila, double porcentaje) {
    RenglonVenta& r = renglones_.at(fila);
    if (!sesion_.puedeVentas(QStringLiteral("descuento")))
        return QString::fromUtf8(MensajeSinPermisoDescuento);
    if (porcentaje < 0 || porcentaje > 100) return QString::fromUtf8(MensajeDescuentoInvalido);
    r.Descuento = porcentaje;
    recalcula();
    return std::nullopt;
}

DocumentoVenta::Rechazo DocumentoVenta::descuentoGlobal(double porcentaje) {
    if (!sesion_.puedeVentas(QStringLiteral("descuento")))
        return QString::fromUtf8(MensajeSinPermisoDescuento);
    if (porcentaje < 0 || porcentaje > 100) return QString::fromUtf8(MensajeDescuentoInvalido);
    for (RenglonVenta& r : renglones_)
        r.Descuento = porcentaje;
    recalcula();
    return std::nullopt;
}

void DocumentoVenta::cambiaNota(size_t fila, const QString& nota) {
    renglones_.at(fila).Nota = nota;
}

void DocumentoVenta::elimina(size_t fila) {
    renglones_.erase(renglones_.begin() + static_cast<std::ptrdiff_t>(fila));
    int posicion = 1;
    for (RenglonVenta& r : renglones_)
        r.posicion = posicion++;
    recalcula();
}

void DocumentoVenta::limpia() {
    renglones_.clear();
    recalcula();
}

void DocumentoVenta::asignaCliente(int64_t clienteID) {
    Consulta q(conexion_,
               "Select ifnull(precioVenta, 1) as precioVenta, Ifnull(puntos, 0.000000) "
               "as puntos From Clientes Where empresaID = :EmpresaID and id = :ClienteID");
    q.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    q.parametro(QStringLiteral("ClienteID")).entero(clienteID);
    q.abre();
    cliente_ = clienteID;
    nivelCliente_ = nivelValido(q.campo(QStringLiteral("precioVenta")).comoEntero());
    puntosCliente_ = q.campo(QStringLiteral("puntos")).comoReal();
    for (RenglonVenta& r : renglones_) {
        r.PLista = nivelCliente_;
        r.PrecioElegido = false;
        ponPrecio(r);
    }
    recalcula();
}

double DocumentoVenta::puntosRemision() const {
    return suma(renglones_, puntosRenglon);
}

double DocumentoVenta::costoRemision() const {
    return suma(renglones_, [](const RenglonVenta& r) { return r.Cantidad * r.PCompra; });
}

} // namespace cajaplex
