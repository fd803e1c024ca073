#include "security/CatalogoPerfiles.h"

#include "datos/Auditoria.h"
#include "datos/ConexionBD.h"
#include "datos/Transaccion.h"

namespace cajaplex {
namespace {

const char* const SqlConsultaPerfiles =
    "Select A.perfilID, A.Nombre,\n"
    "(Select Count(*) From Usuarios B Where B.perfilID = A.perfilID) as Usuarios\n"
    "From PerfilesUsuarios A\n"
    "Order By A.Nombre";

const char* const SqlPerfilRepetido = "Select Count(*) as Veces From PerfilesUsuarios\n"
                                      "Where lower(Nombre) = lower(:Nombre)\n"
                                      "and perfilID <> :perfilID";

const char* const SqlInsertaPerfil = "Insert Into PerfilesUsuarios (Nombre) Values (:Nombre)";

const char* const SqlPerfilInsertado = "select last_insert_rowid() as id";

const char* const SqlActualizaPerfil = "Update PerfilesUsuarios Set Nombre = :Nombre\n"
                                       "Where perfilID = :perfilID";

const char* const SqlConsultaPermisos =
    "Select B.menú as Menu, ifnull(B.acceso,0) as acceso From PermisosSistema B\n"
    "Where B.perfilID = :perfilID\n"
    "Order By B.menú";

const char* const SqlBorraPermisos = "Delete From PermisosSistema Where perfilID = :perfilID";

const char* const SqlInsertaPermiso = "Insert Into PermisosSistema (perfilID, menú, acceso)\n"
                                      "Values (:perfilID, :Menu, :Acceso)";

const char* const SqlUsuariosDelPerfil =
    "Select Count(*) as Veces From Usuarios Where perfilID = :perfilID";

const char* const SqlBorraPerfil = "Delete From PerfilesUsuarios Where perfilID = :perfilID";

// Las sentencias de una tabla de derechos se arman con su nombre y sus columnas fijas; los
// valores siempre van como parámetros.
QString sqlLeeDerechos(const GrupoDerechos& g) {
    QStringList columnas;
    for (const DefinicionDerecho& d : g.derechos)
        columnas << QStringLiteral("ifnull(%1,0) as %1").arg(d.columna);
    return QStringLiteral("Select ") + columnas.join(QStringLiteral(", ")) +
           QStringLiteral(" From ") + g.tabla + QStringLiteral(" Where perfilID = :perfilID");
}

QString sqlBorraDerechos(const GrupoDerechos& g) {
    return QStringLiteral("Delete From ") + g.tabla + QStringLiteral(" Where perfilID = :perfilID");
}

QString sqlInsertaDerechos(const GrupoDerechos& g) {
    QStringList columnas{QStringLiteral("perfilID")};
    for (const DefinicionDerecho& d : g.derechos)
        columnas << d.columna;
    return QStringLiteral("Insert Into ") + g.tabla + QStringLiteral(" (") +
           columnas.join(QStringLiteral(", ")) + QStringLiteral(") Values (:") +
           columnas.join(QStringLiteral(", :")) + QLatin1Char(')');
}

QString listaONinguno(const QStringList& nombres) {
    return nombres.isEmpty() ? QStringLiteral("Ninguno") : nombres.join(QStringLiteral(", "));
}

// Lo que la bitácora guarda de un perfil: lo permitido.
QString textoPerfil(const DatosPerfil& p) {
    QStringList menus;
    for (const PermisoMenu& m : p.menus)
        if (m.acceso) menus << m.menu;
    QString texto =
        QStringLiteral("Perfil: ") + p.nombre + QStringLiteral("\nMenús: ") + listaONinguno(menus);
    const QList<GrupoDerechos>& grupos = gruposDerechos();
    for (qsizetype i = 0; i < grupos.size(); ++i) {
        QStringList permitidos;
        for (const DefinicionDerecho& d : grupos[i].derechos)
            if (p.derechos.value(i).value(d.columna)) permitidos << d.titulo;
        texto +=
            QLatin1Char('\n') + grupos[i].titulo + QStringLiteral(": ") + listaONinguno(permitidos);
    }
    return texto;
}

} // namespace

const QList<GrupoDerechos>& gruposDerechos() {
    static const QList<GrupoDerechos> grupos = {
        {QStringLiteral("PerfilesUsuariosVentas"),
         QStringLiteral("Ventas"),
         {{QStringLiteral("precio1"), QStringLiteral("Precio 1"), true},
          {QStringLiteral("precio2"), QStringLiteral("Precio 2")},
          {QStringLiteral("precio3"), QStringLiteral("Precio 3")},
          {QStringLiteral("precio4"), QStringLiteral("Precio 4")},
          {QStringLiteral("precio5"), QStringLiteral("Precio 5")},
          {QStringLiteral("clienteNuevo"), QStringLiteral("Cliente Nuevo")},
          {QStringLiteral("descuento"), QStringLiteral("Descuento")},
          {QStringLiteral("modificarCotizacion"), QStringLiteral("Modificar Cotización")},
          {QStringLiteral("corteCaja"), QStringLiteral("Corte de Caja")},
          {QStringLiteral("cancelarRemision"), QStringLiteral("Cancelar Remisión")},
          {QStringLiteral("cancelarComanda"), QStringLiteral("Cancelar Comanda")},
          {QStringLiteral("cancelarCFDI"), QStringLiteral("Cancelar CFDI")},
          {QStringLiteral("cancelarNC"), QStringLiteral("Cancelar Nota de Crédito")}}},
        {QStringLiteral("PerfilesUsuariosCompras"),
         QStringLiteral("Compras"),
         {{QStringLiteral("ProveedorNuevo"), QStringLiteral("Proveedor Nuevo")},
          {QStringLiteral("descuento"), QStringLiteral("Descuento")},
          {QStringLiteral("cancelarRM"), QStringLiteral("Cancelar Recepción de Mercancía")},
          {QStringLiteral("cancelarDM"), QStringLiteral("Cancelar Devolución de Mercancía")},
          {QStringLiteral("cancelarAjuste"), QStringLiteral("Cancelar Ajuste")},
          {QStringLiteral("cancelarGasto"), QStringLiteral("Cancelar Gasto")},
          {QStringLiteral("cancelarTransferencia"), QStringLiteral("Cancelar Transferencia")}}},
        {QStringLiteral("PerfilesUsuariosCxC"),
         QStringLiteral("Cuentas por Cobrar"),
         {{QStringLiteral("bloquearCredito"), QStringLiteral("Bloquear Crédito")},
          {QStringLiteral("desbloquearCredito"), QStringLiteral("Desbloquear Crédito")},
          {QStringLiteral("cancelarPagoRemision"), QStringLiteral("Cancelar Pago de Remisión")},
          {QStringLiteral("cancelarPagoCFDI"), QStringLiteral("Cancelar Pago CFDI")}}},
    };
    return grupos;
}

CatalogoPerfiles::CatalogoPerfiles(ConexionBD& conexion, const Sesion& sesion)
    : ConsultaPerfiles(conexion, QString::fromUtf8(SqlConsultaPerfiles)),
      PerfilRepetido(conexion, QString::fromUtf8(SqlPerfilRepetido)),
      InsertaPerfil(conexion, QString::fromUtf8(SqlInsertaPerfil)),
      PerfilInsertado(conexion, QString::fromUtf8(SqlPerfilInsertado)),
      ActualizaPerfil(conexion, QString::fromUtf8(SqlActualizaPerfil)),
      ConsultaPermisos(conexion, QString::fromUtf8(SqlConsultaPermisos)),
      BorraPermisos(conexion, QString::fromUtf8(SqlBorraPermisos)),
      InsertaPermiso(conexion, QString::fromUtf8(SqlInsertaPermiso)),
      UsuariosDelPerfil(conexion, QString::fromUtf8(SqlUsuariosDelPerfil)),
      BorraPerfil(conexion, QString::fromUtf8(SqlBorraPerfil)), conexion_(conexion),
      sesion_(sesion) {}

std::vector<Perfil> CatalogoPerfiles::consulta() {
    ConsultaPerfiles.abre();
    std::vector<Perfil> perfiles;
    perfiles.reserve(static_cast<size_t>(ConsultaPerfiles.numeroRegistros()));
    for (const Registro& r : ConsultaPerfiles)
        perfiles.push_back({r.campo(QStringLiteral("perfilID")).comoEntero(),
                            r.campo(QStringLiteral("Nombre")).comoTexto(),
                            r.campo(QStringLiteral("Usuarios")).comoEntero()});
    ConsultaPerfiles.cierra();
    return perfiles;
}

DatosPerfil CatalogoPerfiles::nuevo(const QStringList& registrados) {
    DatosPerfil p;
    for (const QString& menu : registrados)
        p.menus.append({menu, false});
    for (const GrupoDerechos& g : gruposDerechos()) {
        QHash<QString, bool> valores;
        for (const DefinicionDerecho& d : g.derechos)
            valores.insert(d.columna, d.omision);
        p.derechos.append(valores);
    }
    return p;
}

DatosPerfil CatalogoPerfiles::lee(const Perfil& perfil, const QStringList& registrados) {
    DatosPerfil p;
    p.perfilID = perfil.perfilID;
    p.nombre = perfil.nombre;

    ConsultaPermisos.parametro(QStringLiteral("perfilID")).entero(perfil.perfilID);
    ConsultaPermisos.abre();
    QHash<QString, bool> guardados;
    QStringList huerfanos; // en la base, sin módulo que los registre; ya vienen por nombre
    for (const Registro& r : ConsultaPermisos) {
        const QString menu = r.campo(QStringLiteral("Menu")).comoTexto();
        guardados.insert(menu, r.campo(QStringLiteral("acceso")).comoEntero() != 0);
        if (!registrados.contains(menu)) huerfanos << menu;
    }
    ConsultaPermisos.cierra();
    for (const QString& menu : registrados)
        p.menus.append({menu, guardados.value(menu, false)});
    for (const QString& menu : huerfanos)
        p.menus.append({menu, guardados.value(menu)});

    // Un perfil sin renglón en alguna tabla no tiene ninguno de esos derechos.
    for (const GrupoDerechos& g : gruposDerechos()) {
        Consulta derechos(conexion_, sqlLeeDerechos(g));
        derechos.parametro(QStringLiteral("perfilID")).entero(perfil.perfilID);
        derechos.abre();
        QHash<QString, bool> valores;
        for (const DefinicionDerecho& d : g.derechos)
            valores.insert(d.columna,
                           !derechos.fin() && derechos.campo(d.columna).comoEntero() != 0);
        p.derechos.append(valores);
    }
    return p;
}

QString CatalogoPerfiles::almacena(DatosPerfil& perfil, const DatosPerfil* anterior) {
    perfil.nombre = perfil.nombre.trimmed();
    if (perfil.nombre.isEmpty()) return QString::fromUtf8(MensajePerfilSinNombre);

    // La revisión del nombre y el registro van en la misma transacción: otra estación no puede
    // dar de alta el mismo nombre entre ambos.
    Transaccion t(conexion_);
    PerfilRepetido.parametro(QStringLiteral("Nombre")).texto(perfil.nombre);
    PerfilRepetido.parametro(QStringLiteral("perfilID")).entero(perfil.perfilID);
    PerfilRepetido.abre(t);
    if (PerfilRepetido.campo(QStringLiteral("Veces")).comoEntero() > 0)
        return QString::fromUtf8(MensajePerfilExiste);

    const bool alta = perfil.perfilID == 0;
    int64_t perfilID = perfil.perfilID;
    if (alta) {
        InsertaPerfil.parametro(QStringLiteral("Nombre")).texto(perfil.nombre);
        InsertaPerfil.ejecuta(t);
        PerfilInsertado.abre(t);
        perfilID = PerfilInsertado.campo(QStringLiteral("id")).comoEntero();
    } else {
        ActualizaPerfil.parametro(QStringLiteral("Nombre")).texto(perfil.nombre);
        ActualizaPerfil.parametro(QStringLiteral("perfilID")).entero(perfilID);
        ActualizaPerfil.ejecuta(t);
    }

    // Los renglones del perfil se reescriben completos, en un viaje.
    Lote lote(conexion_);
    BorraPermisos.parametro(QStringLiteral("perfilID")).entero(perfilID);
    lote.agrega(BorraPermisos);
    for (const PermisoMenu& m : perfil.menus) {
        InsertaPermiso.parametro(QStringLiteral("perfilID")).entero(perfilID);
        InsertaPermiso.parametro(QStringLiteral("Menu")).texto(m.menu);
        InsertaPermiso.parametro(QStringLiteral("Acceso")).booleano(m.acceso);
        lote.agrega(InsertaPermiso);
    }
    const QList<GrupoDerechos>& grupos = gruposDerechos();
    for (qsizetype i = 0; i < grupos.size(); ++i) {
        Consulta borra(sqlBorraDerechos(grupos[i]));
        borra.parametro(QStringLiteral("perfilID")).entero(perfilID);
        lote.agrega(borra);
        Consulta inserta(sqlInsertaDerechos(grupos[i]));
        inserta.parametro(QStringLiteral("perfilID")).entero(perfilID);
        for (const DefinicionDerecho& d : grupos[i].derechos)
            inserta.parametro(d.columna).booleano(perfil.derechos.value(i).value(d.columna));
        lote.agrega(inserta);
    }
    DatosPerfil guardado = perfil;
    guardado.perfilID = perfilID;
    Auditoria::agrega(lote, sesion_,
                      {alta ? tipoAuditoria::Insercion : tipoAuditoria::Actualizacion,
                       QString::fromUtf8(ModuloPerfiles),
                       textoPerfil(guardado),
                       anterior ? textoPerfil(*anterior) : QString(),
                       {}});
    lote.ejecuta(t);
    t.confirma();
    perfil.perfilID = perfilID;
    return {};
}

bool CatalogoPerfiles::elimina(const Perfil& perfil) {
    // La revisión va en la misma transacción que el borrado: nadie le asigna el perfil a un
    // usuario entre ambos.
    Transaccion t(conexion_);
    UsuariosDelPerfil.parametro(QStringLiteral("perfilID")).entero(perfil.perfilID);
    UsuariosDelPerfil.abre(t);
    if (UsuariosDelPerfil.campo(QStringLiteral("Veces")).comoEntero() > 0) return false;

    Lote lote(conexion_);
    BorraPerfil.parametro(QStringLiteral("perfilID")).entero(perfil.perfilID);
    lote.agrega(BorraPerfil);
    BorraPermisos.parametro(QStringLiteral("perfilID")).entero(perfil.perfilID);
    lote.agrega(BorraPermisos);
    for (const GrupoDerechos& g : gruposDerechos()) {
        Consulta borra(sqlBorraDerechos(g));
        borra.parametro(QStringLiteral("perfilID")).entero(perfil.perfilID);
        lote.agrega(borra);
    }
    Auditoria::agrega(lote, sesion_,
                      {tipoAuditoria::Cancelacion,
                       QString::fromUtf8(ModuloPerfiles),
                       QStringLiteral("Perfil: ") + perfil.nombre,
                       {},
                       QStringLiteral("Perfil eliminado")});
    lote.ejecuta(t);
    t.confirma();
    return true;
}

} // namespace cajaplex
