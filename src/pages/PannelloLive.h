#pragma once

#include "monitoring/Canali.h"

#include <QString>

#include <array>

namespace kv {

class Lingua;

// The small live panel of the tuning pages, as texts: what a 'd' frame shows there.
struct TestiPannelloLive
{
    // Dato(0..3): engine speed, lambda, TPS, stepper position.
    std::array<QString, 4> dato;
    QString zona;
};

// Name of a working zone; any value outside 1..5 gets the text for an unknown zone.
QString TestoZona(const Lingua &lingua, double zona);

TestiPannelloLive TestiPannello(const Lingua &lingua, const RecordDati &record);

} // namespace kv
