#include "programming/ui/PaginaSoftware.h"
#include "base/Lingua.h"

#include "archives/CancellazioneSoftware.h"
#include "programming/ui/SceltaCartella.h"

#include <QApplication>
#include <QFocusEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace kv {

namespace {

constexpr int RuoloNome = Qt::UserRole + 1;
constexpr int RuoloVersione = Qt::UserRole + 2;
constexpr int RuoloNota = Qt::UserRole + 3;

// Qt makes the first row current as the list takes the focus. On the deletion page that row
// would look chosen and the first Down would skip it: there no row is current until one is.
class ListaCancellazione : public QListWidget
{
public:
    using QListWidget::QListWidget;

protected:
    void focusInEvent(QFocusEvent *evento) override
    {
        QListWidget::focusInEvent(evento);
        if (selectedItems().isEmpty())
            selectionModel()->clearCurrentIndex();
    }
};

QString sezioneDi(PaginaSoftware::Funzione f)
{
    switch (f) {
    case PaginaSoftware::Funzione::CreaDisco:
        return QStringLiteral("CreaDiscoSW");
    case PaginaSoftware::Funzione::Ripristino:
        return QStringLiteral("RipriDiscoSW");
    case PaginaSoftware::Funzione::Cancellazione:
        break;
    }
    return QStringLiteral("CancelSW");
}

} // namespace

PaginaSoftware::PaginaSoftware(const Lingua &lingua, QString percorsoApp, Funzione funzione, QWidget *parent)
    : TelaioScambio(lingua, std::move(percorsoApp), sezioneDi(funzione), funzione != Funzione::Cancellazione,
                    parent)
    , m_funzione(funzione)
    , m_box(new QGroupBox(this))
    , m_lista(funzione == Funzione::Cancellazione ? new ListaCancellazione(m_box) : new QListWidget(m_box))
    , m_versione(new QLineEdit(m_box))
    , m_note(new QLabel(m_box))
{
    const int u = fontMetrics().averageCharWidth();
    const char *box[] = {"BoxCreaDisco", "BoxRipriDisco", "BoxCancel"};
    m_box->setObjectName(QString::fromLatin1(box[int(m_funzione)]));
    m_lista->setObjectName(QStringLiteral("LSoftware"));
    m_lista->setMinimumWidth(30 * u);
    m_lista->setSelectionMode(m_funzione == Funzione::CreaDisco ? QAbstractItemView::ExtendedSelection
                                                                : QAbstractItemView::SingleSelection);
    m_lista->installEventFilter(this);
    m_versione->setObjectName(QStringLiteral("Versione"));
    m_note->setObjectName(QStringLiteral("Note"));
    auto *campi = new QGridLayout;
    for (size_t i = 0; i < m_etichette.size(); ++i) {
        m_etichette[i] = new QLabel(m_box);
        m_etichette[i]->setObjectName(QStringLiteral("LabSW%1").arg(i));
        QWidget *campo = i == 0 ? static_cast<QWidget *>(m_versione) : m_note;
        m_etichette[i]->setBuddy(campo);
        campi->addWidget(m_etichette[i], int(i), 0, Qt::AlignTop);
        campi->addWidget(campo, int(i), 1);
    }
    m_versione->setReadOnly(true);
    m_note->setFrameShape(QFrame::StyledPanel);
    m_note->setFrameShadow(QFrame::Sunken);
    m_note->setWordWrap(true);
    m_note->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_note->setMinimumHeight(3 * m_note->fontMetrics().height());
    m_note->setTextFormat(Qt::PlainText);
    campi->setColumnStretch(1, 1);
    campi->setRowStretch(2, 1);
    auto *dentro = new QHBoxLayout(m_box);
    dentro->addWidget(m_lista, 1);
    dentro->addLayout(campi, 1);
    corpo()->addWidget(m_box, 1);

    if (m_funzione != Funzione::Cancellazione) {
        m_boxCartella = new QGroupBox(this);
        m_boxCartella->setObjectName(m_funzione == Funzione::CreaDisco ? QStringLiteral("BoxDestinazione")
                                                                       : QStringLiteral("BoxSorgente"));
        auto *riga = new QVBoxLayout(m_boxCartella);
        mettiCartella(riga);
        corpo()->addWidget(m_boxCartella);
        if (m_funzione == Funzione::Ripristino)
            connect(cartella(), &SceltaCartella::cartellaScelta, this, &PaginaSoftware::ScegliSorgente);
    }
    const char *nomiComando[] = {"CreaAgg", "RipristinaAgg", "Cancella"};
    comando()->setObjectName(QString::fromLatin1(nomiComando[int(m_funzione)]));
    connect(m_lista, &QListWidget::currentItemChanged, this, [this] { voceCorrente(); });
}

void PaginaSoftware::carica()
{
    const char *comandi[] = {"CREA", "RIPRISTINA", "CANCELLA"};
    caricaTesti(QString::fromLatin1(comandi[int(m_funzione)]), {});
    const char *box[] = {"BOXCREADISCO", "BOXRIPRIDISCO", "BOXCANCEL"};
    m_box->setTitle(testo(QString::fromLatin1(box[int(m_funzione)])));
    if (m_boxCartella)
        m_boxCartella->setTitle(testo(m_funzione == Funzione::CreaDisco ? QStringLiteral("BOXDESTINAZIONE")
                                                                        : QStringLiteral("BOXSORGENTE")));
    for (size_t i = 0; i < m_etichette.size(); ++i)
        m_etichette[i]->setText(testo(QStringLiteral("LABSW.") + QString::number(i)));

    QList<QWidget *> ordine{m_lista};
    if (cartella())
        ordine << cartella()->campo() << cartella()->sfoglia();
    ordine << comando() << esci() << m_versione;
    for (int i = 1; i < ordine.size(); ++i)
        setTabOrder(ordine.at(i - 1), ordine.at(i));

    if (m_funzione != Funzione::Ripristino)
        ricaricaArchivio();
    setFocusProxy(m_lista);
    m_lista->setFocus(Qt::OtherFocusReason);
}

void PaginaSoftware::riempi(const QList<VoceSoftware> &voci)
{
    const QString mancante = testo(Messaggio("SCAMBIO", "MANCANTE"));
    m_lista->clear();
    for (const VoceSoftware &v : voci) {
        auto *voce = new QListWidgetItem(v.suDisco ? v.nome : v.nome + u' ' + mancante, m_lista);
        voce->setData(RuoloNome, v.nome);
        voce->setData(RuoloVersione, v.versione);
        voce->setData(RuoloNota, v.nota);
        if (!v.suDisco)
            voce->setForeground(palette().color(QPalette::Disabled, QPalette::Text));
    }
    if (m_lista->count() > 0 && m_funzione != Funzione::Cancellazione)
        m_lista->setCurrentRow(0, QItemSelectionModel::NoUpdate);
    voceCorrente();
}

void PaginaSoftware::ricaricaArchivio()
{
    EsitoArchivio esito;
    riempi(ElencoSoftware(percorsoApp(), &esito));
    if (!esito.ok())
        mostraSegnalazione(lingua().testo(MessaggioArchivio(esito)));
}

void PaginaSoftware::voceCorrente()
{
    const QListWidgetItem *voce = m_lista->currentItem();
    m_versione->setText(voce ? voce->data(RuoloVersione).toString() : QString());
    m_note->setText(voce ? voce->data(RuoloNota).toString() : QString());
}

QStringList PaginaSoftware::nomi(bool soloScelti) const
{
    QStringList elenco;
    for (int r = 0; r < m_lista->count(); ++r)
        if (!soloScelti || m_lista->item(r)->isSelected())
            elenco << m_lista->item(r)->data(RuoloNome).toString();
    return elenco;
}

void PaginaSoftware::ScegliSorgente(const QString &sorgente)
{
    if (m_funzione != Funzione::Ripristino)
        return;
    m_sorgente = sorgente.trimmed();
    SorgenteSoftware letta;
    {
        Attesa attesa;
        letta = LeggiDiscoSoftware(percorsoApp(), m_sorgente);
    }
    riempi(letta.voci);
    if (letta.esito.fatto && letta.esito.messaggio.vuoto())
        letta.esito.messaggio =
            MessaggioScambio(Messaggio("SCAMBIO", "ELENCO"), QString::number(letta.voci.size()));
    mostra(letta.esito);
}

void PaginaSoftware::Comando()
{
    const QString app = percorsoApp();
    const DomandaScambio domanda = [this](const Messaggio &t) { return chiedi(t); };
    mostra({});
    switch (m_funzione) {
    case Funzione::CreaDisco: {
        mostraSegnalazione(testo(Messaggio("SCAMBIO", "IN_CORSO")));
        Attesa attesa;
        const EsitoScambio esito = ScriviDiscoSoftware(app, nomi(true), cartella()->cartella(), domanda);
        // No target named: the fitter is taken to the field.
        if (!esito.fatto && esito.messaggio.chiave == u"SEGNALAZIONE_32") {
            QApplication::beep();
            cartella()->setFocus(Qt::OtherFocusReason);
        }
        mostra(esito);
        break;
    }
    case Funzione::Ripristino: {
        if (cartella()->cartella() != m_sorgente) {
            ScegliSorgente(cartella()->cartella());
            return;
        }
        if (m_lista->count() == 0 || m_sorgente.isEmpty()) {
            QApplication::beep();
            cartella()->setFocus(Qt::OtherFocusReason);
            return;
        }
        mostraSegnalazione(testo(Messaggio("RipriDiscoSW", "SEGNALAZIONE1.2")));
        Attesa attesa;
        mostra(RipristinaSoftware(app, m_sorgente, nomi(false), domanda));
        break;
    }
    case Funzione::Cancellazione: {
        // Only a release the fitter has chosen: the list's current row alone, which the list
        // has from the moment it is filled, is no choice.
        const QListWidgetItem *voce = m_lista->currentItem();
        const QString nome = voce && voce->isSelected() ? voce->data(RuoloNome).toString() : QString();
        if (nome.isEmpty()) {
            avvisa(testo(Segnalazione("SEGNALAZIONE_13")));
            return;
        }
        QApplication::beep();
        const EsitoScambio esito = CancellaSoftware(app, nome, domanda);
        if (esito.fatto) {
            ricaricaArchivio();
        }
        mostra(esito);
        break;
    }
    }
}

bool PaginaSoftware::eventFilter(QObject *oggetto, QEvent *evento)
{
    if (oggetto == m_lista && evento->type() == QEvent::KeyPress && m_funzione == Funzione::Cancellazione
        && static_cast<QKeyEvent *>(evento)->key() == Qt::Key_Delete) {
        Comando();
        return true;
    }
    return TelaioScambio::eventFilter(oggetto, evento);
}

} // namespace kv
