#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QtGlobal>

namespace kv {

// A block file (FILESW.TXT, the .LKV maps, KVMAPPA.TMP): records of 130 bytes, each 64
// data bytes as 128 upper-case hexadecimal characters, then CR LF. Record 1 comes first.
inline constexpr int LunghezzaRecord = 130;
inline constexpr int LunBlocco = (LunghezzaRecord - 2) / 2;

// "&H" and the text read as a number: hexadecimal digits of either case from the start up
// to the first other character; none gives 0.
quint32 ValoreEsadecimale(QByteArrayView testo);

// The record of 64 (or any number of) bytes: two upper-case digits a byte, then CR LF.
QByteArray RecordBlocco(QByteArrayView dati);

// A record's bytes: the last two characters dropped, then each pair by ValoreEsadecimale,
// without any check that the characters are hexadecimal.
QByteArray DecodificaRecord(QByteArrayView record);

// Record numero (from 1) of the file, decoded; the file is opened and closed again. Empty
// when the file cannot be read or the record starts past its end. A last record cut short
// is read as if the missing bytes were zeros (a file of 1,039 bytes still has a block 8).
QByteArray LeggiBlocco(const QString &percorso, qint64 numero);

// The size of the file in records, a floating division: 1,039 bytes are 7.99 blocks.
// 0 when the file is missing.
double NumeroBlocchi(const QString &percorso);

// Appends one record, opening and closing the file for it. False unless the record went out
// whole: the write, the flush and the close all succeeded.
bool AggiungiRecord(const QString &percorso, QByteArrayView dati);

} // namespace kv
