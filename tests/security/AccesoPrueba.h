// El inicio de sesión de una estación contra el servicio de demostración, para las pruebas de
// usuarios: lo que ve quien entra con un usuario y una contraseña.
#pragma once

#include <gtest/gtest.h>

#include <QList>
#include <QString>
#include <QTemporaryDir>

#include "datos/AjustesEstacion.h"
#include "datos/ModuloDatos.h"
#include "security/InicioSesion.h"
#include "tests/fixtures/ServicioPrueba.h"

namespace cajaplex::prueba {

// Las empresas que ofrece el inicio de sesión; vacío si lo rechaza.
inline QList<int64_t> empresasAlEntrar(TModuloDeDatos& modulo, int puerto, const QString& usuario,
                                       const QString& contrasena) {
    QTemporaryDir carpeta;
    AjustesEstacion ajustes(carpeta.path());
    ajustes.ponCredencialesServicio(QString::fromStdString(kUsuarioDemo),
                                    QString::fromStdString(kUsuarioDemo));
    InicioSesion inicio(modulo, ajustes, QStringLiteral("estacion-prueba"));
    const ResultadoAcceso r =
        inicio.valida({QStringLiteral("127.0.0.1"), QString::number(puerto), usuario, contrasena});
    EXPECT_EQ(r.aceptado(), !r.empresas.isEmpty()) << r.mensaje.toStdString();
    QList<int64_t> empresas;
    for (const Sesion& s : r.empresas)
        empresas << s.EmpresaID;
    return empresas;
}

} // namespace cajaplex::prueba
