#include "calibration/ui/T_Giri.h"
#include "base/Lingua.h"

#include "calibration/SequenzaTaratura.h"
#include "calibration/ui/StileTaratura.h"

#include <QApplication>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

#include <utility>

namespace kv {

namespace {

const QColor Blu(0x00, 0x00, 0xFF);
const QColor Rosso(0xFF, 0x00, 0x00);

} // namespace

// ---- GiriTeo

CampoGiri::CampoGiri(QWidget *parent) : QLineEdit(parent)
{
    setObjectName(QStringLiteral("GiriTeo"));
    setAlignment(Qt::AlignRight);
    setMaxLength(6);
    QFont f = font();
    f.setBold(true);
    f.setPixelSize(30);
    setFont(f);
    setFixedWidth(fontMetrics().horizontalAdvance(QStringLiteral("0000000")) + 24);
    setAutoFillBackground(true);
    colora(Qt::white, Qt::black);
}

void CampoGiri::colora(const QColor &sfondo, const QColor &testo)
{
    QPalette p = palette();
    p.setColor(QPalette::Base, sfondo);
    p.setColor(QPalette::Text, testo);
    // Selected text in reverse: what the next digit replaces shows as selected.
    p.setColor(QPalette::Highlight, testo);
    p.setColor(QPalette::HighlightedText, sfondo);
    setPalette(p);
}

void CampoGiri::segnaErrato()
{
    colora(Rosso, Qt::white);
}

void CampoGiri::segui(const QString &misura)
{
    setText(misura);
    m_segue = true;
}

void CampoGiri::keyPressEvent(QKeyEvent *evento)
{
    const int tasto = evento->key();
    const Qt::KeyboardModifiers modificatori =
        evento->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    if (tasto == Qt::Key_Return || tasto == Qt::Key_Enter) {
        focusNextChild();
        return;
    }
    if (evento->matches(QKeySequence::SelectAll))
        selectAll();
    if (modificatori != Qt::NoModifier)
        return;
    if (tasto == Qt::Key_Space) {
        clear();
        m_segue = false;
        emit digitato();
        return;
    }
    if (tasto == Qt::Key_Backspace || (tasto >= Qt::Key_0 && tasto <= Qt::Key_9)) {
        // Typed after the followed measurement, a digit would make 7812 out of 781 and 2.
        if (m_segue)
            clear();
        m_segue = false;
        QLineEdit::keyPressEvent(evento);
        colora(Blu, Qt::white);
        emit digitato();
    }
    // Anything else, a decimal point or comma among it, is dropped.
}

void CampoGiri::focusInEvent(QFocusEvent *evento)
{
    colora(Blu, Qt::white);
    setText(text().trimmed());
    QLineEdit::focusInEvent(evento);
    // The first digit typed replaces what the field holds, however it was reached.
    selectAll();
    m_selezionaAlRilascio = evento->reason() == Qt::MouseFocusReason;
}

void CampoGiri::mouseReleaseEvent(QMouseEvent *evento)
{
    QLineEdit::mouseReleaseEvent(evento);
    if (std::exchange(m_selezionaAlRilascio, false) && !hasSelectedText())
        selectAll();
}

void CampoGiri::focusOutEvent(QFocusEvent *evento)
{
    QLineEdit::focusOutEvent(evento);
    // A box over the page, or the page disabled for an exchange, is not the fitter leaving.
    if (evento->reason() == Qt::ActiveWindowFocusReason || evento->reason() == Qt::PopupFocusReason
        || !isEnabledTo(window()))
        return;
    colora(Qt::white, Qt::black);
    emit lasciato();
}

// ---- the page

T_Giri::T_Giri(SequenzaTaratura &sequenza, const Lingua &lingua, bool singola, QWidget *parent)
    : QWidget(parent)
    , m_sequenza(sequenza)
    , m_lingua(lingua)
    , m_segnalazione(CreaIstruzione(this))
    , m_boxGiri(new QGroupBox(this))
    , m_giriTeo(new CampoGiri(m_boxGiri))
    , m_giriReali(CreaValore(m_boxGiri, 6))
    , m_segnalazione1(CreaSegnalazione1(this))
    , m_conferma(CreaTasto(this, QStringLiteral("Conferma")))
    , m_avanti(CreaTasto(this, QStringLiteral("AvantiTar")))
    , m_esciTar(CreaTasto(this, QStringLiteral("EsciTar")))
    , m_esci(CreaTasto(this, QStringLiteral("Esci")))
{
    m_logica = std::make_unique<TaraturaGiri>(sequenza, singola, static_cast<VistaGiri &>(*this));
    setObjectName(m_logica->sezione());
    m_segnalazione->setObjectName(QStringLiteral("Segnalazione"));
    m_boxGiri->setObjectName(QStringLiteral("BoxGiri"));
    m_giriReali->setObjectName(QStringLiteral("GiriReali"));
    m_giriReali->setFixedWidth(m_giriTeo->width());

    auto *griglia = new QGridLayout(m_boxGiri);
    griglia->setHorizontalSpacing(14);
    griglia->setVerticalSpacing(14);
    for (int i = 0; i < 2; ++i) {
        auto *etichetta = new QLabel(m_boxGiri);
        etichetta->setObjectName(QStringLiteral("LabParametro_%1").arg(i));
        QFont f = etichetta->font();
        f.setPointSizeF(f.pointSizeF() * 1.4);
        etichetta->setFont(f);
        auto *misura = new QLabel(m_boxGiri);
        misura->setObjectName(QStringLiteral("Misura_%1").arg(i));
        misura->setFont(f);
        m_labParametro[static_cast<size_t>(i)] = etichetta;
        m_misura[static_cast<size_t>(i)] = misura;
        griglia->addWidget(etichetta, i, 0);
        griglia->addWidget(i == 0 ? static_cast<QWidget *>(m_giriTeo) : m_giriReali, i, 1);
        griglia->addWidget(misura, i, 2);
    }
    m_labParametro[0]->setBuddy(m_giriTeo);
    griglia->setColumnStretch(3, 1);

    auto *comandi = new QHBoxLayout;
    comandi->addWidget(m_conferma);
    comandi->addWidget(m_avanti);
    comandi->addStretch(1);
    comandi->addWidget(m_esciTar);
    comandi->addWidget(m_esci);

    auto *colonna = new QVBoxLayout(this);
    colonna->addWidget(m_segnalazione);
    colonna->addSpacing(12);
    colonna->addWidget(m_boxGiri);
    colonna->addStretch(1);
    colonna->addWidget(m_segnalazione1);
    colonna->addLayout(comandi);

    const Lingua &l = lingua;
    m_conferma->setText(ConTastoAlt(l.LeggiTesto("TASTI", "CONFERMA")));
    m_avanti->setText(ConTastoAlt(l.LeggiTesto("TASTI", "AVANTI")));
    m_esciTar->setText(ConTastoAlt(singola ? l.LeggiTesto("TASTI", "FINE") : l.LeggiTesto("TASTI", "ESCI")));
    m_esci->setText(ConTastoAlt(l.LeggiTesto("TASTI", "ESCI")));
    m_avanti->setVisible(!singola);
    m_esci->hide();

    connect(m_giriTeo, &CampoGiri::digitato, this, [this] { m_logica->tastoGiriTeo(); });
    connect(m_giriTeo, &CampoGiri::lasciato, this, [this] {
        if (const auto testo = m_logica->uscitaGiriTeo(m_giriTeo->text()))
            m_giriTeo->setText(*testo);
    });
    connect(m_conferma, &QPushButton::clicked, this, [this] { m_logica->Conferma(m_giriTeo->text()); });
    connect(m_avanti, &QPushButton::clicked, this, [this] { m_logica->AvantiTar(); });
    connect(m_esciTar, &QPushButton::clicked, this, [this] { m_logica->EsciTar(); });
    connect(m_esci, &QPushButton::clicked, this, [this] { m_logica->Esci(); });
    ScorciatoiaPagina(this, QKeySequence(Qt::Key_F2), {m_conferma});
    ScorciatoiaPagina(this, QKeySequence(Qt::Key_Escape), {m_esciTar, m_esci});
    auto *paginaSu = new QShortcut(QKeySequence(Qt::Key_PageUp), this);
    paginaSu->setContext(Qt::WindowShortcut);
    connect(paginaSu, &QShortcut::activated, this, [this] {
        if (m_avanti->isEnabled() && m_avanti->isVisible() && m_sequenza.TaraturaCompleta())
            m_avanti->click();
    });
}

T_Giri::~T_Giri()
{
    m_giriTeo->disconnect(this);
}

void T_Giri::carica()
{
    const auto numero = [](int i) { return QString::number(i); };
    for (int i = 0; i < 2; ++i) {
        m_labParametro[static_cast<size_t>(i)]->setText(testo(QStringLiteral("LABPARAMETRO.") + numero(i)));
        m_misura[static_cast<size_t>(i)]->setText(testo(QStringLiteral("MISURA.") + numero(i)));
    }
    m_logica->carica();
}

QString T_Giri::testo(const QString &chiave) const
{
    return m_lingua.LeggiTesto(m_logica->sezione(), chiave);
}

void T_Giri::hideEvent(QHideEvent *evento)
{
    QWidget::hideEvent(evento);
    if (!evento->spontaneous())
        m_logica->chiusa();
}

void T_Giri::mostraTitolo(const Messaggio &testo)
{
    setWindowTitle(m_lingua.testo(testo));
}

void T_Giri::mostraIstruzione(const Messaggio &testo)
{
    m_segnalazione->setText(m_lingua.testo(testo));
}

void T_Giri::mostraSegnalazione1(const Messaggio &testo)
{
    m_segnalazione1->setText(m_lingua.testo(testo));
}

void T_Giri::abilitaPagina(bool abilitata)
{
    if (abilitata == isEnabled())
        return;
    QWidget *fuoco = QApplication::focusWidget();
    setEnabled(abilitata);
    if (abilitata && (!fuoco || !isAncestorOf(fuoco))) {
        // Back where the fitter works: the field while it follows the engine, else the
        // next command.
        if (m_giriTeo->isVisibleTo(this) && !m_logica->giriTeoInserito())
            m_giriTeo->setFocus(Qt::OtherFocusReason);
        else if (m_avanti->isEnabled() && m_avanti->isVisibleTo(this))
            m_avanti->setFocus(Qt::OtherFocusReason);
        else if (m_conferma->isEnabled() && m_boxGiri->isVisibleTo(this))
            m_conferma->setFocus(Qt::OtherFocusReason);
        else
            m_esciTar->setFocus(Qt::OtherFocusReason);
    }
}

void T_Giri::uscitaEmergenza()
{
    m_esci->show();
    m_esci->setEnabled(true);
    m_esciTar->hide();
    m_esciTar->setEnabled(false);
    m_esci->setFocus(Qt::OtherFocusReason);
}

void T_Giri::mostraGiriReali(const QString &testo)
{
    m_giriReali->setText(testo);
}

bool T_Giri::giriTeoAttivo() const
{
    return m_giriTeo->hasFocus();
}

void T_Giri::mostraGiriTeo(const QString &testo)
{
    m_giriTeo->segui(testo);
}

void T_Giri::mostraBoxGiri(bool mostra)
{
    if (mostra == m_boxGiri->isVisibleTo(this))
        return;
    m_boxGiri->setVisible(mostra);
    if (mostra && isEnabled())
        m_giriTeo->setFocus(Qt::OtherFocusReason);
}

void T_Giri::abilitaConferma(bool abilitata)
{
    m_conferma->setEnabled(abilitata);
}

void T_Giri::fuocoConferma()
{
    m_conferma->setFocus(Qt::TabFocusReason);
}

void T_Giri::abilitaAvanti(bool abilitata)
{
    m_avanti->setEnabled(abilitata);
    if (abilitata)
        m_avanti->setFocus(Qt::OtherFocusReason);
}

void T_Giri::giriTeoNonValido()
{
    QApplication::beep();
    if (m_giriTeo->isEnabled())
        m_giriTeo->setFocus(Qt::OtherFocusReason);
    m_giriTeo->segnaErrato();
}

} // namespace kv
