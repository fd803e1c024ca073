// La pantalla de compras contra el servicio real de demostración: cada clase registrada una vez
// con su folio y su movimiento de existencias, las revisiones de "Finalizar Transacción" en su
// orden, el crédito del proveedor al centavo, la recepción de una orden abierta y el registro que
// falla a la mitad sin dejar nada.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include <QComboBox>
#include <QLineEdit>
#include <QTableView>
#include <QTemporaryDir>
#include <QTreeWidget>

#include "catalog/CatalogoProductos.h"
#include "datos/MensajesComunes.h"
#include "datos/ModuloDatos.h"
#include "pantallas/Mensajes.h"
#include "purchasing/ComprasModulosDiversos.h"
#include "tests/fixtures/Toques.h"
#include "tests/purchasing/PdfCompras.h"

namespace cajaplex {
namespace {

using namespace prueba;

const QString kOperacion = QStringLiteral("Seleccione el Tipo de Operación");

class ComprasTest : public ConPantallas {
protected:
    std::unique_ptr<TComprasModulosDiversosF>
    abre(const QString& usuario = QStringLiteral("admin")) {
        sesion_ = sesion(usuario, 1);
        sesion_.derechos =
            leeDerechosUsuario(ModuloDeDatos.ConexionBD, sesion_.UsuarioID, sesion_.perfilID);
        auto f = std::make_unique<TComprasModulosDiversosF>(sesion_);
        f->resize(1280, 800);
        f->show();
        esperaLeyenda(*f);
        Mensajes::ultimos();
        return f;
    }

    static void tipo(const QWidget& f, TipoCompra t) {
        control<QComboBox>(f, "TipoDocumento")->setCurrentIndex(static_cast<int>(t));
    }
    static void elige(const QWidget& f, const char* combo, const QString& texto) {
        auto* c = control<QComboBox>(f, combo);
        c->setCurrentIndex(c->findText(texto));
    }
    // Agrega la clave y le pone cantidad (y costo, si se da) al renglón recién agregado.
    static void renglon(const QWidget& f, const char* clave, double cantidad, double costo = -1) {
        enter(f, "ClaveProducto", QString::fromUtf8(clave));
        Mensajes::respondeDecimal(cantidad);
        toca(f, "BotonCantidad");
        if (costo >= 0) {
            Mensajes::respondeDecimal(costo);
            toca(f, "BotonCosto");
        }
    }
    // Finaliza con "Almacenar Únicamente"; devuelve lo mostrado sin la pregunta de la operación.
    static QStringList finaliza(const QWidget& f) {
        Mensajes::ultimos();
        Mensajes::respondeOpcion(2);
        toca(f, "BotonFinalizar");
        esperaLeyenda(f);
        QStringList mostrados = Mensajes::ultimos();
        // Un rechazo deja sin usar la respuesta a la pregunta de la operación.
        EXPECT_EQ(mostrados.contains(kOperacion), Mensajes::respuestasPendientes() == 0);
        Mensajes::modoPrueba(true);
        mostrados.removeAll(kOperacion);
        return mostrados;
    }
    static int renglones(const QWidget& f) {
        return control<QTableView>(f, "TransaccionDetalles")->model()->rowCount();
    }

    std::string valor(const std::string& sql) { return c.valor(sql).dump(); }
    Sesion sesion_;
};

TEST_F(ComprasTest, CadaClaseSeRegistraConSuFolioSuBitacoraYSuMovimiento) {
    struct Caso {
        TipoCompra tipo;
        bool entrada;
        const char* contador;
        const char* tabla;
        const char* modulo;
        double cambio;
    };
    const Caso casos[] = {
        {TipoCompra::OrdenCompra, true, "folioOC", "Requisicion", "Compras -> Órden de Compra", 0},
        {TipoCompra::Recepcion, true, "folioRM", "OrdenCompra", "Recepción de Mercancía", 5},
        {TipoCompra::Devolucion, true, "folioDevolucionOC", "DevolucionOrdenCompra",
         "Devolución de Mercancía", -5},
        {TipoCompra::Ajuste, true, "folioAjustes", "AjusteProductos", "Ajustes", 5},
        {TipoCompra::Ajuste, false, "folioAjustes", "AjusteProductos", "Ajustes", -5},
    };
    const long long otraEmpresa = datos.contador(2, "folioRM");
    auto f = abre();
    for (const Caso& caso : casos) {
        SCOPED_TRACE(caso.tabla);
        const long long folio = datos.contador(1, caso.contador);
        const double antes = datos.existencia(1, "1001");
        tipo(*f, caso.tipo);
        elige(*f, "Proveedor", QStringLiteral("Bebidas y Refrescos del Centro"));
        if (caso.tipo == TipoCompra::Ajuste)
            control<QPushButton>(*f, "AjusteEntrada")->setChecked(caso.entrada);
        renglon(*f, "1001", 5);
        EXPECT_TRUE(finaliza(*f).isEmpty());
        EXPECT_EQ(renglones(*f), 0);
        EXPECT_EQ(datos.contador(1, caso.contador), folio + 1);
        EXPECT_DOUBLE_EQ(datos.existencia(1, "1001"), antes + caso.cambio);
        EXPECT_EQ(valor("Select count(*) From " + std::string(caso.tabla) +
                        " Where empresaID = 1 and folio = " + std::to_string(folio)),
                  "1");
        EXPECT_EQ(valor("Select count(*) From AuditoriasSistema Where tipoAuditoria = "
                        "'Inserción' and moduloSistema = '" +
                        std::string(caso.modulo) + "' and datoNuevo = '" + std::to_string(folio) +
                        "'"),
                  "1");
    }
    // Arroz a 24.50 sin IVA, 5 piezas: el encabezado y el renglón de la recepción.
    EXPECT_EQ(valor("Select A.totalOrdenCompra || '|' || B.importe || '|' || B.posicion || '|' || "
                    "A.saldoPendiente || '|' || A.pagada From OrdenCompra A, OrdenCompraDetalle "
                    "B Where A.empresaID = 1 and B.empresaID = 1 and B.ordenCompra = A.folio"),
              "\"122.5|122.5|1|0.0|1\"");
    EXPECT_EQ(datos.contador(2, "folioRM"), otraEmpresa);
}

TEST_F(ComprasTest, RevisionesDeFinalizarEnSuOrdenYElAjusteNoPideProveedorNiMoneda) {
    const std::string recepciones = valor("Select count(*) From OrdenCompra");
    auto f = abre();
    tipo(*f, TipoCompra::Recepcion);
    enter(*f, "ClaveProducto", QStringLiteral("NO-EXISTE"));
    EXPECT_EQ(Mensajes::ultimos(),
              QStringList{QString::fromUtf8(MensajeProductoNoLocalizado) + "NO-EXISTE"});
    c.exige("Insert Into Productos (empresaID, clave, producto, pCompra, activo) Values "
            "(1, 'INACT', 'Inactivo', 10, 0)");
    enter(*f, "ClaveProducto", QStringLiteral("INACT"));
    EXPECT_EQ(Mensajes::ultimos(),
              QStringList{QString::fromUtf8(MensajeProductoNoLocalizado) + "INACT"});
    enter(*f, "ClaveProducto", QStringLiteral("zzz-nada"));
    Mensajes::ultimos();
    control<QLineEdit>(*f, "ClaveProducto")->setText(QStringLiteral("zzz-nada"));
    toca(*f, "BotonBuscar");
    EXPECT_EQ(Mensajes::ultimos(), QStringList{MensajeBusquedaVacia});

    renglon(*f, "1001", 2, 0);
    EXPECT_EQ(finaliza(*f), QStringList{MensajeCostoCero});
    Mensajes::respondeDecimal(20);
    toca(*f, "BotonCosto");
    control<QComboBox>(*f, "Proveedor")->setCurrentIndex(0);
    EXPECT_EQ(finaliza(*f), QStringList{MensajeSinProveedor});
    elige(*f, "Proveedor", QStringLiteral("Bebidas y Refrescos del Centro"));
    control<QComboBox>(*f, "Moneda")->setCurrentIndex(0);
    EXPECT_EQ(finaliza(*f), QStringList{MensajeSinMoneda});
    elige(*f, "Moneda", QStringLiteral("Peso Mexicano"));
    escribe(*f, "TipoCambio", QString());
    EXPECT_EQ(finaliza(*f), QStringList{MensajeSinTipoCambio});
    escribe(*f, "TipoCambio", QStringLiteral("0"));
    EXPECT_EQ(finaliza(*f), QStringList{MensajeTipoCambioCero});
    escribe(*f, "TipoCambio", QStringLiteral("1"));
    escribe(*f, "PlazoPago", QString());
    EXPECT_EQ(finaliza(*f), QStringList{MensajeSinDiasPago});
    escribe(*f, "PlazoPago", QStringLiteral("0"));
    control<QComboBox>(*f, "FormaPago")->setCurrentIndex(0);
    EXPECT_EQ(finaliza(*f), QStringList{MensajeSinFormaPago});
    EXPECT_EQ(valor("Select count(*) From OrdenCompra"), recepciones);
    EXPECT_EQ(renglones(*f), 1);

    // Sin renglones la clase se puede cambiar; el ajuste se registra sin proveedor ni moneda.
    toca(*f, "BotonEliminar");
    tipo(*f, TipoCompra::Ajuste);
    control<QComboBox>(*f, "Proveedor")->setCurrentIndex(0);
    control<QComboBox>(*f, "Moneda")->setCurrentIndex(0);
    escribe(*f, "TipoCambio", QString());
    renglon(*f, "1002", 3);
    EXPECT_TRUE(finaliza(*f).isEmpty());
    EXPECT_EQ(valor("Select count(*) From AjusteProductosDetalle A, AjusteProductos B Where "
                    "A.id = B.ID and A.clave = '1002' and A.cantidad = 3"),
              "1");
}

TEST_F(ComprasTest, LaCompraACreditoIgualAlDisponiblePasaYUnCentavoMasNo) {
    // Límite 15,000 con 5,000 pendientes (en dólares a 17.05 no: en pesos, tipo de cambio 1).
    c.exige("Insert Into Productos (empresaID, clave, producto, pCompra, porcentajeImpuesto, "
            "activo, manejaInventarios) Values (1, 'CAJA', 'Caja de cartón', 1000, 0, 1, 1)");
    c.exige("Insert Into OrdenCompra (empresaID, folio, proveedor, cancelada, pagada, "
            "saldoPendiente, tipoCambio) Values (1, 900, 3, 0, 0, 5000, 1)");
    auto f = abre();
    tipo(*f, TipoCompra::Recepcion);
    elige(*f, "Proveedor", QStringLiteral("Productos de Limpieza Tapatíos"));
    escribe(*f, "PlazoPago", QStringLiteral("30"));
    renglon(*f, "CAJA", 10, 1000.001);
    EXPECT_EQ(finaliza(*f), QStringList{QStringLiteral("El límite de crédito es: 15000.00")});
    Mensajes::respondeDecimal(1000);
    toca(*f, "BotonCosto");
    EXPECT_TRUE(finaliza(*f).isEmpty());
    EXPECT_EQ(valor("Select saldoPendiente || '|' || pagada || '|' || plazoPago From OrdenCompra "
                    "Where empresaID = 1 and proveedor = 3 and folio <> 900"),
              "\"10000.0|0|30\"");
}

TEST_F(ComprasTest, LaOrdenRecibidaSeConsolidaYYaNoEstaEntreLasAbiertas) {
    auto f = abre();
    elige(*f, "Proveedor", QStringLiteral("Bebidas y Refrescos del Centro"));
    renglon(*f, "1003", 4, 28.5);
    ASSERT_TRUE(finaliza(*f).isEmpty());
    const std::string folio = valor("Select max(folio) From Requisicion Where empresaID = 1");

    tipo(*f, TipoCompra::Recepcion);
    control<QComboBox>(*f, "Proveedor")->setCurrentIndex(0);
    Mensajes::respondeOpcion(0);
    toca(*f, "BotonOrdenes");
    EXPECT_EQ(control<QComboBox>(*f, "Proveedor")->currentText(), "Bebidas y Refrescos del Centro");
    ASSERT_EQ(renglones(*f), 1);
    const double antes = datos.existencia(1, "1003");
    EXPECT_TRUE(finaliza(*f).isEmpty());
    EXPECT_DOUBLE_EQ(datos.existencia(1, "1003"), antes + 4);
    EXPECT_EQ(valor("Select consolidada From Requisicion Where empresaID = 1 and folio = " + folio),
              "1");
    EXPECT_EQ(valor("Select costo || '|' || cantidad From OrdenCompraDetalle Where clave = '1003'"),
              "\"28.5|4.0\"");
    Mensajes::ultimos();
    toca(*f, "BotonOrdenes");
    EXPECT_EQ(Mensajes::ultimos(), QStringList{MensajeSinOrdenes});
}

TEST_F(ComprasTest, ElDescuentoGlobalPideElDerechoYLosTotalesSiguenLaAritmeticaDeLaVenta) {
    auto f = abre(QStringLiteral("cajero"));
    renglon(*f, "2001", 10);
    Mensajes::ultimos();
    Mensajes::respondeDecimal(10);
    toca(*f, "BotonDescuentoGlobal");
    EXPECT_EQ(Mensajes::ultimos(),
              (QStringList{"Escriba el Porcentaje de Descuento", MensajeSinPermisoDescuento}));
    // Salir con renglones pregunta; cancelar deja la pantalla como estaba.
    Mensajes::respondeSiguiente(cajaplex::Respuesta::Cancelar);
    f->close();
    EXPECT_TRUE(f->isVisible());
    EXPECT_TRUE(Mensajes::ultimos().value(0).startsWith("Transacción Incompleta"));

    auto g = abre();
    elige(*g, "Proveedor", QStringLiteral("Bebidas y Refrescos del Centro"));
    renglon(*g, "2001", 10, 12.8); // con IVA del 16 %
    renglon(*g, "1001", 2);        // sin IVA
    Mensajes::respondeDecimal(10);
    toca(*g, "BotonDescuentoGlobal");
    ASSERT_TRUE(finaliza(*g).isEmpty());
    EXPECT_EQ(valor("Select subtotalRequisicion || '|' || ivaRequisicion || '|' || "
                    "totalRequisicion From Requisicion Where empresaID = 1"),
              "\"159.3|18.43|177.73\"");
    EXPECT_EQ(valor("Select group_concat(clave || ':' || descuento || ':' || importe, ' ') From "
                    "(Select * From RequisicionDetalle Order By posicion)"),
              "\"2001:10.0:115.2 1001:10.0:44.1\"");
}

TEST_F(ComprasTest, LaReposicionLlenaLoQueFaltaConMaximoMenosExistencia) {
    auto f = abre();
    auto repone = [&](int opcion) {
        Mensajes::ultimos();
        if (opcion >= 0) Mensajes::respondeOpcion(opcion);
        toca(*f, "BotonReposicion");
        return Mensajes::ultimos().mid(1); // sin la pregunta
    };
    EXPECT_EQ(repone(-1), QStringList{MensajeSinOpcionReposicion});
    EXPECT_TRUE(repone(static_cast<int>(Reposicion::Maximos)).isEmpty());
    const std::string faltantes =
        valor("Select count(*) || '|' || (Select clave || ':' || (maximo - existencia) From "
              "Productos Where empresaID = 1 and activo = 1 and maximo > existencia Order By "
              "producto Limit 1) From Productos Where empresaID = 1 and activo = 1 and maximo > 0 "
              "and maximo - existencia > 0");
    const auto& r = f->documento().TransaccionDetalles();
    ASSERT_FALSE(r.empty());
    EXPECT_EQ(faltantes, "\"" + std::to_string(r.size()) + "|" + r[0].clave.toStdString() + ":" +
                             QString::number(r[0].Cantidad, 'f', 1).toStdString() + "\"");

    // Todo sobre su mínimo: no hay qué reponer y los renglones se quedan.
    c.exige("Update Productos Set existencia = ifnull(minimo, 0) + 1 Where empresaID = 1");
    const size_t antes = r.size();
    EXPECT_EQ(repone(static_cast<int>(Reposicion::DebajoMinimo)),
              QStringList{MensajeSinReposicion});
    EXPECT_EQ(r.size(), antes);
    // Debajo del mínimo se pide hasta el máximo: arroz con mínimo 12 y máximo 60.
    c.exige("Update Productos Set existencia = 5 Where empresaID = 1 and clave = '1001'");
    EXPECT_TRUE(repone(static_cast<int>(Reposicion::DebajoMinimo)).isEmpty());
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(r[0].clave, "1001");
    EXPECT_DOUBLE_EQ(r[0].Cantidad, 55);
}

TEST_F(ComprasTest, LaRecepcionEnPdfLlevaTituloFolioProveedorYTotal) {
    QTemporaryDir carpeta;
    auto f = abre();
    preparaPlantillasLocales(carpeta, sesion_);
    f->ponCarpetaEstacion(carpeta.path());
    c.exige("Update ConfiguraImpresiones Set pieRM = 'Revise su mercancía' Where empresaID = 1");

    const long long folio = datos.contador(1, "folioRM");
    tipo(*f, TipoCompra::Recepcion);
    elige(*f, "Proveedor", QStringLiteral("Bebidas y Refrescos del Centro"));
    renglon(*f, "2002", 3, 25); // 75 + 16 % de IVA
    Mensajes::respondeOpcion(1);
    toca(*f, "BotonFinalizar");
    const QString texto = textoPdfLocal(carpeta);
    ASSERT_FALSE(texto.isEmpty());
    for (const QString& esperado :
         {QStringLiteral("RECEPCIÓN DE MERCANCÍA"), QStringLiteral("Folio: %1").arg(folio),
          QStringLiteral("Bebidas y Refrescos del Centro"), QStringLiteral("Refresco de cola 2 L"),
          QStringLiteral("$87.00"), QStringLiteral("Revise su mercancía")})
        EXPECT_TRUE(texto.contains(QString(esperado).remove(QLatin1Char(' '))))
            << esperado.toStdString() << "\n"
            << texto.toStdString();
    EXPECT_EQ(datos.contador(1, "folioRM"), folio + 1);
}

TEST_F(ComprasTest, ElProveedorProponeSusDiasDeCreditoYCotizaConSuModoDeIva) {
    // Limpieza cotiza con el IVA incluido; la empresa compra con el IVA desglosado.
    c.exige("Update Proveedores Set desglosaRM = 1 Where id = 3");
    auto f = abre();
    tipo(*f, TipoCompra::Recepcion);
    elige(*f, "Proveedor", QStringLiteral("Distribuidora de Abarrotes de Occidente"));
    EXPECT_EQ(control<QLineEdit>(*f, "PlazoPago")->text(), "30");
    elige(*f, "Proveedor", QStringLiteral("Bebidas y Refrescos del Centro"));
    EXPECT_EQ(control<QLineEdit>(*f, "PlazoPago")->text(), "0");
    renglon(*f, "2001", 1, 116); // con IVA del 16 %
    EXPECT_DOUBLE_EQ(f->documento().totales().total, 134.56);
    elige(*f, "Proveedor", QStringLiteral("Productos de Limpieza Tapatíos"));
    EXPECT_EQ(control<QLineEdit>(*f, "PlazoPago")->text(), "15");
    EXPECT_DOUBLE_EQ(f->documento().TransaccionDetalles()[0].Importe, 100);
    EXPECT_DOUBLE_EQ(f->documento().totales().total, 116);
    ASSERT_TRUE(finaliza(*f).isEmpty());
    EXPECT_EQ(valor("Select plazoPago || '|' || saldoPendiente || '|' || pagada || '|' || "
                    "totalOrdenCompra From OrdenCompra Where empresaID = 1 and proveedor = 3"),
              "\"15|116.0|0|116.0\"");
}

TEST_F(ComprasTest, ElArbolDeLineasAgregaLosProductosQueSeTocan) {
    auto f = abre();
    auto* arbol = control<QTreeWidget>(*f, "Lineas");
    const QList<QTreeWidgetItem*> refrescos =
        arbol->findItems(QStringLiteral("Refrescos"), Qt::MatchExactly | Qt::MatchRecursive);
    ASSERT_EQ(refrescos.size(), 1);
    arbol->scrollToItem(refrescos[0]);
    QTest::mouseClick(arbol->viewport(), Qt::LeftButton, {},
                      arbol->visualItemRect(refrescos[0]).center());
    esperaLeyenda(*f);
    EXPECT_EQ(rotulo(*f, "TituloDisponibles"), "Refrescos");
    const QStringList deLaLinea =
        prueba::renglones(*f, "ProductosDisponibles", ModeloProductos::RolClave);
    EXPECT_EQ(deLaLinea.size(), c.cuenta("Productos Where empresaID = 1 and linea = 9"));
    EXPECT_TRUE(deLaLinea.contains("2001") && deLaLinea.contains("2002"));
    tocaRenglon(*f, "ProductosDisponibles", ModeloProductos::RolClave, "2001");
    tocaRenglon(*f, "ProductosDisponibles", ModeloProductos::RolClave, "2002");
    const auto& r = f->documento().TransaccionDetalles();
    ASSERT_EQ(r.size(), 2u);
    EXPECT_EQ(r[0].clave, "2001");
    EXPECT_DOUBLE_EQ(r[0].PCompra, 12.8);
    EXPECT_EQ(r[1].posicion, 2);
    // La búsqueda del panel también lista lo que encuentra.
    enter(*f, "BuscarProducto", QStringLiteral("frijol"));
    EXPECT_EQ(prueba::renglones(*f, "ProductosDisponibles", ModeloProductos::RolClave).size(), 3);
}

// La bitácora (la última sentencia del lote) falla: no queda encabezado, renglón, folio ni
// movimiento, y los renglones siguen en pantalla.
TEST_F(ComprasTest, UnRegistroQueFallaALaMitadNoDejaNadaYConservaLosRenglones) {
    escribeConServicioDetenido("CREATE TRIGGER falla_bitacora BEFORE INSERT ON AuditoriasSistema "
                               "BEGIN SELECT RAISE(ABORT, 'falla inyectada'); END;");

    const long long folio = datos.contador(1, "folioRM");
    const double antes = datos.existencia(1, "1001");
    auto f = abre();
    tipo(*f, TipoCompra::Recepcion);
    elige(*f, "Proveedor", QStringLiteral("Bebidas y Refrescos del Centro"));
    renglon(*f, "1001", 6);
    const QStringList mostrados = finaliza(*f);
    ASSERT_EQ(mostrados.size(), 1);
    EXPECT_TRUE(mostrados[0].startsWith(QString::fromUtf8(MensajeErrorRegistro)));
    EXPECT_EQ(renglones(*f), 1);
    EXPECT_EQ(datos.contador(1, "folioRM"), folio);
    EXPECT_DOUBLE_EQ(datos.existencia(1, "1001"), antes);
    EXPECT_EQ(valor("Select (Select count(*) From OrdenCompra) + (Select count(*) From "
                    "OrdenCompraDetalle)"),
              "0");
}

} // namespace
} // namespace cajaplex
