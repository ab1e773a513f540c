#pragma once

#include <QChar>
#include <QList>
#include <QString>
#include <QStringList>
#include <QtGlobal>

namespace kv {

// The serial settings of KORVANTINE.INI, section "SERIALE".
struct ImpSeriale
{
    QString Porta;    // the INI text as it stands ("COM1" when absent)
    int PortaCom = 1; // 1..10
    qint32 VelocitaCom = 9600;
    QChar ParitaCom = u'N';
    int BitDatiCom = 8;
    int BitStopCom = 1;
    QString nomeDispositivo; // the device to open; empty when there is none for PortaCom
};

// KORVANTINE.INI in that folder, as the file is spelt there (upper case when it is new).
QString PercorsoIni(const QString &percorsoApp);

// "Porta" (default "COM1"): from its fourth character on, read as a number and rounded;
// outside 1..10 it is 1. A value starting with '/' is a device path and is used as it
// stands (PortaCom then 1). "BaudRate" (default "9600"): 4800, 9600, 19200 or 38400, else
// 9600. The INI file is only read. porti: the serial devices the system reports.
ImpSeriale LeggiImpSeriale(const QString &percorsoIni, const QStringList &porti);

// The same rules on the two texts, without a file.
ImpSeriale ImpSerialeDaTesti(const QString &porta, const QString &baudRate, const QStringList &porti);

// "COMn" is the n-th of the system's ports in natural order of their paths (ttyS2 before
// ttyS10); empty when there are fewer. A device path is itself.
QString NomeDispositivo(const QString &porta, int portaCom, const QStringList &porti);

// The paths of the serial ports the system reports now, in that same order.
QStringList PortiSeriali();

// A serial port the system reports: its device and what the system says it is.
struct PortaDisponibile
{
    QString percorso;
    QString descrizione;
};

// The system's ports now, in the order that "COMn" counts them.
QList<PortaDisponibile> PorteDisponibili();
QStringList PercorsiDi(const QList<PortaDisponibile> &porte);

// An entry of the list of ports as the Serial port page shows it: its text, what it writes
// as "Porta", and the device it stands for now (empty for a "COMn" beyond the system's ports).
struct VocePorta
{
    QString testo;
    QString valore;
    QString dispositivo;
    QString descrizione;
};

inline constexpr int PorteCom = 10;

// "COM1" to "COM10", each naming the port it is now, then the same ports by their own
// devices, which stay right when another adapter is plugged in.
QList<VocePorta> ElencoPorte(const QList<PortaDisponibile> &porte);

// A device typed for "Porta".
enum class EsitoDispositivo {
    Valido,
    NonPercorso,   // not a path from the root, or with control characters in it
    NonDispositivo // something is there, but not a character device
};
// A missing device is taken: an adapter may be plugged in later.
EsitoDispositivo ControllaDispositivo(const QString &testo);

// Writes "Porta" and "Baudrate" (that spelling, as the program always wrote it) under
// "SERIALE" in one safe replacement of the file. False when nothing could be written.
bool scriviImpSeriale(const QString &percorsoIni, const QString &porta, qint32 baud);

} // namespace kv
