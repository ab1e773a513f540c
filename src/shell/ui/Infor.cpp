#include "shell/ui/Infor.h"
#include "base/Lingua.h"

#include "shell/InfoProgramma.h"
#include "shell/ui/Korvantine.h"
#include "shell/ui/Logo.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace kv {

Infor::Infor(Korvantine &frame, const Lingua &lingua) : QDialog(&frame)
{
    setObjectName(QStringLiteral("Infor"));
    const Lingua &l = lingua;
    setWindowTitle(l.LeggiTesto("Infor", "CAPTION").trimmed());

    auto *logo = new Logo(this);
    logo->setFixedSize(logo->sizeHint() * 1.5);
    logo->setCursor(Qt::ArrowCursor);

    auto *titolo = new QLabel(l.LeggiTesto("Infor", "LBLTITLE").trimmed(), this);
    titolo->setObjectName(QStringLiteral("lblTitle"));
    QFont grande = titolo->font();
    grande.setPointSizeF(grande.pointSizeF() * 1.8);
    grande.setBold(true);
    titolo->setFont(grande);
    auto *versione = new QLabel(
        l.LeggiTesto("Infor", "LBLVERSION").trimmed() + u' ' + InfoProgramma::NumeroVersione(), this);
    versione->setObjectName(QStringLiteral("lblVersion"));
    auto *descrizione = new QLabel(InfoProgramma::Descrizione(), this);
    descrizione->setObjectName(QStringLiteral("lblDescription"));
    descrizione->setWordWrap(true);
    auto *avvertenza = new QLabel(InfoProgramma::TestoAzienda().replace(u'#', u'\n'), this);
    avvertenza->setObjectName(QStringLiteral("lblDisclaimer"));
    avvertenza->setWordWrap(true);
    avvertenza->setForegroundRole(QPalette::PlaceholderText);

    auto *ok = new QPushButton(l.LeggiTesto("TASTI", "OK").trimmed(), this);
    ok->setObjectName(QStringLiteral("cmdOK"));
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);

    const int u = fontMetrics().averageCharWidth();
    auto *testi = new QVBoxLayout;
    testi->addWidget(titolo);
    testi->addWidget(versione);
    testi->addSpacing(u);
    testi->addWidget(descrizione);
    testi->addSpacing(u);
    testi->addWidget(avvertenza);
    auto *riga = new QHBoxLayout;
    riga->setSpacing(3 * u);
    riga->addWidget(logo, 0, Qt::AlignTop);
    riga->addLayout(testi, 1);
    auto *tasti = new QHBoxLayout;
    tasti->addStretch(1);
    tasti->addWidget(ok);
    auto *colonna = new QVBoxLayout(this);
    colonna->setContentsMargins(3 * u, 2 * u, 3 * u, 2 * u);
    colonna->addLayout(riga);
    colonna->addSpacing(2 * u);
    colonna->addLayout(tasti);
    setMinimumWidth(u * 60);
    // Esc closes the box through QDialog; the frame hears finished() and enables the menu.
}

} // namespace kv
