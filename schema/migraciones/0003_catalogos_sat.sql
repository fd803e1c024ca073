-- Catálogos nacionales del SAT: toda instalación los necesita, con o sin demostración.

INSERT INTO Estados (id, estado, claveSAT) VALUES
    (1, 'Aguascalientes', 'AGU'),
    (2, 'Baja California', 'BCN'),
    (3, 'Baja California Sur', 'BCS'),
    (4, 'Campeche', 'CAM'),
    (5, 'Chiapas', 'CHP'),
    (6, 'Chihuahua', 'CHH'),
    (7, 'Ciudad de México', 'CMX'),
    (8, 'Coahuila', 'COA'),
    (9, 'Colima', 'COL'),
    (10, 'Durango', 'DUR'),
    (11, 'Guanajuato', 'GUA'),
    (12, 'Guerrero', 'GRO'),
    (13, 'Hidalgo', 'HID'),
    (14, 'Jalisco', 'JAL'),
    (15, 'Estado de México', 'MEX'),
    (16, 'Michoacán', 'MIC'),
    (17, 'Morelos', 'MOR'),
    (18, 'Nayarit', 'NAY'),
    (19, 'Nuevo León', 'NLE'),
    (20, 'Oaxaca', 'OAX'),
    (21, 'Puebla', 'PUE'),
    (22, 'Querétaro', 'QUE'),
    (23, 'Quintana Roo', 'ROO'),
    (24, 'San Luis Potosí', 'SLP'),
    (25, 'Sinaloa', 'SIN'),
    (26, 'Sonora', 'SON'),
    (27, 'Tabasco', 'TAB'),
    (28, 'Tamaulipas', 'TAM'),
    (29, 'Tlaxcala', 'TLA'),
    (30, 'Veracruz', 'VER'),
    (31, 'Yucatán', 'YUC'),
    (32, 'Zacatecas', 'ZAC');

INSERT INTO RegimenesFiscales (ID, claveSAT, descripcion) VALUES
    (1, '601', 'General de Ley Personas Morales'),
    (2, '603', 'Personas Morales con Fines no Lucrativos'),
    (3, '605', 'Sueldos y Salarios e Ingresos Asimilados a Salarios'),
    (4, '606', 'Arrendamiento'),
    (5, '612', 'Personas Físicas con Actividades Empresariales y Profesionales'),
    (6, '616', 'Sin obligaciones fiscales'),
    (7, '621', 'Incorporación Fiscal'),
    (8, '625', 'Régimen de las Actividades Empresariales con ingresos a través de Plataformas Tecnológicas'),
    (9, '626', 'Régimen Simplificado de Confianza');

INSERT INTO FEUsosComprobantes (ID, claveSAT, descripcion, personaFisica, personaMoral) VALUES
    (1, 'G01', 'Adquisición de mercancías', 1, 1),
    (2, 'G03', 'Gastos en general', 1, 1),
    (3, 'I04', 'Equipo de computo y accesorios', 1, 1),
    (4, 'D01', 'Honorarios médicos, dentales y gastos hospitalarios', 1, 0),
    (5, 'S01', 'Sin efectos fiscales', 1, 1),
    (6, 'CP01', 'Pagos', 1, 1);
