#include "monitoring/ui/Memorf.h"
#include "base/Lingua.h"

#include "shell/ui/MsgBox1.h"
#include "shell/ui/Stile.h"

#include <QApplication>
#include <QFocusEvent>
#include <QFontDatabase>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QShortcut>
#include <QVBoxLayout>
#include <QValidator>

namespace kv {

namespace {

constexpr int Si = 6;

// Make, model and file become folders and a file: what could lead out of DATI, or that
// the program's files cannot hold, is not taken as typed or pasted.
class FiltroNome : public QValidator
{
public:
    using QValidator::QValidator;
    State validate(QString &testo, int &) const override
    {
        for (QChar c : std::as_const(testo))
            if (!SchedaRegistrazione::CarattereAmmesso(c))
                return Invalid;
        return testo.trimmed().startsWith(u'.') ? Invalid : Acceptable;
    }
};

} // namespace

Memorf::Memorf(const QString &percorsoApp, const Lingua &lingua, AnelloRegistrazione &anello, QWidget *parent)
    : QDialog(parent)
    , m_lingua(lingua)
    , m_logica(percorsoApp, anello)
    , m_scheda(new QGroupBox(this))
    , m_elenco(new QListWidget(this))
    , m_segnalazione(new QLabel(this))
    , m_memorizza(new QPushButton(this))
    , m_esci(new QPushButton(this))
{
    setObjectName(QStringLiteral("Memorf"));
    const Lingua &l = lingua;
    // The one question here deletes a recording: a stray Enter answers No.
    m_messaggio = [this](const QString &testo, int flags, const QString &titolo) {
        return MostraMsg(m_lingua, testo, flags, titolo, flags == 36 ? 1 : 0, this);
    };

    setWindowTitle(l.LeggiTesto("Memorf", "CAPTION").trimmed());
    m_scheda->setObjectName(QStringLiteral("Scheda"));
    auto *griglia = new QGridLayout(m_scheda);
    const int u = fontMetrics().averageCharWidth();
    auto *filtro = new FiltroNome(this);
    for (int i = 0; i < SchedaRegistrazione::NumeroCaselle; ++i) {
        auto *c = new QLineEdit(m_scheda);
        c->setObjectName(QStringLiteral("Inf_Scheda_%1").arg(i));
        c->setMaxLength(SchedaRegistrazione::Lunghezza[static_cast<std::size_t>(i)]);
        if (i != SchedaRegistrazione::Note)
            c->setValidator(filtro);
        c->installEventFilter(this);
        c->setMinimumWidth(u * (i == SchedaRegistrazione::File ? 24 : 52));
        auto *etichetta =
            new QLabel(l.LeggiTesto("Memorf", "LABSCHEDA." + QString::number(i)).trimmed(), m_scheda);
        etichetta->setObjectName(QStringLiteral("LabScheda_%1").arg(i));
        etichetta->setBuddy(c);
        griglia->addWidget(etichetta, i, 0);
        griglia->addWidget(c, i, 1, Qt::AlignLeft);
        m_caselle[static_cast<std::size_t>(i)] = c;
        if (i == SchedaRegistrazione::Marca || i == SchedaRegistrazione::Modello)
            connect(c, &QLineEdit::textEdited, this, &Memorf::riempiElenco);
    }
    griglia->setColumnStretch(1, 1);

    auto *labElenco = new QLabel(l.LeggiTesto("Memorf", "ELENCO").trimmed(), this);
    labElenco->setBuddy(m_elenco);
    m_elenco->setObjectName(QStringLiteral("ElencoEsi"));
    // Fixed pitch, so that the models stand in one column behind makes of any length.
    m_elenco->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    // Room for a whole entry and for a few of them.
    const QFontMetrics fm(m_elenco->font());
    m_elenco->setMinimumWidth(fm.horizontalAdvance(QString(100, u'M')) + 4 * u);
    m_elenco->setMinimumHeight(fm.height() * 7 + 2 * m_elenco->frameWidth());
    m_elenco->installEventFilter(this);
    connect(m_elenco, &QListWidget::currentRowChanged, this, &Memorf::sceltaVoce);
    connect(m_elenco, &QListWidget::itemClicked, this,
            [this](QListWidgetItem *v) { sceltaVoce(m_elenco->row(v)); });

    m_segnalazione->setObjectName(QStringLiteral("Segnalazione"));
    m_segnalazione->setWordWrap(true);
    m_segnalazione->setStyleSheet(QStringLiteral("color: #b71c1c; font-weight: bold;"));
    m_segnalazione->hide();

    m_memorizza->setObjectName(QStringLiteral("Memorizza"));
    m_esci->setObjectName(QStringLiteral("Esci"));
    m_memorizza->setText(ConTastoAlt(l.LeggiTesto("TASTI", "MEMORIZZA").trimmed()) + QStringLiteral(" (F2)"));
    m_esci->setText(ConTastoAlt(l.LeggiTesto("TASTI", "ESCI").trimmed()));
    m_memorizza->setAutoDefault(false);
    m_esci->setAutoDefault(false);
    connect(m_memorizza, &QPushButton::clicked, this, &Memorf::Memorizza);
    connect(m_esci, &QPushButton::clicked, this, &Memorf::Esci);
    auto *f2 = new QShortcut(QKeySequence(Qt::Key_F2), this);
    connect(f2, &QShortcut::activated, this, &Memorf::Memorizza);

    auto *tasti = new QHBoxLayout;
    tasti->addStretch(1);
    tasti->addWidget(m_memorizza);
    tasti->addWidget(m_esci);
    auto *colonna = new QVBoxLayout(this);
    colonna->setContentsMargins(2 * u, 2 * u, 2 * u, 2 * u);
    colonna->addWidget(m_scheda);
    colonna->addSpacing(u);
    colonna->addWidget(labElenco);
    colonna->addWidget(m_elenco, 1);
    colonna->addWidget(m_segnalazione);
    colonna->addLayout(tasti);

    titoloScheda();
    if (!m_logica.Apri()) {
        m_elenco->setEnabled(false);
        m_scheda->hide();
        m_memorizza->setEnabled(false);
        m_segnalazione->setText(l.testo(MessaggioArchivio(m_logica.esitoArchivio())));
        m_segnalazione->show();
        m_esci->setFocus(Qt::OtherFocusReason);
        return;
    }
    riempiElenco();
    m_caselle[SchedaRegistrazione::Marca]->setFocus(Qt::OtherFocusReason);
}

Memorf::~Memorf()
{
    m_logica.Chiudi();
}

void Memorf::done(int esito)
{
    m_logica.Chiudi();
    QDialog::done(esito);
}

void Memorf::Esci()
{
    reject();
}

void Memorf::riempiElenco()
{
    QScopedValueRollback riempiendo(m_riempiendo, true);
    m_elenco->clear();
    m_nomeEsi.clear();
    const auto voci = m_logica.ElencoEsi(m_caselle[SchedaRegistrazione::Marca]->text(),
                                         m_caselle[SchedaRegistrazione::Modello]->text());
    for (const SchedaRegistrazione::Voce &v : voci) {
        m_elenco->addItem(v.testo);
        // Cards of one car differ by their file alone.
        m_elenco->item(m_elenco->count() - 1)->setToolTip(v.file);
        m_nomeEsi << v.file;
    }
}

void Memorf::sceltaVoce(int riga)
{
    if (m_riempiendo || riga < 0 || riga >= m_nomeEsi.size())
        return;
    const auto scheda = m_logica.LeggiScheda({m_elenco->item(riga)->text(), m_nomeEsi.at(riga)});
    if (!scheda)
        return;
    QScopedValueRollback riempiendo(m_riempiendo, true);
    for (std::size_t i = 0; i < m_caselle.size(); ++i) {
        m_caselle[i]->setText((*scheda)[i]);
        m_caselle[i]->home(false);
    }
    titoloScheda();
}

void Memorf::titoloScheda()
{
    const QString marca = m_caselle[SchedaRegistrazione::Marca]->text().trimmed();
    const QString modello = m_caselle[SchedaRegistrazione::Modello]->text().trimmed();
    QString t = m_lingua.LeggiTesto("Memorf", "SCHEDA").trimmed() + u' ';
    if (!marca.isEmpty() || !modello.isEmpty())
        t += QStringLiteral("- ") + marca + u' ' + modello;
    m_scheda->setTitle(t);
}

bool Memorf::eventFilter(QObject *oggetto, QEvent *evento)
{
    const auto tipo = evento->type();
    if (tipo == QEvent::KeyPress) {
        // Enter moves on, in the boxes and in the list, as Tab does.
        const int tasto = static_cast<QKeyEvent *>(evento)->key();
        if ((tasto == Qt::Key_Return || tasto == Qt::Key_Enter)
            && (oggetto == m_elenco || qobject_cast<QLineEdit *>(oggetto))) {
            focusNextChild();
            return true;
        }
    }
    const auto i = std::find(m_caselle.begin(), m_caselle.end(), oggetto);
    if (i != m_caselle.end() && (tipo == QEvent::FocusIn || tipo == QEvent::FocusOut)) {
        QLineEdit *c = *i;
        const int n = int(i - m_caselle.begin());
        // The text is worked on trimmed and stands padded to its length when left.
        if (tipo == QEvent::FocusIn) {
            c->setText(c->text().trimmed());
        } else if (static_cast<QFocusEvent *>(evento)->reason() != Qt::PopupFocusReason) {
            c->setText(SchedaRegistrazione::Imbottita(c->text(), n));
            c->home(false); // the text, not the blanks behind it
            if (n == SchedaRegistrazione::Marca || n == SchedaRegistrazione::Modello)
                titoloScheda();
        }
    }
    return QDialog::eventFilter(oggetto, evento);
}

void Memorf::Memorizza()
{
    if (m_inMemorizza || !m_memorizza->isEnabled())
        return;
    QScopedValueRollback inMemorizza(m_inMemorizza, true);
    const Lingua &l = m_lingua;
    SchedaRegistrazione::Caselle testi;
    for (std::size_t i = 0; i < m_caselle.size(); ++i)
        testi[i] = m_caselle[i]->text();
    const auto sostituire = [&] {
        QApplication::beep();
        return m_messaggio(l.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_8"), 36,
                           l.LeggiTesto("SEGNALAZIONI", "TITOLO_1"))
               == Si;
    };
    const SchedaRegistrazione::Esito esito = m_logica.Memorizza(testi, sostituire);
    using T = SchedaRegistrazione::Esito::Tipo;
    switch (esito.tipo) {
    case T::Fatto:
        accept();
        return;
    case T::Vuota:
        QApplication::beep();
        m_caselle[static_cast<std::size_t>(esito.casella)]->setFocus(Qt::OtherFocusReason);
        return;
    case T::NonSostituita:
        m_caselle[SchedaRegistrazione::File]->setFocus(Qt::OtherFocusReason);
        return;
    case T::NomeRifiutato:
        m_messaggio(l.testo(MessaggioEsitoScheda(esito)), 48, l.LeggiTesto("SEGNALAZIONI", "TITOLO_1"));
        m_caselle[static_cast<std::size_t>(esito.casella)]->setFocus(Qt::OtherFocusReason);
        return;
    default:
        m_messaggio(l.testo(MessaggioEsitoScheda(esito)), 16, l.LeggiTesto("SEGNALAZIONI", "TITOLO_2"));
        // A card stored whose file could not be set: the list shows it already.
        riempiElenco();
        return;
    }
}

} // namespace kv
