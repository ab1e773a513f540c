#pragma once

#include <QString>

namespace kv {

// What a version resource would hold: the number and the two texts that go with it. They
// describe the build, not the language, so they live here and not in the language files.
namespace InfoProgramma {

// "1.02" from "1.2.7": the major number, a point, the minor number with two digits.
// Text that is not a version gives "0.00".
QString NumeroVersione(const QString &versione = QStringLiteral(KORVANTINE_VERSION));

QString Descrizione();
// Company text; each '#' stands for a line break.
QString TestoAzienda();

// The menu's version line: the label (trimmed), the number and the description.
QString TestoVersione(const QString &etichetta);

} // namespace InfoProgramma

} // namespace kv
