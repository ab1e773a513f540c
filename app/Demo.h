#pragma once

#include <QPointer>
#include <QString>
#include <QThread>

#include <functional>

namespace kv::sim {
class EcuSimulata;
struct OpzioniEcu;
} // namespace kv::sim

namespace kv {

class Lingua;

// The simulated ECU of the demo, on a pseudo-terminal, in a thread of its own so that the
// windows never slow its stream down.
class Demo
{
public:
    Demo();
    ~Demo();
    Demo(const Demo &) = delete;
    Demo &operator=(const Demo &) = delete;

    // False with errore filled when the pseudo-terminal cannot be had. Without application the
    // ECU has only its boot loader, which sends 'g' and waits to be programmed.
    bool avvia(QString &errore, bool applicazione = true);
    // The same with options of one's own (the benchmarks pace the bytes); prepara sees the
    // ECU before it leaves for its thread, to hook to its signals with direct connections.
    bool avvia(QString &errore, const sim::OpzioniEcu &opzioni,
               const std::function<void(sim::EcuSimulata &)> &prepara = {});
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

// A release to flash in the demo, made from the simulator's own software with a newer vehicle
// text: an S19 file in SOFTWARE/FILES19 and its row in SOFTWARE.MDB, put there only when the
// folder holds no release at all. Returns the release's name, or empty when nothing was added.
QString PreparaRilascioDemo(const QString &percorsoApp, const Lingua &lingua);

} // namespace kv
