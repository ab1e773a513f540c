#pragma once

#include <QPointer>
#include <QString>
#include <QThread>

namespace kv {

namespace sim {
class EcuSimulata;
}

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

    // One of the fitter's actions at the car ("pedal rest", "probe 1": see ComandiOperatore),
    // run in the simulator's thread; the answer comes back when it has run.
    QString operatore(const QString &comando);
    // What a rev counter at the car reads now, for the true RPM of the RPM calibration.
    int giriContagiri();

private:
    QThread m_thread;
    QString m_percorso;
    QPointer<sim::EcuSimulata> m_ecu;
};

} // namespace kv
