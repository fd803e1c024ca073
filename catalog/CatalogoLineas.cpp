#include "catalog/CatalogoLineas.h"

#include <QHash>

#include "datos/Auditoria.h"
#include "datos/ConexionBD.h"
#include "datos/Transaccion.h"

namespace cajaplex {
namespace {

const char* const SqlConsultaLineas = "Select ID, linea, Padre, miniatura\n"
                                      "from Lineas\n"
                                      "Where empresaID = :EmpresaID\n"
                                      "Order By Padre, linea";

const char* const SqlNumeroProductosXLinea = "Select Count(B.ID) as NumeroProductosXLinea\n"
                                             "from Lineas A, Productos B\n"
                                             "Where A.empresaID = :EmpresaID\n"
                                             "and A.ID = :LineaID\n"
                                             "and A.empresaID = B.empresaID\n"
                                             "and A.ID = B.Linea";

const char* const SqlInsertaLinea = "Insert Into Lineas (empresaID, linea, padre, usuarioID) \n"
                                    "Values (:EmpresaID, :NombreLinea, :LineaIDPadre, :UsuarioID) ";

const char* const SqlLineaIDInsertada = "Select Max(ID) as LineaIDInsertada\n"
                                        "From Lineas\n"
                                        "Where EmpresaID = :EmpresaID";

const char* const SqlEditaLinea = "Update Lineas \n"
                                  "Set Linea = :NombreLinea\n"
                                  "Where EmpresaID = :EmpresaID\n"
                                  "and ID = :LineaID";

const char* const SqlEliminaLineaSeleccionada = "Delete \n"
                                                "From Lineas\n"
                                                "Where empresaID = :EmpresaID\n"
                                                "and ID = :LineaID";

// Las dos primeras revisiones de "Eliminar Nodo", repetidas dentro de la transacción.
const char* const SqlCuentaLineas =
    "Select (Select Count(*) From Lineas Where empresaID = :EmpresaID) as Lineas, "
    "(Select Count(*) From Lineas Where empresaID = :EmpresaID and Padre = :LineaID) as SubLineas";

QString textoLinea(const QString& nombre) {
    return QStringLiteral("Línea: ") + nombre;
}

} // namespace

std::vector<NodoArbolLineas> ordenaArbolLineas(const std::vector<LineaProducto>& renglones) {
    const int total = static_cast<int>(renglones.size());
    QHash<int64_t, int> porID;
    for (int i = 0; i < total; ++i)
        porID.insert(renglones[static_cast<size_t>(i)].id, i);

    std::vector<std::vector<int>> hijos(renglones.size());
    std::vector<int> raices;
    for (int i = 0; i < total; ++i) {
        const LineaProducto& l = renglones[static_cast<size_t>(i)];
        const auto padre = porID.constFind(l.padre);
        if (padre == porID.constEnd() || l.padre == l.id)
            raices.push_back(i);
        else
            hijos[static_cast<size_t>(*padre)].push_back(i);
    }

    std::vector<NodoArbolLineas> orden;
    orden.reserve(renglones.size());
    std::vector<bool> visitado(renglones.size(), false);
    // Pila explícita: un árbol muy hondo no agota la pila del programa.
    auto recorre = [&](int raiz) {
        std::vector<std::pair<int, int>> pila{{raiz, -1}}; // renglón, índice del padre en orden
        while (!pila.empty()) {
            const auto [i, padre] = pila.back();
            pila.pop_back();
            if (visitado[static_cast<size_t>(i)]) continue;
            visitado[static_cast<size_t>(i)] = true;
            const int indice = static_cast<int>(orden.size());
            orden.push_back({renglones[static_cast<size_t>(i)], padre});
            const auto& suyos = hijos[static_cast<size_t>(i)];
            for (auto h = suyos.rbegin(); h != suyos.rend(); ++h)
                pila.emplace_back(*h, indice);
        }
    };
    for (int r : raices)
        recorre(r);
    // Lo que quedó sin visitar está en un ciclo: se muestra desde la raíz.
    for (int i = 0; i < total; ++i)
        if (!visitado[static_cast<size_t>(i)]) recorre(i);
    return orden;
}

CatalogoLineas::CatalogoLineas(ConexionBD& conexion, const Sesion& sesion)
    : ConsultaLineas(conexion, QString::fromUtf8(SqlConsultaLineas)),
      NumeroProductosXLinea(conexion, QString::fromUtf8(SqlNumeroProductosXLinea)),
      InsertaLinea(conexion, QString::fromUtf8(SqlInsertaLinea)),
      LineaIDInsertada(conexion, QString::fromUtf8(SqlLineaIDInsertada)),
      EditaLinea(conexion, QString::fromUtf8(SqlEditaLinea)),
      EliminaLineaSeleccionada(conexion, QString::fromUtf8(SqlEliminaLineaSeleccionada)),
      conexion_(conexion), sesion_(sesion),
      cuentaLineas_(conexion, QString::fromUtf8(SqlCuentaLineas)) {}

std::vector<LineaProducto> CatalogoLineas::consulta() {
    ConsultaLineas.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    ConsultaLineas.abre();
    std::vector<LineaProducto> lineas;
    lineas.reserve(static_cast<size_t>(ConsultaLineas.numeroRegistros()));
    for (const Registro& r : ConsultaLineas)
        lineas.push_back({r.campo(QStringLiteral("ID")).comoEntero(),
                          r.campo(QStringLiteral("Padre")).comoEntero(),
                          r.campo(QStringLiteral("linea")).comoTexto(),
                          r.campo(QStringLiteral("miniatura")).comoBlob()});
    return lineas;
}

int64_t CatalogoLineas::inserta(int64_t padre, const QString& nombre) {
    InsertaLinea.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    InsertaLinea.parametro(QStringLiteral("NombreLinea")).texto(nombre);
    InsertaLinea.parametro(QStringLiteral("LineaIDPadre")).entero(padre);
    InsertaLinea.parametro(QStringLiteral("UsuarioID")).entero(sesion_.UsuarioID);
    LineaIDInsertada.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    // Alta, lectura de la llave y bitácora en un solo viaje y una sola transacción: el Max(ID)
    // se lee con el escritor tomado, así que es la línea recién insertada.
    Lote lote(conexion_);
    lote.agrega(InsertaLinea);
    const size_t lectura = lote.agrega(LineaIDInsertada);
    Auditoria::agrega(lote, sesion_,
                      {tipoAuditoria::Insercion,
                       QString::fromUtf8(ModuloCatalogoProductos),
                       textoLinea(nombre),
                       {},
                       {}});
    const std::vector<Registros> resultados = lote.ejecuta();
    return resultados.at(lectura).campo(0, QStringLiteral("LineaIDInsertada")).comoEntero();
}

void CatalogoLineas::renombra(int64_t lineaID, const QString& nombre, const QString& anterior) {
    EditaLinea.parametro(QStringLiteral("NombreLinea")).texto(nombre);
    EditaLinea.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    EditaLinea.parametro(QStringLiteral("LineaID")).entero(lineaID);
    Lote lote(conexion_);
    lote.agrega(EditaLinea);
    Auditoria::agrega(lote, sesion_,
                      {tipoAuditoria::Actualizacion,
                       QString::fromUtf8(ModuloCatalogoProductos),
                       textoLinea(nombre),
                       textoLinea(anterior),
                       {}});
    lote.ejecuta();
}

RechazoEliminarLinea CatalogoLineas::elimina(int64_t lineaID, const QString& nombre) {
    Transaccion t(conexion_);
    cuentaLineas_.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    cuentaLineas_.parametro(QStringLiteral("LineaID")).entero(lineaID);
    cuentaLineas_.abre(t);
    if (cuentaLineas_.campo(QStringLiteral("Lineas")).comoEntero() <= 1)
        return RechazoEliminarLinea::UnicaLinea;
    if (cuentaLineas_.campo(QStringLiteral("SubLineas")).comoEntero() > 0)
        return RechazoEliminarLinea::ConSubLineas;

    NumeroProductosXLinea.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    NumeroProductosXLinea.parametro(QStringLiteral("LineaID")).entero(lineaID);
    NumeroProductosXLinea.abre(t);
    if (NumeroProductosXLinea.campo(QStringLiteral("NumeroProductosXLinea")).comoEntero() > 0)
        return RechazoEliminarLinea::ConProductos;

    EliminaLineaSeleccionada.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    EliminaLineaSeleccionada.parametro(QStringLiteral("LineaID")).entero(lineaID);
    EliminaLineaSeleccionada.ejecuta(t);
    Auditoria::registra(t, sesion_,
                        {tipoAuditoria::Cancelacion,
                         QString::fromUtf8(ModuloCatalogoProductos),
                         textoLinea(nombre),
                         {},
                         QStringLiteral("Línea eliminada")});
    t.confirma();
    return RechazoEliminarLinea::Ninguno;
}

} // namespace cajaplex
