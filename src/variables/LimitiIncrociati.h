#pragma once

#include <vector>

namespace kv {

// Limits that follow the value of another entry. Pairs of thresholds bound each other, and
// some bounds come from entries on other pages or from the TPS calibration points.

// The page whose behaviour a row belongs to. Qualsiasi: every page that reads the source.
enum class Pagina {
    Qualsiasi,
    Minimo,
    Normale,
    PienoCarico,
    CutOff,
    Pompata,
    Lavoro
};

enum class Lato {
    Min,
    Max
};

// Why the source has a new value: read from the ECU, or left in a field by the fitter.
enum class Occasione {
    Lettura,
    Modifica
};

struct LimiteIncrociato
{
    Pagina pagina;
    int bersaglio; // entry whose limit is set
    Lato lato;
    int sorgente;     // entry whose new value triggers the row
    bool soloLettura; // applied when the source is read, not when the fitter edits it
    bool daSorgente;  // true: the limit takes the source's value; false: takes fisso
    double fisso;
};

// The whole table, built once; rows of one source stand in the order they are applied.
const std::vector<LimiteIncrociato> &TabellaLimitiIncrociati();

} // namespace kv
