#include "pages/PianiLettura.h"

#include "link/Frame.h"
#include "variables/Catalogo.h"

namespace kv {

namespace {

RigaLettura valore(int parametro)
{
    return {TipoRiga::Valore, parametro};
}
RigaLettura valoreEE(int parametro)
{
    return {TipoRiga::Valore, parametro, true};
}
RigaLettura limite(int parametro)
{
    return {TipoRiga::SoloLimite, parametro};
}
RigaLettura limiteEE(int parametro)
{
    return {TipoRiga::SoloLimite, parametro, true};
}
RigaLettura scalaLambda()
{
    return {TipoRiga::ScalaLambda, Par::ScalaLambda};
}
RigaLettura tpsMinimo()
{
    return {TipoRiga::TpsMinimo, Par::TpsTaratoMinimo, true};
}
RigaLettura blocco(int base, int elementi, bool eeprom = false)
{
    return {TipoRiga::Blocco, base, eeprom, elementi};
}

std::vector<PianoLettura> costruisci()
{
    using namespace Par;
    std::vector<PianoLettura> piani;

    // The lambda flag always comes before the first lambda threshold, and the low TPS
    // point always last: its row decides TPS presence once everything else is in.
    piani.push_back(
        {1,
         Pagina::Minimo,
         true,
         {valore(SogliaGiriEntrataMinimo), valore(SogliaTpsEntrataMinimo), scalaLambda(),
          valore(SogliaLambdaRiccoMinimo), valore(PassiControlloMinimo), limite(SogliaGiriUscitaCutOff),
          limiteEE(TpsTaratoMassimo), valore(SogliaGiriUscitaMinimo), valore(SogliaTpsUscitaMinimo),
          valore(SogliaLambdaMagroMinimo), valore(FrequenzaControlloMinimo), tpsMinimo()}});

    PianoLettura normale{11,
                         Pagina::Normale,
                         false,
                         {scalaLambda(),
                          valore(SogliaLambdaRiccoNormale),
                          valore(PassiRaddoppioNormale),
                          valore(PassiControlloNormale),
                          valore(PosizioneMotorinoNormale),
                          valore(SogliaLambdaMagroNormale),
                          valore(TipoNOR),
                          valore(PrimaFrequenzaNormale),
                          valore(SecondaFrequenzaNormale),
                          {TipoRiga::Ignorata, TpsTaratoMassimo, true},
                          blocco(AsseTpsMappa, ElementiAsseTps),
                          blocco(AsseGiriMappa, ElementiAsseGiri)}};
    // Four frames of ten cells: two columns of five TPS zones each.
    for (int k = 0; k < 4; ++k)
        normale.righe.push_back({TipoRiga::BloccoMappa, SogliaMagroMappa + 10 * k, false, 10});
    normale.righe.push_back(tpsMinimo());
    piani.push_back(normale);

    piani.push_back(
        {21,
         Pagina::PienoCarico,
         true,
         {valore(SogliaGiriEntrataPC), valore(SogliaTpsEntrataPC), scalaLambda(), valore(SogliaLambdaRiccoPC),
          valore(TipoPC), limite(SogliaTpsUscitaCutOff), limiteEE(TpsTaratoMassimo),
          valore(SogliaGiriUscitaPC), valore(SogliaTpsUscitaPC), valore(SogliaLambdaMagroPC), valore(PcConf),
          valore(ResetPC), blocco(GiriRTS, ElementiGiriRTS), blocco(TpsRTS, ElementiTpsRTS, true),
          blocco(PosizioneRTS, ElementiPosizioneRTS, true), tpsMinimo()}});

    piani.push_back(
        {31,
         Pagina::CutOff,
         true,
         {valore(SogliaGiriEntrataCutOff), valore(SogliaTpsEntrataCutOff), valore(PosizioneMotorinoCutOff),
          valore(TipoCO), limite(SogliaGiriUscitaMinimo), limiteEE(TpsTaratoMassimo),
          valore(SogliaGiriUscitaCutOff), valore(SogliaTpsUscitaCutOff), tpsMinimo()}});

    PianoLettura pompata{41, Pagina::Pompata, false, {}};
    for (int i = 0; i < ElementiGiriPompata; ++i)
        pompata.righe.push_back(valore(GiriPompata + i));
    for (int i = 0; i < ElementiPercentualePompata; ++i)
        pompata.righe.push_back(valore(PercentualePompata + i));
    for (int p : {IncrementoTps, TempoIncrementoTps, TempoInibizionePompata})
        pompata.righe.push_back(valore(p));
    piani.push_back(pompata);

    piani.push_back({51,
                     Pagina::Lavoro,
                     true,
                     {valore(SogliaGiriEntrataMinimo),
                      valore(SogliaTpsEntrataMinimo),
                      scalaLambda(),
                      valore(SogliaLambdaRiccoMinimo),
                      valore(PassiControlloMinimo),
                      valore(SogliaLambdaRiccoNormale),
                      valore(PassiRaddoppioNormale),
                      valore(PassiControlloNormale),
                      valore(PosizioneMotorinoNormale),
                      valore(SogliaGiriEntrataCutOff),
                      valore(SogliaTpsEntrataCutOff),
                      valore(PosizioneMotorinoCutOff),
                      valore(TipoCO),
                      valore(SogliaGiriEntrataPC),
                      valore(SogliaTpsEntrataPC),
                      valore(SogliaLambdaRiccoPC),
                      valore(TipoPC),
                      limite(SogliaGiriUscitaCutOff),
                      limiteEE(TpsTaratoMassimo),
                      valore(SogliaGiriUscitaMinimo),
                      valore(SogliaTpsUscitaMinimo),
                      valore(SogliaLambdaMagroMinimo),
                      valore(SogliaLambdaMagroNormale),
                      valore(SogliaTpsUscitaCutOff),
                      valore(SogliaGiriUscitaPC),
                      valore(SogliaTpsUscitaPC),
                      valore(SogliaLambdaMagroPC),
                      valore(ResetPC),
                      tpsMinimo()}});

    piani.push_back({181,
                     Pagina::Qualsiasi,
                     false,
                     {valore(CampioniStechiometrici), valore(CampioniMagro), valore(CampioniRicco)}});
    piani.push_back(
        {191, Pagina::Qualsiasi, false, {valoreEE(InizioInibizionePC), valoreEE(DurataInibizionePC)}});
    piani.push_back({201, Pagina::Qualsiasi, false, {valore(TipoRIENTRO)}});
    return piani;
}

} // namespace

const std::vector<PianoLettura> &PianiLettura()
{
    static const std::vector<PianoLettura> piani = costruisci();
    return piani;
}

const PianoLettura *PianoPerStato(int primoStato)
{
    for (const PianoLettura &p : PianiLettura())
        if (p.stato == primoStato)
            return &p;
    return nullptr;
}

qint32 IndirizzoRiga(const Catalogo &catalogo, const RigaLettura &riga)
{
    if (!Catalogo::indiceValido(riga.parametro))
        return -1;
    const Parametro &p = catalogo.Parametri[static_cast<size_t>(riga.parametro)];
    return riga.eeprom ? p.IndirizzoEE : p.IndirizzoRAM;
}

int ConteggioRiga(const Catalogo &catalogo, const RigaLettura &riga)
{
    // A block asks for the sum of its elements' sizes; a map cell is a lean and a rich word.
    const int parole = riga.tipo == TipoRiga::BloccoMappa ? 2 : 1;
    int conteggio = 0;
    for (int j = 0; j < riga.elementi; ++j) {
        const int indice = riga.parametro + j;
        if (Catalogo::indiceValido(indice))
            conteggio += parole * catalogo.Parametri[static_cast<size_t>(indice)].Dimensione;
    }
    return conteggio;
}

QByteArray RichiestaLettura(const Catalogo &catalogo, const RigaLettura &riga)
{
    const qint32 indirizzo = IndirizzoRiga(catalogo, riga);
    QByteArray dati(1, 'R');
    dati += ParolaInByte(static_cast<quint32>(indirizzo < 0 ? 0 : indirizzo));
    dati += static_cast<char>(ConteggioRiga(catalogo, riga));
    return dati;
}

} // namespace kv
