#include "variables/Catalogo.h"

#include "variables/Conversioni.h"
#include "variables/Formato.h"

#include <algorithm>

namespace kv {

namespace {
constexpr double RunTime = -1;
constexpr qint32 Nessuno = -1;
} // namespace

bool TpsPresenteDa(double tpsTaratoMassimo, double tpsTaratoMinimo)
{
    return !(tpsTaratoMassimo == 255 && tpsTaratoMinimo == 255);
}

Catalogo::Catalogo()
{
    InizializzaParametri();
}

void Catalogo::imposta(int indice, qint32 ram, qint32 ee, qint16 dimensione, double min, double max,
                       Conversione conv)
{
    Parametri[indice] = {min, max, ram, ee, dimensione, conv};
}

void Catalogo::InizializzaParametri()
{
    using C = Conversione;

    imposta(Par::CostanteGiri, 0x0105, 0xC122, 2, 0, 65535, C::I);
    imposta(Par::SogliaGiriEntrataMinimo, 0x00A0, 0xC128, 2, 400, RunTime, C::I);
    imposta(Par::SogliaGiriUscitaMinimo, 0x00A2, 0xC12A, 2, RunTime, RunTime, C::I);
    imposta(Par::SogliaGiriEntrataCutOff, 0x0098, 0xC124, 2, RunTime, 10000, C::I);
    imposta(Par::SogliaGiriUscitaCutOff, 0x009A, 0xC126, 2, RunTime, RunTime, C::I);
    imposta(Par::SogliaGiriEntrataPC, 0x00AC, 0xC12C, 2, RunTime, 10000, C::I);
    imposta(Par::SogliaGiriUscitaPC, 0x00AE, 0xC12E, 2, 400, RunTime, C::I);
    for (int i = 0; i < Par::ElementiGiriPompata; ++i)
        imposta(Par::GiriPompata + i, 0x0150 + 2 * i, 0xC1F0 + 2 * i, 2, RunTime, RunTime, C::I);

    imposta(Par::SogliaTpsEntrataMinimo, 0x009C, 0xC118, 2, 0, RunTime, C::A);
    imposta(Par::SogliaTpsUscitaMinimo, 0x009E, 0xC11A, 2, RunTime, RunTime, C::A);
    imposta(Par::SogliaTpsEntrataPC, 0x00A8, 0xC11C, 2, 0, 255, C::A);
    imposta(Par::SogliaTpsUscitaPC, 0x00AA, 0xC11E, 2, 0, 255, C::A);
    imposta(Par::SogliaTpsEntrataCutOff, 0x0094, 0xC114, 2, 0, RunTime, C::A);
    imposta(Par::SogliaTpsUscitaCutOff, 0x0096, 0xC116, 2, RunTime, RunTime, C::A);
    imposta(Par::TpsTaratoMinimo, Nessuno, 0xC110, 2, 0, 255, C::A);
    imposta(Par::TpsTaratoMassimo, Nessuno, 0xC112, 2, 0, 255, C::A);

    imposta(Par::SogliaLambdaRiccoMinimo, 0x00A6, 0xC136, 2, RunTime, 255, C::L);
    imposta(Par::SogliaLambdaMagroMinimo, 0x00A4, 0xC134, 2, 0, RunTime, C::L);
    imposta(Par::SogliaLambdaRiccoPC, 0x00B2, 0xC13E, 2, RunTime, 255, C::L);
    imposta(Par::SogliaLambdaMagroPC, 0x00B0, 0xC13C, 2, 0, RunTime, C::L);
    imposta(Par::SogliaLambdaMagroNormale, 0x0090, 0xC138, 2, 0, RunTime, C::L);
    imposta(Par::SogliaLambdaRiccoNormale, 0x0092, 0xC13A, 2, RunTime, 255, C::L);
    imposta(Par::ScalaLambda, 0x015B, Nessuno, 1, 0, 255, C::F);

    imposta(Par::TipoNOR, 0x0111, 0xC160, 1, 0, 255, C::I);
    imposta(Par::BaseEmulazione, 0x00B8, Nessuno, 2, 0, 32767, C::I);
    imposta(Par::ValoreEmulazione, 0x015C, 0xC162, 1, 0, 255, C::I);
    imposta(Par::TempoDisabilitazioneControllo, Nessuno, 0xC164, 1, 0, 255, C::I);
    imposta(Par::TempoAnomaliaLambda, Nessuno, 0xC166, 2, 0, 65535, C::I);
    imposta(Par::PercentualeEmulazione, Nessuno, Nessuno, 2, 0, 100, C::I);
    imposta(Par::PassiControlloMinimo, 0x012C, 0xC144, 1, 0, 50, C::I);
    imposta(Par::PassiRaddoppioNormale, 0x010B, 0xC146, 1, 0, 50, C::I);
    imposta(Par::PassiControlloNormale, 0x010A, 0xC145, 1, 0, 50, C::I);
    imposta(Par::PosizioneMotorinoNormale, 0x010C, 0xC10D, 1, 40, 190, C::I);
    imposta(Par::ResetPC, 0x0135, 0xC10F, 1, 40, 190, C::I);
    imposta(Par::PcConf, 0x012F, 0xC141, 1, 0, 255, C::I);
    imposta(Par::TipoPC, 0x0130, 0xC142, 1, 0, 255, C::I);
    imposta(Par::PosizioneMotorinoCutOff, 0x012A, 0xC10E, 1, 0, 100, C::I);
    imposta(Par::TipoCO, 0x0128, 0xC143, 1, 0, 255, C::I);
    for (int i = 0; i < Par::ElementiPercentualePompata; ++i)
        imposta(Par::PercentualePompata + i, 0x014A + i, 0xC1FA + i, 1, -50, 50, C::S);

    imposta(Par::FrequenzaControlloMinimo, 0x012D, 0xC148, 2, 0, 20, C::P);
    imposta(Par::PrimaFrequenzaNormale, 0x010D, 0xC14A, 2, 1, 30, C::P);
    imposta(Par::SecondaFrequenzaNormale, 0x010F, 0xC14C, 2, 1, 30, C::P);

    for (int i = 0; i < Par::ElementiAsseTps; ++i)
        imposta(Par::AsseTpsMappa + i, 0x0112 + 2 * i, 0xC240 + 2 * i, 2, 0, 255, C::A);
    for (int i = 0; i < Par::ElementiAsseGiri; ++i)
        imposta(Par::AsseGiriMappa + i, 0x011A + 2 * i, 0xC250 + 2 * i, 2, 0, 10000, C::I);
    for (int i = 0; i < Par::CelleMappa; ++i) {
        imposta(Par::SogliaMagroMappa + i, 0x015E + 4 * i, 0xC260 + 4 * i, 2, 0, RunTime, C::L);
        imposta(Par::SogliaRiccoMappa + i, 0x0160 + 4 * i, 0xC262 + 4 * i, 2, RunTime, 255, C::L);
    }

    imposta(Par::IncrementoTps, 0x0145, 0xC156, 2, 0, 255, C::A);
    imposta(Par::TempoIncrementoTps, 0x00B6, 0xC158, 2, 0, 5000, C::I);
    imposta(Par::TempoInibizionePompata, 0x0159, 0xC15A, 1, 0, 255, C::I);
    imposta(Par::CampioniStechiometrici, 0x0101, 0xC105, 1, 1, 255, C::I);
    imposta(Par::CampioniMagro, 0x0102, 0xC104, 1, 1, 255, C::I);
    imposta(Par::CampioniRicco, 0x0103, 0xC106, 1, 1, 255, C::I);
    imposta(Par::InizioInibizionePC, Nessuno, 0xC150, 2, 0, 10000, C::I);
    imposta(Par::DurataInibizionePC, Nessuno, 0xC152, 2, 0, 10000, C::I);
    imposta(Par::TipoRIENTRO, 0x0129, 0xC140, 1, 0, 255, C::I);
    imposta(Par::TipoTps, 0x0108, 0xC108, 1, 0, 255, C::I);
    imposta(Par::TpsAutoadattante, 0x0109, 0xC109, 1, 0, 255, C::I);

    for (int i = 0; i < Par::ElementiGiriRTS; ++i) {
        const double min = i == 0 ? 400 : RunTime;
        const double max = i == Par::ElementiGiriRTS - 1 ? 10000 : RunTime;
        imposta(Par::GiriRTS + i, 0x0137 + 2 * i, 0xC210 + 2 * i, 2, min, max, C::I);
    }
    for (int i = 0; i < Par::ElementiTpsRTS; ++i)
        imposta(Par::TpsRTS + i, Nessuno, 0xC200 + 2 * i, 2, 0, 255, C::A);
    // One byte each, yet two addresses apart: that is where the ECU keeps them.
    for (int i = 0; i < Par::ElementiPosizioneRTS; ++i)
        imposta(Par::PosizioneRTS + i, Nessuno, 0xC220 + 2 * i, 1, 40, 190, C::I);

    for (ValoreParametro &v : Valori)
        v = ValoreParametro{-1, -1, -1, QStringLiteral("#0")};
    // Kept on purpose without a mask: the entry has always been shown as a plain number,
    // and for the whole numbers it holds that looks the same as "#0".
    Valori[Par::SogliaGiriUscitaPC].Formato.clear();
}

bool Catalogo::lambdaScalata() const
{
    return Valori[Par::ScalaLambda].Letto == 0;
}

double Catalogo::scalaLetturaAnalogica(int indice, double grezzo) const
{
    // Through the mask and back, so the stored value is exactly what the field shows.
    return ValNumero(FormattaNumero(Scala1023(grezzo), Valori[indice].Formato));
}

double Catalogo::daGrezzo(int indice, double grezzo) const
{
    if (!indiceValido(indice))
        return grezzo;
    switch (Parametri[indice].Conv) {
    case Conversione::A:
        return scalaLetturaAnalogica(indice, grezzo);
    case Conversione::L:
        return lambdaScalata() ? scalaLetturaAnalogica(indice, grezzo) : grezzo;
    case Conversione::P:
        return FrequenzaPeriodo(grezzo);
    case Conversione::S:
        return SegnoModulo(grezzo);
    case Conversione::F:
        return grezzo != 0 ? 255 : 0;
    case Conversione::I:
        break;
    }
    return grezzo;
}

double Catalogo::aGrezzo(int indice, double mostrato) const
{
    if (!indiceValido(indice))
        return mostrato;
    switch (Parametri[indice].Conv) {
    case Conversione::A:
        return std::clamp(Scala255(mostrato), 0.0, 1023.0);
    case Conversione::L:
        return lambdaScalata() ? std::clamp(Scala255(mostrato), 0.0, 1023.0) : mostrato;
    case Conversione::P:
        return FrequenzaPeriodo(mostrato);
    case Conversione::S:
        return CodificaSegnoModulo(mostrato);
    case Conversione::F: // never written; the flag goes back as it stands
    case Conversione::I:
        break;
    }
    return mostrato;
}

void Catalogo::registraLettura(int indice, double mostrato)
{
    if (!indiceValido(indice))
        return;
    ValoreParametro &v = Valori[indice];
    v.Letto = mostrato;
    v.Corrente = mostrato;
    v.Memorizzato = mostrato;
}

void Catalogo::azzeraValori(int indice)
{
    registraLettura(indice, -1);
}

QString Catalogo::formatta(int indice, double valore) const
{
    if (!indiceValido(indice))
        return {};
    return FormattaNumero(valore, Valori[indice].Formato);
}

QString Catalogo::suggerimentoIntervallo(int indice) const
{
    if (!indiceValido(indice))
        return {};
    return formatta(indice, Parametri[indice].Min) + QStringLiteral(" - ")
           + formatta(indice, Parametri[indice].Max);
}

QList<int> Catalogo::aggiornaLimiti(int sorgente, double valore, Pagina pagina, Occasione occasione)
{
    QList<int> toccati;
    if (!indiceValido(sorgente))
        return toccati;
    for (const LimiteIncrociato &r : TabellaLimitiIncrociati()) {
        if (r.sorgente != sorgente)
            continue;
        if (r.pagina != pagina && r.pagina != Pagina::Qualsiasi)
            continue;
        if (r.soloLettura && occasione != Occasione::Lettura)
            continue;
        const double limite = r.daSorgente ? valore : r.fisso;
        Parametro &p = Parametri[r.bersaglio];
        (r.lato == Lato::Min ? p.Min : p.Max) = limite;
        if (!toccati.contains(r.bersaglio))
            toccati.append(r.bersaglio);
    }
    return toccati;
}

} // namespace kv
