#include "pages/ui/TelaioMessaPunto.h"

#include "pages/DialogoPagina.h"
#include "pages/PannelloLive.h"
#include "pages/ui/CampoDato.h"
#include "shell/Programma.h"
#include "shell/ui/MsgBox1.h"
#include "variables/Formato.h"

#include <QApplication>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
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

// A command's caption with its Alt key on the first letter, as the design-time "&APPLICA";
// a caption that marks its own key keeps it.
QString conTastoAlt(const QString &testo)
{
    if (testo.contains(QLatin1Char('&')))
        return testo;
    for (qsizetype i = 0; i < testo.size(); ++i)
        if (testo.at(i).isLetterOrNumber())
            return QString(testo).insert(i, QLatin1Char('&'));
    return testo;
}

} // namespace

TelaioMessaPunto::TelaioMessaPunto(Programma &programma, DescrizionePagina descrizione, QString sezione,
                                   QWidget *parent)
    : QWidget(parent)
    , m_programma(programma)
    , m_sezione(std::move(sezione))
{
    m_dialogo =
        std::make_unique<DialogoPagina>(std::move(descrizione), programma.catalogo, programma.motore,
                                        programma.stato, programma.lingua, static_cast<VistaPagina &>(*this));
    setObjectName(m_sezione);

    auto *principale = new QVBoxLayout(this);
    auto *sopra = new QHBoxLayout;
    auto *sinistra = new QVBoxLayout;
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
    m_boxZona->setVisible(m_dialogo->descrizione().zonaLavoro);
    auto *zona = new QHBoxLayout(m_boxZona);
    m_zonaLavoro = new QLabel(m_boxZona);
    m_zonaLavoro->setObjectName(QStringLiteral("ZonaLavoro"));
    m_zonaLavoro->setAlignment(Qt::AlignCenter);
    QFont f = m_zonaLavoro->font();
    f.setBold(true);
    f.setPointSizeF(f.pointSizeF() * 1.3);
    m_zonaLavoro->setFont(f);
    m_zonaLavoro->setMinimumHeight(m_zonaLavoro->fontMetrics().height() + 4);
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
    auto *comandi = new QHBoxLayout;
    comandi->addWidget(m_applica);
    comandi->addWidget(m_memorizza);
    comandi->addWidget(m_ripristina);
    comandi->addStretch(1);
    comandi->addWidget(m_esci);
    comandi->addWidget(m_esciOut);
    principale->addLayout(comandi);

    m_domanda = [this](const QString &testo, int flags, const QString &titolo) {
        return kv::MostraMsg(m_programma.lingua, testo, flags, titolo, 0, this);
    };
}

TelaioMessaPunto::~TelaioMessaPunto()
{
    // Closing the window takes the focus from a field, which must not reach the dialogue
    // once it is gone.
    for (Riga &r : m_righe)
        if (r.campo)
            r.campo->disconnect(this);
    if (m_ascolta)
        m_programma.datiLive.rimuoviAscoltatore(this);
}

void TelaioMessaPunto::costruisciComandi()
{
    const auto crea = [this](const char *nome, void (TelaioMessaPunto::*comando)(), Qt::Key tasto) {
        auto *b = new QPushButton(this);
        b->setObjectName(QString::fromLatin1(nome));
        b->setAutoDefault(false);
        b->setMinimumWidth(120);
        connect(b, &QPushButton::clicked, this, comando);
        // The page sees these keys before its fields do; a command that is not enabled
        // ignores its key.
        auto *s = new QShortcut(QKeySequence(tasto), this);
        s->setContext(Qt::WindowShortcut);
        connect(s, &QShortcut::activated, this, [b] {
            if (b->isEnabled() && b->isVisible())
                b->click();
        });
        return b;
    };
    m_applica = crea("Applica", &TelaioMessaPunto::Applica, Qt::Key_F2);
    m_memorizza = crea("Memorizza", &TelaioMessaPunto::Memorizza, Qt::Key_F5);
    m_ripristina = crea("Ripristina", &TelaioMessaPunto::Ripristina, Qt::Key_F8);
    m_esci = crea("Esci", &TelaioMessaPunto::Esci, Qt::Key_Escape);
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
        p.setColor(QPalette::Window, QColor(0x10, 0x18, 0x20));
        p.setColor(QPalette::WindowText, QColor(0x7C, 0xFC, 0x9A));
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

QGroupBox *TelaioMessaPunto::creaBoxParametri(const QString &nome)
{
    m_nomeBox = nome;
    m_box = new QGroupBox(this);
    m_box->setObjectName(nome);
    m_griglia = new QGridLayout(m_box);
    m_griglia->setHorizontalSpacing(10);
    m_griglia->setVerticalSpacing(10);
    // Label, colon, field, unit and range close together; the spare width goes after them.
    m_griglia->setColumnStretch(5, 1);
    m_area->insertWidget(0, m_box);
    return m_box;
}

QLabel *TelaioMessaPunto::nuovaEtichetta(const QString &nome, int indice)
{
    auto *l = new QLabel(m_box);
    l->setObjectName(QStringLiteral("%1_%2").arg(nome).arg(indice));
    return l;
}

CampoDato *TelaioMessaPunto::aggiungiRiga(int indice, int parametro)
{
    if (!m_box)
        creaBoxParametri(QStringLiteral("BOXPARAMETRI"));
    Riga r;
    r.indice = indice;
    r.parametro = parametro;
    r.etichetta = nuovaEtichetta(QStringLiteral("LabParametro"), indice);
    r.duePunti = nuovaEtichetta(QStringLiteral("DuePunti"), indice);
    r.duePunti->setText(QStringLiteral(":"));
    r.misura = nuovaEtichetta(QStringLiteral("Misura"), indice);
    r.intervallo = nuovaEtichetta(QStringLiteral("Intervallo"), indice);
    QPalette p = r.intervallo->palette();
    p.setColor(QPalette::WindowText, QColor(0x60, 0x60, 0x60));
    r.intervallo->setPalette(p);
    r.campo = new CampoDato(m_box);
    r.campo->setObjectName(QStringLiteral("Dato_%1").arg(indice));
    r.campo->impostaMaschera(m_programma.catalogo.Valori[static_cast<size_t>(parametro)].Formato);
    QFont grande = r.campo->font();
    grande.setPointSizeF(grande.pointSizeF() * 1.15);
    r.campo->setFont(grande);
    r.campo->setFixedWidth(r.campo->fontMetrics().horizontalAdvance(QStringLiteral("0000000")) + 16);
    connect(r.campo, &CampoDato::lasciato, this,
            [this, parametro](double valore) { m_dialogo->valoreModificato(parametro, valore); });

    const int riga = m_griglia->rowCount();
    m_griglia->addWidget(r.etichetta, riga, 0);
    m_griglia->addWidget(r.duePunti, riga, 1);
    m_griglia->addWidget(r.campo, riga, 2);
    m_griglia->addWidget(r.misura, riga, 3);
    m_griglia->addWidget(r.intervallo, riga, 4);
    m_righe.push_back(r);
    return r.campo;
}

QComboBox *TelaioMessaPunto::aggiungiLista(int indice, int parametro, const QString &sezioneVoci)
{
    if (!m_box)
        creaBoxParametri(QStringLiteral("BOXPARAMETRI"));
    Riga r;
    r.indice = indice;
    r.parametro = parametro;
    r.etichetta = nuovaEtichetta(QStringLiteral("LabParametro"), indice);
    r.duePunti = nuovaEtichetta(QStringLiteral("DuePunti"), indice);
    r.duePunti->setText(QStringLiteral(":"));
    r.misura = nuovaEtichetta(QStringLiteral("Misura"), indice);
    r.lista = new QComboBox(m_box);
    r.lista->setObjectName(sezioneVoci);
    for (int n = 0;; ++n) {
        const QString voce =
            m_programma.lingua.LeggiTesto(sezioneVoci, sezioneVoci + QLatin1Char('.') + numero(n)).trimmed();
        if (voce.isEmpty())
            break;
        r.lista->addItem(voce);
    }
    r.lista->setCurrentIndex(-1);
    const int riga = m_griglia->rowCount();
    m_griglia->addWidget(r.etichetta, riga, 0);
    m_griglia->addWidget(r.duePunti, riga, 1);
    m_griglia->addWidget(r.lista, riga, 2, 1, 3);
    m_righe.push_back(r);
    return r.lista;
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
    for (const Riga &r : m_righe)
        if (r.indice == indice)
            return &r;
    return nullptr;
}

TelaioMessaPunto::Riga *TelaioMessaPunto::rigaParametro(int parametro)
{
    for (Riga &r : m_righe)
        if (r.parametro == parametro)
            return &r;
    return nullptr;
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
    return m_programma.catalogo.Valori[static_cast<size_t>(r->parametro)].Formato;
}

QString TelaioMessaPunto::testo(const QString &chiave) const
{
    return m_programma.lingua.LeggiTesto(m_sezione, chiave);
}

void TelaioMessaPunto::caricaTesti()
{
    setWindowTitle(testo(QStringLiteral("CAPTION")));
    if (m_box)
        m_box->setTitle(testo(m_nomeBox + QStringLiteral(".CAPTION")));
    m_boxZona->setTitle(testo(QStringLiteral("BOXZONALAVORO.CAPTION")));
    m_boxDati->setTitle(testo(QStringLiteral("BOXDATI.CAPTION")));
    for (Riga &r : m_righe) {
        r.etichetta->setText(testo(QStringLiteral("LABPARAMETRO.") + numero(r.indice)));
        r.misura->setText(testo(QStringLiteral("MISURA.") + numero(r.indice)));
    }
    for (size_t i = 0; i < m_labDati.size(); ++i)
        m_labDati[i]->setText(testo(QStringLiteral("LABDATI.") + numero(static_cast<int>(i))));

    const Lingua &l = m_programma.lingua;
    m_applica->setText(conTastoAlt(l.LeggiTesto("TASTI", "APPLICA").trimmed()) + QStringLiteral("  (F2)"));
    m_memorizza->setText(conTastoAlt(l.LeggiTesto("TASTI", "MEMORIZZA").trimmed())
                         + QStringLiteral("  (F5)"));
    m_ripristina->setText(conTastoAlt(l.LeggiTesto("TASTI", "RIPRISTINA").trimmed())
                          + QStringLiteral("  (F8)"));
    m_esci->setText(conTastoAlt(l.LeggiTesto("TASTI", "ESCI").trimmed()) + QStringLiteral("  (Esc)"));
    m_esciOut->setText(conTastoAlt(l.LeggiTesto("TASTI", "ESCI").trimmed()));
    caricaTestiAltrove();
}

void TelaioMessaPunto::carica()
{
    std::sort(m_righe.begin(), m_righe.end(),
              [](const Riga &a, const Riga &b) { return a.indice < b.indice; });
    caricaTesti();
    // The main frame's message line, until a save is acknowledged.
    m_programma.impostaSegnalazione1(m_programma.lingua.LeggiTesto("TASTI", "ESCI"));
    // Without a line there is nothing to edit: only Esci stays useful.
    const bool aperta = m_programma.motore.PortOpen();
    if (m_box)
        m_box->setVisible(aperta);
    m_programma.datiLive.aggiungiAscoltatore(this);
    m_ascolta = true;

    // Rows first, top to bottom, then the commands; the fitter starts on the first row.
    QWidget *precedente = nullptr;
    for (const Riga &r : m_righe) {
        QWidget *w = r.campo ? static_cast<QWidget *>(r.campo) : r.lista;
        if (precedente)
            setTabOrder(precedente, w);
        precedente = w;
    }
    for (QWidget *w : {m_applica, m_memorizza, m_ripristina, m_esci, m_esciOut}) {
        if (precedente)
            setTabOrder(precedente, w);
        precedente = w;
    }
    if (!m_righe.empty()) {
        QWidget *primo =
            m_righe.front().campo ? static_cast<QWidget *>(m_righe.front().campo) : m_righe.front().lista;
        primo->setFocus(Qt::OtherFocusReason);
    }
    m_dialogo->avviaLettura();
}

void TelaioMessaPunto::mostraValore(int parametro, double valore)
{
    Riga *r = rigaParametro(parametro);
    if (!r) {
        mostraValoreAltrove(parametro, valore);
        return;
    }
    if (r->campo) {
        r->campo->mostra(valore, formato(r->indice));
    } else if (r->lista) {
        const bool valido = valore >= 0 && valore < r->lista->count() && valore == static_cast<int>(valore);
        r->lista->setCurrentIndex(valido ? static_cast<int>(valore) : -1);
    }
}

void TelaioMessaPunto::mostraSuggerimento(int parametro, const QString &testo)
{
    Riga *r = rigaParametro(parametro);
    if (!r || !r->campo) {
        mostraSuggerimentoAltrove(parametro, testo);
        return;
    }
    r->campo->setToolTip(testo);
    r->intervallo->setText(QStringLiteral("(%1)").arg(testo));
}

void TelaioMessaPunto::nascondiRigheTps()
{
    for (int indice : m_righeTps) {
        Riga *r = rigaIndice(indice);
        if (!r)
            continue;
        for (QWidget *w : {static_cast<QWidget *>(r->etichetta), static_cast<QWidget *>(r->duePunti),
                           static_cast<QWidget *>(r->misura), static_cast<QWidget *>(r->campo),
                           static_cast<QWidget *>(r->lista), static_cast<QWidget *>(r->intervallo)})
            if (w)
                w->hide();
    }
}

void TelaioMessaPunto::bloccaCampoTps(int parametro)
{
    if (Riga *r = rigaParametro(parametro); r && r->campo)
        r->campo->blocca(true);
}

void TelaioMessaPunto::mostraSegnalazione(const QString &testo)
{
    m_segnalazione->setText(testo);
}

void TelaioMessaPunto::mostraZonaLavoro(const QString &testo)
{
    m_zonaLavoro->setText(testo);
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
        // After the opening read: the first field that can be edited.
        for (const Riga &r : m_righe) {
            if (r.campo && r.campo->isVisible() && !r.campo->bloccato()) {
                m_fuoco = r.campo;
                break;
            }
        }
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
    const TestiPannelloLive t = TestiPannello(m_programma.lingua, record);
    for (size_t i = 0; i < m_dato.size(); ++i)
        m_dato[i]->setText(t.dato[i]);
    if (m_dialogo->descrizione().zonaLavoro)
        m_zonaLavoro->setText(t.zona);
}

bool TelaioMessaPunto::ControlloValori()
{
    QWidget *primo = nullptr;
    bool validi = true;
    for (Riga &r : m_righe) {
        if (!r.campo)
            continue;
        const bool valido = m_dialogo->valoreValido(r.parametro, r.campo->text());
        r.campo->segnaErrato(!valido);
        if (!valido) {
            validi = false;
            if (!primo)
                primo = r.campo;
        }
    }
    if (!controlloValoriAltrove(primo))
        validi = false;
    if (primo)
        primo->setFocus(Qt::OtherFocusReason);
    return validi;
}

void TelaioMessaPunto::Applica()
{
    if (!ControlloValori())
        return;
    for (const Riga &r : m_righe) {
        if (r.campo)
            m_dialogo->impostaCorrente(r.parametro, ValNumero(r.campo->text()));
        else if (r.lista)
            m_dialogo->impostaCorrente(r.parametro, r.lista->currentIndex());
    }
    prendiValoriAltrove();
    m_dialogo->Applica();
}

void TelaioMessaPunto::Memorizza()
{
    m_dialogo->Memorizza();
    m_ripristina->setEnabled(true);
}

void TelaioMessaPunto::Ripristina()
{
    m_dialogo->Ripristina();
}

void TelaioMessaPunto::Esci()
{
    QPointer<TelaioMessaPunto> pagina(this);
    if (!m_dialogo->Esci())
        return;
    const Lingua &l = m_programma.lingua;
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

void TelaioMessaPunto::mostraValoreAltrove(int, double) {}
void TelaioMessaPunto::mostraSuggerimentoAltrove(int, const QString &) {}
bool TelaioMessaPunto::controlloValoriAltrove(QWidget *&)
{
    return true;
}
void TelaioMessaPunto::prendiValoriAltrove() {}
void TelaioMessaPunto::caricaTestiAltrove() {}

} // namespace kv
