-- Existencias: cada renglón guarda lo que de verdad movió.
--
-- Hasta aquí cancelar un documento recalculaba el movimiento con los datos del momento de
-- cancelar (composición del kit, manejaInventarios, esPaquete, clave), así que un kit
-- recompuesto o un producto renombrado entre la venta y su cancelación dejaba la existencia mal.
-- Ahora el alta de cada renglón anota en cajaplex_movimientos qué producto (por su id) movió y
-- cuánto, mueve la existencia exactamente con lo anotado, y la cancelación revierte lo anotado
-- y lo marca como revertido (cancelar dos veces no mueve nada). La tabla es contabilidad del
-- servicio: las estaciones no la ven (solo los disparadores tr_* la usan).

CREATE TABLE cajaplex_movimientos (
    id          INTEGER PRIMARY KEY,
    documento   TEXT NOT NULL,              -- tabla del encabezado: Remision, OrdenCompra, ...
    empresaID   INTEGER NOT NULL,
    encabezado  INTEGER NOT NULL,           -- lo que el renglón guarda del encabezado (folio o ID)
    renglon     INTEGER NOT NULL,           -- rowid del renglón
    productoID  INTEGER NOT NULL,           -- Productos.id que se movió
    cantidad    REAL NOT NULL,              -- lo que se sumó a la existencia (negativo: salió)
    aplicado    INTEGER NOT NULL DEFAULT 0, -- 0 solo mientras corre el disparador del alta
    revertido   INTEGER NOT NULL DEFAULT 0,
    fecha       DATETIME DEFAULT (datetime('now', 'localtime'))
);
CREATE INDEX ix_cajaplex_movimientos_documento
    ON cajaplex_movimientos (documento, empresaID, encabezado, revertido);
CREATE INDEX ix_cajaplex_movimientos_pendientes
    ON cajaplex_movimientos (productoID) WHERE aplicado = 0;

-- ---------------------------------------------------------------------------------------------
-- Remision (venta: sale)
-- ---------------------------------------------------------------------------------------------

-- Lo que ya movieron los documentos vigentes, calculado como lo hacía la versión anterior.
INSERT INTO cajaplex_movimientos (documento, empresaID, encabezado, renglon, productoID, cantidad,
                                  aplicado)
SELECT 'Remision', D.empresaID, D.remision, D.rowid, P.id, -1 * ifnull(D.cantidad, 0), 1
  FROM RemisionDetalle D, Productos P
 WHERE EXISTS (SELECT 1 FROM Remision H WHERE H.empresaID = D.empresaID AND H.folio = D.remision
                  AND H.descontoExistencias = 1 AND ifnull(H.cancelada, 0) = 0)
   AND P.empresaID = D.empresaID AND P.clave = D.clave
   AND P.manejaInventarios = 1 AND ifnull(P.esPaquete, 0) = 0;

INSERT INTO cajaplex_movimientos (documento, empresaID, encabezado, renglon, productoID, cantidad,
                                  aplicado)
SELECT 'Remision', D.empresaID, D.remision, D.rowid, C.id,
       -1 * ifnull(D.cantidad, 0) * total(PP.cantidad), 1
  FROM RemisionDetalle D, Productos K, ProductosPaquetes PP, Productos C
 WHERE EXISTS (SELECT 1 FROM Remision H WHERE H.empresaID = D.empresaID AND H.folio = D.remision
                  AND H.descontoExistencias = 1 AND ifnull(H.cancelada, 0) = 0)
   AND K.empresaID = D.empresaID AND K.clave = D.clave AND K.esPaquete = 1
   AND PP.empresaID = K.empresaID AND PP.id = K.id
   AND C.empresaID = K.empresaID AND C.clave = PP.clave AND C.manejaInventarios = 1
 GROUP BY D.rowid, C.id;

DROP TRIGGER tr_RemisionDetalle_existencias;
CREATE TRIGGER tr_RemisionDetalle_existencias AFTER INSERT ON RemisionDetalle
WHEN EXISTS (SELECT 1 FROM Remision H
              WHERE H.empresaID = NEW.empresaID AND H.folio = NEW.remision
                AND H.descontoExistencias = 1 AND ifnull(H.cancelada, 0) = 0)
BEGIN
    -- Producto simple que lleva existencias.
    INSERT INTO cajaplex_movimientos (documento, empresaID, encabezado, renglon, productoID,
                                      cantidad)
    SELECT 'Remision', NEW.empresaID, NEW.remision, NEW.rowid, P.id,
           -1 * ifnull(NEW.cantidad, 0)
      FROM Productos P
     WHERE P.empresaID = NEW.empresaID AND P.clave = NEW.clave
       AND P.manejaInventarios = 1 AND ifnull(P.esPaquete, 0) = 0;

    -- Kit: sus componentes que llevan existencias, cantidad del componente por la del renglón.
    INSERT INTO cajaplex_movimientos (documento, empresaID, encabezado, renglon, productoID,
                                      cantidad)
    SELECT 'Remision', NEW.empresaID, NEW.remision, NEW.rowid, C.id,
           -1 * ifnull(NEW.cantidad, 0) * total(PP.cantidad)
      FROM Productos K, ProductosPaquetes PP, Productos C
     WHERE K.empresaID = NEW.empresaID AND K.clave = NEW.clave AND K.esPaquete = 1
       AND PP.empresaID = K.empresaID AND PP.id = K.id
       AND C.empresaID = K.empresaID AND C.clave = PP.clave AND C.manejaInventarios = 1
     GROUP BY C.id;

    -- La existencia se mueve exactamente con lo anotado.
    UPDATE Productos SET existencia = ifnull(existencia, 0) +
           (SELECT total(M.cantidad) FROM cajaplex_movimientos M
             WHERE M.aplicado = 0 AND M.productoID = Productos.id)
     WHERE id IN (SELECT M.productoID FROM cajaplex_movimientos M WHERE M.aplicado = 0);
    UPDATE cajaplex_movimientos SET aplicado = 1 WHERE aplicado = 0;
END;

DROP TRIGGER tr_Remision_cancelada;
CREATE TRIGGER tr_Remision_cancelada AFTER UPDATE OF cancelada ON Remision
WHEN ifnull(OLD.cancelada, 0) = 0 AND NEW.cancelada = 1
BEGIN
    UPDATE Productos SET existencia = ifnull(existencia, 0) -
           (SELECT total(M.cantidad) FROM cajaplex_movimientos M
             WHERE M.documento = 'Remision' AND M.empresaID = NEW.empresaID
               AND M.encabezado = NEW.folio AND M.revertido = 0 AND M.productoID = Productos.id)
     WHERE id IN (SELECT M.productoID FROM cajaplex_movimientos M
                   WHERE M.documento = 'Remision' AND M.empresaID = NEW.empresaID
                     AND M.encabezado = NEW.folio AND M.revertido = 0);
    UPDATE cajaplex_movimientos SET revertido = 1
     WHERE documento = 'Remision' AND empresaID = NEW.empresaID AND encabezado = NEW.folio
       AND revertido = 0;
END;

-- ---------------------------------------------------------------------------------------------
-- OrdenCompra (recepción de mercancía: entra)
-- ---------------------------------------------------------------------------------------------

-- Lo que ya movieron los documentos vigentes, calculado como lo hacía la versión anterior.
INSERT INTO cajaplex_movimientos (documento, empresaID, encabezado, renglon, productoID, cantidad,
                                  aplicado)
SELECT 'OrdenCompra', D.empresaID, D.ordenCompra, D.rowid, P.id, 1 * ifnull(D.cantidad, 0), 1
  FROM OrdenCompraDetalle D, Productos P
 WHERE EXISTS (SELECT 1 FROM OrdenCompra H WHERE H.empresaID = D.empresaID AND H.folio = D.ordenCompra
                  AND ifnull(H.cancelada, 0) = 0)
   AND P.empresaID = D.empresaID AND P.clave = D.clave
   AND P.manejaInventarios = 1 AND ifnull(P.esPaquete, 0) = 0;

INSERT INTO cajaplex_movimientos (documento, empresaID, encabezado, renglon, productoID, cantidad,
                                  aplicado)
SELECT 'OrdenCompra', D.empresaID, D.ordenCompra, D.rowid, C.id,
       1 * ifnull(D.cantidad, 0) * total(PP.cantidad), 1
  FROM OrdenCompraDetalle D, Productos K, ProductosPaquetes PP, Productos C
 WHERE EXISTS (SELECT 1 FROM OrdenCompra H WHERE H.empresaID = D.empresaID AND H.folio = D.ordenCompra
                  AND ifnull(H.cancelada, 0) = 0)
   AND K.empresaID = D.empresaID AND K.clave = D.clave AND K.esPaquete = 1
   AND PP.empresaID = K.empresaID AND PP.id = K.id
   AND C.empresaID = K.empresaID AND C.clave = PP.clave AND C.manejaInventarios = 1
 GROUP BY D.rowid, C.id;

DROP TRIGGER tr_OrdenCompraDetalle_existencias;
CREATE TRIGGER tr_OrdenCompraDetalle_existencias AFTER INSERT ON OrdenCompraDetalle
WHEN EXISTS (SELECT 1 FROM OrdenCompra H
              WHERE H.empresaID = NEW.empresaID AND H.folio = NEW.ordenCompra
                AND ifnull(H.cancelada, 0) = 0)
BEGIN
    -- Producto simple que lleva existencias.
    INSERT INTO cajaplex_movimientos (documento, empresaID, encabezado, renglon, productoID,
                                      cantidad)
    SELECT 'OrdenCompra', NEW.empresaID, NEW.ordenCompra, NEW.rowid, P.id,
           1 * ifnull(NEW.cantidad, 0)
      FROM Productos P
     WHERE P.empresaID = NEW.empresaID AND P.clave = NEW.clave
       AND P.manejaInventarios = 1 AND ifnull(P.esPaquete, 0) = 0;

    -- Kit: sus componentes que llevan existencias, cantidad del componente por la del renglón.
    INSERT INTO cajaplex_movimientos (documento, empresaID, encabezado, renglon, productoID,
                                      cantidad)
    SELECT 'OrdenCompra', NEW.empresaID, NEW.ordenCompra, NEW.rowid, C.id,
           1 * ifnull(NEW.cantidad, 0) * total(PP.cantidad)
      FROM Productos K, ProductosPaquetes PP, Productos C
     WHERE K.empresaID = NEW.empresaID AND K.clave = NEW.clave AND K.esPaquete = 1
       AND PP.empresaID = K.empresaID AND PP.id = K.id
       AND C.empresaID = K.empresaID AND C.clave = PP.clave AND C.manejaInventarios = 1
     GROUP BY C.id;

    -- La existencia se mueve exactamente con lo anotado.
    UPDATE Productos SET existencia = ifnull(existencia, 0) +
           (SELECT total(M.cantidad) FROM cajaplex_movimientos M
             WHERE M.aplicado = 0 AND M.productoID = Productos.id)
     WHERE id IN (SELECT M.productoID FROM cajaplex_movimientos M WHERE M.aplicado = 0);
    UPDATE cajaplex_movimientos SET aplicado = 1 WHERE aplicado = 0;
END;

DROP TRIGGER tr_OrdenCompra_cancelada;
CREATE TRIGGER tr_OrdenCompra_cancelada AFTER UPDATE OF cancelada ON OrdenCompra
WHEN ifnull(OLD.cancelada, 0) = 0 AND NEW.cancelada = 1
BEGIN
    UPDATE Productos SET existencia = ifnull(existencia, 0) -
           (SELECT total(M.cantidad) FROM cajaplex_movimientos M
             WHERE M.documento = 'OrdenCompra' AND M.empresaID = NEW.empresaID
               AND M.encabezado = NEW.folio AND M.revertido = 0 AND M.productoID = Productos.id)
     WHERE id IN (SELECT M.productoID FROM cajaplex_movimientos M
                   WHERE M.documento = 'OrdenCompra' AND M.empresaID = NEW.empresaID
                     AND M.encabezado = NEW.folio AND M.revertido = 0);
    UPDATE cajaplex_movimientos SET revertido = 1
     WHERE documento = 'OrdenCompra' AND empresaID = NEW.empresaID AND encabezado = NEW.folio
       AND revertido = 0;
END;

-- ---------------------------------------------------------------------------------------------
-- DevolucionOrdenCompra (devolución al proveedor: sale)
-- ---------------------------------------------------------------------------------------------

-- Lo que ya movieron los documentos vigentes, calculado como lo hacía la versión anterior.
INSERT INTO cajaplex_movimientos (documento, empresaID, encabezado, renglon, productoID, cantidad,
                                  aplicado)
SELECT 'DevolucionOrdenCompra', D.empresaID, D.devolucionOrdenCompra, D.rowid, P.id, -1 * ifnull(D.cantidad, 0), 1
  FROM DevolucionOrdenCompraDetalle D, Productos P
 WHERE EXISTS (SELECT 1 FROM DevolucionOrdenCompra H WHERE H.empresaID = D.empresaID AND H.folio = D.devolucionOrdenCompra
                  AND ifnull(H.cancelada, 0) = 0)
   AND P.empresaID = D.empresaID AND P.clave = D.clave
   AND P.manejaInventarios = 1 AND ifnull(P.esPaquete, 0) = 0;

INSERT INTO cajaplex_movimientos (documento, empresaID, encabezado, renglon, productoID, cantidad,
                                  aplicado)
SELECT 'DevolucionOrdenCompra', D.empresaID, D.devolucionOrdenCompra, D.rowid, C.id,
       -1 * ifnull(D.cantidad, 0) * total(PP.cantidad), 1
  FROM DevolucionOrdenCompraDetalle D, Productos K, ProductosPaquetes PP, Productos C
 WHERE EXISTS (SELECT 1 FROM DevolucionOrdenCompra H WHERE H.empresaID = D.empresaID AND H.folio = D.devolucionOrdenCompra
                  AND ifnull(H.cancelada, 0) = 0)
   AND K.empresaID = D.empresaID AND K.clave = D.clave AND K.esPaquete = 1
   AND PP.empresaID = K.empresaID AND PP.id = K.id
   AND C.empresaID = K.empresaID AND C.clave = PP.clave AND C.manejaInventarios = 1
 GROUP BY D.rowid, C.id;

DROP TRIGGER tr_DevolucionOrdenCompraDetalle_existencias;
CREATE TRIGGER tr_DevolucionOrdenCompraDetalle_existencias AFTER INSERT ON DevolucionOrdenCompraDetalle
WHEN EXISTS (SELECT 1 FROM DevolucionOrdenCompra H
              WHERE H.empresaID = NEW.empresaID AND H.folio = NEW.devolucionOrdenCompra
                AND ifnull(H.cancelada, 0) = 0)
BEGIN
    -- Producto simple que lleva existencias.
    INSERT INTO cajaplex_movimientos (documento, empresaID, encabezado, renglon, productoID,
                                      cantidad)
    SELECT 'DevolucionOrdenCompra', NEW.empresaID, NEW.devolucionOrdenCompra, NEW.rowid, P.id,
           -1 * ifnull(NEW.cantidad, 0)
      FROM Productos P
     WHERE P.empresaID = NEW.empresaID AND P.clave = NEW.clave
       AND P.manejaInventarios = 1 AND ifnull(P.esPaquete, 0) = 0;

    -- Kit: sus componentes que llevan existencias, cantidad del componente por la del renglón.
    INSERT INTO cajaplex_movimientos (documento, empresaID, encabezado, renglon, productoID,
                                      cantidad)
    SELECT 'DevolucionOrdenCompra', NEW.empresaID, NEW.devolucionOrdenCompra, NEW.rowid, C.id,
           -1 * ifnull(NEW.cantidad, 0) * total(PP.cantidad)
      FROM Productos K, ProductosPaquetes PP, Productos C
     WHERE K.empresaID = NEW.empresaID AND K.clave = NEW.clave AND K.esPaquete = 1
       AND PP.empresaID = K.empresaID AND PP.id = K.id
       AND C.empresaID = K.empresaID AND C.clave = PP.clave AND C.manejaInventarios = 1
     GROUP BY C.id;

    -- La existencia se mueve exactamente con lo anotado.
    UPDATE Productos SET existencia = ifnull(existencia, 0) +
           (SELECT total(M.cantidad) FROM cajaplex_movimientos M
             WHERE M.aplicado = 0 AND M.productoID = Productos.id)
     WHERE id IN (SELECT M.productoID FROM cajaplex_movimientos M WHERE M.aplicado = 0);
    UPDATE cajaplex_movimientos SET aplicado = 1 WHERE aplicado = 0;
END;

DROP TRIGGER tr_DevolucionOrdenCompra_cancelada;
CREATE TRIGGER tr_DevolucionOrdenCompra_cancelada AFTER UPDATE OF cancelada ON DevolucionOrdenCompra
WHEN ifnull(OLD.cancelada, 0) = 0 AND NEW.cancelada = 1
BEGIN
    UPDATE Productos SET existencia = ifnull(existencia, 0) -
           (SELECT total(M.cantidad) FROM cajaplex_movimientos M
             WHERE M.documento = 'DevolucionOrdenCompra' AND M.empresaID = NEW.empresaID
               AND M.encabezado = NEW.folio AND M.revertido = 0 AND M.productoID = Productos.id)
     WHERE id IN (SELECT M.productoID FROM cajaplex_movimientos M
                   WHERE M.documento = 'DevolucionOrdenCompra' AND M.empresaID = NEW.empresaID
                     AND M.encabezado = NEW.folio AND M.revertido = 0);
    UPDATE cajaplex_movimientos SET revertido = 1
     WHERE documento = 'DevolucionOrdenCompra' AND empresaID = NEW.empresaID AND encabezado = NEW.folio
       AND revertido = 0;
END;

-- ---------------------------------------------------------------------------------------------
-- AjusteProductos (ajuste: entra o sale según esAjusteEntrada del encabezado)
-- ---------------------------------------------------------------------------------------------

-- Lo que ya movieron los documentos vigentes, calculado como lo hacía la versión anterior.
INSERT INTO cajaplex_movimientos (documento, empresaID, encabezado, renglon, productoID, cantidad,
                                  aplicado)
SELECT 'AjusteProductos', D.empresaID, D.id, D.rowid, P.id, (SELECT CASE WHEN H.esAjusteEntrada = 1 THEN 1 ELSE -1 END FROM AjusteProductos H WHERE H.empresaID = D.empresaID AND H.ID = D.id) * ifnull(D.cantidad, 0), 1
  FROM AjusteProductosDetalle D, Productos P
 WHERE EXISTS (SELECT 1 FROM AjusteProductos H WHERE H.empresaID = D.empresaID AND H.ID = D.id
                  AND ifnull(H.cancelada, 0) = 0)
   AND P.empresaID = D.empresaID AND P.clave = D.clave
   AND P.manejaInventarios = 1 AND ifnull(P.esPaquete, 0) = 0;

INSERT INTO cajaplex_movimientos (documento, empresaID, encabezado, renglon, productoID, cantidad,
                                  aplicado)
SELECT 'AjusteProductos', D.empresaID, D.id, D.rowid, C.id,
       (SELECT CASE WHEN H.esAjusteEntrada = 1 THEN 1 ELSE -1 END FROM AjusteProductos H WHERE H.empresaID = D.empresaID AND H.ID = D.id) * ifnull(D.cantidad, 0) * total(PP.cantidad), 1
  FROM AjusteProductosDetalle D, Productos K, ProductosPaquetes PP, Productos C
 WHERE EXISTS (SELECT 1 FROM AjusteProductos H WHERE H.empresaID = D.empresaID AND H.ID = D.id
                  AND ifnull(H.cancelada, 0) = 0)
   AND K.empresaID = D.empresaID AND K.clave = D.clave AND K.esPaquete = 1
   AND PP.empresaID = K.empresaID AND PP.id = K.id
   AND C.empresaID = K.empresaID AND C.clave = PP.clave AND C.manejaInventarios = 1
 GROUP BY D.rowid, C.id;

DROP TRIGGER tr_AjusteProductosDetalle_existencias;
CREATE TRIGGER tr_AjusteProductosDetalle_existencias AFTER INSERT ON AjusteProductosDetalle
WHEN EXISTS (SELECT 1 FROM AjusteProductos H
              WHERE H.empresaID = NEW.empresaID AND H.ID = NEW.id
                AND ifnull(H.cancelada, 0) = 0)
BEGIN
    -- Producto simple que lleva existencias.
    INSERT INTO cajaplex_movimientos (documento, empresaID, encabezado, renglon, productoID,
                                      cantidad)
    SELECT 'AjusteProductos', NEW.empresaID, NEW.id, NEW.rowid, P.id,
           (SELECT CASE WHEN H.esAjusteEntrada = 1 THEN 1 ELSE -1 END FROM AjusteProductos H WHERE H.empresaID = NEW.empresaID AND H.ID = NEW.id) * ifnull(NEW.cantidad, 0)
      FROM Productos P
     WHERE P.empresaID = NEW.empresaID AND P.clave = NEW.clave
       AND P.manejaInventarios = 1 AND ifnull(P.esPaquete, 0) = 0;

    -- Kit: sus componentes que llevan existencias, cantidad del componente por la del renglón.
    INSERT INTO cajaplex_movimientos (documento, empresaID, encabezado, renglon, productoID,
                                      cantidad)
    SELECT 'AjusteProductos', NEW.empresaID, NEW.id, NEW.rowid, C.id,
           (SELECT CASE WHEN H.esAjusteEntrada = 1 THEN 1 ELSE -1 END FROM AjusteProductos H WHERE H.empresaID = NEW.empresaID AND H.ID = NEW.id) * ifnull(NEW.cantidad, 0) * total(PP.cantidad)
      FROM Productos K, ProductosPaquetes PP, Productos C
     WHERE K.empresaID = NEW.empresaID AND K.clave = NEW.clave AND K.esPaquete = 1
       AND PP.empresaID = K.empresaID AND PP.id = K.id
       AND C.empresaID = K.empresaID AND C.clave = PP.clave AND C.manejaInventarios = 1
     GROUP BY C.id;

    -- La existencia se mueve exactamente con lo anotado.
    UPDATE Productos SET existencia = ifnull(existencia, 0) +
           (SELECT total(M.cantidad) FROM cajaplex_movimientos M
             WHERE M.aplicado = 0 AND M.productoID = Productos.id)
     WHERE id IN (SELECT M.productoID FROM cajaplex_movimientos M WHERE M.aplicado = 0);
    UPDATE cajaplex_movimientos SET aplicado = 1 WHERE aplicado = 0;
END;

DROP TRIGGER tr_AjusteProductos_cancelada;
CREATE TRIGGER tr_AjusteProductos_cancelada AFTER UPDATE OF cancelada ON AjusteProductos
WHEN ifnull(OLD.cancelada, 0) = 0 AND NEW.cancelada = 1
BEGIN
    UPDATE Productos SET existencia = ifnull(existencia, 0) -
           (SELECT total(M.cantidad) FROM cajaplex_movimientos M
             WHERE M.documento = 'AjusteProductos' AND M.empresaID = NEW.empresaID
               AND M.encabezado = NEW.ID AND M.revertido = 0 AND M.productoID = Productos.id)
     WHERE id IN (SELECT M.productoID FROM cajaplex_movimientos M
                   WHERE M.documento = 'AjusteProductos' AND M.empresaID = NEW.empresaID
                     AND M.encabezado = NEW.ID AND M.revertido = 0);
    UPDATE cajaplex_movimientos SET revertido = 1
     WHERE documento = 'AjusteProductos' AND empresaID = NEW.empresaID AND encabezado = NEW.ID
       AND revertido = 0;
END;
