#include "pages/DescrizioniPagine.h"

#include "variables/Catalogo.h"

namespace kv {

using namespace Par;

namespace {

void aggiungiSerie(std::vector<int> &voci, int base, int elementi)
{
    for (int i = 0; i < elementi; ++i)
        voci.push_back(base + i);
}

} // namespace

DescrizionePagina DescrizioneMinimo()
{
    return {1,
            Pagina::Minimo,
            {SogliaGiriEntrataMinimo, SogliaGiriUscitaMinimo, SogliaTpsEntrataMinimo, SogliaTpsUscitaMinimo,
             SogliaLambdaMagroMinimo, SogliaLambdaRiccoMinimo, FrequenzaControlloMinimo,
             PassiControlloMinimo},
            true,
            true};
}

DescrizionePagina DescrizioneNormale()
{
    DescrizionePagina d{11,
                        Pagina::Normale,
                        {SogliaLambdaRiccoNormale, PassiRaddoppioNormale, PassiControlloNormale,
                         PosizioneMotorinoNormale, SogliaLambdaMagroNormale, PrimaFrequenzaNormale,
                         SecondaFrequenzaNormale, TipoNOR},
                        true,
                        false};
    aggiungiSerie(d.voci, AsseTpsMappa, ElementiAsseTps);
    aggiungiSerie(d.voci, AsseGiriMappa, ElementiAsseGiri);
    // Cell by cell, lean before rich: the map is read in blocks but written element by element.
    for (int i = 0; i < CelleMappa; ++i) {
        d.voci.push_back(SogliaMagroMappa + i);
        d.voci.push_back(SogliaRiccoMappa + i);
    }
    return d;
}

DescrizionePagina DescrizionePienoCarico()
{
    DescrizionePagina d{21,
                        Pagina::PienoCarico,
                        {SogliaGiriEntrataPC, SogliaGiriUscitaPC, SogliaTpsEntrataPC, SogliaTpsUscitaPC,
                         SogliaLambdaMagroPC, SogliaLambdaRiccoPC, TipoPC, PcConf, ResetPC},
                        true,
                        true};
    aggiungiSerie(d.voci, GiriRTS, ElementiGiriRTS);
    // EEPROM only: a RAM-only save passes over these without a frame.
    aggiungiSerie(d.voci, TpsRTS, ElementiTpsRTS);
    aggiungiSerie(d.voci, PosizioneRTS, ElementiPosizioneRTS);
    return d;
}

DescrizionePagina DescrizioneCutOff()
{
    return {31,
            Pagina::CutOff,
            {SogliaGiriEntrataCutOff, SogliaGiriUscitaCutOff, SogliaTpsEntrataCutOff, SogliaTpsUscitaCutOff,
             PosizioneMotorinoCutOff, TipoCO},
            true,
            true};
}

DescrizionePagina DescrizionePompata(bool modoAssistenza)
{
    DescrizionePagina d{41, Pagina::Pompata, {}, true, false};
    aggiungiSerie(d.voci, GiriPompata, ElementiGiriPompata);
    aggiungiSerie(d.voci, PercentualePompata, ElementiPercentualePompata);
    if (modoAssistenza) {
        d.voci.push_back(IncrementoTps);
        d.voci.push_back(TempoIncrementoTps);
        d.voci.push_back(TempoInibizionePompata);
    }
    return d;
}

DescrizionePagina DescrizioneLavoro()
{
    // The shown entries first, each group followed by the partners the page derives.
    return {51,
            Pagina::Lavoro,
            {SogliaGiriEntrataMinimo,
             SogliaTpsEntrataMinimo,
             SogliaLambdaRiccoMinimo,
             PassiControlloMinimo,
             SogliaGiriUscitaMinimo,
             SogliaTpsUscitaMinimo,
             SogliaLambdaMagroMinimo,
             SogliaLambdaRiccoNormale,
             PassiRaddoppioNormale,
             PassiControlloNormale,
             PosizioneMotorinoNormale,
             ResetPC,
             SogliaLambdaMagroNormale,
             SogliaGiriEntrataCutOff,
             SogliaTpsEntrataCutOff,
             PosizioneMotorinoCutOff,
             TipoCO,
             SogliaGiriUscitaCutOff,
             SogliaTpsUscitaCutOff,
             SogliaGiriEntrataPC,
             SogliaTpsEntrataPC,
             SogliaLambdaRiccoPC,
             TipoPC,
             SogliaGiriUscitaPC,
             SogliaTpsUscitaPC,
             SogliaLambdaMagroPC},
            true,
            true};
}

DescrizionePagina DescrizioneStechio()
{
    return {181, Pagina::Qualsiasi, {CampioniStechiometrici, CampioniMagro, CampioniRicco}, false, false};
}

DescrizionePagina DescrizioneInibizionePC()
{
    return {191, Pagina::Qualsiasi, {InizioInibizionePC, DurataInibizionePC}, false, false};
}

DescrizionePagina DescrizioneRientroCO()
{
    return {201, Pagina::Qualsiasi, {TipoRIENTRO}, false, false};
}

} // namespace kv
