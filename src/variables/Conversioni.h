#pragma once

#include <QByteArray>

namespace kv {

// Conversions between the numbers the ECU keeps and the numbers the fitter sees.
// None of them throws: an impossible result is the value -1, as the pages expect.

// Bytes to number, most significant first; an empty string gives 0.
double NumeroBE(const QByteArray &bytes);

// Number to exactly n bytes, most significant first. What does not fit is dropped without
// notice; a negative value comes out in two's complement (-1 gives FF FF).
QByteArray ByteBE(double v, int n);

// Raw 10-bit reading (0..1023) to the shown 0..255 scale, and back. Not rounded.
double Scala1023(double x);
double Scala255(double x);

// Stepper period in ticks of 1.024 ms to steps per second; the same formula goes back.
// x = 0, or any result that is not a number, gives -1.
double FrequenzaPeriodo(double x);

// Sign-and-magnitude byte to number: bit 7 is the sign, bits 0..6 the magnitude.
double SegnoModulo(double x);

// The way back: a negative value -n becomes 0x80 | n, any other value stays as it is.
double CodificaSegnoModulo(double v);

// Straight line through (x0, y0) and (x1, y1) at x; -1 when it cannot be worked out.
double Interpola(double x, double y1, double y0, double x1, double x0);

} // namespace kv
