-- El monedero electrónico (Clientes.puntos) nunca queda en negativo: la base rechaza la resta que
-- lo dejaría así. Dos cajas que gastan a la vez los mismos puntos pasan por el escritor único;
-- la segunda ve el saldo ya gastado y su lote entero se deshace.
--
-- Solo se revisan las bajas, para que un saldo negativo anterior todavía pueda recibir puntos.
-- Los puntos son reales sin redondeo: una diferencia por debajo de la sexta decimal no es saldo
-- insuficiente, y el residuo negativo que deja se lleva a cero.

CREATE TRIGGER tr_Clientes_monedero BEFORE UPDATE OF puntos ON Clientes
WHEN NEW.puntos < OLD.puntos AND round(NEW.puntos, 6) < 0
BEGIN
    SELECT RAISE(ABORT, 'Saldo insuficiente en Monedero Electrónico');
END;

CREATE TRIGGER tr_Clientes_monedero_residuo AFTER UPDATE OF puntos ON Clientes
WHEN NEW.puntos < 0 AND round(NEW.puntos, 6) = 0
BEGIN
    UPDATE Clientes SET puntos = 0 WHERE id = NEW.id;
END;
