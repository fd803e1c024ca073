// Lo común a las pruebas de unidades, rangos y kits: esperar a la leyenda, hallar controles por
// nombre, tocar renglones y leer la bitácora.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QStringList>
#include <QTest>

#include "tests/fixtures/PruebaPantallas.h"

namespace cajaplex::prueba {

inline void toca(const QWidget& f, const char* boton) {
    QTest::mouseClick(control<QPushButton>(f, boton), Qt::LeftButton);
    esperaLeyenda(f);
}

inline void escribe(const QWidget& f, const char* campo, const QString& texto) {
    control<QLineEdit>(f, campo)->setText(texto);
}

inline void enter(const QWidget& f, const char* campo, const QString& texto) {
    auto* c = control<QLineEdit>(f, campo);
    c->setText(texto);
    QTest::keyClick(c, Qt::Key_Return);
    esperaLeyenda(f);
}

// Los valores de un rol en los renglones visibles de una lista.
inline QStringList renglones(const QWidget& f, const char* lista, int rol) {
    auto* vista = control<QListView>(f, lista);
    QStringList valores;
    for (int i = 0; i < vista->model()->rowCount(); ++i)
        if (!vista->isRowHidden(i)) valores << vista->model()->index(i, 0).data(rol).toString();
    return valores;
}

// Toca el renglón cuyo rol vale `valor`, como el dedo.
inline void tocaRenglon(const QWidget& f, const char* lista, int rol, const QString& valor) {
    auto* vista = control<QListView>(f, lista);
    const QAbstractItemModel* modelo = vista->model();
    for (int i = 0; i < modelo->rowCount(); ++i) {
        const QModelIndex indice = modelo->index(i, 0);
        if (indice.data(rol).toString() != valor) continue;
        vista->scrollTo(indice);
        QTest::mouseClick(vista->viewport(), Qt::LeftButton, {},
                          vista->visualRect(indice).center());
        esperaLeyenda(f);
        return;
    }
    ADD_FAILURE() << lista << ": sin renglón " << valor.toStdString();
}

inline QString rotulo(const QWidget& f, const char* nombre) {
    return control<QLabel>(f, nombre)->text();
}

} // namespace cajaplex::prueba
