#include "datos/ControlAcceso.h"

#include "datos/Consulta.h"

namespace cajaplex {

bool dispositivoAutorizado(ConexionDatos& conexion, const QString& dispositivoID) {
    Consulta dispositivos(conexion,
                          QStringLiteral("Select count(*) as registrados, "
                                         "sum(case when ReferenciaID = :ReferenciaID then 1 "
                                         "else 0 end) as coincide From DispositivosRED"));
    dispositivos.parametro(QStringLiteral("ReferenciaID")).texto(dispositivoID.trimmed());
    dispositivos.abre();
    if (dispositivos.campo(QStringLiteral("registrados")).comoEntero() == 0) return true;
    return dispositivos.campo(QStringLiteral("coincide")).comoEntero() > 0;
}

} // namespace cajaplex
