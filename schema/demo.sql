-- Datos de demostración: dos empresas listas para probar (abarrotes y restaurante).
-- Solo se cargan en una base sin empresas. Llaves explícitas para que todo sea repetible.
-- No hay documentos: los contadores de folio empiezan en 1 y las existencias son iniciales.

-- ---------------------------------------------------------------------------------------------
-- Empresas y configuración
-- ---------------------------------------------------------------------------------------------

INSERT INTO Empresa (empresaID, nombreEmpresaCorto, nombreEmpresaLargo, razonSocial, rfc, FERegimenFiscal, calleDomicilio, numeroExterior, numeroInterior, colonia, codigoPostal, localidad, municipio, estado, pais, referenciaDomicilio, telefono, email, EsHombre, activo) VALUES
    (1, 'Abarrotes La Esperanza', 'Abarrotes La Esperanza', 'Ricardo Gómez Estrada', 'GOER700512JD4', '612', 'Av. Federalismo Norte', '1450', NULL, 'Santa Elena Alcalde', '44220', 'Guadalajara', 'Guadalajara', 'Jalisco', 'MÉXICO', 'Esquina con Calle Garibaldi', '33 3824 1075', 'contacto@abarroteslaesperanza.mx', 1, 1),
    (2, 'Restaurante El Portal', 'Restaurante El Portal de Puebla', 'Restaurante El Portal de Puebla, S.A. de C.V.', 'RPP150610AB7', '601', 'Portal Hidalgo', '6', 'Local B', 'Centro Histórico', '72000', 'Puebla', 'Puebla', 'Puebla', 'MÉXICO', 'Frente al zócalo', '222 232 8974', 'reservaciones@restauranteelportal.mx', 1, 1);

-- Folios en 1 por omisión. Precios de venta con IVA incluido (modo 1); compras desglosadas (modo 2).
INSERT INTO Configura (ID, empresaID, controlRestaurantes, clienteDefaultRem, clienteDefaultCot, monedaIDRem, monedaIDCot, monedaIDProductos, monedaIDRM, monedaIDFac, monedaIDNom, feMetodoIDRem, feMetodoIDRM, feMetodoIDCxCRem, FEmetodoIDFac, FEformaIDFac, unidadIDProductos, claveSATProductos, estadoDefault, desglosaRem, desglosaCot, desglosaFact, desglosaRM, ivaFact, diasCreditoCliente, DecimalesCantKioskoPV, remSinExistencia, permiteCambiarVendedorRem, permiteCambiarVendedorCot, permiteCambiarVendedorComanda, imprimeComandaAlGrabar, imprimeCuentaAlPagar, descuentaExistencias, habilitaKioskoPV) VALUES
    (1, 1, 0, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, '01010101', 14, 1, 1, 2, 2, 16.00, 15, 2, 0, 1, 1, 0, 0, 0, 1, 1),
    (2, 2, 1, 11, 11, 3, 3, 3, 3, 3, 3, 11, 11, 11, 11, 3, 11, '90101501', 21, 1, 1, 2, 2, 16.00, 0, 2, 1, 1, 1, 1, 0, 0, 1, 0);

INSERT INTO ConfiguraImpresiones (ID, empresaID, imprimeLogotipoRemision, imprimeEmailRemision, imprimeQRRemision, adicionalRemision, pieRemision, imprimeLogotipoCotizacion, imprimeQRCotizacion, pieCotizacion, pieOC, pieRM, pieDM) VALUES
    (1, 1, 1, 0, 0, 'Precios con IVA incluido', '¡Gracias por su compra! Vuelva pronto.', 1, 1, 'Precios sujetos a cambio sin previo aviso.', 'Favor de surtir completo.', 'Mercancía recibida a entera satisfacción.', 'Devolución por mercancía dañada o caducada.'),
    (2, 2, 1, 0, 0, 'Propina no incluida', '¡Gracias por su visita! Lo esperamos pronto.', 1, 1, 'Cotización válida por los días indicados.', 'Favor de surtir completo.', 'Mercancía recibida a entera satisfacción.', 'Devolución por mercancía dañada.');

-- ---------------------------------------------------------------------------------------------
-- Usuarios y perfiles
-- ---------------------------------------------------------------------------------------------

INSERT INTO PerfilesUsuarios (perfilID, Nombre) VALUES
    (1, 'Administrador'),
    (2, 'Cajero'),
    (3, 'Mesero');

-- inactivo/inactivo no puede entrar (activo = 0).
INSERT INTO Usuarios (usuarioID, nUsuario, contrasena, nombre, perfilID, esAdmin, activo, accesaMovil) VALUES
    (1, 'admin', 'admin', 'Administrador del Sistema', 1, 1, 1, 1),
    (2, 'cajero', 'cajero', 'Laura Méndez Ríos', 2, 0, 1, 1),
    (3, 'mesero', 'mesero', 'Carlos Hernández Vega', 3, 0, 1, 1),
    (4, 'inactivo', 'inactivo', 'Pedro Salinas Cruz', 2, 0, 0, 1);

INSERT INTO UsuariosEmpresa (usuarioID, empresaID, acceso) VALUES
    (1, 1, 1),
    (1, 2, 1),
    (2, 1, 1),
    (3, 2, 1),
    (4, 1, 1);

INSERT INTO PerfilesUsuariosVentas (perfilID, precio1, precio2, precio3, precio4, precio5, clienteNuevo, descuento, modificarCotizacion, corteCaja, cancelarRemision, cancelarComanda, cancelarCFDI, cancelarNC) VALUES
    (1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1),
    (2, 1, 1, 0, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0),
    (3, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);

INSERT INTO PerfilesUsuariosCompras (perfilID, ProveedorNuevo, descuento, cancelarRM, cancelarDM, cancelarAjuste, cancelarGasto, cancelarTransferencia) VALUES
    (1, 1, 1, 1, 1, 1, 1, 1),
    (2, 0, 0, 0, 0, 0, 0, 0),
    (3, 0, 0, 0, 0, 0, 0, 0);

INSERT INTO PerfilesUsuariosCxC (perfilID, bloquearCredito, desbloquearCredito, cancelarPagoRemision, cancelarPagoCFDI) VALUES
    (1, 1, 1, 1, 1),
    (2, 0, 0, 0, 0),
    (3, 0, 0, 0, 0);

-- El cajero vende, cobra y atiende clientes; el mesero, solo el restaurante.
INSERT INTO PermisosSistema (perfilID, menú, acceso) VALUES
    (1, 'Punto de Venta', 1),
    (1, 'Ventas', 1),
    (1, 'Caja Chica', 1),
    (1, 'Corte de Caja', 1),
    (1, 'Clientes', 1),
    (1, 'Asigna Monedero Electrónico', 1),
    (1, 'Comandas', 1),
    (1, 'Monitor de Preparación', 1),
    (1, 'Áreas de Comida', 1),
    (1, 'Cotizaciones', 1),
    (1, 'Catálogo de Productos', 1),
    (1, 'Unidades de Medida', 1),
    (1, 'Rangos de Precios', 1),
    (1, 'Artículos Compuestos (Kits)', 1),
    (1, 'Utilerías de Productos', 1),
    (1, 'Incremento de Precios', 1),
    (1, 'Valor de Inventario', 1),
    (1, 'Compras', 1),
    (1, 'Documentos de Compra', 1),
    (1, 'Proveedores', 1),
    (1, 'Cuentas por Cobrar', 1),
    (1, 'Cuentas por Pagar', 1),
    (1, 'Gastos', 1),
    (1, 'Usuarios', 1),
    (1, 'Perfiles de Usuario', 1),
    (1, 'Configuración', 1),
    (1, 'Bitácoras del Sistema', 1),
    (1, 'Estadísticas', 1),
    (2, 'Punto de Venta', 1),
    (2, 'Ventas', 1),
    (2, 'Caja Chica', 1),
    (2, 'Corte de Caja', 1),
    (2, 'Clientes', 1),
    (2, 'Asigna Monedero Electrónico', 0),
    (2, 'Comandas', 0),
    (2, 'Monitor de Preparación', 0),
    (2, 'Áreas de Comida', 0),
    (2, 'Cotizaciones', 1),
    (2, 'Catálogo de Productos', 0),
    (2, 'Unidades de Medida', 0),
    (2, 'Rangos de Precios', 0),
    (2, 'Artículos Compuestos (Kits)', 0),
    (2, 'Utilerías de Productos', 0),
    (2, 'Incremento de Precios', 0),
    (2, 'Valor de Inventario', 0),
    (2, 'Compras', 0),
    (2, 'Proveedores', 0),
    (2, 'Cuentas por Cobrar', 1),
    (2, 'Cuentas por Pagar', 0),
    (2, 'Gastos', 0),
    (2, 'Usuarios', 0),
    (2, 'Perfiles de Usuario', 0),
    (2, 'Configuración', 0),
    (2, 'Bitácoras del Sistema', 0),
    (2, 'Estadísticas', 0),
    (3, 'Punto de Venta', 0),
    (3, 'Ventas', 0),
    (3, 'Caja Chica', 0),
    (3, 'Corte de Caja', 0),
    (3, 'Clientes', 0),
    (3, 'Asigna Monedero Electrónico', 0),
    (3, 'Comandas', 1),
    (3, 'Monitor de Preparación', 1),
    (3, 'Áreas de Comida', 0),
    (3, 'Cotizaciones', 0),
    (3, 'Catálogo de Productos', 0),
    (3, 'Unidades de Medida', 0),
    (3, 'Rangos de Precios', 0),
    (3, 'Artículos Compuestos (Kits)', 0),
    (3, 'Utilerías de Productos', 0),
    (3, 'Incremento de Precios', 0),
    (3, 'Valor de Inventario', 0),
    (3, 'Compras', 0),
    (3, 'Proveedores', 0),
    (3, 'Cuentas por Cobrar', 0),
    (3, 'Cuentas por Pagar', 0),
    (3, 'Gastos', 0),
    (3, 'Usuarios', 0),
    (3, 'Perfiles de Usuario', 0),
    (3, 'Configuración', 0),
    (3, 'Bitácoras del Sistema', 0),
    (3, 'Estadísticas', 0);

-- ---------------------------------------------------------------------------------------------
-- Catálogos por empresa
-- ---------------------------------------------------------------------------------------------

INSERT INTO Unidades (id, empresaID, unidad, claveSAT, usuarioID) VALUES
    (1, 1, 'Pieza', 'H87', 1),
    (2, 1, 'Kilogramo', 'KGM', 1),
    (3, 1, 'Litro', 'LTR', 1),
    (4, 1, 'Caja', 'XBX', 1),
    (5, 1, 'Paquete', 'XPK', 1),
    (6, 1, 'Servicio', 'E48', 1),
    (11, 2, 'Pieza', 'H87', 1),
    (12, 2, 'Kilogramo', 'KGM', 1),
    (13, 2, 'Litro', 'LTR', 1),
    (14, 2, 'Caja', 'XBX', 1),
    (15, 2, 'Orden', 'E48', 1),
    (16, 2, 'Paquete', 'XPK', 1);

INSERT INTO Monedas (id, empresaID, descripcion, abreviacionPAC, decimales, multiplica, tipoCambioCompra, tipoCambioVenta, usuarioID) VALUES
    (1, 1, 'Peso Mexicano', 'MXN', 2, 1, 1.00, 1.00, 1),
    (2, 1, 'Dólar Estadounidense', 'USD', 2, 1, 17.05, 17.45, 1),
    (3, 2, 'Peso Mexicano', 'MXN', 2, 1, 1.00, 1.00, 1),
    (4, 2, 'Dólar Estadounidense', 'USD', 2, 1, 17.05, 17.45, 1);

-- Formas de pago; el monedero electrónico paga con los puntos del cliente.
INSERT INTO FEMetodosPago (id, empresaID, descripcion, claveSAT, usaCuenta, usuarioID) VALUES
    (1, 1, 'EFECTIVO', '01', 0, 1),
    (2, 1, 'TARJETA DE CRÉDITO', '04', 1, 1),
    (3, 1, 'MONEDERO ELECTRONICO', '05', 0, 1),
    (4, 1, 'TRANSFERENCIA ELECTRÓNICA', '03', 1, 1),
    (5, 1, 'TARJETA DE DÉBITO', '28', 1, 1),
    (11, 2, 'EFECTIVO', '01', 0, 1),
    (12, 2, 'TARJETA DE CRÉDITO', '04', 1, 1),
    (13, 2, 'MONEDERO ELECTRONICO', '05', 0, 1),
    (14, 2, 'TRANSFERENCIA ELECTRÓNICA', '03', 1, 1),
    (15, 2, 'TARJETA DE DÉBITO', '28', 1, 1);

INSERT INTO FEFormasPago (ID, empresaID, claveSAT, descripcion) VALUES
    (1, 1, 'PUE', 'Pago en una sola exhibición'),
    (2, 1, 'PPD', 'Pago en parcialidades o diferido'),
    (3, 2, 'PUE', 'Pago en una sola exhibición'),
    (4, 2, 'PPD', 'Pago en parcialidades o diferido');

-- El cliente por omisión de cada empresa es "Venta al Público en General".
INSERT INTO Clientes (id, empresaID, codigoAlterno, nombre, razonSocial, rfc, FERegimenFiscal, feUsoCFDI, feFormaID, feMetodoID, calle, numeroExterior, numeroInterior, colonia, cp, localidad, municipio, estado, pais, telefono, telefonoCelular, email, contacto, esHombre, precioVenta, limiteCredito, diasCredito, bloquearCredito, puntos, usuarioID) VALUES
    (1, 1, 'C0001', 'Venta al Público en General', 'Venta al Público en General', 'XAXX010101000', '616', 'S01', 1, 1, NULL, NULL, NULL, NULL, '44220', 'Guadalajara', 'Guadalajara', 14, 'MÉXICO', NULL, NULL, NULL, NULL, 1, 1, 0.00, 0, 0, 0.00, 1),
    (2, 1, 'C0002', 'María Guadalupe Hernández López', 'María Guadalupe Hernández López', 'HELG850312QK4', '612', 'G03', 1, 1, 'Calle Juan Manuel', '845', NULL, 'Santa Teresita', '44600', 'Guadalajara', 'Guadalajara', 14, 'MÉXICO', '33 3615 2290', '33 1458 7720', 'lupita.hernandez@correo.mx', NULL, 0, 1, 3000.00, 15, 0, 42.50, 1),
    (3, 1, 'C0003', 'Fonda Doña Chuy', 'Jesús Ramírez Ortega', 'RAOJ720815H21', '626', 'G01', 2, 3, 'Calle Pedro Loza', '312', NULL, 'Centro', '44100', 'Guadalajara', 'Guadalajara', 14, 'MÉXICO', '33 3613 4478', '33 2210 9034', 'fondadonachuy@correo.mx', 'Jesús Ramírez', 1, 2, 8000.00, 15, 0, 0.00, 1),
    (4, 1, 'C0004', 'Comercializadora del Bajío', 'Comercializadora del Bajío, S.A. de C.V.', 'CBA140523TL8', '601', 'G01', 2, 2, 'Av. Lázaro Cárdenas', '2305', 'Bodega 4', 'Las Torres', '44920', 'Guadalajara', 'Guadalajara', 14, 'MÉXICO', '33 3812 6600', NULL, 'compras@comercialbajio.mx', 'Lic. Andrea Ruiz', 0, 3, 15000.00, 30, 0, 0.00, 1),
    (5, 1, 'C0005', 'José Luis Martínez Sánchez', 'José Luis Martínez Sánchez', 'MASL900101AB2', '605', 'G03', 1, 1, 'Calle Independencia', '77', '2', 'Mexicaltzingo', '44180', 'Guadalajara', 'Guadalajara', 14, 'MÉXICO', NULL, '33 1902 3345', 'joseluis.martinez@correo.mx', NULL, 1, 1, 0.00, 0, 0, 125.50, 1),
    (11, 2, 'C0001', 'Venta al Público en General', 'Venta al Público en General', 'XAXX010101000', '616', 'S01', 3, 11, NULL, NULL, NULL, NULL, '72000', 'Puebla', 'Puebla', 21, 'MÉXICO', NULL, NULL, NULL, NULL, 1, 1, 0.00, 0, 0, 0.00, 1),
    (12, 2, 'C0002', 'Grupo Turístico Angelópolis', 'Grupo Turístico Angelópolis, S.A. de C.V.', 'GTA160905P31', '601', 'G03', 4, 13, 'Blvd. Atlixcáyotl', '5208', 'Piso 3', 'Reserva Territorial Atlixcáyotl', '72830', 'San Andrés Cholula', 'San Andrés Cholula', 21, 'MÉXICO', '222 303 1180', NULL, 'eventos@angelopolis-tur.mx', 'Mtra. Sofía Lara', 0, 1, 20000.00, 30, 0, 0.00, 1),
    (13, 2, 'C0003', 'Ana Sofía Torres Medina', 'Ana Sofía Torres Medina', 'TOMA880420KJ9', '605', 'G03', 3, 11, 'Calle 5 de Mayo', '1204', NULL, 'Centro', '72000', 'Puebla', 'Puebla', 21, 'MÉXICO', NULL, '222 455 8012', 'anasofia.torres@correo.mx', NULL, 0, 1, 0.00, 0, 0, 80.00, 1),
    (14, 2, 'C0004', 'Luis Fernando Vázquez Ruiz', 'Luis Fernando Vázquez Ruiz', 'VARL820611MN3', '612', 'G03', 3, 13, 'Av. Juárez', '2915', '5', 'La Paz', '72160', 'Puebla', 'Puebla', 21, 'MÉXICO', '222 248 7731', '222 189 4420', 'lf.vazquez@correo.mx', NULL, 1, 1, 5000.00, 15, 0, 0.00, 1);

INSERT INTO Proveedores (id, empresaID, codigoAlterno, nombre, razonSocial, rfc, calle, numeroExterior, colonia, cp, localidad, municipio, estado, pais, telefono, email, contacto, esHombre, limiteCredito, usuarioID) VALUES
    (1, 1, 'P0001', 'Distribuidora de Abarrotes de Occidente', 'Distribuidora de Abarrotes de Occidente, S.A. de C.V.', 'DAO0811193K5', 'Calzada Lázaro Cárdenas', '3650', 'Mercado de Abastos', '44530', 'Guadalajara', 'Guadalajara', 14, 'MÉXICO', '33 3671 0044', 'ventas@daoccidente.mx', 'Martín Aguilar', 1, 50000.00, 1),
    (2, 1, 'P0002', 'Bebidas y Refrescos del Centro', 'Bebidas y Refrescos del Centro, S.A. de C.V.', 'BRC100402MX1', 'Av. Mariano Otero', '1105', 'Rinconada del Sol', '45055', 'Zapopan', 'Zapopan', 14, 'MÉXICO', '33 3634 9912', 'pedidos@bebidascentro.mx', 'Erika Sandoval', 0, 30000.00, 1),
    (3, 1, 'P0003', 'Productos de Limpieza Tapatíos', 'Productos de Limpieza Tapatíos, S.A. de C.V.', 'PLT120717AB3', 'Calle 8', '2290', 'Zona Industrial', '44940', 'Guadalajara', 'Guadalajara', 14, 'MÉXICO', '33 3145 7788', 'ventas@limpiezatapatia.mx', 'Raúl Ochoa', 1, 15000.00, 1),
    (11, 2, 'P0001', 'Carnes Selectas de Puebla', 'Carnes Selectas de Puebla, S.A. de C.V.', 'CSP090315R42', 'Av. 18 Poniente', '908', 'San Miguel', '72000', 'Puebla', 'Puebla', 21, 'MÉXICO', '222 242 1177', 'ventas@carnesselectas.mx', 'Joaquín Flores', 1, 40000.00, 1),
    (12, 2, 'P0002', 'Distribuidora de Bebidas Angelópolis', 'Distribuidora de Bebidas Angelópolis, S.A. de C.V.', 'DBA110829LK7', 'Calle 11 Sur', '4501', 'Gabriel Pastor', '72420', 'Puebla', 'Puebla', 21, 'MÉXICO', '222 237 6650', 'pedidos@bebidasangelopolis.mx', 'Mónica Reyes', 0, 35000.00, 1),
    (13, 2, 'P0003', 'Abastos y Verduras La Central', 'Guillermo Pérez Castillo', 'PECG750905TT1', 'Central de Abasto Nave 3', '12', 'Central de Abasto', '72019', 'Puebla', 'Puebla', 21, 'MÉXICO', '222 282 0390', 'lacentral.verduras@correo.mx', 'Guillermo Pérez', 1, 10000.00, 1);

-- Días de crédito de los proveedores (los demás pagan de contado).
UPDATE Proveedores SET diasCredito = 30 WHERE id IN (1, 11);
UPDATE Proveedores SET diasCredito = 15 WHERE id IN (3, 13);

-- ---------------------------------------------------------------------------------------------
-- Líneas de producto (árbol por padre; la raíz lleva 0)
-- ---------------------------------------------------------------------------------------------

INSERT INTO Lineas (id, empresaID, linea, padre, usuarioID) VALUES
    (1, 1, 'Abarrotes', 0, 1),
    (2, 1, 'Bebidas', 0, 1),
    (3, 1, 'Botanas y Dulces', 0, 1),
    (4, 1, 'Lácteos y Salchichonería', 0, 1),
    (5, 1, 'Limpieza y Hogar', 0, 1),
    (6, 1, 'Granos y Semillas', 1, 1),
    (7, 1, 'Enlatados y Conservas', 1, 1),
    (8, 1, 'Aceites y Condimentos', 1, 1),
    (9, 1, 'Refrescos', 2, 1),
    (10, 1, 'Aguas y Jugos', 2, 1),
    (11, 1, 'Paquetes', 0, 1),
    (12, 1, 'Servicios', 0, 1),
    (21, 2, 'Entradas', 0, 1),
    (22, 2, 'Platos Fuertes', 0, 1),
    (23, 2, 'Tacos y Antojitos', 22, 1),
    (24, 2, 'Bebidas', 0, 1),
    (25, 2, 'Aguas y Refrescos', 24, 1),
    (26, 2, 'Bebidas Calientes', 24, 1),
    (27, 2, 'Cervezas', 24, 1),
    (28, 2, 'Postres', 0, 1),
    (29, 2, 'Paquetes', 0, 1);

-- ---------------------------------------------------------------------------------------------
-- Restaurante: áreas (comedor y preparación) y mesas
-- ---------------------------------------------------------------------------------------------

INSERT INTO AreasComida (id, empresaID, area, padre, usuarioID) VALUES
    (1, 2, 'Comedor', 0, 1),
    (2, 2, 'Salón Principal', 1, 1),
    (3, 2, 'Terraza', 1, 1),
    (4, 2, 'Cocina', 0, 1),
    (5, 2, 'Barra', 0, 1);

-- tipo: 0 redonda, 1 cuadrada, 2 rectangular, 3 ovalada, 4 imperial, 5 en U, 6 discapacitados.
INSERT INTO NodosComida (id, empresaID, area, clave, descripcion, numeroPersonas, tipo, activo, status) VALUES
    (1, 2, 2, '1', 'MESA 1', 4, 0, 1, 0),
    (2, 2, 2, '2', 'MESA 2', 4, 1, 1, 0),
    (3, 2, 2, '3', 'MESA 3', 6, 2, 1, 0),
    (4, 2, 2, '4', 'MESA 4', 4, 3, 1, 0),
    (5, 2, 2, '5', 'MESA 5', 10, 4, 1, 0),
    (6, 2, 2, '6', 'MESA 6', 4, 6, 1, 0),
    (7, 2, 3, '7', 'MESA 7', 2, 1, 1, 0),
    (8, 2, 3, '8', 'MESA 8', 2, 0, 1, 0),
    (9, 2, 3, '9', 'MESA 9', 6, 2, 1, 0),
    (10, 2, 3, '10', 'MESA 10', 8, 5, 1, 0),
    (11, 2, 5, '11', 'BARRA 1', 1, 0, 1, 0),
    (12, 2, 5, '12', 'BARRA 2', 1, 0, 1, 0);

-- ---------------------------------------------------------------------------------------------
-- Productos
-- ---------------------------------------------------------------------------------------------

-- Precios 2 a 5: 3, 5, 7 y 10 % menos que el precio 1. Tasas en por ciento.
INSERT INTO Productos (id, empresaID, linea, clave, producto, unidad, moneda, claveSAT, codigoBarra, existencia, pCompra, precio, precio2, precio3, precio4, precio5, precioAbierto, porcentajeImpuesto, ieps, manejaInventarios, esPaquete, utilizaBascula, MostrarKioskoPV, OrdenKiosko, bonificaPuntos, porcentajeBonificacion, maximo, minimo, puntoReorden, activo, areaComida, usuarioID) VALUES
    (1, 1, 6, '1001', 'Arroz súper extra 1 kg', 1, 1, '50221101', '7501058000118', 48.00, 24.50, 32.00, 31.04, 30.40, 29.76, 28.80, 0, 0.00, 0.00, 1, 0, 0, 1, 1, 0, 0.00, 60.00, 12.00, 12.00, 1, NULL, 1),
    (2, 1, 6, '1002', 'Frijol negro 1 kg', 1, 1, '50221103', '7501058000286', 36.00, 31.00, 42.00, 40.74, 39.90, 39.06, 37.80, 0, 0.00, 0.00, 1, 0, 0, 1, 2, 0, 0.00, 50.00, 10.00, 10.00, 1, NULL, 1),
    (3, 1, 6, '1003', 'Frijol pinto 1 kg', 1, 1, '50221103', '7501058000354', 30.00, 29.00, 39.50, 38.32, 37.53, 36.74, 35.55, 0, 0.00, 0.00, 1, 0, 0, 1, 3, 0, 0.00, 40.00, 10.00, 10.00, 1, NULL, 1),
    (4, 1, 6, '1004', 'Lenteja 500 g', 1, 1, '50221104', '7501058000422', 20.00, 18.00, 25.00, 24.25, 23.75, 23.25, 22.50, 0, 0.00, 0.00, 1, 0, 0, 1, 4, 0, 0.00, 30.00, 6.00, 6.00, 1, NULL, 1),
    (5, 1, 1, '1005', 'Azúcar estándar 1 kg', 1, 1, '50161509', '7501047000198', 40.00, 27.00, 34.00, 32.98, 32.30, 31.62, 30.60, 0, 0.00, 0.00, 1, 0, 0, 1, 5, 0, 0.00, 60.00, 12.00, 12.00, 1, NULL, 1),
    (6, 1, 8, '1006', 'Aceite vegetal comestible 900 ml', 1, 1, '50151513', '7501047000266', 24.00, 35.00, 46.50, 45.11, 44.18, 43.25, 41.85, 0, 0.00, 0.00, 1, 0, 0, 1, 6, 0, 0.00, 36.00, 8.00, 8.00, 1, NULL, 1),
    (7, 1, 8, '1007', 'Sal de mesa yodatada 1 kg', 1, 1, '50171551', '7501047000334', 30.00, 9.50, 14.00, 13.58, 13.30, 13.02, 12.60, 0, 0.00, 0.00, 1, 0, 0, 1, 7, 0, 0.00, 40.00, 8.00, 8.00, 1, NULL, 1),
    (8, 1, 8, '1008', 'Mayonesa con jugo de limón 390 g', 1, 1, '50171830', '7501047000402', 12.00, 34.00, 45.00, 43.65, 42.75, 41.85, 40.50, 0, 0.00, 0.00, 1, 0, 0, 1, 8, 0, 0.00, 24.00, 6.00, 6.00, 1, NULL, 1),
    (9, 1, 7, '1009', 'Chiles jalapeños en escabeche 220 g', 1, 1, '50461500', '7501023000143', 30.00, 13.00, 18.50, 17.95, 17.58, 17.21, 16.65, 0, 0.00, 0.00, 1, 0, 0, 1, 9, 0, 0.00, 40.00, 10.00, 10.00, 1, NULL, 1),
    (10, 1, 7, '1010', 'Atún en agua 140 g', 1, 1, '50121537', '7501023000211', 60.00, 17.50, 24.00, 23.28, 22.80, 22.32, 21.60, 0, 0.00, 0.00, 1, 0, 0, 1, 10, 0, 0.00, 72.00, 24.00, 24.00, 1, NULL, 1),
    (11, 1, 7, '1011', 'Frijoles refritos bayos 430 g', 1, 1, '50461800', '7501023000389', 25.00, 14.50, 21.00, 20.37, 19.95, 19.53, 18.90, 0, 0.00, 0.00, 1, 0, 0, 1, 11, 0, 0.00, 36.00, 10.00, 10.00, 1, NULL, 1),
    (12, 1, 1, '1012', 'Sopa de pasta fideo 200 g', 1, 1, '50192500', '7501023000457', 50.00, 6.00, 9.00, 8.73, 8.55, 8.37, 8.10, 0, 0.00, 0.00, 1, 0, 0, 1, 12, 0, 0.00, 80.00, 20.00, 20.00, 1, NULL, 1),
    (13, 1, 1, '1013', 'Café soluble clásico 100 g', 1, 1, '50201706', '7501023000525', 15.00, 52.00, 69.00, 66.93, 65.55, 64.17, 62.10, 0, 0.00, 0.00, 1, 0, 0, 1, 13, 1, 2.00, 24.00, 6.00, 6.00, 1, NULL, 1),
    (14, 1, 9, '2001', 'Refresco de cola 600 ml', 1, 1, '50202306', '7501055000197', 96.00, 12.80, 18.00, 17.46, 17.10, 16.74, 16.20, 0, 16.00, 0.00, 1, 0, 0, 1, 14, 0, 0.00, 120.00, 48.00, 48.00, 1, NULL, 1),
    (15, 1, 9, '2002', 'Refresco de cola 2 L', 1, 1, '50202306', '7501055000265', 48.00, 25.00, 35.00, 33.95, 33.25, 32.55, 31.50, 0, 16.00, 0.00, 1, 0, 0, 1, 15, 0, 0.00, 60.00, 24.00, 24.00, 1, NULL, 1),
    (16, 1, 9, '2003', 'Refresco de naranja 2 L', 1, 1, '50202306', '7501055000333', 24.00, 21.00, 30.00, 29.10, 28.50, 27.90, 27.00, 0, 16.00, 0.00, 1, 0, 0, 1, 16, 0, 0.00, 36.00, 12.00, 12.00, 1, NULL, 1),
    (17, 1, 9, '2004', 'Refresco de lima-limón 600 ml', 1, 1, '50202306', '7501055000401', 48.00, 11.00, 16.00, 15.52, 15.20, 14.88, 14.40, 0, 16.00, 0.00, 1, 0, 0, 1, 17, 0, 0.00, 60.00, 24.00, 24.00, 1, NULL, 1),
    (18, 1, 10, '2005', 'Agua purificada 1 L', 1, 1, '50202301', '7501031000128', 72.00, 6.50, 11.00, 10.67, 10.45, 10.23, 9.90, 0, 16.00, 0.00, 1, 0, 0, 1, 18, 0, 0.00, 96.00, 24.00, 24.00, 1, NULL, 1),
    (19, 1, 10, '2006', 'Agua purificada garrafón 20 L', 1, 1, '50202301', '7501031000296', 10.00, 28.00, 40.00, 38.80, 38.00, 37.20, 36.00, 0, 0.00, 0.00, 1, 0, 0, 1, 19, 0, 0.00, 15.00, 4.00, 4.00, 1, NULL, 1),
    (20, 1, 10, '2007', 'Jugo de mango 1 L', 1, 1, '50202304', '7501031000364', 24.00, 18.00, 26.00, 25.22, 24.70, 24.18, 23.40, 0, 16.00, 0.00, 1, 0, 0, 1, 20, 0, 0.00, 36.00, 12.00, 12.00, 1, NULL, 1),
    (21, 1, 10, '2008', 'Agua mineral 355 ml', 1, 1, '50202303', '7501031000432', 48.00, 9.00, 14.00, 13.58, 13.30, 13.02, 12.60, 0, 16.00, 0.00, 1, 0, 0, 1, 21, 0, 0.00, 72.00, 24.00, 24.00, 1, NULL, 1),
    (22, 1, 3, '3001', 'Papas fritas con sal 45 g', 1, 1, '50192100', '7501010000156', 40.00, 11.50, 18.00, 17.46, 17.10, 16.74, 16.20, 0, 16.00, 8.00, 1, 0, 0, 1, 22, 0, 0.00, 60.00, 15.00, 15.00, 1, NULL, 1),
    (23, 1, 3, '3002', 'Totopos de maíz enchilados 62 g', 1, 1, '50192100', '7501010000224', 30.00, 10.00, 16.00, 15.52, 15.20, 14.88, 14.40, 0, 16.00, 8.00, 1, 0, 0, 1, 23, 0, 0.00, 48.00, 12.00, 12.00, 1, NULL, 1),
    (24, 1, 3, '3003', 'Cacahuates japoneses 100 g', 1, 1, '50192100', '7501010000392', 25.00, 9.00, 15.00, 14.55, 14.25, 13.95, 13.50, 0, 16.00, 8.00, 1, 0, 0, 1, 24, 0, 0.00, 36.00, 10.00, 10.00, 1, NULL, 1),
    (25, 1, 3, '3004', 'Galletas de chocolate rellenas 90 g', 1, 1, '50181905', '7501010000460', 36.00, 11.00, 17.00, 16.49, 16.15, 15.81, 15.30, 0, 16.00, 8.00, 1, 0, 0, 1, 25, 0, 0.00, 48.00, 12.00, 12.00, 1, NULL, 1),
    (26, 1, 3, '3005', 'Chocolate de mesa 90 g', 1, 1, '50161511', '7501010000538', 20.00, 16.00, 24.00, 23.28, 22.80, 22.32, 21.60, 0, 16.00, 8.00, 1, 0, 0, 1, 26, 0, 0.00, 30.00, 8.00, 8.00, 1, NULL, 1),
    (27, 1, 3, '3006', 'Paleta de caramelo con chile 50 piezas', 4, 1, '50161800', '7501010000606', 6.00, 58.00, 85.00, 82.45, 80.75, 79.05, 76.50, 0, 16.00, 8.00, 1, 0, 0, 1, 27, 0, 0.00, 10.00, 2.00, 2.00, 1, NULL, 1),
    (28, 1, 3, '3007', 'Chicle de menta 10 piezas', 1, 1, '50161813', '7501010000774', 40.00, 6.00, 10.00, 9.70, 9.50, 9.30, 9.00, 0, 16.00, 8.00, 1, 0, 0, 1, 28, 0, 0.00, 60.00, 15.00, 15.00, 1, NULL, 1),
    (29, 1, 4, '4001', 'Leche entera pasteurizada 1 L', 1, 1, '50131702', '7501020000139', 36.00, 20.50, 27.50, 26.68, 26.13, 25.58, 24.75, 0, 0.00, 0.00, 1, 0, 0, 1, 29, 1, 2.00, 48.00, 12.00, 12.00, 1, NULL, 1),
    (30, 1, 4, '4002', 'Huevo blanco 18 piezas', 5, 1, '50131601', '7501020000207', 20.00, 48.00, 62.00, 60.14, 58.90, 57.66, 55.80, 0, 0.00, 0.00, 1, 0, 0, 1, 30, 1, 2.00, 30.00, 8.00, 8.00, 1, NULL, 1),
    (31, 1, 4, '4003', 'Yogur bebible de fresa 250 g', 1, 1, '50131800', '7501020000375', 24.00, 7.50, 11.50, 11.16, 10.93, 10.70, 10.35, 0, 0.00, 0.00, 1, 0, 0, 1, 31, 0, 0.00, 36.00, 12.00, 12.00, 1, NULL, 1),
    (32, 1, 5, '5001', 'Detergente en polvo 1 kg', 1, 1, '47131807', '7501006000177', 18.00, 33.00, 45.00, 43.65, 42.75, 41.85, 40.50, 0, 16.00, 0.00, 1, 0, 0, 1, 32, 1, 2.00, 24.00, 6.00, 6.00, 1, NULL, 1),
    (33, 1, 5, '5002', 'Jabón de barra para ropa 400 g', 1, 1, '47131801', '7501006000245', 24.00, 14.50, 21.00, 20.37, 19.95, 19.53, 18.90, 0, 16.00, 0.00, 1, 0, 0, 1, 33, 0, 0.00, 36.00, 8.00, 8.00, 1, NULL, 1),
    (34, 1, 5, '5003', 'Cloro desinfectante 1 L', 1, 1, '47131810', '7501006000313', 20.00, 10.50, 16.00, 15.52, 15.20, 14.88, 14.40, 0, 16.00, 0.00, 1, 0, 0, 1, 34, 0, 0.00, 30.00, 8.00, 8.00, 1, NULL, 1),
    (35, 1, 5, '5004', 'Papel higiénico 4 rollos', 5, 1, '14111704', '7501006000481', 30.00, 22.00, 32.00, 31.04, 30.40, 29.76, 28.80, 0, 16.00, 0.00, 1, 0, 0, 1, 35, 0, 0.00, 40.00, 10.00, 10.00, 1, NULL, 1),
    (36, 1, 5, '5005', 'Suavizante de telas 850 ml', 1, 1, '47131803', '7501006000559', 12.00, 19.00, 27.00, 26.19, 25.65, 25.11, 24.30, 0, 16.00, 0.00, 1, 0, 0, 1, 36, 0, 0.00, 18.00, 6.00, 6.00, 1, NULL, 1),
    (37, 1, 5, '5006', 'Veladora de vaso', 1, 1, '39112604', '7501006000627', 0.00, 14.00, 22.00, 21.34, 20.90, 20.46, 19.80, 0, 16.00, 0.00, 1, 0, 0, 1, 37, 0, 0.00, 12.00, 4.00, 4.00, 1, NULL, 1),
    (38, 1, 5, '5007', 'Cerillos de madera 10 cajas', 5, 1, '31201608', '7501006000795', 15.00, 12.00, 18.00, 17.46, 17.10, 16.74, 16.20, 0, 16.00, 0.00, 1, 0, 0, 1, 38, 0, 0.00, 20.00, 5.00, 5.00, 1, NULL, 1),
    (39, 1, 5, '5008', 'Pilas alcalinas AA 4 piezas', 5, 1, '26111702', '7501006000863', 10.00, 45.00, 65.00, 63.05, 61.75, 60.45, 58.50, 0, 16.00, 0.00, 1, 0, 0, 1, 39, 0, 0.00, 15.00, 4.00, 4.00, 1, NULL, 1),
    (40, 1, 4, '4004', 'Queso Oaxaca a granel', 2, 1, '50131800', '2000004000448', 8.50, 120.00, 165.00, 160.05, 156.75, 153.45, 148.50, 0, 0.00, 0.00, 1, 0, 1, 1, 40, 0, 0.00, 15.00, 3.00, 3.00, 1, NULL, 1),
    (41, 1, 4, '4005', 'Jamón de pavo a granel', 2, 1, '50112004', '2000004000516', 6.20, 95.00, 139.00, 134.83, 132.05, 129.27, 125.10, 0, 0.00, 0.00, 1, 0, 1, 1, 41, 0, 0.00, 10.00, 2.00, 2.00, 1, NULL, 1),
    (42, 1, 1, '4006', 'Tortillas de maíz', 2, 1, '50221300', '2000004000684', 30.00, 18.00, 24.00, 23.28, 22.80, 22.32, 21.60, 0, 0.00, 0.00, 1, 0, 1, 1, 42, 0, 0.00, 40.00, 10.00, 10.00, 1, NULL, 1),
    (43, 1, 12, '9001', 'Recarga de tiempo aire', 6, 1, '81161700', '2000009000184', 0.00, 48.00, 50.00, 48.50, 47.50, 46.50, 45.00, 1, 16.00, 0.00, 0, 0, 0, 1, 43, 0, 0.00, 0.00, 0.00, 0.00, 1, NULL, 1),
    (44, 1, 11, 'PAQ01', 'Paquete despensa básica', 5, 1, '01010101', '2900000000131', 0.00, 135.50, 185.00, 179.45, 175.75, 172.05, 166.50, 0, 0.00, 0.00, 0, 1, 0, 1, 44, 0, 0.00, 0.00, 0.00, 0.00, 1, NULL, 1),
    (45, 1, 11, 'PAQ02', 'Paquete botana y refresco', 5, 1, '01010101', '2900000000209', 0.00, 58.00, 75.00, 72.75, 71.25, 69.75, 67.50, 0, 16.00, 0.00, 0, 1, 0, 1, 45, 0, 0.00, 0.00, 0.00, 0.00, 1, NULL, 1),
    (101, 2, 21, 'E01', 'Guacamole con totopos', 15, 3, '90101501', '2100000000012', 30.00, 28.00, 95.00, 92.15, 90.25, 88.35, 85.50, 0, 16.00, 0.00, 1, 0, 0, 1, 1, 0, 0.00, 45.00, 9.00, 9.00, 1, 4, 1),
    (102, 2, 21, 'E02', 'Queso fundido con chorizo', 15, 3, '90101501', '2100000000029', 25.00, 35.00, 115.00, 111.55, 109.25, 106.95, 103.50, 0, 16.00, 0.00, 1, 0, 0, 1, 2, 0, 0.00, 37.50, 7.50, 7.50, 1, 4, 1),
    (103, 2, 21, 'E03', 'Sopa de tortilla', 15, 3, '90101501', '2100000000036', 40.00, 18.00, 79.00, 76.63, 75.05, 73.47, 71.10, 0, 16.00, 0.00, 1, 0, 0, 1, 3, 0, 0.00, 60.00, 12.00, 12.00, 1, 4, 1),
    (104, 2, 21, 'E04', 'Caldo tlalpeño', 15, 3, '90101501', '2100000000043', 30.00, 24.00, 89.00, 86.33, 84.55, 82.77, 80.10, 0, 16.00, 0.00, 1, 0, 0, 1, 4, 0, 0.00, 45.00, 9.00, 9.00, 1, 4, 1),
    (105, 2, 21, 'E05', 'Chalupas poblanas (orden de 6)', 15, 3, '90101501', '2100000000050', 40.00, 20.00, 85.00, 82.45, 80.75, 79.05, 76.50, 0, 16.00, 0.00, 1, 0, 0, 1, 5, 0, 0.00, 60.00, 12.00, 12.00, 1, 4, 1),
    (106, 2, 22, 'F01', 'Mole poblano con pollo', 15, 3, '90101501', '2100000000067', 35.00, 52.00, 165.00, 160.05, 156.75, 153.45, 148.50, 0, 16.00, 0.00, 1, 0, 0, 1, 6, 1, 3.00, 52.50, 10.50, 10.50, 1, 4, 1),
    (107, 2, 22, 'F02', 'Chile relleno de queso', 15, 3, '90101501', '2100000000074', 25.00, 40.00, 145.00, 140.65, 137.75, 134.85, 130.50, 0, 16.00, 0.00, 1, 0, 0, 1, 7, 0, 0.00, 37.50, 7.50, 7.50, 1, 4, 1),
    (108, 2, 22, 'F03', 'Enchiladas verdes de pollo', 15, 3, '90101501', '2100000000081', 40.00, 34.00, 135.00, 130.95, 128.25, 125.55, 121.50, 0, 16.00, 0.00, 1, 0, 0, 1, 8, 0, 0.00, 60.00, 12.00, 12.00, 1, 4, 1),
    (109, 2, 22, 'F04', 'Enchiladas suizas', 15, 3, '90101501', '2100000000098', 35.00, 38.00, 145.00, 140.65, 137.75, 134.85, 130.50, 0, 16.00, 0.00, 1, 0, 0, 1, 9, 0, 0.00, 52.50, 10.50, 10.50, 1, 4, 1),
    (110, 2, 22, 'F05', 'Cochinita pibil', 15, 3, '90101501', '2100000000104', 25.00, 45.00, 155.00, 150.35, 147.25, 144.15, 139.50, 0, 16.00, 0.00, 1, 0, 0, 1, 10, 0, 0.00, 37.50, 7.50, 7.50, 1, 4, 1),
    (111, 2, 22, 'F06', 'Arrachera con guarnición', 15, 3, '90101501', '2100000000111', 20.00, 110.00, 265.00, 257.05, 251.75, 246.45, 238.50, 0, 16.00, 0.00, 1, 0, 0, 1, 11, 1, 3.00, 30.00, 6.00, 6.00, 1, 4, 1),
    (112, 2, 22, 'F07', 'Pechuga de pollo a la plancha', 15, 3, '90101501', '2100000000128', 25.00, 48.00, 165.00, 160.05, 156.75, 153.45, 148.50, 0, 16.00, 0.00, 1, 0, 0, 1, 12, 0, 0.00, 37.50, 7.50, 7.50, 1, 4, 1),
    (113, 2, 22, 'F08', 'Pozole rojo grande', 15, 3, '90101501', '2100000000135', 30.00, 35.00, 135.00, 130.95, 128.25, 125.55, 121.50, 0, 16.00, 0.00, 1, 0, 0, 1, 13, 0, 0.00, 45.00, 9.00, 9.00, 1, 4, 1),
    (114, 2, 23, 'T01', 'Tacos al pastor (orden de 5)', 15, 3, '90101501', '2100000000142', 60.00, 30.00, 95.00, 92.15, 90.25, 88.35, 85.50, 0, 16.00, 0.00, 1, 0, 0, 1, 14, 0, 0.00, 90.00, 18.00, 18.00, 1, 4, 1),
    (115, 2, 23, 'T02', 'Tacos de suadero (orden de 5)', 15, 3, '90101501', '2100000000159', 50.00, 32.00, 99.00, 96.03, 94.05, 92.07, 89.10, 0, 16.00, 0.00, 1, 0, 0, 1, 15, 0, 0.00, 75.00, 15.00, 15.00, 1, 4, 1),
    (116, 2, 23, 'T03', 'Tacos de bistec (orden de 5)', 15, 3, '90101501', '2100000000166', 50.00, 36.00, 105.00, 101.85, 99.75, 97.65, 94.50, 0, 16.00, 0.00, 1, 0, 0, 1, 16, 0, 0.00, 75.00, 15.00, 15.00, 1, 4, 1),
    (117, 2, 23, 'T04', 'Gringa al pastor', 11, 3, '90101501', '2100000000173', 40.00, 26.00, 85.00, 82.45, 80.75, 79.05, 76.50, 0, 16.00, 0.00, 1, 0, 0, 1, 17, 0, 0.00, 60.00, 12.00, 12.00, 1, 4, 1),
    (118, 2, 23, 'T05', 'Quesadilla de flor de calabaza', 11, 3, '90101501', '2100000000180', 40.00, 15.00, 55.00, 53.35, 52.25, 51.15, 49.50, 0, 16.00, 0.00, 1, 0, 0, 1, 18, 0, 0.00, 60.00, 12.00, 12.00, 1, 4, 1),
    (119, 2, 23, 'T06', 'Molotes de tinga (orden de 4)', 15, 3, '90101501', '2100000000197', 30.00, 20.00, 75.00, 72.75, 71.25, 69.75, 67.50, 0, 16.00, 0.00, 1, 0, 0, 1, 19, 0, 0.00, 45.00, 9.00, 9.00, 1, 4, 1),
    (120, 2, 25, 'B01', 'Agua fresca de horchata 500 ml', 11, 3, '90101501', '2100000000203', 0.00, 8.00, 38.00, 36.86, 36.10, 35.34, 34.20, 0, 16.00, 0.00, 0, 0, 0, 1, 20, 0, 0.00, 0.00, 0.00, 0.00, 1, 5, 1),
    (121, 2, 25, 'B02', 'Agua fresca de jamaica 500 ml', 11, 3, '90101501', '2100000000210', 0.00, 7.00, 38.00, 36.86, 36.10, 35.34, 34.20, 0, 16.00, 0.00, 0, 0, 0, 1, 21, 0, 0.00, 0.00, 0.00, 0.00, 1, 5, 1),
    (122, 2, 25, 'B03', 'Limonada natural 500 ml', 11, 3, '90101501', '2100000000227', 0.00, 8.00, 42.00, 40.74, 39.90, 39.06, 37.80, 0, 16.00, 0.00, 0, 0, 0, 1, 22, 0, 0.00, 0.00, 0.00, 0.00, 1, 5, 1),
    (123, 2, 25, 'B04', 'Refresco de cola 355 ml', 11, 3, '50202306', '7501055000579', 120.00, 11.00, 38.00, 36.86, 36.10, 35.34, 34.20, 0, 16.00, 0.00, 1, 0, 0, 1, 23, 0, 0.00, 180.00, 36.00, 36.00, 1, 5, 1),
    (124, 2, 25, 'B05', 'Refresco de toronja 355 ml', 11, 3, '50202306', '7501055000647', 72.00, 11.00, 38.00, 36.86, 36.10, 35.34, 34.20, 0, 16.00, 0.00, 1, 0, 0, 1, 24, 0, 0.00, 108.00, 21.60, 21.60, 1, 5, 1),
    (125, 2, 25, 'B06', 'Agua mineral 355 ml', 11, 3, '50202303', '7501031000500', 96.00, 9.00, 35.00, 33.95, 33.25, 32.55, 31.50, 0, 16.00, 0.00, 1, 0, 0, 1, 25, 0, 0.00, 144.00, 28.80, 28.80, 1, 5, 1),
    (126, 2, 25, 'B07', 'Agua natural embotellada 600 ml', 11, 3, '50202301', '7501031000678', 96.00, 6.00, 28.00, 27.16, 26.60, 26.04, 25.20, 0, 16.00, 0.00, 1, 0, 0, 1, 26, 0, 0.00, 144.00, 28.80, 28.80, 1, 5, 1),
    (127, 2, 26, 'C01', 'Café de olla', 11, 3, '90101501', '2100000000272', 0.00, 5.00, 35.00, 33.95, 33.25, 32.55, 31.50, 0, 16.00, 0.00, 0, 0, 0, 1, 27, 0, 0.00, 0.00, 0.00, 0.00, 1, 5, 1),
    (128, 2, 26, 'C02', 'Café americano', 11, 3, '90101501', '2100000000289', 0.00, 6.00, 38.00, 36.86, 36.10, 35.34, 34.20, 0, 16.00, 0.00, 0, 0, 0, 1, 28, 0, 0.00, 0.00, 0.00, 0.00, 1, 5, 1),
    (129, 2, 26, 'C03', 'Chocolate caliente', 11, 3, '90101501', '2100000000296', 0.00, 9.00, 48.00, 46.56, 45.60, 44.64, 43.20, 0, 16.00, 0.00, 0, 0, 0, 1, 29, 0, 0.00, 0.00, 0.00, 0.00, 1, 5, 1),
    (130, 2, 26, 'C04', 'Té de manzanilla', 11, 3, '90101501', '2100000000302', 0.00, 4.00, 30.00, 29.10, 28.50, 27.90, 27.00, 0, 16.00, 0.00, 0, 0, 0, 1, 30, 0, 0.00, 0.00, 0.00, 0.00, 1, 5, 1),
    (131, 2, 27, 'V01', 'Cerveza clara 355 ml', 11, 3, '50202203', '7501064000119', 144.00, 17.00, 45.00, 43.65, 42.75, 41.85, 40.50, 0, 16.00, 0.00, 1, 0, 0, 1, 31, 0, 0.00, 216.00, 43.20, 43.20, 1, 5, 1),
    (132, 2, 27, 'V02', 'Cerveza oscura 355 ml', 11, 3, '50202203', '7501064000287', 96.00, 19.00, 48.00, 46.56, 45.60, 44.64, 43.20, 0, 16.00, 0.00, 1, 0, 0, 1, 32, 0, 0.00, 144.00, 28.80, 28.80, 1, 5, 1),
    (133, 2, 28, 'D01', 'Flan napolitano', 11, 3, '90101501', '2100000000333', 20.00, 14.00, 55.00, 53.35, 52.25, 51.15, 49.50, 0, 16.00, 0.00, 1, 0, 0, 1, 33, 0, 0.00, 30.00, 6.00, 6.00, 1, 4, 1),
    (134, 2, 28, 'D02', 'Pastel de tres leches', 11, 3, '90101501', '2100000000340', 16.00, 18.00, 65.00, 63.05, 61.75, 60.45, 58.50, 0, 16.00, 0.00, 1, 0, 0, 1, 34, 0, 0.00, 24.00, 4.80, 4.80, 1, 4, 1),
    (135, 2, 28, 'D03', 'Churros con cajeta (3 piezas)', 15, 3, '90101501', '2100000000357', 30.00, 12.00, 55.00, 53.35, 52.25, 51.15, 49.50, 0, 16.00, 0.00, 1, 0, 0, 1, 35, 0, 0.00, 45.00, 9.00, 9.00, 1, 4, 1),
    (136, 2, 28, 'D04', 'Arroz con leche', 11, 3, '90101501', '2100000000364', 15.00, 9.00, 45.00, 43.65, 42.75, 41.85, 40.50, 0, 16.00, 0.00, 1, 0, 0, 1, 36, 0, 0.00, 22.50, 4.50, 4.50, 1, 4, 1),
    (137, 2, 28, 'D05', 'Tortitas de Santa Clara (4 piezas)', 15, 3, '90101501', '2100000000371', 24.00, 12.00, 50.00, 48.50, 47.50, 46.50, 45.00, 0, 16.00, 0.00, 1, 0, 0, 1, 37, 0, 0.00, 36.00, 7.20, 7.20, 1, 4, 1),
    (138, 2, 27, 'V03', 'Michelada 355 ml', 11, 3, '90101501', '2100000003839', 0.00, 20.00, 65.00, 63.05, 61.75, 60.45, 58.50, 0, 16.00, 0.00, 0, 1, 0, 1, 38, 0, 0.00, 0.00, 0.00, 0.00, 1, 5, 1),
    (139, 2, 29, 'K01', 'Combo taquero', 16, 3, '01010101', '2900000000377', 0.00, 38.00, 119.00, 115.43, 113.05, 110.67, 107.10, 0, 16.00, 0.00, 0, 1, 0, 1, 39, 0, 0.00, 0.00, 0.00, 0.00, 1, 4, 1),
    (140, 2, 29, 'K02', 'Paquete familiar', 16, 3, '01010101', '2900000000445', 0.00, 148.00, 399.00, 387.03, 379.05, 371.07, 359.10, 0, 16.00, 0.00, 0, 1, 0, 1, 40, 0, 0.00, 0.00, 0.00, 0.00, 1, 4, 1);

-- ---------------------------------------------------------------------------------------------
-- Kits: componentes por clave
-- ---------------------------------------------------------------------------------------------

INSERT INTO ProductosPaquetes (id, empresaID, posicion, clave, cantidad, compuestoBase, seleccionado) VALUES
    (44, 1, 1, '1001', 1.00, 1, 1),
    (44, 1, 2, '1002', 1.00, 1, 1),
    (44, 1, 3, '1005', 1.00, 1, 1),
    (44, 1, 4, '1006', 1.00, 1, 1),
    (44, 1, 5, '1012', 3.00, 1, 1),
    (45, 1, 1, '2002', 1.00, 1, 1),
    (45, 1, 2, '3001', 2.00, 1, 1),
    (45, 1, 3, '3002', 1.00, 1, 1),
    (138, 2, 1, 'V01', 1.00, 1, 1),
    (139, 2, 1, 'T01', 1.00, 1, 1),
    (139, 2, 2, 'B01', 1.00, 1, 1),
    (140, 2, 1, 'T01', 2.00, 1, 1),
    (140, 2, 2, 'E05', 1.00, 1, 1),
    (140, 2, 3, 'B04', 4.00, 1, 1),
    (140, 2, 4, 'D03', 2.00, 1, 1);

-- ---------------------------------------------------------------------------------------------
-- Precios por volumen
-- ---------------------------------------------------------------------------------------------

INSERT INTO ProductosRangosPrecios (empresaID, productoID, rango, precioVenta) VALUES
    (1, 14, 12.00, 16.50),
    (1, 14, 24.00, 15.50),
    (1, 15, 6.00, 33.00),
    (1, 18, 12.00, 9.50),
    (1, 10, 12.00, 22.00),
    (1, 29, 12.00, 26.50),
    (1, 35, 10.00, 30.00),
    (2, 131, 6.00, 42.00),
    (2, 131, 12.00, 40.00),
    (2, 123, 12.00, 35.00);

-- ---------------------------------------------------------------------------------------------
-- Plantillas de impresión
-- ---------------------------------------------------------------------------------------------

-- Sin plantillas aquí: al iniciar sesión la estación da de alta, para la empresa que no las
-- tenga, las carpetas y plantillas predeterminadas (HTML con marcadores {{...}}) que viajan con
-- la aplicación, así la demostración imprime con lo mismo que una tienda nueva.
