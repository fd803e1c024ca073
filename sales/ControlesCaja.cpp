#include "sales/ControlesCaja.h"

#include <QDoubleValidator>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QtDebug>

#include "datos/ControlAcceso.h"
#include "datos/MensajesComunes.h"
#include "datos/ModuloDatos.h"
#include "pantallas/HojaEstilo.h"

namespace cajaplex {

QLineEdit* creaCampoImporte(const QString& nombre, const QString& accesible, QWidget* padre) {
    auto* campo = new QLineEdit(padre);
    campo->setObjectName(nombre);
    campo->setAccessibleName(accesible);
    campo->setAlignment(Qt::AlignRight);
    campo->setMinimumHeight(AltoControl);
    auto* validador = new QDoubleValidator(campo);
    validador->setBottom(0.0);
    validador->setNotation(QDoubleValidator::StandardNotation);
    validador->setLocale(QLocale::c());
    campo->setValidator(validador);
    return campo;
}

QHBoxLayout* pieConBoton(const QString& imagen, const QString& texto, const QString& nombre,
                         QWidget* padre, QPushButton*& boton) {
    boton = creaBoton(imagen, texto, nombre, "primario", padre);
    boton->setAccessibleName(texto);
    boton->setMinimumWidth(220);
    auto* pie = new QHBoxLayout;
    pie->addStretch(1);
    pie->addWidget(boton);
    return pie;
}

QString rechazoDispositivo(const QString& dispositivo) {
    try {
        if (dispositivoAutorizado(ModuloDeDatos.ConexionBD, dispositivo)) return {};
        return QString::fromUtf8(MensajeDispositivoNoAutorizado) + dispositivo;
    } catch (const ErrorServicio& e) {
        qWarning() << "Revisión del dispositivo" << dispositivo << ":" << e.mensaje();
        return QString::fromUtf8(MensajeErrorLectura) + QStringLiteral(": ") + e.mensaje();
    }
}

} // namespace cajaplex
