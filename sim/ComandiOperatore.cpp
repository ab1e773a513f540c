#include "ComandiOperatore.h"

#include "EcuSimulata.h"

#include <QStringList>

namespace kv::sim {

namespace {

const QString Aiuto =
    QStringLiteral("pedal rest | pedal full | probe 0 | probe 1 | manual | auto | status | help");

QString statoAttuale(const EcuSimulata &ecu)
{
    const CampioneMotore &c = ecu.ultimoCampione();
    return QStringLiteral("status %1, rev counter %2 rpm, ECU reads %3 rpm, TPS %4, lambda %5, stepper %6, "
                          "pedal %7 (%8), probe %9")
        .arg(ecu.statoTaratura())
        .arg(qRound(ecu.giriVeri()))
        .arg(c.giri)
        .arg(c.tps)
        .arg(c.lambda)
        .arg(c.actpos)
        .arg(ecu.pedale() == Taratura::Pedale::Premuto ? QStringLiteral("pressed")
                                                       : QStringLiteral("at rest"),
             ecu.operatoreManuale() ? QStringLiteral("manual") : QStringLiteral("auto"))
        .arg(ecu.opzioni().tipoSonda);
}

} // namespace

QString EseguiComandoOperatore(EcuSimulata &ecu, const QString &riga)
{
    const QStringList parole = riga.simplified().toLower().split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (parole.isEmpty())
        return {};
    const QString &verbo = parole.at(0);
    const QString argomento = parole.value(1);
    if (verbo == QLatin1String("pedal") && parole.size() == 2
        && (argomento == QLatin1String("rest") || argomento == QLatin1String("full"))) {
        ecu.impostaPedale(argomento == QLatin1String("full"));
        return QStringLiteral("pedal %1")
            .arg(argomento == QLatin1String("full") ? "pressed fully" : "released");
    }
    if (verbo == QLatin1String("probe") && parole.size() == 2
        && (argomento == QLatin1String("0") || argomento == QLatin1String("1"))) {
        ecu.impostaTipoSonda(argomento.toInt());
        return QStringLiteral("lambda probe kind %1").arg(argomento);
    }
    if ((verbo == QLatin1String("manual") || verbo == QLatin1String("auto")) && parole.size() == 1) {
        ecu.impostaOperatoreManuale(verbo == QLatin1String("manual"));
        return verbo == QLatin1String("manual") ? QStringLiteral("the fitter works the pedal")
                                                : QStringLiteral("a simulated fitter works the pedal");
    }
    if (verbo == QLatin1String("status") && parole.size() == 1)
        return statoAttuale(ecu);
    if (verbo == QLatin1String("help") && parole.size() == 1)
        return Aiuto;
    return QStringLiteral("unknown command \"%1\"; commands: %2").arg(riga.trimmed(), Aiuto);
}

} // namespace kv::sim
