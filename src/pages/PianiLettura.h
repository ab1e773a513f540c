#pragma once

#include "variables/LimitiIncrociati.h"

#include <QByteArray>

#include <vector>

namespace kv {

class Catalogo;

// What one 'R' frame of a page's opening read asks for, and what its reply is good for.
enum class TipoRiga {
    Valore,      // one entry: value, limits that hang on it, its field
    SoloLimite,  // one entry read only for the limits it sets on others
    ScalaLambda, // the flag that decides how the lambda thresholds after it are scaled
    Ignorata,    // received and dropped
    TpsMinimo,   // the low TPS calibration point: last row, limit and TPS presence
    Blocco,      // consecutive elements of an array entry in one frame
    BloccoMappa, // map cells in one frame, lean word then rich word of each cell
};

struct RigaLettura
{
    TipoRiga tipo;
    int parametro;       // the entry, or the first element (first cell) of a block
    bool eeprom = false; // read from the entry's EEPROM home instead of its RAM copy
    int elementi = 1;    // elements of a block; cells of a map block
};

struct PianoLettura
{
    int stato = -1; // first state of the page's group
    Pagina pagina = Pagina::Qualsiasi;
    bool presenzaTps = false; // the TpsMinimo row decides TpsPresente
    std::vector<RigaLettura> righe;
};

// The plan of a page by its first state (1, 11, 21, 31, 41, 51, 181, 191, 201); null for a
// state that owns no plan here.
const PianoLettura *PianoPerStato(int primoStato);

// Every plan, in state order.
const std::vector<PianoLettura> &PianiLettura();

// Address and byte count of a row's request; -1 for an address the entry does not have.
qint32 IndirizzoRiga(const Catalogo &catalogo, const RigaLettura &riga);
int ConteggioRiga(const Catalogo &catalogo, const RigaLettura &riga);

// Data bytes of the request: 'R', address high, address low, count.
QByteArray RichiestaLettura(const Catalogo &catalogo, const RigaLettura &riga);

} // namespace kv
