-- Tablas e índices de Cajaplex.
--
-- Convenciones:
--   * Casi toda fila lleva empresaID: cada empresa solo ve y mueve lo suyo.
--   * Los encabezados y catálogos tienen llave entera (ID/id); los renglones de un documento
--     no: su columna id guarda el ID del encabezado y viven de la rowid implícita.
--   * Los renglones apuntan al folio de su encabezado (más empresaID), por eso cada encabezado
--     tiene folio único por empresa.
--   * El tipo declarado decide el tipo que viaja cuando la columna viene toda en nulo:
--     INTEGER, REAL, TEXT, BLOB, DATETIME ('AAAA-MM-DD HH:MM:SS', hora local) y BOOLEAN (0/1).
--   * Las banderas que se comparan sin ifnull llevan valor por omisión, para que un alta que
--     no las menciona siga apareciendo en las consultas.
--   * NOT NULL solo en llaves, ligas y nombres: hay pantallas que dejan parámetros sin asignar
--     (llegan como nulo) y eso no debe tumbar el alta de un documento.

-- ---------------------------------------------------------------------------------------------
-- Catálogos nacionales del SAT (sin empresa)
-- ---------------------------------------------------------------------------------------------

CREATE TABLE Estados (
    id       INTEGER PRIMARY KEY,
    estado   TEXT NOT NULL,
    claveSAT TEXT
);
CREATE INDEX ix_Estados_estado ON Estados (estado);

CREATE TABLE RegimenesFiscales (
    ID          INTEGER PRIMARY KEY,
    claveSAT    TEXT NOT NULL UNIQUE,
    descripcion TEXT
);

CREATE TABLE FEUsosComprobantes (
    ID            INTEGER PRIMARY KEY,
    claveSAT      TEXT NOT NULL UNIQUE,
    descripcion   TEXT,
    personaFisica BOOLEAN DEFAULT 0,
    personaMoral  BOOLEAN DEFAULT 0
);

-- ---------------------------------------------------------------------------------------------
-- Empresas y su configuración
-- ---------------------------------------------------------------------------------------------

CREATE TABLE Empresa (
    empresaID           INTEGER PRIMARY KEY,
    nombreEmpresaCorto  TEXT,
    nombreEmpresaLargo  TEXT,
    razonSocial         TEXT,
    rfc                 TEXT,
    FERegimenFiscal     TEXT,
    calleDomicilio      TEXT,
    numeroExterior      TEXT,
    numeroInterior      TEXT,
    colonia             TEXT,
    codigoPostal        TEXT,
    localidad           TEXT,
    municipio           TEXT,
    estado              TEXT,
    pais                TEXT,
    referenciaDomicilio TEXT,
    telefono            TEXT,
    email               TEXT,
    EsHombre            BOOLEAN DEFAULT 1,
    -- El inicio de sesión solo ofrece empresas activas.
    activo              BOOLEAN DEFAULT 1,
    Logotipo1           BLOB,
    Logotipo2           BLOB
);

-- Un renglón por empresa. Los folios guardan el siguiente número a usar; las pantallas solo los
-- leen y los avanzan los disparadores al insertar cada documento.
CREATE TABLE Configura (
    ID                            INTEGER PRIMARY KEY,
    empresaID                     INTEGER NOT NULL UNIQUE,

    folioRem                      INTEGER DEFAULT 1,
    folioPagosRemision            INTEGER DEFAULT 1,
    folioCot                      INTEGER DEFAULT 1,
    folioComanda                  INTEGER DEFAULT 1,
    folioOC                       INTEGER DEFAULT 1,
    folioRM                       INTEGER DEFAULT 1,
    folioDevolucionOC             INTEGER DEFAULT 1,
    folioAjustes                  INTEGER DEFAULT 1,
    folioGasto                    INTEGER DEFAULT 1,
    folioPagosOC                  INTEGER DEFAULT 1,
    folioFact                     INTEGER DEFAULT 1,
    folioNC                       INTEGER DEFAULT 1,
    folioPagosFactura             INTEGER DEFAULT 1,
    folioNomina                   INTEGER DEFAULT 1,
    folioTransferencia            INTEGER DEFAULT 1,
    folioEnvioGarantia            INTEGER DEFAULT 1,
    folioRecepcionGarantia        INTEGER DEFAULT 1,

    -- Modo de IVA en pantalla (1 a 4) por tipo de documento.
    desglosaRem                   INTEGER DEFAULT 1,
    desglosaCot                   INTEGER DEFAULT 1,
    desglosaFact                  INTEGER DEFAULT 1,
    desglosaRM                    INTEGER DEFAULT 1,
    ivaFact                       REAL,

    clienteDefaultRem             INTEGER,
    clienteDefaultCot             INTEGER,
    monedaIDRem                   INTEGER,
    monedaIDCot                   INTEGER,
    monedaIDFac                   INTEGER,
    monedaIDNom                   INTEGER,
    monedaIDProductos             INTEGER,
    monedaIDRM                    INTEGER,
    feMetodoIDRem                 INTEGER,
    feMetodoIDRM                  INTEGER,
    feMetodoIDCxCRem              INTEGER,
    FEmetodoIDFac                 INTEGER,
    FEmetodoIDNom                 INTEGER,
    FEformaIDFac                  INTEGER,
    FEformaIDNom                  INTEGER,
    tipoPagoRemision              INTEGER,
    unidadIDProductos             INTEGER,
    claveSATProductos             TEXT,
    estadoDefault                 INTEGER,
    municipioDefault              INTEGER,
    diasCreditoCliente            INTEGER DEFAULT 0,
    DecimalesCantKioskoPV         INTEGER DEFAULT 2,
    tipoConsolidacionRemisiones   INTEGER DEFAULT 0,
    modoGrupoAreasComida          INTEGER DEFAULT 0,
    modoGrupoLineasProductos      INTEGER DEFAULT 0,

    controlRestaurantes           BOOLEAN DEFAULT 0,
    imprimeComandaAlGrabar        BOOLEAN DEFAULT 0,
    imprimeCuentaAlPagar          BOOLEAN DEFAULT 0,
    imprimeOCGrabar               BOOLEAN DEFAULT 0,
    permiteCambiarVendedorRem     BOOLEAN DEFAULT 0,
    permiteCambiarVendedorCot     BOOLEAN DEFAULT 0,
    permiteCambiarVendedorComanda BOOLEAN DEFAULT 0,
    permiteCambiarVendedorCFDI    BOOLEAN DEFAULT 0,
    permiteCambiarVendedorRG      BOOLEAN DEFAULT 0,
    permiteNOPagarRemision        BOOLEAN DEFAULT 0,
    pideClaveAlBorrarEnPV         BOOLEAN DEFAULT 0,
    remSinExistencia              BOOLEAN DEFAULT 0,
    facSinExistencia              BOOLEAN DEFAULT 0,
    remBajoCosto                  BOOLEAN DEFAULT 0,
    descuentaExistencias          BOOLEAN DEFAULT 1,
    actPrecioCompraOC             BOOLEAN DEFAULT 0,
    actPrecioVentaOC              BOOLEAN DEFAULT 0,
    productosXproveedorOC         BOOLEAN DEFAULT 0,
    AutoNumeraCatalogosProductos  BOOLEAN DEFAULT 0,
    AutoNumeraNodosComida         BOOLEAN DEFAULT 0,
    autoGeneraCredencialesMov     BOOLEAN DEFAULT 0,
    CapInvInicial                 BOOLEAN DEFAULT 0,
    lotesYCaducidades             BOOLEAN DEFAULT 0,
    series                        BOOLEAN DEFAULT 0,
    DefiniblesCatalogosClientes   BOOLEAN DEFAULT 0,
    DesctoDirectoCFDI             BOOLEAN DEFAULT 0,
    desactivarTimbrado            BOOLEAN DEFAULT 0,
    desactivarTimbradoNC          BOOLEAN DEFAULT 0,
    desactivarTimbradoNom         BOOLEAN DEFAULT 0,
    generaXMLAjustes              BOOLEAN DEFAULT 0,
    habilitaKioskoPV              BOOLEAN DEFAULT 0,
    reiniciaKioskoPV              BOOLEAN DEFAULT 0,
    monitorearPedidosApp          BOOLEAN DEFAULT 0,
    muestraCtaPredial             BOOLEAN DEFAULT 0,
    seguridadTLS                  BOOLEAN DEFAULT 0,
    usarCCIDEmail                 BOOLEAN DEFAULT 0
);

-- Opciones de impresión por empresa y tipo de documento.
CREATE TABLE ConfiguraImpresiones (
    ID                        INTEGER PRIMARY KEY,
    empresaID                 INTEGER NOT NULL UNIQUE,
    imprimeLogotipoRemision   BOOLEAN DEFAULT 1,
    imprimeEmailRemision      BOOLEAN DEFAULT 0,
    imprimeQRRemision         BOOLEAN DEFAULT 0,
    adicionalRemision         TEXT,
    pieRemision               TEXT,
    imprimeLogotipoCotizacion BOOLEAN DEFAULT 1,
    imprimeEmailCotizacion    BOOLEAN DEFAULT 0,
    imprimeQRCotizacion       BOOLEAN DEFAULT 0,
    adicionalCotizacion       TEXT,
    pieCotizacion             TEXT,
    imprimeLogotipoCFDI       BOOLEAN DEFAULT 1,
    imprimeEmailCFDI          BOOLEAN DEFAULT 0,
    adicionalCFDI             TEXT,
    pieCFDI                   TEXT,
    imprimeLogotipoCC         BOOLEAN DEFAULT 1,
    imprimeEmailCC            BOOLEAN DEFAULT 0,
    adicionalCC               TEXT,
    pieCC                     TEXT,
    imprimeLogotipoCP         BOOLEAN DEFAULT 1,
    imprimeEmailCP            BOOLEAN DEFAULT 0,
    adicionalCP               TEXT,
    pieCP                     TEXT,
    imprimeLogotipoOC         BOOLEAN DEFAULT 1,
    imprimeEmailOC            BOOLEAN DEFAULT 0,
    adicionalOC               TEXT,
    pieOC                     TEXT,
    imprimeLogotipoRM         BOOLEAN DEFAULT 1,
    imprimeEmailRM            BOOLEAN DEFAULT 0,
    adicionalRM               TEXT,
    pieRM                     TEXT,
    imprimeLogotipoDM         BOOLEAN DEFAULT 1,
    imprimeEmailDM            BOOLEAN DEFAULT 0,
    adicionalDM               TEXT,
    pieDM                     TEXT
);

-- Equipos autorizados (revisión de dispositivo).
CREATE TABLE DispositivosRED (
    ID           INTEGER PRIMARY KEY,
    ReferenciaID TEXT NOT NULL UNIQUE,
    descripcion  TEXT
);

-- ---------------------------------------------------------------------------------------------
-- Usuarios y perfiles (globales; UsuariosEmpresa dice a qué empresas entra cada uno)
-- ---------------------------------------------------------------------------------------------

CREATE TABLE PerfilesUsuarios (
    perfilID INTEGER PRIMARY KEY,
    Nombre   TEXT NOT NULL
);

CREATE TABLE Usuarios (
    usuarioID   INTEGER PRIMARY KEY,
    nUsuario    TEXT NOT NULL UNIQUE,
    contrasena  TEXT,
    nombre      TEXT,
    perfilID    INTEGER,
    esAdmin     INTEGER DEFAULT 0,
    activo      INTEGER DEFAULT 1,
    accesaMovil INTEGER DEFAULT 0
);

CREATE TABLE UsuariosEmpresa (
    usuarioID INTEGER NOT NULL,
    empresaID INTEGER NOT NULL,
    acceso    BOOLEAN DEFAULT 1,
    UNIQUE (usuarioID, empresaID)
);
CREATE INDEX ix_UsuariosEmpresa_empresa ON UsuariosEmpresa (empresaID, usuarioID);

-- Un renglón por perfil y por tipo de derecho.
CREATE TABLE PerfilesUsuariosVentas (
    perfilID            INTEGER PRIMARY KEY,
    precio1             BOOLEAN DEFAULT 1,
    precio2             BOOLEAN DEFAULT 0,
    precio3             BOOLEAN DEFAULT 0,
    precio4             BOOLEAN DEFAULT 0,
    precio5             BOOLEAN DEFAULT 0,
    clienteNuevo        BOOLEAN DEFAULT 0,
    descuento           BOOLEAN DEFAULT 0,
    modificarCotizacion BOOLEAN DEFAULT 0,
    corteCaja           BOOLEAN DEFAULT 0,
    cancelarRemision    BOOLEAN DEFAULT 0,
    cancelarComanda     BOOLEAN DEFAULT 0,
    cancelarCFDI        BOOLEAN DEFAULT 0,
    cancelarNC          BOOLEAN DEFAULT 0
);

CREATE TABLE PerfilesUsuariosCompras (
    perfilID              INTEGER PRIMARY KEY,
    ProveedorNuevo        BOOLEAN DEFAULT 0,
    descuento             BOOLEAN DEFAULT 0,
    cancelarRM            BOOLEAN DEFAULT 0,
    cancelarDM            BOOLEAN DEFAULT 0,
    cancelarAjuste        BOOLEAN DEFAULT 0,
    cancelarGasto         BOOLEAN DEFAULT 0,
    cancelarTransferencia BOOLEAN DEFAULT 0
);

CREATE TABLE PerfilesUsuariosCxC (
    perfilID             INTEGER PRIMARY KEY,
    bloquearCredito      BOOLEAN DEFAULT 0,
    desbloquearCredito   BOOLEAN DEFAULT 0,
    cancelarPagoRemision BOOLEAN DEFAULT 0,
    cancelarPagoCFDI     BOOLEAN DEFAULT 0
);

-- Qué plantillas de reporte puede usar cada perfil.
CREATE TABLE PerfilesUsuariosReportes (
    perfilID  INTEGER NOT NULL,
    reporteID INTEGER NOT NULL,
    acceso    BOOLEAN DEFAULT 1,
    UNIQUE (perfilID, reporteID)
);

-- Un renglón por entrada del menú; la columna lleva acento y así se lee ("B.menú as Menu").
CREATE TABLE PermisosSistema (
    perfilID INTEGER NOT NULL,
    menú     TEXT NOT NULL,
    acceso   BOOLEAN DEFAULT 0,
    UNIQUE (perfilID, menú)
);

-- ---------------------------------------------------------------------------------------------
-- Catálogos de la empresa
-- ---------------------------------------------------------------------------------------------

-- Árbol de líneas de producto; la raíz lleva padre 0.
CREATE TABLE Lineas (
    id        INTEGER PRIMARY KEY,
    empresaID INTEGER NOT NULL,
    linea     TEXT NOT NULL,
    padre     INTEGER DEFAULT 0,
    miniatura BLOB,
    foto      BLOB,
    usuarioID INTEGER
);
CREATE INDEX ix_Lineas_padre ON Lineas (empresaID, padre, linea);
CREATE INDEX ix_Lineas_linea ON Lineas (empresaID, linea);

CREATE TABLE Unidades (
    id        INTEGER PRIMARY KEY,
    empresaID INTEGER NOT NULL,
    unidad    TEXT NOT NULL,
    claveSAT  TEXT,
    usuarioID INTEGER
);
CREATE INDEX ix_Unidades_unidad ON Unidades (empresaID, unidad);

CREATE TABLE Monedas (
    id               INTEGER PRIMARY KEY,
    empresaID        INTEGER NOT NULL,
    descripcion      TEXT NOT NULL,
    abreviacionPAC   TEXT,
    decimales        INTEGER DEFAULT 2,
    -- 1: un importe en esta moneda se multiplica por el tipo de cambio para llevarlo a pesos.
    multiplica       BOOLEAN DEFAULT 1,
    tipoCambioCompra REAL DEFAULT 1,
    tipoCambioVenta  REAL DEFAULT 1,
    usuarioID        INTEGER
);
CREATE INDEX ix_Monedas_empresa ON Monedas (empresaID);

-- Formas de pago (efectivo, tarjeta, monedero...).
CREATE TABLE FEMetodosPago (
    id          INTEGER PRIMARY KEY,
    empresaID   INTEGER NOT NULL,
    descripcion TEXT NOT NULL,
    claveSAT    TEXT,
    usaCuenta   INTEGER DEFAULT 0,
    usuarioID   INTEGER
);
CREATE INDEX ix_FEMetodosPago_empresa ON FEMetodosPago (empresaID, claveSAT);

-- Métodos de pago del SAT (PUE, PPD).
CREATE TABLE FEFormasPago (
    ID          INTEGER PRIMARY KEY,
    empresaID   INTEGER NOT NULL,
    claveSAT    TEXT,
    descripcion TEXT
);
CREATE INDEX ix_FEFormasPago_empresa ON FEFormasPago (empresaID);

CREATE TABLE Clientes (
    id              INTEGER PRIMARY KEY,
    empresaID       INTEGER NOT NULL,
    codigoAlterno   TEXT,
    nombre          TEXT NOT NULL,
    razonSocial     TEXT,
    rfc             TEXT,
    FERegimenFiscal TEXT,
    feUsoCFDI       TEXT,
    feFormaID       INTEGER,
    feMetodoID      INTEGER,
    calle           TEXT,
    numeroExterior  TEXT,
    numeroInterior  TEXT,
    colonia         TEXT,
    refDomicilio    TEXT,
    cp              TEXT,
    localidad       TEXT,
    municipio       TEXT,
    estado          INTEGER,
    pais            TEXT,
    telefono        TEXT,
    telefonoCelular TEXT,
    email           TEXT,
    contacto        TEXT,
    atencionVentas  TEXT,
    esHombre        BOOLEAN DEFAULT 1,
    precioVenta     INTEGER DEFAULT 1,
    limiteCredito   REAL DEFAULT 0,
    diasCredito     INTEGER DEFAULT 0,
    bloquearCredito INTEGER DEFAULT 0,
    retencionIVA    REAL DEFAULT 0,
    retencionISR    REAL DEFAULT 0,
    -- Saldo del monedero electrónico; se mueve con "Puntos = Puntos + ...", nunca debe ser nulo.
    puntos          REAL NOT NULL DEFAULT 0,
    definible1      TEXT,
    definible2      TEXT,
    definible3      TEXT,
    definible4      TEXT,
    definible5      TEXT,
    usuarioID       INTEGER
);
CREATE INDEX ix_Clientes_nombre ON Clientes (empresaID, nombre, rfc);

CREATE TABLE Proveedores (
    id              INTEGER PRIMARY KEY,
    empresaID       INTEGER NOT NULL,
    codigoAlterno   TEXT,
    nombre          TEXT NOT NULL,
    razonSocial     TEXT,
    rfc             TEXT,
    calle           TEXT,
    numeroExterior  TEXT,
    numeroInterior  TEXT,
    colonia         TEXT,
    refDomicilio    TEXT,
    cp              TEXT,
    localidad       TEXT,
    municipio       TEXT,
    estado          INTEGER,
    pais            TEXT,
    telefono        TEXT,
    email           TEXT,
    contacto        TEXT,
    atencionCompras TEXT,
    esHombre        BOOLEAN DEFAULT 1,
    limiteCredito   REAL DEFAULT 0,
    usuarioID       INTEGER
);
CREATE INDEX ix_Proveedores_nombre ON Proveedores (empresaID, nombre, rfc);

-- ---------------------------------------------------------------------------------------------
-- Productos
-- ---------------------------------------------------------------------------------------------

CREATE TABLE Productos (
    id                        INTEGER PRIMARY KEY,
    empresaID                 INTEGER NOT NULL,
    linea                     INTEGER,
    clave                     TEXT NOT NULL,
    producto                  TEXT,
    unidad                    INTEGER,
    moneda                    INTEGER,
    claveSAT                  TEXT,
    codigoBarra               TEXT,
    existencia                REAL DEFAULT 0,
    pCompra                   REAL DEFAULT 0,
    precio                    REAL DEFAULT 0,
    precio2                   REAL DEFAULT 0,
    precio3                   REAL DEFAULT 0,
    precio4                   REAL DEFAULT 0,
    precio5                   REAL DEFAULT 0,
    precioAbierto             INTEGER DEFAULT 0,
    -- Tasas en por ciento (16 = 16 %).
    porcentajeImpuesto        REAL DEFAULT 0,
    ieps                      REAL DEFAULT 0,
    descuento                 REAL DEFAULT 0,
    manejaInventarios         BOOLEAN DEFAULT 0,
    requiereAutorizacionVenta BOOLEAN DEFAULT 0,
    manejaSeries              BOOLEAN DEFAULT 0,
    -- Un kit mueve las existencias de sus componentes (ProductosPaquetes), no las suyas.
    esPaquete                 BOOLEAN DEFAULT 0,
    Recurrente                BOOLEAN DEFAULT 0,
    caduca                    BOOLEAN DEFAULT 0,
    MostrarKioskoPV           BOOLEAN DEFAULT 0,
    OrdenKiosko               INTEGER DEFAULT 0,
    utilizaBascula            BOOLEAN DEFAULT 0,
    bonificaPuntos            BOOLEAN DEFAULT 0,
    porcentajeBonificacion    REAL DEFAULT 0,
    extra                     BOOLEAN DEFAULT 0,
    activo                    BOOLEAN DEFAULT 1,
    maximo                    REAL DEFAULT 0,
    minimo                    REAL DEFAULT 0,
    puntoReorden              REAL DEFAULT 0,
    Peso                      REAL DEFAULT 0,
    -- Área de preparación (AreasComida) en restaurante; nulo: no pasa por el monitor.
    areaComida                INTEGER,
    DatoAdicional1            TEXT,
    Productos1                TEXT,
    Productos2                TEXT,
    Productos3                TEXT,
    Productos4                REAL,
    Productos5                REAL,
    usuarioID                 INTEGER
);
CREATE UNIQUE INDEX ux_Productos_clave ON Productos (empresaID, clave);
CREATE INDEX ix_Productos_codigoBarra ON Productos (empresaID, codigoBarra);
CREATE INDEX ix_Productos_linea ON Productos (empresaID, linea, producto);
CREATE INDEX ix_Productos_areaComida ON Productos (empresaID, areaComida);
CREATE INDEX ix_Productos_producto ON Productos (empresaID, producto);

-- Fotos por posición; la 1 es la de las listas. Se ligan por el ID del producto.
CREATE TABLE ProductosFotos (
    id        INTEGER NOT NULL,
    Posicion  INTEGER DEFAULT 1,
    empresaID INTEGER,
    Foto      BLOB,
    Miniatura BLOB,
    UNIQUE (id, Posicion)
);

-- Componentes de un kit: id es el ID del kit; el componente se liga por clave.
CREATE TABLE ProductosPaquetes (
    id             INTEGER NOT NULL,
    empresaID      INTEGER NOT NULL,
    posicion       INTEGER,
    clave          TEXT NOT NULL,
    cantidad       REAL DEFAULT 1,
    compuestoBase  BOOLEAN DEFAULT 0,
    seleccionado   BOOLEAN DEFAULT 0
);
CREATE INDEX ix_ProductosPaquetes_kit ON ProductosPaquetes (empresaID, id, posicion);
CREATE INDEX ix_ProductosPaquetes_clave ON ProductosPaquetes (empresaID, clave);

-- Precio por volumen: desde "rango" piezas el precio es "precioVenta".
CREATE TABLE ProductosRangosPrecios (
    empresaID   INTEGER NOT NULL,
    productoID  INTEGER NOT NULL,
    rango       REAL NOT NULL,
    precioVenta REAL DEFAULT 0,
    UNIQUE (empresaID, productoID, rango)
);

-- ---------------------------------------------------------------------------------------------
-- Restaurante
-- ---------------------------------------------------------------------------------------------

-- Árbol de áreas (comedor y preparación); la raíz lleva padre 0.
CREATE TABLE AreasComida (
    id        INTEGER PRIMARY KEY,
    empresaID INTEGER NOT NULL,
    area      TEXT NOT NULL,
    padre     INTEGER DEFAULT 0,
    usuarioID INTEGER
);
CREATE INDEX ix_AreasComida_padre ON AreasComida (empresaID, padre, area);

-- Mesas y demás puntos de servicio. status: 0 libre, 1 con comanda abierta, 2 cuenta cerrada.
-- tipo: forma (0 redonda ... 6 discapacitados).
CREATE TABLE NodosComida (
    id             INTEGER PRIMARY KEY,
    empresaID      INTEGER NOT NULL,
    area           INTEGER,
    clave          TEXT NOT NULL,
    descripcion    TEXT,
    numeroPersonas INTEGER DEFAULT 1,
    tipo           INTEGER DEFAULT 0,
    activo         BOOLEAN DEFAULT 1,
    status         INTEGER DEFAULT 0
);
CREATE INDEX ix_NodosComida_area ON NodosComida (empresaID, area);
CREATE INDEX ix_NodosComida_clave ON NodosComida (empresaID, clave);

-- folio es -1 mientras se crea y luego igual a id.
CREATE TABLE Comanda (
    id                   INTEGER PRIMARY KEY,
    empresaID            INTEGER NOT NULL,
    folio                INTEGER NOT NULL,
    nodoComida           INTEGER,
    vendedor             INTEGER,
    usuarioID            INTEGER,
    observaciones        TEXT,
    numeroPersonas       INTEGER,
    cancelada            BOOLEAN DEFAULT 0,
    fechaApertura        DATETIME DEFAULT (datetime('now', 'localtime')),
    fechaCierre          DATETIME,
    fechaPago            DATETIME,
    -- Folio de la remisión que la cobró; nulo mientras no se paga.
    remision             INTEGER,
    fechaCancelacion     DATETIME,
    motivoCancelacion    TEXT,
    usuarioIDCancelacion INTEGER
);
-- Solo los folios definitivos son únicos: varias altas a medias pueden convivir con -1.
CREATE UNIQUE INDEX ux_Comanda_folio ON Comanda (empresaID, folio) WHERE folio > 0;
CREATE INDEX ix_Comanda_folio ON Comanda (empresaID, folio, usuarioID);
CREATE INDEX ix_Comanda_abiertas ON Comanda (empresaID, fechaPago, fechaCierre, nodoComida);
CREATE INDEX ix_Comanda_nodo ON Comanda (empresaID, nodoComida);

-- Un renglón se identifica por comanda, seccion y posicion.
-- servida: 0 pendiente, 1 en preparación, 2 servida.
CREATE TABLE ComandaDetalle (
    id             INTEGER NOT NULL,
    empresaID      INTEGER NOT NULL,
    comanda        INTEGER NOT NULL,
    seccion        INTEGER DEFAULT 1,
    posicion       INTEGER,
    producto       INTEGER,
    cantidad       REAL DEFAULT 1,
    descuento      REAL DEFAULT 0,
    numeroComensal INTEGER DEFAULT 1,
    nota           TEXT,
    extra          BOOLEAN DEFAULT 0,
    servida        INTEGER DEFAULT 0,
    cancelada      BOOLEAN DEFAULT 0,
    fechaCaptura   DATETIME DEFAULT (datetime('now', 'localtime')),
    fechaPreparada DATETIME,
    fechaServida   DATETIME
);
CREATE INDEX ix_ComandaDetalle_comanda ON ComandaDetalle (empresaID, comanda, seccion, posicion);
CREATE INDEX ix_ComandaDetalle_pendientes ON ComandaDetalle (empresaID, servida, cancelada);

-- Componentes de los kits pedidos en una comanda.
CREATE TABLE ComandaDetallePaquetes (
    empresaID INTEGER NOT NULL,
    comanda   INTEGER NOT NULL,
    posicion  INTEGER,
    producto  INTEGER,
    clave     TEXT,
    cantidad  REAL DEFAULT 1
);
CREATE INDEX ix_ComandaDetallePaquetes_comanda ON ComandaDetallePaquetes (empresaID, comanda, posicion);

-- ---------------------------------------------------------------------------------------------
-- Ventas
-- ---------------------------------------------------------------------------------------------

CREATE TABLE Remision (
    ID                   INTEGER PRIMARY KEY,
    empresaID            INTEGER NOT NULL,
    folio                INTEGER NOT NULL,
    fecha                DATETIME DEFAULT (datetime('now', 'localtime')),
    fechaCaptura         DATETIME DEFAULT (datetime('now', 'localtime')),
    fechaPago            DATETIME,
    usuarioID            INTEGER,
    vendedor             INTEGER,
    cliente              INTEGER,
    moneda               INTEGER,
    tipoCambio           REAL DEFAULT 1,
    feMetodoID           INTEGER,
    subtotalRemision     REAL DEFAULT 0,
    descuento            REAL DEFAULT 0,
    iepsRemision         REAL DEFAULT 0,
    ivaRemision          REAL DEFAULT 0,
    totalRemision        REAL DEFAULT 0,
    totalEnvio           REAL DEFAULT 0,
    totalPropina         REAL DEFAULT 0,
    costoRemision        REAL DEFAULT 0,
    puntosRemision       REAL DEFAULT 0,
    montoPagado          REAL DEFAULT 0,
    saldoPendiente       REAL DEFAULT 0,
    plazoPago            INTEGER DEFAULT 0,
    pagada               INTEGER DEFAULT 0,
    pagoMixto            BOOLEAN DEFAULT 0,
    -- Toda venta descuenta existencias (lo hacen los disparadores).
    descontoExistencias  BOOLEAN DEFAULT 1,
    cancelada            BOOLEAN DEFAULT 0,
    enviada              BOOLEAN DEFAULT 0,
    entregada            BOOLEAN DEFAULT 0,
    entregaDomicilio     BOOLEAN DEFAULT 0,
    calificacion         INTEGER DEFAULT 0,
    observaciones        TEXT,
    fechaCancelacion     DATETIME,
    motivoCancelacion    TEXT,
    usuarioIDCancelacion INTEGER
);
CREATE UNIQUE INDEX ux_Remision_folio ON Remision (empresaID, folio);
CREATE INDEX ix_Remision_fecha ON Remision (empresaID, fecha);
CREATE INDEX ix_Remision_cliente ON Remision (empresaID, cliente, pagada);

-- id es el ID del encabezado; remision, su folio.
CREATE TABLE RemisionDetalle (
    id                 INTEGER NOT NULL,
    empresaID          INTEGER NOT NULL,
    remision           INTEGER NOT NULL,
    posicion           INTEGER,
    producto           INTEGER,
    clave              TEXT,
    cantidad           REAL DEFAULT 0,
    precio             REAL DEFAULT 0,
    pLista             INTEGER,
    descuento          REAL DEFAULT 0,
    importe            REAL DEFAULT 0,
    pCompra            REAL DEFAULT 0,
    porcentajeImpuesto REAL DEFAULT 0,
    ieps               REAL DEFAULT 0,
    moneda             INTEGER,
    mesPagado          INTEGER,
    nota               BLOB
);
CREATE INDEX ix_RemisionDetalle_remision ON RemisionDetalle (empresaID, remision, posicion);
CREATE INDEX ix_RemisionDetalle_clave ON RemisionDetalle (empresaID, clave);
CREATE INDEX ix_RemisionDetalle_producto ON RemisionDetalle (empresaID, producto);

-- Reparto del pago de una remisión de contado por forma de pago.
CREATE TABLE RemisionPagos (
    empresaID  INTEGER NOT NULL,
    remision   INTEGER NOT NULL,
    feMetodoID INTEGER,
    importe    REAL DEFAULT 0,
    moneda     INTEGER,
    utilizados REAL DEFAULT 0
);
CREATE INDEX ix_RemisionPagos_remision ON RemisionPagos (empresaID, remision);

-- Abonos a remisiones a crédito. Varios renglones de un mismo cobro comparten folio.
CREATE TABLE PagosRemision (
    ID                   INTEGER PRIMARY KEY,
    empresaID            INTEGER NOT NULL,
    folio                INTEGER NOT NULL,
    Fecha                DATETIME DEFAULT (datetime('now', 'localtime')),
    cliente              INTEGER,
    idRemision           INTEGER,
    folioRemision        INTEGER,
    feMetodoID           INTEGER,
    moneda               INTEGER,
    tipoCambio           REAL DEFAULT 1,
    importe              REAL DEFAULT 0,
    importeAplicado      REAL DEFAULT 0,
    factorAplicado       REAL DEFAULT 1,
    descripcion          TEXT,
    observaciones        TEXT,
    cancelada            BOOLEAN DEFAULT 0,
    usuarioID            INTEGER,
    fechaCancelacion     DATETIME,
    motivoCancelacion    TEXT,
    usuarioIDCancelacion INTEGER
);
CREATE INDEX ix_PagosRemision_folio ON PagosRemision (empresaID, folio);
CREATE INDEX ix_PagosRemision_remision ON PagosRemision (empresaID, folioRemision);
CREATE INDEX ix_PagosRemision_fecha ON PagosRemision (empresaID, Fecha);

CREATE TABLE Cotizacion (
    ID                   INTEGER PRIMARY KEY,
    empresaID            INTEGER NOT NULL,
    folio                INTEGER NOT NULL,
    fecha                DATETIME DEFAULT (datetime('now', 'localtime')),
    fechaCaptura         DATETIME DEFAULT (datetime('now', 'localtime')),
    usuarioID            INTEGER,
    vendedor             INTEGER,
    cliente              INTEGER,
    moneda               INTEGER,
    tipoCambio           REAL DEFAULT 1,
    -- Días de vigencia.
    vigencia             INTEGER DEFAULT 0,
    subtotalCotizacion   REAL DEFAULT 0,
    descuento            REAL DEFAULT 0,
    iepsCotizacion       REAL DEFAULT 0,
    ivaCotizacion        REAL DEFAULT 0,
    totalCotizacion      REAL DEFAULT 0,
    observaciones        TEXT,
    cancelada            BOOLEAN DEFAULT 0,
    -- Folio de la remisión hecha con ella; nulo mientras no se vende.
    remision             INTEGER,
    fechaCancelacion     DATETIME,
    motivoCancelacion    TEXT,
    usuarioIDCancelacion INTEGER
);
CREATE UNIQUE INDEX ux_Cotizacion_folio ON Cotizacion (empresaID, folio);
CREATE INDEX ix_Cotizacion_fecha ON Cotizacion (empresaID, fecha);

CREATE TABLE CotizacionDetalle (
    id                 INTEGER NOT NULL,
    empresaID          INTEGER NOT NULL,
    cotizacion         INTEGER NOT NULL,
    posicion           INTEGER,
    producto           INTEGER,
    clave              TEXT,
    cantidad           REAL DEFAULT 0,
    precio             REAL DEFAULT 0,
    pLista             INTEGER,
    descuento          REAL DEFAULT 0,
    importe            REAL DEFAULT 0,
    pCompra            REAL DEFAULT 0,
    porcentajeImpuesto REAL DEFAULT 0,
    ieps               REAL DEFAULT 0,
    moneda             INTEGER,
    nota               BLOB
);
CREATE INDEX ix_CotizacionDetalle_cotizacion ON CotizacionDetalle (empresaID, cotizacion, posicion);
CREATE INDEX ix_CotizacionDetalle_clave ON CotizacionDetalle (empresaID, clave);

-- Movimientos de caja chica: tipoFlujo 1 retiro, 0 ingreso; importe siempre positivo.
CREATE TABLE FlujoEfectivo (
    ID          INTEGER PRIMARY KEY,
    empresaID   INTEGER NOT NULL,
    tipoFlujo   INTEGER DEFAULT 0,
    importe     REAL DEFAULT 0,
    comentarios TEXT,
    usuarioID   INTEGER,
    -- El alta no la manda; hace falta para cortes de caja.
    fecha       DATETIME DEFAULT (datetime('now', 'localtime'))
);
CREATE INDEX ix_FlujoEfectivo_fecha ON FlujoEfectivo (empresaID, fecha);

-- ---------------------------------------------------------------------------------------------
-- Compras e inventario
-- ---------------------------------------------------------------------------------------------

-- Orden de compra (pantalla "Órden de Compra"). consolidada = 1 cuando ya se recibió.
CREATE TABLE Requisicion (
    id                   INTEGER PRIMARY KEY,
    empresaID            INTEGER NOT NULL,
    folio                INTEGER NOT NULL,
    fecha                DATETIME DEFAULT (datetime('now', 'localtime')),
    proveedor            INTEGER,
    moneda               INTEGER,
    tipoCambio           REAL DEFAULT 1,
    subtotalRequisicion  REAL DEFAULT 0,
    ivaRequisicion       REAL DEFAULT 0,
    totalRequisicion     REAL DEFAULT 0,
    observaciones        TEXT,
    consolidada          INTEGER DEFAULT 0,
    cancelada            BOOLEAN DEFAULT 0,
    usuarioID            INTEGER,
    fechaCancelacion     DATETIME,
    motivoCancelacion    TEXT,
    usuarioIDCancelacion INTEGER
);
CREATE UNIQUE INDEX ux_Requisicion_folio ON Requisicion (empresaID, folio);
CREATE INDEX ix_Requisicion_fecha ON Requisicion (empresaID, fecha);
CREATE INDEX ix_Requisicion_proveedor ON Requisicion (empresaID, proveedor);

CREATE TABLE RequisicionDetalle (
    id                 INTEGER NOT NULL,
    empresaID          INTEGER NOT NULL,
    requisicion        INTEGER NOT NULL,
    posicion           INTEGER,
    clave              TEXT,
    cantidad           REAL DEFAULT 0,
    costo              REAL DEFAULT 0,
    descuento          REAL DEFAULT 0,
    importe            REAL DEFAULT 0,
    porcentajeImpuesto REAL DEFAULT 0
);
CREATE INDEX ix_RequisicionDetalle_requisicion ON RequisicionDetalle (empresaID, requisicion, posicion);

-- Recepción de mercancía (entra al inventario).
CREATE TABLE OrdenCompra (
    ID                   INTEGER PRIMARY KEY,
    empresaID            INTEGER NOT NULL,
    folio                INTEGER NOT NULL,
    fecha                DATETIME DEFAULT (datetime('now', 'localtime')),
    proveedor            INTEGER,
    moneda               INTEGER,
    tipoCambio           REAL DEFAULT 1,
    feMetodoID           INTEGER,
    subtotalOrdenCompra  REAL DEFAULT 0,
    ivaOrdenCompra       REAL DEFAULT 0,
    totalOrdenCompra     REAL DEFAULT 0,
    saldoPendiente       REAL DEFAULT 0,
    plazoPago            INTEGER DEFAULT 0,
    pagada               INTEGER DEFAULT 0,
    fechaPago            DATETIME,
    observaciones        TEXT,
    cancelada            BOOLEAN DEFAULT 0,
    usuarioID            INTEGER,
    fechaCancelacion     DATETIME,
    motivoCancelacion    TEXT,
    usuarioIDCancelacion INTEGER
);
CREATE UNIQUE INDEX ux_OrdenCompra_folio ON OrdenCompra (empresaID, folio);
CREATE INDEX ix_OrdenCompra_fecha ON OrdenCompra (empresaID, fecha);
CREATE INDEX ix_OrdenCompra_proveedor ON OrdenCompra (empresaID, proveedor, pagada);

CREATE TABLE OrdenCompraDetalle (
    id                 INTEGER NOT NULL,
    empresaID          INTEGER NOT NULL,
    ordenCompra        INTEGER NOT NULL,
    posicion           INTEGER,
    clave              TEXT,
    cantidad           REAL DEFAULT 0,
    costo              REAL DEFAULT 0,
    descuento          REAL DEFAULT 0,
    importe            REAL DEFAULT 0,
    porcentajeImpuesto REAL DEFAULT 0
);
CREATE INDEX ix_OrdenCompraDetalle_ordenCompra ON OrdenCompraDetalle (empresaID, ordenCompra, posicion);
CREATE INDEX ix_OrdenCompraDetalle_clave ON OrdenCompraDetalle (empresaID, clave);

CREATE TABLE PagosOrdenCompra (
    ID                   INTEGER PRIMARY KEY,
    empresaID            INTEGER NOT NULL,
    folio                INTEGER NOT NULL,
    Fecha                DATETIME DEFAULT (datetime('now', 'localtime')),
    Proveedor            INTEGER,
    idOrdenCompra        INTEGER,
    folioOrdenCompra     INTEGER,
    feMetodoID           INTEGER,
    moneda               INTEGER,
    tipoCambio           REAL DEFAULT 1,
    importe              REAL DEFAULT 0,
    importeAplicado      REAL DEFAULT 0,
    factorAplicado       REAL DEFAULT 1,
    descripcion          TEXT,
    observaciones        TEXT,
    cancelada            BOOLEAN DEFAULT 0,
    usuarioID            INTEGER,
    fechaCancelacion     DATETIME,
    motivoCancelacion    TEXT,
    usuarioIDCancelacion INTEGER
);
CREATE INDEX ix_PagosOrdenCompra_folio ON PagosOrdenCompra (empresaID, folio);
CREATE INDEX ix_PagosOrdenCompra_orden ON PagosOrdenCompra (empresaID, folioOrdenCompra);

-- Devolución de mercancía al proveedor (sale del inventario).
CREATE TABLE DevolucionOrdenCompra (
    ID                   INTEGER PRIMARY KEY,
    empresaID            INTEGER NOT NULL,
    folio                INTEGER NOT NULL,
    fecha                DATETIME DEFAULT (datetime('now', 'localtime')),
    proveedor            INTEGER,
    moneda               INTEGER,
    tipoCambio           REAL DEFAULT 1,
    feMetodoID           INTEGER,
    subtotalOrdenCompra  REAL DEFAULT 0,
    ivaOrdenCompra       REAL DEFAULT 0,
    totalOrdenCompra     REAL DEFAULT 0,
    observaciones        TEXT,
    cancelada            BOOLEAN DEFAULT 0,
    usuarioID            INTEGER,
    fechaCancelacion     DATETIME,
    motivoCancelacion    TEXT,
    usuarioIDCancelacion INTEGER
);
CREATE UNIQUE INDEX ux_DevolucionOrdenCompra_folio ON DevolucionOrdenCompra (empresaID, folio);
CREATE INDEX ix_DevolucionOrdenCompra_fecha ON DevolucionOrdenCompra (empresaID, fecha);

-- devolucionOrdenCompra guarda el folio del encabezado; id, su ID.
CREATE TABLE DevolucionOrdenCompraDetalle (
    id                    INTEGER NOT NULL,
    empresaID             INTEGER NOT NULL,
    devolucionOrdenCompra INTEGER NOT NULL,
    posicion              INTEGER,
    clave                 TEXT,
    cantidad              REAL DEFAULT 0,
    costo                 REAL DEFAULT 0,
    descuento             REAL DEFAULT 0,
    importe               REAL DEFAULT 0,
    porcentajeImpuesto    REAL DEFAULT 0
);
CREATE INDEX ix_DevolucionOrdenCompraDetalle_devolucion
    ON DevolucionOrdenCompraDetalle (empresaID, devolucionOrdenCompra, posicion);
CREATE INDEX ix_DevolucionOrdenCompraDetalle_clave ON DevolucionOrdenCompraDetalle (empresaID, clave);

-- Ajuste de existencias: esAjusteEntrada 1 entrada, 0 salida.
CREATE TABLE AjusteProductos (
    ID                   INTEGER PRIMARY KEY,
    empresaID            INTEGER NOT NULL,
    folio                INTEGER NOT NULL,
    esAjusteEntrada      BOOLEAN DEFAULT 0,
    fecha                DATETIME DEFAULT (datetime('now', 'localtime')),
    observaciones        TEXT,
    cancelada            BOOLEAN DEFAULT 0,
    usuarioID            INTEGER,
    fechaCancelacion     DATETIME,
    motivoCancelacion    TEXT,
    usuarioIDCancelacion INTEGER
);
CREATE UNIQUE INDEX ux_AjusteProductos_folio ON AjusteProductos (empresaID, folio);
CREATE INDEX ix_AjusteProductos_fecha ON AjusteProductos (empresaID, fecha);

-- id guarda el ID del encabezado (no su folio).
CREATE TABLE AjusteProductosDetalle (
    id        INTEGER NOT NULL,
    empresaID INTEGER NOT NULL,
    posicion  INTEGER,
    clave     TEXT,
    cantidad  REAL DEFAULT 0
);
CREATE INDEX ix_AjusteProductosDetalle_ajuste ON AjusteProductosDetalle (empresaID, id, posicion);
CREATE INDEX ix_AjusteProductosDetalle_clave ON AjusteProductosDetalle (empresaID, clave);

CREATE TABLE Gastos (
    ID                   INTEGER PRIMARY KEY,
    empresaID            INTEGER NOT NULL,
    folio                INTEGER NOT NULL,
    fecha                DATETIME DEFAULT (datetime('now', 'localtime')),
    proveedor            INTEGER,
    feMetodoID           INTEGER,
    moneda               INTEGER,
    tipoCambio           REAL DEFAULT 1,
    importe              REAL DEFAULT 0,
    observaciones        TEXT,
    cancelada            BOOLEAN DEFAULT 0,
    usuarioID            INTEGER,
    fechaCancelacion     DATETIME,
    motivoCancelacion    TEXT,
    usuarioIDCancelacion INTEGER
);
CREATE UNIQUE INDEX ux_Gastos_folio ON Gastos (empresaID, folio);
CREATE INDEX ix_Gastos_fecha ON Gastos (empresaID, fecha);

-- ---------------------------------------------------------------------------------------------
-- Facturación (solo lectura desde las pantallas)
-- ---------------------------------------------------------------------------------------------

CREATE TABLE Factura (
    ID              INTEGER PRIMARY KEY,
    empresaID       INTEGER NOT NULL,
    serie           TEXT,
    folio           INTEGER NOT NULL,
    fecha           DATETIME DEFAULT (datetime('now', 'localtime')),
    cliente         INTEGER,
    vendedor        INTEGER,
    moneda          INTEGER,
    tipoCambio      REAL DEFAULT 1,
    feMetodoID      INTEGER,
    feFormaID       INTEGER,
    feUsoCFDI       TEXT,
    subtotalFactura REAL DEFAULT 0,
    descuento       REAL DEFAULT 0,
    iepsFactura     REAL DEFAULT 0,
    ivaFactura      REAL DEFAULT 0,
    totalFactura    REAL DEFAULT 0,
    saldoPendiente  REAL DEFAULT 0,
    plazoPago       INTEGER DEFAULT 0,
    pagada          INTEGER DEFAULT 0,
    fechaPago       DATETIME,
    uuid            TEXT,
    observaciones   TEXT,
    cancelada       BOOLEAN DEFAULT 0,
    usuarioID       INTEGER
);
CREATE UNIQUE INDEX ux_Factura_folio ON Factura (empresaID, folio);
CREATE INDEX ix_Factura_fecha ON Factura (empresaID, fecha);

CREATE TABLE FacturaDetalle (
    id                 INTEGER NOT NULL,
    empresaID          INTEGER NOT NULL,
    factura            INTEGER NOT NULL,
    posicion           INTEGER,
    producto           INTEGER,
    clave              TEXT,
    cantidad           REAL DEFAULT 0,
    precio             REAL DEFAULT 0,
    descuento          REAL DEFAULT 0,
    importe            REAL DEFAULT 0,
    pCompra            REAL DEFAULT 0,
    porcentajeImpuesto REAL DEFAULT 0,
    ieps               REAL DEFAULT 0,
    moneda             INTEGER,
    nota               BLOB
);
CREATE INDEX ix_FacturaDetalle_factura ON FacturaDetalle (empresaID, factura, posicion);

CREATE TABLE NotaCredito (
    ID                  INTEGER PRIMARY KEY,
    empresaID           INTEGER NOT NULL,
    serie               TEXT,
    folio               INTEGER NOT NULL,
    fecha               DATETIME DEFAULT (datetime('now', 'localtime')),
    cliente             INTEGER,
    factura             INTEGER,
    moneda              INTEGER,
    tipoCambio          REAL DEFAULT 1,
    subtotalNotaCredito REAL DEFAULT 0,
    ivaNotaCredito      REAL DEFAULT 0,
    iepsNotaCredito     REAL DEFAULT 0,
    totalNotaCredito    REAL DEFAULT 0,
    uuid                TEXT,
    observaciones       TEXT,
    cancelada           BOOLEAN DEFAULT 0,
    usuarioID           INTEGER
);
CREATE UNIQUE INDEX ux_NotaCredito_folio ON NotaCredito (empresaID, folio);

CREATE TABLE NotaCreditoDetalle (
    id                 INTEGER NOT NULL,
    empresaID          INTEGER NOT NULL,
    notaCredito        INTEGER NOT NULL,
    posicion           INTEGER,
    producto           INTEGER,
    clave              TEXT,
    cantidad           REAL DEFAULT 0,
    precio             REAL DEFAULT 0,
    descuento          REAL DEFAULT 0,
    importe            REAL DEFAULT 0,
    porcentajeImpuesto REAL DEFAULT 0,
    ieps               REAL DEFAULT 0
);
CREATE INDEX ix_NotaCreditoDetalle_nota ON NotaCreditoDetalle (empresaID, notaCredito, posicion);

CREATE TABLE PagosFactura (
    ID              INTEGER PRIMARY KEY,
    empresaID       INTEGER NOT NULL,
    folio           INTEGER NOT NULL,
    Fecha           DATETIME DEFAULT (datetime('now', 'localtime')),
    cliente         INTEGER,
    idFactura       INTEGER,
    factura         INTEGER,
    feMetodoID      INTEGER,
    moneda          INTEGER,
    tipoCambio      REAL DEFAULT 1,
    importe         REAL DEFAULT 0,
    importeAplicado REAL DEFAULT 0,
    factorAplicado  REAL DEFAULT 1,
    descripcion     TEXT,
    observaciones   TEXT,
    cancelada       BOOLEAN DEFAULT 0,
    usuarioID       INTEGER
);
CREATE INDEX ix_PagosFactura_factura ON PagosFactura (empresaID, factura);

-- Complementos de pago timbrados.
CREATE TABLE PagosFacturaCFDI (
    ID            INTEGER PRIMARY KEY,
    empresaID     INTEGER NOT NULL,
    folio         INTEGER NOT NULL,
    Fecha         DATETIME DEFAULT (datetime('now', 'localtime')),
    cliente       INTEGER,
    feMetodoID    INTEGER,
    moneda        INTEGER,
    tipoCambio    REAL DEFAULT 1,
    importe       REAL DEFAULT 0,
    uuid          TEXT,
    observaciones TEXT,
    cancelada     BOOLEAN DEFAULT 0,
    usuarioID     INTEGER
);
CREATE UNIQUE INDEX ux_PagosFacturaCFDI_folio ON PagosFacturaCFDI (empresaID, folio);

-- ---------------------------------------------------------------------------------------------
-- Bitácora, reportes y auxiliares
-- ---------------------------------------------------------------------------------------------

CREATE TABLE AuditoriasSistema (
    ID             INTEGER PRIMARY KEY,
    empresaID      INTEGER NOT NULL,
    usuarioID      INTEGER,
    tipoAuditoria  TEXT,
    moduloSistema  TEXT,
    datoAnterior   TEXT,
    datoNuevo      TEXT,
    comentarios    TEXT,
    -- El alta nunca la manda: la pone la base.
    fechaOperacion DATETIME DEFAULT (datetime('now', 'localtime'))
);
CREATE INDEX ix_AuditoriasSistema_fecha ON AuditoriasSistema (empresaID, fechaOperacion);

CREATE TABLE ReportesCarpetas (
    carpetaID INTEGER PRIMARY KEY,
    empresaID INTEGER NOT NULL,
    nombre    TEXT NOT NULL
);
CREATE INDEX ix_ReportesCarpetas_nombre ON ReportesCarpetas (empresaID, nombre);

-- plantilla: el contenido de la plantilla de impresión.
CREATE TABLE Reportes (
    reporteID INTEGER PRIMARY KEY,
    empresaID INTEGER NOT NULL,
    carpetaID INTEGER NOT NULL,
    Nombre    TEXT NOT NULL,
    plantilla BLOB
);
CREATE INDEX ix_Reportes_carpeta ON Reportes (empresaID, carpetaID, Nombre);

-- Resultados intermedios de las gráficas de estadísticas.
CREATE TABLE ResultadosGraficasTemporales (
    Descripcion     TEXT,
    Registros       INTEGER,
    TipoColumna     INTEGER,
    ValorDinero     REAL,
    ValorPorcentaje REAL
);
