#include "Guasti.h"

#include "link/Frame.h"

namespace kv::sim {

IniettoreGuasti::Uscita IniettoreGuasti::applica(const QByteArray &frame, bool risposta)
{
    Uscita u;
    if (risposta) {
        ++m_risposte;
        const int n = m_guasti.scartaOgniNRisposte;
        if (n > 0 && m_risposte % quint64(n) == 0) {
            u.scartato = true;
            return u;
        }
    }
    ++m_frame;
    u.frame = frame;

    const int nRumore = m_guasti.rumoreOgniNFrame;
    if (nRumore > 0 && m_frame % quint64(nRumore) == 0) {
        std::uniform_int_distribution<int> byte(0, 255);
        while (u.rumore.size() < qMax(1, m_guasti.lunghezzaRumore)) {
            const char b = char(byte(m_casuale));
            if (b != Frame::STX || m_guasti.rumoreConStx)
                u.rumore.append(b);
        }
    }

    const int nCorrotti = m_guasti.corrompiOgniNFrame;
    const bool corrompi = m_guasti.corrompiProssimo || (nCorrotti > 0 && m_frame % quint64(nCorrotti) == 0);
    if (corrompi && u.frame.size() >= Frame::Sovraccarico) {
        m_guasti.corrompiProssimo = false;
        const qsizetype chk = u.frame.size() - 2;
        u.frame[chk] = char(~quint8(u.frame.at(chk)));
    }
    return u;
}

quint8 IniettoreGuasti::erroreScrittura(quint32 indirizzo, int conteggio) const
{
    if (conteggio <= 0)
        return 0xFF;
    const quint64 fine = quint64(indirizzo) + quint64(conteggio) - 1;
    const auto it = m_guasti.erroriScrittura.lowerBound(indirizzo);
    if (it != m_guasti.erroriScrittura.end() && it.key() <= fine)
        return it.value();
    return 0xFF;
}

} // namespace kv::sim
