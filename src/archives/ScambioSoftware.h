#pragma once

#include "archives/Scambio.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace kv {

// ECU software on exchange media: a set is SOFTRIPR.MDB with a FILES19 folder of <NomeSW>.S19
// files beside it; here the same lie in SOFTWARE (SOFTWARE.MDB, FILES19). Catalogue row and
// file are tied by name alone, matched without regard to case.

// SOFTWARE/FILES19 below the program's folder, as it is spelt there.
QString CartellaFiles19(const QString &percorsoApp);
// The file of a software in a FILES19 folder: the one there under any case, else the new name.
QString PercorsoS19(const QString &cartella, const QString &nome);

// One software as a list shows it: from its file, its row, or both.
struct VoceSoftware
{
    QString nome;
    QString versione;
    QString nota;
    bool suDisco = false;     // the .S19 file is there
    bool nelCatalogo = false; // a catalogue row is there
};

// The program's software: every SOFTWARE/FILES19/*.S19 and every catalogue row, one entry
// per name, in the catalogue's order. Without a catalogue the files are still there, and
// esito says why.
QList<VoceSoftware> ElencoSoftware(const QString &percorsoApp, EsitoArchivio *esito = nullptr);

// CreaDiscoSW: the named software (rows and files) written to destinazione as a set, after
// the checks and the one question; what the medium held of an older set goes first.
EsitoScambio ScriviDiscoSoftware(const QString &percorsoApp, const QStringList &nomi,
                                 const QString &destinazione, const DomandaScambio &domanda);

// What a medium offers: the rows of its SOFTRIPR.MDB, each marked with whether its file is
// there. The medium is read into TEMP and nothing on it is written.
struct SorgenteSoftware
{
    EsitoScambio esito;
    QList<VoceSoftware> voci;
};
SorgenteSoftware LeggiDiscoSoftware(const QString &percorsoApp, const QString &sorgente);

// RipriDiscoSW: the named software merged from the medium into the archive. The medium is
// read whole into TEMP first: if that fails, nothing here has changed. Each name that is not
// fit to be a file name here, is doubled, or has no file is passed over with a line in
// avvisi; one that is here already is replaced only after a yes.
EsitoScambio RipristinaSoftware(const QString &percorsoApp, const QString &sorgente, const QStringList &nomi,
                                const DomandaScambio &domanda);

} // namespace kv
