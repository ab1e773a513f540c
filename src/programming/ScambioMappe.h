#pragma once

#include "archives/Scambio.h"
#include "programming/AlberoMappe.h"
#include "programming/FileMappa.h"

#include <QList>
#include <QString>

namespace kv {

// Maps on exchange media: a set is DBTEMP.MDB with <plant>/<make>/<model>/<map>.LKV trees
// beside it, plant LPG or CNG; here the same lie in MAPPATURE. Every name on a medium is
// someone else's text: it becomes a folder or a file name here only if it is fit to be one
// (NomeScambioValido, the field's size, the plant LPG or CNG), and its place is checked
// again on the disk (no link on the way, never outside MAPPATURE).

// A map's names as the messages show them: LPG\Fiat\Punto\Base.
QString TestoChiaveMappa(const ChiaveMappa &chiave);

// CreaDiscoMappe: the chosen maps (rows and files) written to destinazione as a set, after
// the checks and the one question; the older set there goes first. The local archive is only
// read.
EsitoScambio ScriviDiscoMappe(const QString &percorsoApp, const QList<ChiaveMappa> &mappe,
                              const QString &destinazione, const DomandaScambio &domanda);

// What a medium offers: its catalogue's maps and the map files of its LPG and CNG trees,
// each flagged as the archive's tree flags them. The medium is read into TEMP and nothing on
// it is written.
struct SorgenteMappe
{
    EsitoScambio esito;
    AlberoMappe albero;
};
SorgenteMappe LeggiDiscoMappe(const QString &percorsoApp, const QString &sorgente);

// RipriMappe: the chosen maps merged from the medium into the archive. The medium is read
// whole into TEMP first: if that fails, nothing here has changed. A map with a name unfit
// here, doubled, without its file, with a file that is not exactly a map (ControllaMappa),
// or whose place leads out is passed over with a line in avvisi; one that is here already is
// replaced only after a yes. Each map's file and row go
// in together: a row that cannot be written puts the former file back.
EsitoScambio RipristinaMappe(const QString &percorsoApp, const QString &sorgente,
                             const QList<ChiaveMappa> &mappe, const DomandaScambio &domanda);

} // namespace kv
