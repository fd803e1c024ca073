#include "catalog/KardexProducto.h"

#include "datos/ConexionBD.h"
#include "datos/Registros.h"

namespace cajaplex {
namespace {

// Una fuente del kardex: su renglón, su encabezado y las condiciones con que el servicio mueve
// existencias por ella.
struct FuenteKardex {
    const char* modulo;
    const char* detalle;
    const char* encabezado;
    const char* liga;    // renglón con encabezado
    const char* usuario; // columna del encabezado con el usuario
    int tipo;
    const char* filtro;
    bool conCliente;
};

const FuenteKardex kFuentes[] = {
    {"Remisión", "RemisionDetalle", "Remision", "A.remision = B.folio", "B.vendedor", 1,
     "Ifnull(B.Cancelada, 0) = 0 And B.DescontoExistencias = 1", true},
    {"Ajuste de Salida", "AjusteProductosDetalle", "AjusteProductos", "A.ID = B.ID", "B.usuarioID",
     1, "Ifnull(B.esAjusteEntrada, 0) = 0 And Ifnull(B.Cancelada, 0) = 0", false},
    {"Devolución de Mercancía", "DevolucionOrdenCompraDetalle", "DevolucionOrdenCompra",
     "A.devolucionOrdenCompra = B.folio", "B.usuarioID", 1, "Ifnull(B.Cancelada, 0) = 0", false},
    {"Recepción de Mercancía", "OrdenCompraDetalle", "OrdenCompra", "A.ordenCompra = B.folio",
     "B.usuarioID", 0, "Ifnull(B.Cancelada, 0) = 0", false},
    {"Ajuste de Entrada", "AjusteProductosDetalle", "AjusteProductos", "A.ID = B.ID", "B.usuarioID",
     0, "B.esAjusteEntrada = 1 And Ifnull(B.Cancelada, 0) = 0", false},
};

// Dos ramas por fuente: los renglones del producto y los de los kits que lo llevan.
QString ramaKardex(int numero, const FuenteKardex& f, bool porKit) {
    auto s = [](const char* texto) { return QString::fromUtf8(texto); };
    QString rama =
        QStringLiteral("Select %1 as Fuente, B.fecha as Fecha, %2 as Cantidad, "
                       "%3 as TipoTransaccion, '%4' as moduloSistema, "
                       "U.nombre as Usuario, B.folio as Folio, %5 as Cliente, "
                       "%6 as Paquete ")
            .arg(numero)
            .arg(porKit ? QStringLiteral("A.cantidad * P.cantidad") : QStringLiteral("A.cantidad"))
            .arg(f.tipo)
            .arg(s(f.modulo), f.conCliente ? QStringLiteral("D.nombre") : QStringLiteral("''"),
                 porKit ? QStringLiteral("K.clave") : QStringLiteral("''"));
    if (porKit)
        rama += QStringLiteral("From ProductosPaquetes P "
                               "Join Productos K On K.empresaID = P.empresaID And K.ID = P.id "
                               "And K.esPaquete = 1 "
                               "Join %1 A On A.empresaID = K.empresaID And A.clave = K.clave ")
                    .arg(s(f.detalle));
    else
        rama += QStringLiteral("From %1 A ").arg(s(f.detalle));
    rama += QStringLiteral("Join %1 B On %2 And A.empresaID = B.empresaID "
                           "Left Join Usuarios U On U.usuarioID = %3 ")
                .arg(s(f.encabezado), s(f.liga), s(f.usuario));
    if (f.conCliente)
        rama += QStringLiteral(
            "Left Join Clientes D On D.id = B.cliente And D.empresaID = B.empresaID ");
    rama += porKit ? QStringLiteral("Where P.empresaID = :EmpresaID And P.clave = :Clave ")
                   : QStringLiteral("Where A.empresaID = :EmpresaID And A.clave = :Clave ");
    rama += QStringLiteral("And %1 And Date(B.fecha) Between Date(:FechaInicio) And "
                           "Date(:FechaFin)")
                .arg(s(f.filtro));
    return rama;
}

QString sqlKardex() {
    QStringList ramas;
    int numero = 1;
    for (const FuenteKardex& f : kFuentes) {
        ramas << ramaKardex(numero, f, false) << ramaKardex(numero, f, true);
        ++numero;
    }
    return QStringLiteral("Select Fecha, Cantidad, TipoTransaccion, moduloSistema, Usuario, "
                          "Folio, Cliente, Paquete From (") +
           ramas.join(QStringLiteral(" Union All ")) +
           QStringLiteral(") Order By Fuente, Fecha, Folio");
}

const char* const SqlExistenciaActual =
    "Select case when Ifnull(existencia,0) <= 0 then 0 Else existencia End as Existencia "
    "From Productos Where empresaID = :EmpresaID and ID = :ProductoID";

} // namespace

KardexProducto::KardexProducto(ConexionDatos& conexion)
    : ConsultaKardex(conexion, sqlKardex()),
      ExistenciaActual(conexion, QString::fromUtf8(SqlExistenciaActual)) {}

std::vector<MovimientoKardex> KardexProducto::consulta(int64_t empresaID, const QString& clave,
                                                       const QDate& inicio, const QDate& fin) {
    const QString formato = QStringLiteral("yyyy-MM-dd");
    ConsultaKardex.parametro(QStringLiteral("EmpresaID")).entero(empresaID);
    ConsultaKardex.parametro(QStringLiteral("Clave")).texto(clave);
    ConsultaKardex.parametro(QStringLiteral("FechaInicio")).texto(inicio.toString(formato));
    ConsultaKardex.parametro(QStringLiteral("FechaFin")).texto(fin.toString(formato));
    ConsultaKardex.abre();
    std::vector<MovimientoKardex> movimientos;
    movimientos.reserve(static_cast<size_t>(ConsultaKardex.numeroRegistros()));
    for (const Registro& r : ConsultaKardex) {
        MovimientoKardex m;
        m.fecha = r.campo(QStringLiteral("Fecha")).comoFecha();
        m.cantidad = r.campo(QStringLiteral("Cantidad")).comoReal();
        m.tipoTransaccion =
            static_cast<int>(r.campo(QStringLiteral("TipoTransaccion")).comoEntero());
        m.moduloSistema = r.campo(QStringLiteral("moduloSistema")).comoTexto();
        m.usuario = r.campo(QStringLiteral("Usuario")).comoTexto();
        m.folio = r.campo(QStringLiteral("Folio")).comoEntero();
        m.cliente = r.campo(QStringLiteral("Cliente")).comoTexto();
        m.paquete = r.campo(QStringLiteral("Paquete")).comoTexto();
        movimientos.push_back(std::move(m));
    }
    return movimientos;
}

double KardexProducto::existenciaActual(int64_t empresaID, int64_t productoID) {
    ExistenciaActual.parametro(QStringLiteral("EmpresaID")).entero(empresaID);
    ExistenciaActual.parametro(QStringLiteral("ProductoID")).entero(productoID);
    ExistenciaActual.abre();
    return ExistenciaActual.campo(QStringLiteral("Existencia")).comoReal();
}

} // namespace cajaplex
