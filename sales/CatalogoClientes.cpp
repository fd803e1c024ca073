#include "sales/CatalogoClientes.h"

#include <QRegularExpression>

#include "datos/Auditoria.h"
#include "datos/ConexionBD.h"
#include "datos/Transaccion.h"

namespace cajaplex {
namespace {

const char* const SqlConsultaClientes =
    "Select id, nombre, razonSocial, rfc, calle, numeroExterior, numeroInterior, colonia, cp, "
    "localidad, telefono, telefonoCelular, email, ifnull(precioVenta, 1) as precioVenta, "
    "ifnull(limiteCredito, 0) as limiteCredito, ifnull(diasCredito, 0) as diasCredito, "
    "ifnull(bloquearCredito, 0) as bloquearCredito, ifnull(puntos, 0) as puntos "
    "From Clientes Where empresaID = :EmpresaID and (:Buscar = '' "
    "or instr(lower(nombre), lower(:Buscar)) > 0 or instr(lower(ifnull(razonSocial, '')), "
    "lower(:Buscar)) > 0 or instr(upper(ifnull(rfc, '')), upper(:Buscar)) > 0 "
    "or instr(ifnull(telefono, ''), :Buscar) > 0 or instr(ifnull(telefonoCelular, ''), :Buscar) > "
    "0) "
    "Order by nombre";

const char* const SqlExisteCliente =
    "Select count(*) as Veces From Clientes Where empresaID = :EmpresaID and id = :ID";

// Todo documento que nombra al cliente, cancelado o no, y si es el predeterminado de la empresa.
const char* const SqlReferenciasCliente =
    "Select (Select count(*) From Remision Where empresaID = :EmpresaID and cliente = :ID) + "
    "(Select count(*) From PagosRemision Where empresaID = :EmpresaID and cliente = :ID) + "
    "(Select count(*) From Cotizacion Where empresaID = :EmpresaID and cliente = :ID) + "
    "(Select count(*) From Factura Where empresaID = :EmpresaID and cliente = :ID) + "
    "(Select count(*) From NotaCredito Where empresaID = :EmpresaID and cliente = :ID) + "
    "(Select count(*) From PagosFactura Where empresaID = :EmpresaID and cliente = :ID) + "
    "(Select count(*) From PagosFacturaCFDI Where empresaID = :EmpresaID and cliente = :ID) "
    "as Documentos, "
    "(Select count(*) From Configura Where empresaID = :EmpresaID and "
    "(clienteDefaultRem = :ID or clienteDefaultCot = :ID)) as Predeterminado";

const char* const SqlInsertaCliente =
    "Insert Into Clientes (empresaID, nombre, razonSocial, rfc, calle, numeroExterior, "
    "numeroInterior, colonia, cp, localidad, telefono, telefonoCelular, email, precioVenta, "
    "limiteCredito, diasCredito, bloquearCredito, puntos, usuarioID) Values (:EmpresaID, :nombre, "
    ":razonSocial, :rfc, :calle, :numeroExterior, :numeroInterior, :colonia, :cp, :localidad, "
    ":telefono, :telefonoCelular, :email, :precioVenta, :limiteCredito, :diasCredito, "
    ":bloquearCredito, 0, :UsuarioID)";

// El monedero (puntos) no se toca: lo mueven las ventas de otras estaciones.
const char* const SqlActualizaCliente =
    "Update Clientes Set nombre = :nombre, razonSocial = :razonSocial, rfc = :rfc, calle = :calle, "
    "numeroExterior = :numeroExterior, numeroInterior = :numeroInterior, colonia = :colonia, "
    "cp = :cp, localidad = :localidad, telefono = :telefono, telefonoCelular = :telefonoCelular, "
    "email = :email, precioVenta = :precioVenta, limiteCredito = :limiteCredito, "
    "diasCredito = :diasCredito, bloquearCredito = :bloquearCredito "
    "Where empresaID = :EmpresaID and id = :ID";

const char* const SqlBorraCliente =
    "Delete From Clientes Where empresaID = :EmpresaID and id = :ID";

QString textoCliente(const DatosCliente& c) {
    return QStringLiteral("%1 | RFC: %2 | Precio %3 | Crédito: %4, %5 días%6")
        .arg(c.nombre, c.rfc, QString::number(c.precioVenta),
             QString::number(c.limiteCredito, 'f', 2), QString::number(c.diasCredito),
             c.bloquearCredito ? QStringLiteral(" (bloqueado)") : QString());
}

} // namespace

bool correoValido(const QString& correo) {
    static const QRegularExpression forma(QStringLiteral("^[^@\\s]+@[^@\\s]+\\.[^@\\s]+$"));
    return forma.match(correo).hasMatch();
}

CatalogoClientes::CatalogoClientes(ConexionBD& conexion, const Sesion& sesion)
    : ConsultaClientes(conexion, QString::fromUtf8(SqlConsultaClientes)),
      ExisteCliente(conexion, QString::fromUtf8(SqlExisteCliente)),
      ReferenciasCliente(conexion, QString::fromUtf8(SqlReferenciasCliente)),
      InsertaCliente(conexion, QString::fromUtf8(SqlInsertaCliente)),
      ActualizaCliente(conexion, QString::fromUtf8(SqlActualizaCliente)),
      BorraCliente(conexion, QString::fromUtf8(SqlBorraCliente)), conexion_(conexion),
      sesion_(sesion) {}

std::vector<DatosCliente> CatalogoClientes::consulta(const QString& busqueda) {
    ConsultaClientes.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    ConsultaClientes.parametro(QStringLiteral("Buscar")).texto(busqueda.trimmed());
    ConsultaClientes.abre();
    std::vector<DatosCliente> clientes;
    clientes.reserve(static_cast<size_t>(ConsultaClientes.numeroRegistros()));
    for (const Registro& r : ConsultaClientes) {
        auto t = [&](const char* campo) { return r.campo(QString::fromLatin1(campo)).comoTexto(); };
        DatosCliente c;
        c.id = r.campo(QStringLiteral("id")).comoEntero();
        c.nombre = t("nombre");
        c.razonSocial = t("razonSocial");
        c.rfc = t("rfc");
        c.calle = t("calle");
        c.numeroExterior = t("numeroExterior");
        c.numeroInterior = t("numeroInterior");
        c.colonia = t("colonia");
        c.cp = t("cp");
        c.localidad = t("localidad");
        c.telefono = t("telefono");
        c.telefonoCelular = t("telefonoCelular");
        c.email = t("email");
        c.precioVenta = static_cast<int>(r.campo(QStringLiteral("precioVenta")).comoEntero());
        c.limiteCredito = r.campo(QStringLiteral("limiteCredito")).comoReal();
        c.diasCredito = static_cast<int>(r.campo(QStringLiteral("diasCredito")).comoEntero());
        c.bloquearCredito = r.campo(QStringLiteral("bloquearCredito")).comoEntero() != 0;
        c.puntos = r.campo(QStringLiteral("puntos")).comoReal();
        clientes.push_back(std::move(c));
    }
    ConsultaClientes.cierra();
    return clientes;
}

bool CatalogoClientes::existe(Transaccion& t, int64_t id) {
    ExisteCliente.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    ExisteCliente.parametro(QStringLiteral("ID")).entero(id);
    ExisteCliente.abre(t);
    return ExisteCliente.campo(QStringLiteral("Veces")).comoEntero() > 0;
}

QString CatalogoClientes::almacena(DatosCliente& cliente, const DatosCliente* anterior) {
    cliente.nombre = cliente.nombre.trimmed();
    cliente.rfc = rfcNormalizado(cliente.rfc);
    cliente.email = cliente.email.trimmed();
    if (cliente.nombre.isEmpty()) return QString::fromUtf8(MensajeClienteSinNombre);
    if (!cliente.rfc.isEmpty() && !rfcValido(cliente.rfc))
        return QString::fromUtf8(MensajeRfcInvalido);
    if (!cliente.email.isEmpty() && !correoValido(cliente.email))
        return QString::fromUtf8(MensajeCorreoInvalido);
    if (cliente.limiteCredito < 0 || cliente.diasCredito < 0)
        return QString::fromUtf8(MensajeCreditoNegativo);
    cliente.precioVenta = std::clamp(cliente.precioVenta, 1, 5);

    const bool alta = cliente.id == 0;
    Consulta& escritura = alta ? InsertaCliente : ActualizaCliente;
    const std::pair<const char*, const QString*> textos[] = {
        {"nombre", &cliente.nombre},
        {"razonSocial", &cliente.razonSocial},
        {"rfc", &cliente.rfc},
        {"calle", &cliente.calle},
        {"numeroExterior", &cliente.numeroExterior},
        {"numeroInterior", &cliente.numeroInterior},
        {"colonia", &cliente.colonia},
        {"cp", &cliente.cp},
        {"localidad", &cliente.localidad},
        {"telefono", &cliente.telefono},
        {"telefonoCelular", &cliente.telefonoCelular},
        {"email", &cliente.email}};
    for (const auto& [marca, valor] : textos)
        escritura.parametro(QString::fromLatin1(marca)).texto(valor->trimmed());
    escritura.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    escritura.parametro(QStringLiteral("precioVenta")).entero(cliente.precioVenta);
    escritura.parametro(QStringLiteral("limiteCredito")).real(cliente.limiteCredito);
    escritura.parametro(QStringLiteral("diasCredito")).entero(cliente.diasCredito);
    escritura.parametro(QStringLiteral("bloquearCredito")).booleano(cliente.bloquearCredito);
    if (alta)
        escritura.parametro(QStringLiteral("UsuarioID")).entero(sesion_.UsuarioID);
    else
        escritura.parametro(QStringLiteral("ID")).entero(cliente.id);

    Transaccion t(conexion_);
    // Otra estación pudo borrarlo mientras se editaba: no se escribe nada ni se anota un cambio.
    if (!alta && !existe(t, cliente.id)) return QString::fromUtf8(MensajeClienteNoExiste);
    escritura.ejecuta(t);
    const int64_t id = alta ? escritura.ultimoId() : cliente.id;
    Auditoria::registra(t, sesion_,
                        {alta ? tipoAuditoria::Insercion : tipoAuditoria::Actualizacion,
                         QString::fromUtf8(ModuloClientes), textoCliente(cliente),
                         anterior ? textoCliente(*anterior) : QString(),
                         QStringLiteral("Cliente ") + QString::number(id)});
    t.confirma();
    cliente.id = id;
    return {};
}

QString CatalogoClientes::elimina(const DatosCliente& cliente) {
    Transaccion t(conexion_);
    if (!existe(t, cliente.id)) return QString::fromUtf8(MensajeClienteNoExiste);
    ReferenciasCliente.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    ReferenciasCliente.parametro(QStringLiteral("ID")).entero(cliente.id);
    ReferenciasCliente.abre(t);
    if (ReferenciasCliente.campo(QStringLiteral("Predeterminado")).comoEntero() > 0)
        return QString::fromUtf8(MensajeClientePredeterminado);
    if (ReferenciasCliente.campo(QStringLiteral("Documentos")).comoEntero() > 0)
        return QString::fromUtf8(MensajeClienteConTransacciones);
    BorraCliente.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    BorraCliente.parametro(QStringLiteral("ID")).entero(cliente.id);
    BorraCliente.ejecuta(t);
    Auditoria::registra(t, sesion_,
                        {tipoAuditoria::Cancelacion,
                         QString::fromUtf8(ModuloClientes),
                         {},
                         textoCliente(cliente),
                         QStringLiteral("Cliente ") + QString::number(cliente.id)});
    t.confirma();
    return {};
}

} // namespace cajaplex
