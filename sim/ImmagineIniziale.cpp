#include "ImmagineIniziale.h"

#include "MemoriaEcu.h"

#include "variables/Catalogo.h"
#include "variables/Conversioni.h"

#include <cmath>
#include <utility>
#include <vector>

namespace kv::sim {

using namespace MappaMemoria;

namespace {

QByteArray campo(const QByteArray &testo, int larghezza)
{
    return testo.left(larghezza).leftJustified(larghezza, ' ');
}

// Factory tuning, raw numbers as the firmware keeps them (TPS and lambda on 0..1023,
// stepper rates as periods in ticks of 1.024 ms). The values hang together the way a
// fitter would leave them: idle entry < idle exit < cut-off exit < cut-off entry on the
// RPM scale, full-load exit below entry, lean below rich, axes and grids rising, and the
// TPS thresholds inside the calibrated travel 60..950.
std::vector<std::pair<int, int>> valoriDiFabbrica()
{
    std::vector<std::pair<int, int>> v = {
        {Par::CostanteGiri, 4600}, // about 8 % off the engine's true scale: RPM calibration has work to do
        {Par::SogliaGiriEntrataMinimo, 1100},
        {Par::SogliaGiriUscitaMinimo, 1200},
        {Par::SogliaGiriEntrataCutOff, 2000},
        {Par::SogliaGiriUscitaCutOff, 1800},
        {Par::SogliaGiriEntrataPC, 2000},
        {Par::SogliaGiriUscitaPC, 1800},
        {Par::SogliaTpsEntrataMinimo, 80},
        {Par::SogliaTpsUscitaMinimo, 100},
        {Par::SogliaTpsEntrataPC, 850},
        {Par::SogliaTpsUscitaPC, 800},
        {Par::SogliaTpsEntrataCutOff, 80},
        {Par::SogliaTpsUscitaCutOff, 110},
        {Par::TpsTaratoMinimo, 60},
        {Par::TpsTaratoMassimo, 950},
        {Par::SogliaLambdaMagroMinimo, 400},
        {Par::SogliaLambdaRiccoMinimo, 600},
        {Par::SogliaLambdaMagroPC, 350},
        {Par::SogliaLambdaRiccoPC, 640},
        {Par::SogliaLambdaMagroNormale, 380},
        {Par::SogliaLambdaRiccoNormale, 580},
        {Par::ScalaLambda, 0},
        {Par::TipoNOR, 0}, // the map in force
        {Par::BaseEmulazione, 512},
        {Par::ValoreEmulazione, 0x85},
        {Par::TempoDisabilitazioneControllo, 30},
        {Par::TempoAnomaliaLambda, 600},
        {Par::PassiControlloMinimo, 3},
        {Par::PassiRaddoppioNormale, 10},
        {Par::PassiControlloNormale, 4},
        {Par::PosizioneMotorinoNormale, 120},
        {Par::ResetPC, 150},
        {Par::PcConf, 0}, // full load by the grid, TPS and position per RPM zone
        {Par::TipoPC, 0},
        {Par::PosizioneMotorinoCutOff, 30},
        {Par::TipoCO, 1},
        {Par::FrequenzaControlloMinimo, 98}, // about 10 steps/s
        {Par::PrimaFrequenzaNormale, 49},    // about 20 steps/s
        {Par::SecondaFrequenzaNormale, 39},  // about 25 steps/s
        {Par::IncrementoTps, 40},
        {Par::TempoIncrementoTps, 300},
        {Par::TempoInibizionePompata, 10},
        {Par::CampioniStechiometrici, 4},
        {Par::CampioniMagro, 3},
        {Par::CampioniRicco, 3},
        {Par::InizioInibizionePC, 2000},
        {Par::DurataInibizionePC, 5000},
        {Par::TipoRIENTRO, 0},
        {Par::TipoTps, 0},
        {Par::TpsAutoadattante, 255},
    };
    const int giriPompata[Par::ElementiGiriPompata] = {1500, 2500, 3500, 4500};
    for (int i = 0; i < Par::ElementiGiriPompata; ++i)
        v.emplace_back(Par::GiriPompata + i, giriPompata[i]);
    const int pompata[Par::ElementiPercentualePompata] = {12, 8, 4, 0x82, 0x85}; // sign and magnitude
    for (int i = 0; i < Par::ElementiPercentualePompata; ++i)
        v.emplace_back(Par::PercentualePompata + i, pompata[i]);
    const int asseTps[Par::ElementiAsseTps] = {120, 300, 520, 760};
    for (int i = 0; i < Par::ElementiAsseTps; ++i)
        v.emplace_back(Par::AsseTpsMappa + i, asseTps[i]);
    for (int i = 0; i < Par::ElementiAsseGiri; ++i)
        v.emplace_back(Par::AsseGiriMappa + i, 1000 + 500 * i);
    // A map as a fitter leaves it, in shown units (0..255) turned raw: the band rises with
    // load, is a little leaner in the middle of the RPM range and wider at the top of it.
    const auto grezzo = [](double mostrato) { return int(std::lround(mostrato * 1023 / 255)); };
    for (int i = 0; i < Par::CelleMappa; ++i) {
        const int giri = i / 5;
        const int tps = i % 5;
        const double magro =
            84 + 5 * tps + std::round(4 * std::sin(3.14159 * giri / 7)) + (giri >= 6 ? 3 : 0);
        const double ricco = magro + 46 + 3 * tps + (giri >= 5 ? 4 : 0) - (giri == 0 ? 4 : 0);
        v.emplace_back(Par::SogliaMagroMappa + i, grezzo(magro));
        v.emplace_back(Par::SogliaRiccoMappa + i, grezzo(ricco));
    }
    const int giriRts[Par::ElementiGiriRTS] = {1500, 2000, 2500, 3000, 3500, 4200, 5000};
    for (int i = 0; i < Par::ElementiGiriRTS; ++i)
        v.emplace_back(Par::GiriRTS + i, giriRts[i]);
    const int tpsRts[Par::ElementiTpsRTS] = {560, 600, 650, 700, 760, 820, 880, 920};
    for (int i = 0; i < Par::ElementiTpsRTS; ++i)
        v.emplace_back(Par::TpsRTS + i, tpsRts[i]);
    const int posizioneRts[Par::ElementiPosizioneRTS] = {70, 84, 97, 110, 124, 139, 152, 165};
    for (int i = 0; i < Par::ElementiPosizioneRTS; ++i)
        v.emplace_back(Par::PosizioneRTS + i, posizioneRts[i]);
    return v;
}

void scriviValore(MemoriaEcu &memoria, qint32 indirizzo, int dimensione, int valore)
{
    if (indirizzo >= 0)
        memoria.scrivi(quint32(indirizzo), ByteBE(valore, dimensione));
}

} // namespace

void ScriviVersione(MemoriaEcu &memoria, const StringheVersione &versione)
{
    memoria.scrivi(Veicolo, campo(versione.veicolo, LunghezzaVeicolo));
    memoria.scrivi(Data, campo(versione.data, LunghezzaData));
    memoria.scrivi(Codice, campo(versione.codice, LunghezzaCodice));
    memoria.scrivi(DatoA, campo(versione.datoA, LunghezzaDatoA));
    memoria.scrivi(DatoB, campo(versione.datoB, LunghezzaDatoB));
}

void ScriviImmagineIniziale(MemoriaEcu &memoria, const Catalogo &catalogo, const StringheVersione &versione)
{
    // A reset vector and a jump at the start make the image look like code to anyone
    // who dumps it; the firmware itself is not simulated.
    memoria.scrivi(InizioSoftware, QByteArray::fromHex("7EC3007EC300"));
    memoria.scrivi(FineSoftware - 1, QByteArray::fromHex("C000"));
    ScriviVersione(memoria, versione);
    for (const auto &[indice, valore] : valoriDiFabbrica()) {
        const Parametro &p = catalogo.Parametri[indice];
        scriviValore(memoria, p.IndirizzoEE, p.Dimensione, valore);
    }
}

void AvviaRam(MemoriaEcu &memoria, const Catalogo &catalogo)
{
    memoria.azzeraRam();
    for (const auto &[indice, valore] : valoriDiFabbrica()) {
        const Parametro &p = catalogo.Parametri[indice];
        if (p.IndirizzoEE < 0)
            scriviValore(memoria, p.IndirizzoRAM, p.Dimensione, valore);
    }
    for (const Parametro &p : catalogo.Parametri) {
        if (p.IndirizzoRAM >= 0 && p.IndirizzoEE >= 0)
            memoria.scrivi(quint32(p.IndirizzoRAM), memoria.leggi(quint32(p.IndirizzoEE), p.Dimensione));
    }
}

} // namespace kv::sim
