#pragma once

#include "SoglieMotore.h"
#include "ZonaLavoro.h"

#include <QtGlobal>

#include <deque>
#include <random>
#include <utility>

namespace kv::sim {

// What the engine is asked to do. Ciclo is the demo drive; the others are what the
// calibration programs need from the car and from the fitter at the pedal.
enum class ModoMotore {
    Ciclo,         // idle, acceleration, cruise, full load, over-run, over and over
    Spento,        // engine stopped, key on
    Minimo,        // held at idle, pedal at rest
    PedalePremuto, // pedal pressed to the floor
    Sweep,         // idle, stepper swept end to end to check probe and stepper together
};

// One sample of the firmware's view: measured RPM, raw TPS and lambda (0..1023), stepper
// position and the derived states, as they go into a 'd' frame.
struct CampioneMotore
{
    int giri = 0;
    int tps = 0;
    int lambda = 0;
    int actpos = 0;
    int ricmag = 85; // 0 lean, 85 in the band, 255 rich
    int zona = Zona::Minimo;
    int pompata = 0;
    int tipalim = 0;     // 0 petrol, 1 gas
    bool acceso = false; // the engine fires, whatever the ECU's scale makes of its speed
};

// A small engine with a narrow-band lambda probe and the firmware's stepper loop around it.
// The true engine speed follows the phase of a drive cycle with first-order lags; the ECU
// measures it scaled by CostanteGiri (5000 is the car's true scale). The probe sees the
// mixture, stepper position against what the engine needs, 200 ms late, and switches
// sharply between lean and rich, so a bang-bang loop keeps it swinging across the
// thresholds of the zone in force. Everything the firmware decides comes from the
// thresholds it is handed, so a change of tuning shows in the next samples.
class ModelloMotore
{
public:
    static constexpr int ScalaVeraGiri = 5000;
    static constexpr int TpsRiposo = 60;
    static constexpr int TpsFondo = 950;

    explicit ModelloMotore(quint32 seme = 1, int durataCicloMs = 36000);

    CampioneMotore passo(int dtMs, const SoglieMotore &s, ModoMotore modo);

    // The application starts again: cycle from its beginning, petrol until warmed up.
    void riavvia();

    int durataCicloMs() const { return m_durataCicloMs; }
    qint64 tempoCicloMs() const { return m_tempoCicloMs; }
    double giriVeri() const { return m_giriVeri; }
    const CampioneMotore &ultimo() const { return m_ultimo; }

private:
    struct Obiettivo
    {
        double giri;
        double tps;
        double tauGiriS;
    };
    Obiettivo obiettivo(ModoMotore modo) const;
    void controllaMotorino(int dtMs, const SoglieMotore &s, int lambdaSoglie, ModoMotore modo);
    std::pair<int, int> soglieLambda(const SoglieMotore &s, int giri, int tps) const;
    double rumore(double ampiezza);

    int m_durataCicloMs;
    qint64 m_tempoMs = 0;
    qint64 m_tempoCicloMs = 0;
    double m_giriVeri = 850;
    double m_tps = TpsRiposo;
    double m_actpos = 110;
    int m_motorinoAccumuloMs = 0;
    int m_pompataMs = 0;
    int m_accesoMs = 0;
    double m_tpsPrecedente = TpsRiposo;
    std::deque<std::pair<qint64, double>> m_miscele;
    ZonaLavoro m_zona;
    CampioneMotore m_ultimo;
    std::mt19937 m_casuale;
};

} // namespace kv::sim
