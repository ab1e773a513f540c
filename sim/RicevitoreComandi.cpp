#include "RicevitoreComandi.h"

#include "link/Frame.h"

namespace kv::sim {

namespace {
// Nothing the tester sends is longer than a frame; a buffer this large is only noise.
constexpr qsizetype LimiteBuffer = 4096;

bool frameValido(const QByteArray &b, int lunghezza)
{
    if (quint8(b.at(2)) != Frame::IndirizzoEcu || quint8(b.at(3)) != Frame::IndirizzoTester)
        return false;
    if (b.at(lunghezza - 1) != Frame::ETX)
        return false;
    quint8 somma = 0;
    for (int i = 1; i <= lunghezza - 3; ++i)
        somma = quint8(somma + quint8(b.at(i)));
    return somma == quint8(b.at(lunghezza - 2));
}
} // namespace

RicevitoreComandi::Esito RicevitoreComandi::aggiungi(const QByteArray &bytes)
{
    Esito esito;
    m_buffer.append(bytes);
    for (;;) {
        const qsizetype stx = m_buffer.indexOf(Frame::STX);
        if (stx < 0) {
            esito.scartati.append(m_buffer);
            m_buffer.clear();
            break;
        }
        if (stx > 0) {
            esito.scartati.append(m_buffer.left(stx));
            m_buffer.remove(0, stx);
        }
        if (m_buffer.size() < 2)
            break;
        const int lunghezza = quint8(m_buffer.at(1)) & 0x7F;
        if (lunghezza < Frame::Sovraccarico) {
            esito.scartati.append(m_buffer.left(1));
            m_buffer.remove(0, 1);
            continue;
        }
        if (m_buffer.size() < lunghezza)
            break;
        if (frameValido(m_buffer, lunghezza)) {
            esito.frame.append(m_buffer.left(lunghezza));
            m_buffer.remove(0, lunghezza);
        } else {
            esito.scartati.append(m_buffer.left(1));
            m_buffer.remove(0, 1);
        }
    }
    if (m_buffer.size() > LimiteBuffer) {
        esito.scartati.append(m_buffer);
        m_buffer.clear();
    }
    return esito;
}

QByteArray RicevitoreComandi::datiDi(const QByteArray &frame)
{
    if (frame.size() < Frame::Sovraccarico)
        return {};
    return frame.mid(4, frame.size() - Frame::Sovraccarico);
}

} // namespace kv::sim
