// La lista de documentos de compras contra el servicio real de demostración: filtra por clase,
// fechas, proveedor y folio; abre un documento con sus renglones y su bitácora, lo reimprime en
// PDF y lo cancela pidiendo el motivo.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include <QComboBox>
#include <QDateEdit>
#include <QLabel>
#include <QTableView>
#include <QTemporaryDir>

#include "datos/ModuloDatos.h"
#include "pantallas/Mensajes.h"
#include "purchasing/Compras.h"
#include "tests/fixtures/Toques.h"
#include "tests/purchasing/PdfCompras.h"

namespace cajaplex {
namespace {

using namespace prueba;

class DocumentosCompraTest : public ConPantallas {
protected:
    void SetUp() override {
        ConPantallas::SetUp();
        sesion_ = sesion(QStringLiteral("admin"), 1);
        sesion_.derechos =
            leeDerechosUsuario(ModuloDeDatos.ConexionBD, sesion_.UsuarioID, sesion_.perfilID);
    }

    std::unique_ptr<TComprasF> abre(const QString& carpeta = {}) {
        auto f = std::make_unique<TComprasF>(sesion_, carpeta);
        f->resize(1366, 768);
        f->show();
        esperaLeyenda(*f);
        Mensajes::ultimos();
        return f;
    }

    // Registra como la pantalla de compras; devuelve el folio.
    int64_t registra(TipoCompra tipo, int64_t proveedor, const char* clave, double cantidad) {
        DocumentoCompra d(ModuloDeDatos.ConexionBD, sesion_, tipo);
        d.abre();
        EXPECT_FALSE(d.agrega(QString::fromLatin1(clave)));
        EXPECT_FALSE(d.cambiaCantidad(0, cantidad));
        EncabezadoCompra e;
        e.proveedor = proveedor;
        e.moneda = 1;
        e.tipoCambio = QStringLiteral("1");
        e.plazoPago = QStringLiteral("0");
        e.formaPago = 1;
        return d.registra(e);
    }

    // Los folios de la lista, en su orden.
    static QStringList folios(const QWidget& f) {
        const QAbstractItemModel* m = control<QTableView>(f, "TablaCompras")->model();
        QStringList r;
        for (int i = 0; i < m->rowCount(); ++i)
            r << m->index(i, 0).data().toString();
        return r;
    }
    static void elige(const QWidget& f, const char* combo, const QString& texto) {
        auto* c = control<QComboBox>(f, combo);
        c->setCurrentIndex(c->findText(texto));
        esperaLeyenda(f);
    }
    static void abreRenglon(const QWidget& f, int fila) {
        control<QTableView>(f, "TablaCompras")->selectRow(fila);
        toca(f, "BotonAbrir");
    }
    static int renglonesDe(const QWidget& f, const char* tabla) {
        return control<QTableView>(f, tabla)->model()->rowCount();
    }

    Sesion sesion_;
};

TEST_F(DocumentosCompraTest, FiltraPorClaseFechasProveedorYFolio) {
    const int64_t antigua = registra(TipoCompra::Recepcion, 1, "1001", 2);
    const int64_t hoy1 = registra(TipoCompra::Recepcion, 2, "1002", 3);
    const int64_t hoy2 = registra(TipoCompra::Recepcion, 1, "1003", 1);
    registra(TipoCompra::Devolucion, 2, "1002", 1);
    c.exige("Update OrdenCompra Set fecha = datetime('now', 'localtime', '-10 days') Where folio "
            "= " +
            std::to_string(antigua));
    const QString f1 = QString::number(hoy1), f2 = QString::number(hoy2);

    auto f = abre();
    // Recepciones de hoy, la más reciente primero.
    EXPECT_EQ(folios(*f), (QStringList{f2, f1}));
    control<QDateEdit>(*f, "DesdeCompras")->setDate(QDate::currentDate().addDays(-15));
    toca(*f, "BotonBuscar");
    EXPECT_EQ(folios(*f), (QStringList{f2, f1, QString::number(antigua)}));
    elige(*f, "ProveedorCompras", QStringLiteral("Distribuidora de Abarrotes de Occidente"));
    EXPECT_EQ(folios(*f), (QStringList{f2, QString::number(antigua)}));
    EXPECT_TRUE(rotulo(*f, "ResumenCompras").startsWith(QStringLiteral("2 documentos")));

    // El folio se busca en cualquier fecha.
    elige(*f, "ProveedorCompras", QStringLiteral("TODOS LOS PROVEEDORES"));
    control<QDateEdit>(*f, "DesdeCompras")->setDate(QDate::currentDate());
    enter(*f, "FolioCompra", QString::number(antigua));
    EXPECT_EQ(folios(*f), QStringList{QString::number(antigua)});
    enter(*f, "FolioCompra", QString());
    elige(*f, "TipoDocumento", QStringLiteral("Devoluciones de Mercancía"));
    EXPECT_EQ(folios(*f), QStringList{QStringLiteral("1")});
    elige(*f, "TipoDocumento", QStringLiteral("Ajustes de Inventario"));
    EXPECT_TRUE(folios(*f).isEmpty());

    // Fechas al revés: se avisa y la lista se queda como estaba.
    control<QDateEdit>(*f, "HastaCompras")->setDate(QDate::currentDate().addDays(-1));
    toca(*f, "BotonBuscar");
    EXPECT_EQ(Mensajes::ultimos(),
              QStringList{QStringLiteral("La Fecha Inicial debe ser anterior a la Fecha Final")});
}

TEST_F(DocumentosCompraTest, AbreReimprimeYCancelaConMotivo) {
    QTemporaryDir carpeta;
    preparaPlantillasLocales(carpeta, sesion_);

    const int64_t folio = registra(TipoCompra::Recepcion, 2, "2002", 3);
    const double antes = datos.existencia(1, "2002");
    auto f = abre(carpeta.path());
    abreRenglon(*f, 0);
    EXPECT_EQ(f->folioAbierto(), folio);
    EXPECT_EQ(rotulo(*f, "TituloDocumento"),
              QStringLiteral("Recepción de Mercancía %1").arg(folio));
    EXPECT_EQ(rotulo(*f, "ProveedorDocumento"), QStringLiteral("Bebidas y Refrescos del Centro"));
    EXPECT_EQ(renglonesDe(*f, "RenglonesDocumento"), 1);
    EXPECT_EQ(renglonesDe(*f, "BitacoraDocumento"), 1);

    // Reimpresión en PDF con la plantilla "Compras".
    toca(*f, "BotonPdf");
    const QString texto = textoPdfLocal(carpeta);
    for (const QString& esperado :
         {QStringLiteral("RECEPCIÓNDEMERCANCÍA"), QStringLiteral("Folio:%1").arg(folio),
          QStringLiteral("Refrescodecola2L"), QStringLiteral("Mercancíarecibida")})
        EXPECT_TRUE(texto.contains(esperado)) << esperado.toStdString();

    // Cancelar: pregunta, pide el motivo (vacío no) y avisa.
    Mensajes::respondeSiguiente(cajaplex::Respuesta::Si);
    Mensajes::respondeTexto(QStringLiteral("  "));
    toca(*f, "BotonCancelarDocumento");
    EXPECT_EQ(Mensajes::ultimos().last(),
              QStringLiteral("Debe Indicar el Motivo de la Cancelación"));
    EXPECT_DOUBLE_EQ(datos.existencia(1, "2002"), antes);
    Mensajes::respondeSiguiente(cajaplex::Respuesta::Si);
    Mensajes::respondeTexto(QStringLiteral("Llegó dañado"));
    toca(*f, "BotonCancelarDocumento");
    EXPECT_EQ(Mensajes::ultimos().last(),
              QStringLiteral("Documento Cancelado: Recepción de Mercancía %1").arg(folio));
    EXPECT_DOUBLE_EQ(datos.existencia(1, "2002"), antes - 3);
    EXPECT_EQ(rotulo(*f, "EstadoDocumento"), QStringLiteral("CANCELADO"));
    EXPECT_TRUE(rotulo(*f, "CondicionDocumento").endsWith(QStringLiteral("Llegó dañado")));
    EXPECT_EQ(renglonesDe(*f, "BitacoraDocumento"), 2);
    EXPECT_FALSE(control<QPushButton>(*f, "BotonCancelarDocumento")->isEnabled());
    const QAbstractItemModel* lista = control<QTableView>(*f, "TablaCompras")->model();
    EXPECT_EQ(lista->index(0, 5).data().toString(), QStringLiteral("CANCELADO"));
    EXPECT_TRUE(rotulo(*f, "ResumenCompras").contains(QStringLiteral("1 cancelados")));
}

} // namespace
} // namespace cajaplex
