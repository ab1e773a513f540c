#pragma once

#include "base/Messaggio.h"
#include "monitoring/Canali.h"

#include <QString>

#include <array>

namespace kv {

// The small live panel of the tuning pages: what a 'd' frame shows there.
struct TestiPannelloLive
{
    // Dato(0..3): engine speed, lambda, TPS, stepper position.
    std::array<QString, 4> dato;
    Messaggio zona;
};

// Name of a working zone; any value outside 1..5 gets the text for an unknown zone.
Messaggio NomeZona(double zona);

TestiPannelloLive TestiPannello(const RecordDati &record);

} // namespace kv
