#pragma once

// Helpers shared by the simulator tests: a reader of the ECU's frames written apart from
// the simulator's own code, and a collector of what an EcuSimulata sends.

#include "EcuSimulata.h"

#include "link/Frame.h"

#include <QByteArray>
#include <QList>
#include <QObject>

struct FrameLetto
{
    QByteArray payload;   // reply letter first
    bool checksumOk = false;
    char lettera() const { return payload.isEmpty() ? '\0' : payload.at(0); }
};

// Frames from the ECU (addresses F1 3A). Bytes that make no frame are counted as noise.
class LettoreFrameEcu
{
public:
    QList<FrameLetto> aggiungi(const QByteArray &bytes)
    {
        m_buffer.append(bytes);
        QList<FrameLetto> letti;
        for (;;) {
            const qsizetype stx = m_buffer.indexOf(char(0x02));
            if (stx < 0) {
                m_rumore += m_buffer.size();
                m_buffer.clear();
                break;
            }
            m_rumore += stx;
            m_buffer.remove(0, stx);
            if (m_buffer.size() < 2)
                break;
            const int n = quint8(m_buffer.at(1)) & 0x7F;
            if (n >= 6 && m_buffer.size() < n)
                break;
            if (n < 6 || quint8(m_buffer.at(2)) != 0xF1 || quint8(m_buffer.at(3)) != 0x3A
                || m_buffer.at(n - 1) != char(0x03)) {
                m_buffer.remove(0, 1);
                ++m_rumore;
                continue;
            }
            quint8 somma = 0;
            for (int i = 1; i <= n - 3; ++i)
                somma = quint8(somma + quint8(m_buffer.at(i)));
            letti.append({m_buffer.mid(4, n - 6), somma == quint8(m_buffer.at(n - 2))});
            m_buffer.remove(0, n);
        }
        return letti;
    }
    qsizetype rumore() const { return m_rumore; }

private:
    QByteArray m_buffer;
    qsizetype m_rumore = 0;
};

// Everything an EcuSimulata puts on its line, as frames.
class Raccolta : public QObject
{
public:
    explicit Raccolta(EcuSimulata &ecu)
    {
        connect(&ecu, &EcuSimulata::datiInviati, this, [this](const QByteArray &b) {
            grezzi.append(b);
            frame.append(lettore.aggiungi(b));
        });
    }

    QList<FrameLetto> risposte() const
    {
        QList<FrameLetto> r;
        for (const FrameLetto &f : frame)
            if (f.lettera() != 'd' && f.lettera() != 'g')
                r.append(f);
        return r;
    }
    QList<FrameLetto> flusso(char lettera = 'd') const
    {
        QList<FrameLetto> r;
        for (const FrameLetto &f : frame)
            if (f.lettera() == lettera)
                r.append(f);
        return r;
    }
    void svuota()
    {
        frame.clear();
        grezzi.clear();
    }

    LettoreFrameEcu lettore;
    QList<FrameLetto> frame;
    QByteArray grezzi;
};

// A command as the tester sends it.
inline QByteArray Comando(const QByteArray &dati)
{
    return CreaFrame(dati);
}

inline QByteArray ComandoLettura(quint32 indirizzo, int conteggio)
{
    return Comando(QByteArray(1, 'R') + ParolaInByte(indirizzo) + char(conteggio));
}

inline QByteArray ComandoScrittura(quint32 indirizzo, const QByteArray &valori)
{
    return Comando(QByteArray(1, 'W') + ParolaInByte(indirizzo) + char(valori.size()) + valori);
}

// Fields of a 'd' payload.
struct Dati
{
    explicit Dati(const QByteArray &p)
        : stato(quint8(p.at(1)))
        , giri(quint8(p.at(2)) << 8 | quint8(p.at(3)))
        , tps(quint8(p.at(4)) << 8 | quint8(p.at(5)))
        , lambda(quint8(p.at(6)) << 8 | quint8(p.at(7)))
        , actpos(quint8(p.at(8)))
        , ricmag(quint8(p.at(9)))
        , zona(quint8(p.at(10)))
        , pompata(quint8(p.at(11)))
        , tiptps(quint8(p.at(12)))
        , tipalim(quint8(p.at(13)))
        , tipolambda(quint8(p.at(14)))
    {
    }
    int stato, giri, tps, lambda, actpos, ricmag, zona, pompata, tiptps, tipalim, tipolambda;
};
