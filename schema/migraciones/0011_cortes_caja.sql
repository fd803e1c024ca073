-- Cortes de caja: lo que el sistema esperaba en el cajón y lo que el cajero contó.
--
-- El periodo es [fechaInicio, fechaFin): el siguiente corte de la estación empieza donde terminó
-- este, así ninguna venta cuenta en dos cortes ni se queda fuera. cajero = 0 es el corte de todos
-- los cajeros. Los importes se guardan como se mostraron, para reimprimir el corte tal cual aunque
-- después se cancele una venta del periodo.

CREATE TABLE CortesCaja (
    ID               INTEGER PRIMARY KEY,
    empresaID        INTEGER NOT NULL,
    usuarioID        INTEGER,
    cajero           INTEGER DEFAULT 0,
    dispositivoID    TEXT,
    fecha            DATETIME DEFAULT (datetime('now', 'localtime')),
    fechaInicio      DATETIME NOT NULL,
    fechaFin         DATETIME NOT NULL,
    ventasContado    REAL DEFAULT 0,
    ventasCredito    REAL DEFAULT 0,
    anticipos        REAL DEFAULT 0,
    ventasCanceladas REAL DEFAULT 0,
    depositos        REAL DEFAULT 0,
    retiros          REAL DEFAULT 0,
    efectivoEsperado REAL DEFAULT 0,
    efectivoContado  REAL DEFAULT 0,
    diferencia       REAL DEFAULT 0,
    observaciones    TEXT
);
CREATE INDEX ix_CortesCaja_estacion ON CortesCaja (empresaID, dispositivoID, fechaFin);
CREATE INDEX ix_CortesCaja_fecha ON CortesCaja (empresaID, fecha);

-- El corte suma la caja chica por cajero y fecha.
CREATE INDEX ix_FlujoEfectivo_usuario ON FlujoEfectivo (empresaID, usuarioID, fecha);
