#include "pantallas/Mensajes.h"

#include <deque>
#include <mutex>
#include <variant>

#include <QButtonGroup>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <QWidget>

#include "datos/Utilerias.h"

namespace cajaplex {
namespace {

const QString kTitulo = QStringLiteral("Centro de Mensajes");

using RespuestaEnCola = std::variant<Respuesta, int, QString, double>;

struct EstadoPrueba {
    std::mutex candado;
    bool activo = false;
    std::deque<RespuestaEnCola> cola;
    QStringList anotados;
};

EstadoPrueba& estado() {
    static EstadoPrueba e;
    return e;
}

// En modo de prueba anota el texto y toma la siguiente respuesta si es del tipo que se pide;
// una de otro tipo se queda en la cola para que la prueba falle a la vista y no en silencio.
template <typename T> std::optional<std::optional<T>> respuestaDePrueba(const QString& texto) {
    auto& e = estado();
    std::lock_guard<std::mutex> g(e.candado);
    if (!e.activo) return std::nullopt;
    e.anotados << texto;
    if (e.cola.empty() || !std::holds_alternative<T>(e.cola.front())) return std::optional<T>{};
    T valor = std::get<T>(e.cola.front());
    e.cola.pop_front();
    return std::optional<T>{valor};
}

void encola(RespuestaEnCola r) {
    auto& e = estado();
    std::lock_guard<std::mutex> g(e.candado);
    e.cola.push_back(std::move(r));
}

// Diálogo con Aceptar/Cancelar en español; el contenido lo pone quien llama.
QDialogButtonBox* botonesAceptarCancelar(QDialog& dialogo) {
    auto* botones = new QDialogButtonBox(&dialogo);
    botones->addButton(QStringLiteral("Aceptar"), QDialogButtonBox::AcceptRole);
    botones->addButton(QStringLiteral("Cancelar"), QDialogButtonBox::RejectRole);
    QObject::connect(botones, &QDialogButtonBox::accepted, &dialogo, &QDialog::accept);
    QObject::connect(botones, &QDialogButtonBox::rejected, &dialogo, &QDialog::reject);
    return botones;
}

bool preguntaConBotones(QWidget* padre, const QString& texto, const QString& si,
                        const QString& no) {
    QMessageBox caja(QMessageBox::Question, kTitulo, texto, QMessageBox::NoButton, padre);
    QPushButton* botonSi = caja.addButton(si, QMessageBox::AcceptRole);
    QPushButton* botonNo = caja.addButton(no, QMessageBox::RejectRole);
    caja.setDefaultButton(botonSi);
    caja.setEscapeButton(botonNo);
    caja.exec();
    return caja.clickedButton() == botonSi;
}

} // namespace

void Mensajes::muestra(const QString& texto) const {
    {
        auto& e = estado();
        std::lock_guard<std::mutex> g(e.candado);
        if (e.activo) {
            e.anotados << texto;
            return;
        }
    }
    QMessageBox caja(QMessageBox::Information, kTitulo, texto, QMessageBox::NoButton, padre_);
    caja.addButton(QStringLiteral("Aceptar"), QMessageBox::AcceptRole);
    caja.exec();
}

bool Mensajes::pregunta(const QString& texto) const {
    if (auto r = respuestaDePrueba<Respuesta>(texto)) return *r == Respuesta::Aceptar;
    return preguntaConBotones(padre_, texto, QStringLiteral("Aceptar"), QStringLiteral("Cancelar"));
}

bool Mensajes::preguntaSiNo(const QString& texto) const {
    if (auto r = respuestaDePrueba<Respuesta>(texto)) return *r == Respuesta::Si;
    return preguntaConBotones(padre_, texto, QStringLiteral("Sí"), QStringLiteral("No"));
}

int Mensajes::eligeOpcion(const QString& titulo, const QStringList& opciones) const {
    if (auto r = respuestaDePrueba<int>(titulo)) {
        if (!*r || **r < 0 || **r >= opciones.size()) return -1;
        return **r;
    }
    QDialog dialogo(padre_);
    dialogo.setWindowTitle(kTitulo);
    auto* columna = new QVBoxLayout(&dialogo);
    columna->addWidget(new QLabel(titulo, &dialogo));
    auto* grupo = new QButtonGroup(&dialogo);
    for (int i = 0; i < opciones.size(); ++i) {
        auto* opcion = new QRadioButton(opciones.at(i), &dialogo);
        opcion->setChecked(i == 0);
        grupo->addButton(opcion, i);
        columna->addWidget(opcion);
    }
    columna->addWidget(botonesAceptarCancelar(dialogo));
    if (dialogo.exec() != QDialog::Accepted) return -1;
    return grupo->checkedId();
}

std::optional<QString> Mensajes::pideTexto(const QString& titulo, const QString& inicial,
                                           int maximo) const {
    if (auto r = respuestaDePrueba<QString>(titulo)) {
        // Igual que el campo real, que no deja teclear más del máximo.
        if (*r) return (*r)->left(maximo);
        return std::nullopt;
    }
    QDialog dialogo(padre_);
    dialogo.setWindowTitle(kTitulo);
    auto* columna = new QVBoxLayout(&dialogo);
    columna->addWidget(new QLabel(titulo, &dialogo));
    auto* campo = new QLineEdit(&dialogo);
    campo->setMaxLength(maximo);
    campo->setText(inicial);
    campo->selectAll();
    columna->addWidget(campo);
    columna->addWidget(botonesAceptarCancelar(dialogo));
    if (dialogo.exec() != QDialog::Accepted) return std::nullopt;
    return campo->text();
}

std::optional<double> Mensajes::pideDecimal(const QString& titulo, double inicial,
                                            int decimales) const {
    if (auto r = respuestaDePrueba<double>(titulo)) {
        // El campo real redondea a sus decimales; la prueba ve lo mismo.
        if (*r) return Redondea(**r, decimales);
        return std::nullopt;
    }
    QDialog dialogo(padre_);
    dialogo.setWindowTitle(kTitulo);
    auto* columna = new QVBoxLayout(&dialogo);
    columna->addWidget(new QLabel(titulo, &dialogo));
    auto* campo = new QDoubleSpinBox(&dialogo);
    campo->setDecimals(decimales);
    campo->setRange(-1e12, 1e12);
    campo->setValue(inicial);
    campo->selectAll();
    columna->addWidget(campo);
    columna->addWidget(botonesAceptarCancelar(dialogo));
    if (dialogo.exec() != QDialog::Accepted) return std::nullopt;
    return campo->value();
}

void Mensajes::modoPrueba(bool activo) {
    auto& e = estado();
    std::lock_guard<std::mutex> g(e.candado);
    e.activo = activo;
    e.cola.clear();
    e.anotados.clear();
}

void Mensajes::respondeSiguiente(Respuesta respuesta) {
    encola(respuesta);
}

void Mensajes::respondeOpcion(int indice) {
    encola(indice);
}

void Mensajes::respondeTexto(const QString& texto) {
    encola(texto);
}

void Mensajes::respondeDecimal(double valor) {
    encola(valor);
}

int Mensajes::respuestasPendientes() {
    auto& e = estado();
    std::lock_guard<std::mutex> g(e.candado);
    return static_cast<int>(e.cola.size());
}

QStringList Mensajes::ultimos() {
    auto& e = estado();
    std::lock_guard<std::mutex> g(e.candado);
    QStringList lista;
    lista.swap(e.anotados);
    return lista;
}

} // namespace cajaplex
