#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include <QString>
#include <QStringList>

#include "datos/ConexionBD.h"
#include "datos/Registros.h"

namespace cajaplex {

// Lee un resultado largo por número de columna: buscar cada campo por su nombre en cada renglón
// ya se nota al llenar un listado de miles. Sin widgets, para que lo usen también los modelos de
// lógica. Vale mientras viva el resultado.
class LectorRenglones {
public:
    explicit LectorRenglones(const Registros& registros)
        : filas_(registros.resultado().filas), columnas_(registros.columnas()) {}

    // La columna con ese nombre, sin distinguir mayúsculas; ErrorProgramacion si no viene.
    size_t columna(const QString& nombre) const {
        for (qsizetype i = 0; i < columnas_.size(); ++i)
            if (columnas_.at(i).compare(nombre, Qt::CaseInsensitive) == 0)
                return static_cast<size_t>(i);
        throw ErrorProgramacion("El resultado no tiene el campo '" + nombre.toStdString() + "'");
    }

    // Varias a la vez, en el orden pedido: const auto [cClave, cPrecio] = columnas({...}).
    template <size_t N> std::array<size_t, N> columnas(const char* const (&nombres)[N]) const {
        std::array<size_t, N> indices{};
        for (size_t i = 0; i < N; ++i)
            indices[i] = columna(QString::fromUtf8(nombres[i]));
        return indices;
    }

    size_t renglones() const { return filas_.size(); }
    const protocolo::Valor& valor(size_t fila, size_t columna) const {
        return filas_.at(fila).at(columna);
    }
    Campo campo(size_t fila, size_t columna) const { return {QString(), &valor(fila, columna)}; }

private:
    const std::vector<std::vector<protocolo::Valor>>& filas_;
    QStringList columnas_;
};

} // namespace cajaplex
