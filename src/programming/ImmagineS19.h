#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QtGlobal>

namespace kv {

struct StatoEcu;

// The software image: the programmable area 0xC000..0xF6FF as FILESW.TXT, 220 block records
// sent in order. The caller's order is PreparaFileSW, ConvertiS19, then LeggiBloccoSW for
// 1 to 220.
namespace ImmagineSW {
inline constexpr quint32 Inizio = 0xC000;
inline constexpr quint32 Fine = 0xF6FF;
inline constexpr int Blocchi = 220;
inline constexpr qsizetype DimensioneFile = qsizetype(Blocchi) * 130;
inline constexpr char NomeFile[] = "FILESW.TXT";
} // namespace ImmagineSW

// FILESW.TXT in the program's folder, as it is spelt there if it exists.
QString PercorsoFileSW(const QString &percorsoApp);

// The identification of the connected ECU as the image carries it: Windows-1252 bytes of
// InfCodice, InfDatoA, InfDatoB, each cut or padded with blanks to 14, 10 and 4.
struct TestiIdentificazione
{
    QByteArray codice;
    QByteArray datoA;
    QByteArray datoB;
};
TestiIdentificazione TestiIdentificazioneDi(const StatoEcu &stato);

// The blank image: 220 lines of 128 "F" and CR LF.
QByteArray FileSWVuoto();

// Creates or overwrites the file as the blank image. False when it cannot be written; a
// symbolic link there is not written through.
bool PreparaFileSW(const QString &percorso);

// The conversion on the text of the block file held in memory, which must hold at least
// the 220 records. Every S1 line in turn is laid over it as the ECU's tool always has:
// address from characters 5 to 8, data from the 9th to the last two (the checksum, never
// read), identification put over the lines that hold 0xC040 or 0xC05B, bytes outside
// 0xC000..0xF6FF dropped, characters copied as they stand. False at the first line whose
// identification falls outside it; what the lines before it did stays in blocchi.
bool SovrapponiS19(QByteArrayView s19, QByteArray &blocchi, const TestiIdentificazione &testi);

// Reads the S19 file and lays it over the block file, which must exist with its 220
// records; the block file is read once and written once, also after a failing line, so its
// bytes are what a line-by-line overlay would have left. False when a file cannot be read
// or written or a line fails; no message here.
bool ConvertiS19(const QString &fileS19, const QString &fileBlocchi, const StatoEcu &stato);

// Block numero of FILESW.TXT in the program's folder, 64 bytes; empty when it cannot be read.
QByteArray LeggiBloccoSW(const QString &percorsoApp, qint32 numero);

} // namespace kv
