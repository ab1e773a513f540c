#pragma once

#include <QByteArray>
#include <QList>

namespace kv::sim {

// The ECU's side of frame reassembly: collects what the tester sends and hands out the
// whole frames addressed to the ECU. Anything that does not check out (length, address,
// end byte, checksum) costs only its start byte, and the search goes on from the next
// one, as a firmware that resynchronises on every STX would do.
class RicevitoreComandi
{
public:
    struct Esito
    {
        QList<QByteArray> frame; // whole frames, STX to ETX
        QByteArray scartati;     // bytes given up on, for the log
    };

    Esito aggiungi(const QByteArray &bytes);
    void svuota() { m_buffer.clear(); }
    qsizetype inAttesa() const { return m_buffer.size(); }

    // The data of a frame that aggiungi handed out: command letter first.
    static QByteArray datiDi(const QByteArray &frame);

private:
    QByteArray m_buffer;
};

} // namespace kv::sim
