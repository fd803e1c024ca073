-- Credenciales propias de cada estación.
--
-- Cada estación instalada se presenta ante el servicio con un usuario y un secreto suyos, ligados
-- a su renglón de DispositivosRED: si se pierde un equipo (o se filtra su Cajaplex.ini) basta con
-- borrar ese renglón para que el servicio lo rechace, sin tocar a las demás. El servicio guarda
-- solo el SHA-256 del secreto (32 bytes aleatorios: no hace falta un hash lento). La tabla es
-- contabilidad del servicio: las estaciones no la ven.

CREATE TABLE cajaplex_estaciones (
    usuario       TEXT PRIMARY KEY,
    dispositivoID TEXT NOT NULL UNIQUE,
    secreto       TEXT NOT NULL,
    emitida       TEXT NOT NULL DEFAULT (datetime('now', 'localtime'))
);

-- Cuándo se emitieron las credenciales de la estación (la pantalla de dispositivos la muestra).
ALTER TABLE DispositivosRED ADD COLUMN fechaEmision DATETIME;

-- Borrar el dispositivo revoca sus credenciales para siempre: volver a darlo de alta con el mismo
-- identificador no revive un secreto viejo.
CREATE TRIGGER tr_DispositivosRED_revoca AFTER DELETE ON DispositivosRED
BEGIN
    DELETE FROM cajaplex_estaciones WHERE dispositivoID = old.ReferenciaID;
END;

CREATE TRIGGER tr_DispositivosRED_renombra AFTER UPDATE OF ReferenciaID ON DispositivosRED
WHEN old.ReferenciaID IS NOT new.ReferenciaID
BEGIN
    DELETE FROM cajaplex_estaciones WHERE dispositivoID = old.ReferenciaID;
END;
