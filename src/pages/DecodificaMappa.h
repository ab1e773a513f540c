#pragma once

#include "pages/DescrizioniPagine.h"
#include "variables/AreaMappa.h"
#include "variables/Catalogo.h"

#include <QByteArray>
#include <QString>

#include <array>
#include <optional>
#include <vector>

namespace kv {

// The 512 bytes of a map (0xC100..0xC2FF, the EEPROM homes of the catalogue) read as the
// tuning pages read the same memory: every entry whose home lies there, in the units and with
// the mask a page shows it, grouped by the page that edits it.

// ScalaLambda lives in the ECU's RAM only, so a map alone does not say how rule L shows the
// lambda thresholds: whoever decodes says which value it takes and where it came from.
enum class OrigineScala {
    Presunta, // nothing kept it: 0, rule A
    Archivio, // the map's row kept what the ECU had when the map was read
    Storico,  // the history entry kept it
    Ecu,      // read from the ECU now
    Comando,  // given by the user (the command line)
};

struct ScalaLambdaMappa
{
    double valore = 0; // as the pages keep it: 0 or 255
    OrigineScala origine = OrigineScala::Presunta;
};

// The flag from a kept value (any non-zero is 255); with none, 0 and Presunta.
ScalaLambdaMappa ScalaDa(std::optional<double> tenuta, OrigineScala origine);

// Where an entry is shown: the row of its page (its caption keys are LABPARAMETRO.riga and
// MISURA.riga of the page's section), a list, or a grid cell of no row.
struct VocePiano
{
    int parametro = -1;
    int riga = -1;        // -1: no row of its own (grid cells, values no page shows)
    QString lista;        // the section of the list's items; empty for a number
    bool binaria = false; // a list of two items over a byte read as zero or not
    bool segnoModulo = false;
};

// The entries of one page, in the page's order: its rows top to bottom, then the rest of what
// it writes (the grids).
struct GruppoMappa
{
    IdPagina id = IdPagina::Nessuna; // Nessuna for the last group: values no page shows
    QString sezione;                 // the page's section of the language file
    std::vector<VocePiano> voci;
};

// The section of the language file that names the entries with no row of a page (grid cells,
// calibration values) and the group of the values no page shows: the compare page's own.
inline constexpr char SezioneMappe[] = "ConfrontoMappe";

// The pages that edit the map, in the order of the service menu's tuning entries, then those
// given (pages of other subsystems, such as the parameter calibration), then a group of the
// values that no page shows. Each entry of the map area is in exactly one group.
std::vector<GruppoMappa> GruppiMappa(const Catalogo &catalogo,
                                     const std::vector<const DescrizionePagina *> &altre = {});

// One entry decoded.
struct VoceMappa
{
    VocePiano piano;
    int gruppo = -1;   // in MappaDecodificata::gruppi
    double grezzo = 0; // the raw number at its home
    double valore = 0; // what a page's read leaves in Letto
    QString testo;     // the number by the entry's mask, as a field shows it
    int scelta = -1;   // for a list, the item it shows; -1 none (also a value the list lacks)
    int parametro() const { return piano.parametro; }
};

struct MappaDecodificata
{
    bool ok = false; // false for an image that is not the map area's 512 bytes: then nothing
    ScalaLambdaMappa scala;
    std::vector<GruppoMappa> gruppi;
    std::vector<VoceMappa> voci;              // group by group
    std::array<int, Par::Numero> posizione{}; // catalogue index to voci, -1 outside the map

    const VoceMappa *voce(int parametro) const;
};

// The one decoding of a map: the catalogue gives homes, sizes, conversions and masks, scala
// the flag for rule L. Entries a page reads in sign and magnitude whatever the catalogue says
// are read so here too.
MappaDecodificata DecodificaMappa(const QByteArray &immagine, const Catalogo &catalogo,
                                  ScalaLambdaMappa scala,
                                  const std::vector<const DescrizionePagina *> &altre = {});

// The catalogue's name of an entry, an array element as Name(i); empty for a bad index.
QString NomeVoce(int parametro);

} // namespace kv
