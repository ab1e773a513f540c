#pragma once

#include "programming/ControlloMappa.h"
#include "programming/FileMappa.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace kv {

// A map of the archive taken whole, to be looked into: its file checked strictly (a file the
// check refuses gives no image at all), and what its row keeps beside it.
struct MappaArchiviata
{
    PercorsoMappa percorso;
    EsitoMappa mappa;                  // the check of the file, with the image when ok
    std::optional<double> scalaLambda; // the ECU's flag when the map was read; none when not kept
    std::optional<QString> nota;
    EsitoArchivio archivio; // reading the row; the map is there without it
    bool ok() const { return percorso.ok() && mappa.ok(); }
};

// The map of those names, as the tree has them.
MappaArchiviata CaricaMappaArchiviata(const QString &percorsoApp, const ChiaveMappa &chiave);

// Why a map the strict check refused was not taken, nome being how the fitter knows it.
Messaggio MessaggioMappaRifiutata(const MappaArchiviata &mappa, const QString &nome);

struct EsitoSalvataggio
{
    enum class Errore {
        Nessuno,
        Nome,        // a new name breaks the rules of the map tree: see percorso.nomi
        FuoriRadice, // the place leaves MAPPATURE or passes a link
        Immagine,    // not the map area's 512 bytes
        Scrittura,   // the temporary file, the folder or the file could not be written
        Verifica,    // the file written did not read back as the image: it was not put in place
    };
    Errore errore = Errore::Nessuno;
    PercorsoMappa percorso;
    EsitoArchivio archivio; // the row; the file is in place even when this failed
    bool ok() const { return errore == Errore::Nessuno; }
};

// What the fitter is told of a save that failed, or of a file filed without its row; nothing
// when all went well.
Messaggio MessaggioSalvataggio(const EsitoSalvataggio &esito);

// An image filed as a map of new names, as a read files one: written whole to KVMAPPA.TMP,
// read back through the strict check and compared, and only then put in place in one step
// (replacing a map of the same names, which the caller asks about first). Then its row, with
// the note and the ScalaLambda the image goes with. Nothing is left behind on a failure.
EsitoSalvataggio SalvaImmagineMappa(const QString &percorsoApp, const ChiaveMappa &chiave,
                                    const QByteArray &immagine, const QString &nota,
                                    std::optional<double> scalaLambda);

} // namespace kv
