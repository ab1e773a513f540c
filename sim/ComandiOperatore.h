#pragma once

#include <QString>

namespace kv::sim {

class EcuSimulata;

// The fitter's actions at the car, as one line of text each (korvantine-ecu reads them on
// its standard input):
//   pedal rest | pedal full   the accelerator released, or pressed to the floor
//   probe 0 | probe 1         the kind of lambda probe fitted
//   manual | auto             who works the pedal in the TPS step: the fitter, or a
//                             simulated one who does it on cue
//   status                    what the car and the ECU are doing, the rev counter included
//   help
// Runs the line on the ECU, in its thread, and returns what to tell the fitter.
QString EseguiComandoOperatore(EcuSimulata &ecu, const QString &riga);

} // namespace kv::sim
