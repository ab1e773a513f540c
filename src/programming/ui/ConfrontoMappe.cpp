#include "programming/ui/ConfrontoMappe.h"

#include "archives/Cartelle.h"
#include "base/Lingua.h"
#include "calibration/TaraturaParametri.h"
#include "link/SequenzaRichieste.h"
#include "link/SessioneLinea.h"
#include "programming/MappaArchiviata.h"
#include "programming/ui/ComandoPagina.h"
#include "programming/ui/ModelloAlberoMappe.h"
#include "programming/ui/TestiMappa.h"
#include "shell/ui/MsgBox1.h"
#include "shell/ui/Stile.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QTabBar>
#include <QTabWidget>
#include <QTableWidget>
#include <QTreeView>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace kv {

namespace {

constexpr int RuoloVoce = Qt::UserRole + 1;
constexpr int RispostaSi = 6;
constexpr int RispostaNo = 7;
constexpr int FlagDomanda = 0x24;
constexpr int FlagDomandaAnnulla = 0x23;
// The states of its reads and writes of the ECU.
constexpr int StatoLetturaEcu = 231;
const QColor Diversa(255, 214, 153);

const std::vector<const DescrizionePagina *> &altrePagine()
{
    static const std::vector<const DescrizionePagina *> altre = {&DescrizioneParametri()};
    return altre;
}

MappaDecodificata decodifica(const SorgenteMappa &s, const Catalogo &catalogo)
{
    return DecodificaMappa(s.valida() ? s.immagine : QByteArray(), catalogo, s.scala, altrePagine());
}

void segna(QTableWidgetItem *item, bool diversa)
{
    if (!diversa)
        return;
    item->setBackground(Diversa);
    QFont f = item->font();
    f.setBold(true);
    item->setFont(f);
}

} // namespace

ConfrontoMappe::ConfrontoMappe(QString percorsoApp, const Catalogo &catalogo, const Lingua &lingua,
                               QWidget *parent)
    : QWidget(parent)
    , m_percorsoApp(std::move(percorsoApp))
    , m_catalogo(catalogo)
    , m_lingua(lingua)
    , m_modello(new ModelloAlberoMappe(this))
{
    setObjectName(QString::fromLatin1(SezioneMappe));
    const int u = fontMetrics().averageCharWidth();

    m_labAlbero = new QLabel(this);
    m_albero = new QTreeView(this);
    m_albero->setObjectName(QStringLiteral("LMappe"));
    m_albero->setModel(m_modello);
    m_albero->setHeaderHidden(true);
    m_albero->setUniformRowHeights(true);
    m_albero->setIconSize(QSize(32, 16));
    m_albero->setMinimumWidth(26 * u);
    m_labAlbero->setBuddy(m_albero);

    const auto tasto = [this, u](const char *nome, const QKeySequence &chiave, auto azione) {
        auto *b = new QPushButton(this);
        b->setObjectName(QString::fromLatin1(nome));
        PreparaComando(this, b, chiave, 12 * u);
        connect(b, &QPushButton::clicked, this, azione);
        return b;
    };
    m_prendi[A] = tasto("PrendiA", Qt::Key_F3, [this] { prendi(A); });
    m_prendi[B] = tasto("PrendiB", Qt::Key_F4, [this] { prendi(B); });
    m_prendiEcu[A] = tasto("EcuA", Qt::SHIFT | Qt::Key_F3, [this] { leggiEcu(A); });
    m_prendiEcu[B] = tasto("EcuB", Qt::SHIFT | Qt::Key_F4, [this] { leggiEcu(B); });
    m_memorizza = tasto("MemorizzaEcu", Qt::Key_F9, [this] { memorizzaEcu(); });
    for (QPushButton *b : {m_prendiEcu[A], m_prendiEcu[B], m_memorizza})
        b->hide();
    m_copie[0] = tasto("CopiaValore", Qt::Key_F5, [this] { copiaValore(); });
    m_copie[1] = tasto("CopiaGriglia", Qt::Key_F6, [this] { copiaGriglia(); });
    m_copie[2] = tasto("CopiaDifferenze", Qt::Key_F7, [this] { copiaDifferenze(); });
    m_salva = tasto("Salva", Qt::Key_F2, [this] { Salva(); });
    m_esci = tasto("Esci", Qt::Key_Escape, [this] { Esci(); });

    auto *sinistra = new QVBoxLayout;
    sinistra->addWidget(m_labAlbero);
    sinistra->addWidget(m_albero, 1);
    auto *prendi = new QHBoxLayout;
    prendi->addWidget(m_prendi[A]);
    prendi->addWidget(m_prendi[B]);
    sinistra->addLayout(prendi);
    // One above the other: side by side their captions do not fit the tree's width.
    sinistra->addWidget(m_prendiEcu[A]);
    sinistra->addWidget(m_prendiEcu[B]);

    auto *lati = new QGridLayout;
    for (int l : {A, B}) {
        m_titoli[size_t(l)] = new QLabel(this);
        m_nomi[size_t(l)] = new QLabel(this);
        m_nomi[size_t(l)]->setObjectName(l == A ? QStringLiteral("NomeA") : QStringLiteral("NomeB"));
        m_nomi[size_t(l)]->setFrameShape(QFrame::StyledPanel);
        m_nomi[size_t(l)]->setFrameShadow(QFrame::Sunken);
        m_scale[size_t(l)] = new QLabel(this);
        m_scale[size_t(l)]->setObjectName(l == A ? QStringLiteral("ScalaA") : QStringLiteral("ScalaB"));
        m_scale[size_t(l)]->setWordWrap(true);
        lati->addWidget(m_titoli[size_t(l)], 2 * l, 0);
        lati->addWidget(m_nomi[size_t(l)], 2 * l, 1);
        lati->addWidget(m_scale[size_t(l)], 2 * l + 1, 1);
    }
    lati->setColumnStretch(1, 1);

    m_schede = new QTabWidget(this);
    m_schede->setObjectName(QStringLiteral("Schede"));
    m_parametri = new QTreeWidget(this);
    m_parametri->setObjectName(QStringLiteral("Parametri"));
    m_parametri->setColumnCount(4);
    m_parametri->setUniformRowHeights(true);
    m_parametri->setAlternatingRowColors(true);
    m_parametri->header()->setStretchLastSection(false);
    m_parametri->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    for (int c : {1, 2, 3})
        m_parametri->header()->setSectionResizeMode(c, QHeaderView::ResizeToContents);
    m_schede->addTab(m_parametri, QString());
    for (size_t g = 0; g < m_griglie.size(); ++g) {
        auto *scheda = new QWidget(this);
        auto *l = new QGridLayout(scheda);
        for (int lato : {A, B}) {
            auto *t = new QTableWidget(scheda);
            t->setObjectName(QStringLiteral("Griglia%1%2").arg(g).arg(lato == A ? u'A' : u'B'));
            t->horizontalHeader()->hide();
            t->verticalHeader()->hide();
            // Two grids side by side: columns as narrow as their numbers.
            t->horizontalHeader()->setMinimumSectionSize(u);
            t->setEditTriggers(QAbstractItemView::NoEditTriggers);
            t->setSelectionMode(QAbstractItemView::SingleSelection);
            m_griglie[g][size_t(lato)] = t;
            auto *titolo = new QLabel(lato == A ? QStringLiteral("A") : QStringLiteral("B"), scheda);
            titolo->setBuddy(t);
            l->addWidget(titolo, 0, lato);
            l->addWidget(t, 1, lato);
        }
        m_schede->addTab(scheda, QString());
    }
    m_soloDifferenze = new QCheckBox(this);
    m_soloDifferenze->setObjectName(QStringLiteral("SoloDifferenze"));
    connect(m_soloDifferenze, &QCheckBox::toggled, this, [this] { applicaFiltro(); });
    auto *f8 = new QShortcut(QKeySequence(Qt::Key_F8), this);
    f8->setContext(Qt::WindowShortcut);
    connect(f8, &QShortcut::activated, m_soloDifferenze, &QCheckBox::toggle);
    m_conteggio = new QLabel(this);
    m_conteggio->setObjectName(QStringLiteral("Conteggio"));
    auto *filtro = new QHBoxLayout;
    filtro->addWidget(m_soloDifferenze);
    filtro->addStretch(1);
    filtro->addWidget(m_conteggio);
    auto *copie = new QHBoxLayout;
    for (QPushButton *b : m_copie)
        copie->addWidget(b);
    copie->addWidget(m_memorizza);

    auto *destra = new QVBoxLayout;
    destra->addLayout(lati);
    destra->addWidget(m_schede, 1);
    destra->addLayout(filtro);
    destra->addLayout(copie);

    m_boxSalva = new BoxSalvaMappa(m_salva, this);

    m_segnalazione = CreaRigaSegnalazione(QStringLiteral("Segnalazione1"), this);

    auto *sopra = new QHBoxLayout;
    sopra->addLayout(sinistra, 1);
    sopra->addLayout(destra, 4);
    auto *fondo = new QHBoxLayout;
    fondo->addWidget(m_segnalazione, 1);
    fondo->addWidget(m_esci);
    auto *principale = new QVBoxLayout(this);
    principale->addLayout(sopra, 1);
    principale->addWidget(m_boxSalva);
    principale->addLayout(fondo);

    m_domanda = [this](const QString &t, int flags, const QString &titolo) {
        return kv::MostraMsg(m_lingua, t, flags, titolo, 0, this);
    };
}

ConfrontoMappe::~ConfrontoMappe() = default;

void ConfrontoMappe::impostaEcu(SessioneLinea &linea)
{
    m_linea = &linea;
    m_ecu = std::make_unique<SequenzaRichieste>(linea.motore(), StatoLetturaEcu);
    for (QPushButton *b : {m_prendiEcu[A], m_prendiEcu[B], m_memorizza})
        b->show();
}

QString ConfrontoMappe::testo(const QString &chiave) const
{
    return m_lingua.LeggiTesto(QString::fromLatin1(SezioneMappe), chiave).trimmed();
}

QString ConfrontoMappe::segnalazione() const
{
    return m_segnalazione->text();
}

void ConfrontoMappe::mostraSegnalazione(const QString &t)
{
    m_segnalazione->setText(t);
}

int ConfrontoMappe::domanda(const QString &t, int flags)
{
    return m_domanda(t, flags, m_lingua.LeggiTesto("SEGNALAZIONI", "TITOLO_1"));
}

void ConfrontoMappe::carica()
{
    setWindowTitle(testo(QStringLiteral("CAPTION")));
    m_labAlbero->setText(testo(QStringLiteral("LABMAPPE")));
    for (int l : {A, B}) {
        m_titoli[size_t(l)]->setText(testo(QStringLiteral("SCEGLI.%1").arg(l)));
        m_prendi[size_t(l)]->setText(testo(QStringLiteral("PRENDI.%1").arg(l)));
        m_prendiEcu[size_t(l)]->setText(testo(QStringLiteral("ECU.%1").arg(l)));
    }
    m_memorizza->setText(testo(QStringLiteral("MEMORIZZA")));
    m_schede->setTabText(0, testo(QStringLiteral("SCHEDA.0")));
    for (int g = 0; g < int(m_griglie.size()); ++g)
        m_schede->setTabText(g + 1, testo(QStringLiteral("GRIGLIA.%1").arg(g)));
    QStringList colonne;
    for (int c = 0; c < 4; ++c)
        colonne << testo(QStringLiteral("COLONNA.%1").arg(c));
    m_parametri->setHeaderLabels(colonne);
    m_soloDifferenze->setText(testo(QStringLiteral("SOLODIFFERENZE")));
    for (int c = 0; c < int(m_copie.size()); ++c)
        m_copie[size_t(c)]->setText(testo(QStringLiteral("COPIA.%1").arg(c)));
    m_boxSalva->caricaTesti(m_lingua, testo(QStringLiteral("BOXSALVA.CAPTION")));
    m_salva->setText(testo(QStringLiteral("SALVA")));
    m_esci->setText(QLatin1Char('&') + m_lingua.LeggiTesto("TASTI", "ESCI").trimmed()
                    + QStringLiteral("  (Esc)"));

    m_modello->impostaTestoMancante(
        m_lingua.LeggiTesto(QStringLiteral("ReadMappe"), QStringLiteral("MANCANTE")));
    m_modello->impostaMarchi(CaricoMarchi(m_percorsoApp));
    EsitoArchivio esito;
    m_modello->imposta(AlberoMappe::Carica(m_percorsoApp, &esito), AlberoMappe::Livello::Mappa);
    if (!esito.ok())
        mostraSegnalazione(m_lingua.testo(MessaggioArchivio(esito)));
    m_albero->expand(m_modello->indice(AlberoMappe::Radice));
    mostraLato(A);
    mostraLato(B);
    aggiorna();
    // From the tree to what it shows, then to what is done with it.
    QList<QWidget *> ordine = {m_albero, m_prendi[A], m_prendi[B], m_schede->tabBar(), m_parametri};
    for (const auto &coppia : m_griglie)
        ordine << coppia[A] << coppia[B];
    ordine << m_soloDifferenze << m_copie[0] << m_copie[1] << m_copie[2] << m_boxSalva->impianto();
    for (int i = 0; i < 4; ++i)
        ordine << m_boxSalva->campo(i);
    ordine << m_salva << m_esci;
    for (qsizetype i = 1; i < ordine.size(); ++i)
        setTabOrder(ordine.at(i - 1), ordine.at(i));
    setFocusProxy(m_albero);
    m_albero->setFocus(Qt::OtherFocusReason);
}

void ConfrontoMappe::prendi(Lato lato)
{
    const int id = m_modello->nodo(m_albero->currentIndex());
    const AlberoMappe &a = m_modello->albero();
    if (!a.valido(id) || a.nodo(id).livello != AlberoMappe::Livello::Mappa) {
        mostraSegnalazione(testo(QStringLiteral("SCEGLIMAPPA")));
        return;
    }
    scegliArchiviata(lato, a.chiave(id));
}

bool ConfrontoMappe::scegliArchiviata(Lato lato, const ChiaveMappa &chiave)
{
    const MappaArchiviata m = CaricaMappaArchiviata(m_percorsoApp, chiave);
    const QString nome = (m.percorso.ok() ? m.percorso.chiave : chiave.pulita()).elenco().join(u'\\');
    if (!m.ok()) {
        // Never shown in part: the side stays as it was.
        mostraSegnalazione(m_lingua.testo(MessaggioMappaRifiutata(m, nome)));
        return false;
    }
    if (lato == A && m_modificata && m_sorgenti[A].tipo == SorgenteMappa::Tipo::Ecu) {
        memorizzaEcu([this, chiave] { scegliArchiviata(A, chiave); });
        return false;
    }
    if (lato == A && m_modificata && domanda(testo(QStringLiteral("SOSTITUISCI")), FlagDomanda) != RispostaSi)
        return false;
    if (const QModelIndex i = m_modello->indice(m_modello->albero().trova(m.percorso.chiave)); i.isValid()) {
        m_albero->setCurrentIndex(i);
        m_albero->scrollTo(i);
    }
    if (lato == A) {
        m_boxSalva->imposta(m.percorso.chiave, {});
    }
    impostaSorgente(lato, {SorgenteMappa::Tipo::Archivio, nome, m.mappa.immagine,
                           ScalaDa(m.scalaLambda, OrigineScala::Archivio)});
    mostraSegnalazione(m.archivio.ok() ? QString() : m_lingua.testo(MessaggioArchivio(m.archivio)));
    return true;
}

void ConfrontoMappe::impostaSorgente(Lato lato, SorgenteMappa sorgente)
{
    m_sorgenti[size_t(lato)] = std::move(sorgente);
    if (lato == A)
        m_modificata = false;
    mostraLato(lato);
    aggiorna();
}

void ConfrontoMappe::mostraLato(Lato lato)
{
    const SorgenteMappa &s = m_sorgenti[size_t(lato)];
    if (!s.valida()) {
        m_nomi[size_t(lato)]->setText(testo(QStringLiteral("NESSUNA")));
        m_scale[size_t(lato)]->clear();
        return;
    }
    QString nome = s.nome;
    if (lato == A && m_modificata)
        nome += QLatin1Char(' ')
                + testo(s.tipo == SorgenteMappa::Tipo::Ecu ? QStringLiteral("ECUMODIFICATA")
                                                           : QStringLiteral("MODIFICATA"));
    m_nomi[size_t(lato)]->setText(nome);
    // Which ScalaLambda the lambda thresholds of this side are shown by, and why.
    m_scale[size_t(lato)]->setText(testo(QStringLiteral("SCALA.%1").arg(int(s.scala.origine)))
                                       .replace(QLatin1String("XXX"), QString::number(s.scala.valore)));
}

void ConfrontoMappe::aggiorna()
{
    m_confronto =
        ConfrontaMappe(decodifica(m_sorgenti[A], m_catalogo), decodifica(m_sorgenti[B], m_catalogo));
    // The fitter stays where he was: the row and the cells under the keyboard are found again.
    const QTreeWidgetItem *corrente = m_parametri->currentItem();
    const int voce = corrente ? corrente->data(0, RuoloVoce).toInt() : -2;
    const QString gruppo = corrente && !corrente->parent() ? corrente->text(0) : QString();
    std::array<std::array<QPoint, 2>, 3> celle{};
    for (size_t g = 0; g < m_griglie.size(); ++g)
        for (int lato : {A, B})
            celle[g][size_t(lato)] = {m_griglie[g][size_t(lato)]->currentColumn(),
                                      m_griglie[g][size_t(lato)]->currentRow()};
    riempiParametri();
    for (QTreeWidgetItemIterator it(m_parametri); *it; ++it)
        if ((voce >= 0 && (*it)->data(0, RuoloVoce).toInt() == voce)
            || (!gruppo.isEmpty() && (*it)->text(0) == gruppo))
            m_parametri->setCurrentItem(*it);
    for (int g = 0; g < int(m_griglie.size()); ++g) {
        riempiGriglia(g);
        for (int lato : {A, B})
            if (const QPoint c = celle[size_t(g)][size_t(lato)]; c.y() >= 0)
                m_griglie[size_t(g)][size_t(lato)]->setCurrentCell(c.y(), c.x());
    }
    const bool due = m_confronto.a.ok && m_confronto.b.ok;
    m_conteggio->setText(!due ? QString()
                         : m_confronto.diverse == 0
                             ? testo(QStringLiteral("UGUALI"))
                             : testo(QStringLiteral("DIFFERENZE"))
                                   .replace(QLatin1String("XXX"), QString::number(m_confronto.diverse)));
    applicaFiltro();
}

void ConfrontoMappe::riempiParametri()
{
    m_parametri->clear();
    const MappaDecodificata &base = m_confronto.a.ok ? m_confronto.a : m_confronto.b;
    if (!base.ok)
        return;
    QList<QTreeWidgetItem *> gruppi;
    for (const GruppoMappa &g : base.gruppi) {
        auto *item = new QTreeWidgetItem({TitoloGruppo(m_lingua, g)});
        QFont f = item->font(0);
        f.setBold(true);
        item->setFont(0, f);
        item->setData(0, RuoloVoce, -1);
        gruppi << item;
    }
    for (const VoceMappa &v : base.voci) {
        const int p = v.parametro();
        const VoceMappa *a = m_confronto.a.voce(p);
        const VoceMappa *b = m_confronto.b.voce(p);
        const RigaConfronto *r = m_confronto.riga(p);
        auto *item = new QTreeWidgetItem(
            gruppi[v.gruppo], {EtichettaVoce(m_lingua, base, v), a ? TestoMostrato(m_lingua, *a) : QString(),
                               b ? TestoMostrato(m_lingua, *b) : QString(), r ? r->differenza : QString()});
        item->setData(0, RuoloVoce, p);
        for (int c : {1, 2, 3})
            item->setTextAlignment(c, Qt::AlignRight | Qt::AlignVCenter);
        if (r && r->diversa) {
            QFont f = item->font(0);
            f.setBold(true);
            for (int c = 0; c < 4; ++c) {
                item->setBackground(c, Diversa);
                item->setFont(c, f);
            }
        }
    }
    m_parametri->addTopLevelItems(gruppi);
    for (QTreeWidgetItem *g : std::as_const(gruppi)) {
        g->setFirstColumnSpanned(true);
        g->setExpanded(true);
    }
}

void ConfrontoMappe::riempiGriglia(int indice)
{
    const GrigliaMappa &g = GriglieMappa()[size_t(indice)];
    const bool due = m_confronto.a.ok && m_confronto.b.ok;
    for (int lato : {A, B}) {
        QTableWidget *t = m_griglie[size_t(indice)][size_t(lato)];
        const MappaDecodificata &m = lato == A ? m_confronto.a : m_confronto.b;
        t->clear();
        t->clearSpans();
        t->setRowCount(g.righe);
        t->setColumnCount(g.colonne);
        for (int r = 0; r < g.righe; ++r) {
            for (int c = 0; c < g.colonne; ++c) {
                const CellaGriglia &cella = g.cella(r, c);
                QString s;
                if (!cella.didascalia.isEmpty())
                    s = m_lingua.LeggiTesto(g.sezione, cella.didascalia).trimmed();
                else if (const VoceMappa *v = m.voce(cella.parametro))
                    s = cella.intestazione ? QStringLiteral("> ") + v->testo : v->testo;
                auto *item = new QTableWidgetItem(s);
                item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
                item->setTextAlignment(Qt::AlignCenter);
                item->setData(RuoloVoce, cella.intestazione ? -1 : cella.parametro);
                if (cella.intestazione || !cella.didascalia.isEmpty())
                    item->setForeground(palette().color(QPalette::Disabled, QPalette::Text));
                segna(item, due && !cella.intestazione && m_confronto.diversa(cella.parametro));
                t->setItem(r, c, item);
            }
        }
        for (const UnioneGriglia &u : g.unioni)
            t->setSpan(u.riga, u.colonna, u.righe, u.colonne);
        // Two grids side by side leave no room for the "> " row and column that repeat the
        // breakpoints of the lambda map: the breakpoints themselves say where a zone begins.
        if (g.pagina == IdPagina::MP_Normale) {
            t->setRowHidden(0, true);
            t->setColumnHidden(1, true);
            // The caption of the axes goes with its row: the grid says it on hovering.
            t->setToolTip(t->item(0, 0)->text());
            t->item(0, 0)->setText({});
        }
        // Worked out here: a view that is not on screen sizes its columns by the rows it
        // shows, which are none.
        for (int c = 0; c < g.colonne; ++c) {
            int larghezza = 0;
            for (int r = 0; r < g.righe; ++r) {
                const QTableWidgetItem *item = t->item(r, c);
                if (item && t->columnSpan(r, c) == 1 && !t->isRowHidden(r))
                    larghezza = qMax(larghezza, QFontMetrics(item->font()).horizontalAdvance(item->text()));
            }
            t->setColumnWidth(c, larghezza + fontMetrics().averageCharWidth() * 2);
        }
    }
}

void ConfrontoMappe::applicaFiltro()
{
    const bool solo = m_soloDifferenze->isChecked();
    for (int g = 0; g < m_parametri->topLevelItemCount(); ++g) {
        QTreeWidgetItem *gruppo = m_parametri->topLevelItem(g);
        int visibili = 0;
        for (int i = 0; i < gruppo->childCount(); ++i) {
            QTreeWidgetItem *item = gruppo->child(i);
            const bool nascosta = solo && !m_confronto.diversa(item->data(0, RuoloVoce).toInt());
            item->setHidden(nascosta);
            visibili += nascosta ? 0 : 1;
        }
        gruppo->setHidden(visibili == 0);
    }
}

int ConfrontoMappe::voceCorrente() const
{
    const int scheda = m_schede->currentIndex();
    if (scheda == 0) {
        const QTreeWidgetItem *item = m_parametri->currentItem();
        return item ? item->data(0, RuoloVoce).toInt() : -1;
    }
    const auto &griglie = m_griglie[size_t(scheda - 1)];
    const QTableWidget *t = griglie[B]->hasFocus() ? griglie[B] : griglie[A];
    const QTableWidgetItem *item = t->currentItem();
    return item ? item->data(RuoloVoce).toInt() : -1;
}

void ConfrontoMappe::copia(const std::vector<int> &parametri)
{
    SorgenteMappa &a = m_sorgenti[A];
    const SorgenteMappa &b = m_sorgenti[B];
    if (!a.valida() || !b.valida()) {
        mostraSegnalazione(testo(QStringLiteral("DUE")));
        return;
    }
    if (a.tipo != SorgenteMappa::Tipo::Archivio && a.tipo != SorgenteMappa::Tipo::Ecu) {
        mostraSegnalazione(testo(QStringLiteral("SOLOARCHIVIO")));
        return;
    }
    const std::vector<int> diversi = m_confronto.parametriDiversi(parametri);
    if (diversi.empty()) {
        mostraSegnalazione(testo(QStringLiteral("NIENTE")));
        return;
    }
    if (a.tipo == SorgenteMappa::Tipo::Ecu) {
        // Into its RAM, as Apply does: it runs on them now, and keeps them only once stored.
        const QByteArray nuova = CopiaValori(a.immagine, a.scala, b.immagine, b.scala, diversi, m_catalogo);
        const auto voci = VociCambiate(a.immagine, nuova, m_catalogo);
        scriviEcu(
            ScrittureVoci(nuova, voci, true, false, m_catalogo), [this, nuova, n = diversi.size()](bool ok) {
                if (!ok)
                    return;
                m_sorgenti[A].immagine = nuova;
                m_modificata = true;
                mostraLato(A);
                aggiorna();
                mostraSegnalazione(
                    testo(QStringLiteral("COPIATOECU")).replace(QLatin1String("XXX"), QString::number(n)));
            });
        return;
    }
    a.immagine = CopiaValori(a.immagine, a.scala, b.immagine, b.scala, diversi, m_catalogo);
    m_modificata = true;
    mostraLato(A);
    aggiorna();
    mostraSegnalazione(
        testo(QStringLiteral("COPIATO")).replace(QLatin1String("XXX"), QString::number(diversi.size())));
}

void ConfrontoMappe::copiaValore()
{
    const int p = voceCorrente();
    if (p < 0) {
        mostraSegnalazione(testo(QStringLiteral("SCEGLIVOCE")));
        return;
    }
    copia({p});
}

void ConfrontoMappe::copiaGriglia()
{
    const int scheda = m_schede->currentIndex();
    if (scheda > 0) {
        copia(GriglieMappa()[size_t(scheda - 1)].parametri());
        return;
    }
    // On the list of parameters, the grid is the page: every value of the current group.
    const QTreeWidgetItem *item = m_parametri->currentItem();
    const QTreeWidgetItem *gruppo = item && item->parent() ? item->parent() : item;
    if (!gruppo) {
        mostraSegnalazione(testo(QStringLiteral("SCEGLIVOCE")));
        return;
    }
    std::vector<int> parametri;
    for (int i = 0; i < gruppo->childCount(); ++i)
        parametri.push_back(gruppo->child(i)->data(0, RuoloVoce).toInt());
    copia(parametri);
}

void ConfrontoMappe::copiaDifferenze()
{
    copia(m_confronto.parametriDiversi());
}

void ConfrontoMappe::Salva()
{
    const SorgenteMappa &a = m_sorgenti[A];
    if (!a.valida()) {
        mostraSegnalazione(testo(QStringLiteral("NESSUNA")));
        return;
    }
    const ChiaveMappa chiave = m_boxSalva->chiave();
    Messaggio motivo;
    const PercorsoMappa percorso = m_boxSalva->percorso(m_percorsoApp, motivo);
    if (!percorso.ok()) {
        mostraSegnalazione(m_lingua.testo(motivo));
        return;
    }
    if (EsisteMappa(percorso)
        && domanda(m_lingua.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_8"), FlagDomanda) != RispostaSi)
        return;
    // The flag goes with the image when A's came from somewhere; an assumed 0 is not kept.
    const std::optional<double> scala =
        a.scala.origine == OrigineScala::Presunta ? std::nullopt : std::optional(a.scala.valore);
    const EsitoSalvataggio e =
        SalvaImmagineMappa(m_percorsoApp, chiave, a.immagine, m_boxSalva->nota(), scala);
    if (!e.ok()) {
        mostraSegnalazione(m_lingua.testo(MessaggioSalvataggio(e)));
        return;
    }
    const QString nome = e.percorso.chiave.elenco().join(u'\\');
    // The ECU stays the ECU: only a map of the archive becomes the one just saved.
    if (m_sorgenti[A].tipo == SorgenteMappa::Tipo::Archivio) {
        m_sorgenti[A].nome = nome;
        m_sorgenti[A].scala = ScalaDa(scala, OrigineScala::Archivio);
        m_modificata = false;
    }
    m_modello->imposta(AlberoMappe::Carica(m_percorsoApp), AlberoMappe::Livello::Mappa);
    m_albero->expand(m_modello->indice(AlberoMappe::Radice));
    const QModelIndex nuova = m_modello->indice(m_modello->albero().trova(e.percorso.chiave));
    if (nuova.isValid()) {
        m_albero->setCurrentIndex(nuova);
        m_albero->scrollTo(nuova);
    }
    mostraLato(A);
    aggiorna();
    const Messaggio archivio = MessaggioSalvataggio(e);
    mostraSegnalazione(archivio.vuoto() ? testo(QStringLiteral("SALVATA")).replace(QLatin1String("XXX"), nome)
                                        : m_lingua.testo(archivio));
}

void ConfrontoMappe::Esci()
{
    if (m_modificata && m_sorgenti[A].tipo == SorgenteMappa::Tipo::Ecu) {
        memorizzaEcu([this] { emit chiusa(); });
        return;
    }
    if (m_modificata && domanda(testo(QStringLiteral("USCITA")), FlagDomanda) != RispostaSi)
        return;
    emit chiusa();
}

void ConfrontoMappe::abilita(bool abilitata)
{
    // The keys come back where they were once the ECU has answered.
    if (!abilitata)
        m_fuoco = focusWidget();
    setEnabled(abilitata);
    if (abilitata && m_fuoco && isAncestorOf(m_fuoco))
        m_fuoco->setFocus(Qt::OtherFocusReason);
}

bool ConfrontoMappe::leggiEcu(Lato lato)
{
    const bool conosciuta =
        m_linea && m_linea->PortOpen() && !m_linea->ecu().EcuDaIdentificare && m_linea->ecu().EcuNormale;
    if (!conosciuta || m_ecu->inCorso()) {
        mostraSegnalazione(testo(QStringLiteral("NOECU")));
        return false;
    }
    if (lato == A && m_modificata) {
        if (m_sorgenti[A].tipo == SorgenteMappa::Tipo::Ecu) {
            memorizzaEcu([this] { leggiEcu(A); });
            return false;
        }
        if (domanda(testo(QStringLiteral("SOSTITUISCI")), FlagDomanda) != RispostaSi)
            return false;
    }
    const bool avviata =
        m_ecu->leggi(RichiesteAreaMappa(m_catalogo), [this, lato](const SequenzaRichieste::Esito &e) {
            abilita(true);
            const AreaLetta area = AreaDaRisposte(e.risposte, m_catalogo);
            if (!area.ok()) {
                mostraSegnalazione(e.rifiuto.vuoto() ? m_lingua.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_14")
                                                     : m_lingua.testo(e.rifiuto));
                return;
            }
            const StatoEcu &ecu = m_linea->ecu();
            const QString nome =
                testo(QStringLiteral("NOMEECU"))
                    .replace(QLatin1String("XXX"),
                             (ecu.InfVeicolo + QLatin1Char(' ') + ecu.InfCodice).simplified());
            if (lato == A)
                m_ecuLetta = area.immagine;
            impostaSorgente(lato, {SorgenteMappa::Tipo::Ecu, nome, area.immagine,
                                   ScalaDa(area.scalaLambda, OrigineScala::Ecu)});
            mostraSegnalazione({});
        });
    if (avviata) {
        mostraSegnalazione(testo(QStringLiteral("LETTURA")));
        abilita(false);
    }
    return avviata;
}

void ConfrontoMappe::scriviEcu(const QList<QByteArray> &richieste, std::function<void(bool)> fine)
{
    if (richieste.isEmpty()) {
        fine(true);
        return;
    }
    const bool avviata = m_ecu && m_ecu->scrivi(richieste, [this, fine](const SequenzaRichieste::Esito &e) {
        abilita(true);
        if (!e.ok)
            mostraSegnalazione(e.rifiuto.vuoto() ? m_lingua.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_5")
                                                 : m_lingua.testo(e.rifiuto));
        fine(e.ok);
    });
    if (!avviata) {
        mostraSegnalazione(testo(QStringLiteral("NOECU")));
        return;
    }
    mostraSegnalazione(m_lingua.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_4"));
    abilita(false);
}

void ConfrontoMappe::memorizzaEcu(std::function<void()> poi)
{
    const SorgenteMappa &a = m_sorgenti[A];
    if (a.tipo != SorgenteMappa::Tipo::Ecu || !m_modificata) {
        mostraSegnalazione(testo(QStringLiteral("NIENTEECU")));
        return;
    }
    // The tuning pages' question on leaving: Yes stores, No puts back what was read.
    const int risposta = domanda(m_lingua.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_6"), FlagDomandaAnnulla);
    if (risposta != RispostaSi && risposta != RispostaNo)
        return;
    const bool memorizza = risposta == RispostaSi;
    const QByteArray immagine = memorizza ? a.immagine : m_ecuLetta;
    const auto voci = VociCambiate(m_ecuLetta, a.immagine, m_catalogo);
    scriviEcu(ScrittureVoci(immagine, voci, true, memorizza, m_catalogo), [this, immagine, memorizza,
                                                                           poi = std::move(poi)](bool ok) {
        if (!ok)
            return;
        m_ecuLetta = immagine;
        m_sorgenti[A].immagine = immagine;
        m_modificata = false;
        mostraLato(A);
        aggiorna();
        mostraSegnalazione(testo(memorizza ? QStringLiteral("MEMORIZZATO") : QStringLiteral("RIPRISTINATO")));
        if (poi)
            poi();
    });
}

} // namespace kv
