#include "programming/ui/TelaioScambio.h"
#include "base/Lingua.h"

#include "programming/DialogoMappe.h"
#include "programming/ui/ComandoPagina.h"
#include "programming/ui/SceltaCartella.h"
#include "shell/ui/MsgBox1.h"
#include "shell/ui/Stile.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace kv {

namespace {

constexpr int FlagInformazione = 64;

} // namespace

TelaioScambio::Attesa::Attesa()
{
    QApplication::setOverrideCursor(Qt::WaitCursor);
}

TelaioScambio::Attesa::~Attesa()
{
    QApplication::restoreOverrideCursor();
}

TelaioScambio::TelaioScambio(const Lingua &lingua, QString percorsoApp, QString sezione, bool conCartella,
                             QWidget *parent)
    : QWidget(parent)
    , m_lingua(lingua)
    , m_percorsoApp(std::move(percorsoApp))
    , m_sezione(std::move(sezione))
    , m_corpo(new QVBoxLayout)
    , m_segnalazione(CreaRigaSegnalazione(QStringLiteral("Segnalazione"), this))
    , m_avvisi(new QPlainTextEdit(this))
    , m_comando(new QPushButton(this))
    , m_esci(new QPushButton(this))
{
    setObjectName(m_sezione);
    const int u = fontMetrics().averageCharWidth();
    if (conCartella)
        m_cartella = new SceltaCartella(this);

    m_avvisi->setObjectName(QStringLiteral("Avvisi"));
    m_avvisi->setReadOnly(true);
    m_avvisi->setFocusPolicy(Qt::ClickFocus);
    m_avvisi->setMaximumHeight(6 * m_avvisi->fontMetrics().height());
    m_avvisi->hide();

    m_esci->setObjectName(QStringLiteral("Esci"));
    auto *comandi = new QHBoxLayout;
    comandi->addWidget(m_comando);
    comandi->addStretch(1);
    comandi->addWidget(m_esci);
    PreparaComando(this, m_comando, Qt::Key_F2, 18 * u);
    PreparaComando(this, m_esci, Qt::Key_Escape, 18 * u);
    connect(m_comando, &QPushButton::clicked, this, [this] { Comando(); });
    connect(m_esci, &QPushButton::clicked, this, &TelaioScambio::chiusa);

    auto *principale = new QVBoxLayout(this);
    principale->addLayout(m_corpo, 1);
    principale->addWidget(m_segnalazione);
    principale->addWidget(m_avvisi);
    principale->addLayout(comandi);

    m_domanda = [this](const QString &t, int flags, const QString &titolo) {
        return kv::MostraMsg(m_lingua, t, flags, titolo, 0, this);
    };
}

void TelaioScambio::mettiCartella(QBoxLayout *dove)
{
    if (m_cartella)
        dove->addWidget(m_cartella);
}

void TelaioScambio::impostaModale(Modale modale)
{
    if (m_cartella)
        m_cartella->impostaModale(std::move(modale));
}

QString TelaioScambio::testo(const QString &chiave) const
{
    return testo(Messaggio(m_sezione, chiave));
}

QString TelaioScambio::testo(const Messaggio &m) const
{
    return m_lingua.testo(m).trimmed();
}

void TelaioScambio::caricaTesti(const QString &tastoComando, const QString &etichettaCartella)
{
    setWindowTitle(testo(QStringLiteral("CAPTION")));
    m_comando->setText(QLatin1Char('&') + testo(Messaggio(QStringLiteral("TASTI"), tastoComando))
                       + QStringLiteral("  (F2)"));
    m_esci->setText(QLatin1Char('&') + m_lingua.LeggiTesto("TASTI", "ESCI").trimmed()
                    + QStringLiteral("  (Esc)"));
    if (m_cartella)
        m_cartella->caricaTesti(m_lingua, etichettaCartella);
}

void TelaioScambio::showEvent(QShowEvent *evento)
{
    // The page's texts are all in by now: the folder's label gives way to the buttons.
    DistinguiTastiAlt(this);
    QWidget::showEvent(evento);
}

QString TelaioScambio::segnalazione() const
{
    return m_segnalazione->text();
}

QStringList TelaioScambio::avvisi() const
{
    const QString t = m_avvisi->toPlainText();
    return t.isEmpty() ? QStringList() : t.split(u'\n');
}

void TelaioScambio::mostraSegnalazione(const QString &testo)
{
    m_segnalazione->setText(testo);
    m_segnalazione->repaint();
}

void TelaioScambio::mostra(const EsitoScambio &esito)
{
    const Lingua &l = m_lingua;
    m_segnalazione->setText(l.testo(esito.messaggio));
    QStringList avvisi;
    for (const Messaggio &a : esito.avvisi)
        avvisi << l.testo(a);
    m_avvisi->setPlainText(avvisi.join(u'\n'));
    m_avvisi->setVisible(!avvisi.isEmpty());
}

bool TelaioScambio::chiedi(const Messaggio &m)
{
    const QString t = m_lingua.testo(m);
    const bool attesa = QApplication::overrideCursor() != nullptr;
    if (attesa)
        QApplication::restoreOverrideCursor();
    const int risposta = m_domanda(t, FlagDomandaMappe, testo(Segnalazione("TITOLO_1")));
    if (attesa)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    return risposta == RispostaSiMappe;
}

void TelaioScambio::avvisa(const QString &t)
{
    m_domanda(t, FlagInformazione, testo(Segnalazione("TITOLO_1")));
}

} // namespace kv
