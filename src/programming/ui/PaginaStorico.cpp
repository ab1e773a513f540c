#include "programming/ui/PaginaStorico.h"

#include "base/Lingua.h"
#include "link/SessioneLinea.h"
#include "programming/ui/ComandoPagina.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace kv {

namespace {

constexpr char Sezione[] = "StoricoEcu";

IdentitaEcu identita(const StatoEcu &ecu)
{
    return {ecu.InfCodice, ecu.InfDatoA, ecu.InfDatoB};
}

} // namespace

PaginaStorico::PaginaStorico(const ContestoProgrammazione &contesto, QWidget *parent)
    : PaginaVistaMappe(contesto, QString::fromLatin1(Sezione), parent)
    , m_scrittura(contesto.linea, contesto.percorsoApp, static_cast<VistaMappe &>(*this))
{
    const int u = fontMetrics().averageCharWidth();
    const auto tasto = [this, u](const char *nome, Qt::Key chiave, void (PaginaStorico::*azione)()) {
        auto *b = new QPushButton(this);
        b->setObjectName(QString::fromLatin1(nome));
        PreparaComando(this, b, chiave, 14 * u);
        connect(b, &QPushButton::clicked, this, azione);
        return b;
    };
    m_confronta = tasto("Confronta", Qt::Key_F3, &PaginaStorico::Confronta);
    m_scrivi = tasto("Scrivi", Qt::Key_F2, &PaginaStorico::Scrivi);
    m_esci = tasto("Esci", Qt::Key_Escape, &PaginaStorico::Esci);

    m_ecu = new QLabel(this);
    m_ecu->setObjectName(QStringLiteral("Ecu"));
    m_ecu->setWordWrap(true);
    m_labVoci = new QLabel(this);
    m_voci = new QTreeWidget(this);
    m_voci->setObjectName(QStringLiteral("Voci"));
    m_voci->setColumnCount(4);
    m_voci->setRootIsDecorated(false);
    m_voci->setUniformRowHeights(true);
    m_voci->setAlternatingRowColors(true);
    m_voci->header()->setStretchLastSection(false);
    for (int c : {0, 1, 3})
        m_voci->header()->setSectionResizeMode(c, QHeaderView::ResizeToContents);
    m_voci->header()->setSectionResizeMode(2, QHeaderView::Stretch);
    m_labVoci->setBuddy(m_voci);
    setFocusProxy(m_voci);
    connect(m_voci, &QTreeWidget::itemActivated, m_confronta, &QPushButton::click);
    m_verifica = new QCheckBox(this);
    m_verifica->setObjectName(QStringLiteral("Verifica"));
    m_verifica->setChecked(true);

    auto *comandi = new QHBoxLayout;
    comandi->addWidget(m_confronta);
    comandi->addWidget(m_scrivi);
    comandi->addWidget(m_verifica);
    comandi->addStretch(1);
    auto *fondo = new QHBoxLayout;
    fondo->addWidget(rigaSegnalazione(), 1);
    fondo->addWidget(m_esci);
    auto *l = new QVBoxLayout(this);
    l->addWidget(m_ecu);
    l->addWidget(m_labVoci);
    l->addWidget(m_voci, 1);
    l->addLayout(comandi);
    l->addWidget(barra());
    l->addLayout(fondo);
}

void PaginaStorico::carica()
{
    setWindowTitle(testo(QStringLiteral("CAPTION")));
    m_labVoci->setText(testo(QStringLiteral("LABVOCI")));
    QStringList colonne;
    for (int c = 0; c < 4; ++c)
        colonne << testo(QStringLiteral("COLONNA.%1").arg(c));
    m_voci->setHeaderLabels(colonne);
    m_confronta->setText(testo(QStringLiteral("CONFRONTA")));
    m_scrivi->setText(testo(QStringLiteral("SCRIVI")));
    m_verifica->setText(testo(QStringLiteral("VERIFICA")));
    m_esci->setText(QLatin1Char('&') + contesto().lingua.LeggiTesto("TASTI", "ESCI").trimmed()
                    + QStringLiteral("  (Esc)"));
    riempi();
    m_voci->setFocus(Qt::OtherFocusReason);
}

void PaginaStorico::riempi()
{
    const StatoEcu &ecu = contesto().linea.ecu();
    const IdentitaEcu id = identita(ecu);
    m_voci->clear();
    m_elenco.clear();
    if (ecu.EcuDaIdentificare || id.vuota()) {
        m_ecu->setText(testo(QStringLiteral("NESSUNA")));
        return;
    }
    m_ecu->setText(testo(QStringLiteral("LABECU"))
                       .replace(QLatin1String("XXX"),
                                QStringList{ecu.InfVeicolo, ecu.InfCodice, ecu.InfDatoA, ecu.InfDatoB}
                                    .join(u' ')
                                    .simplified()));
    EsitoArchivio esito;
    m_elenco = ElencaStorico(contesto().percorsoApp, id, &esito);
    const Lingua &l = contesto().lingua;
    for (const VoceStorico &v : std::as_const(m_elenco)) {
        // What was about to happen, by the title of the page that did it.
        QString evento = testo(QStringLiteral("EVENTO.") + v.evento);
        for (const char *chiave : {"CAPTION", "CAPTION.0"})
            if (evento.isEmpty() && !v.evento.isEmpty())
                evento = l.LeggiTesto(v.evento, QString::fromLatin1(chiave)).trimmed();
        auto *item = new QTreeWidgetItem(
            m_voci,
            {QLocale().toString(v.quando.date(), QLocale::ShortFormat), v.quando.time().toString(u"HH:mm:ss"),
             evento.isEmpty() ? testo(QStringLiteral("CAMBIAMENTO")) : evento,
             v.scalaLambda ? QString::number(*v.scalaLambda) : QStringLiteral("-")});
        item->setTextAlignment(3, Qt::AlignRight | Qt::AlignVCenter);
    }
    if (!m_elenco.isEmpty())
        m_voci->setCurrentItem(m_voci->topLevelItem(0));
    mostraTesto(!esito.ok()          ? l.testo(MessaggioArchivio(esito))
                : m_elenco.isEmpty() ? testo(QStringLiteral("VUOTO"))
                                     : QString());
}

const VoceStorico *PaginaStorico::scelta()
{
    const int riga = m_voci->indexOfTopLevelItem(m_voci->currentItem());
    if (riga < 0 || riga >= m_elenco.size()) {
        mostraTesto(testo(QStringLiteral("SCEGLIVOCE")));
        return nullptr;
    }
    return &m_elenco.at(riga);
}

void PaginaStorico::Confronta()
{
    if (const VoceStorico *v = scelta())
        emit confronta(*v);
}

void PaginaStorico::Scrivi()
{
    const VoceStorico *v = scelta();
    if (!v)
        return;
    const QString nome =
        testo(QStringLiteral("NOME"))
            .replace(QLatin1String("XXX"), QLocale().toString(v->quando, QLocale::ShortFormat));
    m_scrittura.ProgrammaImmagine(v->immagine, nome, m_verifica->isChecked());
}

void PaginaStorico::Esci()
{
    m_scrittura.Esci();
}

void PaginaStorico::abilitaPagina(bool abilitata)
{
    setEnabled(abilitata);
    if (!abilitata)
        return;
    // The write may have filed the map it replaced: the list shows it at once.
    const QString messaggio = segnalazione();
    const int riga = m_voci->indexOfTopLevelItem(m_voci->currentItem());
    const int prima = int(m_elenco.size());
    riempi();
    if (riga >= 0 && m_voci->topLevelItemCount() > 0)
        m_voci->setCurrentItem(
            m_voci->topLevelItem(qMin(riga + int(m_elenco.size()) - prima, m_voci->topLevelItemCount() - 1)));
    mostraTesto(messaggio);
    m_voci->setFocus(Qt::OtherFocusReason);
}

} // namespace kv
