#pragma once

#include <QString>

#include <functional>

class QIODevice;

namespace kv {

class RegistrazioneAcq;
class TabellaCanali;

// A recording as a spreadsheet takes it: UTF-8, one heading row of names with their units
// in brackets, then one row a sample, fields separated by ',', '.' as decimal point, CR LF
// at each line's end. The columns are the file's: the sample number, then channels 2 to 11
// and 1. Names and units are the file's own; where its heading lines are missing, those of
// the channel table stand in. Samples da..a - 1; false when the device refused a write.
bool ScriviCsv(const RegistrazioneAcq &registrazione, const TabellaCanali &canali, qsizetype da, qsizetype a,
               QIODevice &destinazione);

struct EsitoEsportazione
{
    enum class Tipo {
        Fatto,
        Collegamento, // the name is a link, or no plain file: nothing written through it
        Sorgente,     // it names the recording itself
        Scrittura     // the system refused; dettaglio says why
    };
    Tipo tipo = Tipo::Fatto;
    QString dettaglio;
    bool ok() const { return tipo == Tipo::Fatto; }
};

// Writes a file the fitter named: never through a link, never over the recording it comes
// from, and whole or not at all, so that a file of that name already there stays as it was
// when the write fails.
EsitoEsportazione ScriviEsportazione(const QString &percorso, const QString &sorgente,
                                     const std::function<bool(QIODevice &)> &scrivi);

} // namespace kv
