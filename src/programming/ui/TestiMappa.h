#pragma once

#include "pages/DecodificaMappa.h"

#include <QString>

namespace kv {

class Lingua;

// What the fitter reads of a decoded map, from the language file: the caption of a group (its
// page's title), the label of an entry (its row's caption and unit, or the compare page's name
// for a grid cell or a value no page shows), and an entry's value as its page shows it (a
// list's item).
QString TitoloGruppo(const Lingua &lingua, const GruppoMappa &gruppo);
QString EtichettaVoce(const Lingua &lingua, const MappaDecodificata &mappa, const VoceMappa &voce);
QString TestoMostrato(const Lingua &lingua, const VoceMappa &voce);

} // namespace kv
