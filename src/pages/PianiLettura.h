#pragma once

#include <QByteArray>

#include <vector>

namespace kv {

class Catalogo;

// What one 'R' frame of a page's opening read asks for, and what its reply is good for.
// A page's plan is the list of these in its description.
enum class TipoRiga {
    Valore,      // one entry: value, limits that hang on it, its field
    SoloLimite,  // one entry read only for the limits it sets on others
    ScalaLambda, // the flag that decides how the lambda thresholds after it are scaled
    Ignorata,    // received and dropped
    TpsMinimo,   // the low TPS calibration point: last row, limit and TPS presence
    Blocco,      // elements of an array entry in one frame
    BloccoMappa, // map cells in one frame, lean word then rich word of each cell
};

struct RigaLettura
{
    TipoRiga tipo;
    int parametro;       // the entry, or the first element (first cell) of a block
    bool eeprom = false; // read from the entry's EEPROM home instead of its RAM copy
    int elementi = 1;    // elements of a block; cells of a map block
};

// The rows a plan is written with.
RigaLettura rigaValore(int parametro, bool eeprom = false);
RigaLettura rigaLimite(int parametro, bool eeprom = false);
RigaLettura rigaScalaLambda();
RigaLettura rigaTpsMinimo();
RigaLettura rigaBlocco(int base, int elementi, bool eeprom = false);
// Ten cells of the lambda map from cell primaCella: two columns of five TPS zones.
RigaLettura rigaBloccoMappa(int primaCella);

// The entries a row brings back, in address order.
std::vector<int> VociRiga(const RigaLettura &riga);

// Address of a row's request (its first entry's home); -1 for an address the entry lacks.
qint32 IndirizzoRiga(const Catalogo &catalogo, const RigaLettura &riga);
// Where an entry of the row starts in the reply's data, counted from the first byte read.
int ScartoNellaRiga(const Catalogo &catalogo, const RigaLettura &riga, int parametro);
// Bytes the request asks for: from the first entry's address to the end of the last one,
// so a block whose elements lie apart still brings every one of them back.
int ConteggioRiga(const Catalogo &catalogo, const RigaLettura &riga);

// Data bytes of the request: 'R', address high, address low, count.
QByteArray RichiestaLettura(const Catalogo &catalogo, const RigaLettura &riga);

} // namespace kv
