#include "shell/ui/Comunicazione.h"
#include "base/Lingua.h"

#include "base/Configurazione.h"
#include "shell/ui/Korvantine.h"
#include "shell/ui/Stile.h"

#include <QApplication>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QShortcut>
#include <QVBoxLayout>

namespace kv {

namespace {

const qint32 Velocita[] = {4800, 9600, 19200, 38400};

// What each list entry writes as "Porta".
constexpr int RuoloValore = Qt::UserRole;

void rendiNormale(QListWidget *elenco)
{
    elenco->setPalette(QPalette());
}

} // namespace

Comunicazione::Comunicazione(Korvantine &frame, const Lingua &lingua, const QString &percorsoApp,
                             ImpSeriale &seriale, std::function<bool()> apriPorta,
                             const QList<PortaDisponibile> &porte, QWidget *parent)
    : QWidget(parent)
    , m_frame(frame)
    , m_lingua(lingua)
    , m_percorsoIni(PercorsoIni(percorsoApp))
    , m_percorsi(PercorsiDi(porte))
    , m_seriale(seriale)
    , m_apriPorta(std::move(apriPorta))
    , m_seriali(new QListWidget(this))
    , m_baud(new QListWidget(this))
    , m_dispositivo(new QLineEdit(this))
    , m_salva(new QPushButton(this))
    , m_esci(new QPushButton(this))
{
    setObjectName(QStringLiteral("Comunicazione"));
    const Lingua &l = lingua;
    setWindowTitle(l.LeggiTesto("Comunicazione", "CAPTION").trimmed());

    m_seriali->setObjectName(QStringLiteral("Seriali"));
    m_baud->setObjectName(QStringLiteral("Baud"));
    m_dispositivo->setObjectName(QStringLiteral("Dispositivo"));
    m_dispositivo->setPlaceholderText(QStringLiteral("/dev/ttyUSB0"));
    m_salva->setObjectName(QStringLiteral("Salva"));
    m_esci->setObjectName(QStringLiteral("Esci"));

    // "COMn" is the n-th port the system reports; the entry shows which one that is now.
    for (const VocePorta &v : ElencoPorte(porte)) {
        auto *voce = new QListWidgetItem(v.testo, m_seriali);
        voce->setData(RuoloValore, v.valore);
    }
    for (const qint32 v : Velocita) {
        auto *voce = new QListWidgetItem(QString::number(v), m_baud);
        voce->setData(RuoloValore, v);
    }

    auto *etichettaPorta = new QLabel(l.LeggiTesto("Comunicazione", "LABCOM.0").trimmed(), this);
    auto *etichettaBaud = new QLabel(l.LeggiTesto("Comunicazione", "LABCOM.1").trimmed(), this);
    etichettaPorta->setObjectName(QStringLiteral("LabCom_0"));
    etichettaBaud->setObjectName(QStringLiteral("LabCom_1"));
    etichettaPorta->setBuddy(m_seriali);
    etichettaBaud->setBuddy(m_baud);
    auto *etichettaDispositivo =
        new QLabel(ConTastoAlt(l.LeggiTesto("Comunicazione", "LABCOM.2").trimmed()), this);
    etichettaDispositivo->setObjectName(QStringLiteral("LabCom_2"));
    etichettaDispositivo->setBuddy(m_dispositivo);
    etichettaDispositivo->setWordWrap(true);
    auto *segnalazione = new QLabel(l.LeggiTesto("Comunicazione", "SEGNALAZIONE.0").trimmed(), this);
    segnalazione->setObjectName(QStringLiteral("Segnalazione"));
    segnalazione->setWordWrap(true);
    const QString suggerimento = l.LeggiTesto("Comunicazione", "PARAMETRICOM.TOOLTIPTEXT").trimmed();
    m_seriali->setToolTip(suggerimento + QStringLiteral(" = COM1"));
    m_baud->setToolTip(suggerimento + QStringLiteral(" = 9600"));
    m_salva->setText(l.LeggiTesto("TASTI", "SALVA").trimmed());
    m_esci->setText(l.LeggiTesto("TASTI", "ESCI").trimmed());
    m_salva->setToolTip(QStringLiteral("F2"));
    m_esci->setToolTip(QStringLiteral("Esc"));

    const int u = fontMetrics().averageCharWidth();
    m_seriali->setMinimumWidth(u * 48);
    m_baud->setMinimumWidth(u * 14);
    m_baud->setMaximumWidth(u * 22);
    DimensionaElenco(m_seriali, 14);
    DimensionaElenco(m_baud, 4);

    auto *griglia = new QGridLayout;
    griglia->setHorizontalSpacing(3 * u);
    griglia->addWidget(etichettaPorta, 0, 0);
    griglia->addWidget(etichettaBaud, 0, 1);
    griglia->addWidget(m_seriali, 1, 0, Qt::AlignTop);
    griglia->addWidget(m_baud, 1, 1, Qt::AlignTop);
    griglia->addWidget(etichettaDispositivo, 2, 0);
    griglia->addWidget(m_dispositivo, 3, 0);

    auto *tasti = new QHBoxLayout;
    tasti->addStretch(1);
    tasti->addWidget(m_salva);
    tasti->addWidget(m_esci);

    auto *riquadro = new QWidget(this);
    auto *colonna = new QVBoxLayout(riquadro);
    colonna->setSpacing(2 * u);
    colonna->addWidget(CreaIntestazione(windowTitle(), riquadro));
    colonna->addWidget(segnalazione);
    colonna->addLayout(griglia);
    colonna->addLayout(tasti);
    colonna->addStretch(1);
    riquadro->setMaximumWidth(u * 110);

    auto *esterno = new QHBoxLayout(this);
    esterno->setContentsMargins(3 * u, 2 * u, 3 * u, 2 * u);
    esterno->addStretch(1);
    esterno->addWidget(riquadro, 6);
    esterno->addStretch(1);

    // Select what the settings hold now; a value no entry shows leaves the list unselected.
    leggiImpSeriale();
    const QString attuale =
        m_seriale.Porta.startsWith(u'/') ? m_seriale.Porta : QStringLiteral("COM%1").arg(m_seriale.PortaCom);
    for (int i = 0; i < m_seriali->count(); ++i) {
        if (m_seriali->item(i)->data(RuoloValore).toString() == attuale) {
            m_seriali->setCurrentRow(i);
            break;
        }
    }
    // A device the system does not list (not plugged in, or no serial port to it) stands typed.
    if (m_seriali->selectedItems().isEmpty() && attuale.startsWith(u'/'))
        m_dispositivo->setText(attuale);
    for (int i = 0; i < m_baud->count(); ++i) {
        if (m_baud->item(i)->data(RuoloValore).toInt() == m_seriale.VelocitaCom)
            m_baud->setCurrentRow(i);
    }

    connect(m_salva, &QPushButton::clicked, this, &Comunicazione::Salva);
    connect(m_esci, &QPushButton::clicked, this, &Comunicazione::Esci);
    // The port is either chosen in the list or typed: one clears the other.
    connect(m_seriali, &QListWidget::itemSelectionChanged, this, [this] {
        rendiNormale(m_seriali);
        if (!m_seriali->selectedItems().isEmpty())
            m_dispositivo->clear();
    });
    connect(m_dispositivo, &QLineEdit::textEdited, this, [this](const QString &testo) {
        if (!testo.trimmed().isEmpty())
            m_seriali->clearSelection();
    });
    connect(m_dispositivo, &QLineEdit::returnPressed, this, &Comunicazione::Salva);
    connect(m_baud, &QListWidget::itemSelectionChanged, this, [this] { rendiNormale(m_baud); });
    auto *f2 = new QShortcut(QKeySequence(Qt::Key_F2), this, this, &Comunicazione::Salva);
    auto *esc = new QShortcut(QKeySequence(Qt::Key_Escape), this, this, &Comunicazione::Esci);
    f2->setContext(Qt::WidgetWithChildrenShortcut);
    esc->setContext(Qt::WidgetWithChildrenShortcut);
    setFocusProxy(m_seriali);
}

void Comunicazione::leggiImpSeriale()
{
    m_seriale = LeggiImpSeriale(m_percorsoIni, m_percorsi);
}

void Comunicazione::segnalaMancante(QListWidget *elenco)
{
    QApplication::beep();
    QPalette rossa = elenco->palette();
    rossa.setColor(QPalette::Text, QColor(0xFF, 0, 0));
    elenco->setPalette(rossa);
    elenco->setFocus(Qt::OtherFocusReason);
}

void Comunicazione::Salva()
{
    // A message box of this save runs its own event loop: no second save may start in it.
    if (m_inSalvataggio || !m_frame.paginaAperta(this))
        return;
    QScopedValueRollback inSalvataggio(m_inSalvataggio, true);
    const QList<QListWidgetItem *> porta = m_seriali->selectedItems();
    const QList<QListWidgetItem *> baud = m_baud->selectedItems();
    const QString digitato = m_dispositivo->text().trimmed();
    if (porta.isEmpty() && digitato.isEmpty()) {
        segnalaMancante(m_seriali);
        return;
    }
    if (porta.isEmpty()) {
        const EsitoDispositivo esito = ControllaDispositivo(digitato);
        if (esito != EsitoDispositivo::Valido) {
            const QString chiave = esito == EsitoDispositivo::NonPercorso ? QStringLiteral("SEGNALAZIONE.1")
                                                                          : QStringLiteral("SEGNALAZIONE.2");
            m_frame.MostraMsg(
                m_lingua.LeggiTesto("Comunicazione", chiave).replace(QStringLiteral("XXX"), digitato), 48,
                m_lingua.LeggiTesto("SEGNALAZIONI", "TITOLO_1"));
            if (m_frame.paginaAperta(this))
                m_dispositivo->setFocus(Qt::OtherFocusReason);
            return;
        }
    }
    if (baud.isEmpty()) {
        segnalaMancante(m_baud);
        return;
    }
    if (!scriviImpSeriale(m_percorsoIni,
                          porta.isEmpty() ? digitato : porta.first()->data(RuoloValore).toString(),
                          baud.first()->data(RuoloValore).toInt())) {
        // Nothing was written and the old file is whole: the fitter may try again.
        m_frame.MostraMsg(m_lingua.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_19"), 16,
                          m_lingua.LeggiTesto("SEGNALAZIONI", "TITOLO_2"));
        return;
    }
    leggiImpSeriale();
    // A port that fails is reported by the frame; the page closes all the same.
    m_apriPorta();
    m_frame.aggiornaStatoCollegamento();
    m_frame.ChiudiPagina(this);
}

void Comunicazione::Esci()
{
    m_frame.ChiudiPagina(this);
}

} // namespace kv
