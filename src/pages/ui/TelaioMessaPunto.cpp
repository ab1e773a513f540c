#include "pages/ui/TelaioMessaPunto.h"

#include "base/Lingua.h"
#include "link/SessioneLinea.h"
#include "pages/DialogoPagina.h"
#include "pages/ModelloGriglia.h"
#include "pages/PannelloLive.h"
#include "pages/ui/CampoDato.h"
#include "pages/ui/GrigliaMessaPunto.h"
#include "shell/ui/MsgBox1.h"
#include "shell/ui/Stile.h"
#include "variables/Catalogo.h"
#include "variables/Formato.h"

#include <QApplication>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHideEvent>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QShortcut>

#include <algorithm>

namespace kv {

namespace {

QString numero(int n)
{
    return FormattaNumero(n, QStringLiteral("#0"));
}

// Yes and No with the question icon.
constexpr int DomandaSiNo = 0x24;

} // namespace

TelaioMessaPunto::TelaioMessaPunto(const ContestoPagina &contesto, const DescrizionePagina &descrizione,
                                   QWidget *parent)
    : QWidget(parent)
    , m_contesto(contesto)
    , m_sezione(descrizione.sezione)
    , m_righeTps(descrizione.righeTps)
{
    m_dialogo = std::make_unique<DialogoPagina>(descrizione, contesto.catalogo, contesto.linea,
                                                contesto.assistenza, static_cast<VistaPagina &>(*this));
    setObjectName(m_sezione);

    auto *principale = new QVBoxLayout(this);
    auto *sopra = new QHBoxLayout;
    auto *sinistra = new QVBoxLayout;
    // The boxes side by side two at a time, then what the page adds (its grids).
    auto *boxes = new QGridLayout;
    boxes->setHorizontalSpacing(12);
    boxes->setVerticalSpacing(8);
    for (size_t k = 0; k < descrizione.box.size(); ++k)
        costruisciBox(descrizione.box[k], boxes, static_cast<int>(k));
    // Side by side, the two columns share the width.
    boxes->setColumnStretch(0, 1);
    if (descrizione.box.size() > 1)
        boxes->setColumnStretch(1, 1);
    sinistra->addLayout(boxes);
    m_area = new QVBoxLayout;
    sinistra->addLayout(m_area);
    sinistra->addStretch(1);
    sopra->addLayout(sinistra, 1);
    principale->addLayout(sopra, 1);

    // On the right what the engine does now: the live panel and the working zone.
    auto *destra = new QVBoxLayout;
    costruisciPannelloLive();
    destra->addWidget(m_boxDati);
    m_boxZona = new QGroupBox(this);
    m_boxZona->setObjectName(QStringLiteral("BoxZonaLavoro"));
    m_boxZona->setVisible(descrizione.zonaLavoro);
    auto *zona = new QHBoxLayout(m_boxZona);
    m_zonaLavoro = new QLabel(m_boxZona);
    m_zonaLavoro->setObjectName(QStringLiteral("ZonaLavoro"));
    m_zonaLavoro->setAlignment(Qt::AlignCenter);
    QFont f = m_zonaLavoro->font();
    f.setBold(true);
    f.setPointSizeF(f.pointSizeF() * 1.15);
    m_zonaLavoro->setFont(f);
    // A long zone name ("Funzionamento normale") wraps inside the live panel's width rather
    // than widening the column and cutting the page's own labels; two lines are kept for
    // it, so the panel does not jump as the zone changes.
    m_zonaLavoro->setWordWrap(true);
    m_zonaLavoro->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    m_zonaLavoro->setFixedHeight(2 * m_zonaLavoro->fontMetrics().height() + 4);
    int parolaPiuLunga = 0;
    for (int z = 0; z <= 5; ++z) {
        const QStringList parole = m_contesto.lingua.testo(NomeZona(z)).split(u' ', Qt::SkipEmptyParts);
        for (const QString &parola : parole)
            parolaPiuLunga = std::max(parolaPiuLunga, m_zonaLavoro->fontMetrics().horizontalAdvance(parola));
    }
    m_zonaLavoro->setMinimumWidth(parolaPiuLunga + 8);
    zona->addWidget(m_zonaLavoro);
    destra->addWidget(m_boxZona);
    destra->addStretch(1);
    sopra->addLayout(destra);

    m_segnalazione = new QLabel(this);
    m_segnalazione->setObjectName(QStringLiteral("Segnalazione"));
    m_segnalazione->setFrameShape(QFrame::StyledPanel);
    m_segnalazione->setFrameShadow(QFrame::Sunken);
    m_segnalazione->setMinimumHeight(m_segnalazione->fontMetrics().height() + 10);
    m_segnalazione->setWordWrap(true);
    principale->addWidget(m_segnalazione);
    costruisciComandi();
    m_comandi = new QHBoxLayout;
    m_comandi->addWidget(m_applica);
    m_comandi->addWidget(m_memorizza);
    m_comandi->addWidget(m_ripristina);
    m_comandi->addStretch(1);
    m_comandi->addWidget(m_esci);
    m_comandi->addWidget(m_esciOut);
    principale->addLayout(m_comandi);

    m_domanda = [this](const QString &testo, int flags, const QString &titolo) {
        return kv::MostraMsg(m_contesto.lingua, testo, flags, titolo, 0, this);
    };
}

TelaioMessaPunto::~TelaioMessaPunto()
{
    // Closing the window takes the focus from a field or a grid's edit field, which must not
    // reach the dialogue once it is gone.
    for (Riga &r : m_righe)
        if (r.campo)
            r.campo->disconnect(this);
    for (GrigliaMessaPunto *g : m_griglie)
        g->setModel(nullptr);
    if (m_ascolta)
        m_contesto.linea.datiLive().rimuoviAscoltatore(this);
}

void TelaioMessaPunto::costruisciComandi()
{
    // The page sees these keys before its fields do; a command that is not enabled ignores
    // its key.
    const auto tasto = [this](Qt::Key k, std::function<void()> azione) {
        auto *s = new QShortcut(QKeySequence(k), this);
        s->setContext(Qt::WindowShortcut);
        connect(s, &QShortcut::activated, this, std::move(azione));
    };
    const auto crea = [this, &tasto](const char *nome, void (TelaioMessaPunto::*comando)(), Qt::Key k) {
        auto *b = new QPushButton(this);
        b->setObjectName(QString::fromLatin1(nome));
        b->setAutoDefault(false);
        b->setMinimumWidth(120);
        connect(b, &QPushButton::clicked, this, comando);
        if (k != Qt::Key_unknown) {
            tasto(k, [b] {
                if (b->isEnabled() && b->isVisible())
                    b->click();
            });
        }
        return b;
    };
    m_applica = crea("Applica", &TelaioMessaPunto::Applica, Qt::Key_F2);
    m_memorizza = crea("Memorizza", &TelaioMessaPunto::Memorizza, Qt::Key_F5);
    m_ripristina = crea("Ripristina", &TelaioMessaPunto::Ripristina, Qt::Key_F8);
    m_esci = crea("Esci", &TelaioMessaPunto::Esci, Qt::Key_unknown);
    m_tastiEsc = {m_esci};
    tasto(Qt::Key_Escape, [this] {
        for (const QPointer<QPushButton> &b : m_tastiEsc) {
            if (b && b->isEnabled() && b->isVisible()) {
                b->click();
                return;
            }
        }
    });
    m_esciOut = new QPushButton(this);
    m_esciOut->setObjectName(QStringLiteral("Esci_Out"));
    m_esciOut->setAutoDefault(false);
    m_esciOut->setMinimumWidth(120);
    connect(m_esciOut, &QPushButton::clicked, this, &TelaioMessaPunto::Esci_Out);
    m_esciOut->hide();
    m_esciOut->setEnabled(false);
}

void TelaioMessaPunto::costruisciPannelloLive()
{
    m_boxDati = new QGroupBox(this);
    m_boxDati->setObjectName(QStringLiteral("BoxDati"));
    auto *l = new QVBoxLayout(m_boxDati);
    for (size_t i = 0; i < m_dato.size(); ++i) {
        m_labDati[i] = new QLabel(m_boxDati);
        m_labDati[i]->setObjectName(QStringLiteral("LabDati_%1").arg(i));
        m_dato[i] = new QLabel(m_boxDati);
        m_dato[i]->setObjectName(QStringLiteral("Dato_%1").arg(i));
        m_dato[i]->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        m_dato[i]->setFrameShape(QFrame::Panel);
        m_dato[i]->setFrameShadow(QFrame::Sunken);
        QFont f = m_dato[i]->font();
        f.setBold(true);
        f.setPointSizeF(f.pointSizeF() * 1.6);
        f.setStyleHint(QFont::Monospace);
        m_dato[i]->setFont(f);
        m_dato[i]->setMinimumWidth(m_dato[i]->fontMetrics().horizontalAdvance(QStringLiteral("00000")) + 16);
        QPalette p = m_dato[i]->palette();
        p.setColor(QPalette::Window, Tavolozza::SfondoDisplay);
        p.setColor(QPalette::WindowText, Tavolozza::TestoDisplay);
        m_dato[i]->setPalette(p);
        m_dato[i]->setAutoFillBackground(true);
        m_dato[i]->setContentsMargins(6, 2, 6, 2);
        l->addWidget(m_labDati[i]);
        l->addWidget(m_dato[i]);
        if (i + 1 < m_dato.size())
            l->addSpacing(6);
    }
    l->addStretch(1);
}

void TelaioMessaPunto::costruisciBox(const BoxParametri &descrizione, QGridLayout *dove, int posizione)
{
    auto *box = new QGroupBox(this);
    box->setObjectName(descrizione.nome);
    auto *griglia = new QGridLayout(box);
    griglia->setHorizontalSpacing(10);
    griglia->setVerticalSpacing(10);
    // Label, colon, field, unit and range close together; the spare width goes after them.
    griglia->setColumnStretch(5, 1);
    // The service entries of a page in normal mode: read, and nothing more.
    const bool inUso = !descrizione.soloAssistenza || m_contesto.assistenza;
    box->setVisible(inUso);
    box->setEnabled(inUso);
    for (const RigaPagina &r : descrizione.righe)
        nuovaRiga(box, griglia, r, inUso);
    dove->addWidget(box, posizione / 2, posizione % 2);
    m_box.push_back({descrizione.nome, box});
}

QLabel *TelaioMessaPunto::nuovaEtichetta(QWidget *box, const QString &nome, int indice)
{
    auto *l = new QLabel(box);
    l->setObjectName(QStringLiteral("%1_%2").arg(nome).arg(indice));
    return l;
}

TelaioMessaPunto::Riga &TelaioMessaPunto::nuovaRiga(QGroupBox *box, QGridLayout *griglia,
                                                    const RigaPagina &descrizione, bool inUso)
{
    Riga r;
    r.indice = descrizione.indice;
    r.parametro = descrizione.parametro;
    r.box = box;
    r.inUso = inUso;
    r.etichetta = nuovaEtichetta(box, QStringLiteral("LabParametro"), r.indice);
    r.duePunti = nuovaEtichetta(box, QStringLiteral("DuePunti"), r.indice);
    r.duePunti->setText(QStringLiteral(":"));
    r.misura = nuovaEtichetta(box, QStringLiteral("Misura"), r.indice);
    const int riga = griglia->rowCount();
    griglia->addWidget(r.etichetta, riga, 0);
    griglia->addWidget(r.duePunti, riga, 1);

    if (descrizione.lista.isEmpty()) {
        r.intervallo = nuovaEtichetta(box, QStringLiteral("Intervallo"), r.indice);
        QPalette p = r.intervallo->palette();
        p.setColor(QPalette::WindowText, Tavolozza::TestoIntervallo);
        r.intervallo->setPalette(p);
        r.campo = new CampoDato(box);
        r.campo->setObjectName(QStringLiteral("Dato_%1").arg(r.indice));
        r.campo->impostaMaschera(m_contesto.catalogo.Valori[static_cast<size_t>(r.parametro)].Formato);
        QFont grande = r.campo->font();
        grande.setPointSizeF(grande.pointSizeF() * 1.15);
        r.campo->setFont(grande);
        r.campo->setFixedWidth(r.campo->fontMetrics().horizontalAdvance(QStringLiteral("0000000")) + 16);
        connect(r.campo, &CampoDato::lasciato, this,
                [this, p = r.parametro](double valore) { m_dialogo->valoreModificato(p, valore); });
        griglia->addWidget(r.campo, riga, 2);
        griglia->addWidget(r.misura, riga, 3);
        griglia->addWidget(r.intervallo, riga, 4);
    } else {
        const QString &sezione = descrizione.lista;
        r.lista = new QComboBox(box);
        r.lista->setObjectName(sezione);
        r.binaria = descrizione.binaria;
        // The fitter's choice puts right what ControlloValori marked.
        connect(r.lista, &QComboBox::activated, this, [l = r.lista] { l->setPalette(QPalette()); });
        for (int n = 0;; ++n) {
            const QString voce =
                m_contesto.lingua.LeggiTesto(sezione, sezione + QLatin1Char('.') + numero(n)).trimmed();
            if (voce.isEmpty())
                break;
            r.lista->addItem(voce);
        }
        r.lista->setCurrentIndex(-1);
        // As wide as its longest item: a choice cut short says nothing.
        r.lista->setSizeAdjustPolicy(QComboBox::AdjustToContents);
        griglia->addWidget(r.lista, riga, 2, 1, 3);
    }
    m_righe.push_back(r);
    return m_righe.back();
}

QWidget *TelaioMessaPunto::Riga::editore() const
{
    return campo ? static_cast<QWidget *>(campo) : lista;
}

TelaioMessaPunto::Riga *TelaioMessaPunto::rigaIndice(int indice)
{
    for (Riga &r : m_righe)
        if (r.indice == indice)
            return &r;
    return nullptr;
}

const TelaioMessaPunto::Riga *TelaioMessaPunto::rigaIndice(int indice) const
{
    return const_cast<TelaioMessaPunto *>(this)->rigaIndice(indice);
}

TelaioMessaPunto::Riga *TelaioMessaPunto::rigaParametro(int parametro)
{
    for (Riga &r : m_righe)
        if (r.parametro == parametro)
            return &r;
    return nullptr;
}

const TelaioMessaPunto::Riga *TelaioMessaPunto::rigaParametro(int parametro) const
{
    return const_cast<TelaioMessaPunto *>(this)->rigaParametro(parametro);
}

CampoDato *TelaioMessaPunto::campo(int indice) const
{
    const Riga *r = rigaIndice(indice);
    return r ? r->campo : nullptr;
}

QComboBox *TelaioMessaPunto::lista(int indice) const
{
    const Riga *r = rigaIndice(indice);
    return r ? r->lista : nullptr;
}

QString TelaioMessaPunto::formato(int indice) const
{
    const Riga *r = rigaIndice(indice);
    if (!r)
        return {};
    return m_contesto.catalogo.Valori[static_cast<size_t>(r->parametro)].Formato;
}

QString TelaioMessaPunto::testoMostrato(int parametro) const
{
    if (const Riga *r = rigaParametro(parametro))
        return r->campo ? r->campo->text().trimmed() : QString::number(r->lista->currentIndex());
    for (const GrigliaMessaPunto *g : m_griglie)
        if (g->modello()->contiene(parametro))
            return g->modello()->testoDi(parametro);
    return {};
}

QString TelaioMessaPunto::testo(const QString &chiave) const
{
    return m_contesto.lingua.LeggiTesto(m_sezione, chiave);
}

QString TelaioMessaPunto::testoComando(const QString &caption, const QString &tasto)
{
    return ConTastoAlt(caption.trimmed()) + QStringLiteral("  (") + tasto + QLatin1Char(')');
}

void TelaioMessaPunto::aggiungiGriglia(GrigliaMessaPunto *griglia)
{
    m_griglie.push_back(griglia);
}

void TelaioMessaPunto::aggiungiComando(QPushButton *tasto)
{
    tasto->setParent(this);
    tasto->setAutoDefault(false);
    tasto->setMinimumWidth(120);
    m_comandi->addWidget(tasto);
    m_comandiPagina.push_back(tasto);
}

void TelaioMessaPunto::tastiEsc(std::initializer_list<QPushButton *> tasti)
{
    m_tastiEsc.assign(tasti.begin(), tasti.end());
}

void TelaioMessaPunto::mostraRiga(int indice, bool visibile)
{
    Riga *r = rigaIndice(indice);
    if (!r)
        return;
    for (QWidget *w :
         {static_cast<QWidget *>(r->etichetta), static_cast<QWidget *>(r->duePunti),
          static_cast<QWidget *>(r->misura), r->editore(), static_cast<QWidget *>(r->intervallo)}) {
        if (!w)
            continue;
        w->setVisible(visibile);
        w->setEnabled(visibile);
    }
}

void TelaioMessaPunto::caricaTesti()
{
    setWindowTitle(testo(QStringLiteral("CAPTION")));
    for (const Box &b : m_box)
        b.widget->setTitle(testo(b.nome + QStringLiteral(".CAPTION")));
    m_boxZona->setTitle(testo(QStringLiteral("BOXZONALAVORO.CAPTION")));
    m_boxDati->setTitle(testo(QStringLiteral("BOXDATI.CAPTION")));
    for (Riga &r : m_righe) {
        r.etichetta->setText(testo(QStringLiteral("LABPARAMETRO.") + numero(r.indice)));
        r.misura->setText(testo(QStringLiteral("MISURA.") + numero(r.indice)));
    }
    for (size_t i = 0; i < m_labDati.size(); ++i)
        m_labDati[i]->setText(testo(QStringLiteral("LABDATI.") + numero(static_cast<int>(i))));

    const Lingua &l = m_contesto.lingua;
    m_applica->setText(testoComando(l.LeggiTesto("TASTI", "APPLICA"), QStringLiteral("F2")));
    m_memorizza->setText(testoComando(l.LeggiTesto("TASTI", "MEMORIZZA"), QStringLiteral("F5")));
    m_ripristina->setText(testoComando(l.LeggiTesto("TASTI", "RIPRISTINA"), QStringLiteral("F8")));
    m_esci->setText(testoComando(l.LeggiTesto("TASTI", "ESCI"), QStringLiteral("Esc")));
    m_esciOut->setText(ConTastoAlt(l.LeggiTesto("TASTI", "ESCI").trimmed()));
    caricaTestiAltrove();
}

void TelaioMessaPunto::carica()
{
    caricaTesti();
    // The main frame's message line, until a save is acknowledged.
    emit segnalazione1(m_contesto.lingua.LeggiTesto("TASTI", "ESCI"));
    // Without a line there is nothing to edit: only Esci stays useful.
    const bool aperta = m_contesto.linea.motore().PortOpen();
    for (const Box &b : m_box)
        b.widget->setVisible(aperta && b.widget->isEnabled());
    for (GrigliaMessaPunto *g : m_griglie)
        g->setVisible(aperta);
    m_contesto.linea.datiLive().aggiungiAscoltatore(this);
    m_ascolta = true;

    // Rows first, top to bottom, then the grids, then the commands; the fitter starts on
    // the first row.
    QWidget *precedente = nullptr;
    const auto segue = [&precedente, this](QWidget *w) {
        if (precedente)
            setTabOrder(precedente, w);
        precedente = w;
    };
    for (const Riga &r : m_righe)
        if (r.inUso)
            segue(r.editore());
    for (GrigliaMessaPunto *g : m_griglie)
        segue(g);
    for (QWidget *w : {m_applica, m_memorizza, m_ripristina, m_esci, m_esciOut})
        segue(w);
    for (QPushButton *b : m_comandiPagina)
        segue(b);
    for (const Riga &r : m_righe) {
        if (r.inUso) {
            r.editore()->setFocus(Qt::OtherFocusReason);
            break;
        }
    }
    m_dialogo->avviaLettura();
}

void TelaioMessaPunto::mostraValore(int parametro, double valore)
{
    if (Riga *r = rigaParametro(parametro)) {
        if (r->campo) {
            r->campo->mostra(valore, formato(r->indice));
        } else if (r->lista && r->binaria) {
            r->lista->setCurrentIndex(valore == 0 ? 0 : valore > 0 ? 1 : -1);
        } else if (r->lista) {
            const bool valido =
                valore >= 0 && valore < r->lista->count() && valore == static_cast<int>(valore);
            r->lista->setCurrentIndex(valido ? static_cast<int>(valore) : -1);
        }
        if (r->lista)
            r->indiceMostrato = r->lista->currentIndex();
        return;
    }
    for (GrigliaMessaPunto *g : m_griglie)
        g->modello()->mostraValore(parametro);
}

void TelaioMessaPunto::mostraSuggerimento(int parametro, const QString &testo)
{
    // A grid cell asks its entry for its range when it is shown.
    Riga *r = rigaParametro(parametro);
    if (!r || !r->campo)
        return;
    r->campo->setToolTip(testo);
    r->intervallo->setText(QStringLiteral("(%1)").arg(testo));
}

void TelaioMessaPunto::nascondiRigheTps()
{
    for (int indice : m_righeTps)
        mostraRiga(indice, false);
}

void TelaioMessaPunto::mostraRigheTps()
{
    for (int indice : m_righeTps)
        mostraRiga(indice, true);
}

void TelaioMessaPunto::bloccaCampoTps(int parametro)
{
    if (Riga *r = rigaParametro(parametro); r && r->campo)
        r->campo->blocca(true);
}

void TelaioMessaPunto::mostraMessaggio(const QString &testo)
{
    m_segnalazione->setText(testo);
}

void TelaioMessaPunto::mostraSegnalazione(const Messaggio &testo)
{
    mostraMessaggio(m_contesto.lingua.testo(testo));
}

void TelaioMessaPunto::mostraZonaLavoro(const Messaggio &zona)
{
    m_zonaLavoro->setText(m_contesto.lingua.testo(zona));
}

void TelaioMessaPunto::abilitaPagina(bool abilitata)
{
    // A disabled page loses the focus; the fitter gets it back where it was, so the keys
    // of the page work again without a click.
    if (!abilitata) {
        QWidget *f = QApplication::focusWidget();
        m_fuoco = f && isAncestorOf(f) ? f : nullptr;
    }
    setEnabled(abilitata);
    if (!abilitata)
        return;
    if (!m_fuoco) {
        // After the opening read: the first field that can be edited, else the first list,
        // else the first grid.
        for (const Riga &r : m_righe) {
            if (r.campo && r.inUso && r.campo->isVisible() && !r.campo->bloccato()) {
                m_fuoco = r.campo;
                break;
            }
        }
        for (const Riga &r : m_righe) {
            if (!m_fuoco && r.lista && r.inUso && r.lista->isVisible())
                m_fuoco = r.lista;
        }
        for (GrigliaMessaPunto *g : m_griglie)
            if (!m_fuoco && g->isVisible())
                m_fuoco = g;
    }
    if (m_fuoco && !m_fuoco->hasFocus() && m_fuoco->isVisible() && m_fuoco->isEnabled())
        m_fuoco->setFocus(Qt::OtherFocusReason);
}

void TelaioMessaPunto::uscitaEmergenza()
{
    m_esciOut->setEnabled(true);
    m_esciOut->show();
    m_esci->setEnabled(false);
    m_esci->hide();
    m_applica->setEnabled(false);
    m_memorizza->setEnabled(false);
    m_ripristina->setEnabled(false);
}

void TelaioMessaPunto::chiudiPagina()
{
    emit chiusa();
}

void TelaioMessaPunto::frameNormale(const RecordDati &record)
{
    const TestiPannelloLive t = TestiPannello(record);
    for (size_t i = 0; i < m_dato.size(); ++i)
        m_dato[i]->setText(t.dato[i]);
    if (m_dialogo->descrizione().zonaLavoro)
        m_zonaLavoro->setText(m_contesto.lingua.testo(t.zona));
    for (GrigliaMessaPunto *g : m_griglie)
        g->modello()->impostaPuntoVivo(record.Valore[Canale::Giri], record.Valore[Canale::Tps]);
}

void TelaioMessaPunto::confermaGriglie()
{
    for (GrigliaMessaPunto *g : m_griglie)
        g->confermaModifica();
}

bool TelaioMessaPunto::ControlloValori()
{
    confermaGriglie();
    // A list on none of its items has nothing to send: it is put right before anything else.
    for (Riga &r : m_righe) {
        if (!r.lista || !r.inUso)
            continue;
        const int i = r.lista->currentIndex();
        if (i >= 0 && i < r.lista->count()) {
            r.lista->setPalette(QPalette());
            continue;
        }
        QPalette p = r.lista->palette();
        for (QPalette::ColorRole ruolo : {QPalette::Button, QPalette::Base})
            p.setColor(ruolo, Tavolozza::SfondoErrato);
        for (QPalette::ColorRole ruolo : {QPalette::ButtonText, QPalette::Text})
            p.setColor(ruolo, Tavolozza::TestoChiaro);
        r.lista->setPalette(p);
        r.lista->setFocus(Qt::OtherFocusReason);
        return false;
    }
    QWidget *primo = nullptr;
    bool validi = true;
    for (Riga &r : m_righe) {
        if (!r.campo || !r.inUso)
            continue;
        const bool valido = m_dialogo->valoreValido(r.parametro, r.campo->text());
        r.campo->segnaErrato(!valido);
        if (!valido) {
            validi = false;
            if (!primo)
                primo = r.campo;
        }
    }
    // A grid out of sight is checked all the same: it is sent all the same.
    for (GrigliaMessaPunto *g : m_griglie) {
        const QModelIndex errata = g->modello()->controlla();
        if (!errata.isValid())
            continue;
        validi = false;
        if (!primo && g->isVisible()) {
            g->setCurrentIndex(errata);
            primo = g;
        }
    }
    if (primo)
        primo->setFocus(Qt::OtherFocusReason);
    return validi;
}

QString TelaioMessaPunto::primoRespinto(bool modificati, QWidget **dove)
{
    confermaGriglie();
    for (Riga &r : m_righe) {
        if (!r.campo || !r.inUso)
            continue;
        if (modificati && !r.campo->cambiato())
            continue;
        const QString motivo = m_contesto.lingua.testo(
            m_dialogo->motivoRespinto(r.parametro, r.etichetta->text(), r.campo->text()));
        if (motivo.isEmpty())
            continue;
        r.campo->segnaErrato(true);
        if (dove)
            *dove = r.campo;
        return motivo;
    }
    for (GrigliaMessaPunto *g : m_griglie) {
        ModelloGriglia *m = g->modello();
        const QModelIndex cella = modificati ? m->respinta() : m->controlla();
        if (!cella.isValid())
            continue;
        if (g->isVisible())
            g->setCurrentIndex(cella);
        if (dove)
            *dove = g;
        const int p = cella.data(ModelloGriglia::RuoloParametro).toInt();
        return m_contesto.lingua.testo(
            m_dialogo->motivoRespinto(p, m_contesto.lingua.LeggiTesto("MESSAPUNTO", "CELLA"), m->testoDi(p)));
    }
    return {};
}

bool TelaioMessaPunto::modificheNonApplicate() const
{
    for (const Riga &r : m_righe) {
        if (r.inUso
            && ((r.campo && r.campo->cambiato()) || (r.lista && r.lista->currentIndex() != r.indiceMostrato)))
            return true;
    }
    return std::any_of(m_griglie.begin(), m_griglie.end(), [](const GrigliaMessaPunto *g) {
        return g->inModifica() || g->modello()->cambiata();
    });
}

bool TelaioMessaPunto::lasciaRespinti()
{
    QWidget *dove = nullptr;
    const QString motivo = primoRespinto(true, &dove);
    if (motivo.isEmpty())
        return true;
    if (dove && dove->isVisible())
        dove->setFocus(Qt::OtherFocusReason);
    const Lingua &l = m_contesto.lingua;
    QPointer<TelaioMessaPunto> pagina(this);
    const int risposta = m_domanda(motivo + QLatin1Char(' ') + l.LeggiTesto("MESSAPUNTO", "NON_INVIATO"),
                                   DomandaSiNo, l.LeggiTesto("SEGNALAZIONI", "TITOLO_1"));
    // Only No leaves: the key at hand, and a box closed without one, keep the page.
    if (!pagina || risposta != DialogoPagina::RispostaNo)
        return false;
    for (GrigliaMessaPunto *g : m_griglie)
        g->modello()->scartaRespinte();
    return true;
}

bool TelaioMessaPunto::prendiValori()
{
    if (!ControlloValori())
        return false;
    for (Riga &r : m_righe) {
        if (!r.inUso)
            continue;
        if (r.campo) {
            m_dialogo->impostaCorrente(r.parametro, ValNumero(r.campo->text()));
            r.campo->preso();
        } else if (r.lista) {
            m_dialogo->impostaCorrente(r.parametro, r.lista->currentIndex());
            r.indiceMostrato = r.lista->currentIndex();
        }
    }
    for (GrigliaMessaPunto *g : m_griglie)
        g->modello()->presa();
    return true;
}

void TelaioMessaPunto::Applica()
{
    if (prendiValori())
        m_dialogo->Applica();
}

void TelaioMessaPunto::Memorizza()
{
    confermaGriglie();
    m_dialogo->Memorizza();
    m_ripristina->setEnabled(true);
}

void TelaioMessaPunto::Ripristina()
{
    confermaGriglie();
    m_dialogo->Ripristina();
}

void TelaioMessaPunto::Esci()
{
    confermaGriglie();
    if (!lasciaRespinti())
        return;
    QPointer<TelaioMessaPunto> pagina(this);
    if (!m_dialogo->Esci())
        return;
    const Lingua &l = m_contesto.lingua;
    const int risposta = m_domanda(l.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_6"),
                                   DialogoPagina::FlagDomandaEsci, l.LeggiTesto("SEGNALAZIONI", "TITOLO_1"));
    // The watchdog may have closed the page while the question was open.
    if (!pagina)
        return;
    m_dialogo->RispostaEsci(risposta);
}

void TelaioMessaPunto::Esci_Out()
{
    m_dialogo->EsciOut();
}

void TelaioMessaPunto::caricaTestiAltrove() {}

} // namespace kv
