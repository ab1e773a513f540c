#pragma once

// The language files as the program hands them on: look-ups for what keeps the names as data,
// and a message of the logic in the shipped English, for fakes that keep what a page shows.

#include "base/Lingua.h"
#include "monitoring/Canali.h"

namespace kv {

inline CercaTesto cercaIn(const Lingua &lingua)
{
    return [&lingua](const QString &sezione, const QString &chiave) {
        return lingua.LeggiTesto(sezione, chiave);
    };
}

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
