#pragma once

#include <array>

namespace kv::sim {

// The tuning the firmware runs on, as raw numbers out of its RAM: RPM as measured, TPS and
// lambda on 0..1023 (lambda on 0..255 when scalaLambda255), stepper rates as periods in
// ticks of 1.024 ms.
struct SoglieMotore
{
    int costanteGiri = 5000;

    int giriEntrataMinimo = 1100;
    int giriUscitaMinimo = 1200;
    int giriEntrataCutOff = 2000;
    int giriUscitaCutOff = 1800;
    int giriEntrataPC = 2000;
    int giriUscitaPC = 1800;

    int tpsEntrataMinimo = 80;
    int tpsUscitaMinimo = 100;
    int tpsEntrataPC = 850;
    int tpsUscitaPC = 800;
    int tpsEntrataCutOff = 80;
    int tpsUscitaCutOff = 110;

    int lambdaMagroMinimo = 400;
    int lambdaRiccoMinimo = 600;
    int lambdaMagroNormale = 380;
    int lambdaRiccoNormale = 580;
    int lambdaMagroPC = 350;
    int lambdaRiccoPC = 640;
    bool scalaLambda255 = false;

    int tipoNor = 0; // 0: the normal zone runs on the map, otherwise on its two thresholds
    std::array<int, 4> asseTps{120, 300, 520, 760};
    std::array<int, 7> asseGiri{1000, 1500, 2000, 2500, 3000, 3500, 4000};
    std::array<int, 40> magroMappa = uniforme(370);
    std::array<int, 40> riccoMappa = uniforme(590);

    int passiMinimo = 3;
    int passiNormale = 4;
    int periodoMinimo = 98;
    int periodoNormale = 49;
    int posizioneNormale = 120;
    int posizioneCutOff = 30;
    int resetPC = 150;

    int incrementoTps = 40;
    int tempoIncrementoTps = 300;

private:
    static constexpr std::array<int, 40> uniforme(int valore)
    {
        std::array<int, 40> a{};
        a.fill(valore);
        return a;
    }
};

} // namespace kv::sim
