#include "monitoring/ui/Strumenti.h"
#include "base/Lingua.h"

#include "monitoring/ModelloStrumenti.h"
#include "monitoring/ui/BarraRegistrazione.h"
#include "monitoring/ui/BarraStrumento.h"
#include "monitoring/ui/Contagiri.h"
#include "monitoring/ui/ImmaginiMotorino.h"
#include "pages/LetturaStrumenti.h"
#include "pages/PannelloLive.h"
#include "variables/Formato.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenuBar>
#include <QPushButton>
#include <QShortcut>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>

namespace kv {

namespace {

// One colour per working zone, the same on the bars, the stepper and the rows that name
// the set points.
const QColor ColoreMinimo(0x66, 0xBB, 0x6A);
const QColor ColoreCutOff(0xFF, 0xA7, 0x26);
const QColor ColorePienoCarico(0xEF, 0x53, 0x50);
const QColor ColoreNormale(0x42, 0xA5, 0xF5);
const QColor ColoreReset(0xE5, 0x39, 0x35);
const QColor ColorePompa(0xFF, 0xB3, 0x00);
const QColor Cruscotto(0x1E, 0x23, 0x28);
const QColor TestoCruscotto(0xE0, 0xE6, 0xEA);

QColor daBgr(quint32 bgr)
{
    return QColor(int(bgr & 0xFF), int((bgr >> 8) & 0xFF), int((bgr >> 16) & 0xFF));
}

QString numero(int n)
{
    return FormattaNumero(n, QStringLiteral("#0"));
}

} // namespace

Strumenti::Strumenti(const ContestoMonitor &contesto, QWidget *parent)
    : QWidget(parent)
    , m_contesto(contesto)
    , m_modello(std::make_unique<ModelloStrumenti>(contesto.catalogo, contesto.canali))
    , m_lettura(new LetturaStrumenti(contesto.motore, contesto.catalogo, contesto.anello, this))
    , m_visDati(new QTimer(this))
    , m_barra(new BarraRegistrazione(contesto, this, QStringLiteral("Strumenti"),
                                     BarraRegistrazione::Tipo::Strumenti))
{
    setObjectName(QStringLiteral("Strumenti"));
    connect(m_barra, &BarraRegistrazione::esci, this, &Strumenti::Esci);
    m_visDati->setInterval(PeriodoVisDati);
    connect(m_visDati, &QTimer::timeout, this, &Strumenti::VisDati);
    connect(m_lettura, &LetturaStrumenti::valoreLetto, this, &Strumenti::mostraValore);
    connect(m_lettura, &LetturaStrumenti::letturaFinita, this, &Strumenti::letturaFinita);
    connect(&contesto.datiLive, &DatiLive::nuovoRecord, this,
            [this](const RecordDati &r) { m_modello->ricevi(r); });

    auto *principale = new QVBoxLayout(this);
    principale->setMenuBar(m_barra->menu());
    principale->addWidget(m_barra->barra());
    m_strumenti = new QWidget(this);
    m_strumenti->setObjectName(QStringLiteral("Cruscotto"));
    QPalette scuro = m_strumenti->palette();
    scuro.setColor(QPalette::Window, Cruscotto);
    scuro.setColor(QPalette::WindowText, TestoCruscotto);
    m_strumenti->setPalette(scuro);
    m_strumenti->setAutoFillBackground(true);
    auto *riga = new QHBoxLayout(m_strumenti);
    principale->addWidget(m_strumenti, 1);

    // Engine speed.
    m_boxGiri = creaBox("BoxGiri");
    auto *g = new QVBoxLayout(m_boxGiri);
    m_datoGiri = new Contagiri(m_boxGiri);
    m_datoGiri->setObjectName(QStringLiteral("Dato_Giri"));
    m_datoGiri->impostaScala(ModelloStrumenti::GiriMinimoScala, ModelloStrumenti::GiriMassimoScala);
    g->addWidget(m_datoGiri, 1);
    m_datoCanale[2] = creaLettura("DatoCanale_2");
    m_misura[2] = new QLabel(m_boxGiri);
    g->addWidget(m_datoCanale[2], 0, Qt::AlignHCenter);
    g->addWidget(m_misura[2], 0, Qt::AlignHCenter);
    const QColor coloriZone[3] = {ColoreMinimo, ColoreCutOff, ColorePienoCarico};
    for (size_t i = 0; i < 3; ++i)
        m_infGiri[i] = creaRigaInf(m_boxGiri, coloriZone[i]);
    riga->addWidget(m_boxGiri, 4);

    // Throttle and lambda bars.
    const auto barra = [&](QGroupBox *&box, const char *nomeBox, BarraStrumento *&b, const char *nome,
                           int canale, std::array<RigaInf, 3> &inf, const std::array<QColor, 3> &colori,
                           const QColor &basso, const QColor &alto) {
        box = creaBox(nomeBox);
        auto *l = new QVBoxLayout(box);
        b = new BarraStrumento(box);
        b->setObjectName(QString::fromLatin1(nome));
        b->impostaScala(ModelloStrumenti::BarraMinimo, ModelloStrumenti::BarraMassimo);
        b->impostaColori(basso, alto);
        l->addWidget(b, 1);
        m_datoCanale[static_cast<size_t>(canale)] =
            creaLettura(canale == 0 ? "DatoCanale_0" : "DatoCanale_1");
        m_misura[static_cast<size_t>(canale)] = new QLabel(box);
        l->addWidget(m_datoCanale[static_cast<size_t>(canale)], 0, Qt::AlignHCenter);
        l->addWidget(m_misura[static_cast<size_t>(canale)], 0, Qt::AlignHCenter);
        for (size_t i = 0; i < 3; ++i)
            inf[i] = creaRigaInf(box, colori[i]);
        riga->addWidget(box, 2);
    };
    barra(m_boxTps, "BoxTPS", m_datoTps, "Dato_TPS", 0, m_infTps,
          {ColoreMinimo, ColoreCutOff, ColorePienoCarico}, QColor(0x15, 0x65, 0xC0),
          QColor(0x4F, 0xC3, 0xF7));
    barra(m_boxLambda, "BoxLambda", m_datoLambda, "Dato_Lambda", 1, m_infLambda,
          {ColoreMinimo, ColoreNormale, ColorePienoCarico}, QColor(0x00, 0x89, 0x7B),
          QColor(0xFF, 0xEE, 0x58));

    // Stepper.
    m_boxMotorino = creaBox("BoxMotorino");
    auto *m = new QVBoxLayout(m_boxMotorino);
    auto *immagini = new QHBoxLayout;
    m_motorinoZ = new ScalaMotorino(m_boxMotorino);
    m_motorinoZ->setObjectName(QStringLiteral("MotorinoZ"));
    m_motorinoG = new AttuatoreMotorino(m_boxMotorino);
    m_motorinoG->setObjectName(QStringLiteral("MotorinoG"));
    immagini->addWidget(m_motorinoZ, 0);
    immagini->addWidget(m_motorinoG, 1);
    m->addLayout(immagini, 1);
    m_datoCanale[3] = creaLettura("DatoCanale_3");
    m_misura[3] = new QLabel(m_boxMotorino);
    m->addWidget(m_datoCanale[3], 0, Qt::AlignHCenter);
    m->addWidget(m_misura[3], 0, Qt::AlignHCenter);
    const QColor coloriMotorino[3] = {ColoreMinimo, ColoreNormale, ColoreReset};
    for (size_t i = 0; i < 3; ++i)
        m_infMotorino[i] = creaRigaInf(m_boxMotorino, coloriMotorino[i]);
    riga->addWidget(m_boxMotorino, 4);

    for (QLabel *l : m_misura)
        l->setObjectName(QStringLiteral("Misura"));

    // State texts and the status line.
    m_boxInf = new QGroupBox(this);
    m_boxInf->setObjectName(QStringLiteral("BoxInf"));
    auto *inf = new QGridLayout(m_boxInf);
    m_statoAlim = creaStato("StatoAlim");
    m_statoPompata = creaStato("StatoPompata");
    m_zonaLavoro = creaStato("ZonaLavoro");
    QLabel *stati[3] = {m_statoAlim, m_statoPompata, m_zonaLavoro};
    for (int i = 0; i < 3; ++i) {
        m_labStato[static_cast<size_t>(i)] = new QLabel(m_boxInf);
        inf->addWidget(m_labStato[static_cast<size_t>(i)], 0, 2 * i, Qt::AlignRight);
        inf->addWidget(stati[i], 0, 2 * i + 1);
        inf->setColumnStretch(2 * i + 1, 1);
    }
    m_labRegistro = new QLabel(m_boxInf);
    m_labRegistro->setObjectName(QStringLiteral("LabRegistro"));
    inf->addWidget(m_barra->indicatore(), 1, 0, 1, 1);
    inf->addWidget(m_labRegistro, 1, 1, 1, 4);
    m_barra->impostaLabRegistro(m_labRegistro);
    m_esci = new QPushButton(m_boxInf);
    m_esci->setObjectName(QStringLiteral("Esci"));
    m_esci->setAutoDefault(false);
    connect(m_esci, &QPushButton::clicked, this, &Strumenti::Esci);
    inf->addWidget(m_esci, 1, 5, Qt::AlignRight);
    principale->addWidget(m_boxInf);

    auto *esc = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    esc->setContext(Qt::WindowShortcut);
    connect(esc, &QShortcut::activated, this, &Strumenti::Esci);
}

Strumenti::~Strumenti()
{
    if (!m_chiusa)
        m_lettura->chiudi();
}

QGroupBox *Strumenti::creaBox(const char *nome)
{
    auto *b = new QGroupBox(m_strumenti);
    b->setObjectName(QString::fromLatin1(nome));
    QFont f = b->font();
    f.setBold(true);
    b->setFont(f);
    return b;
}

QLabel *Strumenti::creaLettura(const char *nome)
{
    auto *l = new QLabel(m_strumenti);
    l->setObjectName(QString::fromLatin1(nome));
    l->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    l->setFrameShape(QFrame::Panel);
    l->setFrameShadow(QFrame::Sunken);
    QFont f = font();
    f.setBold(true);
    f.setPointSizeF(f.pointSizeF() * 1.8);
    f.setStyleHint(QFont::Monospace);
    f.setFamily(QStringLiteral("monospace"));
    l->setFont(f);
    l->setMinimumWidth(QFontMetrics(f).horizontalAdvance(QStringLiteral("00000")) + 18);
    l->setContentsMargins(8, 2, 8, 2);
    QPalette p = l->palette();
    p.setColor(QPalette::Window, QColor(0x0B, 0x0F, 0x12));
    p.setColor(QPalette::WindowText, QColor(0x7C, 0xFC, 0x9A));
    l->setPalette(p);
    l->setAutoFillBackground(true);
    return l;
}

Strumenti::RigaInf Strumenti::creaRigaInf(QWidget *box, const QColor &colore)
{
    auto *layout = static_cast<QBoxLayout *>(box->layout());
    auto *riga = new QHBoxLayout;
    RigaInf r;
    r.campione = new QLabel(box);
    r.campione->setFixedSize(12, 12);
    r.campione->setAutoFillBackground(true);
    QPalette p = r.campione->palette();
    p.setColor(QPalette::Window, colore);
    r.campione->setPalette(p);
    r.etichetta = new QLabel(box);
    QFont normale = r.etichetta->font();
    normale.setBold(false);
    r.etichetta->setFont(normale);
    r.valore = new QLabel(box);
    r.valore->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    riga->addWidget(r.campione);
    riga->addWidget(r.etichetta, 1);
    riga->addWidget(r.valore);
    layout->addLayout(riga);
    return r;
}

QLabel *Strumenti::creaStato(const char *nome)
{
    auto *l = new QLabel(m_boxInf);
    l->setObjectName(QString::fromLatin1(nome));
    l->setAlignment(Qt::AlignCenter);
    l->setFrameShape(QFrame::Panel);
    l->setFrameShadow(QFrame::Sunken);
    l->setAutoFillBackground(true);
    l->setMinimumWidth(120);
    QFont f = l->font();
    f.setBold(true);
    l->setFont(f);
    l->setMargin(3);
    return l;
}

void Strumenti::coloraStato(QLabel *stato, const QColor &sfondo)
{
    QPalette p = stato->palette();
    p.setColor(QPalette::Window, sfondo);
    // Dark text on light colours (green, yellow), light text on the others.
    const double luce = 0.299 * sfondo.red() + 0.587 * sfondo.green() + 0.114 * sfondo.blue();
    p.setColor(QPalette::WindowText, luce > 140 ? Qt::black : Qt::white);
    stato->setPalette(p);
}

void Strumenti::caricaTesti()
{
    const Lingua &l = m_contesto.lingua;
    setWindowTitle(l.LeggiTesto("Strumenti", "CAPTION"));
    m_boxGiri->setTitle(l.LeggiTesto("Strumenti", "BOXGIRI.CAPTION"));
    m_boxTps->setTitle(l.LeggiTesto("Strumenti", "BOXTPS.CAPTION"));
    m_boxLambda->setTitle(l.LeggiTesto("Strumenti", "BOXLAMBDA.CAPTION"));
    m_boxMotorino->setTitle(l.LeggiTesto("Strumenti", "BOXMOTORINO.CAPTION"));
    m_boxInf->setTitle(l.LeggiTesto("Strumenti", "BOXINF.CAPTION"));
    m_datoGiri->impostaDidascalia(l.LeggiTesto("Strumenti", "DATO_GIRI.CAPTION"));
    // LABDATI: three rows for each instrument, then the labels of the three state texts.
    const std::array<std::array<RigaInf, 3> *, 4> gruppi = {&m_infGiri, &m_infTps, &m_infLambda,
                                                            &m_infMotorino};
    int n = 0;
    for (auto *gruppo : gruppi)
        for (RigaInf &r : *gruppo)
            r.etichetta->setText(l.LeggiTesto("Strumenti", "LABDATI." + numero(n++)));
    for (QLabel *s : m_labStato)
        s->setText(l.LeggiTesto("Strumenti", "LABDATI." + numero(n++)));
    for (size_t i = 0; i < m_misura.size(); ++i)
        m_misura[i]->setText(l.LeggiTesto("Strumenti", "MISURA." + numero(static_cast<int>(i))));
    m_esci->setText(l.LeggiTesto("TASTI", "ESCI") + QStringLiteral("  (Esc)"));
}

void Strumenti::carica()
{
    caricaTesti();
    // Until the set points are in, the instruments would show half a picture.
    m_strumenti->setVisible(false);
    m_boxInf->setEnabled(true);
    m_modello->azzera();
    const bool lettura = m_lettura->carica();
    // After the model, which empties the ring and arms the recorder.
    m_barra->carica();
    if (!lettura) {
        // Without a line there is nothing to show; only Esci is useful.
        m_strumenti->setVisible(false);
        return;
    }
}

void Strumenti::mostraValore(int passo)
{
    const QString t = m_modello->testoValore(passo);
    switch (passo) {
    case ModelloStrumenti::GiriMinimo:
    case ModelloStrumenti::GiriCutOff:
    case ModelloStrumenti::GiriPienoCarico:
        m_infGiri[static_cast<size_t>(passo - ModelloStrumenti::GiriMinimo)].valore->setText(t);
        break;
    case ModelloStrumenti::TpsMinimo:
    case ModelloStrumenti::TpsCutOff:
    case ModelloStrumenti::TpsPienoCarico:
        m_infTps[static_cast<size_t>(passo - ModelloStrumenti::TpsMinimo)].valore->setText(t);
        break;
    case ModelloStrumenti::PassiMinimo:
    case ModelloStrumenti::PassiNormale:
    case ModelloStrumenti::PosizioneReset:
        m_infMotorino[static_cast<size_t>(passo - ModelloStrumenti::PassiMinimo)].valore->setText(t);
        break;
    case ModelloStrumenti::LambdaMinimo:
    case ModelloStrumenti::LambdaNormale:
    case ModelloStrumenti::LambdaPienoCarico:
        m_infLambda[static_cast<size_t>(passo - ModelloStrumenti::LambdaMinimo)].valore->setText(t);
        break;
    default:
        break;
    }
    mostraMarcatori();
}

bool Strumenti::aggiornaScale()
{
    bool cambiata = false;
    for (auto [barra, canale] : {std::pair{m_datoTps, 3}, std::pair{m_datoLambda, 4}}) {
        const ModelloStrumenti::Scala s = m_modello->scalaBarra(canale);
        if (s.minimo == barra->minimo() && s.massimo == barra->massimo())
            continue;
        barra->impostaScala(s.minimo, s.massimo);
        cambiata = true;
    }
    return cambiata;
}

void Strumenti::mostraMarcatori()
{
    using M = ModelloStrumenti;
    const M &m = *m_modello;
    aggiornaScale();
    m_datoTps->impostaMarcatore(0, m.marcatore(M::MarcaTpsMinimo), ColoreMinimo);
    m_datoTps->impostaMarcatore(1, m.marcatore(M::MarcaTpsCutOff), ColoreCutOff);
    m_datoTps->impostaMarcatore(2, m.marcatore(M::MarcaTpsPienoCarico), ColorePienoCarico);
    m_datoLambda->impostaMarcatore(0, m.marcatore(M::MarcaLambdaMinimo), ColoreMinimo);
    m_datoLambda->impostaMarcatore(1, m.marcatore(M::MarcaLambdaNormale), ColoreNormale);
    m_datoLambda->impostaMarcatore(2, m.marcatore(M::MarcaLambdaPienoCarico), ColorePienoCarico);
    m_motorinoZ->impostaMarcatori(m.marcatore(M::LineaReset), m.marcatore(M::PassiNormSopra),
                                  m.marcatore(M::PassiNormSotto), m.marcatore(M::PassiMinSopra),
                                  m.marcatore(M::PassiMinSotto));
    m_motorinoG->impostaReset(m.marcatore(M::LineaReset));
}

void Strumenti::letturaFinita()
{
    mostraMarcatori();
    m_strumenti->setVisible(true);
    m_visDati->start();
}

void Strumenti::VisDati()
{
    const ModelloStrumenti::Cambiamenti c = m_modello->tick();
    if (!c.qualcosa())
        return;
    const ModelloStrumenti::Quadro &q = m_modello->quadro();
    // A probe of another type puts lambda, and its set points, on another scale.
    if ((c.tps || c.lambda) && aggiornaScale())
        mostraMarcatori();
    if (c.giri) {
        m_datoCanale[2]->setText(q.giri);
        m_datoGiri->impostaValore(q.lancettaGiri);
    }
    if (c.tps) {
        m_datoCanale[0]->setText(q.tps);
        m_datoTps->impostaValore(q.barraTps);
    }
    if (c.lambda) {
        m_datoCanale[1]->setText(q.lambda);
        m_datoLambda->impostaValore(q.barraLambda);
    }
    if (c.motorino) {
        m_datoCanale[3]->setText(q.motorino);
        m_motorinoZ->impostaPosizione(q.posizioneMotorino);
        m_motorinoG->impostaPosizione(q.posizioneMotorino);
    }
    if (c.alimentazione) {
        m_statoAlim->setText(m_contesto.lingua.LeggiTesto("ALIMENTAZIONE", q.chiaveAlimentazione));
        coloraStato(m_statoAlim, daBgr(q.coloreAlimentazione));
    }
    if (c.pompata) {
        m_statoPompata->setText(m_contesto.lingua.LeggiTesto("POMPATA", q.chiavePompata));
        const bool attiva = m_modello->mostrato().Valore[Canale::Pompata] != 0;
        coloraStato(m_statoPompata, attiva ? ColorePompa : Cruscotto);
    }
    if (c.zona) {
        m_zonaLavoro->setText(m_contesto.lingua.testo(NomeZona(q.zona)));
        coloraStato(m_zonaLavoro, Cruscotto);
    }
}

void Strumenti::Esci()
{
    if (m_chiusa)
        return;
    m_chiusa = true;
    m_visDati->stop();
    m_lettura->chiudi();
    m_barra->segnalaErrore();
    emit chiusa();
}

} // namespace kv
