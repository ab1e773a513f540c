#include "Comandi.h"

#include <QCoreApplication>

using namespace kv::cli;

namespace {

void elenco(QTextStream &s)
{
    s << "Usage: korvantine-cli COMMAND [options] [arguments]\n\nCommands:\n";
    for (const Comando &c : comandi())
        s << "  " << QString::fromLatin1(c.nome).leftJustified(12) << ' ' << c.sintesi << '\n';
    s << "\n'korvantine-cli COMMAND --help' tells more of each.\n";
}

} // namespace

int main(int argc, char *argv[])
{
    // No display is needed or touched: this runs on a bench with no screen.
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("korvantine-cli"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KORVANTINE_VERSION));

    QStringList argomenti = QCoreApplication::arguments();
    const QString nome = argomenti.value(1);
    if (nome.isEmpty() || nome == QLatin1String("--help") || nome == QLatin1String("-h")) {
        elenco(nome.isEmpty() ? err() : out());
        return nome.isEmpty() ? Uso : Fatto;
    }
    if (nome == QLatin1String("--version")) {
        out() << "korvantine-cli " << KORVANTINE_VERSION << '\n';
        return Fatto;
    }
    for (const Comando &c : comandi()) {
        if (nome == QLatin1String(c.nome)) {
            argomenti.removeFirst();
            argomenti[0] = QStringLiteral("korvantine-cli ") + nome;
            const int uscita = c.esegui(argomenti);
            out().flush();
            err().flush();
            return uscita;
        }
    }
    err() << "korvantine-cli: no command '" << nome << "'\n\n";
    elenco(err());
    return Uso;
}
