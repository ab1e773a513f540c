#pragma once

#include "monitoring/Canali.h"

#include <array>

namespace kv {

// The last 41 samples, kept while a monitor window is open so that a recording starts with
// what happened just before the fitter pressed the button.
class AnelloRegistrazione
{
public:
    static constexpr int LimiteSuperiore = 40;
    static constexpr int Dimensione = LimiteSuperiore + 1;

    AnelloRegistrazione();

    // Empty ring: no newest element, every record free.
    void azzera();

    // Takes a decoded sample: the next slot gets the next sample number and channels 1..11.
    // True when the slot written is the last one, the moment a recording writes the ring.
    bool aggiungi(const RecordDati &campione);

    std::array<RecordDati, Dimensione> BufferRegistrazione;
    qint16 IndiceRegistrazione = -1; // newest element, -1 when empty
    double ContaRegistrazione = -1;  // number of the newest sample, -1 before the first
};

} // namespace kv
