#include "server/Procedimientos.h"

#include <algorithm>
#include <array>
#include <regex>

namespace cajaplex::servidor {

using protocolo::errorSolicitud;

namespace {

struct Definicion {
    const char* nombre;
    size_t argumentos;
    bool escribe;
};

constexpr std::array<Definicion, 3> definiciones = {{
    {"ValidaUsuarioMoviles", 2, false},
    {"ConsultaComandasActivas", 3, false},
    {"ActualizaComandasDetalles", 6, true},
}};

std::string minusculas(std::string s) {
    std::transform(s.begin(), s.end(), s.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return s;
}

// Usuario activo con acceso móvil y esas credenciales (la contraseña guardada es un hash).
constexpr const char* sqlValidaUsuario =
    "Select usuarioID as UsuarioID, nombre, esAdmin, perfilID From Usuarios"
    " Where nUsuario = :a0 and cajaplex_verifica(:a1, contrasena) = 1 and ifnull(activo, 0) = 1"
    " and ifnull(accesaMovil, 0) = 1";

// La misma consulta del monitor de preparación; el área 0 trae todas.
constexpr const char* sqlComandasActivas =
    " Select A.comanda, A.seccion, A.cantidad, A.nota, D.producto, C.descripcion, E.nombre,"
    " A.fechaCaptura, F.area, G.linea,"
    " F.id as areaID, A.posicion, A.servida, A.extra, A.numeroComensal,"
    " ifnull(D.esPaquete, 0) esPaquete, A.producto as productoID, C.id as NodoComida"
    " From ComandaDetalle A, Comanda B, NodosComida C, Productos D, Usuarios E, AreasComida F,"
    " Lineas G"
    " Where A.empresaID = :a1"
    " and A.servida <= 1 and A.cancelada = 0"
    " and A.empresaID = B.empresaID and A.id = B.id and A.comanda = B.folio"
    " and B.cancelada = 0 and B.fechaApertura is not null and B.fechaCierre is null"
    " and B.fechaPago is null"
    " and B.empresaID = C.empresaID and B.nodoComida = C.id and C.activo = 1"
    " and A.empresaID = D.empresaID and A.producto = D.id"
    " and B.vendedor = E.UsuarioID"
    " and D.empresaID = F.empresaID and D.areaComida = F.id"
    " and D.empresaID = G.empresaID and D.linea = G.id"
    " and (ifnull(:a2, 0) = 0 or D.areaComida = :a2)"
    " order by A.fechaCaptura, A.comanda, A.seccion, A.NumeroComensal, F.Area, A.producto";

constexpr const char* sqlActualizaRenglon =
    "Update ComandaDetalle Set servida = :a4,"
    " fechaPreparada = case when :a4 = 1 then datetime('now','localtime') else fechaPreparada end,"
    " fechaServida = case when :a4 = 2 then datetime('now','localtime') else fechaServida end"
    " Where empresaID = :a1 and comanda = :a2 and seccion = :a3 and posicion = :a5";

constexpr const char* sqlRenglonActualizado =
    "Select comanda, seccion, posicion, producto, cantidad, servida, fechaPreparada, fechaServida"
    " From ComandaDetalle"
    " Where empresaID = :a1 and comanda = :a2 and seccion = :a3 and posicion = :a5";

// Solo los argumentos que cada sentencia usa: el motor rechaza parámetros sin marca.
std::vector<Parametro> argumentos(const LlamadaProcedimiento& llamada,
                                  std::initializer_list<size_t> posiciones) {
    std::vector<Parametro> lista;
    for (size_t i : posiciones) {
        Parametro p = llamada.argumentos.at(i);
        p.nombre = "a" + std::to_string(i);
        lista.push_back(std::move(p));
    }
    return lista;
}

} // namespace

std::optional<LlamadaProcedimiento>
reconoceProcedimiento(const std::string& sql, const std::vector<Parametro>& parametros) {
    static const std::regex llamada(R"(^\s*exec(?:ute)?\s+(?:dbo\.)?(\w+)\s*(.*?)[\s;]*$)",
                                    std::regex::icase);
    std::smatch m;
    if (!std::regex_match(sql, m, llamada)) return std::nullopt;
    const std::string nombre = minusculas(m[1].str());
    auto def = std::find_if(definiciones.begin(), definiciones.end(),
                            [&](const Definicion& d) { return minusculas(d.nombre) == nombre; });
    if (def == definiciones.end()) throw errorSolicitud("Procedimiento desconocido: " + m[1].str());

    std::vector<std::string> marcas;
    static const std::regex marca(R"(^\s*:(\w+)\s*$)");
    const std::string lista = m[2].str();
    size_t inicio = 0;
    while (!lista.empty() && inicio <= lista.size()) {
        size_t coma = lista.find(',', inicio);
        std::string arg =
            lista.substr(inicio, coma == std::string::npos ? std::string::npos : coma - inicio);
        std::smatch mm;
        if (!std::regex_match(arg, mm, marca))
            throw errorSolicitud("Los argumentos de un procedimiento son marcas :Nombre");
        marcas.push_back(mm[1].str());
        if (coma == std::string::npos) break;
        inicio = coma + 1;
    }
    if (marcas.size() != def->argumentos)
        throw errorSolicitud(std::string(def->nombre) + " espera " +
                             std::to_string(def->argumentos) + " argumentos");

    LlamadaProcedimiento resultado{def->nombre, {}, def->escribe};
    std::vector<bool> usados(parametros.size(), false);
    for (const auto& nombreMarca : marcas) {
        auto it = std::find_if(parametros.begin(), parametros.end(), [&](const Parametro& p) {
            return minusculas(p.nombre) == minusculas(nombreMarca);
        });
        if (it == parametros.end())
            throw errorSolicitud("La marca :" + nombreMarca + " no tiene parámetro");
        usados[static_cast<size_t>(it - parametros.begin())] = true;
        resultado.argumentos.push_back(*it);
    }
    for (size_t i = 0; i < parametros.size(); ++i) {
        for (size_t j = i + 1; j < parametros.size(); ++j)
            if (minusculas(parametros[i].nombre) == minusculas(parametros[j].nombre))
                throw errorSolicitud("Dos parámetros se llaman igual: '" + parametros[i].nombre +
                                     "'");
        if (!usados[i])
            throw errorSolicitud("El parámetro '" + parametros[i].nombre +
                                 "' no tiene marca en la sentencia");
    }
    return resultado;
}

Resultado ejecutaProcedimiento(Conexion& conexion, const LlamadaProcedimiento& llamada) {
    if (llamada.nombre == "ValidaUsuarioMoviles")
        return conexion.ejecutaInterna(sqlValidaUsuario, argumentos(llamada, {0, 1}));
    if (llamada.nombre == "ConsultaComandasActivas")
        return conexion.ejecutaInterna(sqlComandasActivas, argumentos(llamada, {1, 2}));
    auto cambio =
        conexion.ejecutaInterna(sqlActualizaRenglon, argumentos(llamada, {1, 2, 3, 4, 5}));
    auto renglon =
        conexion.ejecutaInterna(sqlRenglonActualizado, argumentos(llamada, {1, 2, 3, 5}));
    renglon.filasAfectadas = cambio.filasAfectadas;
    return renglon;
}

} // namespace cajaplex::servidor
