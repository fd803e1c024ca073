#include "datos/Transaccion.h"

#include <utility>

#include <QUuid>

#include "datos/Consulta.h"

namespace cajaplex {

namespace {
std::string claveNueva() {
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString();
}
} // namespace

Transaccion::Transaccion(ConexionBD& conexion)
    : conexion_(conexion), id_(conexion.comienzaTransaccion()), clave_(claveNueva()) {}

Transaccion::~Transaccion() {
    if (!activa_) return;
    try {
        conexion_.revierteTransaccion(id_);
    } catch (...) {
        // Si el servicio no contesta, él mismo revierte la transacción al expirar.
    }
}

void Transaccion::exigeActiva() const {
    if (!activa_) throw ErrorProgramacion("La transacción " + id_ + " ya terminó");
}

void Transaccion::confirma() {
    exigeActiva();
    conexion_.confirmaTransaccion(id_, clave_);
    activa_ = false;
}

void Transaccion::revierte() {
    exigeActiva();
    activa_ = false;
    conexion_.revierteTransaccion(id_);
}

protocolo::Resultado Transaccion::ejecuta(const protocolo::Sentencia& sentencia) {
    exigeActiva();
    return conexion_.ejecuta(sentencia, id_);
}

Lote::Lote(ConexionBD& conexion) : conexion_(conexion), clave_(claveNueva()) {}

size_t Lote::agrega(Consulta& consulta) {
    return agrega(consulta.tomaSentencia());
}

size_t Lote::agrega(Consulta&& consulta) {
    return agrega(consulta.tomaSentencia());
}

size_t Lote::agrega(protocolo::Sentencia sentencia) {
    sentencias_.push_back(std::move(sentencia));
    return sentencias_.size() - 1;
}

std::vector<Registros> Lote::ejecuta() {
    return corre(conexion_, "");
}

std::vector<Registros> Lote::ejecuta(Transaccion& transaccion) {
    if (!transaccion.activa())
        throw ErrorProgramacion("La transacción " + transaccion.id() + " ya terminó");
    return corre(transaccion.conexion(), transaccion.id());
}

void Lote::limpia() {
    sentencias_.clear();
    clave_ = claveNueva();
}

std::vector<Registros> Lote::corre(ConexionBD& conexion, const std::string& transaccion) {
    auto resultados = conexion.ejecutaLote(sentencias_, transaccion, clave_);
    std::vector<Registros> registros;
    registros.reserve(resultados.size());
    for (auto& r : resultados)
        registros.emplace_back(std::move(r));
    return registros;
}

} // namespace cajaplex
