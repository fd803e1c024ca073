#include "restaurant/RegistroComanda.h"

#include <QSet>

#include "datos/Auditoria.h"
#include "datos/Consulta.h"
#include "datos/Transaccion.h"
#include "datos/Utilerias.h"

namespace cajaplex {
namespace {

const char* const SqlConsultaAreasComidas =
    "Select A.ID as AreaID, A.area, B.id as NodoID, B.clave, B.descripcion, B.numeroPersonas, "
    "B.status, B.tipo, B.activo, ifnull(C.imprimeComandaAlGrabar, 0) as imprimeComandaAlGrabar, "
    "ifnull(C.imprimeCuentaAlPagar, 0) as imprimeCuentaAlPagar, "
    "ifnull(C.permiteCambiarVendedorComanda, 0) as permiteCambiarVendedorComanda "
    "From AreasComida A, NodosComida B, Configura C "
    "Where A.empresaID = :EmpresaID and B.empresaID = A.empresaID and B.area = A.ID "
    "and C.empresaID = A.empresaID and B.status in (0,1,2) and Ifnull(B.activo, 0) = 1 "
    "order by A.area, B.descripcion";

const char* const SqlComandasActivas =
    "Select A.folio, A.nodoComida, B.UsuarioID, B.nombre From Comanda A, Usuarios B "
    "Where A.empresaID = :EmpresaID and A.fechaApertura is not null and A.fechaPago is null "
    "and A.remision is null and A.cancelada = 0 and B.UsuarioID = A.vendedor Order By A.id";

const char* const SqlConsultaComandaDetalles =
    "Select A.id, A.folio, ifnull(Max(B.Seccion), 0) as Seccion, ifnull(Max(Posicion), 0) as "
    "Posicion From Comanda A Left Join ComandaDetalle B On B.empresaID = A.empresaID and B.id = "
    "A.id Where A.empresaID = :EmpresaID and A.vendedor = :ExisteUsuario and A.nodoComida = "
    ":NodoComida and A.cancelada = 0 and A.fechaCierre is null and A.fechaPago is null "
    "Group By A.id, A.folio Order By A.id desc";

const char* const SqlRenglones =
    "Select B.producto, C.producto as descripcion, ifnull(C.precio, 0) as precio, B.cantidad, "
    "B.descuento, B.numeroComensal, B.nota, B.extra, B.seccion, B.posicion "
    "From ComandaDetalle B, Productos C Where B.empresaID = :EmpresaID and B.id = :IDComanda "
    "and B.cancelada = 0 and C.empresaID = B.empresaID and C.id = B.producto "
    "Order By B.seccion, B.posicion";

const char* const SqlProductosMenu =
    "Select A.ID, A.clave, A.producto, ifnull(A.precio, 0) as precio From Productos A "
    "Where A.empresaID = :EmpresaID and A.linea = :Linea and ifnull(A.MostrarKioskoPV,0) = 1 "
    "and ifnull(A.activo, 0) = 1 Order By A.Producto";

const char* const SqlInsertaComanda =
    " Insert into Comanda (empresaID, folio, nodoComida, vendedor, observaciones, cancelada, "
    "usuarioID, numeroPersonas) Values (:EmpresaID, :folio, :NodoComida, :UsuarioID, "
    ":Observaciones, 0, :UsuarioID, :NumeroPersonas)";

const char* const SqlInsertaDetalle =
    " Insert into ComandaDetalle (id, comanda, producto, empresaID, cantidad, descuento, "
    "posicion, numerocomensal, nota, seccion, servida, cancelada, extra) Values (:id, :comanda, "
    ":producto, :EmpresaID, :cantidad, :descuento, :posicion, :numerocomensal, :nota, :seccion, "
    "0, 0, :extra)";

const char* const SqlCerrarCuentaComanda =
    "Update Comanda Set fechaCierre = Getdate() Where empresaID = :EmpresaID and id = :IDComanda "
    "and nodoComida = :NodoComida and vendedor = :UsuarioID and cancelada = 0 "
    "and fechaCierre is null and fechaPago is null";

const char* const SqlReabrirCuentaComanda =
    "Update Comanda Set fechaCierre = Null Where empresaID = :EmpresaID and nodoComida = "
    ":NodoComida and vendedor = :UsuarioID and fechaCierre is not null and fechaPago is null "
    "and cancelada = 0";

const char* const SqlConsultaCuentaComanda =
    "Select A.folio, A.fechaApertura, A.fechaCierre, A.observaciones, A.numeroPersonas, "
    "B.numeroComensal, B.Cantidad, C.Producto, ifnull(B.Cantidad * C.Precio, 0) as Importe, "
    "D.nombre From Comanda A, ComandaDetalle B, Productos C, Usuarios D "
    "Where A.empresaID = :EmpresaID and A.id = :IDComanda and B.empresaID = A.empresaID and "
    "B.id = A.id and B.cancelada = 0 and C.empresaID = A.empresaID and C.id = B.producto and "
    "D.UsuarioID = A.vendedor Order by B.numerocomensal, C.Producto";

const char* const SqlConsultaMeseros =
    "Select A.UsuarioID, A.nombre From Usuarios A, UsuariosEmpresa B Where B.usuarioID = "
    "A.UsuarioID and B.empresaID = :EmpresaID and Ifnull(B.acceso, 0) = 1 and Ifnull(A.activo, "
    "0) = 1 and Ifnull(A.accesaMovil, 0) = 1 and A.UsuarioID <> :UsuarioID order by nombre";

const char* const SqlCambiarMesero =
    "Update Comanda Set vendedor = :MeseroID Where empresaID = :EmpresaID and folio = :Folio "
    "and id = :IDComanda and vendedor = :UsuarioID and cancelada = 0";

void ponStatusNodo(ConexionBD& conexion, Transaccion& t, int64_t empresa, int64_t nodo,
                   int status) {
    Consulta(conexion, QStringLiteral(" Update NodosComida Set Status = ") +
                           numeroSql(int64_t{status}) + QStringLiteral(" Where empresaID = ") +
                           numeroSql(empresa) + QStringLiteral(" And ID = ") + numeroSql(nodo))
        .ejecuta(t);
}

} // namespace

int PlanoComedor::numeroMeseros() const {
    QSet<int64_t> meseros;
    for (const NodoPlano& n : nodos)
        if (n.meseroID != 0) meseros.insert(n.meseroID);
    return static_cast<int>(meseros.size());
}

double CuentaComanda::total() const {
    double suma = 0.0;
    for (const Renglon& r : renglones)
        suma += r.importe;
    return Redondea(suma, 2);
}

double RenglonComanda::importe() const {
    return Redondea(cantidad * precio * (1.0 - descuento / 100.0), 2);
}

RegistroComanda::RegistroComanda(ConexionBD& conexion, const Sesion& sesion)
    : conexion_(conexion), sesion_(sesion) {}

PlanoComedor RegistroComanda::plano() {
    Consulta areas(conexion_, QString::fromUtf8(SqlConsultaAreasComidas));
    areas.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    areas.abre();
    Consulta activas(conexion_, QString::fromUtf8(SqlComandasActivas));
    activas.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    activas.abre();
    QHash<int64_t, std::pair<int64_t, QString>> meseros;
    for (const Registro& r : activas)
        meseros.insert(r.campo(QStringLiteral("nodoComida")).comoEntero(),
                       {r.campo(QStringLiteral("UsuarioID")).comoEntero(),
                        r.campo(QStringLiteral("nombre")).comoTexto()});

    PlanoComedor plano;
    for (const Registro& r : areas) {
        NodoPlano n;
        n.areaID = r.campo(QStringLiteral("AreaID")).comoEntero();
        n.area = r.campo(QStringLiteral("area")).comoTexto();
        n.id = r.campo(QStringLiteral("NodoID")).comoEntero();
        n.clave = r.campo(QStringLiteral("clave")).comoTexto();
        n.descripcion = r.campo(QStringLiteral("descripcion")).comoTexto();
        n.numeroPersonas = static_cast<int>(r.campo(QStringLiteral("numeroPersonas")).comoEntero());
        n.status = static_cast<int>(r.campo(QStringLiteral("status")).comoEntero());
        n.tipo = static_cast<int>(r.campo(QStringLiteral("tipo")).comoEntero());
        const auto mesero = meseros.constFind(n.id);
        if (mesero != meseros.constEnd() && n.status != 0) {
            n.meseroID = mesero->first;
            n.mesero = mesero->second;
        }
        plano.imprimeComandaAlGrabar =
            r.campo(QStringLiteral("imprimeComandaAlGrabar")).comoEntero() != 0;
        plano.imprimeCuentaAlPagar =
            r.campo(QStringLiteral("imprimeCuentaAlPagar")).comoEntero() != 0;
        plano.permiteCambiarVendedorComanda =
            r.campo(QStringLiteral("permiteCambiarVendedorComanda")).comoEntero() != 0;
        plano.nodos.push_back(std::move(n));
    }
    return plano;
}

std::optional<ComandaAbierta> RegistroComanda::comandaDelMesero(int64_t nodoID) {
    Consulta consulta(conexion_, QString::fromUtf8(SqlConsultaComandaDetalles));
    consulta.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    consulta.parametro(QStringLiteral("ExisteUsuario")).entero(sesion_.UsuarioID);
    consulta.parametro(QStringLiteral("NodoComida")).entero(nodoID);
    consulta.abre();
    if (consulta.numeroRegistros() == 0) return std::nullopt;
    return ComandaAbierta{
        consulta.campo(QStringLiteral("id")).comoEntero(),
        consulta.campo(QStringLiteral("folio")).comoEntero(),
        static_cast<int>(consulta.campo(QStringLiteral("Seccion")).comoEntero()),
        static_cast<int>(consulta.campo(QStringLiteral("Posicion")).comoEntero())};
}

std::vector<RenglonComanda> RegistroComanda::renglones(int64_t comandaID) {
    Consulta consulta(conexion_, QString::fromUtf8(SqlRenglones));
    consulta.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    consulta.parametro(QStringLiteral("IDComanda")).entero(comandaID);
    consulta.abre();
    std::vector<RenglonComanda> renglones;
    for (const Registro& r : consulta) {
        RenglonComanda l;
        l.producto = r.campo(QStringLiteral("producto")).comoEntero();
        l.descripcion = r.campo(QStringLiteral("descripcion")).comoTexto();
        l.precio = r.campo(QStringLiteral("precio")).comoReal();
        l.cantidad = r.campo(QStringLiteral("cantidad")).comoReal();
        l.descuento = r.campo(QStringLiteral("descuento")).comoReal();
        l.comensal = static_cast<int>(r.campo(QStringLiteral("numeroComensal")).comoEntero());
        l.nota = r.campo(QStringLiteral("nota")).comoTexto();
        l.extra = r.campo(QStringLiteral("extra")).comoEntero() != 0;
        l.seccion = static_cast<int>(r.campo(QStringLiteral("seccion")).comoEntero());
        l.posicion = static_cast<int>(r.campo(QStringLiteral("posicion")).comoEntero());
        renglones.push_back(std::move(l));
    }
    return renglones;
}

std::vector<ProductoMenu> RegistroComanda::productosMenu(int64_t lineaID) {
    Consulta consulta(conexion_, QString::fromUtf8(SqlProductosMenu));
    consulta.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    consulta.parametro(QStringLiteral("Linea")).entero(lineaID);
    consulta.abre();
    std::vector<ProductoMenu> productos;
    for (const Registro& r : consulta)
        productos.push_back({r.campo(QStringLiteral("ID")).comoEntero(),
                             r.campo(QStringLiteral("clave")).comoTexto(),
                             r.campo(QStringLiteral("producto")).comoTexto(),
                             r.campo(QStringLiteral("precio")).comoReal()});
    return productos;
}

ComandaAbierta RegistroComanda::registraSeccion(int64_t nodoID,
                                                const std::optional<ComandaAbierta>& abierta,
                                                const AperturaComanda& apertura,
                                                const std::vector<RenglonComanda>& carrito) {
    const QString empresa = numeroSql(sesion_.EmpresaID);
    Transaccion t(conexion_);
    ComandaAbierta comanda;
    if (abierta) {
        comanda = *abierta;
    } else {
        Consulta inserta(conexion_, QString::fromUtf8(SqlInsertaComanda));
        inserta.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        inserta.parametro(QStringLiteral("folio")).entero(-1);
        inserta.parametro(QStringLiteral("NodoComida")).entero(nodoID);
        inserta.parametro(QStringLiteral("UsuarioID")).entero(sesion_.UsuarioID);
        inserta.parametro(QStringLiteral("Observaciones")).texto(apertura.observaciones);
        inserta.parametro(QStringLiteral("NumeroPersonas")).entero(apertura.numeroPersonas);
        inserta.ejecuta(t);
        // La llave se halla de nuevo por el folio provisional y quien la abrió, la más nueva.
        Consulta llave(conexion_, QStringLiteral(" Select id From Comanda Where empresaID = ") +
                                      empresa + QStringLiteral(" and folio = -1 and usuarioID = ") +
                                      numeroSql(sesion_.UsuarioID) +
                                      QStringLiteral(" Order by id desc limit 1"));
        llave.abre(t);
        comanda.id = llave.campo(QStringLiteral("id")).comoEntero();
        comanda.folio = comanda.id;
        Auditoria::registra(t, sesion_,
                            {tipoAuditoria::Insercion,
                             QString::fromUtf8(ModuloComandas),
                             QStringLiteral("Comanda: %1 Nodo: %2 Personas: %3")
                                 .arg(comanda.folio)
                                 .arg(nodoID)
                                 .arg(apertura.numeroPersonas),
                             {},
                             apertura.observaciones});
        Consulta(conexion_, QStringLiteral(" Update Comanda Set Folio = ") + numeroSql(comanda.id) +
                                QStringLiteral(" Where empresaID = ") + empresa +
                                QStringLiteral(" and id = ") + numeroSql(comanda.id))
            .ejecuta(t);
        ponStatusNodo(conexion_, t, sesion_.EmpresaID, nodoID, 1);
    }

    ++comanda.seccion;
    Consulta detalle(conexion_, QString::fromUtf8(SqlInsertaDetalle));
    for (const RenglonComanda& r : carrito) {
        ++comanda.posicion;
        detalle.parametro(QStringLiteral("id")).entero(comanda.id);
        detalle.parametro(QStringLiteral("comanda")).entero(comanda.folio);
        detalle.parametro(QStringLiteral("producto")).entero(r.producto);
        detalle.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        detalle.parametro(QStringLiteral("cantidad")).real(r.cantidad);
        detalle.parametro(QStringLiteral("descuento")).real(r.descuento);
        detalle.parametro(QStringLiteral("posicion")).entero(comanda.posicion);
        detalle.parametro(QStringLiteral("numerocomensal")).entero(r.comensal);
        detalle.parametro(QStringLiteral("nota")).texto(r.nota);
        detalle.parametro(QStringLiteral("seccion")).entero(comanda.seccion);
        detalle.parametro(QStringLiteral("extra")).booleano(r.extra);
        detalle.ejecuta(t);
    }
    if (abierta)
        Auditoria::registra(t, sesion_,
                            {tipoAuditoria::Actualizacion,
                             QString::fromUtf8(ModuloComandas),
                             QStringLiteral("Comanda: %1 Sección: %2 Renglones: %3")
                                 .arg(comanda.folio)
                                 .arg(comanda.seccion)
                                 .arg(carrito.size()),
                             {},
                             {}});
    t.confirma();
    return comanda;
}

bool RegistroComanda::cierraCuenta(int64_t nodoID, int64_t comandaID) {
    Consulta cierra(conexion_, QString::fromUtf8(SqlCerrarCuentaComanda));
    cierra.parametro(QStringLiteral("IDComanda")).entero(comandaID);
    return cambiaCuenta(cierra, nodoID, 2,
                        QStringLiteral("Comanda: %1 Cuenta cerrada").arg(comandaID));
}

bool RegistroComanda::reabreCuenta(int64_t nodoID) {
    Consulta reabre(conexion_, QString::fromUtf8(SqlReabrirCuentaComanda));
    return cambiaCuenta(reabre, nodoID, 1, QStringLiteral("Nodo: %1 Cuenta reabierta").arg(nodoID));
}

CuentaComanda RegistroComanda::cuenta(int64_t comandaID) {
    Consulta consulta(conexion_, QString::fromUtf8(SqlConsultaCuentaComanda));
    consulta.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    consulta.parametro(QStringLiteral("IDComanda")).entero(comandaID);
    consulta.abre();
    CuentaComanda cuenta;
    cuenta.folio = consulta.campo(QStringLiteral("folio")).comoEntero();
    cuenta.apertura = consulta.campo(QStringLiteral("fechaApertura")).comoFecha();
    cuenta.cierre = consulta.campo(QStringLiteral("fechaCierre")).comoFecha();
    cuenta.observaciones = consulta.campo(QStringLiteral("observaciones")).comoTexto();
    cuenta.personas =
        static_cast<int>(consulta.campo(QStringLiteral("numeroPersonas")).comoEntero());
    cuenta.mesero = consulta.campo(QStringLiteral("nombre")).comoTexto();
    for (const Registro& r : consulta)
        cuenta.renglones.push_back(
            {static_cast<int>(r.campo(QStringLiteral("numeroComensal")).comoEntero()),
             r.campo(QStringLiteral("Cantidad")).comoReal(),
             r.campo(QStringLiteral("Producto")).comoTexto(),
             r.campo(QStringLiteral("Importe")).comoReal()});
    return cuenta;
}

std::vector<Mesero> RegistroComanda::meseros() {
    Consulta consulta(conexion_, QString::fromUtf8(SqlConsultaMeseros));
    consulta.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    consulta.parametro(QStringLiteral("UsuarioID")).entero(sesion_.UsuarioID);
    consulta.abre();
    std::vector<Mesero> meseros;
    for (const Registro& r : consulta)
        meseros.push_back({r.campo(QStringLiteral("UsuarioID")).comoEntero(),
                           r.campo(QStringLiteral("nombre")).comoTexto()});
    return meseros;
}

bool RegistroComanda::cambiaMesero(const ComandaAbierta& comanda, const Mesero& mesero) {
    Consulta cambia(conexion_, QString::fromUtf8(SqlCambiarMesero));
    cambia.parametro(QStringLiteral("MeseroID")).entero(mesero.id);
    cambia.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    cambia.parametro(QStringLiteral("Folio")).entero(comanda.folio);
    cambia.parametro(QStringLiteral("IDComanda")).entero(comanda.id);
    cambia.parametro(QStringLiteral("UsuarioID")).entero(sesion_.UsuarioID);
    Transaccion t(conexion_);
    cambia.ejecuta(t);
    if (cambia.filasAfectadas() == 0) return false;
    Auditoria::registra(
        t, sesion_,
        {tipoAuditoria::Actualizacion,
         QString::fromUtf8(ModuloComandas),
         QStringLiteral("Comanda: %1 Mesero: %2").arg(comanda.folio).arg(mesero.nombre),
         QStringLiteral("Mesero: ") + sesion_.NombreDeUsuario,
         {}});
    t.confirma();
    return true;
}

bool RegistroComanda::cambiaCuenta(Consulta& cambio, int64_t nodoID, int status,
                                   const QString& bitacora) {
    cambio.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    cambio.parametro(QStringLiteral("NodoComida")).entero(nodoID);
    cambio.parametro(QStringLiteral("UsuarioID")).entero(sesion_.UsuarioID);
    Transaccion t(conexion_);
    cambio.ejecuta(t);
    // Sin renglón: la comanda no es de este mesero (o ya cambió en otra estación).
    if (cambio.filasAfectadas() == 0) return false;
    ponStatusNodo(conexion_, t, sesion_.EmpresaID, nodoID, status);
    Auditoria::registra(
        t, sesion_,
        {tipoAuditoria::Actualizacion, QString::fromUtf8(ModuloComandas), bitacora, {}, {}});
    t.confirma();
    return true;
}

} // namespace cajaplex
