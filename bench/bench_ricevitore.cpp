// Throughput of the receive path on a long stream of live frames mixed with noise, for two
// sizes of backlog: the figures should match if the cost is linear in what arrives.
#include "link/Frame.h"
#include "link/Ricevitore.h"

#include <QElapsedTimer>
#include <QRandomGenerator>

#include <cstdio>

using namespace kv;

namespace {

QByteArray flusso(int frames)
{
    QRandomGenerator rnd(42);
    QByteArray s;
    for (int i = 0; i < frames; ++i) {
        QByteArray dati("d");
        for (int k = 0; k < 14; ++k)
            dati.append(static_cast<char>(rnd.bounded(256)));
        s += CreaFrame(dati, 0);
        if (i % 5 == 0) { // noise without STX between frames
            for (int k = 0; k < 3; ++k)
                s.append(static_cast<char>(0x10 + rnd.bounded(200)));
        }
    }
    return s;
}

void misura(const char *nome, const QByteArray &dati, qsizetype fetta)
{
    Ricevitore r;
    long long frame = 0;
    r.impostaGestore([&](const QByteArray &) { ++frame; });
    QElapsedTimer t;
    t.start();
    for (qsizetype i = 0; i < dati.size(); i += fetta)
        r.ricevi(dati.mid(i, fetta));
    const double s = static_cast<double>(t.nsecsElapsed()) / 1e9;
    std::printf("%-34s %9.1f MB/s %12.0f frames/s  (%lld frames, %.3f s)\n", nome,
                static_cast<double>(dati.size()) / s / 1e6, static_cast<double>(frame) / s, frame, s);
}

} // namespace

int main()
{
    const QByteArray dati = flusso(500000);
    std::printf("stream: %lld bytes\n", static_cast<long long>(dati.size()));
    misura("arrivals of 64 bytes", dati, 64);
    misura("arrivals of 4096 bytes", dati, 4096);
    // Everything at once: the buffer holds the whole backlog before it is served. A backlog
    // 25 times larger should cost 25 times as much, not 625.
    const QByteArray piccolo = flusso(20000);
    misura("one arrival, backlog of 20000 frames", piccolo, piccolo.size());
    misura("one arrival, backlog of 500000 frames", dati, dati.size());
    return 0;
}
