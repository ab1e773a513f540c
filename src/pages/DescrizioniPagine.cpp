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

// Fields numbered from primo in the order given.
std::vector<RigaPagina> campi(std::initializer_list<int> parametri, int primo = 0)
{
    std::vector<RigaPagina> righe;
    for (int p : parametri)
        righe.push_back({primo++, p, {}});
    return righe;
}

RigaPagina lista(int indice, int parametro, const char *sezione)
{
    return {indice, parametro, QString::fromLatin1(sezione)};
}

// The ECU reads these bytes as zero or not, whatever the list holds.
RigaPagina listaBinaria(int indice, int parametro, const char *sezione)
{
    RigaPagina r = lista(indice, parametro, sezione);
    r.binaria = true;
    return r;
}

BoxParametri box(const char *nome, std::vector<RigaPagina> righe)
{
    return {QString::fromLatin1(nome), std::move(righe)};
}

DescrizionePagina minimo()
{
    DescrizionePagina d;
    d.id = IdPagina::MP_Minimo;
    d.sezione = QStringLiteral("MP_Minimo");
    d.primoStato = 1;
    d.pagina = Pagina::Minimo;
    // The lambda flag always comes before the first lambda threshold, and the low TPS point
    // always last: its row decides TPS presence once everything else is in.
    d.piano = {rigaValore(SogliaGiriEntrataMinimo),
               rigaValore(SogliaTpsEntrataMinimo),
               rigaScalaLambda(),
               rigaValore(SogliaLambdaRiccoMinimo),
               rigaValore(PassiControlloMinimo),
               rigaLimite(SogliaGiriUscitaCutOff),
               rigaLimite(TpsTaratoMassimo, true),
               rigaValore(SogliaGiriUscitaMinimo),
               rigaValore(SogliaTpsUscitaMinimo),
               rigaValore(SogliaLambdaMagroMinimo),
               rigaValore(FrequenzaControlloMinimo),
               rigaTpsMinimo()};
    d.voci = {SogliaGiriEntrataMinimo,  SogliaGiriUscitaMinimo,  SogliaTpsEntrataMinimo,
              SogliaTpsUscitaMinimo,    SogliaLambdaMagroMinimo, SogliaLambdaRiccoMinimo,
              FrequenzaControlloMinimo, PassiControlloMinimo};
    // Field order is the write order.
    std::vector<RigaPagina> righe;
    for (int i = 0; i < static_cast<int>(d.voci.size()); ++i)
        righe.push_back({i, d.voci[static_cast<size_t>(i)], {}});
    d.box = {box("BOXMINIMO", std::move(righe))};
    d.righeTps = {2, 3};
    d.zonaLavoro = true;
    return d;
}

DescrizionePagina normale()
{
    DescrizionePagina d;
    d.id = IdPagina::MP_Normale;
    d.sezione = QStringLiteral("MP_Normale");
    d.primoStato = 11;
    d.pagina = Pagina::Normale;
    d.piano = {rigaScalaLambda(),
               rigaValore(SogliaLambdaRiccoNormale),
               rigaValore(PassiRaddoppioNormale),
               rigaValore(PassiControlloNormale),
               rigaValore(PosizioneMotorinoNormale),
               rigaValore(SogliaLambdaMagroNormale),
               rigaValore(TipoNOR),
               rigaValore(PrimaFrequenzaNormale),
               rigaValore(SecondaFrequenzaNormale),
               {TipoRiga::Ignorata, TpsTaratoMassimo, true},
               rigaBlocco(AsseTpsMappa, ElementiAsseTps),
               rigaBlocco(AsseGiriMappa, ElementiAsseGiri)};
    for (int k = 0; k < 4; ++k)
        d.piano.push_back(rigaBloccoMappa(10 * k));
    d.piano.push_back(rigaTpsMinimo());
    d.voci = {
        SogliaLambdaRiccoNormale, PassiRaddoppioNormale, PassiControlloNormale,   PosizioneMotorinoNormale,
        SogliaLambdaMagroNormale, PrimaFrequenzaNormale, SecondaFrequenzaNormale, TipoNOR};
    aggiungiSerie(d.voci, AsseTpsMappa, ElementiAsseTps);
    aggiungiSerie(d.voci, AsseGiriMappa, ElementiAsseGiri);
    // Cell by cell, lean before rich: the map is read in blocks but written element by element.
    for (int i = 0; i < CelleMappa; ++i) {
        d.voci.push_back(SogliaMagroMappa + i);
        d.voci.push_back(SogliaRiccoMappa + i);
    }
    // The list first: it decides whether the two thresholds or the map below are in force.
    std::vector<RigaPagina> righe = {lista(7, TipoNOR, "TipoNOR")};
    for (const RigaPagina &r :
         campi({PassiRaddoppioNormale, PrimaFrequenzaNormale, SecondaFrequenzaNormale, PassiControlloNormale,
                PosizioneMotorinoNormale, SogliaLambdaMagroNormale, SogliaLambdaRiccoNormale}))
        righe.push_back(r);
    d.box = {box("BOXNORMALE", std::move(righe))};
    d.zonaLavoro = true;
    return d;
}

DescrizionePagina pienoCarico()
{
    DescrizionePagina d;
    d.id = IdPagina::MP_PienoCarico;
    d.sezione = QStringLiteral("MP_PienoCarico");
    d.primoStato = 21;
    d.pagina = Pagina::PienoCarico;
    // PosizioneRTS(i) lies at 0xC220 + 2i, one byte each, so the eight of them span fifteen
    // bytes: the block asks for all fifteen and takes each element from its own address.
    d.piano = {rigaValore(SogliaGiriEntrataPC),
               rigaValore(SogliaTpsEntrataPC),
               rigaScalaLambda(),
               rigaValore(SogliaLambdaRiccoPC),
               rigaValore(TipoPC),
               rigaLimite(SogliaTpsUscitaCutOff),
               rigaLimite(TpsTaratoMassimo, true),
               rigaValore(SogliaGiriUscitaPC),
               rigaValore(SogliaTpsUscitaPC),
               rigaValore(SogliaLambdaMagroPC),
               rigaValore(PcConf),
               rigaValore(ResetPC),
               rigaBlocco(GiriRTS, ElementiGiriRTS),
               rigaBlocco(TpsRTS, ElementiTpsRTS, true),
               rigaBlocco(PosizioneRTS, ElementiPosizioneRTS, true),
               rigaTpsMinimo()};
    d.voci = {SogliaGiriEntrataPC,
              SogliaGiriUscitaPC,
              SogliaTpsEntrataPC,
              SogliaTpsUscitaPC,
              SogliaLambdaMagroPC,
              SogliaLambdaRiccoPC,
              TipoPC,
              PcConf,
              ResetPC};
    aggiungiSerie(d.voci, GiriRTS, ElementiGiriRTS);
    // EEPROM only: a RAM-only save passes over these without a frame.
    aggiungiSerie(d.voci, TpsRTS, ElementiTpsRTS);
    aggiungiSerie(d.voci, PosizioneRTS, ElementiPosizioneRTS);
    // The two lists first: they decide which rows and which columns of the grid count.
    std::vector<RigaPagina> righe = {lista(7, TipoPC, "TipoPC"), lista(8, PcConf, "PcConf")};
    for (const RigaPagina &r : campi({SogliaGiriEntrataPC, SogliaGiriUscitaPC, SogliaTpsEntrataPC,
                                      SogliaTpsUscitaPC, SogliaLambdaMagroPC, SogliaLambdaRiccoPC, ResetPC}))
        righe.push_back(r);
    d.box = {box("BOXPC", std::move(righe))};
    d.righeTps = {2, 3};
    d.zonaLavoro = true;
    return d;
}

DescrizionePagina cutOff()
{
    DescrizionePagina d;
    d.id = IdPagina::MP_CutOff;
    d.sezione = QStringLiteral("MP_CutOff");
    d.primoStato = 31;
    d.pagina = Pagina::CutOff;
    d.piano = {rigaValore(SogliaGiriEntrataCutOff),
               rigaValore(SogliaTpsEntrataCutOff),
               rigaValore(PosizioneMotorinoCutOff),
               rigaValore(TipoCO),
               rigaLimite(SogliaGiriUscitaMinimo),
               rigaLimite(TpsTaratoMassimo, true),
               rigaValore(SogliaGiriUscitaCutOff),
               rigaValore(SogliaTpsUscitaCutOff),
               rigaTpsMinimo()};
    d.voci = {SogliaGiriEntrataCutOff, SogliaGiriUscitaCutOff,  SogliaTpsEntrataCutOff,
              SogliaTpsUscitaCutOff,   PosizioneMotorinoCutOff, TipoCO};
    std::vector<RigaPagina> righe =
        campi({SogliaGiriEntrataCutOff, SogliaGiriUscitaCutOff, SogliaTpsEntrataCutOff, SogliaTpsUscitaCutOff,
               PosizioneMotorinoCutOff});
    righe.push_back(lista(5, TipoCO, "TipoCO"));
    d.box = {box("BOXCUTOFF", std::move(righe))};
    d.righeTps = {2, 3};
    d.zonaLavoro = true;
    return d;
}

DescrizionePagina pompata()
{
    DescrizionePagina d;
    d.id = IdPagina::MP_Pompata;
    d.sezione = QStringLiteral("MP_Pompata");
    d.primoStato = 41;
    d.pagina = Pagina::Pompata;
    for (int i = 0; i < ElementiGiriPompata; ++i)
        d.piano.push_back(rigaValore(GiriPompata + i));
    for (int i = 0; i < ElementiPercentualePompata; ++i)
        d.piano.push_back(rigaValore(PercentualePompata + i));
    for (int p : {IncrementoTps, TempoIncrementoTps, TempoInibizionePompata})
        d.piano.push_back(rigaValore(p));
    aggiungiSerie(d.voci, GiriPompata, ElementiGiriPompata);
    aggiungiSerie(d.voci, PercentualePompata, ElementiPercentualePompata);
    d.voci.insert(d.voci.end(), {IncrementoTps, TempoIncrementoTps, TempoInibizionePompata});
    BoxParametri acm = box("BOXACM", campi({IncrementoTps, TempoIncrementoTps, TempoInibizionePompata}));
    acm.soloAssistenza = true;
    d.box = {acm};
    d.zonaLavoro = true;
    return d;
}

DescrizionePagina lavoro()
{
    DescrizionePagina d;
    d.id = IdPagina::MP_Lavoro;
    d.sezione = QStringLiteral("MP_Lavoro");
    d.primoStato = 51;
    d.pagina = Pagina::Lavoro;
    d.piano = {rigaValore(SogliaGiriEntrataMinimo),
               rigaValore(SogliaTpsEntrataMinimo),
               rigaScalaLambda(),
               rigaValore(SogliaLambdaRiccoMinimo),
               rigaValore(PassiControlloMinimo),
               rigaValore(SogliaLambdaRiccoNormale),
               rigaValore(PassiRaddoppioNormale),
               rigaValore(PassiControlloNormale),
               rigaValore(PosizioneMotorinoNormale),
               rigaValore(SogliaGiriEntrataCutOff),
               rigaValore(SogliaTpsEntrataCutOff),
               rigaValore(PosizioneMotorinoCutOff),
               rigaValore(TipoCO),
               rigaValore(SogliaGiriEntrataPC),
               rigaValore(SogliaTpsEntrataPC),
               rigaValore(SogliaLambdaRiccoPC),
               rigaValore(TipoPC),
               rigaLimite(SogliaGiriUscitaCutOff),
               rigaLimite(TpsTaratoMassimo, true),
               rigaValore(SogliaGiriUscitaMinimo),
               rigaValore(SogliaTpsUscitaMinimo),
               rigaValore(SogliaLambdaMagroMinimo),
               rigaValore(SogliaLambdaMagroNormale),
               rigaValore(SogliaTpsUscitaCutOff),
               rigaValore(SogliaGiriUscitaPC),
               rigaValore(SogliaTpsUscitaPC),
               rigaValore(SogliaLambdaMagroPC),
               rigaValore(ResetPC),
               rigaTpsMinimo()};
    // The shown entries first, each group followed by the partners the page derives.
    d.voci = {SogliaGiriEntrataMinimo,
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
              SogliaLambdaMagroPC};
    std::vector<RigaPagina> cutOff =
        campi({SogliaGiriEntrataCutOff, SogliaTpsEntrataCutOff, PosizioneMotorinoCutOff}, 8);
    cutOff.push_back(lista(11, TipoCO, "TipoCO"));
    std::vector<RigaPagina> pc = campi({SogliaGiriEntrataPC, SogliaTpsEntrataPC, SogliaLambdaRiccoPC}, 12);
    pc.push_back(lista(15, TipoPC, "TipoPC"));
    d.box = {box("BOXMINIMO", campi({SogliaGiriEntrataMinimo, SogliaTpsEntrataMinimo, SogliaLambdaRiccoMinimo,
                                     PassiControlloMinimo})),
             box("BOXNORMALE", campi({SogliaLambdaRiccoNormale, PassiRaddoppioNormale, PassiControlloNormale,
                                      PosizioneMotorinoNormale},
                                     4)),
             box("BOXCUTOFF", std::move(cutOff)), box("BOXPIENOCARICO", std::move(pc))};
    // Only the idle and cut-off TPS entries go when no TPS is fitted; the full-load one stays.
    d.righeTps = {1, 9};
    // One number moves the whole pair. ResetPC grows by a tenth at every Applica: kept so.
    d.derivati = {{SogliaGiriUscitaMinimo, SogliaGiriEntrataMinimo, 1, 100},
                  {SogliaTpsUscitaMinimo, SogliaTpsEntrataMinimo, 1, 5},
                  {SogliaLambdaMagroMinimo, SogliaLambdaRiccoMinimo, 1, -10},
                  {SogliaLambdaMagroNormale, SogliaLambdaRiccoNormale, 1, -10},
                  {ResetPC, ResetPC, 1.1, 0},
                  {SogliaGiriUscitaCutOff, SogliaGiriEntrataCutOff, 1, -200},
                  {SogliaTpsUscitaCutOff, SogliaTpsEntrataCutOff, 1, 5},
                  {SogliaGiriUscitaPC, SogliaGiriEntrataPC, 1, -200},
                  {SogliaTpsUscitaPC, SogliaTpsEntrataPC, 1, -5},
                  {SogliaLambdaMagroPC, SogliaLambdaRiccoPC, 1, -10}};
    d.zonaLavoro = true;
    return d;
}

DescrizionePagina piccola(IdPagina id, const char *sezione, int primoStato, BoxParametri parametri,
                          bool eeprom = false)
{
    DescrizionePagina d;
    d.id = id;
    d.sezione = QString::fromLatin1(sezione);
    d.primoStato = primoStato;
    for (const RigaPagina &r : parametri.righe) {
        d.piano.push_back(rigaValore(r.parametro, eeprom));
        d.voci.push_back(r.parametro);
    }
    d.box = {std::move(parametri)};
    d.scadenza = Scadenza::SoloMessaggio;
    return d;
}

DescrizionePagina paginaTps()
{
    DescrizionePagina d = piccola(
        IdPagina::MP_TPS, "MP_TPS", 211,
        box("BOXTPS", {listaBinaria(0, TipoTps, "TIPOTPS"), listaBinaria(1, TpsAutoadattante, "TPSAUTO")}));
    // Read as zero or not, as the parameter calibration page reads them, yet sent back as
    // the list's index. The group is that page's, and so are its messages: a time-out leaves
    // this page as it stands.
    d.gruppoCondiviso = true;
    d.scadenza = Scadenza::Muta;
    return d;
}

std::vector<DescrizionePagina> costruisci()
{
    return {
        lavoro(),
        pompata(),
        minimo(),
        normale(),
        pienoCarico(),
        cutOff(),
        piccola(IdPagina::MP_Stechio, "MP_Stechio", 181,
                box("BOXSTECHIO", campi({CampioniStechiometrici, CampioniMagro, CampioniRicco}))),
        // No RAM copy: read from EEPROM, and a RAM-only Applica has nothing to send.
        piccola(IdPagina::MP_InibizPC, "MP_InibizPC", 191,
                box("BOXINIBIZIONEPC", campi({InizioInibizionePC, DurataInibizionePC})), true),
        piccola(IdPagina::MP_RientroCO, "MP_RientroCO", 201,
                box("BOXRIENTROCO", {lista(0, TipoRIENTRO, "TipoRIENTRO")})),
        paginaTps(),
    };
}

} // namespace

char DescrizionePagina::rispostaAttesa(int stato) const
{
    if (stato == primoStato)
        return 'r';
    if (stato == primoStato + 1 || stato == primoStato + 2)
        return 'e';
    return 0;
}

std::vector<int> DescrizionePagina::vociInUso(bool assistenza) const
{
    std::vector<int> inUso;
    for (int v : voci) {
        bool nascosta = false;
        for (const BoxParametri &b : box)
            for (const RigaPagina &r : b.righe)
                nascosta = nascosta || (r.parametro == v && b.soloAssistenza && !assistenza);
        if (!nascosta)
            inUso.push_back(v);
    }
    return inUso;
}

const RigaPagina *DescrizionePagina::riga(int parametro) const
{
    for (const BoxParametri &b : box)
        for (const RigaPagina &r : b.righe)
            if (r.parametro == parametro)
                return &r;
    return nullptr;
}

const std::vector<DescrizionePagina> &TabellaPagine()
{
    static const std::vector<DescrizionePagina> tabella = costruisci();
    return tabella;
}

const DescrizionePagina *DescrizioneDi(IdPagina id)
{
    for (const DescrizionePagina &d : TabellaPagine())
        if (d.id == id)
            return &d;
    return nullptr;
}

} // namespace kv
