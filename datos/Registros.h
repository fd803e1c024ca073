#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

#include <QByteArray>
#include <QDateTime>
#include <QHash>
#include <QString>
#include <QStringList>

#include "protocol/Protocolo.h"

namespace cajaplex {

// Un valor de un renglón. Las conversiones no fallan con NULL: dan 0, "", fecha inválida,
// bytes vacíos o false. Solo es válido mientras viva el resultado del que salió.
class Campo {
public:
    Campo(QString nombre, const protocolo::Valor* valor) : nombre_(std::move(nombre)), v_(valor) {}

    const QString& nombre() const { return nombre_; }
    bool esNulo() const;
    int64_t comoEntero() const;
    double comoReal() const;
    QString comoTexto() const;
    QDateTime comoFecha() const;
    QByteArray comoBlob() const;
    bool comoBooleano() const;

private:
    QString nombre_;
    const protocolo::Valor* v_; // nullptr: no hay renglón
};

class Registros;

class Registro {
public:
    Registro(const Registros& registros, size_t fila) : r_(&registros), fila_(fila) {}
    Campo campo(const QString& nombre) const;

private:
    const Registros* r_;
    size_t fila_;
};

// Resultado de una sentencia con acceso a columnas por nombre sin distinguir mayúsculas.
class Registros {
public:
    Registros() = default;
    explicit Registros(protocolo::Resultado resultado);

    int numeroRegistros() const { return static_cast<int>(r_.filas.size()); }
    int64_t ultimoId() const { return r_.ultimoId; }
    int64_t filasAfectadas() const { return r_.filasAfectadas; }
    QStringList columnas() const;
    bool tieneColumna(const QString& nombre) const;

    // Un nombre que no es columna es un error de programación (ErrorProgramacion). Sin renglones,
    // el campo existe y es NULL, como en un dataset vacío.
    Campo campo(size_t fila, const QString& nombre) const;
    Registro registro(size_t fila) const { return {*this, fila}; }
    const protocolo::Resultado& resultado() const { return r_; }

    class Iterador {
    public:
        Iterador(const Registros& r, size_t fila) : r_(&r), fila_(fila) {}
        Registro operator*() const { return r_->registro(fila_); }
        Iterador& operator++() {
            ++fila_;
            return *this;
        }
        bool operator==(const Iterador& otro) const { return fila_ == otro.fila_; }

    private:
        const Registros* r_;
        size_t fila_;
    };
    Iterador begin() const { return {*this, 0}; }
    Iterador end() const { return {*this, r_.filas.size()}; }

private:
    protocolo::Resultado r_;
    QHash<QString, int> indice_; // nombre en minúsculas -> columna (la primera, si se repite)
};

} // namespace cajaplex
