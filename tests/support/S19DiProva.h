#pragma once

// S-record text made here, apart from the code under test: well-formed S1 lines with their
// count and checksum, and a whole release for the programmable area.

#include <QByteArray>
#include <QtGlobal>

namespace kv {

inline QByteArray RigaS1(quint16 indirizzo, const QByteArray &dati)
{
    QByteArray corpo;
    corpo.append(char(dati.size() + 3));
    corpo.append(char(indirizzo >> 8));
    corpo.append(char(indirizzo & 0xFF));
    corpo.append(dati);
    quint8 somma = 0;
    for (char c : corpo)
        somma = quint8(somma + quint8(c));
    corpo.append(char(~somma));
    return "S1" + corpo.toHex().toUpper();
}

// A release as the ECU maker's tools write it: a header, lines of 32 bytes from 0xC000 to
// 0xF6FF with CR LF, and the start record.
inline QByteArray S19Completo(const QByteArray &immagine)
{
    QByteArray testo = "S00D00004B4F5256414E54494E45F1\r\n";
    for (qsizetype i = 0; i < immagine.size(); i += 32)
        testo += RigaS1(quint16(0xC000 + i), immagine.mid(i, 32)) + "\r\n";
    return testo + "S903C0003C\r\n";
}

// 14,080 bytes where no two neighbouring blocks look alike, with the release's own
// vehicle and date texts in the version area.
inline QByteArray ImmagineDiProva(quint8 seme = 0)
{
    QByteArray b(0xF700 - 0xC000, '\0');
    for (qsizetype i = 0; i < b.size(); ++i)
        b[i] = char((i * 7 + (i >> 6) * 13 + seme) & 0xFF);
    b.replace(0xC02C - 0xC000, 20, "NEW-REL   2025-01-31");
    return b;
}

} // namespace kv
