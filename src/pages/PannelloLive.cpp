#include "pages/PannelloLive.h"

#include "base/Lingua.h"
#include "variables/Formato.h"

namespace kv {

QString TestoZona(const Lingua &lingua, double zona)
{
    if (zona >= 1 && zona <= 5)
        return lingua.LeggiTesto("ZONE", "ZONA." + FormattaNumero(zona, QStringLiteral("#0")));
    return lingua.LeggiTesto("ZONE", "ZONA.99");
}

TestiPannelloLive TestiPannello(const Lingua &lingua, const RecordDati &record)
{
    static constexpr int Mostrati[4] = {Canale::Giri, Canale::Lambda, Canale::Tps, Canale::ActPos};
    TestiPannelloLive t;
    for (size_t i = 0; i < t.dato.size(); ++i)
        t.dato[i] = FormattaNumero(record.Valore[static_cast<size_t>(Mostrati[i])], QStringLiteral("#0"));
    t.zona = TestoZona(lingua, record.Valore[Canale::MZonAct]);
    return t;
}

} // namespace kv
