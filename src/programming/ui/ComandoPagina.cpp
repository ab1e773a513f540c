#include "programming/ui/ComandoPagina.h"

#include <QPushButton>
#include <QShortcut>

namespace kv {

void PreparaComando(QWidget *pagina, QPushButton *comando, const QKeySequence &tasto, int larghezza)
{
    comando->setAutoDefault(false);
    comando->setMinimumWidth(larghezza);
    // The page sees the key before its lists and fields do.
    auto *s = new QShortcut(tasto, pagina);
    s->setContext(Qt::WindowShortcut);
    QObject::connect(s, &QShortcut::activated, pagina, [pagina, comando] {
        if (comando->isEnabled() && comando->isVisible() && pagina->isEnabled())
            comando->click();
    });
}

} // namespace kv
