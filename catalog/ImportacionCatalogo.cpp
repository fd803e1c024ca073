#include "catalog/ImportacionCatalogo.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QFile>

#include <xlsxwriter.h>

#include "catalog/PreciosProductos.h"
#include "datos/Auditoria.h"
#include "datos/ConexionBD.h"
#include "datos/Consulta.h"
#include "datos/Transaccion.h"
#include "datos/Utilerias.h"
#include "pantallas/LectorRenglones.h"

namespace cajaplex {
namespace {

// Cómo se lee y se escribe cada columna de la hoja.
enum class Dato {
    Texto,
    Clave,  // clave del producto: llave, obligatoria
    Nombre, // nombre del cliente o proveedor: llave, obligatorio
    Rfc,    // llave junto con el nombre
    Real,
    Entero,
    NivelPrecio, // 1 a 5
    Bandera,
    ClaveSat, // 8 caracteres; vacía: la de la empresa (alta) o la que tenía (cambio)
    Cp,       // 5 dígitos aunque la hoja lo guarde como número
    Linea,
    Unidad,
    Estado
};

struct ColumnaHoja {
    const char* hoja;    // nombre en el encabezado
    const char* columna; // columna de la tabla, y nombre de su parámetro
    Dato dato;
};

bool esLlave(Dato d) {
    return d == Dato::Clave || d == Dato::Nombre || d == Dato::Rfc;
}

const std::vector<ColumnaHoja>& columnasProductos() {
    static const std::vector<ColumnaHoja> c = {
        {"LINEA", "linea", Dato::Linea},
        {"CLAVE", "clave", Dato::Clave},
        {"DESCRIPCION", "producto", Dato::Texto},
        {"UNIDAD", "unidad", Dato::Unidad},
        {"CLAVESAT", "claveSAT", Dato::ClaveSat},
        {"EXISTENCIA", "existencia", Dato::Real},
        {"COSTO", "pCompra", Dato::Real},
        {"INVENTARIABLE", "manejaInventarios", Dato::Bandera},
        {"AUTORIZABLE", "requiereAutorizacionVenta", Dato::Bandera},
        {"SERIABLE", "manejaSeries", Dato::Bandera},
        {"KIT", "esPaquete", Dato::Bandera},
        {"MENSUAL", "Recurrente", Dato::Bandera},
        {"CADUCA", "caduca", Dato::Bandera},
        {"KIOSKO", "MostrarKioskoPV", Dato::Bandera},
        {"ORDEN", "OrdenKiosko", Dato::Entero},
        {"BASCULA", "utilizaBascula", Dato::Bandera},
        {"PRECIO1", "precio", Dato::Real},
        {"PRECIO2", "precio2", Dato::Real},
        {"PRECIO3", "precio3", Dato::Real},
        {"PRECIO4", "precio4", Dato::Real},
        {"PRECIO5", "precio5", Dato::Real},
        {"ABIERTO", "precioAbierto", Dato::Bandera},
        {"IVA", "porcentajeImpuesto", Dato::Real},
        {"IEPS", "IEPS", Dato::Real},
        {"ADICIONAL", "DatoAdicional1", Dato::Texto},
        {"CODIGOBARRA", "codigoBarra", Dato::Texto},
        {"MAXIMO", "maximo", Dato::Real},
        {"MINIMO", "minimo", Dato::Real}};
    return c;
}

// Domicilio y contacto, comunes a clientes y proveedores, con lo propio de cada uno.
std::vector<ColumnaHoja> columnasPersona(bool clientes) {
    std::vector<ColumnaHoja> c = {{"CODIGOALTERNO", "codigoAlterno", Dato::Texto},
                                  {"NOMBRE", "nombre", Dato::Nombre},
                                  {"CALLE", "calle", Dato::Texto},
                                  {"NUMEROEXTERIOR", "numeroExterior", Dato::Texto},
                                  {"NUMEROINTERIOR", "numeroInterior", Dato::Texto},
                                  {"COLONIA", "colonia", Dato::Texto},
                                  {"REFERENCIADOMICILIO", "refDomicilio", Dato::Texto},
                                  {"CP", "cp", Dato::Cp},
                                  {"MUNICIPIO", "municipio", Dato::Texto},
                                  {"LOCALIDAD", "localidad", Dato::Texto},
                                  {"ESTADO", "estado", Dato::Estado},
                                  {"RAZONSOCIAL", "razonSocial", Dato::Texto},
                                  {"RFC", "rfc", Dato::Rfc},
                                  {"TELEFONO", "telefono", Dato::Texto}};
    if (clientes) {
        c.insert(c.end(), {{"TELEFONOCELULAR", "telefonoCelular", Dato::Texto},
                           {"CONTACTO", "contacto", Dato::Texto},
                           {"LIMITECREDITO", "limiteCredito", Dato::Real},
                           {"PRECIOVENTA", "precioVenta", Dato::NivelPrecio},
                           {"ATENCIONVENTAS", "atencionVentas", Dato::Texto},
                           {"DEFINIBLE1", "definible1", Dato::Texto},
                           {"DEFINIBLE2", "definible2", Dato::Texto},
                           {"DEFINIBLE3", "definible3", Dato::Texto},
                           {"DEFINIBLE4", "definible4", Dato::Texto},
                           {"DEFINIBLE5", "definible5", Dato::Texto},
                           {"EMAIL", "email", Dato::Texto}});
    } else {
        c.insert(c.end(), {{"CONTACTO", "contacto", Dato::Texto},
                           {"LIMITECREDITO", "limiteCredito", Dato::Real},
                           {"EMAIL", "email", Dato::Texto},
                           {"ATENCIONCOMPRAS", "atencionCompras", Dato::Texto}});
    }
    return c;
}

const std::vector<ColumnaHoja>& columnasDe(TipoImportacion tipo) {
    static const std::vector<ColumnaHoja> ninguna;
    static const std::vector<ColumnaHoja> clientes = columnasPersona(true);
    static const std::vector<ColumnaHoja> proveedores = columnasPersona(false);
    switch (tipo) {
    case TipoImportacion::Clientes:
        return clientes;
    case TipoImportacion::Productos:
        return columnasProductos();
    case TipoImportacion::Proveedores:
        return proveedores;
    case TipoImportacion::Ninguno:
        break;
    }
    return ninguna;
}

const char* tablaDe(TipoImportacion tipo) {
    switch (tipo) {
    case TipoImportacion::Clientes:
        return "Clientes";
    case TipoImportacion::Proveedores:
        return "Proveedores";
    default:
        return "Productos";
    }
}

// La condición de la llave natural: la clave del producto; el nombre más el RFC del cliente o
// proveedor (un RFC nulo cuenta como vacío).
std::string condicionLlave(TipoImportacion tipo) {
    if (tipo == TipoImportacion::Productos) return "empresaID = :empresaID And Clave = :clave";
    return "empresaID = :empresaID And nombre = :nombre And ifnull(rfc, '') = :rfc";
}

std::string sqlActualiza(TipoImportacion tipo) {
    std::string sql = std::string("Update ") + tablaDe(tipo) + " Set ";
    bool primera = true;
    for (const ColumnaHoja& c : columnasDe(tipo)) {
        if (esLlave(c.dato)) continue;
        if (!primera) sql += ", ";
        primera = false;
        const std::string col = c.columna;
        const std::string marca = ":" + col;
        // Un nulo que la hoja trae vacío o en cero se queda nulo: exportar e importar de vuelta
        // no cambia nada.
        sql += col + " = ";
        sql += c.dato == Dato::ClaveSat ? "ifnull(nullif(" + marca + ", ''), " + col + ")"
                                        : "case when " + col + " is null and " + marca +
                                              " in ('', 0) then " + col + " else " + marca + " end";
    }
    return sql + " Where " + condicionLlave(tipo);
}

// Las columnas con valor fijo de un alta: las de la hoja, la moneda, los valores de origen y el
// usuario.
std::string sqlInserta(TipoImportacion tipo, const QString& claveSatEmpresa) {
    std::string columnas = "empresaID";
    std::string valores = ":empresaID";
    for (const ColumnaHoja& c : columnasDe(tipo)) {
        const std::string col = c.columna;
        columnas += ", " + col;
        valores += c.dato == Dato::ClaveSat ? ", ifnull(nullif(:" + col + ", ''), " +
                                                  citaSql(claveSatEmpresa).toStdString() + ")"
                                            : ", :" + col;
    }
    if (tipo == TipoImportacion::Productos) {
        columnas += ", moneda, descuento, bonificaPuntos, porcentajeBonificacion, puntoReorden, "
                    "Peso, activo, areaComida, Productos1, Productos2, Productos3, Productos4, "
                    "Productos5, Extra";
        valores += ", :moneda, 0, 0, 0, 0, 0, 1, Null, '', '', '', 0, 0, 0";
    } else {
        columnas += ", pais, esHombre";
        valores += ", 'MÉXICO', 1";
    }
    const std::string tabla = tablaDe(tipo);
    const std::string existe = tipo == TipoImportacion::Productos ? "Clave" : "rfc";
    return "Insert Into " + tabla + " (" + columnas + ", usuarioID) Select " + valores +
           ", :usuarioID Where not exists (Select " + existe + " From " + tabla + " Where " +
           condicionLlave(tipo) + ")";
}

QString llaveNombre(const QString& nombre) {
    return nombre.trimmed().toCaseFolded();
}

protocolo::Parametro parametro(const char* nombre, protocolo::Tipo tipo, protocolo::Valor valor) {
    return {nombre, tipo, std::move(valor), std::nullopt};
}

protocolo::Parametro texto(const char* nombre, const QString& valor) {
    return parametro(nombre, protocolo::Tipo::Texto, valor.toStdString());
}

protocolo::Parametro entero(const char* nombre, int64_t valor) {
    return parametro(nombre, protocolo::Tipo::Entero, valor);
}

// Un número guardado como tal pierde los ceros a la izquierda (una clave SAT 01010101, un
// código postal 01000): se reponen hasta el largo que lleva.
QString conCeros(const QVariant& celda, int largo) {
    const QString t = textoCelda(celda).trimmed();
    if (celda.typeId() == QMetaType::Double && t.size() < largo)
        return t.rightJustified(largo, QLatin1Char('0'));
    return t;
}

} // namespace

const QStringList& nombresTiposImportacion() {
    static const QStringList nombres = {QStringLiteral("Clientes"), QStringLiteral("Productos"),
                                        QStringLiteral("Proveedores")};
    return nombres;
}

QStringList columnasImportacion(TipoImportacion tipo) {
    QStringList nombres;
    for (const ColumnaHoja& c : columnasDe(tipo))
        nombres << QString::fromLatin1(c.hoja);
    return nombres;
}

std::optional<QString> revisaImportacion(TipoImportacion tipo, const Hoja& hoja) {
    if (tipo == TipoImportacion::Ninguno) return QString::fromUtf8(MensajeSinTipoImportacion);
    for (const QString& columna : columnasImportacion(tipo)) {
        if (hoja.columna(columna) >= 0) continue;
        // Así lo dice el sistema para estas dos.
        if (columna == u"CALLE" || columna == u"DESCRIPCION")
            return QStringLiteral("No existe la primera llamada ") + columna;
        return QStringLiteral("No existe la columna llamada ") + columna;
    }
    if (hoja.renglones.empty()) return QString::fromUtf8(MensajeSinRegistros);
    return std::nullopt;
}

std::optional<bool> banderaDeCelda(const QVariant& celda) {
    if (!celda.isValid() || celda.isNull()) return false;
    if (celda.typeId() == QMetaType::Bool) return celda.toBool();
    if (celda.typeId() == QMetaType::Double) {
        const double v = celda.toDouble();
        if (v == 1.0) return true;
        if (v == 0.0) return false;
        return std::nullopt;
    }
    const QString t = celda.toString().trimmed().toUpper();
    static const QStringList si = {QStringLiteral("1"),         QStringLiteral("SI"),
                                   QStringLiteral("SÍ"),        QStringLiteral("TRUE"),
                                   QStringLiteral("VERDADERO"), QStringLiteral("X")};
    static const QStringList no = {QString(), QStringLiteral("0"), QStringLiteral("NO"),
                                   QStringLiteral("FALSE"), QStringLiteral("FALSO")};
    if (si.contains(t)) return true;
    if (no.contains(t)) return false;
    return std::nullopt;
}

std::optional<double> numeroDeCelda(const QVariant& celda) {
    if (!celda.isValid() || celda.isNull()) return 0.0;
    if (celda.typeId() == QMetaType::Double) {
        const double v = celda.toDouble();
        return std::isfinite(v) ? std::optional<double>(v) : std::nullopt;
    }
    if (celda.typeId() != QMetaType::QString) return std::nullopt;
    QString t = celda.toString().trimmed();
    t.remove(QLatin1Char('$'));
    t.remove(QLatin1Char(' '));
    if (t.isEmpty()) return 0.0;
    // En México el punto es el decimal y la coma separa miles; una sola coma sin punto y sin tres
    // dígitos detrás ("12,5") es una coma decimal de un equipo en otro idioma.
    const qsizetype coma = t.lastIndexOf(QLatin1Char(','));
    if (coma >= 0 && !t.contains(QLatin1Char('.')) && t.count(QLatin1Char(',')) == 1 &&
        t.size() - coma - 1 != 3)
        t[coma] = QLatin1Char('.');
    t.remove(QLatin1Char(','));
    bool ok = false;
    const double v = t.toDouble(&ok);
    if (!ok || !std::isfinite(v)) return std::nullopt;
    return v;
}

QStringList ResumenImportacion::texto() const {
    QStringList renglones = {QStringLiteral("Registros insertados: %1").arg(insertados),
                             QStringLiteral("Registros actualizados: %1").arg(actualizados),
                             QStringLiteral("Nombres creados: %1").arg(nombresCreados.size()),
                             QStringLiteral("Renglones rechazados: %1").arg(rechazados.size())};
    if (!nombresCreados.isEmpty())
        renglones[2] +=
            QStringLiteral(" (") + nombresCreados.join(QStringLiteral(", ")) + QLatin1Char(')');
    return renglones;
}

ImportacionCatalogo::ImportacionCatalogo(ConexionBD& conexion, const Sesion& sesion,
                                         TipoImportacion tipo, const Hoja& hoja)
    : conexion_(conexion), sesion_(sesion), tipo_(tipo), hoja_(hoja) {
    for (const ColumnaHoja& c : columnasDe(tipo))
        columnas_.push_back(hoja.columna(QString::fromLatin1(c.hoja)));
}

QHash<QString, int64_t>& ImportacionCatalogo::mapa(Catalogo catalogo) {
    switch (catalogo) {
    case Catalogo::Lineas:
        return lineas_;
    case Catalogo::Unidades:
        return unidades_;
    case Catalogo::Estados:
        break;
    }
    return estados_;
}

void ImportacionCatalogo::leeCatalogo(Catalogo catalogo) {
    static const char* const sql[] = {
        "Select ID, Linea, EmpresaID From Lineas Where empresaID = :EmpresaID",
        "Select ID, Unidad, EmpresaID From Unidades Where empresaID = :EmpresaID",
        "Select ID, Estado From Estados"};
    static const char* const nombre[] = {"Linea", "Unidad", "Estado"};
    const int i = static_cast<int>(catalogo);
    Consulta consulta(conexion_, QString::fromLatin1(sql[i]));
    if (catalogo != Catalogo::Estados)
        consulta.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    consulta.abre();
    QHash<QString, int64_t>& m = mapa(catalogo);
    m.clear();
    const LectorRenglones lector(consulta.registros());
    const size_t cID = lector.columna(QStringLiteral("ID"));
    const size_t cNombre = lector.columna(QString::fromLatin1(nombre[i]));
    for (size_t f = 0; f < lector.renglones(); ++f) {
        const int64_t id = lector.campo(f, cID).comoEntero();
        const QString llave = llaveNombre(lector.campo(f, cNombre).comoTexto());
        // Con nombres repetidos en la base, el más antiguo.
        auto it = m.find(llave);
        if (it == m.end())
            m.insert(llave, id);
        else if (id < *it)
            *it = id;
    }
}

void ImportacionCatalogo::preparaCatalogos() {
    if (tipo_ == TipoImportacion::Productos) {
        leeCatalogo(Catalogo::Lineas);
        leeCatalogo(Catalogo::Unidades);
        // Sin moneda para productos en la configuración, la primera de la empresa.
        Consulta valores(
            conexion_,
            QStringLiteral(
                "Select ifnull((Select nullif(monedaIDProductos, 0) From Configura Where empresaID "
                "= "
                ":EmpresaID), (Select min(ID) From Monedas Where empresaID = :EmpresaID)) as "
                "MonedaDefaultProductos, (Select claveSATProductos From Configura Where "
                "empresaID = :EmpresaID) as claveSATProductos"));
        valores.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
        valores.abre();
        moneda_ = valores.campo(QStringLiteral("MonedaDefaultProductos")).comoEntero();
        claveSatEmpresa_ = valores.campo(QStringLiteral("claveSATProductos")).comoTexto().trimmed();
    } else {
        leeCatalogo(Catalogo::Estados);
    }
    sqlActualiza_ = sqlActualiza(tipo_);
    sqlInserta_ = sqlInserta(tipo_, claveSatEmpresa_);
    renglones_.clear();
    renglones_.reserve(hoja_.renglones.size());
    for (const RenglonHoja& r : hoja_.renglones)
        renglones_.push_back(prepara(r));
    siguiente_ = 0;
    resumen_ = {};
}

ImportacionCatalogo::Preparado ImportacionCatalogo::prepara(const RenglonHoja& renglon) const {
    Preparado p;
    const std::vector<ColumnaHoja>& columnas = columnasDe(tipo_);
    for (size_t i = 0; i < columnas.size() && p.motivo.isEmpty(); ++i) {
        const ColumnaHoja& c = columnas[i];
        const QString hoja = QString::fromLatin1(c.hoja);
        const QVariant& celda = renglon.celdas.at(static_cast<size_t>(columnas_[i]));
        const QString t = textoCelda(celda).trimmed();
        auto rechaza = [&](const QString& motivo) { p.motivo = motivo; };
        auto largoMaximo = [&](int largo) {
            if (t.size() > largo)
                rechaza(QStringLiteral("%1 pasa de %2 caracteres: %3").arg(hoja).arg(largo).arg(t));
        };
        switch (c.dato) {
        case Dato::Texto:
            p.parametros.push_back(texto(c.columna, t));
            break;
        case Dato::Clave:
        case Dato::Nombre:
            if (t.isEmpty()) rechaza(QStringLiteral("Sin ") + hoja);
            largoMaximo(c.dato == Dato::Clave ? LargoClaveProducto : LargoNombre);
            p.parametros.push_back(texto(c.columna, t));
            break;
        case Dato::Rfc: {
            // Como lo guarda el catálogo: en mayúsculas, sin espacios ni guiones.
            const QString rfc = rfcNormalizado(t);
            if (rfc.size() > LargoRfc)
                rechaza(
                    QStringLiteral("%1 pasa de %2 caracteres: %3").arg(hoja).arg(LargoRfc).arg(t));
            p.parametros.push_back(texto(c.columna, rfc));
            break;
        }
        case Dato::Real:
        case Dato::Entero:
        case Dato::NivelPrecio: {
            std::optional<double> v = numeroDeCelda(celda);
            if (!v) {
                rechaza(QStringLiteral("%1 no es un número: %2").arg(hoja, t));
                break;
            }
            if (c.dato == Dato::Real) {
                p.parametros.push_back(parametro(c.columna, protocolo::Tipo::Real, *v));
                break;
            }
            if (c.dato == Dato::NivelPrecio && t.isEmpty()) v = 1;
            if (*v != std::trunc(*v) || std::abs(*v) > 1e9) {
                rechaza(QStringLiteral("%1 no es un número entero: %2").arg(hoja, t));
                break;
            }
            if (c.dato == Dato::NivelPrecio && (*v < 1 || *v > 5)) {
                rechaza(QStringLiteral("%1 debe ser de 1 a 5: %2").arg(hoja, t));
                break;
            }
            p.parametros.push_back(entero(c.columna, static_cast<int64_t>(*v)));
            break;
        }
        case Dato::Bandera: {
            const std::optional<bool> b = banderaDeCelda(celda);
            if (!b)
                rechaza(QStringLiteral("%1 no es 1/0, SI/NO, TRUE/FALSE ni X: %2").arg(hoja, t));
            else
                p.parametros.push_back(
                    parametro(c.columna, protocolo::Tipo::Booleano, int64_t{*b ? 1 : 0}));
            break;
        }
        case Dato::ClaveSat: {
            const QString sat = conCeros(celda, 8);
            if (!sat.isEmpty() && sat.size() != 8)
                rechaza(QStringLiteral("%1 debe tener 8 caracteres: %2").arg(hoja, sat));
            p.parametros.push_back(texto(c.columna, sat));
            break;
        }
        case Dato::Cp:
            p.parametros.push_back(texto(c.columna, conCeros(celda, 5)));
            break;
        case Dato::Linea:
        case Dato::Unidad:
        case Dato::Estado:
            p.parametros.push_back(parametro(c.columna, protocolo::Tipo::Entero, {}));
            if (!t.isEmpty()) {
                const Catalogo catalogo = c.dato == Dato::Linea    ? Catalogo::Lineas
                                          : c.dato == Dato::Unidad ? Catalogo::Unidades
                                                                   : Catalogo::Estados;
                p.nombres.push_back({p.parametros.size() - 1, {catalogo, t}});
            } else if (c.dato != Dato::Estado) {
                rechaza(QStringLiteral("Sin ") + hoja);
            }
            break;
        }
    }
    if (!p.motivo.isEmpty()) {
        p.parametros.clear();
        p.nombres.clear();
    }
    return p;
}

size_t ImportacionCatalogo::agregaAltaNombre(std::vector<protocolo::Sentencia>& lote,
                                             const Nombre& n) {
    struct Sql {
        const char* alta;
        const char* consulta;
        const char* columna;
    };
    static const Sql sql[] = {
        {"Insert Into Lineas (empresaID, linea, padre, usuarioID) Select :empresaID, :linea, 0, "
         ":usuarioID Where not exists (Select ID From Lineas Where empresaID = :empresaID And "
         "linea = :linea)",
         "Select ID From Lineas Where empresaID = :empresaID And linea = :linea Order By ID Limit "
         "1",
         "linea"},
        {"Insert Into Unidades (empresaID, unidad, usuarioID, claveSAT) Select :empresaID, "
         ":unidad, :usuarioID, '' Where not exists (Select ID From Unidades Where empresaID = "
         ":empresaID And unidad = :unidad)",
         "Select ID From Unidades Where empresaID = :empresaID And unidad = :unidad Order By ID "
         "Limit 1",
         "unidad"},
        {"Insert Into Estados (estado, claveSAT) Select :estado, '' Where not exists (Select ID "
         "From Estados Where estado = :estado)",
         "Select ID From Estados Where estado = :estado Order By ID Limit 1", "estado"}};
    const Sql& s = sql[static_cast<int>(n.catalogo)];
    protocolo::Sentencia alta{s.alta, {texto(s.columna, n.nombre)}};
    protocolo::Sentencia consulta{s.consulta, {texto(s.columna, n.nombre)}};
    if (n.catalogo != Catalogo::Estados) {
        alta.parametros.push_back(entero("empresaID", sesion_.EmpresaID));
        alta.parametros.push_back(entero("usuarioID", sesion_.UsuarioID));
        consulta.parametros.push_back(entero("empresaID", sesion_.EmpresaID));
    }
    lote.push_back(std::move(alta));
    lote.push_back(std::move(consulta));
    return lote.size() - 1;
}

int ImportacionCatalogo::numeroSiguiente() const {
    return terminada() ? 0 : hoja_.renglones.at(siguiente_).numero;
}

bool ImportacionCatalogo::importaLote() {
    // Lugar para la bitácora del lote.
    constexpr size_t MaximoSentencias = 999;
    constexpr size_t SentenciasPorRenglon = 2;
    while (!terminada()) {
        std::vector<protocolo::Sentencia> lote;
        std::vector<Pendiente> pendientes;
        struct EnLote {
            size_t renglon;
            size_t primera; // su primera sentencia
            size_t actualiza;
        };
        std::vector<EnLote> enLote;
        size_t fin = siguiente_;
        int escritos = 0;
        for (; fin < renglones_.size() && escritos < porLote_; ++fin) {
            const Preparado& p = renglones_[fin];
            if (!p.motivo.isEmpty()) continue;
            std::vector<protocolo::Parametro> parametros = p.parametros;
            std::vector<std::pair<size_t, const Nombre*>> nuevos;
            for (const auto& [indice, nombre] : p.nombres) {
                const QString llave = llaveNombre(nombre.nombre);
                const QHash<QString, int64_t>& m = mapa(nombre.catalogo);
                if (auto it = m.constFind(llave); it != m.constEnd()) {
                    parametros[indice].valor = *it;
                    continue;
                }
                auto pendiente =
                    std::find_if(pendientes.begin(), pendientes.end(), [&](const Pendiente& q) {
                        return q.nombre.catalogo == nombre.catalogo &&
                               llaveNombre(q.nombre.nombre) == llave;
                    });
                if (pendiente != pendientes.end())
                    parametros[indice].de = protocolo::Referencia{pendiente->consulta, "ID"};
                else
                    nuevos.emplace_back(indice, &nombre);
            }
            if (lote.size() + SentenciasPorRenglon * (nuevos.size() + 1) > MaximoSentencias) break;
            const size_t primera = lote.size();
            for (const auto& [indice, nombre] : nuevos) {
                const size_t consulta = agregaAltaNombre(lote, *nombre);
                pendientes.push_back({*nombre, consulta - 1, consulta});
                parametros[indice].de = protocolo::Referencia{consulta, "ID"};
            }
            parametros.push_back(entero("empresaID", sesion_.EmpresaID));
            const size_t actualiza = lote.size();
            lote.push_back({sqlActualiza_, parametros});
            parametros.push_back(entero("usuarioID", sesion_.UsuarioID));
            if (tipo_ == TipoImportacion::Productos)
                parametros.push_back(entero("moneda", moneda_));
            lote.push_back({sqlInserta_, std::move(parametros)});
            enLote.push_back({fin, primera, actualiza});
            ++escritos;
        }
        std::vector<Registros> resultados;
        if (!enLote.empty()) {
            const int primero = hoja_.renglones.at(siguiente_).numero;
            const int ultimo = hoja_.renglones.at(fin - 1).numero;
            if (observa_) observa_(lote);
            Lote envio(conexion_);
            for (protocolo::Sentencia& sentencia : lote)
                envio.agrega(std::move(sentencia));
            Auditoria::agrega(envio, sesion_,
                              {QString::fromUtf8(tipoAuditoria::Insercion),
                               QString::fromUtf8(ModuloImportador),
                               QStringLiteral("%1: renglones %2 a %3")
                                   .arg(QString::fromLatin1(tablaDe(tipo_)))
                                   .arg(primero)
                                   .arg(ultimo),
                               {},
                               {}});
            try {
                resultados = envio.ejecuta();
            } catch (const ErrorServicio& e) {
                // Un valor que la base no acepta es del renglón: se aparta y el lote se repite.
                const bool delRenglon = e.codigo() == "restriccion" || e.codigo() == "tamano";
                if (!delRenglon || !e.sentencia() || *e.sentencia() >= enLote.back().actualiza + 2)
                    throw;
                auto culpable = enLote.begin();
                for (auto it = enLote.begin(); it != enLote.end(); ++it)
                    if (it->primera <= *e.sentencia()) culpable = it;
                renglones_[culpable->renglon].motivo =
                    QStringLiteral("La base de datos rechazó el renglón: ") + e.mensaje();
                continue;
            }
        }
        for (const Pendiente& q : pendientes) {
            mapa(q.nombre.catalogo)
                .insert(llaveNombre(q.nombre.nombre),
                        resultados.at(q.consulta).campo(0, QStringLiteral("ID")).comoEntero());
            if (resultados.at(q.alta).filasAfectadas() > 0) {
                static const char* const tipos[] = {"Línea ", "Unidad ", "Estado "};
                resumen_.nombresCreados
                    << QString::fromUtf8(tipos[static_cast<int>(q.nombre.catalogo)]) +
                           q.nombre.nombre.trimmed();
            }
        }
        for (const EnLote& r : enLote) {
            if (resultados.at(r.actualiza + 1).filasAfectadas() > 0)
                ++resumen_.insertados;
            else
                ++resumen_.actualizados;
        }
        for (size_t i = siguiente_; i < fin; ++i)
            if (!renglones_[i].motivo.isEmpty())
                resumen_.rechazados.push_back({hoja_.renglones.at(i).numero, renglones_[i].motivo});
        resumen_.procesados += static_cast<int>(fin - siguiente_);
        siguiente_ = fin;
        return !terminada();
    }
    return false;
}

QString guardaRechazados(const Hoja& hoja, const ResumenImportacion& resumen, const QString& ruta) {
    auto campo = [](QString t) {
        if (t.contains(QLatin1Char(',')) || t.contains(QLatin1Char('"')) ||
            t.contains(QLatin1Char('\n')) || t.contains(QLatin1Char('\r')))
            return QLatin1Char('"') + t.replace(QLatin1Char('"'), QStringLiteral("\"\"")) +
                   QLatin1Char('"');
        return t;
    };
    QHash<int, const RenglonHoja*> porNumero;
    for (const RenglonHoja& r : hoja.renglones)
        porNumero.insert(r.numero, &r);
    QStringList renglones;
    QStringList encabezado = {QStringLiteral("RENGLON"), QStringLiteral("MOTIVO")};
    for (const QString& e : hoja.encabezados)
        encabezado << campo(e);
    renglones << encabezado.join(QLatin1Char(','));
    for (const RenglonRechazado& r : resumen.rechazados) {
        QStringList celdas = {QString::number(r.renglon), campo(r.motivo)};
        if (const RenglonHoja* h = porNumero.value(r.renglon))
            for (const QVariant& c : h->celdas)
                celdas << campo(textoCelda(c));
        renglones << celdas.join(QLatin1Char(','));
    }
    QFile archivo(ruta);
    if (!archivo.open(QIODevice::WriteOnly | QIODevice::Truncate)) return archivo.errorString();
    const QByteArray datos =
        (renglones.join(QStringLiteral("\r\n")) + QStringLiteral("\r\n")).toUtf8();
    if (archivo.write(datos) != datos.size()) return archivo.errorString();
    return {};
}

int exportaCatalogoProductos(ConexionDatos& conexion, int64_t empresaID, int64_t lineaID,
                             const QString& ruta) {
    const std::vector<ColumnaHoja>& columnas = columnasProductos();
    QString seleccion;
    for (const ColumnaHoja& c : columnas) {
        if (!seleccion.isEmpty()) seleccion += QStringLiteral(", ");
        const QString alias = QString::fromLatin1(c.hoja);
        if (c.dato == Dato::Linea)
            seleccion += QStringLiteral("C.linea as ") + alias;
        else if (c.dato == Dato::Unidad)
            seleccion += QStringLiteral("B.unidad as ") + alias;
        else
            seleccion += QStringLiteral("A.") + QString::fromLatin1(c.columna) +
                         QStringLiteral(" as ") + alias;
    }
    QString sql = QStringLiteral("Select ") + seleccion +
                  QStringLiteral(" From Productos A Left Outer Join Unidades B On A.empresaID = "
                                 "B.empresaID And A.unidad = B.ID Left Outer Join Lineas C On "
                                 "A.empresaID = C.empresaID And A.linea = C.ID Where A.empresaID = "
                                 ":EmpresaID");
    if (lineaID != TodasLasLineas) sql += QStringLiteral(" And A.linea = ") + numeroSql(lineaID);
    sql += QStringLiteral(" Order By C.linea, A.clave");
    Consulta consulta(conexion, sql);
    consulta.parametro(QStringLiteral("EmpresaID")).entero(empresaID);
    consulta.abre();

    const QByteArray archivo = QFile::encodeName(ruta);
    lxw_workbook* libro = workbook_new(archivo.constData());
    if (!libro) throw ErrorHoja(QStringLiteral("No se pudo crear el archivo ") + ruta);
    lxw_worksheet* hoja = workbook_add_worksheet(libro, "Productos");
    lxw_format* negritas = workbook_add_format(libro);
    format_set_bold(negritas);
    for (size_t c = 0; c < columnas.size(); ++c)
        worksheet_write_string(hoja, 0, static_cast<lxw_col_t>(c), columnas[c].hoja, negritas);
    worksheet_freeze_panes(hoja, 1, 0);
    worksheet_set_column(hoja, 2, 2, 40, nullptr);

    const LectorRenglones lector(consulta.registros());
    for (size_t f = 0; f < lector.renglones(); ++f) {
        const auto fila = static_cast<lxw_row_t>(f + 1);
        for (size_t c = 0; c < columnas.size(); ++c) {
            const Campo campo = lector.campo(f, c);
            const auto col = static_cast<lxw_col_t>(c);
            switch (columnas[c].dato) {
            case Dato::Real:
            case Dato::Entero:
                worksheet_write_number(hoja, fila, col, campo.comoReal(), nullptr);
                break;
            case Dato::Bandera:
                worksheet_write_string(hoja, fila, col, campo.comoEntero() != 0 ? "SI" : "NO",
                                       nullptr);
                break;
            default:
                if (const QString t = campo.comoTexto(); !t.isEmpty())
                    worksheet_write_string(hoja, fila, col, t.toUtf8().constData(), nullptr);
                break;
            }
        }
    }
    const lxw_error error = workbook_close(libro);
    if (error != LXW_NO_ERROR)
        throw ErrorHoja(QStringLiteral("No se pudo escribir el archivo %1: %2")
                            .arg(ruta, QString::fromUtf8(lxw_strerror(error))));
    return static_cast<int>(lector.renglones());
}

} // namespace cajaplex
