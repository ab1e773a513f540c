#pragma once

#include "pages/DecodificaMappa.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <vector>

namespace kv {

// Two maps side by side, below the widgets: where each comes from, what differs, and what A
// becomes when values of B are copied into it.

// Where a map to compare comes from. Whatever the kind, a source is a 512-byte image and the
// ScalaLambda to decode it with, saying where that came from.
struct SorgenteMappa
{
    enum class Tipo {
        Nessuna,
        Archivio, // a map of the archive: an edited A is saved under a new name
        Ecu,      // the connected ECU, read as a map read does
        Storico,  // an entry of an ECU's history
        File,     // a map file named by the user
    };
    Tipo tipo = Tipo::Nessuna;
    QString nome; // what the page shows for it (plant\make\model\map, a path...)
    QByteArray immagine;
    ScalaLambdaMappa scala;

    bool valida() const { return tipo != Tipo::Nessuna && immagine.size() == AreaMappa::Dimensione; }
};

struct RigaConfronto
{
    int posizione = -1; // of the entry in both decodings
    bool diversa = false;
    QString differenza; // B - A as shown, signed; empty for a list or where nothing differs
};

struct Confronto
{
    MappaDecodificata a;
    MappaDecodificata b;
    std::vector<RigaConfronto> righe; // every entry, in the decodings' order
    int diverse = 0;

    const VoceMappa &voceA(const RigaConfronto &r) const { return a.voci[size_t(r.posizione)]; }
    const VoceMappa &voceB(const RigaConfronto &r) const { return b.voci[size_t(r.posizione)]; }
    // The row of an entry; null outside the map.
    const RigaConfronto *riga(int parametro) const;
    bool diversa(int parametro) const;
    // The entries that differ, in order; of those given, the ones that differ.
    std::vector<int> parametriDiversi() const;
    std::vector<int> parametriDiversi(const std::vector<int> &fra) const;
};

// Two entries differ when a page would show them otherwise: another text in a field, another
// item in a list. Both decodings come from the same catalogue and pages.
bool VociDiverse(const VoceMappa &a, const VoceMappa &b);

Confronto ConfrontaMappe(MappaDecodificata a, MappaDecodificata b);

// A's image with B's value of each entry given: the bytes of the entry as B has them when both
// read them alike, and otherwise (a lambda threshold under another ScalaLambda) B's shown value
// written back by A's rule, so that A then shows what B shows. Other bytes stay as A has them.
QByteArray CopiaValori(const QByteArray &immagineA, ScalaLambdaMappa scalaA, const QByteArray &immagineB,
                       ScalaLambdaMappa scalaB, const std::vector<int> &parametri, const Catalogo &catalogo);

// The entries whose bytes differ between two images of the map area, in catalogue order.
std::vector<int> VociCambiate(const QByteArray &prima, const QByteArray &dopo, const Catalogo &catalogo);

// The write requests that put the image's value of those entries into the ECU as a tuning page
// does: to the entry's RAM copy, to its EEPROM home or both, RAM first for each entry; an
// entry without the one asked is passed over.
QList<QByteArray> ScrittureVoci(const QByteArray &immagine, const std::vector<int> &voci, bool ram,
                                bool eeprom, const Catalogo &catalogo);

// ---- grids

// A cell of a grid: the entry it shows (-1 none), as itself or as the header "> " value of a
// zone that starts there, or a caption of the grid's page section.
struct CellaGriglia
{
    int parametro = -1;
    bool intestazione = false;
    QString didascalia; // a key of the page's section
};

// A cell that spans others on screen.
struct UnioneGriglia
{
    int riga, colonna, righe, colonne;
};

// The lambda map, the full-load grid and the pump grid laid out as their pages lay them out.
struct GrigliaMappa
{
    IdPagina pagina = IdPagina::Nessuna;
    QString sezione; // the page's section for the captions
    int titolo = 0;  // GRIGLIA.<titolo> of the compare page's section
    int righe = 0;
    int colonne = 0;
    std::vector<CellaGriglia> celle; // row by row
    std::vector<UnioneGriglia> unioni;

    const CellaGriglia &cella(int riga, int colonna) const { return celle[size_t(riga * colonne + colonna)]; }
    CellaGriglia &cella(int riga, int colonna) { return celle[size_t(riga * colonne + colonna)]; }
    // The entries its cells edit, in order, each once.
    std::vector<int> parametri() const;
};

const std::vector<GrigliaMappa> &GriglieMappa();

} // namespace kv
