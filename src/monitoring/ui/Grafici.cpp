#include "monitoring/ui/Grafici.h"
#include "base/Lingua.h"

#include "base/Configurazione.h"
#include "monitoring/AnelloRegistrazione.h"
#include "monitoring/ui/BarraRegistrazione.h"
#include "monitoring/ui/GraficoStriscia.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMenuBar>
#include <QPainter>
#include <QShortcut>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>

#include <algorithm>

namespace kv {

namespace {

const QColor Pannello(0x1E, 0x23, 0x28);
const QColor FondoRiga(0x11, 0x15, 0x19);
const QColor TestoTitolo(0xC5, 0xCF, 0xD6);
const QColor TestoValore(0xF5, 0xF7, 0xF8);
const QColor Fuoco(0xFF, 0xFF, 0xFF);

QColor daBgr(quint32 bgr)
{
    return QColor(int(bgr & 0xFF), int((bgr >> 8) & 0xFF), int((bgr >> 16) & 0xFF));
}

} // namespace

// ---- a row of the data panel

RigaDatoGrafico::RigaDatoGrafico(QWidget *parent) : QAbstractButton(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

QFont RigaDatoGrafico::fontTitolo() const
{
    QFont f = font();
    f.setBold(true);
    f.setPointSizeF(std::max(f.pointSizeF() * 1.05, 10.0));
    return f;
}

QFont RigaDatoGrafico::fontValore() const
{
    QFont f = font();
    f.setBold(true);
    f.setPointSizeF(std::max(f.pointSizeF() * 1.9, 18.0));
    return f;
}

void RigaDatoGrafico::impostaTitolo(const QString &titolo)
{
    if (text() == titolo)
        return;
    setText(titolo);
    setAccessibleName(titolo);
}

void RigaDatoGrafico::impostaValore(const QString &testo, std::optional<QColor> sfondo)
{
    if (m_valore == testo && m_sfondo == sfondo)
        return;
    m_valore = testo;
    m_sfondo = sfondo;
    update();
}

void RigaDatoGrafico::impostaColoreGrafico(std::optional<QColor> colore)
{
    if (m_coloreGrafico == colore)
        return;
    m_coloreGrafico = colore;
    update();
}

QSize RigaDatoGrafico::sizeHint() const
{
    return {160, QFontMetrics(fontTitolo()).height() + QFontMetrics(fontValore()).height() + 12};
}

void RigaDatoGrafico::keyPressEvent(QKeyEvent *evento)
{
    switch (evento->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        click();
        return;
    case Qt::Key_Up:
    case Qt::Key_Down: {
        // Along the visible rows, in their order on the panel.
        QList<RigaDatoGrafico *> righe;
        for (QObject *o : parentWidget()->children())
            if (auto *r = qobject_cast<RigaDatoGrafico *>(o); r && r->isVisible())
                righe << r;
        const qsizetype i = righe.indexOf(this);
        const qsizetype j = evento->key() == Qt::Key_Up ? i - 1 : i + 1;
        if (i >= 0 && j >= 0 && j < righe.size())
            righe[j]->setFocus(Qt::TabFocusReason);
        return;
    }
    default:
        QAbstractButton::keyPressEvent(evento);
    }
}

void RigaDatoGrafico::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    p.fillRect(rect(), Pannello);
    const QRectF fondo = QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5);
    p.setPen(Qt::NoPen);
    p.setBrush(isDown() ? FondoRiga.lighter(160) : FondoRiga);
    p.drawRoundedRect(fondo, 5, 5);
    if (m_coloreGrafico) {
        // The curve's colour down the left edge and round the row.
        p.setPen(QPen(*m_coloreGrafico, 3));
        p.setBrush(Qt::NoBrush);
        p.drawRoundedRect(fondo.adjusted(1, 1, -1, -1), 5, 5);
        p.fillRect(QRectF(fondo.left() + 2, fondo.top() + 2, 7, fondo.height() - 4), *m_coloreGrafico);
    }
    if (hasFocus()) {
        p.setPen(QPen(Fuoco, 2, Qt::DashLine));
        p.setBrush(Qt::NoBrush);
        p.drawRoundedRect(fondo.adjusted(4, 4, -4, -4), 4, 4);
    }

    const int margine = 14;
    // A long caption gets a smaller type before it is cut: the unit at its end matters.
    QFont ft = fontTitolo();
    const int larghezzaTitolo = width() - margine - 6;
    const double piena = ft.pointSizeF();
    while (QFontMetrics(ft).horizontalAdvance(text()) > larghezzaTitolo && ft.pointSizeF() > piena * 0.68)
        ft.setPointSizeF(ft.pointSizeF() * 0.94);
    const QFontMetrics mt(ft);
    p.setFont(ft);
    p.setPen(TestoTitolo);
    const QRect titolo(margine, 5, larghezzaTitolo, QFontMetrics(fontTitolo()).height());
    p.drawText(titolo, Qt::AlignLeft | Qt::AlignVCenter,
               mt.elidedText(text(), Qt::ElideRight, titolo.width()));

    const DisposizioneValore d = disposizioneValore();
    QColor inchiostro = m_coloreGrafico.value_or(TestoValore);
    if (m_sfondo) {
        p.setPen(Qt::NoPen);
        p.setBrush(*m_sfondo);
        p.drawRoundedRect(d.riquadro, 4, 4);
        const QColor &s = *m_sfondo;
        inchiostro = 0.299 * s.red() + 0.587 * s.green() + 0.114 * s.blue() > 140 ? Qt::black : Qt::white;
    }
    p.setFont(d.font);
    p.setPen(inchiostro);
    p.drawText(d.riquadro, d.allineamento, d.testo);
}

RigaDatoGrafico::DisposizioneValore RigaDatoGrafico::disposizioneValore() const
{
    // The value in a box of 0.65 of the row, centred, as large as the row allows. A long
    // state text (the working zone) gets a smaller type, then a second line, and is cut only
    // when even that does not hold it: it is read whole, never clipped at both ends.
    const int sinistra = 12; // clear of the curve's colour down the left edge
    const int disponibile = std::max(width() - sinistra - 6, 16);
    const int alto = 5 + QFontMetrics(fontTitolo()).height() + 2;
    const int spazio = std::max(height() - alto - 6, 8);
    const int interno = disponibile - 8;
    const auto occupa = [&](const QFont &f, int a) {
        return QFontMetrics(f).boundingRect(QRect(0, 0, interno, spazio * 4), a, m_valore);
    };
    const auto entra = [&](const QFont &f, int a) {
        const QRect r = occupa(f, a);
        return r.width() <= interno && r.height() <= spazio;
    };
    const auto riduci = [&](QFont &f, int a, double finoA) {
        const double piena = f.pointSizeF();
        while (!entra(f, a) && f.pointSizeF() > piena * finoA)
            f.setPointSizeF(f.pointSizeF() * 0.94);
    };

    QFont intera = fontValore();
    if (QFontMetrics(intera).height() > spazio)
        intera.setPointSizeF(intera.pointSizeF() * spazio / QFontMetrics(intera).height());
    DisposizioneValore d{intera, Qt::AlignCenter, {}, m_valore};
    riduci(d.font, d.allineamento, 0.6);
    if (!entra(d.font, d.allineamento) && m_valore.contains(u' ')) {
        QFont suDue = intera;
        riduci(suDue, Qt::AlignCenter | Qt::TextWordWrap, 0.4);
        if (entra(suDue, Qt::AlignCenter | Qt::TextWordWrap)) {
            d.font = suDue;
            d.allineamento = Qt::AlignCenter | Qt::TextWordWrap;
        }
    }
    if (!entra(d.font, d.allineamento))
        d.testo = QFontMetrics(d.font).elidedText(m_valore, Qt::ElideRight, interno);
    const int larghezza =
        std::min(std::max(int(width() * 0.65), occupa(d.font, d.allineamento).width() + 16), disponibile);
    d.riquadro = QRect(sinistra + (disponibile - larghezza) / 2, alto, larghezza, spazio);
    return d;
}

// ---- the window

QColor Grafici::coloreSlot(int slot)
{
    static const std::array<QColor, NumeroGrafici> colori = {
        QColor(0xFF, 0xD5, 0x4F), QColor(0x4D, 0xD0, 0xE1), QColor(0xAE, 0xEA, 0x6A),
        QColor(0xFF, 0x8A, 0x65)};
    return colori[static_cast<std::size_t>(std::clamp(slot, 0, NumeroGrafici - 1))];
}

Grafici::Grafici(const ContestoMonitor &contesto, QWidget *parent)
    : QWidget(parent)
    , m_contesto(contesto)
    , m_modello(contesto.canali, PercorsoIni(contesto.percorsoApp))
    , m_barra(new BarraRegistrazione(contesto, this, QStringLiteral("Grafici"),
                                     BarraRegistrazione::Tipo::Grafici))
    , m_visDati(new QTimer(this))
    , m_area(new QWidget(this))
    , m_boxDati(new QWidget(m_area))
    , m_titoloDati(new QLabel(m_boxDati))
    , m_labRegistro(new QLabel(this))
{
    setObjectName(QStringLiteral("Grafici"));
    connect(&contesto.datiLive, &DatiLive::nuovoRecord, this,
            [this](const RecordDati &r) { m_datoNuovo = r; });
    m_visDati->setInterval(PeriodoVisDati);
    connect(m_visDati, &QTimer::timeout, this, &Grafici::VisDati);

    auto *colonna = new QVBoxLayout(this);
    colonna->setContentsMargins(0, 0, 0, 0);
    colonna->setSpacing(0);
    colonna->setMenuBar(m_barra->menu());
    colonna->addWidget(m_barra->barra());
    colonna->addWidget(m_area, 1);
    m_labRegistro->setObjectName(QStringLiteral("LabRegistro"));
    m_labRegistro->setContentsMargins(8, 3, 8, 3);
    QFont fr = m_labRegistro->font();
    fr.setBold(true);
    m_labRegistro->setFont(fr);
    auto *stato = new QHBoxLayout;
    stato->setContentsMargins(4, 3, 4, 3);
    stato->addWidget(m_barra->indicatore());
    stato->addWidget(m_labRegistro, 1);
    colonna->addLayout(stato);
    m_barra->impostaLabRegistro(m_labRegistro);
    connect(m_barra, &BarraRegistrazione::esci, this, &Grafici::Esci);
    connect(m_barra, &BarraRegistrazione::blocca, this, &Grafici::blocca);
    connect(m_barra, &BarraRegistrazione::sblocca, this, &Grafici::sblocca);

    m_area->setObjectName(QStringLiteral("AreaGrafici"));
    QPalette scuro = m_area->palette();
    scuro.setColor(QPalette::Window, QColor(0x12, 0x17, 0x1C));
    m_area->setPalette(scuro);
    m_area->setAutoFillBackground(true);
    m_area->installEventFilter(this);

    m_boxDati->setObjectName(QStringLiteral("BoxDati"));
    QPalette pannello = m_boxDati->palette();
    pannello.setColor(QPalette::Window, Pannello);
    pannello.setColor(QPalette::WindowText, TestoTitolo);
    m_boxDati->setPalette(pannello);
    m_boxDati->setAutoFillBackground(true);
    m_titoloDati->setObjectName(QStringLiteral("TitoloBoxDati"));
    m_titoloDati->setAlignment(Qt::AlignCenter);
    m_titoloDati->setWordWrap(true);

    for (std::size_t r = 0; r < m_righe.size(); ++r) {
        auto *riga = new RigaDatoGrafico(m_boxDati);
        riga->setObjectName(QStringLiteral("DatiMot_%1").arg(r));
        riga->hide();
        connect(riga, &QAbstractButton::clicked, this, [this, r] {
            const qint16 c = m_modello.righe[r].Canale;
            if (c >= 0)
                cliccaCanale(c);
        });
        m_righe[r] = riga;
    }
    for (std::size_t s = 0; s < m_grafici.size(); ++s) {
        auto *g = new GraficoStriscia(m_area);
        g->setObjectName(QStringLiteral("GraficoCanale_%1").arg(s));
        g->impostaColore(0, coloreSlot(int(s)));
        g->impostaDivisioni(GraficoStriscia::AsseX, 5, 8);
        g->hide();
        g->setEnabled(false);
        connect(g, &GraficoStriscia::scorrimento, this, &Grafici::scorri);
        m_grafici[s] = g;
    }
    // Frozen, the charts are looked back over: a tenth of the window, a window, the ends.
    const auto ampiezza = [this] {
        return double(m_modello.canale(0).MaxAsse - m_modello.canale(0).MinAsse);
    };
    const std::pair<Qt::Key, std::function<void()>> tasti[] = {
        {Qt::Key_Left, [=, this] { scorri(-ampiezza() / 10); }},
        {Qt::Key_Right, [=, this] { scorri(ampiezza() / 10); }},
        {Qt::Key_PageUp, [=, this] { scorri(-ampiezza()); }},
        {Qt::Key_PageDown, [=, this] { scorri(ampiezza()); }},
        {Qt::Key_Home, [this] { scorriAlBordo(-1); }},
        {Qt::Key_End, [this] { scorriAlBordo(1); }},
    };
    for (const auto &[tasto, azione] : tasti) {
        auto *s = new QShortcut(QKeySequence(tasto), this);
        s->setContext(Qt::WidgetWithChildrenShortcut);
        s->setEnabled(false);
        connect(s, &QShortcut::activated, this, azione);
        m_tastiScorrimento.push_back(s);
    }

    auto *esc = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    esc->setContext(Qt::WindowShortcut);
    connect(esc, &QShortcut::activated, this, &Grafici::Esci);
}

Grafici::~Grafici()
{
    if (!m_chiusa) {
        m_contesto.anello.chiudiFinestra();
        m_contesto.anello.RegistrazioneAttiva = false;
    }
}

void Grafici::caricaTesti()
{
    const Lingua &l = m_contesto.lingua;
    m_titoloDati->setText(l.LeggiTesto("Grafici", "BOXDATI.CAPTION"));
    for (std::size_t r = 0; r < m_righe.size(); ++r) {
        const qint16 c = m_modello.righe[r].Canale;
        m_righe[r]->impostaTitolo(c >= 0 ? m_modello.TitoloCanale(c) : QString());
    }
}

void Grafici::carica()
{
    m_modello.carica();
    caricaTesti();
    AnelloRegistrazione &r = m_contesto.anello;
    // Opening the charts ends a recording left running in the instruments.
    r.azzera();
    r.StatoRegistrazione = AnelloRegistrazione::Fermo;
    r.ContaRegistrazione = -1;
    m_contesto.anello.RegistrazioneAttiva = true;
    m_barra->carica();
    m_barra->mostraBlocco(false);
    ridisegnoLayout();
    m_datoNuovo.reset();
    m_visDati->start();
    for (RigaDatoGrafico *riga : m_righe)
        if (!riga->isHidden()) {
            riga->setFocus(Qt::OtherFocusReason);
            break;
        }
}

void Grafici::cliccaCanale(int canale)
{
    if (m_modello.RidisegnoGrafici(canale))
        ridisegnoLayout();
}

void Grafici::PreparaAssi(GraficoStriscia *g, double yMin, double yMax, double xMin, double xMax, int canale)
{
    g->azzera();
    g->impostaScala(GraficoStriscia::AsseX, xMin, xMax);
    g->impostaFormato(GraficoStriscia::AsseX, m_modello.canale(0).Formato);
    g->impostaScala(GraficoStriscia::AsseY, yMin, yMax);
    const Canale &c = m_modello.canale(canale);
    g->impostaFormato(GraficoStriscia::AsseY, c.Formato);
    g->impostaDivisioni(GraficoStriscia::AsseY, c.DivMaggiori, c.DivMinori);
}

void Grafici::ridisegnoLayout()
{
    const Canale &tempo = m_modello.canale(0);
    for (int s = 0; s < NumeroGrafici; ++s) {
        GraficoStriscia *g = m_grafici[static_cast<std::size_t>(s)];
        const int c = m_modello.slot[static_cast<std::size_t>(s)].Canale;
        if (c < 0) {
            g->setEnabled(false);
            g->hide();
            continue;
        }
        g->impostaTitolo(GraficoStriscia::AsseY, m_modello.TitoloCanale(c));
        g->impostaTitolo(GraficoStriscia::AsseX, m_modello.TitoloCanale(0));
        const Canale &k = m_modello.canale(c);
        PreparaAssi(g, k.MinAsse, k.MaxAsse, tempo.MinAsse, tempo.MaxAsse, c);
        g->setEnabled(true);
        g->show();
    }
    impagina();
    for (int s = 0; s < NumeroGrafici; ++s)
        if (m_modello.slot[static_cast<std::size_t>(s)].Canale >= 0)
            m_grafici[static_cast<std::size_t>(s)]->impostaPunti(0, m_modello.RidisegnoTraccia(s));
    coloraRighe();
}

void Grafici::coloraRighe()
{
    for (std::size_t r = 0; r < m_righe.size(); ++r) {
        const qint16 c = m_modello.righe[r].Canale;
        const int s = c >= 0 ? m_modello.slotDi(c) : -1;
        m_righe[r]->impostaColoreGrafico(s >= 0 ? std::optional(coloreSlot(s)) : std::nullopt);
    }
}

void Grafici::impagina()
{
    const int w = m_area->width();
    const int h = m_area->height();
    const int larghezzaBox = LarghezzaBoxDati(w);
    m_boxDati->setGeometry(0, 0, larghezzaBox, h);

    const int n = m_modello.slotInUso();
    const TabellaPosGrafico tabella = CalcolaPosGrafico(w, 0, h);
    for (int s = 0; s < NumeroGrafici; ++s) {
        const int k = m_modello.posizioneSlot(s);
        if (k < 0)
            continue;
        const PosGrafico p = RettangoloGrafico(tabella, n, k, s);
        m_grafici[static_cast<std::size_t>(s)]->setGeometry(p.Sinistra, p.Alto, p.Larghezza, p.Altezza);
    }

    // The rows with a visible entry share the panel below its heading.
    const int titolo = m_titoloDati->heightForWidth(larghezzaBox - 8);
    m_titoloDati->setGeometry(4, 4, larghezzaBox - 8, std::max(titolo, 0));
    const int inizio = titolo + 8;
    const std::vector<int> visibili = m_modello.righeVisibili();
    // Only rows that go are hidden: hiding the one with the focus would move the focus away.
    for (std::size_t r = 0; r < m_righe.size(); ++r)
        if (std::find(visibili.begin(), visibili.end(), int(r)) == visibili.end())
            m_righe[r]->hide();
    const int conta = int(visibili.size());
    for (int k = 0; k < conta; ++k) {
        const PosRigaDati p = PosizioneRigaDati(k, conta, h - inizio);
        RigaDatoGrafico *riga = m_righe[static_cast<std::size_t>(visibili[static_cast<std::size_t>(k)])];
        riga->setGeometry(3, inizio + p.etichetta - 3, larghezzaBox - 6, std::max(p.passo - 4, 10));
        riga->show();
    }
}

bool Grafici::eventFilter(QObject *oggetto, QEvent *evento)
{
    if (oggetto == m_area && evento->type() == QEvent::Resize)
        impagina();
    return QWidget::eventFilter(oggetto, evento);
}

void Grafici::focusInEvent(QFocusEvent *evento)
{
    // The frame hands the focus to the page; the keys belong to the rows of values.
    for (RigaDatoGrafico *riga : m_righe)
        if (riga->isVisible()) {
            riga->setFocus(evento->reason());
            return;
        }
    QWidget::focusInEvent(evento);
}

void Grafici::VisDati()
{
    if (!m_datoNuovo)
        return;
    const RecordDati nuovo = *std::exchange(m_datoNuovo, std::nullopt);
    for (std::size_t r = 0; r < m_modello.righe.size(); ++r) {
        const qint16 c = m_modello.righe[r].Canale;
        if (c < 0)
            break;
        const ModelloGrafici::TestoDato t = m_modello.testoDato(c, nuovo.Valore[static_cast<std::size_t>(c)]);
        m_righe[r]->impostaValore(m_contesto.lingua.testo(t.testo),
                                  t.sfondo ? std::optional(daBgr(*t.sfondo)) : std::nullopt);
    }

    const auto aggiornamenti = m_modello.tick(nuovo);
    const Canale &tempo = m_modello.canale(0);
    for (int i = 0; i < NumeroGrafici; ++i) {
        const AggiornamentoSlot &a = aggiornamenti[static_cast<std::size_t>(i)];
        if (!a.punto)
            continue;
        GraficoStriscia *g = m_grafici[static_cast<std::size_t>(i)];
        if (a.asseX)
            g->impostaScala(GraficoStriscia::AsseX, tempo.MinAsse, tempo.MaxAsse);
        if (a.asseY) {
            const Canale &k = m_modello.canale(m_modello.slot[static_cast<std::size_t>(i)].Canale);
            g->impostaScala(GraficoStriscia::AsseY, k.MinAsse, k.MaxAsse);
        }
        g->aggiungiPunto(0, a.nuovo.x(), a.nuovo.y());
    }
}

void Grafici::blocca()
{
    m_modello.Blocca();
    m_barra->mostraBlocco(true);
    for (QShortcut *s : m_tastiScorrimento)
        s->setEnabled(true);
    const QString aiuto = m_contesto.lingua.LeggiTesto("Grafici", "SCORRI").trimmed();
    for (GraficoStriscia *g : m_grafici) {
        g->setToolTip(aiuto);
        g->setCursor(Qt::OpenHandCursor);
    }
}

void Grafici::scorri(double campioni)
{
    if (m_modello.scorri(campioni))
        ridisegnaTracce();
}

void Grafici::scorriAlBordo(int verso)
{
    if (m_modello.scorriAlBordo(verso))
        ridisegnaTracce();
}

void Grafici::ridisegnaTracce()
{
    const Canale &tempo = m_modello.canale(0);
    for (int s = 0; s < NumeroGrafici; ++s) {
        const int c = m_modello.slot[static_cast<std::size_t>(s)].Canale;
        if (c < 0)
            continue;
        GraficoStriscia *g = m_grafici[static_cast<std::size_t>(s)];
        const Canale &k = m_modello.canale(c);
        PreparaAssi(g, k.MinAsse, k.MaxAsse, tempo.MinAsse, tempo.MaxAsse, c);
        g->impostaPunti(0, m_modello.RidisegnoTraccia(s));
    }
}

void Grafici::sblocca()
{
    m_modello.Sblocca();
    m_barra->mostraBlocco(false);
    for (QShortcut *s : m_tastiScorrimento)
        s->setEnabled(false);
    for (GraficoStriscia *g : m_grafici) {
        g->setToolTip(QString());
        g->unsetCursor();
    }
    const Canale &tempo = m_modello.canale(0);
    for (int s = 0; s < NumeroGrafici; ++s) {
        GraficoStriscia *g = m_grafici[static_cast<std::size_t>(s)];
        const int c = m_modello.slot[static_cast<std::size_t>(s)].Canale;
        if (c < 0 || !g->isVisible())
            continue;
        const Canale &k = m_modello.canale(c);
        PreparaAssi(g, k.MinAsse, k.MaxAsse, tempo.MinAsse, tempo.MaxAsse, c);
    }
}

void Grafici::Esci()
{
    if (m_chiusa)
        return;
    m_chiusa = true;
    m_visDati->stop();
    m_barra->chiudi();
    emit chiusa();
}

} // namespace kv
