// Bitácora del sistema: lo que escribe cada operación y su listado por rango de fechas, contra el
// servicio real de demostración.
#include <gtest/gtest.h>

#include <QDateEdit>
#include <QIcon>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QTest>

#include "datos/Auditoria.h"
#include "datos/ModuloDatos.h"
#include "datos/Transaccion.h"
#include "pantallas/Mensajes.h"
#include "pantallas/RolesRenglon.h"
#include "pantallas/Sonidos.h"
#include "security/Auditorias.h"
#include "tests/fixtures/PruebaPantallas.h"

namespace cajaplex {
namespace {

using namespace prueba;

const QString kRangoInvertido =
    QStringLiteral("La Fecha de Inicio debe ser igual o menor a la Fecha de Fin");
const QString kSinResultados = QStringLiteral("No hubo resultados con esa información");

class AuditoriasTest : public ConPantallas {
protected:
    // Renglón con fecha explícita, como lo dejaría la base en ese momento.
    void bitacora(long long empresa, long long usuario, const std::string& tipo,
                  const std::string& modulo, const std::string& fecha,
                  const std::string& dato = "dato") {
        c.exige("Insert Into AuditoriasSistema (empresaID, usuarioID, tipoAuditoria, "
                "moduloSistema, datoNuevo, comentarios, fechaOperacion) "
                "Values (:e, :u, :t, :m, :d, 'nota de ' || :d, :f)",
                {{"e", entero(empresa)},
                 {"u", entero(usuario)},
                 {"t", texto(tipo)},
                 {"m", texto(modulo)},
                 {"d", texto(dato)},
                 {"f", texto(fecha)}});
    }

    // Abre la pantalla de la sesión guardada (la pantalla solo guarda la referencia).
    std::unique_ptr<TAuditoriasF> abrePantalla(const std::string& usuario, long long empresa) {
        sesion_ = sesion(QString::fromStdString(usuario), empresa);
        auto f = std::make_unique<TAuditoriasF>(sesion_);
        f->resize(1024, 700);
        f->show();
        return f;
    }

    // Pone el rango, oprime "Mostrar Resultados" y espera a que termine la lectura.
    void muestra(const QWidget& f, QDate inicio, QDate fin) {
        Mensajes::ultimos();
        Sonidos::reproducidos();
        control<QDateEdit>(f, "FechaInicio")->setDate(inicio);
        control<QDateEdit>(f, "FechaFin")->setDate(fin);
        auto* boton = control<QPushButton>(f, "MostrarResultados");
        QTest::mouseClick(boton, Qt::LeftButton);
        EXPECT_TRUE(esperaHasta([&] { return boton->isEnabled(); }, 10000));
    }

    static QAbstractItemModel* modelo(const QWidget& f) {
        return control<QListView>(f, "ListaBitacoras")->model();
    }

    static QStringList columna(const QWidget& f, int rol) {
        QAbstractItemModel* m = modelo(f);
        QStringList valores;
        for (int i = 0; i < m->rowCount(); ++i)
            valores << m->index(i, 0).data(rol).toString();
        return valores;
    }

    static QString etiqueta(const QWidget& f, const char* nombre) {
        return control<QLabel>(f, nombre)->text();
    }

    Sesion sesion_;
};

TEST_F(AuditoriasTest, EscritorGuardaSesionYDatosSoloSiLaOperacionSeConfirma) {
    const Sesion cajero = sesion("cajero", 1);
    {
        Transaccion t(ModuloDeDatos.ConexionBD);
        Auditoria::registra(t, cajero,
                            {tipoAuditoria::Cancelacion, "Ventas -> Caja Chica", "Retiro 150",
                             "Retiro 100", "O'Brien pidió corregir"});
        t.confirma();
    }
    // La fecha la puso la base: es la de ahora.
    EXPECT_EQ(
        c.exige("Select tipoAuditoria, usuarioID, empresaID, datoAnterior, datoNuevo, "
                "comentarios, moduloSistema, abs(strftime('%s', fechaOperacion) - "
                "strftime('%s', 'now', 'localtime')) < 120 From AuditoriasSistema")
            .filas(),
        Json::array({Json::array({"Cancelación", cajero.UsuarioID, 1, "Retiro 100", "Retiro 150",
                                  "O'Brien pidió corregir", "Ventas -> Caja Chica", 1})}));

    // Revertida la operación, su bitácora se va con ella.
    {
        Transaccion t(ModuloDeDatos.ConexionBD);
        Auditoria::registra(t, cajero, {tipoAuditoria::Insercion, "Revertida", "x", {}, {}});
    }
    EXPECT_EQ(c.cuenta("AuditoriasSistema where moduloSistema = 'Revertida'"), 0);

    // En un lote viaja con las demás sentencias de la operación y devuelve su índice.
    const Sesion admin = sesion("admin", 2);
    Lote lote(ModuloDeDatos.ConexionBD);
    Consulta otra(QStringLiteral("Select 1 as uno"));
    lote.agrega(otra);
    EXPECT_EQ(Auditoria::agrega(lote, admin,
                                {tipoAuditoria::CorteCaja, "Ventas -> Corte", "Corte 7", {}, {}}),
              1u);
    lote.ejecuta();
    EXPECT_EQ(c.cuenta("AuditoriasSistema where moduloSistema = 'Ventas -> Corte' and "
                       "tipoAuditoria = 'Corte de Caja' and empresaID = 2 and usuarioID = :u",
                       {{"u", entero(admin.UsuarioID)}}),
              1);
}

TEST_F(AuditoriasTest, ListaLaEmpresaDeLaSesionPorModuloYHoraConLaImagenDeCadaTipo) {
    bitacora(1, 2, "Inserción", "Ventas -> Caja Chica", "2024-03-10 18:30:00", "Depósito <500>");
    bitacora(1, 1, "Actualización", "Catálogos -> Productos", "2024-03-11 09:15:00");
    bitacora(1, 2, "Cancelación", "Catálogos -> Productos", "2024-03-09 08:00:00");
    bitacora(1, 2, "Corte de Venta", "Ventas -> Caja Chica", "2024-03-10 07:45:00");
    bitacora(1, 1, "Corte de Caja", "Ventas -> Caja Chica", "2024-03-11 21:00:00");
    bitacora(1, 2, "Bonificación Puntos", "Ventas -> Monedero", "2024-03-10 12:00:00");
    bitacora(1, 1, "Traspaso", "Ventas -> Monedero", "2024-03-10 13:00:00");
    // Otra empresa, un usuario borrado y días fuera del rango no aparecen.
    bitacora(2, 1, "Inserción", "Ventas -> Comandas", "2024-03-10 10:00:00");
    bitacora(1, 3, "Inserción", "Catálogos -> Clientes", "2024-03-10 10:00:00");
    c.exige("Delete From Usuarios Where usuarioID = 3");
    bitacora(1, 2, "Inserción", "Catálogos -> Clientes", "2024-03-08 23:59:59");
    bitacora(1, 2, "Inserción", "Catálogos -> Clientes", "2024-03-12 00:00:00");

    auto f = abrePantalla("cajero", 1);
    EXPECT_EQ(f->windowTitle(), "Bitácoras del Sistema");
    EXPECT_EQ(control<QDateEdit>(*f, "FechaInicio")->date(), QDate::currentDate());
    EXPECT_EQ(control<QDateEdit>(*f, "FechaFin")->date(), QDate::currentDate());
    muestra(*f, QDate(2024, 3, 9), QDate(2024, 3, 11));

    EXPECT_EQ(columna(*f, TAuditoriasF::RolModulo),
              (QStringList{"Catálogos -> Productos", "Catálogos -> Productos",
                           "Ventas -> Caja Chica", "Ventas -> Caja Chica", "Ventas -> Caja Chica",
                           "Ventas -> Monedero", "Ventas -> Monedero"}));
    EXPECT_EQ(columna(*f, TAuditoriasF::RolTipo),
              (QStringList{"Cancelación", "Actualización", "Corte de Venta", "Inserción",
                           "Corte de Caja", "Bonificación Puntos", "Traspaso"}));
    EXPECT_EQ(columna(*f, TAuditoriasF::RolImagen),
              (QStringList{"Cancelacion", "Actualizacion", "CorteVenta", "Insercion", "CorteCaja",
                           "Bonificacion", ""}));
    EXPECT_EQ(etiqueta(*f, "TituloBitacoras"), "Bitácoras 09/03/2024 al 11/03/2024");
    EXPECT_EQ(etiqueta(*f, "PieBitacoras"), "Número de Registros: 7");
    EXPECT_EQ(Sonidos::reproducidos(), QList<Sonido>{Sonido::MostrarResultados});
    EXPECT_TRUE(Mensajes::ultimos().isEmpty());

    // El renglón muestra módulo y fecha arriba; usuario, dato y nota abajo, tal como se guardaron.
    const QModelIndex renglon = modelo(*f)->index(3, 0);
    EXPECT_EQ(renglon.data(RolPrimeraLinea).toString(), "Ventas -> Caja Chica");
    EXPECT_EQ(renglon.data(RolDatoDerecha).toString(), "10/03/2024 18:30:00");
    EXPECT_EQ(renglon.data(RolSegundaLinea).toString(),
              "Usuario: Laura Méndez Ríos   Depósito <500>   Nota: nota de Depósito <500>");
    EXPECT_EQ(renglon.data(TAuditoriasF::RolFecha).toDateTime(),
              QDateTime(QDate(2024, 3, 10), QTime(18, 30)));
    // La imagen de su tipo; un tipo sin imagen va sin icono.
    EXPECT_FALSE(qvariant_cast<QIcon>(renglon.data(Qt::DecorationRole)).isNull());
    EXPECT_TRUE(qvariant_cast<QIcon>(modelo(*f)->index(6, 0).data(Qt::DecorationRole)).isNull());
}

TEST_F(AuditoriasTest, UnSoloDiaListaEseDiaSinImportarLaHora) {
    bitacora(1, 2, "Inserción", "A", "2024-03-09 23:59:59");
    bitacora(1, 2, "Inserción", "B", "2024-03-10 00:00:00");
    bitacora(1, 2, "Inserción", "C", "2024-03-10 23:59:59");
    bitacora(1, 2, "Inserción", "D", "2024-03-11 00:00:00");

    auto f = abrePantalla("admin", 1);
    muestra(*f, QDate(2024, 3, 10), QDate(2024, 3, 10));
    EXPECT_EQ(columna(*f, TAuditoriasF::RolModulo), (QStringList{"B", "C"}));
    EXPECT_EQ(etiqueta(*f, "TituloBitacoras"), "Bitácoras 10/03/2024 al 10/03/2024");
}

TEST_F(AuditoriasTest, RangoInvertidoVacioOFallidoAvisaYNoBorraLoListado) {
    bitacora(1, 2, "Inserción", "Ventas -> Caja Chica", "2024-03-10 18:30:00");
    auto f = abrePantalla("cajero", 1);
    muestra(*f, QDate(2024, 3, 1), QDate(2024, 3, 31));
    ASSERT_EQ(columna(*f, TAuditoriasF::RolModulo), QStringList{"Ventas -> Caja Chica"});

    // Inicio después del fin: nada se lee, lo listado se queda.
    bitacora(1, 2, "Inserción", "Catálogos -> Productos", "2024-03-10 19:00:00");
    muestra(*f, QDate(2024, 3, 31), QDate(2024, 3, 1));
    EXPECT_EQ(Mensajes::ultimos(), QStringList{kRangoInvertido});
    EXPECT_EQ(Sonidos::reproducidos(), QList<Sonido>{Sonido::Error});
    QTest::qWait(50);
    EXPECT_EQ(columna(*f, TAuditoriasF::RolModulo), QStringList{"Ventas -> Caja Chica"});
    EXPECT_EQ(etiqueta(*f, "TituloBitacoras"), "Bitácoras 01/03/2024 al 31/03/2024");

    // Sin renglones en el rango: la lista queda vacía.
    muestra(*f, QDate(2024, 4, 1), QDate(2024, 4, 30));
    EXPECT_EQ(Mensajes::ultimos(), QStringList{kSinResultados});
    EXPECT_EQ(Sonidos::reproducidos(), QList<Sonido>{Sonido::Error});
    EXPECT_EQ(modelo(*f)->rowCount(), 0);
    EXPECT_EQ(etiqueta(*f, "PieBitacoras"), "Número de Registros: 0");

    // Servicio caído: mensaje de lectura, fechas como se escribieron y lista como estaba.
    muestra(*f, QDate(2024, 3, 1), QDate(2024, 3, 31));
    ASSERT_EQ(columna(*f, TAuditoriasF::RolModulo).size(), 2);
    servicio.detiene();
    muestra(*f, QDate(2024, 3, 5), QDate(2024, 3, 6));
    EXPECT_EQ(Mensajes::ultimos(), QStringList{MensajeErrorLectura});
    EXPECT_EQ(Sonidos::reproducidos(), QList<Sonido>{Sonido::Error});
    EXPECT_EQ(control<QDateEdit>(*f, "FechaInicio")->date(), QDate(2024, 3, 5));
    EXPECT_EQ(control<QDateEdit>(*f, "FechaFin")->date(), QDate(2024, 3, 6));
    EXPECT_EQ(columna(*f, TAuditoriasF::RolModulo).size(), 2);
    EXPECT_EQ(etiqueta(*f, "PieBitacoras"), "Número de Registros: 2");
}

} // namespace
} // namespace cajaplex
