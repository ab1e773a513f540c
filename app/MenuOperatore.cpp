#include "MenuOperatore.h"
#include "base/Lingua.h"

#include "Demo.h"

#include "shell/Programma.h"
#include "shell/ui/Korvantine.h"

#include <QMenu>
#include <QShortcut>

namespace kv {

namespace {

struct Azione
{
    const char *chiave;  // of section DEMO
    const char *comando; // for the simulator
    QKeyCombination tasto;
};

const Azione Azioni[] = {
    {"OPERATORE.0", "pedal rest", Qt::CTRL | Qt::SHIFT | Qt::Key_R},
    {"OPERATORE.1", "pedal full", Qt::CTRL | Qt::SHIFT | Qt::Key_F},
    {"OPERATORE.2", "probe 0", Qt::CTRL | Qt::SHIFT | Qt::Key_0},
    {"OPERATORE.3", "probe 1", Qt::CTRL | Qt::SHIFT | Qt::Key_1},
};

} // namespace

void InstallaMenuOperatore(Korvantine &frame, Demo &demo)
{
    const Lingua &lingua = frame.programma().lingua;
    for (const Azione &a : Azioni) {
        // Heard over the pages and the boxes alike: the car does not wait for the screen.
        auto *s = new QShortcut(QKeySequence(a.tasto), &frame);
        s->setContext(Qt::ApplicationShortcut);
        const QString comando = QString::fromLatin1(a.comando);
        QObject::connect(s, &QShortcut::activated, &frame, [&demo, comando] { demo.operatore(comando); });
    }
    auto *menu = new QShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_E), &frame);
    menu->setContext(Qt::ApplicationShortcut);
    QObject::connect(menu, &QShortcut::activated, &frame, [&frame, &demo, &lingua] {
        QMenu m(&frame);
        m.setTitle(lingua.LeggiTesto("DEMO", "CAPTION"));
        m.addSection(lingua.LeggiTesto("DEMO", "CAPTION"));
        for (const Azione &a : Azioni) {
            QAction *azione = m.addAction(lingua.LeggiTesto(QStringLiteral("DEMO"), QLatin1String(a.chiave)));
            azione->setShortcut(QKeySequence(a.tasto));
            const QString comando = QString::fromLatin1(a.comando);
            QObject::connect(azione, &QAction::triggered, &frame,
                             [&demo, comando] { demo.operatore(comando); });
        }
        m.addSeparator();
        // What the outside rev counter shows, for the true RPM the calibration asks for.
        // Left enabled, to be read easily; choosing it just closes the menu.
        m.addAction(lingua.LeggiTesto("DEMO", "CONTAGIRI")
                        .replace(QLatin1String("XXX"), QString::number(demo.giriContagiri())));
        m.exec(frame.mapToGlobal(frame.rect().center()));
    });
}

} // namespace kv
