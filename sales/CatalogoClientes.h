#pragma once

#include <cstdint>
#include <vector>

#include <QString>

#include "datos/Consulta.h"
#include "datos/Sesion.h"
#include "datos/Utilerias.h"

namespace cajaplex {

class ConexionBD;
class Transaccion;

// Módulo con que los clientes firman la bitácora.
inline constexpr const char* ModuloClientes = "Catálogos -> Clientes";

// Los rechazos al almacenar, en el orden en que se revisan, y los del borrado.
inline constexpr const char* MensajeClienteSinNombre = "Ingrese el Nombre del Cliente";
inline constexpr const char* MensajeRfcInvalido =
    "El RFC no es válido: 12 caracteres (persona moral) ó 13 (persona física), como XAXX010101000";
inline constexpr const char* MensajeCorreoInvalido = "El Correo Electrónico no es válido";
inline constexpr const char* MensajeCreditoNegativo =
    "El Límite y los Días de Crédito no pueden ser negativos";
inline constexpr const char* MensajeClienteNoExiste =
    "El Cliente ya no existe: otra estación lo eliminó";
inline constexpr const char* MensajeClienteConTransacciones =
    "No puede eliminar un Cliente con Transacciones Registradas";
inline constexpr const char* MensajeClientePredeterminado =
    "No puede eliminar el Cliente predeterminado de la empresa";

struct DatosCliente {
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
    QString telefono;
    QString telefonoCelular;
    QString email;
    int precioVenta = 1; // nivel de precio, 1 a 5
    double limiteCredito = 0;
    int diasCredito = 0;
    bool bloquearCredito = false;
    double puntos = 0; // saldo del monedero: solo se muestra, lo mueven las ventas
};

// Una sola dirección de correo con la forma nombre@dominio.ext (sin espacios).
bool correoValido(const QString& correo);

// Los clientes de la empresa de la sesión. Cada cambio va en una transacción del servicio con su
// renglón de bitácora; las revisiones que leen la base van dentro de ella.
class CatalogoClientes {
public:
    CatalogoClientes(ConexionBD& conexion, const Sesion& sesion);

    // Por nombre; con `busqueda`, los que la contienen en el nombre, la razón social, el RFC o un
    // teléfono.
    std::vector<DatosCliente> consulta(const QString& busqueda = {});
    // Vacío si se almacenó (cliente.id queda con la llave); si no, el motivo del rechazo.
    // `anterior` es lo leído antes de editar, para la bitácora (nullptr en un alta).
    QString almacena(DatosCliente& cliente, const DatosCliente* anterior);
    // Vacío si se eliminó; si no, el motivo.
    QString elimina(const DatosCliente& cliente);

private:
    bool existe(Transaccion& t, int64_t id);

    Consulta ConsultaClientes;
    Consulta ExisteCliente;
    Consulta ReferenciasCliente;
    Consulta InsertaCliente;
    Consulta ActualizaCliente;
    Consulta BorraCliente;
    ConexionBD& conexion_;
    const Sesion& sesion_;
};

} // namespace cajaplex
