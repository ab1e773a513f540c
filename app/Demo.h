#pragma once

#include <QString>
#include <QThread>

namespace kv {

// The simulated ECU of the demo, on a pseudo-terminal, in a thread of its own so that the
// windows never slow its stream down.
class Demo
{
public:
    Demo();
    ~Demo();
    Demo(const Demo &) = delete;
    Demo &operator=(const Demo &) = delete;

    // False with errore filled when the pseudo-terminal cannot be had.
    bool avvia(QString &errore);
    // The device the program opens in place of the port of the settings.
    QString percorso() const { return m_percorso; }

private:
    QThread m_thread;
    QString m_percorso;
};

} // namespace kv
