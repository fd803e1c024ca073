// Lo común a las pruebas del restaurante: la sesión de la empresa de demostración "Restaurante
// El Portal", tocar nodos de un árbol y leer un valor de la base.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include <QStackedWidget>
#include <QTest>
#include <QTreeWidget>

#include "tests/fixtures/Toques.h"

namespace cajaplex::prueba {

inline constexpr long long EmpresaRestaurante = 2;

class ConRestaurante : public ConPantallas {
protected:
    // La pantalla ya cargada, del tamaño de la tableta del mesero.
    template <typename F> std::unique_ptr<F> abre(const QString& usuario) {
        sesion_ = sesion(usuario, EmpresaRestaurante);
        auto f = std::make_unique<F>(sesion_);
        f->resize(1280, 800);
        f->show();
        esperaLeyenda(*f);
        Mensajes::ultimos();
        return f;
    }

    // La primera columna de la primera fila, como texto ("" si es NULL o no hay filas).
    std::string valor(const std::string& sql) {
        const Json v = c.valor(sql);
        if (v.is_null()) return "";
        return v.is_string() ? v.get<std::string>() : v.dump();
    }

    static QString pagina(const QWidget& f) {
        return control<QStackedWidget>(f, "PaginadorDatos")->currentWidget()->objectName();
    }

    Sesion sesion_;
};

// Toca el nodo del árbol con ese texto, como el dedo.
inline void tocaNodo(const QWidget& f, const char* arbol, const QString& texto) {
    auto* vista = control<QTreeWidget>(f, arbol);
    const auto items = vista->findItems(texto, Qt::MatchExactly | Qt::MatchRecursive);
    ASSERT_FALSE(items.isEmpty()) << arbol << ": sin nodo " << texto.toStdString();
    vista->scrollToItem(items.first());
    QTest::mouseClick(vista->viewport(), Qt::LeftButton, {},
                      vista->visualItemRect(items.first()).center());
    esperaLeyenda(f);
}

} // namespace cajaplex::prueba
