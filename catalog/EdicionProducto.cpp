#include "catalog/EdicionProducto.h"

#include <cmath>

#include "catalog/CatalogoLineas.h"
#include "datos/Auditoria.h"
#include "datos/ConexionBD.h"
#include "datos/Transaccion.h"
#include "datos/Utilerias.h"

namespace cajaplex {
namespace {

const char* const SqlConsultarProducto =
    "Select A.ID, A.clave, A.producto, A.unidad, A.moneda, A.claveSAT, A.existencia, A.pCompra, "
    "A.manejaInventarios, A.requiereAutorizacionVenta, A.manejaSeries, A.esPaquete, "
    "A.Recurrente, A.caduca, A.MostrarKioskoPV, A.utilizaBascula, A.precio, A.precio2, "
    "A.precio3, A.precio4, A.precio5, A.precioAbierto, A.porcentajeImpuesto, A.IEPS, "
    "A.datoAdicional1, substring(A.CodigoBarra, 1, 150) as CodigoBarra, A.bonificaPuntos, "
    "A.porcentajeBonificacion, A.maximo, A.minimo, A.Peso, A.activo, A.linea, "
    "B.Foto, B.Miniatura\n"
    "from Productos A Left Outer Join ProductosFotos  B On A.id = B.ID and B.Posicion = 1\n"
    "Where A.empresaID = :EmpresaID\n"
    "And A.ID = :ProductoID";

const char* const SqlConsultaUnidadesMedida =
    "Select\tA.ID, A.unidad, A.claveSAT, ifnull(B.unidadIDProductos, 0) as "
    "UnidadMedidaDefaultProductos\n"
    "from Unidades A Left Outer Join Configura B On A.empresaID = B.empresaID\n"
    "Where A.empresaID = :EmpresaID\n"
    "Order By A.Unidad";

// Una fila por moneda; los valores de la empresa se repiten en cada una.
const char* const SqlConsultaMonedas =
    "Select A.ID, A.descripcion, A.abreviacionPAC, "
    "ifnull(B.monedaIDProductos, 0) as MonedaDefaultProductos, "
    "ifnull(B.claveSATProductos, '') as claveSATProductos, ifnull(B.series, 0) as series, "
    "ifnull(B.AutoNumeraCatalogosProductos, 0) as AutoNumeraCatalogosProductos, "
    "ifnull(B.lotesYCaducidades, 0) as lotesYCaducidades, "
    "ifnull(B.CapInvInicial, 0) as CapInvInicial, "
    "ifnull(B.remSinExistencia, 0) as remSinExistencia, "
    "ifnull(B.facSinExistencia, 0) as facSinExistencia, B.clienteDefaultRem, B.monedaIDRM, "
    "Max(ifnull(C.id, 0)) + 1 as idProducto\n"
    "from Monedas A\n"
    "Left Outer Join Configura B On A.empresaID = B.empresaID\n"
    "Left Outer Join Productos C On A.empresaID = C.empresaID\n"
    "Where A.empresaID = :EmpresaID\n"
    "Group By A.ID, A.descripcion, A.abreviacionPAC, B.monedaIDProductos, B.claveSATProductos, "
    "B.series, B.AutoNumeraCatalogosProductos, B.lotesYCaducidades, B.CapInvInicial, "
    "B.remSinExistencia, B.facSinExistencia, B.clienteDefaultRem, B.monedaIDRM\n"
    "Order By A.ID";

const char* const SqlValidaClaveProducto = "Select Clave From Productos\n"
                                           "Where Clave = :clave\n"
                                           "And EmpresaID = :EmpresaID";

const char* const SqlRegistraProducto =
    "Insert into Productos (empresaID, linea, clave, producto, unidad, moneda, claveSAT, "
    "existencia, pCompra, manejaInventarios, requiereAutorizacionVenta, manejaSeries, esPaquete, "
    "Recurrente, caduca, MostrarKioskoPV, utilizaBascula, precio, precio2, precio3, precio4, "
    "precio5, precioAbierto, porcentajeImpuesto, IEPS, datoAdicional1, codigoBarra, "
    "bonificaPuntos, porcentajeBonificacion, maximo, minimo, Peso, usuarioID, activo)\n"
    "Values (:empresaID, :linea, :clave, :producto, :unidad, :moneda, :claveSAT, :existencia, "
    ":pCompra, :manejaInventarios, :requiereAutorizacionVenta, :manejaSeries, :esPaquete, "
    ":Recurrente, :caduca, :MostrarKioskoPV, :utilizaBascula, :precio, :precio2, :precio3, "
    ":precio4, :precio5, :precioAbierto, :porcentajeImpuesto, :IEPS, :datoAdicional1, "
    ":codigoBarra, :bonificaPuntos, :porcentajeBonificacion, :maximo, :minimo, :Peso, "
    ":usuarioID, :activo)";

const char* const SqlProductoIDInsertado = "select last_insert_rowid() as id";

const char* const SqlActualizaProducto =
    "Update Productos\n"
    "Set clave = :clave, producto = :producto, unidad = :unidad, moneda = :moneda, "
    "claveSAT = :claveSAT, pCompra = :pCompra, "
    "manejaInventarios = :manejaInventarios, requiereAutorizacionVenta = "
    ":requiereAutorizacionVenta, manejaSeries = :manejaSeries, esPaquete = :esPaquete, "
    "Recurrente = :Recurrente, caduca = :caduca, MostrarKioskoPV = :MostrarKioskoPV, "
    "utilizaBascula = :utilizaBascula, precio = :precio, precio2 = :precio2, precio3 = :precio3, "
    "precio4 = :precio4, precio5 = :precio5, precioAbierto = :precioAbierto, "
    "porcentajeImpuesto = :porcentajeImpuesto, IEPS = :IEPS, datoAdicional1 = :datoAdicional1, "
    "codigoBarra = :codigoBarra, bonificaPuntos = :bonificaPuntos, "
    "porcentajeBonificacion = :porcentajeBonificacion, maximo = :maximo, minimo = :minimo, "
    "Peso = :Peso, activo = :activo\n"
    "Where empresaID = :EmpresaID\n"
    "and id = :ProductoID";

// La existencia nunca se reescribe desde el editor: otra estación pudo vender mientras estaba
// abierto. Lo que el usuario cambió se guarda como diferencia sobre la existencia de ese momento.
const char* const SqlAjustaExistencia = "Update Productos\n"
                                        "Set existencia = ifnull(existencia, 0) + :diferencia\n"
                                        "Where empresaID = :EmpresaID\n"
                                        "and id = :ProductoID";

const char* const SqlRegistrarFotoProducto = "Insert Into ProductosFotos (ID, Posicion, Foto, "
                                             "Miniatura)\n"
                                             "Values (:ProductoID, 1, :Foto, :Miniatura)";

const char* const SqlActualizaFoto = "Update ProductosFotos\n"
                                     "Set Foto = :Foto, Miniatura = :Miniatura\n"
                                     "Where ID = :ProductoID\n"
                                     "And Posicion = 1";

const char* const SqlEliminaFoto = "Delete From ProductosFotos\n"
                                   "Where ID = :ProductoID";

QString textoProducto(const ProductoEditado& p) {
    return QStringLiteral("Producto: ") + p.clave + QLatin1Char(' ') + p.producto;
}

} // namespace

EdicionProducto::EdicionProducto(ConexionBD& conexion, const Sesion& sesion)
    : ConsultarProducto(conexion, QString::fromUtf8(SqlConsultarProducto)),
      ConsultaUnidadesMedida(conexion, QString::fromUtf8(SqlConsultaUnidadesMedida)),
      ConsultaMonedas(conexion, QString::fromUtf8(SqlConsultaMonedas)),
      ValidaClaveProducto(conexion, QString::fromUtf8(SqlValidaClaveProducto)),
      RegistraProducto(conexion, QString::fromUtf8(SqlRegistraProducto)),
      ActualizaProducto(conexion, QString::fromUtf8(SqlActualizaProducto)),
      AjustaExistencia(conexion, QString::fromUtf8(SqlAjustaExistencia)),
      ProductoIDInsertado(conexion, QString::fromUtf8(SqlProductoIDInsertado)),
      RegistrarFotoProducto(conexion, QString::fromUtf8(SqlRegistrarFotoProducto)),
      ActualizaFoto(conexion, QString::fromUtf8(SqlActualizaFoto)),
      EliminaFoto(conexion, QString::fromUtf8(SqlEliminaFoto)), conexion_(conexion),
      sesion_(sesion) {}

std::vector<UnidadMedida> EdicionProducto::unidades() {
    ConsultaUnidadesMedida.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    ConsultaUnidadesMedida.abre();
    std::vector<UnidadMedida> lista;
    for (const Registro r : ConsultaUnidadesMedida) {
        lista.push_back({r.campo(QStringLiteral("ID")).comoEntero(),
                         r.campo(QStringLiteral("unidad")).comoTexto(),
                         r.campo(QStringLiteral("claveSAT")).comoTexto()});
        valores_.unidad = r.campo(QStringLiteral("UnidadMedidaDefaultProductos")).comoEntero();
    }
    ConsultaUnidadesMedida.cierra();
    return lista;
}

std::vector<MonedaProducto> EdicionProducto::monedas() {
    ConsultaMonedas.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    ConsultaMonedas.abre();
    std::vector<MonedaProducto> lista;
    for (const Registro r : ConsultaMonedas) {
        lista.push_back({r.campo(QStringLiteral("ID")).comoEntero(),
                         r.campo(QStringLiteral("descripcion")).comoTexto(),
                         r.campo(QStringLiteral("abreviacionPAC")).comoTexto()});
        valores_.moneda = r.campo(QStringLiteral("MonedaDefaultProductos")).comoEntero();
        valores_.claveSAT = r.campo(QStringLiteral("claveSATProductos")).comoTexto();
        valores_.autoNumera =
            r.campo(QStringLiteral("AutoNumeraCatalogosProductos")).comoEntero() != 0;
        valores_.idProducto = r.campo(QStringLiteral("idProducto")).comoEntero();
    }
    ConsultaMonedas.cierra();
    return lista;
}

std::optional<ProductoConsultado> EdicionProducto::consulta(int64_t productoID) {
    ConsultarProducto.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    ConsultarProducto.parametro(QStringLiteral("ProductoID")).entero(productoID);
    ConsultarProducto.abre();
    if (ConsultarProducto.numeroRegistros() == 0) {
        ConsultarProducto.cierra();
        return std::nullopt;
    }
    auto campo = [this](const char* nombre) {
        return ConsultarProducto.campo(QString::fromLatin1(nombre));
    };
    ProductoConsultado c;
    ProductoEditado& p = c.producto;
    p.id = campo("ID").comoEntero();
    p.linea = campo("linea").comoEntero();
    p.clave = campo("clave").comoTexto();
    p.producto = campo("producto").comoTexto();
    p.unidad = campo("unidad").comoEntero();
    p.moneda = campo("moneda").comoEntero();
    p.claveSAT = campo("claveSAT").comoTexto();
    p.existencia = campo("existencia").comoReal();
    p.pCompra = campo("pCompra").comoReal();
    p.manejaInventarios = campo("manejaInventarios").comoEntero() != 0;
    p.requiereAutorizacionVenta = campo("requiereAutorizacionVenta").comoEntero() != 0;
    p.manejaSeries = campo("manejaSeries").comoEntero() != 0;
    p.esPaquete = campo("esPaquete").comoEntero() != 0;
    p.recurrente = campo("Recurrente").comoEntero() != 0;
    p.caduca = campo("caduca").comoEntero() != 0;
    p.mostrarKioskoPV = campo("MostrarKioskoPV").comoEntero() != 0;
    p.utilizaBascula = campo("utilizaBascula").comoEntero() != 0;
    p.precios = {campo("precio").comoReal(), campo("precio2").comoReal(),
                 campo("precio3").comoReal(), campo("precio4").comoReal(),
                 campo("precio5").comoReal()};
    p.precioAbierto = campo("precioAbierto").comoEntero() != 0;
    p.porcentajeImpuesto = campo("porcentajeImpuesto").comoReal();
    p.ieps = campo("IEPS").comoReal();
    p.datoAdicional1 = campo("datoAdicional1").comoTexto();
    p.codigoBarra = campo("CodigoBarra").comoTexto();
    p.bonificaPuntos = campo("bonificaPuntos").comoEntero() != 0;
    p.porcentajeBonificacion = campo("porcentajeBonificacion").comoReal();
    p.maximo = campo("maximo").comoReal();
    p.minimo = campo("minimo").comoReal();
    p.peso = campo("Peso").comoReal();
    // Un nulo en "activo" es un producto de antes de la bandera: sigue a la venta.
    p.activo = campo("activo").esNulo() || campo("activo").comoEntero() != 0;
    c.foto = campo("Foto").comoBlob();
    ConsultarProducto.cierra();
    return c;
}

std::optional<QString> EdicionProducto::revisa(const ProductoEditado& p) {
    if (p.clave.trimmed().isEmpty()) return QStringLiteral("No especificó la Clave del Producto");
    // Solo un alta se compara con las demás claves.
    if (p.esNuevo()) {
        ValidaClaveProducto.parametro(QStringLiteral("clave")).texto(p.clave.trimmed());
        ValidaClaveProducto.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        ValidaClaveProducto.abre();
        const bool existe = ValidaClaveProducto.numeroRegistros() > 0;
        ValidaClaveProducto.cierra();
        if (existe) return QStringLiteral("Ya existe esa Clave del Producto");
    }
    if (p.producto.trimmed().isEmpty())
        return QStringLiteral("No especificó la Descripción del Producto");
    if (p.unidad == 0) return QStringLiteral("No especificó la Unidad de Medida del Producto");
    if (p.moneda == 0) return QStringLiteral("No especificó la Moneda del Producto");
    const QString sat = p.claveSAT.trimmed();
    if (sat.isEmpty()) return QStringLiteral("No especificó la Clave del SAT del Producto");
    if (sat.size() != 8) return QStringLiteral("La Clave del SAT debe contener 8 dígitos");
    return std::nullopt;
}

void EdicionProducto::asignaColumnas(Consulta& c, const ProductoEditado& p) {
    auto texto = [&](const char* nombre, const QString& valor) {
        c.parametro(QString::fromLatin1(nombre)).texto(valor);
    };
    auto real = [&](const char* nombre, double valor) {
        c.parametro(QString::fromLatin1(nombre)).real(valor);
    };
    auto bandera = [&](const char* nombre, bool valor) {
        c.parametro(QString::fromLatin1(nombre)).booleano(valor);
    };
    texto("clave", p.clave.trimmed());
    texto("producto", p.producto.trimmed());
    c.parametro(QStringLiteral("unidad")).entero(p.unidad);
    c.parametro(QStringLiteral("moneda")).entero(p.moneda);
    texto("claveSAT", p.claveSAT.trimmed());
    real("pCompra", p.pCompra);
    bandera("manejaInventarios", p.manejaInventarios);
    bandera("requiereAutorizacionVenta", p.requiereAutorizacionVenta);
    bandera("manejaSeries", p.manejaSeries);
    bandera("esPaquete", p.esPaquete);
    bandera("Recurrente", p.recurrente);
    bandera("caduca", p.caduca);
    bandera("MostrarKioskoPV", p.mostrarKioskoPV);
    bandera("utilizaBascula", p.utilizaBascula);
    real("precio", p.precios[0]);
    real("precio2", p.precios[1]);
    real("precio3", p.precios[2]);
    real("precio4", p.precios[3]);
    real("precio5", p.precios[4]);
    bandera("precioAbierto", p.precioAbierto);
    real("porcentajeImpuesto", p.porcentajeImpuesto);
    real("IEPS", p.ieps);
    texto("datoAdicional1", p.datoAdicional1);
    texto("codigoBarra", p.codigoBarra.trimmed());
    bandera("bonificaPuntos", p.bonificaPuntos);
    real("porcentajeBonificacion", p.porcentajeBonificacion);
    real("maximo", p.maximo);
    real("minimo", p.minimo);
    real("Peso", p.peso);
    bandera("activo", p.activo);
}

int64_t EdicionProducto::guarda(const ProductoEditado& p, const FotoEditada& foto,
                                const ProductoEditado& anterior) {
    Transaccion t(conexion_);
    int64_t id = p.id;
    double diferencia = 0.0;
    if (p.esNuevo()) {
        asignaColumnas(RegistraProducto, p);
        RegistraProducto.parametro(QStringLiteral("existencia")).real(p.existencia);
        RegistraProducto.parametro(QStringLiteral("empresaID")).entero(sesion_.EmpresaID);
        RegistraProducto.parametro(QStringLiteral("linea")).entero(p.linea);
        RegistraProducto.parametro(QStringLiteral("usuarioID")).entero(sesion_.UsuarioID);
        RegistraProducto.ejecuta(t);
        ProductoIDInsertado.abre(t);
        id = ProductoIDInsertado.campo(QStringLiteral("id")).comoEntero();
        ProductoIDInsertado.cierra();
    } else {
        asignaColumnas(ActualizaProducto, p);
        ActualizaProducto.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        ActualizaProducto.parametro(QStringLiteral("ProductoID")).entero(p.id);
        ActualizaProducto.ejecuta(t);
        // Dentro de la transacción nadie más escribe: si no tocó ningún renglón, otra estación
        // lo eliminó. Se revierte sin guardar foto ni bitácora.
        if (ActualizaProducto.filasAfectadas() == 0)
            throw RegistroInexistente(QString::fromUtf8(MensajeProductoEliminado));
        diferencia = diferenciaExistencia(p, anterior);
        if (diferencia != 0.0) {
            AjustaExistencia.parametro(QStringLiteral("diferencia")).real(diferencia);
            AjustaExistencia.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
            AjustaExistencia.parametro(QStringLiteral("ProductoID")).entero(p.id);
            AjustaExistencia.ejecuta(t);
        }
    }

    if (foto.cambiada) {
        auto asignaFoto = [&](Consulta& c) {
            c.parametro(QStringLiteral("ProductoID")).entero(id);
            c.parametro(QStringLiteral("Foto")).blob(foto.foto);
            c.parametro(QStringLiteral("Miniatura")).blob(foto.miniatura);
        };
        if (foto.foto.isEmpty()) {
            EliminaFoto.parametro(QStringLiteral("ProductoID")).entero(id);
            EliminaFoto.ejecuta(t);
        } else {
            bool actualizada = false;
            if (foto.guardada) {
                asignaFoto(ActualizaFoto);
                ActualizaFoto.ejecuta(t);
                // Otra estación pudo quitarla mientras tanto: entonces se da de alta.
                actualizada = ActualizaFoto.filasAfectadas() > 0;
            }
            if (!actualizada) {
                asignaFoto(RegistrarFotoProducto);
                RegistrarFotoProducto.ejecuta(t);
            }
        }
    }

    ProductoEditado guardado = p;
    guardado.clave = p.clave.trimmed();
    guardado.producto = p.producto.trimmed();
    QString comentarios =
        p.esNuevo() ? QStringLiteral("Producto agregado") : QStringLiteral("Producto modificado");
    if (foto.cambiada)
        comentarios += foto.foto.isEmpty() ? QStringLiteral(", foto eliminada")
                                           : QStringLiteral(", foto asignada");
    if (diferencia != 0.0)
        comentarios += QStringLiteral(", existencia ajustada en ") +
                       (diferencia > 0 ? QStringLiteral("+") : QString()) +
                       textoDecimal(diferencia);
    Auditoria::registra(t, sesion_,
                        {p.esNuevo() ? tipoAuditoria::Insercion : tipoAuditoria::Actualizacion,
                         QString::fromUtf8(ModuloCatalogoProductos), textoProducto(guardado),
                         p.esNuevo() ? QString() : textoProducto(anterior), comentarios});
    t.confirma();
    return id;
}

double diferenciaExistencia(const ProductoEditado& capturado, const ProductoEditado& leido) {
    // Sin el producto como se leyó no hay de qué calcular: la existencia no se toca.
    if (capturado.esNuevo() || leido.id != capturado.id) return 0.0;
    // Lo que el campo muestra tiene a lo más seis decimales: menos que eso no es un cambio.
    const double diferencia = Redondea(capturado.existencia - leido.existencia, 6);
    return std::abs(diferencia) < 1e-9 ? 0.0 : diferencia;
}

double decimalDeTexto(const QString& texto) {
    QString limpio = texto.trimmed();
    limpio.remove(QLatin1Char(','));
    limpio.remove(QLatin1Char(' '));
    bool ok = false;
    const double valor = limpio.toDouble(&ok);
    return ok && std::isfinite(valor) ? valor : 0.0;
}

QString textoDecimal(double valor) {
    const double seis = Redondea(valor, 6);
    int decimales = 2;
    while (decimales < 6 && std::abs(Redondea(seis, decimales) - seis) > 1e-9)
        ++decimales;
    return QString::number(seis, 'f', decimales);
}

} // namespace cajaplex
