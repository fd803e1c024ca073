#include "catalog/PreciosProductos.h"

#include <QLatin1Char>

#include "datos/Auditoria.h"
#include "datos/ConexionBD.h"
#include "datos/Consulta.h"
#include "datos/Registros.h"
#include "datos/Transaccion.h"
#include "datos/Utilerias.h"
#include "pantallas/LectorRenglones.h"

namespace cajaplex {
namespace {

const char* const SqlLineas = "Select ID, linea, Padre\n"
                              "from Lineas\n"
                              "Where empresaID = :EmpresaID\n"
                              "Order By Padre, linea";

const char* const ColumnasNivel[NivelesPrecio] = {"precio", "precio2", "precio3", "precio4",
                                                  "precio5"};

QString filtroLinea(const QString& columna, int64_t lineaID) {
    if (lineaID == TodasLasLineas) return {};
    return QStringLiteral(" And ") + columna + QStringLiteral(" = ") + numeroSql(lineaID);
}

QString textoPorcentaje(double porcentaje) {
    return QString::number(porcentaje, 'f', 2);
}

} // namespace

std::vector<LineaProducto> lineasParaElegir(ConexionDatos& conexion, int64_t empresaID) {
    Consulta lineas(conexion, QString::fromUtf8(SqlLineas));
    lineas.parametro(QStringLiteral("EmpresaID")).entero(empresaID);
    lineas.abre();
    std::vector<LineaProducto> resultado;
    resultado.reserve(static_cast<size_t>(lineas.numeroRegistros()));
    for (const Registro r : lineas) {
        LineaProducto l;
        l.id = r.campo(QStringLiteral("ID")).comoEntero();
        l.padre = r.campo(QStringLiteral("Padre")).comoEntero();
        l.linea = r.campo(QStringLiteral("linea")).comoTexto();
        resultado.push_back(std::move(l));
    }
    return resultado;
}

const QStringList& nombresReferencia() {
    static const QStringList nombres = {QStringLiteral("COSTO"),    QStringLiteral("PRECIO 1"),
                                        QStringLiteral("PRECIO 2"), QStringLiteral("PRECIO 3"),
                                        QStringLiteral("PRECIO 4"), QStringLiteral("PRECIO 5")};
    return nombres;
}

QString columnaReferencia(ReferenciaPrecio referencia) {
    switch (referencia) {
    case ReferenciaPrecio::Costo:
        return QStringLiteral("PCompra");
    case ReferenciaPrecio::Precio1:
        return QStringLiteral("Precio");
    case ReferenciaPrecio::Precio2:
        return QStringLiteral("Precio2");
    case ReferenciaPrecio::Precio3:
        return QStringLiteral("Precio3");
    case ReferenciaPrecio::Precio4:
        return QStringLiteral("Precio4");
    case ReferenciaPrecio::Precio5:
        return QStringLiteral("Precio5");
    }
    return QStringLiteral("PCompra");
}

double factorIncremento(double porcentaje) {
    return porcentaje / 100.0;
}

double precioIncrementado(double referencia, double porcentaje) {
    return referencia + (referencia * factorIncremento(porcentaje));
}

QString sqlVistaPreviaIncremento(int64_t empresaID, int64_t lineaID) {
    return QStringLiteral(" Select A.ID, A.Clave, A.producto as producto, C.unidad, ") +
           QStringLiteral(" ifnull(A.precio, 0) as Precio1, ifnull(A.precio2, 0) as Precio2, "
                          "ifnull(A.precio3, 0) as Precio3,") +
           QStringLiteral(" ifnull(A.Precio4, 0) as Precio4, ifnull(A.Precio5, 0) as Precio5, "
                          "ifnull(A.pCompra, 0) as pCompra") +
           QStringLiteral(" from Productos A, Unidades C") +
           QStringLiteral(" Where A.empresaID = ") + numeroSql(empresaID) +
           QStringLiteral(" And A.empresaid = C.empresaID") +
           QStringLiteral(" And A.unidad = C.id") +
           filtroLinea(QStringLiteral("A.linea"), lineaID) +
           QStringLiteral(" And ifnull(A.activo, 0) = 1") + QStringLiteral(" Order By A.producto");
}

QString sqlIncrementoPrecios(int64_t empresaID, int64_t lineaID, ReferenciaPrecio referencia,
                             const PorcentajesIncremento& porcentajes) {
    const QString r = columnaReferencia(referencia);
    QStringList niveles;
    for (int i = 0; i < NivelesPrecio; ++i)
        niveles << QLatin1Char(' ') + QString::fromLatin1(ColumnasNivel[i]) +
                       QStringLiteral(" = ") + r + QStringLiteral(" + ( ") + r +
                       QStringLiteral(" * (") +
                       numeroSql(factorIncremento(porcentajes[static_cast<size_t>(i)])) +
                       QStringLiteral("))");
    return QStringLiteral(" Update Productos Set") + niveles.join(QStringLiteral(" ,")) +
           QStringLiteral(" Where empresaID = ") + numeroSql(empresaID) +
           filtroLinea(QStringLiteral("linea"), lineaID);
}

std::vector<ProductoIncremento> vistaPreviaIncremento(const Registros& registros,
                                                      ReferenciaPrecio referencia,
                                                      const PorcentajesIncremento& porcentajes) {
    const LectorRenglones lector(registros);
    const auto [cID, cClave, cProducto, cUnidad, cCosto] =
        lector.columnas({"ID", "Clave", "producto", "unidad", "pCompra"});
    const auto cPrecios = lector.columnas({"Precio1", "Precio2", "Precio3", "Precio4", "Precio5"});

    std::vector<ProductoIncremento> productos;
    productos.reserve(lector.renglones());
    for (size_t f = 0; f < lector.renglones(); ++f) {
        ProductoIncremento p;
        p.id = lector.campo(f, cID).comoEntero();
        p.clave = lector.campo(f, cClave).comoTexto();
        p.producto = lector.campo(f, cProducto).comoTexto();
        p.unidad = lector.campo(f, cUnidad).comoTexto();
        p.costo = lector.campo(f, cCosto).comoReal();
        for (size_t i = 0; i < p.precios.size(); ++i)
            p.precios[i] = lector.campo(f, cPrecios[i]).comoReal();
        const double base = referencia == ReferenciaPrecio::Costo
                                ? p.costo
                                : p.precios[static_cast<size_t>(referencia) - 1];
        for (size_t i = 0; i < p.nuevos.size(); ++i)
            p.nuevos[i] = precioIncrementado(base, porcentajes[i]);
        productos.push_back(std::move(p));
    }
    return productos;
}

void aplicaIncrementoPrecios(ConexionBD& conexion, const Sesion& sesion, int64_t lineaID,
                             const QString& nombreLinea, ReferenciaPrecio referencia,
                             const PorcentajesIncremento& porcentajes) {
    QStringList textos;
    for (const double p : porcentajes)
        textos << textoPorcentaje(p);
    Lote lote(conexion);
    lote.agrega(Consulta(sqlIncrementoPrecios(sesion.EmpresaID, lineaID, referencia, porcentajes)));
    Auditoria::agrega(lote, sesion,
                      {QString::fromUtf8(tipoAuditoria::Actualizacion),
                       QString::fromUtf8(ModuloIncrementoPrecios),
                       QStringLiteral("Línea: ") + nombreLinea + QStringLiteral(", Referencia: ") +
                           nombresReferencia().at(static_cast<int>(referencia)) +
                           QStringLiteral(", Porcentajes: ") + textos.join(QStringLiteral(", ")),
                       {},
                       {}});
    lote.ejecuta();
}

} // namespace cajaplex
