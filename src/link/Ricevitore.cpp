#include "link/Ricevitore.h"

#include "link/Frame.h"
#include "link/RegistroFrame.h"

#include <cstring>

namespace kv {

Ricevitore::Ricevitore(RegistroFrame *registro) : m_registro(registro) {}

void Ricevitore::ricevi(const QByteArray &bytes)
{
    m_buf.append(bytes);
    AnalizzaRicevuto();
}

void Ricevitore::svuota()
{
    m_buf.clear();
    m_inizio = 0;
    m_senzaStx = 0;
}

void Ricevitore::scarta(qsizetype n)
{
    m_inizio += n;
    m_senzaStx = 0;
    if (m_inizio >= m_buf.size())
        svuota();
}

void Ricevitore::compatta()
{
    // Cutting the front costs a copy of the rest: do it only when the dead part is the
    // larger one, which keeps the total work proportional to the bytes received.
    if (m_inizio > 4096 && m_inizio * 2 > m_buf.size()) {
        m_buf.remove(0, m_inizio);
        m_inizio = 0;
    }
}

void Ricevitore::AnalizzaRicevuto()
{
    // A handler may open a modal box whose event loop delivers more bytes: they are
    // appended, and the outer loop picks them up in order, so no frame runs twice.
    if (m_inAnalisi)
        return;
    m_inAnalisi = true;
    struct Uscita
    {
        Ricevitore *r;
        ~Uscita()
        {
            r->m_inAnalisi = false;
            r->compatta();
        }
    } uscita{this};

    for (;;) {
        const qsizetype disponibili = m_buf.size() - m_inizio;
        if (disponibili <= 0)
            return;

        const char *dati = m_buf.constData() + m_inizio;
        const void *stx =
            std::memchr(dati + m_senzaStx, Frame::STX, static_cast<size_t>(disponibili - m_senzaStx));
        if (!stx) {
            // The noise stays until an STX comes; remember how far we looked.
            m_senzaStx = disponibili;
            return;
        }
        scarta(static_cast<const char *>(stx) - dati);

        const qsizetype n = m_buf.size() - m_inizio;
        if (n < 4)
            return;
        const auto byte = [this](qsizetype posizione) { // counted from 1, as on the wire
            return static_cast<quint8>(m_buf.at(m_inizio + posizione - 1));
        };
        if (byte(3) != Frame::IndirizzoTester || byte(4) != Frame::IndirizzoEcu) {
            svuota();
            return;
        }
        const qsizetype l = byte(2) & 0x7F;
        if (n < l)
            return;
        if (l < Frame::Sovraccarico || byte(l) != static_cast<quint8>(Frame::ETX)) {
            // A length too short for a frame is treated like a bad end byte; at least the
            // STX goes, or the same bytes would be looked at forever.
            scarta(qMax<qsizetype>(l, 1));
            return;
        }
        const QByteArray frame = m_buf.mid(m_inizio, l);
        scarta(l);
        if (SommaByte(frame.mid(1, l - 3)) != static_cast<quint8>(frame.at(l - 2)))
            return;

        if (m_registro)
            m_registro->LogFrame(frame);
        const QByteArray payload = frame.mid(4, l - Frame::Sovraccarico);
        if (m_segnalazione)
            m_segnalazione(HexFrame(payload));
        if (m_gestore && !payload.isEmpty())
            m_gestore(payload);
    }
}

} // namespace kv
