#include "variables/LimitiIncrociati.h"

#include "variables/Catalogo.h"

namespace kv {

namespace {

LimiteIncrociato riga(Pagina pagina, int bersaglio, Lato lato, int sorgente)
{
    return {pagina, bersaglio, lato, sorgente, false, true, 0};
}

LimiteIncrociato rigaLettura(Pagina pagina, int bersaglio, Lato lato, int sorgente)
{
    return {pagina, bersaglio, lato, sorgente, true, true, 0};
}

std::vector<LimiteIncrociato> costruisci()
{
    using enum Lato;
    std::vector<LimiteIncrociato> t;

    // Idle.
    t.push_back(riga(Pagina::Minimo, Par::SogliaGiriUscitaMinimo, Min, Par::SogliaGiriEntrataMinimo));
    t.push_back(riga(Pagina::Minimo, Par::SogliaGiriEntrataMinimo, Max, Par::SogliaGiriUscitaMinimo));
    t.push_back(riga(Pagina::Minimo, Par::SogliaGiriUscitaMinimo, Max, Par::SogliaGiriUscitaCutOff));
    t.push_back(riga(Pagina::Minimo, Par::SogliaTpsUscitaMinimo, Min, Par::SogliaTpsEntrataMinimo));
    t.push_back(riga(Pagina::Minimo, Par::SogliaTpsEntrataMinimo, Max, Par::SogliaTpsUscitaMinimo));
    t.push_back(riga(Pagina::Minimo, Par::SogliaTpsUscitaMinimo, Max, Par::TpsTaratoMassimo));
    t.push_back(riga(Pagina::Minimo, Par::SogliaLambdaMagroMinimo, Max, Par::SogliaLambdaRiccoMinimo));
    t.push_back(riga(Pagina::Minimo, Par::SogliaLambdaRiccoMinimo, Min, Par::SogliaLambdaMagroMinimo));

    // The low TPS calibration point bounds the idle exit only, never the idle entry, and it
    // does so at the end of every page's read, whichever page it is.
    t.push_back(rigaLettura(Pagina::Qualsiasi, Par::SogliaTpsUscitaMinimo, Min, Par::TpsTaratoMinimo));

    // Normal running and its map: every lean cell lies below its rich cell.
    t.push_back(riga(Pagina::Normale, Par::SogliaLambdaMagroNormale, Max, Par::SogliaLambdaRiccoNormale));
    t.push_back(riga(Pagina::Normale, Par::SogliaLambdaRiccoNormale, Min, Par::SogliaLambdaMagroNormale));
    for (int i = 0; i < Par::CelleMappa; ++i) {
        t.push_back(riga(Pagina::Normale, Par::SogliaRiccoMappa + i, Min, Par::SogliaMagroMappa + i));
        t.push_back(riga(Pagina::Normale, Par::SogliaMagroMappa + i, Max, Par::SogliaRiccoMappa + i));
    }

    // Full load.
    t.push_back(riga(Pagina::PienoCarico, Par::SogliaGiriUscitaPC, Max, Par::SogliaGiriEntrataPC));
    t.push_back(riga(Pagina::PienoCarico, Par::SogliaGiriEntrataPC, Min, Par::SogliaGiriUscitaPC));
    t.push_back(riga(Pagina::PienoCarico, Par::SogliaTpsUscitaPC, Max, Par::SogliaTpsEntrataPC));
    t.push_back(riga(Pagina::PienoCarico, Par::SogliaTpsEntrataPC, Min, Par::SogliaTpsUscitaPC));
    t.push_back(riga(Pagina::PienoCarico, Par::SogliaTpsUscitaPC, Min, Par::SogliaTpsUscitaCutOff));
    t.push_back(riga(Pagina::PienoCarico, Par::SogliaTpsEntrataPC, Max, Par::TpsTaratoMassimo));
    t.push_back(riga(Pagina::PienoCarico, Par::SogliaLambdaMagroPC, Max, Par::SogliaLambdaRiccoPC));
    t.push_back(riga(Pagina::PienoCarico, Par::SogliaLambdaRiccoPC, Min, Par::SogliaLambdaMagroPC));
    // Full-load grid: each RPM breakpoint between its neighbours; the ends keep 400 and 10000.
    for (int i = 0; i + 1 < Par::ElementiGiriRTS; ++i) {
        t.push_back(riga(Pagina::PienoCarico, Par::GiriRTS + i + 1, Min, Par::GiriRTS + i));
        t.push_back(riga(Pagina::PienoCarico, Par::GiriRTS + i, Max, Par::GiriRTS + i + 1));
    }

    // Cut-off.
    t.push_back(riga(Pagina::CutOff, Par::SogliaGiriUscitaCutOff, Max, Par::SogliaGiriEntrataCutOff));
    t.push_back(riga(Pagina::CutOff, Par::SogliaGiriEntrataCutOff, Min, Par::SogliaGiriUscitaCutOff));
    t.push_back(riga(Pagina::CutOff, Par::SogliaGiriUscitaCutOff, Min, Par::SogliaGiriUscitaMinimo));
    t.push_back(riga(Pagina::CutOff, Par::SogliaTpsUscitaCutOff, Min, Par::SogliaTpsEntrataCutOff));
    t.push_back(riga(Pagina::CutOff, Par::SogliaTpsEntrataCutOff, Max, Par::SogliaTpsUscitaCutOff));
    t.push_back(riga(Pagina::CutOff, Par::SogliaTpsUscitaCutOff, Max, Par::TpsTaratoMassimo));

    // Pump grid: each breakpoint bounds its neighbours. The first breakpoint starts at 0, and
    // the last one cannot be raised beyond the value it opened with: that cap is wanted.
    const int ultimo = Par::GiriPompata + Par::ElementiGiriPompata - 1;
    t.push_back({Pagina::Pompata, Par::GiriPompata, Min, Par::GiriPompata, true, false, 0});
    for (int i = Par::GiriPompata; i < ultimo; ++i) {
        t.push_back(riga(Pagina::Pompata, i + 1, Min, i));
        t.push_back(riga(Pagina::Pompata, i, Max, i + 1));
    }
    t.push_back(rigaLettura(Pagina::Pompata, ultimo, Max, ultimo));

    // Work-zone page: the partners are not on the page, so its limits come from elsewhere,
    // and all of them are set while the page reads.
    t.push_back(rigaLettura(Pagina::Lavoro, Par::SogliaGiriEntrataMinimo, Max, Par::SogliaGiriUscitaCutOff));
    t.push_back(rigaLettura(Pagina::Lavoro, Par::SogliaTpsEntrataMinimo, Max, Par::TpsTaratoMassimo));
    t.push_back(rigaLettura(Pagina::Lavoro, Par::SogliaTpsEntrataCutOff, Max, Par::TpsTaratoMassimo));
    t.push_back(rigaLettura(Pagina::Lavoro, Par::SogliaTpsEntrataPC, Max, Par::TpsTaratoMassimo));
    t.push_back(rigaLettura(Pagina::Lavoro, Par::TpsTaratoMassimo, Max, Par::TpsTaratoMassimo));
    t.push_back(rigaLettura(Pagina::Lavoro, Par::SogliaGiriEntrataCutOff, Min, Par::SogliaGiriUscitaMinimo));
    t.push_back(rigaLettura(Pagina::Lavoro, Par::SogliaTpsEntrataPC, Min, Par::SogliaTpsUscitaMinimo));
    for (int proprio : {Par::SogliaLambdaRiccoMinimo, Par::SogliaLambdaRiccoNormale, Par::SogliaGiriEntrataPC,
                        Par::SogliaLambdaRiccoPC})
        t.push_back(rigaLettura(Pagina::Lavoro, proprio, Min, proprio));

    return t;
}

} // namespace

const std::vector<LimiteIncrociato> &TabellaLimitiIncrociati()
{
    static const std::vector<LimiteIncrociato> tabella = costruisci();
    return tabella;
}

} // namespace kv
