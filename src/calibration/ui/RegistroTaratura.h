#pragma once

namespace kv {

class Korvantine;
class SequenzaTaratura;

// Puts the calibration pages into the main frame's registry and the calibration sequence
// beside the frame, plugged into the live stream and the dialogue engine for as long as the
// frame lives. The sequence is returned for whoever needs to reach it (pictures, tests).
SequenzaTaratura &RegistraPagineTaratura(Korvantine &frame);

} // namespace kv
