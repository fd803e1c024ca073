#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <QHash>
#include <QList>

#include "datos/Sesion.h"
#include "pantallas/ListaEdicion.h"
#include "security/CatalogoPerfiles.h"

class QLineEdit;

namespace cajaplex {

// Alta o cambio de un perfil: su nombre, las entradas del menú que permite (todas las que
// registran los módulos, más las que el perfil ya tenía) y sus derechos de ventas, compras y
// cuentas por cobrar.
class TPerfilesEditaF : public TEdicionCatalogoF {
    Q_OBJECT
public:
    explicit TPerfilesEditaF(const Sesion& sesion, QWidget* padre = nullptr);

    void nuevo();
    // Lee sus permisos; falso (ya avisado) si no se pudo.
    bool edita(const Perfil& perfil);

    // Lo que guarda cada renglón de "MenusPerfil": verdadero si ningún módulo lo registra.
    enum RolMenu { RolSinModulo = Qt::UserRole + 1 };

protected:
    QString almacena(int64_t& id) override;

private:
    QWidget* creaDerechos(int grupo);
    void muestra(const DatosPerfil& perfil);
    DatosPerfil capturado() const;

    CatalogoPerfiles catalogo_;
    std::optional<DatosPerfil> anterior_; // vacío: alta

    QLineEdit* nombre_;  // "NombrePerfil"
    QListWidget* menus_; // "MenusPerfil"
    // Paralelo a gruposDerechos(): columna -> su interruptor ("<tabla>.<columna>").
    QList<QHash<QString, InterruptorSiNo*>> derechos_;
};

// "Perfiles de Usuario": la lista por nombre con alta, cambio y borrado. Un perfil que tiene algún
// usuario no se borra.
class TPerfilesF : public TListaCatalogoF {
    Q_OBJECT
public:
    explicit TPerfilesF(const Sesion& sesion, QWidget* padre = nullptr);

protected:
    void CargaTimer(int64_t seleccion) override;
    void actualizaAcciones() override;

protected slots:
    void BotonNuevoClick() override;
    void BotonModificarClick() override;

private slots:
    void BotonBorrarClick();

private:
    void EliminaPerfilTimer(const Perfil& perfil);
    std::optional<Perfil> perfilElegido() const;

    CatalogoPerfiles catalogo_;
    std::vector<Perfil> perfiles_;
    QPushButton* borrar_;      // "BotonBorrar"
    TPerfilesEditaF* edicion_; // "PerfilesEdita"
};

} // namespace cajaplex
