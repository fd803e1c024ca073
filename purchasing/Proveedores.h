#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "datos/Sesion.h"
#include "pantallas/ListaEdicion.h"
#include "purchasing/CatalogoProveedores.h"

class QComboBox;
class QLineEdit;

namespace cajaplex {

// Alta o cambio de un proveedor: nombre, RFC, domicilio, contacto, límite y días de crédito y cómo
// cotiza sus costos (con o sin IVA).
class TProveedoresEditaF : public TEdicionCatalogoF {
    Q_OBJECT
public:
    explicit TProveedoresEditaF(const Sesion& sesion, QWidget* padre = nullptr);

    void nuevo();
    void edita(const DatosProveedor& proveedor);

protected:
    QString almacena(int64_t& id) override;

private:
    void muestra(const DatosProveedor& proveedor);
    DatosProveedor capturado() const;

    CatalogoProveedores catalogo_;
    std::optional<DatosProveedor> anterior_; // vacío: alta
    QList<QLineEdit*> textos_;               // nombre, razón social, RFC, domicilio, contacto
    QLineEdit* limiteCredito_;               // "limiteCredito"
    QLineEdit* diasCredito_;                 // "diasCredito"
    QComboBox* desglosaRM_;                  // "desglosaRM"
};

// "Proveedores": la lista con búsqueda en el servicio, alta (con el derecho de compras
// ProveedorNuevo), cambio y borrado.
class TProveedoresF : public TListaCatalogoF {
    Q_OBJECT
public:
    explicit TProveedoresF(const Sesion& sesion, QWidget* padre = nullptr);

protected:
    void CargaTimer(int64_t seleccion) override;
    void actualizaAcciones() override;

protected slots:
    void BotonNuevoClick() override;
    void BotonModificarClick() override;

private slots:
    void BotonBorrarClick();

private:
    std::optional<DatosProveedor> proveedorElegido() const;

    const Sesion& sesion_;
    CatalogoProveedores catalogo_;
    std::vector<DatosProveedor> proveedores_;
    QLineEdit* buscar_;           // "BuscarProveedor"
    QPushButton* nuevo_;          // "BotonNuevo"
    TProveedoresEditaF* edicion_; // "ProveedoresEdita"
};

} // namespace cajaplex
