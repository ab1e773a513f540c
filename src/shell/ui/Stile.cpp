#include "shell/ui/Stile.h"

#include <QLabel>
#include <QListWidget>

namespace kv {

QLabel *CreaIntestazione(const QString &testo, QWidget *parent)
{
    auto *etichetta = new QLabel(testo, parent);
    etichetta->setObjectName(QStringLiteral("Intestazione"));
    QFont f = etichetta->font();
    f.setPointSizeF(f.pointSizeF() * 1.5);
    f.setBold(true);
    etichetta->setFont(f);
    return etichetta;
}

void DimensionaElenco(QListWidget *elenco, int righe)
{
    elenco->setSpacing(0);
    elenco->setUniformItemSizes(true);
    const int alta = elenco->fontMetrics().height() * 3 / 2;
    for (int i = 0; i < elenco->count(); ++i)
        elenco->item(i)->setSizeHint(QSize(0, alta));
    const int visibili = qMax(1, qMin(righe, elenco->count()));
    elenco->setFixedHeight(alta * visibili + 2 * elenco->frameWidth() + 2);
}

} // namespace kv
