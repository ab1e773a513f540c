#include "monitoring/AnelloRegistrazione.h"

#include <cmath>

namespace kv {

namespace {
// The channels the stream fills: 1 (status) to 11 (lambda probe type).
constexpr int PrimoCanale = Canale::FlagPa;
constexpr int UltimoCanale = Canale::TipoLambda;

// The counter as a 32-bit sample number; a run long enough to pass 2^31 wraps round
// instead of failing.
qint32 progressivo(double conta)
{
    if (!std::isfinite(conta) || std::fabs(conta) > 9.0e15)
        return -1;
    return static_cast<qint32>(static_cast<quint32>(std::llround(conta)));
}
} // namespace

AnelloRegistrazione::AnelloRegistrazione()
{
    azzera();
}

void AnelloRegistrazione::azzera()
{
    IndiceRegistrazione = -1;
    for (RecordDati &r : BufferRegistrazione)
        r.Progressivo = -1;
}

bool AnelloRegistrazione::aggiungi(const RecordDati &campione)
{
    if (IndiceRegistrazione < 0 || IndiceRegistrazione >= LimiteSuperiore)
        IndiceRegistrazione = 0;
    else
        ++IndiceRegistrazione;
    ContaRegistrazione += 1;

    RecordDati &r = BufferRegistrazione[IndiceRegistrazione];
    r.Progressivo = progressivo(ContaRegistrazione);
    for (int c = PrimoCanale; c <= UltimoCanale; ++c)
        r.Valore[c] = campione.Valore[c];
    return IndiceRegistrazione == LimiteSuperiore;
}

} // namespace kv
