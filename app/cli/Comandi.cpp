#include "Comandi.h"

#include <cstdio>

namespace kv::cli {

QTextStream &out()
{
    static QTextStream s(stdout);
    return s;
}

QTextStream &err()
{
    static QTextStream s(stderr);
    return s;
}

bool analizza(QCommandLineParser &p, const QStringList &argomenti, const QString &descrizione,
              int minimiPosizionali, int massimiPosizionali, int &uscita)
{
    p.setApplicationDescription(descrizione);
    p.addHelpOption();
    p.addOption({QStringLiteral("json"), QStringLiteral("Print one JSON object on standard output.")});
    p.addOption({QStringLiteral("quiet"), QStringLiteral("Print nothing but errors.")});
    if (!p.parse(argomenti)) {
        err() << argomenti.value(0) << ": " << p.errorText() << '\n';
        uscita = Uso;
        return false;
    }
    if (p.isSet(QStringLiteral("help"))) {
        out() << p.helpText();
        uscita = Fatto;
        return false;
    }
    const auto n = p.positionalArguments().size();
    if (n < minimiPosizionali || n > massimiPosizionali) {
        err() << argomenti.value(0) << ": wrong number of arguments; see --help\n";
        uscita = Uso;
        return false;
    }
    return true;
}

} // namespace kv::cli
