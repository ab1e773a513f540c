#pragma once

// A message of the logic in the shipped English, for fakes that keep what a page shows.

#include "base/Lingua.h"

namespace kv {

inline QString Inglese(const Messaggio &m)
{
    static const Lingua inglese = [] {
        Lingua l(QStringLiteral(KV_SOURCE_DIR "/lang"));
        l.LinguaCorrente = QStringLiteral("ENGLISH");
        return l;
    }();
    return inglese.testo(m);
}

} // namespace kv
