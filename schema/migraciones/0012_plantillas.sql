-- Plantillas de impresión: cuál es la predeterminada de cada carpeta y una versión que cambia con
-- cada modificación, para que cada estación sepa si su copia local ya no corresponde sin tener
-- que bajar el contenido de todas.

ALTER TABLE Reportes ADD COLUMN predeterminada BOOLEAN DEFAULT 0;
ALTER TABLE Reportes ADD COLUMN version INTEGER NOT NULL DEFAULT 1;
ALTER TABLE Reportes ADD COLUMN fechaModificacion DATETIME;

UPDATE Reportes SET fechaModificacion = datetime('now', 'localtime');

-- Cualquier escritor que cambie el contenido, el nombre o la carpeta sube la versión: la copia de
-- las estaciones no depende de que cada pantalla se acuerde de hacerlo.
CREATE TRIGGER tr_Reportes_version AFTER UPDATE OF plantilla, Nombre, carpetaID, predeterminada
ON Reportes
BEGIN
    UPDATE Reportes SET version = OLD.version + 1,
                        fechaModificacion = datetime('now', 'localtime')
    WHERE reporteID = NEW.reporteID;
END;

CREATE TRIGGER tr_Reportes_alta AFTER INSERT ON Reportes
WHEN NEW.fechaModificacion IS NULL
BEGIN
    UPDATE Reportes SET fechaModificacion = datetime('now', 'localtime')
    WHERE reporteID = NEW.reporteID;
END;
