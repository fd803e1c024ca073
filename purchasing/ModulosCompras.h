#pragma once

namespace cajaplex {

// Agrega al registro de módulos las pantallas de compras: "Compras", "Documentos de Compra" y
// "Proveedores".
void registraModulosCompras();

} // namespace cajaplex
