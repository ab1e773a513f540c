#pragma once

#include <QObject>

class QSocketNotifier;

namespace kv::sim {

// An alarm at an absolute time of the monotonic clock, to the microsecond and better.
// QTimer counts whole milliseconds, while a byte takes 260 us on the line at 38400 baud:
// pacing by a millisecond tick would put the simulator's own rounding into every figure that
// is meant to measure the tester. Deadlines are absolute, so a late wake-up does not push the
// ones after it. Lives in the thread that runs its event loop, and moves with its parent.
class Sveglia : public QObject
{
    Q_OBJECT
public:
    explicit Sveglia(QObject *parent = nullptr);
    ~Sveglia() override;

    // Now on the clock the deadlines are given in, in nanoseconds.
    static qint64 adessoNs();

    // Rings once at that time; one already past rings at the next turn of the event loop.
    void puntaA(qint64 scadenzaNs);
    void ferma();
    bool attiva() const { return m_attiva; }

signals:
    void suonata();

private:
    void scaduta();

    int m_fd = -1;
    QSocketNotifier *m_notificatore = nullptr;
    bool m_attiva = false;
};

// Real-time scheduling for the calling thread, so that the deadlines above are met also on a
// busy machine: a benchmark's simulated ECU should be as punctual as a real one's UART. False,
// and nothing changed, when the system does not allow it.
bool PrioritaReale();

} // namespace kv::sim
