#include "shell/ui/SceltaLingua.h"
#include "base/Lingua.h"

#include "base/Configurazione.h"
#include "base/FileIni.h"
#include "shell/ui/Korvantine.h"
#include "shell/ui/Stile.h"

#include <QApplication>
#include <QDir>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QShortcut>
#include <QVBoxLayout>

namespace kv {

namespace {

const QString Estensione = QStringLiteral(".LNG");

QString confrontabile(const QString &nome)
{
    return nome.trimmed().toUpper();
}

} // namespace

SceltaLingua::SceltaLingua(Korvantine &frame, Lingua &lingua, const QString &percorsoApp, QWidget *parent)
    : QWidget(parent)
    , m_frame(frame)
    , m_lingua(lingua)
    , m_percorsoApp(percorsoApp)
    , m_elenco(new QListWidget(this))
{
    setObjectName(QStringLiteral("SceltaLingua"));
    const Lingua &l = lingua;
    setWindowTitle(l.LeggiTesto("SceltaLingua", "CAPTION").trimmed());
    m_elenco->setObjectName(QStringLiteral("ElencoLingue"));

    // The folder's files as they are: the list of languages is not kept anywhere else.
    const QDir cartella(percorsoApp.isEmpty() ? QStringLiteral("/") : percorsoApp);
    const QStringList file = cartella.entryList(QDir::Files, QDir::Name | QDir::IgnoreCase);
    for (const QString &nome : file) {
        if (nome.size() <= Estensione.size() || !nome.endsWith(Estensione, Qt::CaseInsensitive))
            continue;
        // Each language by its own name, as its file gives it; the file's name otherwise.
        Lingua questa(percorsoApp);
        questa.impostaCartelleDistribuite(l.cartelleDistribuite());
        questa.LinguaCorrente = nome.chopped(Estensione.size());
        const QString proprio =
            questa.LeggiTesto(QStringLiteral("SceltaLingua"), QStringLiteral("NOME")).trimmed();
        auto *voce = new QListWidgetItem(proprio.isEmpty() ? nome : proprio, m_elenco);
        voce->setData(Qt::UserRole, questa.LinguaCorrente);
        voce->setToolTip(nome);
        if (confrontabile(questa.LinguaCorrente) == confrontabile(l.LinguaCorrente))
            m_elenco->setCurrentItem(voce);
    }

    auto *etichetta = new QLabel(l.LeggiTesto("SceltaLingua", "LABLINGUA.0").trimmed(), this);
    etichetta->setObjectName(QStringLiteral("LabLingua_0"));
    etichetta->setBuddy(m_elenco);
    auto *scegli = new QPushButton(l.LeggiTesto("TASTI", "SCEGLI").trimmed(), this);
    auto *esci = new QPushButton(l.LeggiTesto("TASTI", "ESCI").trimmed(), this);
    scegli->setObjectName(QStringLiteral("Scegli"));
    esci->setObjectName(QStringLiteral("Esci"));
    esci->setToolTip(QStringLiteral("Esc"));

    const int u = fontMetrics().averageCharWidth();
    auto *tasti = new QHBoxLayout;
    tasti->addStretch(1);
    tasti->addWidget(scegli);
    tasti->addWidget(esci);
    auto *riquadro = new QWidget(this);
    riquadro->setMaximumWidth(u * 60);
    DimensionaElenco(m_elenco, 12);
    auto *colonna = new QVBoxLayout(riquadro);
    colonna->setSpacing(2 * u);
    colonna->addWidget(CreaIntestazione(windowTitle(), riquadro));
    colonna->addWidget(etichetta);
    colonna->addWidget(m_elenco);
    colonna->addLayout(tasti);
    colonna->addStretch(1);

    auto *esterno = new QHBoxLayout(this);
    esterno->setContentsMargins(3 * u, 2 * u, 3 * u, 2 * u);
    esterno->addStretch(1);
    esterno->addWidget(riquadro, 3);
    esterno->addStretch(1);

    connect(scegli, &QPushButton::clicked, this, &SceltaLingua::Scegli);
    connect(esci, &QPushButton::clicked, this, &SceltaLingua::Esci);
    connect(m_elenco, &QListWidget::itemActivated, this, &SceltaLingua::Scegli);
    auto *tastoEsc = new QShortcut(QKeySequence(Qt::Key_Escape), this, this, &SceltaLingua::Esci);
    tastoEsc->setContext(Qt::WidgetWithChildrenShortcut);
    setFocusProxy(m_elenco);
}

void SceltaLingua::Scegli()
{
    if (m_inScelta || !m_frame.paginaAperta(this))
        return;
    QScopedValueRollback inScelta(m_inScelta, true);
    Lingua &l = m_lingua;
    const QList<QListWidgetItem *> scelta = m_elenco->selectedItems();
    if (scelta.isEmpty()) {
        QApplication::beep();
        m_elenco->setFocus(Qt::OtherFocusReason);
    } else {
        const QString nome = scelta.first()->data(Qt::UserRole).toString();
        if (confrontabile(nome) == confrontabile(l.LinguaCorrente)) {
            m_frame.MostraMsg(l.LeggiTesto("SceltaLingua", "SEGNALAZIONE.0"), 64,
                              l.LeggiTesto("SEGNALAZIONI", "TITOLO_1"));
            if (!m_frame.paginaAperta(this))
                return;
        } else {
            l.LinguaCorrente = nome;
            emit linguaCambiata();
        }
    }
    // Written in every case, as the program always did: with no choice it is the same language.
    FileIni::scrivi(PercorsoIni(m_percorsoApp), QStringLiteral("IMPOSTAZIONI"), QStringLiteral("Lingua"),
                    l.LinguaCorrente);
    m_frame.ChiudiPagina(this);
}

void SceltaLingua::Esci()
{
    m_frame.ChiudiPagina(this);
}

} // namespace kv
