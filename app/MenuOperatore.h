#pragma once

namespace kv {

class Demo;
class Korvantine;

// The demo's way to the fitter's actions at the car: Ctrl+Shift+E pops a menu of them over
// the frame (with the rev counter's reading, for the RPM calibration), and each has a key of
// its own: Ctrl+Shift+R pedal released, Ctrl+Shift+F pedal pressed fully, Ctrl+Shift+0 and
// Ctrl+Shift+1 the kind of lambda probe.
void InstallaMenuOperatore(Korvantine &frame, Demo &demo);

} // namespace kv
