#include "calibration/ui/StileTaratura.h"

#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QShortcut>

#include <vector>

namespace kv {

QLabel *CreaIstruzione(QWidget *parent)
{
    auto *l = new QLabel(parent);
    l->setWordWrap(true);
    l->setAlignment(Qt::AlignCenter);
    QFont f = l->font();
    f.setBold(true);
    // About 11 mm high capitals on a common monitor: readable from a few steps away.
    f.setPixelSize(34);
    l->setFont(f);
    QPalette p = l->palette();
    p.setColor(QPalette::Window, QColor(0x10, 0x18, 0x20));
    p.setColor(QPalette::WindowText, QColor(0xFF, 0xE0, 0x40));
    l->setPalette(p);
    l->setAutoFillBackground(true);
    l->setMargin(12);
    // Three lines always fit, so that the page does not jump as the texts change.
    l->setMinimumHeight(l->fontMetrics().lineSpacing() * 3 + 24);
    return l;
}

QLabel *CreaValore(QWidget *parent, int cifre)
{
    auto *l = new QLabel(parent);
    l->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    l->setFrameShape(QFrame::Panel);
    l->setFrameShadow(QFrame::Sunken);
    QFont f = l->font();
    f.setBold(true);
    f.setPixelSize(30);
    f.setStyleHint(QFont::Monospace);
    l->setFont(f);
    l->setMinimumWidth(l->fontMetrics().horizontalAdvance(QString(cifre, QLatin1Char('0'))) + 20);
    QPalette p = l->palette();
    p.setColor(QPalette::Window, QColor(0x10, 0x18, 0x20));
    p.setColor(QPalette::WindowText, QColor(0x7C, 0xFC, 0x9A));
    l->setPalette(p);
    l->setAutoFillBackground(true);
    l->setContentsMargins(8, 2, 8, 2);
    return l;
}

QLabel *CreaSegnalazione1(QWidget *parent)
{
    auto *l = new QLabel(parent);
    l->setObjectName(QStringLiteral("Segnalazione1"));
    l->setFrameShape(QFrame::StyledPanel);
    l->setFrameShadow(QFrame::Sunken);
    l->setWordWrap(true);
    QFont f = l->font();
    f.setPointSizeF(f.pointSizeF() * 1.2);
    l->setFont(f);
    l->setMinimumHeight(l->fontMetrics().height() + 10);
    return l;
}

QPushButton *CreaTasto(QWidget *parent, const QString &nome)
{
    auto *b = new QPushButton(parent);
    b->setObjectName(nome);
    b->setAutoDefault(true);
    b->setMinimumWidth(140);
    QFont f = b->font();
    f.setBold(true);
    f.setPointSizeF(f.pointSizeF() * 1.2);
    b->setFont(f);
    b->setMinimumHeight(QFontMetrics(f).height() * 2);
    return b;
}

void ScorciatoiaPagina(QWidget *pagina, const QKeySequence &tasto, std::initializer_list<QPushButton *> tasti)
{
    auto *s = new QShortcut(tasto, pagina);
    s->setContext(Qt::WindowShortcut);
    std::vector<QPointer<QPushButton>> scelta(tasti.begin(), tasti.end());
    QObject::connect(s, &QShortcut::activated, pagina, [scelta] {
        for (const QPointer<QPushButton> &b : scelta) {
            if (b && b->isEnabled() && b->isVisible()) {
                b->click();
                return;
            }
        }
    });
}

} // namespace kv
