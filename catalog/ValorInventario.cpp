#include "catalog/ValorInventario.h"

#include <QDate>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QScroller>
#include <QStandardPaths>
#include <QTableWidget>
#include <QVBoxLayout>
#include <QtDebug>

#include "catalog/CatalogoProductos.h"
#include "datos/ModuloDatos.h"
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

QTableWidgetItem* celda(const QString& texto, Qt::Alignment alineacion = Qt::AlignLeft) {
    auto* item = new QTableWidgetItem(texto);
    item->setTextAlignment(alineacion | Qt::AlignVCenter);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    return item;
}

QTableWidgetItem* celdaNumero(const QString& texto, double valor) {
    QTableWidgetItem* item = celda(texto, Qt::AlignRight);
    item->setData(Qt::UserRole, valor);
    return item;
}

QTableWidget* creaTabla(const QString& nombre, QWidget* padre) {
    auto* tabla = new QTableWidget(0, static_cast<int>(encabezadosValorInventario().size()), padre);
    tabla->setObjectName(nombre);
    tabla->setEditTriggers(QAbstractItemView::NoEditTriggers);
    tabla->setSelectionBehavior(QAbstractItemView::SelectRows);
    tabla->setSelectionMode(QAbstractItemView::SingleSelection);
    tabla->setWordWrap(false);
    tabla->verticalHeader()->hide();
    tabla->verticalHeader()->setDefaultSectionSize(kAltoRenglon);
    tabla->horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    for (int c = 0; c < tabla->columnCount(); ++c)
        if (kAnchos[c] > 0) tabla->setColumnWidth(c, kAnchos[c]);
    return tabla;
}

} // namespace

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

    lista_ = creaTabla(QStringLiteral("ListaValorInventario"), this);
    // Encabezados en dos renglones ("Valor" arriba) para que quepan las doce columnas.
    QStringList encabezados = encabezadosValorInventario();
    for (QString& e : encabezados)
        if (e.startsWith(QStringLiteral("Valor "))) e.replace(5, 1, QLatin1Char('\n'));
    lista_->setHorizontalHeaderLabels(encabezados);
    lista_->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
    lista_->setAlternatingRowColors(true);
    lista_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    lista_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    QScroller::grabGesture(lista_->viewport(), QScroller::LeftMouseButtonGesture);

    // Los totales en su propio renglón fijo; cada columna toma el ancho de la de la lista.
    totales_ = creaTabla(QStringLiteral("TotalesValorInventario"), this);
    totales_->horizontalHeader()->hide();
    totales_->setRowCount(1);
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
    try {
        inventario_ = consultaValorInventario(ModuloDeDatos.ConexionBD, sesion_.EmpresaID);
    } catch (const ErrorServicio& e) {
        Sonidos::reproduce(Sonido::Error);
        mensajes_.muestra(QString::fromUtf8(MensajeErrorLectura));
        qWarning() << "Valor de Inventario:" << e.mensaje();
        return;
    }
    llenaListado();
    if (inventario_.renglones.empty()) {
        Sonidos::reproduce(Sonido::Error);
        mensajes_.muestra(QStringLiteral("No hubo registros con esa información"));
    }
}

void TValorInventarioF::llenaListado() {
    lista_->setRowCount(static_cast<int>(inventario_.renglones.size()));
    int fila = 0;
    for (const RenglonValorInventario& r : inventario_.renglones) {
        lista_->setItem(fila, 0, celda(r.clave));
        lista_->setItem(fila, 1, celda(r.producto));
        lista_->setItem(fila, 2, celda(r.unidad));
        lista_->setItem(fila, 3, celda(r.linea));
        lista_->setItem(fila, kColumnaCosto, celdaNumero(textoPrecio(r.costo), r.costo));
        lista_->setItem(fila, kColumnaExistencia,
                        celdaNumero(textoCantidad(r.existencia), r.existencia));
        for (size_t i = 0; i < r.valores.size(); ++i)
            lista_->setItem(fila, kPrimerValor + static_cast<int>(i),
                            celdaNumero(textoPrecio(r.valores[i]), r.valores[i]));
        ++fila;
    }
    totales_->setItem(0, 1, celda(QStringLiteral("TOTALES"), Qt::AlignRight));
    for (size_t i = 0; i < inventario_.totales.size(); ++i)
        totales_->setItem(0, kPrimerValor + static_cast<int>(i),
                          celdaNumero(textoPrecio(inventario_.totales[i]), inventario_.totales[i]));
    pie_->setText(QStringLiteral("Total Productos: ") +
                  QString::number(inventario_.renglones.size()));
    exportar_->setEnabled(!inventario_.renglones.empty());
}

void TValorInventarioF::BotonExportarClick() {
    Sonidos::reproduce(Sonido::Click);
    const QString carpeta = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    QString ruta =
        QFileDialog::getSaveFileName(this, QStringLiteral("Exportar Valor de Inventario"),
                                     QDir(carpeta).filePath(QStringLiteral("ValorInventario.xlsx")),
                                     QStringLiteral("Libro de Excel (*.xlsx)"));
    if (ruta.isEmpty()) return;
    if (QFileInfo(ruta).suffix().compare(QStringLiteral("xlsx"), Qt::CaseInsensitive) != 0)
        ruta += QStringLiteral(".xlsx");
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
