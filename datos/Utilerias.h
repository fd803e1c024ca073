#pragma once

#include <cstdint>

#include <QString>

namespace cajaplex {

// Única forma de meter un texto en una sentencia armada en código: entre apóstrofos y con los
// apóstrofos duplicados. Lo tecleado por el usuario va siempre así o como parámetro.
QString citaSql(const QString& texto);

// Números para sentencias armadas en código, escritos desde el número (nunca desde un texto) y
// sin depender del idioma del equipo. Un real no finito es un error de programación.
QString numeroSql(int64_t valor);
QString numeroSql(double valor);

// Redondeo a la mitad alejándose de cero en la potencia de diez 10^-decimales. Trabaja sobre la
// representación decimal más corta del double, para que 1.005 (1.00499999... en binario) dé 1.01.
double Redondea(double valor, int decimales);

// Un RFC con la forma del SAT: 3 (moral) ó 4 (física) letras, fecha AAMMDD válida y homoclave de
// 3 caracteres. Ignora espacios y guiones y no distingue mayúsculas.
bool rfcValido(const QString& rfc);
// El RFC como se guarda: sin espacios ni guiones, en mayúsculas.
QString rfcNormalizado(const QString& rfc);

} // namespace cajaplex
