#pragma once

namespace kv {

class Korvantine;

// Puts the instruments panel into the main frame's page registry.
void RegistraStrumenti(Korvantine &frame);

} // namespace kv
