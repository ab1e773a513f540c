#include "ModelloMotore.h"

#include <algorithm>
#include <cmath>

namespace kv::sim {

namespace {
constexpr double Pi = 3.14159265358979323846;
constexpr qint64 RitardoSondaMs = 200;
constexpr int GiriMotoreAvviato = 300;
constexpr int RiscaldamentoMs = 4000;    // on petrol until the reducer is warm
constexpr double VelocitaPedale = 1500;  // raw TPS per second
constexpr double VelocitaMotorino = 200; // steps per second when driven to a position
constexpr int DurataSweepMs = 6000;

// Phases of the drive cycle in seconds of a 36-second cycle; other lengths stretch them.
struct Fase
{
    double fine;
    double giri;
    double tps;
    double tauGiriS;
    double ondaTps; // the driver's foot is never quite still at part throttle
};
constexpr Fase FasiCiclo[] = {
    {8, 850, ModelloMotore::TpsRiposo, 1.0, 0},  // idle
    {11, 3000, 600, 1.0, 0},                     // acceleration
    {20, 2500, 330, 1.2, 30},                    // cruise
    {26, 4600, 945, 1.2, 0},                     // full load
    {32, 950, ModelloMotore::TpsRiposo, 2.5, 0}, // over-run: the fuel cut shows here
    {36, 850, ModelloMotore::TpsRiposo, 1.0, 0}, // back to idle
};

int periodoMs(int ticks)
{
    // A period of 0 would stop the loop; the firmware then runs at its slowest rate.
    return ticks > 0 ? std::max(1, int(std::lround(ticks * 1.024))) : 100;
}

int banda(int valore, const int *assi, int n)
{
    int b = 0;
    while (b < n && valore > assi[b])
        ++b;
    return b;
}
} // namespace

ModelloMotore::ModelloMotore(quint32 seme, int durataCicloMs)
    : m_durataCicloMs(std::max(1000, durataCicloMs))
    , m_casuale(seme)
{}

double ModelloMotore::rumore(double ampiezza)
{
    std::uniform_real_distribution<double> d(-ampiezza, ampiezza);
    return d(m_casuale);
}

void ModelloMotore::riavvia()
{
    m_tempoCicloMs = 0;
    m_accesoMs = 0;
    m_zona.azzera();
    m_miscele.clear();
}

ModelloMotore::Obiettivo ModelloMotore::obiettivo(ModoMotore modo) const
{
    switch (modo) {
    case ModoMotore::Spento:
        return {0, TpsRiposo, 0.3};
    case ModoMotore::Minimo:
    case ModoMotore::Sweep:
        return {850, TpsRiposo, 0.6};
    case ModoMotore::PedalePremuto:
        return {850 + (m_tps - TpsRiposo) * 1.6, TpsFondo, 0.8};
    case ModoMotore::Ciclo:
        break;
    }
    const double s = double(m_tempoCicloMs) * 36.0 / m_durataCicloMs;
    for (const Fase &f : FasiCiclo) {
        if (s < f.fine)
            return {f.giri, f.tps + f.ondaTps * std::sin(2 * Pi * s / 3), f.tauGiriS};
    }
    return {850, TpsRiposo, 1.0};
}

std::pair<int, int> ModelloMotore::soglieLambda(const SoglieMotore &s, int giri, int tps) const
{
    switch (m_zona.zona()) {
    case Zona::Minimo:
        return {s.lambdaMagroMinimo, s.lambdaRiccoMinimo};
    case Zona::PienoCarico:
        return {s.lambdaMagroPC, s.lambdaRiccoPC};
    case Zona::Normale:
        if (s.tipoNor == 0) {
            const int cella = banda(giri, s.asseGiri.data(), int(s.asseGiri.size())) * 5
                              + banda(tps, s.asseTps.data(), int(s.asseTps.size()));
            return {s.magroMappa[cella], s.riccoMappa[cella]};
        }
        break;
    default:
        break;
    }
    return {s.lambdaMagroNormale, s.lambdaRiccoNormale};
}

void ModelloMotore::controllaMotorino(int dtMs, const SoglieMotore &s, int lambdaSoglie, ModoMotore modo)
{
    const auto verso = [&](double posizione) {
        const double passo = VelocitaMotorino * dtMs / 1000.0;
        m_actpos += std::clamp(posizione - m_actpos, -passo, passo);
    };
    if (modo == ModoMotore::Spento)
        return;
    if (modo == ModoMotore::Sweep) {
        const double f = double(m_tempoMs % DurataSweepMs) / DurataSweepMs;
        verso(40 + 150 * (f < 0.5 ? 2 * f : 2 - 2 * f));
        return;
    }
    switch (m_zona.zona()) {
    case Zona::PienoCarico:
        verso(s.resetPC);
        return;
    case Zona::CutOff:
        verso(s.posizioneCutOff);
        return;
    case Zona::Rientro:
        verso(s.posizioneNormale);
        return;
    default:
        break;
    }
    const bool minimo = m_zona.zona() == Zona::Minimo;
    const int periodo = periodoMs(minimo ? s.periodoMinimo : s.periodoNormale);
    const int passi = minimo ? s.passiMinimo : s.passiNormale;
    const auto [magro, ricco] = soglieLambda(s, m_ultimo.giri, m_ultimo.tps);
    m_motorinoAccumuloMs += dtMs;
    while (m_motorinoAccumuloMs >= periodo) {
        m_motorinoAccumuloMs -= periodo;
        if (lambdaSoglie < magro)
            m_actpos += passi;
        else if (lambdaSoglie > ricco)
            m_actpos -= passi;
    }
}

CampioneMotore ModelloMotore::passo(int dtMs, const SoglieMotore &s, ModoMotore modo)
{
    dtMs = std::max(dtMs, 0);
    m_tempoMs += dtMs;
    if (modo == ModoMotore::Ciclo)
        m_tempoCicloMs = (m_tempoCicloMs + dtMs) % m_durataCicloMs;

    const Obiettivo o = obiettivo(modo);
    const double dt = dtMs / 1000.0;
    m_giriVeri += (o.giri - m_giriVeri) * (1 - std::exp(-dt / o.tauGiriS));
    if (o.giri == 0 && m_giriVeri < 2 * GiriMotoreAvviato / 3)
        m_giriVeri = 0; // too slow to fire: it stops
    const double corsa = VelocitaPedale * dt;
    m_tps += std::clamp(o.tps - m_tps, -corsa, corsa);

    const bool acceso = m_giriVeri > GiriMotoreAvviato;
    m_accesoMs = acceso ? std::min(m_accesoMs + dtMs, RiscaldamentoMs) : 0;

    CampioneMotore c;
    c.acceso = acceso;
    const double giriVisti = acceso ? m_giriVeri + rumore(12) : m_giriVeri;
    c.giri = int(std::clamp(std::lround(giriVisti * s.costanteGiri / ScalaVeraGiri), 0L, 65535L));
    const bool aRiposo = std::abs(m_tps - TpsRiposo) < 1;
    c.tps = int(std::clamp(std::lround(m_tps + rumore(aRiposo ? 1.4 : 3)), 0L, 1023L));

    const int dtPompata = dtMs > 0 ? dtMs : 1;
    if (s.incrementoTps > 0 && (c.tps - m_tpsPrecedente) * 100.0 / dtPompata > s.incrementoTps)
        m_pompataMs = std::max(s.tempoIncrementoTps, 100);
    else
        m_pompataMs = std::max(0, m_pompataMs - dtMs);
    m_tpsPrecedente = c.tps;
    c.pompata = m_pompataMs > 0 ? 1 : 0;

    c.zona = m_zona.aggiorna(c.giri, c.tps, s, dtMs);

    // The mixture the probe sees now is the one the engine burnt RitardoSondaMs ago.
    const double richiesta =
        100 + 30.0 * c.tps / 1023 + 6 * m_giriVeri / 4000 + 5 * std::sin(2 * Pi * double(m_tempoMs) / 7000);
    m_miscele.emplace_back(m_tempoMs, m_actpos - richiesta);
    double miscela = m_miscele.front().second;
    while (m_miscele.size() > 1 && m_miscele[1].first <= m_tempoMs - RitardoSondaMs) {
        m_miscele.pop_front();
        miscela = m_miscele.front().second;
    }
    double lambda;
    if (!acceso)
        lambda = 15 + rumore(5);
    else if (c.zona == Zona::CutOff)
        lambda = 25 + rumore(8);
    else
        lambda = 470 + 400 * std::tanh(miscela / 2.5) + rumore(8);
    c.lambda = int(std::clamp(std::lround(lambda), 0L, 1023L));
    const int lambdaSoglie = s.scalaLambda255 ? c.lambda * 255 / 1023 : c.lambda;

    const auto [magro, ricco] = soglieLambda(s, c.giri, c.tps);
    c.ricmag = lambdaSoglie < magro ? 0 : lambdaSoglie > ricco ? 255 : 85;

    m_ultimo = c;
    controllaMotorino(dtMs, s, lambdaSoglie, modo);
    m_actpos = std::clamp(m_actpos, 0.0, 255.0);
    c.actpos = int(std::lround(m_actpos));
    c.tipalim = m_accesoMs >= RiscaldamentoMs ? 1 : 0;
    m_ultimo = c;
    return c;
}

} // namespace kv::sim
