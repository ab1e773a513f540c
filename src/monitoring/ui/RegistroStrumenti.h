#pragma once

#include "monitoring/ui/BarraRegistrazione.h"

namespace kv {

class Korvantine;
class Programma;

// Puts the monitor windows, the instruments and the charts, and the viewer of recordings
// into the main frame's page registry. Their Start_Mem key opens the record card, run modally by the frame unless
// apriScheda runs it otherwise.
void RegistraStrumenti(Korvantine &frame, BarraRegistrazione::ApriScheda apriScheda = {});

// The monitor windows' pieces of the program, for their factories here and for the tests.
ContestoMonitor ContestoMonitorDi(Programma &programma);

} // namespace kv
