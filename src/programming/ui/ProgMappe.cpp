#include "programming/ui/ProgMappe.h"
#include "base/Lingua.h"

#include "programming/ui/ModelloAlberoMappe.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QTimer>

namespace kv {

ProgMappe::ProgMappe(const ContestoProgrammazione &contesto, QWidget *parent)
    : TelaioMappe(contesto, QStringLiteral("ProgMappe"), parent)
    , m_scrittura(contesto.linea, contesto.percorsoApp, static_cast<VistaMappe &>(*this))
{
    m_labNote = new QLabel(this);
    m_labNote->setObjectName(QStringLiteral("LabNote"));
    m_note = new QLabel(this);
    m_note->setObjectName(QStringLiteral("Note"));
    m_note->setFrameShape(QFrame::StyledPanel);
    m_note->setFrameShadow(QFrame::Sunken);
    m_note->setWordWrap(true);
    m_note->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_note->setMinimumHeight(4 * m_note->fontMetrics().height());
    m_note->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_verifica = new QCheckBox(this);
    m_verifica->setObjectName(QStringLiteral("Verifica"));
    m_verifica->setChecked(true);

    QGridLayout *g = areaCampi();
    g->addWidget(m_labNote, 0, 0);
    g->addWidget(m_note, 1, 0);
    g->addWidget(m_verifica, 2, 0);
    g->setRowMinimumHeight(2, 3 * fontMetrics().height() / 2);
    comando()->setObjectName(QStringLiteral("Programma"));
}

void ProgMappe::caricaTestiAltrove()
{
    m_labNote->setText(testo(QStringLiteral("LABNOTE")));
    m_verifica->setText(testo(QStringLiteral("VERIFICA")));
    comando()->setText(QLatin1Char('&') + contesto().lingua.LeggiTesto("TASTI", "PROGRAMMA").trimmed()
                       + QStringLiteral("  (F2)"));
}

QList<QWidget *> ProgMappe::ordineCampi() const
{
    return {m_verifica};
}

void ProgMappe::Programmazione()
{
    const AlberoMappe &a = modello().albero();
    ChiaveMappa k;
    const int nodo = nodoScelto();
    if (a.valido(nodo) && a.nodo(nodo).livello == AlberoMappe::Livello::Modello)
        k = a.chiave(nodo);
    const int mappa = mappaScelta();
    if (a.valido(mappa))
        k.file = a.nodo(mappa).nome;
    m_scrittura.ProgrammaMappa(k, m_verifica->isChecked());
}

void ProgMappe::offriRiscrittura(const Messaggio &testo)
{
    // Not from inside the reply that ended the write: the link is free only once it returns.
    QTimer::singleShot(0, this, [this, testo] {
        if (domanda(testo, FlagDomandaMappe, Segnalazione(QStringLiteral("TITOLO_1"))) == RispostaSiMappe)
            m_scrittura.Riscrivi();
    });
}

void ProgMappe::nodoCliccato(int)
{
    m_note->clear();
}

void ProgMappe::mappaCliccata(int nodo)
{
    const AlberoMappe &a = modello().albero();
    m_note->setText(a.valido(nodo) ? a.nodo(nodo).nota.value_or(QString()) : QString());
}

} // namespace kv
