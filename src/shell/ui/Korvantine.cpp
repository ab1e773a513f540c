#include "shell/ui/Korvantine.h"
#include "base/Lingua.h"

#include "shell/Programma.h"
#include "shell/ui/Comunicazione.h"
#include "shell/ui/Infor.h"
#include "shell/ui/Logo.h"
#include "shell/ui/MainLambda.h"
#include "shell/ui/MsgBox1.h"
#include "shell/ui/Password.h"
#include "shell/ui/SceltaLingua.h"
#include "shell/ui/VisInf.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QFontDatabase>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QScreen>
#include <QStyle>
#include <QTextLayout>
#include <QThread>
#include <QTimer>
#include <QVBoxLayout>
#include <QWindow>

#ifndef QT_NO_SESSIONMANAGER
#include <QSessionManager>
#endif

#include <cstdio>

namespace kv {

namespace {

// How often a closed page is looked at again while a nested event loop keeps it alive.
constexpr int IntervalloEliminazione = 50;

// A label of the strip: two lines at most whatever its text, broken at words and cut with an
// ellipsis at the end of the second; the whole text stays in text() (what a screen reader
// says) and in the tooltip.
class EtichettaStriscia : public QLabel
{
public:
    using QLabel::QLabel;

    QSize sizeHint() const override { return {0, dueRighe()}; }
    QSize minimumSizeHint() const override { return {0, dueRighe()}; }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter p(this);
        const QRect r = contentsRect();
        const QString testo = QString(text()).replace(u'\n', u' ');
        const QFontMetrics fm = fontMetrics();
        QTextLayout layout(testo, font());
        layout.beginLayout();
        QStringList righe;
        for (QTextLine riga = layout.createLine(); riga.isValid(); riga = layout.createLine()) {
            riga.setLineWidth(r.width());
            if (righe.size() == 1) {
                righe << fm.elidedText(testo.mid(riga.textStart()), Qt::ElideRight, r.width());
                break;
            }
            righe << testo.mid(riga.textStart(), riga.textLength()).trimmed();
        }
        layout.endLayout();
        const int alto = fm.height() * int(righe.size());
        int y = r.top() + (r.height() - alto) / 2;
        for (const QString &riga : std::as_const(righe)) {
            style()->drawItemText(&p, QRect(r.left(), y, r.width(), fm.height()),
                                  static_cast<int>(alignment()), palette(), isEnabled(), riga,
                                  foregroundRole());
            y += fm.height();
        }
    }

private:
    int dueRighe() const
    {
        const QMargins m = contentsMargins();
        return 2 * fontMetrics().height() + m.top() + m.bottom() + 2 * margin();
    }
};

} // namespace

Korvantine::Korvantine(Programma &programma, QWidget *parent)
    : QWidget(parent)
    , m_programma(programma)
    , m_area(new QWidget(this))
    , m_segnalazione(new QLabel(this))
    , m_segnalazione1(new EtichettaStriscia(this))
    , m_statoCollegamento(new EtichettaStriscia(this))
    , m_modo(new QLabel(this))
    , m_timerEliminazione(new QTimer(this))
{
    setObjectName(QStringLiteral("Korvantine"));
    setWindowIcon(IconaProgramma());
    setMinimumSize(fontMetrics().averageCharWidth() * 100, fontMetrics().height() * 30);

    m_area->setObjectName(QStringLiteral("AreaPagine"));
    auto *areaLayout = new QVBoxLayout(m_area);
    areaLayout->setContentsMargins(0, 0, 0, 0);

    auto *box = new QFrame(this);
    box->setObjectName(QStringLiteral("BoxMessaggi"));
    box->setFrameShape(QFrame::StyledPanel);
    box->setFrameShadow(QFrame::Sunken);
    m_segnalazione1->setObjectName(QStringLiteral("Segnalazione1"));
    m_statoCollegamento->setObjectName(QStringLiteral("StatoCollegamento"));
    m_segnalazione->setObjectName(QStringLiteral("Segnalazione"));
    m_segnalazione->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_segnalazione->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_segnalazione->setForegroundRole(QPalette::PlaceholderText);
    // The strip never pushes the page around, however long its texts get.
    m_segnalazione->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_segnalazione1->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_statoCollegamento->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    // Service mode is on for the rest of the run: said where it is seen from every page.
    m_modo->setObjectName(QStringLiteral("ModoAssistenza"));
    m_modo->setStyleSheet(
        QStringLiteral("background: #ffb300; color: black; font-weight: bold; padding: 2px 8px;"));
    m_modo->hide();
    auto *strip = new QHBoxLayout(box);
    const int margine = fontMetrics().averageCharWidth();
    strip->setContentsMargins(margine, margine / 2, margine, margine / 2);
    strip->addWidget(m_modo);
    strip->addWidget(m_statoCollegamento, 4);
    strip->addWidget(m_segnalazione1, 2);
    strip->addWidget(m_segnalazione, 2);
    ripartisciStriscia();

    auto *colonna = new QVBoxLayout(this);
    colonna->setContentsMargins(0, 0, 0, 0);
    colonna->setSpacing(0);
    colonna->addWidget(m_area, 1);
    colonna->addWidget(box);

    m_timerEliminazione->setInterval(IntervalloEliminazione);
    connect(m_timerEliminazione, &QTimer::timeout, this, &Korvantine::eliminaSospese);

    registraPagina(IdPagina::Comunicazione,
                   [](Korvantine &f) { return NuovaComunicazione(f, PorteDisponibili()); });
    registraPagina(IdPagina::SceltaLingua, [](Korvantine &f) {
        Programma &p = f.programma();
        auto *pagina = new SceltaLingua(f, p.lingua, p.PercorsoApp);
        // The channels' names are data of the charts and recordings: they follow at once.
        connect(pagina, &SceltaLingua::linguaCambiata, &f,
                [&p] { p.canali.RinominaCanali(p.lingua.Cerca()); });
        return pagina;
    });
    registraPagina(IdPagina::VisInf,
                   [](Korvantine &f) { return new VisInf(f, f.programma().linea, f.programma().lingua); });
    registraPagina(
        IdPagina::Password,
        [](Korvantine &f) { return new Password(f, f.programma().menu, f.programma().lingua); },
        Apertura::SopraIlMenu);
    registraPagina(
        IdPagina::Infor, [](Korvantine &f) { return new Infor(f, f.programma().lingua); },
        Apertura::SopraIlMenu);
    // The tuning, live-data, calibration, programming and archive pages are registered by
    // their own units; until they are, their menu entries say they are not there yet.

    Programma &p = m_programma;
    connect(&p, &Programma::portaNonAperta, this, [this](const QString &dispositivo, const QString &gruppo) {
        aggiornaStatoCollegamento();
        const Lingua &l = m_programma.lingua;
        QString testo = l.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_3");
        if (m_programma.linea.portaOccupata())
            testo +=
                QStringLiteral("\n\n")
                + l.LeggiTesto("SEGNALAZIONI", "PORTA_OCCUPATA").replace(QStringLiteral("XXX"), dispositivo);
        if (!gruppo.isEmpty())
            testo += QStringLiteral("\n\n")
                     + l.LeggiTesto("SEGNALAZIONI", "PERMESSO_PORTA")
                           .replace(QStringLiteral("XXX"), dispositivo)
                           .replace(QStringLiteral("YYY"), gruppo);
        avvisa(testo, l.LeggiTesto("SEGNALAZIONI", "TITOLO_2"), 16);
    });
    SessioneLinea &linea = p.linea;
    connect(&linea, &SessioneLinea::segnalazione, this, [this](const QString &hex) {
        m_segnalazione->setText(hex);
        ripartisciStriscia();
        aggiornaStatoCollegamento();
    });
    connect(&linea, &SessioneLinea::scritturaRiuscita, this, [this] { impostaSegnalazione1({}); });
    connect(&linea.sorveglianza(), &SorveglianzaLinea::statoCambiato, this,
            &Korvantine::aggiornaStatoCollegamento);
    connect(&linea.motore(), &MotoreDialogo::cursoreAttesa, this, &Korvantine::cursoreAttesa);
    connect(&linea.identificazione(), &Identificazione::aggiornaMenu, this, &Korvantine::AggiornaMenu);
    connect(&linea.identificazione(), &Identificazione::frameAbilitato, this, &Korvantine::abilitaArea);
    connect(&linea.identificazione(), &Identificazione::identificata, this, [this] {
        // The TPS cells have just been read: the pump entry follows them at once.
        AggiornaMenu();
        aggiornaStatoCollegamento();
    });
    connect(&linea.datiLive(), &DatiLive::inMarciaCambiata, this, &Korvantine::AggiornaMenu);
    connect(&linea.datiLive(), &DatiLive::ecuPersa, this, [this] {
        // A page that the silence closes with edits not yet applied says so, once the
        // frame has come back to the menu.
        const QPointer<QWidget> pagina = m_pagina;
        const bool nonApplicate = pagina && pagina->property("modificheNonApplicate").toBool();
        if (m_taratura && m_taratura->inCorso())
            ChiudiPagineTaratura();
        else
            RitornoMenu();
        if (nonApplicate && !paginaAperta(pagina)) {
            const Lingua &l = m_programma.lingua;
            const QString testo = l.LeggiTesto("MESSAPUNTO", "LINEA_PERSA")
                                      .replace(QLatin1String("XXX"), pagina->windowTitle());
            const QString titolo = l.LeggiTesto("SEGNALAZIONI", "TITOLO_1");
            QTimer::singleShot(0, this, [this, testo, titolo] { avvisa(testo, titolo, 48); });
        }
        aggiornaStatoCollegamento();
    });
#ifndef QT_NO_SESSIONMANAGER
    // The end of the session may close the frame; the user's close box may not.
    connect(qApp, &QGuiApplication::commitDataRequest, this,
            [this](QSessionManager &) { m_chiusuraConsentita = true; });
#endif
}

Korvantine::~Korvantine()
{
    cursoreAttesa(false);
}

void Korvantine::avvia()
{
    m_programma.menu.scegli(Funzione::Nessuna);
    mostraMenu();
    if (!isVisible()) {
        const QScreen *schermo = screen();
        const QSize disponibile = schermo ? schermo->availableGeometry().size() : QSize(1024, 768);
        const QSize voluta(1024, 740);
        if (disponibile.width() <= voluta.width() || disponibile.height() <= voluta.height() + 40) {
            showMaximized();
        } else {
            resize(voluta);
            show();
        }
        // The menu is driven by keys: the frame asks for the keyboard as it comes up.
        activateWindow();
    }
    m_avviato = true;
    aggiornaStatoCollegamento();
    // Held messages come once the frame is painted, so they stand over it.
    QTimer::singleShot(0, this, &Korvantine::mostraAvvisi);
}

// ---- pages

void Korvantine::registraPagina(IdPagina id, FabbricaPagina fabbrica, Apertura apertura)
{
    if (id == IdPagina::Nessuna)
        return;
    if (!fabbrica) {
        m_registro.erase(id);
        return;
    }
    m_registro[id] = Registrazione{std::move(fabbrica), apertura};
}

bool Korvantine::paginaRegistrata(IdPagina id) const
{
    return m_registro.find(id) != m_registro.end();
}

MainLambda *Korvantine::menu() const
{
    return qobject_cast<MainLambda *>(m_pagina.data());
}

bool Korvantine::paginaAperta(const QWidget *pagina) const
{
    return pagina && (pagina == m_pagina || pagina == m_sopra);
}

QWidget *Korvantine::apriPagina(IdPagina id)
{
    const auto trovata = m_registro.find(id);
    if (trovata == m_registro.end())
        return nullptr;
    // A copy: the factory may register pages of its own.
    const Registrazione registrazione = trovata->second;
    QWidget *pagina = registrazione.fabbrica(*this);
    if (!pagina)
        return nullptr;

    if (registrazione.apertura == Apertura::SopraIlMenu) {
        if (m_sopra)
            togliPagina(m_sopra);
        if (!m_pagina)
            mostraMenu();
        const Qt::WindowFlags flags = pagina->windowFlags() | Qt::Dialog;
        if (pagina->parentWidget() != this || !pagina->isWindow())
            pagina->setParent(this, flags);
        pagina->setWindowModality(Qt::WindowModal);
        m_sopra = pagina;
        m_idSopra = id;
        if (auto *dialogo = qobject_cast<QDialog *>(pagina))
            connect(dialogo, &QDialog::finished, this, [this, dialogo] { ChiudiPagina(dialogo); });
        if (MainLambda *m = menu())
            m->setEnabled(false);
        pagina->show();
        pagina->raise();
        pagina->activateWindow();
        return pagina;
    }

    if (m_sopra)
        togliPagina(m_sopra);
    if (m_pagina)
        togliPagina(m_pagina);
    mettiInArea(pagina, id);
    return pagina;
}

void Korvantine::ChiudiPagina(QWidget *pagina, int prossima)
{
    if (!pagina)
        return;
    if (pagina == m_sopra) {
        togliPagina(pagina);
        mostraModo();
        riprendiTastiera(this);
        if (prossima == -1 && m_taratura)
            m_taratura->prosegui();
        if (!m_pagina)
            mostraMenu();
        if (MainLambda *m = menu())
            m->setEnabled(!m_sopra);
        riportaFuoco();
        return;
    }
    // The menu is never closed: other pages replace it.
    if (pagina != m_pagina || menu())
        return;
    togliPagina(pagina);
    if (prossima == -1 && m_taratura)
        m_taratura->prosegui();
    if (!m_pagina)
        mostraMenu();
}

void Korvantine::mostraMenu()
{
    if (menu())
        return;
    if (m_pagina)
        togliPagina(m_pagina);
    // The serial settings afresh whenever the menu comes up, as it always did: the strip
    // names the port from them.
    m_programma.LeggiImpSeriale();
    auto *m = new MainLambda(*this, m_programma.menu, m_programma.linea.ecu(), m_programma.lingua);
    mettiInArea(m, IdPagina::Nessuna);
    m->setEnabled(!m_sopra);
    m->daiFuoco();
}

void Korvantine::mettiInArea(QWidget *pagina, IdPagina id)
{
    if (pagina->parentWidget() != m_area)
        pagina->setParent(m_area);
    m_area->layout()->addWidget(pagina);
    m_pagina = pagina;
    m_idPagina = id;
    if (!pagina->windowTitle().isEmpty())
        setWindowTitle(pagina->windowTitle());
    connect(pagina, &QWidget::windowTitleChanged, this, [this, pagina](const QString &titolo) {
        if (m_pagina == pagina)
            setWindowTitle(titolo);
    });
    pagina->show();
    if (!pagina->isAncestorOf(QApplication::focusWidget()))
        pagina->setFocus(Qt::OtherFocusReason);
}

void Korvantine::togliPagina(QWidget *pagina)
{
    // The strip's word for a page in the area goes with it.
    if (pagina == m_pagina && !menu())
        impostaSegnalazione1({});
    if (pagina == m_pagina) {
        m_pagina = nullptr;
        m_idPagina = IdPagina::Nessuna;
    }
    if (pagina == m_sopra) {
        m_sopra = nullptr;
        m_idSopra = IdPagina::Nessuna;
    }
    disconnect(pagina, nullptr, this, nullptr);
    // Its boxes go with it, answered as if closed without a button.
    for (const BoxAperto &b : m_box) {
        if (b.box && b.proprietario == pagina)
            b.box->done(QDialog::Rejected);
    }
    if (m_area->layout()->indexOf(pagina) >= 0)
        m_area->layout()->removeWidget(pagina);
    pagina->hide();
    eliminaPiuTardi(pagina);
}

void Korvantine::eliminaPiuTardi(QWidget *pagina)
{
    m_daEliminare.emplace_back(pagina);
    if (!m_timerEliminazione->isActive())
        m_timerEliminazione->start();
}

void Korvantine::eliminaSospese()
{
    // Only from the outermost event loop: then no handler of a closed page can be on the
    // stack under a box that is still open.
    if (m_profonditaModale > 0 || QThread::currentThread()->loopLevel() > 1)
        return;
    m_timerEliminazione->stop();
    const auto sospese = std::move(m_daEliminare);
    m_daEliminare.clear();
    for (const QPointer<QWidget> &pagina : sospese)
        delete pagina.data();
}

// ---- messages

int Korvantine::MostraMsg(const QString &testo, int flags, const QString &titolo, int predefinito)
{
    return mostraMsg(testo, flags, titolo, predefinito, m_sopra ? m_sopra.data() : m_pagina.data());
}

int Korvantine::mostraMsg(const QString &testo, int flags, const QString &titolo, int predefinito,
                          QWidget *proprietario)
{
    QWidget *sotto = m_sopra ? m_sopra.data() : this;
    MsgBox1 box(m_programma.lingua, sotto);
    box.prepara(testo, flags, titolo, predefinito);
    m_box.push_back({&box, proprietario});
    QPointer<QWidget> finestraSotto(sotto);
    eseguiModale(box);
    riprendiTastiera(finestraSotto);
    std::erase_if(m_box, [&box](const BoxAperto &b) { return b.box == &box || !b.box; });
    riportaFuoco();
    return box.RispostaMsg();
}

int Korvantine::eseguiModale(QDialog &box)
{
    ++m_profonditaModale;
    const int esito = box.exec();
    --m_profonditaModale;
    return esito;
}

void Korvantine::avvisa(const QString &testo, const QString &titolo, int flags)
{
    if (m_avviato && isVisible()) {
        mostraMsg(testo, flags, titolo, 0, nullptr);
        return;
    }
    std::fprintf(stderr, "%s: %s\n", qPrintable(titolo), qPrintable(testo));
    m_avvisi.push_back({testo, titolo, flags});
}

void Korvantine::mostraAvvisi()
{
    const auto avvisi = std::move(m_avvisi);
    m_avvisi.clear();
    for (const Avviso &a : avvisi)
        mostraMsg(a.testo, a.flags, a.titolo, 0, nullptr);
}

// ---- menu and link

void Korvantine::AggiornaMenu()
{
    if (MainLambda *m = menu())
        m->AggiornaMenu();
}

void Korvantine::RitornoMenu()
{
    if (m_pagina && PaginaMessaPunto(m_idPagina))
        ChiudiPagina(m_pagina);
    AggiornaMenu();
}

void Korvantine::ChiudiPagineTaratura()
{
    if (m_sopra && PaginaTaratura(m_idSopra))
        togliPagina(m_sopra);
    if (m_pagina && PaginaTaratura(m_idPagina))
        togliPagina(m_pagina);
    mostraMenu();
    if (MainLambda *m = menu())
        m->setEnabled(!m_sopra);
    riportaFuoco();
    if (m_taratura)
        m_taratura->terminata();
}

bool Korvantine::AvviaTaratura(FaseTaratura passo)
{
    if (!m_taratura)
        return false;
    m_taratura->avvia(passo);
    return true;
}

void Korvantine::avviaSequenzaTaratura()
{
    if (m_taratura)
        m_taratura->avviaSequenza();
}

void Korvantine::impostaSegnalazione1(const QString &testo)
{
    m_segnalazione1->setText(testo);
    m_segnalazione1->setToolTip(testo);
    ripartisciStriscia();
}

void Korvantine::aggiornaStatoCollegamento()
{
    const StatoEcu &s = m_programma.linea.ecu();
    const SorveglianzaLinea::Stato linea = m_programma.linea.sorveglianza().stato();
    int stato = 3;
    if (!m_programma.linea.PortOpen())
        stato = linea == SorveglianzaLinea::Stato::Persa ? 5 : 0;
    else if (linea == SorveglianzaLinea::Stato::Muta)
        stato = 6;
    else if (!s.EcuNormale)
        stato = 4;
    else if (s.EcuDaIdentificare)
        stato = m_programma.linea.motore().StatoDialogo() == Identificazione::StatoVersione
                        || m_programma.linea.motore().StatoDialogo() == Identificazione::StatoLetture
                    ? 2
                    : 1;
    QString testo =
        m_programma.lingua.LeggiTesto("KORVANTINE", "COLLEGAMENTO." + QString::number(stato)).trimmed();
    const ImpSeriale &imp = m_programma.seriale;
    QString porta = m_programma.dispositivoForzato;
    if (porta.isEmpty())
        porta = imp.nomeDispositivo.isEmpty() ? imp.Porta : imp.nomeDispositivo;
    const QString velocita = QString::number(imp.VelocitaCom);
    if (testo.contains(QLatin1String("XXX"))) {
        // The fitter's own words name the port and the speed where they belong.
        testo.replace(QLatin1String("YYY"), velocita).replace(QLatin1String("XXX"), porta);
    } else if (!porta.isEmpty()) {
        testo += QStringLiteral("   %1, %2").arg(porta, velocita);
    }
    if (m_statoCollegamento->text() != testo) {
        m_statoCollegamento->setText(testo);
        m_statoCollegamento->setToolTip(testo);
    }
    mostraModo();
}

void Korvantine::mostraModo()
{
    const bool assistenza = m_programma.menu.ModoAssistenza();
    if (assistenza)
        m_modo->setText(m_programma.lingua.LeggiTesto("KORVANTINE", "ASSISTENZA").trimmed());
    m_modo->setVisible(assistenza && !m_modo->text().isEmpty());
}

void Korvantine::ripartisciStriscia()
{
    // An empty label leaves its share to the state of the line, which then reads in full
    // (a mute port comes with no payload and no message).
    auto *strip = qobject_cast<QBoxLayout *>(m_statoCollegamento->parentWidget()->layout());
    if (!strip)
        return;
    strip->setStretchFactor(m_segnalazione1, m_segnalazione1->text().isEmpty() ? 0 : 2);
    strip->setStretchFactor(m_segnalazione, m_segnalazione->text().isEmpty() ? 0 : 2);
}

void Korvantine::abilitaArea(bool abilitata)
{
    if (!abilitata) {
        // A disabled page loses the focus, and nothing would give it back: the frame's
        // keys would be dead until the fitter clicked somewhere.
        QWidget *f = focusWidget();
        m_fuocoArea = f && m_area->isAncestorOf(f) ? f : nullptr;
        m_area->setEnabled(false);
        return;
    }
    m_area->setEnabled(true);
    riportaFuoco();
}

void Korvantine::riprendiTastiera(QWidget *finestra)
{
    // A closed box leaves the keyboard to whatever the window system picks next; the window
    // it stood over asks for it, whatever the window manager's habits.
    const QWindow *attiva = QGuiApplication::focusWindow();
    if (finestra && finestra->isVisible() && (!attiva || !attiva->isVisible()))
        finestra->activateWindow();
}

void Korvantine::riportaFuoco()
{
    QWidget *pagina = m_pagina;
    // A disabled menu lies under a box of its own, which has the keys.
    if (!pagina || !m_area->isEnabled() || !pagina->isEnabled())
        return;
    const auto sullaPagina = [pagina](const QWidget *w) {
        return w && (w == pagina || pagina->isAncestorOf(w)) && w->isVisible() && w->isEnabled();
    };
    if (sullaPagina(focusWidget()))
        return;
    QWidget *prima = m_fuocoArea;
    m_fuocoArea = nullptr;
    if (sullaPagina(prima))
        prima->setFocus(Qt::OtherFocusReason);
    else if (MainLambda *m = menu())
        m->daiFuoco();
    else
        pagina->setFocus(Qt::OtherFocusReason);
}

void Korvantine::cursoreAttesa(bool attesa)
{
    if (attesa == m_inAttesa)
        return;
    m_inAttesa = attesa;
    if (attesa)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QApplication::restoreOverrideCursor();
}

void Korvantine::Uscita()
{
    m_chiusuraConsentita = true;
    close();
    emit uscita();
}

bool Korvantine::event(QEvent *evento)
{
    const bool esito = QWidget::event(evento);
    // Back from another window (a box, a dialog, another program): keys for the page.
    if (evento->type() == QEvent::WindowActivate)
        riportaFuoco();
    return esito;
}

void Korvantine::closeEvent(QCloseEvent *evento)
{
    // Only the menu's exit ends the program; a stray click on the close box must not drop
    // the link in the middle of a transfer.
    if (m_chiusuraConsentita)
        evento->accept();
    else
        evento->ignore();
}

Comunicazione *NuovaComunicazione(Korvantine &frame, const QList<PortaDisponibile> &porte)
{
    Programma &p = frame.programma();
    return new Comunicazione(
        frame, p.lingua, p.PercorsoApp, p.seriale, [&p] { return p.ApriPorta(); }, porte);
}

} // namespace kv
