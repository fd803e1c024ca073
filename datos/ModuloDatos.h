#pragma once

#include <QString>

#include "datos/ConexionBD.h"
#include "datos/ConexionLocalBD.h"
#include "datos/Consulta.h"
#include "datos/Transaccion.h"

namespace cajaplex {

// El módulo de datos: las conexiones y las altas de los documentos principales, compartidas por
// las pantallas. Cada alta liga cada columna con un parámetro del mismo nombre; el tipo lo da el
// método con que la pantalla lo asigna. Como toda Consulta, cada ejecución exige todas sus marcas
// asignadas para ella (una olvidada no viaja como NULL: se rechaza con ErrorProgramacion; NULL
// se pide con nulo()) y las olvida al ejecutarse o agregarse a un Lote: un documento nunca hereda
// los valores del anterior. La aplicación usa la instancia global ModuloDeDatos; un
// hilo que necesite su propia conexión (carga, pruebas) crea otra instancia.
//
// Sin componentes de cursor de espera, de optimización ni de enlace al controlador SQLite: no
// aplican aquí (no hay cursor en una biblioteca sin widgets, SQLCipher no necesita enlace de
// controlador y la base local no se optimiza desde la estación).
class TModuloDeDatos {
public:
    TModuloDeDatos();
    TModuloDeDatos(const TModuloDeDatos&) = delete;
    TModuloDeDatos& operator=(const TModuloDeDatos&) = delete;

    // Valores de la instalación que la aplicación fija al arrancar.
    QString ArchivoLocalBD;
    QString ContrasenaLocalBD;

    // Componentes, en el orden del módulo.
    Consulta TablaLogeoLocalBD;
    cajaplex::ConexionBD ConexionBD;
    cajaplex::ConexionLocalBD ConexionLocalBD;
    Consulta ValidaReferenciaID;
    Consulta Remision;
    Consulta RemisionDetalle;
    Consulta RemisionDetalle2;
    Consulta RemisionPagos;
    Consulta Empresa;
    Consulta DatosEmpresa;
    Consulta Configuracion;
    Consulta AuditoriasSistema;
    Consulta Cotizacion;
    Consulta CotizacionDetalle;
    Consulta RegistraPago;
    Consulta Clientes;
    Consulta ConsultaConexionLocal;
    Consulta ConsultaConexionLocal2;
    Consulta Requisicion;
    Consulta RequisicionDetalle;
    Consulta OrdenCompra;
    Consulta OrdenCompraDetalle;
    Consulta DevolucionOrdenCompra;
    Consulta DevolucionOrdenCompraDetalle;
    Consulta AjusteProductos;
    Consulta AjusteProductosDetalle;

    // Deja sin asignar las marcas de todas las consultas compartidas (cada ejecución ya las
    // olvida; esto es para empezar de cero, por ejemplo al cambiar de sesión o entre pruebas).
    void limpiaParametros();

    // Antes de cada apertura de la base local: Encrypt, DriverID, Password y Database, en ese
    // orden.
    void ConexionLocalBDBeforeConnect(cajaplex::ConexionLocalBD& conexion);
};

TModuloDeDatos& instanciaModuloDeDatos();
extern TModuloDeDatos& ModuloDeDatos;

} // namespace cajaplex
