#pragma once

#include <algorithm>
#include <vector>

namespace cajaplex::carga {

// El percentil p (0 a 1) de unas muestras, por el rango más cercano; 0 sin muestras.
inline double percentil(std::vector<double> muestras, double p) {
    if (muestras.empty()) return 0;
    std::sort(muestras.begin(), muestras.end());
    return muestras[static_cast<size_t>(p * static_cast<double>(muestras.size() - 1) + 0.5)];
}

} // namespace cajaplex::carga
