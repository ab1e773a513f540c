#pragma once

#include "monitoring/ui/BarraRegistrazione.h"

namespace kv {

class Korvantine;

// Puts the monitor windows, the instruments and the charts, into the main frame's page
// registry. apriScheda opens the record card from their Start_Mem key; without it the
// key tells the fitter that the card is not there yet.
void RegistraStrumenti(Korvantine &frame, BarraRegistrazione::ApriScheda apriScheda = {});

} // namespace kv
