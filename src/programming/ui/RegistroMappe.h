#pragma once

namespace kv {

class Korvantine;

// Puts ReadMappe and ProgMappe into the main frame's page registry.
void RegistraPagineMappe(Korvantine &frame);

} // namespace kv
