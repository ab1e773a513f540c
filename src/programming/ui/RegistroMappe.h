#pragma once

namespace kv {

class Korvantine;

// Puts ReadMappe, ProgMappe and the compare page into the main frame's page registry.
void RegistraPagineMappe(Korvantine &frame);

} // namespace kv
