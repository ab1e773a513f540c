#include "pages/ui/ModificaSenzaEcu.h"

#include "archives/Cartelle.h"
#include "base/Lingua.h"
#include "link/SessioneLinea.h"
#include "pages/ui/RegistroMessaPunto.h"
#include "pages/ui/TelaioMessaPunto.h"
#include "programming/AlberoMappe.h"
#include "programming/MappaSenzaEcu.h"
#include "shell/Menu.h"
#include "shell/StatoMenu.h"
#include "shell/ui/MsgBox1.h"
#include "shell/ui/Stile.h"

#include <QHBoxLayout>
#include <QHideEvent>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QShortcut>
#include <QStackedWidget>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace kv {

namespace {

constexpr int RuoloChiave = Qt::UserRole + 1;
constexpr int RispostaSi = 6;
constexpr int RispostaNo = 7;
constexpr int FlagDomanda = 0x24;
constexpr int FlagDomandaAnnulla = 0x23;
constexpr char Sezione[] = "ModificaSenzaEcu";

} // namespace

ModificaSenzaEcu::ModificaSenzaEcu(QString percorsoApp, const Lingua &lingua, bool assistenza,
                                   QWidget *parent)
    : QWidget(parent)
    , m_percorsoApp(std::move(percorsoApp))
    , m_lingua(lingua)
    , m_assistenza(assistenza)
{
    setObjectName(QString::fromLatin1(Sezione));
    const int u = fontMetrics().averageCharWidth();
    m_pila = new QStackedWidget(this);
    m_banco = new QWidget(m_pila);
    m_pila->addWidget(m_banco);

    const auto tasto = [this, u](const char *nome, const QKeySequence &chiave, auto azione) {
        auto *b = new QPushButton(m_banco);
        b->setObjectName(QString::fromLatin1(nome));
        b->setAutoDefault(false);
        b->setMinimumWidth(12 * u);
        connect(b, &QPushButton::clicked, this, azione);
        // Only while this page is on view: a tuning page in its place has keys of its own.
        auto *s = new QShortcut(chiave, m_banco);
        s->setContext(Qt::WidgetWithChildrenShortcut);
        connect(s, &QShortcut::activated, b, [b] {
            if (b->isEnabled())
                b->click();
        });
        return b;
    };
    m_apri = tasto("Apri", Qt::Key_F3, [this] {
        const QTreeWidgetItem *item = m_albero->currentItem();
        if (!item || item->data(0, RuoloChiave).isNull()) {
            mostraSegnalazione(testo(QStringLiteral("SCEGLIMAPPA")));
            return;
        }
        const QStringList k = item->data(0, RuoloChiave).toStringList();
        apriMappa({k.value(0), k.value(1), k.value(2), k.value(3)});
    });
    m_salva = tasto("Salva", Qt::Key_F2, [this] { Salva(); });
    m_esci = tasto("Esci", Qt::Key_Escape, [this] { Esci(); });

    m_labAlbero = new QLabel(m_banco);
    m_albero = new QTreeWidget(m_banco);
    m_albero->setObjectName(QStringLiteral("LMappe"));
    m_albero->setHeaderHidden(true);
    m_albero->setUniformRowHeights(true);
    m_albero->setMinimumWidth(28 * u);
    m_labAlbero->setBuddy(m_albero);
    // The frame gives the page the focus: the keys start in the tree.
    setFocusProxy(m_albero);
    connect(m_albero, &QTreeWidget::itemActivated, m_apri, &QPushButton::click);

    m_labMappa = new QLabel(m_banco);
    m_nome = new QLabel(m_banco);
    m_nome->setObjectName(QStringLiteral("NomeMappa"));
    m_nome->setFrameShape(QFrame::StyledPanel);
    m_nome->setFrameShadow(QFrame::Sunken);
    m_scala = new QLabel(m_banco);
    m_scala->setObjectName(QStringLiteral("Scala"));
    m_scala->setWordWrap(true);
    m_labPagine = new QLabel(m_banco);
    m_pagine = new QListWidget(m_banco);
    m_pagine->setObjectName(QStringLiteral("Pagine"));
    m_labPagine->setBuddy(m_pagine);
    connect(m_pagine, &QListWidget::itemActivated, this, [this](QListWidgetItem *item) {
        if (item->flags() & Qt::ItemIsEnabled)
            apriPagina(IdPagina(item->data(RuoloChiave).toInt()));
    });

    m_boxSalva = new BoxSalvaMappa(m_salva, m_banco);

    m_segnalazione = CreaRigaSegnalazione(QStringLiteral("Segnalazione1"), m_banco);

    auto *sinistra = new QVBoxLayout;
    sinistra->addWidget(m_labAlbero);
    sinistra->addWidget(m_albero, 1);
    sinistra->addWidget(m_apri);
    auto *destra = new QVBoxLayout;
    destra->addWidget(m_labMappa);
    destra->addWidget(m_nome);
    destra->addWidget(m_scala);
    destra->addSpacing(u);
    destra->addWidget(m_labPagine);
    destra->addWidget(m_pagine, 1);
    auto *sopra = new QHBoxLayout;
    sopra->addLayout(sinistra, 1);
    sopra->addLayout(destra, 1);
    auto *fondo = new QHBoxLayout;
    fondo->addWidget(m_segnalazione, 1);
    fondo->addWidget(m_esci);
    auto *banco = new QVBoxLayout(m_banco);
    banco->setContentsMargins(0, 0, 0, 0);
    banco->addLayout(sopra, 1);
    banco->addWidget(m_boxSalva);
    banco->addLayout(fondo);
    auto *principale = new QVBoxLayout(this);
    principale->setContentsMargins(0, 0, 0, 0);
    principale->addWidget(m_pila);

    m_domanda = [this](const QString &t, int flags, const QString &titolo) {
        return kv::MostraMsg(m_lingua, t, flags, titolo, 0, this);
    };
}

ModificaSenzaEcu::~ModificaSenzaEcu()
{
    // A page talks to the map's line: it goes before the line does, a closed one waiting to be
    // deleted as well.
    qDeleteAll(findChildren<TelaioMessaPunto *>());
}

QString ModificaSenzaEcu::testo(const QString &chiave) const
{
    return m_lingua.LeggiTesto(QString::fromLatin1(Sezione), chiave).trimmed();
}

QString ModificaSenzaEcu::segnalazione() const
{
    return m_segnalazione->text();
}

void ModificaSenzaEcu::mostraSegnalazione(const QString &t)
{
    m_segnalazione->setText(t);
}

int ModificaSenzaEcu::domanda(const QString &t, int flags)
{
    return m_domanda(t, flags, m_lingua.LeggiTesto("SEGNALAZIONI", "TITOLO_1"));
}

QString ModificaSenzaEcu::marchio() const
{
    return m_mappa ? testo(QStringLiteral("SENZAECU"))
                         .replace(QLatin1String("XXX"), m_mappa->chiave().elenco().join(u'\\'))
                   : QString();
}

void ModificaSenzaEcu::carica()
{
    m_labAlbero->setText(testo(QStringLiteral("LABMAPPE")));
    m_apri->setText(testo(QStringLiteral("APRI")));
    m_labMappa->setText(testo(QStringLiteral("LABMAPPA")));
    m_labPagine->setText(testo(QStringLiteral("LABPAGINE")));
    m_boxSalva->caricaTesti(m_lingua, testo(QStringLiteral("BOXSALVA.CAPTION")));
    m_salva->setText(testo(QStringLiteral("SALVA")));
    m_esci->setText(QLatin1Char('&') + m_lingua.LeggiTesto("TASTI", "ESCI").trimmed()
                    + QStringLiteral("  (Esc)"));
    riempiAlbero({});
    mostraMappa();
    mostraSegnalazione(testo(QStringLiteral("INIZIO")));
    m_albero->setFocus(Qt::OtherFocusReason);
}

void ModificaSenzaEcu::riempiAlbero(const ChiaveMappa &scelta)
{
    EsitoArchivio esito;
    const AlberoMappe a = AlberoMappe::Carica(m_percorsoApp, &esito);
    m_albero->clear();
    QTreeWidgetItem *corrente = nullptr;
    const int nodoScelto = scelta.file.isEmpty() ? -1 : a.trova(scelta);
    const std::function<void(int, QTreeWidgetItem *)> aggiungi = [&](int id, QTreeWidgetItem *padre) {
        for (int figlio : a.nodo(id).figli) {
            const AlberoMappe::Nodo &n = a.nodo(figlio);
            auto *item =
                padre ? new QTreeWidgetItem(padre, {n.nome}) : new QTreeWidgetItem(m_albero, {n.nome});
            if (n.livello == AlberoMappe::Livello::Mappa) {
                item->setData(0, RuoloChiave, a.chiave(figlio).elenco());
                item->setToolTip(0, n.nota.value_or(QString()));
                if (figlio == nodoScelto || (!corrente && nodoScelto < 0))
                    corrente = item;
            }
            aggiungi(figlio, item);
        }
    };
    aggiungi(AlberoMappe::Radice, nullptr);
    m_albero->expandAll();
    if (corrente)
        m_albero->setCurrentItem(corrente);
    if (!esito.ok())
        mostraSegnalazione(m_lingua.testo(MessaggioArchivio(esito)));
}

void ModificaSenzaEcu::riempiPagine()
{
    m_pagine->clear();
    if (!m_mappa)
        return;
    // The tuning entries of the menu in its mode, enabled as the menu would for this map.
    const auto voci = Menu::Opzioni(
        int(Funzione::MessaPunto), m_mappa->linea().ecu(), m_assistenza,
        [this](const QString &chiave) { return m_lingua.LeggiTesto(QStringLiteral("MainLambda"), chiave); });
    for (const Menu::Voce &v : voci) {
        if (!v.visibile || !PaginaMessaPunto(v.pagina))
            continue;
        auto *item = new QListWidgetItem(v.caption, m_pagine);
        item->setData(RuoloChiave, int(v.pagina));
        if (!v.abilitata)
            item->setFlags(item->flags() & ~Qt::ItemIsEnabled);
    }
    m_pagine->setCurrentRow(0);
}

void ModificaSenzaEcu::mostraMappa()
{
    if (!m_mappa) {
        m_nome->setText(testo(QStringLiteral("NESSUNA")));
        m_scala->clear();
    } else {
        QString nome = m_mappa->chiave().elenco().join(u'\\');
        if (m_mappa->modificata())
            nome += QLatin1Char(' ') + testo(QStringLiteral("MODIFICATA"));
        m_nome->setText(nome);
        // The rule the lambda thresholds are shown by, as the compare page says it.
        const std::optional<double> &s = m_mappa->scalaLambda();
        m_scala->setText(m_lingua
                             .LeggiTesto(QStringLiteral("ConfrontoMappe"),
                                         s ? QStringLiteral("SCALA.1") : QStringLiteral("SCALA.0"))
                             .trimmed()
                             .replace(QLatin1String("XXX"), QString::number(s.value_or(0))));
    }
    m_salva->setEnabled(static_cast<bool>(m_mappa));
    aggiornaTitolo();
    emit segnalazione1(marchio());
}

void ModificaSenzaEcu::aggiornaTitolo()
{
    const QString titolo = m_pagina ? m_pagina->windowTitle() : testo(QStringLiteral("CAPTION"));
    setWindowTitle(m_mappa ? titolo + QStringLiteral("  \u2014  ") + marchio() : titolo);
}

bool ModificaSenzaEcu::apriMappa(const ChiaveMappa &chiave)
{
    const MappaArchiviata m = CaricaMappaArchiviata(m_percorsoApp, chiave);
    const QString nome = (m.percorso.ok() ? m.percorso.chiave : chiave.pulita()).elenco().join(u'\\');
    if (!m.ok()) {
        // Never opened in part.
        mostraSegnalazione(m_lingua.testo(MessaggioMappaRifiutata(m, nome)));
        return false;
    }
    if (m_mappa && m_mappa->modificata()
        && domanda(testo(QStringLiteral("SOSTITUISCI")), FlagDomanda) != RispostaSi)
        return false;
    m_mappa = std::make_unique<MappaSenzaEcu>(m);
    const ChiaveMappa &k = m_mappa->chiave();
    m_boxSalva->imposta(k, m.nota.value_or(QString()));
    riempiPagine();
    mostraMappa();
    mostraSegnalazione(testo(QStringLiteral("APERTA")).replace(QLatin1String("XXX"), nome));
    m_pagine->setFocus(Qt::OtherFocusReason);
    return true;
}

TelaioMessaPunto *ModificaSenzaEcu::apriPagina(IdPagina id)
{
    if (!m_mappa || m_pagina)
        return nullptr;
    // The page as the menu makes it, but on the map's line and catalogue.
    TelaioMessaPunto *p = CreaPaginaMessaPunto(
        ContestoPagina{m_mappa->linea(), m_mappa->catalogo(), m_lingua, m_assistenza}, id, m_pila);
    if (!p)
        return nullptr;
    m_pagina = p;
    p->impostaDomanda(
        [this](const QString &t, int flags, const QString &titolo) { return m_domanda(t, flags, titolo); });
    connect(p, &TelaioMessaPunto::chiusa, this, &ModificaSenzaEcu::paginaChiusa);
    connect(p, &TelaioMessaPunto::segnalazione1, this, [this](const QString &t) {
        emit segnalazione1(t.trimmed().isEmpty() ? marchio()
                                                 : marchio() + QStringLiteral("  \u2014  ") + t.trimmed());
    });
    connect(p, &QWidget::windowTitleChanged, this, &ModificaSenzaEcu::aggiornaTitolo);
    m_pila->addWidget(p);
    m_pila->setCurrentWidget(p);
    p->carica();
    aggiornaTitolo();
    return p;
}

void ModificaSenzaEcu::paginaChiusa()
{
    TelaioMessaPunto *p = m_pagina;
    if (!p)
        return;
    m_pagina.clear();
    // Not now: the page is still on the stack of its own handler.
    m_pila->setCurrentWidget(m_banco);
    m_pila->removeWidget(p);
    p->hide();
    p->deleteLater();
    mostraMappa();
    if (m_mappa && m_mappa->modificata())
        mostraSegnalazione(testo(QStringLiteral("MEMORIZZATA")));
    m_pagine->setFocus(Qt::OtherFocusReason);
}

void ModificaSenzaEcu::Salva()
{
    if (!m_mappa) {
        mostraSegnalazione(testo(QStringLiteral("SCEGLIMAPPA")));
        return;
    }
    const ChiaveMappa chiave = m_boxSalva->chiave();
    Messaggio motivo;
    const PercorsoMappa percorso = m_boxSalva->percorso(m_percorsoApp, motivo);
    if (!percorso.ok()) {
        mostraSegnalazione(m_lingua.testo(motivo));
        return;
    }
    // Over the opened map, or any other, only when the fitter says so.
    if (EsisteMappa(percorso)
        && domanda(m_lingua.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_8"), FlagDomanda) != RispostaSi)
        return;
    const EsitoSalvataggio e = m_mappa->salva(m_percorsoApp, chiave, m_boxSalva->nota());
    const Messaggio esito = MessaggioSalvataggio(e);
    if (!e.ok()) {
        mostraSegnalazione(m_lingua.testo(esito));
        return;
    }
    const QString nome = e.percorso.chiave.elenco().join(u'\\');
    riempiAlbero(e.percorso.chiave);
    mostraMappa();
    mostraSegnalazione(esito.vuoto() ? testo(QStringLiteral("SALVATA")).replace(QLatin1String("XXX"), nome)
                                     : m_lingua.testo(esito));
}

void ModificaSenzaEcu::Esci()
{
    if (m_mappa && m_mappa->modificata()) {
        const int risposta = domanda(testo(QStringLiteral("USCITA")), FlagDomandaAnnulla);
        if (risposta == RispostaSi) {
            Salva();
            if (m_mappa->modificata())
                return;
        } else if (risposta != RispostaNo) {
            return;
        }
    }
    // The frame takes the page away without hiding it first: the strip's mark goes now.
    emit segnalazione1({});
    emit chiusa();
}

void ModificaSenzaEcu::hideEvent(QHideEvent *evento)
{
    QWidget::hideEvent(evento);
    // The strip's mark goes with the page.
    if (!evento->spontaneous())
        emit segnalazione1({});
}

} // namespace kv
