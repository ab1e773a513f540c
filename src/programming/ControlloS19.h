#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

namespace kv {

// What an S19 file must be before anything of it goes to an ECU. The conversion into the
// image reads only the address and data of S1 lines and copies them as they stand; so any
// file, cut short or random, would be flashed. Checked first, the file must be S-records
// throughout (blank lines aside): every record a known kind of the 16-bit family, its count,
// hexadecimal digits and checksum right; at least one S1 record with data inside the
// software area; a count record, if any, agreeing; and the end record S9 last. Otherwise it
// is refused whole, naming the first bad line.
struct EsitoS19
{
    enum class Errore {
        Nessuno,
        Illeggibile,    // the file cannot be opened or read, or is far too large
        NonRecord,      // riga: a line that is no S-record
        Tipo,           // riga: S2, S3, S4, S6, S7 or S8: not for a 16-bit ECU
        NonEsadecimale, // riga, colonna: the first character that is no hexadecimal digit
        Lunghezza,      // riga: the count disagrees with the length of the line
        Somma,          // riga: the checksum is wrong
        Conteggio,      // riga: an S5 record that does not count the S1 records before it
        DopoFine,       // riga: a record after the end record
        FineMancante,   // riga, the last line: the file ends without its end record
        NessunDato      // no S1 record reaches 0xC000..0xF6FF
    };
    Errore errore = Errore::Nessuno;
    int riga = 0;    // from 1; 0 when the fault is not in one line
    int colonna = 0; // from 1, for NonEsadecimale
    bool ok() const { return errore == Errore::Nessuno; }
};

// The check of the whole text of the file: a pure function of its bytes. Lines end at CR LF,
// LF or CR, as the conversion splits them.
EsitoS19 ControllaS19(QByteArrayView contenuto);

// The same on a file, whose text is given back in *contenuto when it is read.
EsitoS19 LeggiS19(const QString &percorso, QByteArray *contenuto = nullptr);

} // namespace kv
