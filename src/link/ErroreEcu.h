#pragma once

#include <QByteArray>
#include <QString>

namespace kv {

class Lingua;

// The line a page shows for an 'E' reply: the code in hex with its text, codes the language
// file does not know falling back to the generic one.
QString TestoErroreEcu(const Lingua &lingua, const QByteArray &payload);

} // namespace kv
