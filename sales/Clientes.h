#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "datos/Sesion.h"
#include "pantallas/ListaEdicion.h"
#include "sales/CatalogoClientes.h"

class QComboBox;
class QLineEdit;

namespace cajaplex {

// Alta o cambio de un cliente: nombre, RFC, domicilio, contacto, nivel de precio y crédito. El
// saldo del monedero se muestra, no se edita: lo mueven las ventas.
class TClientesEditaF : public TEdicionCatalogoF {
    Q_OBJECT
public:
    explicit TClientesEditaF(const Sesion& sesion, QWidget* padre = nullptr);

    void nuevo();
    void edita(const DatosCliente& cliente);
    // El cliente recién almacenado (para quien lo dio de alta desde otra pantalla).
    const DatosCliente& almacenado() const { return almacenado_; }

protected:
    QString almacena(int64_t& id) override;

private:
    void muestra(const DatosCliente& cliente);
    DatosCliente capturado() const;

    CatalogoClientes catalogo_;
    std::optional<DatosCliente> anterior_; // vacío: alta
    DatosCliente almacenado_;

    QList<QLineEdit*> textos_;  // nombre, razón social, RFC, domicilio, teléfonos, correo
    QComboBox* precioVenta_;    // "precioVenta"
    QLineEdit* limiteCredito_;  // "limiteCredito"
    QLineEdit* diasCredito_;    // "diasCredito"
    InterruptorSiNo* bloquear_; // "bloquearCredito"
    QLineEdit* puntos_;         // "puntos", solo lectura
};

// "Clientes": la lista con búsqueda en el servicio (nombre, razón social, RFC o teléfono), alta
// (con el derecho clienteNuevo), cambio y borrado.
class TClientesF : public TListaCatalogoF {
    Q_OBJECT
public:
    explicit TClientesF(const Sesion& sesion, QWidget* padre = nullptr);

protected:
    void CargaTimer(int64_t seleccion) override;
    void actualizaAcciones() override;

protected slots:
    void BotonNuevoClick() override;
    void BotonModificarClick() override;

private slots:
    void BotonBorrarClick();

private:
    std::optional<DatosCliente> clienteElegido() const;

    const Sesion& sesion_;
    CatalogoClientes catalogo_;
    std::vector<DatosCliente> clientes_;
    QLineEdit* buscar_;        // "BuscarCliente"
    QPushButton* nuevo_;       // "BotonNuevo"
    TClientesEditaF* edicion_; // "ClientesEdita"
};

} // namespace cajaplex
