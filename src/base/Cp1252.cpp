#include "base/Cp1252.h"

#include <array>

namespace kv {

namespace {

// 0x80..0x9F; the rest of the code page is Latin-1.
constexpr std::array<char16_t, 32> Tabella80 = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

int byteDi(char16_t c)
{
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF))
        return c;
    for (std::size_t i = 0; i < Tabella80.size(); ++i) {
        if (Tabella80[i] == c)
            return static_cast<int>(0x80 + i);
    }
    return -1;
}

} // namespace

namespace Cp1252 {

QString decodifica(QByteArrayView byte)
{
    QString testo(byte.size(), Qt::Uninitialized);
    QChar *uscita = testo.data();
    for (qsizetype i = 0; i < byte.size(); ++i) {
        const auto b = static_cast<unsigned char>(byte[i]);
        uscita[i] = (b >= 0x80 && b < 0xA0) ? QChar(Tabella80[b - 0x80]) : QChar(b);
    }
    return testo;
}

QByteArray codifica(QStringView testo, bool *perdita)
{
    QByteArray byte;
    byte.reserve(testo.size());
    bool perso = false;
    for (qsizetype i = 0; i < testo.size(); ++i) {
        const char16_t c = testo[i].unicode();
        const int b = byteDi(c);
        if (b < 0) {
            perso = true;
            byte.append('?');
            // A pair of surrogates is one character and becomes one '?'.
            if (QChar::isHighSurrogate(c) && i + 1 < testo.size()
                && QChar::isLowSurrogate(testo[i + 1].unicode()))
                ++i;
        } else {
            byte.append(static_cast<char>(b));
        }
    }
    if (perdita)
        *perdita = perso;
    return byte;
}

} // namespace Cp1252

} // namespace kv
