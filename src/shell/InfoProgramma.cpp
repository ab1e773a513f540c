#include "shell/InfoProgramma.h"

#include <QStringList>

namespace kv {

namespace InfoProgramma {

QString NumeroVersione(const QString &versione)
{
    const QStringList parti = versione.trimmed().split(u'.');
    bool okMaggiore = false;
    bool okMinore = parti.size() < 2;
    const int maggiore = parti.value(0).toInt(&okMaggiore);
    const int minore = parti.size() < 2 ? 0 : parti.at(1).toInt(&okMinore);
    if (!okMaggiore || !okMinore || maggiore < 0 || minore < 0)
        return QStringLiteral("0.00");
    return QStringLiteral("%1.%2").arg(maggiore).arg(minore, 2, 10, QLatin1Char('0'));
}

QString Descrizione()
{
    return QStringLiteral("Korvantine - LPG/CNG ECU workshop tool");
}

QString TestoAzienda()
{
    return QStringLiteral("Korvantine project#Programming, tuning and diagnostics for gas-conversion ECUs");
}

QString TestoVersione(const QString &etichetta)
{
    return etichetta.trimmed() + u' ' + NumeroVersione() + QStringLiteral("  ") + Descrizione();
}

} // namespace InfoProgramma

} // namespace kv
