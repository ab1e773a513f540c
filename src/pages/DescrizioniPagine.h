#pragma once

#include "pages/PianiLettura.h"
#include "shell/IdPagina.h"
#include "variables/LimitiIncrociati.h"

#include <QString>

#include <vector>

namespace kv {

// One row of a page's parameter box: LabParametro(indice), the field or list, Misura(indice).
struct RigaPagina
{
    int indice;    // the number of its captions in the page's section
    int parametro; // the entry it edits
    QString lista; // a list: the language section of its items (lista + "." + n); empty for a field
    // A list of two items over a byte the ECU takes as zero or not: 0 shows the first item,
    // any other value the second.
    bool binaria = false;
    // The second item goes back as 255 rather than as its index.
    bool secondaA255 = false;
};

// A frame of rows on the page, captioned by nome + ".CAPTION".
struct BoxParametri
{
    QString nome;
    std::vector<RigaPagina> righe; // top to bottom
    // Shown in service mode only; in normal mode its entries take no part in anything after
    // the read.
    bool soloAssistenza = false;
};

// An entry the page works out from others: bersaglio = sorgente * fattore + scarto, plus
// altra * fattoreAltra when it hangs on a second entry, whatever limits say.
struct Derivato
{
    int bersaglio;
    int sorgente;
    double fattore;
    double scarto;
    int altra = -1;
    double fattoreAltra = 0;
};

// What the page shows when TimeOutReq fires in its group.
enum class Scadenza {
    UscitaEmergenza,  // a failed read or leave leaves only Esci_Out; a failed save says so
    SoloMessaggio,    // the page only says that the ECU did not answer
    LetturaEmergenza, // a failed read leaves only Esci_Out; a failed save only says so
    Muta              // nothing: the group's messages belong to the other page that shares it
};

// Everything the program knows about one tuning page but its widgets: the menu's page, the
// language section, the state group with the replies it waits for, the read plan, the write
// order and the rows. Adding a page of the usual kind is adding its description here; a page
// with widgets of its own (grids) adds its unit in pages/ui as well.
struct DescrizionePagina
{
    IdPagina id = IdPagina::Nessuna;
    QString sezione;     // form name: the section of the language file
    int primoStato = -1; // opening read; + 1 save, + 2 save and leave
    // Two pages that are never open together may own the same group of states; whichever is
    // open has it on the dialogue engine.
    bool gruppoCondiviso = false;
    Pagina pagina = Pagina::Qualsiasi; // whose cross limits it follows
    std::vector<RigaLettura> piano;    // the opening read, one frame a row
    std::vector<int> voci;             // ApplicaValori order; also ControlloCambiamenti's
    std::vector<BoxParametri> box;
    // Rows hidden when no TPS is fitted. A page with such rows decides TpsPresente with the
    // last row of its read, and locks its TPS thresholds when the ECU adapts them itself.
    std::vector<int> righeTps;
    std::vector<Derivato> derivati; // worked out by Applica, in this order
    // Worked out as soon as the row that reads their sorgente is in, and kept as read.
    std::vector<Derivato> derivatiLettura;
    // Entries that travel in sign and magnitude on this page, whatever the catalogue says.
    std::vector<int> segnoModulo;
    bool zonaLavoro = false; // a work-zone box, refreshed on every reply of the read
    Scadenza scadenza = Scadenza::UscitaEmergenza;

    // 'r' for the first state, 'e' for the two saves, 0 for any other.
    char rispostaAttesa(int stato) const;
    // The write order without the entries of a box the mode hides.
    std::vector<int> vociInUso(bool assistenza) const;
    // The row that edits parametro, null when none does.
    const RigaPagina *riga(int parametro) const;
    bool tps() const { return !righeTps.empty(); }
};

// Every tuning page, in menu order.
const std::vector<DescrizionePagina> &TabellaPagine();

// The description of a page; null for a page that is not a tuning page.
const DescrizionePagina *DescrizioneDi(IdPagina id);

} // namespace kv
