-- Una comanda se cobra una sola vez y solo con la cuenta cerrada y sin cancelar. El cajero la
-- cargó cuando estaba por cobrar, pero entre cargarla y registrar la venta otra estación pudo
-- cobrarla, cancelarla o reabrirla: el lote de la venta entera se deshace con este mensaje.
CREATE TRIGGER tr_Comanda_cobro BEFORE UPDATE OF remision ON Comanda
WHEN NEW.remision IS NOT NULL
 AND (ifnull(OLD.cancelada, 0) <> 0 OR OLD.fechaCierre IS NULL
      OR (OLD.remision IS NOT NULL AND OLD.remision IS NOT NEW.remision))
BEGIN
    SELECT RAISE(ABORT, 'La Comanda ya no está por cobrar (se cobró, se canceló o se reabrió en otra estación)');
END;
