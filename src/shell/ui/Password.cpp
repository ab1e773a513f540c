#include "shell/ui/Password.h"
#include "base/Lingua.h"

#include "shell/Menu.h"
#include "shell/ui/Korvantine.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QVBoxLayout>

namespace kv {

Password::Password(Korvantine &frame, StatoMenu &menu, const Lingua &lingua)
    : QDialog(&frame)
    , m_frame(frame)
    , m_menu(menu)
    , m_lingua(lingua)
    , m_parola(new QLineEdit(this))
{
    setObjectName(QStringLiteral("Password"));
    const Lingua &l = lingua;
    setWindowTitle(l.LeggiTesto("Password", "CAPTION").trimmed());

    m_parola->setObjectName(QStringLiteral("Parola"));
    m_parola->setEchoMode(QLineEdit::Password);
    m_parola->clear();
    m_parola->installEventFilter(this);
    auto *etichetta = new QLabel(l.LeggiTesto("Password", "LABPAROLA.0").trimmed(), this);
    etichetta->setBuddy(m_parola);

    auto *ok = new QPushButton(l.LeggiTesto("TASTI", "OK").trimmed(), this);
    auto *esci = new QPushButton(l.LeggiTesto("TASTI", "ESCI").trimmed(), this);
    ok->setObjectName(QStringLiteral("TastoOK"));
    esci->setObjectName(QStringLiteral("Esci"));
    connect(ok, &QPushButton::clicked, this, &Password::TastoOK);
    connect(esci, &QPushButton::clicked, this, &QDialog::reject);

    const int u = fontMetrics().averageCharWidth();
    auto *tasti = new QHBoxLayout;
    tasti->addStretch(1);
    tasti->addWidget(ok);
    tasti->addWidget(esci);
    auto *colonna = new QVBoxLayout(this);
    colonna->setContentsMargins(3 * u, 2 * u, 3 * u, 2 * u);
    colonna->addWidget(etichetta);
    colonna->addWidget(m_parola);
    colonna->addSpacing(u);
    colonna->addLayout(tasti);
    setMinimumWidth(u * 45);
    m_parola->setFocus(Qt::OtherFocusReason);
    // Esc and the close box reject the box; the frame hears finished() and enables the menu.
}

bool Password::eventFilter(QObject *oggetto, QEvent *evento)
{
    // Enter in the word moves on to the next key, as a Tab would, rather than confirming.
    if (oggetto == m_parola && evento->type() == QEvent::KeyPress) {
        const int tasto = static_cast<QKeyEvent *>(evento)->key();
        if (tasto == Qt::Key_Return || tasto == Qt::Key_Enter) {
            focusNextChild();
            return true;
        }
    }
    return QDialog::eventFilter(oggetto, evento);
}

void Password::TastoOK()
{
    if (m_inVerifica || !m_frame.paginaAperta(this))
        return;
    QScopedValueRollback inVerifica(m_inVerifica, true);
    if (Menu::VerificaParola(m_menu, m_parola->text()) == Menu::EsitoParola::Errata) {
        m_frame.MostraMsg(m_lingua.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_22"), 48,
                          m_lingua.LeggiTesto("SEGNALAZIONI", "TITOLO_1"));
    }
    // The list on view is not rebuilt: the new mode shows when a function is next chosen.
    m_frame.ChiudiPagina(this);
}

} // namespace kv
