#pragma once

#include "SoglieMotore.h"

namespace kv::sim {

// The working zones as the stream reports them (channel MZONACT).
namespace Zona {
enum : int {
    Minimo = 1,      // idle
    Normale = 2,     // part load, closed loop on the lambda map
    PienoCarico = 3, // full load, open loop
    CutOff = 4,      // over-run fuel cut
    Rientro = 5,     // coming back from cut-off
};
} // namespace Zona

// Chooses the working zone from measured RPM and raw TPS with the entry and exit
// thresholds in RAM, so that every pair acts as a hysteresis:
// - idle: entered below both idle entry thresholds, left above either exit threshold;
// - cut-off: entered above the cut-off entry RPM with the throttle below its entry
//   threshold, left below the exit RPM or with the throttle above its exit threshold;
//   the firmware then spends DurataRientroMs in the return zone before normal running;
// - full load: entered above both full-load entry thresholds, left below either exit.
// Zones are only entered from normal running, and cut-off is checked before full load.
class ZonaLavoro
{
public:
    static constexpr int DurataRientroMs = 1000;

    int zona() const { return m_zona; }
    int aggiorna(int giri, int tps, const SoglieMotore &s, int dtMs);
    void azzera()
    {
        m_zona = Zona::Minimo;
        m_rientroMs = 0;
    }

private:
    int m_zona = Zona::Minimo;
    int m_rientroMs = 0;
};

} // namespace kv::sim
