#include "Comandi.h"
#include "ComandiMappa.h"

namespace kv::cli {

namespace {

int versione(const QStringList &argomenti)
{
    QCommandLineParser p;
    int uscita = Fatto;
    if (!analizza(p, argomenti, QStringLiteral("Print the version of the command-line tool."), 0, 0, uscita))
        return uscita;
    if (p.isSet(QStringLiteral("json")))
        out() << "{\"version\": \"" << KORVANTINE_VERSION << "\"}\n";
    else
        out() << KORVANTINE_VERSION << '\n';
    return Fatto;
}

// One row a command; each lives in a file of its own.
constexpr Comando tabella[] = {
    {"version", "the version of this tool", versione},
    {"acq2csv", "a recording (.ACQ) as CSV, as the viewer exports it", acq2csv},
    {"show-map", "a map file decoded, as the tuning pages show it", mostraMappa},
    {"diff", "the parameters two map files hold otherwise", differenzeMappe},
    {"ports", "the serial ports, as the Serial port page lists them", porte},
    {"identify", "the ECU's identification", identifica},
    {"read-map", "the ECU's map into a map file, or into the archive", leggiMappa},
    {"write-map", "a map file into the ECU, read back with --verify", scriviMappa},
    {"flash", "a software release (.S19) into the ECU", flash},
    {"record", "the live stream for N seconds, as .ACQ or CSV", registra},
};

} // namespace

std::span<const Comando> comandi()
{
    return tabella;
}

} // namespace kv::cli
