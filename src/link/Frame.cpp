#include "link/Frame.h"

#include "link/RegistroFrame.h"

namespace kv {

quint8 SommaByte(const QByteArray &bytes)
{
    quint8 somma = 0;
    for (char b : bytes)
        somma = static_cast<quint8>(somma + static_cast<quint8>(b));
    return somma;
}

QByteArray ParolaInByte(quint32 parola)
{
    QByteArray r(2, '\0');
    r[0] = static_cast<char>((parola >> 8) & 0xFF);
    r[1] = static_cast<char>(parola & 0xFF);
    return r;
}

QByteArray CreaFrame(const QByteArray &dati, int tester)
{
    QByteArray corpo;
    corpo.reserve(dati.size() + Frame::Sovraccarico);
    if (tester == -1) {
        corpo.append(static_cast<char>(Frame::IndirizzoEcu));
        corpo.append(static_cast<char>(Frame::IndirizzoTester));
    } else {
        corpo.append(static_cast<char>(Frame::IndirizzoTester));
        corpo.append(static_cast<char>(Frame::IndirizzoEcu));
    }
    corpo.append(dati);
    corpo.prepend(static_cast<char>(((corpo.size() + 4) | 0x80) & 0xFF));
    const quint8 chk = SommaByte(corpo);

    QByteArray frame;
    frame.reserve(corpo.size() + 3);
    frame.append(Frame::STX);
    frame.append(corpo);
    frame.append(static_cast<char>(chk));
    frame.append(Frame::ETX);
    return frame;
}

QByteArray HexFrame(const QByteArray &bytes)
{
    return bytes.toHex().toUpper();
}

FrameUscita InviaProssimo(QByteArray &coda, RegistroFrame *registro)
{
    FrameUscita uscita;
    const qsizetype inizio = coda.indexOf(Frame::STX);
    if (inizio < 0) {
        if (registro)
            registro->LogFrame({});
        return uscita;
    }
    coda.remove(0, inizio);
    // The queue only ever holds frames that CreaFrame built, so the length is trusted;
    // a length byte short of the header still takes the STX away, or we would loop.
    qsizetype lunghezza = coda.size() > 1 ? (static_cast<quint8>(coda.at(1)) & 0x7F) : 1;
    lunghezza = qBound<qsizetype>(1, lunghezza, coda.size());
    uscita.Byte = coda.left(lunghezza);
    uscita.Valido = -1;
    coda.remove(0, lunghezza);
    if (registro)
        registro->LogFrame(uscita.Byte);
    return uscita;
}

QList<QByteArray> DatiInCoda(QByteArray coda)
{
    QList<QByteArray> dati;
    for (FrameUscita f = InviaProssimo(coda); f.Valido; f = InviaProssimo(coda))
        dati.append(f.Byte.mid(4, f.Byte.size() - Frame::Sovraccarico));
    return dati;
}

} // namespace kv
