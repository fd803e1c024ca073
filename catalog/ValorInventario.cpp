#include "catalog/ValorInventario.h"

#include <QDate>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QTableView>
#include <QVBoxLayout>
#include <QtDebug>

#include "catalog/CatalogoProductos.h"
#include "datos/ModuloDatos.h"
#include "pantallas/ArchivoExcel.h"
#include "pantallas/HojaEstilo.h"
#include "pantallas/Leyenda.h"
#include "pantallas/Sonidos.h"

namespace cajaplex {
namespace {

constexpr int kAltoRenglon = 40;
// Clave, descripción, unidad, línea, costo y existencia; luego los seis valores.
constexpr int kColumnaCosto = 4;
constexpr int kColumnaExistencia = 5;
constexpr int kPrimerValor = 6;
const int kAnchos[] = {70, 0, 90, 140, 84, 104, 104, 104, 104, 104, 104, 104};

ModeloTabla::Columna importe(const QString& titulo, std::function<double(int)> valor) {
    return ModeloTabla::numerica(titulo, std::move(valor), textoPrecio);
}

QTableView* creaTabla(const QString& nombre, ModeloTabla* modelo, QWidget* padre) {
    QTableView* tabla = creaVistaTabla(nombre, modelo, kAltoRenglon, padre);
    tabla->horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    for (int c = 0; c < modelo->columnCount(); ++c)
        if (kAnchos[c] > 0) tabla->setColumnWidth(c, kAnchos[c]);
    return tabla;
}

} // namespace

std::vector<ModeloTabla::Columna> TValorInventarioF::columnasProductos() {
    // Encabezados en dos renglones ("Valor" arriba) para que quepan las doce columnas.
    QStringList titulos = encabezadosValorInventario();
    for (QString& t : titulos)
        if (t.startsWith(QStringLiteral("Valor "))) t.replace(5, 1, QLatin1Char('\n'));
    auto renglon = [this](int fila) -> const RenglonValorInventario& {
        return inventario_.renglones[static_cast<size_t>(fila)];
    };
    std::vector<ModeloTabla::Columna> columnas = {
        {titulos.at(0), [renglon](int f) { return renglon(f).clave; }},
        {titulos.at(1), [renglon](int f) { return renglon(f).producto; }},
        {titulos.at(2), [renglon](int f) { return renglon(f).unidad; }},
        {titulos.at(3), [renglon](int f) { return renglon(f).linea; }},
        importe(titulos.at(kColumnaCosto), [renglon](int f) { return renglon(f).costo; }),
        ModeloTabla::numerica(
            titulos.at(kColumnaExistencia), [renglon](int f) { return renglon(f).existencia; },
            textoCantidad)};
    for (size_t i = 0; i < ValoresInventario; ++i)
        columnas.push_back(importe(titulos.at(kPrimerValor + static_cast<int>(i)),
                                   [renglon, i](int f) { return renglon(f).valores[i]; }));
    return columnas;
}

std::vector<ModeloTabla::Columna> TValorInventarioF::columnasTotales() {
    std::vector<ModeloTabla::Columna> columnas(encabezadosValorInventario().size());
    columnas[1] = {{}, [](int) { return QStringLiteral("TOTALES"); }, {}, Qt::AlignRight};
    for (size_t i = 0; i < ValoresInventario; ++i)
        columnas[kPrimerValor + i] = importe({}, [this, i](int) { return inventario_.totales[i]; });
    return columnas;
}

TValorInventarioF::TValorInventarioF(const Sesion& sesion, QWidget* padre)
    : QWidget(padre), sesion_(sesion) {
    setObjectName(QStringLiteral("ValorInventario"));
    setWindowTitle(QStringLiteral("Valor de Inventario"));

    titulo_ = new QLabel(QStringLiteral("Valor de Inventario al ") +
                             QDate::currentDate().toString(QStringLiteral("dd/MM/yyyy")),
                         this);
    titulo_->setObjectName(QStringLiteral("TituloValorInventario"));
    ponEstilo(titulo_, "titulo");

    exportar_ = new QPushButton(icono(QStringLiteral("Exportar")),
                                QStringLiteral("Exportar a Excel"), this);
    exportar_->setObjectName(QStringLiteral("BotonExportar"));
    exportar_->setMinimumHeight(AltoControl);
    exportar_->setEnabled(false);
    ponEstilo(exportar_, "primario");
    connect(exportar_, &QPushButton::clicked, this, &TValorInventarioF::BotonExportarClick);

    auto* arriba = new QHBoxLayout;
    arriba->addWidget(titulo_, 1);
    arriba->addWidget(exportar_);

    modelo_ = new ModeloTabla(columnasProductos(), this);
    lista_ = creaTabla(QStringLiteral("ListaValorInventario"), modelo_, this);
    lista_->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
    lista_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);

    // Los totales en su propio renglón fijo; cada columna toma el ancho de la de la lista.
    modeloTotales_ = new ModeloTabla(columnasTotales(), this);
    totales_ = creaTabla(QStringLiteral("TotalesValorInventario"), modeloTotales_, this);
    totales_->horizontalHeader()->hide();
    totales_->setAlternatingRowColors(false);
    totales_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    totales_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    totales_->setFixedHeight(kAltoRenglon + 2 * totales_->frameWidth());
    totales_->setFocusPolicy(Qt::NoFocus);
    totales_->setSelectionMode(QAbstractItemView::NoSelection);
    QFont negritas = totales_->font();
    negritas.setBold(true);
    totales_->setFont(negritas);
    connect(lista_->horizontalHeader(), &QHeaderView::sectionResized, totales_,
            [this](int columna, int, int ancho) { totales_->setColumnWidth(columna, ancho); });
    connect(lista_->horizontalScrollBar(), &QScrollBar::valueChanged,
            totales_->horizontalScrollBar(), &QScrollBar::setValue);

    pie_ = new QLabel(QStringLiteral("Total Productos: 0"), this);
    pie_->setObjectName(QStringLiteral("PieValorInventario"));
    ponEstilo(pie_, "pie");

    auto* capa = new QVBoxLayout(this);
    capa->addLayout(arriba);
    capa->addWidget(lista_, 1);
    capa->addWidget(totales_);
    capa->addWidget(pie_);

    ejecutaConLeyenda(this, QStringLiteral("Cargando Información"),
                      [this] { CargaInventarioTimer(); });
}

void TValorInventarioF::CargaInventarioTimer() {
    ValorInventario inventario;
    try {
        inventario = consultaValorInventario(ModuloDeDatos.ConexionBD, sesion_.EmpresaID);
    } catch (const ErrorServicio& e) {
        Sonidos::reproduce(Sonido::Error);
        mensajes_.muestra(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Valor de Inventario:" << e.mensaje();
        return;
    }
    llenaListado(std::move(inventario));
    if (inventario_.renglones.empty()) {
        Sonidos::reproduce(Sonido::Error);
        mensajes_.muestra(QStringLiteral("No hubo registros con esa información"));
    }
}

void TValorInventarioF::llenaListado(ValorInventario inventario) {
    modelo_->cambia([&] {
        inventario_ = std::move(inventario);
        return static_cast<int>(inventario_.renglones.size());
    });
    modeloTotales_->cambia([] { return 1; });
    pie_->setText(QStringLiteral("Total Productos: ") +
                  QString::number(inventario_.renglones.size()));
    exportar_->setEnabled(!inventario_.renglones.empty());
}

void TValorInventarioF::BotonExportarClick() {
    Sonidos::reproduce(Sonido::Click);
    const QString ruta = pideArchivoExcelNuevo(this, QStringLiteral("Exportar Valor de Inventario"),
                                               QStringLiteral("ValorInventario.xlsx"));
    if (ruta.isEmpty()) return;
    ejecutaConLeyenda(this, QStringLiteral("Exportando Información"),
                      [this, ruta] { exportaA(ruta); });
}

bool TValorInventarioF::exportaA(const QString& ruta) {
    const QString causa = exportaValorInventario(inventario_, ruta);
    if (!causa.isEmpty()) {
        Sonidos::reproduce(Sonido::Error);
        mensajes_.muestra(QStringLiteral("No se pudo generar el archivo: ") + ruta);
        qWarning() << "Valor de Inventario, exportación:" << ruta << causa;
        return false;
    }
    mensajes_.muestra(QStringLiteral("Archivo generado: ") + ruta);
    return true;
}

} // namespace cajaplex
