#include "link/ErroreEcu.h"

#include "base/Lingua.h"

namespace kv {

QString TestoErroreEcu(const Lingua &lingua, const QByteArray &payload)
{
    const auto b = static_cast<quint8>(payload.size() >= 2 ? payload.at(1) : 0);
    const QString codice = QStringLiteral("%1").arg(b, 2, 16, QLatin1Char('0')).toUpper();
    const QString messaggio = b >= 1 && b <= 7 ? lingua.LeggiTesto("ERRORI", "ERR_" + codice)
                                               : lingua.LeggiTesto("ERRORI", "ERR_99");
    return codice + QStringLiteral("H ") + messaggio;
}

} // namespace kv
