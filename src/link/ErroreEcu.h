#pragma once

#include "base/Messaggio.h"

#include <QByteArray>

namespace kv {

// The line a page shows for an 'E' reply: the code in hex before its text, codes the language
// file does not know falling back to the generic one.
Messaggio ErroreEcu(const QByteArray &payload);

} // namespace kv
