#pragma once

namespace kv {

class Korvantine;

// Puts the tuning pages built so far into the main frame's page registry.
void RegistraPagineMessaPunto(Korvantine &frame);

} // namespace kv
