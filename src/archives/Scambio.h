#pragma once

#include "archives/Archivio.h"
#include "archives/SchemaArchivi.h"
#include "base/Messaggio.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>
#include <vector>

namespace kv {

// What the exchange media and the deletions share: how an operation reports, how a name
// that comes from a medium is judged, the work folder TEMP, and the copies that never pass
// through a link.

// The end of a copy to a medium, a restore from one, or a deletion.
struct EsitoScambio
{
    bool fatto = false;            // the operation ran to its end (entries may still have been passed over)
    Messaggio messaggio;           // the closing message line
    std::vector<Messaggio> avvisi; // one line for each entry passed over or failed, in order
    int voci = 0;                  // entries written, restored or deleted
};

// What an exchange medium holds of ours.
enum class TipoScambio {
    Mappe,    // DBTEMP.MDB and the LPG and CNG trees: <plant>/<make>/<model>/<map>.LKV
    Software, // SOFTRIPR.MDB and FILES19/<name>.S19
};

// A yes-or-no question to the fitter; true for yes.
using DomandaScambio = std::function<bool(const Messaggio &testo)>;

// Sizes above which a file on a medium is not what it claims to be, and is not copied.
inline constexpr qint64 MassimoCatalogoScambio = qint64(16) << 20;
inline constexpr qint64 MassimoFileScambio = qint64(1) << 20;

// A name that is to become a folder or a file name here and on a medium (a make, a model,
// a map, a software): text once trimmed, at most massimo characters, neither "." nor "..",
// not hidden (a leading point) nor ending in a point, not a name Windows keeps for a device
// (NomeRiservato), and none of \ / : * ? " < > | nor a control character.
bool NomeScambioValido(const QString &nome, int massimo);

// A name from a medium as a message shows it: control characters made visible, cut short.
QString NomeVisibile(const QString &nome);

// The text of m's key, trimmed, with testo in the place of "XXX".
Messaggio MessaggioScambio(Messaggio m, const QString &testo = {});
// The same with a count in place of XXX: the key with ".1" behind it says one, when the
// language file has it.
Messaggio MessaggioConteggio(Messaggio m, int n);

// The work folder TEMP of the program, emptied and made again: what was in it goes, a link in
// its place is removed, not followed. Empty when it cannot be made.
QString PreparaTemp(const QString &percorsoApp);
// TEMP deleted with all in it; false when something was left.
bool CancellaTemp(const QString &percorsoApp);

enum class EsitoCopia {
    Fatta,
    Mancante,     // no plain file there (nothing, a folder, or a link)
    TroppoGrande, // larger than it may be
    Errore,       // it could not be read or written
};
// One plain file copied, not through a link, to destinazione, which must lie inside radice
// with no link on the way; an existing file there is replaced.
EsitoCopia CopiaFileScambio(const QString &origine, const QString &destinazione, const QString &radice,
                            qint64 massimo);

// The content of a plain file inside radice, as it is before it is replaced: nullopt when
// there is none. Put back with RimettiFile.
std::optional<QByteArray> ContenutoPrecedente(const QString &file, const QString &radice);
// Puts the file origine in place of destinazione (inside radice, no link on the way) in one
// step: until the rename the old content stays whole.
bool PosaFile(const QString &origine, const QString &destinazione, const QString &radice);
// What PosaFile replaced comes back; a file that was not there before is removed.
void RimettiFile(const QString &destinazione, const QString &radice, const std::optional<QByteArray> &prima);

// Every row of the table of a catalogue brought on a medium, read without writing a byte to
// the file: fields are matched by name without regard to case, missing ones are NULL. A file
// that is not an SQLite database, is damaged, is too large, lacks the table or holds anything
// else (SoloArchivio) gives an error in esito and no rows.
struct CatalogoScambio
{
    EsitoArchivio esito;
    QList<RigaArchivio> righe;
};
CatalogoScambio LeggiCatalogoScambio(const QString &percorso, const SchemaArchivio &schema);

// The medium of a restore, read into TEMP once: its catalogue, and its trees as deep as a set
// goes, with only the files of the set's extension. Links, hidden entries and files larger
// than a set's file can be are passed over (the large ones with a line in esito.avvisi). A
// file that cannot be read, a missing or foreign catalogue end it with esito.fatto false and
// TEMP deleted; the medium is never written.
struct MediumScambio
{
    EsitoScambio esito;
    QString temp;              // the copy
    QList<RigaArchivio> righe; // its catalogue
};
MediumScambio LeggiMediumScambio(const QString &percorsoApp, const QString &sorgente, TipoScambio tipo);

// A file of the copy by its names, each level matched without regard to case; empty when it
// is not there as a plain file inside the copy.
QString FileNelMedium(const MediumScambio &medium, const QStringList &parti);

} // namespace kv
