#pragma once

#include <QByteArray>

#include <functional>

namespace kv {

class RegistroFrame;

// Reassembles frames from whatever the port delivers (BufferRx and AnalizzaRicevuto).
// Consumed bytes are skipped by an offset and the front is cut away only now and then,
// so the cost stays linear in what arrives even when the buffer has grown large.
class Ricevitore
{
public:
    using GestoreFrame = std::function<void(const QByteArray &payload)>;

    explicit Ricevitore(RegistroFrame *registro = nullptr);

    // Called for each good frame with its payload, reply letter first.
    void impostaGestore(GestoreFrame gestore) { m_gestore = std::move(gestore); }
    // Called with HexFrame of each good payload, for the message strip.
    void impostaSegnalazione(std::function<void(const QByteArray &)> f) { m_segnalazione = std::move(f); }

    // Arrival: append and analyse.
    void ricevi(const QByteArray &bytes);
    void AnalizzaRicevuto();

    QByteArray BufferRx() const { return m_buf.mid(m_inizio); }
    qsizetype inAttesa() const { return m_buf.size() - m_inizio; }
    void svuota();

private:
    void scarta(qsizetype n);
    void compatta();

    RegistroFrame *m_registro;
    GestoreFrame m_gestore;
    std::function<void(const QByteArray &)> m_segnalazione;
    QByteArray m_buf;
    qsizetype m_inizio = 0;
    qsizetype m_senzaStx = 0; // bytes from m_inizio on known to hold no STX
    bool m_inAnalisi = false;
};

} // namespace kv
