#pragma once

// What the benchmarks that time the line from the simulated ECU's side share: the ECU with
// every byte paced, in a thread of its own on a pseudo-terminal, the clock its side is timed
// by, hooks on the frames that cross it, and the median of their runs.

#include "EcuSimulata.h"
#include "Sveglia.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QThread>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace kv {

class LatoEcu
{
public:
    explicit LatoEcu(int baud) : m_baud(baud)
    {
        sim::OpzioniEcu opzioni;
        opzioni.baud = baud;
        opzioni.cadenzaReale = true;
        ecu = new sim::EcuSimulata(opzioni);
        m_orologio.start();
    }

    // An ECU that never ran in its thread is not deleted by the thread's end.
    ~LatoEcu()
    {
        if (m_inFilo)
            ferma();
        else
            delete ecu;
    }

    LatoEcu(const LatoEcu &) = delete;
    LatoEcu &operator=(const LatoEcu &) = delete;

    // The ECU on a pseudo-terminal, running in its thread, whose end deletes it. The hooks go
    // in first, so that they miss none of its bytes. False, told on stderr, when no
    // pseudo-terminal can be had.
    bool avviaSuPty()
    {
        if (!ecu->apriPty()) {
            std::fprintf(stderr, "cannot open a pseudo-terminal: %s\n", qPrintable(ecu->erroreLinea()));
            return false;
        }
        ecu->moveToThread(&m_filo);
        QObject::connect(&m_filo, &QThread::finished, ecu, &QObject::deleteLater);
        m_filo.start();
        m_inFilo = true;
        QMetaObject::invokeMethod(ecu, &sim::EcuSimulata::avvia, Qt::QueuedConnection);
        // The ECU keeps its time as a real one does, whatever else the machine is doing.
        QMetaObject::invokeMethod(ecu, [] {
            if (!sim::PrioritaReale())
                std::fprintf(stderr,
                             "no real-time scheduling for the simulated ECU: its own delays count too\n");
        });
        return true;
    }

    // Hooks on both ways of the line, run in the ECU's thread as the bytes cross its side:
    // ricevuto(frame) for each request heard whole, inviato(length, letter) for each frame sent
    // whole (letter 0 when it is too short to hold one). Paced bytes leave a few at a time,
    // so what is sent is gathered into frames here.
    template <typename R, typename I>
    void osserva(R ricevuto, I inviato)
    {
        QObject::connect(ecu, &sim::EcuSimulata::frameRicevuto, ecu, std::move(ricevuto),
                         Qt::DirectConnection);
        QObject::connect(
            ecu, &sim::EcuSimulata::datiInviati, ecu,
            [this, inviato = std::move(inviato)](const QByteArray &bytes) {
                m_inviati += bytes;
                for (;;) {
                    const qsizetype stx = m_inviati.indexOf(char(0x02));
                    if (stx < 0) {
                        m_inviati.clear();
                        return;
                    }
                    if (m_inviati.size() < stx + 2)
                        return;
                    const int l = quint8(m_inviati.at(stx + 1)) & 0x7F;
                    if (m_inviati.size() < stx + l)
                        return;
                    const char lettera = l > 4 ? m_inviati.at(stx + 4) : 0;
                    m_inviati.remove(0, stx + l);
                    inviato(l, lettera);
                }
            },
            Qt::DirectConnection);
    }

    // The ECU's thread ended, and the ECU with it: nothing it counts moves any more.
    void ferma()
    {
        m_filo.quit();
        m_filo.wait();
    }

    [[nodiscard]] const QElapsedTimer &orologio() const { return m_orologio; }
    [[nodiscard]] double adessoMs() const { return static_cast<double>(m_orologio.nsecsElapsed()) / 1e6; }
    // Ten bits a byte: start, eight data, stop.
    [[nodiscard]] double secondiSulFilo(qint64 byte) const
    {
        return static_cast<double>(byte) * 10.0 / m_baud;
    }
    // A frame is heard when its last byte is in: its first came that long before.
    [[nodiscard]] double primoByteMs(const QByteArray &frame) const
    {
        return adessoMs() - secondiSulFilo(frame.size()) * 1000.0;
    }

    sim::EcuSimulata *ecu;

private:
    int m_baud;
    QThread m_filo;
    bool m_inFilo = false;
    QElapsedTimer m_orologio;
    QByteArray m_inviati; // touched in the ECU's thread only
};

inline double mediana(std::vector<double> v)
{
    if (v.empty())
        return 0;
    std::sort(v.begin(), v.end());
    const size_t n = v.size();
    return n % 2 ? v[n / 2] : (v[n / 2 - 1] + v[n / 2]) / 2;
}

} // namespace kv
