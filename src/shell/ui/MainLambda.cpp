#include "shell/ui/MainLambda.h"
#include "base/Lingua.h"

#include "link/StatoEcu.h"
#include "shell/InfoProgramma.h"
#include "shell/StatoMenu.h"
#include "shell/ui/Korvantine.h"
#include "shell/ui/Logo.h"

#include <QApplication>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QVBoxLayout>

namespace kv {

namespace {

QColor daBgr(quint32 bgr)
{
    return QColor(static_cast<int>(bgr & 0xFF), static_cast<int>((bgr >> 8) & 0xFF),
                  static_cast<int>((bgr >> 16) & 0xFF));
}

// The option box is dark, so that the grey of the entries reads well and the red one stands out.
const QColor FondoOpzioni(0x1e, 0x28, 0x30);
const QColor FondoVoceAttiva(0x2a, 0x37, 0x42);
const QColor TestoDisabilitato(0x5c, 0x68, 0x72);
const QColor TestoTasto(0x7f, 0x8c, 0x96);

const char *const StileMenu = R"(
QPushButton[funzione="true"] {
    padding: 0.6em 0.4em; font-weight: bold;
    border: 1px solid #8795a1; border-radius: 5px;
    background: qlineargradient(x1:0, y1:0, x2:0, y2:1, stop:0 #ffffff, stop:1 #dde4ea);
    color: #1b2a36;
}
QPushButton[funzione="true"]:hover:!checked { background: #e6f0f8; }
QPushButton[funzione="true"]:checked {
    background: qlineargradient(x1:0, y1:0, x2:0, y2:1, stop:0 #1f5f8f, stop:1 #17476b);
    border-color: #123752; color: #ffffff;
}
QPushButton[funzione="true"]:focus { border: 2px solid #d08a1a; }
QPushButton[funzione="true"]:disabled { background: #eef1f3; color: #a3adb5; border-color: #c9d0d6; }
QGroupBox#BoxMenu {
    background: #1e2830; border: 1px solid #111a20; border-radius: 6px;
    padding: 0.6em 0.3em;
}
QLabel#Versione { color: #5f6b75; }
QPushButton#Uscita { padding: 0.45em 2.2em; }
)";

} // namespace

// ---- VoceOpzione

VoceOpzione::VoceOpzione(int indice, QWidget *parent) : QAbstractButton(parent), m_indice(indice)
{
    setObjectName(QStringLiteral("Opzioni_%1").arg(indice));
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    setAttribute(Qt::WA_Hover);
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize VoceOpzione::sizeHint() const
{
    const QFontMetrics fm(font());
    return {fm.horizontalAdvance(text()) + fm.averageCharWidth() * 16, fm.height() * 2};
}

QColor VoceOpzione::coloreTesto() const
{
    if (!isEnabled())
        return TestoDisabilitato;
    return daBgr(hasFocus() ? ColoreFuoco : ColoreNormale);
}

void VoceOpzione::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    const QRect r = rect();
    const int margine = fontMetrics().averageCharWidth() * 2;
    if (hasFocus() && isEnabled()) {
        p.fillRect(r, FondoVoceAttiva);
        p.fillRect(QRect(r.left(), r.top(), qMax(3, margine / 4), r.height()), daBgr(ColoreFuoco));
    }
    QFont f = font();
    f.setPointSizeF(f.pointSizeF() * 1.1);
    f.setBold(hasFocus() && isEnabled());
    p.setFont(f);
    p.setPen(coloreTesto());
    p.drawText(r.adjusted(margine, 0, -margine, 0), Qt::AlignVCenter | Qt::AlignLeft, text());

    // The key that reaches the entry from anywhere on the menu.
    QFont piccolo = font();
    piccolo.setPointSizeF(piccolo.pointSizeF() * 0.9);
    p.setFont(piccolo);
    p.setPen(isEnabled() ? TestoTasto : TestoDisabilitato);
    p.drawText(r.adjusted(margine, 0, -margine, 0), Qt::AlignVCenter | Qt::AlignRight,
               QStringLiteral("\u21E7F%1").arg(m_indice + 1));
}

void VoceOpzione::mouseMoveEvent(QMouseEvent *evento)
{
    if (isEnabled() && !hasFocus())
        setFocus(Qt::MouseFocusReason);
    QAbstractButton::mouseMoveEvent(evento);
}

void VoceOpzione::keyPressEvent(QKeyEvent *evento)
{
    if (evento->modifiers() == Qt::NoModifier || evento->modifiers() == Qt::KeypadModifier) {
        switch (evento->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            click();
            return;
        case Qt::Key_Up:
            focusNextPrevChild(false);
            return;
        case Qt::Key_Down:
            focusNextPrevChild(true);
            return;
        default:
            break;
        }
    }
    QAbstractButton::keyPressEvent(evento);
}

// ---- MainLambda

MainLambda::MainLambda(Korvantine &frame, StatoMenu &menu, const StatoEcu &ecu, const Lingua &lingua,
                       QWidget *parent)
    : QWidget(parent)
    , m_frame(frame)
    , m_menu(menu)
    , m_ecu(ecu)
    , m_lingua(lingua)
    , m_boxMenu(new QGroupBox(this))
    , m_uscita(new QPushButton(this))
    , m_logo(new Logo(this))
    , m_versione(new QLabel(this))
{
    setObjectName(QStringLiteral("MainLambda"));
    setStyleSheet(QLatin1String(StileMenu));
    const int u = fontMetrics().averageCharWidth();

    auto *funzioni = new QHBoxLayout;
    funzioni->setSpacing(u);
    funzioni->addWidget(m_logo);
    funzioni->addSpacing(u);
    for (int i = 0; i < Menu::NumeroFunzioni; ++i) {
        auto *tasto = new QPushButton(this);
        tasto->setObjectName(QStringLiteral("Funzione_%1").arg(i));
        tasto->setProperty("funzione", true);
        tasto->setCheckable(true);
        tasto->setToolTip(QStringLiteral("F%1").arg(i + 1));
        tasto->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
        tasto->setMinimumHeight(fontMetrics().height() * 3);
        connect(tasto, &QPushButton::clicked, this, [this, i] {
            ScegliFunzione(i);
            fuocoSullaPrimaVoce();
        });
        funzioni->addWidget(tasto, 1);
        m_funzione[static_cast<size_t>(i)] = tasto;
    }

    m_boxMenu->setObjectName(QStringLiteral("BoxMenu"));
    m_boxMenu->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
    auto *voci = new QVBoxLayout(m_boxMenu);
    voci->setSpacing(0);
    for (int i = 0; i < Menu::NumeroOpzioni; ++i) {
        auto *voce = new VoceOpzione(i, m_boxMenu);
        connect(voce, &VoceOpzione::clicked, this, [this, i] { cliccaOpzione(i); });
        voci->addWidget(voce);
        m_opzioni[static_cast<size_t>(i)] = voce;
    }
    m_boxMenu->hide();
    m_boxMenu->setEnabled(false);
    auto *centro = new QHBoxLayout;
    centro->addStretch(1);
    centro->addWidget(m_boxMenu, 4);
    centro->addStretch(1);

    m_uscita->setObjectName(QStringLiteral("Uscita"));
    connect(m_uscita, &QPushButton::clicked, this, [this] { ScegliFunzione(Menu::FunzioneUscita); });
    m_versione->setObjectName(QStringLiteral("Versione"));
    connect(m_logo, &Logo::clicked, this, [this] { m_frame.apriPagina(IdPagina::Infor); });

    auto *fondo = new QHBoxLayout;
    fondo->addWidget(m_versione, 1, Qt::AlignBottom);
    fondo->addWidget(m_uscita, 0, Qt::AlignBottom);

    auto *colonna = new QVBoxLayout(this);
    colonna->setContentsMargins(3 * u, 2 * u, 3 * u, 2 * u);
    colonna->setSpacing(2 * u);
    colonna->addLayout(funzioni);
    colonna->addLayout(centro);
    colonna->addStretch(1);
    colonna->addLayout(fondo);

    m_versione->setText(InfoProgramma::TestoVersione(m_lingua.LeggiTesto("MainLambda", "VERSIONE")));
    AggiornaMenu();
}

void MainLambda::AggiornaMenu()
{
    m_menu.ecuCambiata(m_ecu);
    setWindowTitle(m_lingua.LeggiTesto("KORVANTINE", "CAPTION").trimmed());
    for (int i = 0; i < Menu::NumeroFunzioni; ++i) {
        funzione(i)->setText(m_lingua.LeggiTesto("MainLambda", Menu::ChiaveFunzione(i)).trimmed());
        funzione(i)->setEnabled(Menu::FunzioneAbilitata(i, m_ecu));
    }
    m_uscita->setText(m_lingua.LeggiTesto("MainLambda", "USCITA").trimmed());
    ScegliFunzione(static_cast<int>(m_menu.FunzioneScelta()));
}

void MainLambda::ScegliFunzione(int indice)
{
    setEnabled(!m_frame.paginaSopra());
    const bool valido = indice >= 0 && indice < Menu::NumeroFunzioni;
    if (indice != static_cast<int>(m_menu.FunzioneScelta()) || !valido) {
        m_boxMenu->hide();
        m_boxMenu->setEnabled(false);
    }
    if (valido || indice == -1)
        m_menu.scegli(static_cast<Funzione>(indice));
    for (int i = 0; i < Menu::NumeroFunzioni; ++i)
        funzione(i)->setChecked(valido && i == indice);

    if (valido) {
        m_voci = Menu::Opzioni(indice, m_ecu, m_menu.ModoAssistenza(), [this](const QString &chiave) {
            return m_lingua.LeggiTesto("MainLambda", chiave);
        });
        for (int i = 0; i < Menu::NumeroOpzioni; ++i) {
            const Menu::Voce &v = m_voci[static_cast<size_t>(i)];
            VoceOpzione *voce = opzione(i);
            voce->setText(v.caption);
            voce->setVisible(v.visibile);
            voce->setEnabled(v.abilitata);
        }
        m_boxMenu->setEnabled(true);
        m_boxMenu->show();
    } else {
        m_voci.clear();
        if (indice == Menu::FunzioneUscita)
            m_frame.Uscita();
    }
}

void MainLambda::daiFuoco()
{
    // Back from a page, the keys are where the fitter left them: on the entry chosen last,
    // or on its function when that entry is gone.
    const int scelta = static_cast<int>(m_menu.FunzioneScelta());
    if (scelta >= 0 && scelta < Menu::NumeroFunzioni) {
        const auto [funzioneVoce, indice] = m_frame.voceScelta();
        if (funzioneVoce == scelta && indice >= 0 && indice < Menu::NumeroOpzioni && !m_boxMenu->isHidden()) {
            VoceOpzione *voce = opzione(indice);
            if (!voce->isHidden() && voce->isEnabled()) {
                voce->setFocus(Qt::OtherFocusReason);
                return;
            }
        }
        if (funzione(scelta)->isEnabled()) {
            funzione(scelta)->setFocus(Qt::OtherFocusReason);
            return;
        }
    }
    for (QPushButton *tasto : m_funzione) {
        if (tasto->isEnabled()) {
            tasto->setFocus(Qt::OtherFocusReason);
            return;
        }
    }
    m_uscita->setFocus(Qt::OtherFocusReason);
}

void MainLambda::fuocoSullaPrimaVoce()
{
    // A function chosen by its key or a click hands the keys to its box: Up, Down and Enter
    // work there at once, and Enter cannot choose another function by mistake.
    if (m_boxMenu->isHidden())
        return;
    for (VoceOpzione *voce : m_opzioni) {
        if (!voce->isHidden() && voce->isEnabled()) {
            voce->setFocus(Qt::OtherFocusReason);
            return;
        }
    }
}

void MainLambda::cliccaOpzione(int indice)
{
    // A box opened by a page's load runs its own event loop: a second click must not open
    // a second page behind it.
    if (m_inApertura || indice < 0 || indice >= static_cast<int>(m_voci.size()))
        return;
    const Menu::Voce voce = m_voci[static_cast<size_t>(indice)];
    if (!voce.abilitata)
        return;
    m_frame.ricordaVoce(static_cast<int>(m_menu.FunzioneScelta()), indice);
    QScopedValueRollback inApertura(m_inApertura, true);
    // A page comes with its own unit, which puts it in the frame's registry; an entry whose
    // unit is not in this build says so rather than doing nothing.
    const bool pronta = voce.pagina == IdPagina::SequenzaTaratura ? m_frame.sequenzaTaraturaDisponibile()
                                                                  : m_frame.paginaRegistrata(voce.pagina);
    if (!pronta) {
        const Lingua &l = m_lingua;
        m_frame.MostraMsg(voce.caption + QStringLiteral("\n\n")
                              + l.LeggiTesto("KORVANTINE", "NON_DISPONIBILE"),
                          64, l.LeggiTesto("SEGNALAZIONI", "TITOLO_1"));
        return;
    }
    if (voce.pagina == IdPagina::SequenzaTaratura) {
        m_frame.avviaSequenzaTaratura();
        return;
    }
    m_frame.apriPagina(voce.pagina);
}

void MainLambda::esc()
{
    if (!m_boxMenu->isHidden()) {
        // The box goes, the function stays chosen: its key shows the box again.
        const bool fuocoNelBox = m_boxMenu->isAncestorOf(QApplication::focusWidget());
        m_boxMenu->hide();
        m_boxMenu->setEnabled(false);
        const int scelta = static_cast<int>(m_menu.FunzioneScelta());
        if (fuocoNelBox && scelta >= 0 && scelta < Menu::NumeroFunzioni && funzione(scelta)->isEnabled())
            funzione(scelta)->setFocus(Qt::OtherFocusReason);
        return;
    }
    if (m_inDomanda)
        return;
    QScopedValueRollback inDomanda(m_inDomanda, true);
    const Lingua &l = m_lingua;
    // No is the default, so that a second Esc or an Enter does not end the program.
    const int risposta = m_frame.MostraMsg(l.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_50"), 36,
                                           l.LeggiTesto("SEGNALAZIONI", "TITOLO_1"), 1);
    if (risposta == 6)
        ScegliFunzione(Menu::FunzioneUscita);
}

void MainLambda::keyPressEvent(QKeyEvent *evento)
{
    const Qt::KeyboardModifiers modificatori =
        evento->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    const int tasto = evento->key();
    if (modificatori == Qt::NoModifier && tasto >= Qt::Key_F1 && tasto <= Qt::Key_F5) {
        QPushButton *f = funzione(tasto - Qt::Key_F1);
        if (f->isEnabled())
            f->click();
        return;
    }
    if (modificatori == Qt::ShiftModifier && tasto >= Qt::Key_F1 && tasto <= Qt::Key_F12) {
        VoceOpzione *voce = opzione(tasto - Qt::Key_F1);
        if (voce->isEnabled() && !voce->isHidden())
            voce->click();
        return;
    }
    if (modificatori == Qt::NoModifier && tasto == Qt::Key_Escape) {
        esc();
        return;
    }
    QWidget::keyPressEvent(evento);
}

} // namespace kv
