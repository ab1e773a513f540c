#include "pages/PannelloLive.h"

#include "variables/Formato.h"

namespace kv {

Messaggio NomeZona(double zona)
{
    if (zona >= 1 && zona <= 5)
        return {QStringLiteral("ZONE"), "ZONA." + FormattaNumero(zona, QStringLiteral("#0"))};
    return {QStringLiteral("ZONE"), QStringLiteral("ZONA.99")};
}

TestiPannelloLive TestiPannello(const RecordDati &record)
{
    static constexpr int Mostrati[4] = {Canale::Giri, Canale::Lambda, Canale::Tps, Canale::ActPos};
    TestiPannelloLive t;
    for (size_t i = 0; i < t.dato.size(); ++i)
        t.dato[i] = FormattaNumero(record.Valore[static_cast<size_t>(Mostrati[i])], QStringLiteral("#0"));
    t.zona = NomeZona(record.Valore[Canale::MZonAct]);
    return t;
}

} // namespace kv
