#pragma once

// Keys as a keyboard sends them, each to whatever has the focus by then, and a page of the
// main frame whose questions are noted and answered Yes.

#include "shell/ui/Korvantine.h"

#include <QApplication>
#include <QTest>

#include <initializer_list>

namespace kv {

inline QWidget *fuoco()
{
    return QApplication::focusWidget();
}

inline void tasti(std::initializer_list<Qt::Key> elenco, Qt::KeyboardModifiers m = Qt::NoModifier)
{
    for (Qt::Key k : elenco)
        QTest::keyClick(fuoco(), k, m);
}

template <typename Pagina>
Pagina *apriChiedendo(Korvantine &frame, IdPagina id, QStringList &domande)
{
    auto *pagina = qobject_cast<Pagina *>(frame.apriPagina(id));
    if (pagina)
        pagina->impostaDomanda([&domande](const QString &testo, int, const QString &) {
            domande << testo;
            return 6;
        });
    return pagina;
}

} // namespace kv
