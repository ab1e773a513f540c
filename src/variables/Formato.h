#pragma once

#include <QString>

namespace kv {

// Number to text by a mask of digit placeholders, the one place where the program does it.
//   "#0"            whole number, at least one digit
//   "0.0", "#0.00"  that many decimals ('0' always shown, '#' only when not zero)
//   ""              the number as it stands, in its shortest exact text (12, 12.5)
// Rounding is half away from zero on the decimal digits of the value (2.5 gives "3",
// -2.5 gives "-3"); a value that rounds to zero carries no sign. Characters of the mask
// other than '#', '0' and the first '.' are ignored. A value that is not a number gives
// empty text, which ValNumero reads as 0.
//
// The decimal point is always '.', whatever the locale: every formatted number is read
// back through ValNumero, and a fixed point keeps that round trip exact and the same on
// every machine.
QString FormattaNumero(double v, const QString &mask);

// Text to number. The first comma, and only that one, counts as a decimal point; then the
// longest numeric prefix is taken: leading blanks, a sign, digits, a point, digits and an
// optional exponent. Text with no number in front, or a number too large to hold, gives 0.
double ValNumero(const QString &testo);

} // namespace kv
