#pragma once

#include "variables/LimitiIncrociati.h"

#include <vector>

namespace kv {

// What the dialogue of a tuning page needs to know about it: its state group, whose cross
// limits it follows, and the entries it writes, in the order it writes them.
struct DescrizionePagina
{
    int primoStato = -1; // opening read; + 1 save, + 2 save and leave
    Pagina pagina = Pagina::Qualsiasi;
    std::vector<int> voci;   // ApplicaValori order; also ControlloCambiamenti's
    bool zonaLavoro = false; // the page has a work-zone box
    bool bloccoTps = false;  // TpsAutoadattante 0 locks its TPS thresholds
};

DescrizionePagina DescrizioneMinimo();
DescrizionePagina DescrizioneNormale();
DescrizionePagina DescrizionePienoCarico();
DescrizionePagina DescrizioneCutOff();
// In normal mode the three service entries take no part in anything after the read.
DescrizionePagina DescrizionePompata(bool modoAssistenza);
DescrizionePagina DescrizioneLavoro();
DescrizionePagina DescrizioneStechio();
DescrizionePagina DescrizioneInibizionePC();
DescrizionePagina DescrizioneRientroCO();

} // namespace kv
