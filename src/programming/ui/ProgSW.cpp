#include "programming/ui/ProgSW.h"
#include "base/Lingua.h"

#include "programming/DialogoMappe.h"
#include "programming/ImmagineS19.h"
#include "programming/ui/ComandoPagina.h"
#include "shell/ui/MsgBox1.h"
#include "shell/ui/Stile.h"

#include <QApplication>
#include <QFocusEvent>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace kv {

namespace {

// Qt makes the first node current when the list takes the focus, so the fitter's first Down
// would skip it; here no node is current until one is chosen.
class ListaSoftware : public QTreeWidget
{
public:
    using QTreeWidget::QTreeWidget;

protected:
    void focusInEvent(QFocusEvent *evento) override
    {
        QTreeWidget::focusInEvent(evento);
        if (selectedItems().isEmpty())
            selectionModel()->clearCurrentIndex();
    }
};

QLabel *campo(QWidget *parent, const char *nome)
{
    auto *l = new QLabel(parent);
    l->setObjectName(QLatin1String(nome));
    l->setWordWrap(true);
    l->setTextInteractionFlags(Qt::TextSelectableByMouse);
    l->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    return l;
}

} // namespace

ProgSW::ProgSW(const ContestoProgrammazione &contesto, QWidget *parent)
    : QWidget(parent)
    , m_contesto(contesto)
    , m_boxProg(new QGroupBox(this))
    , m_lSoftware(new ListaSoftware(m_boxProg))
    , m_labVersione(new QLabel(m_boxProg))
    , m_versione(campo(m_boxProg, "Versione"))
    , m_labNote(new QLabel(m_boxProg))
    , m_note(campo(m_boxProg, "Note"))
    , m_barraPercentuale(new QProgressBar(this))
    , m_segnalazione1(CreaRigaSegnalazione(QStringLiteral("Segnalazione1"), this))
    , m_tastoProgramma(new QPushButton(this))
    , m_tastoEsci(new QPushButton(this))
{
    setObjectName(QStringLiteral("ProgSW"));
    m_dialogo = std::make_unique<DialogoProgSW>(contesto.linea, contesto.percorsoApp,
                                                static_cast<VistaProgSW &>(*this));

    m_boxProg->setObjectName(QStringLiteral("BoxProg"));
    m_lSoftware->setObjectName(QStringLiteral("LSoftware"));
    m_lSoftware->setHeaderHidden(true);
    m_lSoftware->setRootIsDecorated(false);
    m_lSoftware->setSelectionMode(QAbstractItemView::SingleSelection);
    m_lSoftware->setMinimumWidth(fontMetrics().averageCharWidth() * 36);
    m_lSoftware->installEventFilter(this);
    // The frame gives the page the focus as it shows it: the list is where the keys start.
    setFocusProxy(m_lSoftware);
    connect(m_lSoftware, &QTreeWidget::itemSelectionChanged, this, [this] {
        if (!m_lSoftware->selectedItems().isEmpty())
            nodoScelto();
    });
    connect(m_lSoftware, &QTreeWidget::itemClicked, this, &ProgSW::nodoScelto);

    m_labVersione->setObjectName(QStringLiteral("LabVersione"));
    m_labNote->setObjectName(QStringLiteral("LabNote"));
    QFont grande = m_versione->font();
    grande.setBold(true);
    grande.setPointSizeF(grande.pointSizeF() * 1.2);
    m_versione->setFont(grande);
    auto *scheda = new QFormLayout;
    scheda->setLabelAlignment(Qt::AlignLeft | Qt::AlignTop);
    scheda->addRow(m_labVersione, m_versione);
    scheda->addRow(m_labNote, m_note);
    auto *box = new QHBoxLayout(m_boxProg);
    box->addWidget(m_lSoftware, 2);
    box->addSpacing(fontMetrics().averageCharWidth() * 2);
    box->addLayout(scheda, 3);

    m_barraPercentuale->setObjectName(QStringLiteral("BarraPercentuale"));
    m_barraPercentuale->setRange(0, ImmagineSW::Blocchi);
    m_barraPercentuale->hide();

    const auto comando = [this](QPushButton *b, const char *nome, void (ProgSW::*azione)(), Qt::Key tasto) {
        b->setObjectName(QLatin1String(nome));
        PreparaComando(this, b, tasto, 140);
        connect(b, &QPushButton::clicked, this, azione);
    };
    comando(m_tastoProgramma, "Programma", &ProgSW::Programma_Click, Qt::Key_F2);
    comando(m_tastoEsci, "Esci", &ProgSW::Esci_Click, Qt::Key_Escape);

    auto *comandi = new QHBoxLayout;
    comandi->addWidget(m_tastoProgramma);
    comandi->addStretch(1);
    comandi->addWidget(m_tastoEsci);
    auto *principale = new QVBoxLayout(this);
    principale->addWidget(m_boxProg, 1);
    principale->addWidget(m_barraPercentuale);
    principale->addWidget(m_segnalazione1);
    principale->addLayout(comandi);

    m_messaggio = [this](const QString &testo, int flags, const QString &titolo) {
        return kv::MostraMsg(m_contesto.lingua, testo, flags, titolo, (flags & SecondoPredefinito) ? 1 : 0,
                             this);
    };
}

ProgSW::~ProgSW() = default;

void ProgSW::caricaTesti()
{
    const Lingua &l = m_contesto.lingua;
    setWindowTitle(l.LeggiTesto("ProgSW", "CAPTION").trimmed());
    m_boxProg->setTitle(l.LeggiTesto("ProgSW", "BOXPROG.CAPTION"));
    m_labVersione->setText(l.LeggiTesto("ProgSW", "LABVERSIONE").trimmed());
    m_labNote->setText(l.LeggiTesto("ProgSW", "LABNOTE").trimmed());
    m_tastoProgramma->setText(ConTastoAlt(l.LeggiTesto("TASTI", "PROGRAMMA").trimmed())
                              + QStringLiteral("  (F2)"));
    m_tastoEsci->setText(ConTastoAlt(l.LeggiTesto("TASTI", "ESCI").trimmed()) + QStringLiteral("  (Esc)"));
}

void ProgSW::carica()
{
    caricaTesti();
    ElencoSoftware();
    setTabOrder(m_lSoftware, m_tastoProgramma);
    setTabOrder(m_tastoProgramma, m_tastoEsci);
    m_lSoftware->setFocus(Qt::OtherFocusReason);
}

void ProgSW::ElencoSoftware()
{
    m_lSoftware->clear();
    const QStringList nomi = kv::ElencoSoftware(m_contesto.percorsoApp);
    for (const QString &nome : nomi)
        m_lSoftware->addTopLevelItem(new QTreeWidgetItem(QStringList{nome}));
    m_lSoftware->setCurrentItem(nullptr);
}

void ProgSW::nodoScelto()
{
    const QTreeWidgetItem *nodo = m_lSoftware->currentItem();
    if (!nodo)
        return;
    m_versione->clear();
    m_note->clear();
    const SchedaSoftware scheda = m_dialogo->scegli(nodo->text(0));
    m_versione->setText(scheda.Versione);
    m_note->setText(scheda.Note);
    if (!scheda.avviso.vuoto())
        mostraSegnalazione(scheda.avviso);
}

bool ProgSW::eventFilter(QObject *oggetto, QEvent *evento)
{
    if (oggetto == m_lSoftware && evento->type() == QEvent::KeyPress) {
        const int tasto = static_cast<QKeyEvent *>(evento)->key();
        if (tasto == Qt::Key_Return || tasto == Qt::Key_Enter) {
            // Swallowed, and taken as a click on the node it stands on.
            if (QTreeWidgetItem *nodo = m_lSoftware->currentItem()) {
                nodo->setSelected(true);
                nodoScelto();
            }
            return true;
        }
    }
    return QWidget::eventFilter(oggetto, evento);
}

void ProgSW::Programma_Click()
{
    m_dialogo->avviaProgrammazione();
}

void ProgSW::Esci_Click()
{
    emit chiusa();
}

void ProgSW::mostraSegnalazione(const kv::Messaggio &testo)
{
    m_segnalazione1->setText(m_contesto.lingua.testo(testo));
}

void ProgSW::abilitaPagina(bool abilitata)
{
    // A disabled page loses the focus; it comes back where it was, so that the keys work
    // again without a click.
    if (!abilitata) {
        QWidget *f = QApplication::focusWidget();
        m_fuoco = f && isAncestorOf(f) ? f : nullptr;
    }
    // Everything the fitter could act on; the bar and the message line stay readable.
    for (QWidget *w : {static_cast<QWidget *>(m_boxProg), static_cast<QWidget *>(m_tastoProgramma),
                       static_cast<QWidget *>(m_tastoEsci)})
        w->setEnabled(abilitata);
    if (!abilitata)
        return;
    QWidget *fuoco = m_fuoco ? m_fuoco.data() : m_lSoftware;
    if (!fuoco->hasFocus() && fuoco->isVisible() && fuoco->isEnabled())
        fuoco->setFocus(Qt::OtherFocusReason);
}

void ProgSW::mostraBarra(bool visibile)
{
    m_barraPercentuale->setVisible(visibile);
}

void ProgSW::impostaBarra(int valore)
{
    m_barraPercentuale->setValue(valore);
}

void ProgSW::mostraMsg(const kv::Messaggio &testo, int flags, const kv::Messaggio &titolo)
{
    if (m_messaggio)
        m_messaggio(m_contesto.lingua.testo(testo), flags, m_contesto.lingua.testo(titolo));
}

bool ProgSW::chiedi(const kv::Messaggio &testo, const kv::Messaggio &titolo)
{
    const Lingua &l = m_contesto.lingua;
    return m_messaggio
           && m_messaggio(l.testo(testo), FlagDomandaMappe | SecondoPredefinito, l.testo(titolo))
                  == RispostaSiMappe;
}

} // namespace kv
