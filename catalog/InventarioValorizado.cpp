#include "catalog/InventarioValorizado.h"

#include <QByteArray>
#include <QFile>

#include <xlsxwriter.h>

#include "datos/Consulta.h"
#include "datos/Registros.h"
#include "pantallas/LectorRenglones.h"

namespace cajaplex {
namespace {

const char* const SqlValorInventario =
    "Select A.Clave, A.Producto, ifnull(A.pCompra, 0) as pCompra, ifnull(A.existencia, 0) as "
    "existencia, ifnull(A.pCompra * A.existencia, 0) as ValorInventario,\n"
    " B.Unidad, C.linea, ifnull(A.precio * A.existencia, 0) as ValorInventarioPrecio1,\n"
    "ifnull(A.precio2 * A.existencia, 0) as ValorInventarioPrecio2,\n"
    "ifnull(A.precio3 * A.existencia, 0) as ValorInventarioPrecio3,\n"
    "ifnull(A.precio4 * A.existencia, 0) as ValorInventarioPrecio4,\n"
    "ifnull(A.precio5 * A.existencia, 0) as ValorInventarioPrecio5\n"
    "From Productos A, Unidades B, Lineas C\n"
    "Where A.empresaID = :empresaID\n"
    "and ifnull(A.existencia, 0) > 0\n"
    "and ifnull(A.pCompra, 0) > 0\n"
    "and A.empresaID = B.empresaID and A.unidad = B.ID\n"
    "and A.empresaID = C.empresaID and A.linea = C.ID\n"
    "Order by C.Linea, A.Producto";

const char* const ColumnasValor[ValoresInventario] = {
    "ValorInventario",        "ValorInventarioPrecio1", "ValorInventarioPrecio2",
    "ValorInventarioPrecio3", "ValorInventarioPrecio4", "ValorInventarioPrecio5"};

// Columnas de texto antes de los números (clave, descripción, unidad, línea), luego costo,
// existencia y los valores.
constexpr size_t ColumnasTexto = 4;
constexpr size_t PrimerValor = ColumnasTexto + 2;

lxw_col_t columna(size_t indice) {
    return static_cast<lxw_col_t>(indice);
}

} // namespace

const QStringList& encabezadosValorInventario() {
    static const QStringList encabezados = {
        QStringLiteral("Clave"),          QStringLiteral("Descripción"),
        QStringLiteral("Unidad"),         QStringLiteral("Línea"),
        QStringLiteral("Costo"),          QStringLiteral("Existencia"),
        QStringLiteral("Valor Costo"),    QStringLiteral("Valor Precio 1"),
        QStringLiteral("Valor Precio 2"), QStringLiteral("Valor Precio 3"),
        QStringLiteral("Valor Precio 4"), QStringLiteral("Valor Precio 5")};
    return encabezados;
}

ValorInventario consultaValorInventario(ConexionDatos& conexion, int64_t empresaID) {
    Consulta consulta(conexion, QString::fromUtf8(SqlValorInventario));
    consulta.parametro(QStringLiteral("empresaID")).entero(empresaID);
    consulta.abre();
    const LectorRenglones lector(consulta.registros());
    const auto [cClave, cProducto, cUnidad, cLinea, cCosto, cExistencia] =
        lector.columnas({"Clave", "Producto", "Unidad", "linea", "pCompra", "existencia"});
    const auto cValores = lector.columnas(ColumnasValor);

    ValorInventario inventario;
    inventario.renglones.reserve(lector.renglones());
    for (size_t f = 0; f < lector.renglones(); ++f) {
        RenglonValorInventario renglon;
        renglon.clave = lector.campo(f, cClave).comoTexto();
        renglon.producto = lector.campo(f, cProducto).comoTexto();
        renglon.unidad = lector.campo(f, cUnidad).comoTexto();
        renglon.linea = lector.campo(f, cLinea).comoTexto();
        renglon.costo = lector.campo(f, cCosto).comoReal();
        renglon.existencia = lector.campo(f, cExistencia).comoReal();
        for (size_t i = 0; i < renglon.valores.size(); ++i) {
            renglon.valores[i] = lector.campo(f, cValores[i]).comoReal();
            inventario.totales[i] += renglon.valores[i];
        }
        inventario.renglones.push_back(std::move(renglon));
    }
    return inventario;
}

QString exportaValorInventario(const ValorInventario& inventario, const QString& ruta) {
    const QByteArray archivo = QFile::encodeName(ruta);
    lxw_workbook* libro = workbook_new(archivo.constData());
    if (!libro) return QStringLiteral("sin memoria para el libro");
    lxw_worksheet* hoja = workbook_add_worksheet(libro, "Valor de Inventario");
    lxw_format* negritas = workbook_add_format(libro);
    format_set_bold(negritas);
    lxw_format* importe = workbook_add_format(libro);
    format_set_num_format(importe, "#,##0.00");
    lxw_format* total = workbook_add_format(libro);
    format_set_num_format(total, "#,##0.00");
    format_set_bold(total);

    const QStringList& encabezados = encabezadosValorInventario();
    for (qsizetype c = 0; c < encabezados.size(); ++c)
        worksheet_write_string(hoja, 0, columna(static_cast<size_t>(c)),
                               encabezados.at(c).toUtf8().constData(), negritas);
    worksheet_set_column(hoja, 1, 1, 40, nullptr);
    worksheet_set_column(hoja, 3, 3, 24, nullptr);
    worksheet_set_column(hoja, columna(ColumnasTexto), columna(PrimerValor + ValoresInventario - 1),
                         15, nullptr);
    worksheet_freeze_panes(hoja, 1, 0);

    lxw_row_t fila = 1;
    for (const RenglonValorInventario& r : inventario.renglones) {
        const QString textos[ColumnasTexto] = {r.clave, r.producto, r.unidad, r.linea};
        for (size_t c = 0; c < ColumnasTexto; ++c)
            worksheet_write_string(hoja, fila, columna(c), textos[c].toUtf8().constData(), nullptr);
        worksheet_write_number(hoja, fila, columna(ColumnasTexto), r.costo, importe);
        worksheet_write_number(hoja, fila, columna(ColumnasTexto + 1), r.existencia, nullptr);
        for (size_t i = 0; i < r.valores.size(); ++i)
            worksheet_write_number(hoja, fila, columna(PrimerValor + i), r.valores[i], importe);
        ++fila;
    }
    worksheet_write_string(hoja, fila, 1, "TOTALES", negritas);
    for (size_t i = 0; i < inventario.totales.size(); ++i)
        worksheet_write_number(hoja, fila, columna(PrimerValor + i), inventario.totales[i], total);

    const lxw_error error = workbook_close(libro);
    if (error != LXW_NO_ERROR) return QString::fromUtf8(lxw_strerror(error));
    return {};
}

} // namespace cajaplex
