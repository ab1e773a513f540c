#pragma once

#include <QByteArray>
#include <QList>
#include <QtGlobal>

namespace kv {

// The frame on the wire, both ways: STX, LEN|0x80, receiver address, sender address,
// DATA (command or reply letter first), CHK, ETX.
namespace Frame {
inline constexpr char STX = 0x02;
inline constexpr char ETX = 0x03;
inline constexpr quint8 IndirizzoEcu = 0x3A;
inline constexpr quint8 IndirizzoTester = 0xF1;
inline constexpr int Sovraccarico = 6;       // bytes around the data
inline constexpr int LunghezzaMassima = 127; // what the 7-bit length can describe
} // namespace Frame

// What InviaProssimo hands back: Valido is -1 when a frame came off the queue, 0 when not.
struct FrameUscita
{
    qint16 Valido = 0;
    QByteArray Byte;
};

// Sum of the bytes modulo 256.
quint8 SommaByte(const QByteArray &bytes);

// Address as two bytes, high first.
QByteArray ParolaInByte(quint32 parola);

// Wraps data in a frame. tester = -1 addresses the ECU (0x3A, 0xF1); any other value gives
// the reversed order, that of frames coming from the ECU.
QByteArray CreaFrame(const QByteArray &dati, int tester = -1);

// Two upper-case hex digits per byte, no blanks.
QByteArray HexFrame(const QByteArray &bytes);

class RegistroFrame;

// Takes the next whole frame off the queue and logs it; noise before it is dropped.
FrameUscita InviaProssimo(QByteArray &coda, RegistroFrame *registro = nullptr);

// The data of each frame of a queue, in the order they would go out.
QList<QByteArray> DatiInCoda(QByteArray coda);

} // namespace kv
