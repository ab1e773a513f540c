#pragma once

#include <QStringList>

namespace kv::cli {

// show-map FILE.LKV: the map decoded, one line an entry.
int mostraMappa(const QStringList &argomenti);
// diff A.LKV B.LKV: the entries whose shown values differ.
int differenzeMappe(const QStringList &argomenti);

} // namespace kv::cli
