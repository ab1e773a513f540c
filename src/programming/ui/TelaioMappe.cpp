#include "programming/ui/TelaioMappe.h"
#include "base/Lingua.h"

#include "archives/Cartelle.h"
#include "programming/ui/ComandoPagina.h"
#include "programming/ui/ModelloAlberoMappe.h"

#include <QApplication>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QTreeView>
#include <QVBoxLayout>

namespace kv {

namespace {

constexpr int RuoloNodo = Qt::UserRole + 1;

} // namespace

TelaioMappe::TelaioMappe(const ContestoProgrammazione &contesto, QString sezione, QWidget *parent)
    : PaginaVistaMappe(contesto, std::move(sezione), parent)
    , m_modello(new ModelloAlberoMappe(this))
{
    const int u = fontMetrics().averageCharWidth();

    m_box = new QGroupBox(this);
    m_box->setObjectName(QStringLiteral("BoxProg"));
    m_albero = new QTreeView(m_box);
    m_albero->setObjectName(QStringLiteral("LMappe"));
    m_albero->setModel(m_modello);
    m_albero->setHeaderHidden(true);
    m_albero->setUniformRowHeights(true);
    m_albero->setMinimumWidth(30 * u);
    m_albero->setIconSize(QSize(32, 16));
    m_labMappe = new QLabel(m_box);
    m_labMappe->setObjectName(QStringLiteral("LabMappe"));
    m_mappe = new QListWidget(m_box);
    m_mappe->setObjectName(QStringLiteral("Mappe"));
    m_mappe->setMinimumWidth(24 * u);
    m_labMappe->setBuddy(m_mappe);
    auto *elenchi = new QHBoxLayout(m_box);
    elenchi->addWidget(m_albero, 3);
    auto *colonnaMappe = new QVBoxLayout;
    colonnaMappe->addWidget(m_labMappe);
    colonnaMappe->addWidget(m_mappe, 1);
    elenchi->addLayout(colonnaMappe, 2);

    m_campi = new QGridLayout;
    m_campi->setHorizontalSpacing(u);
    m_campi->setVerticalSpacing(u);

    auto *sopra = new QHBoxLayout;
    sopra->addWidget(m_box, 3);
    auto *destra = new QVBoxLayout;
    destra->addLayout(m_campi);
    destra->addStretch(1);
    sopra->addLayout(destra, 2);

    barra()->setObjectName(QStringLiteral("BarraPercentuale"));
    barra()->setFormat(QStringLiteral("%v / %m"));

    const auto tasto = [this, u](const char *nome, Qt::Key chiave) {
        auto *b = new QPushButton(this);
        b->setObjectName(QString::fromLatin1(nome));
        PreparaComando(this, b, chiave, 18 * u);
        return b;
    };
    m_comando = tasto("Comando", Qt::Key_F2);
    m_esci = tasto("Esci", Qt::Key_Escape);
    connect(m_comando, &QPushButton::clicked, this, [this] { Comando(); });
    connect(m_esci, &QPushButton::clicked, this, [this] { Esci(); });
    auto *comandi = new QHBoxLayout;
    comandi->addWidget(m_comando);
    comandi->addStretch(1);
    comandi->addWidget(m_esci);

    auto *principale = new QVBoxLayout(this);
    principale->addLayout(sopra, 1);
    principale->addWidget(barra());
    principale->addWidget(rigaSegnalazione());
    principale->addLayout(comandi);

    connect(m_albero->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex &indice) { nodoCorrente(indice); });
    connect(m_mappe, &QListWidget::currentRowChanged, this, [this](int riga) {
        if (riga < 0)
            return;
        // The map in use shows as chosen, also when the focus alone made it current.
        m_mappe->item(riga)->setSelected(true);
        mappaCliccata(mappaScelta());
    });
    m_albero->installEventFilter(this);
    m_mappe->installEventFilter(this);
}

void TelaioMappe::carica()
{
    const Lingua &l = contesto().lingua;
    setWindowTitle(testo(QStringLiteral("CAPTION")));
    m_box->setTitle(testo(QStringLiteral("BOXPROG.CAPTION")));
    m_labMappe->setText(testo(QStringLiteral("LABMAPPE")));
    m_esci->setText(QLatin1Char('&') + l.LeggiTesto("TASTI", "ESCI").trimmed() + QStringLiteral("  (Esc)"));
    m_modello->impostaTestoMancante(testo(QStringLiteral("MANCANTE")));
    m_modello->impostaMarchi(CaricoMarchi(contesto().percorsoApp));
    caricaTestiAltrove();

    QWidget *precedente = m_albero;
    for (QWidget *w : QList<QWidget *>{m_mappe} + ordineCampi() + QList<QWidget *>{m_comando, m_esci}) {
        setTabOrder(precedente, w);
        precedente = w;
    }
    aggiornaAlbero();
    // The fitter starts on the tree, also when the frame gives the focus to the page.
    setFocusProxy(m_albero);
    m_albero->setFocus(Qt::OtherFocusReason);
}

void TelaioMappe::aggiornaAlbero(const ChiaveMappa &scelta)
{
    EsitoArchivio esito;
    m_modello->imposta(AlberoMappe::Carica(contesto().percorsoApp, &esito), AlberoMappe::Livello::Modello);
    if (!esito.ok())
        mostraTesto(contesto().lingua.testo(MessaggioArchivio(esito)));
    const QModelIndex radice = m_modello->indice(AlberoMappe::Radice);
    m_albero->expand(radice);

    ChiaveMappa cartella = scelta;
    cartella.file.clear();
    const int id = cartella.impianto.trimmed().isEmpty() ? -1 : m_modello->albero().trova(cartella);
    if (id < 0) {
        nodoCorrente({});
        return;
    }
    const QModelIndex i = m_modello->indice(id);
    m_albero->setCurrentIndex(i);
    m_albero->scrollTo(i);
    if (scelta.file.trimmed().isEmpty())
        return;
    const QString cercato = ChiavePiegata(scelta.file.trimmed());
    for (int r = 0; r < m_mappe->count(); ++r) {
        const int n = m_mappe->item(r)->data(RuoloNodo).toInt();
        if (ChiavePiegata(m_modello->albero().nodo(n).nome) == cercato) {
            m_mappe->setCurrentRow(r);
            break;
        }
    }
}

int TelaioMappe::mappaScelta() const
{
    const QListWidgetItem *voce = m_mappe->currentItem();
    return voce ? voce->data(RuoloNodo).toInt() : -1;
}

void TelaioMappe::nodoCorrente(const QModelIndex &indice)
{
    m_nodo = m_modello->nodo(indice);
    riempiMappe(m_nodo);
    nodoCliccato(m_nodo);
}

void TelaioMappe::riempiMappe(int nodo)
{
    const QSignalBlocker blocco(m_mappe);
    m_mappe->clear();
    const AlberoMappe &a = m_modello->albero();
    if (!a.valido(nodo) || a.nodo(nodo).livello != AlberoMappe::Livello::Modello)
        return;
    for (int f : a.nodo(nodo).figli) {
        auto *voce = new QListWidgetItem(m_modello->testoMappa(f), m_mappe);
        voce->setData(RuoloNodo, f);
        const AlberoMappe::Nodo &n = a.nodo(f);
        voce->setToolTip(n.nota.value_or(QString()));
        if (!n.suDisco)
            voce->setForeground(palette().color(QPalette::Disabled, QPalette::Text));
    }
}

bool TelaioMappe::eventFilter(QObject *oggetto, QEvent *evento)
{
    if ((oggetto == m_albero || oggetto == m_mappe) && evento->type() == QEvent::KeyPress) {
        const int k = static_cast<QKeyEvent *>(evento)->key();
        if (k == Qt::Key_Return || k == Qt::Key_Enter) {
            focusNextChild();
            return true;
        }
    }
    return QWidget::eventFilter(oggetto, evento);
}

void TelaioMappe::abilitaPagina(bool abilitata)
{
    // A disabled page loses the focus; it comes back where it was.
    if (!abilitata) {
        QWidget *f = QApplication::focusWidget();
        m_fuoco = f && isAncestorOf(f) ? f : nullptr;
    }
    m_abilitazione = true;
    setEnabled(abilitata);
    if (abilitata && m_fuoco && m_fuoco->isVisible() && m_fuoco->isEnabled())
        m_fuoco->setFocus(Qt::OtherFocusReason);
    m_abilitazione = false;
}

} // namespace kv
