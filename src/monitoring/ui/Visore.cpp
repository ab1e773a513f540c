#include "monitoring/ui/Visore.h"

#include "archives/SchemaArchivi.h"
#include "base/FileSystem.h"
#include "base/Lingua.h"
#include "monitoring/EsportaCsv.h"
#include "monitoring/SchedaRegistrazione.h"
#include "monitoring/ui/GraficoVisore.h"
#include "shell/ui/MsgBox1.h"
#include "variables/Formato.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QPainter>
#include <QPushButton>
#include <QShortcut>
#include <QSplitter>
#include <QStyle>
#include <QTableWidget>
#include <QVBoxLayout>

namespace kv {

namespace {

enum Colonna {
    ColNome,
    ColCursore,
    ColDifferenza,
    ColMinimo,
    ColMassimo,
    ColMedia,
    NumeroColonne
};

QString senzaAcceleratore(QString testo)
{
    return testo.remove(u'&').remove(QStringLiteral("...")).trimmed();
}

QIcon campione(const QColor &colore)
{
    QPixmap px(12, 12);
    px.fill(colore);
    return QIcon(px);
}

// The cards of the archive of recordings whose make and model begin as typed, as the record
// card lists them; the one chosen names its recording file.
class SceltaScheda : public QDialog
{
public:
    SceltaScheda(const QString &percorsoApp, const Lingua &l, QWidget *parent)
        : QDialog(parent)
        , m_scheda(percorsoApp, m_anello)
        , m_marca(new QLineEdit(this))
        , m_modello(new QLineEdit(this))
        , m_elenco(new QListWidget(this))
    {
        setObjectName(QStringLiteral("SceltaScheda"));
        setWindowTitle(l.LeggiTesto("Visore", "SCHEDE"));
        auto *colonna = new QVBoxLayout(this);
        auto *caselle = new QFormLayout;
        caselle->addRow(l.LeggiTesto(QStringLiteral("Memorf"), QStringLiteral("LABSCHEDA.0")), m_marca);
        caselle->addRow(l.LeggiTesto(QStringLiteral("Memorf"), QStringLiteral("LABSCHEDA.1")), m_modello);
        m_marca->setMaxLength(SchedaRegistrazione::Lunghezza[SchedaRegistrazione::Marca]);
        m_modello->setMaxLength(SchedaRegistrazione::Lunghezza[SchedaRegistrazione::Modello]);
        colonna->addLayout(caselle);
        auto *didascalia = new QLabel(l.LeggiTesto("Visore", "ELENCO"), this);
        didascalia->setWordWrap(true);
        didascalia->setBuddy(m_elenco);
        colonna->addWidget(didascalia);
        colonna->addWidget(m_elenco, 1);
        auto *tasti = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
        tasti->button(QDialogButtonBox::Ok)
            ->setText(l.LeggiTesto(QStringLiteral("TASTI"), QStringLiteral("OK")));
        tasti->button(QDialogButtonBox::Cancel)
            ->setText(l.LeggiTesto(QStringLiteral("TASTI"), QStringLiteral("ANNULLA")));
        colonna->addWidget(tasti);
        connect(tasti, &QDialogButtonBox::accepted, this, &QDialog::accept);
        connect(tasti, &QDialogButtonBox::rejected, this, &QDialog::reject);
        connect(m_elenco, &QListWidget::itemActivated, this, &QDialog::accept);
        connect(m_marca, &QLineEdit::textChanged, this, &SceltaScheda::riempi);
        connect(m_modello, &QLineEdit::textChanged, this, &SceltaScheda::riempi);
        resize(560, 420);
        m_scheda.Apri();
        riempi();
    }

    ~SceltaScheda() override { m_scheda.Chiudi(); }

    bool aperta() const { return m_scheda.aperta(); }

    // The file of the card chosen; empty when none is, or its names lead nowhere allowed.
    QString percorso()
    {
        const int riga = m_elenco->currentRow();
        if (riga < 0 || riga >= m_voci.size())
            return {};
        const auto caselle = m_scheda.LeggiScheda(m_voci.at(riga));
        if (!caselle)
            return {};
        return m_scheda.PercorsoRegistrazione((*caselle)[SchedaRegistrazione::Marca],
                                              (*caselle)[SchedaRegistrazione::Modello],
                                              (*caselle)[SchedaRegistrazione::File]);
    }

private:
    void riempi()
    {
        m_voci = m_scheda.ElencoEsi(m_marca->text(), m_modello->text());
        m_elenco->clear();
        for (const SchedaRegistrazione::Voce &v : m_voci)
            m_elenco->addItem(v.testo.left(50).trimmed() + QStringLiteral("  /  ") + v.testo.mid(50).trimmed()
                              + QStringLiteral("  /  ") + v.file.trimmed().toUpper());
        if (!m_voci.isEmpty())
            m_elenco->setCurrentRow(0);
    }

    // Only there for the card's constructor: choosing a file records nothing.
    AnelloRegistrazione m_anello;
    SchedaRegistrazione m_scheda;
    QLineEdit *m_marca;
    QLineEdit *m_modello;
    QListWidget *m_elenco;
    QList<SchedaRegistrazione::Voce> m_voci;
};

} // namespace

Visore::Visore(QString percorsoApp, const Lingua &lingua, const TabellaCanali &canali, QWidget *parent)
    : QWidget(parent)
    , m_percorsoApp(std::move(percorsoApp))
    , m_lingua(lingua)
    , m_canali(canali)
    , m_grafico(new GraficoVisore(m_modello, canali, this))
    , m_tabella(new QTableWidget(int(ModelloVisore::Canali.size()), NumeroColonne, this))
    , m_lettura(new QLabel(this))
    , m_stato(new QLabel(this))
    , m_tasti(new QLabel(this))
{
    setObjectName(QStringLiteral("Visore"));
    m_messaggio = [this](const QString &t, int flags, const QString &titolo) {
        return MostraMsg(m_lingua, t, flags, titolo, 0, this);
    };

    auto *menu = new QMenuBar(this);
    QMenu *file = menu->addMenu(m_lingua.LeggiTesto("Visore", "MENUP.0"));
    m_apriScheda = azione(file, "APRISCHEDA", m_lingua.LeggiTesto("Visore", "APRISCHEDA"), Qt::Key_F2);
    connect(m_apriScheda, &QAction::triggered, this, &Visore::scegliScheda);
    connect(azione(file, "APRIFILE", m_lingua.LeggiTesto("Visore", "APRIFILE"), QKeySequence::Open),
            &QAction::triggered, this, &Visore::scegliFile);
    connect(azione(file, "RICARICA", m_lingua.LeggiTesto("Visore", "RICARICA"), Qt::Key_F5),
            &QAction::triggered, this, &Visore::ricarica);
    file->addSeparator();
    connect(azione(file, "ESPORTACSV", m_lingua.LeggiTesto("Visore", "ESPORTACSV"), Qt::CTRL | Qt::Key_E),
            &QAction::triggered, this, &Visore::esportaCsv);
    connect(azione(file, "ESPORTAPNG", m_lingua.LeggiTesto("Visore", "ESPORTAPNG"), Qt::CTRL | Qt::Key_P),
            &QAction::triggered, this, &Visore::esportaPng);
    file->addSeparator();
    connect(azione(file, "ESCI", m_lingua.LeggiTesto("Visore", "ESCI"), {}), &QAction::triggered, this,
            &Visore::esci);

    QMenu *vista = menu->addMenu(m_lingua.LeggiTesto("Visore", "MENUP.1"));
    m_secondi = azione(vista, "SECONDI", m_lingua.LeggiTesto("Visore", "SECONDI"), Qt::CTRL | Qt::Key_T);
    m_secondi->setCheckable(true);
    connect(m_secondi, &QAction::toggled, this, [this](bool si) {
        m_modello.inSecondi = si;
        m_grafico->ridisegna();
        aggiorna();
    });
    connect(azione(vista, "TUTTO", m_lingua.LeggiTesto("Visore", "TUTTO"), Qt::CTRL | Qt::Key_0),
            &QAction::triggered, this, [this] {
                m_modello.tutto();
                m_grafico->ridisegna();
                aggiorna();
            });
    QMenu *menuCanali = menu->addMenu(m_lingua.LeggiTesto("Visore", "MENUP.2"));
    for (int c : ModelloVisore::Canali) {
        QAction *a = menuCanali->addAction(campione(GraficoVisore::coloreCanale(c)),
                                           m_canali.Canali[std::size_t(c)].Nome.trimmed());
        a->setCheckable(true);
        connect(a, &QAction::toggled, this, [this, c](bool si) {
            m_modello.mostra(c, si);
            m_grafico->ridisegna();
            aggiornaCanali();
            aggiorna();
        });
        m_azioniCanali.push_back(a);
    }

    m_grafico->impostaTitoloSecondi(m_lingua.LeggiTesto("Visore", "ASSESECONDI"));
    connect(m_grafico, &GraficoVisore::cambiato, this, &Visore::aggiorna);

    // The readout: the cursor, the second cursor, then one row a channel.
    m_lettura->setObjectName(QStringLiteral("Lettura"));
    m_lettura->setWordWrap(true);
    m_lettura->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_lettura->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_tabella->setObjectName(QStringLiteral("Canali"));
    m_tabella->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_tabella->setSelectionMode(QAbstractItemView::NoSelection);
    m_tabella->verticalHeader()->hide();
    m_tabella->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_tabella->setWordWrap(false);
    QStringList intestazioni;
    for (int k = 0; k < NumeroColonne; ++k)
        intestazioni << m_lingua.LeggiTesto("Visore", "COLONNA." + QString::number(k));
    m_tabella->setHorizontalHeaderLabels(intestazioni);
    for (int r = 0; r < m_tabella->rowCount(); ++r) {
        const int c = ModelloVisore::Canali[std::size_t(r)];
        for (int k = 0; k < NumeroColonne; ++k) {
            auto *voce = new QTableWidgetItem;
            if (k == ColNome) {
                voce->setText(m_canali.Canali[std::size_t(c)].Nome.trimmed());
                voce->setIcon(campione(GraficoVisore::coloreCanale(c)));
                voce->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable);
            } else {
                voce->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
                voce->setFlags(Qt::ItemIsEnabled);
            }
            m_tabella->setItem(r, k, voce);
        }
    }
    aggiornaCanali();
    // Every column whole and of a width that holds any figure, so that the readout is never
    // cut and the charts beside it keep their width as the figures change.
    QHeaderView *testata = m_tabella->horizontalHeader();
    const QFontMetrics metrica(m_tabella->font());
    const int cifre = metrica.horizontalAdvance(QStringLiteral("-00000.0")) + 10;
    m_tabella->resizeColumnToContents(ColNome);
    testata->setSectionResizeMode(ColNome, QHeaderView::Fixed);
    for (int k = ColCursore; k < NumeroColonne; ++k) {
        testata->setSectionResizeMode(k, QHeaderView::Fixed);
        testata->resizeSection(k, std::max(cifre, metrica.horizontalAdvance(intestazioni.at(k)) + 14));
    }
    m_tabella->setMinimumWidth(testata->length() + 2 * m_tabella->frameWidth()
                               + m_tabella->style()->pixelMetric(QStyle::PM_ScrollBarExtent));
    connect(m_tabella, &QTableWidget::itemChanged, this, [this](QTableWidgetItem *voce) {
        if (voce->column() != ColNome)
            return;
        const int c = ModelloVisore::Canali[std::size_t(voce->row())];
        m_azioniCanali[std::size_t(voce->row())]->setChecked(voce->checkState() == Qt::Checked);
        if (m_modello.mostrato(c) != (voce->checkState() == Qt::Checked)) {
            m_modello.mostra(c, voce->checkState() == Qt::Checked);
            m_grafico->ridisegna();
            aggiorna();
        }
    });

    auto *lato = new QWidget(this);
    auto *colonnaLato = new QVBoxLayout(lato);
    colonnaLato->setContentsMargins(0, 0, 0, 0);
    colonnaLato->addWidget(m_lettura);
    colonnaLato->addWidget(m_tabella, 1);
    auto *divisore = new QSplitter(Qt::Horizontal, this);
    divisore->addWidget(m_grafico);
    divisore->addWidget(lato);
    // The charts take what the readout leaves.
    divisore->setStretchFactor(0, 1);
    divisore->setStretchFactor(1, 0);
    divisore->setChildrenCollapsible(false);

    m_stato->setObjectName(QStringLiteral("StatoVisore"));
    m_stato->setWordWrap(true);
    m_tasti->setText(m_lingua.LeggiTesto("Visore", "TASTI"));
    m_tasti->setWordWrap(true);
    QPalette tenue = m_tasti->palette();
    tenue.setColor(QPalette::WindowText, tenue.color(QPalette::PlaceholderText));
    m_tasti->setPalette(tenue);

    auto *principale = new QVBoxLayout(this);
    principale->setMenuBar(menu);
    principale->addWidget(divisore, 1);
    principale->addWidget(m_stato);
    principale->addWidget(m_tasti);

    auto *esc = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    esc->setContext(Qt::WindowShortcut);
    connect(esc, &QShortcut::activated, this, &Visore::esci);

    setFocusProxy(m_grafico);
    aggiornaTitolo();
    aggiorna();
    mostraStato();
}

QAction *Visore::azione(QMenu *menu, const char *nome, const QString &testo, const QKeySequence &tasto)
{
    QAction *a = menu->addAction(testo);
    a->setObjectName(QString::fromLatin1(nome));
    a->setShortcut(tasto);
    a->setShortcutContext(Qt::WindowShortcut);
    return a;
}

void Visore::permettiSchede(bool permesse)
{
    m_apriScheda->setEnabled(permesse);
    m_apriScheda->setVisible(permesse);
    aggiornaLettura();
}

QString Visore::numero(double v) const
{
    return FormattaNumero(v, QStringLiteral("#0.##"));
}

QString Visore::secondi(double x) const
{
    return FormattaNumero(x / RegistrazioneAcq::CampioniAlSecondo, QStringLiteral("#0.00"));
}

void Visore::aggiornaTitolo()
{
    const QString nome = QFileInfo(m_modello.percorso()).fileName();
    setWindowTitle(nome.isEmpty() ? m_lingua.LeggiTesto("Visore", "CAPTION")
                                  : m_lingua.LeggiTesto("Visore", "CAPTION") + QStringLiteral(" - ") + nome);
}

void Visore::aggiornaCanali()
{
    const QSignalBlocker blocco(m_tabella);
    for (std::size_t r = 0; r < ModelloVisore::Canali.size(); ++r) {
        const bool si = m_modello.mostrato(ModelloVisore::Canali[r]);
        m_tabella->item(int(r), ColNome)->setCheckState(si ? Qt::Checked : Qt::Unchecked);
        const QSignalBlocker bloccoAzione(m_azioniCanali[r]);
        m_azioniCanali[r]->setChecked(si);
    }
}

void Visore::aggiorna()
{
    aggiornaLettura();
    const bool vuoto = m_modello.vuoto();
    for (int r = 0; r < m_tabella->rowCount(); ++r) {
        const int c = ModelloVisore::Canali[std::size_t(r)];
        const bool statistiche = !vuoto && m_modello.mostrato(c);
        const RegistrazioneAcq::Statistiche s =
            statistiche ? m_modello.statistiche(c) : RegistrazioneAcq::Statistiche{};
        const bool ci = s.campioni > 0;
        m_tabella->item(r, ColMinimo)->setText(ci ? numero(s.minimo) : QString());
        m_tabella->item(r, ColMassimo)->setText(ci ? numero(s.massimo) : QString());
        m_tabella->item(r, ColMedia)
            ->setText(ci ? FormattaNumero(s.media, QStringLiteral("#0.0")) : QString());
    }
}

void Visore::aggiornaLettura()
{
    QStringList righe;
    const RegistrazioneAcq &reg = m_modello.registrazione();
    const bool vuoto = m_modello.vuoto();
    const auto riga = [&](QString t, const QString &xxx, const QString &yyy, const QString &zzz = {}) {
        righe << t.replace(QStringLiteral("XXX"), xxx)
                     .replace(QStringLiteral("YYY"), yyy)
                     .replace(QStringLiteral("ZZZ"), zzz);
    };
    if (vuoto) {
        righe << (m_apriScheda->isEnabled() ? m_lingua.LeggiTesto("Visore", "NESSUNA")
                                            : m_lingua.LeggiTesto("Visore", "NESSUNAFILE"));
    } else {
        const qsizetype c = m_modello.cursore();
        riga(m_lingua.LeggiTesto("Visore", "CURSORE"), QString::number(reg.progressivo(c)),
             secondi(double(reg.posizione(c))));
        if (const auto s = m_modello.secondo()) {
            riga(m_lingua.LeggiTesto("Visore", "SECONDO"), QString::number(reg.progressivo(*s)),
                 secondi(double(reg.posizione(*s))));
            const double d = m_modello.differenzaCampioni();
            riga(m_lingua.LeggiTesto("Visore", "DIFFERENZA"), numero(d), secondi(d));
        }
        const auto [da, a] = m_modello.visibili();
        const auto asse = [&](double x) {
            return m_modello.inSecondi ? secondi(x) : QString::number(qint64(std::floor(x)));
        };
        riga(m_lingua.LeggiTesto("Visore", "VISTA"), asse(m_modello.xMin()), asse(m_modello.xMax()),
             QString::number(a - da));
    }
    m_lettura->setText(righe.join(u'\n'));

    // Every channel at the cursor, and the difference to the second cursor.
    QStringList valori;
    for (int r = 0; r < m_tabella->rowCount(); ++r) {
        const int canale = ModelloVisore::Canali[std::size_t(r)];
        QString v, d;
        if (!vuoto) {
            const double qui = reg.valore(canale, m_modello.cursore());
            v = numero(qui);
            if (const auto s = m_modello.secondo())
                d = numero(qui - reg.valore(canale, *s));
            valori << m_tabella->item(r, ColNome)->text() + QStringLiteral(": ") + v;
        }
        m_tabella->item(r, ColCursore)->setText(v);
        m_tabella->item(r, ColDifferenza)->setText(d);
    }
    // What a screen reader says of the charts, which have the focus.
    m_grafico->setAccessibleName(windowTitle());
    m_grafico->setAccessibleDescription((righe + valori).join(QStringLiteral(".\n")));
}

void Visore::mostraStato()
{
    QStringList parti;
    const RegistrazioneAcq &reg = m_modello.registrazione();
    if (m_modello.percorso().isEmpty()) {
        m_stato->clear();
        return;
    }
    parti << m_lingua.LeggiTesto("Visore", "FILE")
                 .replace(QStringLiteral("XXX"), QDir::toNativeSeparators(m_modello.percorso()))
                 .replace(QStringLiteral("YYY"), QString::number(reg.campioni()))
                 .replace(QStringLiteral("ZZZ"), secondi(m_modello.fineAsse() - m_modello.inizioAsse()));
    if (reg.vuota())
        parti << m_lingua.LeggiTesto("Visore", "VUOTA");
    if (reg.righeScartate() > 0)
        parti << m_lingua.LeggiTesto("Visore", "SCARTATE")
                     .replace(QStringLiteral("XXX"), QString::number(reg.righeScartate()))
                     .replace(QStringLiteral("YYY"), QString::number(reg.primeScartate().front()));
    if (reg.nomi().isEmpty())
        parti << m_lingua.LeggiTesto("Visore", "SENZANOMI");
    else if (reg.unita().isEmpty())
        parti << m_lingua.LeggiTesto("Visore", "SENZAUNITA");
    m_stato->setText(parti.join(u' '));
}

void Visore::ricarica()
{
    // A recording that is still growing: read again, the same stretch in view.
    const double xMin = m_modello.xMin(), xMax = m_modello.xMax();
    const qsizetype cursore = m_modello.cursore();
    if (m_modello.percorso().isEmpty() || !apri(m_modello.percorso()))
        return;
    m_modello.finestra(xMin, xMax);
    m_modello.impostaCursore(cursore);
    m_grafico->ridisegna();
    aggiorna();
}

bool Visore::apri(const QString &percorso)
{
    RegistrazioneAcq r;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const RegistrazioneAcq::Esito esito = r.leggi(percorso);
    QApplication::restoreOverrideCursor();
    if (esito != RegistrazioneAcq::Esito::Letta) {
        const QString t = esito == RegistrazioneAcq::Esito::NonApribile
                              ? m_lingua.LeggiTesto("Visore", "NONAPRIBILE")
                              : m_lingua.LeggiTesto("Visore", "NONREGISTRAZIONE");
        m_messaggio(QString(t).replace(QStringLiteral("XXX"), QDir::toNativeSeparators(percorso)), 16,
                    m_lingua.LeggiTesto(QStringLiteral("SEGNALAZIONI"), QStringLiteral("TITOLO_2")));
        return false;
    }
    m_modello.imposta(std::move(r), QFileInfo(percorso).absoluteFilePath());
    m_grafico->ridisegna();
    aggiornaTitolo();
    aggiorna();
    mostraStato();
    m_grafico->setFocus(Qt::OtherFocusReason);
    return true;
}

QString Visore::cartellaIniziale() const
{
    if (!m_modello.percorso().isEmpty())
        return QFileInfo(m_modello.percorso()).absolutePath();
    const QString dati = PercorsoFile(m_percorsoApp, FileArchivi::CartellaDati);
    return QFileInfo(dati).isDir() ? dati : m_percorsoApp;
}

void Visore::scegliScheda()
{
    if (!m_apriScheda->isEnabled())
        return;
    const QString archivio =
        PercorsoFile(PercorsoFile(m_percorsoApp, FileArchivi::CartellaDati), FileArchivi::FileDati);
    const QString titolo = m_lingua.LeggiTesto(QStringLiteral("SEGNALAZIONI"), QStringLiteral("TITOLO_1"));
    // Choosing must not make an archive that is not there.
    if (!QFileInfo(archivio).isFile()) {
        m_messaggio(m_lingua.LeggiTesto("Visore", "SENZAARCHIVIO")
                        .replace(QStringLiteral("XXX"), QDir::toNativeSeparators(archivio)),
                    64, titolo);
        return;
    }
    SceltaScheda scelta(m_percorsoApp, m_lingua, this);
    if (scelta.exec() != QDialog::Accepted)
        return;
    const QString percorso = scelta.percorso();
    if (percorso.isEmpty() || !QFileInfo::exists(percorso)) {
        m_messaggio(m_lingua.LeggiTesto("Visore", "SCHEDAMANCANTE")
                        .replace(QStringLiteral("XXX"), QDir::toNativeSeparators(percorso)),
                    64, titolo);
        return;
    }
    apri(percorso);
}

void Visore::scegliFile()
{
    const QString percorso = QFileDialog::getOpenFileName(
        this, senzaAcceleratore(m_lingua.LeggiTesto("Visore", "APRIFILE")), cartellaIniziale(),
        m_lingua.LeggiTesto("Visore", "FILTRO") + QStringLiteral(";;")
            + m_lingua.LeggiTesto("Visore", "FILTROTUTTI"));
    if (!percorso.isEmpty())
        apri(percorso);
}

void Visore::esportaCsv()
{
    if (m_modello.vuoto())
        return;
    const QFileInfo acq(m_modello.percorso());
    QString percorso =
        QFileDialog::getSaveFileName(this, senzaAcceleratore(m_lingua.LeggiTesto("Visore", "ESPORTACSV")),
                                     acq.absoluteDir().filePath(acq.completeBaseName() + ".csv"),
                                     m_lingua.LeggiTesto("Visore", "FILTROCSV"));
    if (percorso.isEmpty())
        return;
    if (QFileInfo(percorso).suffix().isEmpty())
        percorso += QStringLiteral(".csv");
    esportaCsvIn(percorso);
}

void Visore::esportaPng()
{
    if (m_modello.vuoto())
        return;
    const QFileInfo acq(m_modello.percorso());
    QString percorso =
        QFileDialog::getSaveFileName(this, senzaAcceleratore(m_lingua.LeggiTesto("Visore", "ESPORTAPNG")),
                                     acq.absoluteDir().filePath(acq.completeBaseName() + ".png"),
                                     m_lingua.LeggiTesto("Visore", "FILTROPNG"));
    if (percorso.isEmpty())
        return;
    if (QFileInfo(percorso).suffix().isEmpty())
        percorso += QStringLiteral(".png");
    esportaPngIn(percorso);
}

bool Visore::esportaCsvIn(const QString &percorso)
{
    // Not a structured binding: clang 14 cannot capture one in a lambda.
    const std::pair<qsizetype, qsizetype> tratto = m_modello.tratto();
    return esporta(percorso, [this, tratto](QIODevice &d) {
        return ScriviCsv(m_modello.registrazione(), m_canali, tratto.first, tratto.second, d);
    });
}

bool Visore::esportaPngIn(const QString &percorso)
{
    const QPixmap immagine = m_grafico->grab();
    return esporta(percorso, [&immagine](QIODevice &d) { return immagine.save(&d, "PNG"); });
}

bool Visore::esporta(const QString &percorso, const std::function<bool(QIODevice &)> &scrivi)
{
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const EsitoEsportazione e = ScriviEsportazione(percorso, m_modello.percorso(), scrivi);
    QApplication::restoreOverrideCursor();
    const QString nome = QDir::toNativeSeparators(percorso);
    if (e.ok()) {
        mostraStato();
        m_stato->setText(m_stato->text() + u' '
                         + m_lingua.LeggiTesto("Visore", "ESPORTATO").replace(QStringLiteral("XXX"), nome));
        return true;
    }
    const QString chiave = QStringLiteral("ERRORE.") + QString::number(int(e.tipo));
    m_messaggio(m_lingua.LeggiTesto("Visore", chiave)
                    .replace(QStringLiteral("XXX"), nome)
                    .replace(QStringLiteral("YYY"), e.dettaglio),
                16, m_lingua.LeggiTesto(QStringLiteral("SEGNALAZIONI"), QStringLiteral("TITOLO_2")));
    return false;
}

void Visore::esci()
{
    if (m_chiuso)
        return;
    m_chiuso = true;
    emit chiusa();
    if (isWindow())
        close();
}

void Visore::closeEvent(QCloseEvent *evento)
{
    if (!m_chiuso) {
        m_chiuso = true;
        emit chiusa();
    }
    evento->accept();
}

Visore *ApriVisore(const QString &percorsoApp, const Lingua &lingua, const TabellaCanali &canali,
                   const QString &registrazione, QWidget *accanto)
{
    auto *v = new Visore(percorsoApp, lingua, canali, accanto ? accanto->window() : nullptr);
    v->setWindowFlag(Qt::Window);
    v->setAttribute(Qt::WA_DeleteOnClose);
    v->resize(1280, 780);
    v->show();
    if (QFileInfo(registrazione).isFile())
        v->apri(registrazione);
    v->activateWindow();
    return v;
}

} // namespace kv
