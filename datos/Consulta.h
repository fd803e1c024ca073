#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <QByteArray>
#include <QDate>
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QUuid>

#include "datos/ConexionBD.h"
#include "datos/Registros.h"
#include "protocol/Protocolo.h"

namespace cajaplex {

class Transaccion;

// Las marcas :Nombre de un texto SQL, como las ve el servicio: fuera de literales, de
// identificadores entre comillas y de comentarios. Una por nombre (sin distinguir mayúsculas),
// en orden de aparición y con la grafía de la primera.
std::vector<std::string> marcasSql(const std::string& sql);

// Un parámetro de un dataset. Vale para una sola ejecución: la consulta lo olvida al abrirse,
// ejecutarse o agregarse a un Lote. Uno sin asignar nunca viaja (ni como NULL): la consulta lo
// rechaza con ErrorProgramacion; NULL se manda solo con nulo().
class ParametroConsulta {
public:
    explicit ParametroConsulta(std::string nombre) { p_.nombre = std::move(nombre); }

    void entero(int64_t valor) { pon(protocolo::Tipo::Entero, valor); }
    void real(double valor) { pon(protocolo::Tipo::Real, valor); }
    void texto(const QString& valor);
    void booleano(bool valor) { pon(protocolo::Tipo::Booleano, int64_t{valor ? 1 : 0}); }
    // 'yyyy-MM-dd HH:mm:ss', hora local; una fecha inválida viaja como NULL.
    void fecha(const QDateTime& valor);
    void fecha(const QDate& valor);
    void blob(const QByteArray& valor);
    void guid(const QUuid& valor);
    // NULL a propósito, conservando el tipo que tenía.
    void nulo();
    // Solo dentro de un Lote: el valor sale de `columna` (o "ultimoId", "filasAfectadas") de la
    // sentencia `sentencia`, anterior en el mismo lote.
    void de(size_t sentencia, const QString& columna,
            protocolo::Tipo tipo = protocolo::Tipo::Entero);

    const protocolo::Parametro& valor() const { return p_; }
    bool asignado() const { return asignado_; }

private:
    void pon(protocolo::Tipo tipo, protocolo::Valor valor) {
        p_.tipo = tipo;
        p_.valor = std::move(valor);
        p_.de.reset();
        asignado_ = true;
    }

    protocolo::Parametro p_;
    bool asignado_ = false;
};

// Un dataset: texto SQL fijo con parámetros por nombre, abierto o ejecutado sobre una conexión
// (o dentro de una transacción, que trae la suya). Lee campos por nombre sin distinguir
// mayúsculas y recorre renglones.
//
// Cada ejecución lleva sus propios valores: abre(), ejecuta() y Lote::agrega() exigen que toda
// marca tenga valor asignado desde la ejecución anterior (si falta alguna lanzan
// ErrorProgramacion y no mandan nada) y, haya salido bien o no, dejan todas las marcas sin
// asignar. Así dos documentos seguidos sobre la misma consulta compartida no se heredan valores.
class Consulta {
public:
    explicit Consulta(QString sql);
    Consulta(ConexionDatos& conexion, QString sql);

    void asignaConexion(ConexionDatos& conexion) { conexion_ = &conexion; }
    // Cambia el texto: vuelve a leer las marcas y olvida parámetros y resultado.
    void asignaSql(QString sql);
    const QString& sql() const { return sql_; }
    QStringList marcas() const;

    // Un nombre que no es marca del texto es un error de programación (ErrorProgramacion).
    ParametroConsulta& parametro(const QString& nombre);
    // Deja todas las marcas sin asignar.
    void limpiaParametros();
    // Las marcas que aún no tienen valor para la siguiente ejecución.
    QStringList marcasSinAsignar() const;

    // Abre para leer renglones / ejecuta una escritura. Ambas guardan el resultado.
    void abre();
    void abre(Transaccion& transaccion);
    void ejecuta();
    void ejecuta(Transaccion& transaccion);
    void cierra();

    // El texto y los parámetros actuales, como viajarían, sin olvidarlos. Con una marca sin
    // asignar lanza ErrorProgramacion.
    protocolo::Sentencia sentencia() const;
    // Como sentencia(), pero olvida los parámetros (también si falta alguno): lo que usan las
    // ejecuciones y Lote::agrega.
    protocolo::Sentencia tomaSentencia();

    // Resultado de la última ejecución.
    const Registros& registros() const { return registros_; }
    int numeroRegistros() const { return registros_.numeroRegistros(); }
    int64_t ultimoId() const { return registros_.ultimoId(); }
    int64_t filasAfectadas() const { return registros_.filasAfectadas(); }
    // Campo del renglón actual; abre() deja el primero como actual.
    Campo campo(const QString& nombre) const { return registros_.campo(actual_, nombre); }
    void primero() { actual_ = 0; }
    void siguiente() { ++actual_; }
    bool fin() const { return actual_ >= static_cast<size_t>(numeroRegistros()); }
    Registros::Iterador begin() const { return registros_.begin(); }
    Registros::Iterador end() const { return registros_.end(); }

private:
    void guarda(protocolo::Resultado resultado);

    ConexionDatos* conexion_ = nullptr;
    QString sql_;
    std::string sqlUtf8_;
    std::vector<std::string> claves_; // marcas en minúsculas, paralelas a parametros_
    std::vector<ParametroConsulta> parametros_;
    Registros registros_;
    size_t actual_ = 0;
};

} // namespace cajaplex
