#include "programming/ui/PaginaElenchiMappe.h"
#include "base/Lingua.h"

#include "archives/Cartelle.h"
#include "programming/CancellazioneMappe.h"
#include "programming/ScambioMappe.h"
#include "programming/ui/ModelloAlberoMappe.h"
#include "programming/ui/SceltaCartella.h"

#include <QApplication>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeView>
#include <QVBoxLayout>

namespace kv {

namespace {

QString sezioneDi(PaginaElenchiMappe::Funzione f)
{
    switch (f) {
    case PaginaElenchiMappe::Funzione::CreaDisco:
        return QStringLiteral("CreaDiscoMappe");
    case PaginaElenchiMappe::Funzione::Ripristino:
        return QStringLiteral("RipriMappe");
    case PaginaElenchiMappe::Funzione::Cancellazione:
        break;
    }
    return QStringLiteral("CancelMappe");
}

} // namespace

PaginaElenchiMappe::PaginaElenchiMappe(const Lingua &lingua, QString percorsoApp, Funzione funzione,
                                       QWidget *parent)
    : TelaioScambio(lingua, std::move(percorsoApp), sezioneDi(funzione), funzione != Funzione::Cancellazione,
                    parent)
    , m_funzione(funzione)
{
    const int u = fontMetrics().averageCharWidth();
    const char *nomiElenchi[] = {"ElencoMM", "ElencoAll"};
    for (size_t i = 0; i < m_elenchi.size(); ++i) {
        m_modelli[i] = new ModelloAlberoMappe(this);
        m_elenchi[i] = new QTreeView(this);
        m_elenchi[i]->setObjectName(QString::fromLatin1(nomiElenchi[i]));
        m_elenchi[i]->setModel(m_modelli[i]);
        m_elenchi[i]->setHeaderHidden(true);
        m_elenchi[i]->setUniformRowHeights(true);
        m_elenchi[i]->setMinimumWidth(30 * u);
        m_elenchi[i]->setIconSize(QSize(32, 16));
        m_elenchi[i]->installEventFilter(this);
        m_etichette[i] = new QLabel(this);
        m_etichette[i]->setObjectName(QStringLiteral("LabCD%1").arg(i));
        m_etichette[i]->setBuddy(m_elenchi[i]);
    }
    auto *tasti = new QVBoxLayout;
    tasti->addStretch(1);
    for (size_t i = 0; i < 2; ++i) {
        m_aggiungi[i] = new QPushButton(this);
        m_aggiungi[i]->setObjectName(QStringLiteral("Aggiungi%1").arg(i));
        m_rimuovi[i] = new QPushButton(this);
        m_rimuovi[i]->setObjectName(QStringLiteral("Rimuovi%1").arg(i));
        connect(m_aggiungi[i], &QPushButton::clicked, this, [this, i] { Aggiungi(int(i)); });
        connect(m_rimuovi[i], &QPushButton::clicked, this, [this, i] { Rimuovi(int(i)); });
    }
    for (QPushButton *b : {m_aggiungi[1], m_aggiungi[0], m_rimuovi[0], m_rimuovi[1]}) {
        b->setAutoDefault(false);
        tasti->addWidget(b);
    }
    tasti->addStretch(1);

    auto *elenchi = new QGridLayout;
    elenchi->addWidget(m_etichette[0], 0, 0);
    elenchi->addWidget(m_etichette[1], 0, 2);
    elenchi->addWidget(m_elenchi[0], 1, 0);
    elenchi->addLayout(tasti, 1, 1);
    elenchi->addWidget(m_elenchi[1], 1, 2);
    elenchi->setColumnStretch(0, 1);
    elenchi->setColumnStretch(2, 1);

    corpo()->addLayout(elenchi, 1);
    mettiCartella(corpo());
    if (m_funzione == Funzione::Ripristino)
        connect(cartella(), &SceltaCartella::cartellaScelta, this, &PaginaElenchiMappe::ScegliSorgente);
    const char *nomiComando[] = {"CreaAgg", "Ripristina", "Cancella"};
    comando()->setObjectName(QString::fromLatin1(nomiComando[int(m_funzione)]));
}

void PaginaElenchiMappe::carica()
{
    const QString etichette =
        m_funzione == Funzione::Ripristino ? QStringLiteral("LABSALVA.") : QStringLiteral("LABCD.");
    const char *comandi[] = {"CREA", "RIPRISTINA", "CANCELLA"};
    caricaTesti(QString::fromLatin1(comandi[int(m_funzione)]), testo(etichette + QLatin1Char('2')));
    for (size_t i = 0; i < m_etichette.size(); ++i)
        m_etichette[i]->setText(testo(etichette + QString::number(i)));
    for (size_t i = 0; i < 2; ++i) {
        m_aggiungi[i]->setText(testo(QStringLiteral("AGGIUNGI.") + QString::number(i)));
        m_rimuovi[i]->setText(testo(QStringLiteral("RIMUOVI.") + QString::number(i)));
    }
    const QMap<QString, QString> marchi = CaricoMarchi(percorsoApp());
    for (ModelloAlberoMappe *m : m_modelli) {
        m->impostaTestoMancante(testo(Messaggio("SCAMBIO", "MANCANTE")));
        m->impostaMarchi(marchi);
    }

    QList<QWidget *> ordine{m_elenchi[0], m_elenchi[1]};
    if (cartella())
        ordine << cartella()->campo() << cartella()->sfoglia();
    ordine << comando() << esci() << m_aggiungi[1] << m_aggiungi[0] << m_rimuovi[0] << m_rimuovi[1];
    for (int i = 1; i < ordine.size(); ++i)
        setTabOrder(ordine.at(i - 1), ordine.at(i));

    if (m_funzione == Funzione::Ripristino)
        aggiornaElenchi();
    else
        ricaricaArchivio();
    setFocusProxy(m_elenchi[0]);
    m_elenchi[0]->setFocus(Qt::OtherFocusReason);
}

void PaginaElenchiMappe::ricaricaArchivio()
{
    EsitoArchivio esito;
    m_selezione.imposta(AlberoMappe::Carica(percorsoApp(), &esito));
    aggiornaElenchi();
    if (!esito.ok())
        mostraSegnalazione(lingua().testo(MessaggioArchivio(esito)));
}

void PaginaElenchiMappe::aggiornaElenchi(bool disponibili)
{
    if (disponibili) {
        m_modelli[0]->imposta(m_selezione.disponibili(), AlberoMappe::Livello::Mappa);
        const QModelIndex radice = m_modelli[0]->indice(AlberoMappe::Radice);
        m_elenchi[0]->expand(radice);
        for (int r = 0; r < m_modelli[0]->rowCount(radice); ++r)
            m_elenchi[0]->expand(m_modelli[0]->index(r, 0, radice));
        m_elenchi[0]->setCurrentIndex(radice);
    }
    m_modelli[1]->imposta(m_selezione.scelte(), AlberoMappe::Livello::Mappa);
    m_elenchi[1]->expandAll();
    m_elenchi[1]->setCurrentIndex(m_modelli[1]->indice(AlberoMappe::Radice));
}

void PaginaElenchiMappe::Aggiungi(int indice)
{
    if (indice == 0) {
        m_selezione.aggiungiTutti();
    } else {
        const int nodo = m_modelli[0]->nodo(m_elenchi[0]->currentIndex());
        if (nodo < 0)
            return;
        m_selezione.aggiungi(nodo);
    }
    aggiornaElenchi(false);
}

void PaginaElenchiMappe::Rimuovi(int indice)
{
    if (indice == 1) {
        m_selezione.rimuoviTutti();
        aggiornaElenchi(false);
        return;
    }
    const int nodo = m_modelli[1]->nodo(m_elenchi[1]->currentIndex());
    if (nodo < 0)
        return;
    // The fitter stays where he was: on the nearest node above that is left.
    ChiaveMappa sopra = m_selezione.scelte().chiave(m_selezione.scelte().nodo(nodo).padre);
    m_selezione.rimuovi(nodo);
    aggiornaElenchi(false);
    for (int n = ChiaveMappa::Campi - 1; n >= 0; --n) {
        const int id = m_selezione.scelte().trova(sopra);
        if (id > 0) {
            m_elenchi[1]->setCurrentIndex(m_modelli[1]->indice(id));
            break;
        }
        sopra.impostaCampo(n, {});
    }
}

void PaginaElenchiMappe::ScegliSorgente(const QString &sorgente)
{
    if (m_funzione != Funzione::Ripristino)
        return;
    m_sorgente = sorgente.trimmed();
    SorgenteMappe letta;
    {
        Attesa attesa;
        letta = LeggiDiscoMappe(percorsoApp(), m_sorgente);
    }
    m_selezione.imposta(letta.albero);
    aggiornaElenchi();
    if (letta.esito.fatto && letta.esito.messaggio.vuoto())
        letta.esito.messaggio = MessaggioScambio(
            Messaggio("SCAMBIO", "ELENCO"), QString::number(letta.albero.foglie(AlberoMappe::Radice).size()));
    mostra(letta.esito);
}

void PaginaElenchiMappe::Comando()
{
    const QString app = percorsoApp();
    const DomandaScambio domanda = [this](const Messaggio &t) { return chiedi(t); };
    mostra({});
    switch (m_funzione) {
    case Funzione::CreaDisco: {
        mostraSegnalazione(testo(Messaggio("SCAMBIO", "IN_CORSO")));
        Attesa attesa;
        mostra(ScriviDiscoMappe(app, m_selezione.chiavi(), cartella()->cartella(), domanda));
        break;
    }
    case Funzione::Ripristino: {
        // A folder typed but not yet confirmed is listed first: the fitter chooses from it.
        if (cartella()->cartella() != m_sorgente) {
            ScegliSorgente(cartella()->cartella());
            return;
        }
        if (m_selezione.vuota() || m_sorgente.isEmpty()) {
            QApplication::beep();
            mostraSegnalazione(testo(Segnalazione("SEGNALAZIONE_17")));
            cartella()->setFocus(Qt::OtherFocusReason);
            return;
        }
        mostraSegnalazione(testo(Messaggio("RipriMappe", "SEGNALAZIONE_2")));
        Attesa attesa;
        mostra(RipristinaMappe(app, m_sorgente, m_selezione.chiavi(), domanda));
        QApplication::beep();
        break;
    }
    case Funzione::Cancellazione: {
        Attesa attesa;
        const EsitoScambio esito = CancellaMappe(app, m_selezione.chiavi(), domanda);
        if (esito.fatto)
            ricaricaArchivio();
        mostra(esito);
        break;
    }
    }
}

bool PaginaElenchiMappe::eventFilter(QObject *oggetto, QEvent *evento)
{
    if (evento->type() == QEvent::KeyPress && (oggetto == m_elenchi[0] || oggetto == m_elenchi[1])) {
        const auto *tasto = static_cast<QKeyEvent *>(evento);
        const int k = tasto->key();
        const bool tutti = tasto->modifiers() & Qt::ControlModifier;
        const bool invio = k == Qt::Key_Return || k == Qt::Key_Enter;
        if (oggetto == m_elenchi[0] && (invio || k == Qt::Key_Insert)) {
            Aggiungi(tutti ? 0 : 1);
            return true;
        }
        if (oggetto == m_elenchi[1] && (invio || k == Qt::Key_Delete)) {
            Rimuovi(tutti ? 1 : 0);
            return true;
        }
    }
    return TelaioScambio::eventFilter(oggetto, evento);
}

} // namespace kv
