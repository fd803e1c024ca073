#include "purchasing/CatalogoProveedores.h"

#include <QRegularExpression>

#include "datos/Auditoria.h"
#include "datos/ConexionBD.h"
#include "datos/Transaccion.h"
#include "sales/CatalogoClientes.h"

namespace cajaplex {
namespace {

const char* const SqlConsultaProveedores =
    "Select id, nombre, razonSocial, rfc, calle, numeroExterior, numeroInterior, colonia, cp, "
    "localidad, contacto, telefono, email, ifnull(limiteCredito, 0) as limiteCredito, "
    "ifnull(diasCredito, 0) as diasCredito, ifnull(desglosaRM, 0) as desglosaRM "
    "From Proveedores Where empresaID = :EmpresaID and (:Buscar = '' "
    "or instr(lower(nombre), lower(:Buscar)) > 0 or instr(lower(ifnull(razonSocial, '')), "
    "lower(:Buscar)) > 0 or instr(upper(ifnull(rfc, '')), upper(:Buscar)) > 0 "
    "or instr(lower(ifnull(contacto, '')), lower(:Buscar)) > 0 "
    "or instr(ifnull(telefono, ''), :Buscar) > 0) "
    "Order by nombre";

const char* const SqlExisteProveedor =
    "Select count(*) as Veces From Proveedores Where empresaID = :EmpresaID and id = :ID";

// Todo documento de compras que nombra al proveedor, cancelado o no.
const char* const SqlReferenciasProveedor =
    "Select (Select count(*) From Requisicion Where empresaID = :EmpresaID and proveedor = :ID) + "
    "(Select count(*) From OrdenCompra Where empresaID = :EmpresaID and proveedor = :ID) + "
    "(Select count(*) From DevolucionOrdenCompra Where empresaID = :EmpresaID and proveedor = "
    ":ID) + "
    "(Select count(*) From PagosOrdenCompra Where empresaID = :EmpresaID and Proveedor = :ID) + "
    "(Select count(*) From Gastos Where empresaID = :EmpresaID and proveedor = :ID) "
    "as Documentos";

// Los nuevos llevan el país como los importados.
const char* const SqlInsertaProveedor =
    "Insert Into Proveedores (empresaID, nombre, razonSocial, rfc, calle, numeroExterior, "
    "numeroInterior, colonia, cp, localidad, contacto, telefono, email, limiteCredito, "
    "diasCredito, desglosaRM, pais, usuarioID) Values (:EmpresaID, :nombre, :razonSocial, :rfc, "
    ":calle, :numeroExterior, :numeroInterior, :colonia, :cp, :localidad, :contacto, :telefono, "
    ":email, :limiteCredito, :diasCredito, :desglosaRM, 'MÉXICO', :UsuarioID)";

const char* const SqlActualizaProveedor =
    "Update Proveedores Set nombre = :nombre, razonSocial = :razonSocial, rfc = :rfc, "
    "calle = :calle, numeroExterior = :numeroExterior, numeroInterior = :numeroInterior, "
    "colonia = :colonia, cp = :cp, localidad = :localidad, contacto = :contacto, "
    "telefono = :telefono, email = :email, limiteCredito = :limiteCredito, "
    "diasCredito = :diasCredito, desglosaRM = :desglosaRM Where empresaID = :EmpresaID and id = "
    ":ID";

const char* const SqlBorraProveedor =
    "Delete From Proveedores Where empresaID = :EmpresaID and id = :ID";

QString textoProveedor(const DatosProveedor& p) {
    return QStringLiteral("%1 | RFC: %2 | Contacto: %3 | Crédito: %4 a %5 días | IVA: %6")
        .arg(p.nombre, p.rfc, p.contacto, QString::number(p.limiteCredito, 'f', 2))
        .arg(p.diasCredito)
        .arg(p.desglosaRM);
}

} // namespace

CatalogoProveedores::CatalogoProveedores(ConexionBD& conexion, const Sesion& sesion)
    : ConsultaProveedores(conexion, QString::fromUtf8(SqlConsultaProveedores)),
      ExisteProveedor(conexion, QString::fromUtf8(SqlExisteProveedor)),
      ReferenciasProveedor(conexion, QString::fromUtf8(SqlReferenciasProveedor)),
      InsertaProveedor(conexion, QString::fromUtf8(SqlInsertaProveedor)),
      ActualizaProveedor(conexion, QString::fromUtf8(SqlActualizaProveedor)),
      BorraProveedor(conexion, QString::fromUtf8(SqlBorraProveedor)), conexion_(conexion),
      sesion_(sesion) {}

std::vector<DatosProveedor> CatalogoProveedores::consulta(const QString& busqueda) {
    ConsultaProveedores.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    ConsultaProveedores.parametro(QStringLiteral("Buscar")).texto(busqueda.trimmed());
    ConsultaProveedores.abre();
    std::vector<DatosProveedor> proveedores;
    proveedores.reserve(static_cast<size_t>(ConsultaProveedores.numeroRegistros()));
    for (const Registro& r : ConsultaProveedores) {
        auto t = [&](const char* campo) { return r.campo(QString::fromLatin1(campo)).comoTexto(); };
        DatosProveedor p;
        p.id = r.campo(QStringLiteral("id")).comoEntero();
        p.nombre = t("nombre");
        p.razonSocial = t("razonSocial");
        p.rfc = t("rfc");
        p.calle = t("calle");
        p.numeroExterior = t("numeroExterior");
        p.numeroInterior = t("numeroInterior");
        p.colonia = t("colonia");
        p.cp = t("cp");
        p.localidad = t("localidad");
        p.contacto = t("contacto");
        p.telefono = t("telefono");
        p.email = t("email");
        p.limiteCredito = r.campo(QStringLiteral("limiteCredito")).comoReal();
        p.diasCredito = static_cast<int>(r.campo(QStringLiteral("diasCredito")).comoEntero());
        p.desglosaRM = static_cast<int>(r.campo(QStringLiteral("desglosaRM")).comoEntero());
        proveedores.push_back(std::move(p));
    }
    ConsultaProveedores.cierra();
    return proveedores;
}

bool CatalogoProveedores::existe(Transaccion& t, int64_t id) {
    ExisteProveedor.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    ExisteProveedor.parametro(QStringLiteral("ID")).entero(id);
    ExisteProveedor.abre(t);
    return ExisteProveedor.campo(QStringLiteral("Veces")).comoEntero() > 0;
}

QString CatalogoProveedores::almacena(DatosProveedor& proveedor, const DatosProveedor* anterior) {
    proveedor.nombre = proveedor.nombre.trimmed();
    proveedor.rfc = rfcNormalizado(proveedor.rfc);
    proveedor.email = proveedor.email.trimmed();
    if (proveedor.nombre.isEmpty()) return QString::fromUtf8(MensajeProveedorSinNombre);
    if (!proveedor.rfc.isEmpty() && !rfcValido(proveedor.rfc))
        return QString::fromUtf8(MensajeRfcInvalido);
    static const QRegularExpression correo(QStringLiteral("^[^@\\s]+@[^@\\s]+\\.[^@\\s]+$"));
    if (!proveedor.email.isEmpty() && !correo.match(proveedor.email).hasMatch())
        return QString::fromUtf8(MensajeCorreoInvalido);
    if (proveedor.limiteCredito < 0) return QString::fromUtf8(MensajeLimiteNegativo);
    if (proveedor.diasCredito < 0) return QString::fromUtf8(MensajeDiasCreditoNegativos);

    const bool alta = proveedor.id == 0;
    Consulta& escritura = alta ? InsertaProveedor : ActualizaProveedor;
    const std::pair<const char*, const QString*> textos[] = {
        {"nombre", &proveedor.nombre},
        {"razonSocial", &proveedor.razonSocial},
        {"rfc", &proveedor.rfc},
        {"calle", &proveedor.calle},
        {"numeroExterior", &proveedor.numeroExterior},
        {"numeroInterior", &proveedor.numeroInterior},
        {"colonia", &proveedor.colonia},
        {"cp", &proveedor.cp},
        {"localidad", &proveedor.localidad},
        {"contacto", &proveedor.contacto},
        {"telefono", &proveedor.telefono},
        {"email", &proveedor.email}};
    for (const auto& [marca, valor] : textos)
        escritura.parametro(QString::fromLatin1(marca)).texto(valor->trimmed());
    escritura.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    escritura.parametro(QStringLiteral("limiteCredito")).real(proveedor.limiteCredito);
    escritura.parametro(QStringLiteral("diasCredito")).entero(proveedor.diasCredito);
    escritura.parametro(QStringLiteral("desglosaRM"))
        .entero(proveedor.desglosaRM >= 0 && proveedor.desglosaRM <= 4 ? proveedor.desglosaRM : 0);
    if (alta)
        escritura.parametro(QStringLiteral("UsuarioID")).entero(sesion_.UsuarioID);
    else
        escritura.parametro(QStringLiteral("ID")).entero(proveedor.id);

    Transaccion t(conexion_);
    // Otra estación pudo borrarlo mientras se editaba: no se escribe nada ni se anota un cambio.
    if (!alta && !existe(t, proveedor.id)) {
        escritura.limpiaParametros();
        return QString::fromUtf8(MensajeProveedorNoExiste);
    }
    escritura.ejecuta(t);
    const int64_t id = alta ? escritura.ultimoId() : proveedor.id;
    Auditoria::registra(t, sesion_,
                        {alta ? tipoAuditoria::Insercion : tipoAuditoria::Actualizacion,
                         QString::fromUtf8(ModuloProveedores), textoProveedor(proveedor),
                         anterior ? textoProveedor(*anterior) : QString(),
                         QStringLiteral("Proveedor ") + QString::number(id)});
    t.confirma();
    proveedor.id = id;
    return {};
}

QString CatalogoProveedores::elimina(const DatosProveedor& proveedor) {
    Transaccion t(conexion_);
    if (!existe(t, proveedor.id)) return QString::fromUtf8(MensajeProveedorNoExiste);
    ReferenciasProveedor.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    ReferenciasProveedor.parametro(QStringLiteral("ID")).entero(proveedor.id);
    ReferenciasProveedor.abre(t);
    if (ReferenciasProveedor.campo(QStringLiteral("Documentos")).comoEntero() > 0)
        return QString::fromUtf8(MensajeProveedorConTransacciones);
    BorraProveedor.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    BorraProveedor.parametro(QStringLiteral("ID")).entero(proveedor.id);
    BorraProveedor.ejecuta(t);
    Auditoria::registra(t, sesion_,
                        {tipoAuditoria::Cancelacion,
                         QString::fromUtf8(ModuloProveedores),
                         {},
                         textoProveedor(proveedor),
                         QStringLiteral("Proveedor ") + QString::number(proveedor.id)});
    t.confirma();
    return {};
}

} // namespace cajaplex
