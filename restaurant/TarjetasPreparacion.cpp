#include "restaurant/TarjetasPreparacion.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

#include "datos/Consulta.h"

namespace cajaplex {
namespace {

const char* const SqlAreasPreparacion =
    "Select A.id, ifnull(A.padre, 0) as padre, A.area From AreasComida A "
    "Where A.empresaID = :EmpresaID and Exists (Select 1 From Productos P Where P.empresaID = "
    "A.empresaID and P.areaComida = A.id) Order By A.area";

const char* const SqlComandasActivas = "exec dbo.ConsultaComandasActivas :ID, :EmpresaID, :AreaID";

const char* const SqlActualizaComandasDetalles =
    "exec dbo.ActualizaComandasDetalles :ID, :EmpresaID, :Comanda, :Seccion, :Servida, :Posicion";

// Lo que distingue a un renglón dentro de la empresa.
using LlaveRenglon = std::tuple<int64_t, int, int>;
LlaveRenglon llave(const RenglonPreparacion& r) {
    return {r.comanda, r.seccion, r.posicion};
}

bool mismosRenglones(const std::vector<RenglonPreparacion>& a,
                     const std::vector<RenglonPreparacion>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const RenglonPreparacion& x, const RenglonPreparacion& y) {
                          return llave(x) == llave(y) && x.servida == y.servida &&
                                 x.cantidad == y.cantidad && x.nota == y.nota &&
                                 x.comensal == y.comensal && x.producto == y.producto;
                      });
}

QString claveDe(int64_t comanda, int seccion) {
    return QStringLiteral("%1|%2").arg(comanda).arg(seccion);
}

} // namespace

QString textoEstado(int servida) {
    switch (servida) {
    case Pendiente:
        return QStringLiteral("Pendiente");
    case Preparando:
        return QStringLiteral("Preparando");
    default:
        return QStringLiteral("Servida");
    }
}

QString TarjetaPreparacion::clave() const {
    return claveDe(comanda, seccion);
}

bool TarjetaPreparacion::todoServido() const {
    return std::all_of(renglones.begin(), renglones.end(),
                       [](const RenglonPreparacion& r) { return r.servida >= Servida; });
}

QString TarjetaPreparacion::pie() const {
    return QStringLiteral("%1 Producto(s)").arg(renglones.size());
}

ColorEspera colorEspera(int minutos) {
    if (minutos >= 25) return {"#FF0000", "#FFFFFF"};
    if (minutos >= 15) return {"#FFD700", "#000000"};
    return {"#1E90FF", "#FFFFFF"};
}

int minutosDesde(const QDateTime& captura, const QDateTime& ahora) {
    if (!captura.isValid() || !ahora.isValid()) return 0;
    return static_cast<int>(std::max<qint64>(0, captura.secsTo(ahora) / 60));
}

TarjetasPreparacion::Cambios
TarjetasPreparacion::funde(const std::vector<RenglonPreparacion>& filas, const QDateTime& ahora) {
    std::set<LlaveRenglon> vistos;
    for (const TarjetaPreparacion& t : tarjetas_)
        for (const RenglonPreparacion& r : t.renglones)
            vistos.insert(llave(r));

    // Agrupa por comanda y sección en el orden de la consulta; dentro, por comensal.
    std::vector<TarjetaPreparacion> leidas;
    std::map<QString, size_t> indice;
    for (const RenglonPreparacion& r : filas) {
        const QString clave = claveDe(r.comanda, r.seccion);
        auto [it, nueva] = indice.emplace(clave, leidas.size());
        if (nueva) {
            TarjetaPreparacion t;
            t.comanda = r.comanda;
            t.seccion = r.seccion;
            t.nodo = r.nodo;
            t.mesero = r.mesero;
            t.captura = r.fechaCaptura;
            leidas.push_back(std::move(t));
        }
        leidas[it->second].renglones.push_back(r);
    }
    for (TarjetaPreparacion& t : leidas)
        std::stable_sort(t.renglones.begin(), t.renglones.end(),
                         [](const RenglonPreparacion& a, const RenglonPreparacion& b) {
                             return a.comensal < b.comensal;
                         });

    Cambios cambios;
    for (TarjetaPreparacion& t : leidas) {
        const TarjetaPreparacion* antes = busca(t.clave());
        if (antes) {
            t.minutos = antes->minutos;
            if (!mismosRenglones(antes->renglones, t.renglones))
                cambios.cambiadas.push_back(t.clave());
        } else {
            t.minutos = minutosDesde(t.captura, ahora);
            cambios.nuevas.push_back(t.clave());
        }
        for (const RenglonPreparacion& r : t.renglones)
            if (!vistos.count(llave(r))) cambios.renglonesNuevos = true;
    }
    for (const TarjetaPreparacion& t : tarjetas_)
        if (!indice.count(t.clave())) cambios.quitadas.push_back(t.clave());
    tarjetas_ = std::move(leidas);
    return cambios;
}

void TarjetasPreparacion::incrementaMinutos() {
    for (TarjetaPreparacion& t : tarjetas_)
        ++t.minutos;
}

TarjetaPreparacion* TarjetasPreparacion::ponEstado(int64_t comanda, int seccion, int posicion,
                                                   int servida) {
    for (TarjetaPreparacion& t : tarjetas_) {
        if (t.comanda != comanda || t.seccion != seccion) continue;
        for (RenglonPreparacion& r : t.renglones)
            if (r.posicion == posicion) r.servida = servida;
        return &t;
    }
    return nullptr;
}

bool TarjetasPreparacion::quitaServida(const QString& clave) {
    auto it = std::find_if(tarjetas_.begin(), tarjetas_.end(), [&](const TarjetaPreparacion& t) {
        return t.clave() == clave && t.todoServido();
    });
    if (it == tarjetas_.end()) return false;
    tarjetas_.erase(it);
    return true;
}

const TarjetaPreparacion* TarjetasPreparacion::busca(const QString& clave) const {
    auto it = std::find_if(tarjetas_.begin(), tarjetas_.end(),
                           [&](const TarjetaPreparacion& t) { return t.clave() == clave; });
    return it == tarjetas_.end() ? nullptr : &*it;
}

ComandasPreparacion::ComandasPreparacion(ConexionBD& conexion, const Sesion& sesion)
    : conexion_(conexion), sesion_(sesion) {}

std::vector<AreaComida> ComandasPreparacion::areasPreparacion() {
    Consulta consulta(conexion_, QString::fromUtf8(SqlAreasPreparacion));
    consulta.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    consulta.abre();
    std::vector<AreaComida> areas;
    for (const Registro& r : consulta)
        areas.push_back({r.campo(QStringLiteral("id")).comoEntero(),
                         r.campo(QStringLiteral("padre")).comoEntero(),
                         r.campo(QStringLiteral("area")).comoTexto()});
    return areas;
}

std::vector<RenglonPreparacion> ComandasPreparacion::comandasActivas(int64_t areaID) {
    Consulta consulta(conexion_, QString::fromUtf8(SqlComandasActivas));
    consulta.parametro(QStringLiteral("ID")).guid(id_);
    consulta.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    consulta.parametro(QStringLiteral("AreaID")).entero(areaID);
    consulta.abre();
    std::vector<RenglonPreparacion> renglones;
    renglones.reserve(static_cast<size_t>(consulta.numeroRegistros()));
    for (const Registro& f : consulta) {
        RenglonPreparacion r;
        r.comanda = f.campo(QStringLiteral("comanda")).comoEntero();
        r.seccion = static_cast<int>(f.campo(QStringLiteral("seccion")).comoEntero());
        r.posicion = static_cast<int>(f.campo(QStringLiteral("posicion")).comoEntero());
        r.cantidad = f.campo(QStringLiteral("cantidad")).comoReal();
        r.nota = f.campo(QStringLiteral("nota")).comoTexto();
        r.producto = f.campo(QStringLiteral("producto")).comoTexto();
        r.nodo = f.campo(QStringLiteral("descripcion")).comoTexto();
        r.mesero = f.campo(QStringLiteral("nombre")).comoTexto();
        r.fechaCaptura = f.campo(QStringLiteral("fechaCaptura")).comoFecha();
        r.area = f.campo(QStringLiteral("area")).comoTexto();
        r.linea = f.campo(QStringLiteral("linea")).comoTexto();
        r.areaID = f.campo(QStringLiteral("areaID")).comoEntero();
        r.servida = static_cast<int>(f.campo(QStringLiteral("servida")).comoEntero());
        r.extra = f.campo(QStringLiteral("extra")).comoBooleano();
        r.comensal = static_cast<int>(f.campo(QStringLiteral("numeroComensal")).comoEntero());
        r.esPaquete = f.campo(QStringLiteral("esPaquete")).comoBooleano();
        r.productoID = f.campo(QStringLiteral("productoID")).comoEntero();
        r.nodoComida = f.campo(QStringLiteral("NodoComida")).comoEntero();
        renglones.push_back(std::move(r));
    }
    return renglones;
}

int ComandasPreparacion::avanza(const RenglonPreparacion& renglon) {
    const int siguiente = std::min<int>(renglon.servida + 1, Servida);
    Consulta consulta(conexion_, QString::fromUtf8(SqlActualizaComandasDetalles));
    consulta.parametro(QStringLiteral("ID")).guid(id_);
    consulta.parametro(QStringLiteral("EmpresaID")).entero(sesion_.EmpresaID);
    consulta.parametro(QStringLiteral("Comanda")).entero(renglon.comanda);
    consulta.parametro(QStringLiteral("Seccion")).entero(renglon.seccion);
    consulta.parametro(QStringLiteral("Servida")).entero(siguiente);
    consulta.parametro(QStringLiteral("Posicion")).entero(renglon.posicion);
    consulta.abre();
    if (consulta.numeroRegistros() == 0)
        throw RegistroInexistente(QStringLiteral("El renglón ya no existe en la comanda"));
    return static_cast<int>(consulta.campo(QStringLiteral("servida")).comoEntero());
}

} // namespace cajaplex
