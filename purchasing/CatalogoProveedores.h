#pragma once

#include <cstdint>
#include <vector>

#include <QString>

#include "datos/Consulta.h"
#include "datos/Sesion.h"

namespace cajaplex {

class ConexionBD;
class Transaccion;

// Módulo con que los proveedores firman la bitácora.
inline constexpr const char* ModuloProveedores = "Catálogos -> Proveedores";

// Los rechazos al almacenar, en el orden en que se revisan (el RFC y el correo usan los mensajes
// del catálogo de clientes), y los del borrado.
inline constexpr const char* MensajeProveedorSinNombre = "Ingrese el Nombre del Proveedor";
inline constexpr const char* MensajeLimiteNegativo = "El Límite de Crédito no puede ser negativo";
inline constexpr const char* MensajeDiasCreditoNegativos =
    "Los Días de Crédito no pueden ser negativos";
inline constexpr const char* MensajeProveedorNoExiste =
    "El Proveedor ya no existe: otra estación lo eliminó";
inline constexpr const char* MensajeProveedorConTransacciones =
    "No puede eliminar un Proveedor con Transacciones Registradas";

struct DatosProveedor {
    int64_t id = 0; // 0: alta
    QString nombre;
    QString razonSocial;
    QString rfc;
    QString calle;
    QString numeroExterior;
    QString numeroInterior;
    QString colonia;
    QString cp;
    QString localidad;
    QString contacto;
    QString telefono;
    QString email;
    double limiteCredito = 0;
    int diasCredito = 0; // los días de pago que propone la compra
    // Cómo cotiza sus costos: 0 como la empresa (Configura.desglosaRM); 1 con IVA incluido;
    // 2, 3 y 4 sin IVA.
    int desglosaRM = 0;
};

// Los proveedores de la empresa de la sesión. Cada cambio va en una transacción del servicio con
// su renglón de bitácora; las revisiones que leen la base van dentro de ella.
class CatalogoProveedores {
public:
    CatalogoProveedores(ConexionBD& conexion, const Sesion& sesion);

    // Por nombre; con `busqueda`, los que la contienen en el nombre, la razón social, el RFC, el
    // contacto o el teléfono.
    std::vector<DatosProveedor> consulta(const QString& busqueda = {});
    // Vacío si se almacenó (proveedor.id queda con la llave); si no, el motivo del rechazo.
    // `anterior` es lo leído antes de editar, para la bitácora (nullptr en un alta).
    QString almacena(DatosProveedor& proveedor, const DatosProveedor* anterior);
    // Vacío si se eliminó; si no, el motivo.
    QString elimina(const DatosProveedor& proveedor);

private:
    bool existe(Transaccion& t, int64_t id);

    Consulta ConsultaProveedores;
    Consulta ExisteProveedor;
    Consulta ReferenciasProveedor;
    Consulta InsertaProveedor;
    Consulta ActualizaProveedor;
    Consulta BorraProveedor;
    ConexionBD& conexion_;
    const Sesion& sesion_;
};

} // namespace cajaplex
