#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "datos/Sesion.h"
#include "pantallas/ListaEdicion.h"
#include "security/CatalogoPerfiles.h"
#include "security/CatalogoUsuarios.h"

class QComboBox;
class QLineEdit;

namespace cajaplex {

// Alta o cambio de un usuario: nombre de usuario, nombre completo, contraseña tecleada dos veces,
// perfil, banderas y las empresas activas a las que puede entrar.
class TUsuariosEditaF : public TEdicionCatalogoF {
    Q_OBJECT
public:
    explicit TUsuariosEditaF(const Sesion& sesion, QWidget* padre = nullptr);

    // Leen perfiles y empresas; falso (ya avisado) si no se pudo.
    bool nuevo();
    bool edita(const DatosUsuario& usuario);

    // Lo que guarda cada renglón de "EmpresasUsuario".
    enum RolEmpresa { RolEmpresaID = Qt::UserRole + 1 };

protected:
    QString almacena(int64_t& id) override;

private:
    bool cargaListas(const QList<int64_t>& empresasUsuario);
    void muestra(const DatosUsuario& usuario);
    DatosUsuario capturado() const;

    CatalogoUsuarios catalogo_;
    CatalogoPerfiles perfiles_;
    std::optional<DatosUsuario> anterior_; // vacío: alta

    QLineEdit* usuario_;           // "NombreUsuario"
    QLineEdit* nombre_;            // "NombreCompleto"
    QLineEdit* contrasena_;        // "Contrasena"
    QLineEdit* confirmacion_;      // "ConfirmaContrasena"
    QComboBox* perfil_;            // "PerfilUsuario"
    InterruptorSiNo* activo_;      // "Activo"
    InterruptorSiNo* accesaMovil_; // "AccesaMovil"
    InterruptorSiNo* esAdmin_;     // "EsAdmin"
    QListWidget* empresas_;        // "EmpresasUsuario"
};

// "Usuarios": la lista por nombre, con búsqueda, alta y cambio. Los usuarios no se borran: se
// desactivan, porque sus documentos los nombran.
class TUsuariosF : public TListaCatalogoF {
    Q_OBJECT
public:
    explicit TUsuariosF(const Sesion& sesion, QWidget* padre = nullptr);

protected:
    void CargaTimer(int64_t seleccion) override;

protected slots:
    void BotonNuevoClick() override;
    void BotonModificarClick() override;

private slots:
    void BuscarUsuarioChange();

private:
    std::optional<DatosUsuario> usuarioElegido() const;

    CatalogoUsuarios catalogo_;
    std::vector<DatosUsuario> usuarios_;
    QLineEdit* buscar_;        // "BuscarUsuario"
    TUsuariosEditaF* edicion_; // "UsuariosEdita"
};

} // namespace cajaplex
