#pragma once

namespace kv {

class Korvantine;

// Puts the exchange and deletion pages of the utilities into the main frame's page registry:
// CreaDiscoSW, RipriDiscoSW, CancelSW, CreaDiscoMappe, RipriMappe, CancelMappe.
void RegistraPagineScambio(Korvantine &frame);

} // namespace kv
