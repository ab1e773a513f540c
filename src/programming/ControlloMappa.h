#pragma once

#include "base/Messaggio.h"

#include <QByteArray>
#include <QString>

namespace kv {

// What a map file must be before anything of it is shown or sent to an ECU: exactly 8
// records of 128 hexadecimal characters, each ended by CR LF, for 0xC100..0xC2FF. A file
// that is anything else (cut short, padded, a longer image, text that is not hexadecimal) is
// refused whole, naming its first bad record, so a damaged or crafted file never reaches
// the software area above the map.
struct EsitoMappa
{
    enum class Errore {
        Nessuno,
        Illeggibile,    // the file cannot be opened or read
        Corto,          // fewer than 8 whole records: record names the first missing or cut one
        Lungo,          // bytes after record 8
        NonEsadecimale, // record, colonna: the first character that is no hexadecimal digit
        FineRiga        // record: not ended by CR LF where its 128 characters end
    };
    Errore errore = Errore::Nessuno;
    int record = 0;      // from 1; 0 when the fault is not in one record
    int colonna = 0;     // from 1, for NonEsadecimale
    QByteArray immagine; // the 512 bytes, only when ok
    bool ok() const { return errore == Errore::Nessuno; }
};

// The check of a map file's whole content.
EsitoMappa ControllaMappa(const QByteArray &contenuto);
// The same on a file; reads no more than one byte past a map's size, so a large file costs
// nothing.
EsitoMappa LeggiMappa(const QString &percorso);

// Why a file is no map, for the fitter: the first bad record, and where in it.
Messaggio MessaggioEsitoMappa(const EsitoMappa &esito);

} // namespace kv
