#pragma once

#include "monitoring/ui/BarraRegistrazione.h"

namespace kv {

class Korvantine;

// Puts the monitor windows, the instruments and the charts, and the viewer of recordings
// into the main frame's page registry. Their Start_Mem key opens the record card, run modally by the frame unless
// apriScheda runs it otherwise.
void RegistraStrumenti(Korvantine &frame, BarraRegistrazione::ApriScheda apriScheda = {});

} // namespace kv
