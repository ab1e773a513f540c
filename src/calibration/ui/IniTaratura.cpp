#include "calibration/ui/IniTaratura.h"
#include "base/Lingua.h"

#include "calibration/SequenzaTaratura.h"
#include "calibration/ui/StileTaratura.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace kv {

IniTaratura::IniTaratura(SequenzaTaratura &sequenza, const Lingua &lingua, QWidget *parent)
    : QDialog(parent)
    , m_sequenza(sequenza)
    , m_lingua(lingua)
    , m_segnalazione(CreaIstruzione(this))
    , m_ok(CreaTasto(this, QStringLiteral("TastoOK")))
    , m_annulla(CreaTasto(this, QStringLiteral("TastoAnnulla")))
{
    setObjectName(QStringLiteral("IniTaratura"));
    const Lingua &l = lingua;
    setWindowTitle(l.testo(
        SequenzaTaratura::ComponiPasso({QStringLiteral("IniTaratura"), QStringLiteral("CAPTION")}, 1)));
    m_segnalazione->setObjectName(QStringLiteral("Segnalazione"));
    m_segnalazione->setText(l.LeggiTesto("IniTaratura", "SEGNALAZIONE.1"));
    // A warning to read before starting, at the desk: large, but not the size of an instruction.
    QFont f = m_segnalazione->font();
    f.setPixelSize(24);
    m_segnalazione->setFont(f);
    m_segnalazione->setMinimumWidth(620);
    m_ok->setText(ConTastoAlt(l.LeggiTesto("TASTI", "OK")));
    m_annulla->setText(ConTastoAlt(l.LeggiTesto("TASTI", "ANNULLA")));
    connect(m_ok, &QPushButton::clicked, this, &IniTaratura::TastoOK);
    connect(m_annulla, &QPushButton::clicked, this, &IniTaratura::TastoAnnulla);
    ScorciatoiaPagina(this, QKeySequence(Qt::Key_F2), {m_ok});

    auto *colonna = new QVBoxLayout(this);
    colonna->addWidget(m_segnalazione, 1);
    auto *tasti = new QHBoxLayout;
    tasti->addStretch(1);
    tasti->addWidget(m_ok);
    tasti->addWidget(m_annulla);
    colonna->addLayout(tasti);
    m_ok->setFocus(Qt::OtherFocusReason);
    m_sequenza.paginaAvvisoAperta();
}

void IniTaratura::TastoOK()
{
    // The page goes at once: a second OK can find nothing to press.
    if (m_chiusa)
        return;
    m_chiusa = true;
    m_sequenza.TastoOK();
    accept();
}

void IniTaratura::TastoAnnulla()
{
    if (m_chiusa)
        return;
    m_chiusa = true;
    m_sequenza.TastoAnnulla();
    QDialog::reject();
}

void IniTaratura::reject()
{
    // Esc and the window's close box are Cancel.
    TastoAnnulla();
}

} // namespace kv
