#include "variables/Conversioni.h"

#include <cmath>
#include <cstdint>

namespace kv {

double NumeroBE(const QByteArray &bytes)
{
    double valore = 0;
    for (char b : bytes)
        valore = valore * 256 + static_cast<quint8>(b);
    return valore;
}

QByteArray ByteBE(double v, int n)
{
    if (n <= 0)
        return {};
    QByteArray r(n, '\0');
    if (!std::isfinite(v))
        return r;
    // Floor, not truncation: it keeps every byte in 0..255 for negative values too.
    for (int i = n - 1; i >= 0; --i) {
        const double q = std::floor(v / 256);
        double b = v - q * 256;
        if (b > 255)
            b = 255;
        r[i] = static_cast<char>(static_cast<quint8>(std::round(b)));
        v = q;
    }
    return r;
}

double Scala1023(double x)
{
    return x * 255 / 1023;
}

double Scala255(double x)
{
    return x * 1023 / 255;
}

double FrequenzaPeriodo(double x)
{
    if (x == 0 || !std::isfinite(x))
        return -1;
    const double r = 1000 / (x * 1.024);
    return std::isfinite(r) ? r : -1;
}

double SegnoModulo(double x)
{
    // Only whole values that fit a machine word carry bits to look at.
    if (!std::isfinite(x) || std::fabs(x) > 9.0e15)
        return x;
    const auto n = static_cast<std::int64_t>(std::llround(x));
    if (n & 0x80)
        return -static_cast<double>(n & 0x7F);
    return x;
}

double CodificaSegnoModulo(double v)
{
    if (!std::isfinite(v) || v >= 0 || v < -9.0e15)
        return v;
    const auto modulo = static_cast<std::int64_t>(std::llround(-v));
    return static_cast<double>(modulo | 0x80);
}

double Interpola(double x, double y1, double y0, double x1, double x0)
{
    if (x1 == x0)
        return -1;
    const double r = (x - x0) * (y1 - y0) / (x1 - x0) + y0;
    return std::isfinite(r) ? r : -1;
}

} // namespace kv
