#pragma once

#include "archives/Scambio.h"

#include <QString>

#include <optional>

namespace kv {

// The folder of an exchange medium, as the fitter names it, and what may be done with it.
// Paths are compared as the file system resolves them (links followed, "." and ".."
// gone), never as text: a link to the program's folder is the program's folder.

enum class EsitoCartellaScambio {
    Valida,
    Vuota,       // nothing named
    Programma,   // the program's folder, a folder inside it, or one that holds it
    NonCartella, // a file, or a place where no folder can be
};

struct CartellaScambio
{
    EsitoCartellaScambio esito = EsitoCartellaScambio::Vuota;
    // The real path: the existing part resolved, the rest (still to be made) behind it.
    QString percorso;
    bool ok() const { return esito == EsitoCartellaScambio::Valida; }
};

// The real path of a folder that may not exist yet.
QString PercorsoReale(const QString &percorso);

// Checks a target or a source named by the fitter. A medium is never the program's own
// folder, nor inside it (a restore would read what it deletes, a copy would write into the
// archive), nor a folder that holds it (cleaning would reach it).
CartellaScambio ControllaCartellaScambio(const QString &testo, const QString &percorsoApp);

enum class EsitoPulizia {
    Fatta,
    Parziale,     // something old could not be removed; the new set was written all the same
    CopiaFallita, // the new set is not all there (a full medium, a medium pulled out)
};

// Readies a checked target for a new set and copies the work folder over it: first the old
// set goes, and only that (for maps DBTEMP.MDB, DBTEMP.LDB, ELENCO_*.TXT and the LPG and CNG
// trees; for software SOFTRIPR.MDB, SOFTRIPR.LDB and the FILES19 tree, so that a set of maps
// and one of software share a medium; names matched without regard to case), never through
// a link (a link in their place is removed, not followed); then the
// folder is made and temp copied over it. Other folders on the medium stay as they are.
EsitoPulizia PulisciDestinazione(const CartellaScambio &destinazione, const QString &temp, TipoScambio tipo);

// The start of every copy to a medium: the target checked, the fitter's word taken, temp
// made empty. On a refusal `errore` holds what to tell; vuota is the word for no target.
struct AvvioCopiaSet
{
    CartellaScambio destinazione;
    QString temp;
    std::optional<EsitoScambio> errore;
};
AvvioCopiaSet AvviaCopiaSet(const QString &destinazione, const QString &percorsoApp,
                            const DomandaScambio &domanda, const Messaggio &vuota);

// The end of every copy to a medium: the set in temp put on the target, temp emptied, and
// the outcome told with what could not be cleaned or copied.
EsitoScambio ConsegnaSet(EsitoScambio esito, const CartellaScambio &destinazione, const QString &temp,
                         const QString &percorsoApp, TipoScambio tipo);

} // namespace kv
