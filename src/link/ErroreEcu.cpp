#include "link/ErroreEcu.h"

namespace kv {

Messaggio ErroreEcu(const QByteArray &payload)
{
    const auto b = static_cast<quint8>(payload.size() >= 2 ? payload.at(1) : 0);
    const QString codice = QStringLiteral("%1").arg(b, 2, 16, QLatin1Char('0')).toUpper();
    Messaggio m(QStringLiteral("ERRORI"),
                b >= 1 && b <= 7 ? QStringLiteral("ERR_") + codice : QStringLiteral("ERR_99"));
    m.prima = codice + QStringLiteral("H ");
    return m;
}

} // namespace kv
