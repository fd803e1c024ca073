-- Disparadores: folios y existencias.
--
-- Las estaciones leen los folios de Configura pero nunca los avanzan, ni tocan existencias al
-- registrar documentos; lo hace la base en la misma transacción del alta.

-- ---------------------------------------------------------------------------------------------
-- Folios: al insertar un encabezado su contador queda en folio + 1, sin retroceder nunca
-- (un folio capturado a mano más bajo no regresa el contador).
-- ---------------------------------------------------------------------------------------------

CREATE TRIGGER tr_Remision_folio AFTER INSERT ON Remision
BEGIN
    UPDATE Configura SET folioRem = NEW.folio + 1
     WHERE empresaID = NEW.empresaID AND ifnull(folioRem, 0) < NEW.folio + 1;
END;

CREATE TRIGGER tr_PagosRemision_folio AFTER INSERT ON PagosRemision
BEGIN
    UPDATE Configura SET folioPagosRemision = NEW.folio + 1
     WHERE empresaID = NEW.empresaID AND ifnull(folioPagosRemision, 0) < NEW.folio + 1;
END;

CREATE TRIGGER tr_Cotizacion_folio AFTER INSERT ON Cotizacion
BEGIN
    UPDATE Configura SET folioCot = NEW.folio + 1
     WHERE empresaID = NEW.empresaID AND ifnull(folioCot, 0) < NEW.folio + 1;
END;

-- La orden de compra vive en Requisicion y usa folioOC.
CREATE TRIGGER tr_Requisicion_folio AFTER INSERT ON Requisicion
BEGIN
    UPDATE Configura SET folioOC = NEW.folio + 1
     WHERE empresaID = NEW.empresaID AND ifnull(folioOC, 0) < NEW.folio + 1;
END;

-- La recepción de mercancía vive en OrdenCompra y usa folioRM.
CREATE TRIGGER tr_OrdenCompra_folio AFTER INSERT ON OrdenCompra
BEGIN
    UPDATE Configura SET folioRM = NEW.folio + 1
     WHERE empresaID = NEW.empresaID AND ifnull(folioRM, 0) < NEW.folio + 1;
END;

CREATE TRIGGER tr_DevolucionOrdenCompra_folio AFTER INSERT ON DevolucionOrdenCompra
BEGIN
    UPDATE Configura SET folioDevolucionOC = NEW.folio + 1
     WHERE empresaID = NEW.empresaID AND ifnull(folioDevolucionOC, 0) < NEW.folio + 1;
END;

CREATE TRIGGER tr_AjusteProductos_folio AFTER INSERT ON AjusteProductos
BEGIN
    UPDATE Configura SET folioAjustes = NEW.folio + 1
     WHERE empresaID = NEW.empresaID AND ifnull(folioAjustes, 0) < NEW.folio + 1;
END;

CREATE TRIGGER tr_Gastos_folio AFTER INSERT ON Gastos
BEGIN
    UPDATE Configura SET folioGasto = NEW.folio + 1
     WHERE empresaID = NEW.empresaID AND ifnull(folioGasto, 0) < NEW.folio + 1;
END;

CREATE TRIGGER tr_PagosOrdenCompra_folio AFTER INSERT ON PagosOrdenCompra
BEGIN
    UPDATE Configura SET folioPagosOC = NEW.folio + 1
     WHERE empresaID = NEW.empresaID AND ifnull(folioPagosOC, 0) < NEW.folio + 1;
END;

-- La comanda nace con folio -1 y enseguida recibe su id como folio: el contador se mueve en
-- ese cambio (el alta con -1 no lo toca, porque nunca retrocede).
CREATE TRIGGER tr_Comanda_folio AFTER INSERT ON Comanda
BEGIN
    UPDATE Configura SET folioComanda = NEW.folio + 1
     WHERE empresaID = NEW.empresaID AND ifnull(folioComanda, 0) < NEW.folio + 1;
END;

CREATE TRIGGER tr_Comanda_folio_asignado AFTER UPDATE OF folio ON Comanda
BEGIN
    UPDATE Configura SET folioComanda = NEW.folio + 1
     WHERE empresaID = NEW.empresaID AND ifnull(folioComanda, 0) < NEW.folio + 1;
END;

-- ---------------------------------------------------------------------------------------------
-- Existencias
--
-- Solo se mueven productos con manejaInventarios = 1 de la misma empresa, localizados por la
-- clave del renglón. Un kit (esPaquete = 1) no se mueve él: mueve a cada componente de
-- ProductosPaquetes su cantidad por la cantidad del renglón (un solo nivel de kits).
-- Cada movimiento son dos UPDATE: el del producto simple y el de los componentes del kit.
-- Cancelar un documento (cancelada de 0 o nulo a 1) hace el movimiento contrario con la
-- composición de kits vigente en ese momento.
-- ---------------------------------------------------------------------------------------------

-- Venta: sale, solo si el encabezado descuenta existencias y no está cancelado.
CREATE TRIGGER tr_RemisionDetalle_existencias AFTER INSERT ON RemisionDetalle
WHEN EXISTS (SELECT 1 FROM Remision H
              WHERE H.empresaID = NEW.empresaID AND H.folio = NEW.remision
                AND H.descontoExistencias = 1 AND ifnull(H.cancelada, 0) = 0)
BEGIN
    UPDATE Productos SET existencia = ifnull(existencia, 0) - ifnull(NEW.cantidad, 0)
     WHERE empresaID = NEW.empresaID AND clave = NEW.clave
       AND manejaInventarios = 1 AND ifnull(esPaquete, 0) = 0;

    UPDATE Productos SET existencia = ifnull(existencia, 0) - ifnull(NEW.cantidad, 0) *
           (SELECT total(P.cantidad) FROM Productos K, ProductosPaquetes P
             WHERE K.empresaID = NEW.empresaID AND K.clave = NEW.clave AND K.esPaquete = 1
               AND P.empresaID = K.empresaID AND P.id = K.id AND P.clave = Productos.clave)
     WHERE empresaID = NEW.empresaID AND manejaInventarios = 1
       AND clave IN (SELECT P.clave FROM Productos K, ProductosPaquetes P
                      WHERE K.empresaID = NEW.empresaID AND K.clave = NEW.clave AND K.esPaquete = 1
                        AND P.empresaID = K.empresaID AND P.id = K.id);
END;

CREATE TRIGGER tr_Remision_cancelada AFTER UPDATE OF cancelada ON Remision
WHEN ifnull(OLD.cancelada, 0) = 0 AND NEW.cancelada = 1 AND NEW.descontoExistencias = 1
BEGIN
    UPDATE Productos SET existencia = ifnull(existencia, 0) +
           (SELECT total(D.cantidad) FROM RemisionDetalle D
             WHERE D.empresaID = NEW.empresaID AND D.remision = NEW.folio
               AND D.clave = Productos.clave)
     WHERE empresaID = NEW.empresaID AND manejaInventarios = 1 AND ifnull(esPaquete, 0) = 0
       AND clave IN (SELECT D.clave FROM RemisionDetalle D
                      WHERE D.empresaID = NEW.empresaID AND D.remision = NEW.folio);

    UPDATE Productos SET existencia = ifnull(existencia, 0) +
           (SELECT total(D.cantidad * P.cantidad)
              FROM RemisionDetalle D, Productos K, ProductosPaquetes P
             WHERE D.empresaID = NEW.empresaID AND D.remision = NEW.folio
               AND K.empresaID = D.empresaID AND K.clave = D.clave AND K.esPaquete = 1
               AND P.empresaID = K.empresaID AND P.id = K.id AND P.clave = Productos.clave)
     WHERE empresaID = NEW.empresaID AND manejaInventarios = 1
       AND clave IN (SELECT P.clave FROM RemisionDetalle D, Productos K, ProductosPaquetes P
                      WHERE D.empresaID = NEW.empresaID AND D.remision = NEW.folio
                        AND K.empresaID = D.empresaID AND K.clave = D.clave AND K.esPaquete = 1
                        AND P.empresaID = K.empresaID AND P.id = K.id);
END;

-- Recepción de mercancía: entra.
CREATE TRIGGER tr_OrdenCompraDetalle_existencias AFTER INSERT ON OrdenCompraDetalle
WHEN EXISTS (SELECT 1 FROM OrdenCompra H
              WHERE H.empresaID = NEW.empresaID AND H.folio = NEW.ordenCompra
                AND ifnull(H.cancelada, 0) = 0)
BEGIN
    UPDATE Productos SET existencia = ifnull(existencia, 0) + ifnull(NEW.cantidad, 0)
     WHERE empresaID = NEW.empresaID AND clave = NEW.clave
       AND manejaInventarios = 1 AND ifnull(esPaquete, 0) = 0;

    UPDATE Productos SET existencia = ifnull(existencia, 0) + ifnull(NEW.cantidad, 0) *
           (SELECT total(P.cantidad) FROM Productos K, ProductosPaquetes P
             WHERE K.empresaID = NEW.empresaID AND K.clave = NEW.clave AND K.esPaquete = 1
               AND P.empresaID = K.empresaID AND P.id = K.id AND P.clave = Productos.clave)
     WHERE empresaID = NEW.empresaID AND manejaInventarios = 1
       AND clave IN (SELECT P.clave FROM Productos K, ProductosPaquetes P
                      WHERE K.empresaID = NEW.empresaID AND K.clave = NEW.clave AND K.esPaquete = 1
                        AND P.empresaID = K.empresaID AND P.id = K.id);
END;

CREATE TRIGGER tr_OrdenCompra_cancelada AFTER UPDATE OF cancelada ON OrdenCompra
WHEN ifnull(OLD.cancelada, 0) = 0 AND NEW.cancelada = 1
BEGIN
    UPDATE Productos SET existencia = ifnull(existencia, 0) -
           (SELECT total(D.cantidad) FROM OrdenCompraDetalle D
             WHERE D.empresaID = NEW.empresaID AND D.ordenCompra = NEW.folio
               AND D.clave = Productos.clave)
     WHERE empresaID = NEW.empresaID AND manejaInventarios = 1 AND ifnull(esPaquete, 0) = 0
       AND clave IN (SELECT D.clave FROM OrdenCompraDetalle D
                      WHERE D.empresaID = NEW.empresaID AND D.ordenCompra = NEW.folio);

    UPDATE Productos SET existencia = ifnull(existencia, 0) -
           (SELECT total(D.cantidad * P.cantidad)
              FROM OrdenCompraDetalle D, Productos K, ProductosPaquetes P
             WHERE D.empresaID = NEW.empresaID AND D.ordenCompra = NEW.folio
               AND K.empresaID = D.empresaID AND K.clave = D.clave AND K.esPaquete = 1
               AND P.empresaID = K.empresaID AND P.id = K.id AND P.clave = Productos.clave)
     WHERE empresaID = NEW.empresaID AND manejaInventarios = 1
       AND clave IN (SELECT P.clave FROM OrdenCompraDetalle D, Productos K, ProductosPaquetes P
                      WHERE D.empresaID = NEW.empresaID AND D.ordenCompra = NEW.folio
                        AND K.empresaID = D.empresaID AND K.clave = D.clave AND K.esPaquete = 1
                        AND P.empresaID = K.empresaID AND P.id = K.id);
END;

-- Devolución al proveedor: sale. El renglón guarda el folio del encabezado.
CREATE TRIGGER tr_DevolucionOrdenCompraDetalle_existencias AFTER INSERT ON DevolucionOrdenCompraDetalle
WHEN EXISTS (SELECT 1 FROM DevolucionOrdenCompra H
              WHERE H.empresaID = NEW.empresaID AND H.folio = NEW.devolucionOrdenCompra
                AND ifnull(H.cancelada, 0) = 0)
BEGIN
    UPDATE Productos SET existencia = ifnull(existencia, 0) - ifnull(NEW.cantidad, 0)
     WHERE empresaID = NEW.empresaID AND clave = NEW.clave
       AND manejaInventarios = 1 AND ifnull(esPaquete, 0) = 0;

    UPDATE Productos SET existencia = ifnull(existencia, 0) - ifnull(NEW.cantidad, 0) *
           (SELECT total(P.cantidad) FROM Productos K, ProductosPaquetes P
             WHERE K.empresaID = NEW.empresaID AND K.clave = NEW.clave AND K.esPaquete = 1
               AND P.empresaID = K.empresaID AND P.id = K.id AND P.clave = Productos.clave)
     WHERE empresaID = NEW.empresaID AND manejaInventarios = 1
       AND clave IN (SELECT P.clave FROM Productos K, ProductosPaquetes P
                      WHERE K.empresaID = NEW.empresaID AND K.clave = NEW.clave AND K.esPaquete = 1
                        AND P.empresaID = K.empresaID AND P.id = K.id);
END;

CREATE TRIGGER tr_DevolucionOrdenCompra_cancelada AFTER UPDATE OF cancelada ON DevolucionOrdenCompra
WHEN ifnull(OLD.cancelada, 0) = 0 AND NEW.cancelada = 1
BEGIN
    UPDATE Productos SET existencia = ifnull(existencia, 0) +
           (SELECT total(D.cantidad) FROM DevolucionOrdenCompraDetalle D
             WHERE D.empresaID = NEW.empresaID AND D.devolucionOrdenCompra = NEW.folio
               AND D.clave = Productos.clave)
     WHERE empresaID = NEW.empresaID AND manejaInventarios = 1 AND ifnull(esPaquete, 0) = 0
       AND clave IN (SELECT D.clave FROM DevolucionOrdenCompraDetalle D
                      WHERE D.empresaID = NEW.empresaID AND D.devolucionOrdenCompra = NEW.folio);

    UPDATE Productos SET existencia = ifnull(existencia, 0) +
           (SELECT total(D.cantidad * P.cantidad)
              FROM DevolucionOrdenCompraDetalle D, Productos K, ProductosPaquetes P
             WHERE D.empresaID = NEW.empresaID AND D.devolucionOrdenCompra = NEW.folio
               AND K.empresaID = D.empresaID AND K.clave = D.clave AND K.esPaquete = 1
               AND P.empresaID = K.empresaID AND P.id = K.id AND P.clave = Productos.clave)
     WHERE empresaID = NEW.empresaID AND manejaInventarios = 1
       AND clave IN (SELECT P.clave FROM DevolucionOrdenCompraDetalle D, Productos K, ProductosPaquetes P
                      WHERE D.empresaID = NEW.empresaID AND D.devolucionOrdenCompra = NEW.folio
                        AND K.empresaID = D.empresaID AND K.clave = D.clave AND K.esPaquete = 1
                        AND P.empresaID = K.empresaID AND P.id = K.id);
END;

-- Ajuste: entra si el encabezado es de entrada, si no sale. El renglón guarda el ID del
-- encabezado.
CREATE TRIGGER tr_AjusteProductosDetalle_existencias AFTER INSERT ON AjusteProductosDetalle
WHEN EXISTS (SELECT 1 FROM AjusteProductos H
              WHERE H.empresaID = NEW.empresaID AND H.ID = NEW.id AND ifnull(H.cancelada, 0) = 0)
BEGIN
    UPDATE Productos SET existencia = ifnull(existencia, 0) + ifnull(NEW.cantidad, 0) *
           (SELECT CASE WHEN H.esAjusteEntrada = 1 THEN 1 ELSE -1 END FROM AjusteProductos H
             WHERE H.empresaID = NEW.empresaID AND H.ID = NEW.id)
     WHERE empresaID = NEW.empresaID AND clave = NEW.clave
       AND manejaInventarios = 1 AND ifnull(esPaquete, 0) = 0;

    UPDATE Productos SET existencia = ifnull(existencia, 0) + ifnull(NEW.cantidad, 0) *
           (SELECT CASE WHEN H.esAjusteEntrada = 1 THEN 1 ELSE -1 END FROM AjusteProductos H
             WHERE H.empresaID = NEW.empresaID AND H.ID = NEW.id) *
           (SELECT total(P.cantidad) FROM Productos K, ProductosPaquetes P
             WHERE K.empresaID = NEW.empresaID AND K.clave = NEW.clave AND K.esPaquete = 1
               AND P.empresaID = K.empresaID AND P.id = K.id AND P.clave = Productos.clave)
     WHERE empresaID = NEW.empresaID AND manejaInventarios = 1
       AND clave IN (SELECT P.clave FROM Productos K, ProductosPaquetes P
                      WHERE K.empresaID = NEW.empresaID AND K.clave = NEW.clave AND K.esPaquete = 1
                        AND P.empresaID = K.empresaID AND P.id = K.id);
END;

CREATE TRIGGER tr_AjusteProductos_cancelada AFTER UPDATE OF cancelada ON AjusteProductos
WHEN ifnull(OLD.cancelada, 0) = 0 AND NEW.cancelada = 1
BEGIN
    UPDATE Productos SET existencia = ifnull(existencia, 0) -
           (CASE WHEN NEW.esAjusteEntrada = 1 THEN 1 ELSE -1 END) *
           (SELECT total(D.cantidad) FROM AjusteProductosDetalle D
             WHERE D.empresaID = NEW.empresaID AND D.id = NEW.ID AND D.clave = Productos.clave)
     WHERE empresaID = NEW.empresaID AND manejaInventarios = 1 AND ifnull(esPaquete, 0) = 0
       AND clave IN (SELECT D.clave FROM AjusteProductosDetalle D
                      WHERE D.empresaID = NEW.empresaID AND D.id = NEW.ID);

    UPDATE Productos SET existencia = ifnull(existencia, 0) -
           (CASE WHEN NEW.esAjusteEntrada = 1 THEN 1 ELSE -1 END) *
           (SELECT total(D.cantidad * P.cantidad)
              FROM AjusteProductosDetalle D, Productos K, ProductosPaquetes P
             WHERE D.empresaID = NEW.empresaID AND D.id = NEW.ID
               AND K.empresaID = D.empresaID AND K.clave = D.clave AND K.esPaquete = 1
               AND P.empresaID = K.empresaID AND P.id = K.id AND P.clave = Productos.clave)
     WHERE empresaID = NEW.empresaID AND manejaInventarios = 1
       AND clave IN (SELECT P.clave FROM AjusteProductosDetalle D, Productos K, ProductosPaquetes P
                      WHERE D.empresaID = NEW.empresaID AND D.id = NEW.ID
                        AND K.empresaID = D.empresaID AND K.clave = D.clave AND K.esPaquete = 1
                        AND P.empresaID = K.empresaID AND P.id = K.id);
END;
