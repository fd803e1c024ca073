-- Proveedores: días de crédito (los días de pago que propone la pantalla de compras al elegir al
-- proveedor) y cómo cotiza sus costos (desglosaRM: 0 como la empresa; 1 con IVA incluido;
-- 2, 3 y 4 sin IVA, como los modos de la empresa).
ALTER TABLE Proveedores ADD COLUMN diasCredito INTEGER DEFAULT 0;
ALTER TABLE Proveedores ADD COLUMN desglosaRM INTEGER DEFAULT 0;

-- La recepción recuerda la orden de compra que recibió: al cancelarla, esa orden vuelve a quedar
-- abierta para recibirse de nuevo.
ALTER TABLE OrdenCompra ADD COLUMN folioRequisicion INTEGER;
