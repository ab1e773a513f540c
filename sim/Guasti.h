#pragma once

#include <QByteArray>
#include <QMap>
#include <QtGlobal>

#include <random>

namespace kv::sim {

// Faults the simulated ECU can be told to show. 0 switches a counter off.
struct Guasti
{
    int scartaOgniNRisposte = 0;   // every n-th reply is not sent
    int corrompiOgniNFrame = 0;    // every n-th frame (stream or reply) leaves with a bad checksum
    bool corrompiProssimo = false; // the next frame leaves with a bad checksum
    int rumoreOgniNFrame = 0;      // a burst of noise goes out before every n-th frame
    int lunghezzaRumore = 8;
    bool rumoreConStx = false;             // whether the noise may hold the start byte 0x02
    QMap<quint32, quint8> erroriScrittura; // a write touching the address gets 'e' code
    int ritardoRispostaMs = 0;
    bool stallo = false; // no replies, no stream, commands ignored
    // Blocks count the 'W' frames of one programming session, from 1 after each 'I'.
    int bloccoGuasto = 0; // that block is refused with codiceBloccoGuasto, at every try
    quint8 codiceBloccoGuasto = 0x05;
    int cadutaAlBlocco = 0; // at that block the line goes dead (a stall), once
    int durataCadutaMs = 0; // and comes back after this long; 0: when the stall is taken off
};

// Applies the frame faults to what leaves the ECU, in order: a reply may be dropped; a
// frame that goes may be preceded by noise and may have its checksum spoilt.
class IniettoreGuasti
{
public:
    explicit IniettoreGuasti(quint32 seme = 1) : m_casuale(seme) {}

    Guasti &guasti() { return m_guasti; }
    const Guasti &guasti() const { return m_guasti; }

    struct Uscita
    {
        bool scartato = false;
        QByteArray rumore;
        QByteArray frame;
    };
    Uscita applica(const QByteArray &frame, bool risposta);

    // The error code for a write of conteggio bytes at indirizzo, or 0xFF for none.
    quint8 erroreScrittura(quint32 indirizzo, int conteggio) const;

private:
    Guasti m_guasti;
    quint64 m_risposte = 0;
    quint64 m_frame = 0;
    std::mt19937 m_casuale;
};

} // namespace kv::sim
