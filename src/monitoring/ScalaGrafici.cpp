#include "monitoring/ScalaGrafici.h"

#include <cmath>
#include <limits>

namespace kv {

namespace {

// Nearest whole number, ties to even: the rounding the charts were drawn with.
double arrotonda(double v)
{
    return std::nearbyint(v);
}

qint32 intero32(double v)
{
    if (!std::isfinite(v))
        return 0;
    constexpr double basso = std::numeric_limits<qint32>::min();
    constexpr double alto = std::numeric_limits<qint32>::max();
    return static_cast<qint32>(v < basso ? basso : v > alto ? alto : v);
}

qint16 intero16(double v)
{
    const double r = arrotonda(v);
    return static_cast<qint16>(r < -32768 ? -32768 : r > 32767 ? 32767 : r);
}

} // namespace

void ScalaCanale(double min, double max, int margine, int passo, qint32 &minAsse, qint32 &maxAsse)
{
    const double p = passo > 0 ? passo : 1;
    const double m = (max - min) / 100 * margine;
    const double intervalli = arrotonda((max - min + 2 * m) / p + 1);
    const double ampiezza = p * intervalli;
    const double alto = std::floor((min + max) / 2 + ampiezza / 2 + 1);
    maxAsse = intero32(alto);
    minAsse = intero32(alto - ampiezza);
}

bool SaltoFinestra(double conta, int margine, qint32 &minAsse, qint32 &maxAsse)
{
    if (!(conta > maxAsse))
        return false;
    const double ampiezza = double(maxAsse) - double(minAsse);
    minAsse = intero32(arrotonda(minAsse + margine * ampiezza / 100));
    maxAsse = intero32(minAsse + ampiezza);
    return true;
}

bool SaltoFisso(double progressivo, double salto, double &minimo, double &massimo)
{
    if (!(progressivo > massimo))
        return false;
    const double ampiezza = massimo - minimo;
    minimo += salto;
    massimo = minimo + ampiezza;
    return true;
}

int LarghezzaBoxDati(int larghezzaFinestra)
{
    return intero16(larghezzaFinestra * 0.17);
}

TabellaPosGrafico CalcolaPosGrafico(int larghezzaFinestra, int altoBox, int altezzaBox)
{
    const double w = larghezzaFinestra;
    const double t = altoBox;
    const double a = altezzaBox;
    TabellaPosGrafico p;
    p[0] = {intero16(w * 0.18), intero16(t), intero16(w * 0.817), intero16(a)};
    const qint16 mezza = intero16(a * 0.495);
    p[1] = {intero16(w * 0.18), intero16(t + a - mezza), intero16(w * 0.817), mezza};
    p[2] = {intero16(w * 0.59), intero16(t), intero16(w * 0.408), mezza};
    p[3] = {intero16(w * 0.59), intero16(t + a - mezza), intero16(w * 0.408), mezza};
    return p;
}

PosGrafico RettangoloGrafico(const TabellaPosGrafico &tabella, int inUso, int k, int slot)
{
    if (inUso < 1 || inUso > NumeroGrafici || k < 0 || k >= NumeroGrafici || slot < 0
        || slot >= NumeroGrafici)
        return {};
    const PosGrafico &posto = tabella[static_cast<std::size_t>(inUso >= 3 ? slot : k)];
    const PosGrafico &misura = tabella[static_cast<std::size_t>(inUso - 1)];
    return {posto.Sinistra, posto.Alto, misura.Larghezza, misura.Altezza};
}

PosRigaDati PosizioneRigaDati(int k, int conta, int altezzaBox)
{
    if (conta < 1)
        return {};
    const double passo = altezzaBox * 0.98 / conta;
    return {int(arrotonda(passo * k + altezzaBox * 0.025)), int(arrotonda(passo * k + altezzaBox * 0.06)),
            int(arrotonda(passo))};
}

} // namespace kv
