#pragma once

namespace kv {

class Korvantine;

// Puts the software programming page into the main frame's page registry.
void RegistraProgSW(Korvantine &frame);

} // namespace kv
