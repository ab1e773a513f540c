#include "shell/ui/Stile.h"

#include <QAbstractButton>
#include <QLabel>
#include <QListWidget>
#include <QSet>

#include <algorithm>
#include <cmath>

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

QLabel *CreaRigaSegnalazione(const QString &nome, QWidget *parent)
{
    auto *riga = new QLabel(parent);
    riga->setObjectName(nome);
    riga->setFrameShape(QFrame::StyledPanel);
    riga->setFrameShadow(QFrame::Sunken);
    riga->setWordWrap(true);
    riga->setMinimumHeight(2 * riga->fontMetrics().height() + 10);
    return riga;
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

namespace Tavolozza {

QColor Sfumatura(const QColor &a, const QColor &b, double t)
{
    const double f = std::clamp(t, 0.0, 1.0);
    const auto mezzo = [f](int x, int y) { return static_cast<int>(std::lround(x + (y - x) * f)); };
    return QColor(mezzo(a.red(), b.red()), mezzo(a.green(), b.green()), mezzo(a.blue(), b.blue()));
}

} // namespace Tavolozza

QString ConTastoAlt(const QString &testo)
{
    if (testo.contains(QLatin1Char('&')))
        return testo;
    for (qsizetype i = 0; i < testo.size(); ++i)
        if (testo.at(i).isLetterOrNumber())
            return QString(testo).insert(i, QLatin1Char('&'));
    return testo;
}

namespace {

// The letter after the lone '&' of a caption, none when it marks no key.
QChar tastoAlt(const QString &testo)
{
    for (qsizetype i = 0; i + 1 < testo.size(); ++i) {
        if (testo.at(i) != u'&')
            continue;
        if (testo.at(i + 1) != u'&')
            return testo.at(i + 1).toLower();
        ++i;
    }
    return {};
}

} // namespace

void DistinguiTastiAlt(QWidget *pagina)
{
    QSet<QChar> presi;
    for (const QAbstractButton *b : pagina->findChildren<QAbstractButton *>())
        if (const QChar t = tastoAlt(b->text()); !t.isNull())
            presi.insert(t);
    for (QLabel *l : pagina->findChildren<QLabel *>()) {
        const QChar t = tastoAlt(l->text());
        if (!l->buddy() || t.isNull() || !presi.contains(t)) {
            if (!t.isNull())
                presi.insert(t);
            continue;
        }
        QString testo = l->text();
        testo.remove(testo.indexOf(u'&'), 1);
        for (qsizetype i = 0; i < testo.size(); ++i) {
            const QChar c = testo.at(i).toLower();
            if (c.isLetterOrNumber() && !presi.contains(c)) {
                testo.insert(i, u'&');
                presi.insert(c);
                break;
            }
        }
        l->setText(testo);
    }
}

} // namespace kv
