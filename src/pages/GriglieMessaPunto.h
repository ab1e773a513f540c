#pragma once

#include "pages/ModelloGriglia.h"

#include <optional>

namespace kv {

// Where things are on the lambda map of the normal page: 12 rows and 10 columns. Row 1
// holds the RPM breakpoints (columns 2 to 8) and column 0 the TPS ones; the cells of zone i
// are in columns 2 to 9, rich threshold above lean, the lowest TPS zone at the bottom. Row 0
// and column 1 repeat each breakpoint after "> " beside the zone it starts.
namespace MappaLambda {
inline constexpr int Righe = 12;
inline constexpr int Colonne = 10;
inline constexpr int ZoneTps = 5;

// The map cell of a row and column, -1 outside the cells: (column - 2) * 5 + (11 - row) / 2.
int zona(int riga, int colonna);
// The TPS breakpoint that column 0 edits at a row, -1 where there is none (rows 0 to 3); the
// count of rows is the grid's own.
int puntoTps(int riga, int righe = Righe);
// The RPM breakpoint of a column of row 1, -1 outside columns 2 to 8.
int puntoGiri(int colonna);
// Whether a click on the cell opens the edit field.
bool modificabile(int riga, int colonna);
// The rows of the rich and the lean threshold of a TPS zone (0 the lowest).
inline int rigaRicco(int zonaTps)
{
    return Righe - 2 - 2 * zonaTps;
}
inline int rigaMagro(int zonaTps)
{
    return Righe - 1 - 2 * zonaTps;
}
} // namespace MappaLambda

// MappaLambda: the 40 zones of the normal page, lean below rich. An edited cell checks its
// partner too: a lean threshold raised above its rich one marks the pair.
class ModelloMappaLambda : public ModelloGriglia
{
    Q_OBJECT
public:
    ModelloMappaLambda(DialogoPagina &dialogo, const Catalogo &catalogo, QObject *parent = nullptr);

protected:
    std::vector<QModelIndex> daControllare(const QModelIndex &modificata) const override;
    std::vector<QModelIndex> celleVive(double giri, double tps) const override;
};

// GrigliaRTS of the full-load page: a header row, then the eight RPM zones with their upper
// breakpoint, their TPS threshold and their stepper position.
class ModelloGrigliaRTS : public ModelloGriglia
{
    Q_OBJECT
public:
    static constexpr int Righe = 9;
    static constexpr int Colonne = 3;
    static constexpr int ColonnaTps = 1;
    static constexpr int ColonnaPosizione = 2;

    ModelloGrigliaRTS(DialogoPagina &dialogo, const Catalogo &catalogo, QObject *parent = nullptr);

protected:
    std::vector<QModelIndex> celleVive(double giri, double tps) const override;
};

// GrigliaPompata: the four RPM breakpoints above the five zones and the enrichment of each.
class ModelloGrigliaPompata : public ModelloGriglia
{
    Q_OBJECT
public:
    static constexpr int Righe = 2;
    static constexpr int Colonne = 6;

    ModelloGrigliaPompata(DialogoPagina &dialogo, const Catalogo &catalogo, QObject *parent = nullptr);
};

// What the full-load page shows for the selections of its two lists, TipoPC and PcConf, and
// whether a TPS is fitted.
struct AspettoPienoCarico
{
    bool soglieTps = false;    // rows 2 and 3
    bool soglieLambda = false; // rows 4, 5 and 6
    bool griglia = false;
    bool colonnaTps = false;
    bool colonnaPosizione = false;
};

// Nothing while either list has no selection or holds an index the page does not know
// (TipoPC 0 to 2, PcConf 0 and 1): the page then stays as it is.
std::optional<AspettoPienoCarico> AspettoPerListe(int tipoPC, int pcConf, bool tpsPresente);

} // namespace kv
